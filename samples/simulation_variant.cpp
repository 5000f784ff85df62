/** @file simulation_variant.cpp Healthy streams unlike the scenarios' own. */
#include <algorithm>
#include <cmath>

#include "simulation.h"
#include "simulation_counting.h"
#include "simulation_disturbance.h"

namespace samples
{

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
        source.tCounters.nBitsPerSecond = static_cast<unsigned>(std::lround(flow.rate * flow.bytes * 8));

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
