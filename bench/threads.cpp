#include <benchmark/benchmark.h>

#include <cstdio>

#include "all_reports.h"
#include "bench.h"
#include "frozen_clock.h"

enum class Locking
{
    line,   // as stdio does by itself
    report, // the caller keeps a report in one piece
};

static void print_all(benchmark::State& state, Locking locking)
{
    SAMPLES_RECORDS records;
    samples_find("live-srt-1080i")->pFill(&records, frozen_now);
    for (auto _ : state)
    {
        for (const Report& report : all_reports)
        {
            if (locking == Locking::report) flockfile(stdout);
            report.print(RecordOf(records, report), STATS_LEVEL_DEBUG);
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
