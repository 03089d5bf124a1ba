#include "common/Feedback.h"
#include "common/SaveBackStatementText.h"

#include "common/Session.h"
#include "platform/WinDockFeedback.h"

#include <QSqlDatabase>
#include <QSqlDriver>
#include <QSqlQuery>
#include <QString>
#include <QVariant>
#include <cctype>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <locale.h>
#include <mysql.h>

namespace {

// The C locale's numbers, made once: a host program may run under a locale whose decimal
// separator is a comma, and a statement's "%f" must still give "0.5".
locale_t cNumbers()
{
    static const locale_t c = newlocale(LC_NUMERIC_MASK, "C", locale_t(0));
    return c;
}

QByteArray vformat(const char* format, va_list args)
{
    va_list copy;
    va_copy(copy, args);
    const int needed = FormatTextInto(nullptr, 0, format, copy);
    va_end(copy);
    if (needed <= 0) {
        return QByteArray();
    }
    QByteArray text(needed, '\0');
    FormatTextInto(text.data(), size_t(needed) + 1, format, args);
    return text;
}

} // namespace

int FormatTextInto(char* buffer, size_t size, const char* format, va_list args)
{
    // The calling thread's locale for the call only: other threads keep theirs.
    const locale_t previous = uselocale(cNumbers());
    const int n = std::vsnprintf(buffer, size, format, args);
    uselocale(previous);
    return n;
}

QByteArray FormatText(const char* format, ...)
{
    va_list args;
    va_start(args, format);
    QByteArray text = vformat(format, args);
    va_end(args);
    return text;
}

void ShowMessage(const QByteArray& text, int level)
{
    WinDockFeedback::ShowMessage(text.constData(), "", "", "", level);
}

void ShowMessagef(int level, const char* format, ...)
{
    va_list args;
    va_start(args, format);
    const QByteArray text = vformat(format, args);
    va_end(args);
    ShowMessage(text, level);
}

namespace {

// The client library's handle behind a Qt connection: null when it is not MariaDB's (or
// MySQL's) or not open.
MYSQL* mysqlOf(const QSqlDriver* driver)
{
    const QVariant handle = driver ? driver->handle() : QVariant();
    const char* type = handle.isValid() ? handle.typeName() : nullptr;
    if (!type || (qstrcmp(type, "MYSQL*") != 0 && qstrcmp(type, "st_mysql*") != 0)) {
        return nullptr;
    }
    return *static_cast<MYSQL* const*>(handle.constData());
}

// The client character set of the connection when it is one in which the second byte of a
// two-byte character can be 0x5C, the backslash; null otherwise. The client library follows
// a SET NAMES through the server's reply, so this asks no statement of its own.
const char* unsafeClientCharset(const QSqlDriver* driver)
{
    MYSQL* mysql = mysqlOf(driver);
    const char* name = mysql ? mysql_character_set_name(mysql) : nullptr;
    for (const char* unsafe : {"big5", "cp932", "gbk", "sjis", "gb18030"}) {
        if (name && qstricmp(name, unsafe) == 0) {
            return name;
        }
    }
    return nullptr;
}

constexpr const char* MSG_UNSAFE_CHARSET =
    "连接的客户端字符集为 %s，其双字节字符的第二个字节可能是反斜杠，名称无法安全地写入语句，"
    "语句未执行。请在该连接上使用 utf8mb4（SET NAMES utf8mb4）。";

// The escaped copy of text[0, size), starting at `first`, the first byte to escape.
QByteArray escapedFrom(QSqlDatabase* db, const char* text, qsizetype size, const char* first)
{
    const bool backslash = BackslashEscapes(db);
    QByteArray out;
    out.reserve(size + 8);
    out.append(text, first - text);
    for (const char* p = first; p != text + size; ++p) {
        out.append(*p);
        if (*p == '\'' || (*p == '\\' && backslash)) {
            out.append(*p);
        }
    }
    return out;
}

// The first quote or backslash of text[0, size), or its end.
const char* firstToEscape(const char* text, qsizetype size)
{
    const char* p = text;
    while (p != text + size && *p != '\'' && *p != '\\') {
        ++p;
    }
    return p;
}

} // namespace

// Whether the session of `db` reads a backslash in a string literal as an escape. The
// server sends its status with every reply, NO_BACKSLASH_ESCAPES among it, so this follows
// a sql_mode changed during the session with no statement of its own. A connection that is
// not MariaDB's (or not open) is taken to escape, the server's default: doubling a
// backslash there is the safe side for a server that escapes.
bool BackslashEscapes(QSqlDatabase* db)
{
    unsigned int status = 0;
    return !ServerStatus(db, &status) || (status & SERVER_STATUS_NO_BACKSLASH_ESCAPES) == 0;
}

QByteArray SqlText(QSqlDatabase* db, const char* text)
{
    if (!text) {
        return QByteArray("");
    }
    const qsizetype size = qsizetype(std::strlen(text));
    const char* first = firstToEscape(text, size);
    if (first == text + size) { // the common case: nothing to escape, nothing copied
        return QByteArray::fromRawData(text, size);
    }
    return escapedFrom(db, text, size, first);
}

QByteArray SqlText(QSqlDatabase* db, const QByteArray& text)
{
    const char* first = firstToEscape(text.constData(), text.size());
    if (first == text.constData() + text.size()) {
        return text; // shared, not copied
    }
    return escapedFrom(db, text.constData(), text.size(), first);
}

QByteArray SqlWord(const QByteArray& text)
{
    bool word = !text.isEmpty();
    for (qsizetype i = 0; word && i < text.size(); ++i) {
        const unsigned char c = static_cast<unsigned char>(text[i]);
        word = c >= 0x80 || std::isalnum(c) || c == '_' || c == '.' || c == '$' ||
               (i == 0 && (c == '-' || c == '+'));
    }
    if (word) {
        return text;
    }
    QByteArray out("`");
    for (const char c : text) {
        out.append(c);
        if (c == '`') {
            out.append(c);
        }
    }
    out.append('`');
    return out;
}

st_mysql* ClientHandle(QSqlDatabase* db)
{
    return db && db->isOpen() ? mysqlOf(db->driver()) : nullptr;
}

bool ServerStatus(QSqlDatabase* db, unsigned int* status)
{
    MYSQL* mysql = ClientHandle(db);
    return mysql && mariadb_get_infov(mysql, MARIADB_CONNECTION_SERVER_STATUS, status) == 0;
}

bool ConnectionId(QSqlDatabase* db, unsigned long* id)
{
    MYSQL* mysql = ClientHandle(db);
    if (mysql) {
        *id = mysql_thread_id(mysql);
    }
    return mysql != nullptr;
}

bool ExecStatement(QSqlQuery& query, const QByteArray& sql)
{
    // A connection whose client character set can hide a backslash in a character's second
    // byte is refused before anything is sent: a name ending in such a byte would swallow
    // the backslash that escapes it and end its literal elsewhere. Refused rather than
    // sent as hex literals, because the statements' texts are the design, and because that
    // connection would hand the results back in that character set, not in UTF-8.
    if (const char* charset = unsafeClientCharset(query.driver())) {
        ShowMessagef(MSG_ERROR, MSG_UNSAFE_CHARSET, charset);
        query.finish();
        return false;
    }
    const QString text = QString::fromLocal8Bit(sql);
    for (const char c : sql) {
        if (static_cast<unsigned char>(c) >= 0x80) { // only then can the decoding alter it
            if (text.toLocal8Bit() != sql) {
                query.finish(); // no result of an earlier statement stands for this one
                return false;
            }
            break;
        }
    }
    return query.exec(InTableSpelling(text));
}
