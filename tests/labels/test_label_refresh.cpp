// The label refresh: stored load-flow results brought back into the records, then the
// label map's rows into the records' label slots, per family, per unit and named.

#include "DbTest.h"
#include "Faults.h"
#include "RecordAccess.h"
#include "labels/RTLabelData.h"
#include "loadflow/results/LFResultDataTransfer.h"
#include "records/NetworkRecords.h"
#include "records/RecordFlags.h"

#include <type_traits>

using namespace dtsdb;
using testsupport::DbTest;
using testsupport::Fetch;
using testsupport::Put;

namespace {

constexpr int kCase = 3;

template <class T> T Record(const char* id, int type = 0)
{
    T r;
    r.id = id;
    if constexpr (std::is_same_v<T, ln>) {
        r.lntype = type;
    } else if constexpr (std::is_same_v<T, xf>) {
        r.type = type;
    }
    return r;
}

// The network as the model builder leaves it: levels K220 and K110 on calculation buses 1
// and 2, level K35 on a bus number that no bs has; nodes N0 to N3 with their physical
// buses (N3 on no level); every element with its id and, where the stored results do not
// bring them, its values and flags.
void Network()
{
    const struct
    {
        const char* id;
        int ibs;
        float kv;
    } levels[] = {{"K220", 1, 220}, {"K110", 2, 110}, {"K35", 7, 35}};
    for (const auto& l : levels) {
        kv k;
        k.id = l.id;
        k.ibs = l.ibs;
        k.Base_kV = l.kv;
        Put(k);
    }
    const char* levelOf[] = {"K220", "K220", "K110", nullptr};
    const char* nodes[] = {"N0", "N1", "N2", "N3"};
    for (int i = 0; i < 4; ++i) {
        nd n;
        n.id = nodes[i];
        Put(n);
        bus b;
        b.id = nodes[i];
        b.nd = nodes[i];
        Put(b);
        if (levelOf[i]) {
            r_kv_nd rel;
            rel.kv_id = levelOf[i];
            rel.nd_id = nodes[i];
            Put(rel);
        }
    }
    for (const char* id : {"L1_ac", "L2_ac", "L3_ac", "L4_ac"}) {
        Put(Record<ln>(id, 1));
    }
    Put(Record<ln>("S1_sc", 2));
    dln dc1 = Record<dln>("DC1");
    dc1.Pj = 0.97f; // the stored DC results bring no J-end active power
    Put(dc1);
    Put(Record<dln>("DC2"));
    Put(Record<xf>("T1_2w", 1));
    Put(Record<xf>("T2_2w", 1));
    Put(Record<xf>("P1_sf", 2));
    // The windings' I-end powers are not in the stored three-winding row.
    const float windingPi[] = {0.6f, -0.35f, -0.2f};
    const char* windings[] = {"T3_3w1", "T3_3w2", "T3_3w3"};
    for (int w = 0; w < 3; ++w) {
        xf t = Record<xf>(windings[w], 3);
        t.Pi = windingPi[w];
        t.Qi = 0.12f;
        Put(t);
    }
    // Two windings whose id gives no winding number; both dead, so that the stored zeros
    // show that they were updated.
    for (const char* id : {"T9_3wx", ""}) {
        xf t = Record<xf>(id, 3);
        t.Pi = 0.5f;
        t.Pj = -0.5f;
        t.q = XF_INJOB;
        t.topflags = XF_TOP_INVALID;
        Put(t);
    }
    for (const char* id : {"G1", "G2"}) {
        Put(Record<un>(id));
    }
    for (const char* id : {"D1", "D2"}) {
        Put(Record<ld>(id));
    }
    for (const char* id : {"C1", "C2", "C3"}) {
        Put(Record<cp>(id));
    }
}

// A slot as "Kind,Changed,Value1,Value2"; values to 6 significant digits.
std::string Show(const LabelSlot& s)
{
    return QString("%1,%2,%3,%4")
        .arg(s.Kind)
        .arg(s.Changed)
        .arg(s.Value1, 0, 'g', 6)
        .arg(s.Value2, 0, 'g', 6)
        .toStdString();
}

// The three slots of a branch record, joined by " | ".
template <class T> std::string Slots(const char* id)
{
    const T r = Fetch<T>(id);
    return Show(r.Slot[0]) + " | " + Show(r.Slot[1]) + " | " + Show(r.Slot[2]);
}

const char* const EMPTY = "0,0,0,0";

// The label map rows (family, slot, quantity) of a configuration, with a change mark.
struct MapRow
{
    int family, slot, quantity;
    int conf = 4;
    int changed = 0;
};

} // namespace

