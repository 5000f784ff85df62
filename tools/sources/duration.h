/**
 * @file duration.h
 * Durations as people write them.
 */
#ifndef SOURCES_DURATION_H
#define SOURCES_DURATION_H

#include <chrono>
#include <optional>
#include <string_view>

namespace sources
{

/**
 * Reads a duration.
 * @param text a number, with a fraction if there is one, and its unit: ms, s, m, h or d, as in 500ms, 1.5s, 10m
 * @return the duration, a hundred years at most; or nothing if the text is none
 */
std::optional<std::chrono::nanoseconds> parse_duration(std::string_view text);

} // namespace sources

#endif
