// Extraction of a synthetic network by calculation scheme into job 0, against the
// private MariaDB (eval "$(scripts/db.sh env)" first).

#include "SampleNetwork.h"
#include "ServerConnection.h"
#include "loadflow/jobdata/LFCalDataTransfer.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QSqlQuery>
#include <benchmark/benchmark.h>

namespace {

// The server's own execution time of the statements one connection sends, from the slow
// query log kept in its table with a threshold of zero. Everything else of a run's wall
// time (the library, Qt's driver, the client protocol) is the library's share.
class ServerStatementTime
{
public:
    explicit ServerStatementTime(fixtures::ScratchDatabase& scratch)
        : m_reader(scratch.openSecondConnection(QStringLiteral("slowlog")))
    {
        QSqlQuery q(*scratch.db());
        q.exec("SELECT CONNECTION_ID()");
        m_thread = q.next() ? q.value(0).toLongLong() : -1;
        QSqlQuery r(m_reader);
        r.exec("SELECT @@log_output, @@slow_query_log");
        if (r.next()) {
            m_oldOutput = r.value(0).toString();
            m_oldSlowLog = r.value(1).toString();
        }
        r.exec("SET GLOBAL log_output='FILE,TABLE'");
        r.exec("SET GLOBAL slow_query_log=1");
        q.exec("SET SESSION long_query_time=0");
        q.exec("SET SESSION log_slow_filter=''"); // every kind of statement, not only scans
    }
    ~ServerStatementTime()
    {
        QSqlQuery r(m_reader);
        r.exec("SET GLOBAL slow_query_log=" + m_oldSlowLog);
        r.exec("SET GLOBAL log_output='" + m_oldOutput + "'");
    }
    void reset() { QSqlQuery(m_reader).exec("TRUNCATE TABLE mysql.slow_log"); }
    // Seconds the server spent in this connection's statements since the last reset.
    double seconds()
    {
        QSqlQuery r(m_reader);
        r.exec(QString("SELECT SUM(TIME_TO_SEC(query_time)) FROM mysql.slow_log WHERE "
                       "thread_id=%1")
                   .arg(m_thread));
        return r.next() ? r.value(0).toDouble() : 0.0;
    }

private:
    QSqlDatabase m_reader;
    long long m_thread = -1;
    QString m_oldOutput = "FILE";
    QString m_oldSlowLog = "0";
};

void BM_ExtractSynthetic(benchmark::State& state)
{
    fixtures::ScratchDatabase scratch(QStringLiteral("bench"));
    if (!scratch.ok()) {
        state.SkipWithError(qPrintable(scratch.error()));
        return;
    }
    QString error;
    const samples::Network net = samples::MakeSyntheticNetwork(static_cast<int>(state.range(0)));
    if (!samples::WriteNetworkToBaseDb(scratch.db(), net, "G", "SCH", error)) {
        state.SkipWithError(qPrintable(error));
        return;
    }
    char scheme[] = "SCH";
    ServerStatementTime server(scratch);
    double wall = 0, inServer = 0;
    for (auto _ : state) {
        state.PauseTiming();
        server.reset();
        state.ResumeTiming();
        QElapsedTimer timer;
        timer.start();
        CLFCalDataTransfer job(0, scheme, scratch.db(), nullptr);
        if (job.ImportLDataFromBaseDB() != 0) {
            state.SkipWithError("extraction failed");
            break;
        }
        wall += timer.nsecsElapsed() / 1e9;
        state.PauseTiming();
        inServer += server.seconds();
        state.ResumeTiming();
        state.counters["nodes"] = job.Nbus;
    }
    if (wall > 0) {
        state.counters["server_s"] = inServer / state.iterations();
        state.counters["library_share_%"] = 100.0 * (wall - inServer) / wall;
    }
}
BENCHMARK(BM_ExtractSynthetic)
    ->Arg(1000)
    ->Arg(10000)
    ->Arg(100000)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(3)
    ->UseRealTime();

// Save-back of the same job after 10 % of its lines were changed and 1 % of its rows made
// orphans. On this server the run stops at the two-winding transformers (their statement
// is refused, as designed), so the time is that of the line families and the refusal.
void BM_SaveBack(benchmark::State& state)
{
    fixtures::ScratchDatabase scratch(QStringLiteral("bench"));
    QString error;
    const samples::Network net = samples::MakeSyntheticNetwork(static_cast<int>(state.range(0)));
    char scheme[] = "SCH";
    if (!scratch.ok() || !samples::WriteNetworkToBaseDb(scratch.db(), net, "G", "SCH", error) ||
        CLFCalDataTransfer(0, scheme, scratch.db(), nullptr).ImportLDataFromBaseDB() != 0) {
        state.SkipWithError("the network could not be prepared");
        return;
    }
    QSqlQuery q(*scratch.db());
    q.exec("UPDATE L2_0 SET R1=R1*1.01 WHERE MOD(EleID, 10)=0");
    q.exec("UPDATE L2_0 SET EleID=EleID+100000000 WHERE MOD(EleID, 100)=1");
    int changed = 0;
    for (auto _ : state) {
        state.PauseTiming();
        q.exec("DELETE FROM CDB_ACLINEBAK WHERE GrpName='NEW'");
        q.exec("DROP TEMPORARY TABLE IF EXISTS T2W");
        state.ResumeTiming();
        CLFCalDataTransfer job(0, scheme, scratch.db(), nullptr);
        job.SaveLDataToBaseDB("NEW", true);
        changed = job.Nacline;
    }
    state.counters["lines_changed"] = changed;
}
BENCHMARK(BM_SaveBack)
    ->Arg(10000)
    ->Arg(100000)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(2)
    ->UseRealTime();

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
