/**
 * @file vdecoder.h
 * The fields of the hardware video decoder record.
 */
#ifndef DICTIONARY_VDECODER_H
#define DICTIONARY_VDECODER_H

#include "row.h"

namespace dictionary::row
{

#define DECODER(path)  DICTIONARY_MEMBER(SMGR_VCUDEC_STATS, path)
#define COUNTERS(path) DECODER(tCounters.path)

inline constexpr std::array decoder_rows = {
    identity(DECODER(nSize), "record_size").no_metric(),
    state(DECODER(enState), "state", states::vdecoder_state).line("Video Decoder State"),
    gauge(DECODER(nLoadPercentage), "load").line("Video Decoder Load"),
    gauge(DECODER(nLatencyInUs), "latency").line("Video Decoder Latency", debug),
    state(DECODER(nDisplayFormat), "display_format", states::display_format).line("Display Format").info(),
    flag(DECODER(bHasChroma), "has_chroma"),
    gauge(DECODER(nFrameBufferWidth), "frame_buffer_width").line("Display Buffers", debug),
    gauge(DECODER(nFrameBufferHeight), "frame_buffer_height").line("Display Buffers", debug),
    gauge(DECODER(nFrameBufferSizeEachInBytes), "frame_buffer_size")
        .line("VCU Memory required", debug)
        .line("VCU Memory allocated", debug)
        .line("Display Buffers", debug),
    gauge(DECODER(nFrameBufferNumber), "required_frame_buffers").line("VCU Memory required", debug).line("Display Buffers", debug),
    gauge(DECODER(nFrameBufferNumberInUsed), "allocated_frame_buffers").line("VCU Memory allocated", debug),
    gauge(DECODER(nFrameBufferBitDepthY), "luma_bit_depth").line("Display Bit Depth", debug),
    gauge(DECODER(nFrameBufferBitDepthC), "chroma_bit_depth").line("Display Bit Depth", debug),
    flag(DECODER(bCropping), "cropping").line("Cropping", debug),
    gauge(DECODER(nCropOffsetLeft), "crop_left").when(is_set("cropping")).line("Cropping", debug),
    gauge(DECODER(nCropOffsetRight), "crop_right").when(is_set("cropping")).line("Cropping", debug),
    gauge(DECODER(nCropOffsetTop), "crop_top").when(is_set("cropping")).line("Cropping", debug),
    gauge(DECODER(nCropOffsetBottom), "crop_bottom").when(is_set("cropping")).line("Cropping", debug),
    state(DECODER(enPicStructure), "picture_structure", states::picture_structure).line("Picture Structure", debug).no_metric(),
    flag(DECODER(bVDelayInputEstimateShortDelay), "input_delay_period_short").line("Decoder IN", debug),
    flag(DECODER(bVDelayOutputEstimateShortDelay), "output_delay_period_short")
        .line("Decoder OUT", debug)
        .line("HW OUT", debug)
        .line("Decoder Latency", debug)
        .line("Decoder Jitter", debug)
        .line("HW Delay Theo", debug)
        .line("Real", debug)
        .line("HW Tx Error", debug)
        .line("ReOrder list length", debug)
        .line("HW BD list length", debug),
    gauge(DECODER(nVDelayInputMS), "input_delay").line("Decoder IN", debug),
    gauge(DECODER(nVDelayInputMSAvg), "average_input_delay").line("Decoder IN", debug),
    gauge(DECODER(nVMaxDelayInputMS), "recent_max_input_delay").max_of("input_delay").line("Decoder IN", debug),
    gauge(DECODER(nVMinDelayInputMS), "recent_min_input_delay")
        .min_of("input_delay")
        .line("Decoder IN", debug)
        .line("Decoder Latency", debug),
    gauge(DECODER(nVCurReOrderLen), "reorder_list_length").line("ReOrder list length", debug),
    gauge(DECODER(nVMaxReOrderLen), "recent_max_reorder_list_length").max_of("reorder_list_length").line("ReOrder list length", debug),
    gauge(DECODER(nVMinReOrderLen), "recent_min_reorder_list_length").min_of("reorder_list_length").line("ReOrder list length", debug),
    gauge(DECODER(nVDelayOutputMS), "output_delay").line("Decoder OUT", debug).line("HW Delay Theo", debug).line("Real", debug),
    gauge(DECODER(nVDelayOutputMSAvg), "average_output_delay").line("Decoder OUT", debug).line("HW Delay Theo", debug).line("Real", debug),
    gauge(DECODER(nVMaxDelayOutputMS), "recent_max_output_delay")
        .max_of("output_delay")
        .line("Decoder OUT", debug)
        .line("HW OUT", debug)
        .line("HW Delay Theo", debug)
        .line("Real", debug),
    gauge(DECODER(nVMinDelayOutputMS), "recent_min_output_delay")
        .min_of("output_delay")
        .line("Decoder OUT", debug)
        .line("Decoder Latency", debug)
        .line("HW Delay Theo", debug)
        .line("Real", debug),
    gauge(DECODER(nVMaxDelayWithinVCUMS), "recent_max_codec_unit_delay"),
    gauge(DECODER(nVMinDelayWithinVCUMS), "recent_min_codec_unit_delay"),
    gauge(DECODER(nVCurBDListLen), "descriptor_list_length").line("HW BD list length", debug),
    gauge(DECODER(nVMaxBDListLen), "recent_max_descriptor_list_length").max_of("descriptor_list_length").line("HW BD list length", debug),
    gauge(DECODER(nVMinBDListLen), "recent_min_descriptor_list_length").min_of("descriptor_list_length").line("HW BD list length", debug),
    gauge(DECODER(nVTheoDelayHwOutputMS), "theoretical_hardware_output_delay").line("HW OUT", debug).line("HW Delay Theo", debug),
    gauge(DECODER(nVDelayHwOutputMS), "hardware_output_delay").line("HW OUT", debug).line("Real", debug).line("HW Tx Error", debug),
    gauge(DECODER(nVDelayHwOutputFrameMS), "hardware_playout_delay").line("HW Tx Error", debug),
    gauge(DECODER(nVDecInputJitterMS), "input_jitter").line("Decoder Jitter", debug),
    extreme(DECODER(nVDecMaxInputJitterMS), "max_codec_unit_input_jitter").line("Max VCU IN Jitter", debug),
    gauge(DECODER(nVDecOutputJitterMS), "output_jitter").line("Decoder Jitter", debug),
    gauge(DECODER(nVDecJitterMS), "jitter").line("Decoder Jitter", debug),
    gauge(DECODER(nVDecLatencyMS), "estimated_latency").line("Decoder Latency", debug),
    gauge(DECODER(nVKeyDecDelayMS), "key_frame_decoding_duration").line("Key Frame Dec Time", debug),
    state(DECODER(enStillImageType), "still_image_type", states::still_image_type).line("Still Image").info(),
    flag(DECODER(bStillImageActive), "still_image_active").line("Still Image"),
    counter(COUNTERS(nNumReceivedFrames), "received_pictures").line("Received Pics", debug),
    last(COUNTERS(tLastReceivedFrame), "last_received_picture_time", "received_pictures").line("Received Pics", debug),
    counter(COUNTERS(nNumReceivedFramesFreed), "freed_received_pictures").line("Received Pics Freed", debug),
    last(COUNTERS(tLastReceivedFrameFreed), "last_freed_received_picture_time", "freed_received_pictures")
        .line("Received Pics Freed", debug),
    counter(COUNTERS(nNumFramesSentToDecoder), "pictures_sent_to_codec_unit").line("Pics To VCU Decoder", debug),
    last(COUNTERS(tLastFrameSentToDecoder), "last_picture_sent_to_codec_unit_time", "pictures_sent_to_codec_unit")
        .line("Pics To VCU Decoder", debug),
    counter(COUNTERS(nNumDroppedFrames), "dropped_pictures").line("Dropped Input Pics", debug),
    last(COUNTERS(tLastDroppedFrame), "last_dropped_picture_time", "dropped_pictures").line("Dropped Input Pics", debug),
    counter(COUNTERS(nNumDroppedIFrames), "dropped_i_pictures").line("I", debug).metric_name("dropped_pictures_by_type", "type", "i"),
    last(COUNTERS(tLastDroppedIFrame), "last_dropped_i_picture_time", "dropped_i_pictures")
        .line("I", debug)
        .metric_name("last_dropped_picture_by_type", "type", "i"),
    counter(COUNTERS(nNumDroppedPFrames), "dropped_p_pictures").line("P", debug).metric_name("dropped_pictures_by_type", "type", "p"),
    last(COUNTERS(tLastDroppedPFrame), "last_dropped_p_picture_time", "dropped_p_pictures")
        .line("P", debug)
        .metric_name("last_dropped_picture_by_type", "type", "p"),
    counter(COUNTERS(nNumDroppedBFrames), "dropped_b_pictures").line("B", debug).metric_name("dropped_pictures_by_type", "type", "b"),
    last(COUNTERS(tLastDroppedBFrame), "last_dropped_b_picture_time", "dropped_b_pictures")
        .line("B", debug)
        .metric_name("last_dropped_picture_by_type", "type", "b"),
    counter(COUNTERS(nNumDecodedFrames), "decoded_pictures").line("Decoded Input Pics", debug),
    last(COUNTERS(tLastDecodedFrame), "last_decoded_picture_time", "decoded_pictures").line("Decoded Input Pics", debug),
    counter(COUNTERS(nNumConcealedFrames), "concealed_pictures").line("Concealed Input Pics", debug),
    last(COUNTERS(tLastConcealedFrame), "last_concealed_picture_time", "concealed_pictures").line("Concealed Input Pics", debug),
    counter(COUNTERS(nNumResyncForLostOfAVSync), "av_resyncs").line("Decoder AV ReSync", debug),
    last(COUNTERS(tLastResyncForLostOfAVSync), "last_av_resync_time", "av_resyncs").line("Decoder AV ReSync", debug),
    counter(COUNTERS(nNumFramesSentToDisplay), "pictures_sent_to_display").line("Pics Sent To Display", debug),
    last(COUNTERS(tLastFrameSentToDisplay), "last_picture_sent_to_display_time", "pictures_sent_to_display")
        .line("Pics Sent To Display", debug),
    counter(COUNTERS(nNumDisplayedOutputFrames), "displayed_frames")
        .line("Displayed Output Frms")
        .line("Skipped Output Frames")
        .line("Replayed Output Frames")
        .line("Output Errors"),
    last(COUNTERS(tLastDisplayedOutputFrame), "last_displayed_frame_time", "displayed_frames").line("Displayed Output Frms"),
    counter(COUNTERS(nNumSkippedOutputFrames), "skipped_frames")
        .line("Skipped Output Frames")
        .line("Displayed Output Frms")
        .line("Replayed Output Frames")
        .line("Output Errors"),
    last(COUNTERS(tLastSkippedOutputFrame), "last_skipped_frame_time", "skipped_frames").line("Skipped Output Frames"),
    counter(COUNTERS(nNumReplayedOutputFrames), "replayed_frames")
        .line("Replayed Output Frames")
        .line("Displayed Output Frms")
        .line("Skipped Output Frames")
        .line("Output Errors"),
    last(COUNTERS(tLastReplayedOutputFrame), "last_replayed_frame_time", "replayed_frames").line("Replayed Output Frames"),
    counter(COUNTERS(nNumDisplayedFramesFreed), "freed_displayed_pictures").line("Displayed Pics Freed", debug),
    last(COUNTERS(tLastDisplayedFrameFreed), "last_freed_displayed_picture_time", "freed_displayed_pictures")
        .line("Displayed Pics Freed", debug),
    counter(COUNTERS(nNumOutputErrors), "output_errors")
        .line("Output Errors")
        .line("Displayed Output Frms")
        .line("Skipped Output Frames")
        .line("Replayed Output Frames"),
    last(COUNTERS(tLastOutputError), "last_output_error_time", "output_errors").line("Output Errors"),
    counter(COUNTERS(nNumOutputLate), "late_output_pictures").line("Pics Sent Late", debug),
    last(COUNTERS(tLastOutputLate), "last_late_output_picture_time", "late_output_pictures").line("Pics Sent Late", debug),
    gauge(COUNTERS(nOutputSTCLeadTime), "stc_lead").line("Output Lead Time", debug),
    min(COUNTERS(nMinOutputSTCLeadTime), "min_stc_lead", "stc_lead").line("Output Lead Time", debug),
    moment(COUNTERS(tMinOutputSTCLeadTime), "min_stc_lead_time", "min_stc_lead").line("Output Lead Time", debug),
    max(COUNTERS(nMaxOutputSTCLeadTime), "max_stc_lead", "stc_lead").line("Output Lead Time", debug),
    moment(COUNTERS(tMaxOutputSTCLeadTime), "max_stc_lead_time", "max_stc_lead").line("Output Lead Time", debug),
    counter(COUNTERS(nNumReorderFramesIn), "reorder_input_pictures").line("Reorder Pics In", debug),
    last(COUNTERS(tLastReorderFrameIn), "last_reorder_input_picture_time", "reorder_input_pictures").line("Reorder Pics In", debug),
    gauge(COUNTERS(nNumReorderFramesQOcc), "reorder_queue_length").line("Reorder Pics Q Occ", debug),
    counter(COUNTERS(nNumReorderFramesOut), "reorder_output_pictures").line("Reorder Pics Out", debug),
    last(COUNTERS(tLastReorderFrameOut), "last_reorder_output_picture_time", "reorder_output_pictures").line("Reorder Pics Out", debug),
    counter(COUNTERS(nNumReorderFramesExtractCalls), "reorder_extract_calls").line("Reorder Extract Calls", debug),
    last(COUNTERS(tLastReorderFramesExtractCall), "last_reorder_extract_call_time", "reorder_extract_calls")
        .line("Reorder Extract Calls", debug),
    counter(COUNTERS(nNumReorderFramesFlushCalls), "reorder_flush_calls").line("Reorder Flush Calls", debug),
    last(COUNTERS(tLastReorderFramesFlushCall), "last_reorder_flush_call_time", "reorder_flush_calls").line("Reorder Flush Calls", debug),
    counter(COUNTERS(nNumInputParsedCallbacks), "input_parsed_callbacks"),
    last(COUNTERS(tLastInputParsedCallback), "last_input_parsed_callback_time", "input_parsed_callbacks"),
    counter(COUNTERS(nNumResolutionFoundCallbacks), "resolution_found_callbacks").line("Res Found Callbacks", debug),
    last(COUNTERS(tLastResolutionFoundCallback), "last_resolution_found_callback_time", "resolution_found_callbacks")
        .line("Res Found Callbacks", debug),
    counter(COUNTERS(nNumDecodedCallbacks), "decoded_callbacks").line("Decoded Callbacks", debug),
    last(COUNTERS(tLastDecodedCallback), "last_decoded_callback_time", "decoded_callbacks").line("Decoded Callbacks", debug),
    counter(COUNTERS(nNumDisplayCallbacks), "display_callbacks").line("Display Callbacks", debug),
    last(COUNTERS(tLastDisplayCallback), "last_display_callback_time", "display_callbacks").line("Display Callbacks", debug),
    counter(COUNTERS(nNumSEICallbacks), "sei_callbacks").line("SEI Callbacks", debug),
    last(COUNTERS(tLastSEICallback), "last_sei_callback_time", "sei_callbacks").line("SEI Callbacks", debug),
    max(COUNTERS(nMaxPushedQueueOccupancy), "max_codec_unit_queue_length", "codec_unit_queue_length").line("Max Pushed Q Occ", debug),
    gauge(COUNTERS(nCurPushedQueueOccupancy), "codec_unit_queue_length").line("Cur Pushed Q Occ", debug),
    counter(COUNTERS(nNumImageCaptures), "image_captures").line("Video Images Captured", debug),
    last(COUNTERS(tLastImageCapture), "last_image_capture_time", "image_captures").line("Video Images Captured", debug),
    counter(COUNTERS(nNumImageCapturesFailed), "failed_image_captures").line("Image Capture Failed", debug),
    last(COUNTERS(tLastImageCaptureFailed), "last_failed_image_capture_time", "failed_image_captures").line("Image Capture Failed", debug),
    moment(COUNTERS(iLastErrorTime), "last_creation_error_time", "last_creation_error").line("VCU Create Error Code"),
    state(COUNTERS(nLastErrorCode), "last_creation_error", states::codec_unit_error).line("VCU Create Error Code").no_metric(),
    counter(COUNTERS(nNumEOSEvents), "end_of_stream_events").line("EOS Events", debug),
    last(COUNTERS(tLastEOSEvent), "last_end_of_stream_event_time", "end_of_stream_events").line("EOS Events", debug),
    counter(COUNTERS(nNumExitErrors), "exit_errors").line("Exit Errors", debug),
    last(COUNTERS(tLastExitError), "last_exit_error_time", "exit_errors").line("Exit Errors", debug),
    counter(COUNTERS(nNumNoInfoErrors), "pictures_without_info").line("No Info Errors", debug),
    last(COUNTERS(tLastNoInfoError), "last_picture_without_info_time", "pictures_without_info").line("No Info Errors", debug),
    counter(COUNTERS(nNumDiscontinuty), "input_discontinuities").line("VCU IN Discontinuity"),
    last(COUNTERS(tLastDiscontinuity), "last_input_discontinuity_time", "input_discontinuities").line("VCU IN Discontinuity"),
    gauge(COUNTERS(nNumOfFrmNotRelease), "unreleased_frames").line("VCU Frm not Release"),
    last(COUNTERS(tLastNumOfFrmNotRelease), "last_unreleased_frame_time", "unreleased_frames").line("VCU Frm not Release"),
    counter(COUNTERS(nOutputTimestampNotIncreasing), "non_increasing_pts").line("Nonincr. Tstamps Out", debug),
    last(COUNTERS(tLastOutputTimestampNotIncreasing), "last_non_increasing_pts_time", "non_increasing_pts")
        .line("Nonincr. Tstamps Out", debug),
    counter(COUNTERS(nOutputTimestampsMissing), "pictures_without_pts").line("Missing Tstamps Out", debug),
    last(COUNTERS(tLastOutputTimestampMissing), "last_picture_without_pts_time", "pictures_without_pts").line("Missing Tstamps Out", debug),
    counter(COUNTERS(nNumStillImages), "still_images").line("Still Image"),
    extreme(COUNTERS(nMaxStillImageTimeOn), "max_still_image_duration").line("Still Image"),
    last(COUNTERS(tLastStillImageOn), "last_still_image_on_time", "still_images").line("Still Image"),
    event(COUNTERS(tLastStillImageOff), "last_still_image_off_time").line("Still Image"),
    flag(DECODER(bReordering), "reordering").line("Video DPB Mode", debug),
};

inline constexpr auto vdecoder = rows_of<SMGR_VCUDEC_STATS>("vdecoder", decoder_rows);
static_assert(tile<sizeof(SMGR_VCUDEC_STATS)>(vdecoder));

#undef DECODER
#undef COUNTERS

} // namespace dictionary::row

#endif
