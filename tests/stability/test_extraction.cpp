// Extraction of a stability job by the scheme of its load-flow case, and under server faults.

#include "Faults.h"
#include "StabilityNetwork.h"
#include "stability/jobdata/STCalDataTransfer.h"

using namespace sttest;
using testsupport::Fault;

namespace {

const char* const kJobTables[] = {"S2_7", "S3_7", "S4_7", "S5_7", "S6_7", "S7_7"};

} // namespace

class Extraction : public StabilityTest
{
protected:
    static std::string Counters()
    {
        const auto rows = Rows("SELECT CONCAT_WS('|', Nbus, Ngenerat, Nload, Nacline, Ndcline, "
                               "Ntrans, Nsvc) FROM ST_CASE WHERE Case_No=7");
        return rows.size() == 1 ? rows[0] : "rows: " + std::to_string(rows.size());
    }
};

TEST_F(Extraction,
       TheLoadFlowCaseSchemePicksPerUnitRowsCountedNoSchemeNoneALongOneRefusedUnlessChineseFits)
{
    Exec("INSERT INTO CDB_NETBUSMAPBAK(Case_No, Node_Name) VALUES (7, 'N1'), (8, 'N1')");
    Exec("INSERT INTO S5_7(ID_Name) VALUES ('stale')");
    StartStatementLog();
    CSTCalDataTransfer job(kJob, kCaseLF, db(), nullptr);
    EXPECT_EQ(job.ImportSDataFromBaseDB(), 0);

    // S2: the lines of group G (not L4 of OUT), in per unit on Zb = 484 ohm at 220 kV; B0_Half
    // from microsiemens; L3's I node has no CDB_NODE row: counted, not inserted. The series
    // capacitor by its I node, the shunt by its node at 110 kV (Zb = 121 ohm). S3: zero-sequence
    // connections coded, T2 ("NO") left out; T3, P2 and W1 in ohms at 220 kV. A winding a row,
    // from the star node, its own parallel number; "NO" windings left out. As
    // "ID_Name:Ntype:I_Name:J_Name:ID_No:R0:X0:B0_Half" (S2) and "…:ID_No:ZCtype:R0:X0" (S3),
    // the reals to twelve decimals (+0e0 shows the rounded double in its shortest form).
    EXPECT_EQ(Rows("SELECT CONCAT_WS(':', ID_Name, Ntype, I_Name, J_Name, ID_No, "
                   "ROUND(R0, 12)+0e0, ROUND(X0, 12)+0e0, ROUND(B0_Half, 12)+0e0) FROM S2_7 "
                   "UNION ALL SELECT CONCAT_WS(':', ID_Name, Ntype, I_Name, J_Name, ID_No, ZCtype, "
                   "ROUND(R0, 12)+0e0, ROUND(X0, 12)+0e0) FROM S3_7 ORDER BY 1"),
              (std::vector<std::string>{
                  "C1:3:N3:N3:1:0:20:0", "L1:1:N1:N2:1:0.25:0.75:0.02",
                  "L2:1:N1:N3:2:0.01:0.1:0.0484", "P1:2:N2:N3:1:0:0.003:0.06",
                  "P2:2:N2:N4:1:3:0.001:0.02", "S1:2:N1:N2:1:0.001:-0.2:0",
                  "T1:1:N1:N3:1:1:0.002:0.04", "T3:1:N1:N4:1:2:0.002:0.04",
                  "W1:31:NS:N1:1:1:0.01:0.1", "W1:33:NS:N4:3:3:0.02:0.2",
                  "W2:32:NS:N3:1:2:0.01:0.02", "W3:31:NS:N2:4:1:0.01:0.1",
                  "W3:32:NS:N3:5:1:0.02:0.2", "W3:33:NS:N4:6:1:0.03:0.3"}));

    // S4 to S7 as stored (the stale S5 row gone), but the SVC's reactance converted at its
    // node's 110 kV.
    EXPECT_EQ(Rows("SELECT CONCAT_WS('|', ID_Name, I_Name, DC_Model, reg_type, reg_set, "
                   "Ireg_fon, Bmin_D, T_relay, K_fadc, Tdo, Tdc, N_rs, V_rs_Perc) FROM S4_7 "
                   "UNION ALL SELECT CONCAT_WS('|', ID_Name, Node_Name, Gen_Model, Gen_Par, "
                   "AVR_Model, AVR_Par, GOV_Model, GOV_Par, PSS_Model, PSS_Par, Rate_MVA, "
                   "Rate_MW, Xdp, Xdpp, X2, Tj) FROM S5_7 UNION ALL SELECT CONCAT_WS('|', "
                   "ID_Name, Node_Name, No_Load, Load_Model, Load_Par, Z_Percent) FROM S6_7 "
                   "UNION ALL SELECT CONCAT_WS('|', ID_Name, Valid, Set_Bus, Ctrl_Bus, Model, "
                   "Par_No, X_Fixed) FROM S7_7 ORDER BY 1"),
              (std::vector<std::string>{"D1|N3|2|3|7|12.7",
                                        "DC1|N1|2|1|1.5|7|-5|0.2|3|0.5|0.125|4|80",
                                        "G1|N1|6|1|12|2|3|4|5|6|300|270|0.3|0.2|0.25|8",
                                        "V1|1|N3|N4|2|5|10", "V2|0|N1|N1|1|1|0.5"}));

    // Shunt and series compensators count as AC lines, L3 too; each winding counts; Nbus
    // is the constant 1. The job had no ST_CASE row: it got one.
    EXPECT_EQ(Counters(), "1|1|1|5|1|10|2");
    EXPECT_EQ(Rows("SELECT Case_No FROM CDB_NETBUSMAPBAK"), std::vector<std::string>{"8"});
    EXPECT_EQ(Scalar("SHOW TABLES LIKE 'tmp'"), "tmp") << "the last family leaves tmp behind";
    EXPECT_EQ(feedback().texts(1),
              (std::vector<std::string>{"基础库数据抽取开始...", "基础库数据抽取完成。"}));

    // On the wire: the lower-case DC table, the tab before Case_No, S6's create that fails
    // on the tmp S5 left and takes the drop-and-create path.
    const auto sent = SentStatements();
    auto count = [&](const std::string& s) { return std::count(sent.begin(), sent.end(), s); };
    EXPECT_EQ(SentStartingWith("INSERT INTO s4_7(EleID,").empty(), false);
    EXPECT_EQ(count("UPDATE ST_CASE SET Nbus=1,Ngenerat=1,Nload=1,Nacline=5,Ndcline=1,Ntrans=10,"
                    "Nsvc=2 WHERE\tCase_No=7"),
              1);
    EXPECT_EQ(count("CREATE TABLE tmp ( ID int )"), 2);
    EXPECT_EQ(count("CREATE TABLE tmp ( ID int unsigned, INDEX(ID) )"), 4);
    EXPECT_EQ(count("drop TABLE tmp"), 1);
    EXPECT_EQ(count("DELETE FROM S4_7"), 2) << "S4 is emptied twice";

    // A second run: the counters of the object went on, except the constant Nbus and Nsvc,
    // which each run sets to 0 before counting. The case row, now there, keeps its other
    // columns. (That each run empties the job tables first: ExtractionFaults' next run.)
    Exec("UPDATE ST_CASE SET Case_Name='fault A', CASE_LF=5, Nfault=3");
    ASSERT_EQ(job.ImportSDataFromBaseDB(), 0);
    EXPECT_EQ(Counters(), "1|2|2|10|2|20|2");
    EXPECT_EQ(Rows("SELECT CONCAT_WS('|', Case_Name, CASE_LF, Nfault) FROM ST_CASE"),
              (std::vector<std::string>{"fault A|5|3"}));

    // Case 0: the scheme is never read. The second constructor takes a scheme of its own.
    CSTCalDataTransfer none(kJob, 0, db(), nullptr);
    EXPECT_STREQ(none.SchemeName(), "");
    EXPECT_EQ(none.ImportSDataFromBaseDB(), 0);
    EXPECT_EQ(Counters(), "1|0|0|0|0|0|0");
    // A case with no LF_CASE row, and one whose 40-character scheme is cut to 31 bytes,
    // which the extraction refuses before it empties anything.
    EXPECT_STREQ(CSTCalDataTransfer(kJob, 99, db(), nullptr).SchemeName(), "");
    Exec("INSERT INTO LF_CASE(Case_No, SCHEME) VALUES (8, "
         "'0123456789012345678901234567890123456789')");
    CSTCalDataTransfer cut(kJob, 8, db(), nullptr);
    EXPECT_STREQ(cut.SchemeName(), "0123456789012345678901234567890");
    Exec("INSERT INTO S2_7(ID_Name) VALUES ('KEPT')");
    EXPECT_EQ(cut.ImportSDataFromBaseDB(), 1);
    EXPECT_EQ(Rows("SELECT ID_Name FROM S2_7"), (std::vector<std::string>{"KEPT"}));
    EXPECT_EQ(feedback().texts(2),
              std::vector<std::string>{"计算方案名 0123456789012345678901234567890123456789 超过"
                                       "31字节（汉字按2字节计），无法按方案抽取暂稳数据，作业表未"
                                       "作任何修改。"});
    feedback().clear();
    // Fifteen Chinese characters are 30 bytes as the design counted them: found whole.
    QByteArray other = "华北电网二零二五年冬季运行方式";
    Exec("UPDATE CDB_SCHEMEINFBAK SET SchName='" + other + "' WHERE ID=2");
    CSTCalDataTransfer byName(other.data(), db());
    EXPECT_EQ(byName.ImportSDataFromBaseDB(), 0);
    EXPECT_EQ(Rows("SELECT ID_Name FROM S2_0"), (std::vector<std::string>{"L4"}));
    // A scheme whose name holds a quote picks nothing and breaks no statement.
    char quoted[] = "O'THER";
    EXPECT_EQ(CSTCalDataTransfer(quoted, db()).ImportSDataFromBaseDB(), 0);
    EXPECT_EQ(Count("S2_0"), 0);
    EXPECT_TRUE(feedback().texts(2).empty());
    // An empty base-power table leaves 1.0.
    Exec("DELETE FROM CDB_SBBAK");
    EXPECT_DOUBLE_EQ(CSTCalDataTransfer(kJob, kCaseLF, db(), nullptr).BasePower(), 1.0);
}

