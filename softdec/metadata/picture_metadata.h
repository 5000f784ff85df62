/**
 * @file picture_metadata.h
 * What travels with a picture beside it: timecode, closed captions, active format, and how it is to be shown.
 */
#ifndef SOFTDEC_METADATA_PICTURE_METADATA_H
#define SOFTDEC_METADATA_PICTURE_METADATA_H

#include <cstdint>
#include <optional>
#include <span>

#include "framer/parameter_sets.h"

namespace softdec
{

/** A timecode (SMPTE ST 12-1). */
struct Timecode
{
    unsigned hours = 0;
    unsigned minutes = 0;
    unsigned seconds = 0;
    unsigned frames = 0;

    bool operator==(const Timecode&) const = default;
};

struct PictureMetadata
{
    std::optional<unsigned> picture_structure; /**< pic_struct as ITU-T H.264, table D-1 has it */
    std::optional<Timecode> timecode;
    unsigned timecode_bytes = 0;           /**< of the message that carries it */
    unsigned caption_bytes = 0;            /**< caption data, three bytes each (CTA-708); 0 = none */
    std::optional<unsigned> active_format; /**< active_format of SMPTE ST 2016-1 */
    unsigned active_format_bytes = 0;
    std::optional<bool> progressive;              /**< as the header of an MPEG picture tells it */
    bool recovery_point = false;                  /**< decoding may begin here */
    std::optional<unsigned> alternative_transfer; /**< preferred transfer characteristics, ITU-T H.273 */
};

/**
 * Parses the supplemental enhancement information of a NAL unit (ITU-T H.264 and H.265, annex D).
 * @param unit     NAL unit with its header
 * @param h265     as H.265, otherwise as H.264
 * @param sequence parameters of the sequence; NULL = not known, so that picture timing is passed over
 * @param metadata gets what is found
 * @return number of its messages; nothing if it is damaged
 */
std::optional<unsigned> parse_supplement(std::span<const std::uint8_t> unit, bool h265, const SequenceParameters* sequence,
                                         PictureMetadata& metadata);

/**
 * Parses the user data of ATSC A/53 part 4, clause 6.2.3: captions and active format. Other user data is passed over.
 * @param data     identifier and what follows it
 * @param metadata gets what is found
 */
void parse_atsc_user_data(std::span<const std::uint8_t> data, PictureMetadata& metadata);

} // namespace softdec

#endif
