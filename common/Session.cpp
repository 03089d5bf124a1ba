#include "common/Session.h"

#include "common/Feedback.h"

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>
#include <algorithm>
#include <atomic>
#include <cctype>
#include <cstring>
#include <mysql.h>

namespace {

// Modes under which the statements fail or mean something else, and the combined modes
// that hold one of them. A mode the server does not know is not in its list and costs
// nothing here.
const char* const kRefusedModes[] = {
    "STRICT_TRANS_TABLES",     // a value cut to its column, or left to its default, fails
    "STRICT_ALL_TABLES",       //   the same on every engine
    "TRADITIONAL",             //   holds both
    "ONLY_FULL_GROUP_BY",      // the save-back groups new buses, stations and zones by one column
    "ANSI",                    //   holds it on MySQL
    "EMPTY_STRING_IS_NULL",    // an empty text the library writes is a value of its own
    "PAD_CHAR_TO_FULL_LENGTH", // names come back padded to their CHAR(20) width
    "SIMULTANEOUS_ASSIGNMENT", // the multi-column updates assign left to right
    "ORACLE",                  // the statements and the schema's procedures are MySQL's dialect
    "MSSQL",
    "DB2",
    "MAXDB",
    "POSTGRESQL",
};

bool isRefused(const QString& mode)
{
    for (const char* refused : kRefusedModes) {
        if (mode.compare(QLatin1String(refused), Qt::CaseInsensitive) == 0) {
            return true;
        }
    }
    return false;
}

bool isUtf8(const QString& charset)
{
    return charset.startsWith(QLatin1String("utf8"), Qt::CaseInsensitive);
}

std::atomic<TableSpelling> g_spelling{TableSpelling::AsWritten};

// The tables that statements name in another spelling, and the schema's spelling. A name
// ending in '_' stands for the job table of any job number: the digits follow it.
struct OtherSpelling
{
    const char* written;
    const char* schema;
};
const OtherSpelling kOtherSpellings[] = {
    {"CDB_NodeBAK", "CDB_NODEBAK"},
    {"T3w", "T3W"},
    {"s4_", "S4_"},
};

bool isWordByte(char c)
{
    return std::isalnum(static_cast<unsigned char>(c)) || c == '_' || c == '$' ||
           static_cast<unsigned char>(c) >= 0x80;
}

} // namespace

QString LibrarySqlMode(const QString& sqlMode)
{
    QStringList kept;
    for (const QString& mode : sqlMode.split(QLatin1Char(','), Qt::SkipEmptyParts)) {
        if (!isRefused(mode.trimmed())) {
            kept << mode.trimmed();
        }
    }
    return kept.join(QLatin1Char(','));
}

