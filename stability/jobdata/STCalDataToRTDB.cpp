#include "stability/jobdata/STCalDataToRTDB.h"

#include "common/Feedback.h"
#include "common/RowValues.h"
#include "common/SqlRows.h"
#include "records/NetworkRecords.h"
#include "records/RecordFlags.h"
#include "stability/jobdata/STRealtimeStatements.h"

#include <QSqlDatabase>
#include <QSqlQuery>
#include <cstring>

using namespace dtsdb;
using namespace strt;

namespace {

// Runs a job-table SELECT forward only. A refused one is not looked at: it gives no row,
// as an empty table would, and shows nothing.
void runSelect(CSqlRows& rows, QSqlQuery& q, const QByteArray& sql)
{
    rows.exec(q, QString::fromLocal8Bit(sql));
}

// The frame of the tables keyed by the bare name: one cursor for the whole table; for each
// row the record whose key answers `query` with the row's name, given the row by `apply`
// and updated. A row without its record shows `missing` and the rest goes on.
template <class T, class Apply>
int importRows(QSqlDatabase* db, const QByteArray& sql, const char* query, const char* missing,
               Apply apply)
{
    dbCursor<T> cursor(dbCursorForUpdate);
    QSqlQuery q(*db);
    CSqlRows rows;
    runSelect(rows, q, sql);
    char id[kRecordIdSize];
    while (rows.next()) {
        FormRecordId(id, rows.toLocal8Bit(0), ID_PLAIN);
        if (!FindRecord(cursor, query, id, missing, id)) {
            continue;
        }
        apply(*cursor, rows);
        cursor.update();
    }
    return CALC_OK;
}

// The suffix of a transformer row's real-time id by its Ntype; bare for any other.
const char* transformerId(int ntype)
{
    switch (ntype) {
    case 1:
        return ID_2W;
    case 2:
        return ID_SF;
    case 31:
        return ID_3W1;
    case 32:
        return ID_3W2;
    case 33:
        return ID_3W3;
    default:
        return ID_PLAIN;
    }
}

} // namespace

CSTCalDataToRTDB::CSTCalDataToRTDB(int jobNumber, QSqlDatabase* db)
    : m_pDB(db), m_nJobNumber(jobNumber)
{}

int CSTCalDataToRTDB::ImportSDataToRTDB()
{
    int failed = 0;
    failed |= ImportS2DataToRTDB();
    failed |= ImportS3DataToRTDB();
    failed |= ImportS4DataToRTDB();
    failed |= ImportS5DataToRTDB();
    failed |= ImportS6DataToRTDB();
    failed |= ImportS7DataToRTDB();
    return failed ? CALC_FAIL : CALC_OK;
}

// Ntype decides the record class and the suffix, so it is read before the search, and a
// cursor is made for each row on the class it names.
int CSTCalDataToRTDB::ImportS2DataToRTDB()
{
    const QByteArray table = FormatText(S2_TABLE, m_nJobNumber);
    QSqlQuery query(*m_pDB);
    CSqlRows q;
    runSelect(q, query, FormatText(SQL_S2_SELECT, table.constData()));
    char id[kRecordIdSize];
    char name[kRecordIdSize];
    while (q.next()) {
        const int ntype = RowInt(q, 4);
        const QByteArray bare = q.toLocal8Bit(0);
        FormRecordId(name, bare, ID_PLAIN);
        if (ntype == 1 || ntype == 2) {
            FormRecordId(id, bare, ntype == 1 ? ID_AC : ID_SC);
            dbCursor<ln> lines(dbCursorForUpdate);
            if (!FindRecord(lines, QUERY_ID, id, MSG_LN_MISSING, name)) {
                continue;
            }
            lines->R0 = RowReal(q, 1);
            lines->X0 = RowReal(q, 2);
            lines->B0_Half = RowReal(q, 3);
            lines.update();
        } else {
            dbCursor<cp> shunts(dbCursorForUpdate);
            if (!FindRecord(shunts, QUERY_ID, name, MSG_CP_MISSING, name)) {
                continue;
            }
            shunts->R0 = RowReal(q, 1);
            shunts->X0 = RowReal(q, 2);
            shunts.update();
        }
    }
    return CALC_OK;
}

