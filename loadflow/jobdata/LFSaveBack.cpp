// Save-back: what a calculation changed in the job tables goes back into the working
// copies of the base database, in place or into a data group; rows without a base row
// (orphans) are saved into the group with the nodes they need.

#include "common/Feedback.h"
#include "common/RunTimeLog.h"
#include "common/SQLMultiInsert.h"
#include "common/TableTypes.h"
#include "loadflow/jobdata/LFCalDataTransfer.h"
#include "loadflow/jobdata/LFExtractStatements.h"
#include "loadflow/jobdata/LFSaveStatements.h"
#include "platform/CDatabase.h"

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QStringList>
#include <QVariant>

using namespace lfs;
using lfx::WORKING_COPY;

namespace {

QByteArray withTable(const char* text, const char* table)
{
    QByteArray t(text);
    t.replace('#', table);
    return t;
}

// "a.X, a.Y" of "X, Y".
QByteArray prefixed(const char* columns)
{
    QStringList out;
    for (const QString& c : QString::fromLatin1(columns).split(", ")) {
        out << "a." + c.trimmed();
    }
    return out.join(", ").toLatin1();
}

// The copy of whole base rows into the group: every column of the working copy.
QByteArray copyInto(const char* base, const char* columns, const char* temp,
                    const QByteArray& group, const char* tail = "")
{
    return FormatText(SQL_COPY_INTO_GROUP, base, WORKING_COPY, columns, group.constData(),
                      prefixed(columns).constData(), base, WORKING_COPY, temp, temp, tail);
}

} // namespace

int CLFCalDataTransfer::RunSaveFamily(const SaveBackFamily& family, int& counter)
{
    SaveBackOrphans orphans;
    orphans.groupName = m_strGroupName.toLocal8Bit();
    orphans.newElements = &m_nNewElements;
    orphans.addNode = [this](const QString& name) { AddNewNode(name); };
    return m_saveBack.Run(family, m_bNewGroup, counter, &orphans);
}

int CLFCalDataTransfer::SaveLDataToBaseDB(QString groupName, bool newGroup)
{
    CRunTimeLog frame("SaveLDataToBaseDB");
    return m_guard.Run(
        m_pDB, {runguard::JobTables("L", m_nJobNumber), runguard::DataGroup(groupName)},
        newGroup ? groupName : QString(),
        [&] { return m_saveBack.Save([&] { return RunSaveBack(groupName, newGroup); }); });
}

SaveBackPreview CLFCalDataTransfer::PreviewLDataToBaseDB(QString groupName, bool newGroup)
{
    CRunTimeLog frame("PreviewLDataToBaseDB");
    return m_guard.Preview(m_pDB, {runguard::JobTables("L", m_nJobNumber)}, [&] {
        return m_saveBack.Preview(
            groupName, newGroup, [&] { return RunSaveBack(groupName, newGroup); }, Nbus, Ngenerat,
            Nload, Nacline, Ndcline, Ntrans, Nswitch, m_strGroupName, m_bNewGroup, m_nNewElements,
            m_NewNodes);
    });
}

