/**
 * @file bytes.h
 * Numbers and texts to bytes and back. Variable-length integers are LEB128: seven bits a byte, the lowest first, the top bit set
 * on all but the last. Signed ones are folded before, so that small ones of either sign are short: 0, -1, 1, -2 ... as 0, 1, 2, 3.
 */
#ifndef CAPTURE_BYTES_H
#define CAPTURE_BYTES_H

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace capture
{

static_assert(std::endian::native == std::endian::little, "numbers are copied as they stand in memory");

constexpr std::uint64_t fold(std::int64_t value)
{
    return static_cast<std::uint64_t>(value) << 1 ^ static_cast<std::uint64_t>(value >> 63);
}

constexpr std::int64_t unfold(std::uint64_t value)
{
    return static_cast<std::int64_t>(value >> 1 ^ (~(value & 1) + 1));
}

/** Sums and differences of what any file may say: what is beyond 64 bits wraps. */
constexpr std::int64_t sum(std::int64_t one, std::int64_t other)
{
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(one) + static_cast<std::uint64_t>(other));
}
constexpr std::int64_t difference(std::int64_t one, std::int64_t other)
{
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(one) - static_cast<std::uint64_t>(other));
}

/** Bytes that a variable-length integer takes. */
constexpr std::size_t length_of(std::uint64_t value)
{
    return (static_cast<std::size_t>(std::bit_width(value | 1)) + 6) / 7;
}

/** Bytes that are put together. */
class Output
{
public:
    template <typename T> void put(const T& value) { put_bytes(std::as_bytes(std::span(&value, 1))); }

    void put_bytes(std::span<const std::byte> more) { bytes_.insert(bytes_.end(), more.begin(), more.end()); }

    void put_varint(std::uint64_t value)
    {
        for (; value >= 0x80; value >>= 7) bytes_.push_back(static_cast<std::byte>(value | 0x80));
        bytes_.push_back(static_cast<std::byte>(value));
    }

    void put_text(std::string_view text)
    {
        put_varint(text.size());
        put_bytes(std::as_bytes(std::span(text)));
    }

    std::vector<std::byte>& bytes() { return bytes_; }
    const std::vector<std::byte>& bytes() const { return bytes_; }

private:
    std::vector<std::byte> bytes_;
};

/** Bytes that are taken apart. What is no longer there, or was never right, reads as 0, and ok() is false from then on. */
class Input
{
public:
    explicit Input(std::span<const std::byte> bytes) : rest_(bytes) {}

    template <typename T> T get()
    {
        T value = {};
        const std::span<const std::byte> bytes = get_bytes(sizeof value);
        if (ok_) std::memcpy(&value, bytes.data(), sizeof value);
        return value;
    }

    std::span<const std::byte> get_bytes(std::size_t size)
    {
        ok_ = ok_ && size <= rest_.size();
        if (!ok_) return {};
        const std::span<const std::byte> bytes = rest_.first(size);
        rest_ = rest_.subspan(size);
        return bytes;
    }

    std::uint64_t get_varint()
    {
        std::uint64_t value = 0;
        for (unsigned shift = 0; shift < 64; shift += 7)
        {
            const auto byte = static_cast<std::uint64_t>(get<std::uint8_t>());
            if (shift == 63 && byte > 1) break; // more than 64 bits
            value |= (byte & 0x7F) << shift;
            if ((byte & 0x80) == 0) return value;
        }
        ok_ = false;
        return 0;
    }

    std::string get_text()
    {
        const std::span<const std::byte> bytes = get_bytes(get_varint());
        return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
    }

    bool ok() const { return ok_; }
    bool empty() const { return rest_.empty(); }

private:
    std::span<const std::byte> rest_;
    bool ok_ = true;
};

} // namespace capture

#endif
