/**
 * @file layout.h
 * How the records of a published file become the records of this program. A host of another release may have other fields:
 * they are found by their names.
 */
#ifndef PUBLISHER_READER_LAYOUT_H
#define PUBLISHER_READER_LAYOUT_H

#include <bitset>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "component.h"

namespace published
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

/** Stands for a field that this program does not have. */
inline constexpr std::uint16_t unknown_field = 0xFFFF;

/** What a layout section says. */
struct RecordLayout
{
    const records::Component* component = nullptr; /**< NULL = this program has no such component */
    std::size_t record_size = 0;                   /**< in the file [bytes] */
    bool same = false;                             /**< every field stands where it stands here */
    std::vector<FieldCopy> copies;                 /**< empty where same */
    std::bitset<1024> missing;                     /**< own fields that the file does not have, by place in the dictionary */
    std::size_t first_bit = 0;                     /**< bit of its first field in the section of what is not measured */
    std::vector<std::uint16_t> fields;             /**< places in the dictionary by field of the file, or unknown_field */

    /** A record of the file as one of this program. @param from record_size bytes @param to zeros, as many as the own record */
    void convert(std::span<const std::byte> from, std::span<std::byte> to) const;
};

/** Largest record and most fields of a component that are taken for real. */
inline constexpr std::size_t largest_record = 1 << 20;
inline constexpr std::size_t most_fields = 1 << 14;

/**
 * Reads a layout section.
 * @param bytes   the section, of any content
 * @param problem what is wrong with it
 * @return or nothing, with problem set
 */
std::optional<RecordLayout> read_layout(std::span<const std::byte> bytes, std::string& problem);

} // namespace published

#endif
