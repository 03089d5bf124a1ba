#include "RunGuard.h"

#include "Feedback.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QSqlError>
#include <QSqlQuery>
#include <QSysInfo>
#include <QVariant>
#include <algorithm>
#include <chrono>

// How a lease is held and let go.
//
// A lease is the row of its resource in CALC_LEASE: the holder's connection (the one its
// transfers run on) with the node it is connected to (host and port of the server), login,
// client host and process, and a beat. The row is written through a connection of the
// guard's own under autocommit, so that it is seen at once and never undone by the holder's
// transaction (all-or-nothing runs one on the transfers' connection). Whoever inserts the row
// first holds it; on a cluster two nodes that insert it at once are ordered by certification
// and the second one's insert fails, as on one server the second waits for the first's key.
//
// A holder that dies leaves its row behind. A run that finds the row decides whether its
// holder still lives:
//   * holder on the same node, and this session can see the holder's connections in the
//     processlist (the PROCESS privilege, or the same login): the holder lives while its
//     connection is listed. A killed process's connection leaves the list when the server
//     has finished (or rolled back) the statement it was running, so nothing the dead run
//     wrote is still being written when its lease is taken over; a dropped connection
//     leaves it at once.
//   * holder on another node (whose processlist no session here can read), or not
//     visible: a thread of the holder counts the beat up every second; a beat that has not
//     moved for kStaleSeconds, by this run's own clock, marks the holder as dead. So no
//     clocks of two machines are compared.
// The dead holder's row is taken over by an update that names the row as it was read (holder
// and beat); when two runs try at once, one of them changes it.
// GET_LOCK and LOCK TABLES would be simpler on one server but hold on one node only, and a
// locking read held open would pin the holder's transaction; neither serves a cluster.

namespace {

constexpr int kBeatMs = 1000;
constexpr int kStaleSeconds = 10;
constexpr int kPollMs = 200;

const char* const kCreateLease =
    "CREATE TABLE IF NOT EXISTS CALC_LEASE (Resource VARCHAR(100) CHARACTER SET utf8mb4 NOT "
    "NULL PRIMARY KEY, Conn_Id BIGINT NOT NULL, Node VARCHAR(160) NOT NULL, Login "
    "VARCHAR(160) NOT NULL, Client VARCHAR(160) NOT NULL, Pid BIGINT NOT NULL, Beat BIGINT NOT "
    "NULL DEFAULT 0, Since DATETIME NOT NULL) ENGINE=InnoDB";

qint64 NowMs()
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

bool Run(QSqlQuery& q, const QString& sql, const QVariantList& values = {})
{
    if (!q.prepare(sql)) {
        return false;
    }
    for (const QVariant& v : values) {
        q.addBindValue(v);
    }
    return q.exec();
}

} // namespace

namespace runguard {

QString WorkTable(const char* table)
{
    return QStringLiteral("table %1").arg(QLatin1String(table));
}

QString JobTables(const char* family, int job)
{
    return QStringLiteral("job %1 %2").arg(QLatin1String(family)).arg(job);
}

QString DataGroup(const QString& group)
{
    return QStringLiteral("group ") + group;
}

QString Describe(const QString& resource)
{
    const QString kind = resource.section(' ', 0, 0);
    const QString rest = resource.section(' ', 1);
    if (kind == "table") {
        return QStringLiteral("工作表 %1").arg(rest);
    }
    if (kind == "group") {
        return QStringLiteral("数据组 %1").arg(rest);
    }
    const QString family = rest.section(' ', 0, 0), job = rest.section(' ', 1);
    return family == "L" ? QStringLiteral("作业 %1 的潮流作业表").arg(job)
                         : QStringLiteral("作业 %1 的暂稳作业表").arg(job);
}

QString GroupExistsMessage(const QString& group)
{
    return QStringLiteral(
               "数据组 %1 已存在（已由其他运行新建），本次新建数据组的回存未写入任何数据。")
        .arg(group);
}

} // namespace runguard

SaveBackPreview CTransferGuard::Preview(QSqlDatabase* db, const QStringList& resources,
                                        const std::function<SaveBackPreview()>& preview)
{
    SaveBackPreview p;
    if (Run(db, resources, QString(), [&] {
            p = preview();
            return CALC_OK;
        }) != CALC_OK) {
        p.result = CALC_FAIL;
        p.refused = m_refusal;
    }
    return p;
}

int CTransferGuard::Run(QSqlDatabase* db, const QStringList& resources, const QString& newGroup,
                        const std::function<int()>& work)
{
    m_refusal.clear();
    if (!On()) {
        return work();
    }
    CRunGuard guard(db, m_wait);
    const bool taken = guard.Take(resources);
    m_waited += guard.WaitedSeconds();
    if (!taken) {
        m_refusal = guard.Refusal();
        return CALC_FAIL;
    }
    if (!newGroup.isEmpty() && guard.GroupExists(newGroup)) {
        m_refusal = runguard::GroupExistsMessage(newGroup);
        ShowMessage(m_refusal.toUtf8(), MSG_ERROR);
        return CALC_FAIL;
    }
    return work();
}

