#include "input/udp_frame.h"

#include <algorithm>
#include <sys/socket.h>

namespace softdec
{

namespace
{

using Bytes = std::span<const std::uint8_t>;

unsigned big_endian_16(Bytes bytes, std::size_t offset)
{
    return static_cast<unsigned>(bytes[offset]) << 8 | bytes[offset + 1];
}

constexpr unsigned protocol_udp = 17;
constexpr std::size_t udp_header = 8;

std::optional<UdpFrame> udp_after(Bytes packet, std::size_t header, std::size_t address_at, std::size_t address_size, int family)
{
    if (packet.size() < header + udp_header) return std::nullopt;
    const Bytes udp = packet.subspan(header);
    const std::size_t length = big_endian_16(udp, 4);
    if (length < udp_header) return std::nullopt;

    UdpFrame frame;
    frame.source.family = frame.destination.family = family;
    std::ranges::copy(packet.subspan(address_at, address_size), frame.source.address.begin());
    std::ranges::copy(packet.subspan(address_at + address_size, address_size), frame.destination.address.begin());
    frame.source.port = static_cast<std::uint16_t>(big_endian_16(udp, 0));
    frame.destination.port = static_cast<std::uint16_t>(big_endian_16(udp, 2));
    frame.whole = udp.size() >= length;
    frame.payload = udp.subspan(udp_header, std::min(length, udp.size()) - udp_header);
    return frame;
}

/** Behind the extension headers that any packet may have; fragments are not put together. */
std::optional<UdpFrame> udp_in_ipv6(Bytes packet)
{
    constexpr unsigned hop_by_hop = 0;
    constexpr unsigned routing = 43;
    constexpr unsigned destination_options = 60;
    std::size_t header = 40;
    if (packet.size() < header) return std::nullopt;
    unsigned next = packet[6];
    while (next == hop_by_hop || next == routing || next == destination_options)
    {
        if (packet.size() < header + 2) return std::nullopt;
        next = packet[header];
        header += 8 * (std::size_t{packet[header + 1]} + 1);
    }
    return next == protocol_udp ? udp_after(packet, header, 8, 16, AF_INET6) : std::nullopt;
}

} // namespace

Bytes ip_in_frame(Bytes frame, std::size_t type_at, std::size_t header)
{
    constexpr unsigned ipv4 = 0x0800;
    constexpr unsigned ipv6 = 0x86dd;
    constexpr std::size_t tag = 4;
    while (frame.size() >= header)
    {
        const unsigned type = big_endian_16(frame, type_at);
        if (type == ipv4 || type == ipv6) return frame.subspan(header);
        if (type != 0x8100 && type != 0x88a8 && type != 0x9100) return {};
        // The type of what a tag is in front of stands at its end.
        type_at = header + tag - 2;
        header += tag;
    }
    return {};
}

std::optional<UdpFrame> udp_in_ip(Bytes packet)
{
    if (packet.empty()) return std::nullopt;
    if (packet[0] >> 4 == 4)
    {
        const std::size_t header = std::size_t{packet[0] & 0x0fU} * 4;
        if (header < 20 || packet.size() < header || packet[9] != protocol_udp) return std::nullopt;
        const unsigned fragment = big_endian_16(packet, 6);
        if ((fragment & 0x1fff) != 0) return std::nullopt;
        // A sender whose network adapter fills in the length leaves 0 in it, which a capture on that machine sees.
        const unsigned told = big_endian_16(packet, 2);
        const std::size_t length = told == 0 ? packet.size() : std::max<std::size_t>(told, header);
        auto frame = udp_after(packet.first(std::min(packet.size(), length)), header, 12, 4, AF_INET);
        if (frame && (fragment & 0x2000) != 0) frame->whole = false;
        return frame;
    }
    if (packet[0] >> 4 == 6) return udp_in_ipv6(packet);
    return std::nullopt;
}

} // namespace softdec
