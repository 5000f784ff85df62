#include <gtest/gtest.h>

#include "field_sweep.h"
#include "video_formats.h"

static const SweptReport& Report()
{
    static const SweptReport report =
        ReportOf(STATS_PrintForVideoDecoder, {},
                 {"Decoder operating characteristics (Delays are calculated from the output of the Framer).", "Decoder Counters",
                  "Stats from  VCUDEC_Decode()", "Stats from  _FrameDecodedCallback()", "Stats from  _DisplayCallback()",
                  "Stats from  _ResolutionFoundCallback()", "Stats from   _ParseSeiCallback()", "HW Counters"});
    return report;
}

// A share of all output frames stands in each of these.
static const LineNames outcome_lines = {"Displayed Output Frms", "Skipped Output Frames", "Replayed Output Frames"};

// What an operator does not see before it happens.
static const LineNames hidden_operator_lines = {"Output Errors", "VCU Create Error Code"};

static FieldRows CounterRows()
{
    using Record = SMGR_VCUDEC_COUNTERS;
    return {
        {FIELD(nNumReceivedFrames), .debugLines = {"Received Pics"}},
        {FIELD(tLastReceivedFrame), .debugLines = {"Received Pics"}, .ifCounted = true},
        {FIELD(nNumReceivedFramesFreed), .debugLines = {"Received Pics Freed"}},
        {FIELD(tLastReceivedFrameFreed), .debugLines = {"Received Pics Freed"}, .ifCounted = true},
        {FIELD(nNumFramesSentToDecoder), .debugLines = {"Pics To VCU Decoder"}},
        {FIELD(tLastFrameSentToDecoder), .debugLines = {"Pics To VCU Decoder"}, .ifCounted = true},
        {FIELD(nNumDroppedFrames), .debugLines = {"Dropped Input Pics"}},
        {FIELD(tLastDroppedFrame), .debugLines = {"Dropped Input Pics"}, .ifCounted = true},
        {FIELD(nNumDroppedIFrames), .debugLines = {"I"}},
        {FIELD(tLastDroppedIFrame), .debugLines = {"I"}, .ifCounted = true},
        {FIELD(nNumDroppedPFrames), .debugLines = {"P"}},
        {FIELD(tLastDroppedPFrame), .debugLines = {"P"}, .ifCounted = true},
        {FIELD(nNumDroppedBFrames), .debugLines = {"B"}},
        {FIELD(tLastDroppedBFrame), .debugLines = {"B"}, .ifCounted = true},
        {FIELD(nNumDecodedFrames), .debugLines = {"Decoded Input Pics"}},
        {FIELD(tLastDecodedFrame), .debugLines = {"Decoded Input Pics"}, .ifCounted = true},
        {FIELD(nNumConcealedFrames), .debugLines = {"Concealed Input Pics"}},
        {FIELD(tLastConcealedFrame), .debugLines = {"Concealed Input Pics"}, .ifCounted = true},
        {FIELD(nNumResyncForLostOfAVSync), .debugLines = {"Decoder AV ReSync"}},
        {FIELD(tLastResyncForLostOfAVSync), .debugLines = {"Decoder AV ReSync"}, .ifCounted = true},
        {FIELD(nNumFramesSentToDisplay), .debugLines = {"Pics Sent To Display"}},
        {FIELD(tLastFrameSentToDisplay), .debugLines = {"Pics Sent To Display"}, .ifCounted = true},
        {FIELD(nNumDisplayedOutputFrames), .lines = outcome_lines, .debugLines = {"Output Errors"}},
        {FIELD(tLastDisplayedOutputFrame), .lines = {"Displayed Output Frms"}, .ifCounted = true},
        {FIELD(nNumSkippedOutputFrames), .lines = outcome_lines, .debugLines = {"Output Errors"}},
        {FIELD(tLastSkippedOutputFrame), .lines = {"Skipped Output Frames"}, .ifCounted = true},
        {FIELD(nNumReplayedOutputFrames), .lines = outcome_lines, .debugLines = {"Output Errors"}},
        {FIELD(tLastReplayedOutputFrame), .lines = {"Replayed Output Frames"}, .ifCounted = true},
        {FIELD(nNumDisplayedFramesFreed), .debugLines = {"Displayed Pics Freed"}},
        {FIELD(tLastDisplayedFrameFreed), .debugLines = {"Displayed Pics Freed"}, .ifCounted = true},
        {FIELD(nNumOutputErrors), .lines = AllLines({outcome_lines, {"Output Errors"}})},
        {FIELD(tLastOutputError), .lines = {"Output Errors"}, .ifCounted = true},
        {FIELD(nNumOutputLate), .debugLines = {"Pics Sent Late"}},
        {FIELD(tLastOutputLate), .debugLines = {"Pics Sent Late"}, .ifCounted = true},
        {FIELD(nOutputSTCLeadTime), .debugLines = {"Output Lead Time"}},
        {FIELD(nMinOutputSTCLeadTime), .debugLines = {"Output Lead Time"}},
        {FIELD(tMinOutputSTCLeadTime), .debugLines = {"Output Lead Time"}},
        {FIELD(nMaxOutputSTCLeadTime), .debugLines = {"Output Lead Time"}},
        {FIELD(tMaxOutputSTCLeadTime), .debugLines = {"Output Lead Time"}},
        {FIELD(nNumReorderFramesIn), .debugLines = {"Reorder Pics In"}},
        {FIELD(tLastReorderFrameIn), .debugLines = {"Reorder Pics In"}, .ifCounted = true},
        {FIELD(nNumReorderFramesQOcc), .debugLines = {"Reorder Pics Q Occ"}},
        {FIELD(nNumReorderFramesOut), .debugLines = {"Reorder Pics Out"}},
        {FIELD(tLastReorderFrameOut), .debugLines = {"Reorder Pics Out"}, .ifCounted = true},
        {FIELD(nNumReorderFramesExtractCalls), .debugLines = {"Reorder Extract Calls"}},
        {FIELD(tLastReorderFramesExtractCall), .debugLines = {"Reorder Extract Calls"}, .ifCounted = true},
        {FIELD(nNumReorderFramesFlushCalls), .debugLines = {"Reorder Flush Calls"}},
        {FIELD(tLastReorderFramesFlushCall), .debugLines = {"Reorder Flush Calls"}, .ifCounted = true},
        {FIELD(nNumInputParsedCallbacks)},
        {FIELD(tLastInputParsedCallback)},
        {FIELD(nNumResolutionFoundCallbacks), .debugLines = {"Res Found Callbacks"}},
        {FIELD(tLastResolutionFoundCallback), .debugLines = {"Res Found Callbacks"}, .ifCounted = true},
        {FIELD(nNumDecodedCallbacks), .debugLines = {"Decoded Callbacks"}},
        {FIELD(tLastDecodedCallback), .debugLines = {"Decoded Callbacks"}, .ifCounted = true},
        {FIELD(nNumDisplayCallbacks), .debugLines = {"Display Callbacks"}},
        {FIELD(tLastDisplayCallback), .debugLines = {"Display Callbacks"}, .ifCounted = true},
        {FIELD(nNumSEICallbacks), .debugLines = {"SEI Callbacks"}},
        {FIELD(tLastSEICallback), .debugLines = {"SEI Callbacks"}, .ifCounted = true},
        {FIELD(nMaxPushedQueueOccupancy), .debugLines = {"Max Pushed Q Occ"}},
        {FIELD(nCurPushedQueueOccupancy), .debugLines = {"Cur Pushed Q Occ"}},
        {FIELD(nNumImageCaptures), .debugLines = {"Video Images Captured"}},
        {FIELD(tLastImageCapture), .debugLines = {"Video Images Captured"}, .ifCounted = true},
        {FIELD(nNumImageCapturesFailed), .debugLines = {"Image Capture Failed"}},
        {FIELD(tLastImageCaptureFailed), .debugLines = {"Image Capture Failed"}, .ifCounted = true},
        {FIELD(iLastErrorTime), .debugLines = {"VCU Create Error Code"}},
        {FIELD(nLastErrorCode), .lines = {"VCU Create Error Code"}},
        {FIELD(nNumEOSEvents), .debugLines = {"EOS Events"}},
        {FIELD(tLastEOSEvent), .debugLines = {"EOS Events"}, .ifCounted = true},
        {FIELD(nNumExitErrors), .debugLines = {"Exit Errors"}},
        {FIELD(tLastExitError), .debugLines = {"Exit Errors"}, .ifCounted = true},
        {FIELD(nNumNoInfoErrors), .debugLines = {"No Info Errors"}},
        {FIELD(tLastNoInfoError), .debugLines = {"No Info Errors"}, .ifCounted = true},
        {FIELD(nNumDiscontinuty), .lines = {"VCU IN Discontinuity"}},
        {FIELD(tLastDiscontinuity), .lines = {"VCU IN Discontinuity"}, .ifCounted = true},
        {FIELD(nNumOfFrmNotRelease), .lines = {"VCU Frm not Release"}},
        {FIELD(tLastNumOfFrmNotRelease), .lines = {"VCU Frm not Release"}, .ifCounted = true},
        {FIELD(nOutputTimestampNotIncreasing), .debugLines = {"Nonincr. Tstamps Out"}},
        {FIELD(tLastOutputTimestampNotIncreasing), .debugLines = {"Nonincr. Tstamps Out"}, .ifCounted = true},
        {FIELD(nOutputTimestampsMissing), .debugLines = {"Missing Tstamps Out"}},
        {FIELD(tLastOutputTimestampMissing), .debugLines = {"Missing Tstamps Out"}, .ifCounted = true},
        {FIELD(nNumStillImages), .lines = {"Still Image"}},
        {FIELD(nMaxStillImageTimeOn), .lines = {"Still Image"}},
        {FIELD(tLastStillImageOn), .lines = {"Still Image"}},
        {FIELD(tLastStillImageOff), .lines = {"Still Image"}},
    };
}

