// Job rows into the real-time database (ImportLDataToRTDB) and back (UpdateLDataFromRTDB)
// on the synthetic network, against the private MariaDB. The network records are built
// beforehand by the demo's own step.

#include "RecordBuilder.h"
#include "SampleNetwork.h"
#include "ServerConnection.h"
#include "loadflow/jobdata/LFCalDataTransfer.h"
#include "loadflow/realtime/LFCalDataToRTDB.h"
#include "loadflow/realtime/LFRealtimeStatements.h"
#include "rtdb/rtdb.h"

#include <QElapsedTimer>
#include <QSqlQuery>
#include <QSqlRecord>
#include <benchmark/benchmark.h>

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

bool Prepare(benchmark::State& state, fixtures::ScratchDatabase& scratch, dbDatabase& rtdb)
{
    QString error;
    const samples::Network net = samples::MakeSyntheticNetwork(static_cast<int>(state.range(0)));
    char scheme[] = "SCH";
    demo::RecordCounts counts;
    if (!scratch.ok() || !samples::WriteNetworkToBaseDb(scratch.db(), net, "G", "SCH", error) ||
        CLFCalDataTransfer(0, scheme, scratch.db(), nullptr).ImportLDataFromBaseDB() != 0 ||
        !demo::BuildNetworkRecords(scratch.db(), 0, &rtdb, counts, error)) {
        state.SkipWithError("the network could not be prepared");
        return false;
    }
    return true;
}

// The job's rows read as the import reads them (the same statements, forward only, every
// value taken out of Qt's result) without touching the real-time database: server and Qt.
double ReadJobRowsWithQt(QSqlDatabase* db)
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
        q.setForwardOnly(true);
        q.exec(QString(sql).replace("%s", table));
        const int columns = q.record().count();
        while (q.next()) {
            for (int i = 0; i < columns; ++i) {
                sum += q.value(i).isNull() ? 0 : 1;
            }
        }
    }
    return sum;
}

// Where the time of one import goes: the server's execution of the statements (its slow
// log), Qt's result handling (a read-only pass minus its server time) and the rest, the
// real-time database and the library's own work (the import minus the read-only pass).
void BM_ImportJobRows(benchmark::State& state)
{
    fixtures::ScratchDatabase scratch(QStringLiteral("benchrt"));
    dbDatabase rtdb;
    rtdb.open("bench");
    if (!Prepare(state, scratch, rtdb)) {
        return;
    }
    const int rows = JobRows(scratch.db());
    fixtures::ServerStatementTime server(scratch);
    double importWall = 0, importServer = 0, readWall = 0, readServer = 0;
    for (auto _ : state) {
        server.reset();
        QElapsedTimer timer;
        timer.start();
        CLFCalDataToRTDB job(0, scratch.db());
        job.ImportLDataToRTDB();
        rtdb.commit();
        importWall += timer.nsecsElapsed() / 1e9;
        state.PauseTiming();
        importServer += server.seconds();
        server.reset();
        timer.restart();
        benchmark::DoNotOptimize(ReadJobRowsWithQt(scratch.db()));
        readWall += timer.nsecsElapsed() / 1e9;
        readServer += server.seconds();
        state.ResumeTiming();
    }
    state.counters["job_rows"] = rows;
    state.counters["rows_per_s"] =
        benchmark::Counter(rows * double(state.iterations()), benchmark::Counter::kIsRate);
    if (importWall > 0) {
        state.counters["server_%"] = 100.0 * importServer / importWall;
        state.counters["qt_%"] = 100.0 * (readWall - readServer) / importWall;
        state.counters["rtdb_and_library_%"] = 100.0 * (importWall - readWall) / importWall;
    }
}
BENCHMARK(BM_ImportJobRows)
    ->Arg(10000)
    ->Arg(100000)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(3)
    ->UseRealTime();

void BM_UpdateJobTables(benchmark::State& state)
{
    fixtures::ScratchDatabase scratch(QStringLiteral("benchrt"));
    dbDatabase rtdb;
    rtdb.open("bench");
    if (!Prepare(state, scratch, rtdb)) {
        return;
    }
    CLFCalDataToRTDB job(0, scratch.db());
    job.ImportLDataToRTDB();
    rtdb.commit();
    const int rows = JobRows(scratch.db());
    for (auto _ : state) {
        job.UpdateLDataFromRTDB();
        rtdb.commit();
    }
    state.counters["rows_per_s"] =
        benchmark::Counter(rows * double(state.iterations()), benchmark::Counter::kIsRate);
}
BENCHMARK(BM_UpdateJobTables)
    ->Arg(10000)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1)
    ->UseRealTime();

} // namespace
