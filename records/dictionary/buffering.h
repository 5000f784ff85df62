/**
 * @file buffering.h
 * The fields of the buffering record.
 */
#ifndef DICTIONARY_BUFFERING_H
#define DICTIONARY_BUFFERING_H

#include "row.h"

namespace dictionary::row
{

#define BUFFERING(path) DICTIONARY_MEMBER(SMGR_CBUFFERING_STATS, path)
#define MULTISYNC(path) DICTIONARY_MEMBER(SMGR_CBUFFERING_MULTISYNC_STATS, path)
#define AUTOMATIC(path) BUFFERING(tAutomatic.path)
#define CHANNEL(path)   DICTIONARY_MEMBER(SMGR_CBUFFERING_CHANNEL_STATS, path)
#define COUNTERS(path)  BUFFERING(tCounters.path)

inline constexpr Elements buffering_channels = {.place = DICTIONARY_ARRAY(SMGR_CBUFFERING_STATS, tChannel),
                                                .name = "channels",
                                                .label = "channel",
                                                .in_use = is_set("channels[].received_packets")};

/* ---- The controller ---- */

inline constexpr std::array buffering_rows = {
    identity(BUFFERING(nDecoderID), "decoder_id"),
    state(BUFFERING(enStatus), "state", states::buffering_state).line("Buffering State"),
    state(BUFFERING(enBufferingMode), "mode", states::buffering_mode).line("Buffering Mode"),
    gauge(BUFFERING(nFixedDelayMs), "fixed_delay").line("Buffering Mode"),
    gauge(BUFFERING(nMultiSyncDelayMs), "multisync_delay"),
    gauge(BUFFERING(nMinDelayMs), "delay_lower_limit").line("Decoder Set Delay", debug).line("Buffering Mode"),
    gauge(BUFFERING(nMaxDelayMs), "delay_upper_limit").line("Maximum Delay", debug),
    gauge(BUFFERING(nPCR), "pcr").line("PCR", debug).no_metric(),
    gauge(BUFFERING(nSTC), "stc").line("STC", debug).no_metric(),
};

/* ---- The MultiSync mode ---- */

inline constexpr std::array multisync_rows = {
    flag(MULTISYNC(bTimecodePresent), "timecode_present").line("TC Present", debug),
    flag(MULTISYNC(bTimecodeValid), "timecode_valid").line("TC Present", debug),
    gauge(MULTISYNC(nTimecodeInMs), "timecode_time_of_day").line("Timecode", debug).line("System Time - TC", debug),
    gauge(MULTISYNC(nSystemTimeInMs), "system_time_of_day").line("System Time", debug).line("System Time - TC", debug),
    gauge(MULTISYNC(nTransmissionTimeMs), "transmission_delay").line("Transmission Time", debug),
    gauge(MULTISYNC(nMultiSyncDelaySetMs), "configured_delay").line("MultiSync Delay Set"),
    gauge(MULTISYNC(nMultiSyncDelayActualMs), "actual_delay").line("MultiSync Delay Actual"),
    gauge(MULTISYNC(nMultiSyncDelayRangeMinMs), "delay_lower_limit").line("MultiSync Delay Range"),
    gauge(MULTISYNC(nMultiSyncDelayRangeMaxMs), "delay_upper_limit").line("MultiSync Delay Range"),
    counter(MULTISYNC(tCounters.nNumTCPackets), "timecode_packets").line("TC Packets", debug),
    counter(MULTISYNC(tCounters.nNumTCPacketsInvalid), "invalid_timecode_packets").line("Invalid TC Packets", debug),
    last(MULTISYNC(tCounters.tLastTCReceived), "last_timecode_packet_time", "timecode_packets").line("TC Present", debug),
    last(MULTISYNC(tCounters.tLastInvalidTCReceived), "last_invalid_timecode_packet_time", "invalid_timecode_packets")
        .line("Invalid TC Packets", debug),
};

/* ---- The delay that the chain needs, measured in every mode ---- */

inline constexpr std::array buffering_delay_rows = {
    extreme(AUTOMATIC(nMaxInputJitterMs), "max_input_jitter").line("Max Input Jitter"),
    moment(AUTOMATIC(tMaxInputJitterChanged), "max_input_jitter_time", "max_input_jitter").line("Max Input Jitter"),
    gauge(AUTOMATIC(nNonVideoLateMs), "non_video_lateness").line("Non-Video Late"),
    max(AUTOMATIC(nNonVideoLateMaxMs), "max_non_video_lateness", "non_video_lateness").line("Non-Video Late"),
    moment(AUTOMATIC(tNonVideoLateMax), "max_non_video_lateness_time", "max_non_video_lateness").line("Non-Video Late"),
    gauge(AUTOMATIC(nVideoDecoderLatencyMs), "video_decoder_latency").line("Video Decoder Latency"),
    max(AUTOMATIC(nVideoDecoderLatencyMaxMs), "max_video_decoder_latency", "video_decoder_latency").line("Video Decoder Latency"),
    moment(AUTOMATIC(tVideoDecoderLatencyMax), "max_video_decoder_latency_time", "max_video_decoder_latency").line("Video Decoder Latency"),
    gauge(AUTOMATIC(nVideoDecoderJitterMs), "video_decoder_jitter").line("Video Decoder Jitter"),
    max(AUTOMATIC(nVideoDecoderJitterMaxMs), "max_video_decoder_jitter", "video_decoder_jitter").line("Video Decoder Jitter"),
    moment(AUTOMATIC(tVideoDecoderJitterMax), "max_video_decoder_jitter_time", "max_video_decoder_jitter").line("Video Decoder Jitter"),
    gauge(AUTOMATIC(nVideoSTCLeadTimeAvgActualMs), "average_video_stc_lead").line("Video STC Lead Time"),
    gauge(AUTOMATIC(nVideoSTCLeadTimeMinActualMs), "recent_min_video_stc_lead").line("Video STC Lead Time"),
    gauge(AUTOMATIC(nVideoSTCLeadTimeMaxActualMs), "recent_max_video_stc_lead").line("Video STC Lead Time"),
    gauge(AUTOMATIC(nAudioSTCLeadTimeAvgActualMs), "average_audio_stc_lead").line("Audio STC Lead Time"),
    gauge(AUTOMATIC(nAudioSTCLeadTimeMinActualMs), "recent_min_audio_stc_lead").line("Audio STC Lead Time"),
    gauge(AUTOMATIC(nAudioSTCLeadTimeMaxActualMs), "recent_max_audio_stc_lead").line("Audio STC Lead Time"),
    gauge(AUTOMATIC(nHardwareDelayMs), "hardware_delay").line("Hardware Delay"),
    event(AUTOMATIC(tLastVideoSkipReplayTime), "last_video_skip_or_replay_time").line("Last Video Skip/Replay"),
    event(AUTOMATIC(tLastAudioSkipTime), "last_audio_skip_time").line("Last Audio Skip"),
    flag(BUFFERING(bBufferingDelaySet), "initial_delay_applied").line("Video Latency", debug),
    gauge(BUFFERING(nSTCtoPCRLeadTimeMs), "stc_to_pcr_lead").line("STC to PCR Lead Time"),
    gauge(BUFFERING(nSetDelayMs), "decoder_delay_setting").line("Decoder Set Delay", debug),
};

/* ---- A buffered elementary stream ---- */

inline constexpr std::array buffering_channel_rows = {
    state(CHANNEL(enType), "type", states::data_type).line("Type", debug).label(),
    gauge(CHANNEL(nBufferingDelayTimeMs), "buffering_delay").line("CBUF Delay", debug),
    gauge(CHANNEL(nDelayTimeMsActual), "actual_delay"),
    gauge(CHANNEL(nSTCLeadTimeMsSet), "stc_lead_setting").line("STC Lead", debug),
    gauge(CHANNEL(nTotalOutputLatencyMs), "total_latency").line("Video Latency"),
    gauge(CHANNEL(nPCRtoPTSTimeMsActual), "pcr_to_pts_distance").line("PCR-to-PTS", debug),
    gauge(CHANNEL(nJitterTimeMsActual), "jitter").line("Jitter (ms)", debug),
    gauge(CHANNEL(nJitterTimeMsSet), "jitter_allowance").line("Jitter (ms)", debug),
    max(CHANNEL(nJitterTimeMsMaximum), "max_jitter", "jitter").line("Jitter (ms)", debug),
    gauge(CHANNEL(nQueueOccupancyFrames), "queue_length").line("Q-Level", debug),
    gauge(CHANNEL(TimeStamp), "timestamp").line("Time Stamp", debug).no_metric(),
    last(CHANNEL(tLastOutputTime), "last_output_packet_time", "output_packets").line("Last Output", debug),
    counter(CHANNEL(tCounters.nNumReceivedPackets), "received_packets"),
    counter(CHANNEL(tCounters.nNumOutputPackets), "output_packets").line("Output Pkts", debug),
    max(CHANNEL(tCounters.nMaxQueueOccupancyFrames), "max_queue_length", "queue_length").line("Q-Level", debug),
};

/* ---- What the controller counts ---- */

inline constexpr std::array buffering_counter_rows = {
    counter(COUNTERS(nNumReceivedPackets), "received_packets").line("Received Packets", debug),
    last(COUNTERS(tLastReceivedPacket), "last_received_packet_time", "received_packets").line("Received Packets", debug),
    counter(COUNTERS(nNumOutputPackets), "output_packets").line("Output Packets", debug),
    last(COUNTERS(tLastOutputPacket), "last_output_packet_time", "output_packets").line("Output Packets", debug),
    counter(COUNTERS(nNumDroppedPackets), "dropped_packets").line("Dropped Packets", debug),
    last(COUNTERS(tLastDroppedPacket), "last_dropped_packet_time", "dropped_packets").line("Dropped Packets", debug),
    counter(COUNTERS(nNumUnknownPackets), "unknown_channel_packets").line("Unknown Packets", debug),
    last(COUNTERS(tLastUnknownPacket), "last_unknown_channel_packet_time", "unknown_channel_packets").line("Unknown Packets", debug),
    counter(COUNTERS(nNumPCRPackets), "pcr_packets").line("PCR Packets", debug),
    counter(COUNTERS(nNumPCRUpdates), "pcr_updates").line("PCR Updates"),
    last(COUNTERS(tLastPCRUpdate), "last_pcr_update_time", "pcr_updates").line("PCR Updates"),
    counter(COUNTERS(nNumSTCUpdates), "stc_updates").line("STC Updates"),
    last(COUNTERS(tLastSTCUpdate), "last_stc_update_time", "stc_updates").line("STC Updates"),
    counter(COUNTERS(nNumBufferingAdjustments), "delay_adjustments").line("Buffering Adjustments"),
    last(COUNTERS(tLastBufferingAdjustmentTime), "last_delay_adjustment_time", "delay_adjustments").line("Buffering Adjustments"),
    counter(COUNTERS(nNumSTCLeadTimeAdjustments), "stc_lead_adjustments").line("STC Lead Time Adjusts"),
    last(COUNTERS(tLastSTCLeadTimeAdjustmentTime), "last_stc_lead_adjustment_time", "stc_lead_adjustments").line("STC Lead Time Adjusts"),
    counter(COUNTERS(nNumLateOutputs), "late_output_packets").line("Packets Sent Late"),
    extreme(COUNTERS(nMaxLateOutputMs), "max_output_lateness").line("Packets Sent Late"),
    extreme(COUNTERS(nMaxLateOutputBurstFrms), "max_late_output_burst")
        .line("Packets Sent Late")
        .metric_name("max_late_output_burst_frames"),
    last(COUNTERS(tLastLateOutput), "last_late_output_packet_time", "late_output_packets").line("Packets Sent Late"),
    counter(COUNTERS(nNumResets), "resets").line("Buffering Resets", debug),
    last(COUNTERS(tLastReset), "last_reset_time", "resets").line("Buffering Resets", debug),
    gauge(COUNTERS(nBufferingOccupancyBytes), "buffered_bytes").line("Buffering Occupancy", debug),
    max(COUNTERS(nMaxBufferingOccupancyBytes), "max_buffered_bytes", "buffered_bytes").line("Buffering Occupancy", debug),
    moment(COUNTERS(tMaxBufferingOccupancyBytes), "max_buffered_bytes_time", "max_buffered_bytes").line("Buffering Occupancy", debug),
    counter(COUNTERS(nBufferingOverflows), "overflows").line("Buffering Overflows"),
    last(COUNTERS(tLastBufferingOverflow), "last_overflow_time", "overflows").line("Buffering Overflows"),
    counter(COUNTERS(nSynthesizedAsyncTimestamps), "synthesized_pts").line("Synthesized Async PTS"),
    last(COUNTERS(tLastSynthesizedAsyncTimestamp), "last_synthesized_pts_time", "synthesized_pts").line("Synthesized Async PTS"),
    counter(COUNTERS(nSynthesizedAsyncTimestampFails), "failed_pts_syntheses").line("Synthesized APTS Fails"),
    last(COUNTERS(tLastSynthesizedAsyncTimestampFail), "last_failed_pts_synthesis_time", "failed_pts_syntheses")
        .line("Synthesized APTS Fails"),
};

inline constexpr auto buffering = rows_of<SMGR_CBUFFERING_STATS>(
    "buffering",
    join(buffering_rows,
         within(DICTIONARY_PLACE(SMGR_CBUFFERING_STATS, tMultiSync), "multisync.", is("mode", SMGR_DECSDI_BUFFERING_MULTISYNC),
                multisync_rows),
         buffering_delay_rows, each(buffering_channels, "channels[].", buffering_channel_rows), buffering_counter_rows),
    buffering_channels);
static_assert(tile<sizeof(SMGR_CBUFFERING_STATS)>(buffering));

#undef BUFFERING
#undef MULTISYNC
#undef AUTOMATIC
#undef CHANNEL
#undef COUNTERS

} // namespace dictionary::row

#endif