static FieldRows Rows()
{
    using Record = SMGR_VCUDEC_STATS;
    return AllRows({
        {
            {FIELD(nSize)},
            {FIELD(enState), .lines = {"Video Decoder State"}},
            {FIELD(nLoadPercentage), .lines = {"Video Decoder Load"}},
            {FIELD(nLatencyInUs), .debugLines = {"Video Decoder Latency"}},
            // A code without bit 63 is unknown, and the load follows on its line.
            {FIELD(nDisplayFormat), .lines = {"Display Format", "Video Decoder Load"},
             .at = {{.value = largest, .lines = {"Display Format"}},
                    {.value = VIDEO_FORMAT_FLAG_ENCODED, .lines = {"Display Format"}},
                    {.value = VIDEO_FORMAT_FLAG_ENCODED - 1, .lines = {"Display Format", "Video Decoder Load"}}}},
            {FIELD(bHasChroma)},
            {FIELD(nFrameBufferWidth), .debugLines = {"Display Buffers"}},
            {FIELD(nFrameBufferHeight), .debugLines = {"Display Buffers"}},
            {FIELD(nFrameBufferSizeEachInBytes), .debugLines = {"VCU Memory required", "VCU Memory allocated"}},
            {FIELD(nFrameBufferNumber), .debugLines = {"VCU Memory required", "Display Buffers"}},
            {FIELD(nFrameBufferNumberInUsed), .debugLines = {"VCU Memory allocated"}},
            {FIELD(nFrameBufferBitDepthY), .debugLines = {"Display Bit Depth"}},
            {FIELD(nFrameBufferBitDepthC), .debugLines = {"Display Bit Depth"}},
            {FIELD(bCropping), .debugLines = {"Cropping"}},
            {FIELD(nCropOffsetLeft)},
            {FIELD(nCropOffsetRight)},
            {FIELD(nCropOffsetTop)},
            {FIELD(nCropOffsetBottom)},
            {FIELD(enPicStructure), .debugLines = {"Picture Structure"}},
            {FIELD(bVDelayInputEstimateShortDelay), .debugLines = {"Decoder IN"}},
            {FIELD(bVDelayOutputEstimateShortDelay),
             .debugLines = {"Decoder OUT", "HW OUT", "Decoder Latency", "Decoder Jitter", "HW Delay Theo", "Real", "HW Tx Error",
                            "ReOrder list length", "HW BD list length"}},
            {FIELD(nVDelayInputMS), .debugLines = {"Decoder IN"}},
            {FIELD(nVDelayInputMSAvg), .debugLines = {"Decoder IN"}},
            {FIELD(nVMaxDelayInputMS), .debugLines = {"Decoder IN"}},
            {FIELD(nVMinDelayInputMS), .debugLines = {"Decoder IN", "Decoder Latency"}},
            {FIELD(nVCurReOrderLen), .debugLines = {"ReOrder list length"}},
            {FIELD(nVMaxReOrderLen), .debugLines = {"ReOrder list length"}},
            {FIELD(nVMinReOrderLen), .debugLines = {"ReOrder list length"}},
            {FIELD(nVDelayOutputMS), .debugLines = {"Decoder OUT", "HW Delay Theo", "Real"}},
            {FIELD(nVDelayOutputMSAvg), .debugLines = {"Decoder OUT", "HW Delay Theo", "Real"}},
            {FIELD(nVMaxDelayOutputMS), .debugLines = {"Decoder OUT", "HW Delay Theo", "Real"}},
            {FIELD(nVMinDelayOutputMS), .debugLines = {"Decoder OUT", "Decoder Latency", "HW Delay Theo", "Real"}},
            {FIELD(nVMaxDelayWithinVCUMS)},
            {FIELD(nVMinDelayWithinVCUMS)},
            {FIELD(nVCurBDListLen), .debugLines = {"HW BD list length"}},
            {FIELD(nVMaxBDListLen), .debugLines = {"HW BD list length"}},
            {FIELD(nVMinBDListLen), .debugLines = {"HW BD list length"}},
            {FIELD(nVTheoDelayHwOutputMS), .debugLines = {"HW OUT", "HW Delay Theo"}},
            // A measured delay makes a warning of a theoretical margin of 0.
            {FIELD(nVDelayHwOutputMS), .debugLines = {"HW OUT", "HW Delay Theo", "Real", "HW Tx Error"}},
            {FIELD(nVDelayHwOutputFrameMS), .debugLines = {"HW Tx Error"}},
            {FIELD(nVDecInputJitterMS), .debugLines = {"Decoder Jitter"}},
            {FIELD(nVDecMaxInputJitterMS), .debugLines = {"Max VCU IN Jitter"}},
            {FIELD(nVDecOutputJitterMS), .debugLines = {"Decoder Jitter"}},
            {FIELD(nVDecJitterMS), .debugLines = {"Decoder Jitter"}},
            {FIELD(nVDecLatencyMS), .debugLines = {"Decoder Latency"}},
            {FIELD(nVKeyDecDelayMS), .debugLines = {"Key Frame Dec Time"}},
            {FIELD(enStillImageType), .lines = {"Still Image"}},
            {FIELD(bStillImageActive), .lines = {"Still Image"}},
        },
        Mounted(CounterRows(), MEMBER(tCounters), ""),
        {{FIELD(bReordering), .debugLines = {"Video DPB Mode"}}},
    });
}

