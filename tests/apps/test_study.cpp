// The demo's study on the IEEE 14-bus case: extraction, records, import and the load flow
// on the records must reproduce the published solution that the sample carries, also in a
// host program whose locale writes one half as "0,5" (the statements must not).

#include "DbTest.h"
#include "SampleNetwork.h"
#include "Study.h"
#include "records/NetworkRecords.h"

#include <QProcess>
#include <QTemporaryDir>
#include <clocale>
#include <cmath>
#include <cstdio>

using testsupport::DbTest;

class Study14 : public DbTest
{};

// The process's numbers in a locale with a decimal comma, made from the system's locale
// sources into a folder of its own, for as long as it stands.
struct DecimalComma
{
    QTemporaryDir dir;
    // localedef's status is 1 for mere warnings: whether the locale can be set is what counts.
    bool ok = (QProcess::execute("localedef", {"-i", "de_DE", "-f", "UTF-8", dir.path() + "/de"}),
               qputenv("LOCPATH", dir.path().toLocal8Bit())) &&
              std::setlocale(LC_NUMERIC, "de") != nullptr;
    ~DecimalComma() { std::setlocale(LC_NUMERIC, "C"); }
};

TEST_F(Study14, SolvedVoltagesMatchThePublishedSolutionUnderADecimalCommaLocale)
{
    DecimalComma comma;
    ASSERT_TRUE(comma.ok) << "no de_DE locale could be made (package locales)";
    char half[16];
    std::snprintf(half, sizeof half, "%.1f", 0.5);
    ASSERT_STREQ(half, "0,5");

    samples::Network net;
    QString error;
    ASSERT_TRUE(samples::ReadNetworkJson(CALCDATA_SAMPLES_DIR "/ieee14.json", net, error));
    dbDatabase rtdb;
    ASSERT_TRUE(rtdb.open("study"));
    demo::Study study(db(), &rtdb);
    ASSERT_TRUE(study.LoadNetwork(net) && study.Extract() && study.BuildAndImport() &&
                study.Solve())
        << study.error().toStdString();
    const auto& n = study.counts();
    EXPECT_EQ((std::vector<int>{n.buses, n.lines, n.transformers, n.generators, n.shunts}),
              (std::vector<int>{14, 17, 3, 5, 1}));
    for (const samples::Bus& b : net.buses) {
        dbCursor<dtsdb::bs> c;
        dbQuery q;
        const QByteArray name = QString("B%1").arg(b.num).toLocal8Bit();
        q = "name=", name.constData();
        ASSERT_EQ(c.select(q), 1) << name.constData();
        EXPECT_NEAR(c->V, b.vm, 0.002) << name.constData();
        EXPECT_NEAR(c->Angle, b.vaDeg, 0.1) << name.constData();
    }
    rtdb.commit();

    // The results reach the result tables; the save-back runs to its end in the mended
    // statement mode, and stops at the transformers in the faithful one.
    ASSERT_TRUE(study.StoreResults()) << study.error().toStdString();
    EXPECT_NEAR(Scalar("SELECT V FROM LFR_BS_R WHERE Bus_Name='B14'").toDouble(), 1.036, 0.002);
    ASSERT_TRUE(study.ChangeAndSaveBack("NEW")) << study.error().toStdString();
    EXPECT_EQ(study.saveBackResult(), 0);
    const std::string line = study.lineTakenOut().chopped(3).toStdString();
    EXPECT_EQ(Rows("SELECT ID_Name, Valid FROM CDB_ACLINEBAK WHERE GrpName='NEW'"),
              (std::vector<std::string>{line + "|0"}));
    // Every generator's solved operating point differs from its schedule; G2 gives 10 % more.
    EXPECT_EQ(Count("CDB_GENERATBAK WHERE GrpName='NEW'"), 5);
    EXPECT_NEAR(Scalar("SELECT Pg FROM CDB_GENERATBAK WHERE GrpName='NEW' AND ID_Name='" +
                       study.changedGenerator() + "'")
                    .toDouble(),
                0.44, 1e-6);
    EXPECT_EQ(Count("CDB_DATAGROUPBAK WHERE GrpName='NEW'"), 1);
    // A second change takes the next line in service out; both are out against the base.
    ASSERT_TRUE(study.ChangeAndSaveBack("OLD", SaveStatementMode::Faithful));
    EXPECT_EQ(study.saveBackResult(), 1);
    const std::string second = study.lineTakenOut().chopped(3).toStdString();
    EXPECT_NE(second, line);
    EXPECT_EQ(Rows("SELECT ID_Name, Valid FROM CDB_ACLINEBAK WHERE GrpName='OLD' ORDER BY "
                   "ID_Name"),
              (std::vector<std::string>{second + "|0", line + "|0"}));
    EXPECT_EQ(Count("CDB_GENERATBAK WHERE GrpName='OLD'"), 0);
    rtdb.close();
}
