#include "decode/video_decoder.h"

#include <algorithm>
#include <cmath>

namespace softdec
{

namespace
{

/** Pictures that a decoder may hold at most; what is older has not come out and will not. */
constexpr std::size_t most_pending = 32;

/** A longer step of the DTS than this is no longer a matter of a few pictures lost. */
constexpr Ticks longest_step = ticks_per_second / 2;

} // namespace

VideoDecoder::VideoDecoder(const VirtualClock& clock, SMGR_VCUDEC_STATS& record, bool live, Output output)
    : clock_(clock), record_(record), output_(std::move(output)), load_(live)
{
    record_.nSize = sizeof record_;
    record_.enState = SMGR_VCUDEC_STATE_IDLE;
    record_.enPicStructure = VCUDEC_PICSTRUCTURE_UNKNOWN;
}

bool VideoDecoder::prepare(const Picture& picture, SMGR_TDEMUX_COMPRESSION_TYPE compression)
{
    if (decoder_ && compression_ == compression) return true;
    decoder_ = new_decoder(compression);
    compression_ = compression;
    pending_.clear();
    recovered_ = false;
    last_dts_.reset();
    if (decoder_)
    {
        // A damaged picture is shown as well as it can be.
        decoder_->flags |= AV_CODEC_FLAG_OUTPUT_CORRUPT;
        // A stream that does not say how far its pictures are out of order shows it by the first one's time stamps.
        if (picture.pts && picture.dts)
            decoder_->has_b_frames = static_cast<int>(std::clamp<Ticks>((*picture.pts - *picture.dts + period_ / 2) / period_, 0, 16));
        if (!open_decoder(*decoder_)) decoder_.reset();
    }
    if (decoder_) return true;
    record_.tCounters.nLastErrorCode = static_cast<int>(SMGR_ERROR_UNSUPPORTED_VIDEO_FORMAT);
    record_.tCounters.iLastErrorTime = clock_.seconds();
    return false;
}

/** The DTS of pictures only grows, picture by picture, within a time base. */
void VideoDecoder::check_order(const Picture& picture)
{
    if (!picture.dts)
    {
        ++untimed_;
        return;
    }
    const bool follows = last_dts_ && picture.time_base.number == time_base_;
    const Ticks step = follows ? *picture.dts - *last_dts_ : 1;
    if (step <= 0 || step > std::max(longest_step, (5 + 2 * Ticks{untimed_}) * period_))
    {
        ++record_.tCounters.nNumDiscontinuty;
        record_.tCounters.tLastDiscontinuity = clock_.seconds();
    }
    time_base_ = picture.time_base.number;
    last_dts_ = picture.dts;
    untimed_ = 0;
}

void VideoDecoder::take(Picture picture, SMGR_TDEMUX_COMPRESSION_TYPE compression)
{
    auto& counters = record_.tCounters;
    ++counters.nNumReceivedFrames;
    counters.tLastReceivedFrame = clock_.seconds();
    if (picture.rate > 0.1 && picture.rate < 1000) period_ = std::lround(static_cast<double>(ticks_per_second) / picture.rate);
    check_order(picture);
    describe(picture);
    if (prepare(picture, compression))
        send(picture);
    else
        drop(picture.type);
    ++counters.nNumReceivedFramesFreed;
    counters.tLastReceivedFrameFreed = clock_.seconds();
}

void VideoDecoder::send(Picture& picture)
{
    auto& counters = record_.tCounters;
    record_.enState = SMGR_VCUDEC_STATE_ACTIVE;
    ++counters.nNumFramesSentToDecoder;
    counters.tLastFrameSentToDecoder = clock_.seconds();
    const std::size_t size = picture.data.size();
    picture.data.resize(size + AV_INPUT_BUFFER_PADDING_SIZE);
    packet_->data = picture.data.data();
    packet_->size = static_cast<int>(size);
    decoder_->reordered_opaque = ++number_;
    pending_[number_] = {.pts = picture.pts,
                         .place = picture.place,
                         .time_base = picture.time_base.number,
                         .damaged = picture.damaged,
                         .cut = picture.cut,
                         .failed = false,
                         .type = picture.type,
                         .shown_fields = picture.shown_fields,
                         .taken = clock_.now()};

    load_.begin();
    bool decoded = avcodec_send_packet(decoder_.get(), packet_.get()) == 0;
    const Nanoseconds busy = load_.end(clock_.now());
    while (true)
    {
        load_.begin();
        const int result = avcodec_receive_frame(decoder_.get(), frame_.get());
        load_.end(clock_.now());
        if (result == AVERROR(EAGAIN)) break;
        if (result != 0)
        {
            decoded = false;
            break;
        }
        take_frame();
    }
    if (picture.key && load_.enabled()) record_.nVKeyDecDelayMS = static_cast<UINT64>(busy / millisecond);
    if (decoded)
    {
        ++counters.nNumDecodedFrames;
        counters.tLastDecodedFrame = clock_.seconds();
        ++counters.nNumReorderFramesIn;
        counters.tLastReorderFrameIn = clock_.seconds();
    }
    else
    {
        // It may come out all the same, as well as it could be decoded.
        const auto pending = pending_.find(number_);
        if (pending != pending_.end()) pending->second.damaged = pending->second.failed = true;
    }
    while (pending_.size() > most_pending) give_up_first();
    counters.nNumReorderFramesQOcc = pending_.size();
    reorder_length_.add(clock_.now(), static_cast<std::int64_t>(pending_.size()));
    record_.nVCurReOrderLen = static_cast<UINT>(pending_.size());
    record_.nVMaxReOrderLen = static_cast<UINT>(reorder_length_.greatest());
    record_.nVMinReOrderLen = static_cast<UINT>(reorder_length_.least());
}

/** The picture that has waited longest will not come out. The second field of a frame comes out with the first. */
void VideoDecoder::give_up_first()
{
    const auto first = pending_.begin();
    if (first->second.failed && !first->second.cut) drop(first->second.type);
    pending_.erase(first);
}

void VideoDecoder::drop(PictureType type)
{
    auto& counters = record_.tCounters;
    const std::time_t now = clock_.seconds();
    ++counters.nNumDroppedFrames;
    counters.tLastDroppedFrame = now;
    switch (type)
    {
    case PictureType::i:
        ++counters.nNumDroppedIFrames;
        counters.tLastDroppedIFrame = now;
        break;
    case PictureType::p:
        ++counters.nNumDroppedPFrames;
        counters.tLastDroppedPFrame = now;
        break;
    case PictureType::b:
        ++counters.nNumDroppedBFrames;
        counters.tLastDroppedBFrame = now;
        break;
    case PictureType::unknown: break;
    }
}

void VideoDecoder::take_frame()
{
    auto& counters = record_.tCounters;
    DecodedPicture decoded = {.pts = std::nullopt, .time_base = time_base_, .period = period_, .shown_for = period_};
    bool damaged = (frame_->flags & AV_FRAME_FLAG_CORRUPT) != 0 || frame_->decode_error_flags != 0;
    const auto pending = pending_.find(frame_->reordered_opaque);
    if (pending == pending_.end())
    {
        ++counters.nNumNoInfoErrors;
        counters.tLastNoInfoError = clock_.seconds();
    }
    else
    {
        decoded.pts = pending->second.pts;
        decoded.place = pending->second.place;
        decoded.time_base = pending->second.time_base;
        decoded.shown_for = period_ * pending->second.shown_fields / 2;
        // A stream that is refreshed bit by bit is joined in pictures that lack their references: they are not damaged.
        recovered_ = recovered_ || !damaged;
        damaged = ((damaged && recovered_) || pending->second.damaged) && !pending->second.cut;
        const Nanoseconds delay = (clock_.now() - pending->second.taken) / millisecond;
        output_delay_.add(clock_.now(), delay);
        record_.nVDelayOutputMS = static_cast<UINT>(delay);
        record_.nVDelayOutputMSAvg = static_cast<UINT>(output_delay_.average());
        record_.nVMaxDelayOutputMS = static_cast<UINT>(output_delay_.greatest());
        record_.nVMinDelayOutputMS = static_cast<UINT>(output_delay_.least());
        record_.nLatencyInUs = static_cast<unsigned>((clock_.now() - pending->second.taken) / microsecond);
        record_.nVDecLatencyMS = record_.nVMinDelayOutputMS; // pictures reach the decoder as they leave the framer
        pending_.erase(pending);
    }
    if (damaged)
    {
        ++counters.nNumConcealedFrames;
        counters.tLastConcealedFrame = clock_.seconds();
    }
    ++counters.nNumReorderFramesOut;
    counters.tLastReorderFrameOut = clock_.seconds();
    std::size_t bytes = 0;
    for (const AVBufferRef* buffer : frame_->buf) bytes += buffer != nullptr ? buffer->size : 0;
    record_.nFrameBufferSizeEachInBytes = bytes;
    av_frame_unref(frame_.get());
    output_(decoded);
}

void VideoDecoder::finish()
{
    if (!decoder_) return;
    avcodec_send_packet(decoder_.get(), nullptr);
    while (avcodec_receive_frame(decoder_.get(), frame_.get()) == 0) take_frame();
    avcodec_flush_buffers(decoder_.get());
    record_.tCounters.nNumReorderFramesQOcc = 0;
    record_.nVCurReOrderLen = 0;
    while (!pending_.empty()) give_up_first();
    ++record_.tCounters.nNumEOSEvents;
    record_.tCounters.tLastEOSEvent = clock_.seconds();
}

void VideoDecoder::update()
{
    if (load_.enabled()) record_.nLoadPercentage = load_.percent(clock_.now());
}

} // namespace softdec
