// Save-back of a changed stability job into the working copies and data groups.

#include "Faults.h"
#include "StabilityNetwork.h"
#include "TableSnapshots.h"
#include "common/RunGuard.h"
#include "common/SaveBackStatements.h"
#include "platform/CDatabase.h"
#include "stability/jobdata/STCalDataTransfer.h"

#include <QCoreApplication>
#include <QSysInfo>

using namespace sttest;

namespace {

const std::vector<const char*> kWorkingCopies = {
    "CDB_ACLINEBAK", "CDB_PCAPREABAK",  "CDB_SCAPREABAK",  "CDB_TRANS_2WBAK",
    "CDB_SHIFTBAK",  "CDB_TRANS_3WBAK", "CDB_DCLINEBAK",   "CDB_GENERATBAK",
    "CDB_LOADBAK",   "CDB_SVCBAK",      "CDB_DATAGROUPBAK"};
const std::vector<const char*> kWorkTables = {"Tac", "TPCR", "TSCR", "T2W",  "TShift",
                                              "T3W", "Tdc",  "TGen", "TLoad"};

} // namespace

class SaveBack : public StabilityTest
{
protected:
    void SetUp() override
    {
        StabilityTest::SetUp();
        if (HasFatalFailure() || IsSkipped()) {
            return;
        }
        ASSERT_EQ(CSTCalDataTransfer(kJob, kCaseLF, db(), nullptr).ImportSDataFromBaseDB(), 0);
        feedback().clear();
    }
    // One row of every family changed beyond the tolerance: L1 (per unit), the shunt and
    // the series capacitor (ohms), T1, P1, all three windings of W3, a compared DC column
    // (and DC_Model, which is not compared), the generator's model, the load's model, and
    // an SVC (never saved).
    static void ChangeEveryFamily()
    {
        Exec("UPDATE S2_7 SET R0=R0+0.01 WHERE ID_Name='L1'");
        Exec("UPDATE S2_7 SET X0=X0+0.5 WHERE ID_Name='C1'");
        Exec("UPDATE S2_7 SET X0=X0-0.01 WHERE ID_Name='S1'");
        Exec("UPDATE S3_7 SET X0=X0+0.01 WHERE ID_Name='T1'");
        Exec("UPDATE S3_7 SET R0=R0+0.01 WHERE ID_Name='P1'");
        Exec("UPDATE S3_7 SET R0=R0+0.01 WHERE ID_Name='W3'");
        Exec("UPDATE S4_7 SET Tdo=0.75, DC_Model=9");
        Exec("UPDATE S5_7 SET Gen_Model=7");
        Exec("UPDATE S6_7 SET Load_Model=4");
        Exec("UPDATE S7_7 SET X_Fixed=11");
    }
    static double Base(const QString& table, const QString& column, const QString& name)
    {
        return Scalar(QString("SELECT %1 FROM %2 WHERE ID_Name='%3' AND GrpName='G'")
                          .arg(column, table, name))
            .toDouble();
    }
    // Every table of the database, job tables and TLoad included.
    static std::map<std::string, std::string> Checksums()
    {
        return testsupport::Checksums(checker(), testsupport::TablesLike(checker(), "%"));
    }
    CDatabase m_base;
};

