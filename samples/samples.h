/**
 * @file samples.h
 * Named scenarios, each the eight records of a decoder in one situation. Tests, tools and benchmarks share them. Plain C11
 * that is also C++17 and later.
 */
#ifndef SAMPLES_H
#define SAMPLES_H

#include <stddef.h>
#include <time.h>

#include "sessmgr_audio.h"
#include "sessmgr_types.h"

#ifdef __cplusplus
extern "C" {
#endif

/** The records of one decoder at one moment. */
typedef struct tagSAMPLES_RECORDS
{
    SMGR_TDEMUX_STATS tTDemux;                        /**< transport demux */
    SMGR_VFRAMER_STATS tVFramer;                      /**< video framer */
    SMGR_VCUDEC_STATS tVideoDecoder;                  /**< hardware video decoder */
    SMGR_DECODER_AUDIO_STATS tAudio;                  /**< audio decoder */
    SMGR_METADATADEC_STATS tMetadata;                 /**< metadata decoder */
    SMGR_CBUFFERING_STATS tBuffering;                 /**< buffering controller */
    SMGR_DECODER_CLOCK_RECOVERY_STATS tClockRecovery; /**< clock recovery loop */
    SMGR_DECODER_SDI_USAGE_STATS tUsage;              /**< decoder usage */
} SAMPLES_RECORDS;

/** A scenario. */
typedef struct tagSAMPLES_SCENARIO
{
    const char* szName;    /**< name, as live-srt-1080i: lower case, digits and hyphens */
    const char* szSummary; /**< one line on the situation, without a final stop */
    /**
     * Fills every byte of the records, padding included.
     * @param pRecords records to fill, not NULL
     * @param tNow     the moment that the event times count back from [epoch s]
     */
    void (*pFill)(SAMPLES_RECORDS* pRecords, time_t tNow);
} SAMPLES_SCENARIO;

/** The scenarios, the typical one first. */
extern const SAMPLES_SCENARIO samples_scenarios[];

/** Number of entries of samples_scenarios. */
extern const size_t samples_scenario_count;

/**
 * Finds a scenario.
 * @param szName name, not NULL
 * @return the scenario, or NULL if there is none of that name
 */
const SAMPLES_SCENARIO* samples_find(const char* szName);

#ifdef __cplusplus
}
#endif

#endif
