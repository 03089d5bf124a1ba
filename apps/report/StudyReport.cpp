#include "StudyReport.h"

#include "ReportCharts.h"
#include "ResultFiles.h"
#include "SampleNetwork.h"

#include <QDateTime>
#include <QDir>
#include <QElapsedTimer>
#include <QHash>
#include <QSaveFile>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>
#include <algorithm>
#include <cmath>

namespace report {
namespace {

// A voltage counts as outside its limits only beyond this margin (pu): the solved voltage
// of a bus held at its limit, read back through the records' single precision, may lie a
// few 1e-8 beyond it.
const double kLimitMargin = 1e-5;
// How many rows the long lists show; the rest is counted.
const int kTopRows = 20;
const int kOutsideRows = 500;

// Each element of the network file by the name the base database gives it.
template <class Element, class Name>
QHash<QString, const Element*> ByName(const std::vector<Element>& elements, Name name)
{
    QHash<QString, const Element*> byName;
    byName.reserve(int(elements.size()));
    for (size_t k = 0; k < elements.size(); ++k) {
        byName.insert(name(elements[k], int(k) + 1), &elements[k]);
    }
    return byName;
}

QString Esc(const QString& text)
{
    return text.toHtmlEscaped();
}

QString Num(double v, int decimals)
{
    return QString::number(v, 'f', decimals);
}

// The page, written as well-formed XHTML so that any XML reader checks it.
class Page
{
public:
    void add(const QString& html) { m_html += html + QLatin1Char('\n'); }
    void heading(const QString& text, const QString& id)
    {
        add(QStringLiteral("<h2 id=\"%1\">%2</h2>").arg(id, Esc(text)));
    }
    void paragraph(const QString& text) { add(QStringLiteral("<p>%1</p>").arg(Esc(text))); }
    // Cells are plain text; numbers are set to the right.
    void table(const QString& id, const QStringList& headers,
               const std::vector<QStringList>& rows, const std::vector<bool>& marked = {})
    {
        add(QStringLiteral("<table id=\"%1\"><thead><tr>").arg(id));
        for (const QString& h : headers) {
            add(QStringLiteral("<th>%1</th>").arg(Esc(h)));
        }
        add(QStringLiteral("</tr></thead><tbody>"));
        for (size_t r = 0; r < rows.size(); ++r) {
            add(r < marked.size() && marked[r] ? QStringLiteral("<tr class=\"out\">")
                                               : QStringLiteral("<tr>"));
            for (int c = 0; c < rows[r].size(); ++c) {
                bool number = false;
                rows[r][c].toDouble(&number);
                add(QStringLiteral("<td%1>%2</td>")
                        .arg(number ? QStringLiteral(" class=\"n\"") : QString(),
                             Esc(rows[r][c])));
            }
            add(QStringLiteral("</tr>"));
        }
        add(QStringLiteral("</tbody></table>"));
    }
    void image(const QString& file, const QImage& image, const QString& alt)
    {
        add(QStringLiteral("<p><img src=\"%1\" width=\"%2\" height=\"%3\" alt=\"%4\"/></p>")
                .arg(file)
                .arg(image.width())
                .arg(image.height())
                .arg(Esc(alt)));
    }
    const QString& html() const { return m_html; }

private:
    QString m_html;
};

const char* const kStyle =
    "body{font-family:'WenQuanYi Micro Hei',sans-serif;max-width:1040px;margin:1em auto;"
    "color:#222}h1{font-size:1.5em}h2{font-size:1.2em;margin-top:1.6em;border-bottom:1px solid "
    "#ccc}table{border-collapse:collapse;margin:.5em 0}th,td{border:1px solid #ccc;padding:2px "
    "8px}th{background:#f0f0f0}td.n{text-align:right;font-variant-numeric:tabular-nums}"
    "tr.out td{background:#ffe8cc}img{max-width:100%;height:auto}";

struct BranchLoading
{
    QString name, kind, from, to;
    double mva = 0;    // the larger end's apparent power
    double rating = 0; // rateA (MVA), 0 unrated
    double loading = std::nan("");
};

// The first `count` rows by `before`, kept while the rows pass: a heap whose top is the
// row that leaves first.
template <class T, class Before>
class Best
{
public:
    Best(size_t count, Before before) : m_count(count), m_before(before) {}
    void offer(const T& row)
    {
        if (m_rows.size() < m_count) {
            m_rows.push_back(row);
            std::push_heap(m_rows.begin(), m_rows.end(), m_before);
        } else if (m_count > 0 && m_before(row, m_rows.front())) {
            std::pop_heap(m_rows.begin(), m_rows.end(), m_before);
            m_rows.back() = row;
            std::push_heap(m_rows.begin(), m_rows.end(), m_before);
        }
    }
    std::vector<T> sorted() const
    {
        std::vector<T> rows = m_rows;
        std::sort_heap(rows.begin(), rows.end(), m_before);
        return rows;
    }

private:
    size_t m_count;
    Before m_before;
    std::vector<T> m_rows;
};

template <class T, class Before>
std::vector<T> Top(const std::vector<T>& rows, size_t count, Before before)
{
    Best<T, Before> best(count, before);
    for (const T& row : rows) {
        best.offer(row);
    }
    return best.sorted();
}

bool Query(QSqlQuery& q, const QString& sql, QString& error)
{
    q.setForwardOnly(true);
    if (!q.exec(sql)) {
        error = QStringLiteral("cannot read the results for the report: %1")
                    .arg(q.lastError().text());
        return false;
    }
    return true;
}

bool SaveImage(const QImage& image, const QString& path, QString& error)
{
    if (!image.save(path, "PNG")) {
        error = QStringLiteral("cannot write %1").arg(path);
        return false;
    }
    return true;
}

} // namespace

bool ReadVoltageProfile(QSqlDatabase* db, int job, const samples::Network& net,
                        std::vector<ProfileBus>& buses, int& unsolved, QString& error)
{
    QSqlQuery q(*db);
    if (!Query(q,
               QStringLiteral("SELECT Bus_Name, V FROM LFR_BS_R WHERE Case_No=%1")
                   .arg(job),
               error)) {
        return false;
    }
    QHash<QString, double> voltage;
    while (q.next()) {
        voltage.insert(q.value(0).toString(), q.value(1).toDouble());
    }
    buses.clear();
    buses.reserve(net.buses.size());
    unsolved = 0;
    for (const samples::Bus& b : net.buses) {
        const auto v = voltage.constFind(samples::BusName(b));
        if (v == voltage.constEnd() || *v <= 0) {
            ++unsolved;
            continue;
        }
        buses.push_back({samples::BusName(b), *v, b.vmin, b.vmax,
                         *v > b.vmax + kLimitMargin || *v < b.vmin - kLimitMargin});
    }
    return true;
}

bool WriteStudyReport(const QString& dir, const ReportInput& in, QString& error)
{
    QElapsedTimer timer;
    timer.start();
    const samples::Network& net = *in.net;
    const demo::Study& study = *in.study;
    const int job = study.job();
    const double sb = study.basePower();
    if (!QDir().mkpath(dir)) {
        error = QStringLiteral("cannot make the folder %1").arg(dir);
        return false;
    }
    const QDir out(dir);
    Page page;
    QSqlQuery q(*in.db);

    // ---- the network and the convergence ----
    int lines = 0, transformers = 0, loads = 0;
    for (const samples::Branch& b : net.branches) {
        (b.transformer ? transformers : lines)++;
    }
    for (const samples::Bus& b : net.buses) {
        loads += b.pdMW != 0 || b.qdMVAr != 0 ? 1 : 0;
    }
    const QString title = QStringLiteral("Load flow of %1").arg(net.name);
    page.add(QStringLiteral("<!DOCTYPE html>\n<html xmlns=\"http://www.w3.org/1999/xhtml\" "
                            "lang=\"en\"><head><meta charset=\"utf-8\"/><title>%1</title>"
                            "<style>%2</style></head><body>")
                 .arg(Esc(title), QLatin1String(kStyle)));
    page.add(QStringLiteral("<h1>%1</h1>").arg(Esc(title)));
    page.paragraph(QStringLiteral("Written by calcdata_demo on %1 from the result tables of job "
                                  "%2 and the network file.")
                       .arg(QDateTime::currentDateTime().toString(Qt::ISODate))
                       .arg(job));
    page.heading(QStringLiteral("The network and the load flow"), QStringLiteral("summary"));
    const demo::SolveSummary& s = study.solution();
    page.table(QStringLiteral("summary-table"), {QStringLiteral("what"), QStringLiteral("value")},
               {{QStringLiteral("network"), net.name},
                {QStringLiteral("buses"), QString::number(net.buses.size())},
                {QStringLiteral("branches"),
                 QStringLiteral("%1 (%2 lines, %3 transformers)")
                     .arg(net.branches.size())
                     .arg(lines)
                     .arg(transformers)},
                {QStringLiteral("generators"), QString::number(net.gens.size())},
                {QStringLiteral("loads"), QString::number(loads)},
                {QStringLiteral("switches (breakers and isolators)"),
                 QString::number(study.counts().switches)},
                {QStringLiteral("base power"), QStringLiteral("%1 MVA").arg(sb)},
                {QStringLiteral("load flow"),
                 s.converged ? QStringLiteral("converged in %1 iterations").arg(s.iterations)
                             : QStringLiteral("did not converge (%1 iterations)")
                                   .arg(s.iterations)},
                {QStringLiteral("largest mismatch"),
                 QStringLiteral("%1 pu (%2 MW or Mvar)")
                     .arg(s.maxMismatch, 0, 'e', 2)
                     .arg(s.maxMismatch * sb, 0, 'e', 2)}});

    // ---- voltages against the limits ----
    std::vector<ProfileBus> profile;
    int unsolved = 0;
    if (!ReadVoltageProfile(in.db, job, net, profile, unsolved, error)) {
        return false;
    }
    page.heading(QStringLiteral("Bus voltages against their limits"), QStringLiteral("profile"));
    const QImage profileImage = DrawVoltageProfile(profile);
    if (!SaveImage(profileImage, out.filePath(QStringLiteral("voltage_profile.png")), error)) {
        return false;
    }
    page.image(QStringLiteral("voltage_profile.png"), profileImage,
               QStringLiteral("voltage by bus in per unit against Vmin and Vmax"));
    std::vector<ProfileBus> outside;
    for (const ProfileBus& b : profile) {
        if (b.outside) {
            outside.push_back(b);
        }
    }
    auto excess = [](const ProfileBus& b) { return std::max(b.v - b.vmax, b.vmin - b.v); };
    if (!profile.empty()) {
        const auto [lo, hi] = std::minmax_element(
            profile.begin(), profile.end(),
            [](const ProfileBus& a, const ProfileBus& b) { return a.v < b.v; });
        // One pass of arguments, so that a name is never read for markers.
        page.paragraph(QStringLiteral("The voltages run from %1 pu at %2 to %3 pu at %4. %5 of "
                                      "%6 buses lie outside their limits%7.")
                           .arg(Num(lo->v, 4), lo->name, Num(hi->v, 4), hi->name,
                                QString::number(outside.size()), QString::number(profile.size()),
                                unsolved ? QStringLiteral("; %1 buses have no voltage")
                                               .arg(unsolved)
                                         : QString()));
    }
    if (!outside.empty()) {
        const size_t shown = std::min<size_t>(outside.size(), kOutsideRows);
        const std::vector<ProfileBus> worst =
            Top(outside, shown, [&](const ProfileBus& a, const ProfileBus& b) {
                return excess(a) > excess(b);
            });
        std::vector<QStringList> rows;
        for (const ProfileBus& b : worst) {
            const bool high = b.v > b.vmax;
            rows.push_back({b.name, Num(b.v, 4), Num(b.vmin, 3), Num(b.vmax, 3),
                            QStringLiteral("%1 %2").arg(high ? "above Vmax by" : "below Vmin by",
                                                        Num(high ? b.v - b.vmax : b.vmin - b.v,
                                                            4))});
        }
        if (shown < outside.size()) {
            page.paragraph(QStringLiteral("The %1 farthest outside of %2:")
                               .arg(shown)
                               .arg(outside.size()));
        }
        page.table(QStringLiteral("outside-limits"),
                   {QStringLiteral("bus"), QStringLiteral("V (pu)"), QStringLiteral("Vmin (pu)"),
                    QStringLiteral("Vmax (pu)"), QStringLiteral("how far (pu)")},
                   rows);
    }

    // ---- the most loaded branches ----
    // Unrated branches come after every rated one, by their flow.
    auto moreLoaded = [](const BranchLoading& a, const BranchLoading& b) {
        if (std::isnan(a.loading) != std::isnan(b.loading)) {
            return std::isnan(b.loading);
        }
        return std::isnan(a.loading) ? a.mva > b.mva : a.loading > b.loading;
    };
    Best<BranchLoading, decltype(moreLoaded)> best(kTopRows, moreLoaded);
    long long branchCount = 0, rated = 0;
    const QHash<QString, const samples::Branch*> branchOf =
        ByName(net.branches, samples::BranchName);
    auto rateA = [&](const QString& name) {
        const samples::Branch* b = branchOf.value(name);
        return b ? b->rateMVA : 0.0;
    };
    auto offer = [&](const QSqlQuery& row, double loading) {
        BranchLoading b;
        b.name = row.value(0).toString();
        b.kind = row.value(1).toString();
        b.from = row.value(2).toString();
        b.to = row.value(3).toString();
        b.mva = row.value(4).toDouble();
        b.rating = rateA(b.name);
        b.loading = loading;
        best.offer(b);
    };
    // The loading of branches.csv, which the server works out and ranks: a line's current
    // against its rating in kA, a transformer's apparent power against its MVA.
    const QString statement = demo::BranchFlowStatement(job, sb);
    if (!Query(q,
               QStringLiteral("SELECT name, kind, from_node, to_node, mva, loading, COUNT(*) OVER "
                              "(), COUNT(loading) OVER () FROM (%1) b ORDER BY loading IS NULL, "
                              "loading DESC, mva DESC LIMIT %2")
                   .arg(statement, QString::number(kTopRows)),
               error)) {
        return false;
    }
    while (q.next()) {
        branchCount = q.value(6).toLongLong();
        rated = q.value(7).toLongLong();
        offer(q, q.isNull(5) ? std::nan("") : q.value(5).toDouble());
    }
    // Lines that the network file rates but the result tables cannot (a rating in kA needs
    // a base voltage): the larger end's apparent power against rateA.
    const bool fileRatesLines =
        std::any_of(net.branches.begin(), net.branches.end(),
                    [](const samples::Branch& b) { return !b.transformer && b.rateMVA > 0; });
    if (fileRatesLines) {
        if (!Query(q,
                   QStringLiteral("SELECT name, kind, from_node, to_node, mva FROM (%1) b WHERE "
                                  "loading IS NULL AND family=1")
                       .arg(statement),
                   error)) {
            return false;
        }
        while (q.next()) {
            const double rating = rateA(q.value(0).toString());
            if (rating > 0) {
                ++rated;
                offer(q, 100 * q.value(4).toDouble() / rating);
            }
        }
    }
    page.heading(rated ? QStringLiteral("The most loaded branches")
                       : QStringLiteral("The largest branch flows"),
                 QStringLiteral("loading"));
    const std::vector<BranchLoading> top = best.sorted();
    std::vector<Bar> bars;
    std::vector<QStringList> rows;
    std::vector<bool> over;
    for (const BranchLoading& b : top) {
        if (rated && std::isnan(b.loading)) {
            break;
        }
        const bool isOver = b.loading > 100;
        bars.push_back({b.name, rated ? b.loading : b.mva, isOver});
        rows.push_back({b.name, b.kind, b.from, b.to, Num(b.mva, 1),
                        b.rating > 0 ? Num(b.rating, 1) : QString(),
                        std::isnan(b.loading) ? QString() : Num(b.loading, 1)});
        over.push_back(isOver);
    }
    const QImage loadingImage =
        rated ? DrawBarChart(bars, QStringLiteral("loading (% of the rating)"), 100,
                             QStringLiteral("rating"))
              : DrawBarChart(bars, QStringLiteral("apparent power at the larger end (MVA)"));
    if (!SaveImage(loadingImage, out.filePath(QStringLiteral("branch_loading.png")), error)) {
        return false;
    }
    page.paragraph(
        rated ? QStringLiteral("%1 of %2 branches have a rating. Loading: a line's current "
                               "against its rating in kA where its buses have a base voltage, "
                               "else the larger end's apparent power against rateA.")
                    .arg(rated)
                    .arg(branchCount)
              : QStringLiteral("No branch of the network file has a rating (rateA): the %1 "
                               "largest flows of %2 branches, by the larger end's apparent "
                               "power.")
                    .arg(top.size())
                    .arg(branchCount));
    page.image(QStringLiteral("branch_loading.png"), loadingImage,
               QStringLiteral("the most loaded branches"));
    page.table(QStringLiteral("loading-table"),
               {QStringLiteral("branch"), QStringLiteral("kind"), QStringLiteral("from"),
                QStringLiteral("to"), QStringLiteral("S (MVA)"), QStringLiteral("rateA (MVA)"),
                QStringLiteral("loading (%)")},
               rows, over);

    // ---- generators against their limits ----
    struct Generator
    {
        GeneratorRange range;
        QString bus;
        double headroom = 1; // the smallest share of a range left to a limit; < 0 outside
    };
    std::vector<Generator> gens;
    const QHash<QString, const samples::Gen*> genOf = ByName(net.gens, samples::GeneratorName);
    if (!Query(q, QStringLiteral("SELECT ID_Name, Bus_Name, Pg, Qg FROM LFR_GEN_R WHERE "
                                 "Case_No=%1 ORDER BY LENGTH(ID_Name), ID_Name")
                      .arg(job),
               error)) {
        return false;
    }
    while (q.next()) {
        Generator g;
        g.range.name = q.value(0).toString();
        g.bus = q.value(1).toString();
        g.range.p = q.value(2).toDouble() * sb;
        g.range.q = q.value(3).toDouble() * sb;
        if (const samples::Gen* limits = genOf.value(g.range.name)) {
            g.range.pmin = limits->pmin;
            g.range.pmax = limits->pmax;
            g.range.qmin = limits->qmin;
            g.range.qmax = limits->qmax;
        }
        for (auto [x, lo, hi] : {std::tuple{g.range.p, g.range.pmin, g.range.pmax},
                                 std::tuple{g.range.q, g.range.qmin, g.range.qmax}}) {
            if (hi > lo) {
                g.headroom = std::min(g.headroom, std::min(hi - x, x - lo) / (hi - lo));
            }
        }
        gens.push_back(g);
    }
    page.heading(QStringLiteral("Generators against their limits"),
                 QStringLiteral("generators"));
    std::vector<Generator> shown = gens;
    if (gens.size() > size_t(kTopRows)) {
        shown = Top(gens, kTopRows,
                    [](const Generator& a, const Generator& b) { return a.headroom < b.headroom; });
        page.paragraph(QStringLiteral("The %1 of %2 generators nearest their limits or beyond:")
                           .arg(kTopRows)
                           .arg(gens.size()));
    }
    std::vector<GeneratorRange> ranges;
    rows.clear();
    over.clear();
    for (const Generator& g : shown) {
        ranges.push_back(g.range);
        const GeneratorRange& r = g.range;
        rows.push_back({r.name, g.bus, Num(r.p, 1), Num(r.pmin, 1), Num(r.pmax, 1), Num(r.q, 1),
                        Num(r.qmin, 1), Num(r.qmax, 1)});
        over.push_back(g.headroom < -1e-9);
    }
    const QImage genImage = DrawGeneratorChart(ranges);
    if (!SaveImage(genImage, out.filePath(QStringLiteral("generators.png")), error)) {
        return false;
    }
    page.image(QStringLiteral("generators.png"), genImage,
               QStringLiteral("generator outputs against their limits"));
    page.table(QStringLiteral("generator-table"),
               {QStringLiteral("generator"), QStringLiteral("node"), QStringLiteral("P (MW)"),
                QStringLiteral("Pmin (MW)"), QStringLiteral("Pmax (MW)"),
                QStringLiteral("Q (Mvar)"), QStringLiteral("Qmin (Mvar)"),
                QStringLiteral("Qmax (Mvar)")},
               rows, over);

    // ---- switch flows ----
    long long switchCount = 0;
    if (!Query(q, QStringLiteral("SELECT COUNT(*) FROM LFR_BREAKER_R WHERE Case_No=%1").arg(job),
               error)) {
        return false;
    }
    switchCount = q.next() ? q.value(0).toLongLong() : 0;
    // A large network's switches: the largest flows, found by the server.
    if (!Query(q, QStringLiteral("SELECT ID_Name, I_Name, J_Name, P, Q FROM LFR_BREAKER_R WHERE "
                                 "Case_No=%1 ORDER BY %2 LIMIT %3")
                      .arg(QString::number(job),
                           switchCount > kTopRows ? QStringLiteral("P*P+Q*Q DESC")
                                                  : QStringLiteral("LENGTH(ID_Name), ID_Name, "
                                                                   "I_Name"),
                           QString::number(kTopRows)),
               error)) {
        return false;
    }
    rows.clear();
    while (q.next()) {
        rows.push_back({q.value(0).toString(), q.value(1).toString(), q.value(2).toString(),
                        Num(q.value(3).toDouble() * sb, 2), Num(q.value(4).toDouble() * sb, 2)});
    }
    page.heading(QStringLiteral("Flows through switches"), QStringLiteral("switches"));
    if (switchCount > kTopRows) {
        page.paragraph(QStringLiteral("The %1 largest of %2 flows (every one in switches.csv "
                                      "with --out):")
                           .arg(kTopRows)
                           .arg(switchCount));
    }
    page.paragraph(QStringLiteral("A switch's name stands as the result table holds it: without "
                                  "the last four characters of its real-time id."));
    page.table(QStringLiteral("switch-table"),
               {QStringLiteral("switch"), QStringLiteral("from"), QStringLiteral("to"),
                QStringLiteral("P (MW)"), QStringLiteral("Q (Mvar)")},
               rows);

    // ---- what the save-back wrote ----
    page.heading(QStringLiteral("What the save-back wrote"), QStringLiteral("saveback"));
    page.paragraph(
        QStringLiteral("The change: generator %1 gives 10 % more, line %2 is taken out of "
                       "service. SaveLDataToBaseDB %3.")
            .arg(study.changedGenerator(), study.lineTakenOut(),
                 study.saveBackResult() == 0
                     ? QStringLiteral("ran to its end")
                     : QStringLiteral("stopped where this server refuses a statement of the "
                                      "design (return %1)")
                           .arg(study.saveBackResult())));
    rows.clear();
    for (const demo::GroupRows& g : study.GroupContents(in.group)) {
        rows.push_back({g.table, QString::number(g.rows),
                        g.firstNames.join(QStringLiteral(", ")) +
                            (g.rows > g.firstNames.size() ? QStringLiteral(", ...") : QString())});
    }
    page.table(QStringLiteral("saveback-table"),
               {QStringLiteral("working copy"),
                QStringLiteral("rows in group %1").arg(in.group),
                QStringLiteral("names")},
               rows);

    // ---- the time of each step ----
    page.heading(QStringLiteral("Time of each step"), QStringLiteral("steps"));
    rows.clear();
    double total = 0;
    std::vector<demo::StepTime> steps = in.otherSteps;
    steps.insert(steps.end(), study.times().begin(), study.times().end());
    steps.push_back({QStringLiteral("this report: result tables read, pictures drawn"),
                     timer.nsecsElapsed() / 1e6});
    for (const demo::StepTime& t : steps) {
        rows.push_back({t.step, Num(t.ms, 1)});
        total += t.ms;
    }
    rows.push_back({QStringLiteral("all of them"), Num(total, 1)});
    page.table(QStringLiteral("steps-table"), {QStringLiteral("step"), QStringLiteral("time (ms)")},
               rows);
    page.add(QStringLiteral("</body></html>"));

    QSaveFile file(out.filePath(QStringLiteral("report.html")));
    const QByteArray bytes = page.html().toUtf8();
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit()) {
        error = QStringLiteral("cannot write %1: %2").arg(file.fileName(), file.errorString());
        return false;
    }
    return true;
}

} // namespace report