TEST_F(SaveBack, NothingIsSavedUpToOneThousandthAndChangesBeyondItAre)
{
    // Unchanged, nothing is saved, not even the group's row (in place: the run below the
    // tolerance). Named rows compare in their own units after the conversion by L1_5 (true
    // base voltages); by L1_7 (1 kV) every one would count.
    EXPECT_EQ(CSTCalDataTransfer(kJob, kCaseLF, db(), &m_base).SaveSDataToBaseDB("NEW", true), 0);
    EXPECT_EQ(Count("CDB_DATAGROUPBAK WHERE GrpName='NEW'"), 0);

    // L1 per unit; L2 in ohms at 220 kV, so a job change of d/484 is d ohm in the base.
    // (The server would divide the literals in decimals: the values come from here.)
    auto setL2X0 = [](double ohmsAbove) {
        Exec(QString("UPDATE S2_7 SET X0=%1 WHERE ID_Name='L2'")
                 .arg(0.1 + ohmsAbove / 484, 0, 'g', 17));
    };
    Exec("UPDATE S2_7 SET R0=0.2509 WHERE ID_Name='L1'");
    setL2X0(0.0009);
    StartStatementLog();
    EXPECT_EQ(CSTCalDataTransfer(kJob, kCaseLF, db(), &m_base).SaveSDataToBaseDB("NEW", false), 0);
    EXPECT_DOUBLE_EQ(Base("CDB_ACLINEBAK", "R0", "L1"), 0.25);
    // The tolerance stands in the statement with six decimals.
    EXPECT_NE(SentStartingWith("insert into Tac(").find("-b.X0)>0.001000 or"), std::string::npos);

    Exec("UPDATE S2_7 SET R0=0.2511 WHERE ID_Name='L1'");
    setL2X0(0.0011);
    EXPECT_EQ(CSTCalDataTransfer(kJob, kCaseLF, db(), &m_base).SaveSDataToBaseDB("NEW", false), 0);
    EXPECT_NEAR(Base("CDB_ACLINEBAK", "R0", "L1"), 0.2511, 1e-12);
    EXPECT_NEAR(Base("CDB_ACLINEBAK", "X0", "L2"), 48.4 + 0.0011, 1e-9);
    EXPECT_NEAR(Base("CDB_ACLINEBAK", "B0_Half", "L2"), 100, 1e-9) << "back to microsiemens";
    EXPECT_EQ(feedback().texts(1),
              (std::vector<std::string>{"回存元件总数：0", "回存元件总数：0", "回存交流线数目：2",
                                        "回存元件总数：2"}))
        << "the second total 0: 0.0009 is within the tolerance 0.001";
    EXPECT_TRUE(feedback().texts(2).empty());
    EXPECT_EQ(m_base.ModifiedTableTypes(), (std::vector<int>{102})) << "over all three runs";
}

TEST_F(SaveBack, InPlaceEveryFamilySavesItsStabilityColumnsAndSvcsNever)
{
    ChangeEveryFamily();
    // Named rows go back in ohms at their I node's base voltage, 220 kV (Zb = 484 ohm):
    // T3 (two-winding), P2 (phase shifter), winding 3 of W1.
    Exec("UPDATE S3_7 SET X0=X0+0.01 WHERE ID_Name='T3'");
    Exec("UPDATE S3_7 SET R0=R0+0.001 WHERE ID_Name='P2'");
    Exec("UPDATE S3_7 SET X0=X0+0.01 WHERE ID_Name='W1' AND Ntype=33");
    StartStatementLog();
    CSTCalDataTransfer job(kJob, kCaseLF, db(), &m_base);
    ASSERT_EQ(job.SaveSDataToBaseDB("NEW", false), 0);

    EXPECT_EQ(feedback().texts(1),
              (std::vector<std::string>{"回存交流线数目：1", "回存并联电容电抗器数目：1",
                                        "回存串联电容电抗器数目：1", "回存两绕组变压器数目：2",
                                        "回存移相变压器数目：2", "回存三绕组变压器数目：4",
                                        "回存直连线数目：1", "回存发电机数目：1", "回存负荷数目：1",
                                        "回存元件总数：14"}));
    EXPECT_TRUE(feedback().texts(2).empty());
    EXPECT_EQ(m_base.ModifiedTableTypes(),
              (std::vector<int>{102, 103, 104, 105, 107, 106, 108, 109, 110}));

    // Every row of the two-ended families and the shunts, "ID_Name|R0|X0", in the base's own
    // units: per unit as in the job, ohms times Zb (484 at 220 kV; C1's 121 at 110 kV); the
    // rows not changed (L2 to L4, T2) as they stood. The reals to twelve decimals (+0e0 shows
    // the rounded double in its shortest form).
    QStringList rows;
    for (const char* t : {"CDB_ACLINEBAK", "CDB_PCAPREABAK", "CDB_SCAPREABAK", "CDB_TRANS_2WBAK",
                          "CDB_SHIFTBAK"}) {
        rows << QString("SELECT CONCAT_WS('|', ID_Name, ROUND(R0, 12)+0e0, ROUND(X0, 12)+0e0) "
                        "FROM %1")
                    .arg(t);
    }
    EXPECT_EQ(Rows(rows.join(" UNION ALL ") + " ORDER BY 1"),
              (std::vector<std::string>{"C1|0|2480.5", "L1|0.26|0.75", "L2|4.84|48.4", "L3|1|1",
                                        "L4|9|9", "P1|0.013|0.06", "P2|0.968|9.68",
                                        "S1|0.484|-101.64", "T1|0.002|0.05", "T2|0.5|0.5",
                                        "T3|0.968|24.2"}));
    EXPECT_EQ(Rows("SELECT CONCAT_WS('|', ID_Name, R10, X10, R20, R30, X30, Name_1, Name_2, "
                   "Name_3, ID_No1, ID_No3) FROM CDB_TRANS_3WBAK WHERE ID_Name<>'W2' ORDER BY 1"),
              (std::vector<std::string>{"W1|4.84|48.4|1|9.68|101.64|N1|N3|N4|1|3",
                                        "W3|0.02|0.1|0.03|0.04|0.3|N2|N3|N4|4|6"}));
    // Only the ten compared DC columns go back (Tdo, not DC_Model); the SVC stays.
    EXPECT_EQ(Rows("SELECT CONCAT_WS('|', Tdo, DC_Model) FROM CDB_DCLINEBAK UNION ALL SELECT "
                   "Gen_Model FROM CDB_GENERATBAK UNION ALL SELECT Load_Model FROM CDB_LOADBAK "
                   "UNION ALL SELECT X_Fixed FROM CDB_SVCBAK WHERE ID_Name='V1'"),
              (std::vector<std::string>{"0.75|2", "7", "4", "1210"}));
    // The index statement names no table: sent, refused, and of no consequence.
    const auto sent = SentStatements();
    EXPECT_EQ(std::count(sent.begin(), sent.end(), "Create index Idtype on Ntype"), 1);
}

