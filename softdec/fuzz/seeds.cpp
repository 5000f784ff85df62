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
