#include "dictionary.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cstring>
#include <type_traits>

#include "video_formats.h"

namespace dictionary
{

std::string_view kind_name(Kind kind)
{
    constexpr std::string_view names[] = {"counter", "gauge", "extreme", "state", "flag", "event_time", "identity", "text"};
    return names[static_cast<std::size_t>(kind)];
}

std::span<const Field> fields(const records::Component& component)
{
    // Not equal_range: Clang 14 does not know what this C++ library makes of it.
    return {std::ranges::lower_bound(fields(), component.index, {}, &Field::component),
            std::ranges::upper_bound(fields(), component.index, {}, &Field::component)};
}

std::optional<Found> find(std::string_view name)
{
    std::string plain(name); // with [] for [2]
    std::optional<std::size_t> element;
    const std::size_t open = name.find('[');
    const std::size_t close = name.find(']');
    if (open != std::string_view::npos && close != std::string_view::npos && close > open + 1)
    {
        const std::string_view digits = name.substr(open + 1, close - open - 1);
        std::size_t number = 0;
        const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
        if (error != std::errc() || end != digits.data() + digits.size()) return {};
        element = number;
        plain.erase(open + 1, digits.size());
    }
    const auto found = std::ranges::find(fields(), plain, &Field::full_name);
    if (found == fields().end() || (element && *element >= found->count())) return {};
    return Found{&*found, element};
}

std::string element_name(const Field& field, std::size_t element)
{
    std::string name(field.full_name);
    if (field.array != nullptr) name.insert(name.find('[') + 1, std::to_string(element));
    return name;
}

namespace
{

template <typename T> T read(std::span<const std::byte> bytes)
{
    T value;
    std::memcpy(&value, bytes.data(), sizeof value);
    return value;
}

std::string_view text_of(std::span<const std::byte> bytes)
{
    const auto end = std::ranges::find(bytes, std::byte{0});
    return {reinterpret_cast<const char*>(bytes.data()), static_cast<std::size_t>(end - bytes.begin())};
}

std::span<const std::byte> bytes_of(const Field& field, std::span<const std::byte> record, std::size_t element)
{
    return record.subspan(field.offset(element), field.size);
}

bool is_zero(std::span<const std::byte> bytes)
{
    return std::ranges::all_of(bytes, [](std::byte byte) { return byte == std::byte{0}; });
}

/** An empty text, a number that is 0 (-0.0 too), a moment or bytes that are all 0. */
bool is_nothing(const Field& field, std::span<const std::byte> record, std::size_t element)
{
    const std::span<const std::byte> bytes = bytes_of(field, record, element);
    if (field.type == Type::text) return text_of(bytes).empty();
    if (field.type == Type::f32) return read<float>(bytes) == 0.0F;
    return is_zero(bytes);
}

bool holds(const Term& term, std::span<const std::byte> record, std::size_t element)
{
    const Field& field = fields()[term.field];
    if (field.array == nullptr) element = 0;
    switch (term.test)
    {
    case Term::Test::is:
    {
        const std::int64_t code = integer(field, record, element);
        return code == term.first || code == term.second;
    }
    case Term::Test::is_not: return integer(field, record, element) != term.first;
    case Term::Test::not_zero:
    case Term::Test::not_empty: return !is_nothing(field, record, element);
    }
    return false;
}

bool holds(const Condition& condition, std::span<const std::byte> record, std::size_t element)
{
    if (condition.never) return false;
    const std::span<const Term> terms = std::span(condition.terms).first(condition.count);
    const auto term_holds = [&](const Term& term) { return holds(term, record, element); };
    return condition.either ? std::ranges::any_of(terms, term_holds) : std::ranges::all_of(terms, term_holds);
}

/** "720x576i25" for a code that describes a raster, or nothing. */
std::string raster(std::int64_t code)
{
    const auto format = static_cast<UINT64>(code);
    if ((format & VIDEO_FORMAT_FLAG_ENCODED) == 0) return {};
    const auto digits = [format](unsigned shift, UINT64 mask) { return std::to_string(format >> shift & mask); };
    return digits(VIDEO_FORMAT_WIDTH_SHIFT, VIDEO_FORMAT_WIDTH_MASK) + "x" + digits(VIDEO_FORMAT_HEIGHT_SHIFT, VIDEO_FORMAT_HEIGHT_MASK) +
           ((format & VIDEO_FORMAT_FLAG_INTERLACED) != 0 ? "i" : "p") + digits(VIDEO_FORMAT_RATE_SHIFT, VIDEO_FORMAT_RATE_MASK);
}

} // namespace

Value value(const Field& field, std::span<const std::byte> record, std::size_t element)
{
    const std::span<const std::byte> bytes = bytes_of(field, record, element);
    switch (field.type)
    {
    case Type::i32:
    case Type::i64: return integer(field, record, element);
    case Type::u8:
    case Type::u32:
    case Type::u64: return static_cast<std::uint64_t>(integer(field, record, element));
    case Type::f32: return read<float>(bytes);
    case Type::timespec: return Moment{read<std::int64_t>(bytes), read<std::int64_t>(bytes.subspan(sizeof(std::int64_t)))};
    case Type::text: return text_of(bytes);
    case Type::bytes: return bytes;
    }
    return bytes;
}

std::int64_t integer(const Field& field, std::span<const std::byte> record, std::size_t element)
{
    const std::span<const std::byte> bytes = bytes_of(field, record, element);
    switch (field.type)
    {
    case Type::i32: return read<std::int32_t>(bytes);
    case Type::u32: return read<std::uint32_t>(bytes);
    case Type::i64: return read<std::int64_t>(bytes);
    case Type::u64: return static_cast<std::int64_t>(read<std::uint64_t>(bytes));
    case Type::u8: return read<std::uint8_t>(bytes);
    case Type::f32:
    case Type::timespec:
    case Type::text:
    case Type::bytes: break;
    }
    return 0;
}

bool is_absent(const Field& field, std::span<const std::byte> record, std::size_t element)
{
    if (field.absent_with != no_field && is_nothing(fields()[field.absent_with], record, element)) return true;
    switch (field.absent_rule)
    {
    case AbsentRule::never: return false;
    case AbsentRule::zero_or_less: return integer(field, record, element) <= 0;
    case AbsentRule::zero:
    case AbsentRule::empty:
    case AbsentRule::all_zero: return is_nothing(field, record, element);
    }
    return false;
}

bool in_use(const Array& array, std::span<const std::byte> record, std::size_t element)
{
    return holds(array.in_use, record, element);
}

bool applies(const Field& field, std::span<const std::byte> record, std::size_t element)
{
    return (field.array == nullptr || in_use(*field.array, record, element)) && holds(field.condition, record, element);
}

std::string identifier(const Field& field, std::int64_t code)
{
    if (field.states == nullptr) return {};
    const auto found = std::ranges::find(field.states->values, code, &State::value);
    if (found != field.states->values.end()) return std::string(found->identifier);
    return field.states == &states::display_format ? raster(code) : std::string();
}

} // namespace dictionary
