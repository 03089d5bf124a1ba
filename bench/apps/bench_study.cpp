// The whole load-flow study of calcdata_demo on the synthetic network, each repetition on a
// fresh database of the private MariaDB: in the batched write mode (the program's default)
// and with the design's statements record by record (--faithful-statements), both with the
// mended save-back so that only the write mode differs. Counters per step: elapsed seconds
// ("<step>_s"), the program's CPU seconds ("<step>_cpu_s") and the server's
// ("<step>_server_cpu_s"); "study_s" is the sum of the steps, the time shown. Run:
//   build/bench/apps/bench_study
// (one size: --benchmark_filter=/10000 or /100000).

#include "BenchStats.h"
#include "SampleNetwork.h"
#include "ServerConnection.h"
#include "Study.h"
#include "rtdb/rtdb.h"

#include <benchmark/benchmark.h>
#include <string>
#include <vector>

namespace {

// The steps as Study keeps their times, in order.
const char* const kSteps[] = {"network",   "extraction", "records",     "import",
                              "load_flow", "results",    "update_back", "save_back"};

void RunStudy(benchmark::State& state, RecordWriteMode mode)
{
    const int nodes = static_cast<int>(state.range(0));
    const samples::Network net = samples::MakeSyntheticNetwork(nodes);
    std::vector<double> wall(std::size(kSteps)), cpu(std::size(kSteps)), server(std::size(kSteps));
    for (auto _ : state) {
        dbserver::ScratchDatabase scratch(QStringLiteral("benchstudy"));
        dbDatabase rtdb;
        rtdb.open("study");
        demo::Study study(scratch.db(), &rtdb);
        const dbserver::ServerCpuClock clock(*scratch.db());
        study.setServerClock(&clock);
        study.setWriteMode(mode);
        const bool ok = scratch.ok() && study.LoadNetwork(net) && study.Extract() &&
                        study.BuildAndImport() && study.Solve() && study.StoreResults() &&
                        study.ChangeAndSaveBack("NEW", SaveStatementMode::Mended) &&
                        study.saveBackResult() == 0 && study.times().size() == std::size(kSteps);
        rtdb.close();
        if (!ok) {
            state.SkipWithError(("the study did not come to its end: " + study.error()).toUtf8());
            return;
        }
        double total = 0;
        for (std::size_t k = 0; k < std::size(kSteps); ++k) {
            const demo::StepTime& t = study.times()[k];
            wall[k] += t.ms / 1e3;
            cpu[k] += t.programCpuMs / 1e3;
            server[k] += t.serverCpuMs / 1e3;
            total += t.ms / 1e3;
        }
        state.SetIterationTime(total);
    }
    const double n = static_cast<double>(state.iterations());
    double total = 0, totalCpu = 0, totalServer = 0;
    for (std::size_t k = 0; k < std::size(kSteps); ++k) {
        const std::string step = kSteps[k];
        state.counters[step + "_s"] = wall[k] / n;
        state.counters[step + "_cpu_s"] = cpu[k] / n;
        state.counters[step + "_server_cpu_s"] = server[k] / n;
        total += wall[k] / n, totalCpu += cpu[k] / n, totalServer += server[k] / n;
    }
    state.counters["study_s"] = total;
    state.counters["study_cpu_s"] = totalCpu;
    state.counters["study_server_cpu_s"] = totalServer;
}

void BM_StudyBatched(benchmark::State& state)
{
    RunStudy(state, RecordWriteMode::Batched);
}
void BM_StudyPerRecord(benchmark::State& state)
{
    RunStudy(state, RecordWriteMode::PerRecord);
}
BENCHMARK(BM_StudyBatched)
    ->Arg(10000)
    ->Arg(100000)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1)
    ->UseManualTime()
    ->Apply(benchstats::Repeated);
BENCHMARK(BM_StudyPerRecord)
    ->Arg(10000)
    ->Arg(100000)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1)
    ->UseManualTime()
    ->Apply(benchstats::Repeated);

} // namespace
