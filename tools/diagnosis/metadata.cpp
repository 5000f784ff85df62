/** @file metadata.cpp Rules about the metadata decoder. */
#include "rule.h"
#include "sessmgr_types.h"

namespace diagnosis
{

namespace
{

constinit const Reading received{"metadata.channels[].received_packets"};
constinit const Reading output{"metadata.channels[].output_packets"};
constinit const Reading last_output{"metadata.channels[].last_output_packet_time"};
constinit const Reading dropped{"metadata.channels[].dropped_packets"};
constinit const Reading failed{"metadata.channels[].failed_output_packets"};
constinit const Reading waiting{"metadata.channels[].input_packet_list_length"};

} // namespace

const Rules& metadata_rules()
{
    static const Rules rules = {
        {
            .id = "metadata.stopped",
            .stage = Stage::metadata,
            .severity = Severity::warning,
            .title = "Metadata is received and not put out",
            .when = "A channel received 5 packets or more within a window of 3 s or longer, and put none out.",
            .reason = "Packets wait for their moment as long as pictures do, which is less than 3 s.",
            .remedy = "See that the output of that kind of metadata is on and that the video runs, whose lines carry it.",
            .needs_window = true,
            .shortest_window = 3,
            .causes = stops,
            .follows = stops,
            .reads = {&received, &output, &last_output, &waiting},
            .test =
                [](const Window& window, Hit& hit)
            {
                bool any = false;
                for (std::size_t i = 0; i < SMGR_METADATADEC_MAX_CHANNELS; ++i)
                {
                    if (window.grown(received, i) < 5 || window.grown(output, i) != 0) continue;
                    hit.show(received, i).show(output, i).show(waiting, i).since(window.age(last_output, i));
                    any = true;
                }
                return any && hit.found();
            },
        },
        {
            .id = "metadata.drops",
            .stage = Stage::metadata,
            .severity = Severity::warning,
            .title = "Metadata is lost in its decoder",
            .when = "2 packets or more of a channel, and one in a hundred, were dropped or could not be put out within the window.",
            .reason = "A packet that is late for its picture is dropped; now and then that follows a change of the delay.",
            .remedy = "Raise the delay of the metadata, or the buffering delay: the packets come too late for their pictures.",
            .needs_window = true,
            .causes = no_effect,
            .follows = stops | loses | delays,
            .reads = {&received, &dropped, &failed},
            .test =
                [](const Window& window, Hit& hit)
            {
                constexpr Limit many{.least = 2, .of_million = 10'000};
                for (std::size_t i = 0; i < SMGR_METADATADEC_MAX_CHANNELS; ++i)
                {
                    if (!many.reached(window.grown(dropped, i) + window.grown(failed, i), window.grown(received, i))) continue;
                    return hit.show(dropped, i).show(failed, i).show(received, i).found();
                }
                return false;
            },
        },
    };
    return rules;
}

} // namespace diagnosis
