// The label refresh: the label map's rows into the records' label slots, per family, per
// unit and named. The records are laid out here with their solved values, as a load flow
// leaves them, so that nothing but the refresh stands between the map and the slots.

#include "DbTest.h"
#include "Faults.h"
#include "RecordAccess.h"
#include "labels/RTLabelData.h"
#include "records/NetworkRecords.h"
#include "records/RecordFlags.h"

#include <algorithm>
#include <iterator>
#include <tuple>
#include <type_traits>

using namespace dtsdb;
using testsupport::DbTest;
using testsupport::Fetch;
using testsupport::Put;

namespace {

// A branch record (ln, xf, dln) with its end powers and flags; `type` is lntype or type.
template <class T>
void Branch(const char* id, float pi, float qi, float pj, float qj, unsigned q,
            unsigned top = 0, int type = 1)
{
    T r;
    r.id = id;
    r.Pi = pi;
    r.Qi = qi;
    r.Pj = pj;
    r.Qj = qj;
    r.q = q;
    r.topflags = top;
    if constexpr (std::is_same_v<T, ln>) {
        r.lntype = type;
    } else if constexpr (std::is_same_v<T, xf>) {
        r.type = type;
    }
    Put(r);
}

template <class T> void OneEnded(const char* id, float p, float q, unsigned flags, unsigned top)
{
    T r;
    r.id = id;
    if constexpr (std::is_same_v<T, un>) {
        r.Pg = p, r.Qg = q;
    } else if constexpr (std::is_same_v<T, ld>) {
        r.Pl = p, r.Ql = q;
    } else {
        r.Pi = p, r.Qi = q;
    }
    r.q = flags;
    r.topflags = top;
    Put(r);
}

// The solved network. Levels K220 and K110 on calculation buses 1 and 2 (bus 2 shown dead
// in bs), K35 on a bus number no bs has. Physical buses N0 (bus number 0), N1, N2 (dead)
// and N3 (on no level), and five whose names hold quotes, backslashes and Chinese text of
// 20 bytes as the design counted them (one a prefix of another), each on a level of its own
// name.
void Network()
{
    const std::tuple<const char*, int, float> levels[] = {
        {"K220", 1, 220}, {"K110", 2, 110}, {"K35", 7, 35}};
    for (const auto& [id, ibs, baseKv] : levels) {
        kv k;
        k.id = id, k.ibs = ibs, k.Base_kV = baseKv;
        Put(k);
    }
    for (int i : {1, 2}) {
        bs b;
        b.id = i, b.V = i == 1 ? 1.02 : 0.98, b.q = i == 2;
        Put(b);
    }
    const std::tuple<const char*, int, double, unsigned, const char*> buses[] = {
        {"N0", 0, 0.9, 0, "K220"},
        {"N1", 1, 1.02, 0, "K220"},
        {"N2", 2, 0.98, BUS_TOP_DEAD, "K110"},
        {"N3", 3, 1.05, 0, nullptr},
        {"x' OR '1'='1", 4, 1, 0, "K110"},
        {"a\\b", 5, 1, 0, "K220"},
        {"N3\\", 6, 1, 0, "K110"},
        {"华北电网十个字的母线", 7, 1, 0, "K110"},
        {"华北电网十个字的母", 8, 1, 0, "K220"}};
    for (const auto& [id, ibs, v, top, level] : buses) {
        bus b;
        b.id = id, b.nd = id, b.ibs = ibs, b.V = v, b.Angle = -3, b.topflags = top;
        Put(b);
        if (level) {
            r_kv_nd rel;
            rel.kv_id = level, rel.nd_id = id;
            Put(rel);
        }
    }
    OneEnded<un>("G1", 0.75f, 0.125f, UN_INJOB, 0);
    OneEnded<un>("G2", 0.5f, 0.2f, UN_INJOB, UN_TOP_INVALID); // dead in the job
    OneEnded<ld>("D1", 0.5f, 0.1f, LD_INJOB, 0);
    OneEnded<ld>("D2", 0.3f, 0.1f, 0, LD_TOP_INVALID); // dead, not in the job
    OneEnded<cp>("C1", 0, -0.05f, CP_INJOB, 0);
    OneEnded<cp>("C2", 0.01f, -0.2f, CP_INJOB, CP_TOP_INVALID);
    OneEnded<cp>("C3", 0, -0.1f, 0, 0);
    // L2 open at its J end, L3 not in the job, L4 flowing from J to I.
    Branch<ln>("L1_ac", 0.5f, 0.1f, -0.49f, -0.08f, LN_INJOB);
    Branch<ln>("L2_ac", 0.3f, 0.05f, -0.3f, -0.05f, LN_INJOB | LN_JOPEN);
    Branch<ln>("L3_ac", 0.7f, 0.1f, -0.7f, -0.1f, 0);
    Branch<ln>("L4_ac", -2, -0.4f, 2, 0.5f, LN_INJOB);
    Branch<ln>("S1_sc", 0.2f, 0.02f, -0.2f, -0.02f, LN_INJOB, 0, 2);
    // DC1 with a line's J-open bit, which does not count for a DC line; DC2 dead.
    Branch<dln>("DC1", -0.95f, -0.3f, 0.97f, 0.25f, DLN_INJOB | LN_JOPEN);
    Branch<dln>("DC2", 1, 0.2f, -1, -0.1f, DLN_INJOB, DLN_TOP_INVALID);
    // T1 out of service by its q bit, which does not count for a transformer; T2 dead.
    Branch<xf>("T1_2w", 0.25f, 0.05f, -0.25f, -0.04f, XF_INJOB | XF_OUTSERVICE);
    Branch<xf>("T2_2w", 0.4f, 0.1f, -0.4f, -0.1f, XF_INJOB, XF_TOP_INVALID);
    Branch<xf>("P1_sf", 0.1f, 0.01f, -0.1f, -0.01f, XF_INJOB, 0, 2);
    // Three windings, the third dead; two more whose id gives no winding number, dead.
    Branch<xf>("T3_3w1", 0.6f, 0.12f, -0.58f, -0.1f, XF_INJOB, 0, 3);
    Branch<xf>("T3_3w2", -0.35f, 0.12f, 0.35f, 0.06f, XF_INJOB, 0, 3);
    Branch<xf>("T3_3w3", -0.2f, 0.12f, 0.2f, 0.03f, XF_INJOB, XF_TOP_INVALID, 3);
    Branch<xf>("T9_3wx", 0.5f, 0, -0.5f, 0, XF_INJOB, XF_TOP_INVALID, 3);
    Branch<xf>("", 0.5f, 0, -0.5f, 0, XF_INJOB, XF_TOP_INVALID, 3);
}

// A slot as "Kind,Changed,Value1,Value2" (6 significant digits), "-" when never written;
// every slot of a record joined by " | ".
std::string Show(const LabelSlot& s)
{
    if (s.Kind == 0 && s.Changed == 0 && s.Value1 == 0 && s.Value2 == 0) {
        return "-";
    }
    return QString("%1,%2,%3,%4")
        .arg(s.Kind)
        .arg(s.Changed)
        .arg(s.Value1, 0, 'g', 6)
        .arg(s.Value2, 0, 'g', 6)
        .toStdString();
}
template <class T> std::string Slots(const T& r)
{
    std::string out;
    for (std::size_t k = 0; k < std::size(r.Slot); ++k) {
        out += (k ? " | " : "") + Show(r.Slot[k]);
    }
    return out;
}

// Every record of the classes that shows a label, as "id: slots", sorted by id; a record
// with no slot written is left out, so the list says too which records show nothing.
template <class T> void AddShown(std::vector<std::string>& out)
{
    dbCursor<T> c;
    for (bool more = c.select() > 0; more; more = c.next()) {
        const std::string s = Slots(*c);
        if (s.find_first_not_of("-| ") != std::string::npos) {
            out.push_back(std::string(c->id) + ": " + s);
        }
    }
}
template <class... T> std::vector<std::string> ShownOf()
{
    std::vector<std::string> out;
    (AddShown<T>(out), ...);
    std::sort(out.begin(), out.end());
    return out;
}
const auto Shown = ShownOf<kv, bus, un, ld, cp, ln, dln, xf>;

// A label map row (family, slot, quantity) of a configuration, with a change mark.
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
        Truncate({"RTLABELMAP", "CDB_SBBAK"});
        Exec("INSERT INTO CDB_SBBAK(Base_Mva) VALUES (100)");
    }
    void TearDown() override
    {
        m_rtdb.rollback();
        m_rtdb.close();
    }
    dbDatabase m_rtdb;
};

