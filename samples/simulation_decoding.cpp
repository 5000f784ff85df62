/** @file simulation_decoding.cpp A simulation from the buffer to the outputs. */
#include <algorithm>
#include <cmath>

#include "simulation.h"
#include "simulation_counting.h"
#include "simulation_disturbance.h"

namespace samples
{

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
        const auto type = type_of(flow);
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

} // namespace samples
