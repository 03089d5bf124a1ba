#pragma once
// The batched write mode: a family's rows go to the server in bulk, at the speed at which
// it takes rows, instead of one statement per record or per hundred rows.
//
// The mode is a choice of the caller, off by default beside the mended statement mode:
// the transfers that write record by record (the update back of a load-flow job and the
// results into the result tables) take it through their SetWriteMode. A batched family
// leaves its tables exactly as its statements would, value for value; where a family's
// rows cannot go in bulk as the statements would carry them (a number that is not finite,
// a text that is not valid in the local encoding) or where the server refuses the bulk
// load, the family runs its statements instead, from its first record, so that what it
// leaves, shows and returns is the statements' own.
//
// BulkFields composes a row's fields from the same printf-style templates the statements
// use, each value as the template's conversion gives it (the digits of "%f" are those of
// printf, under the C locale); CBulkLoad sends the rows: a LOAD DATA LOCAL INFILE fed from
// memory where the connection allows it, else multi-row inserts of the values as quoted
// text, which the server converts as it converts the values of a load.

#include "common/Feedback.h"

#include <QByteArray>
#include <array>
#include <cstddef>
#include <string>
#include <type_traits>

class QSqlDatabase;

enum class RecordWriteMode {
    PerRecord, // the design's statements: one per record, or batches of the design's size
    Batched,   // each family in bulk: one load, then one statement per statement shape
};

// The fields of one row for CBulkLoad, each followed by a tab. Called like FormatText with
// a row template: every conversion (%d, %u, %f with its width and precision, %s) becomes
// one field; the template's commas, blanks and quotes only separate values and are
// dropped. Anything a bulk load cannot carry as the statement would (a number that is not
// finite, a text not valid in the local encoding, a template with other text or
// conversions) clears ok(), and the row must go the statements' way.
class BulkFields
{
public:
    template <class... Args> QByteArray operator()(const char* format, const Args&... args)
    {
        const std::array<Value, sizeof...(Args)> values{{Value::of(args)...}};
        return compose(format, values.data(), values.size());
    }
    bool ok() const { return m_ok; }
    // A text value as the row takes it: as it stands (the load escapes it).
    static const char* text(const char* s) { return s; }
    static const QByteArray& text(const QByteArray& s) { return s; }

    // One value. Integers are kept as printf's %d and %u take them.
    struct Value
    {
        enum Kind { Int, Unsigned, Real, Text } kind = Int;
        long long integer = 0;
        double real = 0;
        const char* text = nullptr;
        std::size_t length = 0;

        static Value of(const QByteArray& v)
        {
            return textValue(v.constData(), std::size_t(v.size()));
        }
        static Value of(const char* v)
        {
            return textValue(v ? v : "", v ? std::char_traits<char>::length(v) : 0);
        }
        static Value of(char* v) { return of(static_cast<const char*>(v)); }
        template <class T, std::enable_if_t<std::is_arithmetic_v<T>, int> = 0> static Value of(T v)
        {
            Value x;
            if constexpr (std::is_floating_point_v<T>) {
                x.kind = Real;
                x.real = static_cast<double>(v);
            } else if constexpr (std::is_unsigned_v<T>) {
                x.kind = Unsigned;
                x.integer = static_cast<long long>(v);
            } else {
                x.integer = static_cast<long long>(v);
            }
            return x;
        }
        static Value textValue(const char* p, std::size_t n)
        {
            Value x;
            x.kind = Text;
            x.text = p;
            x.length = n;
            return x;
        }
    };

    // printf's "%.*f" of `v` (finite), appended to `out`: the same digits, without a width.
    static void AppendFixed(std::string& out, double v, int precision);

private:
    QByteArray compose(const char* format, const Value* values, std::size_t count);
    bool m_ok = true;
};

// The same row templates composed as the statements hold them: FormatText, each text as
// SqlText gives it. The statements' way of a family that BulkFields serves in bulk.
class StatementRow
{
public:
    explicit StatementRow(QSqlDatabase* db) : m_db(db) {}
    template <class... Args> QByteArray operator()(const char* format, const Args&... args) const
    {
        return FormatText(format, pass(args)...);
    }
    QByteArray text(const char* s) const { return SqlText(m_db, s); }
    QByteArray text(const QByteArray& s) const { return SqlText(m_db, s); }

private:
    static const char* pass(const QByteArray& v) { return v.constData(); }
    template <class T> static T pass(T v) { return v; }
    QSqlDatabase* m_db;
};

class CBulkLoad
{
public:
    // Rows for `table`, into the columns of `fields` (comma-separated, as the statements
    // write them).
    CBulkLoad(QSqlDatabase* db, const QByteArray& table, const QByteArray& fields);

    // One row, as BulkFields composes it. A row with another number of fields than the
    // column list clears ok(), as BulkFields does for what it cannot carry.
    void AddRow(const QByteArray& fields);
    bool ok() const { return m_ok; }
    int RowCount() const { return m_rows; }

    // Whether loads on the connection of `db` may go as LOAD DATA LOCAL (the default where
    // client and server allow it); a host whose server must not read local files turns it
    // off, and a server's refusal turns it off by itself. Off, rows go as inserts.
    static void AllowLocalLoad(QSqlDatabase* db, bool allow);

    // Sends the rows taken, in their order; true also when there are none. With `replace`,
    // a row whose unique key stands already, or came earlier in the load, replaces that
    // row: the last row of a key wins. False when the server refused the load, which then
    // changed nothing on a transactional table; nothing is shown.
    bool Load(bool replace = false);

private:
    bool LoadLocal(bool replace, bool& refused);
    bool Insert(bool replace);

    QSqlDatabase* m_db;
    QByteArray m_table;
    QByteArray m_fields;
    int m_fieldCount;
    QByteArray m_data; // the rows, fields separated by tabs, each row ended by a line feed
    int m_rows = 0;
    bool m_ok = true;
};
