// The save-back on a Galera cluster (scripts/cluster.sh), the library on node 1 and the
// other nodes looking on. The whole suite runs on node 1 too; here is what only a cluster
// shows: a change through another node during a run, and a node stopped in one. The nodes
// come from CALCDATA_CLUSTER_SOCKETS (scripts/cluster.sh env), the suite's server being
// node 1; without them the tests say so and are skipped.

#include "SaveBackRoad.h"
#include "TableSnapshots.h"
#include "common/SaveBackStatements.h"
#include "common/Session.h"
#include "platform/WinDockFeedback.h"

#include <QProcess>
#include <QSqlError>

using namespace testsupport;

namespace {

QStringList NodeSockets()
{
    return qEnvironmentVariable("CALCDATA_CLUSTER_SOCKETS").split(',', Qt::SkipEmptyParts);
}

// Runs scripts/cluster.sh with `args` on the cluster of the environment.
bool Cluster(const QStringList& args)
{
    return QProcess::execute("bash", QStringList{dbserver::SourceDir() + "/scripts/cluster.sh"} +
                                         args) == 0;
}

} // namespace

class ClusterSaveBack : public SaveBackRoad
{
protected:
    void SetUp() override
    {
        if (NodeSockets().size() < 3) {
            GTEST_SKIP() << "no cluster given: start one with scripts/cluster.sh start and "
                            "export what scripts/cluster.sh env prints";
        }
        SaveBackRoad::SetUp();
    }
    void TearDown() override
    {
        for (const QString& name : m_nodes) {
            QSqlDatabase::database(name, false).close();
            QSqlDatabase::removeDatabase(name);
        }
        InstallRecorders();
    }

    // A connection to node `n` on the suite's database, whose reads wait until the node has
    // applied what the cluster committed before them.
    QSqlDatabase Node(int n)
    {
        const QString name = QString("%1_node%2").arg(scratch().connectionName()).arg(n);
        if (!m_nodes.contains(name)) {
            dbserver::ServerAddress a = dbserver::ServerAddress::fromEnvironment();
            a.socket = NodeSockets().value(n - 1);
            QString error;
            QSqlDatabase db = dbserver::OpenConnection(a, name, scratch().name(), &error);
            EXPECT_TRUE(db.isOpen()) << "node " << n << ": " << error.toStdString();
            QSqlQuery(db).exec("SET SESSION wsrep_sync_wait=1");
            m_nodes << name;
        }
        return QSqlDatabase::database(name, false);
    }
    std::vector<std::string> NodeRows(int n) { return Contents(Take(Node(n), kWorkingCopies)); }
    // The AC line L1's R1 and the generator GU's Pg (MW) in the working copies on node `n`.
    std::pair<double, double> LineAndGenerator(int n)
    {
        QSqlQuery q(Node(n));
        EXPECT_TRUE(q.exec("SELECT (SELECT R1 FROM CDB_ACLINEBAK WHERE ID_Name='L1'), (SELECT Pg "
                           "FROM CDB_GENERATBAK WHERE ID_Name='GU')") &&
                    q.next());
        return {q.value(0).toDouble(), q.value(1).toDouble()};
    }

    // Changes of an AC line and a generator in the job, the line's first.
    static void ChangeLineAndGenerator()
    {
        Exec("UPDATE L2_0 SET R1=R1+0.00011 WHERE ID_Name='L1'");
        Exec("UPDATE L5_0 SET Pg=0.500002 WHERE ID_Name='GU'"); // 50.0002 MW
    }

    // Runs `action` once, when the save-back has written its AC lines (on their count).
    static void AfterTheLines(std::function<void()> action)
    {
        // The sink is copied where it is called: the flag lives outside it.
        auto done = std::make_shared<bool>(false);
        WinDockFeedback::SetSink([action, done](const char* text, int level) {
            FeedbackRecorder::instance().record(text, level);
            if (!*done && level == MSG_PROGRESS &&
                QString::fromUtf8(text).startsWith("回存交流线数目")) {
                *done = true;
                action();
            }
        });
    }

