#pragma once
// Statement templates and messages of the load-flow extraction (CLFCalDataTransfer),
// base database to job tables. Base tables are always named "%s%s" of the plain name and
// WORKING_COPY. Where a family's statement is given by its columns rather than as one
// text, the text below is this project's composition of those columns, in the job
// table's column order.

namespace lfx {

constexpr const char* WORKING_COPY = "BAK";

// ---- The object and the driver ----
constexpr const char* SQL_BASE_POWER = "SELECT Base_Mva FROM %s%s ";
constexpr const char* SQL_DELETE_JOB = "DELETE FROM %s_%d";
constexpr const char* MSG_DELETE_JOB = "%s_%d表可能不存在, 导入计算数据发生错误！";
constexpr const char* SQL_DROP_STALE_TMP = "DROP TABLE IF EXISTS tmp ";
constexpr const char* MSG_START = "基础库数据抽取开始...";
constexpr const char* MSG_DONE = "基础库数据抽取完成。";
constexpr const char* SQL_CASE_ROW = "SELECT Case_No FROM %s WHERE Case_No=0 ";
constexpr const char* SQL_CASE_INSERT = "INSERT INTO %s SET Case_No=0 ";
// A tab stands before Case_No.
constexpr const char* SQL_CASE_COUNTS = "UPDATE %s SET Nbus=%d,Ngenerat=%d,Nload=%d,Nacline=%d,"
                                        "Ndcline=%d,Ntrans=%d WHERE\tCase_No=%d ";
constexpr const char* MSG_CASE_COUNTS = "更新潮流作业表元件个数信息发生错误！";

// ---- The frame of a family and the scheme ----
constexpr const char* SQL_CREATE_TMP = "CREATE TABLE tmp ( ID int unsigned, INDEX(ID) )";
constexpr const char* SQL_DROP_TMP_RETRY = "drop TABLE tmp";
constexpr const char* SQL_DROP_TMP = "DROP TABLE tmp ";
constexpr const char* SQL_CLEAR_TMP = "DELETE FROM tmp ";
constexpr const char* MSG_DB_ERROR = "数据库操作发生错误！";
// The scheme picks one row per ID_Name: the highest group level, then the ID whose
// decimal text sorts highest.
constexpr const char* SQL_SCHEME =
    "INSERT INTO tmp SELECT 0+substring(MAX(CONCAT(LPAD(a.Nlever,3,'0'),b.ID)),4) FROM %s%s b,"
    "%s%s c,%s%s a where c.SchName='%s' AND a.IDSch=c.ID AND b.GrpName=a.GrpName GROUP BY "
    "b.ID_Name";
// The same with the source table composed beforehand (sub-operations of L2 and L3).
constexpr const char* SQL_SCHEME_SOURCE =
    "INSERT INTO tmp SELECT 0+substring(MAX(CONCAT(LPAD(a.Nlever,3,'0'),b.ID)),4) FROM %s b,"
    "%s%s c,%s%s a where c.SchName='%s' AND a.IDSch=c.ID AND b.GrpName=a.GrpName GROUP BY "
    "b.ID_Name";
constexpr const char* MSG_SCHEME = "按计算方案抽取数据发生错误！";
// Not the design's: a scheme name wider than the transfer holds is refused before anything.
constexpr const char* MSG_SCHEME_TOO_LONG =
    "计算方案名 %s 超过%d字节（汉字按2字节计），无法按方案抽取，作业表未作任何修改。";

// ---- Generators and loads ----
constexpr const char* SQL_L5_UNIT1 =
    "INSERT INTO %s SELECT %d,a.ID,a.ID_Name,a.PhyPos,a.Valid,a.Node_Name,a.Mode_Ctrl,a.Pg,a.Qg,"
    "a.V0,a.Angle,a.Qmax, a.Qmin,a.Pmax,a.Pmin,a.Par_Group,a.Bus_Ctrl,a.Line_Ctrl,a.Value_Ctrl "
    "FROM %s%s a,tmp WHERE a.ID=tmp.ID AND a.Unit=1 ";
constexpr const char* SQL_L5_UNIT0 =
    "INSERT INTO %s SELECT %d,a.ID,a.ID_Name,a.PhyPos,a.Valid,a.Node_Name,a.Mode_Ctrl,a.Pg/%f,"
    "a.Qg/%f,a.V0/c.Base_kV,a.Angle,a.Qmax/%f, a.Qmin/%f,a.Pmax/%f,a.Pmin/%f,a.Par_Group,"
    "a.Bus_Ctrl,a.Line_Ctrl,a.Value_Ctrl FROM %s%s a,tmp,%s%s c WHERE a.ID=tmp.ID AND "
    "a.Node_Name=c.Node_Name AND a.Unit=0 ";
constexpr const char* MSG_L5_UNIT0 = "按计算方案抽取发电机数据发生错误！";
constexpr const char* SQL_L6_UNIT1 =
    "INSERT INTO %s SELECT %d,a.ID,a.ID_Name,a.PhyPos,a.Valid,a.Node_Name,a.No_Load,a.Mode_Ctrl,"
    "a.Pl,a.Ql,a.V0,a.Angle,a.Qmax, a.Qmin,a.Pmax,a.Pmin,a.Par_Group,a.Bus_Ctrl,a.Line_Ctrl,"
    "a.Value_Ctrl FROM %s%s a,tmp WHERE a.ID=tmp.ID AND a.Unit=1 ";
// The node table stands in this mixed case as fixed text.
constexpr const char* SQL_L6_UNIT0 =
    "INSERT INTO %s SELECT %d,a.ID,a.ID_Name,a.PhyPos,a.Valid,a.Node_Name,a.No_Load,a.Mode_Ctrl,"
    "a.Pl/%f,a.Ql/%f,a.V0/c.Base_kV,a.Angle,a.Qmax/%f, a.Qmin/%f,a.Pmax/%f,a.Pmin/%f,"
    "a.Par_Group,a.Bus_Ctrl,a.Line_Ctrl,a.Value_Ctrl FROM %s%s a,tmp,CDB_NodeBAK c WHERE "
    "a.ID=tmp.ID AND a.Node_Name=c.Node_Name AND a.Unit=0 ";
constexpr const char* MSG_L6_UNIT0 = "按计算方案fuhe抽取数据发生错误！";

// ---- Breakers and switches ----
constexpr const char* SQL_LK_BREAKER =
    "INSERT INTO %s SELECT %d,a.ID,a.ID_Name,a.PhyPos,a.Valid,a.Lbreak,a.I_Name,a.J_Name,a.ID_No,"
    "1 FROM %s%s a,tmp WHERE a.ID=tmp.ID ";
constexpr const char* MSG_LK_BREAKER = "按计算方案抽取开关数据发生错误！";
constexpr const char* SQL_LK_SWITCH =
    "INSERT INTO %s SELECT %d,a.ID,a.ID_Name,a.PhyPos,a.Valid,a.Lbreak,a.I_Name,a.J_Name,a.ID_No,"
    "2 FROM %s%s a,tmp WHERE a.ID=tmp.ID ";
constexpr const char* MSG_LK_SWITCH = "按计算方案抽取刀闸数据发生错误！";

// ---- AC lines, series and shunt elements into L2 ----
// Arguments: job table, job number, [base power...], source, node table, bus table.
#define LFX_L2_TARGET                                                                              \
    "INSERT INTO %s(Case_No, EleID, ID_Name, Valid, I_Name, J_Name, ID_No, I_Break, J_Break, R1, " \
    "X1, B1_Half, Owner, Rate_Ka, Up_Limit, Mode_Ctrl, Par_No, Bus_Ctrl, Line_Ctrl, Value_Ctrl, "  \
    "Length_km, Type, Ntype) "
#define LFX_OWNER_JOIN                                                                             \
    " FROM %s a,%s%s c,%s%s b,tmp WHERE IF(a.owner,a.i_name,a.j_name)=c.Node_Name and "           \
    "b.Bus_Name=c.Bus_Name and a.id=tmp.id and "
#define LFX_NODE_JOIN                                                                              \
    " FROM %s a,%s%s c,%s%s b,tmp WHERE a.Node_Name=c.Node_Name and b.Bus_Name=c.Bus_Name and "   \
    "a.id=tmp.id and "
constexpr const char* SQL_L2_AC_UNIT1 =
    LFX_L2_TARGET "SELECT %d, a.id, a.ID_Name, a.Valid, a.I_Name, a.J_Name, a.ID_No, a.I_Break, "
                  "a.J_Break, a.R1, a.X1, a.B1_Half, b.Zone_No, a.Rate_Ka, a.Up_Limit, a.Mode_Ctrl, "
                  "a.Par_No, a.Bus_Ctrl, a.Line_Ctrl, a.Value_Ctrl, a.Length_km, a.Type, %d" LFX_OWNER_JOIN
                  "a.unit=1";
constexpr const char* SQL_L2_AC_UNIT0 =
    LFX_L2_TARGET "SELECT %d, a.id, a.ID_Name, a.Valid, a.I_Name, a.J_Name, a.ID_No, a.I_Break, "
                  "a.J_Break, a.R1/(b.Base_kV*b.Base_kV/%f), a.X1/(b.Base_kV*b.Base_kV/%f), "
                  "a.B1_Half*1.e-6*(b.Base_kV*b.Base_kV/%f), b.Zone_No, a.Rate_Ka, a.Up_Limit, "
                  "a.Mode_Ctrl, a.Par_No, a.Bus_Ctrl, a.Line_Ctrl, a.Value_Ctrl, a.Length_km, "
                  "a.Type, %d" LFX_OWNER_JOIN "a.unit=0";
constexpr const char* SQL_L2_SCR_UNIT1 =
    LFX_L2_TARGET "SELECT %d, a.id, a.ID_Name, a.Valid, a.I_Name, a.J_Name, a.ID_No, a.I_Break, "
                  "a.J_Break, a.R1, a.X1, 0, b.Zone_No, 0, 0, a.Mode_Ctrl, a.Par_No, a.Bus_Ctrl, "
                  "a.Line_Ctrl, a.Value_Ctrl, 0, a.Type, %d" LFX_OWNER_JOIN "a.unit=1";
constexpr const char* SQL_L2_SCR_UNIT0 =
    LFX_L2_TARGET "SELECT %d, a.id, a.ID_Name, a.Valid, a.I_Name, a.J_Name, a.ID_No, a.I_Break, "
                  "a.J_Break, a.R1/(b.Base_kV*b.Base_kV/%f), a.X1/(b.Base_kV*b.Base_kV/%f), 0, "
                  "b.Zone_No, 0, 0, a.Mode_Ctrl, a.Par_No, a.Bus_Ctrl, a.Line_Ctrl, a.Value_Ctrl, "
                  "0, a.Type, %d" LFX_OWNER_JOIN "a.unit=0";
constexpr const char* SQL_L2_PCR_UNIT1 =
    LFX_L2_TARGET "SELECT %d, a.id, a.ID_Name, a.Valid, a.Node_Name, a.Node_Name, a.ID_No, "
                  "a.Valid, a.Valid, a.R1, a.X1, 0, b.Zone_No, 0, 0, a.Mode_Ctrl, a.Par_No, "
                  "a.Bus_Ctrl, a.Line_Ctrl, a.Value_Ctrl, 0, a.Type, %d" LFX_NODE_JOIN "a.unit=1";
constexpr const char* SQL_L2_PCR_UNIT0 =
    LFX_L2_TARGET "SELECT %d, a.id, a.ID_Name, a.Valid, a.Node_Name, a.Node_Name, a.ID_No, "
                  "a.Valid, a.Valid, a.R1/(b.Base_kV*b.Base_kV/%f), "
                  "a.X1/(b.Base_kV*b.Base_kV/%f), 0, b.Zone_No, 0, 0, a.Mode_Ctrl, a.Par_No, "
                  "a.Bus_Ctrl, a.Line_Ctrl, a.Value_Ctrl, 0, a.Type, %d" LFX_NODE_JOIN "a.unit=0";
constexpr const char* MSG_L2_AC = "按计算方案抽取交流线数据发生错误！";
constexpr const char* MSG_L2_SCR = "按计算方案抽取串联电容电抗器数据发生错误！";
constexpr const char* MSG_L2_PCR = "按计算方案抽取并联电容电抗器数据发生错误！";

// ---- Transformers into L3 ----
#define LFX_L3_TARGET                                                                              \
    "INSERT INTO %s(Case_No, EleID, ID_Name, Valid, I_Name, J_Name, ID_No, R1, X1, Gm, Bm, Tk, "   \
    "Ang_Shift, Owner, Rate_MVA, Up_Limit, Mode_Ctrl, Par_No, Bus_Ctrl, Line_Ctrl, Value_Ctrl, "   \
    "TapMax1, TapMin1, Vstep_Tap1, V0_Tap1, P0_Tap1, Vpos_Tap1, TapMax2, TapMin2, Vstep_Tap2, "    \
    "V0_Tap2, P0_Tap2, Vpos_Tap2, Ntype) "
#define LFX_I_JOIN                                                                                 \
    " FROM %s a,%s%s c,%s%s b,tmp WHERE a.i_name=c.Node_Name and b.Bus_Name=c.Bus_Name and "      \
    "a.id=tmp.id and "
#define LFX_N_JOIN                                                                                 \
    " FROM %s a,%s%s c,%s%s b,tmp WHERE a.name_n=c.Node_Name and b.Bus_Name=c.Bus_Name and "      \
    "a.id=tmp.id and "
#define LFX_TAPS                                                                                   \
    "a.TapMax1, a.TapMin1, a.Vstep_Tap1, a.V0_Tap1, a.P0_Tap1, a.Vpos_Tap1, a.TapMax2, "          \
    "a.TapMin2, a.Vstep_Tap2, a.V0_Tap2, a.P0_Tap2, a.Vpos_Tap2, "
constexpr const char* SQL_L3_T2W_UNIT1 =
    LFX_L3_TARGET "SELECT %d, a.id, a.ID_Name, a.Valid, a.I_Name, a.J_Name, a.ID_No, a.R1, a.X1, "
                  "a.Gm, a.Bm, a.Tk, 0, b.Zone_No, a.Rate_MVA, a.Up_Limit, a.Mode_Ctrl, a.Par_No, "
                  "a.Bus_Ctrl, a.Line_Ctrl, a.Value_Ctrl, " LFX_TAPS "%d" LFX_I_JOIN "a.unit=1";
constexpr const char* SQL_L3_T2W_UNIT0 =
    LFX_L3_TARGET "SELECT %d, a.id, a.ID_Name, a.Valid, a.I_Name, a.J_Name, a.ID_No, "
                  "a.R1/(b.Base_kV*b.Base_kV/%f), a.X1/(b.Base_kV*b.Base_kV/%f), "
                  "a.Gm*1.0e-6*(b.Base_kV*b.Base_kV/%f), a.Bm*1.0e-6*(b.Base_kV*b.Base_kV/%f), "
                  "a.Tk, 0, b.Zone_No, a.Rate_MVA, a.Up_Limit, a.Mode_Ctrl, a.Par_No, a.Bus_Ctrl, "
                  "a.Line_Ctrl, a.Value_Ctrl, " LFX_TAPS "%d" LFX_I_JOIN "a.unit=0";
// A phase shifter's Bus_Ctrl is the empty string at Unit 1 and 0 at Unit 0; its
// Ang_Shift is written unqualified at Unit 0.
constexpr const char* SQL_L3_SHIFT_UNIT1 =
    LFX_L3_TARGET "SELECT %d, a.id, a.ID_Name, a.Valid, a.I_Name, a.J_Name, a.ID_No, a.R1, a.X1, "
                  "a.Gm, a.Bm, a.Tk, a.Ang_Shift, b.Zone_No, a.Rate_MVA, a.Up_Limit, a.Mode_Ctrl, "
                  "a.Par_No, '', a.Line_Ctrl, a.Pij_Ctrl, " LFX_TAPS "%d" LFX_I_JOIN "a.unit=1";
constexpr const char* SQL_L3_SHIFT_UNIT0 =
    LFX_L3_TARGET "SELECT %d, a.id, a.ID_Name, a.Valid, a.I_Name, a.J_Name, a.ID_No, "
                  "a.R1/(b.Base_kV*b.Base_kV/%f), a.X1/(b.Base_kV*b.Base_kV/%f), "
                  "a.Gm*1.0e-6*(b.Base_kV*b.Base_kV/%f), a.Bm*1.0e-6*(b.Base_kV*b.Base_kV/%f), "
                  "a.Tk, Ang_Shift, b.Zone_No, a.Rate_MVA, a.Up_Limit, a.Mode_Ctrl, a.Par_No, 0, "
                  "a.Line_Ctrl, a.Pij_Ctrl, " LFX_TAPS "%d" LFX_I_JOIN "a.unit=0";
// One statement pair per winding; '#' stands for the winding's number (1, 2, 3) and is
// replaced before formatting. Only the first winding carries Gm and Bm; each winding's
// own tap set goes into the second tap columns, the first stay 0.
constexpr const char* SQL_L3_T3W_UNIT1 =
    LFX_L3_TARGET "SELECT %d, a.id, a.ID_Name, a.Valid & a.Break_#, a.Name_N, a.Name_#, "
                  "a.ID_No#, a.R#, a.X#, %s, %s, a.Tk#, 0, b.Zone_No, a.Rate_MVA#, a.Up_Limit, "
                  "IF(a.Side_Ctrl=#,a.Mode_Ctrl,0), IF(a.Side_Ctrl=#,a.Par_No,0), "
                  "IF(a.Side_Ctrl=#,a.Bus_Ctrl,''), IF(a.Side_Ctrl=#,a.Line_Ctrl,0), "
                  "IF(a.Side_Ctrl=#,a.Value_Ctrl,0), 0, 0, 0, 0, 0, 0, a.TapMax#, a.TapMin#, "
                  "a.Vstep_Tap#, a.V0_Tap#, a.P0_Tap#, a.Vpos_Tap#, %d" LFX_N_JOIN "a.unit=1";
constexpr const char* SQL_L3_T3W_UNIT0 =
    LFX_L3_TARGET "SELECT %d, a.id, a.ID_Name, a.Valid & a.Break_#, a.Name_N, a.Name_#, "
                  "a.ID_No#, a.R#/(b.Base_kV*b.Base_kV/%f), a.X#/(b.Base_kV*b.Base_kV/%f), %s, "
                  "%s, a.Tk#, 0, b.Zone_No, a.Rate_MVA#, a.Up_Limit, "
                  "IF(a.Side_Ctrl=#,a.Mode_Ctrl,0), IF(a.Side_Ctrl=#,a.Par_No,0), "
                  "IF(a.Side_Ctrl=#,a.Bus_Ctrl,''), IF(a.Side_Ctrl=#,a.Line_Ctrl,0), "
                  "IF(a.Side_Ctrl=#,a.Value_Ctrl,0), 0, 0, 0, 0, 0, 0, a.TapMax#, a.TapMin#, "
                  "a.Vstep_Tap#, a.V0_Tap#, a.P0_Tap#, a.Vpos_Tap#, %d" LFX_N_JOIN "a.unit=0";
constexpr const char* T3W_GM_UNIT1 = "a.Gm";
constexpr const char* T3W_BM_UNIT1 = "a.Bm";
constexpr const char* T3W_GM_UNIT0 = "a.Gm*1.0e-6*(b.Base_kV*b.Base_kV/%f)";
constexpr const char* T3W_BM_UNIT0 = "a.Bm*1.0e-6*(b.Base_kV*b.Base_kV/%f)";
constexpr const char* MSG_L3_T2W = "按计算方案抽取两绕组变压器数据发生错误！";
constexpr const char* MSG_L3_SHIFT = "按计算方案抽取移相器变压器数据发生错误！";
constexpr const char* MSG_L3_T3W = "按计算方案抽取三绕组变压器数据发生错误！";

// ---- DC lines into L4: named units, no Unit test ----
constexpr const char* SQL_L4 =
    "INSERT INTO %s(Case_No, EleID, ID_Name, Valid, I_Name, J_Name, ID_No, Owner, Rpi_Ohm, "
    "Lpi_mH, Rpj_Ohm, Lpj_mH, Rl_Ohm, Ll_mH, Rei_Ohm, Rej_Ohm, Lsi_mH, Lsj_mH, OP_Mode, "
    "Vdrate_kV, Vd1_kV, Pd1_MW, A1min_D, A10_D, Gam1min_D, Gam10_D, Vd2_kV, Pd2_MW, A2min_D, "
    "A20_D, Gam2min_D, Gam20_D, Vhi_kV, Vli_kV, I_Bridge, Qci_Mvar, Sti_MVA, Rti_Ohm, Xti_Perc, "
    "Vtimax_kV, Vtimin_kV, I_Tap, Vhj_kV, Vlj_kV, J_Bridge, Qcj_Mvar, Stj_MVA, Rtj_Ohm, "
    "Xtj_Perc, Vtjmax_kV, Vtjmin_kV, J_Tap) SELECT %d, a.id, a.ID_Name, a.Valid, a.I_Name, "
    "a.J_Name, a.ID_No, b.Zone_No, a.Rpi_Ohm, a.Lpi_mH, a.Rpj_Ohm, a.Lpj_mH, a.Rl_Ohm, a.Ll_mH, "
    "a.Rei_Ohm, a.Rej_Ohm, a.Lsi_mH, a.Lsj_mH, a.OP_Mode, a.Vdrate_kV, a.Vd1_kV, a.Pd1_MW, "
    "a.A1min_D, a.A10_D, a.Gam1min_D, a.Gam10_D, a.Vd2_kV, a.Pd2_MW, a.A2min_D, a.A20_D, "
    "a.Gam2min_D, a.Gam20_D, a.Vhi_kV, a.Vli_kV, a.I_Bridge, a.Qci_Mvar, a.Sti_MVA, a.Rti_Ohm, "
    "a.Xti_Perc, a.Vtimax_kV, a.Vtimin_kV, a.I_Tap, a.Vhj_kV, a.Vlj_kV, a.J_Bridge, a.Qcj_Mvar, "
    "a.Stj_MVA, Rtj_Ohm, a.Xtj_Perc, a.Vtjmax_kV, a.Vtjmin_kV, a.J_Tap FROM %s%s a,%s%s c,%s%s b,"
    "tmp where IF(a.owner,a.i_name,a.j_name)=c.Node_Name and b.Bus_Name=c.Bus_Name and "
    "a.id=tmp.id";
constexpr const char* MSG_L4 = "按计算方案抽取直流线数据发生错误！";

// ---- The node table ----
constexpr const char* SQL_NODES_OF = "select Node_Name from %s_%d";
constexpr const char* SQL_ENDS_OF = "select I_Name,J_Name from %s_%d";
constexpr const char* SQL_CREATE_TNODE =
    "create temporary table Tnode(node_name char(20) binary, index(node_name))";
constexpr const char* MSG_TNODE = "ImportL1DataFromBaseDB: 无法创建表Tnode！";
constexpr const char* SQL_L1_FILL =
    "insert into %s(Case_No, EleID, Node_Name, Bus_Name, Zone_No, PS_Name, Base_kV, Vmax_kV, "
    "Vmin_kV, SC1_MVA, SC3_MVA, ISBus) select %d, a.id, a.Node_Name, a.Bus_Name, b.Zone_No, "
    "b.PS_Name, b.Base_kV, b.Vmax_kV, b.Vmin_kV, b.SC1_MVA, b.SC3_MVA, a.ISPhyBus from %s%s a, "
    "%s%s b, Tnode c where a.Bus_Name=b.Bus_Name and a.Node_Name=c.Node_Name";
constexpr const char* SQL_DROP_TNODE = "drop table Tnode";
constexpr const char* MSG_L1_SQL = "ImportL1DataFromBaseDB: 无法执行SQL语句 %s";

} // namespace lfx
