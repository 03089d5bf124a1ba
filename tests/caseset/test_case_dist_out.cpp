// Disturbances of every kind, the working table of load ranges, and the output set-up.

#include "CaseSetTest.h"

#include <sstream>

using namespace dtsdb;
using namespace casetest;

class Disturbance : public CaseSetTest
{
protected:
    // Each record as "ID_Name|I_Name|J_Name|I_No|J_No|ID_No|Type|Sub_Type|Par1..Par6".
    static std::vector<std::string> Disturbances()
    {
        std::vector<std::string> out;
        for (const stdist& d : All<stdist>()) {
            std::ostringstream s;
            s << d.ID_Name << '|' << d.I_Name << '|' << d.J_Name << '|' << d.I_No << '|' << d.J_No
              << '|' << d.ID_No << '|' << d.Type << '|' << d.Sub_Type;
            for (float p : {d.Par1, d.Par2, d.Par3, d.Par4, d.Par5, d.Par6}) {
                s << '|' << p;
            }
            out.push_back(s.str());
            EXPECT_EQ(d.Valid, 1);
        }
        return out;
    }
    static void Inf(int type, const char* bus, const char* id = "", int idNo = 0,
                    const char* i = "", const char* j = "", int valid = 1)
    {
        Exec(QString("INSERT INTO ST_DIST_INF (Case_No,Type,Bus_Name,ID_Name,ID_No,I_Name,J_Name,"
                     "Valid) VALUES (3,%1,'%2','%3',%4,'%5','%6',%7)")
                 .arg(type)
                 .arg(bus, id)
                 .arg(idNo)
                 .arg(i, j)
                 .arg(valid));
    }
    static void Load(const char* table, const QString& columns, const QString& values)
    {
        Exec(QString("INSERT INTO %1 (Case_No,%2) VALUES %3").arg(table, columns, values));
    }
};

