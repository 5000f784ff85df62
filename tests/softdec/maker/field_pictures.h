/**
 * @file field_pictures.h
 * Writes frames whose fields are pictures of their own, which libavcodec's encoders do not: grey ones, with as little in them as a
 * decoder needs.
 */
#ifndef TESTS_SOFTDEC_MAKER_FIELD_PICTURES_H
#define TESTS_SOFTDEC_MAKER_FIELD_PICTURES_H

#include "encoder.h"

namespace softdec_tests
{

/** What the pictures are; 25 frames a second, the top field first, and a key frame each second. */
struct FieldCoding
{
    int frames = 750;
    int frame_pictures = 0;      /**< each so many frames one that is coded as one picture; 0 = none */
    bool inter_in_pair = true;   /**< the second field of a key frame is a P picture */
    bool a_unit_a_field = false; /**< otherwise a frame */
};

inline constexpr int field_picture_width = 160;
inline constexpr int field_picture_height = 96;

/** ITU-T H.264, main profile. */
std::vector<CodedUnit> field_pictures_h264(const FieldCoding& coding);

/** ISO/IEC 13818-2, main profile. */
std::vector<CodedUnit> field_pictures_mpeg2(const FieldCoding& coding);

} // namespace softdec_tests

#endif
