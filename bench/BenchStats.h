#pragma once
// What the benchmark programs share for figures that must hold on a loaded machine:
// repetitions shown as median, smallest, largest and spread, and the CPU time of the
// calling thread (work done, without the time spent waiting for a processor).

#include <algorithm>
#include <benchmark/benchmark.h>
#include <chrono>
#include <ctime>
#include <string>
#include <vector>

namespace benchstats {

inline double Median(std::vector<double> v)
{
    if (v.empty()) {
        return 0;
    }
    std::sort(v.begin(), v.end());
    const std::size_t n = v.size();
    return n % 2 ? v[n / 2] : (v[n / 2 - 1] + v[n / 2]) / 2;
}

inline double Min(const std::vector<double>& v)
{
    return v.empty() ? 0 : *std::min_element(v.begin(), v.end());
}

inline double Max(const std::vector<double>& v)
{
    return v.empty() ? 0 : *std::max_element(v.begin(), v.end());
}

// The range of the repetitions against their median.
inline double Spread(const std::vector<double>& v)
{
    const double m = Median(v);
    return m != 0 ? (Max(v) - Min(v)) / m : 0;
}

// Five repetitions, shown as their aggregates: mean, median, standard deviation and
// coefficient of variation, and beside them min, max and spread. For ->Apply().
inline void Repeated(benchmark::internal::Benchmark* b)
{
    b->Repetitions(5)
        ->DisplayAggregatesOnly(true)
        ->ComputeStatistics("min", &Min)
        ->ComputeStatistics("max", &Max)
        ->ComputeStatistics("spread", &Spread, benchmark::kPercentage);
}

inline double ThreadCpuSeconds()
{
    timespec ts{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &ts);
    return static_cast<double>(ts.tv_sec) + static_cast<double>(ts.tv_nsec) * 1e-9;
}

// The save-back's options against the ordinary save-back, in the same run. Each iteration
// runs `run(kind)` for the ordinary save-back, its preview and its all-or-nothing run, in an
// order that turns from one iteration to the next (the machine is shared), each after
// `before(kind)`, untimed, which puts the job and the base rows where every run starts.
// `run` returns false when a run did not come to its end. Counters: the ordinary run's
// median seconds, and each option's ratio to it as median, least, greatest and spread.
enum SaveBackRun { Ordinary, Preview, AllOrNothing };
template <class Before, class Run>
void SaveBackOptionRatios(benchmark::State& state, Before before, Run run)
{
    std::vector<double> previewRatio, wholeRatio, ordinarySeconds;
    bool ok = true;
    int turn = 0;
    for (auto _ : state) {
        double seconds[3] = {0, 0, 0};
        for (int k = 0; k < 3; ++k) {
            const SaveBackRun kind = SaveBackRun((k + turn) % 3);
            state.PauseTiming();
            before(kind);
            state.ResumeTiming();
            const auto start = std::chrono::steady_clock::now();
            ok &= run(kind);
            seconds[kind] =
                std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        }
        ++turn;
        ordinarySeconds.push_back(seconds[Ordinary]);
        previewRatio.push_back(seconds[Preview] / seconds[Ordinary]);
        wholeRatio.push_back(seconds[AllOrNothing] / seconds[Ordinary]);
    }
    if (!ok) {
        state.SkipWithError("a run did not come to its end");
        return;
    }
    auto spread = [&](const char* name, const std::vector<double>& v) {
        state.counters[std::string(name) + "_median"] = Median(v);
        state.counters[std::string(name) + "_min"] = Min(v);
        state.counters[std::string(name) + "_max"] = Max(v);
        state.counters[std::string(name) + "_spread"] = Spread(v);
    };
    state.counters["ordinary_s"] = Median(ordinarySeconds);
    spread("preview_ratio", previewRatio);
    spread("all_or_nothing_ratio", wholeRatio);
}

} // namespace benchstats
