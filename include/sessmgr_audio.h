/**
 * @file sessmgr_audio.h
 * The audio decoder's records, with natural alignment. Plain C11 that is also C++17 and later.
 *
 * A field's comment reads: meaning [unit]; value = what it means. What follows the semicolon is the value that means absent,
 * in an enumerated field the one that stands for no information. Where none is given, every value is a measurement, 0
 * included. Event times are seconds since the epoch and 0 means never. An extreme is absent while the moment at which it
 * occurred, where one is kept, is never.
 */
#ifndef SESSMGR_AUDIO_H
#define SESSMGR_AUDIO_H

#include <time.h>

#include "xtypes.h"

#define SMGR_AUDIO_MAX_PAIRS 8 /**< audio pairs of a decoder */

/** State of the audio decoder, kept in an int; the same values as SMGR_METADATA_STATE. */
typedef enum tagSMGR_AUDDEC_STATE XTYPES_ENUM32
{
    SMGR_AUDDEC_STATE_UNKNOWN = 0,  /**< not known */
    SMGR_AUDDEC_STATE_IDLE    = 1,  /**< waiting for frames */
    SMGR_AUDDEC_STATE_ACTIVE  = 2,  /**< decoding */
    SMGR_AUDDEC_STATE_INVALID = -1, /**< no valid state */
} SMGR_AUDDEC_STATE;

/** One audio pair. */
typedef struct tagAUDDEC_PAIR_STATS
{
    int             nSize;                      /**< size of this record, set by the session manager [bytes] */
    int             enMode;                     /**< mode of the pair */
    int             enAlgorithm;                /**< coding, an SMGR_TDEMUX_COMPRESSION_TYPE; 0 = unknown */
    int             nSampleRateIn;              /**< sample rate of the compressed input [Hz] */
    int             nBitRateInKbps;             /**< input bit rate, which the report passes on as bit/s [kbit/s] */
    int             nInputChannels;             /**< audio channels of the input [channels] */
    int             nOutputChannels;            /**< audio channels of the output [channels] */
    unsigned long   nReceivedFrames;            /**< frames received by the pair [frames] */
    time_t          tLastReceivedFrame;         /**< last frame received by the pair [epoch s]; 0 = never */
    unsigned long   nDecodedFrames;             /**< frames decoded [frames] */
    time_t          tLastDecodedFrame;          /**< last frame decoded [epoch s]; 0 = never */
    unsigned long   nDecodedBytes;              /**< bytes decoded [bytes] */
    unsigned long   nOutputFrames;              /**< frames played out [frames] */
    time_t          tLastOutputFrame;           /**< last frame played out [epoch s]; 0 = never */
    int             nSampleRateOut;             /**< output sample rate [Hz] */
    unsigned long   nSkippedFrames;             /**< output frames skipped [frames] */
    time_t          tLastSkippedFrame;          /**< last output frame skipped [epoch s]; 0 = never */
    unsigned int    nDecoderErrors;             /**< decoder errors [errors] */
    time_t          tLastDecoderError;          /**< last decoder error [epoch s]; 0 = never */
    unsigned int    nOutputErrors;              /**< output errors [errors] */
    time_t          tLastOutputError;           /**< last output error [epoch s]; 0 = never */
    unsigned int    nOutQueueLength;            /**< frames in the output queue now [frames] */
    unsigned int    nMaxOutQueueLen;            /**< most frames in the output queue [frames] */
    unsigned int    nCurFpgaWteId;              /**< write position of the output hardware [index] */
    unsigned int    nCurFpgaReadId;             /**< read position of the output hardware [index] */
    unsigned int    nTSDiscontinuity;           /**< time stamp discontinuities [count] */
    struct timespec tLastIntervalTime;          /**< last write to the output hardware [epoch s and ns]; 0 = never */
    unsigned int    nMinWteToFpgaIntervalInMs;  /**< shortest interval between writes to the output hardware [ms] */
    unsigned int    nMaxWteToFpgaIntervalInMs;  /**< longest interval between writes to the output hardware [ms] */
    unsigned int    nLastWteToFpgaIntervalInMs; /**< last interval between writes to the output hardware [ms] */
    int             iAudioVideoTSDiffInMs;      /**< audio time stamp minus video time stamp [ms] */
    unsigned int    nAudioTimeStamp;            /**< last audio time stamp [90 kHz ticks] */
    unsigned int    nVideoTimeStamp;            /**< last video time stamp [90 kHz ticks] */
    int             iLastError;                 /**< last error code of the pair; 0 = none */
    unsigned int    nInTSDiscontinuity;         /**< time stamp discontinuities of the input [count] */
    int             nCurSTCLeadTimeMs;          /**< lead of the output time stamp over the STC now [ms] */
    int             nMinSTCLeadTimeMs;          /**< smallest lead of the output time stamp over the STC [ms] */
    time_t          tMinSTCLeadTime;            /**< when the smallest lead of the output time stamp over the STC occurred [epoch s]; 0 = never */
    int             nMaxSTCLeadTimeMs;          /**< largest lead of the output time stamp over the STC [ms] */
    time_t          tMaxSTCLeadTime;            /**< when the largest lead of the output time stamp over the STC occurred [epoch s]; 0 = never */
    struct timespec tLastRxFrameTime;           /**< last frame received by the pair, to the nanosecond [epoch s and ns]; 0 = never */
    int             nLastProcessTimeUs;         /**< processing time of the last frame [us] */
    int             nMinProcessTimeUs;          /**< shortest processing time of a frame [us] */
    time_t          tMinProcessTime;            /**< when the shortest processing time of a frame occurred [epoch s]; 0 = never */
    int             nMaxProcessTimeUs;          /**< longest processing time of a frame [us] */
    time_t          tMaxProcessTime;            /**< when the longest processing time of a frame occurred [epoch s]; 0 = never */
} SMGR_AUDIO_PAIR_STATS;

