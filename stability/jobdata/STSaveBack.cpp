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
    return m_guard.Run(m_pDB,
                       {runguard::WorkTable("TLoad"), runguard::JobTables("S", m_nJobNumber),
                        runguard::DataGroup(groupName)},
                       newGroup ? groupName : QString(), [&] {
                           return m_saveBack.Save([&] { return RunSaveBack(groupName, newGroup); });
                       });
}

SaveBackPreview CSTCalDataTransfer::PreviewSDataToBaseDB(QString groupName, bool newGroup)
{
    // The preview makes TLoad too, by the design's statement.
    return m_guard.Preview(
        m_pDB, {runguard::WorkTable("TLoad"), runguard::JobTables("S", m_nJobNumber)}, [&] {
            return m_saveBack.Preview(
                groupName, newGroup, [&] { return RunSaveBack(groupName, newGroup); }, Nbus,
                Nacline, Ntrans, Ndcline, Ngenerat, Nload, Nsvc, m_strGroupName, m_bNewGroup,
                m_nReserved);
        });
}

int CSTCalDataTransfer::RunSaveBack(const QString& groupName, bool newGroup)
{
    // In place the group's name is kept and never written, so only a new group is refused.
    if (newGroup && !m_saveBack.GroupNameFits(groupName)) {
        return CALC_FAIL;
    }
    m_strGroupName = groupName;
    m_bNewGroup = newGroup;
    Nbus = Nacline = Ntrans = Ndcline = Ngenerat = Nload = Nsvc = 0;
    m_nReserved = 0;
    const int saved = m_saveBack.RunSteps(
        {
            {[this] { return SaveS2DataToAC(); }, &Nacline, false, MSG_AC_COUNT, CDB_TYPE_ACLINE},
            {[this] { return SaveS2DataToPCR(); }, &Nacline, true, MSG_PCR_COUNT, CDB_TYPE_PCAPREA},
            {[this] { return SaveS2DataToSCR(); }, &Nacline, true, MSG_SCR_COUNT, CDB_TYPE_SCAPREA},
            {[this] { return SaveS3DataToT2W(); }, &Ntrans, false, MSG_T2W_COUNT,
             CDB_TYPE_TRANS_2W},
            {[this] { return SaveS3DataToShift(); }, &Ntrans, true, MSG_SHIFT_COUNT,
             CDB_TYPE_SHIFT},
            {[this] { return SaveS3DataToT3W(); }, &Ntrans, true, MSG_T3W_COUNT, CDB_TYPE_TRANS_3W},
            {[this] { return SaveS4DataToBaseDB(); }, &Ndcline, false, MSG_DC_COUNT,
             CDB_TYPE_DCLINE},
            {[this] { return SaveS5DataToBaseDB(); }, &Ngenerat, false, MSG_GEN_COUNT,
             CDB_TYPE_GENERAT},
            {[this] { return SaveS6DataToBaseDB(); }, &Nload, false, MSG_LOAD_COUNT, CDB_TYPE_LOAD},
            {[this] { return SaveS7DataToBaseDB(); }, &Nsvc, false, MSG_SVC_COUNT, CDB_TYPE_SVC},
        },
        m_pBaseDB);
    if (saved != CALC_OK) {
        return CALC_FAIL; // the families before stay saved and flagged (all-or-nothing undoes them)
    }
    const int total = Nacline + Ntrans + Ndcline + Ngenerat + Nload + Nsvc;
    m_saveBack.Show(MSG_PROGRESS, MSG_TOTAL, total);
    // The group's row goes in after the element rows that name it.
    if (m_bNewGroup && total >= 1) {
        const QByteArray group = m_strGroupName.toLocal8Bit();
        QSqlQuery q(*m_pDB);
        if (!m_saveBack.SendWrite(q, FormatText(SQL_ADD_GROUP, "CDB_DATAGROUP", WORKING_COPY,
                                                SqlText(m_pDB, group).constData()))) {
            m_saveBack.Show(MSG_GROUP_FAIL, MSG_ADD_GROUP, group.constData());
            return CALC_FAIL;
        }
        m_saveBack.Flag(m_pBaseDB, CDB_TYPE_DATAGROUP);
    }
    return CALC_OK;
}

// Each family is one run of the shared pattern without an orphan stage: the changes
// (the first statement makes T), then the copy into the group and its update, or the
// update in place, then T dropped. The last three are formatted alike in every family
// but the three-winding one: on the base table, and the group.
int CSTCalDataTransfer::RunSaveFamily(const char* base, std::vector<QByteArray> changes,
                                      const char* copy, const char* inGroup, const char* inPlace,
                                      const char* drop, int& counter)
{
    const QByteArray group = SqlText(m_pDB, m_strGroupName.toLocal8Bit());
    SaveBackFamily f;
    f.changes = std::move(changes);
    f.intoGroup = {FormatText(copy, base, WORKING_COPY, group.constData(), base, WORKING_COPY),
                   FormatText(inGroup, base, WORKING_COPY, group.constData())};
    f.inPlace = {FormatText(inPlace, base, WORKING_COPY)};
    f.drop = drop;
    return m_saveBack.Run(f, m_bNewGroup, counter, nullptr);
}

