/**
 * @file extreme.c
 * What no decoder reports but a reader must survive: unsigned fields with all bits set, signed fields alternately with
 * their least and their greatest value, times likewise, texts without a NUL, enumerations that no enumerator names. Values
 * that decide what a report shows are such that it shows as much as it can.
 */
#include <float.h>
#include <limits.h>
#include <string.h>

#include "scenarios.h"

/* time_t has no limits of its own. It is a long here. */
#define TIME_MIN ((time_t)LONG_MIN)
#define TIME_MAX ((time_t)LONG_MAX)

/* Numbers that no enumerator of any enumeration names. */
#define ENUM_MIN INT_MIN
#define ENUM_MAX INT_MAX

/* True, though not TRUE. */
#define TRUE_EVEN     2
#define TRUE_NEGATIVE (-1)
#define TRUE_MIN      INT_MIN

/* The extremes alternate from field to field. In an array, the odd elements take the opposite ones. */
#define INT_MIN_EVEN(i)  ((i) % 2 == 0 ? INT_MIN : INT_MAX)
#define INT_MAX_EVEN(i)  ((i) % 2 == 0 ? INT_MAX : INT_MIN)
#define TIME_MIN_EVEN(i) ((i) % 2 == 0 ? TIME_MIN : TIME_MAX)
#define TIME_MAX_EVEN(i) ((i) % 2 == 0 ? TIME_MAX : TIME_MIN)

#define FILL_TEXT(text) memset((text), 'W', sizeof(text))

static void FillUsage(SMGR_DECODER_SDI_USAGE_STATS* p)
{
    p->tLastStart = TIME_MIN;
    p->tLastStop = TIME_MAX;
    p->tLastGetStat = TIME_MIN;
    p->tLastGetInfo = TIME_MAX;
    p->tLastConfigure = TIME_MIN;
    p->tLastCapture = TIME_MAX;
    p->tLastClear = TIME_MIN;
    p->tLastLoadConfig = TIME_MAX;
    p->tLastSaveConfig = TIME_MIN;
}

static void FillSource(SMGR_TDEMUX_SOURCE_STATS* p, size_t i)
{
    /* An audio stream shows its pair. */
    p->enType = i % 2 == 0 ? SMGR_TDEMUX_DATA_TYPE_AUDIO : (SMGR_TDEMUX_DATA_TYPE)ENUM_MAX;
    p->enCompressionType = (SMGR_TDEMUX_COMPRESSION_TYPE)ENUM_MAX;
    p->tCounters.tLastReceivedPacket = TIME_MIN_EVEN(i);
    p->tCounters.tLastOutputPacket = TIME_MAX_EVEN(i);
    p->tCounters.iLastTxTime = TIME_MIN_EVEN(i);
    p->tCounters.tLastNoPTSValueFrames = TIME_MAX_EVEN(i);
    p->tCounters.tLastNoDTSValueFrames = TIME_MIN_EVEN(i);
    p->nAudioPairNum = i % 4 < 2 ? INT_MIN : INT_MAX;
}

static void FillTDemuxCounters(SMGR_TDEMUX_COUNTERS* p)
{
    p->tLastReceivedPacket = TIME_MIN;
    p->tMaxRxPacketToPacketInterval = TIME_MAX;
    p->tMaxExternalRxPacketToPacketInterval = TIME_MIN;
    p->tLastOutputPacket = TIME_MAX;
    p->tLastDroppedPacket = TIME_MIN;
    p->tLastError = TIME_MAX;
    p->tLastTSCorruptedFrame = TIME_MIN;
    p->tLastPESSizeMismatch = TIME_MAX;
    p->tLastLostSegmentMPEG2TS = TIME_MIN;
    p->tLastLostSegmentRTP = TIME_MAX;
    p->tLastReconnection = TIME_MIN;
    p->tLastFailover = TIME_MAX;
    p->tLastTimestampRollover = TIME_MIN;
    p->tLastFrameWithNoPCR = TIME_MAX;
    p->tLastFrameWithPTSLowerThanPCR = TIME_MIN;
    p->tLastNewStreamFlag = TIME_MAX;
    p->tLastResumedStreamFlag = TIME_MIN;
    p->iLastPIDDropped = INT_MAX;
    p->iLastError = INT_MIN;
    p->iLastErrorTime = TIME_MAX;
    p->iLastCorruptedFrameTime = TIME_MIN;
    p->iLastRxTime = TIME_MAX;
    p->tMaxInputPacketListSize = TIME_MIN;
    p->tLastInputPacketListOverflow = TIME_MAX;
    p->tMaxReadPacketListSize = TIME_MIN;
    p->tLastReadPacketListOverflow = TIME_MAX;
}

