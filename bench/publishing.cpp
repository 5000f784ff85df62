// What publishing costs beside copying: the time to publish all eight records over the time of memcpy for the same bytes. Both
// are the shortest of many short runs that alternate, so that whatever else the machine does, it does to both. No reader looks.
//
//     publishing_bench [DIRECTORY]    prints times and ratio, and fails if the ratio is above the bar; DIRECTORY is in memory

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <limits>

#include "bars.h"
#include "samples_publish.h"

namespace
{

constexpr int runs = 200'000; // some seconds, in which the machine is quiet for a while
constexpr int repetitions = 20;

using Copy = void* (*)(void*, const void*, std::size_t);
volatile Copy copy = std::memcpy; // volatile: a call, with a size that the compiler cannot use

void copy_all(SAMPLES_RECORDS& to, const SAMPLES_RECORDS& records)
{
    const Copy call = copy;
    call(&to.tTDemux, &records.tTDemux, sizeof to.tTDemux);
    call(&to.tVFramer, &records.tVFramer, sizeof to.tVFramer);
    call(&to.tVideoDecoder, &records.tVideoDecoder, sizeof to.tVideoDecoder);
    call(&to.tAudio, &records.tAudio, sizeof to.tAudio);
    call(&to.tMetadata, &records.tMetadata, sizeof to.tMetadata);
    call(&to.tBuffering, &records.tBuffering, sizeof to.tBuffering);
    call(&to.tClockRecovery, &records.tClockRecovery, sizeof to.tClockRecovery);
    call(&to.tUsage, &records.tUsage, sizeof to.tUsage);
}

/** The time of one of several repetitions [ns]. */
template <typename Function> double time_of(const Function& function)
{
    const auto all = [&function]
    {
        for (int i = 0; i < repetitions; ++i) function();
    };
    return 1000 * microseconds_of(all) / repetitions;
}

} // namespace

int main(int argc, char** argv)
{
    STATS_PUBLISH_ERROR error;
    STATS_PUBLISHER* publisher = STATS_PublishOpen("publishing_bench", argc > 1 ? argv[1] : "/dev/shm", nullptr, 0, &error);
    if (publisher == nullptr)
    {
        std::fprintf(stderr, "publishing_bench: %s\n", error.szText);
        return 2;
    }
    static SAMPLES_RECORDS records;
    static SAMPLES_RECORDS copied;
    samples_find("live-srt-1080i")->pFill(&records, 1'800'000'000);

    double publishing = std::numeric_limits<double>::max();
    double copying = publishing;
    for (int i = 0; i < runs; ++i)
    {
        publishing = std::min(publishing, time_of([&] { samples_publish(publisher, &records); }));
        copying = std::min(copying, time_of([&] { copy_all(copied, records); }));
    }
    STATS_PublishClose(publisher);
    std::printf("publishing all records    %8.1f ns\nmemcpy of the same bytes  %8.1f ns\n", publishing, copying);
    return at_most("publishing, in times of memcpy", publishing / copying, 3, "", 2) ? 0 : 1;
}
