/** @file video_decoder.cpp Rules about the hardware video decoder. */
#include "rule.h"
#include "sessmgr_types.h"

namespace diagnosis
{

namespace
{

constinit const Reading state{"vdecoder.state"};
constinit const Reading framed{"vframer.output_pictures"};
constinit const Reading received{"vdecoder.received_pictures"};
constinit const Reading decoded{"vdecoder.decoded_pictures"};
constinit const Reading last_decoded{"vdecoder.last_decoded_picture_time"};
constinit const Reading dropped{"vdecoder.dropped_pictures"};
constinit const Reading concealed{"vdecoder.concealed_pictures"};
constinit const Reading late{"vdecoder.late_output_pictures"};
constinit const Reading load{"vdecoder.load"};
constinit const Reading required{"vdecoder.required_frame_buffers"};
constinit const Reading allocated{"vdecoder.allocated_frame_buffers"};
constinit const Reading queue{"vdecoder.codec_unit_queue_length"};
constinit const Reading output_delay{"vdecoder.average_output_delay"};

constexpr Limit bad_pictures{.least = 2, .of_million = 2000};

} // namespace

const Rules& vdecoder_rules()
{
    static const Rules rules = {
        {
            .id = "vdecoder.no-memory",
            .stage = Stage::vdecoder,
            .severity = Severity::critical,
            .title = "The codec unit has no memory for the stream",
            .when = "The decoder says that it is idle for lack of memory.",
            .reason = "The state is the decoder's own: there is no limit to choose.",
            .remedy = "Stop other decoders of this unit, or lower the picture size or the number of reference pictures at the encoder. If "
                      "nothing else runs, stop and start the decoder: it may not have got its frames back.",
            .needs_window = false,
            .causes = stops,
            .follows = stops,
            .reads = {&state, &required, &allocated, &dropped, &last_decoded},
            .test =
                [](const Window& window, Hit& hit)
            {
                if (window.value(state) != SMGR_VCUDEC_STATE_IDLE_VCU_LACK_OF_MEMORY) return false;
                hit.show(state).show(required).show(allocated).show(dropped);
                return hit.since(window.age(last_decoded)).found();
            },
        },
        {
            .id = "vdecoder.starved",
            .stage = Stage::vdecoder,
            .severity = Severity::critical,
            .title = "Pictures leave the framer and do not reach the decoder",
            .when = "Within the window the framer passed 5 pictures or more on, and fewer than nine in ten reached the decoder.",
            .reason = "Between the two lies a FIFO of a few pictures; what is sampled a moment apart differs by one or two.",
            .remedy = "Stop and start the decoder. Keep a capture: this is a fault of the decoder.",
            .needs_window = true,
            .causes = stops | loses,
            .follows = stops,
            .reads = {&framed, &received},
            .test =
                [](const Window& window, Hit& hit)
            {
                const std::int64_t in = window.grown(framed);
                const std::int64_t out = window.grown(received);
                if (in < 5 || in - out < 5 || out * 10 >= in * 9) return false;
                return hit.show(framed).show(received).found();
            },
        },
        {
            .id = "vdecoder.stopped",
            .stage = Stage::vdecoder,
            .severity = Severity::critical,
            .title = "The video decoder takes pictures and decodes none",
            .when = "10 pictures or more came within the window, and none was decoded.",
            .reason = "A decoder may wait for a key frame, but it then drops what it gets, and key frames come each 1 to 2 s as a rule.",
            .remedy = "See that key frames come (the framer counts them). If they do, stop and start the decoder.",
            .needs_window = true,
            .causes = stops,
            .follows = stops,
            .reads = {&received, &decoded, &last_decoded, &dropped, &queue},
            .test =
                [](const Window& window, Hit& hit)
            {
                if (window.grown(received) < 10 || window.grown(decoded) != 0) return false;
                return hit.show(received).show(decoded).show(dropped).show(queue).since(window.age(last_decoded)).found();
            },
        },
        {
            .id = "vdecoder.overloaded",
            .stage = Stage::vdecoder,
            .severity = Severity::warning,
            .title = "The video decoder has more to do than it can",
            .when = "Its load is 95 % or more, and within the window it dropped pictures or sent them late.",
            .reason = "A high load alone is good use of the hardware. It is a fault once pictures suffer.",
            .remedy = "Lower the picture rate, the picture size or the bit rate at the encoder, or move another stream off this unit.",
            .needs_window = true,
            .causes = loses | delays,
            .follows = stops,
            .reads = {&load, &dropped, &late, &output_delay, &received},
            .test =
                [](const Window& window, Hit& hit)
            {
                if (window.value(load) < 95 || window.grown(dropped) + window.grown(late) < 2) return false;
                return hit.show(load).show(dropped).show(late).show(output_delay).show(received).found();
            },
        },
        {
            .id = "vdecoder.drops",
            .stage = Stage::vdecoder,
            .severity = Severity::warning,
            .title = "The video decoder drops pictures",
            .when = "2 pictures or more, and one in five hundred, were dropped within the window though all of them arrived.",
            .reason = "One in five hundred is a stutter each 8 to 20 s. A single one follows a change of the stream.",
            .remedy =
                "The stream may break its level: compare the number of reference pictures and the bit rate with what its level allows.",
            .needs_window = true,
            .causes = loses,
            .follows = stops | loses,
            .reads = {&dropped, &received, &load},
            .test =
                [](const Window& window, Hit& hit)
            {
                if (!bad_pictures.reached(window.grown(dropped), window.grown(received))) return false;
                hit.say(share_text(window.grown(dropped), window.grown(received), "pictures"));
                return hit.show(dropped).show(received).show(load).found();
            },
        },
        {
            .id = "vdecoder.conceals",
            .stage = Stage::vdecoder,
            .severity = Severity::warning,
            .title = "The video decoder conceals damaged pictures",
            .when = "2 pictures or more, and one in five hundred, were concealed within the window though nothing was lost on the way.",
            .reason = "One in five hundred shows blocks each 8 to 20 s.",
            .remedy = "The stream is damaged before it is sent: look at the encoder, and at a transcoder before it.",
            .needs_window = true,
            .causes = no_effect,
            .follows = stops | loses,
            .reads = {&concealed, &decoded},
            .test =
                [](const Window& window, Hit& hit)
            {
                if (!bad_pictures.reached(window.grown(concealed), window.grown(decoded))) return false;
                hit.say(share_text(window.grown(concealed), window.grown(decoded), "pictures"));
                return hit.show(concealed).show(decoded).found();
            },
        },
    };
    return rules;
}

} // namespace diagnosis
