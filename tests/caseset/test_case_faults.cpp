// The stability case, its criteria and faults, the user models, and the run state back.

#include "CaseSetTest.h"
#include "RecordAccess.h"

using namespace dtsdb;
using namespace casetest;

namespace {

const char* const kFaultColumns = "Case_No,Valid,ID_Name,I_Name,J_Name,ID_No,Locate,Name,A,B,C,"
                                  "Ground,`Short`,`Open`,T_Start,T_End,R_Fault,X_Fault";

std::string FaultText(const stfault& f)
{
    return std::string(f.ID_Name) + "|" + f.I_Name + "|" + f.J_Name + "|" + std::to_string(f.I_No) +
           "|" + std::to_string(f.J_No) + "|" + f.Name + "|" + std::to_string(f.Name_No) + "|v" +
           std::to_string(f.Valid) + "|g" + std::to_string(f.Ground) + "s" +
           std::to_string(f.Short);
}

} // namespace

class CaseAndFaults : public CaseSetTest
{};

TEST_F(CaseAndFaults, CaseCriteriaAndFaultsStandCommittedAndASecondLoadDoublesTheCounts)
{
    CaseRow("ST_SC=2,T_Total=5.5,DT_Step=0.01,F60=1,EQ_Method=2,EQ_Continu=3,Ctrl_Fault=1,"
            "Calculate=7,UDOUT=4,CAL_DATE='2024-05-01',CAL_TIME='12:00:00',UD_TIME=0,Nup=11,"
            "Nbus=12,Ngenerat=13,Nload=14,Nacline=15,Ndcline=16,Ntrans=17,Nsvc=18,Nfault=99,"
            "Ndist=98,Istable=1,Tstable=1.9,Note=CONCAT('x',REPEAT('注',60))");
    Exec("INSERT INTO ST_OUT (Case_No) VALUES (3)");
    Exec("INSERT INTO ST_CRIT (Case_No,Valid,Lstop,MaxDAng,MinVol,TDVol,MinFreq,TDFreq,NanaGrp,"
         "TSDAng,ID_Name1,ID_Name2,Gen_Name1,Gen_Name2,TSProny,TEProny,NDTProny) VALUES "
         "(3,1,2,180,0.7,0.5,49,1.5,4,2.5,'L1','L2','G1','十一个字的发电机名称乙',1,5,30),"
         "(3,0,0,0,0,0,0,0,0,0,'X','X','X','X',0,0,0)");
    const int f1 = lastBus() + 1, f2 = lastBus() + 2;
    Exec(QString("INSERT INTO ST_FAULT (%1) VALUES "
                 "(3,0,'L1','N1','N2',1,0,'',1,0,0,1,0,0,0.1,0.2,0.01,0.02),"
                 "(3,1,'L2','N2','N3',1,50,'F1',1,1,1,2,0,0,0.1,0.2,0,0),"
                 "(3,1,'L3','N2','N4',1,30,'F1',0,1,0,0,1,1,0,0,0,0),"
                 "(3,1,'L4','NX','N5',2,1,'',0,0,0,0,0,0,0,0,0,0),"
                 "(3,1,'L5','N4','N5',1,99,'',0,0,0,0,0,0,0,0,0,0),"
                 "(3,1,'L6','N4','N5',1,100,'',0,0,0,0,0,0,0,0,0,0),"
                 "(3,1,'L7','N6','N11',1,0,'F2',0,0,0,0,0,0,0,0,0,0),"
                 "(3,1,'L8','N1','N3',1,-5,'B3',0,0,0,0,0,0,0,0,0,0),"
                 "(4,1,'OTHER','N1','N2',1,50,'F9',0,0,0,0,0,0,0,0,0,0)")
             .arg(kFaultColumns));

    CSTCaseDataTransfer transfer(kCase, db(), &rtdb());
    EXPECT_EQ(transfer.ImportSTCaseDataToRTDB(), 0);
    EXPECT_EQ(feedback().texts(2),
              (std::vector<std::string>{"故障表ST_FAULT中ID_Name=L4的支路的故障新增母线名为空！",
                                        "故障表ST_FAULT中ID_Name=L5的支路的故障新增母线名为空！"}));

    // Every row counts and stands; a fault inside its branch or a named bus adds the bus
    // once, numbered above the network's buses; an existing bus name is found.
    const int n1 = BusOf("N1"), n2 = BusOf("N2"), n3 = BusOf("N3"), n4 = BusOf("N4"),
              n5 = BusOf("N5"), n6 = BusOf("N6"), n11 = BusOf("N11");
    auto b = [](int n) { return std::to_string(n); };
    std::vector<std::string> faults;
    for (const stfault& f : All<stfault>()) {
        faults.push_back(FaultText(f));
    }
    EXPECT_EQ(faults, (std::vector<std::string>{
                          "L1|N1|N2|" + b(n1) + "|" + b(n2) + "||-1|v0|g1s1",
                          "L2|N2|N3|" + b(n2) + "|" + b(n3) + "|F1|" + b(f1) + "|v1|g2s0",
                          "L3|N2|N4|" + b(n2) + "|" + b(n4) + "|F1|" + b(f1) + "|v1|g0s1",
                          "L4|NX|N5|-1|" + b(n5) + "||-1|v1|g0s0",
                          "L5|N4|N5|" + b(n4) + "|" + b(n5) + "||-1|v1|g0s0",
                          "L6|N4|N5|" + b(n4) + "|" + b(n5) + "||-1|v1|g0s0",
                          "L7|N6|N11|" + b(n6) + "|" + b(n11) + "|F2|" + b(f2) + "|v1|g0s0",
                          "L8|N1|N3|" + b(n1) + "|" + b(n3) + "|B3|" + b(n3) + "|v1|g0s0",
                      }));
    const stfault l2 = All<stfault>()[1];
    EXPECT_EQ(l2.Locate, 50);
    EXPECT_EQ(l2.A + l2.B + l2.C, 3);
    EXPECT_FLOAT_EQ(l2.T_End, 0.2f);
    EXPECT_FLOAT_EQ(All<stfault>()[0].X_Fault, 0.02f);
    EXPECT_EQ(BusesFrom(f1), (std::vector<std::string>{b(f1) + ":F1", b(f2) + ":F2"}));

    // The counts reach ST_CASE, then the case record, which is filled last.
    EXPECT_EQ(Rows("SELECT Nfault, Ndist FROM ST_CASE WHERE Case_No=3"),
              (std::vector<std::string>{"8|0"}));
    ASSERT_EQ(Records<case_st>(), 1);
    const case_st c = All<case_st>()[0];
    EXPECT_EQ(c.case_no, 3);
    EXPECT_EQ(c.Case_LF, kCaseLF);
    EXPECT_EQ(c.ST_SC, 2);
    EXPECT_FLOAT_EQ(c.T_Total, 5.5f);
    EXPECT_EQ(c.EQ_Continu, 3);
    EXPECT_EQ(c.Calculate, -1.0f) << "not the table's 7";
    EXPECT_EQ(c.UDOUT, 4);
    EXPECT_STREQ(c.CAL_TIME, "12:00:00");
    EXPECT_EQ(c.Nup, 11);
    EXPECT_EQ(c.Nbus, 12);
    EXPECT_EQ(c.Nacline, 15);
    EXPECT_EQ(c.Ntrans, 17);
    EXPECT_EQ(c.Ngenerat, 13);
    EXPECT_EQ(c.Nload, 14);
    EXPECT_EQ(c.Ndcline, 16);
    EXPECT_EQ(c.Nsvc, 18);
    EXPECT_EQ(c.Nreserved, 0);
    EXPECT_EQ(c.Nfault, 8);
    EXPECT_EQ(c.Istable, 1);
    EXPECT_EQ(c.Tstable, 1.0f) << "1.9 cut, not rounded";
    EXPECT_EQ(c.Tolerance, 0.0005f);
    // 100 and 20 bytes as the design counted them: a Chinese character 2, never cut in half.
    EXPECT_EQ(QString(c.Note), "x" + QString("注").repeated(49));

    ASSERT_EQ(Records<stcrit>(), 1) << "the first row only";
    const stcrit k = All<stcrit>()[0];
    EXPECT_EQ(k.Lstop, 2);
    EXPECT_FLOAT_EQ(k.MinVol, 0.7f);
    EXPECT_EQ(k.NanaGrp, 4);
    EXPECT_EQ(QString(k.Gen_Name2), "十一个字的发电机名称");
    EXPECT_EQ(k.NDTProny, 30);

    // Everything above was committed: a rollback keeps it.
    rtdb().rollback();
    EXPECT_EQ(Records<stfault>(), 8);
    EXPECT_EQ(Records<case_st>(), 1);
    EXPECT_EQ(Records<stcrit>(), 1);
    EXPECT_EQ(BusesFrom(f1).size(), 2u);

    // A second load on the same object: the records stand once, the buses are found by
    // name, the counts add up.
    feedback().clear();
    EXPECT_EQ(transfer.ImportSTCaseDataToRTDB(), 0);
    EXPECT_EQ(Records<stfault>(), 8);
    EXPECT_EQ(BusesFrom(f1).size(), 2u);
    EXPECT_EQ(Rows("SELECT Nfault, Ndist FROM ST_CASE WHERE Case_No=3"),
              (std::vector<std::string>{"16|0"}));
    EXPECT_EQ(All<case_st>()[0].Nfault, 16);
}

