/**
 * @file nal_unit.h
 * NAL units in a byte stream (ITU-T H.264 and H.265, annex B), and what MPEG video has between its start codes (ISO/IEC 13818-2, 6.2).
 */
#ifndef SOFTDEC_FRAMER_NAL_UNIT_H
#define SOFTDEC_FRAMER_NAL_UNIT_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>

namespace softdec
{

/** How a video stream is written. */
enum class VideoSyntax
{
    h264,
    h265,
    mpeg, /**< ISO/IEC 11172-2 and 13818-2 */
};

/** Start codes of MPEG video (ISO/IEC 13818-2, table 6-1); those between the first two are of slices. */
enum class MpegStartCode : unsigned
{
    picture = 0x00,
    last_slice = 0xaf,
    user_data = 0xb2,
    sequence = 0xb3,
    extension = 0xb5,
    sequence_end = 0xb7,
    group = 0xb8,
};

/** What the framer does with a unit. */
enum class NalKind
{
    slice,
    video_parameters,
    sequence_parameters,
    picture_parameters,
    supplement, /**< supplemental enhancement information */
    delimiter,  /**< access unit delimiter */
    filler,
    header,    /**< MPEG: of a sequence, a group of pictures or a picture */
    extension, /**< MPEG: of a header, or user data */
    end,       /**< end of sequence or of stream */
    other,     /**< defined, and of no interest here */
    unknown,   /**< reserved or unspecified */
};

/** A NAL unit; of MPEG video, what is between two start codes. */
struct NalUnit
{
    unsigned type = 0; /**< nal_unit_type; MPEG: start code */
    NalKind kind = NalKind::unknown;
    std::size_t begin = 0;               /**< of its start code, in the bytes searched */
    std::span<const std::uint8_t> bytes; /**< header included, without start code and trailing zeros */
};

/** Finds the units. */
void find_nal_units(std::span<const std::uint8_t> bytes, VideoSyntax syntax, const std::function<void(const NalUnit&)>& found);

} // namespace softdec

#endif
