// Extraction and save-back under server faults.

#include "Faults.h"
#include "SaveBackRoad.h"
#include "common/SaveBackPattern.h"
#include "loadflow/jobdata/LFCalDataTransfer.h"
#include "platform/CDatabase.h"

#include <gmock/gmock.h>
#include <optional>

using ::testing::ElementsAreArray;
using ::testing::Matcher;
using ::testing::StartsWith;
using namespace testsupport;

namespace {

const char* const kJobTables[] = {"L1_0", "L2_0", "L3_0", "L4_0", "L5_0", "L6_0", "LK_0"};

// The job tables that still hold the marker row (a row of job 7) put in before a run: those
// the run neither emptied nor refilled.
std::vector<std::string> Marked(QSqlDatabase db)
{
    std::vector<std::string> out;
    for (const char* t : kJobTables) {
        QSqlQuery q(db);
        if (q.exec(QString("SELECT COUNT(*) FROM %1 WHERE Case_No=7").arg(t)) && q.next() &&
            q.value(0).toInt() > 0) {
            out.push_back(t);
        }
    }
    return out;
}

} // namespace

// ---- Extraction ----

struct ExtractionFault
{
    Fault fault;                     // on L2_0's rows
    std::vector<std::string> errors; // level-2 messages, in order
    std::vector<std::string> marked; // job tables the run left alone
};

// On the save-back's network, extracted, with a marker row in every job table.
class ExtractionFaults : public SaveBackRoad, public ::testing::WithParamInterface<ExtractionFault>
{
protected:
    void SetUp() override
    {
        SaveBackRoad::SetUp();
        for (const char* t : kJobTables) {
            Exec(QString("INSERT INTO %1 (Case_No) VALUES (7)").arg(t));
        }
    }
};

TEST_P(ExtractionFaults, TheRunReportsWhereItStoppedAndLeavesTheBaseTablesAlone)
{
    const ExtractionFault& f = GetParam();
    const auto before = BaseChecksums(checker());
    {
        FaultInjector fault(scratch(), db(), f.fault, "L2_0", Hold::Rows);
        ASSERT_TRUE(fault.Run([&](QSqlDatabase* connection) {
            CLFCalDataTransfer job(0, kScheme, connection, nullptr);
            EXPECT_EQ(job.ImportLDataFromBaseDB(), 1);
        }));
    }
    EXPECT_EQ(feedback().texts(2), f.errors);
    EXPECT_EQ(Marked(checker()), f.marked);
    EXPECT_EQ(BaseChecksums(checker()), before) << "a base table changed";
}

namespace {
const std::string kFamiliesFail = "数据库操作发生错误！";
const std::string kCaseCounts = "更新潮流作业表元件个数信息发生错误！";
} // namespace

INSTANTIATE_TEST_SUITE_P(
    Table, ExtractionFaults,
    ::testing::Values(
        // Killed while L2_0's rows are locked: the driver's delete of L2_0 waits and the
        // connection dies there. L1_0 was emptied before; nothing after it runs.
        ExtractionFault{Fault::Killed,
                        {"L2_0表可能不存在, 导入计算数据发生错误！", kFamiliesFail, kFamiliesFail,
                         kFamiliesFail, kFamiliesFail, kFamiliesFail, kFamiliesFail,
                         "ImportL1DataFromBaseDB: 无法创建表Tnode！", kCaseCounts, kCaseCounts,
                         kCaseCounts},
                        {"L2_0", "L3_0", "L4_0", "L5_0", "L6_0", "LK_0"}},
        // L2_0 missing (a lock timeout on its rows goes the same way): the delete stops at
        // it (L2_0 .. LK_0 keep their rows, and the families add theirs beside them); the AC
        // family fails; the others run.
        ExtractionFault{
            Fault::MissingTable,
            {"L2_0表可能不存在, 导入计算数据发生错误！", "按计算方案抽取交流线数据发生错误！"},
            {"L2_0", "L3_0", "L4_0", "L5_0", "L6_0", "LK_0"}},
        // A user who may only read: nothing is written anywhere; every family reports.
        ExtractionFault{
            Fault::ReadOnly,
            {"L1_0表可能不存在, 导入计算数据发生错误！", kFamiliesFail, kFamiliesFail,
             kFamiliesFail, kFamiliesFail, kFamiliesFail, kFamiliesFail,
             "ImportL1DataFromBaseDB: 无法执行SQL语句 insert into L1_0(Case_No, EleID, Node_Name, "
             "Bus_Name, Zone_No, PS_Name, Base_kV, Vmax_kV, Vmin_kV, SC1_MVA, SC3_MVA, ISBus) "
             "select 0, a.id, a.Node_Name, a.Bus_Name, b.Zone_No, b.PS_Name, b.Base_kV, "
             "b.Vmax_kV, b.Vmin_kV, b.SC1_MVA, b.SC3_MVA, a.ISPhyBus from CDB_NODEBAK a, "
             "CDB_BUSBAK b, Tnode c where a.Bus_Name=b.Bus_Name and a.Node_Name=c.Node_Name",
             kCaseCounts},
            {"L1_0", "L2_0", "L3_0", "L4_0", "L5_0", "L6_0", "LK_0"}}),
    [](const ::testing::TestParamInfo<ExtractionFault>& info) {
        return testsupport::FaultName(info.param.fault);
    });

