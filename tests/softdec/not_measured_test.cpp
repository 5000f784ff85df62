/* Each field is either measured by some stream or fault of the tests, or declared as not measured and then never filled. */
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <set>
#include <string>

#include "chain/not_measured.h"
#include "dictionary.h"
#include "injector.h"

namespace softdec_tests
{

namespace
{

using softdec::Abilities;

std::set<std::string> declared(const Abilities& abilities)
{
    std::set<std::string> names;
    for (const dictionary::Field* field : softdec::fields_not_measured(abilities)) names.emplace(field->full_name);
    return names;
}

/** Whether a field is anything but zero bytes in some element. */
bool is_filled(const dictionary::Field& field, const records::Records& records)
{
    const auto* const record = reinterpret_cast<const std::byte*>(&records) + dictionary::component_of(field).offset;
    for (std::size_t element = 0; element < field.count(); ++element)
    {
        const auto* const bytes = record + field.offset(element);
        if (std::any_of(bytes, bytes + field.size, [](std::byte byte) { return byte != std::byte{0}; })) return true;
    }
    return false;
}

/** A field whose bytes belong to another one: the FEC receiver and the SRT link share theirs. */
bool shares_bytes(const dictionary::Field& field)
{
    return field.full_name.starts_with("tdemux.srt.");
}

TEST(NotMeasured, GoesByWhatAFieldTellsOf)
{
    const auto names = declared({.has_arrivals = true, .decode = true, .live = true});
    EXPECT_TRUE(names.contains("usage.stop_requests"));
    EXPECT_TRUE(names.contains("usage.last_stop_request_time"));
    EXPECT_FALSE(names.contains("usage.last_start_request_time"));
    EXPECT_TRUE(names.contains("tdemux.srt.rtt"));
    EXPECT_FALSE(names.contains("vdecoder.load"));
    EXPECT_TRUE(declared({.has_arrivals = true, .decode = true, .live = false}).contains("vdecoder.load"));
    const auto framed = declared({.has_arrivals = true, .decode = false, .live = true});
    EXPECT_TRUE(framed.contains("vdecoder.last_decoded_picture_time"));
    EXPECT_FALSE(framed.contains("vdecoder.state"));
    EXPECT_FALSE(framed.contains("audio.last_received_frame_time"));
    EXPECT_TRUE(declared({.has_arrivals = false, .decode = true, .live = false}).contains("tdemux.max_packet_interval_time"));
}

void expect_unfilled(const records::Records& records, const Abilities& abilities)
{
    const auto names = declared(abilities);
    for (const dictionary::Field& field : dictionary::fields())
    {
        if (!names.contains(std::string(field.full_name)) || shares_bytes(field)) continue;
        if (field.full_name == "vdecoder.picture_structure") continue; // -1 is its unknown
        EXPECT_FALSE(is_filled(field, records)) << field.full_name;
    }
}

TEST(NotMeasured, IsNeverFilled)
{
    const Abilities capture = {.has_arrivals = true, .decode = true, .live = false};
    const Abilities file = {.has_arrivals = false, .decode = true, .live = false};
    const Abilities framed = {.has_arrivals = true, .decode = false, .live = false};
    expect_unfilled(run(read_capture("rtp-fec.pcap"))->records(), capture);
    for (const char* name : {"h264-aac-klv.ts", "h265-ac3.ts", "h264i-mp2.ts"})
    {
        expect_unfilled(run(datagrams(read_stream(name)))->records(), capture);
        expect_unfilled(run_file(read_stream(name))->records(), file);
        expect_unfilled(run(datagrams(read_stream(name)), false)->records(), framed);
    }
}

/**
 * What the streams and faults of this test leave at zero: addresses, which the test gives none; what waits somewhere, which at the end is
 * nothing; further pairs of sound; deviations of a clock that is right; content that the streams have not; and other faults.
 */
bool is_seldom(std::string_view name)
{
    static const std::set<std::string_view> names = {
        "audio.decoded_queue_length",
        "audio.pairs[].output_queue_length",
        "buffering.buffered_bytes",
        "buffering.channels[].queue_length",
        "buffering.delay_adjustments",
        "buffering.failed_pts_syntheses",
        "buffering.last_delay_adjustment_time",
        "buffering.last_failed_pts_synthesis_time",
        "buffering.last_late_output_packet_time",
        "buffering.last_overflow_time",
        "buffering.late_output_packets",
        "buffering.max_late_output_burst",
        "buffering.max_output_lateness",
        "buffering.overflows",
        "clock_recovery.audio_timestamp_distance_1",
        "clock_recovery.audio_timestamp_distance_2",
        "clock_recovery.audio_timestamp_distance_3",
        "clock_recovery.audio_timestamp_distance_4",
        "clock_recovery.audio_timestamp_distance_5",
        "clock_recovery.audio_timestamp_distance_6",
        "clock_recovery.audio_timestamp_distance_7",
        "clock_recovery.average_stc_deviation_hz",
        "clock_recovery.average_stc_deviation_ppm",
        "clock_recovery.average_stc_deviation_ppm_fraction",
        "clock_recovery.klv_timestamp_distance",
        "clock_recovery.last_pcr_jitter",
        "clock_recovery.pcr_jitter_errors",
        "clock_recovery.stc_deviation_ppm",
        "metadata.channels[].input_packet_list_length",
        "metadata.channels[].last_late_output_packet_time",
        "metadata.channels[].last_non_increasing_pts_time",
        "metadata.channels[].last_synchronous_packet_time",
        "metadata.channels[].late_output_packets",
        "metadata.channels[].non_increasing_pts",
        "metadata.channels[].other_errors",
        "metadata.channels[].synchronous_packets",
        "metadata.timecode.frames",
        "metadata.timecode.hours",
        "metadata.timecode.minutes",
        "metadata.timecode.seconds",
        "metadata.timecode.valid",
        "tdemux.filtered_streams",
        "tdemux.frames_with_late_pts",
        "tdemux.frames_without_pcr",
        "tdemux.input_packet_list_overflows",
        "tdemux.input_packet_list_size",
        "tdemux.last_frame_with_late_pts_time",
        "tdemux.last_frame_without_pcr_time",
        "tdemux.last_input_packet_list_overflow_time",
        "tdemux.last_pes_size_mismatch_time",
        "tdemux.last_receive_error_time",
        "tdemux.last_timestamp_rollover_time",
        "tdemux.pes_size_mismatches",
        "tdemux.receive_errors",
        "tdemux.sender_address.family",
        "tdemux.sender_address.ip",
        "tdemux.sender_port",
        "tdemux.sources[].frames_without_dts",
        "tdemux.sources[].frames_without_pts",
        "tdemux.sources[].last_frame_without_dts_time",
        "tdemux.sources[].last_frame_without_pts_time",
        "tdemux.stream_address.family",
        "tdemux.stream_address.ip",
        "tdemux.stream_port",
        "tdemux.timestamp_rollovers",
        "vdecoder.crop_left",
        "vdecoder.crop_right",
        "vdecoder.crop_top",
        "vdecoder.dropped_i_pictures",
        "vdecoder.dropped_p_pictures",
        "vdecoder.estimated_latency",
        "vdecoder.last_creation_error",
        "vdecoder.last_creation_error_time",
        "vdecoder.last_dropped_i_picture_time",
        "vdecoder.last_dropped_p_picture_time",
        "vdecoder.last_non_increasing_pts_time",
        "vdecoder.last_output_error_time",
        "vdecoder.last_picture_without_info_time",
        "vdecoder.last_picture_without_pts_time",
        "vdecoder.last_skipped_frame_time",
        "vdecoder.latency",
        "vdecoder.non_increasing_pts",
        "vdecoder.output_delay",
        "vdecoder.output_errors",
        "vdecoder.pictures_without_info",
        "vdecoder.pictures_without_pts",
        "vdecoder.recent_min_output_delay",
        "vdecoder.reorder_list_length",
        "vdecoder.reorder_queue_length",
        "vdecoder.skipped_frames",
        "vframer.afd_frames",
        "vframer.assembled_pictures",
        "vframer.bottom_fields",
        "vframer.chroma_422_10bit_streams",
        "vframer.closed_caption_frames",
        "vframer.dropped_packets",
        "vframer.filler_nal_units",
        "vframer.format_changes",
        "vframer.frames_without_nal_units",
        "vframer.last_afd_frame_time",
        "vframer.last_assembled_picture_time",
        "vframer.last_bottom_field_time",
        "vframer.last_chroma_422_10bit_stream_time",
        "vframer.last_closed_caption_frame_time",
        "vframer.last_dropped_packet_time",
        "vframer.last_filler_nal_unit_time",
        "vframer.last_format_change_time",
        "vframer.last_frame_without_nal_units_time",
        "vframer.last_pps_error_time",
        "vframer.last_slice_header_error_time",
        "vframer.last_sps_error_time",
        "vframer.last_stream_change_time",
        "vframer.last_timecode_frame_time",
        "vframer.last_top_field_time",
        "vframer.last_unknown_chroma_stream_time",
        "vframer.last_unknown_compression_stream_time",
        "vframer.last_unknown_nal_unit_time",
        "vframer.last_unknown_structure_picture_time",
        "vframer.last_unknown_type_picture_time",
        "vframer.last_unsupported_reason",
        "vframer.last_unsupported_stream_time",
        "vframer.output_afd_bytes",
        "vframer.output_closed_caption_bytes",
        "vframer.output_timecode_bytes",
        "vframer.pps_errors",
        "vframer.slice_header_errors",
        "vframer.sps_errors",
        "vframer.stream.afd_present",
        "vframer.stream.closed_captions_present",
        "vframer.stream.latency",
        "vframer.stream.timecode_present",
        "vframer.stream_changes",
        "vframer.timecode_frames",
        "vframer.top_fields",
        "vframer.unknown_chroma_streams",
        "vframer.unknown_compression_streams",
        "vframer.unknown_nal_units",
        "vframer.unknown_structure_pictures",
        "vframer.unknown_type_pictures",
        "vframer.unsupported_streams",
    };
    // Before a change of the format there is no previous one.
    return names.contains(name) || name.starts_with("vframer.previous_stream.");
}

TEST(Measured, IsFilledBySomeStream)
{
    std::vector<records::Records> all;
    all.push_back(run(read_capture("rtp-fec.pcap"))->records());
    for (const char* name : {"h264-aac.ts", "h264-aac-klv.ts", "h265-ac3.ts", "h264i-mp2.ts"})
    {
        const Bytes stream = read_stream(name);
        all.push_back(run(datagrams(repeat(stream, 5)))->records());
        // Many faults at once: here it is the kinds that count.
        auto faulty = without(stream, each(payloads_of(stream, video_pid), 61));
        faulty = change(faulty, each(payloads_of(faulty, audio_pid), 23), [](std::uint8_t* packet) { packet[1] |= 0x80; });
        all.push_back(run(rtp(datagrams(faulty)))->records());
    }
    // Sound that is early, a step of the clock, an outage, packets out of the capture.
    auto arrivals = datagrams(read_stream("h264-aac.ts"));
    for (std::size_t i = arrivals.size() / 2; i < arrivals.size(); ++i)
        for (std::size_t at = 0; at < arrivals[i].bytes.size(); at += ts_size)
            if (pid_of(&arrivals[i].bytes[at]) == audio_pid) shift_timestamps(&arrivals[i].bytes[at], -270000);
    all.push_back(run(arrivals)->records());
    arrivals = datagrams(read_stream("h264-aac.ts"));
    for (std::size_t i = arrivals.size() / 2; i < arrivals.size(); ++i)
        for (std::size_t at = 0; at < arrivals[i].bytes.size(); at += ts_size) shift_clock(&arrivals[i].bytes[at], 450000);
    all.push_back(run(arrivals)->records());
    arrivals = read_capture("rtp-fec.pcap");
    arrivals.erase(arrivals.begin() + 60, arrivals.begin() + 120);
    all.push_back(run(arrivals)->records());
    arrivals.erase(arrivals.begin(), arrivals.begin() + 40);
    all.push_back(run(arrivals)->records());

    const auto names = declared({.has_arrivals = true, .decode = true, .live = false});
    for (const dictionary::Field& field : dictionary::fields())
    {
        if (names.contains(std::string(field.full_name)) || is_seldom(field.full_name)) continue;
        EXPECT_TRUE(std::ranges::any_of(all, [&](const auto& records) { return is_filled(field, records); })) << field.full_name;
    }
}

} // namespace

} // namespace softdec_tests
