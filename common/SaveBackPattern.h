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

#include <QByteArray>
#include <QString>
#include <functional>
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
    // base-database object, sets its table's modify flag. Returns 1 at the first family that
    // fails (the steps before it stay saved and flagged), else 0.
    static int RunSteps(const std::vector<SaveBackStep>& steps, CDatabase* baseDb);

    // Runs a checked statement on `query`: on failure the failure text at level 2, false.
    bool Exec(QSqlQuery& query, const QByteArray& sql) const;
    // Runs a statement whose outcome nobody reads.
    void ExecUnchecked(const QByteArray& sql) const;
    // The one exec point: every statement of a save-back reaches the server here.
    bool Send(QSqlQuery& query, const QByteArray& sql) const;

private:
    QSqlDatabase* m_pDB;
    const char* m_failure;
    SaveStatementMode m_mode = SaveStatementMode::Faithful;
};
