// Save-back of a changed job into the working copies and data groups.

#include "DbTest.h"
#include "Faults.h"
#include "SampleNetwork.h"
#include "SaveBackFamilies.h"
#include "TableSnapshots.h"
#include "loadflow/jobdata/LFCalDataTransfer.h"
#include "platform/CDatabase.h"

using testsupport::DbTest;
using testsupport::Fault;
using testsupport::FaultInjector;
using testsupport::Hold;

namespace {
char kScheme[] = "SCH";

// Writes a sample network into the base tables as group G1 of the scheme and extracts it
// into job 0.
void WriteAndExtract(QSqlDatabase* db, const char* file)
{
    samples::Network net;
    QString error;
    ASSERT_TRUE(samples::ReadNetworkJson(QString(CALCDATA_SAMPLES_DIR "/") + file, net, error));
    ASSERT_TRUE(samples::WriteNetworkToBaseDb(db, net, "G1", kScheme, error))
        << error.toStdString();
    CLFCalDataTransfer extract(0, kScheme, db, nullptr);
    ASSERT_EQ(extract.ImportLDataFromBaseDB(), 0);
}
} // namespace

class SaveBack : public DbTest
{
protected:
    void SetUp() override
    {
        DbTest::SetUp();
        Truncate({"CDB_SBBAK", "CDB_BUSBAK", "CDB_NODEBAK", "CDB_PSTATIONBAK", "CDB_ZONEBAK",
                  "CDB_ACLINEBAK", "CDB_TRANS_2WBAK", "CDB_TRANS_3WBAK", "CDB_SHIFTBAK",
                  "CDB_GENERATBAK", "CDB_LOADBAK", "CDB_PCAPREABAK", "CDB_BREAKERBAK",
                  "CDB_DATAGROUPBAK", "CDB_SCHEMEINFBAK", "CDB_SCHEMECONTBAK", "LF_CASE"});
        // The run before stopped at the transformers and left T2W on the library's connection.
        QSqlQuery(*db()).exec("DROP TEMPORARY TABLE IF EXISTS T2W, T3W");
        WriteAndExtract(db(), "ieee14.json");
        if (HasFatalFailure()) {
            return;
        }
        feedback().clear();
    }
    CDatabase m_base;
};

TEST_F(SaveBack, ChangedLinesAreSavedInPlaceAndTheRunStopsAtTheTransformers)
{
    // L1 changed by more than the tolerance, L2 by exactly the tolerance.
    Exec("UPDATE L2_0 SET R1=R1+0.00011 WHERE ID_Name='L1'");
    Exec("UPDATE L2_0 SET X1=X1+0.0001 WHERE ID_Name='L2'");
    Exec("UPDATE L5_0 SET Pg=Pg+0.5 WHERE ID_Name='G2'");
    const double before = Scalar("SELECT R1 FROM CDB_ACLINEBAK WHERE ID_Name='L1'").toDouble();
    StartStatementLog();
    CLFCalDataTransfer job(0, kScheme, db(), &m_base);
    EXPECT_EQ(job.SaveLDataToBaseDB("NEW", false), 1);

    EXPECT_NEAR(Scalar("SELECT R1 FROM CDB_ACLINEBAK WHERE ID_Name='L1'").toDouble(),
                before + 0.00011, 1e-9);
    EXPECT_EQ(job.Nacline, 1) << "a difference of exactly the tolerance is no change";
    EXPECT_EQ(m_base.ModifiedTableTypes(), (std::vector<int>{102}));
    EXPECT_EQ(feedback().texts(1), (std::vector<std::string>{"回存交流线数目：1"}));
    const auto errors = feedback().texts(2);
    ASSERT_EQ(errors.size(), 1u);
    EXPECT_EQ(errors[0].rfind("Fail to execute SQL: insert into T2W(eleid,", 0), 0u);
    EXPECT_NE(errors[0].find("a.Gm*1.0e6*/(c.Base_kV*c.Base_kV/100.000000)"), std::string::npos);
    // The generator's change, after the failing family, stays in the job only.
    EXPECT_EQ(Count("CDB_DATAGROUPBAK WHERE GrpName='NEW'"), 0);
    const auto sent = SentStatements();
    EXPECT_NE(std::find(sent.begin(), sent.end(),
                        "update CDB_ACLINEBAK a, Tac b set a.valid=b.valid, a.I_Break=b.I_Break, "
                        "a.J_Break=b.J_Break, a.R1=b.R1, a.X1=b.X1, a.B1_Half=b.B1_Half where "
                        "a.id=b.eleid"),
              sent.end());
}

