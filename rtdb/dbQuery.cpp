#include "rtdb/dbQuery.h"

#include "rtdb/dbTableDescriptor.h"

#include <cctype>
#include <cstdlib>
#include <cstring>
#include <strings.h>

namespace {
constexpr char kParamMark = '\x01';
}

dbQuery& dbQuery::reset()
{
    m_text.clear();
    m_params.clear();
    m_texts.clear();
    m_expectParam = false;
    return *this;
}

dbQuery& dbQuery::add(const char* text)
{
    if (text) {
        m_text += ' ';
        m_text += text;
    }
    m_expectParam = true;
    return *this;
}

dbQuery& dbQuery::addParam(const Param& p)
{
    m_text += kParamMark;
    m_params.push_back(p);
    m_expectParam = false;
    return *this;
}

dbQuery &dbQuery::operator,(const char*s)
{
    if (!m_expectParam) {
        return add(s);
    }
    Param p;
    p.kind = Param::Text;
    p.text = static_cast<std::uint32_t>(m_texts.size());
    if (!s) {
        s = ""; // a null text matches as the empty string
    }
    m_texts.append(s, std::strlen(s) + 1);
    return addParam(p);
}

dbQuery &dbQuery::operator,(int v)
{
    return *this, static_cast<long long>(v);
}
dbQuery &dbQuery::operator,(unsigned int v)
{
    return *this, static_cast<long long>(v);
}
dbQuery &dbQuery::operator,(long long v)
{
    Param p;
    p.kind = Param::Int;
    p.i = v;
    return addParam(p);
}
dbQuery &dbQuery::operator,(float v)
{
    return *this, static_cast<double>(v);
}
dbQuery &dbQuery::operator,(double v)
{
    Param p;
    p.kind = Param::Real;
    p.d = v;
    return addParam(p);
}

#define RTDB_REF_PARAM(Type, KindName)                                                             \
    dbQuery &dbQuery::operator,(Type p)                                                            \
    {                                                                                              \
        Param q;                                                                                   \
        q.kind = Param::KindName;                                                                  \
        q.ref = p;                                                                                 \
        return addParam(q);                                                                        \
    }
RTDB_REF_PARAM(const int*, IntRef)
RTDB_REF_PARAM(const unsigned int*, UIntRef)
RTDB_REF_PARAM(const float*, FloatRef)
RTDB_REF_PARAM(const double*, DoubleRef)
RTDB_REF_PARAM(const char* const*, TextRef)
#undef RTDB_REF_PARAM

dbQuery::Value dbQuery::Param::resolve(const char* texts) const
{
    Value v;
    switch (kind) {
    case Int:
        v.kind = Value::Integer;
        v.i = i;
        break;
    case Real:
        v.kind = Value::Real;
        v.d = d;
        break;
    case Text:
        v.kind = Value::Text;
        v.s = texts + text;
        break;
    case IntRef:
        v.kind = Value::Integer;
        v.i = *static_cast<const int*>(ref);
        break;
    case UIntRef:
        v.kind = Value::Integer;
        v.i = *static_cast<const unsigned int*>(ref);
        break;
    case FloatRef:
        v.kind = Value::Real;
        v.d = *static_cast<const float*>(ref);
        break;
    case DoubleRef:
        v.kind = Value::Real;
        v.d = *static_cast<const double*>(ref);
        break;
    case TextRef: {
        const char* s = *static_cast<const char* const*>(ref);
        v.kind = Value::Text;
        v.s = s ? s : "";
        break;
    }
    }
    return v;
}

std::string dbQuery::describe() const
{
    std::string out;
    for (char c : m_text) {
        out += c == kParamMark ? '?' : c;
    }
    std::size_t b = out.find_first_not_of(' ');
    return b == std::string::npos ? std::string() : out.substr(b);
}

namespace {

// A small tokenizer over the query text.
struct Lexer
{
    const char* p;
    const char* end;
    enum Kind { End, Ident, Number, String, Mark, Operator, Comma, Bad } kind = End;
    const char* tok = nullptr;
    std::size_t len = 0;

