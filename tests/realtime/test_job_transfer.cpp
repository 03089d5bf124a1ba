// A load-flow job into the real-time records and back, and invalidation.

#include "JobTransferTest.h"
#include "RecordAccess.h"
#include "loadflow/realtime/LFCalDataToRTDB.h"
#include "records/NetworkRecords.h"
#include "records/RecordFlags.h"

using namespace dtsdb;
using testsupport::Fetch;
using testsupport::Put;

TEST_F(JobTransfer, ImportOverwritesInputsAndFlagsOfStandingRecords)
{
    Put<nd>("N1", ND_OUTSERVICE);
    Put<ln>("L1_ac", LN_IOPEN);
    Put<ln>("S1_sc");
    Put<cp>("C1");
    Put<xf>("T1_2w");
    Put<xf>("T2_2w");
    Put<xf>("T3_3w2");
    Put<xf>("T4_2w");
    Put<xf>("T5_2w");
    Put<un>("G1");
    Put<ld>("D1");
    Put<cb>("K1_sw");
    Put<dln>("DC1");
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

    EXPECT_EQ(Fetch<nd>("N1").q, ND_INJOB);
    const ln l = Fetch<ln>("L1_ac");
    EXPECT_EQ(l.q, LN_INJOB | LN_JOPEN) << "I end closed now, J end open";
    EXPECT_EQ(l.ID_No, 2);
    EXPECT_FLOAT_EQ(l.X1, 0.1f);
    EXPECT_FLOAT_EQ(l.B1_Half, 0.05f);
    EXPECT_FLOAT_EQ(l.Length_Km, 42.5f);
    EXPECT_STREQ(l.Bus_Ctrl, "ABCDEFGHIJKLMNOPQRST");
    EXPECT_STREQ(l.Type, "LGJ-400");
    EXPECT_EQ(Fetch<ln>("S1_sc").q, LN_INJOB | LN_OUTSERVICE);
    // A shunt out of service by Valid but with its I end closed ends in service.
    const cp c = Fetch<cp>("C1");
    EXPECT_EQ(c.q, CP_INJOB);
    EXPECT_FLOAT_EQ(c.X1, 0.5f);
    EXPECT_STREQ(c.Type, "cap");
    // Magnetising branch: none for Gm = Bm = 0; the division from 1e-8 on.
    const xf t1 = Fetch<xf>("T1_2w");
    EXPECT_EQ(t1.q, XF_INJOB);
    EXPECT_EQ(t1.Rm, 0.0f);
    EXPECT_EQ(t1.Xm, 0.0f);
    EXPECT_FLOAT_EQ(t1.Tk, 1.025f);
    EXPECT_EQ(t1.TapMax1, 9);
    EXPECT_FLOAT_EQ(t1.Vstep_Tap1, 1.25f);
    EXPECT_EQ(t1.Vpos_Tap2, -3);
    // T2's second row has an unknown NType: it keeps the id before it and overwrites T2.
    const xf t2 = Fetch<xf>("T2_2w");
    EXPECT_EQ(t2.ID_No, 7);
    EXPECT_FLOAT_EQ(t2.Rm, static_cast<float>(0.002 / (0.002 * 0.002 + 0.02 * 0.02)));
    EXPECT_FLOAT_EQ(t2.Xm, static_cast<float>(-0.02 / (0.002 * 0.002 + 0.02 * 0.02)));
    EXPECT_EQ(Fetch<xf>("T3_3w2").q, XF_INJOB);
    // The boundary: Gm of exactly 1e-8 is divided (Rm = 1e-8 / 1e-16), just below it not.
    const xf t4 = Fetch<xf>("T4_2w");
    EXPECT_FLOAT_EQ(t4.Rm, 1e8f);
    EXPECT_EQ(t4.Xm, 0.0f);
    const xf t5 = Fetch<xf>("T5_2w");
    EXPECT_EQ(t5.Rm, 0.0f);
    EXPECT_EQ(t5.Xm, 0.0f);
    const dln d = Fetch<dln>("DC1");
    EXPECT_EQ(d.q, DLN_INJOB);
    EXPECT_FLOAT_EQ(d.Rpi_Ohm, 2.5f);
    EXPECT_EQ(d.OP_Mode, 3);
    EXPECT_FLOAT_EQ(d.Vdrate_kV, 500.0f);
    EXPECT_EQ(d.I_Bridge, 2);
    EXPECT_EQ(d.J_Tap, 7);
    const un g = Fetch<un>("G1");
    EXPECT_EQ(g.q, UN_INJOB);
    EXPECT_FLOAT_EQ(g.Pg, 0.4f);
    EXPECT_FLOAT_EQ(g.V0, 1.045f);
    EXPECT_FLOAT_EQ(g.Qmin, -0.4f);
    EXPECT_EQ(g.Par_Group, 2);
    EXPECT_STREQ(g.Bus_Ctrl, "B7");
    EXPECT_EQ(Fetch<ld>("D1").q, LD_INJOB | LD_OUTSERVICE);
    EXPECT_EQ(Fetch<ld>("D1").No_Load, 3);
    const cb k = Fetch<cb>("K1_sw");
    EXPECT_EQ(k.q, CB_INJOB | CB_OPEN) << "Ntype 3 is a switch";
    EXPECT_EQ(k.ID_No, 2);

    EXPECT_EQ(feedback().texts(2), (std::vector<std::string>{
                                       "实时数据库中没有id为'G404'的发电机数据！",
                                       "实时数据库中没有id为'N9'的节点数据！",
                                   }));

    // Nothing was committed: the caller's rollback takes it all back.
    m_rtdb.rollback();
    EXPECT_EQ(Fetch<nd>("N1").q, ND_OUTSERVICE);
}

