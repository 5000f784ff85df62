/**
 * @file stats.h
 * The exported functions of the report library, libstats.so. Plain C11 that is also C++17 and later.
 *
 * Each function prints one record as a text report on stdout and returns TRUE. The library holds no state, allocates nothing and takes
 * no lock of its own. (glibc's strerror, which names a system error, allocates for an error number that it does not know.)
 *
 * - Ownership: the caller owns the record, which is only read and must not change during the call.
 * - Errors: none are detected. An output error stays in the stream: see ferror(stdout) after the call.
 * - Threads: any number may print at once, each its own record. A line is one stdio call and stays whole, but reports may
 *   interleave: a caller that wants its report in one piece holds flockfile(stdout) around the call. (One line is two calls:
 *   a display format that is no raster, with the load of the video decoder behind it.)
 * - Host process: the texts of numbers, durations and names come from services that the process supplies by name; the
 *   library does not load without them. hostsvc.h declares and libhostsvc implements them.
 */
#ifndef STATS_H
#define STATS_H

#include <stddef.h>

#include "sessmgr_audio.h"
#include "sessmgr_types.h"
#include "xtypes.h"

#ifdef __GNUC__
#define STATS_API __attribute__((visibility("default")))
#else
#define STATS_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/** How much a report shows. Every value but STATS_LEVEL_DEBUG prints as STATS_LEVEL_DEFAULT does. */
typedef enum tagSTATS_LEVEL XTYPES_ENUM32
{
    STATS_LEVEL_DEFAULT = 0, /**< the operator's view: state, rates, and the counters of what went wrong */
    STATS_LEVEL_DEBUG   = 1, /**< adds the engineering lines */
} STATS_LEVEL;

/**
 * Prints the decoder's usage counts. Prints nothing at all, and does not read the record, below STATS_LEVEL_DEBUG.
 * @param pStats record; not NULL at STATS_LEVEL_DEBUG
 * @param nLevel report level
 * @return TRUE, always
 */
STATS_API BOOL STATS_PrintForDecoderUsage(const SMGR_DECODER_SDI_USAGE_STATS* pStats, STATS_LEVEL nLevel);

/**
 * Prints the transport demux report: the network input, its SRT link or Pro-MPEG FEC, and its elementary streams. Before the
 * stream has been started it is the state alone; while a host name is being resolved, state, up time and last error.
 * @param pStats record, not NULL
 * @param nLevel report level
 * @return TRUE, always
 */
STATS_API BOOL STATS_PrintForTDemux(const SMGR_TDEMUX_STATS* pStats, STATS_LEVEL nLevel);

/**
 * Prints the video framer report.
 * @param pStats record, not NULL
 * @param nLevel report level
 * @return TRUE, always
 */
STATS_API BOOL STATS_PrintForVFramer(const SMGR_VFRAMER_STATS* pStats, STATS_LEVEL nLevel);

/**
 * Prints the hardware video decoder report.
 * @param pStats record, not NULL
 * @param nLevel report level
 * @return TRUE, always
 */
STATS_API BOOL STATS_PrintForVideoDecoder(const SMGR_VCUDEC_STATS* pStats, STATS_LEVEL nLevel);

/**
 * Prints the audio decoder report with a block for each audio pair that has decoded a frame.
 * @param pStats record, not NULL
 * @param nLevel report level
 * @return TRUE, always
 */
STATS_API BOOL STATS_PrintForAudioDecoder(const SMGR_DECODER_AUDIO_STATS* pStats, STATS_LEVEL nLevel);

/**
 * Prints the metadata decoder report with a block for each channel that has received a packet, in debug for all four.
 * @param pStats record, not NULL
 * @param nLevel report level
 * @return TRUE, always
 */
STATS_API BOOL STATS_PrintForMetadataDec(const SMGR_METADATADEC_STATS* pStats, STATS_LEVEL nLevel);

/**
 * Prints the buffering report, in debug with the table of its channels.
 * @param pStats record, not NULL
 * @param nLevel report level
 * @return TRUE, always
 */
STATS_API BOOL STATS_PrintForCBuffering(const SMGR_CBUFFERING_STATS* pStats, STATS_LEVEL nLevel);

/**
 * Prints the clock recovery report.
 * @param pStats record, not NULL
 * @param nLevel report level
 * @return TRUE, always
 */
STATS_API BOOL STATS_PrintForClockRecovery(const SMGR_DECODER_CLOCK_RECOVERY_STATS* pStats, STATS_LEVEL nLevel);

/**
 * Writes a frame rate with at most two decimals and without trailing zeros: 29.97, 59.9, 60, 0.
 * @param fFrameRate frame rate [frames/s]; any value, NaN and the infinities included
 * @param szBuffer   caller's buffer; 12 characters hold every rate below 10^8
 * @param nSize      size of szBuffer [characters], NUL included
 * @return szBuffer
 */
STATS_API char* _GetAbbrevFPSString(float fFrameRate, char* szBuffer, size_t nSize);

#ifdef __cplusplus
}
#endif

#endif
