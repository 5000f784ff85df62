/*
 * Puts each fault into each test stream at several positions, and prints what was expected, what was counted, and which stage the
 * diagnosis names first. Fails if less than 95 % of them are as expected, or if anything is found where nothing is wrong.
 *
 *     softdec_fault_table          one position in each stream but one, which differs from another by metadata alone
 *     softdec_fault_table --all    three in each stream
 */
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>

#include "chain/chain_snapshot.h"
#include "diagnosis.h"
#include "faults.h"
#include "table_faults.h"

namespace
{

using namespace softdec_tests;

/** What lies between two looks at a chain. */
struct Look
{
    records::Snapshot snapshot;
    Faults faults;
};

struct Run
{
    Look early;  /**< the stream runs, long enough for a verdict */
    Look before; /**< the fault begins */
    Look after;  /**< what it does has been seen */
};

Look look_at(softdec::Chain& chain)
{
    Look look;
    look.snapshot = softdec::snapshot_of(chain, {.has_arrivals = true, .decode = true, .live = false});
    look.snapshot.decoder = "test";
    look.snapshot.instance = records::Instance{.id = {1}, .started_at = beginning};
    look.faults = faults_of(look.snapshot.records);
    return look;
}

Run run_through(const std::vector<Arrival>& arrivals, const Place& place)
{
    softdec::Chain chain({.has_arrivals = true, .decode = true, .live = false, .start = 0});
    Run run;
    const std::pair<softdec::Nanoseconds, Look*> looks[] = {
        {beginning + 10 * softdec::second, &run.early}, {place.begin, &run.before}, {place.look, &run.after}};
    const auto* next = std::begin(looks);
    const auto reach = [&](softdec::Nanoseconds moment)
    {
        for (; next != std::end(looks) && next->first <= moment; ++next)
        {
            chain.run_to(next->first);
            *next->second = look_at(chain);
        }
    };
    for (const Arrival& arrival : arrivals)
    {
        reach(arrival.moment);
        if (next == std::end(looks)) break;
        chain.take({.channel = arrival.channel, .arrival = arrival.moment, .bytes = arrival.bytes}, {});
    }
    reach(place.look);
    return run;
}

std::string first_stage(const Look& before, const Look& after, std::string& findings)
{
    const auto result = diagnosis::diagnose(before.snapshot, after.snapshot);
    for (const auto& finding : result.findings) findings += (findings.empty() ? "" : " ") + std::string(finding.rule->id);
    return result.findings.empty() ? "-" : std::string(diagnosis::stage_id(result.findings.front().rule->stage));
}

/** What has been counted between two looks. */
long counted(const Run& run, const std::vector<std::string>& names)
{
    long sum = 0;
    const auto count = [](const Faults& faults, const std::string& name)
    {
        const auto found = faults.find(name);
        return found == faults.end() ? 0 : found->second;
    };
    for (const std::string& name : names) sum += count(run.after.faults, name) - count(run.before.faults, name);
    return sum;
}

struct Tally
{
    int tried = 0;
    int right = 0;
    int looked = 0;
    int false_alarms = 0;
};

void try_fault(const TableFault& fault, const TestStream& stream, const Place& place, Tally& tally)
{
    const Injected injected = fault.inject(stream, place);
    const Run run = run_through(injected.arrivals, place);

    std::string found_before;
    first_stage(run.early, run.before, found_before);
    ++tally.looked;
    if (!found_before.empty()) ++tally.false_alarms;

    std::string findings;
    const std::string stage = first_stage(run.before, run.after, findings);
    const long count = counted(run, fault.counters);
    const bool is_counted = injected.at_least ? count >= injected.expected : count == injected.expected;
    const bool is_named = std::ranges::find(fault.stages, stage) != fault.stages.end();
    ++tally.tried;
    if (is_counted && is_named) ++tally.right;
    std::printf("%-26s %-16s %5.1f s %2s%7ld %7ld  %-9s %s%s%s\n", fault.name, stream.name.c_str(),
                static_cast<double>(place.begin - beginning) / 1e9, injected.at_least ? ">=" : "", injected.expected, count, stage.c_str(),
                is_counted && is_named ? "" : "WRONG ", findings.c_str(),
                found_before.empty() ? "" : (" FALSE ALARM before: " + found_before).c_str());
    std::fflush(stdout);
}

} // namespace

int main(int argc, char** argv)
{
    const bool all = argc > 1 && std::strcmp(argv[1], "--all") == 0;
    std::vector<double> positions{14};
    if (all) positions = {14, 17.3, 20.6};
    // The last one is the first without its metadata.
    std::vector<const char*> streams{"h264-aac-klv.ts", "h265-ac3.ts", "h264i-mp2.ts"};
    if (all) streams.push_back("h264-aac.ts");
    Tally tally;
    std::puts("fault                      stream           position  expected counted  first     findings");
    for (const char* name : streams)
    {
        const TestStream stream = test_stream(name);
        for (const TableFault& fault : table_faults())
            for (const double position : positions) try_fault(fault, stream, place_at(stream, position), tally);
    }
    const double share = 100.0 * tally.right / tally.tried;
    std::printf("%d of %d as expected: %.1f %%; false alarms: %d in %d looks at a stream before its fault\n", tally.right, tally.tried,
                share, tally.false_alarms, tally.looked);
    return share >= 95 && tally.false_alarms == 0 ? 0 : 1;
}
