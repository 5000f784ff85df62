/*
 * What the chain costs, measured in one run beside libavcodec alone on the same stream. Prints figures and judges nothing: they are
 * this machine's.
 */
#include <algorithm>
#include <arpa/inet.h>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <functional>
#include <string>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>
#include <vector>

#include "input/socket_source.h"

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

double seconds_of_thread()
{
    timespec time = {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

/** Null packets between the datagrams, evenly, as often as they are needed to come to a rate. */
std::vector<Arrival> filled(const std::vector<Arrival>& arrivals, int times)
{
    Bytes null(7 * ts_size, 0xff);
    for (std::size_t at = 0; at < null.size(); at += ts_size)
    {
        constexpr std::uint8_t header[] = {0x47, 0x1f, 0xff, 0x10};
        std::ranges::copy(header, null.begin() + static_cast<std::ptrdiff_t>(at));
    }
    std::vector<Arrival> all;
    for (std::size_t i = 0; i + 1 < arrivals.size(); ++i)
    {
        all.push_back(arrivals[i]);
        for (int k = 1; k < times; ++k)
            all.push_back({.channel = softdec::Channel::media,
                           .moment = arrivals[i].moment + (arrivals[i + 1].moment - arrivals[i].moment) * k / times,
                           .bytes = null});
    }
    return all;
}

/** Receives a stream from this machine's own UDP port, sent by another thread at its rate. Without decoding. */
void measure_live(const char* name, int times)
{
    constexpr int passes = 2;
    constexpr std::uint16_t port = 51234;
    const auto arrivals = filled(datagrams(repeat(read_stream(name), passes)), times);
    softdec::SocketSource source("127.0.0.1:" + std::to_string(port), false);
    std::atomic<bool> ended = false;
    std::thread sender(
        [&]
        {
            const int descriptor = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
            sockaddr_in receiver = {};
            receiver.sin_family = AF_INET;
            receiver.sin_port = htons(port);
            receiver.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
            const auto began = std::chrono::steady_clock::now();
            for (const Arrival& arrival : arrivals)
            {
                std::this_thread::sleep_until(began + std::chrono::nanoseconds(arrival.moment - beginning));
                sendto(descriptor, arrival.bytes.data(), arrival.bytes.size(), 0, reinterpret_cast<const sockaddr*>(&receiver),
                       sizeof receiver);
            }
            close(descriptor);
            ended = true;
        });
    softdec::Chain chain({.has_arrivals = true, .decode = false, .live = true, .start = 0});
    const double begin = seconds_of_thread();
    softdec::Datagram datagram;
    while (!ended)
        if (source.next(datagram) == softdec::Source::Result::datagram) chain.take(datagram, source.status());
    const double used = seconds_of_thread() - begin;
    sender.join();
    const double seconds = static_cast<double>(arrivals.back().moment - arrivals.front().moment) / 1e9;
    const auto bytes = static_cast<double>(+chain.records().tdemux.tCounters.nNumReceivedBytes);
    std::printf("%-12s live over UDP without decoding, %.2f Mbit/s: %.2f %% of a core; so much for each byte is %.2f %% at 5 Mbit/s\n",
                name, bytes * 8 / seconds / 1e6, used / seconds * 100, used / bytes * 5e6 / 8 * 100);
}

} // namespace

int main()
{
    measure_live("h264i-mp2.ts", 1);
    measure_live("h264-aac.ts", 10);
    std::fflush(stdout);
    measure("h264-aac.ts", SMGR_TDEMUX_COMPRESSION_TYPE_H264, SMGR_TDEMUX_COMPRESSION_TYPE_AAC_ADTS);
    measure("h265-ac3.ts", SMGR_TDEMUX_COMPRESSION_TYPE_H265, SMGR_TDEMUX_COMPRESSION_TYPE_AC3);
    measure("h264i-mp2.ts", SMGR_TDEMUX_COMPRESSION_TYPE_H264, SMGR_TDEMUX_COMPRESSION_TYPE_MP2);
}