    void next()
    {
        while (p < end && std::isspace(static_cast<unsigned char>(*p))) {
            ++p;
        }
        tok = p;
        if (p >= end) {
            kind = End;
            len = 0;
            return;
        }
        unsigned char c = static_cast<unsigned char>(*p);
        if (std::isalpha(c) || c == '_') {
            while (p < end && (std::isalnum(static_cast<unsigned char>(*p)) || *p == '_')) {
                ++p;
            }
            kind = Ident;
        } else if (std::isdigit(c) ||
                   ((c == '-' || c == '+' || c == '.') && p + 1 < end &&
                    (std::isdigit(static_cast<unsigned char>(p[1])) || p[1] == '.'))) {
            ++p;
            while (p < end &&
                   (std::isdigit(static_cast<unsigned char>(*p)) || *p == '.' || *p == 'e' ||
                    *p == 'E' || ((*p == '-' || *p == '+') && (p[-1] == 'e' || p[-1] == 'E')))) {
                ++p;
            }
            kind = Number;
        } else if (c == '\'') {
            ++p;
            while (p < end && !(*p == '\'' && !(p + 1 < end && p[1] == '\''))) {
                p += (*p == '\'') ? 2 : 1;
            }
            if (p >= end) {
                kind = Bad;
                len = static_cast<std::size_t>(p - tok);
                return;
            }
            ++p;
            kind = String;
        } else if (c == static_cast<unsigned char>(kParamMark)) {
            ++p;
            kind = Mark;
        } else if (c == ',') {
            ++p;
            kind = Comma;
        } else if (c == '=' || c == '<' || c == '>' || c == '!') {
            ++p;
            if (p < end && (*p == '=' || (c == '<' && *p == '>'))) {
                ++p;
            }
            kind = Operator;
        } else {
            ++p;
            kind = Bad;
        }
        len = static_cast<std::size_t>(p - tok);
    }
    bool keyword(const char* word) const
    {
        return kind == Ident && std::strlen(word) == len && strncasecmp(tok, word, len) == 0;
    }
    std::string text() const { return std::string(tok, len); }
};

bool isNumeric(dbFieldType t)
{
    return t != dbFieldText;
}

} // namespace

bool dbQuery::compile(const dbTableDescriptor& table, Compiled& out, std::string& error) const
{
    out.conditions.clear();
    out.order.clear();
    out.literals.clear();
    Lexer lx{m_text.data(), m_text.data() + m_text.size()};
    int nextParam = 0;
    // Which parameter each mark stands for: marks come in the order of m_params.
    auto fail = [&](const std::string& why) {
        error = why + " in query \"" + describe() + "\" on table " + table.getName();
        return false;
    };
    auto field = [&]() -> const dbFieldDescriptor* {
        const dbFieldDescriptor* f = table.findField(lx.tok, lx.len);
        return f;
    };

    lx.next();
    bool first = true;
    while (lx.kind != Lexer::End && !lx.keyword("order")) {
        if (!first) {
            if (!lx.keyword("and")) {
                return fail("expected 'and' or 'order by' at '" + lx.text() + "'");
            }
            lx.next();
        }
        first = false;
        if (lx.kind != Lexer::Ident) {
            return fail("expected a field name at '" + lx.text() + "'");
        }
        Condition c{};
        c.field = field();
        if (!c.field) {
            return fail("unknown field '" + lx.text() + "'");
        }
        lx.next();
        if (lx.kind != Lexer::Operator) {
            return fail("expected a comparison after '" + std::string(c.field->name) + "'");
        }
        const std::string op = lx.text();
        if (op == "=" || op == "==") {
            c.op = Eq;
        } else if (op == "!=" || op == "<>") {
            c.op = Ne;
        } else if (op == "<") {
            c.op = Lt;
        } else if (op == "<=") {
            c.op = Le;
        } else if (op == ">") {
            c.op = Gt;
        } else if (op == ">=") {
            c.op = Ge;
        } else {
            return fail("unknown comparison '" + op + "'");
        }
        lx.next();
        bool textValue = false;
        if (lx.kind == Lexer::Mark) {
            if (nextParam >= static_cast<int>(m_params.size())) {
                return fail("parameter missing");
            }
            c.param = nextParam++;
            const Param::Kind k = m_params[static_cast<std::size_t>(c.param)].kind;
            textValue = (k == Param::Text || k == Param::TextRef);
        } else if (lx.kind == Lexer::Number) {
            c.param = -1;
            const std::string n = lx.text();
            if (n.find_first_of(".eE") == std::string::npos) {
                c.literal.kind = Param::Int;
                c.literal.i = std::strtoll(n.c_str(), nullptr, 10);
            } else {
                c.literal.kind = Param::Real;
                c.literal.d = std::strtod(n.c_str(), nullptr);
            }
        } else if (lx.kind == Lexer::String) {
            c.param = -1;
            c.literal.kind = Param::Text;
            c.literal.text = static_cast<std::uint32_t>(out.literals.size());
            for (std::size_t i = 1; i + 1 < lx.len; ++i) {
                out.literals += lx.tok[i];
                if (lx.tok[i] == '\'') {
                    ++i; // '' stands for one quote
                }
            }
            out.literals += '\0';
            textValue = true;
        } else {
            return fail("expected a value after '" + std::string(c.field->name) + op + "'");
        }
        if (textValue == isNumeric(c.field->type)) {
            return fail(std::string("a ") + (textValue ? "text" : "number") + " value for the " +
                        (textValue ? "numeric" : "text") + " field '" + c.field->name + "'");
        }
        out.conditions.push_back(std::move(c));
        lx.next();
    }
    if (lx.keyword("order")) {
        lx.next();
        if (!lx.keyword("by")) {
            return fail("expected 'by' after 'order'");
        }
        do {
            lx.next();
            if (lx.kind != Lexer::Ident) {
                return fail("expected a field name after 'order by'");
            }
            Order o{field(), false};
            if (!o.field) {
                return fail("unknown field '" + lx.text() + "'");
            }
            lx.next();
            if (lx.keyword("asc")) {
                lx.next();
            } else if (lx.keyword("desc")) {
                o.descending = true;
                lx.next();
            }
            out.order.push_back(o);
        } while (lx.kind == Lexer::Comma);
    }
    if (lx.kind != Lexer::End) {
        return fail("unexpected '" + lx.text() + "'");
    }
    if (nextParam != static_cast<int>(m_params.size())) {
        return fail("more parameters than the text uses");
    }
    return true;
}

