// The node table of a job: every node that the job's elements touch, with the element
// counts of LF_CASE; and the running count of nodes that save-back must add.

#include "common/Feedback.h"
#include "common/RunTimeLog.h"
#include "common/SQLMultiInsert.h"
#include "loadflow/jobdata/LFCalDataTransfer.h"
#include "loadflow/jobdata/LFExtractStatements.h"

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QVariant>

using namespace lfx;

int CLFCalDataTransfer::ImportL1DataFromBaseDB()
{
    CRunTimeLog frame("ImportL1DataFromBaseDB");
    QMap<QString, int> nodes;
    auto take = [&](const QString& name) {
        if (!nodes.contains(name)) {
            nodes.insert(name, ++Nbus);
        }
    };
    // Generators and loads by their node, then branches and switches by both ends.
    struct Source
    {
        const char* prefix;
        bool twoEnds;
        int* count;
    } sources[] = {{"L5", false, &Ngenerat}, {"L6", false, &Nload},  {"L2", true, &Nacline},
                   {"L3", true, &Ntrans},    {"L4", true, &Ndcline}, {"LK", true, nullptr}};
    for (const Source& s : sources) {
        QSqlQuery q(*m_pDB);
        q.setForwardOnly(true);
        ExecStatement(q,
                      FormatText(s.twoEnds ? SQL_ENDS_OF : SQL_NODES_OF, s.prefix, m_nJobNumber));
        int rows = 0;
        if (q.isActive()) {
            while (q.next()) {
                take(q.value(0).toString());
                if (s.twoEnds) {
                    take(q.value(1).toString());
                }
                ++rows;
            }
        }
        if (s.count) {
            *s.count = rows;
        }
    }

    QSqlQuery q(*m_pDB);
    if (!ExecStatement(q, SQL_CREATE_TNODE)) {
        ShowMessage(MSG_TNODE, MSG_ERROR);
        return CALC_FAIL;
    }
    SQLMultiInsert ins(m_pDB, 200);
    ins.SetTableName("Tnode");
    ins.SetFldNamelst("node_name");
    for (auto it = nodes.constBegin(); it != nodes.constEnd(); ++it) {
        ins.AddRecord("'" + SqlText(m_pDB, it.key().toLocal8Bit()) + "'");
    }
    ins.exec();

    const QByteArray fill =
        FormatText(SQL_L1_FILL, FormatText("L1_%d", m_nJobNumber).constData(), m_nJobNumber,
                   "CDB_NODE", WORKING_COPY, "CDB_BUS", WORKING_COPY);
    if (!ExecStatement(q, fill)) {
        ShowMessagef(MSG_ERROR, MSG_L1_SQL, fill.constData());
        return CALC_FAIL;
    }
    if (!ExecStatement(q, SQL_DROP_TNODE)) {
        ShowMessagef(MSG_ERROR, MSG_L1_SQL, SQL_DROP_TNODE);
        return CALC_FAIL;
    }
    return CALC_OK;
}

int CLFCalDataTransfer::AddNewNode(const QString& name)
{
    if (!m_NewNodes.contains(name)) {
        m_NewNodes.insert(name, ++Nbus);
    }
    return Nbus;
}