TEST_F(Labels, OddRowsWriteNothingRealsLoseTheirFractionEveryFamilyShowsPerUnitAndNamed)
{
    Network();
    m_rtdb.commit();
    // Rows that name no family, no slot or no quantity of their family write nothing (and
    // leave the record whole: a slot past the last would land on its fields); 5 reads as 4
    // and 9 as 8. A map whose numbers are stored as reals is read as the suite always read
    // it: the fraction goes (8.6 is 8, not 9).
    Exec("ALTER TABLE RTLABELMAP MODIFY Ele_OrderNo DOUBLE, MODIFY RT_No DOUBLE, "
         "MODIFY Label_Type DOUBLE");
    Map({{3, 0, 8}, {13, 0, 8}, {-1, 0, 8}, {6, 3, 8}, {6, -1, 8}, {1, 1, 8}, {10, 2, 10},
         {11, 1, 15}, {9, 2, 15}, {6, 2, 10}, {5, 0, 0}, {9, 0, 8}});
    Exec("INSERT INTO RTLABELMAP(Ele_OrderNo,RT_No,Label_Type,LabelsConf_Num) "
         "VALUES (6.6,1.5,8.6,4)");
    EXPECT_TRUE(PrepareRTLabelLFRData(db(), &m_rtdb, 0, false, false));
    m_rtdb.rollback();
    // Only the real row (family 6, slot 1, type 8: the AC lines' I end), 9 as 8 (the series
    // element's I end in slot 0) and 5 as 4 (the shunts' slot 0) write; family 7 is not named.
    EXPECT_EQ(Shown(), (std::vector<std::string>{
                           "C1: 8,1,0,-0.05 | - | - | -", "C2: 8,1,0,0 | - | - | -",
                           "L1_ac: - | 8,1,0.5,0.1 | -", "L2_ac: - | 8,1,0,0 | -",
                           "L4_ac: - | 8,1,-2,-0.4 | -", "S1_sc: 8,1,0.2,0.02 | - | -"}));
    const ln l1 = Fetch<ln>("L1_ac");
    EXPECT_EQ(std::make_tuple(l1.lntype, l1.Qj), std::make_tuple(1, -0.08f));
    Exec("ALTER TABLE RTLABELMAP MODIFY Ele_OrderNo INT DEFAULT 0, MODIFY RT_No INT DEFAULT 0, "
         "MODIFY Label_Type INT DEFAULT 0");

    Truncate({"RTLABELMAP"});
    Map({{0, 0, 0},   {1, 0, 0},   {2, 0, 0},   {4, 0, 0},   {6, 0, 8},   {6, 1, 9},
         {6, 2, 14},  {8, 0, 14},  {8, 1, 8},   {7, 0, 8},   {7, 1, 9},   {7, 2, 14},
         {10, 0, 8},  {10, 1, 14}, {11, 0, 9},  {12, 0, 8},  {12, 0, 10}, {12, 1, 9},
         {12, 2, 14}, {12, 2, 15}, {12, 2, 16}});
    EXPECT_TRUE(PrepareRTLabelLFRData(db(), &m_rtdb, 0, false, false));
    m_rtdb.rollback(); // what follows was committed by the refresh

    // Levels show their calculation bus; K110's is shown dead in bs, which keeps its
    // voltage; K35 has none. Physical buses above number 0: the dead N2 stores 0.
    // One-ended: dead in the job shows 0 (a generator keeps its power, a shunt loses it);
    // dead out of the job shows its power; a shunt out of the job gets no label.
    // Branches: 8 the I end, 9 the J end, 14 the difference, its sign that of the I end
    // (L4: -2 - 2 = -4 shows 4). L2, open at one end, is zeroed and its difference shows
    // -1e-07 for 0; L3 is not in the job. Windings: 8, 9, 10 the J end of winding 1, 2, 3;
    // 14, 15, 16 their difference (winding 2: -0.35 - 0.35 = -0.7 shows 0.7; winding 3 is
    // dead); T9_3wx and "" give no winding number.
    EXPECT_EQ(Shown(), (std::vector<std::string>{
                           "C1: 8,1,0,-0.05 | - | - | -", "C2: 8,1,0,0 | - | - | -",
                           "D1: 8,1,0.5,0.1 | - | -", "D2: 8,1,0.3,0.1 | - | -",
                           "DC1: 8,1,-0.95,-0.3 | 8,1,0.97,0.25 | 8,1,1.92,0.55",
                           "DC2: 8,1,0,0 | 8,1,0,0 | 8,1,-1e-07,0",
                           "G1: 8,1,0.75,0.125 | -", "G2: 8,1,0,0 | -",
                           "K110: 2,1,0,0 | -", "K220: 2,1,1.02,0 | -",
                           "L1_ac: 8,1,0.5,0.1 | 8,1,-0.49,-0.08 | 8,1,0.99,0.18",
                           "L2_ac: 8,1,0,0 | 8,1,0,0 | 8,1,-1e-07,0",
                           "L4_ac: 8,1,-2,-0.4 | 8,1,2,0.5 | 8,1,4,0.9",
                           "N1: 2,1,1.02,0 | -", "N2: 2,1,0,0 | -", "N3: 2,1,1.05,0 | -",
                           "N3\\: 2,1,1,0 | -",
                           "P1_sf: 8,1,-0.1,-0.01 | - | -",
                           "S1_sc: 8,1,0.4,0.04 | 8,1,0.2,0.02 | -",
                           "T1_2w: 8,1,0.25,0.05 | 8,1,0.5,0.09 | -",
                           "T2_2w: 8,1,0,0 | 8,1,-1e-07,0 | -",
                           "T3_3w1: 8,1,-0.58,-0.1 | - | 8,1,1.18,0.22",
                           "T3_3w2: - | 8,1,0.35,0.06 | 8,1,0.7,-0.06",
                           "T3_3w3: 8,1,0,0 | - | 8,1,-1e-07,0", "a\\b: 2,1,1,0 | -",
                           "x' OR '1'='1: 2,1,1,0 | -", "华北电网十个字的母: 2,1,1,0 | -",
                           "华北电网十个字的母线: 2,1,1,0 | -"}));
    // What the records keep beside their labels (T9_3wx and "": no label, the zeros stored).
    EXPECT_EQ(std::make_tuple(Fetch<bus>("N2").V, Fetch<bus>("N2").Angle, Fetch<un>("G2").Pg,
                              Fetch<cp>("C2").Qi, Fetch<ln>("L2_ac").Pj, Fetch<ln>("L3_ac").Pi,
                              Fetch<xf>("T9_3wx").Pi, Fetch<xf>("").Pi),
              std::make_tuple(0.0, 0.0, 0.5f, 0.0f, 0.0f, 0.7f, 0.0f, 0.0f));
    dbCursor<bs> b;
    dbQuery q("id = 2");
    ASSERT_EQ(b.select(q), 1);
    EXPECT_DOUBLE_EQ(b->V, 0.98);

    // Named: powers times 100 MVA (one scale for every family: a generator and a line
    // stand for them), voltages times the base voltage of their own level, each bus's found
    // by its own name. N3's node has no level: the lookup says so and gives 1.
    EXPECT_TRUE(PrepareRTLabelLFRData(db(), &m_rtdb, LABEL_MODE_NAMED, false, false));
    EXPECT_EQ(Slots(Fetch<kv>("K220")), "2,1,224.4,0 | -");
    EXPECT_EQ(ShownOf<bus>(), (std::vector<std::string>{
                                  "N1: 2,1,224.4,0 | -", "N2: 2,1,0,0 | -", "N3: 2,1,1.05,0 | -",
                                  "N3\\: 2,1,110,0 | -", "a\\b: 2,1,220,0 | -",
                                  "x' OR '1'='1: 2,1,110,0 | -", "华北电网十个字的母: 2,1,220,0 | -",
                                  "华北电网十个字的母线: 2,1,110,0 | -"}));
    EXPECT_EQ(feedback().texts(2),
              std::vector<std::string>{"无效的节点名，取基准电压值发生错误！"});
    EXPECT_EQ(Slots(Fetch<un>("G1")), "8,1,75,12.5 | -");
    EXPECT_EQ(Slots(Fetch<ln>("L4_ac")), "8,1,-200,-40 | 8,1,200,50 | 8,1,400,90");
}

