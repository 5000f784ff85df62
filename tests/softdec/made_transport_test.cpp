/*
 * Clean streams of the shapes that multiplexers and networks give them: rates and shares of null packets, clocks, tables that change,
 * programs and streams that come and go, RTP and UDP in all that their headers allow. None shows a fault or a finding.
 */
#include <gtest/gtest.h>

#include <algorithm>
#include <bitstream/mpeg/psi.h>
#include <bitstream/mpeg/ts.h>

#include "clean.h"
#include "multiplexer.h"
#include "packets.h"

namespace softdec_tests
{

namespace
{

constexpr softdec::Ticks length = 19 * softdec::ticks_per_second;

Stream video(int bits = 130'000)
{
    return {
        .pid = 256, .type = 0x1b, .stream_id = 0xe0, .packets = packetize(again(encode(VideoCoding{.bits = bits}), 2)), .bounded = false};
}

Stream sound(unsigned pid = 257, int bits = 48'000)
{
    return {.pid = pid, .type = 0x0f, .stream_id = 0xc0, .packets = packetize(again(encode(AudioCoding{.bits = bits}), 2), 4)};
}

/** KLV with a time stamp or without. @param interval of its packets */
Stream klv(softdec::Ticks interval, bool timed, softdec::Ticks end = length)
{
    Bytes unit = {0x06, 0x0e, 0x2b, 0x34, 2, 1, 1, 1, 14, 1, 3, 1, 1, 0, 0, 0, 4, 1, 2, 3, 4};
    if (timed) unit.insert(unit.begin(), {0, 0, 0xdf, 0, static_cast<std::uint8_t>(unit.size())});
    Stream stream = {
        .pid = 260, .type = static_cast<std::uint8_t>(timed ? 0x15 : 0x06), .stream_id = static_cast<std::uint8_t>(timed ? 0xfc : 0xbd)};
    if (!timed) stream.descriptors = {0x05, 4, 'K', 'L', 'V', 'A'};
    for (softdec::Ticks due = 30'000; due < end; due += interval)
        stream.packets.push_back({.due = due, .pts = timed ? std::optional(due) : std::nullopt, .payload = unit});
    return stream;
}

/** Gives each map the version that its place asks for. */
template <typename Version> Bytes with_versions(Bytes stream, Version version)
{
    for (std::size_t at = 0; at < stream.size(); at += ts_size)
    {
        if (pid_of(&stream[at]) != pmt_pid) continue;
        std::uint8_t* const section = &stream[at] + payload_at(&stream[at]) + 1;
        psi_set_version(section, static_cast<std::uint8_t>(version(static_cast<double>(at) / static_cast<double>(stream.size()))));
        psi_set_crc(section);
    }
    return stream;
}

/** A stream of the same packets whose maps are another's, but from a place on. */
Bytes with_maps_of(const Bytes& stream, const Bytes& other, std::size_t until, unsigned without_pid)
{
    const auto maps = find_packets(other, [](const std::uint8_t* packet) { return pid_of(packet) == pmt_pid; });
    Bytes result;
    for (std::size_t at = 0; at < stream.size(); at += ts_size)
    {
        Bytes packet(stream.begin() + static_cast<std::ptrdiff_t>(at), stream.begin() + static_cast<std::ptrdiff_t>(at + ts_size));
        if (at < until && pid_of(packet.data()) == without_pid) ts_set_pid(packet.data(), 0x1fff);
        if (at < until && pid_of(packet.data()) == pmt_pid)
        {
            const std::uint8_t counter = packet[3];
            std::copy_n(&other[maps[0] * ts_size], ts_size, packet.begin());
            packet[3] = counter;
        }
        result.insert(result.end(), packet.begin(), packet.end());
    }
    return with_versions(result,
                         [&](double share) { return share * static_cast<double>(result.size()) < static_cast<double>(until) ? 3 : 4; });
}

/** A picture each second, whose PES packet does not tell its length, and sound. @param lead see Multiplex */
Bytes slides(softdec::Ticks lead)
{
    Stream stream = video();
    stream.packets = packetize(encode(VideoCoding{.rate = 1, .bits = 30'000, .group = 5, .b_pictures = 0, .frames = 20}));
    return multiplex({.streams = {stream, sound()}, .lead = lead});
}

struct Shape
{
    const char* name;
    Bytes (*make)();
};

const Shape shapes[] = {
    {"Slow",
     []
     {
         return multiplex({.streams = {video(90'000), sound(257, 32'000)},
                           .rate = 200e3,
                           .lead = 110'000,
                           .pcr_interval = 9'000,
                           .table_interval = 45'000});
     }},
    {"SlowWithoutFill",
     [] {
         return multiplex({.streams = {video(90'000), sound(257, 32'000)}, .pcr_interval = 9'000, .table_interval = 45'000});
     }},
    {"MostlyNull",
     [] {
         return multiplex({.streams = {video(), sound()}, .rate = 4e6});
     }},
    {"RareKlv",
     [] {
         return multiplex({.streams = {video(), sound(), klv(8 * 90'000, false)}});
     }},
    {"RareTimedKlv",
     [] {
         return multiplex({.streams = {video(), sound(), klv(8 * 90'000, true)}});
     }},
    {"FrequentKlv",
     [] {
         return multiplex({.streams = {video(), sound(), klv(1'800, false)}});
     }},
    {"ClockOnSound",
     [] {
         return multiplex({.streams = {video(), sound()}, .pcr_pid = 257});
     }},
    {"ClockOnPidOfNothingElse",
     [] {
         return multiplex({.streams = {video(), sound()}, .rate = 500e3, .pcr_pid = 8190});
     }},
    {"PicturesEachSecond", [] { return slides(110'000); }},
    {"PicturesEachSecondSoonShown", [] { return slides(40'000); }},
    {"SentLongAhead",
     [] {
         return multiplex({.streams = {video(), sound()}, .lead = 270'000});
     }},
    {"WrapsAtOnce",
     [] {
         return multiplex({.streams = {video(), sound()}, .begin = softdec::timestamp_range - 30'000});
     }},
    {"WrapsSoon",
     [] {
         return multiplex({.streams = {video(), sound(), klv(90'000, true)}, .begin = softdec::timestamp_range - 180'000});
     }},
    {"WrapsInAFewPcrs",
     [] {
         return multiplex({.streams = {video(), sound()}, .begin = softdec::timestamp_range - 2'700 * 5 + 1});
     }},
    {"MapVersionsChange",
     [] {
         return with_versions(multiplex({.streams = {video(), sound()}}),
                              [](double share) { return static_cast<unsigned>(share * 40) % 32; });
     }},
    {"SoundAdded",
     []
     {
         const Bytes whole = multiplex({.streams = {video(), sound(), sound(258)}});
         return with_maps_of(whole, multiplex({.streams = {video(), sound()}}), whole.size() / ts_size / 2 * ts_size, 258);
     }},
    {"KlvAdded",
     []
     {
         const Bytes whole = multiplex({.streams = {video(), sound(), klv(90'000, true)}});
         return with_maps_of(whole, multiplex({.streams = {video(), sound()}}), whole.size() / ts_size / 2 * ts_size, 260);
     }},
    {"TwoPrograms",
     []
     {
         Stream other_video = video();
         other_video.pid = 512;
         Stream other_sound = sound(513);
         other_video.listed = other_sound.listed = false;
         Bytes map = {2, 0xb0, 23, 0, 2, 0xc1, 0, 0, 0xe2, 0, 0xf0, 0, 0x1b, 0xe2, 0, 0xf0, 0, 0x0f, 0xe2, 1, 0xf0, 0};
         map.resize(map.size() + 4);
         psi_set_crc(map.data());
         Stream maps = {.pid = 4097, .listed = false};
         for (softdec::Ticks due = 500; due < length; due += 9'000) maps.packets.push_back({.due = due, .payload = map});
         return multiplex({.streams = {video(), sound(), other_video, other_sound, maps}, .rate = 2e6, .more_programs = 1});
     }},
};

class MadeTransport : public testing::TestWithParam<Shape>
{
};

TEST_P(MadeTransport, IsClean)
{
    const Bytes stream = GetParam().make();
    const Seen seen = watch(datagrams(stream));
    EXPECT_EQ(seen.findings, "");
    EXPECT_EQ(seen.faults, Faults{});
    EXPECT_EQ(faults_in(*run_file(stream)), Faults{});
    const std::size_t first = stream.size() / ts_size / 6;
    Seen joined = watch(datagrams(Bytes(stream.begin() + static_cast<std::ptrdiff_t>(first * ts_size), stream.end())));
    joined.faults.erase("vframer.dropped_pictures");
    EXPECT_EQ(joined.findings, "");
    EXPECT_EQ(joined.faults, Faults{});
}

INSTANTIATE_TEST_SUITE_P(All, MadeTransport, testing::ValuesIn(shapes),
                         [](const auto& parameter) { return std::string(parameter.param.name); });

/** One packet a minute of what else there is. */
TEST(MadeLongStream, IsCleanWhereLittleComesInMinutes)
{
    constexpr int many = 21;
    Stream captions = klv(60 * 90'000, true, 200 * softdec::ticks_per_second);
    Stream pictures = video();
    pictures.packets = packetize(again(encode(VideoCoding{.bits = 130'000}), many));
    Stream frames = sound();
    frames.packets = packetize(again(encode(AudioCoding{.bits = 48'000}), many), 4);
    const Seen seen = watch(datagrams(multiplex({.streams = {pictures, frames, captions}})));
    EXPECT_EQ(seen.findings, "");
    EXPECT_EQ(seen.faults, Faults{});
}

/** The datagrams of a stream, with 1 to 7 packets each. */
std::vector<Arrival> uneven(const std::vector<Arrival>& arrivals)
{
    std::vector<Arrival> datagrams;
    std::size_t size = 0;
    for (const Arrival& arrival : arrivals)
        for (std::size_t at = 0; at < arrival.bytes.size();)
        {
            size = size % 7 + 1;
            const std::size_t end = std::min(arrival.bytes.size(), at + size * ts_size);
            datagrams.push_back({.channel = arrival.channel,
                                 .moment = arrival.moment,
                                 .bytes = Bytes(arrival.bytes.begin() + static_cast<std::ptrdiff_t>(at),
                                                arrival.bytes.begin() + static_cast<std::ptrdiff_t>(end))});
            at = end;
        }
    return datagrams;
}

TEST(MadeDatagrams, AreCleanWhateverTheirSize)
{
    const auto arrivals = uneven(datagrams(read_stream("h264-aac.ts")));
    for (const auto& sent : {arrivals, rtp(arrivals), rtp(arrivals, 65'000)})
    {
        const Seen seen = watch(sent);
        EXPECT_EQ(seen.findings, "");
        EXPECT_EQ(seen.faults, Faults{});
        EXPECT_EQ(+seen.chain->records().tdemux.tCounters.nNumReceivedPackets, sent.size());
    }
}

TEST(MadeDatagrams, AreCleanWithAllThatAnRtpHeaderMayHave)
{
    auto packets = rtp(datagrams(read_stream("h264-aac.ts")));
    for (std::size_t i = 0; i < packets.size(); ++i)
    {
        Bytes& bytes = packets[i].bytes;
        Bytes extra;
        const std::size_t sources = i % 4;
        for (std::size_t k = 0; k < 4 * sources; ++k) extra.push_back(static_cast<std::uint8_t>(0x47 + k));
        const bool extended = i % 3 != 0;
        if (extended) extra.insert(extra.end(), {0xbe, 0xde, 0, 2, 0x47, 1, 2, 3, 4, 5, 6, 7});
        const bool padded = i % 5 == 2;
        bytes[0] = static_cast<std::uint8_t>(bytes[0] | sources | (extended ? 0x10U : 0U) | (padded ? 0x20U : 0U));
        if (i % 2 != 0) bytes[1] |= 0x80; // marker
        bytes.insert(bytes.begin() + 12, extra.begin(), extra.end());
        if (padded) bytes.insert(bytes.end(), {0, 0, 0, 4});
    }
    const Seen seen = watch(packets);
    EXPECT_EQ(seen.findings, "");
    EXPECT_EQ(seen.faults, Faults{});
    EXPECT_EQ(seen.chain->records().tdemux.enEncapsulation, SMGR_STREAM_ENCAPSULATION_TS_RTP);
}

} // namespace

} // namespace softdec_tests
