/**
 * @file sequence.h
 * RTP sequence numbers without their wrap-around (RFC 3550), and what is missing among those of a stream.
 */
#ifndef SOFTDEC_FEC_SEQUENCE_H
#define SOFTDEC_FEC_SEQUENCE_H

#include <bitset>
#include <cstdint>
#include <optional>

namespace softdec
{

/** Packets that may overtake one another before a missing one counts as missing [packets]. */
inline constexpr std::int64_t reorder_allowance = 16;

/** The number nearest to a reference that ends in the 16 bits of a sequence number. */
constexpr std::int64_t extend_sequence(std::uint16_t sequence, std::int64_t reference)
{
    return reference + static_cast<std::int16_t>(static_cast<std::uint16_t>(sequence - static_cast<std::uint16_t>(reference)));
}

/** Counts what is missing of a stream of which nothing is rebuilt. */
class MissingCount
{
public:
    /** Takes the number of a packet that has arrived. @return packets that are now known to be missing */
    unsigned arrived(std::uint16_t sequence)
    {
        if (!newest_)
        {
            newest_ = sequence;
            seen_.set();
        }
        const std::int64_t number = extend_sequence(sequence, *newest_);
        unsigned missing = 0;
        if (number - *newest_ > restart || *newest_ - number > restart)
        {
            missing = finish(); // the sender has begun anew
            newest_ = number;
            seen_.set();
        }
        for (; *newest_ < number; ++*newest_) missing += shift();
        const std::int64_t age = *newest_ - number;
        if (age < reorder_allowance) seen_.set(static_cast<std::size_t>(age));
        return missing;
    }

    /** Nothing more will come. @return packets that are now known to be missing */
    unsigned finish()
    {
        const auto missing = static_cast<unsigned>(seen_.size() - seen_.count());
        seen_.set();
        return newest_ ? missing : 0;
    }

private:
    static constexpr std::int64_t restart = 0x1000;

    unsigned shift()
    {
        const bool oldest = seen_[seen_.size() - 1];
        seen_ <<= 1;
        return oldest ? 0 : 1;
    }

    std::optional<std::int64_t> newest_;
    std::bitset<static_cast<std::size_t>(reorder_allowance)> seen_; // the newest packet's bit is the first
};

} // namespace softdec

#endif
