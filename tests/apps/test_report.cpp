// The study's report on the IEEE 14-bus case with limits and ratings of the test's own:
// the page names every bus outside its limits, ranks the branches as the result tables'
// flows do, is well-formed, and its pictures carry each mark in its colour.

#include "DbTest.h"
#include "SampleNetwork.h"
#include "StudyReport.h"
#include "rtdb/rtdb.h"

#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QTemporaryDir>
#include <QXmlStreamReader>
#include <map>
#include <utility>

using testsupport::DbTest;

namespace {

// The cells of each table of the page by its id, and the pictures it shows; empty with
// `error` set when the page is not well-formed.
struct PageTables
{
    std::map<QString, std::vector<QStringList>> tables;
    QStringList images;
    QString error;
};

PageTables ReadPage(const QString& path)
{
    PageTables page;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        page.error = "cannot open " + path;
        return page;
    }
    QXmlStreamReader xml(&file);
    QString table;
    bool newRow = false; // a row of the table's body starts with its first cell
    while (!xml.atEnd()) {
        xml.readNext();
        if (xml.isStartElement() && xml.name() == u"table") {
            table = xml.attributes().value("id").toString();
        } else if (xml.isStartElement() && xml.name() == u"tr") {
            newRow = true;
        } else if (xml.isStartElement() && xml.name() == u"td") {
            if (std::exchange(newRow, false)) {
                page.tables[table].emplace_back();
            }
            page.tables[table].back() << xml.readElementText();
        } else if (xml.isStartElement() && xml.name() == u"img") {
            page.images << xml.attributes().value("src").toString();
        }
    }
    if (xml.hasError()) {
        page.error = xml.errorString();
    }
    return page;
}

int Pixels(const QImage& image, const QColor& colour)
{
    int n = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            n += image.pixelColor(x, y) == colour ? 1 : 0;
        }
    }
    return n;
}

} // namespace

class Report14 : public DbTest
{};

TEST_F(Report14, NamesTheBusesOutsideTheirLimitsRanksTheLoadingAndDrawsEachMark)
{
    samples::Network net;
    QString error;
    ASSERT_TRUE(samples::ReadNetworkJson(CALCDATA_SAMPLES_DIR "/ieee14.json", net, error));
    // Published voltages: B6 1.07, B7 1.062, B8 1.09 lie above the file's Vmax of 1.06 and
    // B1 sits on it; B14 (1.036) falls below a Vmin raised to 1.04; B2, held at 1.045,
    // stands within rounding (1e-5 pu) of a Vmax lowered to 1.044995. Ratings: 200 MVA,
    // but 60 for line L3 (73 MVA) and 40 for transformer T10 (46 MVA).
    net.buses[13].vmin = 1.04;
    net.buses[1].vmax = 1.044995;
    for (samples::Branch& b : net.branches) {
        b.rateMVA = 200;
    }
    net.branches[2].rateMVA = 60;
    net.branches[9].rateMVA = 40;
    ASSERT_TRUE(net.branches[9].transformer);
    dbDatabase rtdb;
    ASSERT_TRUE(rtdb.open("report"));
    demo::Study study(db(), &rtdb);
    ASSERT_TRUE(study.LoadNetwork(net) && study.Extract() && study.BuildAndImport() &&
                study.Solve() && study.StoreResults() && study.ChangeAndSaveBack("NEW"))
        << study.error().toStdString();
    QTemporaryDir dir;
    ASSERT_TRUE(report::WriteStudyReport(dir.filePath("report"), {&net, &study, db(), "NEW", {}},
                                         error))
        << error.toStdString();
    rtdb.close();

    const PageTables page = ReadPage(dir.filePath("report/report.html"));
    ASSERT_TRUE(page.error.isEmpty()) << page.error.toStdString();
    EXPECT_EQ(page.images.join(' ').toStdString(),
              "voltage_profile.png branch_loading.png generators.png");

    // Every bus outside, the farthest first; B1 at its Vmax is not.
    QStringList outside;
    for (const QStringList& row : page.tables.at("outside-limits")) {
        outside << row.value(0);
    }
    EXPECT_EQ(outside.join(' ').toStdString(), "B8 B6 B14 B7");
    EXPECT_EQ(page.tables.at("outside-limits")[2].value(4).toStdString(), "below Vmin by 0.0045");

    // Against the test's ratings L3 leads (the file's rateA, as the tables rate no line
    // without a base voltage: 73.33 MVA of 60), then T10 (the tables' Rate_MVA).
    const std::vector<QStringList>& loading = page.tables.at("loading-table");
    ASSERT_EQ(loading.size(), 20u);
    EXPECT_EQ(loading[0].value(0).toStdString(), "L3");
    EXPECT_EQ(loading[0].value(6).toStdString(), "122.2") << "|73.24 + j3.56| / 60";
    EXPECT_EQ(loading[1].value(0).toStdString(), "T10");
    EXPECT_EQ(loading[2].value(6).toStdString(), "79.1") << "L1: 158.2 MVA of 200";

    // Each mark in its colour: the curve and two dashed limit lines (each about 1,500
    // pixels) across the plot, four crosses of about 50 pixels beside the legend's one; two
    // bars over the rating; one output (G1's Q of -16.5 Mvar against Qmin 0) outside its
    // limits.
    const QImage profile(dir.filePath("report/voltage_profile.png"));
    EXPECT_GT(Pixels(profile, report::colour::voltage), 1500);
    EXPECT_GT(Pixels(profile, report::colour::limit), 2500);
    EXPECT_GT(Pixels(profile, report::colour::outside), 5 * 45);
    const QImage bars(dir.filePath("report/branch_loading.png"));
    const int over = Pixels(bars, report::colour::overBar);
    EXPECT_GT(over, 2 * 500);
    EXPECT_GT(Pixels(bars, report::colour::bar), over) << "18 bars of 327 % in all, 2 of 236 %";
    const QImage gens(dir.filePath("report/generators.png"));
    EXPECT_GT(Pixels(gens, report::colour::output), 9 * 80);
    EXPECT_NEAR(Pixels(gens, report::colour::overBar), 90, 10);
    EXPECT_GT(Pixels(gens, report::colour::range), 10 * 100);
}
