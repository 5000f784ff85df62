/** @file output.cpp Rules about the video output. */
#include "rule.h"

namespace diagnosis
{

namespace
{

constinit const Reading decoded{"vdecoder.decoded_pictures"};
constinit const Reading sent{"vdecoder.pictures_sent_to_display"};
constinit const Reading last_sent{"vdecoder.last_picture_sent_to_display_time"};
constinit const Reading displayed{"vdecoder.displayed_frames"};
constinit const Reading last_displayed{"vdecoder.last_displayed_frame_time"};
constinit const Reading late{"vdecoder.late_output_pictures"};
constinit const Reading lead{"vdecoder.stc_lead"};
constinit const Reading skipped{"vdecoder.skipped_frames"};
constinit const Reading replayed{"vdecoder.replayed_frames"};
constinit const Reading errors{"vdecoder.output_errors"};
constinit const Reading queue{"vdecoder.descriptor_list_length"};

constexpr Limit bad_frames{.least = 2, .of_million = 2000};
constexpr Limit late_frames{.least = 3, .of_million = 10'000};

} // namespace

const Rules& output_rules()
{
    static const Rules rules = {
        {
            .id = "output.nothing-to-play",
            .stage = Stage::output,
            .severity = Severity::critical,
            .title = "Pictures are decoded and none is sent to the output",
            .when = "10 pictures or more were decoded within the window, and none was sent to the display.",
            .reason = "The reorder queue holds 16 pictures at most and is passed within a second.",
            .remedy = "Stop and start the decoder. Keep a capture: this is a fault of the decoder.",
            .needs_window = true,
            .causes = stops,
            .follows = stops,
            .reads = {&decoded, &sent, &last_sent},
            .test =
                [](const Window& window, Hit& hit)
            {
                if (window.grown(decoded) < 20 || window.grown(sent) != 0) return false;
                return hit.show(decoded).show(sent).show(last_sent).since(window.age(last_sent)).found();
            },
        },
        {
            .id = "output.stopped",
            .stage = Stage::output,
            .severity = Severity::critical,
            .title = "The output takes pictures and shows none",
            .when = "10 pictures or more were sent to the display within the window, and none was displayed.",
            .reason = "The hardware's list holds a few pictures and shows one each period.",
            .remedy = "Check the output's format and reference (genlock). Then stop and start the decoder.",
            .needs_window = true,
            .causes = stops,
            .follows = stops,
            .reads = {&sent, &displayed, &last_displayed, &errors, &queue},
            .test =
                [](const Window& window, Hit& hit)
            {
                if (window.grown(sent) < 10 || window.grown(displayed) != 0) return false;
                return hit.show(sent).show(displayed).show(errors).show(queue).since(window.age(last_displayed)).found();
            },
        },
        {
            .id = "output.errors",
            .stage = Stage::output,
            .severity = Severity::warning,
            .title = "The output refuses pictures",
            .when = "2 output errors or more within the window, and one in five hundred pictures.",
            .reason = "Each error is a picture that is not shown.",
            .remedy = "Check that the output's format fits the stream's. Keep a capture: this is a fault of the decoder.",
            .needs_window = true,
            .causes = loses,
            .follows = stops,
            .reads = {&errors, &sent},
            .test =
                [](const Window& window, Hit& hit)
            {
                if (!bad_frames.reached(window.grown(errors), window.grown(sent))) return false;
                return hit.show(errors).show(sent).found();
            },
        },
        {
            .id = "output.late",
            .stage = Stage::output,
            .severity = Severity::warning,
            .title = "Pictures come to the output after their time",
            .when = "3 pictures or more, and one in a hundred, were sent late within the window.",
            .reason = "Single late pictures follow a change of the delay; one in a hundred is seen as a stutter.",
            .remedy = "Raise the buffering delay by the missing lead and a reserve, or use the mode Automatic.",
            .needs_window = true,
            .causes = delays | loses,
            .follows = stops | loses | delays,
            .reads = {&late, &sent, &lead},
            .test =
                [](const Window& window, Hit& hit)
            {
                if (!late_frames.reached(window.grown(late), window.grown(sent))) return false;
                return hit.show(late).show(sent).show(lead).found();
            },
        },
        {
            .id = "output.skips",
            .stage = Stage::output,
            .severity = Severity::warning,
            .title = "The output skips frames",
            .when = "2 frames or more, and one in five hundred, were skipped within the window though nothing before is at fault.",
            .reason = "One frame each 8 to 20 s is seen in movement. A clock that is 30 ppm off skips one each 10 min at most.",
            .remedy = "Check the reference (genlock) of the output: it may run slower than the sender.",
            .needs_window = true,
            .causes = loses,
            .follows = stops | loses | delays,
            .reads = {&skipped, &sent, &displayed},
            .test =
                [](const Window& window, Hit& hit)
            {
                if (!bad_frames.reached(window.grown(skipped), window.grown(sent))) return false;
                hit.say(share_text(window.grown(skipped), window.grown(sent), "pictures"));
                return hit.show(skipped).show(sent).show(displayed).found();
            },
        },
        {
            .id = "output.replays",
            .stage = Stage::output,
            .severity = Severity::warning,
            .title = "The output shows frames again",
            .when = "2 frames or more, and one in five hundred, were shown again within the window though nothing before is at fault, but "
                    "fewer than were new.",
            .reason =
                "One frame each 8 to 20 s is seen in movement. A clock that is 30 ppm off repeats one each 10 min at most. Where most "
                "are old, the pictures have ended, which is not the output's doing.",
            .remedy = "Check the reference (genlock) of the output: it may run faster than the sender.",
            .needs_window = true,
            .causes = no_effect,
            .follows = stops | loses | delays,
            .reads = {&replayed, &sent, &displayed},
            .test =
                [](const Window& window, Hit& hit)
            {
                if (window.grown(sent) == 0 || window.grown(replayed) >= window.grown(displayed) ||
                    !bad_frames.reached(window.grown(replayed), window.grown(displayed) + window.grown(replayed)))
                    return false;
                return hit.show(replayed).show(displayed).show(sent).found();
            },
        },
    };
    return rules;
}

} // namespace diagnosis
