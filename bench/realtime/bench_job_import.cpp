// Job rows into the real-time database (ImportLDataToRTDB) and back (UpdateLDataFromRTDB)
// on the synthetic network, against the private MariaDB. The network records are built
// beforehand by the demo's own step. The way back both with the design's statements and
// in the batched write mode, in turn on the same job:
//   build/bench/realtime/bench_realtime --benchmark_filter=UpdateBackModes

#include "BenchStats.h"
#include "RecordBuilder.h"
#include "SampleNetwork.h"
#include "ServerBench.h"
#include "ServerConnection.h"
#include "common/SqlRows.h"
#include "loadflow/jobdata/LFCalDataTransfer.h"
#include "loadflow/realtime/LFCalDataToRTDB.h"
#include "loadflow/realtime/LFRealtimeStatements.h"
#include "rtdb/rtdb.h"

#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QSqlQuery>
#include <QSqlRecord>
#include <benchmark/benchmark.h>
#include <memory>

namespace {

int JobRows(QSqlDatabase* db)
{
    int rows = 0;
    QSqlQuery q(*db);
    for (const char* t : {"L1_0", "L2_0", "L3_0", "L4_0", "L5_0", "L6_0", "LK_0"}) {
        q.exec(QString("SELECT COUNT(*) FROM %1").arg(t));
        rows += q.next() ? q.value(0).toInt() : 0;
    }
    return rows;
}

// A network extracted into job 0 with its records built: made once per size and kept
// across the repetitions, since making it takes longer than measuring it. One at a time,
// as the record classes belong to one database.
struct PreparedNetwork
{
    int nodes = 0;
    dbserver::ScratchDatabase scratch{QStringLiteral("benchrt")};
    dbDatabase rtdb;
    bool ok = false;
    int rows = 0;
    std::unique_ptr<dbserver::ServerStatementTime> server;
};

PreparedNetwork* Prepare(benchmark::State& state)
{
    const int nodes = static_cast<int>(state.range(0));
    auto& p = serverbench::Kept<PreparedNetwork>();
    if (!p || p->nodes != nodes) {
        p.reset();
        p = std::make_unique<PreparedNetwork>();
        p->nodes = nodes;
        p->rtdb.open("bench");
        QString error;
        const samples::Network net = samples::MakeSyntheticNetwork(nodes);
        char scheme[] = "SCH";
        demo::RecordCounts counts;
        p->ok =
            p->scratch.ok() &&
            samples::WriteNetworkToBaseDb(p->scratch.db(), net, "G", "SCH", error) &&
            CLFCalDataTransfer(0, scheme, p->scratch.db(), nullptr).ImportLDataFromBaseDB() == 0 &&
            demo::BuildNetworkRecords(p->scratch.db(), 0, &p->rtdb, counts, error);
        p->rows = p->ok ? JobRows(p->scratch.db()) : 0;
        p->server = std::make_unique<dbserver::ServerStatementTime>(p->scratch);
    }
    if (!p->ok) {
        state.SkipWithError("the network could not be prepared");
        return nullptr;
    }
    return p.get();
}

// The job's rows read with the import's statements as the import reads them (CSqlRows):
// each row's name as text, every other selected value as a number, without touching the
// real-time database: the server, the driver and the reading of the values alone.
double ReadJobRows(QSqlDatabase* db)
{
    const QString l4 = QString(lfrt::SQL_L4_SELECT) + lfrt::SQL_L4_FROM;
    const std::pair<QString, const char*> selects[] = {
        {lfrt::SQL_L1_SELECT, "L1_0"}, {lfrt::SQL_L2_SELECT, "L2_0"},
        {lfrt::SQL_L3_SELECT, "L3_0"}, {l4, "L4_0"},
        {lfrt::SQL_L5_SELECT, "L5_0"}, {lfrt::SQL_L6_SELECT, "L6_0"},
        {lfrt::SQL_LK_SELECT, "LK_0"}};
    double sum = 0;
    for (const auto& [sql, table] : selects) {
        QSqlQuery q(*db);
        CSqlRows rows;
        rows.exec(q, QString(sql).replace("%s", table));
        const int columns = q.record().count();
        while (rows.next()) {
            sum += static_cast<double>(rows.toLocal8Bit(0).size());
            for (int i = 1; i < columns; ++i) {
                sum += rows.toDouble(i);
            }
        }
    }
    return sum;
}

// One import per iteration into records whose job marks were cleared first, so that every
// import changes every record it meets; client against server as ClientAndServer tells. A
// pass that only reads the rows splits the client's share into the reading (Qt's driver and
// CSqlRows) and the rest (the real-time database and the library's own work).
void BM_ImportJobRows(benchmark::State& state)
{
    PreparedNetwork* p = Prepare(state);
    if (!p) {
        return;
    }
    QSqlDatabase* db = p->scratch.db();
    dbserver::ServerStatementTime& server = *p->server;
    serverbench::ClientAndServer sums;
    double readWall = 0, readServer = 0, readCpu = 0;
    for (auto _ : state) {
        state.PauseTiming();
        CLFCalDataToRTDB(0, db).InValidateLFCalDataInRTDB(false);
        p->rtdb.commit();
        server.reset();
        state.ResumeTiming();
        QElapsedTimer timer;
        timer.start();
        const double cpu0 = benchstats::ThreadCpuSeconds();
        CLFCalDataToRTDB job(0, db);
        job.ImportLDataToRTDB();
        p->rtdb.commit();
        sums.clientCpu += benchstats::ThreadCpuSeconds() - cpu0;
        sums.wall += timer.nsecsElapsed() / 1e9;
        state.PauseTiming();
        sums.serverCpu += server.cpuSeconds();
        sums.inServer += server.seconds();
        server.reset();
        timer.restart();
        const double readCpu0 = benchstats::ThreadCpuSeconds();
        benchmark::DoNotOptimize(ReadJobRows(db));
        readCpu += benchstats::ThreadCpuSeconds() - readCpu0;
        readWall += timer.nsecsElapsed() / 1e9;
        readServer += server.seconds();
        state.ResumeTiming();
    }
    const double n = static_cast<double>(state.iterations());
    state.counters["job_rows"] = p->rows;
    state.counters["rows_per_s"] = benchmark::Counter(p->rows * n, benchmark::Counter::kIsRate);
    sums.report(state);
    if (sums.wall > 0 && sums.clientCpu > 0) {
        state.counters["server_%"] = 100.0 * sums.inServer / sums.wall;
        state.counters["reading_%"] = 100.0 * (readWall - readServer) / sums.wall;
        state.counters["rtdb_and_library_%"] = 100.0 * (sums.wall - readWall) / sums.wall;
        state.counters["reading_cpu_%"] = 100.0 * readCpu / sums.clientCpu;
    }
}
BENCHMARK(BM_ImportJobRows)
    ->Arg(10000)
    ->Arg(100000)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(2)
    ->UseRealTime()
    ->Apply(benchstats::Repeated);

// The statements of one run of the way back, as the server logged them, into a file of
// SQL that the mariadb client replays: the same round trips with a small C client in front,
// the floor under what any client of these statements, one at a time, can reach.
bool CaptureStatements(PreparedNetwork& p, CLFCalDataToRTDB& job, const QString& path)
{
    QSqlQuery main(*p.scratch.db());
    main.exec("SELECT CONNECTION_ID()");
    const QString thread = main.next() ? main.value(0).toString() : QString("-1");
    QSqlQuery log(p.scratch.openSecondConnection(QStringLiteral("generallog")));
    log.exec("SELECT COUNT(*) FROM mysql.general_log WHERE thread_id=" + thread);
    const long long before = log.next() ? log.value(0).toLongLong() : 0;
    log.exec("SET GLOBAL log_output='FILE,TABLE'");
    log.exec("SET GLOBAL general_log=1");
    job.UpdateLDataFromRTDB();
    p.rtdb.commit();
    log.exec("SET GLOBAL general_log=0");
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) ||
        !log.exec("SELECT argument FROM mysql.general_log WHERE command_type='Query' AND "
                  "thread_id=" + thread)) {
        return false;
    }
    long long seen = 0;
    while (log.next()) {
        if (seen++ >= before) {
            file.write(log.value(0).toString().toUtf8() + ";\n");
        }
    }
    return seen > before;
}

