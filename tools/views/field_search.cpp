#include "field_search.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <numeric>
#include <optional>
#include <utility>

namespace views
{

namespace
{

using dictionary::Field;

std::string lower(std::string_view text)
{
    std::string result(text);
    for (char& character : result)
        if (character >= 'A' && character <= 'Z') character = static_cast<char>(character - 'A' + 'a');
    return result;
}

/** A name in lower case and without the numbers in brackets. */
std::string simple(std::string_view name)
{
    std::string result = lower(name);
    const std::size_t open = result.find('[');
    const std::size_t close = result.find(']', open);
    if (open != std::string::npos && close != std::string::npos &&
        std::ranges::all_of(result.substr(open + 1, close - open - 1), [](char c) { return c >= '0' && c <= '9'; }))
        result.erase(open + 1, close - open - 1);
    return result;
}

/** The number in a name's first brackets, or one that no array has where it is too large. @return nothing = there is none */
std::optional<std::size_t> number_in(std::string_view name)
{
    const std::size_t open = name.find('[');
    if (open == name.npos) return std::nullopt;
    std::size_t number = 0;
    const auto [end, error] = std::from_chars(name.data() + open + 1, name.data() + name.size(), number);
    if (error == std::errc::result_out_of_range) return std::numeric_limits<std::size_t>::max();
    return error == std::errc() && end != name.data() + name.size() && *end == ']' ? std::optional(number) : std::nullopt;
}

/** Whether a name is another, or the end of it from a dot on. */
bool is_end_of(std::string_view name, std::string_view whole)
{
    return name == whole || (whole.ends_with(name) && whole.size() > name.size() && whole[whole.size() - name.size() - 1] == '.');
}

bool is_metric(const std::string& name, const Field& field)
{
    if (field.metric.type == dictionary::MetricType::none || !name.starts_with(field.metric.family)) return false;
    const std::string_view behind = std::string_view(name).substr(field.metric.family.size());
    return behind.empty() || (behind == "_total" && field.metric.type == dictionary::MetricType::counter) ||
           (behind == "_info" && field.metric.type == dictionary::MetricType::info);
}

bool is_label(std::string_view label, const std::string& name)
{
    return lower(label) == name;
}

/** Whether a name has these words in it, in this order and whole. */
bool has_words(std::string_view name, const std::string& words)
{
    const auto apart = [](std::string text)
    {
        for (char& character : text)
            if (character == '_' || character == '.') character = ' ';
        return " " + text + " ";
    };
    return apart(lower(name)).find(apart(words)) != std::string::npos;
}

bool is_called(const Field& field, const std::string& name)
{
    const records::Component& component = dictionary::component_of(field);
    return name == component.name || name == component.key || is_end_of(name, field.full_name) || is_end_of(name, lower(field.member)) ||
           is_metric(name, field) || std::ranges::any_of(field.lines, [&](const auto& line) { return is_label(line.label, name); });
}

/** The least number of characters to put in, take out or replace that makes one text another (Levenshtein). */
std::size_t edits_between(std::string_view one, std::string_view other)
{
    std::vector<std::size_t> row(other.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 1; i <= one.size(); ++i)
    {
        std::size_t diagonal = std::exchange(row[0], i);
        for (std::size_t j = 1; j <= other.size(); ++j)
        {
            const std::size_t replaced = diagonal + (one[i - 1] == other[j - 1] ? 0 : 1);
            diagonal = row[j];
            row[j] = std::min({row[j] + 1, row[j - 1] + 1, replaced});
        }
    }
    return row.back();
}

std::string_view last_part(std::string_view name)
{
    return name.substr(name.rfind('.') + 1);
}

/** Gathers names and how far each is from one that was typed. */
class Nearest
{
public:
    explicit Nearest(std::string_view what) : what_(simple(what)) {}

