/** @file simulation_input.cpp A simulation from the network to the elementary streams, and its clocks. */
#include <algorithm>
#include <cerrno>
#include <climits>
#include <cmath>

#include "simulation.h"
#include "simulation_counting.h"
#include "simulation_disturbance.h"

namespace samples
{

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
    const long buffered = sent > 0 ? std::max(0L, was.iBufPkts + noise(was.iBufPkts / 12L + 1)) : 0;
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

/** What the tables say that a program has: streams come to the records and go. */
void Simulation::read_tables(const Disturbance& d)
{
    auto& demux = r_.tTDemux;
    auto& counters = demux.tCounters;
    const bool known = !d.without_tables && !d.without_program;
    demux.nProgramNumber = known ? first_.tTDemux.nProgramNumber : 0;
    demux.nPcrPid = known ? first_.tTDemux.nPcrPid : 0;
    for (Flow& flow : streams_)
    {
        const int type = type_of(flow);
        const bool is_listed = !d.without_program && !(d.video_unlisted && type == SMGR_TDEMUX_DATA_TYPE_VIDEO) &&
                               !(d.audio_unlisted && type == SMGR_TDEMUX_DATA_TYPE_AUDIO);
        if (is_listed == flow.is_listed) continue;
        flow.is_listed = is_listed;
        auto& source = demux.tSources[flow.source];
        source = {};
        if (is_listed)
        {
            source = first_.tTDemux.tSources[flow.source];
            source.tCounters = {};
        }
        const unsigned change = is_listed ? 1 : ~0U; // unsigned, so it wraps to one less
        counters.nNumStreams += change;
        if (type == SMGR_TDEMUX_DATA_TYPE_VIDEO) counters.nVideoStreams += change;
        if (type == SMGR_TDEMUX_DATA_TYPE_AUDIO) counters.nAudioStreams += change;
        if (type == SMGR_TDEMUX_DATA_TYPE_KLV) counters.nKLVStreams += change;
        COUNT(counters, nNumNewStreamFlags, tLastNewStreamFlag, 1);
    }
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
        const bool missing = !flow.is_listed || (source.enType == SMGR_TDEMUX_DATA_TYPE_VIDEO && d.without_video) ||
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
        if (flow.is_listed)
            source.tCounters.nBitsPerSecond =
                n > 0 || lag * flow.rate > 1 ? static_cast<unsigned>(std::lround(flow.rate * flow.bytes * 8)) : 0;
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

} // namespace samples
