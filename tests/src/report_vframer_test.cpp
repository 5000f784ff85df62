#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <cstring>
#include <limits>

#include "blocks.h"
#include "capture.h"
#include "frozen_clock.h"
#include "recording_services.h"
#include "sessmgr_const.h"
#include "stats.h"

static std::string Report(const SMGR_VFRAMER_STATS& stats, STATS_LEVEL nLevel)
{
    BOOL bResult = FALSE;
    const std::string text = Capture([&] { bResult = STATS_PrintForVFramer(&stats, nLevel); });
    EXPECT_EQ(bResult, TRUE);
    return text;
}

static std::string Block(const SMGR_VFRAMER_STREAM_PROPS& props, STATS_LEVEL nLevel)
{
    return Capture([&] { _PrintVFramerStreamProperties("Stream Properties", &props, nLevel); });
}

/** The services called since ClearServiceCalls for the texts of values, in order. */
static std::vector<std::string> CalledForTexts()
{
    std::vector<std::string> services;
    for (const ServiceCall& call : ServiceCalls())
        if (call.service != "PrintToString" && call.service != "StringCat") services.push_back(call.service);
    return services;
}

/** Every field non-zero and, as far as its type allows, different from all others. */
static SMGR_VFRAMER_STREAM_PROPS DistinctProps()
{
    SMGR_VFRAMER_STREAM_PROPS p = {};
    p.enCompressionType = SMGR_TDEMUX_COMPRESSION_TYPE_H264;
    p.enColorType = SMGR_VIDEO_COLOR_TYPE_422_10BIT;
    p.nProfile = 122;
    p.nLevel = 41;
    p.nWidth = 1920;
    p.nHeight = 1080;
    p.bInterlaced = TRUE;
    p.bInterlacedTFF = TRUE;
    p.fFrameRate = 29.97f;
    p.bFrameRateFoundInStream = TRUE;
    p.nBitsPerSecond = 12500000;
    strcpy(p.szFraming, "Byte stream");
    p.nNumberOfBPicturesInARow = 61;
    p.nGopInterval = 62;
    p.nSliceCountPerFrame = 63;
    p.bHasIFrames = TRUE;
    p.bHasPFrames = TRUE;
    p.bHasBFrames = TRUE;
    p.TimeStamp = 64;
    p.TimeStampDelta = 65;
    p.bCompatibilityModeEnabled = TRUE;
    p.nLatencyInUs = 66;
    p.bTCPresent = TRUE;
    p.bCCPresent = TRUE;
    p.bAFDPresent = TRUE;
    p.enHDRType = SMGR_VFRAMER_HDR_TYPE_HLG;
    p.enHDRTypeInStream = SMGR_VFRAMER_HDR_TYPE_PQ;
    p.colour_primaries = 9;
    p.transfer_characteristics = 16;
    p.matrix_coefficients = 10;
    p.szPayloadID[0] = 0x89;
    p.szPayloadID[1] = 0xC9;
    p.szPayloadID[2] = 0x01;
    p.szPayloadID[3] = 0x0A;
    return p;
}

/** The same in other values: the properties before. */
static SMGR_VFRAMER_STREAM_PROPS OtherProps()
{
    SMGR_VFRAMER_STREAM_PROPS p = {};
    p.enCompressionType = SMGR_TDEMUX_COMPRESSION_TYPE_H265;
    p.enColorType = SMGR_VIDEO_COLOR_TYPE_420_8BIT;
    p.nProfile = 2;
    p.nLevel = 123;
    p.nWidth = 1280;
    p.nHeight = 720;
    p.fFrameRate = 59.94f;
    p.nBitsPerSecond = 8000000;
    strcpy(p.szFraming, "Length prefix");
    p.nGopInterval = 72;
    p.nSliceCountPerFrame = 73;
    p.TimeStamp = 74;
    p.TimeStampDelta = 75;
    p.enHDRType = SMGR_VFRAMER_HDR_TYPE_SDR;
    p.enHDRTypeInStream = SMGR_VFRAMER_HDR_TYPE_CUSTOM;
    p.colour_primaries = 1;
    p.transfer_characteristics = 13;
    p.matrix_coefficients = 5;
    p.szPayloadID[0] = 0x12;
    p.szPayloadID[1] = 0x34;
    p.szPayloadID[2] = 0x56;
    p.szPayloadID[3] = 0x78;
    return p;
}

