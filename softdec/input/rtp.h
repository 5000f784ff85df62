/**
 * @file rtp.h
 * RTP packets that carry an MPEG transport stream (RFC 3550, RFC 2250).
 */
#ifndef SOFTDEC_INPUT_RTP_H
#define SOFTDEC_INPUT_RTP_H

#include <cstdint>
#include <optional>
#include <span>

namespace softdec
{

/** A parsed RTP packet. */
struct RtpPacket
{
    std::uint16_t sequence = 0;
    std::uint32_t timestamp = 0;
    std::uint8_t payload_type = 0;
    std::span<const std::uint8_t> payload; /**< without contributing sources, extension and padding */
};

/** Parses an RTP packet. @return nothing if the bytes are none */
std::optional<RtpPacket> parse_rtp(std::span<const std::uint8_t> bytes);

/** Whether a datagram's payload is a packet of RTCP, which may come on the port of the stream (RFC 5761). */
bool is_rtcp(std::span<const std::uint8_t> bytes);

/** Bytes of a transport stream packet with the check bytes of a broadcast's Reed-Solomon code behind it (ETSI EN 300 429). */
inline constexpr std::size_t packet_size_with_check_bytes = 204;

/** Whether bytes are transport stream packets with check bytes. */
bool has_check_bytes(std::span<const std::uint8_t> bytes);

/** Whether a datagram's payload is an RTP packet with transport stream packets in it. */
bool is_rtp_transport_stream(std::span<const std::uint8_t> bytes);

/** Whether a datagram's payload is transport stream packets, bare or in RTP. */
bool carries_transport_stream(std::span<const std::uint8_t> bytes);

} // namespace softdec

#endif
