// The case itself: the object, the driver, the case record, its criteria and faults,
// the run state back into ST_CASE, and what every family of the set-up shares.

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

using namespace dtsdb;
using namespace stcase;

bool stcase::run(QSqlQuery& q, const QByteArray& sql)
{
    return ExecStatement(q, sql);
}

QByteArray stcase::text(const QSqlQuery& q, int column, int maxBytes)
{
    const QByteArray bytes = q.value(column).toString().toLocal8Bit();
    return maxBytes < 0 ? bytes : GbkCut(bytes, maxBytes);
}

int stcase::switchedOff(QSqlDatabase* db, const char* sql, const char* table, int caseNo, int on,
                        const char* message)
{
    QSqlQuery q(*db);
    if (!run(q, FormatText(sql, table, caseNo))) {
        ShowMessage(message, MSG_ERROR);
        return CALC_FAIL;
    }
    return q.next() && RowInt(q, 0) != on ? CALC_OK : -1;
}

int stcase::nodeBusNo(const char* name)
{
    if (!name || !*name) {
        return -1;
    }
    dbCursor<nd> nodes(dbCursorViewOnly);
    dbQuery q;
    q = "id=", name;
    return nodes.select(q) >= 1 ? nodes->ibs : -1;
}

int stcase::newBusNo(const char* name)
{
    dbCursor<bs> buses(dbCursorViewOnly);
    dbQuery byName;
    byName = "name=", name;
    if (buses.select(byName) > 0) {
        return buses->id;
    }
    int no = -1;
    dbQuery last;
    last = "order by id desc";
    if (buses.select(last) > 0) {
        no = buses->id + 1;
    }
    bs bus;
    bus.id = no;
    bus.name = name;
    bus.q = 0;
    dbAnyReference ref;
    bs::dbDescriptor.getDatabase()->insertRecord(&bs::dbDescriptor, &ref, &bus);
    return no;
}

namespace {

// Names hold at most 20 bytes (kNameBytes) and a case's note 100, as the design counted
// them: a Chinese character 2.
constexpr int kNoteBytes = 100;

// The run-state set list as the designed call composes it on x86-64. The call passes
// Calculate, a float, where the first %d wants an int; widened to a double it travels in
// a vector register, so each %d and %s takes the integer argument meant for the
// placeholder after its own: CALCULATE gets UDOUT, UDOUT the address of the CAL_DATE
// text, CAL_Date the CAL_TIME text, CAL_Time the number UD_TIME taken as an address,
// UD_Time Nup, NUP the case number, and Case_No whatever lies past the last argument.
// The text is composed from that explicitly. Where the machine would print something
// that is no value of the case (an address, a number read as an address, a slot past the
// arguments) it gets what the C library prints for a zero there: 0 for a %d and "(null)"
// for a %s, which is the machine's own output whenever UD_TIME is 0.
QByteArray shiftedRunStateSet(QSqlDatabase* db, const case_st& r)
{
    return FormatText(SQL_RUNSTATE_SET, r.UDOUT, 0, SqlText(db, r.CAL_TIME).constData(), "(null)",
                      r.Nup, r.case_no, 0);
}

} // namespace

CSTCaseDataTransfer::CSTCaseDataTransfer(int caseNo, QSqlDatabase* db, dbDatabase* rtdb)
    : m_pDB(db), m_nCaseNo(caseNo), m_nCaseLF(0), m_nFault(0), m_nDist(0), m_dTotalTime(0),
      m_pRTDB(rtdb)
{
    QSqlQuery q(*m_pDB);
    if (!run(q, FormatText(SQL_CASE_LF, ST_CASE, m_nCaseNo))) {
        ShowMessage(MSG_CASE_LF, MSG_ERROR);
        return;
    }
    if (q.next()) {
        m_nCaseLF = RowInt(q, 0);
    }
}

CSTCaseDataTransfer::~CSTCaseDataTransfer() {}