/** A number of its own for every field: event 1xx was 5xx seconds ago. */
static SMGR_VFRAMER_STATS DistinctStats()
{
    SMGR_VFRAMER_STATS s = {};
    s.enState = SMGR_VFRAMER_STATE_UNSUPPORTED;
    s.nDecoderID = 8;
    s.nStreamID = 7;
    s.tCurrentProperties = DistinctProps();
    s.tPreviousProperties = OtherProps();

    SMGR_VFRAMER_COUNTERS& c = s.tCounters;
    c.tLastVideoFrameReceived = frozen_now - 501;
    c.nNumStreamIDTransitions = 102;
    c.tLastStreamIDTransition = frozen_now - 502;
    c.nNumFormatTransitions = 103;
    c.tLastFormatTransition = frozen_now - 503;
    c.nNumUnsupported = 104;
    c.tLastUnsupported = frozen_now - 504;
    c.nLastUnsupportedErrorCode = 54;
    c.nNumH264Compression = 106;
    c.tLastH264Compression = frozen_now - 506;
    c.nNumH265Compression = 107;
    c.tLastH265Compression = frozen_now - 507;
    c.nNumUnknownCompression = 108;
    c.tLastUnknownCompression = frozen_now - 508;
    c.nNum420_8bitColortype = 109;
    c.tLast420_8bitColortype = frozen_now - 509;
    c.nNum420_10bitColortype = 110;
    c.tLast420_10bitColortype = frozen_now - 510;
    c.nNum422_8bitColortype = 111;
    c.tLast422_8bitColortype = frozen_now - 511;
    c.nNum422_10bitColortype = 112;
    c.tLast422_10bitColortype = frozen_now - 512;
    c.nNumUnknownColortype = 113;
    c.tLastUnknownColortype = frozen_now - 513;
    c.nNumInputPackets = 114;
    c.nNumInputPacketsFreed = 115;
    c.nNumInputPacketsDropped = 116;
    c.tLastInputPacketDropped = frozen_now - 516;
    c.nInputFifoLength = 117;
    c.fInputFrameRate = 29.5f;
    c.nNumOutputFrames = 119;
    c.tLastOutputFrame = frozen_now - 519;
    c.nNumOutputFramesOnePiece = 120;
    c.tLastOutputFrameOnePiece = frozen_now - 520;
    c.nNumOutputFramesAssembled = 121;
    c.tLastOutputFrameAssembled = frozen_now - 521;
    c.nNumOutputFramesDropped = 122;
    c.tLastOutputFrameDropped = frozen_now - 522;
    c.nNumOutputBytesToDecoder = 123;
    c.nNumOutputBytesDropped = 124;
    c.nOutputFifoLength = 125;
    c.nNumKeyFrames = 126;
    c.tLastKeyFrame = frozen_now - 526;
    c.nNumIPictures = 127;
    c.tLastIPicture = frozen_now - 527;
    c.nNumPPictures = 128;
    c.tLastPPicture = frozen_now - 528;
    c.nNumBPictures = 129;
    c.tLastBPicture = frozen_now - 529;
    c.nNumUnknownPictures = 130;
    c.tLastUnknownPicture = frozen_now - 530;
    c.nMaxNumberOfBPicturesInARow = 131;
    c.nNumProgressivePicStruct = 132;
    c.tLastProgressivePicStruct = frozen_now - 532;
    c.nNumInterlacedPicStruct = 133;
    c.tLastInterlacedPicStruct = frozen_now - 533;
    c.nNumInterlacedTopFields = 134;
    c.tLastInterlacedTopField = frozen_now - 534;
    c.nNumInterlacedBottomFields = 135;
    c.tLastInterlacedBottomField = frozen_now - 535;
    c.nNumInterlacedBothFields = 136;
    c.tLastInterlacedBothFields = frozen_now - 536;
    c.nNumUnknownPicStruct = 137;
    c.tLastUnknownPicStruct = frozen_now - 537;
    c.nNumVPSNALs = 138;
    c.tLastVPSNAL = frozen_now - 538;
    c.nNumSPSNALs = 139;
    c.tLastSPSNAL = frozen_now - 539;
    c.nNumPPSNALs = 140;
    c.tLastPPSNAL = frozen_now - 540;
    c.nNumSEINALs = 141;
    c.tLastSEINAL = frozen_now - 541;
    c.nNumSHNALs = 142;
    c.tLastSHNAL = frozen_now - 542;
    c.nNumAUDNALs = 143;
    c.tLastAUDNAL = frozen_now - 543;
    c.nNumFillerNALs = 144;
    c.tLastFillerNAL = frozen_now - 544;
    c.nNumUnknownNALs = 145;
    c.tLastUnknownNAL = frozen_now - 545;
    c.nNumSPSErrors = 146;
    c.tLastSPSError = frozen_now - 546;
    c.nNumPPSErrors = 147;
    c.tLastPPSError = frozen_now - 547;
    c.nNumSEIErrors = 148;
    c.tLastSEIError = frozen_now - 548;
    c.nNumSHErrors = 149;
    c.tLastSHError = frozen_now - 549;
    c.nNumNoNALsInFrame = 150;
    c.tLastNoNALsInFrame = frozen_now - 550;
    c.nNumTC = 151;
    c.nNumTCBytesOutput = 251;
    c.tLastTCReceived = frozen_now - 551;
    c.nNumCC = 152;
    c.nNumCCBytesOutput = 252;
    c.tLastCCReceived = frozen_now - 552;
    c.nNumAFD = 153;
    c.nNumAFDBytesOutput = 253;
    c.tLastAFDReceived = frozen_now - 553;
    c.nInputPacketListSize = 154;
    c.nMaxInputPacketListSize = 254;
    c.tMaxInputPacketListSize = frozen_now - 554;
    c.nInputPacketListOverflows = 155;
    c.tLastInputPacketListOverflow = frozen_now - 555;
    c.nOutputPacketListSize = 156;
    c.nMaxOutputPacketListSize = 256;
    c.tMaxOutputPacketListSize = frozen_now - 556;
    c.nOutputPacketListOverflows = 157;
    c.tLastOutputPacketListOverflow = frozen_now - 557;
    return s;
}

static SMGR_VFRAMER_STATS IdleStats()
{
    SMGR_VFRAMER_STATS s = {};
    s.enState = SMGR_VFRAMER_STATE_IDLE;
    return s;
}

/** The idle report at the default level, with other lines before and after its input frame rate. */
static std::string IdleReportWith(const std::string& before, const std::string& after)
{
    return R"(Video
  Preprocessor State    : {VFramerState 1 1024}
  Stream Properties
    Compression         : {TDemuxCompressionType 0 1024}
    Color               : {VideoColorType 0 1024}
    Profile             : {VideoProfile 0 0 1024}
    Level               : {VideoLevel 0 0 1024}
    Format              : 0x0p0
    Bit Rate            : {BitRate 0 1024}
    Framing             :)"
           " \n"
           R"(    GOP Interval        : {ULONG 0 1024}
    Slices per Frame    : {ULONG 0 1024}
    Dynamic Range Stream: {VideoHDRType 0 1024}
    Dynamic Range Output: {VideoHDRType 0 1024}
    Metadata Present    : None
)" + before +
           "  Input Frame Rate      : 0.00 [0.0%] (measured)\n" + after;
}

/** The report's line about the input frame rate. */
static std::string InputFrameRate(float fInputFrameRate, float fStreamFrameRate)
{
    SMGR_VFRAMER_STATS s = IdleStats();
    s.tCounters.fInputFrameRate = fInputFrameRate;
    s.tCurrentProperties.fFrameRate = fStreamFrameRate;
    return LineOf(Report(s, STATS_LEVEL_DEFAULT), "Input Frame Rate");
}

TEST(VFramerReport, IdleAtTheDefaultLevelHoldsStatePropertiesAndRateAlone)
{
    EXPECT_EQ(Report(IdleStats(), STATS_LEVEL_DEFAULT), IdleReportWith("", ""));
}

TEST(VFramerReport, DistinctValuesAtTheDefaultLevel)
{
    EXPECT_EQ(Report(DistinctStats(), STATS_LEVEL_DEFAULT), R"(Video
  Preprocessor State    : {VFramerState -2 1024}
  Unsupported Reason    : {Error 54 1024} (54)
  Stream Properties
    Compression         : {TDemuxCompressionType 1000 1024}
    Color               : {VideoColorType 4 1024}
    Profile             : {VideoProfile 122 1000 1024}
    Level               : {VideoLevel 41 1000 1024}
    Format              : 1920x1080i29.97 (TFF)
    Bit Rate            : {BitRate 12500000 1024}
    Framing             : Byte stream
    GOP Interval        : {ULONG 62 1024}
    Slices per Frame    : {ULONG 63 1024}
    Dynamic Range Stream: {VideoHDRType 3 1024}
    Dynamic Range Output: {VideoHDRType 2 1024}
    Compatibility Mode  : Enabled
    Metadata Present    : TC, CC, AFD
  Stream ID Changes     : {ULONG 102 1024} (Last One: {UpTime 502 1024} ago)
  Format Changes        : {ULONG 103 1024} (Last One: {UpTime 503 1024} ago)
  Input Frame Rate      : 29.50 [98.4%] (measured)
  Input Pkt List Ovflws : {ULONG 155 1024} (Last One: {UpTime 555 1024} ago)
  Output Pkt List Ovflws: {ULONG 157 1024} (Last One: {UpTime 557 1024} ago)
)");
}

