#include "loadflow/jobdata/LFCalDataTransfer.h"

#include "common/Feedback.h"
#include "common/RunTimeLog.h"
#include "common/WorkTable.h"
#include "loadflow/jobdata/LFExtractStatements.h"
#include "loadflow/jobdata/LFSaveStatements.h"

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QVariant>
#include <cstring>

using namespace lfx;

namespace {

bool run(QSqlDatabase* db, const QByteArray& sql)
{
    QSqlQuery q(*db);
    return ExecStatement(q, sql);
}

// The scheme's name for its statement.
QByteArray schemeText(QSqlDatabase* db, const char* name, size_t size)
{
    return SqlText(db, QByteArray(name, static_cast<int>(qstrnlen(name, size))));
}

} // namespace

CLFCalDataTransfer::CLFCalDataTransfer(int jobNumber, char* schemeName, QSqlDatabase* db,
                                       CDatabase* baseDb)
    : m_pDB(db), m_pBaseDB(baseDb), m_nJobNumber(jobNumber),
      m_saveBack(db, lfs::MSG_SQL_FAIL)
{
    Init(schemeName);
}

CLFCalDataTransfer::CLFCalDataTransfer(char* schemeName, QSqlDatabase* db)
    : m_pDB(db), m_pBaseDB(nullptr), m_nJobNumber(0), // no base-database object: extraction only
      m_saveBack(db, lfs::MSG_SQL_FAIL)
{
    Init(schemeName);
}

void CLFCalDataTransfer::Init(char* schemeName)
{
    // At most 32 bytes as the design counted them, cut between characters; a longer name
    // is remembered for the extraction to refuse.
    const QByteArray scheme(schemeName ? schemeName : "");
    GbkCopy(m_SchName, scheme, kSchemeBytes);
    m_overlongScheme = GbkWidth(scheme) > kSchemeBytes ? scheme : QByteArray();
    m_dBaseMva = 1.0;
    QSqlQuery q(*m_pDB);
    if (ExecStatement(q, FormatText(SQL_BASE_POWER, "CDB_SB", WORKING_COPY)) && q.next()) {
        m_dBaseMva = q.value(0).toDouble();
    }
    m_bNewGroup = false;
}

int CLFCalDataTransfer::DeleteLData()
{
    CRunTimeLog frame("DeleteLData");
    for (const char* prefix : {"L1", "L2", "L3", "L4", "L5", "L6", "LK"}) {
        if (!run(m_pDB, FormatText(SQL_DELETE_JOB, prefix, m_nJobNumber))) {
            ShowMessagef(MSG_ERROR, MSG_DELETE_JOB, prefix, m_nJobNumber);
            return CALC_FAIL;
        }
    }
    return CALC_OK;
}

int CLFCalDataTransfer::ImportLDataFromBaseDB()
{
    CRunTimeLog frame("ImportLDataFromBaseDB");
    return m_guard.Run(m_pDB, {runguard::WorkTable("tmp"), runguard::JobTables("L", m_nJobNumber)},
                       QString(), [this] { return RunImport(); });
}

