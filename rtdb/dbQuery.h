#pragma once
// Queries as the library writes them: text pieces and parameters, alternating.
//
//     dbQuery q;
//     q = "type=", 3, " and id=", name;      // conditions joined by "and"
//     q = "order by id desc";                 // ordering only
//     q = "ikv=", &pos;                       // parameter read when the query runs
//
// After a text piece the next item is a parameter, after a parameter the next `const char*`
// is text again. Parameters given as values are copied when appended (a text parameter's
// bytes too, so a temporary buffer may go away); parameters given as pointers are read each
// time the query runs. The text understands `field op value` with =, ==, !=, <>, >, >=, <,
// <=, joined by `and`, value a parameter or a literal (number or 'quoted text'), and
// `order by field [asc|desc] [, ...]`. Keywords are case-insensitive, field names are not.

#include "rtdb/InlineVector.h"

#include <cstdint>
#include <string>
#include <vector>

class dbTableDescriptor;
struct dbFieldDescriptor;

class dbQuery
{
public:
    dbQuery() = default;
    dbQuery(const char* text) { add(text); }

    dbQuery& operator=(const char* text)
    {
        reset();
        return add(text);
    }
    dbQuery& reset();
    // Appends query text whatever came before.
    dbQuery& add(const char* text);

    dbQuery& operator,(const char* s);
    dbQuery& operator,(int v);
    dbQuery& operator,(unsigned int v);
    dbQuery& operator,(long long v);
    dbQuery& operator,(float v);
    dbQuery& operator,(double v);
    dbQuery& operator,(const int* p);
    dbQuery& operator,(const unsigned int* p);
    dbQuery& operator,(const float* p);
    dbQuery& operator,(const double* p);
    dbQuery& operator,(const char* const* p);
    dbQuery& operator,(char* const* p) { return *this, const_cast<const char* const*>(p); }

    // The query text with each parameter shown as '?', for messages.
    std::string describe() const;

    // One parameter or literal, resolved to a value when the query runs.
    struct Value
    {
        enum Kind { Integer, Real, Text } kind = Integer;
        long long i = 0;
        double d = 0;
        const char* s = ""; // Text: NUL-terminated bytes
    };
    struct Param
    {
        enum Kind { Int, Real, Text, IntRef, UIntRef, FloatRef, DoubleRef, TextRef } kind = Int;
        long long i = 0;
        double d = 0;
        std::uint32_t text = 0; // Text: where its bytes start in the owner's text store
        const void* ref = nullptr;
        // `texts` is the text store of the query or of the compiled shape that holds it.
        Value resolve(const char* texts) const;
    };
    enum Op { Eq, Ne, Lt, Le, Gt, Ge };
    struct Condition
    {
        const dbFieldDescriptor* field;
        Op op;
        int param;     // index into params, or -1 when the value is a literal
        Param literal; // the literal's value when param is -1; its text in `literals`
    };
    struct Order
    {
        const dbFieldDescriptor* field;
        bool descending;
    };
    struct Compiled
    {
        std::vector<Condition> conditions;
        std::vector<Order> order;
        std::string literals; // the bytes of text literals, each NUL-terminated
    };
    // Parses the text against a record class. False with a message on a syntax error, an
    // unknown field or a value of the wrong kind for its field.
    bool compile(const dbTableDescriptor& table, Compiled& out, std::string& error) const;
    // The same, remembered by this thread for the query's shape (its text pieces and which
    // parameters are texts) on this table, so that a query built anew for every row with
    // new values is parsed once. The result stays good until the thread's next call.
    const Compiled* compileShape(const dbTableDescriptor& table, std::string& error) const;

    std::size_t paramCount() const { return m_params.size(); }
    const Param& param(std::size_t i) const { return m_params[i]; }
    // The bytes of the text parameters.
    const char* paramTexts() const { return m_texts.data(); }

private:
    dbQuery& addParam(const Param& p);
    std::string m_text; // text pieces; each parameter stands as '\x01'
    InlineVector<Param, 2> m_params;
    InlineVector<char, 48> m_texts; // text parameters' bytes, each NUL-terminated
    bool m_expectParam = false;
};
