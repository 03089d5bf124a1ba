// Load-flow results between the real-time records and the result tables, and the flow
// through breakers and switches.

#include "DbTest.h"
#include "Faults.h"
#include "RecordAccess.h"
#include "loadflow/results/LFResultDataTransfer.h"
#include "platform/NetModel.h"
#include "records/NetworkRecords.h"
#include "records/RecordFlags.h"

#include <algorithm>
#include <limits>
#include <tuple>

using namespace dtsdb;
using testsupport::DbTest;
using testsupport::Fault;
using testsupport::Fetch;
using testsupport::Hold;
using testsupport::Put;

namespace {

void Gen(const char* id, const char* node, float p, float q, unsigned flags = 0, int ibs = 0)
{
    un g;
    g.id = id, g.Bus_Name = node, g.Pg = p, g.Qg = q, g.q = flags, g.ibs = ibs;
    Put(g);
}
void Load(const char* id, const char* node, float p, float q, unsigned top = 0)
{
    ld l;
    l.id = id, l.Bus_Name = node, l.Pl = p, l.Ql = q, l.topflags = top;
    Put(l);
}
void Switch(const char* id, const char* i, const char* j, unsigned q = 0, unsigned top = 0)
{
    cb c;
    c.id = id, c.I_Name = i, c.J_Name = j, c.q = q, c.topflags = top;
    Put(c);
}
// A node on calculation bus `ibs` of level "K220", with its bs and physical bus records.
void Node(const char* id, int ibs, const char* bsName, double v, double angle)
{
    nd n;
    n.id = id, n.ibs = ibs;
    Put(n);
    bs b;
    b.id = ibs, b.name = bsName, b.V = v, b.Angle = angle;
    Put(b);
    bus p;
    p.id = id, p.nd = id, p.KV = "K220", p.ibs = ibs, p.V = v, p.Angle = angle;
    Put(p);
}
void Level(const char* id)
{
    kv k;
    k.id = id, k.Zone = "7", k.Base_kV = 220, k.Vmax_kV = 242, k.Vmin_kV = 198;
    Put(k);
}
template <class T, class F> void ChangeAll(F change)
{
    dbCursor<T> c(dbCursorForUpdate);
    if (c.select() > 0) {
        do {
            change(*c.get());
            c.update();
        } while (c.next());
    }
}

// Two nodes on calculation buses 1 and 2 of level "K220": a line (and a dead one), a
// transformer, a shunt, a generator and a load between them, with an engine's answer in
// place; bus 0 a live bus of its own.
void SmallNetwork()
{
    Level("K220");
    Node("N1", 1, "B1", 1.02, 0);
    Node("N2", 2, "B2", 0.98, -3.5);
    bs b0;
    b0.id = 0, b0.name = "B0", b0.V = 1.0;
    Put(b0);
    ln l;
    l.id = "L1_ac", l.lntype = 1, l.I_Name = "N1", l.J_Name = "N2", l.ID_No = 1, l.ibs = 1;
    l.zbs = 2, l.Zone = "7", l.Pi = 0.5f, l.Qi = 0.1f, l.Pj = -0.49f, l.Qj = -0.08f;
    l.Qci = 0.01f, l.Qcj = 0.02f, l.Rate_Ka = 1.5f, l.Up_Limit = 100, l.q = LN_INJOB;
    Put(l);
    l.id = "L2_ac", l.topflags = LN_TOP_INVALID;
    Put(l);
    xf t;
    t.id = "T1_2w", t.type = 1, t.I_Name = "N1", t.J_Name = "N2", t.Pi = 0.25f, t.Pj = -0.25f;
    t.Tk = 1.05f, t.ST = "on", t.ibs = 1, t.zbs = 2;
    Put(t);
    un g;
    g.id = "G1", g.Bus_Name = "N1", g.Pg = 0.75f, g.Qg = 0.125f, g.Mode_Ctrl = 2, g.ibs = 1;
    Put(g);
    ld d;
    d.id = "D1", d.Bus_Name = "N2", d.No_Load = 3, d.Pl = 0.5f, d.Ql = 0.1f, d.ibs = 2;
    Put(d);
    cp c;
    c.id = "C1", c.Bus_Name = "N2", c.KV = "K220", c.Qi = -0.05f, c.ibs = 2;
    Put(c);
}

const std::string kXAcline =
    "交流线结果数据回存到结果库发生错误，可能存在正序阻抗为0的线路导致功率无穷大,"
    "\n请数据检查后再计算！";
const std::string kXPcr = "并联电容电抗器结果数据回存到结果库发生错误，可能存在正序阻抗为0的"
                          "并联电容电抗器导致功率无穷大,\n请数据检查后再计算！";
const std::string kXGen = "发电机结果数据回存到结果库发生错误，\n请数据检查后再计算！";
const std::string kXLoad = "负荷结果数据回存到结果库发生错误，\n请数据检查后再计算！";
const std::string kXT2w = "两绕组变压器结果数据回存到结果库发生错误，\n请数据检查后再计算！";

} // namespace