static void FillSRT(SMGR_STREAM_SRT_STATS* p)
{
    p->iReconnects = INT_MIN;
    p->iMSS = INT_MAX;
    p->iLatency = INT_MIN;
    p->iMaxBw = INT_MAX;
    p->iAvailBw = INT_MAX;                         /* else it reads as unknown */
    p->iKeyState = SMGR_STREAM_SRT_KM_S_BADSECRET; /* else there is no text for it */
    p->iKeyLength = INT_MAX;                       /* else it reads as unknown */
    p->iRTT = INT_MIN;
    p->iBufPkts = INT_MAX;
    p->iBufBytes = INT_MIN;
    p->iBufTimespan = INT_MAX;
    p->iRemotePort = INT_MIN;
    p->iLocalPort = INT_MAX;
    p->iOutPortGettingFullCnt = INT_MIN;
    p->iMaxOutPortLevel = INT_MAX;
    p->iVersion = INT_MIN;
    p->iPeerVersion = INT_MAX;
}

static void FillTDemux(SMGR_TDEMUX_STATS* p)
{
    p->enState = (SMGR_TDEMUX_STATS_STATE)ENUM_MIN;
    p->bStreamHasBeenStarted = TRUE_NEGATIVE;
    p->enEncapsulation = SMGR_STREAM_ENCAPSULATION_TS_SRT; /* shows the SRT link */
    p->enFECType = ENUM_MAX;
    p->tStreamAddress.enType = ENUM_MIN;
    FILL_TEXT(p->tStreamAddress.szHostName);
    p->tSourceAddress.enType = ENUM_MAX;
    FILL_TEXT(p->tSourceAddress.szHostName);
    p->tLastPCR = TIME_MAX;
    for (size_t i = 0; i < SMGR_TDEMUX_MAX_SOURCES; ++i) FillSource(&p->tSources[i], i);
    FillTDemuxCounters(&p->tCounters);
    FillSRT(&p->Xport.SRT);
}

static void FillCurrentProperties(SMGR_VFRAMER_STREAM_PROPS* p)
{
    p->enCompressionType = (SMGR_TDEMUX_COMPRESSION_TYPE)ENUM_MAX;
    p->enColorType = (SMGR_VIDEO_COLOR_TYPE)ENUM_MAX;
    p->nProfile = INT_MIN;
    p->nLevel = INT_MAX;
    p->nWidth = INT_MIN;
    p->nHeight = INT_MAX;
    p->bInterlaced = TRUE_EVEN;
    p->bInterlacedTFF = TRUE;
    p->fFrameRate = FLT_MAX;
    p->bFrameRateFoundInStream = TRUE_NEGATIVE;
    FILL_TEXT(p->szFraming);
    p->bHasIFrames = TRUE;
    p->bHasPFrames = TRUE_MIN;
    p->bHasBFrames = TRUE;
    p->bCompatibilityModeEnabled = TRUE;
    p->bTCPresent = TRUE_EVEN;
    p->bCCPresent = TRUE;
    p->bAFDPresent = TRUE_NEGATIVE;
    p->enHDRType = (SMGR_VFRAMER_HDR_TYPE)ENUM_MIN;
    p->enHDRTypeInStream = (SMGR_VFRAMER_HDR_TYPE)ENUM_MAX;
}

