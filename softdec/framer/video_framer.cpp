#include "framer/video_framer.h"

#include <algorithm>
#include <utility>

namespace softdec
{

namespace
{

/** Larger than any picture; a stream without one would otherwise be gathered for ever. */
constexpr std::size_t largest_picture = 32U << 20;

std::optional<VideoSyntax> syntax_of(SMGR_TDEMUX_COMPRESSION_TYPE compression)
{
    switch (compression)
    {
    case SMGR_TDEMUX_COMPRESSION_TYPE_H264: return VideoSyntax::h264;
    case SMGR_TDEMUX_COMPRESSION_TYPE_H265: return VideoSyntax::h265;
    case SMGR_TDEMUX_COMPRESSION_TYPE_MPEG1:
    case SMGR_TDEMUX_COMPRESSION_TYPE_MPEG2: return VideoSyntax::mpeg;
    default: return std::nullopt;
    }
}

/** A picture whose end the next one has not shown for this long is whole; fewer than four pictures a second are none to show. */
constexpr Nanoseconds longest_pause = 250 * millisecond;

} // namespace

void VideoFramer::begin_stream(const ElementaryPacket& packet)
{
    auto& counters = record_.tCounters;
    if (compression_)
    {
        ++counters.nNumStreamIDTransitions;
        counters.tLastStreamIDTransition = clock_.seconds();
    }
    compression_ = packet.stream.compression;
    syntax_ = syntax_of(packet.stream.compression);
    record_.nStreamID = static_cast<int>(packet.stream.pid);
    record_.tCurrentProperties.enCompressionType = packet.stream.compression;
    sets_ = {};
    mpeg_ = {};
    format_.reset();
    sequence_.reset();
    joiner_.forget();
    now_ = held_ = {};
    unaligned_ = false;
    picture_ = {};
    has_slices_ = started_ = false;
    before_first_ = false;
    first_slice_.reset();
    timed_.clear();
    if (syntax_)
    {
        record_.enState = SMGR_VFRAMER_STATE_ACTIVE;
        if (is_mpeg()) return; // which has no counter
        ++(is_h265() ? counters.nNumH265Compression : counters.nNumH264Compression);
        (is_h265() ? counters.tLastH265Compression : counters.tLastH264Compression) = clock_.seconds();
        return;
    }
    record_.enState = SMGR_VFRAMER_STATE_UNSUPPORTED;
    ++counters.nNumUnknownCompression;
    counters.tLastUnknownCompression = clock_.seconds();
    ++counters.nNumUnsupported;
    counters.tLastUnsupported = clock_.seconds();
    counters.nLastUnsupportedErrorCode = static_cast<int>(SMGR_ERROR_UNSUPPORTED_VIDEO_FORMAT);
}

void VideoFramer::take(ElementaryPacket packet)
{
    auto& counters = record_.tCounters;
    if (packet.stream.compression != compression_ || record_.nStreamID != static_cast<int>(packet.stream.pid)) begin_stream(packet);
    ++counters.nNumInputPackets;
    ++counters.nNumInputPacketsFreed;
    counters.tLastVideoFrameReceived = clock_.seconds();
    bits_.add(clock_.now(), packet.data.size() * 8);
    if (!syntax_)
    {
        ++counters.nNumInputPacketsDropped;
        counters.tLastInputPacketDropped = clock_.seconds();
        return;
    }

    last_piece_ = clock_.now();
    now_ = {.pts = packet.pts, .dts = packet.dts, .time_base = packet.time_base, .damaged = packet.damaged};
    const auto piece = joiner_.take(std::move(packet.data), *syntax_);
    const bool has_begin = piece.end < piece.bytes.size() || (!piece.units.empty() && piece.units.back().begin >= piece.joint);
    // A picture begins in a packet with a time; one without may hold a piece of a large one.
    if (!has_begin && (now_.pts || picture_.pieces == 0))
    {
        ++counters.nNumNoNALsInFrame;
        counters.tLastNoNALsInFrame = clock_.seconds();
    }
    take_piece(piece);
    if (piece.end >= piece.joint) held_ = now_;
    picture_.cut = packet.cut;
    if (picture_.data.size() > largest_picture) complete();
}

void VideoFramer::take_piece(const UnitJoiner::Piece& piece)
{
    std::size_t from = 0; // what the picture that goes on has not got yet
    const auto append = [this, &piece, &from](std::size_t to)
    {
        const auto begin = piece.bytes.begin();
        picture_.data.insert(picture_.data.end(), begin + static_cast<std::ptrdiff_t>(from), begin + static_cast<std::ptrdiff_t>(to));
        from = to;
    };
    bool joined = false; // the last packet is among those that the picture came in
    const auto join = [this, &joined]
    {
        if (joined || picture_.pieces == 0) return;
        joined = true;
        ++picture_.pieces;
        if (now_.damaged) picture_.damaged = true;
    };
    for (const NalUnit& unit : piece.units)
    {
        const bool is_held = unit.begin < piece.joint;
        if (unit.begin > piece.joint) join();
        count_unit(unit);
        const auto slice = slice_of(unit);
        if (begins_picture(unit, slice))
        {
            append(unit.begin);
            complete();
        }
        if (picture_.pieces == 0)
        {
            begin_picture(is_held ? held_ : now_);
            joined = !is_held;
        }
        else if (!is_held)
        {
            join();
        }
        if (unit.kind == NalKind::slice) add_slice(slice);
        take_parameters(unit);
    }
    if (piece.end > piece.joint)
    {
        unaligned_ = unaligned_ || (picture_.pieces != 0 && (piece.units.empty() || piece.units.front().begin > piece.joint));
        join();
    }
    append(piece.end);
}

/** The time stamps of a packet are those of the first picture that begins in it. */
void VideoFramer::begin_picture(Origin& origin)
{
    picture_.pieces = 1;
    picture_.received = clock_.now();
    picture_.time_base = origin.time_base;
    picture_.damaged = origin.damaged;
    picture_.pts = std::exchange(origin.pts, std::nullopt);
    picture_.dts = std::exchange(origin.dts, std::nullopt);
}

void VideoFramer::add_slice(const std::optional<Slice>& slice)
{
    has_slices_ = true;
    ++picture_.slices;
    if (!slice) return;
    if (slice->first && slice->field && !is_h265()) ++(slice->bottom ? picture_.bottom_fields : picture_.top_fields);
    if (!first_slice_)
    {
        first_slice_ = slice;
        picture_.place = order_.place_of(slice->order);
        picture_.format = slice->sequence->format;
        sequence_ = *slice->sequence;
    }
    if (slice->instantaneous_refresh) picture_.key = true;
    // A picture is of the type that its most dependent slice has, and two fields are of the first one's.
    if (slice->type > picture_.type && picture_.top_fields + picture_.bottom_fields <= 1) picture_.type = slice->type;
}

void VideoFramer::complete()
{
    Picture picture = std::move(picture_);
    const bool whole = has_slices_;
    picture_ = {};
    has_slices_ = false;
    first_slice_.reset();
    if (!whole) return;

    if (!is_decodable(picture))
    {
        auto& counters = record_.tCounters;
        ++counters.nNumOutputFramesDropped;
        counters.tLastOutputFrameDropped = clock_.seconds();
        counters.nNumOutputBytesDropped += picture.data.size();
        return;
    }
    if (picture.format) take_format(*picture.format);
    count_picture(picture);
    set_rate(picture);
    output_(std::move(picture));
}

/** Whether decoding has begun, or may begin here without everything before. */
bool VideoFramer::is_decodable(Picture& picture)
{
    const bool is_instantaneous = picture.key;
    if (picture.metadata.recovery_point && picture.type == PictureType::i) picture.key = true;
    // A stream that is refreshed bit by bit has no key pictures but the first.
    if (!started_ && (picture.key || picture.metadata.recovery_point))
    {
        started_ = true;
        // What is shown before the first picture may need others that were sent before it. Decoders of H.265 know which do.
        before_first_ = !is_h265() && !is_instantaneous;
        first_to_show_ = picture.pts;
        return true;
    }
    if (!started_ || (before_first_ && comes_before_first(picture))) return false;
    if (picture.pts || is_mpeg()) before_first_ = false;
    return true;
}

/** Whether a picture is shown before the one that decoding began with. Of MPEG, those are B pictures in front of all others. */
bool VideoFramer::comes_before_first(const Picture& picture) const
{
    if (is_mpeg()) return picture.type == PictureType::b;
    return picture.pts && first_to_show_ && *picture.pts < *first_to_show_;
}

void VideoFramer::step()
{
    if (!syntax_ || unaligned_ || clock_.now() - last_piece_ <= longest_pause) return;
    take_piece(joiner_.rest(*syntax_));
    if (has_slices_) complete();
}

void VideoFramer::finish()
{
    if (!syntax_) return;
    take_piece(joiner_.rest(*syntax_));
    complete();
}

void VideoFramer::update()
{
    record_.tCurrentProperties.nBitsPerSecond = static_cast<unsigned>(std::min(bits_.rate(clock_.now()), 4e9));
}

} // namespace softdec
