#pragma once
// What a run did to the tables of a suite's database, read from outside it: the rows of a
// list of tables before and after (with what changed and what was added), their server
// checksums, the work tables a run left on a connection, and whether a change flag was
// raised inside a transaction.

#include "Recorders.h"
#include "common/SaveBackPreview.h"
#include "platform/CDatabase.h"

#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <map>
#include <string>
#include <vector>

namespace testsupport {

struct TableRow
{
    QString name;                      // the row's element, node, bus, station, zone or group
    std::map<QString, QString> values; // column (lower case) -> value, the id left out
};
// table -> id -> row
using Snapshot = std::map<QString, std::map<qlonglong, TableRow>>;

Snapshot Take(QSqlDatabase db, const std::vector<const char*>& tables);

// What a run wrote between two snapshots, sorted: the values that changed in rows that
// stood before ("TABLE|element|column|before|after"), the rows that did not ("TABLE|name").
void Diff(const Snapshot& before, const Snapshot& after, std::vector<std::string>& changes,
          std::vector<std::string>& added);

// Every row without its id, table by table, sorted: two runs from the same start compare
// equal although the server numbers their rows apart.
std::vector<std::string> Contents(const Snapshot& s);

// The base tables of the database whose names are LIKE `pattern` (lower case on this
// server), in order.
QStringList TablesLike(QSqlDatabase db, const QString& pattern);
// A checksum of each of `tables` over its rows' visible columns, whatever their order, by
// upper-case table name.
std::map<std::string, std::string> Checksums(QSqlDatabase db, const QStringList& tables);

// Those of `tables` that stand on the connection `db` (temporary ones included).
std::vector<std::string> TablesLeft(QSqlDatabase* db, const std::vector<const char*>& tables);

// A preview's lists in Diff's form, sorted.
std::vector<std::string> PreviewChanges(const SaveBackPreview& p);
std::vector<std::string> PreviewAdditions(const SaveBackPreview& p);
// Messages as "level text", in order: a preview's, and those the library showed.
std::vector<std::string> Texts(const std::vector<SaveBackMessage>& messages);
std::vector<std::string> Texts(const std::vector<Message>& messages);

// What a save-back left: the rows of the tables (as Contents), the flags raised on the
// base-database object and the messages shown.
struct SaveBackOutcome
{
    std::vector<std::string> rows;
    std::vector<int> flags;
    std::vector<std::string> messages;
};
SaveBackOutcome Outcome(QSqlDatabase db, const std::vector<const char*>& tables,
                        const CDatabase& base);
// An all-or-nothing run's outcome against the ordinary run's: the same rows, flags and
// messages, and every flag raised outside a transaction.
void ExpectSameOutcomeFlaggedAfterCommit(const SaveBackOutcome& whole,
                                         const std::vector<int>& inTransaction,
                                         const SaveBackOutcome& ordinary);

// Records, at every flag, whether the library's connection was inside a transaction.
class CommitWatch : public CDatabase
{
public:
    explicit CommitWatch(QSqlDatabase* db) : m_db(db) {}
    int SetBakTabModifyFlag(int tableType) override;
    std::vector<int> inTransaction; // 1 inside, 0 outside, -1 unknown

private:
    QSqlDatabase* m_db;
};

} // namespace testsupport
