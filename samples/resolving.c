/**
 * @file resolving.c
 * The decoder was started as an SRT caller, but no name server answers for the sender's name. The components behind the
 * transport demux are idle.
 */
#define _POSIX_C_SOURCE 200809L /* for the resolver's codes */

#include <netdb.h>

#include "scenarios.h"

#define UP_TIME        47L /* s */
#define LOOKUP_SECONDS 5L  /* a lookup that fails takes so long, then the next begins */
#define LOOKUPS        (UP_TIME / LOOKUP_SECONDS)
#define SENDER_PORT    7001

#define NOMINAL_STC 27000000L /* Hz */

void samples_fill_resolving(SAMPLES_RECORDS* pRecords, time_t tNow)
{
    const time_t tStart = tNow - UP_TIME;
    const time_t tLastLookup = tStart + LOOKUPS * LOOKUP_SECONDS;

    samples_fill_idle(pRecords, tNow);

    pRecords->tTDemux = (SMGR_TDEMUX_STATS){
        .nSize = sizeof(SMGR_TDEMUX_STATS),
        .enState = SMGR_TDEMUX_STATS_STATE_RESOLVING,
        .bStreamHasBeenStarted = TRUE,
        .nSmgrStreamID = 5,
        .enEncapsulation = SMGR_STREAM_ENCAPSULATION_TS_SRT,
        .tSourceAddress = {.szHostName = "encoder.example"},
        .nSourcePort = SENDER_PORT,
        .nUpTimeInSecs = UP_TIME,
        .tCounters =
            {
                .nNumErrors = LOOKUPS,
                .tLastError = tLastLookup,
                .iLastError = EAI_AGAIN,
                .iLastErrorTime = tLastLookup,
            },
        .Xport = {.SRT = {.iMSS = 1500, .iLatency = 120, .iRemotePort = SENDER_PORT, .iVersion = 0x010404}},
    };

    /* The loop waits for its first PCR. */
    pRecords->tClockRecovery = (SMGR_DECODER_CLOCK_RECOVERY_STATS){
        .OldPll = NOMINAL_STC,
        .StcClkNominal = NOMINAL_STC,
        .trackingMode = SMGR_CLOCK_TRACKING_ENABLED,
        .PllNotSettled = 1,
    };

    pRecords->tUsage = (SMGR_DECODER_SDI_USAGE_STATS){
        .nNumStarts = 4,
        .tLastStart = tStart,
        .nNumStops = 3,
        .tLastStop = tStart - 65,
        .nNumGetStats = 9,
        .tLastGetStat = tNow - 2,
        .nNumGetInfos = 6,
        .tLastGetInfo = tNow - 2,
        .nNumConfigures = 4,
        .tLastConfigure = tStart - 12,
        .nNumLoadConfigs = 1,
        .tLastLoadConfig = tStart - 3600,
    };

    samples_clear_padding(pRecords);
}
