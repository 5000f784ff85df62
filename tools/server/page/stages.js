/**
 * The chain as a table: for each stage the counters that are its input, its output and its losses, the words beside its name, the plot,
 * and the fields that open below it. The diagnosis tells the states; here is nothing but what to look at.
 */
import { microseconds, milliseconds } from "./text.js";

const CHANNELS = [0, 1, 2, 3];
const of_channels = (member) => CHANNELS.map((i) => `metadata.channels[${i}].${member}`);
const counters = (plus, minus = []) => ({ plus, minus });
const more = (...parts) => parts.filter(Boolean).map((part) => ` \u00b7 ${part}`).join("");
const whole_ms = (us) => milliseconds(Math.round(us / 1000));
const times = (text) => text?.replace(/(\d)x(\d)/, "$1\u00d7$2");

const LINK_LOST = ["tdemux.srt.dropped_packets", "tdemux.srt.undecrypted_packets", "tdemux.fec.lost_packets"];
const PACKETS = { rate: "pkt/s", count: "pkts" };
const PICTURES = { rate: "pic/s", count: "pics" };

/** Words of a stage: what a phone shows, then the rest. `v` gives the value of a field, `t` its text. */
function sender(v, t) {
  const name = v("tdemux.sender_address.host_name"), address = v("tdemux.sender_address.ip"), port = v("tdemux.sender_port");
  if (!v("tdemux.stream_started")) return ["Not started"];
  if (!name && !address) return [t("tdemux.state")];
  return [name ?? address, `${name && address ? ` (${address})` : ""}${port ? ` port ${port}` : ""}`];
}

function link(v, t) {
  if (v("tdemux.srt.rtt") !== undefined) {
    const key = v("tdemux.srt.key_length");
    return [`SRT, RTT ${microseconds(v("tdemux.srt.rtt") ?? 0)}`, more(`latency ${milliseconds(v("tdemux.srt.latency") ?? 0)}`, key ? `AES-${key * 8}` : "not encrypted")];
  }
  if (v("tdemux.fec.columns") !== undefined) {
    const recovered = v("tdemux.fec.recovered_packets");
    return ["Pro-MPEG FEC", more(`${v("tdemux.fec.columns") ?? "?"}\u00d7${v("tdemux.fec.rows") ?? "?"}${v("tdemux.fec.row_fec") ? ", rows too" : ", columns only"}`,
      recovered ? `${t("tdemux.fec.recovered_packets")} recovered` : "")];
  }
  return [v("tdemux.received_packets") ? `${t("tdemux.encapsulation")}, no protection` : "No link yet"];
}

function streams(v) {
  const kinds = [["video", "tdemux.video_streams"], ["audio", "tdemux.audio_streams"], ["KLV", "tdemux.klv_streams"]];
  const found = kinds.filter(([, field]) => v(field)).map(([kind, field]) => `${v(field)} ${kind}`);
  return found.length ? [found.join(", "), v("tdemux.program_number") ? ` \u00b7 program ${v("tdemux.program_number")}` : ""] : ["No streams yet"];
}

function clock(v) {
  if (!["enabled", "enabled_with_lock"].includes(v("clock_recovery.tracking_mode")?.name)) return ["Tracking is off"];
  const ppm = v("clock_recovery.average_stc_deviation_ppm"), fraction = v("clock_recovery.average_stc_deviation_ppm_fraction");
  if (ppm === null || ppm === undefined) return [v("clock_recovery.pll_unsettled") ? "Settling" : "Not measured yet"];
  return v("clock_recovery.pll_unsettled") ? [`Unlocked, ${ppm} PPM off`] : [`Locked, ${ppm}.${fraction} PPM`];
}

function format(v, t) {
  const width = v("vframer.stream.width"), height = v("vframer.stream.height"), rate = v("vframer.stream.frame_rate");
  if (!width) return ["No stream yet"];
  return [`${width}\u00d7${height}${v("vframer.stream.interlaced") ? "i" : "p"}${rate ? Number(rate.toFixed(2)) : ""}`,
    more(t("vframer.stream.compression"), t("vframer.stream.chroma_format"))];
}

function decoder(v, t) {
  if (!v("vdecoder.received_pictures")) return [t("vdecoder.state")];
  return [`${t("vdecoder.state")}, load ${v("vdecoder.load") ?? 0}%`, v("vdecoder.latency") ? ` \u00b7 latency ${whole_ms(v("vdecoder.latency"))}` : ""];
}

function output(v, t) {
  const shown = v("vdecoder.display_format")?.name;
  if (!shown || shown === "none") return ["No display format"];
  return v("vdecoder.still_image_active") ? ["Still image", ` \u00b7 ${times(shown)}`] : [times(shown), v("vdecoder.latency") ? "" : ` \u00b7 ${t("vdecoder.state")}`];
}

