/**
 * @file parameter_sets.h
 * What the parameter sets of ITU-T H.264 (clause 7.3.2) and H.265 (clause 7.3.2) say of a video stream.
 */
#ifndef SOFTDEC_FRAMER_PARAMETER_SETS_H
#define SOFTDEC_FRAMER_PARAMETER_SETS_H

#include <cstdint>
#include <optional>
#include <span>

namespace softdec
{

/** What the pictures are. */
struct VideoFormat
{
    int profile = 0;                /**< profile_idc, or general_profile_idc */
    int level = 0;                  /**< level_idc, or general_level_idc */
    unsigned chroma_format = 1;     /**< chroma_format_idc: 0 monochrome, 1 4:2:0, 2 4:2:2, 3 4:4:4 */
    unsigned luma_depth = 8;        /**< [bits] */
    unsigned chroma_depth = 8;      /**< [bits] */
    unsigned coded_width = 0;       /**< before cropping [pixels] */
    unsigned coded_height = 0;      /**< before cropping [lines] */
    unsigned crop_left = 0;         /**< [pixels] */
    unsigned crop_right = 0;        /**< [pixels] */
    unsigned crop_top = 0;          /**< [lines] */
    unsigned crop_bottom = 0;       /**< [lines] */
    bool may_be_interlaced = false; /**< pictures may be fields, or frames of two */
    double frame_rate = 0;          /**< [frames/s]; 0 = not signalled */
    std::uint8_t primaries = 2;     /**< ITU-T H.273; 2 = unspecified */
    std::uint8_t transfer = 2;      /**< ITU-T H.273; 2 = unspecified */
    std::uint8_t matrix = 2;        /**< ITU-T H.273; 2 = unspecified */
    unsigned picture_buffers = 0;   /**< that decoding needs [pictures] */
    bool reorders = false;          /**< pictures may come in another order than they are shown in */

    unsigned width() const { return coded_width - crop_left - crop_right; }
    unsigned height() const { return coded_height - crop_top - crop_bottom; }

    bool operator==(const VideoFormat&) const = default;
};

/** A sequence parameter set, with what parsing slices and picture timing needs. */
struct SequenceParameters
{
    unsigned id = 0;
    VideoFormat format;
    bool separate_planes = false;       /**< separate_colour_plane_flag */
    unsigned frame_num_bits = 0;        /**< H.264 */
    unsigned order_bits = 0;            /**< of picture order counts in slices; 0 = they are not there */
    bool shown_as_coded = false;        /**< H.264: the order of decoding is that of display */
    bool frame_only = true;             /**< H.264: frame_mbs_only_flag */
    bool field_pictures = false;        /**< H.265: field_seq_flag */
    bool has_picture_structure = false; /**< picture timing tells the structure of pictures */
    bool has_delays = false;            /**< H.264: picture timing begins with delays */
    unsigned cpb_delay_bits = 24;
    unsigned dpb_delay_bits = 24;
    unsigned time_offset_bits = 24;
};

/** A picture parameter set, as far as parsing slices needs it. */
struct PictureParameters
{
    unsigned id = 0;
    unsigned sequence_id = 0;
    bool dependent_slices = false; /**< H.265 */
    unsigned extra_slice_bits = 0; /**< H.265 */
    bool output_flag = false;      /**< H.265 */
};

/** Parse a parameter set. @param unit NAL unit with its header @return nothing if it is damaged */
std::optional<SequenceParameters> parse_sequence_h264(std::span<const std::uint8_t> unit);
std::optional<SequenceParameters> parse_sequence_h265(std::span<const std::uint8_t> unit);
std::optional<PictureParameters> parse_picture_h264(std::span<const std::uint8_t> unit);
std::optional<PictureParameters> parse_picture_h265(std::span<const std::uint8_t> unit);

} // namespace softdec

#endif