SessionSetup SetUpSession(QSqlDatabase* db)
{
    SessionSetup s;
    if (!db || !db->isOpen()) {
        s.problems << QStringLiteral("the connection is not open");
        return s;
    }
    QSqlQuery q(*db);
    if (!q.exec(QStringLiteral("SELECT @@SESSION.sql_mode, @@lower_case_table_names, "
                               "@@character_set_client, @@character_set_connection, "
                               "@@character_set_results, @@default_storage_engine")) ||
        !q.next()) {
        s.problems << QStringLiteral("the session's settings cannot be read: %1")
                          .arg(q.lastError().text());
        return s;
    }
    const QString mode = q.value(0).toString();
    s.lowerCaseTableNames = q.value(1).toInt();
    const bool utf8 = isUtf8(q.value(2).toString()) && isUtf8(q.value(3).toString()) &&
                      isUtf8(q.value(4).toString());
    const QString charset = q.value(2).toString();
    const QString engine = q.value(5).toString();

    // Each setting: what was there, the statement that sets the library's value, and the
    // value, for the line that says what changed or could not be changed.
    auto set = [&](const char* what, const QString& from, const QString& sql, const QString& to) {
        if (q.exec(sql)) {
            s.changes << QStringLiteral("%1: %2 -> %3").arg(QLatin1String(what), from, to);
        } else {
            s.problems << QStringLiteral("the session's %1 %2 cannot be set to %3: %4")
                              .arg(QLatin1String(what), from, to, q.lastError().text());
        }
    };
    const QString wanted = LibrarySqlMode(mode);
    if (wanted != mode) {
        set("sql_mode", "'" + mode + "'", QStringLiteral("SET SESSION sql_mode='%1'").arg(wanted),
            "'" + wanted + "'");
    }
    if (!utf8) {
        // Qt's driver reads every reply as UTF-8 and the library sends UTF-8.
        set("character set", charset, QStringLiteral("SET NAMES utf8mb4"),
            QStringLiteral("utf8mb4"));
    }
    if (engine.compare(QLatin1String("InnoDB"), Qt::CaseInsensitive) != 0) {
        set("default_storage_engine", engine,
            QStringLiteral("SET SESSION default_storage_engine=InnoDB"), QStringLiteral("InnoDB"));
    }
    if (s.lowerCaseTableNames == 0 && GetTableSpelling() == TableSpelling::AsWritten) {
        s.problems << QStringLiteral(
            "lower_case_table_names is 0, and some statements name a table in a spelling of "
            "their own (CDB_NodeBAK for CDB_NODEBAK): turn on the schema's spelling "
            "(SetTableSpelling(TableSpelling::Schema)), or run the server with "
            "lower_case_table_names=1, which is fixed when its data directory is made");
    }
    // A Galera node says whether it takes statements; a server without Galera (MySQL, or
    // MariaDB with wsrep off) has no such variable or has it off.
    if (q.exec(QStringLiteral("SHOW VARIABLES LIKE 'wsrep_on'")) && q.next() &&
        q.value(1).toString().compare(QLatin1String("ON"), Qt::CaseInsensitive) == 0) {
        s.galera = true;
        if (q.exec(QStringLiteral("SHOW STATUS LIKE 'wsrep_ready'")) && q.next() &&
            q.value(1).toString().compare(QLatin1String("ON"), Qt::CaseInsensitive) != 0) {
            s.problems << QStringLiteral(
                "this node of a Galera cluster takes no statements (wsrep_ready is OFF): it "
                "is not part of the cluster's primary component; connect to a node that is");
        }
    }
    return s;
}

bool InTransaction(QSqlDatabase* db, bool* known)
{
    unsigned int status = 0;
    *known = ServerStatus(db, &status);
    return *known && (status & SERVER_STATUS_IN_TRANS) != 0;
}

void SetTableSpelling(TableSpelling spelling)
{
    g_spelling = spelling;
}

TableSpelling GetTableSpelling()
{
    return g_spelling;
}

QByteArray InTableSpelling(const QByteArray& sql)
{
    if (g_spelling == TableSpelling::AsWritten ||
        std::none_of(std::begin(kOtherSpellings), std::end(kOtherSpellings),
                     [&](const OtherSpelling& o) { return sql.contains(o.written); })) {
        return sql;
    }
    QByteArray out;
    out.reserve(sql.size());
    const char* p = sql.constData();
    const char* end = p + sql.size();
    char quote = 0;
    while (p != end) {
        const char c = *p;
        if (quote) {
            // Inside a literal or a quoted name; a doubled quote, or an escaped character of
            // a literal, stays inside.
            out.append(c);
            if ((c == '\\' && quote == '\'') || (c == quote && p + 1 != end && p[1] == quote)) {
                if (p + 1 != end) {
                    out.append(p[1]);
                    ++p;
                }
            } else if (c == quote) {
                quote = 0;
            }
            ++p;
            continue;
        }
        if (!isWordByte(c)) {
            if (c == '\'' || c == '"' || c == '`') {
                quote = c;
            }
            out.append(c);
            ++p;
            continue;
        }
        const char* word = p;
        while (p != end && isWordByte(*p)) {
            ++p;
        }
        const size_t n = size_t(p - word);
        const OtherSpelling* other = nullptr;
        for (const OtherSpelling& o : kOtherSpellings) {
            const size_t len = std::strlen(o.written);
            const bool match =
                o.written[len - 1] == '_'
                    ? n > len && std::memcmp(word, o.written, len) == 0 &&
                          std::all_of(word + len, p, [](char d) { return d >= '0' && d <= '9'; })
                    : n == len && std::memcmp(word, o.written, len) == 0;
            if (match) {
                other = &o;
                break;
            }
        }
        if (other) {
            const size_t len = std::strlen(other->written);
            out.append(other->schema);
            out.append(word + len, qsizetype(n - len));
        } else {
            out.append(word, qsizetype(n));
        }
    }
    return out;
}

QString InTableSpelling(const QString& sql)
{
    if (g_spelling == TableSpelling::AsWritten) {
        return sql;
    }
    return QString::fromUtf8(InTableSpelling(sql.toUtf8()));
}