TEST(VFramerReport, DistinctValuesInDebug)
{
    EXPECT_EQ(Report(DistinctStats(), STATS_LEVEL_DEBUG), R"(Video
  Preprocessor State    : {VFramerState -2 1024}
  Unsupported Reason    : {Error 54 1024} (54)
  Stream ID             : 7
  Stream Properties
    Compression         : {TDemuxCompressionType 1000 1024}
    Color               : {VideoColorType 4 1024}
    Profile             : {VideoProfile 122 1000 1024}
    Level               : {VideoLevel 41 1000 1024}
    Format              : 1920x1080i29.97 (TFF)
    Frame Rate In Stream: Yes
    Bit Rate            : {BitRate 12500000 1024}
    Framing             : Byte stream
    Has I-frames        : Yes
    Has P-frames        : Yes
    Has B-frames        : Yes
    GOP Interval        : {ULONG 62 1024}
    Slices per Frame    : {ULONG 63 1024}
    Time Stamp          : 64
    Time Stamp Delta    : 65
    Dynamic Range Stream: {VideoHDRType 3 1024}
    Dynamic Range Output: {VideoHDRType 2 1024}
    Color Primaries     : 9 ({VideoColourPrimaries 9 1024})
    Transfer Char's     : 16 ({VideoTransferCharacteristics 16 1024})
    Matrix Coeffs       : 10 ({VideoMatrixCoefficients 10 1024})
    SDI Payload ID      : [0x89 0xC9 0x01 0x0A]
    Compatibility Mode  : Enabled
    Metadata Present    : TC, CC, AFD
  Stream ID Changes     : {ULONG 102 1024} (Last One: {UpTime 502 1024} ago)
  Format Changes        : {ULONG 103 1024} (Last One: {UpTime 503 1024} ago)
  Previous Stream Properties
    Compression         : {TDemuxCompressionType 1001 1024}
    Color               : {VideoColorType 1 1024}
    Profile             : {VideoProfile 2 1001 1024}
    Level               : {VideoLevel 123 1001 1024}
    Format              : 1280x720p59.94
    Frame Rate In Stream: No
    Bit Rate            : {BitRate 8000000 1024}
    Framing             : Length prefix
    Has I-frames        : No
    Has P-frames        : No
    Has B-frames        : No
    GOP Interval        : {ULONG 72 1024}
    Slices per Frame    : {ULONG 73 1024}
    Time Stamp          : 74
    Time Stamp Delta    : 75
    Dynamic Range Stream: {VideoHDRType 4 1024}
    Dynamic Range Output: {VideoHDRType 1 1024}
    Color Primaries     : 1 ({VideoColourPrimaries 1 1024})
    Transfer Char's     : 13 ({VideoTransferCharacteristics 13 1024})
    Matrix Coeffs       : 5 ({VideoMatrixCoefficients 5 1024})
    SDI Payload ID      : [0x12 0x34 0x56 0x78]
    Compatibility Mode  : Disabled
    Metadata Present    : None
  Input Frame Rate      : 29.50 [98.4%] (measured)
  Input Packets         : {ULONG 114 1024}
  Input Packets Freed   : {ULONG 115 1024}
  Input Packets Dropped : {ULONG 116 1024} (Last One: {UpTime 516 1024} ago)
  Input FIFO Length     : {ULONG 117 1024}
  Output Pics To Dec    : {ULONG 119 1024} (Last One: {UpTime 519 1024} ago)
  Output Pics Dropped   : {ULONG 122 1024} (Last One: {UpTime 522 1024} ago)
  Output Pics 1-Piece   : {ULONG 120 1024} (Last One: {UpTime 520 1024} ago)
  Output Pics Assembled : {ULONG 121 1024} (Last One: {UpTime 521 1024} ago)
  Output Bytes To Dec   : {ULONG 123 1024}
  Output Bytes Dropped  : {ULONG 124 1024}
  Output FIFO Length    : {ULONG 125 1024}
  Key Frames to Dec     : {ULONG 126 1024} (Last One: {UpTime 526 1024} ago)
  Unsupported           : {ULONG 104 1024} (Last One: {UpTime 504 1024} ago)
  H264 Compression      : {ULONG 106 1024} (Last One: {UpTime 506 1024} ago)
  H265 Compression      : {ULONG 107 1024} (Last One: {UpTime 507 1024} ago)
  Unknown Compression   : {ULONG 108 1024} (Last One: {UpTime 508 1024} ago)
  4:2:0 8bit ColorType  : {ULONG 109 1024} (Last One: {UpTime 509 1024} ago)
  4:2:0 10bit ColorType : {ULONG 110 1024} (Last One: {UpTime 510 1024} ago)
  4:2:2 8bit ColorType  : {ULONG 111 1024} (Last One: {UpTime 511 1024} ago)
  4:2:2 10bit ColorType : {ULONG 112 1024} (Last One: {UpTime 512 1024} ago)
  Unknown ColorType     : {ULONG 113 1024} (Last One: {UpTime 513 1024} ago)
  I-Pictures            : {ULONG 127 1024} (Last One: {UpTime 527 1024} ago)
  P-Pictures            : {ULONG 128 1024} (Last One: {UpTime 528 1024} ago)
  B-Pictures            : {ULONG 129 1024} (Last One: {UpTime 529 1024} ago)
  Max B-Pictures        : {ULONG 131 1024}
  Unknown Pictures      : {ULONG 130 1024} (Last One: {UpTime 530 1024} ago)
  Progressive Pictures  : {ULONG 132 1024} (Last One: {UpTime 532 1024} ago)
  Interlaced Pictures   : {ULONG 133 1024} (Last One: {UpTime 533 1024} ago)
  Interlaced Top Fields : {ULONG 134 1024} (Last One: {UpTime 534 1024} ago)
  Interlaced Btm Fields : {ULONG 135 1024} (Last One: {UpTime 535 1024} ago)
  Interlaced Both Flds  : {ULONG 136 1024} (Last One: {UpTime 536 1024} ago)
  Unknown Pic Structure : {ULONG 137 1024} (Last One: {UpTime 537 1024} ago)
  VPS NALs              : {ULONG 138 1024} (Last One: {UpTime 538 1024} ago)
  SPS NALs              : {ULONG 139 1024} (Last One: {UpTime 539 1024} ago)
  PPS NALs              : {ULONG 140 1024} (Last One: {UpTime 540 1024} ago)
  SEI NALs              : {ULONG 141 1024} (Last One: {UpTime 541 1024} ago)
  SH NALs               : {ULONG 142 1024} (Last One: {UpTime 542 1024} ago)
  AUD NALs              : {ULONG 143 1024} (Last One: {UpTime 543 1024} ago)
  Filler NALs           : {ULONG 144 1024} (Last One: {UpTime 544 1024} ago)
  Unknown NALs          : {ULONG 145 1024} (Last One: {UpTime 545 1024} ago)
  No NALs               : {ULONG 150 1024} (Last One: {UpTime 550 1024} ago)
  SPS errors            : {ULONG 146 1024} (Last One: {UpTime 546 1024} ago)
  PPS errors            : {ULONG 147 1024} (Last One: {UpTime 547 1024} ago)
  SEI errors            : {ULONG 148 1024} (Last One: {UpTime 548 1024} ago)
  SH errors             : {ULONG 149 1024} (Last One: {UpTime 549 1024} ago)
  TC Frames             : {ULONG 151 1024} (Last One: {UpTime 551 1024} ago)
  TC Bytes Output       : {ULONG 251 1024}
  CC Frames             : {ULONG 152 1024} (Last One: {UpTime 552 1024} ago)
  CC Bytes Output       : {ULONG 252 1024}
  AFD Frames            : {ULONG 153 1024} (Last One: {UpTime 553 1024} ago)
  AFD Bytes Output      : {ULONG 253 1024}
  Input Pkt List Size   : {ULONG 154 1024} bytes (max={ULONG 254 1024} bytes occurred {UpTime 554 1024} ago)
  Input Pkt List Ovflws : {ULONG 155 1024} (Last One: {UpTime 555 1024} ago)
  Output Pkt List Size  : {ULONG 156 1024} bytes (max={ULONG 256 1024} bytes occurred {UpTime 556 1024} ago)
  Output Pkt List Ovflws: {ULONG 157 1024} (Last One: {UpTime 557 1024} ago)
)");
}

