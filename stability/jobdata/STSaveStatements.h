#pragma once
// Statement templates and messages of the stability save-back (CSTCalDataTransfer), job
// tables back into the working copies. The comparisons take the base voltage of a named
// row from L1_n of the load-flow case. Four copies into a new data group are refused by
// this server as they stand (a column named twice, error 1110) and the DC line's copy has
// one value more than it has columns (error 1136); they are kept as the design has them
// and sent so in the faithful mode (the default). Each has a `_MENDED` text beside it,
// sent in the mended mode, with a comment saying what differs. Every other statement is
// sent as it stands in both modes.

namespace sts {

// One tolerance for every compared float of the stability families (not load flow's).
constexpr double TOLERANCE = 0.001;

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
constexpr const char* MSG_SVC_COUNT = "回存SVC数目：%d";
constexpr const char* MSG_TOTAL = "回存元件总数：%d";
constexpr const char* SQL_ADD_GROUP = "insert into %s%s(GrpName) values('%s')";
constexpr const char* MSG_ADD_GROUP = "执行新增数据组 %s 出错！";
constexpr const char* MSG_SQL_FAIL = "Fail to execute SQL: %s";

// ---- AC lines (S2 Ntype 1 into CDB_ACLINE) ----
// Per unit compared directly: job table, base table, tolerance three times.
constexpr const char* SQL_AC_CHANGED_UNIT1 =
    "Create temporary Table Tac select a.eleid, a.ID_Name, a.I_Name, a.J_Name, a.ID_No, a.R0, "
    "a.X0, a.B0_Half from %s a, %s%s b where b.id=a.eleid and a.Ntype=1 and b.unit=1 and "
    "(abs(a.R0-b.R0)>%f or abs(a.X0-b.X0)>%f or abs(a.B0_Half-b.B0_Half)>%f)";
// Named rows compared after conversion: base power three times, job table, base table,
// the load-flow case number, then (base power, tolerance) three times.
constexpr const char* SQL_AC_CHANGED_UNIT0 =
    "insert into Tac(eleid, ID_Name, I_Name, J_Name, ID_No, R0, X0, B0_Half) select a.eleid, "
    "a.ID_Name, a.I_Name, a.J_Name, a.ID_No, a.R0*(c.Base_kV*c.Base_kV/%f), "
    "a.X0*(c.Base_kV*c.Base_kV/%f), a.B0_Half*1.0e6/(c.Base_kV*c.Base_kV/%f) from %s a, %s%s b, "
    "L1_%d c where b.id=a.eleid and c.node_name=a.I_Name and a.Ntype=1 and b.unit=0 and "
    "(abs(a.R0*(c.Base_kV*c.Base_kV/%f)-b.R0)>%f or abs(a.X0*(c.Base_kV*c.Base_kV/%f)-b.X0)>%f "
    "or abs(a.B0_Half*1.0e6/(c.Base_kV*c.Base_kV/%f)-b.B0_Half)>%f)";
// Valid named twice: refused.
constexpr const char* SQL_AC_COPY =
    "insert into %s%s(GrpName, ID_Name, Valid, I_Name, J_Name, ID_No, Valid,I_Break, J_Break, "
    "Unit, R1, X1, B1_Half, R0, X0, B0_Half, Owner, Rate_Ka, Up_Limit, Length_Km, Type, R1_Ohm, "
    "X1_Ohm, B1_Siem, R0_Ohm, X0_Ohm, B0_Siem, Mode_Ctrl, Par_No, Bus_Ctrl, Line_Ctrl, "
    "Value_Ctrl, Phypno) select '%s', a.ID_Name, a.Valid, a.I_Name, a.J_Name, a.ID_No, a.Valid, "
    "a.I_Break, a.J_Break, a.Unit, a.R1, a.X1, a.B1_Half, a.R0, a.X0, a.B0_Half, a.Owner, "
    "a.Rate_Ka, a.Up_Limit, a.Length_Km, a.Type, a.R1_Ohm, a.X1_Ohm, a.B1_Siem, a.R0_Ohm, "
    "a.X0_Ohm, a.B0_Siem, a.Mode_Ctrl, a.Par_No, a.Bus_Ctrl, a.Line_Ctrl, a.Value_Ctrl, "
    "a.Phypno from %s%s a, Tac where a.id=Tac.eleid";
// Mended: the second "Valid" column and its second "a.Valid" value left out.
constexpr const char* SQL_AC_COPY_MENDED =
    "insert into %s%s(GrpName, ID_Name, Valid, I_Name, J_Name, ID_No, I_Break, J_Break, "
    "Unit, R1, X1, B1_Half, R0, X0, B0_Half, Owner, Rate_Ka, Up_Limit, Length_Km, Type, R1_Ohm, "
    "X1_Ohm, B1_Siem, R0_Ohm, X0_Ohm, B0_Siem, Mode_Ctrl, Par_No, Bus_Ctrl, Line_Ctrl, "
    "Value_Ctrl, Phypno) select '%s', a.ID_Name, a.Valid, a.I_Name, a.J_Name, a.ID_No, "
    "a.I_Break, a.J_Break, a.Unit, a.R1, a.X1, a.B1_Half, a.R0, a.X0, a.B0_Half, a.Owner, "
    "a.Rate_Ka, a.Up_Limit, a.Length_Km, a.Type, a.R1_Ohm, a.X1_Ohm, a.B1_Siem, a.R0_Ohm, "
    "a.X0_Ohm, a.B0_Siem, a.Mode_Ctrl, a.Par_No, a.Bus_Ctrl, a.Line_Ctrl, a.Value_Ctrl, "
    "a.Phypno from %s%s a, Tac where a.id=Tac.eleid";
constexpr const char* SQL_AC_IN_GROUP = "update %s%s a, Tac b set a.R0=b.R0, a.X0=b.X0, "
                                        "a.B0_Half=b.B0_Half where a.GrpName='%s' and "
                                        "a.ID_Name=b.ID_Name";
constexpr const char* SQL_AC_IN_PLACE =
    "update %s%s a, Tac b set a.R0=b.R0, a.X0=b.X0, a.B0_Half=b.B0_Half where a.id=b.eleid";
constexpr const char* SQL_AC_DROP = "drop table Tac";

// ---- Shunt compensators (S2 Ntype 3 into CDB_PCAPREA) ----
constexpr const char* SQL_PCR_CHANGED_UNIT1 =
    "Create temporary Table TPCR select a.eleid, a.ID_Name, a.I_Name, a.J_Name, a.ID_No, a.R0, "
    "a.X0, a.B0_Half from %s a, %s%s b where b.id=a.eleid and a.Ntype=3 and b.unit=1 and "
    "(abs(a.R0-b.R0)>%f or abs(a.X0-b.X0)>%f)";
// Base power twice, job table, base table, load-flow case, (base power, tolerance) twice.
constexpr const char* SQL_PCR_CHANGED_UNIT0 =
    "insert into TPCR(eleid, ID_Name,I_Name,ID_No, R0, X0) select a.eleid, a.ID_Name, "
    "a.I_Name, a.ID_No, a.R0*(c.Base_kV*c.Base_kV/%f), a.X0*(c.Base_kV*c.Base_kV/%f) from %s a, "
    "%s%s b, L1_%d c where b.id=a.eleid and c.node_name=a.I_Name and a.Ntype=3 and b.unit=0 and "
    "( abs(a.R0*(c.Base_kV*c.Base_kV/%f)-b.R0)>%f or abs(a.X0*(c.Base_kV*c.Base_kV/%f)-b.X0)>%f)";
// Valid, R0 and X0 named twice: refused. Its values are also out of step: Valid would take
// a.Node_Name and Node_Name a.valid.
constexpr const char* SQL_PCR_COPY =
    "insert into %s%s(GrpName, ID_Name,Valid, Node_Name, ID_No,Valid, Unit, R0, X0, R0, X0, "
    "Type, Mode_Ctrl, Par_No, Bus_Ctrl, Line_Ctrl, Value_Ctrl, Phypno, Rate_Capa, Rate_V0) "
    "select '%s', a.ID_Name, a.Node_Name, a.valid, a.ID_No, a.Valid, a.Unit, a.R0, a.X0, a.R0, "
    "a.X0, a.Type, a.Mode_Ctrl, a.Par_No, a.Bus_Ctrl, a.Line_Ctrl, a.Value_Ctrl, a.Phypno, "
    "a.Rate_Capa, a.Rate_V0 from %s%s a, TPCR where a.id=TPCR.eleid";
// Mended: Valid and Node_Name each once with their own values (a.Valid, a.Node_Name), and
// the first "R0, X0" pair named R1, X1 with a.R1, a.X1, so that the copy keeps the
// positive-sequence impedance instead of naming the zero-sequence pair twice.
constexpr const char* SQL_PCR_COPY_MENDED =
    "insert into %s%s(GrpName, ID_Name,Valid, Node_Name, ID_No, Unit, R1, X1, R0, X0, "
    "Type, Mode_Ctrl, Par_No, Bus_Ctrl, Line_Ctrl, Value_Ctrl, Phypno, Rate_Capa, Rate_V0) "
    "select '%s', a.ID_Name, a.Valid, a.Node_Name, a.ID_No, a.Unit, a.R1, a.X1, a.R0, "
    "a.X0, a.Type, a.Mode_Ctrl, a.Par_No, a.Bus_Ctrl, a.Line_Ctrl, a.Value_Ctrl, a.Phypno, "
    "a.Rate_Capa, a.Rate_V0 from %s%s a, TPCR where a.id=TPCR.eleid";
constexpr const char* SQL_PCR_IN_GROUP =
    "update %s%s a, TPCR b set a.R0=b.R0, a.X0=b.X0 where a.GrpName='%s' and a.ID_Name=b.ID_Name";
constexpr const char* SQL_PCR_IN_PLACE =
    "update %s%s a, TPCR b set a.R0=b.R0, a.X0=b.X0 where a.id=b.eleid";
constexpr const char* SQL_PCR_DROP = "drop table TPCR";

// ---- Series compensators (S2 Ntype 2 into CDB_SCAPREA) ----
constexpr const char* SQL_SCR_CHANGED_UNIT1 =
    "Create temporary Table TSCR select a.eleid, a.ID_Name, a.I_Name, a.J_Name, a.ID_No, a.R0, "
    "a.X0, 0. from %s a, %s%s b where b.id=a.eleid and a.Ntype=2 and b.unit=1 and "
    "(abs(a.R0-b.R0)>%f or abs(a.X0-b.X0)>%f)";
constexpr const char* SQL_SCR_CHANGED_UNIT0 =
    "insert into TSCR(eleid, ID_Name,I_Name,J_Name,ID_No,R0, X0) select a.eleid, a.ID_Name, "
    "a.I_Name, a.J_Name, a.ID_No, a.R0*(c.Base_kV*c.Base_kV/%f), a.X0*(c.Base_kV*c.Base_kV/%f) "
    "from %s a, %s%s b, L1_%d c where b.id=a.eleid and c.node_name=a.I_Name and a.Ntype=2 and "
    "b.unit=0 and (abs(a.R0*(c.Base_kV*c.Base_kV/%f)-b.R0)>%f or "
    "abs(a.X0*(c.Base_kV*c.Base_kV/%f)-b.X0)>%f)";
// Valid, R0 and X0 named twice: refused.
constexpr const char* SQL_SCR_COPY =
    "insert into %s%s(GrpName, ID_Name, PhyPos,Valid, I_Name, J_Name, ID_No, Valid, I_Break, "
    "J_Break, Unit, R0, X0, R0, X0, Owner, Type, Mode_Ctrl, Par_No, Bus_Ctrl, Line_Ctrl, "
    "Value_Ctrl, Phypno, Rate_Capa, Rate_V0) select '%s', a.ID_Name, a.PhyPos, a.Valid, "
    "a.I_Name, a.J_Name, a.ID_No, a.Valid, a.I_Break, a.J_Break, a.Unit, a.R0, a.X0, a.R0, "
    "a.X0, a.Owner, a.Type, a.Mode_Ctrl, a.Par_No, a.Bus_Ctrl, a.Line_Ctrl, a.Value_Ctrl, "
    "a.Phypno, a.Rate_Capa, a.Rate_V0 from %s%s a, TSCR where a.id=TSCR.eleid";
// Mended: the second "Valid" and its "a.Valid" left out, and the first "R0, X0" pair named
// R1, X1 with a.R1, a.X1, so that the copy keeps the positive-sequence impedance.
constexpr const char* SQL_SCR_COPY_MENDED =
    "insert into %s%s(GrpName, ID_Name, PhyPos,Valid, I_Name, J_Name, ID_No, I_Break, "
    "J_Break, Unit, R1, X1, R0, X0, Owner, Type, Mode_Ctrl, Par_No, Bus_Ctrl, Line_Ctrl, "
    "Value_Ctrl, Phypno, Rate_Capa, Rate_V0) select '%s', a.ID_Name, a.PhyPos, a.Valid, "
    "a.I_Name, a.J_Name, a.ID_No, a.I_Break, a.J_Break, a.Unit, a.R1, a.X1, a.R0, "
    "a.X0, a.Owner, a.Type, a.Mode_Ctrl, a.Par_No, a.Bus_Ctrl, a.Line_Ctrl, a.Value_Ctrl, "
    "a.Phypno, a.Rate_Capa, a.Rate_V0 from %s%s a, TSCR where a.id=TSCR.eleid";
constexpr const char* SQL_SCR_IN_GROUP =
    "update %s%s a, TSCR b set a.R0=b.R0, a.X0=b.X0 where a.GrpName='%s' and a.ID_Name=b.ID_Name";
constexpr const char* SQL_SCR_IN_PLACE =
    "update %s%s a, TSCR b set a.R0=b.R0, a.X0=b.X0 where a.id=b.eleid";
constexpr const char* SQL_SCR_DROP = "drop table TSCR";

// ---- Two-winding transformers (S3 Ntype 1 into CDB_TRANS_2W) ----
constexpr const char* SQL_T2W_CHANGED_UNIT1 =
    "Create temporary Table T2W select a.eleid, a.ID_Name, a.I_Name, a.J_Name, a.ID_No, ZcType, "
    "a.R0, a.X0 from %s a, %s%s b where b.id=a.eleid and a.Ntype=1 and b.unit=1 and "
    "(abs(a.R0-b.R0)>%f or abs(a.X0-b.X0)>%f)";
constexpr const char* SQL_T2W_CHANGED_UNIT0 =
    "insert into T2W(eleid, ID_Name,I_Name,J_Name,ID_No,ZcType,R0, X0) select a.eleid, "
    "a.ID_Name, a.I_Name, a.J_Name, a.ID_No, a.ZcType, a.R0*(c.Base_kV*c.Base_kV/%f), "
    "a.X0*(c.Base_kV*c.Base_kV/%f) from %s a, %s%s b, L1_%d c where b.id=a.eleid and "
    "c.node_name=a.I_Name and a.Ntype=1 and b.unit=0 and "
    "(abs(a.R0*(c.Base_kV*c.Base_kV/%f)-b.R0)>%f or abs(a.X0*(c.Base_kV*c.Base_kV/%f)-b.X0)>%f)";
// Valid named twice: refused.
constexpr const char* SQL_T2W_COPY =
    "insert into %s%s(GrpName, ID_Name, PhyPos,Valid, I_Name, J_Name, ID_No, Valid, I_Conn, "
    "J_Conn, Unit, R1, X1, Gm, Bm, Tk, Rate_MVA, Up_Limit, Mode_Ctrl, Par_No, Bus_Ctrl, "
    "Line_Ctrl, Value_Ctrl, Dps_KW, Vs_Perc, Dp0_KW, I0_Perc, TapMax1, TapMin1, P0_Tap1, "
    "Vstep_Tap1, V0_Tap1, Vpos_Tap1, TapMax2, TapMin2, P0_Tap2, Vstep_Tap2, V0_Tap2, Vpos_Tap2, "
    "Zero_Conn, R0, X0, Phypno) select '%s', a.ID_Name, a.PhyPos,Valid, a.I_Name, a.J_Name, "
    "a.ID_No, a.Valid, a.I_Conn, a.J_Conn, a.Unit, a.R1, a.X1, a.Gm, a.Bm, a.Tk, a.Rate_MVA, "
    "a.Up_Limit, a.Mode_Ctrl, a.Par_No, a.Bus_Ctrl, a.Line_Ctrl, a.Value_Ctrl, a.Dps_KW, "
    "a.Vs_Perc, a.Dp0_KW, a.I0_Perc, a.TapMax1, a.TapMin1, a.P0_Tap1, a.Vstep_Tap1, a.V0_Tap1, "
    "a.Vpos_Tap1, a.TapMax2, a.TapMin2, a.P0_Tap2, a.Vstep_Tap2, a.V0_Tap2, a.Vpos_Tap2, "
    "a.Zero_Conn, a.R0, a.X0, a.Phypno from %s%s a, T2W where a.id=T2W.eleid";
// Mended: the second "Valid" column and its "a.Valid" value left out.
constexpr const char* SQL_T2W_COPY_MENDED =
    "insert into %s%s(GrpName, ID_Name, PhyPos,Valid, I_Name, J_Name, ID_No, I_Conn, "
    "J_Conn, Unit, R1, X1, Gm, Bm, Tk, Rate_MVA, Up_Limit, Mode_Ctrl, Par_No, Bus_Ctrl, "
    "Line_Ctrl, Value_Ctrl, Dps_KW, Vs_Perc, Dp0_KW, I0_Perc, TapMax1, TapMin1, P0_Tap1, "
    "Vstep_Tap1, V0_Tap1, Vpos_Tap1, TapMax2, TapMin2, P0_Tap2, Vstep_Tap2, V0_Tap2, Vpos_Tap2, "
    "Zero_Conn, R0, X0, Phypno) select '%s', a.ID_Name, a.PhyPos,Valid, a.I_Name, a.J_Name, "
    "a.ID_No, a.I_Conn, a.J_Conn, a.Unit, a.R1, a.X1, a.Gm, a.Bm, a.Tk, a.Rate_MVA, "
    "a.Up_Limit, a.Mode_Ctrl, a.Par_No, a.Bus_Ctrl, a.Line_Ctrl, a.Value_Ctrl, a.Dps_KW, "
    "a.Vs_Perc, a.Dp0_KW, a.I0_Perc, a.TapMax1, a.TapMin1, a.P0_Tap1, a.Vstep_Tap1, a.V0_Tap1, "
    "a.Vpos_Tap1, a.TapMax2, a.TapMin2, a.P0_Tap2, a.Vstep_Tap2, a.V0_Tap2, a.Vpos_Tap2, "
    "a.Zero_Conn, a.R0, a.X0, a.Phypno from %s%s a, T2W where a.id=T2W.eleid";
constexpr const char* SQL_T2W_IN_GROUP =
    "update %s%s a, T2W b set a.R0=b.R0, a.X0=b.X0 where a.GrpName='%s' and a.ID_Name=b.ID_Name";
constexpr const char* SQL_T2W_IN_PLACE =
    "update %s%s a, T2W b set a.R0=b.R0, a.X0=b.X0 where a.id=b.eleid";
constexpr const char* SQL_T2W_DROP = "drop table T2W";

// ---- Phase shifters (S3 Ntype 2 into CDB_SHIFT) ----
constexpr const char* SQL_SHIFT_CHANGED_UNIT1 =
    "Create temporary Table TShift select a.eleid, a.ID_Name, a.I_Name, a.J_Name, a.ID_No, "
    "a.R0, a.X0 from %s a, %s%s b where b.id=a.eleid and a.Ntype=2 and b.unit=1 and "
    "(abs(a.R0-b.R0)>%f or abs(a.X0-b.X0)>%f)";
constexpr const char* SQL_SHIFT_CHANGED_UNIT0 =
    "insert into TShift(eleid, ID_Name,I_Name,J_Name,ID_No,R0, X0) select a.eleid, a.ID_Name, "
    "a.I_Name, a.J_Name, a.ID_No, a.R0*(c.Base_kV*c.Base_kV/%f), a.X0*(c.Base_kV*c.Base_kV/%f) "
    "from %s a, %s%s b, L1_%d c where b.id=a.eleid and c.node_name=a.I_Name and a.Ntype=2 and "
    "b.unit=0 and (abs(a.R0*(c.Base_kV*c.Base_kV/%f)-b.R0)>%f or "
    "abs(a.X0*(c.Base_kV*c.Base_kV/%f)-b.X0)>%f )";
// Accepted; it names no Ang_Shift, so a copy in a new group has the column's default.
constexpr const char* SQL_SHIFT_COPY =
    "insert into %s%s(GrpName, ID_Name, PhyPos,Valid, I_Name, J_Name, ID_No, I_Conn, J_Conn, "
    "Unit, R1, X1, Gm, Bm, Tk, Rate_MVA, Up_Limit, Mode_Ctrl, Par_No, Line_Ctrl, Pij_Ctrl, "
    "Dps_KW, Vs_Perc, Dp0_KW, I0_Perc, TapMax1, TapMin1, P0_Tap1, Vstep_Tap1, V0_Tap1, "
    "Vpos_Tap1, TapMax2, TapMin2, P0_Tap2, Vstep_Tap2, V0_Tap2, Vpos_Tap2, Zero_Conn, R0, X0, "
    "Phypno) select '%s', a.ID_Name, a.PhyPos,a.Valid, a.I_Name, a.J_Name, a.ID_No, a.I_Conn, "
    "a.J_Conn, a.Unit, a.R1, a.X1, a.Gm, a.Bm, a.Tk, a.Rate_MVA, a.Up_Limit, a.Mode_Ctrl, "
    "a.Par_No, a.Line_Ctrl, a.Pij_Ctrl, a.Dps_KW, a.Vs_Perc, a.Dp0_KW, a.I0_Perc, a.TapMax1, "
    "a.TapMin1, a.P0_Tap1, a.Vstep_Tap1, a.V0_Tap1, a.Vpos_Tap1, a.TapMax2, a.TapMin2, "
    "a.P0_Tap2, a.Vstep_Tap2, a.V0_Tap2, a.Vpos_Tap2, a.Zero_Conn, a.R0, a.X0, a.Phypno from "
    "%s%s a, TShift where a.id=TShift.eleid";
constexpr const char* SQL_SHIFT_IN_GROUP = "update %s%s a, TShift b set a.R0=b.R0, a.X0=b.X0 "
                                           "where a.GrpName='%s' and a.ID_Name=b.ID_Name";
constexpr const char* SQL_SHIFT_IN_PLACE =
    "update %s%s a, TShift b set a.R0=b.R0, a.X0=b.X0 where a.id=b.eleid";
constexpr const char* SQL_SHIFT_DROP = "drop table TShift";

// ---- Three-winding transformers (S3 Ntype 31 to 33 into CDB_TRANS_3W) ----
// Winding 1 per unit creates T3W; then winding 1 named, windings 2 and 3 per unit and named.
constexpr const char* SQL_T3W_CHANGED_W1_UNIT1 =
    "Create temporary Table T3W select a.eleid, a.Ntype, a.ID_Name, a.I_Name, a.J_Name, "
    "a.ID_No, a.R0, a.X0 from %s a, %s%s b where b.id=a.eleid and a.Ntype=31 and b.unit=1 and "
    "(abs(a.R0-b.R10)>%f or abs(a.X0-b.X10)>%f)";
// '#' stands for the winding's number (2 or 3).
constexpr const char* SQL_T3W_CHANGED_WK_UNIT1 =
    "insert into T3W(eleid, Ntype, ID_Name,I_Name,J_Name,ID_No,R0, X0) select a.eleid, "
    "a.Ntype, a.ID_Name, a.I_Name, a.J_Name, a.ID_No, a.R0, a.X0 from %s a, %s%s b where "
    "b.id=a.eleid and a.Ntype=3# and b.unit=1 and (abs(a.R0-b.R#0)>%f or abs(a.X0-b.X#0)>%f)";
// '#' stands for the winding's number (1, 2 or 3).
constexpr const char* SQL_T3W_CHANGED_UNIT0 =
    "insert into T3W(eleid, Ntype, ID_Name,I_Name,J_Name,ID_No,R0, X0) select a.eleid, "
    "a.Ntype, a.ID_Name, a.I_Name, a.J_Name, a.ID_No, a.R0*(c.Base_kV*c.Base_kV/%f), "
    "a.X0*(c.Base_kV*c.Base_kV/%f) from %s a, %s%s b, L1_%d c where b.id=a.eleid and "
    "c.node_name=a.I_Name and a.Ntype=3# and b.unit=0 and "
    "(abs(a.R0*(c.Base_kV*c.Base_kV/%f)-b.R#0)>%f or abs(a.X0*(c.Base_kV*c.Base_kV/%f)-b.X#0)>%f "
    ")";
// Names no table; run unchecked and refused every time.
constexpr const char* SQL_T3W_INDEX = "Create index Idtype on Ntype";
constexpr const char* SQL_T3W_COPY =
    "insert into %s%s(GrpName, ID_Name, PhyPos1, PhyPos2, PhyPos3,Valid, Name_1, Name_2, "
    "Name_3, Name_N, ID_No1, ID_No2, ID_No3, Break_1, Break_2, Break_3, Conn_1, Conn_2, Conn_3, "
    "Unit, R1, X1, R2, X2, R3, X3, Gm, Bm, Tk1, Tk2, Tk3, Rate_MVA1, Rate_MVA2, Rate_MVA3, "
    "Up_Limit, Side_Ctrl, Mode_Ctrl, Par_No, Bus_Ctrl, Line_Ctrl, Value_Ctrl, Dps12_KW, "
    "Dps23_KW, Dps31_KW, Vs12_Perc, Vs23_Perc, Vs31_Perc, Dp0_KW, I0_Perc, TapMax1, TapMin1, "
    "P0_Tap1, Vstep_Tap1, V0_Tap1, Vpos_Tap1, TapMax2, TapMin2, P0_Tap2, Vstep_Tap2, V0_Tap2, "
    "Vpos_Tap2, TapMax3, TapMin3, P0_Tap3, Vstep_Tap3, V0_Tap3, Vpos_Tap3, Zero_Conn1, R10, X10, "
    "Zero_Conn2, R20, X20, Zero_Conn3, R30, X30, Xz0, Phypno) select '%s', a.ID_Name, "
    "a.PhyPos1, a.PhyPos2, a.PhyPos3, a.Valid, a.Name_1, a.Name_2, a.Name_3, a.Name_N, "
    "a.ID_No1, a.ID_No2, a.ID_No3, a.Break_1, a.Break_2, a.Break_3, a.Conn_1, a.Conn_2, "
    "a.Conn_3, a.Unit, a.R1, a.X1, a.R2, a.X2, a.R3, a.X3, a.Gm, a.Bm, a.Tk1, a.Tk2, a.Tk3, "
    "a.Rate_MVA1, a.Rate_MVA2, a.Rate_MVA3, a.Up_Limit, a.Side_Ctrl, a.Mode_Ctrl, a.Par_No, "
    "a.Bus_Ctrl, a.Line_Ctrl, a.Value_Ctrl, a.Dps12_KW, a.Dps23_KW, a.Dps31_KW, a.Vs12_Perc, "
    "a.Vs23_Perc, a.Vs31_Perc, a.Dp0_KW, a.I0_Perc, a.TapMax1, a.TapMin1, a.P0_Tap1, "
    "a.Vstep_Tap1, a.V0_Tap1, a.Vpos_Tap1, a.TapMax2, a.TapMin2, a.P0_Tap2, a.Vstep_Tap2, "
    "a.V0_Tap2, a.Vpos_Tap2, a.TapMax3, a.TapMin3, a.P0_Tap3, a.Vstep_Tap3, a.V0_Tap3, "
    "a.Vpos_Tap3, a.Zero_Conn1, a.R10, a.X10, a.Zero_Conn2, a.R20, a.X20, a.Zero_Conn3, a.R30, "
    "a.X30, a.Xz0, a.Phypno from %s%s a, T3W where a.id=T3W.eleid group by a.ID_Name";
// The overwrites by winding, '#' the winding's number; the table is spelt T3w here.
constexpr const char* SQL_T3W_IN_GROUP =
    "update %s%s a, T3w b set a.Name_#=b.J_Name, ID_No#=b.ID_No, a.R#0=b.R0, a.X#0=b.X0 where "
    "a.ID_Name=b.ID_Name and a.GrpName='%s' and b.Ntype=3#";
constexpr const char* SQL_T3W_IN_PLACE =
    "update %s%s a, T3w b set a.Name_#=b.J_Name, ID_No#=b.ID_No, a.R#0=b.R0, a.X#0=b.X0 where "
    "a.id=b.eleid and b.Ntype=3#";
constexpr const char* SQL_T3W_DROP = "drop table T3W";

// ---- DC lines (S4 into CDB_DCLINE): ten control columns compared, no unit test ----
constexpr const char* SQL_DC_CHANGED =
    "Create temporary Table Tdc select a.eleid, a.ID_Name, a.I_Name, a.J_Name, a.ID_No, "
    "a.Type_fadc, a.K_fadc, a.Ts_fadc, a.Te_fadc, a.Tdo, a.Tda, a.Tdb, a.Tdc, a.N_rs, "
    "a.V_rs_Perc from %s a, %s%s b where b.id=a.eleid and (abs(a.Type_fadc-b.Type_fadc)>%f or "
    "abs(a.K_fadc-b.K_fadc)>%f or abs(a.Ts_fadc-b.Ts_fadc)>%f or abs(a.Te_fadc-b.Te_fadc)>%f or "
    "abs(a.Tdo-b.Tdo)>%f or abs(a.Tda-b.Tda)>%f or abs(a.Tdb-b.Tdb)>%f or abs(a.Tdc-b.Tdc)>%f or "
    "abs(a.N_rs-b.N_rs)>%f or abs(a.V_rs_Perc-b.V_rs_Perc)>%f )";
// 89 columns for 90 values: refused.
constexpr const char* SQL_DC_COPY =
    "insert into %s%s(GrpName, ID_Name, I_Name, J_Name, ID_No, Owner,Valid, Rpi_Ohm, Lpi_mH, "
    "Rpj_Ohm, Lpj_mH, Rl_Ohm, Ll_mH, Rei_Ohm, Rej_Ohm, Lsi_mH, Lsj_mH, OP_Mode, Vdrate_kV, "
    "Vd1_kV, Pd1_MW, A1min_D, A10_D, Gam1min_D, Gam10_D, Vd2_kV, Pd2_MW, A2min_D, A20_D, "
    "Gam2min_D, Gam20_D, Vhi_kV, Vli_kV, I_Bridge, Qci_Mvar, Sti_MVA, Rti_Ohm, Xti_Perc, "
    "Vtimax_kV, Vtimin_kV, I_Tap, Vhj_kV, Vlj_kV, J_Bridge, Qcj_Mvar, Stj_MVA, Rtj_Ohm, "
    "Xtj_Perc, Vtjmax_kV, Vtjmin_kV, J_Tap, DC_Model, reg_type, reg_fon, reg_par, reg_set, "
    "Amax_D, Amin_D, Ireg_fon, Ireg_par, Ireg_set, Vreg_fon, Vreg_par, Vreg_set, Greg_fon, "
    "Greg_par, Greg_set, Bmax_D, Bmin_D, Im_Percent, Vlow_Perc, Idmax_kA, Idmin_kA, dKi_Perc, "
    "dKj_Perc, dTi_s, dTj_s, V_relay_Perc, T_relay, Type_fadc, K_fadc, Ts_fadc, Te_fadc, Tdo, "
    "Tda, Tdb, Tdc, N_rs, V_rs_Perc) select '%s', a.GrpName, a.ID_Name, a.I_Name, a.J_Name, "
    "a.ID_No, a.Owner,a.Valid, a.Rpi_Ohm, a.Lpi_mH, a.Rpj_Ohm, a.Lpj_mH, a.Rl_Ohm, a.Ll_mH, "
    "a.Rei_Ohm, a.Rej_Ohm, a.Lsi_mH, a.Lsj_mH, a.OP_Mode, a.Vdrate_kV, a.Vd1_kV, a.Pd1_MW, "
    "a.A1min_D, a.A10_D, a.Gam1min_D, a.Gam10_D, a.Vd2_kV, a.Pd2_MW, a.A2min_D, a.A20_D, "
    "a.Gam2min_D, a.Gam20_D, a.Vhi_kV, a.Vli_kV, a.I_Bridge, a.Qci_Mvar, a.Sti_MVA, a.Rti_Ohm, "
    "a.Xti_Perc, a.Vtimax_kV, a.Vtimin_kV, a.I_Tap, a.Vhj_kV, a.Vlj_kV, a.J_Bridge, a.Qcj_Mvar, "
    "a.Stj_MVA, a.Rtj_Ohm, a.Xtj_Perc, a.Vtjmax_kV, a.Vtjmin_kV, a.J_Tap, a.DC_Model, "
    "a.reg_type, a.reg_fon, a.reg_par, a.reg_set, a.Amax_D, a.Amin_D, a.Ireg_fon, a.Ireg_par, "
    "a.Ireg_set, a.Vreg_fon, a.Vreg_par, a.Vreg_set, a.Greg_fon, a.Greg_par, a.Greg_set, "
    "a.Bmax_D, a.Bmin_D, a.Im_Percent, a.Vlow_Perc, a.Idmax_kA, a.Idmin_kA, a.dKi_Perc, "
    "a.dKj_Perc, a.dTi_s, a.dTj_s, a.V_relay_Perc, a.T_relay, a.Type_fadc, a.K_fadc, a.Ts_fadc, "
    "a.Te_fadc, a.Tdo, a.Tda, a.Tdb, a.Tdc, a.N_rs, a.V_rs_Perc from %s%s a, Tdc where "
    "a.id=Tdc.eleid";
// Mended: "a.GrpName" left out. It stands behind the new group's name and has no column of
// its own (GrpName takes the group's name), so every later value sat one column late.
constexpr const char* SQL_DC_COPY_MENDED =
    "insert into %s%s(GrpName, ID_Name, I_Name, J_Name, ID_No, Owner,Valid, Rpi_Ohm, Lpi_mH, "
    "Rpj_Ohm, Lpj_mH, Rl_Ohm, Ll_mH, Rei_Ohm, Rej_Ohm, Lsi_mH, Lsj_mH, OP_Mode, Vdrate_kV, "
    "Vd1_kV, Pd1_MW, A1min_D, A10_D, Gam1min_D, Gam10_D, Vd2_kV, Pd2_MW, A2min_D, A20_D, "
    "Gam2min_D, Gam20_D, Vhi_kV, Vli_kV, I_Bridge, Qci_Mvar, Sti_MVA, Rti_Ohm, Xti_Perc, "
    "Vtimax_kV, Vtimin_kV, I_Tap, Vhj_kV, Vlj_kV, J_Bridge, Qcj_Mvar, Stj_MVA, Rtj_Ohm, "
    "Xtj_Perc, Vtjmax_kV, Vtjmin_kV, J_Tap, DC_Model, reg_type, reg_fon, reg_par, reg_set, "
    "Amax_D, Amin_D, Ireg_fon, Ireg_par, Ireg_set, Vreg_fon, Vreg_par, Vreg_set, Greg_fon, "
    "Greg_par, Greg_set, Bmax_D, Bmin_D, Im_Percent, Vlow_Perc, Idmax_kA, Idmin_kA, dKi_Perc, "
    "dKj_Perc, dTi_s, dTj_s, V_relay_Perc, T_relay, Type_fadc, K_fadc, Ts_fadc, Te_fadc, Tdo, "
    "Tda, Tdb, Tdc, N_rs, V_rs_Perc) select '%s', a.ID_Name, a.I_Name, a.J_Name, "
    "a.ID_No, a.Owner,a.Valid, a.Rpi_Ohm, a.Lpi_mH, a.Rpj_Ohm, a.Lpj_mH, a.Rl_Ohm, a.Ll_mH, "
    "a.Rei_Ohm, a.Rej_Ohm, a.Lsi_mH, a.Lsj_mH, a.OP_Mode, a.Vdrate_kV, a.Vd1_kV, a.Pd1_MW, "
    "a.A1min_D, a.A10_D, a.Gam1min_D, a.Gam10_D, a.Vd2_kV, a.Pd2_MW, a.A2min_D, a.A20_D, "
    "a.Gam2min_D, a.Gam20_D, a.Vhi_kV, a.Vli_kV, a.I_Bridge, a.Qci_Mvar, a.Sti_MVA, a.Rti_Ohm, "
    "a.Xti_Perc, a.Vtimax_kV, a.Vtimin_kV, a.I_Tap, a.Vhj_kV, a.Vlj_kV, a.J_Bridge, a.Qcj_Mvar, "
    "a.Stj_MVA, a.Rtj_Ohm, a.Xtj_Perc, a.Vtjmax_kV, a.Vtjmin_kV, a.J_Tap, a.DC_Model, "
    "a.reg_type, a.reg_fon, a.reg_par, a.reg_set, a.Amax_D, a.Amin_D, a.Ireg_fon, a.Ireg_par, "
    "a.Ireg_set, a.Vreg_fon, a.Vreg_par, a.Vreg_set, a.Greg_fon, a.Greg_par, a.Greg_set, "
    "a.Bmax_D, a.Bmin_D, a.Im_Percent, a.Vlow_Perc, a.Idmax_kA, a.Idmin_kA, a.dKi_Perc, "
    "a.dKj_Perc, a.dTi_s, a.dTj_s, a.V_relay_Perc, a.T_relay, a.Type_fadc, a.K_fadc, a.Ts_fadc, "
    "a.Te_fadc, a.Tdo, a.Tda, a.Tdb, a.Tdc, a.N_rs, a.V_rs_Perc from %s%s a, Tdc where "
    "a.id=Tdc.eleid";
constexpr const char* SQL_DC_IN_GROUP =
    "update %s%s a, Tdc b set a.Type_fadc=b.Type_fadc, a.K_fadc=b.K_fadc, a.Ts_fadc=b.Ts_fadc, "
    "a.Te_fadc=b.Te_fadc, a.Tdo=b.Tdo, a.Tda=b.Tda, a.Tdb=b.Tdb, a.Tdc=b.Tdc, a.N_rs=b.N_rs, "
    "a.V_rs_Perc=b.V_rs_Perc where a.GrpName='%s' and a.ID_Name=b.ID_Name";
constexpr const char* SQL_DC_IN_PLACE =
    "update %s%s a, Tdc b set a.Type_fadc=b.Type_fadc, a.K_fadc=b.K_fadc, a.Ts_fadc=b.Ts_fadc, "
    "a.Te_fadc=b.Te_fadc, a.Tdo=b.Tdo, a.Tda=b.Tda, a.Tdb=b.Tdb, a.Tdc=b.Tdc, a.N_rs=b.N_rs, "
    "a.V_rs_Perc=b.V_rs_Perc where a.id=b.eleid";
constexpr const char* SQL_DC_DROP = "drop table Tdc";

// ---- Generators (S5 into CDB_GENERAT): model numbers exact, the rest by the tolerance ----
constexpr const char* SQL_GEN_CHANGED =
    "Create temporary Table TGen select a.EleID, a.ID_Name, a.Node_Name, a.Gen_Model, a.Gen_Par, "
    "a.AVR_Model, a.AVR_Par, a.GOV_Model, a.GOV_Par, a.PSS_Model, a.PSS_Par, a.Rate_MVA, "
    "a.Rate_MW, a.Xdp, a.Xdpp, a.X2, a.Tj from %s a, %s%s b where b.id=a.eleid and "
    "(a.Gen_Model!=b.Gen_Model or a.Gen_Par!=b.Gen_Par or a.AVR_Model!=b.AVR_Model or "
    "a.AVR_Par!=b.AVR_Par or a.GOV_Model!=b.GOV_Model or a.GOV_Par!=b.GOV_Par or "
    "a.PSS_Model!=b.PSS_Model or a.PSS_Par!=b.PSS_Par or abs(a.Rate_MVA-b.Rate_MVA)>%f or "
    "abs(a.Rate_MW-b.Rate_MW)>%f or abs(a.Xdp-b.Xdp)>%f or abs(a.Xdpp-b.Xdpp)>%f or "
    "abs(a.X2-b.X2)>%f or abs(a.Tj-b.Tj)>%f)";
constexpr const char* SQL_GEN_COPY =
    "insert into %s%s(GrpName, ID_Name, Node_Name, Mode_Ctrl, Unit,Valid, Pg, Qg, V0, Angle, "
    "Qmax, Qmin, Pmax, Pmin, Par_Group, Bus_Ctrl, Line_Ctrl, Value_Ctrl, Gen_Model, Gen_Par, "
    "AVR_Model, AVR_Par, GOV_Model, GOV_Par, PSS_Model, PSS_Par, Rate_MVA, Rate_MW, Xdp, Xdpp, "
    "X2, Tj) select '%s', a.ID_Name, a.Node_Name, a.Mode_Ctrl, a.Unit,a.Valid, a.Pg, a.Qg, "
    "a.V0, a.Angle, a.Qmax, a.Qmin, a.Pmax, a.Pmin, a.Par_Group, a.Bus_Ctrl, a.Line_Ctrl, "
    "a.Value_Ctrl, a.Gen_Model, a.Gen_Par, a.AVR_Model, a.AVR_Par, a.GOV_Model, a.GOV_Par, "
    "a.PSS_Model, a.PSS_Par, a.Rate_MVA, a.Rate_MW, a.Xdp, a.Xdpp, a.X2, a.Tj from %s%s a, TGen "
    "where a.id=TGen.eleid";
constexpr const char* SQL_GEN_IN_GROUP =
    "update %s%s a, TGen b set a.Gen_Model=b.Gen_Model, a.Gen_Par=b.Gen_Par, "
    "a.AVR_Model=b.AVR_Model, a.AVR_Par=b.AVR_Par, a.GOV_Model=b.GOV_Model, a.GOV_Par=b.GOV_Par, "
    "a.PSS_Model=b.PSS_Model, a.PSS_Par=b.PSS_Par, a.Rate_MVA=b.Rate_MVA, a.Rate_MW=b.Rate_MW, "
    "a.Xdp=b.Xdp, a.Xdpp=b.Xdpp, a.X2=b.X2, a.Tj=b.Tj where a.GrpName='%s' and "
    "a.ID_Name=b.ID_Name";
constexpr const char* SQL_GEN_IN_PLACE =
    "update %s%s a, TGen b set a.Gen_Model=b.Gen_Model, a.Gen_Par=b.Gen_Par, "
    "a.AVR_Model=b.AVR_Model, a.AVR_Par=b.AVR_Par, a.GOV_Model=b.GOV_Model, a.GOV_Par=b.GOV_Par, "
    "a.PSS_Model=b.PSS_Model, a.PSS_Par=b.PSS_Par, a.Rate_MVA=b.Rate_MVA, a.Rate_MW=b.Rate_MW, "
    "a.Xdp=b.Xdp, a.Xdpp=b.Xdpp, a.X2=b.X2, a.Tj=b.Tj where a.id=b.eleid";
constexpr const char* SQL_GEN_DROP = "drop table TGen";

// ---- Loads (S6 into CDB_LOAD): all three compared exactly ----
// TLoad is an ordinary table: a run that fails before its drop leaves it, and the next
// run's create fails until somebody drops it.
constexpr const char* SQL_LOAD_CHANGED =
    "Create Table TLoad select a.EleID, a.ID_Name,a.Node_Name, a.Load_Model, a.Load_Par, "
    "a.Z_Percent from %s a, %s%s b where b.id=a.eleid and (a.Load_Model!=b.Load_Model or "
    "a.Load_Par!=b.Load_Par or a.Z_Percent!=b.Z_Percent)";
constexpr const char* SQL_LOAD_COPY =
    "insert into %s%s(GrpName, ID_Name, Node_Name, No_Load, Valid,Mode_Ctrl, Unit, Pl, Ql, V0, "
    "Angle, Qmax, Qmin, Pmax, Pmin, Par_Group, Bus_Ctrl, Line_Ctrl, Value_Ctrl, Load_Model, "
    "Load_Par, Z_Percent) select '%s', a.ID_Name, a.Node_Name, a.No_Load, a.Valid, a.Mode_Ctrl, "
    "a.Unit, a.Pl, a.Ql, a.V0, a.Angle, a.Qmax, a.Qmin, a.Pmax, a.Pmin, a.Par_Group, a.Bus_Ctrl, "
    "a.Line_Ctrl, a.Value_Ctrl, a.Load_Model, a.Load_Par, a.Z_Percent from %s%s a, TLoad where "
    "a.id=TLoad.eleid";
constexpr const char* SQL_LOAD_IN_GROUP =
    "update %s%s a, TLoad b set a.Load_Model=b.Load_Model, a.Load_Par=b.Load_Par, a.Z_Percent "
    "=b.Z_Percent where a.GrpName='%s' and a.ID_Name=b.ID_Name";
constexpr const char* SQL_LOAD_IN_PLACE =
    "update %s%s a, TLoad b set a.Load_Model=b.Load_Model, a.Load_Par=b.Load_Par, a.Z_Percent "
    "=b.Z_Percent where a.id=b.eleid";
constexpr const char* SQL_LOAD_DROP = "drop table TLoad";

} // namespace sts
