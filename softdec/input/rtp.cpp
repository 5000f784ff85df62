#include "input/rtp.h"

#include <bitstream/ietf/rtp.h>
#include <bitstream/mpeg/ts.h>

namespace softdec
{

namespace
{

bool is_transport_stream(std::span<const std::uint8_t> bytes)
{
    return (!bytes.empty() && bytes.size() % TS_SIZE == 0 && ts_validate(bytes.data())) || has_check_bytes(bytes);
}

} // namespace

bool has_check_bytes(std::span<const std::uint8_t> bytes)
{
    if (bytes.empty() || bytes.size() % packet_size_with_check_bytes != 0) return false;
    for (std::size_t at = 0; at < bytes.size(); at += packet_size_with_check_bytes)
        if (!ts_validate(&bytes[at])) return false;
    return true;
}

std::optional<RtpPacket> parse_rtp(std::span<const std::uint8_t> bytes)
{
    if (bytes.size() < RTP_HEADER_SIZE || !rtp_check_hdr(bytes.data())) return std::nullopt;
    std::size_t header = RTP_HEADER_SIZE + 4UL * rtp_get_cc(bytes.data());
    if (rtp_check_extension(bytes.data()))
    {
        if (bytes.size() < header + RTP_EXTENSION_SIZE) return std::nullopt;
        header += RTP_EXTENSION_SIZE + 4UL * rtpx_get_length(bytes.data() + header);
    }
    const std::size_t padding = rtp_check_padding(bytes.data()) ? bytes.back() : 0;
    if (bytes.size() < header + padding) return std::nullopt;
    return RtpPacket{.sequence = rtp_get_seqnum(bytes.data()),
                     .timestamp = rtp_get_timestamp(bytes.data()),
                     .payload_type = rtp_get_type(bytes.data()),
                     .payload = bytes.subspan(header, bytes.size() - header - padding)};
}

bool is_rtcp(std::span<const std::uint8_t> bytes)
{
    // The packet type stands where RTP has the marker and the payload type, of which these values are kept free.
    constexpr std::uint8_t first = 192;
    constexpr std::uint8_t last = 223;
    return bytes.size() >= 4 && rtp_check_hdr(bytes.data()) && bytes[1] >= first && bytes[1] <= last;
}

bool is_rtp_transport_stream(std::span<const std::uint8_t> bytes)
{
    const auto packet = parse_rtp(bytes);
    return packet && is_transport_stream(packet->payload);
}

bool carries_transport_stream(std::span<const std::uint8_t> bytes)
{
    return is_transport_stream(bytes) || is_rtp_transport_stream(bytes);
}

} // namespace softdec