TEST_F(Disturbance, EveryKindIntoItsRecordsAndCounts)
{
    CaseRow("CTRL_DIST=1,T_Total=10");
    Exec("INSERT INTO ST_OUT (Case_No) VALUES (3)");
    Inf(1, "N2", "P1");
    Inf(2, "N3");
    Inf(3, "N4");
    Inf(10, "N5");
    Inf(4, "N2G", "TRIP");
    Inf(5, "N3G", "V5");
    Inf(6, "N9", "", 0);
    Inf(6, "N10", "", 0);
    Inf(7, "", "BR", 1, "N4", "N5");
    Inf(8, "N10", "OSC", 7);
    Inf(9, "N1G", "GOSC", 4, "N1");
    Inf(2, "N2", "", 0, "", "", 0); // not valid: its missing curve is never asked for
    Inf(0, "N2"); // no such kind
    Load("ST_DIST_T1", "ID_Name,Bus_Name,T_X,P_Y1,Q_Y2",
         "(3,'P1','N2',2,0.3,0.03),(3,'P1','N2',0,0.1,0.01),(3,'P1','N2',1,0.2,0.02),"
         "(3,'P1','N6',1,9,9)");
    Load("ST_DIST_T2", "ID_Name,Bus_Name,T_X,V_Y", "(3,'V','N3',1,0.9)");
    Load("ST_DIST_T3", "ID_Name,Bus_Name,T_X,V_Y", "(3,'V3','N4',0,1),(3,'V3','N4',0.5,0.8)");
    Load("ST_DIST_T10", "ID_Name,Bus_Name,T_X,V_Y", "(3,'V10','N5',0,1),(3,'V10','N5',2,0.7)");
    Load("ST_DIST_T4", "Gen_Name,ID_Name,I_Name,J_Name,ID_No,K_Ratio,PG0,T_Start,T_End",
         "(3,'N2G','T1','N2','N2G',1,0.5,0.4,1,0),(3,'N4G','TRIP','N6','N4G',2,0.25,0.1,1,2.5),"
         "(3,'N5G','OTHER','N8','N5G',1,1,1,1,1)");
    Load("ST_DIST_T5", "Sub_Type,ID_Name,Gen_Name,Ref_Name,V_Crit,K_Ratio,T_Delay,T_Start,T_End",
         "(3,2,'A','N3G','N1G',0.8,0.5,0.1,0,0),(3,3,'V5','N4G','N1G',0.75,0.4,0.2,1,4),"
         "(3,4,'A4','N3G','N2G',0.7,0.3,0.1,2,3)");
    Load("ST_DIST_T6",
         "Nrange,Sub_Type,ID_Name,Load_Name,Ref_Name,V_Crit,K_Ratio,T_Delay,ID_Branch,ID_No,"
         "T_Start,T_End",
         "(3,0,4,'SHED','N9','N14',0.7,0.2,0.3,5,6,1.5,0),"
         "(3,0,3,'SHED3','N10','N14',0.6,0.1,0.2,5,6,2,3)");
    Load("ST_DIST_T7", "Sub_Type,ID_No,ID_Name,I_Name,J_Name,V_Crit,K_Ratio,T_Delay,T_Start,T_End",
         "(3,2,1,'X','N4','N5',0.85,0.3,0.2,0.5,4),(3,2,2,'Y','N4','N5',0.85,0.3,0.2,0.5,4)");
    Load("ST_DIST_T8", "ID_Name,Load_Name,P0,DPm,Omega,Angle,T_Start,T_End",
         "(3,'OSC','N10',0.09,0.01,6.25,0,0,3),(3,'OSC','N11',0.5,0.02,3,1,2,7)");
    Load("ST_DIST_T9", "ID_Name,Gen_Name,V0,PG0,DVm,Omega,Angle,T_Start,T_End",
         "(3,'ignored','N1G',1.06,2.3,0.02,3,1,0.25,0)");

    // The disturbances alone are only precommitted; in the driver the next family's commit
    // makes them durable.
    CSTCaseDataTransfer alone(kCase, db(), &rtdb());
    EXPECT_EQ(CaseSetProbe::Disturbances(alone), 0);
    EXPECT_EQ(All<stdist>().size(), 15u);
    rtdb().rollback();
    EXPECT_TRUE(Disturbances().empty());
    CSTCaseDataTransfer transfer(kCase, db(), &rtdb());
    EXPECT_EQ(transfer.ImportSTCaseDataToRTDB(), 0);
    EXPECT_TRUE(feedback().texts(2).empty());
    rtdb().rollback();
    const std::string n2 = B("N2"), n4 = B("N4"), n5 = B("N5");
    EXPECT_EQ(
        Disturbances(),
        (std::vector<std::string>{
            // power curve of three points at N2: two segments
            "P1|N2|N2|" + n2 + "|" + n2 + "|0|0|0|0|1|0.1|0.2|0.01|0.02",
            "P1|N2|N2|" + n2 + "|" + n2 + "|0|0|0|1|2|0.2|0.3|0.02|0.03",
            // the one-point voltage curve gives none; types 3 and 10 write alike
            "V3|N4|N4|" + n4 + "|" + n4 + "|0|1|1|0|0.5|1|0.8|0|0",
            "V10|N5|N5|" + n5 + "|" + n5 + "|0|1|1|0|2|1|0.7|0|0",
            // by generator name or by disturbance name; an unset end is the total time
            "T1|N2|N2G|" + n2 + "|" + B("N2G") + "|1|2|" + B("N2G") + "|1|10|0.4|0.5|0|0",
            "TRIP|N6|N4G|" + B("N6") + "|" + B("N4G") + "|2|2|" + B("N4G") + "|1|2.5|0.1|0.25|0|0",
            // Sub_Type 2 and 4 end at the reference generator, 3 at itself
            "A|N3G|N1G|" + B("N3G") + "|" + B("N1G") + "|0|3|1|0|10|0.8|0.5|0.1|0",
            "V5|N4G|N4G|" + B("N4G") + "|" + B("N4G") + "|0|3|2|1|4|0.75|0.4|0.2|0",
            "A4|N3G|N2G|" + B("N3G") + "|" + B("N2G") + "|0|3|3|2|3|0.7|0.3|0.1|0",
            // the loads of type 6, through DT6: Sub_Type 4 ends at the reference, 3 at itself
            "SHED|N9|N14|" + B("N9") + "|" + B("N14") + "|0|4|3|1.5|10|0.7|0.2|0.3|0",
            "SHED3|N10|N10|" + B("N10") + "|" + B("N10") + "|0|4|2|2|3|0.6|0.1|0.2|0",
            // by ends and circuit number
            "X|N4|N5|" + n4 + "|" + n5 + "|1|5|1|0.5|4|0.85|0.3|0.2|0",
            // type 8: both times from T_Start; P0 on the first row only
            "OSC|N10|N10|" + B("N10") + "|" + B("N10") + "|7|6|2|0|10|0.01|6.25|0|0.09",
            "OSC|N11|N11|" + B("N11") + "|" + B("N11") + "|7|6|2|2|2|0.02|3|1|0",
            // type 9: name, ends and circuit from the disturbance row
            "GOSC|N1|N1|" + B("N1") + "|" + B("N1") + "|4|7|1|0.25|10|0.02|3|1|1.06",
        }));
    // Points of the curves count (3 + 1 + 2 + 2), and every row of the other kinds.
    EXPECT_EQ(Scalar("SELECT Ndist FROM ST_CASE WHERE Case_No=3"), "19");

    // CTRL_DIST 0 empties the records and counts nothing more.
    Exec("UPDATE ST_CASE SET CTRL_DIST=0");
    EXPECT_EQ(transfer.ImportSTCaseDataToRTDB(), 0);
    EXPECT_TRUE(Disturbances().empty());
    EXPECT_EQ(Scalar("SELECT Ndist FROM ST_CASE WHERE Case_No=3"), "19");

    // Without its case row the same object reads on as if turned on, and an unset end is
    // 0, not the 10 of the load before.
    Exec("DELETE FROM ST_CASE");
    EXPECT_EQ(CaseSetProbe::Disturbances(transfer), 0);
    EXPECT_EQ(Disturbances().at(4),
              "T1|N2|N2G|" + n2 + "|" + B("N2G") + "|1|2|" + B("N2G") + "|1|0|0.4|0.5|0|0");
}

