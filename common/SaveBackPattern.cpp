#include "common/SaveBackPattern.h"

#include "common/Feedback.h"
#include "platform/CDatabase.h"

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QVariant>

bool CSaveBackPattern::Send(QSqlQuery& query, const QByteArray& sql) const
{
    return ExecStatement(query, sql);
}

bool CSaveBackPattern::Exec(QSqlQuery& query, const QByteArray& sql) const
{
    if (Send(query, sql)) {
        return true;
    }
    ShowMessagef(MSG_ERROR, m_failure, sql.constData());
    return false;
}

int CSaveBackPattern::RunSteps(const std::vector<SaveBackStep>& steps, CDatabase* baseDb)
{
    for (const SaveBackStep& s : steps) {
        const int before = *s.counter;
        if (s.family() != 0) {
            return CALC_FAIL;
        }
        const int count = s.increase ? *s.counter - before : *s.counter;
        if (count > 0) {
            ShowMessagef(MSG_PROGRESS, s.message, count);
            if (baseDb) {
                baseDb->SetBakTabModifyFlag(s.flag);
            }
        }
    }
    return CALC_OK;
}

void CSaveBackPattern::ExecUnchecked(const QByteArray& sql) const
{
    QSqlQuery q(*m_pDB);
    Send(q, sql);
}

int CSaveBackPattern::Run(const SaveBackFamily& f, bool newGroup, int& counter,
                          const SaveBackOrphans* orphans) const
{
    QSqlQuery q(*m_pDB);
    if (!f.createOrphans.isEmpty()) {
        if (!Exec(q, f.createOrphans)) {
            return CALC_FAIL;
        }
        const int rows = q.numRowsAffected();
        if (rows > 0) {
            if (orphans && orphans->newElements) {
                *orphans->newElements += rows / f.rowsPerElement;
            }
            ShowMessagef(MSG_ERROR, f.orphanWarning, rows,
                         orphans ? orphans->groupName.constData() : "");
            for (const QByteArray& sql : f.orphanInserts) {
                if (!Exec(q, sql)) {
                    return CALC_FAIL;
                }
            }
            // Every node an orphan names, whatever the row became: an inactive query adds none.
            QSqlQuery nodes(*m_pDB);
            nodes.setForwardOnly(true);
            if (Send(nodes, f.orphanNodes) && nodes.isActive() && orphans && orphans->addNode) {
                const int columns = nodes.record().count();
                while (nodes.next()) {
                    for (int c = 0; c < columns; ++c) {
                        orphans->addNode(nodes.value(c).toString());
                    }
                }
            }
            ExecUnchecked(f.clearOrphans);
        }
    }
    int changed = 0;
    for (const QByteArray& sql : f.changes) {
        if (!Exec(q, sql)) {
            return CALC_FAIL;
        }
        changed += q.numRowsAffected();
    }
    if (!f.afterChanges.isEmpty()) {
        ExecUnchecked(f.afterChanges);
    }
    if (changed > 0) {
        counter += changed;
        for (const QByteArray& sql : newGroup ? f.intoGroup : f.inPlace) {
            if (!Exec(q, sql)) {
                return CALC_FAIL;
            }
        }
    }
    ExecUnchecked(f.drop);
    return CALC_OK;
}
