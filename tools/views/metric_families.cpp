#include "metric_families.h"

#include <algorithm>
#include <deque>
#include <stdexcept>

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

std::string help(const std::vector<const Field*>& fields)
{
    if (fields.size() == 1 && fields.front()->metric.type != MetricType::info) return std::string(fields.front()->meaning);
    std::string text;
    for (const Field* field : fields)
    {
        if (!text.empty()) text += "; ";
        text += own_label(*field);
        text += ": ";
        text += field->meaning;
    }
    return text;
}

std::string fixed_labels(const Field& field)
{
    std::string text;
    if (!field.metric.fixed_label.empty())
    {
        text += ',';
        append_label(text, field.metric.fixed_label, field.metric.fixed_value);
    }
    return text + "} ";
}

std::vector<std::string> state_labels(const Field& field)
{
    std::vector<std::string> labels;
    const auto add = [&](std::string_view identifier)
    {
        std::string text = ",";
        append_label(text, field.metric.label, identifier);
        labels.push_back(text + "} ");
    };
    for (const dictionary::State& state : field.states->values) add(state.identifier);
    add(other_state);
    return labels;
}

FamilyMember member_of(const Field& field, std::string_view labels)
{
    return {.field = &field,
            .labels = labels,
            .offset = static_cast<std::uint32_t>(field.first_offset),
            .stride = static_cast<std::uint32_t>(field.array == nullptr ? 0 : field.array->stride),
            .multiply = field.metric.multiply,
            .divide = field.metric.divide,
            .index = field.index,
            .type = field.type,
            .is_plain = field.condition.count == 0 && !field.condition.never && field.absent_rule == dictionary::AbsentRule::never &&
                        field.absent_with == dictionary::no_field};
}

/** The fields of each family. */
std::vector<std::vector<const Field*>> grouped_fields()
{
    std::vector<std::vector<const Field*>> groups;
    for (const Field& field : dictionary::fields())
    {
        if (field.metric.type == MetricType::none) continue;
        auto group = std::ranges::find(groups, field.metric.family, [](const auto& fields) { return fields.front()->metric.family; });
        if (group == groups.end())
            groups.push_back({&field});
        else
            group->push_back(&field);
    }
    return groups;
}

/** All families of a format, and what they refer to. Stays where it is. */
class FamilyTable
{
public:
    explicit FamilyTable(MetricsFormat format)
    {
        const auto groups = grouped_fields();
        // Everything refers to these, so they get their sizes first.
        members_.reserve(dictionary::field_count);
        text_.reserve(std::size_t{512} * dictionary::field_count);
        for (const std::vector<const Field*>& fields : groups) add(format, fields);
    }
    FamilyTable(const FamilyTable&) = delete;
    FamilyTable& operator=(const FamilyTable&) = delete;

    const std::vector<MetricFamily>& families() const { return families_; }

private:
    void add(MetricsFormat format, const std::vector<const Field*>& fields)
    {
        const dictionary::Metric& metric = fields.front()->metric;
        const std::string_view type = type_name(metric.type);
        MetricFamily family = {};
        family.metadata = keep(family_metadata(format, metric.family, type, metric.unit, help(fields)));
        family.start = keep(std::string(metric.family) + std::string(suffix(type)) + "{");
        family.type = metric.type;
        const std::size_t first = members_.size();
        for (const Field* field : fields) members_.push_back(member_of(*field, keep(fixed_labels(*field))));
        family.members = std::span(members_).subspan(first);
        if (metric.type == MetricType::state_set) family.states = states_.emplace_back(state_labels(*fields.front()));
        families_.push_back(family);
    }

    /** Stores a text behind the others. */
    std::string_view keep(const std::string& piece)
    {
        const std::size_t start = text_.size();
        if (text_.capacity() - start < piece.size()) throw std::length_error("metric families are longer than expected");
        text_ += piece;
        return std::string_view(text_).substr(start);
    }

    std::string text_;
    std::vector<FamilyMember> members_;
    std::deque<std::vector<std::string>> states_;
    std::vector<MetricFamily> families_;
};

} // namespace

const std::vector<MetricFamily>& metric_families(MetricsFormat format)
{
    static const FamilyTable openmetrics(MetricsFormat::openmetrics);
    static const FamilyTable prometheus(MetricsFormat::prometheus);
    return format == MetricsFormat::openmetrics ? openmetrics.families() : prometheus.families();
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
    const bool is_plain = std::ranges::all_of(value, [](char c) { return c >= ' ' && c <= '~' && c != '"' && c != '\\'; });
    if (is_plain)
        text += value;
    else
        append_escaped(text, valid_utf8(value), true);
    text += '"';
}

} // namespace views