TEST_F(SaveBack, MendedRunIntoAGroupSavesEveryFamilyWithItsValues)
{
    ChangeEveryFamily();
    StartStatementLog();
    CSTCalDataTransfer job(kJob, kCaseLF, db(), &m_base);
    job.SetStatementMode(SaveStatementMode::Mended);
    ASSERT_EQ(job.SaveSDataToBaseDB("NEW", true), 0);
    EXPECT_TRUE(feedback().texts(2).empty());
    EXPECT_EQ(feedback().texts(1).back(), "回存元件总数：11");
    EXPECT_EQ(m_base.ModifiedTableTypes(),
              (std::vector<int>{102, 103, 104, 105, 107, 106, 108, 109, 110, 12}));

    // Each copy keeps its source row's values, the changed ones from the job.
    EXPECT_EQ(Rows("SELECT CONCAT_WS('|', Valid, I_Name, ID_No, Unit, R1, R0, X0, Type, Rate_Ka) "
                   "FROM CDB_ACLINEBAK WHERE GrpName='NEW'"),
              (std::vector<std::string>{"1|N1|1|1|0.01|0.26|0.75|LGJ|1.2"}));
    EXPECT_EQ(Rows("SELECT CONCAT_WS('|', Valid, Node_Name, ID_No, R1, X1, R0, X0, Rate_Capa) "
                   "FROM CDB_PCAPREABAK WHERE GrpName='NEW'"),
              (std::vector<std::string>{"1|N3|1|12.1|1210|0|2480.5|30"}))
        << "each column its own value, the positive-sequence pair kept";
    EXPECT_EQ(Rows("SELECT CONCAT_WS('|', PhyPos, Valid, I_Name, J_Name, R1, X1, R0, "
                   "ROUND(X0, 9)+0e0, Owner) FROM CDB_SCAPREABAK WHERE GrpName='NEW'"),
              (std::vector<std::string>{"3|1|N1|N2|0.242|-48.4|0.484|-101.64|1"}));
    EXPECT_EQ(Rows("SELECT CONCAT_WS('|', Valid, I_Name, J_Name, Unit, X1, Tk, Zero_Conn, R0, X0) "
                   "FROM CDB_TRANS_2WBAK WHERE GrpName='NEW'"),
              (std::vector<std::string>{"1|N1|N3|1|0.05|1|IG|0.002|0.05"}));
    EXPECT_EQ(Rows("SELECT CONCAT_WS('|', ID_Name, I_Name, J_Name, ID_No, Owner, Valid, Rpi_Ohm, "
                   "OP_Mode, DC_Model, reg_set, Ireg_fon, Tdo, N_rs, V_rs_Perc) FROM "
                   "CDB_DCLINEBAK WHERE GrpName='NEW'"),
              (std::vector<std::string>{"DC1|N1|N4|1|1|1|2.5|3|2|1.5|7|0.75|4|80"}))
        << "every value in its own column";
    EXPECT_EQ(Scalar("SELECT Gen_Model FROM CDB_GENERATBAK WHERE GrpName='NEW'"), "7");
    EXPECT_EQ(Scalar("SELECT Load_Model FROM CDB_LOADBAK WHERE GrpName='NEW'"), "4");
    EXPECT_EQ(Count("CDB_SVCBAK WHERE GrpName='NEW'"), 0);
    EXPECT_DOUBLE_EQ(Base("CDB_ACLINEBAK", "R0", "L1"), 0.25);
    EXPECT_DOUBLE_EQ(Base("CDB_DCLINEBAK", "Tdo", "DC1"), 0.5);

    // The updates in the group go as designed; the mended DC copy names the group once.
    const auto sent = SentStatements();
    auto has = [&](const std::string& s) {
        return std::find(sent.begin(), sent.end(), s) != sent.end();
    };
    EXPECT_TRUE(has("update CDB_ACLINEBAK a, Tac b set a.R0=b.R0, a.X0=b.X0, a.B0_Half=b.B0_Half "
                    "where a.GrpName='NEW' and a.ID_Name=b.ID_Name"));
    EXPECT_TRUE(has("update CDB_TRANS_3WBAK a, T3w b set a.Name_2=b.J_Name, ID_No2=b.ID_No, "
                    "a.R20=b.R0, a.X20=b.X0 where a.ID_Name=b.ID_Name and a.GrpName='NEW' and "
                    "b.Ntype=32"));
    EXPECT_NE(SentStartingWith("insert into CDB_DCLINEBAK(GrpName, ID_Name,")
                  .find("select 'NEW', a.ID_Name, a.I_Name,"),
              std::string::npos);
}

