// stats_bench takes times, as any program of Google Benchmark does. With --instructions [PART-OF-NAME] it runs each variant
// once instead, for callgrind, and dumps the counts under the variant's name.

#include <benchmark/benchmark.h>
#include <valgrind/callgrind.h>

#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "bench.h"

void Fail(const std::string& message)
{
    fprintf(stderr, "stats_bench: %s\n", message.c_str());
    exit(1);
}

static void CountInstructions(const std::vector<Variant>& variants, std::string_view part)
{
    for (const Variant& variant : variants)
    {
        if (variant.name.find(part) == std::string::npos) continue;
        variant.run(); // the dynamic linker binds at the first call
        FlushAll();
        CALLGRIND_ZERO_STATS;
        variant.run();
        CALLGRIND_DUMP_STATS_AT(variant.name.c_str());
    }
}

int main(int argumentCount, char** arguments)
{
    static char buffer[65536];
    setvbuf(stdout, buffer, _IOFBF, sizeof buffer);

    std::vector<Variant> variants = ReportVariants();
    for (Variant& variant : ServiceVariants()) variants.push_back(std::move(variant));
    if (argumentCount > 1 && std::string_view(arguments[1]) == "--instructions")
    {
        CountInstructions(variants, argumentCount > 2 ? arguments[2] : "");
        return 0;
    }

    for (const Variant& variant : variants)
        benchmark::RegisterBenchmark(variant.name.c_str(),
                                     [&variant](benchmark::State& state)
                                     {
                                         for (auto _ : state) variant.run();
                                     });
    RegisterThreads();
    RegisterTool();
    benchmark::Initialize(&argumentCount, arguments);
    if (benchmark::ReportUnrecognizedArguments(argumentCount, arguments)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
