#include <array>

#include "framer/bit_reader.h"
#include "framer/parameter_sets.h"

namespace softdec
{

namespace
{

constexpr std::size_t largest_set_h265 = 8192;
constexpr std::size_t header_size = 2;

/** Clause 7.3.3. */
void parse_profile(BitReader& reader, unsigned sub_layers, VideoFormat& format)
{
    reader.skip(3);
    format.profile = static_cast<int>(reader.bits(5));
    reader.skip(32 + 48);
    format.level = static_cast<int>(reader.bits(8));
    std::array<bool, 8> has_profile{};
    std::array<bool, 8> has_level{};
    for (unsigned i = 0; i < sub_layers; ++i)
    {
        has_profile[i] = reader.flag();
        has_level[i] = reader.flag();
    }
    if (sub_layers > 0) reader.skip(2UL * (8 - sub_layers));
    for (unsigned i = 0; i < sub_layers; ++i) reader.skip((has_profile[i] ? 88U : 0U) + (has_level[i] ? 8U : 0U));
}

/** Clause 7.3.4. */
void skip_scaling_lists(BitReader& reader)
{
    for (unsigned size = 0; size < 4; ++size)
    {
        for (unsigned matrix = 0; matrix < 6 && !reader.overrun(); matrix += size == 3 ? 3 : 1)
        {
            if (!reader.flag())
            {
                reader.unsigned_golomb();
                continue;
            }
            const unsigned count = size == 0 ? 16 : 64;
            if (size > 1) reader.signed_golomb();
            for (unsigned i = 0; i < count && !reader.overrun(); ++i) reader.signed_golomb();
        }
    }
}

/** Clause 7.3.7. @return whether it could be parsed */
bool skip_reference_sets(BitReader& reader)
{
    const unsigned count = reader.unsigned_golomb();
    if (count > 64) return false;
    unsigned before = 0; // pictures of the set before
    for (unsigned index = 0; index < count; ++index)
    {
        if (index != 0 && reader.flag())
        {
            reader.skip(1);
            reader.unsigned_golomb();
            unsigned kept = 0;
            for (unsigned i = 0; i <= before; ++i)
            {
                const bool used = reader.flag();
                const bool delta = used || reader.flag();
                if (delta) ++kept;
            }
            before = kept;
            continue;
        }
        const unsigned negative = reader.unsigned_golomb();
        const unsigned positive = reader.unsigned_golomb();
        if (negative > 16 || positive > 16) return false;
        before = negative + positive;
        for (unsigned i = 0; i < before; ++i)
        {
            reader.unsigned_golomb();
            reader.skip(1);
        }
    }
    return !reader.overrun();
}

/** Annex E.2.1, as far as the timing. */
void parse_vui_h265(BitReader& reader, SequenceParameters& set)
{
    constexpr unsigned extended_aspect_ratio = 255;
    if (reader.flag() && reader.bits(8) == extended_aspect_ratio) reader.skip(32);
    if (reader.flag()) reader.skip(1);
    if (reader.flag())
    {
        reader.skip(4);
        if (reader.flag())
        {
            set.format.primaries = static_cast<std::uint8_t>(reader.bits(8));
            set.format.transfer = static_cast<std::uint8_t>(reader.bits(8));
            set.format.matrix = static_cast<std::uint8_t>(reader.bits(8));
        }
    }
    if (reader.flag())
    {
        reader.unsigned_golomb();
        reader.unsigned_golomb();
    }
    reader.skip(1);
    set.field_pictures = reader.flag();
    set.has_picture_structure = reader.flag();
    set.format.may_be_interlaced = set.field_pictures;
    if (reader.flag())
        for (int i = 0; i < 4; ++i) reader.unsigned_golomb();
    if (!reader.flag()) return;
    const double units = reader.bits(32);
    const double scale = reader.bits(32);
    if (units > 0) set.format.frame_rate = scale / units / (set.field_pictures ? 2 : 1);
}

} // namespace

std::optional<SequenceParameters> parse_sequence_h265(std::span<const std::uint8_t> unit)
{
    const auto bytes = unescape(unit.subspan(header_size), largest_set_h265);
    BitReader reader(bytes);
    SequenceParameters set;
    VideoFormat& format = set.format;
    reader.skip(4);
    const unsigned sub_layers = reader.bits(3);
    reader.skip(1);
    if (sub_layers > 6) return std::nullopt;
    parse_profile(reader, sub_layers, format);
    set.id = reader.unsigned_golomb();
    format.chroma_format = reader.unsigned_golomb();
    if (format.chroma_format == 3) set.separate_planes = reader.flag();
    format.coded_width = reader.unsigned_golomb();
    format.coded_height = reader.unsigned_golomb();
    if (reader.flag())
    {
        const unsigned unit_x = format.chroma_format == 1 || format.chroma_format == 2 ? 2 : 1;
        const unsigned unit_y = format.chroma_format == 1 ? 2 : 1;
        format.crop_left = reader.unsigned_golomb() * unit_x;
        format.crop_right = reader.unsigned_golomb() * unit_x;
        format.crop_top = reader.unsigned_golomb() * unit_y;
        format.crop_bottom = reader.unsigned_golomb() * unit_y;
    }
    format.luma_depth = reader.unsigned_golomb() + 8;
    format.chroma_depth = reader.unsigned_golomb() + 8;
    set.order_bits = reader.unsigned_golomb() + 4;
    const bool for_each_layer = reader.flag();
    for (unsigned i = for_each_layer ? 0 : sub_layers; i <= sub_layers; ++i)
    {
        format.picture_buffers = reader.unsigned_golomb() + 1;
        format.reorders = reader.unsigned_golomb() != 0;
        reader.unsigned_golomb();
    }
    for (int i = 0; i < 6; ++i) reader.unsigned_golomb(); // block sizes and transform depths
    if (reader.flag() && reader.flag()) skip_scaling_lists(reader);
    reader.skip(2);
    if (reader.flag())
    {
        reader.skip(8);
        reader.unsigned_golomb();
        reader.unsigned_golomb();
        reader.skip(1);
    }
    if (!skip_reference_sets(reader)) return std::nullopt;
    if (reader.flag())
    {
        const unsigned count = reader.unsigned_golomb();
        for (unsigned i = 0; i < count && !reader.overrun(); ++i) reader.skip(set.order_bits + 1);
    }
    reader.skip(2);
    if (reader.flag()) parse_vui_h265(reader, set);
    const bool sane = set.id < 16 && set.order_bits <= 16 && format.chroma_format <= 3 && format.coded_width <= 16888 &&
                      format.coded_height <= 16888 && format.luma_depth <= 16 && format.chroma_depth <= 16 &&
                      std::uint64_t{format.crop_left} + format.crop_right < format.coded_width &&
                      std::uint64_t{format.crop_top} + format.crop_bottom < format.coded_height;
    if (reader.overrun() || !sane) return std::nullopt;
    return set;
}

std::optional<PictureParameters> parse_picture_h265(std::span<const std::uint8_t> unit)
{
    const auto bytes = unescape(unit.subspan(header_size), largest_set_h265);
    BitReader reader(bytes);
    PictureParameters set;
    set.id = reader.unsigned_golomb();
    set.sequence_id = reader.unsigned_golomb();
    set.dependent_slices = reader.flag();
    set.output_flag = reader.flag();
    set.extra_slice_bits = reader.bits(3);
    if (reader.overrun() || set.id > 63 || set.sequence_id > 15) return std::nullopt;
    return set;
}

} // namespace softdec
