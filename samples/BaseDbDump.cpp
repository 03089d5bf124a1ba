#include "SampleNetwork.h"

#include <QMetaType>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QSqlField>
#include <QVariant>
#include <map>

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
    // Row ids go out as their rank in the table (1, 2, 3 ...): a server numbers them so, but
    // a Galera cluster steps them by its size (1, 4, 7 ... on its first node), and the file
    // is the same from either. IDSch, the one column that holds another table's id, follows
    // its scheme's rank.
    std::map<qlonglong, qlonglong> schemeRank;
    QSqlQuery q(*db);
    for (const char* table : kBaseTables) {
        sql += QByteArray("DELETE FROM ") + table + ";\n";
        if (!q.exec(QString("SELECT * FROM %1 ORDER BY 1").arg(table))) {
            error = QString("%1: %2").arg(table, q.lastError().text());
            return false;
        }
        const QSqlRecord rec = q.record();
        QByteArray columns;
        int idColumn = -1;
        int schemeColumn = -1;
        for (int i = 0; i < rec.count(); ++i) {
            columns += (i ? "," : "") + rec.fieldName(i).toUtf8();
            if (rec.field(i).isAutoValue()) {
                idColumn = i;
            } else if (rec.fieldName(i).compare("IDSch", Qt::CaseInsensitive) == 0) {
                schemeColumn = i;
            }
        }
        const bool schemes = qstrcmp(table, "CDB_SCHEMEINFBAK") == 0;
        int n = 0;
        while (q.next()) {
            // Fifty rows to a statement keeps the file readable and the statements short.
            sql += n % 50 == 0 ? QByteArray("INSERT INTO ") + table + "(" + columns + ") VALUES\n"
                               : QByteArray(",\n");
            QByteArray row = "(";
            for (int i = 0; i < rec.count(); ++i) {
                QVariant v = q.value(i);
                if (i == idColumn) {
                    if (schemes) {
                        schemeRank[v.toLongLong()] = n + 1;
                    }
                    v = qlonglong(n + 1);
                } else if (i == schemeColumn && schemeRank.count(v.toLongLong())) {
                    v = schemeRank[v.toLongLong()];
                }
                row += (i ? "," : "") + literal(v);
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
