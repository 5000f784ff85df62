/**
 * @file stats_publish.h
 * The exported functions of the publishing library, libstatspublish.so. Plain C11 that is also C++17 and later.
 *
 * A host process publishes the records of one decoder, and any other process may read them at any time without disturbing it.
 * They stand in one file of fixed size, NAME.decstats in a directory for all decoders, which lives as long as the publisher
 * does. docs/publisher-format.md describes it byte by byte.
 *
 * - Opening may fail, and says why. Nothing after that can fail the host: publishing copies the record and returns nothing.
 * - Costs: publishing a record is a copy of it. It calls neither the kernel nor an allocator, takes no lock and does not wait.
 * - Threads: different records may be published by different threads at once; each record, and the heartbeat, by one thread
 *   at a time. Opening is thread-safe. Closing must not overlap with any other call for that publisher.
 * - Processes: a child of fork does not publish. There every function with the parent's publisher does nothing, and the
 *   parent's file stays. A process that becomes a daemon by fork opens its publishers afterwards.
 * - NULL is a publisher that publishes nowhere, so a host goes on where opening has failed.
 */
#ifndef STATS_PUBLISH_H
#define STATS_PUBLISH_H

#include <stddef.h>

#include "sessmgr_audio.h"
#include "sessmgr_types.h"
#include "xtypes.h"

#ifdef __GNUC__
#define STATS_PUBLISH_API __attribute__((visibility("default")))
#else
#define STATS_PUBLISH_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

#define STATS_PUBLISH_DIRECTORY    "/run/decstats" /**< where decoders are published unless the host says otherwise */
#define STATS_PUBLISH_SUFFIX       ".decstats"     /**< what follows the decoder's name in the name of its file */
#define STATS_PUBLISH_MAX_NAME     64              /**< most characters of a decoder's name, and most bytes of a host's release */
#define STATS_PUBLISH_HEARTBEAT_MS 1000            /**< interval of heartbeats unless the host says otherwise [ms] */

/** A publisher: one decoder's records as others see them. */
typedef struct tagSTATS_PUBLISHER STATS_PUBLISHER;

/** What went wrong. */
typedef enum tagSTATS_PUBLISH_CODE XTYPES_ENUM32
{
    STATS_PUBLISH_OK                = 0, /**< nothing */
    STATS_PUBLISH_BAD_ARGUMENT      = 1, /**< a name, a text or an interval that is not allowed */
    STATS_PUBLISH_NO_DIRECTORY      = 2, /**< the directory does not exist, or is none */
    STATS_PUBLISH_NO_PERMISSION     = 3, /**< the process may not create or replace the file */
    STATS_PUBLISH_NO_SPACE          = 4, /**< the file system, or the user's share of it, is full */
    STATS_PUBLISH_ALREADY_PUBLISHED = 5, /**< a process that is alive publishes a decoder of that name, this one included */
    STATS_PUBLISH_UNKNOWN_FIELD     = 6, /**< no field has that name */
    STATS_PUBLISH_SYSTEM            = 7, /**< the system refused something else */
} STATS_PUBLISH_CODE;

/** An error as a value. All of it is set by the call that takes it, also where the call succeeds. */
typedef struct tagSTATS_PUBLISH_ERROR
{
    STATS_PUBLISH_CODE enCode;      /**< what went wrong */
    int                nErrno;      /**< the system's error number, see errno(3); 0 = the system had no part in it */
    char               szText[500]; /**< one line for a log, without a final stop or line end: path or name, and what is wrong */
} STATS_PUBLISH_ERROR;

/**
 * Begins to publish a decoder: creates its file, complete, and without records yet. A file that a dead process left under the
 * same name is replaced. Readers of the file have to be in its group, which is that of the directory where the directory has
 * its set-group-ID bit; its mode is 0640 whatever the umask is.
 * @param szDecoder      name of the decoder: 1 to 64 of the characters A-Z a-z 0-9 . _ -, the first one no full stop
 * @param szDirectory    an existing directory, on a file system in memory; NULL = STATS_PUBLISH_DIRECTORY
 * @param szHost         name and release of the host program for readers, as "softdec 1.3": at most 64 bytes, no control
 *                       characters; NULL = none
 * @param nHeartbeatMs   how often the host will call STATS_PublishHeartbeat [ms], at most 3600000; 0 =
 *                       STATS_PUBLISH_HEARTBEAT_MS
 * @param pError         what went wrong; may be NULL
 * @return the publisher, which belongs to the caller until STATS_PublishClose; or NULL, with *pError set
 */
