// The fields, from the rows and from what the headers say.

#include "table.h"

#include <limits>
#include <tuple>
#include <utility>

#include "dictionary.h"
#include "units.h"

namespace dictionary
{

namespace
{

using table::entries;
using table::Entry;
using table::Short;

/** What a header says about a field. */
struct Said
{
    std::string_view component;
    std::string_view member;
    std::string_view c_type;
    std::string_view meaning;
    std::string_view unit;
    std::string_view absent;
};

constexpr Said said[] = {
#include "meanings.inc"
};

/** Row and comment are about the same member, one by one: no field without a row, no row out of order. */
constexpr bool rows_follow_the_headers()
{
    if (std::size(said) != entries.size()) return false;
    for (std::size_t i = 0; i < entries.size(); ++i)
        if (said[i].component != entries[i].key || said[i].member != table::members[i]) return false;
    return true;
}
static_assert(rows_follow_the_headers(), "run scripts/dictionary update, or give the new field its row");

/* ---- When a field is absent ---- */

/** The field that the words "with MEMBER 0 = none" name, or no_field. */
constexpr std::uint16_t absent_with(std::size_t index)
{
    std::string_view words = said[index].absent;
    if (!words.starts_with("with ")) return no_field;
    words.remove_prefix(5);
    words = words.substr(0, words.find(' '));
    const std::size_t component = entries[index].component;
    for (std::uint16_t i = table::starts[component]; i < table::starts[component + 1]; ++i)
        if (table::members[i] == words) return i;
    throw "a comment names a member that its record does not have";
}

/** A state is never absent: the value that stands for no information has an identifier as all others do. */
constexpr AbsentRule absent_rule(std::size_t index)
{
    const std::string_view words = said[index].absent;
    if (words.empty() || words.starts_with("with ") || entries[index].row.kind == Kind::state) return AbsentRule::never;
    if (words.starts_with("0 = ")) return AbsentRule::zero;
    if (words.starts_with("0 or less = ")) return AbsentRule::zero_or_less;
    if (words.starts_with("empty = ")) return AbsentRule::empty;
    if (words.starts_with("all 0 = ")) return AbsentRule::all_zero;
    throw "no rule for these words";
}

/* ---- Metrics ---- */

constexpr const Unit& unit_of(std::size_t index)
{
    for (const Unit& unit : units)
        if (unit.name == said[index].unit) return unit;
    throw "a unit that is not on the list";
}

constexpr bool drop_end(std::string_view& name, std::string_view end)
{
    if (!name.ends_with(end)) return false;
    name.remove_suffix(end.size());
    return true;
}

/** decoder_tdemux_source_, decoder_tdemux_srt_, decoder_tdemux_ */
constexpr Short metric_prefix(const Entry& entry)
{
    Short prefix;
    ((prefix += "decoder_") += entry.key) += "_";
    if (entry.row.in_array)
        (prefix += table::elements[entry.component].label) += "_";
    else if (!entry.row.block.empty())
        (prefix += entry.row.block.substr(0, entry.row.block.size() - 1)) += "_";
    return prefix;
}

/** The own name as a label or as part of a metric's name. */
constexpr Short with_underscores(std::string_view name)
{
    Short text;
    for (const char character : name) text += character == '.' ? "_" : std::string_view(&character, 1);
    return text;
}

constexpr std::size_t index_of(const Entry& entry)
{
    return static_cast<std::size_t>(&entry - entries.data());
}

/**
 * The metric's family: prefix and name, with the base unit at its end, and times as timestamps. A bit rate becomes a data rate,
 * as it is then one of bytes.
 */
constexpr Short metric_family(const Entry& entry)
{
    Short family;
    if (entry.row.metric == MetricType::none) return family;
    family += metric_prefix(entry).view();
    if (entry.row.metric == MetricType::info)
    {
        --family.size; // the blank's underscore: decoder_tdemux_info is the sample of decoder_tdemux
        return family;
    }

    const Short own = with_underscores(entry.row.series.empty() ? entry.row.own_name : entry.row.series);
    std::string_view name = own.view();
    const std::string_view base = unit_of(index_of(entry)).base;
    if (entry.row.kind == Kind::event_time)
    {
        drop_end(name, "_time");
        return (family += name) += "_timestamp_seconds";
    }
    const bool is_bit_rate = base == "bytes_per_second" && drop_end(name, "bit_rate");
    if (!drop_end(name, "_hz") && !drop_end(name, "_ppm")) drop_end(name, base);
    family += name;
    if (is_bit_rate) family += "data_rate";
    if (!base.empty()) (family += family.view().ends_with('_') ? "" : "_") += base;
    return family;
}

constexpr auto families = table::pool<metric_family>();

constexpr Short info_label(const Entry& entry)
{
    return with_underscores(entry.row.own_name);
}
constexpr auto labels = table::pool<info_label>();

constexpr Metric metric(std::size_t index)
{
    const row::Row& row = entries[index].row;
    Metric metric;
    metric.type = row.metric;
    metric.family = families[index];
    metric.fixed_label = row.fixed_label;
    metric.fixed_value = row.fixed_value;
    if (row.metric == MetricType::info) metric.label = labels[index];
    if (row.metric == MetricType::state_set) metric.label = families[index];
    if (row.metric == MetricType::counter || row.metric == MetricType::gauge)
    {
        const Unit& unit = unit_of(index);
        metric.unit = unit.base;
        metric.multiply = unit.multiply;
        metric.divide = unit.divide;
    }
    return metric;
}

/* ---- The arrays, the lines and the fields ---- */

constexpr std::size_t array_count = static_cast<std::size_t>(
    std::ranges::count_if(table::elements, [](const row::Elements& elements) { return elements.place.count != 0; }));

constexpr auto make_arrays()
{
    std::array<Array, array_count> all = {};
    std::size_t next = 0;
    for (std::size_t component = 0; component < table::elements.size(); ++component)
    {
        const row::Elements& elements = table::elements[component];
        if (elements.place.count == 0) continue;
        const auto is_in = [component](const Entry& entry) { return entry.component == component && entry.row.in_array; };
        const auto first = std::ranges::find_if(entries, is_in);
        all.at(next++) = {.component = static_cast<std::uint16_t>(component),
                          .name = elements.name,
                          .member = elements.place.path,
                          .label = elements.label,
                          .first_number = elements.first_number,
                          .offset = elements.place.offset,
                          .stride = elements.place.stride,
                          .count = elements.place.count,
                          .in_use = table::resolve(*first, elements.in_use),
                          .first_field = static_cast<std::uint16_t>(first - entries.begin()),
                          .field_count = static_cast<std::uint16_t>(std::ranges::count_if(entries, is_in))};
    }
    return all;
}
constexpr std::array arrays = make_arrays();

constexpr const Array* array(std::size_t index)
{
    if (!entries[index].row.in_array) return nullptr;
    return std::ranges::find(arrays, entries[index].component, &Array::component);
}

constexpr std::size_t line_count()
{
    std::size_t count = 0;
    for (const Entry& entry : entries) count += entry.row.line_count;
    return count;
}

struct Lines
{
    std::array<ReportLine, line_count()> all = {};
    std::array<std::size_t, field_count + 1> start = {};
};

constexpr Lines make_lines()
{
    Lines lines;
    std::size_t next = 0;
    for (std::size_t i = 0; i < entries.size(); ++i)
    {
        lines.start[i] = next;
        for (std::size_t j = 0; j < entries[i].row.line_count; ++j) lines.all.at(next++) = entries[i].row.lines.at(j);
    }
    lines.start[entries.size()] = next;
    return lines;
}
constexpr Lines lines = make_lines();

/** What Make gives for each row. */
template <auto Make> constexpr auto for_each_row()
{
    std::array<decltype(Make(0)), field_count> all = {};
    for (std::size_t i = 0; i < field_count; ++i) all[i] = Make(i);
    return all;
}

constexpr std::uint16_t related_field(std::size_t index)
{
    const Entry& entry = entries[index];
    return entry.row.relation == Relation::none ? no_field : table::resolve(entry, entry.row.related);
}
constexpr std::array related = for_each_row<related_field>();

constexpr Condition condition(std::size_t index)
{
    return table::resolve(entries[index], entries[index].row.condition);
}
constexpr std::array conditions = for_each_row<condition>();

/** The first event time that is the last event or the moment of a field. */
constexpr std::uint16_t moment(std::size_t index)
{
    const std::size_t component = entries[index].component;
    for (std::uint16_t i = table::starts[component]; i < table::starts[component + 1]; ++i)
        if (related[i] == index && entries[i].row.kind == Kind::event_time) return i;
    return no_field;
}
constexpr std::array moments = for_each_row<moment>();

constexpr std::array metrics = for_each_row<metric>();

constexpr Field field(std::size_t index)
{
    const Entry& entry = entries[index];
    const std::string_view label = labels[index];
    Field field = {.index = static_cast<std::uint16_t>(index),
                   .component = entry.component,
                   .full_name = table::full_names[index],
                   .name = table::names[index],
                   .member = table::members[index],
                   .c_type = said[index].c_type,
                   .type = entry.row.member.type,
                   .kind = entry.row.kind,
                   .absent_rule = absent_rule(index),
                   .relation = entry.row.relation,
                   .related = related[index],
                   .moment = moments[index],
                   .absent_with = absent_with(index),
                   .first_offset = entry.row.member.offset,
                   .size = entry.row.member.size,
                   .array = array(index),
                   .unit = unit_of(index).name,
                   .meaning = said[index].meaning,
                   .absent = said[index].absent,
                   .condition = conditions[index],
                   .lines = std::span(lines.all).subspan(lines.start[index], lines.start[index + 1] - lines.start[index]),
                   .states = entry.row.states,
                   .is_label = entry.row.is_label,
                   .label_name = label,
                   .metric = metrics[index]};
    // A value whose moment is kept beside it has not been measured while that moment is never.
    if (field.kind == Kind::extreme || field.kind == Kind::gauge)
        if (field.moment != no_field && entries[field.moment].row.relation == Relation::at_of && field.absent_with == no_field)
            field.absent_with = field.moment;
    return field;
}

/* ---- The fields without pointers ---- */

// A pointer in constant data is one that the loader has to put in whenever the program starts. The fields would have twelve
// thousand, a seventh of the time that the tool takes to start; so they are put in when somebody asks for the fields.

/** The texts of a field. */
constexpr auto texts_of(auto& field)
{
    return std::array{&field.full_name,
                      &field.name,
                      &field.member,
                      &field.c_type,
                      &field.unit,
                      &field.meaning,
                      &field.absent,
                      &field.label_name,
                      &field.metric.unit,
                      &field.metric.family,
                      &field.metric.label,
                      &field.metric.fixed_label,
                      &field.metric.fixed_value};
}
constexpr std::size_t texts_each = std::tuple_size_v<decltype(texts_of(std::declval<Field&>()))>;

constexpr std::size_t size_of_texts()
{
    std::size_t size = 0;
    for (std::size_t i = 0; i < field_count; ++i)
    {
        const Field whole = field(i);
        for (const std::string_view* text : texts_of(whole)) size += text->size();
    }
    return size;
}

/** The fields, their texts, lines, arrays and states left out. */
struct Bare
{
    std::array<Field, field_count> fields;
    std::array<char, size_of_texts()> characters; /**< of all texts, one behind the other */
    std::array<std::array<std::uint8_t, texts_each>, field_count> sizes;
};

constexpr Bare make_bare()
{
    Bare bare = {};
    std::size_t end = 0;
    for (std::size_t i = 0; i < field_count; ++i)
    {
        Field& bared = bare.fields[i] = field(i);
        const auto texts = texts_of(bared);
        for (std::size_t j = 0; j < texts_each; ++j)
        {
            if (texts[j]->size() > std::numeric_limits<std::uint8_t>::max()) throw "a text for which a byte is too small to count it";
            bare.sizes[i][j] = static_cast<std::uint8_t>(texts[j]->size());
            for (const char character : *texts[j]) bare.characters[end++] = character;
            *texts[j] = {};
        }
        bared.lines = {};
        bared.array = nullptr;
        bared.states = nullptr;
    }
    return bare;
}
constexpr Bare bare = make_bare();

constexpr const States* states_of(std::size_t index)
{
    return entries[index].row.states;
}
constexpr std::array all_states = for_each_row<states_of>();

std::array<Field, field_count> with_pointers()
{
    std::array<Field, field_count> all = bare.fields;
    const char* next = bare.characters.data();
    for (std::size_t i = 0; i < field_count; ++i)
    {
        const auto texts = texts_of(all[i]);
        for (std::size_t j = 0; j < texts_each; ++j)
        {
            *texts[j] = {next, bare.sizes[i][j]};
            next += texts[j]->size();
        }
        all[i].lines = std::span(lines.all).subspan(lines.start[i], lines.start[i + 1] - lines.start[i]);
        all[i].states = all_states[i];
    }
    for (const Array& array : arrays)
        for (std::size_t i = 0; i < array.field_count; ++i) all[array.first_field + i].array = &array;
    return all;
}

} // namespace

std::span<const Field, field_count> fields()
{
    static const std::array<Field, field_count> all = with_pointers();
    return all;
}

const Array* array_of(const records::Component& component)
{
    const auto found = std::ranges::find(arrays, component.index, &Array::component);
    return found == arrays.end() ? nullptr : &*found;
}

} // namespace dictionary
