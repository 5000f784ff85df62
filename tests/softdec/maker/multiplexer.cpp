#include "multiplexer.h"

#include <algorithm>
#include <bitstream/mpeg/psi.h>
#include <bitstream/mpeg/ts.h>
#include <map>
#include <queue>
#include <stdexcept>

#include "packets.h"

namespace softdec_tests
{

namespace
{

using softdec::Ticks;

/** A packet of the transport stream that waits for its turn. */
struct Waiting
{
    double due;      // [90 kHz ticks since the stream began]
    double deadline; // when it has to have been sent
    Bytes packet;
};

void put_timestamp(Bytes& header, unsigned prefix, Ticks ticks)
{
    const std::uint64_t bits = softdec::as_timestamp(ticks);
    header.push_back(static_cast<std::uint8_t>(prefix << 4 | (bits >> 30 & 7) << 1 | 1));
    header.push_back(static_cast<std::uint8_t>(bits >> 22));
    header.push_back(static_cast<std::uint8_t>((bits >> 15 & 0x7f) << 1 | 1));
    header.push_back(static_cast<std::uint8_t>(bits >> 7));
    header.push_back(static_cast<std::uint8_t>((bits & 0x7f) << 1 | 1));
}

Bytes pes_packet(const Stream& stream, const Pes& pes, Ticks offset)
{
    Bytes header;
    const bool has_dts = pes.pts && pes.dts && *pes.dts != *pes.pts;
    if (pes.pts) put_timestamp(header, has_dts ? 3 : 2, *pes.pts + offset);
    if (has_dts) put_timestamp(header, 1, *pes.dts + offset);
    const std::size_t size = 3 + header.size() + pes.payload.size();
    const std::size_t length = stream.bounded && size <= 0xffff ? size : 0;
    Bytes packet = {0,
                    0,
                    1,
                    stream.stream_id,
                    static_cast<std::uint8_t>(length >> 8),
                    static_cast<std::uint8_t>(length),
                    0x80,
                    static_cast<std::uint8_t>(has_dts   ? 0xc0
                                              : pes.pts ? 0x80
                                                        : 0),
                    static_cast<std::uint8_t>(header.size())};
    packet.insert(packet.end(), header.begin(), header.end());
    packet.insert(packet.end(), pes.payload.begin(), pes.payload.end());
    return packet;
}

/** Transport stream packets of one PES packet or section. Continuity counters are set when they are sent. */
std::vector<Bytes> cut(unsigned pid, Bytes unit, bool is_section)
{
    if (is_section)
    {
        unit.insert(unit.begin(), 0); // pointer_field
        while (unit.size() % 184 != 0) unit.push_back(0xff);
    }
    std::vector<Bytes> packets;
    for (std::size_t at = 0; at < unit.size(); at += 184)
    {
        Bytes packet = {0x47, static_cast<std::uint8_t>((at == 0 ? 0x40 : 0) | pid >> 8), static_cast<std::uint8_t>(pid), 0x10};
        const std::size_t size = std::min<std::size_t>(184, unit.size() - at);
        if (size < 184)
        {
            packet[3] = 0x30;
            packet.push_back(static_cast<std::uint8_t>(183 - size));
            if (size < 183) packet.push_back(0);
            packet.resize(ts_size - size, 0xff);
        }
        packet.insert(packet.end(), unit.begin() + static_cast<std::ptrdiff_t>(at), unit.begin() + static_cast<std::ptrdiff_t>(at + size));
        packets.push_back(packet);
    }
    return packets;
}

/** A section with its length and checksum. @param body begins behind the length */
Bytes section(std::uint8_t table, const Bytes& body)
{
    Bytes bytes = {table, 0xb0, 0};
    bytes.insert(bytes.end(), body.begin(), body.end());
    bytes.resize(bytes.size() + PSI_CRC_SIZE);
    psi_set_length(bytes.data(), static_cast<std::uint16_t>(bytes.size() - PSI_HEADER_SIZE));
    psi_set_crc(bytes.data());
    return bytes;
}

void put16(Bytes& bytes, unsigned value)
{
    bytes.push_back(static_cast<std::uint8_t>(value >> 8));
    bytes.push_back(static_cast<std::uint8_t>(value));
}

Bytes association(const Multiplex& multiplex)
{
    Bytes body = {0, 1, 0xc1, 0, 0, 0, 0, 0xe0, 0x10}; // the network's table is on PID 16
    for (unsigned i = 0; i <= multiplex.more_programs; ++i)
    {
        put16(body, multiplex.program + i);
        put16(body, 0xe000 | (multiplex.map_pid + i));
    }
    return section(0, body);
}

Bytes program_map(const Multiplex& multiplex)
{
    Bytes body;
    put16(body, multiplex.program);
    body.insert(body.end(), {0xc1, 0, 0});
    put16(body, 0xe000 | multiplex.pcr_pid);
    put16(body, 0xf000);
    for (const Stream& stream : multiplex.streams)
    {
        if (!stream.listed) continue;
        body.push_back(stream.type);
        put16(body, 0xe000 | stream.pid);
        put16(body, 0xf000 | static_cast<unsigned>(stream.descriptors.size()));
        body.insert(body.end(), stream.descriptors.begin(), stream.descriptors.end());
    }
    return section(2, body);
}

Bytes clock_packet(unsigned pid)
{
    Bytes packet(ts_size, 0xff);
    const std::uint8_t header[] = {0x47, static_cast<std::uint8_t>(pid >> 8), static_cast<std::uint8_t>(pid), 0x20, 183, 0x10};
    std::ranges::copy(header, packet.begin());
    return packet;
}

/** Packets of all streams, each when it is due. */
std::vector<Waiting> schedule(const Multiplex& multiplex)
{
    std::vector<Waiting> waiting;
    Ticks first = 0;
    Ticks last = 0;
    for (const Stream& stream : multiplex.streams)
        for (const Pes& pes : stream.packets)
        {
            first = std::min(first, pes.due);
            last = std::max(last, pes.due);
        }
    const Ticks end = std::max(last - first + 3600, multiplex.length);
    // Where several are due at once, tables and clock come first.
    for (Ticks due = 0; due < end; due += multiplex.table_interval)
    {
        waiting.push_back({static_cast<double>(due), static_cast<double>(due + 4'500), cut(0, association(multiplex), true)[0]});
        waiting.push_back(
            {static_cast<double>(due), static_cast<double>(due + 4'500), cut(multiplex.map_pid, program_map(multiplex), true)[0]});
    }
    for (Ticks due = 0; due < end; due += multiplex.pcr_interval)
        waiting.push_back({static_cast<double>(due), static_cast<double>(due + 900), clock_packet(multiplex.pcr_pid)});
    for (const Stream& stream : multiplex.streams)
        for (std::size_t i = 0; i < stream.packets.size(); ++i)
        {
            const Pes& pes = stream.packets[i];
            const Ticks due = pes.due - first;
            // DTS less lead is when it is sent, and the first is sent at once.
            const Ticks offset = multiplex.begin + multiplex.lead - first;
            const auto packets =
                cut(stream.pid, stream.stream_id == 0 ? pes.payload : pes_packet(stream, pes, offset), stream.stream_id == 0);
            // What has long until the next is due is not sent as slowly as that.
            const Ticks next =
                i + 1 < stream.packets.size() ? std::min(stream.packets[i + 1].due - first, due + multiplex.lead * 2 / 3) : due + 3600;
            for (std::size_t k = 0; k < packets.size(); ++k)
            {
                const double share = static_cast<double>(k) / static_cast<double>(packets.size());
                waiting.push_back({static_cast<double>(due) + static_cast<double>(next - due) * share,
                                   static_cast<double>(due + multiplex.lead), packets[k]});
            }
        }
    std::ranges::stable_sort(waiting, {}, &Waiting::due);
    return waiting;
}

} // namespace

std::vector<Pes> packetize(const std::vector<CodedUnit>& units, std::size_t units_each)
{
    std::vector<Pes> packets;
    for (std::size_t i = 0; i < units.size(); ++i)
    {
        if (i % units_each == 0) packets.push_back({.due = units[i].dts, .pts = units[i].pts, .dts = units[i].dts, .payload = {}});
        packets.back().payload.insert(packets.back().payload.end(), units[i].data.begin(), units[i].data.end());
    }
    return packets;
}

std::vector<Pes> packetize_unaligned(const std::vector<CodedUnit>& units, std::size_t bytes_each)
{
    std::vector<Pes> packets;
    for (const CodedUnit& unit : units)
    {
        bool begins = true;
        for (std::size_t at = 0; at < unit.data.size();)
        {
            if (packets.empty() || packets.back().payload.size() == bytes_each)
                packets.push_back({.due = unit.dts, .pts = {}, .dts = {}, .payload = {}});
            Pes& pes = packets.back();
            // Time stamps are those of the first unit that begins in a packet.
            if (begins && !pes.pts)
            {
                pes.pts = unit.pts;
                pes.dts = unit.dts;
            }
            begins = false;
            const std::size_t size = std::min(bytes_each - pes.payload.size(), unit.data.size() - at);
            pes.payload.insert(pes.payload.end(), unit.data.begin() + static_cast<std::ptrdiff_t>(at),
                               unit.data.begin() + static_cast<std::ptrdiff_t>(at + size));
            at += size;
        }
    }
    return packets;
}

Bytes multiplex(const Multiplex& multiplex)
{
    const std::vector<Waiting> waiting = schedule(multiplex);
    Bytes stream;
    std::map<unsigned, unsigned> counters;
    // A variable rate has its limit too: 20 Mbit/s.
    const double slot = static_cast<double>(ts_size * 8) / (multiplex.rate != 0 ? multiplex.rate : 20e6) * softdec::ticks_per_second;
    Bytes null(ts_size, 0xff);
    const std::uint8_t header[] = {0x47, 0x1f, 0xff, 0x10};
    std::ranges::copy(header, null.begin());
    // What is due waits for its turn, clock and tables in front.
    const auto later = [](const Waiting* a, const Waiting* b) { return a->deadline != b->deadline ? a->deadline > b->deadline : a > b; };
    std::priority_queue<const Waiting*, std::vector<const Waiting*>, decltype(later)> queue(later);
    std::size_t next = 0;
    for (double now = 0; next < waiting.size() || !queue.empty(); now += slot)
    {
        if (multiplex.rate == 0 && queue.empty()) now = std::max(now, waiting[next].due);
        for (; next < waiting.size() && waiting[next].due <= now; ++next) queue.push(&waiting[next]);
        if (queue.empty())
        {
            stream.insert(stream.end(), null.begin(), null.end());
            continue;
        }
        const Waiting& chosen = *queue.top();
        queue.pop();
        if (now > chosen.deadline) throw std::runtime_error("a test asks for more than its rate has room for");
        Bytes packet = chosen.packet;
        unsigned& counter = counters[pid_of(packet.data())];
        if (has_payload(packet.data())) counter = (counter + 1) % 16;
        packet[3] = static_cast<std::uint8_t>(packet[3] | counter);
        const bool is_clock = packet[3] >> 4 == 2;
        if (is_clock) set_pcr(packet.data(), static_cast<std::uint64_t>((static_cast<double>(multiplex.begin) + now) * 300));
        stream.insert(stream.end(), packet.begin(), packet.end());
    }
    return stream;
}

} // namespace softdec_tests