TEST_F(SaveBack, ANewGroupGetsCopiesAndOrphansWhileTheBaseRowsStay)
{
    Exec("UPDATE L2_0 SET Valid=0 WHERE ID_Name='L3'");
    // A job line with no base row: an orphan, saved into the group per unit.
    Exec("INSERT INTO L2_0(Case_No, EleID, ID_Name, Valid, I_Name, J_Name, ID_No, I_Break, "
         "J_Break, R1, X1, B1_Half, Owner, Ntype) VALUES (0, 9999, 'LX', 1, 'N1', 'N99', 1, 1, 1, "
         "0.01, 0.1, 0.02, 1, 1)");
    CLFCalDataTransfer job(0, kScheme, db(), &m_base);
    EXPECT_EQ(job.SaveLDataToBaseDB("NEW", true), 1);
    EXPECT_EQ(Rows("SELECT GrpName, Valid FROM CDB_ACLINEBAK WHERE ID_Name='L3' ORDER BY GrpName"),
              (std::vector<std::string>{"G1|1", "NEW|0"}));
    EXPECT_EQ(Rows("SELECT GrpName, Unit, R1, X1, B1_Half, Owner FROM CDB_ACLINEBAK WHERE "
                   "ID_Name='LX'"),
              (std::vector<std::string>{"NEW|1|0.01|0.1|0.02|1"}));
    EXPECT_TRUE(
        feedback().has("交流线作业数据中有 1 条记录与基础库元件不对应, 被保存至数据组 NEW 。", 2));
    EXPECT_EQ(CLFCalDataTransferFamilies::NewElements(job), 1);
    EXPECT_EQ(CLFCalDataTransferFamilies::Nodes(job), 2) << "both ends of the orphan";
    EXPECT_EQ(m_base.ModifiedTableTypes(), (std::vector<int>{102}))
        << "orphans raise no flag; the stop comes before the group's row";
}

TEST_F(SaveBack, AnOrphanLineOnANodeTheJobLacksIsAnnouncedButNotSaved)
{
    // The orphan insert takes the owner's zone from the job's node table by the line's
    // first node; a line whose node is not there finds no row to join and is not written.
    Exec("INSERT INTO L2_0(Case_No, EleID, ID_Name, Valid, I_Name, J_Name, ID_No, I_Break, "
         "J_Break, R1, X1, B1_Half, Owner, Ntype) VALUES (0, 9998, 'LY', 1, 'NOWHERE', 'N2', 1, "
         "1, 1, 0.01, 0.1, 0.02, 1, 1)");
    CLFCalDataTransfer job(0, kScheme, db(), &m_base);
    EXPECT_EQ(job.SaveLDataToBaseDB("NEW", false), 1);
    EXPECT_TRUE(
        feedback().has("交流线作业数据中有 1 条记录与基础库元件不对应, 被保存至数据组 NEW 。", 2));
    EXPECT_EQ(Count("CDB_ACLINEBAK WHERE ID_Name='LY'"), 0);
    EXPECT_EQ(CLFCalDataTransferFamilies::NewElements(job), 1) << "counted all the same";
    EXPECT_EQ(CLFCalDataTransferFamilies::Nodes(job), 2) << "both its nodes wait to be added";
}