// A 20-byte group name with a quote and a backslash names its own rows; one byte more is refused.
// With the guard of a shared database: TLoad held by another run makes the save-back say once for
// whom it waits and give up having written nothing; let go, it saves; a new group whose name
// exists is refused. (A holder that is gone is taken over as in every transfer.)
TEST_F(SaveBack,
       A20ByteGroupNameWithQuoteAndBackslashNamesItsRowsTheGuardWaitsForTLoadRefusesAnExistingGroup)
{
    Exec("UPDATE S5_7 SET Gen_Model=7");
    CSTCalDataTransfer job(kJob, kCaseLF, db(), &m_base);
    const QString group = QString::fromUtf8("O'Neil\\1华北电网调度");
    EXPECT_EQ(job.SaveSDataToBaseDB(group, true), 0);
    EXPECT_EQ(Rows("SELECT GrpName FROM CDB_DATAGROUPBAK WHERE GrpName LIKE 'O''N%' UNION ALL "
                   "SELECT CONCAT_WS('|', GrpName, Gen_Model) FROM CDB_GENERATBAK WHERE "
                   "GrpName LIKE 'O''N%' OR GrpName='G'"),
              (std::vector<std::string>{group.toStdString(), "G|6", group.toStdString() + "|7"}));

    const auto checksums = testsupport::BaseChecksums(checker());
    EXPECT_EQ(job.SaveSDataToBaseDB(group + "A", true), 1);
    EXPECT_EQ(feedback().texts(2), std::vector<std::string>{"数据组名 " + group.toStdString() +
                                                            "A 超过20字节（汉字按2字节计），数据组"
                                                            "中存不下，回存未执行，基础库未作任何"
                                                            "修改。"});
    EXPECT_EQ(testsupport::BaseChecksums(checker()), checksums);
    EXPECT_EQ(job.SaveSDataToBaseDB(group + "A", false), 0);
    EXPECT_EQ(Scalar("SELECT Gen_Model FROM CDB_GENERATBAK WHERE GrpName='G'"), "7");

    Exec("UPDATE S6_7 SET Load_Model=4");
    QSqlDatabase other = scratch().openSecondConnection("tload_holder");
    unsigned long holderId = 0;
    ASSERT_TRUE(ConnectionId(&other, &holderId));
    auto holder = std::make_unique<CRunGuard>(&other, 0);
    ASSERT_TRUE(holder->Take({runguard::WorkTable("TLoad")}));

    const QString holderText = QString("主机 %1 上进程 %2 的连接 %3")
                                   .arg(QSysInfo::machineHostName())
                                   .arg(QCoreApplication::applicationPid())
                                   .arg(holderId);
    const QString node = Scalar("SELECT CONCAT(@@hostname, ':', @@port)");
    const QString who = holderText + "（节点 " + node + "）";
    job.SetRunGuard(1);
    feedback().clear();
    EXPECT_EQ(job.SaveSDataToBaseDB("NEW", false), 1);
    EXPECT_EQ(feedback().texts(1),
              (std::vector<std::string>{
                  ("工作表 TLoad 正由" + who + "使用，等待其完成，至多 1 秒……").toStdString()}));
    const std::string refusal =
        ("等待 1 秒后工作表 TLoad仍由" + who + "使用，本次运行未写入任何数据。").toStdString();
    EXPECT_EQ(feedback().texts(2), (std::vector<std::string>{refusal}));
    EXPECT_EQ(job.RunGuardRefusal().toStdString(), refusal);
    EXPECT_EQ(Scalar("SELECT Load_Model FROM CDB_LOADBAK"), "3");
    EXPECT_EQ(Scalar("SHOW TABLES LIKE 'TLoad'"), "");

    holder->Release();
    feedback().clear();
    EXPECT_EQ(job.SaveSDataToBaseDB("NEW", false), 0);
    EXPECT_EQ(Scalar("SELECT Load_Model FROM CDB_LOADBAK"), "4");
    EXPECT_EQ(Scalar("SELECT COUNT(*) FROM CALC_LEASE"), "0");

    EXPECT_EQ(job.SaveSDataToBaseDB("G", true), 1);
    EXPECT_EQ(feedback().texts(2),
              (std::vector<std::string>{
                  "数据组 G 已存在（已由其他运行新建），本次新建数据组的回存未写入任何数据。"}));
    holder.reset();
}