TEST(VFramerReport, IdleInDebugPrintsEveryCounter)
{
    EXPECT_EQ(Report(IdleStats(), STATS_LEVEL_DEBUG), R"(Video
  Preprocessor State    : {VFramerState 1 1024}
  Stream ID             : 0
  Stream Properties
    Compression         : {TDemuxCompressionType 0 1024}
    Color               : {VideoColorType 0 1024}
    Profile             : {VideoProfile 0 0 1024}
    Level               : {VideoLevel 0 0 1024}
    Format              : 0x0p0
    Frame Rate In Stream: No
    Bit Rate            : {BitRate 0 1024}
    Framing             :)"
                                                      " \n"
                                                      R"(    Has I-frames        : No
    Has P-frames        : No
    Has B-frames        : No
    GOP Interval        : {ULONG 0 1024}
    Slices per Frame    : {ULONG 0 1024}
    Time Stamp          : 0
    Time Stamp Delta    : 0
    Dynamic Range Stream: {VideoHDRType 0 1024}
    Dynamic Range Output: {VideoHDRType 0 1024}
    Color Primaries     : 0 ({VideoColourPrimaries 0 1024})
    Transfer Char's     : 0 ({VideoTransferCharacteristics 0 1024})
    Matrix Coeffs       : 0 ({VideoMatrixCoefficients 0 1024})
    SDI Payload ID      : [0x00 0x00 0x00 0x00]
    Compatibility Mode  : Disabled
    Metadata Present    : None
  Stream ID Changes     : 0
  Format Changes        : 0
  Input Frame Rate      : 0.00 [0.0%] (measured)
  Input Packets         : {ULONG 0 1024}
  Input Packets Freed   : {ULONG 0 1024}
  Input Packets Dropped : 0
  Input FIFO Length     : {ULONG 0 1024}
  Output Pics To Dec    : 0
  Output Pics Dropped   : 0
  Output Pics 1-Piece   : 0
  Output Pics Assembled : 0
  Output Bytes To Dec   : {ULONG 0 1024}
  Output Bytes Dropped  : {ULONG 0 1024}
  Output FIFO Length    : {ULONG 0 1024}
  Key Frames to Dec     : 0
  Unsupported           : 0
  H264 Compression      : 0
  H265 Compression      : 0
  Unknown Compression   : 0
  4:2:0 8bit ColorType  : 0
  4:2:0 10bit ColorType : 0
  4:2:2 8bit ColorType  : 0
  4:2:2 10bit ColorType : 0
  Unknown ColorType     : 0
  I-Pictures            : 0
  P-Pictures            : 0
  B-Pictures            : 0
  Max B-Pictures        : {ULONG 0 1024}
  Unknown Pictures      : 0
  Progressive Pictures  : 0
  Interlaced Pictures   : 0
  Interlaced Top Fields : 0
  Interlaced Btm Fields : 0
  Interlaced Both Flds  : 0
  Unknown Pic Structure : 0
  VPS NALs              : 0
  SPS NALs              : 0
  PPS NALs              : 0
  SEI NALs              : 0
  SH NALs               : 0
  AUD NALs              : 0
  Filler NALs           : 0
  Unknown NALs          : 0
  No NALs               : 0
  SPS errors            : 0
  PPS errors            : 0
  SEI errors            : 0
  SH errors             : 0
  TC Frames             : 0
  TC Bytes Output       : {ULONG 0 1024}
  CC Frames             : 0
  CC Bytes Output       : {ULONG 0 1024}
  AFD Frames            : 0
  AFD Bytes Output      : {ULONG 0 1024}
  Input Pkt List Size   : {ULONG 0 1024} bytes (max={ULONG 0 1024} bytes occurred Never)
  Input Pkt List Ovflws : 0
  Output Pkt List Size  : {ULONG 0 1024} bytes (max={ULONG 0 1024} bytes occurred Never)
  Output Pkt List Ovflws: 0
)");
}

TEST(VFramerReport, EveryLevelButDebugPrintsAsTheDefault)
{
    const SMGR_VFRAMER_STATS s = DistinctStats();
    const std::string expected = Report(s, STATS_LEVEL_DEFAULT);
    for (const int nLevel : {2, -1, INT_MAX, INT_MIN}) EXPECT_EQ(Report(s, static_cast<STATS_LEVEL>(nLevel)), expected) << nLevel;
}

TEST(VFramerReport, EngineeringFieldsChangeNothingAtTheDefaultLevel)
{
    SMGR_VFRAMER_STATS s = DistinctStats();
    s.enState = SMGR_VFRAMER_STATE_IDLE;
    s.tCurrentProperties = {};
    s.tCounters.fInputFrameRate = 0;
    // These print once they have counted. Their times, and all else, stay as they are.
    s.tCounters.nNumStreamIDTransitions = 0;
    s.tCounters.nNumFormatTransitions = 0;
    s.tCounters.nInputPacketListOverflows = 0;
    s.tCounters.nOutputPacketListOverflows = 0;
    EXPECT_EQ(Report(s, STATS_LEVEL_DEFAULT), IdleReportWith("", ""));
}

TEST(VFramerReport, StreamIDChangesPrintOnceTheyHappened)
{
    SMGR_VFRAMER_STATS s = IdleStats();
    s.tCounters.nNumStreamIDTransitions = 1;
    s.tCounters.tLastStreamIDTransition = frozen_now - 2;
    EXPECT_EQ(Report(s, STATS_LEVEL_DEFAULT),
              IdleReportWith("  Stream ID Changes     : {ULONG 1 1024} (Last One: {UpTime 2 1024} ago)\n", ""));
}

TEST(VFramerReport, FormatChangesAt3AtTheDefaultLevelPrintNoPreviousProperties)
{
    SMGR_VFRAMER_STATS s = IdleStats();
    s.tPreviousProperties = OtherProps();
    s.tCounters.nNumFormatTransitions = 3;
    s.tCounters.tLastFormatTransition = frozen_now - 4;
    EXPECT_EQ(Report(s, STATS_LEVEL_DEFAULT),
              IdleReportWith("  Format Changes        : {ULONG 3 1024} (Last One: {UpTime 4 1024} ago)\n", ""));
}

TEST(VFramerReport, FormatChangesAt3InDebugPrintThePreviousPropertiesDirectlyAfter)
{
    SMGR_VFRAMER_STATS s = IdleStats();
    s.tPreviousProperties = OtherProps();
    s.tCounters.nNumFormatTransitions = 3;
    s.tCounters.tLastFormatTransition = frozen_now - 4;
    EXPECT_NE(Report(s, STATS_LEVEL_DEBUG)
                  .find("  Format Changes        : {ULONG 3 1024} (Last One: {UpTime 4 1024} ago)\n"
                        "  Previous Stream Properties\n"
                        "    Compression         : {TDemuxCompressionType 1001 1024}\n"),
              std::string::npos);
}

