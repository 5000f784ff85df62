#include "demux/pes_assembler.h"

#include <bitstream/mpeg/pes.h>

namespace softdec
{

namespace
{

/** More than any coded picture has; without a bound, a PID that never starts a packet anew would take all memory. */
constexpr std::size_t largest_packet = 32U << 20;

bool has_optional_header(std::uint8_t stream_id)
{
    return stream_id != PES_STREAM_ID_PSM && stream_id != PES_STREAM_ID_PADDING && stream_id != PES_STREAM_ID_PRIVATE_2 &&
           stream_id != PES_STREAM_ID_ECM && stream_id != PES_STREAM_ID_EMM && stream_id != PES_STREAM_ID_PSD &&
           stream_id != PES_STREAM_ID_DSMCC && stream_id != PES_STREAM_ID_H222_1_E;
}

} // namespace

void PesAssembler::take(std::span<const std::uint8_t> payload, bool start)
{
    if (start)
    {
        finish(false);
        begun_ = true;
        bytes_.clear();
    }
    else if (!begun_)
    {
        // Behind a packet that is complete there can be nothing.
        if (!payload.empty() && !damaged_ && !excess_ && !bytes_.empty())
        {
            excess_ = true;
            events_.mismatch();
        }
        return;
    }
    bytes_.insert(bytes_.end(), payload.begin(), payload.end());
    if (bytes_.size() > largest_packet)
    {
        begun_ = false;
        bytes_.clear();
        return;
    }
    const std::size_t size = expected();
    if (size == 0 || bytes_.size() < size) return;
    if (bytes_.size() > size)
    {
        if (!damaged_) events_.mismatch();
        excess_ = true;
        bytes_.resize(size);
    }
    complete(false);
}

/** Length that the header gives; 0 = it leaves it open, or has not come yet. */
std::size_t PesAssembler::expected() const
{
    if (bytes_.size() < PES_HEADER_SIZE) return 0;
    const std::size_t length = pes_get_length(bytes_.data());
    return length == 0 ? 0 : PES_HEADER_SIZE + length;
}

void PesAssembler::finish(bool ended)
{
    if (begun_)
    {
        const std::size_t size = expected();
        if (size != 0 && bytes_.size() < size)
        {
            if (!damaged_ && !ended) events_.mismatch();
            damaged_ = damaged_ || !ended;
        }
        complete(ended);
    }
    damaged_ = false;
    excess_ = false;
}

void PesAssembler::complete(bool cut)
{
    begun_ = false;
    if (bytes_.size() < PES_HEADER_SIZE || !pes_validate(bytes_.data())) return;
    PesPacket packet;
    packet.stream_id = pes_get_streamid(bytes_.data());
    if (packet.stream_id == PES_STREAM_ID_PADDING) return;
    packet.damaged = damaged_;
    packet.cut = cut;
    std::size_t header = PES_HEADER_SIZE;
    if (has_optional_header(packet.stream_id))
    {
        if (bytes_.size() < PES_HEADER_SIZE_NOPTS || !pes_validate_header(bytes_.data())) return;
        header = PES_HEADER_SIZE_NOPTS + static_cast<std::size_t>(pes_get_headerlength(bytes_.data()));
        if (bytes_.size() < header) return;
        if (pes_has_pts(bytes_.data()) && header >= PES_HEADER_SIZE_PTS) packet.pts = pes_get_pts(bytes_.data());
        if (pes_has_dts(bytes_.data()) && header >= PES_HEADER_SIZE_PTSDTS) packet.dts = pes_get_dts(bytes_.data());
    }
    packet.payload.assign(bytes_.begin() + static_cast<std::ptrdiff_t>(header), bytes_.end());
    bytes_.resize(1); // something has been complete here
    events_.packet(std::move(packet));
}

} // namespace softdec