TEST_F(SaveBack, GeneratorsCompareInTheBaseRowsOwnUnit)
{
    // G2 stored in MW (Unit 0) on a node of 100 kV; G3 stays per unit.
    Exec("UPDATE CDB_NODEBAK SET Base_kV=100");
    Exec("UPDATE L1_0 SET Base_kV=100");
    Exec("UPDATE CDB_GENERATBAK SET Unit=0, Pg=Pg*100, Qg=Qg*100, V0=V0*100, Qmax=Qmax*100, "
         "Qmin=Qmin*100, Pmax=Pmax*100, Pmin=Pmin*100 WHERE ID_Name='G2'");
    Exec("UPDATE L5_0 SET Pg=Pg+0.00005 WHERE ID_Name IN ('G2','G3')");
    CLFCalDataTransfer job(0, kScheme, db(), &m_base);
    CLFCalDataTransferFamilies::Prepare(job, "NEW", false);
    EXPECT_EQ(CLFCalDataTransferFamilies::Generators(job), 0);
    EXPECT_EQ(job.Ngenerat, 1) << "0.005 MW is above the tolerance, 0.00005 per unit is not";
    EXPECT_NEAR(Scalar("SELECT Pg FROM CDB_GENERATBAK WHERE ID_Name='G2'").toDouble(), 40.0 + 0.005,
                1e-6);
    EXPECT_EQ(Count("CDB_GENERATBAK WHERE Unit=0"), 1);
}

TEST_F(SaveBack, SwitchesIntoANewGroupAndThreeWindingOrphansCountOnce)
{
    Exec("INSERT INTO CDB_BREAKERBAK(GrpName, ID_Name, Valid, Lbreak, I_Name, J_Name, ID_No) "
         "VALUES ('G1', 'KX', 1, 1, 'N1', 'N2', 1)");
    const QString id = Scalar("SELECT id FROM CDB_BREAKERBAK WHERE ID_Name='KX'");
    Exec("INSERT INTO LK_0(Case_No, EleID, ID_Name, Valid, Lbreak, I_Name, J_Name, ID_No, Ntype) "
         "VALUES (0, " +
         id + ", 'KX', 1, 0, 'N1', 'N2', 1, 1)");
    CLFCalDataTransfer job(0, kScheme, db(), &m_base);
    CLFCalDataTransferFamilies::Prepare(job, "NEW", true);
    EXPECT_EQ(CLFCalDataTransferFamilies::Breakers(job), 0);
    EXPECT_EQ(job.Nswitch, 1);
    EXPECT_EQ(
        Rows("SELECT GrpName, Lbreak FROM CDB_BREAKERBAK WHERE ID_Name='KX' ORDER BY GrpName"),
        (std::vector<std::string>{"G1|1", "NEW|0"}));

    // Five orphan winding rows count as one element; the warning shows five.
    for (int k = 0; k < 5; ++k) {
        Exec(QString("INSERT INTO L3_0(Case_No, EleID, ID_Name, Valid, I_Name, J_Name, ID_No, "
                     "R1, X1, Tk, Ntype) VALUES (0, 8000, 'T3X', 1, 'NS', 'N%1', 1, 0.01, 0.1, 1, "
                     "%2)")
                 .arg(k + 1)
                 .arg(31 + k % 3));
    }
    feedback().clear();
    EXPECT_EQ(CLFCalDataTransferFamilies::ThreeWinding(job), 1)
        << "its first-winding change statement is refused like the two-winding one, after the "
           "orphans were saved";
    EXPECT_EQ(CLFCalDataTransferFamilies::NewElements(job), 1);
    EXPECT_TRUE(feedback().has(
        "两绕组变压器作业数据中有 5 条记录与基础库元件不对应, 被保存至数据组 NEW 。", 2));
    EXPECT_EQ(Count("CDB_TRANS_3WBAK WHERE GrpName='NEW' AND ID_Name='T3X'"), 2)
        << "one row per winding-1 job row";
}

struct CLFCalDataTransferNodes
{
    static int Orphans(CLFCalDataTransfer& t, const QString& group)
    {
        CLFCalDataTransferFamilies::Prepare(t, group, false);
        return CLFCalDataTransferFamilies::Generators(t);
    }
};

class SaveBackUnits : public DbTest
{};

