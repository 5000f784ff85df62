// The video framer report: the stream being framed, and the framer's packets, pictures, NAL units and metadata.

#include "blocks.h"
#include "hostsvc.h"
#include "lines.h"

// Indexed by AFD (1), closed captions (2) and timecode (4).
static constexpr char MetadataStrings[8][32] = {"None", "AFD", "CC", "CC, AFD", "TC", "TC, AFD", "TC, CC", "TC, CC, AFD"};

static const char* _MetadataPresent(const SMGR_VFRAMER_STREAM_PROPS* pProps)
{
    return MetadataStrings[(pProps->bAFDPresent ? 1 : 0) + (pProps->bCCPresent ? 2 : 0) + (pProps->bTCPresent ? 4 : 0)];
}

static void _PrintFormat(const SMGR_VFRAMER_STREAM_PROPS* pProps)
{
    char szBuffer[1024];
    char szFPS[12];

    // The scan letter asks for exactly 1, the field order for any true value: a flag of 2 prints "p" with a field order.
    PrintToString(szBuffer, sizeof szBuffer, "    %-20s: %dx%d%c%s", "Format", pProps->nWidth, pProps->nHeight,
                  pProps->bInterlaced == TRUE ? 'i' : 'p', _GetAbbrevFPSString(pProps->fFrameRate, szFPS, sizeof szFPS));
    if (pProps->bInterlaced) StringCat(szBuffer, pProps->bInterlacedTFF ? " (TFF)" : " (BFF)", sizeof szBuffer);
    StringCat(szBuffer, "\n", sizeof szBuffer);
    fprintf(stdout, "%s", szBuffer);
}

void _PrintVFramerStreamProperties(const char* pTitle, const SMGR_VFRAMER_STREAM_PROPS* pProps, STATS_LEVEL nLevel)
{
    const bool printAll = nLevel == STATS_LEVEL_DEBUG;
    const unsigned char* pPayload = pProps->szPayloadID;
    char szBuffer[1024];

    fprintf(stdout, "  %s\n", pTitle);
    fprintf(stdout, "    %-20s: %s\n", "Compression", SessMgr_GetTDemuxCompressionTypeString(pProps->enCompressionType, szBuffer, sizeof szBuffer));
    fprintf(stdout, "    %-20s: %s\n", "Color", SessMgr_GetVideoColorTypeString(pProps->enColorType, szBuffer, sizeof szBuffer));
    fprintf(stdout, "    %-20s: %s\n", "Profile", SessMgr_GetVideoProfileString(pProps->nProfile, pProps->enCompressionType, szBuffer, sizeof szBuffer));
    fprintf(stdout, "    %-20s: %s\n", "Level", SessMgr_GetVideoLevelString(pProps->nLevel, pProps->enCompressionType, szBuffer, sizeof szBuffer));
    _PrintFormat(pProps);
    if (printAll) fprintf(stdout, "    %-20s: %s\n", "Frame Rate In Stream", _YesOrNo(pProps->bFrameRateFoundInStream));
    fprintf(stdout, "    %-20s: %s\n", "Bit Rate", FormatBitRate(pProps->nBitsPerSecond, szBuffer, sizeof szBuffer));
    fprintf(stdout, "    %-20s: %.64s\n", "Framing", pProps->szFraming);
    if (printAll) fprintf(stdout, "    %-20s: %s\n", "Has I-frames", _YesOrNo(pProps->bHasIFrames));
    if (printAll) fprintf(stdout, "    %-20s: %s\n", "Has P-frames", _YesOrNo(pProps->bHasPFrames));
    if (printAll) fprintf(stdout, "    %-20s: %s\n", "Has B-frames", _YesOrNo(pProps->bHasBFrames));
    fprintf(stdout, "    %-20s: %s\n", "GOP Interval", FormatULONG(pProps->nGopInterval, szBuffer, sizeof szBuffer));
    fprintf(stdout, "    %-20s: %s\n", "Slices per Frame", FormatULONG(pProps->nSliceCountPerFrame, szBuffer, sizeof szBuffer));
    if (printAll) fprintf(stdout, "    %-20s: %ld\n", "Time Stamp", static_cast<long>(pProps->TimeStamp));
    if (printAll) fprintf(stdout, "    %-20s: %ld\n", "Time Stamp Delta", static_cast<long>(pProps->TimeStampDelta));
    fprintf(stdout, "    %-20s: %s\n", "Dynamic Range Stream", SessMgr_GetVideoHDRTypeString(pProps->enHDRTypeInStream, szBuffer, sizeof szBuffer));
    fprintf(stdout, "    %-20s: %s\n", "Dynamic Range Output", SessMgr_GetVideoHDRTypeString(pProps->enHDRType, szBuffer, sizeof szBuffer));
    if (printAll) fprintf(stdout, "    %-20s: %u (%s)\n", "Color Primaries", pProps->colour_primaries, SessMgr_GetVideoColourPrimariesString(pProps->colour_primaries, szBuffer, sizeof szBuffer));
    if (printAll) fprintf(stdout, "    %-20s: %u (%s)\n", "Transfer Char's", pProps->transfer_characteristics, SessMgr_GetVideoTransferCharacteristicsString(pProps->transfer_characteristics, szBuffer, sizeof szBuffer));
    if (printAll) fprintf(stdout, "    %-20s: %u (%s)\n", "Matrix Coeffs", pProps->matrix_coefficients, SessMgr_GetVideoMatrixCoefficientsString(pProps->matrix_coefficients, szBuffer, sizeof szBuffer));
    if (printAll) fprintf(stdout, "    %-20s: [0x%2.2X 0x%2.2X 0x%2.2X 0x%2.2X]\n", "SDI Payload ID", pPayload[0], pPayload[1], pPayload[2], pPayload[3]);
    if (printAll || pProps->bCompatibilityModeEnabled == TRUE) fprintf(stdout, "    %-20s: %s\n", "Compatibility Mode", pProps->bCompatibilityModeEnabled ? "Enabled" : "Disabled");
    fprintf(stdout, "    %-20s: %s\n", "Metadata Present", _MetadataPresent(pProps));
}

