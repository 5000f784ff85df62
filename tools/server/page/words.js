/**
 * The words beside the name of a stage, out of its fields: a part that fits a phone, and the rest. `v` gives the value of a field, `t` its
 * text.
 */
import { microseconds, milliseconds } from "./text.js";

const more = (...parts) => parts.filter(Boolean).map((part) => ` \u00b7 ${part}`).join("");
const whole_ms = (us) => milliseconds(Math.round(us / 1000));
const by = (width, height) => `${width}\u00d7${height}`;

export function network(v, t) {
  const name = v("tdemux.sender_address.host_name"), address = v("tdemux.sender_address.ip"), port = v("tdemux.sender_port");
  if (!v("tdemux.stream_started")) return ["Not started"];
  if (!name && !address) return [t("tdemux.state")];
  return [name ?? address, `${name && address ? ` (${address})` : ""}${port ? ` port ${port}` : ""}`];
}

export function link(v, t) {
  if (v("tdemux.srt.rtt") !== undefined) {
    const key = v("tdemux.srt.key_length");
    const latency = `latency ${milliseconds(v("tdemux.srt.latency") ?? 0)}`;
    return [`SRT, RTT ${microseconds(v("tdemux.srt.rtt") ?? 0)}`, more(latency, key ? `AES-${key * 8}` : "not encrypted")];
  }
  if (v("tdemux.fec.columns") !== undefined) {
    const matrix = by(v("tdemux.fec.columns") ?? "?", v("tdemux.fec.rows") ?? "?") + (v("tdemux.fec.row_fec") ? ", rows too" : ", columns only");
    return ["Pro-MPEG FEC", more(matrix, v("tdemux.fec.recovered_packets") && `${t("tdemux.fec.recovered_packets")} recovered`)];
  }
  return [v("tdemux.received_packets") ? `${t("tdemux.encapsulation")}, no protection` : "No link yet"];
}

export function transport_stream(v) {
  const kinds = [["video", "tdemux.video_streams"], ["audio", "tdemux.audio_streams"], ["KLV", "tdemux.klv_streams"]];
  const found = kinds.filter(([, field]) => v(field)).map(([kind, field]) => `${v(field)} ${kind}`);
  if (!found.length) return ["No streams yet"];
  return [found.join(", "), more(v("tdemux.program_number") && `program ${v("tdemux.program_number")}`)];
}

export function clock(v) {
  if (!["enabled", "enabled_with_lock"].includes(v("clock_recovery.tracking_mode")?.name)) return ["Tracking is off"];
  const ppm = v("clock_recovery.average_stc_deviation_ppm"), fraction = v("clock_recovery.average_stc_deviation_ppm_fraction");
  const unsettled = v("clock_recovery.pll_unsettled");
  if (ppm === null || ppm === undefined) return [unsettled ? "Settling" : "Not measured yet"];
  return [unsettled ? `Unlocked, ${ppm} PPM off` : `Locked, ${ppm}.${fraction} PPM`];
}

export function framer(v, t) {
  const width = v("vframer.stream.width"), rate = v("vframer.stream.frame_rate");
  if (!width) return ["No stream yet"];
  const scan = v("vframer.stream.interlaced") ? "i" : "p";
  return [by(width, v("vframer.stream.height")) + scan + (rate ? Number(rate.toFixed(2)) : ""),
    more(t("vframer.stream.compression"), t("vframer.stream.chroma_format"))];
}

export function video_decoder(v, t) {
  if (!v("vdecoder.received_pictures")) return [t("vdecoder.state")];
  const latency = v("vdecoder.latency");
  return [`${t("vdecoder.state")}, load ${v("vdecoder.load") ?? 0}%`, more(latency && `latency ${whole_ms(latency)}`)];
}

export function output(v) {
  const format = v("vdecoder.display_format")?.name?.replace(/(\d)x(\d)/, "$1\u00d7$2");
  if (!format || format === "none") return ["No display format"];
  return v("vdecoder.still_image_active") ? ["Still image", more(format)] : [format];
}

export function audio(v, t) {
  const pairs = v("audio.pairs");
  if (!pairs?.length) return ["No pairs"];
  const offsets = pairs.map((pair) => pair.av_offset).filter((offset) => offset !== null && offset !== undefined);
  const worst = offsets.sort((a, b) => Math.abs(b) - Math.abs(a))[0];
  return [`${pairs.length} ${pairs.length > 1 ? "pairs" : "pair"}, ${t(`audio.pairs[${pairs[0].index}].compression`)}`,
    more(worst !== undefined && `A/V sync ${milliseconds(worst)}`)];
}

export function metadata(v) {
  const used = (v("metadata.channels") ?? []).filter((channel) => channel.received_packets);
  return [used.length ? used.map((channel) => channel.name).join(", ") : "No channels"];
}

export function buffering(v, t) {
  const latency = v("buffering.channels[0].total_latency"), mode = t("buffering.mode");
  if (v("buffering.mode")?.name !== "fixed") return [latency ? `${mode}, ${milliseconds(latency)}` : mode];
  return [`${mode} at ${milliseconds(v("buffering.fixed_delay"))}`, more(latency && `now ${milliseconds(latency)}`)];
}
