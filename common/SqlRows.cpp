#include "common/SqlRows.h"

#include "common/Session.h"

#include <QSqlQuery>
#include <QSqlResult>
#include <QString>
#include <charconv>
#include <cmath>
#include <cstring>
#include <mysql.h>

namespace {

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

// The server's plain form of an integer: an optional minus and digits.
bool plainInteger(const char* p, std::size_t n)
{
    std::size_t i = (n > 0 && p[0] == '-') ? 1 : 0;
    if (i == n) {
        return false;
    }
    for (; i < n; ++i) {
        if (!isDigit(p[i])) {
            return false;
        }
    }
    return true;
}

// The server's plain form of a real: an optional minus, digits, optionally a point and
// digits, optionally e or E, an optional sign and digits.
bool plainReal(const char* p, std::size_t n)
{
    std::size_t i = (n > 0 && p[0] == '-') ? 1 : 0;
    const std::size_t digits = i;
    while (i < n && isDigit(p[i])) {
        ++i;
    }
    if (i == digits) {
        return false;
    }
    if (i < n && p[i] == '.') {
        const std::size_t fraction = ++i;
        while (i < n && isDigit(p[i])) {
            ++i;
        }
        if (i == fraction) {
            return false;
        }
    }
    if (i < n && (p[i] == 'e' || p[i] == 'E')) {
        ++i;
        if (i < n && (p[i] == '-' || p[i] == '+')) {
            ++i;
        }
        const std::size_t exponent = i;
        while (i < n && isDigit(p[i])) {
            ++i;
        }
        if (i == exponent) {
            return false;
        }
    }
    return i == n;
}

bool ascii(const char* p, std::size_t n)
{
    for (std::size_t i = 0; i < n; ++i) {
        if (static_cast<unsigned char>(p[i]) >= 0x80) {
            return false;
        }
    }
    return true;
}

// What Qt's driver gives for the text of an INT column: QString::toInt() of it.
int parseSigned(const char* p, std::size_t n)
{
    int v = 0;
    if (plainInteger(p, n)) {
        auto r = std::from_chars(p, p + n, v);
        if (r.ec == std::errc() && r.ptr == p + n) {
            return v;
        }
    }
    return QString::fromUtf8(p, static_cast<qsizetype>(n)).toInt();
}

unsigned int parseUnsigned(const char* p, std::size_t n)
{
    unsigned int v = 0;
    if (n > 0 && p[0] != '-' && plainInteger(p, n)) {
        auto r = std::from_chars(p, p + n, v);
        if (r.ec == std::errc() && r.ptr == p + n) {
            return v;
        }
    }
    return QString::fromUtf8(p, static_cast<qsizetype>(n)).toUInt();
}

// What Qt's driver gives for the text of a DOUBLE column: QString::toDouble(&ok), and no
// value at all when that fails. from_chars rounds correctly, as Qt's parser does; the
// forms it is given here are the ones both read alike, and a result that overflows or
// comes out as zero from non-zero digits is left to Qt, which refuses it.
bool parseReal(const char* p, std::size_t n, double& out)
{
    if (plainReal(p, n)) {
        double v = 0;
        auto r = std::from_chars(p, p + n, v);
        if (r.ec == std::errc() && r.ptr == p + n && std::isfinite(v)) {
            bool zeroDigits = true;
            for (std::size_t i = 0; v == 0 && i < n && p[i] != 'e' && p[i] != 'E'; ++i) {
                zeroDigits = zeroDigits && !(p[i] >= '1' && p[i] <= '9');
            }
            if (v != 0 || zeroDigits) {
                out = v;
                return true;
            }
        }
    }
    bool ok = false;
    out = QString::fromUtf8(p, static_cast<qsizetype>(n)).toDouble(&ok);
    return ok;
}

} // namespace

bool CSqlRows::exec(QSqlQuery& q, const QString& sql)
{
    m_query = &q;
    m_result = nullptr;
    m_row = nullptr;
    m_lengths = nullptr;
    m_kinds.clear();
    q.setForwardOnly(true);
    if (!q.exec(InTableSpelling(sql))) {
        return false;
    }
    // A plain query's handle is its MYSQL_RES, read from the server in full. Numbers are
    // read directly only under the driver's default policy, which gives them as doubles.
    const QVariant handle = q.result() ? q.result()->handle() : QVariant();
    const char* type = handle.isValid() ? handle.typeName() : nullptr;
    if (!q.isSelect() || !type ||
        (qstrcmp(type, "MYSQL_RES*") != 0 && qstrcmp(type, "st_mysql_res*") != 0)) {
        return true;
    }
    MYSQL_RES* result = *static_cast<MYSQL_RES* const*>(handle.constData());
    if (!result) {
        return true;
    }
    const unsigned int columns = mysql_num_fields(result);
    for (unsigned int i = 0; i < columns; ++i) {
        const MYSQL_FIELD* f = mysql_fetch_field_direct(result, i);
        switch (f->type) {
        case MYSQL_TYPE_LONG:
            m_kinds.push_back((f->flags & UNSIGNED_FLAG) ? Unsigned : Signed);
            break;
        case MYSQL_TYPE_DOUBLE:
        case MYSQL_TYPE_FLOAT:
        case MYSQL_TYPE_DECIMAL:
        case MYSQL_TYPE_NEWDECIMAL:
            if (q.numericalPrecisionPolicy() != QSql::LowPrecisionDouble) {
                m_kinds.clear();
                return true;
            }
            m_kinds.push_back(Real);
            break;
        case MYSQL_TYPE_STRING:
        case MYSQL_TYPE_VAR_STRING:
            m_kinds.push_back((f->flags & BINARY_FLAG) ? Bytes : Text);
            break;
        default:
            m_kinds.clear(); // a type read here only through Qt: the whole result goes that way
            return true;
        }
    }
    m_result = result;
    return true;
}

