/**
 * @file component.h
 * The eight components of a decoding chain, listed once: what each is called, which record it has and which function of the
 * report library prints it.
 */
#ifndef RECORDS_COMPONENT_H
#define RECORDS_COMPONENT_H

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "sessmgr_audio.h"
#include "sessmgr_types.h"
#include "stats.h"

namespace records
{

/** The records of one decoder, in the order in which their reports are printed. */
struct Records
{
    SMGR_TDEMUX_STATS tdemux;                         /**< transport demux */
    SMGR_VFRAMER_STATS vframer;                       /**< video framer */
    SMGR_VCUDEC_STATS vdecoder;                       /**< hardware video decoder */
    SMGR_DECODER_AUDIO_STATS audio;                   /**< audio decoder */
    SMGR_METADATADEC_STATS metadata;                  /**< metadata decoder */
    SMGR_CBUFFERING_STATS buffering;                  /**< buffering controller */
    SMGR_DECODER_CLOCK_RECOVERY_STATS clock_recovery; /**< clock recovery loop */
    SMGR_DECODER_SDI_USAGE_STATS usage;               /**< decoder usage */
};

/** A component. */
struct Component
{
    std::size_t index;       /**< place among components(), from 0 */
    std::string_view name;   /**< name on command lines and of record files: clock-recovery */
    std::string_view key;    /**< name in field names, JSON and metrics: clock_recovery */
    std::string_view title;  /**< name in texts: clock recovery */
    std::size_t record_size; /**< size of its record [bytes]; no two records have the same */
    std::size_t offset;      /**< offset of its record in Records [bytes] */
    const char* function;    /**< name of its report function in the report library */

    /**
     * Calls its report function.
     * @param address the function's address as dlsym gives it, not NULL
     * @param record  its record, aligned as the record's type asks
     * @return what the function returns
     */
    BOOL (*print)(void* address, const void* record, STATS_LEVEL level);
};

/** Number of components. */
inline constexpr std::size_t component_count = 8;

/** All components, in the order in which their reports are printed. */
std::span<const Component, component_count> components();

/** Finds a component. @param name its name or its key @return the component, or NULL if there is none of that name */
const Component* find_component(std::string_view name);

/** Finds the component whose record has a size. @param size [bytes] @return the component, or NULL */
const Component* find_component_of_size(std::size_t size);

/** The names of all components, in order. */
std::vector<std::string> component_names();

} // namespace records

#endif
