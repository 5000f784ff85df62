/*
 * Clean video of the codings and cadences that encoders give it: none shows a fault or a finding, from its first second on, and the
 * records agree with what libavcodec alone finds in it. It is made when the test runs.
 */
#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>

#include "clean.h"
#include "display_times.h"
#include "field_pictures.h"
#include "multiplexer.h"
#include "packets.h"
#include "reference_decoder.h"

namespace softdec_tests
{

namespace
{

constexpr auto mpeg1 = SMGR_TDEMUX_COMPRESSION_TYPE_MPEG1;
constexpr auto mpeg2 = SMGR_TDEMUX_COMPRESSION_TYPE_MPEG2;
constexpr auto h264 = SMGR_TDEMUX_COMPRESSION_TYPE_H264;
constexpr auto h265 = SMGR_TDEMUX_COMPRESSION_TYPE_H265;

/** The diagnosis judges a stream that runs for 15 s and longer, which it takes so many times what is coded. */
constexpr int passes = 3;

std::vector<CodedUnit> pictures(const VideoCoding& coding)
{
    return again(encode(coding), passes);
}

std::vector<CodedUnit> pictures_mpeg2(VideoCoding coding = {})
{
    coding.encoder = "mpeg2video";
    return pictures(coding);
}

/** Leaves the time stamps to some of the packets, as ISO/IEC 13818-1, 2.7.4 allows it. */
std::vector<Pes> stamped_each(std::vector<Pes> packets, std::size_t distance)
{
    for (std::size_t i = 0; i < packets.size(); ++i)
        if (i % distance != 0) packets[i].pts = packets[i].dts = std::nullopt;
    return packets;
}

struct Shape
{
    const char* name;
    SMGR_TDEMUX_COMPRESSION_TYPE coding;
    std::vector<Pes> (*make)();
    double rate = 25;           // pictures a second
    double signalled_rate = 25; // 0 = not signalled
    bool interlaced = false;
    double bit_rate = 0; // 0 = variable
};

const Shape shapes[] = {
    {"Mpeg2", mpeg2, [] { return packetize(pictures_mpeg2()); }},
    {"Mpeg2Interlaced", mpeg2, [] { return packetize(pictures_mpeg2({.interlaced = true})); }, 25, 25, true},
    {"Mpeg2ClosedGroups", mpeg2, [] { return packetize(pictures_mpeg2({.group = 12, .options = "flags=+cgop,sc_threshold=1000000000"})); }},
    {"Mpeg2Colour", mpeg2,
     [] { return packetize(pictures_mpeg2({.options = "color_primaries=bt470bg,color_trc=gamma28,colorspace=bt470bg"})); }},
    {"Mpeg2Rate29", mpeg2,
     [] { return packetize(pictures_mpeg2({.width = 176, .height = 120, .rate = 30000, .per = 1001, .frames = 288})); }, 29.97, 29.97},
    {"Mpeg2Telecined", mpeg2,
     [] { return packetize(telecined_mpeg2(pictures_mpeg2({.rate = 30000, .per = 1001, .options = "flags=+ildct+ilme"}))); }, 23.976,
     29.97},
    {"Mpeg2FewTimeStamps", mpeg2, [] { return stamped_each(packetize(pictures_mpeg2()), 12); }},
    {"Mpeg2TelecinedFewTimeStamps", mpeg2,
     []
     {
         const auto units = telecined_mpeg2(pictures_mpeg2({.rate = 30000, .per = 1001, .options = "flags=+ildct+ilme"}));
         return stamped_each(packetize(units), 12);
     },
     23.976, 29.97},
    {"Mpeg2Unaligned", mpeg2, [] { return packetize_unaligned(pictures_mpeg2(), 2000); }},
    {"Mpeg2SeveralPicturesEach", mpeg2, [] { return packetize(pictures_mpeg2(), 3); }},
    {"Mpeg1", mpeg1, [] { return packetize(pictures({.encoder = "mpeg1video"})); }},
    {"Telecined", h264,
     []
     { return packetize(telecined_h264(pictures({.rate = 30000, .per = 1001, .options = "x264-params=pic-struct=1:fake-interlaced=1"}))); },
     23.976, 29.97, true},
    {"FieldsH264", h264, [] { return packetize(field_pictures_h264({})); }, 25, 25, true},
    {"FieldsH264Each", h264, [] { return packetize(field_pictures_h264({.a_unit_a_field = true})); }, 25, 25, true},
    {"FieldsH264Intra", h264, [] { return packetize(field_pictures_h264({.inter_in_pair = false})); }, 25, 25, true},
    {"FieldsAndFramesH264", h264, [] { return packetize(field_pictures_h264({.frame_pictures = 3})); }, 25, 25, true},
    {"FieldsMpeg2", mpeg2, [] { return packetize(field_pictures_mpeg2({})); }, 25, 25, true},
    {"FieldsMpeg2Each", mpeg2, [] { return packetize(field_pictures_mpeg2({.a_unit_a_field = true})); }, 25, 25, true},
    {"FieldsMpeg2Intra", mpeg2, [] { return packetize(field_pictures_mpeg2({.inter_in_pair = false})); }, 25, 25, true},
    {"FieldsAndFramesMpeg2", mpeg2, [] { return packetize(field_pictures_mpeg2({.frame_pictures = 3})); }, 25, 25, true},
    {"FieldsMpeg2Unaligned", mpeg2, [] { return packetize_unaligned(field_pictures_mpeg2({}), 700); }, 25, 25, true},
    {"FieldsH265", h265,
     [] {
         return packetize(
             pictures({.encoder = "libx265", .rate = 50, .options = "x265-params=log-level=none:interlace=tff", .frames = 480}));
     },
     25, 25, true},
    {"WideGamutH265", h265,
     []
     {
         return packetize(
             pictures({.encoder = "libx265",
                       .pixels = AV_PIX_FMT_YUV420P10,
                       .options = "x265-params=log-level=none:hdr10=1:colorprim=bt2020:transfer=smpte2084:colormatrix=bt2020nc"}));
     }},
    {"Interlaced422", h264, [] { return packetize(pictures({.interlaced = true, .pixels = AV_PIX_FMT_YUV422P10})); }, 25, 25, true},
    {"DeepReordering", h264,
     [] { return packetize(pictures({.group = 50, .b_pictures = 8, .options = "x264-params=b-pyramid=normal:ref=8:b-adapt=0"})); }},
    {"DeepReorderingOpenH265", h265,
     []
     {
         return packetize(pictures({.encoder = "libx265",
                                    .group = 20,
                                    .b_pictures = 8,
                                    .options = "x265-params=log-level=none:open-gop=1:b-adapt=0:b-pyramid=1"}));
     }},
    {"Rate1", h264, [] { return packetize(pictures({.rate = 1, .group = 4, .b_pictures = 2, .frames = 12})); }, 1, 1, false, 400e3},
    {"Rate1SignalledAs25", h264,
     []
     {
         return packetize(shown_at(pictures({.group = 4, .b_pictures = 0, .frames = 12}),
                                   [](int n) { return softdec::Ticks{n} * softdec::ticks_per_second; }));
     },
     1, 25, false, 400e3},
    {"Rate120H265", h265, [] { return packetize(pictures({.encoder = "libx265", .rate = 120, .frames = 1152})); }, 120, 120},
    {"UnevenTimes", h264,
     [] { return packetize(shown_at(pictures({}), [](int n) { return softdec::Ticks{n} * 3600 + (n * 7919 % 17 - 8) * 150; })); }},
    {"VariableRate", h264,
     []
     {
         // One picture in six is not sent, as nothing moves.
         return packetize(shown_at(pictures({}), [](int n) { return softdec::Ticks{n} * 3600 + softdec::Ticks{n / 5} * 3600; }));
     },
     20.83, 25},
    {"VariableRateNoBPictures", h264,
     []
     {
         return packetize(shown_at(pictures({.group = 60, .b_pictures = 0}),
                                   [](int n) { return softdec::Ticks{n} * 3600 + softdec::Ticks{n / 5} * 3600; }));
     },
     20.83, 25},
    {"VariableRateH265", h265,
     []
     {
         return packetize(
             shown_at(pictures({.encoder = "libx265"}), [](int n) { return softdec::Ticks{n} * 3600 + softdec::Ticks{n / 5} * 7200; }));
     },
     17.86, 25},
    {"RateChangesH264", h264,
     []
     {
         // A second of 60 a second, a second of 15.
         return packetize(shown_at(pictures({.rate = 60, .frames = 450}),
                                   [](int n)
                                   {
                                       const int seconds = n >= 0 ? n / 75 * 2 : 0;
                                       const int rest = n >= 0 ? n % 75 : n;
                                       return seconds * softdec::ticks_per_second +
                                              (rest < 60 ? softdec::Ticks{rest} * 1500 : 90'000 + softdec::Ticks{rest - 60} * 6000);
                                   }));
     },
     37.5, 60},
    {"LargePictures", h264, [] { return packetize(pictures({.width = 640, .height = 480, .group = 100, .options = "bufsize=400000"})); }},
    {"Size162x98H265", h265, [] { return packetize(pictures({.encoder = "libx265", .width = 162, .height = 98})); }},
};

std::uint8_t type_of(SMGR_TDEMUX_COMPRESSION_TYPE coding)
{
    switch (coding)
    {
    case mpeg1: return 0x01;
    case mpeg2: return 0x02;
    case h264: return 0x1b;
    case h265: return 0x24;
    default: throw std::logic_error("a coding that no test has");
    }
}

Bytes stream_of(const std::vector<Pes>& packets, std::uint8_t type, double bit_rate = 0)
{
    return multiplex(
        {.streams = {{.pid = video_pid, .type = type, .stream_id = 0xe0, .packets = packets, .bounded = false}}, .rate = bit_rate});
}

Bytes stream_of(const Shape& shape)
{
    return stream_of(shape.make(), type_of(shape.coding), shape.bit_rate);
}

class MadeVideo : public testing::TestWithParam<Shape>
{
};

TEST_P(MadeVideo, IsClean)
{
    const Bytes stream = stream_of(GetParam());
    const Seen seen = watch(datagrams(stream));
    EXPECT_EQ(seen.findings, "");
    EXPECT_EQ(seen.faults, Faults{});
    EXPECT_EQ(faults_in(*run(datagrams(stream), false)), Faults{}) << "without decoding";

    // From a place on where no picture need begin.
    const auto first = static_cast<std::ptrdiff_t>(stream.size() / ts_size / 7 * ts_size);
    Seen joined = watch(datagrams(Bytes(stream.begin() + first, stream.end())));
    joined.faults.erase("vframer.dropped_pictures");
    EXPECT_EQ(joined.findings, "") << "joined";
    EXPECT_EQ(joined.faults, Faults{}) << "joined";
}

TEST_P(MadeVideo, AgreesWithLibavcodecAlone)
{
    const Shape& shape = GetParam();
    const Bytes stream = stream_of(shape);
    const Reference reference = decode_alone(stream, video_pid, shape.coding);
    const auto chain = run_file(stream);
    EXPECT_EQ(faults_in(*chain), Faults{});
    const auto& framer = chain->records().vframer;
    const auto& properties = framer.tCurrentProperties;
    EXPECT_EQ(properties.enCompressionType, shape.coding);
    EXPECT_EQ(+properties.nWidth, reference.width);
    EXPECT_EQ(+properties.nHeight, reference.height);
    if (shape.coding != mpeg1) // which has neither
    {
        EXPECT_EQ(+properties.nProfile, reference.profile);
        EXPECT_EQ(+properties.nLevel, reference.level);
    }
    EXPECT_EQ(int{properties.colour_primaries}, reference.primaries);
    EXPECT_EQ(int{properties.transfer_characteristics}, reference.transfer);
    EXPECT_EQ(int{properties.matrix_coefficients}, reference.matrix);
    EXPECT_EQ(properties.bInterlaced != FALSE, shape.interlaced);
    EXPECT_NEAR(properties.fFrameRate, shape.signalled_rate != 0 ? shape.signalled_rate : shape.rate, 0.01);
    EXPECT_EQ(properties.bFrameRateFoundInStream != FALSE, shape.signalled_rate != 0);
    EXPECT_NEAR(framer.tCounters.fInputFrameRate, shape.rate, 0.3); // over two seconds
    EXPECT_EQ(+framer.tCounters.nNumOutputFrames, reference.frames);
    EXPECT_EQ(+framer.tCounters.nNumIPictures, reference.pictures_of_type[0]);
    EXPECT_EQ(+framer.tCounters.nNumPPictures, reference.pictures_of_type[1]);
    EXPECT_EQ(+framer.tCounters.nNumBPictures, reference.pictures_of_type[2]);
    EXPECT_EQ(+chain->records().vdecoder.tCounters.nNumFramesSentToDisplay, reference.frames);
    EXPECT_EQ(+chain->records().vdecoder.tCounters.nNumDisplayedOutputFrames, reference.frames);
}

TEST(Mpeg2Video, IsConcealedWhereAPacketIsMissing)
{
    Bytes stream = stream_of(packetize(pictures_mpeg2()), 0x02);
    const std::size_t count = stream.size() / ts_size;
    for (const std::size_t part : {2U, 3U})
    {
        // One in the middle of a picture.
        std::size_t at = count / part * ts_size;
        while (pid_of(&stream[at]) != video_pid || !has_payload(&stream[at]) || starts_unit(&stream[at])) at += ts_size;
        stream.erase(stream.begin() + static_cast<std::ptrdiff_t>(at), stream.begin() + static_cast<std::ptrdiff_t>(at + ts_size));
    }
    const auto chain = run_file(stream);
    EXPECT_EQ(faults_in(*chain), (Faults{{"tdemux.lost_ts_segments", 2}, {"vdecoder.concealed_pictures", 2}}));
}

TEST(Mpeg2Video, HasItsCaptionsAndActiveFormat)
{
    auto units = encode(VideoCoding{.encoder = "mpeg2video", .frames = 50});
    for (std::size_t i = 0; i < units.size(); i += 5)
    {
        // User data of ATSC A/53 part 4, in front of the first slice: two captions, and an active format.
        constexpr std::uint8_t user_data[] = {0,    0,    1,    0xb2, 'G', 'A', '9', '4',  3,   0x42, 0xff, 0xfc, 0x80, 0x80,
                                              0xfd, 0x80, 0x80, 0xff, 0,   0,   1,   0xb2, 'D', 'T',  'G',  '1',  0x41, 0xf8};
        constexpr std::uint8_t slice[] = {0, 0, 1, 1};
        Bytes& data = units[i].data;
        data.insert(std::ranges::search(data, slice).begin(), std::begin(user_data), std::end(user_data));
    }
    const auto chain = run_file(stream_of(packetize(units), 0x02));
    EXPECT_EQ(faults_in(*chain), Faults{});
    const auto& counters = chain->records().vframer.tCounters;
    EXPECT_EQ(+counters.nNumCC, 10U);
    EXPECT_EQ(+counters.nNumCCBytesOutput, 60U);
    EXPECT_EQ(+counters.nNumAFD, 10U);
}

TEST(FieldPictures, AreCountedAsFieldsOfFrames)
{
    for (const bool is_mpeg2 : {false, true})
    {
        const FieldCoding coding = {.frames = 300, .frame_pictures = 3};
        const auto units = is_mpeg2 ? field_pictures_mpeg2(coding) : field_pictures_h264(coding);
        const auto chain = run_file(stream_of(packetize(units), is_mpeg2 ? 0x02 : 0x1b));
        const auto& counters = chain->records().vframer.tCounters;
        EXPECT_EQ(+counters.nNumOutputFrames, 300U);
        EXPECT_EQ(+counters.nNumInterlacedPicStruct, 300U);
        EXPECT_EQ(+counters.nNumInterlacedTopFields, 200U);
        EXPECT_EQ(+counters.nNumInterlacedBottomFields, 200U);
        EXPECT_EQ(+counters.nNumInterlacedBothFields, 300U);
        EXPECT_EQ(+counters.nNumKeyFrames, 12U);
    }
}

TEST(OtherVideo, IsUnsupported)
{
    // ISO/IEC 14496-2, which is not looked into.
    const Seen seen = watch(datagrams(stream_of(packetize(pictures_mpeg2()), 0x10)));
    EXPECT_EQ(seen.faults.at("vframer.unsupported_streams"), 1U);
    EXPECT_NE(seen.findings.find("framer.unsupported-format"), std::string::npos);
    const auto& framer = seen.chain->records().vframer;
    EXPECT_EQ(framer.enState, SMGR_VFRAMER_STATE_UNSUPPORTED);
    EXPECT_EQ(framer.tCurrentProperties.enCompressionType, SMGR_TDEMUX_COMPRESSION_TYPE_MPEG4);
    EXPECT_EQ(+framer.tCounters.nLastUnsupportedErrorCode, static_cast<int>(SMGR_ERROR_UNSUPPORTED_VIDEO_FORMAT));
}

INSTANTIATE_TEST_SUITE_P(All, MadeVideo, testing::ValuesIn(shapes),
                         [](const auto& parameter) { return std::string(parameter.param.name); });

} // namespace

} // namespace softdec_tests
