/**
 * @file dictionary.h
 * Every field of the eight records, once: where it stands in its record, what it is called, what kind of value it is, when it
 * applies and when it is absent, which lines of the reports show it and which metric carries it. Constant data: looking
 * something up allocates nothing unless it says so, does no I/O and knows no locale. All of it is thread-safe. The first use
 * takes some microseconds more than the others.
 */
#ifndef DICTIONARY_DICTIONARY_H
#define DICTIONARY_DICTIONARY_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>

#include "component.h"
#include "states.h"
#include "stats.h"
#include "type.h"

namespace dictionary
{

/** Number of fields; those of an array's elements are counted once. */
inline constexpr std::size_t field_count = 745;

/** What kind of value a field holds. */
enum class Kind : std::uint8_t
{
    counter,    /**< only grows, until the component restarts */
    gauge,      /**< goes up and down */
    extreme,    /**< the largest or smallest value since the component started */
    state,      /**< a code whose values have identifiers */
    flag,       /**< a BOOL: 0 is no, everything else yes */
    event_time, /**< when something last happened */
    identity,   /**< an id, a port, a version, an address: it names something and is not measured */
    text,       /**< a text for people */
};

/** The word of a kind: "event_time". */
std::string_view kind_name(Kind kind);

/** Which values of a field say that there is none. */
enum class AbsentRule : std::uint8_t
{
    never,        /**< every value is one */
    zero,         /**< 0 */
    zero_or_less, /**< 0 and every negative number */
    empty,        /**< a text without a character */
    all_zero,     /**< bytes that are all 0 */
};

/** What a field tells about another. */
enum class Relation : std::uint8_t
{
    none,
    last_of, /**< when the event that the other counts last happened */
    at_of,   /**< when the other, an extreme or a last value, took its value */
    max_of,  /**< the largest value of the other */
    min_of,  /**< the smallest value of the other */
};

/** Stands where there is no field. */
inline constexpr std::uint16_t no_field = 0xFFFF;

/** One comparison of a field's value. */
struct Term
{
    enum class Test : std::uint8_t
    {
        is,        /**< equals first or second */
        is_not,    /**< equals first no more */
        not_zero,  /**< a flag that is set, a counter that has counted */
        not_empty, /**< a text that holds a character */
    };

    std::uint16_t field = no_field; /**< place among fields(); in an array, the same element's */
    Test test = Test::is;
    std::int64_t first = 0;
    std::int64_t second = 0;
};

/** When a field means something. Without terms: always. */
struct Condition
{
    std::array<Term, 2> terms = {};
    std::uint8_t count = 0; /**< terms in use */
    bool either = false;    /**< one of the terms is enough */
    bool never = false;     /**< it never does */
};

/** An array of a record. Its elements are numbered from 0 in names. */
struct Array
{
    std::uint16_t component;   /**< place of its component among records::components() */
    std::string_view name;     /**< as in public names: sources */
    std::string_view member;   /**< as in the header: tSources */
    std::string_view label;    /**< the metrics' label that carries an element's number: source */
    std::size_t first_number;  /**< number of element 0 in that label: 0, or 1 where the reports count from 1 */
    std::size_t offset;        /**< of element 0 in the record [bytes] */
    std::size_t stride;        /**< size of an element [bytes] */
    std::size_t count;         /**< number of elements */
    Condition in_use;          /**< when an element holds something */
    std::uint16_t first_field; /**< place among fields() of the elements' first field */
    std::uint16_t field_count; /**< number of the elements' fields */
};

/** A line of a report that shows a field: its value, a word for it, or a number computed from it. */
struct ReportLine
{
    std::string_view label; /**< as printed, without the blanks around it */
    STATS_LEVEL level;      /**< the least level at which it does */
};

/** How a field appears among the metrics. */
enum class MetricType : std::uint8_t
{
    none, /**< it does not */
    counter,
    gauge,
    state_set, /**< one series for each of the field's states, the true one 1 */
    info,      /**< a label of the info series of its component, block or array element */
};

/** A field's metric. The sample of a counter ends in _total after family, that of an info series in _info. */
struct Metric
{
    MetricType type = MetricType::none;
    std::string_view family;      /**< name of the family: decoder_tdemux_source_received_packets; empty for none */
    std::string_view unit;        /**< base unit, the end of the family's name: seconds; empty = none */
    std::uint32_t multiply = 1;   /**< the sample is the value by multiply over divide; the dividing is exact or rounded once */
    std::uint32_t divide = 1;     /**< never 0 */
    std::string_view label;       /**< the label that carries the field: of an info series; of a state set, its family's name */
    std::string_view fixed_label; /**< a label that tells the field from the others of its family: type; empty = none */
    std::string_view fixed_value; /**< the value of that label: i */
};

/** A field. */
struct Field
{
    std::uint16_t index;               /**< place among fields(), from 0 */
    std::uint16_t component;           /**< place of its component among records::components() */
    std::string_view full_name;        /**< public name: tdemux.sources[].received_packets */
    std::string_view name;             /**< the same without the component: sources[].received_packets */
    std::string_view member;           /**< C member: tSources[].tCounters.nNumReceivedPackets */
    std::string_view c_type;           /**< C type as the header writes it: unsigned long */
    Type type;                         /**< how its bytes are read */
    Kind kind;                         /**< what it holds */
    AbsentRule absent_rule;            /**< which of its values are absent */
    Relation relation;                 /**< what it tells about another field */
    std::uint16_t related;             /**< place among fields() of that field */
    std::uint16_t moment;              /**< place of the event time that tells when it last grew or took its value */
    std::uint16_t absent_with;         /**< place of a field whose 0 makes this one absent too */
    std::size_t first_offset;          /**< offset in the record, in an array that of element 0 [bytes] */
    std::size_t size;                  /**< its own size [bytes] */
    const Array* array;                /**< the array that it is an element's field of, or NULL */
    std::string_view unit;             /**< of the closed list in units.h; empty = none */
    std::string_view meaning;          /**< what it is, as the header says it */
    std::string_view absent;           /**< the value that means absent, or that stands for no information, as the header says it */
    Condition condition;               /**< when it means something, beside Array::in_use */
    std::span<const ReportLine> lines; /**< the lines of its component's report that show it */
    const States* states;              /**< the values of a state, or NULL */
    bool is_label;                     /**< it makes the series of its array element readable, as label `label_name` */
    std::string_view label_name;       /**< the last part of its name: pid */
    Metric metric;

