#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <string>
#include <vector>

#include "capture.h"
#include "frozen_clock.h"
#include "recording_services.h"
#include "stats.h"
#include "video_formats.h"

static std::string Report(const SMGR_VCUDEC_STATS& stats, int nLevel)
{
    BOOL bResult = -1;
    const std::string text = Capture([&] { bResult = STATS_PrintForVideoDecoder(&stats, static_cast<STATS_LEVEL>(nLevel)); });
    EXPECT_EQ(bResult, TRUE);
    return text;
}

// A line of the debug report.
static std::string Line(const SMGR_VCUDEC_STATS& stats, const std::string& label)
{
    return LineOf(Report(stats, STATS_LEVEL_DEBUG), label);
}

// The lines from the one that begins with first, up to the one that begins with last.
static std::string Section(const std::string& text, const std::string& first, const std::string& last)
{
    const size_t start = text.find(first);
    const size_t end = text.find(last, start);
    if (start == std::string::npos || end == std::string::npos)
    {
        ADD_FAILURE() << "no section from " << first << " to " << last << " in\n" << text;
        return {};
    }
    return text.substr(start, end - start);
}

// No two printed fields hold the same number, so that each can be recognised in the text.
static SMGR_VCUDEC_STATS DistinctRecord()
{
    SMGR_VCUDEC_STATS stats = {};
    stats.nSize = 1;
    stats.enState = SMGR_VCUDEC_STATE_ACTIVE;
    stats.nLoadPercentage = 63;
    stats.nLatencyInUs = 12345;
    stats.nDisplayFormat = 0x80000001E008703B;
    stats.bHasChroma = 1;
    stats.nFrameBufferWidth = 1936;
    stats.nFrameBufferHeight = 1096;
    stats.nFrameBufferSizeEachInBytes = 4321098;
    stats.nFrameBufferNumber = 14;
    stats.nFrameBufferNumberInUsed = 9;
    stats.nFrameBufferBitDepthY = 10;
    stats.nFrameBufferBitDepthC = 8;
    stats.bCropping = 1;
    stats.nCropOffsetLeft = 4;
    stats.nCropOffsetRight = 5;
    stats.nCropOffsetTop = 6;
    stats.nCropOffsetBottom = 7;
    stats.enPicStructure = VCUDEC_PICSTRUCTURE_TOP_FLD_WITH_NEXT_BOT;
    stats.bVDelayInputEstimateShortDelay = 0;
    stats.bVDelayOutputEstimateShortDelay = 1;
    stats.nVDelayInputMS = 101;
    stats.nVDelayInputMSAvg = 102;
    stats.nVMaxDelayInputMS = 103;
    stats.nVMinDelayInputMS = 99;
    stats.nVCurReOrderLen = 19;
    stats.nVMaxReOrderLen = 26;
    stats.nVMinReOrderLen = 17;
    stats.nVDelayOutputMS = 211;
    stats.nVDelayOutputMSAvg = 212;
    stats.nVMaxDelayOutputMS = 218;
    stats.nVMinDelayOutputMS = 204;
    stats.nVMaxDelayWithinVCUMS = 301;
    stats.nVMinDelayWithinVCUMS = 302;
    stats.nVCurBDListLen = 12;
    stats.nVMaxBDListLen = 15;
    stats.nVMinBDListLen = 11;
    stats.nVTheoDelayHwOutputMS = 262;
    stats.nVDelayHwOutputMS = 275;
    stats.nVDelayHwOutputFrameMS = 278;
    stats.nVDecInputJitterMS = 31;
    stats.nVDecMaxInputJitterMS = 32;
    stats.nVDecOutputJitterMS = 54;
    stats.nVDecJitterMS = 24;   // not 54 - 31: the report shows the field
    stats.nVDecLatencyMS = 106; // not 204 - 99, likewise
    stats.nVKeyDecDelayMS = 47;
    stats.enStillImageType = 3;
    stats.bStillImageActive = 1;
    stats.bReordering = 1;

    SMGR_VCUDEC_COUNTERS& counters = stats.tCounters;
    counters.nNumReceivedFrames = 2001;
    counters.tLastReceivedFrame = frozen_now - 101;
    counters.nNumReceivedFramesFreed = 2002;
    counters.tLastReceivedFrameFreed = frozen_now - 102;
    counters.nNumFramesSentToDecoder = 2003;
    counters.tLastFrameSentToDecoder = frozen_now - 103;
    counters.nNumDroppedFrames = 2004;
    counters.tLastDroppedFrame = frozen_now - 104;
    counters.nNumDroppedIFrames = 2005;
    counters.tLastDroppedIFrame = frozen_now - 105;
    counters.nNumDroppedPFrames = 2006;
    counters.tLastDroppedPFrame = frozen_now - 106;
    counters.nNumDroppedBFrames = 2007;
    counters.tLastDroppedBFrame = frozen_now - 107;
    counters.nNumDecodedFrames = 2008;
    counters.tLastDecodedFrame = frozen_now - 108;
    counters.nNumConcealedFrames = 2009;
    counters.tLastConcealedFrame = frozen_now - 109;
    counters.nNumResyncForLostOfAVSync = 2010;
    counters.tLastResyncForLostOfAVSync = frozen_now - 110;
    counters.nNumFramesSentToDisplay = 2011;
    counters.tLastFrameSentToDisplay = frozen_now - 111;
    counters.nNumDisplayedOutputFrames = 700;
    counters.tLastDisplayedOutputFrame = frozen_now - 112;
    counters.nNumSkippedOutputFrames = 200;
    counters.tLastSkippedOutputFrame = frozen_now - 113;
    counters.nNumReplayedOutputFrames = 75;
    counters.tLastReplayedOutputFrame = frozen_now - 114;
    counters.nNumDisplayedFramesFreed = 2015;
    counters.tLastDisplayedFrameFreed = frozen_now - 115;
    counters.nNumOutputErrors = 25;
    counters.tLastOutputError = frozen_now - 116;
    counters.nNumOutputLate = 2017;
    counters.tLastOutputLate = frozen_now - 117;
    counters.nOutputSTCLeadTime = -44;
    counters.nMinOutputSTCLeadTime = -66;
    counters.tMinOutputSTCLeadTime = frozen_now - 118;
    counters.nMaxOutputSTCLeadTime = 55;
    counters.tMaxOutputSTCLeadTime = frozen_now - 119;
    counters.nNumReorderFramesIn = 2020;
    counters.tLastReorderFrameIn = frozen_now - 120;
    counters.nNumReorderFramesQOcc = 2021;
    counters.nNumReorderFramesOut = 2022;
    counters.tLastReorderFrameOut = frozen_now - 122;
    counters.nNumReorderFramesExtractCalls = 2023;
    counters.tLastReorderFramesExtractCall = frozen_now - 123;
    counters.nNumReorderFramesFlushCalls = 2024;
    counters.tLastReorderFramesFlushCall = frozen_now - 124;
    counters.nNumInputParsedCallbacks = 2025;
    counters.tLastInputParsedCallback = frozen_now - 125;
    counters.nNumResolutionFoundCallbacks = 2026;
    counters.tLastResolutionFoundCallback = frozen_now - 126;
    counters.nNumDecodedCallbacks = 2027;
    counters.tLastDecodedCallback = frozen_now - 127;
    counters.nNumDisplayCallbacks = 2028;
    counters.tLastDisplayCallback = frozen_now - 128;
    counters.nNumSEICallbacks = 2029;
    counters.tLastSEICallback = frozen_now - 129;
    counters.nMaxPushedQueueOccupancy = 2030;
    counters.nCurPushedQueueOccupancy = 2031;
    counters.nNumImageCaptures = 2032;
    counters.tLastImageCapture = frozen_now - 132;
    counters.nNumImageCapturesFailed = 2033;
    counters.tLastImageCaptureFailed = frozen_now - 133;
    counters.iLastErrorTime = frozen_now - 134;
    counters.nLastErrorCode = 135;
    counters.nNumEOSEvents = 2036;
    counters.tLastEOSEvent = frozen_now - 136;
    counters.nNumExitErrors = 2037;
    counters.tLastExitError = frozen_now - 137;
    counters.nNumNoInfoErrors = 2038;
    counters.tLastNoInfoError = frozen_now - 138;
    counters.nNumDiscontinuty = 2039;
    counters.tLastDiscontinuity = frozen_now - 139;
    counters.nNumOfFrmNotRelease = 2040;
    counters.tLastNumOfFrmNotRelease = frozen_now - 140;
    counters.nOutputTimestampNotIncreasing = 2041;
    counters.tLastOutputTimestampNotIncreasing = frozen_now - 141;
    counters.nOutputTimestampsMissing = 2042;
    counters.tLastOutputTimestampMissing = frozen_now - 142;
    counters.nNumStillImages = 9;
    counters.nMaxStillImageTimeOn = 75;
    counters.tLastStillImageOn = frozen_now - 81;
    counters.tLastStillImageOff = frozen_now - 82;
    return stats;
}

/* ---- Whole reports ---- */

TEST(VideoDecoder, WholeReportAtTheDefaultLevel)
{
    EXPECT_EQ(Report(DistinctRecord(), STATS_LEVEL_DEFAULT),
              "  Still Image           : {DecoderSdiStillImage 3 159} (ACTIVE) [Count=9, Max={UpTime 75 159}, Last On={UpTime 81 159} ago, "
              "Last Off={UpTime 82 159} ago]\n"
              "  Video Decoder State   : {VCUDecoderState 2 159}\n"
              "  Display Format        : 1920x1080i29.97\n"
              "  Video Decoder Load    : 63%\n"
              "  Decoder Counters \n"
              "    VCU Frm not Release : {ULONG 2040 1024} (Last One: {UpTime 140 1024} ago)\n"
              "    VCU IN Discontinuity: {ULONG 2039 1024} (Last One: {UpTime 139 1024} ago)\n"
              "    VCU Create Error Code: {VCUDecoderError 135 159} (135) (Occurred: {UpTime 134 159} ago)\n"
              "  HW Counters \n"
              "    Displayed Output Frms: {ULONG 700 159} [70.0000%] (Last One: {UpTime 112 159} ago)\n"
              "    Skipped Output Frames: {ULONG 200 159} [20.0000%] (Last One: {UpTime 113 159} ago)\n"
              "    Replayed Output Frames: {ULONG 75 159} [7.5000%] (Last One: {UpTime 114 159} ago)\n"
              "    Output Errors       : {ULONG 25 159} [2.5000%] (Last One: {UpTime 116 159} ago)\n");
}

