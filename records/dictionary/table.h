/**
 * @file table.h
 * The dictionary, put together from its rows while it is compiled. Whoever includes it is left with what it makes of them:
 * constants, and no code.
 */
#ifndef DICTIONARY_TABLE_H
#define DICTIONARY_TABLE_H

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "audio.h"
#include "buffering.h"
#include "clock_recovery.h"
#include "metadata.h"
#include "tdemux.h"
#include "usage.h"
#include "vdecoder.h"
#include "vframer.h"

namespace dictionary::table
{

/** A row and the component that it belongs to. */
struct Entry
{
    row::Row row;
    std::uint16_t component;
    std::string_view key;
};

template <std::size_t... N> constexpr auto number(const row::RecordRows<N>&... records)
{
    std::array<Entry, (N + ...)> entries;
    std::size_t next = 0;
    std::uint16_t component = 0;
    const auto append = [&](const auto& record)
    {
        for (const row::Row& row : record.rows) entries[next++] = {row, component, record.key};
        ++component;
    };
    (append(records), ...);
    return entries;
}

/** Every row, in the order of records::components(). */
inline constexpr std::array entries =
    number(row::tdemux, row::vframer, row::vdecoder, row::audio, row::metadata, row::buffering, row::clock_recovery, row::usage);
static_assert(entries.size() == field_count);

/** The arrays by component. */
inline constexpr std::array elements = {row::tdemux.elements,   row::vframer.elements,   row::vdecoder.elements,       row::audio.elements,
                                        row::metadata.elements, row::buffering.elements, row::clock_recovery.elements, row::usage.elements};

/** A text that is put together. */
template <std::size_t Size> struct Text
{
    std::array<char, Size> characters = {};
    std::size_t size = 0;

    constexpr Text& operator+=(std::string_view text)
    {
        for (const char character : text) characters.at(size++) = character;
        return *this;
    }
    constexpr std::string_view view() const { return {characters.data(), size}; }
};

using Short = Text<160>;

/** The texts that are put together for each row, one behind the other, each with a NUL. */
template <std::size_t Size> struct Pool
{
    Text<Size> text = {};
    std::array<std::size_t, field_count + 1> start = {};

    constexpr std::string_view operator[](std::size_t index) const
    {
        return text.view().substr(start[index], start[index + 1] - start[index] - 1);
    }
};

template <auto Make> constexpr std::size_t pool_size()
{
    std::size_t size = 0;
    for (const Entry& entry : entries) size += Make(entry).size + 1;
    return size;
}

/** What Make puts together for each row. */
template <auto Make> constexpr auto pool()
{
    Pool<pool_size<Make>()> all;
    for (std::size_t i = 0; i < entries.size(); ++i)
    {
        all.start[i] = all.text.size;
        all.text += Make(entries[i]).view();
        all.text += std::string_view("\0", 1);
    }
    all.start[entries.size()] = all.text.size;
    return all;
}

/** tdemux.sources[].pid */
constexpr Short full_name(const Entry& entry)
{
    Short name;
    return (((name += entry.key) += ".") += entry.row.block) += entry.row.own_name;
}

/** tSources[].tsPid */
constexpr Short member(const Entry& entry)
{
    Short path;
    if (!entry.row.block_path.empty()) (path += entry.row.block_path) += entry.row.in_array ? "[]." : ".";
    return path += entry.row.member.path;
}

inline constexpr auto full_names = pool<full_name>();
inline constexpr auto members = pool<member>();

/** The names without their components. */
inline constexpr std::array names = []
{
    std::array<std::string_view, field_count> all;
    for (std::size_t i = 0; i < field_count; ++i) all[i] = full_names[i].substr(entries[i].key.size() + 1);
    return all;
}();

/** Where the rows of each component begin, and behind them the end. */
inline constexpr std::array starts = []
{
    std::array<std::uint16_t, elements.size() + 1> all = {};
    for (const Entry& entry : entries) ++all.at(entry.component + 1U);
    for (std::size_t i = 1; i < all.size(); ++i) all[i] = static_cast<std::uint16_t>(all[i] + all[i - 1]);
    return all;
}();

/** A field of a record by the name that a row calls it by: one of its own block, or else of the record. */
constexpr std::uint16_t resolve(const Entry& entry, std::string_view field)
{
    for (const std::string_view block : {entry.row.block, std::string_view()})
        for (std::uint16_t i = starts[entry.component]; i < starts[entry.component + 1U]; ++i)
            if (names[i].size() == block.size() + field.size() && names[i].ends_with(field) && names[i].starts_with(block)) return i;
    throw "a row names a field that its record does not have";
}

constexpr Condition resolve(const Entry& entry, const row::When& when)
{
    Condition condition = {.count = when.count, .either = when.either, .never = when.never};
    for (std::size_t i = 0; i < when.count; ++i)
        condition.terms.at(i) = {.field = resolve(entry, when.terms.at(i).field),
                                 .test = when.terms.at(i).test,
                                 .first = when.terms.at(i).first,
                                 .second = when.terms.at(i).second};
    return condition;
}

} // namespace dictionary::table

#endif
