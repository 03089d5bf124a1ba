#pragma once
// The save-back pattern that the load-flow and the stability transfers share: a family's
// statements, formatted by the transfer, run here in a fixed order against the working
// copies of the base database, through one query and one exec point.
//
//   1. orphans (job rows without a base row): create T, warn, insert them into the data
//      group, gather their nodes, empty T;
//   2. changes beyond the tolerance into T, each statement adding its rows to the count;
//   3. with a count above 0: copy into the group and update the copies, or update in place;
//   4. drop T.
//
// A failure of a checked statement shows the transfer's failure text with the statement at
// level 2 and ends the family with 1; nothing is undone and T stays on the connection.
//
// The statement mode decides which text a transfer sends where the design keeps a statement
// that the server refuses: the faithful text by default, the intended one on request.
//
// Two options go beyond the design, both off by default, both for any transfer that runs its
// save-back driver through Save and Preview and lets its driver's messages, flags and
// writes go through Show, Flag, ExecWrite and SendWrite:
//   - all-or-nothing: the save-back runs in one server transaction on the caller's
//     connection, rolled back whole when anything fails; the change flags are raised after
//     the commit only;
//   - preview: the save-back's detection statements run into their temporary tables and are
//     read; no base table is written, no flag raised, no table left on the connection.

#include "common/Feedback.h"
#include "common/SaveBackPreview.h"

#include <QByteArray>
#include <QString>
#include <functional>
#include <map>
#include <tuple>
#include <utility>
#include <vector>

class CDatabase;
class QSqlDatabase;
class QSqlQuery;

enum class SaveStatementMode {
    Faithful, // every statement as the design writes it, refused ones included
    Mended,   // the intended text where the design's text is refused; the rest unchanged
};

// One family of a save-back, its statements formatted for one run.
struct SaveBackFamily
{
    // Orphans. Left empty where a family does not look for them (the stability families).
    QByteArray createOrphans;
    const char* orphanWarning = nullptr;   // printf text with the row count and the group
    std::vector<QByteArray> orphanInserts; // T's rows into the data group
    QByteArray orphanNodes;                // a select whose every column names a node
    QByteArray clearOrphans;               // run unchecked
    int rowsPerElement = 1;                // job rows of one element (three windings: 3)

    // Changes. The first statement may create T itself where there is no orphan stage.
    std::vector<QByteArray> changes;
    QByteArray afterChanges;         // run unchecked after the changes
    std::vector<QByteArray> intoGroup; // with the new-group flag
    std::vector<QByteArray> inPlace;   // without it
    QByteArray drop;                   // run unchecked
};

// What a family's orphans do to the transfer that runs it.
struct SaveBackOrphans
{
    QByteArray groupName; // local 8-bit, as the warning shows it
    int* newElements = nullptr;
    std::function<void(const QString&)> addNode;
};

// One step of a save-back driver: a family and the counter it adds to, with what the step
// shows and flags when it saved rows.
struct SaveBackStep
{
    std::function<int()> family; // 0, or 1 after its own failure text
    int* counter;
    bool increase;       // the message counts the counter's growth over the step, not its value
    const char* message; // printf text with that count, shown at level 1
    int flag;            // table type whose modify flag the step sets
};

class CSaveBackPattern
{
public:
    // `failure`: the transfer's printf text shown with a failed statement, a string literal.
    CSaveBackPattern(QSqlDatabase* db, const char* failure)
        : m_pDB(db), m_failure(failure)
    {}

    void SetStatementMode(SaveStatementMode mode) { m_mode = mode; }
    SaveStatementMode StatementMode() const { return m_mode; }
    // The template to format: `mended` in the mended mode, else `faithful`.
    const char* Text(const char* faithful, const char* mended) const
    {
        return m_mode == SaveStatementMode::Mended ? mended : faithful;
    }

    // Runs one family. `counter` grows by the changed rows; `orphans` may be null where the
    // family has no orphan stage. Returns 0, or 1 after the failure text.
    int Run(const SaveBackFamily& family, bool newGroup, int& counter,
            const SaveBackOrphans* orphans) const;

    // Runs a driver's steps in order. A step that saved rows shows its message and, with a
    // base-database object, sets its table's modify flag, both through Show and Flag (so a
    // preview shows and flags nothing, and all-or-nothing flags after its commit). Returns 1
    // at the first family that fails (the steps before it stay saved and flagged by
    // default), else 0.
    int RunSteps(const std::vector<SaveBackStep>& steps, CDatabase* baseDb) const;

    // False, after saying why at level 2 (through Say, so that a preview records it), when
    // `group` is wider than a data group's name holds (GrpName, kNameBytes as the design
    // counted them). A driver asks before it writes anything: the server would cut a longer
    // name in the copies and the group's row, and the updates into the group, which look for
    // the whole name, would match nothing.
    bool GroupNameFits(const QString& group) const;

