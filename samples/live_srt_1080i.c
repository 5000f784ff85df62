/**
 * @file live_srt_1080i.c
 * A healthy contribution link: encrypted SRT, H.264 High 4:2:2 10-bit 1080i29.97 at 12 Mbit/s, two AAC pairs, KLV and
 * closed captions. The few packets that the link lost were sent again in time.
 */
#include <sys/socket.h>

#include "scenarios.h"
#include "video_formats.h"

/* Times are in s, ticks are those of the 90 kHz clock. */
#define UP_TIME    (2 * 86400L + 3 * 3600L + 25 * 60L + 40L)
#define TICKS(ms)  ((ms)*90L)
#define TICKS_WRAP (1L << 33) /* width of PTS, DTS and PCR, ISO/IEC 13818-1 */
#define DECODER_ID 1
#define STREAM_ID  3

/* Network: seven transport stream packets of 188 bytes in a datagram. */
#define DATAGRAM_BYTES       (7 * 188L)
#define DATAGRAMS_PER_SECOND 1220L
#define TS_BITS_PER_SECOND   (DATAGRAMS_PER_SECOND * DATAGRAM_BYTES * 8)
#define DATAGRAMS            (UP_TIME * DATAGRAMS_PER_SECOND)
#define SRT_LATENCY          120L /* ms */
#define SRT_BUFFERED         (SRT_LATENCY * DATAGRAMS_PER_SECOND / 1000)
#define SRT_ACKS_PER_SECOND  100L /* one every 10 ms */
#define SRT_LOST             41L  /* all of them sent again in time */
#define SRT_LOST_AT          (tNow - 30 * 3600L)
#define LOCAL_PORT           7001
#define REMOTE_PORT          51544

/* Video: 50050 bytes a frame make exactly 12 Mbit/s at 30000/1001 frames/s. */
#define FRAMES_IN(seconds) ((seconds)*30000L / 1001L)
#define FRAME_BYTES        50050L
#define FRAME_TICKS        3003L
#define VIDEO_BITS         (FRAME_BYTES * 8 * 30000L / 1001L)
#define WIDTH              1920
#define HEIGHT             1080
#define CODED_HEIGHT       1088L /* whole macroblocks */
#define SAMPLES_PER_PIXEL  2L    /* 4:2:2: as many chroma as luma samples */
#define BYTES_PER_SAMPLE   2L    /* 10 bits in 16 */
#define GOP_LENGTH         30L
#define ANCHOR_DISTANCE    3L /* IBBP: every third picture is I or P */
#define SLICES             4L

/* Audio: 512 bytes an AAC frame make exactly 192 kbit/s at 46.875 frames/s. */
#define AUDIO_PAIRS     2L
#define SAMPLE_RATE     48000L
#define AAC_SAMPLES     1024L
#define AAC_FRAME_BYTES 512L
#define AAC_FRAME_TICKS (AAC_SAMPLES * 90000L / SAMPLE_RATE)
#define AAC_BITS        (AAC_FRAME_BYTES * 8 * SAMPLE_RATE / AAC_SAMPLES)

/* Metadata. */
#define KLV_PER_SECOND 10L
#define KLV_BYTES      200L
#define KLV_TICKS      (90000L / KLV_PER_SECOND)
#define KLV_BITS       (KLV_PER_SECOND * KLV_BYTES * 8)
#define CC_BYTES       73L /* 7 header, 2 + 20 x 3 caption data, 4 footer */

/* Delays in ms. A picture is shown when the STC reaches its PTS and is handed to the decoder STC_LEAD before that. */
#define STC_BEHIND_PCR   150L
#define VIDEO_PCR_TO_PTS 300L
#define VIDEO_STC_LEAD   200L
#define VIDEO_LATENCY    (VIDEO_PCR_TO_PTS + STC_BEHIND_PCR)
#define AUDIO_PCR_TO_PTS 210L
#define AUDIO_STC_LEAD   100L
#define AUDIO_LATENCY    (AUDIO_PCR_TO_PTS + STC_BEHIND_PCR)
#define KLV_PCR_TO_PTS   180L
#define KLV_STC_LEAD     60L
#define KLV_LATENCY      (KLV_PCR_TO_PTS + STC_BEHIND_PCR)

/* Delays of the video decoder in ms, from the framer's output. */
#define IN_MIN         2
#define IN_MAX         14
#define OUT_NOW        96
#define OUT_MIN        84
#define OUT_MAX        113
#define DECODER_DELAY  (OUT_MIN - IN_MIN)
#define DECODER_JITTER ((OUT_MAX - OUT_MIN) - (IN_MAX - IN_MIN))
#define HARDWARE_DELAY 33
#define MIN_DELAY      (OUT_MAX + HARDWARE_DELAY)

/* Delay of the audio decoder in ms, from the framer's output: a frame of 21.3 ms and its processing. */
#define AUDIO_DECODER_OUT 22