static SweepTable Zero()
{
    using Record = SMGR_VCUDEC_STATS;
    return {.name = "zero",
            .base = RecordWith<Record>([](Record&) {}),
            .hiddenOperatorLines = hidden_operator_lines,
            .hiddenDebugLines = {"Key Frame Dec Time"},
            .rows = Uncounted(Rows())};
}

static SweepTable Counted()
{
    using Record = SMGR_VCUDEC_STATS;
    const auto base = [](Record& r)
    {
        SMGR_VCUDEC_COUNTERS& c = r.tCounters;
        c.nNumReceivedFrames = c.nNumReceivedFramesFreed = c.nNumFramesSentToDecoder = 7;
        c.nNumDroppedFrames = c.nNumDroppedIFrames = c.nNumDroppedPFrames = c.nNumDroppedBFrames = 7;
        c.nNumDecodedFrames = c.nNumConcealedFrames = c.nNumResyncForLostOfAVSync = c.nNumFramesSentToDisplay = 7;
        c.nNumDisplayedOutputFrames = c.nNumSkippedOutputFrames = c.nNumReplayedOutputFrames = c.nNumOutputErrors = 7;
        c.nNumDisplayedFramesFreed = c.nNumOutputLate = 7;
        c.nNumReorderFramesIn = c.nNumReorderFramesOut = 7;
        c.nNumReorderFramesExtractCalls = c.nNumReorderFramesFlushCalls = 7;
        c.nNumResolutionFoundCallbacks = c.nNumDecodedCallbacks = c.nNumDisplayCallbacks = c.nNumSEICallbacks = 7;
        c.nNumImageCaptures = c.nNumImageCapturesFailed = 7;
        c.nLastErrorCode = 7;
        c.nNumEOSEvents = c.nNumExitErrors = c.nNumNoInfoErrors = c.nNumDiscontinuty = c.nNumOfFrmNotRelease = 7;
        c.nOutputTimestampNotIncreasing = c.nOutputTimestampsMissing = 7;
    };
    const LineNames allOutcomes = AllLines({outcome_lines, {"Output Errors"}});
    return {.name = "counted",
            .base = RecordWith<Record>(base),
            .hiddenDebugLines = {"Key Frame Dec Time"},
            .rows = Override(Rows(), {{FIELD(tCounters.nNumDisplayedOutputFrames), .lines = allOutcomes},
                                      {FIELD(tCounters.nNumSkippedOutputFrames), .lines = allOutcomes},
                                      {FIELD(tCounters.nNumReplayedOutputFrames), .lines = allOutcomes},
                                      {FIELD(tCounters.iLastErrorTime), .lines = {"VCU Create Error Code"}}})};
}

