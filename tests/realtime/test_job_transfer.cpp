// A load-flow job into the real-time records, invalidated, and back, and both ways under
// server faults and with record names that hold quotes, backslashes and Chinese text.

#include "DbTest.h"
#include "Faults.h"
#include "RecordAccess.h"
#include "loadflow/realtime/LFCalDataToRTDB.h"
#include "records/NetworkRecords.h"
#include "records/RecordFlags.h"

#include <QStringList>

using namespace dtsdb;
using testsupport::Fault;
using testsupport::Fetch;
using testsupport::Hold;
using testsupport::Put;

class JobTransfer : public testsupport::DbTest
{
protected:
    void SetUp() override
    {
        DbTest::SetUp();
        ASSERT_TRUE(m_rtdb.open("job"));
        Truncate({"L1_1", "L2_1", "L3_1", "L4_1", "L5_1", "L6_1", "LK_1"});
    }
    void TearDown() override
    {
        m_rtdb.rollback();
        m_rtdb.close();
    }
    static std::vector<std::string> Boxes()
    {
        std::vector<std::string> shown;
        for (const auto& b : boxes().boxes()) {
            shown.push_back(b.text.toStdString());
        }
        return shown;
    }
    dbDatabase m_rtdb;
};

TEST_F(JobTransfer, ImportOverwritesInputsAndFlagsOfStandingRecordsThatInvalidationTakesOut)
{
    Put<nd>("N1", ND_OUTSERVICE);
    Put<ln>("L1_ac", LN_IOPEN);
    Put<ln>("S1_sc");
    Put<cp>("C1");
    for (const char* id : {"T1_2w", "T2_2w", "T3_3w2", "T4_2w", "T5_2w"}) {
        Put<xf>(id);
    }
    Put<un>("G1");
    Put<ld>("D1");
    Put<cb>("K1_sw");
    Put<dln>("DC1");
    bs b0;
    b0.id = 0, b0.q = 77;
    Put(b0);
    m_rtdb.commit();

    Exec("INSERT INTO L1_1 (Node_Name) VALUES ('N1'), ('N9')");
    Exec("INSERT INTO L2_1 (ID_Name, Valid, ID_No, I_Break, J_Break, R1, X1, B1_Half, Rate_Ka,"
         " Up_Limit, Mode_Ctrl, Par_No, Bus_Ctrl, Line_Ctrl, Value_Ctrl, Length_km, Type, Ntype)"
         " VALUES ('L1', 1, 2, 1, 0, 0.01, 0.1, 0.05, 1.2, 100, 3, 4, 'ABCDEFGHIJKLMNOPQRST',"
         " 5, 1.05, 42.5, 'LGJ-400', 1),"
         " ('S1', 0, 1, 1, 1, 0, -0.2, 0, 0, 0, 0, 0, '', 0, 0, 0, '', 2),"
         " ('C1', 0, 1, 1, 0, 0, 0.5, 9, 9, 9, 0, 0, 'N1', 0, 0, 9, 'cap', 4)");
    Exec("INSERT INTO L3_1 (ID_Name, Valid, ID_No, R1, X1, Gm, Bm, Tk, Ang_Shift, Rate_MVA,"
         " TapMax1, Vstep_Tap1, Vpos_Tap2, Ntype) VALUES"
         " ('T1', 1, 1, 0.001, 0.05, 0, 0, 1.025, 0, 180, 9, 1.25, -3, 1),"
         " ('T2', 0, 1, 0, 0.1, 1e-8, 0, 1, 0, 0, 0, 0, 0, 1),"
         " ('T2', 1, 7, 0, 0.2, 0.002, -0.02, 1, 0, 0, 0, 0, 0, 99),"
         " ('T3', 1, 1, 0, 0.3, 0, 0, 1, 0, 0, 0, 0, 0, 32),"
         " ('T4', 1, 1, 0, 0.1, 1e-8, 0, 1, 0, 0, 0, 0, 0, 1),"
         " ('T5', 1, 1, 0, 0.1, 9.9e-9, -9.9e-9, 1, 0, 0, 0, 0, 0, 1)");
    Exec("INSERT INTO L4_1 (ID_Name, Valid, Rpi_Ohm, OP_Mode, Vdrate_kV, I_Bridge, J_Tap)"
         " VALUES ('DC1', 1, 2.5, 3, 500, 2, 7)");
    Exec("INSERT INTO L5_1 (ID_Name, Valid, Mode_Ctrl, Pg, Qg, V0, Angle, Qmax, Qmin, Pmax, Pmin,"
         " Par_Group, Bus_Ctrl) VALUES ('G1', 1, 1, 0.4, 0.1, 1.045, 0, 0.5, -0.4, 1, 0, 2, 'B7'),"
         " ('G404', 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, '')");
    Exec("INSERT INTO L6_1 (ID_Name, Valid, No_Load, Pl, Ql) VALUES ('D1', 0, 3, 0.2, 0.05)");
    Exec("INSERT INTO LK_1 (ID_Name, Valid, Lbreak, ID_No, Ntype) VALUES ('K1', 1, 0, 2, 3)");

    CLFCalDataToRTDB job(1, db());
    EXPECT_EQ(job.ImportLDataToRTDB(), 0) << "missing records cost messages, not failure";

    using std::make_tuple;
    // S1 out of service by its Valid; T3 a second winding by its NType 32.
    EXPECT_EQ(make_tuple(Fetch<nd>("N1").q, Fetch<ln>("S1_sc").q, Fetch<xf>("T3_3w2").q),
              make_tuple(ND_INJOB, LN_INJOB | LN_OUTSERVICE, XF_INJOB));
    const ln l = Fetch<ln>("L1_ac"); // I end closed now, J end open
    EXPECT_EQ(make_tuple(l.q, l.ID_No, l.X1, l.B1_Half, l.Length_Km, std::string(l.Bus_Ctrl),
                         std::string(l.Type)),
              make_tuple(LN_INJOB | LN_JOPEN, 2, 0.1f, 0.05f, 42.5f,
                         std::string("ABCDEFGHIJKLMNOPQRST"), std::string("LGJ-400")));
    // A shunt out of service by Valid but with its I end closed ends in service.
    const cp c = Fetch<cp>("C1");
    EXPECT_EQ(make_tuple(c.q, c.X1, std::string(c.Type)),
              make_tuple(CP_INJOB, 0.5f, std::string("cap")));
    // Magnetising branch: none for Gm = Bm = 0; the division from 1e-8 on.
    const xf t1 = Fetch<xf>("T1_2w");
    EXPECT_EQ(make_tuple(t1.q, t1.Rm, t1.Xm, t1.Tk, t1.TapMax1, t1.Vstep_Tap1, t1.Vpos_Tap2),
              make_tuple(XF_INJOB, 0.0f, 0.0f, 1.025f, 9, 1.25f, -3));
    // T2's second row has an unknown NType: it keeps the id before it and overwrites T2.
    // The boundary: Gm of exactly 1e-8 is divided (Rm = 1e-8 / 1e-16), just below it not.
    const xf t2 = Fetch<xf>("T2_2w"), t4 = Fetch<xf>("T4_2w"), t5 = Fetch<xf>("T5_2w");
    EXPECT_EQ(make_tuple(t2.ID_No, t2.Rm, t2.Xm, t4.Rm, t4.Xm, t5.Rm, t5.Xm),
              make_tuple(7, static_cast<float>(0.002 / (0.002 * 0.002 + 0.02 * 0.02)),
                         static_cast<float>(-0.02 / (0.002 * 0.002 + 0.02 * 0.02)), 1e8f, 0.0f,
                         0.0f, 0.0f));
    const dln d = Fetch<dln>("DC1");
    EXPECT_EQ(make_tuple(d.q, d.Rpi_Ohm, d.OP_Mode, d.Vdrate_kV, d.I_Bridge, d.J_Tap),
              make_tuple(DLN_INJOB, 2.5f, 3, 500.0f, 2, 7));
    const un g = Fetch<un>("G1");
    EXPECT_EQ(make_tuple(g.q, g.Pg, g.V0, g.Qmin, g.Par_Group, std::string(g.Bus_Ctrl)),
              make_tuple(UN_INJOB, 0.4f, 1.045f, -0.4f, 2, std::string("B7")));
    // Ntype 3 is a switch.
    EXPECT_EQ(make_tuple(Fetch<ld>("D1").q, Fetch<ld>("D1").No_Load, Fetch<cb>("K1_sw").q,
                         Fetch<cb>("K1_sw").ID_No),
              make_tuple(LD_INJOB | LD_OUTSERVICE, 3, CB_INJOB | CB_OPEN, 2));
    EXPECT_EQ(feedback().texts(2), (std::vector<std::string>{
                                       "实时数据库中没有id为'G404'的发电机数据！",
                                       "实时数据库中没有id为'N9'的节点数据！",
                                   }));

    // Invalidation takes the records out of the job (their other bits stay) and forces the
    // topology bits only when asked.
    EXPECT_EQ(job.InValidateLFCalDataInRTDB(false), 0);
    EXPECT_EQ(make_tuple(Fetch<ln>("L1_ac").q, Fetch<nd>("N1").q, Fetch<cb>("K1_sw").q,
                         Fetch<ln>("L1_ac").topflags, Fetch<cb>("K1_sw").topflags),
              make_tuple(LN_JOPEN | LN_OUTSERVICE, ND_OUTSERVICE, CB_OPEN | CB_OUTSERVICE, 0u, 0u));
    EXPECT_EQ(job.InValidateLFCalDataInRTDB(true), 0);
    EXPECT_EQ(make_tuple(Fetch<ln>("L1_ac").topflags, Fetch<un>("G1").topflags,
                         Fetch<cb>("K1_sw").topflags),
              make_tuple(LN_TOP_INVALID, UN_TOP_INVALID, CB_TOP_INVALID));
    dbCursor<bs> b;
    ASSERT_EQ(b.select(), 1);
    EXPECT_EQ(b->q, 77) << "bs is not touched";

    // Nothing was committed: the caller's rollback takes it all back.
    m_rtdb.rollback();
    EXPECT_EQ(Fetch<nd>("N1").q, ND_OUTSERVICE);
}