TEST_F(SaveBackUnits, ANamedLineIsJudgedInOhmsAndANullBaseObjectHearsNothing)
{
    Truncate({"CDB_ACLINEBAK", "CDB_GENERATBAK", "CDB_LOADBAK", "CDB_NODEBAK", "CDB_BUSBAK",
              "CDB_SCHEMEINFBAK", "CDB_SCHEMECONTBAK", "CDB_DATAGROUPBAK", "CDB_SBBAK",
              "CDB_BREAKERBAK", "CDB_ISOSWITCHBAK", "CDB_PCAPREABAK", "CDB_TRANS_2WBAK"});
    ASSERT_NO_FATAL_FAILURE(WriteAndExtract(db(), "ieee30.json"));
    CLFCalDataTransfer job(0, kScheme, db(), nullptr);
    // Zb = 135^2/100 = 182.25 ohm: 4e-7 pu is 0.000073 ohm (kept), 7e-7 pu 0.000128 ohm.
    Exec("UPDATE L2_0 SET R1=R1+4e-7 WHERE ID_Name='L2'");
    Exec("UPDATE L2_0 SET R1=R1+7e-7 WHERE ID_Name='L4'");
    const double l4 = Scalar("SELECT R1 FROM CDB_ACLINEBAK WHERE ID_Name='L4'").toDouble();
    feedback().clear();
    EXPECT_EQ(job.SaveLDataToBaseDB("NEW", false), 1);
    EXPECT_EQ(job.Nacline, 1);
    EXPECT_NEAR(Scalar("SELECT R1 FROM CDB_ACLINEBAK WHERE ID_Name='L4'").toDouble(),
                l4 + 7e-7 * 182.25, 1e-9);
    EXPECT_EQ(Scalar("SELECT Unit FROM CDB_ACLINEBAK WHERE ID_Name='L4'"), "0");
    EXPECT_TRUE(feedback().has("回存交流线数目：1", 1));
    // A second run on the same object finds nothing new to save for the lines.
    QSqlQuery(*db()).exec("DROP TEMPORARY TABLE IF EXISTS T2W");
    feedback().clear();
    EXPECT_EQ(job.SaveLDataToBaseDB("NEW", false), 1);
    EXPECT_EQ(job.Nacline, 0);
    EXPECT_TRUE(feedback().texts(1).empty());
    QSqlQuery(*db()).exec("DROP TEMPORARY TABLE IF EXISTS T2W");

    // An orphan generator on a node the base lacks: the node, its bus, station and zone
    // are added from the job's node table.
    Exec("INSERT INTO L1_0(Case_No, Node_Name, Bus_Name, Zone_No, PS_Name, Base_kV, ISBus) "
         "VALUES (0, 'NEWN', 'NEWB', 9, 'NEWS', 135, 1)");
    Exec("INSERT INTO L5_0(Case_No, EleID, ID_Name, Valid, Node_Name, Pg) VALUES "
         "(0, 99999, 'GNEW', 1, 'NEWN', 0.5)");
    CLFCalDataTransfer fresh(0, kScheme, db(), nullptr);
    EXPECT_EQ(CLFCalDataTransferNodes::Orphans(fresh, "NEW"), 0);
    EXPECT_EQ(CLFCalDataTransferFamilies::NewElements(fresh), 1);
    EXPECT_EQ(Rows("SELECT GrpName, Unit, Pg FROM CDB_GENERATBAK WHERE ID_Name='GNEW'"),
              (std::vector<std::string>{"NEW|1|0.5"}));
    // The node goes in. The bus statement's join names the node table in its ON clause
    // across a comma, which this server refuses: buses, stations and zones stay out.
    feedback().clear();
    EXPECT_EQ(CLFCalDataTransferFamilies::AddNodes(fresh), 1);
    EXPECT_EQ(Count("CDB_NODEBAK WHERE Node_Name='NEWN' AND Bus_Name='NEWB'"), 1);
    EXPECT_EQ(Count("CDB_BUSBAK WHERE Bus_Name='NEWB'"), 0);
    const auto errors = feedback().texts(2);
    ASSERT_EQ(errors.size(), 1u);
    EXPECT_EQ(errors[0].rfind("Fail to execute SQL: INSERT INTO CDB_BUSBAK(Bus_Name, PS_Name,", 0),
              0u);
}

class SaveBackFaults : public DbTest
{};

