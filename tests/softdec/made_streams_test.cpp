/*
 * Clean streams of the shapes that encoders and multiplexers give them: none shows a fault or a finding, from its first second on. They
 * are made when the test runs.
 */
#include <gtest/gtest.h>

#include <bitstream/mpeg/psi.h>

#include "chain/chain_snapshot.h"
#include "diagnosis.h"
#include "faults.h"
#include "multiplexer.h"
#include "packets.h"

namespace softdec_tests
{

namespace
{

/** The diagnosis judges a stream that runs for 15 s and longer, which it takes so many times what is coded. */
constexpr int passes = 3;
constexpr softdec::Ticks length = 28 * softdec::ticks_per_second;

std::vector<CodedUnit> pictures(const VideoCoding& coding = {})
{
    return again(encode(coding), passes);
}

std::vector<CodedUnit> frames(const AudioCoding& coding = {})
{
    return again(encode(coding), passes);
}

Stream h264(const VideoCoding& coding = {})
{
    return {.pid = 256, .type = 0x1b, .stream_id = 0xe0, .packets = packetize(pictures(coding)), .bounded = false};
}

Stream h265(VideoCoding coding = {})
{
    coding.encoder = "libx265";
    return {.pid = 256, .type = 0x24, .stream_id = 0xe0, .packets = packetize(pictures(coding)), .bounded = false};
}

Stream sound(const AudioCoding& coding = {}, std::uint8_t type = 0x0f, unsigned pid = 257, std::size_t frames_each = 2)
{
    return {.pid = pid, .type = type, .stream_id = 0xc0, .packets = packetize(frames(coding), frames_each)};
}

Stream ac3(unsigned pid, int bits = 96'000)
{
    // As in Europe: private data with a descriptor.
    return {.pid = pid,
            .type = 0x06,
            .stream_id = 0xbd,
            .descriptors = {0x6a, 1, 0},
            .packets = packetize(frames({.encoder = "ac3", .bits = bits}), 1)};
}

/** Sections that come again and again. */
Stream sections(unsigned pid, std::uint8_t type, const Bytes& section, bool listed, softdec::Ticks interval)
{
    Stream stream = {.pid = pid, .type = type, .listed = listed};
    for (softdec::Ticks due = 1000; due < length; due += interval) stream.packets.push_back({.due = due, .payload = section});
    return stream;
}

struct Shape
{
    const char* name;
    Bytes (*make)();
};

const Shape shapes[] = {
    {"Plain",
     [] {
         return multiplex({.streams = {h264(), sound()}, .rate = 400e3});
     }},
    {"Variable",
     [] {
         return multiplex({.streams = {h264(), sound()}});
     }},
    {"Slow",
     [] {
         return multiplex({.streams = {h264({.bits = 130'000}), sound({.bits = 48'000}, 0x0f, 257, 4)}, .rate = 300e3, .lead = 90'000});
     }},
    {"SlowH265",
     [] {
         return multiplex(
             {.streams = {h265({.width = 96, .height = 64, .bits = 80'000}), ac3(257, 64'000)}, .rate = 300e3, .lead = 110'000});
     }},
    {"OpenGroups",
     [] {
         return multiplex({.streams = {h264({.b_pictures = 3, .options = "x264-params=open-gop=1:b-pyramid=normal"}), sound()}});
     }},
    {"ClosedGroupsH265",
     [] {
         return multiplex({.streams = {h265({.options = "x265-params=log-level=none:open-gop=0"}), sound()}});
     }},
    {"TimingH265",
     []
     {
         return multiplex(
             {.streams = {h265({.options = "x265-params=log-level=none:hrd=1:aud=1:vbv-maxrate=200:vbv-bufsize=200:hash=1:info=1"}),
                          sound()}});
     }},
    {"RollingRefresh",
     [] {
         return multiplex({.streams = {h264({.b_pictures = 0, .options = "intra-refresh=1"}), sound()}});
     }},
    {"NoBPictures",
     [] {
         return multiplex({.streams = {h264({.b_pictures = 0, .options = "tune=zerolatency"}), sound()}, .lead = 9'000});
     }},
    {"Slices",
     [] {
         return multiplex({.streams = {h264({.options = "x264-params=slices=4"}), sound()}});
     }},
    {"Delimiters",
     [] {
         return multiplex({.streams = {h264({.options = "aud=1,nal-hrd=cbr"}), sound()}, .rate = 500e3});
     }},
    {"LongGroups",
     [] {
         return multiplex({.streams = {h264({.group = 240}), sound()}});
     }},
    {"KeyPicturesAlone",
     [] {
         return multiplex({.streams = {h264({.group = 1, .b_pictures = 0}), sound()}});
     }},
    {"Interlaced",
     [] {
         return multiplex({.streams = {h264({.interlaced = true}), sound()}});
     }},
    {"Rate23",
     [] {
         return multiplex({.streams = {h264({.rate = 24000, .per = 1001, .frames = 230}), sound()}});
     }},
    {"Rate29",
     [] {
         return multiplex({.streams = {h264({.rate = 30000, .per = 1001, .frames = 288}), sound()}});
     }},
    {"Rate50",
     [] {
         return multiplex({.streams = {h264({.rate = 50, .frames = 480}), sound()}});
     }},
    {"Rate59",
     [] {
         return multiplex({.streams = {h265({.rate = 60000, .per = 1001, .frames = 576}), sound()}});
     }},
    {"Rate10",
     [] {
         return multiplex({.streams = {h264({.rate = 10, .group = 20, .frames = 96}), sound()}});
     }},
    {"Rate5",
     [] {
         return multiplex({.streams = {h264({.rate = 5, .group = 10, .b_pictures = 0, .frames = 48}), sound()}});
     }},
    {"VideoAlone", [] { return multiplex({.streams = {h264({.bits = 150'000})}, .rate = 300e3, .lead = 90'000}); }},
    {"SoundAlone", [] { return multiplex({.streams = {sound({.bits = 256'000})}, .pcr_pid = 257}); }},
    {"SoundAloneWithFill", [] { return multiplex({.streams = {sound({.bits = 192'000})}, .rate = 300e3, .pcr_pid = 257}); }},
    {"ManySounds",
     []
     {
         return multiplex({.streams = {h264(), sound(), sound({.encoder = "mp2", .bits = 128'000}, 0x03, 258, 1), ac3(259),
                                       sound({.sample_rate = 44'100}, 0x0f, 260, 3), sound({.encoder = "libmp3lame"}, 0x03, 261, 1)}});
     }},
    {"SoundInAtscAc3",
     []
     {
         auto stream = ac3(257);
         stream.type = 0x81;
         stream.descriptors = {0x05, 4, 'A', 'C', '-', '3'};
         return multiplex({.streams = {h264(), stream}});
     }},
    {"SoundInLatm",
     []
     {
         auto stream = sound({}, 0x11);
         stream.packets = packetize(as_latm(frames()), 1);
         return multiplex({.streams = {h264(), stream}});
     }},
    {"SoundHalfRate",
     [] {
         return multiplex({.streams = {h264(), sound({.encoder = "mp2", .sample_rate = 24'000}, 0x04)}});
     }},
    {"SoundUnaligned",
     []
     {
         auto aac = sound();
         aac.packets = packetize_unaligned(frames(), 700);
         auto mp2 = sound({}, 0x03, 258);
         mp2.packets = packetize_unaligned(frames({.encoder = "mp2", .bits = 128'000}), 1000);
         auto in_ac3 = ac3(259);
         in_ac3.packets = packetize_unaligned(frames({.encoder = "ac3", .bits = 96'000}), 1400);
         return multiplex({.streams = {h264(), aac, mp2, in_ac3}});
     }},
    {"SoundUnbounded",
     []
     {
         auto stream = sound();
         stream.bounded = false;
         return multiplex({.streams = {h264(), stream}});
     }},
    {"VideoBounded",
     []
     {
         auto stream = h264();
         stream.bounded = true;
         return multiplex({.streams = {stream, sound()}});
     }},
    {"VideoUnaligned",
     []
     {
         auto stream = h264();
         stream.packets = packetize_unaligned(pictures(), 2000);
         return multiplex({.streams = {stream, sound()}});
     }},
    {"VideoUnalignedH265",
     []
     {
         auto stream = h265();
         stream.packets = packetize_unaligned(pictures({.encoder = "libx265"}), 2000);
         return multiplex({.streams = {stream, sound()}});
     }},
    {"SeveralPicturesEach",
     []
     {
         auto stream = h264();
         stream.packets = packetize(pictures(), 3);
         return multiplex({.streams = {stream, sound()}});
     }},
    {"RareClock",
     [] {
         return multiplex({.streams = {h264(), sound()}, .pcr_interval = 9'000});
     }},
    {"FrequentClock",
     [] {
         return multiplex({.streams = {h264(), sound()}, .rate = 1e6, .pcr_interval = 900});
     }},
    {"ClockApart",
     [] {
         return multiplex({.streams = {h264(), sound()}, .pcr_pid = 500});
     }},
    {"RareTables",
     [] {
         return multiplex({.streams = {h264(), sound()}, .table_interval = 45'000});
     }},
    {"FrequentTables",
     [] {
         return multiplex({.streams = {h264(), sound()}, .table_interval = 900});
     }},
    {"SeveralPrograms",
     [] {
         return multiplex({.streams = {h264(), sound()}, .program = 7, .more_programs = 5});
     }},
    {"LongDelay",
     [] {
         return multiplex({.streams = {h264(), sound()}, .lead = 180'000});
     }},
    {"AnnouncedTimeBaseThatGoesOn",
     []
     {
         // The mark without another time base behind it: some multiplexers set it when they start a stream, or each time a programme begins.
         Bytes stream = multiplex({.streams = {h264(), sound()}});
         std::size_t clocks = 0;
         for (std::size_t at = 0; at < stream.size(); at += 188)
             if (pcr_of(&stream[at]) && ++clocks % 300 == 1) stream[at + 5] |= 0x80;
         return stream;
     }},
    {"PaddingInStream",
     []
     {
         auto stream = h264();
         Stream padding = {.pid = 256, .stream_id = 0xbe, .listed = false};
         for (std::size_t i = 0; i < stream.packets.size(); i += 10)
             padding.packets.push_back({.due = stream.packets[i].due, .payload = Bytes(100, 0xff)});
         return multiplex({.streams = {stream, sound()}});
     }},
    {"WrongRateSignalled",
     [] {
         return multiplex({.streams = {h264({.options = "x264-params=force-cfr=1:fps=50/1"}), sound()}});
     }},
    {"TimeStampsWrap",
     [] {
         return multiplex({.streams = {h264(), sound()}, .begin = softdec::timestamp_range - 20 * softdec::ticks_per_second});
     }},
    {"OtherData",
     []
     {
         // Splice information, a service description, an event information, stuffing sections, and a map of another program on the same PID.
         Bytes splice = {0xfc, 0x30, 0x11, 0, 0, 0, 0, 0, 0, 0, 0xff, 0xf0, 0, 0, 0, 0, 0x7a, 0x4f, 0xbf, 0xff};
         Bytes description(60, 0x42);
         Bytes events(150, 0x4e);
         Bytes stuffing(100, 0x72);
         for (Bytes* bytes : {&description, &events, &stuffing})
         {
             (*bytes)[1] = 0xf0;
             (*bytes)[2] = static_cast<std::uint8_t>(bytes->size() - 3);
         }
         Bytes other_map = {2, 0xb0, 13, 0, 9, 0xc1, 0, 0, 0xe1, 0, 0xf0, 0};
         other_map.resize(16);
         psi_set_crc(other_map.data());
         return multiplex({.streams = {h264(), sound(), sections(300, 0x86, splice, true, 90'000),
                                       sections(17, 0, description, false, 45'000), sections(18, 0, events, false, 20'000),
                                       sections(20, 0, stuffing, false, 30'000), sections(4096, 0, other_map, false, 9'000)}});
     }},
    {"SubtitlesAndTeletext",
     []
     {
         Stream subtitles = {.pid = 301, .type = 0x06, .stream_id = 0xbd, .descriptors = {0x59, 8, 'd', 'e', 'u', 0x10, 0, 1, 0, 1}};
         Stream teletext = {.pid = 302, .type = 0x06, .stream_id = 0xbd, .descriptors = {0x56, 5, 'd', 'e', 'u', 0x09, 0}};
         for (softdec::Ticks due = 0; due < length; due += 90'000)
             subtitles.packets.push_back({.due = due, .pts = due, .payload = Bytes(400, 0x0f)});
         for (softdec::Ticks due = 0; due < length; due += 3'600)
             teletext.packets.push_back({.due = due, .pts = due, .payload = Bytes(137, 0x10)});
         return multiplex({.streams = {h264(), sound(), subtitles, teletext}});
     }},
};

class MadeStream : public testing::TestWithParam<Shape>
{
};

std::string findings_of(const diagnosis::Result& result)
{
    std::string text;
    for (const auto& finding : result.findings) text += " " + std::string(finding.rule->id);
    return text;
}

/** What a stream that has no fault has nothing of. That its clock has come round is no fault. */
Faults faults_in(softdec::Chain& chain)
{
    Faults faults = faults_of(chain.records());
    faults.erase("tdemux.timestamp_rollovers");
    return faults;
}

/** Looks at a chain each second, as watchers do. */
class Watcher
{
public:
    explicit Watcher(bool decode = true) : abilities_{.has_arrivals = true, .decode = decode, .live = false} {}

    void look(softdec::Chain& chain)
    {
        for (diagnosis::Diagnosis* diagnosis : {&hasty_, &usual_})
            if (diagnosis->take(softdec::snapshot_of(chain, abilities_)))
                if (const std::string findings = findings_of(diagnosis->result()); !findings.empty()) found += "\n" + findings;
    }

    std::string found;

private:
    softdec::Abilities abilities_;
    diagnosis::Diagnosis hasty_{{.window = 2, .confirm = false}};
    diagnosis::Diagnosis usual_;
};

void expect_clean(const std::vector<Arrival>& arrivals, bool joined = false)
{
    softdec::Chain chain({.has_arrivals = true, .decode = true, .live = false, .start = 0});
    Watcher watcher;
    softdec::Nanoseconds due = arrivals.front().moment;
    for (const Arrival& arrival : arrivals)
    {
        for (; arrival.moment > due; due += softdec::second)
        {
            chain.run_to(due);
            watcher.look(chain);
        }
        chain.take({.channel = arrival.channel, .arrival = arrival.moment, .bytes = arrival.bytes}, {});
    }
    chain.finish();
    watcher.look(chain);
    EXPECT_EQ(watcher.found, "");
    Faults faults = faults_in(chain);
    if (joined) faults.erase("vframer.dropped_pictures");
    EXPECT_EQ(faults, Faults{});
}

TEST_P(MadeStream, IsClean)
{
    const Bytes stream = GetParam().make();
    {
        SCOPED_TRACE("over UDP");
        expect_clean(datagrams(stream));
    }
    {
        SCOPED_TRACE("as a file");
        EXPECT_EQ(faults_in(*run_file(stream)), Faults{});
    }
    {
        SCOPED_TRACE("without decoding");
        EXPECT_EQ(faults_in(*run(rtp(datagrams(stream)), false)), Faults{});
    }
    {
        SCOPED_TRACE("joined");
        const std::size_t first = stream.size() / 188 / 7;
        expect_clean(datagrams(Bytes(stream.begin() + static_cast<std::ptrdiff_t>(first * 188), stream.end())), true);
    }
}

TEST(MadeSlowStream, HasAClockThatSettles)
{
    // Of a slow stream a PCR waits for the other packets of its datagram, up to 35 ms. After ten minutes the diagnosis expects a clock.
    constexpr int many = 73;
    const Bytes stream = multiplex(
        {.streams =
             {{.pid = 256, .type = 0x1b, .stream_id = 0xe0, .packets = packetize(again(encode(VideoCoding{.bits = 130'000}), many))}},
         .rate = 300e3,
         .lead = 90'000});
    softdec::Chain chain({.has_arrivals = true, .decode = false, .live = false, .start = 0});
    Watcher watcher(false);
    softdec::Nanoseconds due = beginning + 590 * softdec::second;
    for (const Arrival& arrival : datagrams(stream))
    {
        for (; arrival.moment > due; due += softdec::second)
        {
            chain.run_to(due);
            watcher.look(chain);
        }
        chain.take({.channel = arrival.channel, .arrival = arrival.moment, .bytes = arrival.bytes}, {});
    }
    EXPECT_EQ(watcher.found, "");
    EXPECT_EQ(chain.records().clock_recovery.PllNotSettled, 0);
    EXPECT_NEAR(static_cast<double>(chain.records().clock_recovery.OldPll), 27e6, 27);
    EXPECT_EQ(faults_in(chain), Faults{});
}

INSTANTIATE_TEST_SUITE_P(All, MadeStream, testing::ValuesIn(shapes),
                         [](const auto& parameter) { return std::string(parameter.param.name); });

} // namespace

} // namespace softdec_tests
