#include "common/SaveBackPattern.h"

#include "common/Feedback.h"
#include "common/GbkWidth.h"
#include "common/SaveBackStatementText.h"
#include "common/SaveBackStatements.h"
#include "common/Session.h"
#include "platform/CDatabase.h"

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QVariant>
#include <algorithm>

using namespace sbo;

bool CSaveBackPattern::EndsTransaction(const QByteArray& sql)
{
    return sbtext::EndsTransaction(sql);
}

bool CSaveBackPattern::Send(QSqlQuery& query, const QByteArray& sql) const
{
    switch (m_run.kind) {
    case RunKind::Save:
        break;
    case RunKind::Collect:
        return true; // nothing reaches the server before the transaction's plan is known
    case RunKind::AllOrNothing:
        if (m_run.inTransaction && sbtext::EndsTransaction(sql)) {
            Show(MSG_ERROR, MSG_ENDS_TRANSACTION, sql.constData());
            return false;
        }
        break;
    case RunKind::Preview:
        if (sbtext::EndsTransaction(sql)) {
            // Only a detection statement that makes a working table of its own gets here.
            bool known = false;
            const bool open = InTransaction(m_pDB, &known);
            if (open || !known) {
                m_run.preview->refused = QString::fromLocal8Bit(
                    known ? FormatText(MSG_PREVIEW_IN_CALLERS_TRANSACTION, sql.constData())
                          : QByteArray(MSG_CANNOT_ASK_TRANSACTION));
                return false;
            }
        }
        break;
    }
    const bool ok = ExecStatement(query, sql);
    if (m_run.inTransaction && !SessionKept()) {
        return false; // it ran on another session, outside the transaction
    }
    if (!ok && m_run.inTransaction &&
        query.lastError().nativeErrorCode() == QLatin1String(SERVER_DEADLOCK)) {
        // Another session, or another node of a cluster, committed a change of the same
        // rows first: the server has rolled the transaction back.
        m_run.conflict = true;
    }
    if (ok && m_run.kind != RunKind::Save) {
        QByteArray table;
        bool temporary = false;
        if (sbtext::CreatedTable(sql, table, temporary)) {
            m_run.created.emplace_back(table, temporary);
        }
    }
    return ok;
}

bool CSaveBackPattern::SessionKept() const
{
    // A connection that reconnected has another id; 0 when it cannot be read.
    unsigned long now = 0;
    ConnectionId(m_pDB, &now);
    if (now == m_run.session) {
        return true;
    }
    if (m_run.sessionAfter == 0) {
        m_run.sessionAfter = now;
    }
    m_run.failed = true;
    return false;
}

void CSaveBackPattern::PassedOver(bool ok, const QByteArray& sql, const QString& why) const
{
    if (!ok && m_run.kind == RunKind::AllOrNothing) {
        Fail(sql, why);
    }
}

void CSaveBackPattern::Say(int level, const QByteArray& text, const QString& why) const
{
    switch (m_run.kind) {
    case RunKind::Collect:
        return;
    case RunKind::Preview:
        m_run.preview->messages.push_back({level, text, why});
        return;
    default:
        ShowMessage(text, level);
    }
}

SaveBackPreviewReads CSaveBackPattern::Reads() const
{
    return SaveBackPreviewReads(
        m_pDB, [this](QSqlQuery& q, const QByteArray& sql) { return Send(q, sql); },
        *m_run.preview);
}

void CSaveBackPattern::Fail(const QByteArray& sql, const QString& why) const
{
    m_run.failed = true;
    Say(MSG_ERROR, FormatText(m_failure, sql.constData()), why);
}

bool CSaveBackPattern::GroupNameFits(const QString& group) const
{
    if (GbkWidth(group) <= kNameBytes) {
        return true;
    }
    Show(MSG_ERROR, MSG_GROUP_TOO_LONG, group.toLocal8Bit().constData());
    return false;
}

