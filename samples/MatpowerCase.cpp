// MATPOWER case files, read and written from the documented case format (version 2): a
// MATLAB function that assigns the fields of a struct, numbers in matrices of one row per
// element, `%` comments, `...` continuing a line, rows ended by `;` or a line break, values
// parted by blanks or commas, and texts in single quotes ('' for a quote) in cell arrays.
// MATLAB's `Inf` leaves a limit unbounded; it is taken where a limit or rating stands.

#include "SampleNetwork.h"

#include "common/GbkWidth.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <charconv>
#include <cmath>
#include <cstring>
#include <map>
#include <set>
#include <string_view>

namespace samples {
namespace {

// The documented columns, 1-based.
enum BusColumn { BUS_I = 1, BUS_TYPE, PD, QD, GS, BS, BUS_AREA, VM, VA, BASE_KV, ZONE, VMAX, VMIN };
enum GenColumn { GEN_BUS = 1, PG, QG, QMAX, QMIN, VG, MBASE, GEN_STATUS, PMAX, PMIN, PC1, APF = 21 };
enum BranchColumn { F_BUS = 1, T_BUS, BR_R, BR_X, BR_B, RATE_A, RATE_B, RATE_C, TAP, SHIFT,
                    BR_STATUS, ANGMIN, ANGMAX };
// The fewest columns a row may have: the power-flow data. Generator rows of version 1 files
// stop at Pmin, branch rows at the status; what follows is optional here.
constexpr int kBusColumns = VMIN, kGenColumns = PMIN, kBranchColumns = BR_STATUS;

struct Token
{
    enum Kind { Word, Text, Symbol, LineEnd, End, Bad } kind = End;
    std::string_view text; // a word, a text between its quotes, a symbol; Bad: the reason
    int line = 0;
};

// Splits a case file into words (numbers, field names and anything else), quoted texts,
// the symbols = [ ] { } ; , and line ends; comments and continuations are skipped.
class Scanner
{
public:
    explicit Scanner(const QByteArray& data)
        : m_p(data.constData()), m_end(data.constData() + data.size())
    {}

    Token next()
    {
        for (;;) {
            if (m_p == m_end) {
                return {Token::End, {}, m_line};
            }
            const char c = *m_p;
            if (c == ' ' || c == '\t' || c == '\r') {
                ++m_p;
            } else if (c == '%') {
                skipLine(false);
            } else if (continuation()) {
                skipLine(true); // the rest of the line is a comment; the statement goes on
            } else if (c == '\n') {
                ++m_p;
                return {Token::LineEnd, {}, m_line++};
            } else if (std::strchr("=[]{};,", c)) {
                return {Token::Symbol, std::string_view(m_p++, 1), m_line};
            } else if (c == '\'') {
                return quoted();
            } else {
                const char* begin = m_p;
                while (m_p != m_end && !std::strchr(" \t\r\n%=[]{};,'", *m_p) && !continuation()) {
                    ++m_p;
                }
                return {Token::Word, std::string_view(begin, std::size_t(m_p - begin)), m_line};
            }
        }
    }

private:
    bool continuation() const
    {
        return m_end - m_p >= 3 && m_p[0] == '.' && m_p[1] == '.' && m_p[2] == '.';
    }
    void skipLine(bool joinNext)
    {
        while (m_p != m_end && *m_p != '\n') {
            ++m_p;
        }
        if (joinNext && m_p != m_end) {
            ++m_p;
            ++m_line;
        }
    }
    Token quoted()
    {
        const char* begin = ++m_p;
        for (; m_p != m_end && *m_p != '\n'; ++m_p) {
            if (*m_p == '\'') {
                if (m_end - m_p >= 2 && m_p[1] == '\'') {
                    ++m_p; // '' stands for one quote
                    continue;
                }
                return {Token::Text, std::string_view(begin, std::size_t(m_p++ - begin)), m_line};
            }
        }
        return {Token::Bad, "a text in quotes is not closed on its line", m_line};
    }

