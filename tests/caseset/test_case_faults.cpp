// The stability case, its criteria and faults, the user models, and the run state back.

#include "CaseSetTest.h"
#include "RecordAccess.h"

#include <sstream>

using namespace dtsdb;
using namespace casetest;

namespace {

const char* const kFaultColumns = "Case_No,Valid,ID_Name,I_Name,J_Name,ID_No,Locate,Name,A,B,C,"
                                  "Ground,`Short`,`Open`,T_Start,T_End,R_Fault,X_Fault";

} // namespace

using CaseAndFaults = CaseSetTest;

TEST_F(CaseAndFaults, EveryFieldOfCaseCriteriaAndFaultsCommittedAndASecondLoadDoublesBothCounts)
{
    CaseRow("ST_SC=2,T_Total=5.5,DT_Step=0.01,F60=6,EQ_Method=7,EQ_Continu=8,Ctrl_Fault=1,"
            "CTRL_UD=3,CTRL_DIST=1,UP_CAL=0,Calculate=7,UDOUT=4,CAL_DATE='2024-05-01',"
            "CAL_TIME='12:00:00',UD_TIME=9,Nup=11,Nbus=12,Ngenerat=13,Nload=14,Nacline=15,"
            "Ndcline=16,Ntrans=17,Nsvc=18,Nfault=99,Ndist=98,Istable=1,Tstable=1.9,"
            "Note=CONCAT('x',REPEAT('注',60))");
    Exec("INSERT INTO ST_OUT (Case_No) VALUES (3)");
    // A curve of two points: one record, two disturbances counted.
    Exec("INSERT INTO ST_DIST_INF (Case_No,Type,Bus_Name,Valid) VALUES (3,2,'N7',1)");
    Exec("INSERT INTO ST_DIST_T2 (Case_No,ID_Name,Bus_Name,T_X,V_Y) VALUES (3,'V','N7',0,1),"
         "(3,'V','N7',1,0.5)");
    // Names of 21 bytes as the design counted them (a Chinese character 2) lose their last
    // character whole.
    Exec("INSERT INTO ST_CRIT (Case_No,Valid,Lstop,MaxDAng,MinVol,TDVol,MinFreq,TDFreq,NanaGrp,"
         "TSDAng,ID_Name1,ID_Name2,Gen_Name1,Gen_Name2,TSProny,TEProny,NDTProny) VALUES "
         "(3,1,2,180,0.7,0.5,49,1.5,4,2.5,'L1','A十个汉字的线路名称甲','G1',"
         "'十一个字的发电机名称乙',0.25,5,30),(3,0,0,0,0,0,0,0,0,0,'X','X','X','X',0,0,0)");
    const int f1 = lastBus() + 1;
    const std::string fb1 = std::to_string(f1), fb2 = std::to_string(f1 + 1);
    Exec(QString("INSERT INTO ST_FAULT (%1) VALUES "
                 "(3,0,'L1','N1','N2',1,0,'',1,0,0,1,0,0,0.1,0.2,0.01,0.02),"
                 "(3,1,'L2','N2','N3',2,50,'F1',0,1,1,2,0,1,0.15,0.25,0.03,0.04),"
                 "(3,1,'L3','N2','N4',3,30,'F1',1,1,0,0,1,0,0,0,0,0),"
                 "(3,1,'L4','NX','N5',2,1,'',0,0,1,0,0,0,0,0,0,0),"
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
    // once, numbered above the network's buses; an existing bus name is found. Ground 1
    // makes Short 1; Ground 2 leaves it. "ID_Name|I|J|I_No|J_No|ID_No|Locate|Name|Name_No|
    // Valid|ABC|Ground Short Open|T_Start,T_End,R_Fault,X_Fault".
    std::vector<std::string> faults;
    for (const stfault& f : All<stfault>()) {
        std::ostringstream s;
        s << f.ID_Name << '|' << f.I_Name << '|' << f.J_Name << '|' << f.I_No << '|' << f.J_No
          << '|' << f.ID_No << '|' << f.Locate << '|' << f.Name << '|' << f.Name_No << '|'
          << f.Valid << '|' << f.A << f.B << f.C << '|' << f.Ground << f.Short << f.Open << '|'
          << f.T_Start << ',' << f.T_End << ',' << f.R_Fault << ',' << f.X_Fault;
        faults.push_back(s.str());
    }
    EXPECT_EQ(
        faults,
        (std::vector<std::string>{
            "L1|N1|N2|" + B("N1") + "|" + B("N2") + "|1|0||-1|0|100|110|0.1,0.2,0.01,0.02",
            "L2|N2|N3|" + B("N2") + "|" + B("N3") + "|2|50|F1|" + fb1 +
                "|1|011|201|0.15,0.25,0.03,0.04",
            "L3|N2|N4|" + B("N2") + "|" + B("N4") + "|3|30|F1|" + fb1 + "|1|110|010|0,0,0,0",
            "L4|NX|N5|-1|" + B("N5") + "|2|1||-1|1|001|000|0,0,0,0",
            "L5|N4|N5|" + B("N4") + "|" + B("N5") + "|1|99||-1|1|000|000|0,0,0,0",
            "L6|N4|N5|" + B("N4") + "|" + B("N5") + "|1|100||-1|1|000|000|0,0,0,0",
            "L7|N6|N11|" + B("N6") + "|" + B("N11") + "|1|0|F2|" + fb2 + "|1|000|000|0,0,0,0",
            "L8|N1|N3|" + B("N1") + "|" + B("N3") + "|1|-5|B3|" + B("N3") + "|1|000|000|0,0,0,0",
        }));
    EXPECT_EQ(BusesFrom(f1), (std::vector<std::string>{fb1 + ":F1", fb2 + ":F2"}));
    const stcrit k = All<stcrit>().at(0);
    std::ostringstream crit;
    crit << k.Valid << '|' << k.Lstop << '|' << k.MaxDAng << '|' << k.MinVol << '|' << k.TDVol
         << '|' << k.MinFreq << '|' << k.TDFreq << '|' << k.NanaGrp << '|' << k.TSDAng << '|'
         << k.ID_Name1 << '|' << k.ID_Name2 << '|' << k.Gen_Name1 << '|' << k.Gen_Name2 << '|'
         << k.TSProny << '|' << k.TEProny << '|' << k.NDTProny;
    EXPECT_EQ(crit.str(),
              "1|2|180|0.7|0.5|49|1.5|4|2.5|L1|A十个汉字的线路名称|G1|十一个字的发电机名称|0.25|5|30");

    // The counts reach ST_CASE, then the case record, which is filled last from it (ST_CASE
    // held 99 and 98): every field but the texts in record order, Calculate -1, Nreserved 0,
    // Tstable cut to whole seconds, Tolerance 0.0005; the note cut to 100 bytes.
    const case_st c = All<case_st>().at(0);
    std::ostringstream cs;
    cs << c.case_no << '|' << c.Case_LF << '|' << c.ST_SC << '|' << c.T_Total << '|' << c.DT_Step
       << '|' << c.F60 << '|' << c.EQ_Method << '|' << c.EQ_Continu << '|' << c.Ctrl_Fault << '|'
       << c.CTRL_UD << '|' << c.CTRL_DIST << '|' << c.UP_CAL << '|' << c.Calculate << '|' << c.UDOUT
       << '|' << c.CAL_DATE << '|' << c.CAL_TIME << '|' << c.UD_TIME << '|' << c.Nup << '|'
       << c.Nbus << '|' << c.Nacline << '|' << c.Ntrans << '|' << c.Ngenerat << '|' << c.Nload
       << '|' << c.Ndcline << '|' << c.Nsvc << '|' << c.Nreserved << '|' << c.Nfault << '|'
       << c.Ndist << '|' << c.Istable << '|' << c.Tstable << '|' << c.Tolerance;
    EXPECT_EQ(cs.str(), "3|5|2|5.5|0.01|6|7|8|1|3|1|0|-1|4|2024-05-01|12:00:00|9|11|12|15|17|13|"
                        "14|16|18|0|8|2|1|1|0.0005");
    EXPECT_EQ(QString(c.Note), "x" + QString("注").repeated(49));

    // Everything above was committed: a rollback keeps it (one criteria record, "the first
    // row only"). A second load on the same object: the records stand once, the buses are
    // found by name, both counts double in ST_CASE, which the case record reads back.
    rtdb().rollback();
    EXPECT_EQ(Records(), "crit L1|fault 8|dist 1|out 0|var 0|gi 0|grp 0|case 8/2");
    EXPECT_EQ(BusesFrom(f1).size(), 2u);
    EXPECT_EQ(transfer.ImportSTCaseDataToRTDB(), 0);
    EXPECT_EQ(Records(), "crit L1|fault 8|dist 1|out 0|var 0|gi 0|grp 0|case 16/4");
    EXPECT_EQ(BusesFrom(f1).size(), 2u);
}

TEST_F(CaseAndFaults, FaultsOffTheRunStateBackAndACaseWithoutItsRowLoadingFaultsAsIfOn)
{
    Exec(QString("INSERT INTO ST_FAULT (%1) VALUES "
                 "(3,1,'L2','N2','N3',1,50,'F1',1,1,1,0,1,0,0,0,0,0),"
                 "(4,1,'L2','N2','N3',1,50,'F1',1,1,1,0,1,0,0,0,0,0)")
             .arg(kFaultColumns));
    Exec("INSERT INTO ST_OUT (Case_No) VALUES (3), (4)");

    // Ctrl_Fault other than 1: the old fault records go, none come, nothing counts, no bus
    // is added. The case record takes the switch from its own column.
    CaseRow("Ctrl_Fault=5,CAL_TIME='12:00:00'");
    stfault old;
    old.ID_Name = "OLD";
    testsupport::Put(old);
    rtdb().commit();
    CSTCaseDataTransfer off(kCase, db(), &rtdb());
    EXPECT_EQ(off.ImportSTCaseDataToRTDB(), 0);
    EXPECT_EQ(Records(), "crit 0|fault 0|dist 0|out 0|var 0|gi 0|grp 0|case 0/0");
    EXPECT_EQ(All<case_st>().at(0).Ctrl_Fault, 5);

    // The run state back: as designed the set list keeps its comma before WHERE, and the
    // server refuses it.
    const auto before = Rows("SELECT * FROM ST_CASE");
    StartStatementLog();
    EXPECT_EQ(off.UpdateSTCaseDataFromRTDB(), 1);
    EXPECT_EQ(feedback().texts(2), (std::vector<std::string>{"更新暂稳作业信息发生错误！"}));
    EXPECT_EQ(Rows("SELECT * FROM ST_CASE"), before);
    ASSERT_EQ(SentStatements().size(), 1u);
    EXPECT_EQ(SentStatements()[0].rfind("UPDATE ST_CASE SET  CALCULATE=", 0), 0u);
    EXPECT_NE(SentStatements()[0].find(",WHERE Case_No="), std::string::npos);

    // Asked for, the intended statement writes the engine's run state (Calculate cut).
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
    off.SetIntendedStatements(true);
    EXPECT_EQ(off.UpdateSTCaseDataFromRTDB(), 0);
    EXPECT_EQ(Rows("SELECT Calculate,UDOUT,CAL_DATE,CAL_TIME,UD_TIME,Nup FROM ST_CASE"),
              (std::vector<std::string>{"2|1|2024-06-02|12:00:00|35|6"}));

    // Case 4 has no ST_CASE row: its load-flow case reads as 0 without a word, and without
    // its record the run state sends nothing. Its faults load as if Ctrl_Fault were 1 (and
    // the user programs are read as if UP_CAL were, so their select fails), the case record
    // table is left empty and the driver fails with the bare step name after the
    // missing-row message.
    StartStatementLog();
    CSTCaseDataTransfer missing(4, db(), &rtdb());
    EXPECT_TRUE(feedback().messages().empty()) << "nor did the intended run state";
    EXPECT_EQ(missing.UpdateSTCaseDataFromRTDB(), 1);
    EXPECT_EQ(SentStatements().size(), 1u) << "only the constructor's query";
    EXPECT_EQ(missing.ImportSTCaseDataToRTDB(), 1);
    EXPECT_EQ(feedback().texts(2),
              (std::vector<std::string>{"实时库中没有相应的暂稳作业信息！",
                                        "查询暂稳UP信息表发生错误！",
                                        "暂稳作业信息表中没有当前作业号的记录！",
                                        "ImportCase_STDataToRTDB"}));
    EXPECT_EQ(Records(), "crit 0|fault 1|dist 0|out 0|var 0|gi 0|grp 0|case -");

    // With an empty bs table a new bus is numbered -1.
    {
        dbCursor<bs> all(dbCursorForUpdate);
        all.removeAll();
    }
    rtdb().commit();
    EXPECT_EQ(CaseSetProbe::Faults(missing), 0);
    rtdb().rollback(); // the faults' step commits its records with their buses
    EXPECT_EQ(All<stfault>()[0].Name_No, -1);
    EXPECT_EQ(BusesFrom(-1), std::vector<std::string>{"-1:F1"});
}

using UserModels = CaseSetTest;

TEST_F(UserModels, ModelsAddTheirBusesAndTheProgramStepEmptiesThem)
{
    CaseRow("CTRL_UD=1,UP_CAL=0");
    Exec("INSERT INTO ST_OUT (Case_No) VALUES (3)");
    Exec("INSERT INTO ST_UDCAL (Case_No,Valid,Model_No,Par_No,Bus1,Bus2,Bus3,Bus4,"
         "ID_Name1,I1_Name,J1_Name,ID_No1,Side1,Locate1,Name_1,"
         "ID_Name2,I2_Name,J2_Name,ID_No2,Side2,Locate2,Name_2,"
         "ID_Name3,I3_Name,J3_Name,ID_No3,Side3,Locate3,Name_3,"
         "ID_Name4,I4_Name,J4_Name,ID_No4,Side4,Locate4,Name_4) VALUES "
         "(3,0,3,4,'N1','','NX','N14', 'L1','N1','N2',1,1,0,'U1', 'L2','N2','N3',2,2,40,'U2',"
         " '','','',0,0,0,'', 'L4','N4','N5',1,0,50,'')");
    CSTCaseDataTransfer transfer(kCase, db(), &rtdb());

    // The model step alone: every field, the new buses, group 4's message with group 2's text.
    EXPECT_EQ(CaseSetProbe::UserModels(transfer), 0);
    EXPECT_EQ(feedback().texts(2), (std::vector<std::string>{"暂稳自定义表中新增母线名2为空！"}));
    const udcal_st u = All<udcal_st>().at(0); // the only row
    const int u1 = lastBus() + 1, u2 = lastBus() + 2;
    EXPECT_EQ(std::vector<int>({u.Valid, u.Model_No, u.Par_No, u.Bus1_No, u.Bus2_No, u.Bus3_No,
                                u.Bus4_No, u.I2_No, u.J2_No, u.ID_No2, u.Side2, u.Locate2,
                                u.Locate4, u.Name_1_No, u.Name_2_No, u.Name_3_No, u.Name_4_No}),
              std::vector<int>({0, 3, 4, BusOf("N1"), -1, -1, BusOf("N14"), BusOf("N2"),
                                BusOf("N3"), 2, 2, 40, 50, u1, u2, -1, -1}))
        << "Valid 0 is written too; Locate1 0 with a new name adds the bus";
    EXPECT_EQ(std::string(u.Bus4) + "|" + u.J2_Name, "N14|N3");
    EXPECT_EQ(BusesFrom(u1),
              (std::vector<std::string>{std::to_string(u1) + ":U1", std::to_string(u2) + ":U2"}));

    // The driver: the program step empties the models while their buses stay, and leaves
    // the user programs alone.
    {
        upcal_st old;
        old.UP_Name = "kept";
        testsupport::Put(old);
        rtdb().commit();
    }
    EXPECT_EQ(transfer.ImportSTCaseDataToRTDB(), 0);
    EXPECT_EQ(All<udcal_st>().size(), 0u);
    EXPECT_EQ(BusesFrom(u1).size(), 2u);

    // UP_CAL 1: as designed the select has no FROM and fails (a row of the fault table).
    Exec("UPDATE ST_CASE SET UP_CAL=1");
    Exec("INSERT INTO ST_UPCAL (Case_No,Valid,UP_Name,Par_No,Bus1,ID_Name2,I2_Name,J2_Name,"
         "ID_No2) VALUES (3,1,REPEAT('p',60),7,'N2','L3','N3','N4',3)");

    // Asked for, the select with its FROM fills the programs beside what stood there.
    transfer.SetIntendedStatements(true);
    EXPECT_EQ(transfer.ImportSTCaseDataToRTDB(), 0);
    ASSERT_EQ(All<upcal_st>().size(), 2u);
    const upcal_st p = All<upcal_st>()[1];
    std::ostringstream program;
    program << p.UP_Name << '|' << p.Par_No << '|' << p.Bus1_No << '|' << p.ID_Name2 << '|'
            << p.I2_No << '|' << p.J2_No << '|' << p.ID_No2 << '|' << p.I1_No;
    EXPECT_EQ(program.str(), std::string(60, 'p') + "|7|" + B("N2") + "|L3|" + B("N3") + "|" +
                                 B("N4") + "|3|-1")
        << "a name of any length";

    // CTRL_UD 0: the model row that still stands gives no record.
    Exec("UPDATE ST_CASE SET CTRL_UD=0");
    EXPECT_EQ(CaseSetProbe::UserModels(transfer), 0);
    EXPECT_EQ(All<udcal_st>().size(), 0u);
}
