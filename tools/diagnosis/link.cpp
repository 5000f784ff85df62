/** @file link.cpp Rules about the SRT link or the FEC receiver. */
#include <algorithm>

#include "rule.h"
#include "sessmgr_types.h"

namespace diagnosis
{

namespace
{

constinit const Reading encapsulation{"tdemux.encapsulation"};
constinit const Reading fec_type{"tdemux.fec_type"};
constinit const Reading received{"tdemux.received_packets"};
constinit const Reading uptime{"tdemux.uptime"};
constinit const Reading last_output{"tdemux.last_output_packet_time"};
constinit const Reading rtp_lost{"tdemux.lost_rtp_segments"};
constinit const Reading key_state{"tdemux.srt.key_state"};
constinit const Reading undecrypted{"tdemux.srt.undecrypted_packets"};
constinit const Reading srt_received{"tdemux.srt.received_packets"};
constinit const Reading lost{"tdemux.srt.lost_packets"};
constinit const Reading too_late{"tdemux.srt.dropped_packets"};
constinit const Reading latency{"tdemux.srt.latency"};
constinit const Reading rtt{"tdemux.srt.rtt"};
constinit const Reading media{"tdemux.fec.received_packets"};
constinit const Reading column_packets{"tdemux.fec.received_column_packets"};
constinit const Reading row_packets{"tdemux.fec.received_row_packets"};
constinit const Reading missing{"tdemux.fec.missing_packets"};
constinit const Reading recovered{"tdemux.fec.recovered_packets"};
constinit const Reading beyond{"tdemux.fec.lost_packets"};

constexpr Limit lost_for_good{.least = 2, .of_million = 100};
bool is_srt(const Window& window)
{
    return window.value(encapsulation) == SMGR_STREAM_ENCAPSULATION_TS_SRT;
}

bool has_fec(const Window& window)
{
    return window.value(encapsulation) == SMGR_STREAM_ENCAPSULATION_TS_RTP && window.value(fec_type) == SMGR_FEC_TYPE_PRO_MPEG;
}

/** From 1 % on the picture is gone for most of the time. */
bool is_lost(const Window& window, Hit& hit, const Reading& counter, std::int64_t came)
{
    const std::int64_t bad = window.grown(counter);
    if (!lost_for_good.reached(bad, bad + came)) return false;
    if (bad * 100 >= bad + came) hit.weigh(Severity::critical);
    return hit.say(share_text(bad, bad + came, "packets")).show(counter).found();
}

} // namespace

const Rules& link_rules()
{
    static const Rules rules = {
        {
            .id = "link.no-passphrase",
            .stage = Stage::link,
            .severity = Severity::critical,
            .title = "The stream is encrypted and no passphrase is set here",
            .when = "The link is SRT, and the state of its key exchange says that this end has no passphrase.",
            .reason = "The state is the link's own: there is no limit to choose.",
            .remedy = "Enter the sender's passphrase here and start the stream again, or have the sender switch encryption off.",
            .needs_window = false,
            .causes = stops,
            .follows = no_effect,
            .reads = {&encapsulation, &key_state, &undecrypted, &last_output},
            .test =
                [](const Window& window, Hit& hit)
            {
                if (!is_srt(window) || window.value(key_state) != SMGR_STREAM_SRT_KM_S_NOSECRET) return false;
                return hit.show(key_state).show(undecrypted).show(last_output).since(window.age(last_output)).found();
            },
        },
        {
            .id = "link.not-decrypting",
            .stage = Stage::link,
            .severity = Severity::critical,
            .title = "The link cannot decrypt the stream",
            .when =
                "The link is SRT, and the state of its key exchange says that the passphrases differ; or one packet in a hundred or more, "
                "and at least 10, could not be decrypted within the window.",
            .reason = "The state is the link's own. Without it, single packets that cannot be decrypted are normal while keys change.",
            .remedy = "Enter the passphrase again at both ends rather than compare it: case and blanks count. Then restart the stream.",
            .needs_window = false,
            .causes = stops,
            .follows = no_effect,
            .reads = {&encapsulation, &key_state, &undecrypted, &srt_received, &last_output},
            .test =
                [](const Window& window, Hit& hit)
            {
                if (!is_srt(window) || window.value(key_state) == SMGR_STREAM_SRT_KM_S_NOSECRET) return false;
                const bool differ = window.value(key_state) == SMGR_STREAM_SRT_KM_S_BADSECRET;
                constexpr Limit many{.least = 10, .of_million = 10'000};
                if (!differ && !many.reached(window.grown(undecrypted), window.grown(srt_received))) return false;
                if (differ) hit.say("the passphrases differ");
                return hit.show(key_state).show(undecrypted).show(last_output).since(window.age(last_output)).found();
            },
        },
        {
            .id = "link.latency-too-low",
            .stage = Stage::link,
            .severity = Severity::warning,
            .title = "Lost packets come again too late: the SRT latency is too short for the round trip",
            .when =
                "The latency is below 2.5 times the round trip time, and packets came too late: 2 or more and one in ten thousand within "
                "the window, or one in two thousand since the start.",
            .reason =
                "A packet that was lost is missed, asked for and sent again: one and a half round trips if nothing else is lost. A short "
                "latency alone is no fault.",
            .remedy = "Set the latency to three to four times the round trip time, at either end.",
            .needs_window = false,
            .causes = loses,
            .follows = no_effect,
            .reads = {&encapsulation, &latency, &rtt, &too_late, &srt_received},
            .test =
                [](const Window& window, Hit& hit)
            {
                if (!is_srt(window)) return false;
                const std::int64_t round_trip = window.value(rtt); // [us]
                if (round_trip <= 0 || window.value(latency) * 2000 >= round_trip * 5) return false;
                const std::int64_t bad = window.grown(too_late);
                constexpr Limit since_start{.least = 100, .of_million = 500};
                if (!lost_for_good.reached(bad, bad + window.grown(srt_received)) &&
                    !since_start.reached(window.value(too_late), window.value(too_late) + window.value(srt_received)))
                    return false;
                if (bad > 0) hit.say(share_text(bad, bad + window.grown(srt_received), "packets"));
                return hit.show(latency).show(rtt).show(too_late).found();
            },
        },
        {
            .id = "link.loss",
            .stage = Stage::link,
            .severity = Severity::warning,
            .title = "The SRT link loses packets for good",
            .when =
                "2 packets or more, and one in ten thousand or more, came too late to be played within the window. Critical from one in a "
                "hundred on.",
            .reason =
                "A picture of a stream of 10 Mbit/s takes some 30 packets: one lost packet in ten thousand damages a picture every few "
                "seconds, one in a hundred most of them.",
            .remedy =
                "Bring the bit rate well below what the path carries (a quarter less than the available bandwidth), raise the latency, "
                "and look for the hop that loses.",
            .needs_window = true,
            .causes = loses,
            .follows = stops | loses,
            .reads = {&encapsulation, &too_late, &srt_received, &lost},
            .test =
                [](const Window& window, Hit& hit)
            {
                if (!is_srt(window) || !is_lost(window, hit, too_late, window.grown(srt_received))) return false;
                return hit.show(lost).show(srt_received).found();
            },
        },
        {
            .id = "link.fec-absent",
            .stage = Stage::link,
            .severity = Severity::warning,
            .title = "FEC is expected and no FEC packet arrives",
            .when = "The input is RTP with Pro-MPEG FEC, and 200 media packets or more came within the window with no FEC packet.",
            .reason = "A matrix of SMPTE ST 2022-1 holds 100 packets at most, so among 200 are the FEC packets of a whole matrix.",
            .remedy =
                "Check that the sender's FEC is on and reaches this unit, on the media's port + 2 (columns) and + 4 (rows); or switch FEC "
                "off here.",
            .needs_window = true,
            .causes = loses,
            .follows = stops,
            .reads = {&encapsulation, &fec_type, &media, &column_packets, &row_packets, &beyond},
            .test =
                [](const Window& window, Hit& hit)
            {
                if (!has_fec(window) || window.grown(media) < 200 || window.grown(column_packets) + window.grown(row_packets) != 0)
                    return false;
                return hit.show(column_packets).show(row_packets).show(media).show(beyond).found();
            },
        },
        {
            .id = "link.fec-too-weak",
            .stage = Stage::link,
            .severity = Severity::warning,
            .title = "More packets are lost than FEC can rebuild",
            .when = "2 packets or more, and one in ten thousand or more, were lost for good within the window though FEC packets came. "
                    "Critical "
                    "from one in a hundred on.",
            .reason = "The same as for an SRT link: each lost packet damages a picture or more.",
            .remedy = "Choose a matrix with more columns against long bursts, or row FEC in addition; better, look for the hop that loses.",
            .needs_window = true,
            .causes = loses,
            .follows = stops | loses,
            .reads = {&encapsulation, &fec_type, &beyond, &media, &column_packets, &missing, &recovered},
            .test =
                [](const Window& window, Hit& hit)
            {
                if (!has_fec(window) || window.grown(column_packets) == 0 || !is_lost(window, hit, beyond, window.grown(media)))
                    return false;
                return hit.show(missing).show(recovered).found();
            },
        },
        {
            .id = "link.rtp-loss",
            .stage = Stage::link,
            .severity = Severity::warning,
            .title = "Packets are lost on the way and nothing rebuilds them",
            .when = "The input is RTP without FEC, and 2 packets or more, and one in ten thousand or more, were missing within the window. "
                    "Critical from one in a hundred on.",
            .reason = "The same as for an SRT link: each lost packet damages a picture or more.",
            .remedy =
                "Look for the hop that loses: the counters of the switches, then the sender. FEC or SRT would make single losses good.",
            .needs_window = true,
            .causes = loses,
            .follows = stops,
            .reads = {&encapsulation, &fec_type, &rtp_lost, &received},
            .test =
                [](const Window& window, Hit& hit)
            {
                if (window.value(encapsulation) != SMGR_STREAM_ENCAPSULATION_TS_RTP || has_fec(window)) return false;
                return is_lost(window, hit, rtp_lost, window.grown(received)) && hit.show(received).found();
            },
        },
        {
            .id = "link.fec-wasted",
            .stage = Stage::link,
            .severity = Severity::note,
            .title = "FEC has had nothing to rebuild since the start",
            .when = "The stream has run for an hour or longer, 100,000 media packets or more have come, with FEC packets, and not one was "
                    "missing.",
            .reason = "Within an hour and so many packets a network that needs FEC has lost some. Less time says nothing.",
            .remedy =
                "If the path is yours, FEC can be switched off: it takes a tenth to a third of the bandwidth, and delays the stream by a "
                "matrix.",
            .needs_window = false,
            .causes = no_effect,
            .follows = stops,
            .reads = {&encapsulation, &fec_type, &uptime, &media, &missing, &column_packets},
            .test =
                [](const Window& window, Hit& hit)
            {
                const bool is_long = window.value(uptime) >= 3600 && window.value(media) >= 100'000 && window.value(column_packets) != 0;
                if (!has_fec(window) || !is_long || window.value(missing) != 0) return false;
                return hit.show(missing).show(media).show(column_packets).show(uptime).found();
            },
        },
    };
    return rules;
}

} // namespace diagnosis