class Labels : public DbTest
{
protected:
    // Results of case kCase as a load flow stored them, with the flags of the solved network.
    static void StoredResults()
    {
        Exec("INSERT INTO LFR_BUS_R(Case_No,Bus_Name,V,Angle,ibs,topflags) VALUES "
             "(3,'N0',0.9,0,0,0),(3,'N1',1.02,-1.5,1,0),(3,'N2',0.98,-3,2,1),(3,'N3',1.05,-4,3,0)");
        Exec("INSERT INTO LFR_BS_R(Case_No,Bus_Name,V,Angle,ibs,q) VALUES "
             "(3,'B1',1.02,-1.5,1,0),(3,'B2',0.98,-3,2,1),(3,'B3',1.05,-4,3,0)");
        // L2 open at its J end, L3 not in the job, L4 flowing from J to I.
        Exec("INSERT INTO LFR_ACLINE_R(Case_No,ID_Name,Pi,Qi,Pj,Qj,q,topflags) VALUES "
             "(3,'L1',0.5,0.1,-0.49,-0.08,16,0),(3,'L2',0.3,0.05,-0.3,-0.05,18,0),"
             "(3,'L3',0.7,0.1,-0.7,-0.1,0,0),(3,'L4',-2,-0.4,2,0.5,16,0)");
        Exec("INSERT INTO LFR_SCR_R(Case_No,ID_Name,Pi,Qi,Pj,Qj,q) VALUES "
             "(3,'S1',0.2,0.02,-0.2,-0.02,16)");
        // DC1 open at its J end (no matter to a DC line), DC2 dead. The I-end sums come from
        // the converter columns: Pi = Pd1j + Pd2j, Qi = -(Qd1i + Qd2i), Qj = Qd1j + Qd2j.
        Exec("INSERT INTO LFR_DCLINE_R(Case_No,ID_Name,Pd1j,Qd1i,Qd1j,q,topflags) VALUES "
             "(3,'DC1',-0.95,0.3,0.25,18,0),(3,'DC2',1,0.2,0.1,16,4)");
        // T1 out of service by its q bit (no matter to a transformer), T2 dead.
        Exec("INSERT INTO LFR_T2W_R(Case_No,ID_Name,Pi,Qi,Pj,Qj,q,topflags) VALUES "
             "(3,'T1',0.25,0.05,-0.25,-0.04,17,0),(3,'T2',0.4,0.1,-0.4,-0.1,16,4)");
        Exec("INSERT INTO LFR_SHIFT_R(Case_No,ID_Name,Pi,Qi,Pj,Qj,q) VALUES "
             "(3,'P1',0.1,0.01,-0.1,-0.01,16)");
        // Winding 3 dead.
        Exec("INSERT INTO LFR_T3W_R(Case_No,ID_Name,P1,Q1,P2,Q2,P3,Q3,qq1,topflags1,qq2,"
             "topflags2,qq3,topflags3) VALUES (3,'T3',-0.58,-0.1,0.35,0.06,0.2,0.03,16,0,"
             "16,0,16,4)");
        Exec("INSERT INTO LFR_GEN_R(Case_No,ID_Name,Pg,Qg,q,topflags) VALUES "
             "(3,'G1',0.75,0.125,8,0),(3,'G2',0.5,0.2,8,1)");
        Exec("INSERT INTO LFR_LOAD_R(Case_No,ID_Name,Pl,Ql,q,topflags) VALUES "
             "(3,'D1',0.5,0.1,8,0),(3,'D2',0.3,0.1,0,1)");
        Exec("INSERT INTO LFR_PCR_R(Case_No,ID_Name,Pi,Qi,q,topflags) VALUES "
             "(3,'C1',0,-0.05,8,0),(3,'C2',0.01,-0.2,8,1),(3,'C3',0,-0.1,0,0)");
    }

