/* Compiles if every record and every enumerator is what it has to be; layout_check.cpp includes it as C++. */
#include <stddef.h>

#include "qrversioninfo.h"
#include "stats.h"
#include "video_formats.h"

#define RECORD(record, size)         XTYPES_ASSERT(sizeof(record) == (size), "size of " #record);
#define FIELD(record, field, offset) XTYPES_ASSERT(offsetof(record, field) == (offset), "offset of " #record "." #field);
#include "record_layout.inc"

#define VALUE(name, value)          XTYPES_ASSERT((name) == (value), #name);
#define UNSIGNED_VALUE(name, value) XTYPES_ASSERT((name) == (value), #name);
#include "enumerators.inc"

#define ENUMERATION(type) XTYPES_ASSERT(sizeof(type) == 4, "width of " #type);
ENUMERATION(STATS_LEVEL)
ENUMERATION(SMGR_TDEMUX_DATA_TYPE)
ENUMERATION(SMGR_TDEMUX_COMPRESSION_TYPE)
ENUMERATION(SMGR_VIDEO_COLOR_TYPE)
ENUMERATION(SMGR_FEC_TYPE)
ENUMERATION(SMGR_TDEMUX_STATS_STATE)
ENUMERATION(SMGR_STREAM_SRT_KM_S)
ENUMERATION(SMGR_VFRAMER_STATE)
ENUMERATION(SMGR_VFRAMER_HDR_TYPE)
ENUMERATION(SMGR_VCUDEC_STATE)
ENUMERATION(SMGR_VCUDEC_PICSTRUCTURE)
ENUMERATION(SMGR_METADATA_STATE)
ENUMERATION(SMGR_METADATA_CHANNEL_TYPE)
ENUMERATION(SMGR_CBUFFERING_STATUS)
ENUMERATION(SMGR_AUDDEC_STATE)

XTYPES_ASSERT(sizeof(SMGR_COUNTER) == 8, "width of SMGR_COUNTER");
XTYPES_ASSERT(sizeof(QRVERSIONINFO_SIGNATURE) == 17, "the signature has 16 characters");