TEST_F(JobTransfer, AFailedFamilyStopsOnlyItselfAndFailsTheDriver)
{
    Put<nd>("N1");
    Put<ln>("L1_ac");
    Exec("INSERT INTO L1_1 (Node_Name) VALUES ('N1')");
    Exec("INSERT INTO L2_1 (ID_Name, Valid, I_Break, J_Break, Ntype) VALUES ('L1', 1, 1, 1, 1)");
    Exec("RENAME TABLE L3_1 TO L3_1_away");
    CLFCalDataToRTDB job(1, db());
    EXPECT_EQ(job.ImportLDataToRTDB(), 1);
    Exec("RENAME TABLE L3_1_away TO L3_1");
    EXPECT_EQ(feedback().texts(2),
              (std::vector<std::string>{"变压器计算数据导入实时数据库发生错误！"}));
    EXPECT_EQ(Fetch<ln>("L1_ac").q, LN_INJOB) << "the lines came after the failed family";
    EXPECT_EQ(Fetch<nd>("N1").q, ND_INJOB);
    CLFCalDataToRTDB empty(1, db());
    Truncate({"L1_1", "L2_1"});
    EXPECT_EQ(empty.ImportL2DataToRTDB(), 0) << "an empty job table is no failure";
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
    {
        un g;
        g.id = "G1";
        g.Pg = 0.5f;
        g.Qg = -0.125f;
        g.V0 = 1.0f;
        g.Angle = 2.5f;
        m_rtdb.insertRecord(&un::dbDescriptor, nullptr, &g);
    }
    Exec("INSERT INTO L2_1 (ID_Name, Valid, I_Break, J_Break, Ntype) VALUES"
         " ('L1', 0, 0, 0, 1), ('L2', 1, 1, 1, 1), ('C1', 0, 0, 0, 3), ('X9', 1, 1, 1, 1)");
    Exec("INSERT INTO L3_1 (ID_Name, Valid, Ntype) VALUES ('T1', 0, 31), ('T9', 1, 1)");
    Exec("INSERT INTO L5_1 (ID_Name, Valid, Pg) VALUES ('G1', 0, 0)");
    Exec(
        "INSERT INTO LK_1 (ID_Name, Valid, Lbreak, Ntype) VALUES ('K1', 0, 1, 1), ('K2', 0, 0, 2)");

    StartStatementLog();
    CLFCalDataToRTDB job(1, db());
    EXPECT_EQ(job.UpdateLDataFromRTDB(), 0);
    EXPECT_EQ(Rows("SELECT ID_Name, Valid, I_Break, J_Break FROM L2_1 ORDER BY ID_Name"),
              (std::vector<std::string>{"C1|1|1|1", "L1|1|1|0", "L2|0|1|1", "X9|0|1|1"}));
    EXPECT_EQ(Rows("SELECT ID_Name, Valid FROM L3_1 ORDER BY ID_Name"),
              (std::vector<std::string>{"T1|1", "T9|0"}));
    EXPECT_EQ(Rows("SELECT ID_Name, Valid, Pg, Qg, V0, Angle FROM L5_1"),
              (std::vector<std::string>{"G1|1|0.5|-0.125|1|2.5"}));
    EXPECT_EQ(Rows("SELECT ID_Name, Valid, Lbreak FROM LK_1 ORDER BY ID_Name"),
              (std::vector<std::string>{"K1|1|0", "K2|0|0"}));

    const auto sent = SentStatements();
    // The server's log keeps a statement without its trailing blank.
    auto has = [&](const std::string& s) {
        return std::find(sent.begin(), sent.end(), s) != sent.end();
    };
    EXPECT_TRUE(has("UPDATE L2_1 SET Valid = 0"));
    EXPECT_TRUE(
        has("UPDATE L2_1 SET Valid=1,I_Break = 1,J_Break=0 WHERE ID_Name='L1' AND NType=1"));
    EXPECT_TRUE(has("UPDATE L2_1 SET Valid=1,I_Break=1,J_Break=1 WHERE ID_Name='C1' AND NType=3"));
    EXPECT_TRUE(has("UPDATE L3_1 SET Valid=1 WHERE ID_Name='T1' AND NType=31"));
    EXPECT_TRUE(has("UPDATE L3_1 SET Valid=1 WHERE ID_Name='T9_odd' AND NType=0"));
    EXPECT_TRUE(has("UPDATE L5_1 SET Valid=1,Pg=0.500000,Qg=-0.125000,V0=1.000000,"
                    "Angle=2.500000 WHERE ID_Name='G1'"));
    EXPECT_TRUE(has("UPDATE LK_1 SET Valid=1,Lbreak=0 WHERE ID_Name='K1' AND Ntype=1"));
    EXPECT_TRUE(has("UPDATE LK_1 SET Valid=1,Lbreak=1 WHERE ID_Name='K2_' AND Ntype=2"));
    EXPECT_TRUE(boxes().boxes().empty());

    // A refused statement: a warning box, that family stops, the others go on.
    Exec("RENAME TABLE L5_1 TO L5_1_away");
    EXPECT_EQ(job.UpdateLDataFromRTDB(), 1);
    Exec("RENAME TABLE L5_1_away TO L5_1");
    const auto b = boxes().boxes();
    ASSERT_EQ(b.size(), 1u);
    EXPECT_TRUE(b[0].warning);
    EXPECT_EQ(b[0].caption.toStdString(), "warning");
    EXPECT_EQ(b[0].text.toStdString(), "实时数据库数据更新发电机计算数据表发生错误！");
    EXPECT_TRUE(feedback().messages().empty());
}