TEST_F(JobTransfer, UpdateBackWritesStatesAndOperatingPointsWithTheExactStatements)
{
    Put<ln>("L1_AC", LN_JOPEN); // an upper-case suffix still counts
    Put<ln>("L2_ac", LN_OUTSERVICE);
    Put<cp>("C1");
    Put<xf>("T1_3w1");
    Put<xf>("T9_odd"); // no known suffix: NType 0, matches no row
    Put<cb>("K1_brk", CB_OPEN);
    Put<cb>("K2_xyz"); // neither suffix: Ntype 2 and three characters lost
    un g;
    g.id = "G1", g.Pg = 0.5f, g.Qg = -0.125f, g.V0 = 1.0f, g.Angle = 2.5f;
    Put(g);
    Exec("INSERT INTO L2_1 (ID_Name, Valid, I_Break, J_Break, Ntype) VALUES"
         " ('L1', 0, 0, 0, 1), ('L2', 1, 1, 1, 1), ('C1', 0, 0, 0, 3), ('X9', 1, 1, 1, 1)");
    Exec("INSERT INTO L3_1 (ID_Name, Valid, Ntype) VALUES ('T1', 0, 31), ('T9', 1, 1)");
    Exec("INSERT INTO L5_1 (ID_Name, Valid, Pg) VALUES ('G1', 0, 0)");
    Exec("INSERT INTO LK_1 (ID_Name, Valid, Lbreak, Ntype) VALUES ('K1', 0, 1, 1), "
         "('K2', 0, 0, 2)");

    StartStatementLog();
    CLFCalDataToRTDB job(1, db());
    EXPECT_EQ(job.UpdateLDataFromRTDB(), 0);
    // Every statement in order, each family's blanket one first (L2, X9, T9 and K2 end at
    // 0); the server's log keeps a statement without its trailing blank.
    EXPECT_EQ(SentStatements(),
              (std::vector<std::string>{
                  "UPDATE LK_1 SET Valid = 0",
                  "UPDATE LK_1 SET Valid=1,Lbreak=0 WHERE ID_Name='K1' AND Ntype=1",
                  "UPDATE LK_1 SET Valid=1,Lbreak=1 WHERE ID_Name='K2_' AND Ntype=2",
                  "UPDATE L6_1 SET Valid = 0", "UPDATE L5_1 SET Valid = 0",
                  "UPDATE L5_1 SET Valid=1,Pg=0.500000,Qg=-0.125000,V0=1.000000,Angle=2.500000 "
                  "WHERE ID_Name='G1'",
                  "UPDATE L4_1 SET Valid = 0", "UPDATE L3_1 SET Valid = 0",
                  "UPDATE L3_1 SET Valid=1 WHERE ID_Name='T1' AND NType=31",
                  "UPDATE L3_1 SET Valid=1 WHERE ID_Name='T9_odd' AND NType=0",
                  "UPDATE L2_1 SET Valid = 0",
                  "UPDATE L2_1 SET Valid=1,I_Break = 1,J_Break=0 WHERE ID_Name='L1' AND NType=1",
                  "UPDATE L2_1 SET Valid=1,I_Break=1,J_Break=1 WHERE ID_Name='C1' AND NType=3"}));
    EXPECT_TRUE(boxes().boxes().empty());
    EXPECT_TRUE(feedback().messages().empty());
}

