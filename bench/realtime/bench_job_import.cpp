// Job rows into the real-time database (ImportLDataToRTDB) and back (UpdateLDataFromRTDB)
// on the synthetic network, against the private MariaDB. The network records are built
// beforehand by the demo's own step.

#include "RecordBuilder.h"
#include "SampleNetwork.h"
#include "ServerConnection.h"
#include "loadflow/jobdata/LFCalDataTransfer.h"
#include "loadflow/realtime/LFCalDataToRTDB.h"
#include "rtdb/rtdb.h"

#include <QCoreApplication>
#include <QSqlQuery>
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

void BM_ImportJobRows(benchmark::State& state)
{
    fixtures::ScratchDatabase scratch(QStringLiteral("benchrt"));
    dbDatabase rtdb;
    rtdb.open("bench");
    if (!Prepare(state, scratch, rtdb)) {
        return;
    }
    const int rows = JobRows(scratch.db());
    for (auto _ : state) {
        CLFCalDataToRTDB job(0, scratch.db());
        job.ImportLDataToRTDB();
        rtdb.commit();
    }
    state.counters["job_rows"] = rows;
    state.counters["rows_per_s"] =
        benchmark::Counter(rows * double(state.iterations()), benchmark::Counter::kIsRate);
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

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