int CSTCaseDataTransfer::ImportSTCaseDataToRTDB()
{
    int failed = 0;
    failed |= ImportSTCRITDataToRTDB() != 0;
    failed |= ImportFAULTDataToRTDB() != 0;
    failed |= ImportUDCAL_STDataToRTDB() != 0;
    failed |= ImportUPCAL_STDataToRTDB() != 0;
    failed |= ImportDISTDataToRTDB() != 0;
    failed |= ImportST_OUTDataToRTDB() != 0;
    failed |= ImportVAR_INFDataToRTDB() != 0;
    failed |= ImportSTANA_GIDataToRTDB() != 0;
    failed |= ImportSTANA_GrpDataToRTDB() != 0;

    QSqlQuery q(*m_pDB);
    if (!run(q, FormatText(SQL_COUNTS_UPDATE, ST_CASE, m_nFault, m_nDist, m_nCaseNo))) {
        ShowMessage(MSG_CASE_UPDATE, MSG_ERROR);
        failed = 1;
    }
    // Last, so that the case record carries the fresh counts.
    if (ImportCase_STDataToRTDB() != 0) {
        ShowMessage(MSG_CASE_STEP, MSG_ERROR);
        failed = 1;
    }
    return failed ? CALC_FAIL : CALC_OK;
}

int CSTCaseDataTransfer::ImportCase_STDataToRTDB()
{
    QSqlQuery q(*m_pDB);
    if (!run(q, FormatText(SQL_CASE_SELECT, ST_CASE, m_nCaseNo))) {
        ShowMessage(MSG_CASE_QUERY, MSG_ERROR);
        return CALC_FAIL;
    }
    removeAllRecords<case_st>();
    m_pRTDB->commit();
    if (!q.next()) {
        ShowMessage(MSG_CASE_MISSING, MSG_ERROR);
        return CALC_FAIL;
    }
    const QByteArray date = text(q, 13);
    const QByteArray time = text(q, 14);
    const QByteArray note = text(q, 28, kNoteBytes);
    case_st r;
    r.case_no = m_nCaseNo;
    r.Case_LF = RowInt(q, 0);
    r.ST_SC = RowInt(q, 1);
    r.T_Total = RowReal(q, 2);
    r.DT_Step = RowReal(q, 3);
    r.F60 = RowInt(q, 4);
    r.EQ_Method = RowInt(q, 5);
    r.EQ_Continu = RowInt(q, 6);
    r.Ctrl_Fault = RowInt(q, 7);
    r.CTRL_UD = RowInt(q, 8);
    r.CTRL_DIST = RowInt(q, 9);
    r.UP_CAL = RowInt(q, 10);
    r.Calculate = -1.0f; // column 11 is selected and not read: the engine has not run yet
    r.UDOUT = RowInt(q, 12);
    r.CAL_DATE = date.constData();
    r.CAL_TIME = time.constData();
    r.UD_TIME = RowInt(q, 15);
    r.Nup = RowInt(q, 16);
    r.Nbus = RowInt(q, 17);
    r.Ngenerat = RowInt(q, 18);
    r.Nload = RowInt(q, 19);
    r.Nacline = RowInt(q, 20);
    r.Ndcline = RowInt(q, 21);
    r.Ntrans = RowInt(q, 22);
    r.Nsvc = RowInt(q, 23);
    r.Nreserved = 0;
    r.Nfault = RowInt(q, 24);
    r.Ndist = RowInt(q, 25);
    r.Istable = RowInt(q, 26);
    r.Tstable = static_cast<float>(RowInt(q, 27)); // whole seconds: the fraction is cut off
    r.Tolerance = 0.0005f;
    r.Note = note.constData();
    insert(r);
    m_pRTDB->commit();
    return CALC_OK;
}

int CSTCaseDataTransfer::ImportSTCRITDataToRTDB()
{
    QSqlQuery q(*m_pDB);
    if (!run(q, FormatText(SQL_CRIT_SELECT, ST_CRIT, m_nCaseNo))) {
        ShowMessage(MSG_CRIT_QUERY, MSG_ERROR);
        return CALC_FAIL;
    }
    removeAllRecords<stcrit>();
    m_pRTDB->commit();
    if (q.next()) { // one record: further rows are ignored
        const QByteArray id1 = text(q, 9, kNameBytes), id2 = text(q, 10, kNameBytes);
        const QByteArray gen1 = text(q, 11, kNameBytes), gen2 = text(q, 12, kNameBytes);
        stcrit r;
        r.Valid = RowInt(q, 0);
        r.Lstop = RowInt(q, 1);
        r.MaxDAng = RowReal(q, 2);
        r.MinVol = RowReal(q, 3);
        r.TDVol = RowReal(q, 4);
        r.MinFreq = RowReal(q, 5);
        r.TDFreq = RowReal(q, 6);
        r.NanaGrp = RowInt(q, 7);
        r.TSDAng = RowReal(q, 8);
        r.ID_Name1 = id1.constData();
        r.ID_Name2 = id2.constData();
        r.Gen_Name1 = gen1.constData();
        r.Gen_Name2 = gen2.constData();
        r.TSProny = RowReal(q, 13);
        r.TEProny = RowReal(q, 14);
        r.NDTProny = RowInt(q, 15);
        insert(r);
        m_pRTDB->commit();
    }
    return CALC_OK;
}