TEST(VFramerReport, FormatChangesAtZeroInDebugPrintNoPreviousProperties)
{
    SMGR_VFRAMER_STATS s = IdleStats();
    s.tPreviousProperties = OtherProps();
    s.tCounters.tLastFormatTransition = frozen_now - 4;
    const std::string text = Report(s, STATS_LEVEL_DEBUG);
    EXPECT_EQ(text, Report(IdleStats(), STATS_LEVEL_DEBUG)); // without those fields
    EXPECT_EQ(LineOf(text, "Format Changes"), "  Format Changes        : 0");
    EXPECT_EQ(LineOf(text, "Previous"), "");
}

TEST(VFramerReport, ListOverflowsPrintOnceTheyHappened)
{
    SMGR_VFRAMER_STATS s = IdleStats();
    s.tCounters.nInputPacketListOverflows = 5;
    EXPECT_EQ(Report(s, STATS_LEVEL_DEFAULT), IdleReportWith("", "  Input Pkt List Ovflws : {ULONG 5 1024} (Last One: Never)\n"));
    s.tCounters.nInputPacketListOverflows = 0;
    s.tCounters.nOutputPacketListOverflows = 6;
    EXPECT_EQ(Report(s, STATS_LEVEL_DEFAULT), IdleReportWith("", "  Output Pkt List Ovflws: {ULONG 6 1024} (Last One: Never)\n"));
}

TEST(VFramerReport, AMultipleOf2To32IsNotZero)
{
    SMGR_VFRAMER_STATS s = IdleStats();
    s.tCounters.nNumFormatTransitions = 4294967296;
    EXPECT_EQ(Report(s, STATS_LEVEL_DEFAULT), IdleReportWith("  Format Changes        : {ULONG 4294967296 1024} (Last One: Never)\n", ""));
}

TEST(VFramerReport, UnsupportedWithoutACodeGivesNoReason)
{
    SMGR_VFRAMER_STATS s = IdleStats();
    s.enState = SMGR_VFRAMER_STATE_UNSUPPORTED;
    const std::string text = Report(s, STATS_LEVEL_DEFAULT);
    EXPECT_EQ(text.find("Video\n  Preprocessor State    : {VFramerState -2 1024}\n  Stream Properties\n"), 0u);
    EXPECT_EQ(LineOf(text, "Unsupported Reason"), "");
    EXPECT_EQ(LineOf(Report(s, STATS_LEVEL_DEBUG), "Unsupported Reason"), "");
}

TEST(VFramerReport, UnsupportedWithACodeGivesTheReason)
{
    SMGR_VFRAMER_STATS s = IdleStats();
    s.enState = SMGR_VFRAMER_STATE_UNSUPPORTED;
    s.tCounters.nLastUnsupportedErrorCode = SMGR_ERROR_UNSUPPORTED_H264_INTERLACED_VIDEO;
    EXPECT_EQ(LineOf(Report(s, STATS_LEVEL_DEFAULT), "Unsupported Reason"), "  Unsupported Reason    : {Error 1150 1024} (1150)");
    // A warning's code has its top bit set.
    s.tCounters.nLastUnsupportedErrorCode = static_cast<int>(SMGR_WARNING_UNABLE_TO_RESOLVE_HOSTNAME);
    EXPECT_EQ(LineOf(Report(s, STATS_LEVEL_DEFAULT), "Unsupported Reason"),
              "  Unsupported Reason    : {Error -2147483645 1024} (-2147483645)");
}

TEST(VFramerReport, ReasonIsForTheUnsupportedStateOnly)
{
    SMGR_VFRAMER_STATS s = IdleStats();
    s.tCounters.nLastUnsupportedErrorCode = 54;
    for (const int nState : {0, 1, 2, -1, -3, 3})
    {
        s.enState = static_cast<SMGR_VFRAMER_STATE>(nState);
        EXPECT_EQ(LineOf(Report(s, STATS_LEVEL_DEBUG), "Unsupported Reason"), "") << nState;
    }
}

TEST(VFramerReport, UnknownStatesAreLeftToTheirService)
{
    SMGR_VFRAMER_STATS s = IdleStats();
    s.enState = static_cast<SMGR_VFRAMER_STATE>(99);
    EXPECT_EQ(LineOf(Report(s, STATS_LEVEL_DEFAULT), "Preprocessor State"), "  Preprocessor State    : {VFramerState 99 1024}");
    s.enState = static_cast<SMGR_VFRAMER_STATE>(INT_MIN);
    EXPECT_EQ(LineOf(Report(s, STATS_LEVEL_DEFAULT), "Preprocessor State"), "  Preprocessor State    : {VFramerState -2147483648 1024}");
}

TEST(VFramerReport, StreamIDIsSigned)
{
    SMGR_VFRAMER_STATS s = IdleStats();
    s.nStreamID = -1;
    EXPECT_EQ(LineOf(Report(s, STATS_LEVEL_DEBUG), "Stream ID  "), "  Stream ID             : -1");
    s.nStreamID = INT_MIN;
    EXPECT_EQ(LineOf(Report(s, STATS_LEVEL_DEBUG), "Stream ID  "), "  Stream ID             : -2147483648");
}

TEST(VFramerReport, AStreamRateOfZeroGivesZeroPercent)
{
    EXPECT_EQ(InputFrameRate(30.0f, 0.0f), "  Input Frame Rate      : 30.00 [0.0%] (measured)");
    EXPECT_EQ(InputFrameRate(30.0f, -0.0f), "  Input Frame Rate      : 30.00 [0.0%] (measured)");
}

TEST(VFramerReport, MeasuredRateInPercentOfTheStreamsOwn)
{
    EXPECT_EQ(InputFrameRate(29.97f, 29.97f), "  Input Frame Rate      : 29.97 [100.0%] (measured)");
    EXPECT_EQ(InputFrameRate(25.0f, 50.0f), "  Input Frame Rate      : 25.00 [50.0%] (measured)");
    EXPECT_EQ(InputFrameRate(0.0f, 50.0f), "  Input Frame Rate      : 0.00 [0.0%] (measured)");
}

TEST(VFramerReport, AMeasuredRateAboveTheStreamsOwnIsMoreThan100Percent)
{
    EXPECT_EQ(InputFrameRate(60.0f, 30.0f), "  Input Frame Rate      : 60.00 [200.0%] (measured)");
}

TEST(VFramerReport, ThePercentageIsSinglePrecision)
{
    // 59.97f is 59.9700012. Times 100 it rounds to 5997, and a 60th of that, 99.95, to 99.9499969. In double precision, or with
    // only one of the two operations in single precision, or dividing first, the result is at least 99.95 and prints as 100.0.
    EXPECT_EQ(InputFrameRate(59.97f, 60.0f), "  Input Frame Rate      : 59.97 [99.9%] (measured)");
    // Likewise 60.03f is 60.0299988, but 6003 / 60 rounds up to 100.050003.
    EXPECT_EQ(InputFrameRate(60.03f, 60.0f), "  Input Frame Rate      : 60.03 [100.1%] (measured)");
    // 100 times 2^122 is beyond the largest float.
    EXPECT_EQ(InputFrameRate(0x1p122f, 0x1p122f), "  Input Frame Rate      : 5316911983139663491615228241121378304.00 [inf%] (measured)");
}

