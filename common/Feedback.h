#pragma once
// The feedback and return-code convention shared by every transfer.
//
// Transfers return 0 for success and 1 for failure; checks return a boolean and
// lookups a neutral value. Messages go through WinDockFeedback::ShowMessage with
// one of the levels below, composed printf-style like the statements themselves.

#include <QByteArray>
#include <cstdarg>
#include <cstddef>

struct st_mysql; // the client library's MYSQL

class QSqlDatabase;
class QSqlQuery;

// Return codes of transfer operations.
constexpr int CALC_OK = 0;
constexpr int CALC_FAIL = 1;

// Message levels of the suite's message window.
enum MessageLevel : int {
    MSG_RAW = -1,       // no level: run-time lines and raw SQL echoed ahead of an error
    MSG_PROGRESS = 1,   // progress and counts
    MSG_ERROR = 2,      // errors, and warnings that do not stop a transfer
    MSG_GROUP_FAIL = 3, // a data group could not be created in a save-back
};

// printf-style composition into text, the way transfers fill their local buffers.
// There is no length limit: the text grows to what the format needs. Numbers are written
// as the C locale writes them ("%f" of one half is "0.500000"), whatever locale the host
// program runs under, since the server reads no other form.
QByteArray FormatText(const char* format, ...) __attribute__((format(printf, 1, 2)));
// vsnprintf with the C locale's numbers, for a buffer of the caller's.
int FormatTextInto(char* buffer, size_t size, const char* format, va_list args);

// Shows `text` at `level` through WinDockFeedback::ShowMessage, with the three empty
// middle arguments that this library always passes.
void ShowMessage(const QByteArray& text, int level);

// Composes the message printf-style and shows it at `level`.
void ShowMessagef(int level, const char* format, ...) __attribute__((format(printf, 2, 3)));

// ---- Text values in statements ----
//
// A statement is formatted printf-style from its template; a text value stands between
// the template's single quotes ('%s'). SqlText gives the value as the server's string
// literals need it, so that no name can end the literal and change which rows the
// statement touches: each single quote doubled, and each backslash doubled where the
// session reads a backslash as an escape (sql_mode without NO_BACKSLASH_ESCAPES, which
// the server reports with every reply on `db`'s connection). A text with neither
// character comes back as it stands, so its statement keeps its text byte for byte.
// The bytes are the local 8-bit encoding (UTF-8), in which no byte of a multi-byte
// character is a quote or a backslash. Given a `const char*`, the result refers to `text`
// where nothing needs escaping: use it while `text` stands.
QByteArray SqlText(QSqlDatabase* db, const char* text);
QByteArray SqlText(QSqlDatabase* db, const QByteArray& text);

// A text that a statement holds without quotes, where the design puts a value as a bare
// word (a number, or a column's name). One word (letters, digits, '_', '.', '$', the bytes
// of multi-byte characters, after an optional sign) stands as it is, so the statement
// keeps its text. Anything else could add a condition to the statement (`1 OR 1`), and
// goes as a quoted identifier (backticks, inner ones doubled): the server reads it as the
// name of a column it does not have and refuses the statement, as it refuses any other
// word that is neither a number nor a column.
QByteArray SqlWord(const QByteArray& text);

// The client library's handle behind an open MariaDB (or MySQL) connection; null when the
// connection is closed or of another driver.
st_mysql* ClientHandle(QSqlDatabase* db);
// The status that the server sends with every reply on `db`'s connection (the MySQL
// protocol's SERVER_STATUS_* bits, which MariaDB and MySQL alike send): false when the
// connection is not a MySQL-family one of Qt's driver, or not open.
bool ServerStatus(QSqlDatabase* db, unsigned int* status);
// The server's id of the session on `db`'s connection (its CONNECTION_ID()), from the client
// library, with no statement sent; false as ServerStatus.
bool ConnectionId(QSqlDatabase* db, unsigned long* id);

// Runs a statement formatted in the local 8-bit encoding on `query`; every statement that
// holds a name reaches the server here. A text that is not valid in that encoding (a name
// cut inside a multi-byte character) is not sent: Qt would put U+FFFD in place of the
// bad bytes and the server would store or match a name nobody gave. It fails as a
// statement the server refuses fails, with false, and the caller reports as it does then.
// Nor is anything sent on a connection whose client character set is one in which a
// backslash can be the second byte of a character (big5, cp932, gbk, sjis, gb18030, after a
// SET NAMES of the caller's): SqlText's escaping is sound only where it cannot; the refusal
// shows why at level 2, then fails the same way.
bool ExecStatement(QSqlQuery& query, const QByteArray& sql);
