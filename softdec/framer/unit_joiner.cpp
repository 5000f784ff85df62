#include "framer/unit_joiner.h"

#include <algorithm>

namespace softdec
{

namespace
{

/** As much of a slice holds all of its header that is read. */
constexpr std::size_t whole_header = 128;

/** More than any unit but a slice has. */
constexpr std::size_t longest_held = 1U << 20;

/** Where the part of the bytes begins that cannot be judged before more have come. */
std::size_t judged(const std::vector<std::uint8_t>& bytes, const std::vector<NalUnit>& units)
{
    if (!units.empty())
    {
        const NalUnit& last = units.back();
        const std::size_t size = bytes.size() - last.begin;
        if (size < whole_header || (last.kind != NalKind::slice && size < longest_held)) return last.begin;
    }
    // The begin of a start code, or one whose unit's header has not come.
    const std::size_t reach = std::min<std::size_t>(bytes.size(), 5);
    for (std::size_t at = bytes.size() - reach; at < bytes.size(); ++at)
    {
        const auto rest = static_cast<std::ptrdiff_t>(at);
        const auto stop = std::find_if(bytes.begin() + rest, bytes.end(), [](std::uint8_t byte) { return byte != 0; });
        const auto zeros = stop - bytes.begin() - rest;
        if (stop == bytes.end() ? zeros > 0 : zeros >= 2 && *stop == 1) return at;
    }
    return bytes.size();
}

} // namespace

UnitJoiner::Piece UnitJoiner::take(std::vector<std::uint8_t> packet, VideoSyntax syntax)
{
    Piece piece;
    piece.joint = held_.size();
    piece.bytes = std::move(packet);
    if (!held_.empty()) piece.bytes.insert(piece.bytes.begin(), held_.begin(), held_.end());
    find_nal_units(piece.bytes, syntax, [&piece](const NalUnit& unit) { piece.units.push_back(unit); });
    piece.end = judged(piece.bytes, piece.units);
    while (!piece.units.empty() && piece.units.back().begin >= piece.end) piece.units.pop_back();
    held_.assign(piece.bytes.begin() + static_cast<std::ptrdiff_t>(piece.end), piece.bytes.end());
    return piece;
}

UnitJoiner::Piece UnitJoiner::rest(VideoSyntax syntax)
{
    Piece piece;
    piece.bytes = std::move(held_);
    held_.clear();
    piece.joint = piece.end = piece.bytes.size();
    find_nal_units(piece.bytes, syntax, [&piece](const NalUnit& unit) { piece.units.push_back(unit); });
    return piece;
}

} // namespace softdec
