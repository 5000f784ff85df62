/**
 * @file nal_unit.h
 * NAL units in a byte stream (ITU-T H.264 and H.265, annex B).
 */
#ifndef SOFTDEC_FRAMER_NAL_UNIT_H
#define SOFTDEC_FRAMER_NAL_UNIT_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>

namespace softdec
{

/** What the framer does with a NAL unit. */
enum class NalKind
{
    slice,
    video_parameters,
    sequence_parameters,
    picture_parameters,
    supplement, /**< supplemental enhancement information */
    delimiter,  /**< access unit delimiter */
    filler,
    end,     /**< end of sequence or of stream */
    other,   /**< defined, and of no interest here */
    unknown, /**< reserved or unspecified */
};

/** A NAL unit. */
struct NalUnit
{
    unsigned type = 0; /**< nal_unit_type */
    NalKind kind = NalKind::unknown;
    std::size_t begin = 0;               /**< of its start code, in the bytes searched */
    std::span<const std::uint8_t> bytes; /**< header included, without start code and trailing zeros */
};

/** Finds the NAL units. @param h265 as H.265, otherwise as H.264 */
void find_nal_units(std::span<const std::uint8_t> bytes, bool h265, const std::function<void(const NalUnit&)>& found);

} // namespace softdec

#endif
