/**
 * @file image.h
 * What every published file begins with: header, table of sections and layouts, made from the dictionary while this library is
 * compiled. What an opening decides is still 0 in the header.
 */
#ifndef PUBLISHER_IMAGE_H
#define PUBLISHER_IMAGE_H

#include <cstddef>
#include <span>

#include "format.h"

namespace publisher
{

/** The components as they are numbered in the file. */
enum Component : std::uint32_t
{
    tdemux,
    vframer,
    vdecoder,
    audio,
    metadata,
    buffering,
    clock_recovery,
    usage,
    component_count
};

/** Header, table and layouts, of fixed content. The slots follow behind. */
std::span<const unsigned char> image();

/** The table of sections. */
std::span<const Section> sections();

/** The layout of a component within the image. @param section one of type layout; what it holds stands from here on */
inline const Layout& layout_in(const Section& section)
{
    return *reinterpret_cast<const Layout*>(image().data() + section.offset);
}

/** Words in the slot of what is not measured: a bit for each field. */
inline constexpr std::size_t not_measured_words = 12;

} // namespace publisher

#endif
