/** @file network.cpp Rules about what the network delivers. */
#include <algorithm>

#include "rule.h"
#include "sessmgr_types.h"

namespace diagnosis
{

namespace
{

constinit const Reading started{"tdemux.stream_started"};
constinit const Reading state{"tdemux.state"};
constinit const Reading uptime{"tdemux.uptime"};
constinit const Reading received{"tdemux.received_packets"};
constinit const Reading last_received{"tdemux.last_received_packet_time"};
constinit const Reading errors{"tdemux.receive_errors"};
constinit const Reading last_error{"tdemux.last_error"};
constinit const Reading connections{"tdemux.connections"};
constinit const Reading interval{"tdemux.packet_interval"};
constinit const Reading longest_interval{"tdemux.max_packet_interval"};
constinit const Reading longest_interval_at{"tdemux.max_packet_interval_time"};
constinit const Reading buffering_delay{"buffering.channels[].buffering_delay"};

constexpr std::int64_t silence = 3; // [s]

} // namespace

const Rules& network_rules()
{
    static const Rules rules = {
        {
            .id = "network.name-not-resolved",
            .stage = Stage::network,
            .severity = Severity::critical,
            .title = "The sender's host name cannot be resolved",
            .when = "The input has been looking the name up for 10 s, and lookups have failed.",
            .reason = "A lookup that fails takes about 5 s: one may be an accident, two are not.",
            .remedy = "Check the name's spelling and the name server of this unit, or enter the sender's address instead.",
            .needs_window = false,
            .causes = stops,
            .follows = no_effect,
            .reads = {&state, &uptime, &errors, &last_error},
            .test =
                [](const Window& window, Hit& hit)
            {
                if (window.value(state) != SMGR_TDEMUX_STATS_STATE_RESOLVING) return false;
                if (window.value(uptime) < 10 || window.value(errors) == 0) return false;
                return hit.show(state).show(last_error).show(errors).since(window.value(uptime)).found();
            },
        },
        {
            .id = "network.not-connected",
            .stage = Stage::network,
            .severity = Severity::critical,
            .title = "The sender does not answer",
            .when = "The input has been calling the sender for 10 s or more and receives nothing, or it has failed.",
            .reason = "A call is answered within a few round trips; 10 s allow for the longest path and several tries.",
            .remedy = "Check the sender's address and port, that it listens, and that the firewalls between let the port through.",
            .needs_window = false,
            .causes = stops,
            .follows = no_effect,
            .reads = {&state, &uptime, &last_received, &last_error},
            .test =
                [](const Window& window, Hit& hit)
            {
                const auto now = window.value(state);
                if (now != SMGR_TDEMUX_STATS_STATE_CONNECTING && now != SMGR_TDEMUX_STATS_STATE_FAILED) return false;
                const auto age = window.age(last_received);
                if (window.value(uptime) < 10 || age.value_or(10) < 10) return false;
                return hit.show(state).show(last_received).show(last_error).since(age).found();
            },
        },
        {
            .id = "network.silent",
            .stage = Stage::network,
            .severity = Severity::critical,
            .title = "No packet arrives",
            .when = "A stream was started and has been received, and the last packet came 3 s ago or longer, while the up time goes on.",
            .reason = "Even a stream of 300 kbit/s has a packet each 35 ms; 3 s are more than any buffer of the chain holds.",
            .remedy = "Check that the sender runs and the way to this unit: link lights, the counters of the switches, for multicast the "
                      "membership (IGMP), for a caller the firewalls.",
            .needs_window = false,
            .causes = stops,
            .follows = no_effect,
            .reads = {&started, &state, &uptime, &received, &last_received},
            .test =
                [](const Window& window, Hit& hit)
            {
                const auto now = window.value(state);
                if (window.value(started) == 0 || (now != SMGR_TDEMUX_STATS_STATE_ACTIVE && now != SMGR_TDEMUX_STATS_STATE_SCRAMBLED &&
                                                   now != SMGR_TDEMUX_STATS_STATE_SECURING))
                    return false;
                const auto age = window.age(last_received);
                if (window.value(received) == 0 || age.value_or(0) < silence) return false;
                // A host that hangs looks the same, but for its up time.
                const auto ran = window.difference(uptime);
                if (ran && (*ran == 0 || static_cast<double>(*ran) < window.seconds() - 1.5)) return false;
                return hit.show(last_received).show(received).show(state).since(age).found();
            },
        },
        {
            .id = "network.bursts",
            .stage = Stage::network,
            .severity = Severity::warning,
            .title = "The packets arrive in bursts, further apart than the buffer lasts",
            .when = "Packets go on, and within the window two of them lay further apart than 100 ms, than 20 times their mean distance, "
                    "and than the buffering "
                    "delay of the video or, without one, of the first stream.",
            .reason =
                "A gap that is longer than the buffering delay empties the buffer, however many packets follow. The factor of the mean "
                "keeps slow streams silent, whose packets lie far apart as a rule.",
            .remedy = "Look for a shaper, a wireless hop or an overloaded switch on the way, or for a sender that stutters. Until that is "
                      "mended, raise the latency of the link or the buffering delay above the longest gap.",
            .needs_window = true,
            .causes = delays,
            .follows = stops,
            .reads = {&received, &last_received, &interval, &longest_interval, &longest_interval_at, &buffering_delay},
            .test =
                [](const Window& window, Hit& hit)
            {
                const std::int64_t packets = window.grown(received);
                if (packets < 10 || window.age(last_received).value_or(silence) >= silence) return false;
                const double mean = window.seconds() * 1e6 / static_cast<double>(packets);
                std::int64_t delay = window.value(buffering_delay, 0);
                if (delay == 0) delay = window.value(buffering_delay, 1);
                const double limit = std::max({100e3, 20 * mean, static_cast<double>(delay) * 1e3});
                const bool record = window.happened(longest_interval_at);
                const std::int64_t gap = record ? window.value(longest_interval) : window.value(interval);
                if (static_cast<double>(gap) < limit) return false;
                hit.show(record ? longest_interval : interval);
                return hit.show(received).show(buffering_delay, window.value(buffering_delay, 0) != 0 ? 0 : 1).found();
            },
        },
        {
            .id = "network.reconnects",
            .stage = Stage::network,
            .severity = Severity::warning,
            .title = "The connection to the sender was lost and made again",
            .when = "A connection was made within the window, and the stream has run for longer than the window.",
            .reason = "The first connection of a stream is its start. Each later one stands for an outage of seconds.",
            .remedy = "Look at the sender's log for the same moment: who closed the connection, and whether the network was away.",
            .needs_window = true,
            .causes = stops | loses | delays,
            .follows = stops,
            .reads = {&connections, &uptime},
            .test =
                [](const Window& window, Hit& hit)
            {
                if (window.grown(connections) == 0 || static_cast<double>(window.value(uptime)) < window.seconds() + 5) return false;
                return hit.show(connections).found();
            },
        },
        {
            .id = "network.errors",
            .stage = Stage::network,
            .severity = Severity::warning,
            .title = "Receiving fails now and then",
            .when = "Receive errors were counted within the window while packets arrived.",
            .reason = "Each error is a call to the system that failed; there is no usual number of them.",
            .remedy = "Look at the last error's text: it tells what the system refused.",
            .needs_window = true,
            .causes = loses,
            .follows = stops,
            .reads = {&errors, &received, &last_error},
            .test =
                [](const Window& window, Hit& hit)
            {
                if (window.grown(errors) == 0 || window.grown(received) == 0) return false;
                return hit.show(errors).show(last_error).found();
            },
        },
    };
    return rules;
}

} // namespace diagnosis