    const char* m_p;
    const char* m_end;
    int m_line = 1;
};

// A matrix as the file gives it: values row by row, the line of each row.
struct Matrix
{
    int line = 0, columns = 0;
    std::vector<double> values;
    std::vector<int> rowLines;
    int rows() const { return int(rowLines.size()); }
    double at(int row, int column) const { return values[std::size_t(row) * columns + column - 1]; }
};

struct CaseText
{
    std::map<QByteArray, int> fieldLines; // every field assigned, with its line
    std::map<QByteArray, Matrix> matrices;
    std::map<QByteArray, double> scalars;
    std::map<QByteArray, QByteArray> texts;
    std::vector<QString> busNames;
    int lastLine = 1;
};

QString quote(std::string_view s)
{
    return QStringLiteral("'%1'").arg(QString::fromUtf8(s.data(), int(s.size())));
}

// A number as MATLAB writes one, signed or not, `Inf` (or `inf`) among them; false for
// anything else, NaN too. Where an infinity may stand is for the reader of the fields to say.
bool parseNumber(std::string_view s, double& v)
{
    bool negative = false;
    if (!s.empty() && (s[0] == '+' || s[0] == '-')) {
        negative = s[0] == '-';
        s.remove_prefix(1);
    }
    if (s == "Inf" || s == "inf") {
        v = negative ? -HUGE_VAL : HUGE_VAL;
        return true;
    }
    const auto [end, ec] = std::from_chars(s.data(), s.data() + s.size(), v);
    v = negative ? -v : v;
    return ec == std::errc() && end == s.data() + s.size() && s[0] != '-' && std::isfinite(v);
}

class Parser
{
public:
    Parser(const QByteArray& data, CaseText& out) : m_scan(data), m_out(out) {}

    // False with `line` and `why` set.
    bool parse(int& line, QString& why)
    {
        for (;;) {
            Token t = m_scan.next();
            if (t.kind == Token::End) {
                return true;
            }
            m_out.lastLine = t.line;
            if (t.kind == Token::LineEnd || t.text == ";" || t.text == ",") {
                continue;
            }
            if (t.kind == Token::Word && (t.text == "function" || t.text == "end" ||
                                          t.text == "return")) {
                while (t.kind != Token::LineEnd && t.kind != Token::End) {
                    t = m_scan.next(); // the function's header: its name is the case's
                }
                continue;
            }
            if (!assignment(t)) {
                line = m_line;
                why = m_why;
                return false;
            }
        }
    }

private:
    bool fail(int line, const QString& why)
    {
        m_line = line;
        m_why = why;
        return false;
    }

    // `<struct>.<field> = value`, the value a number, a text, a matrix or a cell array.
    bool assignment(const Token& name)
    {
        const std::size_t dot = name.text.find('.');
        if (name.kind != Token::Word || dot == std::string_view::npos || dot == 0) {
            return fail(name.line, QStringLiteral("cannot read %1 here: a case file assigns "
                                                  "the fields of its struct (mpc.bus = [...];)")
                                       .arg(name.kind == Token::Bad ? QString::fromUtf8(name.text.data(), int(name.text.size()))
                                                                    : quote(name.text)));
        }
        const QByteArray field(name.text.data() + dot + 1, int(name.text.size() - dot - 1));
        const Token eq = m_scan.next();
        if (eq.text != "=" || eq.kind != Token::Symbol) {
            return fail(name.line, QStringLiteral("%1 is not followed by =").arg(quote(name.text)));
        }
        m_out.fieldLines[field] = name.line;
        const Token v = m_scan.next();
        if (v.kind == Token::Symbol && v.text == "[") {
            Matrix m;
            m.line = name.line;
            if (!matrix(field, m)) {
                return false;
            }
            m_out.matrices[field] = std::move(m);
        } else if (v.kind == Token::Symbol && v.text == "{") {
            if (!cells(field)) {
                return false;
            }
        } else if (v.kind == Token::Text) {
            m_out.texts[field] = QByteArray(v.text.data(), int(v.text.size()));
        } else if (v.kind == Token::Word) {
            double x = 0;
            if (!parseNumber(v.text, x)) {
                return fail(v.line, QStringLiteral("%1 in mpc.%2 is not a number")
                                        .arg(quote(v.text), QString::fromLatin1(field)));
            }
            m_out.scalars[field] = x;
        } else {
            return fail(name.line, QStringLiteral("mpc.%1 has no value").arg(QString::fromLatin1(field)));
        }
        const Token after = m_scan.next();
        if (after.kind == Token::LineEnd || after.kind == Token::End ||
            (after.kind == Token::Symbol && (after.text == ";" || after.text == ","))) {
            return true;
        }
        return fail(after.line, QStringLiteral("%1 after the value of mpc.%2")
                                    .arg(after.kind == Token::Bad ? QString::fromUtf8(after.text.data(), int(after.text.size()))
                                                                  : "unexpected " + quote(after.text),
                                         QString::fromLatin1(field)));
    }

