#include "watched_decoder.h"

#include <utility>

#include "bounds.h"

namespace server
{

using std::chrono::steady_clock;

WatchedDecoder::WatchedDecoder(std::unique_ptr<Origin> origin) : origin_(std::move(origin)) {}

const SightPointer& WatchedDecoder::refresh(std::chrono::nanoseconds age)
{
    const steady_clock::time_point now = steady_clock::now();
    if (sight_ && now - seen_at_ < age) return sight_;
    sight_ = std::make_shared<const Sight>(origin_->look());
    seen_at_ = now;
    if (sight_->is_listed)
        gone_since_.reset();
    else if (!gone_since_)
        gone_since_ = now;
    return sight_;
}

SightPointer WatchedDecoder::sight()
{
    const std::scoped_lock lock(mutex_);
    return refresh(freshness);
}

void WatchedDecoder::look(std::size_t history_share)
{
    const std::scoped_lock lock(mutex_);
    const SightPointer sight = refresh({});
    std::int64_t last = sight->snapshot.taken_at;
    const auto take = [&](const records::Snapshot& snapshot)
    {
        last = snapshot.taken_at;
        // Of a host that hangs there is nothing new to remember, but something to say.
        if (sight->state != published::state_name(published::State::hung)) history_.add(snapshot);
        diagnosis_.take(snapshot);
    };
    origin_->follow(*sight, take);
    history_.trim(last - history_length.count(), history_share);
}

std::optional<steady_clock::time_point> WatchedDecoder::gone_since() const
{
    const std::scoped_lock lock(mutex_);
    return gone_since_;
}

std::string WatchedDecoder::findings() const
{
    const std::scoped_lock lock(mutex_);
    using published::State;
    const State state = sight_ ? sight_->listed.status.state : State::missing;
    return diagnosis_.json(state == State::live || state == State::hung); // that one hangs is a finding of now
}

std::optional<diagnosis::Result> WatchedDecoder::diagnosis() const
{
    const std::scoped_lock lock(mutex_);
    return diagnosis_.result();
}

void WatchedDecoder::read_history(std::int64_t from, std::int64_t to, const std::function<void(const records::Snapshot&)>& take) const
{
    const std::scoped_lock lock(mutex_);
    history_.read(from, to, take);
}

std::optional<std::int64_t> WatchedDecoder::first_moment() const
{
    const std::scoped_lock lock(mutex_);
    return history_.first_moment();
}

std::string WatchedDecoder::capture_file() const
{
    return origin_->capture_file();
}

} // namespace server