int CLFCalDataTransfer::RunImport()
{
    // The cut name would pick another scheme or none: nothing is emptied or filled.
    if (!m_overlongScheme.isEmpty()) {
        ShowMessagef(MSG_ERROR, MSG_SCHEME_TOO_LONG, m_overlongScheme.constData(), kSchemeBytes);
        return CALC_FAIL;
    }
    ShowMessage(MSG_START, MSG_PROGRESS);
    Nbus = Ngenerat = Nload = Nacline = Ndcline = Ntrans = Nswitch = 0;
    DeleteLData();
    run(m_pDB, SQL_DROP_STALE_TMP);

    int failed = 0;
    failed |= ImportL2DataFromBaseDB();
    failed |= ImportL3DataFromBaseDB();
    failed |= ImportL4DataFromBaseDB();
    failed |= ImportL5DataFromBaseDB();
    failed |= ImportL6DataFromBaseDB();
    failed |= ImportLKDataFromBaseDB();
    failed |= ImportL1DataFromBaseDB(); // last: built from what the others wrote

    if (m_nJobNumber == 0) { // the working job's row is made when missing
        QSqlQuery q(*m_pDB);
        if (!ExecStatement(q, FormatText(SQL_CASE_ROW, "LF_CASE"))) {
            ShowMessage(MSG_CASE_COUNTS, MSG_ERROR);
        }
        // A failed select has the size -1, so the insert is tried after a failure too.
        if (q.size() < 1 && !run(m_pDB, FormatText(SQL_CASE_INSERT, "LF_CASE"))) {
            ShowMessage(MSG_CASE_COUNTS, MSG_ERROR);
        }
    }
    if (!run(m_pDB, FormatText(SQL_CASE_COUNTS, "LF_CASE", Nbus, Ngenerat, Nload, Nacline, Ndcline,
                               Ntrans, m_nJobNumber))) {
        ShowMessage(MSG_CASE_COUNTS, MSG_ERROR);
    }
    if (failed) {
        return CALC_FAIL;
    }
    ShowMessage(MSG_DONE, MSG_PROGRESS);
    return CALC_OK;
}

bool CLFCalDataTransfer::CreateTmp()
{
    return CreateWorkTable(m_pDB, SQL_CREATE_TMP, SQL_DROP_TMP_RETRY, MSG_DB_ERROR);
}

void CLFCalDataTransfer::DropTmp()
{
    run(m_pDB, SQL_DROP_TMP);
}

bool CLFCalDataTransfer::SelectByScheme(const QByteArray& source)
{
    const QByteArray scheme = schemeText(m_pDB, m_SchName, sizeof m_SchName);
    if (!run(m_pDB, FormatText(SQL_SCHEME_SOURCE, source.constData(), "CDB_SCHEMEINF", WORKING_COPY,
                               "CDB_SCHEMECONT", WORKING_COPY, scheme.constData()))) {
        ShowMessage(MSG_SCHEME, MSG_ERROR);
        return false;
    }
    return true;
}

namespace {

QByteArray workingCopy(const char* table)
{
    return FormatText("%s%s", table, WORKING_COPY);
}

} // namespace

int CLFCalDataTransfer::ImportL5DataFromBaseDB()
{
    CRunTimeLog frame("ImportL5DataFromBaseDB");
    if (!CreateTmp()) {
        return CALC_FAIL;
    }
    const QByteArray job = FormatText("%s_%d", "L5", m_nJobNumber);
    const QByteArray scheme = schemeText(m_pDB, m_SchName, sizeof m_SchName);
    if (!run(m_pDB, FormatText(SQL_SCHEME, "CDB_GENERAT", WORKING_COPY, "CDB_SCHEMEINF",
                               WORKING_COPY, "CDB_SCHEMECONT", WORKING_COPY, scheme.constData()))) {
        ShowMessage(MSG_SCHEME, MSG_ERROR);
        return CALC_FAIL;
    }
    const QByteArray unit1 =
        FormatText(SQL_L5_UNIT1, job.constData(), m_nJobNumber, "CDB_GENERAT", WORKING_COPY);
    if (!run(m_pDB, unit1)) {
        ShowMessage(unit1, MSG_RAW);
        ShowMessage(MSG_SCHEME, MSG_ERROR);
        return CALC_FAIL;
    }
    const double sb = m_dBaseMva;
    if (!run(m_pDB, FormatText(SQL_L5_UNIT0, job.constData(), m_nJobNumber, sb, sb, sb, sb, sb, sb,
                               "CDB_GENERAT", WORKING_COPY, "CDB_NODE", WORKING_COPY))) {
        ShowMessage(MSG_L5_UNIT0, MSG_ERROR);
        return CALC_FAIL;
    }
    DropTmp();
    return CALC_OK;
}

