/**
 * @file audio_pair.h
 * Frames and decodes one audio stream, and keeps the pair's record up to its output.
 */
#ifndef SOFTDEC_DECODE_AUDIO_PAIR_H
#define SOFTDEC_DECODE_AUDIO_PAIR_H

#include <functional>
#include <optional>
#include <span>
#include <vector>

#include "chain/rate_meter.h"
#include "decode/codec.h"
#include "decode/load_meter.h"
#include "demux/elementary_packet.h"
#include "presenter/audio_output.h"
#include "sessmgr_audio.h"

namespace softdec
{

class AudioPair
{
public:
    AudioPair(const VirtualClock& clock, SMGR_AUDIO_PAIR_STATS& record, bool decode, bool live);

    /**
     * Takes a packet of the stream.
     * @param stc now; nothing = the clock is not known, so that frames are played at once
     * @param lead is called with the time that each frame lies ahead of the STC
     */
    void take(const ElementaryPacket& packet, std::optional<Ticks> stc, const std::function<void(Ticks)>& lead);

    /** The stream has ended. */
    void finish(std::optional<Ticks> stc);

    /** Where what is decoded is played. */
    AudioOutput& output() { return output_; }

private:
    /** What a frame is. 0 = not known. */
    struct AudioFormat
    {
        int sample_rate; // [Hz]
        int samples;     // of each channel
        int channels;
    };

    /** Whether frames are found where they begin: in a stream that is joined within one, the first few may be none. */
    bool is_in_step() const { return stamps_ > 3; }

    AudioFormat format_of(std::span<const std::uint8_t> frame) const;
    void begin_stream(SMGR_TDEMUX_COMPRESSION_TYPE compression);
    void parse(const ElementaryPacket& packet);
    void parse_rest();
    void begin_time_base(const ElementaryPacket& packet);
    void take_frame(std::span<const std::uint8_t> bytes, std::optional<Ticks> pts);
    void decode(std::span<const std::uint8_t> bytes, Ticks pts, bool follows);

    const VirtualClock& clock_;
    SMGR_AUDIO_PAIR_STATS& record_;
    const bool decode_;
    LoadMeter load_;
    AudioOutput output_;
    SMGR_TDEMUX_COMPRESSION_TYPE compression_ = SMGR_TDEMUX_COMPRESSION_TYPE_UNKNOWN;
    Parser parser_;
    CodecContext decoder_;
    Frame frame_{av_frame_alloc()};
    Packet packet_{av_packet_alloc()};
    std::vector<std::uint8_t> padded_;
    std::optional<Ticks> expected_; // PTS of the next frame received
    unsigned long stamps_ = 0;      // frames with a time stamp so far
    TimeBase time_base_;            // of the last packet
    std::optional<Ticks> begin_;    // PTS that the time base begins with; nothing = it has begun
    Ticks moment_ = 0;              // time of the last frame
    bool cut_ = false;              // the input ended in the last packet
    std::optional<Ticks> stc_;
    const std::function<void(Ticks)>* lead_ = nullptr; // of the call of take that goes on
    RateMeter bits_;
};

} // namespace softdec

#endif