    /** @param name what to offer @param form one of its forms, which is compared */
    void consider(std::string_view name, std::string_view form)
    {
        const std::size_t steps = edits_between(what_, lower(form));
        if (steps <= std::min(what_.size(), form.size()) / 3) found_.emplace_back(steps, name);
    }

    std::vector<std::string> names()
    {
        std::ranges::stable_sort(found_, {}, &std::pair<std::size_t, std::string_view>::first);
        std::vector<std::string> result;
        for (const auto& [steps, name] : found_)
            if (result.size() < 3 && std::ranges::find(result, name) == result.end()) result.emplace_back(name);
        return result;
    }

private:
    std::string what_;
    std::vector<std::pair<std::size_t, std::string_view>> found_;
};

} // namespace

std::string_view named_in(std::string_view text)
{
    const std::size_t start = std::min(text.find_first_not_of(" \t\n"), text.size());
    text.remove_prefix(start);
    // A label may have colons in it, but none before a blank.
    std::size_t colon = text.find(':');
    while (colon != text.npos && colon + 1 < text.size() && text[colon + 1] != ' ') colon = text.find(':', colon + 1);
    text = text.substr(0, colon);
    return text.substr(0, text.find_last_not_of(" \t\n") + 1);
}

std::vector<const Field*> find_fields(std::string_view what)
{
    const std::string name = simple(what);
    std::vector<const Field*> found;
    if (name.empty()) return found;
    for (const Field& field : dictionary::fields())
        if (is_called(field, name) && (field.array == nullptr || number_in(what).value_or(0) < field.array->count)) found.push_back(&field);
    if (!found.empty() || array_without_element(what) != nullptr) return found;
    for (const Field& field : dictionary::fields())
        if (has_words(field.name, name) || std::ranges::any_of(field.lines, [&](const auto& line) { return has_words(line.label, name); }))
            found.push_back(&field);
    return found;
}

std::vector<std::string_view> find_labels(std::string_view what, const std::vector<const Field*>& fields)
{
    const auto labels = [&](auto is_meant)
    {
        std::vector<std::string_view> found;
        for (const Field* field : fields)
            for (const dictionary::ReportLine& line : field->lines)
                if (is_meant(line.label, lower(what)) && std::ranges::find(found, line.label) == found.end()) found.push_back(line.label);
        return found;
    };
    std::vector<std::string_view> same = labels(is_label);
    if (!same.empty() || !std::ranges::none_of(fields, [&](const Field* field) { return is_called(*field, simple(what)); })) return same;
    return labels(has_words);
}

const dictionary::Array* array_without_element(std::string_view what)
{
    const std::optional<std::size_t> number = number_in(what);
    if (!number) return nullptr;
    for (const Field& field : dictionary::fields())
    {
        if (field.array == nullptr || *number < field.array->count) continue;
        if (is_end_of(simple(what), field.full_name) || is_end_of(simple(what), lower(field.member))) return field.array;
    }
    return nullptr;
}

std::vector<std::string> nearest_names(std::string_view what)
{
    Nearest nearest(what);
    for (const records::Component& component : records::components()) nearest.consider(component.name, component.name);
    for (const Field& field : dictionary::fields())
    {
        nearest.consider(field.full_name, field.full_name);
        nearest.consider(field.name, field.name);
        nearest.consider(last_part(field.name), last_part(field.name));
        nearest.consider(last_part(field.member), last_part(field.member));
        for (const dictionary::ReportLine& line : field.lines) nearest.consider(line.label, line.label);
        if (!field.metric.family.empty()) nearest.consider(field.metric.family, field.metric.family);
    }
    return nearest.names();
}

std::vector<std::string> nearest_field_names(std::string_view what)
{
    Nearest nearest(what);
    for (const Field& field : dictionary::fields())
    {
        nearest.consider(field.full_name, field.full_name);
        nearest.consider(field.full_name, field.name);
        nearest.consider(field.full_name, last_part(field.name));
    }
    return nearest.names();
}

} // namespace views
