#include "stability/caseset/STCaseDataTransfer.h"

#include "common/Conversions.h"
#include "common/Feedback.h"
#include "common/RowValues.h"
#include "records/StabilityCaseRecords.h"
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

// Names hold at most 20 bytes (kNameBytes) and a case's note 100, as the design counted
// them: a Chinese character 2.
constexpr int kNoteBytes = 100;

bool run(QSqlQuery& q, const QByteArray& sql)
{
    return ExecStatement(q, sql);
}

QByteArray text(const QSqlQuery& q, int column, int maxBytes = -1)
{
    const QByteArray bytes = q.value(column).toString().toLocal8Bit();
    return maxBytes < 0 ? bytes : GbkCut(bytes, maxBytes);
}

// The switch of a family in the case tables: the first column of `sql` (a flag select
// on `table` for the case). Gives -1 when the family goes on (the flag is `on`, or no row
// came), else what the family returns at once: 0 when a row turns it off, 1 after
// `message` when the select fails.
int switchedOff(QSqlDatabase* db, const char* sql, const char* table, int caseNo, int on,
                const char* message)
{
    QSqlQuery q(*db);
    if (!run(q, FormatText(sql, table, caseNo))) {
        ShowMessage(message, MSG_ERROR);
        return CALC_FAIL;
    }
    return q.next() && RowInt(q, 0) != on ? CALC_OK : -1;
}

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

// Empties the record table of class T.
template <class T> void removeAllRecords()
{
    dbCursor<T> cursor(dbCursorForUpdate);
    cursor.removeAll();
}

int nodeBusNo(const char* name)
{
    if (!name || !*name) {
        return -1;
    }
    dbCursor<nd> nodes(dbCursorViewOnly);
    dbQuery q;
    q = "id=", name;
    return nodes.select(q) >= 1 ? nodes->ibs : -1;
}

// The number of the bus `name`. A name that bs does not know becomes a new bus numbered
// one above the largest (-1 when bs is empty), so that later faults and models find it.
// Its q is 0, as the fault routine sets it and as the record's constructor leaves it for
// the model routine.
int newBusNo(const char* name)
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

// The four buses of a user model (columns `first` to `first` + 3) with their numbers.
template <class R> void fillModelBuses(R& r, const QSqlQuery& q, int first, QByteArray (&names)[4])
{
    const char** fields[4] = {&r.Bus1, &r.Bus2, &r.Bus3, &r.Bus4};
    int* numbers[4] = {&r.Bus1_No, &r.Bus2_No, &r.Bus3_No, &r.Bus4_No};
    for (int k = 0; k < 4; ++k) {
        names[k] = text(q, first + k, kNameBytes);
        *fields[k] = names[k].constData();
        *numbers[k] = nodeBusNo(names[k].constData());
    }
}

// Branch k of a user model: its name, ends with their bus numbers and circuit number,
// from the columns `first` to `first` + 3.
struct ModelBranch
{
    const char*& id;
    const char*& iName;
    const char*& jName;
    int& iNo;
    int& jNo;
    int& idNo;
};
struct BranchTexts
{
    QByteArray id, iName, jName, name;
};

void fillModelBranch(const ModelBranch& b, const QSqlQuery& q, int first, BranchTexts& t)
{
    t.id = text(q, first, kNameBytes);
    t.iName = text(q, first + 1, kNameBytes);
    t.jName = text(q, first + 2, kNameBytes);
    b.id = t.id.constData();
    b.iName = t.iName.constData();
    b.jName = t.jName.constData();
    b.iNo = nodeBusNo(b.iName);
    b.jNo = nodeBusNo(b.jName);
    b.idNo = RowInt(q, first + 3);
}

#define MODEL_BRANCH(r, k)                                                                         \
    ModelBranch                                                                                    \
    {                                                                                              \
        r.ID_Name##k, r.I##k##_Name, r.J##k##_Name, r.I##k##_No, r.J##k##_No, r.ID_No##k           \
    }

// The rest of branch k of a user-defined model: side, place and the new bus.
struct UdBranchPlace
{
    int& side;
    int& locate;
    const char*& name;
    int& nameNo;
};
#define UD_BRANCH_PLACE(r, k)                                                                      \
    UdBranchPlace                                                                                  \
    {                                                                                              \
        r.Side##k, r.Locate##k, r.Name_##k, r.Name_##k##_No                                        \
    }

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

