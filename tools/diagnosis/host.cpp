/** @file host.cpp Rules about the process that fills the records. */
#include "rule.h"

namespace diagnosis
{

namespace
{

constinit const Reading started{"tdemux.stream_started"};
constinit const Reading uptime{"tdemux.uptime"};
constinit const Reading received{"tdemux.received_packets"};
constinit const Reading displayed{"vdecoder.displayed_frames"};

} // namespace

const Rules& host_rules()
{
    static const Rules rules = {
        {
            .id = "host.hung",
            .stage = Stage::host,
            .severity = Severity::critical,
            .title = "The host process does not update its records any more",
            .when = "A stream was started, and within 3 s or more neither its up time nor any count of packets and pictures moved.",
            .reason = "The up time moves each second even where nothing is received, so it alone tells a process that hangs from a network "
                      "that is silent.",
            .remedy = "Everything else that is shown is old. Look whether the host process runs and what its log says last; take a core "
                      "image before you start it again.",
            .needs_window = true,
            .shortest_window = 3,
            .causes = stops | loses | delays,
            .follows = no_effect,
            .reads = {&started, &uptime, &received, &displayed},
            .test =
                [](const Window& window, Hit& hit)
            {
                if (window.value(started) == 0) return false;
                if (window.changed(uptime)) return false;
                if (window.grown(received) != 0 || window.grown(displayed) != 0) return false;
                return hit.show(uptime).show(received).found();
            },
        },
    };
    return rules;
}

} // namespace diagnosis
