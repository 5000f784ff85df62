/** @file buffering.cpp Rules about the buffering controller, which delays everything that goes to the decoders. */
#include "rule.h"
#include "sessmgr_types.h"

namespace diagnosis
{

namespace
{

constinit const Reading state{"buffering.state"};
constinit const Reading mode{"buffering.mode"};
constinit const Reading fixed_delay{"buffering.fixed_delay"};
constinit const Reading least{"buffering.delay_lower_limit"};
constinit const Reading most{"buffering.delay_upper_limit"};
constinit const Reading set{"buffering.decoder_delay_setting"};
constinit const Reading applied{"buffering.initial_delay_applied"};
constinit const Reading latency{"buffering.channels[].total_latency"};
constinit const Reading channel_received{"buffering.channels[].received_packets"};
constinit const Reading received{"buffering.received_packets"};
constinit const Reading output{"buffering.output_packets"};
constinit const Reading last_output{"buffering.last_output_packet_time"};
constinit const Reading dropped{"buffering.dropped_packets"};
constinit const Reading overflows{"buffering.overflows"};
constinit const Reading late{"buffering.late_output_packets"};
constinit const Reading lateness{"buffering.max_output_lateness"};
constinit const Reading late_pictures{"vdecoder.late_output_pictures"};
constinit const Reading timecode_packets{"buffering.multisync.timecode_packets"};

bool is_state(const Window& window, Hit& hit, std::int64_t wanted)
{
    return window.value(state) == wanted && hit.show(state).show(mode).found();
}

} // namespace

const Rules& buffering_rules()
{
    static const Rules rules = {
        {
            .id = "buffering.multisync-no-ntp",
            .stage = Stage::buffering,
            .severity = Severity::warning,
            .title = "MultiSync has no NTP client that keeps the time",
            .when = "The buffering controller says so.",
            .reason = "MultiSync compares time of day with the stream's timecode. Without a common time the decoders are not in step.",
            .remedy = "Switch the NTP client on and let it reach its server, on every decoder of the group.",
            .needs_window = false,
            .causes = no_effect,
            .follows = no_effect,
            .reads = {&state, &mode},
            .test = [](const Window& window, Hit& hit)
            { return is_state(window, hit, SMGR_CBUFFERING_STATUS_MULTISYNC_ERROR_NO_NTP_CLIENT); },
        },
        {
            .id = "buffering.multisync-no-timecode",
            .stage = Stage::buffering,
            .severity = Severity::warning,
            .title = "MultiSync finds no timecode in the stream",
            .when = "The buffering controller says so.",
            .reason = "Without timecode there is nothing to bring into step.",
            .remedy = "Have the encoder insert timecode (SMPTE ST 12-1, in the video's SEI), or leave MultiSync.",
            .needs_window = false,
            .causes = no_effect,
            .follows = stops,
            .reads = {&state, &mode, &timecode_packets},
            .test =
                [](const Window& window, Hit& hit)
            {
                hit.show(timecode_packets);
                return is_state(window, hit, SMGR_CBUFFERING_STATUS_MULTISYNC_ERROR_TIMECODE_NOT_PRESENT);
            },
        },
        {
            .id = "buffering.multisync-invalid-timecode",
            .stage = Stage::buffering,
            .severity = Severity::warning,
            .title = "MultiSync cannot use the timecode of the stream",
            .when = "The buffering controller says so.",
            .reason = "A timecode that is not the time of day, within what the delay can be set to, gives no common moment.",
            .remedy = "Let the encoder's timecode follow the time of day, from the same NTP server as the decoders.",
            .needs_window = false,
            .causes = no_effect,
            .follows = stops,
            .reads = {&state, &mode},
            .test = [](const Window& window, Hit& hit)
            { return is_state(window, hit, SMGR_CBUFFERING_STATUS_MULTISYNC_ERROR_TIMECODE_INVALID); },
        },
        {
            .id = "buffering.stopped",
            .stage = Stage::buffering,
            .severity = Severity::critical,
            .title = "The buffering controller takes packets and releases none",
            .when = "10 packets or more came within a window of 5 s or longer, and none was released.",
            .reason = "The largest delay that can be set is a few seconds, and the buffer is full of packets that are due.",
            .remedy = "Stop and start the stream. Keep a capture: this is a fault of the decoder.",
            .needs_window = true,
            .shortest_window = 5,
            .causes = stops,
            .follows = stops,
            .reads = {&received, &output, &last_output},
            .test =
                [](const Window& window, Hit& hit)
            {
                if (window.grown(received) < 10 || window.grown(output) != 0) return false;
                return hit.show(received).show(output).show(last_output).since(window.age(last_output)).found();
            },
        },
        {
            .id = "buffering.overflow",
            .stage = Stage::buffering,
            .severity = Severity::warning,
            .title = "The buffer overflows and packets are thrown away",
            .when = "An overflow was counted within the window, or 2 packets or more, and one in a thousand, were discarded.",
            .reason = "What does not fit is thrown away, so there is no harmless overflow.",
            .remedy = "Lower the delay or the bit rate. If time stamps run far ahead of the PCR, mend the multiplexer.",
            .needs_window = true,
            .causes = loses,
            .follows = stops,
            .reads = {&overflows, &dropped, &received},
            .test =
                [](const Window& window, Hit& hit)
            {
                constexpr Limit many{.least = 2, .of_million = 1000};
                if (window.grown(overflows) == 0 && !many.reached(window.grown(dropped), window.grown(received))) return false;
                return hit.show(overflows).show(dropped).show(received).found();
            },
        },
        {
            .id = "buffering.delay-too-small",
            .stage = Stage::buffering,
            .severity = Severity::warning,
            .title = "The delay is smaller than the chain needs",
            .when =
                "The delay in force, or in the mode Fixed the delay that was configured, is below the smallest that the chain can honour, "
                "and pictures or packets have come late: within the window, or one in a thousand since the start.",
            .reason = "The chain measures its need itself. A small delay alone is no fault where nothing comes late.",
            .remedy = "Set a delay of the lower limit and the largest jitter together or more, or use the mode Automatic.",
            .needs_window = false,
            .causes = delays,
            .follows = no_effect,
            .reads = {&mode, &fixed_delay, &least, &set, &applied, &late, &output, &late_pictures},
            .test =
                [](const Window& window, Hit& hit)
            {
                const bool fixed = window.value(mode) == SMGR_DECSDI_BUFFERING_FIXED;
                const std::int64_t delay = fixed ? window.value(fixed_delay) : window.value(set);
                if (window.value(applied) == 0 || delay == 0 || delay >= window.value(least)) return false;
                constexpr Limit since_start{.least = 10, .of_million = 1000};
                const std::int64_t now = window.grown(late) + window.grown(late_pictures);
                if (now < 3 && !since_start.reached(window.value(late), window.value(output))) return false;
                hit.show(fixed ? fixed_delay : set).show(least).show(mode);
                return hit.show(window.grown(late_pictures) > window.grown(late) ? late_pictures : late).found();
            },
        },
        {
            .id = "buffering.delay-too-large",
            .stage = Stage::buffering,
            .severity = Severity::warning,
            .title = "The latency is above the largest delay that is allowed",
            .when = "The latency of a stream from input to output is above the upper limit of the delay.",
            .reason = "The limit was set by someone who needs the answer sooner, and the buffer may overflow next.",
            .remedy = "Look at the distance from PCR to PTS of that stream: the encoder may send its time stamps too far ahead.",
            .needs_window = false,
            .causes = no_effect,
            .follows = stops | delays,
            .reads = {&latency, &most, &applied, &channel_received},
            .test =
                [](const Window& window, Hit& hit)
            {
                if (window.value(applied) == 0 || window.value(most) == 0) return false;
                for (std::size_t i = 0; i < SMGR_CBUFFERING_MAX_CHANNELS; ++i)
                {
                    if (window.value(channel_received, i) == 0 || window.value(latency, i) <= window.value(most)) continue;
                    return hit.show(latency, i).show(most).found();
                }
                return false;
            },
        },
        {
            .id = "buffering.late-output",
            .stage = Stage::buffering,
            .severity = Severity::warning,
            .title = "Packets are released after their time",
            .when = "3 packets or more, and one in a hundred, were released late within the window.",
            .reason = "A packet that is late here is late everywhere behind. Single ones follow a change of the delay.",
            .remedy = "Raise the delay by the largest lateness.",
            .needs_window = true,
            .causes = delays,
            .follows = stops | loses | delays,
            .reads = {&late, &lateness, &output},
            .test =
                [](const Window& window, Hit& hit)
            {
                constexpr Limit many{.least = 3, .of_million = 10'000};
                if (!many.reached(window.grown(late), window.grown(output))) return false;
                return hit.show(late).show(lateness).show(output).found();
            },
        },
    };
    return rules;
}

} // namespace diagnosis
