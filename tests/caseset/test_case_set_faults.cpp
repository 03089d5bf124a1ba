// Every way the set-up of a stability case can fail, as one table: the fault, the level-2
// messages in order, the records after the run; then the next run loads the whole case.

#include "CaseSetTest.h"
#include "Faults.h"
#include "RecordAccess.h"

#include <optional>

using namespace dtsdb;
using namespace casetest;
using testsupport::Fault;
using testsupport::FaultInjector;
using testsupport::Hold;

namespace {

const std::string kFlag = "查询暂稳输出信息发生错误！";
const std::string kAna = "查询暂稳自动分析调用信息发生错误！";
const std::string kT6 = "查询暂稳扰动dist_t6信息发生错误！";
const std::string kFaultQuery = "查询暂稳故障信息表发生错误！";
const std::string kCaseQuery = "查询暂稳作业信息发生错误！";
const std::string kCountUpdate = "更新暂稳作业信息发生错误！";
// What the whole case gives (Records()); OLD and AnaFunc 9 are the criteria and output
// records that stood before.
const std::string kLoaded = "crit L1|fault 2|dist 1|out 2|var 1|gi 1|grp 1|case 2/2";

} // namespace

struct SetUpFault
{
    const char* name;
    std::optional<Fault> fault; // a server fault on `table`, else `setup` and `undo`
    const char* table;
    std::vector<std::string> errors;
    std::string records;
    const char* setup = "";
    const char* undo = "";
};

class SetUpFaults : public CaseSetTest, public ::testing::WithParamInterface<SetUpFault>
{};

TEST_P(SetUpFaults, TheFailedStepReportsTheOthersLoadAndTheNextRunLoadsTheWholeCase)
{
    const SetUpFault& f = GetParam();
    // Faults, disturbances (a two-point curve and a load row whose range covers no load),
    // user models, outputs and the analysis all on.
    CaseRow("Ctrl_Fault=1,CTRL_UD=1,CTRL_DIST=1,T_Total=5");
    Exec("INSERT INTO ST_CRIT (Case_No,ID_Name1) VALUES (3,'L1')");
    Exec("INSERT INTO ST_FAULT (Case_No,Valid,ID_Name,I_Name,J_Name) VALUES (3,1,'L2','N2','N3'),"
         "(3,1,'L3','N2','N4')");
    Exec("INSERT INTO ST_UDCAL (Case_No,Valid,Model_No) VALUES (3,1,1)");
    Exec("INSERT INTO ST_DIST_INF (Case_No,Type,Bus_Name,ID_No,Valid) VALUES (3,2,'N7',0,1),"
         "(3,6,'N9',5,1)");
    Exec("INSERT INTO ST_DIST_T2 (Case_No,ID_Name,Bus_Name,T_X,V_Y) VALUES (3,'V','N7',0,1),"
         "(3,'V','N7',1,0.5)");
    Exec("INSERT INTO ST_DIST_T6 (Case_No,Nrange,Sub_Type,ID_Name,Load_Name) VALUES "
         "(3,5,1,'S5','N9')");
    Exec("INSERT INTO ST_OUT (Case_No,AnaFunc,Variable) VALUES (3,2,1)");
    Exec("INSERT INTO ST_VAR_INF (Case_No,Type,Var_ID,ID_name) VALUES (3,2,1,'N3')");
    Exec("INSERT INTO ST_ANACAL (Case_No,Valid,Grp_NO) VALUES (3,1,1)");
    Exec("INSERT INTO ST_ANA_GRP (Grp_NO,Bus_Name) VALUES (1,'B5')");
    stcrit oldCrit;
    oldCrit.ID_Name1 = "OLD";
    st_out oldOut;
    oldOut.AnaFunc = 9;
    testsupport::Put(oldCrit);
    testsupport::Put(oldOut);
    rtdb().commit();

    auto load = [&](QSqlDatabase* connection) {
        CSTCaseDataTransfer transfer(kCase, connection, &rtdb());
        EXPECT_EQ(transfer.ImportSTCaseDataToRTDB(), 1);
    };
    if (f.fault) {
        FaultInjector fault(scratch(), db(), *f.fault, f.table, Hold::Table);
        ASSERT_TRUE(fault.Run(load));
    } else {
        Exec(f.setup);
        load(db());
        Exec(f.undo);
    }
    EXPECT_EQ(feedback().texts(2), f.errors);
    EXPECT_EQ(Records(), f.records);

    QSqlDatabase fresh = testsupport::FreshConnection(scratch());
    feedback().clear();
    CSTCaseDataTransfer again(kCase, &fresh, &rtdb());
    EXPECT_EQ(again.ImportSTCaseDataToRTDB(), 0);
    EXPECT_EQ(feedback().texts(2), std::vector<std::string>{});
    EXPECT_EQ(Records(), kLoaded);
    fresh.close();
}

