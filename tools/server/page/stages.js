/**
 * The chain as a table: for each stage the counters that are its input, its output and its losses, the words beside its name, the plot,
 * and the fields that open below it. The diagnosis tells the states; here is nothing but what to look at.
 */
import * as words from "./words.js";

const CHANNELS = [0, 1, 2, 3];
const of_channels = (member) => CHANNELS.map((i) => `metadata.channels[${i}].${member}`);
const fields_of = (component, names) => names.trim().split(/\s+/).map((name) => `${component}.${name}`);

/** A rate: of counters together, less those of what was counted and did not pass. */
const rate_of = (plus, minus = []) => ({ plus, minus });

const SOURCES = [...Array(10).keys()];
const of_sources = (member) => SOURCES.map((i) => `tdemux.sources[${i}].${member}`);
const RECEIVED = rate_of(["tdemux.received_packets"]);
const DECRYPTED = rate_of(["tdemux.received_packets"], ["tdemux.srt.undecrypted_packets"]);
const LINK_LOST = ["tdemux.srt.dropped_packets", "tdemux.srt.undecrypted_packets", "tdemux.fec.lost_packets"];
const PACKETS = { rate: "pkt/s", count: "pkts" };
const PICTURES = { rate: "pic/s", count: "pics" };

/**
 * In order of the chain. `lane` is main, branch (beside the video) or across (buffering, of all streams). `in` and `out` are rates, or a
 * gauge with its unit and the factor to it; a plot has one of both. `lost` counts less `lost_less`, which an earlier stage has lost. A
 * plot of losses has bars; `least` is the least that its scale reaches to, `band` what is good, `needed` a field that it should reach.
 */
