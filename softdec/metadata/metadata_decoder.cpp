#include "metadata/metadata_decoder.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace softdec
{

namespace
{

constexpr Ticks furthest_metadata = 11 * ticks_per_second;

/** Every key of SMPTE ST 336 begins so. */
constexpr std::array<std::uint8_t, 4> universal_label = {0x06, 0x0e, 0x2b, 0x34};

/** Of a metadata access unit cell (ISO/IEC 13818-1, 2.12.4), in front of synchronous KLV. */
constexpr std::size_t cell_header = 5;

} // namespace

MetadataDecoder::MetadataDecoder(const VirtualClock& clock, SMGR_METADATADEC_STATS& record) : clock_(clock), record_(record)
{
    record_.enState = SMGR_METADATA_STATE_IDLE;
    constexpr std::array<std::string_view, 4> names = {"KLV", "TC", "CC", "AFD"};
    for (std::size_t i = 0; i < names.size(); ++i)
    {
        auto& channel = record_.tChannel[i];
        names.at(i).copy(channel.szName, sizeof channel.szName - 1); // the record begins with zeros
        channel.enType = static_cast<SMGR_METADATA_CHANNEL_TYPE>(i);
        channel.enState = SMGR_METADATA_STATE_IDLE;
    }
}

void MetadataDecoder::take_klv(const ElementaryPacket& packet, bool synchronous, std::optional<Ticks> stc)
{
    const std::size_t header = synchronous ? cell_header : 0;
    const bool is_klv =
        packet.data.size() >= header + universal_label.size() &&
        std::equal(universal_label.begin(), universal_label.end(), packet.data.begin() + static_cast<std::ptrdiff_t>(header));
    auto& counters = record_.tChannel[SMGR_METADATA_CHANNEL_TYPE_KLV].tCounters;
    if (!is_klv || packet.damaged) ++counters.nNumErrors;
    take(SMGR_METADATA_CHANNEL_TYPE_KLV, synchronous, packet.time_base.number == 0 ? std::nullopt : packet.pts, stc,
         {.time_base = packet.time_base.number, .bytes = packet.data.size() - std::min(header, packet.data.size())});
}

void MetadataDecoder::take_picture(const PictureMetadata& metadata, std::optional<Ticks> pts, unsigned time_base, std::optional<Ticks> stc)
{
    const auto take_bytes = [&](SMGR_METADATA_CHANNEL_TYPE type, std::size_t bytes)
    { take(type, true, pts, stc, {.time_base = time_base, .bytes = bytes}); };
    if (metadata.timecode)
    {
        record_.tCounters.tTCValue = {.bTCValid = TRUE,
                                      .nTCHours = metadata.timecode->hours,
                                      .nTCMinutes = metadata.timecode->minutes,
                                      .nTCSeconds = metadata.timecode->seconds,
                                      .nTCFrames = metadata.timecode->frames};
        take_bytes(SMGR_METADATA_CHANNEL_TYPE_TC, metadata.timecode_bytes);
    }
    if (metadata.caption_bytes != 0) take_bytes(SMGR_METADATA_CHANNEL_TYPE_CC, metadata.caption_bytes);
    if (metadata.active_format) take_bytes(SMGR_METADATA_CHANNEL_TYPE_AFD, metadata.active_format_bytes);
}

void MetadataDecoder::take(SMGR_METADATA_CHANNEL_TYPE type, bool synchronous, std::optional<Ticks> pts, std::optional<Ticks> stc,
                           Waiting packet)
{
    const auto index = static_cast<std::size_t>(type);
    const std::time_t now = clock_.seconds();
    auto& channel = record_.tChannel[index];
    record_.enState = channel.enState = SMGR_METADATA_STATE_ACTIVE;
    ++record_.tCounters.nNumReceivedPackets;
    ++channel.tCounters.nNumInputPackets;
    channel.tCounters.tLastInputPacket = now;
    if (synchronous)
    {
        ++channel.tCounters.nNumSynchronousPackets;
        channel.tCounters.tLastSynchronousPacket = now;
    }
    else
    {
        ++channel.tCounters.nNumAsynchronousPackets;
        channel.tCounters.tLastAsynchronousPacket = now;
    }
    packet.pts = pts.value_or(0);
    packet.received = clock_.now();
    if (!pts || !stc || *pts - *stc > furthest_metadata) return put_out(index, packet);

    const bool first = channel.tCounters.tMinOutputSTCLeadTime == 0;
    const int lead = milliseconds(*pts - *stc);
    channel.tCounters.nOutputSTCLeadTime = lead;
    if (first || lead < channel.tCounters.nMinOutputSTCLeadTime)
    {
        channel.tCounters.nMinOutputSTCLeadTime = lead;
        channel.tCounters.tMinOutputSTCLeadTime = now;
    }
    if (first || lead > channel.tCounters.nMaxOutputSTCLeadTime)
    {
        channel.tCounters.nMaxOutputSTCLeadTime = lead;
        channel.tCounters.tMaxOutputSTCLeadTime = now;
    }
    if (lead < 0)
    {
        ++channel.tCounters.nNumOutputLate;
        channel.tCounters.tLastOutputLate = now;
    }
    // Pictures leave the framer in coded order, and metadata is shown with them.
    auto& queue = waiting_[index];
    queue.insert(std::ranges::upper_bound(queue, packet.pts, {}, &Waiting::pts), packet);
    channel.tCounters.nNumInPacketList = queue.size();
}

void MetadataDecoder::step(std::optional<Ticks> stc)
{
    if (!stc) return;
    for (std::size_t i = 0; i < waiting_.size(); ++i)
    {
        while (!waiting_[i].empty() && waiting_[i].front().pts <= *stc)
        {
            put_out(i, waiting_[i].front());
            waiting_[i].pop_front();
            record_.tChannel[i].tCounters.nNumInPacketList = waiting_[i].size();
        }
    }
}

void MetadataDecoder::put_out(std::size_t index, const Waiting& packet)
{
    auto& channel = record_.tChannel[index];
    const std::time_t now = clock_.seconds();
    ++channel.tCounters.nNumOutputPackets;
    ++channel.tCounters.nNumFreedPackets;
    channel.tCounters.tLastOutputPacket = channel.tCounters.tLastFreedPacket = channel.tCounters.tLastOutputTime = now;
    channel.tCounters.nNumOutputPayloadBytes += packet.bytes;
    if (packet.bytes > channel.tCounters.nMaxOutputPayloadBytes)
    {
        channel.tCounters.nMaxOutputPayloadBytes = packet.bytes;
        channel.tCounters.tMaxOutputPayloadBytes = now;
    }
    channel.nLatencyInUs = static_cast<unsigned>((clock_.now() - packet.received) / microsecond);
    const auto& last = last_output_[index];
    if (last && packet.time_base == last->time_base && packet.pts <= last->pts)
    {
        ++channel.tCounters.nNumNonIncreasingOutputTimestamps;
        channel.tCounters.tLastNonIncreasingOutputTimestamp = now;
    }
    last_output_[index] = packet;
}

bool MetadataDecoder::empty() const
{
    return std::ranges::all_of(waiting_, [](const auto& queue) { return queue.empty(); });
}

} // namespace softdec
