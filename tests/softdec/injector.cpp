#include "injector.h"

#include <algorithm>
#include <map>

namespace softdec_tests
{

Bytes renumber(Bytes stream)
{
    std::map<unsigned, unsigned> counters;
    for (std::size_t at = 0; at < stream.size(); at += ts_size)
    {
        if (!has_payload(&stream[at])) continue;
        unsigned& counter = counters.try_emplace(pid_of(&stream[at]), stream[at + 3] & 15U).first->second;
        stream[at + 3] = static_cast<std::uint8_t>((stream[at + 3] & 0xf0U) | counter);
        counter = (counter + 1) % 16;
    }
    return stream;
}

Bytes change(Bytes stream, const std::vector<std::size_t>& chosen, const std::function<void(std::uint8_t*)>& fault)
{
    for (const std::size_t place : chosen) fault(&stream[place * ts_size]);
    return stream;
}

Bytes duplicate(const Bytes& stream, const std::vector<std::size_t>& chosen)
{
    Bytes result;
    for (std::size_t i = 0; i < stream.size() / ts_size; ++i)
        for (int times = std::ranges::binary_search(chosen, i) ? 2 : 1; times > 0; --times)
            result.insert(result.end(), &stream[i * ts_size], &stream[i * ts_size] + ts_size);
    return result;
}

Bytes swap_with_next(Bytes stream, const std::vector<std::size_t>& chosen)
{
    for (const std::size_t place : chosen)
    {
        const unsigned pid = pid_of(&stream[place * ts_size]);
        std::size_t next = place + 1;
        while (pid_of(&stream[next * ts_size]) != pid || !has_payload(&stream[next * ts_size])) ++next;
        std::swap_ranges(&stream[place * ts_size], &stream[place * ts_size] + ts_size, &stream[next * ts_size]);
    }
    return stream;
}

std::vector<std::size_t> payloads_of(const Bytes& stream, unsigned pid)
{
    return find_packets(stream, [pid](const std::uint8_t* packet) { return pid_of(packet) == pid && has_payload(packet); });
}

std::vector<std::size_t> starts_of(const Bytes& stream, unsigned pid)
{
    return find_packets(stream, [pid](const std::uint8_t* packet) { return pid_of(packet) == pid && starts_unit(packet); });
}

std::vector<std::size_t> each(const std::vector<std::size_t>& places, std::size_t n)
{
    std::vector<std::size_t> chosen;
    for (std::size_t i = n; i < places.size(); i += n) chosen.push_back(places[i]);
    return chosen;
}

std::vector<std::size_t> whole_units(const Bytes& stream, const std::vector<std::size_t>& starts)
{
    std::vector<std::size_t> places;
    for (const std::size_t start : starts)
    {
        const unsigned pid = pid_of(&stream[start * ts_size]);
        for (std::size_t i = start; i < stream.size() / ts_size; ++i)
        {
            const std::uint8_t* const packet = &stream[i * ts_size];
            if (pid_of(packet) != pid || !has_payload(packet)) continue;
            if (i != start && starts_unit(packet)) break;
            places.push_back(i);
        }
    }
    std::ranges::sort(places);
    return places;
}

void remove_pcr(std::uint8_t* packet)
{
    if (!pcr_of(packet)) return;
    packet[5] = static_cast<std::uint8_t>(packet[5] & 0xefU); // PCR_flag
    std::fill(packet + 6, packet + 12, std::uint8_t{0xff});
}

} // namespace softdec_tests
