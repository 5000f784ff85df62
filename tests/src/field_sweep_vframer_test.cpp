#include <gtest/gtest.h>

#include "field_sweep.h"

static const SweptReport& Report()
{
    static const SweptReport report =
        ReportOf(STATS_PrintForVFramer, {.blocks = {{"Stream Properties"}}}, {"Video", "Stream Properties", "Previous Stream Properties"});
    return report;
}

// The lines of a stream properties block behind its title.
static const LineNames properties_debug_lines = {
    "Compression",
    "Color",
    "Profile",
    "Level",
    "Format",
    "Frame Rate In Stream",
    "Bit Rate",
    "Framing",
    "Has I-frames",
    "Has P-frames",
    "Has B-frames",
    "GOP Interval",
    "Slices per Frame",
    "Time Stamp",
    "Time Stamp Delta",
    "Dynamic Range Stream",
    "Dynamic Range Output",
    "Color Primaries",
    "Transfer Char's",
    "Matrix Coeffs",
    "SDI Payload ID",
    "Compatibility Mode",
    "Metadata Present",
};

// What an operator does not see before it happens.
static const LineNames hidden_operator_lines = {
    "Stream ID Changes", "Format Changes", "Input Pkt List Ovflws", "Output Pkt List Ovflws", "Stream Properties/Compatibility Mode",
};
static const LineNames previous_lines = In("Previous Stream Properties", AllLines({{block_title}, properties_debug_lines}));

static FieldRows PropertiesRows()
{
    using Record = SMGR_VFRAMER_STREAM_PROPS;
    return {
        // What a profile or a level is called depends on the coding.
        {FIELD(enCompressionType), .lines = {"Compression", "Profile", "Level"}},
        {FIELD(enColorType), .lines = {"Color"}},
        {FIELD(nProfile), .lines = {"Profile"}},
        {FIELD(nLevel), .lines = {"Level"}},
        {FIELD(nWidth), .lines = {"Format"}},
        {FIELD(nHeight), .lines = {"Format"}},
        {FIELD(bInterlaced), .lines = {"Format"}},
        {FIELD(bInterlacedTFF)},
        {FIELD(fFrameRate), .lines = {"Format"}},
        {FIELD(bFrameRateFoundInStream), .debugLines = {"Frame Rate In Stream"}},
        {FIELD(nBitsPerSecond), .lines = {"Bit Rate"}},
        {FIELD(szFraming), .lines = {"Framing"}},
        {FIELD(nNumberOfBPicturesInARow)},
        {FIELD(nGopInterval), .lines = {"GOP Interval"}},
        {FIELD(nSliceCountPerFrame), .lines = {"Slices per Frame"}},
        {FIELD(bHasIFrames), .debugLines = {"Has I-frames"}},
        {FIELD(bHasPFrames), .debugLines = {"Has P-frames"}},
        {FIELD(bHasBFrames), .debugLines = {"Has B-frames"}},
        {FIELD(TimeStamp), .debugLines = {"Time Stamp"}},
        {FIELD(TimeStampDelta), .debugLines = {"Time Stamp Delta"}},
        // An operator sees the mode when it is exactly 1.
        {FIELD(bCompatibilityModeEnabled), .debugLines = {"Compatibility Mode"}, .at = {{.value = 1, .lines = {"Compatibility Mode"}}}},
        {FIELD(nLatencyInUs)},
        {FIELD(bTCPresent), .lines = {"Metadata Present"}},
        {FIELD(bCCPresent), .lines = {"Metadata Present"}},
        {FIELD(bAFDPresent), .lines = {"Metadata Present"}},
        {FIELD(enHDRType), .lines = {"Dynamic Range Output"}},
        {FIELD(enHDRTypeInStream), .lines = {"Dynamic Range Stream"}},
        {FIELD(colour_primaries), .debugLines = {"Color Primaries"}},
        {FIELD(transfer_characteristics), .debugLines = {"Transfer Char's"}},
        {FIELD(matrix_coefficients), .debugLines = {"Matrix Coeffs"}},
        {FIELD(szPayloadID[0]), .debugLines = {"SDI Payload ID"}},
        {FIELD(szPayloadID[1]), .debugLines = {"SDI Payload ID"}},
        {FIELD(szPayloadID[2]), .debugLines = {"SDI Payload ID"}},
        {FIELD(szPayloadID[3]), .debugLines = {"SDI Payload ID"}},
    };
}