class Results : public DbTest
{
protected:
    void SetUp() override
    {
        DbTest::SetUp();
        ASSERT_TRUE(m_rtdb.open("results"));
    }
    void TearDown() override
    {
        m_rtdb.rollback();
        m_rtdb.close();
    }
    dbDatabase m_rtdb;
};

TEST_F(Results, TheSolutionGoesOutAndComesBackInEveryModeAndARefusedBatchCostsItsFamily)
{
    SmallNetwork();
    m_rtdb.commit();
    StartStatementLog();
    CLFResultDataTransfer out(4, db(), &m_rtdb, false, 0);
    EXPECT_EQ(out.ImportRTDBDataToLFResultDB(), 0);

    EXPECT_EQ(Rows("SELECT Bus_Name, V, Angle, KV, Zone_No, Base_kV, ibs FROM LFR_BS_R WHERE "
                   "Case_No=4 ORDER BY ibs"),
              (std::vector<std::string>{"B0|1|0|K220|7|220|0", "B1|1.02|0|K220|7|220|1",
                                        "B2|0.98|-3.5|K220|7|220|2"}));
    EXPECT_EQ(Rows("SELECT ID_Name, I_Name, J_Name, Pi, Vi, Vj, Anglej, Zone_No, Rate_kA, ibs, "
                   "zbs, q FROM LFR_ACLINE_R WHERE Case_No=4"),
              (std::vector<std::string>{"L1|N1|N2|0.5|1.02|0.98|-3.5|7|1.5|1|2|16"}))
        << "the dead line L2 writes no row";
    EXPECT_EQ(Rows("SELECT ID_Name, No_Load, Pl, V, Angle FROM LFR_LOAD_R"),
              (std::vector<std::string>{"D1|3|0.5|0.98|-3.5"}));
    EXPECT_EQ(Rows("SELECT ID_Name, Tk, ST, Vi, Anglej FROM LFR_T2W_R"),
              (std::vector<std::string>{"T1|1.05|on|1.02|-3.5"}));
    EXPECT_EQ(Rows("SELECT ID_Name, Qi, Vi, KV FROM LFR_PCR_R"),
              (std::vector<std::string>{"C1|-0.05|0.98|K220"}));
    EXPECT_EQ(Rows("SELECT Bus_Name, V, KV, ibs FROM LFR_BUS_R ORDER BY ibs"),
              (std::vector<std::string>{"N1|1.02|K220|1", "N2|0.98|K220|2"}));
    // The generator's statement as formatted: "%15.9f," powers and a blank after Mode_Ctrl.
    const auto sent = SentStatements();
    EXPECT_EQ(std::count(sent.begin(), sent.end(),
                         "insert into LFR_GEN_R(Case_No,ID_Name,Bus_Name,Pg,Qg,V,Angle,Mode_Ctrl,"
                         "ibs,q,topflags) values\n (4,'G1','N1',    0.750000000,    0.125000000, "
                         "1.020000000,0.000000,2 ,1,0,0)"),
              1);

    // Back into records whose values were lost.
    ChangeAll<ln>([](ln& r) { r.Pi = 0, r.ibs = 0; });
    CLFResultDataTransfer in(4, db(), &m_rtdb, false, 0);
    EXPECT_EQ(in.ImportLFResultDataToRTDB(), 0);
    EXPECT_EQ(std::make_tuple(Fetch<ln>("L1_ac").Pi, Fetch<ln>("L1_ac").ibs, Fetch<un>("G1").Qg),
              std::make_tuple(0.5f, 1, 0.125f));

    // An infinite power on the lines (L2 is dead, and writes no row): the live one's batch
    // is refused, the driver goes on; its message is the first error of the test.
    ChangeAll<ln>([](ln& r) { r.Pi = std::numeric_limits<float>::infinity(); });
    ChangeAll<bs>([](bs& r) { r.ikv = r.id == 2 ? 7 : r.ikv; }); // 7: outside the levels
    m_rtdb.commit();
    CLFResultDataTransfer opt(5, db(), &m_rtdb, true, 0);
    EXPECT_EQ(opt.ImportRTDBDataToLFResultDB(), 0);
    EXPECT_EQ(feedback().texts(2), std::vector<std::string>{kXAcline});
    EXPECT_EQ(Rows("SELECT Bus_Name, KV, Base_kV FROM OPFR_BS_R WHERE Case_No=5 ORDER BY "
                   "Bus_Name"),
              (std::vector<std::string>{"B0|K220|220", "B1|K220|220", "B2||0"}))
        << "a level number outside the list gives an empty level";
    EXPECT_EQ(Rows("SELECT ID_Name, Pg FROM OPFR_GEN_R WHERE Case_No=5"),
              (std::vector<std::string>{"G1|0.75"}));

    // Mode 2 brings values back and leaves the topology words alone; bs in place by id.
    Exec("INSERT INTO LFR_GEN_R(Case_No, ID_Name, Pg, Qg, ibs, q, topflags, Bus_Name) VALUES "
         "(8, 'G1', 0.3, 0.2, 5, 99, 99, 'N1')");
    Exec("INSERT INTO LFR_BS_R(Case_No, Bus_Name, V, Angle, ibs) VALUES (8, 'X', 0.97, -1, 1)");
    CLFResultDataTransfer values(8, db(), &m_rtdb, false, 2);
    EXPECT_EQ(values.ImportLFResultDataToRTDB(), 0);
    const un g = Fetch<un>("G1");
    EXPECT_EQ(std::make_tuple(g.Pg, g.ibs, g.q), std::make_tuple(0.3f, 1, 0u));
    dbCursor<bs> b;
    dbQuery q("id = 1");
    ASSERT_EQ(b.select(q), 1);
    EXPECT_DOUBLE_EQ(b->V, 0.97);
    EXPECT_STREQ(b->name, "B1") << "updated in place, not rebuilt";
}

