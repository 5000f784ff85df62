/**
 * @file usage.h
 * The fields of the decoder usage record.
 */
#ifndef DICTIONARY_USAGE_H
#define DICTIONARY_USAGE_H

#include "row.h"

namespace dictionary::row
{

#define USAGE(path) DICTIONARY_MEMBER(SMGR_DECODER_SDI_USAGE_STATS, path)

inline constexpr std::array usage_rows = {
    counter(USAGE(nNumStarts), "start_requests").line("Start", debug),
    last(USAGE(tLastStart), "last_start_request_time", "start_requests").line("Start", debug),
    counter(USAGE(nNumStops), "stop_requests").line("Stop", debug),
    last(USAGE(tLastStop), "last_stop_request_time", "stop_requests").line("Stop", debug),
    counter(USAGE(nNumGetStats), "get_stats_requests").line("Get Stats", debug),
    last(USAGE(tLastGetStat), "last_get_stats_request_time", "get_stats_requests").line("Get Stats", debug),
    counter(USAGE(nNumGetInfos), "get_info_requests").line("Get Info", debug),
    last(USAGE(tLastGetInfo), "last_get_info_request_time", "get_info_requests").line("Get Info", debug),
    counter(USAGE(nNumConfigures), "configure_requests").line("Configure", debug),
    last(USAGE(tLastConfigure), "last_configure_request_time", "configure_requests").line("Configure", debug),
    counter(USAGE(nNumCaptures), "capture_requests").line("Capture", debug),
    last(USAGE(tLastCapture), "last_capture_request_time", "capture_requests").line("Capture", debug),
    counter(USAGE(nNumClears), "clear_requests").line("Clear", debug),
    last(USAGE(tLastClear), "last_clear_request_time", "clear_requests").line("Clear", debug),
    counter(USAGE(nNumLoadConfigs), "load_config_requests").line("Load Config", debug),
    last(USAGE(tLastLoadConfig), "last_load_config_request_time", "load_config_requests").line("Load Config", debug),
    counter(USAGE(nNumSaveConfigs), "save_config_requests").line("Save Config", debug),
    last(USAGE(tLastSaveConfig), "last_save_config_request_time", "save_config_requests").line("Save Config", debug),
};

inline constexpr auto usage = rows_of<SMGR_DECODER_SDI_USAGE_STATS>("usage", usage_rows);
static_assert(tile<sizeof(SMGR_DECODER_SDI_USAGE_STATS)>(usage));

#undef USAGE

} // namespace dictionary::row

#endif
