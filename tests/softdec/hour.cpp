/*
 * An hour of a stream, as fast as it can be received: fails if memory grows or the estimate of the sender's clock drifts.
 *
 *     softdec_hour [--decode]
 */
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <malloc.h>
#include <utility>

#include "streams.h"

int main(int argc, char** argv)
{
    using namespace softdec_tests;
    const bool decode = argc > 1 && std::strcmp(argv[1], "--decode") == 0;
    constexpr double sender_ppm = 30;
    Passes passes(read_stream("h264-aac-klv.ts"));
    softdec::Chain chain({.has_arrivals = true, .decode = decode, .live = false, .start = 0});
    std::size_t least_heap = ~std::size_t{0};
    std::size_t first_heap = 0;
    std::size_t last_heap = 0;
    double worst = 0;
    std::puts("minute   heap KiB   sender's clock ppm");
    for (int minute = 1; minute <= 60; ++minute)
    {
        for (int pass = 0; pass < 10; ++pass)
        {
            const softdec::Nanoseconds offset = ((minute - 1) * 10 + pass) * passes.length() * 100'000 / 9;
            for (const Arrival& arrival : datagrams(passes.next()))
            {
                const auto since = static_cast<double>(arrival.moment - beginning + offset);
                const auto moment = beginning + static_cast<softdec::Nanoseconds>(since * (1 - sender_ppm / 1e6));
                chain.take({.channel = arrival.channel, .arrival = moment, .bytes = arrival.bytes}, {});
            }
        }
        const double ppm = static_cast<double>(chain.records().clock_recovery.OldPll - 27'000'000) / 27;
        const std::size_t heap = mallinfo2().uordblks;
        if (minute % 10 == 0 || minute == 1 || minute == 5) std::printf("%6d %10zu %20.2f\n", minute, heap / 1024, ppm);
        if (minute < 5) continue;
        // What is in use goes up and down with what is buffered: the least of some minutes is what stays.
        worst = std::max(worst, std::abs(ppm - sender_ppm));
        least_heap = std::min(least_heap, heap);
        if (minute == 15) first_heap = std::exchange(least_heap, ~std::size_t{0});
        if (minute == 60) last_heap = least_heap;
    }
    const double growth = (static_cast<double>(last_heap) - static_cast<double>(first_heap)) / 1024;
    std::printf("growth from minutes 5 to 15 to all after them: %.1f KiB; the estimate is at most %.2f ppm off\n", growth, worst);
    return growth <= 16 && worst <= 0.5 ? 0 : 1;
}