    // The rows in this order; Label_OrderNo counts them.
    static void Map(const std::vector<MapRow>& rows)
    {
        int n = 0;
        for (const MapRow& r : rows) {
            Exec(QString("INSERT INTO RTLABELMAP(Ele_OrderNo,Label_OrderNo,RT_No,Label_Type,"
                         "LabelsConf_Num,MChanged) VALUES (%1,%2,%3,%4,%5,%6)")
                     .arg(r.family)
                     .arg(++n)
                     .arg(r.slot)
                     .arg(r.quantity)
                     .arg(r.conf)
                     .arg(r.changed));
        }
    }

    void SetUp() override
    {
        DbTest::SetUp();
        ASSERT_TRUE(m_rtdb.open("labels"));
        Truncate({"RTLABELMAP", "CDB_SBBAK", "LFR_BUS_R", "LFR_BS_R", "LFR_ACLINE_R", "LFR_SCR_R",
                  "LFR_DCLINE_R", "LFR_T2W_R", "LFR_SHIFT_R", "LFR_T3W_R", "LFR_GEN_R",
                  "LFR_LOAD_R", "LFR_PCR_R"});
        Exec("INSERT INTO CDB_SBBAK(Base_Mva) VALUES (100)");
        feedback().clear();
    }
    void TearDown() override
    {
        m_rtdb.rollback();
        m_rtdb.close();
    }
    // The stored results of the case back in the records, committed.
    void BringBackResults()
    {
        CLFResultDataTransfer results(kCase, db(), &m_rtdb, false, 0);
        ASSERT_EQ(results.ImportLFResultDataToRTDB(), 0);
        ASSERT_TRUE(feedback().texts(2).empty()) << feedback().texts(2).front();
        m_rtdb.commit();
    }
    dbDatabase m_rtdb;
};

