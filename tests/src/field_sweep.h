// Which lines of a report does each field of its record change?
//
// A table holds one row for each field of a record and names the lines that change when that field alone does: lines that
// appear, disappear or read otherwise. SweepFields sets one field at a time to 1, to its largest and, if it is signed, to its
// smallest value and compares the lines that change with the row, at both levels:
//
//     {FIELD(nSize)},                                                               not printed
//     {FIELD(nPcrPid), .lines = {"PCR PID"}},                                       at both levels
//     {FIELD(nSmgrStreamID), .debugLines = {"Stream ID"}},                          at the debug level
//     {FIELD(tCounters.nNumErrors), .lines = {"Errors"}, .operatorLines = {"Last Error"}},
//     {FIELD(tCounters.tLastError), .lines = {"Errors"}, .ifCounted = true},        not while nNumErrors is 0
//     {FIELD(enState), .lines = {"State"}, .at = {{.value = 4, .lines = {"State", "Up Time"}}}},
//
// A line is known by its label, without the blanks around it. Inside a block the block's name stands before it:
// "SRT Stats/Latency". A title or a heading is known by its own text or by its block's name.
//
// A field that is hidden while others are 0 is swept once more on a base record that opens it, so a report has several
// tables. Which place of a line a value takes a row does not tell: that is for the tests of each report.
#ifndef FIELD_SWEEP_H
#define FIELD_SWEEP_H

#include <cstddef>
#include <cstring>
#include <functional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "stats.h"

using LineNames = std::vector<std::string>;

/** The name of a block's own title among the lines of that block. */
inline constexpr const char* block_title = "";

/** A value that a field is set to. A float takes a number as it is, a text takes 0 for empty and any other for short. */
struct SweptValue
{
    enum class Kind
    {
        Number,
        Largest, // of a text: one that fills its array
        Smallest
    };

    constexpr SweptValue(Kind k) : kind(k), number(0) {}
    template <typename T>
    requires std::is_integral_v<T> || std::is_enum_v<T>
    constexpr SweptValue(T n) : kind(Kind::Number), number(static_cast<long long>(n)) {}
    bool operator==(const SweptValue&) const = default;

    Kind kind;
    long long number;
};

inline constexpr SweptValue largest{SweptValue::Kind::Largest};
inline constexpr SweptValue smallest{SweptValue::Kind::Smallest};

/** A field of a record, as a range of its bytes. */
struct SweptField
{
    enum class Kind
    {
        Unsigned,
        Signed,
        Float,
        Text,
        Unswept // covered, but not set
    };

    std::string name;
    size_t offset;
    size_t size;
    Kind kind;
};

/** The lines of one value, where they are not those of the field's other values. */
struct ValueLines
{
    SweptValue value; // one that is not swept anyway is swept too
    LineNames lines = {};
    LineNames operatorLines = {};
    LineNames debugLines = {};
};

struct FieldRow
{
    SweptField field;
    LineNames lines = {};         // at both levels
    LineNames operatorLines = {}; // at the default level alone
    LineNames debugLines = {};    // at the debug level alone
    bool ifCounted = false;       // the time of a counter, which shows none while the count is 0
    std::vector<ValueLines> at = {};
};

using FieldRows = std::vector<FieldRow>;

/** How the lines of a report get their names. */
struct LineNaming
{
    struct Block
    {
        std::string title;         // part of the title
        std::string numbered = {}; // "Stream" names the blocks "Stream 1", "Stream 2", as printed; empty: the title's text
    };

    std::vector<Block> blocks = {};
    std::string tableRow = {}; // "Channel" names the lines below a rule "Channel 0", "Channel 1"
};

/** A report and the function that prints it. */
struct SweptReport
{
    std::function<void(const void*, STATS_LEVEL)> print;
    std::vector<bool> padding; // bytes of the record that belong to no field, as far as the compiler tells
    size_t alignment;          // of the record; 0 if padding is known
    LineNaming naming;
    LineNames constantLines; // headings and rules, which no field changes
};

/**
 * The record to start from, and what each field changes on it. The record prints every line that a row names, except the
 * hidden ones, which some field makes appear.
 */
struct SweepTable
{
    std::string name;
    std::vector<unsigned char> base;
    LineNames hiddenLines = {};         // at both levels
    LineNames hiddenOperatorLines = {}; // at the default level alone
    LineNames hiddenDebugLines = {};    // at the debug level alone
    FieldRows rows;
};