TEST(VideoDecoder, WholeReportAtTheDebugLevel)
{
    EXPECT_EQ(
        Report(DistinctRecord(), STATS_LEVEL_DEBUG),
        "  Still Image           : {DecoderSdiStillImage 3 159} (ACTIVE) [Count=9, Max={UpTime 75 159}, Last On={UpTime 81 159} ago, Last "
        "Off={UpTime 82 159} ago]\n"
        "  Video Decoder State   : {VCUDecoderState 2 159}\n"
        "  Display Format        : 1920x1080i29.97\n"
        "  Video Decoder Load    : 63%\n"
        "  Video DPB Mode        : NORMAL\n"
        "  Video Decoder Latency : 12.345ms\n"
        "  VCU Memory required   : 14x4321098 bytes ( 57 Mbytes)\n"
        "  VCU Memory allocated  :  9x4321098 bytes ( 37 Mbytes)\n"
        "  Decoder operating characteristics (Delays are calculated from the output of the Framer).\n"
        "    Decoder IN          :  101 ms/avg: 102 ms\t(Last 10 sec: min/max= 99/103ms)\n"
        "    Decoder OUT         :  211 ms/avg: 212 ms\t(Last 1 sec: min/max=204/218ms)\n"
        "    HW OUT              :  262 ms/ 275 ms    \t(Last 1 sec: theoretical/real value) \n"
        "    Decoder Latency     :  106 ms \t\t(Last 1 sec: Min OUT - IN = 204 - 99 ms) \n"
        "    Decoder Jitter      :   24 ms \t\t(Last 1 sec: jitter OUT - jitter IN = 54 - 31 ms) - CBUF Delay should absorb jitter IN \n"
        "    HW Delay Theo       :   51 ms/avg:  50 ms \t(Last 1 sec: min/max= 44/ 58ms  - based on HW OUT theo) \n"
        "             Real       :   64 ms/avg:  63 ms \t(Last 1 sec: min/max= 57/ 71ms  - based on HW OUT real)\n"
        "    Key Frame Dec Time  :   47 ms \n"
        "    HW Tx Error         :    3 ms \t\t(Last 1 sec: Frame played Late vs HW OUT) \n"
        "    Max VCU IN Jitter   :   32 ms \n"
        "    ReOrder list length :   19 \t\t\t(Last 1 sec: min/max= 17/ 26  )\n"
        "    HW BD list length   :   12 \t\t\t(Last 1 sec: min/max= 11/ 15  ) - Hw rd time very low, reflect VCU Dec jitter.\n"
        "  Display Buffers       : 14x1936x1096 ({ULONG 60495372 159} bytes)\n"
        "  Display Bit Depth     : Y=10, C=8\n"
        "  Cropping              : L=4, R=5, T=6, B=7\n"
        "  Picture Structure     : {VCUDecoderPicStructure 11 159}\n"
        "  Reorder Pics In       : {ULONG 2020 1024} (Last One: {UpTime 120 1024} ago)\n"
        "  Reorder Pics Q Occ    : {ULONG 2021 159}\n"
        "  Reorder Pics Out      : {ULONG 2022 1024} (Last One: {UpTime 122 1024} ago)\n"
        "  Reorder Extract Calls : {ULONG 2023 1024} (Last One: {UpTime 123 1024} ago)\n"
        "  Reorder Flush Calls   : {ULONG 2024 1024} (Last One: {UpTime 124 1024} ago)\n"
        "  Decoder Counters \n"
        "   Stats from  VCUDEC_Decode() \n"
        "    Received Pics       : {ULONG 2001 1024} (Last One: {UpTime 101 1024} ago)\n"
        "    Received Pics Freed : {ULONG 2002 1024} (Last One: {UpTime 102 1024} ago)\n"
        "    VCU Frm not Release : {ULONG 2040 1024} (Last One: {UpTime 140 1024} ago)\n"
        "    Pics To VCU Decoder : {ULONG 2003 1024} (Last One: {UpTime 103 1024} ago)\n"
        "    Dropped Input Pics  : {ULONG 2004 1024} (Last One: {UpTime 104 1024} ago)\n"
        "            I           : {ULONG 2005 1024} (Last One: {UpTime 105 1024} ago)\n"
        "            P           : {ULONG 2006 1024} (Last One: {UpTime 106 1024} ago)\n"
        "            B           : {ULONG 2007 1024} (Last One: {UpTime 107 1024} ago)\n"
        "    VCU IN Discontinuity: {ULONG 2039 1024} (Last One: {UpTime 139 1024} ago)\n"
        "    Decoder AV ReSync   : {ULONG 2010 1024} (Last One: {UpTime 110 1024} ago)\n"
        "    Max Pushed Q Occ    : {ULONG 2030 159}\n"
        "    Cur Pushed Q Occ    : {ULONG 2031 159}\n"
        "    VCU Create Error Code: {VCUDecoderError 135 159} (135) (Occurred: {UpTime 134 159} ago)\n"
        "   Stats from  _FrameDecodedCallback() \n"
        "    Decoded Callbacks   : {ULONG 2027 1024} (Last One: {UpTime 127 1024} ago)\n"
        "    Decoded Input Pics  : {ULONG 2008 1024} (Last One: {UpTime 108 1024} ago)\n"
        "   Stats from  _DisplayCallback() \n"
        "    Display Callbacks   : {ULONG 2028 1024} (Last One: {UpTime 128 1024} ago)\n"
        "    Pics Sent To Display: {ULONG 2011 1024} (Last One: {UpTime 111 1024} ago)\n"
        "    Pics Sent Late      : {ULONG 2017 1024} (Last One: {UpTime 117 1024} ago)\n"
        "    Output Lead Time    : -44ms (Min=-66ms occurred {UpTime 118 159} ago, Max=55ms occurred {UpTime 119 159} ago)\n"
        "    Concealed Input Pics: {ULONG 2009 1024} (Last One: {UpTime 109 1024} ago)\n"
        "    EOS Events          : {ULONG 2036 1024} (Last One: {UpTime 136 1024} ago)\n"
        "    Displayed Pics Freed: {ULONG 2015 1024} (Last One: {UpTime 115 1024} ago)\n"
        "    Exit Errors         : {ULONG 2037 1024} (Last One: {UpTime 137 1024} ago)\n"
        "    No Info Errors      : {ULONG 2038 1024} (Last One: {UpTime 138 1024} ago)\n"
        "    Video Images Captured: {ULONG 2032 1024} (Last One: {UpTime 132 1024} ago)\n"
        "    Image Capture Failed: {ULONG 2033 1024} (Last One: {UpTime 133 1024} ago)\n"
        "    Nonincr. Tstamps Out: {ULONG 2041 1024} (Last One: {UpTime 141 1024} ago)\n"
        "    Missing Tstamps Out : {ULONG 2042 1024} (Last One: {UpTime 142 1024} ago)\n"
        "   Stats from  _ResolutionFoundCallback() \n"
        "    Res Found Callbacks : {ULONG 2026 1024} (Last One: {UpTime 126 1024} ago)\n"
        "   Stats from   _ParseSeiCallback() \n"
        "    SEI Callbacks       : {ULONG 2029 1024} (Last One: {UpTime 129 1024} ago)\n"
        "  HW Counters \n"
        "    Displayed Output Frms: {ULONG 700 159} [70.0000%] (Last One: {UpTime 112 159} ago)\n"
        "    Skipped Output Frames: {ULONG 200 159} [20.0000%] (Last One: {UpTime 113 159} ago)\n"
        "    Replayed Output Frames: {ULONG 75 159} [7.5000%] (Last One: {UpTime 114 159} ago)\n"
        "    Output Errors       : {ULONG 25 159} [2.5000%] (Last One: {UpTime 116 159} ago)\n");
}

TEST(VideoDecoder, AnEmptyRecordAtTheDefaultLevel)
{
    EXPECT_EQ(
        Report({}, STATS_LEVEL_DEFAULT),
        "  Still Image           : {DecoderSdiStillImage 0 159} (INACTIVE) [Count=0, Max={UpTime 0 159}, Last On=Never, Last Off=Never]\n"
        "  Video Decoder State   : {VCUDecoderState 0 159}\n"
        "  Display Format        : NONE\n"
        "  Video Decoder Load    : 0%\n"
        "  Decoder Counters \n"
        "    VCU Frm not Release : 0\n"
        "    VCU IN Discontinuity: 0\n"
        "  HW Counters \n"
        "    Displayed Output Frms: 0 [0.00%] (Last One: Never)\n"
        "    Skipped Output Frames: 0 [0.00%] (Last One: Never)\n"
        "    Replayed Output Frames: 0 [0.00%] (Last One: Never)\n");
}

TEST(VideoDecoder, AnEmptyRecordAtTheDebugLevel)
{
    EXPECT_EQ(
        Report({}, STATS_LEVEL_DEBUG),
        "  Still Image           : {DecoderSdiStillImage 0 159} (INACTIVE) [Count=0, Max={UpTime 0 159}, Last On=Never, Last Off=Never]\n"
        "  Video Decoder State   : {VCUDecoderState 0 159}\n"
        "  Display Format        : NONE\n"
        "  Video Decoder Load    : 0%\n"
        "  Video DPB Mode        : NO REORDERING\n"
        "  Video Decoder Latency : 0.000ms\n"
        "  VCU Memory required   :  0x0 bytes (  0 Mbytes)\n"
        "  VCU Memory allocated  :  0x0 bytes (  0 Mbytes)\n"
        "  Decoder operating characteristics (Delays are calculated from the output of the Framer).\n"
        "    Decoder IN          :    0 ms/avg:   0 ms\t(Last 10 sec: min/max=  0/  0ms)\n"
        "    Decoder OUT         :    0 ms/avg:   0 ms\t(Last 10 sec: min/max=  0/  0ms)\n"
        "    HW OUT              :    0 ms/   0 ms    \t(Last 10 sec: theoretical/real value) \n"
        "    Decoder Latency     :    0 ms \t\t(Last 10 sec: Min OUT - IN = 0 - 0 ms) \n"
        "    Decoder Jitter      :    0 ms \t\t(Last 10 sec: jitter OUT - jitter IN = 0 - 0 ms) - CBUF Delay should absorb jitter IN \n"
        "    HW Delay Theo       :    0 ms/avg:   0 ms \t(Last 10 sec: min/max=  0/  0ms  - based on HW OUT theo)\n"
        "             Real       :    0 ms/avg:   0 ms \t(Last 10 sec: min/max=  0/  0ms  - based on HW OUT real)\n"
        "    HW Tx Error         :    0 ms \t\t(Last 10 sec: Frame played on Time vs HW OUT) \n"
        "    Max VCU IN Jitter   :    0 ms \n"
        "    ReOrder list length :    0 \t\t\t(Last 10 sec: min/max=  0/  0  )\n"
        "    HW BD list length   :    0 \t\t\t(Last 10 sec: min/max=  0/  0  ) - Hw rd time very low, reflect VCU Dec jitter.\n"
        "  Display Buffers       : 0x0x0 ({ULONG 0 159} bytes)\n"
        "  Display Bit Depth     : Y=0, C=0\n"
        "  Cropping              : None\n"
        "  Picture Structure     : {VCUDecoderPicStructure 0 159}\n"
        "  Reorder Pics In       : 0\n"
        "  Reorder Pics Q Occ    : {ULONG 0 159}\n"
        "  Reorder Pics Out      : 0\n"
        "  Reorder Extract Calls : 0\n"
        "  Reorder Flush Calls   : 0\n"
        "  Decoder Counters \n"
        "   Stats from  VCUDEC_Decode() \n"
        "    Received Pics       : 0\n"
        "    Received Pics Freed : 0\n"
        "    VCU Frm not Release : 0\n"
        "    Pics To VCU Decoder : 0\n"
        "    Dropped Input Pics  : 0\n"
        "            I           : 0\n"
        "            P           : 0\n"
        "            B           : 0\n"
        "    VCU IN Discontinuity: 0\n"
        "    Decoder AV ReSync   : 0\n"
        "    Max Pushed Q Occ    : {ULONG 0 159}\n"
        "    Cur Pushed Q Occ    : {ULONG 0 159}\n"
        "    VCU Create Error Code: {VCUDecoderError 0 159} (0) (Occurred: Never)\n"
        "   Stats from  _FrameDecodedCallback() \n"
        "    Decoded Callbacks   : 0\n"
        "    Decoded Input Pics  : 0\n"
        "   Stats from  _DisplayCallback() \n"
        "    Display Callbacks   : 0\n"
        "    Pics Sent To Display: 0\n"
        "    Pics Sent Late      : 0\n"
        "    Output Lead Time    : 0ms (Min=0ms occurred Never, Max=0ms occurred Never)\n"
        "    Concealed Input Pics: 0\n"
        "    EOS Events          : 0\n"
        "    Displayed Pics Freed: 0\n"
        "    Exit Errors         : 0\n"
        "    No Info Errors      : 0\n"
        "    Video Images Captured: 0\n"
        "    Image Capture Failed: 0\n"
        "    Nonincr. Tstamps Out: 0\n"
        "    Missing Tstamps Out : 0\n"
        "   Stats from  _ResolutionFoundCallback() \n"
        "    Res Found Callbacks : 0\n"
        "   Stats from   _ParseSeiCallback() \n"
        "    SEI Callbacks       : 0\n"
        "  HW Counters \n"
        "    Displayed Output Frms: 0 [0.00%] (Last One: Never)\n"
        "    Skipped Output Frames: 0 [0.00%] (Last One: Never)\n"
        "    Replayed Output Frames: 0 [0.00%] (Last One: Never)\n"
        "    Output Errors       : 0 [0.00%] (Last One: Never)\n");
}