TEST_F(Labels, EveryFamilyShowsItsStoredResultsPerUnitAndNamed)
{
    Map({{0, 0, 0},  {1, 0, 0},   {2, 0, 0},   {5, 0, 0},  {6, 0, 8},  {6, 1, 9},
         {6, 2, 14}, {6, 3, 8},   {8, 0, 14},  {9, 1, 8},  {7, 0, 8},  {7, 1, 9},
         {7, 2, 14}, {10, 0, 8},  {10, 1, 14}, {11, 0, 9}, {12, 0, 8}, {12, 0, 10},
         {12, 1, 9}, {12, 2, 14}, {12, 2, 16}, {3, 0, 8},  {13, 0, 8}, {-1, 0, 8}});

    // No records yet: every family finds nothing, and nothing is said.
    EXPECT_TRUE(PrepareRTLabelLFRData(db(), &m_rtdb, 0, false, false));
    EXPECT_TRUE(feedback().messages().empty());

    Network();
    StoredResults();
    BringBackResults();
    EXPECT_TRUE(PrepareRTLabelLFRData(db(), &m_rtdb, 0, false, false));
    m_rtdb.rollback(); // what follows was committed by the refresh

    // Voltage levels: K110's bus is marked dead in bs, so its label shows 0 while the bs
    // record keeps its voltage; K35 has no bus and is passed over.
    EXPECT_EQ(Show(Fetch<kv>("K220").Slot[0]), "2,1,1.02,0");
    EXPECT_EQ(Show(Fetch<kv>("K110").Slot[0]), "2,1,0,0");
    EXPECT_EQ(Show(Fetch<kv>("K35").Slot[0]), EMPTY);
    {
        dbCursor<bs> b;
        dbQuery q;
        q = "id=", 2;
        ASSERT_EQ(b.select(q), 1);
        EXPECT_DOUBLE_EQ(b->V, 0.98);
    }
    // Physical buses above bus number 0: the dead N2 has its voltage and angle stored as 0.
    EXPECT_EQ(Show(Fetch<bus>("N1").Slot[0]), "2,1,1.02,0");
    EXPECT_EQ(Show(Fetch<bus>("N2").Slot[0]), "2,1,0,0");
    EXPECT_EQ(Fetch<bus>("N2").V, 0);
    EXPECT_EQ(Fetch<bus>("N2").Angle, 0);
    EXPECT_EQ(Show(Fetch<bus>("N3").Slot[0]), "2,1,1.05,0");
    EXPECT_EQ(Show(Fetch<bus>("N0").Slot[0]), EMPTY);

    // Generators and loads: a dead one in the job shows 0 and keeps its power; D2, dead but
    // not in the job, shows its power.
    EXPECT_EQ(Show(Fetch<un>("G1").Slot[0]), "8,1,0.75,0.125");
    EXPECT_EQ(Show(Fetch<un>("G2").Slot[0]), "8,1,0,0");
    EXPECT_FLOAT_EQ(Fetch<un>("G2").Pg, 0.5f);
    EXPECT_EQ(Show(Fetch<ld>("D1").Slot[0]), "8,1,0.5,0.1");
    EXPECT_EQ(Show(Fetch<ld>("D2").Slot[0]), "8,1,0.3,0.1");
    // Shunts: the dead C2 has its own power set to 0; C3, not in the job, gets no label.
    EXPECT_EQ(Show(Fetch<cp>("C1").Slot[0]), "8,1,0,-0.05");
    EXPECT_EQ(Show(Fetch<cp>("C2").Slot[0]), "8,1,0,0");
    EXPECT_EQ(Fetch<cp>("C2").Qi, 0);
    EXPECT_EQ(Show(Fetch<cp>("C3").Slot[0]), EMPTY);

    // AC lines: slot 0 the I end, 1 the J end, 2 the difference, whose sign follows the I
    // end (L4); the row for slot 3 writes nothing. L2, open at one end, is zeroed in the
    // record and its difference shows -1e-07; L3 is not in the job.
    EXPECT_EQ(Slots<ln>("L1_ac"), "8,1,0.5,0.1 | 8,1,-0.49,-0.08 | 8,1,0.99,0.18");
    EXPECT_EQ(Slots<ln>("L2_ac"), "8,1,0,0 | 8,1,0,0 | 8,1,-1e-07,0");
    EXPECT_EQ(Fetch<ln>("L2_ac").Pi, 0);
    EXPECT_EQ(Slots<ln>("L3_ac"), std::string(EMPTY) + " | " + EMPTY + " | " + EMPTY);
    EXPECT_FLOAT_EQ(Fetch<ln>("L3_ac").Pi, 0.7f);
    EXPECT_EQ(Slots<ln>("L4_ac"), "8,1,-2,-0.4 | 8,1,2,0.5 | 8,1,4,0.9");
    // Series elements, by family 8 and by 9.
    EXPECT_EQ(Slots<ln>("S1_sc"), "8,1,0.4,0.04 | 8,1,0.2,0.02 | " + std::string(EMPTY));
    // DC lines: an open end does not zero them; a dead one is zeroed.
    EXPECT_EQ(Slots<dln>("DC1"), "8,1,-0.95,-0.3 | 8,1,0.97,0.25 | 8,1,1.92,0.55");
    EXPECT_EQ(Slots<dln>("DC2"), "8,1,0,0 | 8,1,0,0 | 8,1,-1e-07,0");
    // Transformers: T1's out-of-service bit does not zero it; T2 is dead.
    EXPECT_EQ(Slots<xf>("T1_2w"), "8,1,0.25,0.05 | 8,1,0.5,0.09 | " + std::string(EMPTY));
    EXPECT_EQ(Slots<xf>("T2_2w"), "8,1,0,0 | 8,1,-1e-07,0 | " + std::string(EMPTY));
    EXPECT_EQ(Slots<xf>("P1_sf"), "8,1,-0.1,-0.01 | " + std::string(EMPTY) + " | " + EMPTY);
    // Three windings: 8, 9, 10 show the J end of winding 1, 2, 3; 14 and 16 the difference
    // of winding 1 and 3 (winding 3 dead); 9 on winding 1 and 8 on winding 2 show nothing.
    EXPECT_EQ(Slots<xf>("T3_3w1"), "8,1,-0.58,-0.1 | " + std::string(EMPTY) + " | 8,1,1.18,0.22");
    EXPECT_EQ(Slots<xf>("T3_3w2"), std::string(EMPTY) + " | 8,1,0.35,0.06 | " + EMPTY);
    EXPECT_EQ(Slots<xf>("T3_3w3"), "8,1,0,0 | " + std::string(EMPTY) + " | 8,1,-1e-07,0");
    // No winding number in the id: no label, but the update ran (the zeros are stored).
    for (const char* id : {"T9_3wx", ""}) {
        const xf t = Fetch<xf>(id);
        EXPECT_EQ(Slots<xf>(id), std::string(EMPTY) + " | " + EMPTY + " | " + EMPTY) << id;
        EXPECT_EQ(t.Pi, 0) << id;
    }
    EXPECT_TRUE(feedback().messages().empty());

    // Named values: powers times 100 MVA, voltages times their base voltage. N3's node has
    // no level: the lookup says so and gives 1.
    EXPECT_TRUE(PrepareRTLabelLFRData(db(), &m_rtdb, LABEL_MODE_NAMED, false, false));
    EXPECT_EQ(Show(Fetch<kv>("K220").Slot[0]), "2,1,224.4,0");
    EXPECT_EQ(Show(Fetch<bus>("N1").Slot[0]), "2,1,224.4,0");
    EXPECT_EQ(Show(Fetch<bus>("N3").Slot[0]), "2,1,1.05,0");
    EXPECT_EQ(feedback().texts(2),
              std::vector<std::string>{"无效的节点名，取基准电压值发生错误！"});
    EXPECT_EQ(Show(Fetch<un>("G1").Slot[0]), "8,1,75,12.5");
    EXPECT_EQ(Show(Fetch<cp>("C1").Slot[0]), "8,1,0,-5");
    EXPECT_EQ(Slots<ln>("L1_ac"), "8,1,50,10 | 8,1,-49,-8 | 8,1,99,18");
    EXPECT_EQ(Slots<ln>("L4_ac"), "8,1,-200,-40 | 8,1,200,50 | 8,1,400,90");
    EXPECT_EQ(Slots<dln>("DC1"), "8,1,-95,-30 | 8,1,97,25 | 8,1,192,55");
    EXPECT_EQ(Slots<xf>("T3_3w1"), "8,1,-58,-10 | " + std::string(EMPTY) + " | 8,1,118,22");
    EXPECT_EQ(Slots<xf>("T3_3w3"), "8,1,0,0 | " + std::string(EMPTY) + " | 8,1,-1e-07,0");
}