// In single precision, as the rates are kept. A stream that gives no rate of its own has nothing to compare with.
static float _PercentOfStreamRate(float fInputFrameRate, float fStreamFrameRate)
{
    return fStreamFrameRate != 0.0f ? fInputFrameRate * 100.0f / fStreamFrameRate : 0.0f;
}

static void _PrintVFramerCounters(const SMGR_VFRAMER_COUNTERS& c)
{
    char szBuffer[1024];

    fprintf(stdout, "  %-22s: %s\n", "Input Packets", FormatULONG(c.nNumInputPackets, szBuffer, sizeof szBuffer));
    fprintf(stdout, "  %-22s: %s\n", "Input Packets Freed", FormatULONG(c.nNumInputPacketsFreed, szBuffer, sizeof szBuffer));
    _PrintCounterStatWithTiming("Input Packets Dropped", c.nNumInputPacketsDropped, c.tLastInputPacketDropped);
    fprintf(stdout, "  %-22s: %s\n", "Input FIFO Length", FormatULONG(c.nInputFifoLength, szBuffer, sizeof szBuffer));
    _PrintCounterStatWithTiming("Output Pics To Dec", c.nNumOutputFrames, c.tLastOutputFrame);
    _PrintCounterStatWithTiming("Output Pics Dropped", c.nNumOutputFramesDropped, c.tLastOutputFrameDropped);
    _PrintCounterStatWithTiming("Output Pics 1-Piece", c.nNumOutputFramesOnePiece, c.tLastOutputFrameOnePiece);
    _PrintCounterStatWithTiming("Output Pics Assembled", c.nNumOutputFramesAssembled, c.tLastOutputFrameAssembled);
    fprintf(stdout, "  %-22s: %s\n", "Output Bytes To Dec", FormatULONG(c.nNumOutputBytesToDecoder, szBuffer, sizeof szBuffer));
    fprintf(stdout, "  %-22s: %s\n", "Output Bytes Dropped", FormatULONG(c.nNumOutputBytesDropped, szBuffer, sizeof szBuffer));
    fprintf(stdout, "  %-22s: %s\n", "Output FIFO Length", FormatULONG(c.nOutputFifoLength, szBuffer, sizeof szBuffer));
    _PrintCounterStatWithTiming("Key Frames to Dec", c.nNumKeyFrames, c.tLastKeyFrame);
    _PrintCounterStatWithTiming("Unsupported", c.nNumUnsupported, c.tLastUnsupported);
    _PrintCounterStatWithTiming("H264 Compression", c.nNumH264Compression, c.tLastH264Compression);
    _PrintCounterStatWithTiming("H265 Compression", c.nNumH265Compression, c.tLastH265Compression);
    _PrintCounterStatWithTiming("Unknown Compression", c.nNumUnknownCompression, c.tLastUnknownCompression);
    _PrintCounterStatWithTiming("4:2:0 8bit ColorType", c.nNum420_8bitColortype, c.tLast420_8bitColortype);
    _PrintCounterStatWithTiming("4:2:0 10bit ColorType", c.nNum420_10bitColortype, c.tLast420_10bitColortype);
    _PrintCounterStatWithTiming("4:2:2 8bit ColorType", c.nNum422_8bitColortype, c.tLast422_8bitColortype);
    _PrintCounterStatWithTiming("4:2:2 10bit ColorType", c.nNum422_10bitColortype, c.tLast422_10bitColortype);
    _PrintCounterStatWithTiming("Unknown ColorType", c.nNumUnknownColortype, c.tLastUnknownColortype);
    _PrintCounterStatWithTiming("I-Pictures", c.nNumIPictures, c.tLastIPicture);
    _PrintCounterStatWithTiming("P-Pictures", c.nNumPPictures, c.tLastPPicture);
    _PrintCounterStatWithTiming("B-Pictures", c.nNumBPictures, c.tLastBPicture);
    fprintf(stdout, "  %-22s: %s\n", "Max B-Pictures", FormatULONG(c.nMaxNumberOfBPicturesInARow, szBuffer, sizeof szBuffer));
    _PrintCounterStatWithTiming("Unknown Pictures", c.nNumUnknownPictures, c.tLastUnknownPicture);
    _PrintCounterStatWithTiming("Progressive Pictures", c.nNumProgressivePicStruct, c.tLastProgressivePicStruct);
    _PrintCounterStatWithTiming("Interlaced Pictures", c.nNumInterlacedPicStruct, c.tLastInterlacedPicStruct);
    _PrintCounterStatWithTiming("Interlaced Top Fields", c.nNumInterlacedTopFields, c.tLastInterlacedTopField);
    _PrintCounterStatWithTiming("Interlaced Btm Fields", c.nNumInterlacedBottomFields, c.tLastInterlacedBottomField);
    _PrintCounterStatWithTiming("Interlaced Both Flds", c.nNumInterlacedBothFields, c.tLastInterlacedBothFields);
    _PrintCounterStatWithTiming("Unknown Pic Structure", c.nNumUnknownPicStruct, c.tLastUnknownPicStruct);
    _PrintCounterStatWithTiming("VPS NALs", c.nNumVPSNALs, c.tLastVPSNAL);
    _PrintCounterStatWithTiming("SPS NALs", c.nNumSPSNALs, c.tLastSPSNAL);
    _PrintCounterStatWithTiming("PPS NALs", c.nNumPPSNALs, c.tLastPPSNAL);
    _PrintCounterStatWithTiming("SEI NALs", c.nNumSEINALs, c.tLastSEINAL);
    _PrintCounterStatWithTiming("SH NALs", c.nNumSHNALs, c.tLastSHNAL);
    _PrintCounterStatWithTiming("AUD NALs", c.nNumAUDNALs, c.tLastAUDNAL);
    _PrintCounterStatWithTiming("Filler NALs", c.nNumFillerNALs, c.tLastFillerNAL);
    _PrintCounterStatWithTiming("Unknown NALs", c.nNumUnknownNALs, c.tLastUnknownNAL);
    _PrintCounterStatWithTiming("No NALs", c.nNumNoNALsInFrame, c.tLastNoNALsInFrame);
    _PrintCounterStatWithTiming("SPS errors", c.nNumSPSErrors, c.tLastSPSError);
    _PrintCounterStatWithTiming("PPS errors", c.nNumPPSErrors, c.tLastPPSError);
    _PrintCounterStatWithTiming("SEI errors", c.nNumSEIErrors, c.tLastSEIError);
    _PrintCounterStatWithTiming("SH errors", c.nNumSHErrors, c.tLastSHError);
    _PrintCounterStatWithTiming("TC Frames", c.nNumTC, c.tLastTCReceived);
    fprintf(stdout, "  %-22s: %s\n", "TC Bytes Output", FormatULONG(c.nNumTCBytesOutput, szBuffer, sizeof szBuffer));
    _PrintCounterStatWithTiming("CC Frames", c.nNumCC, c.tLastCCReceived);
    fprintf(stdout, "  %-22s: %s\n", "CC Bytes Output", FormatULONG(c.nNumCCBytesOutput, szBuffer, sizeof szBuffer));
    _PrintCounterStatWithTiming("AFD Frames", c.nNumAFD, c.tLastAFDReceived);
    fprintf(stdout, "  %-22s: %s\n", "AFD Bytes Output", FormatULONG(c.nNumAFDBytesOutput, szBuffer, sizeof szBuffer));
}