TEST_F(Disturbance, DetailTablesMissingOrUnreadableAndLoadRangesThroughTheWorkingTable)
{
    CaseRow("CTRL_DIST=1,T_Total=10");
    CSTCaseDataTransfer transfer(kCase, db(), &rtdb());
    for (int type : {1, 2, 3, 4, 5, 7, 8, 9, 10}) {
        Inf(type, "N2", "NONE");
    }
    Load("ST_DIST_T2", "ID_Name,Bus_Name,T_X,V_Y", "(3,'V','N7',0,1),(3,'V','N7',1,0.5)");
    Inf(2, "N7"); // after the failures, still read
    EXPECT_EQ(CaseSetProbe::Disturbances(transfer), 1);
    EXPECT_EQ(Disturbances().size(), 1u);
    std::vector<std::string> said;
    for (const char* t : {"t1", "t2", "t3", "t4", "t5", "t7", "t8", "t9", "t10"}) {
        said.push_back(std::string("dist_inf表对应的暂稳扰动dist_") + t + "信息不存在！");
    }

    // A failed select shows its table's text; types 9 and 10 borrow those of 8 and 3.
    for (const char* t : {"T1", "T2", "T3", "T4", "T5", "T7", "T8", "T9", "T10"}) {
        Exec(QString("RENAME TABLE ST_DIST_%1 TO ST_DIST_%1_away").arg(t));
    }
    const int rc = CaseSetProbe::Disturbances(transfer);
    for (const char* t : {"T1", "T2", "T3", "T4", "T5", "T7", "T8", "T9", "T10"}) {
        Exec(QString("RENAME TABLE ST_DIST_%1_away TO ST_DIST_%1").arg(t));
    }
    EXPECT_EQ(rc, 1);
    for (const char* t : {"t1", "t2", "t3", "t4", "t5", "t7", "t8", "t8", "t3", "t2"}) {
        said.push_back(std::string("查询暂稳扰动dist_") + t + "信息发生错误！");
    }
    EXPECT_EQ(feedback().texts(2), said) << "the missing details, then the failed selects";
    EXPECT_TRUE(Disturbances().empty());

    const QString t6 = "Nrange,Sub_Type,ID_Name,Load_Name,Ref_Name,V_Crit,K_Ratio,T_Delay,"
                       "ID_Branch,ID_No,T_Start,T_End";
    auto reset = [] {
        Truncate({"ST_DIST_INF", "ST_DIST_T6"});
        feedback().clear();
    };

    reset();
    // All loads of the load-flow case (-1): the second load breaks the UNIQUE on ID_Name,
    // so the row fails with 3, writes nothing, and DT6 is dropped after it as after every
    // row (dropped before each create too, so only the statement shows it).
    Inf(6, "ANY", "", -1);
    Load("ST_DIST_T6", t6, "(3,-1,1,'ALL','ANY','',0.7,0.2,0.3,0,0,1,2)");
    StartStatementLog();
    EXPECT_EQ(CaseSetProbe::Disturbances(transfer), 1);
    const auto sent = SentStatements();
    EXPECT_EQ(sent.at(5), "SELECT DISTINCT Node_Name FROM L6_5");
    const std::string insert = "INSERT INTO DT6 (ID_Name,Load_Name,Nrange,Sub_Type,Ref_Name,"
                               "V_Crit,K_Ratio,T_Delay,ID_No,T_Start,T_End) VALUES( 'ALL','";
    EXPECT_EQ(sent.at(7).substr(0, insert.size()), insert);
    EXPECT_EQ(sent.at(9).substr(0, insert.size()), insert) << "the second load, refused";
    EXPECT_EQ(sent.back(), "DROP TABLE IF EXISTS DT6");
    EXPECT_TRUE(Disturbances().empty());
    EXPECT_TRUE(feedback().texts(2).empty()) << "the failed range says nothing";

    // Two rows for one load: the second leaves the first in DT6, and each row dumps the
    // whole table, so the load comes twice. A range of 5 covers nothing.
    reset();
    Inf(6, "N9", "", 0);
    Inf(6, "N9", "", 5);
    Load("ST_DIST_T6", t6,
         "(3,0,2,'S1','N9','',0.7,0.2,0.3,0,0,1,2),(3,0,2,'S2','N9','',0.6,0.1,0.1,0,0,3,4),"
         "(3,5,2,'S5','N9','',0.6,0.1,0.1,0,0,3,4)");
    EXPECT_EQ(CaseSetProbe::Disturbances(transfer), 0);
    const std::string n9 = B("N9");
    const std::string s1 = "S1|N9|N9|" + n9 + "|" + n9 + "|0|4|1|1|2|0.7|0.2|0.3|0";
    EXPECT_EQ(Disturbances(), (std::vector<std::string>{s1, s1}));

    // A zone (-2) and a voltage (-3) with one valid load each; a zone without one gives
    // nothing and no failure.
    reset();
    Exec("UPDATE CDB_BUSBAK SET Zone_No=9 WHERE Bus_Name='B13'");
    Exec("UPDATE CDB_BUSBAK SET Base_kV=110 WHERE Bus_Name='B12'");
    Inf(6, "9", "", -2);
    Inf(6, "100", "", -3);
    Inf(6, "8", "", -2);
    Load("ST_DIST_T6", t6,
         "(3,-2,1,'Z','9','',0.7,0.2,0.3,0,0,1,2),(3,-3,5,'KV','100','N1',0.7,0.2,0.3,0,0,1,0),"
         "(3,-2,1,'Z8','8','',0.7,0.2,0.3,0,0,1,2)");
    EXPECT_EQ(CaseSetProbe::Disturbances(transfer), 0);
    EXPECT_EQ(Disturbances(),
              (std::vector<std::string>{
                  "Z|N13|N13|" + B("N13") + "|" + B("N13") + "|-2|4|0|1|2|0.7|0.2|0.3|0",
                  "KV|N12|N1|" + B("N12") + "|" + B("N1") + "|-3|4|4|1|10|0.7|0.2|0.3|0"}));

    // A second zone row for the same load replaces the first through the unquoted delete,
    // which a text name fails: 2.
    reset();
    Inf(6, "9", "", -2);
    Load("ST_DIST_T6", t6,
         "(3,-2,1,'Z','9','',0.7,0.2,0.3,0,0,1,2),(3,-2,1,'Z2','9','',0.7,0.2,0.3,0,0,1,2)");
    StartStatementLog();
    EXPECT_EQ(CaseSetProbe::Disturbances(transfer), 1);
    EXPECT_EQ(SentStatements().rbegin()[1], "DELETE FROM DT6 WHERE Load_Name = N13");
    EXPECT_EQ(Disturbances().size(), 1u) << "the first row's dump stands";
}