int CLFCalDataTransfer::ImportL6DataFromBaseDB()
{
    CRunTimeLog frame("ImportL6DataFromBaseDB");
    if (!CreateTmp()) {
        return CALC_FAIL;
    }
    const QByteArray job = FormatText("%s_%d", "L6", m_nJobNumber);
    const QByteArray scheme = schemeText(m_pDB, m_SchName, sizeof m_SchName);
    if (!run(m_pDB, FormatText(SQL_SCHEME, "CDB_LOAD", WORKING_COPY, "CDB_SCHEMEINF", WORKING_COPY,
                               "CDB_SCHEMECONT", WORKING_COPY, scheme.constData()))) {
        ShowMessage(MSG_SCHEME, MSG_ERROR);
        return CALC_FAIL;
    }
    const QByteArray unit1 =
        FormatText(SQL_L6_UNIT1, job.constData(), m_nJobNumber, "CDB_LOAD", WORKING_COPY);
    if (!run(m_pDB, unit1)) {
        ShowMessage(unit1, MSG_RAW);
        ShowMessage(MSG_SCHEME, MSG_ERROR);
        return CALC_FAIL;
    }
    const double sb = m_dBaseMva;
    if (!run(m_pDB, FormatText(SQL_L6_UNIT0, job.constData(), m_nJobNumber, sb, sb, sb, sb, sb, sb,
                               "CDB_LOAD", WORKING_COPY))) {
        ShowMessage(MSG_L6_UNIT0, MSG_ERROR);
        return CALC_FAIL;
    }
    DropTmp();
    return CALC_OK;
}

int CLFCalDataTransfer::ImportLKDataFromBaseDB()
{
    CRunTimeLog frame("ImportLKDataFromBaseDB");
    if (!CreateTmp()) {
        return CALC_FAIL;
    }
    const QByteArray job = FormatText("%s_%d", "LK", m_nJobNumber);
    const QByteArray scheme = schemeText(m_pDB, m_SchName, sizeof m_SchName);
    struct Kind
    {
        const char* table;
        const char* sql;
        const char* message;
    } kinds[] = {{"CDB_BREAKER", SQL_LK_BREAKER, MSG_LK_BREAKER},
                 {"CDB_ISOSWITCH", SQL_LK_SWITCH, MSG_LK_SWITCH}};
    bool first = true;
    for (const Kind& k : kinds) {
        if (!first) {
            run(m_pDB, SQL_CLEAR_TMP);
        }
        first = false;
        if (!run(m_pDB, FormatText(SQL_SCHEME, k.table, WORKING_COPY, "CDB_SCHEMEINF", WORKING_COPY,
                                   "CDB_SCHEMECONT", WORKING_COPY, scheme.constData()))) {
            ShowMessage(MSG_SCHEME, MSG_ERROR);
            return CALC_FAIL;
        }
        if (!run(m_pDB, FormatText(k.sql, job.constData(), m_nJobNumber, k.table, WORKING_COPY))) {
            ShowMessage(k.message, MSG_ERROR);
            return CALC_FAIL;
        }
    }
    DropTmp();
    return CALC_OK;
}

int CLFCalDataTransfer::ImportL4DataFromBaseDB()
{
    CRunTimeLog frame("ImportL4DataFromBaseDB");
    if (!CreateTmp()) {
        return CALC_FAIL;
    }
    const QByteArray scheme = schemeText(m_pDB, m_SchName, sizeof m_SchName);
    if (!run(m_pDB, FormatText(SQL_SCHEME, "CDB_DCLINE", WORKING_COPY, "CDB_SCHEMEINF",
                               WORKING_COPY, "CDB_SCHEMECONT", WORKING_COPY, scheme.constData()))) {
        ShowMessage(MSG_SCHEME, MSG_ERROR);
        return CALC_FAIL;
    }
    const QByteArray job = FormatText("%s_%d", "L4", m_nJobNumber);
    if (!run(m_pDB, FormatText(SQL_L4, job.constData(), m_nJobNumber, "CDB_DCLINE", WORKING_COPY,
                               "CDB_NODE", WORKING_COPY, "CDB_BUS", WORKING_COPY))) {
        ShowMessage(MSG_L4, MSG_ERROR);
        return CALC_FAIL;
    }
    DropTmp();
    return CALC_OK;
}

// ---- L2: AC lines, series elements, shunt elements ----

