// Stability save-back: zero-sequence values, DC control data and dynamic model references
// that changed in the job tables go back into the working copies, in place or as copies
// in a new data group. Rows without a base row are left out silently; SVCs never go back.

#include "common/Feedback.h"
#include "common/TableTypes.h"
#include "platform/CDatabase.h"
#include "stability/jobdata/STCalDataTransfer.h"
#include "stability/jobdata/STExtractStatements.h"
#include "stability/jobdata/STSaveStatements.h"

#include <QSqlDatabase>
#include <QSqlQuery>

using namespace sts;
using stx::WORKING_COPY;

namespace {

// The template with '#' replaced by the winding's number.
QByteArray winding(const char* text, char digit)
{
    QByteArray t(text);
    t.replace('#', QByteArray(1, digit));
    return t;
}

} // namespace

int CSTCalDataTransfer::SaveSDataToBaseDB(QString groupName, bool newGroup)
{
    m_strGroupName = groupName;
    m_bNewGroup = newGroup;
    Nbus = Nacline = Ntrans = Ndcline = Ngenerat = Nload = Nsvc = 0;
    m_nReserved = 0;
    struct Step
    {
        int (CSTCalDataTransfer::*family)();
        int* counter;
        bool increase; // the message counts the counter's increase, not its value
        const char* message;
        int flag;
    } steps[] = {
        {&CSTCalDataTransfer::SaveS2DataToAC, &Nacline, false, MSG_AC_COUNT, CDB_TYPE_ACLINE},
        {&CSTCalDataTransfer::SaveS2DataToPCR, &Nacline, true, MSG_PCR_COUNT, CDB_TYPE_PCAPREA},
        {&CSTCalDataTransfer::SaveS2DataToSCR, &Nacline, true, MSG_SCR_COUNT, CDB_TYPE_SCAPREA},
        {&CSTCalDataTransfer::SaveS3DataToT2W, &Ntrans, false, MSG_T2W_COUNT, CDB_TYPE_TRANS_2W},
        {&CSTCalDataTransfer::SaveS3DataToShift, &Ntrans, true, MSG_SHIFT_COUNT, CDB_TYPE_SHIFT},
        {&CSTCalDataTransfer::SaveS3DataToT3W, &Ntrans, true, MSG_T3W_COUNT, CDB_TYPE_TRANS_3W},
        {&CSTCalDataTransfer::SaveS4DataToBaseDB, &Ndcline, false, MSG_DC_COUNT, CDB_TYPE_DCLINE},
        {&CSTCalDataTransfer::SaveS5DataToBaseDB, &Ngenerat, false, MSG_GEN_COUNT,
         CDB_TYPE_GENERAT},
        {&CSTCalDataTransfer::SaveS6DataToBaseDB, &Nload, false, MSG_LOAD_COUNT, CDB_TYPE_LOAD},
        {&CSTCalDataTransfer::SaveS7DataToBaseDB, &Nsvc, false, MSG_SVC_COUNT, CDB_TYPE_SVC},
    };
    for (const Step& s : steps) {
        const int before = *s.counter;
        if ((this->*s.family)() != 0) {
            return CALC_FAIL; // the families before stay saved and flagged
        }
        const int count = s.increase ? *s.counter - before : *s.counter;
        if (count > 0) {
            ShowMessagef(MSG_PROGRESS, s.message, count);
            if (m_pBaseDB) {
                m_pBaseDB->SetBakTabModifyFlag(s.flag);
            }
        }
    }
    const int total = Nacline + Ntrans + Ndcline + Ngenerat + Nload + Nsvc;
    ShowMessagef(MSG_PROGRESS, MSG_TOTAL, total);
    // The group's row goes in after the element rows that name it.
    if (m_bNewGroup && total >= 1) {
        const QByteArray group = m_strGroupName.toLocal8Bit();
        QSqlQuery q(*m_pDB);
        if (!m_saveBack.Send(
                q, FormatText(SQL_ADD_GROUP, "CDB_DATAGROUP", WORKING_COPY, group.constData()))) {
            ShowMessagef(MSG_GROUP_FAIL, MSG_ADD_GROUP, group.constData());
            return CALC_FAIL;
        }
        if (m_pBaseDB) {
            m_pBaseDB->SetBakTabModifyFlag(CDB_TYPE_DATAGROUP);
        }
    }
    return CALC_OK;
}

