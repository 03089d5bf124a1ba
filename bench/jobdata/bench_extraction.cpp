// Extraction of a synthetic network by calculation scheme into job 0, against the
// private MariaDB (eval "$(scripts/db.sh env)" first).

#include "SampleNetwork.h"
#include "ServerConnection.h"
#include "loadflow/jobdata/LFCalDataTransfer.h"

#include <QCoreApplication>
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
    for (auto _ : state) {
        CLFCalDataTransfer job(0, scheme, scratch.db(), nullptr);
        if (job.ImportLDataFromBaseDB() != 0) {
            state.SkipWithError("extraction failed");
            break;
        }
        state.counters["nodes"] = job.Nbus;
    }
}
BENCHMARK(BM_ExtractSynthetic)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond)->Iterations(3)->UseRealTime();

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
