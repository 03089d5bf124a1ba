// The update of a job from the real-time records under server faults, and with record
// names that hold quotes, backslashes and multi-byte text.

#include "Faults.h"
#include "JobTransferTest.h"
#include "RecordAccess.h"
#include "loadflow/realtime/LFCalDataToRTDB.h"
#include "records/NetworkRecords.h"
#include "records/RecordFlags.h"

using namespace dtsdb;
using testsupport::Fault;
using testsupport::FaultInjector;
using testsupport::Hold;
using testsupport::Put;

namespace {

const std::string kGen = "实时数据库数据更新发电机计算数据表发生错误！";
const std::string kDc = "实时数据库数据更新直流线计算数据表发生错误！";
const std::string kXf = "实时数据库数据更新变压器计算数据表发生错误！";
const std::string kLine = "实时数据库数据更新线路计算数据表发生错误！";
const std::string kLoad = "实时数据库数据更新负荷计算数据表发生错误！";
const std::string kSwitch = "实时数据库数据更新开关刀闸计算数据表发生错误！";

} // namespace

// Job 1 in the server, its generators G1 and G2, load D1 and breaker K1 out of service, and
// the records of the same names.
class JobFaults : public JobTransfer
{
protected:
    void SetUp() override
    {
        JobTransfer::SetUp();
        Put<un>("G1");
        Put<un>("G2");
        Put<ld>("D1");
        Put<cb>("K1_brk");
        m_rtdb.commit();
        Exec("INSERT INTO L5_1 (ID_Name, Valid, Pg) VALUES ('G1', 0, 0.25), ('G2', 0, 0.5)");
        Exec("INSERT INTO L6_1 (ID_Name, Valid, Pl) VALUES ('D1', 0, 0.75)");
        Exec("INSERT INTO LK_1 (ID_Name, Valid, Lbreak, Ntype) VALUES ('K1', 0, 1, 1)");
        feedback().clear();
        boxes().clear();
    }
};

struct UpdateFault
{
    Fault fault;
    int result;
    std::vector<std::string> boxes; // the warnings, in order
    std::string states;             // Valid of K1, D1, G1, G2 after the run
};

void PrintTo(const UpdateFault& f, std::ostream* os)
{
    *os << testsupport::FaultName(f.fault);
}

class UpdateFaults : public JobFaults, public ::testing::WithParamInterface<UpdateFault>
{
protected:
    static std::string States()
    {
        return Scalar("SELECT Valid FROM LK_1").toStdString() +
               Scalar("SELECT Valid FROM L6_1").toStdString() +
               Scalar("SELECT GROUP_CONCAT(Valid ORDER BY ID_Name SEPARATOR '') FROM L5_1")
                   .toStdString();
    }
};

TEST_P(UpdateFaults, TheFaultedFamilyWarnsTheOthersRunAndTheNextRunSucceeds)
{
    const UpdateFault& f = GetParam();
    {
        FaultInjector fault(scratch(), db(), f.fault, "L5_1", Hold::Rows);
        fault.SetFiller("INSERT INTO L5_1 (ID_Name) SELECT seq FROM seq_1_to_100000",
                        "DELETE FROM L5_1 WHERE ID_Name NOT LIKE 'G%'");
        ASSERT_TRUE(fault.Run([&](QSqlDatabase* connection) {
            CLFCalDataToRTDB job(1, connection);
            EXPECT_EQ(job.UpdateLDataFromRTDB(), f.result);
        }));
    }
    std::vector<std::string> shown;
    for (const auto& b : boxes().boxes()) {
        shown.push_back(b.text.toStdString());
    }
    EXPECT_EQ(shown, f.boxes);
    EXPECT_TRUE(feedback().messages().empty()) << "this update warns through boxes only";
    EXPECT_EQ(States(), f.states);

    QSqlDatabase fresh = testsupport::FreshConnection(scratch());
    boxes().clear();
    CLFCalDataToRTDB again(1, &fresh);
    EXPECT_EQ(again.UpdateLDataFromRTDB(), 0);
    EXPECT_TRUE(boxes().boxes().empty());
    EXPECT_EQ(States(), "1111");
    fresh.close();
}

INSTANTIATE_TEST_SUITE_P(
    Table, UpdateFaults,
    ::testing::Values(
        // The generators' rows locked: their blanket statement waits and the connection dies
        // there. Switches and loads went before; every family after it finds no server.
        UpdateFault{Fault::Killed, 1, {kGen, kDc, kXf, kLine}, "1100"},
        UpdateFault{Fault::MissingTable, 1, {kGen}, "1100"},
        UpdateFault{Fault::ReadOnly, 1, {kSwitch, kLoad, kGen, kDc, kXf, kLine}, "0000"},
        // A full MEMORY table still takes updates: its rows keep their size. No failure.
        UpdateFault{Fault::Full, 0, {}, "1111"},
        UpdateFault{Fault::LockTimeout, 1, {kGen}, "1100"}),
    [](const ::testing::TestParamInfo<UpdateFault>& info) {
        return testsupport::FaultName(info.param.fault);
    });

// Names from the records: each updates its own job row and no other.
class UpdateNames : public JobTransfer
{};