CRunGuard::CRunGuard(QSqlDatabase* db, int waitSeconds) : m_db(db), m_waitSeconds(waitSeconds) {}

CRunGuard::~CRunGuard()
{
    Release();
    if (!m_connection.isEmpty()) {
        QSqlDatabase::database(m_connection, false).close();
        QSqlDatabase::removeDatabase(m_connection);
    }
}

bool CRunGuard::Open()
{
    if (!m_connection.isEmpty() && QSqlDatabase::database(m_connection, false).isOpen()) {
        return true;
    }
    static std::atomic<int> serial{0};
    if (m_connection.isEmpty()) {
        m_connection = QStringLiteral("calcdata_guard_%1").arg(++serial);
        QSqlDatabase::cloneDatabase(*m_db, m_connection);
    }
    QSqlDatabase guard = QSqlDatabase::database(m_connection, false);
    if (!guard.open()) {
        m_refusal =
            QStringLiteral("the guard cannot open its connection: ") + guard.lastError().text();
        return false;
    }
    QSqlQuery q(guard);
    // Reads of the lease see what the cluster committed before them; a lease row held by a
    // stuck statement is not waited on for long. Neither exists on a plain MySQL: unchecked.
    q.exec("SET SESSION wsrep_sync_wait=1");
    q.exec("SET SESSION innodb_lock_wait_timeout=5");
    if (!q.exec(kCreateLease)) {
        m_refusal =
            QStringLiteral("the guard cannot make its table CALC_LEASE: ") + q.lastError().text();
        return false;
    }
    // The guard's connection reaches the node that `db` reaches (the same address).
    unsigned long id = 0;
    if (!ConnectionId(m_db, &id) ||
        !q.exec("SELECT CONCAT(@@hostname, ':', @@port), CURRENT_USER()") || !q.next()) {
        m_refusal = QStringLiteral("the guard cannot tell the connection's id and node: ") +
                    q.lastError().text();
        return false;
    }
    m_workConn = qlonglong(id);
    m_node = q.value(0).toString();
    m_login = q.value(1).toString();
    m_client = QSysInfo::machineHostName();
    m_seeAll = q.exec("SELECT COUNT(*) FROM information_schema.USER_PRIVILEGES WHERE "
                      "PRIVILEGE_TYPE='PROCESS'") &&
               q.next() && q.value(0).toInt() > 0;
    return true;
}

bool CRunGuard::GroupExists(const QString& group)
{
    if (!Open()) {
        return false;
    }
    QSqlQuery q(QSqlDatabase::database(m_connection, false));
    return Run(q, "SELECT COUNT(*) FROM CDB_DATAGROUPBAK WHERE GrpName=?", {group}) && q.next() &&
           q.value(0).toLongLong() > 0;
}

CRunGuard::Holder CRunGuard::ReadHolder(const QString& resource)
{
    Holder h;
    QSqlQuery q(QSqlDatabase::database(m_connection, false));
    if (Run(q, "SELECT Conn_Id, Node, Login, Client, Pid, Beat FROM CALC_LEASE WHERE Resource=?",
            {resource}) &&
        q.next()) {
        h.present = true;
        h.conn = q.value(0).toLongLong();
        h.node = q.value(1).toString();
        h.login = q.value(2).toString();
        h.client = q.value(3).toString();
        h.pid = q.value(4).toLongLong();
        h.beat = q.value(5).toLongLong();
    }
    return h;
}

bool CRunGuard::HolderGone(const QString& resource, const Holder& h)
{
    if (h.node == m_node && (m_seeAll || h.login == m_login)) {
        QSqlQuery q(QSqlDatabase::database(m_connection, false));
        return Run(q, "SELECT COUNT(*) FROM information_schema.PROCESSLIST WHERE ID=?", {h.conn}) &&
               q.next() && q.value(0).toLongLong() == 0;
    }
    const QString key = QStringLiteral("%1|%2|%3").arg(resource).arg(h.conn).arg(h.node);
    if (key != m_seenKey || h.beat != m_seenBeat) {
        m_seenKey = key;
        m_seenBeat = h.beat;
        m_seenAt = NowMs();
        return false;
    }
    return NowMs() - m_seenAt >= kStaleSeconds * 1000;
}

CRunGuard::TakeResult CRunGuard::TryTake(const QString& resource, Holder& holder)
{
    QSqlQuery q(QSqlDatabase::database(m_connection, false));
    const QVariantList mine = {m_workConn, m_node, m_login, m_client,
                               QCoreApplication::applicationPid()};
    for (int attempt = 0; attempt < 2; ++attempt) {
        if (Run(q,
                "INSERT INTO CALC_LEASE (Resource, Conn_Id, Node, Login, Client, Pid, Beat, "
                "Since) VALUES (?, ?, ?, ?, ?, ?, 0, NOW())",
                QVariantList{resource} + mine)) {
            return Taken;
        }
        holder = ReadHolder(resource);
        if (holder.present) {
            break; // else let go in between: once more
        }
    }
    if (!holder.present) {
        return Busy; // neither inserted nor read: the next round tries again
    }
    if (holder.conn == m_workConn && holder.node == m_node) {
        return Held;
    }
    if (!HolderGone(resource, holder)) {
        return Busy;
    }
    if (Run(q,
            "UPDATE CALC_LEASE SET Conn_Id=?, Node=?, Login=?, Client=?, Pid=?, Beat=0, "
            "Since=NOW() WHERE Resource=? AND Conn_Id=? AND Node=? AND Beat=?",
            mine + QVariantList{resource, holder.conn, holder.node, holder.beat}) &&
        q.numRowsAffected() == 1) {
        ShowMessage(FormatText("%s 的持有者（主机 %s 上进程 %lld 的连接 %lld，节点 %s）已不在，"
                               "由本次运行接手。",
                               runguard::Describe(resource).toUtf8().constData(),
                               holder.client.toUtf8().constData(), holder.pid, holder.conn,
                               holder.node.toUtf8().constData()),
                    MSG_PROGRESS);
        return Taken;
    }
    return Busy;
}

