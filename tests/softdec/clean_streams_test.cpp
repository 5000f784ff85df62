/* Clean streams show no fault, and the records agree with what other programs find in the same streams. */
#include <gtest/gtest.h>

#include <bitstream/mpeg/psi.h>
#include <cstring>

#include "chain/chain_snapshot.h"
#include "diagnosis.h"
#include "faults.h"
#include "packets.h"
#include "reference_decoder.h"

namespace softdec_tests
{

namespace
{

/** What each stream is, as tests/streams/README.md has it and tsreport (tstools) finds it. */
struct Expected
{
    const char* name;
    unsigned long packets;  // tsreport: "Read N TS packets"
    unsigned long last_pcr; // tsreport -timing, 27 MHz
    int profile;            // of the parameter sets
    int level;
    int width;
    int height;
    float rate;
    SMGR_VIDEO_COLOR_TYPE color;
    int primaries; // ITU-T H.273
    int transfer;
    int matrix;
    SMGR_TDEMUX_COMPRESSION_TYPE video;
    SMGR_TDEMUX_COMPRESSION_TYPE audio;
    unsigned long gop;
    unsigned long b_pictures; // in a row
};

constexpr Expected streams[] = {
    {"h264-aac.ts", 2008, 181742832, 100, 12, 320, 180, 25, SMGR_VIDEO_COLOR_TYPE_420_8BIT, 2, 2, 2, SMGR_TDEMUX_COMPRESSION_TYPE_H264,
     SMGR_TDEMUX_COMPRESSION_TYPE_AAC_ADTS, 25, 2},
    {"h264-aac-klv.ts", 2008, 181742832, 100, 12, 320, 180, 25, SMGR_VIDEO_COLOR_TYPE_420_8BIT, 2, 2, 2, SMGR_TDEMUX_COMPRESSION_TYPE_H264,
     SMGR_TDEMUX_COMPRESSION_TYPE_AAC_ADTS, 25, 2},
    {"h265-ac3.ts", 2400, 180929880, 2, 60, 320, 180, 30, SMGR_VIDEO_COLOR_TYPE_420_10BIT, 9, 16, 9, SMGR_TDEMUX_COMPRESSION_TYPE_H265,
     SMGR_TDEMUX_COMPRESSION_TYPE_AC3, 0, 3},
    {"h264i-mp2.ts", 3199, 180979650, 122, 21, 352, 288, 25, SMGR_VIDEO_COLOR_TYPE_422_8BIT, 2, 2, 2, SMGR_TDEMUX_COMPRESSION_TYPE_H264,
     SMGR_TDEMUX_COMPRESSION_TYPE_MP2, 12, 0},
};

class CleanStream : public testing::TestWithParam<Expected>
{
};

TEST_P(CleanStream, HasNoFaultAsAFile)
{
    const auto chain = run_file(read_stream(GetParam().name));
    EXPECT_EQ(faults_of(chain->records()), Faults{});
}

TEST_P(CleanStream, HasNoFaultOverUdp)
{
    const auto chain = run(datagrams(read_stream(GetParam().name)));
    EXPECT_EQ(faults_of(chain->records()), Faults{});
}

TEST_P(CleanStream, HasNoFaultOverRtp)
{
    const auto chain = run(rtp(datagrams(read_stream(GetParam().name))));
    EXPECT_EQ(faults_of(chain->records()), Faults{});
}

TEST_P(CleanStream, HasNoFaultWithoutDecoding)
{
    const auto chain = run(datagrams(read_stream(GetParam().name)), false);
    EXPECT_EQ(faults_of(chain->records()), Faults{});
    EXPECT_EQ(+chain->records().vdecoder.tCounters.nNumReceivedFrames, 0U);
}

TEST_P(CleanStream, HasNoFaultRepeated)
{
    const auto chain = run(datagrams(repeat(read_stream(GetParam().name), 5)));
    Faults faults = faults_of(chain->records());
    // Sound is not cut to the pass, so that it has a step at each of the four seams, seen before and behind the decoder.
    faults.erase("audio.timestamp_discontinuities");
    EXPECT_EQ(faults, Faults{});
}

TEST_P(CleanStream, HasNoFaultWhereverItIsJoined)
{
    // A receiver joins a stream between any two packets: pictures before the first key one are dropped.
    const Bytes stream = read_stream(GetParam().name);
    for (const std::size_t first : {311U, 777U, 1003U})
    {
        const Bytes piece(stream.begin() + static_cast<std::ptrdiff_t>(first * ts_size), stream.end());
        Faults faults = faults_of(run_file(piece)->records());
        faults.erase("vframer.dropped_pictures");
        EXPECT_EQ(faults, Faults{}) << first;
    }
}

TEST_P(CleanStream, AgreesWithOtherPrograms)
{
    const Expected& expected = GetParam();
    const auto chain = run_file(read_stream(expected.name));
    const records::Records& records = chain->records();
    EXPECT_EQ(+records.tdemux.tCounters.nNumReceivedPackets, expected.packets);
    EXPECT_EQ(+records.tdemux.tCounters.nNumReceivedBytes, expected.packets * ts_size);
    EXPECT_EQ(+records.tdemux.nPCR, expected.last_pcr / 300);
    EXPECT_EQ(+records.tdemux.nProgramNumber, 1U);
    EXPECT_EQ(+records.tdemux.nPcrPid, video_pid);
    EXPECT_EQ(records.tdemux.tSources[0].tsPid, video_pid);
    EXPECT_EQ(records.tdemux.tSources[0].enCompressionType, expected.video);
    EXPECT_EQ(records.tdemux.tSources[1].tsPid, audio_pid);
    EXPECT_EQ(records.tdemux.tSources[1].enCompressionType, expected.audio);

    const auto& properties = records.vframer.tCurrentProperties;
    EXPECT_EQ(+properties.nProfile, expected.profile);
    EXPECT_EQ(+properties.nLevel, expected.level);
    EXPECT_EQ(+properties.nWidth, expected.width);
    EXPECT_EQ(+properties.nHeight, expected.height);
    EXPECT_EQ(properties.fFrameRate, expected.rate);
    EXPECT_TRUE(properties.bFrameRateFoundInStream);
    EXPECT_NEAR(records.vframer.tCounters.fInputFrameRate, expected.rate, 0.01);
    EXPECT_EQ(properties.enColorType, expected.color);
    EXPECT_EQ(int{properties.colour_primaries}, expected.primaries);
    EXPECT_EQ(int{properties.transfer_characteristics}, expected.transfer);
    EXPECT_EQ(int{properties.matrix_coefficients}, expected.matrix);
    if (expected.gop != 0)
    {
        EXPECT_EQ(+properties.nGopInterval, expected.gop);
    }
    if (expected.b_pictures != 0)
    {
        EXPECT_EQ(+records.vframer.tCounters.nMaxNumberOfBPicturesInARow, expected.b_pictures);
    }
}

TEST_P(CleanStream, AgreesWithLibavcodecAlone)
{
    const Expected& expected = GetParam();
    const Bytes stream = read_stream(expected.name);
    const Reference video = decode_alone(stream, video_pid, expected.video);
    const Reference audio = decode_alone(stream, audio_pid, expected.audio);
    const auto chain = run_file(stream);
    const records::Records& records = chain->records();
    EXPECT_EQ(+records.vframer.tCurrentProperties.nWidth, video.width);
    EXPECT_EQ(+records.vframer.tCurrentProperties.nHeight, video.height);
    EXPECT_EQ(+records.vframer.tCurrentProperties.nProfile, video.profile);
    EXPECT_EQ(+records.vframer.tCurrentProperties.nLevel, video.level);
    EXPECT_EQ(int{records.vframer.tCurrentProperties.colour_primaries}, video.primaries);
    EXPECT_EQ(int{records.vframer.tCurrentProperties.transfer_characteristics}, video.transfer);
    EXPECT_EQ(int{records.vframer.tCurrentProperties.matrix_coefficients}, video.matrix);
    EXPECT_EQ(+records.vframer.tCounters.nNumIPictures, video.pictures_of_type[0]);
    EXPECT_EQ(+records.vframer.tCounters.nNumPPictures, video.pictures_of_type[1]);
    EXPECT_EQ(+records.vframer.tCounters.nNumBPictures, video.pictures_of_type[2]);
    EXPECT_EQ(+records.vdecoder.tCounters.nNumFramesSentToDisplay, video.frames);
    EXPECT_EQ(+records.vdecoder.tCounters.nNumDisplayedOutputFrames, video.frames);
    EXPECT_EQ(+records.audio.nDecodedFrames, audio.frames);
    EXPECT_EQ(+records.audio.nOutputFrames, audio.frames);
    EXPECT_EQ(+records.audio.PairStats[0].nSampleRateIn, audio.sample_rate);
    EXPECT_EQ(+records.audio.PairStats[0].nInputChannels, audio.channels);
}

INSTANTIATE_TEST_SUITE_P(All, CleanStream, testing::ValuesIn(streams),
                         [](const auto& parameter)
                         {
                             std::string name = parameter.param.name;
                             for (char& character : name)
                                 if (character == '-' || character == '.') character = '_';
                             return name;
                         });

/** Has the PMT of a packet say that the first of its streams is all there is. */
void keep_first_stream(std::uint8_t* packet)
{
    std::uint8_t* const section = packet + payload_at(packet) + 1;
    std::uint8_t* const stream = pmt_get_es(section, 0);
    std::uint8_t* const end = stream + PMT_ES_SIZE + pmtn_get_desclength(stream);
    psi_set_length(section, static_cast<std::uint16_t>(end - section + PSI_CRC_SIZE - PSI_HEADER_SIZE));
    psi_set_crc(section);
    std::fill(end + PSI_CRC_SIZE, packet + ts_size, std::uint8_t{0xff});
}

TEST(CleanSlowStream, HasNoFaultAndNoFinding)
{
    // The pictures alone, without sound and null packets, and with fewer tables: as little as a whole stream comes to.
    constexpr int passes = 4;
    auto arrivals = datagrams(repeat(read_stream("h264-aac.ts"), passes));
    std::size_t bytes = 0;
    std::map<unsigned, unsigned> tables;
    for (Arrival& arrival : arrivals)
    {
        Bytes kept;
        for (std::size_t at = 0; at < arrival.bytes.size(); at += ts_size)
        {
            std::uint8_t* const packet = &arrival.bytes[at];
            const unsigned pid = pid_of(packet);
            const bool is_table = pid == pat_pid || pid == pmt_pid;
            if (pid != video_pid && !is_table) continue;
            if (is_table && tables[pid]++ % 3 != 0) continue;
            if (is_table) packet[3] = static_cast<std::uint8_t>((packet[3] & 0xf0U) | (tables[pid] / 3 % 16));
            if (pid == pmt_pid) keep_first_stream(packet);
            kept.insert(kept.end(), packet, packet + ts_size);
        }
        arrival.bytes = kept;
        bytes += kept.size();
    }
    std::erase_if(arrivals, [](const Arrival& arrival) { return arrival.bytes.empty(); });
    const double seconds = static_cast<double>(arrivals.back().moment - arrivals.front().moment) / 1e9;
    EXPECT_LT(static_cast<double>(bytes) * 8 / seconds, 305e3);

    softdec::Chain chain({.has_arrivals = true, .decode = true, .live = false, .start = 0});
    std::optional<records::Snapshot> before;
    for (const Arrival& arrival : arrivals)
    {
        chain.take({.channel = arrival.channel, .arrival = arrival.moment, .bytes = arrival.bytes}, {});
        if (before || arrival.moment < beginning + 11 * softdec::second) continue;
        before = softdec::snapshot_of(chain, {.has_arrivals = true, .decode = true, .live = false});
    }
    const auto result = diagnosis::diagnose(*before, softdec::snapshot_of(chain, {.has_arrivals = true, .decode = true, .live = false}));
    for (const auto& finding : result.findings) ADD_FAILURE() << finding.rule->id;
    EXPECT_EQ(result.verdict.stage, std::nullopt);
    EXPECT_EQ(faults_of(chain.records()), Faults{});
    EXPECT_EQ(+chain.records().tdemux.tSources[0].tsPid, video_pid);
    EXPECT_NEAR(static_cast<double>(+chain.records().vdecoder.tCounters.nNumDisplayedOutputFrames), 25 * seconds, 50);
}

TEST(CleanCapture, HasNoFault)
{
    const auto chain = run(read_capture("rtp-fec.pcap"));
    const records::Records& records = chain->records();
    EXPECT_EQ(faults_of(records), Faults{});
    EXPECT_EQ(records.tdemux.enEncapsulation, SMGR_STREAM_ENCAPSULATION_TS_RTP);
    EXPECT_EQ(records.tdemux.enFECType, SMGR_FEC_TYPE_PRO_MPEG);
    const auto& fec = records.tdemux.Xport.PMFEC;
    EXPECT_EQ(+fec.nColumns, 5);
    EXPECT_EQ(+fec.nRows, 5);
    EXPECT_TRUE(fec.bRowFEC);
    EXPECT_TRUE(fec.bBlockAlign);
    EXPECT_EQ(+fec.nMediaPkts, 212);
    EXPECT_EQ(+fec.nColFecPkts, 38);
    EXPECT_EQ(+fec.nRowFecPkts, 42);
}

TEST(CleanCapture, GivesTheSameRecordsEachTime)
{
    const auto first = run(read_capture("rtp-fec.pcap"));
    const auto second = run(read_capture("rtp-fec.pcap"));
    EXPECT_EQ(std::memcmp(&first->records(), &second->records(), sizeof(records::Records)), 0);
}

TEST(CleanStreamWithKlv, HasItsMetadata)
{
    const auto chain = run_file(read_stream("h264-aac-klv.ts"));
    const auto& channel = chain->records().metadata.tChannel[SMGR_METADATA_CHANNEL_TYPE_KLV];
    EXPECT_EQ(+channel.tCounters.nNumInputPackets, 6U);
    EXPECT_EQ(+channel.tCounters.nNumAsynchronousPackets, 6U);
    EXPECT_EQ(+channel.tCounters.nNumOutputPackets, 6U);
    EXPECT_EQ(+chain->records().tdemux.tCounters.nKLVStreams, 1U);
}

TEST(CleanHdrStream, SignalsItsDynamicRange)
{
    const auto chain = run_file(read_stream("h265-ac3.ts"));
    EXPECT_EQ(chain->records().vframer.tCurrentProperties.enHDRTypeInStream, SMGR_VFRAMER_HDR_TYPE_PQ);
}

TEST(CleanInterlacedStream, HasItsFields)
{
    const auto chain = run_file(read_stream("h264i-mp2.ts"));
    const records::Records& records = chain->records();
    EXPECT_TRUE(records.vframer.tCurrentProperties.bInterlaced);
    EXPECT_EQ(+records.vframer.tCounters.nNumInterlacedPicStruct, 150U);
    EXPECT_EQ(+records.vframer.tCounters.nNumInterlacedBothFields, 150U);
    EXPECT_EQ(+records.vframer.tCounters.nNumProgressivePicStruct, 0U);
}

} // namespace

} // namespace softdec_tests