export const STAGES = [
  {
    id: "network", lane: "main", unit: PACKETS, words: words.network,
    in: { gauge: "tdemux.bit_rate", unit: "Mbps", factor: 1e-6, digits: 2 },
    out: RECEIVED,
    lost: ["tdemux.srt.lost_packets", "tdemux.fec.missing_packets"],
    plot: { label: "Bit rate", unit: "Mbps", gauge: "tdemux.bit_rate", factor: 1e-6, digits: 2 },
    fields: fields_of("tdemux", `state uptime stream_address.ip stream_port encapsulation packet_interval max_packet_interval received_bytes
      receive_errors last_error connections failovers`),
  },
  {
    id: "link", lane: "main", unit: PACKETS, words: words.link,
    in: RECEIVED,
    out: DECRYPTED,
    lost: LINK_LOST,
    plot: { label: "Losses", unit: "pkt/s", rates: rate_of(LINK_LOST), bars: true, least: 10, digits: 1 },
    fields: fields_of("tdemux", `srt.key_state srt.key_length srt.rtt srt.latency srt.buffered_duration srt.available_bandwidth srt.lost_packets
      srt.sent_naks srt.connections fec.columns fec.rows fec.row_fec fec.received_column_packets fec.received_row_packets
      fec.missing_packets fec.recovered_packets`),
  },
  {
    id: "ts", lane: "main", unit: PACKETS, words: words.transport_stream,
    in: rate_of(of_sources("received_packets")),
    out: rate_of(of_sources("output_packets")),
    lost: ["tdemux.dropped_packets"],
    lost_less: LINK_LOST,
    plot: { label: "Packets out", unit: "pkt/s", rates: rate_of(of_sources("output_packets")), digits: 1 },
    fields: fields_of("tdemux", `program_number pcr_pid streams sources[0].bit_rate corrupted_ts_frames pes_size_mismatches frames_without_pcr
      frames_with_late_pts input_packet_list_overflows new_stream_markers last_dropped_pid`),
  },
  {
    id: "clock", lane: "main", unit: { rate: "PCR/s", count: "PCRs" }, words: words.clock,
    in: rate_of(["clock_recovery.pcr_updates"]),
    out: { gauge: "clock_recovery.stc_deviation_ppm", unit: "PPM", factor: 1, digits: 0, signed: true },
    lost: ["clock_recovery.late_pcrs", "clock_recovery.pcr_jitter_errors"],
    plot: { label: "Deviation", unit: "PPM", gauge: "clock_recovery.stc_deviation_ppm", factor: 1, digits: 0, band: [-5, 5], least: 10 },
    fields: fields_of("clock_recovery", `tracking_mode pll_unsettled average_stc_frequency stc_frequency resyncs max_pcr_gap max_pcr_jitter
      pll_settling_duration pcr`),
  },
  {
    id: "framer", lane: "main", unit: PICTURES, words: words.framer,
    in: rate_of(["vframer.received_packets"]),
    out: rate_of(["vframer.output_pictures"]),
    lost: ["vframer.dropped_packets", "vframer.dropped_pictures"],
    plot: { label: "Pictures out", unit: "pic/s", rates: rate_of(["vframer.output_pictures"]), digits: 1 },
    fields: fields_of("vframer", `state last_unsupported_reason stream.compression stream.chroma_format stream.profile stream.level
      stream.gop_length stream.dynamic_range input_frame_rate format_changes key_frames input_packet_list_overflows`),
  },
  {
    id: "vdecoder", lane: "main", unit: PICTURES, words: words.video_decoder,
    in: rate_of(["vdecoder.received_pictures"]),
    out: rate_of(["vdecoder.decoded_pictures"]),
    lost: ["vdecoder.dropped_pictures"],
    plot: { label: "Load", unit: "%", gauge: "vdecoder.load", factor: 1, digits: 0, scale: [0, 100] },
    fields: fields_of("vdecoder", `state load latency concealed_pictures required_frame_buffers allocated_frame_buffers input_jitter
      output_jitter codec_unit_queue_length last_creation_error input_discontinuities`),
  },
  {
    id: "output", lane: "main", unit: PICTURES, words: words.output,
    in: rate_of(["vdecoder.pictures_sent_to_display"]),
    out: rate_of(["vdecoder.displayed_frames"]),
    lost: ["vdecoder.skipped_frames", "vdecoder.output_errors"],
    plot: { label: "Picture rate", unit: "pic/s", rates: rate_of(["vdecoder.displayed_frames"]), digits: 1 },
    fields: fields_of("vdecoder", `display_format replayed_frames late_output_pictures stc_lead still_image_type still_images av_resyncs
      image_captures`),
  },
  {
    id: "audio", lane: "branch", unit: { rate: "fr/s", count: "frms" }, words: words.audio,
    in: rate_of(["audio.received_frames"]),
    out: rate_of(["audio.output_frames"]),
    lost: ["audio.skipped_frames", "audio.decoder_errors", "audio.output_errors"],
    plot: { label: "Frames played", unit: "fr/s", rates: rate_of(["audio.output_frames"]), digits: 1 },
    fields: fields_of("audio", `state configured_pairs pairs[0].compression pairs[0].bit_rate pairs[0].output_sample_rate pairs[0].av_offset
      pairs[1].av_offset timestamp_discontinuities input_jitter`),
  },
  {
    id: "metadata", lane: "branch", unit: PACKETS, words: words.metadata,
    in: rate_of(of_channels("received_packets")),
    out: rate_of(of_channels("output_packets")),
    lost: [...of_channels("dropped_packets"), ...of_channels("failed_output_packets")],
    plot: { label: "Packets out", unit: "pkt/s", rates: rate_of(of_channels("output_packets")), digits: 1 },
    fields: ["metadata.state", ...of_channels("state"), "metadata.channels[0].latency", "metadata.channels[0].late_output_packets"],
  },
  {
    id: "buffering", lane: "across", unit: PACKETS, words: words.buffering,
    in: rate_of(["buffering.received_packets"]),
    out: rate_of(["buffering.output_packets"]),
    lost: ["buffering.dropped_packets"],
    plot: { label: "Delay", unit: "ms", gauge: "buffering.channels[0].total_latency", factor: 1, digits: 0, needed: "buffering.delay_lower_limit" },
    fields: fields_of("buffering", `state mode fixed_delay delay_lower_limit delay_upper_limit max_input_jitter video_decoder_latency
      late_output_packets buffered_bytes overflows resets`),
  },
];

/** The moments that the plots mark beside restarts: the last one of each. */
export const CHANGES = [
  ["vframer.last_format_change_time", "format changed"],
  ["tdemux.last_connection_time", "link connected"],
  ["tdemux.last_failover_time", "switched to a backup"],
  ["usage.last_start_request_time", "stream started"],
];

const sampled = (figure) => (figure.gauge ? [figure.gauge] : [...figure.plus, ...figure.minus]);

/** The fields behind a figure of a row. */
export const behind = (figure) => (figure.gauge ? [figure.gauge] : figure.plus);

/** All fields that the chain needs over time. */
export const SAMPLED = [...new Set(STAGES.flatMap((stage) =>
  [...[stage.in, stage.out, stage.plot.rates ?? stage.plot].flatMap(sampled), ...stage.lost, ...(stage.lost_less ?? [])]))];