int CLFCalDataTransfer::RunSaveBack(const QString& groupName, bool newGroup)
{
    // Orphans go into the group with either flag, so the name must fit in both cases.
    if (!m_saveBack.GroupNameFits(groupName)) {
        return CALC_FAIL;
    }
    m_strGroupName = groupName;
    m_bNewGroup = newGroup;
    Nbus = Ngenerat = Nload = Nacline = Ndcline = Ntrans = Nswitch = 0;
    m_nNewElements = 0;
    const int saved = m_saveBack.RunSteps(
        {
            {[this] { return SaveL2DataToAC(); }, &Nacline, false, MSG_AC_COUNT, CDB_TYPE_ACLINE},
            {[this] { return SaveL2DataToPCR(); }, &Nacline, true, MSG_PCR_COUNT, CDB_TYPE_PCAPREA},
            {[this] { return SaveL2DataToSCR(); }, &Nacline, true, MSG_SCR_COUNT, CDB_TYPE_SCAPREA},
            {[this] { return SaveL3DataToT2W(); }, &Ntrans, false, MSG_T2W_COUNT,
             CDB_TYPE_TRANS_2W},
            {[this] { return SaveL3DataToShift(); }, &Ntrans, true, MSG_SHIFT_COUNT,
             CDB_TYPE_SHIFT},
            {[this] { return SaveL3DataToT3W(); }, &Ntrans, true, MSG_T3W_COUNT, CDB_TYPE_TRANS_3W},
            {[this] { return SaveL4DataToBaseDB(); }, &Ndcline, false, MSG_DC_COUNT,
             CDB_TYPE_DCLINE},
            {[this] { return SaveL5DataToBaseDB(); }, &Ngenerat, false, MSG_GEN_COUNT,
             CDB_TYPE_GENERAT},
            {[this] { return SaveL6DataToBaseDB(); }, &Nload, false, MSG_LOAD_COUNT, CDB_TYPE_LOAD},
            {[this] { return SaveLKDataToBreaker(); }, &Nswitch, false, MSG_BRK_COUNT,
             CDB_TYPE_BREAKER},
            {[this] { return SaveLKDataToSwitch(); }, &Nswitch, true, MSG_SW_COUNT,
             CDB_TYPE_ISOSWITCH},
        },
        m_pBaseDB);
    if (saved != CALC_OK) {
        return CALC_FAIL; // the families before stay saved and flagged (all-or-nothing undoes them)
    }
    const int total = Nacline + Ntrans + Ndcline + Ngenerat + Nload + Nswitch;
    m_saveBack.Show(MSG_PROGRESS, MSG_TOTAL, total);
    m_saveBack.Show(MSG_PROGRESS, MSG_NEW_TOTAL, m_nNewElements);
    if (m_nNewElements > 0 || (m_bNewGroup && total > 0)) {
        const QByteArray group = m_strGroupName.toLocal8Bit();
        QSqlQuery q(*m_pDB);
        if (!m_saveBack.SendWrite(q, FormatText(SQL_ADD_GROUP, "CDB_DATAGROUP", WORKING_COPY,
                                                SqlText(m_pDB, group).constData()))) {
            m_saveBack.Show(MSG_GROUP_FAIL, MSG_ADD_GROUP, group.constData());
            return CALC_FAIL;
        }
        m_saveBack.Flag(m_pBaseDB, CDB_TYPE_DATAGROUP);
    }
    SaveL1DataToBaseDB();
    if (m_nNewElements > 0) {
        for (int flag : {CDB_TYPE_NODE, CDB_TYPE_BUS, CDB_TYPE_PSTATION, CDB_TYPE_ZONE}) {
            m_saveBack.Flag(m_pBaseDB, flag);
        }
    }
    return CALC_OK;
}

int CLFCalDataTransfer::SaveL1DataToBaseDB()
{
    CRunTimeLog frame("SaveL1DataToBaseDB");
    if (m_nNewElements == 0) {
        return CALC_OK;
    }
    QSqlQuery q(*m_pDB);
    if (!m_saveBack.Exec(q, SQL_CREATE_TNODE)) {
        return CALC_FAIL;
    }
    SQLMultiInsert ins(m_pDB, 200);
    ins.SetTableName("Tnode");
    ins.SetFldNamelst("node_name");
    for (auto it = m_NewNodes.constBegin(); it != m_NewNodes.constEnd(); ++it) {
        ins.AddRecord("'" + SqlText(m_pDB, it.key().toLocal8Bit()) + "'");
    }
    const bool filled = ins.exec();
    // Passed over as designed; all-or-nothing does not save orphans without their nodes.
    m_saveBack.PassedOver(filled && !ins.Failed(), "insert into Tnode(node_name) values ...",
                          QString());
    const struct
    {
        const char* sql;
        const char* table;
    } adds[] = {{SQL_NEW_NODES, "CDB_NODE"},
                {m_saveBack.Text(SQL_NEW_BUSES, SQL_NEW_BUSES_MENDED), "CDB_BUS"},
                {m_saveBack.Text(SQL_NEW_STATIONS, SQL_NEW_STATIONS_MENDED), "CDB_PSTATION"},
                {m_saveBack.Text(SQL_NEW_ZONES, SQL_NEW_ZONES_MENDED), "CDB_ZONE"}};
    for (const auto& a : adds) {
        if (!m_saveBack.ExecWrite(
                q, FormatText(a.sql, a.table, WORKING_COPY, m_nJobNumber, a.table, WORKING_COPY))) {
            return CALC_FAIL;
        }
    }
    m_saveBack.ExecUnchecked(SQL_DROP_TNODE);
    return CALC_OK;
}

