// What a diagnosis costs: a window of one decoder, and a second of a thousand decoders that are looked at each second. All are the
// shortest of many short runs.
//
//     diagnosis_bench    prints times, and fails if one is above its bar

#include <algorithm>
#include <cstdio>
#include <limits>
#include <memory>
#include <utility>
#include <vector>

#include "bars.h"
#include "diagnosis.h"
#include "living.h"

namespace
{

using namespace std::chrono_literals;

constexpr int runs = 300;

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

/** The time of a window [us]. */
double a_window(const char* what, const char* scenario, const char* fault)
{
    const auto [before, now] = window(scenario, fault);
    double least = std::numeric_limits<double>::max();
    std::size_t findings = 0;
    for (int i = 0; i < runs; ++i)
        least = std::min(least, microseconds_of([&] { findings = diagnosis::diagnose(before, now).findings.size(); }));
    std::printf("a window, %-28s %8.1f us, %zu findings\n", what, least, findings);
    return least;
}

/** The time of a second [ms]. Each decoder has a new snapshot each second, and windows of a second. */
double a_second_of_a_thousand()
{
    constexpr int count = 1000;
    samples::Simulation simulation("live-srt-1080i", 1, start);
    std::vector<std::unique_ptr<diagnosis::Diagnosis>> decoders;
    for (int i = 0; i < count; ++i) decoders.push_back(std::make_unique<diagnosis::Diagnosis>(diagnosis::Options{.window = 1}));
    double least = std::numeric_limits<double>::max();
    for (int i = 0; i < 20; ++i)
    {
        simulation.advance(1s);
        const records::Snapshot snapshot = snapshot_of(simulation);
        const auto take_all = [&]
        {
            for (const auto& decoder : decoders) decoder->take(snapshot);
        };
        const double time = microseconds_of(take_all) / 1000;
        if (i >= 5) least = std::min(least, time); // the first windows are not full
    }
    std::printf("1,000 decoders, a second               %8.1f ms\n", least);
    return least;
}

} // namespace

int main()
{
    double longest = a_window("healthy", "live-srt-1080i", nullptr);
    longest = std::max(longest, a_window("healthy, with FEC", "rtp-fec-2160p", nullptr));
    longest = std::max(longest, a_window("packets are lost", "live-srt-1080i", "srt-loss"));
    longest = std::max(longest, a_window("trouble in every stage", "trouble", nullptr));
    const double second = a_second_of_a_thousand();
    bool is_met = at_most("a window of one decoder", longest / 1000, 1, " ms", 3);
    is_met &= at_most("1,000 decoders each second, of a core", second / 10, 20, " %");
    return is_met ? 0 : 1;
}