bool CSaveBackPattern::Exec(QSqlQuery& query, const QByteArray& sql) const
{
    if (Send(query, sql)) {
        return true;
    }
    if (m_run.kind != RunKind::Preview || m_run.preview->refused.isEmpty()) {
        Fail(sql, query.lastError().text());
    }
    return false;
}

int CSaveBackPattern::RunSteps(const std::vector<SaveBackStep>& steps, CDatabase* baseDb) const
{
    for (const SaveBackStep& s : steps) {
        const int before = *s.counter;
        if (s.family() != 0) {
            return CALC_FAIL;
        }
        const int count = s.increase ? *s.counter - before : *s.counter;
        if (count > 0) {
            Show(MSG_PROGRESS, s.message, count);
            Flag(baseDb, s.flag);
        }
    }
    return CALC_OK;
}

void CSaveBackPattern::ExecUnchecked(const QByteArray& sql) const
{
    QByteArray dropped;
    switch (m_run.kind) {
    case RunKind::Save:
        break;
    case RunKind::Collect:
        return;
    case RunKind::AllOrNothing:
        if (m_run.inTransaction && sbtext::EndsTransaction(sql)) {
            // A drop (also of a temporary table) or an index would commit what the run did
            // so far: it goes after the transaction, as it stands.
            m_run.deferred.push_back(sql);
            if (sbtext::DroppedTable(sql, dropped)) {
                auto& made = m_run.created;
                made.erase(std::remove_if(
                               made.begin(), made.end(),
                               [&](const auto& t) { return sbtext::SameTable(t.first, dropped); }),
                           made.end());
            }
            return;
        }
        break;
    case RunKind::Preview:
        if (sbtext::DroppedTable(sql, dropped)) {
            // The preview's own drop, which a caller's transaction survives.
            auto& made = m_run.created;
            for (auto it = made.begin(); it != made.end(); ++it) {
                if (sbtext::SameTable(it->first, dropped)) {
                    QSqlQuery q(*m_pDB);
                    Send(q, FormatText(it->second ? SQL_DROP_TEMPORARY : SQL_DROP_WORKING,
                                       it->first.constData()));
                    made.erase(it);
                    break;
                }
            }
            return;
        }
        if (sbtext::EndsTransaction(sql)) {
            return; // an index on a table of the detection: no part of what a preview reads
        }
        break;
    }
    QSqlQuery q(*m_pDB);
    Send(q, sql);
}

bool CSaveBackPattern::Step(QSqlQuery& query, const QByteArray& sql, int& rows) const
{
    if (m_run.kind == RunKind::AllOrNothing) {
        auto it = m_run.hoisted.find(sql);
        if (it != m_run.hoisted.end()) {
            const Hoisted h = it->second;
            m_run.hoisted.erase(it);
            if (!h.ok) {
                Fail(sql, h.error);
                return false;
            }
            rows = h.rows;
            return true;
        }
    }
    if (!Exec(query, sql)) {
        return false;
    }
    rows = query.numRowsAffected();
    return true;
}

bool CSaveBackPattern::Write(QSqlQuery& query, const QByteArray& sql, WriteRole role,
                             bool report) const
{
    switch (m_run.kind) {
    case RunKind::Collect:
        return true;
    case RunKind::Preview: {
        using Listing = SaveBackPreviewReads::Listing;
        const Listing listing = role == WriteRole::Change    ? Listing::None
                                : role == WriteRole::Orphan ? Listing::Orphans
                                                            : Listing::Rows;
        QString why;
        if (Reads().Write(sql, listing, why)) {
            return true;
        }
        if (!m_run.preview->refused.isEmpty()) {
            return false;
        }
        if (report) {
            Fail(sql, why);
        } else {
            m_run.failed = true;
        }
        return false;
    }
    default:
        if (!Undoable(sql)) {
            m_run.failed = true;
            return false;
        }
        if (report) {
            return Exec(query, sql);
        }
        if (!Send(query, sql)) {
            m_run.failed = true;
            return false;
        }
        return true;
    }
}