TEST_F(Labels, DifferencesNeverShowAnExactZero)
{
    // The difference label of slot 0 (Q: 0.25 - 0, its sign that of Pi) of four lines: Z's
    // 0 is not above 0; S is inside the band either way; M is scaled out of the band when
    // named; N is negated first, then banded.
    const std::pair<const char*, float> pi[] = {
        {"Z_ac", 0}, {"S_ac", 5e-10f}, {"M_ac", 5e-09f}, {"N_ac", -5e-09f}};
    for (const auto& [id, p] : pi) {
        Branch<ln>(id, p, 0.25f, 0, 0, LN_INJOB);
    }
    m_rtdb.commit();
    Map({{6, 0, 14}});
    PrepareRTLabelLFRData(db(), &m_rtdb, 0, false, false);
    EXPECT_EQ(ShownOf<ln>(), (std::vector<std::string>{
                                 "M_ac: 8,1,1e-07,0.25 | - | -", "N_ac: 8,1,-1e-07,-0.25 | - | -",
                                 "S_ac: 8,1,1e-07,0.25 | - | -", "Z_ac: 8,1,-1e-07,0.25 | - | -"}));
    PrepareRTLabelLFRData(db(), &m_rtdb, LABEL_MODE_NAMED, false, false);
    EXPECT_EQ(ShownOf<ln>(), (std::vector<std::string>{
                                 "M_ac: 8,1,5e-07,25 | - | -", "N_ac: 8,1,5e-07,-25 | - | -",
                                 "S_ac: 8,1,1e-07,25 | - | -", "Z_ac: 8,1,-1e-07,25 | - | -"}));
    EXPECT_EQ(Fetch<ln>("Z_ac").Slot[0].Value1, -1e-07) << "the double nearest to 1e-07";
}

