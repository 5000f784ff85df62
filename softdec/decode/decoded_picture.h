/**
 * @file decoded_picture.h
 * What the decoder passes to the output.
 */
#ifndef SOFTDEC_DECODE_DECODED_PICTURE_H
#define SOFTDEC_DECODE_DECODED_PICTURE_H

#include <optional>

#include "clock/ticks.h"
#include "framer/display_order.h"

namespace softdec
{

/** A picture that has been decoded. The picture itself is not kept: the output is a virtual one. */
struct DecodedPicture
{
    std::optional<Ticks> pts;
    std::optional<DisplayPlace> place = {};
    unsigned time_base = 0; /**< number of it */
    Ticks period = 0;       /**< of the pictures [90 kHz ticks] */
    Ticks shown_for = 0;    /**< the picture itself [90 kHz ticks] */
};

} // namespace softdec

#endif
