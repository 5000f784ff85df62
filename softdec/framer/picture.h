/**
 * @file picture.h
 * A coded picture, or the two fields of one: what the framer passes to the decoder.
 */
#ifndef SOFTDEC_FRAMER_PICTURE_H
#define SOFTDEC_FRAMER_PICTURE_H

#include <cstdint>
#include <optional>
#include <vector>

#include "clock/ticks.h"
#include "framer/slice.h"
#include "metadata/picture_metadata.h"

namespace softdec
{

struct Picture
{
    std::vector<std::uint8_t> data;
    std::optional<Ticks> pts;
    std::optional<Ticks> dts;
    TimeBase time_base = {};
    PictureType type = PictureType::unknown;
    bool key = false;     /**< decoding may begin here */
    bool damaged = false; /**< a piece of it was lost on the way */
    bool cut = false;     /**< the input ended in it */
    unsigned slices = 0;
    unsigned pieces = 0;     /**< elementary packets that it came in */
    unsigned top_fields = 0; /**< field pictures in it */
    unsigned bottom_fields = 0;
    double rate = 0;                   /**< of the pictures [frames/s]; 0 = not known */
    unsigned shown_fields = 2;         /**< times of half a frame at that rate that it is shown for */
    Nanoseconds received = 0;          /**< when its first piece came */
    std::optional<DisplayPlace> place; /**< nothing = not known */
    PictureMetadata metadata;
    std::optional<VideoFormat> format; /**< of the sequence that it belongs to; nothing = its headers cannot be read */
};

} // namespace softdec

#endif