    bool matrix(const QByteArray& field, Matrix& m)
    {
        const QString name = "mpc." + QString::fromLatin1(field);
        int rowValues = 0, rowLine = 0;
        auto endRow = [&](int line) {
            if (rowValues == 0) {
                return true;
            }
            if (m.rows() == 0) {
                m.columns = rowValues;
            } else if (rowValues != m.columns) {
                return fail(rowLine, QStringLiteral("this row of %1 has %2 values, the rows "
                                                    "above have %3")
                                         .arg(name)
                                         .arg(rowValues)
                                         .arg(m.columns));
            }
            m.rowLines.push_back(rowLine);
            rowValues = 0;
            (void)line;
            return true;
        };
        for (;;) {
            const Token t = m_scan.next();
            if (t.kind == Token::Word) {
                double v = 0;
                if (!parseNumber(t.text, v)) {
                    return fail(t.line, QStringLiteral("%1 in %2 is not a number")
                                            .arg(quote(t.text), name));
                }
                if (rowValues++ == 0) {
                    rowLine = t.line;
                }
                m.values.push_back(v);
            } else if (t.kind == Token::LineEnd || (t.kind == Token::Symbol && t.text == ";")) {
                if (!endRow(t.line)) {
                    return false;
                }
            } else if (t.kind == Token::Symbol && t.text == "]") {
                return endRow(t.line);
            } else if (t.kind == Token::End) {
                return fail(m.line, QStringLiteral("%1 is not closed with ]").arg(name));
            } else if (t.kind == Token::Bad) {
                return fail(t.line, QString::fromUtf8(t.text.data(), int(t.text.size())));
            } else if (!(t.kind == Token::Symbol && t.text == ",")) {
                return fail(t.line, QStringLiteral("unexpected %1 in %2").arg(quote(t.text), name));
            }
        }
    }

    // A cell array of texts (and numbers, which only the bus names would not take).
    bool cells(const QByteArray& field)
    {
        const bool names = field == "bus_name";
        for (;;) {
            const Token t = m_scan.next();
            if (t.kind == Token::Text) {
                if (names) {
                    QString s = QString::fromUtf8(t.text.data(), int(t.text.size()));
                    s.replace(QLatin1String("''"), QLatin1String("'"));
                    m_out.busNames.push_back(s.trimmed());
                }
            } else if (t.kind == Token::Symbol && t.text == "}") {
                return true;
            } else if (t.kind == Token::End) {
                return fail(m_out.fieldLines[field],
                            QStringLiteral("mpc.%1 is not closed with }").arg(QString::fromLatin1(field)));
            } else if (t.kind == Token::Bad) {
                return fail(t.line, QString::fromUtf8(t.text.data(), int(t.text.size())));
            } else if (names && t.kind == Token::Word) {
                return fail(t.line, QStringLiteral("a bus name in mpc.bus_name is a text in "
                                                   "quotes, not %1")
                                        .arg(quote(t.text)));
            }
        }
    }