TEST_F(Labels, DifferencesNeverShowAnExactZero)
{
    // I and J powers, and the difference label of slot 0 in mode 0 and mode 32.
    const struct
    {
        const char* id;
        float pi, pj;
        double perUnit, named;
    } cases[] = {
        {"Z_ac", 0, 0, -1e-07, -1e-07},      // 0 is not above 0
        {"F_ac", 2, -2, 4, 400},             //
        {"R_ac", -2, 2, 4, 400},             // negated with Pi
        {"S_ac", 5e-10f, 0, 1e-07, 1e-07},   // inside the band either way
        {"M_ac", 5e-09f, 0, 1e-07, 5e-07},   // scaled out of the band
        {"N_ac", -5e-09f, 0, -1e-07, 5e-07}, // negated first, then banded
    };
    for (const auto& c : cases) {
        ln l = Record<ln>(c.id, 1);
        l.Pi = c.pi;
        l.Pj = c.pj;
        l.Qi = 0.25f;
        l.q = LN_INJOB;
        Put(l);
    }
    m_rtdb.commit();
    Map({{6, 0, 14}});
    for (int mode : {0, LABEL_MODE_NAMED}) {
        PrepareRTLabelLFRData(db(), &m_rtdb, mode, false, false);
        for (const auto& c : cases) {
            const LabelSlot s = Fetch<ln>(c.id).Slot[0];
            const double sign = c.pi < 0 ? -1 : 1;
            const double scale = mode ? 100 : 1;
            EXPECT_NEAR(s.Value1, mode ? c.named : c.perUnit, 1e-12) << c.id << " mode " << mode;
            EXPECT_NEAR(s.Value2, sign * 0.25 * scale, 1e-12) << c.id << ": Value2 is not banded";
        }
    }
    EXPECT_EQ(Fetch<ln>("Z_ac").Slot[0].Value1, -1e-07) << "the double nearest to 1e-07";
}

