/*
 * softdec_make FILE.ts: writes a stream of 5 Mbit/s, 9.6 s of H.264 and AAC in whole pictures and frames of sound, so that it has no
 * seam where it is repeated.
 */
#include <algorithm>
#include <cstdio>
#include <exception>
#include <fstream>
#include <stdexcept>
#include <string>

#include "multiplexer.h"
#include "packets.h"

namespace
{

using namespace softdec_tests;

Bytes five_megabits()
{
    constexpr int packets = 31'915;
    constexpr double seconds = 9.6;
    Multiplex shape = {.rate = packets * ts_size * 8 / seconds, .length = static_cast<softdec::Ticks>(seconds * softdec::ticks_per_second)};
    const VideoCoding video = {.width = 720, .height = 576, .bits = 4'350'000, .frames = 240};
    const AudioCoding audio = {.bits = 128'000, .seconds = seconds};
    const auto pictures = encode(video);
    shape.streams.push_back({.pid = 256, .type = 0x1b, .stream_id = 0xe0, .packets = packetize(pictures)});
    auto sound = encode(audio);
    sound.resize(450); // without the frame that the encoder ends with
    auto packets_of_sound = packetize(sound, 3);
    // Sent from the moment on that the pictures are sent from, whose DTS begin earlier.
    for (Pes& pes : packets_of_sound) pes.due += pictures.front().dts;
    shape.streams.push_back({.pid = 257, .type = 0x0f, .stream_id = 0xc0, .packets = packets_of_sound});
    Bytes stream = multiplex(shape);
    if (stream.size() > packets * ts_size)
        throw std::runtime_error("the coded streams take more than their share: " + std::to_string(stream.size() / ts_size) + " packets");
    while (stream.size() < packets * ts_size)
    {
        const std::size_t at = stream.size();
        stream.resize(at + ts_size, 0xff);
        const std::uint8_t header[] = {0x47, 0x1f, 0xff, 0x10};
        std::ranges::copy(header, stream.begin() + static_cast<std::ptrdiff_t>(at));
    }
    return stream;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2)
    {
        std::fputs("usage: softdec_make FILE.ts\n", stderr);
        return 2;
    }
    try
    {
        const Bytes stream = five_megabits();
        std::ofstream file(argv[1], std::ios::binary);
        file.write(reinterpret_cast<const char*>(stream.data()), static_cast<std::streamsize>(stream.size()));
        if (file.flush()) return 0;
        std::fprintf(stderr, "softdec_make: %s cannot be written\n", argv[1]);
        return 1;
    }
    catch (const std::exception& error)
    {
        std::fprintf(stderr, "softdec_make: %s\n", error.what());
        return 1;
    }
}
