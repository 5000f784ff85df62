/**
 * @file units.h
 * The closed list of units, and the base unit that each has among the metrics.
 */
#ifndef DICTIONARY_UNITS_H
#define DICTIONARY_UNITS_H

#include <cstdint>
#include <string_view>

namespace dictionary
{

/** A unit. */
struct Unit
{
    std::string_view name;
    std::string_view base = {}; /**< of its metrics, the end of their names; empty = they have none */
    std::uint32_t multiply = 1; /**< base = value * multiply / divide */
    std::uint32_t divide = 1;   /**< */
};

inline constexpr Unit units[] = {
    {""},
    // time
    {"s", "seconds"},
    {"ms", "seconds", 1, 1'000},
    {"us", "seconds", 1, 1'000'000},
    {"90 kHz ticks", "seconds", 1, 90'000},
    {"epoch s", "seconds"},
    {"epoch s and ns", "seconds"},
    {"h"},
    {"min"},
    {"time base units"},
    // data
    {"bytes", "bytes"},
    {"bits"},
    {"bit/s", "bytes_per_second", 1, 8},
    {"kbit/s", "bytes_per_second", 125, 1},
    // rates and shares
    {"Hz", "hertz"},
    {"frames/s", "hertz"},
    {"%", "ratio", 1, 100},
    {"ppm", "ratio", 1, 1'000'000},
    // picture
    {"pixels", "pixels"},
    {"lines", "lines"},
    // counts
    {"packets"},
    {"pictures"},
    {"frames"},
    {"fields"},
    {"slices"},
    {"NAL units"},
    {"streams"},
    {"segments"},
    {"connections"},
    {"markers"},
    {"requests"},
    {"errors"},
    {"overflows"},
    {"resets"},
    {"calls"},
    {"images"},
    {"events"},
    {"buffers"},
    {"descriptors"},
    {"channels"},
    {"pairs"},
    {"columns"},
    {"rows"},
    {"samples"},
    {"updates"},
    {"changes"},
    {"switches"},
    {"count"},
    // names
    {"id"},
    {"PID"},
    {"port"},
    {"index"},
    {"pair number"},
    // others
    {"digits"},
};

} // namespace dictionary

#endif
