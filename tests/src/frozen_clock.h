// The clock of the tests stands still, so that the time since an event is a fixed text.
#ifndef FROZEN_CLOCK_H
#define FROZEN_CLOCK_H

#include <ctime>

/** What time() returns [epoch s]: 2022-06-06 16:06:55 UTC. */
inline constexpr time_t frozen_now = 1654531615;

#endif
