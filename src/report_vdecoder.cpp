// The hardware video decoder report: display, load and buffers, the analysis of its delays, and its counters.

#include <bit>

#include "hostsvc.h"
#include "lines.h"
#include "stats.h"
#include "video_formats.h"
#include "wrapping.h"

// The code keeps the integer part of the rate: 23, 29 and 59 stand for the rates of the NTSC family.
static constexpr float _DisplayRate(UINT64 nDisplayFormat)
{
    const UINT64 nRate = (nDisplayFormat >> VIDEO_FORMAT_RATE_SHIFT) & VIDEO_FORMAT_RATE_MASK;
    if (nRate == 59) return 59.94006f;
    if (nRate == 29) return 29.97003f;
    if (nRate == 23) return 23.976025f;
    return static_cast<float>(nRate);
}

static_assert(std::bit_cast<unsigned int>(_DisplayRate(59 << VIDEO_FORMAT_RATE_SHIFT)) == 0x426FC29F);
static_assert(std::bit_cast<unsigned int>(_DisplayRate(29 << VIDEO_FORMAT_RATE_SHIFT)) == 0x41EFC29F);
static_assert(std::bit_cast<unsigned int>(_DisplayRate(23 << VIDEO_FORMAT_RATE_SHIFT)) == 0x41BFCEE6);

static void _PrintDisplayFormat(UINT64 nDisplayFormat)
{
    char szFPS[12];

    if (nDisplayFormat == VIDEO_FORMAT_AUTO_DETECT)
        fprintf(stdout, "  %-22s: %s\n", "Display Format", "NONE");
    else if (!(nDisplayFormat & VIDEO_FORMAT_FLAG_ENCODED)) // without a line feed: the load goes on in the same line
        fprintf(stdout, "  %-22s: %s", "Display Format", "UNKNOWN");
    else
        fprintf(stdout, "  %-22s: %lux%lu%c%s\n", "Display Format",
                (nDisplayFormat >> VIDEO_FORMAT_WIDTH_SHIFT) & VIDEO_FORMAT_WIDTH_MASK,
                (nDisplayFormat >> VIDEO_FORMAT_HEIGHT_SHIFT) & VIDEO_FORMAT_HEIGHT_MASK,
                nDisplayFormat & VIDEO_FORMAT_FLAG_INTERLACED ? 'i' : 'p',
                _GetAbbrevFPSString(_DisplayRate(nDisplayFormat), szFPS, sizeof szFPS));
}

static void _PrintMemory(const char* pTitle, UINT nBuffers, unsigned long nSizeEach)
{
    fprintf(stdout, "  %-22s: %2ux%lu bytes (%3lu Mbytes)\n", pTitle, nBuffers, nSizeEach, (nBuffers * nSizeEach) >> 20);
}

// What a hardware output delay, theoretical or real, leaves above the decoder's output delay.
struct HwMargin
{
    const char* pTitle;
    int nNow;
    int nAverage;
    int nMin; // above the largest decoder output delay
    int nMax; // above the smallest
};

static HwMargin _GetHwMargin(const char* pTitle, UINT nHwDelayMS, const SMGR_VCUDEC_STATS* pStats)
{
    return {pTitle, _Difference(nHwDelayMS, pStats->nVDelayOutputMS), _Difference(nHwDelayMS, pStats->nVDelayOutputMSAvg),
            _Difference(nHwDelayMS, pStats->nVMaxDelayOutputMS), _Difference(nHwDelayMS, pStats->nVMinDelayOutputMS)};
}

// More than 450 ms, and more than the jitter needs.
static bool _IsTooMuch(const HwMargin& m, const SMGR_VCUDEC_STATS* pStats)
{
    return m.nAverage > 450 && static_cast<int>(pStats->nVDecJitterMS) < m.nAverage;
}

static void _PrintTooMuchDelay(const HwMargin& m, int nOutEst)
{
    fprintf(stdout, "    %-20s: %4d ms/avg:%4d ms \t(Last %d sec: min/max=%3d/%3dms)\t--- WARNING: HW Delay should be reduce (CBUF Delay should be increase).\n", m.pTitle, m.nNow, m.nAverage, nOutEst, m.nMin, m.nMax);
}

