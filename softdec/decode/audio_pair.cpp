#include "decode/audio_pair.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <limits>

namespace softdec
{

namespace
{

/** Bytes of a frame's header that tell the layer of MPEG audio (ISO/IEC 11172-3, 2.4.1.3). */
SMGR_TDEMUX_COMPRESSION_TYPE layer_of(std::span<const std::uint8_t> bytes, SMGR_TDEMUX_COMPRESSION_TYPE otherwise)
{
    if (otherwise != SMGR_TDEMUX_COMPRESSION_TYPE_MP2 || bytes.size() < 2) return otherwise;
    if (bytes[0] != 0xff || (bytes[1] & 0xe0) != 0xe0) return otherwise;
    switch (bytes[1] >> 1 & 3)
    {
    case 1: return SMGR_TDEMUX_COMPRESSION_TYPE_MP3;
    case 3: return SMGR_TDEMUX_COMPRESSION_TYPE_MP1;
    default: return otherwise;
    }
}

Ticks duration_of(int samples, int sample_rate)
{
    return sample_rate > 0 ? samples * ticks_per_second / sample_rate : 0;
}

timespec exact(Nanoseconds moment)
{
    return {.tv_sec = moment / second, .tv_nsec = moment % second};
}

} // namespace

AudioPair::AudioPair(const VirtualClock& clock, SMGR_AUDIO_PAIR_STATS& record, bool decode, bool live)
    : clock_(clock), record_(record), decode_(decode), load_(live), output_(clock, record)
{
    record_ = {};
    record_.nSize = sizeof record_;
}

void AudioPair::begin_stream(SMGR_TDEMUX_COMPRESSION_TYPE compression)
{
    compression_ = compression;
    stamps_ = 0;
    record_.enAlgorithm = compression;
    parser_.reset(av_parser_init(codec_id(compression)));
    decoder_ = new_decoder(compression);
    // The context serves the parser as well, which writes into it what it finds.
    if (decoder_ && !open_decoder(*decoder_)) decoder_.reset();
}

void AudioPair::take(const ElementaryPacket& packet, std::optional<Ticks> stc, const std::function<void(Ticks)>& lead)
{
    const auto compression = layer_of(packet.data, packet.stream.compression);
    const bool layer_known = compression_ != SMGR_TDEMUX_COMPRESSION_TYPE_UNKNOWN;
    if (!layer_known || (compression != compression_ && compression != packet.stream.compression)) begin_stream(compression);
    stc_ = stc;
    cut_ = packet.cut;
    lead_ = &lead;
    if (decoder_)
    {
        if (packet.time_base.number != time_base_.number) begin_time_base(packet);
        parse(packet);
    }
    lead_ = nullptr;
}

/** Sound need not go on where another time base begins, and a frame may have been cut off there. */
void AudioPair::begin_time_base(const ElementaryPacket& packet)
{
    if (time_base_.number != 0)
    {
        stamps_ = std::min(stamps_, 1UL);
        parse_rest();
        parser_.reset(av_parser_init(codec_id(compression_)));
    }
    time_base_ = packet.time_base;
    begin_ = packet.pts;
}

void AudioPair::parse(const ElementaryPacket& packet)
{
    padded_.assign(packet.data.begin(), packet.data.end());
    padded_.resize(packet.data.size() + AV_INPUT_BUFFER_PADDING_SIZE);
    std::span<const std::uint8_t> rest(padded_.data(), packet.data.size());
    // What is not compressed has a frame in each packet, and needs no parser.
    if (!parser_) return take_frame(packet.data, packet.pts);
    std::int64_t pts = packet.pts.value_or(AV_NOPTS_VALUE);
    while (!rest.empty())
    {
        std::uint8_t* frame = nullptr;
        int size = 0;
        const int used =
            av_parser_parse2(parser_.get(), decoder_.get(), &frame, &size, rest.data(), static_cast<int>(rest.size()), pts, pts, 0);
        if (used < 0) return;
        pts = AV_NOPTS_VALUE;
        rest = rest.subspan(static_cast<std::size_t>(used));
        if (size > 0)
            take_frame({frame, static_cast<std::size_t>(size)},
                       parser_->pts == AV_NOPTS_VALUE ? std::nullopt : std::optional<Ticks>(parser_->pts));
        else if (used == 0)
            return;
    }
}

/** What a frame's header says: of ADTS (ISO/IEC 14496-3, 1.A.2.2) and of uncompressed sound (SMPTE ST 302, 5.5) it is read here, of the
    others the parser has read it. */
AudioPair::AudioFormat AudioPair::format_of(std::span<const std::uint8_t> frame) const
{
    constexpr std::array sample_rates = {96000, 88200, 64000, 48000, 44100, 32000, 24000, 22050, 16000, 12000, 11025, 8000, 7350};
    const auto rate = frame.size() >= 7 ? frame[2] >> 2 & 15U : sample_rates.size();
    if (compression_ == SMGR_TDEMUX_COMPRESSION_TYPE_AAC_ADTS && rate < sample_rates.size())
    {
        const int configuration = (frame[2] & 1) << 2 | frame[3] >> 6;
        return {.sample_rate = sample_rates[rate],
                .samples = 1024 * ((frame[6] & 3) + 1),
                .channels = configuration == 7   ? 8
                            : configuration != 0 ? configuration
                                                 : decoder_->ch_layout.nb_channels};
    }
    if (!parser_)
    {
        if (frame.size() < 4) return {};
        const int channels = 2 * (frame[2] >> 6) + 2;
        const int bits = 20 + 4 * (frame[3] >> 4 & 3); // of a sample, 4 of them its flags
        return {.sample_rate = 48000, .samples = (frame[0] << 8 | frame[1]) * 8 / (channels * bits), .channels = channels};
    }
    return {.sample_rate = decoder_->sample_rate,
            .samples = parser_->duration > 0 ? parser_->duration : decoder_->frame_size,
            .channels = decoder_->ch_layout.nb_channels};
}

void AudioPair::take_frame(std::span<const std::uint8_t> bytes, std::optional<Ticks> pts)
{
    // What comes before the first time stamp of a stream has none to be played by.
    if (stamps_ == 0 && !pts) return;
    if (pts) ++stamps_;
    const bool begins = pts && pts == begin_;
    if (begins)
    {
        begin_.reset();
        expected_.reset();
    }
    ++record_.nReceivedFrames;
    record_.tLastReceivedFrame = clock_.seconds();
    record_.tLastRxFrameTime = exact(clock_.now());
    bits_.add(clock_.now(), bytes.size() * 8);
    record_.nBitRateInKbps = static_cast<int>(bits_.rate(clock_.now()) / 1000);
    const AudioFormat format = format_of(bytes);
    if (format.sample_rate > 0) record_.nSampleRateIn = format.sample_rate;
    if (format.channels > 0) record_.nInputChannels = format.channels;
    const Ticks duration = duration_of(format.samples, format.sample_rate);
    // A time stamp may be a tick or two beside what the frames before add up to.
    if (is_in_step() && pts && expected_ && std::abs(*pts - *expected_) > std::max<Ticks>(duration * 3 / 4, ticks_per_millisecond))
        ++record_.nInTSDiscontinuity;
    moment_ = pts.value_or(expected_.value_or(moment_));
    expected_.reset();
    if (duration > 0) expected_ = moment_ + duration;
    record_.nAudioTimeStamp = static_cast<unsigned>(time_base_.timestamp_of(moment_));
    if (decode_) decode(bytes, moment_, is_in_step() && !begins);
}

void AudioPair::decode(std::span<const std::uint8_t> bytes, Ticks pts, bool follows)
{
    std::vector<std::uint8_t> padded(bytes.begin(), bytes.end());
    padded.resize(bytes.size() + AV_INPUT_BUFFER_PADDING_SIZE);
    packet_->data = padded.data();
    packet_->size = static_cast<int>(bytes.size());
    load_.begin();
    bool decoded = avcodec_send_packet(decoder_.get(), packet_.get()) == 0;
    while (decoded)
    {
        const int result = avcodec_receive_frame(decoder_.get(), frame_.get());
        if (result == AVERROR(EAGAIN)) break;
        decoded = result == 0;
        if (!decoded) break;
        const int sample_bytes = av_get_bytes_per_sample(static_cast<AVSampleFormat>(frame_->format));
        record_.nOutputChannels = frame_->ch_layout.nb_channels;
        record_.nSampleRateOut = frame_->sample_rate;
        record_.nDecodedBytes += static_cast<unsigned long>(frame_->nb_samples) *
                                 static_cast<unsigned long>(frame_->ch_layout.nb_channels) * static_cast<unsigned long>(sample_bytes);
        ++record_.nDecodedFrames;
        record_.tLastDecodedFrame = clock_.seconds();
        // A header need not tell what the decoder finds.
        const Ticks duration = expected_ ? *expected_ - pts : duration_of(frame_->nb_samples, frame_->sample_rate);
        expected_ = pts + duration;
        if (stc_ && lead_ != nullptr) (*lead_)(pts - *stc_);
        output_.take({.pts = pts, .duration = duration, .in_step = follows, .time_base = time_base_}, stc_);
        av_frame_unref(frame_.get());
    }
    if (const Nanoseconds busy = load_.end(clock_.now()); load_.enabled())
    {
        const int microseconds = static_cast<int>(busy / microsecond);
        record_.nLastProcessTimeUs = microseconds;
        if (record_.tMinProcessTime == 0 || microseconds < record_.nMinProcessTimeUs)
        {
            record_.nMinProcessTimeUs = microseconds;
            record_.tMinProcessTime = clock_.seconds();
        }
        if (microseconds > record_.nMaxProcessTimeUs)
        {
            record_.nMaxProcessTimeUs = microseconds;
            record_.tMaxProcessTime = clock_.seconds();
        }
    }
    if (decoded || !is_in_step()) return;
    ++record_.nDecoderErrors;
    record_.tLastDecoderError = clock_.seconds();
}

void AudioPair::finish(std::optional<Ticks> stc)
{
    if (cut_) return; // a frame that was cut off is none
    stc_ = stc;
    parse_rest();
}

void AudioPair::parse_rest()
{
    if (!parser_ || !decoder_) return;
    std::uint8_t* frame = nullptr;
    int size = 0;
    av_parser_parse2(parser_.get(), decoder_.get(), &frame, &size, nullptr, 0, AV_NOPTS_VALUE, AV_NOPTS_VALUE, 0);
    if (size > 0)
        take_frame({frame, static_cast<std::size_t>(size)},
                   parser_->pts == AV_NOPTS_VALUE ? std::nullopt : std::optional<Ticks>(parser_->pts));
}

} // namespace softdec
