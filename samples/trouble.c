/**
 * @file trouble.c
 * A link that fails at every stage. H.264 1080p50 over a lossy SRT link, fixed buffering set too low, an encoder whose
 * clock is far off. Then the sender changed to a format that the decoder has no room for, and a minute later it connected
 * again with a passphrase that is not the one set here.
 */
#define _POSIX_C_SOURCE 200809L /* for the resolver's codes */

#include <netdb.h>
#include <sys/socket.h>

#include "scenarios.h"
#include "video_formats.h"

/* Times are in s, ticks are those of the 90 kHz clock. */
#define UP_TIME         (3 * 3600L + 2 * 60L + 11L)
#define SCRAMBLED_FOR   15L
#define UNSUPPORTED_FOR 95L
#define CONNECTIONS     11L
#define OUTAGE          ((CONNECTIONS - 1) * 4L) /* without a connection, 4 s each time */
#define CLEAR_TIME      (UP_TIME - OUTAGE - SCRAMBLED_FOR)
#define DECODED_TIME    (UP_TIME - OUTAGE - UNSUPPORTED_FOR)
#define TICKS(ms)       ((ms)*90L)
#define DECODER_ID      1
#define STREAM_ID       4
#define SCRAMBLED_AT    (tNow - SCRAMBLED_FOR)
#define UNSUPPORTED_AT  (tNow - UNSUPPORTED_FOR)
#define OUTAGE_AT       (tNow - 800) /* the worst of the outages */
#define BURST_AT        (tNow - 797) /* what followed it at once */

/* Network: seven transport stream packets of 188 bytes in a datagram. */
#define DATAGRAM_BYTES       (7 * 188L)
#define DATAGRAMS_PER_SECOND 810L
#define TS_BITS_PER_SECOND   (DATAGRAMS_PER_SECOND * DATAGRAM_BYTES * 8)
#define SRT_LOST             61932L /* on the way, most of them sent again in time */
#define SRT_TOO_LATE         9870L
#define DATAGRAMS            ((UP_TIME - OUTAGE) * DATAGRAMS_PER_SECOND - SRT_TOO_LATE)
#define UNDECRYPTED          (SCRAMBLED_FOR * DATAGRAMS_PER_SECOND)
#define DISCARDED            2210L /* duplicates and packets of PIDs that nobody asked for */
#define SRT_LATENCY          80L   /* ms */
#define SRT_BUFFERED         (SRT_LATENCY * DATAGRAMS_PER_SECOND / 1000)
#define LOCAL_PORT           40112
#define REMOTE_PORT          7001

/* Video: 20000 bytes a picture make 8 Mbit/s at 50 pictures/s. The new format has half as many, twice as large. */
#define PICTURES_PER_SECOND     50L
#define PICTURE_BYTES           20000L
#define VIDEO_BITS              (PICTURES_PER_SECOND * PICTURE_BYTES * 8)
#define PICTURE_TICKS           (90000L / PICTURES_PER_SECOND)
#define NEW_PICTURES_PER_SECOND 25L
#define NEW_PICTURE_BYTES       (VIDEO_BITS / 8 / NEW_PICTURES_PER_SECOND)
#define WIDTH                   1920
#define HEIGHT                  1080
#define CODED_HEIGHT            1088L /* whole macroblocks */
#define GOP_LENGTH              50L
#define SLICES                  1L

/* Audio: 576 bytes a frame of MPEG layer II make 192 kbit/s. */
#define SAMPLE_RATE     48000L
#define MP2_SAMPLES     1152L
#define MP2_FRAME_BYTES 576L
#define MP2_FRAME_TICKS (MP2_SAMPLES * 90000L / SAMPLE_RATE)
#define MP2_BITS        (MP2_FRAME_BYTES * 8 * SAMPLE_RATE / MP2_SAMPLES)

/* KLV without time stamps. */
#define KLV_PER_SECOND 5L
#define KLV_BYTES      180L
#define KLV_BITS       (KLV_PER_SECOND * KLV_BYTES * 8)

/* Counts of the video, from the network to the output. */
#define OLD_PICTURES       (DECODED_TIME * PICTURES_PER_SECOND)
#define NEW_PICTURES       ((UNSUPPORTED_FOR - SCRAMBLED_FOR) * NEW_PICTURES_PER_SECOND)
#define PICTURES_LOST      1312L
#define VIDEO_RECEIVED     (OLD_PICTURES + NEW_PICTURES - PICTURES_LOST)
#define VIDEO_OVERFLOWED   418L /* discarded by the buffering controller */
#define VIDEO_RELEASED     (VIDEO_RECEIVED - VIDEO_OVERFLOWED)
#define PICTURES_UNPARSED  96L
#define VIDEO_FRAMED       (VIDEO_RELEASED - NEW_PICTURES - PICTURES_UNPARSED)
#define PIECED_TOGETHER    733L /* pictures that came in several pieces */
#define DROPPED_I          21L
#define DROPPED_P          640L
#define DROPPED_B          0L
#define PICTURES_DROPPED   (DROPPED_I + DROPPED_P + DROPPED_B)
#define VIDEO_DECODED      (VIDEO_FRAMED - PICTURES_DROPPED)
#define PICTURES_CONCEALED 2904L
#define DISPLAY_REFUSED    37L /* pictures without their information */
#define VIDEO_OUTPUT       (VIDEO_DECODED - DISPLAY_REFUSED)
#define VIDEO_SKIPPED      5120L
#define OUTPUT_ERRORS      14L
#define VIDEO_DISPLAYED    (VIDEO_OUTPUT - VIDEO_SKIPPED - OUTPUT_ERRORS)
#define VIDEO_REPLAYED     6333L
#define VIDEO_LATE         4871L
#define KEY_FRAMES         (VIDEO_FRAMED / GOP_LENGTH)

/* Counts of the audio. */
#define MP2_LOST     1077L
#define MP2_RECEIVED (CLEAR_TIME * SAMPLE_RATE / MP2_SAMPLES - MP2_LOST)
#define MP2_OVERFLOW 203L
#define MP2_RELEASED (MP2_RECEIVED - MP2_OVERFLOW)
#define MP2_ERRORS   311L
#define MP2_DECODED  (MP2_RELEASED - MP2_ERRORS)
#define MP2_SKIPPED  2417L
#define MP2_REFUSED  9L
#define MP2_PLAYED   (MP2_DECODED - MP2_SKIPPED - MP2_REFUSED)

/* Counts of the metadata. */
#define KLV_LOST     118L
#define KLV_RECEIVED (CLEAR_TIME * KLV_PER_SECOND - KLV_LOST)
#define KLV_UNTIMED  77L /* no time stamp could be made up */
#define KLV_RELEASED (KLV_RECEIVED - KLV_UNTIMED)
#define KLV_DROPPED  64L
#define KLV_FAILED   31L
#define KLV_LATE     22L /* among those that failed */
#define KLV_OUTPUT   (KLV_RELEASED - KLV_DROPPED - KLV_FAILED)