TEST_F(SaveBackFaults, AQuotedGroupNameTakesTheOrphanAndALostConnectionFailsTheRun)
{
    Truncate({"CDB_ACLINEBAK", "CDB_GENERATBAK", "CDB_LOADBAK", "CDB_NODEBAK", "CDB_BUSBAK",
              "CDB_SCHEMEINFBAK", "CDB_SCHEMECONTBAK", "CDB_DATAGROUPBAK", "CDB_SBBAK"});
    ASSERT_NO_FATAL_FAILURE(WriteAndExtract(db(), "ieee14.json"));
    CLFCalDataTransfer job(0, kScheme, db(), nullptr);
    // A base row deleted after extraction makes its job row an orphan, saved into the group
    // whose name holds a quote, under that very name.
    Exec("DELETE FROM CDB_ACLINEBAK WHERE ID_Name='L1'");
    const int before = Count("CDB_ACLINEBAK");
    feedback().clear();
    EXPECT_EQ(job.SaveLDataToBaseDB("O'NEW", false), 1) << "the faithful text stops the run";
    const auto errors = feedback().texts(2);
    ASSERT_GE(errors.size(), 1u);
    EXPECT_EQ(errors[0], "交流线作业数据中有 1 条记录与基础库元件不对应, 被保存至数据组 O'NEW 。");
    EXPECT_EQ(Count("CDB_ACLINEBAK"), before + 1);
    EXPECT_EQ(Rows("SELECT GrpName FROM CDB_ACLINEBAK WHERE ID_Name='L1'"),
              std::vector<std::string>{"O'NEW"});

    // The connection lost before a run: the first statement fails, nothing crashes.
    QSqlQuery id(*db());
    ASSERT_TRUE(id.exec("SELECT CONNECTION_ID()") && id.next());
    const QString thread = id.value(0).toString();
    QSqlQuery(*db()).exec("DROP TEMPORARY TABLE IF EXISTS Tac");
    ASSERT_FALSE(thread.isEmpty());
    Exec("KILL CONNECTION " + thread);
    feedback().clear();
    EXPECT_EQ(job.SaveLDataToBaseDB("NEW", false), 1);
    ASSERT_FALSE(feedback().texts(2).empty());
    EXPECT_EQ(feedback().texts(2)[0].rfind("Fail to execute SQL: Create temporary Table Tac", 0),
              0u);
    // A new session, so that the suite's database can be dropped at its end.
    EXPECT_TRUE(dbserver::ReopenConnection(*db()));
}

// A group's name holds 20 bytes as the design counted them: ten Chinese characters save
// back whole (the copy, its update in the group, the orphan, the group's row); an eleventh
// is refused before anything is written, by the save-back, its preview and all-or-nothing.
TEST_F(SaveBack, AChineseGroupNameOfTenCharactersSavesWholeAndAnEleventhWritesNothing)
{
    const QString ten = "华北电网运行方式调整", eleven = ten + "甲";
    Exec("UPDATE L2_0 SET R1=R1+0.01 WHERE ID_Name='L1'");
    Exec("INSERT INTO L2_0(Case_No, EleID, ID_Name, Valid, I_Name, J_Name, ID_No, I_Break, "
         "J_Break, R1, X1, B1_Half, Owner, Ntype) VALUES (0, 9999, 'LX', 1, 'N1', 'N2', 1, 1, 1, "
         "0.01, 0.1, 0.02, 1, 1)");
    const auto checksums = testsupport::BaseChecksums(checker());
    CLFCalDataTransfer job(0, kScheme, db(), &m_base);
    job.SetStatementMode(SaveStatementMode::Mended);
    const std::string refused = "数据组名 " + eleven.toStdString() +
                                " 超过20字节（汉字按2字节计），数据组中存不下，回存未执行，基础"
                                "库未作任何修改。";
    EXPECT_EQ(job.SaveLDataToBaseDB(eleven, false), 1);
    EXPECT_EQ(testsupport::Texts(job.PreviewLDataToBaseDB(eleven, true).messages),
              std::vector<std::string>{"2 " + refused});
    job.SetAllOrNothing(true);
    EXPECT_EQ(job.SaveLDataToBaseDB(eleven, true), 1);
    EXPECT_EQ(feedback().texts(2),
              (std::vector<std::string>{refused, refused, "回存失败，已全部撤销，基础库未保存任何修改。"}));
    EXPECT_EQ(testsupport::BaseChecksums(checker()), checksums);
    EXPECT_TRUE(m_base.ModifiedTableTypes().empty());

    job.SetAllOrNothing(false);
    EXPECT_EQ(job.SaveLDataToBaseDB(ten, true), 0);
    EXPECT_EQ(Rows("SELECT ID_Name, ROUND(R1, 6) FROM CDB_ACLINEBAK WHERE GrpName='" + ten +
                   "' ORDER BY ID"),
              (std::vector<std::string>{"LX|0.01", "L1|0.02938"}));
    EXPECT_EQ(Count("CDB_DATAGROUPBAK WHERE GrpName='" + ten + "'"), 1);

    // A server that holds another name than the one given (a host's GrpName narrower than
    // the design's): the update in the group finds no copy, and the run fails instead of
    // leaving the copies with the base values.
    Exec("ALTER TABLE CDB_ACLINEBAK MODIFY GrpName CHAR(4) BINARY");
    feedback().clear();
    EXPECT_EQ(job.SaveLDataToBaseDB("华北电网调度", true), 1);
    Exec("ALTER TABLE CDB_ACLINEBAK MODIFY GrpName CHAR(20) BINARY DEFAULT ''");
    EXPECT_EQ(feedback().texts(2).back(),
              "写入数据组的修改没有改动任何行（服务器中保存的数据组名与所给的不同），回存失败："
              "update CDB_ACLINEBAK a, Tac b set a.valid=b.valid, a.I_Break=b.I_Break, "
              "a.J_Break=b.J_Break, a.R1=b.R1, a.X1=b.X1, a.B1_Half=b.B1_Half where "
              "a.GrpName='华北电网调度' and a.ID_Name=b.ID_Name");
}

