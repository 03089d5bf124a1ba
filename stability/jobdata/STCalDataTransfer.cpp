// Stability extraction: the rows that the load-flow case's scheme picks go from the working
// copies into S2_n ... S7_n in per-unit form, inside the server, and the counts to ST_CASE.

#include "stability/jobdata/STCalDataTransfer.h"

#include "common/Feedback.h"
#include "common/WorkTable.h"
#include "stability/jobdata/STExtractStatements.h"
#include "stability/jobdata/STSaveStatements.h"

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QVariant>
#include <cstring>

using namespace stx;

namespace {

bool run(QSqlDatabase* db, const QByteArray& sql)
{
    QSqlQuery q(*db);
    return ExecStatement(q, sql);
}

QByteArray workingCopy(const char* table)
{
    return FormatText("%s%s", table, WORKING_COPY);
}

// The template with '#' replaced by `digit`.
QByteArray numbered(const char* text, char digit)
{
    QByteArray t(text);
    t.replace('#', QByteArray(1, digit));
    return t;
}

} // namespace

CSTCalDataTransfer::CSTCalDataTransfer(int jobNumber, int lfCase, QSqlDatabase* db,
                                       CDatabase* baseDb)
    : m_pDB(db), m_pBaseDB(baseDb), m_nLFCase(lfCase), m_nJobNumber(jobNumber),
      m_saveBack(db, sts::MSG_SQL_FAIL)
{
    // A case without a scheme (number 0, no row) leaves the name empty: its fills pick
    // nothing rather than reading an unset buffer.
    SetScheme(QByteArray());
    if (lfCase > 0) {
        QSqlQuery q(*m_pDB);
        if (ExecStatement(q, FormatText(SQL_LF_SCHEME, "LF_CASE", lfCase)) && q.next()) {
            SetScheme(q.value(0).toString().toLocal8Bit());
        }
    }
    Init();
}

CSTCalDataTransfer::CSTCalDataTransfer(char* schemeName, QSqlDatabase* db)
    : m_pDB(db), m_pBaseDB(nullptr), m_nLFCase(0), m_nJobNumber(0),
      m_saveBack(db, sts::MSG_SQL_FAIL)
{
    SetScheme(QByteArray(schemeName ? schemeName : ""));
    Init();
}

// LF_CASE.SCHEME holds 40 characters and the scheme buffer 31 bytes as the design counted
// them: a longer name is cut between characters and remembered, for the extraction to refuse.
void CSTCalDataTransfer::SetScheme(const QByteArray& name)
{
    GbkCopy(m_SchName, name, kSchemeBytes);
    m_overlongScheme = GbkWidth(name) > kSchemeBytes ? name : QByteArray();
}

void CSTCalDataTransfer::Init()
{
    // An empty CDB_SBBAK leaves the base power at 1.0, as everywhere in the library.
    QSqlQuery q(*m_pDB);
    if (ExecStatement(q, FormatText(SQL_BASE_POWER, "CDB_SB", WORKING_COPY)) && q.next()) {
        m_dBaseMva = q.value(0).toDouble();
    }
    Nbus = Ngenerat = Nload = Nacline = Ndcline = Ntrans = Nsvc = 0;
}

bool CSTCalDataTransfer::Exec(const QByteArray& sql)
{
    int rows = 0;
    return Exec(sql, rows);
}

bool CSTCalDataTransfer::Exec(const QByteArray& sql, int& rows)
{
    QSqlQuery q(*m_pDB);
    if (!ExecStatement(q, sql)) {
        ShowMessagef(MSG_ERROR, MSG_SQL_FAIL, sql.constData());
        rows = 0; // a refused statement wrote no row
        return false;
    }
    rows = q.numRowsAffected();
    return true;
}

