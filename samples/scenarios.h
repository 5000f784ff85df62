/**
 * @file scenarios.h
 * The fill functions behind samples_scenarios, one a file, and what they share.
 */
#ifndef SCENARIOS_H
#define SCENARIOS_H

#include "samples.h"

void samples_fill_live_srt_1080i(SAMPLES_RECORDS* pRecords, time_t tNow);
void samples_fill_rtp_fec_2160p(SAMPLES_RECORDS* pRecords, time_t tNow);
void samples_fill_trouble(SAMPLES_RECORDS* pRecords, time_t tNow);
void samples_fill_resolving(SAMPLES_RECORDS* pRecords, time_t tNow);
void samples_fill_idle(SAMPLES_RECORDS* pRecords, time_t tNow);
void samples_fill_extreme(SAMPLES_RECORDS* pRecords, time_t tNow);

/** Buffer descriptors of each metadata channel. */
#define SAMPLES_DESCRIPTORS 32

/**
 * Makes a metadata channel that has received nothing.
 * @param szName name of the channel, at most 7 characters
 * @param enType kind of metadata
 */
SMGR_METADATADEC_CHANNEL_STATS samples_idle_channel(const char* szName, SMGR_METADATA_CHANNEL_TYPE enType);

/**
 * Zeroes every byte of the records that belongs to no member. Assigning a structure leaves such bytes unspecified, and
 * records of one scenario and moment must be equal as memory. Each fill function ends with it.
 * @param pRecords filled records, not NULL
 */
void samples_clear_padding(SAMPLES_RECORDS* pRecords);

#endif