// ---- L2 families ----

int CLFCalDataTransfer::SaveL2DataToAC()
{
    CRunTimeLog frame("SaveL2DataToAC");
    const QByteArray job = FormatText("L2_%d", m_nJobNumber);
    const QByteArray group = SqlText(m_pDB, m_strGroupName.toLocal8Bit());
    const char* B = "CDB_ACLINE";
    const double sb = m_dBaseMva, tol = TOLERANCE;
    SaveBackFamily f;
    f.createOrphans = FormatText(SQL_AC_ORPHANS, job.constData(), B, WORKING_COPY, 1);
    f.orphanWarning = MSG_AC_ORPHANS;
    f.orphanInserts = {
        FormatText(SQL_AC_ORPHAN_INSERT, B, WORKING_COPY, group.constData(), "L1_", m_nJobNumber)};
    f.orphanNodes = SQL_AC_NODES;
    f.clearOrphans = SQL_AC_CLEAR;
    f.changes = {FormatText(SQL_AC_CHANGED_UNIT1, job.constData(), B, WORKING_COPY, tol, tol, tol),
                 FormatText(SQL_AC_CHANGED_UNIT0, sb, sb, sb, job.constData(), B, WORKING_COPY,
                            m_nJobNumber, sb, tol, sb, tol, sb, tol)};
    f.intoGroup = {copyInto(B, COLS_ACLINE, "Tac", group),
                   FormatText(SQL_AC_IN_GROUP, B, WORKING_COPY, group.constData())};
    f.inPlace = {FormatText(SQL_AC_IN_PLACE, B, WORKING_COPY)};
    f.drop = SQL_AC_DROP;
    return RunSaveFamily(f, Nacline);
}

int CLFCalDataTransfer::SaveL2DataToPCR()
{
    CRunTimeLog frame("SaveL2DataToPCR");
    const QByteArray job = FormatText("L2_%d", m_nJobNumber);
    const QByteArray group = SqlText(m_pDB, m_strGroupName.toLocal8Bit());
    const char* B = "CDB_PCAPREA";
    const double sb = m_dBaseMva, tol = TOLERANCE;
    SaveBackFamily f;
    f.createOrphans = FormatText(SQL_PCR_ORPHANS, job.constData(), B, WORKING_COPY, 3);
    f.orphanWarning = MSG_PCR_ORPHANS;
    f.orphanInserts = {FormatText(SQL_PCR_ORPHAN_INSERT, B, WORKING_COPY, group.constData())};
    f.orphanNodes = SQL_PCR_NODES;
    f.clearOrphans = SQL_PCR_CLEAR;
    f.changes = {FormatText(SQL_PCR_CHANGED_UNIT1, job.constData(), B, WORKING_COPY, tol, tol),
                 FormatText(SQL_PCR_CHANGED_UNIT0, sb, sb, job.constData(), B, WORKING_COPY,
                            m_nJobNumber, sb, tol, sb, tol)};
    f.intoGroup = {copyInto(B, COLS_PCAPREA, "TPCR", group),
                   FormatText(SQL_PCR_IN_GROUP, B, WORKING_COPY, group.constData())};
    f.inPlace = {FormatText(SQL_PCR_IN_PLACE, B, WORKING_COPY)};
    f.drop = SQL_PCR_DROP;
    return RunSaveFamily(f, Nacline);
}

