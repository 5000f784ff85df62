#include <charconv>

#include "difference.h"
#include "json_values.h"
#include "json_writer.h"
#include "number_text.h"

namespace views
{

namespace
{

void number_or_null(JsonWriter& writer, std::string_view name, const std::string& digits)
{
    writer.key(name);
    if (digits.empty())
        writer.null();
    else
        writer.number(digits);
}

std::string shortest(double value)
{
    std::array<char, 32> buffer;
    return {buffer.data(), std::to_chars(buffer.data(), buffer.data() + buffer.size(), value).ptr};
}

/** A value as "show" gives it, and null where it gives none. */
void value_member(JsonWriter& writer, std::string_view name, const records::Snapshot& snapshot, const FieldPlace& place)
{
    if (Comparison::has_value(snapshot, place)) return write_member(writer, name, snapshot, *place.field, place.element);
    writer.key(name);
    writer.null();
}

void change_object(JsonWriter& writer, const Comparison& comparison, const FieldPlace& place)
{
    const dictionary::Field& field = *place.field;
    const records::Component& component = dictionary::component_of(field);
    const auto rate = comparison.rate(place);
    writer.start_object();
    writer.member("field", place.name());
    writer.member("kind", dictionary::kind_name(field.kind));
    writer.member("unit", field.unit);
    value_member(writer, "old", comparison.old_snapshot(), place);
    value_member(writer, "new", comparison.new_snapshot(), place);
    number_or_null(writer, "difference", comparison.difference(place));
    number_or_null(writer, "rate", rate ? shortest(*rate) : "");
    write_raw_member(writer, "old_raw", field, comparison.old_snapshot().record(component), place.element);
    write_raw_member(writer, "new_raw", field, comparison.new_snapshot().record(component), place.element);
    writer.end_object();
}

void components_member(JsonWriter& writer, std::string_view name, const records::Snapshot& has, const records::Snapshot& has_not)
{
    std::vector<std::string_view> keys;
    for (const records::Component& component : records::components())
        if (has.has(component) && !has_not.has(component)) keys.push_back(component.key);
    writer.words_member(name, std::span<const std::string_view>(keys));
}

} // namespace

std::string difference_json(const Comparison& comparison)
{
    const records::Snapshot& old = comparison.old_snapshot();
    const records::Snapshot& now = comparison.new_snapshot();
    JsonWriter writer;
    writer.start_object();
    writer.member("schema", difference_schema_id);
    writer.object_member("old", [&] { writer.moment_of(old); });
    writer.object_member("new", [&] { writer.moment_of(now); });
    writer.key("seconds");
    writer.number(seconds_text(comparison.span()));
    writer.key("other_decoder");
    writer.boolean(comparison.is_other_decoder());
    writer.key("restarted");
    writer.boolean(comparison.is_restarted());
    std::vector<std::string> fallen;
    for (const FieldPlace& place : comparison.fallen_counters()) fallen.push_back(place.name());
    writer.words_member("fallen_counters", std::vector<std::string_view>(fallen.begin(), fallen.end()));
    components_member(writer, "only_old", old, now);
    components_member(writer, "only_new", now, old);
    writer.key("changes");
    writer.start_array();
    for (const FieldPlace& place : comparison.changes()) change_object(writer, comparison, place);
    writer.end_array();
    writer.end_object();
    return writer.str();
}

} // namespace views