TEST(VFramerReport, OddRatesArePrintedAsTheyAre)
{
    EXPECT_EQ(InputFrameRate(30.0f, -30.0f), "  Input Frame Rate      : 30.00 [-100.0%] (measured)");
    EXPECT_EQ(InputFrameRate(-30.0f, 30.0f), "  Input Frame Rate      : -30.00 [-100.0%] (measured)");
    EXPECT_EQ(InputFrameRate(30.0f, std::numeric_limits<float>::quiet_NaN()), "  Input Frame Rate      : 30.00 [nan%] (measured)");
    EXPECT_EQ(InputFrameRate(std::numeric_limits<float>::quiet_NaN(), 0.0f), "  Input Frame Rate      : nan [0.0%] (measured)");
    EXPECT_EQ(InputFrameRate(30.0f, std::numeric_limits<float>::infinity()), "  Input Frame Rate      : 30.00 [0.0%] (measured)");
}

TEST(VFramerReport, CountersAreUnsignedTo64Bits)
{
    SMGR_VFRAMER_STATS s = IdleStats();
    s.tCounters.nNumInputPackets = ULONG_MAX;
    s.tCounters.nNumKeyFrames = 9223372036854775808ul;
    s.tCounters.nInputPacketListSize = ULONG_MAX;
    s.tCounters.nMaxInputPacketListSize = 9223372036854775808ul;
    const std::string text = Report(s, STATS_LEVEL_DEBUG);
    EXPECT_EQ(LineOf(text, "Input Packets  "), "  Input Packets         : {ULONG 18446744073709551615 1024}");
    EXPECT_EQ(LineOf(text, "Key Frames to Dec"), "  Key Frames to Dec     : {ULONG 9223372036854775808 1024} (Last One: Never)");
    EXPECT_EQ(
        LineOf(text, "Input Pkt List Size"),
        "  Input Pkt List Size   : {ULONG 18446744073709551615 1024} bytes (max={ULONG 9223372036854775808 1024} bytes occurred Never)");
}

TEST(VFramerReport, NoServiceIsCalledForALineThatDoesNotPrint)
{
    ClearServiceCalls();
    Report(IdleStats(), STATS_LEVEL_DEFAULT);
    EXPECT_EQ(CalledForTexts(), (std::vector<std::string>{"VFramerState", "TDemuxCompressionType", "VideoColorType", "VideoProfile",
                                                          "VideoLevel", "BitRate", "ULONG", "ULONG", "VideoHDRType", "VideoHDRType"}));
}

TEST(VFramerReport, ARecordMayStandOnA4ByteBoundary)
{
    alignas(8) struct
    {
        int nBefore;
        SMGR_VFRAMER_STATS stats;
    } shifted = {1, DistinctStats()};
    ASSERT_EQ(reinterpret_cast<uintptr_t>(&shifted.stats) % 8, 4u);
    EXPECT_EQ(Report(shifted.stats, STATS_LEVEL_DEBUG), Report(DistinctStats(), STATS_LEVEL_DEBUG));
}

TEST(StreamPropertiesBlock, AllZeroAtTheDefaultLevel)
{
    EXPECT_EQ(Block({}, STATS_LEVEL_DEFAULT), R"(  Stream Properties
    Compression         : {TDemuxCompressionType 0 1024}
    Color               : {VideoColorType 0 1024}
    Profile             : {VideoProfile 0 0 1024}
    Level               : {VideoLevel 0 0 1024}
    Format              : 0x0p0
    Bit Rate            : {BitRate 0 1024}
    Framing             :)"
                                              " \n"
                                              R"(    GOP Interval        : {ULONG 0 1024}
    Slices per Frame    : {ULONG 0 1024}
    Dynamic Range Stream: {VideoHDRType 0 1024}
    Dynamic Range Output: {VideoHDRType 0 1024}
    Metadata Present    : None
)");
}

TEST(StreamPropertiesBlock, DistinctValuesAtTheDefaultLevel)
{
    EXPECT_EQ(Block(OtherProps(), STATS_LEVEL_DEFAULT), R"(  Stream Properties
    Compression         : {TDemuxCompressionType 1001 1024}
    Color               : {VideoColorType 1 1024}
    Profile             : {VideoProfile 2 1001 1024}
    Level               : {VideoLevel 123 1001 1024}
    Format              : 1280x720p59.94
    Bit Rate            : {BitRate 8000000 1024}
    Framing             : Length prefix
    GOP Interval        : {ULONG 72 1024}
    Slices per Frame    : {ULONG 73 1024}
    Dynamic Range Stream: {VideoHDRType 4 1024}
    Dynamic Range Output: {VideoHDRType 1 1024}
    Metadata Present    : None
)");
}

TEST(StreamPropertiesBlock, DistinctValuesInDebug)
{
    EXPECT_EQ(Block(OtherProps(), STATS_LEVEL_DEBUG), R"(  Stream Properties
    Compression         : {TDemuxCompressionType 1001 1024}
    Color               : {VideoColorType 1 1024}
    Profile             : {VideoProfile 2 1001 1024}
    Level               : {VideoLevel 123 1001 1024}
    Format              : 1280x720p59.94
    Frame Rate In Stream: No
    Bit Rate            : {BitRate 8000000 1024}
    Framing             : Length prefix
    Has I-frames        : No
    Has P-frames        : No
    Has B-frames        : No
    GOP Interval        : {ULONG 72 1024}
    Slices per Frame    : {ULONG 73 1024}
    Time Stamp          : 74
    Time Stamp Delta    : 75
    Dynamic Range Stream: {VideoHDRType 4 1024}
    Dynamic Range Output: {VideoHDRType 1 1024}
    Color Primaries     : 1 ({VideoColourPrimaries 1 1024})
    Transfer Char's     : 13 ({VideoTransferCharacteristics 13 1024})
    Matrix Coeffs       : 5 ({VideoMatrixCoefficients 5 1024})
    SDI Payload ID      : [0x12 0x34 0x56 0x78]
    Compatibility Mode  : Disabled
    Metadata Present    : None
)");
}

TEST(StreamPropertiesBlock, EveryLevelButDebugPrintsAsTheDefault)
{
    const std::string expected = Block(DistinctProps(), STATS_LEVEL_DEFAULT);
    for (const int nLevel : {2, -1}) EXPECT_EQ(Block(DistinctProps(), static_cast<STATS_LEVEL>(nLevel)), expected) << nLevel;
}

TEST(StreamPropertiesBlock, TheRecordsLevelIsNotTheReportLevel)
{
    SMGR_VFRAMER_STREAM_PROPS p = OtherProps();
    p.nLevel = STATS_LEVEL_DEBUG;
    const std::string text = Block(p, STATS_LEVEL_DEFAULT);
    EXPECT_EQ(LineOf(text, "Level  "), "    Level               : {VideoLevel 1 1001 1024}");
    EXPECT_EQ(LineOf(text, "Time Stamp"), "");
}

TEST(StreamPropertiesBlock, TitleIsPrintedAsItIs)
{
    const SMGR_VFRAMER_STREAM_PROPS p = {};
    EXPECT_EQ(Capture([&] { _PrintVFramerStreamProperties("100%d %s", &p, STATS_LEVEL_DEFAULT); }).find("  100%d %s\n    Compression "),
              0u);
}

