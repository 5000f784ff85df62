/* Writes the seeds of the fuzz targets: pieces of the test streams, into a folder for each target. */
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "demux/transport_demux.h"
#include "input/pcap_source.h"

namespace
{

using Bytes = std::vector<std::uint8_t>;
using softdec::Datagram;

Bytes read(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void write(const std::filesystem::path& directory, const std::string& name, const Bytes& bytes)
{
    std::filesystem::create_directories(directory);
    std::ofstream(directory / name, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

/** An I picture and a P picture of MPEG video with all headers that it may have (ISO/IEC 13818-2), and slices that say nothing. */
const Bytes mpeg_video = {
    0, 0, 1, 0xb3, 0x16, 0x01, 0x20, 0x23, 0x04, 0xe2, 0x23, 0x80,                         // sequence: 352 x 288, 4:3, 25 pictures a second
    0, 0, 1, 0xb5, 0x14, 0x82, 0x00, 0x01, 0x00, 0x00,                                     // of Main profile at Main level, interlaced
    0, 0, 1, 0xb5, 0x23, 0x05, 0x05, 0x05, 0x05, 0x82, 0x09, 0x00,                         // to be shown as ITU-R BT.470
    0, 0, 1, 0xb8, 0x04, 0x28, 0x62, 0x40,                                                 // group of pictures: 01:02:03:04, closed
    0, 0, 1, 0x00, 0x00, 0x0f, 0xff, 0xf8,                                                 // picture: I
    0, 0, 1, 0xb5, 0x8f, 0xff, 0xf3, 0x80, 0x00,                                           // a frame, top field first
    0, 0, 1, 0xb2, 'G',  'A',  '9',  '4',  0x03, 0xc1, 0xff, 0xfc, 0x94, 0x20, 0xff,       // captions
    0, 0, 1, 0xb2, 'D',  'T',  'G',  '1',  0x41, 0xf8,                                     // active format
    0, 0, 1, 0x01, 0x0b, 0xfc, 0x55, 0xaa, 0,    0,    1,    0x02, 0x0b, 0xfc, 0x55, 0xaa, // slices
    0, 0, 1, 0x00, 0x00, 0x57, 0xff, 0xfb, 0x80, 0,    0,    1,    0xb5, 0x81, 0x1f, 0xf3, 0x80, 0, // picture: P
    0, 0, 1, 0x01, 0x0b, 0xfc, 0x55, 0xaa, 0,    0,    1,    0xb7,                                  // slice, end of the sequence
};

/** The first pictures of a transport stream's video. */
Bytes video_of(const Bytes& stream)
{
    softdec::VirtualClock clock;
    SMGR_TDEMUX_STATS record = {};
    SMGR_DECODER_CLOCK_RECOVERY_STATS clock_record = {};
    softdec::ClockRecovery recovery(clock, clock_record, false);
    Bytes video;
    softdec::TransportDemux demux(clock, recovery, record,
                                  {.program = [](const softdec::Program&) {},
                                   .packet =
                                       [&video](softdec::ElementaryPacket packet)
                                   {
                                       if (packet.stream.type == SMGR_TDEMUX_DATA_TYPE_VIDEO && video.size() < 12000)
                                           video.insert(video.end(), packet.data.begin(), packet.data.end());
                                   },
                                   .pcr = [](softdec::Pcr, std::optional<softdec::Nanoseconds> arrival, bool) { return arrival; }});
    demux.feed(stream, std::nullopt);
    demux.finish();
    return video;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 3) return 2;
    const std::filesystem::path streams = argv[1];
    const std::filesystem::path seeds = argv[2];
    for (const char* name : {"h264-aac-klv.ts", "h264i-mp2.ts", "h265-ac3.ts"})
    {
        const Bytes stream = read(streams / name);
        write(seeds / "softdec-demux", name, Bytes(stream.begin(), stream.begin() + 188 * 150));
        Bytes video = video_of(stream);
        video.insert(video.begin(), std::string(name).starts_with("h265") ? 1 : 0);
        write(seeds / "softdec-framer", name, video);
    }
    Bytes video = {2};
    video.insert(video.end(), mpeg_video.begin(), mpeg_video.end());
    write(seeds / "softdec-framer", "mpeg2", video);
    const Bytes capture = read(streams / "rtp-fec.pcap");
    constexpr std::size_t file_header = 24;
    constexpr std::size_t frame_header = 16;
    write(seeds / "softdec-capture", "frame",
          Bytes(capture.begin() + file_header + frame_header, capture.begin() + file_header + frame_header + 1370));

    softdec::PcapSource source(streams / "rtp-fec.pcap");
    Datagram datagram;
    Bytes datagrams;
    for (int i = 0; i < 70 && source.next(datagram) == softdec::Source::Result::datagram; ++i)
    {
        if (i % 11 == 5) continue; // something to rebuild
        datagrams.insert(datagrams.end(),
                         {static_cast<std::uint8_t>(datagram.channel), static_cast<std::uint8_t>(datagram.bytes.size() >> 8),
                          static_cast<std::uint8_t>(datagram.bytes.size())});
        datagrams.insert(datagrams.end(), datagram.bytes.begin(), datagram.bytes.end());
    }
    write(seeds / "softdec-rtp", "datagrams", datagrams);
    return 0;
}
