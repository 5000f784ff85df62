/**
 * @file sessmgr_types.h
 * The session manager's statistics records, one for each component of a decoding chain, and their enumerations. Plain C11
 * that is also C++17 and later.
 *
 * - Layout: 4-byte packing, so 64-bit fields may stand on 4-byte boundaries. Copy such a field before taking its address.
 * - A field's comment reads: meaning [unit]; value = what it means. What follows the semicolon is the value that means
 *   absent, in an enumerated field the one that stands for no information. "with nField 0" means absent while nField is 0.
 *   Where none is given, every value is a measurement, 0 included.
 * - Event times are seconds since the epoch and 0 means never.
 * - An extreme or a last value is absent while the moment at which it occurred, where one is kept, is never.
 * - A BOOL is a flag: 0 is no, everything else yes, except where a comment says that exactly 1 is yes.
 * - A char array holds a NUL-terminated text. A reader must stop at the array's end all the same.
 * - An enumerated field may hold a value that no enumerator names.
 * - A report shows a part of its record: decstats-reports(5) explains the lines. Where a report has no word for an absent
 *   value it prints the number.
 * - All zero is not all absent: 0 is a real value of enPicStructure, of a metadata channel's enType and of the list heads.
 */
#ifndef SESSMGR_TYPES_H
#define SESSMGR_TYPES_H

#include <time.h>

#include "sessmgr_const.h"
#include "xtypes.h"

typedef unsigned long SMGR_COUNTER; /**< a count of events, packets or bytes, 64 bits unsigned */

/** Kind of an elementary stream. */
typedef enum tagSMGR_TDEMUX_DATA_TYPE XTYPES_ENUM32
{
    SMGR_TDEMUX_DATA_TYPE_UNKNOWN = 0, /**< not known */
    SMGR_TDEMUX_DATA_TYPE_VIDEO   = 1, /**< video */
    SMGR_TDEMUX_DATA_TYPE_AUDIO   = 2, /**< audio, one pair or more */
    SMGR_TDEMUX_DATA_TYPE_KLV     = 3, /**< KLV metadata (SMPTE ST 336) */
} SMGR_TDEMUX_DATA_TYPE;

/** Coding of an elementary stream: video from 1000, audio from 2000. */
typedef enum tagSMGR_TDEMUX_COMPRESSION_TYPE XTYPES_ENUM32
{
    SMGR_TDEMUX_COMPRESSION_TYPE_UNKNOWN      = 0,    /**< not known */
    SMGR_TDEMUX_COMPRESSION_TYPE_UNCOMPRESSED = 1,    /**< not compressed */
    SMGR_TDEMUX_COMPRESSION_TYPE_H264         = 1000, /**< ITU-T H.264 */
    SMGR_TDEMUX_COMPRESSION_TYPE_H265         = 1001, /**< ITU-T H.265 */
    SMGR_TDEMUX_COMPRESSION_TYPE_MPEG1        = 1002, /**< ISO/IEC 11172-2 */
    SMGR_TDEMUX_COMPRESSION_TYPE_MPEG2        = 1003, /**< ISO/IEC 13818-2 */
    SMGR_TDEMUX_COMPRESSION_TYPE_MPEG4        = 1004, /**< ISO/IEC 14496-2 */
    SMGR_TDEMUX_COMPRESSION_TYPE_AAC_ADTS     = 2000, /**< AAC in ADTS frames */
    SMGR_TDEMUX_COMPRESSION_TYPE_AAC_LATM     = 2001, /**< AAC in LATM */
    SMGR_TDEMUX_COMPRESSION_TYPE_AC3          = 2002, /**< AC-3 */
    SMGR_TDEMUX_COMPRESSION_TYPE_MP1          = 2003, /**< MPEG audio layer I */
    SMGR_TDEMUX_COMPRESSION_TYPE_MP2          = 2004, /**< MPEG audio layer II */
    SMGR_TDEMUX_COMPRESSION_TYPE_MP3          = 2005, /**< MPEG audio layer III */
} SMGR_TDEMUX_COMPRESSION_TYPE;

/** Chroma format and bit depth of a video stream. */
typedef enum tagSMGR_VIDEO_COLOR_TYPE XTYPES_ENUM32
{
    SMGR_VIDEO_COLOR_TYPE_UNKNOWN    = 0, /**< not known */
    SMGR_VIDEO_COLOR_TYPE_420_8BIT   = 1, /**< 4:2:0, 8 bits */
    SMGR_VIDEO_COLOR_TYPE_420_10BIT  = 2, /**< 4:2:0, 10 bits */
    SMGR_VIDEO_COLOR_TYPE_422_8BIT   = 3, /**< 4:2:2, 8 bits */
    SMGR_VIDEO_COLOR_TYPE_422_10BIT  = 4, /**< 4:2:2, 10 bits */
    SMGR_VIDEO_COLOR_TYPE_MONOCHROME = 5, /**< luma alone */
    SMGR_VIDEO_COLOR_TYPE_444        = 6, /**< 4:4:4 */
} SMGR_VIDEO_COLOR_TYPE;

/** Buffering modes, kept in an int. MIN and MAX bound the range and are not modes. */
enum XTYPES_ENUM32
{
    SMGR_DECSDI_BUFFERING_MIN          = 0, /**< below every mode */
    SMGR_DECSDI_BUFFERING_ADAPTIVE     = 1, /**< follows the stream */
    SMGR_DECSDI_BUFFERING_FIXED        = 2, /**< a configured delay */
    SMGR_DECSDI_BUFFERING_AUTOMATIC    = 3, /**< measured and set by the controller */
    SMGR_DECSDI_BUFFERING_MULTISYNC    = 4, /**< several decoders in step, by timecode */
    SMGR_DECSDI_BUFFERING_MINIMUM      = 5, /**< the smallest delay that the chain can honour */
    SMGR_DECSDI_BUFFERING_STANDARD_HRD = 6, /**< as the stream's hypothetical reference decoder asks */
    SMGR_DECSDI_BUFFERING_LOWLATENCY   = 7, /**< latency before continuity */
    SMGR_DECSDI_BUFFERING_MAX          = 8, /**< above every mode */
};

/** Stream encapsulations whose transport keeps statistics of its own, kept in an int. Other codes exist. */
enum XTYPES_ENUM32
{
    SMGR_STREAM_ENCAPSULATION_TS_RTP = 3,  /**< MPEG transport stream over RTP, Pro-MPEG FEC possible */
    SMGR_STREAM_ENCAPSULATION_TS_SRT = 34, /**< MPEG transport stream over SRT */
};

/** Forward error correction of the input. */
typedef enum tagSMGR_FEC_TYPE XTYPES_ENUM32
{
    SMGR_FEC_TYPE_NONE     = 0, /**< none */
    SMGR_FEC_TYPE_VF       = 1, /**< VF, a scheme without statistics here */
    SMGR_FEC_TYPE_PRO_MPEG = 2, /**< Pro-MPEG, SMPTE ST 2022-1 */
} SMGR_FEC_TYPE;

/** State of the transport demux's input. */
typedef enum tagSMGR_TDEMUX_STATS_STATE XTYPES_ENUM32
{
    SMGR_TDEMUX_STATS_STATE_UNKNOWN    = 0,  /**< not known */
    SMGR_TDEMUX_STATS_STATE_STOPPED    = 1,  /**< stopped */
    SMGR_TDEMUX_STATS_STATE_LISTENING  = 2,  /**< waiting for a sender */
    SMGR_TDEMUX_STATS_STATE_ACTIVE     = 3,  /**< receiving */
    SMGR_TDEMUX_STATS_STATE_RESOLVING  = 4,  /**< looking up the host name */
    SMGR_TDEMUX_STATS_STATE_CONNECTING = 5,  /**< calling the sender */
    SMGR_TDEMUX_STATS_STATE_SCRAMBLED  = 6,  /**< receiving what it cannot decrypt */
    SMGR_TDEMUX_STATS_STATE_SECURING   = 7,  /**< exchanging keys */
    SMGR_TDEMUX_STATS_STATE_INVALID    = -1, /**< no valid state */
    SMGR_TDEMUX_STATS_STATE_FAILED     = -2, /**< failed */
} SMGR_TDEMUX_STATS_STATE;

/** State of an SRT link's key exchange, kept in an int. */
typedef enum tagSMGR_STREAM_SRT_KM_S XTYPES_ENUM32
{
    SMGR_STREAM_SRT_KM_S_UNSECURED = 0, /**< no encryption */
    SMGR_STREAM_SRT_KM_S_SECURING  = 1, /**< keys are being exchanged */
    SMGR_STREAM_SRT_KM_S_SECURED   = 2, /**< decrypting */
    SMGR_STREAM_SRT_KM_S_NOSECRET  = 3, /**< no passphrase set here */
    SMGR_STREAM_SRT_KM_S_BADSECRET = 4, /**< the passphrases differ */
} SMGR_STREAM_SRT_KM_S;

/** State of the video framer. */
typedef enum tagSMGR_VFRAMER_STATE XTYPES_ENUM32
{
    SMGR_VFRAMER_STATE_UNKNOWN     = 0,  /**< not known */
    SMGR_VFRAMER_STATE_IDLE        = 1,  /**< waiting for a stream */
    SMGR_VFRAMER_STATE_ACTIVE      = 2,  /**< framing */
    SMGR_VFRAMER_STATE_INVALID     = -1, /**< no valid state */
    SMGR_VFRAMER_STATE_UNSUPPORTED = -2, /**< the stream cannot be decoded */
} SMGR_VFRAMER_STATE;

/** Dynamic range of a video stream. */
typedef enum tagSMGR_VFRAMER_HDR_TYPE XTYPES_ENUM32
{
    SMGR_VFRAMER_HDR_TYPE_INVALID     = -1, /**< no valid type */
    SMGR_VFRAMER_HDR_TYPE_UNSPECIFIED = 0,  /**< not signalled */
    SMGR_VFRAMER_HDR_TYPE_SDR         = 1,  /**< standard dynamic range */
    SMGR_VFRAMER_HDR_TYPE_HLG         = 2,  /**< hybrid log-gamma, ITU-R BT.2100 */
    SMGR_VFRAMER_HDR_TYPE_PQ          = 3,  /**< perceptual quantisation, SMPTE ST 2084 */
    SMGR_VFRAMER_HDR_TYPE_CUSTOM      = 4,  /**< configured by the operator */
} SMGR_VFRAMER_HDR_TYPE;

/** State of the hardware video decoder. */
typedef enum tagSMGR_VCUDEC_STATE XTYPES_ENUM32
{
    SMGR_VCUDEC_STATE_UNKNOWN                 = 0,  /**< not known */
    SMGR_VCUDEC_STATE_IDLE                    = 1,  /**< waiting for pictures */
    SMGR_VCUDEC_STATE_ACTIVE                  = 2,  /**< decoding */
    SMGR_VCUDEC_STATE_IDLE_VCU_LACK_OF_MEMORY = 3,  /**< idle: the codec unit has no memory for the stream */
    SMGR_VCUDEC_STATE_STOP                    = 4,  /**< stopped */
    SMGR_VCUDEC_STATE_INVALID                 = -1, /**< no valid state */
} SMGR_VCUDEC_STATE;

