/** @file framer.cpp Rules about the video framer. */
#include "rule.h"
#include "sessmgr_types.h"

namespace diagnosis
{

namespace
{

constinit const Reading state{"vframer.state"};
constinit const Reading reason{"vframer.last_unsupported_reason"};
constinit const Reading unsupported{"vframer.unsupported_streams"};
constinit const Reading unsupported_at{"vframer.last_unsupported_stream_time"};
constinit const Reading changes{"vframer.format_changes"};
constinit const Reading changed_at{"vframer.last_format_change_time"};
constinit const Reading width{"vframer.stream.width"};
constinit const Reading height{"vframer.stream.height"};
constinit const Reading received{"vframer.received_packets"};
constinit const Reading dropped_packets{"vframer.dropped_packets"};
constinit const Reading output{"vframer.output_pictures"};
constinit const Reading last_output{"vframer.last_output_picture_time"};
constinit const Reading dropped{"vframer.dropped_pictures"};
constinit const Reading slice_errors{"vframer.slice_header_errors"};
constinit const Reading input_overflows{"vframer.input_packet_list_overflows"};
constinit const Reading output_overflows{"vframer.output_packet_list_overflows"};
constinit const Reading channel_type{"buffering.channels[].type"};
constinit const Reading released{"buffering.channels[].output_packets"};

constexpr Limit lost_pictures{.least = 2, .of_million = 2000};

} // namespace

const Rules& framer_rules()
{
    static const Rules rules = {
        {
            .id = "framer.unsupported-format",
            .stage = Stage::framer,
            .severity = Severity::critical,
            .title = "The video's format cannot be decoded",
            .when = "The framer says that the stream is unsupported.",
            .reason = "The framer knows what the codec unit can do: there is no limit to choose.",
            .remedy = "Set the encoder to a format that this unit decodes; the reason in the report says what is too much.",
            .needs_window = false,
            .causes = stops,
            .follows = no_effect,
            .reads = {&state, &reason, &unsupported, &unsupported_at, &changes, &width, &height},
            .test =
                [](const Window& window, Hit& hit)
            {
                if (window.value(state) != SMGR_VFRAMER_STATE_UNSUPPORTED) return false;
                hit.show(state).show(reason).show(width).show(height).show(unsupported).show(changes);
                return hit.since(window.age(unsupported_at)).found();
            },
        },
        {
            .id = "framer.starved",
            .stage = Stage::framer,
            .severity = Severity::critical,
            .title = "Video is released by the buffer and does not reach the framer",
            .when = "5 packets of video or more were released within the window, and the framer received none.",
            .reason = "Between the two lies a queue of a few packets; what is sampled a moment apart differs by one or two.",
            .remedy = "Stop and start the stream. Keep a capture: this is a fault of the decoder.",
            .needs_window = true,
            .causes = stops,
            .follows = stops,
            .reads = {&channel_type, &released, &received},
            .test =
                [](const Window& window, Hit& hit)
            {
                if (window.value(channel_type, 0) != SMGR_TDEMUX_DATA_TYPE_VIDEO) return false;
                if (window.grown(released, 0) < 5 || window.grown(received) != 0) return false;
                return hit.show(released, 0).show(received).found();
            },
        },
        {
            .id = "framer.stopped",
            .stage = Stage::framer,
            .severity = Severity::critical,
            .title = "The framer takes video and gives no picture",
            .when = "10 packets or more came within the window, no picture went on, and the format is supported.",
            .reason = "A packet holds a picture as a rule; ten are more than a picture that is pieced together.",
            .remedy = "Check that the stream has its parameter sets (SPS, PPS) repeated with each key frame, and that it is not scrambled.",
            .needs_window = true,
            .causes = stops,
            .follows = stops,
            .reads = {&state, &received, &output, &last_output, &dropped},
            .test =
                [](const Window& window, Hit& hit)
            {
                if (window.grown(received) < 10 || window.grown(output) != 0) return false;
                return hit.show(received).show(output).show(dropped).show(state).since(window.age(last_output)).found();
            },
        },
        {
            .id = "framer.format-changing",
            .stage = Stage::framer,
            .severity = Severity::warning,
            .title = "The video's format changes again and again",
            .when = "The properties of the stream changed twice or more within the window.",
            .reason = "One change is a switch at the sender, and costs a second of picture. Two within seconds are no operation.",
            .remedy = "Look for two senders on one address, an encoder that restarts, or an input that flaps.",
            .needs_window = true,
            .causes = loses | delays,
            .follows = stops | loses,
            .reads = {&changes, &changed_at, &width, &height},
            .test =
                [](const Window& window, Hit& hit)
            {
                if (window.grown(changes) < 2) return false;
                return hit.show(changes).show(changed_at).show(width).show(height).found();
            },
        },
        {
            .id = "framer.overflow",
            .stage = Stage::framer,
            .severity = Severity::warning,
            .title = "The packet lists of the framer overflow",
            .when = "An overflow of the input or the output packet list was counted within the window.",
            .reason = "What does not fit is thrown away, so there is no harmless overflow.",
            .remedy = "See whether the video decoder keeps up. Otherwise look for a process that takes this unit's processor.",
            .needs_window = true,
            .causes = loses,
            .follows = stops | loses,
            .reads = {&input_overflows, &output_overflows, &dropped},
            .test =
                [](const Window& window, Hit& hit)
            {
                if (window.grown(input_overflows) + window.grown(output_overflows) == 0) return false;
                return hit.show(window.grown(input_overflows) != 0 ? input_overflows : output_overflows).show(dropped).found();
            },
        },
        {
            .id = "framer.drops",
            .stage = Stage::framer,
            .severity = Severity::warning,
            .title = "The framer drops pictures",
            .when = "2 packets or pictures or more, and one in five hundred, were dropped within the window though all of them arrived.",
            .reason = "One picture may be cut at a splice. One in five hundred is one each 8 to 20 s.",
            .remedy = "The stream breaks the rules of its coding: look at the encoder's version, and keep a capture of the stream.",
            .needs_window = true,
            .causes = loses,
            .follows = stops | loses,
            .reads = {&dropped_packets, &dropped, &received, &slice_errors},
            .test =
                [](const Window& window, Hit& hit)
            {
                if (!lost_pictures.reached(window.grown(dropped_packets) + window.grown(dropped), window.grown(received))) return false;
                return hit.show(window.grown(dropped) != 0 ? dropped : dropped_packets).show(received).show(slice_errors).found();
            },
        },
    };
    return rules;
}

} // namespace diagnosis
