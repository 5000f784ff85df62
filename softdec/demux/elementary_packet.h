/**
 * @file elementary_packet.h
 * What the demux passes on: a packet of an elementary stream (PES packet, ISO/IEC 13818-1, 2.4.3.6).
 */
#ifndef SOFTDEC_DEMUX_ELEMENTARY_PACKET_H
#define SOFTDEC_DEMUX_ELEMENTARY_PACKET_H

#include <cstdint>
#include <optional>
#include <vector>

#include "clock/ticks.h"
#include "sessmgr_types.h"

namespace softdec
{

/** An elementary stream of the program. */
struct ElementaryStream
{
    unsigned pid = 0;
    SMGR_TDEMUX_DATA_TYPE type = SMGR_TDEMUX_DATA_TYPE_UNKNOWN;
    SMGR_TDEMUX_COMPRESSION_TYPE compression = SMGR_TDEMUX_COMPRESSION_TYPE_UNKNOWN;
    bool synchronous_metadata = false; /**< KLV with time stamps (stream type 0x15) */
    int audio_pair = 0;                /**< pair that it feeds, from 1; 0 = it is no audio */

    bool operator==(const ElementaryStream&) const = default;
};

struct ElementaryPacket
{
    std::size_t source = 0; /**< place of the stream in the demux record */
    ElementaryStream stream;
    std::optional<Ticks> pts;
    std::optional<Ticks> dts; /**< the PTS where a packet has no DTS of its own */
    TimeBase time_base = {};  /**< that its time stamps count from */
    bool damaged = false;     /**< a piece of it is missing */
    bool cut = false;         /**< the input ended in it: its end is not wrong but was never there */
    std::vector<std::uint8_t> data;
};

} // namespace softdec

#endif
