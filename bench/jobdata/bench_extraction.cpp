// Extraction of a synthetic network by calculation scheme into job 0, against the
// private MariaDB (eval "$(scripts/db.sh env)" first).

#include "SampleNetwork.h"
#include "ServerConnection.h"
#include "loadflow/jobdata/LFCalDataTransfer.h"

#include <QElapsedTimer>
#include <QSqlQuery>
#include <benchmark/benchmark.h>

namespace {

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
    fixtures::ServerStatementTime server(scratch);
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