/* What the stages hold now: as many frames as their delay lasts, begun frames included. */
#define VIDEO_HELD        8L /* 250 ms */
#define VIDEO_UNDECODED   2L
#define VIDEO_REORDERED   1L
#define VIDEO_UNDISPLAYED 3L
#define AAC_HELD          13L /* 260 ms */
#define AAC_UNDECODED     1L
#define AAC_QUEUED        3L
#define KLV_HELD          3L /* 270 ms */
#define KLV_QUEUED        1L

/* Counts, from the network to the output. */
#define VIDEO_RECEIVED  FRAMES_IN(UP_TIME)
#define VIDEO_RELEASED  (VIDEO_RECEIVED - VIDEO_HELD)
#define VIDEO_DECODED   (VIDEO_RELEASED - VIDEO_UNDECODED)
#define VIDEO_OUTPUT    (VIDEO_DECODED - VIDEO_REORDERED)
#define VIDEO_DISPLAYED (VIDEO_OUTPUT - VIDEO_UNDISPLAYED)
#define AAC_RECEIVED    (UP_TIME * SAMPLE_RATE / AAC_SAMPLES)
#define AAC_RELEASED    (AAC_RECEIVED - AAC_HELD)
#define AAC_DECODED     (AAC_RELEASED - AAC_UNDECODED)
#define AAC_PLAYED      (AAC_DECODED - AAC_QUEUED)
#define KLV_RECEIVED    (UP_TIME * KLV_PER_SECOND)
#define KLV_RELEASED    (KLV_RECEIVED - KLV_HELD)
#define KLV_OUTPUT      (KLV_RELEASED - KLV_QUEUED)
#define KEY_FRAMES      ((VIDEO_RELEASED + GOP_LENGTH - 1) / GOP_LENGTH)
#define ANCHORS         ((VIDEO_RELEASED + ANCHOR_DISTANCE - 1) / ANCHOR_DISTANCE)

/* Clocks: the time stamps have wrapped since the start. */
#define FIRST_PCR       1234567890L
#define LAST_PCR        (FIRST_PCR + TICKS(UP_TIME * 1000L))
#define PCR_NOW         (LAST_PCR % TICKS_WRAP)
#define ROLLOVERS       (LAST_PCR / TICKS_WRAP)
#define ROLLOVER_AT     (tNow - PCR_NOW / TICKS(1000L))
#define STC_NOW         (PCR_NOW - TICKS(STC_BEHIND_PCR))
#define VIDEO_PTS       (PCR_NOW + TICKS(VIDEO_PCR_TO_PTS))
#define AUDIO_PTS       (PCR_NOW + TICKS(AUDIO_PCR_TO_PTS))
#define KLV_PTS         (PCR_NOW + TICKS(KLV_PCR_TO_PTS))
#define VIDEO_TS_SHOWN  (VIDEO_PTS - (VIDEO_RECEIVED - VIDEO_DISPLAYED) * FRAME_TICKS)
#define AUDIO_TS_PLAYED (AUDIO_PTS - (AAC_RECEIVED - AAC_PLAYED) * AAC_FRAME_TICKS)
#define PCRS_PER_SECOND 25L
#define PCRS            (UP_TIME * PCRS_PER_SECOND)
#define NOMINAL_STC     27000000L /* Hz; 27 Hz are 1 ppm */
#define STC_DEVIATION   34L       /* Hz, the average of 2 min: 1.25 ppm */

static SMGR_TDEMUX_SOURCE_STATS AudioSource(unsigned int nStreamID, unsigned int nPid, int nPair, time_t tNow)
{
    return (SMGR_TDEMUX_SOURCE_STATS){
        .enType = SMGR_TDEMUX_DATA_TYPE_AUDIO,
        .enCompressionType = SMGR_TDEMUX_COMPRESSION_TYPE_AAC_ADTS,
        .tsStreamId = nStreamID,
        .tsPid = nPid,
        .nTimebaseNum = 1,
        .nTimebaseDen = 90000,
        .nPTS = AUDIO_PTS,
        .nDTS = AUDIO_PTS,
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
        .nAudioPairNum = nPair,
    };
}

static SMGR_AUDIO_PAIR_STATS AudioPair(int nMaxLeadTime, int nLastProcessTime, time_t tNow)
{
    return (SMGR_AUDIO_PAIR_STATS){
        .nSize = sizeof(SMGR_AUDIO_PAIR_STATS),
        .enMode = 1,
        .enAlgorithm = SMGR_TDEMUX_COMPRESSION_TYPE_AAC_ADTS,
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
        .nMaxOutQueueLen = 6,
        .nCurFpgaWteId = 38 + AAC_QUEUED,
        .nCurFpgaReadId = 38,
        .tLastIntervalTime = {.tv_sec = tNow - 1, .tv_nsec = 984210000},
        .nMinWteToFpgaIntervalInMs = 18,
        .nMaxWteToFpgaIntervalInMs = 25,
        .nLastWteToFpgaIntervalInMs = 21,
        .iAudioVideoTSDiffInMs = (AUDIO_TS_PLAYED - VIDEO_TS_SHOWN) / TICKS(1),
        .nAudioTimeStamp = AUDIO_TS_PLAYED,
        .nVideoTimeStamp = VIDEO_TS_SHOWN,
        .nCurSTCLeadTimeMs = AUDIO_STC_LEAD - AUDIO_DECODER_OUT,
        .nMinSTCLeadTimeMs = 61,
        .tMinSTCLeadTime = tNow - 41 * 3600L,
        .nMaxSTCLeadTimeMs = nMaxLeadTime,
        .tMaxSTCLeadTime = tNow - 12 * 3600L,
        .tLastRxFrameTime = {.tv_sec = tNow - 1, .tv_nsec = 991730000},
        .nLastProcessTimeUs = nLastProcessTime,
        .nMinProcessTimeUs = 410,
        .tMinProcessTime = tNow - 26 * 3600L,
        .nMaxProcessTimeUs = 2900,
        .tMaxProcessTime = tNow - UP_TIME + 1,
    };
}

