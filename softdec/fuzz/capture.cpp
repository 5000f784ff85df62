/* The frames of a capture: any bytes as a frame of Ethernet, as one of a cooked capture, and as an IP packet. */
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "input/rtp.h"
#include "input/udp_frame.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::span<const std::uint8_t> frame(data, size);
    for (const auto packet : {softdec::ip_in_frame(frame, 12, 14), softdec::ip_in_frame(frame, 0, 20), frame})
    {
        const auto udp = softdec::udp_in_ip(packet);
        if (!udp) continue;
        // What is found lies within what was given.
        if (udp->payload.data() < data || udp->payload.data() + udp->payload.size() > data + size) std::abort();
        softdec::carries_transport_stream(udp->payload);
    }
    return 0;
}
