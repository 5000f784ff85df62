/**
 * @file record_layout.h
 * The layouts of records in files: how this program's are written, and how records laid out otherwise become records of this
 * program. A file of another release may have other fields: they are found by their names.
 */
#ifndef DICTIONARY_RECORD_LAYOUT_H
#define DICTIONARY_RECORD_LAYOUT_H

#include <bitset>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "component.h"
#include "layout_section.h"

namespace dictionary
{

/** A field that both sides have, of the same type and size. */
struct FieldCopy
{
    std::size_t from;        /**< offset in the file's record, of element 0 in an array */
    std::size_t from_stride; /**< 0 outside arrays */
    std::size_t to;          /**< the same in the own record */
    std::size_t to_stride;   /**< */
    std::size_t size;        /**< of one */
    std::size_t count;       /**< elements that both sides have */
};

/** What a layout says. */
struct RecordLayout
{
    const records::Component* component = nullptr; /**< NULL = this program has no such component */
    std::size_t record_size = 0;                   /**< in the file [bytes] */
    bool same = false;                             /**< every field stands where it stands here */
    std::vector<FieldCopy> copies;                 /**< empty where same */
    std::vector<LayoutRow> rows;                   /**< the fields of the file, each within its record */
    std::bitset<1024> missing;                     /**< own fields that the file does not have, by place in the dictionary */
    std::size_t first_field = 0;                   /**< LayoutSection::first_field */
    std::vector<std::uint16_t> fields;             /**< places in the dictionary by field of the file, or no_field */

    /** A record of the file as one of this program. @param from record_size bytes @param to zeros, as many as the own record */
    void convert(std::span<const std::byte> from, std::span<std::byte> to) const;
};

/** Largest record and most fields of a component that are taken for real. */
inline constexpr std::size_t largest_record = 1 << 20;
inline constexpr std::size_t most_fields = 1 << 14;

/** The layout of a component's record in this program. @return a LayoutSection and what follows it */
std::vector<std::byte> layout_section(const records::Component& component);

/**
 * Reads a layout. What it says of every field, one of a component that this program does not have included, lies within the record.
 * @param bytes   a LayoutSection and what follows it, of any content
 * @param problem what is wrong with it
 * @return or nothing, with problem set
 */
std::optional<RecordLayout> read_layout(std::span<const std::byte> bytes, std::string& problem);

} // namespace dictionary

#endif