// Stored results into the records and out again as another case: the buses rebuilt with
// placeholders that never reach the tables, and a DC line's end sums.
TEST_F(Results, BusesAreRebuiltWithPlaceholdersAndDcLineEndSumsAreDerived)
{
    Level("K1");
    Put(bs()); // an old record, gone after the rebuild
    dln d;
    d.id = "DC1", d.I_Name = "N1", d.J_Name = "N2", d.Pj = 7.0f;
    Put(d);
    m_rtdb.commit();
    Exec("DELETE FROM LFR_BS_R");
    Exec("INSERT INTO LFR_BS_R(Case_No, Bus_Name, V, Angle, ibs, ikv, iisland) VALUES "
         "(1,'X',1.01,-2,2,0,0),(1,'Y',0.99,-5,5,0,0)");
    Exec("DELETE FROM LFR_DCLINE_R");
    Exec("INSERT INTO LFR_DCLINE_R(Case_No, ID_Name, Owner, OP_Mode, Id10, Id20, Pd1i, Pd2i, "
         "Pd1j, Pd2j, Qd1i, Qd2i, Qd1j, Qcjp, ibs, zbs) VALUES "
         "(1,'DC1',3,1,1.5,0.5,100,0,-98,0,0.75,0.5,4,9.25,5,6)");
    // A stored physical bus without its record fails the bus family, first of all.
    Exec("DELETE FROM LFR_BUS_R");
    Exec("INSERT INTO LFR_BUS_R(Case_No, Bus_Name, V, Angle, ibs) VALUES (1,'NOBUS',1,0,2)");
    CLFResultDataTransfer in(1, db(), &m_rtdb, false, 0);
    EXPECT_EQ(in.ImportLFResultDataToRTDB(), 0) << "the families' failures are not passed on";
    EXPECT_EQ(feedback().texts(2),
              (std::vector<std::string>{"实时库物理母线表中没有节点名nd='NOBUS'的记录！"}));
    std::vector<std::string> got;
    dbCursor<bs> c;
    dbQuery q("order by id");
    for (bool more = c.select(q) > 0; more; more = c.next()) {
        got.push_back(std::string(c->name) + ":" + std::to_string(c->iisland));
    }
    EXPECT_EQ(got, (std::vector<std::string>{"NULL0:-1", "NULL1:-1", "X:0", "NULL3:-1",
                                             "NULL4:-1", "Y:0"}));
    const dln r = Fetch<dln>("DC1");
    // Pi is written twice and keeps the J-end sum; Qi is -(Qd1i + Qd2i); Pj is written by
    // nothing.
    EXPECT_EQ(std::make_tuple(r.Pi, r.Qi, r.Pj, r.Qj, r.Ii, r.Qcjp, std::string(r.Owner), r.ibs),
              std::make_tuple(-98.0f, -1.25f, 7.0f, 4.0f, 2.0f, 9.25, std::string("3"), 5));

    // Back into the tables as case 9: the placeholders stay out of them.
    CLFResultDataTransfer out9(9, db(), &m_rtdb, false, 0);
    EXPECT_EQ(out9.ImportRTDBDataToLFResultDB(), 0);
    EXPECT_EQ(Rows("SELECT Bus_Name, ibs, iisland FROM LFR_BS_R WHERE Case_No=9 ORDER BY ibs"),
              (std::vector<std::string>{"X|2|0", "Y|5|0"}));
    EXPECT_EQ(Rows("SELECT ID_Name, Owner, OP_Mode, Pd1i, Pd1j, Qcjp, ibs, zbs FROM "
                   "LFR_DCLINE_R WHERE Case_No=9"),
              (std::vector<std::string>{"DC1|3|1|100|-98|9.25|5|6"}));
    m_rtdb.rollback();
    EXPECT_EQ(c.select(q), 0) << "the emptying was committed, the inserts were not";

    // With no kv record nothing is written and the driver says so.
    dbCursor<kv>(dbCursorForUpdate).removeAll();
    CLFResultDataTransfer out(1, db(), &m_rtdb, false, 0);
    EXPECT_EQ(out.ImportRTDBDataToLFResultDB(), 1);
    EXPECT_TRUE(feedback().has("实时库中没有母线数据", 2));
    EXPECT_EQ(Count("LFR_BS_R WHERE Case_No=1"), 2);
}

