#include "common/SaveBackStatementText.h"

#include <QRegularExpression>
#include <QString>

namespace sbtext {

namespace {

// The first `n` words in their own spelling; a word ends at a blank or an opening
// parenthesis, and the words end at the first parenthesis.
QList<QByteArray> Words(const QByteArray& sql, int n)
{
    QList<QByteArray> words;
    int i = 0;
    const int size = sql.size();
    while (words.size() < n && i < size) {
        while (i < size && QChar::isSpace(uchar(sql[i]))) {
            ++i;
        }
        const int start = i;
        while (i < size && !QChar::isSpace(uchar(sql[i])) && sql[i] != '(') {
            ++i;
        }
        if (i == start) {
            break;
        }
        words.append(sql.mid(start, i - start));
    }
    return words;
}

// Whether word `k` of `words` is `word`, in any case.
bool Is(const QList<QByteArray>& words, int k, const char* word)
{
    return k < words.size() && qstricmp(words[k].constData(), word) == 0;
}

// Calls `at(i)` for each position of `text` outside parentheses and quotes, until it
// returns true; gives that position, or -1. A backslash in a quoted text escapes the next
// character only where the session reads it so (`escapes`: sql_mode without
// NO_BACKSLASH_ESCAPES); there a doubled quote is the one escape, as for the server.
template <typename At> int TopLevel(const QByteArray& text, bool escapes, At at)
{
    int depth = 0;
    char quote = 0;
    for (int i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (quote) {
            if (c == '\\' && escapes) {
                ++i;
            } else if (c == quote) {
                quote = 0;
            }
        } else if (c == '\'' || c == '"' || c == '`') {
            quote = c;
        } else if (c == '(') {
            ++depth;
        } else if (c == ')') {
            --depth;
        } else if (depth == 0 && at(i)) {
            return i;
        }
    }
    return -1;
}

// The items of a list: its commas outside parentheses and quotes, plus one.
int Items(const QByteArray& text, bool escapes)
{
    int items = 1;
    TopLevel(text, escapes, [&](int i) {
        items += text[i] == ',';
        return false;
    });
    return items;
}

// Where a word starts in `text` outside parentheses and quotes, or -1.
int TopLevelWord(const QByteArray& text, const char* word, bool escapes)
{
    const QByteArray lower = text.toLower();
    const int length = int(qstrlen(word));
    auto letter = [&](int i) {
        return i >= 0 && i < lower.size() && QChar::isLetterOrNumber(uchar(lower[i]));
    };
    return TopLevel(lower, escapes, [&](int i) {
        return lower.mid(i, length) == word && !letter(i - 1) && !letter(i + length);
    });
}

} // namespace

bool EndsTransaction(const QByteArray& sql)
{
    const QList<QByteArray> w = Words(sql, 2);
    if (w.isEmpty()) {
        return false;
    }
    const QByteArray first = w[0].toLower();
    const QByteArray second = w.size() > 1 ? w[1].toLower() : QByteArray();
    if (first == "create" || first == "drop") {
        // CREATE/DROP TEMPORARY TABLE keep the transaction; everything else of the kind
        // (tables, indexes, views, routines) ends it, a plain DROP TABLE of a temporary
        // table too.
        return second != "temporary";
    }
    if (first == "start") {
        return second == "transaction" || second == "slave" || second == "replica";
    }
    if (first == "load") {
        return second == "index";
    }
    if (first == "set") {
        return second == "password" || second.startsWith("autocommit") ||
               second.startsWith("@@autocommit");
    }
    static const char* const ending[] = {"alter",  "analyze",  "begin", "cache",  "change",
                                         "check",  "flush",    "grant", "lock",   "optimize",
                                         "rename", "repair",   "reset", "revoke", "shutdown",
                                         "stop",   "truncate", "unlock"};
    for (const char* e : ending) {
        if (first == e) {
            return true;
        }
    }
    return false;
}

bool CreatedTable(const QByteArray& sql, QByteArray& table, bool& temporary)
{
    const QList<QByteArray> w = Words(sql, 4);
    if (!Is(w, 0, "create")) {
        return false;
    }
    temporary = Is(w, 1, "temporary");
    const int at = temporary ? 2 : 1;
    if (!Is(w, at, "table")) {
        return false;
    }
    table = w.value(at + 1);
    return !table.isEmpty();
}

bool DroppedTable(const QByteArray& sql, QByteArray& table)
{
    const QList<QByteArray> w = Words(sql, 6);
    int at = 0;
    if (!Is(w, at++, "drop")) {
        return false;
    }
    if (Is(w, at, "temporary")) {
        ++at;
    }
    if (!Is(w, at++, "table")) {
        return false;
    }
    if (Is(w, at, "if") && Is(w, at + 1, "exists")) {
        at += 2;
    }
    table = w.value(at);
    return !table.isEmpty();
}

bool WrittenTable(const QByteArray& sql, QByteArray& table)
{
    const QList<QByteArray> w = Words(sql, 3);
    if (Is(w, 0, "insert") && Is(w, 1, "into")) {
        table = w.value(2);
    } else if (Is(w, 0, "update")) {
        table = w.value(1);
    } else {
        return false;
    }
    return !table.isEmpty();
}

bool SameTable(const QByteArray& a, const QByteArray& b)
{
    return a.toLower() == b.toLower();
}

bool ParseInsert(const QByteArray& sql, Insert& out, bool escapes)
{
    static const QRegularExpression head(QStringLiteral("^\\s*insert\\s+into\\s+([^\\s(]+)\\s*\\("),
                                         QRegularExpression::CaseInsensitiveOption);
    const QString text = QString::fromLocal8Bit(sql);
    const QRegularExpressionMatch m = head.match(text);
    if (!m.hasMatch()) {
        return false;
    }
    const int open = m.capturedEnd(0);
    const int close = text.indexOf(QLatin1Char(')'), open);
    if (close < 0) {
        return false;
    }
    out.table = m.captured(1).toLocal8Bit();
    out.columns.clear();
    for (const QString& c : text.mid(open, close - open).split(QLatin1Char(','))) {
        out.columns.append(c.trimmed().toLocal8Bit());
    }
    const QByteArray rest = text.mid(close + 1).trimmed().toLocal8Bit();
    const QByteArray lower = rest.toLower();
    if (lower.startsWith("select")) {
        out.select = rest;
        const int from = TopLevelWord(rest, "from", escapes);
        out.values = Items(rest.mid(6, from < 0 ? -1 : from - 6), escapes);
        return true;
    }
    if (lower.startsWith("values")) {
        const int first = rest.indexOf('(');
        const int last = rest.lastIndexOf(')');
        if (first < 0 || last <= first) {
            return false;
        }
        const QByteArray values = rest.mid(first + 1, last - first - 1);
        out.select = "select " + values;
        out.values = Items(values, escapes);
        return true;
    }
    return false;
}

bool ParseUpdate(const QByteArray& sql, Update& out)
{
    static const QRegularExpression shape(
        QStringLiteral(
            "^\\s*update\\s+(\\S+)\\s+a\\s*,\\s*(\\S+)\\s+b\\s+set\\s+(.*)\\s+where\\s+(.*)$"),
        QRegularExpression::CaseInsensitiveOption | QRegularExpression::DotMatchesEverythingOption);
    static const QRegularExpression assignment(
        QStringLiteral("(?:\\ba\\.)?\\b(\\w+)\\s*=\\s*b\\.(\\w+)"));
    const QRegularExpressionMatch m = shape.match(QString::fromLocal8Bit(sql));
    if (!m.hasMatch()) {
        return false;
    }
    out.table = m.captured(1).toLocal8Bit();
    out.temp = m.captured(2).toLocal8Bit();
    out.where = m.captured(4).trimmed().toLocal8Bit();
    out.assignments.clear();
    auto it = assignment.globalMatch(m.captured(3));
    while (it.hasNext()) {
        const QRegularExpressionMatch a = it.next();
        out.assignments.append({a.captured(1).toLocal8Bit(), a.captured(2).toLocal8Bit()});
    }
    return !out.assignments.isEmpty();
}

} // namespace sbtext
