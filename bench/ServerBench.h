#pragma once
// What the benchmark programs of the SQL server share with their main
// (ServerBenchMain.cpp).
//
// The main reports, beside Google Benchmark's table, the growth of each benchmark run at
// two or more sizes (its first argument): the ratio of the medians of its repetitions,
// for the elapsed time and for every counter in seconds (names ending in "_s", rates left out).

#include <functional>

namespace serverbench {

// Runs `release` after the last benchmark, while Qt's application object and the
// server's connections are still there: for what a benchmark keeps across repetitions.
void ReleaseAtEnd(std::function<void()> release);

} // namespace serverbench
