// The calls that the reports make, recorded and written as straight-line sources by record_calls.
#ifndef REPLAYS_H
#define REPLAYS_H

#include <array>
#include <ostream>
#include <tuple>

#include "all_reports.h"

/** The samples that are measured, and the levels. */
inline constexpr std::array<const char*, 2> measured_samples = {"live-srt-1080i", "trouble"};
inline constexpr std::array<std::tuple<const char*, STATS_LEVEL>, 2> measured_levels = {{
    {"default", STATS_LEVEL_DEFAULT},
    {"debug", STATS_LEVEL_DEBUG},
}};

/** One report's text, made in other ways from the same arguments: texts that are ready, and numbers. */
struct Replay
{
    void (*floor)();                         /**< the report's own calls, on stdout */
    void (*fmt)();                           /**< the same through {fmt} with compiled formats, on stdout */
    void (*iostreams)(std::ostream& stream); /**< the same through a stream */
};

/** By sample, then by level, then by report. */
extern const Replay replays[];

#endif