int CLFCalDataTransfer::SaveL2DataToSCR()
{
    CRunTimeLog frame("SaveL2DataToSCR");
    const QByteArray job = FormatText("L2_%d", m_nJobNumber);
    const QByteArray group = SqlText(m_pDB, m_strGroupName.toLocal8Bit());
    const char* B = "CDB_SCAPREA";
    const double sb = m_dBaseMva, tol = TOLERANCE;
    SaveBackFamily f;
    f.createOrphans = FormatText(SQL_SCR_ORPHANS, job.constData(), B, WORKING_COPY, 2);
    f.orphanWarning = MSG_SCR_ORPHANS;
    f.orphanInserts = {
        FormatText(SQL_SCR_ORPHAN_INSERT, B, WORKING_COPY, group.constData(), "L1_", m_nJobNumber)};
    f.orphanNodes = SQL_SCR_NODES;
    f.clearOrphans = SQL_SCR_CLEAR;
    f.changes = {FormatText(SQL_SCR_CHANGED_UNIT1, job.constData(), B, WORKING_COPY, tol, tol),
                 FormatText(SQL_SCR_CHANGED_UNIT0, sb, sb, job.constData(), B, WORKING_COPY,
                            m_nJobNumber, sb, tol, sb, tol)};
    f.intoGroup = {copyInto(B, COLS_SCAPREA, "TSCR", group),
                   FormatText(SQL_SCR_IN_GROUP, B, WORKING_COPY, group.constData())};
    f.inPlace = {FormatText(SQL_SCR_IN_PLACE, B, WORKING_COPY)};
    f.drop = SQL_SCR_DROP;
    return RunSaveFamily(f, Nacline);
}

// ---- L3 families ----

int CLFCalDataTransfer::SaveL3DataToT2W()
{
    CRunTimeLog frame("SaveL3DataToT2W");
    return SaveL3Transformer(false);
}

int CLFCalDataTransfer::SaveL3DataToShift()
{
    CRunTimeLog frame("SaveL3DataToShift");
    return SaveL3Transformer(true);
}

int CLFCalDataTransfer::SaveL3Transformer(bool shifter)
{
    const QByteArray job = FormatText("L3_%d", m_nJobNumber);
    const QByteArray group = SqlText(m_pDB, m_strGroupName.toLocal8Bit());
    const char* B = shifter ? "CDB_SHIFT" : "CDB_TRANS_2W";
    const char* T = shifter ? "TShift" : "T2W";
    const int ntype = shifter ? 2 : 1;
    const double sb = m_dBaseMva, tol = TOLERANCE;
    SaveBackFamily f;
    f.createOrphans = FormatText(withTable(SQL_XF_ORPHANS, T).constData(), job.constData(), B,
                                 WORKING_COPY, ntype);
    f.orphanWarning = shifter ? MSG_SHIFT_ORPHANS : MSG_T2W_ORPHANS;
    f.orphanInserts = {FormatText(shifter ? SQL_SHIFT_ORPHAN_INSERT : SQL_T2W_ORPHAN_INSERT, B,
                                  WORKING_COPY, group.constData())};
    f.orphanNodes = withTable(SQL_XF_NODES, T);
    f.clearOrphans = withTable(SQL_XF_CLEAR, T);
    f.changes = {FormatText(withTable(SQL_XF_CHANGED_UNIT1, T).constData(), job.constData(), B,
                            WORKING_COPY, ntype, tol, tol, tol, tol, tol),
                 FormatText(withTable(m_saveBack.Text(SQL_XF_CHANGED_UNIT0,
                                                      SQL_XF_CHANGED_UNIT0_MENDED),
                                      T)
                                .constData(),
                            sb, sb, sb, sb,
                            job.constData(), B, WORKING_COPY, m_nJobNumber, ntype, sb, tol, sb, tol,
                            sb, tol, sb, tol, tol)};
    if (shifter) {
        f.intoGroup = {
            FormatText(SQL_SHIFT_COPY, B, WORKING_COPY, group.constData(), B, WORKING_COPY),
            FormatText(m_saveBack.Text(SQL_SHIFT_IN_GROUP, SQL_SHIFT_IN_GROUP_MENDED), B,
                       WORKING_COPY, group.constData())};
        f.inPlace = {FormatText(m_saveBack.Text(SQL_SHIFT_IN_PLACE, SQL_SHIFT_IN_PLACE_MENDED), B,
                                WORKING_COPY)};
    } else {
        f.intoGroup = {copyInto(B, COLS_TRANS_2W, T, group),
                       FormatText(SQL_T2W_IN_GROUP, B, WORKING_COPY, group.constData())};
        f.inPlace = {FormatText(SQL_T2W_IN_PLACE, B, WORKING_COPY)};
    }
    f.drop = withTable(SQL_XF_DROP, T);
    return RunSaveFamily(f, Ntrans);
}

