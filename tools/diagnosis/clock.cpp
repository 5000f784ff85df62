/** @file clock.cpp Rules about the program clock and the loop that follows it. */
#include <cstdlib>

#include "rule.h"
#include "sessmgr_types.h"

namespace diagnosis
{

namespace
{

constinit const Reading uptime{"tdemux.uptime"};
constinit const Reading output{"tdemux.output_packets"};
constinit const Reading mode{"clock_recovery.tracking_mode"};
constinit const Reading updates{"clock_recovery.pcr_updates"};
constinit const Reading last_update{"clock_recovery.last_pcr_update_time"};
constinit const Reading late{"clock_recovery.late_pcrs"};
constinit const Reading longest_gap{"clock_recovery.max_pcr_gap"};
constinit const Reading without_pcr{"tdemux.frames_without_pcr"};
constinit const Reading jump{"clock_recovery.last_pcr_jump"};
constinit const Reading jumped_at{"clock_recovery.last_pcr_jump_time"};
constinit const Reading resyncs{"clock_recovery.resyncs"};
constinit const Reading jitter_errors{"clock_recovery.pcr_jitter_errors"};
constinit const Reading jitter{"clock_recovery.last_pcr_jitter"};
constinit const Reading unsettled{"clock_recovery.pll_unsettled"};
constinit const Reading deviation{"clock_recovery.average_stc_deviation_hz"};
constinit const Reading lowest{"clock_recovery.recent_min_stc_frequency"};
constinit const Reading highest{"clock_recovery.recent_max_stc_frequency"};

constexpr std::int64_t allowed = 810; // [Hz], ISO/IEC 13818-1

bool follows_pcr(const Window& window)
{
    const auto now = window.value(mode);
    return now == SMGR_CLOCK_TRACKING_ENABLED || now == SMGR_CLOCK_TRACKING_ENABLED_LOCK;
}

} // namespace

const Rules& clock_rules()
{
    static const Rules rules = {
        {
            .id = "clock.pcr-missing",
            .stage = Stage::clock,
            .severity = Severity::warning,
            .title = "No PCR comes",
            .when = "Elementary streams go on, the clock follows the PCR, and for 2 s or longer none has come.",
            .reason =
                "ISO/IEC 13818-1 asks for a PCR each 100 ms, ETSI TR 101 290 for one each 40 ms. Without one the clock drifts away from "
                "the sender's, which is seen after minutes, not at once.",
            .remedy = "Check which PID carries the PCR in the program's table, and that the multiplexer fills it.",
            .needs_window = true,
            .causes = delays,
            .follows = stops | loses,
            .reads = {&output, &mode, &updates, &last_update, &without_pcr, &late, &longest_gap},
            .test =
                [](const Window& window, Hit& hit)
            {
                if (!follows_pcr(window) || window.grown(output) < 5 || window.grown(updates) != 0) return false;
                const auto age = window.age(last_update);
                if (age.value_or(2) < 2) return false;
                return hit.show(updates).show(last_update).show(without_pcr).show(late).show(longest_gap).since(age).found();
            },
        },
        {
            .id = "clock.pcr-jumps",
            .stage = Stage::clock,
            .severity = Severity::warning,
            .title = "The PCR jumps",
            .when = "The PCR jumped by 100 ms or more within the window.",
            .reason = "A change of 100 ms without a discontinuity mark is what ETSI TR 101 290 calls a PCR discontinuity error.",
            .remedy = "Look for what cuts the stream: a splicer, a file that is played in a loop, a sender that is started again.",
            .needs_window = true,
            .causes = delays,
            .follows = stops | loses,
            .reads = {&jump, &jumped_at, &resyncs},
            .test =
                [](const Window& window, Hit& hit)
            {
                const std::int64_t by = window.value(jump);
                if (!window.happened(jumped_at) || (by < 100 && by > -100)) return false;
                return hit.show(jump).show(jumped_at).show(resyncs).since(window.age(jumped_at)).found();
            },
        },
        {
            .id = "clock.pcr-jitter",
            .stage = Stage::clock,
            .severity = Severity::warning,
            .title = "The PCR comes unevenly",
            .when = "3 jitter errors or more within the window, and one in a hundred PCRs or more.",
            .reason = "The loop counts an error where a PCR differs from its clock by far more than networks shift it. Single ones follow "
                      "losses.",
            .remedy =
                "Look for what delays packets unevenly: a shaper or a remultiplexer that does not restamp. Raise the latency of the link.",
            .needs_window = true,
            .causes = delays,
            .follows = stops | loses | delays,
            .reads = {&jitter_errors, &updates, &jitter},
            .test =
                [](const Window& window, Hit& hit)
            {
                constexpr Limit many{.least = 3, .of_million = 10'000};
                if (!many.reached(window.grown(jitter_errors), window.grown(updates))) return false;
                return hit.show(jitter_errors).show(jitter).show(updates).found();
            },
        },
        {
            .id = "clock.unlocked",
            .stage = Stage::clock,
            .severity = Severity::warning,
            .title = "The clock does not lock to the sender's",
            .when = "The clock follows the PCR, the stream has run for 10 min or longer, and the PLL has not settled.",
            .reason = "The loop takes up to some minutes to settle, its averages 2 min more. Before, it is not decided.",
            .remedy = "Mend losses and jitter of the path first. If it stays unlocked on a clean path, check the reference of the encoder.",
            .needs_window = false,
            .causes = delays,
            .follows = no_effect,
            .reads = {&mode, &uptime, &unsettled, &deviation, &lowest, &highest},
            .test =
                [](const Window& window, Hit& hit)
            {
                if (!follows_pcr(window) || window.value(uptime) < 600 || window.value(unsettled) == 0) return false;
                return hit.show(unsettled).show(deviation).show(lowest).show(highest).found();
            },
        },
        {
            .id = "clock.off",
            .stage = Stage::clock,
            .severity = Severity::warning,
            .title = "The sender's clock is off by more than the standard allows",
            .when = "The clock follows the PCR, the stream has run for 10 min or longer, and the average of the last 2 min lies more than "
                    "810 Hz "
                    "from nominal (30 ppm).",
            .reason =
                "ISO/IEC 13818-1 allows a system clock of 27 MHz 810 Hz. Beyond, the output cannot follow and skips or repeats pictures.",
            .remedy =
                "Check the reference of the encoder (its genlock or its oscillator). Where the encoder is right, check this unit's own.",
            .needs_window = false,
            .causes = delays,
            .follows = delays,
            .reads = {&mode, &uptime, &deviation},
            .test =
                [](const Window& window, Hit& hit)
            {
                if (!follows_pcr(window) || window.value(uptime) < 600) return false;
                const std::int64_t off = window.value(deviation);
                if (off <= allowed && off >= -allowed) return false;
                return hit.show(deviation).found();
            },
        },
    };
    return rules;
}

} // namespace diagnosis
