#include "chain/not_measured.h"

#include <algorithm>
#include <array>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

namespace softdec
{

namespace
{

/** Fields by their public names; a name that ends in a point stands for all that begin so. What tells when a field of them last changed, or
    how large and small it has been, is not measured either, and not named. */
using Names = std::span<const std::string_view>;

/** What is measured all the same. */
constexpr std::string_view all_the_same[] = {
    "usage.start_requests",
    "usage.last_start_request_time",
    "vdecoder.record_size",
    "vdecoder.state",
};

/** What software of this kind has no counterpart of, whatever the input. */
constexpr std::string_view never[] = {
    "usage.",
    "tdemux.srt.",
    "buffering.multisync.",
    "tdemux.stream_id",
    "tdemux.stream_address.host_name",
    "tdemux.sender_address.host_name",
    "tdemux.sources[].last_transmission_time",
    "tdemux.external_packet_interval",
    "tdemux.connections",
    "tdemux.failovers",
    "tdemux.last_error",
    "tdemux.read_packet_list_size",
    "tdemux.read_packet_list_overflows",
    "vframer.decoder_id",
    "vframer.stream.framing",
    "vframer.stream.compatibility_mode",
    "vframer.stream.sdi_payload_id",
    "vframer.previous_stream.framing",
    "vframer.previous_stream.compatibility_mode",
    "vframer.previous_stream.sdi_payload_id",
    "vframer.input_fifo_length",
    "vframer.output_fifo_length",
    "vframer.input_packet_list_size",
    "vframer.input_packet_list_overflows",
    "vframer.output_packet_list_size",
    "vframer.output_packet_list_overflows",
    "vdecoder.allocated_frame_buffers",
    "vdecoder.input_delay_period_short",
    "vdecoder.output_delay_period_short",
    "vdecoder.input_delay",
    "vdecoder.average_input_delay",
    "vdecoder.recent_max_codec_unit_delay",
    "vdecoder.recent_min_codec_unit_delay",
    "vdecoder.descriptor_list_length",
    "vdecoder.theoretical_hardware_output_delay",
    "vdecoder.hardware_output_delay",
    "vdecoder.hardware_playout_delay",
    "vdecoder.input_jitter",
    "vdecoder.max_codec_unit_input_jitter",
    "vdecoder.output_jitter",
    "vdecoder.jitter",
    "vdecoder.still_image_type",
    "vdecoder.still_image_active",
    "vdecoder.av_resyncs",
    "vdecoder.reorder_extract_calls",
    "vdecoder.reorder_flush_calls",
    "vdecoder.input_parsed_callbacks",
    "vdecoder.resolution_found_callbacks",
    "vdecoder.decoded_callbacks",
    "vdecoder.display_callbacks",
    "vdecoder.sei_callbacks",
    "vdecoder.codec_unit_queue_length",
    "vdecoder.image_captures",
    "vdecoder.failed_image_captures",
    "vdecoder.exit_errors",
    "vdecoder.unreleased_frames",
    "vdecoder.still_images",
    "vdecoder.max_still_image_duration",
    "vdecoder.last_still_image_off_time",
    "audio.output_errors",
    "audio.pending_decode_requests",
    "audio.input_delay",
    "audio.output_delay",
    "audio.input_jitter",
    "audio.pairs[].mode",
    "audio.pairs[].output_errors",
    "audio.pairs[].output_write_index",
    "audio.pairs[].output_read_index",
    "audio.pairs[].last_output_write_time",
    "audio.pairs[].output_write_interval",
    "audio.pairs[].last_error",
    "metadata.decoder_id",
    "metadata.input_queue_length",
    "metadata.channels[].dropped_packets",
    "metadata.channels[].failed_output_packets",
    "metadata.channels[].failed_late_output_packets",
    "metadata.channels[].allocated_descriptors",
    "metadata.channels[].failed_descriptor_allocations",
    "metadata.channels[].written_descriptors",
    "metadata.channels[].freed_descriptors",
    "metadata.channels[].free_descriptor_list_length",
    "metadata.channels[].used_descriptor_list_length",
    "metadata.channels[].free_descriptor_list_head",
    "metadata.channels[].used_descriptor_list_head",
    "metadata.channels[].packet_list_resets",
    "metadata.channels[].delay_in_packets",
    "metadata.channels[].delay_list_length",
    "buffering.decoder_id",
    "buffering.fixed_delay",
    "buffering.multisync_delay",
    "buffering.non_video_lateness",
    "buffering.video_decoder_latency",
    "buffering.video_decoder_jitter",
    "buffering.hardware_delay",
    "buffering.dropped_packets",
    "buffering.unknown_channel_packets",
    "buffering.resets",
    "buffering.stc_updates",
    "buffering.stc_lead_adjustments",
    "clock_recovery.filtered_sender_clock_delta",
    "clock_recovery.clock_difference",
    "clock_recovery.filtered_clock_difference",
    "clock_recovery.stc_adjustment_hz",
    "clock_recovery.stc_adjustment_ppm",
    "clock_recovery.stc_adjustment_ppm_fraction",
    "clock_recovery.register_pcr",
    "clock_recovery.pcr_register_difference",
    "clock_recovery.clock_filter_divisor",
};

/** What needs arrival times. */
constexpr std::string_view without_arrivals[] = {
    "tdemux.fec.",
    "tdemux.encapsulation",
    "tdemux.fec_type",
    "tdemux.stream_address.family",
    "tdemux.stream_address.ip",
    "tdemux.stream_port",
    "tdemux.sender_address.family",
    "tdemux.sender_address.ip",
    "tdemux.sender_port",
    "tdemux.packet_interval",
    "tdemux.lost_rtp_segments",
    "tdemux.resumed_stream_markers",
    "tdemux.input_packet_list_size",
    "tdemux.input_packet_list_overflows",
    "buffering.max_input_jitter",
    "buffering.channels[].jitter",
    "clock_recovery.receiver_clock",
    "clock_recovery.stc_frequency",
    "clock_recovery.tracking_mode",
    "clock_recovery.pll_unsettled",
    "clock_recovery.pll_settling_duration",
    "clock_recovery.average_stc_frequency",
    "clock_recovery.average_stc_deviation_hz",
    "clock_recovery.average_stc_deviation_ppm",
    "clock_recovery.stc_deviation_ppm",
    "clock_recovery.average_stc_deviation_ppm_fraction",
    "clock_recovery.pcr_jitter_errors",
    "clock_recovery.last_pcr_jitter",
};

/** What decoding makes. */
constexpr std::string_view without_decoding[] = {
    "vdecoder.",
    "audio.decoded_frames",
    "audio.output_frames",
    "audio.skipped_frames",
    "audio.decoder_errors",
    "audio.decoded_queue_length",
    "audio.pairs[].output_channels",
    "audio.pairs[].decoded_frames",
    "audio.pairs[].decoded_bytes",
    "audio.pairs[].output_frames",
    "audio.pairs[].output_sample_rate",
    "audio.pairs[].skipped_frames",
    "audio.pairs[].decoder_errors",
    "audio.pairs[].output_queue_length",
    "audio.pairs[].timestamp_discontinuities",
    "audio.pairs[].av_offset",
    "audio.pairs[].video_timestamp",
    "audio.pairs[].stc_lead",
    "audio.pairs[].processing_duration",
    "buffering.average_video_stc_lead",
    "buffering.recent_min_video_stc_lead",
    "buffering.recent_max_video_stc_lead",
    "buffering.average_audio_stc_lead",
    "buffering.recent_min_audio_stc_lead",
    "buffering.recent_max_audio_stc_lead",
    "buffering.last_video_skip_or_replay_time",
    "buffering.last_audio_skip_time",
};

/** What decoding costs: figures of this machine, that are no part of what a capture gives each time. */
constexpr std::string_view without_live_input[] = {
    "vdecoder.load",
    "vdecoder.key_frame_decoding_duration",
    "audio.pairs[].processing_duration",
};

using Marked = std::array<bool, dictionary::field_count>;

void mark(Marked& marked, Names names)
{
    for (const std::string_view name : names)
    {
        bool any = false;
        for (const dictionary::Field& field : dictionary::fields())
        {
            const bool is_meant = name.ends_with('.') ? field.full_name.starts_with(name) : field.full_name == name;
            if (!is_meant) continue;
            any = true;
            if (std::ranges::find(all_the_same, field.full_name) == std::end(all_the_same)) marked.at(field.index) = true;
        }
        if (!any) throw std::logic_error("no field " + std::string(name));
    }
}

} // namespace

std::vector<const dictionary::Field*> fields_not_measured(const Abilities& abilities)
{
    Marked marked = {};
    mark(marked, never);
    if (!abilities.has_arrivals) mark(marked, without_arrivals);
    if (!abilities.decode) mark(marked, without_decoding);
    if (!abilities.live) mark(marked, without_live_input);
    const auto is_marked = [&marked](const dictionary::Field& field)
    {
        const dictionary::Field* of = &field;
        while (!marked.at(of->index) && of->relation != dictionary::Relation::none) of = &dictionary::fields()[of->related];
        return marked.at(of->index);
    };
    std::vector<const dictionary::Field*> fields;
    for (const dictionary::Field& field : dictionary::fields())
        if (is_marked(field)) fields.push_back(&field);
    return fields;
}

} // namespace softdec