TEST(StreamPropertiesBlock, MetadataPresentNamesWhatTheStreamHolds)
{
    const auto present = [](BOOL bTC, BOOL bCC, BOOL bAFD)
    {
        SMGR_VFRAMER_STREAM_PROPS p = {};
        p.bTCPresent = bTC;
        p.bCCPresent = bCC;
        p.bAFDPresent = bAFD;
        return LineOf(Block(p, STATS_LEVEL_DEFAULT), "Metadata Present");
    };
    EXPECT_EQ(present(0, 0, 0), "    Metadata Present    : None");
    EXPECT_EQ(present(0, 0, 1), "    Metadata Present    : AFD");
    EXPECT_EQ(present(0, 1, 0), "    Metadata Present    : CC");
    EXPECT_EQ(present(0, 1, 1), "    Metadata Present    : CC, AFD");
    EXPECT_EQ(present(1, 0, 0), "    Metadata Present    : TC");
    EXPECT_EQ(present(1, 0, 1), "    Metadata Present    : TC, AFD");
    EXPECT_EQ(present(1, 1, 0), "    Metadata Present    : TC, CC");
    EXPECT_EQ(present(1, 1, 1), "    Metadata Present    : TC, CC, AFD");
    // Any value but 0 is true, and counts once.
    EXPECT_EQ(present(2, 0, 0), "    Metadata Present    : TC");
    EXPECT_EQ(present(0, INT_MIN, 0), "    Metadata Present    : CC");
    EXPECT_EQ(present(0, 0, -1), "    Metadata Present    : AFD");
    EXPECT_EQ(present(-1, 4, 8), "    Metadata Present    : TC, CC, AFD");
}

/** The line of the format of a stream. */
static std::string Format(int nWidth, int nHeight, float fFrameRate, BOOL bInterlaced = FALSE, BOOL bInterlacedTFF = FALSE)
{
    SMGR_VFRAMER_STREAM_PROPS p = {};
    p.nWidth = nWidth;
    p.nHeight = nHeight;
    p.fFrameRate = fFrameRate;
    p.bInterlaced = bInterlaced;
    p.bInterlacedTFF = bInterlacedTFF;
    return LineOf(Block(p, STATS_LEVEL_DEFAULT), "Format");
}

TEST(StreamPropertiesBlock, FormatShowsTheAbbreviatedFrameRate)
{
    EXPECT_EQ(Format(1920, 1080, 25.0f), "    Format              : 1920x1080p25");
    EXPECT_EQ(Format(1920, 1080, 59.94f), "    Format              : 1920x1080p59.94");
    EXPECT_EQ(Format(1920, 1080, 0.0f), "    Format              : 1920x1080p0");
    EXPECT_EQ(Format(1280, 720, 60.0f), "    Format              : 1280x720p60");
    EXPECT_EQ(Format(1920, 1080, 29.97f, TRUE, TRUE), "    Format              : 1920x1080i29.97 (TFF)");
}

TEST(StreamPropertiesBlock, InterlacedWithoutTopFieldFirstIsBottomFieldFirst)
{
    EXPECT_EQ(Format(720, 576, 25.0f, TRUE, FALSE), "    Format              : 720x576i25 (BFF)");
}

TEST(StreamPropertiesBlock, FieldOrderIsForInterlacedStreamsOnly)
{
    EXPECT_EQ(Format(720, 576, 25.0f, FALSE, TRUE), "    Format              : 720x576p25");
}

TEST(StreamPropertiesBlock, ScanLetterWantsExactly1AndFieldOrderAnyTrueValue)
{
    EXPECT_EQ(Format(720, 576, 25.0f, 2, TRUE), "    Format              : 720x576p25 (TFF)");
    EXPECT_EQ(Format(720, 576, 25.0f, -1, FALSE), "    Format              : 720x576p25 (BFF)");
    EXPECT_EQ(Format(720, 576, 25.0f, INT_MIN, FALSE), "    Format              : 720x576p25 (BFF)");
    EXPECT_EQ(Format(720, 576, 25.0f, TRUE, 2), "    Format              : 720x576i25 (TFF)");
    EXPECT_EQ(Format(720, 576, 25.0f, TRUE, -1), "    Format              : 720x576i25 (TFF)");
}

TEST(StreamPropertiesBlock, FormatTakesAnyNumbers)
{
    EXPECT_EQ(Format(-1, INT_MIN, -1.5f), "    Format              : -1x-2147483648p-1.5");
    EXPECT_EQ(Format(INT_MAX, 0, std::numeric_limits<float>::quiet_NaN()), "    Format              : 2147483647x0pnan");
    EXPECT_EQ(Format(1, 2, std::numeric_limits<float>::infinity(), TRUE, FALSE), "    Format              : 1x2iinf (BFF)");
    // 20000000000.00 is cut to 11 characters and then loses three zeros.
    EXPECT_EQ(Format(3, 4, 2e10f), "    Format              : 3x4p20000000");
}

TEST(StreamPropertiesBlock, FrameRateTextHasABufferOf12Characters)
{
    ClearServiceCalls();
    Format(1920, 1080, 29.97f, TRUE, TRUE);
    size_t nRates = 0;
    size_t nSuffixes = 0;
    for (const ServiceCall& call : ServiceCalls())
    {
        nRates += call == ServiceCall{"PrintToString", "%.2f", 12};
        nSuffixes += call == ServiceCall{"StringCat", " (TFF)", 1024};
    }
    EXPECT_EQ(nRates, 1u);
    EXPECT_EQ(nSuffixes, 1u);
}

TEST(StreamPropertiesBlock, FramingIsPrintedAsItIs)
{
    SMGR_VFRAMER_STREAM_PROPS p = {};
    EXPECT_EQ(LineOf(Block(p, STATS_LEVEL_DEFAULT), "Framing"), "    Framing             : ");
    strcpy(p.szFraming, "50%s %d%%");
    EXPECT_EQ(LineOf(Block(p, STATS_LEVEL_DEFAULT), "Framing"), "    Framing             : 50%s %d%%");
}

TEST(StreamPropertiesBlock, FramingWithoutANulEndsWithItsField)
{
    SMGR_VFRAMER_STREAM_PROPS p = {};
    memset(p.szFraming, 'x', sizeof p.szFraming);
    p.nNumberOfBPicturesInARow = 0x59595959; // the field behind: YYYY
    EXPECT_EQ(LineOf(Block(p, STATS_LEVEL_DEFAULT), "Framing"),
              "    Framing             : xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx");
    p.szFraming[63] = 0;
    EXPECT_EQ(LineOf(Block(p, STATS_LEVEL_DEFAULT), "Framing"),
              "    Framing             : xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx");
}

