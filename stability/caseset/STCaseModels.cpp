// User-defined models (ST_UDCAL) and user programs (ST_UPCAL) of a stability case.

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

namespace {

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

} // namespace

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
