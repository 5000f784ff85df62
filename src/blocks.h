/*
 * The blocks of the reports, internal to the library. Each takes its part of a record and the report's level, and decides
 * for itself what it prints.
 */
#ifndef BLOCKS_H
#define BLOCKS_H

#include "stats.h"

/* Transport demux */
void _PrintTDemuxSRTStats(const SMGR_STREAM_SRT_STATS* pStats, STATS_LEVEL nLevel);
void _PrintTDemuxPMFECStats(const SMGR_STREAM_PMFECRX_STATS* pStats, STATS_LEVEL nLevel);
void _PrintTDemuxSource(const SMGR_TDEMUX_SOURCE_STATS* pStats, STATS_LEVEL nLevel);

/* Video framer */
void _PrintVFramerStreamProperties(const char* pTitle, const SMGR_VFRAMER_STREAM_PROPS* pProps, STATS_LEVEL nLevel);

/* Audio decoder; nPairID counts from 0 */
void _PrintAudioChannel(const SMGR_AUDIO_PAIR_STATS* pPair, UINT nPairID, STATS_LEVEL nLevel);

/* Metadata decoder */
BOOL _PrintMetadataChannel(const SMGR_METADATADEC_CHANNEL_STATS* pStats, STATS_LEVEL nLevel);

/* Buffering */
void _PrintCBufferingMultisyncStatistics(const SMGR_CBUFFERING_MULTISYNC_STATS* pStats, STATS_LEVEL nLevel);
void _PrintCBufferingAutomaticStatistics(const SMGR_CBUFFERING_AUTOMATIC_STATS* pStats);
void _PrintCBufferingChannels(const SMGR_CBUFFERING_STATS* pStats, STATS_LEVEL nLevel);

#endif
