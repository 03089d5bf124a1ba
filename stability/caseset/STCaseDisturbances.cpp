// Disturbances of a stability case: ST_DIST_INF and its detail tables ST_DIST_T1 to
// ST_DIST_T10 into stdist, the load ranges of type 6 through the working table DT6.

#include "stability/caseset/STCaseDataTransfer.h"

#include "common/Conversions.h"
#include "common/Feedback.h"
#include "common/RowValues.h"
#include "records/StabilityCaseRecords.h"
#include "stability/caseset/STCaseKit.h"
#include "stability/caseset/STCaseStatements.h"

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QVariant>
#include <cstdlib>
#include <cstring>
#include <memory>

using namespace dtsdb;
using namespace stcase;

namespace {

// Runs the select of a disturbance's detail table; false after `queryMessage` when it
// fails and after `noneMessage` when it gives no row (as its size says).
bool selectDetail(QSqlQuery& q, const QByteArray& sql, const char* queryMessage,
                  const char* noneMessage)
{
    if (!run(q, sql)) {
        ShowMessage(queryMessage, MSG_ERROR);
        return false;
    }
    if (q.size() < 1) {
        ShowMessage(noneMessage, MSG_ERROR);
        return false;
    }
    return true;
}

// Copies a column into a name buffer of SDist_Inf, cut to 20 bytes.
void copyName(char (&target)[GbkBufferSize(kNameBytes)], const QSqlQuery& q, int column)
{
    std::memset(target, 0, sizeof target);
    GbkCopy(target, text(q, column), kNameBytes);
}

// A disturbance record: valid, its name and ends with their bus numbers.
struct DistRecord
{
    stdist r;
    QByteArray id, iName, jName; // the texts the record points at until it is inserted

    DistRecord(const QByteArray& idName, const QByteArray& i, const QByteArray& j)
        : id(idName), iName(i), jName(j)
    {
        r.Valid = 1;
        r.ID_Name = id.constData();
        r.I_Name = iName.constData();
        r.J_Name = jName.constData();
        r.I_No = nodeBusNo(r.I_Name);
        r.J_No = nodeBusNo(r.J_Name);
    }
    void set(int idNo, int type, int subType, double p1, double p2, double p3, double p4, double p5,
             double p6)
    {
        r.ID_No = idNo;
        r.Type = type;
        r.Sub_Type = subType;
        r.Par1 = static_cast<float>(p1);
        r.Par2 = static_cast<float>(p2);
        r.Par3 = static_cast<float>(p3);
        r.Par4 = static_cast<float>(p4);
        r.Par5 = static_cast<float>(p5);
        r.Par6 = static_cast<float>(p6);
    }
};

double number(const QSqlQuery& q, int column)
{
    return q.value(column).toDouble();
}

} // namespace

double CSTCaseDataTransfer::EndTime(double t) const
{
    return t > -1e-8 && t < 1e-8 ? m_dTotalTime : t;
}

int CSTCaseDataTransfer::ImportDISTDataToRTDB()
{
    // Emptied before any test, so the old disturbances go even when the case turns them off.
    removeAllRecords<stdist>();
    m_pRTDB->commit();

    QSqlQuery q(*m_pDB);
    if (!run(q, FormatText(SQL_CTRL_DIST, ST_CASE, m_nCaseNo))) {
        ShowMessage(MSG_FLAG_QUERY, MSG_ERROR);
        return CALC_FAIL;
    }
    // A case without its row runs to time 0, whatever an earlier load of this object read.
    m_dTotalTime = 0;
    if (q.next()) {
        m_dTotalTime = number(q, 1);
        if (RowInt(q, 0) != 1) {
            return CALC_OK;
        }
    }
    if (!run(q, FormatText(SQL_DIST_INF_SELECT, ST_DIST_INF, m_nCaseNo))) {
        ShowMessage(MSG_DIST_QUERY, MSG_ERROR);
        return CALC_FAIL;
    }
    int failed = 0;
    QSqlQuery work(*m_pDB);
    while (q.next()) {
        SDist_Inf inf;
        std::memset(&inf, 0, sizeof inf);
        inf.Valid = RowInt(q, 6);
        if (inf.Valid == 0) {
            continue;
        }
        inf.Type = RowInt(q, 0);
        inf.Case_No = m_nCaseNo;
        copyName(inf.Bus_Name, q, 1);
        copyName(inf.ID_Name, q, 2);
        inf.ID_No = RowInt(q, 3);
        copyName(inf.I_Name, q, 4);
        copyName(inf.J_Name, q, 5);
        int rc = 0;
        switch (inf.Type) {
        case 1:
            rc = ImportDist_T1DataToRTDB(inf);
            break;
        case 2:
            rc = ImportDist_T2DataToRTDB(inf);
            break;
        case 3:
            rc = ImportDist_T3DataToRTDB(inf);
            break;
        case 4:
            rc = ImportDist_T4DataToRTDB(inf);
            break;
        case 5:
            rc = ImportDist_T5DataToRTDB(inf);
            break;
        case 6:
            // DT6 lives for this one row: dropped, made, used, dropped.
            run(work, SQL_DT6_DROP_BEFORE);
            if (!run(work, SQL_DT6_CREATE)) {
                ShowMessage(SQL_DT6_CREATE, MSG_RAW);
                ShowMessage(MSG_DT6_CREATE, MSG_ERROR);
                failed = 1;
            }
            rc = ImportDist_T6DataToRTDB(inf);
            if (!run(work, SQL_DT6_DROP_AFTER)) {
                failed = 1;
            }
            break;
        case 7:
            rc = ImportDist_T7DataToRTDB(inf);
            break;
        case 8:
            rc = ImportDist_T8DataToRTDB(inf);
            break;
        case 9:
            rc = ImportDist_T9DataToRTDB(inf);
            break;
        case 10:
            rc = ImportDist_T10DataToRTDB(inf);
            break;
        default:
            break; // no such kind: passed over without a word
        }
        if (rc != 0) {
            failed = 1;
        }
    }
    return failed ? CALC_FAIL : CALC_OK;
}

