/**
 * @file pes_assembler.h
 * Puts the PES packets of one PID together (ISO/IEC 13818-1, 2.4.3.6 and 2.4.3.7).
 */
#ifndef SOFTDEC_DEMUX_PES_ASSEMBLER_H
#define SOFTDEC_DEMUX_PES_ASSEMBLER_H

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <vector>

namespace softdec
{

/** A PES packet. */
struct PesPacket
{
    std::uint8_t stream_id = 0;
    std::optional<std::uint64_t> pts; /**< as it stands there, 33 bits */
    std::optional<std::uint64_t> dts;
    bool damaged = false;
    bool cut = false; /**< the stream ended in it */
    std::vector<std::uint8_t> payload;
};

class PesAssembler
{
public:
    struct Events
    {
        std::function<void(PesPacket)> packet; /**< a packet is complete */
        std::function<void()> mismatch;        /**< a packet, though undamaged, has another length than its header says */
    };

    explicit PesAssembler(Events events) : events_(std::move(events)) {}

    /** Takes a transport stream packet's payload. @param start a PES packet begins in it */
    void take(std::span<const std::uint8_t> payload, bool start);

    /** A piece is missing here. */
    void damage() { damaged_ = true; }

    /** The packet that has begun will not go on. @param ended the stream has ended, so that it may lack its end */
    void finish(bool ended);

private:
    void complete(bool cut);
    std::size_t expected() const;

    Events events_;
    std::vector<std::uint8_t> bytes_; // header included
    bool begun_ = false;
    bool damaged_ = false;
    bool excess_ = false; // bytes have come behind the end of a packet
};

} // namespace softdec

#endif