// Each family is one run of the shared pattern without an orphan stage: the changes
// (the first statement makes T), then the copy into the group and its update, or the
// update in place, then T dropped.

int CSTCalDataTransfer::SaveS2DataToAC()
{
    const QByteArray job = FormatText("S2_%d", m_nJobNumber);
    const QByteArray group = m_strGroupName.toLocal8Bit();
    const char* B = "CDB_ACLINE";
    const double sb = m_dBaseMva, tol = TOLERANCE;
    SaveBackFamily f;
    f.changes = {FormatText(SQL_AC_CHANGED_UNIT1, job.constData(), B, WORKING_COPY, tol, tol, tol),
                 FormatText(SQL_AC_CHANGED_UNIT0, sb, sb, sb, job.constData(), B, WORKING_COPY,
                            m_nLFCase, sb, tol, sb, tol, sb, tol)};
    f.intoGroup = {FormatText(m_saveBack.Text(SQL_AC_COPY, SQL_AC_COPY_MENDED), B, WORKING_COPY,
                              group.constData(), B, WORKING_COPY),
                   FormatText(SQL_AC_IN_GROUP, B, WORKING_COPY, group.constData())};
    f.inPlace = {FormatText(SQL_AC_IN_PLACE, B, WORKING_COPY)};
    f.drop = SQL_AC_DROP;
    return m_saveBack.Run(f, m_bNewGroup, Nacline, nullptr);
}

int CSTCalDataTransfer::SaveS2DataToPCR()
{
    const QByteArray job = FormatText("S2_%d", m_nJobNumber);
    const QByteArray group = m_strGroupName.toLocal8Bit();
    const char* B = "CDB_PCAPREA";
    const double sb = m_dBaseMva, tol = TOLERANCE;
    SaveBackFamily f;
    f.changes = {FormatText(SQL_PCR_CHANGED_UNIT1, job.constData(), B, WORKING_COPY, tol, tol),
                 FormatText(SQL_PCR_CHANGED_UNIT0, sb, sb, job.constData(), B, WORKING_COPY,
                            m_nLFCase, sb, tol, sb, tol)};
    f.intoGroup = {FormatText(m_saveBack.Text(SQL_PCR_COPY, SQL_PCR_COPY_MENDED), B, WORKING_COPY,
                              group.constData(), B, WORKING_COPY),
                   FormatText(SQL_PCR_IN_GROUP, B, WORKING_COPY, group.constData())};
    f.inPlace = {FormatText(SQL_PCR_IN_PLACE, B, WORKING_COPY)};
    f.drop = SQL_PCR_DROP;
    return m_saveBack.Run(f, m_bNewGroup, Nacline, nullptr);
}

int CSTCalDataTransfer::SaveS2DataToSCR()
{
    const QByteArray job = FormatText("S2_%d", m_nJobNumber);
    const QByteArray group = m_strGroupName.toLocal8Bit();
    const char* B = "CDB_SCAPREA";
    const double sb = m_dBaseMva, tol = TOLERANCE;
    SaveBackFamily f;
    f.changes = {FormatText(SQL_SCR_CHANGED_UNIT1, job.constData(), B, WORKING_COPY, tol, tol),
                 FormatText(SQL_SCR_CHANGED_UNIT0, sb, sb, job.constData(), B, WORKING_COPY,
                            m_nLFCase, sb, tol, sb, tol)};
    f.intoGroup = {FormatText(m_saveBack.Text(SQL_SCR_COPY, SQL_SCR_COPY_MENDED), B, WORKING_COPY,
                              group.constData(), B, WORKING_COPY),
                   FormatText(SQL_SCR_IN_GROUP, B, WORKING_COPY, group.constData())};
    f.inPlace = {FormatText(SQL_SCR_IN_PLACE, B, WORKING_COPY)};
    f.drop = SQL_SCR_DROP;
    return m_saveBack.Run(f, m_bNewGroup, Nacline, nullptr);
}