TEST_F(Labels, ChangedRowsOnlyAndTheResetOfTheMarks)
{
    ln l = Record<ln>("L1_ac", 1);
    l.Pi = 0.5f;
    l.Qi = 0.1f;
    l.Pj = -0.4f;
    l.Qj = -0.05f;
    l.q = LN_INJOB;
    Put(l);
    un g = Record<un>("G1");
    g.Pg = 0.75f;
    Put(g);
    m_rtdb.commit();
    // Changed: the line's J end in slot 1, and the generator in slot 1 (refused before any
    // walk). Unchanged: the line's I end in slot 0. Another configuration: the generator.
    Map({{6, 1, 9, 4, 1}, {1, 1, 0, 4, 1}, {6, 0, 8, 4, 0}, {1, 0, 0, 5, 1}});

    StartStatementLog();
    EXPECT_TRUE(PrepareRTLabelLFRData(db(), &m_rtdb, 0, true, false));
    EXPECT_EQ(Slots<ln>("L1_ac"), std::string(EMPTY) + " | 8,1,-0.4,-0.05 | " + EMPTY);
    EXPECT_EQ(Show(Fetch<un>("G1").Slot[0]), EMPTY);
    EXPECT_EQ(Show(Fetch<un>("G1").Slot[1]), EMPTY);
    EXPECT_EQ(Count("RTLABELMAP WHERE MChanged = 1"), 3) << "the marks stay";

    EXPECT_TRUE(PrepareRTLabelLFRData(db(), &m_rtdb, 0, false, true));
    EXPECT_EQ(Slots<ln>("L1_ac"), "8,1,0.5,0.1 | 8,1,-0.4,-0.05 | " + std::string(EMPTY));
    EXPECT_EQ(Count("RTLABELMAP WHERE MChanged = 1"), 0) << "configuration 5 too";
    EXPECT_EQ(SentStatements(),
              (std::vector<std::string>{
                  "SELECT Ele_OrderNo,Label_OrderNo,RT_No,Label_Type FROM RTLABELMAP WHERE "
                  "LabelsConf_Num=4 AND MChanged = 1",
                  "SELECT Ele_OrderNo,Label_OrderNo,RT_No,Label_Type FROM RTLABELMAP WHERE "
                  "LabelsConf_Num=4",
                  "UPDATE RTLABELMAP SET MChanged = 0"}));

    // Two rows for one slot: the row the server gives last wins.
    Truncate({"RTLABELMAP"});
    Map({{6, 2, 8}, {6, 2, 9}});
    PrepareRTLabelLFRData(db(), &m_rtdb, 0, false, false);
    const std::vector<std::string> order =
        Rows("SELECT Label_Type FROM RTLABELMAP WHERE LabelsConf_Num=4 ");
    ASSERT_EQ(order.size(), 2u);
    EXPECT_EQ(Show(Fetch<ln>("L1_ac").Slot[2]),
              order.back() == "9" ? "8,1,-0.4,-0.05" : "8,1,0.5,0.1");
}