TEST_F(Results, OnlyWhatReallyFlowsThroughASwitchIntoANodeCounts)
{
    // A generator at A0 gives 10 + j3 through breaker K1 to A. From A: line L1 to B
    // (6 + j2 leave A, 5.9 + j1.9 reach B), DC line DC1 to C (its I-end sets draw 3 + j1,
    // its J-end sets give 2.9 + j0.8), and winding 1 of three-winding transformer T (star
    // S), which draws 1 at A; winding 2 gives 0.98 + j0.1 at D, winding 3 nothing at C.
    // Loads beyond switches: B0 5.9 + j1.9 (K2 B-B0), C0 2.9 + j0.8 (K3 written C0-C), D0
    // 0.98 + j0.1 (K4 D-D0). The star has a neutral switch KN to N0, which carries nothing.
    // The breaker K0 beside K1 is open, and carries nothing; K6 beside K2 closes a loop:
    // the spanning tree took K2 first, so K6 carries nothing.
    // Stale powers that must not count: a line out of service, a generator out of service,
    // the DC line's Pi and Pj as a stored result leaves them, the windings' star ends, and a
    // dead island E-E0 (a dead line from A, a dead load, switch K5).
    auto line = [](const char* id, const char* j, float pi, float qi, float pj, float qj,
                   unsigned q, unsigned top) {
        ln l;
        l.id = id, l.lntype = 1, l.I_Name = "A", l.J_Name = j, l.Pi = pi, l.Qi = qi;
        l.Pj = pj, l.Qj = qj, l.q = q, l.topflags = top;
        Put(l);
    };
    line("L1_ac", "B", 6, 2, -5.9f, -1.9f, LN_INJOB, 0);
    line("L2_ac", "B", 100, 10, -99, -9, LN_INJOB | LN_OUTSERVICE, 0);
    line("L3_ac", "E", 4, 1, -4, -1, LN_INJOB, LN_TOP_INVALID);
    dln d;
    d.id = "DC1", d.I_Name = "A", d.J_Name = "C", d.Pd1i = 2, d.Pd2i = 1, d.Qd1i = 0.5;
    d.Qd2i = 0.5, d.Pd1j = -1.5, d.Pd2j = -1.4, d.Qd1j = -0.4, d.Qd2j = -0.4;
    d.Pi = -2.9f, d.Qi = -1, d.Pj = 7, d.Qj = 7; // the stored result's end sums, and stale
    Put(d);
    auto winding = [](const char* id, const char* j, float pj, float qj, float staleStar) {
        xf t;
        t.id = id, t.type = 3, t.I_Name = "S", t.J_Name = j, t.Pi = staleStar;
        t.Qi = staleStar, t.Pj = pj, t.Qj = qj;
        Put(t);
    };
    winding("T_3w1", "A", 1, 0, 55);
    winding("T_3w2", "D", -0.98f, -0.1f, 21);
    winding("T_3w3", "C", 0, 0, 33);
    Gen("G", "A0", 10, 3);
    Gen("GX", "A0", 50, 5, UN_OUTSERVICE);
    Load("DB", "B0", 5.9f, 1.9f);
    Load("DC", "C0", 2.9f, 0.8f);
    Load("DD", "D0", 0.98f, 0.1f);
    Load("DE", "E0", 4, 1, LD_TOP_INVALID);
    Switch("KN_sw", "N0", "S");
    Switch("K0_brk", "A0", "A", CB_OPEN);
    Switch("K1_brk", "A0", "A");
    Switch("K2_brk", "B", "B0");
    Switch("K6_brk", "B0", "B");
    Switch("K3_brk", "C0", "C");
    Switch("K4_brk", "D", "D0");
    Switch("K5_brk", "E", "E0");
    dtsdb::cbFlow flow(&m_rtdb);
    flow.loadData();
    flow.calculate();
    flow.storeData();
    std::vector<std::string> flows;
    for (const char* id : {"K0_brk", "K1_brk", "K2_brk", "K6_brk", "K3_brk", "K4_brk", "KN_sw",
                           "K5_brk"}) {
        const cb c = Fetch<cb>(id);
        const QString flow = QString("%1 %2,%3").arg(id).arg(c.P, 0, 'g', 6).arg(c.Q, 0, 'g', 6);
        flows.push_back(flow.toStdString());
    }
    EXPECT_EQ(flows, (std::vector<std::string>{"K0_brk 0,0", "K1_brk 10,3", "K2_brk 5.9,1.9",
                                               "K6_brk 0,0", "K3_brk -2.9,-0.8", "K4_brk 0.98,0.1",
                                               "KN_sw 0,0", "K5_brk 0,0"}));
}

