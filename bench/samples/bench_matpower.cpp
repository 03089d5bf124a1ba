// A MATPOWER case of N buses read and put into a base database: the reader and the
// writer of samples/ timed apart in each run, against the private MariaDB (eval
// "$(scripts/db.sh env)" first). The case is the synthetic network of N buses, written as
// a MATPOWER file once (no public case of 10,000 buses is kept here).

#include "SampleNetwork.h"
#include "ServerBench.h"
#include "ServerConnection.h"

#include <QElapsedTimer>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>

namespace {

void BM_ReadAndLoadMatpowerCase(benchmark::State& state)
{
    dbserver::ScratchDatabase scratch(QStringLiteral("bench"));
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("synthetic.m"));
    QString error;
    if (!scratch.ok() || !dir.isValid() ||
        !samples::WriteMatpowerCase(
            path, samples::MakeSyntheticNetwork(static_cast<int>(state.range(0))), error)) {
        state.SkipWithError(qPrintable(scratch.ok() ? error : scratch.error()));
        return;
    }
    QSqlQuery q(*scratch.db());
    double read = 0, load = 0;
    for (auto _ : state) {
        state.PauseTiming();
        for (const char* table :
             {"CDB_SBBAK", "CDB_BUSBAK", "CDB_NODEBAK", "CDB_PSTATIONBAK", "CDB_ZONEBAK",
              "CDB_LOADBAK", "CDB_PCAPREABAK", "CDB_GENERATBAK", "CDB_BREAKERBAK",
              "CDB_ISOSWITCHBAK", "CDB_ACLINEBAK", "CDB_TRANS_2WBAK", "CDB_SHIFTBAK",
              "CDB_DATAGROUPBAK", "CDB_SCHEMEINFBAK", "CDB_SCHEMECONTBAK"}) {
            q.exec(QStringLiteral("DELETE FROM ") + table);
        }
        state.ResumeTiming();
        QElapsedTimer timer;
        timer.start();
        samples::Network net;
        QStringList notHeld;
        if (!samples::ReadMatpowerCase(path, net, notHeld, error)) {
            state.SkipWithError(qPrintable(error));
            break;
        }
        read += timer.nsecsElapsed() / 1e9;
        timer.restart();
        if (!samples::WriteNetworkToBaseDb(scratch.db(), net, "G", "SCH", error)) {
            state.SkipWithError(qPrintable(error));
            break;
        }
        load += timer.nsecsElapsed() / 1e9;
        state.counters["buses"] = static_cast<double>(net.buses.size());
    }
    const double n = static_cast<double>(state.iterations());
    state.counters["read_s"] = read / n;
    state.counters["load_s"] = load / n;
    if (read > 0) {
        state.counters["load_to_read"] = load / read;
    }
}
BENCHMARK(BM_ReadAndLoadMatpowerCase)
    ->Arg(1000)
    ->Arg(10000)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1)
    ->Repetitions(5)
    ->UseRealTime();

} // namespace
