/**
 * @file idle.c
 * The decoder after its power-up: nothing was ever started. Counts and times are 0; what is set is what a component knows
 * of itself.
 */
#include <stdio.h>

#include "scenarios.h"

#define DECODER_ID  1
#define NOMINAL_STC 27000000L /* Hz */

/* Delays configured or known beforehand, in ms. */
#define MIN_DELAY       180
#define MAX_DELAY       3000
#define HARDWARE_DELAY  33
#define FIXED_DELAY     400
#define MULTISYNC_DELAY 1000

#define UNSPECIFIED_CODE_POINT 2 /* ITU-T H.273 */

SMGR_METADATADEC_CHANNEL_STATS samples_idle_channel(const char* szName, SMGR_METADATA_CHANNEL_TYPE enType)
{
    SMGR_METADATADEC_CHANNEL_STATS tChannel = {
        .enType = enType,
        .enState = SMGR_METADATA_STATE_IDLE,
        .tCounters = {.nNumBDInFreeList = SAMPLES_DESCRIPTORS, .nBDUsedListHeadIndex = -1},
    };
    (void)snprintf(tChannel.szName, sizeof tChannel.szName, "%s", szName);
    return tChannel;
}

void samples_fill_idle(SAMPLES_RECORDS* pRecords, time_t tNow)
{
    (void)tNow; /* nothing has happened yet */

    const SMGR_VFRAMER_STREAM_PROPS tNoProperties = {
        .colour_primaries = UNSPECIFIED_CODE_POINT,
        .transfer_characteristics = UNSPECIFIED_CODE_POINT,
        .matrix_coefficients = UNSPECIFIED_CODE_POINT,
    };

    pRecords->tTDemux = (SMGR_TDEMUX_STATS){
        .nSize = sizeof(SMGR_TDEMUX_STATS),
        .enState = SMGR_TDEMUX_STATS_STATE_STOPPED,
    };

    pRecords->tVFramer = (SMGR_VFRAMER_STATS){
        .enState = SMGR_VFRAMER_STATE_IDLE,
        .nDecoderID = DECODER_ID,
        .tCurrentProperties = tNoProperties,
        .tPreviousProperties = tNoProperties,
    };

    pRecords->tVideoDecoder = (SMGR_VCUDEC_STATS){
        .nSize = sizeof(SMGR_VCUDEC_STATS),
        .enState = SMGR_VCUDEC_STATE_IDLE,
        .enPicStructure = VCUDEC_PICSTRUCTURE_UNKNOWN,
    };

    pRecords->tAudio = (SMGR_DECODER_AUDIO_STATS){
        .nSize = sizeof(SMGR_DECODER_AUDIO_STATS),
        .enState = SMGR_AUDDEC_STATE_IDLE,
    };
    for (size_t i = 0; i < SMGR_AUDIO_MAX_PAIRS; ++i) pRecords->tAudio.PairStats[i].nSize = sizeof(SMGR_AUDIO_PAIR_STATS);

    pRecords->tMetadata = (SMGR_METADATADEC_STATS){
        .enState = SMGR_METADATA_STATE_IDLE,
        .nDecoderID = DECODER_ID,
        .tChannel =
            {
                samples_idle_channel("KLV", SMGR_METADATA_CHANNEL_TYPE_KLV),
                samples_idle_channel("TC", SMGR_METADATA_CHANNEL_TYPE_TC),
                samples_idle_channel("CC", SMGR_METADATA_CHANNEL_TYPE_CC),
                samples_idle_channel("AFD", SMGR_METADATA_CHANNEL_TYPE_AFD),
            },
    };

    pRecords->tBuffering = (SMGR_CBUFFERING_STATS){
        .nDecoderID = DECODER_ID,
        .enStatus = SMGR_CBUFFERING_STATUS_IDLE,
        .enBufferingMode = SMGR_DECSDI_BUFFERING_AUTOMATIC,
        .nFixedDelayMs = FIXED_DELAY,
        .nMultiSyncDelayMs = MULTISYNC_DELAY,
        .nMinDelayMs = MIN_DELAY,
        .nMaxDelayMs = MAX_DELAY,
        .tAutomatic = {.nHardwareDelayMs = HARDWARE_DELAY},
    };

    pRecords->tClockRecovery = (SMGR_DECODER_CLOCK_RECOVERY_STATS){
        .OldPll = NOMINAL_STC,
        .StcClkNominal = NOMINAL_STC,
        .trackingMode = SMGR_CLOCK_TRACKING_DISABLED,
    };

    pRecords->tUsage = (SMGR_DECODER_SDI_USAGE_STATS){0};

    samples_clear_padding(pRecords);
}
