#include "json_schema_values.h"

#include <limits>
#include <string>

namespace views
{

namespace
{

using dictionary::Field;
using dictionary::Kind;
using dictionary::Type;

template <typename Number> void limits(JsonWriter& writer)
{
    writer.key("minimum");
    writer.integer(std::int64_t{std::numeric_limits<Number>::min()});
    writer.key("maximum");
    writer.integer(std::uint64_t{std::numeric_limits<Number>::max()});
}

void limits_of(JsonWriter& writer, Type type)
{
    switch (type)
    {
    case Type::i32: return limits<std::int32_t>(writer);
    case Type::u32: return limits<std::uint32_t>(writer);
    case Type::i64: return limits<std::int64_t>(writer);
    case Type::u64: return limits<std::uint64_t>(writer);
    case Type::u8: return limits<std::uint8_t>(writer);
    default: return;
    }
}

/** A state, or nothing where the host does not measure it. */
void state_or_null(JsonWriter& writer, const dictionary::States& states)
{
    writer.key("anyOf");
    writer.start_array();
    writer.start_object();
    writer.member("$ref", "#/$defs/" + std::string(states.name));
    writer.end_object();
    writer.start_object();
    writer.member("type", "null");
    writer.end_object();
    writer.end_array();
}

void seconds_and_nanoseconds(JsonWriter& writer)
{
    writer.member("type", "object");
    writer.words_member("required", {"tv_sec", "tv_nsec"});
    writer.object_member("properties",
                         [&]
                         {
                             for (const std::string name : {"tv_sec", "tv_nsec"})
                             {
                                 writer.object_member(name, [&] { writer.member("type", "integer"); });
                                 write_reference(writer, name + "_s", "digits");
                             }
                         });
}

} // namespace

void write_value_schema(JsonWriter& writer, const Field& field)
{
    if (field.kind == Kind::state) return state_or_null(writer, *field.states);
    if (field.kind == Kind::flag) return writer.words_member("type", {"boolean", "integer", "null"});
    switch (field.type)
    {
    case Type::text:
    case Type::bytes: return writer.words_member("type", {"string", "null"});
    case Type::timespec: return writer.words_member("type", {"number", "null"});
    case Type::f32: writer.words_member("type", {"number", "string", "null"}); return writer.member("pattern", "^(NaN|-?Infinity)$");
    default: writer.words_member("type", {"integer", "null"}); return limits_of(writer, field.type);
    }
}

void write_raw_value_schema(JsonWriter& writer, const Field& field)
{
    switch (field.type)
    {
    case Type::text:
    case Type::bytes:
        writer.member("type", "string");
        return writer.member("pattern", "^[0-9a-f]{" + std::to_string(2 * field.size) + "}$");
    case Type::timespec: return seconds_and_nanoseconds(writer);
    case Type::f32: writer.words_member("type", {"number", "string"}); return writer.member("pattern", "^[0-9a-f]{8}$");
    default: writer.member("type", "integer"); return limits_of(writer, field.type);
    }
}

void write_reference(JsonWriter& writer, std::string_view name, std::string_view definition)
{
    writer.object_member(name, [&] { writer.member("$ref", "#/$defs/" + std::string(definition)); });
}

} // namespace views
