/**
 * @file series.h
 * A source that is looked at again and again.
 */
#ifndef SOURCES_SERIES_H
#define SOURCES_SERIES_H

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "snapshot.h"
#include "source.h"

namespace sources
{

/** What there is to see at one moment. */
struct Sight
{
    std::optional<records::Snapshot> snapshot; /**< nothing = there are no records now; a live decoder's tells whether it is up */
    std::string state;                         /**< how a live decoder stands, as "hung"; empty for other sources */
    std::string problem;                       /**< what is wrong, as a line for people; empty = nothing */
};

/** A source that is looked at again and again. */
class Series
{
public:
    virtual ~Series() = default;

    /**
     * Looks once more.
     * @param step how much later than the last time, where that can be chosen; a live decoder is looked at now
     * @return nothing = the source is at its end
     * @throw Failure if it cannot be read
     */
    virtual std::optional<Sight> next(std::chrono::nanoseconds step) = 0;
};

/**
 * Opens a source.
 * @throw Failure if there is no such source. A live decoder only has to be there: it may have no records yet
 */
std::unique_ptr<Series> open_series(const Source& source);

/**
 * Plays a range of a capture file back: a look is at the last snapshot of its moment or before, and the first look at the first snapshot.
 * Where nothing was captured for more than a minute, that time is skipped.
 * @throw Failure if the file cannot be read
 */
std::unique_ptr<Series> open_playback(const std::string& path, const Range& range = {});

} // namespace sources

#endif