TEST_F(JobTransfer, OddJobRowsAreReportedOrTakenAsTheyStand)
{
    Put<un>("机组一二三四五六"); // 24 bytes
    Put<ld>("D1");
    // An empty name, a name of Chinese text with a Valid of 2.
    Exec("INSERT INTO L5_1 (ID_Name, Valid, Pg) VALUES ('', 1, 0.1), ('机组一二三四五六', 2, 0.2)");
    Exec("ALTER TABLE L6_1 DROP COLUMN Par_Group"); // a job table that lacks a column
    CLFCalDataToRTDB job(1, db());
    EXPECT_EQ(job.ImportLDataToRTDB(), 1);
    Exec("ALTER TABLE L6_1 ADD COLUMN Par_Group INT DEFAULT 0 AFTER Pmin");
    EXPECT_EQ(feedback().texts(2), (std::vector<std::string>{
                                       "负荷计算数据导入实时数据库发生错误！",
                                       "实时数据库中没有id为''的发电机数据！",
                                   }));
    const un g = Fetch<un>("机组一二三四五六"); // a Valid of 2 is in service: only 0 is out
    EXPECT_EQ(std::make_tuple(g.q, g.Pg), std::make_tuple(UN_INJOB, 0.2f));
    // On the way back the row no record names goes out of service.
    EXPECT_EQ(job.UpdateL5DataFromRTDB(), 0);
    EXPECT_EQ(Rows("SELECT ID_Name, Valid FROM L5_1 ORDER BY Pg"),
              (std::vector<std::string>{"|0", "机组一二三四五六|1"}));
}

