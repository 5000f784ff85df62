#include "simulation.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cmath>
#include <stdexcept>
#include <string>
#include <utility>

#include "simulation_disturbance.h"

namespace samples
{

namespace
{

using std::chrono::nanoseconds;

constexpr long ticks_per_ms = 90;
constexpr unsigned long ticks_wrap = 1UL << 33; /**< width of PTS and PCR, ISO/IEC 13818-1 */
constexpr double arrival_jitter = 0.008;        /**< of what the network delivers [s] */
constexpr nanoseconds longest_tick = std::chrono::seconds(1);

/** Adds to a counter, and sets its time where something was counted. Fields of packed records take no references. */
#define COUNT(record, number, time, n)                                               \
    do                                                                               \
    {                                                                                \
        if (const long counted_ = (n); counted_ > 0)                                 \
        {                                                                            \
            (record).number += static_cast<decltype((record).number + 0)>(counted_); \
            (record).time = now_s_;                                                  \
        }                                                                            \
    } while (false)

/** Lifts a maximum to its gauge. */
#define RAISE(record, gauge, maximum, time)    \
    do                                         \
    {                                          \
        if ((record).gauge > (record).maximum) \
        {                                      \
            (record).maximum = (record).gauge; \
            (record).time = now_s_;            \
        }                                      \
    } while (false)

/** Lowers a minimum to its gauge. */
#define LOWER(record, gauge, minimum, time)    \
    do                                         \
    {                                          \
        if ((record).gauge < (record).minimum) \
        {                                      \
            (record).minimum = (record).gauge; \
            (record).time = now_s_;            \
        }                                      \
    } while (false)

/** The whole part of what is due. @param due what is left over from before, and afterwards */
long take(double& due, double amount)
{
    due += amount;
    const long whole = static_cast<long>(std::floor(std::max(due, 0.0)));
    due -= static_cast<double>(whole);
    return whole;
}

double seconds_of(nanoseconds duration)
{
    return std::chrono::duration<double>(duration).count();
}

unsigned long wrapped(long ticks)
{
    return static_cast<unsigned long>(ticks) % ticks_wrap;
}

/** A sum of ints, at most the largest: a counter of 32 bits stays there. */
int sum(int counter, long n)
{
    return static_cast<int>(std::min<long>(counter + n, INT_MAX));
}

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

/* ---- network and link ---- */

void Simulation::receive(const Disturbance& d, double seconds)
{
    due_datagrams_ += datagram_rate_ * d.arriving * seconds;
    double lag = fraction() * arrival_jitter;
    if (d.bunched > 0) lag = std::fmod(seconds_of(elapsed_), d.bunched); // all of a bunch comes at its end
    const long sent = std::max(0L, static_cast<long>(std::floor(due_datagrams_ - lag * datagram_rate_ * d.arriving)));
    due_datagrams_ -= static_cast<double>(sent);

    auto& demux = r_.tTDemux;
    auto& counters = demux.tCounters;
    gone_ = d.gone;
    if (flows_ && !srt_) demux.enState = d.calling ? SMGR_TDEMUX_STATS_STATE_CONNECTING : SMGR_TDEMUX_STATS_STATE_ACTIVE;
    if (d.reconnects && is_every(std::chrono::seconds(8)))
    {
        COUNT(counters, nNumReconnections, tLastReconnection, 1);
        gone_ = 0.2; // what was under way when it broke
    }
    if (d.errors && chance(0.7, seconds))
    {
        COUNT(counters, nNumErrors, tLastError, 1);
        counters.iLastError = ENOBUFS;
        counters.iLastErrorTime = now_s_;
    }
    const long received = link(d, sent, seconds);

    COUNT(counters, nNumReceivedPackets, tLastReceivedPacket, received);
    counters.nNumReceivedBytes += static_cast<unsigned long>(std::llround(static_cast<double>(received) * datagram_bytes_));
    const double silence = silence_;
    silence_ = received > 0 ? 0 : silence_ + seconds;
    if (received > 0) counters.iLastRxTime = now_s_;

    if (!flows_) return;
    if (received > 0)
    {
        double gap = d.bunched > 0 ? d.bunched * 1e6 : 1e6 / datagram_rate_ * (0.8 + 0.4 * fraction());
        if (silence > 0.5) gap = silence * 1e6;
        counters.nRxPacketToPacketIntervalUs = static_cast<unsigned long>(gap);
        counters.nExternalRxPacketToPacketIntervalUs = static_cast<unsigned long>(gap * (0.9 + 0.2 * fraction()));
    }
    RAISE(counters, nRxPacketToPacketIntervalUs, nMaxRxPacketToPacketIntervalUs, tMaxRxPacketToPacketInterval);
    RAISE(counters, nExternalRxPacketToPacketIntervalUs, nMaxExternalRxPacketToPacketIntervalUs, tMaxExternalRxPacketToPacketInterval);

    const double measured = silence_ > 1 ? 0 : datagram_rate_ * d.arriving * datagram_bytes_ * 8;
    counters.nBitsPerSecond = static_cast<unsigned>(measured * (1 + 0.0005 * static_cast<double>(noise(4))));
    const auto& was = first_.tTDemux.tCounters;
    counters.nInputPacketListSize =
        was.nInputPacketListSize + static_cast<unsigned long>(datagram_bytes_) * static_cast<unsigned long>(noise(3) + 3);
    RAISE(counters, nInputPacketListSize, nMaxInputPacketListSize, tMaxInputPacketListSize);
    const long overflown = share(d.demux_overflow, received, carries_[0]);
    if (overflown > 0)
    {
        COUNT(counters, nInputPacketListOverflows, tLastInputPacketListOverflow, 1 + overflown / 64);
        counters.nInputPacketListSize = counters.nMaxInputPacketListSize;
        COUNT(counters, nNumDroppedPackets, tLastDroppedPacket, overflown);
        counters.nNumDroppedBytes += static_cast<unsigned long>(static_cast<double>(overflown) * datagram_bytes_);
        gone_ += static_cast<double>(overflown) / static_cast<double>(std::max(1L, received));
    }
}

/** @return datagrams that reach the demux */
long Simulation::link(const Disturbance& d, long sent, double seconds)
{
    if (srt_) return srt(d, sent, seconds);
    if (d.fec_off)
        r_.tTDemux.enFECType = SMGR_FEC_TYPE_NONE;
    else if (fec_)
        return fec(d, sent);
    const long gone = share(d.gone + d.lost, sent, carries_[1]);
    COUNT(r_.tTDemux.tCounters, nNumLostSegmentsRTP, tLastLostSegmentRTP, gone);
    return sent - gone;
}

long Simulation::srt(const Disturbance& d, long sent, double seconds)
{
    auto& link = r_.tTDemux.Xport.SRT;
    const auto& was = first_.tTDemux.Xport.SRT;
    auto& counters = r_.tTDemux.tCounters;

    long lost = share(d.lost + d.gone, sent, carries_[1]);
    if (flows_ && sent > 0 && chance(1.0 / 1800, seconds)) lost += 1 + std::abs(noise(4)); // a burst that is sent again in time
    const long gone = std::min(lost, share(d.gone, sent, carries_[2]));
    link.nLostPkts += static_cast<unsigned long>(lost);
    link.nXmitNakPkts += static_cast<unsigned long>((lost + 2) / 3);
    link.nDroppedPkts += static_cast<unsigned long>(gone);
    link.nDroppedBytes += static_cast<unsigned long>(static_cast<double>(gone) * datagram_bytes_);
    const long received = sent - gone;
    link.Dir.Rx.nRecvPkts += static_cast<unsigned long>(received);
    link.Dir.Rx.nRecvBytes += static_cast<unsigned long>(std::llround(static_cast<double>(received) * datagram_bytes_));
    if (sent > 0) link.nXmitAckPkts += static_cast<unsigned long>(take(due_acks_, 100 * seconds));
    link.Dir.Rx.nRecvKbps = static_cast<unsigned long>(counters.nBitsPerSecond / 1000);

    link.iRTT = static_cast<int>(was.iRTT * d.round_trip * (1 + 0.01 * static_cast<double>(noise(4))));
    const long buffered = sent > 0 ? std::max(0L, was.iBufPkts + noise(static_cast<long>(was.iBufPkts / 12 + 1))) : 0;
    link.iBufPkts = static_cast<int>(buffered);
    link.iBufBytes = static_cast<int>(static_cast<double>(buffered) * datagram_bytes_);
    link.iBufTimespan = sent > 0 ? was.iBufTimespan : 0;
    link.iKeyState = d.key_state >= 0 ? d.key_state : was.iKeyState;

    const bool opaque = d.undecryptable || !flows_;
    if (flows_)
        r_.tTDemux.enState = opaque      ? SMGR_TDEMUX_STATS_STATE_SCRAMBLED
                             : d.calling ? SMGR_TDEMUX_STATS_STATE_CONNECTING
                                         : SMGR_TDEMUX_STATS_STATE_ACTIVE;
    if (opaque)
    {
        link.Dir.Rx.nUndecryptedPkts += static_cast<unsigned long>(received);
        link.Dir.Rx.nUndecryptedBytes += static_cast<unsigned long>(std::llround(static_cast<double>(received) * datagram_bytes_));
        COUNT(counters, nNumDroppedPackets, tLastDroppedPacket, received);
        counters.nNumDroppedBytes += static_cast<unsigned long>(std::llround(static_cast<double>(received) * datagram_bytes_));
        gone_ = 1;
    }
    return received;
}

long Simulation::fec(const Disturbance& d, long sent)
{
    auto& fec = r_.tTDemux.Xport.PMFEC;
    auto& counters = r_.tTDemux.tCounters;
    const bool rebuilds = !d.without_fec;

    long lost = share(d.lost + d.gone, sent, carries_[1]);
    if (sent > 0 && !d.fec_in_vain && chance(1.0 / 900, static_cast<double>(sent) / datagram_rate_)) lost += 1 + std::abs(noise(2));
    lost = std::min(lost, sent);
    const long gone = rebuilds ? std::min(lost, share(d.gone, sent, carries_[2])) : lost;
    if (d.fec_in_vain) fec.nDroppedPkts = fec.nRecoveredPkts = fec.nLostPkts = 0;
    fec.nMediaPkts = sum(fec.nMediaPkts, sent - lost);
    fec.nDroppedPkts = sum(fec.nDroppedPkts, lost);
    fec.nRecoveredPkts = sum(fec.nRecoveredPkts, lost - gone);
    fec.nLostPkts = sum(fec.nLostPkts, gone);
    if (rebuilds)
    {
        const long packets = take(due_fec_, static_cast<double>(sent) / std::max(1, fec.nRows));
        fec.nColFecPkts = sum(fec.nColFecPkts, packets);
        if (fec.bRowFEC) fec.nRowFecPkts = sum(fec.nRowFecPkts, packets);
    }
    COUNT(counters, nNumLostSegmentsRTP, tLastLostSegmentRTP, lost);
    gone_ = sent > 0 ? static_cast<double>(gone) / static_cast<double>(sent) : 0;
    return sent - lost;
}

/* ---- transport stream and clocks ---- */

void Simulation::clocks(const Disturbance& d, double seconds)
{
    auto& demux = r_.tTDemux;
    auto& clock = r_.tClockRecovery;
    auto& buffering = r_.tBuffering;
    const auto& was = first_.tClockRecovery;

    const bool readable = silence_ < 0.5 && gone_ < 0.5;
    const long n = readable && !d.without_pcr ? take(due_pcrs_, pcr_rate_ * seconds) : 0;
    if (n > 0)
    {
        const unsigned long before = demux.nPCR;
        pcrs_ += n;
        if (d.pcr_jumps && is_every(std::chrono::seconds(5)))
        {
            clock.PcrJump = 700 + noise(200);
            clock.tLastPcrJump = now_s_;
            if (clock.PcrJump > clock.PcrJumpMaxValue)
            {
                clock.PcrJumpMaxValue = clock.PcrJump;
                clock.tLastPcrJumpMaxValue = now_s_;
            }
            clock.ReSyncCount = sum(clock.ReSyncCount, 1);
            pcr_at_start_ += static_cast<unsigned long>(clock.PcrJump * ticks_per_ms);
            for (Flow& flow : streams_) flow.pts_at_start += clock.PcrJump * ticks_per_ms;
            COUNT(buffering.tCounters, nNumResets, tLastReset, 1);
        }
        demux.nPCR = wrapped(static_cast<long>(pcr_at_start_) + pcrs_ * was.OldDeltaSnd);
        demux.tLastPCR = now_s_;
        if (demux.nPCR < before) COUNT(demux.tCounters, nNumTimestampRollovers, tLastTimestampRollover, 1);

        COUNT(clock, PcrUpdates, tLastPcrUpdate, n);
        clock.SampleCount = sum(clock.SampleCount, n);
        COUNT(buffering.tCounters, nNumPCRUpdates, tLastPCRUpdate, n);
        buffering.tCounters.nNumPCRPackets += static_cast<unsigned long>(n);
        if (d.pcr_jitters)
        {
            clock.pcrJitterErrCount = sum(clock.pcrJitterErrCount, 1 + n / 10);
            clock.pcrJitterErr = static_cast<int>(45 + noise(15));
            clock.pcrJitterMaxErrValue = std::max(clock.pcrJitterMaxErrValue, clock.pcrJitterErr);
        }
    }
    else if (d.without_pcr && readable)
    {
        pcrs_ += take(due_pcrs_, pcr_rate_ * seconds); // the sender's clock runs on
        clock.pcrLateCount = sum(clock.pcrLateCount, 1);
        clock.pcrLateMaxValue = static_cast<int>(std::clamp<long>((now_s_ - clock.tLastPcrUpdate) * 1000, clock.pcrLateMaxValue, INT_MAX));
    }

    stc_drift_ = std::clamp(stc_drift_ + noise(1), -90L, 90L); // the loop keeps it within a millisecond
    const long pcr = static_cast<long>(demux.nPCR);
    const unsigned long stc = wrapped(pcr - stc_behind_ + stc_drift_ + static_cast<long>(ticks_wrap));
    buffering.nPCR = demux.nPCR;
    buffering.nSTC = stc;
    buffering.nSTCtoPCRLeadTimeMs = static_cast<int>((stc_drift_ - stc_behind_) / ticks_per_ms);
    COUNT(buffering.tCounters, nNumSTCUpdates, tLastSTCUpdate, n > 0 ? take(due_stc_updates_, seconds / 10) : 0);

    clock.OldSndClk = pcr;
    clock.OldRcvClk = static_cast<long>(stc);
    clock.OldDeltaClk = stc_behind_ - stc_drift_;
    clock.curPcr = pcr;
    clock.curPcrFpga = static_cast<long>(stc);
    clock.curPcrFpgaDelta = pcr - static_cast<long>(stc);
    clock.OldPll = was.OldPll + d.deviation + noise(d.unlocked ? 900 : 2);
    clock.curPllAvg = was.curPllAvg + d.deviation + (d.unlocked ? noise(300) : 0);
    clock.curPllMin = was.curPllMin + d.deviation - (d.unlocked ? 900 : 0);
    clock.curPllMax = was.curPllMax + d.deviation + (d.unlocked ? 900 : 0);
    clock.PllNotSettled = d.unlocked ? 1 : was.PllNotSettled;
    clock.curPLLDevHz = clock.curPllAvg - clock.StcClkNominal;
    clock.curPLLDevPpm = clock.curPLLDevHz / 27;
    clock.curPLLDevPpmFract = std::abs(clock.curPLLDevHz) * 100 / 27 % 100;
    clock.curPLLDevPpmNominal = (clock.OldPll - clock.StcClkNominal) / 27;
    clock.pcrTsDelta = was.pcrTsDelta + noise(40);
}

void Simulation::demultiplex(const Disturbance& d, double seconds)
{
    auto& demux = r_.tTDemux;
    auto& counters = demux.tCounters;
    gone_ = std::min(1.0, gone_ + d.ts_gone);

    const double datagrams = datagram_rate_ * seconds * d.arriving;
    const long hit = share(std::min(1.0, d.corrupted + gone_), gone_ < 1 ? static_cast<long>(datagrams) + 1 : 0, carries_[3]);
    if (gone_ > 0) COUNT(counters, nNumLostSegmentsMPEG2TS, tLastLostSegmentMPEG2TS, share(0.4, hit, carries_[4]));
    COUNT(counters, nNumTSCorruptedFrames, tLastTSCorruptedFrame, share(d.corrupted > 0 ? 0.5 : 0.3, hit, carries_[5]));
    if (counters.tLastTSCorruptedFrame == now_s_) counters.iLastCorruptedFrameTime = now_s_;
    if (d.corrupted > 0) COUNT(counters, nNumPESSizeMismatches, tLastPESSizeMismatch, share(0.2, hit, carries_[6]));

    const bool readable = silence_ < 0.5 && gone_ < 1;
    double lag = fraction() * arrival_jitter;
    if (d.bunched > 0) lag = std::fmod(seconds_of(elapsed_), d.bunched);
    for (Flow& flow : streams_)
    {
        auto& source = demux.tSources[flow.source];
        const bool missing = (source.enType == SMGR_TDEMUX_DATA_TYPE_VIDEO && d.without_video) ||
                             (source.enType == SMGR_TDEMUX_DATA_TYPE_AUDIO && d.without_audio) ||
                             (source.enType == SMGR_TDEMUX_DATA_TYPE_KLV && d.without_klv);
        flow.due_in += flow.rate * seconds * d.arriving;
        long n = std::max(0L, static_cast<long>(std::floor(flow.due_in - lag * flow.rate)));
        flow.due_in -= static_cast<double>(n);
        flow.received += n; // by the time stamps
        if (!readable || missing || d.demux_stalled) n = 0;

        const double bytes = static_cast<double>(n) * flow.bytes * (1 + 0.01 * static_cast<double>(flow.pair < 0 ? noise(5) : 0));
        const auto whole = static_cast<unsigned long>(std::llround(bytes));
        COUNT(source.tCounters, nNumReceivedPackets, tLastReceivedPacket, n);
        source.tCounters.nNumReceivedBytes += whole;
        const bool passes = !d.scrambled;
        if (d.scrambled && demux.enState == SMGR_TDEMUX_STATS_STATE_ACTIVE) demux.enState = SMGR_TDEMUX_STATS_STATE_SCRAMBLED;
        if (passes)
        {
            COUNT(source.tCounters, nNumOutputPackets, tLastOutputPacket, n);
            source.tCounters.nNumOutputBytes += whole;
            if (n > 0) source.tCounters.iLastTxTime = now_s_;
            COUNT(counters, nNumOutputPackets, tLastOutputPacket, n);
            counters.nNumOutputBytes += whole;
            auto& channel = r_.tBuffering.tChannel[flow.source].tCounters;
            channel.nNumReceivedPackets += static_cast<unsigned long>(n);
            COUNT(r_.tBuffering.tCounters, nNumReceivedPackets, tLastReceivedPacket, n);
            flow.held.now += n;
            flow.held_bytes += static_cast<double>(whole);
        }
        else
        {
            COUNT(counters, nNumDroppedPackets, tLastDroppedPacket, n);
            counters.nNumDroppedBytes += whole;
            counters.iLastPIDDropped = static_cast<int>(source.tsPid);
        }
        source.tCounters.nBitsPerSecond = n > 0 || lag * flow.rate > 1 ? static_cast<unsigned>(flow.rate * flow.bytes * 8 + 0.5) : 0;
        if (n == 0) continue;
        const long late = d.late_pts ? 600 * ticks_per_ms : 0;
        source.nPTS = wrapped(flow.pts_at_start - late + std::lround(static_cast<double>(flow.received) * flow.ticks));
        source.nDTS = source.enType == SMGR_TDEMUX_DATA_TYPE_VIDEO
                          ? wrapped(static_cast<long>(source.nPTS) - std::lround(flow.ticks) + static_cast<long>(ticks_wrap))
                          : source.nPTS;
        if (d.late_pts) COUNT(counters, nNumFramesWithPTSLowerThanPCR, tLastFrameWithPTSLowerThanPCR, n);
        if (d.without_pcr) COUNT(counters, nNumFramesWithNoPCR, tLastFrameWithNoPCR, n);
    }
    if (!streams_.empty()) counters.TimeStamp = demux.tSources[streams_.front().source].nPTS;
}

/* ---- buffering ---- */

void Simulation::buffer(const Disturbance& d, double seconds)
{
    auto& buffering = r_.tBuffering;
    auto& counters = buffering.tCounters;
    double held_bytes = 0;
    for (Flow& flow : streams_)
    {
        const double bytes_before = flow.held_bytes;
        const long held_before = flow.held.now;
        const long released = release(d, flow, seconds);
        held_bytes += flow.held_bytes;
        auto& channel = buffering.tChannel[flow.source];
        channel.nQueueOccupancyFrames = static_cast<unsigned>(flow.held.now);
        channel.tCounters.nMaxQueueOccupancyFrames = std::max(channel.tCounters.nMaxQueueOccupancyFrames, channel.nQueueOccupancyFrames);
        channel.nJitterTimeMsActual =
            static_cast<UINT>(std::max(1L, first_.tBuffering.tChannel[flow.source].nJitterTimeMsActual + noise(3)));
        channel.nJitterTimeMsMaximum = std::max(channel.nJitterTimeMsMaximum, channel.nJitterTimeMsActual);
        channel.nPCRtoPTSTimeMsActual =
            first_.tBuffering.tChannel[flow.source].nPCRtoPTSTimeMsActual + static_cast<int>(noise(2)) - (d.late_pts ? 600 : 0);
        if (released > 0)
        {
            const long last = flow.received - flow.held.now;
            channel.TimeStamp =
                wrapped(flow.pts_at_start + std::lround(static_cast<double>(last) * flow.ticks) + static_cast<long>(ticks_wrap));
        }
        const auto type = r_.tTDemux.tSources[flow.source].enType;
        if (type == SMGR_TDEMUX_DATA_TYPE_VIDEO)
        {
            const double mean = held_before > 0 ? bytes_before / static_cast<double>(held_before) : flow.bytes;
            const long given = d.framer_starved ? 0 : released;
            decode(d, frame(d, given, mean * static_cast<double>(given)), seconds);
        }
        else if (type == SMGR_TDEMUX_DATA_TYPE_AUDIO)
            play(d, flow, released, seconds);
        else
        {
            const long out = d.metadata_stalled ? 0 : flow.queued.pass(released, released > 0 ? noise(1) : -flow.queued.usual);
            metadata(d, SMGR_METADATA_CHANNEL_TYPE_KLV, released, out, released, out);
        }
    }
    sum_audio();
    timecode(d);

    counters.nBufferingOccupancyBytes = static_cast<unsigned long>(std::llround(std::max(0.0, held_bytes)));
    RAISE(counters, nBufferingOccupancyBytes, nMaxBufferingOccupancyBytes, tMaxBufferingOccupancyBytes);

    const auto& was = first_.tBuffering;
    buffering.tAutomatic.nNonVideoLateMs = was.tAutomatic.nNonVideoLateMs + static_cast<int>(noise(4));
    buffering.tAutomatic.nVideoDecoderJitterMs =
        static_cast<UINT>(std::max(1L, static_cast<long>(was.tAutomatic.nVideoDecoderJitterMs) + noise(3)));
    RAISE(buffering.tAutomatic, nVideoDecoderJitterMs, nVideoDecoderJitterMaxMs, tVideoDecoderJitterMax);
    if (d.too_small) buffering.nMinDelayMs = buffering.nSetDelayMs + 90;
    if (d.too_large)
        for (auto& channel : buffering.tChannel)
            if (channel.tCounters.nNumReceivedPackets != 0) channel.nTotalOutputLatencyMs = buffering.nMaxDelayMs + 700;
    buffering.enStatus = d.multisync != 0 ? static_cast<SMGR_CBUFFERING_STATUS>(d.multisync) : was.enStatus;
    if (d.multisync == SMGR_CBUFFERING_STATUS_MULTISYNC_ERROR_TIMECODE_NOT_PRESENT) buffering.tMultiSync.bTimecodePresent = FALSE;
    if (d.multisync < 0) buffering.tMultiSync.bTimecodeValid = FALSE;
}

/** What leaves the buffering controller, by the clock. */
long Simulation::release(const Disturbance& d, Flow& flow, double seconds)
{
    auto& buffering = r_.tBuffering;
    auto& counters = buffering.tCounters;
    auto& channel = buffering.tChannel[flow.source];

    const long overflown = std::min(flow.held.now, share(d.overflow, take(carries_[7], flow.rate * seconds), carries_[8]));
    if (overflown > 0)
    {
        flow.held_bytes -= flow.held_bytes * static_cast<double>(overflown) / static_cast<double>(flow.held.now);
        flow.held.now -= overflown;
        COUNT(counters, nNumDroppedPackets, tLastDroppedPacket, overflown);
        COUNT(counters, nBufferingOverflows, tLastBufferingOverflow, 1);
    }

    if (flow.filling && flow.held.now >= flow.held.usual) flow.filling = false;
    long due = take(flow.due_out, flow.rate * seconds);
    if (flow.filling || d.buffer_stalled) due = 0;
    const long released = std::min(due, flow.held.now);
    if (released < due) flow.filling = true;
    if (d.bunched > 0 && released < due)
    {
        COUNT(counters, nNumLateOutputs, tLastLateOutput, due - released);
        counters.nMaxLateOutputMs = std::max(counters.nMaxLateOutputMs, static_cast<int>(d.bunched * 500));
    }
    // With what was not there, the buffer would never shrink again.
    const long surplus = flow.held.now - released - 3 * flow.held.usual - static_cast<long>(flow.rate);
    const long out = d.buffer_stalled ? 0 : released + std::max(0L, surplus);
    const long late = share(d.late_release, out, carries_[17]);
    COUNT(counters, nNumLateOutputs, tLastLateOutput, late);
    if (late > 0) counters.nMaxLateOutputMs = std::max(counters.nMaxLateOutputMs, 80 + static_cast<int>(noise(30)));

    if (flow.held.now > 0) flow.held_bytes -= flow.held_bytes * static_cast<double>(out) / static_cast<double>(flow.held.now);
    flow.held.now -= out;
    channel.tCounters.nNumOutputPackets += static_cast<unsigned long>(out);
    if (out > 0) channel.tLastOutputTime = now_s_;
    COUNT(counters, nNumOutputPackets, tLastOutputPacket, out);
    if (d.late_pts && out > 0)
    {
        COUNT(counters, nNumLateOutputs, tLastLateOutput, out);
        counters.nMaxLateOutputMs = std::max(counters.nMaxLateOutputMs, 450);
    }
    return out;
}

/* ---- video ---- */

void Simulation::count_framed(const Disturbance& d, long framed, long key_frames)
{
    auto& counters = r_.tVFramer.tCounters;
    const auto& properties = r_.tVFramer.tCurrentProperties;
    COUNT(counters, nNumOutputFrames, tLastOutputFrame, framed);
    COUNT(counters, nNumOutputFramesOnePiece, tLastOutputFrameOnePiece, framed);
    COUNT(counters, nNumSPSNALs, tLastSPSNAL, key_frames);
    COUNT(counters, nNumPPSNALs, tLastPPSNAL, key_frames);
    if (counters.nNumVPSNALs != 0) COUNT(counters, nNumVPSNALs, tLastVPSNAL, key_frames);
    COUNT(counters, nNumSEINALs, tLastSEINAL, framed + key_frames * (counters.nNumVPSNALs != 0 ? 2 : 1));
    COUNT(counters, nNumSHNALs, tLastSHNAL, framed * properties.nSliceCountPerFrame);
    COUNT(counters, nNumAUDNALs, tLastAUDNAL, framed);
    if (properties.bInterlaced)
    {
        COUNT(counters, nNumInterlacedPicStruct, tLastInterlacedPicStruct, framed);
        COUNT(counters, nNumInterlacedBothFields, tLastInterlacedBothFields, framed);
    }
    else
        COUNT(counters, nNumProgressivePicStruct, tLastProgressivePicStruct, framed);
    if (d.metadata_stalled) return;
    if (counters.nNumCC != 0)
    {
        counters.nNumCCBytesOutput += counters.nNumCCBytesOutput / counters.nNumCC * static_cast<unsigned long>(framed);
        COUNT(counters, nNumCC, tLastCCReceived, framed);
    }
    if (counters.nNumTC != 0)
    {
        counters.nNumTCBytesOutput += counters.nNumTCBytesOutput / counters.nNumTC * static_cast<unsigned long>(framed);
        COUNT(counters, nNumTC, tLastTCReceived, framed);
    }
}

/** @return pictures that go on to the decoder */
long Simulation::frame(const Disturbance& d, long pictures, double bytes)
{
    auto& framer = r_.tVFramer;
    auto& counters = framer.tCounters;
    auto& properties = framer.tCurrentProperties;
    const auto gop = std::max(1UL, +properties.nGopInterval);
    const auto anchor = properties.nNumberOfBPicturesInARow + 1UL;

    if (pictures > 0) counters.tLastVideoFrameReceived = now_s_;
    counters.fInputFrameRate = pictures > 0 || streams_.front().rate * 0.5 < 1 ? first_.tVFramer.tCounters.fInputFrameRate : 0;
    const double per_picture = datagram_rate_ / std::max(1.0, streams_.front().rate);
    const double hit = std::min(1.0, gone_ * per_picture);
    const long unframed = std::min(pictures, share(std::min(1.0, d.unframed + 0.25 * hit), pictures, carries_[9]));
    long framed = pictures - unframed;

    framer.enState = d.unsupported ? SMGR_VFRAMER_STATE_UNSUPPORTED : first_.tVFramer.enState;
    if (d.unsupported)
    {
        if (counters.nLastUnsupportedErrorCode == 0)
        {
            COUNT(counters, nNumUnsupported, tLastUnsupported, 1);
            COUNT(counters, nNumFormatTransitions, tLastFormatTransition, 1);
            counters.nLastUnsupportedErrorCode = SMGR_ERROR_UNSUPPORTED_VIDEO_FORMAT;
            properties.nWidth = 4096;
            properties.nHeight = 2304;
        }
        framed = 0;
    }
    if (d.framer_stalled) framed = 0;
    const long overflown = share(d.framer_overflow, pictures, carries_[18]);
    if (overflown > 0 && framed > 0)
    {
        framed -= std::min(framed, overflown);
        COUNT(counters, nInputPacketListOverflows, tLastInputPacketListOverflow, 1);
    }
    if (d.format_changes && is_every(std::chrono::seconds(3)))
    {
        COUNT(counters, nNumFormatTransitions, tLastFormatTransition, 1);
        framer.tPreviousProperties = properties;
        properties.nWidth = properties.nWidth == 1920 ? 1280 : 1920;
        properties.nHeight = properties.nWidth == 1920 ? 1080 : 720;
    }

    long keys = 0;
    for (long i = 0; i < pictures; ++i)
    {
        const unsigned long k = counters.nNumInputPackets + static_cast<unsigned long>(i);
        if (i >= framed) continue;
        const bool key = k % gop == 0;
        keys += key;
        COUNT(counters, nNumKeyFrames, tLastKeyFrame, key);
        COUNT(counters, nNumIPictures, tLastIPicture, key);
        COUNT(counters, nNumPPictures, tLastPPicture, !key && k % anchor == 0);
        COUNT(counters, nNumBPictures, tLastBPicture, !key && k % anchor != 0);
    }
    counters.nNumInputPackets += static_cast<unsigned long>(pictures);
    counters.nNumInputPacketsFreed += static_cast<unsigned long>(pictures);
    if (d.unsupported)
        COUNT(counters, nNumInputPacketsDropped, tLastInputPacketDropped, pictures);
    else if (pictures > framed)
    {
        COUNT(counters, nNumOutputFramesDropped, tLastOutputFrameDropped, pictures - framed);
        counters.nNumOutputBytesDropped +=
            static_cast<unsigned long>(bytes * static_cast<double>(pictures - framed) / static_cast<double>(pictures));
        COUNT(counters, nNumSHErrors, tLastSHError, unframed);
    }
    if (framed > 0)
    {
        counters.nNumOutputBytesToDecoder +=
            static_cast<unsigned long>(std::llround(bytes * static_cast<double>(framed) / static_cast<double>(pictures)));
        properties.TimeStamp = r_.tBuffering.tChannel[streams_.front().source].TimeStamp;
    }
    count_framed(d, framed, keys);
    return framed;
}

void Simulation::decode(const Disturbance& d, long pictures, double seconds)
{
    auto& decoder = r_.tVideoDecoder;
    auto& counters = decoder.tCounters;
    const auto& was = first_.tVideoDecoder;
    Flow& flow = streams_.front();

    if (d.decoder_starved) pictures = 0;
    COUNT(counters, nNumReceivedFrames, tLastReceivedFrame, pictures);
    long dropped = share(d.dropped, pictures, carries_[10]);
    if (d.no_memory || d.stalled) dropped = d.no_memory ? pictures : 0;
    dropped = std::min(dropped, pictures);
    COUNT(counters, nNumDroppedFrames, tLastDroppedFrame, dropped);
    COUNT(counters, nNumDroppedPFrames, tLastDroppedPFrame, dropped);
    const long sent = pictures - dropped;
    COUNT(counters, nNumFramesSentToDecoder, tLastFrameSentToDecoder, sent);
    COUNT(counters, nNumInputParsedCallbacks, tLastInputParsedCallback, sent);

    const bool runs = pictures > 0 && sent > 0 && !d.stalled;
    long decoded = 0;
    if (d.stalled)
        flow.decoding.now = std::min(flow.decoding.now + sent, 64L);
    else
        decoded = flow.decoding.pass(sent, runs ? std::max(noise(1), -flow.decoding.usual) : -flow.decoding.usual);
    COUNT(counters, nNumDecodedFrames, tLastDecodedFrame, decoded);
    COUNT(counters, nNumReceivedFramesFreed, tLastReceivedFrameFreed, decoded + dropped);
    COUNT(counters, nNumDecodedCallbacks, tLastDecodedCallback, decoded);
    COUNT(counters, nNumSEICallbacks, tLastSEICallback, decoded);
    counters.nCurPushedQueueOccupancy = static_cast<unsigned long>(flow.decoding.now);
    counters.nMaxPushedQueueOccupancy = std::max(+counters.nMaxPushedQueueOccupancy, +counters.nCurPushedQueueOccupancy);

    const double per_picture = datagram_rate_ / std::max(1.0, flow.rate);
    const double hit = std::min(1.0, (gone_ + d.corrupted) * per_picture);
    const long concealed = std::min(decoded, share(std::min(1.0, d.concealed + 0.75 * hit), decoded, carries_[11]));
    COUNT(counters, nNumConcealedFrames, tLastConcealedFrame, concealed);

    COUNT(counters, nNumReorderFramesIn, tLastReorderFrameIn, decoded);
    COUNT(counters, nNumReorderFramesExtractCalls, tLastReorderFramesExtractCall, decoded);
    const long ordered = reordering_.pass(decoded, decoded > 0 ? std::max(noise(1), -reordering_.usual) : -reordering_.usual);
    COUNT(counters, nNumReorderFramesOut, tLastReorderFrameOut, ordered);
    counters.nNumReorderFramesQOcc = static_cast<unsigned long>(reordering_.now);
    decoder.nVCurReOrderLen = static_cast<UINT>(reordering_.now);
    decoder.nVMaxReOrderLen = std::max(decoder.nVMaxReOrderLen, decoder.nVCurReOrderLen);

    decoder.enState = d.no_memory ? SMGR_VCUDEC_STATE_IDLE_VCU_LACK_OF_MEMORY : was.enState;
    decoder.nLoadPercentage = pictures > 0 ? std::clamp(was.nLoadPercentage + static_cast<int>(noise(2)), 0, 100) : 0;
    if (d.overloaded) decoder.nLoadPercentage = static_cast<int>(99 + noise(1));
    const long slower = d.overloaded ? 90 : 0;
    decoder.nVDelayInputMS =
        static_cast<UINT>(std::clamp<long>(was.nVDelayInputMS + noise(4), was.nVMinDelayInputMS, was.nVMaxDelayInputMS));
    decoder.nVDelayOutputMS =
        static_cast<UINT>(std::clamp<long>(was.nVDelayOutputMS + noise(10), was.nVMinDelayOutputMS, was.nVMaxDelayOutputMS) + slower);
    decoder.nVDelayOutputMSAvg = static_cast<UINT>(was.nVDelayOutputMSAvg + slower);
    decoder.nVKeyDecDelayMS = was.nVKeyDecDelayMS + static_cast<unsigned long>(noise(2) + 2 + slower);

    metadata(d, SMGR_METADATA_CHANNEL_TYPE_CC, pictures, ordered, ordered, -1);
    metadata(d, SMGR_METADATA_CHANNEL_TYPE_TC, pictures, ordered, ordered, -1);
    show(d, d.output_starved ? 0 : ordered, seconds);
}

void Simulation::show(const Disturbance& d, long pictures, double seconds)
{
    auto& decoder = r_.tVideoDecoder;
    auto& counters = decoder.tCounters;
    COUNT(counters, nNumFramesSentToDisplay, tLastFrameSentToDisplay, pictures);
    COUNT(counters, nNumDisplayCallbacks, tLastDisplayCallback, pictures);
    undisplayed_.now += pictures;

    const long skipped = std::min(undisplayed_.now, share(d.skipped, pictures, carries_[12]));
    COUNT(counters, nNumSkippedOutputFrames, tLastSkippedOutputFrame, skipped);
    const long refused = std::min(undisplayed_.now - skipped, share(d.output_errors, pictures, carries_[19]));
    COUNT(counters, nNumOutputErrors, tLastOutputError, refused);
    undisplayed_.now -= skipped + refused;
    COUNT(counters, nNumOutputLate, tLastOutputLate, share(d.late_pts ? 1 : d.late, pictures, carries_[13]));

    // Having run empty, the output waits until as many pictures as usual are there.
    if (starved_ && undisplayed_.now >= undisplayed_.usual) starved_ = false;
    const long due = take(due_shown_, streams_.front().rate * d.output_clock * seconds);
    const long shown = starved_ || d.frozen ? 0 : std::min(due, undisplayed_.now);
    if (undisplayed_.now - shown > 4 * undisplayed_.usual + 8 && !d.frozen)
    {
        const long surplus = undisplayed_.now - shown - undisplayed_.usual;
        COUNT(counters, nNumSkippedOutputFrames, tLastSkippedOutputFrame, surplus);
        undisplayed_.now -= surplus;
    }
    const long again = due - shown;
    if (due > 0 && shown == 0) starved_ = true;
    undisplayed_.now -= shown;
    if (d.frozen) undisplayed_.now = std::min(undisplayed_.now, 4 * undisplayed_.usual);
    shown_ += shown;
    COUNT(counters, nNumDisplayedOutputFrames, tLastDisplayedOutputFrame, shown);
    COUNT(counters, nNumDisplayedFramesFreed, tLastDisplayedFrameFreed, shown);
    COUNT(counters, nNumReplayedOutputFrames, tLastReplayedOutputFrame, d.frozen ? 0 : again);
    if (again + skipped > 0) r_.tBuffering.tAutomatic.tLastVideoSkipReplayTime = now_s_;
    decoder.nVCurBDListLen = static_cast<UINT>(undisplayed_.now);
    decoder.nVMaxBDListLen = std::max(decoder.nVMaxBDListLen, decoder.nVCurBDListLen);

    const long lead = d.late_pts || d.late > 0 ? -30 + noise(20) : static_cast<long>(r_.tBuffering.nSetDelayMs) - decoder.nVDelayOutputMS;
    counters.nOutputSTCLeadTime = static_cast<int>(lead);
    LOWER(counters, nOutputSTCLeadTime, nMinOutputSTCLeadTime, tMinOutputSTCLeadTime);
    RAISE(counters, nOutputSTCLeadTime, nMaxOutputSTCLeadTime, tMaxOutputSTCLeadTime);
    for (const int type : {SMGR_METADATA_CHANNEL_TYPE_CC, SMGR_METADATA_CHANNEL_TYPE_TC})
    {
        auto& channel = r_.tMetadata.tChannel[type].tCounters;
        if (channel.nNumInputPackets == 0 || d.metadata_stalled) continue;
        COUNT(channel, nNumBDFreed, tLastBDFreed, std::min(shown + skipped, static_cast<long>(channel.nNumBDInUsedList)));
        channel.nNumBDInUsedList = channel.nNumBDAllocated - channel.nNumBDFreed;
    }
}

/* ---- audio ---- */

void Simulation::play(const Disturbance& d, Flow& flow, long frames, double seconds)
{
    auto& pair = r_.tAudio.PairStats[flow.pair];
    const auto& was = first_.tAudio.PairStats[flow.pair];
    if (d.audio_starved) frames = 0;
    COUNT(pair, nReceivedFrames, tLastReceivedFrame, frames);

    long decoded = 0;
    long failed = 0;
    if (!d.audio_stalled)
    {
        decoded = flow.decoding.pass(frames, frames > 0 ? 0 : -flow.decoding.usual);
        const double hit = std::min(1.0, gone_ * datagram_rate_ * flow.bytes / datagram_bytes_ / std::max(1.0, datagram_rate_) * 4);
        failed = std::min(decoded, share(std::min(1.0, d.audio_errors + hit), decoded, carries_[15]));
        decoded -= failed;
    }
    else
        flow.decoding.now = std::min(flow.decoding.now + frames, 128L);
    COUNT(pair, nDecoderErrors, tLastDecoderError, failed);
    COUNT(pair, nDecodedFrames, tLastDecodedFrame, decoded);
    pair.nDecodedBytes += static_cast<unsigned long>(decoded) * static_cast<unsigned long>(std::lround(flow.bytes));
    flow.queued.now += decoded;

    const long skipped = std::min(flow.queued.now, share(d.audio_skipped, decoded, carries_[16]));
    COUNT(pair, nSkippedFrames, tLastSkippedFrame, skipped);
    if (skipped > 0) r_.tBuffering.tAutomatic.tLastAudioSkipTime = now_s_;
    flow.queued.now -= skipped;
    const long due = take(flow.due_played, flow.rate * seconds);
    const long played = std::min(due, flow.queued.now);
    flow.queued.now -= played;
    flow.played += due;
    COUNT(pair, nOutputFrames, tLastOutputFrame, played);
    pair.nOutQueueLength = static_cast<unsigned>(flow.queued.now);
    pair.nMaxOutQueueLen = std::max(pair.nMaxOutQueueLen, pair.nOutQueueLength);
    pair.nCurFpgaReadId = (pair.nCurFpgaReadId + static_cast<unsigned>(played)) % 64;
    pair.nCurFpgaWteId = (pair.nCurFpgaReadId + pair.nOutQueueLength) % 64;
    if (d.audio_discontinuous && frames > 0)
    {
        ++pair.nTSDiscontinuity;
        ++pair.nInTSDiscontinuity;
    }

    if (played > 0)
    {
        pair.nAudioTimeStamp = static_cast<unsigned>(flow.played_at_start + std::lround(static_cast<double>(flow.played) * flow.ticks));
        // What is on the screen by the same clock, within a picture.
        const long difference = was.iAudioVideoTSDiffInMs + noise(6) + d.lip_sync;
        pair.iAudioVideoTSDiffInMs = static_cast<int>(difference);
        pair.nVideoTimeStamp = pair.nAudioTimeStamp - static_cast<unsigned>(difference * ticks_per_ms);
        pair.tLastIntervalTime = {.tv_sec = now_s_ - 1, .tv_nsec = 970000000 + noise(20) * 1000000};
    }
    if (frames > 0) pair.tLastRxFrameTime = {.tv_sec = now_s_ - 1, .tv_nsec = 980000000 + noise(15) * 1000000};
    pair.nCurSTCLeadTimeMs = was.nCurSTCLeadTimeMs + static_cast<int>(noise(3));
    LOWER(pair, nCurSTCLeadTimeMs, nMinSTCLeadTimeMs, tMinSTCLeadTime);
    RAISE(pair, nCurSTCLeadTimeMs, nMaxSTCLeadTimeMs, tMaxSTCLeadTime);
    pair.nLastProcessTimeUs = std::max(300, was.nLastProcessTimeUs + static_cast<int>(noise(60)));
    LOWER(pair, nLastProcessTimeUs, nMinProcessTimeUs, tMinProcessTime);
    RAISE(pair, nLastProcessTimeUs, nMaxProcessTimeUs, tMaxProcessTime);
}

void Simulation::sum_audio()
{
    auto& audio = r_.tAudio;
    unsigned long received = 0;
    unsigned long decoded = 0;
    unsigned long played = 0;
    unsigned long skipped = 0;
    unsigned errors = 0;
    unsigned queued = 0;
    unsigned discontinuities = 0;
    bool any = false;
    for (const Flow& flow : streams_)
    {
        if (flow.pair < 0) continue;
        const auto& pair = audio.PairStats[flow.pair];
        any = true;
        received += pair.nReceivedFrames;
        decoded += pair.nDecodedFrames;
        played += pair.nOutputFrames;
        skipped += pair.nSkippedFrames;
        errors += pair.nDecoderErrors;
        queued += pair.nOutQueueLength;
        discontinuities += pair.nTSDiscontinuity;
    }
    if (!any) return;
    COUNT(audio, nReceivedFrames, tLastReceivedFrame, static_cast<long>(received - audio.nReceivedFrames));
    COUNT(audio, nDecodedFrames, tLastDecodedFrame, static_cast<long>(decoded - audio.nDecodedFrames));
    COUNT(audio, nReleasedFrames, tLastReleasedFrame, static_cast<long>(decoded - audio.nReleasedFrames));
    COUNT(audio, nOutputFrames, tLastOutputFrame, static_cast<long>(played - audio.nOutputFrames));
    COUNT(audio, nSkippedFrames, tLastSkippedFrame, static_cast<long>(skipped - audio.nSkippedFrames));
    audio.nErrors = errors;
    audio.nPendingDecodeRequests = static_cast<unsigned>(received - decoded - errors);
    audio.nCurDecodedQueueLength = queued;
    audio.nTSDiscontinuity = discontinuities;
    audio.nARxFramesJitterMS = static_cast<UINT>(std::max(1L, first_.tAudio.nARxFramesJitterMS + noise(2)));
}

/* ---- metadata ---- */

/** @param freed packets whose descriptors are given back; -1 = when their picture has been shown */
void Simulation::metadata(const Disturbance& d, int type, long in, long out, long written, long freed)
{
    auto& decoder = r_.tMetadata;
    auto& counters = decoder.tChannel[type].tCounters;
    const auto& was = first_.tMetadata.tChannel[type].tCounters;
    if (was.nNumInputPackets == 0) return;
    if (d.metadata_stalled) out = written = freed = 0;

    COUNT(counters, nNumInputPackets, tLastInputPacket, in);
    COUNT(counters, nNumSynchronousPackets, tLastSynchronousPacket, in);
    decoder.tCounters.nNumReceivedPackets += static_cast<unsigned long>(in);
    counters.nNumOutputPayloadBytes +=
        counters.nNumOutputPayloadBytes / std::max(1UL, +counters.nNumOutputPackets) * static_cast<unsigned long>(out);
    const long dropped = std::min(out, share(d.metadata_dropped, out, carries_[20]));
    COUNT(counters, nNumDroppedPackets, tLastDroppedPacket, dropped);
    out -= dropped;
    COUNT(counters, nNumOutputPackets, tLastOutputPacket, out);
    COUNT(counters, nNumFreedPackets, tLastFreedPacket, out);
    if (out > 0) counters.tLastOutputTime = now_s_;
    COUNT(counters, nNumBDAllocated, tLastBDAllocated, written);
    COUNT(counters, nNumBDWritten, tLastBDWritten, written);
    COUNT(counters, nNumBDFreed, tLastBDFreed, freed);
    const unsigned long used = counters.nNumBDAllocated - counters.nNumBDFreed;
    const unsigned long descriptors = was.nNumBDInFreeList + was.nNumBDInUsedList;
    counters.nNumBDInUsedList = used;
    counters.nNumBDInFreeList = descriptors > used ? descriptors - used : 0;
    counters.nBDUsedListHeadIndex = static_cast<int>(counters.nNumBDFreed % descriptors);
    counters.nBDFreeListHeadIndex = static_cast<int>(counters.nNumBDAllocated % descriptors);
    counters.nNumInPacketList = counters.nNumInputPackets - counters.nNumOutputPackets - counters.nNumDroppedPackets;
    counters.nNumInDelayList = counters.nNumInPacketList;
    counters.nCurrentDelayInPackets = used;
    counters.nOutputSTCLeadTime = was.nOutputSTCLeadTime + static_cast<int>(noise(4));
    LOWER(counters, nOutputSTCLeadTime, nMinOutputSTCLeadTime, tMinOutputSTCLeadTime);
    RAISE(counters, nOutputSTCLeadTime, nMaxOutputSTCLeadTime, tMaxOutputSTCLeadTime);
}

void Simulation::timecode(const Disturbance& d)
{
    auto& multisync = r_.tBuffering.tMultiSync;
    const auto& was = first_.tBuffering.tMultiSync;
    if (!was.bTimecodePresent || d.metadata_stalled || d.multisync == SMGR_CBUFFERING_STATUS_MULTISYNC_ERROR_TIMECODE_NOT_PRESENT) return;

    constexpr long day = 86400000; // [ms]
    const long passed = std::chrono::floor<std::chrono::milliseconds>(elapsed_).count();
    const long jitter = noise(2);
    multisync.nTimecodeInMs = static_cast<int>((was.nTimecodeInMs + passed) % day);
    multisync.nTransmissionTimeMs = was.nTransmissionTimeMs + static_cast<int>(jitter);
    multisync.nSystemTimeInMs = static_cast<int>((multisync.nTimecodeInMs + multisync.nTransmissionTimeMs) % day);
    const auto framed = static_cast<long>(r_.tVFramer.tCounters.nNumTC - first_.tVFramer.tCounters.nNumTC);
    COUNT(multisync.tCounters, nNumTCPackets, tLastTCReceived,
          static_cast<long>(was.tCounters.nNumTCPackets) + framed - static_cast<long>(multisync.tCounters.nNumTCPackets));
    if (d.multisync != 0) COUNT(multisync.tCounters, nNumTCPacketsInvalid, tLastInvalidTCReceived, 1);

    const long base = std::max(1L, std::lround(r_.tVFramer.tCurrentProperties.fFrameRate / 2));
    const long frames = timecode_at_start_ + framed / 2;
    auto& value = r_.tMetadata.tCounters.tTCValue;
    value.nTCFrames = static_cast<UINT>(frames % base);
    value.nTCSeconds = static_cast<UINT>(frames / base % 60);
    value.nTCMinutes = static_cast<UINT>(frames / base / 60 % 60);
    value.nTCHours = static_cast<UINT>(frames / base / 3600 % 24);
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

/** @return the whole packets of a share, what is left over is kept for the next time */
long Simulation::share(double part, long of, double& carry)
{
    return part > 0 ? take(carry, part * static_cast<double>(of)) : 0;
}

/* ---- faults and variants ---- */

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

void Simulation::reshape(const Variant& variant)
{
    SAMPLES_RECORDS idle;
    samples_find("idle")->pFill(&idle, now_s_);
    if (!variant.video) remove_video(idle);
    if (!variant.audio) remove_audio(idle);

    auto& demux = r_.tTDemux;
    auto& properties = r_.tVFramer.tCurrentProperties;
    const double rate = variant.picture_rate_numerator == 0
                            ? static_cast<double>(properties.fFrameRate)
                            : static_cast<double>(variant.picture_rate_numerator) / variant.picture_rate_denominator;
    learn_flows();
    const double total = variant.bit_rate == 0 ? demux.tCounters.nBitsPerSecond : variant.bit_rate;
    if (variant.bit_rate != 0)
    {
        demux.tCounters.nBitsPerSecond = variant.bit_rate;
        first_.tTDemux.tCounters.nBitsPerSecond = variant.bit_rate;
        datagram_rate_ = total / 8 / datagram_bytes_;
    }

    // Audio takes what it took, but a third of the stream at most; the video has the rest.
    double audio = 0;
    double klv = 0;
    for (const Flow& flow : streams_)
    {
        const auto type = demux.tSources[flow.source].enType;
        if (type == SMGR_TDEMUX_DATA_TYPE_AUDIO) audio += flow.rate * flow.bytes * 8;
        if (type == SMGR_TDEMUX_DATA_TYPE_KLV) klv += flow.rate * flow.bytes * 8;
    }
    const double shrink = audio > 0 ? std::min(1.0, total * 0.3 / audio) : 1;
    for (Flow& flow : streams_)
    {
        auto& source = demux.tSources[flow.source];
        const double delay = static_cast<double>(flow.held.usual) / flow.rate;
        if (source.enType == SMGR_TDEMUX_DATA_TYPE_VIDEO)
        {
            flow.rate = rate;
            flow.ticks = 90000 / rate;
            flow.bytes = std::max(100.0, (total * 0.95 - audio * shrink - klv) / 8 / rate);
            properties.fFrameRate = static_cast<float>(rate);
            properties.TimeStampDelta = static_cast<unsigned long>(std::lround(flow.ticks));
            properties.nBitsPerSecond = static_cast<unsigned>(flow.bytes * rate * 8);
            r_.tVFramer.tCounters.fInputFrameRate = static_cast<float>(rate);
        }
        else if (source.enType == SMGR_TDEMUX_DATA_TYPE_AUDIO)
        {
            flow.bytes *= shrink;
            r_.tAudio.PairStats[flow.pair].nBitRateInKbps = static_cast<int>(flow.bytes * flow.rate * 8 / 1000);
        }
        source.tCounters.nBitsPerSecond = static_cast<unsigned>(flow.rate * flow.bytes * 8 + 0.5);

        // The delay stays, so as many packets more or fewer are held.
        const long held = std::max(1L, static_cast<long>(std::ceil(delay * flow.rate)));
        const auto more = static_cast<unsigned long>(held - flow.held.now);
        source.tCounters.nNumReceivedPackets += more;
        source.tCounters.nNumOutputPackets += more;
        demux.tCounters.nNumOutputPackets += more;
        auto& channel = r_.tBuffering.tChannel[flow.source];
        channel.tCounters.nNumReceivedPackets += more;
        channel.nQueueOccupancyFrames = static_cast<unsigned>(held);
        channel.tCounters.nMaxQueueOccupancyFrames = static_cast<unsigned>(held) + 3;
        r_.tBuffering.tCounters.nNumReceivedPackets += more;
        flow.held.now = flow.held.usual = held;
        flow.held_bytes = flow.bytes * static_cast<double>(held);
    }
    first_ = r_;
}

void Simulation::remove_video(const SAMPLES_RECORDS& idle)
{
    auto& demux = r_.tTDemux;
    r_.tVFramer = idle.tVFramer;
    r_.tVideoDecoder = idle.tVideoDecoder;
    for (auto& channel : r_.tMetadata.tChannel)
        if (channel.enType != SMGR_METADATA_CHANNEL_TYPE_KLV) channel = idle.tMetadata.tChannel[channel.enType];
    demux.tSources[0] = {};
    r_.tBuffering.tChannel[0] = {};
    demux.tCounters.nVideoStreams = 0;
    for (auto& pair : r_.tAudio.PairStats) pair.iAudioVideoTSDiffInMs = 0;
    sum_flows();
}

void Simulation::remove_audio(const SAMPLES_RECORDS& idle)
{
    auto& demux = r_.tTDemux;
    r_.tAudio = idle.tAudio;
    for (std::size_t i = 0; i < SMGR_TDEMUX_MAX_SOURCES; ++i)
    {
        if (demux.tSources[i].enType != SMGR_TDEMUX_DATA_TYPE_AUDIO) continue;
        demux.tSources[i] = {};
        r_.tBuffering.tChannel[i] = {};
    }
    demux.tCounters.nAudioStreams = 0;
    sum_flows();
}

/** Totals are sums of what is there. */
void Simulation::sum_flows()
{
    auto& demux = r_.tTDemux.tCounters;
    auto& buffering = r_.tBuffering.tCounters;
    demux.nNumStreams = demux.nVideoStreams + demux.nAudioStreams + demux.nKLVStreams;
    demux.nNumOutputPackets = demux.nNumOutputBytes = buffering.nNumReceivedPackets = buffering.nNumOutputPackets = 0;
    for (std::size_t i = 0; i < SMGR_TDEMUX_MAX_SOURCES; ++i)
    {
        demux.nNumOutputPackets += r_.tTDemux.tSources[i].tCounters.nNumOutputPackets;
        demux.nNumOutputBytes += r_.tTDemux.tSources[i].tCounters.nNumOutputBytes;
        buffering.nNumReceivedPackets += r_.tBuffering.tChannel[i].tCounters.nNumReceivedPackets;
        buffering.nNumOutputPackets += r_.tBuffering.tChannel[i].tCounters.nNumOutputPackets;
    }
    r_.tMetadata.tCounters.nNumReceivedPackets = 0;
    for (const auto& channel : r_.tMetadata.tChannel) r_.tMetadata.tCounters.nNumReceivedPackets += channel.tCounters.nNumInputPackets;
}

} // namespace samples
