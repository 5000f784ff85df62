/**
 * @file layout.h
 * Where every field stands, without its prose: for programs that write records with their layout. Constant data that needs
 * nothing of the C++ runtime.
 */
#ifndef DICTIONARY_LAYOUT_H
#define DICTIONARY_LAYOUT_H

#include <array>
#include <cstddef>
#include <cstdint>

#include "type.h"

namespace dictionary
{

/** The place of a field. */
struct LayoutField
{
    const char* name;       /**< full public name, NUL-terminated: tdemux.sources[].pid */
    std::uint32_t offset;   /**< in its component's record, in an array that of element 0 [bytes] */
    std::uint32_t size;     /**< of one value [bytes] */
    std::uint32_t stride;   /**< from element to element [bytes]; 0 = no array */
    std::uint16_t count;    /**< elements; 1 outside arrays */
    std::uint8_t component; /**< place of its component in the order in which reports are printed */
    Type type;
};

/** Number of fields in layout. */
inline constexpr std::size_t layout_count = 745;

/** Every field, in the order of the dictionary. */
extern const std::array<LayoutField, layout_count> layout;

} // namespace dictionary

#endif
