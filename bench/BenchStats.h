#pragma once
// What the benchmark programs share for figures that must hold on a loaded machine:
// repetitions shown as median, smallest, largest and spread, and the CPU time of the
// calling thread (work done, without the time spent waiting for a processor).

#include <algorithm>
#include <benchmark/benchmark.h>
#include <ctime>
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

} // namespace benchstats
