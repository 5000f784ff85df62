#include "framer/video_framer.h"

namespace softdec
{

namespace
{

bool has_first_bit(const NalUnit& unit, bool h265)
{
    const std::size_t header = h265 ? 2 : 1;
    return unit.bytes.size() > header && (unit.bytes[header] & 0x80) != 0;
}

} // namespace

std::optional<Slice> VideoFramer::slice_of(const NalUnit& unit)
{
    if (unit.kind != NalKind::slice) return std::nullopt;
    auto slice = is_mpeg() ? mpeg_.slice() : parse_slice(unit, is_h265(), sets_);
    // Slices that come before their parameter sets are not wrong: the stream was joined between them.
    if (!slice && started_ && !is_mpeg())
    {
        ++record_.tCounters.nNumSHErrors;
        record_.tCounters.tLastSHError = clock_.seconds();
    }
    return slice;
}

/** A picture begins with the first unit behind the last slice of another that may not follow slices, or with a first slice. */
bool VideoFramer::begins_picture(const NalUnit& unit, const std::optional<Slice>& slice) const
{
    if (!has_slices_) return false;
    switch (unit.kind)
    {
    case NalKind::delimiter:
    case NalKind::video_parameters:
    case NalKind::sequence_parameters:
    case NalKind::picture_parameters: break;
    case NalKind::header: return picture_.top_fields + picture_.bottom_fields != 1 || !mpeg_.is_second_field(unit);
    case NalKind::supplement: // of H.265, the type 40 follows the picture that it belongs to
        if (is_h265() && unit.type == 40) return false;
        break;
    case NalKind::slice:
        if (is_mpeg()) return false;
        // The first bit tells of one whose parameter sets are not known too: the first macroblock's address, or the flag of H.265.
        if (slice ? !slice->first : !has_first_bit(unit, is_h265())) return false;
        break;
    default: return false;
    }
    // The second field of a frame is decoded with the first. What stands in front of its slices cannot tell whether it comes.
    const bool second_field = slice && first_slice_ && slice->field && first_slice_->field && slice->bottom != first_slice_->bottom &&
                              slice->frame_num == first_slice_->frame_num && !is_h265() &&
                              picture_.top_fields + picture_.bottom_fields == 1;
    return !second_field;
}

} // namespace softdec