int CSTCalDataTransfer::DeleteSData()
{
    for (const char* prefix : JOB_PREFIXES) {
        if (!run(m_pDB, FormatText(SQL_DELETE_JOB, prefix, m_nJobNumber))) {
            ShowMessagef(MSG_ERROR, MSG_DELETE_JOB, prefix, m_nJobNumber);
            return CALC_FAIL;
        }
    }
    return run(m_pDB, FormatText(SQL_DELETE_BUSMAP, "CDB_NETBUSMAP", WORKING_COPY, m_nJobNumber))
               ? CALC_OK
               : CALC_FAIL;
}

int CSTCalDataTransfer::ImportSDataFromBaseDB()
{
    return m_guard.Run(m_pDB, {runguard::WorkTable("tmp"), runguard::JobTables("S", m_nJobNumber)},
                       QString(), [this] { return RunImport(); });
}

int CSTCalDataTransfer::RunImport()
{
    // The cut name would pick another scheme or none: nothing is emptied or filled.
    if (!m_overlongScheme.isEmpty()) {
        ShowMessagef(MSG_ERROR, MSG_SCHEME_TOO_LONG, m_overlongScheme.constData(), kSchemeBytes);
        return CALC_FAIL;
    }
    ShowMessage(MSG_START, MSG_PROGRESS);
    DeleteSData(); // what it could not empty, its message has told
    run(m_pDB, SQL_DROP_STALE_TMP);
    // Nbus is no count: the stability job's buses are those of its load-flow case. The
    // other counters go on from where they stand, so a second run adds to them.
    Nbus = 1;
    Nsvc = 0;

    // Every family runs; a failing one tells of itself and leaves the result alone.
    ImportS2DataFromBaseDB();
    ImportS3DataFromBaseDB();
    ImportS4DataFromBaseDB();
    ImportS5DataFromBaseDB();
    ImportS6DataFromBaseDB();
    ImportS7DataFromBaseDB();

    QSqlQuery q(*m_pDB);
    if (ExecStatement(q, FormatText(SQL_CASE_ROW, "ST_CASE", m_nJobNumber)) && !q.next()) {
        run(m_pDB, FormatText(SQL_CASE_INSERT, "ST_CASE", m_nJobNumber));
    }
    if (!run(m_pDB, FormatText(SQL_CASE_COUNTS, "ST_CASE", Nbus, Ngenerat, Nload, Nacline, Ndcline,
                               Ntrans, Nsvc, m_nJobNumber))) {
        ShowMessage(MSG_CASE_COUNTS, MSG_ERROR);
        return CALC_FAIL;
    }
    ShowMessage(MSG_DONE, MSG_PROGRESS);
    return CALC_OK;
}

bool CSTCalDataTransfer::SelectByScheme(const QByteArray& source, int& rows)
{
    return Exec(FormatText(SQL_SCHEME, source.constData(), "CDB_SCHEMEINF", WORKING_COPY,
                           "CDB_SCHEMECONT", WORKING_COPY, SqlText(m_pDB, m_SchName).constData()),
                rows);
}

bool CSTCalDataTransfer::CreateTmp()
{
    return CreateWorkTable(m_pDB, SQL_CREATE_TMP, SQL_DROP_TMP_RETRY, MSG_DB_ERROR);
}

// ---- S2: AC lines, series and shunt compensators, all counted as AC lines ----

int CSTCalDataTransfer::ImportS2DataFromBaseDB()
{
    run(m_pDB, SQL_CREATE_TMP_PLAIN);
    const int ac = ImportS2DataFromAC();
    const int scr = ImportS2DataFromSCR();
    const int pcr = ImportS2DataFromPCR();
    run(m_pDB, SQL_DROP_TMP);
    return ac || scr || pcr ? CALC_FAIL : CALC_OK;
}

// What sets the three apart: source, Ntype, their two inserts, whether the named-unit
// insert converts B0_Half too (a third base power), and what a failure does.
struct CSTCalDataTransfer::S2Family
{
    const char* source;
    int ntype;
    const char* unit1;
    const char* unit0;
    bool b0Half;
    bool refusedFillStops;  // else the fill's refusal goes on, counted with its 0 rows
    bool refusedUnit0Fails; // else a refused named-unit insert is told and not passed on
};

