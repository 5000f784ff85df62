/**
 * @file scenarios_test.cpp
 * The table of scenarios: the finding that each must give first, where, and nothing else. What is expected is what an engineer
 * would say of the fault, whatever the rules print. With DIAGNOSIS_TABLE in the environment the whole program prints what came out as
 * a table in Markdown, for scripts/diagnosis-table.
 */
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <set>
#include <string>
#include <vector>

#include "diagnosis.h"
#include "living.h"

namespace
{

using namespace std::chrono_literals;
using diagnosis::Diagnosis;
using diagnosis::Result;
using diagnosis::Stage;
using samples::Simulation;
using samples::Variant;

/** What came of a scenario in all its runs. */
struct Outcome
{
    std::string expected;        /**< finding */
    std::set<std::string> given; /**< findings that came first */
    std::string stage;           /**< the title of the one expected */
    int runs = 0;                /**< or windows, of healthy ones */
    int right = 0;               /**< with the right finding first, and it alone */
    int right_stage = 0;         /**< with the right stage first */
    int false_alarms = 0;        /**< other findings, each once a run */
};

/** Prints the outcomes at the end of the program. */
class Table : public testing::Environment
{
public:
    std::vector<std::pair<std::string, Outcome>> faults, samples, healthy;

    Outcome& of(std::vector<std::pair<std::string, Outcome>>& rows, const std::string& name)
    {
        for (auto& [known, outcome] : rows)
            if (known == name) return outcome;
        return rows.emplace_back(name, Outcome()).second;
    }

