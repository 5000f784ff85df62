/* Any bytes as a transport stream, as far as the decoders. */
#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "chain/chain.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    softdec::Chain chain({.has_arrivals = true, .decode = false, .live = false, .start = 0});
    softdec::Nanoseconds now = softdec::second;
    while (size > 0)
    {
        const std::size_t length = std::min<std::size_t>(size, 1316);
        chain.take({.channel = softdec::Channel::media, .arrival = now, .bytes = {data, length}}, {});
        data += length;
        size -= length;
        now += 20 * softdec::millisecond;
    }
    chain.finish();
    chain.records();
    return 0;
}
