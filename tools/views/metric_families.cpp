#include "metric_families.h"

#include <algorithm>

#include "utf8.h"

namespace views
{

namespace
{

using dictionary::Field;
using dictionary::MetricType;

void append_escaped(std::string& text, std::string_view value, bool with_quotes)
{
    for (const char character : value)
    {
        if (character == '\n')
            text += "\\n";
        else
        {
            if (character == '\\' || (with_quotes && character == '"')) text += '\\';
            text += character;
        }
    }
}

std::string_view type_name(MetricType type)
{
    constexpr std::string_view names[] = {"", "counter", "gauge", "stateset", "info"};
    return names[static_cast<std::size_t>(type)];
}

/** What the name of a sample has behind its family's. */
std::string_view suffix(std::string_view type)
{
    return type == "counter" ? "_total" : type == "info" ? "_info" : "";
}

/** The name of the label that tells a field from the others of its family. */
std::string_view own_label(const Field& field)
{
    return field.metric.type == MetricType::info ? field.metric.label : field.metric.fixed_value;
}

std::string help(const MetricFamily& family)
{
    if (family.members.size() == 1 && family.type != MetricType::info) return std::string(family.members.front().field->meaning);
    std::string text;
    for (const FamilyMember& member : family.members)
    {
        if (!text.empty()) text += "; ";
        text += own_label(*member.field);
        text += ": ";
        text += member.field->meaning;
    }
    return text;
}

FamilyMember member_of(const Field& field)
{
    FamilyMember member = {.field = &field, .sample = {}, .samples = {}};
    if (!field.metric.fixed_label.empty())
    {
        member.sample += ',';
        append_label(member.sample, field.metric.fixed_label, field.metric.fixed_value);
    }
    member.sample += "} ";
    if (field.metric.type != MetricType::state_set) return member;

    const auto add = [&](std::string_view identifier)
    {
        std::string text = ",";
        append_label(text, field.metric.label, identifier);
        member.samples.push_back(text + "} ");
    };
    for (const dictionary::State& state : field.states->values) add(state.identifier);
    add(other_state);
    return member;
}

std::vector<MetricFamily> families()
{
    std::vector<MetricFamily> all;
    for (const Field& field : dictionary::fields())
    {
        if (field.metric.type == MetricType::none) continue;
        auto family = std::ranges::find(all, field.metric.family, &MetricFamily::name);
        if (family == all.end())
        {
            const std::string start = std::string(field.metric.family) + std::string(suffix(type_name(field.metric.type))) + "{";
            all.push_back({field.metric.family, field.metric.type, start, {}, {}});
            family = std::prev(all.end());
        }
        family->members.push_back(member_of(field));
    }
    for (MetricFamily& family : all)
        for (const MetricsFormat format : {MetricsFormat::openmetrics, MetricsFormat::prometheus})
            family.metadata.at(static_cast<std::size_t>(format)) =
                family_metadata(format, family.name, type_name(family.type), family.members.front().field->metric.unit, help(family));
    return all;
}

} // namespace

const std::vector<MetricFamily>& metric_families()
{
    static const std::vector<MetricFamily> all = families();
    return all;
}

std::string family_metadata(MetricsFormat format, std::string_view name, std::string_view type, std::string_view unit,
                            std::string_view help_text)
{
    const bool is_openmetrics = format == MetricsFormat::openmetrics;
    std::string full_name(name);
    if (!is_openmetrics)
    {
        full_name += suffix(type);
        if (type != "counter") type = "gauge";
    }
    std::string text = "# HELP " + full_name + " ";
    append_escaped(text, help_text, is_openmetrics);
    text += "\n# TYPE " + full_name + " ";
    text += type;
    text += '\n';
    if (is_openmetrics && !unit.empty()) text += "# UNIT " + full_name + " " + std::string(unit) + "\n";
    return text;
}

void append_label(std::string& text, std::string_view name, std::string_view value)
{
    text += name;
    text += "=\"";
    append_escaped(text, valid_utf8(value), true);
    text += '"';
}

} // namespace views
