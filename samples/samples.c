/** @file samples.c The table of scenarios, and the bytes between the members of the records. */
#include "samples.h"

#include <string.h>

#include "scenarios.h"

const SAMPLES_SCENARIO samples_scenarios[] = {
    {
        .szName = "live-srt-1080i",
        .szSummary = "Healthy: encrypted SRT, H.264 4:2:2 10-bit 1080i29.97, two AAC pairs, KLV and captions, up two days",
        .pFill = samples_fill_live_srt_1080i,
    },
    {
        .szName = "rtp-fec-2160p",
        .szSummary = "Healthy: RTP multicast with Pro-MPEG FEC, H.265 Main 10 HDR 2160p59.94, MultiSync buffering by timecode",
        .pFill = samples_fill_rtp_fec_2160p,
    },
    {
        .szName = "trouble",
        .szSummary = "Losses at every stage, starved output, unlocked clock, then an unsupported stream and a wrong passphrase",
        .pFill = samples_fill_trouble,
    },
    {
        .szName = "resolving",
        .szSummary = "Started, but the host name of the sender cannot be resolved",
        .pFill = samples_fill_resolving,
    },
    {
        .szName = "idle",
        .szSummary = "Nothing was ever started",
        .pFill = samples_fill_idle,
    },
    {
        .szName = "extreme",
        .szSummary = "The largest and the most negative value of every field, and texts without an end",
        .pFill = samples_fill_extreme,
    },
};

const size_t samples_scenario_count = sizeof samples_scenarios / sizeof samples_scenarios[0];

const SAMPLES_SCENARIO* samples_find(const char* szName)
{
    for (size_t i = 0; i < samples_scenario_count; ++i)
    {
        if (strcmp(samples_scenarios[i].szName, szName) == 0) return &samples_scenarios[i];
    }
    return NULL;
}

/* Zeroes what lies between two neighbouring members, which may be nothing. */
#define CLEAR_BETWEEN(type, pObject, before, after)                                           \
    memset((unsigned char*)(pObject) + offsetof(type, before) + sizeof((pObject)->before), 0, \
           offsetof(type, after) - offsetof(type, before) - sizeof((pObject)->before))

/* Zeroes what follows the last member. */
#define CLEAR_AFTER(type, pObject, last)                                                  \
    memset((unsigned char*)(pObject) + offsetof(type, last) + sizeof((pObject)->last), 0, \
           sizeof(type) - offsetof(type, last) - sizeof((pObject)->last))

static void ClearAudioPadding(SMGR_DECODER_AUDIO_STATS* pAudio)
{
    CLEAR_BETWEEN(SMGR_DECODER_AUDIO_STATS, pAudio, nNumOfPairs, nReceivedFrames);
    for (size_t i = 0; i < SMGR_AUDIO_MAX_PAIRS; ++i)
    {
        SMGR_AUDIO_PAIR_STATS* pPair = &pAudio->PairStats[i];
        CLEAR_BETWEEN(SMGR_AUDIO_PAIR_STATS, pPair, nOutputChannels, nReceivedFrames);
        CLEAR_BETWEEN(SMGR_AUDIO_PAIR_STATS, pPair, nSampleRateOut, nSkippedFrames);
        CLEAR_BETWEEN(SMGR_AUDIO_PAIR_STATS, pPair, nDecoderErrors, tLastDecoderError);
        CLEAR_BETWEEN(SMGR_AUDIO_PAIR_STATS, pPair, nOutputErrors, tLastOutputError);
        CLEAR_BETWEEN(SMGR_AUDIO_PAIR_STATS, pPair, nTSDiscontinuity, tLastIntervalTime);
        CLEAR_BETWEEN(SMGR_AUDIO_PAIR_STATS, pPair, nMaxSTCLeadTimeMs, tMaxSTCLeadTime);
        CLEAR_BETWEEN(SMGR_AUDIO_PAIR_STATS, pPair, nMaxProcessTimeUs, tMaxProcessTime);
    }
}

void samples_clear_padding(SAMPLES_RECORDS* pRecords)
{
    SMGR_TDEMUX_STATS* pDemux = &pRecords->tTDemux;
    if (pDemux->enEncapsulation == SMGR_STREAM_ENCAPSULATION_TS_RTP && pDemux->enFECType == SMGR_FEC_TYPE_PRO_MPEG)
    {
        CLEAR_AFTER(SMGR_TDEMUX_STATS, pDemux, Xport.PMFEC); /* the smaller member of the union */
    }

    CLEAR_AFTER(SMGR_VFRAMER_STREAM_PROPS, &pRecords->tVFramer.tCurrentProperties, szPayloadID);
    CLEAR_AFTER(SMGR_VFRAMER_STREAM_PROPS, &pRecords->tVFramer.tPreviousProperties, szPayloadID);
    ClearAudioPadding(&pRecords->tAudio);

    CLEAR_BETWEEN(SAMPLES_RECORDS, pRecords, tTDemux, tVFramer);
    CLEAR_BETWEEN(SAMPLES_RECORDS, pRecords, tVFramer, tVideoDecoder);
    CLEAR_BETWEEN(SAMPLES_RECORDS, pRecords, tVideoDecoder, tAudio);
    CLEAR_BETWEEN(SAMPLES_RECORDS, pRecords, tAudio, tMetadata);
    CLEAR_BETWEEN(SAMPLES_RECORDS, pRecords, tMetadata, tBuffering);
    CLEAR_BETWEEN(SAMPLES_RECORDS, pRecords, tBuffering, tClockRecovery);
    CLEAR_BETWEEN(SAMPLES_RECORDS, pRecords, tClockRecovery, tUsage);
    CLEAR_AFTER(SAMPLES_RECORDS, pRecords, tUsage);
}
