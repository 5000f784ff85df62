/**
 * @file rtp_fec_2160p.c
 * A healthy studio feed: RTP multicast with Pro-MPEG FEC of level B, H.265 Main 10 HDR (PQ) 2160p59.94 at 36 Mbit/s, a
 * stereo AAC pair and an AC-3 5.1 stream, presented in step with other decoders by timecode.
 */
#include <sys/socket.h>

#include "scenarios.h"
#include "video_formats.h"

/* Times are in s, ticks are those of the 90 kHz clock. */
#define UP_TIME    (6 * 3600L + 12 * 60L + 30L)
#define TICKS(ms)  ((ms)*90L)
#define DECODER_ID 2
#define STREAM_ID  8

/* Network: seven transport stream packets of 188 bytes in a datagram. */
#define DATAGRAM_BYTES       (7 * 188L)
#define DATAGRAMS_PER_SECOND 3650L
#define TS_BITS_PER_SECOND   (DATAGRAMS_PER_SECOND * DATAGRAM_BYTES * 8)
#define DATAGRAMS_SENT       (UP_TIME * DATAGRAMS_PER_SECOND)
#define DATAGRAMS_LOST       23L /* all of them rebuilt */
#define DATAGRAMS            (DATAGRAMS_SENT - DATAGRAMS_LOST)
#define LOST_AT              (tNow - 5 * 3600L)
#define RTP_PORT             5004

/* FEC of level B: a column packet for each column and a row packet for each row of the matrix. */
#define FEC_COLUMNS  10L
#define FEC_ROWS     10L
#define FEC_MATRICES (DATAGRAMS_SENT / (FEC_COLUMNS * FEC_ROWS))
#define ROW_FEC_LOST 1L

/* Video: 75075 bytes a picture make exactly 36 Mbit/s at 60000/1001 pictures/s. */
#define PICTURES_IN(seconds) ((seconds)*60000L / 1001L)
#define PICTURE_BYTES        75075L
#define TICKS_OF(pictures)   ((pictures)*3003L / 2) /* 1501.5 ticks a picture */
#define VIDEO_BITS           (PICTURE_BYTES * 8 * 60000L / 1001L)
#define WIDTH                3840
#define HEIGHT               2160L
#define SAMPLES_PER_2_PIXELS 3L /* 4:2:0: half as many chroma as luma samples */
#define BYTES_PER_SAMPLE     2L /* 10 bits in 16 */
#define GOP_LENGTH           60L
#define ANCHOR_DISTANCE      4L /* IBBBP: every fourth picture is I or P */
#define SLICES               8L

/* Audio: 512 bytes an AAC frame make 192 kbit/s at 46.875 frames/s, 1792 bytes an AC-3 frame 448 kbit/s at 31.25. */
#define SAMPLE_RATE     48000L
#define AAC_SAMPLES     1024L
#define AAC_FRAME_BYTES 512L
#define AAC_FRAME_TICKS (AAC_SAMPLES * 90000L / SAMPLE_RATE)
#define AAC_BITS        (AAC_FRAME_BYTES * 8 * SAMPLE_RATE / AAC_SAMPLES)
#define AC3_SAMPLES     1536L
#define AC3_FRAME_BYTES 1792L
#define AC3_FRAME_TICKS (AC3_SAMPLES * 90000L / SAMPLE_RATE)
#define AC3_BITS        (AC3_FRAME_BYTES * 8 * SAMPLE_RATE / AC3_SAMPLES)

/* Timecode: one packet a picture. It counts 30 frames/s, two pictures a frame (SMPTE ST 12-1). */
#define TC_BYTES   16L
#define TC_FPS     30L
#define TC_HOURS   14L
#define TC_MINUTES 23L
#define TC_SECONDS 45L
#define TC_FRAMES  22L /* of the picture received last */
#define TC_MS      (((TC_HOURS * 60 + TC_MINUTES) * 60 + TC_SECONDS) * 1000L + TC_FRAMES * 1000L / TC_FPS)

/*
 * Delays in ms. MultiSync shows a picture MULTISYNC_DELAY after the moment that its timecode names, so what the
 * transmission took is no longer to be waited for.
 */
#define TRANSMISSION_TIME 182L
#define MULTISYNC_DELAY   1000L
#define VIDEO_LATENCY     (MULTISYNC_DELAY - TRANSMISSION_TIME)
#define VIDEO_PCR_TO_PTS  500L
#define STC_BEHIND_PCR    (VIDEO_LATENCY - VIDEO_PCR_TO_PTS)
#define VIDEO_STC_LEAD    260L
#define AUDIO_STC_LEAD    120L
#define AAC_PCR_TO_PTS    410L
#define AAC_LATENCY       (AAC_PCR_TO_PTS + STC_BEHIND_PCR)
#define AC3_PCR_TO_PTS    430L
#define AC3_LATENCY       (AC3_PCR_TO_PTS + STC_BEHIND_PCR)
#define MAX_DELAY         3000L

/* Delays of the video decoder in ms, from the framer's output. */
#define IN_MIN         1
#define IN_MAX         15
#define OUT_NOW        129
#define OUT_MIN        112
#define OUT_MAX        151
#define DECODER_DELAY  (OUT_MIN - IN_MIN)
#define DECODER_JITTER ((OUT_MAX - OUT_MIN) - (IN_MAX - IN_MIN))
#define HARDWARE_DELAY 33
#define MIN_DELAY      (OUT_MAX + HARDWARE_DELAY)

/* Delay of the audio decoder in ms, from the framer's output: a frame of at most 32 ms and its processing. */
#define AUDIO_DECODER_OUT 33