// The way back sends one statement per record, as designed: client against server as
// ClientAndServer tells, and the same statements replayed by the mariadb client. What the
// library and Qt spend is the elapsed time above the replay's, and the client's CPU.
void BM_UpdateJobTables(benchmark::State& state)
{
    PreparedNetwork* p = Prepare(state);
    if (!p) {
        return;
    }
    CLFCalDataToRTDB job(0, p->scratch.db());
    job.ImportLDataToRTDB();
    p->rtdb.commit();
    QTemporaryDir dir;
    const QString statements = dir.filePath("update.sql");
    if (!CaptureStatements(*p, job, statements)) {
        state.SkipWithError("the statements could not be captured");
        return;
    }
    dbserver::ServerStatementTime& server = *p->server;
    serverbench::ClientAndServer sums;
    double replay = 0;
    for (auto _ : state) {
        state.PauseTiming();
        server.reset();
        state.ResumeTiming();
        QElapsedTimer timer;
        timer.start();
        const double cpu0 = benchstats::ThreadCpuSeconds();
        job.UpdateLDataFromRTDB();
        p->rtdb.commit();
        sums.clientCpu += benchstats::ThreadCpuSeconds() - cpu0;
        sums.wall += timer.nsecsElapsed() / 1e9;
        state.PauseTiming();
        sums.serverCpu += server.cpuSeconds();
        sums.inServer += server.seconds();
        timer.restart();
        if (!p->scratch.runFile(statements)) {
            state.SkipWithError("the mariadb client could not replay the statements");
        }
        replay += timer.nsecsElapsed() / 1e9;
        state.ResumeTiming();
    }
    const double n = static_cast<double>(state.iterations());
    state.counters["rows_per_s"] = benchmark::Counter(p->rows * n, benchmark::Counter::kIsRate);
    sums.report(state);
    if (sums.wall > 0) {
        state.counters["server_%"] = 100.0 * sums.inServer / sums.wall;
        state.counters["replay_s"] = replay / n;
        state.counters["above_replay_s"] = (sums.wall - replay) / n;
    }
}
BENCHMARK(BM_UpdateJobTables)
    ->Arg(10000)
    ->Arg(100000)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1)
    ->UseRealTime()
    ->Apply(benchstats::Repeated);

// The way back in both write modes on the same job, in turn: the design's statement per
// record against the batched mode (one load and one update per family), with each one's
// program and server CPU; per_record_to_batched is how many times longer the statements
// take. Each repetition runs both once.
void BM_UpdateBackModes(benchmark::State& state)
{
    PreparedNetwork* p = Prepare(state);
    if (!p) {
        return;
    }
    QSqlDatabase* db = p->scratch.db();
    CLFCalDataToRTDB job(0, db);
    job.ImportLDataToRTDB();
    p->rtdb.commit();
    const dbserver::ServerCpuClock server(*db);
    auto way = [&](RecordWriteMode mode) {
        return [&, mode]() {
            job.SetWriteMode(mode);
            const bool ok = job.UpdateLDataFromRTDB() == 0;
            p->rtdb.commit();
            return ok;
        };
    };
    serverbench::WaysInTurn(state, server,
                            {{"batched", way(RecordWriteMode::Batched)},
                             {"per_record", way(RecordWriteMode::PerRecord)}});
    state.counters["job_rows"] = p->rows;
}
BENCHMARK(BM_UpdateBackModes)
    ->Arg(10000)
    ->Arg(100000)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1)
    ->UseRealTime()
    ->Apply(benchstats::Repeated);

} // namespace
