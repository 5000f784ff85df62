#include "presenter/buffering.h"

#include <algorithm>
#include <cstdlib>

namespace softdec
{

namespace
{

/** What the STC lies behind the sender's clock at least: the decoders' lead, and jitter of the network. */
constexpr Ticks least_delay = decoder_lead + 400 * ticks_per_millisecond;

/** A packet whose time is further away than this has a time stamp of another clock, and waiting for it stops the stream. */
constexpr Ticks longest_wait = 10 * ticks_per_second;

} // namespace

Buffering::Buffering(const VirtualClock& clock, const ClockRecovery& recovery, SMGR_CBUFFERING_STATS& record, bool has_arrivals,
                     Output output)
    : clock_(clock), recovery_(recovery), record_(record), has_arrivals_(has_arrivals), output_(std::move(output)), delay_(least_delay)
{
    record_.enBufferingMode = SMGR_DECSDI_BUFFERING_AUTOMATIC;
    record_.nMinDelayMs = static_cast<UINT>(milliseconds(least_delay));
    record_.nMaxDelayMs = static_cast<UINT>(milliseconds(longest_wait));
}

std::optional<Ticks> Buffering::stc() const
{
    const auto sender = recovery_.at(clock_.now());
    if (!sender) return std::nullopt;
    return *sender - delay_;
}

void Buffering::configure(const std::vector<ElementaryStream>& streams)
{
    for (std::size_t i = 0; i < channels_.size(); ++i)
    {
        const auto type = i < streams.size() ? streams[i].type : SMGR_TDEMUX_DATA_TYPE_UNKNOWN;
        if (record_.tChannel[i].enType == type) continue;
        while (!channels_[i].packets.empty()) release(i, std::nullopt);
        record_.tChannel[i] = {};
        record_.tChannel[i].enType = type;
        if (type == SMGR_TDEMUX_DATA_TYPE_UNKNOWN) continue;
        record_.tChannel[i].nSTCLeadTimeMsSet = milliseconds(decoder_lead);
        record_.tChannel[i].nJitterTimeMsSet = static_cast<UINT>(milliseconds(least_delay - decoder_lead));
    }
}

void Buffering::take(ElementaryPacket packet)
{
    auto& counters = record_.tCounters;
    record_.enStatus = SMGR_CBUFFERING_STATUS_ACTIVE;
    ++counters.nNumReceivedPackets;
    counters.tLastReceivedPacket = clock_.seconds();
    const std::size_t index = packet.source;
    if (packet.stream.type == SMGR_TDEMUX_DATA_TYPE_KLV && !packet.pts) synthesize(channels_[index], packet);
    measure_jitter(index, packet);

    auto& channel = record_.tChannel[index];
    ++channel.tCounters.nNumReceivedPackets;
    counters.nBufferingOccupancyBytes += packet.data.size();
    if (counters.nBufferingOccupancyBytes > counters.nMaxBufferingOccupancyBytes)
    {
        counters.nMaxBufferingOccupancyBytes = counters.nBufferingOccupancyBytes;
        counters.tMaxBufferingOccupancyBytes = clock_.seconds();
    }
    channels_[index].packets.emplace_back(std::move(packet), clock_.now());
    channel.nQueueOccupancyFrames = static_cast<unsigned>(channels_[index].packets.size());
    channel.tCounters.nMaxQueueOccupancyFrames = std::max(channel.tCounters.nMaxQueueOccupancyFrames, channel.nQueueOccupancyFrames);
}

/** Asynchronous metadata belongs to the pictures that arrive with it; what arrives at once keeps its order. */
void Buffering::synthesize(Channel& channel, ElementaryPacket& packet)
{
    auto& counters = record_.tCounters;
    const auto sender = recovery_.at(clock_.now());
    if (!sender)
    {
        ++counters.nSynthesizedAsyncTimestampFails;
        counters.tLastSynthesizedAsyncTimestampFail = clock_.seconds();
        return;
    }
    channel.synthesized = channel.synthesized ? std::max(*sender, *channel.synthesized + 1) : *sender;
    packet.pts = packet.dts = channel.synthesized;
    packet.time_base = recovery_.time_base();
    ++counters.nSynthesizedAsyncTimestamps;
    counters.tLastSynthesizedAsyncTimestamp = clock_.seconds();
}

/** Jitter is the change, from packet to packet, of how long before its time one arrives. */
void Buffering::measure_jitter(std::size_t index, const ElementaryPacket& packet)
{
    const auto sender = recovery_.at(clock_.now());
    if (!packet.dts || !sender) return;
    auto& channel = record_.tChannel[index];
    const Ticks distance = *packet.dts - *sender;
    channel.nPCRtoPTSTimeMsActual = milliseconds(*packet.pts - *sender);
    auto& state = channels_[index];
    if (has_arrivals_ && state.last_distance && state.time_base == packet.time_base.number)
    {
        const auto jitter = static_cast<UINT>(milliseconds(std::abs(distance - *state.last_distance)));
        channel.nJitterTimeMsActual = jitter;
        channel.nJitterTimeMsMaximum = std::max(channel.nJitterTimeMsMaximum, jitter);
        if (channel.nJitterTimeMsMaximum > record_.tAutomatic.nMaxInputJitterMs)
        {
            record_.tAutomatic.nMaxInputJitterMs = channel.nJitterTimeMsMaximum;
            record_.tAutomatic.tMaxInputJitterChanged = clock_.seconds();
        }
    }
    state.last_distance = distance;
    state.time_base = packet.time_base.number;
}

bool Buffering::is_due(const ElementaryPacket& packet, std::optional<Ticks> stc) const
{
    if (!packet.dts || !stc) return true;
    const Ticks wait = *packet.dts - decoder_lead - *stc;
    return wait <= 0 || wait > longest_wait;
}

/** The delay covers what the transport holds back. Once packets have been passed on, it only grows, as each change shows. */
void Buffering::settle_delay()
{
    const bool running = record_.bBufferingDelaySet != FALSE;
    if (running && least_delay + ticks(transport_hold_) <= delay_) return;
    // What is held depends on the rate of packets, which varies.
    const Ticks wanted = least_delay + ticks(transport_hold_) * 5 / 4;
    if (running)
    {
        ++record_.tCounters.nNumBufferingAdjustments;
        record_.tCounters.tLastBufferingAdjustmentTime = clock_.seconds();
    }
    delay_ = wanted;
    record_.nSetDelayMs = static_cast<UINT>(milliseconds(delay_));
}

void Buffering::step()
{
    settle_delay();
    const auto now = stc();
    for (std::size_t i = 0; i < channels_.size(); ++i)
        while (!channels_[i].packets.empty() && is_due(channels_[i].packets.front().first, now)) release(i, now);
}

void Buffering::release(std::size_t index, std::optional<Ticks> stc)
{
    auto& counters = record_.tCounters;
    auto& channel = record_.tChannel[index];
    auto& packets = channels_[index].packets;
    ElementaryPacket packet = std::move(packets.front().first);
    const Nanoseconds arrival = packets.front().second;
    packets.pop_front();
    channel.nQueueOccupancyFrames = static_cast<unsigned>(packets.size());
    counters.nBufferingOccupancyBytes -= packet.data.size();
    if (stc && packet.dts)
    {
        record_.bBufferingDelaySet = TRUE;
        if (*packet.dts - decoder_lead - *stc > longest_wait)
        {
            ++counters.nBufferingOverflows;
            counters.tLastBufferingOverflow = clock_.seconds();
        }
        if (*packet.dts < *stc)
            count_late(*stc - *packet.dts);
        else
            late_in_a_row_ = 0;
        channel.nBufferingDelayTimeMs = channel.nDelayTimeMsActual = static_cast<UINT>((clock_.now() - arrival) / millisecond);
        channel.nTotalOutputLatencyMs =
            static_cast<UINT>(std::max<Ticks>(0, milliseconds(*packet.pts - *stc) + (clock_.now() - arrival) / millisecond));
        channel.TimeStamp = packet.time_base.timestamp_of(*packet.pts);
    }
    channel.tLastOutputTime = counters.tLastOutputPacket = clock_.seconds();
    ++channel.tCounters.nNumOutputPackets;
    ++counters.nNumOutputPackets;
    output_(std::move(packet));
}

void Buffering::count_late(Ticks late)
{
    auto& counters = record_.tCounters;
    ++counters.nNumLateOutputs;
    counters.tLastLateOutput = clock_.seconds();
    counters.nMaxLateOutputMs = std::max(counters.nMaxLateOutputMs, milliseconds(late));
    counters.nMaxLateOutputBurstFrms = std::max(counters.nMaxLateOutputBurstFrms, ++late_in_a_row_);
}

bool Buffering::holds(SMGR_TDEMUX_DATA_TYPE type) const
{
    return std::ranges::any_of(channels_, [type](const Channel& channel)
                               { return !channel.packets.empty() && channel.packets.front().first.stream.type == type; });
}

bool Buffering::empty() const
{
    return std::ranges::all_of(channels_, [](const Channel& channel) { return channel.packets.empty(); });
}

void Buffering::take_lead(SMGR_TDEMUX_DATA_TYPE type, Ticks lead)
{
    auto& measured = record_.tAutomatic;
    if (type == SMGR_TDEMUX_DATA_TYPE_VIDEO)
    {
        video_lead_.add(clock_.now(), milliseconds(lead));
        measured.nVideoSTCLeadTimeAvgActualMs = static_cast<int>(video_lead_.average());
        measured.nVideoSTCLeadTimeMinActualMs = static_cast<int>(video_lead_.least());
        measured.nVideoSTCLeadTimeMaxActualMs = static_cast<int>(video_lead_.greatest());
    }
    else
    {
        audio_lead_.add(clock_.now(), milliseconds(lead));
        measured.nAudioSTCLeadTimeAvgActualMs = static_cast<int>(audio_lead_.average());
        measured.nAudioSTCLeadTimeMinActualMs = static_cast<int>(audio_lead_.least());
        measured.nAudioSTCLeadTimeMaxActualMs = static_cast<int>(audio_lead_.greatest());
    }
}

void Buffering::update()
{
    const TimeBase& time_base = recovery_.time_base();
    if (time_base.number == 0) return;
    record_.nPCR = time_base.timestamp_of(recovery_.last());
    if (const auto now = stc())
    {
        record_.nSTC = time_base.timestamp_of(*now);
        record_.nSTCtoPCRLeadTimeMs = milliseconds(*now - recovery_.last());
    }
}

} // namespace softdec
