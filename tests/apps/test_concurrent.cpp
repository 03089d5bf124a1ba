// Several engineers' studies on one base database at once, as processes of the study
// program: four at once end as the same four in turn; two on one job or into one new data
// group meet the guard (one waits, the other completes or is refused), also through two
// nodes of a cluster; a study killed in its save-back leaves no lease that stops the next.

#include "DbTest.h"
#include "Faults.h"
#include "ProgramRuns.h"

#include <QCoreApplication>
#include <QRegularExpression>
#include <QSysInfo>
#include <algorithm>
#include <thread>

using namespace testsupport;

class Concurrent : public DbTest
{
protected:
    static QStringList Study(const QString& db, int job, const QString& group)
    {
        return {"--database", db, "--existing", "--job", QString::number(job), "--group", group};
    }
    using Sum = std::vector<std::string>;
    // Per table of `database` LIKE `like`, "table:rows:sum", the sum of its rows' CRC32s over
    // every column but the server's numbering (id, RowKey): equal for equal contents, whatever
    // order the rows came in. With `group`, that data group's rows of the tables that have
    // groups, GrpName left out (a table of GrpName alone counts its rows).
    static Sum Sums(const QString& database, const QString& like, const QString& group = {})
    {
        Sum sums;
        for (const std::string& t :
             Rows(QString("SELECT TABLE_NAME, COALESCE(GROUP_CONCAT(IF(COLUMN_NAME IN ('id', "
                          "'RowKey', '%1'), NULL, CONCAT('`', COLUMN_NAME, '`')) ORDER BY "
                          "ORDINAL_POSITION), 'NULL') FROM information_schema.COLUMNS WHERE "
                          "TABLE_SCHEMA='%2' AND TABLE_NAME LIKE '%3' GROUP BY TABLE_NAME "
                          "HAVING %4 ORDER BY TABLE_NAME")
                      .arg(group.isEmpty() ? "" : "GrpName", database, like,
                           group.isEmpty() ? "1" : "SUM(COLUMN_NAME='GrpName')"))) {
            const QString table = QString::fromStdString(t).section('|', 0, 0);
            const QString columns = QString::fromStdString(t).section('|', 1);
            sums.push_back((table + ":" +
                            Scalar(QString("SELECT CONCAT(COUNT(*), ':', COALESCE(SUM(CRC32("
                                           "CONCAT_WS('|', %1))), 0)) FROM `%2`.`%3` WHERE %4")
                                       .arg(columns, database, table,
                                            group.isEmpty() ? "1" : "GrpName='" + group + "'")))
                               .toStdString());
        }
        EXPECT_FALSE(sums.empty()) << like.toStdString();
        return sums;
    }
    // A base database made by the study program (the IEEE 14-bus case, job 0 studied), kept.
    QString Base(const QString& name)
    {
        const QString db = name + QString::number(QCoreApplication::applicationPid());
        m_made << db;
        const auto made = AtOnce({{"--database", db, "--keep", "--quiet"}});
        EXPECT_EQ(made[0].status, 0) << made[0].err.toStdString();
        return db;
    }
    void TearDown() override
    {
        for (const QString& db : m_made) {
            Exec("DROP DATABASE IF EXISTS " + db);
        }
    }
    // Two studies of job 1 at once into the groups <g>1 and <g>2, the second with `second`
    // on its command line: both complete, one having waited; each group holds `expected`.
    void SameJob(const QString& base, const QStringList& second, const QString& g, const Sum& expected)
    {
        const auto runs = AtOnce({Study(base, 1, g + "1"), Study(base, 1, g + "2") + second});
        for (int k = 0; k < 2; ++k) {
            EXPECT_EQ(runs[k].status, 0) << runs[k].err.toStdString();
            EXPECT_EQ(Sums(base, "cdb\\_%", g + QString::number(k + 1)), expected);
        }
        m_out = runs[0].out + runs[1].out;
        EXPECT_EQ(m_out.count("正由主机"), 1);
    }
    // Studies of jobs 2 and 5 at once into one new group: one completes, the other is
    // refused with status 3 (its message in m_err); one group row, one writer's copies.
    void SameGroup(const QString& base, const QStringList& second, const QString& group, const Sum& expected)
    {
        auto runs = AtOnce({Study(base, 2, group), Study(base, 5, group) + second});
        std::sort(runs.begin(), runs.end(),
                  [](const ProgramRun& a, const ProgramRun& b) { return a.status < b.status; });
        EXPECT_EQ(runs[0].status, 0) << runs[0].err.toStdString();
        EXPECT_EQ(runs[1].status, 3) << runs[1].err.toStdString();
        m_err = runs[1].err;
        EXPECT_EQ(Count(base + ".CDB_DATAGROUPBAK WHERE GrpName='" + group + "'"), 1);
        EXPECT_EQ(Sums(base, "cdb\\_%", group), expected);
    }
    QStringList m_made;
    QString m_out, m_err;
};

