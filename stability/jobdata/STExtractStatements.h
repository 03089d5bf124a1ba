#pragma once
// Statement templates and messages of the stability extraction (CSTCalDataTransfer), base
// database to the stability job tables S2_n ... S7_n. Base tables are always named "%s%s"
// of the plain name and WORKING_COPY. Where a family's statement is given by its columns
// rather than as one text (the series and shunt compensators, the physical-unit twin of
// the transformers, the three windings, DC lines, generators, SVCs), the text below is
// this project's composition, in the shape of its family's given statement.

namespace stx {

constexpr const char* WORKING_COPY = "BAK";

// ---- The object ----
constexpr const char* SQL_LF_SCHEME = "SELECT SCHEME FROM %s WHERE Case_No=%d ";
constexpr const char* SQL_BASE_POWER = "SELECT Base_Mva FROM %s%s ";

// ---- Emptying the job tables ----
// S4 stands twice: the second pass deletes from the emptied table again.
constexpr const char* JOB_PREFIXES[] = {"S2", "S3", "S4", "S4", "S5", "S6", "S7"};
constexpr const char* SQL_DELETE_JOB = "DELETE FROM %s_%d";
constexpr const char* MSG_DELETE_JOB = "%s_%d表可能不存在, 导入计算数据发生错误！";
constexpr const char* SQL_DELETE_BUSMAP = "DELETE FROM %s%s WHERE Case_No= %d ";

// ---- The driver ----
constexpr const char* MSG_START = "基础库数据抽取开始...";
// Not the design's: a scheme name wider than the transfer holds is refused before anything.
constexpr const char* MSG_SCHEME_TOO_LONG =
    "计算方案名 %s 超过%d字节（汉字按2字节计），无法按方案抽取暂稳数据，作业表未作任何修改。";
constexpr const char* MSG_DONE = "基础库数据抽取完成。";
constexpr const char* SQL_DROP_STALE_TMP = "DROP TABLE IF EXISTS tmp ";
constexpr const char* SQL_CASE_ROW = "SELECT Case_No FROM %s WHERE Case_No=%d ";
constexpr const char* SQL_CASE_INSERT = "INSERT INTO %s SET Case_No=%d ";
// A tab stands before Case_No.
constexpr const char* SQL_CASE_COUNTS = "UPDATE %s SET Nbus=%d,Ngenerat=%d,Nload=%d,Nacline=%d,"
                                        "Ndcline=%d,Ntrans=%d,Nsvc=%d WHERE\tCase_No=%d ";
constexpr const char* MSG_CASE_COUNTS = "更新暂稳作业表元件个数信息发生错误！";
constexpr const char* MSG_SQL_FAIL = "Fail to execute SQL: %s";

// ---- The working table tmp ----
// S2 and S3 make a plain one, S4 to S6 an indexed one; S7 uses the one S6 leaves.
constexpr const char* SQL_CREATE_TMP_PLAIN = "CREATE TABLE tmp ( ID int )";
constexpr const char* SQL_CREATE_TMP = "CREATE TABLE tmp ( ID int unsigned, INDEX(ID) )";
constexpr const char* SQL_DROP_TMP_RETRY = "drop TABLE tmp";
constexpr const char* SQL_DROP_TMP = "DROP TABLE tmp ";
constexpr const char* SQL_CLEAR_TMP = "DELETE FROM tmp ";
constexpr const char* MSG_DB_ERROR = "数据库操作发生错误！";
// The scheme picks one row per ID_Name (the source composed beforehand): the highest
// group level, then the ID whose decimal text sorts highest.
constexpr const char* SQL_SCHEME =
    "INSERT INTO tmp SELECT 0+substring(MAX(CONCAT(LPAD(a.Nlever,3,'0'),b.ID)),4) FROM %s b,"
    "%s%s c,%s%s a where c.SchName='%s' AND a.IDSch=c.ID AND b.GrpName=a.GrpName GROUP BY "
    "b.ID_Name";

// ---- S2: AC lines (Ntype 1), series (2) and shunt (3) compensators ----
// Per unit as stored: job table, Ntype, source.
constexpr const char* SQL_S2_AC_UNIT1 =
    "insert into %s(EleID, ID_Name, I_Name, J_Name, ID_No, R0, X0, B0_Half, Ntype) select a.id, "
    "a.ID_Name, a.I_Name, a.J_Name, a.ID_No, a.R0, a.X0, a.B0_Half, %d from %s a, tmp where "
    "a.id=tmp.id and a.unit=1";
// Named units by the base voltage of the I node's bus: job table, base power three times,
// Ntype, source, then node and bus tables.
constexpr const char* SQL_S2_AC_UNIT0 =
    "insert into %s(EleID, ID_Name, I_Name, J_Name, ID_No, R0, X0, B0_Half, Ntype) select a.id, "
    "a.ID_Name, a.I_Name, a.J_Name, a.ID_No, a.R0/(b.Base_kV*b.Base_kV/%f), "
    "a.X0/(b.Base_kV*b.Base_kV/%f), a.B0_Half*1.e-6*(b.Base_kV*b.Base_kV/%f), %d from %s a,%s%s "
    "c,%s%s b, tmp where a.i_name=c.Node_Name and b.Bus_Name=c.Bus_Name and a.id=tmp.id and "
    "a.unit=0";
// Series compensators: B0_Half written as 0; base power twice in the named-unit text.
constexpr const char* SQL_S2_SCR_UNIT1 =
    "insert into %s(EleID, ID_Name, I_Name, J_Name, ID_No, R0, X0, B0_Half, Ntype) select a.id, "
    "a.ID_Name, a.I_Name, a.J_Name, a.ID_No, a.R0, a.X0, 0, %d from %s a, tmp where "
    "a.id=tmp.id and a.unit=1";
constexpr const char* SQL_S2_SCR_UNIT0 =
    "insert into %s(EleID, ID_Name, I_Name, J_Name, ID_No, R0, X0, B0_Half, Ntype) select a.id, "
    "a.ID_Name, a.I_Name, a.J_Name, a.ID_No, a.R0/(b.Base_kV*b.Base_kV/%f), "
    "a.X0/(b.Base_kV*b.Base_kV/%f), 0, %d from %s a,%s%s c,%s%s b, tmp where "
    "a.i_name=c.Node_Name and b.Bus_Name=c.Bus_Name and a.id=tmp.id and a.unit=0";
// Shunt compensators: their node for both ends and for the base voltage.
constexpr const char* SQL_S2_PCR_UNIT1 =
    "insert into %s(EleID, ID_Name, I_Name, J_Name, ID_No, R0, X0, B0_Half, Ntype) select a.id, "
    "a.ID_Name, a.Node_Name, a.Node_Name, a.ID_No, a.R0, a.X0, 0, %d from %s a, tmp where "
    "a.id=tmp.id and a.unit=1";
constexpr const char* SQL_S2_PCR_UNIT0 =
    "insert into %s(EleID, ID_Name, I_Name, J_Name, ID_No, R0, X0, B0_Half, Ntype) select a.id, "
    "a.ID_Name, a.Node_Name, a.Node_Name, a.ID_No, a.R0/(b.Base_kV*b.Base_kV/%f), "
    "a.X0/(b.Base_kV*b.Base_kV/%f), 0, %d from %s a,%s%s c,%s%s b, tmp where "
    "a.Node_Name=c.Node_Name and b.Bus_Name=c.Bus_Name and a.id=tmp.id and a.unit=0";

// ---- S3: two-winding transformers (Ntype 1), phase shifters (2), windings (31-33) ----
// The zero-sequence connection coded, and a winding connected "NO" left out.
constexpr const char* SQL_S3_UNIT1 =
    "insert into %s(EleID, ID_Name, I_Name, J_Name, ID_No, ZCtype, R0, X0, Ntype) select a.id, "
    "a.ID_Name, a.I_Name, a.J_Name, a.ID_No, case a.Zero_Conn when 'IG' then 1 when 'JG' then 2 "
    "when 'IJ' then 3 else 0 end, a.R0, a.X0, %d from %s a, tmp where a.id=tmp.id and a.unit=1 "
    "and a.Zero_Conn!='NO'";
// Job table, base power twice, Ntype, source, node and bus tables.
constexpr const char* SQL_S3_UNIT0 =
    "insert into %s(EleID, ID_Name, I_Name, J_Name, ID_No, ZCtype, R0, X0, Ntype) select a.id, "
    "a.ID_Name, a.I_Name, a.J_Name, a.ID_No, case a.Zero_Conn when 'IG' then 1 when 'JG' then 2 "
    "when 'IJ' then 3 else 0 end, a.R0/(b.Base_kV*b.Base_kV/%f), a.X0/(b.Base_kV*b.Base_kV/%f), "
    "%d from %s a,%s%s c,%s%s b, tmp where a.i_name=c.Node_Name and b.Bus_Name=c.Bus_Name and "
    "a.id=tmp.id and a.unit=0 and a.Zero_Conn!='NO'";
// One winding of a three-winding transformer, '#' standing for its number: the star node
// as I end and base voltage, the winding's node as J end.
constexpr const char* SQL_S3_T3W_UNIT1 =
    "insert into %s(EleID, ID_Name, I_Name, J_Name, ID_No, ZCtype, R0, X0, Ntype) select a.id, "
    "a.ID_Name, a.Name_N, a.Name_#, a.ID_No#, case a.Zero_Conn# when 'IG' then 1 when 'JG' then "
    "2 when 'IJ' then 3 else 0 end, a.R#0, a.X#0, %d from %s a, tmp where a.id=tmp.id and "
    "a.unit=1 and a.Zero_Conn#!='NO'";
constexpr const char* SQL_S3_T3W_UNIT0 =
    "insert into %s(EleID, ID_Name, I_Name, J_Name, ID_No, ZCtype, R0, X0, Ntype) select a.id, "
    "a.ID_Name, a.Name_N, a.Name_#, a.ID_No#, case a.Zero_Conn# when 'IG' then 1 when 'JG' then "
    "2 when 'IJ' then 3 else 0 end, a.R#0/(b.Base_kV*b.Base_kV/%f), "
    "a.X#0/(b.Base_kV*b.Base_kV/%f), %d from %s a,%s%s c,%s%s b, tmp where "
    "a.Name_N=c.Node_Name and b.Bus_Name=c.Bus_Name and a.id=tmp.id and a.unit=0 and "
    "a.Zero_Conn#!='NO'";

// ---- S4: DC lines, in the lower-case table name "s4_%d"; no unit, no conversion ----
constexpr const char* S4_TABLE = "s4_%d";
constexpr const char* SQL_S4 =
    "INSERT INTO %s(EleID, ID_Name, I_Name, J_Name, ID_No, DC_Model, reg_type, reg_fon, "
    "reg_par, reg_set, Amax_D, Amin_D, Ireg_fon, Ireg_par, Ireg_set, Vreg_fon, Vreg_par, "
    "Vreg_set, Greg_fon, Greg_par, Greg_set, Bmax_D, Bmin_D, Im_Percent, Vlow_Perc, Idmax_kA, "
    "Idmin_kA, dKi_Perc, dKj_Perc, dTi_s, dTj_s, V_relay_Perc, T_relay, Type_fadc, K_fadc, "
    "Ts_fadc, Te_fadc, Tdo, Tda, Tdb, Tdc, N_rs, V_rs_Perc) SELECT a.id, a.ID_Name, a.I_Name, "
    "a.J_Name, a.ID_No, a.DC_Model, a.reg_type, a.reg_fon, a.reg_par, a.reg_set, a.Amax_D, "
    "a.Amin_D, a.Ireg_fon, a.Ireg_par, a.Ireg_set, a.Vreg_fon, a.Vreg_par, a.Vreg_set, "
    "a.Greg_fon, a.Greg_par, a.Greg_set, a.Bmax_D, a.Bmin_D, a.Im_Percent, a.Vlow_Perc, "
    "a.Idmax_kA, a.Idmin_kA, a.dKi_Perc, a.dKj_Perc, a.dTi_s, a.dTj_s, a.V_relay_Perc, "
    "a.T_relay, a.Type_fadc, a.K_fadc, a.Ts_fadc, a.Te_fadc, a.Tdo, a.Tda, a.Tdb, a.Tdc, "
    "a.N_rs, a.V_rs_Perc FROM %s%s a,tmp WHERE a.id=tmp.id";

// ---- S5: generators' dynamic models, S6: loads' models ----
constexpr const char* SQL_S5 =
    "INSERT INTO %s(EleID, ID_Name, Node_Name, Gen_Model, Gen_Par, AVR_Model, AVR_Par, "
    "GOV_Model, GOV_Par, PSS_Model, PSS_Par, Rate_MVA, Rate_MW, Xdp, Xdpp, X2, Tj) SELECT a.id, "
    "a.ID_Name, a.Node_Name, a.Gen_Model, a.Gen_Par, a.AVR_Model, a.AVR_Par, a.GOV_Model, "
    "a.GOV_Par, a.PSS_Model, a.PSS_Par, a.Rate_MVA, a.Rate_MW, a.Xdp, a.Xdpp, a.X2, a.Tj FROM "
    "%s%s a,tmp WHERE a.ID=tmp.ID";
constexpr const char* SQL_S6 =
    "INSERT INTO %s(EleID, ID_Name, Node_Name, No_Load, Load_Model, Load_Par, Z_Percent) SELECT "
    "a.id, a.ID_Name, a.Node_Name, a.No_Load, a.Load_Model, a.Load_Par, a.Z_Percent FROM %s%s "
    "a,tmp WHERE a.ID=tmp.ID";

// ---- S7: static var compensators; only X_Fixed converted, by the Set_Bus node ----
constexpr const char* SQL_S7_UNIT1 =
    "insert into %s(EleID, ID_Name, Valid, Set_Bus, Ctrl_Bus, Model, Par_No, X_Fixed) select "
    "a.id, a.ID_Name, a.Valid, a.Set_Bus, a.Ctrl_Bus, a.Model, a.Par_No, a.X_Fixed from %s a, "
    "tmp where a.id=tmp.id and a.unit=1";
constexpr const char* SQL_S7_UNIT0 =
    "insert into %s(EleID, ID_Name, Valid, Set_Bus, Ctrl_Bus, Model, Par_No, X_Fixed) select "
    "a.id, a.ID_Name, a.Valid, a.Set_Bus, a.Ctrl_Bus, a.Model, a.Par_No, "
    "a.X_Fixed/(b.Base_kV*b.Base_kV/%f) from %s a,%s%s c,%s%s b, tmp where "
    "a.Set_Bus=c.Node_Name and b.Bus_Name=c.Bus_Name and a.id=tmp.id and a.unit=0";

} // namespace stx
