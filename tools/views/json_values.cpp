#include "json_values.h"

#include <algorithm>
#include <bit>
#include <cmath>

#include "number_text.h"
#include "presence.h"
#include "utf8.h"
#include "value_text.h"

namespace views
{

namespace
{

using dictionary::Field;
using dictionary::Kind;
using Record = std::span<const std::byte>;

void integer_member(JsonWriter& writer, std::string_view name, const dictionary::Value& value)
{
    if (const auto* number = std::get_if<std::uint64_t>(&value))
        writer.integer_member(name, *number);
    else
        writer.integer_member(name, std::get<std::int64_t>(value));
}

/** A double holds no moment to the nanosecond, so the digits always stand beside it. */
void moment_member(JsonWriter& writer, std::string_view name, const dictionary::Moment& moment)
{
    std::string digits;
    append_moment(digits, moment);
    writer.key(name);
    writer.number(digits);
    writer.digits_member(name, digits);
}

/** JSON has no numbers for what is not finite. */
void float_member(JsonWriter& writer, std::string_view name, float value)
{
    if (!std::isfinite(value)) return writer.member(name, std::isnan(value) ? "NaN" : value > 0 ? "Infinity" : "-Infinity");
    std::string digits;
    append_float(digits, value);
    writer.key(name);
    writer.number(digits);
}

void state_member(JsonWriter& writer, std::string_view name, const Field& field, std::int64_t code, const dictionary::Value& value)
{
    const auto text_or_null = [&writer](std::string_view key, const std::optional<std::string>& text)
    {
        writer.key(key);
        if (text)
            writer.text(*text);
        else
            writer.null();
    };
    const std::string identifier = dictionary::identifier(field, code);
    writer.key(name);
    writer.start_object();
    integer_member(writer, "value", value);
    text_or_null("name", identifier.empty() ? std::nullopt : std::optional(identifier));
    std::optional<std::string> text = state_text(field, code);
    if (!text && !identifier.empty())
    {
        text = identifier; // no service has a text for it, and its words say the same
        std::ranges::replace(*text, '_', ' ');
    }
    text_or_null("text", text);
    writer.end_object();
}

/** All bits, the most significant first. */
std::string bits(float value)
{
    std::string text;
    for (unsigned shift = 32; shift > 0; shift -= 8)
    {
        const auto byte = static_cast<std::byte>(std::bit_cast<std::uint32_t>(value) >> (shift - 8));
        append_hex(text, std::span(&byte, 1));
    }
    return text;
}

} // namespace

void write_member(JsonWriter& writer, std::string_view name, const records::Snapshot& snapshot, const Field& field, std::size_t element)
{
    const Record record = snapshot.record(dictionary::component_of(field));
    if (!has_value(snapshot, field, record, element))
    {
        writer.key(name);
        writer.null();
        return;
    }
    const dictionary::Value value = dictionary::value(field, record, element);
    if (field.kind == Kind::state)
        state_member(writer, name, field, dictionary::integer(field, record, element), value);
    else if (const auto* text = std::get_if<std::string_view>(&value))
        writer.member(name, valid_utf8(*text));
    else if (std::holds_alternative<std::span<const std::byte>>(value))
        writer.member(name, bytes_text(field, record));
    else if (const auto* moment = std::get_if<dictionary::Moment>(&value))
        moment_member(writer, name, *moment);
    else if (const auto* real = std::get_if<float>(&value))
        float_member(writer, name, *real);
    else if (field.kind == Kind::flag && (std::get<std::int64_t>(value) == 0 || std::get<std::int64_t>(value) == 1))
    {
        writer.key(name);
        writer.boolean(std::get<std::int64_t>(value) == 1);
    }
    else
        integer_member(writer, name, value);
    if (is_version(field)) writer.member(std::string(name) + "_text", version_text(field, record));
}

void write_raw_member(JsonWriter& writer, std::string_view name, const Field& field, Record record, std::size_t element)
{
    if (field.type == dictionary::Type::text || field.type == dictionary::Type::bytes)
    {
        std::string text;
        append_hex(text, record.subspan(field.offset(element), field.size));
        return writer.member(name, text);
    }
    const dictionary::Value value = dictionary::value(field, record, element);
    if (const auto* whole = std::get_if<std::int64_t>(&value)) return writer.integer_member(name, *whole);
    if (const auto* natural = std::get_if<std::uint64_t>(&value)) return writer.integer_member(name, *natural);
    if (const auto* moment = std::get_if<dictionary::Moment>(&value))
    {
        writer.key(name);
        writer.start_object();
        writer.integer_member("tv_sec", moment->seconds);
        writer.integer_member("tv_nsec", moment->nanoseconds);
        writer.end_object();
        return;
    }
    const float real = std::get<float>(value);
    if (!std::isfinite(real)) return writer.member(name, bits(real));
    std::string digits;
    append_float(digits, real);
    writer.key(name);
    writer.number(digits);
}

} // namespace views
