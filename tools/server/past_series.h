/**
 * @file past_series.h
 * Fields over time, as they are collected.
 */
#ifndef SERVER_PAST_SERIES_H
#define SERVER_PAST_SERIES_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "parameters.h"
#include "snapshot.h"

namespace server
{

/** Fields over time. */
class PastSeries
{
public:
    explicit PastSeries(std::vector<NamedField> fields);

    /** Takes the next snapshot. One that is not later than the one before is left out. */
    void take(const records::Snapshot& snapshot);

    /** Takes a time in which nothing was taken [ns since the epoch, UTC]. */
    void take_gap(std::int64_t from, std::int64_t to);

    /** Moment of the last snapshot [ns since the epoch, UTC]; nothing = there is none. */
    std::optional<std::int64_t> last_moment() const;

    /** All as one line of JSON. @return without the newline at its end */
    std::string json(std::string_view decoder) const;

private:
    /** A value as JSON has it; empty = it has none. */
    static std::string value_json(const records::Snapshot& snapshot, const NamedField& field);

    std::vector<NamedField> fields_;
    std::vector<std::int64_t> moments_;
    std::vector<std::vector<std::string>> values_; // by field, then by moment
    std::vector<std::pair<std::int64_t, std::optional<records::Instance>>> instances_;
    std::vector<std::pair<std::int64_t, std::int64_t>> gaps_;
};

} // namespace server

#endif
