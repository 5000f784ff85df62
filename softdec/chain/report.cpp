#include "chain/report.h"

#include <ctime>

namespace
{

/** What the report library takes for now; 0 = what the system's clock says. */
std::time_t report_time = 0;

} // namespace

/** Takes the place of the C library's function for this process: a capture's events are as old as they were in it. */
extern "C" __attribute__((visibility("default"))) std::time_t time(std::time_t* result) noexcept
{
    timespec now = {};
    clock_gettime(CLOCK_REALTIME, &now);
    const std::time_t moment = report_time != 0 ? report_time : now.tv_sec;
    if (result != nullptr) *result = moment;
    return moment;
}

namespace softdec
{

void print_report(const records::Records& records, const VirtualClock& clock, STATS_LEVEL level)
{
    report_time = clock.seconds();
    STATS_PrintForTDemux(&records.tdemux, level);
    STATS_PrintForVFramer(&records.vframer, level);
    STATS_PrintForVideoDecoder(&records.vdecoder, level);
    STATS_PrintForAudioDecoder(&records.audio, level);
    STATS_PrintForMetadataDec(&records.metadata, level);
    STATS_PrintForCBuffering(&records.buffering, level);
    STATS_PrintForClockRecovery(&records.clock_recovery, level);
    STATS_PrintForDecoderUsage(&records.usage, level);
    report_time = 0;
}

} // namespace softdec