    void TearDown() override
    {
        if (std::getenv("DIAGNOSIS_TABLE") == nullptr) return;
        std::puts("| Fault | Expected first | Given first | Stage | Runs | Right first, alone | Right stage first | False alarms |");
        std::puts("|---|---|---|---|---|---|---|---|");
        print(faults);
        std::puts("\n| Sample | Expected first | Given first | Stage | Windows | Right first | Right stage first | False alarms |");
        std::puts("|---|---|---|---|---|---|---|---|");
        print(samples);
        std::puts("\n| Healthy stream | Expected | Given | Stage | Windows | Right | Right stage | False alarms |");
        std::puts("|---|---|---|---|---|---|---|---|");
        print(healthy);
    }

private:
    static void print(const std::vector<std::pair<std::string, Outcome>>& rows)
    {
        Outcome sum;
        for (const auto& [name, row] : rows)
        {
            std::string given;
            for (const std::string& one : row.given) given += (given.empty() ? "" : ", ") + one;
            print(name, row, given);
            sum.runs += row.runs;
            sum.right += row.right;
            sum.right_stage += row.right_stage;
            sum.false_alarms += row.false_alarms;
        }
        print("**" + std::to_string(rows.size()) + "**", sum, "");
    }
    static void print(const std::string& name, const Outcome& row, const std::string& given)
    {
        std::printf("| %s | %s | %s | %s | %d | %d | %d | %d |\n", name.c_str(), row.expected.c_str(), given.c_str(), row.stage.c_str(),
                    row.runs, row.right, row.right_stage, row.false_alarms);
    }
};

Table& table = *static_cast<Table*>(testing::AddGlobalTestEnvironment(new Table));

/** What a fault must give. */
struct Expected
{
    const char* fault;
    const char* finding;
    Stage stage;
    int status;
};

const Expected faults[] = {
    {"network-silent", "network.silent", Stage::network, 2},
    {"network-no-answer", "network.not-connected", Stage::network, 2},
    {"network-reconnects", "network.reconnects", Stage::network, 1},
    {"network-errors", "network.errors", Stage::network, 1},
    {"network-bursts", "network.bursts", Stage::network, 1},
    {"srt-loss", "link.loss", Stage::link, 2},
    {"srt-latency-low", "link.latency-too-low", Stage::link, 1},
    {"srt-no-key", "link.no-passphrase", Stage::link, 2},
    {"srt-wrong-key", "link.not-decrypting", Stage::link, 2},
    {"fec-absent", "link.fec-absent", Stage::link, 1},
    {"fec-weak", "link.fec-too-weak", Stage::link, 2},
    {"fec-wasted", "link.fec-wasted", Stage::link, 0},
    {"rtp-loss", "link.rtp-loss", Stage::link, 1},
    {"ts-loss", "ts.loss", Stage::ts, 1},
    {"ts-corrupted", "ts.corrupted", Stage::ts, 1},
    {"ts-stopped", "ts.stopped", Stage::ts, 2},
    {"ts-scrambled", "ts.scrambled", Stage::ts, 2},
    {"program-gone", "ts.program-gone", Stage::ts, 2},
    {"tables-missing", "ts.tables-missing", Stage::ts, 1},
    {"video-removed", "ts.stream-removed", Stage::ts, 2},
    {"audio-removed", "ts.stream-removed", Stage::ts, 2},
    {"video-missing", "ts.video-missing", Stage::ts, 2},
    {"audio-missing", "ts.audio-missing", Stage::ts, 2},
    {"pcr-missing", "clock.pcr-missing", Stage::clock, 1},
    {"pcr-jumps", "clock.pcr-jumps", Stage::clock, 1},
    {"pcr-jitter", "clock.pcr-jitter", Stage::clock, 1},
    {"clock-unlocked", "clock.unlocked", Stage::clock, 1},
    {"clock-off", "clock.off", Stage::clock, 1},
    {"pts-behind-pcr", "ts.pts-behind-pcr", Stage::ts, 1},
    {"demux-overflow", "ts.overflow", Stage::ts, 1},
    {"format-unsupported", "framer.unsupported-format", Stage::framer, 2},
    {"format-changing", "framer.format-changing", Stage::framer, 1},
    {"framer-starved", "framer.starved", Stage::framer, 2},
    {"framer-stalled", "framer.stopped", Stage::framer, 2},
    {"framer-overflow", "framer.overflow", Stage::framer, 1},
    {"framer-drops", "framer.drops", Stage::framer, 1},
    {"decoder-starved", "vdecoder.starved", Stage::vdecoder, 2},
    {"decoder-stalled", "vdecoder.stopped", Stage::vdecoder, 2},
    {"decoder-overloaded", "vdecoder.overloaded", Stage::vdecoder, 1},
    {"decoder-drops", "vdecoder.drops", Stage::vdecoder, 1},
    {"decoder-conceals", "vdecoder.conceals", Stage::vdecoder, 1},
    {"decoder-no-memory", "vdecoder.no-memory", Stage::vdecoder, 2},
    {"output-starved", "output.nothing-to-play", Stage::output, 2},
    {"output-errors", "output.errors", Stage::output, 1},
    {"output-late", "output.late", Stage::output, 1},
    {"output-skips", "output.skips", Stage::output, 1},
    {"output-replays", "output.replays", Stage::output, 1},
    {"output-frozen", "output.stopped", Stage::output, 2},
    {"audio-starved", "audio.starved", Stage::audio, 2},
    {"audio-stalled", "audio.stopped", Stage::audio, 2},
    {"audio-errors", "audio.errors", Stage::audio, 1},
    {"audio-discontinuous", "audio.discontinuous", Stage::audio, 1},
    {"audio-skips", "audio.skips", Stage::audio, 1},
    {"lip-sync-off", "audio.lip-sync", Stage::audio, 1},
    {"metadata-stopped", "metadata.stopped", Stage::metadata, 1},
    {"metadata-drops", "metadata.drops", Stage::metadata, 1},
    {"buffering-stalled", "buffering.stopped", Stage::buffering, 2},
    {"buffering-late", "buffering.late-output", Stage::buffering, 1},
    {"buffering-small", "buffering.delay-too-small", Stage::buffering, 1},
    {"buffering-large", "buffering.delay-too-large", Stage::buffering, 1},
    {"buffering-overflow", "buffering.overflow", Stage::buffering, 1},
    {"multisync-no-ntp", "buffering.multisync-no-ntp", Stage::buffering, 1},
    {"multisync-no-timecode", "buffering.multisync-no-timecode", Stage::buffering, 1},
    {"multisync-invalid-timecode", "buffering.multisync-invalid-timecode", Stage::buffering, 1},
    {"host-hung", "host.hung", Stage::host, 2},
};

std::string name_of(std::string text)
{
    for (char& c : text)
        if (std::isalnum(static_cast<unsigned char>(c)) == 0) c = '_';
    return text;
}

std::vector<std::string> ids(const Result& result)
{
    std::vector<std::string> all;
    for (const auto& finding : result.findings) all.emplace_back(finding.rule->id);
    return all;
}

/** Everything that was found from some moment on, the first of each window in front. */
struct Heard
{
    std::set<std::string> first;
    std::set<std::string> others;
    int silent = 0; /**< windows in which nothing was */
};

/** How much that was heard is not what was expected. */
int false_alarms(std::initializer_list<const Heard*> all, const std::string& expected)
{
    std::set<std::string> heard;
    for (const Heard* one : all)
    {
        heard.insert(one->first.begin(), one->first.end());
        heard.insert(one->others.begin(), one->others.end());
    }
    heard.erase(expected);
    return static_cast<int>(heard.size());
}

void listen(Simulation& simulation, Diagnosis& diagnosis, std::chrono::seconds span, Heard& heard)
{
    for (auto left = span; left > 0s; left -= 1s)
    {
        simulation.advance(1s);
        if (!diagnosis.take(snapshot_of(simulation))) continue;
        const auto found = ids(diagnosis.result());
        heard.silent += found.empty();
        for (std::size_t i = 0; i < found.size(); ++i) (i == 0 ? heard.first : heard.others).insert(found[i]);
    }
}

/** Rates at which a fault is tried: a tenth, the sample's own, ten times. */
struct Case
{
    Expected expected;
    double factor;
};

std::vector<Case> cases()
{
    std::vector<Case> all;
    for (const Expected& expected : faults)
        for (const double factor : {0.1, 1.0, 10.0}) all.push_back({expected, factor});
    return all;
}

void PrintTo(const Case& row, std::ostream* stream)
{
    *stream << row.expected.fault << " at " << row.factor;
}

class Fault : public testing::TestWithParam<Case>
{
};

INSTANTIATE_TEST_SUITE_P(Table, Fault, testing::ValuesIn(cases()),
                         [](const auto& test)
                         {
                             const double factor = test.param.factor;
                             return name_of(test.param.expected.fault) + (factor < 1 ? "_at_a_tenth" : factor > 1 ? "_tenfold" : "");
                         });

TEST_P(Fault, IsFoundFirstAndAlone)
{
    const auto& [expected, factor] = GetParam();
    const samples::Fault* fault = samples::find_fault(expected.fault);
    ASSERT_NE(fault, nullptr);
    Simulation plain(fault->scenario, 1, start);
    Variant variant{.scenario = fault->scenario};
    variant.bit_rate = static_cast<unsigned>(plain.records().tTDemux.tCounters.nBitsPerSecond * factor);
    // Faults begin anywhere within a window.
    for (const auto offset : {0ms, 1300ms, 2900ms, 4100ms, 5700ms, 7200ms, 8800ms, 9300ms, 9700ms})
    {
        SCOPED_TRACE(std::to_string(offset.count()) + " ms into the window");
        const auto seed = static_cast<std::uint64_t>(offset.count()) + 11;
        Simulation simulation = factor == 1.0 ? Simulation(fault->scenario, seed, start) : Simulation(variant, seed, start);
        Diagnosis diagnosis;
        diagnosis.take(snapshot_of(simulation));
        Heard before;
        listen(simulation, diagnosis, 60s, before);
        EXPECT_EQ(before.first, std::set<std::string>()) << "before the fault";

        simulation.inject(expected.fault, offset);
        Heard onset; // part of the first window is healthy
        listen(simulation, diagnosis, 30s, onset);
        Heard after;
        listen(simulation, diagnosis, 120s, after);
        Outcome& outcome = table.of(table.faults, expected.fault);
        outcome.expected = expected.finding;
        outcome.stage = diagnosis::stage_title(expected.stage);
        outcome.given.insert(after.first.begin(), after.first.end());
        ++outcome.runs;
        outcome.false_alarms += before.first.empty() ? false_alarms({&onset, &after}, expected.finding) : 1;
        const bool is_right = after.silent == 0 && after.others.empty() && after.first == std::set<std::string>{expected.finding};
        outcome.right += is_right;
        outcome.right_stage += !diagnosis.result().findings.empty() && diagnosis.result().findings.front().rule->stage == expected.stage;

        EXPECT_EQ(after.first, std::set<std::string>{expected.finding});
        EXPECT_EQ(after.silent, 0);
        EXPECT_EQ(after.others, std::set<std::string>()) << "false alarms";
        onset.first.erase(expected.finding);
        EXPECT_EQ(onset.first, std::set<std::string>()) << "false alarms at the onset";
        EXPECT_EQ(onset.others, std::set<std::string>()) << "false alarms at the onset";

        const Result& result = diagnosis.result();
        ASSERT_FALSE(result.findings.empty());
        EXPECT_EQ(result.findings.front().rule->stage, expected.stage);
        EXPECT_EQ(diagnosis::exit_status(result), expected.status);
        EXPECT_FALSE(result.findings.front().evidence.empty());
        EXPECT_EQ(result.unseen.size(), 0U);
        EXPECT_EQ(diagnosis.episodes().size(), 1U);
    }
}

/* ---- the samples as they are, which live on ---- */

class Sample : public testing::TestWithParam<std::pair<const char*, std::vector<std::string>>>
{
};

/** "extreme" is not among them: it holds what no decoder does. */
const std::pair<const char*, std::vector<std::string>> samples_as_they_are[] = {
    {"live-srt-1080i", {}},
    {"rtp-fec-2160p", {}},
    {"idle", {}},
    {"resolving", {"network.name-not-resolved"}},
    // Its sender has another passphrase than it has; the rest was wrong before.
    {"trouble",
     {"link.not-decrypting", "framer.unsupported-format", "link.latency-too-low", "clock.unlocked", "buffering.delay-too-small"}},
};

INSTANTIATE_TEST_SUITE_P(Table, Sample, testing::ValuesIn(samples_as_they_are), [](const auto& test) { return name_of(test.param.first); });

TEST_P(Sample, IsJudgedAlikeForFiveMinutes)
{
    const auto& [name, expected] = GetParam();
    Simulation simulation(name, 1, start);
    Diagnosis diagnosis;
    diagnosis.take(snapshot_of(simulation));
    Outcome& outcome = table.of(table.samples, name);
    outcome.expected = expected.empty() ? "nothing" : expected.front();
    for (int i = 0; i < 300; ++i)
    {
        simulation.advance(1s);
        if (!diagnosis.take(snapshot_of(simulation))) continue;
        const auto found = ids(diagnosis.result());
        const std::string first = found.empty() ? "nothing" : found.front();
        outcome.given.insert(first);
        ++outcome.runs;
        outcome.right += first == outcome.expected;
        outcome.right_stage += first.substr(0, first.find('.')) == outcome.expected.substr(0, outcome.expected.find('.'));
        for (const std::string& id : found) outcome.false_alarms += std::ranges::count(expected, id) == 0;
        EXPECT_EQ(found, expected) << "after " << i << " s";
    }
    EXPECT_EQ(outcome.runs, 30);
}

/* ---- healthy ones ---- */

class Healthy : public testing::TestWithParam<std::pair<const char*, Variant>>
{
};

const std::pair<const char*, Variant> healthy[] = {
    {"srt", {}},
    {"fec", {.scenario = "rtp-fec-2160p"}},
    {"srt_300k", {.bit_rate = 300'000}},
    {"srt_300k_23p976", {.bit_rate = 300'000, .picture_rate_numerator = 24000, .picture_rate_denominator = 1001}},
    {"srt_60M", {.bit_rate = 60'000'000}},
    {"srt_60M_60", {.bit_rate = 60'000'000, .picture_rate_numerator = 60}},
    {"srt_24", {.picture_rate_numerator = 24}},
    {"srt_25", {.picture_rate_numerator = 25}},
    {"srt_50", {.picture_rate_numerator = 50}},
    {"srt_audio_alone", {.bit_rate = 500'000, .video = false}},
    {"srt_video_alone", {.audio = false}},
    {"fec_300k", {.scenario = "rtp-fec-2160p", .bit_rate = 300'000, .picture_rate_numerator = 25}},
    {"fec_60M", {.scenario = "rtp-fec-2160p", .bit_rate = 60'000'000}},
    {"fec_23p976", {.scenario = "rtp-fec-2160p", .picture_rate_numerator = 24000, .picture_rate_denominator = 1001}},
    {"fec_audio_alone", {.scenario = "rtp-fec-2160p", .bit_rate = 900'000, .video = false}},
    {"fec_video_alone", {.scenario = "rtp-fec-2160p", .audio = false}},
};

INSTANTIATE_TEST_SUITE_P(Table, Healthy, testing::ValuesIn(healthy), [](const auto& test) { return std::string(test.param.first); });

TEST_P(Healthy, IsSilentForAnHour)
{
    for (const std::uint64_t seed : {1U, 2U})
    {
        Simulation simulation(GetParam().second, seed, start);
        Diagnosis diagnosis;
        diagnosis.take(snapshot_of(simulation));
        EXPECT_EQ(diagnosis::exit_status(diagnosis.result()), 0) << diagnosis.result().verdict.place;
        int windows = 0;
        for (int i = 0; i < 3600; ++i)
        {
            simulation.advance(1s);
            if (!diagnosis.take(snapshot_of(simulation))) continue;
            ++windows;
            const Result& result = diagnosis.result();
            Outcome& outcome = table.of(table.healthy, GetParam().first);
            const auto found = ids(result);
            outcome.expected = "nothing";
            outcome.given.insert(found.empty() ? "nothing" : found.front());
            ++outcome.runs;
            outcome.right += found.empty();
            outcome.right_stage += found.empty();
            outcome.false_alarms += static_cast<int>(found.size());
            ASSERT_EQ(ids(result), std::vector<std::string>()) << "after " << i << " s";
            ASSERT_EQ(result.verdict.state, diagnosis::StageState::working) << result.verdict.place;
            for (const auto& stage : result.stages)
            {
                const bool is_absent = (!GetParam().second.video &&
                                        (stage.stage == Stage::framer || stage.stage == Stage::vdecoder || stage.stage == Stage::output)) ||
                                       (!GetParam().second.audio && stage.stage == Stage::audio);
                if (stage.stage == Stage::metadata && !GetParam().second.video) continue; // captions and timecode come with pictures
                ASSERT_EQ(stage.state, is_absent ? diagnosis::StageState::idle : diagnosis::StageState::working)
                    << diagnosis::stage_id(stage.stage) << " after " << i << " s";
            }
        }
        EXPECT_EQ(windows, 360);
        EXPECT_TRUE(diagnosis.episodes().empty());
    }
}

/* ---- the table itself ---- */

TEST(TableOfFaults, HasEveryFault)
{
    std::set<std::string> named;
    for (const Expected& expected : faults) named.insert(expected.fault);
    for (const samples::Fault& fault : samples::faults()) EXPECT_TRUE(named.contains(fault.name)) << fault.name;
}

TEST(TableOfFaults, HasALivingCaseForEveryRule)
{
    std::set<std::string> expected = {"network.name-not-resolved"}; // the scenario resolving
    for (const Expected& row : faults) expected.insert(row.finding);
    for (const diagnosis::Rule* rule : diagnosis::rules()) EXPECT_TRUE(expected.contains(std::string(rule->id))) << rule->id;
}

} // namespace