    Scanner m_scan;
    CaseText& m_out;
    int m_line = 0;
    QString m_why;
};

bool whole(double v, int& out)
{
    if (v != std::floor(v) || std::abs(v) > 2e9) {
        return false;
    }
    out = int(v);
    return true;
}

// What the other fields of a case hold, for the line that says they are left out.
QString fieldMeaning(const QByteArray& field)
{
    static const std::map<QByteArray, QString> known = {
        {"gencost", QStringLiteral("generator costs")},
        {"areas", QStringLiteral("the areas' price reference buses")},
        {"dcline", QStringLiteral("DC lines")},
        {"dclinecost", QStringLiteral("DC line costs")},
        {"gentype", QStringLiteral("generator types")},
        {"genfuel", QStringLiteral("generator fuels")},
        {"A", QStringLiteral("user constraints")},
        {"N", QStringLiteral("user costs")}};
    const auto it = known.find(field);
    return it == known.end() ? QStringLiteral("a field this program does not know") : it->second;
}

} // namespace

QString BusName(const Bus& bus)
{
    return bus.name.isEmpty() ? QStringLiteral("B%1").arg(bus.num) : bus.name;
}

bool ReadMatpowerCase(const QString& path, Network& net, QStringList& notHeld, QString& error)
{
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly)) {
        error = "cannot open " + path + ": " + f.errorString();
        return false;
    }
    const QByteArray data = f.readAll();
    const QString file = QFileInfo(path).fileName();
    auto fail = [&](int line, const QString& why) {
        error = QStringLiteral("%1:%2: %3").arg(file).arg(line).arg(why);
        return false;
    };
    CaseText c;
    {
        int line = 0;
        QString why;
        if (!Parser(data, c).parse(line, why)) {
            return fail(line, why);
        }
    }
    if (c.texts.count("version") && c.texts["version"] != "2") {
        return fail(c.fieldLines["version"],
                    QStringLiteral("this is a version %1 case; only version 2 cases are read")
                        .arg(QString::fromUtf8(c.texts["version"])));
    }
    for (const char* field : {"baseMVA", "bus", "gen", "branch"}) {
        const bool scalar = std::strcmp(field, "baseMVA") == 0;
        if (scalar ? !c.scalars.count(field) : !c.matrices.count(field)) {
            return fail(c.lastLine, QStringLiteral("the case has no %1 mpc.%2")
                                        .arg(scalar ? "number" : "matrix", field));
        }
    }
    const Matrix& bm = c.matrices["bus"];
    const Matrix& gm = c.matrices["gen"];
    const Matrix& rm = c.matrices["branch"];
    const std::pair<const Matrix*, std::pair<const char*, int>> shapes[] = {
        {&bm, {"bus", kBusColumns}}, {&gm, {"gen", kGenColumns}}, {&rm, {"branch", kBranchColumns}}};
    for (const auto& [m, shape] : shapes) {
        if (m->rows() > 0 && m->columns < shape.second) {
            return fail(m->rowLines[0], QStringLiteral("a row of mpc.%1 needs at least %2 "
                                                       "values, this one has %3")
                                            .arg(shape.first)
                                            .arg(shape.second)
                                            .arg(m->columns));
        }
    }
    // Inf is how a case leaves a limit unbounded: a generator's Q and P limits, a branch's
    // ratings and angle limits, and the columns left out anyway may hold it; the rest are
    // quantities the tables need as numbers.
    struct Finite
    {
        const Matrix* m;
        const char* field;
        std::vector<const char*> columns; // by column: its name if it must be finite, else ""
    };
    const Finite finite[] = {
        {&bm,
         "bus",
         {"bus_i", "type", "Pd", "Qd", "Gs", "Bs", "area", "Vm", "Va", "baseKV", "zone", "Vmax",
          "Vmin"}},
        {&gm, "gen", {"bus", "Pg", "Qg", "", "", "Vg", "mBase", "status"}},
        {&rm, "branch", {"fbus", "tbus", "r", "x", "b", "", "", "", "ratio", "angle", "status"}}};
    for (const Finite& f : finite) {
        for (int r = 0; r < f.m->rows(); ++r) {
            for (int k = 1; k <= std::min(int(f.columns.size()), f.m->columns); ++k) {
                const double v = f.m->at(r, k);
                if (!std::isfinite(v) && *f.columns[std::size_t(k - 1)]) {
                    return fail(f.m->rowLines[r],
                                QStringLiteral("%1 as %2 (column %3 of mpc.%4): only limits and "
                                               "ratings may be unbounded")
                                    .arg(v < 0 ? "-Inf" : "Inf", f.columns[std::size_t(k - 1)])
                                    .arg(k)
                                    .arg(f.field));
                }
            }
        }
    }
    net = Network();
    net.name = QFileInfo(path).completeBaseName();
    net.baseMVA = c.scalars["baseMVA"];
    if (!(net.baseMVA > 0) || !std::isfinite(net.baseMVA)) {
        return fail(c.fieldLines["baseMVA"],
                    QStringLiteral("mpc.baseMVA must be a number above 0"));
    }

    // Buses.
    std::map<int, int> busRow; // bus number -> row
    std::map<int, int> zoneArea;
    int otherArea = 0, otherAreaBus = 0, unbasedLimits = 0, startValues = 0;
    for (int r = 0; r < bm.rows(); ++r) {
        const int line = bm.rowLines[r];
        Bus b;
        int type = 0;
        if (!whole(bm.at(r, BUS_I), b.num) || b.num < 1) {
            return fail(line, QStringLiteral("bus number %1 is not a whole number from 1 up")
                                  .arg(bm.at(r, BUS_I)));
        }
        if (!busRow.emplace(b.num, r).second) {
            return fail(line, QStringLiteral("bus %1 is given twice (first on line %2)")
                                  .arg(b.num)
                                  .arg(bm.rowLines[busRow[b.num]]));
        }
        if (!whole(bm.at(r, BUS_TYPE), type) || type < 1 || type > 4) {
            return fail(line, QStringLiteral("bus %1 has type %2 (1 PQ, 2 PV, 3 reference, 4 "
                                             "isolated)")
                                  .arg(b.num)
                                  .arg(bm.at(r, BUS_TYPE)));
        }
        if (!whole(bm.at(r, BUS_AREA), b.area) || !whole(bm.at(r, ZONE), b.zone)) {
            return fail(line, QStringLiteral("bus %1: its area and zone are whole numbers").arg(b.num));
        }
        b.type = type;
        b.pdMW = bm.at(r, PD);
        b.qdMVAr = bm.at(r, QD);
        b.gsMW = bm.at(r, GS);
        b.bsMVAr = bm.at(r, BS);
        b.vm = bm.at(r, VM);
        b.vaDeg = bm.at(r, VA);
        b.baseKV = bm.at(r, BASE_KV);
        b.vmax = bm.at(r, VMAX);
        b.vmin = bm.at(r, VMIN);
        // One area per zone: the zone table holds the pair, the bus table only the zone.
        const auto [zone, fresh] = zoneArea.emplace(b.zone, b.area);
        if (!fresh && zone->second != b.area && otherArea++ == 0) {
            otherAreaBus = b.num;
        }
        unbasedLimits += b.baseKV > 0 ? 0 : 1;
        startValues += (b.vm != 1 || (b.vaDeg != 0 && type != 3)) ? 1 : 0;
        net.buses.push_back(b);
    }
    if (!c.busNames.empty() || c.fieldLines.count("bus_name")) {
        const int line = c.fieldLines["bus_name"];
        if (int(c.busNames.size()) != bm.rows()) {
            return fail(line, QStringLiteral("mpc.bus_name has %1 names for %2 buses")
                                  .arg(c.busNames.size())
                                  .arg(bm.rows()));
        }
        std::map<QString, int> seen;
        for (int r = 0; r < bm.rows(); ++r) {
            const QString& name = c.busNames[std::size_t(r)];
            Bus& b = net.buses[std::size_t(r)];
            if (GbkWidth(name) > kNameBytes) {
                return fail(line, QStringLiteral("the name '%1' of bus %2 takes %3 bytes; the "
                                                 "base tables hold %4")
                                      .arg(name)
                                      .arg(b.num)
                                      .arg(GbkWidth(name))
                                      .arg(kNameBytes));
            }
            const auto [it, fresh] = seen.emplace(name.isEmpty() ? BusName(b) : name, b.num);
            if (!fresh) {
                return fail(line, QStringLiteral("buses %1 and %2 have the same name '%3'")
                                      .arg(it->second)
                                      .arg(b.num)
                                      .arg(it->first));
            }
            b.name = name;
        }
    }

    // Generators.
    std::set<int> liveGenBus;
    int capability = 0, unbounded = 0;
    for (int r = 0; r < gm.rows(); ++r) {
        Gen g;
        if (!whole(gm.at(r, GEN_BUS), g.bus) || !busRow.count(g.bus)) {
            return fail(gm.rowLines[r], QStringLiteral("generator at bus %1: there is no such bus")
                                            .arg(gm.at(r, GEN_BUS)));
        }
        g.pgMW = gm.at(r, PG);
        g.qgMVAr = gm.at(r, QG);
        g.qmax = gm.at(r, QMAX);
        g.qmin = gm.at(r, QMIN);
        g.vg = gm.at(r, VG);
        g.mBase = gm.at(r, MBASE);
        g.status = gm.at(r, GEN_STATUS) > 0 ? 1 : 0;
        g.pmax = gm.at(r, PMAX);
        g.pmin = gm.at(r, PMIN);
        const bool bounded = std::isfinite(g.qmax) && std::isfinite(g.qmin) &&
                             std::isfinite(g.pmax) && std::isfinite(g.pmin);
        unbounded += bounded ? 0 : 1;
        for (int k = PC1; k <= std::min(int(APF), gm.columns); ++k) {
            if (gm.at(r, k) != 0) {
                ++capability;
                break;
            }
        }
        if (g.status) {
            liveGenBus.insert(g.bus);
        }
        net.gens.push_back(g);
    }
    bool reference = false;
    for (int r = 0; r < bm.rows(); ++r) {
        const Bus& b = net.buses[std::size_t(r)];
        if (b.type == 3) {
            reference = true;
            if (!liveGenBus.count(b.num)) {
                return fail(bm.rowLines[r], QStringLiteral("the reference bus %1 has no "
                                                           "generator in service")
                                                .arg(b.num));
            }
        }
    }
    if (!reference) {
        return fail(bm.line, QStringLiteral("mpc.bus has no reference bus (type 3)"));
    }

    // Branches.
    int rates = 0, angleLimits = 0, zeroLost = 0, unratedLines = 0;
    for (int r = 0; r < rm.rows(); ++r) {
        const int line = rm.rowLines[r];
        Branch br;
        if (!whole(rm.at(r, F_BUS), br.from) || !whole(rm.at(r, T_BUS), br.to)) {
            return fail(line, QStringLiteral("a branch's ends are bus numbers"));
        }
        for (const int end : {br.from, br.to}) {
            if (!busRow.count(end)) {
                return fail(line, QStringLiteral("branch from bus %1 to bus %2: there is no bus %3")
                                      .arg(br.from)
                                      .arg(br.to)
                                      .arg(end));
            }
        }
        if (br.from == br.to) {
            return fail(line, QStringLiteral("branch from bus %1 to itself").arg(br.from));
        }
        br.r = rm.at(r, BR_R);
        br.x = rm.at(r, BR_X);
        br.b = rm.at(r, BR_B);
        // An unbounded rating (Inf) is the unlimited one, which MATPOWER writes 0.
        auto rating = [&](int column) {
            const double v = rm.at(r, column);
            return std::isfinite(v) ? v : 0.0;
        };
        br.rateMVA = rating(RATE_A);
        br.ratio = rm.at(r, TAP);
        br.angleDeg = rm.at(r, SHIFT);
        br.status = rm.at(r, BR_STATUS) > 0 ? 1 : 0;
        const double kvFrom = net.buses[std::size_t(busRow[br.from])].baseKV;
        const double kvTo = net.buses[std::size_t(busRow[br.to])].baseKV;
        // A branch between two base voltages is a transformer, even one written with
        // ratio 0 (which reads as 1).
        br.transformer = br.ratio != 0 || br.angleDeg != 0 || kvFrom != kvTo;
        rates += (rating(RATE_B) != 0 || rating(RATE_C) != 0) ? 1 : 0;
        if (rm.columns >= ANGMAX) {
            const double lo = rm.at(r, ANGMIN), hi = rm.at(r, ANGMAX);
            angleLimits += (lo > -360 || hi < 360) && !(lo == 0 && hi == 0) ? 1 : 0;
        }
        if (br.r == 0 && br.x == 0) {
            zeroLost += (br.b != 0 || (br.ratio != 0 && br.ratio != 1) || br.angleDeg != 0) ? 1 : 0;
        } else if (!br.transformer && br.rateMVA != 0 && !(kvFrom > 0)) {
            ++unratedLines;
        }
        net.branches.push_back(br);
    }

    // What the base tables cannot hold, a line for each kind.
    for (const auto& [field, line] : c.fieldLines) {
        if (field != "version" && field != "baseMVA" && field != "bus" && field != "gen" &&
            field != "branch" && field != "bus_name") {
            notHeld << QStringLiteral("mpc.%1 (%2, line %3): left out")
                           .arg(QString::fromLatin1(field), fieldMeaning(field))
                           .arg(line);
        }
    }
    auto count = [&](int n, const QString& what) {
        if (n > 0) {
            notHeld << what.arg(n);
        }
    };
    count(startValues, QStringLiteral("the voltages Vm and Va of %1 buses (a starting point or "
                                      "an earlier solution): left out; the study starts flat, "
                                      "from the generators' set points"));
    count(unbasedLimits, QStringLiteral("the voltage limits of %1 buses without a base voltage "
                                        "(the bus table holds them in kV): left out"));
    if (otherArea > 0) {
        notHeld << QStringLiteral("the area of %1 buses, whose zone lies in another area (the "
                                  "zone table gives each zone one area; bus %2 is the first): "
                                  "left out")
                       .arg(otherArea)
                       .arg(otherAreaBus);
    }
    count(unbounded, QStringLiteral("the unbounded Q or P limits (Inf) of %1 generators: held "
                                    "as %2 MVAr or MW, with their sign (the tables hold numbers)")
                         .arg("%1", QString::number(kUnboundedLimit)));
    count(capability, QStringLiteral("the capability and ramp data (Pc1 to apf) of %1 "
                                     "generators: left out"));
    count(rates, QStringLiteral("the ratings B and C of %1 branches (the tables hold one rating, "
                                "rating A): left out"));
    count(unratedLines, QStringLiteral("the ratings of %1 lines from a bus without a base voltage "
                                       "(the line table holds kA): left out"));
    count(angleLimits, QStringLiteral("the angle difference limits of %1 branches: left out"));
    count(zeroLost, QStringLiteral("the charging, ratio or phase shift of %1 branches of zero "
                                   "impedance, which become closed breakers: left out"));
    const std::pair<const Matrix*, std::pair<const char*, int>> results[] = {
        {&bm, {"bus", kBusColumns}}, {&gm, {"gen", APF}}, {&rm, {"branch", ANGMAX}}};
    for (const auto& [m, shape] : results) {
        if (m->columns > shape.second) {
            notHeld << QStringLiteral("mpc.%1 columns %2 to %3 (results of an earlier solution): "
                                      "left out")
                           .arg(shape.first)
                           .arg(shape.second + 1)
                           .arg(m->columns);
        }
    }
    return true;
}

