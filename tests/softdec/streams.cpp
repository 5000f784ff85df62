#include "streams.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "input/pcap_source.h"
#include "packets.h"

namespace softdec_tests
{

std::string test_name(std::string stream)
{
    std::ranges::replace_if(
        stream, [](char character) { return character == '-' || character == '.'; }, '_');
    return stream;
}

Bytes read_stream(const std::string& name)
{
    std::ifstream file(STREAMS "/" + name, std::ios::binary);
    if (!file) throw std::runtime_error("no test stream " + name);
    return {std::istreambuf_iterator<char>(file), {}};
}

Passes::Passes(Bytes stream) : stream_(std::move(stream))
{
    // The length of a pass is what its first and last PCR and the packets between say of a constant rate.
    const auto clocks = find_packets(stream_, [](const std::uint8_t* packet) { return pcr_of(packet).has_value(); });
    if (clocks.size() < 2) throw std::runtime_error("a stream without PCR cannot be repeated");
    const auto pcr_at = [this](std::size_t packet) { return static_cast<double>(*pcr_of(&stream_[packet * ts_size])); };
    const double rate = (pcr_at(clocks.back()) - pcr_at(clocks.front())) / static_cast<double>(clocks.back() - clocks.front());
    // Whole frame periods of 25 and 30 frames/s, so that pictures follow on each other.
    length_ = static_cast<std::int64_t>(rate * static_cast<double>(stream_.size() / ts_size) / 300 / 18000 + 0.5) * 18000;
}

Bytes Passes::next()
{
    Bytes pass = stream_;
    for (std::size_t at = 0; at < pass.size(); at += ts_size)
    {
        shift_clock(&pass[at], count_ * length_);
        unsigned& counter = counters_.try_emplace(pid_of(&pass[at]), pass[at + 3] & 15U).first->second;
        if (!has_payload(&pass[at]))
        {
            pass[at + 3] = static_cast<std::uint8_t>((pass[at + 3] & 0xf0U) | ((counter - 1) & 15U));
            continue;
        }
        pass[at + 3] = static_cast<std::uint8_t>((pass[at + 3] & 0xf0U) | counter);
        counter = (counter + 1) % 16;
    }
    ++count_;
    return pass;
}

Bytes repeat(const Bytes& stream, int times)
{
    Bytes result;
    Passes passes(stream);
    for (int i = 0; i < times; ++i)
    {
        const Bytes pass = passes.next();
        result.insert(result.end(), pass.begin(), pass.end());
    }
    return result;
}

std::vector<Arrival> datagrams(const Bytes& stream)
{
    constexpr std::size_t packets_each = 7;
    // Each packet's time, between the PCRs around it.
    const auto clocks = find_packets(stream, [](const std::uint8_t* packet) { return pcr_of(packet).has_value(); });
    // Without their wrap-around.
    std::vector<double> values;
    double base = 0;
    std::uint64_t last = 0;
    for (const std::size_t clock : clocks)
    {
        const std::uint64_t pcr = *pcr_of(&stream[clock * ts_size]);
        constexpr std::uint64_t range = static_cast<std::uint64_t>(softdec::timestamp_range) * 300;
        if (pcr + range / 2 < last) base += static_cast<double>(range);
        values.push_back(base + static_cast<double>(pcr));
        last = pcr;
    }
    std::size_t next = 1;
    const auto moment_of = [&](std::size_t packet)
    {
        while (next + 1 < clocks.size() && clocks[next] < packet) ++next;
        const double before = values[next - 1];
        const double after = values[next];
        const double first = values[0];
        const double share =
            (static_cast<double>(packet) - static_cast<double>(clocks[next - 1])) / static_cast<double>(clocks[next] - clocks[next - 1]);
        return beginning + static_cast<softdec::Nanoseconds>((before - first + share * (after - before)) * 1000 / 27);
    };
    std::vector<Arrival> arrivals;
    for (std::size_t packet = 0; packet < stream.size() / ts_size; packet += packets_each)
    {
        const std::size_t end = std::min(packet + packets_each, stream.size() / ts_size);
        const auto* const begin = stream.data() + packet * ts_size;
        arrivals.push_back({.channel = softdec::Channel::media,
                            .moment = moment_of(packet) + 100 * softdec::millisecond,
                            .bytes = Bytes(begin, begin + (end - packet) * ts_size)});
    }
    return arrivals;
}

std::vector<Arrival> rtp(const std::vector<Arrival>& datagrams, std::uint16_t first_sequence)
{
    std::vector<Arrival> packets;
    std::uint16_t sequence = first_sequence;
    for (const Arrival& datagram : datagrams)
    {
        const auto timestamp = static_cast<std::uint32_t>((datagram.moment - beginning) * 9 / 100'000);
        Bytes bytes = {0x80,
                       33,
                       static_cast<std::uint8_t>(sequence >> 8),
                       static_cast<std::uint8_t>(sequence),
                       static_cast<std::uint8_t>(timestamp >> 24),
                       static_cast<std::uint8_t>(timestamp >> 16),
                       static_cast<std::uint8_t>(timestamp >> 8),
                       static_cast<std::uint8_t>(timestamp),
                       1,
                       2,
                       3,
                       4};
        bytes.insert(bytes.end(), datagram.bytes.begin(), datagram.bytes.end());
        packets.push_back({.channel = softdec::Channel::media, .moment = datagram.moment, .bytes = bytes});
        ++sequence;
    }
    return packets;
}

std::vector<Arrival> read_capture(const std::string& name)
{
    softdec::PcapSource source(STREAMS "/" + name);
    std::vector<Arrival> arrivals;
    softdec::Datagram datagram;
    while (source.next(datagram) == softdec::Source::Result::datagram)
        arrivals.push_back(
            {.channel = datagram.channel, .moment = *datagram.arrival, .bytes = Bytes(datagram.bytes.begin(), datagram.bytes.end())});
    return arrivals;
}

std::unique_ptr<softdec::Chain> run(const std::vector<Arrival>& arrivals, bool decode)
{
    auto chain =
        std::make_unique<softdec::Chain>(softdec::Chain::Settings{.has_arrivals = true, .decode = decode, .live = false, .start = 0});
    for (const Arrival& arrival : arrivals)
        chain->take({.channel = arrival.channel, .arrival = arrival.moment, .bytes = arrival.bytes}, {});
    chain->finish();
    return chain;
}

std::unique_ptr<softdec::Chain> run_file(const Bytes& stream, bool decode)
{
    auto chain = std::make_unique<softdec::Chain>(
        softdec::Chain::Settings{.has_arrivals = false, .decode = decode, .live = false, .start = beginning});
    constexpr std::size_t piece = 7 * ts_size;
    for (std::size_t at = 0; at < stream.size(); at += piece)
        chain->take({.channel = softdec::Channel::media,
                     .arrival = std::nullopt,
                     .bytes = std::span(stream).subspan(at, std::min(piece, stream.size() - at))},
                    {});
    chain->finish();
    return chain;
}

} // namespace softdec_tests
