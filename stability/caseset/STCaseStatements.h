#pragma once
// Statement templates and messages of the stability case set-up (CSTCaseDataTransfer),
// as the transfer sends and shows them. Their odd blanks, the missing FROM of the
// user-program select, the comma before WHERE of the run-state update and the unquoted
// name of the DT6 delete are part of them.

namespace stcase {

// Case tables.
constexpr const char* ST_CASE = "ST_CASE";
constexpr const char* ST_CRIT = "ST_CRIT";
constexpr const char* ST_FAULT = "ST_FAULT";
constexpr const char* ST_UDCAL = "ST_UDCAL";
constexpr const char* ST_UPCAL = "ST_UPCAL";
constexpr const char* ST_DIST_INF = "ST_DIST_INF";
constexpr const char* ST_DIST_T1 = "ST_DIST_T1";
constexpr const char* ST_DIST_T2 = "ST_DIST_T2";
constexpr const char* ST_DIST_T3 = "ST_DIST_T3";
constexpr const char* ST_DIST_T4 = "ST_DIST_T4";
constexpr const char* ST_DIST_T5 = "ST_DIST_T5";
constexpr const char* ST_DIST_T6 = "ST_DIST_T6";
constexpr const char* ST_DIST_T7 = "ST_DIST_T7";
constexpr const char* ST_DIST_T8 = "ST_DIST_T8";
constexpr const char* ST_DIST_T9 = "ST_DIST_T9";
constexpr const char* ST_DIST_T10 = "ST_DIST_T10";
constexpr const char* ST_OUT = "ST_OUT";
constexpr const char* ST_VAR_INF = "ST_VAR_INF";
constexpr const char* ST_ANACAL = "ST_ANACAL";
constexpr const char* ST_ANA_GRP = "ST_ANA_GRP";

// ---- The case, its criteria and faults ----
constexpr const char* SQL_CASE_LF = "SELECT Case_LF FROM %s WHERE Case_No=%d ";
constexpr const char* SQL_COUNTS_UPDATE = "UPDATE %s SET Nfault=%d,Ndist=%d WHERE Case_No=%d ";
constexpr const char* SQL_CASE_SELECT =
    "SELECT CASE_LF,ST_SC,T_Total,DT_Step,F60,EQ_Method,EQ_Continu,Ctrl_Fault,CTRL_UD,CTRL_DIST,"
    "UP_CAL, Calculate,UDOUT,CAL_DATE,CAL_TIME,UD_TIME,Nup,Nbus,Ngenerat,Nload,Nacline, Ndcline,"
    "Ntrans,Nsvc,Nfault,Ndist,Istable,Tstable,Note FROM %s WHERE Case_No = %d ";
constexpr const char* SQL_CRIT_SELECT =
    "SELECT Valid,Lstop,MaxDAng,MinVol,TDVol,MinFreq,TDFreq,NanaGrp,TSDAng,ID_Name1,ID_Name2, "
    "Gen_Name1,Gen_Name2,TSProny,TEProny,NDTProny FROM %s WHERE Case_No = %d ";
constexpr const char* SQL_CTRL_FAULT = "SELECT Ctrl_Fault FROM %s WHERE Case_No=%d ";
constexpr const char* SQL_FAULT_SELECT =
    "SELECT Valid,LinCal,ID_Name,I_Name,J_Name,ID_No,Locate,Name,A,B, C,Ground,Short,Open,"
    "T_Start,T_End,R_Fault,X_Fault FROM %s WHERE Case_No = %d ";

// The engine's run state back into the case row, in two pieces. The set list keeps the
// comma before WHERE, so the server refuses the statement.
constexpr const char* SQL_RUNSTATE_UPDATE = "UPDATE %s SET ";
constexpr const char* SQL_RUNSTATE_SET = " CALCULATE=%d,UDOUT=%d,CAL_Date='%s',CAL_Time='%s',"
                                         "UD_Time=%d,NUP=%d,WHERE Case_No=%d ";
// The set list as it was meant, sent only on request.
constexpr const char* SQL_RUNSTATE_SET_INTENDED =
    " CALCULATE=%d,UDOUT=%d,CAL_Date='%s',CAL_Time='%s',UD_Time=%d,NUP=%d WHERE Case_No=%d ";

constexpr const char* MSG_CASE_LF = "查询暂稳基于的潮流作业发生错误！";
constexpr const char* MSG_CASE_QUERY = "查询暂稳作业信息发生错误！";
constexpr const char* MSG_CASE_MISSING = "暂稳作业信息表中没有当前作业号的记录！";
constexpr const char* MSG_CASE_UPDATE = "更新暂稳作业信息发生错误！";
constexpr const char* MSG_CASE_STEP = "ImportCase_STDataToRTDB";
constexpr const char* MSG_CRIT_QUERY = "查询暂稳失稳判据信息发生错误！";
// The flag queries of faults, models, disturbances and outputs share this text.
constexpr const char* MSG_FLAG_QUERY = "查询暂稳输出信息发生错误！";
constexpr const char* MSG_FAULT_QUERY = "查询暂稳故障信息表发生错误！";
constexpr const char* MSG_FAULT_NO_BUS_NAME = "故障表%s中ID_Name=%s的支路的故障新增母线名为空！";
constexpr const char* MSG_RTDB_NO_CASE = "实时库中没有相应的暂稳作业信息！";

// ---- User-defined models and user programs ----
constexpr const char* SQL_CTRL_UD = "SELECT CTRL_UD FROM %s WHERE Case_No=%d ";
constexpr const char* SQL_UDCAL_SELECT =
    "SELECT Valid,Model_No,Par_No,Bus1,Bus2,Bus3,Bus4,ID_Name1,I1_Name,J1_Name,ID_No1,Side1,"
    "Locate1, Name_1,ID_Name2,I2_Name,J2_Name,ID_No2,Side2,Locate2,Name_2,ID_Name3,I3_Name,"
    "J3_Name,ID_No3, Side3,Locate3,Name_3,ID_Name4,I4_Name,J4_Name,ID_No4,Side4,Locate4,Name_4 "
    "FROM %s WHERE Case_No = %d ";
constexpr const char* SQL_UP_CAL = "SELECT UP_CAL FROM %s WHERE Case_No=%d ";
// No FROM: the server refuses it whenever the case asks for user programs.
constexpr const char* SQL_UPCAL_SELECT =
    "SELECT Valid,UP_Name,Par_No,Bus1,Bus2,Bus3,Bus4,ID_Name1,I1_Name,J1_Name,ID_No1, "
    "ID_Name2,I2_Name,J2_Name,ID_No2,ID_Name3,I3_Name,J3_Name,ID_No3,ID_Name4,I4_Name,J4_Name,"
    "ID_No4 %s WHERE Case_No = %d ";
// The same with its FROM, sent only on request.
constexpr const char* SQL_UPCAL_SELECT_INTENDED =
    "SELECT Valid,UP_Name,Par_No,Bus1,Bus2,Bus3,Bus4,ID_Name1,I1_Name,J1_Name,ID_No1, "
    "ID_Name2,I2_Name,J2_Name,ID_No2,ID_Name3,I3_Name,J3_Name,ID_No3,ID_Name4,I4_Name,J4_Name,"
    "ID_No4 FROM %s WHERE Case_No = %d ";

constexpr const char* MSG_UDCAL_QUERY = "查询暂稳UD信息表发生错误！";
constexpr const char* MSG_UPCAL_QUERY = "查询暂稳UP信息表发生错误！";
// The empty new-bus name of branch k of a user-defined model; the fourth repeats the
// second's text.
constexpr const char* MSG_UDCAL_NO_BUS_NAME[4] = {
    "暂稳自定义表中新增母线名1为空！",
    "暂稳自定义表中新增母线名2为空！",
    "暂稳自定义表中新增母线名3为空！",
    "暂稳自定义表中新增母线名2为空！",
};

// ---- Disturbances ----
constexpr const char* SQL_CTRL_DIST = "SELECT CTRL_DIST,T_Total FROM %s WHERE Case_No=%d ";
constexpr const char* SQL_DIST_INF_SELECT =
    "SELECT Type,Bus_Name,ID_Name,ID_No,I_Name,J_Name,Valid FROM %s WHERE Case_No = %d ";
constexpr const char* MSG_DIST_QUERY = "查询暂稳扰动信息发生错误！";

// The curves: one record per segment between two points.
constexpr const char* SQL_DIST_T1_SELECT =
    "SELECT ID_Name,Bus_Name,T_X,P_Y1,Q_Y2 FROM %s WHERE Case_No = %d AND Bus_Name='%s' "
    "ORDER BY T_X ";
constexpr const char* SQL_DIST_VCURVE_SELECT =
    "SELECT ID_Name,Bus_Name,T_X,V_Y FROM %s WHERE Case_No = %d AND Bus_Name='%s' ORDER BY T_X ";

// Types 4, 5, 7, 8 and 9: the design names their columns and which rows they take, not
// their statements. Each is composed in the manner of the curve and load selects: the
// detail table's columns in query order; the disturbance row's name tests joined by OR,
// in parentheses; rows by ID.
constexpr const char* SQL_DIST_T4_SELECT =
    "SELECT Gen_Name,ID_Name,I_Name,J_Name,ID_No,K_Ratio,PG0,T_Start,T_End FROM %s WHERE "
    "Case_No = %d AND (Gen_Name='%s' OR ID_Name='%s' ) ORDER BY ID ";
constexpr const char* SQL_DIST_T5_SELECT =
    "SELECT Sub_Type,ID_Name,Gen_Name,Ref_Name,V_Crit,K_Ratio,T_Delay,T_Start,T_End FROM %s "
    "WHERE Case_No = %d AND (Gen_Name='%s' OR ID_Name='%s' ) ORDER BY ID ";
constexpr const char* SQL_DIST_T7_SELECT =
    "SELECT Sub_Type,ID_No,ID_Name,I_Name,J_Name,V_Crit,K_Ratio,T_Delay,T_Start,T_End FROM %s "
    "WHERE Case_No = %d AND ((ID_No=%d AND I_Name='%s' AND J_Name='%s') OR ID_Name='%s' ) "
    "ORDER BY ID ";
constexpr const char* SQL_DIST_T8_SELECT =
    "SELECT ID_Name,Load_Name,P0,DPm,Omega,Angle,T_Start,T_End FROM %s WHERE Case_No = %d AND "
    "(Load_Name='%s' OR ID_Name='%s' ) ORDER BY ID ";
constexpr const char* SQL_DIST_T9_SELECT =
    "SELECT ID_Name,Gen_Name,V0,PG0,DVm,Omega,Angle,T_Start,T_End FROM %s WHERE Case_No = %d "
    "AND (Gen_Name='%s' OR ID_Name='%s' ) ORDER BY ID ";

// Type 6: the loads of a range gathered in the working table DT6, made and dropped for
// each disturbance row. The UNIQUE on ID_Name lets a range cover one load only.
constexpr const char* SQL_DT6_DROP_BEFORE = "DROP TABLE IF EXISTS DT6 ";
constexpr const char* SQL_DT6_CREATE =
    " CREATE TABLE DT6 (ID_Name CHAR(20) BINARY NOT NULL UNIQUE,Load_Name CHAR(20) BINARY NOT "
    "NULL UNIQUE,Nrange INT(2),Sub_Type INT(1),Ref_Name CHAR(20) BINARY DEFAULT '', V_Crit "
    "DOUBLE(10,5),K_Ratio DOUBLE(10,5),T_Delay DOUBLE(10,5),ID_No INT(6), T_Start "
    "DOUBLE(10,5),T_End DOUBLE(10,5), PRIMARY KEY(Load_Name) )";
constexpr const char* SQL_DT6_DROP_AFTER = " DROP TABLE IF EXISTS DT6 ";
constexpr const char* SQL_DIST_T6_SELECT =
    "SELECT Nrange,Sub_Type,ID_Name,Load_Name,Ref_Name,V_Crit,K_Ratio,T_Delay,ID_Branch,ID_No, "
    "T_Start,T_End FROM %s WHERE Case_No = %d AND (Load_Name='%s' AND Nrange=%d ) ORDER BY ID ";
constexpr const char* SQL_RANGE_ALL_LOADS = "SELECT DISTINCT Node_Name FROM L6_%d ";
constexpr const char* SQL_RANGE_ZONE =
    " SELECT DISTINCT CDB_LOADBAK.Node_Name From CDB_LOADBAK, CDB_BUSBAK,CDB_NODEBAK WHERE "
    "CDB_BUSBAK.Bus_Name =CDB_NODEBAK.Bus_Name AND CDB_LOADBAK.Node_Name=CDB_NODEBAK.Node_Name "
    "AND CDB_LOADBAK.Valid = 1 AND CDB_BUSBAK.Zone_No = %i ";
constexpr const char* SQL_RANGE_VOLTAGE =
    " SELECT DISTINCT CDB_LOADBAK.Node_Name From CDB_LOADBAK, CDB_BUSBAK,CDB_NODEBAK WHERE "
    "CDB_BUSBAK.Bus_Name=CDB_NODEBAK.Bus_Name AND CDB_NODEBAK.Node_Name = CDB_LOADBAK.Node_Name "
    "AND CDB_LOADBAK.Valid = 1 And ABS( CDB_BUSBAK.Base_kV - %s)/%s<0.2 ";
constexpr const char* SQL_DT6_FIND = "SELECT Nrange  FROM DT6  WHERE  Load_Name = '%s' ";
// The name stands unquoted: a name that is neither a number nor a column fails.
constexpr const char* SQL_DT6_DELETE = " DELETE FROM DT6 WHERE Load_Name = %s ";
constexpr const char* SQL_DT6_INSERT =
    "INSERT INTO DT6 (ID_Name,Load_Name,Nrange,Sub_Type,Ref_Name,V_Crit,K_Ratio,T_Delay,ID_No,"
    "T_Start,T_End) VALUES( '%s','%s',%i,%i,'%s',%f,%f,%f,%i,%f,%f )";
constexpr const char* SQL_DT6_DUMP =
    "SELECT Sub_Type,ID_Name,Load_Name,Ref_Name,Nrange,ID_No,V_Crit,K_Ratio,T_Delay,T_Start,"
    "T_End FROM DT6 ";
constexpr const char* MSG_DT6_CREATE = "创建临时表发生错误，导入dist_t6信息失败！";

// Per detail table: the message of a failed select and of a select with no row. Type 9
// shows type 8's failure text and type 10 type 3's.
constexpr const char* MSG_DIST_T1_QUERY = "查询暂稳扰动dist_t1信息发生错误！";
constexpr const char* MSG_DIST_T2_QUERY = "查询暂稳扰动dist_t2信息发生错误！";
constexpr const char* MSG_DIST_T3_QUERY = "查询暂稳扰动dist_t3信息发生错误！";
constexpr const char* MSG_DIST_T4_QUERY = "查询暂稳扰动dist_t4信息发生错误！";
constexpr const char* MSG_DIST_T5_QUERY = "查询暂稳扰动dist_t5信息发生错误！";
constexpr const char* MSG_DIST_T6_QUERY = "查询暂稳扰动dist_t6信息发生错误！";
constexpr const char* MSG_DIST_T7_QUERY = "查询暂稳扰动dist_t7信息发生错误！";
constexpr const char* MSG_DIST_T8_QUERY = "查询暂稳扰动dist_t8信息发生错误！";
constexpr const char* MSG_DIST_T9_QUERY = MSG_DIST_T8_QUERY;
constexpr const char* MSG_DIST_T10_QUERY = MSG_DIST_T3_QUERY;
constexpr const char* MSG_DIST_T1_NONE = "dist_inf表对应的暂稳扰动dist_t1信息不存在！";
constexpr const char* MSG_DIST_T2_NONE = "dist_inf表对应的暂稳扰动dist_t2信息不存在！";
constexpr const char* MSG_DIST_T3_NONE = "dist_inf表对应的暂稳扰动dist_t3信息不存在！";
constexpr const char* MSG_DIST_T4_NONE = "dist_inf表对应的暂稳扰动dist_t4信息不存在！";
constexpr const char* MSG_DIST_T5_NONE = "dist_inf表对应的暂稳扰动dist_t5信息不存在！";
constexpr const char* MSG_DIST_T7_NONE = "dist_inf表对应的暂稳扰动dist_t7信息不存在！";
constexpr const char* MSG_DIST_T8_NONE = "dist_inf表对应的暂稳扰动dist_t8信息不存在！";
constexpr const char* MSG_DIST_T9_NONE = "dist_inf表对应的暂稳扰动dist_t9信息不存在！";
constexpr const char* MSG_DIST_T10_NONE = "dist_inf表对应的暂稳扰动dist_t10信息不存在！";

// ---- Outputs and the automatic analysis ----
constexpr const char* SQL_OUT_SELECT =
    "SELECT AnaFunc,LAnaMon,Fault_120,Variable,Bus_120,B1,B2,B3,B4,B5,B6, B7,B8,B9,B10,MDTLF,"
    "MDTOUT,MDTFau,DTLF,DTOUT,DTFau, DTMON,DTMRef FROM %s WHERE Case_No = %d ";
constexpr const char* SQL_VARIABLE = "SELECT Variable FROM %s WHERE Case_No=%d ";
constexpr const char* SQL_VAR_INF_SELECT =
    "SELECT Coord_ID,Coord_Name,Coord_Mont,Var_ID,ID_name,I_Name,J_Name,ID_No,Sub_Type,Var_Name "
    "FROM %s WHERE Case_No = %d AND Type = %d ORDER BY Var_ID";
constexpr const char* SQL_GEN_NODE = "SELECT Node_Name FROM L5_%d WHERE ID_Name='%s' ";
constexpr const char* SQL_WINDING_NTYPE =
    "SELECT Ntype FROM L3_%d WHERE ID_Name='%s' AND I_Name='%s' AND J_Name='%s' ";
constexpr const char* SQL_ANAFUNC = "SELECT AnaFunc FROM %s WHERE Case_No=%d ";
constexpr const char* SQL_ANACAL_SELECT =
    "SELECT Valid,Grp_NO,Grp_Name,NumBus FROM %s WHERE Case_No = %d ";
constexpr const char* SQL_ANA_GRP_SELECT =
    "SELECT a.Grp_NO,a.Bus_Name  FROM %s a,%s b WHERE a.Grp_NO = b.Grp_NO AND b.Case_No = %d ";

// Real-time ids of branch outputs, by branch kind.
constexpr const char* ID_AC = "%s_ac";
constexpr const char* ID_SC = "%s_sc";
constexpr const char* ID_2W = "%s_2w";
constexpr const char* ID_SF = "%s_sf";
constexpr const char* ID_3W1 = "%s_3w1";
constexpr const char* ID_3W2 = "%s_3w2";
constexpr const char* ID_3W3 = "%s_3w3";

constexpr const char* MSG_OUT_MISSING = "暂稳作业没有输出信息！";
constexpr const char* MSG_VAR_INF_QUERY = "查询暂稳输出变量信息发生错误！";
constexpr const char* MSG_WINDING_QUERY = "错误的三绕组支路输出变量信息!";
constexpr const char* MSG_GEN_NODE_QUERY = "错误的发电机功角输出变量信息!";
constexpr const char* MSG_ANA_QUERY = "查询暂稳自动分析调用信息发生错误！";

} // namespace stcase
