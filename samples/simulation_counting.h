/**
 * @file simulation_counting.h
 * How a simulation counts: shared by its sources.
 */
#ifndef SIMULATION_COUNTING_H
#define SIMULATION_COUNTING_H

#include <algorithm>
#include <chrono>
#include <climits>
#include <cmath>

namespace samples
{

using std::chrono::nanoseconds;

inline constexpr long ticks_per_ms = 90;
inline constexpr unsigned long ticks_wrap = 1UL << 33; /**< width of PTS and PCR, ISO/IEC 13818-1 */
inline constexpr double arrival_jitter = 0.008;        /**< of what the network delivers [s] */

/** Adds to a counter, and sets its time where something was counted. Fields of packed records take no references. */
#define COUNT(record, number, time, n)                                               \
    do                                                                               \
    {                                                                                \
        if (const long counted_ = (n); counted_ > 0)                                 \
        {                                                                            \
            (record).number += static_cast<decltype((record).number + 0)>(counted_); \
            (record).time = now_s_;                                                  \
        }                                                                            \
    } while (false)

/** Lifts a maximum to its gauge. */
#define RAISE(record, gauge, maximum, time)    \
    do                                         \
    {                                          \
        if ((record).gauge > (record).maximum) \
        {                                      \
            (record).maximum = (record).gauge; \
            (record).time = now_s_;            \
        }                                      \
    } while (false)

/** Lowers a minimum to its gauge. */
#define LOWER(record, gauge, minimum, time)    \
    do                                         \
    {                                          \
        if ((record).gauge < (record).minimum) \
        {                                      \
            (record).minimum = (record).gauge; \
            (record).time = now_s_;            \
        }                                      \
    } while (false)

/** The whole part of what is due. @param due what is left over from before, and afterwards */
inline long take(double& due, double amount)
{
    due += amount;
    const long whole = static_cast<long>(std::floor(std::max(due, 0.0)));
    due -= static_cast<double>(whole);
    return whole;
}

inline double seconds_of(nanoseconds duration)
{
    return std::chrono::duration<double>(duration).count();
}

inline unsigned long wrapped(long ticks)
{
    return static_cast<unsigned long>(ticks) % ticks_wrap;
}

/** A sum of ints, at most the largest: a counter of 32 bits stays there. */
inline int sum(int counter, long n)
{
    return static_cast<int>(std::min<long>(counter + n, INT_MAX));
}

} // namespace samples

#endif