// Output frames without an error: an operator does not see the errors' share.
static SweepTable OutputWithoutErrors()
{
    using Record = SMGR_VCUDEC_STATS;
    const auto base = [](Record& r) { r.tCounters.nNumDisplayedOutputFrames = 7; };
    return {.name = "output without errors",
            .base = RecordWith<Record>(base),
            .hiddenOperatorLines = hidden_operator_lines,
            .hiddenDebugLines = {"Key Frame Dec Time"},
            .rows = Override(
                Uncounted(Rows()),
                {{FIELD(tCounters.nNumDisplayedOutputFrames), // all of the output, 7 as well as 1
                  .lines = {"Displayed Output Frms"}, .at = {{.value = 0, .lines = outcome_lines, .debugLines = {"Output Errors"}}}},
                 {FIELD(tCounters.nNumSkippedOutputFrames), .lines = {"Displayed Output Frms", "Skipped Output Frames"}},
                 {FIELD(tCounters.nNumReplayedOutputFrames), .lines = {"Displayed Output Frms", "Replayed Output Frames"}},
                 {FIELD(tCounters.nNumOutputErrors), .lines = {"Displayed Output Frms", "Output Errors"}},
                 {FIELD(tCounters.tLastDisplayedOutputFrame), .lines = {"Displayed Output Frms"}},
                 {FIELD(tCounters.tLastSkippedOutputFrame), .lines = {"Skipped Output Frames"}},
                 {FIELD(tCounters.tLastReplayedOutputFrame), .lines = {"Replayed Output Frames"}},
                 {FIELD(tCounters.tLastOutputError), .debugLines = {"Output Errors"}}})};
}

