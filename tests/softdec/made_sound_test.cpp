/*
 * Clean streams whose sound is coded in every way that the records have a name for, and in some that they have none for: those are counted
 * as streams that are not decoded, and are no fault.
 */
#include <gtest/gtest.h>

#include "clean.h"
#include "multiplexer.h"

namespace softdec_tests
{

namespace
{

constexpr int passes = 2;

Stream video()
{
    static const std::vector<Pes> packets = packetize(again(encode(VideoCoding{}), passes));
    return {.pid = 256, .type = 0x1b, .stream_id = 0xe0, .packets = packets, .bounded = false};
}

Stream sound(const AudioCoding& coding, std::uint8_t type, const Bytes& descriptors = {}, std::size_t frames_each = 1)
{
    return {.pid = 257,
            .type = type,
            .stream_id = static_cast<std::uint8_t>(descriptors.empty() ? 0xc0 : 0xbd),
            .descriptors = descriptors,
            .packets = packetize(again(encode(coding), passes), frames_each)};
}

/** Two channels of silence, 16 bits a sample, in the frame rate of the pictures (SMPTE ST 302). */
Stream uncompressed()
{
    constexpr std::size_t samples = 1920;
    constexpr std::size_t size = samples * 2 * 20 / 8;
    Bytes frame = {size >> 8, size & 0xff, 0, 0};
    frame.resize(4 + size);
    Stream stream = {.pid = 257, .type = 0x06, .stream_id = 0xbd, .descriptors = {0x05, 4, 'B', 'S', 'S', 'D'}};
    for (softdec::Ticks due = 0; due < 19 * softdec::ticks_per_second; due += 3600)
        stream.packets.push_back({.due = due, .pts = due, .payload = frame});
    return stream;
}

const Bytes dvb_ac3 = {0x6a, 1, 0};
const Bytes dvb_enhanced_ac3 = {0x7a, 1, 0};
const Bytes atsc_ac3 = {0x05, 4, 'A', 'C', '-', '3'};
const Bytes atsc_enhanced_ac3 = {0x05, 4, 'E', 'A', 'C', '3'};
const Bytes opus = {0x05, 4, 'O', 'p', 'u', 's', 0x7f, 2, 0x80, 2};

struct Sound
{
    const char* name;
    Stream (*make)();
    SMGR_TDEMUX_COMPRESSION_TYPE compression; /**< UNKNOWN = it is not decoded */
    int sample_rate = 48'000;
    int channels = 2;
};

const Sound sounds[] = {
    {"Aac", [] { return sound({}, 0x0f); }, SMGR_TDEMUX_COMPRESSION_TYPE_AAC_ADTS},
    {"AacMono", [] { return sound({.channels = 1}, 0x0f); }, SMGR_TDEMUX_COMPRESSION_TYPE_AAC_ADTS, 48'000, 1},
    {"AacSurround", [] { return sound({.channels = 6, .bits = 256'000}, 0x0f); }, SMGR_TDEMUX_COMPRESSION_TYPE_AAC_ADTS, 48'000, 6},
    {"AacSlow", [] { return sound({.sample_rate = 16'000, .bits = 24'000}, 0x0f); }, SMGR_TDEMUX_COMPRESSION_TYPE_AAC_ADTS, 16'000},
    {"Ac3OfDvb", [] { return sound({.encoder = "ac3", .bits = 96'000}, 0x06, dvb_ac3); }, SMGR_TDEMUX_COMPRESSION_TYPE_AC3},
    {"Ac3OfAtsc", [] { return sound({.encoder = "ac3", .bits = 96'000}, 0x81, atsc_ac3); }, SMGR_TDEMUX_COMPRESSION_TYPE_AC3},
    {"Ac3Surround", [] { return sound({.encoder = "ac3", .channels = 6, .bits = 384'000}, 0x81, atsc_ac3); },
     SMGR_TDEMUX_COMPRESSION_TYPE_AC3, 48'000, 6},
    {"Ac3OddRate", [] { return sound({.encoder = "ac3", .sample_rate = 44'100, .bits = 96'000}, 0x81, atsc_ac3); },
     SMGR_TDEMUX_COMPRESSION_TYPE_AC3, 44'100},
    {"Layer2", [] { return sound({.encoder = "mp2", .bits = 192'000}, 0x03); }, SMGR_TDEMUX_COMPRESSION_TYPE_MP2},
    {"Layer2OddRate", [] { return sound({.encoder = "mp2", .sample_rate = 44'100, .bits = 128'000}, 0x03); },
     SMGR_TDEMUX_COMPRESSION_TYPE_MP2, 44'100},
    {"Layer2Mono", [] { return sound({.encoder = "mp2", .sample_rate = 32'000, .channels = 1, .bits = 64'000}, 0x03, {}, 4); },
     SMGR_TDEMUX_COMPRESSION_TYPE_MP2, 32'000, 1},
    {"Layer2HalfRate", [] { return sound({.encoder = "mp2", .sample_rate = 22'050}, 0x04); }, SMGR_TDEMUX_COMPRESSION_TYPE_MP2, 22'050},
    {"Uncompressed", uncompressed, SMGR_TDEMUX_COMPRESSION_TYPE_UNCOMPRESSED},
    {"EnhancedAc3OfDvb", [] { return sound({.encoder = "eac3", .bits = 96'000}, 0x06, dvb_enhanced_ac3); },
     SMGR_TDEMUX_COMPRESSION_TYPE_UNKNOWN},
    {"EnhancedAc3OfAtsc", [] { return sound({.encoder = "eac3", .bits = 96'000}, 0x87, atsc_enhanced_ac3); },
     SMGR_TDEMUX_COMPRESSION_TYPE_UNKNOWN},
    {"Opus", [] { return sound({.bits = 96'000}, 0x06, opus); }, SMGR_TDEMUX_COMPRESSION_TYPE_UNKNOWN},
};

class MadeSound : public testing::TestWithParam<Sound>
{
};

TEST_P(MadeSound, IsClean)
{
    const Sound& expected = GetParam();
    const auto arrivals = datagrams(multiplex({.streams = {video(), expected.make()}}));
    const Seen seen = watch(arrivals);
    EXPECT_EQ(seen.findings, "");
    EXPECT_EQ(seen.faults, Faults{});
    const records::Records& records = seen.chain->records();
    EXPECT_EQ(records.tdemux.tSources[1].enCompressionType, expected.compression);
    const bool decoded = expected.compression != SMGR_TDEMUX_COMPRESSION_TYPE_UNKNOWN;
    EXPECT_EQ(+records.tdemux.tCounters.nFilteredStreams, decoded ? 0U : 1U);
    EXPECT_EQ(+records.audio.nNumOfPairs, decoded ? 1 : 0);
    if (decoded)
    {
        const auto& pair = records.audio.PairStats[0];
        EXPECT_EQ(pair.enAlgorithm, expected.compression);
        EXPECT_EQ(+pair.nSampleRateIn, expected.sample_rate);
        EXPECT_EQ(+pair.nInputChannels, expected.channels);
        EXPECT_EQ(+pair.nOutputChannels, expected.channels);
        EXPECT_GT(+records.audio.nOutputFrames, 100U);
        EXPECT_EQ(records.audio.nOutputFrames, records.audio.nReceivedFrames);
    }
    const Seen framed = watch(arrivals, false);
    EXPECT_EQ(framed.findings, "");
    EXPECT_EQ(framed.faults, Faults{});
    EXPECT_EQ(+framed.chain->records().audio.nReceivedFrames, +records.audio.nReceivedFrames);
}

TEST_P(MadeSound, IsCleanAlone)
{
    const Stream stream = GetParam().make();
    const Seen seen = watch(datagrams(multiplex({.streams = {stream}, .pcr_pid = 257})));
    EXPECT_EQ(seen.findings, "");
    EXPECT_EQ(seen.faults, Faults{});
}

INSTANTIATE_TEST_SUITE_P(All, MadeSound, testing::ValuesIn(sounds),
                         [](const auto& parameter) { return std::string(parameter.param.name); });

} // namespace

} // namespace softdec_tests
