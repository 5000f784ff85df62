#include "fec/rtp_receiver.h"

#include <algorithm>
#include <bitstream/ietf/rtp.h>

#include "input/rtp.h"

namespace softdec
{

namespace
{

/** Packets ahead of the newest that an outage may have cost; further ahead, or this far back, the sender has begun anew. */
constexpr std::int64_t longest_gap = 0x4000;
constexpr std::int64_t longest_delay = 0x400;

/** Packets that a matrix has at most. */
constexpr std::int64_t standard_matrix = 100;

} // namespace

void RtpReceiver::receive(const Datagram& datagram)
{
    if (datagram.channel == Channel::media)
        receive_media(datagram);
    else
        receive_fec(datagram);
}

void RtpReceiver::receive_media(const Datagram& datagram)
{
    if (is_rtcp(datagram.bytes)) return;
    const auto packet = parse_rtp(datagram.bytes);
    if (!packet)
    {
        ++counts_.invalid;
        return;
    }
    if (!started_)
    {
        started_ = true;
        newest_ = next_ = packet->sequence;
        first_arrival_ = datagram.arrival.value_or(0);
    }
    const std::int64_t sequence = extend_sequence(packet->sequence, newest_);
    if (restarted(sequence)) return;
    if (sequence < next_ || media_.contains(sequence)) return; // too late, or a second time

    ++counts_.media;
    const auto bytes = datagram.bytes.subspan(RTP_HEADER_SIZE);
    Media& media = media_[sequence];
    media.bytes.assign(bytes.begin(), bytes.end());
    media.payload_at = static_cast<std::size_t>(packet->payload.data() - bytes.data());
    media.payload_size = packet->payload.size();
    media.arrival = datagram.arrival;
    held_bytes_ += media.payload_size;
    last_arrival_ = datagram.arrival.value_or(0);
    newest_ = std::max(newest_, sequence);
    fec_changed_ = true;
    pass_on();
}

/** Two packets in a row from elsewhere in the number space are a sender that has begun anew; one alone is a stray. */
bool RtpReceiver::restarted(std::int64_t sequence)
{
    if (sequence - newest_ < longest_gap && newest_ - sequence < longest_delay)
    {
        restart_candidate_.reset();
        return false;
    }
    if (!restart_candidate_ || sequence != *restart_candidate_ + 1)
    {
        restart_candidate_ = sequence;
        return true;
    }
    finish();
    media_.clear();
    fec_.clear();
    restart_candidate_.reset();
    newest_ = next_ = sequence;
    return false;
}

void RtpReceiver::receive_fec(const Datagram& datagram)
{
    const auto rtp = parse_rtp(datagram.bytes);
    auto packet = rtp ? parse_fec(rtp->payload, newest_) : std::nullopt;
    if (!packet || packet->row != (datagram.channel == Channel::row_fec))
    {
        // Without FEC its ports may be another stream's.
        const bool expected = (datagram.channel == Channel::row_fec ? counts_.row_fec : counts_.column_fec) != 0;
        if (expected && !is_rtcp(datagram.bytes)) ++counts_.invalid;
        return;
    }
    if (packet->row)
    {
        ++counts_.row_fec;
        counts_.missing_row += missing_row_.arrived(rtp->sequence);
    }
    else
    {
        ++counts_.column_fec;
        counts_.missing_column += missing_column_.arrived(rtp->sequence);
    }
    learn_matrix(*packet);
    if (!started_ || packet->last() < next_) return;
    fec_.push_back(std::move(*packet));
    fec_changed_ = true;
    pass_on();
}

void RtpReceiver::learn_matrix(const FecPacket& packet)
{
    if (packet.row)
    {
        counts_.columns = static_cast<int>(packet.count);
        return;
    }
    counts_.columns = static_cast<int>(packet.step);
    counts_.rows = static_cast<int>(packet.count);
    // Columns that are not aligned each begin a row later than the one before.
    const std::int64_t distance = packet.first - last_column_first_;
    if (distance == 1) counts_.block_aligned = true;
    if (distance == packet.step + 1) counts_.block_aligned = false;
    last_column_first_ = packet.first;
}

/** How far the newest packet may be ahead of a missing one before nothing can bring it back [packets]. */
std::int64_t RtpReceiver::patience() const
{
    // The FEC packets of a matrix are sent while the next one is. Until the matrix is known, it may be the largest of the standard;
    // without FEC in that time there is none.
    const bool may_have_fec = counts_.row_fec != 0 || counts_.media < 2 * standard_matrix;
    const std::int64_t matrix = counts_.rows != 0 ? std::int64_t{counts_.columns} * counts_.rows : may_have_fec ? standard_matrix : 0;
    return 2 * matrix + reorder_allowance;
}

Nanoseconds RtpReceiver::longest_hold() const
{
    if (counts_.media < 2) return 0;
    const Nanoseconds interval = (last_arrival_ - first_arrival_) / static_cast<Nanoseconds>(counts_.media - 1);
    return interval * (counts_.rows != 0 ? patience() : reorder_allowance);
}

void RtpReceiver::pass_on_next()
{
    const Media& media = media_.at(next_);
    held_bytes_ -= media.payload_size;
    output_(std::span(media.bytes).subspan(media.payload_at, media.payload_size), media.arrival);
    ++next_;
}

void RtpReceiver::pass_on()
{
    while (next_ <= newest_)
    {
        if (media_.contains(next_))
            pass_on_next();
        else if (overdue(next_) && recover())
            continue;
        else if (finishing_ || newest_ - next_ > patience())
        {
            ++counts_.missing;
            ++counts_.lost;
            ++next_;
        }
        else
            break;
    }
    std::erase_if(fec_, [this](const FecPacket& packet) { return packet.last() < next_; });
    std::int64_t needed = next_;
    for (const FecPacket& packet : fec_) needed = std::min(needed, packet.first);
    // FEC that is still to come protects packets of the matrix that is being received and of the one before.
    needed = std::min(needed, next_ - patience());
    media_.erase(media_.begin(), media_.lower_bound(needed));
}

/** Rebuilds whatever is overdue and can be, until nothing more can. @return whether the next packet to pass on is there now */
bool RtpReceiver::recover()
{
    if (!fec_changed_) return false;
    const auto bytes_of = [this](std::int64_t sequence) -> std::optional<std::span<const std::uint8_t>>
    {
        const auto found = media_.find(sequence);
        if (found == media_.end()) return std::nullopt;
        return std::span<const std::uint8_t>(found->second.bytes);
    };
    for (bool progress = true; progress;)
    {
        progress = false;
        for (const FecPacket& packet : fec_)
        {
            std::int64_t missing = 0;
            int missing_count = 0;
            for (std::int64_t i = 0; i < packet.count && missing_count < 2; ++i)
            {
                const std::int64_t sequence = packet.first + packet.step * i;
                if (media_.contains(sequence)) continue;
                missing = sequence;
                ++missing_count;
            }
            if (missing_count != 1 || missing < next_ || missing > newest_ || !overdue(missing)) continue;
            auto bytes = packet.rebuild(missing, bytes_of);
            if (!bytes) continue;
            ++counts_.missing;
            ++counts_.recovered;
            held_bytes_ += bytes->size();
            const std::size_t size = bytes->size();
            media_[missing] = {.bytes = std::move(*bytes), .payload_at = 0, .payload_size = size, .arrival = std::nullopt};
            progress = true;
        }
    }
    fec_changed_ = false;
    return media_.contains(next_);
}

void RtpReceiver::finish()
{
    finishing_ = true;
    fec_changed_ = true;
    pass_on();
    finishing_ = false;
    counts_.missing_column += missing_column_.finish();
    counts_.missing_row += missing_row_.finish();
}

} // namespace softdec