TEST(VideoDecoder, EveryLevelButDebugPrintsTheDefaultReport)
{
    const SMGR_VCUDEC_STATS stats = DistinctRecord();
    const std::string text = Report(stats, STATS_LEVEL_DEFAULT);
    for (const int nLevel : {2, -1, INT_MAX, INT_MIN}) EXPECT_EQ(Report(stats, nLevel), text) << "level " << nLevel;
}

TEST(VideoDecoder, FieldsThatAreNotPrintedChangeNothing)
{
    SMGR_VCUDEC_STATS stats = DistinctRecord();
    const std::string text = Report(stats, STATS_LEVEL_DEBUG);
    stats.nSize = 0;
    stats.bHasChroma = 0;
    stats.nVMaxDelayWithinVCUMS = 0;
    stats.nVMinDelayWithinVCUMS = 0;
    stats.tCounters.nNumInputParsedCallbacks = 0;
    stats.tCounters.tLastInputParsedCallback = 0;
    EXPECT_EQ(Report(stats, STATS_LEVEL_DEBUG), text);
}

TEST(VideoDecoder, EveryTextButACounterLinesHas159Characters)
{
    SMGR_VCUDEC_STATS stats = {};
    stats.nDisplayFormat = VIDEO_FORMAT_1280_720_50P;
    ClearServiceCalls();
    Report(stats, STATS_LEVEL_DEBUG);
    const auto& calls = ServiceCalls();
    // Of the still image, the error code and the two lead times: texts whose size the report does not show.
    EXPECT_EQ(std::count(calls.begin(), calls.end(), (ServiceCall{"PrintToString", "Never", 159})), 5);
    EXPECT_EQ(std::count(calls.begin(), calls.end(), (ServiceCall{"PrintToString", "%.2f", 12})), 1);
    EXPECT_EQ(std::count_if(calls.begin(), calls.end(), [](const ServiceCall& call) { return call.service == "PrintToString"; }), 6);
}

TEST(VideoDecoder, AsksNoServiceForALineThatDoesNotPrint)
{
    ClearServiceCalls();
    Report({}, STATS_LEVEL_DEFAULT);
    const std::vector<ServiceCall> expected = {{"DecoderSdiStillImage", "0", 159},
                                               {"UpTime", "0", 159},
                                               {"PrintToString", "Never", 159},
                                               {"PrintToString", "Never", 159},
                                               {"VCUDecoderState", "0", 159}};
    const auto& calls = ServiceCalls();
    // The texts of one line may be made in any order.
    EXPECT_TRUE(std::is_permutation(calls.begin(), calls.end(), expected.begin(), expected.end()));
}

/* ---- State ---- */

TEST(VideoDecoder, AnyNonZeroFlagShowsTheStillImageAsActive)
{
    SMGR_VCUDEC_STATS stats = {};
    stats.bStillImageActive = 2;
    EXPECT_EQ(
        Line(stats, "Still Image"),
        "  Still Image           : {DecoderSdiStillImage 0 159} (ACTIVE) [Count=0, Max={UpTime 0 159}, Last On=Never, Last Off=Never]");
    stats.bStillImageActive = -1;
    EXPECT_EQ(
        Line(stats, "Still Image"),
        "  Still Image           : {DecoderSdiStillImage 0 159} (ACTIVE) [Count=0, Max={UpTime 0 159}, Last On=Never, Last Off=Never]");
}

TEST(VideoDecoder, StillImagesAreCountedWithASignAndTimedWithout)
{
    SMGR_VCUDEC_STATS stats = {};
    stats.enStillImageType = -1;
    stats.tCounters.nNumStillImages = 4294967295;
    stats.tCounters.nMaxStillImageTimeOn = 4294967295;
    stats.tCounters.tLastStillImageOn = frozen_now + 1;
    EXPECT_EQ(Line(stats, "Still Image"), "  Still Image           : {DecoderSdiStillImage -1 159} (INACTIVE) [Count=-1, Max={UpTime "
                                          "4294967295 159}, Last On={UpTime -1 159} ago, Last Off=Never]");
}

TEST(VideoDecoder, UnknownStatesAndPictureStructuresGoToTheNameServices)
{
    SMGR_VCUDEC_STATS stats = {};
    stats.enState = SMGR_VCUDEC_STATE_INVALID;
    stats.enPicStructure = VCUDEC_PICSTRUCTURE_UNKNOWN;
    EXPECT_EQ(Line(stats, "Video Decoder State"), "  Video Decoder State   : {VCUDecoderState -1 159}");
    EXPECT_EQ(Line(stats, "Picture Structure"), "  Picture Structure     : {VCUDecoderPicStructure -1 159}");
    stats.enState = static_cast<SMGR_VCUDEC_STATE>(77);
    stats.enPicStructure = static_cast<SMGR_VCUDEC_PICSTRUCTURE>(78);
    EXPECT_EQ(Line(stats, "Video Decoder State"), "  Video Decoder State   : {VCUDecoderState 77 159}");
    EXPECT_EQ(Line(stats, "Picture Structure"), "  Picture Structure     : {VCUDecoderPicStructure 78 159}");
}

TEST(VideoDecoder, LoadIsSigned)
{
    SMGR_VCUDEC_STATS stats = {};
    stats.nLoadPercentage = -1;
    EXPECT_EQ(Line(stats, "Video Decoder Load"), "  Video Decoder Load    : -1%");
    stats.nLoadPercentage = 2147483647;
    EXPECT_EQ(Line(stats, "Video Decoder Load"), "  Video Decoder Load    : 2147483647%");
}

TEST(VideoDecoder, AnyNonZeroFlagIsTheNormalDpbMode)
{
    SMGR_VCUDEC_STATS stats = {};
    EXPECT_EQ(Line(stats, "Video DPB Mode"), "  Video DPB Mode        : NO REORDERING");
    for (const BOOL bReordering : {1, 2, -1})
    {
        stats.bReordering = bReordering;
        EXPECT_EQ(Line(stats, "Video DPB Mode"), "  Video DPB Mode        : NORMAL");
    }
}

TEST(VideoDecoder, LatencyHasThreeDecimalsOfAMillisecond)
{
    SMGR_VCUDEC_STATS stats = {};
    stats.nLatencyInUs = 1;
    EXPECT_EQ(Line(stats, "Video Decoder Latency"), "  Video Decoder Latency : 0.001ms");
    stats.nLatencyInUs = 50000;
    EXPECT_EQ(Line(stats, "Video Decoder Latency"), "  Video Decoder Latency : 50.000ms");
    stats.nLatencyInUs = 4294967295; // unsigned, not -1
    EXPECT_EQ(Line(stats, "Video Decoder Latency"), "  Video Decoder Latency : 4294967.295ms");
}

/* ---- Display format ---- */

// The display format line and the load line.
static std::string DisplayFormat(UINT64 nDisplayFormat, int nLevel = STATS_LEVEL_DEFAULT)
{
    SMGR_VCUDEC_STATS stats = {};
    stats.nDisplayFormat = nDisplayFormat;
    stats.nLoadPercentage = 5;
    return Section(Report(stats, nLevel), "  Display Format", nLevel == STATS_LEVEL_DEBUG ? "  Video DPB Mode" : "  Decoder Counters");
}

TEST(VideoDecoderDisplayFormat, ZeroIsNone)
{
    EXPECT_EQ(DisplayFormat(0), "  Display Format        : NONE\n  Video Decoder Load    : 5%\n");
    EXPECT_EQ(DisplayFormat(0, STATS_LEVEL_DEBUG), "  Display Format        : NONE\n  Video Decoder Load    : 5%\n");
}

TEST(VideoDecoderDisplayFormat, CodesBelowBit63AreUnknownAndJoinTheLoadLine)
{
    for (const UINT64 nDisplayFormat : {1ul, 2ul, 9ul, 10ul, 0x1E008703Bul, 0x7FFFFFFFFFFFFFFFul})
    {
        EXPECT_EQ(DisplayFormat(nDisplayFormat), "  Display Format        : UNKNOWN  Video Decoder Load    : 5%\n") << nDisplayFormat;
        EXPECT_EQ(DisplayFormat(nDisplayFormat, STATS_LEVEL_DEBUG), "  Display Format        : UNKNOWN  Video Decoder Load    : 5%\n")
            << nDisplayFormat;
    }
}

TEST(VideoDecoderDisplayFormat, TheLoadLineFollowsADecodedFormatOnALineOfItsOwn)
{
    EXPECT_EQ(DisplayFormat(VIDEO_FORMAT_1920_1080_29I), "  Display Format        : 1920x1080i29.97\n  Video Decoder Load    : 5%\n");
}

// The text of a raster.
static std::string Raster(UINT64 nDisplayFormat)
{
    SMGR_VCUDEC_STATS stats = {};
    stats.nDisplayFormat = nDisplayFormat;
    return LineOf(Report(stats, STATS_LEVEL_DEFAULT), "Display Format");
}

TEST(VideoDecoderDisplayFormat, Rates59And29And23AreOfTheNtscFamily)
{
    EXPECT_EQ(Raster(VIDEO_FORMAT_1280_720_59P), "  Display Format        : 1280x720p59.94");
    EXPECT_EQ(Raster(VIDEO_FORMAT_1280_720_29P), "  Display Format        : 1280x720p29.97");
    EXPECT_EQ(Raster(VIDEO_FORMAT_1280_720_23P), "  Display Format        : 1280x720p23.98");
}

TEST(VideoDecoderDisplayFormat, OtherRatesStayIntegers)
{
    EXPECT_EQ(Raster(VIDEO_FORMAT_1280_720_24P), "  Display Format        : 1280x720p24");
    EXPECT_EQ(Raster(VIDEO_FORMAT_1280_720_25P), "  Display Format        : 1280x720p25");
    EXPECT_EQ(Raster(VIDEO_FORMAT_1280_720_30P), "  Display Format        : 1280x720p30");
    EXPECT_EQ(Raster(VIDEO_FORMAT_1280_720_50P), "  Display Format        : 1280x720p50");
    EXPECT_EQ(Raster(VIDEO_FORMAT_1280_720_60P), "  Display Format        : 1280x720p60");
    EXPECT_EQ(Raster(VIDEO_FORMAT_1280_1024_75P), "  Display Format        : 1280x1024p75");
    EXPECT_EQ(Raster(VIDEO_FORMAT_640_480_85P), "  Display Format        : 640x480p85");
    EXPECT_EQ(Raster(VIDEO_FORMAT_CODE(1280, 720, 22, 0)), "  Display Format        : 1280x720p22");
    EXPECT_EQ(Raster(VIDEO_FORMAT_CODE(1280, 720, 28, 0)), "  Display Format        : 1280x720p28");
    EXPECT_EQ(Raster(VIDEO_FORMAT_CODE(1280, 720, 58, 0)), "  Display Format        : 1280x720p58");
    EXPECT_EQ(Raster(VIDEO_FORMAT_CODE(1280, 720, 100, 0)), "  Display Format        : 1280x720p100");
}

