/**
 * @file difference.h
 * What has changed between two Snapshots, for people and for programs.
 */
#ifndef VIEWS_DIFFERENCE_H
#define VIEWS_DIFFERENCE_H

#include <string>
#include <string_view>

#include "comparison.h"

namespace views
{

/** The version of the JSON. */
inline constexpr std::string_view difference_schema_id = "decstats-diff/1";

/**
 * A line about the two moments, lines about restarts and resets, and a table of the changed fields: old and new value, difference
 * and rate. A side without a value is "-"; where neither has one, the numbers of the records stand there.
 */
std::string difference_lines(const Comparison& comparison);

/** The same as one line of JSON, with the values of "show --raw" beside those of "show". @return without the newline at its end */
std::string difference_json(const Comparison& comparison);

/** A rate on average as people read it: 0.033, 25.00, 1036. */
std::string rate_text(double rate);

} // namespace views

#endif