static SMGR_CBUFFERING_CHANNEL_STATS AudioBuffer(time_t tNow)
{
    return (SMGR_CBUFFERING_CHANNEL_STATS){
        .enType = SMGR_TDEMUX_DATA_TYPE_AUDIO,
        .nBufferingDelayTimeMs = AUDIO_LATENCY - AUDIO_STC_LEAD,
        .nDelayTimeMsActual = AUDIO_LATENCY - AUDIO_STC_LEAD,
        .nSTCLeadTimeMsSet = AUDIO_STC_LEAD,
        .nTotalOutputLatencyMs = AUDIO_LATENCY,
        .nPCRtoPTSTimeMsActual = AUDIO_PCR_TO_PTS,
        .nJitterTimeMsActual = 5,
        .nJitterTimeMsSet = 30,
        .nJitterTimeMsMaximum = 19,
        .nQueueOccupancyFrames = AAC_HELD,
        .TimeStamp = AUDIO_PTS - AAC_HELD * AAC_FRAME_TICKS,
        .tLastOutputTime = tNow,
        .tCounters =
            {
                .nNumReceivedPackets = AAC_RECEIVED,
                .nNumOutputPackets = AAC_RELEASED,
                .nMaxQueueOccupancyFrames = AAC_HELD + 4,
            },
    };
}