TEST(VideoDecoderDisplayFormat, InterlacedRasters)
{
    EXPECT_EQ(Raster(0x80000000B4048033), "  Display Format        : 720x576i25");
    EXPECT_EQ(Raster(VIDEO_FORMAT_704_576_25I), "  Display Format        : 704x576i25");
    EXPECT_EQ(Raster(VIDEO_FORMAT_720_480_30I), "  Display Format        : 720x480i30");
    EXPECT_EQ(Raster(VIDEO_FORMAT_CODE(1920, 1080, 59, 1)), "  Display Format        : 1920x1080i59.94");
    EXPECT_EQ(Raster(VIDEO_FORMAT_CODE(1920, 1080, 23, 1)), "  Display Format        : 1920x1080i23.98");
}

TEST(VideoDecoderDisplayFormat, Progressive2160Lines)
{
    EXPECT_EQ(Raster(0x80000003C010E02E), "  Display Format        : 3840x2160p23.98");
}

TEST(VideoDecoderDisplayFormat, FieldsAtTheirExtremes)
{
    EXPECT_EQ(Raster(0x8000000000000000), "  Display Format        : 0x0p0");
    EXPECT_EQ(Raster(0x8000000000000001), "  Display Format        : 0x0i0");
    EXPECT_EQ(Raster(0x80000007FFFFFFFF), "  Display Format        : 8191x8191i255");
    EXPECT_EQ(Raster(VIDEO_FORMAT_CODE(8191, 0, 0, 0)), "  Display Format        : 8191x0p0");
    EXPECT_EQ(Raster(VIDEO_FORMAT_CODE(0, 8191, 0, 0)), "  Display Format        : 0x8191p0");
    EXPECT_EQ(Raster(VIDEO_FORMAT_CODE(0, 0, 255, 0)), "  Display Format        : 0x0p255");
}

TEST(VideoDecoderDisplayFormat, BitsAboveTheWidthDoNotCount)
{
    EXPECT_EQ(Raster(0xFFFFFFF9E008703B), "  Display Format        : 1920x1080i29.97");
    EXPECT_EQ(Raster(0xFFFFFFFFFFFFFFFF), "  Display Format        : 8191x8191i255");
}

/* ---- Frame buffers ---- */

TEST(VideoDecoderMemory, NoBuffers)
{
    SMGR_VCUDEC_STATS stats = {};
    stats.nFrameBufferSizeEachInBytes = 3110400;
    EXPECT_EQ(Line(stats, "VCU Memory required"), "  VCU Memory required   :  0x3110400 bytes (  0 Mbytes)");
    EXPECT_EQ(Line(stats, "VCU Memory allocated"), "  VCU Memory allocated  :  0x3110400 bytes (  0 Mbytes)");
    EXPECT_EQ(Line(stats, "Display Buffers"), "  Display Buffers       : 0x0x0 ({ULONG 0 159} bytes)");
}

TEST(VideoDecoderMemory, ProductsAbove4GiBDoNotWrap)
{
    SMGR_VCUDEC_STATS stats = {};
    stats.nFrameBufferSizeEachInBytes = 8912896; // 8.5 MiB
    stats.nFrameBufferNumber = 1000;
    stats.nFrameBufferNumberInUsed = 500;
    EXPECT_EQ(Line(stats, "VCU Memory required"), "  VCU Memory required   : 1000x8912896 bytes (8500 Mbytes)");
    EXPECT_EQ(Line(stats, "VCU Memory allocated"), "  VCU Memory allocated  : 500x8912896 bytes (4250 Mbytes)");
    EXPECT_EQ(Line(stats, "Display Buffers"), "  Display Buffers       : 1000x0x0 ({ULONG 8912896000 159} bytes)");
}

TEST(VideoDecoderMemory, CountsAbove31BitsAreUnsigned)
{
    SMGR_VCUDEC_STATS stats = {};
    stats.nFrameBufferSizeEachInBytes = 1048576;
    stats.nFrameBufferNumber = 4294967295;
    stats.nFrameBufferNumberInUsed = 2147483648;
    stats.nFrameBufferWidth = 4294967294;
    stats.nFrameBufferHeight = 4294967293;
    EXPECT_EQ(Line(stats, "VCU Memory required"), "  VCU Memory required   : 4294967295x1048576 bytes (4294967295 Mbytes)");
    EXPECT_EQ(Line(stats, "VCU Memory allocated"), "  VCU Memory allocated  : 2147483648x1048576 bytes (2147483648 Mbytes)");
    EXPECT_EQ(Line(stats, "Display Buffers"),
              "  Display Buffers       : 4294967295x4294967294x4294967293 ({ULONG 4503599626321920 159} bytes)");
}

TEST(VideoDecoderMemory, BelowOneMebibyteIsZero)
{
    SMGR_VCUDEC_STATS stats = {};
    stats.nFrameBufferNumber = 1;
    stats.nFrameBufferNumberInUsed = 2;
    stats.nFrameBufferSizeEachInBytes = 1048575;
    EXPECT_EQ(Line(stats, "VCU Memory required"), "  VCU Memory required   :  1x1048575 bytes (  0 Mbytes)");
    EXPECT_EQ(Line(stats, "VCU Memory allocated"), "  VCU Memory allocated  :  2x1048575 bytes (  1 Mbytes)");
    stats.nFrameBufferSizeEachInBytes = 1048576;
    EXPECT_EQ(Line(stats, "VCU Memory required"), "  VCU Memory required   :  1x1048576 bytes (  1 Mbytes)");
}

TEST(VideoDecoderMemory, ProductsWrapAt64Bits)
{
    SMGR_VCUDEC_STATS stats = {};
    stats.nFrameBufferSizeEachInBytes = 9223372036854775808ul; // 2^63
    stats.nFrameBufferNumber = 2;
    stats.nFrameBufferNumberInUsed = 3;
    EXPECT_EQ(Line(stats, "VCU Memory required"), "  VCU Memory required   :  2x9223372036854775808 bytes (  0 Mbytes)");
    // 2^63 shifted as an unsigned number: 2^43
    EXPECT_EQ(Line(stats, "VCU Memory allocated"), "  VCU Memory allocated  :  3x9223372036854775808 bytes (8796093022208 Mbytes)");
    EXPECT_EQ(Line(stats, "Display Buffers"), "  Display Buffers       : 2x0x0 ({ULONG 0 159} bytes)");
}

TEST(VideoDecoder, BitDepthsAreUnsigned)
{
    SMGR_VCUDEC_STATS stats = {};
    stats.nFrameBufferBitDepthY = 4294967295;
    stats.nFrameBufferBitDepthC = 4294967294;
    EXPECT_EQ(Line(stats, "Display Bit Depth"), "  Display Bit Depth     : Y=4294967295, C=4294967294");
}

TEST(VideoDecoder, WithoutCroppingTheOffsetsDoNotShow)
{
    SMGR_VCUDEC_STATS stats = {};
    stats.nCropOffsetLeft = 4;
    stats.nCropOffsetRight = 5;
    stats.nCropOffsetTop = 6;
    stats.nCropOffsetBottom = 7;
    EXPECT_EQ(Line(stats, "Cropping"), "  Cropping              : None");
}

TEST(VideoDecoder, AnyNonZeroFlagShowsTheCropOffsets)
{
    SMGR_VCUDEC_STATS stats = {};
    stats.bCropping = 2;
    EXPECT_EQ(Line(stats, "Cropping"), "  Cropping              : L=0, R=0, T=0, B=0");
    stats.bCropping = -1;
    stats.nCropOffsetLeft = 4294967295;
    stats.nCropOffsetRight = 4294967294;
    stats.nCropOffsetTop = 4294967293;
    stats.nCropOffsetBottom = 4294967292;
    EXPECT_EQ(Line(stats, "Cropping"), "  Cropping              : L=4294967295, R=4294967294, T=4294967293, B=4294967292");
}

/* ---- Operating characteristics ---- */

// The block, at the debug level.
static std::string Operation(const SMGR_VCUDEC_STATS& stats)
{
    return Section(Report(stats, STATS_LEVEL_DEBUG), "  Decoder operating", "  Display Buffers");
}

// Decoder output delays, each at another distance from a hardware delay.
static SMGR_VCUDEC_STATS OutputDelays()
{
    SMGR_VCUDEC_STATS stats = {};
    stats.nVDelayOutputMS = 90;
    stats.nVDelayOutputMSAvg = 100;
    stats.nVMaxDelayOutputMS = 130;
    stats.nVMinDelayOutputMS = 80;
    return stats;
}

TEST(VideoDecoderOperation, BothPeriodsShort)
{
    SMGR_VCUDEC_STATS stats = OutputDelays();
    stats.bVDelayInputEstimateShortDelay = 2; // any non-zero flag
    stats.bVDelayOutputEstimateShortDelay = -1;
    stats.nVTheoDelayHwOutputMS = 600;
    stats.nVDelayHwOutputMS = 70;
    stats.nVDelayHwOutputFrameMS = 66;
    stats.nVDecInputJitterMS = 3;
    stats.nVDecOutputJitterMS = 4;
    EXPECT_EQ(Operation(stats),
              "  Decoder operating characteristics (Delays are calculated from the output of the Framer).\n"
              "    Decoder IN          :    0 ms/avg:   0 ms\t(Last 1 sec: min/max=  0/  0ms)\n"
              "    Decoder OUT         :   90 ms/avg: 100 ms\t(Last 1 sec: min/max= 80/130ms)\n"
              "    HW OUT              :  600 ms/  70 ms    \t(Last 1 sec: theoretical/real value)\t--- WARNING: 'HW OUT' (real) < "
              "'Decoder OUT' Max  130 ms \n"
              "    Decoder Latency     :    0 ms \t\t(Last 1 sec: Min OUT - IN = 80 - 0 ms) \n"
              "    Decoder Jitter      :    0 ms \t\t(Last 1 sec: jitter OUT - IN = estimation period too short) \n"
              "    HW Delay Theo       :  510 ms/avg: 500 ms \t(Last 1 sec: min/max=470/520ms)\t--- WARNING: HW Delay should be reduce "
              "(CBUF Delay should be increase).\n"
              "             Real       :  -20 ms/avg: -30 ms \t(Last 1 sec: min/max=-60/-10ms)\t--- WARNING: HW has NOTHING TO PLAY in "
              "time (CBUF Delay should be reduced by 60 ms OR STC Offset should be increase by 60 ms).\n"
              "    HW Tx Error         :   -4 ms \t\t(Last 1 sec: Frame played Early vs HW OUT) \n"
              "    Max VCU IN Jitter   :    0 ms \n"
              "    ReOrder list length :    0 \t\t\t(Last 1 sec: min/max=  0/  0  )\n"
              "    HW BD list length   :    0 \t\t\t(Last 1 sec: min/max=  0/  0  ) - Hw rd time very low, reflect VCU Dec jitter.\n");
}