static FieldRows CounterRows()
{
    using Record = SMGR_VFRAMER_COUNTERS;
    return {
        {FIELD(tLastVideoFrameReceived)},
        {FIELD(nNumStreamIDTransitions), .lines = {"Stream ID Changes"}},
        {FIELD(tLastStreamIDTransition), .lines = {"Stream ID Changes"}, .ifCounted = true},
        {FIELD(nNumFormatTransitions), .lines = {"Format Changes"}, .debugLines = previous_lines},
        {FIELD(tLastFormatTransition), .lines = {"Format Changes"}, .ifCounted = true},
        {FIELD(nNumUnsupported), .debugLines = {"Unsupported"}},
        {FIELD(tLastUnsupported), .debugLines = {"Unsupported"}, .ifCounted = true},
        {FIELD(nLastUnsupportedErrorCode)},
        {FIELD(nNumH264Compression), .debugLines = {"H264 Compression"}},
        {FIELD(tLastH264Compression), .debugLines = {"H264 Compression"}, .ifCounted = true},
        {FIELD(nNumH265Compression), .debugLines = {"H265 Compression"}},
        {FIELD(tLastH265Compression), .debugLines = {"H265 Compression"}, .ifCounted = true},
        {FIELD(nNumUnknownCompression), .debugLines = {"Unknown Compression"}},
        {FIELD(tLastUnknownCompression), .debugLines = {"Unknown Compression"}, .ifCounted = true},
        {FIELD(nNum420_8bitColortype), .debugLines = {"4:2:0 8bit ColorType"}},
        {FIELD(tLast420_8bitColortype), .debugLines = {"4:2:0 8bit ColorType"}, .ifCounted = true},
        {FIELD(nNum420_10bitColortype), .debugLines = {"4:2:0 10bit ColorType"}},
        {FIELD(tLast420_10bitColortype), .debugLines = {"4:2:0 10bit ColorType"}, .ifCounted = true},
        {FIELD(nNum422_8bitColortype), .debugLines = {"4:2:2 8bit ColorType"}},
        {FIELD(tLast422_8bitColortype), .debugLines = {"4:2:2 8bit ColorType"}, .ifCounted = true},
        {FIELD(nNum422_10bitColortype), .debugLines = {"4:2:2 10bit ColorType"}},
        {FIELD(tLast422_10bitColortype), .debugLines = {"4:2:2 10bit ColorType"}, .ifCounted = true},
        {FIELD(nNumUnknownColortype), .debugLines = {"Unknown ColorType"}},
        {FIELD(tLastUnknownColortype), .debugLines = {"Unknown ColorType"}, .ifCounted = true},
        {FIELD(nNumInputPackets), .debugLines = {"Input Packets"}},
        {FIELD(nNumInputPacketsFreed), .debugLines = {"Input Packets Freed"}},
        {FIELD(nNumInputPacketsDropped), .debugLines = {"Input Packets Dropped"}},
        {FIELD(tLastInputPacketDropped), .debugLines = {"Input Packets Dropped"}, .ifCounted = true},
        {FIELD(nInputFifoLength), .debugLines = {"Input FIFO Length"}},
        {FIELD(fInputFrameRate), .lines = {"Input Frame Rate"}},
        {FIELD(nNumOutputFrames), .debugLines = {"Output Pics To Dec"}},
        {FIELD(tLastOutputFrame), .debugLines = {"Output Pics To Dec"}, .ifCounted = true},
        {FIELD(nNumOutputFramesOnePiece), .debugLines = {"Output Pics 1-Piece"}},
        {FIELD(tLastOutputFrameOnePiece), .debugLines = {"Output Pics 1-Piece"}, .ifCounted = true},
        {FIELD(nNumOutputFramesAssembled), .debugLines = {"Output Pics Assembled"}},
        {FIELD(tLastOutputFrameAssembled), .debugLines = {"Output Pics Assembled"}, .ifCounted = true},
        {FIELD(nNumOutputFramesDropped), .debugLines = {"Output Pics Dropped"}},
        {FIELD(tLastOutputFrameDropped), .debugLines = {"Output Pics Dropped"}, .ifCounted = true},
        {FIELD(nNumOutputBytesToDecoder), .debugLines = {"Output Bytes To Dec"}},
        {FIELD(nNumOutputBytesDropped), .debugLines = {"Output Bytes Dropped"}},
        {FIELD(nOutputFifoLength), .debugLines = {"Output FIFO Length"}},
        {FIELD(nNumKeyFrames), .debugLines = {"Key Frames to Dec"}},
        {FIELD(tLastKeyFrame), .debugLines = {"Key Frames to Dec"}, .ifCounted = true},
        {FIELD(nNumIPictures), .debugLines = {"I-Pictures"}},
        {FIELD(tLastIPicture), .debugLines = {"I-Pictures"}, .ifCounted = true},
        {FIELD(nNumPPictures), .debugLines = {"P-Pictures"}},
        {FIELD(tLastPPicture), .debugLines = {"P-Pictures"}, .ifCounted = true},
        {FIELD(nNumBPictures), .debugLines = {"B-Pictures"}},
        {FIELD(tLastBPicture), .debugLines = {"B-Pictures"}, .ifCounted = true},
        {FIELD(nNumUnknownPictures), .debugLines = {"Unknown Pictures"}},
        {FIELD(tLastUnknownPicture), .debugLines = {"Unknown Pictures"}, .ifCounted = true},
        {FIELD(nMaxNumberOfBPicturesInARow), .debugLines = {"Max B-Pictures"}},
        {FIELD(nNumProgressivePicStruct), .debugLines = {"Progressive Pictures"}},
        {FIELD(tLastProgressivePicStruct), .debugLines = {"Progressive Pictures"}, .ifCounted = true},
        {FIELD(nNumInterlacedPicStruct), .debugLines = {"Interlaced Pictures"}},
        {FIELD(tLastInterlacedPicStruct), .debugLines = {"Interlaced Pictures"}, .ifCounted = true},
        {FIELD(nNumInterlacedTopFields), .debugLines = {"Interlaced Top Fields"}},
        {FIELD(tLastInterlacedTopField), .debugLines = {"Interlaced Top Fields"}, .ifCounted = true},
        {FIELD(nNumInterlacedBottomFields), .debugLines = {"Interlaced Btm Fields"}},
        {FIELD(tLastInterlacedBottomField), .debugLines = {"Interlaced Btm Fields"}, .ifCounted = true},
        {FIELD(nNumInterlacedBothFields), .debugLines = {"Interlaced Both Flds"}},
        {FIELD(tLastInterlacedBothFields), .debugLines = {"Interlaced Both Flds"}, .ifCounted = true},
        {FIELD(nNumUnknownPicStruct), .debugLines = {"Unknown Pic Structure"}},
        {FIELD(tLastUnknownPicStruct), .debugLines = {"Unknown Pic Structure"}, .ifCounted = true},
        {FIELD(nNumVPSNALs), .debugLines = {"VPS NALs"}},
        {FIELD(tLastVPSNAL), .debugLines = {"VPS NALs"}, .ifCounted = true},
        {FIELD(nNumSPSNALs), .debugLines = {"SPS NALs"}},
        {FIELD(tLastSPSNAL), .debugLines = {"SPS NALs"}, .ifCounted = true},
        {FIELD(nNumPPSNALs), .debugLines = {"PPS NALs"}},
        {FIELD(tLastPPSNAL), .debugLines = {"PPS NALs"}, .ifCounted = true},
        {FIELD(nNumSEINALs), .debugLines = {"SEI NALs"}},
        {FIELD(tLastSEINAL), .debugLines = {"SEI NALs"}, .ifCounted = true},
        {FIELD(nNumSHNALs), .debugLines = {"SH NALs"}},
        {FIELD(tLastSHNAL), .debugLines = {"SH NALs"}, .ifCounted = true},
        {FIELD(nNumAUDNALs), .debugLines = {"AUD NALs"}},
        {FIELD(tLastAUDNAL), .debugLines = {"AUD NALs"}, .ifCounted = true},
        {FIELD(nNumFillerNALs), .debugLines = {"Filler NALs"}},
        {FIELD(tLastFillerNAL), .debugLines = {"Filler NALs"}, .ifCounted = true},
        {FIELD(nNumUnknownNALs), .debugLines = {"Unknown NALs"}},
        {FIELD(tLastUnknownNAL), .debugLines = {"Unknown NALs"}, .ifCounted = true},
        {FIELD(nNumSPSErrors), .debugLines = {"SPS errors"}},
        {FIELD(tLastSPSError), .debugLines = {"SPS errors"}, .ifCounted = true},
        {FIELD(nNumPPSErrors), .debugLines = {"PPS errors"}},
        {FIELD(tLastPPSError), .debugLines = {"PPS errors"}, .ifCounted = true},
        {FIELD(nNumSEIErrors), .debugLines = {"SEI errors"}},
        {FIELD(tLastSEIError), .debugLines = {"SEI errors"}, .ifCounted = true},
        {FIELD(nNumSHErrors), .debugLines = {"SH errors"}},
        {FIELD(tLastSHError), .debugLines = {"SH errors"}, .ifCounted = true},
        {FIELD(nNumNoNALsInFrame), .debugLines = {"No NALs"}},
        {FIELD(tLastNoNALsInFrame), .debugLines = {"No NALs"}, .ifCounted = true},
        {FIELD(nNumTC), .debugLines = {"TC Frames"}},
        {FIELD(nNumTCBytesOutput), .debugLines = {"TC Bytes Output"}},
        {FIELD(tLastTCReceived), .debugLines = {"TC Frames"}, .ifCounted = true},
        {FIELD(nNumCC), .debugLines = {"CC Frames"}},
        {FIELD(nNumCCBytesOutput), .debugLines = {"CC Bytes Output"}},
        {FIELD(tLastCCReceived), .debugLines = {"CC Frames"}, .ifCounted = true},
        {FIELD(nNumAFD), .debugLines = {"AFD Frames"}},
        {FIELD(nNumAFDBytesOutput), .debugLines = {"AFD Bytes Output"}},
        {FIELD(tLastAFDReceived), .debugLines = {"AFD Frames"}, .ifCounted = true},
        {FIELD(nInputPacketListSize), .debugLines = {"Input Pkt List Size"}},
        {FIELD(nMaxInputPacketListSize), .debugLines = {"Input Pkt List Size"}},
        {FIELD(tMaxInputPacketListSize), .debugLines = {"Input Pkt List Size"}},
        {FIELD(nInputPacketListOverflows), .lines = {"Input Pkt List Ovflws"}},
        {FIELD(tLastInputPacketListOverflow), .lines = {"Input Pkt List Ovflws"}, .ifCounted = true},
        {FIELD(nOutputPacketListSize), .debugLines = {"Output Pkt List Size"}},
        {FIELD(nMaxOutputPacketListSize), .debugLines = {"Output Pkt List Size"}},
        {FIELD(tMaxOutputPacketListSize), .debugLines = {"Output Pkt List Size"}},
        {FIELD(nOutputPacketListOverflows), .lines = {"Output Pkt List Ovflws"}},
        {FIELD(tLastOutputPacketListOverflow), .lines = {"Output Pkt List Ovflws"}, .ifCounted = true},
    };
}