function audio(v, t) {
  const pairs = v("audio.pairs");
  if (!pairs?.length) return ["No pairs"];
  const offsets = pairs.map((pair) => pair.av_offset).filter((offset) => offset !== null && offset !== undefined);
  const worst = offsets.sort((a, b) => Math.abs(b) - Math.abs(a))[0];
  return [`${pairs.length} ${pairs.length > 1 ? "pairs" : "pair"}, ${t(`audio.pairs[${pairs[0].index}].compression`)}`, worst !== undefined ? ` \u00b7 A/V sync ${milliseconds(worst)}` : ""];
}

function channels(v) {
  const used = (v("metadata.channels") ?? []).filter((channel) => channel.received_packets);
  return [used.length ? used.map((channel) => channel.name).join(", ") : "No channels"];
}

function delay(v, t) {
  const latency = v("buffering.channels[0].total_latency"), mode = t("buffering.mode");
  if (v("buffering.mode")?.name === "fixed") return [`${mode} at ${milliseconds(v("buffering.fixed_delay"))}`, latency ? ` \u00b7 now ${milliseconds(latency)}` : ""];
  return [latency ? `${mode}, ${milliseconds(latency)}` : mode];
}

/**
 * In order of the chain; `lane` is main, branch (beside the video) or across (buffering, of all streams). A figure is a rate of counters,
 * or a gauge with its unit and the factor to it. Plots of rates may be of losses (bars), and have a fixed or a growing scale.
 */
