#include "sample.h"

#include <cstddef>
#include <cstring>

#include "failure.h"
#include "samples.h"

namespace sources
{

namespace
{

// A sample is filled as one structure in C, and copied.
static_assert(sizeof(SAMPLES_RECORDS) == sizeof(records::Records));
static_assert(offsetof(SAMPLES_RECORDS, tTDemux) == offsetof(records::Records, tdemux));
static_assert(offsetof(SAMPLES_RECORDS, tVFramer) == offsetof(records::Records, vframer));
static_assert(offsetof(SAMPLES_RECORDS, tVideoDecoder) == offsetof(records::Records, vdecoder));
static_assert(offsetof(SAMPLES_RECORDS, tAudio) == offsetof(records::Records, audio));
static_assert(offsetof(SAMPLES_RECORDS, tMetadata) == offsetof(records::Records, metadata));
static_assert(offsetof(SAMPLES_RECORDS, tBuffering) == offsetof(records::Records, buffering));
static_assert(offsetof(SAMPLES_RECORDS, tClockRecovery) == offsetof(records::Records, clock_recovery));
static_assert(offsetof(SAMPLES_RECORDS, tUsage) == offsetof(records::Records, usage));

} // namespace

std::vector<Scenario> scenarios()
{
    std::vector<Scenario> all;
    for (std::size_t i = 0; i < samples_scenario_count; ++i) all.push_back({samples_scenarios[i].szName, samples_scenarios[i].szSummary});
    return all;
}

records::Snapshot sample(const std::string& scenario, std::int64_t moment)
{
    const SAMPLES_SCENARIO* found = samples_find(scenario.c_str());
    if (found == nullptr) files::fail_input("sample '" + scenario + "' is not known");

    SAMPLES_RECORDS filled;
    found->pFill(&filled, static_cast<time_t>(moment / 1'000'000'000));

    records::Snapshot snapshot;
    snapshot.taken_at = moment;
    snapshot.present.set();
    std::memcpy(&snapshot.records, &filled, sizeof(filled));
    return snapshot;
}

} // namespace sources