    // Runs a checked statement on `query`: on failure the failure text at level 2, false.
    bool Exec(QSqlQuery& query, const QByteArray& sql) const;
    // Runs a statement whose outcome nobody reads.
    void ExecUnchecked(const QByteArray& sql) const;
    // A statement the design runs unchecked whose failure leaves the save-back incomplete
    // (the orphans' nodes, the node table's rows): the design's run passes over it;
    // all-or-nothing fails the run, with the failure text and `why`.
    void PassedOver(bool ok, const QByteArray& sql, const QString& why) const;
    // The one exec point: every statement of a save-back reaches the server here.
    bool Send(QSqlQuery& query, const QByteArray& sql) const;

    // ---- The options ----
    void SetAllOrNothing(bool on) { m_allOrNothing = on; }
    bool AllOrNothing() const { return m_allOrNothing; }

    // Runs `driver`, the transfer's whole save-back, and returns its result: as it stands
    // by default; with all-or-nothing on, in one transaction (see the .cpp for the order).
    int Save(const std::function<int()>& driver);
    // Runs `driver` as a preview: detection and reads only.
    SaveBackPreview Preview(const std::function<int()>& driver);
    // A transfer's preview call: Preview of `driver`, which saves with these arguments, and
    // then `state` (the counters and group fields a driver sets) put back as it was.
    template <typename... State>
    SaveBackPreview Preview(const QString& groupName, bool newGroup,
                            const std::function<int()>& driver, State&... state)
    {
        const std::tuple<State...> kept(state...);
        SaveBackPreview preview = Preview(driver);
        std::tie(state...) = kept;
        preview.groupName = groupName;
        preview.newGroup = newGroup;
        return preview;
    }

    // What a driver does besides its families goes through these, so that a preview records
    // it and an all-or-nothing run holds the flags back until the commit.
    template <typename... Args> void Show(int level, const char* format, Args... args) const
    {
        Say(level, FormatText(format, args...));
    }
    void Say(int level, const QByteArray& text, const QString& why = QString()) const;
    // SetBakTabModifyFlag on `base` (nothing when it is null).
    void Flag(CDatabase* base, int tableType) const;
    // A checked statement that writes a base table: on failure the failure text, false.
    bool ExecWrite(QSqlQuery& query, const QByteArray& sql) const;
    // A statement that writes a base table, whose failure the caller reports.
    bool SendWrite(QSqlQuery& query, const QByteArray& sql) const;

    // True when MariaDB ends an open transaction before running `sql` (DDL, locks, a new
    // transaction), by its first words: a plain DROP TABLE does so even for a temporary
    // table, CREATE/DROP TEMPORARY TABLE do not, CREATE INDEX always does.
    static bool EndsTransaction(const QByteArray& sql);

private:
    enum class RunKind {
        Save,         // the design's run
        Collect,      // all-or-nothing, before the transaction: statements noted, none sent
        AllOrNothing, // all-or-nothing, the run itself
        Preview,
    };
    enum class WriteRole {
        Addition,  // a row the driver adds (the group's, a node's)
        Orphan,    // job rows without a base row, into the group
        Change,    // an update, or a copy into the group whose values the updates after it give
        GroupRows, // rows into the group straight from the job, no update after
    };
    struct Hoisted
    {
        bool ok = false;
        int rows = 0;
        QString error;
    };
    // The bookkeeping of one run under an option; empty for the design's run.
    struct RunState
    {
        RunKind kind = RunKind::Save;
        bool inTransaction = false;
        bool failed = false;                   // a checked statement failed
        bool conflict = false;                 // rolled back by the server for a concurrent change
        bool commitUnknown = false;            // the connection broke before COMMIT was answered
        unsigned long session = 0;             // the session that began the transaction
        unsigned long sessionAfter = 0;        // another one met on the way, or 0
        std::vector<QByteArray> toHoist;       // Collect: creates to run before the transaction
        std::map<QByteArray, Hoisted> hoisted; // their outcomes, used where the run meets them
        std::vector<QByteArray> deferred;      // statements that end a transaction, for after it
        std::vector<std::pair<QByteArray, bool>> created; // tables made (name, temporary)
        std::vector<std::pair<CDatabase*, int>> flags;    // raised after the commit
        std::map<QByteArray, int> transactional; // tables written, by lower-case name: 1, 0, -1 unknown
        SaveBackPreview* preview = nullptr;
    };

    int RunAllOrNothing(const std::function<int()>& driver);
    // All-or-nothing: false, after marking the run failed, once the connection is no longer
    // on the session that began the transaction.
    bool SessionKept() const;
    // A checked statement of a family: a hoisted one's outcome is taken, not sent again.
    bool Step(QSqlQuery& query, const QByteArray& sql, int& rows) const;
    bool Write(QSqlQuery& query, const QByteArray& sql, WriteRole role, bool report) const;
    // All-or-nothing: false, with the reason shown, when `sql` writes a table that a
    // rollback cannot undo.
    bool Undoable(const QByteArray& sql) const;
    // The preview's reads, into the run's preview through Send.
    SaveBackPreviewReads Reads() const;
    void Fail(const QByteArray& sql, const QString& why) const;
    // Drops what the run made and did not drop itself, with the options' own statements.
    void DropCreated() const;

    QSqlDatabase* m_pDB;
    const char* m_failure;
    SaveStatementMode m_mode = SaveStatementMode::Faithful;
    bool m_allOrNothing = false;
    mutable RunState m_run;
};