TEST(VideoDecoderOperation, OnlyTheInputPeriodShort)
{
    SMGR_VCUDEC_STATS stats = OutputDelays();
    stats.bVDelayInputEstimateShortDelay = 1;
    stats.nVTheoDelayHwOutputMS = 100;
    stats.nVDelayHwOutputMS = 600;
    stats.nVDelayHwOutputFrameMS = 600;
    stats.nVDecInputJitterMS = 3;
    stats.nVDecOutputJitterMS = 4;
    EXPECT_EQ(
        Operation(stats),
        "  Decoder operating characteristics (Delays are calculated from the output of the Framer).\n"
        "    Decoder IN          :    0 ms/avg:   0 ms\t(Last 1 sec: min/max=  0/  0ms)\n"
        "    Decoder OUT         :   90 ms/avg: 100 ms\t(Last 10 sec: min/max= 80/130ms)\n"
        "    HW OUT              :  100 ms/ 600 ms    \t(Last 10 sec: theoretical/real value)\t--- WARNING: 'HW OUT' (theo) < 'Decoder "
        "OUT' Max  130 ms \n"
        "    Decoder Latency     :    0 ms \t\t(Last 10 sec: Min OUT - IN = 80 - 0 ms) \n"
        "    Decoder Jitter      :    0 ms \t\t(Last 10 sec: jitter OUT - jitter IN = 4 - 3 ms) - CBUF Delay should absorb jitter IN \n"
        "    HW Delay Theo       :   10 ms/avg:   0 ms \t(Last 10 sec: min/max=-30/ 20ms)\t--- WARNING: HW has NOTHING TO PLAY in time "
        "(CBUF Delay should be reduced by 30 ms OR STC Offset should be increase by 30 ms).\n"
        "             Real       :  510 ms/avg: 500 ms \t(Last 10 sec: min/max=470/520ms)\t--- WARNING: HW Delay should be reduce (CBUF "
        "Delay should be increase).\n"
        "    HW Tx Error         :    0 ms \t\t(Last 10 sec: Frame played on Time vs HW OUT) \n"
        "    Max VCU IN Jitter   :    0 ms \n"
        "    ReOrder list length :    0 \t\t\t(Last 10 sec: min/max=  0/  0  )\n"
        "    HW BD list length   :    0 \t\t\t(Last 10 sec: min/max=  0/  0  ) - Hw rd time very low, reflect VCU Dec jitter.\n");
}

TEST(VideoDecoderOperation, DelaysAbove31BitsAreNegative)
{
    SMGR_VCUDEC_STATS stats = {};
    stats.nVDelayInputMS = 4294967295;
    stats.nVDelayInputMSAvg = 4294967294;
    stats.nVMaxDelayInputMS = 4294967293;
    stats.nVMinDelayInputMS = 4294967292;
    stats.nVDelayOutputMS = 2147483648;
    stats.nVDelayOutputMSAvg = 2147483647;
    stats.nVMaxDelayOutputMS = 4294967286;
    stats.nVMinDelayOutputMS = 4294967285;
    EXPECT_EQ(Line(stats, "    Decoder IN"), "    Decoder IN          :   -1 ms/avg:  -2 ms\t(Last 10 sec: min/max= -4/ -3ms)");
    EXPECT_EQ(Line(stats, "    Decoder OUT"),
              "    Decoder OUT         : -2147483648 ms/avg:2147483647 ms\t(Last 10 sec: min/max=-11/-10ms)");
    stats.nVDelayOutputMS = 4294967288;
    stats.nVDelayOutputMSAvg = 4294967287;
    EXPECT_EQ(Line(stats, "    Decoder OUT"), "    Decoder OUT         :   -8 ms/avg:  -9 ms\t(Last 10 sec: min/max=-11/-10ms)");
}

TEST(VideoDecoderOperation, ListLengthsAbove31BitsAreNegative)
{
    SMGR_VCUDEC_STATS stats = {};
    stats.nVCurReOrderLen = 4294967295;
    stats.nVMaxReOrderLen = 4294967294;
    stats.nVMinReOrderLen = 4294967293;
    stats.nVCurBDListLen = 4294967292;
    stats.nVMaxBDListLen = 4294967291;
    stats.nVMinBDListLen = 2147483648;
    EXPECT_EQ(Line(stats, "ReOrder list length"), "    ReOrder list length :   -1 \t\t\t(Last 10 sec: min/max= -3/ -2  )");
    EXPECT_EQ(
        Line(stats, "HW BD list length"),
        "    HW BD list length   :   -4 \t\t\t(Last 10 sec: min/max=-2147483648/ -5  ) - Hw rd time very low, reflect VCU Dec jitter.");
}

TEST(VideoDecoderOperation, TheRealWarningWinsOverTheTheoretical)
{
    SMGR_VCUDEC_STATS stats = OutputDelays();
    stats.nVTheoDelayHwOutputMS = 128;
    stats.nVDelayHwOutputMS = 129;
    EXPECT_EQ(Line(stats, "    HW OUT "), "    HW OUT              :  128 ms/ 129 ms    \t(Last 10 sec: theoretical/real value)\t--- "
                                          "WARNING: 'HW OUT' (real) < 'Decoder OUT' Max  130 ms ");
}

TEST(VideoDecoderOperation, WarnsOfTheRealHardwareOutputAlone)
{
    SMGR_VCUDEC_STATS stats = OutputDelays();
    stats.nVTheoDelayHwOutputMS = 130;
    stats.nVDelayHwOutputMS = 1;
    EXPECT_EQ(Line(stats, "    HW OUT "), "    HW OUT              :  130 ms/   1 ms    \t(Last 10 sec: theoretical/real value)\t--- "
                                          "WARNING: 'HW OUT' (real) < 'Decoder OUT' Max  130 ms ");
    stats.nVTheoDelayHwOutputMS = 0;
    EXPECT_EQ(Line(stats, "    HW OUT "), "    HW OUT              :    0 ms/   1 ms    \t(Last 10 sec: theoretical/real value)\t--- "
                                          "WARNING: 'HW OUT' (real) < 'Decoder OUT' Max  130 ms ");
}

TEST(VideoDecoderOperation, WarnsOfTheTheoreticalHardwareOutput)
{
    SMGR_VCUDEC_STATS stats = OutputDelays();
    stats.nVTheoDelayHwOutputMS = 129;
    stats.nVDelayHwOutputMS = 130;
    EXPECT_EQ(Line(stats, "    HW OUT "), "    HW OUT              :  129 ms/ 130 ms    \t(Last 10 sec: theoretical/real value)\t--- "
                                          "WARNING: 'HW OUT' (theo) < 'Decoder OUT' Max  130 ms ");
    stats.nVDelayHwOutputMS = 0; // not measured: not a real delay below the decoder's
    EXPECT_EQ(Line(stats, "    HW OUT "), "    HW OUT              :  129 ms/   0 ms    \t(Last 10 sec: theoretical/real value)\t--- "
                                          "WARNING: 'HW OUT' (theo) < 'Decoder OUT' Max  130 ms ");
}

TEST(VideoDecoderOperation, NoWarningOfAHardwareOutputAtTheDecodersMaximum)
{
    SMGR_VCUDEC_STATS stats = OutputDelays();
    stats.nVTheoDelayHwOutputMS = 130;
    stats.nVDelayHwOutputMS = 130;
    EXPECT_EQ(Line(stats, "    HW OUT "), "    HW OUT              :  130 ms/ 130 ms    \t(Last 10 sec: theoretical/real value) ");
}

TEST(VideoDecoderOperation, NoWarningOfAHardwareOutputThatIsNotKnown)
{
    SMGR_VCUDEC_STATS stats = OutputDelays();
    EXPECT_EQ(Line(stats, "    HW OUT "), "    HW OUT              :    0 ms/   0 ms    \t(Last 10 sec: theoretical/real value) ");
    stats.nVDelayHwOutputMS = 131;
    EXPECT_EQ(Line(stats, "    HW OUT "), "    HW OUT              :    0 ms/ 131 ms    \t(Last 10 sec: theoretical/real value) ");
    stats.nVDelayHwOutputMS = 0;
    stats.nVTheoDelayHwOutputMS = 131;
    EXPECT_EQ(Line(stats, "    HW OUT "), "    HW OUT              :  131 ms/   0 ms    \t(Last 10 sec: theoretical/real value) ");
}

TEST(VideoDecoderOperation, HardwareOutputsCompareUnsigned)
{
    SMGR_VCUDEC_STATS stats = OutputDelays();
    stats.nVTheoDelayHwOutputMS = 2147483648; // above 130, though it prints as negative
    stats.nVDelayHwOutputMS = 4294967295;
    EXPECT_EQ(Line(stats, "    HW OUT "), "    HW OUT              : -2147483648 ms/  -1 ms    \t(Last 10 sec: theoretical/real value) ");
    stats.nVMaxDelayOutputMS = 4294967295;
    EXPECT_EQ(Line(stats, "    HW OUT "), "    HW OUT              : -2147483648 ms/  -1 ms    \t(Last 10 sec: theoretical/real "
                                          "value)\t--- WARNING: 'HW OUT' (theo) < 'Decoder OUT' Max   -1 ms ");
    stats.nVDelayHwOutputMS = 2147483647;
    EXPECT_EQ(Line(stats, "    HW OUT "), "    HW OUT              : -2147483648 ms/2147483647 ms    \t(Last 10 sec: theoretical/real "
                                          "value)\t--- WARNING: 'HW OUT' (real) < 'Decoder OUT' Max   -1 ms ");
    stats.nVDelayHwOutputMS = 4294967294;
    EXPECT_EQ(Line(stats, "    HW OUT "), "    HW OUT              : -2147483648 ms/  -2 ms    \t(Last 10 sec: theoretical/real "
                                          "value)\t--- WARNING: 'HW OUT' (real) < 'Decoder OUT' Max   -1 ms ");
}

TEST(VideoDecoderOperation, LatencyIsUnsigned)
{
    SMGR_VCUDEC_STATS stats = {};
    stats.nVDecLatencyMS = 4294967295;
    stats.nVMinDelayOutputMS = 4294967294;
    stats.nVMinDelayInputMS = 4294967293;
    EXPECT_EQ(Line(stats, "    Decoder Latency"),
              "    Decoder Latency     : 4294967295 ms \t\t(Last 10 sec: Min OUT - IN = 4294967294 - 4294967293 ms) ");
}

TEST(VideoDecoderOperation, NoJitterInAShortPeriodIsNoResult)
{
    SMGR_VCUDEC_STATS stats = {};
    stats.bVDelayOutputEstimateShortDelay = 1;
    stats.nVDecInputJitterMS = 7;
    stats.nVDecOutputJitterMS = 8;
    EXPECT_EQ(Line(stats, "Decoder Jitter"),
              "    Decoder Jitter      :    0 ms \t\t(Last 1 sec: jitter OUT - IN = estimation period too short) ");
    stats.nVDecJitterMS = 1;
    EXPECT_EQ(
        Line(stats, "Decoder Jitter"),
        "    Decoder Jitter      :    1 ms \t\t(Last 1 sec: jitter OUT - jitter IN = 8 - 7 ms) - CBUF Delay should absorb jitter IN ");
}

