// Lookups in the real-time database, and the real-time ids and table type numbers.

#include "RtdbTest.h"
#include "common/Conversions.h"
#include "common/RealtimeLookups.h"
#include "common/TableTypes.h"

#include <QStringList>

using namespace dtsdb;
using testsupport::RtdbTest;

// Node N1 sits on calculation bus 3 ("B1") of level "220kV"; node N2 names a bus number with
// no bs record; node N3's level has no kv record.
TEST_F(RtdbTest, LookupsFindTheNodesBusAndLevelAndSayWhichStepFoundNothing)
{
    nd n;
    n.id = "N1", n.ibs = 3;
    Insert(n);
    n.id = "N2", n.ibs = 7;
    Insert(n);
    bs b;
    b.id = 3, b.name = "B1", b.V = 1.02, b.Angle = -4.5;
    Insert(b);
    bus p;
    p.id = "BUS-1", p.ibs = 3, p.nd = "N1";
    Insert(p);
    kv k;
    k.id = "220kV", k.Base_kV = 230.0f;
    Insert(k);
    r_kv_nd r;
    r.kv_id = "220kV", r.nd_id = "N1";
    Insert(r);
    r.kv_id = "66kV", r.nd_id = "N3";
    Insert(r);
    rtdb().commit();
    auto& fb = testsupport::FeedbackRecorder::instance();

    // A found node's voltage and angle, and a level found by node name, are checked with
    // the results and the labels.
    EXPECT_EQ(GetNodeBsNo_FromRTDB("N1"), 3);
    EXPECT_EQ(GetNodeBsNo_FromRTDB("nobody"), 0);
    EXPECT_DOUBLE_EQ(GetNodeVol_FromRTDB("N2"), 0.0) << "no bs record 7";
    EXPECT_DOUBLE_EQ(GetNodeAngle_FromRTDB("nobody"), 0.0);
    EXPECT_STREQ(GetBsName_FromRTDB("N2"), "");
    EXPECT_STREQ(GetBusName_FromRTDB(3), "BUS-1");
    EXPECT_STREQ(GetBusName_FromRTDB(4), "");
    // The name handed out is the database's text: good while the record stands.
    const char* name = GetBsName_FromRTDB("N1");
    rtdb().commit();
    EXPECT_STREQ(name, "B1");

    // Every message of the test, in order: the lookups above say nothing.
    EXPECT_DOUBLE_EQ(GetBasekV_FromRTDB("220kV", true), 230.0);
    EXPECT_DOUBLE_EQ(GetBasekV_FromRTDB("500kV", true), 1.0);
    EXPECT_DOUBLE_EQ(GetBasekV_FromRTDB("N3", false), 1.0);
    EXPECT_EQ(fb.texts(2), (std::vector<std::string>{
                               "无效的母线名，取基准电压值发生错误！",
                               "节点'N3'对应的母线在实时库中不存在，取基准电压值发生错误！",
                           }));
    EXPECT_EQ(fb.messages().size(), 2u);
    EXPECT_TRUE(errors().empty());
}

TEST(RealtimeIds, SuffixesByFamilyAndTableTypesByName)
{
    const std::pair<int, int> ids[] = {{6, 0}, {8, 0}, {10, 5}, {11, 0}, {12, 31}, {12, 33},
                                       {12, 34}, {12, 0}, {13, 0}, {14, 0}, {4, 0}, {7, 0}};
    QStringList got;
    for (const auto& [type, sub] : ids) {
        got << GetNameInRealDB("X", type, sub);
    }
    // A winding number out of range gives the name alone, as a shunt and a DC line have it.
    EXPECT_EQ(got, QStringList({"X_ac", "X_sc", "X_2w", "X_sf", "X_3w1", "X_3w3", "X", "X",
                                "X_brk", "X_sw", "X", "X"}));
    // Compared case-sensitively; the data-group table is passed to the flag, never looked up.
    const std::pair<const char*, int> types[] = {
        {"CDB_ACLINE", 102},  {"CDB_ACLINEBAK", 102}, {"CDB_NODEBAK", CDB_TYPE_NODE},
        {"CDB_ISOSWITCH", 120}, {"CDB_PSTATIONBAK", 117}, {"cdb_acline", -1}, {"CDB_ACLINEbak", -1},
        {"CDB_ACLINEBAKBAK", -1}, {"CDB_DATAGROUP", -1}, {"CDB_AC", -1}, {"", -1}};
    for (const auto& [name, type] : types) {
        EXPECT_EQ(TableNameToType(name), type) << name;
    }
}
