#include "history.h"

#include <span>

#include "own_layouts.h"

namespace server
{

namespace
{

constexpr std::size_t longest_segment = 60; // [snapshots]

/** A codec of all records, each where Records has it. */
capture::ValueCodec codec()
{
    capture::ValueCodec codec;
    for (const records::Component& component : records::components())
        codec.add(capture::own_layouts().at(component.index).layout, component.offset);
    return codec;
}

} // namespace

History::History() : encoder_(codec()) {}

bool History::continues(const records::Snapshot& snapshot) const
{
    if (segments_.empty()) return false;
    const Segment& last = segments_.back();
    return last.moments.size() < longest_segment && last.instance == snapshot.instance && last.present == snapshot.present &&
           last.not_measured == snapshot.not_measured;
}

void History::add(const records::Snapshot& snapshot)
{
    if (!segments_.empty() && snapshot.taken_at <= segments_.back().moments.back()) segments_.clear();
    const bool is_whole = !continues(snapshot);
    if (is_whole)
    {
        if (!segments_.empty()) segments_.back().values.bytes().shrink_to_fit();
        segments_.push_back({.decoder = snapshot.decoder,
                             .host = snapshot.host,
                             .instance = snapshot.instance,
                             .present = snapshot.present,
                             .not_measured = snapshot.not_measured,
                             .moments = {},
                             .values = {}});
    }
    Segment& segment = segments_.back();
    segment.moments.push_back(snapshot.taken_at);
    encoder_.encode(std::as_bytes(std::span(&snapshot.records, 1)), is_whole, segment.values);
}

void History::trim(std::int64_t oldest, std::size_t most_bytes)
{
    while (!segments_.empty() && segments_.front().moments.back() < oldest) segments_.pop_front();
    while (segments_.size() > 1 && size() > most_bytes) segments_.pop_front();
}

std::optional<std::int64_t> History::first_moment() const
{
    if (segments_.empty()) return std::nullopt;
    return segments_.front().moments.front();
}

void History::read(std::int64_t from, std::int64_t to, const std::function<void(const records::Snapshot&)>& take) const
{
    if (segments_.empty()) return;
    capture::ValueCodec decoder = codec();
    records::Snapshot snapshot;
    for (const Segment& segment : segments_)
    {
        if (segment.moments.back() < from || segment.moments.front() > to) continue;
        snapshot.decoder = segment.decoder;
        snapshot.host = segment.host;
        snapshot.instance = segment.instance;
        snapshot.present = segment.present;
        snapshot.not_measured = segment.not_measured;
        capture::Input in(segment.values.bytes());
        for (std::size_t i = 0; i < segment.moments.size() && segment.moments[i] <= to; ++i)
        {
            if (!decoder.decode(in, i == 0, std::as_writable_bytes(std::span(&snapshot.records, 1)))) break;
            snapshot.taken_at = segment.moments[i];
            if (snapshot.taken_at >= from) take(snapshot);
        }
    }
}

std::size_t History::size_of(const Segment& segment)
{
    return sizeof(Segment) + segment.moments.capacity() * sizeof(std::int64_t) + segment.values.bytes().capacity();
}

std::size_t History::size() const
{
    std::size_t size = 0;
    for (const Segment& segment : segments_) size += size_of(segment);
    return size;
}

} // namespace server