    QStringList m_nodes;
};

TEST_F(ClusterSaveBack, ALineChangedThroughNode2DuringAWholeRunUndoesItOnEveryNode)
{
    ChangeLineAndGenerator();
    CLFCalDataTransfer job(0, kScheme, db(), &m_base);
    job.SetStatementMode(SaveStatementMode::Mended);
    job.SetAllOrNothing(true);
    QSqlDatabase node2 = Node(2);
    AfterTheLines([&] {
        QSqlQuery q(node2);
        EXPECT_TRUE(q.exec("UPDATE CDB_ACLINEBAK SET R1=0.5 WHERE GrpName='G1' AND ID_Name='L1'"))
            << q.lastError().text().toStdString();
    });
    EXPECT_EQ(job.SaveLDataToBaseDB("G1", false), 1);

    // The design's message for the statement the server refused (a later family's, or the
    // commit), then why nothing was saved.
    const std::vector<std::string> errors = feedback().texts(MSG_ERROR);
    ASSERT_EQ(errors.size(), 2u) << ::testing::PrintToString(errors);
    EXPECT_EQ(errors[0].rfind("Fail to execute SQL: ", 0), 0u) << errors[0];
    EXPECT_EQ(errors[1], sbo::MSG_CONFLICT_NOTHING_SAVED);
    EXPECT_TRUE(m_base.ModifiedTableTypes().empty());
    for (int n = 1; n <= 3; ++n) {
        // Node 2's change stands; the generator, saved after the line, is not.
        EXPECT_EQ(LineAndGenerator(n), std::make_pair(0.5, 50.0)) << "node " << n;
    }
}

TEST_F(ClusterSaveBack, Node1StoppedDuringAWholeRunLeavesNoneOfItAndRejoins)
{
    const SessionSetup setup = SetUpSession(db());
    EXPECT_TRUE(setup.galera && setup.ok()) << setup.problems.join('\n').toStdString();
    ChangeLineAndGenerator();
    const std::vector<std::string> before = NodeRows(2);
    CLFCalDataTransfer job(0, kScheme, db(), &m_base);
    job.SetStatementMode(SaveStatementMode::Mended);
    job.SetAllOrNothing(true);
    bool stopped = false;
    AfterTheLines([&] { stopped = Cluster({"stop", "1"}); });
    EXPECT_EQ(job.SaveLDataToBaseDB("NEW", true), 1);
    ASSERT_TRUE(stopped);

    const std::vector<std::string> errors = feedback().texts(MSG_ERROR);
    ASSERT_EQ(errors.size(), 2u) << ::testing::PrintToString(errors);
    EXPECT_EQ(errors[0].rfind("Fail to execute SQL: ", 0), 0u) << errors[0];
    EXPECT_EQ(errors[1], sbo::MSG_NOTHING_SAVED);
    EXPECT_EQ(NodeRows(2), before);
    EXPECT_EQ(NodeRows(3), before);

    // Node 1 comes back, takes what it missed, and holds what the others hold.
    ASSERT_TRUE(Cluster({"start", "1"}));
    QString error;
    ASSERT_TRUE(dbserver::ReopenConnection(*db(), &error)) << error.toStdString();
    QSqlDatabase node1 = checker();
    ASSERT_TRUE(dbserver::ReopenConnection(node1, &error)) << error.toStdString();
    EXPECT_EQ(Scalar("SELECT VARIABLE_VALUE FROM information_schema.GLOBAL_STATUS WHERE "
                     "VARIABLE_NAME='wsrep_cluster_size'"),
              "3");
    EXPECT_EQ(Contents(Take(checker(), kWorkingCopies)), before);
    EXPECT_EQ(job.SaveLDataToBaseDB("NEW", true), 0) << "a fresh session saves it all";
    EXPECT_EQ(NodeRows(3), NodeRows(1));
}