/** Picture structure of the last picture, after the pic_struct of ITU-T H.264 and H.265. */
typedef enum tagSMGR_VCUDEC_PICSTRUCTURE XTYPES_ENUM32
{
    VCUDEC_PICSTRUCTURE_UNKNOWN               = -1, /**< not known */
    VCUDEC_PICSTRUCTURE_FRAME                 = 0,  /**< frame */
    VCUDEC_PICSTRUCTURE_TOP_FIELD             = 1,  /**< top field */
    VCUDEC_PICSTRUCTURE_BOTTOM_FIELD          = 2,  /**< bottom field */
    VCUDEC_PICSTRUCTURE_TOP_BOT               = 3,  /**< top, then bottom field */
    VCUDEC_PICSTRUCTURE_BOT_TOP               = 4,  /**< bottom, then top field */
    VCUDEC_PICSTRUCTURE_TOP_BOT_TOP           = 5,  /**< top, bottom, then top field again */
    VCUDEC_PICSTRUCTURE_BOT_TOP_BOT           = 6,  /**< bottom, top, then bottom field again */
    VCUDEC_PICSTRUCTURE_FRAME_X2              = 7,  /**< frame shown twice */
    VCUDEC_PICSTRUCTURE_FRAME_X3              = 8,  /**< frame shown three times */
    VCUDEC_PICSTRUCTURE_TOP_FLD_WITH_PREV_BOT = 9,  /**< top field, paired with the previous bottom field */
    VCUDEC_PICSTRUCTURE_BOT_FLD_WITH_PREV_TOP = 10, /**< bottom field, paired with the previous top field */
    VCUDEC_PICSTRUCTURE_TOP_FLD_WITH_NEXT_BOT = 11, /**< top field, paired with the next bottom field */
    VCUDEC_PICSTRUCTURE_BOT_FLD_WITH_NEXT_TOP = 12, /**< bottom field, paired with the next top field */
} SMGR_VCUDEC_PICSTRUCTURE;

/** State of the metadata decoder and of each of its channels. */
typedef enum tagSMGR_METADATA_STATE XTYPES_ENUM32
{
    SMGR_METADATA_STATE_UNKNOWN = 0,  /**< not known */
    SMGR_METADATA_STATE_IDLE    = 1,  /**< waiting for packets */
    SMGR_METADATA_STATE_ACTIVE  = 2,  /**< decoding */
    SMGR_METADATA_STATE_INVALID = -1, /**< no valid state */
} SMGR_METADATA_STATE;

/** Kind of a metadata channel. */
typedef enum tagSMGR_METADATA_CHANNEL_TYPE XTYPES_ENUM32
{
    SMGR_METADATA_CHANNEL_TYPE_KLV     = 0,  /**< KLV (SMPTE ST 336) */
    SMGR_METADATA_CHANNEL_TYPE_TC      = 1,  /**< timecode (SMPTE ST 12-1) */
    SMGR_METADATA_CHANNEL_TYPE_CC      = 2,  /**< closed captions (CTA-708) */
    SMGR_METADATA_CHANNEL_TYPE_AFD     = 3,  /**< active format description (SMPTE ST 2016-1) */
    SMGR_METADATA_CHANNEL_TYPE_UNKNOWN = -1, /**< not known */
} SMGR_METADATA_CHANNEL_TYPE;

/** State of the buffering controller. Negative values are errors of the MultiSync mode. */
typedef enum tagSMGR_CBUFFERING_STATUS XTYPES_ENUM32
{
    SMGR_CBUFFERING_STATUS_IDLE                                 = 0,  /**< not buffering */
    SMGR_CBUFFERING_STATUS_ACTIVE                               = 1,  /**< buffering */
    SMGR_CBUFFERING_STATUS_MULTISYNC_ERROR_NO_NTP_CLIENT        = -1, /**< no NTP client keeps the system time */
    SMGR_CBUFFERING_STATUS_MULTISYNC_ERROR_TIMECODE_NOT_PRESENT = -2, /**< the stream carries no timecode */
    SMGR_CBUFFERING_STATUS_MULTISYNC_ERROR_TIMECODE_INVALID     = -3, /**< the stream's timecode is invalid */
} SMGR_CBUFFERING_STATUS;

/** Mode of the clock recovery loop, kept in an int. */
enum XTYPES_ENUM32
{
    SMGR_CLOCK_TRACKING_DISABLED      = 0, /**< the STC runs free */
    SMGR_CLOCK_TRACKING_ENABLED       = 1, /**< the STC follows the PCR */
    SMGR_CLOCK_TRACKING_DISABLED_LOCK = 2, /**< the STC runs free, with lock tracking */
    SMGR_CLOCK_TRACKING_ENABLED_LOCK  = 3, /**< the STC follows the PCR, with lock tracking */
};

#define SMGR_TDEMUX_MAX_SOURCES       10 /**< elementary streams of a transport demux */
#define SMGR_METADATADEC_MAX_CHANNELS 4  /**< channels of a metadata decoder */
#define SMGR_CBUFFERING_MAX_CHANNELS  10 /**< elementary streams of a buffering controller */

#pragma pack(push, 4)

/* ---- Decoder usage ---- */

/** Control requests that the decoder has served. */
typedef struct tagSMGR_DECODER_SDI_USAGE_STATS
{
    unsigned long nNumStarts;      /**< start requests [requests] */
    time_t        tLastStart;      /**< last start request [epoch s]; 0 = never */
    unsigned long nNumStops;       /**< stop requests [requests] */
    time_t        tLastStop;       /**< last stop request [epoch s]; 0 = never */
    unsigned long nNumGetStats;    /**< statistics queries [requests] */
    time_t        tLastGetStat;    /**< last statistics query [epoch s]; 0 = never */
    unsigned long nNumGetInfos;    /**< information queries [requests] */
    time_t        tLastGetInfo;    /**< last information query [epoch s]; 0 = never */
    unsigned long nNumConfigures;  /**< configuration requests [requests] */
    time_t        tLastConfigure;  /**< last configuration request [epoch s]; 0 = never */
    unsigned long nNumCaptures;    /**< capture requests [requests] */
    time_t        tLastCapture;    /**< last capture request [epoch s]; 0 = never */
    unsigned long nNumClears;      /**< clear requests [requests] */
    time_t        tLastClear;      /**< last clear request [epoch s]; 0 = never */
    unsigned long nNumLoadConfigs; /**< configuration loads [requests] */
    time_t        tLastLoadConfig; /**< last configuration load [epoch s]; 0 = never */
    unsigned long nNumSaveConfigs; /**< configuration saves [requests] */
    time_t        tLastSaveConfig; /**< last configuration save [epoch s]; 0 = never */
} SMGR_DECODER_SDI_USAGE_STATS;

/* ---- Transport demux ---- */

/** A network address. */
typedef struct tagSMGR_IP_ADDRESS
{
    int  enType;          /**< address family, AF_INET, AF_INET6 or AF_UNSPEC of <sys/socket.h>; 0 = no address */
    BYTE acAddress[16];   /**< address in network byte order, for AF_INET in the first 4 bytes; all 0 = unset */
    char szHostName[512]; /**< host name; empty = none */
} SMGR_IP_ADDRESS;

/** Counters of one elementary stream. */
typedef struct tagSMGR_TDEMUX_SOURCE_COUNTERS
{
    unsigned long nNumReceivedPackets;   /**< packets received [packets] */
    unsigned long nNumReceivedBytes;     /**< bytes received [bytes] */
    time_t        tLastReceivedPacket;   /**< last packet received [epoch s]; 0 = never */
    unsigned long nNumOutputPackets;     /**< packets passed on [packets] */
    unsigned long nNumOutputBytes;       /**< bytes passed on [bytes] */
    time_t        tLastOutputPacket;     /**< last packet passed on [epoch s]; 0 = never */
    time_t        iLastTxTime;           /**< last transmission to the decoders [epoch s]; 0 = never */
    unsigned int  nBitsPerSecond;        /**< measured bit rate [bit/s] */
    unsigned long nNumNoPTSValueFrames;  /**< frames that came without a PTS [frames] */
    time_t        tLastNoPTSValueFrames; /**< last frame without a PTS [epoch s]; 0 = never */
    unsigned long nNumNoDTSValueFrames;  /**< frames that came without a DTS [frames] */
    time_t        tLastNoDTSValueFrames; /**< last frame without a DTS [epoch s]; 0 = never */
} SMGR_TDEMUX_SOURCE_COUNTERS;

/** One elementary stream of the transport demux's input. */
typedef struct tagSMGR_TDEMUX_SOURCE_STATS
{
    SMGR_TDEMUX_DATA_TYPE        enType;            /**< kind of stream; 0 = unknown */
    SMGR_TDEMUX_COMPRESSION_TYPE enCompressionType; /**< coding of the stream; 0 = unknown */
    unsigned int                 tsStreamId;        /**< stream identifier within the transport stream [id] */
    unsigned int                 tsPid;             /**< packet identifier, ISO/IEC 13818-1 [PID] */
    unsigned int                 nTimebaseNum;      /**< time base of the time stamps in seconds, numerator */
    unsigned int                 nTimebaseDen;      /**< time base of the time stamps in seconds, denominator */
    UINT64                       nPTS;              /**< last presentation time stamp [time base units] */
    UINT64                       nDTS;              /**< last decoding time stamp [time base units] */
    SMGR_TDEMUX_SOURCE_COUNTERS  tCounters;         /**< counters */
    int                          nAudioPairNum;     /**< for audio, number of the audio pair that the stream feeds, counted from 1 [pair number] */
} SMGR_TDEMUX_SOURCE_STATS;

