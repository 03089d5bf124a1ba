#pragma once
// Statement templates and messages of the stability job's way into the real-time database
// (CSTCalDataToRTDB), as the transfer sends and shows them.

namespace strt {

// Job table names.
constexpr const char* S2_TABLE = "S2_%d";
constexpr const char* S3_TABLE = "S3_%d";
constexpr const char* S4_TABLE = "S4_%d";
constexpr const char* S5_TABLE = "S5_%d";
constexpr const char* S6_TABLE = "S6_%d";
constexpr const char* S7_TABLE = "S7_%d";

// One SELECT per job table. The DC line's has the table's name appended to it.
constexpr const char* SQL_S2_SELECT = "SELECT ID_Name,R0,X0,B0_Half,Ntype FROM %s ";
constexpr const char* SQL_S3_SELECT = "SELECT ID_Name,ZCtype,R0,X0,Ntype FROM %s ";
constexpr const char* SQL_S4_SELECT =
    "SELECT ID_Name,DC_Model,reg_type,reg_fon,reg_par,reg_set,Amax_D,Amin_D,Ireg_fon,Ireg_par,"
    "Ireg_set,Vreg_fon,Vreg_par,Vreg_set,Greg_fon,Greg_par,Greg_set,Bmax_D,Bmin_D,Im_Percent,"
    "Vlow_Perc,Idmax_kA,Idmin_kA,dKi_Perc,dKj_Perc,dTi_s,dTj_s,V_relay_Perc,T_relay,Type_fadc,"
    "K_fadc,Ts_fadc,Te_fadc,Tdo,Tda,Tdb,Tdc,N_rs,V_rs_Perc FROM ";
constexpr const char* SQL_S5_SELECT =
    "SELECT ID_Name,Gen_Model,Gen_Par,AVR_Model,AVR_Par,GOV_Model,GOV_Par,PSS_Model, PSS_Par,"
    "Rate_MVA,Rate_MW,Xdp,Xdpp,X2,Tj FROM %s ";
constexpr const char* SQL_S6_SELECT = "SELECT ID_Name,Load_Model,Load_Par,Z_Percent FROM %s ";
constexpr const char* SQL_S7_SELECT = "SELECT ID_Name,Model,Par_No,X_Fixed,Valid FROM %s ";

// Record queries: every family by "id =", the SVCs by their key field.
constexpr const char* QUERY_ID = "id =";
constexpr const char* QUERY_SVC = "id_name =";

// Real-time id suffixes by Ntype.
constexpr const char* ID_PLAIN = "%s";
constexpr const char* ID_AC = "%s_ac";
constexpr const char* ID_SC = "%s_sc";
constexpr const char* ID_2W = "%s_2w";
constexpr const char* ID_SF = "%s_sf";
constexpr const char* ID_3W1 = "%s_3w1";
constexpr const char* ID_3W2 = "%s_3w2";
constexpr const char* ID_3W3 = "%s_3w3";

// Not found, each with the name as the job table has it (no suffix).
constexpr const char* MSG_LN_MISSING = "实时数据库中没有id为'%s'的交流线或串联电容电抗器数据！";
constexpr const char* MSG_CP_MISSING = "实时数据库中没有id为'%s'的并联电容电抗器数据！";
constexpr const char* MSG_XF_MISSING = "实时数据库中没有id为'%s'的变压器数据！";
constexpr const char* MSG_DLN_MISSING = "实时数据库中没有id为'%s'的直流线数据！";
constexpr const char* MSG_UN_MISSING = "实时数据库中没有id为'%s'的发电机数据！";
constexpr const char* MSG_LD_MISSING = "实时数据库中没有id为'%s'的负荷数据！";
constexpr const char* MSG_SVC_MISSING = "实时数据库中没有id为'%s'的SVC数据！";

} // namespace strt
