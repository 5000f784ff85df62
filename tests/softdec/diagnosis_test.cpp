/* The stage that the diagnosis names first is the one that the fault was put into; on clean streams it names none. */
#include <gtest/gtest.h>

#include "chain/chain_snapshot.h"
#include "diagnosis.h"
#include "injector.h"

namespace softdec_tests
{

namespace
{

records::Snapshot snapshot_of(softdec::Chain& chain)
{
    records::Snapshot snapshot = softdec::snapshot_of(chain, {.has_arrivals = true, .decode = true, .live = false});
    snapshot.decoder = "test";
    snapshot.instance = records::Instance{.id = {1}, .started_at = beginning};
    return snapshot;
}

/** What the diagnosis says of what arrives between two moments, the first so late that the stream runs. */
diagnosis::Result diagnose(const std::vector<Arrival>& arrivals, softdec::Nanoseconds first, softdec::Nanoseconds last)
{
    softdec::Chain chain({.has_arrivals = true, .decode = true, .live = false, .start = 0});
    std::optional<records::Snapshot> before;
    const auto reach = [&](softdec::Nanoseconds moment)
    {
        if (moment <= first || before) return;
        chain.run_to(first);
        before = snapshot_of(chain);
    };
    for (const Arrival& arrival : arrivals)
    {
        if (arrival.moment > last) break;
        reach(arrival.moment);
        chain.take({.channel = arrival.channel, .arrival = arrival.moment, .bytes = arrival.bytes}, {});
    }
    reach(last);
    chain.run_to(last);
    return diagnosis::diagnose(*before, snapshot_of(chain));
}

std::string text_of(const diagnosis::Result& result)
{
    std::string text = std::string(result.verdict.headline) + " | " + result.verdict.place;
    for (const auto& finding : result.findings) text += " | " + std::string(finding.rule->id) + " " + finding.detail;
    return text;
}

constexpr softdec::Nanoseconds window_begin = beginning + 20 * softdec::second;
constexpr softdec::Nanoseconds window_end = beginning + 50 * softdec::second;

/** A stream of 60 s. */
std::vector<Arrival> minute(const Bytes& stream)
{
    return datagrams(repeat(stream, 10));
}

class Diagnosed : public testing::TestWithParam<const char*>
{
protected:
    Bytes stream_ = read_stream(GetParam());

