/**
 * @file history.h
 * The last minutes of a decoder in memory: every snapshot whole, as capture files hold them, some 300 bytes each.
 */
#ifndef SERVER_HISTORY_H
#define SERVER_HISTORY_H

#include <bitset>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "bytes.h"
#include "snapshot.h"
#include "value_codec.h"

namespace server
{

/** Snapshots of one decoder in the order in which they were taken. Used by one thread at a time. */
class History
{
public:
    History();

    /** Adds a snapshot. One that is not later than the last one begins anew: the clock was set back. */
    void add(const records::Snapshot& snapshot);

    /** Drops what is older than a moment [ns since the epoch, UTC], and the oldest above a size [bytes]. In steps of a minute. */
    void trim(std::int64_t oldest, std::size_t most_bytes);

    /** Moment of the first snapshot [ns since the epoch, UTC]; nothing = there is none. */
    std::optional<std::int64_t> first_moment() const;

    /** Hands out the snapshots of a time, both ends included [ns since the epoch, UTC]. */
    void read(std::int64_t from, std::int64_t to, const std::function<void(const records::Snapshot&)>& take) const;

    /** What the snapshots take [bytes]. */
    std::size_t size() const;

private:
    /** Snapshots that are alike in all but their values and moments. The first one needs no other. */
    struct Segment
    {
        std::string decoder;
        std::string host;
        std::optional<records::Instance> instance;
        std::bitset<records::component_count> present;
        std::bitset<1024> not_measured;
        std::vector<std::int64_t> moments;
        capture::Output values;
    };

    bool continues(const records::Snapshot& snapshot) const;
    static std::size_t size_of(const Segment& segment);

    capture::ValueCodec encoder_;
    std::deque<Segment> segments_;
};

} // namespace server

#endif
