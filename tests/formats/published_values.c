/* published_values DIRECTORY INTERVAL_MS empty|known|moving: publishes the decoder "values" until its standard input ends, for
   published_test.py, which knows the values. It gives no sign of life but that of opening. */
#include <poll.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include "stats_publish.h"

static void publish_known(STATS_PUBLISHER* publisher)
{
    static const char* const not_measured[] = {"vframer.decoder_id", "audio.pairs[].mode", "usage.stop_requests"};
    if (!STATS_PublishNotMeasured(publisher, not_measured, 3, NULL)) abort();

    static SMGR_VFRAMER_STATS vframer;
    vframer.nDecoderID = 7;
    vframer.tCurrentProperties.fFrameRate = 0.1F;
    strcpy(vframer.tCurrentProperties.szFraming, "1080i \xc3\xa9");
    vframer.tCurrentProperties.colour_primaries = 255;
    memcpy(vframer.tCurrentProperties.szPayloadID, "\x89\xca\x00\x01", 4);
    vframer.tPreviousProperties.fFrameRate = -59.9375F;
    STATS_PublishForVFramer(publisher, &vframer);

    static SMGR_DECODER_AUDIO_STATS audio;
    for (int i = 0; i < SMGR_AUDIO_MAX_PAIRS; i++)
    {
        audio.PairStats[i].iAudioVideoTSDiffInMs = -1000 * (i + 1);
        audio.PairStats[i].nAudioTimeStamp = 0xfffffff0U + (unsigned)i;
        audio.PairStats[i].tLastIntervalTime.tv_sec = 1700000000 + i;
        audio.PairStats[i].tLastIntervalTime.tv_nsec = 999999999 - i;
    }
    STATS_PublishForAudioDecoder(publisher, &audio);

    static SMGR_METADATADEC_STATS metadata;
    memcpy(metadata.tChannel[0].szName, "ABCDEFGH", 8); /* without a NUL */
    strcpy(metadata.tChannel[3].szName, "KLV");
    metadata.tChannel[3].tCounters.nNumBDAllocated = 0xfedcba9876543210UL;
    STATS_PublishForMetadataDec(publisher, &metadata);

    static SMGR_DECODER_SDI_USAGE_STATS usage;
    usage.nNumStarts = 1;
    usage.tLastStart = -2;
    usage.nNumStops = 3;
    usage.tLastStop = 4;
    usage.nNumSaveConfigs = 17;
    usage.tLastSaveConfig = 18;
    STATS_PublishForDecoderUsage(publisher, &usage);
}

/* Writing n holds n wherever the test looks. In bursts, for a reader that is quick enough between two of them. */
static void publish_burst(STATS_PUBLISHER* publisher)
{
    static SMGR_TDEMUX_STATS tdemux;
    static unsigned long writing;
    for (int i = 0; i < 2000; i++)
    {
        writing++;
        for (int j = 0; j < SMGR_TDEMUX_MAX_SOURCES; j++)
        {
            tdemux.tSources[j].nPTS = writing;
            tdemux.tSources[j].nDTS = writing;
            tdemux.tSources[j].tCounters.nNumReceivedPackets = writing;
            tdemux.tSources[j].tCounters.nNumNoPTSValueFrames = writing;
        }
        STATS_PublishForTDemux(publisher, &tdemux);
    }
}

int main(int argc, char** argv)
{
    STATS_PUBLISH_ERROR error;
    if (argc != 4) return 2;
    STATS_PUBLISHER* publisher = STATS_PublishOpen("values", argv[1], "values \xc3\xa9 1.0", (unsigned)atoi(argv[2]), &error);
    if (!publisher) return fprintf(stderr, "%s\n", error.szText), 1;

    const int moving = strcmp(argv[3], "moving") == 0;
    if (strcmp(argv[3], "empty") != 0) publish_known(publisher);
    if (moving) publish_burst(publisher);
    if (puts("ready") < 0 || fflush(stdout) != 0) return 1;

    struct pollfd input = {STDIN_FILENO, POLLIN, 0};
    while (poll(&input, 1, moving ? 1 : -1) == 0) publish_burst(publisher);
    STATS_PublishClose(publisher);
    return 0;
}