// A failed family tells of itself and the run goes on; only the counters' update that
// cannot be written makes the run fail.
struct ExtractionFault
{
    const char* name;
    Fault fault;
    const char* table;
    int result;
    std::vector<std::string> errors; // level 2, in order, each up to its column list
    std::string tables;              // Tables() after the run
    std::string counters;            // Counters() after the run
};

class ExtractionFaults : public Extraction, public ::testing::WithParamInterface<ExtractionFault>
{
protected:
    void SetUp() override
    {
        Extraction::SetUp();
        if (HasFatalFailure() || IsSkipped()) {
            return;
        }
        ASSERT_EQ(CSTCalDataTransfer(kJob, kCaseLF, db(), nullptr).ImportSDataFromBaseDB(), 0);
        for (const char* t : kJobTables) {
            Exec(QString("INSERT INTO %1(ID_Name) VALUES ('MARK')").arg(t));
        }
        feedback().clear();
    }
    // The rows of each job table, S2_7 to S7_7, "*" where the row MARK put in before the
    // run still stands. A whole extraction gives 4 10 1 1 1 2 (the first test's tables).
    static std::string Tables()
    {
        std::string out;
        for (const char* t : kJobTables) {
            const bool marked = Count(QString("%1 WHERE ID_Name='MARK'").arg(t)) > 0;
            out += std::to_string(Count(t)) + (marked ? "* " : " ");
        }
        return out;
    }
};