int CSTCaseDataTransfer::ImportFAULTDataToRTDB()
{
    // Emptied before any test, so the old faults go even when the case turns faults off.
    removeAllRecords<stfault>();
    m_pRTDB->commit();

    const int off = switchedOff(m_pDB, SQL_CTRL_FAULT, ST_CASE, m_nCaseNo, 1, MSG_FLAG_QUERY);
    if (off >= 0) {
        return off; // no row counts as faults on
    }
    QSqlQuery q(*m_pDB);
    if (!run(q, FormatText(SQL_FAULT_SELECT, ST_FAULT, m_nCaseNo))) {
        ShowMessage(MSG_FAULT_QUERY, MSG_ERROR);
        return CALC_FAIL;
    }
    while (q.next()) { // valid or not, every row counts and stands
        ++m_nFault;
        const QByteArray idName = text(q, 2, kNameBytes);
        const QByteArray iName = text(q, 3, kNameBytes);
        const QByteArray jName = text(q, 4, kNameBytes);
        const QByteArray name = text(q, 7, kNameBytes);
        stfault r;
        r.Valid = RowInt(q, 0);
        r.ID_Name = idName.constData();
        r.I_Name = iName.constData();
        r.J_Name = jName.constData();
        r.I_No = GetNodeBusNo(r.I_Name);
        r.J_No = GetNodeBusNo(r.J_Name);
        r.ID_No = RowInt(q, 5);
        r.Locate = RowInt(q, 6);
        r.Name = name.constData();
        int newBus = -1;
        if (r.Locate > 0 && r.Locate < 100 && name.isEmpty()) {
            // A fault inside the branch needs its new bus's name.
            ShowMessagef(MSG_ERROR, MSG_FAULT_NO_BUS_NAME, ST_FAULT, idName.constData());
        } else if (!name.isEmpty()) {
            newBus = newBusNo(r.Name); // whatever Locate says
        }
        r.Name_No = newBus;
        r.A = RowInt(q, 8);
        r.B = RowInt(q, 9);
        r.C = RowInt(q, 10);
        r.Ground = RowInt(q, 11);
        r.Short = r.Ground == 1 ? 1 : RowInt(q, 12);
        r.Open = RowInt(q, 13);
        r.T_Start = RowReal(q, 14);
        r.T_End = RowReal(q, 15);
        r.R_Fault = RowReal(q, 16);
        r.X_Fault = RowReal(q, 17);
        insert(r);
        m_pRTDB->commit(); // with the bus the fault added
    }
    return CALC_OK;
}

int CSTCaseDataTransfer::GetNodeBusNo(const char* name)
{
    return nodeBusNo(name);
}

int CSTCaseDataTransfer::UpdateSTCaseDataFromRTDB()
{
    QByteArray sql = FormatText(SQL_RUNSTATE_UPDATE, ST_CASE);
    dbCursor<case_st> cases(dbCursorViewOnly);
    dbQuery byNo;
    byNo = "case_no=", m_nCaseNo;
    if (cases.select(byNo) < 1) {
        ShowMessage(MSG_RTDB_NO_CASE, MSG_ERROR);
        m_pRTDB->commit();
        return CALC_FAIL;
    }
    const case_st& r = *cases;
    if (m_bIntended) {
        sql += FormatText(SQL_RUNSTATE_SET_INTENDED, TruncatedInt(r.Calculate), r.UDOUT,
                          SqlText(m_pDB, r.CAL_DATE).constData(),
                          SqlText(m_pDB, r.CAL_TIME).constData(), r.UD_TIME, r.Nup, m_nCaseNo);
    } else {
        sql += shiftedRunStateSet(m_pDB, r);
    }
    QSqlQuery q(*m_pDB);
    if (!run(q, sql)) { // the ordinary outcome of the designed statement
        ShowMessage(MSG_CASE_UPDATE, MSG_ERROR);
        m_pRTDB->commit();
        return CALC_FAIL;
    }
    m_pRTDB->commit();
    return CALC_OK;
}
