/** @file audio.cpp Rules about the audio decoder. */
#include "rule.h"
#include "sessmgr_audio.h"
#include "sessmgr_types.h"

namespace diagnosis
{

namespace
{

constinit const Reading channel_type{"buffering.channels[].type"};
constinit const Reading released{"buffering.channels[].output_packets"};
constinit const Reading received{"audio.received_frames"};
constinit const Reading errors{"audio.decoder_errors"};
constinit const Reading output_errors{"audio.output_errors"};
constinit const Reading skipped{"audio.skipped_frames"};
constinit const Reading discontinuities{"audio.timestamp_discontinuities"};
constinit const Reading pending{"audio.pending_decode_requests"};
constinit const Reading pair_received{"audio.pairs[].received_frames"};
constinit const Reading pair_output{"audio.pairs[].output_frames"};
constinit const Reading pair_last_output{"audio.pairs[].last_output_frame_time"};
constinit const Reading offset{"audio.pairs[].av_offset"};
constinit const Reading displayed{"vdecoder.displayed_frames"};

constexpr Limit bad_frames{.least = 2, .of_million = 2000};

/* ITU-R BT.1359-1: from here on most viewers object. */
constexpr std::int64_t most_early = 90;  // [ms]
constexpr std::int64_t most_late = -185; // [ms]

} // namespace

const Rules& audio_rules()
{
    static const Rules rules = {
        {
            .id = "audio.starved",
            .stage = Stage::audio,
            .severity = Severity::critical,
            .title = "Audio is released by the buffer and does not reach the decoder",
            .when = "Within the window the buffer released 10 audio frames or more, and fewer than nine in ten reached the decoder.",
            .reason = "Between the two lies a queue of a frame or two for each pair.",
            .remedy = "See that the stream is assigned to an audio pair. Otherwise stop and start the decoder.",
            .needs_window = true,
            .causes = stops | loses,
            .follows = stops,
            .reads = {&channel_type, &released, &received},
            .test =
                [](const Window& window, Hit& hit)
            {
                std::int64_t in = 0;
                std::size_t first = SMGR_CBUFFERING_MAX_CHANNELS;
                for (std::size_t i = 0; i < SMGR_CBUFFERING_MAX_CHANNELS; ++i)
                {
                    if (window.value(channel_type, i) != SMGR_TDEMUX_DATA_TYPE_AUDIO || window.grown(released, i) == 0) continue;
                    if (first == SMGR_CBUFFERING_MAX_CHANNELS) first = i;
                    in += window.grown(released, i);
                }
                const std::int64_t out = window.grown(received);
                if (in < 10 || in - out < 10 || out * 10 >= in * 9) return false;
                return hit.show(released, first).show(received).found();
            },
        },
        {
            .id = "audio.stopped",
            .stage = Stage::audio,
            .severity = Severity::critical,
            .title = "The audio decoder takes frames and plays none",
            .when = "A pair received 10 frames or more within the window, and none was played.",
            .reason = "A frame is played within the delay of the chain, and the decoder's own delay is a frame or two.",
            .remedy = "See that the coding of the stream is one that the pair decodes. Otherwise stop and start the decoder.",
            .needs_window = true,
            .causes = stops,
            .follows = stops,
            .reads = {&pair_received, &pair_output, &pair_last_output, &errors, &pending},
            .test =
                [](const Window& window, Hit& hit)
            {
                bool any = false;
                for (std::size_t i = 0; i < SMGR_AUDIO_MAX_PAIRS; ++i)
                {
                    if (window.grown(pair_received, i) < 10 || window.grown(pair_output, i) != 0) continue;
                    hit.show(pair_received, i).show(pair_output, i).since(window.age(pair_last_output, i));
                    any = true;
                }
                return any && hit.show(errors).show(pending).found();
            },
        },
        {
            .id = "audio.errors",
            .stage = Stage::audio,
            .severity = Severity::warning,
            .title = "The audio decoder fails for some frames",
            .when = "2 errors or more within the window, and one in five hundred frames, though nothing was lost on the way.",
            .reason = "Each error is a click or a gap of 20 to 36 ms.",
            .remedy = "Look at the encoder's audio: a change of coding or of channels, or a damaged source.",
            .needs_window = true,
            .causes = loses,
            .follows = stops | loses,
            .reads = {&errors, &output_errors, &received},
            .test =
                [](const Window& window, Hit& hit)
            {
                if (!bad_frames.reached(window.grown(errors) + window.grown(output_errors), window.grown(received))) return false;
                return hit.show(window.grown(errors) != 0 ? errors : output_errors).show(received).found();
            },
        },
        {
            .id = "audio.discontinuous",
            .stage = Stage::audio,
            .severity = Severity::warning,
            .title = "The time stamps of the audio jump",
            .when = "2 discontinuities or more within the window, and one in a thousand frames.",
            .reason = "One follows a splice or a loss. More are made by the encoder.",
            .remedy = "Check that the encoder's audio runs on the same clock as its video (embedded audio, or word clock).",
            .needs_window = true,
            .causes = loses | delays,
            .follows = stops | loses | delays,
            .reads = {&discontinuities, &received},
            .test =
                [](const Window& window, Hit& hit)
            {
                constexpr Limit many{.least = 2, .of_million = 1000};
                if (!many.reached(window.grown(discontinuities), window.grown(received))) return false;
                return hit.show(discontinuities).show(received).found();
            },
        },
        {
            .id = "audio.skips",
            .stage = Stage::audio,
            .severity = Severity::warning,
            .title = "Audio frames are skipped",
            .when = "2 frames or more within the window, and one in five hundred, though nothing before is at fault.",
            .reason = "Each skipped frame is a click.",
            .remedy = "Raise the buffering delay, or use the mode Automatic: the audio comes too late to be played.",
            .needs_window = true,
            .causes = no_effect,
            .follows = stops | loses | delays,
            .reads = {&skipped, &received},
            .test =
                [](const Window& window, Hit& hit)
            {
                if (!bad_frames.reached(window.grown(skipped), window.grown(received))) return false;
                hit.say(share_text(window.grown(skipped), window.grown(received), "frames"));
                return hit.show(skipped).show(received).found();
            },
        },
        {
            .id = "audio.lip-sync",
            .stage = Stage::audio,
            .severity = Severity::warning,
            .title = "Sound and picture are out of step",
            .when = "A pair that plays, beside video that plays, is more than 90 ms early or more than 185 ms late.",
            .reason = "ITU-R BT.1359-1 has these as the limits beyond which viewers object; 45 ms early and 125 ms late are noticed.",
            .remedy = "Check the audio delay that is set at the encoder; compare with another decoder before you correct it here.",
            .needs_window = true,
            .causes = no_effect,
            .follows = stops | loses | delays,
            .reads = {&pair_output, &displayed, &offset},
            .test =
                [](const Window& window, Hit& hit)
            {
                if (window.grown(displayed) < 10) return false;
                for (std::size_t i = 0; i < SMGR_AUDIO_MAX_PAIRS; ++i)
                {
                    if (window.grown(pair_output, i) < 10) continue;
                    const std::int64_t by = window.value(offset, i);
                    if (by <= most_early && by >= most_late) continue;
                    return hit.show(offset, i).found();
                }
                return false;
            },
        },
    };
    return rules;
}

} // namespace diagnosis