int CSTCaseDataTransfer::ImportUDCAL_STDataToRTDB()
{
    removeAllRecords<udcal_st>();
    m_pRTDB->commit();

    const int off = switchedOff(m_pDB, SQL_CTRL_UD, ST_CASE, m_nCaseNo, 1, MSG_FLAG_QUERY);
    if (off >= 0) {
        return off;
    }
    QSqlQuery q(*m_pDB);
    if (!run(q, FormatText(SQL_UDCAL_SELECT, ST_UDCAL, m_nCaseNo))) {
        ShowMessage(MSG_UDCAL_QUERY, MSG_ERROR);
        return CALC_FAIL;
    }
    while (q.next()) {
        udcal_st r;
        QByteArray buses[4];
        BranchTexts texts[4];
        r.Valid = RowInt(q, 0);
        r.Model_No = RowInt(q, 1);
        r.Par_No = RowInt(q, 2);
        fillModelBuses(r, q, 3, buses);
        const ModelBranch branches[4] = {MODEL_BRANCH(r, 1), MODEL_BRANCH(r, 2), MODEL_BRANCH(r, 3),
                                         MODEL_BRANCH(r, 4)};
        const UdBranchPlace places[4] = {UD_BRANCH_PLACE(r, 1), UD_BRANCH_PLACE(r, 2),
                                         UD_BRANCH_PLACE(r, 3), UD_BRANCH_PLACE(r, 4)};
        for (int k = 0; k < 4; ++k) { // seven columns a branch from column 7
            const int first = 7 + 7 * k;
            fillModelBranch(branches[k], q, first, texts[k]);
            const UdBranchPlace& p = places[k];
            p.side = RowInt(q, first + 4);
            p.locate = RowInt(q, first + 5);
            texts[k].name = text(q, first + 6, kNameBytes);
            p.name = texts[k].name.constData();
            int newBus = -1;
            if (p.locate >= 1 && p.locate <= 99 && texts[k].name.isEmpty()) {
                ShowMessage(MSG_UDCAL_NO_BUS_NAME[k], MSG_ERROR);
            } else if (!texts[k].name.isEmpty()) {
                newBus = newBusNo(p.name);
            }
            p.nameNo = newBus;
        }
        insert(r);
        m_pRTDB->commit();
    }
    return CALC_OK;
}

int CSTCaseDataTransfer::ImportUPCAL_STDataToRTDB()
{
    // As designed, this step empties the user-defined models just written, never the user
    // programs: udcal_st ends empty after every import, upcal_st keeps what it had.
    removeAllRecords<udcal_st>();
    m_pRTDB->commit();

    const int off = switchedOff(m_pDB, SQL_UP_CAL, ST_CASE, m_nCaseNo, 1, MSG_CASE_QUERY);
    if (off >= 0) {
        return off;
    }
    QSqlQuery q(*m_pDB);
    const char* select = m_bIntended ? SQL_UPCAL_SELECT_INTENDED : SQL_UPCAL_SELECT;
    if (!run(q, FormatText(select, ST_UPCAL, m_nCaseNo))) {
        ShowMessage(MSG_UPCAL_QUERY, MSG_ERROR);
        return CALC_FAIL;
    }
    while (q.next()) {
        upcal_st r;
        const QByteArray upName = text(q, 1); // of any length
        QByteArray buses[4];
        BranchTexts texts[4];
        r.Valid = RowInt(q, 0);
        r.UP_Name = upName.constData();
        r.Par_No = RowInt(q, 2);
        fillModelBuses(r, q, 3, buses);
        const ModelBranch branches[4] = {MODEL_BRANCH(r, 1), MODEL_BRANCH(r, 2), MODEL_BRANCH(r, 3),
                                         MODEL_BRANCH(r, 4)};
        for (int k = 0; k < 4; ++k) { // four columns a branch from column 7
            fillModelBranch(branches[k], q, 7 + 4 * k, texts[k]);
        }
        insert(r);
        m_pRTDB->commit();
    }
    return CALC_OK;
}