TEST_F(Labels, AnEmptyOrMissingMapStillCommitsAndResets)
{
    Map({{1, 0, 0, 5, 1}}); // a mark of another configuration
    Put(Record<un>("G1"));  // not committed yet

    StartStatementLog();
    EXPECT_TRUE(PrepareRTLabelLFRData(db(), &m_rtdb, 0, false, true));
    m_rtdb.rollback();
    EXPECT_EQ(Show(Fetch<un>("G1").Slot[0]), EMPTY) << "the insert was committed";
    EXPECT_EQ(Count("RTLABELMAP WHERE MChanged = 1"), 0);

    // The map refused by the server: no rows, the commit and the reset all the same.
    Exec("RENAME TABLE RTLABELMAP TO RTLABELMAP_AWAY");
    Put(Record<ld>("D1"));
    EXPECT_TRUE(PrepareRTLabelLFRData(db(), &m_rtdb, LABEL_MODE_NAMED, true, true));
    Exec("RENAME TABLE RTLABELMAP_AWAY TO RTLABELMAP");
    m_rtdb.rollback();
    dbCursor<ld> d;
    EXPECT_EQ(d.select(), 1) << "committed";
    EXPECT_TRUE(feedback().messages().empty());
    EXPECT_EQ(SentStatements(),
              (std::vector<std::string>{
                  "SELECT Ele_OrderNo,Label_OrderNo,RT_No,Label_Type FROM RTLABELMAP WHERE "
                  "LabelsConf_Num=4",
                  "UPDATE RTLABELMAP SET MChanged = 0", "SELECT Base_Mva FROM CDB_SBBAK",
                  "SELECT Ele_OrderNo,Label_OrderNo,RT_No,Label_Type FROM RTLABELMAP WHERE "
                  "LabelsConf_Num=4 AND MChanged = 1",
                  "UPDATE RTLABELMAP SET MChanged = 0"}));
    EXPECT_TRUE(PrepareEleRTLabelLFRData(db(), &m_rtdb, "G1", 0, 0));
}

// ---- The refresh under server faults: it reports nothing and always gives true, so what
// stays is the evidence: the labels written or not, the change marks reset or not ----

struct LabelFault
{
    testsupport::Fault fault;
    testsupport::Hold hold;
    bool labelled; // the rows of the map reached the records
    int marked;    // rows of the map still marked changed
};

void PrintTo(const LabelFault& f, std::ostream* os)
{
    *os << testsupport::FaultName(f.fault);
}

class LabelFaults : public Labels, public ::testing::WithParamInterface<LabelFault>
{};

