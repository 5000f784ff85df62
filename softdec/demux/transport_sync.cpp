#include "demux/transport_sync.h"

namespace softdec
{

namespace
{

constexpr std::uint8_t sync_byte = 0x47;

} // namespace

void TransportSync::feed(std::span<const std::uint8_t> bytes, std::size_t distance)
{
    distance_ = distance;
    if (rest_.empty())
    {
        const std::size_t used = cut(bytes);
        rest_.assign(bytes.begin() + static_cast<std::ptrdiff_t>(used), bytes.end());
        return;
    }
    rest_.insert(rest_.end(), bytes.begin(), bytes.end());
    const std::size_t used = cut(rest_);
    rest_.erase(rest_.begin(), rest_.begin() + static_cast<std::ptrdiff_t>(used));
}

/** Cuts off what can be judged. @return bytes used */
std::size_t TransportSync::cut(std::span<const std::uint8_t> bytes)
{
    std::size_t at = 0;
    while (bytes.size() - at >= distance_)
    {
        // Out of step, a sync byte counts when another one follows it; the data may hold its value anywhere.
        const bool in_step = skipped_ % distance_ == 0;
        if (bytes[at] != sync_byte)
        {
            const bool next_in_step = bytes.size() - at > distance_ && bytes[at + distance_] == sync_byte;
            const std::size_t step = in_step && (next_in_step || bytes.size() - at == distance_) ? distance_ : 1;
            skip(step);
            at += step;
            continue;
        }
        if (!in_step)
        {
            if (bytes.size() - at <= distance_) break;
            if (bytes[at + distance_] != sync_byte)
            {
                skip(1);
                ++at;
                continue;
            }
        }
        skipped_ = 0;
        packet_(bytes.subspan(at).first<packet_size>());
        at += distance_;
    }
    return at;
}

void TransportSync::skip(std::size_t count)
{
    for (; count > 0; --count)
        if (skipped_++ % distance_ == 0) lost_();
}

void TransportSync::finish()
{
    // A stream may end within a packet, but not within anything else. What stands between packets need not follow the last one.
    const bool is_packet = !rest_.empty() && rest_[0] == sync_byte && skipped_ % distance_ == 0;
    if (is_packet && rest_.size() >= packet_size) packet_(std::span(rest_).first<packet_size>());
    if (!is_packet && !rest_.empty() && skipped_ == 0) lost_();
    rest_.clear();
    skipped_ = 0;
}

} // namespace softdec