static FieldRows Rows()
{
    using Record = SMGR_VFRAMER_STATS;
    const FieldRows rows = AllRows({
        {
            {FIELD(enState), .lines = {"Preprocessor State"},
             .at = {{.value = SMGR_VFRAMER_STATE_UNSUPPORTED, .lines = {"Preprocessor State"}}}},
            {FIELD(nDecoderID)},
            {FIELD(nStreamID), .debugLines = {"Stream ID"}},
        },
        Mounted(PropertiesRows(), MEMBER(tCurrentProperties), "Stream Properties"),
        Mounted(Silent(PropertiesRows()), MEMBER(tPreviousProperties), ""),
        Mounted(CounterRows(), MEMBER(tCounters), ""),
    });
    // 0 % of a negative rate is -0.0 %.
    return Override(rows, {{FIELD(tCurrentProperties.fFrameRate), .lines = {"Stream Properties/Format"},
                            .at = {{.value = smallest, .lines = {"Stream Properties/Format", "Input Frame Rate"}}}}});
}

static SweepTable Zero()
{
    using Record = SMGR_VFRAMER_STATS;
    return {.name = "zero",
            .base = RecordWith<Record>([](Record&) {}),
            .hiddenOperatorLines = hidden_operator_lines,
            .hiddenDebugLines = previous_lines,
            .rows = Uncounted(Rows())};
}