int CSTCaseDataTransfer::ImportCurve(const SDist_Inf& inf, const char* table, bool power, int type,
                                     int subType, const char* queryMessage, const char* noneMessage)
{
    QSqlQuery q(*m_pDB);
    const char* select = power ? SQL_DIST_T1_SELECT : SQL_DIST_VCURVE_SELECT;
    if (!selectDetail(
            q, FormatText(select, table, m_nCaseNo, SqlText(m_pDB, inf.Bus_Name).constData()),
            queryMessage, noneMessage)) {
        return CALC_FAIL;
    }
    // Each point counts; each point after the first closes a segment from the point before.
    double before[3] = {0, 0, 0};
    bool first = true;
    while (q.next()) {
        ++m_nDist;
        const double now[3] = {number(q, 2), number(q, 3), power ? number(q, 4) : 0.0};
        if (!first) {
            DistRecord d(text(q, 0, kNameBytes), inf.Bus_Name, inf.Bus_Name);
            d.set(0, type, subType, before[0], now[0], before[1], now[1], power ? before[2] : 0.0,
                  power ? now[2] : 0.0);
            insert(d.r);
            m_pRTDB->precommit();
        }
        std::memcpy(before, now, sizeof before);
        first = false;
    }
    return CALC_OK;
}

int CSTCaseDataTransfer::ImportDist_T1DataToRTDB(SDist_Inf& inf)
{
    return ImportCurve(inf, ST_DIST_T1, true, 0, 0, MSG_DIST_T1_QUERY, MSG_DIST_T1_NONE);
}

int CSTCaseDataTransfer::ImportDist_T2DataToRTDB(SDist_Inf& inf)
{
    return ImportCurve(inf, ST_DIST_T2, false, 1, 0, MSG_DIST_T2_QUERY, MSG_DIST_T2_NONE);
}

int CSTCaseDataTransfer::ImportDist_T3DataToRTDB(SDist_Inf& inf)
{
    return ImportCurve(inf, ST_DIST_T3, false, 1, 1, MSG_DIST_T3_QUERY, MSG_DIST_T3_NONE);
}

int CSTCaseDataTransfer::ImportDist_T10DataToRTDB(SDist_Inf& inf)
{
    return ImportCurve(inf, ST_DIST_T10, false, 1, 1, MSG_DIST_T10_QUERY, MSG_DIST_T10_NONE);
}

// Types 4, 5, 7, 8 and 9 write one record per row of their detail table, and each row
// read adds 1 to the disturbance count, as each row of DT6 does for type 6.

int CSTCaseDataTransfer::ImportDist_T4DataToRTDB(SDist_Inf& inf)
{
    QSqlQuery q(*m_pDB);
    if (!selectDetail(q,
                      FormatText(SQL_DIST_T4_SELECT, ST_DIST_T4, m_nCaseNo,
                                 SqlText(m_pDB, inf.Bus_Name).constData(),
                                 SqlText(m_pDB, inf.ID_Name).constData()),
                      MSG_DIST_T4_QUERY, MSG_DIST_T4_NONE)) {
        return CALC_FAIL;
    }
    while (q.next()) {
        ++m_nDist;
        const QByteArray generator = text(q, 0, kNameBytes);
        DistRecord d(text(q, 1, kNameBytes), text(q, 2, kNameBytes), text(q, 3, kNameBytes));
        d.set(RowInt(q, 4), 2, nodeBusNo(generator.constData()), number(q, 7),
              EndTime(number(q, 8)), number(q, 6), number(q, 5), 0, 0);
        insert(d.r);
        m_pRTDB->precommit();
    }
    return CALC_OK;
}

