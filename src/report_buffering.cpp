// The buffering report: the delay that the controller applies, and what it measures of the delay that the chain needs.

#include "blocks.h"
#include "hostsvc.h"
#include "lines.h"
#include "wrapping.h"

static const char* _MultisyncRangeVerdict(const SMGR_CBUFFERING_MULTISYNC_STATS* pStats)
{
    if (pStats->nMultiSyncDelaySetMs > pStats->nMultiSyncDelayRangeMaxMs) return "Too High";
    if (pStats->nMultiSyncDelaySetMs >= pStats->nMultiSyncDelayRangeMinMs) return "In Range";
    return "Too Low";
}

void _PrintCBufferingMultisyncStatistics(const SMGR_CBUFFERING_MULTISYNC_STATS* pStats, STATS_LEVEL nLevel)
{
    const bool printAll = nLevel == STATS_LEVEL_DEBUG;
    const SMGR_CBUFFERING_MULTISYNC_COUNTERS& c = pStats->tCounters;
    const int nSystemTimeInMs = pStats->nSystemTimeInMs;
    const int nTimecodeInMs = pStats->nTimecodeInMs;
    char szBuffer[1024];
    char szBuffer2[1024];

    _PrintText("MultiSync Buffering\n");
    fprintf(stdout, "  %-22s: %ums (%s)\n", "MultiSync Delay Set", pStats->nMultiSyncDelaySetMs, _MultisyncRangeVerdict(pStats));
    fprintf(stdout, "  %-22s: %dms\n", "MultiSync Delay Actual", static_cast<int>(pStats->nMultiSyncDelayActualMs));
    fprintf(stdout, "  %-22s: [Min %dms, Max %dms]\n", "MultiSync Delay Range", static_cast<int>(pStats->nMultiSyncDelayRangeMinMs), static_cast<int>(pStats->nMultiSyncDelayRangeMaxMs));
    if (!printAll) return;

    fprintf(stdout, "  %-22s: %s (Valid=%s, Last Received=%s)\n", "TC Present", _YesOrNo(pStats->bTimecodePresent == TRUE), _YesOrNo(pStats->bTimecodeValid == TRUE), _GetElapsedTimeString(c.tLastTCReceived, szBuffer, sizeof szBuffer));
    fprintf(stdout, "  %-22s: %s\n", "TC Packets", FormatULONG(c.nNumTCPackets, szBuffer, sizeof szBuffer));
    fprintf(stdout, "  %-22s: %s (Last Received=%s)\n", "Invalid TC Packets", FormatULONG(c.nNumTCPacketsInvalid, szBuffer, sizeof szBuffer), _GetElapsedTimeString(c.tLastInvalidTCReceived, szBuffer2, sizeof szBuffer2));
    fprintf(stdout, "  %-22s: %sms\n", "System Time", FormatULONG(static_cast<unsigned long>(nSystemTimeInMs), szBuffer, sizeof szBuffer));
    fprintf(stdout, "  %-22s: %sms\n", "Timecode", FormatULONG(static_cast<unsigned long>(nTimecodeInMs), szBuffer, sizeof szBuffer));
    if (nSystemTimeInMs < nTimecodeInMs)
        fprintf(stdout, "  %-22s: -%sms\n", "System Time - TC", FormatULONG(static_cast<unsigned long>(_Difference(nTimecodeInMs, nSystemTimeInMs)), szBuffer, sizeof szBuffer));
    else
        fprintf(stdout, "  %-22s: %sms\n", "System Time - TC", FormatULONG(static_cast<unsigned long>(_Difference(nSystemTimeInMs, nTimecodeInMs)), szBuffer, sizeof szBuffer));
    fprintf(stdout, "  %-22s: %dms\n", "Transmission Time", pStats->nTransmissionTimeMs);
}

