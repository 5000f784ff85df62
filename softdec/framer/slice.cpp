#include "framer/slice.h"

#include "framer/bit_reader.h"

namespace softdec
{

namespace
{

/** More than what is read of a header. */
constexpr std::size_t header_bytes = 64;

constexpr unsigned h264_instantaneous_refresh = 5;

std::optional<Slice> parse_h264(const NalUnit& unit, const ParameterSets& sets)
{
    const auto bytes = unescape(unit.bytes.subspan(1), header_bytes);
    BitReader reader(bytes);
    Slice slice;
    slice.first = reader.unsigned_golomb() == 0;
    const unsigned type = reader.unsigned_golomb();
    slice.sequence = sets.sequence_of(reader.unsigned_golomb());
    if (slice.sequence == nullptr || type > 9) return std::nullopt;
    switch (type % 5)
    {
    case 0:
    case 3: slice.type = PictureType::p; break;
    case 1: slice.type = PictureType::b; break;
    default: slice.type = PictureType::i; break;
    }
    slice.instantaneous_refresh = unit.type == h264_instantaneous_refresh;
    if (slice.sequence->separate_planes) reader.skip(2);
    slice.frame_num = reader.bits(slice.sequence->frame_num_bits);
    if (!slice.sequence->frame_only) slice.field = reader.flag();
    if (slice.field) slice.bottom = reader.flag();
    if (slice.instantaneous_refresh) reader.unsigned_golomb();
    slice.order.begins = slice.instantaneous_refresh;
    if (slice.sequence->order_bits != 0)
    {
        slice.order.bits = slice.sequence->order_bits;
        slice.order.value = reader.bits(slice.order.bits);
    }
    else if (slice.sequence->shown_as_coded)
    {
        // A picture that none refers to has the number of the next one that may be referred to (clause 8.2.1.3).
        const bool is_reference = (unit.bytes[0] & 0x60) != 0;
        slice.order.bits = slice.sequence->frame_num_bits + 1;
        slice.order.value = 2 * slice.frame_num + (is_reference ? 1 : 0);
    }
    if (reader.overrun()) return std::nullopt;
    return slice;
}

std::optional<Slice> parse_h265(const NalUnit& unit, const ParameterSets& sets)
{
    const auto bytes = unescape(unit.bytes.subspan(2), header_bytes);
    BitReader reader(bytes);
    Slice slice;
    slice.first = reader.flag();
    // Intra random access point pictures have the types 16 to 23.
    slice.instantaneous_refresh = unit.type >= 16 && unit.type <= 23;
    if (slice.instantaneous_refresh) reader.skip(1);
    const unsigned number = reader.unsigned_golomb();
    slice.sequence = sets.sequence_of(number);
    if (slice.sequence == nullptr) return std::nullopt;
    slice.field = slice.sequence->field_pictures;
    // The address of a later slice is of no interest, and its type is that of the picture nearly always.
    if (slice.first)
    {
        reader.skip(sets.pictures.at(number).extra_slice_bits);
        const unsigned type = reader.unsigned_golomb();
        if (type > 2) return std::nullopt;
        slice.type = type == 0 ? PictureType::b : type == 1 ? PictureType::p : PictureType::i;
        if (sets.pictures.at(number).output_flag) reader.skip(1);
        if (slice.sequence->separate_planes) reader.skip(2);
        slice.order.bits = slice.sequence->order_bits;
        slice.order.begins = unit.type >= 16 && unit.type <= 20;                                   // BLA and IDR pictures
        if (unit.type != 19 && unit.type != 20) slice.order.value = reader.bits(slice.order.bits); // an IDR picture's is 0
    }
    if (reader.overrun()) return std::nullopt;
    return slice;
}

} // namespace

const SequenceParameters* ParameterSets::sequence_of(unsigned picture_parameters) const
{
    const auto picture = pictures.find(picture_parameters);
    if (picture == pictures.end()) return nullptr;
    const auto sequence = sequences.find(picture->second.sequence_id);
    return sequence == sequences.end() ? nullptr : &sequence->second;
}

std::optional<Slice> parse_slice(const NalUnit& unit, bool h265, const ParameterSets& sets)
{
    return h265 ? parse_h265(unit, sets) : parse_h264(unit, sets);
}

} // namespace softdec