// Every counter has counted, the format changes among them, which opens the previous properties.
static SweepTable Counted()
{
    using Record = SMGR_VFRAMER_STATS;
    const auto base = [](Record& r)
    {
        SMGR_VFRAMER_COUNTERS& c = r.tCounters;
        c.nNumStreamIDTransitions = c.nNumFormatTransitions = c.nNumUnsupported = 7;
        c.nNumH264Compression = c.nNumH265Compression = c.nNumUnknownCompression = 7;
        c.nNum420_8bitColortype = c.nNum420_10bitColortype = c.nNum422_8bitColortype = c.nNum422_10bitColortype = 7;
        c.nNumUnknownColortype = c.nNumInputPacketsDropped = 7;
        c.nNumOutputFrames = c.nNumOutputFramesOnePiece = c.nNumOutputFramesAssembled = c.nNumOutputFramesDropped = 7;
        c.nNumKeyFrames = c.nNumIPictures = c.nNumPPictures = c.nNumBPictures = c.nNumUnknownPictures = 7;
        c.nNumProgressivePicStruct = c.nNumInterlacedPicStruct = c.nNumInterlacedTopFields = 7;
        c.nNumInterlacedBottomFields = c.nNumInterlacedBothFields = c.nNumUnknownPicStruct = 7;
        c.nNumVPSNALs = c.nNumSPSNALs = c.nNumPPSNALs = c.nNumSEINALs = c.nNumSHNALs = 7;
        c.nNumAUDNALs = c.nNumFillerNALs = c.nNumUnknownNALs = c.nNumNoNALsInFrame = 7;
        c.nNumSPSErrors = c.nNumPPSErrors = c.nNumSEIErrors = c.nNumSHErrors = 7;
        c.nNumTC = c.nNumCC = c.nNumAFD = 7;
        c.nInputPacketListOverflows = c.nOutputPacketListOverflows = 7;
    };
    return {.name = "counted",
            .base = RecordWith<Record>(base),
            .hiddenOperatorLines = {"Stream Properties/Compatibility Mode"},
            .rows = Override(Rows(), AllRows({
                                         {{FIELD(tCounters.nNumFormatTransitions), .lines = {"Format Changes"}}},
                                         DebugOnly(Mounted(PropertiesRows(), MEMBER(tPreviousProperties), "Previous Stream Properties")),
                                     }))};
}