TEST_F(CaseAndFaults, FaultsOffOrCaseRowMissing)
{
    Exec(QString("INSERT INTO ST_FAULT (%1) VALUES "
                 "(3,1,'L2','N2','N3',1,50,'F1',1,1,1,0,1,0,0,0,0,0),"
                 "(4,1,'L2','N2','N3',1,50,'F1',1,1,1,0,1,0,0,0,0,0)")
             .arg(kFaultColumns));
    Exec("INSERT INTO ST_OUT (Case_No) VALUES (3), (4)");

    // Ctrl_Fault 0: the old fault records go, none come, nothing counts, no bus is added.
    CaseRow("Ctrl_Fault=0");
    {
        stfault old;
        old.ID_Name = "OLD";
        testsupport::Put(old);
        rtdb().commit();
    }
    CSTCaseDataTransfer off(kCase, db(), &rtdb());
    EXPECT_EQ(off.ImportSTCaseDataToRTDB(), 0);
    EXPECT_EQ(Records<stfault>(), 0);
    EXPECT_EQ(Scalar("SELECT Nfault FROM ST_CASE WHERE Case_No=3"), "0");
    EXPECT_EQ(BusesFrom(lastBus() + 1).size(), 0u);
    EXPECT_EQ(Records<case_st>(), 1);

    // With the case table gone even the constructor's query fails; the case record stays
    // as it was.
    feedback().clear();
    Exec("RENAME TABLE ST_CASE TO ST_CASE_away");
    CSTCaseDataTransfer noTable(kCase, db(), &rtdb());
    const int rc = noTable.ImportSTCaseDataToRTDB();
    Exec("RENAME TABLE ST_CASE_away TO ST_CASE");
    EXPECT_EQ(rc, 1);
    EXPECT_EQ(
        feedback().texts(2),
        (std::vector<std::string>{"查询暂稳基于的潮流作业发生错误！", "查询暂稳输出信息发生错误！",
                                  "查询暂稳输出信息发生错误！", "查询暂稳作业信息发生错误！",
                                  "查询暂稳输出信息发生错误！", "更新暂稳作业信息发生错误！",
                                  "查询暂稳作业信息发生错误！", "ImportCase_STDataToRTDB"}));
    EXPECT_EQ(Records<case_st>(), 1);

    // Case 4 has no ST_CASE row: its load-flow case reads as 0 without a word, its faults
    // load as if Ctrl_Fault were 1 (and the user programs are read as if UP_CAL were, so
    // their select fails), the case record table is left empty and the driver fails with
    // the bare step name after the missing-row message.
    feedback().clear();
    CSTCaseDataTransfer missing(4, db(), &rtdb());
    EXPECT_TRUE(feedback().messages().empty());
    EXPECT_EQ(missing.ImportSTCaseDataToRTDB(), 1);
    EXPECT_EQ(feedback().texts(2),
              (std::vector<std::string>{"查询暂稳UP信息表发生错误！",
                                        "暂稳作业信息表中没有当前作业号的记录！",
                                        "ImportCase_STDataToRTDB"}));
    EXPECT_EQ(Records<stfault>(), 1);
    EXPECT_EQ(All<stfault>()[0].Name_No, lastBus() + 1);
    EXPECT_EQ(Records<case_st>(), 0);
}

