#pragma once
// Base fixture of every test that needs the SQL server. Each test suite (fixture
// class) gets its own freshly created database loaded with schema.sql, dropped after
// the suite's last test. Under CI=true a suite that cannot reach the server fails;
// elsewhere it is skipped with the reason.

#include "Recorders.h"
#include "ServerConnection.h"

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QString>
#include <QVariant>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace testsupport {

class DbTest : public ::testing::Test
{
public:
    static void SetUpTestSuite();
    static void TearDownTestSuite();

protected:
    void SetUp() override;

    // The suite's connection, as the library is given it. The helpers below run on a
    // second connection to the same database, so that the statement log of this one
    // holds what the library sent and nothing else.
    static QSqlDatabase* db() { return s_db->db(); }
    static QSqlDatabase checker() { return s_checker; }
    static dbserver::ScratchDatabase& scratch() { return *s_db; }

    // Runs a statement; a failure fails the test with the server's text.
    static void Exec(const QString& sql);
    // First column of the first row, or "" when no row.
    static QString Scalar(const QString& sql);
    // Number of rows of a table (or of a `FROM ...` clause's worth: pass "t WHERE ...").
    static int Count(const QString& from);
    // All rows of a query, columns joined by '|', for compact assertions.
    static std::vector<std::string> Rows(const QString& sql);
    static void Truncate(const std::vector<QString>& tables);

    // The statements this suite's connection sends, as the server logged them.
    // StartStatementLog turns the server's general log on (to its table and its file,
    // where tools can read it later) and marks the present point; SentStatements gives
    // what the library's connection sent since, in order.
    // The server logs a statement without its trailing blanks.
    static void StartStatementLog();
    static std::vector<std::string> SentStatements();

    static FeedbackRecorder& feedback() { return FeedbackRecorder::instance(); }
    static BoxRecorder& boxes() { return BoxRecorder::instance(); }

private:
    static std::unique_ptr<dbserver::ScratchDatabase> s_db;
    static std::string s_failure;
    static long long s_logMark;
    static QSqlDatabase s_checker;
};

} // namespace testsupport
