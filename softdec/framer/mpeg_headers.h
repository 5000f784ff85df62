/**
 * @file mpeg_headers.h
 * What the headers of MPEG video say of a stream and of the picture behind them (ISO/IEC 13818-2, clause 6.2; of ISO/IEC 11172-2, which
 * has no extensions, clause 2.4.2).
 */
#ifndef SOFTDEC_FRAMER_MPEG_HEADERS_H
#define SOFTDEC_FRAMER_MPEG_HEADERS_H

#include <optional>

#include "framer/nal_unit.h"
#include "framer/slice.h"
#include "metadata/picture_metadata.h"

namespace softdec
{

class MpegHeaders
{
public:
    /** Takes a header, an extension or user data. @param metadata of the picture that it belongs to gets what is found */
    void take(const NalUnit& unit, PictureMetadata& metadata);

    /** The slice that comes now. @return nothing if headers in front of it are missing or damaged */
    std::optional<Slice> slice();

    /** Whether a unit is the header of the second field of a frame whose first field the last header was of. */
    bool is_second_field(const NalUnit& unit) const;

private:
    void take_sequence(const NalUnit& unit);
    void take_group(const NalUnit& unit);
    void take_picture(const NalUnit& unit, PictureMetadata& metadata);
    void take_extension(const NalUnit& unit, PictureMetadata& metadata);
    void take_picture_coding(class BitReader& reader, PictureMetadata& metadata);

    std::optional<SequenceParameters> sequence_;
    bool closed_group_ = false; // of the picture that comes next, the first of its group
    std::optional<Slice> picture_;
};

} // namespace softdec

#endif
