#pragma once
// The rows of a SELECT, walked once, forward only, each value given exactly as the library
// has always taken it from Qt: QVariant's toDouble(), toInt() and toUInt() of
// QSqlQuery::value(), and toString().toLocal8Bit() for text.
//
// Qt's MySQL driver turns every value into a QString and, for a number column, parses that
// text with Qt's locale-aware number parser (over a thousand instructions a value); the
// import transfers spend most of their time there. Where the driver hands over its result
// (QSqlResult::handle(): the MYSQL_RES of a plain query, which the driver has read from the
// server in full), the rows are read from it directly and each value is converted from the
// server's text once: numbers in the server's own plain form by std::from_chars, which
// rounds exactly as Qt's parser does, plain ASCII text byte for byte. Anything else, a
// number in another form, text that is not ASCII, a column of a type not listed here,
// another driver or another precision policy, goes the way Qt goes, so that the values are
// the same in every case.

#include <QByteArray>
#include <QVariant>
#include <vector>

class QSqlQuery;
class QString;

class CSqlRows
{
public:
    // Runs `sql` on `q`, forward only; false when the server refused it. The rows stay
    // good while `q` runs nothing else.
    bool exec(QSqlQuery& q, const QString& sql);
    // Moves to the next row; false after the last.
    bool next();

    // q.value(column).toDouble(), .toInt(), .toUInt(), .toString().toLocal8Bit().
    double toDouble(int column) const;
    int toInt(int column) const;
    unsigned int toUInt(int column) const;
    QByteArray toLocal8Bit(int column) const;
    // q.value(column): the value as the driver gives it.
    QVariant value(int column) const;

    // Whether the rows are read from the driver's result directly (for tests).
    bool readsDirectly() const { return m_result != nullptr; }

private:
    // How the driver types a column, for the kinds read directly: INT (signed or not),
    // DOUBLE, FLOAT and DECIMAL, CHAR and VARCHAR (BINARY or not).
    enum Kind { Signed, Unsigned, Real, Bytes, Text };
    // The server's text of a value; null for NULL.
    const char* raw(int column, std::size_t& length) const;
    template <class T> bool integer(int column, T& out) const;

    QSqlQuery* m_query = nullptr;
    void* m_result = nullptr; // the driver's MYSQL_RES
    char** m_row = nullptr;
    unsigned long* m_lengths = nullptr;
    std::vector<Kind> m_kinds;
};
