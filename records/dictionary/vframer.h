/**
 * @file vframer.h
 * The fields of the video framer record.
 */
#ifndef DICTIONARY_VFRAMER_H
#define DICTIONARY_VFRAMER_H

#include "row.h"

namespace dictionary::row
{

#define FRAMER(path)   DICTIONARY_MEMBER(SMGR_VFRAMER_STATS, path)
#define STREAM(path)   DICTIONARY_MEMBER(SMGR_VFRAMER_STREAM_PROPS, path)
#define COUNTERS(path) FRAMER(tCounters.path)

/* ---- The framer ---- */

inline constexpr std::array framer_rows = {
    state(FRAMER(enState), "state", states::vframer_state).line("Preprocessor State"),
    identity(FRAMER(nDecoderID), "decoder_id"),
    identity(FRAMER(nStreamID), "stream_id").line("Stream ID", debug),
};

/* ---- The properties of a stream ---- */

inline constexpr std::array stream_rows = {
    state(STREAM(enCompressionType), "compression", states::compression).line("Compression").info(),
    state(STREAM(enColorType), "chroma_format", states::chroma_format).line("Color").info(),
    identity(STREAM(nProfile), "profile").line("Profile"),
    identity(STREAM(nLevel), "level").line("Level"),
    gauge(STREAM(nWidth), "width").line("Format"),
    gauge(STREAM(nHeight), "height").line("Format"),
    flag(STREAM(bInterlaced), "interlaced").line("Format"),
    flag(STREAM(bInterlacedTFF), "top_field_first").when(is_set("interlaced")).line("Format"),
    gauge(STREAM(fFrameRate), "frame_rate").line("Format").line("Input Frame Rate"),
    flag(STREAM(bFrameRateFoundInStream), "frame_rate_signalled").line("Frame Rate In Stream", debug),
    gauge(STREAM(nBitsPerSecond), "bit_rate").line("Bit Rate"),
    text(STREAM(szFraming), "framing").line("Framing"),
    gauge(STREAM(nNumberOfBPicturesInARow), "consecutive_b_pictures").no_metric(),
    gauge(STREAM(nGopInterval), "gop_length").line("GOP Interval"),
    gauge(STREAM(nSliceCountPerFrame), "slices_per_picture").line("Slices per Frame"),
    flag(STREAM(bHasIFrames), "has_i_pictures").line("Has I-frames", debug).metric_name("has_pictures", "type", "i"),
    flag(STREAM(bHasPFrames), "has_p_pictures").line("Has P-frames", debug).metric_name("has_pictures", "type", "p"),
    flag(STREAM(bHasBFrames), "has_b_pictures").line("Has B-frames", debug).metric_name("has_pictures", "type", "b"),
    gauge(STREAM(TimeStamp), "timestamp").line("Time Stamp", debug).no_metric(),
    gauge(STREAM(TimeStampDelta), "timestamp_delta").line("Time Stamp Delta", debug),
    flag(STREAM(bCompatibilityModeEnabled), "compatibility_mode").line("Compatibility Mode"),
    gauge(STREAM(nLatencyInUs), "latency"),
    flag(STREAM(bTCPresent), "timecode_present").line("Metadata Present"),
    flag(STREAM(bCCPresent), "closed_captions_present").line("Metadata Present"),
    flag(STREAM(bAFDPresent), "afd_present").line("Metadata Present"),
    state(STREAM(enHDRType), "output_dynamic_range", states::dynamic_range).line("Dynamic Range Output").info(),
    state(STREAM(enHDRTypeInStream), "dynamic_range", states::dynamic_range).line("Dynamic Range Stream").info(),
    state(STREAM(colour_primaries), "colour_primaries", states::colour_primaries).line("Color Primaries", debug).info(),
    state(STREAM(transfer_characteristics), "transfer_characteristics", states::transfer_characteristics)
        .line("Transfer Char's", debug)
        .info(),
    state(STREAM(matrix_coefficients), "matrix_coefficients", states::matrix_coefficients).line("Matrix Coeffs", debug).info(),
    identity(STREAM(szPayloadID), "sdi_payload_id").line("SDI Payload ID", debug).padding(1),
};

/** The stream before: the debug report alone shows it, and no metric does. */
template <std::size_t N> constexpr std::array<Row, N> of_the_past(std::array<Row, N> rows)
{
    for (Row& row : rows)
    {
        row.metric = MetricType::none;
        for (std::size_t i = 0; i < row.line_count; ++i)
        {
            row.lines[i].level = debug;
            if (row.lines[i].label == "Input Frame Rate") --row.line_count; // it compares the frame rate of now
        }
    }
    return rows;
}

/* ---- What the framer counts ---- */

inline constexpr std::array framer_counter_rows = {
    event(COUNTERS(tLastVideoFrameReceived), "last_received_frame_time"),
    counter(COUNTERS(nNumStreamIDTransitions), "stream_changes").line("Stream ID Changes"),
    last(COUNTERS(tLastStreamIDTransition), "last_stream_change_time", "stream_changes").line("Stream ID Changes"),
    counter(COUNTERS(nNumFormatTransitions), "format_changes").line("Format Changes"),
    last(COUNTERS(tLastFormatTransition), "last_format_change_time", "format_changes").line("Format Changes"),
    counter(COUNTERS(nNumUnsupported), "unsupported_streams").line("Unsupported", debug),
    last(COUNTERS(tLastUnsupported), "last_unsupported_stream_time", "unsupported_streams").line("Unsupported", debug),
    state(COUNTERS(nLastUnsupportedErrorCode), "last_unsupported_reason", states::session_error).line("Unsupported Reason").no_metric(),
    counter(COUNTERS(nNumH264Compression), "h264_streams").line("H264 Compression", debug),
    last(COUNTERS(tLastH264Compression), "last_h264_stream_time", "h264_streams").line("H264 Compression", debug),
    counter(COUNTERS(nNumH265Compression), "h265_streams").line("H265 Compression", debug),
    last(COUNTERS(tLastH265Compression), "last_h265_stream_time", "h265_streams").line("H265 Compression", debug),
    counter(COUNTERS(nNumUnknownCompression), "unknown_compression_streams").line("Unknown Compression", debug),
    last(COUNTERS(tLastUnknownCompression), "last_unknown_compression_stream_time", "unknown_compression_streams")
        .line("Unknown Compression", debug),
    counter(COUNTERS(nNum420_8bitColortype), "chroma_420_8bit_streams").line("4:2:0 8bit ColorType", debug),
    last(COUNTERS(tLast420_8bitColortype), "last_chroma_420_8bit_stream_time", "chroma_420_8bit_streams")
        .line("4:2:0 8bit ColorType", debug),
    counter(COUNTERS(nNum420_10bitColortype), "chroma_420_10bit_streams").line("4:2:0 10bit ColorType", debug),
    last(COUNTERS(tLast420_10bitColortype), "last_chroma_420_10bit_stream_time", "chroma_420_10bit_streams")
        .line("4:2:0 10bit ColorType", debug),
    counter(COUNTERS(nNum422_8bitColortype), "chroma_422_8bit_streams").line("4:2:2 8bit ColorType", debug),
    last(COUNTERS(tLast422_8bitColortype), "last_chroma_422_8bit_stream_time", "chroma_422_8bit_streams")
        .line("4:2:2 8bit ColorType", debug),
    counter(COUNTERS(nNum422_10bitColortype), "chroma_422_10bit_streams").line("4:2:2 10bit ColorType", debug),
    last(COUNTERS(tLast422_10bitColortype), "last_chroma_422_10bit_stream_time", "chroma_422_10bit_streams")
        .line("4:2:2 10bit ColorType", debug),
    counter(COUNTERS(nNumUnknownColortype), "unknown_chroma_streams").line("Unknown ColorType", debug),
    last(COUNTERS(tLastUnknownColortype), "last_unknown_chroma_stream_time", "unknown_chroma_streams").line("Unknown ColorType", debug),
    counter(COUNTERS(nNumInputPackets), "received_packets").line("Input Packets", debug),
    counter(COUNTERS(nNumInputPacketsFreed), "freed_packets").line("Input Packets Freed", debug),
    counter(COUNTERS(nNumInputPacketsDropped), "dropped_packets").line("Input Packets Dropped", debug),
    last(COUNTERS(tLastInputPacketDropped), "last_dropped_packet_time", "dropped_packets").line("Input Packets Dropped", debug),
    gauge(COUNTERS(nInputFifoLength), "input_fifo_length").line("Input FIFO Length", debug),
    gauge(COUNTERS(fInputFrameRate), "input_frame_rate").line("Input Frame Rate"),
    counter(COUNTERS(nNumOutputFrames), "output_pictures").line("Output Pics To Dec", debug),
    last(COUNTERS(tLastOutputFrame), "last_output_picture_time", "output_pictures").line("Output Pics To Dec", debug),
    counter(COUNTERS(nNumOutputFramesOnePiece), "one_piece_pictures").line("Output Pics 1-Piece", debug),
    last(COUNTERS(tLastOutputFrameOnePiece), "last_one_piece_picture_time", "one_piece_pictures").line("Output Pics 1-Piece", debug),
    counter(COUNTERS(nNumOutputFramesAssembled), "assembled_pictures").line("Output Pics Assembled", debug),
    last(COUNTERS(tLastOutputFrameAssembled), "last_assembled_picture_time", "assembled_pictures").line("Output Pics Assembled", debug),
    counter(COUNTERS(nNumOutputFramesDropped), "dropped_pictures").line("Output Pics Dropped", debug),
    last(COUNTERS(tLastOutputFrameDropped), "last_dropped_picture_time", "dropped_pictures").line("Output Pics Dropped", debug),
    counter(COUNTERS(nNumOutputBytesToDecoder), "output_bytes").line("Output Bytes To Dec", debug),
    counter(COUNTERS(nNumOutputBytesDropped), "dropped_picture_bytes").line("Output Bytes Dropped", debug),
    gauge(COUNTERS(nOutputFifoLength), "output_fifo_length").line("Output FIFO Length", debug),
    counter(COUNTERS(nNumKeyFrames), "key_frames").line("Key Frames to Dec", debug),
    last(COUNTERS(tLastKeyFrame), "last_key_frame_time", "key_frames").line("Key Frames to Dec", debug),
    counter(COUNTERS(nNumIPictures), "i_pictures").line("I-Pictures", debug).metric_name("pictures", "type", "i"),
    last(COUNTERS(tLastIPicture), "last_i_picture_time", "i_pictures").line("I-Pictures", debug).metric_name("last_picture", "type", "i"),
    counter(COUNTERS(nNumPPictures), "p_pictures").line("P-Pictures", debug).metric_name("pictures", "type", "p"),
    last(COUNTERS(tLastPPicture), "last_p_picture_time", "p_pictures").line("P-Pictures", debug).metric_name("last_picture", "type", "p"),
    counter(COUNTERS(nNumBPictures), "b_pictures").line("B-Pictures", debug).metric_name("pictures", "type", "b"),
    last(COUNTERS(tLastBPicture), "last_b_picture_time", "b_pictures").line("B-Pictures", debug).metric_name("last_picture", "type", "b"),
    counter(COUNTERS(nNumUnknownPictures), "unknown_type_pictures")
        .line("Unknown Pictures", debug)
        .metric_name("pictures", "type", "unknown"),
    last(COUNTERS(tLastUnknownPicture), "last_unknown_type_picture_time", "unknown_type_pictures")
        .line("Unknown Pictures", debug)
        .metric_name("last_picture", "type", "unknown"),
    max(COUNTERS(nMaxNumberOfBPicturesInARow), "max_consecutive_b_pictures", "stream.consecutive_b_pictures")
        .line("Max B-Pictures", debug)
        .metric_name("max_consecutive_pictures", "type", "b"),
    counter(COUNTERS(nNumProgressivePicStruct), "progressive_pictures").line("Progressive Pictures", debug),
    last(COUNTERS(tLastProgressivePicStruct), "last_progressive_picture_time", "progressive_pictures").line("Progressive Pictures", debug),
    counter(COUNTERS(nNumInterlacedPicStruct), "interlaced_pictures").line("Interlaced Pictures", debug),
    last(COUNTERS(tLastInterlacedPicStruct), "last_interlaced_picture_time", "interlaced_pictures").line("Interlaced Pictures", debug),
    counter(COUNTERS(nNumInterlacedTopFields), "top_fields").line("Interlaced Top Fields", debug),
    last(COUNTERS(tLastInterlacedTopField), "last_top_field_time", "top_fields").line("Interlaced Top Fields", debug),
    counter(COUNTERS(nNumInterlacedBottomFields), "bottom_fields").line("Interlaced Btm Fields", debug),
    last(COUNTERS(tLastInterlacedBottomField), "last_bottom_field_time", "bottom_fields").line("Interlaced Btm Fields", debug),
    counter(COUNTERS(nNumInterlacedBothFields), "both_fields_pictures").line("Interlaced Both Flds", debug),
    last(COUNTERS(tLastInterlacedBothFields), "last_both_fields_picture_time", "both_fields_pictures").line("Interlaced Both Flds", debug),
    counter(COUNTERS(nNumUnknownPicStruct), "unknown_structure_pictures").line("Unknown Pic Structure", debug),
    last(COUNTERS(tLastUnknownPicStruct), "last_unknown_structure_picture_time", "unknown_structure_pictures")
        .line("Unknown Pic Structure", debug),
    counter(COUNTERS(nNumVPSNALs), "vps_nal_units").line("VPS NALs", debug),
    last(COUNTERS(tLastVPSNAL), "last_vps_nal_unit_time", "vps_nal_units").line("VPS NALs", debug),
    counter(COUNTERS(nNumSPSNALs), "sps_nal_units").line("SPS NALs", debug),
    last(COUNTERS(tLastSPSNAL), "last_sps_nal_unit_time", "sps_nal_units").line("SPS NALs", debug),
    counter(COUNTERS(nNumPPSNALs), "pps_nal_units").line("PPS NALs", debug),
    last(COUNTERS(tLastPPSNAL), "last_pps_nal_unit_time", "pps_nal_units").line("PPS NALs", debug),
    counter(COUNTERS(nNumSEINALs), "sei_nal_units").line("SEI NALs", debug),
    last(COUNTERS(tLastSEINAL), "last_sei_nal_unit_time", "sei_nal_units").line("SEI NALs", debug),
    counter(COUNTERS(nNumSHNALs), "slice_nal_units").line("SH NALs", debug),
    last(COUNTERS(tLastSHNAL), "last_slice_nal_unit_time", "slice_nal_units").line("SH NALs", debug),
    counter(COUNTERS(nNumAUDNALs), "aud_nal_units").line("AUD NALs", debug),
    last(COUNTERS(tLastAUDNAL), "last_aud_nal_unit_time", "aud_nal_units").line("AUD NALs", debug),
    counter(COUNTERS(nNumFillerNALs), "filler_nal_units").line("Filler NALs", debug),
    last(COUNTERS(tLastFillerNAL), "last_filler_nal_unit_time", "filler_nal_units").line("Filler NALs", debug),
    counter(COUNTERS(nNumUnknownNALs), "unknown_nal_units").line("Unknown NALs", debug),
    last(COUNTERS(tLastUnknownNAL), "last_unknown_nal_unit_time", "unknown_nal_units").line("Unknown NALs", debug),
    counter(COUNTERS(nNumSPSErrors), "sps_errors").line("SPS errors", debug),
    last(COUNTERS(tLastSPSError), "last_sps_error_time", "sps_errors").line("SPS errors", debug),
    counter(COUNTERS(nNumPPSErrors), "pps_errors").line("PPS errors", debug),
    last(COUNTERS(tLastPPSError), "last_pps_error_time", "pps_errors").line("PPS errors", debug),
    counter(COUNTERS(nNumSEIErrors), "sei_errors").line("SEI errors", debug),
    last(COUNTERS(tLastSEIError), "last_sei_error_time", "sei_errors").line("SEI errors", debug),
    counter(COUNTERS(nNumSHErrors), "slice_header_errors").line("SH errors", debug),
    last(COUNTERS(tLastSHError), "last_slice_header_error_time", "slice_header_errors").line("SH errors", debug),
    counter(COUNTERS(nNumNoNALsInFrame), "frames_without_nal_units").line("No NALs", debug),
    last(COUNTERS(tLastNoNALsInFrame), "last_frame_without_nal_units_time", "frames_without_nal_units").line("No NALs", debug),
    counter(COUNTERS(nNumTC), "timecode_frames").line("TC Frames", debug),
    counter(COUNTERS(nNumTCBytesOutput), "output_timecode_bytes").line("TC Bytes Output", debug),
    last(COUNTERS(tLastTCReceived), "last_timecode_frame_time", "timecode_frames").line("TC Frames", debug),
    counter(COUNTERS(nNumCC), "closed_caption_frames").line("CC Frames", debug),
    counter(COUNTERS(nNumCCBytesOutput), "output_closed_caption_bytes").line("CC Bytes Output", debug),
    last(COUNTERS(tLastCCReceived), "last_closed_caption_frame_time", "closed_caption_frames").line("CC Frames", debug),
    counter(COUNTERS(nNumAFD), "afd_frames").line("AFD Frames", debug),
    counter(COUNTERS(nNumAFDBytesOutput), "output_afd_bytes").line("AFD Bytes Output", debug),
    last(COUNTERS(tLastAFDReceived), "last_afd_frame_time", "afd_frames").line("AFD Frames", debug),
    gauge(COUNTERS(nInputPacketListSize), "input_packet_list_size").line("Input Pkt List Size", debug),
    max(COUNTERS(nMaxInputPacketListSize), "max_input_packet_list_size", "input_packet_list_size").line("Input Pkt List Size", debug),
    moment(COUNTERS(tMaxInputPacketListSize), "max_input_packet_list_size_time", "max_input_packet_list_size")
        .line("Input Pkt List Size", debug),
    counter(COUNTERS(nInputPacketListOverflows), "input_packet_list_overflows").line("Input Pkt List Ovflws"),
    last(COUNTERS(tLastInputPacketListOverflow), "last_input_packet_list_overflow_time", "input_packet_list_overflows")
        .line("Input Pkt List Ovflws"),
    gauge(COUNTERS(nOutputPacketListSize), "output_packet_list_size").line("Output Pkt List Size", debug),
    max(COUNTERS(nMaxOutputPacketListSize), "max_output_packet_list_size", "output_packet_list_size").line("Output Pkt List Size", debug),
    moment(COUNTERS(tMaxOutputPacketListSize), "max_output_packet_list_size_time", "max_output_packet_list_size")
        .line("Output Pkt List Size", debug),
    counter(COUNTERS(nOutputPacketListOverflows), "output_packet_list_overflows").line("Output Pkt List Ovflws"),
    last(COUNTERS(tLastOutputPacketListOverflow), "last_output_packet_list_overflow_time", "output_packet_list_overflows")
        .line("Output Pkt List Ovflws"),
};

inline constexpr auto vframer = rows_of<SMGR_VFRAMER_STATS>(
    "vframer", join(framer_rows, within(DICTIONARY_PLACE(SMGR_VFRAMER_STATS, tCurrentProperties), "stream.", {}, stream_rows),
                    within(DICTIONARY_PLACE(SMGR_VFRAMER_STATS, tPreviousProperties), "previous_stream.", is_set("format_changes"),
                           of_the_past(stream_rows)),
                    framer_counter_rows));
static_assert(tile<sizeof(SMGR_VFRAMER_STATS)>(vframer));

#undef FRAMER
#undef STREAM
#undef COUNTERS

} // namespace dictionary::row

#endif
