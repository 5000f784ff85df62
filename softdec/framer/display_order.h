/**
 * @file display_order.h
 * Places of pictures in the order in which they are shown, by their picture order counts (ITU-T H.264 and H.265, clauses 8.2.1 and 8.3.1).
 */
#ifndef SOFTDEC_FRAMER_DISPLAY_ORDER_H
#define SOFTDEC_FRAMER_DISPLAY_ORDER_H

#include <compare>
#include <cstdint>
#include <optional>

namespace softdec
{

/** What a slice says of its picture's place. */
struct OrderCount
{
    unsigned value = 0;
    unsigned bits = 0;   /**< that the count has before it begins anew; 0 = the slice does not say */
    bool begins = false; /**< counts before it are of another sequence */
};

struct DisplayPlace
{
    unsigned sequence = 0;   /**< places of two are not comparable */
    std::int64_t number = 0; /**< from picture to picture it grows by one or two, as the encoder counts */

    auto operator<=>(const DisplayPlace&) const = default;
};

class DisplayOrder
{
public:
    /** The place of the next picture in the order of decoding. */
    std::optional<DisplayPlace> place_of(const OrderCount& count)
    {
        if (count.bits == 0) return std::nullopt;
        if (count.begins)
        {
            ++last_.sequence;
            last_.number = count.value;
            return last_;
        }
        // It is the nearest one to the picture before whose last bits are these.
        const std::int64_t range = std::int64_t{1} << count.bits;
        const std::int64_t step = ((count.value - last_.number) % range + range) % range;
        last_.number += step < range / 2 ? step : step - range;
        return last_;
    }

private:
    DisplayPlace last_;
};

} // namespace softdec

#endif