TEST_F(JobTransfer, InvalidationClearsMarksAndForcesTopologyBitsOnlyWhenAsked)
{
    Put<ln>("L1_ac", LN_INJOB);
    Put<cb>("K1_brk", CB_INJOB);
    Put<nd>("N1", ND_INJOB);
    Put<un>("G1", UN_INJOB);
    {
        bs b;
        b.id = 0;
        b.q = 77;
        m_rtdb.insertRecord(&bs::dbDescriptor, nullptr, &b);
    }
    CLFCalDataToRTDB job(1, db());
    EXPECT_EQ(job.InValidateLFCalDataInRTDB(false), 0);
    EXPECT_EQ(Fetch<ln>("L1_ac").q, LN_OUTSERVICE);
    EXPECT_EQ(Fetch<ln>("L1_ac").topflags, 0u);
    EXPECT_EQ(Fetch<nd>("N1").q, ND_OUTSERVICE);
    EXPECT_EQ(Fetch<cb>("K1_brk").q, CB_OUTSERVICE);
    EXPECT_EQ(job.InValidateLFCalDataInRTDB(true), 0);
    EXPECT_EQ(Fetch<ln>("L1_ac").topflags, LN_TOP_INVALID);
    EXPECT_EQ(Fetch<un>("G1").topflags, UN_TOP_INVALID);
    EXPECT_EQ(Fetch<cb>("K1_brk").topflags, CB_TOP_INVALID);
    dbCursor<bs> b;
    ASSERT_EQ(b.select(), 1);
    EXPECT_EQ(b->q, 77) << "bs is not touched";
    // After invalidation the way back leaves every row out of service.
    Exec("INSERT INTO L2_1 (ID_Name, Valid, Ntype) VALUES ('L1', 1, 1)");
    EXPECT_EQ(job.UpdateL2DataFromRTDB(), 0);
    EXPECT_EQ(Scalar("SELECT Valid FROM L2_1"), "0");
}

TEST_F(JobTransfer, OddJobRowsAreReportedOrTakenAsTheyStand)
{
    Put<un>("机组一二三四五六"); // 24 bytes
    Put<un>("O'Neil");
    Put<ld>("D1");
    // An empty name, a name of multi-byte text, a quote, a Valid of 2.
    Exec("INSERT INTO L5_1 (ID_Name, Valid, Pg) VALUES ('', 1, 0.1), ('机组一二三四五六', 2, 0.2), "
         "('O''Neil', 1, 0.3)");
    Exec("ALTER TABLE L6_1 DROP COLUMN Par_Group"); // a job table that lacks a column
    CLFCalDataToRTDB job(1, db());
    EXPECT_EQ(job.ImportLDataToRTDB(), 1);
    Exec("ALTER TABLE L6_1 ADD COLUMN Par_Group INT DEFAULT 0 AFTER Pmin");
    EXPECT_EQ(feedback().texts(2), (std::vector<std::string>{
                                       "负荷计算数据导入实时数据库发生错误！",
                                       "实时数据库中没有id为''的发电机数据！",
                                   }));
    const un g = Fetch<un>("机组一二三四五六");
    EXPECT_EQ(g.q, UN_INJOB) << "a Valid of 2 is in service: only 0 is out";
    EXPECT_FLOAT_EQ(g.Pg, 0.2f);
    EXPECT_FLOAT_EQ(Fetch<un>("O'Neil").Pg, 0.3f) << "a quote is plain text on the way in";
    // On the way back the quote is escaped: the row of that name, and only it, is updated.
    EXPECT_EQ(job.UpdateL5DataFromRTDB(), 0);
    EXPECT_TRUE(boxes().boxes().empty());
    EXPECT_EQ(Rows("SELECT ID_Name, Valid FROM L5_1 ORDER BY Pg"),
              (std::vector<std::string>{"|0", "机组一二三四五六|1", "O'Neil|1"}));
}
