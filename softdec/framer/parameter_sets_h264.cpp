#include <algorithm>

#include "framer/bit_reader.h"
#include "framer/parameter_sets.h"

namespace softdec
{

namespace
{

constexpr std::size_t largest_set_h264 = 4096;

void skip_scaling_list(BitReader& reader, unsigned size)
{
    int last = 8;
    int next = 8;
    for (unsigned i = 0; i < size && !reader.overrun(); ++i)
    {
        if (next != 0) next = (last + reader.signed_golomb() + 256) % 256;
        last = next == 0 ? last : next;
    }
}

void skip_hrd(BitReader& reader, SequenceParameters& set)
{
    const unsigned count = reader.unsigned_golomb() + 1;
    reader.skip(8);
    for (unsigned i = 0; i < count && !reader.overrun(); ++i)
    {
        reader.unsigned_golomb();
        reader.unsigned_golomb();
        reader.skip(1);
    }
    reader.skip(5);
    set.cpb_delay_bits = reader.bits(5) + 1;
    set.dpb_delay_bits = reader.bits(5) + 1;
    set.time_offset_bits = reader.bits(5);
    set.has_delays = true;
}

/** Annex E.1.1. */
void parse_vui_h264(BitReader& reader, SequenceParameters& set)
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
    if (reader.flag())
    {
        const double units = reader.bits(32);
        const double scale = reader.bits(32);
        reader.skip(1);
        // A tick is the time of a field.
        if (units > 0) set.format.frame_rate = scale / units / 2;
    }
    const bool nal_hrd = reader.flag();
    if (nal_hrd) skip_hrd(reader, set);
    const bool vcl_hrd = reader.flag();
    if (vcl_hrd) skip_hrd(reader, set);
    if (nal_hrd || vcl_hrd) reader.skip(1);
    set.has_picture_structure = reader.flag();
    if (!reader.flag()) return;
    reader.skip(1);
    for (int i = 0; i < 4; ++i) reader.unsigned_golomb();
    set.format.reorders = reader.unsigned_golomb() != 0;
    set.format.picture_buffers = reader.unsigned_golomb();
}

bool has_chroma_format(int profile)
{
    constexpr int profiles[] = {100, 110, 122, 244, 44, 83, 86, 118, 128, 138, 139, 134, 135};
    return std::ranges::find(profiles, profile) != std::end(profiles);
}

/** The pictures that a level's memory holds of a size (table A-1). [pictures] */
unsigned pictures_of_level(const VideoFormat& format)
{
    struct Limit
    {
        int level;
        unsigned macroblocks;
    };
    constexpr Limit limits[] = {{9, 396},     {10, 396},    {11, 900},    {12, 2376},   {13, 2376},   {20, 2376},  {21, 4752},
                                {22, 8100},   {30, 8100},   {31, 18000},  {32, 20480},  {40, 32768},  {41, 32768}, {42, 34816},
                                {50, 110400}, {51, 184320}, {52, 184320}, {60, 696320}, {61, 696320}, {62, 696320}};
    const auto limit = std::ranges::find_if(limits, [&](const Limit& row) { return format.level <= row.level; });
    const unsigned size = format.coded_width / 16 * (format.coded_height / 16);
    if (limit == std::end(limits) || size == 0) return 16;
    return std::min(limit->macroblocks / size, 16U);
}

} // namespace

std::optional<SequenceParameters> parse_sequence_h264(std::span<const std::uint8_t> unit)
{
    const auto bytes = unescape(unit.subspan(1), largest_set_h264);
    BitReader reader(bytes);
    SequenceParameters set;
    VideoFormat& format = set.format;
    format.profile = static_cast<int>(reader.bits(8));
    reader.skip(8);
    format.level = static_cast<int>(reader.bits(8));
    set.id = reader.unsigned_golomb();
    if (has_chroma_format(format.profile))
    {
        format.chroma_format = reader.unsigned_golomb();
        if (format.chroma_format == 3) set.separate_planes = reader.flag();
        format.luma_depth = reader.unsigned_golomb() + 8;
        format.chroma_depth = reader.unsigned_golomb() + 8;
        reader.skip(1);
        if (reader.flag())
            for (unsigned i = 0; i < (format.chroma_format == 3 ? 12U : 8U); ++i)
                if (reader.flag()) skip_scaling_list(reader, i < 6 ? 16 : 64);
    }
    set.frame_num_bits = reader.unsigned_golomb() + 4;
    const unsigned order_type = reader.unsigned_golomb();
    if (order_type == 0)
    {
        set.order_bits = reader.unsigned_golomb() + 4;
    }
    else if (order_type == 1)
    {
        reader.skip(1);
        reader.signed_golomb();
        reader.signed_golomb();
        const unsigned count = reader.unsigned_golomb();
        for (unsigned i = 0; i < count && !reader.overrun(); ++i) reader.signed_golomb();
    }
    set.shown_as_coded = order_type == 2;
    reader.unsigned_golomb();
    reader.skip(1);
    const unsigned width = reader.unsigned_golomb() + 1;
    const unsigned height = reader.unsigned_golomb() + 1;
    set.frame_only = reader.flag();
    if (!set.frame_only) reader.skip(1);
    reader.skip(1);
    if (width > 4096 || height > 4096 || format.chroma_format > 3 || set.frame_num_bits > 16 || set.order_bits > 16 || set.id > 31)
        return std::nullopt;
    const unsigned field_factor = set.frame_only ? 1 : 2;
    format.coded_width = width * 16;
    format.coded_height = height * 16 * field_factor;
    format.may_be_interlaced = !set.frame_only;
    if (reader.flag())
    {
        const unsigned unit_x = format.chroma_format == 1 || format.chroma_format == 2 ? 2 : 1;
        const unsigned unit_y = (format.chroma_format == 1 ? 2 : 1) * field_factor;
        format.crop_left = reader.unsigned_golomb() * unit_x;
        format.crop_right = reader.unsigned_golomb() * unit_x;
        format.crop_top = reader.unsigned_golomb() * unit_y;
        format.crop_bottom = reader.unsigned_golomb() * unit_y;
    }
    // What the stream does not say is bounded by its level, and a baseline profile has no B pictures.
    format.picture_buffers = pictures_of_level(format);
    format.reorders = format.profile != 66;
    if (reader.flag()) parse_vui_h264(reader, set);
    const bool sane = std::uint64_t{format.crop_left} + format.crop_right < format.coded_width &&
                      std::uint64_t{format.crop_top} + format.crop_bottom < format.coded_height;
    if (reader.overrun() || !sane) return std::nullopt;
    return set;
}

std::optional<PictureParameters> parse_picture_h264(std::span<const std::uint8_t> unit)
{
    const auto bytes = unescape(unit.subspan(1), largest_set_h264);
    BitReader reader(bytes);
    PictureParameters set;
    set.id = reader.unsigned_golomb();
    set.sequence_id = reader.unsigned_golomb();
    reader.skip(2);
    reader.unsigned_golomb();
    if (reader.overrun() || set.id > 255 || set.sequence_id > 31) return std::nullopt;
    return set;
}

} // namespace softdec
