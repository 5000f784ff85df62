#include <algorithm>
#include <array>
#include <charconv>

#include "difference.h"
#include "failure.h"
#include "number_text.h"
#include "value_text.h"

namespace views
{

namespace
{

/** Name, old, new, difference, rate, unit. */
using Row = std::array<std::string, 6>;

std::string start_text(const records::Instance& instance)
{
    return instance_text(instance) + " of " + moment_text(instance.started_at);
}

std::string side(const records::Snapshot& snapshot, const FieldPlace& place, bool is_shown_anyway)
{
    if (!is_shown_anyway && !Comparison::has_value(snapshot, place)) return "-";
    return value_text(*place.field, snapshot.record(dictionary::component_of(*place.field)), place.element);
}

Row row_of(const Comparison& comparison, const FieldPlace& place)
{
    const records::Snapshot& old = comparison.old_snapshot();
    const records::Snapshot& now = comparison.new_snapshot();
    const bool has_none = !Comparison::has_value(old, place) && !Comparison::has_value(now, place);
    const std::string difference = comparison.difference(place);
    const bool is_rise = !difference.empty() && difference.front() != '-';
    const auto rate = comparison.rate(place);
    return {place.name(),
            side(old, place, has_none),
            side(now, place, has_none),
            (is_rise ? "+" : "") + difference,
            rate ? rate_text(*rate) + "/s" : "",
            std::string(place.field->unit)};
}

/** Who is compared, from when to when. */
std::string heading(const Comparison& comparison)
{
    const records::Snapshot& old = comparison.old_snapshot();
    const records::Snapshot& now = comparison.new_snapshot();
    const std::string decoder = comparison.is_other_decoder() ? old.decoder + " and " + now.decoder : now.decoder;
    return files::printable(decoder) + (decoder.empty() ? "" : ": ") + moment_text(old.taken_at) + " to " + moment_text(now.taken_at) +
           ", " + seconds_text(comparison.span()) + " s\n";
}

/** Whether a component's counters have begun anew though its host has not. */
std::string reset_remark(const Comparison& comparison, const records::Component& component)
{
    std::vector<FieldPlace> fallen = comparison.fallen_counters();
    std::erase_if(fallen, [&](const FieldPlace& place) { return place.field->component != component.index; });
    if (fallen.empty()) return "";
    const std::string others = fallen.size() == 1 ? " has" : " and " + std::to_string(fallen.size() - 1) + " more of its counters have";
    return "reset: " + std::string(component.name) + ", for " + fallen.front().name() + others + " fallen\n";
}

/** What makes counters begin anew, and what only one of the Snapshots has. */
std::string remarks(const Comparison& comparison)
{
    std::string text;
    const records::Snapshot& old = comparison.old_snapshot();
    const records::Snapshot& now = comparison.new_snapshot();
    if (comparison.is_other_decoder()) text += "these are two decoders\n";
    if (!comparison.is_other_decoder() && comparison.is_restarted())
        text += "restarted: instance " + start_text(*old.instance) + " became " + start_text(*now.instance) + "\n";
    if (comparison.span() < 0) text += "the clock was set back\n";
    for (const records::Component& component : records::components()) text += reset_remark(comparison, component);
    for (const records::Component& component : records::components())
        if (old.has(component) != now.has(component))
            text += (old.has(component) ? "only the old one has a record of " : "only the new one has a record of ") +
                    std::string(component.name) + "\n";
    return text;
}

} // namespace

std::string rate_text(double rate)
{
    const int decimals = rate == 0 ? 0 : rate < 1 ? 3 : rate < 100 ? 2 : 0;
    std::array<char, 400> buffer;
    return {buffer.data(), std::to_chars(buffer.data(), buffer.data() + buffer.size(), rate, std::chars_format::fixed, decimals).ptr};
}

std::string difference_lines(const Comparison& comparison)
{
    std::vector<Row> rows = {{"FIELD", "OLD", "NEW", "DIFFERENCE", "RATE", "UNIT"}};
    for (const FieldPlace& place : comparison.changes()) rows.push_back(row_of(comparison, place));
    std::array<std::size_t, std::tuple_size_v<Row>> widths = {};
    for (const Row& row : rows)
        for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], row[i].size());

    std::string text = heading(comparison) + remarks(comparison);
    if (comparison.changes().empty()) return text + "nothing has changed\n";
    for (const Row& row : rows)
    {
        for (std::size_t i = 0; i < row.size(); ++i) text.append(row[i]).append(widths[i] - row[i].size() + 2, ' ');
        text.erase(text.find_last_not_of(' ') + 1);
        text += '\n';
    }
    return text;
}

} // namespace views