// ---- Save-back ----

// A fault of the server's, or of what the caller set up, in a save-back into a new group of
// a job whose lines, shunts and breakers changed: what the run shows and what it leaves.
struct SaveBackFault
{
    const char* name;
    std::optional<Fault> fault; // on the shunts, the second family
    bool allOrNothing;
    std::vector<const char*> setUp, tearDown;
    SaveStatementMode mode;
    std::vector<Matcher<std::string>> messages; // "level text"
    const char* copies;                         // the group's rows of lines / shunts / breakers
    std::vector<int> flags;
};

class SaveBackFaults : public SaveBackRoad, public ::testing::WithParamInterface<SaveBackFault>
{
protected:
    void SetUp() override
    {
        SaveBackRoad::SetUp();
        Exec("UPDATE L2_0 SET R1=R1+0.01 WHERE ID_Name='L1'");
        Exec("UPDATE L2_0 SET X1=X1*2 WHERE Ntype=3"); // the shunt of bus 9
        Exec("UPDATE LK_0 SET Lbreak=0 WHERE ID_Name='K1'");
    }
    static std::string Copies()
    {
        return Scalar("SELECT CONCAT_WS('/', (SELECT COUNT(*) FROM CDB_ACLINEBAK WHERE GrpName="
                      "'NEW'), (SELECT COUNT(*) FROM CDB_PCAPREABAK WHERE GrpName='NEW'), (SELECT "
                      "COUNT(*) FROM CDB_BREAKERBAK WHERE GrpName='NEW'))")
            .toStdString();
    }
};

// Ordinary, the families before the fault stay saved and flagged; all-or-nothing undoes
// them and leaves every base table as it was.
TEST_P(SaveBackFaults, TheRunStopsWhereTheFaultStrikesAndAllOrNothingUndoesEverything)
{
    const SaveBackFault& f = GetParam();
    for (const char* sql : f.setUp) {
        Exec(sql);
    }
    const auto before = BaseChecksums(checker());
    CDatabase base;
    auto run = [&](QSqlDatabase* connection) {
        CLFCalDataTransfer job(0, kScheme, connection, &base);
        job.SetStatementMode(f.mode);
        job.SetAllOrNothing(f.allOrNothing);
        EXPECT_EQ(job.SaveLDataToBaseDB("NEW", true), 1);
    };
    if (f.fault) {
        FaultInjector fault(scratch(), db(), *f.fault, "CDB_PCAPREABAK", Hold::Rows);
        ASSERT_TRUE(fault.Run(run));
    } else {
        run(db());
    }
    EXPECT_THAT(testsupport::Texts(feedback().messages()), ElementsAreArray(f.messages));
    EXPECT_EQ(Copies(), f.copies);
    EXPECT_EQ(base.ModifiedTableTypes(), f.flags);
    if (f.allOrNothing) {
        auto after = BaseChecksums(checker());
        after.erase("LINE_AUDIT"); // a table of the caller's trigger, beyond the run's sight
        EXPECT_EQ(after, before);
        EXPECT_EQ(TablesLeft(db(), kWorkTables), std::vector<std::string>{});
    }
    for (const char* sql : f.tearDown) {
        Exec(sql);
    }
}