// The two comparisons of R0 and X0: per-unit rows directly, named rows after conversion by
// the load-flow case's node table.
std::vector<QByteArray> CSTCalDataTransfer::ZeroSequenceChanges(const char* jobTable,
                                                                const char* base, const char* unit1,
                                                                const char* unit0) const
{
    const QByteArray job = FormatText(jobTable, m_nJobNumber);
    const double sb = m_dBaseMva, tol = TOLERANCE;
    return {FormatText(unit1, job.constData(), base, WORKING_COPY, tol, tol),
            FormatText(unit0, sb, sb, job.constData(), base, WORKING_COPY, m_nLFCase, sb, tol, sb,
                       tol)};
}

// AC lines compare B0_Half too.
int CSTCalDataTransfer::SaveS2DataToAC()
{
    const QByteArray job = FormatText("S2_%d", m_nJobNumber);
    const char* B = "CDB_ACLINE";
    const double sb = m_dBaseMva, tol = TOLERANCE;
    return RunSaveFamily(
        B,
        {FormatText(SQL_AC_CHANGED_UNIT1, job.constData(), B, WORKING_COPY, tol, tol, tol),
         FormatText(SQL_AC_CHANGED_UNIT0, sb, sb, sb, job.constData(), B, WORKING_COPY, m_nLFCase,
                    sb, tol, sb, tol, sb, tol)},
        m_saveBack.Text(SQL_AC_COPY, SQL_AC_COPY_MENDED), SQL_AC_IN_GROUP, SQL_AC_IN_PLACE,
        SQL_AC_DROP, Nacline);
}

int CSTCalDataTransfer::SaveS2DataToPCR()
{
    const char* B = "CDB_PCAPREA";
    return RunSaveFamily(
        B, ZeroSequenceChanges("S2_%d", B, SQL_PCR_CHANGED_UNIT1, SQL_PCR_CHANGED_UNIT0),
        m_saveBack.Text(SQL_PCR_COPY, SQL_PCR_COPY_MENDED), SQL_PCR_IN_GROUP, SQL_PCR_IN_PLACE,
        SQL_PCR_DROP, Nacline);
}

int CSTCalDataTransfer::SaveS2DataToSCR()
{
    const char* B = "CDB_SCAPREA";
    return RunSaveFamily(
        B, ZeroSequenceChanges("S2_%d", B, SQL_SCR_CHANGED_UNIT1, SQL_SCR_CHANGED_UNIT0),
        m_saveBack.Text(SQL_SCR_COPY, SQL_SCR_COPY_MENDED), SQL_SCR_IN_GROUP, SQL_SCR_IN_PLACE,
        SQL_SCR_DROP, Nacline);
}

int CSTCalDataTransfer::SaveS3DataToT2W()
{
    const char* B = "CDB_TRANS_2W";
    return RunSaveFamily(
        B, ZeroSequenceChanges("S3_%d", B, SQL_T2W_CHANGED_UNIT1, SQL_T2W_CHANGED_UNIT0),
        m_saveBack.Text(SQL_T2W_COPY, SQL_T2W_COPY_MENDED), SQL_T2W_IN_GROUP, SQL_T2W_IN_PLACE,
        SQL_T2W_DROP, Ntrans);
}

int CSTCalDataTransfer::SaveS3DataToShift()
{
    const char* B = "CDB_SHIFT";
    return RunSaveFamily(
        B, ZeroSequenceChanges("S3_%d", B, SQL_SHIFT_CHANGED_UNIT1, SQL_SHIFT_CHANGED_UNIT0),
        SQL_SHIFT_COPY, SQL_SHIFT_IN_GROUP, SQL_SHIFT_IN_PLACE, SQL_SHIFT_DROP, Ntrans);
}

// Each changed winding counts; the copy takes one row per transformer, and the updates
// bring each winding's end name, parallel number and impedances.
int CSTCalDataTransfer::SaveS3DataToT3W()
{
    const QByteArray job = FormatText("S3_%d", m_nJobNumber);
    const QByteArray group = SqlText(m_pDB, m_strGroupName.toLocal8Bit());
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
    const char* B = "CDB_DCLINE";
    const double t = TOLERANCE;
    return RunSaveFamily(B,
                         {FormatText(SQL_DC_CHANGED, job.constData(), B, WORKING_COPY, t, t, t, t,
                                     t, t, t, t, t, t)},
                         m_saveBack.Text(SQL_DC_COPY, SQL_DC_COPY_MENDED), SQL_DC_IN_GROUP,
                         SQL_DC_IN_PLACE, SQL_DC_DROP, Ndcline);
}

int CSTCalDataTransfer::SaveS5DataToBaseDB()
{
    const QByteArray job = FormatText("S5_%d", m_nJobNumber);
    const char* B = "CDB_GENERAT";
    const double t = TOLERANCE;
    return RunSaveFamily(
        B, {FormatText(SQL_GEN_CHANGED, job.constData(), B, WORKING_COPY, t, t, t, t, t, t)},
        SQL_GEN_COPY, SQL_GEN_IN_GROUP, SQL_GEN_IN_PLACE, SQL_GEN_DROP, Ngenerat);
}

int CSTCalDataTransfer::SaveS6DataToBaseDB()
{
    const QByteArray job = FormatText("S6_%d", m_nJobNumber);
    const char* B = "CDB_LOAD";
    return RunSaveFamily(B, {FormatText(SQL_LOAD_CHANGED, job.constData(), B, WORKING_COPY)},
                         SQL_LOAD_COPY, SQL_LOAD_IN_GROUP, SQL_LOAD_IN_PLACE, SQL_LOAD_DROP, Nload);
}

// SVC values never go back: Nsvc stays 0, so its message and flag are never reached.
int CSTCalDataTransfer::SaveS7DataToBaseDB()
{
    return CALC_OK;
}