TEST_F(CaseAndFaults, NewBusesAndBusNumbers)
{
    CaseRow("Ctrl_Fault=1");
    Exec(QString("INSERT INTO ST_FAULT (%1) VALUES (3,1,'L2','N2','N3',1,50,'F1',0,0,0,0,0,0,0,0,"
                 "0,0)")
             .arg(kFaultColumns));
    CSTCaseDataTransfer transfer(kCase, db(), &rtdb());
    EXPECT_EQ(CaseSetProbe::BusNo(transfer, ""), -1);
    EXPECT_EQ(CaseSetProbe::BusNo(transfer, "N3"), BusOf("N3"));
    EXPECT_EQ(CaseSetProbe::BusNo(transfer, "B3"), -1) << "a bus name is no node";
    EXPECT_EQ(CaseSetProbe::BusNo(transfer, "N404"), -1);

    // With an empty bs table the new bus is numbered -1.
    {
        dbCursor<bs> all(dbCursorForUpdate);
        all.removeAll();
    }
    rtdb().commit();
    EXPECT_EQ(CaseSetProbe::Faults(transfer), 0);
    EXPECT_EQ(All<stfault>()[0].Name_No, -1);
    ASSERT_EQ(All<bs>().size(), 1u);
    EXPECT_EQ(All<bs>()[0].id, -1);
    EXPECT_STREQ(All<bs>()[0].name, "F1");
}