/** Counters of the transport demux. */
typedef struct tagSMGR_TDEMUX_COUNTERS
{
    unsigned long nNumReceivedPackets;                    /**< packets received from the network [packets] */
    unsigned long nNumReceivedBytes;                      /**< bytes received from the network [bytes] */
    time_t        tLastReceivedPacket;                    /**< last packet received [epoch s]; 0 = never */
    unsigned long nRxPacketToPacketIntervalUs;            /**< time between the last two packets [us] */
    unsigned long nMaxRxPacketToPacketIntervalUs;         /**< longest time between two packets [us] */
    time_t        tMaxRxPacketToPacketInterval;           /**< when the longest time between two packets occurred [epoch s]; 0 = never */
    unsigned long nExternalRxPacketToPacketIntervalUs;    /**< time between the last two packets at the external receive point [us] */
    unsigned long nMaxExternalRxPacketToPacketIntervalUs; /**< longest time between two packets at the external receive point [us] */
    time_t        tMaxExternalRxPacketToPacketInterval;   /**< when the longest time between two packets at the external receive point occurred [epoch s]; 0 = never */
    unsigned long nNumOutputPackets;                      /**< packets passed on [packets] */
    unsigned long nNumOutputBytes;                        /**< bytes passed on [bytes] */
    time_t        tLastOutputPacket;                      /**< last packet passed on [epoch s]; 0 = never */
    unsigned long nNumDroppedPackets;                     /**< packets dropped [packets] */
    unsigned long nNumDroppedBytes;                       /**< bytes dropped [bytes] */
    time_t        tLastDroppedPacket;                     /**< last packet dropped [epoch s]; 0 = never */
    unsigned long nNumErrors;                             /**< receive errors [errors] */
    time_t        tLastError;                             /**< last receive error [epoch s]; 0 = never */
    unsigned long nNumTSCorruptedFrames;                  /**< corrupted transport stream frames [frames] */
    time_t        tLastTSCorruptedFrame;                  /**< last corrupted transport stream frame [epoch s]; 0 = never */
    unsigned long nNumPESSizeMismatches;                  /**< PES packets whose length contradicts their header [packets] */
    time_t        tLastPESSizeMismatch;                   /**< last PES packet whose length contradicts its header [epoch s]; 0 = never */
    unsigned long nNumLostSegmentsMPEG2TS;                /**< segments lost by transport stream continuity [segments] */
    time_t        tLastLostSegmentMPEG2TS;                /**< last segment lost by transport stream continuity [epoch s]; 0 = never */
    unsigned long nNumLostSegmentsRTP;                    /**< segments lost by RTP sequence numbers [segments] */
    time_t        tLastLostSegmentRTP;                    /**< last segment lost by RTP sequence numbers [epoch s]; 0 = never */
    unsigned long nNumReconnections;                      /**< connections made [connections] */
    time_t        tLastReconnection;                      /**< last connection made [epoch s]; 0 = never */
    unsigned long nNumFailovers;                          /**< switches to a backup input [switches] */
    time_t        tLastFailover;                          /**< last switch to a backup input [epoch s]; 0 = never */
    unsigned long nNumTimestampRollovers;                 /**< time stamp wrap-arounds [count] */
    time_t        tLastTimestampRollover;                 /**< last time stamp wrap-around [epoch s]; 0 = never */
    unsigned long nNumFramesWithNoPCR;                    /**< frames received with no clock reference [frames] */
    time_t        tLastFrameWithNoPCR;                    /**< last frame received with no clock reference [epoch s]; 0 = never */
    unsigned long nNumFramesWithPTSLowerThanPCR;          /**< frames whose PTS is not after the PCR [frames] */
    time_t        tLastFrameWithPTSLowerThanPCR;          /**< last frame whose PTS is not after the PCR [epoch s]; 0 = never */
    unsigned long nNumNewStreamFlags;                     /**< new-stream markers [markers] */
    time_t        tLastNewStreamFlag;                     /**< last new-stream marker [epoch s]; 0 = never */
    unsigned long nNumResumedStreamFlags;                 /**< resumed-stream markers [markers] */
    time_t        tLastResumedStreamFlag;                 /**< last resumed-stream marker [epoch s]; 0 = never */
    int           iLastPIDDropped;                        /**< PID of the last packet dropped [PID]; 0 or less = none */
    int           iLastError;                             /**< last error: errno value, or if negative an EAI_ code; 0 = none */
    time_t        iLastErrorTime;                         /**< when iLastError was set [epoch s]; 0 = never */
    time_t        iLastCorruptedFrameTime;                /**< last corrupted frame of the input [epoch s]; 0 = never */
    unsigned int  nBitsPerSecond;                         /**< measured input bit rate [bit/s] */
    UINT64        TimeStamp;                              /**< last time stamp seen [90 kHz ticks] */
    time_t        iLastRxTime;                            /**< last reception from the network [epoch s]; 0 = never */
    unsigned int  nNumStreams;                            /**< elementary streams found [streams] */
    unsigned int  nVideoStreams;                          /**< video streams among the elementary streams found [streams] */
    unsigned int  nAudioStreams;                          /**< audio streams among the elementary streams found [streams] */
    unsigned int  nKLVStreams;                            /**< KLV metadata streams among the elementary streams found [streams] */
    unsigned int  nFilteredStreams;                       /**< elementary streams filtered out [streams] */
    unsigned long nInputPacketListSize;                   /**< size of the input packet list [bytes] */
    unsigned long nMaxInputPacketListSize;                /**< largest size of the input packet list [bytes] */
    time_t        tMaxInputPacketListSize;                /**< when the largest size of the input packet list occurred [epoch s]; 0 = never */
    unsigned long nInputPacketListOverflows;              /**< overflows of the input packet list [overflows] */
    time_t        tLastInputPacketListOverflow;           /**< last overflow of the input packet list [epoch s]; 0 = never */
    unsigned long nReadPacketListSize;                    /**< size of the read packet list [bytes] */
    unsigned long nMaxReadPacketListSize;                 /**< largest size of the read packet list [bytes] */
    time_t        tMaxReadPacketListSize;                 /**< when the largest size of the read packet list occurred [epoch s]; 0 = never */
    unsigned long nReadPacketListOverflows;               /**< overflows of the read packet list [overflows] */
    time_t        tLastReadPacketListOverflow;            /**< last overflow of the read packet list [epoch s]; 0 = never */
} SMGR_TDEMUX_COUNTERS;

/** An SRT link. */
typedef struct tagSMGR_STREAM_SRT_STATS
{
    /** traffic, by the direction of the link */
    union
    {
        /** a sending link */
        struct
        {
            SMGR_COUNTER nSentKbps;    /**< sending rate [kbit/s] */
            SMGR_COUNTER nSentPkts;    /**< packets sent [packets] */
            SMGR_COUNTER nSentBytes;   /**< bytes sent [bytes] */
            SMGR_COUNTER nResentPkts;  /**< packets sent again [packets] */
            SMGR_COUNTER nResentBytes; /**< bytes sent again [bytes] */
        } Tx;
        /** a receiving link */
        struct
        {
            SMGR_COUNTER nRecvKbps;         /**< receiving rate [kbit/s] */
            SMGR_COUNTER nRecvPkts;         /**< packets received [packets] */
            SMGR_COUNTER nRecvBytes;        /**< bytes received [bytes] */
            SMGR_COUNTER nUndecryptedPkts;  /**< packets that could not be decrypted [packets] */
            SMGR_COUNTER nUndecryptedBytes; /**< bytes that could not be decrypted [bytes] */
        } Rx;
    } Dir;
    SMGR_COUNTER nLostPkts;              /**< packets lost on the link [packets] */
    SMGR_COUNTER nDroppedPkts;           /**< packets dropped because they came too late to play [packets] */
    SMGR_COUNTER nDroppedBytes;          /**< bytes of the packets dropped because they came too late to play [bytes] */
    SMGR_COUNTER nXmitAckPkts;           /**< acknowledgements sent [packets] */
    SMGR_COUNTER nXmitNakPkts;           /**< retransmission requests sent [packets] */
    int          iReconnects;            /**< connections made [connections] */
    int          iMSS;                   /**< maximum segment size [bytes] */
    int          iLatency;               /**< configured latency [ms] */
    int          iMaxBw;                 /**< maximum bandwidth allowed [kbit/s] */
    int          iAvailBw;               /**< available bandwidth of the link [kbit/s]; 0 or less = unknown */
    int          iKeyState;              /**< state of the key exchange, an SMGR_STREAM_SRT_KM_S; 0 = no encryption */
    int          iKeyLength;             /**< AES key length [bytes]; 0 or less = unknown */
    int          iRTT;                   /**< time to the peer and back [us] */
    int          iBufPkts;               /**< packets in the receive buffer [packets] */
    int          iBufBytes;              /**< bytes in the receive buffer [bytes] */
    int          iBufTimespan;           /**< time span in the receive buffer [ms] */
    int          iRemotePort;            /**< UDP port of the peer [port] */
    int          iLocalPort;             /**< local UDP port [port] */
    int          iOutPortGettingFullCnt; /**< times that the output port became nearly full [count] */
    int          iMaxOutPortLevel;       /**< highest output port level */
    int          iVersion;               /**< SRT version of the local end, 0xMMmmpp; 0 = unknown */
    int          iPeerVersion;           /**< SRT version of the peer, 0xMMmmpp; 0 = unknown */
} SMGR_STREAM_SRT_STATS;

/** A Pro-MPEG FEC receiver (SMPTE ST 2022-1). */
typedef struct tagSMGR_STREAM_PMFECRX_STATS
{
    int  nColumns;           /**< columns of the FEC matrix [columns]; 0 = not known yet */
    int  nRows;              /**< rows of the FEC matrix [rows]; 0 = not known yet */
    BOOL bRowFEC;            /**< row FEC comes in addition to column FEC */
    BOOL bBlockAlign;        /**< the matrix is block aligned */
    int  nMediaPkts;         /**< media packets received [packets] */
    int  nColFecPkts;        /**< column FEC packets received [packets] */
    int  nRowFecPkts;        /**< row FEC packets received [packets] */
    int  nDroppedPkts;       /**< media packets dropped on the way, before repair [packets] */
    int  nRecoveredPkts;     /**< media packets rebuilt from FEC [packets] */
    int  nLostPkts;          /**< media packets lost for good [packets] */
    int  nDroppedRowFECPkts; /**< row FEC packets missing [packets] */
    int  nDroppedColFECPkts; /**< column FEC packets missing [packets] */
} SMGR_STREAM_PMFECRX_STATS;

/** The transport demux. */
typedef struct tagSMGR_TDEMUX_STATS
{
    UINT                     nSize;                             /**< size of this record, set by the session manager [bytes] */
    SMGR_TDEMUX_STATS_STATE  enState;                           /**< state of the input; 0 = unknown */
    BOOL                     bStreamHasBeenStarted;             /**< the stream has been started */
    unsigned int             nSmgrStreamID;                     /**< the session manager's stream identifier [id] */
    int                      enEncapsulation;                   /**< encapsulation code, SMGR_STREAM_ENCAPSULATION_TS_SRT or another */
    int                      enFECType;                         /**< forward error correction, an SMGR_FEC_TYPE; 0 = none */
    SMGR_IP_ADDRESS          tStreamAddress;                    /**< address that the stream is received on */
    unsigned int             nStreamPort;                       /**< port that the stream is received on [port]; 0 = none */
    SMGR_IP_ADDRESS          tSourceAddress;                    /**< address of the sender */
    unsigned int             nSourcePort;                       /**< port of the sender [port]; 0 = none */
    SMGR_COUNTER             nUpTimeInSecs;                     /**< time since the input started [s] */
    unsigned int             nProgramNumber;                    /**< program followed, ISO/IEC 13818-1; 0 = not found */
    unsigned int             nPcrPid;                           /**< PID that carries the PCR [PID]; 0 = not found */
    UINT64                   nPCR;                              /**< last program clock reference [90 kHz ticks] */
    time_t                   tLastPCR;                          /**< last PCR seen [epoch s]; 0 = never */
    SMGR_TDEMUX_SOURCE_STATS tSources[SMGR_TDEMUX_MAX_SOURCES]; /**< elementary streams, unused entries among them */
    SMGR_TDEMUX_COUNTERS     tCounters;                         /**< counters */
    /** the transport's own statistics; enEncapsulation and enFECType tell which member holds, if any */
    union
    {
        SMGR_STREAM_SRT_STATS     SRT;   /**< the SRT link, with encapsulation SMGR_STREAM_ENCAPSULATION_TS_SRT */
        SMGR_STREAM_PMFECRX_STATS PMFEC; /**< the FEC receiver, with TS_RTP and SMGR_FEC_TYPE_PRO_MPEG */
    } Xport;
} SMGR_TDEMUX_STATS;

