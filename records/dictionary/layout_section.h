/**
 * @file layout_section.h
 * The layout of a component's record as it stands in published files and in capture files, so that whoever reads one of another
 * release finds the fields by their names. docs/publisher-format.md explains it. Fixed-width little-endian integers.
 */
#ifndef DICTIONARY_LAYOUT_SECTION_H
#define DICTIONARY_LAYOUT_SECTION_H

#include <cstddef>
#include <cstdint>

namespace dictionary
{

/** The start of a layout. The rows of the fields follow it, then their texts, then NULs up to a multiple of 8. */
struct LayoutSection
{
    char component[32];        /**< as in public names, filled up with NULs: clock_recovery */
    std::uint32_t record_size; /**< [bytes] */
    std::uint32_t field_count; /**< rows */
    std::uint32_t row_size;    /**< size of a row [bytes] */
    std::uint32_t first_field; /**< number of the first row's field among those of all components; the others' follow in order */
};
static_assert(offsetof(LayoutSection, record_size) == 32 && offsetof(LayoutSection, field_count) == 36);
static_assert(offsetof(LayoutSection, row_size) == 40 && offsetof(LayoutSection, first_field) == 44 && sizeof(LayoutSection) == 48);

/** A field. Its texts have no NULs at their ends. */
struct LayoutRow
{
    std::uint32_t offset;        /**< in the record, in an array that of element 0 [bytes] */
    std::uint32_t size;          /**< of one of it [bytes] */
    std::uint32_t count;         /**< elements of its array; 1 where it stands in none */
    std::uint32_t stride;        /**< size of an element of the array [bytes]; 0 where it stands in none */
    std::uint32_t name_offset;   /**< of the public name without the component, from the section's start [bytes] */
    std::uint32_t member_offset; /**< of the C member's name, from the section's start [bytes] */
    std::uint16_t name_length;   /**< [bytes] */
    std::uint16_t member_length; /**< [bytes] */
    std::uint16_t type;          /**< Type */
    std::uint16_t reserved;      /**< 0 */
};
static_assert(offsetof(LayoutRow, size) == 4 && offsetof(LayoutRow, count) == 8 && offsetof(LayoutRow, stride) == 12);
static_assert(offsetof(LayoutRow, name_offset) == 16 && offsetof(LayoutRow, member_offset) == 20);
static_assert(offsetof(LayoutRow, name_length) == 24 && offsetof(LayoutRow, member_length) == 26);
static_assert(offsetof(LayoutRow, type) == 28 && offsetof(LayoutRow, reserved) == 30 && sizeof(LayoutRow) == 32);

} // namespace dictionary

#endif