// Breakers and switches get one row each, with the flow the switch step finds. Their names
// hold ten Chinese characters, the longest the columns take (20 bytes as the design counted
// them): the record id loses four characters as the design has it, so a switch's "_sw"
// takes the last character of its name with it, whole. A name that cannot fit is refused
// before its row is sent, with the warning of a failed row.
TEST_F(Results, BreakerRowsCarryTheirFlowsUnderWholeChineseNames)
{
    const char *bus = "华北电网十个字的母线", *station = "华北电网十个字的站乙";
    Level("K220");
    Node("N1", 1, "B1", 1.02, 0);
    Node(bus, 2, "B2", 0.98, 0);
    Gen("G1", "N1", 0.3f, 0.1f);
    Load("D1", station, 0.3f, 0.1f);
    Switch("华北电网十个字断路器_brk", "N1", bus, CB_TESTED);
    Switch("华北电网十个字的刀闸_sw", bus, station, CB_TESTED);
    Switch("K9_brk", "N1", "X9");                         // not looked at
    Switch("K8_brk", "N1", bus, CB_TESTED, CB_TOP_DEAD); // dead
    Switch("华北电网十一个字断路器_brk", "N1", "X10", CB_TESTED);
    Switch("K7_brk", "N1", "华北电网十一个字的母线", CB_TESTED);
    m_rtdb.commit();
    Exec("INSERT INTO LFR_BREAKER_R(Case_No, ID_Name) VALUES (4, 'old'), (5, 'other case')");
    // The batched mode refuses the same names the same way: the family goes by statements.
    for (const RecordWriteMode mode : {RecordWriteMode::PerRecord, RecordWriteMode::Batched}) {
        boxes().clear();
        CLFResultDataTransfer out(4, db(), &m_rtdb, false, 0);
        out.SetWriteMode(mode);
        EXPECT_EQ(out.ImportRTDBDataToLFResultDB(), 0);
        EXPECT_EQ(Rows("SELECT Case_No, ID_Name, I_Name, J_Name, P, Q, V FROM LFR_BREAKER_R "
                       "ORDER BY Case_No, V DESC"),
                  (std::vector<std::string>{
                      "4|华北电网十个字断路器|N1|华北电网十个字的母线|0.3|0.1|1.02",
                      "4|华北电网十个字的刀|华北电网十个字的母线|华北电网十个字的站乙|0.3|0.1|0.98",
                      "5|other case|||0|0|0"}));
        EXPECT_EQ(boxes().boxes().size(), 2u);
        for (const auto& b : boxes().boxes()) {
            EXPECT_EQ(std::make_tuple(b.warning, b.caption, b.text),
                      std::make_tuple(true, QString("warning"), QString("导入开关结果数据失败")));
        }
        EXPECT_TRUE(feedback().texts(2).empty());
    }
}

