#include "fec_sender.h"

#include <algorithm>
#include <array>

namespace softdec_tests
{

namespace
{

constexpr std::size_t rtp_header = 12;

Arrival protect(const std::vector<Arrival>& media, std::size_t first, int step, int count, bool row, std::uint16_t sequence)
{
    Bytes sum;
    unsigned length = 0;
    std::uint8_t type = 0;
    std::array<std::uint8_t, 4> timestamp{};
    for (int i = 0; i < count; ++i)
    {
        const Bytes& bytes = media[first + static_cast<std::size_t>(step * i)].bytes;
        sum.resize(std::max(sum.size(), bytes.size() - rtp_header));
        for (std::size_t k = rtp_header; k < bytes.size(); ++k) sum[k - rtp_header] ^= bytes[k];
        length ^= static_cast<unsigned>(bytes.size() - rtp_header);
        type = static_cast<std::uint8_t>(type ^ (bytes[1] & 0x7f));
        for (std::size_t k = 0; k < 4; ++k) timestamp[k] ^= bytes[4 + k];
    }
    const std::uint16_t base = sequence_of(media[first]);
    Bytes bytes = {0x80, 96, static_cast<std::uint8_t>(sequence >> 8), static_cast<std::uint8_t>(sequence), 0, 0, 0, 0, 0, 0, 0, 0};
    const std::initializer_list<std::uint8_t> header = {static_cast<std::uint8_t>(base >> 8),
                                                        static_cast<std::uint8_t>(base),
                                                        static_cast<std::uint8_t>(length >> 8),
                                                        static_cast<std::uint8_t>(length),
                                                        static_cast<std::uint8_t>(0x80 | type),
                                                        0,
                                                        0,
                                                        0,
                                                        timestamp[0],
                                                        timestamp[1],
                                                        timestamp[2],
                                                        timestamp[3],
                                                        static_cast<std::uint8_t>(row ? 0x40 : 0),
                                                        static_cast<std::uint8_t>(step),
                                                        static_cast<std::uint8_t>(count),
                                                        0};
    bytes.insert(bytes.end(), header);
    bytes.insert(bytes.end(), sum.begin(), sum.end());
    return {.channel = row ? softdec::Channel::row_fec : softdec::Channel::column_fec, .moment = 0, .bytes = bytes};
}

} // namespace

std::uint16_t sequence_of(const Arrival& packet)
{
    return static_cast<std::uint16_t>(packet.bytes[2] << 8 | packet.bytes[3]);
}

std::vector<Arrival> with_fec(const std::vector<Arrival>& media, const Matrix& matrix)
{
    const auto columns = static_cast<std::size_t>(matrix.columns);
    const std::size_t size = columns * static_cast<std::size_t>(matrix.rows);
    std::vector<Arrival> packets;
    std::vector<Arrival> waiting; // column FEC of the matrix before
    std::uint16_t column_sequence = 65530;
    std::uint16_t row_sequence = 7;
    for (std::size_t i = 0; i < media.size(); ++i)
    {
        packets.push_back(media[i]);
        const std::size_t place = i % size;
        const std::size_t begin = i - place;
        if (matrix.row_fec && place % columns == columns - 1)
        {
            packets.push_back(protect(media, i + 1 - columns, 1, matrix.columns, true, row_sequence++));
            packets.back().moment = media[i].moment;
        }
        // One column's at a time, spread over the next matrix.
        if (!waiting.empty() && place % static_cast<std::size_t>(matrix.rows) == 0)
        {
            packets.push_back(waiting.front());
            packets.back().moment = media[i].moment;
            waiting.erase(waiting.begin());
        }
        if (place != size - 1) continue;
        for (std::size_t column = 0; column < columns; ++column)
            waiting.push_back(protect(media, begin + column, matrix.columns, matrix.rows, false, column_sequence++));
    }
    return packets;
}

Outcome outcome_of(const std::vector<Arrival>& packets, std::set<std::uint16_t> removed)
{
    Outcome outcome;
    for (bool progress = true; progress;)
    {
        progress = false;
        for (const Arrival& packet : packets)
        {
            if (packet.channel == softdec::Channel::media) continue;
            const std::uint8_t* const header = &packet.bytes[rtp_header];
            const int base = header[0] << 8 | header[1];
            std::vector<std::uint16_t> missing;
            for (int i = 0; i < header[14]; ++i)
            {
                const auto sequence = static_cast<std::uint16_t>(base + header[13] * i);
                if (removed.contains(sequence)) missing.push_back(sequence);
            }
            if (missing.size() != 1) continue;
            removed.erase(missing.front());
            ++outcome.recovered;
            progress = true;
        }
    }
    outcome.lost = static_cast<int>(removed.size());
    return outcome;
}

} // namespace softdec_tests
