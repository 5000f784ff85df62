#include "metric_value.h"

#include <cmath>
#include <cstring>

#include "number_text.h"
#include "text_buffer.h"

namespace views
{

namespace
{

template <typename Number> Number number_at(const std::byte* bytes)
{
    Number number;
    std::memcpy(&number, bytes, sizeof number);
    return number;
}

/** Fields that are floats have the base unit already. */
char* write_real(char* to, float value)
{
    if (std::isfinite(value)) return write_float(to, value);
    return TextBuffer::put(to, std::isnan(value) ? "NaN" : value > 0 ? "+Inf" : "-Inf");
}

} // namespace

char* write_metric_value(char* to, const FamilyMember& member, const std::byte* bytes)
{
    const auto scaled = [&](auto number) { return write_scaled(to, number, member.multiply, member.divide); };
    switch (member.type)
    {
    case dictionary::Type::i32: return scaled(std::int64_t{number_at<std::int32_t>(bytes)});
    case dictionary::Type::u32: return scaled(std::uint64_t{number_at<std::uint32_t>(bytes)});
    case dictionary::Type::i64: return scaled(number_at<std::int64_t>(bytes));
    case dictionary::Type::u64: return scaled(number_at<std::uint64_t>(bytes));
    case dictionary::Type::u8: return scaled(std::uint64_t{number_at<std::uint8_t>(bytes)});
    case dictionary::Type::f32: return write_real(to, number_at<float>(bytes));
    case dictionary::Type::timespec:
        return write_moment(to, {number_at<std::int64_t>(bytes), number_at<std::int64_t>(bytes + sizeof(std::int64_t))});
    case dictionary::Type::text:
    case dictionary::Type::bytes: break;
    }
    return to;
}

} // namespace views
