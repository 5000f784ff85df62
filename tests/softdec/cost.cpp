/*
 * What the chain costs, measured in one run beside libavcodec alone on the same stream. Prints figures and judges nothing: they are
 * this machine's.
 */
#include <algorithm>
#include <cstdio>
#include <ctime>
#include <functional>
#include <vector>

#include "packets.h"
#include "reference_decoder.h"
#include "streams.h"

namespace
{

using namespace softdec_tests;

constexpr int rounds = 7;

double processor_seconds()
{
    timespec time = {};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

double seconds_of(const std::function<void()>& work)
{
    const double begin = processor_seconds();
    work();
    return processor_seconds() - begin;
}

double median(std::vector<double> values)
{
    std::ranges::sort(values);
    return values[values.size() / 2];
}

void measure(const char* name, SMGR_TDEMUX_COMPRESSION_TYPE video, SMGR_TDEMUX_COMPRESSION_TYPE audio)
{
    const Bytes stream = repeat(read_stream(name), 10);
    std::vector<double> alone;
    std::vector<double> chain;
    std::vector<double> framed;
    for (int round = 0; round < rounds; ++round)
    {
        alone.push_back(seconds_of(
            [&]
            {
                decode_alone(stream, video_pid, video);
                decode_alone(stream, audio_pid, audio);
            }));
        chain.push_back(seconds_of([&] { run_file(stream, true); }));
        framed.push_back(seconds_of([&] { run_file(stream, false); }));
    }
    constexpr double bytes_per_second = 5e6 / 8;
    const double share = median(framed) / static_cast<double>(stream.size()) * bytes_per_second * 100;
    std::printf(
        "%-12s libavcodec alone %6.1f ms, with the chain %6.1f ms: %+5.1f %%; without decoding %5.2f ms: %.3f %% of a core at 5 Mbit/s\n",
        name, median(alone) * 1e3, median(chain) * 1e3, (median(chain) / median(alone) - 1) * 100, median(framed) * 1e3, share);
}

} // namespace

int main()
{
    measure("h264-aac.ts", SMGR_TDEMUX_COMPRESSION_TYPE_H264, SMGR_TDEMUX_COMPRESSION_TYPE_AAC_ADTS);
    measure("h265-ac3.ts", SMGR_TDEMUX_COMPRESSION_TYPE_H265, SMGR_TDEMUX_COMPRESSION_TYPE_AC3);
    measure("h264i-mp2.ts", SMGR_TDEMUX_COMPRESSION_TYPE_H264, SMGR_TDEMUX_COMPRESSION_TYPE_MP2);
}