TEST_P(LabelFaults, TheRefreshLabelsWhatItReadAndTheNextRunResetsTheMarks)
{
    const LabelFault& f = GetParam();
    Map({{6, 0, 8, 4, 1}, {1, 0, 0, 4, 1}});
    Network();
    StoredResults();
    BringBackResults();
    {
        testsupport::FaultInjector fault(scratch(), db(), f.fault, "RTLABELMAP", f.hold);
        ASSERT_TRUE(fault.Run([&](QSqlDatabase* connection) {
            EXPECT_TRUE(PrepareRTLabelLFRData(connection, &m_rtdb, 0, false, true));
        }));
    }
    m_rtdb.rollback();
    EXPECT_TRUE(feedback().messages().empty());
    EXPECT_EQ(Show(Fetch<ln>("L1_ac").Slot[0]), f.labelled ? "8,1,0.5,0.1" : EMPTY);
    EXPECT_EQ(Show(Fetch<un>("G1").Slot[0]), f.labelled ? "8,1,0.75,0.125" : EMPTY);
    EXPECT_EQ(Count("RTLABELMAP WHERE MChanged = 1"), f.marked);

    QSqlDatabase fresh = testsupport::FreshConnection(scratch());
    EXPECT_TRUE(PrepareRTLabelLFRData(&fresh, &m_rtdb, 0, false, true));
    m_rtdb.rollback();
    EXPECT_EQ(Show(Fetch<ln>("L1_ac").Slot[0]), "8,1,0.5,0.1");
    EXPECT_EQ(Count("RTLABELMAP WHERE MChanged = 1"), 0);
    fresh.close();
}

INSTANTIATE_TEST_SUITE_P(
    Table, LabelFaults,
    ::testing::Values(
        // The map's rows locked: its select (a plain read) passes, the reset of the marks
        // waits and the connection dies there. The labels were written and committed.
        LabelFault{testsupport::Fault::Killed, testsupport::Hold::Rows, true, 2},
        LabelFault{testsupport::Fault::MissingTable, testsupport::Hold::Rows, false, 2},
        LabelFault{testsupport::Fault::ReadOnly, testsupport::Hold::Rows, true, 2},
        // A full MEMORY table takes the reset: updates keep the rows' size.
        LabelFault{testsupport::Fault::Full, testsupport::Hold::Rows, true, 0},
        // The whole map locked: the select waits a second and is refused, and so is the
        // reset; nothing is labelled.
        LabelFault{testsupport::Fault::LockTimeout, testsupport::Hold::Table, false, 2}),
    [](const ::testing::TestParamInfo<LabelFault>& info) {
        return testsupport::FaultName(info.param.fault);
    });

// Node names with quotes, backslashes and multi-byte text: each bus is labelled with the
// base voltage of its own level, found through its own name.
TEST_F(Labels, EachBusFindsTheLevelOfItsOwnNameWhateverTheNameHolds)
{
    Map({{0, 0, 0}});
    const std::string twenty = "节点甲乙丙丁A\\";
    ASSERT_EQ(twenty.size(), 20u);
    for (const auto& [id, base] : {std::pair<const char*, float>{"K220", 220}, {"K110", 110}}) {
        kv k;
        k.id = id;
        k.Base_kV = base;
        Put(k);
    }
    const std::pair<std::string, const char*> nodes[] = {{"x' OR '1'='1", "K110"},
                                                         {"a\\b", "K220"},
                                                         {"N3\\", "K110"},
                                                         {twenty, "K220"},
                                                         {"x", "K220"}};
    int n = 0;
    for (const auto& [name, level] : nodes) {
        bus b;
        b.id = name.c_str();
        b.nd = name.c_str();
        b.ibs = ++n;
        b.V = 1.0;
        Put(b);
        r_kv_nd rel;
        rel.kv_id = level;
        rel.nd_id = name.c_str();
        Put(rel);
    }
    m_rtdb.commit();
    EXPECT_TRUE(PrepareRTLabelLFRData(db(), &m_rtdb, LABEL_MODE_NAMED, false, false));
    m_rtdb.rollback();
    EXPECT_TRUE(feedback().texts(2).empty()) << ::testing::PrintToString(feedback().texts(2));
    for (const auto& [name, level] : nodes) {
        EXPECT_EQ(Show(Fetch<bus>(name.c_str()).Slot[0]),
                  std::string("2,1,") + (level == std::string("K110") ? "110" : "220") + ",0")
            << name;
    }
}