namespace {
const std::string kLines = "1 回存交流线数目：1", kShunts = "1 回存并联电容电抗器数目：1";
const auto kAtTPCR = StartsWith("2 Fail to execute SQL: Create temporary Table TPCR");
const auto kAtT2W = StartsWith("2 Fail to execute SQL: insert into T2W(eleid,");
const std::string kUndone = "2 回存失败，已全部撤销，基础库未保存任何修改。";
const SaveStatementMode kMended = SaveStatementMode::Mended;
} // namespace

INSTANTIATE_TEST_SUITE_P(
    Table, SaveBackFaults,
    ::testing::Values(
        // The shunts' rows locked: the family's first statement, whose select reads them
        // with shared locks, waits, and the connection dies there (the server rolls back).
        // An ordinary run stops there as the road's faithful one does at its refusal.
        SaveBackFault{"KilledAllOrNothing", Fault::Killed, true, {}, {}, kMended,
                      {kLines, kAtTPCR, kUndone}, "0/0/0", {}},
        // The group's row refused, after every family: the run ends there at level 3; the
        // families stay saved and flagged, the group unflagged.
        SaveBackFault{"RefusedGroupRow", std::nullopt, false,
                      {"CREATE TRIGGER no_group BEFORE INSERT ON CDB_DATAGROUPBAK FOR EACH ROW "
                       "SIGNAL SQLSTATE '45000' SET MESSAGE_TEXT='no new group'"},
                      {"DROP TRIGGER no_group"}, kMended,
                      {kLines, kShunts, "1 回存开关数目：1", "1 回存变化元件总数：3",
                       "1 回存新增元件总数：0", "3 执行新增数据组 NEW 出错！"},
                      "1/1/1", {102, 103, 112}},
        // A working copy that a rollback cannot undo: refused before its first write.
        SaveBackFault{"NotTransactionalAllOrNothing", std::nullopt, true,
                      {"ALTER TABLE CDB_ACLINEBAK ENGINE=MyISAM"},
                      {"ALTER TABLE CDB_ACLINEBAK ENGINE=InnoDB"}, kMended,
                      {"2 数据表 CDB_ACLINEBAK 不是事务表（须为 InnoDB），不能以全部或全不方式回存"
                       "。",
                       kUndone},
                      "0/0/0", {}},
        // A working copy whose engine the catalogue does not give (a view over a table that
        // cannot roll back): refused before its first write.
        SaveBackFault{"EngineUnknownAllOrNothing", std::nullopt, true,
                      {"RENAME TABLE CDB_BREAKERBAK TO brk_store",
                       "ALTER TABLE brk_store ENGINE=MyISAM",
                       "CREATE VIEW CDB_BREAKERBAK AS SELECT * FROM brk_store"},
                      {"DROP VIEW CDB_BREAKERBAK", "ALTER TABLE brk_store ENGINE=InnoDB",
                       "RENAME TABLE brk_store TO CDB_BREAKERBAK"},
                      kMended,
                      {kLines, kShunts,
                       "2 无法读出数据表 CDB_BREAKERBAK 的存储引擎（视图、未加载的引擎或目录中没有该表），"
                       "不能确认回滚可以撤销对它的修改，不能以全部或全不方式回存。",
                       kUndone},
                      "0/0/0", {}},
        // A trigger that writes a table of that kind is beyond the run's sight: the server's
        // warning after the rollback makes the run say that not everything was undone.
        SaveBackFault{"TriggerBeyondSightAllOrNothing", std::nullopt, true,
                      {"CREATE TABLE line_audit(ID_Name CHAR(20)) ENGINE=MyISAM",
                       "CREATE TRIGGER audit_line AFTER INSERT ON CDB_ACLINEBAK FOR EACH ROW "
                       "INSERT INTO line_audit VALUES (NEW.ID_Name)"},
                      {"DROP TRIGGER audit_line", "DROP TABLE line_audit"},
                      SaveStatementMode::Faithful,
                      {kLines, kShunts, kAtT2W,
                       "2 回存失败，已撤销事务中的修改，但服务器报告有非事务表的修改无法撤销。"},
                      "0/0/0", {}}),
    [](const ::testing::TestParamInfo<SaveBackFault>& info) { return info.param.name; });