namespace {

void appendNumber(QByteArray& out, double v)
{
    char buf[32];
    const auto [end, ec] = std::to_chars(buf, buf + sizeof buf, v); // the shortest exact form
    out.append(buf, int(ec == std::errc() ? end - buf : 0));
}

void appendRow(QByteArray& out, std::initializer_list<double> values)
{
    for (const double v : values) {
        out += '\t';
        appendNumber(out, v);
    }
    out += ";\n";
}

} // namespace

bool WriteMatpowerCase(const QString& path, const Network& net, QString& error)
{
    // The function's name is the file's, as MATLAB wants it: letters, digits and _.
    QString function = QFileInfo(path).completeBaseName();
    for (QChar& ch : function) {
        if (!(ch.isLetterOrNumber() && ch.unicode() < 0x80) && ch != '_') {
            ch = '_';
        }
    }
    if (function.isEmpty() || !function[0].isLetter()) {
        function.prepend(QStringLiteral("case_"));
    }
    QByteArray out;
    out.reserve(int(200 + 110 * net.buses.size() + 130 * net.gens.size() +
                    90 * net.branches.size()));
    out += "function mpc = " + function.toUtf8() + "\n%" + function.toUpper().toUtf8() +
           "  " + net.name.toUtf8() +
           ": the network and its load-flow solution as calcdata_demo solved it.\n"
           "%   Bus Vm and Va and the generators' Pg and Qg are the solution.\n\n"
           "%% MATPOWER Case Format : Version 2\nmpc.version = '2';\n\n"
           "%% system MVA base\nmpc.baseMVA = ";
    appendNumber(out, net.baseMVA);
    out += ";\n\n%% bus data\n%\tbus_i\ttype\tPd\tQd\tGs\tBs\tarea\tVm\tVa\tbaseKV\tzone\tVmax"
           "\tVmin\nmpc.bus = [\n";
    bool named = false;
    for (const Bus& b : net.buses) {
        appendRow(out, {double(b.num), double(b.type), b.pdMW, b.qdMVAr, b.gsMW, b.bsMVAr,
                        double(b.area), b.vm, b.vaDeg, b.baseKV, double(b.zone), b.vmax, b.vmin});
        named = named || !b.name.isEmpty();
    }
    out += "];\n\n%% generator data\n%\tbus\tPg\tQg\tQmax\tQmin\tVg\tmBase\tstatus\tPmax\tPmin"
           "\tPc1\tPc2\tQc1min\tQc1max\tQc2min\tQc2max\tramp_agc\tramp_10\tramp_30\tramp_q\tapf\n"
           "mpc.gen = [\n";
    for (const Gen& g : net.gens) {
        appendRow(out, {double(g.bus), g.pgMW, g.qgMVAr, g.qmax, g.qmin, g.vg, g.mBase,
                        double(g.status), g.pmax, g.pmin, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0});
    }
    out += "];\n\n%% branch data\n%\tfbus\ttbus\tr\tx\tb\trateA\trateB\trateC\tratio\tangle"
           "\tstatus\tangmin\tangmax\nmpc.branch = [\n";
    for (const Branch& br : net.branches) {
        appendRow(out, {double(br.from), double(br.to), br.r, br.x, br.b, br.rateMVA, 0, 0,
                        br.ratio, br.angleDeg, double(br.status), -360, 360});
    }
    out += "];\n";
    if (named) {
        out += "\n%% bus names\nmpc.bus_name = {\n";
        for (const Bus& b : net.buses) {
            out += "\t'" + QString(b.name).replace('\'', QLatin1String("''")).toUtf8() + "';\n";
        }
        out += "};\n";
    }
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(out) != out.size() || !file.commit()) {
        error = QStringLiteral("cannot write %1: %2").arg(path, file.errorString());
        return false;
    }
    return true;
}

} // namespace samples