int CSTCalDataTransfer::SaveS3DataToT2W()
{
    const QByteArray job = FormatText("S3_%d", m_nJobNumber);
    const QByteArray group = m_strGroupName.toLocal8Bit();
    const char* B = "CDB_TRANS_2W";
    const double sb = m_dBaseMva, tol = TOLERANCE;
    SaveBackFamily f;
    f.changes = {FormatText(SQL_T2W_CHANGED_UNIT1, job.constData(), B, WORKING_COPY, tol, tol),
                 FormatText(SQL_T2W_CHANGED_UNIT0, sb, sb, job.constData(), B, WORKING_COPY,
                            m_nLFCase, sb, tol, sb, tol)};
    f.intoGroup = {FormatText(m_saveBack.Text(SQL_T2W_COPY, SQL_T2W_COPY_MENDED), B, WORKING_COPY,
                              group.constData(), B, WORKING_COPY),
                   FormatText(SQL_T2W_IN_GROUP, B, WORKING_COPY, group.constData())};
    f.inPlace = {FormatText(SQL_T2W_IN_PLACE, B, WORKING_COPY)};
    f.drop = SQL_T2W_DROP;
    return m_saveBack.Run(f, m_bNewGroup, Ntrans, nullptr);
}

int CSTCalDataTransfer::SaveS3DataToShift()
{
    const QByteArray job = FormatText("S3_%d", m_nJobNumber);
    const QByteArray group = m_strGroupName.toLocal8Bit();
    const char* B = "CDB_SHIFT";
    const double sb = m_dBaseMva, tol = TOLERANCE;
    SaveBackFamily f;
    f.changes = {FormatText(SQL_SHIFT_CHANGED_UNIT1, job.constData(), B, WORKING_COPY, tol, tol),
                 FormatText(SQL_SHIFT_CHANGED_UNIT0, sb, sb, job.constData(), B, WORKING_COPY,
                            m_nLFCase, sb, tol, sb, tol)};
    f.intoGroup = {FormatText(SQL_SHIFT_COPY, B, WORKING_COPY, group.constData(), B, WORKING_COPY),
                   FormatText(SQL_SHIFT_IN_GROUP, B, WORKING_COPY, group.constData())};
    f.inPlace = {FormatText(SQL_SHIFT_IN_PLACE, B, WORKING_COPY)};
    f.drop = SQL_SHIFT_DROP;
    return m_saveBack.Run(f, m_bNewGroup, Ntrans, nullptr);
}

// Each changed winding counts; the copy takes one row per transformer, and the updates
// bring each winding's end name, parallel number and impedances.
int CSTCalDataTransfer::SaveS3DataToT3W()
{
    const QByteArray job = FormatText("S3_%d", m_nJobNumber);
    const QByteArray group = m_strGroupName.toLocal8Bit();
    const char* B = "CDB_TRANS_3W";
    const double sb = m_dBaseMva, tol = TOLERANCE;
    SaveBackFamily f;
    for (const char w : {'1', '2', '3'}) {
        f.changes.push_back(w == '1' ? FormatText(SQL_T3W_CHANGED_W1_UNIT1, job.constData(), B,
                                                  WORKING_COPY, tol, tol)
                                     : FormatText(winding(SQL_T3W_CHANGED_WK_UNIT1, w).constData(),
                                                  job.constData(), B, WORKING_COPY, tol, tol));
        f.changes.push_back(FormatText(winding(SQL_T3W_CHANGED_UNIT0, w).constData(), sb, sb,
                                       job.constData(), B, WORKING_COPY, m_nLFCase, sb, tol, sb,
                                       tol));
    }
    f.afterChanges = SQL_T3W_INDEX;
    f.intoGroup = {FormatText(SQL_T3W_COPY, B, WORKING_COPY, group.constData(), B, WORKING_COPY)};
    for (const char w : {'1', '2', '3'}) {
        f.intoGroup.push_back(FormatText(winding(SQL_T3W_IN_GROUP, w).constData(), B, WORKING_COPY,
                                         group.constData()));
        f.inPlace.push_back(FormatText(winding(SQL_T3W_IN_PLACE, w).constData(), B, WORKING_COPY));
    }
    f.drop = SQL_T3W_DROP;
    return m_saveBack.Run(f, m_bNewGroup, Ntrans, nullptr);
}

