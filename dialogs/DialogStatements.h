#pragma once
// Statement templates, captions and messages of the selection dialogs, as the dialogs
// send and show them. Their odd blanks and tabs are part of them; two statements are
// refused by the server on purpose (see the branch chooser).

namespace dlgsql {

constexpr const char* WORKING_COPY = "BAK";
constexpr const char* MSG_SQL_FAIL = "Fail to execute SQL: %s";

// ---- Branch chooser (WinDlgCalBranchChoose) ----
namespace branch {

constexpr const char* TEMP_TABLE = "BRANCHTEMP";
constexpr const char* SQL_CREATE =
    "CREATE TABLE IF NOT EXISTS %s ( \t\t\tID_Name\tCHAR(20) BINARY NOT NULL DEFAULT '', "
    "\t\t\tI_Name\tCHAR(20) BINARY NOT NULL DEFAULT '', \t\t\tJ_Name\tCHAR(20) BINARY NOT "
    "NULL DEFAULT '',\t\t\tID_No\tINT(6) DEFAULT 0,\t\t\tiEleType\tINT(2) DEFAULT 0,\t\t\t"
    "INDEX indextemp1(ID_Name) ,\t\t\tINDEX indextemp2(I_Name,J_Name,ID_No) )";
constexpr const char* SQL_EMPTY = "DELETE FROM %s";
constexpr const char* SQL_DROP = "DROP TABLE %s";

// Reading the source tables.
constexpr const char* SQL_BASE_BRANCHES = "SELECT ID_Name,I_Name,J_Name,ID_No FROM %s";
constexpr const char* SQL_BASE_T3W_1 = "SELECT ID_Name,Name_N,Name_1,ID_No1 FROM %s";
constexpr const char* SQL_BASE_T3W_2 = "SELECT ID_Name,Name_N,Name_2,ID_No2 FROM %s";
constexpr const char* SQL_BASE_T3W_3 = "SELECT ID_Name,Name_N,Name_3,ID_No3 FROM %s";
constexpr const char* SQL_BASE_SHUNTS = "SELECT ID_Name,Bus_Name,Bus_Name,ID_No FROM %s";
constexpr const char* SQL_RESULT_BRANCHES =
    "SELECT ID_Name,I_Name,J_Name,ID_No FROM %s WHERE Case_No=%d ";
constexpr const char* SQL_RESULT_SHUNTS =
    "SELECT ID_Name,Bus_Name,Bus_Name,ID_No FROM %s WHERE Case_No=%d ";
constexpr const char* SQL_RESULT_T3W_1 =
    "SELECT ID_Name,Name_N,Name_1,ID_No1 FROM %s WHERE Case_No=%d ";
constexpr const char* SQL_RESULT_T3W_2 =
    "SELECT ID_Name,Name_N,Name_2,ID_No2 FROM %s WHERE Case_No=%d ";
constexpr const char* SQL_RESULT_T3W_3 =
    "SELECT ID_Name,Name_N,Name_3,ID_No3 FROM %s WHERE Case_No=%d ";
constexpr const char* SQL_JOB_L2 = "SELECT ID_Name,I_Name,J_Name,ID_No,NType FROM %s WHERE 1=1 ";
constexpr const char* SQL_JOB_L3 = "SELECT ID_Name,I_Name,J_Name,ID_No,Ntype FROM %s WHERE 1=1 ";
constexpr const char* SQL_JOB_LK = "SELECT ID_Name,I_Name,J_Name,ID_No,Ntype FROM %s WHERE 1=1 ";
constexpr const char* SQL_FILTER_FIRST = " AND (NType=%d ";
constexpr const char* SQL_FILTER_MORE = " OR NType=%d ";
constexpr const char* SQL_FILTER_END = ")";

// Copying rows into the temporary table, ten to a statement.
constexpr int INSERT_BATCH = 10;
constexpr const char* SQL_INSERT_FIRST =
    "INSERT INTO %s (ID_Name,I_Name,J_Name,ID_No,iEleType) VALUES( '%s','%s','%s',%d,%d )";
constexpr const char* SQL_INSERT_MORE = ",( '%s','%s','%s',%d,%d )";

// Questions to the temporary table.
constexpr const char* SQL_I_NAMES = "SELECT DISTINCT(I_Name) FROM %s ORDER BY I_Name";
constexpr const char* SQL_J_ONLY_NAMES =
    " SELECT DISTINCT(a.J_Name) FROM %s a LEFT JOIN %s b \t\tON a.J_Name=b.I_Name WHERE "
    "b.I_Name IS NULL ";
constexpr const char* SQL_J_OF_I = "SELECT DISTINCT(J_Name) FROM %s WHERE I_Name = '%s' ORDER BY J_Name ";
constexpr const char* SQL_I_OF_J = "SELECT DISTINCT(I_Name) FROM %s WHERE J_Name = '%s' ORDER BY I_Name ";
constexpr const char* SQL_ID_NAMES = "SELECT DISTINCT(ID_Name) FROM %s ORDER BY ID_Name ";
constexpr const char* SQL_ID_OF_ENDS =
    "SELECT DISTINCT(ID_Name) FROM %s WHERE (I_Name='%s' AND J_Name='%s') OR (I_Name='%s' AND "
    "J_Name='%s') ORDER BY ID_Name LIMIT 1";
constexpr const char* SQL_FIRST_BRANCH =
    "SELECT I_Name,J_Name,ID_No,iEleType FROM %s WHERE ID_Name='%s' LIMIT 1";
// The column sID_Name does not exist: the server refuses this statement, as intended.
constexpr const char* SQL_ID_NO = "SELECT ID_No FROM %s WHERE sID_Name='%s' LIMIT 1";
constexpr const char* SQL_CHOSEN =
    "SELECT ID_Name,I_Name,J_Name,ID_No,iEleType FROM %s WHERE (ID_Name='%s' AND I_Name='%s' "
    "AND J_Name='%s') OR ( ID_Name='%s' AND J_Name='%s' AND I_Name='%s' ) ORDER BY ID_Name ";

constexpr const char* CAPTION = "支路选择";
constexpr const char* BOX_CAPTION = "选择支路";
constexpr const char* BOX_INCOMPLETE = "请选择支路名称和两侧节点！";

} // namespace branch

// ---- Bus and terminal choosers (WinDlgCalBusChoose, WinDlgCalEleTerm1Choose) ----
namespace bus {

constexpr const char* SQL_JOB_BUSES = "SELECT Node_Name FROM L1_%d WHERE IsBus=1 ORDER BY Node_Name ";
constexpr const char* SQL_JOB_NODES = "SELECT Node_Name FROM L1_%d ORDER BY Node_Name ";
constexpr const char* SQL_BASE_BUSES =
    "SELECT Node_Name FROM %s%s WHERE IsPhyBus=1 ORDER BY Node_Name ";
constexpr const char* SQL_BASE_NODES = "SELECT Node_Name FROM %s%s ORDER BY Node_Name ";
constexpr const char* NODE_TABLE = "CDB_NODE";
constexpr const char* SQL_ELEMENTS = "SELECT %s FROM %s ORDER BY %s ";
constexpr const char* SQL_ELEMENT_NODE = "SELECT Node_Name FROM %s WHERE ID_Name='%s' ";

constexpr const char* MSG_BUS_TOO_LONG = "母线名字符串超过20位！";
constexpr const char* MSG_BUS_RESTORED = "自动恢复上一次合法的母线名！";
constexpr const char* MSG_BUS_INVALID = "母线名中含有不合法的字符或空格！";
// Lists fewer characters than IsTheBusNameValid refuses (not & = +) and ends in a blank.
constexpr const char* MSG_BUS_INVALID_LIST = "不合法的字符有：! ' \" / : ; ~ ^ ( ) | < > , ? \\ ";
constexpr const char* MSG_BUS_EMPTY = "母线名不能为空或只含空格！";
constexpr const char* MSG_BUS_UNKNOWN = "请选择正确的母线名！";
constexpr const char* MSG_NAME_TOO_LONG = "名称字符串超过20位！";
constexpr const char* MSG_NAME_RESTORED = "自动恢复上一次合法的名称！";
constexpr const char* MSG_NAME_EMPTY = "名称不能为空或只含空格！";
constexpr const char* MSG_NAME_UNKNOWN = "请选择正确的名称！";
constexpr const char* BOX_LOOKUP_CAPTION = "warning";

} // namespace bus

// ---- Data save-back dialog (WinDlgCalDataSaveBack) ----
namespace saveback {

constexpr const char* GROUP_TABLE = "CDB_DATAGROUP";
constexpr const char* SQL_GROUPS = "SELECT GrpName FROM %s%s ";
constexpr const char* SQL_DELETE_GROUP = "delete from %s%s where GrpName='%s'";
// The tables DelDBGroup empties of a group, in this order. CDB_BUS and the other
// tables with a GrpName column are not among them.
constexpr const char* GROUP_TABLES[] = {
    "CDB_DATAGROUP", "CDB_ACLINE", "CDB_PCAPREA", "CDB_SCAPREA",
    "CDB_TRANS_2W",  "CDB_TRANS_3W", "CDB_SHIFT",  "CDB_DCLINE",
    "CDB_GENERAT",   "CDB_LOAD",   "CDB_BREAKER", "CDB_ISOSWITCH"};
// Characters that may not stand in a new group's name.
constexpr const char FORBIDDEN[] = {'\'', '"', '/', ';', '%', '\\'};

constexpr const char* CAPTION = "数据回存";
constexpr const char* BOX_CAPTION = "计算数据回存";
constexpr const char* BOX_EXISTS_HEAD = "给定数据组(";
constexpr const char* BOX_EXISTS_TAIL = ")已经存在，请重新指定数据组名称!";
constexpr const char* MSG_FORBIDDEN = "新数据组名含有不合法的字符。";
// Not the design's: the name is wider than GrpName holds.
constexpr const char* MSG_TOO_LONG = "新数据组名超过20字节（汉字按2字节计）。";

} // namespace saveback

// ---- Case search (WinDlgCaseNoSearch) ----
namespace caseno {

constexpr const char* SQL_CASES = "SELECT Case_Name FROM %s WHERE Case_No > 0 ORDER BY Case_No";
constexpr const char* BOX_CAPTION = "warning";
constexpr const char* BOX_NO_NAME = "请指定要查找的作业名!";

} // namespace caseno

// ---- Find dialog (WinDlgFindText) ----
namespace find {

constexpr const char* BOX_CAPTION = "提示";
constexpr const char* BOX_NOT_FOUND = "没有找到匹配项！";

} // namespace find

} // namespace dlgsql