static void FillPreviousProperties(SMGR_VFRAMER_STREAM_PROPS* p)
{
    p->enCompressionType = (SMGR_TDEMUX_COMPRESSION_TYPE)ENUM_MAX;
    p->enColorType = (SMGR_VIDEO_COLOR_TYPE)ENUM_MAX;
    p->nProfile = INT_MAX;
    p->nLevel = INT_MIN;
    p->nWidth = INT_MAX;
    p->nHeight = INT_MIN;
    p->bInterlaced = TRUE;
    p->bInterlacedTFF = TRUE_MIN;
    p->fFrameRate = -FLT_MAX;
    p->bFrameRateFoundInStream = TRUE;
    FILL_TEXT(p->szFraming);
    p->bHasIFrames = TRUE_EVEN;
    p->bHasPFrames = TRUE;
    p->bHasBFrames = TRUE_NEGATIVE;
    p->bCompatibilityModeEnabled = TRUE_EVEN;
    p->bTCPresent = TRUE;
    p->bCCPresent = TRUE_MIN;
    p->bAFDPresent = TRUE;
    p->enHDRType = (SMGR_VFRAMER_HDR_TYPE)ENUM_MAX;
    p->enHDRTypeInStream = (SMGR_VFRAMER_HDR_TYPE)ENUM_MIN;
}

static void FillVFramerCounters(SMGR_VFRAMER_COUNTERS* p)
{
    p->tLastVideoFrameReceived = TIME_MIN;
    p->tLastStreamIDTransition = TIME_MAX;
    p->tLastFormatTransition = TIME_MIN;
    p->tLastUnsupported = TIME_MAX;
    p->nLastUnsupportedErrorCode = INT_MIN;
    p->tLastH264Compression = TIME_MIN;
    p->tLastH265Compression = TIME_MAX;
    p->tLastUnknownCompression = TIME_MIN;
    p->tLast420_8bitColortype = TIME_MAX;
    p->tLast420_10bitColortype = TIME_MIN;
    p->tLast422_8bitColortype = TIME_MAX;
    p->tLast422_10bitColortype = TIME_MIN;
    p->tLastUnknownColortype = TIME_MAX;
    p->tLastInputPacketDropped = TIME_MIN;
    p->fInputFrameRate = -FLT_MAX;
    p->tLastOutputFrame = TIME_MAX;
    p->tLastOutputFrameOnePiece = TIME_MIN;
    p->tLastOutputFrameAssembled = TIME_MAX;
    p->tLastOutputFrameDropped = TIME_MIN;
    p->tLastKeyFrame = TIME_MAX;
    p->tLastIPicture = TIME_MIN;
    p->tLastPPicture = TIME_MAX;
    p->tLastBPicture = TIME_MIN;
    p->tLastUnknownPicture = TIME_MAX;
    p->tLastProgressivePicStruct = TIME_MIN;
    p->tLastInterlacedPicStruct = TIME_MAX;
    p->tLastInterlacedTopField = TIME_MIN;
    p->tLastInterlacedBottomField = TIME_MAX;
    p->tLastInterlacedBothFields = TIME_MIN;
    p->tLastUnknownPicStruct = TIME_MAX;
    p->tLastVPSNAL = TIME_MIN;
    p->tLastSPSNAL = TIME_MAX;
    p->tLastPPSNAL = TIME_MIN;
    p->tLastSEINAL = TIME_MAX;
    p->tLastSHNAL = TIME_MIN;
    p->tLastAUDNAL = TIME_MAX;
    p->tLastFillerNAL = TIME_MIN;
    p->tLastUnknownNAL = TIME_MAX;
    p->tLastSPSError = TIME_MIN;
    p->tLastPPSError = TIME_MAX;
    p->tLastSEIError = TIME_MIN;
    p->tLastSHError = TIME_MAX;
    p->tLastNoNALsInFrame = TIME_MIN;
    p->tLastTCReceived = TIME_MAX;
    p->tLastCCReceived = TIME_MIN;
    p->tLastAFDReceived = TIME_MAX;
    p->tMaxInputPacketListSize = TIME_MIN;
    p->tLastInputPacketListOverflow = TIME_MAX;
    p->tMaxOutputPacketListSize = TIME_MIN;
    p->tLastOutputPacketListOverflow = TIME_MAX;
}

static void FillVFramer(SMGR_VFRAMER_STATS* p)
{
    p->enState = SMGR_VFRAMER_STATE_UNSUPPORTED; /* shows the reason */
    p->nStreamID = INT_MIN;
    FillCurrentProperties(&p->tCurrentProperties);
    FillPreviousProperties(&p->tPreviousProperties);
    FillVFramerCounters(&p->tCounters);
}

