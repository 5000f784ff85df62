/* Compiles if every record and every enumerator is what it has to be; layout_check.cpp includes it as C++. */
#include <stddef.h>

#include "qrversioninfo.h"
#include "stats.h"
#include "video_formats.h"

/* What the dictionary knows of the records; abi.Complete holds the same list against abi/, which was worked out by hand. */
#define RECORD(record, size) XTYPES_ASSERT(sizeof(record) == (size), "size of " #record);
#define FIELD(record, field, offset, size)                                               \
    XTYPES_ASSERT(offsetof(record, field) == (offset), "offset of " #record "." #field); \
    XTYPES_ASSERT(sizeof(((record*)0)->field) == (size), "size of " #record "." #field);
#define VALUE(name, value) XTYPES_ASSERT((name) == (value), #name);
#include "header_checks.inc"

/* What no record holds. */
RECORD(QRVERSIONINFOBLOB, 274)
FIELD(QRVERSIONINFOBLOB, abSignature, 0, 16)
FIELD(QRVERSIONINFOBLOB, dwSize, 16, 4)
FIELD(QRVERSIONINFOBLOB, cMajor, 20, 1)
FIELD(QRVERSIONINFOBLOB, cMinor, 21, 1)
FIELD(QRVERSIONINFOBLOB, szRevision, 22, 12)
FIELD(QRVERSIONINFOBLOB, szDescription, 34, 64)
FIELD(QRVERSIONINFOBLOB, szCopyright, 98, 32)
FIELD(QRVERSIONINFOBLOB, szBuildIdentifier, 130, 32)
FIELD(QRVERSIONINFOBLOB, szBuildDate, 162, 16)
FIELD(QRVERSIONINFOBLOB, szBuildTime, 178, 16)
FIELD(QRVERSIONINFOBLOB, szNotes, 194, 80)
VALUE(STATS_LEVEL_DEFAULT, 0)
VALUE(STATS_LEVEL_DEBUG, 1)
VALUE(SMGR_DECSDI_BUFFERING_MIN, 0)
VALUE(SMGR_DECSDI_BUFFERING_MAX, 8)

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
