/** @file transport_stream.cpp Rules about the transport stream. */
#include "transport_stream.h"

#include "sessmgr_types.h"

namespace diagnosis
{

namespace
{

constinit const Reading received{"tdemux.received_packets"};
constinit const Reading output{"tdemux.output_packets"};
constinit const Reading last_output{"tdemux.last_output_packet_time"};
constinit const Reading dropped{"tdemux.dropped_packets"};
constinit const Reading undecrypted{"tdemux.srt.undecrypted_packets"};
constinit const Reading encapsulation{"tdemux.encapsulation"};
constinit const Reading lost{"tdemux.lost_ts_segments"};
constinit const Reading corrupted{"tdemux.corrupted_ts_frames"};
constinit const Reading mismatches{"tdemux.pes_size_mismatches"};
constinit const Reading late_pts{"tdemux.frames_with_late_pts"};
constinit const Reading input_overflows{"tdemux.input_packet_list_overflows"};
constinit const Reading read_overflows{"tdemux.read_packet_list_overflows"};

constexpr Limit damaged{.least = 2, .of_million = 100};

} // namespace

bool is_clear(const Window& window)
{
    if (window.value(encapsulation) != SMGR_STREAM_ENCAPSULATION_TS_SRT) return true;
    return window.grown(undecrypted) * 2 < window.grown(received);
}

const Rules& ts_rules()
{
    static const Rules later = {
        {
            .id = "ts.stopped",
            .stage = Stage::ts,
            .severity = Severity::critical,
            .title = "Packets arrive and nothing is demultiplexed",
            .when =
                "100 packets or more arrived within the window, were decrypted where need be, and no packet of an elementary stream came "
                "out.",
            .reason = "A transport stream has its tables each half second at the latest, and packets of its program all the time.",
            .remedy = "Check that what is sent is a transport stream, and that it holds the program that was chosen.",
            .needs_window = true,
            .causes = stops,
            .follows = stops,
            .reads = {&encapsulation, &undecrypted, &received, &output, &last_output},
            .test =
                [](const Window& window, Hit& hit)
            {
                if (!is_clear(window) || window.grown(received) < 100 || window.grown(output) != 0) return false;
                return hit.show(output).show(received).show(last_output).since(window.age(last_output)).found();
            },
        },
        {
            .id = "ts.overflow",
            .stage = Stage::ts,
            .severity = Severity::warning,
            .title = "The packet lists of the demux overflow",
            .when = "An overflow of the input or of the read packet list was counted within the window.",
            .reason = "What does not fit is thrown away, so there is no harmless overflow.",
            .remedy = "Look for a process that takes this unit's processor, and lower the bit rate until the overflows end.",
            .needs_window = true,
            .causes = loses,
            .follows = stops,
            .reads = {&input_overflows, &read_overflows, &dropped},
            .test =
                [](const Window& window, Hit& hit)
            {
                if (window.grown(input_overflows) + window.grown(read_overflows) == 0) return false;
                return hit.show(window.grown(input_overflows) != 0 ? input_overflows : read_overflows).show(dropped).found();
            },
        },
        {
            .id = "ts.loss",
            .stage = Stage::ts,
            .severity = Severity::warning,
            .title = "Packets are missing from the transport stream that the link never had",
            .when =
                "2 breaks of continuity or more within the window, and one in ten thousand packets or more, while the link loses nothing.",
            .reason =
                "Continuity count errors are of the first priority of ETSI TR 101 290. The link numbers its packets itself, so what it "
                "did not miss was lost before it.",
            .remedy = "Look at the way from the encoder to the sender of the link, and at the multiplexer.",
            .needs_window = true,
            .causes = loses,
            .follows = stops | loses,
            .reads = {&lost, &received, &corrupted},
            .test =
                [](const Window& window, Hit& hit)
            {
                if (!damaged.reached(window.grown(lost), window.grown(received))) return false;
                return hit.show(lost).show(received).show(corrupted).found();
            },
        },
        {
            .id = "ts.corrupted",
            .stage = Stage::ts,
            .severity = Severity::warning,
            .title = "The transport stream arrives damaged",
            .when = "2 corrupted frames or contradicting PES lengths or more within the window, and one in ten thousand packets or more.",
            .reason = "Networks with checksums do not damage packets, they lose them: what is damaged was so before.",
            .remedy = "Look at the encoder and at whatever carries the stream without checksums: satellite or terrestrial reception, ASI.",
            .needs_window = true,
            .causes = loses,
            .follows = stops | loses | delays,
            .reads = {&corrupted, &mismatches, &received},
            .test =
                [](const Window& window, Hit& hit)
            {
                if (!damaged.reached(window.grown(corrupted) + window.grown(mismatches), window.grown(received))) return false;
                return hit.show(corrupted).show(mismatches).show(received).found();
            },
        },
        {
            .id = "ts.pts-behind-pcr",
            .stage = Stage::ts,
            .severity = Severity::warning,
            .title = "Time stamps lie behind the PCR",
            .when = "3 frames or more, and one in a hundred of those passed on, had a PTS that was not after the PCR.",
            .reason = "Such a frame should have been shown before it arrived: no buffering makes it punctual.",
            .remedy = "Raise the encoder's or the multiplexer's delay between PCR and PTS.",
            .needs_window = true,
            .causes = delays,
            .follows = stops | loses,
            .reads = {&late_pts, &output},
            .test =
                [](const Window& window, Hit& hit)
            {
                constexpr Limit many{.least = 3, .of_million = 10'000};
                if (!many.reached(window.grown(late_pts), window.grown(output))) return false;
                return hit.show(late_pts).show(output).found();
            },
        },
    };
    static const Rules rules = []
    {
        Rules all = program_rules();
        all.insert(all.end(), later.begin(), later.end());
        return all;
    }();
    return rules;
}

} // namespace diagnosis