class Outputs : public CaseSetTest
{
protected:
    static void Var(int type, int varId, const char* id, const char* i, const char* j, int idNo)
    {
        Exec(QString("INSERT INTO ST_VAR_INF (Case_No,Type,Coord_ID,Coord_Name,Coord_Mont,Var_ID,"
                     "ID_name,I_Name,J_Name,ID_No,Sub_Type,Var_Name) VALUES "
                     "(3,%1,%2+10,'C%2',%2+20,%2,'%3','%4','%5',%6,%1,'V%2')")
                 .arg(type)
                 .arg(varId)
                 .arg(id, i, j)
                 .arg(idNo));
    }
};

TEST_F(Outputs, SettingsVariablesAndAnalysisGroups)
{
    CaseRow("Ctrl_Fault=1");
    Exec("INSERT INTO ST_FAULT (Case_No,Valid,ID_Name,Name,Locate) VALUES (3,1,'L1','F1',50)");
    Exec("INSERT INTO ST_OUT (Case_No,AnaFunc,LAnaMon,Fault_120,Variable,Bus_120,B1,B2,B3,B10,"
         "MDTLF,MDTOUT,MDTFau,DTLF,DTOUT,DTFau,DTMON,DTMRef) VALUES "
         "(3,2,4,5,1,3,'','N3','NX','N14',6,7,8,0.01,0.02,0.03,0.04,0.05)");
    Exec("INSERT INTO L5_5 (ID_Name,Node_Name) VALUES ('GX','N7')");
    Exec("INSERT INTO L3_5 (ID_Name,I_Name,J_Name,Ntype) VALUES ('T3W','N7','N8',32)");
    Var(1, 2, "", "G2", "G404", 0);
    Var(1, 1, "", "GX", "", 0);
    Var(2, 1, "N3", "N3", "", 0);
    Var(12, 1, "N4", "N4", "", 0);
    Var(7, 1, "L1", "N1", "N2", 6);
    Var(7, 2, "S1", "N1", "N2", 8);
    Var(7, 3, "T1", "N4", "N7", 10);
    Var(7, 4, "P1", "N4", "N9", 11);
    Var(7, 5, "T3W", "N7", "N8", 12);
    Var(7, 6, "T3W", "N7", "N9", 12);
    Var(7, 7, "DC1", "N1", "N2", 7);
    for (int type : {8, 9, 10, 11, 13}) {
        Var(type, 1, "NEVER", "", "", 0);
    }
    Exec("INSERT INTO ST_ANACAL (Case_No,Valid,Grp_NO,Grp_Name,NumBus) VALUES (3,1,1,'G1',5),"
         "(3,0,2,'',0),(4,1,3,'OTHER',1)");
    Exec("INSERT INTO ST_ANA_GRP (Grp_NO,Bus_Name) VALUES (1,'B5'),(2,'NOPE'),(3,'B7')");

    CSTCaseDataTransfer transfer(kCase, db(), &rtdb());
    EXPECT_EQ(transfer.ImportSTCaseDataToRTDB(), 0);

    // Every field in its place; unknown and empty bus names give -1.
    const st_out o = All<st_out>().at(0);
    std::ostringstream out;
    for (double v :
         {0. + o.AnaFunc, 0. + o.LAnaMon, 0. + o.Fault_120, 0. + o.Variable, 0. + o.Bus_120,
          0. + o.B1, 0. + o.B2, 0. + o.B3, 0. + o.B4, 0. + o.B10, 0. + o.MDTLF, 0. + o.MDTOUT,
          0. + o.MDTFau, 0. + o.DTLF, 0. + o.DTOUT, 0. + o.DTFau, 0. + o.DTMON, 0. + o.DTMRef}) {
        out << static_cast<float>(v) << '|';
    }
    EXPECT_EQ(out.str(), "2|4|5|1|3|-1|" + B("N3") + "|-1|-1|" + B("N14") +
                             "|6|7|8|0.01|0.02|0.03|0.04|0.05|");

    // Types 1 to 7 and 12 in that order, each by Var_ID. Generator angles find their bus
    // through the load-flow case's generators (0 for an unknown one); branch outputs name
    // their record by kind, a three-winding one by its winding in the load-flow case.
    // Each as "Type:Var_ID:ID_name:I_No:J_No:Coord_ID:Coord_Mont:Coord_Name:Var_Name:Sub_Type".
    std::vector<std::string> vars;
    for (const stvar_inf& v : All<stvar_inf>()) {
        vars.push_back(std::to_string(v.Type) + ":" + std::to_string(v.Var_ID) + ":" + v.ID_name +
                       ":" + std::to_string(v.I_No) + ":" + std::to_string(v.J_No) + ":" +
                       std::to_string(v.Coord_ID) + ":" + std::to_string(v.Coord_Mont) + ":" +
                       v.Coord_Name + ":" + v.Var_Name + ":" + std::to_string(v.Sub_Type));
    }
    EXPECT_EQ(vars, (std::vector<std::string>{
                          "1:1::" + B("N7") + ":0:11:21:C1:V1:1",
                          "1:2::" + B("N2G") + ":0:12:22:C2:V2:1",
                          "2:1:N3:" + B("N3") + ":-1:11:21:C1:V1:2",
                          "7:1:L1_ac:" + B("N1") + ":" + B("N2") + ":11:21:C1:V1:7",
                          "7:2:S1_sc:" + B("N1") + ":" + B("N2") + ":12:22:C2:V2:7",
                          "7:3:T1_2w:" + B("N4") + ":" + B("N7") + ":13:23:C3:V3:7",
                          "7:4:P1_sf:" + B("N4") + ":" + B("N9") + ":14:24:C4:V4:7",
                          "7:5:T3W_3w2:" + B("N7") + ":" + B("N8") + ":15:25:C5:V5:7",
                          "7:6::" + B("N7") + ":" + B("N9") + ":16:26:C6:V6:7",
                          "7:7::" + B("N1") + ":" + B("N2") + ":17:27:C7:V7:7",
                          "12:1:N4:" + B("N4") + ":-1:11:21:C1:V1:12",
                      }));

    // NumBus is always 1; each group takes the buses of the first level, B1's and the
    // fault's new bus, whatever level it names.
    std::vector<std::string> groups;
    for (const stana_gi& g : All<stana_gi>()) {
        groups.push_back(std::string(g.Grp_Name) + ":" + std::to_string(g.NumBus));
    }
    for (const stana_grp& g : All<stana_grp>()) {
        groups.push_back(std::to_string(g.Grp_NO) + ":" + g.Bus_Name + ":" +
                         std::to_string(g.Bus_No));
    }
    EXPECT_EQ(groups,
              (std::vector<std::string>{"G1:1", ":1", "1:B1:-1", "1:F1:-1", "2:B1:-1", "2:F1:-1"}));

    // AnaFunc 1 and Variable 0 turn both off; without an ST_OUT row the old settings stay
    // while the variables are read as if turned on.
    Exec("UPDATE ST_OUT SET AnaFunc=1, Variable=0");
    EXPECT_EQ(transfer.ImportSTCaseDataToRTDB(), 0);
    EXPECT_EQ(Records(), "crit 0|fault 1|dist 0|out 1|var 0|gi 0|grp 0|case 2/0");
    Exec("DELETE FROM ST_OUT");
    EXPECT_EQ(transfer.ImportSTCaseDataToRTDB(), 1);
    EXPECT_EQ(feedback().texts(2), (std::vector<std::string>{"暂稳作业没有输出信息！"}));
    EXPECT_EQ(Records(), "crit 0|fault 1|dist 0|out 1|var 11|gi 2|grp 4|case 3/0");

    // A load-flow case without job tables: the lookups fail with their words, the rows
    // stand with what they have.
    Exec("UPDATE ST_CASE SET CASE_LF=99");
    CSTCaseDataTransfer lost(kCase, db(), &rtdb());
    feedback().clear();
    EXPECT_EQ(lost.ImportVAR_INFDataToRTDB(), 0);
    EXPECT_EQ(feedback().texts(2),
              (std::vector<std::string>{
                  "错误的发电机功角输出变量信息!", "错误的发电机功角输出变量信息!",
                  "错误的发电机功角输出变量信息!", "错误的发电机功角输出变量信息!",
                  "错误的三绕组支路输出变量信息!", "错误的三绕组支路输出变量信息!"}));
    EXPECT_EQ(All<stvar_inf>().size(), 11u);
    EXPECT_STREQ(All<stvar_inf>()[7].ID_name, "");
}