int CSTCalDataTransfer::SaveS4DataToBaseDB()
{
    const QByteArray job = FormatText("S4_%d", m_nJobNumber);
    const QByteArray group = m_strGroupName.toLocal8Bit();
    const char* B = "CDB_DCLINE";
    const double t = TOLERANCE;
    SaveBackFamily f;
    f.changes = {
        FormatText(SQL_DC_CHANGED, job.constData(), B, WORKING_COPY, t, t, t, t, t, t, t, t, t, t)};
    f.intoGroup = {FormatText(m_saveBack.Text(SQL_DC_COPY, SQL_DC_COPY_MENDED), B, WORKING_COPY,
                              group.constData(), B, WORKING_COPY),
                   FormatText(SQL_DC_IN_GROUP, B, WORKING_COPY, group.constData())};
    f.inPlace = {FormatText(SQL_DC_IN_PLACE, B, WORKING_COPY)};
    f.drop = SQL_DC_DROP;
    return m_saveBack.Run(f, m_bNewGroup, Ndcline, nullptr);
}

int CSTCalDataTransfer::SaveS5DataToBaseDB()
{
    const QByteArray job = FormatText("S5_%d", m_nJobNumber);
    const QByteArray group = m_strGroupName.toLocal8Bit();
    const char* B = "CDB_GENERAT";
    const double t = TOLERANCE;
    SaveBackFamily f;
    f.changes = {FormatText(SQL_GEN_CHANGED, job.constData(), B, WORKING_COPY, t, t, t, t, t, t)};
    f.intoGroup = {FormatText(SQL_GEN_COPY, B, WORKING_COPY, group.constData(), B, WORKING_COPY),
                   FormatText(SQL_GEN_IN_GROUP, B, WORKING_COPY, group.constData())};
    f.inPlace = {FormatText(SQL_GEN_IN_PLACE, B, WORKING_COPY)};
    f.drop = SQL_GEN_DROP;
    return m_saveBack.Run(f, m_bNewGroup, Ngenerat, nullptr);
}

int CSTCalDataTransfer::SaveS6DataToBaseDB()
{
    const QByteArray job = FormatText("S6_%d", m_nJobNumber);
    const QByteArray group = m_strGroupName.toLocal8Bit();
    const char* B = "CDB_LOAD";
    SaveBackFamily f;
    f.changes = {FormatText(SQL_LOAD_CHANGED, job.constData(), B, WORKING_COPY)};
    f.intoGroup = {FormatText(SQL_LOAD_COPY, B, WORKING_COPY, group.constData(), B, WORKING_COPY),
                   FormatText(SQL_LOAD_IN_GROUP, B, WORKING_COPY, group.constData())};
    f.inPlace = {FormatText(SQL_LOAD_IN_PLACE, B, WORKING_COPY)};
    f.drop = SQL_LOAD_DROP;
    return m_saveBack.Run(f, m_bNewGroup, Nload, nullptr);
}

// SVC values never go back: Nsvc stays 0, so its message and flag are never reached.
int CSTCalDataTransfer::SaveS7DataToBaseDB()
{
    return CALC_OK;
}
