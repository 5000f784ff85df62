#include "demux/transport_demux.h"

#include <algorithm>
#include <bitstream/mpeg/ts.h>
#include <string_view>
#include <utility>

namespace softdec
{

namespace
{

constexpr unsigned null_pid = 0x1fff;

/** PES packets that wait for the first PCR at most. */
constexpr std::size_t most_early = 256;

/** Tables that have not come for this long are gone; TR 101 290 asks for one each half second. */
constexpr Nanoseconds tables_gone = 2 * second;

std::uint64_t pcr_of(const std::uint8_t* packet)
{
    return tsaf_get_pcr(packet) * 300 + tsaf_get_pcrext(packet);
}

} // namespace

TransportDemux::TransportDemux(const VirtualClock& clock, ClockRecovery& recovery, SMGR_TDEMUX_STATS& record, Events events)
    : clock_(clock), recovery_(recovery), record_(record), events_(std::move(events)),
      sync_([this](std::span<const std::uint8_t, packet_size> packet) { take(packet); }, [this] { corrupted(); }),
      tables_([this](const Program& program) { follow(program); })
{
}

void TransportDemux::feed(std::span<const std::uint8_t> bytes, std::optional<Nanoseconds> arrival, std::size_t distance)
{
    if (started_ == 0) started_ = clock_.now();
    arrival_ = arrival;
    sync_.feed(bytes, distance);
    given_up_.clear();
}

void TransportDemux::corrupted()
{
    ++record_.tCounters.nNumTSCorruptedFrames;
    record_.tCounters.tLastTSCorruptedFrame = record_.tCounters.iLastCorruptedFrameTime = clock_.seconds();
}

void TransportDemux::drop(unsigned pid)
{
    ++record_.tCounters.nNumDroppedPackets;
    record_.tCounters.nNumDroppedBytes += packet_size;
    record_.tCounters.tLastDroppedPacket = clock_.seconds();
    record_.tCounters.iLastPIDDropped = static_cast<int>(pid);
}

void TransportDemux::take(std::span<const std::uint8_t, packet_size> packet)
{
    ++packets_;
    const unsigned pid = ts_get_pid(packet.data());
    const unsigned counter = ts_get_cc(packet.data());
    if (pid == null_pid) return;
    const auto found = followed_.find(pid);
    Followed* const followed = found == followed_.end() ? nullptr : found->second.get();
    if (ts_get_transporterror(packet.data()))
    {
        corrupted();
        drop(pid);
        continuity_[pid].skip(counter);
        if (followed != nullptr) followed->assembler.damage();
        return;
    }

    // The adaptation field's length counts from behind itself; one that leaves the packet is damage.
    std::size_t header = TS_HEADER_SIZE;
    bool announced = false;
    if (ts_has_adaptation(packet.data()))
    {
        header += 1U + ts_get_adaptation(packet.data());
        if (header > packet_size)
        {
            corrupted();
            drop(pid);
            return;
        }
        announced = ts_get_adaptation(packet.data()) > 0 && tsaf_has_discontinuity(packet.data());
        // It may be announced ahead of the PCR that it begins with.
        if (announced && pid == program_.pcr_pid) time_base_announced_ = true;
        if (pid == program_.pcr_pid && ts_get_adaptation(packet.data()) >= 7 && tsaf_has_pcr(packet.data())) take_pcr(packet);
    }
    if (!ts_has_payload(packet.data()))
    {
        if (announced) continuity_[pid].announce(counter);
        return;
    }

    const auto payload = packet.subspan(header);
    const std::size_t hash = std::hash<std::string_view>()({reinterpret_cast<const char*>(payload.data()), payload.size()});
    const auto verdict = continuity_[pid].take(counter, announced, hash);
    if (verdict.lost != 0)
    {
        record_.tCounters.nNumLostSegmentsMPEG2TS += verdict.lost;
        record_.tCounters.tLastLostSegmentMPEG2TS = clock_.seconds();
        if (followed != nullptr) followed->assembler.damage();
    }
    if (!verdict.usable) return;
    if (take_tables(pid, packet) || followed == nullptr) return;
    take_stream(*followed, payload, ts_get_unitstart(packet.data()), ts_get_scrambling(packet.data()) != 0);
}

bool TransportDemux::take_tables(unsigned pid, std::span<const std::uint8_t, packet_size> packet)
{
    if (pid != 0 && pid != tables_.pmt_pid()) return false;
    (pid == 0 ? last_pat_ : last_pmt_) = clock_.now();
    tables_.take(packet);
    return true;
}

void TransportDemux::take_pcr(std::span<const std::uint8_t, packet_size> packet)
{
    const Pcr pcr = pcr_of(packet.data());
    const bool announced = std::exchange(time_base_announced_, false);
    recovery_.take(pcr, events_.pcr(pcr, arrival_, announced), announced);
    take_early();
    record_.nPCR = pcr / 300;
    record_.tLastPCR = clock_.seconds();
    if (recovery_.rollovers() != record_.tCounters.nNumTimestampRollovers)
    {
        record_.tCounters.nNumTimestampRollovers = recovery_.rollovers();
        record_.tCounters.tLastTimestampRollover = clock_.seconds();
    }
}

void TransportDemux::follow(const Program& program)
{
    // A stream that keeps its place keeps its counts; the others end.
    const auto stays = [&program](const Followed& followed)
    { return followed.source < program.streams.size() && program.streams[followed.source] == followed.stream; };
    for (auto& [pid, followed] : followed_)
    {
        if (stays(*followed)) continue;
        followed->assembler.finish(true);
        given_up_.push_back(std::move(followed));
    }
    std::erase_if(followed_, [](const auto& entry) { return !entry.second; });
    for (std::size_t i = program.streams.size(); i < std::size(record_.tSources); ++i) record_.tSources[i] = {};
    for (std::size_t i = 0; i < program.streams.size(); ++i)
    {
        const ElementaryStream& stream = program.streams[i];
        if (followed_.contains(stream.pid)) continue;
        record_.tSources[i] = {};
        SMGR_TDEMUX_SOURCE_STATS& source = record_.tSources[i];
        source.enType = stream.type;
        source.enCompressionType = stream.compression;
        source.tsPid = stream.pid;
        source.nTimebaseNum = 1;
        source.nTimebaseDen = ticks_per_second;
        source.nAudioPairNum = stream.audio_pair;

        auto& followed = followed_[stream.pid];
        const auto on_packet = [this, pid = stream.pid](PesPacket packet)
        {
            const auto found = followed_.find(pid);
            if (found == followed_.end() || !found->second) return;
            // The first PCR has a tenth of a second to come.
            const bool is_early = recovery_.last_taken() == 0 && early_.size() < most_early && clock_.now() - started_ < pcr_gone;
            if (!is_early) return take_pes(*found->second, std::move(packet));
            early_.emplace_back(pid, std::move(packet));
        };
        const auto on_mismatch = [this]
        {
            ++record_.tCounters.nNumPESSizeMismatches;
            record_.tCounters.tLastPESSizeMismatch = clock_.seconds();
        };
        followed.reset(new Followed{
            .stream = stream, .source = i, .assembler = PesAssembler({.packet = on_packet, .mismatch = on_mismatch}), .rate = {}});
    }
    const auto streams_of = [&program](SMGR_TDEMUX_DATA_TYPE type)
    { return static_cast<unsigned>(std::ranges::count(program.streams, type, &ElementaryStream::type)); };
    record_.tCounters.nNumStreams = static_cast<unsigned>(program.streams.size()) + program.filtered;
    record_.tCounters.nVideoStreams = streams_of(SMGR_TDEMUX_DATA_TYPE_VIDEO);
    record_.tCounters.nAudioStreams = streams_of(SMGR_TDEMUX_DATA_TYPE_AUDIO);
    record_.tCounters.nKLVStreams = streams_of(SMGR_TDEMUX_DATA_TYPE_KLV);
    record_.tCounters.nFilteredStreams = program.filtered;
    ++record_.tCounters.nNumNewStreamFlags;
    record_.tCounters.tLastNewStreamFlag = clock_.seconds();
    program_ = program;
    events_.program(program);
}

void TransportDemux::finish()
{
    sync_.finish();
    // What a stream that has ceased before had begun is not completed by the end of the others.
    for (auto& [pid, followed] : followed_)
        if (clock_.now() - followed->last_piece < pcr_gone) followed->assembler.finish(true);
    take_early();
}

void TransportDemux::update()
{
    for (auto& [pid, followed] : followed_)
    {
        SMGR_TDEMUX_SOURCE_STATS& source = source_of(*followed);
        source.tCounters.nBitsPerSecond = static_cast<unsigned>(std::min(followed->rate.rate(clock_.now()), 4e9));
    }
    const Nanoseconds now = clock_.now();
    if (!early_.empty() && now - started_ >= pcr_gone) take_early();
    const bool known = last_pat_ != 0 && last_pmt_ != 0 && now - last_pat_ < tables_gone && now - last_pmt_ < tables_gone;
    record_.nProgramNumber = known ? program_.number : 0;
    const bool has_pcr_pid = known && program_.pcr_pid != null_pid;
    record_.nPcrPid = has_pcr_pid ? program_.pcr_pid : 0;
    if (scrambled_) record_.enState = SMGR_TDEMUX_STATS_STATE_SCRAMBLED;
}

} // namespace softdec