BOOL STATS_PrintForVFramer(const SMGR_VFRAMER_STATS* pStats, STATS_LEVEL nLevel)
{
    const bool printAll = nLevel == STATS_LEVEL_DEBUG;
    const SMGR_VFRAMER_COUNTERS& c = pStats->tCounters;
    char szBuffer[1024];

    _PrintText("Video\n");
    fprintf(stdout, "  %-22s: %s\n", "Preprocessor State", SessMgr_GetVFramerStateString(pStats->enState, szBuffer, sizeof szBuffer));
    if (pStats->enState == SMGR_VFRAMER_STATE_UNSUPPORTED && c.nLastUnsupportedErrorCode)
        fprintf(stdout, "  %-22s: %s (%d)\n", "Unsupported Reason", SessMgr_GetErrorString(c.nLastUnsupportedErrorCode, szBuffer, sizeof szBuffer), c.nLastUnsupportedErrorCode);
    if (printAll) fprintf(stdout, "  %-22s: %d\n", "Stream ID", pStats->nStreamID);
    _PrintVFramerStreamProperties("Stream Properties", &pStats->tCurrentProperties, nLevel);
    if (printAll || c.nNumStreamIDTransitions) _PrintCounterStatWithTiming("Stream ID Changes", c.nNumStreamIDTransitions, c.tLastStreamIDTransition);
    if (printAll || c.nNumFormatTransitions) _PrintCounterStatWithTiming("Format Changes", c.nNumFormatTransitions, c.tLastFormatTransition);
    if (printAll && c.nNumFormatTransitions) _PrintVFramerStreamProperties("Previous Stream Properties", &pStats->tPreviousProperties, nLevel);
    fprintf(stdout, "  %-22s: %.2f [%.1f%%] (measured)\n", "Input Frame Rate", static_cast<double>(c.fInputFrameRate),
            static_cast<double>(_PercentOfStreamRate(c.fInputFrameRate, pStats->tCurrentProperties.fFrameRate)));
    if (printAll) _PrintVFramerCounters(c);
    if (printAll) _PrintSizeWithMaximum("Input Pkt List Size", c.nInputPacketListSize, c.nMaxInputPacketListSize, c.tMaxInputPacketListSize);
    if (printAll || c.nInputPacketListOverflows) _PrintCounterStatWithTiming("Input Pkt List Ovflws", c.nInputPacketListOverflows, c.tLastInputPacketListOverflow);
    if (printAll) _PrintSizeWithMaximum("Output Pkt List Size", c.nOutputPacketListSize, c.nMaxOutputPacketListSize, c.tMaxOutputPacketListSize);
    if (printAll || c.nOutputPacketListOverflows) _PrintCounterStatWithTiming("Output Pkt List Ovflws", c.nOutputPacketListOverflows, c.tLastOutputPacketListOverflow);
    return TRUE;
}