// Memory, cropping and flags; a display format with its fields.
static SweepTable Configured()
{
    using Record = SMGR_VCUDEC_STATS;
    const auto base = [](Record& r)
    {
        r.nDisplayFormat = VIDEO_FORMAT_1920_1080_29I;
        r.nFrameBufferSizeEachInBytes = r.nFrameBufferNumber = r.nFrameBufferNumberInUsed = 7;
        r.bCropping = r.bStillImageActive = r.bReordering = 2;
    };
    return {.name = "configured",
            .base = RecordWith<Record>(base),
            .hiddenOperatorLines = hidden_operator_lines,
            .hiddenDebugLines = {"Key Frame Dec Time"},
            .rows = Override(Uncounted(Rows()), {{FIELD(nDisplayFormat), .lines = {"Display Format"},
                                                  .at = {{.value = 0, .lines = {"Display Format"}},
                                                         {.value = 1, .lines = {"Display Format", "Video Decoder Load"}},
                                                         {.value = VIDEO_FORMAT_CODE(1921, 1080, 29, 1), .lines = {"Display Format"}},
                                                         {.value = VIDEO_FORMAT_CODE(1920, 1081, 29, 1), .lines = {"Display Format"}},
                                                         {.value = VIDEO_FORMAT_CODE(1920, 1080, 30, 1), .lines = {"Display Format"}},
                                                         {.value = VIDEO_FORMAT_CODE(1920, 1080, 29, 0), .lines = {"Display Format"}},
                                                         {.value = VIDEO_FORMAT_1920_1080_29I | 1ul << 35}}}, // not of the width
                                                 {FIELD(nFrameBufferSizeEachInBytes),
                                                  .debugLines = {"VCU Memory required", "VCU Memory allocated", "Display Buffers"}},
                                                 {FIELD(bCropping), .at = {{.value = 0, .debugLines = {"Cropping"}}}},
                                                 {FIELD(nCropOffsetLeft), .debugLines = {"Cropping"}},
                                                 {FIELD(nCropOffsetRight), .debugLines = {"Cropping"}},
                                                 {FIELD(nCropOffsetTop), .debugLines = {"Cropping"}},
                                                 {FIELD(nCropOffsetBottom), .debugLines = {"Cropping"}},
                                                 {FIELD(bStillImageActive), .at = {{.value = 0, .lines = {"Still Image"}}}},
                                                 {FIELD(bReordering), .at = {{.value = 0, .debugLines = {"Video DPB Mode"}}}}})};
}

