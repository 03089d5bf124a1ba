#pragma once
// What a connection needs before the library's statements run on it, and how the library
// names tables on a server that tells table names apart by case.
//
// A host calls SetUpSession once on every connection it hands the library (after open, and
// again after reopening one). It changes that connection's own session only, never a
// server-wide setting:
//   * sql_mode: the statements were written for the lenient servers of their time (values
//     cut to their column and left to their defaults, GROUP BY on one column, names read
//     back without the padding of their CHAR column, assignments made left to right); the
//     modes that refuse them or change what they mean are taken out of the session's mode,
//     the others stay as the host had them;
//   * the character set: the library sends and Qt's driver reads UTF-8;
//   * the storage engine of the working tables that statements make without naming one
//     (tmp, DT6, TLoad, the branch table of the choosers): InnoDB, which rolls back and
//     which a Galera cluster replicates.
// What a session cannot change comes back as a problem: lower_case_table_names is fixed
// with the server's data directory, and a Galera node that is not part of the cluster's
// primary component accepts no statement.

#include <QByteArray>
#include <QString>
#include <QStringList>

class QSqlDatabase;

struct SessionSetup
{
    // What the session could not be given, one sentence each; empty when it suits.
    QStringList problems;
    // What was changed on the session, one line each ("sql_mode: 'A,B' -> 'B'").
    QStringList changes;
    // The server's lower_case_table_names (-1 when it could not be read): 0 means table
    // names are compared by case, and the statements need the schema's spelling.
    int lowerCaseTableNames = -1;
    // The server is a node of a Galera cluster (wsrep_on).
    bool galera = false;

    bool ok() const { return problems.isEmpty(); }
};

SessionSetup SetUpSession(QSqlDatabase* db);

// The session's sql_mode less the modes that refuse the library's statements or change
// what they mean, in the order given; the combined modes that hold any of them (ANSI,
// TRADITIONAL, ORACLE ...) go too.
QString LibrarySqlMode(const QString& sqlMode);

// Whether the session of `db` is inside a transaction (START TRANSACTION, or a statement
// under autocommit=0), from the status the server sends with every reply (ServerStatus in
// common/Feedback.h); no statement is sent. False with `known` false
// when the status cannot be read.
bool InTransaction(QSqlDatabase* db, bool* known);

// ---- Table spellings ----
//
// A few statements name a table in a spelling of their own: CDB_NodeBAK for CDB_NODEBAK,
// T3w for the temporary table T3W, s4_<job> for S4_<job>. The servers they were written
// for fold the case of table names (lower_case_table_names=1 or 2). On one that does not,
// the option Schema sends every table name in the spelling of the schema (or of the
// statement that makes the table). AsWritten, the default, sends the texts as they stand.
// The option holds for the whole process, for every connection.
enum class TableSpelling { AsWritten, Schema };
void SetTableSpelling(TableSpelling spelling);
TableSpelling GetTableSpelling();

// `sql` as it goes to the server under the present spelling option: unchanged under
// AsWritten; under Schema each table name of another spelling, as a whole word outside
// quotes, in the schema's.
QByteArray InTableSpelling(const QByteArray& sql);
QString InTableSpelling(const QString& sql);
