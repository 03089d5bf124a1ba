// The set-up of a stability case under server faults on its fault table.

#include "CaseSetTest.h"
#include "Faults.h"
#include "RecordAccess.h"

using namespace dtsdb;
using namespace casetest;
using testsupport::Fault;
using testsupport::FaultInjector;
using testsupport::Hold;

namespace {

const char* const kFaults =
    "INSERT INTO ST_FAULT (Case_No,Valid,ID_Name,I_Name,J_Name,ID_No,Locate,Name,A,B,C,Ground,"
    "`Short`,`Open`,T_Start,T_End,R_Fault,X_Fault) VALUES "
    "(3,1,'L2','N2','N3',1,0,'',1,1,1,2,0,0,0.1,0.2,0,0),"
    "(3,1,'L3','N2','N4',1,0,'',0,1,0,0,1,1,0,0,0,0)";

} // namespace

struct CaseFault
{
    Fault fault;
    Hold hold;
    std::string firstError; // the first level-2 message
    int faults;             // fault records after the run
};

void PrintTo(const CaseFault& f, std::ostream* os)
{
    *os << testsupport::FaultName(f.fault);
}

class CaseFaults : public CaseSetTest, public ::testing::WithParamInterface<CaseFault>
{};

TEST_P(CaseFaults, TheFaultedStepReportsTheRunFailsAndTheNextRunLoadsTheCase)
{
    const CaseFault& f = GetParam();
    CaseRow("Ctrl_Fault=1,T_Total=5");
    Exec(kFaults);
    Exec("INSERT INTO ST_OUT (Case_No) VALUES (3)");
    {
        FaultInjector fault(scratch(), db(), f.fault, "ST_FAULT", f.hold);
        fault.SetFiller("INSERT INTO ST_FAULT (Case_No) SELECT 99 FROM seq_1_to_100000",
                        "DELETE FROM ST_FAULT WHERE Case_No=99");
        ASSERT_TRUE(fault.Run([&](QSqlDatabase* connection) {
            CSTCaseDataTransfer transfer(kCase, connection, &rtdb());
            EXPECT_EQ(transfer.ImportSTCaseDataToRTDB(), f.firstError.empty() ? 0 : 1);
        }));
    }
    const auto errors = feedback().texts(2);
    if (f.firstError.empty()) {
        EXPECT_TRUE(errors.empty()) << ::testing::PrintToString(errors);
    } else {
        ASSERT_FALSE(errors.empty());
        EXPECT_EQ(errors[0], f.firstError) << ::testing::PrintToString(errors);
    }
    EXPECT_EQ(Records<stfault>(), f.faults);

    QSqlDatabase fresh = testsupport::FreshConnection(scratch());
    feedback().clear();
    CSTCaseDataTransfer again(kCase, &fresh, &rtdb());
    EXPECT_EQ(again.ImportSTCaseDataToRTDB(), 0);
    EXPECT_TRUE(feedback().texts(2).empty()) << ::testing::PrintToString(feedback().texts(2));
    EXPECT_EQ(Records<stfault>(), 2);
    EXPECT_EQ(Records<case_st>(), 1);
    fresh.close();
}

INSTANTIATE_TEST_SUITE_P(
    Table, CaseFaults,
    ::testing::Values(
        // The whole fault table locked: its select waits and the connection dies there.
        CaseFault{Fault::Killed, Hold::Table, "查询暂稳故障信息表发生错误！", 0},
        CaseFault{Fault::MissingTable, Hold::Rows, "查询暂稳故障信息表发生错误！", 0},
        // Read only: every select runs; the counts' update of the case row is refused.
        CaseFault{Fault::ReadOnly, Hold::Rows, "更新暂稳作业信息发生错误！", 2},
        // A full table is read like any other: this set-up writes nothing into it.
        CaseFault{Fault::Full, Hold::Rows, "", 2},
        CaseFault{Fault::LockTimeout, Hold::Table, "查询暂稳故障信息表发生错误！", 0}),
    [](const ::testing::TestParamInfo<CaseFault>& info) {
        return testsupport::FaultName(info.param.fault);
    });