INSTANTIATE_TEST_SUITE_P(
    Table, SetUpFaults,
    ::testing::Values(
        // A refused select of a family's own table fails that family alone; the criteria
        // and the output settings keep the records that stood.
        SetUpFault{"Criteria", Fault::MissingTable, "ST_CRIT", {"查询暂稳失稳判据信息发生错误！"},
                   "crit OLD|fault 2|dist 1|out 2|var 1|gi 1|grp 1|case 2/2"},
        SetUpFault{"Faults", Fault::MissingTable, "ST_FAULT", {kFaultQuery},
                   "crit L1|fault 0|dist 1|out 2|var 1|gi 1|grp 1|case 0/2"},
        SetUpFault{"UserModels", Fault::MissingTable, "ST_UDCAL", {"查询暂稳UD信息表发生错误！"},
                   kLoaded},
        // As designed the user programs' select has no FROM.
        SetUpFault{"UserPrograms", std::nullopt, "", {"查询暂稳UP信息表发生错误！"}, kLoaded,
                   "UPDATE ST_CASE SET UP_CAL=1", "UPDATE ST_CASE SET UP_CAL=0"},
        SetUpFault{"Disturbances", Fault::MissingTable, "ST_DIST_INF", {"查询暂稳扰动信息发生错误！"},
                   "crit L1|fault 2|dist 0|out 2|var 1|gi 1|grp 1|case 2/0"},
        SetUpFault{"LoadDisturbances", Fault::MissingTable, "ST_DIST_T6", {kT6}, kLoaded},
        // A view in DT6's place: the create is refused, and the dump of the range that
        // covers no load reads the view in vain.
        SetUpFault{"WorkingTable", std::nullopt, "", {"创建临时表发生错误，导入dist_t6信息失败！", kT6},
                   kLoaded, "CREATE VIEW DT6 AS SELECT 1 AS Nrange", "DROP VIEW DT6"},
        SetUpFault{"Outputs", Fault::MissingTable, "ST_OUT", {kFlag, kFlag, kFlag, kFlag},
                   "crit L1|fault 2|dist 1|out 9|var 0|gi 0|grp 0|case 2/2"},
        SetUpFault{"Variables", Fault::MissingTable, "ST_VAR_INF", {"查询暂稳输出变量信息发生错误！"},
                   "crit L1|fault 2|dist 1|out 2|var 0|gi 1|grp 1|case 2/2"},
        SetUpFault{"Analysis", Fault::MissingTable, "ST_ANACAL", {kAna, kAna},
                   "crit L1|fault 2|dist 1|out 2|var 1|gi 0|grp 0|case 2/2"},
        SetUpFault{"AnalysisGroups", Fault::MissingTable, "ST_ANA_GRP", {kAna},
                   "crit L1|fault 2|dist 1|out 2|var 1|gi 1|grp 0|case 2/2"},
        // Only the counts refused: the driver fails although every family loaded.
        SetUpFault{"Counts", std::nullopt, "", {kCountUpdate},
                   "crit L1|fault 2|dist 1|out 2|var 1|gi 1|grp 1|case 0/0",
                   "CREATE TRIGGER no_counts BEFORE UPDATE ON ST_CASE FOR EACH ROW SIGNAL "
                   "SQLSTATE '45000' SET MESSAGE_TEXT='no counts'",
                   "DROP TRIGGER no_counts"},
        // Without the case table even the object's query fails: every switch is refused,
        // the counts cannot be written and the case record cannot be read.
        SetUpFault{"CaseTable", Fault::MissingTable, "ST_CASE",
                   {"查询暂稳基于的潮流作业发生错误！", kFlag, kFlag, kCaseQuery, kFlag,
                    kCountUpdate, kCaseQuery, "ImportCase_STDataToRTDB"},
                   "crit L1|fault 0|dist 0|out 2|var 1|gi 1|grp 1|case -"}),
    [](const ::testing::TestParamInfo<SetUpFault>& info) { return info.param.name; });