static void _PrintLatencyWithMaximum(const char* pTitle, const char* pNow, const char* pMaximum, time_t tMaximum)
{
    char szBuffer[1024];
    fprintf(stdout, "  %-22s: %sms (max=%sms occurred %s)\n", pTitle, pNow, pMaximum, _GetElapsedTimeString(tMaximum, szBuffer, sizeof szBuffer));
}

static void _PrintLeadTime(const char* pTitle, int nAverageMs, int nMinMs, int nMaxMs)
{
    fprintf(stdout, "  %-22s: %dms (Min=%dms, Max=%dms, Range=%dms)\n", pTitle, nAverageMs, nMinMs, nMaxMs, _Difference(nMaxMs, nMinMs));
}

void _PrintCBufferingAutomaticStatistics(const SMGR_CBUFFERING_AUTOMATIC_STATS* pStats)
{
    char szBuffer[1024];
    char szBuffer2[1024];

    fprintf(stdout, "  %-22s: %sms (last changed %s)\n", "Max Input Jitter", FormatULONG(pStats->nMaxInputJitterMs, szBuffer, sizeof szBuffer), _GetElapsedTimeString(pStats->tMaxInputJitterChanged, szBuffer2, sizeof szBuffer2));
    _PrintLatencyWithMaximum("Non-Video Late", FormatLONGLONG(pStats->nNonVideoLateMs, szBuffer, sizeof szBuffer), FormatLONGLONG(pStats->nNonVideoLateMaxMs, szBuffer2, sizeof szBuffer2), pStats->tNonVideoLateMax);
    _PrintLatencyWithMaximum("Video Decoder Latency", FormatULONG(pStats->nVideoDecoderLatencyMs, szBuffer, sizeof szBuffer), FormatULONG(pStats->nVideoDecoderLatencyMaxMs, szBuffer2, sizeof szBuffer2), pStats->tVideoDecoderLatencyMax);
    _PrintLatencyWithMaximum("Video Decoder Jitter", FormatULONG(pStats->nVideoDecoderJitterMs, szBuffer, sizeof szBuffer), FormatULONG(pStats->nVideoDecoderJitterMaxMs, szBuffer2, sizeof szBuffer2), pStats->tVideoDecoderJitterMax);
    fprintf(stdout, "  %-22s: %sms\n", "Hardware Delay", FormatULONG(pStats->nHardwareDelayMs, szBuffer, sizeof szBuffer));
    _PrintLeadTime("Video STC Lead Time", pStats->nVideoSTCLeadTimeAvgActualMs, pStats->nVideoSTCLeadTimeMinActualMs, pStats->nVideoSTCLeadTimeMaxActualMs);
    fprintf(stdout, "  %-22s: %s\n", "Last Video Skip/Replay", _GetElapsedTimeString(pStats->tLastVideoSkipReplayTime, szBuffer, sizeof szBuffer));
    _PrintLeadTime("Audio STC Lead Time", pStats->nAudioSTCLeadTimeAvgActualMs, pStats->nAudioSTCLeadTimeMinActualMs, pStats->nAudioSTCLeadTimeMaxActualMs);
    fprintf(stdout, "  %-22s: %s\n", "Last Audio Skip", _GetElapsedTimeString(pStats->tLastAudioSkipTime, szBuffer, sizeof szBuffer));
}