int CSTCaseDataTransfer::ImportDist_T5DataToRTDB(SDist_Inf& inf)
{
    QSqlQuery q(*m_pDB);
    if (!selectDetail(q,
                      FormatText(SQL_DIST_T5_SELECT, ST_DIST_T5, m_nCaseNo,
                                 SqlText(m_pDB, inf.Bus_Name).constData(),
                                 SqlText(m_pDB, inf.ID_Name).constData()),
                      MSG_DIST_T5_QUERY, MSG_DIST_T5_NONE)) {
        return CALC_FAIL;
    }
    while (q.next()) {
        ++m_nDist;
        const int subType = RowInt(q, 0);
        const QByteArray generator = text(q, 2, kNameBytes);
        const QByteArray reference = text(q, 3, kNameBytes);
        DistRecord d(text(q, 1, kNameBytes), generator,
                     subType == 2 || subType == 4 ? reference : generator);
        d.set(0, 3, subType - 1, number(q, 7), EndTime(number(q, 8)), number(q, 4), number(q, 5),
              number(q, 6), 0);
        insert(d.r);
        m_pRTDB->precommit();
    }
    return CALC_OK;
}

int CSTCaseDataTransfer::ImportDist_T6DataToRTDB(SDist_Inf& inf)
{
    // The disturbance row carries the load text in Bus_Name and the range in ID_No.
    QSqlQuery q(*m_pDB);
    if (!run(q, FormatText(SQL_DIST_T6_SELECT, ST_DIST_T6, m_nCaseNo,
                           SqlText(m_pDB, inf.Bus_Name).constData(), inf.ID_No))) {
        ShowMessage(MSG_DIST_T6_QUERY, MSG_ERROR);
        return CALC_FAIL;
    }
    while (q.next()) { // no row is no failure here
        auto row = std::make_unique<SDist_T6>();
        row->Case_No = m_nCaseNo;
        row->ID_No = inf.ID_No; // the range, not the table's ID_No (nor ID_Branch)
        row->Load_Name = text(q, 3);
        row->ID_Name = text(q, 2);
        row->K_Ratio = number(q, 6);
        row->Nrange = RowInt(q, 0);
        row->Sub_Type = RowInt(q, 1);
        row->Ref_Name = text(q, 4);
        row->T_Delay = number(q, 7);
        row->T_Start = number(q, 10);
        row->T_End = number(q, 11);
        row->V_Crit = number(q, 5);

        // Which loads the row covers: the node in Load_Name (0), all loads of the
        // load-flow case (-1), the valid loads of the zone in Load_Name (-2) or within 20
        // percent of the base voltage in Load_Name (-3); any other range none.
        QByteArray loads;
        switch (row->Nrange) {
        case -1:
            loads = FormatText(SQL_RANGE_ALL_LOADS, m_nCaseLF);
            break;
        case -2:
            loads = FormatText(SQL_RANGE_ZONE, std::atoi(row->Load_Name.constData()));
            break;
        case -3:
            // The base voltage stands unquoted: a text of more than one word could add a
            // condition, and goes as a column's name that the server refuses.
            loads = FormatText(SQL_RANGE_VOLTAGE, SqlWord(row->Load_Name).constData(),
                               SqlWord(row->Load_Name).constData());
            break;
        default:
            break;
        }
        if (row->Nrange == 0) {
            const int rc = InsertDT6(row->Load_Name.constData(), row.get());
            if (rc != 0) {
                return rc;
            }
        } else if (!loads.isEmpty()) {
            QSqlQuery nodes(*m_pDB);
            if (!run(nodes, loads)) {
                return 3;
            }
            while (nodes.next()) {
                const int rc = InsertDT6(text(nodes, 0).constData(), row.get());
                if (rc != 0) {
                    return rc;
                }
            }
        }
        row.reset();
        // The whole of DT6 after every row: with two rows the first one's loads come twice.
        if (DumpDT6() != 0) {
            return CALC_FAIL;
        }
    }
    return CALC_OK;
}

int CSTCaseDataTransfer::InsertDT6(const char* loadName, SDist_T6* row)
{
    if (!loadName) {
        return 1;
    }
    QSqlQuery q(*m_pDB);
    if (!run(q, FormatText(SQL_DT6_FIND, SqlText(m_pDB, loadName).constData()))) {
        return 3;
    }
    if (q.next()) {
        // A load already in DT6 is taken over only from a range row whose range is the
        // same or larger in number; a single load (0) is never replaced.
        const int old = RowInt(q, 0);
        if (old == 0 || old < row->Nrange) {
            return 0;
        }
        // The load's name stands unquoted: more than one word goes as a column's name.
        if (!run(q, FormatText(SQL_DT6_DELETE, SqlWord(loadName).constData()))) {
            return 2;
        }
    }
    if (!run(q, FormatText(SQL_DT6_INSERT, SqlText(m_pDB, row->ID_Name).constData(),
                           SqlText(m_pDB, loadName).constData(), row->Nrange, row->Sub_Type,
                           SqlText(m_pDB, row->Ref_Name).constData(), row->V_Crit, row->K_Ratio,
                           row->T_Delay, row->ID_No, row->T_Start, row->T_End))) {
        return 3;
    }
    return 0;
}

