// The stability extraction under server faults, on the small network of the stability
// fixture.

#include "Faults.h"
#include "StabilityNetwork.h"
#include "stability/jobdata/STCalDataTransfer.h"

#include <QSqlQuery>

using namespace sttest;
using testsupport::Fault;
using testsupport::FaultInjector;
using testsupport::Hold;

namespace {

const char* const kJobTables[] = {"S2_7", "S3_7", "S4_7", "S5_7", "S6_7", "S7_7"};

// Each message, up to its statement's column list: "Fail to execute SQL: insert into S2_7".
std::vector<std::string> Heads(const std::vector<std::string>& messages)
{
    std::vector<std::string> heads;
    for (const std::string& m : messages) {
        heads.push_back(m.substr(0, m.find('(')));
    }
    return heads;
}

} // namespace

// ---- Extraction, faulted on the generators' job table ----

// A failed family tells of itself and the run goes on; only the counters' update that
// cannot be written makes the run fail.
struct ExtractionFault
{
    Fault fault;
    int result;
    std::vector<std::string> errors; // level 2, in order, each up to its column list
    // Each job table, S2_7 to S7_7, after the run: k its rows as before, e emptied, n the
    // new rows only, a the new rows beside the old ones, p a part of the new rows.
    std::string tables;
};

void PrintTo(const ExtractionFault& f, std::ostream* os)
{
    *os << testsupport::FaultName(f.fault);
}

class ExtractionFaults : public StabilityTest, public ::testing::WithParamInterface<ExtractionFault>
{
protected:
    void SetUp() override
    {
        StabilityTest::SetUp();
        if (HasFatalFailure() || IsSkipped()) {
            return;
        }
        // Generators enough to overfill the smallest table the server keeps in memory.
        Exec("INSERT INTO CDB_GENERATBAK(GrpName, ID_Name, Valid, Node_Name, Gen_Model) SELECT "
             "'G', CONCAT('GX', seq), 1, 'N1', 1 FROM seq_1_to_1000");
        ASSERT_EQ(CSTCalDataTransfer(kJob, kCaseLF, db(), nullptr).ImportSDataFromBaseDB(), 0);
        for (const char* t : kJobTables) {
            m_full.push_back(Count(t));
            Exec(QString("INSERT INTO %1(ID_Name) VALUES ('MARK')").arg(t));
        }
        ASSERT_EQ(m_full[3], 1001);
        feedback().clear();
    }
    std::string Tables() const
    {
        std::string out;
        for (size_t i = 0; i < m_full.size(); ++i) {
            const int n = Count(kJobTables[i]), full = m_full[i];
            const bool marked = Count(QString("%1 WHERE ID_Name='MARK'").arg(kJobTables[i])) > 0;
            if (marked && n == full + 1) {
                out += 'k';
            } else if (marked && n == 2 * full + 1) {
                out += 'a';
            } else if (!marked && n == 0) {
                out += 'e';
            } else if (!marked && n == full) {
                out += 'n';
            } else if (!marked && n < full) {
                out += 'p';
            } else {
                out += "?" + std::to_string(n);
            }
        }
        return out;
    }
    std::vector<int> m_full; // rows of each job table after a whole extraction
};

TEST_P(ExtractionFaults, TheRunReportsLeavesTheBaseTablesAloneAndTheNextRunSucceeds)
{
    const ExtractionFault& f = GetParam();
    const auto before = testsupport::BaseChecksums(checker());
    const std::string counters = Rows("SELECT CONCAT_WS('|', Nbus, Ngenerat, Nload, Nacline, "
                                      "Ndcline, Ntrans, Nsvc) FROM ST_CASE")[0];
    if (f.fault == Fault::Full) {
        Exec("DELETE FROM S5_7"); // what the run does first; a full table takes no more
    }
    {
        FaultInjector fault(scratch(), db(), f.fault, "S5_7", Hold::Rows);
        ASSERT_TRUE(fault.Run([&](QSqlDatabase* connection) {
            CSTCalDataTransfer job(kJob, kCaseLF, connection, nullptr);
            EXPECT_EQ(job.ImportSDataFromBaseDB(), f.result);
        }));
    }
    EXPECT_EQ(Heads(feedback().texts(2)), f.errors);
    EXPECT_EQ(feedback().texts(1).back(),
              f.result == 0 ? "基础库数据抽取完成。" : "基础库数据抽取开始...");
    EXPECT_EQ(Tables(), f.tables);
    if (f.result != 0) {
        EXPECT_EQ(Rows("SELECT CONCAT_WS('|', Nbus, Ngenerat, Nload, Nacline, Ndcline, Ntrans, "
                       "Nsvc) FROM ST_CASE")[0],
                  counters)
            << "the counters the update could not write";
    }
    EXPECT_EQ(testsupport::BaseChecksums(checker()), before) << "a base table changed";

    // The next run, on a fresh connection, fills every job table with the whole extraction.
    QSqlDatabase fresh = testsupport::FreshConnection(scratch());
    feedback().clear();
    CSTCalDataTransfer again(kJob, kCaseLF, &fresh, nullptr);
    EXPECT_EQ(again.ImportSDataFromBaseDB(), 0);
    EXPECT_TRUE(feedback().texts(2).empty()) << ::testing::PrintToString(feedback().texts(2));
    EXPECT_EQ(Tables(), "nnnnnn");
    EXPECT_EQ(Scalar("SELECT Ngenerat FROM ST_CASE"), "1001");
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
        // there. S2_7 to S4_7 were emptied; every statement after fails, the counters too.
        ExtractionFault{Fault::Killed, 1,
                        {"S5_7表可能不存在, 导入计算数据发生错误！", kFill, kFail + "insert into S2_7",
                         kFill, kFill, kFail + "insert into S2_7", kFill, kFill, kFill, kDbError,
                         kDbError, kDbError, kFill, kCounts},
                        "eeekkk"},
        // S5_7 missing: the emptying stops there, so S6_7 and S7_7 get the new rows beside
        // their old ones; only the generators' insert fails. The run succeeds.
        ExtractionFault{Fault::MissingTable, 0, {kMissing, kFail + "INSERT INTO S5_7"}, "nnnkaa"},
        // A user who may only read: no job table and no working table can be written.
        ExtractionFault{Fault::ReadOnly, 1,
                        {"S2_7表可能不存在, 导入计算数据发生错误！", kFill, kFail + "insert into S2_7",
                         kFill, kFill, kFail + "insert into S2_7", kFill, kFill, kFill, kDbError,
                         kDbError, kDbError, kFill, kCounts},
                        "kkkkkk"},
        // S5_7 full: the generators' insert stops with the rows it wrote (the memory engine
        // keeps them); every other family is done.
        ExtractionFault{Fault::Full, 0, {kFail + "INSERT INTO S5_7"}, "nnnpnn"},
        // S5_7's rows locked and a session that waits one second: the emptying and then the
        // generators' insert time out, as with the table missing.
        ExtractionFault{Fault::LockTimeout, 0, {kMissing, kFail + "INSERT INTO S5_7"}, "nnnkaa"}),
    [](const ::testing::TestParamInfo<ExtractionFault>& info) {
        return testsupport::FaultName(info.param.fault);
    });