namespace {

const CSTCalDataTransfer::S2Family kAC = {
    "CDB_ACLINE", 1, SQL_S2_AC_UNIT1, SQL_S2_AC_UNIT0, true, false, false};
const CSTCalDataTransfer::S2Family kSCR = {
    "CDB_SCAPREA", 2, SQL_S2_SCR_UNIT1, SQL_S2_SCR_UNIT0, false, true, true};
const CSTCalDataTransfer::S2Family kPCR = {
    "CDB_PCAPREA", 3, SQL_S2_PCR_UNIT1, SQL_S2_PCR_UNIT0, false, false, true};

} // namespace

int CSTCalDataTransfer::ImportS2DataFromAC()
{
    return ImportS2Family(kAC);
}

int CSTCalDataTransfer::ImportS2DataFromSCR()
{
    return ImportS2Family(kSCR);
}

int CSTCalDataTransfer::ImportS2DataFromPCR()
{
    return ImportS2Family(kPCR);
}

int CSTCalDataTransfer::ImportS2Family(const S2Family& f)
{
    const QByteArray job = FormatText("S2_%d", m_nJobNumber);
    const QByteArray source = workingCopy(f.source);
    const double sb = m_dBaseMva;
    run(m_pDB, SQL_CLEAR_TMP);
    int rows = 0;
    if (!SelectByScheme(source, rows) && f.refusedFillStops) {
        return CALC_FAIL;
    }
    Nacline += rows;
    if (!Exec(FormatText(f.unit1, job.constData(), f.ntype, source.constData()))) {
        return CALC_FAIL;
    }
    const QByteArray unit0 =
        f.b0Half ? FormatText(f.unit0, job.constData(), sb, sb, sb, f.ntype, source.constData(),
                              "CDB_NODE", WORKING_COPY, "CDB_BUS", WORKING_COPY)
                 : FormatText(f.unit0, job.constData(), sb, sb, f.ntype, source.constData(),
                              "CDB_NODE", WORKING_COPY, "CDB_BUS", WORKING_COPY);
    return Exec(unit0) || !f.refusedUnit0Fails ? CALC_OK : CALC_FAIL;
}

// ---- S3: transformers, each inserted row (each winding) counted ----

int CSTCalDataTransfer::ImportS3DataFromBaseDB()
{
    run(m_pDB, SQL_CREATE_TMP_PLAIN);
    const int t2w = ImportS3DataFromT2W();
    const int t3w = ImportS3DataFromT3W();
    const int shift = ImportS3DataFromShift();
    run(m_pDB, SQL_DROP_TMP);
    return t2w || t3w || shift ? CALC_FAIL : CALC_OK;
}

int CSTCalDataTransfer::ImportS3DataFromT2W()
{
    return ImportS3Transformer("CDB_TRANS_2W", 1);
}

int CSTCalDataTransfer::ImportS3DataFromShift()
{
    return ImportS3Transformer("CDB_SHIFT", 2);
}

int CSTCalDataTransfer::ImportS3Transformer(const char* table, int ntype)
{
    const QByteArray job = FormatText("S3_%d", m_nJobNumber);
    const QByteArray source = workingCopy(table);
    const double sb = m_dBaseMva;
    run(m_pDB, SQL_CLEAR_TMP);
    int rows = 0;
    if (!SelectByScheme(source, rows)) {
        return CALC_FAIL;
    }
    if (!Exec(FormatText(SQL_S3_UNIT1, job.constData(), ntype, source.constData()), rows)) {
        return CALC_FAIL;
    }
    Ntrans += rows;
    if (!Exec(FormatText(SQL_S3_UNIT0, job.constData(), sb, sb, ntype, source.constData(),
                         "CDB_NODE", WORKING_COPY, "CDB_BUS", WORKING_COPY),
              rows)) {
        return CALC_FAIL;
    }
    Ntrans += rows;
    return CALC_OK;
}