// Names from the records: each updates its own job row and no other, in either write mode.
// A name cut inside a character cannot be sent: the family warns (the only box) and stops.
TEST_F(JobTransfer, EachRecordUpdatesTheRowOfItsOwnNameOnly)
{
    const char* names[] = {"x' OR '1'='1", "a\\b", "G\\", "\\'", "华北电网十个字的机组"};
    QStringList rows;
    for (const char* n : names) {
        un g;
        g.id = n, g.Pg = 0.5f;
        Put(g);
        rows << "('" + QString::fromUtf8(n).replace("\\", "\\\\").replace("'", "''") + "', 0, 0)";
    }
    // Rows no record names: they stay out of service at their old values.
    rows << "('x', 1, 7), ('a\\\\', 1, 7), ('G', 1, 7), ('华北电网十个字的机', 1, 7)";
    m_rtdb.commit();
    CLFCalDataToRTDB job(1, db());
    for (const RecordWriteMode mode : {RecordWriteMode::PerRecord, RecordWriteMode::Batched}) {
        Truncate({"L5_1"});
        Exec("INSERT INTO L5_1 (ID_Name, Valid, Pg) VALUES " + rows.join(", "));
        job.SetWriteMode(mode);
        EXPECT_EQ(job.UpdateL5DataFromRTDB(), 0);
        EXPECT_EQ(Rows("SELECT ID_Name, Valid, Pg FROM L5_1 ORDER BY ID_Name"),
                  (std::vector<std::string>{"G|0|7", "G\\|1|0.5", "\\'|1|0.5", "a\\|0|7",
                                            "a\\b|1|0.5", "x|0|7", "x' OR '1'='1|1|0.5",
                                            "华北电网十个字的机|0|7", "华北电网十个字的机组|1|0.5"}));
    }

    const std::string cut = std::string("机组甲乙丙丁戊己").substr(0, 20);
    un bad;
    bad.id = cut.c_str(), bad.Pg = 0.25f;
    Put(bad);
    m_rtdb.commit();
    Exec("UPDATE L5_1 SET Pg=0");
    EXPECT_EQ(job.UpdateL5DataFromRTDB(), 1);
    EXPECT_EQ(Boxes(), std::vector<std::string>{"实时数据库数据更新发电机计算数据表发生错误！"});
    EXPECT_EQ(Count("L5_1 WHERE Pg=0.25"), 0) << "no row took the cut name's values";
}

// ---- Both ways under server faults on the generators' job table; G1, G2, D1 and K1 are in
// the server out of service and in the records ----