void _PrintCBufferingChannels(const SMGR_CBUFFERING_STATS* pStats, STATS_LEVEL nLevel)
{
    const bool printAll = nLevel == STATS_LEVEL_DEBUG;
    char szBuffer[1024];
    char szBuffer2[1024];
    char szBuffer3[1024];

    _PrintText("                         Jitter (ms)                                              Q-Level\n");
    _PrintText("Type    Output Pkts    Now / Set / Max    PCR-to-PTS   CBUF Delay    STC Lead    Now / Max   Time Stamp   Last Output\n");
    _PrintText("---------------------------------------------------------------------------------------------------------------------\n");
    for (const SMGR_CBUFFERING_CHANNEL_STATS& tChannel : pStats->tChannel)
    {
        if (!printAll && tChannel.tCounters.nNumReceivedPackets == 0) continue;
        fprintf(stdout, "%-7s %-12s  %4u / %-4u / %-4u  %-4d ms      %-4u ms       %-4d ms     %3u / %-3u    %-13ld    %s\n",
                SessMgr_GetTDemuxDataTypeString(tChannel.enType, szBuffer, sizeof szBuffer),
                FormatULONG(tChannel.tCounters.nNumOutputPackets, szBuffer2, sizeof szBuffer2),
                tChannel.nJitterTimeMsActual, tChannel.nJitterTimeMsSet, tChannel.nJitterTimeMsMaximum,
                tChannel.nPCRtoPTSTimeMsActual,
                tChannel.nBufferingDelayTimeMs,
                tChannel.nSTCLeadTimeMsSet,
                tChannel.nQueueOccupancyFrames, tChannel.tCounters.nMaxQueueOccupancyFrames,
                static_cast<long>(tChannel.TimeStamp),
                _GetElapsedTimeString(tChannel.tLastOutputTime, szBuffer3, sizeof szBuffer3));
    }
}

static void _PrintBufferingMode(const SMGR_CBUFFERING_STATS* pStats)
{
    char szBuffer[1024];
    char szBuffer2[1024];
    char szBuffer3[1024];
    const char* pMode = SessMgr_GetCBufferingModeString(pStats->enBufferingMode, szBuffer, sizeof szBuffer);

    if (pStats->enBufferingMode == SMGR_DECSDI_BUFFERING_FIXED)
        fprintf(stdout, "  %-22s: %s (%sms, %s - minimum is %sms)\n", "Buffering Mode", pMode, FormatULONG(pStats->nFixedDelayMs, szBuffer2, sizeof szBuffer2),
                pStats->nFixedDelayMs < pStats->nMinDelayMs ? "SET TOO LOW" : "OK", FormatULONG(pStats->nMinDelayMs, szBuffer3, sizeof szBuffer3));
    else
        fprintf(stdout, "  %-22s: %s\n", "Buffering Mode", pMode);
}

