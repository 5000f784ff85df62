/**
 * @file reception.h
 * Takes datagrams to transport stream bytes, and keeps what the demux record says of the network, of RTP and of FEC.
 */
#ifndef SOFTDEC_CHAIN_RECEPTION_H
#define SOFTDEC_CHAIN_RECEPTION_H

#include <functional>
#include <optional>
#include <span>

#include "chain/rate_meter.h"
#include "fec/rtp_receiver.h"
#include "input/source.h"
#include "sessmgr_types.h"

namespace softdec
{

class Reception
{
public:
    /** Takes the bytes of the transport stream in order. */
    using Output = std::function<void(std::span<const std::uint8_t> bytes, std::optional<Nanoseconds> arrival)>;

    /** @param has_arrivals the input is a network's, so that a packet is a datagram; otherwise it is 188 bytes of a file */
    Reception(const VirtualClock& clock, SMGR_TDEMUX_STATS& record, bool has_arrivals, Output output);

    void take(const Datagram& datagram);

    /** Takes what the input knows of the network. */
    void take(const InputStatus& status);

    /** Nothing more will come. */
    void finish();

    /** Brings what depends on the time up to date. @param packets transport stream packets so far */
    void update(std::uint64_t packets);

    /** From the begin of one transport stream packet to that of the next [bytes]. */
    std::size_t packet_distance() const { return packet_distance_; }

    /** The longest that packets are held back for one before them [ns]. */
    Nanoseconds longest_hold() const { return encapsulation_ == Encapsulation::rtp ? rtp_.longest_hold() : 0; }

private:
    enum class Encapsulation
    {
        unknown,
        none,
        rtp,
    };

    void count(const Datagram& datagram);
    void count_interval(Nanoseconds arrival);
    void report_rtp();

    const VirtualClock& clock_;
    SMGR_TDEMUX_STATS& record_;
    const bool has_arrivals_;
    Output output_;
    RtpReceiver rtp_;
    Encapsulation encapsulation_ = Encapsulation::unknown;
    std::size_t packet_distance_ = 0; // 0 = not known yet
    RateMeter bits_;
    Nanoseconds started_ = 0;
    Nanoseconds last_arrival_ = 0;
    std::uint64_t overflows_ = 0;
    std::uint64_t input_errors_ = 0;
    std::uint64_t datagrams_of_no_use_ = 0;
};

} // namespace softdec

#endif
