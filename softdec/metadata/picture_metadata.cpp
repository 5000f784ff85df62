#include "metadata/picture_metadata.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "framer/bit_reader.h"

namespace softdec
{

namespace
{

using Bytes = std::span<const std::uint8_t>;

constexpr std::size_t largest_supplement = 65536;

enum Message : unsigned
{
    picture_timing = 1,
    user_data_registered = 4,
    recovery_point = 6,
    time_code = 136,
    alternative_transfer_characteristics = 147,
};

/** Fields that a structure has clock time stamps for (ITU-T H.264, table D-1). */
constexpr std::array<unsigned, 9> timestamps_of_structure = {1, 1, 1, 2, 2, 3, 3, 2, 3};

/** One clock time stamp, of H.264 (clause D.1.3) or of H.265 (clause D.2.27). */
std::optional<Timecode> parse_timestamp(BitReader& reader, bool h265, unsigned h264_offset_bits)
{
    Timecode time;
    if (!h265) reader.skip(2);
    reader.skip(1);
    reader.skip(5);
    const bool full = reader.flag();
    reader.skip(2);
    time.frames = reader.bits(h265 ? 9 : 8);
    if (full)
    {
        time.seconds = reader.bits(6);
        time.minutes = reader.bits(6);
        time.hours = reader.bits(5);
    }
    else if (reader.flag())
    {
        time.seconds = reader.bits(6);
        if (reader.flag())
        {
            time.minutes = reader.bits(6);
            if (reader.flag()) time.hours = reader.bits(5);
        }
    }
    reader.skip(h265 ? reader.bits(5) : h264_offset_bits);
    if (reader.overrun() || time.seconds > 59 || time.minutes > 59 || time.hours > 23) return std::nullopt;
    return time;
}

void parse_timing_h264(Bytes payload, const SequenceParameters& sequence, PictureMetadata& metadata)
{
    BitReader reader(payload);
    if (sequence.has_delays) reader.skip(sequence.cpb_delay_bits + sequence.dpb_delay_bits);
    if (!sequence.has_picture_structure) return;
    const unsigned structure = reader.bits(4);
    if (reader.overrun() || structure >= timestamps_of_structure.size()) return;
    metadata.picture_structure = structure;
    for (unsigned i = 0; i < timestamps_of_structure[structure]; ++i)
    {
        if (!reader.flag()) continue;
        const auto time = parse_timestamp(reader, false, sequence.time_offset_bits);
        if (!time) return;
        if (metadata.timecode) continue;
        metadata.timecode = time;
        metadata.timecode_bytes = static_cast<unsigned>(payload.size());
    }
}

void parse_timing_h265(Bytes payload, const SequenceParameters& sequence, PictureMetadata& metadata)
{
    BitReader reader(payload);
    if (sequence.has_picture_structure) metadata.picture_structure = reader.bits(4);
}

void parse_time_code(Bytes payload, PictureMetadata& metadata)
{
    BitReader reader(payload);
    const unsigned count = reader.bits(2);
    for (unsigned i = 0; i < count; ++i)
    {
        if (!reader.flag()) continue;
        reader.skip(1);
        const auto time = parse_timestamp(reader, true, 0);
        if (!time) return;
        if (metadata.timecode) continue;
        metadata.timecode = time;
        metadata.timecode_bytes = static_cast<unsigned>(payload.size());
    }
}

/** User data registered by a provider, of whom the one that counts is ATSC. */
void parse_user_data(Bytes payload, PictureMetadata& metadata)
{
    constexpr std::uint8_t united_states = 0xb5;
    constexpr std::size_t provider = 3;
    if (payload.size() <= provider || payload[0] != united_states || payload[1] != 0 || payload[2] != 0x31) return;
    parse_atsc_user_data(payload.subspan(provider), metadata);
}

void parse_message(unsigned type, Bytes payload, bool h265, const SequenceParameters* sequence, PictureMetadata& metadata)
{
    switch (type)
    {
    case picture_timing:
        if (sequence == nullptr) return;
        return h265 ? parse_timing_h265(payload, *sequence, metadata) : parse_timing_h264(payload, *sequence, metadata);
    case user_data_registered: return parse_user_data(payload, metadata);
    case recovery_point: metadata.recovery_point = true; return;
    case time_code:
        if (h265) parse_time_code(payload, metadata);
        return;
    case alternative_transfer_characteristics:
        if (!payload.empty()) metadata.alternative_transfer = payload[0];
        return;
    default: return;
    }
}

} // namespace

void parse_atsc_user_data(Bytes data, PictureMetadata& metadata)
{
    constexpr std::size_t identifier = 4;
    if (data.size() <= identifier) return;
    const std::string_view name(reinterpret_cast<const char*>(data.data()), identifier);
    data = data.subspan(identifier);
    if (name == "GA94" && data.size() >= 3 && data[0] == 3 && (data[1] & 0x40) != 0)
    {
        const std::size_t bytes = std::size_t{data[1] & 0x1fU} * 3;
        metadata.caption_bytes += static_cast<unsigned>(std::min(bytes, data.size() - 3));
    }
    else if (name == "DTG1" && data.size() >= 2 && (data[0] & 0x40) != 0)
    {
        metadata.active_format = data[1] & 0x0fU;
        metadata.active_format_bytes = 1;
    }
}

std::optional<unsigned> parse_supplement(Bytes unit, bool h265, const SequenceParameters* sequence, PictureMetadata& metadata)
{
    const auto bytes = unescape(unit.subspan(h265 ? 2 : 1), largest_supplement);
    std::size_t at = 0;
    const auto number = [&bytes, &at]() -> std::optional<unsigned>
    {
        unsigned value = 0;
        while (at < bytes.size() && bytes[at] == 0xff)
        {
            value += 255;
            ++at;
        }
        if (at == bytes.size()) return std::nullopt;
        return value + bytes[at++];
    };
    unsigned messages = 0;
    // The last byte holds the stop bit, alone or behind a message that is not whole bytes.
    while (at + 1 < bytes.size())
    {
        const auto type = number();
        const auto size = number();
        if (!type || !size || *size > bytes.size() - at) return std::nullopt;
        parse_message(*type, Bytes(bytes).subspan(at, *size), h265, sequence, metadata);
        at += *size;
        ++messages;
    }
    return messages;
}

} // namespace softdec