TEST_F(CaseAndFaults, RunStateUpdateFailsAsDesignedAndSucceedsWhenAskedFor)
{
    CaseRow("Calculate=7,UDOUT=4,CAL_DATE='2024-05-01',CAL_TIME='12:00:00',UD_TIME=0,Nup=11");
    Exec("INSERT INTO ST_OUT (Case_No) VALUES (3)");
    CSTCaseDataTransfer transfer(kCase, db(), &rtdb());
    ASSERT_EQ(transfer.ImportSTCaseDataToRTDB(), 0);
    const auto before = Rows("SELECT * FROM ST_CASE");

    feedback().clear();
    StartStatementLog();
    EXPECT_EQ(transfer.UpdateSTCaseDataFromRTDB(), 1);
    EXPECT_EQ(feedback().texts(2), (std::vector<std::string>{"更新暂稳作业信息发生错误！"}));
    EXPECT_EQ(Rows("SELECT * FROM ST_CASE"), before);
    // The float given for the first %d shifts the integer arguments one place forward.
    EXPECT_EQ(SentStatements(), (std::vector<std::string>{
                                    "UPDATE ST_CASE SET  CALCULATE=4,UDOUT=0,CAL_Date='12:00:00',"
                                    "CAL_Time='(null)',UD_Time=11,NUP=3,WHERE Case_No=0"}));

    // A case without a record in the real-time database sends nothing.
    feedback().clear();
    StartStatementLog();
    CSTCaseDataTransfer other(4, db(), &rtdb());
    EXPECT_EQ(other.UpdateSTCaseDataFromRTDB(), 1);
    EXPECT_EQ(feedback().texts(2), (std::vector<std::string>{"实时库中没有相应的暂稳作业信息！"}));
    EXPECT_EQ(SentStatements().size(), 1u) << "only the constructor's query";

    // Asked for, the intended statement writes the engine's run state.
    {
        dbCursor<case_st> c(dbCursorForUpdate);
        ASSERT_EQ(c.select(), 1);
        c->Calculate = 2.9f;
        c->UDOUT = 1;
        c->CAL_DATE = "2024-06-02";
        c->UD_TIME = 35;
        c->Nup = 6;
        c.update();
        rtdb().commit();
    }
    feedback().clear();
    transfer.SetIntendedStatements(true);
    EXPECT_EQ(transfer.UpdateSTCaseDataFromRTDB(), 0);
    EXPECT_TRUE(feedback().messages().empty());
    EXPECT_EQ(Rows("SELECT Calculate,UDOUT,CAL_DATE,CAL_TIME,UD_TIME,Nup FROM ST_CASE"),
              (std::vector<std::string>{"2|1|2024-06-02|12:00:00|35|6"}));
}

