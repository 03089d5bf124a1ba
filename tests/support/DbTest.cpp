#include "DbTest.h"

#include <QSqlError>
#include <QSqlRecord>

namespace testsupport {

std::unique_ptr<dbserver::ScratchDatabase> DbTest::s_db;
std::string DbTest::s_failure;
long long DbTest::s_logMark = 0;
QSqlDatabase DbTest::s_checker;

namespace {
long long libraryThreadId = 0;
}

void DbTest::SetUpTestSuite()
{
    const char* suite = ::testing::UnitTest::GetInstance()->current_test_suite()->name();
    QString prefix = QStringLiteral("t_") + QString::fromLatin1(suite).toLower().left(24);
    s_db = std::make_unique<dbserver::ScratchDatabase>(prefix);
    s_failure = s_db->ok() ? std::string() : s_db->error().toStdString();
    if (s_failure.empty()) {
        s_checker = s_db->openSecondConnection(QStringLiteral("checker"));
        if (!s_checker.isOpen()) {
            s_failure = "cannot open the checking connection";
        }
        QSqlQuery q(*s_db->db());
        if (q.exec(QStringLiteral("SELECT CONNECTION_ID()")) && q.next()) {
            libraryThreadId = q.value(0).toLongLong();
        }
    }
}

void DbTest::TearDownTestSuite()
{
    s_checker = QSqlDatabase();
    s_db.reset();
}

void DbTest::SetUp()
{
    if (!s_failure.empty()) {
        if (qEnvironmentVariable("CI") == QLatin1String("true")) {
            FAIL() << "the test server cannot be used: " << s_failure;
        }
        GTEST_SKIP() << "the test server cannot be used (start it with scripts/db.sh start): "
                     << s_failure;
    }
    InstallRecorders();
}

void DbTest::Exec(const QString& sql)
{
    QSqlQuery q(s_checker);
    ASSERT_TRUE(q.exec(sql)) << q.lastError().text().toStdString()
                             << "\n in: " << sql.toStdString();
}

QString DbTest::Scalar(const QString& sql)
{
    QSqlQuery q(s_checker);
    if (!q.exec(sql)) {
        ADD_FAILURE() << q.lastError().text().toStdString() << "\n in: " << sql.toStdString();
        return QString();
    }
    return q.next() ? q.value(0).toString() : QString();
}

int DbTest::Count(const QString& from)
{
    return Scalar(QStringLiteral("SELECT COUNT(*) FROM ") + from).toInt();
}

std::vector<std::string> DbTest::Rows(const QString& sql)
{
    std::vector<std::string> rows;
    QSqlQuery q(s_checker);
    if (!q.exec(sql)) {
        ADD_FAILURE() << q.lastError().text().toStdString() << "\n in: " << sql.toStdString();
        return rows;
    }
    while (q.next()) {
        QStringList cols;
        for (int i = 0; i < q.record().count(); ++i) {
            cols << q.value(i).toString();
        }
        rows.push_back(cols.join(QLatin1Char('|')).toStdString());
    }
    return rows;
}

void DbTest::Truncate(const std::vector<QString>& tables)
{
    for (const QString& t : tables) {
        Exec(QStringLiteral("DELETE FROM ") + t);
    }
}

void DbTest::StartStatementLog()
{
    if (Scalar(QStringLiteral("SELECT @@general_log")) != QLatin1String("1")) {
        Exec(QStringLiteral("SET GLOBAL log_output='FILE,TABLE'"));
        Exec(QStringLiteral("SET GLOBAL general_log=1"));
    }
    s_logMark = 0;
    s_logMark = static_cast<long long>(SentStatements().size());
}

std::vector<std::string> DbTest::SentStatements()
{
    std::vector<std::string> out;
    QSqlQuery q(s_checker);
    if (!q.exec(QStringLiteral("SELECT argument FROM mysql.general_log WHERE thread_id=%1 "
                               "AND command_type='Query'")
                    .arg(libraryThreadId))) {
        ADD_FAILURE() << q.lastError().text().toStdString();
        return out;
    }
    long long seen = 0;
    while (q.next()) {
        const std::string s = q.value(0).toString().toStdString();
        if (seen++ >= s_logMark) {
            out.push_back(s);
        }
    }
    return out;
}

} // namespace testsupport