static void _PrintNothingToPlay(const HwMargin& m, int nOutEst)
{
    fprintf(stdout, "    %-20s: %4d ms/avg:%4d ms \t(Last %d sec: min/max=%3d/%3dms)\t--- WARNING: HW has NOTHING TO PLAY in time (CBUF Delay should be reduced by %d ms OR STC Offset should be increase by %d ms).\n", m.pTitle, m.nNow, m.nAverage, nOutEst, m.nMin, m.nMax, _AbsoluteValue(m.nMin), _AbsoluteValue(m.nMin));
}

static void _PrintHwOut(const SMGR_VCUDEC_STATS* pStats, int nOutEst)
{
    const UINT nTheo = pStats->nVTheoDelayHwOutputMS;
    const UINT nReal = pStats->nVDelayHwOutputMS;
    const UINT nMax = pStats->nVMaxDelayOutputMS;

    if (nReal && nReal < nMax)
        fprintf(stdout, "    %-20s: %4d ms/%4d ms    \t(Last %d sec: theoretical/real value)\t--- WARNING: 'HW OUT' (real) < 'Decoder OUT' Max %4d ms \n", "HW OUT", static_cast<int>(nTheo), static_cast<int>(nReal), nOutEst, static_cast<int>(nMax));
    else if (nTheo && nTheo < nMax)
        fprintf(stdout, "    %-20s: %4d ms/%4d ms    \t(Last %d sec: theoretical/real value)\t--- WARNING: 'HW OUT' (theo) < 'Decoder OUT' Max %4d ms \n", "HW OUT", static_cast<int>(nTheo), static_cast<int>(nReal), nOutEst, static_cast<int>(nMax));
    else
        fprintf(stdout, "    %-20s: %4d ms/%4d ms    \t(Last %d sec: theoretical/real value) \n", "HW OUT", static_cast<int>(nTheo), static_cast<int>(nReal), nOutEst);
}

// A real delay of 0 means "not measured", so nothing is known to be late. The two plain lines differ in one blank.
static void _PrintHwDelayTheo(const SMGR_VCUDEC_STATS* pStats, int nOutEst)
{
    const HwMargin m = _GetHwMargin("HW Delay Theo", pStats->nVTheoDelayHwOutputMS, pStats);

    if (m.nAverage < 1 && pStats->nVDelayHwOutputMS)
        _PrintNothingToPlay(m, nOutEst);
    else if (m.nAverage < 1)
        fprintf(stdout, "    %-20s: %4d ms/avg:%4d ms \t(Last %d sec: min/max=%3d/%3dms  - based on HW OUT theo)\n", m.pTitle, m.nNow, m.nAverage, nOutEst, m.nMin, m.nMax);
    else if (_IsTooMuch(m, pStats))
        _PrintTooMuchDelay(m, nOutEst);
    else
        fprintf(stdout, "    %-20s: %4d ms/avg:%4d ms \t(Last %d sec: min/max=%3d/%3dms  - based on HW OUT theo) \n", m.pTitle, m.nNow, m.nAverage, nOutEst, m.nMin, m.nMax);
}

static void _PrintHwDelayReal(const SMGR_VCUDEC_STATS* pStats, int nOutEst)
{
    const HwMargin m = _GetHwMargin("         Real", pStats->nVDelayHwOutputMS, pStats);

    if (m.nAverage < 1 && pStats->nVDelayHwOutputMS)
        _PrintNothingToPlay(m, nOutEst);
    else if (_IsTooMuch(m, pStats))
        _PrintTooMuchDelay(m, nOutEst);
    else
        fprintf(stdout, "    %-20s: %4d ms/avg:%4d ms \t(Last %d sec: min/max=%3d/%3dms  - based on HW OUT real)\n", m.pTitle, m.nNow, m.nAverage, nOutEst, m.nMin, m.nMax);
}

