// The layout of the records is the interface with the session manager: what a change here would break is checked here.

#include <cstddef>

#include "stats.h"

static_assert(sizeof(SMGR_DECODER_SDI_USAGE_STATS) == 144);
static_assert(sizeof(SMGR_IP_ADDRESS) == 532);
static_assert(sizeof(SMGR_TDEMUX_SOURCE_COUNTERS) == 92);
static_assert(sizeof(SMGR_TDEMUX_SOURCE_STATS) == 136);
static_assert(sizeof(SMGR_TDEMUX_COUNTERS) == 456);
static_assert(sizeof(SMGR_STREAM_SRT_STATS) == 148);
static_assert(sizeof(SMGR_STREAM_PMFECRX_STATS) == 48);
static_assert(sizeof(SMGR_TDEMUX_STATS) == 3092);
static_assert(sizeof(SMGR_VFRAMER_STREAM_PROPS) == 188);
static_assert(sizeof(SMGR_VFRAMER_COUNTERS) == 864);
static_assert(sizeof(SMGR_VFRAMER_STATS) == 1252);
static_assert(sizeof(SMGR_VCUDEC_COUNTERS) == 648);
static_assert(sizeof(SMGR_VCUDEC_STATS) == 856);
static_assert(sizeof(SMGR_METADATADEC_CHANNEL_COUNTERS) == 356);
static_assert(sizeof(SMGR_METADATADEC_CHANNEL_STATS) == 376);
static_assert(sizeof(SMGR_METADATADEC_TC_VALUE) == 20);
static_assert(sizeof(SMGR_METADATADEC_COUNTERS) == 28);
static_assert(sizeof(SMGR_METADATADEC_STATS) == 1544);
static_assert(sizeof(SMGR_CBUFFERING_MULTISYNC_COUNTERS) == 32);
static_assert(sizeof(SMGR_CBUFFERING_MULTISYNC_STATS) == 68);
static_assert(sizeof(SMGR_CBUFFERING_AUTOMATIC_STATS) == 104);
static_assert(sizeof(SMGR_CBUFFERING_CHANNEL_COUNTERS) == 20);
static_assert(sizeof(SMGR_CBUFFERING_CHANNEL_STATS) == 76);
static_assert(sizeof(SMGR_CBUFFERING_COUNTERS) == 244);
static_assert(sizeof(SMGR_CBUFFERING_STATS) == 1232);
static_assert(sizeof(SMGR_DECODER_CLOCK_RECOVERY_STATS) == 388);
static_assert(sizeof(SMGR_AUDIO_PAIR_STATS) == 296);
static_assert(sizeof(SMGR_DECODER_AUDIO_STATS) == 2512);

// Nested records, and the fields after which packing shows.
static_assert(offsetof(SMGR_TDEMUX_SOURCE_STATS, tCounters) == 40);
static_assert(offsetof(SMGR_STREAM_SRT_STATS, iReconnects) == 80);
static_assert(offsetof(SMGR_TDEMUX_STATS, tStreamAddress) == 24);
static_assert(offsetof(SMGR_TDEMUX_STATS, tSourceAddress) == 560);
static_assert(offsetof(SMGR_TDEMUX_STATS, nUpTimeInSecs) == 1096);
static_assert(offsetof(SMGR_TDEMUX_STATS, tSources) == 1128);
static_assert(offsetof(SMGR_TDEMUX_STATS, tCounters) == 2488);
static_assert(offsetof(SMGR_TDEMUX_STATS, Xport) == 2944);
static_assert(offsetof(SMGR_VFRAMER_STATS, tCurrentProperties) == 12);
static_assert(offsetof(SMGR_VFRAMER_STATS, tPreviousProperties) == 200);
static_assert(offsetof(SMGR_VFRAMER_STATS, tCounters) == 388);
static_assert(offsetof(SMGR_VCUDEC_STATS, tCounters) == 204);
static_assert(offsetof(SMGR_VCUDEC_STATS, bReordering) == 852);
static_assert(offsetof(SMGR_METADATADEC_CHANNEL_STATS, tCounters) == 20);
static_assert(offsetof(SMGR_METADATADEC_COUNTERS, tTCValue) == 8);
static_assert(offsetof(SMGR_METADATADEC_STATS, tChannel) == 12);
static_assert(offsetof(SMGR_METADATADEC_STATS, tCounters) == 1516);
static_assert(offsetof(SMGR_CBUFFERING_MULTISYNC_STATS, tCounters) == 36);
static_assert(offsetof(SMGR_CBUFFERING_CHANNEL_STATS, tCounters) == 56);
static_assert(offsetof(SMGR_CBUFFERING_STATS, tMultiSync) == 44);
static_assert(offsetof(SMGR_CBUFFERING_STATS, tAutomatic) == 112);
static_assert(offsetof(SMGR_CBUFFERING_STATS, tChannel) == 228);
static_assert(offsetof(SMGR_CBUFFERING_STATS, tCounters) == 988);
static_assert(offsetof(SMGR_DECODER_AUDIO_STATS, PairStats) == 144);