int CLFCalDataTransfer::SaveL3DataToT3W()
{
    CRunTimeLog frame("SaveL3DataToT3W");
    const QByteArray job = FormatText("L3_%d", m_nJobNumber);
    const QByteArray group = SqlText(m_pDB, m_strGroupName.toLocal8Bit());
    const char* B = "CDB_TRANS_3W";
    const double sb = m_dBaseMva, tol = TOLERANCE;
    SaveBackFamily f;
    f.createOrphans = FormatText(SQL_T3W_ORPHANS, job.constData(), B, WORKING_COPY);
    f.orphanWarning = MSG_T2W_ORPHANS; // the two-winding text, as designed
    f.rowsPerElement = 3;
    f.orphanInserts = {FormatText(SQL_T3W_ORPHAN_W1, B, WORKING_COPY, group.constData()),
                       FormatText(SQL_T3W_ORPHAN_W2, B, WORKING_COPY, group.constData()),
                       FormatText(SQL_T3W_ORPHAN_W3, B, WORKING_COPY, group.constData())};
    f.orphanNodes = SQL_T3W_NODES;
    f.clearOrphans = SQL_T3W_CLEAR;
    f.changes = {FormatText(SQL_T3W_CHANGED_W1_UNIT1, job.constData(), B, WORKING_COPY, tol, tol,
                            tol, tol, tol),
                 FormatText(m_saveBack.Text(SQL_T3W_CHANGED_W1_UNIT0,
                                            SQL_T3W_CHANGED_W1_UNIT0_MENDED),
                            sb, sb, sb, sb, job.constData(), B,
                            WORKING_COPY, m_nJobNumber, sb, tol, sb, tol, sb, tol, sb, tol, tol)};
    for (const char* w : {"2", "3"}) {
        f.changes.push_back(FormatText(withTable(SQL_T3W_CHANGED_WK_UNIT1, w).constData(),
                                       job.constData(), B, WORKING_COPY, tol, tol, tol));
        f.changes.push_back(FormatText(withTable(SQL_T3W_CHANGED_WK_UNIT0, w).constData(), sb, sb,
                                       job.constData(), B, WORKING_COPY, m_nJobNumber, sb, tol, sb,
                                       tol, tol));
    }
    f.afterChanges = SQL_T3W_INDEX;
    f.intoGroup = {copyInto(B, COLS_TRANS_3W, "T3W", group, " group by a.ID_Name"),
                   FormatText(SQL_T3W_IN_GROUP_W1, B, WORKING_COPY, group.constData())};
    f.inPlace = {FormatText(SQL_T3W_IN_PLACE_W1, B, WORKING_COPY)};
    for (const char* w : {"2", "3"}) {
        f.intoGroup.push_back(FormatText(withTable(SQL_T3W_IN_GROUP_WK, w).constData(), B,
                                         WORKING_COPY, group.constData()));
        f.inPlace.push_back(
            FormatText(withTable(SQL_T3W_IN_PLACE_WK, w).constData(), B, WORKING_COPY));
    }
    f.drop = SQL_T3W_DROP;
    return RunSaveFamily(f, Ntrans);
}