// Names from the records arrive whole: quotes and backslashes, and Chinese names of 20 bytes
// as the design counted them, which also find their records on the way back. A name cut
// inside a character is refused with its family's message and costs that table only.
TEST_F(Results, RecordNamesArriveWholeThreeWindingsFoldIntoOneRowAndACutNameCostsOnlyItsTable)
{
    SmallNetwork();
    Node("N3", 3, "B3", 1.03, 0);
    const char* names[] = {"x' OR '1'='1", "a\\b", "G\\", "\\'", "华北电网十个字的机组"};
    for (const char* n : names) {
        Gen(n, "N1", 0.5f, 0.05f);
    }
    // T1: the first winding dead, the star bus taken from the second. T2: all dead.
    auto winding = [](const char* id, const char* j, int no, float pi, float pj, unsigned top,
                      int ibs) {
        xf w;
        w.id = id, w.type = 3, w.I_Name = "NS", w.J_Name = j, w.ID_No = no, w.Pi = pi;
        w.Pj = pj, w.Tk = 1.0f, w.Rate_MVA = 100.0f * no, w.topflags = top, w.ibs = ibs;
        w.zbs = no + 1, w.ST = "s";
        Put(w);
    };
    winding("T1_3w1", "N1", 1, 0.5f, 0.25f, XF_TOP_INVALID, 9);
    winding("T1_3w2", "N2", 2, -0.25f, -0.5f, 0, 1);
    winding("T1_3w3", "N3", 3, 0.125f, 0.0f, 0, 1);
    winding("T2_3w1", "N1", 1, 1, 1, XF_TOP_INVALID, 1);
    winding("T2_3w2", "N2", 2, 1, 1, XF_TOP_INVALID, 1);
    winding("T2_3w3", "N3", 3, 1, 1, XF_TOP_INVALID, 1);
    ChangeAll<ld>([](ld& r) { r.id = "D'1"; });
    m_rtdb.commit();
    Exec("DELETE FROM LFR_GEN_R");
    Exec("INSERT INTO LFR_GEN_R (Case_No, ID_Name, Pg) VALUES (5, 'x', 9)"); // another case
    CLFResultDataTransfer out(6, db(), &m_rtdb, false, 0);
    EXPECT_EQ(out.ImportRTDBDataToLFResultDB(), 0);
    EXPECT_EQ(Rows("SELECT Case_No, ID_Name, Pg FROM LFR_GEN_R ORDER BY Case_No, ID_Name"),
              (std::vector<std::string>{"5|x|9", "6|G1|0.75", "6|G\\|0.5", "6|\\'|0.5",
                                        "6|a\\b|0.5", "6|x' OR '1'='1|0.5",
                                        "6|华北电网十个字的机组|0.5"}));
    EXPECT_EQ(Rows("SELECT ID_Name FROM LFR_LOAD_R WHERE Case_No=6"),
              std::vector<std::string>{"D'1"});
    // The dead first winding writes zeros, its Tk and its rating; V2 is N2's 0.98, V3 N3's.
    EXPECT_EQ(Rows("SELECT ID_Name, Name_N, ST, Name_1, ID_No1, P1, Q1, DP1, DQ1, Tk1, V1, Angle1, "
                   "Pm, Qm, Rate_MVA1, z1bs, qq1, topflags1, Name_2, ID_No2, P2, DP2, V2, "
                   "Rate_MVA2, P3, V3, z3bs, ibs FROM LFR_T3W_R WHERE Case_No=6"),
              (std::vector<std::string>{
                  "T1|NS|s|N1|1|0|0|0|0|1|0|0|0|0|100|2|0|4|N2|2|-0.5|0.25|0.98|200|0|1.03|4|1"}));

    // Back again, each name finds its own record.
    ChangeAll<un>([](un& r) { r.Pg = 0; });
    CLFResultDataTransfer in(6, db(), &m_rtdb, false, 0);
    EXPECT_EQ(in.ImportLFResultDataToRTDB(), 0);
    EXPECT_EQ(std::make_tuple(Fetch<un>("华北电网十个字的机组").Pg, Fetch<un>("x' OR '1'='1").Pg,
                              Fetch<un>("G1").Pg),
              std::make_tuple(0.5f, 0.5f, 0.75f));

    const std::string cut = std::string("机组甲乙丙丁戊己").substr(0, 20);
    Gen(cut.c_str(), "N1", 0, 0);
    m_rtdb.commit();
    CLFResultDataTransfer again(6, db(), &m_rtdb, false, 0); // one run per object, as designed
    EXPECT_EQ(again.ImportRTDBDataToLFResultDB(), 0) << "the driver goes on past a refused table";
    EXPECT_EQ(feedback().texts(2), (std::vector<std::string>{kXGen})) << "the test's only error";
    EXPECT_EQ(Count("LFR_GEN_R WHERE Case_No=6"), 0)
        << "the family's batch is refused whole, the deleted rows of the case included";
    EXPECT_EQ(Count("LFR_LOAD_R WHERE Case_No=6"), 1) << "the next family is written";
}