int CSTCaseDataTransfer::DumpDT6()
{
    QSqlQuery q(*m_pDB);
    if (!run(q, SQL_DT6_DUMP)) {
        ShowMessage(MSG_DIST_T6_QUERY, MSG_ERROR);
        return CALC_FAIL;
    }
    while (q.next()) {
        ++m_nDist;
        const int subType = RowInt(q, 0);
        const QByteArray load = text(q, 2, kNameBytes);
        DistRecord d(text(q, 1, kNameBytes), load, subType <= 3 ? load : text(q, 3, kNameBytes));
        d.set(RowInt(q, 5), 4, subType - 1, number(q, 9), EndTime(number(q, 10)), number(q, 6),
              number(q, 7), number(q, 8), 0);
        insert(d.r);
        m_pRTDB->precommit();
    }
    return CALC_OK;
}

int CSTCaseDataTransfer::ImportDist_T7DataToRTDB(SDist_Inf& inf)
{
    QSqlQuery q(*m_pDB);
    if (!selectDetail(q,
                      FormatText(SQL_DIST_T7_SELECT, ST_DIST_T7, m_nCaseNo, inf.ID_No,
                                 SqlText(m_pDB, inf.I_Name).constData(),
                                 SqlText(m_pDB, inf.J_Name).constData(),
                                 SqlText(m_pDB, inf.ID_Name).constData()),
                      MSG_DIST_T7_QUERY, MSG_DIST_T7_NONE)) {
        return CALC_FAIL;
    }
    while (q.next()) {
        ++m_nDist;
        DistRecord d(text(q, 2, kNameBytes), text(q, 3, kNameBytes), text(q, 4, kNameBytes));
        d.set(RowInt(q, 1), 5, RowInt(q, 0) - 1, number(q, 8), EndTime(number(q, 9)), number(q, 5),
              number(q, 6), number(q, 7), 0);
        insert(d.r);
        m_pRTDB->precommit();
    }
    return CALC_OK;
}

int CSTCaseDataTransfer::ImportDist_T8DataToRTDB(SDist_Inf& inf)
{
    QSqlQuery q(*m_pDB);
    if (!selectDetail(q,
                      FormatText(SQL_DIST_T8_SELECT, ST_DIST_T8, m_nCaseNo,
                                 SqlText(m_pDB, inf.Bus_Name).constData(),
                                 SqlText(m_pDB, inf.ID_Name).constData()),
                      MSG_DIST_T8_QUERY, MSG_DIST_T8_NONE)) {
        return CALC_FAIL;
    }
    const int rows = q.size();
    bool first = true;
    while (q.next()) {
        ++m_nDist;
        const QByteArray load = text(q, 1, kNameBytes);
        DistRecord d(text(q, 0, kNameBytes), load, load);
        // Both times read column 6 (T_Start), as designed: T_End is never read.
        d.set(inf.ID_No, 6, rows, number(q, 6), EndTime(number(q, 6)), number(q, 3), number(q, 4),
              number(q, 5), first ? number(q, 2) : 0.0);
        insert(d.r);
        m_pRTDB->precommit();
        first = false;
    }
    return CALC_OK;
}

int CSTCaseDataTransfer::ImportDist_T9DataToRTDB(SDist_Inf& inf)
{
    QSqlQuery q(*m_pDB);
    if (!selectDetail(q,
                      FormatText(SQL_DIST_T9_SELECT, ST_DIST_T9, m_nCaseNo,
                                 SqlText(m_pDB, inf.Bus_Name).constData(),
                                 SqlText(m_pDB, inf.ID_Name).constData()),
                      MSG_DIST_T9_QUERY, MSG_DIST_T9_NONE)) {
        return CALC_FAIL;
    }
    const int rows = q.size();
    bool first = true;
    while (q.next()) {
        ++m_nDist;
        // Name, ends and circuit come from the disturbance row; the table's ID_Name,
        // Gen_Name and PG0 are not read.
        DistRecord d(inf.ID_Name, inf.I_Name, inf.I_Name);
        d.set(inf.ID_No, 7, rows, number(q, 7), EndTime(number(q, 8)), number(q, 4), number(q, 5),
              number(q, 6), first ? number(q, 2) : 0.0);
        insert(d.r);
        m_pRTDB->precommit();
        first = false;
    }
    return CALC_OK;
}
