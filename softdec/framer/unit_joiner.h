/**
 * @file unit_joiner.h
 * Finds the NAL units in packets of an elementary stream, which they need not begin and end with (ISO/IEC 13818-1, 2.14 and 2.17).
 */
#ifndef SOFTDEC_FRAMER_UNIT_JOINER_H
#define SOFTDEC_FRAMER_UNIT_JOINER_H

#include <cstdint>
#include <vector>

#include "framer/nal_unit.h"

namespace softdec
{

class UnitJoiner
{
public:
    /** What can be judged of the stream now. */
    struct Piece
    {
        std::vector<std::uint8_t> bytes; /**< that the units are in */
        std::size_t joint = 0;           /**< what lies before is of the packet before */
        std::size_t end = 0;             /**< what lies behind comes again with the next packet */
        std::vector<NalUnit> units;      /**< all that begin before the end; the last one, of a slice, may go on in the next packet */
    };

    /** Takes a packet. */
    Piece take(std::vector<std::uint8_t> packet, VideoSyntax syntax);

    /** Gives what has been held back: nothing follows that would show where it ends. */
    Piece rest(VideoSyntax syntax);

    void forget() { held_.clear(); }

private:
    std::vector<std::uint8_t> held_;
};

} // namespace softdec

#endif