static void _PrintHwTxError(const SMGR_VCUDEC_STATS* pStats, int nOutEst)
{
    const UINT nFrame = pStats->nVDelayHwOutputFrameMS;
    const UINT nReal = pStats->nVDelayHwOutputMS;

    if (nFrame > nReal)
        fprintf(stdout, "    %-20s: %4d ms \t\t(Last %d sec: Frame played Late vs HW OUT) \n", "HW Tx Error", _Difference(nFrame, nReal), nOutEst);
    else if (nFrame < nReal)
        fprintf(stdout, "    %-20s: %4d ms \t\t(Last %d sec: Frame played Early vs HW OUT) \n", "HW Tx Error", _Difference(nFrame, nReal), nOutEst);
    else
        fprintf(stdout, "    %-20s: %4d ms \t\t(Last %d sec: Frame played on Time vs HW OUT) \n", "HW Tx Error", 0, nOutEst);
}

static void _PrintOperatingCharacteristics(const SMGR_VCUDEC_STATS* pStats)
{
    // Seconds over which the delays of either side were estimated; all lines but the first show the output side's.
    const int nInEst = pStats->bVDelayInputEstimateShortDelay ? 1 : 10;
    const int nOutEst = pStats->bVDelayOutputEstimateShortDelay ? 1 : 10;

    fprintf(stdout, "  Decoder operating characteristics (Delays are calculated from the output of the Framer).\n");
    fprintf(stdout, "    %-20s: %4d ms/avg:%4d ms\t(Last %d sec: min/max=%3d/%3dms)\n", "Decoder IN", static_cast<int>(pStats->nVDelayInputMS), static_cast<int>(pStats->nVDelayInputMSAvg), nInEst, static_cast<int>(pStats->nVMinDelayInputMS), static_cast<int>(pStats->nVMaxDelayInputMS));
    fprintf(stdout, "    %-20s: %4d ms/avg:%4d ms\t(Last %d sec: min/max=%3d/%3dms)\n", "Decoder OUT", static_cast<int>(pStats->nVDelayOutputMS), static_cast<int>(pStats->nVDelayOutputMSAvg), nOutEst, static_cast<int>(pStats->nVMinDelayOutputMS), static_cast<int>(pStats->nVMaxDelayOutputMS));
    _PrintHwOut(pStats, nOutEst);
    fprintf(stdout, "    %-20s: %4u ms \t\t(Last %d sec: Min OUT - IN = %u - %u ms) \n", "Decoder Latency", pStats->nVDecLatencyMS, nOutEst, pStats->nVMinDelayOutputMS, pStats->nVMinDelayInputMS);
    if (nOutEst > 1 || pStats->nVDecJitterMS)
        fprintf(stdout, "    %-20s: %4u ms \t\t(Last %d sec: jitter OUT - jitter IN = %u - %u ms) - CBUF Delay should absorb jitter IN \n", "Decoder Jitter", pStats->nVDecJitterMS, nOutEst, pStats->nVDecOutputJitterMS, pStats->nVDecInputJitterMS);
    else
        fprintf(stdout, "    %-20s: %4u ms \t\t(Last %d sec: jitter OUT - IN = estimation period too short) \n", "Decoder Jitter", pStats->nVDecJitterMS, nOutEst);
    _PrintHwDelayTheo(pStats, nOutEst);
    _PrintHwDelayReal(pStats, nOutEst);
    if (pStats->nVKeyDecDelayMS) fprintf(stdout, "    %-20s: %4lu ms \n", "Key Frame Dec Time", pStats->nVKeyDecDelayMS);
    _PrintHwTxError(pStats, nOutEst);
    fprintf(stdout, "    %-20s: %4u ms \n", "Max VCU IN Jitter", pStats->nVDecMaxInputJitterMS);
    fprintf(stdout, "    %-20s: %4d \t\t\t(Last %d sec: min/max=%3d/%3d  )\n", "ReOrder list length", static_cast<int>(pStats->nVCurReOrderLen), nOutEst, static_cast<int>(pStats->nVMinReOrderLen), static_cast<int>(pStats->nVMaxReOrderLen));
    fprintf(stdout, "    %-20s: %4d \t\t\t(Last %d sec: min/max=%3d/%3d  ) - Hw rd time very low, reflect VCU Dec jitter.\n", "HW BD list length", static_cast<int>(pStats->nVCurBDListLen), nOutEst, static_cast<int>(pStats->nVMinBDListLen), static_cast<int>(pStats->nVMaxBDListLen));
}