TEST_F(UpdateNames, EachRecordUpdatesTheRowOfItsOwnNameOnly)
{
    const std::string twenty = "机组甲乙丙丁A\\"; // 6 x 3 bytes, a letter and a backslash
    ASSERT_EQ(twenty.size(), 20u);
    const char* names[] = {"x' OR '1'='1", "a\\b", "G\\", "\\'", twenty.c_str()};
    for (const char* n : names) {
        un g;
        g.id = n;
        g.Pg = 0.5f;
        testsupport::Put(g);
        const QString literal = QString::fromUtf8(n).replace("\\", "\\\\").replace("'", "''");
        Exec("INSERT INTO L5_1 (ID_Name, Valid, Pg) VALUES ('" + literal + "', 0, 0)");
    }
    // Rows no record names: they stay out of service at their old values.
    Exec("INSERT INTO L5_1 (ID_Name, Valid, Pg) VALUES ('x', 1, 7), ('a\\\\', 1, 7), ('G', 1, 7)");
    m_rtdb.commit();
    CLFCalDataToRTDB job(1, db());
    EXPECT_EQ(job.UpdateL5DataFromRTDB(), 0);
    EXPECT_TRUE(boxes().boxes().empty());
    EXPECT_EQ(Rows("SELECT ID_Name, Valid, Pg FROM L5_1 ORDER BY ID_Name"),
              (std::vector<std::string>{"G|0|7", "G\\|1|0.5", "\\'|1|0.5", "a\\|0|7", "a\\b|1|0.5",
                                        "x|0|7", "x' OR '1'='1|1|0.5", twenty + "|1|0.5"}));

    // A name cut inside a character cannot be sent: the family warns and stops there,
    // and no row of another name is touched.
    const std::string cut = std::string("机组甲乙丙丁戊己").substr(0, 20);
    un bad;
    bad.id = cut.c_str();
    bad.Pg = 0.25f;
    testsupport::Put(bad);
    m_rtdb.commit();
    Exec("UPDATE L5_1 SET Pg=0");
    EXPECT_EQ(job.UpdateL5DataFromRTDB(), 1);
    ASSERT_EQ(boxes().boxes().size(), 1u);
    EXPECT_EQ(boxes().boxes()[0].text.toStdString(), kGen);
    EXPECT_EQ(Count("L5_1 WHERE Pg=0.25"), 0) << "no row took the cut name's values";
    EXPECT_EQ(Count("L5_1 WHERE ID_Name LIKE '机组甲乙丙丁戊%'"), 0);
}

// ---- The import of a job into the records under server faults on the generators' table ----

struct ImportFault
{
    Fault fault;
    Hold hold;
    std::vector<std::string> errors; // level 2, in order
    bool generators;                 // the generators' rows reached their records
};

void PrintTo(const ImportFault& f, std::ostream* os)
{
    *os << testsupport::FaultName(f.fault);
}

class ImportFaults : public JobFaults, public ::testing::WithParamInterface<ImportFault>
{};

TEST_P(ImportFaults, TheFaultedFamilyReportsTheOthersLoadAndTheNextRunLoadsAll)
{
    const ImportFault& f = GetParam();
    {
        FaultInjector fault(scratch(), db(), f.fault, "L5_1", f.hold);
        ASSERT_TRUE(fault.Run([&](QSqlDatabase* connection) {
            CLFCalDataToRTDB job(1, connection);
            EXPECT_EQ(job.ImportLDataToRTDB(), f.errors.empty() ? 0 : 1);
        }));
    }
    EXPECT_EQ(feedback().texts(2), f.errors);
    EXPECT_FLOAT_EQ(testsupport::Fetch<ld>("D1").Pl, 0.75f) << "the loads went before";
    EXPECT_FLOAT_EQ(testsupport::Fetch<un>("G1").Pg, f.generators ? 0.25f : 0.0f);

    m_rtdb.rollback();
    QSqlDatabase fresh = testsupport::FreshConnection(scratch());
    feedback().clear();
    CLFCalDataToRTDB again(1, &fresh);
    EXPECT_EQ(again.ImportLDataToRTDB(), 0);
    EXPECT_TRUE(feedback().texts(2).empty()) << ::testing::PrintToString(feedback().texts(2));
    EXPECT_FLOAT_EQ(testsupport::Fetch<un>("G2").Pg, 0.5f);
    fresh.close();
}

INSTANTIATE_TEST_SUITE_P(
    Table, ImportFaults,
    ::testing::Values(
        // The generators' table locked whole: its select waits and the connection dies
        // there; every family after it finds no server.
        ImportFault{
            Fault::Killed,
            Hold::Table,
            {"发电机计算数据导入实时数据库发生错误！", "直流线计算数据导入实时数据库发生错误！",
             "变压器计算数据导入实时数据库发生错误！", "交流线计算数据导入实时数据库发生错误！",
             "节点计算数据导入实时数据库发生错误！"},
            false},
        ImportFault{
            Fault::MissingTable, Hold::Rows, {"发电机计算数据导入实时数据库发生错误！"}, false},
        // Reading is all this import does: a user who may only read loads everything.
        ImportFault{Fault::ReadOnly, Hold::Rows, {}, true},
        // A table moved to the MEMORY engine at its smallest size reads as any other.
        ImportFault{Fault::Full, Hold::Rows, {}, true},
        ImportFault{
            Fault::LockTimeout, Hold::Table, {"发电机计算数据导入实时数据库发生错误！"}, false}),
    [](const ::testing::TestParamInfo<ImportFault>& info) {
        return testsupport::FaultName(info.param.fault);
    });
