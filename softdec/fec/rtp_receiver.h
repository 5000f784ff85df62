/**
 * @file rtp_receiver.h
 * Receives an RTP stream with or without FEC (SMPTE ST 2022-1, levels A and B) and passes its packets on in their order.
 */
#ifndef SOFTDEC_FEC_RTP_RECEIVER_H
#define SOFTDEC_FEC_RTP_RECEIVER_H

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <span>
#include <vector>

#include "chain/virtual_clock.h"
#include "fec/fec_packet.h"
#include "fec/sequence.h"
#include "input/source.h"

namespace softdec
{

/** What an RTP receiver counts. */
struct RtpCounts
{
    std::uint64_t media = 0;          /**< media packets received, each once */
    std::uint64_t column_fec = 0;     /**< column FEC packets received */
    std::uint64_t row_fec = 0;        /**< row FEC packets received */
    std::uint64_t missing = 0;        /**< media packets that did not arrive in time */
    std::uint64_t recovered = 0;      /**< those of them that were rebuilt */
    std::uint64_t lost = 0;           /**< those of them that were not */
    std::uint64_t missing_column = 0; /**< column FEC packets that did not arrive */
    std::uint64_t missing_row = 0;    /**< row FEC packets that did not arrive */
    std::uint64_t invalid = 0;        /**< datagrams that are no RTP, or no FEC where FEC has come */
    int columns = 0;                  /**< of the FEC matrix; 0 = not known yet */
    int rows = 0;                     /**< of the FEC matrix; 0 = not known yet */
    bool block_aligned = false;       /**< all columns of a matrix begin in its first row */
};

class RtpReceiver
{
public:
    /** Takes a payload in order. The arrival time is missing where the packet was rebuilt. */
    using Output = std::function<void(std::span<const std::uint8_t> payload, std::optional<Nanoseconds> arrival)>;

    explicit RtpReceiver(Output output) : output_(std::move(output)) {}

    void receive(const Datagram& datagram);

    /** Nothing more will come: what can be rebuilt is, and the rest is lost. */
    void finish();

    const RtpCounts& counts() const { return counts_; }

    /** Bytes that wait for a packet before them. */
    std::size_t held_bytes() const { return held_bytes_; }

    /** The longest that a packet can wait for one before it, as fast as packets come now [ns]. */
    Nanoseconds longest_hold() const;

private:
    struct Media
    {
        std::vector<std::uint8_t> bytes; // behind the fixed header
        std::size_t payload_at = 0;
        std::size_t payload_size = 0;
        std::optional<Nanoseconds> arrival;
    };

    void receive_media(const Datagram& datagram);
    void receive_fec(const Datagram& datagram);
    void learn_matrix(const FecPacket& packet);
    bool restarted(std::int64_t sequence);
    void pass_on();
    void pass_on_next();
    bool recover();
    bool overdue(std::int64_t sequence) const { return finishing_ || newest_ - sequence >= reorder_allowance; }
    std::int64_t patience() const;

    Output output_;
    RtpCounts counts_;
    std::map<std::int64_t, Media> media_; // what waits, and before it what FEC still needs
    std::deque<FecPacket> fec_;
    MissingCount missing_column_;
    MissingCount missing_row_;
    std::optional<std::int64_t> restart_candidate_;
    bool started_ = false;
    bool finishing_ = false;
    bool fec_changed_ = false; // something has come since recovery was tried
    std::int64_t next_ = 0;    // to be passed on
    std::int64_t newest_ = 0;
    std::int64_t last_column_first_ = 0;
    std::size_t held_bytes_ = 0;
    Nanoseconds first_arrival_ = 0;
    Nanoseconds last_arrival_ = 0;
};

} // namespace softdec

#endif
