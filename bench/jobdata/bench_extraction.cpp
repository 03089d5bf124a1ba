// Extraction of a synthetic network by calculation scheme into job 0, and the whole
// save-back of the job with its preview and its all-or-nothing run, against the private
// MariaDB (eval "$(scripts/db.sh env)" first).

#include "BenchStats.h"
#include "SampleNetwork.h"
#include "ServerConnection.h"
#include "loadflow/jobdata/LFCalDataTransfer.h"

#include <QElapsedTimer>
#include <QSqlQuery>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <string>
#include <vector>

namespace {

void BM_ExtractSynthetic(benchmark::State& state)
{
    dbserver::ScratchDatabase scratch(QStringLiteral("bench"));
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
    dbserver::ServerStatementTime server(scratch);
    double wall = 0, inServer = 0;
    std::vector<dbserver::ServerStatementTime::Statement> slowest;
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
        slowest = server.slowest(12);
        state.ResumeTiming();
        state.counters["nodes"] = job.Nbus;
    }
    // The server's own time of the slowest statements of the last run, for the indexes
    // their joins use (EXPLAIN them on a kept database).
    for (const dbserver::ServerStatementTime::Statement& s : slowest) {
        std::printf("statement %d nodes: %8.1f ms %9lld rows examined  %s\n",
                    int(state.range(0)), s.seconds * 1e3, s.rowsExamined,
                    qPrintable(s.text.simplified().left(150)));
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

// The synthetic network of the benchmark's size with every family in group G, extracted
// into job 0, with 10 % of the rows of every job table changed beyond the tolerance and 1 %
// made orphans (their base rows gone). False, with the benchmark told so, when something
// could not be made.
bool PrepareChangedJob(dbserver::ScratchDatabase& scratch, benchmark::State& state)
{
    QString error;
    const samples::Network net = samples::MakeSyntheticNetwork(static_cast<int>(state.range(0)));
    char scheme[] = "SCH";
    QSqlQuery q(*scratch.db());
    bool ok = scratch.ok() && samples::WriteNetworkToBaseDb(scratch.db(), net, "G", "SCH", error) &&
              samples::AddOtherFamilies(scratch.db(), "G", error) &&
              CLFCalDataTransfer(0, scheme, scratch.db(), nullptr).ImportLDataFromBaseDB() == 0;
    for (const char* sql :
         {"UPDATE L2_0 SET X1=X1*1.01 WHERE MOD(EleID,10)=0",
          "UPDATE L3_0 SET X1=X1*1.01 WHERE MOD(EleID,10)=0",
          "UPDATE L4_0 SET Pd1_MW=Pd1_MW+1 WHERE MOD(EleID,10)=0",
          "UPDATE L5_0 SET Pg=Pg+0.01 WHERE MOD(EleID,10)=0",
          "UPDATE L6_0 SET Pl=Pl+0.01 WHERE MOD(EleID,10)=0",
          "UPDATE LK_0 SET Lbreak=1-Lbreak WHERE MOD(EleID,10)=0",
          "UPDATE L2_0 SET EleID=EleID+100000000 WHERE MOD(EleID,100)=1",
          "UPDATE L3_0 SET EleID=EleID+100000000 WHERE MOD(EleID,100)=1",
          "UPDATE L4_0 SET EleID=EleID+100000000 WHERE MOD(EleID,100)=1",
          "UPDATE L5_0 SET EleID=EleID+100000000 WHERE MOD(EleID,100)=1",
          "UPDATE L6_0 SET EleID=EleID+100000000 WHERE MOD(EleID,100)=1",
          "UPDATE LK_0 SET EleID=EleID+100000000 WHERE MOD(EleID,100)=1"}) {
        ok = ok && q.exec(sql);
    }
    if (!ok) {
        state.SkipWithError("the network could not be prepared");
    }
    return ok;
}

const char* const kGroupTables[] = {"CDB_ACLINEBAK",  "CDB_PCAPREABAK", "CDB_SCAPREABAK",
                                    "CDB_TRANS_2WBAK", "CDB_SHIFTBAK",   "CDB_TRANS_3WBAK",
                                    "CDB_DCLINEBAK",  "CDB_GENERATBAK", "CDB_LOADBAK",
                                    "CDB_BREAKERBAK", "CDB_ISOSWITCHBAK", "CDB_DATAGROUPBAK"};

// Removes what a save-back into group NEW wrote, so that the next run starts from the same
// base rows.
void RemoveGroup(QSqlQuery& q)
{
    for (const char* t : kGroupTables) {
        q.exec(QString("DELETE FROM %1 WHERE GrpName='NEW'").arg(t));
    }
}

// The whole save-back of the job, in the mended statement mode, into a new group: every
// family run to its end, the group's row and the orphans' nodes.
void BM_SaveBack(benchmark::State& state)
{
    dbserver::ScratchDatabase scratch(QStringLiteral("bench"));
    if (!PrepareChangedJob(scratch, state)) {
        return;
    }
    char scheme[] = "SCH";
    QSqlQuery q(*scratch.db());
    dbserver::ServerStatementTime server(scratch);
    double wall = 0, inServer = 0;
    std::vector<int> counts;
    int orphans = 0, result = -1;
    for (auto _ : state) {
        state.PauseTiming();
        RemoveGroup(q);
        server.reset();
        state.ResumeTiming();
        QElapsedTimer timer;
        timer.start();
        CLFCalDataTransfer job(0, scheme, scratch.db(), nullptr);
        job.SetStatementMode(SaveStatementMode::Mended);
        result = job.SaveLDataToBaseDB("NEW", true);
        wall += timer.nsecsElapsed() / 1e9;
        state.PauseTiming();
        inServer += server.seconds();
        counts = {job.Nacline, job.Ntrans, job.Ndcline, job.Ngenerat, job.Nload, job.Nswitch};
        state.ResumeTiming();
    }
    q.exec("SELECT (SELECT COUNT(*) FROM L2_0 WHERE EleID>100000000) + (SELECT COUNT(*) FROM "
           "L3_0 WHERE EleID>100000000) + (SELECT COUNT(*) FROM L4_0 WHERE EleID>100000000) + "
           "(SELECT COUNT(*) FROM L5_0 WHERE EleID>100000000) + (SELECT COUNT(*) FROM L6_0 WHERE "
           "EleID>100000000) + (SELECT COUNT(*) FROM LK_0 WHERE EleID>100000000)");
    orphans = q.next() ? q.value(0).toInt() : -1;
    if (result != 0) {
        state.SkipWithError("the save-back did not run to its end");
        return;
    }
    const char* names[] = {"lines", "transformers", "dc", "generators", "loads", "switches"};
    for (std::size_t k = 0; k < counts.size(); ++k) {
        state.counters[names[k]] = counts[k];
    }
    state.counters["orphan_rows"] = orphans;
    if (wall > 0) {
        state.counters["server_s"] = inServer / state.iterations();
        state.counters["library_share_%"] = 100.0 * (wall - inServer) / wall;
    }
}
BENCHMARK(BM_SaveBack)
    ->Arg(10000)
    ->Arg(100000)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(2)
    ->UseRealTime();

// The save-back's options against the ordinary save-back on the same job, in the same run,
// as ratios to it; each run into group NEW, which is removed before the next.
void BM_SaveBackOptions(benchmark::State& state)
{
    dbserver::ScratchDatabase scratch(QStringLiteral("bench"));
    if (!PrepareChangedJob(scratch, state)) {
        return;
    }
    char scheme[] = "SCH";
    QSqlQuery q(*scratch.db());
    benchstats::SaveBackOptionRatios(
        state, [&](benchstats::SaveBackRun) { RemoveGroup(q); },
        [&](benchstats::SaveBackRun kind) {
            CLFCalDataTransfer job(0, scheme, scratch.db(), nullptr);
            job.SetStatementMode(SaveStatementMode::Mended);
            job.SetAllOrNothing(kind == benchstats::AllOrNothing);
            if (kind == benchstats::Preview) {
                const SaveBackPreview p = job.PreviewLDataToBaseDB("NEW", true);
                return p.result == 0 && !p.changes.empty();
            }
            return job.SaveLDataToBaseDB("NEW", true) == 0;
        });
}
BENCHMARK(BM_SaveBackOptions)->Arg(10000)->Iterations(15)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_SaveBackOptions)->Arg(100000)->Iterations(5)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