/* ---- Video framer ---- */

/** Properties of a video stream. */
typedef struct tagSMGR_VFRAMER_STREAM_PROPS
{
    SMGR_TDEMUX_COMPRESSION_TYPE enCompressionType;         /**< video coding; 0 = unknown */
    SMGR_VIDEO_COLOR_TYPE        enColorType;               /**< chroma format and bit depth; 0 = unknown */
    int                          nProfile;                  /**< profile number of the coding's own standard */
    int                          nLevel;                    /**< level number of the coding's own standard */
    int                          nWidth;                    /**< picture width [pixels] */
    int                          nHeight;                   /**< picture height [lines] */
    BOOL                         bInterlaced;               /**< interlaced, with scan letter i in the report for exactly 1 */
    BOOL                         bInterlacedTFF;            /**< interlaced, with the top field first */
    float                        fFrameRate;                /**< frame rate of the stream [frames/s]; 0 = unknown */
    BOOL                         bFrameRateFoundInStream;   /**< the stream itself gives the frame rate */
    unsigned int                 nBitsPerSecond;            /**< bit rate of the stream [bit/s] */
    char                         szFraming[64];             /**< name of the framing; empty = none */
    unsigned int                 nNumberOfBPicturesInARow;  /**< consecutive B pictures now [pictures] */
    unsigned long                nGopInterval;              /**< GOP interval, the distance of key frames [pictures] */
    unsigned int                 nSliceCountPerFrame;       /**< slices of a frame [slices] */
    BOOL                         bHasIFrames;               /**< I frames seen */
    BOOL                         bHasPFrames;               /**< P frames seen */
    BOOL                         bHasBFrames;               /**< B frames seen */
    UINT64                       TimeStamp;                 /**< last time stamp of the stream [90 kHz ticks] */
    UINT64                       TimeStampDelta;            /**< difference of the last two time stamps [90 kHz ticks] */
    BOOL                         bCompatibilityModeEnabled; /**< compatibility mode of the framer, in the default report for exactly 1 */
    unsigned int                 nLatencyInUs;              /**< latency of the framer [us] */
    BOOL                         bTCPresent;                /**< timecode in the stream */
    BOOL                         bCCPresent;                /**< closed captions in the stream */
    BOOL                         bAFDPresent;               /**< active format description in the stream */
    SMGR_VFRAMER_HDR_TYPE        enHDRType;                 /**< dynamic range of the output; 0 = unspecified */
    SMGR_VFRAMER_HDR_TYPE        enHDRTypeInStream;         /**< dynamic range that the stream signals; 0 = unspecified */
    unsigned char                colour_primaries;          /**< ColourPrimaries of ITU-T H.273; 2 = unspecified */
    unsigned char                transfer_characteristics;  /**< TransferCharacteristics of ITU-T H.273; 2 = unspecified */
    unsigned char                matrix_coefficients;       /**< MatrixCoefficients of ITU-T H.273; 2 = unspecified */
    unsigned char                szPayloadID[4];            /**< SDI payload identifier, SMPTE ST 352; all 0 = none */
} SMGR_VFRAMER_STREAM_PROPS;

/** Counters of the video framer. */
typedef struct tagSMGR_VFRAMER_COUNTERS
{
    time_t        tLastVideoFrameReceived;       /**< last video frame received [epoch s]; 0 = never */
    unsigned long nNumStreamIDTransitions;       /**< changes of the input stream [changes] */
    time_t        tLastStreamIDTransition;       /**< last change of the input stream [epoch s]; 0 = never */
    unsigned long nNumFormatTransitions;         /**< changes of the stream properties [changes] */
    time_t        tLastFormatTransition;         /**< last change of the stream properties [epoch s]; 0 = never */
    unsigned long nNumUnsupported;               /**< times that the stream was found unsupported [count] */
    time_t        tLastUnsupported;              /**< when the stream was last found unsupported [epoch s]; 0 = never */
    int           nLastUnsupportedErrorCode;     /**< why the stream was last found unsupported, an SMGR_ERROR_ code; 0 = none */
    unsigned long nNumH264Compression;           /**< H.264 streams seen [streams] */
    time_t        tLastH264Compression;          /**< last H.264 stream [epoch s]; 0 = never */
    unsigned long nNumH265Compression;           /**< H.265 streams seen [streams] */
    time_t        tLastH265Compression;          /**< last H.265 stream [epoch s]; 0 = never */
    unsigned long nNumUnknownCompression;        /**< streams of unknown coding [streams] */
    time_t        tLastUnknownCompression;       /**< last stream of unknown coding [epoch s]; 0 = never */
    unsigned long nNum420_8bitColortype;         /**< 4:2:0 8-bit streams [streams] */
    time_t        tLast420_8bitColortype;        /**< last 4:2:0 8-bit stream [epoch s]; 0 = never */
    unsigned long nNum420_10bitColortype;        /**< 4:2:0 10-bit streams [streams] */
    time_t        tLast420_10bitColortype;       /**< last 4:2:0 10-bit stream [epoch s]; 0 = never */
    unsigned long nNum422_8bitColortype;         /**< 4:2:2 8-bit streams [streams] */
    time_t        tLast422_8bitColortype;        /**< last 4:2:2 8-bit stream [epoch s]; 0 = never */
    unsigned long nNum422_10bitColortype;        /**< 4:2:2 10-bit streams [streams] */
    time_t        tLast422_10bitColortype;       /**< last 4:2:2 10-bit stream [epoch s]; 0 = never */
    unsigned long nNumUnknownColortype;          /**< streams of unknown colour type [streams] */
    time_t        tLastUnknownColortype;         /**< last stream of unknown colour type [epoch s]; 0 = never */
    unsigned long nNumInputPackets;              /**< input packets received [packets] */
    unsigned long nNumInputPacketsFreed;         /**< input packets released [packets] */
    unsigned long nNumInputPacketsDropped;       /**< input packets dropped [packets] */
    time_t        tLastInputPacketDropped;       /**< last input packet dropped [epoch s]; 0 = never */
    unsigned long nInputFifoLength;              /**< packets in the input FIFO now [packets] */
    float         fInputFrameRate;               /**< measured input frame rate [frames/s]; 0 = none measured */
    unsigned long nNumOutputFrames;              /**< pictures sent to the decoder [pictures] */
    time_t        tLastOutputFrame;              /**< last picture sent to the decoder [epoch s]; 0 = never */
    unsigned long nNumOutputFramesOnePiece;      /**< pictures that came in one piece [pictures] */
    time_t        tLastOutputFrameOnePiece;      /**< last picture that came in one piece [epoch s]; 0 = never */
    unsigned long nNumOutputFramesAssembled;     /**< pictures assembled from several pieces [pictures] */
    time_t        tLastOutputFrameAssembled;     /**< last picture assembled from several pieces [epoch s]; 0 = never */
    unsigned long nNumOutputFramesDropped;       /**< pictures dropped [pictures] */
    time_t        tLastOutputFrameDropped;       /**< last picture dropped [epoch s]; 0 = never */
    unsigned long nNumOutputBytesToDecoder;      /**< bytes sent to the decoder [bytes] */
    unsigned long nNumOutputBytesDropped;        /**< bytes of the pictures dropped [bytes] */
    unsigned long nOutputFifoLength;             /**< pictures in the output FIFO now [pictures] */
    unsigned long nNumKeyFrames;                 /**< key frames sent to the decoder [frames] */
    time_t        tLastKeyFrame;                 /**< last key frame sent to the decoder [epoch s]; 0 = never */
    unsigned long nNumIPictures;                 /**< I pictures [pictures] */
    time_t        tLastIPicture;                 /**< last I picture [epoch s]; 0 = never */
    unsigned long nNumPPictures;                 /**< P pictures [pictures] */
    time_t        tLastPPicture;                 /**< last P picture [epoch s]; 0 = never */
    unsigned long nNumBPictures;                 /**< B pictures [pictures] */
    time_t        tLastBPicture;                 /**< last B picture [epoch s]; 0 = never */
    unsigned long nNumUnknownPictures;           /**< pictures of unknown type [pictures] */
    time_t        tLastUnknownPicture;           /**< last picture of unknown type [epoch s]; 0 = never */
    unsigned long nMaxNumberOfBPicturesInARow;   /**< longest run of B pictures [pictures] */
    unsigned long nNumProgressivePicStruct;      /**< progressive pictures [pictures] */
    time_t        tLastProgressivePicStruct;     /**< last progressive picture [epoch s]; 0 = never */
    unsigned long nNumInterlacedPicStruct;       /**< interlaced pictures [pictures] */
    time_t        tLastInterlacedPicStruct;      /**< last interlaced picture [epoch s]; 0 = never */
    unsigned long nNumInterlacedTopFields;       /**< top fields [fields] */
    time_t        tLastInterlacedTopField;       /**< last top field [epoch s]; 0 = never */
    unsigned long nNumInterlacedBottomFields;    /**< bottom fields [fields] */
    time_t        tLastInterlacedBottomField;    /**< last bottom field [epoch s]; 0 = never */
    unsigned long nNumInterlacedBothFields;      /**< pictures that carry both fields [pictures] */
    time_t        tLastInterlacedBothFields;     /**< last picture that carries both fields [epoch s]; 0 = never */
    unsigned long nNumUnknownPicStruct;          /**< pictures of unknown structure [pictures] */
    time_t        tLastUnknownPicStruct;         /**< last picture of unknown structure [epoch s]; 0 = never */
    unsigned long nNumVPSNALs;                   /**< VPS NAL units [NAL units] */
    time_t        tLastVPSNAL;                   /**< last VPS NAL unit [epoch s]; 0 = never */
    unsigned long nNumSPSNALs;                   /**< SPS NAL units [NAL units] */
    time_t        tLastSPSNAL;                   /**< last SPS NAL unit [epoch s]; 0 = never */
    unsigned long nNumPPSNALs;                   /**< PPS NAL units [NAL units] */
    time_t        tLastPPSNAL;                   /**< last PPS NAL unit [epoch s]; 0 = never */
    unsigned long nNumSEINALs;                   /**< SEI NAL units [NAL units] */
    time_t        tLastSEINAL;                   /**< last SEI NAL unit [epoch s]; 0 = never */
    unsigned long nNumSHNALs;                    /**< slice NAL units [NAL units] */
    time_t        tLastSHNAL;                    /**< last slice NAL unit [epoch s]; 0 = never */
    unsigned long nNumAUDNALs;                   /**< access unit delimiters [NAL units] */
    time_t        tLastAUDNAL;                   /**< last access unit delimiter [epoch s]; 0 = never */
    unsigned long nNumFillerNALs;                /**< filler NAL units [NAL units] */
    time_t        tLastFillerNAL;                /**< last filler NAL unit [epoch s]; 0 = never */
    unsigned long nNumUnknownNALs;               /**< NAL units of unknown type [NAL units] */
    time_t        tLastUnknownNAL;               /**< last NAL unit of unknown type [epoch s]; 0 = never */
    unsigned long nNumSPSErrors;                 /**< SPS parse errors [errors] */
    time_t        tLastSPSError;                 /**< last SPS parse error [epoch s]; 0 = never */
    unsigned long nNumPPSErrors;                 /**< PPS parse errors [errors] */
    time_t        tLastPPSError;                 /**< last PPS parse error [epoch s]; 0 = never */
    unsigned long nNumSEIErrors;                 /**< SEI parse errors [errors] */
    time_t        tLastSEIError;                 /**< last SEI parse error [epoch s]; 0 = never */
    unsigned long nNumSHErrors;                  /**< slice header parse errors [errors] */
    time_t        tLastSHError;                  /**< last slice header parse error [epoch s]; 0 = never */
    unsigned long nNumNoNALsInFrame;             /**< frames that held no NAL unit [frames] */
    time_t        tLastNoNALsInFrame;            /**< last frame that held no NAL unit [epoch s]; 0 = never */
    unsigned long nNumTC;                        /**< frames with timecode [frames] */
    unsigned long nNumTCBytesOutput;             /**< timecode bytes output [bytes] */
    time_t        tLastTCReceived;               /**< last frame with timecode [epoch s]; 0 = never */
    unsigned long nNumCC;                        /**< frames with closed captions [frames] */
    unsigned long nNumCCBytesOutput;             /**< closed caption bytes output [bytes] */
    time_t        tLastCCReceived;               /**< last frame with closed captions [epoch s]; 0 = never */
    unsigned long nNumAFD;                       /**< frames with active format description [frames] */
    unsigned long nNumAFDBytesOutput;            /**< active format description bytes output [bytes] */
    time_t        tLastAFDReceived;              /**< last frame with active format description [epoch s]; 0 = never */
    unsigned long nInputPacketListSize;          /**< size of the input packet list [bytes] */
    unsigned long nMaxInputPacketListSize;       /**< largest size of the input packet list [bytes] */
    time_t        tMaxInputPacketListSize;       /**< when the largest size of the input packet list occurred [epoch s]; 0 = never */
    unsigned long nInputPacketListOverflows;     /**< overflows of the input packet list [overflows] */
    time_t        tLastInputPacketListOverflow;  /**< last overflow of the input packet list [epoch s]; 0 = never */
    unsigned long nOutputPacketListSize;         /**< size of the output packet list [bytes] */
    unsigned long nMaxOutputPacketListSize;      /**< largest size of the output packet list [bytes] */
    time_t        tMaxOutputPacketListSize;      /**< when the largest size of the output packet list occurred [epoch s]; 0 = never */
    unsigned long nOutputPacketListOverflows;    /**< overflows of the output packet list [overflows] */
    time_t        tLastOutputPacketListOverflow; /**< last overflow of the output packet list [epoch s]; 0 = never */
} SMGR_VFRAMER_COUNTERS;

