#include "Faults.h"
#include "TableSnapshots.h"

#include <QAtomicInt>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>
#include <chrono>
#include <unistd.h>

namespace testsupport {

namespace {
QAtomicInt serial;
}

std::string FaultName(Fault fault)
{
    static const char* const names[] = {"Killed", "MissingTable", "ReadOnly"};
    return names[int(fault)];
}

FaultInjector::FaultInjector(dbserver::ScratchDatabase& scratch, QSqlDatabase* library, Fault fault,
                             const QString& table, Hold hold)
    : m_scratch(scratch), m_library(library), m_fault(fault), m_table(table), m_hold(hold)
{
    const int n = serial.fetchAndAddRelaxed(1);
    m_admin = m_scratch.openSecondConnection(QStringLiteral("fault_admin_%1").arg(n));
    m_blocker = m_scratch.openSecondConnection(QStringLiteral("fault_blocker_%1").arg(n));
    m_readOnlyName = QStringLiteral("fault_ro_%1_%2").arg(::getpid()).arg(n);
    m_user = QStringLiteral("ro_%1_%2").arg(::getpid()).arg(n);
}

bool FaultInjector::run(QSqlDatabase& db, const QString& sql)
{
    QSqlQuery q(db);
    if (!q.exec(sql)) {
        m_error = q.lastError().text() + QStringLiteral(" in: ") + sql;
        return false;
    }
    return true;
}

QSqlDatabase* FaultInjector::Arm()
{
    m_armed = true;
    switch (m_fault) {
    case Fault::MissingTable:
        return run(m_admin, QStringLiteral("RENAME TABLE %1 TO %1_gone").arg(m_table)) ? m_library
                                                                                       : nullptr;
    case Fault::ReadOnly: {
        const QString db = m_scratch.name();
        for (const char* host : {"localhost", "127.0.0.1"}) {
            if (!run(m_admin, QStringLiteral("CREATE USER '%1'@'%2'").arg(m_user, host)) ||
                !run(m_admin, QStringLiteral("GRANT SELECT, CREATE TEMPORARY TABLES ON `%1`.* TO "
                                             "'%2'@'%3'")
                                  .arg(db, m_user, host))) {
                return nullptr;
            }
        }
        dbserver::ServerAddress a = dbserver::ServerAddress::fromEnvironment();
        a.user = m_user;
        a.password.clear();
        m_readOnly = dbserver::OpenConnection(a, m_readOnlyName, db, &m_error);
        return m_readOnly.isOpen() ? &m_readOnly : nullptr;
    }
    case Fault::Killed: {
        const bool locked =
            m_hold == Hold::Table
                ? run(m_blocker, QStringLiteral("LOCK TABLES %1 WRITE").arg(m_table))
                : run(m_blocker, QStringLiteral("START TRANSACTION")) &&
                      run(m_blocker, QStringLiteral("SELECT * FROM %1 FOR UPDATE").arg(m_table));
        if (!locked) {
            return nullptr;
        }
        QSqlQuery id(*m_library);
        if (!id.exec(QStringLiteral("SELECT CONNECTION_ID()")) || !id.next()) {
            m_error = id.lastError().text();
            return nullptr;
        }
        const qlonglong victim = id.value(0).toLongLong();
        const QString database = m_scratch.name();
        const QString name = m_readOnlyName + QStringLiteral("_killer");
        m_killer = std::thread([this, victim, database, name] {
            {
                QSqlDatabase k = dbserver::OpenConnection(name, database);
                QSqlQuery q(k);
                const QString listed =
                    QStringLiteral("SELECT 1 FROM information_schema.PROCESSLIST WHERE ID=%1")
                        .arg(victim);
                // Bounded: ten seconds at most for the transfer to reach the lock.
                for (int i = 0; i < 500 && !m_stop && !m_killed; ++i) {
                    std::this_thread::sleep_for(std::chrono::milliseconds(20));
                    q.exec(listed + QStringLiteral(" AND COMMAND='Query' AND TIME_MS>200"));
                    if (!q.next()) {
                        continue;
                    }
                    // KILL may return while its victim still waits on the lock (seen on a
                    // loaded cluster node): kill again each second until it is gone, 5 s at most.
                    for (int j = 0; j < 250 && !m_killed; ++j) {
                        if (j % 50 == 0) {
                            q.exec(QStringLiteral("KILL CONNECTION %1").arg(victim));
                        }
                        std::this_thread::sleep_for(std::chrono::milliseconds(20));
                        m_killed = q.exec(listed) && !q.next();
                    }
                    break;
                }
            }
            QSqlDatabase::removeDatabase(name);
        });
        return m_library;
    }
    }
    return nullptr;
}

void FaultInjector::Disarm()
{
    if (!m_armed) {
        return;
    }
    m_armed = false;
    if (m_killer.joinable()) {
        m_stop = true;
        m_killer.join();
    }
    switch (m_fault) {
    case Fault::MissingTable:
        run(m_admin, QStringLiteral("RENAME TABLE %1_gone TO %1").arg(m_table));
        break;
    case Fault::ReadOnly:
        m_readOnly.close();
        m_readOnly = QSqlDatabase();
        QSqlDatabase::removeDatabase(m_readOnlyName);
        for (const char* host : {"localhost", "127.0.0.1"}) {
            run(m_admin, QStringLiteral("DROP USER IF EXISTS '%1'@'%2'").arg(m_user, host));
        }
        break;
    case Fault::Killed:
        run(m_blocker,
            m_hold == Hold::Table ? QStringLiteral("UNLOCK TABLES") : QStringLiteral("ROLLBACK"));
        dbserver::ReopenConnection(*m_library);
        break;
    }
}

::testing::AssertionResult FaultInjector::Run(const std::function<void(QSqlDatabase*)>& transfer)
{
    QSqlDatabase* connection = Arm();
    if (!connection) {
        Disarm();
        return ::testing::AssertionFailure()
               << "the fault cannot be armed: " << m_error.toStdString();
    }
    transfer(connection);
    Disarm();
    if (m_fault == Fault::Killed && !m_killed) {
        return ::testing::AssertionFailure() << "the fault never took effect";
    }
    return ::testing::AssertionSuccess();
}

QSqlDatabase FreshConnection(dbserver::ScratchDatabase& scratch)
{
    return scratch.openSecondConnection(
        QStringLiteral("fresh_%1").arg(serial.fetchAndAddRelaxed(1)));
}

QStringList BaseTables(QSqlDatabase db)
{
    return TablesLike(db, "cdb\\_%");
}

std::map<std::string, std::string> BaseChecksums(QSqlDatabase db)
{
    const QStringList tables = BaseTables(db);
    EXPECT_GT(tables.size(), 30) << "the base tables, plain and working copies";
    return Checksums(db, tables);
}

} // namespace testsupport
