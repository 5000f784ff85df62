#include "packets.h"

#include <algorithm>
#include <bitstream/mpeg/pes.h>
#include <bitstream/mpeg/ts.h>

namespace softdec_tests
{

namespace
{

constexpr std::uint64_t timestamp_mask = (std::uint64_t{1} << 33) - 1;

std::uint64_t moved(std::uint64_t timestamp, std::int64_t ticks)
{
    return (timestamp + static_cast<std::uint64_t>(ticks)) & timestamp_mask;
}

} // namespace

unsigned pid_of(const std::uint8_t* packet)
{
    return ts_get_pid(packet);
}

bool has_payload(const std::uint8_t* packet)
{
    return ts_has_payload(packet);
}

bool starts_unit(const std::uint8_t* packet)
{
    return ts_get_unitstart(packet);
}

std::size_t payload_at(const std::uint8_t* packet)
{
    return TS_HEADER_SIZE + (ts_has_adaptation(packet) ? 1U + ts_get_adaptation(packet) : 0U);
}

std::optional<std::uint64_t> pcr_of(const std::uint8_t* packet)
{
    if (!ts_has_adaptation(packet) || ts_get_adaptation(packet) < 7 || !tsaf_has_pcr(packet)) return std::nullopt;
    return tsaf_get_pcr(packet) * 300 + tsaf_get_pcrext(packet);
}

void set_pcr(std::uint8_t* packet, std::uint64_t pcr)
{
    tsaf_set_pcr(packet, pcr / 300 & timestamp_mask);
    tsaf_set_pcrext(packet, static_cast<std::uint16_t>(pcr % 300));
}

void shift_timestamps(std::uint8_t* packet, std::int64_t ticks)
{
    if (!starts_unit(packet) || !has_payload(packet)) return;
    std::uint8_t* const pes = packet + payload_at(packet);
    if (ts_size - payload_at(packet) < PES_HEADER_SIZE_PTSDTS || !pes_validate(pes)) return;
    if (!pes_has_pts(pes)) return;
    const bool has_dts = pes_has_dts(pes);
    const std::uint64_t dts = has_dts ? pes_get_dts(pes) : 0;
    pes_set_pts(pes, moved(pes_get_pts(pes), ticks));
    if (has_dts) pes_set_dts(pes, moved(dts, ticks));
}

void shift_clock(std::uint8_t* packet, std::int64_t ticks)
{
    if (const auto pcr = pcr_of(packet)) set_pcr(packet, moved(*pcr / 300, ticks) * 300 + *pcr % 300);
    shift_timestamps(packet, ticks);
}

std::vector<std::size_t> find_packets(const Bytes& stream, const std::function<bool(const std::uint8_t*)>& chosen)
{
    std::vector<std::size_t> found;
    for (std::size_t i = 0; i < stream.size() / ts_size; ++i)
        if (chosen(&stream[i * ts_size])) found.push_back(i);
    return found;
}

Bytes without(const Bytes& stream, const std::vector<std::size_t>& removed)
{
    Bytes rest;
    for (std::size_t i = 0; i < stream.size() / ts_size; ++i)
    {
        if (std::ranges::binary_search(removed, i)) continue;
        rest.insert(rest.end(), &stream[i * ts_size], &stream[i * ts_size] + ts_size);
    }
    return rest;
}

} // namespace softdec_tests