    void expect_stage(const std::vector<Arrival>& arrivals, std::initializer_list<diagnosis::Stage> stages,
                      softdec::Nanoseconds begin = window_begin)
    {
        const auto result = diagnose(arrivals, begin, window_end);
        ASSERT_FALSE(result.findings.empty()) << text_of(result);
        EXPECT_TRUE(std::ranges::find(stages, result.findings.front().rule->stage) != stages.end())
            << diagnosis::stage_id(result.findings.front().rule->stage) << ": " << text_of(result);
    }
};

TEST_P(Diagnosed, CleanStreamHasNoFinding)
{
    const auto result = diagnose(minute(stream_), window_begin, window_end);
    EXPECT_TRUE(result.findings.empty()) << text_of(result);
}

TEST_P(Diagnosed, PacketsLost)
{
    const Bytes minute_of = repeat(stream_, 10);
    expect_stage(datagrams(without(minute_of, each(payloads_of(minute_of, video_pid), 61))), {diagnosis::Stage::ts});
}

TEST_P(Diagnosed, TransportErrors)
{
    const Bytes minute_of = repeat(stream_, 10);
    expect_stage(datagrams(change(minute_of, each(payloads_of(minute_of, video_pid), 89), [](std::uint8_t* packet) { packet[1] |= 0x80; })),
                 {diagnosis::Stage::ts});
}

TEST_P(Diagnosed, DatagramsLostOverRtp)
{
    auto arrivals = rtp(minute(stream_));
    std::size_t number = 0;
    std::erase_if(arrivals, [&number](const Arrival&) { return ++number % 50 == 0; });
    expect_stage(arrivals, {diagnosis::Stage::network, diagnosis::Stage::link});
}

TEST_P(Diagnosed, VideoGone)
{
    const Bytes minute_of = repeat(stream_, 10);
    auto places = payloads_of(minute_of, video_pid);
    places.erase(places.begin(), places.begin() + static_cast<std::ptrdiff_t>(places.size() / 2));
    auto arrivals = datagrams(minute_of);
    // The packets become null packets: their PCR stays.
    std::size_t packet = 0;
    for (Arrival& arrival : arrivals)
        for (std::size_t at = 0; at < arrival.bytes.size(); at += ts_size, ++packet)
            if (std::ranges::binary_search(places, packet) && !pcr_of(&arrival.bytes[at]))
                arrival.bytes[at + 1] |= 0x1f, arrival.bytes[at + 2] = 0xff;
    expect_stage(arrivals, {diagnosis::Stage::ts});
}

TEST_P(Diagnosed, SenderGone)
{
    auto arrivals = minute(stream_);
    std::erase_if(arrivals, [](const Arrival& arrival) { return arrival.moment > beginning + 35 * softdec::second; });
    expect_stage(arrivals, {diagnosis::Stage::network}, beginning + 40 * softdec::second);
}

TEST_P(Diagnosed, ClockJumps)
{
    auto arrivals = minute(stream_);
    for (Arrival& arrival : arrivals)
        if (arrival.moment > beginning + 35 * softdec::second)
            for (std::size_t at = 0; at < arrival.bytes.size(); at += ts_size) shift_clock(&arrival.bytes[at], 450000);
    expect_stage(arrivals, {diagnosis::Stage::clock});
}

TEST_P(Diagnosed, Jitter)
{
    auto arrivals = rtp(minute(stream_));
    for (std::size_t i = 0; i + 60 < arrivals.size(); i += 60)
        for (std::size_t k = 0; k < 8; ++k) arrivals[i + k].moment += 150 * softdec::millisecond;
    std::ranges::stable_sort(arrivals, {}, &Arrival::moment);
    expect_stage(arrivals, {diagnosis::Stage::network, diagnosis::Stage::clock});
}

TEST_P(Diagnosed, GarbageAudio)
{
    const Bytes minute_of = repeat(stream_, 10);
    unsigned value = 12345;
    auto places = payloads_of(minute_of, audio_pid);
    places.erase(places.begin(), places.begin() + static_cast<std::ptrdiff_t>(places.size() / 2));
    expect_stage(datagrams(change(minute_of, places,
                                  [&value](std::uint8_t* packet)
                                  {
                                      for (std::size_t i = payload_at(packet) + (starts_unit(packet) ? 14U : 0U); i < ts_size; ++i)
                                          packet[i] = static_cast<std::uint8_t>((value = value * 1103515245U + 12345U) >> 16);
                                  })),
                 {diagnosis::Stage::audio});
}

TEST_P(Diagnosed, PicturesLeftOut)
{
    const Bytes minute_of = repeat(stream_, 10);
    expect_stage(datagrams(renumber(without(minute_of, whole_units(minute_of, each(starts_of(minute_of, video_pid), 17))))),
                 {diagnosis::Stage::vdecoder, diagnosis::Stage::output, diagnosis::Stage::framer});
}

TEST_P(Diagnosed, RecordingCutAtItsEnd)
{
    // Wherever it is cut, a recording is no fault of the chain that plays it: pictures that others would have filled stay alone.
    const Bytes whole = repeat(stream_, 3);
    for (const std::size_t packets : {0U, 291U, 485U, 679U, 776U, 970U})
    {
        const Bytes part(whole.begin(), whole.end() - static_cast<std::ptrdiff_t>(packets * ts_size));
        softdec::Chain chain({.has_arrivals = true, .decode = true, .live = false, .start = 0});
        diagnosis::Diagnosis hasty({.window = 2, .confirm = false});
        diagnosis::Diagnosis usual({.window = 2});
        std::string found;
        const auto look = [&]
        {
            for (diagnosis::Diagnosis* diagnosis : {&hasty, &usual})
                if (diagnosis->take(snapshot_of(chain)) && !diagnosis->result().findings.empty())
                    found += text_of(diagnosis->result()) + "\n";
        };
        softdec::Nanoseconds due = beginning;
        for (const Arrival& arrival : datagrams(part))
        {
            for (; arrival.moment > due; due += softdec::second)
            {
                chain.run_to(due);
                look();
            }
            chain.take({.channel = arrival.channel, .arrival = arrival.moment, .bytes = arrival.bytes}, {});
        }
        chain.finish();
        look();
        EXPECT_EQ(found, "") << packets << " packets cut off";
    }
}

TEST_P(Diagnosed, TablesGone)
{
    const Bytes minute_of = repeat(stream_, 10);
    auto arrivals = datagrams(minute_of);
    // PAT and PMT become null packets before the window begins.
    for (Arrival& arrival : arrivals)
        for (std::size_t at = 0; arrival.moment > beginning + 15 * softdec::second && at < arrival.bytes.size(); at += ts_size)
            if (const unsigned pid = pid_of(&arrival.bytes[at]); pid == pat_pid || pid == pmt_pid)
                arrival.bytes[at + 1] |= 0x1f, arrival.bytes[at + 2] = 0xff;
    const auto result = diagnose(arrivals, window_begin, window_end);
    ASSERT_EQ(result.findings.size(), 1U) << text_of(result);
    EXPECT_EQ(result.findings.front().rule->id, "ts.tables-missing");
}

// The sound of the third stream has a step wherever the stream is repeated, which is a finding of its own.
INSTANTIATE_TEST_SUITE_P(All, Diagnosed, testing::Values("h265-ac3.ts", "h264i-mp2.ts"),
                         [](const auto& stream) { return test_name(stream.param); });

} // namespace

} // namespace softdec_tests
