#include <bit>
#include <cmath>

#include "field_tree.h"
#include "json.h"
#include "json_writer.h"
#include "number_text.h"

namespace views
{

namespace
{

using Record = std::span<const std::byte>;

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

void field_member(JsonWriter& writer, std::string_view name, const dictionary::Field& field, Record record, std::size_t element)
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

/** A struct: its members in the order of the record. */
void block_value(JsonWriter& writer, const FieldNode& block, Record record, std::size_t element)
{
    writer.start_object();
    for (const FieldNode& child : block.children)
    {
        if (child.field != nullptr)
        {
            field_member(writer, child.name, *child.field, record, element);
            continue;
        }
        writer.key(child.name);
        if (child.elements == nullptr)
        {
            block_value(writer, child, record, element);
            continue;
        }
        writer.start_array();
        for (std::size_t i = 0; i < child.elements->count; ++i) block_value(writer, child, record, i);
        writer.end_array();
    }
    writer.end_object();
}

} // namespace

std::string raw_json(const records::Snapshot& snapshot)
{
    JsonWriter writer;
    writer.start_object();
    writer.envelope(raw_json_schema_id, snapshot);
    writer.key("components");
    writer.start_object();
    for (const records::Component& component : records::components())
    {
        if (!snapshot.has(component)) continue;
        writer.key(component.key);
        block_value(writer, fields_by_member(component), snapshot.record(component), 0);
    }
    writer.end_object();
    writer.end_object();
    return writer.str();
}

} // namespace views