static void _PrintCreateErrorCode(const SMGR_VCUDEC_COUNTERS& c)
{
    char szBuffer[159];
    char szBuffer2[159];
    fprintf(stdout, "  %-22s: %s (%d) (Occurred: %s)\n", "  VCU Create Error Code", SessMgr_GetVCUDecoderErrorString(c.nLastErrorCode, szBuffer, sizeof szBuffer), c.nLastErrorCode,
            _GetElapsedTimeString(c.iLastErrorTime, szBuffer2, sizeof szBuffer2));
}

// The two blanks at the start of a label set it below the title of the call that counts it.
static void _PrintDecoderCounters(const SMGR_VCUDEC_COUNTERS& c)
{
    char szBuffer[159];
    char szBuffer2[159];

    _PrintCounterStatWithTiming("Reorder Pics In", c.nNumReorderFramesIn, c.tLastReorderFrameIn);
    fprintf(stdout, "  %-22s: %s\n", "Reorder Pics Q Occ", FormatULONG(c.nNumReorderFramesQOcc, szBuffer, sizeof szBuffer));
    _PrintCounterStatWithTiming("Reorder Pics Out", c.nNumReorderFramesOut, c.tLastReorderFrameOut);
    _PrintCounterStatWithTiming("Reorder Extract Calls", c.nNumReorderFramesExtractCalls, c.tLastReorderFramesExtractCall);
    _PrintCounterStatWithTiming("Reorder Flush Calls", c.nNumReorderFramesFlushCalls, c.tLastReorderFramesFlushCall);
    fprintf(stdout, "  Decoder Counters \n");
    fprintf(stdout, "   Stats from  VCUDEC_Decode() \n");
    _PrintCounterStatWithTiming("  Received Pics", c.nNumReceivedFrames, c.tLastReceivedFrame);
    _PrintCounterStatWithTiming("  Received Pics Freed", c.nNumReceivedFramesFreed, c.tLastReceivedFrameFreed);
    _PrintCounterStatWithTiming("  VCU Frm not Release ", c.nNumOfFrmNotRelease, c.tLastNumOfFrmNotRelease);
    _PrintCounterStatWithTiming("  Pics To VCU Decoder", c.nNumFramesSentToDecoder, c.tLastFrameSentToDecoder);
    _PrintCounterStatWithTiming("  Dropped Input Pics", c.nNumDroppedFrames, c.tLastDroppedFrame);
    _PrintCounterStatWithTiming("          I ", c.nNumDroppedIFrames, c.tLastDroppedIFrame);
    _PrintCounterStatWithTiming("          P ", c.nNumDroppedPFrames, c.tLastDroppedPFrame);
    _PrintCounterStatWithTiming("          B ", c.nNumDroppedBFrames, c.tLastDroppedBFrame);
    _PrintCounterStatWithTiming("  VCU IN Discontinuity", c.nNumDiscontinuty, c.tLastDiscontinuity);
    _PrintCounterStatWithTiming("  Decoder AV ReSync", c.nNumResyncForLostOfAVSync, c.tLastResyncForLostOfAVSync);
    fprintf(stdout, "  %-22s: %s\n", "  Max Pushed Q Occ", FormatULONG(c.nMaxPushedQueueOccupancy, szBuffer, sizeof szBuffer));
    fprintf(stdout, "  %-22s: %s\n", "  Cur Pushed Q Occ", FormatULONG(c.nCurPushedQueueOccupancy, szBuffer, sizeof szBuffer));
    _PrintCreateErrorCode(c);
    fprintf(stdout, "   Stats from  _FrameDecodedCallback() \n");
    _PrintCounterStatWithTiming("  Decoded Callbacks", c.nNumDecodedCallbacks, c.tLastDecodedCallback);
    _PrintCounterStatWithTiming("  Decoded Input Pics", c.nNumDecodedFrames, c.tLastDecodedFrame);
    fprintf(stdout, "   Stats from  _DisplayCallback() \n");
    _PrintCounterStatWithTiming("  Display Callbacks", c.nNumDisplayCallbacks, c.tLastDisplayCallback);
    _PrintCounterStatWithTiming("  Pics Sent To Display", c.nNumFramesSentToDisplay, c.tLastFrameSentToDisplay);
    _PrintCounterStatWithTiming("  Pics Sent Late", c.nNumOutputLate, c.tLastOutputLate);
    fprintf(stdout, "  %-22s: %dms (Min=%dms occurred %s, Max=%dms occurred %s)\n", "  Output Lead Time", c.nOutputSTCLeadTime,
            c.nMinOutputSTCLeadTime, _GetElapsedTimeString(c.tMinOutputSTCLeadTime, szBuffer, sizeof szBuffer),
            c.nMaxOutputSTCLeadTime, _GetElapsedTimeString(c.tMaxOutputSTCLeadTime, szBuffer2, sizeof szBuffer2));
    _PrintCounterStatWithTiming("  Concealed Input Pics", c.nNumConcealedFrames, c.tLastConcealedFrame);
    _PrintCounterStatWithTiming("  EOS Events", c.nNumEOSEvents, c.tLastEOSEvent);
    _PrintCounterStatWithTiming("  Displayed Pics Freed", c.nNumDisplayedFramesFreed, c.tLastDisplayedFrameFreed);
    _PrintCounterStatWithTiming("  Exit Errors", c.nNumExitErrors, c.tLastExitError);
    _PrintCounterStatWithTiming("  No Info Errors", c.nNumNoInfoErrors, c.tLastNoInfoError);
    _PrintCounterStatWithTiming("  Video Images Captured", c.nNumImageCaptures, c.tLastImageCapture);
    _PrintCounterStatWithTiming("  Image Capture Failed", c.nNumImageCapturesFailed, c.tLastImageCaptureFailed);
    _PrintCounterStatWithTiming("  Nonincr. Tstamps Out", c.nOutputTimestampNotIncreasing, c.tLastOutputTimestampNotIncreasing);
    _PrintCounterStatWithTiming("  Missing Tstamps Out", c.nOutputTimestampsMissing, c.tLastOutputTimestampMissing);
    fprintf(stdout, "   Stats from  _ResolutionFoundCallback() \n");
    _PrintCounterStatWithTiming("  Res Found Callbacks", c.nNumResolutionFoundCallbacks, c.tLastResolutionFoundCallback);
    fprintf(stdout, "   Stats from   _ParseSeiCallback() \n");
    _PrintCounterStatWithTiming("  SEI Callbacks", c.nNumSEICallbacks, c.tLastSEICallback);
}