namespace {

// The shapes of queries one thread has run lately, with their compiled form. A shape is
// the text with its parameter marks and literals, the table, and which parameters are
// texts (the kind a condition accepts depends on it); the parameters' values are not part
// of it. Sixteen shapes are more than a transfer alternates between.
struct Shape
{
    const dbTableDescriptor* table = nullptr;
    std::uint64_t tableSerial = 0;
    std::string text;
    std::size_t params = 0;
    std::uint64_t textParams = 0; // bit i: parameter i is a text
    dbQuery::Compiled compiled;
};

struct ShapeCache
{
    static constexpr std::size_t kShapes = 16;
    Shape shapes[kShapes];
    std::size_t used = 0;
    std::size_t next = 0; // the slot to reuse when all are taken
};

} // namespace

const dbQuery::Compiled* dbQuery::compileShape(const dbTableDescriptor& table,
                                               std::string& error) const
{
    thread_local ShapeCache cache;
    thread_local Compiled scratch; // a shape too long to remember
    std::uint64_t textParams = 0;
    const std::size_t n = m_params.size();
    if (n > 64) {
        return compile(table, scratch, error) ? &scratch : nullptr;
    }
    for (std::size_t i = 0; i < n; ++i) {
        const Param::Kind k = m_params[i].kind;
        if (k == Param::Text || k == Param::TextRef) {
            textParams |= std::uint64_t(1) << i;
        }
    }
    for (std::size_t i = 0; i < cache.used; ++i) {
        const Shape& s = cache.shapes[i];
        if (s.table == &table && s.tableSerial == table.serial() && s.params == n &&
            s.textParams == textParams && s.text == m_text) {
            return &s.compiled;
        }
    }
    const bool fresh = cache.used < ShapeCache::kShapes;
    Shape* slot;
    if (fresh) {
        slot = &cache.shapes[cache.used];
    } else {
        slot = &cache.shapes[cache.next];
        cache.next = (cache.next + 1) % ShapeCache::kShapes;
    }
    if (!compile(table, slot->compiled, error)) {
        slot->table = nullptr; // a bad query is never remembered: it fails, and says so, each time
        return nullptr;
    }
    slot->table = &table;
    slot->tableSerial = table.serial();
    slot->text = m_text;
    slot->params = n;
    slot->textParams = textParams;
    if (fresh) {
        ++cache.used;
    }
    return &slot->compiled;
}