static SweepTable Unsupported()
{
    using Record = SMGR_VFRAMER_STATS;
    const auto base = [](Record& r)
    {
        r.enState = SMGR_VFRAMER_STATE_UNSUPPORTED;
        r.tCounters.nLastUnsupportedErrorCode = SMGR_ERROR_UNSUPPORTED_VIDEO_FORMAT;
    };
    return {.name = "unsupported",
            .base = RecordWith<Record>(base),
            .hiddenOperatorLines = hidden_operator_lines,
            .hiddenDebugLines = previous_lines,
            .rows = Override(Uncounted(Rows()), {{FIELD(enState), .lines = {"Preprocessor State", "Unsupported Reason"}},
                                                 {FIELD(tCounters.nLastUnsupportedErrorCode), .lines = {"Unsupported Reason"},
                                                  .at = {{.value = 0, .lines = {"Unsupported Reason"}}}}})};
}

// An interlaced stream with a frame rate to measure by. An interlace flag other than 1 prints 'p' and a field order.
static SweepTable Interlaced()
{
    using Record = SMGR_VFRAMER_STATS;
    const auto base = [](Record& r)
    {
        r.tCurrentProperties.bInterlaced = 2;
        r.tCurrentProperties.fFrameRate = 25.0f;
        r.tCounters.fInputFrameRate = 50.0f;
    };
    return {.name = "interlaced",
            .base = RecordWith<Record>(base),
            .hiddenOperatorLines = hidden_operator_lines,
            .hiddenDebugLines = previous_lines,
            .rows = Override(Uncounted(Rows()),
                             {{FIELD(tCurrentProperties.bInterlaced), .at = {{.value = 0, .lines = {"Stream Properties/Format"}},
                                                                             {.value = 1, .lines = {"Stream Properties/Format"}}}},
                              {FIELD(tCurrentProperties.bInterlacedTFF), .lines = {"Stream Properties/Format"}},
                              {FIELD(tCurrentProperties.fFrameRate), .lines = {"Stream Properties/Format", "Input Frame Rate"},
                               .at = {{.value = 0, .lines = {"Stream Properties/Format", "Input Frame Rate"}}}}})};
}