TEST_F(SaveBack, APreviewTellsRowForRowWhatTheSaveBackThenWritesAndChangesNothing)
{
    using namespace testsupport;
    ChangeEveryFamily();
    const Snapshot before = Take(checker(), kWorkingCopies);
    const auto sums = Checksums();
    CSTCalDataTransfer job(kJob, kCaseLF, db(), &m_base);
    const SaveBackPreview preview = job.PreviewSDataToBaseDB("NEW", false);
    EXPECT_EQ(preview.result, 0) << preview.Report().toStdString();
    EXPECT_EQ(Checksums(), sums) << "no table of the database changed";
    EXPECT_EQ(TablesLeft(db(), kWorkTables), std::vector<std::string>{})
        << "TLoad, made and dropped, too";
    EXPECT_EQ(job.Nacline, 0) << "the transfer's counts stay as they were";
    EXPECT_EQ(preview.ChangedElements(), 9) << "W3 once, although its three windings count";
    EXPECT_TRUE(preview.additions.empty());

    EXPECT_EQ(job.SaveSDataToBaseDB("NEW", false), 0);
    std::vector<std::string> changes, added;
    Diff(before, Take(checker(), kWorkingCopies), changes, added);
    EXPECT_EQ(PreviewChanges(preview), changes);
    EXPECT_EQ(added, std::vector<std::string>{});
    EXPECT_EQ(preview.flags, m_base.ModifiedTableTypes());
    EXPECT_EQ(Texts(preview.messages), Texts(feedback().messages()));
}

// ---- Runs that stop: one row per refusal, each into a group unless it says so ----

namespace {

// The rows of group NEW that a stopped run can leave (the other families' faithful copies
// are refused; SVCs are never copied), with their values, and the group's own row.
const char* const kGroupRows =
    "SELECT CONCAT_WS('|', 'SH', ID_Name, ROUND(R0, 6), Ang_Shift) FROM CDB_SHIFTBAK WHERE "
    "GrpName='NEW' UNION ALL SELECT CONCAT_WS('|', '3W', ID_Name, R10, R20, R30, Name_N, "
    "Zero_Conn2) FROM CDB_TRANS_3WBAK WHERE GrpName='NEW' UNION ALL "
    "SELECT CONCAT_WS('|', 'GEN', ID_Name, Node_Name, Pg, Valid, Gen_Model, PSS_Par, Xdp) FROM "
    "CDB_GENERATBAK WHERE GrpName='NEW' UNION ALL "
    "SELECT CONCAT_WS('|', 'LOAD', ID_Name, Node_Name, No_Load, Pl, Load_Model, Load_Par, "
    "Z_Percent) FROM CDB_LOADBAK WHERE GrpName='NEW' UNION ALL "
    "SELECT 'GROUP' FROM CDB_DATAGROUPBAK WHERE GrpName='NEW'";
const std::string kFail = "Fail to execute SQL: ";
const char* const kNoLoad = "CREATE TRIGGER no_load BEFORE UPDATE ON CDB_LOADBAK FOR EACH ROW "
                            "SIGNAL SQLSTATE '45000' SET MESSAGE_TEXT='no load'";

} // namespace

