#include "SampleNetwork.h"

#include <QMetaType>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QVariant>

namespace samples {
namespace {

// The working copies a network writes, in an order that loads without surprises: base
// power, places, then elements, then the groups and the scheme that choose them.
const char* const kBaseTables[] = {
    "CDB_SBBAK",        "CDB_ZONEBAK",      "CDB_PSTATIONBAK",  "CDB_BUSBAK",
    "CDB_NODEBAK",      "CDB_ACLINEBAK",    "CDB_TRANS_2WBAK",  "CDB_SHIFTBAK",
    "CDB_GENERATBAK",   "CDB_LOADBAK",      "CDB_PCAPREABAK",   "CDB_BREAKERBAK",
    "CDB_ISOSWITCHBAK", "CDB_DATAGROUPBAK", "CDB_SCHEMEINFBAK", "CDB_SCHEMECONTBAK"};

bool isNumber(const QVariant& v)
{
    switch (v.metaType().id()) {
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Double:
    case QMetaType::Float:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Char:
    case QMetaType::SChar:
    case QMetaType::UChar:
        return true;
    default:
        return false;
    }
}

// A value as SQL text: numbers in their shortest exact form, text quoted and escaped.
QByteArray literal(const QVariant& v)
{
    if (v.isNull()) {
        return "NULL";
    }
    if (isNumber(v)) {
        return v.toString().toUtf8();
    }
    QByteArray s = v.toString().toUtf8();
    s.replace("\\", "\\\\").replace("'", "\\'");
    return "'" + s + "'";
}

} // namespace

bool DumpBaseTablesAsSql(QSqlDatabase* db, QByteArray& sql, QString& error)
{
    QSqlQuery q(*db);
    for (const char* table : kBaseTables) {
        sql += QByteArray("DELETE FROM ") + table + ";\n";
        if (!q.exec(QString("SELECT * FROM %1 ORDER BY 1").arg(table))) {
            error = QString("%1: %2").arg(table, q.lastError().text());
            return false;
        }
        const QSqlRecord rec = q.record();
        QByteArray columns;
        for (int i = 0; i < rec.count(); ++i) {
            columns += (i ? "," : "") + rec.fieldName(i).toUtf8();
        }
        int n = 0;
        while (q.next()) {
            // Fifty rows to a statement keeps the file readable and the statements short.
            sql += n % 50 == 0 ? QByteArray("INSERT INTO ") + table + "(" + columns + ") VALUES\n"
                               : QByteArray(",\n");
            QByteArray row = "(";
            for (int i = 0; i < rec.count(); ++i) {
                row += (i ? "," : "") + literal(q.value(i));
            }
            sql += row + ")";
            if (++n % 50 == 0) {
                sql += ";\n";
            }
        }
        if (n % 50 != 0) {
            sql += ";\n";
        }
    }
    return true;
}

} // namespace samples