BOOL STATS_PrintForCBuffering(const SMGR_CBUFFERING_STATS* pStats, STATS_LEVEL nLevel)
{
    const bool printAll = nLevel == STATS_LEVEL_DEBUG;
    const SMGR_CBUFFERING_COUNTERS& c = pStats->tCounters;
    const int nLeadMs = pStats->nSTCtoPCRLeadTimeMs;
    char szBuffer[1024];
    char szBuffer2[1024];

    _PrintText("Buffering\n");
    _PrintBufferingMode(pStats);
    fprintf(stdout, "  %-22s: %s\n", "Buffering State", SessMgr_GetCBufferingStatusString(pStats->enStatus, szBuffer, sizeof szBuffer));
    if (printAll)
        fprintf(stdout, "  %-22s: %sms (Initial Set=%s)\n", "Video Latency", FormatULONG(pStats->tChannel[0].nTotalOutputLatencyMs, szBuffer, sizeof szBuffer), _YesOrNo(pStats->bBufferingDelaySet));
    else
        fprintf(stdout, "  %-22s: %sms\n", "Video Latency", FormatULONG(pStats->tChannel[0].nTotalOutputLatencyMs, szBuffer, sizeof szBuffer));
    if (printAll) fprintf(stdout, "  %-22s: %sms\n", "Maximum Delay", FormatULONG(pStats->nMaxDelayMs, szBuffer, sizeof szBuffer));
    if (printAll) _PrintCounterStatWithTiming("Received Packets", c.nNumReceivedPackets, c.tLastReceivedPacket);
    if (printAll) _PrintCounterStatWithTiming("Output Packets", c.nNumOutputPackets, c.tLastOutputPacket);
    if (printAll) _PrintCounterStatWithTiming("Dropped Packets", c.nNumDroppedPackets, c.tLastDroppedPacket);
    if (printAll) _PrintCounterStatWithTiming("Unknown Packets", c.nNumUnknownPackets, c.tLastUnknownPacket);
    if (printAll) fprintf(stdout, "  %-22s: %s\n", "PCR Packets", FormatULONG(c.nNumPCRPackets, szBuffer, sizeof szBuffer));
    if (printAll) fprintf(stdout, "  %-22s: %ld\n", "PCR", static_cast<long>(pStats->nPCR));
    if (printAll || c.nNumPCRUpdates) _PrintCounterStatWithTiming("PCR Updates", c.nNumPCRUpdates, c.tLastPCRUpdate);
    if (printAll) fprintf(stdout, "  %-22s: %ld\n", "STC", static_cast<long>(pStats->nSTC));
    if (printAll || c.nNumSTCUpdates) _PrintCounterStatWithTiming("STC Updates", c.nNumSTCUpdates, c.tLastSTCUpdate);
    if (printAll || c.nNumBufferingAdjustments) _PrintCounterStatWithTiming("Buffering Adjustments", c.nNumBufferingAdjustments, c.tLastBufferingAdjustmentTime);
    if (printAll || c.nNumSTCLeadTimeAdjustments) _PrintCounterStatWithTiming("STC Lead Time Adjusts", c.nNumSTCLeadTimeAdjustments, c.tLastSTCLeadTimeAdjustmentTime);
    if (printAll) _PrintCounterStatWithTiming("Buffering Resets", static_cast<unsigned long>(c.nNumResets), c.tLastReset);
    if (printAll) fprintf(stdout, "  %-22s: %sms (min=%sms)\n", "Decoder Set Delay", FormatULONG(pStats->nSetDelayMs, szBuffer, sizeof szBuffer), FormatULONG(pStats->nMinDelayMs, szBuffer2, sizeof szBuffer2));
    if (nLeadMs)
        fprintf(stdout, "  %-22s: %dms (STC is %s PCR by %dms)\n", "STC to PCR Lead Time", nLeadMs, nLeadMs < 1 ? "behind" : "ahead of", _AbsoluteValue(nLeadMs));
    else
        fprintf(stdout, "  %-22s: 0ms (STC is equal to PCR)\n", "STC to PCR Lead Time");
    if (printAll || c.nNumLateOutputs)
        fprintf(stdout, "  %-22s: %s (Last One: %s, Max Late=%dms, Max Burst=%d)\n", "Packets Sent Late", FormatULONG(c.nNumLateOutputs, szBuffer, sizeof szBuffer),
                _GetElapsedTimeString(c.tLastLateOutput, szBuffer2, sizeof szBuffer2), c.nMaxLateOutputMs, c.nMaxLateOutputBurstFrms);
    if (printAll) _PrintSizeWithMaximum("Buffering Occupancy", c.nBufferingOccupancyBytes, c.nMaxBufferingOccupancyBytes, c.tMaxBufferingOccupancyBytes);
    if (printAll || c.nBufferingOverflows) _PrintCounterStatWithTiming("Buffering Overflows", c.nBufferingOverflows, c.tLastBufferingOverflow);
    if (printAll || c.nSynthesizedAsyncTimestamps) _PrintCounterStatWithTiming("Synthesized Async PTS", c.nSynthesizedAsyncTimestamps, c.tLastSynthesizedAsyncTimestamp);
    if (printAll || c.nSynthesizedAsyncTimestampFails) _PrintCounterStatWithTiming("Synthesized APTS Fails", c.nSynthesizedAsyncTimestampFails, c.tLastSynthesizedAsyncTimestampFail);
    if (pStats->enBufferingMode == SMGR_DECSDI_BUFFERING_MULTISYNC) _PrintCBufferingMultisyncStatistics(&pStats->tMultiSync, nLevel);
    _PrintCBufferingAutomaticStatistics(&pStats->tAutomatic);
    if (printAll) _PrintCBufferingChannels(pStats, nLevel);
    return TRUE;
}
