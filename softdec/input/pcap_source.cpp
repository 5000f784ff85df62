#include "input/pcap_source.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <pcap/pcap.h>

#include "input/rtp.h"

namespace softdec
{

namespace
{

SMGR_IP_ADDRESS record_address(const Endpoint& endpoint)
{
    SMGR_IP_ADDRESS address = {};
    address.enType = endpoint.family;
    std::ranges::copy(endpoint.address, address.acAddress);
    return address;
}

} // namespace

void PcapSource::Close::operator()(pcap* capture) const
{
    pcap_close(capture);
}

PcapSource::PcapSource(const std::string& path) : path_(path), link_type_(0)
{
    // libpcap reads standard input for the name "-", and its message does not always name the file: so the file is opened here.
    std::FILE* const file = std::fopen(path.c_str(), "rbe");
    if (file == nullptr) throw InputError(path + ": " + std::strerror(errno));
    char message[PCAP_ERRBUF_SIZE] = {};
    capture_.reset(pcap_fopen_offline_with_tstamp_precision(file, PCAP_TSTAMP_PRECISION_NANO, message));
    if (!capture_)
    {
        std::fclose(file);
        throw InputError(path + ": not a packet capture: " + message);
    }
    link_type_ = pcap_datalink(capture_.get());
    for (const int known : {DLT_EN10MB, DLT_RAW, DLT_IPV4, DLT_IPV6, DLT_NULL, DLT_LOOP, DLT_LINUX_SLL, DLT_LINUX_SLL2})
        if (link_type_ == known) return;
    throw InputError(path + ": frames of link type " + std::to_string(link_type_) +
                     ", but Ethernet, raw IP, loopback or Linux \"any\" expected");
}

std::optional<UdpFrame> PcapSource::udp_in(std::span<const std::uint8_t> frame) const
{
    constexpr std::size_t address_family = 4;
    switch (link_type_)
    {
    case DLT_EN10MB: return udp_in_ip(ip_in_frame(frame, 12, 14));
    case DLT_LINUX_SLL: return udp_in_ip(ip_in_frame(frame, 14, 16));
    case DLT_LINUX_SLL2: return udp_in_ip(ip_in_frame(frame, 0, 20));
    case DLT_NULL:
    case DLT_LOOP: return frame.size() < address_family ? std::nullopt : udp_in_ip(frame.subspan(address_family));
    default: return udp_in_ip(frame);
    }
}

std::optional<Channel> PcapSource::channel_of(const UdpFrame& frame)
{
    if (!destination_)
    {
        if (!carries_transport_stream(frame.payload)) return std::nullopt;
        destination_ = frame.destination;
        network.local = record_address(frame.destination);
        network.local_port = frame.destination.port;
        network.sender = record_address(frame.source);
        network.sender_port = frame.source.port;
    }
    Endpoint media = frame.destination;
    media.port = destination_->port;
    if (media != *destination_) return std::nullopt;
    switch (frame.destination.port - destination_->port)
    {
    case 0: return Channel::media;
    case 2: return Channel::column_fec;
    case 4: return Channel::row_fec;
    default: return std::nullopt;
    }
}

Source::Result PcapSource::next(Datagram& datagram)
{
    for (;;)
    {
        pcap_pkthdr* header = nullptr;
        const u_char* data = nullptr;
        const int result = pcap_next_ex(capture_.get(), &header, &data);
        // A capture that was being written when it was copied ends within a frame: what came before counts.
        if (result == PCAP_ERROR && destination_) ++network.errors;
        if (result == PCAP_ERROR && !destination_) throw InputError(path_ + ": " + pcap_geterr(capture_.get()));
        if (result != 1)
        {
            if (!destination_) throw InputError(path_ + ": no UDP datagram with an MPEG transport stream found");
            return Result::end;
        }
        const auto frame = udp_in({data, header->caplen});
        if (!frame) continue;
        const auto channel = channel_of(*frame);
        if (!channel) continue;
        if (!frame->whole)
        {
            ++network.errors;
            continue;
        }
        // libpcap takes the 32 bits of the older format for a number with a sign, which they are not: they last until 2106.
        const auto seconds = header->ts.tv_sec < 0 ? static_cast<std::uint32_t>(header->ts.tv_sec) : header->ts.tv_sec;
        // With nanosecond precision the field of microseconds holds nanoseconds.
        datagram = {.channel = *channel, .arrival = seconds * second + header->ts.tv_usec, .bytes = frame->payload};
        return Result::datagram;
    }
}

} // namespace softdec
