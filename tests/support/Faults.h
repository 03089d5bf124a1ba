#pragma once
// Server faults for the fault tables of the transfers: one fault on one table of a test
// suite's database, armed before a transfer runs and disarmed after it.
//
//   Killed        a second session holds a lock on the table; when the transfer's
//                 connection has waited on it for a moment, a third session kills that
//                 connection (the server stopped in the middle of a transfer)
//   MissingTable  the table is renamed away
//   ReadOnly      the transfer runs as a user with SELECT (and temporary tables) only
//
// The lock is on the rows (a locking read of every row in an open transaction: writes
// wait, plain reads pass) or on the whole table (LOCK TABLES ... WRITE: every statement
// on it waits). Disarm puts everything back; after a kill it opens the suite's
// connection again, so that the next run has a fresh session.

#include "ServerConnection.h"

#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <atomic>
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <thread>

namespace testsupport {

enum class Fault { Killed, MissingTable, ReadOnly };
enum class Hold { Rows, Table };

std::string FaultName(Fault fault);

class FaultInjector
{
public:
    // `library` is the connection the transfer normally runs on.
    FaultInjector(dbserver::ScratchDatabase& scratch, QSqlDatabase* library, Fault fault,
                  const QString& table, Hold hold = Hold::Rows);
    ~FaultInjector() { Disarm(); }
    FaultInjector(const FaultInjector&) = delete;
    FaultInjector& operator=(const FaultInjector&) = delete;

    // Arms the fault, runs `transfer` on the connection to give it, disarms. A failure when
    // the fault could not be armed or never took effect.
    ::testing::AssertionResult Run(const std::function<void(QSqlDatabase*)>& transfer);

private:
    // The connection to give the transfer (the library's, or the read-only user's); null
    // with m_error set when the fault cannot be readied.
    QSqlDatabase* Arm();
    void Disarm();
    bool run(QSqlDatabase& db, const QString& sql);

    dbserver::ScratchDatabase& m_scratch;
    QSqlDatabase* m_library;
    Fault m_fault;
    QString m_table;
    Hold m_hold;
    QString m_error;
    QSqlDatabase m_admin;   // renames, users
    QSqlDatabase m_blocker; // holds the lock
    QSqlDatabase m_readOnly;
    QString m_readOnlyName, m_user;
    std::thread m_killer;
    std::atomic<bool> m_stop{false};
    std::atomic<bool> m_killed{false}; // the victim's session is gone
    bool m_armed = false;
};

// A connection of its own to the suite's database, for the run after a fault.
QSqlDatabase FreshConnection(dbserver::ScratchDatabase& scratch);

// Every base table of the database, plain and working copy.
QStringList BaseTables(QSqlDatabase db);
// CHECKSUM TABLE of every base table, by name: an extraction, faulted or not, leaves
// them as they were.
std::map<std::string, std::string> BaseChecksums(QSqlDatabase db);

} // namespace testsupport