/** The video framer. */
typedef struct tagSMGR_VFRAMER_STATS
{
    SMGR_VFRAMER_STATE        enState;             /**< state of the framer; 0 = unknown */
    UINT                      nDecoderID;          /**< decoder that the framer belongs to [id] */
    int                       nStreamID;           /**< input stream [id] */
    SMGR_VFRAMER_STREAM_PROPS tCurrentProperties;  /**< properties of the stream being framed */
    SMGR_VFRAMER_STREAM_PROPS tPreviousProperties; /**< properties before the last format change */
    SMGR_VFRAMER_COUNTERS     tCounters;           /**< counters */
} SMGR_VFRAMER_STATS;

/* ---- Hardware video decoder ---- */

/** Counters of the hardware video decoder. */
typedef struct tagSMGR_VCUDEC_COUNTERS
{
    SMGR_COUNTER nNumReceivedFrames;                /**< pictures received [pictures] */
    time_t       tLastReceivedFrame;                /**< last picture received [epoch s]; 0 = never */
    SMGR_COUNTER nNumReceivedFramesFreed;           /**< received pictures freed [pictures] */
    time_t       tLastReceivedFrameFreed;           /**< last received picture freed [epoch s]; 0 = never */
    SMGR_COUNTER nNumFramesSentToDecoder;           /**< pictures sent to the codec unit [pictures] */
    time_t       tLastFrameSentToDecoder;           /**< last picture sent to the codec unit [epoch s]; 0 = never */
    SMGR_COUNTER nNumDroppedFrames;                 /**< input pictures dropped [pictures] */
    time_t       tLastDroppedFrame;                 /**< last input picture dropped [epoch s]; 0 = never */
    SMGR_COUNTER nNumDroppedIFrames;                /**< I pictures among the input pictures dropped [pictures] */
    time_t       tLastDroppedIFrame;                /**< last I picture dropped at the input [epoch s]; 0 = never */
    SMGR_COUNTER nNumDroppedPFrames;                /**< P pictures among the input pictures dropped [pictures] */
    time_t       tLastDroppedPFrame;                /**< last P picture dropped at the input [epoch s]; 0 = never */
    SMGR_COUNTER nNumDroppedBFrames;                /**< B pictures among the input pictures dropped [pictures] */
    time_t       tLastDroppedBFrame;                /**< last B picture dropped at the input [epoch s]; 0 = never */
    SMGR_COUNTER nNumDecodedFrames;                 /**< input pictures decoded [pictures] */
    time_t       tLastDecodedFrame;                 /**< last input picture decoded [epoch s]; 0 = never */
    SMGR_COUNTER nNumConcealedFrames;               /**< input pictures concealed [pictures] */
    time_t       tLastConcealedFrame;               /**< last input picture concealed [epoch s]; 0 = never */
    SMGR_COUNTER nNumResyncForLostOfAVSync;         /**< resynchronisations after a loss of A/V sync [count] */
    time_t       tLastResyncForLostOfAVSync;        /**< last resynchronisation after a loss of A/V sync [epoch s]; 0 = never */
    SMGR_COUNTER nNumFramesSentToDisplay;           /**< pictures sent to the display [pictures] */
    time_t       tLastFrameSentToDisplay;           /**< last picture sent to the display [epoch s]; 0 = never */
    SMGR_COUNTER nNumDisplayedOutputFrames;         /**< output frames displayed [frames] */
    time_t       tLastDisplayedOutputFrame;         /**< last output frame displayed [epoch s]; 0 = never */
    SMGR_COUNTER nNumSkippedOutputFrames;           /**< output frames skipped [frames] */
    time_t       tLastSkippedOutputFrame;           /**< last output frame skipped [epoch s]; 0 = never */
    SMGR_COUNTER nNumReplayedOutputFrames;          /**< output frames shown again [frames] */
    time_t       tLastReplayedOutputFrame;          /**< last output frame shown again [epoch s]; 0 = never */
    SMGR_COUNTER nNumDisplayedFramesFreed;          /**< displayed pictures freed [pictures] */
    time_t       tLastDisplayedFrameFreed;          /**< last displayed picture freed [epoch s]; 0 = never */
    SMGR_COUNTER nNumOutputErrors;                  /**< output errors [errors] */
    time_t       tLastOutputError;                  /**< last output error [epoch s]; 0 = never */
    SMGR_COUNTER nNumOutputLate;                    /**< pictures sent to the display late [pictures] */
    time_t       tLastOutputLate;                   /**< last picture sent to the display late [epoch s]; 0 = never */
    int          nOutputSTCLeadTime;                /**< lead of the last output over the STC [ms] */
    int          nMinOutputSTCLeadTime;             /**< smallest lead of an output over the STC [ms] */
    time_t       tMinOutputSTCLeadTime;             /**< when the smallest lead of an output over the STC occurred [epoch s]; 0 = never */
    int          nMaxOutputSTCLeadTime;             /**< largest lead of an output over the STC [ms] */
    time_t       tMaxOutputSTCLeadTime;             /**< when the largest lead of an output over the STC occurred [epoch s]; 0 = never */
    SMGR_COUNTER nNumReorderFramesIn;               /**< pictures that entered the reorder queue [pictures] */
    time_t       tLastReorderFrameIn;               /**< last picture that entered the reorder queue [epoch s]; 0 = never */
    SMGR_COUNTER nNumReorderFramesQOcc;             /**< pictures in the reorder queue now [pictures] */
    SMGR_COUNTER nNumReorderFramesOut;              /**< pictures that left the reorder queue [pictures] */
    time_t       tLastReorderFrameOut;              /**< last picture that left the reorder queue [epoch s]; 0 = never */
    SMGR_COUNTER nNumReorderFramesExtractCalls;     /**< extractions from the reorder queue [calls] */
    time_t       tLastReorderFramesExtractCall;     /**< last extraction from the reorder queue [epoch s]; 0 = never */
    SMGR_COUNTER nNumReorderFramesFlushCalls;       /**< flushes of the reorder queue [calls] */
    time_t       tLastReorderFramesFlushCall;       /**< last flush of the reorder queue [epoch s]; 0 = never */
    SMGR_COUNTER nNumInputParsedCallbacks;          /**< input-parsed callbacks [calls] */
    time_t       tLastInputParsedCallback;          /**< last input-parsed callback [epoch s]; 0 = never */
    SMGR_COUNTER nNumResolutionFoundCallbacks;      /**< resolution-found callbacks [calls] */
    time_t       tLastResolutionFoundCallback;      /**< last resolution-found callback [epoch s]; 0 = never */
    SMGR_COUNTER nNumDecodedCallbacks;              /**< frame-decoded callbacks [calls] */
    time_t       tLastDecodedCallback;              /**< last frame-decoded callback [epoch s]; 0 = never */
    SMGR_COUNTER nNumDisplayCallbacks;              /**< display callbacks [calls] */
    time_t       tLastDisplayCallback;              /**< last display callback [epoch s]; 0 = never */
    SMGR_COUNTER nNumSEICallbacks;                  /**< SEI callbacks [calls] */
    time_t       tLastSEICallback;                  /**< last SEI callback [epoch s]; 0 = never */
    SMGR_COUNTER nMaxPushedQueueOccupancy;          /**< most buffers in the queue pushed to the codec unit [buffers] */
    SMGR_COUNTER nCurPushedQueueOccupancy;          /**< buffers in the queue pushed to the codec unit now [buffers] */
    SMGR_COUNTER nNumImageCaptures;                 /**< video images captured [images] */
    time_t       tLastImageCapture;                 /**< last video image captured [epoch s]; 0 = never */
    SMGR_COUNTER nNumImageCapturesFailed;           /**< image captures that failed [images] */
    time_t       tLastImageCaptureFailed;           /**< last image capture that failed [epoch s]; 0 = never */
    time_t       iLastErrorTime;                    /**< when nLastErrorCode was set [epoch s]; 0 = never */
    int          nLastErrorCode;                    /**< last error code of creating a decoder in the codec unit; 0 = none */
    SMGR_COUNTER nNumEOSEvents;                     /**< end-of-stream events [events] */
    time_t       tLastEOSEvent;                     /**< last end-of-stream event [epoch s]; 0 = never */
    SMGR_COUNTER nNumExitErrors;                    /**< errors on exit [errors] */
    time_t       tLastExitError;                    /**< last error on exit [epoch s]; 0 = never */
    SMGR_COUNTER nNumNoInfoErrors;                  /**< pictures that came back without their information [pictures] */
    time_t       tLastNoInfoError;                  /**< last picture that came back without its information [epoch s]; 0 = never */
    SMGR_COUNTER nNumDiscontinuty;                  /**< discontinuities of the codec unit's input [count] */
    time_t       tLastDiscontinuity;                /**< last discontinuity of the codec unit's input [epoch s]; 0 = never */
    SMGR_COUNTER nNumOfFrmNotRelease;               /**< frames that the codec unit has not released [frames] */
    time_t       tLastNumOfFrmNotRelease;           /**< last frame that the codec unit has not released [epoch s]; 0 = never */
    SMGR_COUNTER nOutputTimestampNotIncreasing;     /**< output time stamps that did not increase [count] */
    time_t       tLastOutputTimestampNotIncreasing; /**< last output time stamp that did not increase [epoch s]; 0 = never */
    SMGR_COUNTER nOutputTimestampsMissing;          /**< output pictures without a time stamp [pictures] */
    time_t       tLastOutputTimestampMissing;       /**< last output picture without a time stamp [epoch s]; 0 = never */
    UINT         nNumStillImages;                   /**< still images shown [images] */
    UINT         nMaxStillImageTimeOn;              /**< longest time that a still image was on [s] */
    time_t       tLastStillImageOn;                 /**< when a still image last came on [epoch s]; 0 = never */
    time_t       tLastStillImageOff;                /**< when a still image last went off [epoch s]; 0 = never */
} SMGR_VCUDEC_COUNTERS;

