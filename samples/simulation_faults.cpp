/** @file simulation_faults.cpp The faults of a simulation, in the order of the chain. */
#include <algorithm>
#include <array>

#include "simulation.h"
#include "simulation_disturbance.h"

namespace samples
{

namespace
{

constexpr const char* srt = "live-srt-1080i";
constexpr const char* rtp = "rtp-fec-2160p";

constexpr std::array table = {
    Fault{"network-silent", srt, "Nothing arrives any more", [](Disturbance& d) { d.arriving = 0; }},
    Fault{"network-no-answer", srt, "The connection is gone and the sender does not answer",
          [](Disturbance& d) { d.arriving = 0, d.calling = true; }},
    Fault{"network-reconnects", srt, "The connection breaks and is made again every eight seconds",
          [](Disturbance& d) { d.reconnects = true; }},
    Fault{"network-errors", srt, "Receiving fails now and then for want of buffers", [](Disturbance& d) { d.errors = true; }},
    Fault{"network-bursts", srt, "The packets come in bunches, 700 ms apart", [](Disturbance& d) { d.bunched = 0.7; }},
    Fault{"srt-loss", srt, "2 % of the packets are lost beyond recovery", [](Disturbance& d) { d.lost = 0.05, d.gone = 0.02; }},
    Fault{"srt-latency-low", srt, "The way to the sender and back takes as long as the latency, so lost packets come again too late",
          [](Disturbance& d) { d.round_trip = 5, d.lost = 0.003, d.gone = 0.003; }},
    Fault{"srt-no-key", srt, "The stream is encrypted and no passphrase is set here",
          [](Disturbance& d) { d.undecryptable = true, d.key_state = SMGR_STREAM_SRT_KM_S_NOSECRET; }},
    Fault{"srt-wrong-key", srt, "The passphrases of the sender and of this end differ",
          [](Disturbance& d) { d.undecryptable = true, d.key_state = SMGR_STREAM_SRT_KM_S_BADSECRET; }},
    Fault{"fec-absent", rtp, "FEC is expected, none arrives, and packets are lost",
          [](Disturbance& d) { d.without_fec = true, d.lost = 0.001; }},
    Fault{"fec-weak", rtp, "More packets are lost than FEC can rebuild", [](Disturbance& d) { d.lost = 0.02, d.gone = 0.01; }},
    Fault{"fec-wasted", rtp, "FEC takes its share of the network and has had nothing to rebuild since the start",
          [](Disturbance& d) { d.fec_in_vain = true; }},
    Fault{"rtp-loss", rtp, "The input has no FEC, and 0.5 % of the packets are lost",
          [](Disturbance& d) { d.fec_off = true, d.gone = 0.005; }},
    Fault{"ts-loss", srt, "The stream was damaged before the link: packets are missing that the link never had",
          [](Disturbance& d) { d.ts_gone = 0.005; }},
    Fault{"ts-corrupted", srt, "Packets arrive with bit errors", [](Disturbance& d) { d.corrupted = 0.005; }},
    Fault{"ts-stopped", srt, "Packets arrive and hold no program", [](Disturbance& d) { d.demux_stalled = true; }},
    Fault{"ts-scrambled", srt, "The elementary streams are scrambled", [](Disturbance& d) { d.scrambled = true; }},
    Fault{"program-gone", srt, "The tables are gone from the transport stream, and the demux gives the program up",
          [](Disturbance& d) { d.without_program = true, d.without_pcr = true; }},
    Fault{"tables-missing", srt, "The tables are gone from the transport stream, and the demux follows the streams that it knows",
          [](Disturbance& d) { d.without_tables = true; }},
    Fault{"video-removed", srt, "The program has no video any more, as its table says", [](Disturbance& d) { d.video_unlisted = true; }},
    Fault{"audio-removed", srt, "The program has no audio any more, as its table says", [](Disturbance& d) { d.audio_unlisted = true; }},
    Fault{"video-missing", srt, "The transport stream carries no video any more", [](Disturbance& d) { d.without_video = true; }},
    Fault{"audio-missing", srt, "The transport stream carries no audio any more", [](Disturbance& d) { d.without_audio = true; }},
    Fault{"pcr-missing", srt, "No PCR comes any more", [](Disturbance& d) { d.without_pcr = true; }},
    Fault{"pcr-jumps", srt, "The PCR jumps every five seconds", [](Disturbance& d) { d.pcr_jumps = true; }},
    Fault{"pcr-jitter", srt, "The PCR comes with errors of 45 ms", [](Disturbance& d) { d.pcr_jitters = true; }},
    Fault{"clock-unlocked", srt, "The PLL does not settle", [](Disturbance& d) { d.unlocked = true; }},
    Fault{"clock-off", srt, "The sender's clock is 90 ppm fast, which is 2430 Hz of 27 MHz", [](Disturbance& d) { d.deviation = 2430; }},
    Fault{"pts-behind-pcr", srt, "The time stamps lie behind the PCR", [](Disturbance& d) { d.late_pts = true; }},
    Fault{"demux-overflow", srt, "The demux does not keep up and its packet list overflows",
          [](Disturbance& d) { d.demux_overflow = 0.02; }},
    Fault{"format-unsupported", srt, "The stream changes to a format that cannot be decoded", [](Disturbance& d) { d.unsupported = true; }},
    Fault{"format-changing", srt, "The format of the video changes every few seconds", [](Disturbance& d) { d.format_changes = true; }},
    Fault{"framer-starved", srt, "The video does not get from the buffer to the framer", [](Disturbance& d) { d.framer_starved = true; }},
    Fault{"framer-stalled", srt, "The framer takes video and gives no picture", [](Disturbance& d) { d.framer_stalled = true; }},
    Fault{"framer-overflow", srt, "The framer's packet list overflows", [](Disturbance& d) { d.framer_overflow = 0.03; }},
    Fault{"framer-drops", srt, "The framer cannot parse 5 % of the pictures", [](Disturbance& d) { d.unframed = 0.05; }},
    Fault{"decoder-starved", srt, "The pictures do not get from the framer to the video decoder",
          [](Disturbance& d) { d.decoder_starved = true; }},
    Fault{"decoder-stalled", srt, "The video decoder takes pictures and decodes none", [](Disturbance& d) { d.stalled = true; }},
    Fault{"decoder-overloaded", srt, "The video decoder has more to do than it can, and drops pictures",
          [](Disturbance& d) { d.overloaded = true, d.dropped = 0.1; }},
    Fault{"decoder-drops", srt, "The video decoder drops 5 % of the pictures", [](Disturbance& d) { d.dropped = 0.05; }},
    Fault{"decoder-conceals", srt, "The video decoder conceals 5 % of the pictures", [](Disturbance& d) { d.concealed = 0.05; }},
    Fault{"decoder-no-memory", srt, "The codec unit has no memory for the stream", [](Disturbance& d) { d.no_memory = true; }},
    Fault{"output-starved", srt, "Pictures are decoded and none is sent to the output", [](Disturbance& d) { d.output_starved = true; }},
    Fault{"output-errors", srt, "The output refuses 3 % of the pictures", [](Disturbance& d) { d.output_errors = 0.03; }},
    Fault{"output-late", srt, "A third of the pictures comes too late to the output", [](Disturbance& d) { d.late = 0.3; }},
    Fault{"output-skips", srt, "The output skips 4 % of the pictures", [](Disturbance& d) { d.skipped = 0.04; }},
    Fault{"output-replays", srt, "The output runs 4 % faster than the stream and shows pictures again",
          [](Disturbance& d) { d.output_clock = 1.04; }},
    Fault{"output-frozen", srt, "The output takes no picture any more", [](Disturbance& d) { d.frozen = true; }},
    Fault{"audio-starved", srt, "The audio does not get from the buffer to its decoder", [](Disturbance& d) { d.audio_starved = true; }},
    Fault{"audio-skips", srt, "3 % of the audio frames are skipped", [](Disturbance& d) { d.audio_skipped = 0.03; }},
    Fault{"audio-stalled", srt, "The audio decoder takes frames and decodes none", [](Disturbance& d) { d.audio_stalled = true; }},
    Fault{"audio-errors", srt, "The audio decoder fails for 5 % of the frames", [](Disturbance& d) { d.audio_errors = 0.05; }},
    Fault{"audio-discontinuous", srt, "The time stamps of the audio jump", [](Disturbance& d) { d.audio_discontinuous = true; }},
    Fault{"lip-sync-off", srt, "The audio is 250 ms late against the video", [](Disturbance& d) { d.lip_sync = -250; }},
    Fault{"metadata-stopped", srt, "The metadata decoder takes packets and gives none", [](Disturbance& d) { d.metadata_stalled = true; }},
    Fault{"metadata-drops", srt, "5 % of the metadata is dropped in its decoder", [](Disturbance& d) { d.metadata_dropped = 0.05; }},
    Fault{"buffering-stalled", srt, "The buffering controller takes packets and releases none",
          [](Disturbance& d) { d.buffer_stalled = true; }},
    Fault{"buffering-late", srt, "The buffering controller releases a tenth of the packets late",
          [](Disturbance& d) { d.late_release = 0.1, d.late = 0.1; }},
    Fault{"buffering-small", srt, "The delay is less than the chain needs, and pictures come late",
          [](Disturbance& d) { d.too_small = true, d.late = 0.2; }},
    Fault{"buffering-large", srt, "The latency is above the largest that is allowed", [](Disturbance& d) { d.too_large = true; }},
    Fault{"buffering-overflow", srt, "The buffering controller overflows and throws packets away",
          [](Disturbance& d) { d.overflow = 0.05; }},
    Fault{"multisync-no-ntp", rtp, "MultiSync has no NTP client that keeps the system time",
          [](Disturbance& d) { d.multisync = SMGR_CBUFFERING_STATUS_MULTISYNC_ERROR_NO_NTP_CLIENT; }},
    Fault{"multisync-no-timecode", rtp, "MultiSync finds no timecode in the stream",
          [](Disturbance& d) { d.multisync = SMGR_CBUFFERING_STATUS_MULTISYNC_ERROR_TIMECODE_NOT_PRESENT; }},
    Fault{"multisync-invalid-timecode", rtp, "MultiSync finds an invalid timecode in the stream",
          [](Disturbance& d) { d.multisync = SMGR_CBUFFERING_STATUS_MULTISYNC_ERROR_TIMECODE_INVALID; }},
    Fault{"host-hung", srt, "The host process does not update its records any more", [](Disturbance& d) { d.hung = true; }},
};

} // namespace

std::span<const Fault> faults()
{
    return table;
}

const Fault* find_fault(std::string_view name)
{
    const auto found = std::ranges::find(table, name, &Fault::name);
    return found == table.end() ? nullptr : &*found;
}

} // namespace samples
