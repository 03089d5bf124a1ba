#pragma once
// Statement templates, field lists, row formats and messages of the load-flow results
// (CLFResultDataTransfer), in both directions. Tables by family: the LFR_*_R table for a
// load flow, the OPFR_*_R table for an optimal flow.

namespace lfr {

// ---- Result tables into the real-time database ----
constexpr const char* SQL_ACLINE_LFR =
    "SELECT ID_Name,Pi,Qi,Pj,Qj,Qci,Qcj,ibs,zbs,q,topflags,I_Name,J_Name FROM %s WHERE Case_No=%d";
constexpr const char* SQL_ACLINE_OPFR =
    "SELECT ID_Name,Pi,Qi,Pj,Qj,Qci,Qcj FROM %s WHERE Case_No=%d";
constexpr const char* SQL_PCR_LFR =
    "SELECT ID_Name,Pi,Qi,ibs,q,topflags,Bus_Name FROM %s WHERE Case_No=%d";
constexpr const char* SQL_PCR_OPFR = "SELECT ID_Name,Pi,Qi FROM %s WHERE Case_No=%d";
constexpr const char* SQL_GEN_LFR =
    "SELECT ID_Name,Pg,Qg,ibs,q,topflags,Bus_Name FROM %s WHERE Case_No=%d";
constexpr const char* SQL_GEN_OPFR = "SELECT ID_Name,Pg,Qg FROM %s WHERE Case_No=%d";
constexpr const char* SQL_LOAD_LFR =
    "SELECT ID_Name,Pl,Ql,ibs,q,topflags,Bus_Name FROM %s WHERE Case_No=%d";
constexpr const char* SQL_LOAD_OPFR = "SELECT ID_Name,Pl,Ql FROM %s WHERE Case_No=%d";
constexpr const char* SQL_T2W_LFR =
    "SELECT ID_Name,Pi,Qi,Pj,Qj,Pm,Qm,ibs,zbs,q,topflags,I_Name,J_Name FROM %s WHERE Case_No=%d";
constexpr const char* SQL_T2W_OPFR = "SELECT ID_Name,Pi,Qi,Pj,Qj,Pm,Qm FROM %s WHERE Case_No=%d";
constexpr const char* SQL_BREAKER = "SELECT ID_Name,P,Q FROM %s WHERE Case_No=%d";
constexpr const char* SQL_BUS_LFR = "SELECT Bus_Name,V,Angle,ibs,topflags FROM %s WHERE Case_No=%d";
constexpr const char* SQL_BUS_OPFR = "SELECT Bus_Name,V,Angle FROM %s WHERE Case_No=%d";
constexpr const char* SQL_BS_OPFR = "SELECT Bus_Name,V,Angle FROM %s WHERE Case_No=%d";
constexpr const char* SQL_BS_LFR =
    "SELECT Bus_Name,V,Angle,ibs,ikv,iisland,q,qq FROM %s WHERE Case_No=%d";
constexpr const char* SQL_BS_REBUILD =
    "SELECT Bus_Name,V,Angle,ibs,ikv,iisland,q,qq FROM %s WHERE Case_No=%d ORDER BY ibs";
constexpr const char* BS_PLACEHOLDER = "NULL%d";
constexpr const char* SQL_T3W_OPFR =
    "SELECT ID_Name,P1,Q1,P2,Q2,P3,Q3,Pm,Qm FROM %s WHERE Case_No=%d";
constexpr const char* SQL_T3W_LFR =
    "SELECT ID_Name,P1,Q1,P2,Q2,P3,Q3,Pm,Qm,ibs,z1bs,ibs,z2bs,ibs,z3bs,qq1,topflags1,qq2,"
    "topflags2,qq3,topflags3, Name_N,Name_1,Name_N,Name_2,Name_N,Name_3 FROM %s WHERE Case_No=%d";
constexpr const char* SQL_DCLINE_OPFR =
    "SELECT ID_Name,Owner,OP_Mode,Id10,Id20,Vaci,Vacj,Pd1i,Qd1i,Vd10i, Tk1i,TTk1i,A10r_D,Pd1j,"
    "Qd1j,Vd10j,Tk1j,TTk1j,Pd2i,Qd2i,Vd20i,Tk2i,TTk2i,A20r_D,Pd2j, Qd2j,Vd20j,Tk2j,TTk2j,Vbi,"
    "Vbj,Vdb,Idb,Zdb,Ldb,Tkbi,Tkbj,Rpi,Lpi,Rpj,Lpj,Rl,Ll,Rei,Rej, Lsi,Lsj,Xci,Xcj,Tkimax,"
    "Tkimin,Tkjmax,Tkjmin,Qcip,Qcjp FROM %s WHERE Case_No=%d";
constexpr const char* SQL_DCLINE_LFR =
    "SELECT ID_Name,Owner,OP_Mode,Id10,Id20,Vaci,Vacj,Pd1i,Qd1i,Vd10i, Tk1i,TTk1i,A10r_D,Pd1j,"
    "Qd1j,Vd10j,Tk1j,TTk1j,Pd2i,Qd2i,Vd20i,Tk2i,TTk2i,A20r_D,Pd2j, Qd2j,Vd20j,Tk2j,TTk2j,Vbi,"
    "Vbj,Vdb,Idb,Zdb,Ldb,Tkbi,Tkbj,Rpi,Lpi,Rpj,Lpj,Rl,Ll,Rei,Rej, Lsi,Lsj,Xci,Xcj,Tkimax,"
    "Tkimin,Tkjmax,Tkjmin,Qcip,Qcjp,ibs,zbs,q,topflags,I_Name,J_Name FROM %s WHERE Case_No=%d";

constexpr const char* MSG_Q_ACLINE = "查询交流线结果数据发生错误！";
constexpr const char* MSG_Q_PCR = "查询并联电容电抗器结果数据发生错误！";
constexpr const char* MSG_Q_GEN = "查询发电机结果数据发生错误！";
constexpr const char* MSG_Q_LOAD = "查询负荷结果数据发生错误！";
constexpr const char* MSG_Q_T2W = "查询两绕组变压器结果数据发生错误！";
constexpr const char* MSG_Q_SHIFT = "查询移相变压器结果数据发生错误！";
constexpr const char* MSG_Q_T3W = "查询三绕组变压器结果数据发生错误！";
constexpr const char* MSG_Q_BREAKER = "查询开关结果数据发生错误！";
constexpr const char* MSG_Q_BUS = "查询母线结果数据发生错误！";
constexpr const char* MSG_Q_DCLINE = "查询直流线结果数据发生错误！";
constexpr const char* MSG_NO_BUS = "实时库物理母线表中没有节点名nd='%s'的记录！";

// ---- Real-time records into result tables ----
constexpr const char* SQL_DELETE_CASE = "DELETE FROM %s WHERE Case_No=%d";
constexpr const char* MSG_NO_KV = "实时库中没有母线数据";

constexpr const char* FLD_BS =
    "Case_No, Bus_Name, V, Angle, KV,Zone_No,Base_kV,Vmax_kV,Vmin_kV";
constexpr const char* FLD_BS_LFR =
    "Case_No, Bus_Name, V, Angle, KV,Zone_No,Base_kV,Vmax_kV,Vmin_kV,ibs,ikv,iisland,q,qq ";
constexpr const char* FLD_BUS = "Case_No, Bus_Name, V, Angle, KV";
constexpr const char* FLD_BUS_LFR = "Case_No, Bus_Name, V, Angle, KV, ibs,topflags";
constexpr const char* FLD_ACLINE =
    "Case_No,ID_Name,I_Name,J_Name,ID_No,Pi,Qi,Pj,Qj,Qci,Qcj,Vi,Vj,Anglei,Anglej,Zone_No,"
    "Rate_kA,Up_Limit";
constexpr const char* FLD_ACLINE_LFR =
    "Case_No,ID_Name,I_Name,J_Name,ID_No,Pi,Qi,Pj,Qj,Qci,Qcj,Vi,Vj,Anglei,Anglej,Zone_No,"
    "Rate_kA,Up_Limit,ibs,zbs,q,topflags";
constexpr const char* FLD_SCR = "Case_No,ID_Name,I_Name,J_Name,ID_No,Pi,Qi,Pj,Qj,Qci,Qcj,Vi,Vj,Zone_No";
constexpr const char* FLD_SCR_LFR =
    "Case_No,ID_Name,I_Name,J_Name,ID_No,Pi,Qi,Pj,Qj,Qci,Qcj,Vi,Vj,Zone_No,ibs,zbs,q,topflags";
constexpr const char* FLD_PCR = "Case_No,ID_Name,Bus_Name,ID_No,Pi,Qi,Vi,KV";
constexpr const char* FLD_PCR_LFR = "Case_No,ID_Name,Bus_Name,ID_No,Pi,Qi,Vi,KV,ibs,q,topflags";
constexpr const char* FLD_GEN = "Case_No,ID_Name,Bus_Name,Pg,Qg,V,Angle,Mode_Ctrl";
constexpr const char* FLD_GEN_LFR = "Case_No,ID_Name,Bus_Name,Pg,Qg,V,Angle,Mode_Ctrl,ibs,q,topflags";
constexpr const char* FLD_LOAD = "Case_No,ID_Name,Bus_Name,No_Load,Pl,Ql,V,Angle,Mode_Ctrl";
constexpr const char* FLD_LOAD_LFR =
    "Case_No,ID_Name,Bus_Name,No_Load,Pl,Ql,V,Angle,Mode_Ctrl,ibs,q,topflags";
constexpr const char* FLD_T2W =
    "Case_No,ID_Name,I_Name,J_Name,ID_No,Pi,Qi,Pj,Qj,Pm,Qm,Tk,Vi,Vj,Anglei,Anglej,Rate_MVA,"
    "Up_Limit,ST";
constexpr const char* FLD_T2W_LFR =
    "Case_No,ID_Name,I_Name,J_Name,ID_No,Pi,Qi,Pj,Qj,Pm,Qm,Tk,Vi,Vj,Anglei,Anglej,Rate_MVA,"
    "Up_Limit,ST,ibs,zbs,q,topflags";
constexpr const char* FLD_SHIFT =
    "Case_No,ID_Name,I_Name,J_Name,ID_No,Pi,Qi,Pj,Qj,Pm,Qm,Tk,Vi,Vj,Rate_MVA,Up_Limit,ST";
constexpr const char* FLD_SHIFT_LFR =
    "Case_No,ID_Name,I_Name,J_Name,ID_No,Pi,Qi,Pj,Qj,Pm,Qm,Tk,Vi,Vj,Rate_MVA,Up_Limit,ST,ibs,zbs,"
    "q,topflags";
constexpr const char* FLD_T3W =
    "Case_No,ID_Name,Name_N,Up_Limit,ST,Name_1,ID_No1,P1,Q1,DP1,DQ1,Tk1,V1,Angle1,Pm,Qm,"
    "Rate_MVA1, Name_2,ID_No2,P2,Q2,DP2,DQ2,Tk2,V2,Angle2,Rate_MVA2,Name_3,ID_No3,P3,Q3,DP3,DQ3,"
    "Tk3,V3,Angle3,Rate_MVA3";
constexpr const char* FLD_T3W_LFR =
    "Case_No,ID_Name,Name_N,Up_Limit,ST,Name_1,ID_No1,P1,Q1,DP1,DQ1,Tk1,V1,Angle1,Pm,Qm,"
    "Rate_MVA1,z1bs,qq1,topflags1, Name_2,ID_No2,P2,Q2,DP2,DQ2,Tk2,V2,Angle2,Rate_MVA2,z2bs,qq2,"
    "topflags2,Name_3,ID_No3,P3,Q3,DP3,DQ3,Tk3,V3,Angle3,Rate_MVA3, z3bs,qq3,topflags3,ibs";

constexpr const char* MSG_X_ACLINE =
    "交流线结果数据回存到结果库发生错误，可能存在正序阻抗为0的线路导致功率无穷大,\n"
    "请数据检查后再计算！";
constexpr const char* MSG_X_SCR =
    "串联电容电抗器结果数据回存到结果库发生错误，可能存在正序阻抗为0的线路导致功率无穷大,\n"
    "请数据检查后再计算！";
constexpr const char* MSG_X_PCR =
    "并联电容电抗器结果数据回存到结果库发生错误，可能存在正序阻抗为0的并联电容电抗器导致功率"
    "无穷大,\n请数据检查后再计算！";
constexpr const char* MSG_X_GEN = "发电机结果数据回存到结果库发生错误，\n请数据检查后再计算！";
constexpr const char* MSG_X_LOAD = "负荷结果数据回存到结果库发生错误，\n请数据检查后再计算！";
constexpr const char* MSG_X_T2W =
    "两绕组变压器结果数据回存到结果库发生错误，\n请数据检查后再计算！";
constexpr const char* MSG_X_SHIFT =
    "移相变压器结果数据回存到结果库发生错误，\n请数据检查后再计算！";
constexpr const char* MSG_X_T3W =
    "三绕组变压器结果数据回存到结果库发生错误，\n请数据检查后再计算！";

// Breakers: one statement per record.
constexpr const char* SQL_BREAKER_ROW =
    "INSERT INTO %s SET Case_No=%d,ID_Name='%s',I_Name='%s',J_Name='%s',P=%f,Q=%f,V=%f ";
constexpr const char* BOX_CAPTION = "warning";
// In the batched mode: the same values as rows of one load.
constexpr const char* FLD_BREAKER_BULK = "Case_No,ID_Name,I_Name,J_Name,P,Q,V";
constexpr const char* ROW_BREAKER_BULK = "%d,'%s','%s','%s',%f,%f,%f";
constexpr const char* MSG_BREAKER_ROW = "导入开关结果数据失败";

// DC lines: one statement per record, the fifty-two values named one by one.
constexpr const char* SQL_DCLINE_ROW_HEAD =
    "INSERT INTO %s SET Case_No=%d,ID_Name='%s',I_Name='%s',J_Name='%s',ID_No=%d,Owner=%d,"
    "OP_Mode=%d,";
constexpr const char* SQL_DCLINE_ROW_LFR_TAIL = ",ibs=%d,zbs=%d,q=%d,topflags=%d";
// In the batched mode: the same values as rows of one load, the fifty-two between head and
// tail.
constexpr const char* FLD_DCLINE_BULK_HEAD = "Case_No,ID_Name,I_Name,J_Name,ID_No,Owner,OP_Mode";
constexpr const char* ROW_DCLINE_BULK_HEAD = "%d,'%s','%s','%s',%d,%d,%d,";
constexpr const char* FLD_DCLINE_BULK_LFR_TAIL = ",ibs,zbs,q,topflags";
constexpr const char* ROW_DCLINE_BULK_LFR_TAIL = "%d,%d,%d,%d";

} // namespace lfr