/* Delays in ms, the last that were measured. The STC runs ahead of the PCR, which leaves the decoder too little time. */
#define STC_AHEAD_OF_PCR 12L
#define VIDEO_PCR_TO_PTS 180L
#define VIDEO_LATENCY    (VIDEO_PCR_TO_PTS - STC_AHEAD_OF_PCR)
#define VIDEO_STC_LEAD   140L
#define AUDIO_PCR_TO_PTS 130L
#define AUDIO_LATENCY    (AUDIO_PCR_TO_PTS - STC_AHEAD_OF_PCR)
#define AUDIO_STC_LEAD   100L
#define FIXED_DELAY      150

/* Delays of the video decoder in ms, from the framer's output: its average is above what the output hardware waits. */
#define IN_MIN         3
#define IN_MAX         96
#define OUT_NOW        188
#define OUT_AVERAGE    171
#define OUT_MIN        118
#define OUT_MAX        264
#define DECODER_DELAY  (OUT_MIN - IN_MIN)
#define DECODER_JITTER ((OUT_MAX - OUT_MIN) - (IN_MAX - IN_MIN))
#define HARDWARE_DELAY 33
#define MIN_DELAY      (OUT_MAX + HARDWARE_DELAY)

/* Clocks: the last PCR was read before the stream became undecipherable, and the STC runs on. */
#define TICKS_WRAP      (1L << 33) /* width of PTS, DTS and PCR, ISO/IEC 13818-1 */
#define WRAPPED_FOR     7100L
#define WRAPPED_AT      (tNow - WRAPPED_FOR)
#define PCR_LAST        TICKS((WRAPPED_FOR - SCRAMBLED_FOR) * 1000L)
#define STC_AHEAD_NOW   (SCRAMBLED_FOR * 1000L + STC_AHEAD_OF_PCR)
#define STC_NOW         (PCR_LAST + TICKS(STC_AHEAD_NOW))
#define VIDEO_PTS       (PCR_LAST + TICKS(VIDEO_PCR_TO_PTS))
#define AUDIO_PTS       (PCR_LAST + TICKS(AUDIO_PCR_TO_PTS))
#define VIDEO_TS_SHOWN  (VIDEO_PTS - TICKS((UNSUPPORTED_FOR - SCRAMBLED_FOR) * 1000L))
#define AUDIO_TS_PLAYED (AUDIO_PTS - 5 * MP2_FRAME_TICKS)
#define PCRS_PER_SECOND 25L
#define PCRS            (CLEAR_TIME * PCRS_PER_SECOND)
#define PCRS_REFUSED    249L
#define NOMINAL_STC     27000000L /* Hz; 27 Hz are 1 ppm */
#define STC_DEVIATION   3005L     /* Hz, the average of 2 min: 111.29 ppm */
#define STC_ADJUSTMENT  2790L     /* Hz, of 16 min: 103.33 ppm */