    /** Its offset in the record. @param element below Array::count; 0 outside arrays @return [bytes] */
    constexpr std::size_t offset(std::size_t element = 0) const
    {
        return array == nullptr ? first_offset : first_offset + element * array->stride;
    }

    /** How many of it a record holds. */
    constexpr std::size_t count() const { return array == nullptr ? 1 : array->count; }
};

/** All fields, in the order in which their reports are printed and, within a record, in the order of the header. */
std::span<const Field, field_count> fields();

/** The fields of one component. */
std::span<const Field> fields(const records::Component& component);

/** The component that a field belongs to. */
inline const records::Component& component_of(const Field& field)
{
    return records::components()[field.component];
}

/** The array of a component, or NULL: no record has two. */
const Array* array_of(const records::Component& component);

/** A field that was looked for, and the element where the name had a number. */
struct Found
{
    const Field* field;
    std::optional<std::size_t> element; /**< below Array::count */
};

/** Finds a field. @param name full name, of an array's field with [] or with an element's number in it @return or nothing */
std::optional<Found> find(std::string_view name);

/** The name of one element's field: tdemux.sources[2].pid. Allocates. */
std::string element_name(const Field& field, std::size_t element);

/** A moment to the nanosecond. */
struct Moment
{
    std::int64_t seconds = 0;
    std::int64_t nanoseconds = 0;

    bool operator==(const Moment&) const = default;
};

/** A field's value: a text up to its NUL or the end of its array, other arrays whole. Texts and bytes stay the record's. */
using Value = std::variant<std::int64_t, std::uint64_t, float, Moment, std::string_view, std::span<const std::byte>>;

/**
 * Reads a field.
 * @param record  the bytes of its component's record, of any alignment
 * @param element below Array::count; 0 outside arrays
 */
Value value(const Field& field, std::span<const std::byte> record, std::size_t element = 0);

/** Reads a field that is an integer, as its type reads it; 64 unsigned bits keep their pattern. 0 for every other type. */
std::int64_t integer(const Field& field, std::span<const std::byte> record, std::size_t element = 0);

/** Whether a field says that it has no value, as its header does, or as the moment of a value does that is still never. */
bool is_absent(const Field& field, std::span<const std::byte> record, std::size_t element = 0);

/** Whether an array's element holds something. */
bool in_use(const Array& array, std::span<const std::byte> record, std::size_t element);

/** Whether a field means something in this record: its element is in use and its condition holds. */
bool applies(const Field& field, std::span<const std::byte> record, std::size_t element = 0);

/** The identifier of a state's value as integer() reads it. Allocates for long ones. @return empty = no enumerator has it */
std::string identifier(const Field& field, std::int64_t code);

} // namespace dictionary

#endif