// ---- DC lines, generators, loads ----

int CLFCalDataTransfer::SaveL4DataToBaseDB()
{
    CRunTimeLog frame("SaveL4DataToBaseDB");
    const QByteArray job = FormatText("L4_%d", m_nJobNumber);
    const QByteArray group = SqlText(m_pDB, m_strGroupName.toLocal8Bit());
    const char* B = "CDB_DCLINE";
    const double tol = TOLERANCE;
    const QByteArray values = prefixed(COLS_DCLINE_VALUES);
    SaveBackFamily f;
    f.createOrphans =
        FormatText(SQL_DC_ORPHANS, values.constData(), job.constData(), B, WORKING_COPY);
    f.orphanWarning = MSG_DC_ORPHANS;
    f.orphanInserts = {FormatText(SQL_DC_ORPHAN_INSERT, B, WORKING_COPY, COLS_DCLINE_VALUES,
                                  group.constData(), values.constData(), m_nJobNumber)};
    f.orphanNodes = SQL_DC_NODES;
    f.clearOrphans = SQL_DC_CLEAR;
    f.changes = {FormatText(SQL_DC_CHANGED, job.constData(), B, WORKING_COPY, tol, tol, tol, tol,
                            tol, tol, tol, tol, tol, tol, tol, tol, tol, tol, tol)};
    const QByteArray all = QByteArray("ID_Name, Valid, I_Name, J_Name, ID_No, Owner, ") +
                           COLS_DCLINE_VALUES + ", " + COLS_DCLINE_STABILITY;
    f.intoGroup = {copyInto(B, all.constData(), "Tdc", group),
                   FormatText(SQL_DC_IN_GROUP, B, WORKING_COPY, group.constData())};
    f.inPlace = {FormatText(SQL_DC_IN_PLACE, B, WORKING_COPY)};
    f.drop = SQL_DC_DROP;
    return RunSaveFamily(f, Ndcline);
}

int CLFCalDataTransfer::SaveL5DataToBaseDB()
{
    CRunTimeLog frame("SaveL5DataToBaseDB");
    const QByteArray job = FormatText("L5_%d", m_nJobNumber);
    const QByteArray group = SqlText(m_pDB, m_strGroupName.toLocal8Bit());
    const char* B = "CDB_GENERAT";
    const double sb = m_dBaseMva, tol = TOLERANCE;
    SaveBackFamily f;
    f.createOrphans = FormatText(SQL_GEN_ORPHANS, job.constData(), B, WORKING_COPY);
    f.orphanWarning = MSG_GEN_ORPHANS;
    f.orphanInserts = {FormatText(SQL_GEN_ORPHAN_INSERT, B, WORKING_COPY, group.constData())};
    f.orphanNodes = SQL_GEN_NODES;
    f.clearOrphans = SQL_GEN_CLEAR;
    f.changes = {FormatText(SQL_GEN_CHANGED_UNIT1, job.constData(), B, WORKING_COPY, tol, tol, tol,
                            tol, tol, tol, tol, tol),
                 FormatText(SQL_GEN_CHANGED_UNIT0, sb, sb, sb, sb, sb, sb, job.constData(), B,
                            WORKING_COPY, m_nJobNumber, sb, tol, sb, tol, tol, tol, sb, tol, sb,
                            tol, sb, tol, sb, tol)};
    f.intoGroup = {FormatText(SQL_GEN_COPY, B, WORKING_COPY, group.constData(), B, WORKING_COPY),
                   FormatText(SQL_GEN_IN_GROUP, B, WORKING_COPY, group.constData())};
    f.inPlace = {FormatText(SQL_GEN_IN_PLACE, B, WORKING_COPY)};
    f.drop = SQL_GEN_DROP;
    return RunSaveFamily(f, Ngenerat);
}