/** The audio decoder. */
typedef struct tagAUDDEC_STATS
{
    int                   nSize;                           /**< size of this record, set by the session manager [bytes] */
    int                   enState;                         /**< state of the decoder, an SMGR_AUDDEC_STATE; 0 = unknown */
    int                   nNumOfPairs;                     /**< audio pairs configured [pairs] */
    unsigned long         nReceivedFrames;                 /**< frames received from the framer [frames] */
    time_t                tLastReceivedFrame;              /**< last frame received from the framer [epoch s]; 0 = never */
    unsigned long         nDecodedFrames;                  /**< frames decoded [frames] */
    time_t                tLastDecodedFrame;               /**< last frame decoded [epoch s]; 0 = never */
    unsigned long         nOutputFrames;                   /**< frames played out [frames] */
    time_t                tLastOutputFrame;                /**< last frame played out [epoch s]; 0 = never */
    unsigned long         nSkippedFrames;                  /**< output frames skipped [frames] */
    time_t                tLastSkippedFrame;               /**< last output frame skipped [epoch s]; 0 = never */
    unsigned long         nOutputErrors;                   /**< output errors [errors] */
    time_t                tLastOutputError;                /**< last output error [epoch s]; 0 = never */
    unsigned long         nReleasedFrames;                 /**< received frames freed [frames] */
    time_t                tLastReleasedFrame;              /**< last received frame freed [epoch s]; 0 = never */
    unsigned int          nErrors;                         /**< decoder errors [errors] */
    unsigned int          nPendingDecodeRequests;          /**< decode requests waiting [requests] */
    unsigned int          nCurDecodedQueueLength;          /**< length of the decoded-frame queue [frames] */
    unsigned int          nTSDiscontinuity;                /**< time stamp discontinuities [count] */
    unsigned int          nADelayInputMS;                  /**< delay from the framer's output to the decoder input [ms] */
    unsigned int          nADelayOutputMS;                 /**< delay from the framer's output to the decoder output [ms] */
    UINT                  nARxFramesJitterMS;              /**< jitter of the received frames [ms]; 0 = none measured */
    UINT                  nALastMaxRxFramesJitterMS;       /**< largest jitter of the received frames in the last 10 s [ms] */
    SMGR_AUDIO_PAIR_STATS PairStats[SMGR_AUDIO_MAX_PAIRS]; /**< one for each audio pair */
} SMGR_DECODER_AUDIO_STATS;

#endif