static SweepTable UnknownDisplayFormat()
{
    using Record = SMGR_VCUDEC_STATS;
    return {.name = "unknown display format",
            .base = RecordWith<Record>([](Record& r) { r.nDisplayFormat = VIDEO_FORMAT_NATIVE; }),
            .hiddenLines = {"Video Decoder Load"},
            .hiddenOperatorLines = hidden_operator_lines,
            .hiddenDebugLines = {"Key Frame Dec Time"},
            .rows = Override(Uncounted(Rows()),
                             {{FIELD(nLoadPercentage), .lines = {"Display Format"}},
                              {FIELD(nDisplayFormat), .at = {{.value = 0, .lines = {"Display Format", "Video Decoder Load"}},
                                                             {.value = largest, .lines = {"Display Format", "Video Decoder Load"}}}}})};
}

// Delays without a warning: the hardware is 100 ms and 110 ms behind the decoder.
static SweepTable GoodDelays()
{
    using Record = SMGR_VCUDEC_STATS;
    const auto base = [](Record& r)
    {
        r.nVDelayOutputMS = r.nVDelayOutputMSAvg = 100;
        r.nVMaxDelayOutputMS = 110;
        r.nVMinDelayOutputMS = 90;
        r.nVTheoDelayHwOutputMS = 200;
        r.nVDelayHwOutputMS = 210;
        r.nVDelayHwOutputFrameMS = 205;
        r.nVDecJitterMS = 20;
        r.nVKeyDecDelayMS = 7;
    };
    return {.name = "good delays",
            .base = RecordWith<Record>(base),
            .hiddenOperatorLines = hidden_operator_lines,
            .rows = Override(Uncounted(Rows()),
                             {// A maximum above the hardware's delay brings the warning that shows it.
                              {FIELD(nVMaxDelayOutputMS), .debugLines = {"Decoder OUT", "HW Delay Theo", "Real"},
                               .at = {{.value = largest, .debugLines = {"Decoder OUT", "HW OUT", "HW Delay Theo", "Real"}},
                                      {.value = 200, .debugLines = {"Decoder OUT", "HW Delay Theo", "Real"}},
                                      {.value = 201, .debugLines = {"Decoder OUT", "HW OUT", "HW Delay Theo", "Real"}}}},
                              // The theoretical margin is above 0: it does not ask whether the real one was measured.
                              {FIELD(nVDelayHwOutputMS), .debugLines = {"HW OUT", "Real", "HW Tx Error"},
                               .at = {{.value = 0, .debugLines = {"HW OUT", "Real", "HW Tx Error"}}}},
                              {FIELD(nVKeyDecDelayMS), .debugLines = {"Key Frame Dec Time"},
                               .at = {{.value = 0, .debugLines = {"Key Frame Dec Time"}}}}})};
}