TEST_F(Labels, ChangedRowsOnlyAndTheResetOfTheMarks)
{
    Branch<ln>("L1_ac", 0.5f, 0.1f, -0.4f, -0.05f, LN_INJOB);
    OneEnded<un>("G1", 0.75f, 0, 0, 0);
    m_rtdb.commit();
    // Changed: the line's J end in slot 1, and the generator in slot 1 (refused before any
    // walk). Unchanged: the line's I end in slot 0. Another configuration: the generator.
    Map({{6, 1, 9, 4, 1}, {1, 1, 0, 4, 1}, {6, 0, 8, 4, 0}, {1, 0, 0, 5, 1}});

    StartStatementLog();
    EXPECT_TRUE(PrepareRTLabelLFRData(db(), &m_rtdb, 0, true, false));
    EXPECT_EQ(Shown(), std::vector<std::string>{"L1_ac: - | 8,1,-0.4,-0.05 | -"});

    EXPECT_TRUE(PrepareRTLabelLFRData(db(), &m_rtdb, 0, false, true));
    EXPECT_EQ(Slots(Fetch<ln>("L1_ac")), "8,1,0.5,0.1 | 8,1,-0.4,-0.05 | -");
    // Only the second run resets the marks, every configuration's.
    const std::string select =
        "SELECT Ele_OrderNo,Label_OrderNo,RT_No,Label_Type FROM RTLABELMAP WHERE LabelsConf_Num=4";
    EXPECT_EQ(SentStatements(), (std::vector<std::string>{select + " AND MChanged = 1", select,
                                                          "UPDATE RTLABELMAP SET MChanged = 0"}));
}

