/** @file engine_test.cpp What makes findings trustworthy: no finding from what cannot be told, and what rules may read. */
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include "diagnosis.h"
#include "living.h"
#include "window.h"

namespace
{

using namespace std::chrono_literals;
using diagnosis::Diagnosis;
using diagnosis::Doubt;
using diagnosis::Result;
using diagnosis::Stage;
using diagnosis::StageState;
using samples::Simulation;

records::Snapshot moment_of(const char* scenario)
{
    return snapshot_of(Simulation(scenario, 1, start));
}

std::vector<std::string> ids(const Result& result)
{
    std::vector<std::string> all;
    for (const auto& finding : result.findings) all.emplace_back(finding.rule->id);
    return all;
}

StageState state(const Result& result, Stage stage)
{
    return result.stages.at(static_cast<std::size_t>(stage)).state;
}

/** Two moments of a simulation, a while apart. */
std::pair<records::Snapshot, records::Snapshot> pair_of(Simulation& simulation, std::chrono::seconds apart = 10s)
{
    records::Snapshot before = snapshot_of(simulation);
    for (auto left = apart; left > 0s; left -= 1s) simulation.advance(1s);
    return {before, snapshot_of(simulation)};
}

void expect_all_unknown(const Result& result, Doubt doubt)
{
    EXPECT_EQ(ids(result), std::vector<std::string>());
    EXPECT_EQ(result.verdict.state, StageState::unknown);
    EXPECT_EQ(result.verdict.doubt, doubt);
    EXPECT_EQ(diagnosis::exit_status(result), 3);
    for (const auto& stage : result.stages) EXPECT_EQ(stage.state, StageState::unknown) << diagnosis::stage_id(stage.stage);
}

// ---- the samples ----

TEST(Samples, OneMomentOfAHealthyDecoder)
{
    for (const char* scenario : {"live-srt-1080i", "rtp-fec-2160p"})
    {
        const Result result = diagnosis::diagnose(moment_of(scenario));
        EXPECT_EQ(ids(result), std::vector<std::string>());
        EXPECT_EQ(result.verdict.state, StageState::working);
        EXPECT_EQ(result.verdict.doubt, Doubt::single); // rates cannot be seen
        EXPECT_EQ(diagnosis::exit_status(result), 0);
        for (const auto& stage : result.stages)
        {
            EXPECT_EQ(stage.state, StageState::working) << diagnosis::stage_id(stage.stage);
            EXPECT_FALSE(stage.in.has_value());
            EXPECT_TRUE(stage.last_good.has_value());
        }
    }
}

TEST(Samples, IdleIsNoFault)
{
    Simulation simulation("idle", 1, start);
    const auto [before, now] = pair_of(simulation);
    for (const Result& result : {diagnosis::diagnose(now), diagnosis::diagnose(before, now)})
    {
        EXPECT_EQ(result.verdict.state, StageState::idle);
        EXPECT_EQ(result.verdict.headline, "Idle");
        EXPECT_EQ(ids(result), std::vector<std::string>());
        EXPECT_EQ(diagnosis::exit_status(result), 0);
        for (const auto& stage : result.stages) EXPECT_EQ(stage.state, StageState::idle);
    }
}

TEST(Samples, AWindowThatIsTooShortForARuleDoesNotAskIt)
{
    const auto asked = [](const char* fault, const char* id, std::chrono::seconds window)
    {
        Simulation simulation("live-srt-1080i", 1, start);
        simulation.inject(fault);
        simulation.advance(20s);
        const auto [before, now] = pair_of(simulation, window);
        const Result result = diagnosis::diagnose(before, now);
        for (std::size_t i = 0; i < diagnosis::rules().size(); ++i)
            if (diagnosis::rules()[i]->id == id) return std::pair(bool(result.asked[i]), result.verdict.doubt);
        throw std::invalid_argument(id);
    };
    using Answer = std::pair<bool, Doubt>;
    EXPECT_EQ(asked("host-hung", "host.hung", 4s), (Answer{true, Doubt::none}));
    EXPECT_FALSE(asked("host-hung", "host.hung", 2s).first);
    EXPECT_EQ(asked("buffering-stalled", "buffering.stopped", 6s), (Answer{true, Doubt::none}));
    EXPECT_EQ(asked("buffering-stalled", "buffering.stopped", 2s), (Answer{false, Doubt::undecided}));
}

TEST(Samples, AHostThatHangsIsNotTakenForASilentNetwork)
{
    for (const auto window : {1s, 2s, 4s, 10s})
    {
        Simulation simulation("live-srt-1080i", 1, start);
        simulation.inject("host-hung");
        simulation.advance(20s);
        const auto [before, now] = pair_of(simulation, window);
        const Result result = diagnosis::diagnose(before, now);
        const auto found = ids(result);
        EXPECT_EQ(result.verdict.state, window < 3s ? StageState::unknown : StageState::stopped) << window.count() << " s";
        EXPECT_EQ(found, window < 3s ? std::vector<std::string>() : std::vector<std::string>{"host.hung"}) << window.count() << " s";
    }
}

TEST(Samples, ANetworkThatHasJustFallenSilentIsNotOneThatWaits)
{
    Simulation simulation("live-srt-1080i", 1, start);
    Diagnosis diagnosis({.window = 1});
    simulation.inject("network-silent", 10s);
    std::set<StageState> seen;
    for (int i = 0; i < 30; ++i)
    {
        diagnosis.take(snapshot_of(simulation));
        seen.insert(diagnosis.result().verdict.state);
        simulation.advance(1s);
    }
    EXPECT_EQ(seen, (std::set{StageState::working, StageState::stopped, StageState::unknown}));
}

TEST(Samples, NoFaultBeginsWithTheFindingOfAnother)
{
    // In windows as short as the server's, and in those that operators ask for.
    for (const double length : {1.0, 2.0, 3.0, 5.0})
        for (const char* fault : {"network-silent", "network-no-answer", "video-missing", "audio-missing", "ts-stopped",
                                  "buffering-stalled", "srt-wrong-key", "decoder-stalled", "host-hung"})
            for (const auto offset : {0ms, 300ms, 700ms, 1200ms, 1900ms, 2500ms, 3300ms, 4600ms})
            {
                Simulation simulation("live-srt-1080i", static_cast<std::uint64_t>(offset.count()) + 5, start);
                Diagnosis diagnosis({.window = length});
                simulation.inject(fault, 20s + offset);
                std::set<std::string> found;
                for (int i = 0; i < 60; ++i)
                {
                    if (diagnosis.take(snapshot_of(simulation)) && !diagnosis.result().findings.empty())
                        found.insert(std::string(diagnosis.result().findings.front().rule->id));
                    simulation.advance(1s);
                }
                EXPECT_LE(found.size(), 1U) << fault << " in windows of " << length << " s: " << testing::PrintToString(found);
            }
}

TEST(Samples, ResolvingStopsAtTheNetwork)
{
    Simulation simulation("resolving", 1, start);
    const auto [before, now] = pair_of(simulation);
    for (const Result& result : {diagnosis::diagnose(now), diagnosis::diagnose(before, now)})
    {
        EXPECT_EQ(ids(result), std::vector<std::string>{"network.name-not-resolved"});
        EXPECT_EQ(state(result, Stage::network), StageState::stopped);
        EXPECT_EQ(state(result, Stage::link), StageState::no_input);
        EXPECT_EQ(state(result, Stage::output), StageState::no_input);
        EXPECT_EQ(diagnosis::exit_status(result), 2);
    }
}

TEST(Samples, AStreamThatThePMTNoLongerListsIsMissedAndNotIdle)
{
    Simulation simulation("live-srt-1080i", 1, start);
    simulation.inject("video-removed");
    simulation.advance(20s);
    const auto [before, now] = pair_of(simulation);
    for (const Result& result : {diagnosis::diagnose(now), diagnosis::diagnose(before, now)})
    {
        EXPECT_EQ(ids(result), std::vector<std::string>{"ts.stream-removed"});
        for (const Stage stage : {Stage::framer, Stage::vdecoder, Stage::output}) EXPECT_EQ(state(result, stage), StageState::no_input);
        EXPECT_EQ(state(result, Stage::audio), StageState::working);
        EXPECT_TRUE(result.verdict.headline.starts_with("No picture for ")) << result.verdict.headline;
    }
}

TEST(Samples, WhatAnEarlierStreamHadIsNotMissed)
{
    // The stream has been started again since the last picture, and the new one has no video.
    Simulation simulation("live-srt-1080i", 1, start);
    simulation.inject("video-removed");
    simulation.advance(60s);
    auto [before, now] = pair_of(simulation);
    before.records.tdemux.nUpTimeInSecs = 40;
    now.records.tdemux.nUpTimeInSecs = 50;
    for (const Result& result : {diagnosis::diagnose(now), diagnosis::diagnose(before, now)})
    {
        EXPECT_EQ(ids(result), std::vector<std::string>());
        for (const Stage stage : {Stage::framer, Stage::vdecoder, Stage::output}) EXPECT_EQ(state(result, stage), StageState::idle);
        EXPECT_EQ(diagnosis::exit_status(result), 0);
    }
}

TEST(Samples, TroubleStopsAtTheLinkAndHasTroublesOfItsOwn)
{
    Simulation simulation("trouble", 1, start);
    const auto [before, now] = pair_of(simulation);
    for (const Result& result : {diagnosis::diagnose(now), diagnosis::diagnose(before, now)})
    {
        const std::vector<std::string> expected = {"link.not-decrypting", "framer.unsupported-format", "link.latency-too-low",
                                                   "clock.unlocked", "buffering.delay-too-small"};
        EXPECT_EQ(ids(result), expected);
        EXPECT_EQ(result.verdict.stage, Stage::link);
        EXPECT_EQ(state(result, Stage::link), StageState::stopped);
        EXPECT_EQ(state(result, Stage::ts), StageState::no_input);
        EXPECT_EQ(state(result, Stage::clock), StageState::degraded);
        EXPECT_EQ(state(result, Stage::framer), StageState::stopped);
        EXPECT_EQ(state(result, Stage::vdecoder), StageState::no_input);
        EXPECT_EQ(state(result, Stage::output), StageState::no_input);
        EXPECT_EQ(state(result, Stage::audio), StageState::no_input);
        EXPECT_EQ(state(result, Stage::buffering), StageState::degraded);
        EXPECT_EQ(diagnosis::exit_status(result), 2);
    }
    // Its picture is gone since the format changed, its sound since the passphrase did: 95 and 15 s, and 10 s more.
    EXPECT_EQ(diagnosis::diagnose(before, now).verdict.headline, "No picture for 1m 45s, no sound for 25s");
    EXPECT_EQ(state(diagnosis::diagnose(before, now), Stage::network), StageState::working);
}

TEST(Samples, ExtremeCrashesNothing)
{
    Simulation simulation("extreme", 1, start);
    const auto [before, now] = pair_of(simulation);
    EXPECT_NE(diagnosis::diagnose(now).verdict.headline, "");
    EXPECT_NE(diagnosis::diagnose(before, now).verdict.headline, "");
    EXPECT_NE(diagnosis::diagnose(moment_of("idle"), now).verdict.headline, "");
    EXPECT_NE(diagnosis::diagnose(now, moment_of("idle")).verdict.headline, "");
}

// ---- what cannot be told ----

TEST(Doubt, ARestartOfTheHost)
{
    Simulation simulation("live-srt-1080i", 1, start);
    auto [before, now] = pair_of(simulation);
    now.instance->id[0] = 9;
    expect_all_unknown(diagnosis::diagnose(before, now), Doubt::restarted);
}

TEST(Doubt, ARestartOfTheStream)
{
    Simulation simulation("live-srt-1080i", 1, start);
    auto [before, now] = pair_of(simulation);
    now.records.tdemux.nUpTimeInSecs = 20;
    expect_all_unknown(diagnosis::diagnose(before, now), Doubt::restarted);
}

TEST(Doubt, AStreamThatHasJustBegun)
{
    Simulation simulation("live-srt-1080i", 1, start);
    auto [before, now] = pair_of(simulation);
    before.records.tdemux.nUpTimeInSecs = 2;
    now.records.tdemux.nUpTimeInSecs = 12;
    expect_all_unknown(diagnosis::diagnose(before, now), Doubt::starting);
}

TEST(Doubt, AGap)
{
    Simulation simulation("live-srt-1080i", 1, start);
    simulation.inject("network-silent", 10s, 100s);
    Diagnosis diagnosis;
    diagnosis.take(snapshot_of(simulation));
    simulation.advance(10min);
    ASSERT_TRUE(diagnosis.take(snapshot_of(simulation)));
    expect_all_unknown(diagnosis.result(), Doubt::gap);
}

TEST(Doubt, AClockSetBackOrForth)
{
    for (const auto shift : {-1h, 1h})
    {
        Simulation simulation("live-srt-1080i", 1, start);
        auto [before, now] = pair_of(simulation);
        now.taken_at += std::chrono::nanoseconds(shift).count();
        expect_all_unknown(diagnosis::diagnose(before, now), Doubt::clock_set);
    }
}

TEST(Doubt, AfterTheClockWasSetBackTheNextWindowIsJudgedAgain)
{
    Simulation simulation("live-srt-1080i", 1, start);
    Diagnosis diagnosis;
    std::int64_t shift = 0;
    int unknown = 0;
    for (int i = 0; i < 120; ++i)
    {
        if (i == 55) shift = -std::chrono::nanoseconds(1h).count();
        records::Snapshot snapshot = snapshot_of(simulation);
        snapshot.taken_at += shift;
        if (diagnosis.take(snapshot)) unknown += diagnosis.result().verdict.state == StageState::unknown;
        EXPECT_EQ(ids(diagnosis.result()), std::vector<std::string>()) << i;
        simulation.advance(1s);
    }
    EXPECT_EQ(unknown, 1);
    EXPECT_EQ(diagnosis.result().verdict.state, StageState::working);
}

TEST(Doubt, ClearedCounters)
{
    Simulation simulation("live-srt-1080i", 1, start);
    auto [before, now] = pair_of(simulation);
    now.records.vdecoder.tCounters = {};
    now.records.vdecoder.tCounters.nNumReceivedFrames = 40; // since it was cleared
    const Result result = diagnosis::diagnose(before, now);
    EXPECT_EQ(ids(result), std::vector<std::string>());
    EXPECT_EQ(state(result, Stage::vdecoder), StageState::unknown);
    EXPECT_EQ(state(result, Stage::output), StageState::unknown);
    EXPECT_EQ(state(result, Stage::network), StageState::working);
    EXPECT_EQ(result.verdict.doubt, Doubt::cleared);
    EXPECT_EQ(diagnosis::exit_status(result), 3);
}

TEST(Doubt, ACounterOfThirtyTwoBitsThatWrapsIsNoFault)
{
    Simulation simulation("rtp-fec-2160p", 1, start);
    auto [before, now] = pair_of(simulation);
    now.records.tdemux.Xport.PMFEC.nMediaPkts = -2147483000;
    EXPECT_EQ(ids(diagnosis::diagnose(before, now)), std::vector<std::string>());
}

// ---- what is not there ----

TEST(Unseen, WhatThisHostDoesNotMeasure)
{
    Simulation simulation("live-srt-1080i", 1, start);
    simulation.inject("decoder-overloaded");
    simulation.advance(10s);
    auto [before, now] = pair_of(simulation);
    ASSERT_EQ(ids(diagnosis::diagnose(before, now)), std::vector<std::string>{"vdecoder.overloaded"});

    const auto load = dictionary::find("vdecoder.load");
    ASSERT_TRUE(load);
    before.not_measured.set(load->field->index);
    now.not_measured.set(load->field->index);
    const Result result = diagnosis::diagnose(before, now);
    ASSERT_EQ(result.unseen.size(), 2U); // drops reads the load too
    EXPECT_EQ(result.unseen[0].rule->id, "vdecoder.overloaded");
    EXPECT_EQ(result.unseen[0].field, "vdecoder.load");
    EXPECT_FALSE(result.unseen[0].absent);
}

TEST(Unseen, WithoutTheUpTimeNobodyKnowsWhetherAPictureWasOfThisStream)
{
    // As one whose video was removed, or that was started again without it: the up time would tell which.
    Simulation simulation("live-srt-1080i", 1, start);
    simulation.inject("video-removed");
    simulation.advance(60s);
    auto [before, now] = pair_of(simulation);
    const auto uptime = dictionary::find("tdemux.uptime");
    ASSERT_TRUE(uptime);
    before.not_measured.set(uptime->field->index);
    now.not_measured.set(uptime->field->index);
    const Result result = diagnosis::diagnose(before, now);
    for (const Stage stage : {Stage::framer, Stage::vdecoder, Stage::output}) EXPECT_EQ(state(result, stage), StageState::unknown);
    EXPECT_EQ(state(result, Stage::audio), StageState::working);
    EXPECT_EQ(ids(result), std::vector<std::string>());
    EXPECT_TRUE(
        std::ranges::any_of(result.unseen, [](const auto& unseen) { return unseen.rule->id == "ts.stream-removed" && !unseen.absent; }));
    EXPECT_EQ(result.verdict.doubt, Doubt::missing);
    EXPECT_EQ(diagnosis::exit_status(result), 3);
}

TEST(Unseen, RecordsThatAreNotThere)
{
    Simulation simulation("live-srt-1080i", 1, start);
    auto [before, now] = pair_of(simulation);
    for (auto* snapshot : {&before, &now}) snapshot->present.reset(records::find_component("audio")->index);
    const Result result = diagnosis::diagnose(before, now);
    EXPECT_EQ(state(result, Stage::audio), StageState::unknown);
    EXPECT_EQ(state(result, Stage::output), StageState::working);
    EXPECT_EQ(ids(result), std::vector<std::string>());
    ASSERT_FALSE(result.unseen.empty());
    for (const auto& unseen : result.unseen)
    {
        EXPECT_TRUE(unseen.field.starts_with("audio.")) << unseen.field;
        EXPECT_TRUE(unseen.absent);
    }
    EXPECT_EQ(diagnosis::exit_status(result), 3);
}

TEST(Unseen, WhatMeansNothingHereIsNotMissed)
{
    Simulation simulation("live-srt-1080i", 1, start);
    auto [before, now] = pair_of(simulation);
    for (auto* snapshot : {&before, &now})
        for (const dictionary::Field& field : dictionary::fields())
            if (field.full_name.starts_with("tdemux.fec.")) snapshot->not_measured.set(field.index);
    EXPECT_EQ(diagnosis::diagnose(before, now).unseen.size(), 0U);
}

// ---- over time ----

TEST(Episodes, HaveABeginAndAnEnd)
{
    Simulation simulation("live-srt-1080i", 1, start);
    simulation.inject("decoder-stalled", 100s, 60s);
    Diagnosis diagnosis;
    for (int i = 0; i < 300; ++i)
    {
        diagnosis.take(snapshot_of(simulation));
        simulation.advance(1s);
    }
    ASSERT_EQ(diagnosis.episodes().size(), 1U);
    const auto& episode = diagnosis.episodes().front();
    const std::int64_t began = start.time_since_epoch().count();
    EXPECT_EQ(episode.finding.rule->id, "vdecoder.stopped");
    EXPECT_TRUE(episode.over);
    EXPECT_NEAR(static_cast<double>(episode.begin - began) * 1e-9, 100, 11);
    EXPECT_NEAR(static_cast<double>(episode.last - began) * 1e-9, 160, 11);
}

TEST(Episodes, WhatFlapsIsOne)
{
    Simulation simulation("live-srt-1080i", 1, start);
    for (int i = 0; i < 10; ++i) simulation.inject("clock-unlocked", 60s + i * 20s, 10s); // every other window
    Diagnosis diagnosis;
    for (int i = 0; i < 400; ++i)
    {
        diagnosis.take(snapshot_of(simulation));
        simulation.advance(1s);
    }
    ASSERT_EQ(diagnosis.episodes().size(), 1U);
    EXPECT_EQ(diagnosis.episodes().front().finding.rule->id, "clock.unlocked");
}

TEST(Causes, OneForOneEvent)
{
    Simulation simulation("live-srt-1080i", 1, start);
    simulation.inject("srt-loss");
    simulation.advance(20s);
    const auto [before, now] = pair_of(simulation);
    const Result result = diagnosis::diagnose(before, now);
    ASSERT_EQ(ids(result), std::vector<std::string>{"link.loss"});
    std::set<std::string> explained;
    for (const auto* rule : result.findings.front().explains) explained.insert(std::string(rule->id));
    EXPECT_TRUE(explained.contains("ts.loss"));
    EXPECT_TRUE(explained.contains("framer.drops"));
    EXPECT_TRUE(explained.contains("vdecoder.conceals"));
    EXPECT_EQ(state(result, Stage::vdecoder), StageState::degraded);
    EXPECT_EQ(state(result, Stage::network), StageState::working);
}

TEST(Causes, TwoEventsAreTwo)
{
    Simulation simulation("live-srt-1080i", 1, start);
    simulation.inject("srt-loss");
    simulation.inject("decoder-stalled");
    simulation.inject("lip-sync-off");
    simulation.advance(20s);
    const auto [before, now] = pair_of(simulation);
    const auto found = ids(diagnosis::diagnose(before, now));
    EXPECT_TRUE(std::ranges::count(found, "link.loss") == 1 && std::ranges::count(found, "vdecoder.stopped") == 1);
}

// ---- the verdict ----

TEST(Verdict, HasStoppedOnlyWhereSomethingIsGone)
{
    Simulation simulation("live-srt-1080i", 1, start);
    simulation.inject("srt-loss");
    Diagnosis diagnosis;
    for (int i = 0; i < 95; ++i)
    {
        diagnosis.take(snapshot_of(simulation));
        simulation.advance(1s);
    }
    // A tenth is lost and nine tenths are seen: bad enough to wake somebody, and nothing is gone.
    const Result& loss = diagnosis.result();
    EXPECT_EQ(state(loss, Stage::link), StageState::degraded);
    EXPECT_EQ(state(loss, Stage::output), StageState::degraded);
    EXPECT_EQ(loss.verdict.state, StageState::degraded);
    EXPECT_EQ(diagnosis::exit_status(loss), 2);
    // How much, and since when.
    EXPECT_TRUE(loss.verdict.headline.starts_with("The SRT link loses packets for good: ")) << loss.verdict.headline;
    EXPECT_TRUE(loss.verdict.headline.ends_with(" % of the packets")) << loss.verdict.headline;
    EXPECT_EQ(loss.verdict.place, "Link, for 1m 30s.");
}

TEST(Verdict, AStageThatPassesOnThePartThatIsThereIsDegraded)
{
    for (const auto& [fault, gone, still] :
         {std::tuple("video-missing", Stage::output, Stage::audio), std::tuple("video-removed", Stage::output, Stage::audio),
          std::tuple("audio-missing", Stage::audio, Stage::output)})
    {
        Simulation simulation("live-srt-1080i", 1, start);
        simulation.inject(fault);
        simulation.advance(20s);
        const auto [before, now] = pair_of(simulation);
        const Result result = diagnosis::diagnose(before, now);
        EXPECT_EQ(state(result, Stage::ts), StageState::degraded) << fault;
        EXPECT_EQ(state(result, gone), StageState::no_input) << fault;
        EXPECT_EQ(state(result, still), StageState::working) << fault;
        EXPECT_EQ(result.verdict.state, StageState::stopped) << fault; // the picture is gone, or the sound
        EXPECT_EQ(result.verdict.stage, Stage::ts) << fault;
    }
}

// ---- windows of other lengths ----

TEST(Windows, OfOtherLengthsAreSilentToo)
{
    for (const double length : {1.0, 3.0, 60.0})
    {
        for (const char* scenario : {"live-srt-1080i", "rtp-fec-2160p"})
        {
            Simulation simulation(scenario, 4, start);
            Diagnosis diagnosis({.window = length});
            for (int i = 0; i < 1800; ++i)
            {
                if (diagnosis.take(snapshot_of(simulation)))
                {
                    ASSERT_EQ(ids(diagnosis.result()), std::vector<std::string>()) << length << " s, after " << i << " s";
                }
                simulation.advance(std::chrono::milliseconds(900 + 40 * (i % 6))); // timers are not exact
            }
        }
    }
}

// ---- the rules ----

TEST(Rules, ReadWhatTheySay)
{
    std::vector<std::pair<records::Snapshot, records::Snapshot>> windows;
    for (const samples::Fault& fault : samples::faults())
    {
        Simulation simulation(fault.scenario, 1, start);
        simulation.inject(fault.name);
        windows.push_back(pair_of(simulation));
        simulation.advance(20s);
        windows.push_back(pair_of(simulation));
    }
    for (std::size_t i = 0; i < samples_scenario_count; ++i)
    {
        Simulation simulation(samples_scenarios[i].szName, 1, start);
        windows.push_back(pair_of(simulation));
    }
    for (const diagnosis::Rule* rule : diagnosis::rules())
    {
        std::set<std::string_view> read;
        for (const auto& [before, now] : windows)
        {
            const diagnosis::Window window(&before, now, 30);
            std::vector<const diagnosis::Reading*> trace;
            window.trace(&trace);
            diagnosis::Hit hit;
            rule->test(window, hit);
            for (const auto* reading : trace) read.insert(reading->name());
            for (const auto& evidence : hit.evidence) read.insert(evidence.reading->name());
        }
        std::set<std::string_view> said;
        for (const auto* reading : rule->reads) said.insert(reading->name());
        EXPECT_EQ(read, said) << rule->id;
    }
}

TEST(Rules, AreNamedAndExplained)
{
    std::set<std::string_view> seen;
    for (const diagnosis::Rule* rule : diagnosis::rules())
    {
        EXPECT_TRUE(seen.insert(rule->id).second) << rule->id;
        EXPECT_TRUE(rule->id.starts_with(std::string(diagnosis::stage_id(rule->stage)) + ".")) << rule->id;
        EXPECT_FALSE(rule->title.empty() || rule->title.ends_with('.')) << rule->id;
        for (const std::string_view text : {rule->when, rule->reason, rule->remedy}) EXPECT_TRUE(text.ends_with('.')) << rule->id;
        EXPECT_EQ(diagnosis::find_rule(rule->id), rule);
        EXPECT_FALSE(rule->reads.empty()) << rule->id;
        for (const auto* reading : rule->reads) EXPECT_TRUE(dictionary::find(reading->name())) << reading->name();
    }
}

TEST(Rules, OfAStageStandTogetherAndCausesFirst)
{
    int place = 0;
    for (const diagnosis::Rule* rule : diagnosis::rules())
    {
        EXPECT_GE(diagnosis::causal_place(rule->stage), place) << rule->id;
        place = diagnosis::causal_place(rule->stage);
    }
}

TEST(Chain, WhatReachesAStageComesBeforeIt)
{
    for (const auto& one : diagnosis::chain())
    {
        EXPECT_FALSE(diagnosis::reaches(one.stage, one.stage));
        EXPECT_TRUE(diagnosis::reaches(Stage::host, one.stage));
        EXPECT_FALSE(diagnosis::reaches(one.stage, Stage::host));
        for (const auto& other : diagnosis::chain())
            if (diagnosis::reaches(one.stage, other.stage))
            {
                EXPECT_LT(diagnosis::causal_place(one.stage), diagnosis::causal_place(other.stage)) << one.id << " to " << other.id;
            }
    }
}

} // namespace