namespace {

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

int CSTCaseDataTransfer::ImportST_OUTDataToRTDB()
{
    QSqlQuery q(*m_pDB);
    if (!run(q, FormatText(SQL_OUT_SELECT, ST_OUT, m_nCaseNo))) {
        ShowMessage(MSG_FLAG_QUERY, MSG_ERROR);
        return CALC_FAIL;
    }
    if (!q.next()) { // the old record stays: the table is emptied only when a row came
        ShowMessage(MSG_OUT_MISSING, MSG_ERROR);
        return CALC_FAIL;
    }
    removeAllRecords<st_out>();
    m_pRTDB->commit();
    st_out r;
    r.AnaFunc = RowInt(q, 0);
    r.LAnaMon = RowInt(q, 1);
    r.Fault_120 = RowInt(q, 2);
    r.Variable = RowInt(q, 3);
    r.Bus_120 = RowInt(q, 4);
    int* buses[10] = {&r.B1, &r.B2, &r.B3, &r.B4, &r.B5, &r.B6, &r.B7, &r.B8, &r.B9, &r.B10};
    for (int k = 0; k < 10; ++k) {
        *buses[k] = nodeBusNo(text(q, 5 + k, kNameBytes).constData());
    }
    r.MDTLF = RowInt(q, 15);
    r.MDTOUT = RowInt(q, 16);
    r.MDTFau = RowInt(q, 17);
    r.DTLF = RowReal(q, 18);
    r.DTOUT = RowReal(q, 19);
    r.DTFau = RowReal(q, 20);
    r.DTMON = RowReal(q, 21);
    r.DTMRef = RowReal(q, 22);
    insert(r);
    m_pRTDB->commit();
    return CALC_OK;
}

QByteArray CSTCaseDataTransfer::BranchOutputId(const QByteArray& name, const QByteArray& iName,
                                               const QByteArray& jName, int kind)
{
    switch (kind) {
    case 6:
        return FormatText(ID_AC, name.constData());
    case 8:
        return FormatText(ID_SC, name.constData());
    case 10:
        return FormatText(ID_2W, name.constData());
    case 11:
        return FormatText(ID_SF, name.constData());
    case 12: {
        // The output does not say which winding: the load-flow case's transformer table does.
        QSqlQuery q(*m_pDB);
        if (!run(q, FormatText(SQL_WINDING_NTYPE, m_nCaseLF, SqlText(m_pDB, name).constData(),
                               SqlText(m_pDB, iName).constData(),
                               SqlText(m_pDB, jName).constData()))) {
            ShowMessage(MSG_WINDING_QUERY, MSG_ERROR);
            return QByteArray();
        }
        if (!q.next()) {
            return QByteArray();
        }
        switch (RowInt(q, 0)) {
        case 31:
            return FormatText(ID_3W1, name.constData());
        case 32:
            return FormatText(ID_3W2, name.constData());
        case 33:
            return FormatText(ID_3W3, name.constData());
        default:
            return QByteArray();
        }
    }
    default:
        return QByteArray();
    }
}

int CSTCaseDataTransfer::GeneratorBusNo(const QByteArray& generator, int current)
{
    QSqlQuery q(*m_pDB);
    if (!run(q, FormatText(SQL_GEN_NODE, m_nCaseLF, SqlText(m_pDB, generator).constData()))) {
        ShowMessage(MSG_GEN_NODE_QUERY, MSG_ERROR);
        return current;
    }
    return q.next() ? nodeBusNo(text(q, 0).constData()) : 0;
}

int CSTCaseDataTransfer::ImportVAR_INFDataToRTDB()
{
    removeAllRecords<stvar_inf>();
    m_pRTDB->commit();

    const int off = switchedOff(m_pDB, SQL_VARIABLE, ST_OUT, m_nCaseNo, 1, MSG_FLAG_QUERY);
    if (off >= 0) {
        return off;
    }
    QSqlQuery q(*m_pDB);
    // One record for all rows, as the designed cursor has it: a generator's bus number
    // that cannot be looked up stays as the row before left it.
    stvar_inf r;
    for (int type : {1, 2, 3, 4, 5, 6, 7, 12}) {
        if (!run(q, FormatText(SQL_VAR_INF_SELECT, ST_VAR_INF, m_nCaseNo, type))) {
            ShowMessage(MSG_VAR_INF_QUERY, MSG_ERROR);
            return CALC_FAIL;
        }
        while (q.next()) {
            const QByteArray coordName = text(q, 1, kNameBytes);
            const QByteArray name = text(q, 4, kNameBytes);
            const QByteArray iName = text(q, 5, kNameBytes);
            const QByteArray jName = text(q, 6, kNameBytes);
            const QByteArray varName = text(q, 9, kNameBytes);
            const int idNo = RowInt(q, 7);
            // A branch output (type 7) names its record by the branch kind in ID_No.
            const QByteArray id = type == 7 ? BranchOutputId(name, iName, jName, idNo) : name;
            r.Coord_ID = RowInt(q, 0);
            r.Coord_Name = coordName.constData();
            r.Coord_Mont = RowInt(q, 2);
            r.Var_ID = RowInt(q, 3);
            r.ID_name = id.constData();
            r.I_Name = iName.constData();
            r.J_Name = jName.constData();
            if (type == 1) { // generator angles: the names are generators
                r.I_No = GeneratorBusNo(iName, r.I_No);
                r.J_No = GeneratorBusNo(jName, r.J_No);
            } else {
                r.I_No = nodeBusNo(r.I_Name);
                r.J_No = nodeBusNo(r.J_Name);
            }
            r.ID_No = idNo;
            r.Type = type;
            r.Sub_Type = RowInt(q, 8);
            r.Var_Name = varName.constData();
            insert(r);
            m_pRTDB->commit();
        }
    }
    return CALC_OK;
}

int CSTCaseDataTransfer::ImportSTANA_GIDataToRTDB()
{
    removeAllRecords<stana_gi>();
    m_pRTDB->commit();

    const int off = switchedOff(m_pDB, SQL_ANAFUNC, ST_OUT, m_nCaseNo, 2, MSG_FLAG_QUERY);
    if (off >= 0) {
        return off; // only 2 turns the analysis on
    }
    QSqlQuery q(*m_pDB);
    if (!run(q, FormatText(SQL_ANACAL_SELECT, ST_ANACAL, m_nCaseNo))) {
        ShowMessage(MSG_ANA_QUERY, MSG_ERROR);
        return CALC_FAIL;
    }
    while (q.next()) {
        const QByteArray name = text(q, 2, kNameBytes);
        stana_gi r;
        r.Valid = RowInt(q, 0);
        r.Grp_NO = RowInt(q, 1);
        r.Grp_Name = name.constData();
        r.NumBus = 1; // NumBus is selected and not read
        insert(r);
        m_pRTDB->commit();
    }
    return CALC_OK;
}

int CSTCaseDataTransfer::ImportSTANA_GrpDataToRTDB()
{
    removeAllRecords<stana_grp>();
    m_pRTDB->commit();

    const int off = switchedOff(m_pDB, SQL_ANAFUNC, ST_OUT, m_nCaseNo, 2, MSG_FLAG_QUERY);
    if (off >= 0) {
        return off;
    }
    QSqlQuery q(*m_pDB);
    if (!run(q, FormatText(SQL_ANA_GRP_SELECT, ST_ANA_GRP, ST_ANACAL, m_nCaseNo))) {
        ShowMessage(MSG_ANA_QUERY, MSG_ERROR);
        return CALC_FAIL;
    }
    while (q.next()) {
        const int group = RowInt(q, 0);
        const QByteArray level = text(q, 1);
        // The position of the level among the levels selected by its own name: always 0,
        // so every group takes the buses of the first level, as designed.
        dbCursor<kv> levels(dbCursorViewOnly);
        dbQuery byId;
        byId = "id=", level.constData(), " order by id asc";
        int position = 0;
        if (levels.select(byId) > 0) {
            do {
                if (std::strcmp(levels->id, level.constData()) == 0) {
                    break;
                }
                ++position;
            } while (levels.next());
        }
        dbCursor<bs> buses(dbCursorViewOnly);
        dbQuery byLevel;
        byLevel = "ikv=", &position;
        if (buses.select(byLevel) > 0) {
            do {
                stana_grp r;
                r.Grp_NO = group;
                r.Bus_Name = buses->name;
                r.Bus_No = nodeBusNo(buses->name);
                insert(r);
            } while (buses.next());
        }
        m_pRTDB->commit(); // once for the group row
    }
    return CALC_OK;
}
