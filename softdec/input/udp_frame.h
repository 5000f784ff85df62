/**
 * @file udp_frame.h
 * The UDP datagram inside a captured frame (IEEE 802.3 and 802.1Q, RFC 791, RFC 8200, RFC 768).
 */
#ifndef SOFTDEC_INPUT_UDP_FRAME_H
#define SOFTDEC_INPUT_UDP_FRAME_H

#include <array>
#include <cstdint>
#include <optional>
#include <span>

namespace softdec
{

/** One end of a UDP datagram's way. */
struct Endpoint
{
    int family = 0;                         /**< AF_INET or AF_INET6 */
    std::array<std::uint8_t, 16> address{}; /**< network byte order, the first 4 bytes for AF_INET */
    std::uint16_t port = 0;

    bool operator==(const Endpoint&) const = default;
};

/** A UDP datagram found in a frame. */
struct UdpFrame
{
    Endpoint source;
    Endpoint destination;
    std::span<const std::uint8_t> payload;
    bool whole = false; /**< nothing of the payload is missing: neither cut by the capture nor a fragment */
};

/**
 * Finds the IP packet in a frame, behind any VLAN tags.
 * @param type_at where the EtherType of what follows the header stands
 * @param header  size of the header, with the type in it [bytes]
 * @return the packet; empty = none
 */
std::span<const std::uint8_t> ip_in_frame(std::span<const std::uint8_t> frame, std::size_t type_at, std::size_t header);

/** Finds the UDP datagram in an IP packet. @return nothing if there is none, or only a later fragment of one */
std::optional<UdpFrame> udp_in_ip(std::span<const std::uint8_t> packet);

} // namespace softdec

#endif