// ---- Results under server faults on the generators' result table, written and read ----

struct GenFault
{
    Fault fault;
    std::vector<std::string> writeErrors; // level 2, in order
    size_t boxes;                         // the refused batches' boxes
    std::string values;                   // Pi of L1, Pg of G1, Pl of D1 in the tables after
    Hold readHold;
    std::vector<std::string> readErrors;
    bool generators; // the generators' results reached their records
};

class GenFaults : public Results, public ::testing::WithParamInterface<GenFault>
{};

TEST_P(GenFaults, BothWaysReportTheTablesThatFailedAndKeepWhatTheOthersMoved)
{
    const GenFault& f = GetParam();
    Truncate({"LFR_BS_R", "LFR_BUS_R", "LFR_ACLINE_R", "LFR_PCR_R", "LFR_GEN_R", "LFR_LOAD_R",
              "LFR_T2W_R"});
    SmallNetwork();
    m_rtdb.commit();
    CLFResultDataTransfer first(6, db(), &m_rtdb, false, 0);
    ASSERT_EQ(first.ImportRTDBDataToLFResultDB(), 0); // the ReadOnly row keeps these values
    // The solution changes, so that a table written again shows it (L2 is dead: no row).
    ChangeAll<ln>([](ln& r) { r.Pi = 0.625f; });
    ChangeAll<un>([](un& r) { r.Pg = 0.875f; });
    ChangeAll<ld>([](ld& r) { r.Pl = 0.375f; });
    Gen("G2", "N2", 0.25f, 0); // one generator more than the table held for the case
    m_rtdb.commit();
    auto underFault = [&](Hold hold, auto transfer) {
        testsupport::FaultInjector fault(scratch(), db(), f.fault, "LFR_GEN_R", hold);
        feedback().clear();
        EXPECT_TRUE(fault.Run([&](QSqlDatabase* connection) {
            CLFResultDataTransfer t(6, connection, &m_rtdb, false, 0);
            EXPECT_EQ((t.*transfer)(), 0) << "the driver passes no failure on";
        }));
    };
    underFault(Hold::Rows, &CLFResultDataTransfer::ImportRTDBDataToLFResultDB);
    EXPECT_EQ(feedback().texts(2), f.writeErrors);
    EXPECT_EQ(boxes().boxes().size(), f.boxes);
    EXPECT_EQ(Rows("SELECT (SELECT Pi FROM LFR_ACLINE_R WHERE Case_No=6), (SELECT Pg FROM "
                   "LFR_GEN_R WHERE Case_No=6 AND ID_Name='G1'), (SELECT Pl FROM LFR_LOAD_R "
                   "WHERE Case_No=6)"),
              std::vector<std::string>{f.values});

    // The records forget their solution; the stored results must bring it back.
    Exec("UPDATE LFR_GEN_R SET Pg=0.875 WHERE Case_No=6 AND ID_Name='G1'");
    ChangeAll<un>([](un& r) { r.Pg = 0; });
    ChangeAll<ld>([](ld& r) { r.Pl = 0; });
    m_rtdb.commit();
    underFault(f.readHold, &CLFResultDataTransfer::ImportLFResultDataToRTDB);
    EXPECT_EQ(feedback().texts(2), f.readErrors);
    EXPECT_FLOAT_EQ(Fetch<un>("G1").Pg, f.generators ? 0.875f : 0.0f);
}