TEST(VideoDecoderOperation, NoJitterInAFullPeriodIsAResult)
{
    SMGR_VCUDEC_STATS stats = {};
    stats.nVDecInputJitterMS = 7;
    stats.nVDecOutputJitterMS = 7;
    EXPECT_EQ(
        Line(stats, "Decoder Jitter"),
        "    Decoder Jitter      :    0 ms \t\t(Last 10 sec: jitter OUT - jitter IN = 7 - 7 ms) - CBUF Delay should absorb jitter IN ");
}

TEST(VideoDecoderOperation, JittersAreUnsigned)
{
    SMGR_VCUDEC_STATS stats = {};
    stats.nVDecJitterMS = 4294967295;
    stats.nVDecOutputJitterMS = 4294967294;
    stats.nVDecInputJitterMS = 4294967293;
    stats.nVDecMaxInputJitterMS = 4294967292;
    EXPECT_EQ(Line(stats, "Decoder Jitter"), "    Decoder Jitter      : 4294967295 ms \t\t(Last 10 sec: jitter OUT - jitter IN = "
                                             "4294967294 - 4294967293 ms) - CBUF Delay should absorb jitter IN ");
    EXPECT_EQ(Line(stats, "Max VCU IN Jitter"), "    Max VCU IN Jitter   : 4294967292 ms ");
}

TEST(VideoDecoderOperation, TheoreticalMarginOf450IsNotTooLarge)
{
    SMGR_VCUDEC_STATS stats = OutputDelays();
    stats.nVTheoDelayHwOutputMS = 550;
    EXPECT_EQ(Line(stats, "HW Delay Theo"),
              "    HW Delay Theo       :  460 ms/avg: 450 ms \t(Last 10 sec: min/max=420/470ms  - based on HW OUT theo) ");
}

TEST(VideoDecoderOperation, TheoreticalMarginOf451IsTooLargeIfAboveTheJitter)
{
    SMGR_VCUDEC_STATS stats = OutputDelays();
    stats.nVTheoDelayHwOutputMS = 551;
    stats.nVDecJitterMS = 450;
    EXPECT_EQ(Line(stats, "HW Delay Theo"), "    HW Delay Theo       :  461 ms/avg: 451 ms \t(Last 10 sec: min/max=421/471ms)\t--- "
                                            "WARNING: HW Delay should be reduce (CBUF Delay should be increase).");
    stats.nVDecJitterMS = 451;
    EXPECT_EQ(Line(stats, "HW Delay Theo"),
              "    HW Delay Theo       :  461 ms/avg: 451 ms \t(Last 10 sec: min/max=421/471ms  - based on HW OUT theo) ");
    stats.nVDecJitterMS = 452;
    EXPECT_EQ(Line(stats, "HW Delay Theo"),
              "    HW Delay Theo       :  461 ms/avg: 451 ms \t(Last 10 sec: min/max=421/471ms  - based on HW OUT theo) ");
    stats.nVDecJitterMS = 4294967295; // -1 in this comparison
    EXPECT_EQ(Line(stats, "HW Delay Theo"), "    HW Delay Theo       :  461 ms/avg: 451 ms \t(Last 10 sec: min/max=421/471ms)\t--- "
                                            "WARNING: HW Delay should be reduce (CBUF Delay should be increase).");
}

TEST(VideoDecoderOperation, ATheoreticalMarginOfOneIsEnough)
{
    SMGR_VCUDEC_STATS stats = OutputDelays();
    stats.nVTheoDelayHwOutputMS = 101;
    for (const UINT nReal : {0u, 1u}) // plays no part from a margin of 1 on
    {
        stats.nVDelayHwOutputMS = nReal;
        EXPECT_EQ(Line(stats, "HW Delay Theo"),
                  "    HW Delay Theo       :   11 ms/avg:   1 ms \t(Last 10 sec: min/max=-29/ 21ms  - based on HW OUT theo) ");
    }
}

TEST(VideoDecoderOperation, NoTheoreticalMarginWithAMeasuredDelayHasNothingToPlay)
{
    SMGR_VCUDEC_STATS stats = OutputDelays();
    stats.nVTheoDelayHwOutputMS = 100;
    stats.nVDelayHwOutputMS = 1;
    EXPECT_EQ(Line(stats, "HW Delay Theo"),
              "    HW Delay Theo       :   10 ms/avg:   0 ms \t(Last 10 sec: min/max=-30/ 20ms)\t--- WARNING: HW has NOTHING TO PLAY in "
              "time (CBUF Delay should be reduced by 30 ms OR STC Offset should be increase by 30 ms).");
    stats.nVTheoDelayHwOutputMS = 60;
    EXPECT_EQ(Line(stats, "HW Delay Theo"),
              "    HW Delay Theo       :  -30 ms/avg: -40 ms \t(Last 10 sec: min/max=-70/-20ms)\t--- WARNING: HW has NOTHING TO PLAY in "
              "time (CBUF Delay should be reduced by 70 ms OR STC Offset should be increase by 70 ms).");
    stats.nVTheoDelayHwOutputMS = 0; // the measured delay decides, not this one
    EXPECT_EQ(Line(stats, "HW Delay Theo"),
              "    HW Delay Theo       :  -90 ms/avg:-100 ms \t(Last 10 sec: min/max=-130/-80ms)\t--- WARNING: HW has NOTHING TO PLAY in "
              "time (CBUF Delay should be reduced by 130 ms OR STC Offset should be increase by 130 ms).");
}

TEST(VideoDecoderOperation, NoTheoreticalMarginWithoutAMeasuredDelayIsNoWarningAndEndsWithoutABlank)
{
    SMGR_VCUDEC_STATS stats = OutputDelays();
    stats.nVTheoDelayHwOutputMS = 100;
    EXPECT_EQ(Line(stats, "HW Delay Theo"),
              "    HW Delay Theo       :   10 ms/avg:   0 ms \t(Last 10 sec: min/max=-30/ 20ms  - based on HW OUT theo)");
    stats.nVTheoDelayHwOutputMS = 60;
    EXPECT_EQ(Line(stats, "HW Delay Theo"),
              "    HW Delay Theo       :  -30 ms/avg: -40 ms \t(Last 10 sec: min/max=-70/-20ms  - based on HW OUT theo)");
}

TEST(VideoDecoderOperation, TheAdviceIsAnAbsoluteValue)
{
    SMGR_VCUDEC_STATS stats = OutputDelays();
    stats.nVMaxDelayOutputMS = 60; // below the average, so that the smallest margin is positive
    stats.nVTheoDelayHwOutputMS = 100;
    stats.nVDelayHwOutputMS = 99;
    EXPECT_EQ(Line(stats, "HW Delay Theo"),
              "    HW Delay Theo       :   10 ms/avg:   0 ms \t(Last 10 sec: min/max= 40/ 20ms)\t--- WARNING: HW has NOTHING TO PLAY in "
              "time (CBUF Delay should be reduced by 40 ms OR STC Offset should be increase by 40 ms).");
    EXPECT_EQ(Line(stats, "         Real"),
              "             Real       :    9 ms/avg:  -1 ms \t(Last 10 sec: min/max= 39/ 19ms)\t--- WARNING: HW has NOTHING TO PLAY in "
              "time (CBUF Delay should be reduced by 39 ms OR STC Offset should be increase by 39 ms).");
}

TEST(VideoDecoderOperation, TheMostNegativeMarginHasNoAbsoluteValue)
{
    SMGR_VCUDEC_STATS stats = {};
    stats.nVDelayOutputMS = 2;
    stats.nVDelayOutputMSAvg = 3;
    stats.nVMaxDelayOutputMS = 2147483649;
    stats.nVMinDelayOutputMS = 1;
    stats.nVTheoDelayHwOutputMS = 1;
    stats.nVDelayHwOutputMS = 1;
    EXPECT_EQ(Line(stats, "HW Delay Theo"),
              "    HW Delay Theo       :   -1 ms/avg:  -2 ms \t(Last 10 sec: min/max=-2147483648/  0ms)\t--- WARNING: HW has NOTHING TO "
              "PLAY in time (CBUF Delay should be reduced by -2147483648 ms OR STC Offset should be increase by -2147483648 ms).");
    EXPECT_EQ(Line(stats, "         Real"),
              "             Real       :   -1 ms/avg:  -2 ms \t(Last 10 sec: min/max=-2147483648/  0ms)\t--- WARNING: HW has NOTHING TO "
              "PLAY in time (CBUF Delay should be reduced by -2147483648 ms OR STC Offset should be increase by -2147483648 ms).");
}

TEST(VideoDecoderOperation, RealMarginOf450IsNotTooLarge)
{
    SMGR_VCUDEC_STATS stats = OutputDelays();
    stats.nVDelayHwOutputMS = 550;
    EXPECT_EQ(Line(stats, "         Real"),
              "             Real       :  460 ms/avg: 450 ms \t(Last 10 sec: min/max=420/470ms  - based on HW OUT real)");
}

TEST(VideoDecoderOperation, RealMarginOf451IsTooLargeIfAboveTheJitter)
{
    SMGR_VCUDEC_STATS stats = OutputDelays();
    stats.nVDelayHwOutputMS = 551;
    stats.nVDecJitterMS = 450;
    EXPECT_EQ(Line(stats, "         Real"), "             Real       :  461 ms/avg: 451 ms \t(Last 10 sec: min/max=421/471ms)\t--- "
                                            "WARNING: HW Delay should be reduce (CBUF Delay should be increase).");
    stats.nVDecJitterMS = 451;
    EXPECT_EQ(Line(stats, "         Real"),
              "             Real       :  461 ms/avg: 451 ms \t(Last 10 sec: min/max=421/471ms  - based on HW OUT real)");
    stats.nVDecJitterMS = 452;
    EXPECT_EQ(Line(stats, "         Real"),
              "             Real       :  461 ms/avg: 451 ms \t(Last 10 sec: min/max=421/471ms  - based on HW OUT real)");
    stats.nVDecJitterMS = 4294967295; // -1 in this comparison
    EXPECT_EQ(Line(stats, "         Real"), "             Real       :  461 ms/avg: 451 ms \t(Last 10 sec: min/max=421/471ms)\t--- "
                                            "WARNING: HW Delay should be reduce (CBUF Delay should be increase).");
}

TEST(VideoDecoderOperation, ARealMarginOfOneIsEnough)
{
    SMGR_VCUDEC_STATS stats = OutputDelays();
    stats.nVDelayHwOutputMS = 101;
    EXPECT_EQ(Line(stats, "         Real"),
              "             Real       :   11 ms/avg:   1 ms \t(Last 10 sec: min/max=-29/ 21ms  - based on HW OUT real)");
}

TEST(VideoDecoderOperation, NoRealMarginHasNothingToPlay)
{
    SMGR_VCUDEC_STATS stats = OutputDelays();
    stats.nVDelayHwOutputMS = 100;
    EXPECT_EQ(Line(stats, "         Real"),
              "             Real       :   10 ms/avg:   0 ms \t(Last 10 sec: min/max=-30/ 20ms)\t--- WARNING: HW has NOTHING TO PLAY in "
              "time (CBUF Delay should be reduced by 30 ms OR STC Offset should be increase by 30 ms).");
    stats.nVDelayHwOutputMS = 60;
    EXPECT_EQ(Line(stats, "         Real"),
              "             Real       :  -30 ms/avg: -40 ms \t(Last 10 sec: min/max=-70/-20ms)\t--- WARNING: HW has NOTHING TO PLAY in "
              "time (CBUF Delay should be reduced by 70 ms OR STC Offset should be increase by 70 ms).");
}

