/**
 * @file slice.h
 * Slice headers of ITU-T H.264 (clause 7.3.3) and H.265 (clause 7.3.6), as far as pictures are told apart by them.
 */
#ifndef SOFTDEC_FRAMER_SLICE_H
#define SOFTDEC_FRAMER_SLICE_H

#include <cstdint>
#include <map>
#include <optional>
#include <span>

#include "framer/display_order.h"
#include "framer/nal_unit.h"
#include "framer/parameter_sets.h"

namespace softdec
{

enum class PictureType
{
    unknown,
    i,
    p,
    b,
};

/** The parameter sets that have come. */
struct ParameterSets
{
    std::map<unsigned, SequenceParameters> sequences;
    std::map<unsigned, PictureParameters> pictures;

    /** Those that a picture parameter set's number leads to; NULL = they have not come. */
    const SequenceParameters* sequence_of(unsigned picture_parameters) const;
};

/** A slice. */
struct Slice
{
    bool first = false;                      /**< the picture begins with it */
    PictureType type = PictureType::unknown; /**< unknown: it does not say, or repeats the one before */
    bool instantaneous_refresh = false;      /**< of a picture that nothing before is needed for */
    bool field = false;
    bool bottom = false;    /**< the field is the bottom field */
    unsigned frame_num = 0; /**< H.264: the two fields of a frame share it */
    OrderCount order;
    const SequenceParameters* sequence = nullptr;
};

/** Parses a slice header. @return nothing if it is damaged or its parameter sets have not come */
std::optional<Slice> parse_slice(const NalUnit& unit, bool h265, const ParameterSets& sets);

} // namespace softdec

#endif
