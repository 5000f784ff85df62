/**
 * @file watch_lines.h
 * What there is to see of a decoder that is watched: lines with rates, and which of them have changed.
 */
#ifndef VIEWS_WATCH_LINES_H
#define VIEWS_WATCH_LINES_H

#include <span>
#include <string>
#include <vector>

#include "comparison.h"

namespace views
{

/** A line, without its newline. */
struct WatchLine
{
    std::string text;
    bool has_changed = false; /**< since the last look */
};

/**
 * Fields, one a line: name, value, unit, and for what has changed its rate or its difference.
 * @param comparison with the last look; NULL = this is the first one
 * @param fields     of any component; those of components that are not present have no value
 */
std::vector<WatchLine> field_watch_lines(const records::Snapshot& snapshot, const Comparison* comparison,
                                         std::span<const dictionary::Found> fields);

/**
 * A report, line by line. Counters have their rate behind them; a line has changed where a field that it shows has, not where
 * only an age has grown.
 * @param report     text of the report of a component
 * @param before     lines of the last report, as this function gave them
 * @param comparison with the last look; NULL = this is the first one
 */
std::vector<WatchLine> report_watch_lines(const records::Component& component, const std::string& report, std::span<const WatchLine> before,
                                          const Comparison* comparison);

} // namespace views

#endif
