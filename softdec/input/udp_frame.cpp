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

} // namespace

Bytes ip_in_ethernet(Bytes frame)
{
    constexpr unsigned ipv4 = 0x0800;
    constexpr unsigned ipv6 = 0x86dd;
    std::size_t type_at = 12;
    while (frame.size() >= type_at + 2)
    {
        const unsigned type = big_endian_16(frame, type_at);
        if (type == ipv4 || type == ipv6) return frame.subspan(type_at + 2);
        if (type != 0x8100 && type != 0x88a8) return {};
        type_at += 4;
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
        const std::size_t length = std::max<std::size_t>(big_endian_16(packet, 2), header);
        auto frame = udp_after(packet.first(std::min(packet.size(), length)), header, 12, 4, AF_INET);
        if (frame && (fragment & 0x2000) != 0) frame->whole = false;
        return frame;
    }
    // Extension headers are not followed: streams have none.
    constexpr std::size_t ipv6_header = 40;
    if (packet[0] >> 4 == 6 && packet.size() >= ipv6_header && packet[6] == protocol_udp)
        return udp_after(packet, ipv6_header, 8, 16, AF_INET6);
    return std::nullopt;
}

} // namespace softdec