static void _PrintOperatorDecoderCounters(const SMGR_VCUDEC_COUNTERS& c)
{
    fprintf(stdout, "  Decoder Counters \n");
    _PrintCounterStatWithTiming("  VCU Frm not Release ", c.nNumOfFrmNotRelease, c.tLastNumOfFrmNotRelease);
    _PrintCounterStatWithTiming("  VCU IN Discontinuity", c.nNumDiscontinuty, c.tLastDiscontinuity);
    if (c.nLastErrorCode) _PrintCreateErrorCode(c);
}

// Unlike the audio decoder's, these shares keep two decimals when there is no output yet, and only the errors hide.
static void _PrintHwCounters(const SMGR_VCUDEC_COUNTERS& c, bool printAll)
{
    const unsigned long totalFrames = c.nNumDisplayedOutputFrames + c.nNumSkippedOutputFrames + c.nNumReplayedOutputFrames + c.nNumOutputErrors;

    fprintf(stdout, "  HW Counters \n");
    if (totalFrames == 0) // also when the sum of huge counts wraps to 0: there is no share of it
    {
        fprintf(stdout, "  %-22s: %s\n", "  Displayed Output Frms", "0 [0.00%] (Last One: Never)");
        fprintf(stdout, "  %-22s: %s\n", "  Skipped Output Frames", "0 [0.00%] (Last One: Never)");
        fprintf(stdout, "  %-22s: %s\n", "  Replayed Output Frames", "0 [0.00%] (Last One: Never)");
        if (printAll) fprintf(stdout, "  %-22s: %s\n", "  Output Errors", "0 [0.00%] (Last One: Never)");
        return;
    }
    _PrintShare("  Displayed Output Frms", c.nNumDisplayedOutputFrames, c.tLastDisplayedOutputFrame, totalFrames);
    _PrintShare("  Skipped Output Frames", c.nNumSkippedOutputFrames, c.tLastSkippedOutputFrame, totalFrames);
    _PrintShare("  Replayed Output Frames", c.nNumReplayedOutputFrames, c.tLastReplayedOutputFrame, totalFrames);
    if (printAll || c.nNumOutputErrors) _PrintShare("  Output Errors", c.nNumOutputErrors, c.tLastOutputError, totalFrames);
}