namespace {

// Runs the Unit 1 and the Unit 0 statement of an L2 sub-family.
bool l2Pair(QSqlDatabase* db, const char* unit1, const char* unit0, const QByteArray& job,
            int jobNo, double sb, bool withCharging, const QByteArray& source, int ntype)
{
    if (!run(db, FormatText(unit1, job.constData(), jobNo, ntype, source.constData(), "CDB_NODE",
                            WORKING_COPY, "CDB_BUS", WORKING_COPY))) {
        return false;
    }
    const QByteArray sql =
        withCharging
            ? FormatText(unit0, job.constData(), jobNo, sb, sb, sb, ntype, source.constData(),
                         "CDB_NODE", WORKING_COPY, "CDB_BUS", WORKING_COPY)
            : FormatText(unit0, job.constData(), jobNo, sb, sb, ntype, source.constData(),
                         "CDB_NODE", WORKING_COPY, "CDB_BUS", WORKING_COPY);
    return run(db, sql);
}

} // namespace

int CLFCalDataTransfer::ImportL2DataFromBaseDB()
{
    CRunTimeLog frame("ImportL2DataFromBaseDB");
    if (!CreateTmp()) {
        return CALC_FAIL;
    }
    if (ImportL2DataFromAC() || ImportL2DataFromSCR() || ImportL2DataFromPCR()) {
        return CALC_FAIL;
    }
    DropTmp();
    return CALC_OK;
}

int CLFCalDataTransfer::ImportL2DataFromAC()
{
    run(m_pDB, SQL_CLEAR_TMP);
    const QByteArray source = workingCopy("CDB_ACLINE");
    if (!SelectByScheme(source)) {
        return CALC_FAIL;
    }
    if (!l2Pair(m_pDB, SQL_L2_AC_UNIT1, SQL_L2_AC_UNIT0, FormatText("L2_%d", m_nJobNumber),
                m_nJobNumber, m_dBaseMva, true, source, 1)) {
        ShowMessage(MSG_L2_AC, MSG_ERROR);
        return CALC_FAIL;
    }
    return CALC_OK;
}

int CLFCalDataTransfer::ImportL2DataFromSCR()
{
    run(m_pDB, SQL_CLEAR_TMP);
    const QByteArray source = workingCopy("CDB_SCAPREA");
    if (!SelectByScheme(source)) {
        return CALC_FAIL;
    }
    if (!l2Pair(m_pDB, SQL_L2_SCR_UNIT1, SQL_L2_SCR_UNIT0, FormatText("L2_%d", m_nJobNumber),
                m_nJobNumber, m_dBaseMva, false, source, 2)) {
        ShowMessage(MSG_L2_SCR, MSG_ERROR);
        return CALC_FAIL;
    }
    return CALC_OK;
}

int CLFCalDataTransfer::ImportL2DataFromPCR()
{
    run(m_pDB, SQL_CLEAR_TMP);
    const QByteArray source = workingCopy("CDB_PCAPREA");
    if (!SelectByScheme(source)) {
        return CALC_FAIL;
    }
    if (!l2Pair(m_pDB, SQL_L2_PCR_UNIT1, SQL_L2_PCR_UNIT0, FormatText("L2_%d", m_nJobNumber),
                m_nJobNumber, m_dBaseMva, false, source, 3)) {
        ShowMessage(MSG_L2_PCR, MSG_ERROR);
        return CALC_FAIL;
    }
    return CALC_OK;
}

// ---- L3: transformers ----

int CLFCalDataTransfer::ImportL3DataFromBaseDB()
{
    CRunTimeLog frame("ImportL3DataFromBaseDB");
    if (!CreateTmp()) {
        return CALC_FAIL;
    }
    if (ImportL3DataFromT2W() || ImportL3DataFromShift() || ImportL3DataFromT3W()) {
        return CALC_FAIL;
    }
    DropTmp();
    return CALC_OK;
}

