/**
 * @file bit_reader.h
 * Reads the syntax elements of ITU-T H.264 (clause 7.2 and 9.1) and H.265 from a NAL unit.
 */
#ifndef SOFTDEC_FRAMER_BIT_READER_H
#define SOFTDEC_FRAMER_BIT_READER_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace softdec
{

/** Removes the emulation prevention bytes of a NAL unit. @param limit bytes of the result that are wanted at most */
inline std::vector<std::uint8_t> unescape(std::span<const std::uint8_t> unit, std::size_t limit)
{
    std::vector<std::uint8_t> bytes;
    bytes.reserve(unit.size() < limit ? unit.size() : limit);
    unsigned zeros = 0;
    for (const std::uint8_t byte : unit)
    {
        if (bytes.size() == limit) break;
        if (zeros >= 2 && byte == 3)
        {
            zeros = 0;
            continue;
        }
        zeros = byte == 0 ? zeros + 1 : 0;
        bytes.push_back(byte);
    }
    return bytes;
}

/** Reads bits. Behind the end there are zeros, and overrun() tells. */
class BitReader
{
public:
    explicit BitReader(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}

    /** u(n) with n up to 32. */
    std::uint32_t bits(unsigned count)
    {
        std::uint32_t value = 0;
        for (; count > 0; --count) value = value << 1 | static_cast<std::uint32_t>(bit());
        return value;
    }

    bool flag() { return bit() != 0; }

    void skip(std::size_t count)
    {
        position_ += count;
        if (position_ > bytes_.size() * 8) overrun_ = true;
    }

    /** ue(v); one of more than 32 bits is an overrun. */
    std::uint32_t unsigned_golomb()
    {
        unsigned zeros = 0;
        while (!overrun_ && bit() == 0) ++zeros;
        if (zeros > 31) overrun_ = true;
        if (overrun_) return 0;
        return ((1U << zeros) - 1) + bits(zeros);
    }

    /** se(v). */
    std::int32_t signed_golomb()
    {
        const std::uint32_t code = unsigned_golomb();
        const auto magnitude = static_cast<std::int32_t>(code / 2 + code % 2);
        return code % 2 == 1 ? magnitude : -magnitude;
    }

    bool overrun() const { return overrun_; }
    std::size_t position() const { return position_; }
    std::size_t remaining() const { return overrun_ ? 0 : bytes_.size() * 8 - position_; }

private:
    unsigned bit()
    {
        if (position_ >= bytes_.size() * 8)
        {
            overrun_ = true;
            return 0;
        }
        const unsigned value = bytes_[position_ / 8] >> (7 - position_ % 8) & 1U;
        ++position_;
        return value;
    }

    std::span<const std::uint8_t> bytes_;
    std::size_t position_ = 0; // [bits]
    bool overrun_ = false;
};

} // namespace softdec

#endif
