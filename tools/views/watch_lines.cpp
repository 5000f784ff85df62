#include "watch_lines.h"

#include <algorithm>
#include <array>

#include "difference.h"
#include "value_text.h"

namespace views
{

namespace
{

using dictionary::Field;

/** A rate, or else a difference, in its sign and unit: "+1036/s". Empty where nothing is known to have changed. */
std::string change_text(const Comparison& comparison, const FieldPlace& place)
{
    if (const auto rate = comparison.rate(place)) return "+" + rate_text(*rate) + "/s";
    const std::string difference = comparison.difference(place);
    if (difference.empty() || !comparison.has_changed(place)) return "";
    return (difference.front() == '-' ? "" : "+") + difference;
}

bool is_shown_in(const Field& field, std::string_view label)
{
    return std::ranges::find(field.lines, label, &dictionary::ReportLine::label) != field.lines.end();
}

/** The label of a report's line: what stands in front of its colon. */
std::string_view label_of(std::string_view line)
{
    const std::string_view label = line.substr(0, std::min(line.find(':'), line.size()));
    const std::size_t begin = label.find_first_not_of(' ');
    return begin == std::string_view::npos ? std::string_view() : label.substr(begin, label.find_last_not_of(' ') + 1 - begin);
}

/** The digits behind the colon of a report's line. */
std::string_view digits_of(std::string_view line)
{
    const std::size_t colon = line.find(": ");
    if (colon == std::string_view::npos) return {};
    const std::string_view text = line.substr(colon + 2);
    return text.substr(0, std::min(text.find_first_not_of("0123456789"), text.size()));
}

/** Every place of a component whose fields a line of that label shows. */
std::vector<FieldPlace> places_in(const records::Component& component, std::string_view label)
{
    std::vector<FieldPlace> places;
    for (const Field& field : dictionary::fields(component))
        if (is_shown_in(field, label))
            for (std::size_t i = 0; i < field.count(); ++i) places.push_back({&field, i});
    return places;
}

/**
 * The rate of the counter that a line shows. Lines of several streams have the same label: theirs are told apart by their
 * values, and where two counters stand at the same value but grow at different rates, none is given.
 */
std::string rate_of_line(const Comparison& comparison, std::span<const FieldPlace> places, std::string_view digits)
{
    std::string text;
    for (const FieldPlace& place : places)
    {
        const records::Snapshot& now = comparison.new_snapshot();
        if (place.field->kind != dictionary::Kind::counter || !Comparison::has_value(now, place)) continue;
        if (value_text(*place.field, now.record(dictionary::component_of(*place.field)), place.element) != digits) continue;
        const auto rate = comparison.rate(place);
        const std::string one = rate && *rate > 0 ? "+" + rate_text(*rate) + "/s" : "";
        if (!text.empty() && one != text) return "";
        text = one;
    }
    return text;
}

bool can_compare(const Comparison* comparison, const records::Component& component)
{
    return comparison != nullptr && comparison->old_snapshot().has(component) && comparison->new_snapshot().has(component);
}

/** What a field's line says: its name, its value with the unit, its change. */
struct FieldLine
{
    std::array<std::string, 3> columns;
    bool has_changed = false;
};

FieldLine field_line(const records::Snapshot& snapshot, const Comparison* comparison, const FieldPlace& place)
{
    const records::Component& component = dictionary::component_of(*place.field);
    const bool has_value = snapshot.has(component) && Comparison::has_value(snapshot, place);
    std::string value = has_value ? value_text(*place.field, snapshot.record(component), place.element) : "-";
    if (!place.field->unit.empty()) value.append(" ").append(place.field->unit);
    FieldLine line = {.columns = {place.name(), std::move(value), ""}};
    if (!can_compare(comparison, component)) return line;
    line.columns[2] = change_text(*comparison, place);
    line.has_changed = comparison->has_changed(place);
    return line;
}

} // namespace

std::vector<WatchLine> field_watch_lines(const records::Snapshot& snapshot, const Comparison* comparison,
                                         std::span<const dictionary::Found> fields)
{
    std::vector<FieldLine> all;
    std::array<std::size_t, 2> widths = {};
    for (const auto& [field, element] : fields)
    {
        const std::span<const std::byte> record = snapshot.record(dictionary::component_of(*field));
        for (std::size_t i = 0; i < field->count(); ++i)
        {
            const bool is_wanted = element ? *element == i : field->array == nullptr || dictionary::in_use(*field->array, record, i);
            if (!is_wanted) continue;
            all.push_back(field_line(snapshot, comparison, {field, i}));
            for (std::size_t j = 0; j < widths.size(); ++j) widths[j] = std::max(widths[j], all.back().columns[j].size());
        }
    }
    std::vector<WatchLine> lines;
    for (const auto& [columns, has_changed] : all)
    {
        std::string text = columns[0] + std::string(widths[0] - columns[0].size() + 2, ' ') + columns[1];
        if (!columns[2].empty()) text.append(widths[1] - columns[1].size() + 2, ' ').append(columns[2]);
        lines.push_back({.text = std::move(text), .has_changed = has_changed});
    }
    return lines;
}

std::vector<WatchLine> report_watch_lines(const records::Component& component, const std::string& report, std::span<const WatchLine> before,
                                          const Comparison* comparison)
{
    std::vector<WatchLine> lines;
    const bool is_compared = can_compare(comparison, component);
    for (std::size_t begin = 0; begin < report.size();)
    {
        const std::size_t end = std::min(report.find('\n', begin), report.size());
        WatchLine line = {.text = report.substr(begin, end - begin)};
        begin = end + 1;
        if (is_compared)
        {
            const std::vector<FieldPlace> places = places_in(component, label_of(line.text));
            const std::string rate = rate_of_line(*comparison, places, digits_of(line.text));
            const bool is_new = std::ranges::none_of(before, [&](const WatchLine& old) { return old.text.starts_with(line.text); });
            line.has_changed =
                is_new &&
                (places.empty() || std::ranges::any_of(places, [&](const FieldPlace& place) { return comparison->has_changed(place); }));
            if (!rate.empty()) line.text.append("  ").append(rate);
        }
        lines.push_back(std::move(line));
    }
    return lines;
}

} // namespace views
