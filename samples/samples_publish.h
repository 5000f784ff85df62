/**
 * @file samples_publish.h
 * Publishing the records of a sample, for hosts among this project's own programs.
 */
#ifndef SAMPLES_PUBLISH_H
#define SAMPLES_PUBLISH_H

#include "samples.h"
#include "stats_publish.h"

/** Publishes all eight records. @param pPublisher may be NULL, as for the functions that it calls @param pRecords not NULL */
static inline void samples_publish(STATS_PUBLISHER* pPublisher, const SAMPLES_RECORDS* pRecords)
{
    STATS_PublishForTDemux(pPublisher, &pRecords->tTDemux);
    STATS_PublishForVFramer(pPublisher, &pRecords->tVFramer);
    STATS_PublishForVideoDecoder(pPublisher, &pRecords->tVideoDecoder);
    STATS_PublishForAudioDecoder(pPublisher, &pRecords->tAudio);
    STATS_PublishForMetadataDec(pPublisher, &pRecords->tMetadata);
    STATS_PublishForCBuffering(pPublisher, &pRecords->tBuffering);
    STATS_PublishForClockRecovery(pPublisher, &pRecords->tClockRecovery);
    STATS_PublishForDecoderUsage(pPublisher, &pRecords->tUsage);
}

#endif