// Flags that hold: another value that is not 0 makes no difference, but for the compatibility mode.
static SweepTable Flagged()
{
    using Record = SMGR_VFRAMER_STATS;
    const auto base = [](Record& r)
    {
        SMGR_VFRAMER_STREAM_PROPS& p = r.tCurrentProperties;
        p.bFrameRateFoundInStream = p.bHasIFrames = p.bHasPFrames = p.bHasBFrames = 2;
        p.bTCPresent = p.bCCPresent = p.bAFDPresent = 2;
        p.bCompatibilityModeEnabled = 2;
    };
    return {.name = "flagged",
            .base = RecordWith<Record>(base),
            .hiddenOperatorLines = hidden_operator_lines,
            .hiddenDebugLines = previous_lines,
            .rows =
                Override(Uncounted(Rows()),
                         {{FIELD(tCurrentProperties.bFrameRateFoundInStream),
                           .at = {{.value = 0, .debugLines = {"Stream Properties/Frame Rate In Stream"}}}},
                          {FIELD(tCurrentProperties.bHasIFrames), .at = {{.value = 0, .debugLines = {"Stream Properties/Has I-frames"}}}},
                          {FIELD(tCurrentProperties.bHasPFrames), .at = {{.value = 0, .debugLines = {"Stream Properties/Has P-frames"}}}},
                          {FIELD(tCurrentProperties.bHasBFrames), .at = {{.value = 0, .debugLines = {"Stream Properties/Has B-frames"}}}},
                          {FIELD(tCurrentProperties.bTCPresent), .at = {{.value = 0, .lines = {"Stream Properties/Metadata Present"}}}},
                          {FIELD(tCurrentProperties.bCCPresent), .at = {{.value = 0, .lines = {"Stream Properties/Metadata Present"}}}},
                          {FIELD(tCurrentProperties.bAFDPresent), .at = {{.value = 0, .lines = {"Stream Properties/Metadata Present"}}}},
                          {FIELD(tCurrentProperties.bCompatibilityModeEnabled),
                           .at = {{.value = 0, .debugLines = {"Stream Properties/Compatibility Mode"}},
                                  {.value = 1, .operatorLines = {"Stream Properties/Compatibility Mode"}}}}})};
}

static std::vector<SweepTable> Tables()
{
    return {Zero(), Counted(), Unsupported(), Interlaced(), Flagged()};
}

TEST(VFramerFields, ChangeTheirLinesAndNoOther)
{
    for (const SweepTable& table : Tables()) SweepFields(Report(), table);
}

TEST(VFramerFields, HaveARowEach)
{
    for (const SweepTable& table : Tables()) CheckEveryByteHasARow(Report(), table);
}

TEST(VFramerFields, ReachEveryLine)
{
    CheckEveryLineIsNamed(Report(), Tables());
}
