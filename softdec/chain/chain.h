/**
 * @file chain.h
 * A decoding chain: datagrams in, the records of its stages out.
 */
#ifndef SOFTDEC_CHAIN_CHAIN_H
#define SOFTDEC_CHAIN_CHAIN_H

#include <array>
#include <functional>
#include <memory>
#include <optional>

#include "chain/reception.h"
#include "chain/virtual_clock.h"
#include "clock/clock_recovery.h"
#include "component.h"
#include "decode/audio_pair.h"
#include "decode/video_decoder.h"
#include "demux/transport_demux.h"
#include "framer/video_framer.h"
#include "metadata/metadata_decoder.h"
#include "presenter/buffering.h"
#include "presenter/video_output.h"

namespace softdec
{

class Chain
{
public:
    struct Settings
    {
        bool has_arrivals = true; /**< the input gives arrival times */
        bool decode = true;       /**< pictures and sound are decoded; otherwise framed only */
        bool live = false;        /**< what the decoders cost is measured: the input comes as fast as the clock runs */
        Nanoseconds start = 0;    /**< moment to begin at, for an input without arrival times */
    };

    explicit Chain(const Settings& settings);

    void take(const Datagram& datagram, const InputStatus& status);

    /** Goes on to a moment without input. */
    void run_to(Nanoseconds moment);

    /** The input has ended: what is on its way comes to its end. @param look called after each step of the clock */
    void finish(const std::function<void()>& look = [] {});

    /** The records as of now. */
    const records::Records& records();

    const VirtualClock& clock() const { return clock_; }

private:
    void step();
    void configure(const Program& program);
    std::optional<Nanoseconds> arrival_of(Pcr pcr, std::optional<Nanoseconds> arrival, bool announced);
    void decode(ElementaryPacket packet);
    void take_picture(Picture picture);
    void show(const DecodedPicture& picture);
    void update_input();
    void sum_up_audio();

    const Settings settings_;
    VirtualClock clock_;
    records::Records records_ = {};
    ClockRecovery recovery_;
    Reception reception_;
    TransportDemux demux_;
    Buffering buffering_;
    VideoFramer framer_;
    VideoDecoder decoder_;
    VideoOutput output_;
    MetadataDecoder metadata_;
    std::array<std::unique_ptr<AudioPair>, SMGR_AUDIO_MAX_PAIRS> audio_;
    SMGR_TDEMUX_COMPRESSION_TYPE video_compression_ = SMGR_TDEMUX_COMPRESSION_TYPE_UNKNOWN;
    bool ended_ = false;
    std::optional<Pcr> last_pcr_;
    std::int64_t last_step_ = 0; // between the PCRs before [27 MHz ticks]
};

} // namespace softdec

#endif