TEST_F(Concurrent,
       FourAtOnceEqualFourInTurnTwoOnOneJobOrGroupNeverMixOneKilledLeavesNoLeaseThatStopsTheNext)
{
    const QString together = Base("t_together_"), inTurn = Base("t_in_turn_");
    QList<QStringList> four;
    for (int job : {1, 2, 5, 7}) {
        four << Study(together, job, QString("G%1").arg(job));
        EXPECT_EQ(AtOnce({Study(inTurn, job, QString("G%1").arg(job))})[0].status, 0);
    }
    for (const ProgramRun& e : AtOnce(four)) {
        EXPECT_EQ(e.status, 0) << e.err.toStdString();
    }
    // Every job, result, case and base table (the groups' copies with them) as in turn.
    for (const char* like : {"l%", "cdb\\_%"}) {
        EXPECT_EQ(Sums(together, like), Sums(inTurn, like)) << like;
    }

    // One job at once: one of the two waits for it and then completes; the job's tables and
    // both groups' copies are one whole run's.
    SameJob(together, {}, "H", Sums(inTurn, "cdb\\_%", "G1"));
    EXPECT_EQ(Sums(together, "l%\\_1"), Sums(inTurn, "l%\\_1"));
    EXPECT_TRUE(m_out.contains("作业 1 的潮流作业表 正由主机 " + QSysInfo::machineHostName()));

    // One new group (of the longest Chinese name) at once, on two jobs: one writer's copies
    // and one group row; the other run waits for the group and is refused, status 3.
    const QString cn = "华北电网运行方式调整";
    SameGroup(together, {}, cn, Sums(inTurn, "cdb\\_%", "G2"));
    EXPECT_EQ(m_err, "calcdata_demo: 数据组 " + cn +
                         " 已存在（已由其他运行新建），本次新建数据组的回存未写入任何数据。\n");

    // Killed with SIGKILL while its save-back waits at the generators' copy (another session
    // holds their rows shared): the lease rows stay, and the next run on the same job and group
    // takes them over at once (--wait 0). All-or-nothing leaves the base as before.
    const QString node = Scalar("SELECT CONCAT(@@hostname, ':', @@port)");
    for (const bool whole : {false, true}) {
        SCOPED_TRACE(whole ? "all-or-nothing" : "ordinary");
        const QString group = whole ? "K_WHOLE" : "K_ORDINARY";
        Exec("USE " + inTurn); // on the helpers' connection, whose checksums follow
        const auto before = BaseChecksums(checker());
        QSqlDatabase blocker = scratch().openSecondConnection(whole ? "b1" : "b0");
        QSqlQuery hold(blocker);
        ASSERT_TRUE(hold.exec("USE " + inTurn) && hold.exec("START TRANSACTION") &&
                    hold.exec("SELECT * FROM CDB_GENERATBAK LOCK IN SHARE MODE"));

        QProcess study;
        study.start(QStringLiteral(CALCDATA_DEMO_PROGRAM),
                    Study(inTurn, 1, group) +
                        (whole ? QStringList{"--all-or-nothing"} : QStringList{}));
        QString waiting;
        for (int i = 0; i < 600 && waiting.isEmpty(); ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
            waiting = Scalar(QString("SELECT ID FROM information_schema.PROCESSLIST WHERE DB='%1' "
                                     "AND INFO LIKE 'insert into CDB_GENERATBAK(%'")
                                 .arg(inTurn));
        }
        ASSERT_FALSE(waiting.isEmpty()) << "the save-back never reached the generators";
        const qint64 pid = study.processId();
        study.kill(); // SIGKILL
        study.waitForFinished();
        hold.exec("ROLLBACK"); // the dead run's statement ends, and its connection with it
        const QString alive = "SELECT COUNT(*) FROM information_schema.PROCESSLIST WHERE ID=";
        for (int i = 0; i < 600 && Scalar(alive + waiting) != "0"; ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
        }
        EXPECT_EQ(Scalar("SELECT GROUP_CONCAT(Resource ORDER BY Resource) FROM CALC_LEASE WHERE "
                         "Conn_Id=" + waiting),
                  "group " + group + ",job L 1")
            << "the dead run's leases stand";
        if (whole) {
            EXPECT_EQ(BaseChecksums(checker()), before);
        }
        const ProgramRun next = AtOnce({Study(inTurn, 1, group) + QStringList{"--wait", "0"}})[0];
        EXPECT_EQ(next.status, 0) << next.err.toStdString();
        EXPECT_TRUE(next.out.contains(
            QString("  [ 1] 作业 1 的潮流作业表 的持有者（主机 %1 上进程 %2 的连接 %3，节点 %4）"
                    "已不在，由本次运行接手。\n")
                .arg(QSysInfo::machineHostName())
                .arg(pid)
                .arg(waiting, node)))
            << next.out.toStdString();
        EXPECT_EQ(Scalar("SELECT COUNT(*) FROM CALC_LEASE"), "0");
        Exec("USE " + scratch().name());
    }
}

// Through two nodes of a Galera cluster (the suite's server being node 1): one job at once,
// then one new group at once.
TEST_F(Concurrent, TwoAtOnceThroughTwoNodesOfACluster)
{
    if (qEnvironmentVariable("CALCDATA_CLUSTER_SOCKETS").split(',', Qt::SkipEmptyParts).size() <
        3) {
        GTEST_SKIP() << "no cluster given (scripts/test.sh's cluster run gives one)";
    }
    QProcess env;
    env.start("bash", {dbserver::SourceDir() + "/scripts/cluster.sh", "env", "2"});
    ASSERT_TRUE(env.waitForFinished(60000));
    const QString port2 = QString::fromUtf8(env.readAllStandardOutput())
                              .section("CALCDATA_DB_PORT=", 1)
                              .section(QRegularExpression("\\s"), 0, 0);
    ASSERT_FALSE(port2.isEmpty());
    const QString base = Base("t_nodes_");
    Exec("SET SESSION wsrep_sync_wait=1"); // the helpers read what node 2 committed
    const QStringList node2 = {"--server", "127.0.0.1:" + port2, "--user", "root"};
    SameJob(base, node2, "N", Sums(base, "cdb\\_%", "NEW"));
    SameGroup(base, node2, "N3", Sums(base, "cdb\\_%", "NEW"));
}
