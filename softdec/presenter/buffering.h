/**
 * @file buffering.h
 * Holds what the demux passes on until the decoders are to have it, and keeps the buffering record.
 */
#ifndef SOFTDEC_PRESENTER_BUFFERING_H
#define SOFTDEC_PRESENTER_BUFFERING_H

#include <array>
#include <deque>
#include <functional>
#include <optional>

#include "chain/window.h"
#include "clock/clock_recovery.h"
#include "demux/elementary_packet.h"
#include "sessmgr_types.h"

namespace softdec
{

/** The decoders get packets this long before their time [90 kHz ticks]: for reordering, and one picture for its end to show. */
inline constexpr Ticks decoder_lead = 600 * ticks_per_millisecond;

/** A picture or frame of sound whose time is further away has a time stamp of another clock and cannot be shown or played. */
inline constexpr Ticks furthest = 11 * ticks_per_second;

class Buffering
{
public:
    using Output = std::function<void(ElementaryPacket)>;

    Buffering(const VirtualClock& clock, const ClockRecovery& recovery, SMGR_CBUFFERING_STATS& record, bool has_arrivals, Output output);

    /** The program is another one: the places of the streams hold others. */
    void configure(const std::vector<ElementaryStream>& streams);

    void take(ElementaryPacket packet);

    /** Passes on what is due. */
    void step();

    /** Whether a packet of some kind of stream is held. */
    bool holds(SMGR_TDEMUX_DATA_TYPE type) const;

    /** Whether nothing is held. */
    bool empty() const;

    /** The system time clock: the time stamp that is shown now. @return nothing while the sender's clock is not known */
    std::optional<Ticks> stc() const;

    /** Time that the transport may hold packets back, as a FEC receiver does for those before them [ns]. */
    void set_transport_hold(Nanoseconds hold) { transport_hold_ = hold; }

    /** Takes the time that a video or audio frame lies ahead of the STC where it leaves its decoder. */
    void take_lead(SMGR_TDEMUX_DATA_TYPE type, Ticks lead);

    /** Brings what depends on the time up to date. */
    void update();

private:
    struct Channel
    {
        std::deque<std::pair<ElementaryPacket, Nanoseconds>> packets; // with their arrival
        Window jitter{10 * second};
        std::optional<Ticks> synthesized; // last time stamp that was made
        std::optional<Ticks> last_distance;
        unsigned time_base = 0; // that it was measured in
    };

    bool is_due(const ElementaryPacket& packet, std::optional<Ticks> stc) const;
    void release(std::size_t index, std::optional<Ticks> stc);
    void count_late(Ticks late);
    void synthesize(Channel& channel, ElementaryPacket& packet);
    void measure_jitter(std::size_t index, const ElementaryPacket& packet);
    void settle_delay();

    const VirtualClock& clock_;
    const ClockRecovery& recovery_;
    SMGR_CBUFFERING_STATS& record_;
    const bool has_arrivals_; // without arrival times there is no jitter to measure
    Output output_;
    std::array<Channel, SMGR_CBUFFERING_MAX_CHANNELS> channels_;
    Nanoseconds transport_hold_ = 0;
    Ticks delay_;
    int late_in_a_row_ = 0;
    Window video_lead_{10 * second};
    Window audio_lead_{10 * second};
};

} // namespace softdec

#endif