int CLFCalDataTransfer::SaveL6DataToBaseDB()
{
    CRunTimeLog frame("SaveL6DataToBaseDB");
    const QByteArray job = FormatText("L6_%d", m_nJobNumber);
    const QByteArray group = SqlText(m_pDB, m_strGroupName.toLocal8Bit());
    const char* B = "CDB_LOAD";
    const double sb = m_dBaseMva, tol = TOLERANCE;
    SaveBackFamily f;
    f.createOrphans = FormatText(SQL_LOAD_ORPHANS, job.constData(), B, WORKING_COPY);
    f.orphanWarning = MSG_LOAD_ORPHANS;
    f.orphanInserts = {FormatText(SQL_LOAD_ORPHAN_INSERT, B, WORKING_COPY, group.constData())};
    f.orphanNodes = SQL_LOAD_NODES;
    f.clearOrphans = SQL_LOAD_CLEAR;
    f.changes = {FormatText(SQL_LOAD_CHANGED_UNIT1, job.constData(), B, WORKING_COPY, tol, tol, tol,
                            tol, tol, tol, tol, tol),
                 FormatText(SQL_LOAD_CHANGED_UNIT0, sb, sb, sb, sb, sb, sb, job.constData(), B,
                            WORKING_COPY, m_nJobNumber, sb, tol, sb, tol, tol, tol, sb, tol, sb,
                            tol, sb, tol, sb, tol)};
    f.intoGroup = {FormatText(SQL_LOAD_COPY, B, WORKING_COPY, group.constData(), B, WORKING_COPY),
                   FormatText(SQL_LOAD_IN_GROUP, B, WORKING_COPY, group.constData())};
    f.inPlace = {FormatText(SQL_LOAD_IN_PLACE, B, WORKING_COPY)};
    f.drop = SQL_LOAD_DROP;
    return RunSaveFamily(f, Nload);
}

// ---- Breakers and switches ----

int CLFCalDataTransfer::SaveLKDataToBreaker()
{
    CRunTimeLog frame("SaveLKDataToBreaker");
    return SaveLKFamily(true);
}

int CLFCalDataTransfer::SaveLKDataToSwitch()
{
    CRunTimeLog frame("SaveLKDataToSwitch");
    return SaveLKFamily(false);
}

int CLFCalDataTransfer::SaveLKFamily(bool breaker)
{
    const QByteArray job = FormatText("LK_%d", m_nJobNumber);
    const QByteArray group = SqlText(m_pDB, m_strGroupName.toLocal8Bit());
    const char* B = breaker ? "CDB_BREAKER" : "CDB_ISOSWITCH";
    const char* T = breaker ? "TBrk" : "Tswitch";
    const int ntype = breaker ? 1 : 2;
    SaveBackFamily f;
    f.createOrphans = FormatText(withTable(SQL_SWITCH_ORPHANS, T).constData(), job.constData(), B,
                                 WORKING_COPY, ntype);
    f.orphanWarning = breaker ? MSG_BRK_ORPHANS : MSG_SW_ORPHANS;
    const QByteArray fromT = FormatText(withTable(SQL_SWITCH_ORPHAN_INSERT, T).constData(), B,
                                        WORKING_COPY, group.constData());
    f.orphanInserts = {fromT};
    f.orphanNodes = withTable(SQL_SWITCH_NODES, T);
    f.clearOrphans = withTable(SQL_SWITCH_CLEAR, T);
    f.changes = {FormatText(withTable(SQL_SWITCH_CHANGED, T).constData(), job.constData(), B,
                            WORKING_COPY, ntype)};
    f.intoGroup = {fromT}; // the new rows straight from the job, no update after
    f.inPlace = {FormatText(withTable(SQL_SWITCH_IN_PLACE, T).constData(), B, WORKING_COPY)};
    f.drop = withTable(SQL_SWITCH_DROP, T);
    return RunSaveFamily(f, Nswitch);
}
