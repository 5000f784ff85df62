#include "description.h"
#include "json_writer.h"
#include "value_text.h"

namespace views
{

namespace
{

using dictionary::Field;

/** A text member, null where there is none. */
void optional_member(JsonWriter& writer, std::string_view name, std::string_view text)
{
    writer.key(name);
    if (text.empty())
        writer.null();
    else
        writer.text(text);
}

void array_member(JsonWriter& writer, const dictionary::Array* array)
{
    writer.key("array");
    if (array == nullptr) return writer.null();
    writer.start_object();
    writer.member("name", array->name);
    writer.member("stride", array->stride);
    writer.member("count", array->count);
    writer.end_object();
}

void relation_member(JsonWriter& writer, const Field& field)
{
    constexpr std::string_view words[] = {"", "last_of", "at_of", "max_of", "min_of"};
    writer.key("relation");
    if (field.relation == dictionary::Relation::none) return writer.null();
    writer.start_object();
    writer.member("type", words[static_cast<std::size_t>(field.relation)]);
    writer.member("field", dictionary::fields()[field.related].full_name);
    writer.end_object();
}

void states_member(JsonWriter& writer, const Field& field)
{
    writer.key("states");
    if (field.states == nullptr) return writer.null();
    writer.start_array();
    for (const dictionary::State& state : field.states->values)
    {
        writer.start_object();
        if (field.type == dictionary::Type::u64)
            writer.integer_member("value", static_cast<std::uint64_t>(state.value));
        else
            writer.integer_member("value", state.value);
        writer.member("name", state.identifier);
        optional_member(writer, "text", state_text(field, state.value).value_or(""));
        optional_member(writer, "enumerator", state.enumerator);
        writer.end_object();
    }
    writer.end_array();
}

void report_lines_member(JsonWriter& writer, const Field& field)
{
    writer.key("report_lines");
    writer.start_array();
    for (const dictionary::ReportLine& line : field.lines)
    {
        writer.start_object();
        writer.member("label", line.label);
        writer.member("level", line.level == STATS_LEVEL_DEBUG ? "debug" : "default");
        writer.end_object();
    }
    writer.end_array();
}

void metric_member(JsonWriter& writer, const Field& field)
{
    constexpr std::string_view types[] = {"", "counter", "gauge", "stateset", "info"};
    writer.key("metric");
    if (field.metric.type == dictionary::MetricType::none) return writer.null();
    writer.start_object();
    writer.member("name", sample_name(field));
    writer.member("type", types[static_cast<std::size_t>(field.metric.type)]);
    optional_member(writer, "unit", field.metric.unit);
    writer.member("factor", metric_factor(field));
    const bool has_fixed = !field.metric.fixed_label.empty();
    optional_member(writer, "label", has_fixed ? field.metric.fixed_label : field.metric.label);
    optional_member(writer, "label_value", field.metric.fixed_value);
    writer.end_object();
}

void field_object(JsonWriter& writer, const Field& field)
{
    writer.start_object();
    writer.member("name", field.full_name);
    writer.member("component", dictionary::component_of(field).key);
    writer.member("meaning", field.meaning);
    writer.member("kind", dictionary::kind_name(field.kind));
    optional_member(writer, "unit", field.unit);
    optional_member(writer, "absent", field.absent);
    optional_member(writer, "absent_with",
                    field.absent_with == dictionary::no_field ? "" : dictionary::fields()[field.absent_with].full_name);
    optional_member(writer, "applies", applicability(field));
    states_member(writer, field);
    report_lines_member(writer, field);
    metric_member(writer, field);
    relation_member(writer, field);
    writer.member("member", field.member);
    writer.member("c_type", field.c_type);
    writer.member("type", dictionary::type_name(field.type));
    writer.member("offset", field.offset());
    writer.member("size", field.size);
    array_member(writer, field.array);
    writer.end_object();
}

} // namespace

std::string descriptions_json(std::span<const Field* const> fields)
{
    JsonWriter writer;
    writer.start_object();
    writer.member("schema", "decstats-fields/1");
    writer.key("fields");
    writer.start_array();
    for (const Field* field : fields) field_object(writer, *field);
    writer.end_array();
    writer.end_object();
    return writer.str();
}

} // namespace views