TEST_P(ExtractionFaults, TheRunReportsLeavesTheBaseTablesAloneAndTheNextRunSucceeds)
{
    const ExtractionFault& f = GetParam();
    const auto before = testsupport::BaseChecksums(checker());
    {
        testsupport::FaultInjector fault(scratch(), db(), f.fault, f.table);
        ASSERT_TRUE(fault.Run([&](QSqlDatabase* connection) {
            CSTCalDataTransfer job(kJob, kCaseLF, connection, nullptr);
            EXPECT_EQ(job.ImportSDataFromBaseDB(), f.result);
        }));
    }
    std::vector<std::string> heads; // "Fail to execute SQL: insert into S2_7"
    for (const std::string& m : feedback().texts(2)) {
        heads.push_back(m.substr(0, m.find('(')));
    }
    EXPECT_EQ(heads, f.errors);
    EXPECT_EQ(feedback().texts(1).back(),
              f.result == 0 ? "基础库数据抽取完成。" : "基础库数据抽取开始...");
    EXPECT_EQ(Tables(), f.tables);
    EXPECT_EQ(Counters(), f.counters);
    EXPECT_EQ(testsupport::BaseChecksums(checker()), before) << "a base table changed";

    // The next run, on a fresh connection, fills every job table with the whole extraction.
    QSqlDatabase fresh = testsupport::FreshConnection(scratch());
    feedback().clear();
    CSTCalDataTransfer again(kJob, kCaseLF, &fresh, nullptr);
    EXPECT_EQ(again.ImportSDataFromBaseDB(), 0);
    EXPECT_TRUE(feedback().texts(2).empty()) << ::testing::PrintToString(feedback().texts(2));
    EXPECT_EQ(Tables(), "4 10 1 1 1 2 ");
    EXPECT_EQ(Counters(), "1|1|1|5|1|10|2");
    EXPECT_EQ(testsupport::BaseChecksums(checker()), before);
    fresh.close();
}

