#include "framer/mpeg_headers.h"

#include <array>
#include <utility>

#include "framer/bit_reader.h"

namespace softdec
{

namespace
{

/** Extensions of ISO/IEC 13818-2, table 6-2. */
enum Extension : unsigned
{
    sequence_extension = 1,
    sequence_display_extension = 2,
    picture_coding_extension = 8,
};

/** Structures of ISO/IEC 13818-2, table 6-14. */
enum Structure : unsigned
{
    top_field = 1,
    bottom_field = 2,
};

/** Frames a second by frame_rate_code (ISO/IEC 13818-2, table 6-4). */
constexpr std::array<double, 9> frame_rates = {0, 24'000 / 1001.0, 24, 25, 30'000 / 1001.0, 30, 50, 60'000 / 1001.0, 60};

/** A size in whole macroblocks, of both fields where pictures may be fields. */
unsigned whole_blocks(unsigned size, unsigned block)
{
    return (size + block - 1) / block * block;
}

void set_size(VideoFormat& format, unsigned width, unsigned height)
{
    format.coded_width = whole_blocks(width, 16);
    format.coded_height = whole_blocks(height, format.may_be_interlaced ? 32 : 16);
    format.crop_right = format.coded_width - width;
    format.crop_bottom = format.coded_height - height;
}

unsigned temporal_reference(const NalUnit& unit)
{
    BitReader reader(unit.bytes.subspan(1));
    return reader.bits(10);
}

} // namespace

void MpegHeaders::take(const NalUnit& unit, PictureMetadata& metadata)
{
    switch (static_cast<MpegStartCode>(unit.type))
    {
    case MpegStartCode::sequence: return take_sequence(unit);
    case MpegStartCode::group: return take_group(unit);
    case MpegStartCode::picture: return take_picture(unit, metadata);
    case MpegStartCode::extension: return take_extension(unit, metadata);
    case MpegStartCode::user_data: return parse_atsc_user_data(unit.bytes.subspan(1), metadata);
    default: return;
    }
}

/** Zeros at the end of a unit are taken for stuffing when it is searched for, so bits that are missing are zeros. */
void MpegHeaders::take_sequence(const NalUnit& unit)
{
    picture_.reset();
    sequence_.reset();
    BitReader reader(unit.bytes.subspan(1));
    const unsigned width = reader.bits(12);
    const unsigned height = reader.bits(12);
    reader.skip(4);
    const unsigned rate = reader.bits(4);
    if (width == 0 || height == 0 || rate == 0 || rate >= frame_rates.size()) return;
    sequence_.emplace();
    VideoFormat& format = sequence_->format;
    set_size(format, width, height);
    format.frame_rate = frame_rates[rate];
    format.reorders = true;
    format.picture_buffers = 3; // two references, and the B picture between them
}

void MpegHeaders::take_group(const NalUnit& unit)
{
    constexpr std::size_t time_code_bits = 25;
    BitReader reader(unit.bytes.subspan(1));
    reader.skip(time_code_bits);
    closed_group_ = reader.flag();
}

void MpegHeaders::take_picture(const NalUnit& unit, PictureMetadata& metadata)
{
    picture_.reset();
    BitReader reader(unit.bytes.subspan(1));
    const unsigned reference = reader.bits(10);
    const unsigned type = reader.bits(3);
    if (type < 1 || type > 3) return;
    picture_.emplace();
    picture_->frame_num = reference;
    picture_->first = true;
    picture_->type = type == 1 ? PictureType::i : type == 2 ? PictureType::p : PictureType::b;
    picture_->instantaneous_refresh = std::exchange(closed_group_, false) && type == 1;
    metadata.recovery_point = metadata.recovery_point || (type == 1 && sequence_);
}

void MpegHeaders::take_extension(const NalUnit& unit, PictureMetadata& metadata)
{
    BitReader reader(unit.bytes.subspan(1));
    const unsigned kind = reader.bits(4);
    if (kind == picture_coding_extension) return take_picture_coding(reader, metadata);
    if (!sequence_) return;
    VideoFormat& format = sequence_->format;
    if (kind == sequence_extension)
    {
        reader.skip(1); // the escape bit: the numbers of the 4:2:2 profile are its own
        format.profile = static_cast<int>(reader.bits(3));
        format.level = static_cast<int>(reader.bits(4));
        format.may_be_interlaced = !reader.flag();
        format.chroma_format = reader.bits(2);
        const unsigned width = reader.bits(2) << 12;
        const unsigned height = reader.bits(2) << 12;
        set_size(format, format.width() + width, format.height() + height);
        reader.skip(21);
        if (reader.flag())
        {
            format.reorders = false;
            format.picture_buffers = 2;
        }
        const unsigned factor = reader.bits(2) + 1;
        format.frame_rate = format.frame_rate * factor / (reader.bits(5) + 1);
    }
    else if (kind == sequence_display_extension)
    {
        reader.skip(3);
        if (!reader.flag()) return;
        format.primaries = static_cast<std::uint8_t>(reader.bits(8));
        format.transfer = static_cast<std::uint8_t>(reader.bits(8));
        format.matrix = static_cast<std::uint8_t>(reader.bits(8));
    }
}

void MpegHeaders::take_picture_coding(BitReader& reader, PictureMetadata& metadata)
{
    if (!picture_) return;
    reader.skip(18);
    const unsigned structure = reader.bits(2);
    const bool top_first = reader.flag();
    reader.skip(5);
    const bool repeated = reader.flag();
    reader.skip(1);
    const bool progressive = reader.flag();
    picture_->field = structure == top_field || structure == bottom_field;
    picture_->bottom = structure == bottom_field;
    if (!sequence_) return;
    // As picture timing of ITU-T H.264 would tell it (table D-1). The first of two fields tells of their order.
    if (!sequence_->format.may_be_interlaced)
        metadata.picture_structure = !repeated ? 0 : top_first ? 8 : 7;
    else if (!metadata.picture_structure)
        metadata.picture_structure = (picture_->field ? structure : top_first ? 1 : 2) + (repeated ? 4 : 2);
    metadata.progressive = progressive;
}

std::optional<Slice> MpegHeaders::slice()
{
    if (!picture_ || !sequence_) return std::nullopt;
    Slice slice = *picture_;
    slice.sequence = &*sequence_;
    picture_->first = false;
    return slice;
}

bool MpegHeaders::is_second_field(const NalUnit& unit) const
{
    return static_cast<MpegStartCode>(unit.type) == MpegStartCode::picture && picture_ && picture_->field &&
           picture_->frame_num == temporal_reference(unit);
}

} // namespace softdec