STATS_PUBLISH_API STATS_PUBLISHER* STATS_PublishOpen(const char* szDecoder, const char* szDirectory, const char* szHost,
                                                     unsigned int nHeartbeatMs, STATS_PUBLISH_ERROR* pError);

/**
 * Says which fields this host does not measure, so that readers show them as not measured instead of as 0. Best before the
 * first record. Calls add up; one that fails changes nothing.
 * @param pPublisher publisher; NULL does nothing and succeeds
 * @param pszFields  public names of fields; one name with [] stands for the field in every element of an array, as
 *                   "tdemux.sources[].bit_rate"
 * @param nCount     number of names
 * @param pError     what went wrong, STATS_PUBLISH_UNKNOWN_FIELD with the name in its text; may be NULL
 * @return TRUE if all names are known
 */
STATS_PUBLISH_API BOOL STATS_PublishNotMeasured(STATS_PUBLISHER* pPublisher, const char* const* pszFields, size_t nCount,
                                                STATS_PUBLISH_ERROR* pError);

/**
 * Says that the host is alive. Call it at the interval given at opening from where the host would notice that it hangs, as its
 * main loop: publishing alone is no sign of life, since a thread may go on copying a record that nobody fills any more.
 * Readers call a host hung that has not done so for five intervals. Opening counts as the first one.
 * @param pPublisher publisher; NULL does nothing
 */
STATS_PUBLISH_API void STATS_PublishHeartbeat(STATS_PUBLISHER* pPublisher);

/**
 * Publishes the transport demux record.
 * @param pPublisher publisher; NULL does nothing
 * @param pStats     record, not NULL; must not change during the call
 */
STATS_PUBLISH_API void STATS_PublishForTDemux(STATS_PUBLISHER* pPublisher, const SMGR_TDEMUX_STATS* pStats);

/** Publishes the video framer record. @param pPublisher as above @param pStats as above */
STATS_PUBLISH_API void STATS_PublishForVFramer(STATS_PUBLISHER* pPublisher, const SMGR_VFRAMER_STATS* pStats);

/** Publishes the hardware video decoder record. @param pPublisher as above @param pStats as above */
STATS_PUBLISH_API void STATS_PublishForVideoDecoder(STATS_PUBLISHER* pPublisher, const SMGR_VCUDEC_STATS* pStats);

/** Publishes the audio decoder record. @param pPublisher as above @param pStats as above */
STATS_PUBLISH_API void STATS_PublishForAudioDecoder(STATS_PUBLISHER* pPublisher, const SMGR_DECODER_AUDIO_STATS* pStats);

/** Publishes the metadata decoder record. @param pPublisher as above @param pStats as above */
STATS_PUBLISH_API void STATS_PublishForMetadataDec(STATS_PUBLISHER* pPublisher, const SMGR_METADATADEC_STATS* pStats);

/** Publishes the buffering controller record. @param pPublisher as above @param pStats as above */
STATS_PUBLISH_API void STATS_PublishForCBuffering(STATS_PUBLISHER* pPublisher, const SMGR_CBUFFERING_STATS* pStats);

/** Publishes the clock recovery record. @param pPublisher as above @param pStats as above */
STATS_PUBLISH_API void STATS_PublishForClockRecovery(STATS_PUBLISHER* pPublisher, const SMGR_DECODER_CLOCK_RECOVERY_STATS* pStats);

/** Publishes the decoder usage record. @param pPublisher as above @param pStats as above */
STATS_PUBLISH_API void STATS_PublishForDecoderUsage(STATS_PUBLISHER* pPublisher, const SMGR_DECODER_SDI_USAGE_STATS* pStats);

/**
 * Ends publishing: removes the file and releases the publisher. A process that ends without this leaves the file, which readers
 * then call stale, and the next publisher of the name replaces it.
 * @param pPublisher publisher; NULL does nothing
 */
STATS_PUBLISH_API void STATS_PublishClose(STATS_PUBLISHER* pPublisher);

#ifdef __cplusplus
}
#endif

#endif
