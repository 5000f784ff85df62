/**
 * @file row.h
 * How the rows of the dictionary are written: one expression a field, in the order of the header.
 *
 *     counter(COUNTERS(nNumErrors), "receive_errors").line("Errors"),
 *     last(COUNTERS(tLastError), "last_receive_error_time", "receive_errors").line("Errors"),
 *
 * The compiler supplies offset, size and type; meaning, unit and absent value come from the header by meanings.inc. A field
 * named in a row is one of the same block, or else of the record.
 */
#ifndef DICTIONARY_ROW_H
#define DICTIONARY_ROW_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <type_traits>
#include <utility>

#include "dictionary.h"

namespace dictionary::row
{

inline constexpr STATS_LEVEL debug = STATS_LEVEL_DEBUG;

/** Where a field stands in its C record. */
struct Member
{
    std::string_view path;
    std::size_t offset;
    std::size_t size;
    Type type;
};

/** Where a nested record, or an array of them, stands in its C record. */
struct Place
{
    std::string_view path;
    std::size_t offset;
    std::size_t stride = 0;
    std::size_t count = 0;
};

template <typename T> constexpr Member member(std::type_identity<T>, std::string_view path, std::size_t offset)
{
    return {path, offset, sizeof(T), type_of<T>()};
}

constexpr Place place(std::string_view path, std::size_t offset)
{
    return {.path = path, .offset = offset};
}

template <typename T, std::size_t N> constexpr Place array(std::type_identity<T[N]>, std::string_view path, std::size_t offset)
{
    return {path, offset, sizeof(T), N};
}

// A member cannot stand in parentheses. NOLINTBEGIN(bugprone-macro-parentheses)
#define DICTIONARY_TYPE_OF(record, path) std::type_identity<decltype(std::declval<record&>().path)>()
#define DICTIONARY_MEMBER(record, path)  ::dictionary::row::member(DICTIONARY_TYPE_OF(record, path), #path, offsetof(record, path))
#define DICTIONARY_ARRAY(record, path)   ::dictionary::row::array(DICTIONARY_TYPE_OF(record, path), #path, offsetof(record, path))
#define DICTIONARY_PLACE(record, path)   ::dictionary::row::place(#path, offsetof(record, path))
// NOLINTEND(bugprone-macro-parentheses)

/** A Term that names its field. */
struct NamedTerm
{
    std::string_view field;
    Term::Test test = Term::Test::is;
    std::int64_t first = 0;
    std::int64_t second = 0;
};

/** A Condition that names its fields. */
struct When
{
    std::array<NamedTerm, 2> terms = {};
    std::uint8_t count = 0;
    bool either = false;
    bool never = false;
};

constexpr When is(std::string_view field, std::int64_t value)
{
    return {.terms = {{{field, Term::Test::is, value, value}}}, .count = 1};
}
constexpr When is_one_of(std::string_view field, std::int64_t value, std::int64_t other)
{
    return {.terms = {{{field, Term::Test::is, value, other}}}, .count = 1};
}
constexpr When is_not(std::string_view field, std::int64_t value)
{
    return {.terms = {{{field, Term::Test::is_not, value, value}}}, .count = 1};
}
/** A flag that is set, or a counter that has counted. */
constexpr When is_set(std::string_view field)
{
    return {.terms = {{{field, Term::Test::not_zero}}}, .count = 1};
}
constexpr When has_text(std::string_view field)
{
    return {.terms = {{{field, Term::Test::not_empty}}}, .count = 1};
}
constexpr When both(const When& one, const When& other)
{
    if (one.count == 0) return other;
    if (other.count == 0) return one;
    return {.terms = {one.terms.at(one.count - 1u), other.terms.at(other.count - 1u)}, .count = 2};
}
constexpr When either(const When& one, const When& other)
{
    return {.terms = {one.terms[0], other.terms[0]}, .count = 2, .either = true};
}
inline constexpr When never = {.never = true};

/** A row. */
struct Row
{
    Kind kind = Kind::gauge;
    Member member = {};
    std::string_view own_name = {};
    std::string_view block = {};      // the name of the block that it stands in, with its dot: srt.
    std::string_view block_path = {}; // the same in C: Xport.SRT.
    bool in_array = false;

    Relation relation = Relation::none;
    std::string_view related = {};
    When condition = {};
    const States* states = nullptr;
    std::array<ReportLine, 9> lines = {};
    std::size_t line_count = 0;
    std::size_t padding_behind = 0;

    MetricType metric = MetricType::gauge;
    bool is_label = false;
    std::string_view series = {}; // in place of the name, where several fields are one family
    std::string_view fixed_label = {};
    std::string_view fixed_value = {};

    /** A line of the report shows it, from this level on. */
    constexpr Row line(std::string_view label, STATS_LEVEL level = STATS_LEVEL_DEFAULT) const
    {
        Row row = *this;
        row.lines.at(row.line_count++) = {label, level};
        return row;
    }

    /** It means something when this holds. */
    constexpr Row when(const When& condition_of_row) const
    {
        Row row = *this;
        row.condition = condition_of_row;
        return row;
    }

    constexpr Row max_of(std::string_view field) const { return relates(Relation::max_of, field); }
    constexpr Row min_of(std::string_view field) const { return relates(Relation::min_of, field); }

    /** Among the metrics it is a label of an info series. */
    constexpr Row info() const { return as(MetricType::info); }

    /** It is not among the metrics. */
    constexpr Row no_metric() const { return as(MetricType::none); }