static void FillVideoDecoderCounters(SMGR_VCUDEC_COUNTERS* p)
{
    p->tLastReceivedFrame = TIME_MIN;
    p->tLastReceivedFrameFreed = TIME_MAX;
    p->tLastFrameSentToDecoder = TIME_MIN;
    p->tLastDroppedFrame = TIME_MAX;
    p->tLastDroppedIFrame = TIME_MIN;
    p->tLastDroppedPFrame = TIME_MAX;
    p->tLastDroppedBFrame = TIME_MIN;
    p->tLastDecodedFrame = TIME_MAX;
    p->tLastConcealedFrame = TIME_MIN;
    p->tLastResyncForLostOfAVSync = TIME_MAX;
    p->tLastFrameSentToDisplay = TIME_MIN;
    p->tLastDisplayedOutputFrame = TIME_MAX;
    p->tLastSkippedOutputFrame = TIME_MIN;
    p->tLastReplayedOutputFrame = TIME_MAX;
    p->tLastDisplayedFrameFreed = TIME_MIN;
    p->tLastOutputError = TIME_MAX;
    p->tLastOutputLate = TIME_MIN;
    p->nOutputSTCLeadTime = INT_MAX;
    p->nMinOutputSTCLeadTime = INT_MIN;
    p->tMinOutputSTCLeadTime = TIME_MAX;
    p->nMaxOutputSTCLeadTime = INT_MAX;
    p->tMaxOutputSTCLeadTime = TIME_MIN;
    p->tLastReorderFrameIn = TIME_MAX;
    p->tLastReorderFrameOut = TIME_MIN;
    p->tLastReorderFramesExtractCall = TIME_MAX;
    p->tLastReorderFramesFlushCall = TIME_MIN;
    p->tLastInputParsedCallback = TIME_MAX;
    p->tLastResolutionFoundCallback = TIME_MIN;
    p->tLastDecodedCallback = TIME_MAX;
    p->tLastDisplayCallback = TIME_MIN;
    p->tLastSEICallback = TIME_MAX;
    p->tLastImageCapture = TIME_MIN;
    p->tLastImageCaptureFailed = TIME_MAX;
    p->iLastErrorTime = TIME_MIN;
    p->nLastErrorCode = INT_MIN;
    p->tLastEOSEvent = TIME_MAX;
    p->tLastExitError = TIME_MIN;
    p->tLastNoInfoError = TIME_MAX;
    p->tLastDiscontinuity = TIME_MIN;
    p->tLastNumOfFrmNotRelease = TIME_MAX;
    p->tLastOutputTimestampNotIncreasing = TIME_MIN;
    p->tLastOutputTimestampMissing = TIME_MAX;
    p->tLastStillImageOn = TIME_MIN;
    p->tLastStillImageOff = TIME_MAX;
}

static void FillVideoDecoder(SMGR_VCUDEC_STATS* p)
{
    p->enState = (SMGR_VCUDEC_STATE)ENUM_MAX;
    p->nLoadPercentage = INT_MIN;
    p->bHasChroma = TRUE_NEGATIVE;
    p->bCropping = TRUE_EVEN;
    p->enPicStructure = (SMGR_VCUDEC_PICSTRUCTURE)ENUM_MIN;
    p->bVDelayInputEstimateShortDelay = TRUE;
    p->bVDelayOutputEstimateShortDelay = TRUE_MIN;
    p->enStillImageType = ENUM_MAX;
    p->bStillImageActive = TRUE_NEGATIVE;
    FillVideoDecoderCounters(&p->tCounters);
    p->bReordering = TRUE;
}

