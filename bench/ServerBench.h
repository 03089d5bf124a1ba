#pragma once
// What the benchmark programs of the SQL server share with their main
// (ServerBenchMain.cpp).
//
// The main reports, beside Google Benchmark's table, the growth of each benchmark run at
// two or more sizes (its first argument): the ratio of the medians of its repetitions,
// for the elapsed time and for every counter in seconds (names ending in "_s", rates left out).

#include <benchmark/benchmark.h>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace dbserver {
class ServerCpuClock;
}

namespace serverbench {

// Runs `release` after the last benchmark, while Qt's application object and the
// server's connections are still there: for what a benchmark keeps across repetitions.
void ReleaseAtEnd(std::function<void()> release);

// What a benchmark keeps across its repetitions (a network made once per size, say): one T
// at a time, released after the last benchmark.
template <class T> std::unique_ptr<T>& Kept()
{
    static std::unique_ptr<T> kept;
    static const bool registered = (ReleaseAtEnd([] { kept.reset(); }), true);
    (void)registered;
    return kept;
}

// A transfer's iterations summed, client against server, and their counters per iteration:
// the server's statement time (its slow log) and CPU time, the client's CPU time (Qt, the
// library and the real-time database on this thread), and the client's elapsed share,
// the elapsed time less the server's statement time.
struct ClientAndServer
{
    double wall = 0, clientCpu = 0, inServer = 0, serverCpu = 0;

    void report(benchmark::State& state) const
    {
        const double n = static_cast<double>(state.iterations());
        state.counters["server_s"] = inServer / n;
        state.counters["client_s"] = (wall - inServer) / n;
        state.counters["server_cpu_s"] = serverCpu / n;
        state.counters["client_cpu_s"] = clientCpu / n;
        if (inServer > 0 && serverCpu > 0) {
            state.counters["client_to_server"] = (wall - inServer) / inServer;
            state.counters["client_cpu_to_server_cpu"] = clientCpu / serverCpu;
        }
    }
};

// Ways of doing one thing, run in turn within each iteration, in an order that turns from
// one call to the next (the machine is shared, so the ways meet the same load): each after
// its `before` (untimed). Counters, for each way: "<name>_s" its elapsed seconds,
// "<name>_cpu_s" this thread's CPU seconds, "<name>_server_cpu_s" the server's CPU seconds
// (where the clock can read them), and for each way after the first "<name>_to_<first>",
// its elapsed time over the first's. With repetitions, the
// aggregates give each counter's median, least, greatest and spread. A way whose `run`
// returns false ends the benchmark with an error.
struct Way
{
    std::string name;
    std::function<bool()> run;
    std::function<void()> before = {};
};
void WaysInTurn(benchmark::State& state, const dbserver::ServerCpuClock& server,
                const std::vector<Way>& ways);

} // namespace serverbench