    /** It is a label of its array element's info series and of all the element's other series. */
    constexpr Row label() const
    {
        Row row = as(MetricType::info);
        row.is_label = true;
        return row;
    }

    /** Its metric's name is made of another name than its own; where several fields share it, a label tells them apart. */
    constexpr Row metric_name(std::string_view name, std::string_view label_name = {}, std::string_view label_value = {}) const
    {
        Row row = *this;
        row.series = name;
        row.fixed_label = label_name;
        row.fixed_value = label_value;
        return row;
    }

    /** The compiler leaves bytes behind it. */
    constexpr Row padding(std::size_t bytes) const
    {
        Row row = *this;
        row.padding_behind = bytes;
        return row;
    }

    constexpr Row relates(Relation what, std::string_view field) const
    {
        Row row = *this;
        row.relation = what;
        row.related = field;
        return row;
    }

    constexpr Row as(MetricType type) const
    {
        Row row = *this;
        row.metric = type;
        return row;
    }
};

constexpr Row counter(const Member& member, std::string_view name)
{
    return {.kind = Kind::counter, .member = member, .own_name = name, .metric = MetricType::counter};
}
constexpr Row gauge(const Member& member, std::string_view name)
{
    return {.kind = Kind::gauge, .member = member, .own_name = name};
}
/** An extreme of what no field holds. */
constexpr Row extreme(const Member& member, std::string_view name)
{
    return {.kind = Kind::extreme, .member = member, .own_name = name};
}
/** The largest value of another field since the start. */
constexpr Row max(const Member& member, std::string_view name, std::string_view of)
{
    return extreme(member, name).max_of(of);
}
/** The smallest value of another field since the start. */
constexpr Row min(const Member& member, std::string_view name, std::string_view of)
{
    return extreme(member, name).min_of(of);
}
constexpr Row state(const Member& member, std::string_view name, const States& states)
{
    return {.kind = Kind::state, .member = member, .own_name = name, .states = &states, .metric = MetricType::state_set};
}
constexpr Row flag(const Member& member, std::string_view name)
{
    return {.kind = Kind::flag, .member = member, .own_name = name};
}
/** The time of an event that nothing counts. */
constexpr Row event(const Member& member, std::string_view name)
{
    return {.kind = Kind::event_time, .member = member, .own_name = name};
}
/** The time of the last event that another field counts. */
constexpr Row last(const Member& member, std::string_view name, std::string_view counter_name)
{
    return event(member, name).relates(Relation::last_of, counter_name);
}
/** The time at which another field took its value. */
constexpr Row moment(const Member& member, std::string_view name, std::string_view of)
{
    return event(member, name).relates(Relation::at_of, of);
}
constexpr Row identity(const Member& member, std::string_view name)
{
    return {.kind = Kind::identity, .member = member, .own_name = name, .metric = MetricType::info};
}
constexpr Row text(const Member& member, std::string_view name)
{
    return {.kind = Kind::text, .member = member, .own_name = name, .metric = MetricType::info};
}

/** The rows of a nested record. @param name "srt." @param when the condition of those that have none, and a term of the others */
template <std::size_t N>
constexpr std::array<Row, N> within(const Place& place, std::string_view name, const When& when, std::array<Row, N> rows)
{
    for (Row& row : rows)
    {
        row.block = name;
        row.block_path = place.path;
        row.member.offset += place.offset;
        row.condition = row.condition.never ? never : both(when, row.condition);
    }
    return rows;
}

/** An array of a record. */
struct Elements
{
    Place place = {};
    std::string_view name = {};
    std::string_view label = {};
    std::size_t first_number = 0;
    When in_use = {};
};

/** The rows of an array's elements. @param name "sources[]." */
template <std::size_t N> constexpr std::array<Row, N> each(const Elements& elements, std::string_view name, std::array<Row, N> rows)
{
    for (Row& row : rows)
    {
        row.block = name;
        row.block_path = elements.place.path;
        row.member.offset += elements.place.offset;
        row.in_array = true;
    }
    return rows;
}

/** Rows in the order of the header. */
template <std::size_t... N> constexpr auto join(const std::array<Row, N>&... parts)
{
    std::array<Row, (N + ...)> all;
    std::size_t next = 0;
    const auto append = [&](const auto& rows)
    {
        for (const Row& row : rows) all[next++] = row;
    };
    (append(parts), ...);
    return all;
}

/** The rows of one record. */
template <std::size_t N> struct RecordRows
{
    std::string_view key; // of its component
    std::size_t size;
    std::array<Row, N> rows;
    Elements elements = {};
};

template <typename Record, std::size_t N>
constexpr RecordRows<N> rows_of(std::string_view key, const std::array<Row, N>& rows, const Elements& elements = {})
{
    return {key, sizeof(Record), rows, elements};
}

/** Whether the rows and their named padding cover every byte of a record of that size. */
template <std::size_t Size, std::size_t N> constexpr bool tile(const RecordRows<N>& record)
{
    std::array<bool, Size> covered = {};
    for (const Row& row : record.rows)
    {
        const std::size_t count = row.in_array ? record.elements.place.count : 1;
        for (std::size_t i = 0; i < count; ++i)
            for (std::size_t j = 0; j < row.member.size + row.padding_behind; ++j)
                covered.at(row.member.offset + i * record.elements.place.stride + j) = true;
    }
    for (const bool byte : covered)
        if (!byte) return false;
    return true;
}

} // namespace dictionary::row

#endif
