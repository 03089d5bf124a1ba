#pragma once
// Statement templates and messages of the load-flow save-back (CLFCalDataTransfer), job
// tables back into the working copies. Some of them are not accepted by this server ("*/"
// in the transformer conversions, a missing comma in the phase-shifter updates, an index
// on no table, joins that name a table across a comma in their ON clause); they are kept
// as the design has them, and in the faithful mode (the default) the run stops where the
// server refuses one. Each refused statement that the run depends on has a `_MENDED`
// text beside it, sent in the mended mode, with a comment saying what differs.

namespace lfs {

constexpr double TOLERANCE = 0.0001;

// ---- The driver ----
constexpr const char* MSG_AC_COUNT = "回存交流线数目：%d";
constexpr const char* MSG_PCR_COUNT = "回存并联电容电抗器数目：%d";
constexpr const char* MSG_SCR_COUNT = "回存串联电容电抗器数目：%d";
constexpr const char* MSG_T2W_COUNT = "回存两绕组变压器数目：%d";
constexpr const char* MSG_SHIFT_COUNT = "回存移相变压器数目：%d";
constexpr const char* MSG_T3W_COUNT = "回存三绕组变压器数目：%d";
constexpr const char* MSG_DC_COUNT = "回存直连线数目：%d";
constexpr const char* MSG_GEN_COUNT = "回存发电机数目：%d";
constexpr const char* MSG_LOAD_COUNT = "回存负荷数目：%d";
constexpr const char* MSG_BRK_COUNT = "回存开关数目：%d";
constexpr const char* MSG_SW_COUNT = "回存刀闸数目：%d";
constexpr const char* MSG_TOTAL = "回存变化元件总数：%d";
constexpr const char* MSG_NEW_TOTAL = "回存新增元件总数：%d";
constexpr const char* SQL_ADD_GROUP = "insert into %s%s(GrpName) values('%s')";
constexpr const char* MSG_ADD_GROUP = "执行新增数据组 %s 出错！";
constexpr const char* MSG_SQL_FAIL = "Fail to execute SQL: %s";

// ---- New nodes of the orphans ----
constexpr const char* SQL_CREATE_TNODE =
    "create temporary table Tnode(node_name char(20) binary, index(node_name))";
constexpr const char* SQL_NEW_NODES =
    "INSERT INTO %s%s(Bus_Name, Node_Name, ISPhyBus,Base_kV, PS_Name) SELECT a.Bus_Name,"
    "a.Node_Name,a.IsBus,a.Base_kV,a.PS_Name FROM L1_%d a, Tnode b left join %s%s c on "
    "c.Node_Name=b.Node_Name WHERE a.Node_Name=b.Node_Name and c.id is null ";
// The ON clauses of the next three name `a` across the comma, which binds looser than the
// join on this server: refused as written.
constexpr const char* SQL_NEW_BUSES =
    "INSERT INTO %s%s(Bus_Name, PS_Name, Base_kV, Vmax_kV, Vmin_kV, SC1_MVA, SC3_MVA, HasNode) "
    "SELECT a.Bus_Name,a.PS_Name, a.Base_kV, a.Vmax_kV, a.Vmin_kV, a.SC1_MVA, a.SC3_MVA, "
    "(count(*)>0) FROM L1_%d a, Tnode b left join %s%s c on c.Bus_Name=a.Bus_Name WHERE "
    "a.Node_Name=b.Node_Name and c.id is null group by a.Bus_Name";
// Mended: "(L1_%d a, Tnode b)" in parentheses, the grouping the old servers gave the comma.
constexpr const char* SQL_NEW_BUSES_MENDED =
    "INSERT INTO %s%s(Bus_Name, PS_Name, Base_kV, Vmax_kV, Vmin_kV, SC1_MVA, SC3_MVA, HasNode) "
    "SELECT a.Bus_Name,a.PS_Name, a.Base_kV, a.Vmax_kV, a.Vmin_kV, a.SC1_MVA, a.SC3_MVA, "
    "(count(*)>0) FROM (L1_%d a, Tnode b) left join %s%s c on c.Bus_Name=a.Bus_Name WHERE "
    "a.Node_Name=b.Node_Name and c.id is null group by a.Bus_Name";
constexpr const char* SQL_NEW_STATIONS =
    "INSERT INTO %s%s(PS_Name, Zone_No) SELECT a.PS_Name, a.Zone_no FROM L1_%d a, Tnode b left "
    "join %s%s c on c.PS_Name=a.PS_Name WHERE a.Node_Name=b.Node_Name and c.id is null group "
    "by a.PS_Name";
// Mended: "(L1_%d a, Tnode b)" in parentheses.
constexpr const char* SQL_NEW_STATIONS_MENDED =
    "INSERT INTO %s%s(PS_Name, Zone_No) SELECT a.PS_Name, a.Zone_no FROM (L1_%d a, Tnode b) left "
    "join %s%s c on c.PS_Name=a.PS_Name WHERE a.Node_Name=b.Node_Name and c.id is null group "
    "by a.PS_Name";
constexpr const char* SQL_NEW_ZONES =
    "INSERT INTO %s%s(Area_No, Zone_No) SELECT 0, a.Zone_no FROM L1_%d a, Tnode b left join "
    "%s%s c on c.Zone_No=a.Zone_No WHERE a.Node_Name=b.Node_Name and c.id is null group by "
    "a.Zone_No";
// Mended: "(L1_%d a, Tnode b)" in parentheses.
constexpr const char* SQL_NEW_ZONES_MENDED =
    "INSERT INTO %s%s(Area_No, Zone_No) SELECT 0, a.Zone_no FROM (L1_%d a, Tnode b) left join "
    "%s%s c on c.Zone_No=a.Zone_No WHERE a.Node_Name=b.Node_Name and c.id is null group by "
    "a.Zone_No";
constexpr const char* SQL_DROP_TNODE = "drop table Tnode";

// The copy of whole base rows into the data group: the columns after GrpName, the group's
// name, the same columns prefixed by "a.", the working copy, then T twice, and a tail.
constexpr const char* SQL_COPY_INTO_GROUP =
    "insert into %s%s(GrpName, %s) select '%s', %s from %s%s a, %s where a.id=%s.eleid%s";

// Columns of the working copies, after GrpName, for the copies into a data group.
constexpr const char* COLS_ACLINE =
    "ID_Name, Valid, I_Name, J_Name, ID_No, I_Break, J_Break, Unit, R1, X1, B1_Half, R0, X0, "
    "B0_Half, Owner, Rate_Ka, Up_Limit, Length_Km, Type, R1_Ohm, X1_Ohm, B1_Siem, R0_Ohm, "
    "X0_Ohm, B0_Siem, Mode_Ctrl, Par_No, Bus_Ctrl, Line_Ctrl, Value_Ctrl, Phypno";
constexpr const char* COLS_SCAPREA =
    "ID_Name, PhyPos, Valid, I_Name, J_Name, ID_No, I_Break, J_Break, Unit, R1, X1, R0, X0, "
    "Owner, Type, Mode_Ctrl, Par_No, Bus_Ctrl, Line_Ctrl, Value_Ctrl, Phypno, Rate_Capa, Rate_V0";
constexpr const char* COLS_PCAPREA =
    "ID_Name, Valid, Node_Name, ID_No, Unit, R1, X1, R0, X0, Type, Mode_Ctrl, Par_No, Bus_Ctrl, "
    "Line_Ctrl, Value_Ctrl, Phypno, Rate_Capa, Rate_V0";
constexpr const char* COLS_TRANS_2W =
    "ID_Name, PhyPos, Valid, I_Name, J_Name, ID_No, I_Conn, J_Conn, Unit, R1, X1, Gm, Bm, Tk, "
    "Rate_MVA, Up_Limit, Mode_Ctrl, Par_No, Bus_Ctrl, Line_Ctrl, Value_Ctrl, Dps_KW, Vs_Perc, "
    "Dp0_KW, I0_Perc, TapMax1, TapMin1, P0_Tap1, Vstep_Tap1, V0_Tap1, Vpos_Tap1, TapMax2, "
    "TapMin2, P0_Tap2, Vstep_Tap2, V0_Tap2, Vpos_Tap2, Zero_Conn, R0, X0, Phypno";
constexpr const char* COLS_TRANS_3W =
    "ID_Name, PhyPos1, PhyPos2, PhyPos3, Valid, Name_1, Name_2, Name_3, Name_N, ID_No1, ID_No2, "
    "ID_No3, Break_1, Break_2, Break_3, Conn_1, Conn_2, Conn_3, Unit, R1, X1, R2, X2, R3, X3, "
    "Gm, Bm, Tk1, Tk2, Tk3, Rate_MVA1, Rate_MVA2, Rate_MVA3, Up_Limit, Side_Ctrl, Mode_Ctrl, "
    "Par_No, Bus_Ctrl, Line_Ctrl, Value_Ctrl, Dps12_KW, Dps23_KW, Dps31_KW, Vs12_Perc, "
    "Vs23_Perc, Vs31_Perc, Dp0_KW, I0_Perc, TapMax1, TapMin1, P0_Tap1, Vstep_Tap1, V0_Tap1, "
    "Vpos_Tap1, TapMax2, TapMin2, P0_Tap2, Vstep_Tap2, V0_Tap2, Vpos_Tap2, TapMax3, TapMin3, "
    "P0_Tap3, Vstep_Tap3, V0_Tap3, Vpos_Tap3, Zero_Conn1, R10, X10, Zero_Conn2, R20, X20, "
    "Zero_Conn3, R30, X30, Xz0, Phypno";
constexpr const char* COLS_DCLINE_VALUES =
    "Rpi_Ohm, Lpi_mH, Rpj_Ohm, Lpj_mH, Rl_Ohm, Ll_mH, Rei_Ohm, Rej_Ohm, Lsi_mH, Lsj_mH, OP_Mode, "
    "Vdrate_kV, Vd1_kV, Pd1_MW, A1min_D, A10_D, Gam1min_D, Gam10_D, Vd2_kV, Pd2_MW, A2min_D, "
    "A20_D, Gam2min_D, Gam20_D, Vhi_kV, Vli_kV, I_Bridge, Qci_Mvar, Sti_MVA, Rti_Ohm, Xti_Perc, "
    "Vtimax_kV, Vtimin_kV, I_Tap, Vhj_kV, Vlj_kV, J_Bridge, Qcj_Mvar, Stj_MVA, Rtj_Ohm, "
    "Xtj_Perc, Vtjmax_kV, Vtjmin_kV, J_Tap";
constexpr const char* COLS_DCLINE_STABILITY =
    "DC_Model, reg_type, reg_fon, reg_par, reg_set, Amax_D, Amin_D, Ireg_fon, Ireg_par, "
    "Ireg_set, Vreg_fon, Vreg_par, Vreg_set, Greg_fon, Greg_par, Greg_set, Bmax_D, Bmin_D, "
    "Im_Percent, Vlow_Perc, Idmax_kA, Idmin_kA, dKi_Perc, dKj_Perc, dTi_s, dTj_s, "
    "V_relay_Perc, T_relay, Type_fadc, K_fadc, Ts_fadc, Te_fadc, Tdo, Tda, Tdb, Tdc, N_rs, "
    "V_rs_Perc";

// ---- AC lines ----
constexpr const char* SQL_AC_ORPHANS =
    "Create temporary Table Tac select a.eleid, a.ID_Name, a.Valid, a.I_Name, a.J_Name, a.ID_No, "
    "a.I_Break, a.J_Break, a.R1, a.X1, a.B1_Half, a.Owner, a.Rate_Ka, a.Up_Limit, a.Length_Km, "
    "a.Type, a.Mode_Ctrl, a.Par_No, a.Bus_Ctrl, a.Line_Ctrl, a.Value_Ctrl from %s a left join "
    "%s%s b on b.id=a.eleid where a.Ntype=%d and b.id is null";
constexpr const char* MSG_AC_ORPHANS =
    "交流线作业数据中有 %d 条记录与基础库元件不对应, 被保存至数据组 %s 。";
constexpr const char* SQL_AC_ORPHAN_INSERT =
    "insert into %s%s(GrpName, ID_Name, Valid, I_Name, J_Name, ID_No, I_Break, J_Break, Unit, "
    "R1, X1, B1_Half, Owner, Rate_Ka, Up_Limit, Length_Km, Type, Mode_Ctrl, Par_No, Bus_Ctrl, "
    "Line_Ctrl, Value_Ctrl) select '%s', a.ID_Name, a.Valid, a.I_Name, a.J_Name, a.ID_No, "
    "a.I_Break, a.J_Break, 1, a.R1, a.X1, a.B1_Half, (a.Owner=b.Zone_no), a.Rate_Ka, "
    "a.Up_Limit, a.Length_Km, a.Type, a.Mode_Ctrl, a.Par_No, a.Bus_Ctrl, a.Line_Ctrl, "
    "a.Value_Ctrl from Tac a, %s%d b where b.Node_Name=a.I_Name";
constexpr const char* SQL_AC_NODES = "select I_Name, J_Name from Tac";
constexpr const char* SQL_AC_CLEAR = "delete from Tac";
constexpr const char* SQL_AC_CHANGED_UNIT1 =
    "insert into Tac(eleid, ID_Name,Valid,I_Name,J_Name,ID_No,I_Break,J_Break, R1, X1, B1_Half) "
    "select a.eleid, a.ID_Name, a.Valid, a.I_Name, a.J_Name, a.ID_No, a.I_Break, a.J_Break, "
    "a.R1, a.X1, a.B1_Half from %s a, %s%s b where b.id=a.eleid and a.Ntype=1 and b.unit=1 and "
    "(a.valid!=b.valid or a.I_Break!=b.I_Break or a.J_Break!=b.J_Break or abs(a.R1-b.R1)>%f or "
    "abs(a.X1-b.X1)>%f or abs(a.B1_Half-b.B1_Half)>%f)";
constexpr const char* SQL_AC_CHANGED_UNIT0 =
    "insert into Tac(eleid, ID_Name,Valid,I_Name,J_Name,ID_No,I_Break,J_Break, R1, X1, B1_Half) "
    "select a.eleid, a.ID_Name, a.Valid, a.I_Name, a.J_Name, a.ID_No, a.I_Break, a.J_Break, "
    "a.R1*(c.Base_kV*c.Base_kV/%f), a.X1*(c.Base_kV*c.Base_kV/%f), "
    "a.B1_Half*1.0e6/(c.Base_kV*c.Base_kV/%f) from %s a, %s%s b, L1_%d c where b.id=a.eleid "
    "and c.node_name=a.I_Name and a.Ntype=1 and b.unit=0 and (a.valid!=b.valid or "
    "a.I_Break!=b.I_Break or a.J_Break!=b.J_Break or abs(a.R1*(c.Base_kV*c.Base_kV/%f)-b.R1)>%f "
    "or abs(a.X1*(c.Base_kV*c.Base_kV/%f)-b.X1)>%f or "
    "abs(a.B1_Half*1.0e6/(c.Base_kV*c.Base_kV/%f)-b.B1_Half)>%f)";
constexpr const char* SQL_AC_IN_GROUP =
    "update %s%s a, Tac b set a.valid=b.valid, a.I_Break=b.I_Break, a.J_Break=b.J_Break, "
    "a.R1=b.R1, a.X1=b.X1, a.B1_Half=b.B1_Half where a.GrpName='%s' and a.ID_Name=b.ID_Name";
constexpr const char* SQL_AC_IN_PLACE =
    "update %s%s a, Tac b set a.valid=b.valid, a.I_Break=b.I_Break, a.J_Break=b.J_Break, "
    "a.R1=b.R1, a.X1=b.X1, a.B1_Half=b.B1_Half where a.id=b.eleid";
constexpr const char* SQL_AC_DROP = "drop table Tac";

// ---- Shunt capacitors and reactors ----
constexpr const char* SQL_PCR_ORPHANS =
    "Create temporary Table TPCR select a.eleid, a.ID_Name, (a.Valid & a.I_Break & a.J_Break) as "
    "valid, a.I_Name, a.ID_No, a.R1, a.X1, a.Type, a.Mode_Ctrl, a.Par_No, a.Bus_Ctrl, "
    "a.Line_Ctrl, a.Value_Ctrl from %s a left join %s%s b on b.id=a.eleid where a.Ntype=%d and "
    "b.id is null";
constexpr const char* MSG_PCR_ORPHANS =
    "并联电容电抗器作业数据中有 %d 条记录与基础库元件不对应, 被保存至数据组 %s 。";
constexpr const char* SQL_PCR_ORPHAN_INSERT =
    "insert into %s%s(GrpName, ID_Name, Valid, Node_Name, ID_No, Unit, R1, X1, Type, Mode_Ctrl, "
    "Par_No, Bus_Ctrl, Line_Ctrl, Value_Ctrl) select '%s', a.ID_Name, a.Valid, a.I_Name, "
    "a.ID_No, 1, a.R1, a.X1, a.Type, a.Mode_Ctrl, a.Par_No, a.Bus_Ctrl, a.Line_Ctrl, "
    "a.Value_Ctrl from TPCR a";
constexpr const char* SQL_PCR_NODES = "select I_Name from TPCR";
constexpr const char* SQL_PCR_CLEAR = "delete from TPCR";
constexpr const char* SQL_PCR_CHANGED_UNIT1 =
    "insert into TPCR(eleid, ID_Name,Valid,I_Name,ID_No, R1, X1) select a.eleid, a.ID_Name, "
    "a.Valid, a.I_Name, a.ID_No, a.R1, a.X1 from %s a, %s%s b where b.id=a.eleid and a.Ntype=3 "
    "and b.unit=1 and (a.valid!=b.valid or abs(a.R1-b.R1)>%f or abs(a.X1-b.X1)>%f)";
constexpr const char* SQL_PCR_CHANGED_UNIT0 =
    "insert into TPCR(eleid, ID_Name,Valid,I_Name,ID_No, R1, X1) select a.eleid, a.ID_Name, "
    "a.Valid, a.I_Name, a.ID_No, a.R1*(c.Base_kV*c.Base_kV/%f), a.X1*(c.Base_kV*c.Base_kV/%f) "
    "from %s a, %s%s b, L1_%d c where b.id=a.eleid and c.node_name=a.I_Name and a.Ntype=3 and "
    "b.unit=0 and (a.valid!=b.valid or abs(a.R1*(c.Base_kV*c.Base_kV/%f)-b.R1)>%f or "
    "abs(a.X1*(c.Base_kV*c.Base_kV/%f)-b.X1)>%f)";
constexpr const char* SQL_PCR_IN_GROUP =
    "update %s%s a, TPCR b set a.valid=b.valid, a.R1=b.R1, a.X1=b.X1 where a.GrpName='%s' and "
    "a.ID_Name=b.ID_Name";
constexpr const char* SQL_PCR_IN_PLACE =
    "update %s%s a, TPCR b set a.valid=b.valid, a.R1=b.R1, a.X1=b.X1 where a.id=b.eleid";
constexpr const char* SQL_PCR_DROP = "drop table TPCR";

// ---- Series capacitors and reactors ----
constexpr const char* SQL_SCR_ORPHANS =
    "Create temporary Table TSCR select a.eleid, a.ID_Name, a.Valid, a.I_Name, a.J_Name, "
    "a.ID_No, a.I_Break, a.J_Break, a.R1, a.X1, a.Owner, a.Type, a.Mode_Ctrl, a.Par_No, "
    "a.Bus_Ctrl, a.Line_Ctrl, a.Value_Ctrl from %s a left join %s%s b on b.id=a.eleid where "
    "a.Ntype=%d and b.id is null";
constexpr const char* MSG_SCR_ORPHANS =
    "串联电容电抗器作业数据中有 %d 条记录与基础库元件不对应, 被保存至数据组 %s 。";
constexpr const char* SQL_SCR_ORPHAN_INSERT =
    "insert into %s%s(GrpName, ID_Name, Valid, I_Name, J_Name, ID_No, I_Break, J_Break, Unit, "
    "R1, X1, Owner, Type, Mode_Ctrl, Par_No, Bus_Ctrl, Line_Ctrl, Value_Ctrl) select '%s', "
    "a.ID_Name, a.Valid, a.I_Name, a.J_Name, a.ID_No, a.I_Break, a.J_Break, 1, a.R1, "
    "a.X1,(a.Owner=b.Zone_no), a.Type, a.Mode_Ctrl, a.Par_No, a.Bus_Ctrl, a.Line_Ctrl, "
    "a.Value_Ctrl from TSCR a, %s%d b where b.Node_Name=a.I_Name";
constexpr const char* SQL_SCR_NODES = "select I_Name, J_Name from TSCR";
constexpr const char* SQL_SCR_CLEAR = "delete from TSCR";
constexpr const char* SQL_SCR_CHANGED_UNIT1 =
    "insert into TSCR(eleid, ID_Name,Valid,I_Name,J_Name,ID_No,I_Break,J_Break, R1, X1) select "
    "a.eleid, a.ID_Name, a.Valid, a.I_Name, a.J_Name, a.ID_No, a.I_Break, a.J_Break, a.R1, a.X1 "
    "from %s a, %s%s b where b.id=a.eleid and a.Ntype=2 and b.unit=1 and (a.valid!=b.valid or "
    "a.I_Break!=b.I_Break or a.J_Break!=b.J_Break or abs(a.R1-b.R1)>%f or abs(a.X1-b.X1)>%f)";
constexpr const char* SQL_SCR_CHANGED_UNIT0 =
    "insert into TSCR(eleid, ID_Name,Valid,I_Name,J_Name,ID_No,I_Break,J_Break, R1, X1) select "
    "a.eleid, a.ID_Name, a.Valid, a.I_Name, a.J_Name, a.ID_No, a.I_Break, a.J_Break, "
    "a.R1*(c.Base_kV*c.Base_kV/%f), a.X1*(c.Base_kV*c.Base_kV/%f) from %s a, %s%s b, L1_%d c "
    "where b.id=a.eleid and c.node_name=a.I_Name and a.Ntype=2 and b.unit=0 and "
    "(a.valid!=b.valid or a.I_Break!=b.I_Break or a.J_Break!=b.J_Break or "
    "abs(a.R1*(c.Base_kV*c.Base_kV/%f)-b.R1)>%f or abs(a.X1*(c.Base_kV*c.Base_kV/%f)-b.X1)>%f)";
constexpr const char* SQL_SCR_IN_GROUP =
    "update %s%s a, TSCR b set a.valid=b.valid, a.I_Break=b.I_Break, a.J_Break=b.J_Break, "
    "a.R1=b.R1, a.X1=b.X1 where a.GrpName='%s' and a.ID_Name=b.ID_Name";
constexpr const char* SQL_SCR_IN_PLACE =
    "update %s%s a, TSCR b set a.valid=b.valid, a.I_Break=b.I_Break, a.J_Break=b.J_Break, "
    "a.R1=b.R1, a.X1=b.X1 where a.id=b.eleid";
constexpr const char* SQL_SCR_DROP = "drop table TSCR";

// ---- Two-winding transformers and phase shifters ('#' stands for the table name) ----
constexpr const char* SQL_XF_ORPHANS =
    "Create temporary Table # select a.EleID, a.ID_Name, a.Valid, a.I_Name, a.J_Name, a.ID_No, "
    "a.Owner, a.R1, a.X1, a.Gm, a.Bm, a.Tk, a.Ang_Shift, a.Rate_MVA, a.Up_Limit, a.Mode_Ctrl, "
    "a.Par_No, a.Bus_Ctrl, a.Line_Ctrl, a.Value_Ctrl, a.TapMax1, a.TapMin1, a.Vstep_Tap1, "
    "a.V0_Tap1, a.P0_Tap1, a.Vpos_Tap1, a.TapMax2, a.TapMin2, a.Vstep_Tap2, a.V0_Tap2, "
    "a.P0_Tap2, a.Vpos_Tap2 from %s a left join %s%s b on b.id=a.eleid where a.Ntype=%d and "
    "b.id is null";
constexpr const char* MSG_T2W_ORPHANS =
    "两绕组变压器作业数据中有 %d 条记录与基础库元件不对应, 被保存至数据组 %s 。";
constexpr const char* MSG_SHIFT_ORPHANS =
    "移相变压器作业数据中有 %d 条记录与基础库元件不对应, 被保存至数据组 %s 。";
constexpr const char* SQL_T2W_ORPHAN_INSERT =
    "insert into %s%s(GrpName, ID_Name, Valid, I_Name, J_Name, ID_No, Unit, R1, X1, Gm, Bm, Tk, "
    "Rate_MVA, Up_Limit, Mode_Ctrl, Par_No, Bus_Ctrl, Line_Ctrl, Value_Ctrl, TapMax1, TapMin1, "
    "P0_Tap1, Vstep_Tap1, V0_Tap1, Vpos_Tap1, TapMax2, TapMin2, P0_Tap2, Vstep_Tap2, V0_Tap2, "
    "Vpos_Tap2) select '%s', a.ID_Name, a.Valid, a.I_Name, a.J_Name, a.ID_No, 1, a.R1, a.X1, "
    "a.Gm, a.Bm, a.Tk, a.Rate_MVA, a.Up_Limit, a.Mode_Ctrl, a.Par_No, a.Bus_Ctrl, a.Line_Ctrl, "
    "a.Value_Ctrl, a.TapMax1, a.TapMin1, a.P0_Tap1, a.Vstep_Tap1, a.V0_Tap1, a.Vpos_Tap1, "
    "a.TapMax2, a.TapMin2, a.P0_Tap2, a.Vstep_Tap2, a.V0_Tap2, a.Vpos_Tap2 from T2W a";
constexpr const char* SQL_SHIFT_ORPHAN_INSERT =
    "insert into %s%s(GrpName, ID_Name, Valid, I_Name, J_Name, ID_No, Unit, R1, X1, Gm, Bm, Tk, "
    "Ang_Shift, Rate_MVA, Up_Limit, Mode_Ctrl, Par_No, Line_Ctrl, Pij_Ctrl, TapMax1, TapMin1, "
    "P0_Tap1, Vstep_Tap1, V0_Tap1, Vpos_Tap1, TapMax2, TapMin2, P0_Tap2, Vstep_Tap2, V0_Tap2, "
    "Vpos_Tap2) select '%s', a.ID_Name, a.Valid, a.I_Name, a.J_Name, a.ID_No, 1, a.R1, a.X1, "
    "a.Gm, a.Bm, a.Tk, a.Ang_Shift, a.Rate_MVA, a.Up_Limit, a.Mode_Ctrl, a.Par_No, a.Line_Ctrl, "
    "a.Value_Ctrl, a.TapMax1, a.TapMin1, a.P0_Tap1, a.Vstep_Tap1, a.V0_Tap1, a.Vpos_Tap1, "
    "a.TapMax2, a.TapMin2, a.P0_Tap2, a.Vstep_Tap2, a.V0_Tap2, a.Vpos_Tap2 from TShift a";
constexpr const char* SQL_XF_NODES = "select I_Name, J_Name from #";
constexpr const char* SQL_XF_CLEAR = "delete from #";
constexpr const char* SQL_XF_CHANGED_UNIT1 =
    "insert into #(eleid, ID_Name,Valid,I_Name,J_Name,ID_No,R1, X1, Gm, Bm, Tk) select a.eleid, "
    "a.ID_Name, a.Valid, a.I_Name, a.J_Name, a.ID_No, a.R1, a.X1, a.Gm, a.Bm, a.Tk from %s a, "
    "%s%s b where b.id=a.eleid and a.Ntype=%d and b.unit=1 and (a.valid!=b.valid or "
    "abs(a.R1-b.R1)>%f or abs(a.X1-b.X1)>%f or abs(a.Gm-b.Gm)>%f or abs(a.Bm-b.Bm)>%f or "
    "abs(a.Tk-b.Tk)>%f)";
// "*/" as the design writes it: this server refuses the statement.
constexpr const char* SQL_XF_CHANGED_UNIT0 =
    "insert into #(eleid, ID_Name,Valid,I_Name,J_Name,ID_No,R1, X1, Gm, Bm, Tk) select a.eleid, "
    "a.ID_Name, a.Valid, a.I_Name, a.J_Name, a.ID_No, a.R1*(c.Base_kV*c.Base_kV/%f), "
    "a.X1*(c.Base_kV*c.Base_kV/%f), a.Gm*1.0e6*/(c.Base_kV*c.Base_kV/%f), "
    "a.Bm*1.0e6*/(c.Base_kV*c.Base_kV/%f), a.Tk from %s a, %s%s b, L1_%d c where b.id=a.eleid "
    "and c.node_name=a.I_Name and a.Ntype=%d and b.unit=0 and (a.valid!=b.valid or "
    "abs(a.R1*(c.Base_kV*c.Base_kV/%f)-b.R1)>%f or abs(a.X1*(c.Base_kV*c.Base_kV/%f)-b.X1)>%f or "
    "abs(a.Gm*1.0e6*/(c.Base_kV*c.Base_kV/%f)-b.Gm)>%f or "
    "abs(a.Bm*1.0e6*/(c.Base_kV*c.Base_kV/%f)-b.Bm)>%f or abs(a.Tk-b.Tk)>%f )";
// Mended: "a.Gm*1.0e6/(...)" and "a.Bm*1.0e6/(...)", value * 1.0e6 / Zb, in all four places.
constexpr const char* SQL_XF_CHANGED_UNIT0_MENDED =
    "insert into #(eleid, ID_Name,Valid,I_Name,J_Name,ID_No,R1, X1, Gm, Bm, Tk) select a.eleid, "
    "a.ID_Name, a.Valid, a.I_Name, a.J_Name, a.ID_No, a.R1*(c.Base_kV*c.Base_kV/%f), "
    "a.X1*(c.Base_kV*c.Base_kV/%f), a.Gm*1.0e6/(c.Base_kV*c.Base_kV/%f), "
    "a.Bm*1.0e6/(c.Base_kV*c.Base_kV/%f), a.Tk from %s a, %s%s b, L1_%d c where b.id=a.eleid "
    "and c.node_name=a.I_Name and a.Ntype=%d and b.unit=0 and (a.valid!=b.valid or "
    "abs(a.R1*(c.Base_kV*c.Base_kV/%f)-b.R1)>%f or abs(a.X1*(c.Base_kV*c.Base_kV/%f)-b.X1)>%f or "
    "abs(a.Gm*1.0e6/(c.Base_kV*c.Base_kV/%f)-b.Gm)>%f or "
    "abs(a.Bm*1.0e6/(c.Base_kV*c.Base_kV/%f)-b.Bm)>%f or abs(a.Tk-b.Tk)>%f )";
constexpr const char* SQL_T2W_IN_GROUP =
    "update %s%s a, T2W b set a.valid=b.valid, a.R1=b.R1, a.X1=b.X1, a.Gm=b.Gm, a.Bm=b.Bm, "
    "a.Tk=b.Tk where a.GrpName='%s' and a.ID_Name=b.ID_Name";
constexpr const char* SQL_T2W_IN_PLACE =
    "update %s%s a, T2W b set a.valid=b.valid, a.R1=b.R1, a.X1=b.X1, a.Gm=b.Gm, a.Bm=b.Bm, "
    "a.Tk=b.Tk where a.id=b.eleid";
constexpr const char* SQL_SHIFT_COPY =
    "insert into %s%s(GrpName, ID_Name, PhyPos, Valid, I_Name, J_Name, ID_No, I_Conn, J_Conn, "
    "Unit, R1, X1, Gm, Bm, Tk, Rate_MVA, Up_Limit, Mode_Ctrl, Par_No, Line_Ctrl, Pij_Ctrl, "
    "Dps_KW, Vs_Perc, Dp0_KW, I0_Perc, TapMax1, TapMin1, P0_Tap1, Vstep_Tap1, V0_Tap1, "
    "Vpos_Tap1, TapMax2, TapMin2, P0_Tap2, Vstep_Tap2, V0_Tap2, Vpos_Tap2, Zero_Conn, R0, X0, "
    "Phypno) select '%s', a.ID_Name, a.PhyPos, a.Valid, a.I_Name, a.J_Name, a.ID_No, a.I_Conn, "
    "a.J_Conn, a.Unit, a.R1, a.X1, a.Gm, a.Bm, a.Tk, a.Rate_MVA, a.Up_Limit, a.Mode_Ctrl, "
    "a.Par_No, a.Line_Ctrl, a.Pij_Ctrl, a.Dps_KW, a.Vs_Perc, a.Dp0_KW, a.I0_Perc, a.TapMax1, "
    "a.TapMin1, a.P0_Tap1, a.Vstep_Tap1, a.V0_Tap1, a.Vpos_Tap1, a.TapMax2, a.TapMin2, "
    "a.P0_Tap2, a.Vstep_Tap2, a.V0_Tap2, a.Vpos_Tap2, a.Zero_Conn, a.R0, a.X0, a.Phypno from "
    "%s%s a, TShift where a.id=TShift.eleid";
// No comma between a.Bm=b.Bm and a.Tk=b.Tk, as the design writes it.
constexpr const char* SQL_SHIFT_IN_GROUP =
    "update %s%s a, TShift b set a.valid=b.valid, a.R1=b.R1, a.X1=b.X1, a.Gm=b.Gm, a.Bm=b.Bm "
    "a.Tk=b.Tk where a.GrpName='%s' and a.ID_Name=b.ID_Name";
// Mended: "a.Bm=b.Bm, a.Tk=b.Tk", with the comma.
constexpr const char* SQL_SHIFT_IN_GROUP_MENDED =
    "update %s%s a, TShift b set a.valid=b.valid, a.R1=b.R1, a.X1=b.X1, a.Gm=b.Gm, a.Bm=b.Bm, "
    "a.Tk=b.Tk where a.GrpName='%s' and a.ID_Name=b.ID_Name";
constexpr const char* SQL_SHIFT_IN_PLACE =
    "update %s%s a, TShift b set a.valid=b.valid, a.R1=b.R1, a.X1=b.X1, a.Gm=b.Gm, a.Bm=b.Bm "
    "a.Tk=b.Tk where a.id=b.eleid";
// Mended: "a.Bm=b.Bm, a.Tk=b.Tk", with the comma.
constexpr const char* SQL_SHIFT_IN_PLACE_MENDED =
    "update %s%s a, TShift b set a.valid=b.valid, a.R1=b.R1, a.X1=b.X1, a.Gm=b.Gm, a.Bm=b.Bm, "
    "a.Tk=b.Tk where a.id=b.eleid";
constexpr const char* SQL_XF_DROP = "drop table #";

// ---- Three-winding transformers ----
constexpr const char* SQL_T3W_ORPHANS =
    "Create temporary Table T3W select a.EleID, a.ID_Name, a.Valid, a.I_Name, a.J_Name, a.ID_No, "
    "a.Ntype, a.R1, a.X1, a.Gm, a.Bm, a.Tk, a.Ang_Shift, a.Rate_MVA, a.Up_Limit, a.Mode_Ctrl, "
    "a.Par_No, a.Bus_Ctrl, a.Line_Ctrl, a.Value_Ctrl, a.TapMax1, a.TapMin1, a.Vstep_Tap1, "
    "a.V0_Tap1, a.P0_Tap1, a.Vpos_Tap1, a.TapMax2, a.TapMin2, a.Vstep_Tap2, a.V0_Tap2, "
    "a.P0_Tap2, a.Vpos_Tap2 from %s a left join %s%s b on b.id=a.eleid where a.Ntype>30 and "
    "b.id is null";
constexpr const char* SQL_T3W_ORPHAN_W1 =
    "insert into %s%s(GrpName, ID_Name, Valid, Name_1, Name_N, ID_No1, Break_1, Unit, R1, X1, "
    "Gm, Bm, Tk1, Rate_MVA1, Up_Limit, TapMax1, TapMin1, P0_Tap1, Vstep_Tap1, V0_Tap1, "
    "Vpos_Tap1) select '%s', a.ID_Name, 1, a.J_Name, a.I_Name, a.ID_No, a.Valid, 1, a.R1, a.X1, "
    "a.Gm, a.Bm, a.Tk, a.Rate_MVA, a.Up_Limit, a.TapMax2, a.TapMin2, a.P0_Tap2, a.Vstep_Tap2, "
    "a.V0_Tap2, a.Vpos_Tap2 from T3W a where a.Ntype=31";
constexpr const char* SQL_T3W_ORPHAN_W2 =
    "update %s%s a, T3w b set a.Name_2=b.J_Name, ID_No2=b.ID_No, Break_2=b.valid, a.R2=b.R1, "
    "a.X2=b.X1, a.Tk2=b.Tk, a.Rate_MVA2=b.Rate_MVA, a.TapMax2=b.TapMax2, a.TapMin2=b.TapMin2, "
    "a.P0_Tap2=b.P0_Tap2, a.Vstep_Tap2=b.Vstep_Tap2, a.V0_Tap2=b.V0_Tap2, "
    "a.Vpos_Tap2=b.Vpos_Tap2 where a.ID_Name=b.ID_Name and a.GrpName='%s' and b.Ntype=32";
constexpr const char* SQL_T3W_ORPHAN_W3 =
    "update %s%s a, T3w b set a.Name_3=b.J_Name, ID_No3=b.ID_No, Break_3=b.valid, a.R3=b.R1, "
    "a.X3=b.X1, a.Tk3=b.Tk, a.Rate_MVA3=b.Rate_MVA, a.TapMax3=b.TapMax2, a.TapMin3=b.TapMin2, "
    "a.P0_Tap3=b.P0_Tap2, a.Vstep_Tap3=b.Vstep_Tap2, a.V0_Tap3=b.V0_Tap2, "
    "a.Vpos_Tap3=b.Vpos_Tap2 where a.ID_Name=b.ID_Name and a.GrpName='%s' and b.Ntype=33";
constexpr const char* SQL_T3W_NODES = "select I_Name, J_Name from T3W";
constexpr const char* SQL_T3W_CLEAR = "delete from T3W";
constexpr const char* SQL_T3W_CHANGED_W1_UNIT1 =
    "insert into T3W(eleid, Ntype, ID_Name,Valid,I_Name,J_Name,ID_No,R1, X1, Gm, Bm, Tk) select "
    "a.eleid, a.Ntype, a.ID_Name, a.Valid, a.I_Name, a.J_Name, a.ID_No, a.R1, a.X1, a.Gm, a.Bm, "
    "a.Tk from %s a, %s%s b where b.id=a.eleid and a.Ntype=31 and b.unit=1 and "
    "(a.valid!=b.Break_1 or abs(a.R1-b.R1)>%f or abs(a.X1-b.X1)>%f or abs(a.Gm-b.Gm)>%f or "
    "abs(a.Bm-b.Bm)>%f or abs(a.Tk-b.Tk1)>%f)";
// "*/" as the design writes it: this server refuses the statement.
constexpr const char* SQL_T3W_CHANGED_W1_UNIT0 =
    "insert into T3W(eleid, Ntype, ID_Name,Valid,I_Name,J_Name,ID_No,R1, X1, Gm, Bm, Tk) select "
    "a.eleid, a.Ntype, a.ID_Name, a.Valid, a.I_Name, a.J_Name, a.ID_No, "
    "a.R1*(c.Base_kV*c.Base_kV/%f), a.X1*(c.Base_kV*c.Base_kV/%f), "
    "a.Gm*1.0e6*/(c.Base_kV*c.Base_kV/%f), a.Bm*1.0e6*/(c.Base_kV*c.Base_kV/%f), a.Tk from %s a, "
    "%s%s b, L1_%d c where b.id=a.eleid and c.node_name=a.I_Name and a.Ntype=31 and b.unit=0 "
    "and (a.valid!=b.Break_1 or abs(a.R1*(c.Base_kV*c.Base_kV/%f)-b.R1)>%f or "
    "abs(a.X1*(c.Base_kV*c.Base_kV/%f)-b.X1)>%f or abs(a.Gm*1.0e6*/(c.Base_kV*c.Base_kV/%f)-b.Gm)>%f "
    "or abs(a.Bm*1.0e6*/(c.Base_kV*c.Base_kV/%f)-b.Bm)>%f or abs(a.Tk-b.Tk1)>%f )";
// Mended: "a.Gm*1.0e6/(...)" and "a.Bm*1.0e6/(...)", value * 1.0e6 / Zb, in all four places.
constexpr const char* SQL_T3W_CHANGED_W1_UNIT0_MENDED =
    "insert into T3W(eleid, Ntype, ID_Name,Valid,I_Name,J_Name,ID_No,R1, X1, Gm, Bm, Tk) select "
    "a.eleid, a.Ntype, a.ID_Name, a.Valid, a.I_Name, a.J_Name, a.ID_No, "
    "a.R1*(c.Base_kV*c.Base_kV/%f), a.X1*(c.Base_kV*c.Base_kV/%f), "
    "a.Gm*1.0e6/(c.Base_kV*c.Base_kV/%f), a.Bm*1.0e6/(c.Base_kV*c.Base_kV/%f), a.Tk from %s a, "
    "%s%s b, L1_%d c where b.id=a.eleid and c.node_name=a.I_Name and a.Ntype=31 and b.unit=0 "
    "and (a.valid!=b.Break_1 or abs(a.R1*(c.Base_kV*c.Base_kV/%f)-b.R1)>%f or "
    "abs(a.X1*(c.Base_kV*c.Base_kV/%f)-b.X1)>%f or abs(a.Gm*1.0e6/(c.Base_kV*c.Base_kV/%f)-b.Gm)>%f "
    "or abs(a.Bm*1.0e6/(c.Base_kV*c.Base_kV/%f)-b.Bm)>%f or abs(a.Tk-b.Tk1)>%f )";
// Windings 2 and 3: '#' stands for the winding's number.
constexpr const char* SQL_T3W_CHANGED_WK_UNIT1 =
    "insert into T3W(eleid, Ntype, ID_Name,Valid,I_Name,J_Name,ID_No,R1, X1, Tk) select a.eleid, "
    "a.Ntype, a.ID_Name, a.Valid, a.I_Name, a.J_Name, a.ID_No, a.R1, a.X1, a.Tk from %s a, %s%s "
    "b where b.id=a.eleid and a.Ntype=3# and b.unit=1 and (a.valid!=b.Break_# or "
    "abs(a.R1-b.R#)>%f or abs(a.X1-b.X#)>%f or abs(a.Tk-b.Tk#)>%f)";
constexpr const char* SQL_T3W_CHANGED_WK_UNIT0 =
    "insert into T3W(eleid, Ntype, ID_Name,Valid,I_Name,J_Name,ID_No,R1, X1, Tk) select a.eleid, "
    "a.Ntype, a.ID_Name, a.Valid, a.I_Name, a.J_Name, a.ID_No, a.R1*(c.Base_kV*c.Base_kV/%f), "
    "a.X1*(c.Base_kV*c.Base_kV/%f), a.Tk from %s a, %s%s b, L1_%d c where b.id=a.eleid and "
    "c.node_name=a.I_Name and a.Ntype=3# and b.unit=0 and (a.valid!=b.Break_# or "
    "abs(a.R1*(c.Base_kV*c.Base_kV/%f)-b.R#)>%f or abs(a.X1*(c.Base_kV*c.Base_kV/%f)-b.X#)>%f or "
    "abs(a.Tk-b.Tk#)>%f )";
// Names no table, as the design writes it; its outcome is ignored.
constexpr const char* SQL_T3W_INDEX = "Create index Idtype on Ntype";
constexpr const char* SQL_T3W_IN_GROUP_W1 =
    "update %s%s a, T3w b set a.valid=b.valid, a.Name_1=b.J_Name, ID_No1=b.ID_No, "
    "Break_1=b.valid, a.R1=b.R1, a.X1=b.X1, a.Gm=b.Gm, a.Bm=b.Bm, a.Tk1=b.Tk where "
    "a.ID_Name=b.ID_Name and a.GrpName='%s' and b.Ntype=31";
constexpr const char* SQL_T3W_IN_PLACE_W1 =
    "update %s%s a, T3w b set a.valid=b.valid, a.Name_1=b.J_Name, ID_No1=b.ID_No, "
    "Break_1=b.valid, a.R1=b.R1, a.X1=b.X1, a.Gm=b.Gm, a.Bm=b.Bm, a.Tk1=b.Tk where "
    "a.id=b.eleid and b.Ntype=31";
constexpr const char* SQL_T3W_IN_GROUP_WK =
    "update %s%s a, T3w b set a.valid=b.valid, a.Name_#=b.J_Name, ID_No#=b.ID_No, "
    "Break_#=b.valid, a.R#=b.R1, a.X#=b.X1, a.Tk#=b.Tk where a.ID_Name=b.ID_Name and "
    "a.GrpName='%s' and b.Ntype=3#";
constexpr const char* SQL_T3W_IN_PLACE_WK =
    "update %s%s a, T3w b set a.valid=b.valid, a.Name_#=b.J_Name, ID_No#=b.ID_No, "
    "Break_#=b.valid, a.R#=b.R1, a.X#=b.X1, a.Tk#=b.Tk where a.id=b.eleid and b.Ntype=3#";
constexpr const char* SQL_T3W_DROP = "drop table T3W";

// ---- DC lines ----
// The orphans and their insert name their value columns by a list: COLS_DCLINE_VALUES
// plain and prefixed by "a.".
constexpr const char* SQL_DC_ORPHANS =
    "Create temporary Table Tdc select a.EleID, a.ID_Name, a.Valid, a.I_Name, a.J_Name, "
    "a.ID_No, a.Owner, %s from %s a left join %s%s b on b.id=a.eleid where b.id is null";
constexpr const char* SQL_DC_ORPHAN_INSERT =
    "insert into %s%s(GrpName, ID_Name, Valid, I_Name, J_Name, ID_No, Owner, %s) select '%s', "
    "a.ID_Name, a.Valid, a.I_Name, a.J_Name, a.ID_No, (a.Owner=b.Zone_no), %s from Tdc a, "
    "L1_%d b where b.Node_Name=a.I_Name";
constexpr const char* MSG_DC_ORPHANS =
    "直流线作业数据中有 %d 条记录与基础库元件不对应, 被保存至数据组 %s 。";
constexpr const char* SQL_DC_NODES = "select I_Name, J_Name from Tdc";
constexpr const char* SQL_DC_CLEAR = "delete from Tdc";
constexpr const char* SQL_DC_CHANGED =
    "insert into Tdc(eleid, ID_Name, Valid, I_Name, J_Name, Id_No, OP_Mode, Vd1_kV, Pd1_MW, "
    "A10_D, A1min_D, Gam1min_D, Gam10_D, Vd2_kV, Pd2_MW , A2min_D, A20_D, Gam2min_D, Gam20_D, "
    "Qci_Mvar, Qcj_Mvar) select a.eleid, a.ID_Name, a.Valid, a.I_Name, a.J_Name, a.ID_No, "
    "a.OP_Mode, a.Vd1_kV,a.Pd1_MW,a. A10_D,a.A1min_D, a.Gam1min_D, a.Gam10_D, a.Vd2_kV, "
    "a.Pd2_MW , a.A2min_D, a.A20_D, a.Gam2min_D, a.Gam20_D, a.Qci_Mvar, a.Qcj_Mvar from %s a, "
    "%s%s b where b.id=a.eleid and (a.valid!=b.valid or abs(a.OP_Mode-b.OP_Mode)>%f or "
    "abs(a.Vd1_kV-b.Vd1_kV)>%f or abs(a.Pd1_MW-b.Pd1_MW)>%f or abs(a.A10_D-b.A10_D)>%f or "
    "abs(a.A1min_D-b.A1min_D)>%f or abs(a.Gam1min_D-b.Gam1min_D)>%f or "
    "abs(a.Gam10_D-b.Gam10_D)>%f or abs(a.Vd2_kV-b.Vd2_kV)>%f or abs(a.Pd2_MW-b.Pd2_MW)>%f or "
    "abs(a.A2min_D-b.A2min_D)>%f or abs(a.A20_D-b.A20_D)>%f or abs(a.Gam2min_D-b.Gam2min_D)>%f "
    "or abs(a.Gam20_D-b.Gam20_D)>%f or abs(a.Qci_Mvar-b.Qci_Mvar)>%f or "
    "abs(a.Qcj_Mvar-b.Qcj_Mvar)>%f)";
constexpr const char* SQL_DC_IN_GROUP =
    "update %s%s a, Tdc b set a.valid=b.valid, a.OP_Mode=b.OP_Mode, a.Vd1_kV =b.Vd1_kV, "
    "a.Pd1_MW =b.Pd1_MW, a.A10_D=b.A10_D, a.A1min_D=b.A1min_D, a.Gam1min_D=b.Gam1min_D, "
    "a.Gam10_D=b.Gam10_D, a.Vd2_kV =b.Vd2_kV, a.Pd2_MW =b.Pd2_MW, a.A2min_D=b.A2min_D, "
    "a.A20_D=b.A20_D, a.Gam2min_D=b.Gam2min_D, a.Gam20_D=b.Gam20_D, a.Qci_Mvar=b.Qci_Mvar, "
    "a.Qcj_Mvar=b.Qcj_Mvar where a.GrpName='%s' and a.ID_Name=b.ID_Name";
constexpr const char* SQL_DC_IN_PLACE =
    "update %s%s a, Tdc b set a.valid=b.valid, a.OP_Mode=b.OP_Mode, a.Vd1_kV =b.Vd1_kV, "
    "a.Pd1_MW =b.Pd1_MW, a.A10_D =b.A10_D, a.A1min_D =b.A1min_D, a.Gam1min_D =b.Gam1min_D, "
    "a.Gam10_D =b.Gam10_D, a.Vd2_kV =b.Vd2_kV, a.Pd2_MW =b.Pd2_MW, a.A2min_D =b.A2min_D, "
    "a.A20_D =b.A20_D, a.Gam2min_D =b.Gam2min_D, a.Gam20_D =b.Gam20_D, a.Qci_Mvar =b.Qci_Mvar, "
    "a.Qcj_Mvar =b.Qcj_Mvar where a.id=b.eleid";
constexpr const char* SQL_DC_DROP = "drop table Tdc";

// ---- Generators ----
constexpr const char* SQL_GEN_ORPHANS =
    "Create temporary Table TGen select a.EleID, a.ID_Name, a.Valid, a.Node_Name, a.Mode_Ctrl, "
    "a.Pg, a.Qg, a.V0, a.Angle, a.Qmax, a.Qmin, a.Pmax, a.Pmin, a.Par_Group, a.Bus_Ctrl, "
    "a.Line_Ctrl, a.Value_Ctrl from %s a left join %s%s b on b.id=a.eleid where b.id is null";
constexpr const char* MSG_GEN_ORPHANS =
    "发电机作业数据中有 %d 条记录与基础库元件不对应, 被保存至数据组 %s 。";
constexpr const char* SQL_GEN_ORPHAN_INSERT =
    "insert into %s%s(GrpName, ID_Name, Valid, Node_Name, Mode_Ctrl, Unit, Pg, Qg, V0, Angle, "
    "Qmax, Qmin, Pmax, Pmin, Par_Group, Bus_Ctrl, Line_Ctrl, Value_Ctrl) select '%s', "
    "a.ID_Name, a.Valid, a.Node_Name, a.Mode_Ctrl, 1, a.Pg, a.Qg, a.V0, a.Angle, a.Qmax, a.Qmin, "
    "a.Pmax, a.Pmin, a.Par_Group, a.Bus_Ctrl, a.Line_Ctrl, a.Value_Ctrl from TGen a";
constexpr const char* SQL_GEN_NODES = "select Node_Name from TGen";
constexpr const char* SQL_GEN_CLEAR = "delete from TGen";
constexpr const char* SQL_GEN_CHANGED_UNIT1 =
    "insert into TGen(EleID, ID_Name, Valid, Node_Name, Mode_Ctrl, Pg, Qg, V0, Angle, Qmax, Qmin, "
    "Pmax, Pmin) select a.EleID, a.ID_Name, a.Valid, a.Node_Name, a.Mode_Ctrl, a.Pg, a.Qg, a.V0, "
    "a.Angle, a.Qmax, a.Qmin, a.Pmax, a.Pmin from %s a, %s%s b where b.id=a.eleid and b.unit=1 "
    "and (a.valid!=b.valid or a.Mode_Ctrl!=b.Mode_Ctrl or abs(a.Pg-b.Pg)>%f or "
    "abs(a.Qg-b.Qg)>%f or abs(a.V0-b.V0)>%f or abs(a.Angle-b.Angle)>%f or abs(a.Qmax-b.Qmax)>%f "
    "or abs(a.Qmin-b.Qmin)>%f or abs(a.Pmax-b.Pmax)>%f or abs(a.Pmin-b.Pmin)>%f)";
constexpr const char* SQL_GEN_CHANGED_UNIT0 =
    "insert into TGen(EleID, ID_Name, Valid, Node_Name, Mode_Ctrl, Pg, Qg, V0, Angle, Qmax, Qmin, "
    "Pmax, Pmin) select a.EleID, a.ID_Name, a.Valid, a.Node_Name, a.Mode_Ctrl, a.Pg*%f, a.Qg*%f, "
    "a.V0*c.Base_kV, a.Angle, a.Qmax*%f, a.Qmin*%f, a.Pmax*%f, a.Pmin*%f from %s a, %s%s b, "
    "L1_%d c where b.id=a.eleid and c.node_name=b.node_name and b.unit=0 and (a.valid!=b.valid "
    "or a.Mode_Ctrl!=b.Mode_Ctrl or abs(a.Pg*%f-b.Pg)>%f or abs(a.Qg*%f-b.Qg)>%f or "
    "abs(a.V0*c.Base_kV-b.V0)>%f or abs(a.Angle-b.Angle)>%f or abs(a.Qmax*%f-b.Qmax)>%f or "
    "abs(a.Qmin*%f-b.Qmin)>%f or abs(a.Pmax*%f-b.Pmax)>%f or abs(a.Pmin*%f-b.Pmin)>%f)";
constexpr const char* SQL_GEN_COPY =
    "insert into %s%s(GrpName, ID_Name, Valid, Node_Name, Mode_Ctrl, Unit, Pg, Qg, V0, Angle, "
    "Qmax, Qmin, Pmax, Pmin, Par_Group, Bus_Ctrl, Line_Ctrl, Value_Ctrl, Gen_Model, Gen_Par, "
    "AVR_Model, AVR_Par, GOV_Model, GOV_Par, PSS_Model, PSS_Par, Rate_MVA, Rate_MW, Xdp, Xdpp, "
    "X2, Tj) select '%s', a.ID_Name, a.Valid, a.Node_Name, a.Mode_Ctrl, a.Unit, a.Pg, a.Qg, "
    "a.V0, a.Angle, a.Qmax, a.Qmin, a.Pmax, a.Pmin, a.Par_Group, a.Bus_Ctrl, a.Line_Ctrl, "
    "a.Value_Ctrl, a.Gen_Model, a.Gen_Par, a.AVR_Model, a.AVR_Par, a.GOV_Model, a.GOV_Par, "
    "a.PSS_Model, a.PSS_Par, a.Rate_MVA, a.Rate_MW, a.Xdp, a.Xdpp, a.X2, a.Tj from %s%s a, TGen "
    "where a.id=TGen.eleid";
constexpr const char* SQL_GEN_IN_GROUP =
    "update %s%s a, TGen b set a.Valid=b.Valid, a.Mode_Ctrl=b.Mode_Ctrl, a.Pg =b.Pg, a.Qg =b.Qg, "
    "a.V0 =b.V0, a.Angle=b.Angle, a.Qmax=b.Qmax, a.Qmin=b.Qmin, a.Pmax=b.Pmax, a.Pmin=b.Pmin "
    "where a.GrpName='%s' and a.ID_Name=b.ID_Name";
constexpr const char* SQL_GEN_IN_PLACE =
    "update %s%s a, TGen b set a.Valid=b.Valid, a.Mode_Ctrl=b.Mode_Ctrl, a.Pg =b.Pg, a.Qg =b.Qg, "
    "a.V0 =b.V0, a.Angle=b.Angle, a.Qmax=b.Qmax, a.Qmin=b.Qmin, a.Pmax=b.Pmax, a.Pmin=b.Pmin "
    "where a.id=b.eleid";
constexpr const char* SQL_GEN_DROP = "drop table TGen";

// ---- Loads ----
constexpr const char* SQL_LOAD_ORPHANS =
    "Create temporary Table TLoad select a.EleID, a.ID_Name, a.Valid, a.Node_Name, a.No_Load, "
    "a.Mode_Ctrl, a.Pl, a.Ql, a.V0, a.Angle, a.Qmax, a.Qmin, a.Pmax, a.Pmin, a.Par_Group, "
    "a.Bus_Ctrl, a.Line_Ctrl, a.Value_Ctrl from %s a left join %s%s b on b.id=a.eleid where "
    "b.id is null";
constexpr const char* MSG_LOAD_ORPHANS =
    "负荷作业数据中有 %d 条记录与基础库元件不对应, 被保存至数据组 %s 。";
constexpr const char* SQL_LOAD_ORPHAN_INSERT =
    "insert into %s%s(GrpName, ID_Name, Valid, Node_Name, No_Load, Mode_Ctrl, Unit, Pl, Ql, V0, "
    "Angle, Qmax, Qmin, Pmax, Pmin, Par_Group, Bus_Ctrl, Line_Ctrl, Value_Ctrl) select '%s', "
    "a.ID_Name, a.Valid, a.Node_Name, a.No_Load, a.Mode_Ctrl, 1, a.Pl, a.Ql, a.V0, a.Angle, "
    "a.Qmax, a.Qmin, a.Pmax, a.Pmin, a.Par_Group, a.Bus_Ctrl, a.Line_Ctrl, a.Value_Ctrl from "
    "TLoad a";
constexpr const char* SQL_LOAD_NODES = "select Node_Name from TLoad";
constexpr const char* SQL_LOAD_CLEAR = "delete from TLoad";
constexpr const char* SQL_LOAD_CHANGED_UNIT1 =
    "insert into TLoad(EleID, ID_Name, Valid, Node_Name, Mode_Ctrl, Pl, Ql, V0, Angle, Qmax, "
    "Qmin, Pmax, Pmin) select a.EleID, a.ID_Name, a.Valid, a.Node_Name, a.Mode_Ctrl, a.Pl, a.Ql, "
    "a.V0, a.Angle, a.Qmax, a.Qmin, a.Pmax, a.Pmin from %s a, %s%s b where b.id=a.eleid and "
    "b.unit=1 and (a.valid!=b.valid or a.Mode_Ctrl!=b.Mode_Ctrl or abs(a.Pl-b.Pl)>%f or "
    "abs(a.Ql-b.Ql)>%f or abs(a.V0-b.V0)>%f or abs(a.Angle-b.Angle)>%f or abs(a.Qmax-b.Qmax)>%f "
    "or abs(a.Qmin-b.Qmin)>%f or abs(a.Pmax-b.Pmax)>%f or abs(a.Pmin-b.Pmin)>%f)";
constexpr const char* SQL_LOAD_CHANGED_UNIT0 =
    "insert into TLoad(EleID, ID_Name, Valid, Node_Name, Mode_Ctrl, Pl, Ql, V0, Angle, Qmax, "
    "Qmin, Pmax, Pmin) select a.EleID, a.ID_Name, a.Valid, a.Node_Name, a.Mode_Ctrl, a.Pl*%f, "
    "a.Ql*%f, a.V0*c.Base_kV, a.Angle, a.Qmax*%f, a.Qmin*%f, a.Pmax*%f, a.Pmin*%f from %s a, "
    "%s%s b, L1_%d c where b.id=a.eleid and c.node_name=b.node_name and b.unit=0 and "
    "(a.valid!=b.valid or a.Mode_Ctrl!=b.Mode_Ctrl or abs(a.Pl*%f-b.Pl)>%f or "
    "abs(a.Ql*%f-b.Ql)>%f or abs(a.V0*c.Base_kV-b.V0)>%f or abs(a.Angle-b.Angle)>%f or "
    "abs(a.Qmax*%f-b.Qmax)>%f or abs(a.Qmin*%f-b.Qmin)>%f or abs(a.Pmax*%f-b.Pmax)>%f or "
    "abs(a.Pmin*%f-b.Pmin)>%f)";
constexpr const char* SQL_LOAD_COPY =
    "insert into %s%s(GrpName, ID_Name, Valid, Node_Name, No_Load, Mode_Ctrl, Unit, Pl, Ql, V0, "
    "Angle, Qmax, Qmin, Pmax, Pmin, Par_Group, Bus_Ctrl, Line_Ctrl, Value_Ctrl, Load_Model, "
    "Load_Par, Z_Percent) select '%s', a.ID_Name, a.Valid, a.Node_Name, a.No_Load, a.Mode_Ctrl, "
    "a.Unit, a.Pl, a.Ql, a.V0, a.Angle, a.Qmax, a.Qmin, a.Pmax, a.Pmin, a.Par_Group, a.Bus_Ctrl, "
    "a.Line_Ctrl, a.Value_Ctrl, a.Load_Model, a.Load_Par, a.Z_Percent from %s%s a, TLoad where "
    "a.id=TLoad.eleid";
constexpr const char* SQL_LOAD_IN_GROUP =
    "update %s%s a, TLoad b set a.Valid=b.Valid, a.Mode_Ctrl=b.Mode_Ctrl, a.Pl =b.Pl, "
    "a.Ql =b.Ql, a.V0 =b.V0, a.Angle=b.Angle, a.Qmax=b.Qmax, a.Qmin=b.Qmin, a.Pmax=b.Pmax, "
    "a.Pmin=b.Pmin where a.GrpName='%s' and a.ID_Name=b.ID_Name";
constexpr const char* SQL_LOAD_IN_PLACE =
    "update %s%s a, TLoad b set a.Valid=b.Valid, a.Mode_Ctrl=b.Mode_Ctrl, a.Pl =b.Pl, "
    "a.Ql =b.Ql, a.V0 =b.V0, a.Angle=b.Angle, a.Qmax=b.Qmax, a.Qmin=b.Qmin, a.Pmax=b.Pmax, "
    "a.Pmin=b.Pmin where a.id=b.eleid";
constexpr const char* SQL_LOAD_DROP = "drop table TLoad";

// ---- Breakers and switches ('#' stands for TBrk or Tswitch) ----
constexpr const char* SQL_SWITCH_ORPHANS =
    "Create temporary Table # select a.EleID, a.ID_Name, a.Valid, a.I_Name, a.J_Name, a.ID_No, "
    "a.Lbreak from %s a left join %s%s b on b.id=a.eleid where a.Ntype=%d and b.id is null";
constexpr const char* MSG_BRK_ORPHANS =
    "开关作业数据中有 %d 条记录与基础库元件不对应, 被保存至数据组 %s 。";
constexpr const char* MSG_SW_ORPHANS =
    "刀闸作业数据中有 %d 条记录与基础库元件不对应, 被保存至数据组 %s 。";
constexpr const char* SQL_SWITCH_ORPHAN_INSERT =
    "insert into %s%s(GrpName, ID_Name, Valid,I_Name, J_Name, ID_No, Lbreak) select '%s', "
    "a.ID_Name, a.Valid, a.I_Name, a.J_Name, a.ID_No, a.Lbreak from # a";
constexpr const char* SQL_SWITCH_NODES = "select I_Name, J_Name from #";
constexpr const char* SQL_SWITCH_CLEAR = "delete from #";
constexpr const char* SQL_SWITCH_CHANGED =
    "insert into #(EleID, ID_Name, Valid, I_Name, J_Name, ID_No, Lbreak) select a.EleID, "
    "a.ID_Name, a.Valid, a.I_Name, a.J_Name, a.ID_No, a.Lbreak from %s a, %s%s b where "
    "b.id=a.eleid and a.Ntype=%d and (a.valid!=b.valid or a.Lbreak!=b.Lbreak)";
constexpr const char* SQL_SWITCH_IN_PLACE =
    "update %s%s a, # b set a.Valid=b.Valid, a.Lbreak=b.Lbreak where a.id=b.eleid";
constexpr const char* SQL_SWITCH_DROP = "drop table #";

} // namespace lfs