/** The hardware video decoder. Its delays are measured from the framer's output. */
typedef struct tagSMGR_VCUDEC_STATS
{
    UINT                     nSize;                           /**< size of this record, set by the session manager [bytes] */
    SMGR_VCUDEC_STATE        enState;                         /**< state of the decoder; 0 = unknown */
    int                      nLoadPercentage;                 /**< load of the decoder [%] */
    unsigned int             nLatencyInUs;                    /**< latency of the decoder [us] */
    UINT64                   nDisplayFormat;                  /**< display format code, video_formats.h; 0 = none */
    BOOL                     bHasChroma;                      /**< the stream carries chroma */
    UINT                     nFrameBufferWidth;               /**< width of a frame buffer [pixels] */
    UINT                     nFrameBufferHeight;              /**< height of a frame buffer [pixels] */
    unsigned long            nFrameBufferSizeEachInBytes;     /**< size of a frame buffer [bytes] */
    UINT                     nFrameBufferNumber;              /**< frame buffers that the stream requires [buffers] */
    UINT                     nFrameBufferNumberInUsed;        /**< frame buffers allocated [buffers] */
    UINT                     nFrameBufferBitDepthY;           /**< luma bit depth [bits] */
    UINT                     nFrameBufferBitDepthC;           /**< chroma bit depth [bits] */
    BOOL                     bCropping;                       /**< the crop offsets are in force */
    UINT32                   nCropOffsetLeft;                 /**< crop offset at the left [pixels] */
    UINT32                   nCropOffsetRight;                /**< crop offset at the right [pixels] */
    UINT32                   nCropOffsetTop;                  /**< crop offset at the top [pixels] */
    UINT32                   nCropOffsetBottom;               /**< crop offset at the bottom [pixels] */
    SMGR_VCUDEC_PICSTRUCTURE enPicStructure;                  /**< structure of the last picture; -1 = unknown */
    BOOL                     bVDelayInputEstimateShortDelay;  /**< input delays gathered over 1 s instead of 10 s */
    BOOL                     bVDelayOutputEstimateShortDelay; /**< output delays gathered over 1 s instead of 10 s */
    UINT                     nVDelayInputMS;                  /**< delay from the framer's output to the decoder's input now [ms] */
    UINT                     nVDelayInputMSAvg;               /**< average delay from the framer's output to the decoder's input in the last 10 s or 1 s [ms] */
    UINT                     nVMaxDelayInputMS;               /**< largest delay from the framer's output to the decoder's input in the last 10 s or 1 s [ms] */
    UINT                     nVMinDelayInputMS;               /**< smallest delay from the framer's output to the decoder's input in the last 10 s or 1 s [ms] */
    UINT                     nVCurReOrderLen;                 /**< length of the reorder list now [pictures] */
    UINT                     nVMaxReOrderLen;                 /**< largest length of the reorder list in the last 10 s or 1 s [pictures] */
    UINT                     nVMinReOrderLen;                 /**< smallest length of the reorder list in the last 10 s or 1 s [pictures] */
    UINT                     nVDelayOutputMS;                 /**< delay from the framer's output to the decoder's output now [ms] */
    UINT                     nVDelayOutputMSAvg;              /**< average delay from the framer's output to the decoder's output in the last 10 s or 1 s [ms] */
    UINT                     nVMaxDelayOutputMS;              /**< largest delay from the framer's output to the decoder's output in the last 10 s or 1 s [ms] */
    UINT                     nVMinDelayOutputMS;              /**< smallest delay from the framer's output to the decoder's output in the last 10 s or 1 s [ms] */
    UINT                     nVMaxDelayWithinVCUMS;           /**< largest delay within the codec unit in the last 10 s or 1 s [ms] */
    UINT                     nVMinDelayWithinVCUMS;           /**< smallest delay within the codec unit in the last 10 s or 1 s [ms] */
    UINT                     nVCurBDListLen;                  /**< length of the hardware's descriptor list now [descriptors] */
    UINT                     nVMaxBDListLen;                  /**< largest length of the hardware's descriptor list in the last 10 s or 1 s [descriptors] */
    UINT                     nVMinBDListLen;                  /**< smallest length of the hardware's descriptor list in the last 10 s or 1 s [descriptors] */
    UINT                     nVTheoDelayHwOutputMS;           /**< theoretical delay from the framer's output to the hardware output [ms]; 0 = none */
    UINT                     nVDelayHwOutputMS;               /**< measured delay from the framer's output to the hardware output [ms]; 0 = not measured */
    UINT                     nVDelayHwOutputFrameMS;          /**< delay from the framer's output at which the hardware really played the frame [ms] */
    UINT                     nVDecInputJitterMS;              /**< jitter of the decoder's input [ms] */
    UINT                     nVDecMaxInputJitterMS;           /**< largest jitter of the codec unit's input [ms] */
    UINT                     nVDecOutputJitterMS;             /**< jitter of the decoder's output [ms] */
    UINT                     nVDecJitterMS;                   /**< jitter of the decoder: output less input jitter [ms] */
    UINT                     nVDecLatencyMS;                  /**< decoder latency: smallest output less smallest input delay [ms] */
    UINT64                   nVKeyDecDelayMS;                 /**< decoding time of a key frame [ms]; 0 = none */
    int                      enStillImageType;                /**< kind of still image; 0 = none */
    BOOL                     bStillImageActive;               /**< a still image is being shown */
    SMGR_VCUDEC_COUNTERS     tCounters;                       /**< counters */
    BOOL                     bReordering;                     /**< the decoded picture buffer reorders */
} SMGR_VCUDEC_STATS;

/* ---- Metadata decoder ---- */

/** Counters of a metadata channel. */
typedef struct tagSMGR_METADATADEC_CHANNEL_COUNTERS
{
    unsigned long nNumInputPackets;                  /**< packets received [packets] */
    time_t        tLastInputPacket;                  /**< last packet received [epoch s]; 0 = never */
    unsigned long nNumSynchronousPackets;            /**< synchronous packets received [packets] */
    time_t        tLastSynchronousPacket;            /**< last synchronous packet [epoch s]; 0 = never */
    unsigned long nNumAsynchronousPackets;           /**< asynchronous packets received [packets] */
    time_t        tLastAsynchronousPacket;           /**< last asynchronous packet [epoch s]; 0 = never */
    unsigned long nNumOutputPackets;                 /**< packets output [packets] */
    time_t        tLastOutputPacket;                 /**< last packet output [epoch s]; 0 = never */
    unsigned long nNumFreedPackets;                  /**< packets released [packets] */
    time_t        tLastFreedPacket;                  /**< last packet released [epoch s]; 0 = never */
    unsigned long nNumDroppedPackets;                /**< packets dropped [packets] */
    time_t        tLastDroppedPacket;                /**< last packet dropped [epoch s]; 0 = never */
    unsigned long nNumOutputFailedPackets;           /**< packets whose output failed [packets] */
    time_t        tLastOutputFailedPacket;           /**< last packet whose output failed [epoch s]; 0 = never */
    unsigned long nNumOutputFailedLatePackets;       /**< packets whose output failed because they were late [packets] */
    time_t        tLastOutputFailedLatePacket;       /**< last packet whose output failed because of its lateness [epoch s]; 0 = never */
    unsigned long nNumOutputPayloadBytes;            /**< payload bytes output [bytes] */
    unsigned long nMaxOutputPayloadBytes;            /**< largest payload of a packet output [bytes] */
    time_t        tMaxOutputPayloadBytes;            /**< when the largest payload of a packet occurred [epoch s]; 0 = never */
    unsigned long nNumNonIncreasingOutputTimestamps; /**< output time stamps that did not increase [count] */
    time_t        tLastNonIncreasingOutputTimestamp; /**< last output time stamp that did not increase [epoch s]; 0 = never */
    unsigned long nNumErrors;                        /**< errors of other kinds [errors] */
    time_t        tLastOutputTime;                   /**< last output of the channel [epoch s]; 0 = never */
    unsigned long nNumInPacketList;                  /**< packets in the input packet list now [packets] */
    unsigned long nNumPacketListResets;              /**< resets of the packet list [resets] */
    time_t        tLastPacketListReset;              /**< last reset of the packet list [epoch s]; 0 = never */
    unsigned long nNumBDAllocated;                   /**< buffer descriptors allocated [descriptors] */
    time_t        tLastBDAllocated;                  /**< last buffer descriptor allocated [epoch s]; 0 = never */
    unsigned long nNumBDAllocateFailed;              /**< buffer descriptor allocations that failed [descriptors] */
    time_t        tLastBDAllocateFailed;             /**< last buffer descriptor allocation that failed [epoch s]; 0 = never */
    unsigned long nNumBDWritten;                     /**< buffer descriptors written [descriptors] */
    time_t        tLastBDWritten;                    /**< last buffer descriptor written [epoch s]; 0 = never */
    unsigned long nNumBDFreed;                       /**< buffer descriptors freed [descriptors] */
    time_t        tLastBDFreed;                      /**< last buffer descriptor freed [epoch s]; 0 = never */
    unsigned long nNumBDInFreeList;                  /**< buffer descriptors in the free list now [descriptors] */
    unsigned long nNumBDInUsedList;                  /**< buffer descriptors in the used list now [descriptors] */
    int           nBDFreeListHeadIndex;              /**< first descriptor of the free list [index] */
    int           nBDUsedListHeadIndex;              /**< first descriptor of the used list [index] */
    unsigned long nCurrentDelayInPackets;            /**< delay of the channel now [packets] */
    unsigned long nNumInDelayList;                   /**< packets in the delay list now [packets] */
    unsigned long nNumOutputLate;                    /**< packets sent after their time [packets] */
    time_t        tLastOutputLate;                   /**< last packet sent late [epoch s]; 0 = never */
    int           nOutputSTCLeadTime;                /**< lead of the last output over the STC [ms] */
    int           nMinOutputSTCLeadTime;             /**< smallest lead of an output over the STC [ms] */
    time_t        tMinOutputSTCLeadTime;             /**< when the smallest lead of an output over the STC occurred [epoch s]; 0 = never */
    int           nMaxOutputSTCLeadTime;             /**< largest lead of an output over the STC [ms] */
    time_t        tMaxOutputSTCLeadTime;             /**< when the largest lead of an output over the STC occurred [epoch s]; 0 = never */
} SMGR_METADATADEC_CHANNEL_COUNTERS;

