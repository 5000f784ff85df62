/**
 * @file states.h
 * The values of every state and their identifiers: stable words for programs, other than the texts for people.
 */
#ifndef DICTIONARY_STATES_H
#define DICTIONARY_STATES_H

#include <cstdint>
#include <span>
#include <string_view>

namespace dictionary
{

/** One value of a state. */
struct State
{
    std::int64_t value;          /**< as the field's type reads it; 64 unsigned bits keep their pattern */
    std::string_view identifier; /**< active */
    std::string_view enumerator; /**< the header's name of it; empty = it has none */
};

/** The values of a state. A field may hold others: they have no identifier. */
struct States
{
    std::string_view name;         /**< the enumeration, or what the values are */
    std::span<const State> values; /**< no value and no identifier twice */
};

namespace states
{

extern const States tdemux_state, encapsulation, fec_type, address_family, data_type, compression, errno_or_eai, srt_key_state;
extern const States vframer_state, chroma_format, dynamic_range, session_error;
extern const States colour_primaries, transfer_characteristics, matrix_coefficients; /**< ITU-T H.273 */
extern const States vdecoder_state, picture_structure, still_image_type, codec_unit_error;
extern const States display_format; /**< rasters that have no name of their own are written as width, height, scan and rate */
extern const States audio_state, audio_pair_error;
extern const States metadata_state, metadata_channel_type;
extern const States buffering_state, buffering_mode;
extern const States tracking_mode;

} // namespace states
} // namespace dictionary

#endif