class UserModels : public CaseSetTest
{
protected:
    static void ModelRow(const QString& values)
    {
        Exec("INSERT INTO ST_UDCAL (Case_No,Valid,Model_No,Par_No,Bus1,Bus2,Bus3,Bus4,"
             "ID_Name1,I1_Name,J1_Name,ID_No1,Side1,Locate1,Name_1,"
             "ID_Name2,I2_Name,J2_Name,ID_No2,Side2,Locate2,Name_2,"
             "ID_Name3,I3_Name,J3_Name,ID_No3,Side3,Locate3,Name_3,"
             "ID_Name4,I4_Name,J4_Name,ID_No4,Side4,Locate4,Name_4) VALUES " +
             values);
    }
};

TEST_F(UserModels, ModelsAddTheirBusesAndTheProgramStepEmptiesThem)
{
    CaseRow("CTRL_UD=1,UP_CAL=0,CTRL_DIST=1,T_Total=3");
    Exec("INSERT INTO ST_OUT (Case_No) VALUES (3)");
    ModelRow("(3,0,3,4,'N1','','NX','N14', 'L1','N1','N2',1,1,0,'U1', 'L2','N2','N3',2,2,40,'U2',"
             " '','','',0,0,0,'', 'L4','N4','N5',1,0,50,'')");
    CSTCaseDataTransfer transfer(kCase, db(), &rtdb());

    // The model step alone: every field, the new buses, group 4's message with group 2's text.
    EXPECT_EQ(CaseSetProbe::UserModels(transfer), 0);
    EXPECT_EQ(feedback().texts(2), (std::vector<std::string>{"暂稳自定义表中新增母线名2为空！"}));
    ASSERT_EQ(Records<udcal_st>(), 1);
    const udcal_st u = All<udcal_st>()[0];
    EXPECT_EQ(u.Valid, 0) << "a row with Valid 0 is written too";
    EXPECT_EQ(u.Model_No, 3);
    EXPECT_EQ(u.Par_No, 4);
    EXPECT_STREQ(u.Bus4, "N14");
    EXPECT_EQ(u.Bus1_No, BusOf("N1"));
    EXPECT_EQ(u.Bus2_No, -1);
    EXPECT_EQ(u.Bus3_No, -1);
    EXPECT_EQ(u.Bus4_No, BusOf("N14"));
    EXPECT_STREQ(u.J2_Name, "N3");
    EXPECT_EQ(u.I2_No, BusOf("N2"));
    EXPECT_EQ(u.J2_No, BusOf("N3"));
    EXPECT_EQ(u.ID_No2, 2);
    EXPECT_EQ(u.Side2, 2);
    EXPECT_EQ(u.Locate2, 40);
    EXPECT_EQ(u.Name_1_No, lastBus() + 1) << "Locate1 0 with a new name adds the bus";
    EXPECT_EQ(u.Name_2_No, lastBus() + 2);
    EXPECT_EQ(u.Name_3_No, -1);
    EXPECT_EQ(u.Locate4, 50);
    EXPECT_EQ(u.Name_4_No, -1);
    EXPECT_EQ(BusesFrom(lastBus() + 1),
              (std::vector<std::string>{std::to_string(lastBus() + 1) + ":U1",
                                        std::to_string(lastBus() + 2) + ":U2"}));

    // The driver: the program step empties the models while their buses stay, and leaves
    // the user programs alone.
    {
        upcal_st old;
        old.UP_Name = "kept";
        testsupport::Put(old);
        rtdb().commit();
    }
    Exec("INSERT INTO ST_DIST_INF (Case_No,Type,Bus_Name,Valid) VALUES (3,2,'N3',1)");
    Exec("INSERT INTO ST_DIST_T2 (Case_No,ID_Name,Bus_Name,T_X,V_Y) VALUES (3,'V','N3',0,1),"
         "(3,'V','N3',1,0.9)");
    feedback().clear();
    EXPECT_EQ(transfer.ImportSTCaseDataToRTDB(), 0);
    EXPECT_EQ(Records<udcal_st>(), 0);
    EXPECT_EQ(BusesFrom(lastBus() + 1).size(), 2u);
    ASSERT_EQ(Records<upcal_st>(), 1);

    // UP_CAL 1: the select without FROM fails, the driver goes on and fails at the end.
    Exec("UPDATE ST_CASE SET UP_CAL=1");
    Exec("INSERT INTO ST_UPCAL (Case_No,Valid,UP_Name,Par_No,Bus1,ID_Name2,I2_Name,J2_Name,"
         "ID_No2) VALUES (3,1,REPEAT('p',60),7,'N2','L3','N3','N4',3)");
    feedback().clear();
    EXPECT_EQ(transfer.ImportSTCaseDataToRTDB(), 1);
    EXPECT_EQ(feedback().texts(2), (std::vector<std::string>{"暂稳自定义表中新增母线名2为空！",
                                                             "查询暂稳UP信息表发生错误！"}));
    EXPECT_EQ(Records<stdist>(), 1) << "the disturbances still came";
    EXPECT_EQ(Records<udcal_st>(), 0);
    ASSERT_EQ(Records<upcal_st>(), 1);
    EXPECT_STREQ(All<upcal_st>()[0].UP_Name, "kept");

    // Asked for, the select with its FROM fills the programs beside what stood there.
    transfer.SetIntendedStatements(true);
    feedback().clear();
    EXPECT_EQ(transfer.ImportSTCaseDataToRTDB(), 0);
    ASSERT_EQ(Records<upcal_st>(), 2);
    const upcal_st p = All<upcal_st>()[1];
    EXPECT_EQ(std::string(p.UP_Name), std::string(60, 'p')) << "any length";
    EXPECT_EQ(p.Par_No, 7);
    EXPECT_EQ(p.Bus1_No, BusOf("N2"));
    EXPECT_STREQ(p.ID_Name2, "L3");
    EXPECT_EQ(p.I2_No, BusOf("N3"));
    EXPECT_EQ(p.J2_No, BusOf("N4"));
    EXPECT_EQ(p.ID_No2, 3);
    EXPECT_EQ(p.I1_No, -1);

    // CTRL_UD 0: no model, no new bus.
    Exec("UPDATE ST_CASE SET CTRL_UD=0");
    ModelRow("(3,1,1,1,'','','','', '','','',0,0,0,'U9', '','','',0,0,0,'', '','','',0,0,0,'',"
             " '','','',0,0,0,'')");
    EXPECT_EQ(CaseSetProbe::UserModels(transfer), 0);
    EXPECT_EQ(Records<udcal_st>(), 0);
    EXPECT_EQ(BusesFrom(lastBus() + 1).size(), 2u);
}