/** One channel of the metadata decoder. */
typedef struct tagSMGR_METADATADEC_CHANNEL_STATS
{
    char                              szName[8];    /**< name of the channel; empty = none */
    SMGR_METADATA_CHANNEL_TYPE        enType;       /**< kind of metadata; -1 = unknown */
    SMGR_METADATA_STATE               enState;      /**< state of the channel; 0 = unknown */
    unsigned int                      nLatencyInUs; /**< latency of the channel [us] */
    SMGR_METADATADEC_CHANNEL_COUNTERS tCounters;    /**< counters */
} SMGR_METADATADEC_CHANNEL_STATS;

/** The last timecode decoded (SMPTE ST 12-1). */
typedef struct tagSMGR_METADATADEC_TC_VALUE
{
    BOOL bTCValid;   /**< exactly 1 while the last timecode holds */
    UINT nTCHours;   /**< hours of the last timecode [h] */
    UINT nTCMinutes; /**< minutes of the last timecode [min] */
    UINT nTCSeconds; /**< seconds of the last timecode [s] */
    UINT nTCFrames;  /**< frames of the last timecode [frames] */
} SMGR_METADATADEC_TC_VALUE;

/** Counters of the metadata decoder. */
typedef struct tagSMGR_METADATADEC_COUNTERS
{
    unsigned long             nNumReceivedPackets; /**< metadata packets received [packets] */
    SMGR_METADATADEC_TC_VALUE tTCValue;            /**< last timecode decoded */
} SMGR_METADATADEC_COUNTERS;

/** The metadata decoder. */
typedef struct tagSMGR_METADATADEC_STATS
{
    SMGR_METADATA_STATE            enState;                                 /**< state of the decoder; 0 = unknown */
    UINT                           nDecoderID;                              /**< decoder that the metadata belong to [id] */
    UINT                           nInputQOccupancy;                        /**< packets in the input queue now [packets] */
    SMGR_METADATADEC_CHANNEL_STATS tChannel[SMGR_METADATADEC_MAX_CHANNELS]; /**< KLV, timecode, closed captions and AFD */
    SMGR_METADATADEC_COUNTERS      tCounters;                               /**< counters */
} SMGR_METADATADEC_STATS;

/* ---- Buffering ---- */

/** Counters of the MultiSync mode. */
typedef struct tagSMGR_CBUFFERING_MULTISYNC_COUNTERS
{
    unsigned long nNumTCPackets;          /**< timecode packets received [packets] */
    unsigned long nNumTCPacketsInvalid;   /**< timecode packets rejected [packets] */
    time_t        tLastTCReceived;        /**< last timecode packet [epoch s]; 0 = never */
    time_t        tLastInvalidTCReceived; /**< last rejected timecode packet [epoch s]; 0 = never */
} SMGR_CBUFFERING_MULTISYNC_COUNTERS;

/** The MultiSync mode: decoders that present the same content at the same moment, by timecode. */
typedef struct tagSMGR_CBUFFERING_MULTISYNC_STATS
{
    BOOL                               bTimecodePresent;          /**< exactly 1 while the stream carries a timecode */
    BOOL                               bTimecodeValid;            /**< exactly 1 while the timecode is usable */
    int                                nTimecodeInMs;             /**< the stream's timecode as time of day [ms] */
    int                                nSystemTimeInMs;           /**< system time of day at the moment of the stream's timecode [ms] */
    int                                nTransmissionTimeMs;       /**< transmission time of the stream [ms] */
    UINT                               nMultiSyncDelaySetMs;      /**< MultiSync delay configured [ms] */
    unsigned int                       nMultiSyncDelayActualMs;   /**< MultiSync delay in force [ms] */
    unsigned int                       nMultiSyncDelayRangeMinMs; /**< smallest MultiSync delay that can be applied [ms] */
    unsigned int                       nMultiSyncDelayRangeMaxMs; /**< largest MultiSync delay that can be applied [ms] */
    SMGR_CBUFFERING_MULTISYNC_COUNTERS tCounters;                 /**< counters */
} SMGR_CBUFFERING_MULTISYNC_STATS;

/** What the controller measures of the delay that the chain needs, in every mode. */
typedef struct tagSMGR_CBUFFERING_AUTOMATIC_STATS
{
    UINT   nMaxInputJitterMs;            /**< largest input jitter [ms] */
    time_t tMaxInputJitterChanged;       /**< when the largest input jitter last changed [epoch s]; 0 = never */
    int    nNonVideoLateMs;              /**< lateness of the non-video streams now, negative: early [ms] */
    int    nNonVideoLateMaxMs;           /**< largest lateness of the non-video streams [ms] */
    time_t tNonVideoLateMax;             /**< when the largest lateness of the non-video streams occurred [epoch s]; 0 = never */
    UINT   nVideoDecoderLatencyMs;       /**< latency of the video decoder now [ms] */
    UINT   nVideoDecoderLatencyMaxMs;    /**< largest latency of the video decoder [ms] */
    time_t tVideoDecoderLatencyMax;      /**< when the largest latency of the video decoder occurred [epoch s]; 0 = never */
    UINT   nVideoDecoderJitterMs;        /**< jitter of the video decoder now [ms] */
    UINT   nVideoDecoderJitterMaxMs;     /**< largest jitter of the video decoder [ms] */
    time_t tVideoDecoderJitterMax;       /**< when the largest jitter of the video decoder occurred [epoch s]; 0 = never */
    int    nVideoSTCLeadTimeAvgActualMs; /**< average lead of video time stamps over the STC [ms] */
    int    nVideoSTCLeadTimeMinActualMs; /**< smallest lead of video time stamps over the STC [ms] */
    int    nVideoSTCLeadTimeMaxActualMs; /**< largest lead of video time stamps over the STC [ms] */
    int    nAudioSTCLeadTimeAvgActualMs; /**< average lead of audio time stamps over the STC [ms] */
    int    nAudioSTCLeadTimeMinActualMs; /**< smallest lead of audio time stamps over the STC [ms] */
    int    nAudioSTCLeadTimeMaxActualMs; /**< largest lead of audio time stamps over the STC [ms] */
    UINT   nHardwareDelayMs;             /**< fixed delay of the hardware output path [ms] */
    time_t tLastVideoSkipReplayTime;     /**< last video frame skipped or shown again [epoch s]; 0 = never */
    time_t tLastAudioSkipTime;           /**< last audio skipped [epoch s]; 0 = never */
} SMGR_CBUFFERING_AUTOMATIC_STATS;

/** Counters of one buffered elementary stream. */
typedef struct tagSMGR_CBUFFERING_CHANNEL_COUNTERS
{
    unsigned long nNumReceivedPackets;      /**< packets received [packets] */
    unsigned long nNumOutputPackets;        /**< packets released to the decoder [packets] */
    unsigned int  nMaxQueueOccupancyFrames; /**< most frames in the queue [frames] */
} SMGR_CBUFFERING_CHANNEL_COUNTERS;

/** One buffered elementary stream. */
typedef struct tagSMGR_CBUFFERING_CHANNEL_STATS
{
    SMGR_TDEMUX_DATA_TYPE            enType;                /**< kind of stream; 0 = unknown */
    UINT                             nBufferingDelayTimeMs; /**< buffering delay applied [ms] */
    UINT                             nDelayTimeMsActual;    /**< buffering delay reached [ms] */
    int                              nSTCLeadTimeMsSet;     /**< STC lead time set [ms] */
    UINT                             nTotalOutputLatencyMs; /**< latency from input to output [ms] */
    int                              nPCRtoPTSTimeMsActual; /**< distance from the PCR to the PTS [ms] */
    UINT                             nJitterTimeMsActual;   /**< jitter of the stream now [ms] */
    UINT                             nJitterTimeMsSet;      /**< jitter allowance set [ms] */
    UINT                             nJitterTimeMsMaximum;  /**< largest jitter of the stream [ms] */
    unsigned int                     nQueueOccupancyFrames; /**< frames in the queue now [frames] */
    UINT64                           TimeStamp;             /**< time stamp of the last output [90 kHz ticks] */
    time_t                           tLastOutputTime;       /**< last packet released to the decoder [epoch s]; 0 = never */
    SMGR_CBUFFERING_CHANNEL_COUNTERS tCounters;             /**< counters */
} SMGR_CBUFFERING_CHANNEL_STATS;