int CSTCalDataTransfer::ImportS3DataFromT3W()
{
    const QByteArray job = FormatText("S3_%d", m_nJobNumber);
    const QByteArray source = workingCopy("CDB_TRANS_3W");
    const double sb = m_dBaseMva;
    run(m_pDB, SQL_CLEAR_TMP);
    int rows = 0;
    if (!SelectByScheme(source, rows)) {
        return CALC_FAIL;
    }
    // Winding 1 per unit, winding 1 named, then windings 2 and 3 alike: one row a winding.
    for (const char w : {'1', '2', '3'}) {
        const int ntype = 30 + (w - '0');
        if (!Exec(FormatText(numbered(SQL_S3_T3W_UNIT1, w).constData(), job.constData(), ntype,
                             source.constData()),
                  rows)) {
            return CALC_FAIL;
        }
        Ntrans += rows;
        if (!Exec(FormatText(numbered(SQL_S3_T3W_UNIT0, w).constData(), job.constData(), sb, sb,
                             ntype, source.constData(), "CDB_NODE", WORKING_COPY, "CDB_BUS",
                             WORKING_COPY),
                  rows)) {
            return CALC_FAIL;
        }
        Ntrans += rows;
    }
    return CALC_OK;
}

// ---- S4 to S6: one insert each from an indexed tmp, counted by the fill ----

int CSTCalDataTransfer::ImportSingleInsert(const char* jobTable, const char* source,
                                           const char* insert, int& counter)
{
    if (!CreateTmp()) {
        return CALC_FAIL;
    }
    int rows = 0;
    if (!SelectByScheme(workingCopy(source), rows)) {
        return CALC_FAIL;
    }
    counter += rows;
    const QByteArray job = FormatText(jobTable, m_nJobNumber);
    return Exec(FormatText(insert, job.constData(), source, WORKING_COPY)) ? CALC_OK : CALC_FAIL;
}

int CSTCalDataTransfer::ImportS4DataFromBaseDB()
{
    if (ImportSingleInsert(S4_TABLE, "CDB_DCLINE", SQL_S4, Ndcline) != CALC_OK) {
        return CALC_FAIL; // tmp stays; the next create drops and makes it again
    }
    run(m_pDB, SQL_DROP_TMP);
    return CALC_OK;
}

// S5 and S6 leave tmp standing: S6's create then fails in every run and takes the
// drop-and-create path, and S7 works in the tmp that S6 leaves.
int CSTCalDataTransfer::ImportS5DataFromBaseDB()
{
    return ImportSingleInsert("S5_%d", "CDB_GENERAT", SQL_S5, Ngenerat);
}

int CSTCalDataTransfer::ImportS6DataFromBaseDB()
{
    return ImportSingleInsert("S6_%d", "CDB_LOAD", SQL_S6, Nload);
}

// ---- S7: static var compensators, in the tmp S6 left; it stays after the run ----

int CSTCalDataTransfer::ImportS7DataFromBaseDB()
{
    const QByteArray job = FormatText("S7_%d", m_nJobNumber);
    const QByteArray source = workingCopy("CDB_SVC");
    run(m_pDB, SQL_CLEAR_TMP);
    int rows = 0;
    if (!SelectByScheme(source, rows)) {
        return CALC_FAIL;
    }
    Nsvc += rows;
    if (!Exec(FormatText(SQL_S7_UNIT1, job.constData(), source.constData())) ||
        !Exec(FormatText(SQL_S7_UNIT0, job.constData(), m_dBaseMva, source.constData(), "CDB_NODE",
                         WORKING_COPY, "CDB_BUS", WORKING_COPY))) {
        return CALC_FAIL;
    }
    return CALC_OK;
}
