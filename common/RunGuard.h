#pragma once
// The guard of work that runs on a database shared by several engineers at once.
//
// The design's statements use working tables with fixed names (tmp of the extractions,
// TLoad of the stability save-back), write a job number's tables, and make data groups by
// name: two runs on one database that meet in any of these corrupt each other. The guard
// gives each such thing (a resource, named below) to one run at a time. A run that finds
// one taken says once at level 1 for whom it waits (host, process, connection, node), waits
// up to the time its caller chose, and then gives up with a message at level 2 before it
// writes anything.
//
// It holds on one server and on a Galera cluster alike: a lease is a row of the table
// CALC_LEASE (InnoDB, replicated), never GET_LOCK or LOCK TABLES, which hold on one node
// only. It dies with its holder: see the .cpp for how a lease whose run is gone is taken
// over.

#include "SaveBackPreview.h"

#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <atomic>
#include <functional>
#include <memory>
#include <thread>

namespace runguard {

// The resources, by name. The names are the rows' keys; Describe says them to a user.
QString WorkTable(const char* table);           // "table tmp", "table TLoad"
QString JobTables(const char* family, int job); // "job L 3": L1_3 ... LK_3 and LF_CASE's row
QString DataGroup(const QString& group);        // "group NAME": a data group being written
QString Describe(const QString& resource);      // the words of the messages

// The message of a run refused since its new data group `group` exists already.
QString GroupExistsMessage(const QString& group);

} // namespace runguard

// The transfers' opt-in guard: off (the design's run, nothing guarded) until SetWait is
// given a time of zero seconds or more.
//
// Which working tables it serialises, and why none of them became TEMPORARY: tmp (both
// extractions) and TLoad (the stability save-back) stay tables of the database in every
// statement mode. The mended mode changes only statements the server refuses, and it
// accepts these; a TEMPORARY tmp or TLoad would be another statement, and the design's
// step that drops a stale tmp left by a crashed run would have nothing to drop. Tnode and
// the other save-back tables (Tac, T2W, TGen ...) are TEMPORARY already, private to their
// session, and need no guard.
class CTransferGuard
{
public:
    void SetWait(int seconds) { m_wait = seconds; }
    bool On() const { return m_wait >= 0; }
    // Runs `work` and gives its result. When on: holding `resources` for the time of it,
    // and, when `newGroup` is not empty, only where no data group of that name exists yet;
    // 1 without running it, after the guard's message at level 2, when the resources stay
    // taken beyond the wait or the group exists.
    int Run(QSqlDatabase* db, const QStringList& resources, const QString& newGroup,
            const std::function<int()>& work);
    // A preview run as Run runs its work; refused, a preview that says why and would stop.
    SaveBackPreview Preview(QSqlDatabase* db, const QStringList& resources,
                            const std::function<SaveBackPreview()>& preview);
    // Why the last Run did not run its work; empty when it did.
    const QString& Refusal() const { return m_refusal; }
    // Seconds its runs waited for other runs, in all.
    double Waited() const { return m_waited; }

private:
    int m_wait = -1;
    QString m_refusal;
    double m_waited = 0;
};

class CRunGuard
{
public:
    // Guards the work done on `db`, the connection the transfers are given. The guard's
    // statements go through connections of its own to the same database: `db` gets none.
    explicit CRunGuard(QSqlDatabase* db, int waitSeconds = 60);
    ~CRunGuard(); // lets go of what it took
    CRunGuard(const CRunGuard&) = delete;
    CRunGuard& operator=(const CRunGuard&) = delete;

    void SetWait(int seconds) { m_waitSeconds = seconds; }
    int Wait() const { return m_waitSeconds; }

    // Takes every one of `resources` for this run, or none: true when they are all held
    // (those that this connection holds already through another guard count as held).
    // False after the waiting time, with the level-2 message shown and Refusal() set, or
    // when the lease table cannot be used (its error in Refusal()).
    bool Take(const QStringList& resources);
    // Lets go of what Take took (the destructor does it too).
    void Release();
    const QString& Refusal() const { return m_refusal; }
    // Whether the data group `group` has its row in CDB_DATAGROUPBAK (a run made it, or it
    // was there before), read on the guard's connection. False also when it cannot be read.
    bool GroupExists(const QString& group);
    // Seconds spent waiting for other runs in Take, over this guard's life.
    double WaitedSeconds() const { return m_waited; }

private:
    struct Holder
    {
        qlonglong conn = -1;
        QString node, login, client;
        qlonglong pid = 0, beat = -1;
        bool present = false;
    };
    enum TakeResult { Taken, Held, Busy }; // Held: this connection holds it already
    bool Open();
    TakeResult TryTake(const QString& resource, Holder& holder);
    Holder ReadHolder(const QString& resource);
    bool HolderGone(const QString& resource, const Holder& holder);
    void StartBeat();
    void StopBeat();

    QSqlDatabase* m_db;
    int m_waitSeconds;
    QString m_connection; // the guard's own connection
    qlonglong m_workConn = -1;
    QString m_node, m_login, m_client;
    bool m_seeAll = false; // the processlist shows every connection on this node
    QStringList m_taken;
    QString m_refusal;
    double m_waited = 0;
    // The beat: a thread with a connection of its own counts up the beat of the leases held,
    // so that a run on another node can tell a living holder from a dead one.
    std::thread m_beat;
    std::atomic<bool> m_beatStop{false};
    // Last beat seen of a holder on another node, and when (ms of a monotonic clock).
    QString m_seenKey;
    qlonglong m_seenBeat = -1;
    qint64 m_seenAt = 0;
};
