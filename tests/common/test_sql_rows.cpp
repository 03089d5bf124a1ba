// CSqlRows against QSqlQuery::value(): every value of every kind of column, read both
// ways from the same SELECT, must come out the same (doubles bit for bit); and the
// truncating read of an integer that both feed.

#include "DbTest.h"
#include "common/RowValues.h"
#include "common/SqlRows.h"

#include <QSqlQuery>
#include <QSqlRecord>
#include <climits>
#include <cmath>
#include <cstring>
#include <random>

using testsupport::DbTest;

class SqlRows : public DbTest
{
protected:
    // Reads `sql` with QSqlQuery and with CSqlRows and compares every value, each way
    // the library reads one. Returns the number of rows; `direct` tells whether CSqlRows
    // read the driver's result itself.
    static int Compare(const QString& sql, bool& direct)
    {
        QSqlQuery plain(*db());
        plain.setForwardOnly(true);
        EXPECT_TRUE(plain.exec(sql)) << sql.toStdString();
        QSqlQuery q(*db());
        CSqlRows rows;
        EXPECT_TRUE(rows.exec(q, sql));
        direct = rows.readsDirectly();
        const auto bits = [](double d) {
            std::uint64_t b;
            std::memcpy(&b, &d, sizeof b);
            return b;
        };
        int n = 0;
        while (plain.next()) {
            EXPECT_TRUE(rows.next()) << "row " << n;
            for (int c = 0; c < q.record().count(); ++c) {
                const QVariant v = plain.value(c);
                const std::string at = "row " + std::to_string(n) + " column " + std::to_string(c) +
                                       " value " + v.toString().toStdString();
                EXPECT_EQ(bits(rows.toDouble(c)), bits(v.toDouble())) << at;
                EXPECT_EQ(rows.toInt(c), v.toInt()) << at;
                EXPECT_EQ(rows.toUInt(c), v.toUInt()) << at;
                EXPECT_EQ(rows.toLocal8Bit(c), v.toString().toLocal8Bit()) << at;
                const QVariant w = rows.value(c);
                EXPECT_EQ(w.metaType(), v.metaType()) << at; // and so whether it is valid
                EXPECT_EQ(w.isNull(), v.isNull()) << at;
            }
            ++n;
        }
        EXPECT_FALSE(rows.next()) << "as many rows as Qt gives";
        return n;
    }
};

TEST_F(SqlRows, EveryValueAsQtGivesIt)
{
    Exec("CREATE TABLE kinds (d DOUBLE, f FLOAT, m DECIMAL(20,6), i INT, u INT UNSIGNED, "
         "b CHAR(20) BINARY, t CHAR(20), v VARCHAR(40))");
    // Doubles into ints, rounding both ways, the extremes, zeros of both signs, a value
    // below the normal range, and NULLs in every column.
    const char* fixed[] = {
        "12.7, 12.7, 12.7, 3, 3, 'L1', 'L1', 'L1'",
        "-12.5, -12.5, -12.5, -2147483648, 4294967295, '', '', ''",
        "12.5, 0.1, 0.000001, 2147483647, 0, 'O''Brien %_', ' x ', 'tab\\there'",
        "-0.0, -0.0, -0.0, -1, 1, '线路一_ac', '母线', '实时数据库'",
        "4.9e-324, 1e-30, 99999999999999.999999, 0, 7, x'FF41C3', 'é', x'E282AC'",
        "1.7976931348623157e308, 3.4e38, -99999999999999.999999, 1, 2, 'A\\0B', 'a', 'b'",
        "2.2250738585072014e-308, 1, 0, 1, 2, 'abcdefghijklmnopqrst', 'abcdefghijklmnopqrst', 'x'",
        "1e22, 1e23, 123.456, 5, 5, '12', '13.5', '-7'",
        "123456789012345678, 0.5, 0.5, 5, 5, '1e3', 'nan', 'inf'",
        "NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL",
    };
    for (const char* row : fixed) {
        Exec(QString("INSERT INTO kinds VALUES (%1)").arg(row));
    }
    // Doubles from random bit patterns, and reals of a few digits; 17 digits give a double
    // back exactly.
    const auto real = [](double x) { return QString::number(x, 'g', 17); };
    std::mt19937_64 rnd(4711);
    QString values;
    for (int i = 0; i < 3000; ++i) {
        double d;
        do {
            const std::uint64_t b = rnd();
            std::memcpy(&d, &b, sizeof d);
        } while (!std::isfinite(d));
        const double small =
            static_cast<double>(static_cast<int>(rnd() % 2000001) - 1000000) / 1000.0;
        values +=
            QString("%1(%2, %3, %4, %5, %6, 'r', 'r', 'r')")
                .arg(values.isEmpty() ? "" : ",")
                .arg(real(d), real(small), real(small), QString::number(static_cast<int>(small)),
                     QString::number(static_cast<unsigned>(rnd() % 4000000000u)));
    }
    Exec("INSERT INTO kinds VALUES " + values);

    bool direct = false;
    EXPECT_EQ(Compare("SELECT d, f, m, i, u, b, t, v FROM kinds", direct), 3010);
    EXPECT_TRUE(direct) << "these column types are read from the driver's result";

    // A column of another type: the whole result goes through Qt, with the same values.
    Exec("CREATE TABLE other (n BIGINT, d DOUBLE)");
    Exec("INSERT INTO other VALUES (9000000000, 1.5), (NULL, NULL)");
    EXPECT_EQ(Compare("SELECT n, d FROM other", direct), 2);
    EXPECT_FALSE(direct);
}

TEST_F(SqlRows, ARefusedStatementAnEmptyResultAndIntegersReadFromRealsTruncated)
{
    QSqlQuery q(*db());
    CSqlRows rows;
    EXPECT_FALSE(rows.exec(q, "SELECT nosuch FROM nowhere"));
    Exec("CREATE TABLE reals (d DOUBLE, i INT)");
    EXPECT_TRUE(rows.exec(q, "SELECT d FROM reals"));
    EXPECT_FALSE(rows.next());

    // As the suite's Qt 3 read them: a fraction is cut (Qt 6's toInt() would round), a value
    // beyond an int is held at its end.
    Exec("INSERT INTO reals VALUES (12.7, 7), (-12.7, -7), (0.5, 0), (3e10, 2147483647)");
    const int expected[][2] = {{12, 7}, {-12, -7}, {0, 0}, {INT_MAX, INT_MAX}};
    const QString sql = "SELECT d, i FROM reals";
    QSqlQuery plain(*db());
    ASSERT_TRUE(plain.exec(sql) && rows.exec(q, sql));
    for (const auto& row : expected) {
        ASSERT_TRUE(plain.next() && rows.next());
        for (int c = 0; c < 2; ++c) {
            EXPECT_EQ(RowInt(plain, c), row[c]) << plain.value(c).toString().toStdString();
            EXPECT_EQ(RowInt(rows, c), row[c]) << plain.value(c).toString().toStdString();
        }
    }
}
