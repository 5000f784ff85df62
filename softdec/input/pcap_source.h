/**
 * @file pcap_source.h
 * A transport stream in a packet capture: the first flow of UDP datagrams that carries one, with its FEC.
 */
#ifndef SOFTDEC_INPUT_PCAP_SOURCE_H
#define SOFTDEC_INPUT_PCAP_SOURCE_H

#include <memory>
#include <optional>
#include <string>

#include "input/source.h"
#include "input/udp_frame.h"

struct pcap;

namespace softdec
{

class PcapSource : public Source
{
public:
    /** @param path the capture @throw InputError if it cannot be opened or its frames are of a kind that is not read */
    explicit PcapSource(const std::string& path);

    Result next(Datagram& datagram) override;
    bool has_arrivals() const override { return true; }

private:
    struct Close
    {
        void operator()(pcap* capture) const;
    };
    std::optional<UdpFrame> udp_in(std::span<const std::uint8_t> frame) const;
    std::optional<Channel> channel_of(const UdpFrame& frame);

    std::string path_;
    std::unique_ptr<pcap, Close> capture_;
    int link_type_;
    std::optional<Endpoint> destination_; // of the flow; nothing = not found yet
};

} // namespace softdec

#endif