class SaveBackKilled : public DbTest
{};

// The library's connection killed by a second session while a family waits on a row lock.
TEST_F(SaveBackKilled, AConnectionKilledInTheMiddleOfAFamilyLeavesTheFamiliesBeforeItSaved)
{
    ASSERT_NO_FATAL_FAILURE(WriteAndExtract(db(), "ieee14.json"));
    CLFCalDataTransfer job(0, kScheme, db(), nullptr);
    Exec("UPDATE L2_0 SET R1=R1+0.01 WHERE ID_Name='L1'");
    Exec("UPDATE L2_0 SET X1=X1*2 WHERE Ntype=3"); // the shunt of bus 9
    const QString lineBefore = Scalar("SELECT R1 FROM CDB_ACLINEBAK WHERE ID_Name='L1'");
    const QString shuntBefore = Scalar("SELECT X1 FROM CDB_PCAPREABAK");
    // A second session holds a shared lock on the shunt rows: the family reads them (its
    // orphans and its changes), then waits at its update, where the second session kills the
    // library's connection and lets go.
    CDatabase base;
    int result = -1;
    {
        FaultInjector fault(scratch(), db(), Fault::Killed, "CDB_PCAPREABAK", Hold::SharedRows);
        ASSERT_TRUE(fault.Run([&](QSqlDatabase* connection) {
            result =
                CLFCalDataTransfer(0, kScheme, connection, &base).SaveLDataToBaseDB("NEW", false);
        }));
    }
    EXPECT_EQ(result, 1);
    EXPECT_EQ(feedback().texts(1).back(), "回存交流线数目：1") << "the last count shown";
    ASSERT_FALSE(feedback().texts(2).empty());
    EXPECT_EQ(feedback().texts(2).back().rfind("Fail to execute SQL: ", 0), 0u);
    EXPECT_EQ(feedback().texts(2).back().rfind("Fail to execute SQL: update CDB_PCAPREABAK a, "
                                               "TPCR b set",
                                               0),
              0u)
        << "the shunt family failed at its update: " << feedback().texts(2).back();
    EXPECT_EQ(base.ModifiedTableTypes(), (std::vector<int>{102}));
    // Seen from another connection: the line saved, the shunt as it was.
    EXPECT_NEAR(Scalar("SELECT R1 FROM CDB_ACLINEBAK WHERE ID_Name='L1'").toDouble(),
                lineBefore.toDouble() + 0.01, 1e-9);
    EXPECT_EQ(Scalar("SELECT X1 FROM CDB_PCAPREABAK"), shuntBefore);
}
