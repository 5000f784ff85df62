/* RTP and FEC packets: the input is datagrams, each behind a byte for its channel and two for its length. */
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "fec/rtp_receiver.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::uint64_t passed_on = 0;
    softdec::RtpReceiver receiver([&passed_on](auto, auto) { ++passed_on; });
    softdec::Nanoseconds now = softdec::second;
    while (size >= 3)
    {
        const auto channel = static_cast<softdec::Channel>(data[0] % 3);
        const std::size_t length = std::min<std::size_t>(static_cast<std::size_t>(data[1]) << 8 | data[2], size - 3);
        receiver.receive({.channel = channel, .arrival = now, .bytes = {data + 3, length}});
        data += 3 + length;
        size -= 3 + length;
        now += softdec::millisecond;
    }
    receiver.finish();
    // Whatever came: each packet was received or rebuilt once, and passed on once.
    const auto& counts = receiver.counts();
    if (passed_on != counts.media + counts.recovered || counts.missing != counts.recovered + counts.lost) std::abort();
    return 0;
}
