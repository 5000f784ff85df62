/**
 * @file samples_test.cpp
 * The table of scenarios, what every scenario promises, and the arithmetic that a video engineer would check.
 *
 * The records are packed: +field copies a 64-bit field, which must not be referred to where it stands.
 */
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cfloat>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <vector>

#include <netdb.h>

#include "dictionary.h"
#include "samples.h"
#include "video_formats.h"

namespace
{

constexpr time_t NOW = 1700000000;
constexpr long TICKS_PER_MS = 90;
constexpr long TICKS_WRAP = 1L << 33;  // PTS, DTS and PCR have 33 bits, ISO/IEC 13818-1
constexpr long NOMINAL_STC = 27000000; // Hz

using Records = std::unique_ptr<SAMPLES_RECORDS>;

/** Fills records that held nothing but one byte value. */
Records Fill(const SAMPLES_SCENARIO& scenario, time_t now, int before = 0)
{
    auto records = std::make_unique<SAMPLES_RECORDS>();
    std::memset(static_cast<void*>(records.get()), before, sizeof(SAMPLES_RECORDS));
    scenario.pFill(records.get(), now);
    return records;
}

Records Fill(const char* name)
{
    const SAMPLES_SCENARIO* scenario = samples_find(name);
    if (scenario == nullptr)
    {
        ADD_FAILURE() << "no scenario " << name;
        return std::make_unique<SAMPLES_RECORDS>();
    }
    return Fill(*scenario, NOW);
}

const unsigned char* Bytes(const SAMPLES_RECORDS& records)
{
    return reinterpret_cast<const unsigned char*>(&records);
}

/** Offset of the first byte in which two records differ, or their size. */
size_t FirstDifference(const SAMPLES_RECORDS& a, const SAMPLES_RECORDS& b)
{
    return static_cast<size_t>(std::mismatch(Bytes(a), Bytes(a) + sizeof a, Bytes(b)).first - Bytes(a));
}

template <typename Record> bool SameBytes(const Record& a, const Record& b)
{
    const auto* first = reinterpret_cast<const unsigned char*>(&a);
    return std::equal(first, first + sizeof a, reinterpret_cast<const unsigned char*>(&b));
}

using dictionary::Field;
using dictionary::Kind;
using dictionary::Type;

static_assert(sizeof(SAMPLES_RECORDS) == sizeof(records::Records));

/** A field of the records, of an array's that of one element. */
struct Place
{
    const Field* field;
    size_t element;

