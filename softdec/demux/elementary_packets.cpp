#include "demux/transport_demux.h"

#include <utility>

namespace softdec
{

namespace
{

/** A packet in which no picture or frame begins has no time stamp; ISO/IEC 13818-1, 2.7.4 asks for one each 0.7 s. */
constexpr Nanoseconds longest_untimed = 700 * millisecond;

} // namespace

void TransportDemux::take_stream(Followed& followed, std::span<const std::uint8_t> payload, bool start, bool scrambled)
{
    scrambled_ = scrambled;
    if (scrambled)
    {
        drop(followed.stream.pid);
        followed.assembler.damage();
        return;
    }
    followed.last_piece = clock_.now();
    if (!start) return followed.assembler.take(payload, false);
    // The packet before ends here, and what follows is of the one that begins.
    followed.assembler.finish(false);
    followed.begun = clock_.now();
    followed.before_pcr = recovery_.last_taken() == 0;
    followed.pcr_known = recovery_.last_taken() != 0 && clock_.now() - recovery_.last_taken() < pcr_gone;
    followed.pcr_at_start = recovery_.last();
    followed.time_base = recovery_.time_base();
    followed.assembler.take(payload, true);
}

/** Passes on what has waited for the first PCR. */
void TransportDemux::take_early()
{
    for (auto& [pid, pes] : std::exchange(early_, {}))
    {
        const auto found = followed_.find(pid);
        if (found != followed_.end()) take_pes(*found->second, std::move(pes));
    }
}

void TransportDemux::take_pes(Followed& followed, PesPacket pes)
{
    // One that began before the first PCR is timed by it all the same.
    if (followed.time_base.number == 0)
    {
        followed.time_base = recovery_.time_base();
        followed.pcr_at_start = recovery_.last();
    }
    ElementaryPacket packet = {.source = followed.source,
                               .stream = followed.stream,
                               .pts = std::nullopt,
                               .dts = std::nullopt,
                               .time_base = followed.time_base,
                               .damaged = pes.damaged,
                               .cut = pes.cut,
                               .data = std::move(pes.payload)};
    if (pes.pts) packet.pts = packet.time_base.moment_of(*pes.pts, followed.pcr_at_start);
    packet.dts = pes.dts ? packet.time_base.moment_of(*pes.dts, followed.pcr_at_start) : packet.pts;

    SMGR_TDEMUX_SOURCE_STATS& source = source_of(followed);
    const std::time_t now = clock_.seconds();
    source.tsStreamId = pes.stream_id;
    source.tCounters.nNumReceivedPackets += 1;
    source.tCounters.nNumReceivedBytes += packet.data.size();
    source.tCounters.tLastReceivedPacket = now;
    followed.rate.add(clock_.now(), packet.data.size() * 8);
    count_timestamps(followed, packet);

    source.tCounters.nNumOutputPackets += 1;
    source.tCounters.nNumOutputBytes += packet.data.size();
    source.tCounters.tLastOutputPacket = now;
    record_.tCounters.nNumOutputPackets += 1;
    record_.tCounters.nNumOutputBytes += packet.data.size();
    record_.tCounters.tLastOutputPacket = now;
    events_.packet(std::move(packet));
}

void TransportDemux::count_timestamps(Followed& followed, const ElementaryPacket& packet)
{
    SMGR_TDEMUX_SOURCE_STATS& source = source_of(followed);
    // Asynchronous KLV has no time stamps by its nature.
    const bool has_times = followed.stream.type != SMGR_TDEMUX_DATA_TYPE_KLV || followed.stream.synchronous_metadata;
    if (followed.last_timed == 0) followed.last_timed = clock_.now(); // a stream may be joined between two time stamps
    if (packet.pts)
    {
        source.nPTS = record_.tCounters.TimeStamp = packet.time_base.timestamp_of(*packet.pts);
        source.nDTS = packet.time_base.timestamp_of(*packet.dts);
        followed.last_timed = clock_.now();
    }
    else if (has_times && clock_.now() - followed.last_timed > longest_untimed)
    {
        // Without a DTS the PTS is it, so that a packet lacks its DTS when it has neither.
        ++source.tCounters.nNumNoPTSValueFrames;
        ++source.tCounters.nNumNoDTSValueFrames;
        source.tCounters.tLastNoPTSValueFrames = source.tCounters.tLastNoDTSValueFrames = clock_.seconds();
    }
    if (!followed.pcr_known)
    {
        // Before the first PCR there is time for it to come.
        if (followed.before_pcr && followed.begun - started_ < pcr_gone) return;
        ++record_.tCounters.nNumFramesWithNoPCR;
        record_.tCounters.tLastFrameWithNoPCR = clock_.seconds();
        return;
    }
    if (!packet.pts) return;
    recovery_.take_distance(followed.stream.type, followed.stream.audio_pair, *packet.pts - followed.pcr_at_start);
    if (*packet.pts > followed.pcr_at_start) return;
    ++record_.tCounters.nNumFramesWithPTSLowerThanPCR;
    record_.tCounters.tLastFrameWithPTSLowerThanPCR = clock_.seconds();
}

} // namespace softdec
