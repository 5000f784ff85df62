#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cstdio>

#include "all_reports.h"
#include "bench.h"

enum class Locking
{
    line,   // as stdio does by itself
    report, // the caller keeps a report in one piece
};

static void print_all(benchmark::State& state, Locking locking)
{
    const records::Snapshot snapshot = sources::sample("live-srt-1080i", frozen_moment);
    std::array<void*, records::component_count> functions;
    std::ranges::transform(records::components(), functions.begin(), report_function);
    for (auto _ : state)
    {
        for (const records::Component& component : records::components())
        {
            if (locking == Locking::report) flockfile(stdout);
            component.print(functions[component.index], snapshot.record(component).data(), STATS_LEVEL_DEBUG);
            if (locking == Locking::report) funlockfile(stdout);
        }
    }
}

void register_threads()
{
    const auto add = [](const char* name, Locking locking)
    {
        benchmark::RegisterBenchmark(name, [locking](benchmark::State& state) { print_all(state, locking); })
            ->Threads(1)
            ->Threads(2)
            ->Threads(4)
            ->UseRealTime();
    };
    add("threads/line", Locking::line);
    add("threads/report", Locking::report);
}
