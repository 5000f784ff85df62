/**
 * @file record_sizes.h
 * The components in the order of their reports, with the sizes of their records.
 */
#ifndef RECORD_SIZES_H
#define RECORD_SIZES_H

#include <array>
#include <cstddef>

#include "sessmgr_audio.h"
#include "sessmgr_types.h"

struct ComponentSize
{
    const char* name;
    std::size_t size;
};

constexpr std::array<ComponentSize, 8> componentSizes = {{
    {"tdemux", sizeof(SMGR_TDEMUX_STATS)},
    {"vframer", sizeof(SMGR_VFRAMER_STATS)},
    {"vdecoder", sizeof(SMGR_VCUDEC_STATS)},
    {"audio", sizeof(SMGR_DECODER_AUDIO_STATS)},
    {"metadata", sizeof(SMGR_METADATADEC_STATS)},
    {"buffering", sizeof(SMGR_CBUFFERING_STATS)},
    {"clock-recovery", sizeof(SMGR_DECODER_CLOCK_RECOVERY_STATS)},
    {"usage", sizeof(SMGR_DECODER_SDI_USAGE_STATS)},
}};

#endif
