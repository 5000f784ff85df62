/**
 * @file components.h
 * The components of a decoder: for each, its record in a sample and its report function.
 */
#ifndef COMPONENTS_H
#define COMPONENTS_H

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "samples.h"
#include "stats.h"

/** A component. */
struct Component
{
    std::string_view name;  /**< name on the command line */
    std::string_view title; /**< name in texts */
    std::size_t recordSize; /**< size of its record [bytes] */
    const char* function;   /**< name of its report function in the report library */

    /** The bytes of its record in a sample. */
    std::span<const std::byte> (*record)(const SAMPLES_RECORDS& records);

    /**
     * Prints its report.
     * @param function the report function as dlsym gave it, not NULL
     * @param record   recordSize bytes, of any alignment
     */
    void (*print)(void* function, std::span<const std::byte> record, STATS_LEVEL level);
};

/** All components, in the order in which their reports are printed. */
std::span<const Component> components();

/** The component of a name that is one of component_names(). */
const Component& component_of(std::string_view name);

/** The names of all components, in order. */
std::vector<std::string> component_names();

#endif