/** Counters of the buffering controller. */
typedef struct tagSMGR_CBUFFERING_COUNTERS
{
    SMGR_COUNTER nNumReceivedPackets;                /**< packets received from the demux [packets] */
    time_t       tLastReceivedPacket;                /**< last packet received from the demux [epoch s]; 0 = never */
    SMGR_COUNTER nNumOutputPackets;                  /**< packets released to the decoders [packets] */
    time_t       tLastOutputPacket;                  /**< last packet released to the decoders [epoch s]; 0 = never */
    SMGR_COUNTER nNumDroppedPackets;                 /**< packets discarded [packets] */
    time_t       tLastDroppedPacket;                 /**< last packet discarded [epoch s]; 0 = never */
    SMGR_COUNTER nNumUnknownPackets;                 /**< packets of no known channel [packets] */
    time_t       tLastUnknownPacket;                 /**< last packet of no known channel [epoch s]; 0 = never */
    SMGR_COUNTER nNumPCRPackets;                     /**< packets that carried a PCR [packets] */
    SMGR_COUNTER nNumPCRUpdates;                     /**< PCR values taken over [updates] */
    time_t       tLastPCRUpdate;                     /**< last PCR value taken over [epoch s]; 0 = never */
    SMGR_COUNTER nNumSTCUpdates;                     /**< corrections of the STC [updates] */
    time_t       tLastSTCUpdate;                     /**< last correction of the STC [epoch s]; 0 = never */
    SMGR_COUNTER nNumBufferingAdjustments;           /**< changes of the buffering delay [changes] */
    time_t       tLastBufferingAdjustmentTime;       /**< last change of the buffering delay [epoch s]; 0 = never */
    SMGR_COUNTER nNumSTCLeadTimeAdjustments;         /**< changes of the STC lead time [changes] */
    time_t       tLastSTCLeadTimeAdjustmentTime;     /**< last change of the STC lead time [epoch s]; 0 = never */
    SMGR_COUNTER nNumLateOutputs;                    /**< packets released after their due time [packets] */
    int          nMaxLateOutputMs;                   /**< largest lateness of a packet released [ms] */
    int          nMaxLateOutputBurstFrms;            /**< longest run of frames released late [frames] */
    time_t       tLastLateOutput;                    /**< last packet released after its due time [epoch s]; 0 = never */
    int          nNumResets;                         /**< resets of the controller [resets] */
    time_t       tLastReset;                         /**< last reset of the controller [epoch s]; 0 = never */
    SMGR_COUNTER nBufferingOccupancyBytes;           /**< bytes held in the buffers now [bytes] */
    SMGR_COUNTER nMaxBufferingOccupancyBytes;        /**< most bytes held in the buffers [bytes] */
    time_t       tMaxBufferingOccupancyBytes;        /**< when the buffers held most [epoch s]; 0 = never */
    SMGR_COUNTER nBufferingOverflows;                /**< buffer overflows [overflows] */
    time_t       tLastBufferingOverflow;             /**< last buffer overflow [epoch s]; 0 = never */
    SMGR_COUNTER nSynthesizedAsyncTimestamps;        /**< time stamps made up for asynchronous streams [count] */
    time_t       tLastSynthesizedAsyncTimestamp;     /**< last time stamp made up for asynchronous streams [epoch s]; 0 = never */
    SMGR_COUNTER nSynthesizedAsyncTimestampFails;    /**< time stamps for asynchronous streams that could not be made up [count] */
    time_t       tLastSynthesizedAsyncTimestampFail; /**< last time stamp for asynchronous streams that could not be made up [epoch s]; 0 = never */
} SMGR_CBUFFERING_COUNTERS;

/** The buffering controller. */
typedef struct tagSMGR_CBUFFERING_STATS
{
    UINT                            nDecoderID;                             /**< decoding chain that the controller belongs to [id] */
    SMGR_CBUFFERING_STATUS          enStatus;                               /**< state of the controller */
    int                             enBufferingMode;                        /**< buffering mode, an SMGR_DECSDI_BUFFERING_ value */
    UINT                            nFixedDelayMs;                          /**< delay configured for the fixed mode [ms] */
    UINT                            nMultiSyncDelayMs;                      /**< delay configured for the MultiSync mode, of which nMultiSyncDelayActualMs is in force [ms] */
    UINT                            nMinDelayMs;                            /**< smallest delay that the chain can honour [ms] */
    UINT                            nMaxDelayMs;                            /**< largest buffering delay allowed [ms] */
    UINT64                          nPCR;                                   /**< last PCR of the stream [90 kHz ticks] */
    UINT64                          nSTC;                                   /**< STC of the decoder now [90 kHz ticks] */
    SMGR_CBUFFERING_MULTISYNC_STATS tMultiSync;                             /**< figures of the MultiSync mode */
    SMGR_CBUFFERING_AUTOMATIC_STATS tAutomatic;                             /**< figures of the delay that the chain needs */
    BOOL                            bBufferingDelaySet;                     /**< the initial buffering delay has been applied */
    int                             nSTCtoPCRLeadTimeMs;                    /**< STC minus PCR, positive: the STC is ahead [ms] */
    UINT                            nSetDelayMs;                            /**< delay set in the decoder [ms] */
    SMGR_CBUFFERING_CHANNEL_STATS   tChannel[SMGR_CBUFFERING_MAX_CHANNELS]; /**< elementary streams; entry 0 is the video */
    SMGR_CBUFFERING_COUNTERS        tCounters;                              /**< counters */
} SMGR_CBUFFERING_STATS;

/* ---- Clock recovery ---- */

/** The clock recovery loop, which locks the STC to the PCR of the stream (ISO/IEC 13818-1). */
typedef struct tagSMGR_CLOCK_RECOVERY_DECODER_STATS
{
    int           TrackingStarted;       /**< flag: tracking has started */
    int           SampleCount;           /**< samples taken by the loop [samples] */
    int           ReSyncCount;           /**< resynchronisations of the loop [count] */
    unsigned long PcrUpdates;            /**< PCR updates of the loop [updates] */
    time_t        tLastPcrUpdate;        /**< last PCR update of the loop [epoch s]; 0 = never */
    long          OldSndClk;             /**< sender's clock at the last sample [90 kHz ticks] */
    long          OldRcvClk;             /**< receiver's clock at the last sample [90 kHz ticks] */
    long          OldDeltaSnd;           /**< last difference of the sender's clock [90 kHz ticks] */
    long          FilterDeltaSnd;        /**< filtered difference of the sender's clock [90 kHz ticks] */
    long          OldDeltaClk;           /**< last difference of the two clocks [90 kHz ticks] */
    long          FilterDeltaClk;        /**< filtered difference of the two clocks [90 kHz ticks] */
    long          OldPll;                /**< STC frequency now [Hz] */
    long          StcClkNominal;         /**< nominal STC frequency [Hz] */
    int           trackingMode;          /**< tracking mode, an SMGR_CLOCK_TRACKING_ value */
    int           PllNotSettled;         /**< flag: the PLL has not settled */
    int           PllSettleTime;         /**< time that the PLL took to settle [s]; 0 = none */
    long          curPllAvg;             /**< average STC frequency of the last 2 min [Hz]; 0 = none */
    long          curPllMin;             /**< lowest STC frequency of the last 2 min [Hz]; with curPllAvg 0 = none */
    long          curPllMax;             /**< highest STC frequency of the last 2 min [Hz]; with curPllAvg 0 = none */
    long          curPLLDevHz;           /**< deviation of the average STC frequency from nominal [Hz]; with curPllAvg 0 = none */
    long          curPLLDevPpm;          /**< integer part of the average STC frequency's deviation from nominal [ppm]; with curPllAvg 0 = none */
    long          curPLLDevPpmNominal;   /**< deviation of the STC from nominal now [ppm] */
    long          curPLLDevPpmFract;     /**< digits of curPLLDevPpm after the point, as a number printed without padding [digits]; with curPllAvg 0 = none */
    long          avgDevHz;              /**< STC adjustment of the last 16 min [Hz] */
    long          avgDevPpm;             /**< integer part of the STC adjustment of the last 16 min [ppm] */
    long          avgDevPpmFract;        /**< digits of avgDevPpm after the point, as a number printed without padding [digits] */
    int           pcrLateCount;          /**< PCRs that came too late [count] */
    int           pcrLateMaxValue;       /**< longest time without a PCR [ms] */
    int           pcrJitterErrCount;     /**< PCR jitter errors [errors] */
    int           pcrJitterErr;          /**< last PCR jitter error [ms] */
    int           pcrJitterMaxErrValue;  /**< largest deviation between two PCRs [ms] */
    long          curPcr;                /**< last PCR of the encoder [90 kHz ticks] */
    long          curPcrFpga;            /**< PCR of the hardware register [90 kHz ticks] */
    long          curPcrFpgaDelta;       /**< encoder's PCR less the register's [90 kHz ticks] */
    long          mafDivFactor;          /**< division factor of the filter on the clock difference */
    long          pcrTsDelta;            /**< average distance of the register's PCR to the time stamps [90 kHz ticks] */
    long          pcrTsDeltaAud0;        /**< average distance of the register's PCR to the time stamps of audio pair 1, counted from 1 [90 kHz ticks] */
    long          pcrTsDeltaAud1;        /**< average distance of the register's PCR to the time stamps of audio pair 2, counted from 1 [90 kHz ticks] */
    long          pcrTsDeltaAud2;        /**< average distance of the register's PCR to the time stamps of audio pair 3, counted from 1 [90 kHz ticks] */
    long          pcrTsDeltaAud3;        /**< average distance of the register's PCR to the time stamps of audio pair 4, counted from 1 [90 kHz ticks] */
    long          pcrTsDeltaAud4;        /**< average distance of the register's PCR to the time stamps of audio pair 5, counted from 1 [90 kHz ticks] */
    long          pcrTsDeltaAud5;        /**< average distance of the register's PCR to the time stamps of audio pair 6, counted from 1 [90 kHz ticks] */
    long          pcrTsDeltaAud6;        /**< average distance of the register's PCR to the time stamps of audio pair 7, counted from 1 [90 kHz ticks] */
    long          pcrTsDeltaAud7;        /**< average distance of the register's PCR to the time stamps of audio pair 8, counted from 1 [90 kHz ticks] */
    long          pcrTsDeltaKlv;         /**< average distance of the register's PCR to the KLV time stamps [90 kHz ticks] */
    long          pcrTsDeltaMinValue;    /**< smallest pcrTsDelta within pcrTsDeltaMinMaxDlyMS [90 kHz ticks] */
    long          pcrTsDeltaMaxValue;    /**< largest pcrTsDelta within pcrTsDeltaMinMaxDlyMS [90 kHz ticks] */
    long          pcrTsDeltaMinMaxDlyMS; /**< length of the interval of pcrTsDeltaMinValue and pcrTsDeltaMaxValue [ms] */
    long          pcrTsDeltaMinExtValue; /**< smallest pcrTsDelta of all time [90 kHz ticks] */
    long          pcrTsDeltaMaxExtValue; /**< largest pcrTsDelta of all time [90 kHz ticks] */
    long          PcrJump;               /**< last jump of the encoder's PCR [ms]; 0 = none */
    time_t        tLastPcrJump;          /**< when the encoder's PCR last jumped [epoch s]; 0 = never */
    long          PcrJumpMaxValue;       /**< largest jump of the encoder's PCR [ms]; 0 = none */
    time_t        tLastPcrJumpMaxValue;  /**< when the largest jump of the encoder's PCR happened [epoch s]; 0 = never */
} SMGR_DECODER_CLOCK_RECOVERY_STATS;

#pragma pack(pop)

#endif
