/**
 * @file diagnosis.cpp
 * What a diagnosis costs: a window of one decoder, and a second of a thousand decoders that are looked at each second. And
 * what it costs to let a sample live for a second.
 */
#include <benchmark/benchmark.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "diagnosis.h"
#include "living.h"

namespace
{

using namespace std::chrono_literals;

/** Two moments of a decoder that something is wrong with. @param fault NULL = nothing is */
std::pair<records::Snapshot, records::Snapshot> window(const char* scenario, const char* fault)
{
    samples::Simulation simulation(scenario, 1, start);
    if (fault != nullptr) simulation.inject(fault);
    simulation.advance(20s);
    records::Snapshot before = snapshot_of(simulation);
    simulation.advance(10s);
    return {std::move(before), snapshot_of(simulation)};
}

void a_window(benchmark::State& state, const char* scenario, const char* fault)
{
    const auto [before, now] = window(scenario, fault);
    for (auto _ : state) benchmark::DoNotOptimize(diagnosis::diagnose(before, now));
}
BENCHMARK_CAPTURE(a_window, healthy, "live-srt-1080i", nullptr);
BENCHMARK_CAPTURE(a_window, healthy_fec, "rtp-fec-2160p", nullptr);
BENCHMARK_CAPTURE(a_window, losses, "live-srt-1080i", "srt-loss");
BENCHMARK_CAPTURE(a_window, trouble, "trouble", nullptr);

/** Each decoder has a new snapshot each second, and windows of a second. */
void a_second_of_a_thousand(benchmark::State& state)
{
    constexpr int count = 1000;
    samples::Simulation simulation("live-srt-1080i", 1, start);
    std::vector<std::unique_ptr<diagnosis::Diagnosis>> decoders;
    for (int i = 0; i < count; ++i) decoders.push_back(std::make_unique<diagnosis::Diagnosis>(diagnosis::Options{.window = 1}));
    for (auto _ : state)
    {
        simulation.advance(1s);
        const records::Snapshot snapshot = snapshot_of(simulation);
        for (const auto& decoder : decoders) decoder->take(snapshot);
    }
}
BENCHMARK(a_second_of_a_thousand)->Unit(benchmark::kMillisecond);

void a_second_of_life(benchmark::State& state, const char* scenario)
{
    samples::Simulation simulation(scenario, 1, start);
    for (auto _ : state) simulation.advance(1s);
}
BENCHMARK_CAPTURE(a_second_of_life, srt, "live-srt-1080i");
BENCHMARK_CAPTURE(a_second_of_life, fec, "rtp-fec-2160p");

} // namespace

BENCHMARK_MAIN();
