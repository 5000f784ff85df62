#include "flow.h"

#include <algorithm>

#include "sessmgr_types.h"

namespace diagnosis
{

namespace
{

constinit const Reading encapsulation{"tdemux.encapsulation"};
constinit const Reading fec_type{"tdemux.fec_type"};
constinit const Reading received{"tdemux.received_packets"};
constinit const Reading last_received{"tdemux.last_received_packet_time"};
constinit const Reading srt_lost{"tdemux.srt.lost_packets"};
constinit const Reading srt_late{"tdemux.srt.dropped_packets"};
constinit const Reading undecrypted{"tdemux.srt.undecrypted_packets"};
constinit const Reading fec_missing{"tdemux.fec.missing_packets"};
constinit const Reading fec_lost{"tdemux.fec.lost_packets"};
constinit const Reading source_received{"tdemux.sources[].received_packets"};
constinit const Reading source_output{"tdemux.sources[].output_packets"};
constinit const Reading ts_last{"tdemux.last_output_packet_time"};
constinit const Reading pcr_updates{"clock_recovery.pcr_updates"};
constinit const Reading last_pcr{"clock_recovery.last_pcr_update_time"};
constinit const Reading late_pcrs{"clock_recovery.late_pcrs"};
constinit const Reading pcr_errors{"clock_recovery.pcr_jitter_errors"};
constinit const Reading framer_received{"vframer.received_packets"};
constinit const Reading framer_output{"vframer.output_pictures"};
constinit const Reading framer_last{"vframer.last_output_picture_time"};
constinit const Reading framer_dropped{"vframer.dropped_packets"};
constinit const Reading framer_dropped_pictures{"vframer.dropped_pictures"};
constinit const Reading decoder_received{"vdecoder.received_pictures"};
constinit const Reading decoder_decoded{"vdecoder.decoded_pictures"};
constinit const Reading decoder_last{"vdecoder.last_decoded_picture_time"};
constinit const Reading decoder_dropped{"vdecoder.dropped_pictures"};
constinit const Reading display_sent{"vdecoder.pictures_sent_to_display"};
constinit const Reading displayed{"vdecoder.displayed_frames"};
constinit const Reading display_last{"vdecoder.last_displayed_frame_time"};
constinit const Reading display_skipped{"vdecoder.skipped_frames"};
constinit const Reading display_errors{"vdecoder.output_errors"};
constinit const Reading audio_received{"audio.received_frames"};
constinit const Reading audio_output{"audio.output_frames"};
constinit const Reading audio_last{"audio.last_output_frame_time"};
constinit const Reading audio_skipped{"audio.skipped_frames"};
constinit const Reading audio_errors{"audio.decoder_errors"};
constinit const Reading audio_output_errors{"audio.output_errors"};
constinit const Reading metadata_received{"metadata.channels[].received_packets"};
constinit const Reading metadata_output{"metadata.channels[].output_packets"};
constinit const Reading metadata_last{"metadata.channels[].last_output_packet_time"};
constinit const Reading metadata_dropped{"metadata.channels[].dropped_packets"};
constinit const Reading metadata_failed{"metadata.channels[].failed_output_packets"};
constinit const Reading buffering_received{"buffering.received_packets"};
constinit const Reading buffering_output{"buffering.output_packets"};
constinit const Reading buffering_last{"buffering.last_output_packet_time"};
constinit const Reading buffering_dropped{"buffering.dropped_packets"};

const std::array<Flow, stage_count> flows = {{
    {Stage::network, &received, nullptr, &received, &last_received, {&srt_lost, &fec_missing}, "packets"},
    {Stage::link, &received, &undecrypted, &received, &ts_last, {&srt_late, &undecrypted, &fec_lost}, "packets"},
    {Stage::ts, &source_received, nullptr, &source_output, &ts_last, {}, "packets"},
    {Stage::clock, &pcr_updates, nullptr, &pcr_updates, &last_pcr, {&late_pcrs, &pcr_errors}, "updates"},
    {Stage::framer, &framer_received, nullptr, &framer_output, &framer_last, {&framer_dropped, &framer_dropped_pictures}, "pictures"},
    {Stage::vdecoder, &decoder_received, nullptr, &decoder_decoded, &decoder_last, {&decoder_dropped}, "pictures"},
    {Stage::output, &display_sent, nullptr, &displayed, &display_last, {&display_skipped, &display_errors}, "frames"},
    {Stage::audio, &audio_received, nullptr, &audio_output, &audio_last, {&audio_skipped, &audio_errors, &audio_output_errors}, "frames"},
    {Stage::metadata, &metadata_received, nullptr, &metadata_output, &metadata_last, {&metadata_dropped, &metadata_failed}, "packets"},
    {Stage::buffering, &buffering_received, nullptr, &buffering_output, &buffering_last, {&buffering_dropped}, "packets"},
}};

/** Counters of a transport that is not in use hold those of the other. */
bool in_use(const Reading& reading, const Window& window)
{
    if (reading.name().starts_with("tdemux.srt.")) return window.value(encapsulation) == SMGR_STREAM_ENCAPSULATION_TS_SRT;
    if (reading.name().starts_with("tdemux.fec."))
        return window.value(encapsulation) == SMGR_STREAM_ENCAPSULATION_TS_RTP && window.value(fec_type) == SMGR_FEC_TYPE_PRO_MPEG;
    return true;
}

} // namespace

const Flow& flow(Stage stage)
{
    return flows[static_cast<std::size_t>(stage)];
}

Passed passed(const Flow& flow, const Window& window)
{
    Passed passed{.in = window.grown(*flow.in), .out = window.grown(*flow.out)};
    if (flow.held_back != nullptr && in_use(*flow.held_back, window))
        passed.out = std::max<std::int64_t>(0, passed.out - window.grown(*flow.held_back));
    for (const Reading* lost : flow.lost)
        if (lost != nullptr && in_use(*lost, window)) passed.lost += window.grown(*lost);
    return passed;
}

bool measured(const Flow& flow, const Window& window)
{
    return window.measured(*flow.in) && window.measured(*flow.out) && window.measured(*flow.last);
}

} // namespace diagnosis