struct StoppedRun
{
    const char* name;
    std::vector<std::string> changes; // after ChangeEveryFamily when `allOrNothing`
    bool allOrNothing; // every family changed, mended, in place; else faithful into NEW
    std::vector<std::string> counts;    // level 1, in order
    std::vector<std::string> errors;    // level 2, in order, each up to its length here
    std::vector<std::string> fatal;     // level 3
    std::vector<int> flags;             // the table types flagged
    std::vector<std::string> group;     // kGroupRows after the run
    bool untouched;                     // no table of the database changed
    std::string next;                   // the next run in place fails with this, or succeeds
    const char* undo = "";
};

class StoppedRuns : public SaveBack, public ::testing::WithParamInterface<StoppedRun>
{};

TEST_P(StoppedRuns, TheRunSaysWhereItStoppedAndLeavesWhatItSaysItLeaves)
{
    const StoppedRun& r = GetParam();
    if (r.allOrNothing) {
        ChangeEveryFamily();
    }
    for (const std::string& change : r.changes) {
        Exec(QString::fromStdString(change));
    }
    const auto sums = Checksums();
    CSTCalDataTransfer job(kJob, kCaseLF, db(), &m_base);
    job.SetStatementMode(r.allOrNothing ? SaveStatementMode::Mended : SaveStatementMode::Faithful);
    job.SetAllOrNothing(r.allOrNothing);
    EXPECT_EQ(job.SaveSDataToBaseDB("NEW", !r.allOrNothing), 1);
    if (*r.undo) {
        Exec(r.undo);
    }
    EXPECT_EQ(feedback().texts(1), r.counts);
    const auto errors = feedback().texts(2);
    ASSERT_EQ(errors.size(), r.errors.size()) << ::testing::PrintToString(errors);
    for (size_t i = 0; i < errors.size(); ++i) {
        EXPECT_EQ(errors[i].substr(0, r.errors[i].size()), r.errors[i]);
    }
    EXPECT_EQ(feedback().texts(3), r.fatal);
    EXPECT_EQ(m_base.ModifiedTableTypes(), r.flags);
    EXPECT_EQ(Rows(kGroupRows), r.group);
    if (r.untouched) {
        EXPECT_EQ(Checksums(), sums);
    }

    // What the run left on its connection or in the database decides the next one.
    feedback().clear();
    EXPECT_EQ(CSTCalDataTransfer(kJob, kCaseLF, db(), nullptr).SaveSDataToBaseDB("NEW", false),
              r.next.empty() ? 0 : 1);
    const auto next = feedback().texts(2);
    EXPECT_EQ(next.empty() ? "" : next[0].substr(0, r.next.size()), r.next);
}