int CSTCalDataToRTDB::ImportS3DataToRTDB()
{
    const QByteArray table = FormatText(S3_TABLE, m_nJobNumber);
    dbCursor<xf> cursor(dbCursorForUpdate);
    QSqlQuery query(*m_pDB);
    CSqlRows q;
    runSelect(q, query, FormatText(SQL_S3_SELECT, table.constData()));
    char id[kRecordIdSize];
    char name[kRecordIdSize];
    while (q.next()) {
        const QByteArray bare = q.toLocal8Bit(0);
        FormRecordId(name, bare, ID_PLAIN);
        FormRecordId(id, bare, transformerId(RowInt(q, 4)));
        if (!FindRecord(cursor, QUERY_ID, id, MSG_XF_MISSING, name)) {
            continue;
        }
        cursor->ZCtype = RowInt(q, 1);
        cursor->R0 = RowReal(q, 2);
        cursor->X0 = RowReal(q, 3);
        cursor.update();
    }
    return CALC_OK;
}

int CSTCalDataToRTDB::ImportS4DataToRTDB()
{
    const QByteArray table = FormatText(S4_TABLE, m_nJobNumber);
    // Columns 1 to 38 fill the dln fields from DC_Model on, which stand in the same order:
    // integers where the record has an int, else reals.
    const auto& fields = dln::dbDescriptor.fields();
    std::size_t first = 0;
    while (first < fields.size() && std::strcmp(fields[first].name, "DC_Model") != 0) {
        ++first;
    }
    constexpr int kColumns = 38;
    return importRows<dln>(m_pDB, QByteArray(SQL_S4_SELECT) + table, QUERY_ID, MSG_DLN_MISSING,
                           [&](dln& r, const CSqlRows& q) {
                               char* base = reinterpret_cast<char*>(&r);
                               for (int c = 1; c <= kColumns; ++c) {
                                   const dbFieldDescriptor& f = fields[first + (c - 1)];
                                   if (f.type == dbFieldInt) {
                                       const int v = RowInt(q, c);
                                       std::memcpy(base + f.offset, &v, sizeof v);
                                   } else {
                                       const float v = RowReal(q, c);
                                       std::memcpy(base + f.offset, &v, sizeof v);
                                   }
                               }
                           });
}

int CSTCalDataToRTDB::ImportS5DataToRTDB()
{
    const QByteArray table = FormatText(S5_TABLE, m_nJobNumber);
    return importRows<un>(m_pDB, FormatText(SQL_S5_SELECT, table.constData()), QUERY_ID,
                          MSG_UN_MISSING, [](un& r, const CSqlRows& q) {
                              r.Gen_Model = RowInt(q, 1);
                              r.Gen_Par = RowInt(q, 2);
                              r.AVR_Model = RowInt(q, 3);
                              r.AVR_Par = RowInt(q, 4);
                              r.GOV_Model = RowInt(q, 5);
                              r.GOV_Par = RowInt(q, 6);
                              r.PSS_Model = RowInt(q, 7);
                              r.PSS_Par = RowInt(q, 8);
                              r.Rate_MVA = RowReal(q, 9);
                              r.Rate_MW = RowReal(q, 10);
                              r.Xdp = RowReal(q, 11);
                              r.Xdpp = RowReal(q, 12);
                              r.X2 = RowReal(q, 13);
                              r.Tj = RowReal(q, 14);
                          });
}

// Z_Percent is an integer in the record: a fraction in the job table is cut off.
int CSTCalDataToRTDB::ImportS6DataToRTDB()
{
    const QByteArray table = FormatText(S6_TABLE, m_nJobNumber);
    return importRows<ld>(m_pDB, FormatText(SQL_S6_SELECT, table.constData()), QUERY_ID,
                          MSG_LD_MISSING, [](ld& r, const CSqlRows& q) {
                              r.Load_Model = RowInt(q, 1);
                              r.Load_Par = RowInt(q, 2);
                              r.Z_Percent = RowInt(q, 3);
                          });
}

// Valid 1 clears the out-of-service bit; any other value (0, 2, -1) sets it.
int CSTCalDataToRTDB::ImportS7DataToRTDB()
{
    const QByteArray table = FormatText(S7_TABLE, m_nJobNumber);
    return importRows<svc>(m_pDB, FormatText(SQL_S7_SELECT, table.constData()), QUERY_SVC,
                           MSG_SVC_MISSING, [](svc& r, const CSqlRows& q) {
                               r.Model = RowInt(q, 1);
                               r.Par_No = RowInt(q, 2);
                               r.X_Fixed = RowReal(q, 3);
                               SetFlagBit(r.q, SVC_OUTSERVICE, RowInt(q, 4) != 1);
                           });
}