const std::string kQGen = "查询发电机结果数据发生错误！";

INSTANTIATE_TEST_SUITE_P(
    Table, GenFaults,
    ::testing::Values(
        // Writing, the generators' rows locked: their delete waits and the connection dies;
        // the lines were written, the loads after them find no server. Reading, the table
        // locked whole: the select waits, the connection dies, the families after it fail.
        GenFault{Fault::Killed, {kXGen, kXLoad, kXT2w}, 3, "0.625|0.75|0.5", Hold::Table,
                 {kQGen, "查询负荷结果数据发生错误！", "查询两绕组变压器结果数据发生错误！",
                  "查询移相变压器结果数据发生错误！", "查询三绕组变压器结果数据发生错误！",
                  "查询开关结果数据发生错误！"},
                 false},
        // Missing (a lock timeout goes the same way both ways): that table alone fails.
        GenFault{Fault::MissingTable, {kXGen}, 1, "0.625|0.75|0.375", Hold::Rows, {kQGen}, false},
        // Read only: every batch is refused (the bus tables' failures are not looked at);
        // reading is all the way back does.
        GenFault{Fault::ReadOnly, {kXAcline, kXPcr, kXGen, kXLoad, kXT2w}, 7, "0.5|0.75|0.5",
                 Hold::Rows, {}, true}),
    [](const auto& info) { return testsupport::FaultName(info.param.fault); });
