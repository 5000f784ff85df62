#include "description.h"

#include <algorithm>

#include "number_text.h"
#include "value_text.h"

namespace views
{

namespace
{

using dictionary::Field;
using dictionary::MetricType;
using dictionary::Relation;

constexpr std::size_t line_width = 100;

std::string_view full_name(std::uint16_t index)
{
    return dictionary::fields()[index].full_name;
}

/** Appends "  Name          value", if there is a value. */
void append_line(std::string& text, std::string_view name, const std::string& value)
{
    constexpr std::size_t width = 14;
    if (!value.empty()) text += "  " + std::string(name) + std::string(width - name.size(), ' ') + value + "\n";
}

/** Appends a paragraph in lines that are not too long. A verbatim line stays as it is. */
void append_wrapped(std::string& text, std::string_view paragraph)
{
    constexpr std::string_view indent = "  ";
    if (paragraph.starts_with(indent))
    {
        text += indent;
        text += paragraph;
        text += '\n';
        return;
    }
    std::size_t column = 0;
    while (!paragraph.empty())
    {
        const std::size_t size = std::min(paragraph.find(' '), paragraph.size());
        if (column > 0 && column + 1 + size > line_width)
        {
            text += '\n';
            column = 0;
        }
        text += column == 0 ? indent : " ";
        text += paragraph.substr(0, size);
        column += size + (column == 0 ? indent.size() : 1);
        paragraph.remove_prefix(std::min(size + 1, paragraph.size()));
    }
    if (column > 0) text += '\n';
}

std::string term_text(const dictionary::Term& term)
{
    const Field& field = dictionary::fields()[term.field];
    const std::string name(field.full_name);
    const auto value = [&field](std::int64_t code)
    {
        const std::string identifier = dictionary::identifier(field, code);
        return identifier.empty() ? std::to_string(code) : identifier;
    };
    switch (term.test)
    {
    case dictionary::Term::Test::is:
        return name + " is " + value(term.first) + (term.first == term.second ? "" : " or " + value(term.second));
    case dictionary::Term::Test::is_not: return name + " is not " + value(term.first);
    case dictionary::Term::Test::not_zero: return name + (field.kind == dictionary::Kind::flag ? " is set" : " is not 0");
    case dictionary::Term::Test::not_empty: return name + " is not empty";
    }
    return {};
}

std::string condition_text(const dictionary::Condition& condition)
{
    std::string text;
    for (std::size_t i = 0; i < condition.count; ++i)
        text += (i == 0 ? "" : condition.either ? " or " : " and ") + term_text(condition.terms.at(i));
    return text;
}

std::string type_text(const Field& field)
{
    std::string text(field.c_type);
    text += ", " + std::to_string(field.size) + (field.size == 1 ? " byte" : " bytes") + " at offset " + std::to_string(field.offset());
    if (field.array != nullptr)
        text += " + " + std::to_string(field.array->stride) + " n, n = 0 to " + std::to_string(field.array->count - 1);
    return text;
}

std::string absent_text(const Field& field)
{
    std::string text(field.absent);
    if (field.absent_with != dictionary::no_field)
        text += (text.empty() ? "" : "; ") + ("as long as " + std::string(full_name(field.absent_with)) + " is 0");
    return text;
}

std::string metric_text(const Field& field)
{
    std::string text = sample_name(field);
    if (text.empty()) return text;
    const dictionary::Metric& metric = field.metric;
    if (metric.type == MetricType::info || field.is_label)
        text += ", label " + std::string(metric.label);
    else if (metric.type == MetricType::state_set)
        text += ", a series for each state";
    if (!metric.fixed_label.empty()) text += "{" + std::string(metric.fixed_label) + "=\"" + std::string(metric.fixed_value) + "\"}";
    if (const std::string factor = metric_factor(field); factor != "1") text += " = value x " + factor;
    return text;
}

std::string relation_text(Relation relation, std::string_view other)
{
    constexpr std::string_view words[] = {"", "when this last happened: ", "when this was reached: ", "the largest of ",
                                          "the smallest of "};
    return std::string(words[static_cast<std::size_t>(relation)]) + std::string(other);
}

/** The same seen from the other field. */
std::string reverse_relation_text(Relation relation, std::string_view other)
{
    constexpr std::string_view words[] = {"", "last happened: ", "was reached: ", "its largest: ", "its smallest: "};
    return std::string(words[static_cast<std::size_t>(relation)]) + std::string(other);
}

void append_relations(std::string& text, const Field& field)
{
    if (field.relation != Relation::none) append_line(text, "Related", relation_text(field.relation, full_name(field.related)));
    for (const Field& other : dictionary::fields(dictionary::component_of(field)))
        if (other.relation != Relation::none && other.related == field.index)
            append_line(text, "Related", reverse_relation_text(other.relation, other.full_name));
}

void append_states(std::string& text, const dictionary::Field& field)
{
    std::string_view title = "Values";
    for (const dictionary::State& state : field.states->values)
    {
        std::string value;
        if (field.type == dictionary::Type::u64)
            append_integer(value, static_cast<std::uint64_t>(state.value));
        else
            append_integer(value, state.value);
        value += " " + std::string(state.identifier);
        if (const auto words = state_text(field, state.value)) value += ", \"" + *words + "\"";
        append_line(text, title, value);
        title = "";
    }
}

} // namespace

std::string applicability(const Field& field)
{
    if (field.condition.never) return "never";
    std::string text = field.array == nullptr ? "" : condition_text(field.array->in_use);
    const std::string own = condition_text(field.condition);
    if (!text.empty() && !own.empty()) text += " and ";
    text += own;
    return text.empty() ? text : "if " + text;
}

std::string sample_name(const Field& field)
{
    std::string name(field.metric.family);
    if (field.metric.type == MetricType::counter) name += "_total";
    if (field.metric.type == MetricType::info) name += "_info";
    return name;
}

std::string metric_factor(const Field& field)
{
    std::string factor = std::to_string(field.metric.multiply);
    if (field.metric.divide != 1) factor += "/" + std::to_string(field.metric.divide);
    return factor;
}

std::string description(const Field& field)
{
    std::string text = std::string(field.full_name) + ": " + std::string(field.meaning) + "\n";
    append_line(text, "Kind", std::string(dictionary::kind_name(field.kind)));
    append_line(text, "Unit", std::string(field.unit));
    append_line(text, "Absent", absent_text(field));
    append_line(text, "Applies", applicability(field));
    if (field.states != nullptr) append_states(text, field);
    for (const dictionary::ReportLine& line : field.lines)
        append_line(text, "Report line", std::string(line.label) + (line.level == STATS_LEVEL_DEBUG ? ", debug level" : ", both levels"));
    append_line(text, "Metric", metric_text(field));
    append_relations(text, field);
    append_line(text, "C member", std::string(field.member));
    append_line(text, "C type", type_text(field));
    return text;
}

std::string description(const DecoderFamily& family)
{
    std::string text = std::string(family.name) + ": " + std::string(family.help) + "\n";
    append_line(text, "Kind", std::string(family.type));
    append_line(text, "Unit", std::string(family.unit));
    append_line(text, "Metric", std::string(family.name) + ", of the decoder and not of a field");
    return text;
}

std::string description(const ManualEntry& entry)
{
    std::string text = entry.label;
    if (entry.component == nullptr)
        text += ", advice of decstats-reports(5):\n";
    else
    {
        text += ", a line of the " + std::string(entry.component->title) + " report";
        if (!entry.section.empty()) text += ", " + entry.section;
        text += ":\n";
        append_wrapped(text, "[" + entry.appearance + "]");
    }
    for (std::string_view rest = entry.text; !rest.empty();)
    {
        const std::size_t size = std::min(rest.find('\n'), rest.size());
        append_wrapped(text, rest.substr(0, size));
        rest.remove_prefix(std::min(size + 1, rest.size()));
    }
    return text;
}

} // namespace views