bool CSaveBackPattern::Undoable(const QByteArray& sql) const
{
    QByteArray table;
    if (m_run.kind != RunKind::AllOrNothing || !sbtext::WrittenTable(sql, table)) {
        return true;
    }
    const QByteArray key = table.toLower();
    auto known = m_run.transactional.find(key);
    if (known == m_run.transactional.end()) {
        // The tables the run made are its own (its temporary work tables, which the
        // catalogue does not list). Any other whose engine cannot be read (the catalogue
        // holds no such table, it is a view, its engine is not loaded, the read fails) is
        // refused as one a rollback may not undo: decided so, since the run could not
        // promise all or nothing for it.
        const bool made = std::any_of(m_run.created.begin(), m_run.created.end(), [&](const auto& t) {
            return sbtext::SameTable(t.first, table);
        });
        QSqlQuery q(*m_pDB);
        const int undoable =
            made ? 1
            : !Send(q, FormatText(SQL_TRANSACTIONAL, table.constData())) || !q.next() ||
                    q.value(0).isNull()
                ? -1
                : q.value(0).toString() == QLatin1String("YES");
        known = m_run.transactional.emplace(key, undoable).first;
    }
    if (known->second != 1) {
        Show(MSG_ERROR, known->second == 0 ? MSG_NOT_TRANSACTIONAL : MSG_ENGINE_UNKNOWN,
             table.constData());
    }
    return known->second == 1;
}

bool CSaveBackPattern::ExecWrite(QSqlQuery& query, const QByteArray& sql) const
{
    return Write(query, sql, WriteRole::Addition, true);
}

bool CSaveBackPattern::SendWrite(QSqlQuery& query, const QByteArray& sql) const
{
    return Write(query, sql, WriteRole::Addition, false);
}

void CSaveBackPattern::Flag(CDatabase* base, int tableType) const
{
    if (!base) {
        return;
    }
    switch (m_run.kind) {
    case RunKind::Save:
        base->SetBakTabModifyFlag(tableType);
        return;
    case RunKind::Collect:
        return;
    case RunKind::AllOrNothing:
        m_run.flags.emplace_back(base, tableType);
        return;
    case RunKind::Preview:
        m_run.preview->flags.push_back(tableType);
        return;
    }
}