/** Sets every field of the table, one at a time; and the base record prints what it should. */
void SweepFields(const SweptReport& report, const SweepTable& table);

/** Every byte of the record lies in a row, so that a new field does not go without one. */
void CheckEveryByteHasARow(const SweptReport& report, const SweepTable& table);

/** Every line that a base record prints is named by a row of one of the tables, or constant. */
void CheckEveryLineIsNamed(const SweptReport& report, const std::vector<SweepTable>& tables);

/** All lists in one. */
LineNames AllLines(const std::vector<LineNames>& lists);
FieldRows AllRows(const std::vector<FieldRows>& lists);

/** The lines without those. */
LineNames Without(const LineNames& lines, const LineNames& excluded);

/** The lines as lines of a block; an empty name leaves them as they are. */
LineNames In(const std::string& block, const LineNames& lines);

/** The rows with those of the same field replaced. */
FieldRows Override(FieldRows rows, const FieldRows& replacements);

/** The same fields on a record whose counts are 0. */
FieldRows Uncounted(FieldRows rows);

/** The same fields where none of them is printed. */
FieldRows Silent(FieldRows rows);

/** The same fields where they are printed at the debug level alone. */
FieldRows DebugOnly(FieldRows rows);

/** The rows without sweeping the fields whose name begins so: another member of a union, say. */
FieldRows Unswept(FieldRows rows, const std::string& prefix);

/** The rows of a nested record, as rows of the record that holds it, and their lines as lines of a block; MEMBER gives its place. */
FieldRows Mounted(const FieldRows& rows, const std::string& place, size_t offset, const std::string& block);

/** The same where the block has other numbers at each level. */
FieldRows Mounted(const FieldRows& rows, const std::string& place, size_t offset, const std::string& operatorBlock,
                  const std::string& debugBlock);

template <typename T> SweptField FieldOf(const std::string& name, size_t offset)
{
    using Kind = SweptField::Kind;
    if constexpr (std::is_same_v<T, float>)
        return {name, offset, sizeof(T), Kind::Float};
    else if constexpr (std::is_same_v<std::remove_extent_t<T>, char>)
        return {name, offset, sizeof(T), Kind::Text};
    else if constexpr (std::is_enum_v<T>)
        return FieldOf<std::underlying_type_t<T>>(name, offset);
    else
    {
        static_assert(std::is_integral_v<T>, "records and arrays are swept by their fields");
        return {name, offset, sizeof(T), std::is_signed_v<T> ? Kind::Signed : Kind::Unsigned};
    }
}

/** The field of the type that is called Record where the row stands. */
#define FIELD(path) .field = FieldOf<std::remove_reference_t<decltype(std::declval<Record&>().path)>>(#path, offsetof(Record, path))

/** A row's field that covers array elements without setting them: the middle of an array whose ends are swept. */
#define UNSWEPT(first, last)                                \
    .field = {#first " to " #last, offsetof(Record, first), \
              offsetof(Record, last) + sizeof(std::declval<Record&>().last) - offsetof(Record, first), SweptField::Kind::Unswept}

/** Name and place of a nested record of Record. */
#define MEMBER(path) #path, offsetof(Record, path)

/** A zero record with some fields set. */
template <typename Record, typename Open> std::vector<unsigned char> RecordWith(Open open)
{
    Record record;
    std::memset(&record, 0, sizeof record);
    open(record);
    std::vector<unsigned char> bytes(sizeof record);
    std::memcpy(bytes.data(), &record, sizeof record);
    return bytes;
}

template <typename Record, typename Result>
SweptReport ReportOf(Result (*print)(const Record*, STATS_LEVEL), const LineNaming& naming, const LineNames& constantLines)
{
    std::vector<bool> padding(sizeof(Record));
    size_t alignment = alignof(Record);
#if __has_builtin(__builtin_clear_padding)
    Record record;
    std::memset(&record, 0xFF, sizeof record);
    __builtin_clear_padding(&record);
    std::vector<unsigned char> bytes(sizeof record);
    std::memcpy(bytes.data(), &record, sizeof record);
    for (size_t i = 0; i < bytes.size(); i++) padding[i] = bytes[i] == 0;
    alignment = 0;
#endif
    return {[print](const void* pRecord, STATS_LEVEL nLevel) { print(static_cast<const Record*>(pRecord), nLevel); }, padding, alignment,
            naming, constantLines};
}

#endif
