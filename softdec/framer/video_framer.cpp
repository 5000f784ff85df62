#include "framer/video_framer.h"

#include <algorithm>

namespace softdec
{

namespace
{

/** Larger than any picture; a stream without one would otherwise be gathered for ever. */
constexpr std::size_t largest_picture = 32U << 20;

/** A picture whose end the next one has not shown for this long is whole; fewer than four pictures a second are none to show. */
constexpr Nanoseconds longest_wait = 250 * millisecond;

} // namespace

SMGR_VIDEO_COLOR_TYPE color_type(const VideoFormat& format)
{
    const unsigned depth = std::max(format.luma_depth, format.chroma_depth);
    switch (format.chroma_format)
    {
    case 0: return SMGR_VIDEO_COLOR_TYPE_MONOCHROME;
    case 1:
        return depth == 8 ? SMGR_VIDEO_COLOR_TYPE_420_8BIT : depth == 10 ? SMGR_VIDEO_COLOR_TYPE_420_10BIT : SMGR_VIDEO_COLOR_TYPE_UNKNOWN;
    case 2:
        return depth == 8 ? SMGR_VIDEO_COLOR_TYPE_422_8BIT : depth == 10 ? SMGR_VIDEO_COLOR_TYPE_422_10BIT : SMGR_VIDEO_COLOR_TYPE_UNKNOWN;
    default: return SMGR_VIDEO_COLOR_TYPE_444;
    }
}

void VideoFramer::forget_properties()
{
    record_.tCurrentProperties = {};
    record_.tCurrentProperties.colour_primaries = 2;
    record_.tCurrentProperties.transfer_characteristics = 2;
    record_.tCurrentProperties.matrix_coefficients = 2;
    if (compression_) return;
    record_.tPreviousProperties = record_.tCurrentProperties;
}

void VideoFramer::begin_stream(const ElementaryPacket& packet)
{
    auto& counters = record_.tCounters;
    if (compression_)
    {
        ++counters.nNumStreamIDTransitions;
        counters.tLastStreamIDTransition = clock_.seconds();
    }
    compression_ = packet.stream.compression;
    h265_ = compression_ == SMGR_TDEMUX_COMPRESSION_TYPE_H265;
    supported_ = h265_ || compression_ == SMGR_TDEMUX_COMPRESSION_TYPE_H264;
    record_.nStreamID = static_cast<int>(packet.stream.pid);
    record_.tCurrentProperties.enCompressionType = packet.stream.compression;
    sets_ = {};
    format_.reset();
    sequence_.reset();
    picture_ = {};
    has_slices_ = started_ = false;
    first_slice_.reset();
    dts_.clear();
    if (supported_)
    {
        record_.enState = SMGR_VFRAMER_STATE_ACTIVE;
        ++(h265_ ? counters.nNumH265Compression : counters.nNumH264Compression);
        (h265_ ? counters.tLastH265Compression : counters.tLastH264Compression) = clock_.seconds();
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
    if (!supported_)
    {
        ++counters.nNumInputPacketsDropped;
        counters.tLastInputPacketDropped = clock_.seconds();
        return;
    }

    last_piece_ = clock_.now();
    pts_taken_ = false;
    std::optional<std::size_t> cut; // where the picture that goes on begins in the packet
    bool any = false;
    const bool continues = picture_.pieces != 0;
    find_nal_units(packet.data, h265_,
                   [&](const NalUnit& unit)
                   {
                       any = true;
                       take_unit(unit, packet, cut);
                   });
    if (!any)
    {
        ++counters.nNumNoNALsInFrame;
        counters.tLastNoNALsInFrame = clock_.seconds();
    }
    if (!cut && continues) ++picture_.pieces;
    picture_.data.insert(picture_.data.end(), packet.data.begin() + static_cast<std::ptrdiff_t>(cut.value_or(0)), packet.data.end());
    if (packet.damaged) picture_.damaged = true;
    picture_.cut = packet.cut;
    if (picture_.data.size() > largest_picture) complete();
}

void VideoFramer::take_unit(const NalUnit& unit, const ElementaryPacket& packet, std::optional<std::size_t>& cut)
{
    count_unit(unit);
    std::optional<Slice> slice;
    if (unit.kind == NalKind::slice)
    {
        slice = parse_slice(unit, h265_, sets_);
        // Slices that come before their parameter sets are not wrong: the stream was joined between them.
        if (!slice && started_)
        {
            ++record_.tCounters.nNumSHErrors;
            record_.tCounters.tLastSHError = clock_.seconds();
        }
    }
    if (begins_picture(unit, slice))
    {
        picture_.data.insert(picture_.data.end(), packet.data.begin() + static_cast<std::ptrdiff_t>(cut.value_or(0)),
                             packet.data.begin() + static_cast<std::ptrdiff_t>(unit.begin));
        // What came before in this packet, or its damage, may be of the picture that ends.
        if (packet.damaged && unit.begin != 0) picture_.damaged = true;
        cut = unit.begin;
        complete();
    }
    if (picture_.pieces == 0) begin_picture(packet, !pts_taken_);
    if (unit.kind == NalKind::slice) add_slice(slice);
    take_parameters(unit);
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
    case NalKind::supplement: // of H.265, the type 40 follows the picture that it belongs to
        if (h265_ && unit.type == 40) return false;
        break;
    case NalKind::slice:
        if (slice && !slice->first) return false;
        if (!slice) return false;
        break;
    default: return false;
    }
    // The second field of a frame is decoded with the first. What stands in front of its slices cannot tell whether it comes.
    const bool second_field = slice && first_slice_ && slice->field && first_slice_->field && slice->bottom != first_slice_->bottom &&
                              slice->frame_num == first_slice_->frame_num && !h265_ && picture_.top_fields + picture_.bottom_fields == 1;
    return !second_field;
}

void VideoFramer::begin_picture(const ElementaryPacket& packet, bool at_start)
{
    picture_.pieces = 1;
    picture_.received = clock_.now();
    picture_.time_base = packet.time_base;
    picture_.damaged = packet.damaged;
    if (!at_start) return; // the packet's time stamps are those of the first picture that begins in it
    picture_.pts = packet.pts;
    picture_.dts = packet.dts;
    pts_taken_ = true;
}

void VideoFramer::add_slice(const std::optional<Slice>& slice)
{
    has_slices_ = true;
    ++picture_.slices;
    if (!slice) return;
    if (slice->first && slice->field && !h265_) ++(slice->bottom ? picture_.bottom_fields : picture_.top_fields);
    if (!first_slice_)
    {
        first_slice_ = slice;
        picture_.format = slice->sequence->format;
        sequence_ = *slice->sequence;
    }
    if (slice->instantaneous_refresh) picture_.key = true;
    // A picture is of the type that its most dependent slice has.
    if (slice->type > picture_.type) picture_.type = slice->type;
}

void VideoFramer::complete()
{
    Picture picture = std::move(picture_);
    const bool whole = has_slices_;
    picture_ = {};
    has_slices_ = false;
    first_slice_.reset();
    if (!whole) return;

    // Where decoding may begin without everything before: at a recovery point, or at an I picture of a stream that has none.
    if (picture.metadata.recovery_point && picture.type == PictureType::i) picture.key = true;
    auto& counters = record_.tCounters;
    started_ = started_ || picture.key;
    if (!started_)
    {
        ++counters.nNumOutputFramesDropped;
        counters.tLastOutputFrameDropped = clock_.seconds();
        counters.nNumOutputBytesDropped += picture.data.size();
        return;
    }
    if (picture.format) take_format(*picture.format);
    count_picture(picture);
    output_(std::move(picture));
}

void VideoFramer::step()
{
    if (has_slices_ && clock_.now() - last_piece_ > longest_wait) complete();
}

void VideoFramer::finish()
{
    complete();
}

void VideoFramer::update()
{
    record_.tCurrentProperties.nBitsPerSecond = static_cast<unsigned>(std::min(bits_.rate(clock_.now()), 4e9));
}

} // namespace softdec
