#include "fec/fec_packet.h"

#include <algorithm>
#include <bitstream/mpeg/ts.h>
#include <bitstream/smpte/2022_1_fec.h>

#include "fec/sequence.h"
#include "input/rtp.h"

namespace softdec
{

namespace
{

/** ST 2022-1 allows 100 packets in a matrix; senders that go further exist, and so far they are received. */
constexpr int largest_matrix = 1024;

/** Whether what ST 2022-1 gives one value alone has it. The neighbouring ports may be those of another stream. */
bool is_fec(const std::uint8_t* header)
{
    const unsigned type_and_index = header[12] & 0x3fU;
    return smpte_fec_get_mask(header) == 0 && type_and_index == 0 && smpte_fec_get_snbase_ext(header) == 0;
}

} // namespace

std::optional<std::vector<std::uint8_t>> FecPacket::rebuild(std::int64_t missing, const MediaBytes& media) const
{
    std::vector<std::uint8_t> bytes = sum;
    std::uint16_t size = length;
    for (std::int64_t i = 0; i < count; ++i)
    {
        const std::int64_t sequence = first + step * i;
        if (sequence == missing) continue;
        const auto other = media(sequence);
        if (!other) return std::nullopt;
        size = static_cast<std::uint16_t>(size ^ other->size());
        const std::size_t common = std::min(bytes.size(), other->size());
        for (std::size_t k = 0; k < common; ++k) bytes[k] ^= (*other)[k];
    }
    // A wrong rebuild does more harm than a loss: packets of the same sequence from two senders, for example.
    if (size == 0 || size > bytes.size()) return std::nullopt;
    bytes.resize(size);
    if (has_check_bytes(bytes)) return bytes;
    if (size % TS_SIZE != 0) return std::nullopt;
    for (std::size_t at = 0; at < bytes.size(); at += TS_SIZE)
        if (!ts_validate(&bytes[at])) return std::nullopt;
    return bytes;
}

std::optional<FecPacket> parse_fec(std::span<const std::uint8_t> payload, std::int64_t reference)
{
    if (payload.size() <= SMPTE_2022_FEC_HEADER_SIZE) return std::nullopt;
    const std::uint8_t* const header = payload.data();
    if (!is_fec(header)) return std::nullopt;
    FecPacket packet;
    packet.row = smpte_fec_check_d(header);
    packet.first = extend_sequence(smpte_fec_get_snbase_low(header), reference);
    packet.step = smpte_fec_get_offset(header);
    packet.count = smpte_fec_get_na(header);
    packet.length = smpte_fec_get_length_rec(header);
    if (packet.step < 1 || packet.count < 1 || packet.step * packet.count > largest_matrix) return std::nullopt;
    if (packet.row && packet.step != 1) return std::nullopt;
    payload = payload.subspan(SMPTE_2022_FEC_HEADER_SIZE);
    packet.sum.assign(payload.begin(), payload.end());
    return packet;
}

} // namespace softdec