static void FillAudioPair(SMGR_AUDIO_PAIR_STATS* p, size_t i)
{
    p->nSize = INT_MIN_EVEN(i);
    p->enMode = INT_MAX_EVEN(i);
    p->enAlgorithm = INT_MIN_EVEN(i);
    p->nSampleRateIn = INT_MAX_EVEN(i);
    p->nBitRateInKbps = INT_MIN_EVEN(i);
    p->nInputChannels = INT_MAX_EVEN(i);
    p->nOutputChannels = INT_MIN_EVEN(i);
    p->tLastReceivedFrame = TIME_MAX_EVEN(i);
    p->tLastDecodedFrame = TIME_MIN_EVEN(i);
    p->tLastOutputFrame = TIME_MAX_EVEN(i);
    p->nSampleRateOut = INT_MAX_EVEN(i);
    p->tLastSkippedFrame = TIME_MIN_EVEN(i);
    p->tLastDecoderError = TIME_MAX_EVEN(i);
    p->tLastOutputError = TIME_MIN_EVEN(i);
    p->tLastIntervalTime.tv_sec = TIME_MAX_EVEN(i);
    p->tLastIntervalTime.tv_nsec = LONG_MIN;
    p->iAudioVideoTSDiffInMs = INT_MIN_EVEN(i);
    p->iLastError = INT_MAX_EVEN(i);
    p->nCurSTCLeadTimeMs = INT_MIN_EVEN(i);
    p->nMinSTCLeadTimeMs = INT_MAX_EVEN(i); /* a pair in two claims a least value above the greatest */
    p->tMinSTCLeadTime = TIME_MIN_EVEN(i);
    p->nMaxSTCLeadTimeMs = INT_MIN_EVEN(i);
    p->tMaxSTCLeadTime = TIME_MAX_EVEN(i);
    p->tLastRxFrameTime.tv_sec = TIME_MIN_EVEN(i);
    p->tLastRxFrameTime.tv_nsec = LONG_MAX;
    p->nLastProcessTimeUs = INT_MAX_EVEN(i);
    p->nMinProcessTimeUs = INT_MIN_EVEN(i);
    p->tMinProcessTime = TIME_MAX_EVEN(i);
    p->nMaxProcessTimeUs = INT_MAX_EVEN(i);
    p->tMaxProcessTime = TIME_MIN_EVEN(i);
}

static void FillAudio(SMGR_DECODER_AUDIO_STATS* p)
{
    p->nSize = INT_MAX;
    p->enState = ENUM_MIN;
    p->nNumOfPairs = INT_MAX;
    p->tLastReceivedFrame = TIME_MIN;
    p->tLastDecodedFrame = TIME_MAX;
    p->tLastOutputFrame = TIME_MIN;
    p->tLastSkippedFrame = TIME_MAX;
    p->tLastOutputError = TIME_MIN;
    p->tLastReleasedFrame = TIME_MAX;
    for (size_t i = 0; i < SMGR_AUDIO_MAX_PAIRS; ++i) FillAudioPair(&p->PairStats[i], i);
}

static void FillMetadataChannel(SMGR_METADATADEC_CHANNEL_STATS* p, size_t i)
{
    SMGR_METADATADEC_CHANNEL_COUNTERS* pCounters = &p->tCounters;
    FILL_TEXT(p->szName);
    p->enType = (SMGR_METADATA_CHANNEL_TYPE)INT_MIN_EVEN(i);
    p->enState = SMGR_METADATA_STATE_ACTIVE; /* lists the name */
    pCounters->tLastInputPacket = TIME_MIN_EVEN(i);
    pCounters->tLastSynchronousPacket = TIME_MAX_EVEN(i);
    pCounters->tLastAsynchronousPacket = TIME_MIN_EVEN(i);
    pCounters->tLastOutputPacket = TIME_MAX_EVEN(i);
    pCounters->tLastFreedPacket = TIME_MIN_EVEN(i);
    pCounters->tLastDroppedPacket = TIME_MAX_EVEN(i);
    pCounters->tLastOutputFailedPacket = TIME_MIN_EVEN(i);
    pCounters->tLastOutputFailedLatePacket = TIME_MAX_EVEN(i);
    pCounters->tMaxOutputPayloadBytes = TIME_MIN_EVEN(i);
    pCounters->tLastNonIncreasingOutputTimestamp = TIME_MAX_EVEN(i);
    pCounters->tLastOutputTime = TIME_MIN_EVEN(i);
    pCounters->tLastPacketListReset = TIME_MAX_EVEN(i);
    pCounters->tLastBDAllocated = TIME_MIN_EVEN(i);
    pCounters->tLastBDAllocateFailed = TIME_MAX_EVEN(i);
    pCounters->tLastBDWritten = TIME_MIN_EVEN(i);
    pCounters->tLastBDFreed = TIME_MAX_EVEN(i);
    pCounters->nBDFreeListHeadIndex = INT_MAX_EVEN(i);
    pCounters->nBDUsedListHeadIndex = INT_MIN_EVEN(i);
    pCounters->tLastOutputLate = TIME_MIN_EVEN(i);
    pCounters->nOutputSTCLeadTime = INT_MAX_EVEN(i);
    pCounters->nMinOutputSTCLeadTime = INT_MIN_EVEN(i);
    pCounters->tMinOutputSTCLeadTime = TIME_MAX_EVEN(i);
    pCounters->nMaxOutputSTCLeadTime = INT_MAX_EVEN(i);
    pCounters->tMaxOutputSTCLeadTime = TIME_MIN_EVEN(i);
}