void samples_fill_live_srt_1080i(SAMPLES_RECORDS* pRecords, time_t tNow)
{
    const time_t tStart = tNow - UP_TIME;

    pRecords->tTDemux = (SMGR_TDEMUX_STATS){
        .nSize = sizeof(SMGR_TDEMUX_STATS),
        .enState = SMGR_TDEMUX_STATS_STATE_ACTIVE,
        .bStreamHasBeenStarted = TRUE,
        .nSmgrStreamID = STREAM_ID,
        .enEncapsulation = SMGR_STREAM_ENCAPSULATION_TS_SRT,
        .enFECType = SMGR_FEC_TYPE_NONE,
        .tStreamAddress = {.enType = AF_INET, .acAddress = {192, 0, 2, 20}},
        .nStreamPort = LOCAL_PORT,
        .tSourceAddress = {.enType = AF_INET, .acAddress = {198, 51, 100, 7}, .szHostName = "encoder.example"},
        .nSourcePort = REMOTE_PORT,
        .nUpTimeInSecs = UP_TIME,
        .nProgramNumber = 1,
        .nPcrPid = 33,
        .nPCR = PCR_NOW,
        .tLastPCR = tNow,
        .tSources =
            {
                {
                    .enType = SMGR_TDEMUX_DATA_TYPE_VIDEO,
                    .enCompressionType = SMGR_TDEMUX_COMPRESSION_TYPE_H264,
                    .tsStreamId = 0xE0,
                    .tsPid = 33,
                    .nTimebaseNum = 1,
                    .nTimebaseDen = 90000,
                    .nPTS = VIDEO_PTS,
                    .nDTS = VIDEO_PTS - FRAME_TICKS,
                    .tCounters =
                        {
                            .nNumReceivedPackets = VIDEO_RECEIVED,
                            .nNumReceivedBytes = VIDEO_RECEIVED * FRAME_BYTES,
                            .tLastReceivedPacket = tNow,
                            .nNumOutputPackets = VIDEO_RECEIVED,
                            .nNumOutputBytes = VIDEO_RECEIVED * FRAME_BYTES,
                            .tLastOutputPacket = tNow,
                            .iLastTxTime = tNow,
                            .nBitsPerSecond = VIDEO_BITS,
                        },
                },
                AudioSource(0xC0, 36, 1, tNow),
                AudioSource(0xC1, 40, 2, tNow),
                {
                    .enType = SMGR_TDEMUX_DATA_TYPE_KLV,
                    .enCompressionType = SMGR_TDEMUX_COMPRESSION_TYPE_UNCOMPRESSED,
                    .tsStreamId = 0xFC,
                    .tsPid = 50,
                    .nTimebaseNum = 1,
                    .nTimebaseDen = 90000,
                    .nPTS = KLV_PTS,
                    .nDTS = KLV_PTS,
                    .tCounters =
                        {
                            .nNumReceivedPackets = KLV_RECEIVED,
                            .nNumReceivedBytes = KLV_RECEIVED * KLV_BYTES,
                            .tLastReceivedPacket = tNow,
                            .nNumOutputPackets = KLV_RECEIVED,
                            .nNumOutputBytes = KLV_RECEIVED * KLV_BYTES,
                            .tLastOutputPacket = tNow,
                            .iLastTxTime = tNow,
                            .nBitsPerSecond = KLV_BITS,
                        },
                },
            },
        .tCounters =
            {
                .nNumReceivedPackets = DATAGRAMS,
                .nNumReceivedBytes = DATAGRAMS * DATAGRAM_BYTES,
                .tLastReceivedPacket = tNow,
                .nRxPacketToPacketIntervalUs = 1000000L / DATAGRAMS_PER_SECOND,
                .nMaxRxPacketToPacketIntervalUs = 41250,
                .tMaxRxPacketToPacketInterval = SRT_LOST_AT,
                .nExternalRxPacketToPacketIntervalUs = 811,
                .nMaxExternalRxPacketToPacketIntervalUs = 63400,
                .tMaxExternalRxPacketToPacketInterval = SRT_LOST_AT,
                .nNumOutputPackets = VIDEO_RECEIVED + AUDIO_PAIRS * AAC_RECEIVED + KLV_RECEIVED,
                .nNumOutputBytes = VIDEO_RECEIVED * FRAME_BYTES + AUDIO_PAIRS * AAC_RECEIVED * AAC_FRAME_BYTES + KLV_RECEIVED * KLV_BYTES,
                .tLastOutputPacket = tNow,
                .nNumReconnections = 1,
                .tLastReconnection = tStart,
                .nNumTimestampRollovers = ROLLOVERS,
                .tLastTimestampRollover = ROLLOVER_AT,
                .nNumNewStreamFlags = 1,
                .tLastNewStreamFlag = tStart,
                .nBitsPerSecond = TS_BITS_PER_SECOND,
                .TimeStamp = VIDEO_PTS,
                .iLastRxTime = tNow,
                .nNumStreams = 1 + AUDIO_PAIRS + 1,
                .nVideoStreams = 1,
                .nAudioStreams = AUDIO_PAIRS,
                .nKLVStreams = 1,
                .nInputPacketListSize = 4 * DATAGRAM_BYTES,
                .nMaxInputPacketListSize = 212 * DATAGRAM_BYTES,
                .tMaxInputPacketListSize = SRT_LOST_AT,
                .nReadPacketListSize = 1 * DATAGRAM_BYTES,
                .nMaxReadPacketListSize = 35 * DATAGRAM_BYTES,
                .tMaxReadPacketListSize = SRT_LOST_AT,
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
                                    },
                            },
                        .nLostPkts = SRT_LOST,
                        .nXmitAckPkts = UP_TIME * SRT_ACKS_PER_SECOND,
                        .nXmitNakPkts = 12,
                        .iReconnects = 1,
                        .iMSS = 1500,
                        .iLatency = SRT_LATENCY,
                        .iAvailBw = 94300,
                        .iKeyState = SMGR_STREAM_SRT_KM_S_SECURED,
                        .iKeyLength = 16,
                        .iRTT = 24137,
                        .iBufPkts = SRT_BUFFERED,
                        .iBufBytes = SRT_BUFFERED * DATAGRAM_BYTES,
                        .iBufTimespan = SRT_LATENCY - 1,
                        .iRemotePort = REMOTE_PORT,
                        .iLocalPort = LOCAL_PORT,
                        .iMaxOutPortLevel = 212,
                        .iVersion = 0x010404,
                        .iPeerVersion = 0x010503,
                    },
            },
    };

    pRecords->tVFramer = (SMGR_VFRAMER_STATS){
        .enState = SMGR_VFRAMER_STATE_ACTIVE,
        .nDecoderID = DECODER_ID,
        .nStreamID = STREAM_ID,
        .tCurrentProperties =
            {
                .enCompressionType = SMGR_TDEMUX_COMPRESSION_TYPE_H264,
                .enColorType = SMGR_VIDEO_COLOR_TYPE_422_10BIT,
                .nProfile = 122,
                .nLevel = 41,
                .nWidth = WIDTH,
                .nHeight = HEIGHT,
                .bInterlaced = TRUE,
                .bInterlacedTFF = TRUE,
                .fFrameRate = 30000.0F / 1001.0F,
                .bFrameRateFoundInStream = TRUE,
                .nBitsPerSecond = VIDEO_BITS,
                .szFraming = "IBBP",
                .nNumberOfBPicturesInARow = ANCHOR_DISTANCE - 1,
                .nGopInterval = GOP_LENGTH,
                .nSliceCountPerFrame = SLICES,
                .bHasIFrames = TRUE,
                .bHasPFrames = TRUE,
                .bHasBFrames = TRUE,
                .TimeStamp = VIDEO_PTS - VIDEO_HELD * FRAME_TICKS,
                .TimeStampDelta = FRAME_TICKS,
                .nLatencyInUs = 1200,
                .bCCPresent = TRUE,
                .enHDRType = SMGR_VFRAMER_HDR_TYPE_SDR,
                .enHDRTypeInStream = SMGR_VFRAMER_HDR_TYPE_SDR,
                .colour_primaries = 1, /* BT.709 */
                .transfer_characteristics = 1,
                .matrix_coefficients = 1,
                .szPayloadID = {0x85, 0x06, 0x80, 0x01}, /* 1080 lines at 1.5 Gbit/s, interlaced 30/1.001, 16:9, 10-bit */
            },
        .tPreviousProperties = {.colour_primaries = 2, .transfer_characteristics = 2, .matrix_coefficients = 2},
        .tCounters =
            {
                .tLastVideoFrameReceived = tNow,
                .nNumStreamIDTransitions = 1,
                .tLastStreamIDTransition = tStart,
                .nNumFormatTransitions = 1,
                .tLastFormatTransition = tStart + 1,
                .nNumH264Compression = 1,
                .tLastH264Compression = tStart + 1,
                .nNum422_10bitColortype = 1,
                .tLast422_10bitColortype = tStart + 1,
                .nNumInputPackets = VIDEO_RELEASED,
                .nNumInputPacketsFreed = VIDEO_RELEASED,
                .fInputFrameRate = 29.97F,
                .nNumOutputFrames = VIDEO_RELEASED,
                .tLastOutputFrame = tNow,
                .nNumOutputFramesOnePiece = VIDEO_RELEASED,
                .tLastOutputFrameOnePiece = tNow,
                .nNumOutputBytesToDecoder = VIDEO_RELEASED * FRAME_BYTES,
                .nNumKeyFrames = KEY_FRAMES,
                .tLastKeyFrame = tNow - 1,
                .nNumIPictures = KEY_FRAMES,
                .tLastIPicture = tNow - 1,
                .nNumPPictures = ANCHORS - KEY_FRAMES,
                .tLastPPicture = tNow,
                .nNumBPictures = VIDEO_RELEASED - ANCHORS,
                .tLastBPicture = tNow,
                .nMaxNumberOfBPicturesInARow = ANCHOR_DISTANCE - 1,
                .nNumInterlacedPicStruct = VIDEO_RELEASED,
                .tLastInterlacedPicStruct = tNow,
                .nNumInterlacedBothFields = VIDEO_RELEASED,
                .tLastInterlacedBothFields = tNow,
                .nNumSPSNALs = KEY_FRAMES,
                .tLastSPSNAL = tNow - 1,
                .nNumPPSNALs = KEY_FRAMES,
                .tLastPPSNAL = tNow - 1,
                .nNumSEINALs = VIDEO_RELEASED + KEY_FRAMES,
                .tLastSEINAL = tNow,
                .nNumSHNALs = VIDEO_RELEASED * SLICES,
                .tLastSHNAL = tNow,
                .nNumAUDNALs = VIDEO_RELEASED,
                .tLastAUDNAL = tNow,
                .nNumCC = VIDEO_RELEASED,
                .nNumCCBytesOutput = VIDEO_RELEASED * CC_BYTES,
                .tLastCCReceived = tNow,
                .nMaxInputPacketListSize = 3 * FRAME_BYTES,
                .tMaxInputPacketListSize = tStart + 2,
                .nMaxOutputPacketListSize = 2 * FRAME_BYTES,
                .tMaxOutputPacketListSize = tStart + 2,
            },
    };

    pRecords->tVideoDecoder = (SMGR_VCUDEC_STATS){
        .nSize = sizeof(SMGR_VCUDEC_STATS),
        .enState = SMGR_VCUDEC_STATE_ACTIVE,
        .nLoadPercentage = 14,
        .nLatencyInUs = DECODER_DELAY * 1000,
        .nDisplayFormat = VIDEO_FORMAT_1920_1080_29I,
        .bHasChroma = TRUE,
        .nFrameBufferWidth = WIDTH,
        .nFrameBufferHeight = CODED_HEIGHT,
        .nFrameBufferSizeEachInBytes = WIDTH * CODED_HEIGHT * SAMPLES_PER_PIXEL * BYTES_PER_SAMPLE,
        .nFrameBufferNumber = 11,
        .nFrameBufferNumberInUsed = 14,
        .nFrameBufferBitDepthY = 10,
        .nFrameBufferBitDepthC = 10,
        .bCropping = TRUE,
        .nCropOffsetBottom = CODED_HEIGHT - HEIGHT,
        .enPicStructure = VCUDEC_PICSTRUCTURE_TOP_BOT,
        .nVDelayInputMS = 6,
        .nVDelayInputMSAvg = 5,
        .nVMaxDelayInputMS = IN_MAX,
        .nVMinDelayInputMS = IN_MIN,
        .nVCurReOrderLen = VIDEO_REORDERED,
        .nVMaxReOrderLen = 2,
        .nVDelayOutputMS = OUT_NOW,
        .nVDelayOutputMSAvg = 95,
        .nVMaxDelayOutputMS = OUT_MAX,
        .nVMinDelayOutputMS = OUT_MIN,
        .nVMaxDelayWithinVCUMS = 58,
        .nVMinDelayWithinVCUMS = 37,
        .nVCurBDListLen = VIDEO_UNDISPLAYED,
        .nVMaxBDListLen = 4,
        .nVMinBDListLen = 2,
        .nVTheoDelayHwOutputMS = VIDEO_STC_LEAD,
        .nVDelayHwOutputMS = 199,
        .nVDelayHwOutputFrameMS = 199,
        .nVDecInputJitterMS = IN_MAX - IN_MIN,
        .nVDecMaxInputJitterMS = 17,
        .nVDecOutputJitterMS = OUT_MAX - OUT_MIN,
        .nVDecJitterMS = DECODER_JITTER,
        .nVDecLatencyMS = DECODER_DELAY,
        .nVKeyDecDelayMS = 31,
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
                .nNumReplayedOutputFrames = 2,
                .tLastReplayedOutputFrame = tStart + 3,
                .nNumDisplayedFramesFreed = VIDEO_DISPLAYED - 1,
                .tLastDisplayedFrameFreed = tNow,
                .nOutputSTCLeadTime = VIDEO_STC_LEAD - OUT_NOW,
                .nMinOutputSTCLeadTime = 74,
                .tMinOutputSTCLeadTime = tStart + 3,
                .nMaxOutputSTCLeadTime = 119,
                .tMaxOutputSTCLeadTime = tNow - 17 * 3600L,
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
                .nMaxPushedQueueOccupancy = 5,
                .nCurPushedQueueOccupancy = VIDEO_UNDECODED,
                .nNumImageCaptures = 6,
                .tLastImageCapture = tNow - 4320,
                .nNumStillImages = 1,
                .nMaxStillImageTimeOn = 2,
                .tLastStillImageOn = tStart,
                .tLastStillImageOff = tStart + 2,
            },
        .bReordering = TRUE,
    };

    pRecords->tAudio = (SMGR_DECODER_AUDIO_STATS){
        .nSize = sizeof(SMGR_DECODER_AUDIO_STATS),
        .enState = SMGR_AUDDEC_STATE_ACTIVE,
        .nNumOfPairs = AUDIO_PAIRS,
        .nReceivedFrames = AUDIO_PAIRS * AAC_RELEASED,
        .tLastReceivedFrame = tNow,
        .nDecodedFrames = AUDIO_PAIRS * AAC_DECODED,
        .tLastDecodedFrame = tNow,
        .nOutputFrames = AUDIO_PAIRS * AAC_PLAYED,
        .tLastOutputFrame = tNow,
        .nReleasedFrames = AUDIO_PAIRS * AAC_DECODED,
        .tLastReleasedFrame = tNow,
        .nPendingDecodeRequests = AUDIO_PAIRS * AAC_UNDECODED,
        .nCurDecodedQueueLength = AUDIO_PAIRS * AAC_QUEUED,
        .nADelayInputMS = 1,
        .nADelayOutputMS = AUDIO_DECODER_OUT,
        .nARxFramesJitterMS = 5,
        .nALastMaxRxFramesJitterMS = 9,
        .PairStats = {AudioPair(86, 640, tNow), AudioPair(83, 712, tNow)},
    };
    for (size_t i = AUDIO_PAIRS; i < SMGR_AUDIO_MAX_PAIRS; ++i) pRecords->tAudio.PairStats[i].nSize = sizeof(SMGR_AUDIO_PAIR_STATS);

    pRecords->tMetadata = (SMGR_METADATADEC_STATS){
        .enState = SMGR_METADATA_STATE_ACTIVE,
        .nDecoderID = DECODER_ID,
        .tChannel =
            {
                {
                    .szName = "KLV",
                    .enType = SMGR_METADATA_CHANNEL_TYPE_KLV,
                    .enState = SMGR_METADATA_STATE_ACTIVE,
                    .nLatencyInUs = KLV_STC_LEAD * 1000,
                    .tCounters =
                        {
                            .nNumInputPackets = KLV_RELEASED,
                            .tLastInputPacket = tNow,
                            .nNumSynchronousPackets = KLV_RELEASED,
                            .tLastSynchronousPacket = tNow,
                            .nNumOutputPackets = KLV_OUTPUT,
                            .tLastOutputPacket = tNow,
                            .nNumFreedPackets = KLV_OUTPUT,
                            .tLastFreedPacket = tNow,
                            .nNumOutputPayloadBytes = KLV_OUTPUT * KLV_BYTES,
                            .nMaxOutputPayloadBytes = 244,
                            .tMaxOutputPayloadBytes = tNow - 6 * 3600L,
                            .tLastOutputTime = tNow,
                            .nNumInPacketList = KLV_QUEUED,
                            .nNumBDAllocated = KLV_RELEASED,
                            .tLastBDAllocated = tNow,
                            .nNumBDWritten = KLV_RELEASED,
                            .tLastBDWritten = tNow,
                            .nNumBDFreed = KLV_OUTPUT,
                            .tLastBDFreed = tNow,
                            .nNumBDInFreeList = SAMPLES_DESCRIPTORS - KLV_QUEUED,
                            .nNumBDInUsedList = KLV_QUEUED,
                            .nBDFreeListHeadIndex = 8 + KLV_QUEUED,
                            .nBDUsedListHeadIndex = 8,
                            .nCurrentDelayInPackets = KLV_QUEUED,
                            .nNumInDelayList = KLV_QUEUED,
                            .nOutputSTCLeadTime = 52,
                            .nMinOutputSTCLeadTime = 41,
                            .tMinOutputSTCLeadTime = SRT_LOST_AT,
                            .nMaxOutputSTCLeadTime = 59,
                            .tMaxOutputSTCLeadTime = tNow - 8 * 3600L,
                        },
                },
                samples_idle_channel("TC", SMGR_METADATA_CHANNEL_TYPE_TC),
                {
                    .szName = "CC",
                    .enType = SMGR_METADATA_CHANNEL_TYPE_CC,
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
                            .nNumOutputPayloadBytes = VIDEO_OUTPUT * CC_BYTES,
                            .nMaxOutputPayloadBytes = CC_BYTES,
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
                            .nBDFreeListHeadIndex = 21 + VIDEO_UNDISPLAYED,
                            .nBDUsedListHeadIndex = 21,
                            .nCurrentDelayInPackets = VIDEO_UNDISPLAYED,
                            .nNumInDelayList = VIDEO_RELEASED - VIDEO_OUTPUT,
                            .nOutputSTCLeadTime = VIDEO_STC_LEAD - OUT_NOW,
                            .nMinOutputSTCLeadTime = 74,
                            .tMinOutputSTCLeadTime = tStart + 3,
                            .nMaxOutputSTCLeadTime = 119,
                            .tMaxOutputSTCLeadTime = tNow - 17 * 3600L,
                        },
                },
                samples_idle_channel("AFD", SMGR_METADATA_CHANNEL_TYPE_AFD),
            },
        .tCounters = {.nNumReceivedPackets = KLV_RELEASED + VIDEO_RELEASED},
    };

    pRecords->tBuffering = (SMGR_CBUFFERING_STATS){
        .nDecoderID = DECODER_ID,
        .enStatus = SMGR_CBUFFERING_STATUS_ACTIVE,
        .enBufferingMode = SMGR_DECSDI_BUFFERING_AUTOMATIC,
        .nFixedDelayMs = 400,
        .nMultiSyncDelayMs = 1000,
        .nMinDelayMs = MIN_DELAY,
        .nMaxDelayMs = 3000,
        .nPCR = PCR_NOW,
        .nSTC = STC_NOW,
        .tAutomatic =
            {
                .nMaxInputJitterMs = 24,
                .tMaxInputJitterChanged = SRT_LOST_AT,
                .nNonVideoLateMs = -35,
                .nNonVideoLateMaxMs = -12,
                .tNonVideoLateMax = SRT_LOST_AT,
                .nVideoDecoderLatencyMs = DECODER_DELAY,
                .nVideoDecoderLatencyMaxMs = 91,
                .tVideoDecoderLatencyMax = tStart + 4,
                .nVideoDecoderJitterMs = DECODER_JITTER,
                .nVideoDecoderJitterMaxMs = 26,
                .tVideoDecoderJitterMax = tStart + 14,
                .nVideoSTCLeadTimeAvgActualMs = VIDEO_STC_LEAD,
                .nVideoSTCLeadTimeMinActualMs = 183,
                .nVideoSTCLeadTimeMaxActualMs = 217,
                .nAudioSTCLeadTimeAvgActualMs = AUDIO_STC_LEAD,
                .nAudioSTCLeadTimeMinActualMs = 89,
                .nAudioSTCLeadTimeMaxActualMs = 111,
                .nHardwareDelayMs = HARDWARE_DELAY,
                .tLastVideoSkipReplayTime = tStart + 3,
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
                    .nJitterTimeMsActual = 7,
                    .nJitterTimeMsSet = 30,
                    .nJitterTimeMsMaximum = 24,
                    .nQueueOccupancyFrames = VIDEO_HELD,
                    .TimeStamp = VIDEO_PTS - VIDEO_HELD * FRAME_TICKS,
                    .tLastOutputTime = tNow,
                    .tCounters =
                        {
                            .nNumReceivedPackets = VIDEO_RECEIVED,
                            .nNumOutputPackets = VIDEO_RELEASED,
                            .nMaxQueueOccupancyFrames = VIDEO_HELD + 3,
                        },
                },
                AudioBuffer(tNow),
                AudioBuffer(tNow),
                {
                    .enType = SMGR_TDEMUX_DATA_TYPE_KLV,
                    .nBufferingDelayTimeMs = KLV_LATENCY - KLV_STC_LEAD,
                    .nDelayTimeMsActual = KLV_LATENCY - KLV_STC_LEAD,
                    .nSTCLeadTimeMsSet = KLV_STC_LEAD,
                    .nTotalOutputLatencyMs = KLV_LATENCY,
                    .nPCRtoPTSTimeMsActual = KLV_PCR_TO_PTS,
                    .nJitterTimeMsActual = 8,
                    .nJitterTimeMsSet = 30,
                    .nJitterTimeMsMaximum = 21,
                    .nQueueOccupancyFrames = KLV_HELD,
                    .TimeStamp = KLV_PTS - KLV_HELD * KLV_TICKS,
                    .tLastOutputTime = tNow,
                    .tCounters =
                        {
                            .nNumReceivedPackets = KLV_RECEIVED,
                            .nNumOutputPackets = KLV_RELEASED,
                            .nMaxQueueOccupancyFrames = KLV_HELD + 1,
                        },
                },
            },
        .tCounters =
            {
                .nNumReceivedPackets = VIDEO_RECEIVED + AUDIO_PAIRS * AAC_RECEIVED + KLV_RECEIVED,
                .tLastReceivedPacket = tNow,
                .nNumOutputPackets = VIDEO_RELEASED + AUDIO_PAIRS * AAC_RELEASED + KLV_RELEASED,
                .tLastOutputPacket = tNow,
                .nNumPCRPackets = PCRS,
                .nNumPCRUpdates = PCRS,
                .tLastPCRUpdate = tNow,
                .nNumSTCUpdates = UP_TIME / 10,
                .tLastSTCUpdate = tNow - 7,
                .nNumBufferingAdjustments = 4,
                .tLastBufferingAdjustmentTime = SRT_LOST_AT,
                .nNumSTCLeadTimeAdjustments = 3,
                .tLastSTCLeadTimeAdjustmentTime = tStart + 14,
                .nNumResets = 1,
                .tLastReset = tStart,
                .nBufferingOccupancyBytes = VIDEO_HELD * FRAME_BYTES + AUDIO_PAIRS * AAC_HELD * AAC_FRAME_BYTES + KLV_HELD * KLV_BYTES,
                .nMaxBufferingOccupancyBytes = 11 * FRAME_BYTES + AUDIO_PAIRS * 17 * AAC_FRAME_BYTES + 4 * KLV_BYTES,
                .tMaxBufferingOccupancyBytes = SRT_LOST_AT,
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
        .OldPll = NOMINAL_STC + 35,
        .StcClkNominal = NOMINAL_STC,
        .trackingMode = SMGR_CLOCK_TRACKING_ENABLED,
        .PllSettleTime = 184,
        .curPllAvg = NOMINAL_STC + STC_DEVIATION,
        .curPllMin = NOMINAL_STC + 31,
        .curPllMax = NOMINAL_STC + 37,
        .curPLLDevHz = STC_DEVIATION,
        .curPLLDevPpm = STC_DEVIATION / 27,
        .curPLLDevPpmNominal = 35 / 27,
        .curPLLDevPpmFract = STC_DEVIATION * 100 / 27 % 100,
        .avgDevHz = -3, /* -0.11 ppm: the integer part cannot carry the sign */
        .avgDevPpm = 0,
        .avgDevPpmFract = 3 * 100 / 27,
        .curPcr = PCR_NOW,
        .curPcrFpga = STC_NOW,
        .curPcrFpgaDelta = PCR_NOW - STC_NOW,
        .mafDivFactor = 64,
        .pcrTsDelta = TICKS(VIDEO_LATENCY),
        .pcrTsDeltaAud0 = TICKS(AUDIO_LATENCY),
        .pcrTsDeltaAud1 = TICKS(AUDIO_LATENCY),
        .pcrTsDeltaKlv = TICKS(KLV_LATENCY),
        .pcrTsDeltaMinValue = TICKS(VIDEO_LATENCY - 12),
        .pcrTsDeltaMaxValue = TICKS(VIDEO_LATENCY + 15),
        .pcrTsDeltaMinMaxDlyMS = 10000,
        .pcrTsDeltaMinExtValue = TICKS(VIDEO_LATENCY - 31),
        .pcrTsDeltaMaxExtValue = TICKS(VIDEO_LATENCY + 44),
    };

    pRecords->tUsage = (SMGR_DECODER_SDI_USAGE_STATS){
        .nNumStarts = 1,
        .tLastStart = tStart,
        .nNumGetStats = 57,
        .tLastGetStat = tNow - 20,
        .nNumGetInfos = 12,
        .tLastGetInfo = tNow - 310,
        .nNumConfigures = 3,
        .tLastConfigure = tStart - 41,
        .nNumCaptures = 6,
        .tLastCapture = tNow - 4320,
        .nNumClears = 1,
        .tLastClear = tStart - 40,
        .nNumLoadConfigs = 1,
        .tLastLoadConfig = tStart - 95,
        .nNumSaveConfigs = 2,
        .tLastSaveConfig = tStart + 600,
    };

    samples_clear_padding(pRecords);
}
