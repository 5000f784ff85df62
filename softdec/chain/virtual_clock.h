/**
 * @file virtual_clock.h
 * The one clock of a decoding chain. It stands at the arrival of what is being received, so that a capture gives the same
 * records whenever and however fast it is read.
 */
#ifndef SOFTDEC_CHAIN_VIRTUAL_CLOCK_H
#define SOFTDEC_CHAIN_VIRTUAL_CLOCK_H

#include <algorithm>
#include <cstdint>
#include <ctime>

namespace softdec
{

/** A moment [ns since the epoch, UTC] or a time span [ns]. */
using Nanoseconds = std::int64_t;

inline constexpr Nanoseconds microsecond = 1'000;
inline constexpr Nanoseconds millisecond = 1'000'000;
inline constexpr Nanoseconds second = 1'000'000'000;

/** A clock that its owner sets and that never goes back. */
class VirtualClock
{
public:
    /** Goes to a moment; one in the past changes nothing, as packets may be stamped out of order. */
    void advance_to(Nanoseconds moment) { now_ = std::max(now_, moment); }

    /** The moment at which it stands; 0 = never set. */
    Nanoseconds now() const { return now_; }

    /** The same moment as an event time of the records [epoch s]. */
    std::time_t seconds() const { return static_cast<std::time_t>(now_ / second); }

private:
    Nanoseconds now_ = 0;
};

} // namespace softdec

#endif