namespace {

// A two-winding transformer or phase shifter: Unit 1, then Unit 0 with four base powers.
bool l3Pair(QSqlDatabase* db, const char* unit1, const char* unit0, int jobNo, double sb,
            const QByteArray& source, int ntype)
{
    const QByteArray job = FormatText("L3_%d", jobNo);
    if (!run(db, FormatText(unit1, job.constData(), jobNo, ntype, source.constData(), "CDB_NODE",
                            WORKING_COPY, "CDB_BUS", WORKING_COPY))) {
        return false;
    }
    return run(db,
               FormatText(unit0, job.constData(), jobNo, sb, sb, sb, sb, ntype, source.constData(),
                          "CDB_NODE", WORKING_COPY, "CDB_BUS", WORKING_COPY));
}

} // namespace

int CLFCalDataTransfer::ImportL3DataFromT2W()
{
    run(m_pDB, SQL_CLEAR_TMP);
    const QByteArray source = workingCopy("CDB_TRANS_2W");
    if (!SelectByScheme(source)) {
        return CALC_FAIL;
    }
    if (!l3Pair(m_pDB, SQL_L3_T2W_UNIT1, SQL_L3_T2W_UNIT0, m_nJobNumber, m_dBaseMva, source, 1)) {
        ShowMessage(MSG_L3_T2W, MSG_ERROR);
        return CALC_FAIL;
    }
    return CALC_OK;
}

int CLFCalDataTransfer::ImportL3DataFromShift()
{
    run(m_pDB, SQL_CLEAR_TMP);
    const QByteArray source = workingCopy("CDB_SHIFT");
    if (!SelectByScheme(source)) {
        return CALC_FAIL;
    }
    if (!l3Pair(m_pDB, SQL_L3_SHIFT_UNIT1, SQL_L3_SHIFT_UNIT0, m_nJobNumber, m_dBaseMva, source,
                2)) {
        ShowMessage(MSG_L3_SHIFT, MSG_ERROR);
        return CALC_FAIL;
    }
    return CALC_OK;
}

int CLFCalDataTransfer::ImportL3DataFromT3W()
{
    run(m_pDB, SQL_CLEAR_TMP);
    const QByteArray source = workingCopy("CDB_TRANS_3W");
    if (!SelectByScheme(source)) {
        return CALC_FAIL;
    }
    const QByteArray job = FormatText("L3_%d", m_nJobNumber);
    const double sb = m_dBaseMva;
    // Winding 1 Unit 1, winding 1 Unit 0, then windings 2 and 3 alike, from one tmp.
    for (int w = 1; w <= 3; ++w) {
        for (int unit = 1; unit >= 0; --unit) {
            QByteArray t(unit ? SQL_L3_T3W_UNIT1 : SQL_L3_T3W_UNIT0);
            t.replace('#', QByteArray::number(w));
            const QByteArray gm = w == 1 ? (unit ? T3W_GM_UNIT1 : T3W_GM_UNIT0) : "0";
            const QByteArray bm = w == 1 ? (unit ? T3W_BM_UNIT1 : T3W_BM_UNIT0) : "0";
            t.replace("%s, %s, a.Tk" + QByteArray::number(w),
                      gm + ", " + bm + ", a.Tk" + QByteArray::number(w));
            const int ntype = 30 + w;
            QByteArray sql;
            if (unit) {
                sql = FormatText(t.constData(), job.constData(), m_nJobNumber, ntype,
                                 source.constData(), "CDB_NODE", WORKING_COPY, "CDB_BUS",
                                 WORKING_COPY);
            } else if (w == 1) {
                sql = FormatText(t.constData(), job.constData(), m_nJobNumber, sb, sb, sb, sb,
                                 ntype, source.constData(), "CDB_NODE", WORKING_COPY, "CDB_BUS",
                                 WORKING_COPY);
            } else {
                sql = FormatText(t.constData(), job.constData(), m_nJobNumber, sb, sb, ntype,
                                 source.constData(), "CDB_NODE", WORKING_COPY, "CDB_BUS",
                                 WORKING_COPY);
            }
            if (!run(m_pDB, sql)) {
                ShowMessage(MSG_L3_T3W, MSG_ERROR);
                return CALC_FAIL;
            }
        }
    }
    return CALC_OK;
}