void samples_fill_trouble(SAMPLES_RECORDS* pRecords, time_t tNow)
{
    const time_t tStart = tNow - UP_TIME;

    pRecords->tTDemux = (SMGR_TDEMUX_STATS){
        .nSize = sizeof(SMGR_TDEMUX_STATS),
        .enState = SMGR_TDEMUX_STATS_STATE_SCRAMBLED,
        .bStreamHasBeenStarted = TRUE,
        .nSmgrStreamID = STREAM_ID,
        .enEncapsulation = SMGR_STREAM_ENCAPSULATION_TS_SRT,
        .enFECType = SMGR_FEC_TYPE_NONE,
        .tSourceAddress =
            {
                .enType = AF_INET6,
                .acAddress = {0x20, 0x01, 0x0D, 0xB8, [14] = 0x4A, [15] = 0x05},
                .szHostName = "remote.example",
            },
        .nSourcePort = REMOTE_PORT,
        .nUpTimeInSecs = UP_TIME,
        .nProgramNumber = 7,
        .nPcrPid = 481,
        .nPCR = PCR_LAST,
        .tLastPCR = SCRAMBLED_AT,
        .tSources =
            {
                {
                    .enType = SMGR_TDEMUX_DATA_TYPE_VIDEO,
                    .enCompressionType = SMGR_TDEMUX_COMPRESSION_TYPE_H264,
                    .tsStreamId = 0xE0,
                    .tsPid = 481,
                    .nTimebaseNum = 1,
                    .nTimebaseDen = 90000,
                    .nPTS = VIDEO_PTS,
                    .nDTS = VIDEO_PTS,
                    .tCounters =
                        {
                            .nNumReceivedPackets = VIDEO_RECEIVED,
                            .nNumReceivedBytes = (OLD_PICTURES - PICTURES_LOST) * PICTURE_BYTES + NEW_PICTURES * NEW_PICTURE_BYTES,
                            .tLastReceivedPacket = SCRAMBLED_AT,
                            .nNumOutputPackets = VIDEO_RECEIVED,
                            .nNumOutputBytes = (OLD_PICTURES - PICTURES_LOST) * PICTURE_BYTES + NEW_PICTURES * NEW_PICTURE_BYTES,
                            .tLastOutputPacket = SCRAMBLED_AT,
                            .iLastTxTime = SCRAMBLED_AT,
                            .nNumNoPTSValueFrames = 58,
                            .tLastNoPTSValueFrames = BURST_AT,
                            .nNumNoDTSValueFrames = 61,
                            .tLastNoDTSValueFrames = BURST_AT,
                        },
                },
                {
                    .enType = SMGR_TDEMUX_DATA_TYPE_AUDIO,
                    .enCompressionType = SMGR_TDEMUX_COMPRESSION_TYPE_MP2,
                    .tsStreamId = 0xC0,
                    .tsPid = 482,
                    .nTimebaseNum = 1,
                    .nTimebaseDen = 90000,
                    .nPTS = AUDIO_PTS,
                    .nDTS = AUDIO_PTS,
                    .tCounters =
                        {
                            .nNumReceivedPackets = MP2_RECEIVED,
                            .nNumReceivedBytes = MP2_RECEIVED * MP2_FRAME_BYTES,
                            .tLastReceivedPacket = SCRAMBLED_AT,
                            .nNumOutputPackets = MP2_RECEIVED,
                            .nNumOutputBytes = MP2_RECEIVED * MP2_FRAME_BYTES,
                            .tLastOutputPacket = SCRAMBLED_AT,
                            .iLastTxTime = SCRAMBLED_AT,
                            .nNumNoPTSValueFrames = 12,
                            .tLastNoPTSValueFrames = BURST_AT,
                        },
                    .nAudioPairNum = 1,
                },
                {
                    .enType = SMGR_TDEMUX_DATA_TYPE_KLV,
                    .enCompressionType = SMGR_TDEMUX_COMPRESSION_TYPE_UNCOMPRESSED,
                    .tsStreamId = 0xBD,
                    .tsPid = 497,
                    .nTimebaseNum = 1,
                    .nTimebaseDen = 90000,
                    .tCounters =
                        {
                            .nNumReceivedPackets = KLV_RECEIVED,
                            .nNumReceivedBytes = KLV_RECEIVED * KLV_BYTES,
                            .tLastReceivedPacket = SCRAMBLED_AT,
                            .nNumOutputPackets = KLV_RECEIVED,
                            .nNumOutputBytes = KLV_RECEIVED * KLV_BYTES,
                            .tLastOutputPacket = SCRAMBLED_AT,
                            .iLastTxTime = SCRAMBLED_AT,
                            .nNumNoPTSValueFrames = KLV_RECEIVED,
                            .tLastNoPTSValueFrames = SCRAMBLED_AT,
                            .nNumNoDTSValueFrames = KLV_RECEIVED,
                            .tLastNoDTSValueFrames = SCRAMBLED_AT,
                        },
                },
            },
        .tCounters =
            {
                .nNumReceivedPackets = DATAGRAMS,
                .nNumReceivedBytes = DATAGRAMS * DATAGRAM_BYTES,
                .tLastReceivedPacket = tNow,
                .nRxPacketToPacketIntervalUs = 1000000L / DATAGRAMS_PER_SECOND,
                .nMaxRxPacketToPacketIntervalUs = 4211800,
                .tMaxRxPacketToPacketInterval = OUTAGE_AT,
                .nExternalRxPacketToPacketIntervalUs = 1302,
                .nMaxExternalRxPacketToPacketIntervalUs = 4213350,
                .tMaxExternalRxPacketToPacketInterval = OUTAGE_AT,
                .nNumOutputPackets = VIDEO_RECEIVED + MP2_RECEIVED + KLV_RECEIVED,
                .nNumOutputBytes = (OLD_PICTURES - PICTURES_LOST) * PICTURE_BYTES + NEW_PICTURES * NEW_PICTURE_BYTES +
                                   MP2_RECEIVED * MP2_FRAME_BYTES + KLV_RECEIVED * KLV_BYTES,
                .tLastOutputPacket = SCRAMBLED_AT,
                .nNumDroppedPackets = UNDECRYPTED + DISCARDED,
                .nNumDroppedBytes = (UNDECRYPTED + DISCARDED) * DATAGRAM_BYTES,
                .tLastDroppedPacket = tNow,
                .nNumErrors = 23,
                .tLastError = OUTAGE_AT,
                .nNumTSCorruptedFrames = 1317,
                .tLastTSCorruptedFrame = BURST_AT,
                .nNumPESSizeMismatches = 244,
                .tLastPESSizeMismatch = BURST_AT,
                .nNumLostSegmentsMPEG2TS = 4410,
                .tLastLostSegmentMPEG2TS = BURST_AT,
                .nNumReconnections = CONNECTIONS,
                .tLastReconnection = SCRAMBLED_AT,
                .nNumFailovers = 2,
                .tLastFailover = tNow - 5400,
                .nNumTimestampRollovers = 1,
                .tLastTimestampRollover = WRAPPED_AT,
                .nNumFramesWithNoPCR = 64,
                .tLastFrameWithNoPCR = BURST_AT,
                .nNumFramesWithPTSLowerThanPCR = 905,
                .tLastFrameWithPTSLowerThanPCR = BURST_AT,
                .nNumNewStreamFlags = CONNECTIONS + 1,
                .tLastNewStreamFlag = UNSUPPORTED_AT,
                .nNumResumedStreamFlags = CONNECTIONS - 2, /* not since the passphrase changed */
                .tLastResumedStreamFlag = OUTAGE_AT,
                .iLastPIDDropped = 481,
                .iLastError = EAI_AGAIN, /* while the connection was down, its sender's name could not be resolved */
                .iLastErrorTime = OUTAGE_AT,
                .iLastCorruptedFrameTime = BURST_AT,
                .nBitsPerSecond = TS_BITS_PER_SECOND,
                .TimeStamp = VIDEO_PTS,
                .iLastRxTime = tNow,
                .nNumStreams = 4,
                .nVideoStreams = 1,
                .nAudioStreams = 2,
                .nKLVStreams = 1,
                .nFilteredStreams = 1,
                .nInputPacketListSize = 96 * DATAGRAM_BYTES,
                .nMaxInputPacketListSize = 4096 * DATAGRAM_BYTES,
                .tMaxInputPacketListSize = BURST_AT,
                .nInputPacketListOverflows = 5,
                .tLastInputPacketListOverflow = BURST_AT,
                .nReadPacketListSize = 0,
                .nMaxReadPacketListSize = 1024 * DATAGRAM_BYTES,
                .tMaxReadPacketListSize = BURST_AT,
                .nReadPacketListOverflows = 2,
                .tLastReadPacketListOverflow = BURST_AT,
            },
        .Xport =
            {
                .SRT =
                    {
                        .Dir =
                            {
                                .Rx =
                                    {
                                        .nRecvKbps = TS_BITS_PER_SECOND / 1000,
                                        .nRecvPkts = DATAGRAMS,
                                        .nRecvBytes = DATAGRAMS * DATAGRAM_BYTES,
                                        .nUndecryptedPkts = UNDECRYPTED,
                                        .nUndecryptedBytes = UNDECRYPTED * DATAGRAM_BYTES,
                                    },
                            },
                        .nLostPkts = SRT_LOST,
                        .nDroppedPkts = SRT_TOO_LATE,
                        .nDroppedBytes = SRT_TOO_LATE * DATAGRAM_BYTES,
                        .nXmitAckPkts = (UP_TIME - OUTAGE) * 100,
                        .nXmitNakPkts = 48107,
                        .iReconnects = CONNECTIONS,
                        .iMSS = 1500,
                        .iLatency = SRT_LATENCY,
                        .iMaxBw = 12000,
                        .iAvailBw = 9100,
                        .iKeyState = SMGR_STREAM_SRT_KM_S_BADSECRET,
                        .iKeyLength = 32,
                        .iRTT = 187420,
                        .iBufPkts = SRT_BUFFERED,
                        .iBufBytes = SRT_BUFFERED * DATAGRAM_BYTES,
                        .iBufTimespan = SRT_LATENCY - 1,
                        .iRemotePort = REMOTE_PORT,
                        .iLocalPort = LOCAL_PORT,
                        .iOutPortGettingFullCnt = 16,
                        .iMaxOutPortLevel = 4096,
                        .iVersion = 0x010404,
                        .iPeerVersion = 0x010302,
                    },
            },
    };

    pRecords->tVFramer = (SMGR_VFRAMER_STATS){
        .enState = SMGR_VFRAMER_STATE_UNSUPPORTED,
        .nDecoderID = DECODER_ID,
        .nStreamID = STREAM_ID,
        .tCurrentProperties =
            {
                .enCompressionType = SMGR_TDEMUX_COMPRESSION_TYPE_H264,
                .enColorType = SMGR_VIDEO_COLOR_TYPE_422_10BIT,
                .nProfile = 122,
                .nLevel = 51,
                .nWidth = 3840,
                .nHeight = 2160,
                .fFrameRate = 25.0F,
                .bFrameRateFoundInStream = TRUE,
                .nBitsPerSecond = VIDEO_BITS,
                .szFraming = "IP",
                .nGopInterval = NEW_PICTURES_PER_SECOND,
                .nSliceCountPerFrame = 8,
                .bHasIFrames = TRUE,
                .bHasPFrames = TRUE,
                .TimeStamp = VIDEO_PTS,
                .TimeStampDelta = 90000L / NEW_PICTURES_PER_SECOND,
                .bCompatibilityModeEnabled = TRUE,
                .nLatencyInUs = 41300,
                .bCCPresent = TRUE,
                .bAFDPresent = TRUE,
                .enHDRType = SMGR_VFRAMER_HDR_TYPE_SDR,
                .enHDRTypeInStream = SMGR_VFRAMER_HDR_TYPE_HLG,
                .colour_primaries = 9, /* BT.2020 */
                .transfer_characteristics = 18,
                .matrix_coefficients = 9,
            },
        .tPreviousProperties =
            {
                .enCompressionType = SMGR_TDEMUX_COMPRESSION_TYPE_H264,
                .enColorType = SMGR_VIDEO_COLOR_TYPE_420_8BIT,
                .nProfile = 100,
                .nLevel = 42,
                .nWidth = WIDTH,
                .nHeight = HEIGHT,
                .fFrameRate = PICTURES_PER_SECOND,
                .nBitsPerSecond = VIDEO_BITS,
                .szFraming = "IP",
                .nGopInterval = GOP_LENGTH,
                .nSliceCountPerFrame = SLICES,
                .bHasIFrames = TRUE,
                .bHasPFrames = TRUE,
                .TimeStamp = VIDEO_TS_SHOWN,
                .TimeStampDelta = PICTURE_TICKS,
                .bCompatibilityModeEnabled = TRUE,
                .nLatencyInUs = 20800,
                .bCCPresent = TRUE,
                .bAFDPresent = TRUE,
                .enHDRType = SMGR_VFRAMER_HDR_TYPE_SDR,
                .enHDRTypeInStream = SMGR_VFRAMER_HDR_TYPE_UNSPECIFIED,
                .colour_primaries = 2,
                .transfer_characteristics = 2,
                .matrix_coefficients = 2,
                .szPayloadID = {0x89, 0xC9, 0x80, 0x01}, /* 1080 lines at 3 Gbit/s, 50 progressive, 16:9, 10-bit */
            },
        .tCounters =
            {
                .tLastVideoFrameReceived = SCRAMBLED_AT,
                .nNumStreamIDTransitions = 3,
                .tLastStreamIDTransition = tNow - 5400,
                .nNumFormatTransitions = 5,
                .tLastFormatTransition = UNSUPPORTED_AT,
                .nNumUnsupported = 2,
                .tLastUnsupported = UNSUPPORTED_AT,
                .nLastUnsupportedErrorCode = SMGR_ERROR_UNSUPPORTED_SECOND_4K_H264_422_10BIT_VIDEO,
                .nNumH264Compression = 4,
                .tLastH264Compression = UNSUPPORTED_AT,
                .nNumUnknownCompression = 1,
                .tLastUnknownCompression = BURST_AT,
                .nNum420_8bitColortype = 3,
                .tLast420_8bitColortype = BURST_AT,
                .nNum422_10bitColortype = 1,
                .tLast422_10bitColortype = UNSUPPORTED_AT,
                .nNumUnknownColortype = 1,
                .tLastUnknownColortype = BURST_AT,
                .nNumInputPackets = VIDEO_RELEASED,
                .nNumInputPacketsFreed = VIDEO_RELEASED,
                .nNumInputPacketsDropped = NEW_PICTURES,
                .tLastInputPacketDropped = SCRAMBLED_AT,
                .nNumOutputFrames = VIDEO_FRAMED,
                .tLastOutputFrame = UNSUPPORTED_AT,
                .nNumOutputFramesOnePiece = VIDEO_FRAMED - PIECED_TOGETHER,
                .tLastOutputFrameOnePiece = UNSUPPORTED_AT,
                .nNumOutputFramesAssembled = PIECED_TOGETHER,
                .tLastOutputFrameAssembled = BURST_AT,
                .nNumOutputFramesDropped = PICTURES_UNPARSED,
                .tLastOutputFrameDropped = BURST_AT,
                .nNumOutputBytesToDecoder = VIDEO_FRAMED * PICTURE_BYTES,
                .nNumOutputBytesDropped = PICTURES_UNPARSED * PICTURE_BYTES,
                .nNumKeyFrames = KEY_FRAMES,
                .tLastKeyFrame = UNSUPPORTED_AT,
                .nNumIPictures = KEY_FRAMES,
                .tLastIPicture = UNSUPPORTED_AT,
                .nNumPPictures = VIDEO_FRAMED - KEY_FRAMES - 11,
                .tLastPPicture = UNSUPPORTED_AT,
                .nNumUnknownPictures = 11,
                .tLastUnknownPicture = BURST_AT,
                .nNumProgressivePicStruct = VIDEO_FRAMED - 11,
                .tLastProgressivePicStruct = UNSUPPORTED_AT,
                .nNumUnknownPicStruct = 11,
                .tLastUnknownPicStruct = BURST_AT,
                .nNumSPSNALs = KEY_FRAMES,
                .tLastSPSNAL = UNSUPPORTED_AT,
                .nNumPPSNALs = KEY_FRAMES,
                .tLastPPSNAL = UNSUPPORTED_AT,
                .nNumSEINALs = VIDEO_FRAMED,
                .tLastSEINAL = UNSUPPORTED_AT,
                .nNumSHNALs = VIDEO_FRAMED * SLICES,
                .tLastSHNAL = UNSUPPORTED_AT,
                .nNumFillerNALs = 3127,
                .tLastFillerNAL = UNSUPPORTED_AT - 8,
                .nNumUnknownNALs = 87,
                .tLastUnknownNAL = BURST_AT,
                .nNumSPSErrors = 4,
                .tLastSPSError = BURST_AT,
                .nNumPPSErrors = 3,
                .tLastPPSError = BURST_AT,
                .nNumSEIErrors = 40,
                .tLastSEIError = BURST_AT,
                .nNumSHErrors = 49,
                .tLastSHError = BURST_AT,
                .nNumNoNALsInFrame = 17,
                .tLastNoNALsInFrame = BURST_AT,
                .nNumCC = VIDEO_FRAMED,
                .nNumCCBytesOutput = VIDEO_FRAMED * 73,
                .tLastCCReceived = UNSUPPORTED_AT,
                .nNumAFD = VIDEO_FRAMED,
                .nNumAFDBytesOutput = VIDEO_FRAMED * 8,
                .tLastAFDReceived = UNSUPPORTED_AT,
                .nMaxInputPacketListSize = 60 * PICTURE_BYTES,
                .tMaxInputPacketListSize = BURST_AT,
                .nInputPacketListOverflows = 3,
                .tLastInputPacketListOverflow = BURST_AT,
                .nMaxOutputPacketListSize = 40 * PICTURE_BYTES,
                .tMaxOutputPacketListSize = BURST_AT,
                .nOutputPacketListOverflows = 1,
                .tLastOutputPacketListOverflow = BURST_AT,
            },
    };

    pRecords->tVideoDecoder = (SMGR_VCUDEC_STATS){
        .nSize = sizeof(SMGR_VCUDEC_STATS),
        .enState = SMGR_VCUDEC_STATE_IDLE_VCU_LACK_OF_MEMORY,
        .nLatencyInUs = DECODER_DELAY * 1000,
        .nDisplayFormat = VIDEO_FORMAT_1920_1080_50P,
        .bHasChroma = TRUE,
        .nFrameBufferWidth = WIDTH,
        .nFrameBufferHeight = CODED_HEIGHT,
        .nFrameBufferSizeEachInBytes = WIDTH * CODED_HEIGHT * 3 / 2, /* 4:2:0, 8 bits */
        .nFrameBufferNumber = 9,
        .nFrameBufferNumberInUsed = 6, /* too few */
        .nFrameBufferBitDepthY = 8,
        .nFrameBufferBitDepthC = 8,
        .bCropping = TRUE,
        .nCropOffsetBottom = CODED_HEIGHT - HEIGHT,
        .enPicStructure = VCUDEC_PICSTRUCTURE_FRAME,
        .bVDelayInputEstimateShortDelay = TRUE,
        .nVDelayInputMS = 38,
        .nVDelayInputMSAvg = 31,
        .nVMaxDelayInputMS = IN_MAX,
        .nVMinDelayInputMS = IN_MIN,
        .nVMaxReOrderLen = 1,
        .nVDelayOutputMS = OUT_NOW,
        .nVDelayOutputMSAvg = OUT_AVERAGE,
        .nVMaxDelayOutputMS = OUT_MAX,
        .nVMinDelayOutputMS = OUT_MIN,
        .nVMaxDelayWithinVCUMS = 171,
        .nVMinDelayWithinVCUMS = 92,
        .nVMaxBDListLen = 1,
        .nVTheoDelayHwOutputMS = VIDEO_STC_LEAD,
        .nVDelayHwOutputMS = 131,
        .nVDelayHwOutputFrameMS = 149,
        .nVDecInputJitterMS = IN_MAX - IN_MIN,
        .nVDecMaxInputJitterMS = 214,
        .nVDecOutputJitterMS = OUT_MAX - OUT_MIN,
        .nVDecJitterMS = DECODER_JITTER,
        .nVDecLatencyMS = DECODER_DELAY,
        .nVKeyDecDelayMS = 62,
        .enStillImageType = 2,
        .bStillImageActive = TRUE,
        .tCounters =
            {
                .nNumReceivedFrames = VIDEO_FRAMED,
                .tLastReceivedFrame = UNSUPPORTED_AT,
                .nNumReceivedFramesFreed = VIDEO_FRAMED,
                .tLastReceivedFrameFreed = UNSUPPORTED_AT,
                .nNumFramesSentToDecoder = VIDEO_DECODED,
                .tLastFrameSentToDecoder = UNSUPPORTED_AT,
                .nNumDroppedFrames = PICTURES_DROPPED,
                .tLastDroppedFrame = BURST_AT,
                .nNumDroppedIFrames = DROPPED_I,
                .tLastDroppedIFrame = BURST_AT,
                .nNumDroppedPFrames = DROPPED_P,
                .tLastDroppedPFrame = BURST_AT,
                .nNumDroppedBFrames = DROPPED_B,
                .nNumDecodedFrames = VIDEO_DECODED,
                .tLastDecodedFrame = UNSUPPORTED_AT,
                .nNumConcealedFrames = PICTURES_CONCEALED,
                .tLastConcealedFrame = BURST_AT,
                .nNumResyncForLostOfAVSync = 12,
                .tLastResyncForLostOfAVSync = BURST_AT,
                .nNumFramesSentToDisplay = VIDEO_OUTPUT,
                .tLastFrameSentToDisplay = UNSUPPORTED_AT,
                .nNumDisplayedOutputFrames = VIDEO_DISPLAYED,
                .tLastDisplayedOutputFrame = UNSUPPORTED_AT,
                .nNumSkippedOutputFrames = VIDEO_SKIPPED,
                .tLastSkippedOutputFrame = UNSUPPORTED_AT,
                .nNumReplayedOutputFrames = VIDEO_REPLAYED,
                .tLastReplayedOutputFrame = UNSUPPORTED_AT,
                .nNumDisplayedFramesFreed = VIDEO_DISPLAYED,
                .tLastDisplayedFrameFreed = UNSUPPORTED_AT,
                .nNumOutputErrors = OUTPUT_ERRORS,
                .tLastOutputError = BURST_AT,
                .nNumOutputLate = VIDEO_LATE,
                .tLastOutputLate = UNSUPPORTED_AT,
                .nOutputSTCLeadTime = VIDEO_STC_LEAD - OUT_NOW,
                .nMinOutputSTCLeadTime = -410,
                .tMinOutputSTCLeadTime = BURST_AT,
                .nMaxOutputSTCLeadTime = 31,
                .tMaxOutputSTCLeadTime = tStart + 40,
                .nNumReorderFramesIn = VIDEO_DECODED,
                .tLastReorderFrameIn = UNSUPPORTED_AT,
                .nNumReorderFramesOut = VIDEO_OUTPUT,
                .tLastReorderFrameOut = UNSUPPORTED_AT,
                .nNumReorderFramesExtractCalls = VIDEO_DECODED,
                .tLastReorderFramesExtractCall = UNSUPPORTED_AT,
                .nNumReorderFramesFlushCalls = CONNECTIONS,
                .tLastReorderFramesFlushCall = UNSUPPORTED_AT,
                .nNumInputParsedCallbacks = VIDEO_DECODED,
                .tLastInputParsedCallback = UNSUPPORTED_AT,
                .nNumResolutionFoundCallbacks = 4,
                .tLastResolutionFoundCallback = BURST_AT,
                .nNumDecodedCallbacks = VIDEO_DECODED,
                .tLastDecodedCallback = UNSUPPORTED_AT,
                .nNumDisplayCallbacks = VIDEO_DECODED,
                .tLastDisplayCallback = UNSUPPORTED_AT,
                .nNumSEICallbacks = VIDEO_DECODED,
                .tLastSEICallback = UNSUPPORTED_AT,
                .nMaxPushedQueueOccupancy = 24,
                .nNumImageCaptures = 1,
                .tLastImageCapture = tNow - 2600,
                .nNumImageCapturesFailed = 3,
                .tLastImageCaptureFailed = tNow - 70,
                .iLastErrorTime = UNSUPPORTED_AT,
                .nLastErrorCode = 7,
                .nNumEOSEvents = 3,
                .tLastEOSEvent = UNSUPPORTED_AT,
                .nNumExitErrors = 1,
                .tLastExitError = UNSUPPORTED_AT,
                .nNumNoInfoErrors = DISPLAY_REFUSED,
                .tLastNoInfoError = BURST_AT,
                .nNumDiscontinuty = 118,
                .tLastDiscontinuity = BURST_AT,
                .nNumOfFrmNotRelease = 5,
                .tLastNumOfFrmNotRelease = UNSUPPORTED_AT,
                .nOutputTimestampNotIncreasing = 26,
                .tLastOutputTimestampNotIncreasing = BURST_AT,
                .nOutputTimestampsMissing = 37,
                .tLastOutputTimestampMissing = BURST_AT,
                .nNumStillImages = CONNECTIONS + 1,
                .nMaxStillImageTimeOn = UNSUPPORTED_FOR - 2,
                .tLastStillImageOn = UNSUPPORTED_AT + 2,
                .tLastStillImageOff = BURST_AT,
            },
    };

    pRecords->tAudio = (SMGR_DECODER_AUDIO_STATS){
        .nSize = sizeof(SMGR_DECODER_AUDIO_STATS),
        .enState = SMGR_AUDDEC_STATE_ACTIVE,
        .nNumOfPairs = 1,
        .nReceivedFrames = MP2_RELEASED,
        .tLastReceivedFrame = SCRAMBLED_AT,
        .nDecodedFrames = MP2_DECODED,
        .tLastDecodedFrame = SCRAMBLED_AT,
        .nOutputFrames = MP2_PLAYED,
        .tLastOutputFrame = SCRAMBLED_AT,
        .nSkippedFrames = MP2_SKIPPED,
        .tLastSkippedFrame = SCRAMBLED_AT - 3,
        .nOutputErrors = MP2_REFUSED,
        .tLastOutputError = BURST_AT,
        .nReleasedFrames = MP2_RELEASED,
        .tLastReleasedFrame = SCRAMBLED_AT,
        .nErrors = MP2_ERRORS,
        .nTSDiscontinuity = 208,
        .nADelayInputMS = 3,
        .nADelayOutputMS = 41,
        .nARxFramesJitterMS = 71,
        .nALastMaxRxFramesJitterMS = 233,
        .PairStats =
            {
                {
                    .nSize = sizeof(SMGR_AUDIO_PAIR_STATS),
                    .enMode = 1,
                    .enAlgorithm = SMGR_TDEMUX_COMPRESSION_TYPE_MP2,
                    .nSampleRateIn = SAMPLE_RATE,
                    .nBitRateInKbps = MP2_BITS / 1000,
                    .nInputChannels = 2,
                    .nOutputChannels = 2,
                    .nReceivedFrames = MP2_RELEASED,
                    .tLastReceivedFrame = SCRAMBLED_AT,
                    .nDecodedFrames = MP2_DECODED,
                    .tLastDecodedFrame = SCRAMBLED_AT,
                    .nDecodedBytes = MP2_DECODED * MP2_FRAME_BYTES,
                    .nOutputFrames = MP2_PLAYED,
                    .tLastOutputFrame = SCRAMBLED_AT,
                    .nSampleRateOut = SAMPLE_RATE,
                    .nSkippedFrames = MP2_SKIPPED,
                    .tLastSkippedFrame = SCRAMBLED_AT - 3,
                    .nDecoderErrors = MP2_ERRORS,
                    .tLastDecoderError = BURST_AT,
                    .nOutputErrors = MP2_REFUSED,
                    .tLastOutputError = BURST_AT,
                    .nMaxOutQueueLen = 31,
                    .nCurFpgaWteId = 19,
                    .nCurFpgaReadId = 19,
                    .nTSDiscontinuity = 208,
                    .tLastIntervalTime = {.tv_sec = SCRAMBLED_AT, .tv_nsec = 112400000},
                    .nMinWteToFpgaIntervalInMs = 2,
                    .nMaxWteToFpgaIntervalInMs = 4236,
                    .nLastWteToFpgaIntervalInMs = 58,
                    .iAudioVideoTSDiffInMs = (AUDIO_TS_PLAYED - VIDEO_TS_SHOWN) / TICKS(1),
                    .nAudioTimeStamp = AUDIO_TS_PLAYED,
                    .nVideoTimeStamp = VIDEO_TS_SHOWN,
                    .iLastError = -5,
                    .nInTSDiscontinuity = 191,
                    .nCurSTCLeadTimeMs = -17,
                    .nMinSTCLeadTimeMs = -388,
                    .tMinSTCLeadTime = BURST_AT,
                    .nMaxSTCLeadTimeMs = 64,
                    .tMaxSTCLeadTime = tStart + 40,
                    .tLastRxFrameTime = {.tv_sec = SCRAMBLED_AT, .tv_nsec = 40900000},
                    .nLastProcessTimeUs = 2210,
                    .nMinProcessTimeUs = 390,
                    .tMinProcessTime = tStart + 410,
                    .nMaxProcessTimeUs = 48300,
                    .tMaxProcessTime = BURST_AT,
                },
            },
    };
    for (size_t i = 1; i < SMGR_AUDIO_MAX_PAIRS; ++i) pRecords->tAudio.PairStats[i].nSize = sizeof(SMGR_AUDIO_PAIR_STATS);

    pRecords->tMetadata = (SMGR_METADATADEC_STATS){
        .enState = SMGR_METADATA_STATE_ACTIVE,
        .nDecoderID = DECODER_ID,
        .tChannel =
            {
                {
                    .szName = "KLV",
                    .enType = SMGR_METADATA_CHANNEL_TYPE_KLV,
                    .enState = SMGR_METADATA_STATE_ACTIVE,
                    .nLatencyInUs = 212000,
                    .tCounters =
                        {
                            .nNumInputPackets = KLV_RELEASED,
                            .tLastInputPacket = SCRAMBLED_AT,
                            .nNumAsynchronousPackets = KLV_RELEASED,
                            .tLastAsynchronousPacket = SCRAMBLED_AT,
                            .nNumOutputPackets = KLV_OUTPUT,
                            .tLastOutputPacket = SCRAMBLED_AT,
                            .nNumFreedPackets = KLV_RELEASED,
                            .tLastFreedPacket = SCRAMBLED_AT,
                            .nNumDroppedPackets = KLV_DROPPED,
                            .tLastDroppedPacket = BURST_AT,
                            .nNumOutputFailedPackets = KLV_FAILED,
                            .tLastOutputFailedPacket = BURST_AT,
                            .nNumOutputFailedLatePackets = KLV_LATE,
                            .tLastOutputFailedLatePacket = BURST_AT,
                            .nNumOutputPayloadBytes = KLV_OUTPUT * KLV_BYTES,
                            .nMaxOutputPayloadBytes = 196,
                            .tMaxOutputPayloadBytes = tStart + 2000,
                            .nNumNonIncreasingOutputTimestamps = 13,
                            .tLastNonIncreasingOutputTimestamp = BURST_AT,
                            .nNumErrors = 6,
                            .tLastOutputTime = SCRAMBLED_AT,
                            .nNumPacketListResets = CONNECTIONS - 1,
                            .tLastPacketListReset = BURST_AT,
                            .nNumBDAllocated = KLV_OUTPUT,
                            .tLastBDAllocated = SCRAMBLED_AT,
                            .nNumBDAllocateFailed = KLV_FAILED - KLV_LATE,
                            .tLastBDAllocateFailed = BURST_AT,
                            .nNumBDWritten = KLV_OUTPUT,
                            .tLastBDWritten = SCRAMBLED_AT,
                            .nNumBDFreed = KLV_OUTPUT,
                            .tLastBDFreed = SCRAMBLED_AT,
                            .nNumBDInFreeList = SAMPLES_DESCRIPTORS,
                            .nBDFreeListHeadIndex = 27,
                            .nBDUsedListHeadIndex = -1,
                            .nNumOutputLate = 341,
                            .tLastOutputLate = SCRAMBLED_AT - 4,
                            .nOutputSTCLeadTime = -26,
                            .nMinOutputSTCLeadTime = -402,
                            .tMinOutputSTCLeadTime = BURST_AT,
                            .nMaxOutputSTCLeadTime = 44,
                            .tMaxOutputSTCLeadTime = tStart + 40,
                        },
                },
                samples_idle_channel("TC", SMGR_METADATA_CHANNEL_TYPE_TC),
                samples_idle_channel("CC", SMGR_METADATA_CHANNEL_TYPE_CC),
                samples_idle_channel("AFD", SMGR_METADATA_CHANNEL_TYPE_AFD),
            },
        .tCounters = {.nNumReceivedPackets = KLV_RELEASED},
    };

    pRecords->tBuffering = (SMGR_CBUFFERING_STATS){
        .nDecoderID = DECODER_ID,
        .enStatus = SMGR_CBUFFERING_STATUS_ACTIVE,
        .enBufferingMode = SMGR_DECSDI_BUFFERING_FIXED,
        .nFixedDelayMs = FIXED_DELAY,
        .nMultiSyncDelayMs = 1000,
        .nMinDelayMs = MIN_DELAY,
        .nMaxDelayMs = 3000,
        .nPCR = PCR_LAST,
        .nSTC = STC_NOW,
        .tAutomatic =
            {
                .nMaxInputJitterMs = 388,
                .tMaxInputJitterChanged = BURST_AT,
                .nNonVideoLateMs = 74,
                .nNonVideoLateMaxMs = 512,
                .tNonVideoLateMax = BURST_AT,
                .nVideoDecoderLatencyMs = DECODER_DELAY,
                .nVideoDecoderLatencyMaxMs = 305,
                .tVideoDecoderLatencyMax = BURST_AT,
                .nVideoDecoderJitterMs = DECODER_JITTER,
                .nVideoDecoderJitterMaxMs = 240,
                .tVideoDecoderJitterMax = BURST_AT,
                .nVideoSTCLeadTimeAvgActualMs = -31,
                .nVideoSTCLeadTimeMinActualMs = -410,
                .nVideoSTCLeadTimeMaxActualMs = 152,
                .nAudioSTCLeadTimeAvgActualMs = -17,
                .nAudioSTCLeadTimeMinActualMs = -388,
                .nAudioSTCLeadTimeMaxActualMs = 107,
                .nHardwareDelayMs = HARDWARE_DELAY,
                .tLastVideoSkipReplayTime = UNSUPPORTED_AT,
                .tLastAudioSkipTime = SCRAMBLED_AT - 3,
            },
        .bBufferingDelaySet = TRUE,
        .nSTCtoPCRLeadTimeMs = STC_AHEAD_NOW,
        .nSetDelayMs = VIDEO_STC_LEAD,
        .tChannel =
            {
                {
                    .enType = SMGR_TDEMUX_DATA_TYPE_VIDEO,
                    .nBufferingDelayTimeMs = VIDEO_LATENCY - VIDEO_STC_LEAD,
                    .nSTCLeadTimeMsSet = VIDEO_STC_LEAD,
                    .nTotalOutputLatencyMs = VIDEO_LATENCY,
                    .nPCRtoPTSTimeMsActual = VIDEO_PCR_TO_PTS,
                    .nJitterTimeMsActual = 93,
                    .nJitterTimeMsSet = 40,
                    .nJitterTimeMsMaximum = 388,
                    .TimeStamp = VIDEO_PTS,
                    .tLastOutputTime = SCRAMBLED_AT,
                    .tCounters =
                        {
                            .nNumReceivedPackets = VIDEO_RECEIVED,
                            .nNumOutputPackets = VIDEO_RELEASED,
                            .nMaxQueueOccupancyFrames = 212,
                        },
                },
                {
                    .enType = SMGR_TDEMUX_DATA_TYPE_AUDIO,
                    .nBufferingDelayTimeMs = AUDIO_LATENCY - AUDIO_STC_LEAD,
                    .nSTCLeadTimeMsSet = AUDIO_STC_LEAD,
                    .nTotalOutputLatencyMs = AUDIO_LATENCY,
                    .nPCRtoPTSTimeMsActual = AUDIO_PCR_TO_PTS,
                    .nJitterTimeMsActual = 71,
                    .nJitterTimeMsSet = 40,
                    .nJitterTimeMsMaximum = 233,
                    .TimeStamp = AUDIO_PTS,
                    .tLastOutputTime = SCRAMBLED_AT,
                    .tCounters =
                        {
                            .nNumReceivedPackets = MP2_RECEIVED,
                            .nNumOutputPackets = MP2_RELEASED,
                            .nMaxQueueOccupancyFrames = 177,
                        },
                },
                {
                    .enType = SMGR_TDEMUX_DATA_TYPE_KLV,
                    .nSTCLeadTimeMsSet = 20,
                    .nTotalOutputLatencyMs = 20,
                    .nJitterTimeMsActual = 82,
                    .nJitterTimeMsSet = 40,
                    .nJitterTimeMsMaximum = 301,
                    .TimeStamp = PCR_LAST,
                    .tLastOutputTime = SCRAMBLED_AT,
                    .tCounters =
                        {
                            .nNumReceivedPackets = KLV_RECEIVED,
                            .nNumOutputPackets = KLV_RELEASED,
                            .nMaxQueueOccupancyFrames = 21,
                        },
                },
            },
        .tCounters =
            {
                .nNumReceivedPackets = VIDEO_RECEIVED + MP2_RECEIVED + KLV_RECEIVED,
                .tLastReceivedPacket = SCRAMBLED_AT,
                .nNumOutputPackets = VIDEO_RELEASED + MP2_RELEASED + KLV_RELEASED,
                .tLastOutputPacket = SCRAMBLED_AT,
                .nNumDroppedPackets = VIDEO_OVERFLOWED + MP2_OVERFLOW + KLV_UNTIMED,
                .tLastDroppedPacket = BURST_AT,
                .nNumUnknownPackets = 19,
                .tLastUnknownPacket = UNSUPPORTED_AT,
                .nNumPCRPackets = PCRS,
                .nNumPCRUpdates = PCRS - PCRS_REFUSED,
                .tLastPCRUpdate = SCRAMBLED_AT,
                .nNumSTCUpdates = 9104,
                .tLastSTCUpdate = SCRAMBLED_AT,
                .nNumBufferingAdjustments = 166,
                .tLastBufferingAdjustmentTime = BURST_AT,
                .nNumSTCLeadTimeAdjustments = 58,
                .tLastSTCLeadTimeAdjustmentTime = BURST_AT,
                .nNumLateOutputs = VIDEO_LATE,
                .nMaxLateOutputMs = 410,
                .nMaxLateOutputBurstFrms = 73,
                .tLastLateOutput = UNSUPPORTED_AT,
                .nNumResets = CONNECTIONS + 2,
                .tLastReset = UNSUPPORTED_AT,
                .nMaxBufferingOccupancyBytes = 212 * PICTURE_BYTES + 177 * MP2_FRAME_BYTES + 21 * KLV_BYTES,
                .tMaxBufferingOccupancyBytes = BURST_AT,
                .nBufferingOverflows = 8,
                .tLastBufferingOverflow = BURST_AT,
                .nSynthesizedAsyncTimestamps = KLV_RELEASED,
                .tLastSynthesizedAsyncTimestamp = SCRAMBLED_AT,
                .nSynthesizedAsyncTimestampFails = KLV_UNTIMED,
                .tLastSynthesizedAsyncTimestampFail = BURST_AT,
            },
    };

    pRecords->tClockRecovery = (SMGR_DECODER_CLOCK_RECOVERY_STATS){
        .TrackingStarted = 1,
        .SampleCount = 4210, /* since the last resynchronisation */
        .ReSyncCount = CONNECTIONS + 4,
        .PcrUpdates = PCRS - PCRS_REFUSED,
        .tLastPcrUpdate = SCRAMBLED_AT,
        .OldSndClk = PCR_LAST,
        .OldRcvClk = PCR_LAST + TICKS(STC_AHEAD_OF_PCR),
        .OldDeltaSnd = 90000L / PCRS_PER_SECOND,
        .FilterDeltaSnd = 90000L / PCRS_PER_SECOND + 210,
        .OldDeltaClk = -TICKS(STC_AHEAD_OF_PCR),
        .FilterDeltaClk = -TICKS(STC_AHEAD_OF_PCR) + 430,
        .OldPll = NOMINAL_STC + 3240,
        .StcClkNominal = NOMINAL_STC,
        .trackingMode = SMGR_CLOCK_TRACKING_ENABLED,
        .PllNotSettled = 1,
        .curPllAvg = NOMINAL_STC + STC_DEVIATION,
        .curPllMin = NOMINAL_STC + 1200,
        .curPllMax = NOMINAL_STC + 3900,
        .curPLLDevHz = STC_DEVIATION,
        .curPLLDevPpm = STC_DEVIATION / 27,
        .curPLLDevPpmNominal = 3240 / 27,
        .curPLLDevPpmFract = STC_DEVIATION * 100 / 27 % 100,
        .avgDevHz = STC_ADJUSTMENT,
        .avgDevPpm = STC_ADJUSTMENT / 27,
        .avgDevPpmFract = STC_ADJUSTMENT * 100 / 27 % 100,
        .pcrLateCount = 37,
        .pcrLateMaxValue = 4210,
        .pcrJitterErrCount = 212,
        .pcrJitterErr = -48,
        .pcrJitterMaxErrValue = 640,
        .curPcr = PCR_LAST,
        .curPcrFpga = STC_NOW,
        .curPcrFpgaDelta = PCR_LAST - STC_NOW,
        .mafDivFactor = 8,
        .pcrTsDelta = TICKS(VIDEO_LATENCY),
        .pcrTsDeltaAud0 = TICKS(AUDIO_LATENCY),
        .pcrTsDeltaKlv = TICKS(20),
        .pcrTsDeltaMinValue = TICKS(-31),
        .pcrTsDeltaMaxValue = TICKS(244),
        .pcrTsDeltaMinMaxDlyMS = 10000,
        .pcrTsDeltaMinExtValue = TICKS(-410),
        .pcrTsDeltaMaxExtValue = TICKS(731),
        .PcrJump = -3200,
        .tLastPcrJump = OUTAGE_AT,
        .PcrJumpMaxValue = -TICKS_WRAP / TICKS(1), /* the wrap-around */
        .tLastPcrJumpMaxValue = WRAPPED_AT,
    };

    pRecords->tUsage = (SMGR_DECODER_SDI_USAGE_STATS){
        .nNumStarts = 3,
        .tLastStart = tStart,
        .nNumStops = 2,
        .tLastStop = tStart - 9,
        .nNumGetStats = 98,
        .tLastGetStat = tNow - 1,
        .nNumGetInfos = 31,
        .tLastGetInfo = tNow - 1,
        .nNumConfigures = 11,
        .tLastConfigure = tNow - 2100,
        .nNumCaptures = 4,
        .tLastCapture = tNow - 70,
        .nNumClears = 2,
        .tLastClear = tStart - 5,
        .nNumLoadConfigs = 2,
        .tLastLoadConfig = tStart - 20,
        .nNumSaveConfigs = 1,
        .tLastSaveConfig = tNow - 2090,
    };

    samples_clear_padding(pRecords);
}
