/**
 * @file moment.h
 * Moments: the present one, and those that people write.
 */
#ifndef SOURCES_MOMENT_H
#define SOURCES_MOMENT_H

#include <cstdint>
#include <optional>
#include <string_view>

namespace sources
{

/** The present moment [ns since the epoch, UTC]. */
std::int64_t present_moment();

/** The moment that a Snapshot is asked for. */
struct At
{
    /** [ns since the epoch, UTC]; nothing = when the record's file was last written */
    std::optional<std::int64_t> moment;
};

/** A part of time, both ends included [ns since the epoch, UTC]. */
struct Range
{
    std::optional<std::int64_t> from; /**< nothing = from the first moment on */
    std::optional<std::int64_t> to;   /**< nothing = to the last moment */

    bool is_given() const { return from || to; }
};

/**
 * Reads a moment.
 * @param text a date and time of RFC 3339 with its offset, seconds since the epoch, either with a fraction if there is one, or
 *             "mtime"; from 1970 to April 2262, which 64 bits of nanoseconds reach
 * @return the moment, or nothing if the text is none
 */
std::optional<At> parse_at(std::string_view text);

} // namespace sources

#endif