INSTANTIATE_TEST_SUITE_P(
    Table, StoppedRuns,
    ::testing::Values(
        // The faithful copies name a column twice (AC line, shunt, series, two-winding): the
        // run stops at the first with nothing saved and its work table left on the connection.
        StoppedRun{"AcLine", {"UPDATE S2_7 SET R0=R0+0.01 WHERE ID_Name='L1'"}, false, {},
                   {kFail + "insert into CDB_ACLINEBAK(GrpName, ID_Name, Valid, I_Name, J_Name, "
                            "ID_No, Valid,I_Break,"},
                   {}, {}, {}, true, kFail + "Create temporary Table Tac"},
        StoppedRun{"Shunt", {"UPDATE S2_7 SET X0=X0+0.5 WHERE ID_Name='C1'"}, false, {},
                   {kFail + "insert into CDB_PCAPREABAK(GrpName, ID_Name,Valid, Node_Name, "
                            "ID_No,Valid, Unit, R0, X0, R0, X0,"},
                   {}, {}, {}, true, kFail + "Create temporary Table TPCR"},
        StoppedRun{"Series", {"UPDATE S2_7 SET X0=X0-0.01 WHERE ID_Name='S1'"}, false, {},
                   {kFail + "insert into CDB_SCAPREABAK(GrpName, ID_Name, PhyPos,Valid, I_Name, "
                            "J_Name, ID_No, Valid,"},
                   {}, {}, {}, true, kFail + "Create temporary Table TSCR"},
        StoppedRun{"TwoWinding", {"UPDATE S3_7 SET X0=X0+0.01 WHERE ID_Name='T1'"}, false, {},
                   {kFail + "insert into CDB_TRANS_2WBAK(GrpName, ID_Name, PhyPos,Valid, I_Name, "
                            "J_Name, ID_No, Valid,"},
                   {}, {}, {}, true, kFail + "Create temporary Table T2W"},
        // The DC copy has a value more than columns: the shifter's and the three-winding
        // transformer's copies stand (the shifter's names no Ang_Shift; one copy of the
        // transformer, every winding updated), no group row.
        StoppedRun{"DcLine",
                   {"UPDATE S3_7 SET R0=R0+0.01 WHERE ID_Name='P1'",
                    "UPDATE S3_7 SET R0=R0+0.01 WHERE ID_Name='W3'", "UPDATE S4_7 SET Tdo=0.75"},
                   false, {"回存移相变压器数目：1", "回存三绕组变压器数目：3"},
                   {kFail + "insert into CDB_DCLINEBAK(GrpName, ID_Name, I_Name, J_Name, ID_No, "
                            "Owner,Valid,"},
                   {}, {107, 106}, {"SH|P1|0.013000|0", "3W|W3|0.02|0.03|0.04|NS|IG"}, false,
                   kFail + "Create temporary Table Tdc"},
        // All or nothing: the loads, the last family that writes, refused in place in the
        // mended mode: the eight families before are undone and no TLoad is left.
        StoppedRun{"LoadsAllOrNothing", {kNoLoad}, true,
                   {"回存交流线数目：1", "回存并联电容电抗器数目：1", "回存串联电容电抗器数目：1",
                    "回存两绕组变压器数目：1", "回存移相变压器数目：1", "回存三绕组变压器数目：3",
                    "回存直连线数目：1", "回存发电机数目：1"},
                   {kFail + "update CDB_LOADBAK", sbo::MSG_NOTHING_SAVED}, {}, {}, {}, true, "",
                   "DROP TRIGGER no_load"},
        // The load's copy refused (a column it names taken away): TLoad, an ordinary table,
        // stays, and every run after fails at its create, in place too.
        StoppedRun{"LoadCopy",
                   {"ALTER TABLE CDB_LOADBAK CHANGE No_Load No_Load_Away INT",
                    "UPDATE S6_7 SET Load_Model=4"},
                   false, {},
                   {kFail + "insert into CDB_LOADBAK(GrpName, ID_Name, Node_Name, No_Load,"}, {},
                   {}, {}, false, kFail + "Create Table TLoad select",
                   "ALTER TABLE CDB_LOADBAK CHANGE No_Load_Away No_Load INT"},
        // The group's row refused: level 3 and 1, after the element rows (the faithful
        // copies of the generator and the load, with their values) and their flags.
        StoppedRun{"GroupRow",
                   {"UPDATE S5_7 SET Xdp=Xdp+0.002, PSS_Par=9", "UPDATE S6_7 SET Load_Par=8",
                    "CREATE TRIGGER no_group BEFORE INSERT ON CDB_DATAGROUPBAK FOR EACH ROW "
                    "SIGNAL SQLSTATE '45000' SET MESSAGE_TEXT='no group'"},
                   false, {"回存发电机数目：1", "回存负荷数目：1", "回存元件总数：2"}, {},
                   {"执行新增数据组 NEW 出错！"}, {109, 110},
                   {"GEN|G1|N1|1|1|6|9|0.302", "LOAD|D1|N3|2|0.5|3|8|12.7"}, false, "",
                   "DROP TRIGGER no_group"}),
    [](const ::testing::TestParamInfo<StoppedRun>& info) { return info.param.name; });
