/**
 * @file ticks.h
 * Time stamps of ISO/IEC 13818-1 without their wrap-around: PTS, DTS and the base of the PCR have 33 bits at 90 kHz.
 */
#ifndef SOFTDEC_CLOCK_TICKS_H
#define SOFTDEC_CLOCK_TICKS_H

#include <cstdint>

#include "chain/virtual_clock.h"

namespace softdec
{

/** A time stamp or a difference of two [90 kHz ticks]; without wrap-around, so that it only grows while a stream goes on. */
using Ticks = std::int64_t;

inline constexpr Ticks ticks_per_second = 90'000;
inline constexpr Ticks ticks_per_millisecond = 90;
inline constexpr Ticks timestamp_range = Ticks{1} << 33;

/** The moment nearest to a reference that has a time stamp's 33 bits. */
constexpr Ticks extend_timestamp(std::uint64_t timestamp, Ticks reference)
{
    const auto bits = static_cast<std::uint64_t>(timestamp_range - 1);
    auto difference = static_cast<Ticks>((timestamp - static_cast<std::uint64_t>(reference)) & bits);
    if (difference >= timestamp_range / 2) difference -= timestamp_range;
    return reference + difference;
}

/** A moment as the 33 bits of a time stamp. */
constexpr std::uint64_t as_timestamp(Ticks ticks)
{
    return static_cast<std::uint64_t>(ticks) & static_cast<std::uint64_t>(timestamp_range - 1);
}

/**
 * What the time stamps of a stream count from. A stream may begin another one, and time goes on from one to the next: moments in both
 * compare.
 */
struct TimeBase
{
    unsigned number = 0; /**< from 1 on; 0 = no clock is known yet */
    Ticks offset = 0;    /**< what is added to its time stamps */

    /** The moment of a time stamp, the one nearest to a reference. */
    constexpr Ticks moment_of(std::uint64_t timestamp, Ticks reference) const
    {
        return extend_timestamp(timestamp, reference - offset) + offset;
    }

    /** The time stamp of a moment, as it stands in the stream. */
    constexpr std::uint64_t timestamp_of(Ticks moment) const { return as_timestamp(moment - offset); }
};

constexpr Nanoseconds nanoseconds(Ticks ticks)
{
    return ticks * 100'000 / 9;
}

constexpr Ticks ticks(Nanoseconds span)
{
    return span / 100'000 * 9 + span % 100'000 * 9 / 100'000; // moments since the epoch fit as well
}

constexpr int milliseconds(Ticks ticks)
{
    return static_cast<int>(ticks / ticks_per_millisecond);
}

} // namespace softdec

#endif