export const STAGES = [
  { id: "network", lane: "main", unit: PACKETS, words: sender,
    in: { gauge: "tdemux.bit_rate", unit: "Mbps", factor: 1e-6, digits: 2 }, out: counters(["tdemux.received_packets"]), lost: ["tdemux.srt.lost_packets", "tdemux.fec.missing_packets"],
    plot: { label: "Bit rate", unit: "Mbps", gauge: "tdemux.bit_rate", factor: 1e-6, digits: 2 },
    fields: ["tdemux.state", "tdemux.uptime", "tdemux.stream_address.ip", "tdemux.stream_port", "tdemux.encapsulation", "tdemux.packet_interval",
      "tdemux.max_packet_interval", "tdemux.received_bytes", "tdemux.receive_errors", "tdemux.last_error", "tdemux.connections", "tdemux.failovers"] },
  { id: "link", lane: "main", unit: PACKETS, words: link,
    in: counters(["tdemux.received_packets"]), out: counters(["tdemux.received_packets"], ["tdemux.srt.undecrypted_packets"]), lost: LINK_LOST,
    plot: { label: "Losses", unit: "pkt/s", rates: counters(LINK_LOST), bars: true, least: 10, digits: 1 },
    fields: ["tdemux.srt.key_state", "tdemux.srt.key_length", "tdemux.srt.rtt", "tdemux.srt.latency", "tdemux.srt.buffered_duration", "tdemux.srt.available_bandwidth",
      "tdemux.srt.lost_packets", "tdemux.srt.sent_naks", "tdemux.srt.connections", "tdemux.fec.columns", "tdemux.fec.rows",
      "tdemux.fec.row_fec", "tdemux.fec.received_column_packets", "tdemux.fec.received_row_packets", "tdemux.fec.missing_packets", "tdemux.fec.recovered_packets"] },
  { id: "ts", lane: "main", unit: PACKETS, words: streams,
    in: counters(["tdemux.received_packets"], ["tdemux.srt.undecrypted_packets"]), out: counters(["tdemux.output_packets"]), lost: ["tdemux.dropped_packets"],
    lost_less: LINK_LOST, plot: { label: "Packets out", unit: "pkt/s", rates: counters(["tdemux.output_packets"]), digits: 1 },
    fields: ["tdemux.program_number", "tdemux.pcr_pid", "tdemux.streams", "tdemux.sources[0].bit_rate", "tdemux.corrupted_ts_frames", "tdemux.pes_size_mismatches",
      "tdemux.frames_without_pcr", "tdemux.frames_with_late_pts", "tdemux.input_packet_list_overflows", "tdemux.new_stream_markers", "tdemux.last_dropped_pid"] },
  { id: "clock", lane: "main", unit: { rate: "PCR/s", count: "PCRs" }, words: clock,
    in: counters(["clock_recovery.pcr_updates"]), out: { gauge: "clock_recovery.stc_deviation_ppm", unit: "PPM", factor: 1, digits: 0, signed: true },
    lost: ["clock_recovery.late_pcrs", "clock_recovery.pcr_jitter_errors"],
    plot: { label: "Deviation", unit: "PPM", gauge: "clock_recovery.stc_deviation_ppm", factor: 1, digits: 0, band: [-5, 5], least: 10 },
    fields: ["clock_recovery.tracking_mode", "clock_recovery.pll_unsettled", "clock_recovery.average_stc_frequency", "clock_recovery.stc_frequency", "clock_recovery.resyncs",
      "clock_recovery.max_pcr_gap", "clock_recovery.max_pcr_jitter", "clock_recovery.pll_settling_duration", "tdemux.pcr"] },
  { id: "framer", lane: "main", unit: PICTURES, words: format,
    in: counters(["vframer.received_packets"]), out: counters(["vframer.output_pictures"]), lost: ["vframer.dropped_packets", "vframer.dropped_pictures"],
    plot: { label: "Pictures out", unit: "pic/s", rates: counters(["vframer.output_pictures"]), digits: 1 },
    fields: ["vframer.state", "vframer.last_unsupported_reason", "vframer.stream.compression", "vframer.stream.chroma_format", "vframer.stream.profile", "vframer.stream.level",
      "vframer.stream.gop_length", "vframer.stream.dynamic_range", "vframer.input_frame_rate", "vframer.format_changes", "vframer.key_frames", "vframer.input_packet_list_overflows"] },
  { id: "vdecoder", lane: "main", unit: PICTURES, words: decoder,
    in: counters(["vdecoder.received_pictures"]), out: counters(["vdecoder.decoded_pictures"]), lost: ["vdecoder.dropped_pictures"],
    plot: { label: "Load", unit: "%", gauge: "vdecoder.load", factor: 1, digits: 0, scale: [0, 100] },
    fields: ["vdecoder.state", "vdecoder.load", "vdecoder.latency", "vdecoder.concealed_pictures", "vdecoder.required_frame_buffers", "vdecoder.allocated_frame_buffers",
      "vdecoder.input_jitter", "vdecoder.output_jitter", "vdecoder.codec_unit_queue_length", "vdecoder.last_creation_error", "vdecoder.input_discontinuities"] },
  { id: "output", lane: "main", unit: PICTURES, words: output,
    in: counters(["vdecoder.pictures_sent_to_display"]), out: counters(["vdecoder.displayed_frames"]), lost: ["vdecoder.skipped_frames", "vdecoder.output_errors"],
    plot: { label: "Picture rate", unit: "pic/s", rates: counters(["vdecoder.displayed_frames"]), digits: 1 },
    fields: ["vdecoder.display_format", "vdecoder.replayed_frames", "vdecoder.late_output_pictures", "vdecoder.stc_lead", "vdecoder.still_image_type", "vdecoder.still_images",
      "vdecoder.av_resyncs", "vdecoder.image_captures"] },
  { id: "audio", lane: "branch", unit: { rate: "fr/s", count: "frms" }, words: audio,
    in: counters(["audio.received_frames"]), out: counters(["audio.output_frames"]), lost: ["audio.skipped_frames", "audio.decoder_errors", "audio.output_errors"],
    plot: { label: "Frames played", unit: "fr/s", rates: counters(["audio.output_frames"]), digits: 1 },
    fields: ["audio.state", "audio.configured_pairs", "audio.pairs[0].compression", "audio.pairs[0].bit_rate", "audio.pairs[0].output_sample_rate", "audio.pairs[0].av_offset",
      "audio.pairs[1].av_offset", "audio.timestamp_discontinuities", "audio.input_jitter"] },
  { id: "metadata", lane: "branch", unit: PACKETS, words: channels,
    in: counters(of_channels("received_packets")), out: counters(of_channels("output_packets")), lost: [...of_channels("dropped_packets"), ...of_channels("failed_output_packets")],
    plot: { label: "Packets out", unit: "pkt/s", rates: counters(of_channels("output_packets")), digits: 1 },
    fields: ["metadata.state", ...of_channels("state"), "metadata.channels[0].latency", "metadata.channels[0].late_output_packets"] },
  { id: "buffering", lane: "across", unit: PACKETS, words: delay,
    in: counters(["buffering.received_packets"]), out: counters(["buffering.output_packets"]), lost: ["buffering.dropped_packets"],
    plot: { label: "Delay", unit: "ms", gauge: "buffering.channels[0].total_latency", factor: 1, digits: 0, needed: "buffering.delay_lower_limit" },
    fields: ["buffering.state", "buffering.mode", "buffering.fixed_delay", "buffering.delay_lower_limit", "buffering.delay_upper_limit", "buffering.max_input_jitter",
      "buffering.video_decoder_latency", "buffering.late_output_packets", "buffering.buffered_bytes", "buffering.overflows", "buffering.resets"] },
];

/** The moments that the plots mark beside restarts: the last one of each. */
export const CHANGES = [
  ["vframer.last_format_change_time", "format changed"],
  ["tdemux.last_connection_time", "link connected"],
  ["tdemux.last_failover_time", "switched to a backup"],
  ["usage.last_start_request_time", "stream started"],
];

const named = (figure) => (figure.gauge ? [figure.gauge] : [...figure.plus, ...figure.minus]);

/** The counters behind a figure of a row. */
export const counters_of = (figure) => (figure.gauge ? [figure.gauge] : figure.plus);

/** All fields that the chain needs over time. */
export const SAMPLED = [...new Set(STAGES.flatMap((stage) => [...named(stage.in), ...named(stage.out), ...stage.lost, ...(stage.lost_less ?? []),
  ...(stage.plot.gauge ? [stage.plot.gauge] : named(stage.plot.rates))]))];
