#pragma once
// What the save-back's options read from a statement's text: whether MariaDB ends a
// transaction for it, which table it makes or drops, and the parts of an insert or an
// update that a preview runs or reads instead of the write itself. The statements are
// only read here, never changed. And the two things they read of the session without a
// statement of their own.

#include <QByteArray>
#include <QList>
#include <QPair>

class QSqlDatabase;

// Whether the session of `db` reads a backslash in a quoted text as an escape (sql_mode
// without NO_BACKSLASH_ESCAPES), from the status the server sends with every reply; true
// when it cannot be read, the server's default. Defined beside SqlText (common/Feedback.cpp),
// which escapes by the same answer.
bool BackslashEscapes(QSqlDatabase* db);

namespace sbtext {

bool EndsTransaction(const QByteArray& sql);
// "create [temporary] table NAME ...": the name and whether the table is temporary.
bool CreatedTable(const QByteArray& sql, QByteArray& table, bool& temporary);
// "drop [temporary] table [if exists] NAME".
bool DroppedTable(const QByteArray& sql, QByteArray& table);
// The table an insert ("insert into NAME(") or an update ("update NAME a, ...") writes.
bool WrittenTable(const QByteArray& sql, QByteArray& table);
// Table names as this server compares them (lower_case_table_names=1).
bool SameTable(const QByteArray& a, const QByteArray& b);

// "insert into TABLE(columns) select ..." or "... values(...)": the table, the columns, a
// select that gives the rows the insert would write (the statement's own select, or its
// values as a select) and the number of values per row. `escapes`: whether the session
// reads a backslash in a quoted text as an escape (BackslashEscapes).
struct Insert
{
    QByteArray table;
    QList<QByteArray> columns;
    QByteArray select;
    int values = 0;
};
bool ParseInsert(const QByteArray& sql, Insert& out, bool escapes);

// "update TABLE a, TEMP b set a.X=b.Y, ... where CONDITION": the pairs (X, Y) in order.
struct Update
{
    QByteArray table;
    QByteArray temp;
    QList<QPair<QByteArray, QByteArray>> assignments;
    QByteArray where;
};
bool ParseUpdate(const QByteArray& sql, Update& out);

} // namespace sbtext
