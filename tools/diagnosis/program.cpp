/** @file program.cpp Rules about the program in the transport stream, and its elementary streams. */
#include "sessmgr_types.h"
#include "transport_stream.h"

namespace diagnosis
{

namespace
{

constinit const Reading state{"tdemux.state"};
constinit const Reading received{"tdemux.received_packets"};
constinit const Reading output{"tdemux.output_packets"};
constinit const Reading last_output{"tdemux.last_output_packet_time"};
constinit const Reading dropped{"tdemux.dropped_packets"};
constinit const Reading dropped_pid{"tdemux.last_dropped_pid"};
constinit const Reading undecrypted{"tdemux.srt.undecrypted_packets"};
constinit const Reading encapsulation{"tdemux.encapsulation"};
constinit const Reading source_type{"tdemux.sources[].type"};
constinit const Reading source_pid{"tdemux.sources[].pid"};
constinit const Reading source_received{"tdemux.sources[].received_packets"};
constinit const Reading source_output{"tdemux.sources[].output_packets"};
constinit const Reading source_last{"tdemux.sources[].last_received_packet_time"};
constinit const Reading started{"tdemux.stream_started"};
constinit const Reading uptime{"tdemux.uptime"};
constinit const Reading program{"tdemux.program_number"};
constinit const Reading pcr_pid{"tdemux.pcr_pid"};
constinit const Reading video_streams{"tdemux.video_streams"};
constinit const Reading audio_streams{"tdemux.audio_streams"};
constinit const Reading marked{"tdemux.last_new_stream_marker_time"};
constinit const Reading last_picture{"vframer.last_output_picture_time"};
constinit const Reading last_sound{"audio.last_output_frame_time"};

constexpr std::int64_t silence = 3; // [s]

/** Streams of a kind that were there and have stopped, while others go on. */
bool is_missing(const Window& window, Hit& hit, std::int64_t kind)
{
    if (window.grown(received) == 0 || window.grown(output) == 0) return false;
    bool any = false;
    for (std::size_t i = 0; i < SMGR_TDEMUX_MAX_SOURCES; ++i)
    {
        if (window.value(source_type, i) != kind || window.value(source_received, i) == 0) continue;
        const auto age = window.age(source_last, i);
        if (window.grown(source_received, i) != 0 || age.value_or(0) < silence) continue;
        hit.show(source_received, i).show(source_last, i).show(source_pid, i).since(age);
        any = true;
    }
    return any && hit.show(output).found();
}

/** Whether packets come that a demux can read, and it knows no program in them. */
bool has_no_program(const Window& window)
{
    return is_clear(window) && window.grown(received) >= 100 && window.value(program) == 0;
}

/** Streams of a kind that the program no longer lists, though something of them came since the stream was started. */
bool is_removed(const Window& window, Hit& hit, const Reading& streams, const Reading& last)
{
    const auto age = window.age(last);
    if (window.value(streams) != 0 || !age || *age >= window.value(uptime)) return false;
    return hit.show(streams).show(last).found();
}

} // namespace

const Rules& program_rules()
{
    static const Rules rules = {
        {
            .id = "ts.scrambled",
            .stage = Stage::ts,
            .severity = Severity::critical,
            .title = "The elementary streams are scrambled",
            .when = "The input says that it receives what it cannot decrypt and the link is not to blame; or packets of elementary streams "
                    "come in the window and not one is passed on.",
            .reason = "Scrambling within the transport stream is not the link's encryption: this decoder has no means against it.",
            .remedy = "Have the sender descramble the program, or send it clear. Check that the right program was chosen.",
            .needs_window = true,
            .causes = stops,
            .follows = stops,
            .reads = {&state, &encapsulation, &undecrypted, &received, &source_received, &source_output, &dropped, &dropped_pid,
                      &last_output},
            .test =
                [](const Window& window, Hit& hit)
            {
                if (!is_clear(window) || window.grown(received) == 0) return false;
                const bool nothing = window.grown(source_received) >= 5 && window.grown(source_output) == 0;
                if (!nothing && window.value(state) != SMGR_TDEMUX_STATS_STATE_SCRAMBLED) return false;
                hit.show(source_received, 0).show(source_output, 0).show(dropped).show(dropped_pid).show(state);
                return hit.since(window.age(last_output)).found();
            },
        },
        {
            .id = "ts.program-gone",
            .stage = Stage::ts,
            .severity = Severity::critical,
            .title = "The program is gone from the transport stream",
            .when = "100 packets or more arrived within the window and were decrypted where need be; the demux, which has passed streams "
                    "on, knows no program any more and passes nothing on.",
            .reason = "ISO/IEC 13818-1 names a program's streams in its tables alone, and ETSI TR 101 290 asks for them each half second: "
                      "without them no decoder finds the streams.",
            .remedy = "Check that the multiplexer sends the PAT and the PMT, and that the program that was chosen is still in them.",
            .needs_window = true,
            .causes = stops,
            .follows = stops,
            .reads = {&encapsulation, &undecrypted, &received, &program, &output, &last_output, &marked},
            .test =
                [](const Window& window, Hit& hit)
            {
                if (!has_no_program(window) || window.value(output) == 0 || window.grown(output) != 0) return false;
                hit.show(program).show(output).show(last_output).show(received).show(marked);
                return hit.since(window.age(last_output)).found();
            },
        },
        {
            .id = "ts.stream-removed",
            .stage = Stage::ts,
            .severity = Severity::critical,
            .title = "The program no longer lists a stream that was decoded",
            .when = "The demux knows the program and counts no video stream in it, or no audio stream, though pictures or sound came since "
                    "the stream was started.",
            .reason = "A stream that the program's table does not name is not looked for, whether its packets come or not.",
            .remedy = "If this is meant, start the stream again. If not, check the encoder's inputs, and which PIDs the multiplexer puts "
                      "into the PMT.",
            .needs_window = false,
            .causes = stops,
            .follows = stops,
            .reads = {&started, &uptime, &program, &output, &video_streams, &audio_streams, &last_picture, &last_sound, &marked},
            .test =
                [](const Window& window, Hit& hit)
            {
                if (window.value(started) == 0 || window.value(program) == 0 || window.value(output) == 0) return false;
                const bool video = is_removed(window, hit, video_streams, last_picture);
                const bool audio = is_removed(window, hit, audio_streams, last_sound);
                if (!video && !audio) return false;
                hit.say(video && audio ? "video and audio" : video ? "video" : "audio");
                return hit.show(marked).since(window.age(video ? last_picture : last_sound)).found();
            },
        },
        {
            .id = "ts.tables-missing",
            .stage = Stage::ts,
            .severity = Severity::warning,
            .title = "The tables of the program do not come any more",
            .when = "The demux knows no program, while packets arrive and elementary streams go on.",
            .reason =
                "Streams that are followed already go on without the PAT and the PMT, but nobody who starts now finds them, and a change "
                "of theirs ends them. ETSI TR 101 290 puts both tables into its first priority.",
            .remedy =
                "Check that the multiplexer sends the PAT and the PMT at least each half second, before this decoder is started again.",
            .needs_window = true,
            .causes = no_effect,
            .follows = stops | loses,
            .reads = {&encapsulation, &undecrypted, &received, &program, &pcr_pid, &output},
            .test =
                [](const Window& window, Hit& hit)
            {
                if (!has_no_program(window) || window.grown(output) == 0) return false;
                return hit.show(program).show(pcr_pid).show(received).show(output).found();
            },
        },
        {
            .id = "ts.video-missing",
            .stage = Stage::ts,
            .severity = Severity::critical,
            .title = "The video is missing from the transport stream",
            .when = "A video stream was received, and for 3 s or longer nothing of it has come while other streams go on.",
            .reason = "The slowest video has pictures each 42 ms; 3 s are no pause of an encoder.",
            .remedy = "Check the encoder's video input, and whether the sender's multiplexer still carries that PID.",
            .needs_window = true,
            .causes = stops,
            .follows = stops,
            .reads = {&received, &output, &source_type, &source_pid, &source_received, &source_last},
            .test = [](const Window& window, Hit& hit) { return is_missing(window, hit, SMGR_TDEMUX_DATA_TYPE_VIDEO); },
        },
        {
            .id = "ts.audio-missing",
            .stage = Stage::ts,
            .severity = Severity::critical,
            .title = "The audio is missing from the transport stream",
            .when = "An audio stream was received, and for 3 s or longer nothing of it has come while other streams go on.",
            .reason = "Audio frames come each 8 to 36 ms, silence included; 3 s are no pause of an encoder.",
            .remedy = "Check the encoder's audio input, and whether the sender's multiplexer still carries that PID.",
            .needs_window = true,
            .causes = stops,
            .follows = stops,
            .reads = {&received, &output, &source_type, &source_pid, &source_received, &source_last},
            .test = [](const Window& window, Hit& hit) { return is_missing(window, hit, SMGR_TDEMUX_DATA_TYPE_AUDIO); },
        },
    };
    return rules;
}

} // namespace diagnosis
