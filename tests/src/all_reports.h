// The eight reports as a table, for tests that treat them alike.
#ifndef ALL_REPORTS_H
#define ALL_REPORTS_H

#include <array>
#include <cstddef>

#include "samples.h"
#include "stats.h"

struct Report
{
    const char* component;                                /**< as decstats names it */
    size_t size;                                          /**< of the record [bytes] */
    size_t offset;                                        /**< of the record within SAMPLES_RECORDS [bytes] */
    BOOL (*print)(const void* record, STATS_LEVEL level); /**< record is aligned as its type asks */
};

inline constexpr std::array<Report, 8> all_reports = {{
    {"tdemux", sizeof(SMGR_TDEMUX_STATS), offsetof(SAMPLES_RECORDS, tTDemux),
     [](const void* record, STATS_LEVEL level) { return STATS_PrintForTDemux(static_cast<const SMGR_TDEMUX_STATS*>(record), level); }},
    {"vframer", sizeof(SMGR_VFRAMER_STATS), offsetof(SAMPLES_RECORDS, tVFramer),
     [](const void* record, STATS_LEVEL level) { return STATS_PrintForVFramer(static_cast<const SMGR_VFRAMER_STATS*>(record), level); }},
    {"vdecoder", sizeof(SMGR_VCUDEC_STATS), offsetof(SAMPLES_RECORDS, tVideoDecoder),
     [](const void* record, STATS_LEVEL level)
     { return STATS_PrintForVideoDecoder(static_cast<const SMGR_VCUDEC_STATS*>(record), level); }},
    {"audio", sizeof(SMGR_DECODER_AUDIO_STATS), offsetof(SAMPLES_RECORDS, tAudio),
     [](const void* record, STATS_LEVEL level)
     { return STATS_PrintForAudioDecoder(static_cast<const SMGR_DECODER_AUDIO_STATS*>(record), level); }},
    {"metadata", sizeof(SMGR_METADATADEC_STATS), offsetof(SAMPLES_RECORDS, tMetadata),
     [](const void* record, STATS_LEVEL level)
     { return STATS_PrintForMetadataDec(static_cast<const SMGR_METADATADEC_STATS*>(record), level); }},
    {"buffering", sizeof(SMGR_CBUFFERING_STATS), offsetof(SAMPLES_RECORDS, tBuffering),
     [](const void* record, STATS_LEVEL level)
     { return STATS_PrintForCBuffering(static_cast<const SMGR_CBUFFERING_STATS*>(record), level); }},
    {"clock-recovery", sizeof(SMGR_DECODER_CLOCK_RECOVERY_STATS), offsetof(SAMPLES_RECORDS, tClockRecovery),
     [](const void* record, STATS_LEVEL level)
     { return STATS_PrintForClockRecovery(static_cast<const SMGR_DECODER_CLOCK_RECOVERY_STATS*>(record), level); }},
    {"usage", sizeof(SMGR_DECODER_SDI_USAGE_STATS), offsetof(SAMPLES_RECORDS, tUsage),
     [](const void* record, STATS_LEVEL level)
     { return STATS_PrintForDecoderUsage(static_cast<const SMGR_DECODER_SDI_USAGE_STATS*>(record), level); }},
}};

/** The report's record among a sample's. */
inline const void* RecordOf(const SAMPLES_RECORDS& records, const Report& report)
{
    return reinterpret_cast<const std::byte*>(&records) + report.offset;
}

#endif
