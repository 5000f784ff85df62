/**
 * @file audio.h
 * The fields of the audio decoder record.
 */
#ifndef DICTIONARY_AUDIO_H
#define DICTIONARY_AUDIO_H

#include "row.h"

namespace dictionary::row
{

#define AUDIO(path) DICTIONARY_MEMBER(SMGR_DECODER_AUDIO_STATS, path)
#define PAIR(path)  DICTIONARY_MEMBER(SMGR_AUDIO_PAIR_STATS, path)

// From the first received frame: a pair that decodes nothing is the fault to see.
inline constexpr Elements pairs = {.place = DICTIONARY_ARRAY(SMGR_DECODER_AUDIO_STATS, PairStats),
                                   .name = "pairs",
                                   .label = "pair",
                                   .first_number = 1,
                                   .in_use = either(is_set("pairs[].received_frames"), is_set("pairs[].decoded_frames"))};

/* ---- The decoder ---- */

inline constexpr std::array audio_rows = {
    identity(AUDIO(nSize), "record_size").no_metric(),
    state(AUDIO(enState), "state", states::audio_state).line("Audio Decoder State"),
    gauge(AUDIO(nNumOfPairs), "configured_pairs").line("Number of Pairs").padding(4),
    counter(AUDIO(nReceivedFrames), "received_frames").line("Received Frames", debug),
    last(AUDIO(tLastReceivedFrame), "last_received_frame_time", "received_frames").line("Received Frames", debug),
    counter(AUDIO(nDecodedFrames), "decoded_frames").line("Decoded Frames", debug),
    last(AUDIO(tLastDecodedFrame), "last_decoded_frame_time", "decoded_frames").line("Decoded Frames", debug),
    counter(AUDIO(nOutputFrames), "output_frames").line("Played Output Frames").line("Skipped Output Frames").line("Output Errors"),
    last(AUDIO(tLastOutputFrame), "last_output_frame_time", "output_frames").line("Played Output Frames"),
    counter(AUDIO(nSkippedFrames), "skipped_frames").line("Skipped Output Frames").line("Played Output Frames").line("Output Errors"),
    last(AUDIO(tLastSkippedFrame), "last_skipped_frame_time", "skipped_frames").line("Skipped Output Frames"),
    counter(AUDIO(nOutputErrors), "output_errors").line("Output Errors").line("Played Output Frames").line("Skipped Output Frames"),
    last(AUDIO(tLastOutputError), "last_output_error_time", "output_errors").line("Output Errors"),
    counter(AUDIO(nReleasedFrames), "freed_frames").line("Received Frames Freed", debug),
    last(AUDIO(tLastReleasedFrame), "last_freed_frame_time", "freed_frames").line("Received Frames Freed", debug),
    counter(AUDIO(nErrors), "decoder_errors").line("Errors"),
    gauge(AUDIO(nPendingDecodeRequests), "pending_decode_requests").line("Pending Requests", debug),
    gauge(AUDIO(nCurDecodedQueueLength), "decoded_queue_length").line("Current Queue Length", debug),
    counter(AUDIO(nTSDiscontinuity), "timestamp_discontinuities").line("TS Discontinuities"),
    gauge(AUDIO(nADelayInputMS), "input_delay").line("Decoder IN", debug),
    gauge(AUDIO(nADelayOutputMS), "output_delay").line("Decoder OUT", debug),
    gauge(AUDIO(nARxFramesJitterMS), "input_jitter").line("Rx Frames Jitter", debug),
    gauge(AUDIO(nALastMaxRxFramesJitterMS), "recent_max_input_jitter").max_of("input_jitter").line("Rx Frames Jitter", debug),
};

/* ---- An audio pair ---- */

inline constexpr std::array pair_rows = {
    identity(PAIR(nSize), "record_size").no_metric(),
    identity(PAIR(enMode), "mode").no_metric(),
    state(PAIR(enAlgorithm), "compression", states::compression).line("Compression").info(),
    gauge(PAIR(nSampleRateIn), "input_sample_rate").line("Sample Rate In"),
    gauge(PAIR(nBitRateInKbps), "bit_rate").line("Bit Rate"),
    gauge(PAIR(nInputChannels), "input_channels").line("Audio Channels In", debug),
    gauge(PAIR(nOutputChannels), "output_channels").line("Audio Channels Out", debug).padding(4),
    counter(PAIR(nReceivedFrames), "received_frames"),
    last(PAIR(tLastReceivedFrame), "last_received_frame_time", "received_frames"),
    counter(PAIR(nDecodedFrames), "decoded_frames").line("Decoded Frames", debug),
    last(PAIR(tLastDecodedFrame), "last_decoded_frame_time", "decoded_frames").line("Decoded Frames", debug),
    counter(PAIR(nDecodedBytes), "decoded_bytes"),
    counter(PAIR(nOutputFrames), "output_frames").line("Played Output Frms", debug),
    last(PAIR(tLastOutputFrame), "last_output_frame_time", "output_frames").line("Played Output Frms", debug),
    gauge(PAIR(nSampleRateOut), "output_sample_rate").line("Sample Rate Out").padding(4),
    counter(PAIR(nSkippedFrames), "skipped_frames").line("Skipped Output Frms", debug),
    last(PAIR(tLastSkippedFrame), "last_skipped_frame_time", "skipped_frames").line("Skipped Output Frms", debug),
    counter(PAIR(nDecoderErrors), "decoder_errors").line("Decoder Errors").padding(4),
    last(PAIR(tLastDecoderError), "last_decoder_error_time", "decoder_errors").line("Decoder Errors"),
    counter(PAIR(nOutputErrors), "output_errors").line("Output Errors").padding(4),
    last(PAIR(tLastOutputError), "last_output_error_time", "output_errors").line("Output Errors"),
    gauge(PAIR(nOutQueueLength), "output_queue_length").line("Output Queue", debug),
    max(PAIR(nMaxOutQueueLen), "max_output_queue_length", "output_queue_length").line("Output Queue", debug),
    gauge(PAIR(nCurFpgaWteId), "output_write_index").no_metric(),
    gauge(PAIR(nCurFpgaReadId), "output_read_index").no_metric(),
    counter(PAIR(nTSDiscontinuity), "timestamp_discontinuities").line("TS Discontinuities").padding(4),
    event(PAIR(tLastIntervalTime), "last_output_write_time"),
    min(PAIR(nMinWteToFpgaIntervalInMs), "min_output_write_interval", "output_write_interval").line("Interval To Output", debug),
    max(PAIR(nMaxWteToFpgaIntervalInMs), "max_output_write_interval", "output_write_interval").line("Interval To Output", debug),
    gauge(PAIR(nLastWteToFpgaIntervalInMs), "output_write_interval").line("Interval To Output", debug),
    gauge(PAIR(iAudioVideoTSDiffInMs), "av_offset").line("A/V Sync"),
    gauge(PAIR(nAudioTimeStamp), "audio_timestamp").line("A/V Sync").no_metric(),
    gauge(PAIR(nVideoTimeStamp), "video_timestamp").line("A/V Sync").no_metric(),
    state(PAIR(iLastError), "last_error", states::audio_pair_error).no_metric(),
    counter(PAIR(nInTSDiscontinuity), "input_timestamp_discontinuities"),
    gauge(PAIR(nCurSTCLeadTimeMs), "stc_lead").line("STC Lead Time", debug),
    min(PAIR(nMinSTCLeadTimeMs), "min_stc_lead", "stc_lead").line("STC Lead Time", debug),
    moment(PAIR(tMinSTCLeadTime), "min_stc_lead_time", "min_stc_lead").line("STC Lead Time", debug),
    max(PAIR(nMaxSTCLeadTimeMs), "max_stc_lead", "stc_lead").line("STC Lead Time", debug).padding(4),
    moment(PAIR(tMaxSTCLeadTime), "max_stc_lead_time", "max_stc_lead").line("STC Lead Time", debug),
    last(PAIR(tLastRxFrameTime), "last_received_frame_exact_time", "received_frames").no_metric(),
    gauge(PAIR(nLastProcessTimeUs), "processing_duration").line("Process Time", debug),
    min(PAIR(nMinProcessTimeUs), "min_processing_duration", "processing_duration").line("Process Time", debug),
    moment(PAIR(tMinProcessTime), "min_processing_duration_time", "min_processing_duration").line("Process Time", debug),
    max(PAIR(nMaxProcessTimeUs), "max_processing_duration", "processing_duration").line("Process Time", debug).padding(4),
    moment(PAIR(tMaxProcessTime), "max_processing_duration_time", "max_processing_duration").line("Process Time", debug),
};

inline constexpr auto audio = rows_of<SMGR_DECODER_AUDIO_STATS>("audio", join(audio_rows, each(pairs, "pairs[].", pair_rows)), pairs);
static_assert(tile<sizeof(SMGR_DECODER_AUDIO_STATS)>(audio));

#undef AUDIO
#undef PAIR

} // namespace dictionary::row

#endif
