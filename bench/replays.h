// The calls that the reports make, recorded and written as straight-line sources by record_calls.
#ifndef REPLAYS_H
#define REPLAYS_H

#include <array>
#include <tuple>

#include "stats.h"

/** The samples that are measured, and the levels. */
inline constexpr std::array<const char*, 2> measured_samples = {"live-srt-1080i", "trouble"};
inline constexpr std::array<std::tuple<const char*, STATS_LEVEL>, 2> measured_levels = {{
    {"default", STATS_LEVEL_DEFAULT},
    {"debug", STATS_LEVEL_DEBUG},
}};

/** The reports' own calls on stdout, with texts that are ready: by sample, then by level, then by report. */
extern void (*const replays[])();

#endif