namespace {
const std::string kFail = "Fail to execute SQL: ";
const std::string kFill = kFail + "INSERT INTO tmp SELECT 0+substring";
const std::string kDbError = "数据库操作发生错误！";
const std::string kCounts = "更新暂稳作业表元件个数信息发生错误！";
const std::string kMissing = "S5_7表可能不存在, 导入计算数据发生错误！";
} // namespace

INSTANTIATE_TEST_SUITE_P(
    Table, ExtractionFaults,
    ::testing::Values(
        // The generators' rows locked: the emptying waits at S5_7 and the connection dies
        // there. S2_7 to S4_7 were emptied; every statement after fails, the counters' update
        // too (they stay those of SetUp's run).
        ExtractionFault{"Killed", Fault::Killed, "S5_7", 1,
                        {kMissing, kFill,
                         kFail + "insert into S2_7", kFill, kFill, kFail + "insert into S2_7",
                         kFill, kFill, kFill, kDbError, kDbError, kDbError, kFill, kCounts},
                        "0 0 0 2* 2* 3* ", "1|1|1|5|1|10|2"},
        // S5_7 missing: the emptying stops there, so S6_7 and S7_7 get the new rows beside
        // their old ones; only the generators' insert fails. The run succeeds.
        ExtractionFault{"MissingJobTable", Fault::MissingTable, "S5_7", 0,
                        {kMissing, kFail + "INSERT INTO S5_7"}, "4 10 1 2* 3* 5* ",
                        "1|1|1|5|1|10|2"},
        // The named-unit inserts join CDB_NODEBAK: each is refused and told (AC, SCR, PCR;
        // T2W, which ends S3's first routine; T3W's first winding; Shift; SVC). AC lines go
        // on after theirs (L1 stays), the other families stop: S3 keeps T1, W3's first
        // winding (W2's per-unit winding 2 never comes) and P1, S7 V2. Lines count by the
        // fill (5), transformers as inserted (3).
        ExtractionFault{"MissingNodeTable", Fault::MissingTable, "CDB_NODEBAK", 0,
                        {kFail + "insert into S2_7", kFail + "insert into S2_7",
                         kFail + "insert into S2_7", kFail + "insert into S3_7",
                         kFail + "insert into S3_7", kFail + "insert into S3_7",
                         kFail + "insert into S7_7"},
                        "1 3 1 1 1 1 ", "1|1|1|5|1|3|2"}),
    [](const ::testing::TestParamInfo<ExtractionFault>& info) { return info.param.name; });