// ---- The refresh under server faults: it reports nothing and always gives true, so what
// stays is the evidence: the labels written or not, and the change marks ----

struct LabelFault
{
    testsupport::Fault fault;
    bool labelled; // the rows of the map reached the records
};

class LabelFaults : public Labels, public ::testing::WithParamInterface<LabelFault>
{};

TEST_P(LabelFaults, TheRefreshKeepsTheLabelsItWroteAndEveryMarkItCouldNotReset)
{
    const LabelFault& f = GetParam();
    Map({{6, 0, 8, 4, 1}, {1, 0, 0, 4, 1}});
    Network();
    m_rtdb.commit();
    {
        testsupport::FaultInjector fault(scratch(), db(), f.fault, "RTLABELMAP",
                                        testsupport::Hold::Rows);
        ASSERT_TRUE(fault.Run([&](QSqlDatabase* connection) {
            EXPECT_TRUE(PrepareRTLabelLFRData(connection, &m_rtdb, 0, false, true));
        }));
    }
    m_rtdb.rollback();
    EXPECT_TRUE(feedback().messages().empty());
    EXPECT_EQ(Show(Fetch<ln>("L1_ac").Slot[0]), f.labelled ? "8,1,0.5,0.1" : "-");
    EXPECT_EQ(Show(Fetch<un>("G1").Slot[0]), f.labelled ? "8,1,0.75,0.125" : "-");
    EXPECT_EQ(Count("RTLABELMAP WHERE MChanged = 1"), 2) << "neither run resets the marks";
}