int CSaveBackPattern::Run(const SaveBackFamily& f, bool newGroup, int& counter,
                          const SaveBackOrphans* orphans) const
{
    if (m_run.kind == RunKind::Collect) {
        // The statement that makes T, when it is a working table of its own (not a
        // temporary one), would commit: it runs before the transaction. That is sound
        // because a family reads its own base table and the job tables, which no earlier
        // family writes.
        const QByteArray& make = !f.createOrphans.isEmpty() ? f.createOrphans
                                 : !f.changes.empty()       ? f.changes.front()
                                                            : f.createOrphans;
        QByteArray table;
        bool temporary = true;
        if (sbtext::CreatedTable(make, table, temporary) && !temporary) {
            m_run.toHoist.push_back(make);
        }
        return CALC_OK;
    }
    QSqlQuery q(*m_pDB);
    int rows = 0;
    if (!f.createOrphans.isEmpty()) {
        if (!Step(q, f.createOrphans, rows)) {
            return CALC_FAIL;
        }
        if (rows > 0) {
            if (orphans && orphans->newElements) {
                *orphans->newElements += rows / f.rowsPerElement;
            }
            Show(MSG_ERROR, f.orphanWarning, rows, orphans ? orphans->groupName.constData() : "");
            for (const QByteArray& sql : f.orphanInserts) {
                if (!Write(q, sql, WriteRole::Orphan, true)) {
                    return CALC_FAIL;
                }
            }
            // Every node an orphan names, whatever the row became: an inactive query adds none.
            QSqlQuery nodes(*m_pDB);
            nodes.setForwardOnly(true);
            const bool listed = Send(nodes, f.orphanNodes) && nodes.isActive();
            PassedOver(listed, f.orphanNodes, nodes.lastError().text());
            if (listed && orphans && orphans->addNode) {
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
        if (!Step(q, sql, rows)) {
            return CALC_FAIL;
        }
        changed += rows;
    }
    if (!f.afterChanges.isEmpty()) {
        ExecUnchecked(f.afterChanges);
    }
    if (changed > 0) {
        counter += changed;
        const std::vector<QByteArray>& writes = newGroup ? f.intoGroup : f.inPlace;
        // Into a group, the first write copies rows and the updates after it set their
        // values; where none follows (breakers and switches), its rows are whole as written.
        const WriteRole first =
            newGroup && writes.size() == 1 ? WriteRole::GroupRows : WriteRole::Change;
        int updated = 0; // rows the updates after a copy changed
        for (std::size_t k = 0; k < writes.size(); ++k) {
            if (!Write(q, writes[k], k == 0 ? first : WriteRole::Change, true)) {
                return CALC_FAIL;
            }
            updated += k > 0 && m_run.kind != RunKind::Preview ? q.numRowsAffected() : 0;
        }
        // Every copy holds a value beyond the tolerance from its update, so updates that
        // change nothing found no copy under the group's name: no success for a save that
        // did not land.
        if (newGroup && writes.size() > 1 && updated == 0 && m_run.kind != RunKind::Preview) {
            m_run.failed = true;
            Show(MSG_ERROR, MSG_GROUP_UPDATE_MISSED, writes[1].constData());
            return CALC_FAIL;
        }
        // A preview reads the values by the in-place updates in both cases (the copies in
        // the group get the same assignments), and into a group also the rows the group
        // holds already, which its updates rewrite; once the writes passed: a family whose
        // copy the server refuses lists nothing, as it saves nothing.
        if (m_run.kind == RunKind::Preview &&
            !Reads().Changes(f.inPlace, newGroup && writes.size() > 1
                                            ? std::vector<QByteArray>(writes.begin() + 1,
                                                                      writes.end())
                                            : std::vector<QByteArray>())) {
            return CALC_FAIL;
        }
    }
    ExecUnchecked(f.drop);
    return CALC_OK;
}

int CSaveBackPattern::Save(const std::function<int()>& driver)
{
    if (!m_allOrNothing) {
        return driver();
    }
    const int result = RunAllOrNothing(driver);
    m_run = RunState();
    return result;
}

// All-or-nothing, in this order:
//   1. refuse when the connection is inside a transaction of the caller's (ours would end
//      it, or the caller's commit would make ours);
//   2. the driver once without sending anything, to find the statements that would end a
//      transaction and must run before it (a working table that is not temporary);
//   3. those statements, then START TRANSACTION, then the driver, every statement that
//      would end the transaction (the drops, also of temporary tables, and an index) held
//      back; anything else of the kind is refused;
//   4. COMMIT when the driver returned 0 and no checked statement failed, else ROLLBACK: a
//      failure that the driver passes over (the new nodes' in load flow) undoes the run too,
//      since a saved orphan without its node is not the whole of the save-back;
//   5. the held-back statements as they stand, and drops of the tables the run made and
//      a failure left behind;
//   6. after a commit the change flags; after a rollback one line saying nothing was saved.
int CSaveBackPattern::RunAllOrNothing(const std::function<int()>& driver)
{
    m_run = RunState();
    QSqlQuery q(*m_pDB);
    // The server's status after its last reply says whether a transaction is open: MariaDB
    // and MySQL send it alike, and asking costs no statement.
    bool known = false;
    const bool open = InTransaction(m_pDB, &known);
    if (!known) {
        Say(MSG_ERROR, MSG_CANNOT_ASK_TRANSACTION);
        return CALC_FAIL;
    }
    if (open) {
        Say(MSG_ERROR, MSG_IN_CALLERS_TRANSACTION);
        return CALC_FAIL;
    }

    m_run.kind = RunKind::Collect;
    driver();
    const std::vector<QByteArray> toHoist = m_run.toHoist;
    m_run = RunState();
    m_run.kind = RunKind::AllOrNothing;
    for (const QByteArray& sql : toHoist) {
        QSqlQuery h(*m_pDB);
        Hoisted out;
        out.ok = Send(h, sql);
        out.rows = out.ok ? h.numRowsAffected() : 0;
        out.error = h.lastError().text();
        m_run.hoisted.emplace(sql, out);
    }

    bool ok = Send(q, SQL_START_TRANSACTION);
    if (!ok) {
        Fail(SQL_START_TRANSACTION, q.lastError().text());
    } else {
        m_run.inTransaction = true;
        m_run.session = 0;
        ConnectionId(m_pDB, &m_run.session);
        ok = driver() == CALC_OK && !m_run.failed;
        // A connection that broke and reconnected on the way ran the rest outside the
        // transaction: COMMIT would commit an empty one and call that success.
        ok = ok && SessionKept();
        if (ok && !Send(q, SQL_COMMIT)) {
            // The server has rolled back; unless the connection broke on the way, when the
            // commit may have been made before the reply was lost.
            Fail(SQL_COMMIT, q.lastError().text());
            const QString code = q.lastError().nativeErrorCode();
            m_run.commitUnknown = code == QLatin1String(CLIENT_SERVER_GONE) ||
                                  code == QLatin1String(CLIENT_SERVER_LOST);
            ok = false;
        }
    }
    bool allUndone = true;
    if (!ok && m_run.inTransaction) {
        QSqlQuery rollback(*m_pDB);
        if (Send(rollback, SQL_ROLLBACK) && Send(rollback, SQL_SHOW_WARNINGS)) {
            while (rollback.next()) {
                allUndone &= rollback.value(1).toInt() != WARNING_NOT_ROLLED_BACK;
            }
        }
    }
    m_run.inTransaction = false;

    for (const QByteArray& sql : m_run.deferred) {
        QSqlQuery d(*m_pDB);
        Send(d, sql);
    }
    DropCreated();
    if (ok) {
        for (const auto& flag : m_run.flags) {
            flag.first->SetBakTabModifyFlag(flag.second);
        }
        return CALC_OK;
    }
    if (m_run.sessionAfter != 0) {
        Show(MSG_ERROR, MSG_SESSION_CHANGED, m_run.session, m_run.sessionAfter);
        return CALC_FAIL;
    }
    Say(MSG_ERROR, m_run.commitUnknown ? MSG_COMMIT_UNKNOWN
                   : !allUndone          ? MSG_NOT_ALL_UNDONE
                   : m_run.conflict      ? MSG_CONFLICT_NOTHING_SAVED
                                         : MSG_NOTHING_SAVED);
    return CALC_FAIL;
}

void CSaveBackPattern::DropCreated() const
{
    const auto made = std::move(m_run.created);
    m_run.created.clear();
    for (const auto& t : made) {
        QSqlQuery q(*m_pDB);
        Send(q, FormatText(t.second ? SQL_DROP_TEMPORARY : SQL_DROP_WORKING, t.first.constData()));
    }
}

SaveBackPreview CSaveBackPattern::Preview(const std::function<int()>& driver)
{
    SaveBackPreview preview;
    m_run = RunState();
    m_run.kind = RunKind::Preview;
    m_run.preview = &preview;
    preview.result = driver();
    if (!preview.refused.isEmpty()) {
        preview.result = CALC_FAIL;
    }
    DropCreated();
    m_run = RunState();
    return preview;
}