TEST(VideoDecoderOperation, ADelayThatIsNotMeasuredPrintsNegativeMarginsWithoutAWarning)
{
    SMGR_VCUDEC_STATS stats = OutputDelays();
    EXPECT_EQ(Line(stats, "         Real"),
              "             Real       :  -90 ms/avg:-100 ms \t(Last 10 sec: min/max=-130/-80ms  - based on HW OUT real)");
}

TEST(VideoDecoderOperation, AMarginOverTheAverageMayBeNegativeOverTheOthers)
{
    SMGR_VCUDEC_STATS stats = {};
    stats.nVDelayOutputMS = 610;
    stats.nVDelayOutputMSAvg = 100;
    stats.nVMaxDelayOutputMS = 620;
    stats.nVMinDelayOutputMS = 605;
    stats.nVTheoDelayHwOutputMS = 551;
    stats.nVDelayHwOutputMS = 552;
    EXPECT_EQ(Line(stats, "HW Delay Theo"), "    HW Delay Theo       :  -59 ms/avg: 451 ms \t(Last 10 sec: min/max=-69/-54ms)\t--- "
                                            "WARNING: HW Delay should be reduce (CBUF Delay should be increase).");
    EXPECT_EQ(Line(stats, "         Real"), "             Real       :  -58 ms/avg: 452 ms \t(Last 10 sec: min/max=-68/-53ms)\t--- "
                                            "WARNING: HW Delay should be reduce (CBUF Delay should be increase).");
    stats.nVDecJitterMS = 500;
    EXPECT_EQ(Line(stats, "HW Delay Theo"),
              "    HW Delay Theo       :  -59 ms/avg: 451 ms \t(Last 10 sec: min/max=-69/-54ms  - based on HW OUT theo) ");
    EXPECT_EQ(Line(stats, "         Real"),
              "             Real       :  -58 ms/avg: 452 ms \t(Last 10 sec: min/max=-68/-53ms  - based on HW OUT real)");
}

TEST(VideoDecoderOperation, MarginsWrapAt32Bits)
{
    SMGR_VCUDEC_STATS stats = {};
    stats.nVDelayOutputMS = 4294967290;
    stats.nVDelayOutputMSAvg = 4294967291;
    stats.nVMaxDelayOutputMS = 4294967292;
    stats.nVMinDelayOutputMS = 4294967289;
    stats.nVTheoDelayHwOutputMS = 5;
    stats.nVDelayHwOutputMS = 6;
    EXPECT_EQ(Line(stats, "HW Delay Theo"),
              "    HW Delay Theo       :   11 ms/avg:  10 ms \t(Last 10 sec: min/max=  9/ 12ms  - based on HW OUT theo) ");
    EXPECT_EQ(Line(stats, "         Real"),
              "             Real       :   12 ms/avg:  11 ms \t(Last 10 sec: min/max= 10/ 13ms  - based on HW OUT real)");
}

TEST(VideoDecoderOperation, TheLargestMarginIsTooLargeUnlessTheJitterIsToo)
{
    SMGR_VCUDEC_STATS stats = {};
    stats.nVTheoDelayHwOutputMS = 2147483647;
    stats.nVDelayHwOutputMS = 2147483647;
    stats.nVDecJitterMS = 2147483646;
    EXPECT_EQ(Line(stats, "HW Delay Theo"),
              "    HW Delay Theo       : 2147483647 ms/avg:2147483647 ms \t(Last 10 sec: min/max=2147483647/2147483647ms)\t--- WARNING: HW "
              "Delay should be reduce (CBUF Delay should be increase).");
    EXPECT_EQ(Line(stats, "         Real"),
              "             Real       : 2147483647 ms/avg:2147483647 ms \t(Last 10 sec: min/max=2147483647/2147483647ms)\t--- WARNING: HW "
              "Delay should be reduce (CBUF Delay should be increase).");
    stats.nVDecJitterMS = 2147483647;
    EXPECT_EQ(Line(stats, "HW Delay Theo"), "    HW Delay Theo       : 2147483647 ms/avg:2147483647 ms \t(Last 10 sec: "
                                            "min/max=2147483647/2147483647ms  - based on HW OUT theo) ");
    EXPECT_EQ(Line(stats, "         Real"), "             Real       : 2147483647 ms/avg:2147483647 ms \t(Last 10 sec: "
                                            "min/max=2147483647/2147483647ms  - based on HW OUT real)");
}

TEST(VideoDecoderOperation, ADelayThatIsNotMeasuredWarnsIfTheAverageIsNegative)
{
    SMGR_VCUDEC_STATS stats = {};
    stats.nVDelayOutputMS = 4294966785; // -511
    stats.nVDelayOutputMSAvg = 4294966784;
    stats.nVMaxDelayOutputMS = 4294966786;
    stats.nVMinDelayOutputMS = 4294966783;
    EXPECT_EQ(Line(stats, "         Real"), "             Real       :  511 ms/avg: 512 ms \t(Last 10 sec: min/max=510/513ms)\t--- "
                                            "WARNING: HW Delay should be reduce (CBUF Delay should be increase).");
    stats.nVDecJitterMS = 512;
    EXPECT_EQ(Line(stats, "         Real"),
              "             Real       :  511 ms/avg: 512 ms \t(Last 10 sec: min/max=510/513ms  - based on HW OUT real)");
}

TEST(VideoDecoderOperation, KeyFrameTimeOnlyIfThereIsOne)
{
    SMGR_VCUDEC_STATS stats = {};
    EXPECT_EQ(Line(stats, "Key Frame Dec Time"), "");
    stats.nVKeyDecDelayMS = 1;
    EXPECT_EQ(Line(stats, "Key Frame Dec Time"), "    Key Frame Dec Time  :    1 ms ");
    stats.nVKeyDecDelayMS = 4294967296; // nothing in the lower 32 bits
    EXPECT_EQ(Line(stats, "Key Frame Dec Time"), "    Key Frame Dec Time  : 4294967296 ms ");
    stats.nVKeyDecDelayMS = 18446744073709551615ul;
    EXPECT_EQ(Line(stats, "Key Frame Dec Time"), "    Key Frame Dec Time  : 18446744073709551615 ms ");
}

TEST(VideoDecoderOperation, FramePlayedOnTime)
{
    SMGR_VCUDEC_STATS stats = {};
    stats.nVDelayHwOutputMS = 200;
    stats.nVDelayHwOutputFrameMS = 200;
    EXPECT_EQ(Line(stats, "HW Tx Error"), "    HW Tx Error         :    0 ms \t\t(Last 10 sec: Frame played on Time vs HW OUT) ");
}

TEST(VideoDecoderOperation, FramePlayedEarly)
{
    SMGR_VCUDEC_STATS stats = {};
    stats.nVDelayHwOutputMS = 200;
    stats.nVDelayHwOutputFrameMS = 199;
    EXPECT_EQ(Line(stats, "HW Tx Error"), "    HW Tx Error         :   -1 ms \t\t(Last 10 sec: Frame played Early vs HW OUT) ");
}

TEST(VideoDecoderOperation, FramePlayedLate)
{
    SMGR_VCUDEC_STATS stats = {};
    stats.nVDelayHwOutputMS = 200;
    stats.nVDelayHwOutputFrameMS = 201;
    EXPECT_EQ(Line(stats, "HW Tx Error"), "    HW Tx Error         :    1 ms \t\t(Last 10 sec: Frame played Late vs HW OUT) ");
}

TEST(VideoDecoderOperation, FrameTimesCompareUnsignedAndDifferSigned)
{
    SMGR_VCUDEC_STATS stats = {};
    stats.nVDelayHwOutputFrameMS = 4294967295;
    EXPECT_EQ(Line(stats, "HW Tx Error"), "    HW Tx Error         :   -1 ms \t\t(Last 10 sec: Frame played Late vs HW OUT) ");
    stats.nVDelayHwOutputFrameMS = 2147483648;
    EXPECT_EQ(Line(stats, "HW Tx Error"), "    HW Tx Error         : -2147483648 ms \t\t(Last 10 sec: Frame played Late vs HW OUT) ");
    stats.nVDelayHwOutputFrameMS = 0;
    stats.nVDelayHwOutputMS = 4294967295;
    EXPECT_EQ(Line(stats, "HW Tx Error"), "    HW Tx Error         :    1 ms \t\t(Last 10 sec: Frame played Early vs HW OUT) ");
}

/* ---- Counters ---- */

// The lines from the head of the hardware's counters on.
static std::string HwCounters(const SMGR_VCUDEC_STATS& stats, int nLevel)
{
    const std::string text = Report(stats, nLevel);
    const size_t start = text.find("  HW Counters");
    return start == std::string::npos ? std::string() : text.substr(start);
}

TEST(VideoDecoderCounters, NoOutputPrintsTheFixedTexts)
{
    SMGR_VCUDEC_STATS stats = {};
    stats.tCounters.tLastDisplayedOutputFrame = frozen_now - 1; // the fixed text says Never nevertheless
    stats.tCounters.tLastOutputError = frozen_now - 2;
    EXPECT_EQ(HwCounters(stats, STATS_LEVEL_DEFAULT), "  HW Counters \n"
                                                      "    Displayed Output Frms: 0 [0.00%] (Last One: Never)\n"
                                                      "    Skipped Output Frames: 0 [0.00%] (Last One: Never)\n"
                                                      "    Replayed Output Frames: 0 [0.00%] (Last One: Never)\n");
    EXPECT_EQ(HwCounters(stats, STATS_LEVEL_DEBUG), "  HW Counters \n"
                                                    "    Displayed Output Frms: 0 [0.00%] (Last One: Never)\n"
                                                    "    Skipped Output Frames: 0 [0.00%] (Last One: Never)\n"
                                                    "    Replayed Output Frames: 0 [0.00%] (Last One: Never)\n"
                                                    "    Output Errors       : 0 [0.00%] (Last One: Never)\n");
}

TEST(VideoDecoderCounters, ASumThatWrapsToZeroPrintsTheFixedTexts)
{
    SMGR_VCUDEC_STATS stats = {};
    stats.tCounters.nNumDisplayedOutputFrames = 9223372036854775808ul;
    stats.tCounters.nNumOutputErrors = 9223372036854775808ul;
    EXPECT_EQ(HwCounters(stats, STATS_LEVEL_DEFAULT), "  HW Counters \n"
                                                      "    Displayed Output Frms: 0 [0.00%] (Last One: Never)\n"
                                                      "    Skipped Output Frames: 0 [0.00%] (Last One: Never)\n"
                                                      "    Replayed Output Frames: 0 [0.00%] (Last One: Never)\n");
    EXPECT_EQ(HwCounters(stats, STATS_LEVEL_DEBUG), "  HW Counters \n"
                                                    "    Displayed Output Frms: 0 [0.00%] (Last One: Never)\n"
                                                    "    Skipped Output Frames: 0 [0.00%] (Last One: Never)\n"
                                                    "    Replayed Output Frames: 0 [0.00%] (Last One: Never)\n"
                                                    "    Output Errors       : 0 [0.00%] (Last One: Never)\n");
}

