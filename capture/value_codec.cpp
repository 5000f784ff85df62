#include "value_codec.h"

#include <algorithm>

#include "type.h"

namespace capture
{

namespace
{

using dictionary::Type;

/** A number of so many bytes, from a wider one: what lies beyond them wraps away. */
std::int64_t wrapped(std::int64_t number, std::size_t size)
{
    switch (size)
    {
    case 1: return static_cast<std::int8_t>(number);
    case 4: return static_cast<std::int32_t>(number);
    default: return number;
    }
}

std::int64_t load(const std::byte* bytes, std::size_t size)
{
    const auto of_type = [bytes]<typename T>(T number)
    {
        std::memcpy(&number, bytes, sizeof number);
        return std::int64_t{number};
    };
    switch (size)
    {
    case 1: return of_type(std::int8_t{});
    case 4: return of_type(std::int32_t{});
    default: return of_type(std::int64_t{});
    }
}

void store(std::int64_t number, std::byte* bytes, std::size_t size)
{
    std::memcpy(bytes, &number, size);
}

/** What a surprise costs, in sixteenths of a byte: itself, and that its place is told. */
unsigned cost_of(std::int64_t surprise)
{
    return surprise == 0 ? 0 : static_cast<unsigned>(16 * (1 + length_of(fold(surprise))));
}

/** Length without the zeros at the end. */
std::size_t used_length(std::span<const std::byte> bytes)
{
    std::size_t length = bytes.size();
    while (length > 0 && bytes[length - 1] == std::byte{0}) --length;
    return length;
}

/** Size of the numbers of a type, or 0 where its values are bytes. */
std::size_t number_size(const dictionary::LayoutRow& row)
{
    switch (static_cast<Type>(row.type))
    {
    case Type::i32:
    case Type::u32:
    case Type::f32: return row.size == 4 ? 4 : 0;
    case Type::i64:
    case Type::u64: return row.size == 8 ? 8 : 0;
    case Type::u8: return row.size == 1 ? 1 : 0;
    case Type::timespec: return row.size == 16 ? 8 : 0;
    default: return 0;
    }
}

} // namespace

void ValueCodec::add_value(std::size_t offset, std::size_t size, bool is_number)
{
    values_.push_back({.offset = static_cast<std::uint32_t>(offset), .size = static_cast<std::uint32_t>(size), .is_number = is_number});
}

bool ValueCodec::add(const dictionary::RecordLayout& layout, std::size_t base)
{
    for (const dictionary::LayoutRow& row : layout.rows)
    {
        const std::size_t number = number_size(row);
        for (std::size_t i = 0; i < row.count; ++i)
        {
            if (values_.size() + 2 > most_values) return false;
            const std::size_t offset = base + row.offset + i * row.stride;
            if (number == 0)
                add_value(offset, row.size, false);
            else
                for (std::size_t part = 0; part < row.size; part += number) add_value(offset + part, number, true);
        }
    }
    return true;
}

void ValueCodec::restart()
{
    for (Value& value : values_)
    {
        value.unexpected = false;
        value.cost = value.cost_of_trend = 0;
        value.last = value.change = 0;
    }
}

std::int64_t ValueCodec::expected_change(const Value& value)
{
    return value.cost_of_trend < value.cost ? value.change : 0;
}

/** What both sides conclude from a number. A whole snapshot says nothing of changes. */
void ValueCodec::learn(Value& value, std::int64_t number, bool whole)
{
    if (!whole)
    {
        const std::int64_t change = wrapped(difference(number, value.last), value.size);
        const std::int64_t change_of_change = wrapped(difference(change, value.change), value.size);
        if (change != 0 || change_of_change != 0)
        {
            value.cost = static_cast<std::uint16_t>(value.cost - value.cost / 8 + cost_of(change));
            value.cost_of_trend = static_cast<std::uint16_t>(value.cost_of_trend - value.cost_of_trend / 8 + cost_of(change_of_change));
        }
        value.change = change;
    }
    value.last = number;
}

void ValueCodec::encode(std::span<const std::byte> image, bool whole, Output& out)
{
    if (whole)
    {
        restart();
        last_image_.assign(image.size(), std::byte{0});
    }
    surprises_.clear();
    turned_.clear();
    for (std::size_t i = 0; i < values_.size(); ++i)
    {
        Value& value = values_[i];
        const std::byte* bytes = image.data() + value.offset;
        std::int64_t surprise = 0;
        if (value.is_number)
        {
            const std::int64_t number = load(bytes, value.size);
            const bool stays = number == value.last && value.change == 0; // as most do, and nothing is learned from that
            if (!stays)
            {
                surprise = wrapped(difference(number, sum(value.last, expected_change(value))), value.size);
                learn(value, number, whole);
            }
        }
        else
            surprise = std::memcmp(bytes, last_image_.data() + value.offset, value.size) != 0 ? 1 : 0;

        const bool is_unexpected = surprise != 0;
        if (is_unexpected) surprises_.push_back({i, surprise});
        if (is_unexpected != value.unexpected) turned_.push_back(i);
        value.unexpected = is_unexpected && !whole; // what a whole one is made of says nothing of the next change
    }
    put_turned(out);
    for (const Surprise& one : surprises_)
    {
        const Value& value = values_[one.place];
        if (value.is_number)
            out.put_varint(fold(one.surprise));
        else
        {
            const std::span<const std::byte> bytes = image.subspan(value.offset, value.size);
            const std::size_t length = used_length(bytes);
            out.put_varint(length);
            out.put_bytes(bytes.first(length));
        }
    }
    std::copy(image.begin(), image.end(), last_image_.begin()); // not std::ranges::copy, which libstdc++ 12 makes byte by byte of this
}

bool ValueCodec::decode(Input& in, bool whole, std::span<std::byte> image)
{
    if (whole)
    {
        restart();
        std::ranges::fill(image, std::byte{0});
    }
    if (!get_turned(in)) return false;
    for (Value& value : values_)
    {
        std::byte* bytes = image.data() + value.offset;
        if (value.is_number)
        {
            if (!value.unexpected && value.change == 0) continue; // it stays
            const std::int64_t surprise = value.unexpected ? unfold(in.get_varint()) : 0;
            const std::int64_t number = wrapped(sum(sum(value.last, expected_change(value)), surprise), value.size);
            if (number != value.last) store(number, bytes, value.size);
            learn(value, number, whole);
        }
        else if (value.unexpected)
        {
            const std::size_t length = in.get_varint();
            if (length > value.size) return false;
            const std::span<const std::byte> used = in.get_bytes(length);
            std::ranges::copy(used, bytes);
            std::fill(bytes + used.size(), bytes + value.size, std::byte{0});
        }
        if (whole) value.unexpected = false; // as the encoder
    }
    return in.ok();
}

/** The places at which a value that was as expected no longer is, or is again: their number, and what lies between them. */
void ValueCodec::put_turned(Output& out) const
{
    out.put_varint(turned_.size());
    std::size_t next = 0;
    for (const std::size_t place : turned_)
    {
        out.put_varint(place - next);
        next = place + 1;
    }
}

bool ValueCodec::get_turned(Input& in)
{
    const std::uint64_t count = in.get_varint();
    std::size_t next = 0;
    for (std::uint64_t i = 0; i < count; ++i)
    {
        const std::uint64_t between = in.get_varint();
        if (!in.ok() || between >= values_.size() - next) return false;
        Value& value = values_[next + between];
        value.unexpected = !value.unexpected;
        next += between + 1;
    }
    return in.ok();
}

} // namespace capture
