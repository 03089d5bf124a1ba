#include "common/BaseDbLookups.h"

#include "common/Feedback.h"

#include <QObject>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QVariant>

namespace {

// Statement templates of the lookups.
const char* const SQL_SB = "SELECT Base_Mva FROM %s%s ";
// No blank stands between the table's name and WHERE, so the server reads the table
// CDB_BUSBAKWHERE: the bus form finds no row, reports and gives 1.0. Kept as it stands.
const char* const SQL_BUS_KV = "SELECT Base_kV FROM %s%sWHERE Bus_Name = '%s' ";
const char* const SQL_NODE_KV =
    "SELECT b.Base_kV FROM %s%s a,%s%s b WHERE a.Node_Name='%s' AND a.Bus_Name = b.Bus_Name ";
const char* const SQL_CASE_NO = "SELECT Case_No FROM %s WHERE Case_Name='%s' ";
const char* const SQL_CASE_NAME = "SELECT Case_Name FROM %s WHERE Case_No=%d ";
const char* const SQL_TRANS_NTYPE =
    "SELECT Ntype FROM L3_%d WHERE ID_Name='%s' and I_Name='%s' and J_Name='%s' ";
const char* const SQL_ST_VAR_OUT = "SELECT Variable FROM %s WHERE Case_No = %d ";
const char* const SQL_ST_ANA_OUT = "SELECT AnaFunc FROM %s WHERE Case_No = %d ";
const char* const SQL_ST_ABC120_OUT = "SELECT Fault_120 FROM %s WHERE Case_No = %d ";

const char* const WORKING_COPY = "BAK";

// Runs `sql`; true with the query on its first row.
bool firstRow(QSqlQuery& q, const QByteArray& sql)
{
    return ExecStatement(q, sql) && q.next();
}

bool stOutFlag(QSqlDatabase* db, const char* format, int caseNo)
{
    QSqlQuery q(*db);
    return firstRow(q, FormatText(format, "ST_OUT", caseNo)) && q.value(0).toInt() != 0;
}

} // namespace

double GetSB_FromDB(QSqlDatabase* db)
{
    QSqlQuery q(*db);
    if (firstRow(q, FormatText(SQL_SB, "CDB_SB", WORKING_COPY))) {
        return q.value(0).toDouble();
    }
    return 1.0;
}

double GetBasekV_FromDB(QSqlDatabase* db, const char* name, bool bBus)
{
    QSqlQuery q(*db);
    const QByteArray sql =
        bBus ? FormatText(SQL_BUS_KV, "CDB_BUS", WORKING_COPY, SqlText(db, name).constData())
             : FormatText(SQL_NODE_KV, "CDB_NODE", WORKING_COPY, "CDB_BUS", WORKING_COPY,
                          SqlText(db, name).constData());
    if (firstRow(q, sql)) {
        return q.value(0).toDouble();
    }
    ShowMessage(bBus ? "查询母线基准电压发生错误" : "查询节点基准电压发生错误", MSG_ERROR);
    return 1.0;
}

int GetCase_NoByCase_Name(char* table, QSqlDatabase* db, const QString& name)
{
    if (name.isNull()) {
        return -1;
    }
    QSqlQuery q(*db);
    if (!ExecStatement(
            q, FormatText(SQL_CASE_NO, table, SqlText(db, name.toLocal8Bit()).constData()))) {
        qWarning("查询作业号出错！");
        return -1;
    }
    if (!q.next()) {
        qWarning("查询作业号出现错误：作业表中没有该作业！");
        return -1;
    }
    return q.value(0).toInt();
}

QString GetCase_NameByCase_No(char* table, QSqlDatabase* db, int caseNo)
{
    if (caseNo <= 0) {
        return QString();
    }
    QSqlQuery q(*db);
    if (!ExecStatement(q, FormatText(SQL_CASE_NAME, table, caseNo))) {
        qWarning("查询作业号出错！");
        return QStringLiteral("");
    }
    if (!q.next()) {
        qWarning("查询作业号出现错误：作业表中没有该作业！");
        return QStringLiteral("");
    }
    return QObject::tr(q.value(0).toByteArray().constData());
}

int GetSDataCase_No(int caseNo)
{
    return caseNo / 5 + 1;
}

int GetTransNType(int job, QSqlDatabase* db, char* idName, char* iName, char* jName)
{
    QSqlQuery q(*db);
    if (firstRow(q, FormatText(SQL_TRANS_NTYPE, job, SqlText(db, idName).constData(),
                               SqlText(db, iName).constData(), SqlText(db, jName).constData()))) {
        return q.value(0).toInt();
    }
    qWarning("查询变压器类型出现错误！");
    return -1;
}

bool IsSTVarOut(QSqlDatabase* db, int caseNo)
{
    return stOutFlag(db, SQL_ST_VAR_OUT, caseNo);
}

bool IsSTAnaOut(QSqlDatabase* db, int caseNo)
{
    return stOutFlag(db, SQL_ST_ANA_OUT, caseNo);
}

bool IsSTABC120Out(QSqlDatabase* db, int caseNo)
{
    return stOutFlag(db, SQL_ST_ABC120_OUT, caseNo);
}