// So much delay that it should be reduced, unless the jitter is as large.
static SweepTable LargeDelays()
{
    using Record = SMGR_VCUDEC_STATS;
    const auto base = [](Record& r)
    {
        r.nVDelayOutputMS = r.nVDelayOutputMSAvg = r.nVMaxDelayOutputMS = r.nVMinDelayOutputMS = 100;
        r.nVTheoDelayHwOutputMS = 1000;
        r.nVDelayHwOutputMS = r.nVDelayHwOutputFrameMS = 1100;
        r.nVDecJitterMS = 5;
    };
    return {.name = "large delays",
            .base = RecordWith<Record>(base),
            .hiddenOperatorLines = hidden_operator_lines,
            .hiddenDebugLines = {"Key Frame Dec Time"},
            .rows =
                Override(Uncounted(Rows()), {{FIELD(nVMaxDelayOutputMS), .debugLines = {"Decoder OUT", "HW Delay Theo", "Real"},
                                              .at = {{.value = largest, .debugLines = {"Decoder OUT", "HW OUT", "HW Delay Theo", "Real"}}}},
                                             {FIELD(nVDelayHwOutputMS), .debugLines = {"HW OUT", "Real", "HW Tx Error"}},
                                             // Margins of 900 ms and 1000 ms; the largest jitter is -1 as a signed number.
                                             {FIELD(nVDecJitterMS), .debugLines = {"Decoder Jitter"},
                                              .at = {{.value = 899, .debugLines = {"Decoder Jitter"}},
                                                     {.value = 900, .debugLines = {"Decoder Jitter", "HW Delay Theo"}},
                                                     {.value = 999, .debugLines = {"Decoder Jitter", "HW Delay Theo"}},
                                                     {.value = 1000, .debugLines = {"Decoder Jitter", "HW Delay Theo", "Real"}},
                                                     {.value = 0x7FFFFFFF, .debugLines = {"Decoder Jitter", "HW Delay Theo", "Real"}}}}})};
}