static void FillMetadata(SMGR_METADATADEC_STATS* p)
{
    p->enState = SMGR_METADATA_STATE_ACTIVE; /* lists the active channels */
    for (size_t i = 0; i < SMGR_METADATADEC_MAX_CHANNELS; ++i) FillMetadataChannel(&p->tChannel[i], i);
    p->tCounters.tTCValue.bTCValid = TRUE; /* shows the timecode */
}

static void FillMultiSync(SMGR_CBUFFERING_MULTISYNC_STATS* p)
{
    p->bTimecodePresent = TRUE_EVEN;
    p->bTimecodeValid = TRUE;
    p->nTimecodeInMs = INT_MAX;
    p->nSystemTimeInMs = INT_MIN; /* their difference does not fit an int */
    p->nTransmissionTimeMs = INT_MAX;
    p->tCounters.tLastTCReceived = TIME_MIN;
    p->tCounters.tLastInvalidTCReceived = TIME_MAX;
}

static void FillAutomatic(SMGR_CBUFFERING_AUTOMATIC_STATS* p)
{
    p->tMaxInputJitterChanged = TIME_MIN;
    p->nNonVideoLateMs = INT_MIN;
    p->nNonVideoLateMaxMs = INT_MAX;
    p->tNonVideoLateMax = TIME_MAX;
    p->tVideoDecoderLatencyMax = TIME_MIN;
    p->tVideoDecoderJitterMax = TIME_MAX;
    p->nVideoSTCLeadTimeAvgActualMs = INT_MAX;
    p->nVideoSTCLeadTimeMinActualMs = INT_MIN;
    p->nVideoSTCLeadTimeMaxActualMs = INT_MAX;
    p->nAudioSTCLeadTimeAvgActualMs = INT_MIN;
    p->nAudioSTCLeadTimeMinActualMs = INT_MAX;
    p->nAudioSTCLeadTimeMaxActualMs = INT_MIN;
    p->tLastVideoSkipReplayTime = TIME_MIN;
    p->tLastAudioSkipTime = TIME_MAX;
}

static void FillBufferingChannel(SMGR_CBUFFERING_CHANNEL_STATS* p, size_t i)
{
    p->enType = (SMGR_TDEMUX_DATA_TYPE)ENUM_MAX;
    p->nSTCLeadTimeMsSet = INT_MIN_EVEN(i);
    p->nPCRtoPTSTimeMsActual = INT_MAX_EVEN(i);
    p->tLastOutputTime = TIME_MIN_EVEN(i);
}

static void FillBufferingCounters(SMGR_CBUFFERING_COUNTERS* p)
{
    p->tLastReceivedPacket = TIME_MIN;
    p->tLastOutputPacket = TIME_MAX;
    p->tLastDroppedPacket = TIME_MIN;
    p->tLastUnknownPacket = TIME_MAX;
    p->tLastPCRUpdate = TIME_MIN;
    p->tLastSTCUpdate = TIME_MAX;
    p->tLastBufferingAdjustmentTime = TIME_MIN;
    p->tLastSTCLeadTimeAdjustmentTime = TIME_MAX;
    p->nMaxLateOutputMs = INT_MIN;
    p->nMaxLateOutputBurstFrms = INT_MAX;
    p->tLastLateOutput = TIME_MIN;
    p->nNumResets = INT_MIN;
    p->tLastReset = TIME_MAX;
    p->tMaxBufferingOccupancyBytes = TIME_MIN;
    p->tLastBufferingOverflow = TIME_MAX;
    p->tLastSynthesizedAsyncTimestamp = TIME_MIN;
    p->tLastSynthesizedAsyncTimestampFail = TIME_MAX;
}

static void FillBuffering(SMGR_CBUFFERING_STATS* p)
{
    p->enStatus = (SMGR_CBUFFERING_STATUS)ENUM_MIN;
    p->enBufferingMode = SMGR_DECSDI_BUFFERING_MULTISYNC; /* shows the MultiSync figures */
    FillMultiSync(&p->tMultiSync);
    FillAutomatic(&p->tAutomatic);
    p->bBufferingDelaySet = TRUE_MIN;
    p->nSTCtoPCRLeadTimeMs = INT_MIN;
    for (size_t i = 0; i < SMGR_CBUFFERING_MAX_CHANNELS; ++i) FillBufferingChannel(&p->tChannel[i], i);
    FillBufferingCounters(&p->tCounters);
}

