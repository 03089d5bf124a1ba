// The main of the benchmark programs that use the SQL server: Qt's application object for
// the SQL driver, the server's general query log off before anything is measured, and the
// growth of each benchmark between its sizes, from the medians of its repetitions. The
// table is printed plain (no colours, counters as name=value) so that logs keep it.

#include "BenchStats.h"
#include "ServerBench.h"
#include "ServerConnection.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

namespace {

std::vector<std::function<void()>>& releases()
{
    static std::vector<std::function<void()>> r;
    return r;
}

// Google Benchmark's console table, then one line per benchmark and pair of neighbouring
// sizes: the ratio of the medians of the larger to the smaller.
class GrowthReporter : public benchmark::ConsoleReporter
{
public:
    GrowthReporter() : ConsoleReporter(OO_None) {}

    void ReportRuns(const std::vector<Run>& runs) override
    {
        for (const Run& r : runs) {
            if (r.run_type != Run::RT_Aggregate || r.aggregate_name != "median" ||
                r.error_occurred) {
                continue;
            }
            const std::string& args = r.run_name.args;
            const long long size = std::atoll(args.substr(0, args.find('/')).c_str());
            if (size <= 0) {
                continue;
            }
            Median& m = m_medians[r.run_name.function_name][size];
            m.values["time"] = r.GetAdjustedRealTime();
            for (const auto& [name, counter] : r.counters) {
                const bool seconds = name.size() > 2 && name.compare(name.size() - 2, 2, "_s") == 0;
                const bool rate = name.find("_per_") != std::string::npos;
                if (seconds && !rate) {
                    m.values[name] = counter.value;
                }
            }
        }
        ConsoleReporter::ReportRuns(runs);
    }

    void Finalize() override
    {
        for (const auto& [family, bySize] : m_medians) {
            const Median* before = nullptr;
            long long smaller = 0;
            for (const auto& [size, median] : bySize) {
                if (before) {
                    std::string line;
                    for (const auto& [name, value] : median.values) {
                        auto b = before->values.find(name);
                        if (b != before->values.end() && b->second > 0) {
                            char part[96];
                            std::snprintf(part, sizeof part, " %s %.2fx", name.c_str(),
                                          value / b->second);
                            line += part;
                        }
                    }
                    std::printf("growth %lld -> %lld of %s by medians:%s\n", smaller, size,
                                family.c_str(), line.c_str());
                }
                before = &median;
                smaller = size;
            }
        }
        std::fflush(stdout);
        ConsoleReporter::Finalize();
    }

private:
    struct Median
    {
        std::map<std::string, double> values;
    };
    std::map<std::string, std::map<long long, Median>> m_medians;
};

} // namespace

namespace serverbench {

void ReleaseAtEnd(std::function<void()> release)
{
    releases().push_back(std::move(release));
}

void WaysInTurn(benchmark::State& state, const dbserver::ServerCpuClock& server,
                const std::vector<Way>& ways)
{
    static std::size_t turn = 0;
    const std::size_t n = ways.size();
    std::vector<double> wall(n), cpu(n), serverCpu(n);
    bool ok = true;
    for (auto _ : state) {
        for (std::size_t k = 0; k < n; ++k) {
            const std::size_t w = (k + turn) % n;
            state.PauseTiming();
            if (ways[w].before) {
                ways[w].before();
            }
            const double server0 = server.seconds();
            state.ResumeTiming();
            QElapsedTimer timer;
            timer.start();
            const double cpu0 = benchstats::ThreadCpuSeconds();
            ok = ways[w].run() && ok;
            cpu[w] += benchstats::ThreadCpuSeconds() - cpu0;
            wall[w] += timer.nsecsElapsed() / 1e9;
            state.PauseTiming();
            serverCpu[w] += server0 >= 0 ? server.seconds() - server0 : 0;
            state.ResumeTiming();
        }
        ++turn;
    }
    if (!ok) {
        state.SkipWithError("a run did not come to its end");
        return;
    }
    const double iterations = static_cast<double>(state.iterations());
    for (std::size_t w = 0; w < n; ++w) {
        const std::string& name = ways[w].name;
        state.counters[name + "_s"] = wall[w] / iterations;
        state.counters[name + "_cpu_s"] = cpu[w] / iterations;
        if (server.available()) {
            state.counters[name + "_server_cpu_s"] = serverCpu[w] / iterations;
        }
        if (w > 0 && wall[0] > 0) {
            state.counters[name + "_to_" + ways[0].name] = wall[w] / wall[0];
        }
    }
}

} // namespace serverbench

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    QString error;
    if (!dbserver::TurnGeneralLogOff(&error)) {
        std::fprintf(stderr, "the server's general log stays as it is: %s\n", qPrintable(error));
    }
    GrowthReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    for (auto& release : releases()) {
        release();
    }
    benchmark::Shutdown();
    return 0;
}