bool CRunGuard::Take(const QStringList& wanted)
{
    m_refusal.clear();
    if (!Open()) {
        ShowMessage(m_refusal.toUtf8(), MSG_ERROR);
        return false;
    }
    QStringList resources = wanted;
    resources.sort();
    resources.removeDuplicates();
    QElapsedTimer waited;
    waited.start();
    bool told = false;
    for (;;) {
        QStringList now;
        QString busyOn;
        Holder holder;
        for (const QString& r : resources) {
            if (m_taken.contains(r)) {
                continue;
            }
            const TakeResult result = TryTake(r, holder);
            if (result == Taken) {
                now << r;
            } else if (result == Busy) {
                busyOn = r;
                break;
            }
        }
        if (busyOn.isEmpty()) {
            m_taken += now;
            if (told) {
                m_waited += waited.nsecsElapsed() / 1e9;
            }
            StartBeat();
            return true;
        }
        // None is held while waiting: two runs that want two resources never hold one each.
        QSqlQuery q(QSqlDatabase::database(m_connection, false));
        for (const QString& r : now) {
            Run(q, "DELETE FROM CALC_LEASE WHERE Resource=? AND Conn_Id=? AND Node=?",
                {r, m_workConn, m_node});
        }
        const QByteArray what = runguard::Describe(busyOn).toUtf8();
        const QByteArray client = holder.client.toUtf8(), node = holder.node.toUtf8();
        if (!told) {
            ShowMessage(FormatText("%s 正由主机 %s 上进程 %lld 的连接 %lld（节点 %s）使用，"
                                   "等待其完成，至多 %d 秒……",
                                   what.constData(), client.constData(), holder.pid, holder.conn,
                                   node.constData(), m_waitSeconds),
                        MSG_PROGRESS);
            told = true;
        }
        const qint64 left = qint64(m_waitSeconds) * 1000 - waited.elapsed();
        if (left <= 0) {
            m_waited += waited.nsecsElapsed() / 1e9;
            m_refusal = QString::fromUtf8(FormatText(
                "等待 %d 秒后%s仍由主机 %s 上进程 %lld 的连接 %lld（节点 %s）使用，本次运行未写入"
                "任何数据。",
                m_waitSeconds, what.constData(), client.constData(), holder.pid, holder.conn,
                node.constData()));
            ShowMessage(m_refusal.toUtf8(), MSG_ERROR);
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(std::min<qint64>(kPollMs, left)));
    }
}

void CRunGuard::Release()
{
    if (m_taken.isEmpty()) {
        return;
    }
    StopBeat();
    QSqlQuery q(QSqlDatabase::database(m_connection, false));
    for (const QString& r : m_taken) {
        // A delete that fails (the connection broke) leaves a row whose holder is gone,
        // which the next run takes over.
        Run(q, "DELETE FROM CALC_LEASE WHERE Resource=? AND Conn_Id=? AND Node=?",
            {r, m_workConn, m_node});
    }
    m_taken.clear();
}

void CRunGuard::StartBeat()
{
    if (m_beat.joinable() || m_taken.isEmpty()) {
        return;
    }
    m_beatStop = false;
    const QString source = m_connection;
    const QString name = m_connection + QStringLiteral("_beat");
    const qlonglong conn = m_workConn;
    const QString node = m_node;
    m_beat = std::thread([this, source, name, conn, node] {
        {
            QSqlDatabase db = QSqlDatabase::cloneDatabase(source, name);
            if (db.open()) {
                QSqlQuery q(db);
                q.exec("SET SESSION innodb_lock_wait_timeout=5");
                while (!m_beatStop) {
                    for (int slept = 0; slept < kBeatMs && !m_beatStop; slept += 50) {
                        std::this_thread::sleep_for(std::chrono::milliseconds(50));
                    }
                    if (!m_beatStop) {
                        Run(q, "UPDATE CALC_LEASE SET Beat=Beat+1 WHERE Conn_Id=? AND Node=?",
                            {conn, node});
                    }
                }
            }
            db.close();
        }
        QSqlDatabase::removeDatabase(name);
    });
}

void CRunGuard::StopBeat()
{
    m_beatStop = true;
    if (m_beat.joinable()) {
        m_beat.join();
    }
}