    std::string Name() const { return element_name(*field, element); }
    size_t Offset() const { return component_of(*field).offset + field->offset(element); }
    long Integer(const SAMPLES_RECORDS& records) const
    {
        const records::Component& component = component_of(*field);
        return integer(*field, std::as_bytes(std::span(&records, 1)).subspan(component.offset, component.record_size), element);
    }
};

/** Every field of every element, of one kind or of all. */
std::vector<Place> AllFields(std::optional<Kind> kind = {})
{
    std::vector<Place> places;
    for (const Field& field : dictionary::fields())
    {
        if (kind && field.kind != *kind) continue;
        for (size_t element = 0; element < field.count(); ++element) places.push_back({&field, element});
    }
    return places;
}

/** The seconds of an event time. */
time_t TimeOf(const SAMPLES_RECORDS& records, const Place& event)
{
    time_t time = 0;
    std::memcpy(&time, Bytes(records) + event.Offset(), sizeof time);
    return time;
}

void SetTime(SAMPLES_RECORDS& records, const Place& event, time_t time)
{
    std::memcpy(reinterpret_cast<unsigned char*>(&records) + event.Offset(), &time, sizeof time);
}

std::string TestName(const char* name)
{
    std::string text = name;
    std::replace(text.begin(), text.end(), '-', '_');
    return text;
}

// ---- The table ----

TEST(Table, HoldsTheScenariosInOrder)
{
    const std::vector<std::string> expected = {"live-srt-1080i", "rtp-fec-2160p", "trouble", "resolving", "idle", "extreme"};
    std::vector<std::string> names;
    for (size_t i = 0; i < samples_scenario_count; ++i) names.emplace_back(samples_scenarios[i].szName);
    EXPECT_EQ(names, expected);
}

TEST(Table, NamesAreUniqueAndPlain)
{
    std::set<std::string> names;
    for (size_t i = 0; i < samples_scenario_count; ++i)
    {
        const std::string name = samples_scenarios[i].szName;
        EXPECT_TRUE(names.insert(name).second) << name;
        EXPECT_FALSE(name.empty());
        EXPECT_EQ(name.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789-"), std::string::npos) << name;
    }
}

TEST(Table, SummariesAreOneLineWithoutAFinalStop)
{
    std::set<std::string> summaries;
    for (size_t i = 0; i < samples_scenario_count; ++i)
    {
        const std::string summary = samples_scenarios[i].szSummary;
        ASSERT_FALSE(summary.empty()) << samples_scenarios[i].szName;
        EXPECT_TRUE(summaries.insert(summary).second) << summary;
        EXPECT_TRUE(std::all_of(summary.begin(), summary.end(), [](unsigned char c) { return c >= ' ' && c <= '~'; })) << summary;
        EXPECT_TRUE(std::isalnum(static_cast<unsigned char>(summary.back()))) << summary;
    }
}

TEST(Find, GivesTheEntryOfTheTable)
{
    for (size_t i = 0; i < samples_scenario_count; ++i) EXPECT_EQ(samples_find(samples_scenarios[i].szName), &samples_scenarios[i]);
}

TEST(Find, GivesNothingForAnyOtherName)
{
    for (const char* name : {"", "live", "live-srt-1080", "live-srt-1080i ", "Idle", "IDLE", "idle\n", "nothing"})
    {
        EXPECT_EQ(samples_find(name), nullptr) << name;
    }
}

// ---- Every scenario ----

class EveryScenario : public testing::TestWithParam<const SAMPLES_SCENARIO*>
{
protected:
    const SAMPLES_SCENARIO& scenario = *GetParam();
    const std::vector<Place> events = AllFields(Kind::event_time);

    bool IsExtreme() const { return std::string(scenario.szName) == "extreme"; }
};

/** The scenarios that a decoder may be in. */
class RealScenario : public EveryScenario
{
};

std::vector<const SAMPLES_SCENARIO*> AllScenarios()
{
    std::vector<const SAMPLES_SCENARIO*> scenarios;
    for (size_t i = 0; i < samples_scenario_count; ++i) scenarios.push_back(&samples_scenarios[i]);
    return scenarios;
}

std::vector<const SAMPLES_SCENARIO*> RealScenarios()
{
    std::vector<const SAMPLES_SCENARIO*> scenarios = AllScenarios();
    std::erase(scenarios, samples_find("extreme"));
    return scenarios;
}

INSTANTIATE_TEST_SUITE_P(Scenarios, EveryScenario, testing::ValuesIn(AllScenarios()),
                         [](const auto& test) { return TestName(test.param->szName); });
INSTANTIATE_TEST_SUITE_P(Scenarios, RealScenario, testing::ValuesIn(RealScenarios()),
                         [](const auto& test) { return TestName(test.param->szName); });

TEST_P(EveryScenario, FillsEveryByte)
{
    const Records a = Fill(scenario, NOW, 0xAA);
    const Records b = Fill(scenario, NOW, 0x55);
    EXPECT_EQ(FirstDifference(*a, *b), sizeof(SAMPLES_RECORDS));
}

TEST_P(EveryScenario, FillsTheSameAgain)
{
    const Records first = Fill(scenario, NOW);
    const Records later = Fill(scenario, NOW + 1);
    const Records again = Fill(scenario, NOW);
    ASSERT_NE(later, nullptr);
    EXPECT_EQ(FirstDifference(*first, *again), sizeof(SAMPLES_RECORDS));
}

TEST_P(RealScenario, EventTimesArePastAndMoveWithNow)
{
    constexpr time_t shift = 123457;
    const Records early = Fill(scenario, NOW);
    const Records late = Fill(scenario, NOW + shift);
    for (const Place& event : events)
    {
        const time_t time = TimeOf(*early, event);
        if (time == 0)
        {
            EXPECT_EQ(TimeOf(*late, event), 0) << event.Name();
            continue;
        }
        EXPECT_GT(time, 0) << event.Name();
        EXPECT_LE(time, NOW) << event.Name();
        EXPECT_EQ(TimeOf(*late, event) - time, shift) << event.Name();
    }
}

TEST_P(EveryScenario, NothingButEventTimesDependsOnNow)
{
    const Records early = Fill(scenario, NOW);
    const Records late = Fill(scenario, NOW + 123457);
    for (const Place& event : events)
    {
        SetTime(*early, event, 0);
        SetTime(*late, event, 0);
    }
    EXPECT_EQ(FirstDifference(*early, *late), sizeof(SAMPLES_RECORDS));
}

TEST_P(EveryScenario, WhatHappenedHasATimeAndWhatNeverHappenedHasNone)
{
    const Records records = Fill(scenario, NOW);
    for (const Place& event : events)
    {
        if (event.field->relation == dictionary::Relation::none) continue;
        const Place number = {&dictionary::fields()[event.field->related], event.element};
        EXPECT_EQ(TimeOf(*records, event) == 0, number.Integer(*records) == 0) << event.Name();
    }
}

TEST_P(EveryScenario, TextsEndExceptInTheExtremeOne)
{
    const Records records = Fill(scenario, NOW);
    const auto ends = [](const auto& text) { return std::memchr(text, '\0', sizeof text) != nullptr; };

    EXPECT_NE(ends(records->tTDemux.tStreamAddress.szHostName), IsExtreme());
    EXPECT_NE(ends(records->tTDemux.tSourceAddress.szHostName), IsExtreme());
    EXPECT_NE(ends(records->tVFramer.tCurrentProperties.szFraming), IsExtreme());
    EXPECT_NE(ends(records->tVFramer.tPreviousProperties.szFraming), IsExtreme());
    for (const auto& channel : records->tMetadata.tChannel) EXPECT_NE(ends(channel.szName), IsExtreme());
}

TEST_P(RealScenario, NoMoreLeavesThanEnters)
{
    const Records records = Fill(scenario, NOW);

    const auto& demux = records->tTDemux.tCounters;
    EXPECT_LE(demux.nNumOutputPackets + demux.nNumDroppedPackets, +demux.nNumReceivedPackets);
    EXPECT_LE(demux.nNumOutputBytes + demux.nNumDroppedBytes, +demux.nNumReceivedBytes);

    const auto& buffering = records->tBuffering.tCounters;
    EXPECT_LE(buffering.nNumOutputPackets + buffering.nNumDroppedPackets, +buffering.nNumReceivedPackets);
    EXPECT_LE(+buffering.nNumReceivedPackets, +demux.nNumOutputPackets);

    const auto& framer = records->tVFramer.tCounters;
    EXPECT_LE(framer.nNumOutputFrames + framer.nNumInputPacketsDropped + framer.nNumOutputFramesDropped, +framer.nNumInputPackets);

    const auto& decoder = records->tVideoDecoder.tCounters;
    EXPECT_LE(+decoder.nNumReceivedFrames, +framer.nNumOutputFrames);
    EXPECT_LE(decoder.nNumDecodedFrames + decoder.nNumDroppedFrames, +decoder.nNumReceivedFrames);
    EXPECT_EQ(decoder.nNumDroppedIFrames + decoder.nNumDroppedPFrames + decoder.nNumDroppedBFrames, +decoder.nNumDroppedFrames);
    EXPECT_LE(+decoder.nNumFramesSentToDisplay, +decoder.nNumDecodedFrames);
    EXPECT_LE(decoder.nNumDisplayedOutputFrames + decoder.nNumSkippedOutputFrames + decoder.nNumOutputErrors,
              +decoder.nNumFramesSentToDisplay);

    const auto& audio = records->tAudio;
    EXPECT_LE(audio.nDecodedFrames + audio.nErrors, audio.nReceivedFrames);
    EXPECT_LE(audio.nOutputFrames + audio.nSkippedFrames + audio.nOutputErrors, audio.nDecodedFrames);
    EXPECT_LE(audio.nSkippedFrames, audio.nDecodedFrames);

    for (const auto& channel : records->tMetadata.tChannel)
    {
        const auto& counters = channel.tCounters;
        EXPECT_EQ(counters.nNumSynchronousPackets + counters.nNumAsynchronousPackets, +counters.nNumInputPackets) << channel.szName;
        EXPECT_LE(counters.nNumOutputPackets + counters.nNumDroppedPackets + counters.nNumOutputFailedPackets, +counters.nNumInputPackets)
            << channel.szName;
        EXPECT_EQ(counters.nNumBDAllocated - counters.nNumBDFreed, +counters.nNumBDInUsedList) << channel.szName;
    }
}

// ---- The healthy scenarios ----

/** What a healthy scenario is known for. */
struct Nature
{
    const char* name;
    long rateNumerator; // frames/s
    long rateDenominator;
    int width;
    int height;
    bool interlaced;
    double samplesPerPixel;
    double videoBitsPerSecond;
};

constexpr Nature NATURES[] = {
    {"live-srt-1080i", 30000, 1001, 1920, 1080, true, 2.0, 12e6},
    {"rtp-fec-2160p", 60000, 1001, 3840, 2160, false, 1.5, 36e6},
};

class Healthy : public testing::TestWithParam<Nature>
{
protected:
    const Nature nature = GetParam();
    const Records records = Fill(nature.name);
    const SMGR_TDEMUX_STATS& demux = records->tTDemux;
    const SMGR_VFRAMER_STATS& framer = records->tVFramer;
    const SMGR_VFRAMER_STREAM_PROPS& properties = framer.tCurrentProperties;
    const SMGR_VCUDEC_STATS& videoDecoder = records->tVideoDecoder;
    const SMGR_DECODER_AUDIO_STATS& audio = records->tAudio;
    const SMGR_METADATADEC_STATS& metadata = records->tMetadata;
    const SMGR_CBUFFERING_STATS& buffering = records->tBuffering;
    const SMGR_DECODER_CLOCK_RECOVERY_STATS& clock = records->tClockRecovery;
    const unsigned long upTime = demux.nUpTimeInSecs;
    const double frameRate = double(nature.rateNumerator) / double(nature.rateDenominator);
    const double frames = frameRate * double(upTime);

    /** Packets that a stream sends in a second. */
    double PacketRate(const SMGR_TDEMUX_SOURCE_STATS& source) const
    {
        switch (source.enType)
        {
        case SMGR_TDEMUX_DATA_TYPE_VIDEO: return frameRate;
        case SMGR_TDEMUX_DATA_TYPE_KLV: return 10;
        case SMGR_TDEMUX_DATA_TYPE_AUDIO:
            return source.enCompressionType == SMGR_TDEMUX_COMPRESSION_TYPE_AC3 ? 48000.0 / 1536 : 48000.0 / 1024;
        default: ADD_FAILURE() << "stream of unknown kind"; return 1;
        }
    }

    std::vector<SMGR_TDEMUX_SOURCE_STATS> Sources() const
    {
        std::vector<SMGR_TDEMUX_SOURCE_STATS> sources;
        std::copy_if(std::begin(demux.tSources), std::end(demux.tSources), std::back_inserter(sources),
                     [](const auto& source) { return source.tCounters.nNumReceivedPackets != 0; });
        return sources;
    }
};

INSTANTIATE_TEST_SUITE_P(Scenarios, Healthy, testing::ValuesIn(NATURES), [](const auto& test) { return TestName(test.param.name); });

TEST_P(Healthy, EveryComponentIsActive)
{
    EXPECT_EQ(demux.enState, SMGR_TDEMUX_STATS_STATE_ACTIVE);
    EXPECT_TRUE(demux.bStreamHasBeenStarted);
    EXPECT_EQ(framer.enState, SMGR_VFRAMER_STATE_ACTIVE);
    EXPECT_EQ(videoDecoder.enState, SMGR_VCUDEC_STATE_ACTIVE);
    EXPECT_EQ(audio.enState, SMGR_AUDDEC_STATE_ACTIVE);
    EXPECT_EQ(metadata.enState, SMGR_METADATA_STATE_ACTIVE);
    EXPECT_EQ(buffering.enStatus, SMGR_CBUFFERING_STATUS_ACTIVE);
    EXPECT_EQ(framer.nStreamID, static_cast<int>(demux.nSmgrStreamID));
}

TEST_P(Healthy, RecordSizesAreTrue)
{
    EXPECT_EQ(demux.nSize, sizeof demux);
    EXPECT_EQ(videoDecoder.nSize, sizeof videoDecoder);
    EXPECT_EQ(static_cast<size_t>(audio.nSize), sizeof audio);
    for (const auto& pair : audio.PairStats) EXPECT_EQ(static_cast<size_t>(pair.nSize), sizeof pair);
}

TEST_P(Healthy, NothingIsLostOrInError)
{
    const auto& input = demux.tCounters;
    EXPECT_EQ(+input.nNumDroppedPackets, 0U);
    EXPECT_EQ(+input.nNumErrors, 0U);
    EXPECT_EQ(input.iLastError, 0);
    EXPECT_EQ(+input.nNumTSCorruptedFrames, 0U);
    EXPECT_EQ(+input.nNumLostSegmentsMPEG2TS, 0U);
    EXPECT_EQ(+input.nInputPacketListOverflows, 0U);
    EXPECT_EQ(+input.nReadPacketListOverflows, 0U);

    const auto& framing = framer.tCounters;
    EXPECT_EQ(+framing.nNumUnsupported, 0U);
    EXPECT_EQ(+framing.nNumInputPacketsDropped, 0U);
    EXPECT_EQ(+framing.nNumOutputFramesDropped, 0U);
    EXPECT_EQ(framing.nNumSPSErrors + framing.nNumPPSErrors + framing.nNumSEIErrors + framing.nNumSHErrors, 0U);
    EXPECT_EQ(+framing.nNumUnknownNALs, 0U);
    EXPECT_EQ(framing.nInputPacketListOverflows + framing.nOutputPacketListOverflows, 0U);

    const auto& decoding = videoDecoder.tCounters;
    EXPECT_EQ(+decoding.nNumDroppedFrames, 0U);
    EXPECT_EQ(+decoding.nNumConcealedFrames, 0U);
    EXPECT_EQ(+decoding.nNumSkippedOutputFrames, 0U);
    EXPECT_EQ(+decoding.nNumOutputErrors, 0U);
    EXPECT_EQ(+decoding.nNumOutputLate, 0U);
    EXPECT_EQ(+decoding.nNumDiscontinuty, 0U);
    EXPECT_EQ(+decoding.nNumOfFrmNotRelease, 0U);
    EXPECT_EQ(decoding.nLastErrorCode, 0);

    EXPECT_EQ(audio.nErrors, 0U);
    EXPECT_EQ(audio.nSkippedFrames, 0U);
    EXPECT_EQ(audio.nOutputErrors, 0U);
    EXPECT_EQ(audio.nTSDiscontinuity, 0U);

    EXPECT_EQ(+buffering.tCounters.nNumDroppedPackets, 0U);
    EXPECT_EQ(+buffering.tCounters.nNumUnknownPackets, 0U);
    EXPECT_EQ(+buffering.tCounters.nNumLateOutputs, 0U);
    EXPECT_EQ(+buffering.tCounters.nBufferingOverflows, 0U);

    EXPECT_EQ(clock.pcrLateCount, 0);
    EXPECT_EQ(clock.pcrJitterErrCount, 0);
    EXPECT_EQ(+clock.PcrJump, 0);
}

TEST_P(Healthy, NetworkBytesAreDatagramsOfSevenPackets)
{
    EXPECT_EQ(+demux.tCounters.nNumReceivedBytes, demux.tCounters.nNumReceivedPackets * 1316);
}

TEST_P(Healthy, BitRatesAreBytesOverUpTime)
{
    const auto& input = demux.tCounters;
    const auto rate = [this](unsigned long bytes) { return double(bytes) * 8 / double(upTime); };
    EXPECT_NEAR(input.nBitsPerSecond, rate(input.nNumReceivedBytes), 1e-3 * input.nBitsPerSecond);
    EXPECT_NEAR(properties.nBitsPerSecond, nature.videoBitsPerSecond, 1);

    double sum = 0;
    for (const auto& source : Sources())
    {
        const auto& counters = source.tCounters;
        EXPECT_NEAR(counters.nBitsPerSecond, rate(counters.nNumReceivedBytes), 1e-3 * counters.nBitsPerSecond) << source.tsPid;
        if (source.enType == SMGR_TDEMUX_DATA_TYPE_VIDEO)
        {
            EXPECT_EQ(counters.nBitsPerSecond, properties.nBitsPerSecond);
        }
        sum += counters.nBitsPerSecond;
    }
    // Headers take 4 bytes of 188 at least; PES headers, tables, PCRs and stuffing come to a few percent.
    EXPECT_GT(input.nBitsPerSecond, sum * 188 / 184);
    EXPECT_LT(input.nBitsPerSecond, sum * 1.06);
}

TEST_P(Healthy, StreamsSendTheirPacketsInTime)
{
    for (const auto& source : Sources())
    {
        const double expected = PacketRate(source) * double(upTime);
        EXPECT_NEAR(double(source.tCounters.nNumReceivedPackets), expected, 1) << source.tsPid;
    }
}

TEST_P(Healthy, TransportTotalsAreTheSumsOfTheStreams)
{
    unsigned int video = 0;
    unsigned int sound = 0;
    unsigned int klv = 0;
    unsigned long packets = 0;
    unsigned long bytes = 0;
    std::set<unsigned> pids;
    for (const auto& source : Sources())
    {
        video += source.enType == SMGR_TDEMUX_DATA_TYPE_VIDEO;
        sound += source.enType == SMGR_TDEMUX_DATA_TYPE_AUDIO;
        klv += source.enType == SMGR_TDEMUX_DATA_TYPE_KLV;
        packets += source.tCounters.nNumOutputPackets;
        bytes += source.tCounters.nNumOutputBytes;
        EXPECT_TRUE(pids.insert(source.tsPid).second) << source.tsPid;
        EXPECT_LT(source.tsPid, 0x1FFFU); // 13 bits, all ones being null packets
    }
    const auto& counters = demux.tCounters;
    EXPECT_EQ(counters.nVideoStreams, video);
    EXPECT_EQ(counters.nAudioStreams, sound);
    EXPECT_EQ(counters.nKLVStreams, klv);
    EXPECT_EQ(counters.nNumStreams, video + sound + klv);
    EXPECT_EQ(video, 1U);
    EXPECT_EQ(sound, static_cast<unsigned>(audio.nNumOfPairs));
    EXPECT_EQ(+counters.nNumOutputPackets, packets);
    EXPECT_EQ(+counters.nNumOutputBytes, bytes);
    EXPECT_TRUE(pids.count(demux.nPcrPid));
}

TEST_P(Healthy, TimeStampsFollowThePCR)
{
    const long pcr = static_cast<long>(+demux.nPCR);
    EXPECT_LT(pcr, TICKS_WRAP);
    EXPECT_EQ(+buffering.nPCR, +demux.nPCR);
    EXPECT_EQ(+clock.curPcr, pcr);

    const auto sources = Sources();
    for (size_t i = 0; i < sources.size(); ++i)
    {
        const long pts = static_cast<long>(+sources[i].nPTS);
        const long dts = static_cast<long>(+sources[i].nDTS);
        EXPECT_LT(pts, TICKS_WRAP);
        EXPECT_LE(dts, pts);
        EXPECT_GT(dts, pcr);
        EXPECT_EQ(sources[i].nTimebaseNum, 1U);
        EXPECT_EQ(sources[i].nTimebaseDen, 90000U);
        EXPECT_EQ(buffering.tChannel[i].enType, sources[i].enType);
        EXPECT_EQ(buffering.tChannel[i].nPCRtoPTSTimeMsActual, (pts - pcr) / TICKS_PER_MS);
    }
    EXPECT_EQ(+demux.tCounters.TimeStamp, +sources[0].nPTS);
}

TEST_P(Healthy, RolloversAgreeWithTheUpTime)
{
    // The ticks of the up time hold this many whole periods of 2^33; where the count began decides about one more.
    const unsigned long whole = upTime * 90000 / TICKS_WRAP;
    const unsigned long count = demux.tCounters.nNumTimestampRollovers;
    EXPECT_GE(count, whole);
    EXPECT_LE(count, whole + 1);
    if (count != 0)
    {
        const time_t sinceRollover = static_cast<time_t>(demux.nPCR / 90000);
        EXPECT_EQ(NOW - demux.tCounters.tLastTimestampRollover, sinceRollover);
    }
}

TEST_P(Healthy, DelaysAddUp)
{
    EXPECT_EQ(buffering.nSTCtoPCRLeadTimeMs, (static_cast<long>(+buffering.nSTC) - static_cast<long>(+buffering.nPCR)) / TICKS_PER_MS);
    EXPECT_EQ(+clock.curPcrFpga, static_cast<long>(+buffering.nSTC));
    EXPECT_EQ(+clock.curPcrFpgaDelta, clock.curPcr - clock.curPcrFpga);
    EXPECT_EQ(+clock.pcrTsDelta, buffering.tChannel[0].nTotalOutputLatencyMs * TICKS_PER_MS);
    EXPECT_LE(+clock.pcrTsDeltaMinExtValue, +clock.pcrTsDeltaMinValue);
    EXPECT_LT(+clock.pcrTsDeltaMinValue, +clock.pcrTsDelta);
    EXPECT_LT(+clock.pcrTsDelta, +clock.pcrTsDeltaMaxValue);
    EXPECT_LE(+clock.pcrTsDeltaMaxValue, +clock.pcrTsDeltaMaxExtValue);

    const auto sources = Sources();
    for (size_t i = 0; i < sources.size(); ++i)
    {
        const auto& channel = buffering.tChannel[i];
        const int latency = static_cast<int>(channel.nTotalOutputLatencyMs);
        EXPECT_EQ(latency, channel.nPCRtoPTSTimeMsActual - buffering.nSTCtoPCRLeadTimeMs);
        EXPECT_EQ(latency, static_cast<int>(channel.nBufferingDelayTimeMs) + channel.nSTCLeadTimeMsSet);

        // The frames held last as long as the delay, the begun one included.
        const double period = 1000 / PacketRate(sources[i]);
        EXPECT_GE(channel.nQueueOccupancyFrames * period, channel.nBufferingDelayTimeMs);
        EXPECT_LT((channel.nQueueOccupancyFrames - 1) * period, channel.nBufferingDelayTimeMs);
        EXPECT_EQ(channel.tCounters.nNumReceivedPackets - channel.tCounters.nNumOutputPackets, channel.nQueueOccupancyFrames);
        EXPECT_LE(channel.nQueueOccupancyFrames, channel.tCounters.nMaxQueueOccupancyFrames);
        EXPECT_EQ(+channel.TimeStamp,
                  static_cast<unsigned long>(std::lround(double(sources[i].nPTS) - channel.nQueueOccupancyFrames * period * TICKS_PER_MS)));

        EXPECT_LE(channel.nJitterTimeMsActual, channel.nJitterTimeMsMaximum);
        EXPECT_LE(channel.nJitterTimeMsMaximum, channel.nJitterTimeMsSet);
    }
    for (size_t i = sources.size(); i < std::size(buffering.tChannel); ++i)
    {
        EXPECT_EQ(+buffering.tChannel[i].tCounters.nNumReceivedPackets, 0U);
    }

    EXPECT_TRUE(buffering.bBufferingDelaySet);
    EXPECT_EQ(static_cast<int>(buffering.nSetDelayMs), buffering.tChannel[0].nSTCLeadTimeMsSet);
    EXPECT_GE(buffering.nSetDelayMs, buffering.nMinDelayMs);
    EXPECT_LE(buffering.tChannel[0].nTotalOutputLatencyMs, buffering.nMaxDelayMs);
    EXPECT_GE(buffering.nFixedDelayMs, buffering.nMinDelayMs);
    EXPECT_EQ(+framer.tCurrentProperties.TimeStamp, +buffering.tChannel[0].TimeStamp);
}

TEST_P(Healthy, BufferedBytesAreTheFramesHeld)
{
    double bytes = 0;
    const auto sources = Sources();
    for (size_t i = 0; i < sources.size(); ++i)
    {
        const auto& counters = sources[i].tCounters;
        bytes += double(counters.nNumReceivedBytes) / double(counters.nNumReceivedPackets) * buffering.tChannel[i].nQueueOccupancyFrames;
    }
    EXPECT_NEAR(double(buffering.tCounters.nBufferingOccupancyBytes), bytes, 1);
    EXPECT_LE(+buffering.tCounters.nBufferingOccupancyBytes, +buffering.tCounters.nMaxBufferingOccupancyBytes);
}

TEST_P(Healthy, VideoCountsNeverGrowOnTheirWay)
{
    const auto& counters = videoDecoder.tCounters;
    const auto source = Sources()[0].tCounters;
    const std::vector<unsigned long> counts = {
        source.nNumReceivedPackets,
        source.nNumOutputPackets,
        buffering.tChannel[0].tCounters.nNumReceivedPackets,
        buffering.tChannel[0].tCounters.nNumOutputPackets,
        framer.tCounters.nNumInputPackets,
        framer.tCounters.nNumInputPacketsFreed,
        framer.tCounters.nNumOutputFrames,
        counters.nNumReceivedFrames,
        counters.nNumFramesSentToDecoder,
        counters.nNumInputParsedCallbacks,
        counters.nNumDecodedCallbacks,
        counters.nNumDecodedFrames,
        counters.nNumReorderFramesIn,
        counters.nNumReorderFramesOut,
        counters.nNumDisplayCallbacks,
        counters.nNumFramesSentToDisplay,
        counters.nNumDisplayedOutputFrames,
        counters.nNumDisplayedFramesFreed,
    };
    EXPECT_TRUE(std::is_sorted(counts.begin(), counts.end(), std::greater<>())) << testing::PrintToString(counts);
    EXPECT_NEAR(double(counts.front()), frames, 1);
    EXPECT_GT(double(counts.back()), frames - 3 * frameRate); // less than 3 s in the chain

    EXPECT_EQ(counters.nNumReorderFramesIn - counters.nNumReorderFramesOut, +counters.nNumReorderFramesQOcc);
    EXPECT_EQ(counters.nNumReorderFramesQOcc, videoDecoder.nVCurReOrderLen);
    EXPECT_EQ(counters.nNumFramesSentToDecoder - counters.nNumDecodedFrames, +counters.nCurPushedQueueOccupancy);
    EXPECT_LE(+counters.nCurPushedQueueOccupancy, +counters.nMaxPushedQueueOccupancy);
    EXPECT_EQ(counters.nNumFramesSentToDisplay - counters.nNumDisplayedOutputFrames, videoDecoder.nVCurBDListLen);

    // Between reception and display lies the latency, the begun frame included.
    const double period = 1000 / frameRate;
    const double latency = double(source.nNumReceivedPackets - counters.nNumDisplayedOutputFrames) * period;
    EXPECT_GE(latency, buffering.tChannel[0].nTotalOutputLatencyMs);
    EXPECT_LT(latency - period, buffering.tChannel[0].nTotalOutputLatencyMs);
}

TEST_P(Healthy, AudioCountsNeverGrowOnTheirWay)
{
    const auto sources = Sources();
    unsigned long received = 0;
    unsigned long decoded = 0;
    unsigned long played = 0;
    int pairs = 0;
    for (size_t i = 0; i < sources.size(); ++i)
    {
        if (sources[i].enType != SMGR_TDEMUX_DATA_TYPE_AUDIO) continue;
        EXPECT_EQ(sources[i].nAudioPairNum, pairs + 1);
        const auto& pair = audio.PairStats[pairs++];

        const std::vector<unsigned long> counts = {
            sources[i].tCounters.nNumReceivedPackets,
            sources[i].tCounters.nNumOutputPackets,
            buffering.tChannel[i].tCounters.nNumReceivedPackets,
            buffering.tChannel[i].tCounters.nNumOutputPackets,
            pair.nReceivedFrames,
            pair.nDecodedFrames,
            pair.nOutputFrames,
        };
        EXPECT_TRUE(std::is_sorted(counts.begin(), counts.end(), std::greater<>())) << testing::PrintToString(counts);

        // Between reception and the loudspeaker lies the latency, the begun frame included.
        const double period = 1000 / PacketRate(sources[i]);
        const double latency = double(counts.front() - counts.back()) * period;
        EXPECT_GE(latency, buffering.tChannel[i].nTotalOutputLatencyMs);
        EXPECT_LT(latency - period, buffering.tChannel[i].nTotalOutputLatencyMs);

        EXPECT_EQ(pair.enAlgorithm, sources[i].enCompressionType);
        EXPECT_EQ(static_cast<unsigned>(pair.nBitRateInKbps) * 1000, sources[i].tCounters.nBitsPerSecond);
        EXPECT_EQ(pair.nSampleRateIn, 48000);
        EXPECT_EQ(pair.nDecodedFrames - pair.nOutputFrames, pair.nOutQueueLength);
        EXPECT_EQ(pair.nCurFpgaWteId - pair.nCurFpgaReadId, pair.nOutQueueLength);
        EXPECT_LE(pair.nOutQueueLength, pair.nMaxOutQueueLen);
        EXPECT_NEAR(double(pair.nDecodedBytes), double(pair.nDecodedFrames) * pair.nBitRateInKbps / 8 * period, 1000);
        EXPECT_NEAR(pair.nLastWteToFpgaIntervalInMs, period, 1);

        // The 32-bit time stamps stay close to each other and to what the stream carried.
        const int difference = static_cast<int>(pair.nAudioTimeStamp - pair.nVideoTimeStamp);
        EXPECT_EQ(pair.iAudioVideoTSDiffInMs, difference / TICKS_PER_MS);
        EXPECT_LT(std::abs(pair.iAudioVideoTSDiffInMs), 40);
        const double stamp = double(sources[i].nPTS) - latency * TICKS_PER_MS;
        EXPECT_EQ(pair.nAudioTimeStamp, static_cast<unsigned>(static_cast<unsigned long>(std::lround(stamp))));

        EXPECT_EQ(pair.nCurSTCLeadTimeMs, buffering.tChannel[i].nSTCLeadTimeMsSet - static_cast<int>(audio.nADelayOutputMS));
        EXPECT_LE(pair.nMinSTCLeadTimeMs, pair.nCurSTCLeadTimeMs);
        EXPECT_LE(pair.nCurSTCLeadTimeMs, pair.nMaxSTCLeadTimeMs);

        received += pair.nReceivedFrames;
        decoded += pair.nDecodedFrames;
        played += pair.nOutputFrames;
    }
    EXPECT_EQ(audio.nNumOfPairs, pairs);
    EXPECT_EQ(audio.nReceivedFrames, received);
    EXPECT_EQ(audio.nDecodedFrames, decoded);
    EXPECT_EQ(audio.nOutputFrames, played);
    EXPECT_EQ(audio.nReceivedFrames - audio.nDecodedFrames, audio.nPendingDecodeRequests);
    EXPECT_EQ(audio.nDecodedFrames - audio.nOutputFrames, audio.nCurDecodedQueueLength);
    EXPECT_LE(audio.nADelayInputMS, audio.nADelayOutputMS);
    EXPECT_LE(audio.nARxFramesJitterMS, audio.nALastMaxRxFramesJitterMS);
}

TEST_P(Healthy, MetadataComesFromTheKLVStreamAndTheFramer)
{
    const char* const names[] = {"KLV", "TC", "CC", "AFD"};
    unsigned long received = 0;
    for (size_t i = 0; i < std::size(metadata.tChannel); ++i)
    {
        const auto& channel = metadata.tChannel[i];
        EXPECT_STREQ(channel.szName, names[i]);
        EXPECT_EQ(channel.enType, static_cast<int>(i));

        const unsigned long input = channel.tCounters.nNumInputPackets;
        EXPECT_EQ(channel.enState, input == 0 ? SMGR_METADATA_STATE_IDLE : SMGR_METADATA_STATE_ACTIVE) << channel.szName;
        EXPECT_EQ(channel.tCounters.nNumBDInFreeList + channel.tCounters.nNumBDInUsedList, 32U) << channel.szName;
        EXPECT_LE(channel.tCounters.nNumOutputPayloadBytes, channel.tCounters.nNumOutputPackets * channel.tCounters.nMaxOutputPayloadBytes);
        EXPECT_LE(channel.tCounters.nMinOutputSTCLeadTime, channel.tCounters.nOutputSTCLeadTime);
        EXPECT_LE(channel.tCounters.nOutputSTCLeadTime, channel.tCounters.nMaxOutputSTCLeadTime);
        received += input;
    }
    EXPECT_EQ(+metadata.tCounters.nNumReceivedPackets, received);

    const auto sources = Sources();
    const auto klv =
        std::find_if(sources.begin(), sources.end(), [](const auto& source) { return source.enType == SMGR_TDEMUX_DATA_TYPE_KLV; });
    const unsigned long released = klv == sources.end() ? 0 : buffering.tChannel[klv - sources.begin()].tCounters.nNumOutputPackets;
    EXPECT_EQ(+metadata.tChannel[SMGR_METADATA_CHANNEL_TYPE_KLV].tCounters.nNumInputPackets, released);
    EXPECT_EQ(+metadata.tChannel[SMGR_METADATA_CHANNEL_TYPE_TC].tCounters.nNumInputPackets, +framer.tCounters.nNumTC);
    EXPECT_EQ(+metadata.tChannel[SMGR_METADATA_CHANNEL_TYPE_CC].tCounters.nNumInputPackets, +framer.tCounters.nNumCC);
    EXPECT_EQ(+metadata.tChannel[SMGR_METADATA_CHANNEL_TYPE_AFD].tCounters.nNumInputPackets, +framer.tCounters.nNumAFD);
    EXPECT_EQ(properties.bTCPresent, framer.tCounters.nNumTC != 0);
    EXPECT_EQ(properties.bCCPresent, framer.tCounters.nNumCC != 0);
    EXPECT_EQ(properties.bAFDPresent, framer.tCounters.nNumAFD != 0);
}

TEST_P(Healthy, PicturesAddUp)
{
    const auto& counters = framer.tCounters;
    const unsigned long output = counters.nNumOutputFrames;
    EXPECT_EQ(counters.nNumIPictures + counters.nNumPPictures + counters.nNumBPictures + counters.nNumUnknownPictures, output);
    EXPECT_EQ(counters.nNumOutputFramesOnePiece + counters.nNumOutputFramesAssembled, output);
    EXPECT_EQ(nature.interlaced ? +counters.nNumInterlacedPicStruct : +counters.nNumProgressivePicStruct, output);
    EXPECT_EQ(counters.nNumInterlacedPicStruct + counters.nNumProgressivePicStruct, output);
    EXPECT_NEAR(double(counters.nNumKeyFrames), double(output) / double(properties.nGopInterval), 1);
    EXPECT_EQ(+counters.nNumSHNALs, output * properties.nSliceCountPerFrame);
    EXPECT_EQ(+counters.nNumAUDNALs, output);
    EXPECT_EQ(+counters.nNumSPSNALs, +counters.nNumKeyFrames);
    EXPECT_NEAR(double(counters.nNumOutputBytesToDecoder) / double(output) * 8 * frameRate, nature.videoBitsPerSecond, 1);
    EXPECT_NEAR(properties.fFrameRate, frameRate, 1e-4);
    EXPECT_NEAR(framer.tCounters.fInputFrameRate, frameRate, 0.005);
    EXPECT_NEAR(double(properties.TimeStampDelta), 90000 / frameRate, 0.5);

    // Between two anchors lies a run of B pictures of the greatest length.
    const double anchors = double(counters.nNumIPictures + counters.nNumPPictures);
    EXPECT_NEAR(anchors * double(counters.nMaxNumberOfBPicturesInARow + 1), double(output),
                double(counters.nMaxNumberOfBPicturesInARow + 1));
}

TEST_P(Healthy, FrameBuffersHoldThePicture)
{
    EXPECT_EQ(properties.nWidth, nature.width);
    EXPECT_EQ(properties.nHeight, nature.height);
    EXPECT_EQ(properties.bInterlaced != 0, nature.interlaced);

    const auto& v = videoDecoder;
    EXPECT_EQ(static_cast<int>(v.nFrameBufferWidth - v.nCropOffsetLeft - v.nCropOffsetRight), nature.width);
    EXPECT_EQ(static_cast<int>(v.nFrameBufferHeight - v.nCropOffsetTop - v.nCropOffsetBottom), nature.height);
    EXPECT_EQ(v.bCropping != 0, v.nFrameBufferHeight != static_cast<unsigned>(nature.height));
    EXPECT_EQ(v.nFrameBufferBitDepthY, 10U);
    EXPECT_EQ(v.nFrameBufferBitDepthC, 10U);
    EXPECT_EQ(double(v.nFrameBufferSizeEachInBytes), v.nFrameBufferWidth * double(v.nFrameBufferHeight) * nature.samplesPerPixel * 2);
    EXPECT_LE(v.nFrameBufferNumber, v.nFrameBufferNumberInUsed);
    EXPECT_GE(v.nFrameBufferNumberInUsed, v.tCounters.nNumReceivedFrames - v.tCounters.nNumDisplayedOutputFrames);

    const unsigned long rate = static_cast<unsigned long>(frameRate); // 29 and 59 stand for 29.97 and 59.94
    EXPECT_EQ(+v.nDisplayFormat, VIDEO_FORMAT_CODE(nature.width, nature.height, rate, nature.interlaced ? 1 : 0));
}

TEST_P(Healthy, VideoDecoderDelaysAreCoherent)
{
    const auto& v = videoDecoder;
    for (const auto& [least, now, average, most] :
         {std::tuple{v.nVMinDelayInputMS, v.nVDelayInputMS, v.nVDelayInputMSAvg, v.nVMaxDelayInputMS},
          std::tuple{v.nVMinDelayOutputMS, v.nVDelayOutputMS, v.nVDelayOutputMSAvg, v.nVMaxDelayOutputMS}})
    {
        EXPECT_LE(least, std::min(now, average));
        EXPECT_GE(most, std::max(now, average));
    }
    EXPECT_LT(v.nVMaxDelayInputMS, v.nVMinDelayOutputMS);
    EXPECT_LE(v.nVMaxDelayWithinVCUMS, v.nVMaxDelayOutputMS);
    EXPECT_LE(v.nVMinReOrderLen, v.nVCurReOrderLen);
    EXPECT_LE(v.nVCurReOrderLen, v.nVMaxReOrderLen);
    EXPECT_LE(v.nVMinBDListLen, v.nVCurBDListLen);
    EXPECT_LE(v.nVCurBDListLen, v.nVMaxBDListLen);

    EXPECT_EQ(v.nVDecInputJitterMS, v.nVMaxDelayInputMS - v.nVMinDelayInputMS);
    EXPECT_EQ(v.nVDecOutputJitterMS, v.nVMaxDelayOutputMS - v.nVMinDelayOutputMS);
    EXPECT_EQ(v.nVDecJitterMS, v.nVDecOutputJitterMS - v.nVDecInputJitterMS);
    EXPECT_EQ(v.nVDecLatencyMS, v.nVMinDelayOutputMS - v.nVMinDelayInputMS);
    EXPECT_EQ(v.nLatencyInUs, v.nVDecLatencyMS * 1000);

    // The hardware waits for the slowest picture, though not so long that its delay ought to be reduced.
    EXPECT_GT(v.nVTheoDelayHwOutputMS, v.nVMaxDelayOutputMS);
    EXPECT_GT(v.nVDelayHwOutputMS, v.nVMaxDelayOutputMS);
    EXPECT_LE(v.nVTheoDelayHwOutputMS - v.nVDelayOutputMSAvg, 450U);
    EXPECT_LE(v.nVDelayHwOutputMS - v.nVDelayOutputMSAvg, 450U);
    EXPECT_EQ(v.nVDelayHwOutputFrameMS, v.nVDelayHwOutputMS);

    const auto& automatic = buffering.tAutomatic;
    EXPECT_EQ(v.nVTheoDelayHwOutputMS, buffering.nSetDelayMs);
    EXPECT_EQ(v.tCounters.nOutputSTCLeadTime, static_cast<int>(buffering.nSetDelayMs - v.nVDelayOutputMS));
    EXPECT_LE(v.tCounters.nMinOutputSTCLeadTime, v.tCounters.nOutputSTCLeadTime);
    EXPECT_LE(v.tCounters.nOutputSTCLeadTime, v.tCounters.nMaxOutputSTCLeadTime);
    EXPECT_EQ(buffering.nMinDelayMs, v.nVMaxDelayOutputMS + automatic.nHardwareDelayMs);

    EXPECT_EQ(automatic.nVideoDecoderLatencyMs, v.nVDecLatencyMS);
    EXPECT_LE(automatic.nVideoDecoderLatencyMs, automatic.nVideoDecoderLatencyMaxMs);
    EXPECT_EQ(automatic.nVideoDecoderJitterMs, v.nVDecJitterMS);
    EXPECT_LE(automatic.nVideoDecoderJitterMs, automatic.nVideoDecoderJitterMaxMs);
    EXPECT_EQ(automatic.nVideoSTCLeadTimeAvgActualMs, buffering.tChannel[0].nSTCLeadTimeMsSet);
    EXPECT_LT(automatic.nVideoSTCLeadTimeMinActualMs, automatic.nVideoSTCLeadTimeAvgActualMs);
    EXPECT_LT(automatic.nVideoSTCLeadTimeAvgActualMs, automatic.nVideoSTCLeadTimeMaxActualMs);
    EXPECT_EQ(automatic.nAudioSTCLeadTimeAvgActualMs, buffering.tChannel[1].nSTCLeadTimeMsSet);
    EXPECT_LE(automatic.nNonVideoLateMs, automatic.nNonVideoLateMaxMs);
    for (const auto& channel : buffering.tChannel) EXPECT_LE(channel.nJitterTimeMsMaximum, automatic.nMaxInputJitterMs);
}

/** Digits behind the point of a deviation in ppm, two of them. */
long PpmFraction(long hertz)
{
    return std::abs(hertz) * 100 / (NOMINAL_STC / 1000000) % 100;
}

TEST_P(Healthy, ClockIsLocked)
{
    EXPECT_EQ(+clock.StcClkNominal, NOMINAL_STC);
    EXPECT_EQ(+clock.curPLLDevHz, clock.curPllAvg - clock.StcClkNominal);
    EXPECT_EQ(+clock.curPLLDevPpm, clock.curPLLDevHz / 27);
    EXPECT_EQ(+clock.curPLLDevPpmFract, PpmFraction(clock.curPLLDevHz));
    EXPECT_EQ(+clock.curPLLDevPpmNominal, (clock.OldPll - clock.StcClkNominal) / 27);
    EXPECT_EQ(+clock.avgDevPpm, clock.avgDevHz / 27);
    EXPECT_EQ(+clock.avgDevPpmFract, PpmFraction(clock.avgDevHz));
    EXPECT_LE(std::abs(+clock.curPLLDevPpm), 4);
    EXPECT_NE(+clock.curPllAvg, 0);
    EXPECT_LT(+clock.curPllMin, +clock.curPllAvg);
    EXPECT_LT(+clock.curPllAvg, +clock.curPllMax);
    EXPECT_LE(+clock.curPllMin, +clock.OldPll);
    EXPECT_LE(+clock.OldPll, +clock.curPllMax);
    EXPECT_TRUE(clock.TrackingStarted);
    EXPECT_FALSE(clock.PllNotSettled);

    // A fraction below 10 would be printed as if it were tenths.
    EXPECT_GE(+clock.curPLLDevPpmFract, 10);
    EXPECT_GE(+clock.avgDevPpmFract, 10);

    const auto& counters = buffering.tCounters;
    EXPECT_EQ(+clock.PcrUpdates, +counters.nNumPCRUpdates);
    EXPECT_EQ(+counters.nNumPCRPackets, +counters.nNumPCRUpdates);
    EXPECT_EQ(90000 / clock.OldDeltaSnd, static_cast<long>(clock.PcrUpdates / upTime)); // ticks between two PCRs
    EXPECT_LT(clock.OldDeltaSnd / TICKS_PER_MS, 100);                                   // ISO/IEC 13818-1 asks for one every 100 ms
}

TEST_P(Healthy, UsageIsSmallAndRecent)
{
    const auto& usage = records->tUsage;
    EXPECT_EQ(NOW - usage.tLastStart, static_cast<time_t>(upTime));
    EXPECT_EQ(usage.nNumStarts - usage.nNumStops, 1U);
    for (const unsigned long count : {usage.nNumStarts, usage.nNumGetStats, usage.nNumGetInfos, usage.nNumConfigures, usage.nNumCaptures,
                                      usage.nNumClears, usage.nNumLoadConfigs, usage.nNumSaveConfigs})
    {
        EXPECT_LT(count, 100U);
    }
    const auto& counters = videoDecoder.tCounters;
    EXPECT_EQ(+usage.nNumCaptures, counters.nNumImageCaptures + counters.nNumImageCapturesFailed);
    EXPECT_EQ(+usage.tLastCapture, +counters.tLastImageCapture);
}

TEST_P(Healthy, EventsSinceTheStartAreNotOlder)
{
    for (const Place& event : AllFields(Kind::event_time))
    {
        const time_t time = TimeOf(*records, event);
        if (time == 0 || event.field->full_name.starts_with("usage.")) continue;
        EXPECT_GE(time, NOW - static_cast<time_t>(upTime)) << event.Name();
    }
}

// ---- Each scenario's own ----

TEST(LiveSrt1080i, IsAnEncryptedSrtLink)
{
    const Records records = Fill("live-srt-1080i");
    const auto& demux = records->tTDemux;
    const auto& srt = demux.Xport.SRT;
    EXPECT_EQ(demux.enEncapsulation, SMGR_STREAM_ENCAPSULATION_TS_SRT);
    EXPECT_EQ(srt.iKeyState, SMGR_STREAM_SRT_KM_S_SECURED);
    EXPECT_EQ(srt.iKeyLength, 16);
    EXPECT_EQ(srt.iLatency, 120);
    EXPECT_NEAR(srt.iRTT, 24000, 1000);
    EXPECT_EQ(srt.iVersion, 0x010404);
    EXPECT_EQ(srt.iPeerVersion, 0x010503);
    EXPECT_EQ(static_cast<unsigned>(srt.iLocalPort), demux.nStreamPort);
    EXPECT_EQ(static_cast<unsigned>(srt.iRemotePort), demux.nSourcePort);

    EXPECT_EQ(+srt.Dir.Rx.nRecvPkts, +demux.tCounters.nNumReceivedPackets);
    EXPECT_EQ(+srt.Dir.Rx.nRecvBytes, +demux.tCounters.nNumReceivedBytes);
    EXPECT_EQ(+srt.Dir.Rx.nRecvKbps, demux.tCounters.nBitsPerSecond / 1000);
    EXPECT_GT(+srt.nLostPkts, 0U);
    EXPECT_LT(+srt.nLostPkts, 100U);
    EXPECT_EQ(+srt.nDroppedPkts, 0U); // all were sent again in time
    EXPECT_LE(srt.iBufTimespan, srt.iLatency);
    EXPECT_EQ(srt.iBufBytes, srt.iBufPkts * 1316);
    EXPECT_NEAR(srt.iBufBytes * 8.0 / srt.iLatency, double(srt.Dir.Rx.nRecvKbps), 100);
    EXPECT_GT(srt.iAvailBw, static_cast<int>(srt.Dir.Rx.nRecvKbps));
}

TEST(LiveSrt1080i, IsInterlaced422WithAacKlvAndCaptions)
{
    const Records records = Fill("live-srt-1080i");
    const auto& properties = records->tVFramer.tCurrentProperties;
    EXPECT_EQ(properties.enCompressionType, SMGR_TDEMUX_COMPRESSION_TYPE_H264);
    EXPECT_EQ(properties.nProfile, 122);
    EXPECT_EQ(properties.nLevel, 41);
    EXPECT_EQ(properties.enColorType, SMGR_VIDEO_COLOR_TYPE_422_10BIT);
    EXPECT_EQ(properties.bInterlaced, TRUE);
    EXPECT_EQ(properties.bInterlacedTFF, TRUE);
    EXPECT_TRUE(properties.bCCPresent);
    EXPECT_EQ(records->tTDemux.tCounters.nAudioStreams, 2U);
    EXPECT_EQ(records->tTDemux.tCounters.nKLVStreams, 1U);
    for (int i = 0; i < 2; ++i) EXPECT_EQ(records->tAudio.PairStats[i].enAlgorithm, SMGR_TDEMUX_COMPRESSION_TYPE_AAC_ADTS);
    EXPECT_EQ(records->tBuffering.enBufferingMode, SMGR_DECSDI_BUFFERING_AUTOMATIC);
    EXPECT_EQ(records->tClockRecovery.trackingMode, SMGR_CLOCK_TRACKING_ENABLED);
    EXPECT_NEAR(double(records->tTDemux.nUpTimeInSecs) / 86400, 2, 0.25); // days
}

TEST(RtpFec2160p, RebuildsEveryLostPacket)
{
    const Records records = Fill("rtp-fec-2160p");
    const auto& demux = records->tTDemux;
    const auto& fec = demux.Xport.PMFEC;
    EXPECT_EQ(demux.enEncapsulation, SMGR_STREAM_ENCAPSULATION_TS_RTP);
    EXPECT_EQ(demux.enFECType, SMGR_FEC_TYPE_PRO_MPEG);
    EXPECT_TRUE((demux.tStreamAddress.acAddress[0] & 0xF0) == 0xE0) << "not a multicast address";
    EXPECT_EQ(fec.nColumns, 10);
    EXPECT_EQ(fec.nRows, 10);
    EXPECT_TRUE(fec.bRowFEC);
    EXPECT_EQ(fec.nMediaPkts, static_cast<int>(demux.tCounters.nNumReceivedPackets));
    EXPECT_GT(fec.nRecoveredPkts, 0);
    EXPECT_EQ(fec.nLostPkts, 0);
    EXPECT_EQ(fec.nDroppedPkts, fec.nRecoveredPkts + fec.nLostPkts);
    EXPECT_EQ(static_cast<int>(demux.tCounters.nNumLostSegmentsRTP), fec.nDroppedPkts);

    // A column packet for ten media packets, a row packet likewise.
    const int sent = fec.nMediaPkts + fec.nDroppedPkts;
    EXPECT_EQ(fec.nColFecPkts + fec.nDroppedColFECPkts, sent / 10);
    EXPECT_EQ(fec.nRowFecPkts + fec.nDroppedRowFECPkts, sent / 10);
    EXPECT_EQ(sent, static_cast<int>(demux.nUpTimeInSecs * 3650));
}

TEST(RtpFec2160p, IsHdr)
{
    const Records records = Fill("rtp-fec-2160p");
    const auto& properties = records->tVFramer.tCurrentProperties;
    EXPECT_EQ(properties.enCompressionType, SMGR_TDEMUX_COMPRESSION_TYPE_H265);
    EXPECT_EQ(properties.nProfile, 2);
    EXPECT_EQ(properties.nLevel, 153);
    EXPECT_EQ(properties.enColorType, SMGR_VIDEO_COLOR_TYPE_420_10BIT);
    EXPECT_EQ(properties.enHDRType, SMGR_VFRAMER_HDR_TYPE_PQ);
    EXPECT_EQ(properties.enHDRTypeInStream, SMGR_VFRAMER_HDR_TYPE_PQ);
    EXPECT_EQ(properties.colour_primaries, 9);
    EXPECT_EQ(properties.transfer_characteristics, 16);
    EXPECT_EQ(properties.matrix_coefficients, 9);
    EXPECT_EQ(properties.szPayloadID[0], 0xCE);        // SMPTE ST 2082-10: 2160 lines on 12G-SDI
    EXPECT_EQ(properties.szPayloadID[1] & 0x0F, 0x0A); // SMPTE ST 352: 60/1.001
    EXPECT_EQ(properties.szPayloadID[1] & 0x30, 0x20); // PQ
    EXPECT_EQ(records->tClockRecovery.trackingMode, SMGR_CLOCK_TRACKING_ENABLED_LOCK);
}

TEST(RtpFec2160p, MultiSyncKeepsTheTimecode)
{
    const Records records = Fill("rtp-fec-2160p");
    const auto& buffering = records->tBuffering;
    const auto& multiSync = buffering.tMultiSync;
    EXPECT_EQ(buffering.enBufferingMode, SMGR_DECSDI_BUFFERING_MULTISYNC);
    EXPECT_EQ(multiSync.bTimecodePresent, TRUE);
    EXPECT_EQ(multiSync.bTimecodeValid, TRUE);
    EXPECT_EQ(multiSync.nSystemTimeInMs - multiSync.nTimecodeInMs, multiSync.nTransmissionTimeMs);
    EXPECT_EQ(multiSync.nMultiSyncDelaySetMs, buffering.nMultiSyncDelayMs);
    EXPECT_EQ(multiSync.nMultiSyncDelayActualMs, multiSync.nMultiSyncDelaySetMs);
    EXPECT_LT(multiSync.nMultiSyncDelayRangeMinMs, multiSync.nMultiSyncDelaySetMs);
    EXPECT_LT(multiSync.nMultiSyncDelaySetMs, multiSync.nMultiSyncDelayRangeMaxMs);
    EXPECT_EQ(buffering.tChannel[0].nTotalOutputLatencyMs,
              multiSync.nMultiSyncDelayActualMs - static_cast<unsigned>(multiSync.nTransmissionTimeMs));
    EXPECT_EQ(+multiSync.tCounters.nNumTCPackets, +buffering.tChannel[0].tCounters.nNumReceivedPackets);
    EXPECT_EQ(+multiSync.tCounters.nNumTCPacketsInvalid, 0U);

    // The decoded timecode is that of the picture released last, which is older by the buffering delay.
    const auto& tc = records->tMetadata.tCounters.tTCValue;
    EXPECT_EQ(tc.bTCValid, TRUE);
    EXPECT_LT(tc.nTCHours, 24U);
    EXPECT_LT(tc.nTCMinutes, 60U);
    EXPECT_LT(tc.nTCSeconds, 60U);
    EXPECT_LT(tc.nTCFrames, 30U);
    const unsigned decoded = ((tc.nTCHours * 60 + tc.nTCMinutes) * 60 + tc.nTCSeconds) * 1000 + tc.nTCFrames * 1000 / 30;
    EXPECT_NEAR(multiSync.nTimecodeInMs - double(decoded), buffering.tChannel[0].nBufferingDelayTimeMs, 1000.0 / 30);
}

TEST(Trouble, IsInEveryStage)
{
    const Records records = Fill("trouble");

    const auto& demux = records->tTDemux;
    EXPECT_EQ(demux.enState, SMGR_TDEMUX_STATS_STATE_SCRAMBLED);
    EXPECT_EQ(demux.Xport.SRT.iKeyState, SMGR_STREAM_SRT_KM_S_BADSECRET);
    EXPECT_GT(+demux.Xport.SRT.nLostPkts, +demux.Xport.SRT.nDroppedPkts);
    EXPECT_GT(+demux.Xport.SRT.nDroppedPkts, 0U);
    EXPECT_GT(+demux.Xport.SRT.Dir.Rx.nUndecryptedPkts, 0U);
    EXPECT_LE(+demux.Xport.SRT.Dir.Rx.nUndecryptedPkts, +demux.tCounters.nNumDroppedPackets);
    EXPECT_EQ(+demux.tCounters.nNumReceivedBytes, demux.tCounters.nNumReceivedPackets * 1316);
    EXPECT_GT(+demux.tCounters.nNumErrors, 0U);
    EXPECT_LT(demux.tCounters.iLastError, 0);
    EXPECT_GT(+demux.tCounters.nNumTSCorruptedFrames, 0U);
    EXPECT_GT(+demux.tCounters.nInputPacketListOverflows, 0U);
    EXPECT_GT(+demux.tCounters.nReadPacketListOverflows, 0U);

    const auto& framer = records->tVFramer.tCounters;
    EXPECT_GT(+framer.nNumInputPacketsDropped, 0U);
    EXPECT_GT(+framer.nInputPacketListOverflows, 0U);
    EXPECT_GT(+framer.nOutputPacketListOverflows, 0U);

    const auto& decoder = records->tVideoDecoder.tCounters;
    EXPECT_NE(decoder.nLastErrorCode, 0);
    EXPECT_GT(+decoder.nNumDroppedFrames, 0U);
    EXPECT_GT(+decoder.nNumConcealedFrames, 0U);
    EXPECT_GT(+decoder.nNumSkippedOutputFrames, 0U);
    EXPECT_GT(+decoder.nNumReplayedOutputFrames, 0U);
    EXPECT_GT(+decoder.nNumOutputErrors, 0U);
    EXPECT_GT(+decoder.nNumOutputLate, 0U);

    EXPECT_GT(records->tAudio.nErrors, 0U);
    EXPECT_GT(records->tAudio.nSkippedFrames, 0U);
    EXPECT_GT(records->tAudio.nOutputErrors, 0U);

    const auto& klv = records->tMetadata.tChannel[SMGR_METADATA_CHANNEL_TYPE_KLV].tCounters;
    EXPECT_GT(+klv.nNumDroppedPackets, 0U);
    EXPECT_GT(+klv.nNumOutputFailedPackets, 0U);
    EXPECT_GT(+klv.nNumOutputLate, 0U);

    const auto& buffering = records->tBuffering;
    EXPECT_EQ(buffering.enBufferingMode, SMGR_DECSDI_BUFFERING_FIXED);
    EXPECT_LT(buffering.nFixedDelayMs, buffering.nMinDelayMs);
    EXPECT_GT(+buffering.tCounters.nNumLateOutputs, 0U);
    EXPECT_GT(+buffering.tCounters.nBufferingOverflows, 0U);
    EXPECT_GT(+buffering.tCounters.nSynthesizedAsyncTimestamps, 0U);
    EXPECT_GT(+buffering.tCounters.nSynthesizedAsyncTimestampFails, 0U);
    EXPECT_EQ(buffering.nSTCtoPCRLeadTimeMs, (static_cast<long>(+buffering.nSTC) - static_cast<long>(+buffering.nPCR)) / TICKS_PER_MS);
    EXPECT_GT(buffering.nSTCtoPCRLeadTimeMs, 0);

    const auto& clock = records->tClockRecovery;
    EXPECT_GT(+clock.curPLLDevPpm, 99);
    EXPECT_EQ(+clock.curPLLDevHz, clock.curPllAvg - clock.StcClkNominal);
    EXPECT_EQ(+clock.curPLLDevPpm, clock.curPLLDevHz / 27);
    EXPECT_GT(clock.pcrLateCount, 0);
    EXPECT_GT(clock.pcrJitterErrCount, 0);
}

TEST(Trouble, OutputHardwareIsStarved)
{
    const Records records = Fill("trouble");
    const auto& v = records->tVideoDecoder;
    EXPECT_NE(v.nVDelayHwOutputMS, 0U);
    EXPECT_LE(v.nVDelayHwOutputMS, v.nVDelayOutputMSAvg);
    EXPECT_LE(v.nVTheoDelayHwOutputMS, v.nVDelayOutputMSAvg);
    EXPECT_EQ(v.nVDecOutputJitterMS, v.nVMaxDelayOutputMS - v.nVMinDelayOutputMS);
    EXPECT_EQ(v.nVDecInputJitterMS, v.nVMaxDelayInputMS - v.nVMinDelayInputMS);
    EXPECT_EQ(v.nVDecJitterMS, v.nVDecOutputJitterMS - v.nVDecInputJitterMS);
    EXPECT_EQ(v.nVDecLatencyMS, v.nVMinDelayOutputMS - v.nVMinDelayInputMS);
}

TEST(Trouble, ClocksTellTheSameStory)
{
    const Records records = Fill("trouble");
    const auto& demux = records->tTDemux;
    const long pcr = static_cast<long>(+demux.nPCR);
    EXPECT_EQ(+demux.tCounters.nNumTimestampRollovers, 1U);
    EXPECT_EQ(demux.tLastPCR - demux.tCounters.tLastTimestampRollover, pcr / 90000);
    EXPECT_EQ(+records->tClockRecovery.curPcr, pcr);
    EXPECT_EQ(+records->tClockRecovery.curPcrFpga, static_cast<long>(+records->tBuffering.nSTC));
    EXPECT_EQ(+records->tClockRecovery.tLastPcrJumpMaxValue, +demux.tCounters.tLastTimestampRollover);
    EXPECT_EQ(+records->tClockRecovery.PcrJumpMaxValue, -TICKS_WRAP / TICKS_PER_MS);

    // The STC has run on since the last PCR.
    EXPECT_NEAR(records->tBuffering.nSTCtoPCRLeadTimeMs, double(NOW - demux.tLastPCR) * 1000, 1000);
}

TEST(Trouble, StreamIsUnsupportedSinceItsFormatChanged)
{
    const Records records = Fill("trouble");
    const auto& framer = records->tVFramer;
    EXPECT_EQ(framer.enState, SMGR_VFRAMER_STATE_UNSUPPORTED);
    EXPECT_EQ(framer.tCounters.nLastUnsupportedErrorCode, static_cast<int>(SMGR_ERROR_UNSUPPORTED_SECOND_4K_H264_422_10BIT_VIDEO));
    EXPECT_EQ(framer.tCurrentProperties.nWidth, 3840);
    EXPECT_EQ(framer.tCurrentProperties.enColorType, SMGR_VIDEO_COLOR_TYPE_422_10BIT);
    EXPECT_NE(framer.tPreviousProperties.nWidth, framer.tCurrentProperties.nWidth);
    EXPECT_NE(framer.tPreviousProperties.enColorType, framer.tCurrentProperties.enColorType);
    EXPECT_GT(+framer.tCounters.nNumFormatTransitions, 0U);
    EXPECT_EQ(+framer.tCounters.tLastUnsupported, +framer.tCounters.tLastFormatTransition);

    const auto& counters = framer.tCounters;
    EXPECT_EQ(counters.nNumIPictures + counters.nNumPPictures + counters.nNumBPictures + counters.nNumUnknownPictures,
              +counters.nNumOutputFrames);
    EXPECT_EQ(counters.nNumOutputFramesOnePiece + counters.nNumOutputFramesAssembled, +counters.nNumOutputFrames);
    EXPECT_EQ(+counters.nNumOutputFrames, +records->tVideoDecoder.tCounters.nNumReceivedFrames);
}

TEST(Resolving, WaitsForTheNameServer)
{
    const Records records = Fill("resolving");
    const auto& demux = records->tTDemux;
    EXPECT_EQ(demux.enState, SMGR_TDEMUX_STATS_STATE_RESOLVING);
    EXPECT_EQ(demux.tCounters.iLastError, EAI_AGAIN);
    EXPECT_EQ(demux.tCounters.iLastError, -3);
    EXPECT_STREQ(demux.tSourceAddress.szHostName, "encoder.example");
    EXPECT_NE(+demux.nUpTimeInSecs, 0U);
    EXPECT_EQ(+demux.tCounters.nNumReceivedPackets, 0U);
    EXPECT_NE(+records->tUsage.nNumStarts, 0U);
    EXPECT_EQ(NOW - records->tUsage.tLastStart, static_cast<time_t>(demux.nUpTimeInSecs));
}

TEST(Resolving, IsIdleBehindTheDemux)
{
    const Records resolving = Fill("resolving");
    const Records idle = Fill("idle");
    EXPECT_TRUE(SameBytes(resolving->tVFramer, idle->tVFramer));
    EXPECT_TRUE(SameBytes(resolving->tVideoDecoder, idle->tVideoDecoder));
    EXPECT_TRUE(SameBytes(resolving->tAudio, idle->tAudio));
    EXPECT_TRUE(SameBytes(resolving->tMetadata, idle->tMetadata));
    EXPECT_TRUE(SameBytes(resolving->tBuffering, idle->tBuffering));
    EXPECT_EQ(+resolving->tClockRecovery.PcrUpdates, 0U);
}

TEST(Idle, HoldsNothingButWhatItKnowsOfItself)
{
    const Records records = Fill("idle");

    EXPECT_EQ(records->tTDemux.nSize, sizeof records->tTDemux);
    EXPECT_EQ(records->tTDemux.enState, SMGR_TDEMUX_STATS_STATE_STOPPED);
    records->tTDemux.nSize = 0;
    records->tTDemux.enState = SMGR_TDEMUX_STATS_STATE_UNKNOWN;

    EXPECT_EQ(records->tVFramer.enState, SMGR_VFRAMER_STATE_IDLE);
    EXPECT_NE(records->tVFramer.nDecoderID, 0U);
    records->tVFramer.enState = SMGR_VFRAMER_STATE_UNKNOWN;
    records->tVFramer.nDecoderID = 0;
    for (auto* properties : {&records->tVFramer.tCurrentProperties, &records->tVFramer.tPreviousProperties})
    {
        for (unsigned char* codePoint :
             {&properties->colour_primaries, &properties->transfer_characteristics, &properties->matrix_coefficients})
        {
            EXPECT_EQ(*codePoint, 2); // unspecified in ITU-T H.273
            *codePoint = 0;
        }
    }

    EXPECT_EQ(records->tVideoDecoder.nSize, sizeof records->tVideoDecoder);
    EXPECT_EQ(records->tVideoDecoder.enState, SMGR_VCUDEC_STATE_IDLE);
    EXPECT_EQ(records->tVideoDecoder.enPicStructure, VCUDEC_PICSTRUCTURE_UNKNOWN);
    records->tVideoDecoder.nSize = 0;
    records->tVideoDecoder.enState = SMGR_VCUDEC_STATE_UNKNOWN;
    records->tVideoDecoder.enPicStructure = VCUDEC_PICSTRUCTURE_FRAME;

    EXPECT_EQ(static_cast<size_t>(records->tAudio.nSize), sizeof records->tAudio);
    EXPECT_EQ(records->tAudio.enState, SMGR_AUDDEC_STATE_IDLE);
    records->tAudio.nSize = 0;
    records->tAudio.enState = 0;
    for (auto& pair : records->tAudio.PairStats)
    {
        EXPECT_EQ(static_cast<size_t>(pair.nSize), sizeof pair);
        pair.nSize = 0;
    }

    EXPECT_EQ(records->tMetadata.enState, SMGR_METADATA_STATE_IDLE);
    records->tMetadata.enState = SMGR_METADATA_STATE_UNKNOWN;
    records->tMetadata.nDecoderID = 0;
    const char* const names[] = {"KLV", "TC", "CC", "AFD"};
    for (size_t i = 0; i < std::size(names); ++i)
    {
        auto& channel = records->tMetadata.tChannel[i];
        EXPECT_STREQ(channel.szName, names[i]);
        EXPECT_EQ(channel.enType, static_cast<int>(i));
        EXPECT_EQ(channel.enState, SMGR_METADATA_STATE_IDLE);
        EXPECT_EQ(channel.tCounters.nBDUsedListHeadIndex, -1); // the list is empty
        std::memset(channel.szName, 0, sizeof channel.szName);
        channel.enType = SMGR_METADATA_CHANNEL_TYPE_KLV;
        channel.enState = SMGR_METADATA_STATE_UNKNOWN;
        channel.tCounters.nNumBDInFreeList = 0;
        channel.tCounters.nBDUsedListHeadIndex = 0;
    }

    EXPECT_EQ(records->tBuffering.enStatus, SMGR_CBUFFERING_STATUS_IDLE);
    EXPECT_GE(records->tBuffering.nFixedDelayMs, records->tBuffering.nMinDelayMs);
    EXPECT_LT(records->tBuffering.nMinDelayMs, records->tBuffering.nMaxDelayMs);
    records->tBuffering.nDecoderID = 0;
    records->tBuffering.enBufferingMode = 0;
    records->tBuffering.nFixedDelayMs = 0;
    records->tBuffering.nMultiSyncDelayMs = 0;
    records->tBuffering.nMinDelayMs = 0;
    records->tBuffering.nMaxDelayMs = 0;
    records->tBuffering.tAutomatic.nHardwareDelayMs = 0;

    EXPECT_EQ(+records->tClockRecovery.StcClkNominal, NOMINAL_STC);
    records->tClockRecovery.StcClkNominal = 0;
    records->tClockRecovery.OldPll = 0;

    const SAMPLES_RECORDS zero = {};
    EXPECT_EQ(FirstDifference(*records, zero), sizeof zero);
}

TEST(Extreme, TimesLieAtTheEndsOfTime)
{
    const Records records = Fill("extreme");
    size_t first = 0;
    size_t last = 0;
    for (const Place& event : AllFields(Kind::event_time))
    {
        const time_t time = TimeOf(*records, event);
        EXPECT_TRUE(time == LONG_MIN || time == LONG_MAX) << event.Name() << " is " << time;
        first += time == LONG_MIN;
        last += time == LONG_MAX;
    }
    EXPECT_NEAR(double(first), double(last), 10);
}

/** The fields of a kind that the extreme scenario fills: its transport is SRT, and FEC would be the same bytes. */
std::vector<Place> ExtremeFields(std::optional<Kind> kind = {})
{
    std::vector<Place> places = AllFields(kind);
    std::erase_if(places, [](const Place& place) { return place.field->name.starts_with("fec."); });
    return places;
}

TEST(Extreme, NumbersLieAtTheEndsOfTheirTypes)
{
    const Records records = Fill("extreme");
    long least = 0;
    long most = 0;
    for (const Kind kind : {Kind::counter, Kind::gauge, Kind::extreme})
    {
        for (const Place& place : ExtremeFields(kind))
        {
            const long value = place.Integer(*records);
            switch (place.field->type)
            {
            case Type::u32: EXPECT_EQ(value, UINT_MAX) << place.Name(); break;
            case Type::u64: EXPECT_EQ(static_cast<unsigned long>(value), ULONG_MAX) << place.Name(); break;
            case Type::i32: EXPECT_TRUE(value == INT_MIN || value == INT_MAX) << place.Name() << " is " << value; break;
            case Type::i64: EXPECT_TRUE(value == LONG_MIN || value == LONG_MAX) << place.Name() << " is " << value; break;
            default: EXPECT_EQ(place.field->type, Type::f32) << place.Name(); break;
            }
            least += value == INT_MIN || value == LONG_MIN;
            most += value == INT_MAX || value == LONG_MAX;
        }
    }
    EXPECT_GT(least, most / 2);
    EXPECT_LT(least, most * 2);

    EXPECT_EQ(+records->tVFramer.tCurrentProperties.fFrameRate, FLT_MAX);
    EXPECT_LT(+records->tVFramer.tCounters.fInputFrameRate, 0);
    EXPECT_LT(+records->tVFramer.tPreviousProperties.fFrameRate, 0);
}

TEST(Extreme, TextsAreFullOfLetters)
{
    const Records records = Fill("extreme");
    for (const Place& text : ExtremeFields(Kind::text))
    {
        const unsigned char* characters = Bytes(*records) + text.Offset();
        EXPECT_TRUE(std::all_of(characters, characters + text.field->size, [](unsigned char c) { return c == 'W'; })) << text.Name();
    }
}

TEST(Extreme, FlagsAreTrueInMoreThanOneWay)
{
    const Records records = Fill("extreme");
    std::map<std::string_view, long> flags;
    for (const Place& flag : ExtremeFields(Kind::flag)) flags[flag.field->full_name] = flag.Integer(*records);
    long ones = 0;
    for (const auto& [name, value] : flags)
    {
        EXPECT_NE(value, 0) << name;
        ones += value == 1;
        // What both sets of properties hold is 1 in one of them and something else in the other.
        if (const std::string_view now = "vframer.stream."; name.starts_with(now))
        {
            const std::string before = "vframer.previous_stream." + std::string(name.substr(now.size()));
            EXPECT_NE(value == 1, flags.at(before) == 1) << name;
        }
    }
    EXPECT_GT(ones, static_cast<long>(flags.size()) / 4);
    EXPECT_LT(ones, static_cast<long>(flags.size()) * 3 / 4);
}

TEST(Extreme, MostStatesHaveNoIdentifier)
{
    const Records records = Fill("extreme");
    int unknown = 0;
    int known = 0;
    for (const Place& state : ExtremeFields(Kind::state)) ++(identifier(*state.field, state.Integer(*records)).empty() ? unknown : known);
    EXPECT_GT(unknown, 2 * known);
}

TEST(Extreme, ShowsAsMuchAsItCan)
{
    const Records records = Fill("extreme");
    EXPECT_NE(records->tTDemux.enState, SMGR_TDEMUX_STATS_STATE_RESOLVING);
    EXPECT_EQ(records->tTDemux.enEncapsulation, SMGR_STREAM_ENCAPSULATION_TS_SRT);
    EXPECT_EQ(records->tVFramer.enState, SMGR_VFRAMER_STATE_UNSUPPORTED);
    EXPECT_NE(records->tVFramer.tCounters.nLastUnsupportedErrorCode, 0);
    EXPECT_EQ(records->tMetadata.enState, SMGR_METADATA_STATE_ACTIVE);
    for (const auto& channel : records->tMetadata.tChannel) EXPECT_EQ(channel.enState, SMGR_METADATA_STATE_ACTIVE);
    EXPECT_EQ(records->tMetadata.tCounters.tTCValue.bTCValid, 1);
    EXPECT_EQ(records->tBuffering.enBufferingMode, SMGR_DECSDI_BUFFERING_MULTISYNC);
    EXPECT_EQ(records->tClockRecovery.trackingMode, SMGR_CLOCK_TRACKING_ENABLED_LOCK);
    EXPECT_NE(+records->tClockRecovery.curPllAvg, 0);
    EXPECT_LE(+records->tClockRecovery.curPLLDevPpm, 99);
    EXPECT_NE(+records->tClockRecovery.avgDevHz, 0);
    EXPECT_NE(records->tClockRecovery.PllSettleTime, 0);
    EXPECT_NE(records->tClockRecovery.pcrLateCount, 0);
    EXPECT_NE(records->tClockRecovery.pcrJitterErrCount, 0);
    const UINT64 everyField = VIDEO_FORMAT_CODE(VIDEO_FORMAT_WIDTH_MASK, VIDEO_FORMAT_HEIGHT_MASK, VIDEO_FORMAT_RATE_MASK, 1);
    EXPECT_EQ(records->tVideoDecoder.nDisplayFormat & everyField, everyField);
    EXPECT_NE(records->tVideoDecoder.bCropping, 0);
}

} // namespace