static void _PrintStillImage(const SMGR_VCUDEC_STATS* pStats)
{
    const SMGR_VCUDEC_COUNTERS& c = pStats->tCounters;
    char szBuffer[159];
    char szBuffer2[159];
    char szBuffer3[159];
    char szBuffer4[159];
    fprintf(stdout, "  %-22s: %s (%s) [Count=%d, Max=%s, Last On=%s, Last Off=%s]\n", "Still Image",
            SessMgr_GetDecoderSdiStillImageString(pStats->enStillImageType, szBuffer, sizeof szBuffer), pStats->bStillImageActive ? "ACTIVE" : "INACTIVE",
            static_cast<int>(c.nNumStillImages), FormatUpTime(c.nMaxStillImageTimeOn, szBuffer2, sizeof szBuffer2),
            _GetElapsedTimeString(c.tLastStillImageOn, szBuffer3, sizeof szBuffer3), _GetElapsedTimeString(c.tLastStillImageOff, szBuffer4, sizeof szBuffer4));
}

BOOL STATS_PrintForVideoDecoder(const SMGR_VCUDEC_STATS* pStats, STATS_LEVEL nLevel)
{
    const bool printAll = nLevel == STATS_LEVEL_DEBUG;
    char szBuffer[159];

    _PrintStillImage(pStats);
    fprintf(stdout, "  %-22s: %s\n", "Video Decoder State", SessMgr_GetVCUDecoderStateString(pStats->enState, szBuffer, sizeof szBuffer));
    _PrintDisplayFormat(pStats->nDisplayFormat);
    fprintf(stdout, "  %-22s: %d%%\n", "Video Decoder Load", pStats->nLoadPercentage);
    if (printAll) fprintf(stdout, "  %-22s: %s\n", "Video DPB Mode", pStats->bReordering ? "NORMAL" : "NO REORDERING");
    if (printAll) fprintf(stdout, "  %-22s: %.3lfms\n", "Video Decoder Latency", static_cast<double>(pStats->nLatencyInUs) / 1000.0);
    if (printAll) _PrintMemory("VCU Memory required", pStats->nFrameBufferNumber, pStats->nFrameBufferSizeEachInBytes);
    if (printAll) _PrintMemory("VCU Memory allocated", pStats->nFrameBufferNumberInUsed, pStats->nFrameBufferSizeEachInBytes);
    if (printAll) _PrintOperatingCharacteristics(pStats);
    if (printAll) fprintf(stdout, "  %-22s: %ux%ux%u (%s bytes)\n", "Display Buffers", pStats->nFrameBufferNumber, pStats->nFrameBufferWidth, pStats->nFrameBufferHeight, FormatULONG(pStats->nFrameBufferSizeEachInBytes * pStats->nFrameBufferNumber, szBuffer, sizeof szBuffer));
    if (printAll) fprintf(stdout, "  %-22s: Y=%u, C=%u\n", "Display Bit Depth", pStats->nFrameBufferBitDepthY, pStats->nFrameBufferBitDepthC);
    if (printAll && pStats->bCropping) fprintf(stdout, "  %-22s: L=%u, R=%u, T=%u, B=%u\n", "Cropping", pStats->nCropOffsetLeft, pStats->nCropOffsetRight, pStats->nCropOffsetTop, pStats->nCropOffsetBottom);
    if (printAll && !pStats->bCropping) fprintf(stdout, "  %-22s: None\n", "Cropping");
    if (printAll) fprintf(stdout, "  %-22s: %s\n", "Picture Structure", SessMgr_GetVCUDecoderPicStructureString(pStats->enPicStructure, szBuffer, sizeof szBuffer));
    if (printAll)
        _PrintDecoderCounters(pStats->tCounters);
    else
        _PrintOperatorDecoderCounters(pStats->tCounters);
    _PrintHwCounters(pStats->tCounters, printAll);
    return TRUE;
}
