#include "simulation.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <stdexcept>
#include <string>

#include "simulation_counting.h"
#include "simulation_disturbance.h"

namespace samples
{

namespace
{

using std::chrono::nanoseconds;

constexpr nanoseconds longest_tick = std::chrono::seconds(1);

/** Samples in a frame of an audio coding. */
double samples_per_frame(int coding)
{
    switch (coding)
    {
    case SMGR_TDEMUX_COMPRESSION_TYPE_AC3: return 1536;
    case SMGR_TDEMUX_COMPRESSION_TYPE_MP1: return 384;
    case SMGR_TDEMUX_COMPRESSION_TYPE_MP2:
    case SMGR_TDEMUX_COMPRESSION_TYPE_MP3: return 1152;
    default: return 1024;
    }
}

} // namespace

/** Lets packets through so that as many as usual stay. */
long Simulation::Queue::pass(long in, long wobble)
{
    const long stay = std::max(0L, usual + wobble);
    const long out = std::max(0L, now + in - stay);
    now += in - out;
    return out;
}

Simulation::Simulation(std::string_view scenario, std::uint64_t seed, Moment start) : now_(start), random_(seed)
{
    const SAMPLES_SCENARIO* found = samples_find(std::string(scenario).c_str());
    if (found == nullptr) throw std::invalid_argument("no scenario is called " + std::string(scenario));

    now_s_ = std::chrono::floor<std::chrono::seconds>(start).time_since_epoch().count();
    found->pFill(&r_, now_s_);
    stands_still_ = scenario == "extreme";
    if (!stands_still_) learn();
}

Simulation::Simulation(const Variant& variant, std::uint64_t seed, Moment start) : Simulation(variant.scenario, seed, start)
{
    if (!flows_) throw std::invalid_argument("nothing flows in the scenario " + std::string(variant.scenario));
    reshape(variant);
}

void Simulation::learn()
{
    const auto& demux = r_.tTDemux;
    first_ = r_;
    up_time_at_start_ = demux.nUpTimeInSecs;
    srt_ = demux.enEncapsulation == SMGR_STREAM_ENCAPSULATION_TS_SRT;
    fec_ = demux.enEncapsulation == SMGR_STREAM_ENCAPSULATION_TS_RTP && demux.enFECType == SMGR_FEC_TYPE_PRO_MPEG;
    flows_ = demux.enState == SMGR_TDEMUX_STATS_STATE_ACTIVE;

    if (demux.tCounters.nNumReceivedPackets != 0)
    {
        datagram_bytes_ = static_cast<double>(demux.tCounters.nNumReceivedBytes) / static_cast<double>(demux.tCounters.nNumReceivedPackets);
        datagram_rate_ = demux.tCounters.nBitsPerSecond / 8.0 / datagram_bytes_;
    }
    if (!flows_) return;

    const auto& clock = r_.tClockRecovery;
    pcr_rate_ = clock.OldDeltaSnd > 0 ? 90000.0 / static_cast<double>(clock.OldDeltaSnd) : 0;
    pcr_at_start_ = demux.nPCR;
    stc_behind_ = clock.OldDeltaClk;

    learn_flows();

    const auto& decoder = r_.tVideoDecoder.tCounters;
    reordering_.now = reordering_.usual = static_cast<long>(decoder.nNumReorderFramesQOcc);
    undisplayed_.now = undisplayed_.usual = r_.tVideoDecoder.nVCurBDListLen;

    const auto& timecode = r_.tMetadata.tCounters.tTCValue;
    const long base = std::lround(r_.tVFramer.tCurrentProperties.fFrameRate / 2);
    timecode_at_start_ = ((timecode.nTCHours * 60L + timecode.nTCMinutes) * 60 + timecode.nTCSeconds) * base + timecode.nTCFrames;
}

void Simulation::learn_flows()
{
    streams_.clear();
    for (std::size_t i = 0; i < SMGR_TDEMUX_MAX_SOURCES; ++i)
    {
        const auto& source = r_.tTDemux.tSources[i];
        if (source.tCounters.nNumReceivedPackets == 0) continue;

        Flow flow;
        flow.source = i;
        flow.bytes = static_cast<double>(source.tCounters.nNumReceivedBytes) / static_cast<double>(source.tCounters.nNumReceivedPackets);
        flow.rate = source.tCounters.nBitsPerSecond / 8.0 / flow.bytes;
        if (source.enType == SMGR_TDEMUX_DATA_TYPE_VIDEO)
        {
            flow.rate = r_.tVFramer.tCurrentProperties.fFrameRate;
            flow.decoding.now = static_cast<long>(r_.tVideoDecoder.tCounters.nCurPushedQueueOccupancy);
        }
        else if (source.enType == SMGR_TDEMUX_DATA_TYPE_AUDIO)
        {
            flow.pair = source.nAudioPairNum - 1;
            const auto& pair = r_.tAudio.PairStats[flow.pair];
            flow.rate = pair.nSampleRateIn / samples_per_frame(pair.enAlgorithm);
            flow.decoding.now = static_cast<long>(pair.nReceivedFrames - pair.nDecodedFrames);
            flow.queued.now = pair.nOutQueueLength;
            flow.played_at_start = pair.nAudioTimeStamp;
            shown_at_start_ = pair.nVideoTimeStamp;
        }
        else
            flow.queued.now = static_cast<long>(r_.tMetadata.tChannel[0].tCounters.nNumInPacketList);
        flow.ticks = 90000 / flow.rate;
        flow.pts_at_start = static_cast<long>(source.nPTS);
        flow.held.now = flow.held.usual = r_.tBuffering.tChannel[i].nQueueOccupancyFrames;
        flow.held_bytes = flow.bytes * static_cast<double>(flow.held.now);
        flow.decoding.usual = flow.decoding.now;
        flow.queued.usual = flow.queued.now;
        streams_.push_back(flow);
    }
}

void Simulation::advance(nanoseconds duration)
{
    for (nanoseconds left = duration; left > nanoseconds::zero();)
    {
        const nanoseconds step = std::min(left, longest_tick);
        now_ += step;
        elapsed_ += step;
        now_s_ = std::chrono::floor<std::chrono::seconds>(now_).time_since_epoch().count();
        if (!stands_still_) tick(step);
        left -= step;
    }
}

void Simulation::tick(nanoseconds duration)
{
    tick_ = duration;
    const double seconds = seconds_of(duration);
    const Disturbance d = disturbance();
    if (d.hung) return;

    if (r_.tTDemux.bStreamHasBeenStarted)
    {
        r_.tTDemux.nUpTimeInSecs =
            up_time_at_start_ + static_cast<unsigned long>(std::chrono::floor<std::chrono::seconds>(elapsed_).count());
    }
    if (r_.tUsage.nNumGetStats != 0) COUNT(r_.tUsage, nNumGetStats, tLastGetStat, take(due_queries_, seconds / 60));

    if (r_.tTDemux.enState == SMGR_TDEMUX_STATS_STATE_RESOLVING) wait_for_name();
    if (datagram_rate_ <= 0) return;

    receive(d, seconds);
    if (!flows_) return suffer();

    clocks(d, seconds);
    read_tables(d);
    demultiplex(d, seconds);
    buffer(d, seconds);
}

/** Lookups fail one after another. */
void Simulation::wait_for_name()
{
    constexpr unsigned long lookup = 5; // [s]
    auto& counters = r_.tTDemux.tCounters;
    const unsigned long lookups = r_.tTDemux.nUpTimeInSecs / lookup;
    if (lookups == counters.nNumErrors) return;
    counters.nNumErrors = lookups;
    counters.tLastError = now_s_;
    counters.iLastErrorTime = now_s_;
}

/** A link that nothing gets through to the demux on: bursts of losses, and the clocks drift apart. */
void Simulation::suffer()
{
    auto& demux = r_.tTDemux;
    auto& link = demux.Xport.SRT;
    const long usual = std::lround(1e6 / datagram_rate_);
    demux.tCounters.nRxPacketToPacketIntervalUs = static_cast<unsigned long>(usual + noise(usual / 4));
    demux.tCounters.nExternalRxPacketToPacketIntervalUs = static_cast<unsigned long>(usual + noise(usual / 4));
    if (chance(1.0 / 20, 1))
    {
        const long lost = 20 + std::abs(noise(180));
        const long late = lost / 6;
        link.nLostPkts += static_cast<unsigned long>(lost);
        link.nXmitNakPkts += static_cast<unsigned long>(lost * 3 / 4);
        link.nDroppedPkts += static_cast<unsigned long>(late);
        link.nDroppedBytes += static_cast<unsigned long>(late) * static_cast<unsigned long>(datagram_bytes_);
        demux.tCounters.nRxPacketToPacketIntervalUs = static_cast<unsigned long>(20000 + 1000 * std::abs(noise(60)));
        demux.tCounters.nExternalRxPacketToPacketIntervalUs = demux.tCounters.nRxPacketToPacketIntervalUs;
        RAISE(demux.tCounters, nRxPacketToPacketIntervalUs, nMaxRxPacketToPacketIntervalUs, tMaxRxPacketToPacketInterval);
        RAISE(demux.tCounters, nExternalRxPacketToPacketIntervalUs, nMaxExternalRxPacketToPacketIntervalUs,
              tMaxExternalRxPacketToPacketInterval);
    }
    auto& buffering = r_.tBuffering;
    const long behind =
        first_.tBuffering.nSTCtoPCRLeadTimeMs + static_cast<long>(std::chrono::floor<std::chrono::milliseconds>(elapsed_).count());
    buffering.nSTCtoPCRLeadTimeMs = static_cast<int>(std::min<long>(behind, INT_MAX));
    buffering.nSTC = wrapped(static_cast<long>(buffering.nPCR) + behind * ticks_per_ms);
}

void Simulation::inject(std::string_view fault, nanoseconds after, nanoseconds lasts)
{
    const Fault* found = find_fault(fault);
    if (found == nullptr) throw std::invalid_argument("no fault is called " + std::string(fault));
    injections_.push_back({found, elapsed_ + after, elapsed_ + after + lasts});
}

Disturbance Simulation::disturbance() const
{
    Disturbance disturbance;
    for (const Injection& injection : injections_)
    {
        if (injection.from < elapsed_ && elapsed_ <= injection.until) injection.fault->disturb(disturbance);
    }
    return disturbance;
}

/* ---- chance ---- */

/** SplitMix64: 64 bits of state, and any seed is as good as another. */
std::uint64_t Simulation::random()
{
    random_ += 0x9E3779B97F4A7C15;
    std::uint64_t z = random_;
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EB;
    return z ^ (z >> 31);
}

/** @return -range to range, the middle more often than the ends */
long Simulation::noise(long range)
{
    const auto span = static_cast<std::uint64_t>(range) + 1;
    const std::uint64_t bits = random();
    return static_cast<long>((bits >> 32) % span) - static_cast<long>((bits & 0xFFFFFFFF) % span);
}

/** @return 0 to 1 */
double Simulation::fraction()
{
    return static_cast<double>(random() >> 11) * 0x1p-53;
}

bool Simulation::chance(double per_second, double seconds)
{
    return fraction() < per_second * seconds;
}

/** Whether a moment that comes again and again lies in this tick. */
bool Simulation::is_every(nanoseconds period) const
{
    return elapsed_ / period != (elapsed_ - tick_) / period;
}

/** Kind of a stream, whether the program still lists it or not. */
int Simulation::type_of(const Flow& flow) const
{
    return first_.tTDemux.tSources[flow.source].enType;
}

/** @return the whole packets of a share, what is left over is kept for the next time */
long Simulation::share(double part, long of, double& carry)
{
    return part > 0 ? take(carry, part * static_cast<double>(of)) : 0;
}

} // namespace samples
