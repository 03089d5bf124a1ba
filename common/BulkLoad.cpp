#include "common/BulkLoad.h"

#include "common/Feedback.h"
#include "common/Session.h"

#include <QSqlDatabase>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlQuery>
#include <QString>
#include <QVariant>
#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <errmsg.h>
#include <mysql.h>
#include <string>
#include <vector>

namespace {

// The load's own statement: the rows come from memory through the client library's
// local-file hook; separators are given as hexadecimal literals, which read the same
// under every sql_mode.
constexpr const char* SQL_LOAD_LOCAL =
    "LOAD DATA LOCAL INFILE 'calcdata-rows' %sINTO TABLE %s CHARACTER SET %s FIELDS TERMINATED "
    "BY X'09' ESCAPED BY X'5C' LINES TERMINATED BY X'0A' (%s)";
constexpr const char* SQL_INSERT_ROWS = "%s INTO %s(%s) VALUES ";

// Set on a connection's driver when its loads must go as inserts: by AllowLocalLoad, or
// once the server has refused a local load.
constexpr const char* kNoLocalLoad = "calcdata_no_local_load";

// Server errors that say that this connection may not load a local file at all.
bool LocalLoadRefused(const QString& code)
{
    return code == QLatin1String("1148")     // the command is not allowed (local_infile off)
           || code == QLatin1String("4166")  // local infile disabled for this connection
           || code == QLatin1String("2068"); // the client library refuses local files
}

// Whether a text in the local 8-bit encoding goes to the server unchanged, as
// ExecStatement requires of a statement's text.
bool ValidText(const char* p, std::size_t n)
{
    for (std::size_t i = 0; i < n; ++i) {
        if (static_cast<unsigned char>(p[i]) >= 0x80) {
            const QByteArray bytes = QByteArray::fromRawData(p, qsizetype(n));
            return QString::fromLocal8Bit(bytes).toLocal8Bit() == bytes;
        }
    }
    return true;
}

bool Separator(char c)
{
    return c == ',' || c == ' ' || c == '\'' || c == '\t' || c == '\n';
}

// A field's text with the load's escapes: backslash, tab, line feed and NUL.
void AppendEscaped(std::string& out, const char* p, std::size_t n)
{
    std::size_t plain = 0;
    while (plain < n && p[plain] != '\\' && p[plain] != '\t' && p[plain] != '\n' &&
           p[plain] != '\0') {
        ++plain;
    }
    out.append(p, plain); // the common case: all of it
    for (std::size_t i = plain; i < n; ++i) {
        switch (p[i]) {
        case '\\':
            out += "\\\\";
            break;
        case '\t':
            out += "\\t";
            break;
        case '\n':
            out += "\\n";
            break;
        case '\0':
            out += "\\0";
            break;
        default:
            out += p[i];
        }
    }
}

// The rows of a load as the client library asks for them, a buffer at a time.
struct LocalRows
{
    const char* data;
    std::size_t size;
    std::size_t at;
};

int LocalInit(void** state, const char*, void* rows)
{
    static_cast<LocalRows*>(rows)->at = 0;
    *state = rows;
    return 0;
}

int LocalRead(void* state, char* buffer, unsigned int length)
{
    LocalRows* rows = static_cast<LocalRows*>(state);
    const std::size_t n = std::min<std::size_t>(length, rows->size - rows->at);
    std::memcpy(buffer, rows->data + rows->at, n);
    rows->at += n;
    return static_cast<int>(n);
}

void LocalEnd(void*) {}

int LocalError(void*, char* message, unsigned int length)
{
    std::snprintf(message, length, "the rows could not be read");
    return CR_UNKNOWN_ERROR;
}

} // namespace

// ---- BulkFields ----

void BulkFields::AppendFixed(std::string& out, double v, int precision)
{
    char buffer[400];
    const std::to_chars_result r =
        std::to_chars(buffer, buffer + sizeof buffer, v, std::chars_format::fixed, precision);
    if (r.ec == std::errc()) {
        out.append(buffer, r.ptr - buffer);
    } else {
        out += FormatText("%.*f", precision, v).toStdString();
    }
}

QByteArray BulkFields::compose(const char* format, const Value* values, std::size_t count)
{
    thread_local std::string out;
    out.clear();
    std::size_t next = 0;
    for (const char* p = format; *p; ++p) {
        if (*p != '%') {
            m_ok = m_ok && Separator(*p);
            continue;
        }
        ++p;
        while (*p && std::strchr("-+ #0", *p)) {
            ++p;
        }
        while (*p >= '0' && *p <= '9') {
            ++p;
        }
        int precision = 6;
        if (*p == '.') {
            precision = 0;
            for (++p; *p >= '0' && *p <= '9'; ++p) {
                precision = precision * 10 + (*p - '0');
            }
        }
        int longs = 0;
        for (; *p == 'l'; ++p) {
            ++longs;
        }
        if (!*p || next >= count) {
            m_ok = false;
            break;
        }
        const Value& v = values[next++];
        char digits[24];
        switch (*p) {
        case 'd':
        case 'i':
        case 'u': {
            if (v.kind != Value::Int && v.kind != Value::Unsigned) {
                m_ok = false;
                break;
            }
            // As printf reads the argument: an int, or a long with 'l'.
            const bool isUnsigned = *p == 'u';
            const long long n = longs ? v.integer
                                : isUnsigned
                                    ? static_cast<long long>(static_cast<unsigned>(v.integer))
                                    : static_cast<long long>(static_cast<int>(v.integer));
            const std::to_chars_result r = std::to_chars(digits, digits + sizeof digits, n);
            out.append(digits, std::size_t(r.ptr - digits));
            break;
        }
        case 'f':
        case 'F':
            if (v.kind != Value::Real || !std::isfinite(v.real)) {
                m_ok = false; // "inf" or "nan" in a statement is refused; a load would take 0
                break;
            }
            AppendFixed(out, v.real, precision);
            break;
        case 's':
            if (v.kind != Value::Text || !ValidText(v.text, v.length)) {
                m_ok = false;
                break;
            }
            AppendEscaped(out, v.text, v.length);
            break;
        default:
            m_ok = false;
        }
        out += '\t';
    }
    m_ok = m_ok && next == count;
    return QByteArray(out.data(), qsizetype(out.size()));
}