const std::string kGen = "实时数据库数据更新发电机计算数据表发生错误！";
const std::string kDc = "实时数据库数据更新直流线计算数据表发生错误！";
const std::string kXf = "实时数据库数据更新变压器计算数据表发生错误！";
const std::string kLine = "实时数据库数据更新线路计算数据表发生错误！";
const std::string kImpGen = "发电机计算数据导入实时数据库发生错误！";

struct JobFault
{
    Fault fault;
    int result;                      // of the update
    std::vector<std::string> boxes;  // the update's warnings, in order
    std::string states;              // Valid of K1, D1, G1, G2 after the update
    Hold hold;                       // held by the import's fault
    std::vector<std::string> errors; // the import's, level 2, in order
    bool generators;                 // the generators' rows reached their records
};

class JobFaults : public JobTransfer, public ::testing::WithParamInterface<JobFault>
{};

TEST_P(JobFaults, BothWaysReportTheFamiliesThatFailedAndKeepWhatTheOthersMoved)
{
    const JobFault& f = GetParam();
    Put<un>("G1");
    Put<un>("G2");
    Put<ld>("D1");
    Put<cb>("K1_brk");
    m_rtdb.commit();
    Exec("INSERT INTO L5_1 (ID_Name, Valid, Pg) VALUES ('G1', 0, 0.25), ('G2', 0, 0.5)");
    Exec("INSERT INTO L6_1 (ID_Name, Valid, Pl) VALUES ('D1', 0, 0.75)");
    Exec("INSERT INTO LK_1 (ID_Name, Valid, Lbreak, Ntype) VALUES ('K1', 0, 1, 1)");
    auto underFault = [&](Hold hold, auto run) {
        testsupport::FaultInjector fault(scratch(), db(), f.fault, "L5_1", hold);
        EXPECT_TRUE(fault.Run([&](QSqlDatabase* connection) {
            CLFCalDataToRTDB job(1, connection);
            run(job);
        }));
    };
    underFault(Hold::Rows, [&](CLFCalDataToRTDB& job) {
        EXPECT_EQ(job.UpdateLDataFromRTDB(), f.result);
    });
    EXPECT_EQ(Boxes(), f.boxes);
    EXPECT_EQ(Scalar("SELECT CONCAT((SELECT Valid FROM LK_1), (SELECT Valid FROM L6_1), "
                     "(SELECT GROUP_CONCAT(Valid ORDER BY ID_Name SEPARATOR '') FROM L5_1))"),
              QString::fromStdString(f.states));

    // The update wrote the records' powers, 0: the job gets its own again.
    Exec("UPDATE L5_1 SET Pg = 0.5");
    Exec("UPDATE L6_1 SET Pl = 0.75");
    underFault(f.hold, [&](CLFCalDataToRTDB& job) {
        EXPECT_EQ(job.ImportLDataToRTDB(), f.errors.empty() ? 0 : 1);
    });
    EXPECT_EQ(feedback().texts(2), f.errors) << "all of them the import's: the update said none";
    EXPECT_FLOAT_EQ(Fetch<ld>("D1").Pl, 0.75f) << "the loads go before";
    EXPECT_FLOAT_EQ(Fetch<un>("G1").Pg, f.generators ? 0.5f : 0.0f);
}

INSTANTIATE_TEST_SUITE_P(
    Table, JobFaults,
    ::testing::Values(
        // The update: the generators' rows locked, their blanket statement waits and the
        // connection dies there; switches and loads went before, every family after it finds
        // no server. The import: the table locked whole, its select waits, the same.
        JobFault{Fault::Killed, 1, {kGen, kDc, kXf, kLine}, "1100", Hold::Table,
                 {kImpGen, "直流线计算数据导入实时数据库发生错误！",
                  "变压器计算数据导入实时数据库发生错误！",
                  "交流线计算数据导入实时数据库发生错误！", "节点计算数据导入实时数据库发生错误！"},
                 false},
        // Missing (a lock timeout goes the same way both ways): that family alone fails.
        JobFault{Fault::MissingTable, 1, {kGen}, "1100", Hold::Rows, {kImpGen}, false},
        // Read only: every update is refused; reading is all the import does.
        JobFault{Fault::ReadOnly, 1,
                 {"实时数据库数据更新开关刀闸计算数据表发生错误！",
                  "实时数据库数据更新负荷计算数据表发生错误！", kGen, kDc, kXf, kLine},
                 "0000", Hold::Rows, {}, true}),
    [](const auto& info) { return testsupport::FaultName(info.param.fault); });