/* What the stages hold now: as many frames as their delay lasts, begun frames included. */
#define VIDEO_HELD        34L /* 558 ms */
#define VIDEO_UNDECODED   5L
#define VIDEO_REORDERED   3L
#define VIDEO_UNDISPLAYED 8L
#define AAC_HELD          29L /* 608 ms */
#define AAC_UNDECODED     1L
#define AAC_QUEUED        5L
#define AC3_HELD          20L /* 628 ms */
#define AC3_UNDECODED     1L
#define AC3_QUEUED        3L

/* Counts, from the network to the output. */
#define VIDEO_RECEIVED  PICTURES_IN(UP_TIME)
#define VIDEO_RELEASED  (VIDEO_RECEIVED - VIDEO_HELD)
#define VIDEO_DECODED   (VIDEO_RELEASED - VIDEO_UNDECODED)
#define VIDEO_OUTPUT    (VIDEO_DECODED - VIDEO_REORDERED)
#define VIDEO_DISPLAYED (VIDEO_OUTPUT - VIDEO_UNDISPLAYED)
#define AAC_RECEIVED    (UP_TIME * SAMPLE_RATE / AAC_SAMPLES)
#define AAC_RELEASED    (AAC_RECEIVED - AAC_HELD)
#define AAC_DECODED     (AAC_RELEASED - AAC_UNDECODED)
#define AAC_PLAYED      (AAC_DECODED - AAC_QUEUED)
#define AC3_RECEIVED    (UP_TIME * SAMPLE_RATE / AC3_SAMPLES)
#define AC3_RELEASED    (AC3_RECEIVED - AC3_HELD)
#define AC3_DECODED     (AC3_RELEASED - AC3_UNDECODED)
#define AC3_PLAYED      (AC3_DECODED - AC3_QUEUED)
#define KEY_FRAMES      ((VIDEO_RELEASED + GOP_LENGTH - 1) / GOP_LENGTH)
#define ANCHORS         ((VIDEO_RELEASED + ANCHOR_DISTANCE - 1) / ANCHOR_DISTANCE)

/* Clocks. */
#define FIRST_PCR          5000000000L
#define PCR_NOW            (FIRST_PCR + TICKS(UP_TIME * 1000L)) /* has not reached 2^33 yet */
#define STC_NOW            (PCR_NOW - TICKS(STC_BEHIND_PCR))
#define VIDEO_PTS          (PCR_NOW + TICKS(VIDEO_PCR_TO_PTS))
#define AAC_PTS            (PCR_NOW + TICKS(AAC_PCR_TO_PTS))
#define AC3_PTS            (PCR_NOW + TICKS(AC3_PCR_TO_PTS))
#define VIDEO_TS_SHOWN     (VIDEO_PTS - TICKS_OF(VIDEO_RECEIVED - VIDEO_DISPLAYED))
#define AAC_TS_PLAYED      (AAC_PTS - (AAC_RECEIVED - AAC_PLAYED) * AAC_FRAME_TICKS)
#define AC3_TS_PLAYED      (AC3_PTS - (AC3_RECEIVED - AC3_PLAYED) * AC3_FRAME_TICKS)
#define LOW_32_BITS(ticks) ((ticks) % (1L << 32)) /* the audio record keeps time stamps in 32 bits */
#define PCRS_PER_SECOND    40L
#define PCRS               (UP_TIME * PCRS_PER_SECOND)
#define NOMINAL_STC        27000000L /* Hz; 27 Hz are 1 ppm */
#define STC_DEVIATION      (-49L)    /* Hz, the average of 2 min: -1.81 ppm */

