// The audio decoder report, with a block for each audio pair that has decoded a frame.

#include "blocks.h"
#include "hostsvc.h"
#include "lines.h"
#include "wrapping.h"

void _PrintAudioChannel(const SMGR_AUDIO_PAIR_STATS* pPair, UINT nPairID, STATS_LEVEL nLevel)
{
    const bool printAll = nLevel == STATS_LEVEL_DEBUG;
    char szBuffer[1024];
    char szBuffer2[1024];

    if (pPair->nDecodedFrames == 0) return;

    fprintf(stdout, "  AUDIO PAIR #%u\n", nPairID + 1);
    fprintf(stdout, "    %-20s: %s\n", "Compression", SessMgr_GetTDemuxCompressionTypeString(pPair->enAlgorithm, szBuffer, sizeof szBuffer));
    // In kbit/s, as the record has it, although the service takes bit/s.
    fprintf(stdout, "    %-20s: %s\n", "Bit Rate", FormatBitRate(static_cast<unsigned int>(pPair->nBitRateInKbps), szBuffer, sizeof szBuffer));
    fprintf(stdout, "    %-20s: %dms (Video TS %u, Audio TS %u) \n", "A/V Sync", pPair->iAudioVideoTSDiffInMs, pPair->nVideoTimeStamp, pPair->nAudioTimeStamp);
    fprintf(stdout, "    %-20s: %u\n", "TS Discontinuities", pPair->nTSDiscontinuity);
    _PrintCounterStatWithTimingIndent2("Decoder Errors", pPair->nDecoderErrors, pPair->tLastDecoderError);
    _PrintCounterStatWithTimingIndent2("Output Errors", pPair->nOutputErrors, pPair->tLastOutputError);
    fprintf(stdout, "    %-20s: %u Hz\n", "Sample Rate In", static_cast<unsigned int>(pPair->nSampleRateIn));
    fprintf(stdout, "    %-20s: %u Hz\n", "Sample Rate Out", static_cast<unsigned int>(pPair->nSampleRateOut));
    if (!printAll) return;

    fprintf(stdout, "    %-20s: %u\n", "Audio Channels In", static_cast<unsigned int>(pPair->nInputChannels));
    fprintf(stdout, "    %-20s: %u\n", "Audio Channels Out", static_cast<unsigned int>(pPair->nOutputChannels));
    _PrintCounterStatWithTimingIndent2("Decoded Frames", pPair->nDecodedFrames, pPair->tLastDecodedFrame);
    _PrintCounterStatWithTimingIndent2("Played Output Frms", pPair->nOutputFrames, pPair->tLastOutputFrame);
    _PrintCounterStatWithTimingIndent2("Skipped Output Frms", pPair->nSkippedFrames, pPair->tLastSkippedFrame);
    fprintf(stdout, "    %-20s: %u frames (Max=%u frames)\n", "Output Queue", pPair->nOutQueueLength, pPair->nMaxOutQueueLen);
    fprintf(stdout, "    %-20s: %ums (Min=%ums, Max=%ums)\n", "Interval To Output", pPair->nLastWteToFpgaIntervalInMs, pPair->nMinWteToFpgaIntervalInMs, pPair->nMaxWteToFpgaIntervalInMs);
    fprintf(stdout, "    %-20s: %dms (Min=%dms occurred %s, Max=%dms occurred %s, Range=%dms)\n", "STC Lead Time", pPair->nCurSTCLeadTimeMs,
            pPair->nMinSTCLeadTimeMs, _GetElapsedTimeString(pPair->tMinSTCLeadTime, szBuffer, sizeof szBuffer),
            pPair->nMaxSTCLeadTimeMs, _GetElapsedTimeString(pPair->tMaxSTCLeadTime, szBuffer2, sizeof szBuffer2),
            _Difference(pPair->nMaxSTCLeadTimeMs, pPair->nMinSTCLeadTimeMs));
    fprintf(stdout, "    %-20s: %dus (Min=%dus occurred %s, Max=%dus occurred %s, Range=%dus)\n", "Process Time", pPair->nLastProcessTimeUs,
            pPair->nMinProcessTimeUs, _GetElapsedTimeString(pPair->tMinProcessTime, szBuffer, sizeof szBuffer),
            pPair->nMaxProcessTimeUs, _GetElapsedTimeString(pPair->tMaxProcessTime, szBuffer2, sizeof szBuffer2),
            _Difference(pPair->nMaxProcessTimeUs, pPair->nMinProcessTimeUs));
}

