#pragma once
// Statement templates and messages of the load-flow job's way into the real-time
// database and back (CLFCalDataToRTDB), as the transfer sends and shows them. Their odd
// blanks are part of them.

namespace lfrt {

// Job table names.
constexpr const char* L1_TABLE = "L1_%d";
constexpr const char* L2_TABLE = "L2_%d";
constexpr const char* L3_TABLE = "L3_%d";
constexpr const char* L4_TABLE = "L4_%d";
constexpr const char* L5_TABLE = "L5_%d";
constexpr const char* L6_TABLE = "L6_%d";
constexpr const char* LK_TABLE = "LK_%d";

// ---- Into the real-time database: one SELECT per job table ----
constexpr const char* SQL_L1_SELECT = "SELECT Node_Name FROM %s ";
constexpr const char* SQL_L2_SELECT =
    "SELECT ID_Name,Valid,I_Name,J_Name,ID_No,I_Break,J_Break,R1,X1,B1_Half,Rate_Ka,Up_Limit, "
    "Mode_Ctrl,Par_No,Bus_Ctrl,Line_Ctrl,Value_Ctrl,Length_Km,Type,NType FROM %s ";
constexpr const char* SQL_L3_SELECT =
    "SELECT ID_Name,Valid,I_Name,J_Name,ID_No,R1,X1,Gm,Bm,Tk,Ang_Shift,Rate_MVA,Up_Limit, "
    "Mode_Ctrl,Par_No,Bus_Ctrl,Line_Ctrl,Value_Ctrl,NType,TapMax1,TapMin1,Vstep_Tap1,V0_Tap1,"
    "P0_Tap1,Vpos_Tap1, TapMax2,TapMin2,Vstep_Tap2,V0_Tap2,P0_Tap2,Vpos_Tap2 FROM %s ";
// The DC line's column list and its FROM are composed in two pieces.
constexpr const char* SQL_L4_SELECT =
    "SELECT ID_Name,Valid,Owner,Rpi_Ohm,Lpi_mH,Rpj_Ohm,Lpj_mH,Rl_Ohm,Ll_mH,Rei_Ohm,Rej_Ohm,"
    "Lsi_mH,Lsj_mH,OP_Mode,Vdrate_kV,Vd1_kV,Pd1_MW,A1min_D,A10_D,Gam1min_D,Gam10_D,Vd2_kV,"
    "Pd2_MW,A2min_D,A20_D,Gam2min_D,Gam20_D,Vhi_kV,Vli_kV,I_Bridge,Qci_Mvar,Sti_MVA,Rti_Ohm,"
    "Xti_Perc,Vtimax_kV,Vtimin_kV,I_Tap,Vhj_kV,Vlj_Kv,J_Bridge,Qcj_Mvar,Stj_MVA,Rtj_Ohm,"
    "Xtj_Perc,Vtjmax_kV,Vtjmin_kV,J_Tap ";
constexpr const char* SQL_L4_FROM = "FROM %s ";
constexpr const char* SQL_L5_SELECT =
    "SELECT ID_Name,Valid,Node_Name,Mode_Ctrl,Pg,Qg,V0,Angle,Qmax,Qmin,Pmax,Pmin,Par_Group,"
    "Bus_Ctrl, Line_Ctrl,Value_Ctrl FROM %s ";
constexpr const char* SQL_L6_SELECT =
    "SELECT ID_Name,Valid,Node_Name,No_Load,Mode_Ctrl,Pl,Ql,V0,Angle,Qmax,Qmin,Pmax,Pmin,"
    "Par_Group,Bus_Ctrl, Line_Ctrl,Value_Ctrl FROM %s ";
constexpr const char* SQL_LK_SELECT =
    "SELECT ID_Name,Valid,Lbreak,I_Name,J_Name,ID_No,Ntype FROM %s ";

// Real-time ids by family.
constexpr const char* ID_PLAIN = "%s";
constexpr const char* ID_AC = "%s_ac";
constexpr const char* ID_SC = "%s_sc";
constexpr const char* ID_2W = "%s_2w";
constexpr const char* ID_SF = "%s_sf";
constexpr const char* ID_3W1 = "%s_3w1";
constexpr const char* ID_3W2 = "%s_3w2";
constexpr const char* ID_3W3 = "%s_3w3";
constexpr const char* ID_BRK = "%s_brk";
constexpr const char* ID_SW = "%s_sw";

// Query messages (a failed SELECT) and not-found messages, level 2.
constexpr const char* MSG_L1_QUERY = "节点计算数据导入实时数据库发生错误！";
constexpr const char* MSG_L2_QUERY = "交流线计算数据导入实时数据库发生错误！";
constexpr const char* MSG_L3_QUERY = "变压器计算数据导入实时数据库发生错误！";
constexpr const char* MSG_L4_QUERY = "直流线计算数据导入实时数据库发生错误！";
constexpr const char* MSG_L5_QUERY = "发电机计算数据导入实时数据库发生错误！";
constexpr const char* MSG_L6_QUERY = "负荷计算数据导入实时数据库发生错误！";
constexpr const char* MSG_LK_QUERY = "开关刀闸计算数据导入实时数据库发生错误！";
constexpr const char* MSG_ND_MISSING = "实时数据库中没有id为'%s'的节点数据！";
constexpr const char* MSG_AC_MISSING = "实时数据库中没有id为'%s'的交流线数据！";
constexpr const char* MSG_SC_MISSING = "实时数据库中没有id为'%s'的串联电容电抗器数据！";
constexpr const char* MSG_CP_MISSING = "实时数据库中没有id为'%s'的并联电容电抗器数据！";
constexpr const char* MSG_XF_MISSING = "实时数据库中没有id为'%s'的变压器数据！";
constexpr const char* MSG_DLN_MISSING = "实时数据库中没有id为'%s'的直流线数据！";
constexpr const char* MSG_UN_MISSING = "实时数据库中没有id为'%s'的发电机数据！";
constexpr const char* MSG_LD_MISSING = "实时数据库中没有id为'%s'的负荷数据！";
constexpr const char* MSG_CB_MISSING = "实时数据库中没有id为'%s'的开关刀闸数据！";

// ---- Back into the job tables ----
constexpr const char* SQL_ALL_OUT = "UPDATE %s SET Valid = 0 ";
constexpr const char* SQL_LN_UPDATE =
    "UPDATE %s SET Valid=%d,I_Break = %d,J_Break=%d WHERE ID_Name='%s' AND NType=%d ";
constexpr const char* SQL_CP_UPDATE =
    "UPDATE %s SET Valid=%d,I_Break=%d,J_Break=%d WHERE ID_Name='%s' AND NType=%d ";
constexpr const char* SQL_XF_UPDATE = "UPDATE %s SET Valid=%d WHERE ID_Name='%s' AND NType=%d ";
constexpr const char* SQL_DLN_UPDATE = "UPDATE %s SET Valid=%d WHERE ID_Name='%s' ";
constexpr const char* SQL_UN_UPDATE =
    "UPDATE %s SET Valid=%d,Pg=%f,Qg=%f,V0=%f,Angle=%f WHERE ID_Name='%s' ";
constexpr const char* SQL_LD_UPDATE =
    "UPDATE %s SET Valid=%d,Pl=%f,Ql=%f,V0=%f,Angle=%f WHERE ID_Name='%s' ";
constexpr const char* SQL_CB_UPDATE =
    "UPDATE %s SET Valid=%d,Lbreak=%d WHERE ID_Name='%s' AND Ntype=%d ";

// ---- Back into the job tables in the batched write mode ----
// A family's records go into the temporary table TJobUpdate, keyed as the statements above
// match rows, the last record of a key replacing those before it (a load with REPLACE);
// then one update of the job table does what the blanket statement and the records'
// statements do: a row that a record names takes its values, every other row Valid 0. The
// work table lives in memory (its size allowed for the time of its creation), its name
// column takes the job table's own collation, so that names compare as the statements
// compare them, and its value columns the job table's own types, so that each value is
// converted once, as the statements' literals are. A name longer than its 64 characters
// cannot go this way (no job row holds one).
constexpr int BATCH_NAME_CHARS = 64;
constexpr long long BATCH_ROW_BYTES = 512; // a row of the work table in memory, with its key, at most
constexpr const char* SQL_NAME_COLLATION = "SHOW FULL COLUMNS FROM %s LIKE 'ID_Name'";
constexpr const char* SQL_HEAP_SIZE = "SELECT @@SESSION.max_heap_table_size";
constexpr const char* SQL_SET_HEAP_SIZE = "SET SESSION max_heap_table_size=%lld";
constexpr const char* SQL_BATCH_DROP = "DROP TEMPORARY TABLE IF EXISTS TJobUpdate";
constexpr const char* BATCH_TABLE = "TJobUpdate";
// Lines and shunts (one shape: the two statements differ in blanks only).
constexpr const char* SQL_BATCH_L2_CREATE =
    "CREATE TEMPORARY TABLE TJobUpdate (ID_Name VARCHAR(64) COLLATE %s NOT NULL, NType INT NOT "
    "NULL, PRIMARY KEY (ID_Name, NType)) ENGINE=MEMORY SELECT Valid, I_Break, J_Break FROM %s "
    "LIMIT 0";
constexpr const char* FLD_BATCH_L2 = "ID_Name,NType,Valid,I_Break,J_Break";
constexpr const char* ROW_BATCH_L2 = "'%s',%d,%d,%d,%d";
constexpr const char* SQL_BATCH_L2_UPDATE =
    "UPDATE %s a LEFT JOIN TJobUpdate b ON a.ID_Name=b.ID_Name AND a.NType=b.NType SET "
    "a.Valid=IF(b.NType IS NULL,0,b.Valid),a.I_Break=IF(b.NType IS NULL,a.I_Break,b.I_Break),"
    "a.J_Break=IF(b.NType IS NULL,a.J_Break,b.J_Break)";
constexpr const char* SQL_BATCH_L3_CREATE =
    "CREATE TEMPORARY TABLE TJobUpdate (ID_Name VARCHAR(64) COLLATE %s NOT NULL, NType INT NOT "
    "NULL, PRIMARY KEY (ID_Name, NType)) ENGINE=MEMORY SELECT Valid FROM %s LIMIT 0";
constexpr const char* FLD_BATCH_L3 = "ID_Name,NType,Valid";
constexpr const char* ROW_BATCH_L3 = "'%s',%d,%d";
constexpr const char* SQL_BATCH_L3_UPDATE =
    "UPDATE %s a LEFT JOIN TJobUpdate b ON a.ID_Name=b.ID_Name AND a.NType=b.NType SET "
    "a.Valid=IF(b.NType IS NULL,0,b.Valid)";
constexpr const char* SQL_BATCH_L4_CREATE =
    "CREATE TEMPORARY TABLE TJobUpdate (ID_Name VARCHAR(64) COLLATE %s NOT NULL, PRIMARY KEY "
    "(ID_Name)) ENGINE=MEMORY SELECT Valid FROM %s LIMIT 0";
constexpr const char* FLD_BATCH_L4 = "ID_Name,Valid";
constexpr const char* ROW_BATCH_L4 = "'%s',%d";
constexpr const char* SQL_BATCH_L4_UPDATE =
    "UPDATE %s a LEFT JOIN TJobUpdate b ON a.ID_Name=b.ID_Name SET "
    "a.Valid=IF(b.ID_Name IS NULL,0,b.Valid)";
// Generators and loads: the operating point as "%f" gives it.
constexpr const char* SQL_BATCH_L5_CREATE =
    "CREATE TEMPORARY TABLE TJobUpdate (ID_Name VARCHAR(64) COLLATE %s NOT NULL, PRIMARY KEY "
    "(ID_Name)) ENGINE=MEMORY SELECT Valid, Pg, Qg, V0, Angle FROM %s LIMIT 0";
constexpr const char* FLD_BATCH_L5 = "ID_Name,Valid,Pg,Qg,V0,Angle";
constexpr const char* ROW_BATCH_L56 = "'%s',%d,%f,%f,%f,%f";
constexpr const char* SQL_BATCH_L5_UPDATE =
    "UPDATE %s a LEFT JOIN TJobUpdate b ON a.ID_Name=b.ID_Name SET "
    "a.Valid=IF(b.ID_Name IS NULL,0,b.Valid),a.Pg=IF(b.ID_Name IS NULL,a.Pg,b.Pg),"
    "a.Qg=IF(b.ID_Name IS NULL,a.Qg,b.Qg),a.V0=IF(b.ID_Name IS NULL,a.V0,b.V0),"
    "a.Angle=IF(b.ID_Name IS NULL,a.Angle,b.Angle)";
constexpr const char* SQL_BATCH_L6_CREATE =
    "CREATE TEMPORARY TABLE TJobUpdate (ID_Name VARCHAR(64) COLLATE %s NOT NULL, PRIMARY KEY "
    "(ID_Name)) ENGINE=MEMORY SELECT Valid, Pl, Ql, V0, Angle FROM %s LIMIT 0";
constexpr const char* FLD_BATCH_L6 = "ID_Name,Valid,Pl,Ql,V0,Angle";
constexpr const char* SQL_BATCH_L6_UPDATE =
    "UPDATE %s a LEFT JOIN TJobUpdate b ON a.ID_Name=b.ID_Name SET "
    "a.Valid=IF(b.ID_Name IS NULL,0,b.Valid),a.Pl=IF(b.ID_Name IS NULL,a.Pl,b.Pl),"
    "a.Ql=IF(b.ID_Name IS NULL,a.Ql,b.Ql),a.V0=IF(b.ID_Name IS NULL,a.V0,b.V0),"
    "a.Angle=IF(b.ID_Name IS NULL,a.Angle,b.Angle)";
constexpr const char* SQL_BATCH_LK_CREATE =
    "CREATE TEMPORARY TABLE TJobUpdate (ID_Name VARCHAR(64) COLLATE %s NOT NULL, Ntype INT NOT "
    "NULL, PRIMARY KEY (ID_Name, Ntype)) ENGINE=MEMORY SELECT Valid, Lbreak FROM %s LIMIT 0";
constexpr const char* FLD_BATCH_LK = "ID_Name,Ntype,Valid,Lbreak";
constexpr const char* ROW_BATCH_LK = "'%s',%d,%d,%d";
constexpr const char* SQL_BATCH_LK_UPDATE =
    "UPDATE %s a LEFT JOIN TJobUpdate b ON a.ID_Name=b.ID_Name AND a.Ntype=b.Ntype SET "
    "a.Valid=IF(b.Ntype IS NULL,0,b.Valid),a.Lbreak=IF(b.Ntype IS NULL,a.Lbreak,b.Lbreak)";

// Warnings of the way back: a modal box captioned "warning".
constexpr const char* BOX_CAPTION = "warning";
constexpr const char* MSG_LN_UPDATE = "实时数据库数据更新线路计算数据表发生错误！";
constexpr const char* MSG_CP_UPDATE = "实时数据库数据更新并联电容电抗器计算数据表发生错误！";
constexpr const char* MSG_XF_UPDATE = "实时数据库数据更新变压器计算数据表发生错误！";
constexpr const char* MSG_DLN_UPDATE = "实时数据库数据更新直流线计算数据表发生错误！";
constexpr const char* MSG_UN_UPDATE = "实时数据库数据更新发电机计算数据表发生错误！";
constexpr const char* MSG_LD_UPDATE = "实时数据库数据更新负荷计算数据表发生错误！";
constexpr const char* MSG_CB_UPDATE = "实时数据库数据更新开关刀闸计算数据表发生错误！";

} // namespace lfrt
