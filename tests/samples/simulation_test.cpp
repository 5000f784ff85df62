/** @file simulation_test.cpp The living samples: what one stage passes on is what the next receives, at the rates of the records. */
#include "simulation.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstring>
#include <string>
#include <vector>

#include "dictionary.h"
#include "living.h"

namespace
{

using namespace std::chrono_literals;
using samples::Simulation;

constexpr Simulation::Moment START = start;

std::string TestName(std::string name)
{
    for (char& c : name)
        if (c == '-') c = '_';
    return name;
}

bool Same(const SAMPLES_RECORDS& one, const SAMPLES_RECORDS& other)
{
    return std::memcmp(&one, &other, sizeof one) == 0;
}

/** What happened between two moments, where it must balance. */
void ExpectBalance(const SAMPLES_RECORDS& before, const SAMPLES_RECORDS& after)
{
    const auto grown = [](unsigned long was, unsigned long is) { return static_cast<long>(is - was); };

    long packets = 0;
    for (size_t i = 0; i < SMGR_TDEMUX_MAX_SOURCES; ++i)
    {
        const auto& source = after.tTDemux.tSources[i].tCounters;
        const auto& source_was = before.tTDemux.tSources[i].tCounters;
        const auto& channel = after.tBuffering.tChannel[i];
        const auto& channel_was = before.tBuffering.tChannel[i];
        const long out = grown(source_was.nNumOutputPackets, source.nNumOutputPackets);
        packets += out;
        EXPECT_EQ(out, grown(channel_was.tCounters.nNumReceivedPackets, channel.tCounters.nNumReceivedPackets)) << i;
    }
    EXPECT_EQ(grown(before.tTDemux.tCounters.nNumOutputPackets, after.tTDemux.tCounters.nNumOutputPackets), packets);
    EXPECT_EQ(grown(before.tBuffering.tCounters.nNumReceivedPackets, after.tBuffering.tCounters.nNumReceivedPackets), packets);

    long held = 0;
    for (const auto* records : {&before, &after})
    {
        held = -held;
        for (const auto& channel : records->tBuffering.tChannel) held += channel.nQueueOccupancyFrames;
    }
    EXPECT_EQ(packets, grown(before.tBuffering.tCounters.nNumOutputPackets, after.tBuffering.tCounters.nNumOutputPackets) +
                           grown(before.tBuffering.tCounters.nNumDroppedPackets, after.tBuffering.tCounters.nNumDroppedPackets) + held);

    const auto& framer = after.tVFramer.tCounters;
    const auto& framer_was = before.tVFramer.tCounters;
    EXPECT_EQ(grown(before.tBuffering.tChannel[0].tCounters.nNumOutputPackets, after.tBuffering.tChannel[0].tCounters.nNumOutputPackets),
              grown(framer_was.nNumInputPackets, framer.nNumInputPackets));
    const long framed = grown(framer_was.nNumOutputFrames, framer.nNumOutputFrames);
    EXPECT_EQ(grown(framer_was.nNumInputPackets, framer.nNumInputPackets),
              framed + grown(framer_was.nNumInputPacketsDropped, framer.nNumInputPacketsDropped) +
                  grown(framer_was.nNumOutputFramesDropped, framer.nNumOutputFramesDropped));
    EXPECT_EQ(framed, grown(framer_was.nNumIPictures + framer_was.nNumPPictures + framer_was.nNumBPictures,
                            framer.nNumIPictures + framer.nNumPPictures + framer.nNumBPictures));

    const auto& decoder = after.tVideoDecoder.tCounters;
    const auto& decoder_was = before.tVideoDecoder.tCounters;
    EXPECT_EQ(framed, grown(decoder_was.nNumReceivedFrames, decoder.nNumReceivedFrames));
    EXPECT_EQ(framed, grown(decoder_was.nNumFramesSentToDecoder, decoder.nNumFramesSentToDecoder) +
                          grown(decoder_was.nNumDroppedFrames, decoder.nNumDroppedFrames));
    EXPECT_EQ(decoder.nNumFramesSentToDecoder - decoder.nNumDecodedFrames, +decoder.nCurPushedQueueOccupancy);
    EXPECT_EQ(decoder.nNumReorderFramesIn - decoder.nNumReorderFramesOut, +decoder.nNumReorderFramesQOcc);
    EXPECT_EQ(decoder.nNumFramesSentToDisplay - decoder.nNumDisplayedOutputFrames - decoder.nNumSkippedOutputFrames,
              after.tVideoDecoder.nVCurBDListLen);

    for (const auto& pair : after.tAudio.PairStats)
    {
        EXPECT_EQ(pair.nDecodedFrames - pair.nOutputFrames - pair.nSkippedFrames, pair.nOutQueueLength);
    }
    for (const auto& channel : after.tMetadata.tChannel)
    {
        EXPECT_EQ(channel.tCounters.nNumBDAllocated - channel.tCounters.nNumBDFreed, +channel.tCounters.nNumBDInUsedList);
    }
}

/** Counters only grow, events have not happened yet or not later than now, and what was counted happened within the step. */
void ExpectEvents(const records::Snapshot& before, const records::Snapshot& after)
{
    const std::int64_t then = before.taken_at / 1'000'000'000;
    const std::int64_t now = after.taken_at / 1'000'000'000;
    for (const dictionary::Field& field : dictionary::fields())
    {
        const auto& component = dictionary::component_of(field);
        for (size_t i = 0; i < field.count(); ++i)
        {
            if (!dictionary::applies(field, after.record(component), i)) continue;
            const auto value = [&](const dictionary::Field& one, const records::Snapshot& of)
            { return dictionary::integer(one, of.record(component), i); };
            if (field.kind == dictionary::Kind::counter)
            {
                EXPECT_GE(value(field, after), value(field, before)) << field.full_name;
            }
            if (field.kind != dictionary::Kind::event_time || field.type != dictionary::Type::i64) continue;
            EXPECT_GE(value(field, after), value(field, before)) << field.full_name;
            EXPECT_LE(value(field, after), now) << field.full_name;
            if (field.relation != dictionary::Relation::last_of) continue;
            const dictionary::Field& counted = dictionary::fields()[field.related];
            if (value(counted, after) > value(counted, before))
            {
                EXPECT_GE(value(field, after), then) << field.full_name;
            }
        }
    }
}

class Healthy : public testing::TestWithParam<const char*>
{
};

INSTANTIATE_TEST_SUITE_P(Scenarios, Healthy, testing::Values("live-srt-1080i", "rtp-fec-2160p"),
                         [](const auto& test) { return TestName(test.param); });

TEST_P(Healthy, BeginsAsTheScenario)
{
    SAMPLES_RECORDS expected;
    samples_find(GetParam())->pFill(&expected, START.time_since_epoch() / 1s);
    EXPECT_TRUE(Same(Simulation(GetParam(), 1, START).records(), expected));
}

TEST_P(Healthy, BalancesInStepsOfAnyLength)
{
    for (const auto step : {40ms, 250ms, 1000ms, 3700ms})
    {
        Simulation simulation(GetParam(), 7, START);
        for (int i = 0; i < 400; ++i)
        {
            const SAMPLES_RECORDS before = simulation.records();
            const records::Snapshot earlier = snapshot_of(simulation);
            simulation.advance(step);
            ExpectBalance(before, simulation.records());
            ExpectEvents(earlier, snapshot_of(simulation));
            if (testing::Test::HasFailure()) FAIL() << "step " << i << " of " << step.count() << " ms";
        }
    }
}

TEST_P(Healthy, AnHourHasTheRatesOfTheRecords)
{
    Simulation simulation(GetParam(), 3, START);
    const SAMPLES_RECORDS before = simulation.records();
    for (int i = 0; i < 3600; ++i) simulation.advance(1s);
    const SAMPLES_RECORDS& after = simulation.records();

    const auto& demux = after.tTDemux;
    EXPECT_EQ(demux.nUpTimeInSecs, before.tTDemux.nUpTimeInSecs + 3600);
    EXPECT_NEAR(double(demux.tCounters.nNumReceivedBytes - before.tTDemux.tCounters.nNumReceivedBytes) * 8 / 3600,
                before.tTDemux.tCounters.nBitsPerSecond, 1e-3 * before.tTDemux.tCounters.nBitsPerSecond);
    EXPECT_NEAR(double(demux.nPCR - before.tTDemux.nPCR), 3600.0 * 90000, 90000);
    EXPECT_NEAR(double(after.tVideoDecoder.tCounters.nNumDisplayedOutputFrames - before.tVideoDecoder.tCounters.nNumDisplayedOutputFrames),
                3600.0 * double(before.tVFramer.tCurrentProperties.fFrameRate), 2);
    for (size_t i = 0; i < 2; ++i)
    {
        const auto& pair = after.tAudio.PairStats[i];
        const double samples = pair.enAlgorithm == SMGR_TDEMUX_COMPRESSION_TYPE_AC3 ? 1536 : 1024;
        EXPECT_NEAR(double(pair.nOutputFrames - before.tAudio.PairStats[i].nOutputFrames), 3600 * 48000 / samples, 2);
    }
    // Nothing but what the network lost and the link made good.
    EXPECT_EQ(+after.tVideoDecoder.tCounters.nNumReplayedOutputFrames, +before.tVideoDecoder.tCounters.nNumReplayedOutputFrames);
    EXPECT_EQ(+after.tVideoDecoder.tCounters.nNumSkippedOutputFrames, 0U);
    EXPECT_EQ(+after.tBuffering.tCounters.nNumDroppedPackets, 0U);
    EXPECT_EQ(after.tAudio.nSkippedFrames, 0U);
}

TEST_P(Healthy, GaugesJitterWithinTheirExtremes)
{
    Simulation simulation(GetParam(), 5, START);
    std::vector<int> leads;
    for (int i = 0; i < 600; ++i)
    {
        simulation.advance(1s);
        const auto& records = simulation.records();
        const auto& counters = records.tVideoDecoder.tCounters;
        EXPECT_LE(counters.nMinOutputSTCLeadTime, counters.nOutputSTCLeadTime);
        EXPECT_LE(counters.nOutputSTCLeadTime, counters.nMaxOutputSTCLeadTime);
        EXPECT_LE(+records.tTDemux.tCounters.nRxPacketToPacketIntervalUs, +records.tTDemux.tCounters.nMaxRxPacketToPacketIntervalUs);
        EXPECT_LE(+records.tBuffering.tCounters.nBufferingOccupancyBytes, +records.tBuffering.tCounters.nMaxBufferingOccupancyBytes);
        for (const auto& channel : records.tBuffering.tChannel) EXPECT_LE(channel.nJitterTimeMsActual, channel.nJitterTimeMsMaximum);
        leads.push_back(counters.nOutputSTCLeadTime);
    }
    EXPECT_NE(*std::min_element(leads.begin(), leads.end()), *std::max_element(leads.begin(), leads.end()));
}

TEST(Simulation, SameSeedAndStepsGiveTheSameBytes)
{
    for (size_t i = 0; i < samples_scenario_count; ++i)
    {
        Simulation one(samples_scenarios[i].szName, 42, START);
        Simulation other(samples_scenarios[i].szName, 42, START);
        for (int step = 0; step < 200; ++step)
        {
            one.advance(700ms);
            other.advance(700ms);
        }
        EXPECT_TRUE(Same(one.records(), other.records())) << samples_scenarios[i].szName;
    }
}

TEST(Simulation, AnotherSeedGivesOthers)
{
    Simulation one("live-srt-1080i", 1, START);
    Simulation other("live-srt-1080i", 2, START);
    one.advance(10s);
    other.advance(10s);
    EXPECT_FALSE(Same(one.records(), other.records()));
}

TEST(Simulation, ExtremeAndIdleStandStill)
{
    for (const char* name : {"extreme", "idle"})
    {
        Simulation simulation(name, 1, START);
        const SAMPLES_RECORDS before = simulation.records();
        simulation.advance(1h);
        EXPECT_TRUE(Same(simulation.records(), before)) << name;
        EXPECT_EQ(simulation.now(), START + 1h);
    }
}

TEST(Simulation, ResolvingGoesOnFailing)
{
    Simulation simulation("resolving", 1, START);
    const SAMPLES_RECORDS before = simulation.records();
    simulation.advance(60s);
    const auto& demux = simulation.records().tTDemux;
    EXPECT_EQ(demux.enState, SMGR_TDEMUX_STATS_STATE_RESOLVING);
    EXPECT_EQ(+demux.nUpTimeInSecs, before.tTDemux.nUpTimeInSecs + 60);
    EXPECT_EQ(+demux.tCounters.nNumErrors, before.tTDemux.tCounters.nNumErrors + 12); // one lookup in 5 s
    EXPECT_EQ(+demux.tCounters.nNumReceivedPackets, 0U);
}

TEST(Simulation, TroubleLosesInBursts)
{
    Simulation simulation("trouble", 1, START);
    const auto lost = [&] { return +simulation.records().tTDemux.Xport.SRT.nLostPkts; };
    int bursts = 0;
    for (int i = 0; i < 600; ++i)
    {
        const SAMPLES_RECORDS before = simulation.records();
        const records::Snapshot earlier = snapshot_of(simulation);
        simulation.advance(1s);
        ExpectEvents(earlier, snapshot_of(simulation));
        bursts += lost() > before.tTDemux.Xport.SRT.nLostPkts;
    }
    EXPECT_GT(bursts, 10);
    EXPECT_LT(bursts, 80);
    const auto& link = simulation.records().tTDemux.Xport.SRT;
    EXPECT_GT(link.Dir.Rx.nUndecryptedPkts, 600U * 800);
}

TEST(Simulation, UnknownNamesAreRefused)
{
    EXPECT_THROW(Simulation("live", 1, START), std::invalid_argument);
    EXPECT_THROW(Simulation("live-srt-1080i", 1, START).inject("srt", 0s), std::invalid_argument);
}

} // namespace