TEST(StreamPropertiesBlock, EachYesBelongsToItsOwnFlag)
{
    // The four answers in debug, in order: frame rate in the stream, I, P and B frames.
    const auto answers = [](BOOL bFrameRate, BOOL bI, BOOL bP, BOOL bB)
    {
        SMGR_VFRAMER_STREAM_PROPS p = {};
        p.bFrameRateFoundInStream = bFrameRate;
        p.bHasIFrames = bI;
        p.bHasPFrames = bP;
        p.bHasBFrames = bB;
        const std::string text = Block(p, STATS_LEVEL_DEBUG);
        return LineOf(text, "Frame Rate In Stream") + LineOf(text, "Has I") + LineOf(text, "Has P") + LineOf(text, "Has B");
    };
    EXPECT_EQ(answers(1, 0, 0, 0),
              "    Frame Rate In Stream: Yes    Has I-frames        : No    Has P-frames        : No    Has B-frames        : No");
    EXPECT_EQ(answers(0, 2, 0, 0),
              "    Frame Rate In Stream: No    Has I-frames        : Yes    Has P-frames        : No    Has B-frames        : No");
    EXPECT_EQ(answers(0, 0, -1, 0),
              "    Frame Rate In Stream: No    Has I-frames        : No    Has P-frames        : Yes    Has B-frames        : No");
    EXPECT_EQ(answers(0, 0, 0, INT_MIN),
              "    Frame Rate In Stream: No    Has I-frames        : No    Has P-frames        : No    Has B-frames        : Yes");
    EXPECT_EQ(answers(-1, 0, 0, 0),
              "    Frame Rate In Stream: Yes    Has I-frames        : No    Has P-frames        : No    Has B-frames        : No");
}

TEST(StreamPropertiesBlock, TimeStampsPrintSigned)
{
    SMGR_VFRAMER_STREAM_PROPS p = {};
    p.TimeStamp = 9223372036854775808ul;
    p.TimeStampDelta = ULONG_MAX;
    EXPECT_EQ(LineOf(Block(p, STATS_LEVEL_DEBUG), "Time Stamp  "), "    Time Stamp          : -9223372036854775808");
    EXPECT_EQ(LineOf(Block(p, STATS_LEVEL_DEBUG), "Time Stamp Delta"), "    Time Stamp Delta    : -1");
    p.TimeStamp = 9223372036854775807ul;
    EXPECT_EQ(LineOf(Block(p, STATS_LEVEL_DEBUG), "Time Stamp  "), "    Time Stamp          : 9223372036854775807");
}

TEST(StreamPropertiesBlock, PayloadIdentifierIsFourHexadecimalBytes)
{
    SMGR_VFRAMER_STREAM_PROPS p = {};
    memcpy(p.szPayloadID, "\x89\xC9\x01\x01", 4);
    EXPECT_EQ(LineOf(Block(p, STATS_LEVEL_DEBUG), "SDI Payload ID"), "    SDI Payload ID      : [0x89 0xC9 0x01 0x01]");
    memcpy(p.szPayloadID, "\x0A\xFF\x80\x00", 4);
    EXPECT_EQ(LineOf(Block(p, STATS_LEVEL_DEBUG), "SDI Payload ID"), "    SDI Payload ID      : [0x0A 0xFF 0x80 0x00]");
}

TEST(StreamPropertiesBlock, CodePointsAreUnsigned)
{
    SMGR_VFRAMER_STREAM_PROPS p = {};
    p.colour_primaries = 255;
    p.transfer_characteristics = 254;
    p.matrix_coefficients = 128;
    const std::string text = Block(p, STATS_LEVEL_DEBUG);
    EXPECT_EQ(LineOf(text, "Color Primaries"), "    Color Primaries     : 255 ({VideoColourPrimaries 255 1024})");
    EXPECT_EQ(LineOf(text, "Transfer Char's"), "    Transfer Char's     : 254 ({VideoTransferCharacteristics 254 1024})");
    EXPECT_EQ(LineOf(text, "Matrix Coeffs"), "    Matrix Coeffs       : 128 ({VideoMatrixCoefficients 128 1024})");
}

TEST(StreamPropertiesBlock, CompatibilityModePrintsAtTheDefaultLevelAtExactly1)
{
    const auto line = [](BOOL bEnabled, STATS_LEVEL nLevel)
    {
        SMGR_VFRAMER_STREAM_PROPS p = {};
        p.bCompatibilityModeEnabled = bEnabled;
        return LineOf(Block(p, nLevel), "Compatibility Mode");
    };
    EXPECT_EQ(line(0, STATS_LEVEL_DEFAULT), "");
    EXPECT_EQ(line(1, STATS_LEVEL_DEFAULT), "    Compatibility Mode  : Enabled");
    EXPECT_EQ(line(2, STATS_LEVEL_DEFAULT), "");
    EXPECT_EQ(line(-1, STATS_LEVEL_DEFAULT), "");
    EXPECT_EQ(line(0, STATS_LEVEL_DEBUG), "    Compatibility Mode  : Disabled");
    EXPECT_EQ(line(1, STATS_LEVEL_DEBUG), "    Compatibility Mode  : Enabled");
    EXPECT_EQ(line(2, STATS_LEVEL_DEBUG), "    Compatibility Mode  : Enabled");
    EXPECT_EQ(line(-1, STATS_LEVEL_DEBUG), "    Compatibility Mode  : Enabled");
}

TEST(StreamPropertiesBlock, UnknownValuesAreLeftToTheirServices)
{
    SMGR_VFRAMER_STREAM_PROPS p = {};
    p.enCompressionType = static_cast<SMGR_TDEMUX_COMPRESSION_TYPE>(-7);
    p.enColorType = static_cast<SMGR_VIDEO_COLOR_TYPE>(INT_MIN);
    p.nProfile = INT_MIN;
    p.nLevel = INT_MAX;
    p.enHDRType = SMGR_VFRAMER_HDR_TYPE_INVALID;
    p.enHDRTypeInStream = static_cast<SMGR_VFRAMER_HDR_TYPE>(77);
    const std::string text = Block(p, STATS_LEVEL_DEFAULT);
    EXPECT_EQ(LineOf(text, "Compression  "), "    Compression         : {TDemuxCompressionType -7 1024}");
    EXPECT_EQ(LineOf(text, "Color  "), "    Color               : {VideoColorType -2147483648 1024}");
    EXPECT_EQ(LineOf(text, "Profile  "), "    Profile             : {VideoProfile -2147483648 -7 1024}");
    EXPECT_EQ(LineOf(text, "Level  "), "    Level               : {VideoLevel 2147483647 -7 1024}");
    EXPECT_EQ(LineOf(text, "Dynamic Range Stream"), "    Dynamic Range Stream: {VideoHDRType 77 1024}");
    EXPECT_EQ(LineOf(text, "Dynamic Range Output"), "    Dynamic Range Output: {VideoHDRType -1 1024}");
}

TEST(StreamPropertiesBlock, RatesAndCountsAreUnsigned)
{
    SMGR_VFRAMER_STREAM_PROPS p = {};
    p.nBitsPerSecond = UINT_MAX;
    p.nGopInterval = ULONG_MAX;
    p.nSliceCountPerFrame = UINT_MAX;
    const std::string text = Block(p, STATS_LEVEL_DEFAULT);
    EXPECT_EQ(LineOf(text, "Bit Rate"), "    Bit Rate            : {BitRate 4294967295 1024}");
    EXPECT_EQ(LineOf(text, "GOP Interval"), "    GOP Interval        : {ULONG 18446744073709551615 1024}");
    EXPECT_EQ(LineOf(text, "Slices per Frame"), "    Slices per Frame    : {ULONG 4294967295 1024}");
}