bool CSqlRows::next()
{
    if (!m_result) {
        return m_query && m_query->next();
    }
    MYSQL_RES* result = static_cast<MYSQL_RES*>(m_result);
    m_row = mysql_fetch_row(result);
    if (!m_row) {
        return false;
    }
    m_lengths = mysql_fetch_lengths(result);
    return true;
}

const char* CSqlRows::raw(int column, std::size_t& length) const
{
    if (!m_row) { // not on a row: nothing, as Qt gives nothing there
        length = 0;
        return nullptr;
    }
    length = m_lengths[column];
    return m_row[column];
}

QVariant CSqlRows::value(int column) const
{
    if (!m_result) {
        return m_query->value(column);
    }
    if (column < 0 || static_cast<std::size_t>(column) >= m_kinds.size()) {
        return QVariant();
    }
    std::size_t n = 0;
    const char* p = raw(column, n);
    const Kind kind = m_kinds[static_cast<std::size_t>(column)];
    if (!p) {
        // A NULL: an empty value of the column's type.
        switch (kind) {
        case Signed:
            return QVariant(QMetaType(QMetaType::Int));
        case Unsigned:
            return QVariant(QMetaType(QMetaType::UInt));
        case Real:
            return QVariant(QMetaType(QMetaType::Double));
        case Bytes:
            return QVariant(QMetaType(QMetaType::QByteArray));
        case Text:
            return QVariant(QMetaType(QMetaType::QString));
        }
    }
    switch (kind) {
    case Signed:
        return QVariant(parseSigned(p, n));
    case Unsigned:
        return QVariant(parseUnsigned(p, n));
    case Real: {
        double d = 0;
        return parseReal(p, n, d) ? QVariant(d) : QVariant();
    }
    case Bytes:
        return QVariant(QByteArray(p, static_cast<qsizetype>(n)));
    case Text:
        return QVariant(QString::fromUtf8(p, static_cast<qsizetype>(n)));
    }
    return QVariant();
}

double CSqlRows::toDouble(int column) const
{
    if (m_result && column >= 0 && static_cast<std::size_t>(column) < m_kinds.size()) {
        std::size_t n = 0;
        const char* p = raw(column, n);
        switch (m_kinds[static_cast<std::size_t>(column)]) {
        case Real: {
            double d = 0;
            return p && parseReal(p, n, d) ? d : 0.0;
        }
        case Signed:
            return p ? parseSigned(p, n) : 0.0;
        case Unsigned:
            return p ? parseUnsigned(p, n) : 0.0;
        default:
            break;
        }
    }
    return value(column).toDouble();
}

// An INT column read as T (int or unsigned int). QVariant converts between the two by the
// two's complement, as a cast does. False when the column is not an INT read directly.
template <class T> bool CSqlRows::integer(int column, T& out) const
{
    if (!m_result || column < 0 || static_cast<std::size_t>(column) >= m_kinds.size()) {
        return false;
    }
    const Kind kind = m_kinds[static_cast<std::size_t>(column)];
    if (kind != Signed && kind != Unsigned) {
        return false;
    }
    std::size_t n = 0;
    const char* p = raw(column, n);
    out = !p ? T(0)
             : (kind == Signed ? static_cast<T>(parseSigned(p, n))
                               : static_cast<T>(parseUnsigned(p, n)));
    return true;
}

int CSqlRows::toInt(int column) const
{
    int v = 0;
    return integer(column, v) ? v : value(column).toInt();
}

unsigned int CSqlRows::toUInt(int column) const
{
    unsigned int v = 0;
    return integer(column, v) ? v : value(column).toUInt();
}

QByteArray CSqlRows::toLocal8Bit(int column) const
{
    if (m_result && column >= 0 && static_cast<std::size_t>(column) < m_kinds.size()) {
        const Kind kind = m_kinds[static_cast<std::size_t>(column)];
        if (kind == Bytes || kind == Text) {
            std::size_t n = 0;
            const char* p = raw(column, n);
            if (!p) {
                return QByteArray();
            }
            if (ascii(p, n)) {
                return QByteArray(p, static_cast<qsizetype>(n)); // UTF-8 there and back
            }
            return QString::fromUtf8(p, static_cast<qsizetype>(n)).toLocal8Bit();
        }
    }
    return value(column).toString().toLocal8Bit();
}