// Margins of exactly 450 ms, which no jitter makes a warning of.
static SweepTable LargestGoodDelays()
{
    using Record = SMGR_VCUDEC_STATS;
    const auto base = [](Record& r)
    {
        r.nVTheoDelayHwOutputMS = r.nVDelayHwOutputMS = 450;
        r.nVDecJitterMS = 449;
    };
    return {.name = "largest good delays",
            .base = RecordWith<Record>(base),
            .hiddenOperatorLines = hidden_operator_lines,
            .hiddenDebugLines = {"Key Frame Dec Time"},
            .rows =
                Override(Uncounted(Rows()),
                         {{FIELD(nVMaxDelayOutputMS), .debugLines = {"Decoder OUT", "HW Delay Theo", "Real"},
                           .at = {{.value = largest, .debugLines = {"Decoder OUT", "HW OUT", "HW Delay Theo", "Real"}}}},
                          {FIELD(nVDelayHwOutputMS), .debugLines = {"HW OUT", "Real", "HW Tx Error"}},
                          {FIELD(nVDecJitterMS), .debugLines = {"Decoder Jitter"},
                           .at = {{.value = 0, .debugLines = {"Decoder Jitter"}}, {.value = 1000, .debugLines = {"Decoder Jitter"}}}}})};
}

// Too little delay: the hardware is ahead of the decoder, and what it lacks stands in the warnings.
static SweepTable SmallDelays()
{
    using Record = SMGR_VCUDEC_STATS;
    const auto base = [](Record& r)
    {
        r.nVDelayOutputMS = r.nVDelayOutputMSAvg = 100;
        r.nVMaxDelayOutputMS = 110;
        r.nVMinDelayOutputMS = 90;
        r.nVTheoDelayHwOutputMS = 50;
        r.nVDelayHwOutputMS = 60;
        r.nVDelayHwOutputFrameMS = 55;
    };
    return {.name = "small delays",
            .base = RecordWith<Record>(base),
            .hiddenOperatorLines = hidden_operator_lines,
            .hiddenDebugLines = {"Key Frame Dec Time"},
            .rows =
                Override(Uncounted(Rows()), {{FIELD(nVMaxDelayOutputMS), .debugLines = {"Decoder OUT", "HW OUT", "HW Delay Theo", "Real"}},
                                             // Measured or not decides on the theoretical margin's warning, how much does not.
                                             {FIELD(nVDelayHwOutputMS), .debugLines = {"HW OUT", "Real", "HW Tx Error"},
                                              .at = {{.value = 0, .debugLines = {"HW OUT", "HW Delay Theo", "Real", "HW Tx Error"}}}}})};
}

// Estimates over 1 s: without a jitter of its own the decoder's shows neither of the two it is made of.
static SweepTable ShortEstimates()
{
    using Record = SMGR_VCUDEC_STATS;
    const auto base = [](Record& r) { r.bVDelayInputEstimateShortDelay = r.bVDelayOutputEstimateShortDelay = 2; };
    return {.name = "short estimates",
            .base = RecordWith<Record>(base),
            .hiddenOperatorLines = hidden_operator_lines,
            .hiddenDebugLines = {"Key Frame Dec Time"},
            .rows = Override(Uncounted(Rows()),
                             {{FIELD(bVDelayInputEstimateShortDelay), .at = {{.value = 0, .debugLines = {"Decoder IN"}}}},
                              {FIELD(bVDelayOutputEstimateShortDelay),
                               .at = {{.value = 0,
                                       .debugLines = {"Decoder OUT", "HW OUT", "Decoder Latency", "Decoder Jitter", "HW Delay Theo", "Real",
                                                      "HW Tx Error", "ReOrder list length", "HW BD list length"}}}},
                              {FIELD(nVDecInputJitterMS)},
                              {FIELD(nVDecOutputJitterMS)}})};
}

static std::vector<SweepTable> Tables()
{
    return {Zero(),       Counted(),     OutputWithoutErrors(), Configured(),  UnknownDisplayFormat(),
            GoodDelays(), LargeDelays(), LargestGoodDelays(),   SmallDelays(), ShortEstimates()};
}

TEST(VDecoderFields, ChangeTheirLinesAndNoOther)
{
    for (const SweepTable& table : Tables()) SweepFields(Report(), table);
}

TEST(VDecoderFields, HaveARowEach)
{
    for (const SweepTable& table : Tables()) CheckEveryByteHasARow(Report(), table);
}

TEST(VDecoderFields, ReachEveryLine)
{
    CheckEveryLineIsNamed(Report(), Tables());
}