static void FillClockRecovery(SMGR_DECODER_CLOCK_RECOVERY_STATS* p)
{
    p->TrackingStarted = TRUE_NEGATIVE;
    p->SampleCount = INT_MIN;
    p->ReSyncCount = INT_MAX;
    p->tLastPcrUpdate = TIME_MIN;
    p->OldSndClk = LONG_MAX;
    p->OldRcvClk = LONG_MIN;
    p->OldDeltaSnd = LONG_MAX;
    p->FilterDeltaSnd = LONG_MIN;
    p->OldDeltaClk = LONG_MAX;
    p->FilterDeltaClk = LONG_MIN;
    p->OldPll = LONG_MAX;
    p->StcClkNominal = LONG_MIN;
    p->trackingMode = SMGR_CLOCK_TRACKING_ENABLED_LOCK; /* shows the most */
    p->PllNotSettled = TRUE;
    p->PllSettleTime = INT_MIN;
    p->curPllAvg = LONG_MIN;
    p->curPllMin = LONG_MAX;
    p->curPllMax = LONG_MIN;
    p->curPLLDevHz = LONG_MAX;
    p->curPLLDevPpm = LONG_MIN; /* above 99 ppm a deviation is not shown */
    p->curPLLDevPpmNominal = LONG_MAX;
    p->curPLLDevPpmFract = LONG_MIN;
    p->avgDevHz = LONG_MAX;
    p->avgDevPpm = LONG_MIN;
    p->avgDevPpmFract = LONG_MAX;
    p->pcrLateCount = INT_MIN;
    p->pcrLateMaxValue = INT_MAX;
    p->pcrJitterErrCount = INT_MIN;
    p->pcrJitterErr = INT_MAX;
    p->pcrJitterMaxErrValue = INT_MIN;
    p->curPcr = LONG_MAX;
    p->curPcrFpga = LONG_MIN;
    p->curPcrFpgaDelta = LONG_MAX;
    p->mafDivFactor = LONG_MIN;
    p->pcrTsDelta = LONG_MAX;
    p->pcrTsDeltaAud0 = LONG_MIN;
    p->pcrTsDeltaAud1 = LONG_MAX;
    p->pcrTsDeltaAud2 = LONG_MIN;
    p->pcrTsDeltaAud3 = LONG_MAX;
    p->pcrTsDeltaAud4 = LONG_MIN;
    p->pcrTsDeltaAud5 = LONG_MAX;
    p->pcrTsDeltaAud6 = LONG_MIN;
    p->pcrTsDeltaAud7 = LONG_MAX;
    p->pcrTsDeltaKlv = LONG_MIN;
    p->pcrTsDeltaMinValue = LONG_MAX;
    p->pcrTsDeltaMaxValue = LONG_MIN;
    p->pcrTsDeltaMinMaxDlyMS = LONG_MAX;
    p->pcrTsDeltaMinExtValue = LONG_MIN;
    p->pcrTsDeltaMaxExtValue = LONG_MAX;
    p->PcrJump = LONG_MIN;
    p->tLastPcrJump = TIME_MAX;
    p->PcrJumpMaxValue = LONG_MAX;
    p->tLastPcrJumpMaxValue = TIME_MIN;
}

void samples_fill_extreme(SAMPLES_RECORDS* pRecords, time_t tNow)
{
    (void)tNow; /* its times lie at the ends of time */

    memset(pRecords, 0xFF, sizeof *pRecords); /* every unsigned field; the functions set all others */
    FillTDemux(&pRecords->tTDemux);
    FillVFramer(&pRecords->tVFramer);
    FillVideoDecoder(&pRecords->tVideoDecoder);
    FillAudio(&pRecords->tAudio);
    FillMetadata(&pRecords->tMetadata);
    FillBuffering(&pRecords->tBuffering);
    FillClockRecovery(&pRecords->tClockRecovery);
    FillUsage(&pRecords->tUsage);

    samples_clear_padding(pRecords);
}
