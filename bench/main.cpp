// stats_bench takes times, as any program of Google Benchmark does. With --instructions [PART-OF-NAME] it runs each variant
// once instead, for callgrind, and dumps the counts under the variant's name; with --start-up it takes the times of processes.

#include <benchmark/benchmark.h>
#include <valgrind/callgrind.h>

#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "bench.h"

void fail(const std::string& message)
{
    fprintf(stderr, "stats_bench: %s\n", message.c_str());
    exit(1);
}

static void count_instructions(const std::vector<Variant>& variants, std::string_view part)
{
    for (const Variant& variant : variants)
    {
        if (variant.name.find(part) == std::string::npos) continue;
        variant.run(); // the dynamic linker binds at the first call
        flush_all();
        CALLGRIND_ZERO_STATS;
        variant.run();
        CALLGRIND_DUMP_STATS_AT(variant.name.c_str());
    }
}

int main(int argument_count, char** arguments)
{
    const std::string_view command = argument_count > 1 ? arguments[1] : "";
    if (command == "--start-up")
    {
        print_start_up_times();
        return 0;
    }

    static char buffer[65536];
    setvbuf(stdout, buffer, _IOFBF, sizeof buffer);
    const std::vector<Variant> variants = report_variants();
    if (command == "--instructions")
    {
        count_instructions(variants, argument_count > 2 ? arguments[2] : "");
        return 0;
    }

    for (const Variant& variant : variants)
        benchmark::RegisterBenchmark(variant.name.c_str(),
                                     [&variant](benchmark::State& state)
                                     {
                                         for (auto _ : state) variant.run();
                                     });
    register_threads();
    benchmark::Initialize(&argument_count, arguments);
    if (benchmark::ReportUnrecognizedArguments(argument_count, arguments)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