// ---- CBulkLoad ----

CBulkLoad::CBulkLoad(QSqlDatabase* db, const QByteArray& table, const QByteArray& fields)
    : m_db(db), m_table(table), m_fields(fields), m_fieldCount(int(fields.count(',')) + 1)
{}

void CBulkLoad::AddRow(const QByteArray& fields)
{
    if (fields.count('\t') != m_fieldCount || !fields.endsWith('\t')) {
        m_ok = false;
        return;
    }
    m_data.append(fields.constData(), fields.size() - 1);
    m_data.append('\n');
    ++m_rows;
}

void CBulkLoad::AllowLocalLoad(QSqlDatabase* db, bool allow)
{
    db->driver()->setProperty(kNoLocalLoad, !allow);
}

bool CBulkLoad::Load(bool replace)
{
    if (!m_ok) {
        return false;
    }
    if (m_rows == 0) {
        return true;
    }
    if (!m_db->driver()->property(kNoLocalLoad).toBool()) {
        bool refused = false;
        if (LoadLocal(replace, refused)) {
            return true;
        }
        if (!refused) {
            return false;
        }
        m_db->driver()->setProperty(kNoLocalLoad, true);
    }
    return Insert(replace);
}

bool CBulkLoad::LoadLocal(bool replace, bool& refused)
{
    MYSQL* mysql = ClientHandle(m_db);
    unsigned long client = 0, server = 0;
    if (!mysql || mariadb_get_infov(mysql, MARIADB_CONNECTION_CLIENT_CAPABILITIES, &client) ||
        mariadb_get_infov(mysql, MARIADB_CONNECTION_SERVER_CAPABILITIES, &server) ||
        !(client & CLIENT_LOCAL_FILES) || !(server & CLIENT_LOCAL_FILES)) {
        refused = true;
        return false;
    }
    const QByteArray sql =
        FormatText(SQL_LOAD_LOCAL, replace ? "REPLACE " : "", m_table.constData(),
                   mysql_character_set_name(mysql), m_fields.constData());
    LocalRows rows{m_data.constData(), std::size_t(m_data.size()), 0};
    mysql_set_local_infile_handler(mysql, LocalInit, LocalRead, LocalEnd, LocalError, &rows);
    QSqlQuery query(*m_db);
    const bool ok = ExecStatement(query, sql);
    mysql_set_local_infile_default(mysql);
    refused = !ok && LocalLoadRefused(query.lastError().nativeErrorCode());
    return ok;
}

// The rows as multi-row inserts of quoted text, each statement within the server's packet
// limit; more than one statement run as one transaction (a savepoint inside the caller's
// own), so that a refusal changes nothing.
bool CBulkLoad::Insert(bool replace)
{
    QSqlQuery query(*m_db);
    qsizetype limit = 1 << 20;
    if (query.exec(QStringLiteral("SELECT @@max_allowed_packet")) && query.next()) {
        limit = std::clamp<qsizetype>(query.value(0).toLongLong() - 4096, 4096, 8 << 20);
    }
    const QByteArray head = FormatText(SQL_INSERT_ROWS, replace ? "REPLACE" : "INSERT",
                                       m_table.constData(), m_fields.constData());
    std::vector<QByteArray> statements;
    QByteArray sql = head;
    QByteArray value;
    const char* p = m_data.constData();
    const char* end = p + m_data.size();
    while (p < end) {
        QByteArray tuple("(");
        for (;;) {
            value.clear();
            while (*p != '\t' && *p != '\n') {
                if (*p == '\\') {
                    ++p;
                    value.append(*p == 't' ? '\t' : *p == 'n' ? '\n' : *p == '0' ? '\0' : *p);
                } else {
                    value.append(*p);
                }
                ++p;
            }
            tuple += "'" + SqlText(m_db, value) + "'";
            if (*p++ == '\n') {
                break;
            }
            tuple += ",";
        }
        tuple += ")";
        if (sql.size() > head.size() && sql.size() + tuple.size() + 1 > limit) {
            statements.push_back(sql);
            sql = head;
        }
        sql += (sql.size() > head.size() ? "," : "") + tuple;
    }
    statements.push_back(sql);
    if (statements.size() == 1) {
        return ExecStatement(query, statements.front());
    }
    bool known = false;
    const bool inTransaction = InTransaction(m_db, &known);
    query.exec(inTransaction ? QStringLiteral("SAVEPOINT calcdata_bulk")
                             : QStringLiteral("START TRANSACTION"));
    for (const QByteArray& s : statements) {
        if (!ExecStatement(query, s)) {
            query.exec(inTransaction ? QStringLiteral("ROLLBACK TO SAVEPOINT calcdata_bulk")
                                     : QStringLiteral("ROLLBACK"));
            return false;
        }
    }
    return query.exec(inTransaction ? QStringLiteral("RELEASE SAVEPOINT calcdata_bulk")
                                    : QStringLiteral("COMMIT"));
}