void samples_fill_rtp_fec_2160p(SAMPLES_RECORDS* pRecords, time_t tNow)
{
    const time_t tStart = tNow - UP_TIME;

    pRecords->tTDemux = (SMGR_TDEMUX_STATS){
        .nSize = sizeof(SMGR_TDEMUX_STATS),
        .enState = SMGR_TDEMUX_STATS_STATE_ACTIVE,
        .bStreamHasBeenStarted = TRUE,
        .nSmgrStreamID = STREAM_ID,
        .enEncapsulation = SMGR_STREAM_ENCAPSULATION_TS_RTP,
        .enFECType = SMGR_FEC_TYPE_PRO_MPEG,
        .tStreamAddress = {.enType = AF_INET, .acAddress = {233, 252, 0, 10}}, /* multicast kept for documentation */
        .nStreamPort = RTP_PORT,
        .tSourceAddress = {.enType = AF_INET, .acAddress = {198, 51, 100, 20}},
        .nSourcePort = RTP_PORT,
        .nUpTimeInSecs = UP_TIME,
        .nProgramNumber = 1,
        .nPcrPid = 256,
        .nPCR = PCR_NOW,
        .tLastPCR = tNow,
        .tSources =
            {
                {
                    .enType = SMGR_TDEMUX_DATA_TYPE_VIDEO,
                    .enCompressionType = SMGR_TDEMUX_COMPRESSION_TYPE_H265,
                    .tsStreamId = 0xE0,
                    .tsPid = 256,
                    .nTimebaseNum = 1,
                    .nTimebaseDen = 90000,
                    .nPTS = VIDEO_PTS,
                    .nDTS = VIDEO_PTS - TICKS_OF(2),
                    .tCounters =
                        {
                            .nNumReceivedPackets = VIDEO_RECEIVED,
                            .nNumReceivedBytes = VIDEO_RECEIVED * PICTURE_BYTES,
                            .tLastReceivedPacket = tNow,
                            .nNumOutputPackets = VIDEO_RECEIVED,
                            .nNumOutputBytes = VIDEO_RECEIVED * PICTURE_BYTES,
                            .tLastOutputPacket = tNow,
                            .iLastTxTime = tNow,
                            .nBitsPerSecond = VIDEO_BITS,
                        },
                },
                {
                    .enType = SMGR_TDEMUX_DATA_TYPE_AUDIO,
                    .enCompressionType = SMGR_TDEMUX_COMPRESSION_TYPE_AAC_LATM,
                    .tsStreamId = 0xC0,
                    .tsPid = 257,
                    .nTimebaseNum = 1,
                    .nTimebaseDen = 90000,
                    .nPTS = AAC_PTS,
                    .nDTS = AAC_PTS,
                    .tCounters =
                        {
                            .nNumReceivedPackets = AAC_RECEIVED,
                            .nNumReceivedBytes = AAC_RECEIVED * AAC_FRAME_BYTES,
                            .tLastReceivedPacket = tNow,
                            .nNumOutputPackets = AAC_RECEIVED,
                            .nNumOutputBytes = AAC_RECEIVED * AAC_FRAME_BYTES,
                            .tLastOutputPacket = tNow,
                            .iLastTxTime = tNow,
                            .nBitsPerSecond = AAC_BITS,
                        },
                    .nAudioPairNum = 1,
                },
                {
                    .enType = SMGR_TDEMUX_DATA_TYPE_AUDIO,
                    .enCompressionType = SMGR_TDEMUX_COMPRESSION_TYPE_AC3,
                    .tsStreamId = 0xBD,
                    .tsPid = 258,
                    .nTimebaseNum = 1,
                    .nTimebaseDen = 90000,
                    .nPTS = AC3_PTS,
                    .nDTS = AC3_PTS,
                    .tCounters =
                        {
                            .nNumReceivedPackets = AC3_RECEIVED,
                            .nNumReceivedBytes = AC3_RECEIVED * AC3_FRAME_BYTES,
                            .tLastReceivedPacket = tNow,
                            .nNumOutputPackets = AC3_RECEIVED,
                            .nNumOutputBytes = AC3_RECEIVED * AC3_FRAME_BYTES,
                            .tLastOutputPacket = tNow,
                            .iLastTxTime = tNow,
                            .nBitsPerSecond = AC3_BITS,
                        },
                    .nAudioPairNum = 2,
                },
            },
        .tCounters =
            {
                .nNumReceivedPackets = DATAGRAMS,
                .nNumReceivedBytes = DATAGRAMS * DATAGRAM_BYTES,
                .tLastReceivedPacket = tNow,
                .nRxPacketToPacketIntervalUs = 1000000L / DATAGRAMS_PER_SECOND,
                .nMaxRxPacketToPacketIntervalUs = 6120,
                .tMaxRxPacketToPacketInterval = LOST_AT,
                .nExternalRxPacketToPacketIntervalUs = 268,
                .nMaxExternalRxPacketToPacketIntervalUs = 5980,
                .tMaxExternalRxPacketToPacketInterval = LOST_AT,
                .nNumOutputPackets = VIDEO_RECEIVED + AAC_RECEIVED + AC3_RECEIVED,
                .nNumOutputBytes = VIDEO_RECEIVED * PICTURE_BYTES + AAC_RECEIVED * AAC_FRAME_BYTES + AC3_RECEIVED * AC3_FRAME_BYTES,
                .tLastOutputPacket = tNow,
                .nNumLostSegmentsRTP = DATAGRAMS_LOST,
                .tLastLostSegmentRTP = LOST_AT,
                .nNumReconnections = 1,
                .tLastReconnection = tStart,
                .nNumNewStreamFlags = 1,
                .tLastNewStreamFlag = tStart,
                .nBitsPerSecond = TS_BITS_PER_SECOND,
                .TimeStamp = VIDEO_PTS,
                .iLastRxTime = tNow,
                .nNumStreams = 3,
                .nVideoStreams = 1,
                .nAudioStreams = 2,
                .nInputPacketListSize = 2 * FEC_COLUMNS * FEC_ROWS * DATAGRAM_BYTES, /* two matrices wait for their FEC */
                .nMaxInputPacketListSize = 231 * DATAGRAM_BYTES,
                .tMaxInputPacketListSize = LOST_AT,
                .nReadPacketListSize = 3 * DATAGRAM_BYTES,
                .nMaxReadPacketListSize = 48 * DATAGRAM_BYTES,
                .tMaxReadPacketListSize = LOST_AT,
            },
        .Xport =
            {
                .PMFEC =
                    {
                        .nColumns = FEC_COLUMNS,
                        .nRows = FEC_ROWS,
                        .bRowFEC = TRUE,
                        .bBlockAlign = TRUE,
                        .nMediaPkts = DATAGRAMS,
                        .nColFecPkts = FEC_MATRICES * FEC_COLUMNS,
                        .nRowFecPkts = FEC_MATRICES * FEC_ROWS - ROW_FEC_LOST,
                        .nDroppedPkts = DATAGRAMS_LOST,
                        .nRecoveredPkts = DATAGRAMS_LOST,
                        .nDroppedRowFECPkts = ROW_FEC_LOST,
                    },
            },
    };

    pRecords->tVFramer = (SMGR_VFRAMER_STATS){
        .enState = SMGR_VFRAMER_STATE_ACTIVE,
        .nDecoderID = DECODER_ID,
        .nStreamID = STREAM_ID,
        .tCurrentProperties =
            {
                .enCompressionType = SMGR_TDEMUX_COMPRESSION_TYPE_H265,
                .enColorType = SMGR_VIDEO_COLOR_TYPE_420_10BIT,
                .nProfile = 2,
                .nLevel = 153,
                .nWidth = WIDTH,
                .nHeight = HEIGHT,
                .fFrameRate = 60000.0F / 1001.0F,
                .bFrameRateFoundInStream = TRUE,
                .nBitsPerSecond = VIDEO_BITS,
                .szFraming = "IBBBP",
                .nNumberOfBPicturesInARow = ANCHOR_DISTANCE - 1,
                .nGopInterval = GOP_LENGTH,
                .nSliceCountPerFrame = SLICES,
                .bHasIFrames = TRUE,
                .bHasPFrames = TRUE,
                .bHasBFrames = TRUE,
                .TimeStamp = VIDEO_PTS - TICKS_OF(VIDEO_HELD),
                .TimeStampDelta = 1502, /* 1501 and 1502 in turn */
                .nLatencyInUs = 900,
                .bTCPresent = TRUE,
                .enHDRType = SMGR_VFRAMER_HDR_TYPE_PQ,
                .enHDRTypeInStream = SMGR_VFRAMER_HDR_TYPE_PQ,
                .colour_primaries = 9,                   /* BT.2020 */
                .transfer_characteristics = 16,          /* SMPTE ST 2084 */
                .matrix_coefficients = 9,                /* BT.2020 non-constant luminance */
                .szPayloadID = {0xCE, 0xEA, 0x20, 0x01}, /* 2160 lines at 12 Gbit/s, PQ 60/1.001 progressive, UHDTV, 10-bit */
            },
        .tPreviousProperties = {.colour_primaries = 2, .transfer_characteristics = 2, .matrix_coefficients = 2},
        .tCounters =
            {
                .tLastVideoFrameReceived = tNow,
                .nNumStreamIDTransitions = 1,
                .tLastStreamIDTransition = tStart,
                .nNumFormatTransitions = 1,
                .tLastFormatTransition = tStart + 1,
                .nNumH265Compression = 1,
                .tLastH265Compression = tStart + 1,
                .nNum420_10bitColortype = 1,
                .tLast420_10bitColortype = tStart + 1,
                .nNumInputPackets = VIDEO_RELEASED,
                .nNumInputPacketsFreed = VIDEO_RELEASED,
                .fInputFrameRate = 59.94F,
                .nNumOutputFrames = VIDEO_RELEASED,
                .tLastOutputFrame = tNow,
                .nNumOutputFramesOnePiece = VIDEO_RELEASED,
                .tLastOutputFrameOnePiece = tNow,
                .nNumOutputBytesToDecoder = VIDEO_RELEASED * PICTURE_BYTES,
                .nNumKeyFrames = KEY_FRAMES,
                .tLastKeyFrame = tNow - 1,
                .nNumIPictures = KEY_FRAMES,
                .tLastIPicture = tNow - 1,
                .nNumPPictures = ANCHORS - KEY_FRAMES,
                .tLastPPicture = tNow,
                .nNumBPictures = VIDEO_RELEASED - ANCHORS,
                .tLastBPicture = tNow,
                .nMaxNumberOfBPicturesInARow = ANCHOR_DISTANCE - 1,
                .nNumProgressivePicStruct = VIDEO_RELEASED,
                .tLastProgressivePicStruct = tNow,
                .nNumVPSNALs = KEY_FRAMES,
                .tLastVPSNAL = tNow - 1,
                .nNumSPSNALs = KEY_FRAMES,
                .tLastSPSNAL = tNow - 1,
                .nNumPPSNALs = KEY_FRAMES,
                .tLastPPSNAL = tNow - 1,
                .nNumSEINALs = VIDEO_RELEASED + 2 * KEY_FRAMES, /* timecode; mastering display and content light level */
                .tLastSEINAL = tNow,
                .nNumSHNALs = VIDEO_RELEASED * SLICES,
                .tLastSHNAL = tNow,
                .nNumAUDNALs = VIDEO_RELEASED,
                .tLastAUDNAL = tNow,
                .nNumTC = VIDEO_RELEASED,
                .nNumTCBytesOutput = VIDEO_RELEASED * TC_BYTES,
                .tLastTCReceived = tNow,
                .nMaxInputPacketListSize = 4 * PICTURE_BYTES,
                .tMaxInputPacketListSize = tStart + 2,
                .nMaxOutputPacketListSize = 2 * PICTURE_BYTES,
                .tMaxOutputPacketListSize = tStart + 2,
            },
    };

    pRecords->tVideoDecoder = (SMGR_VCUDEC_STATS){
        .nSize = sizeof(SMGR_VCUDEC_STATS),
        .enState = SMGR_VCUDEC_STATE_ACTIVE,
        .nLoadPercentage = 78,
        .nLatencyInUs = DECODER_DELAY * 1000,
        .nDisplayFormat = VIDEO_FORMAT_3840_2160_59P,
        .bHasChroma = TRUE,
        .nFrameBufferWidth = WIDTH,
        .nFrameBufferHeight = HEIGHT,
        .nFrameBufferSizeEachInBytes = WIDTH * HEIGHT * SAMPLES_PER_2_PIXELS / 2 * BYTES_PER_SAMPLE,
        .nFrameBufferNumber = 10,
        .nFrameBufferNumberInUsed = 18,
        .nFrameBufferBitDepthY = 10,
        .nFrameBufferBitDepthC = 10,
        .enPicStructure = VCUDEC_PICSTRUCTURE_FRAME,
        .nVDelayInputMS = 4,
        .nVDelayInputMSAvg = 4,
        .nVMaxDelayInputMS = IN_MAX,
        .nVMinDelayInputMS = IN_MIN,
        .nVCurReOrderLen = VIDEO_REORDERED,
        .nVMaxReOrderLen = 4,
        .nVMinReOrderLen = 2,
        .nVDelayOutputMS = OUT_NOW,
        .nVDelayOutputMSAvg = 128,
        .nVMaxDelayOutputMS = OUT_MAX,
        .nVMinDelayOutputMS = OUT_MIN,
        .nVMaxDelayWithinVCUMS = 88,
        .nVMinDelayWithinVCUMS = 71,
        .nVCurBDListLen = VIDEO_UNDISPLAYED,
        .nVMaxBDListLen = 9,
        .nVMinBDListLen = 6,
        .nVTheoDelayHwOutputMS = VIDEO_STC_LEAD,
        .nVDelayHwOutputMS = 258,
        .nVDelayHwOutputFrameMS = 258,
        .nVDecInputJitterMS = IN_MAX - IN_MIN,
        .nVDecMaxInputJitterMS = 16,
        .nVDecOutputJitterMS = OUT_MAX - OUT_MIN,
        .nVDecJitterMS = DECODER_JITTER,
        .nVDecLatencyMS = DECODER_DELAY,
        .nVKeyDecDelayMS = 15,
        .tCounters =
            {
                .nNumReceivedFrames = VIDEO_RELEASED,
                .tLastReceivedFrame = tNow,
                .nNumReceivedFramesFreed = VIDEO_DECODED,
                .tLastReceivedFrameFreed = tNow,
                .nNumFramesSentToDecoder = VIDEO_RELEASED,
                .tLastFrameSentToDecoder = tNow,
                .nNumDecodedFrames = VIDEO_DECODED,
                .tLastDecodedFrame = tNow,
                .nNumFramesSentToDisplay = VIDEO_OUTPUT,
                .tLastFrameSentToDisplay = tNow,
                .nNumDisplayedOutputFrames = VIDEO_DISPLAYED,
                .tLastDisplayedOutputFrame = tNow,
                .nNumDisplayedFramesFreed = VIDEO_DISPLAYED - 1,
                .tLastDisplayedFrameFreed = tNow,
                .nOutputSTCLeadTime = VIDEO_STC_LEAD - OUT_NOW,
                .nMinOutputSTCLeadTime = 97,
                .tMinOutputSTCLeadTime = tStart + 3,
                .nMaxOutputSTCLeadTime = 151,
                .tMaxOutputSTCLeadTime = tNow - 2 * 3600L,
                .nNumReorderFramesIn = VIDEO_DECODED,
                .tLastReorderFrameIn = tNow,
                .nNumReorderFramesQOcc = VIDEO_REORDERED,
                .nNumReorderFramesOut = VIDEO_OUTPUT,
                .tLastReorderFrameOut = tNow,
                .nNumReorderFramesExtractCalls = VIDEO_DECODED,
                .tLastReorderFramesExtractCall = tNow,
                .nNumInputParsedCallbacks = VIDEO_RELEASED,
                .tLastInputParsedCallback = tNow,
                .nNumResolutionFoundCallbacks = 1,
                .tLastResolutionFoundCallback = tStart + 1,
                .nNumDecodedCallbacks = VIDEO_DECODED,
                .tLastDecodedCallback = tNow,
                .nNumDisplayCallbacks = VIDEO_OUTPUT,
                .tLastDisplayCallback = tNow,
                .nNumSEICallbacks = VIDEO_DECODED,
                .tLastSEICallback = tNow,
                .nMaxPushedQueueOccupancy = 8,
                .nCurPushedQueueOccupancy = VIDEO_UNDECODED,
                .nNumImageCaptures = 2,
                .tLastImageCapture = tNow - 3 * 3600L,
            },
        .bReordering = TRUE,
    };

    pRecords->tAudio = (SMGR_DECODER_AUDIO_STATS){
        .nSize = sizeof(SMGR_DECODER_AUDIO_STATS),
        .enState = SMGR_AUDDEC_STATE_ACTIVE,
        .nNumOfPairs = 2,
        .nReceivedFrames = AAC_RELEASED + AC3_RELEASED,
        .tLastReceivedFrame = tNow,
        .nDecodedFrames = AAC_DECODED + AC3_DECODED,
        .tLastDecodedFrame = tNow,
        .nOutputFrames = AAC_PLAYED + AC3_PLAYED,
        .tLastOutputFrame = tNow,
        .nReleasedFrames = AAC_DECODED + AC3_DECODED,
        .tLastReleasedFrame = tNow,
        .nPendingDecodeRequests = AAC_UNDECODED + AC3_UNDECODED,
        .nCurDecodedQueueLength = AAC_QUEUED + AC3_QUEUED,
        .nADelayInputMS = 1,
        .nADelayOutputMS = AUDIO_DECODER_OUT,
        .nARxFramesJitterMS = 3,
        .nALastMaxRxFramesJitterMS = 7,
        .PairStats =
            {
                {
                    .nSize = sizeof(SMGR_AUDIO_PAIR_STATS),
                    .enMode = 1,
                    .enAlgorithm = SMGR_TDEMUX_COMPRESSION_TYPE_AAC_LATM,
                    .nSampleRateIn = SAMPLE_RATE,
                    .nBitRateInKbps = AAC_BITS / 1000,
                    .nInputChannels = 2,
                    .nOutputChannels = 2,
                    .nReceivedFrames = AAC_RELEASED,
                    .tLastReceivedFrame = tNow,
                    .nDecodedFrames = AAC_DECODED,
                    .tLastDecodedFrame = tNow,
                    .nDecodedBytes = AAC_DECODED * AAC_FRAME_BYTES,
                    .nOutputFrames = AAC_PLAYED,
                    .tLastOutputFrame = tNow,
                    .nSampleRateOut = SAMPLE_RATE,
                    .nOutQueueLength = AAC_QUEUED,
                    .nMaxOutQueueLen = 7,
                    .nCurFpgaWteId = 12 + AAC_QUEUED,
                    .nCurFpgaReadId = 12,
                    .tLastIntervalTime = {.tv_sec = tNow - 1, .tv_nsec = 979320000},
                    .nMinWteToFpgaIntervalInMs = 19,
                    .nMaxWteToFpgaIntervalInMs = 24,
                    .nLastWteToFpgaIntervalInMs = 21,
                    .iAudioVideoTSDiffInMs = (AAC_TS_PLAYED - VIDEO_TS_SHOWN) / TICKS(1),
                    .nAudioTimeStamp = LOW_32_BITS(AAC_TS_PLAYED),
                    .nVideoTimeStamp = LOW_32_BITS(VIDEO_TS_SHOWN),
                    .nCurSTCLeadTimeMs = AUDIO_STC_LEAD - AUDIO_DECODER_OUT,
                    .nMinSTCLeadTimeMs = 78,
                    .tMinSTCLeadTime = tNow - 4 * 3600L,
                    .nMaxSTCLeadTimeMs = 96,
                    .tMaxSTCLeadTime = tNow - 900,
                    .tLastRxFrameTime = {.tv_sec = tNow - 1, .tv_nsec = 986540000},
                    .nLastProcessTimeUs = 702,
                    .nMinProcessTimeUs = 455,
                    .tMinProcessTime = tNow - 2 * 3600L,
                    .nMaxProcessTimeUs = 3120,
                    .tMaxProcessTime = tStart + 1,
                },
                {
                    .nSize = sizeof(SMGR_AUDIO_PAIR_STATS),
                    .enMode = 1,
                    .enAlgorithm = SMGR_TDEMUX_COMPRESSION_TYPE_AC3,
                    .nSampleRateIn = SAMPLE_RATE,
                    .nBitRateInKbps = AC3_BITS / 1000,
                    .nInputChannels = 6, /* 5.1, mixed down */
                    .nOutputChannels = 2,
                    .nReceivedFrames = AC3_RELEASED,
                    .tLastReceivedFrame = tNow,
                    .nDecodedFrames = AC3_DECODED,
                    .tLastDecodedFrame = tNow,
                    .nDecodedBytes = AC3_DECODED * AC3_FRAME_BYTES,
                    .nOutputFrames = AC3_PLAYED,
                    .tLastOutputFrame = tNow,
                    .nSampleRateOut = SAMPLE_RATE,
                    .nOutQueueLength = AC3_QUEUED,
                    .nMaxOutQueueLen = 5,
                    .nCurFpgaWteId = 51 + AC3_QUEUED,
                    .nCurFpgaReadId = 51,
                    .tLastIntervalTime = {.tv_sec = tNow - 1, .tv_nsec = 971080000},
                    .nMinWteToFpgaIntervalInMs = 29,
                    .nMaxWteToFpgaIntervalInMs = 36,
                    .nLastWteToFpgaIntervalInMs = 32,
                    .iAudioVideoTSDiffInMs = (AC3_TS_PLAYED - VIDEO_TS_SHOWN) / TICKS(1),
                    .nAudioTimeStamp = LOW_32_BITS(AC3_TS_PLAYED),
                    .nVideoTimeStamp = LOW_32_BITS(VIDEO_TS_SHOWN),
                    .nCurSTCLeadTimeMs = AUDIO_STC_LEAD - AUDIO_DECODER_OUT,
                    .nMinSTCLeadTimeMs = 74,
                    .tMinSTCLeadTime = tNow - 4 * 3600L,
                    .nMaxSTCLeadTimeMs = 99,
                    .tMaxSTCLeadTime = tNow - 840,
                    .tLastRxFrameTime = {.tv_sec = tNow - 1, .tv_nsec = 980110000},
                    .nLastProcessTimeUs = 1340,
                    .nMinProcessTimeUs = 980,
                    .tMinProcessTime = tNow - 3 * 3600L,
                    .nMaxProcessTimeUs = 4870,
                    .tMaxProcessTime = tStart + 1,
                },
            },
    };
    for (size_t i = 2; i < SMGR_AUDIO_MAX_PAIRS; ++i) pRecords->tAudio.PairStats[i].nSize = sizeof(SMGR_AUDIO_PAIR_STATS);

    pRecords->tMetadata = (SMGR_METADATADEC_STATS){
        .enState = SMGR_METADATA_STATE_ACTIVE,
        .nDecoderID = DECODER_ID,
        .tChannel =
            {
                samples_idle_channel("KLV", SMGR_METADATA_CHANNEL_TYPE_KLV),
                {
                    .szName = "TC",
                    .enType = SMGR_METADATA_CHANNEL_TYPE_TC,
                    .enState = SMGR_METADATA_STATE_ACTIVE,
                    .nLatencyInUs = VIDEO_STC_LEAD * 1000,
                    .tCounters =
                        {
                            .nNumInputPackets = VIDEO_RELEASED,
                            .tLastInputPacket = tNow,
                            .nNumSynchronousPackets = VIDEO_RELEASED,
                            .tLastSynchronousPacket = tNow,
                            .nNumOutputPackets = VIDEO_OUTPUT,
                            .tLastOutputPacket = tNow,
                            .nNumFreedPackets = VIDEO_OUTPUT,
                            .tLastFreedPacket = tNow,
                            .nNumOutputPayloadBytes = VIDEO_OUTPUT * TC_BYTES,
                            .nMaxOutputPayloadBytes = TC_BYTES,
                            .tMaxOutputPayloadBytes = tStart + 3,
                            .tLastOutputTime = tNow,
                            .nNumInPacketList = VIDEO_RELEASED - VIDEO_OUTPUT,
                            .nNumBDAllocated = VIDEO_OUTPUT,
                            .tLastBDAllocated = tNow,
                            .nNumBDWritten = VIDEO_OUTPUT,
                            .tLastBDWritten = tNow,
                            .nNumBDFreed = VIDEO_DISPLAYED,
                            .tLastBDFreed = tNow,
                            .nNumBDInFreeList = SAMPLES_DESCRIPTORS - VIDEO_UNDISPLAYED,
                            .nNumBDInUsedList = VIDEO_UNDISPLAYED,
                            .nBDFreeListHeadIndex = 5 + VIDEO_UNDISPLAYED,
                            .nBDUsedListHeadIndex = 5,
                            .nCurrentDelayInPackets = VIDEO_UNDISPLAYED,
                            .nNumInDelayList = VIDEO_RELEASED - VIDEO_OUTPUT,
                            .nOutputSTCLeadTime = VIDEO_STC_LEAD - OUT_NOW,
                            .nMinOutputSTCLeadTime = 97,
                            .tMinOutputSTCLeadTime = tStart + 3,
                            .nMaxOutputSTCLeadTime = 151,
                            .tMaxOutputSTCLeadTime = tNow - 2 * 3600L,
                        },
                },
                samples_idle_channel("CC", SMGR_METADATA_CHANNEL_TYPE_CC),
                samples_idle_channel("AFD", SMGR_METADATA_CHANNEL_TYPE_AFD),
            },
        .tCounters =
            {
                .nNumReceivedPackets = VIDEO_RELEASED,
                .tTCValue =
                    {
                        .bTCValid = TRUE,
                        .nTCHours = TC_HOURS,
                        .nTCMinutes = TC_MINUTES,
                        .nTCSeconds = TC_SECONDS,
                        .nTCFrames = TC_FRAMES - VIDEO_HELD / 2, /* of the picture released last */
                    },
            },
    };

    pRecords->tBuffering = (SMGR_CBUFFERING_STATS){
        .nDecoderID = DECODER_ID,
        .enStatus = SMGR_CBUFFERING_STATUS_ACTIVE,
        .enBufferingMode = SMGR_DECSDI_BUFFERING_MULTISYNC,
        .nFixedDelayMs = 500,
        .nMultiSyncDelayMs = MULTISYNC_DELAY,
        .nMinDelayMs = MIN_DELAY,
        .nMaxDelayMs = MAX_DELAY,
        .nPCR = PCR_NOW,
        .nSTC = STC_NOW,
        .tMultiSync =
            {
                .bTimecodePresent = TRUE,
                .bTimecodeValid = TRUE,
                .nTimecodeInMs = TC_MS,
                .nSystemTimeInMs = TC_MS + TRANSMISSION_TIME,
                .nTransmissionTimeMs = TRANSMISSION_TIME,
                .nMultiSyncDelaySetMs = MULTISYNC_DELAY,
                .nMultiSyncDelayActualMs = MULTISYNC_DELAY,
                .nMultiSyncDelayRangeMinMs = TRANSMISSION_TIME + VIDEO_PCR_TO_PTS,
                .nMultiSyncDelayRangeMaxMs = TRANSMISSION_TIME + MAX_DELAY,
                .tCounters = {.nNumTCPackets = VIDEO_RECEIVED, .tLastTCReceived = tNow},
            },
        .tAutomatic =
            {
                .nMaxInputJitterMs = 11,
                .tMaxInputJitterChanged = LOST_AT,
                .nNonVideoLateMs = -58,
                .nNonVideoLateMaxMs = -41,
                .tNonVideoLateMax = LOST_AT,
                .nVideoDecoderLatencyMs = DECODER_DELAY,
                .nVideoDecoderLatencyMaxMs = 118,
                .tVideoDecoderLatencyMax = tStart + 4,
                .nVideoDecoderJitterMs = DECODER_JITTER,
                .nVideoDecoderJitterMaxMs = 29,
                .tVideoDecoderJitterMax = tStart + 14,
                .nVideoSTCLeadTimeAvgActualMs = VIDEO_STC_LEAD,
                .nVideoSTCLeadTimeMinActualMs = 249,
                .nVideoSTCLeadTimeMaxActualMs = 271,
                .nAudioSTCLeadTimeAvgActualMs = AUDIO_STC_LEAD,
                .nAudioSTCLeadTimeMinActualMs = 108,
                .nAudioSTCLeadTimeMaxActualMs = 133,
                .nHardwareDelayMs = HARDWARE_DELAY,
            },
        .bBufferingDelaySet = TRUE,
        .nSTCtoPCRLeadTimeMs = -STC_BEHIND_PCR,
        .nSetDelayMs = VIDEO_STC_LEAD,
        .tChannel =
            {
                {
                    .enType = SMGR_TDEMUX_DATA_TYPE_VIDEO,
                    .nBufferingDelayTimeMs = VIDEO_LATENCY - VIDEO_STC_LEAD,
                    .nDelayTimeMsActual = VIDEO_LATENCY - VIDEO_STC_LEAD,
                    .nSTCLeadTimeMsSet = VIDEO_STC_LEAD,
                    .nTotalOutputLatencyMs = VIDEO_LATENCY,
                    .nPCRtoPTSTimeMsActual = VIDEO_PCR_TO_PTS,
                    .nJitterTimeMsActual = 3,
                    .nJitterTimeMsSet = 20,
                    .nJitterTimeMsMaximum = 11,
                    .nQueueOccupancyFrames = VIDEO_HELD,
                    .TimeStamp = VIDEO_PTS - TICKS_OF(VIDEO_HELD),
                    .tLastOutputTime = tNow,
                    .tCounters =
                        {
                            .nNumReceivedPackets = VIDEO_RECEIVED,
                            .nNumOutputPackets = VIDEO_RELEASED,
                            .nMaxQueueOccupancyFrames = VIDEO_HELD + 2,
                        },
                },
                {
                    .enType = SMGR_TDEMUX_DATA_TYPE_AUDIO,
                    .nBufferingDelayTimeMs = AAC_LATENCY - AUDIO_STC_LEAD,
                    .nDelayTimeMsActual = AAC_LATENCY - AUDIO_STC_LEAD,
                    .nSTCLeadTimeMsSet = AUDIO_STC_LEAD,
                    .nTotalOutputLatencyMs = AAC_LATENCY,
                    .nPCRtoPTSTimeMsActual = AAC_PCR_TO_PTS,
                    .nJitterTimeMsActual = 2,
                    .nJitterTimeMsSet = 20,
                    .nJitterTimeMsMaximum = 8,
                    .nQueueOccupancyFrames = AAC_HELD,
                    .TimeStamp = AAC_PTS - AAC_HELD * AAC_FRAME_TICKS,
                    .tLastOutputTime = tNow,
                    .tCounters =
                        {
                            .nNumReceivedPackets = AAC_RECEIVED,
                            .nNumOutputPackets = AAC_RELEASED,
                            .nMaxQueueOccupancyFrames = AAC_HELD + 2,
                        },
                },
                {
                    .enType = SMGR_TDEMUX_DATA_TYPE_AUDIO,
                    .nBufferingDelayTimeMs = AC3_LATENCY - AUDIO_STC_LEAD,
                    .nDelayTimeMsActual = AC3_LATENCY - AUDIO_STC_LEAD,
                    .nSTCLeadTimeMsSet = AUDIO_STC_LEAD,
                    .nTotalOutputLatencyMs = AC3_LATENCY,
                    .nPCRtoPTSTimeMsActual = AC3_PCR_TO_PTS,
                    .nJitterTimeMsActual = 4,
                    .nJitterTimeMsSet = 20,
                    .nJitterTimeMsMaximum = 9,
                    .nQueueOccupancyFrames = AC3_HELD,
                    .TimeStamp = AC3_PTS - AC3_HELD * AC3_FRAME_TICKS,
                    .tLastOutputTime = tNow,
                    .tCounters =
                        {
                            .nNumReceivedPackets = AC3_RECEIVED,
                            .nNumOutputPackets = AC3_RELEASED,
                            .nMaxQueueOccupancyFrames = AC3_HELD + 1,
                        },
                },
            },
        .tCounters =
            {
                .nNumReceivedPackets = VIDEO_RECEIVED + AAC_RECEIVED + AC3_RECEIVED,
                .tLastReceivedPacket = tNow,
                .nNumOutputPackets = VIDEO_RELEASED + AAC_RELEASED + AC3_RELEASED,
                .tLastOutputPacket = tNow,
                .nNumPCRPackets = PCRS,
                .nNumPCRUpdates = PCRS,
                .tLastPCRUpdate = tNow,
                .nNumSTCUpdates = UP_TIME / 10,
                .tLastSTCUpdate = tNow - 4,
                .nNumBufferingAdjustments = 2,
                .tLastBufferingAdjustmentTime = tStart + 60,
                .nNumSTCLeadTimeAdjustments = 1,
                .tLastSTCLeadTimeAdjustmentTime = tStart + 14,
                .nNumResets = 1,
                .tLastReset = tStart,
                .nBufferingOccupancyBytes = VIDEO_HELD * PICTURE_BYTES + AAC_HELD * AAC_FRAME_BYTES + AC3_HELD * AC3_FRAME_BYTES,
                .nMaxBufferingOccupancyBytes = 36 * PICTURE_BYTES + 31 * AAC_FRAME_BYTES + 21 * AC3_FRAME_BYTES,
                .tMaxBufferingOccupancyBytes = LOST_AT,
            },
    };

    pRecords->tClockRecovery = (SMGR_DECODER_CLOCK_RECOVERY_STATS){
        .TrackingStarted = 1,
        .SampleCount = PCRS,
        .PcrUpdates = PCRS,
        .tLastPcrUpdate = tNow,
        .OldSndClk = PCR_NOW,
        .OldRcvClk = STC_NOW,
        .OldDeltaSnd = 90000L / PCRS_PER_SECOND,
        .FilterDeltaSnd = 90000L / PCRS_PER_SECOND,
        .OldDeltaClk = TICKS(STC_BEHIND_PCR),
        .FilterDeltaClk = TICKS(STC_BEHIND_PCR),
        .OldPll = NOMINAL_STC - 47,
        .StcClkNominal = NOMINAL_STC,
        .trackingMode = SMGR_CLOCK_TRACKING_ENABLED_LOCK,
        .PllSettleTime = 97,
        .curPllAvg = NOMINAL_STC + STC_DEVIATION,
        .curPllMin = NOMINAL_STC - 53,
        .curPllMax = NOMINAL_STC - 44,
        .curPLLDevHz = STC_DEVIATION,
        .curPLLDevPpm = STC_DEVIATION / 27,
        .curPLLDevPpmNominal = -47 / 27,
        .curPLLDevPpmFract = -STC_DEVIATION * 100 / 27 % 100,
        .avgDevHz = 4, /* 0.14 ppm */
        .avgDevPpm = 0,
        .avgDevPpmFract = 4 * 100 / 27,
        .curPcr = PCR_NOW,
        .curPcrFpga = STC_NOW,
        .curPcrFpgaDelta = PCR_NOW - STC_NOW,
        .mafDivFactor = 128,
        .pcrTsDelta = TICKS(VIDEO_LATENCY),
        .pcrTsDeltaAud0 = TICKS(AAC_LATENCY),
        .pcrTsDeltaAud1 = TICKS(AC3_LATENCY),
        .pcrTsDeltaMinValue = TICKS(VIDEO_LATENCY - 5),
        .pcrTsDeltaMaxValue = TICKS(VIDEO_LATENCY + 6),
        .pcrTsDeltaMinMaxDlyMS = 10000,
        .pcrTsDeltaMinExtValue = TICKS(VIDEO_LATENCY - 14),
        .pcrTsDeltaMaxExtValue = TICKS(VIDEO_LATENCY + 19),
    };

    pRecords->tUsage = (SMGR_DECODER_SDI_USAGE_STATS){
        .nNumStarts = 2,
        .tLastStart = tStart,
        .nNumStops = 1,
        .tLastStop = tStart - 30,
        .nNumGetStats = 24,
        .tLastGetStat = tNow - 15,
        .nNumGetInfos = 8,
        .tLastGetInfo = tNow - 15,
        .nNumConfigures = 5,
        .tLastConfigure = tStart - 12,
        .nNumCaptures = 2,
        .tLastCapture = tNow - 3 * 3600L,
        .nNumLoadConfigs = 1,
        .tLastLoadConfig = tStart - 140,
        .nNumSaveConfigs = 1,
        .tLastSaveConfig = tStart - 10,
    };

    samples_clear_padding(pRecords);
}