INSTANTIATE_TEST_SUITE_P(
    Table, LabelFaults,
    ::testing::Values(
        // The map's rows locked: its select (a plain read) passes, the reset of the marks
        // waits and the connection dies there. The labels were written and committed.
        LabelFault{testsupport::Fault::Killed, true},
        // The select refused: nothing is labelled, nor are the marks reset.
        LabelFault{testsupport::Fault::MissingTable, false}),
    [](const auto& info) { return testsupport::FaultName(info.param.fault); });

// Ten thousand lines and transformers of every kind, each kind with a label of its own
// slot: every record shows its own end's power in the slot of its kind and nothing in the
// others, so a selection by kind finds exactly its records at this size. The levels, buses
// and generators have no records here: their rows find nothing.
TEST_F(Labels, AtTenThousandRecordsEachKindLabelsExactlyItsOwn)
{
    constexpr int kRecords = 10000;
    // AC lines at the I end in slot 0, series elements at the J end in slot 1, two-winding
    // transformers at the I end in slot 2, phase shifters at the J end in slot 0, the
    // second windings at their J end (Label_Type 9) in slot 1.
    std::vector<std::string> expected;
    for (int i = 0; i < kRecords; ++i) {
        const float f = float(i);
        const std::string iEnd = Show({8, 1, f, -f}), jEnd = Show({8, 1, 2 * f, 3 * f});
        const int kind = i % 10 == 0 ? 2 : 1;
        const std::string line = "L" + std::to_string(i) + (kind == 1 ? "_ac" : "_sc");
        Branch<ln>(line.c_str(), f, -f, 2 * f, 3 * f, LN_INJOB, 0, kind);
        const std::string byKind[] = {iEnd + " | - | -", "- | " + jEnd + " | -"};
        expected.push_back(line + ": " + byKind[kind - 1]);
        const int type = 1 + i % 3;
        const std::string xfmr = "X" + std::to_string(i / 3) + (type == 3 ? "_3w2" : "_2w");
        Branch<xf>(xfmr.c_str(), f, -f, 2 * f, 3 * f, XF_INJOB, 0, type);
        const std::string byType[] = {"- | - | " + iEnd, jEnd + " | - | -", "- | " + jEnd + " | -"};
        expected.push_back(xfmr + ": " + byType[type - 1]);
    }
    m_rtdb.commit();
    Map({{6, 0, 8}, {8, 1, 9}, {10, 2, 8}, {11, 0, 9}, {12, 1, 9}, {0, 0, 0}, {1, 0, 0}});
    ASSERT_TRUE(PrepareRTLabelLFRData(db(), &m_rtdb, 0, false, false));
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ((ShownOf<ln, xf>()), expected);
}
