#include "framer/nal_unit.h"

#include <algorithm>
#include <utility>

namespace softdec
{

namespace
{

/** ITU-T H.264, table 7-1. */
NalKind kind_h264(unsigned type)
{
    switch (type)
    {
    case 1:
    case 5: return NalKind::slice;
    case 6: return NalKind::supplement;
    case 7: return NalKind::sequence_parameters;
    case 8: return NalKind::picture_parameters;
    case 9: return NalKind::delimiter;
    case 10:
    case 11: return NalKind::end;
    case 12: return NalKind::filler;
    case 2: // data partitions, of a profile that is not broadcast
    case 3:
    case 4:
    case 13:
    case 14:
    case 15:
    case 16:
    case 19:
    case 20:
    case 21: return NalKind::other;
    default: return NalKind::unknown;
    }
}

/** ITU-T H.265, table 7-1. */
NalKind kind_h265(unsigned type)
{
    if (type <= 9 || (type >= 16 && type <= 21)) return NalKind::slice;
    switch (type)
    {
    case 32: return NalKind::video_parameters;
    case 33: return NalKind::sequence_parameters;
    case 34: return NalKind::picture_parameters;
    case 35: return NalKind::delimiter;
    case 36:
    case 37: return NalKind::end;
    case 38: return NalKind::filler;
    case 39:
    case 40: return NalKind::supplement;
    default: return NalKind::unknown;
    }
}

NalKind kind_mpeg(unsigned type)
{
    const auto code = static_cast<MpegStartCode>(type);
    if (code > MpegStartCode::picture && code <= MpegStartCode::last_slice) return NalKind::slice;
    switch (code)
    {
    case MpegStartCode::picture:
    case MpegStartCode::sequence:
    case MpegStartCode::group: return NalKind::header;
    case MpegStartCode::user_data:
    case MpegStartCode::extension: return NalKind::extension;
    case MpegStartCode::sequence_end: return NalKind::end;
    default: return NalKind::unknown;
    }
}

/** Place of the next 00 00 01 from a position on, or the end. */
std::size_t next_start(std::span<const std::uint8_t> bytes, std::size_t at)
{
    while (at + 2 < bytes.size())
    {
        if (bytes[at + 2] > 1)
            at += 3;
        else if (bytes[at + 2] == 1 && bytes[at] == 0 && bytes[at + 1] == 0)
            return at;
        else
            ++at;
    }
    return bytes.size();
}

std::pair<unsigned, NalKind> type_of(unsigned first, VideoSyntax syntax)
{
    switch (syntax)
    {
    case VideoSyntax::h264: return {first & 0x1fU, kind_h264(first & 0x1fU)};
    case VideoSyntax::h265: return {first >> 1 & 0x3fU, kind_h265(first >> 1 & 0x3fU)};
    case VideoSyntax::mpeg: break;
    }
    return {first, kind_mpeg(first)};
}

} // namespace

void find_nal_units(std::span<const std::uint8_t> bytes, VideoSyntax syntax, const std::function<void(const NalUnit&)>& found)
{
    std::size_t start = next_start(bytes, 0);
    while (start < bytes.size())
    {
        const std::size_t begin = start + 3;
        start = next_start(bytes, begin);
        std::size_t end = start;
        while (end > begin && bytes[end - 1] == 0) --end;
        // The start code of a picture of MPEG is a zero.
        if (syntax == VideoSyntax::mpeg) end = std::max(end, std::min(begin + 1, bytes.size()));
        const std::size_t header = syntax == VideoSyntax::h265 ? 2 : 1;
        if (end - begin < header) continue;
        const auto [type, kind] = type_of(bytes[begin], syntax);
        // A zero in front of a start code belongs to it, but in MPEG to what is in front, which may end with one.
        const bool zero = syntax != VideoSyntax::mpeg && begin >= 4 && bytes[begin - 4] == 0;
        found({.type = type, .kind = kind, .begin = zero ? begin - 4 : begin - 3, .bytes = bytes.subspan(begin, end - begin)});
    }
}

} // namespace softdec