// Unlike the video decoder's, these shares keep four decimals when there is no output yet, and each hides at a count of 0.
static void _PrintOutcomes(const SMGR_DECODER_AUDIO_STATS* pStats, bool printAll)
{
    const unsigned long totalFrames = pStats->nOutputFrames + pStats->nSkippedFrames + pStats->nOutputErrors;
    if (totalFrames == 0) // also when the sum of three huge counts wraps to 0: there is no share of it
    {
        if (printAll) fprintf(stdout, "  %-22s: %s\n", "Played Output Frames", "0 [0.0000%] (Last One: Never)");
        if (printAll) fprintf(stdout, "  %-22s: %s\n", "Skipped Output Frames", "0 [0.0000%] (Last One: Never)");
        if (printAll) fprintf(stdout, "  %-22s: %s\n", "Output Errors", "0 [0.0000%] (Last One: Never)");
        return;
    }
    if (printAll || pStats->nOutputFrames) _PrintShare("Played Output Frames", pStats->nOutputFrames, pStats->tLastOutputFrame, totalFrames);
    if (printAll || pStats->nSkippedFrames) _PrintShare("Skipped Output Frames", pStats->nSkippedFrames, pStats->tLastSkippedFrame, totalFrames);
    if (printAll || pStats->nOutputErrors) _PrintShare("Output Errors", pStats->nOutputErrors, pStats->tLastOutputError, totalFrames);
}

BOOL STATS_PrintForAudioDecoder(const SMGR_DECODER_AUDIO_STATS* pStats, STATS_LEVEL nLevel)
{
    const bool printAll = nLevel == STATS_LEVEL_DEBUG;
    char szBuffer[159];

    _PrintText("Audio\n");
    fprintf(stdout, "  %-22s: %s\n", "Audio Decoder State", SessMgr_GetAudioDecoderStateString(pStats->enState, szBuffer, sizeof szBuffer));
    fprintf(stdout, "  %-22s: %d\n", "Number of Pairs", pStats->nNumOfPairs);
    if (printAll) _PrintCounterStatWithTiming("Received Frames", pStats->nReceivedFrames, pStats->tLastReceivedFrame);
    if (printAll) _PrintCounterStatWithTiming("Received Frames Freed", pStats->nReleasedFrames, pStats->tLastReleasedFrame);
    if (printAll) _PrintCounterStatWithTiming("Decoded Frames", pStats->nDecodedFrames, pStats->tLastDecodedFrame);
    _PrintOutcomes(pStats, printAll);
    if (printAll) fprintf(stdout, "  %-22s: %d\n", "Pending Requests", static_cast<int>(pStats->nPendingDecodeRequests));
    if (printAll) fprintf(stdout, "  %-22s: %d\n", "Current Queue Length", static_cast<int>(pStats->nCurDecodedQueueLength));
    if (printAll) fprintf(stdout, "  Audio Delay from FRAMER\n");
    if (printAll) fprintf(stdout, "    %-20s: %4d ms\n", "Decoder IN", static_cast<int>(pStats->nADelayInputMS));
    if (printAll) fprintf(stdout, "    %-20s: %4d ms\n", "Decoder OUT", static_cast<int>(pStats->nADelayOutputMS));
    if (printAll && pStats->nARxFramesJitterMS) fprintf(stdout, "    %-20s: %4u ms \t(Last 10 sec: Max Rx Frames Jitter:  %u ms )\n", "Rx Frames Jitter", pStats->nARxFramesJitterMS, pStats->nALastMaxRxFramesJitterMS);
    if (printAll || pStats->nTSDiscontinuity) fprintf(stdout, "  %-22s: %u\n", "TS Discontinuities", pStats->nTSDiscontinuity);
    if (printAll || pStats->nErrors) fprintf(stdout, "  %-22s: %d\n", "Errors", static_cast<int>(pStats->nErrors));
    UINT nPairID = 0;
    for (const SMGR_AUDIO_PAIR_STATS& tPair : pStats->PairStats) _PrintAudioChannel(&tPair, nPairID++, nLevel);
    return TRUE;
}
