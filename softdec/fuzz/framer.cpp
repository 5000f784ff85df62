/* Any bytes as video, in packets of up to 4096 bytes: the first byte chooses H.264, H.265 or MPEG video. */
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>

#include "framer/video_framer.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0) return 0;
    softdec::VirtualClock clock;
    clock.advance_to(softdec::second);
    SMGR_VFRAMER_STATS record = {};
    softdec::VideoFramer framer(clock, record, [](softdec::Picture) {});
    constexpr SMGR_TDEMUX_COMPRESSION_TYPE codings[] = {SMGR_TDEMUX_COMPRESSION_TYPE_H264, SMGR_TDEMUX_COMPRESSION_TYPE_H265,
                                                        SMGR_TDEMUX_COMPRESSION_TYPE_MPEG2};
    for (std::size_t at = 1; at < size; at += 4096)
    {
        softdec::ElementaryPacket packet;
        packet.stream.type = SMGR_TDEMUX_DATA_TYPE_VIDEO;
        packet.stream.compression = codings[data[0] % std::size(codings)];
        packet.pts = packet.dts = static_cast<softdec::Ticks>(at);
        packet.data.assign(data + at, data + std::min(size, at + 4096));
        framer.take(std::move(packet));
        clock.advance_to(clock.now() + 40 * softdec::millisecond);
        framer.step();
    }
    framer.finish();
    framer.update();
    return 0;
}