TEST(VideoDecoderCounters, OnlySkippedFrames)
{
    SMGR_VCUDEC_STATS stats = {};
    stats.tCounters.nNumSkippedOutputFrames = 6;
    stats.tCounters.tLastDisplayedOutputFrame = frozen_now - 11;
    stats.tCounters.tLastSkippedOutputFrame = frozen_now - 12;
    stats.tCounters.tLastReplayedOutputFrame = frozen_now - 13;
    EXPECT_EQ(HwCounters(stats, STATS_LEVEL_DEFAULT),
              "  HW Counters \n"
              "    Displayed Output Frms: {ULONG 0 159} [0.0000%] (Last One: {UpTime 11 159} ago)\n"
              "    Skipped Output Frames: {ULONG 6 159} [100.0000%] (Last One: {UpTime 12 159} ago)\n"
              "    Replayed Output Frames: {ULONG 0 159} [0.0000%] (Last One: {UpTime 13 159} ago)\n");
    EXPECT_EQ(HwCounters(stats, STATS_LEVEL_DEBUG), "  HW Counters \n"
                                                    "    Displayed Output Frms: {ULONG 0 159} [0.0000%] (Last One: {UpTime 11 159} ago)\n"
                                                    "    Skipped Output Frames: {ULONG 6 159} [100.0000%] (Last One: {UpTime 12 159} ago)\n"
                                                    "    Replayed Output Frames: {ULONG 0 159} [0.0000%] (Last One: {UpTime 13 159} ago)\n"
                                                    "    Output Errors       : {ULONG 0 159} [0.0000%] (Last One: Never)\n");
}

TEST(VideoDecoderCounters, EachOutcomeAloneIsOutput)
{
    SMGR_VCUDEC_STATS stats = {};
    stats.tCounters.nNumReplayedOutputFrames = 3;
    EXPECT_EQ(HwCounters(stats, STATS_LEVEL_DEFAULT), "  HW Counters \n"
                                                      "    Displayed Output Frms: {ULONG 0 159} [0.0000%] (Last One: Never)\n"
                                                      "    Skipped Output Frames: {ULONG 0 159} [0.0000%] (Last One: Never)\n"
                                                      "    Replayed Output Frames: {ULONG 3 159} [100.0000%] (Last One: Never)\n");
    stats.tCounters.nNumReplayedOutputFrames = 0;
    stats.tCounters.nNumOutputErrors = 4;
    EXPECT_EQ(HwCounters(stats, STATS_LEVEL_DEFAULT), "  HW Counters \n"
                                                      "    Displayed Output Frms: {ULONG 0 159} [0.0000%] (Last One: Never)\n"
                                                      "    Skipped Output Frames: {ULONG 0 159} [0.0000%] (Last One: Never)\n"
                                                      "    Replayed Output Frames: {ULONG 0 159} [0.0000%] (Last One: Never)\n"
                                                      "    Output Errors       : {ULONG 4 159} [100.0000%] (Last One: Never)\n");
}

TEST(VideoDecoderCounters, SharesAreRoundedToFourDecimals)
{
    SMGR_VCUDEC_STATS stats = {};
    stats.tCounters.nNumDisplayedOutputFrames = 999997;
    stats.tCounters.nNumSkippedOutputFrames = 2;
    stats.tCounters.nNumReplayedOutputFrames = 1;
    EXPECT_EQ(HwCounters(stats, STATS_LEVEL_DEFAULT), "  HW Counters \n"
                                                      "    Displayed Output Frms: {ULONG 999997 159} [99.9997%] (Last One: Never)\n"
                                                      "    Skipped Output Frames: {ULONG 2 159} [0.0002%] (Last One: Never)\n"
                                                      "    Replayed Output Frames: {ULONG 1 159} [0.0001%] (Last One: Never)\n");
    stats.tCounters.nNumDisplayedOutputFrames = 0;
    EXPECT_EQ(HwCounters(stats, STATS_LEVEL_DEFAULT), "  HW Counters \n"
                                                      "    Displayed Output Frms: {ULONG 0 159} [0.0000%] (Last One: Never)\n"
                                                      "    Skipped Output Frames: {ULONG 2 159} [66.6667%] (Last One: Never)\n"
                                                      "    Replayed Output Frames: {ULONG 1 159} [33.3333%] (Last One: Never)\n");
}

TEST(VideoDecoderCounters, TheSumHasAll64Bits)
{
    SMGR_VCUDEC_STATS stats = {};
    stats.tCounters.nNumDisplayedOutputFrames = 12884901888; // 3 * 2^32
    stats.tCounters.nNumSkippedOutputFrames = 4294967296;
    EXPECT_EQ(HwCounters(stats, STATS_LEVEL_DEFAULT), "  HW Counters \n"
                                                      "    Displayed Output Frms: {ULONG 12884901888 159} [75.0000%] (Last One: Never)\n"
                                                      "    Skipped Output Frames: {ULONG 4294967296 159} [25.0000%] (Last One: Never)\n"
                                                      "    Replayed Output Frames: {ULONG 0 159} [0.0000%] (Last One: Never)\n");
    stats.tCounters.nNumDisplayedOutputFrames = 9223372036854775808ul; // 2^63 and 2^62, unsigned
    stats.tCounters.nNumSkippedOutputFrames = 4611686018427387904ul;
    EXPECT_EQ(HwCounters(stats, STATS_LEVEL_DEFAULT),
              "  HW Counters \n"
              "    Displayed Output Frms: {ULONG 9223372036854775808 159} [66.6667%] (Last One: Never)\n"
              "    Skipped Output Frames: {ULONG 4611686018427387904 159} [33.3333%] (Last One: Never)\n"
              "    Replayed Output Frames: {ULONG 0 159} [0.0000%] (Last One: Never)\n");
}

TEST(VideoDecoderCounters, ASumThatWrapsGivesSharesAboveTheWhole)
{
    SMGR_VCUDEC_STATS stats = {};
    stats.tCounters.nNumDisplayedOutputFrames = 18446744073709551615ul; // 2^64 as a double, of a total of 1
    stats.tCounters.nNumSkippedOutputFrames = 2;
    EXPECT_EQ(HwCounters(stats, STATS_LEVEL_DEFAULT),
              "  HW Counters \n"
              "    Displayed Output Frms: {ULONG 18446744073709551615 159} [1844674407370955161600.0000%] (Last One: Never)\n"
              "    Skipped Output Frames: {ULONG 2 159} [200.0000%] (Last One: Never)\n"
              "    Replayed Output Frames: {ULONG 0 159} [0.0000%] (Last One: Never)\n");
}

TEST(VideoDecoderCounters, OutputErrorsAtTheDefaultLevelOnlyIfThereAreAny)
{
    SMGR_VCUDEC_STATS stats = {};
    stats.tCounters.nNumDisplayedOutputFrames = 3;
    stats.tCounters.tLastOutputError = frozen_now - 8;
    EXPECT_EQ(LineOf(Report(stats, STATS_LEVEL_DEFAULT), "Output Errors"), "");
    EXPECT_EQ(LineOf(Report(stats, STATS_LEVEL_DEBUG), "Output Errors"),
              "    Output Errors       : {ULONG 0 159} [0.0000%] (Last One: {UpTime 8 159} ago)");
    stats.tCounters.nNumOutputErrors = 1;
    EXPECT_EQ(LineOf(Report(stats, STATS_LEVEL_DEFAULT), "Output Errors"),
              "    Output Errors       : {ULONG 1 159} [25.0000%] (Last One: {UpTime 8 159} ago)");
    EXPECT_EQ(LineOf(Report(stats, STATS_LEVEL_DEBUG), "Output Errors"),
              "    Output Errors       : {ULONG 1 159} [25.0000%] (Last One: {UpTime 8 159} ago)");
}

TEST(VideoDecoderCounters, ErrorCodeAtTheDefaultLevelOnlyIfThereIsOne)
{
    SMGR_VCUDEC_STATS stats = {};
    stats.tCounters.iLastErrorTime = frozen_now - 9;
    EXPECT_EQ(LineOf(Report(stats, STATS_LEVEL_DEFAULT), "VCU Create Error Code"), "");
    EXPECT_EQ(LineOf(Report(stats, STATS_LEVEL_DEBUG), "VCU Create Error Code"),
              "    VCU Create Error Code: {VCUDecoderError 0 159} (0) (Occurred: {UpTime 9 159} ago)");
    stats.tCounters.nLastErrorCode = -1;
    EXPECT_EQ(LineOf(Report(stats, STATS_LEVEL_DEFAULT), "VCU Create Error Code"),
              "    VCU Create Error Code: {VCUDecoderError -1 159} (-1) (Occurred: {UpTime 9 159} ago)");
    EXPECT_EQ(LineOf(Report(stats, STATS_LEVEL_DEBUG), "VCU Create Error Code"),
              "    VCU Create Error Code: {VCUDecoderError -1 159} (-1) (Occurred: {UpTime 9 159} ago)");
}

TEST(VideoDecoderCounters, TheLabelOfFramesNotReleasedEndsInABlank)
{
    SMGR_VCUDEC_STATS stats = {};
    for (const int nLevel : {STATS_LEVEL_DEFAULT, STATS_LEVEL_DEBUG})
    {
        stats.tCounters.nNumOfFrmNotRelease = 0;
        EXPECT_EQ(LineOf(Report(stats, nLevel), "VCU Frm not Release"), "    VCU Frm not Release : 0");
        stats.tCounters.nNumOfFrmNotRelease = 4;
        EXPECT_EQ(LineOf(Report(stats, nLevel), "VCU Frm not Release"), "    VCU Frm not Release : {ULONG 4 1024} (Last One: Never)");
    }
}

TEST(VideoDecoderCounters, DiscontinuitiesAtTheDefaultLevelEvenIfThereAreNone)
{
    SMGR_VCUDEC_STATS stats = {};
    EXPECT_EQ(LineOf(Report(stats, STATS_LEVEL_DEFAULT), "VCU IN Discontinuity"), "    VCU IN Discontinuity: 0");
    stats.tCounters.nNumDiscontinuty = 4;
    EXPECT_EQ(LineOf(Report(stats, STATS_LEVEL_DEFAULT), "VCU IN Discontinuity"),
              "    VCU IN Discontinuity: {ULONG 4 1024} (Last One: Never)");
}

TEST(VideoDecoderCounters, OutputLeadTimesAreSigned)
{
    SMGR_VCUDEC_STATS stats = {};
    stats.tCounters.nOutputSTCLeadTime = -1;
    stats.tCounters.nMinOutputSTCLeadTime = INT_MIN;
    stats.tCounters.nMaxOutputSTCLeadTime = INT_MAX;
    EXPECT_EQ(Line(stats, "Output Lead Time"),
              "    Output Lead Time    : -1ms (Min=-2147483648ms occurred Never, Max=2147483647ms occurred Never)");
    stats.tCounters.nMaxOutputSTCLeadTime = -2;
    EXPECT_EQ(Line(stats, "Output Lead Time"),
              "    Output Lead Time    : -1ms (Min=-2147483648ms occurred Never, Max=-2ms occurred Never)");
}

TEST(VideoDecoderCounters, QueueOccupanciesHaveAll64Bits)
{
    SMGR_VCUDEC_STATS stats = {};
    stats.tCounters.nNumReorderFramesQOcc = 18446744073709551615ul;
    stats.tCounters.nMaxPushedQueueOccupancy = 18446744073709551614ul;
    stats.tCounters.nCurPushedQueueOccupancy = 18446744073709551613ul;
    EXPECT_EQ(Line(stats, "Reorder Pics Q Occ"), "  Reorder Pics Q Occ    : {ULONG 18446744073709551615 159}");
    EXPECT_EQ(Line(stats, "Max Pushed Q Occ"), "    Max Pushed Q Occ    : {ULONG 18446744073709551614 159}");
    EXPECT_EQ(Line(stats, "Cur Pushed Q Occ"), "    Cur Pushed Q Occ    : {ULONG 18446744073709551613 159}");
}
