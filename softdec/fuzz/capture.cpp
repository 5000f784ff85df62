/* The frames of a capture: any bytes as an Ethernet frame and as an IP packet. */
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "input/rtp.h"
#include "input/udp_frame.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::span<const std::uint8_t> frame(data, size);
    for (const auto packet : {softdec::ip_in_ethernet(frame), frame})
    {
        const auto udp = softdec::udp_in_ip(packet);
        if (!udp) continue;
        // What is found lies within what was given.
        if (udp->payload.data() < data || udp->payload.data() + udp->payload.size() > data + size) std::abort();
        softdec::carries_transport_stream(udp->payload);
    }
    return 0;
}
