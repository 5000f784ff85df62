/*
 * Time bases that a sender announces (ISO/IEC 13818-1, 2.4.3.5): a splice, or a playout that begins its file again. They are no fault, and
 * time goes on through them.
 */
#include <gtest/gtest.h>

#include <algorithm>

#include "clean.h"
#include "packets.h"

namespace softdec_tests
{

namespace
{

constexpr std::int64_t hour = 3600 * softdec::ticks_per_second;

void announce(std::uint8_t* packet)
{
    packet[5] |= 0x80;
}

/** Packets of a stream that goes on, each as it arrives, from the first PCR behind a moment on in another time base. */
template <typename Change> std::vector<Arrival> spliced(const Bytes& stream, softdec::Nanoseconds after, Change change)
{
    std::vector<Arrival> arrivals = datagrams(stream);
    bool spliced = false;
    for (Arrival& arrival : arrivals)
        for (std::size_t at = 0; at < arrival.bytes.size(); at += ts_size)
        {
            std::uint8_t* const packet = &arrival.bytes[at];
            const bool begins = !spliced && pcr_of(packet) && arrival.moment - beginning >= after;
            spliced = spliced || begins;
            if (spliced) change(packet, begins);
        }
    EXPECT_TRUE(spliced);
    return arrivals;
}

Bytes joined(const std::vector<Arrival>& arrivals)
{
    Bytes bytes;
    for (const Arrival& arrival : arrivals) bytes.insert(bytes.end(), arrival.bytes.begin(), arrival.bytes.end());
    return bytes;
}

class AnnouncedTimeBase : public testing::TestWithParam<const char*>
{
protected:
    Bytes stream_ = repeat(read_stream(GetParam()), 3);
};

TEST_P(AnnouncedTimeBase, IsNoFaultWhereverItIs)
{
    // The sound has a step wherever the stream is repeated.
    const Faults usual = watch(datagrams(stream_)).faults;
    const std::int64_t steps[] = {hour, -hour, 20 * hour, 5 * softdec::ticks_per_second, -2 * softdec::ticks_per_second, 27'000};
    for (const std::int64_t step : steps)
    {
        SCOPED_TRACE(step);
        const auto arrivals = spliced(stream_, 13 * softdec::second,
                                      [step](std::uint8_t* packet, bool begins)
                                      {
                                          if (begins) announce(packet);
                                          shift_clock(packet, step);
                                      });
        const Seen seen = watch(arrivals);
        EXPECT_EQ(seen.findings, "");
        EXPECT_EQ(seen.faults, usual);
        EXPECT_EQ(+seen.chain->records().clock_recovery.PcrJump, 0);
    }
}

TEST_P(AnnouncedTimeBase, IsNoFaultInAFile)
{
    const Faults usual = faults_in(*run_file(stream_));
    for (const std::int64_t step : {hour, -hour, 27'000L, 700'000L})
    {
        SCOPED_TRACE(step);
        const auto chain = run_file(joined(spliced(stream_, 13 * softdec::second,
                                                   [step](std::uint8_t* packet, bool begins)
                                                   {
                                                       if (begins) announce(packet);
                                                       shift_clock(packet, step);
                                                   })));
        EXPECT_EQ(faults_in(*chain), usual);
    }
}

TEST_P(AnnouncedTimeBase, MayBeAnnouncedAheadOfItsClock)
{
    // A packet without PCR announces it, and the next PCR begins it: the indicator is taken from one and put into another.
    const Faults usual = watch(datagrams(stream_)).faults;
    auto arrivals = spliced(stream_, 13 * softdec::second, [](std::uint8_t* packet, bool) { shift_clock(packet, hour); });
    const unsigned pcr_pid = video_pid;
    Bytes notice(ts_size, 0xff);
    const std::uint8_t header[] = {0x47, static_cast<std::uint8_t>(pcr_pid >> 8), static_cast<std::uint8_t>(pcr_pid), 0x20, 183, 0x80};
    std::ranges::copy(header, notice.begin());
    std::uint8_t counter = 0;
    for (Arrival& arrival : arrivals)
    {
        std::optional<std::size_t> place;
        for (std::size_t at = 0; at < arrival.bytes.size() && !place; at += ts_size)
        {
            const std::uint8_t* const packet = &arrival.bytes[at];
            const auto pcr = pcr_of(packet);
            if (pcr && *pcr / 300 > static_cast<std::uint64_t>(hour)) place = at;
            if (!place && pid_of(packet) == pcr_pid) counter = packet[3] & 15;
        }
        if (!place) continue;
        notice[3] = static_cast<std::uint8_t>(notice[3] | counter);
        arrival.bytes.insert(arrival.bytes.begin() + static_cast<std::ptrdiff_t>(*place), notice.begin(), notice.end());
        break;
    }
    const Seen seen = watch(arrivals);
    EXPECT_EQ(seen.findings, "");
    EXPECT_EQ(seen.faults, usual);
}

TEST_P(AnnouncedTimeBase, LetsTimeStampsStandAsTheyAreSent)
{
    const auto chain = watch(spliced(stream_, 13 * softdec::second,
                                     [](std::uint8_t* packet, bool begins)
                                     {
                                         if (begins) announce(packet);
                                         shift_clock(packet, hour);
                                     }))
                           .chain;
    const auto plain = run(datagrams(stream_));
    const records::Records& moved = chain->records();
    const records::Records& usual = plain->records();
    const auto shifted = [](auto value) { return static_cast<std::int64_t>(value) + hour; };
    EXPECT_EQ(static_cast<std::int64_t>(moved.tdemux.nPCR), shifted(usual.tdemux.nPCR));
    EXPECT_EQ(static_cast<std::int64_t>(moved.clock_recovery.curPcr), shifted(usual.clock_recovery.curPcr));
    EXPECT_EQ(static_cast<std::int64_t>(moved.tdemux.tSources[0].nPTS), shifted(usual.tdemux.tSources[0].nPTS));
    EXPECT_EQ(static_cast<std::int64_t>(moved.tdemux.tSources[1].nPTS), shifted(usual.tdemux.tSources[1].nPTS));
    EXPECT_EQ(static_cast<std::int64_t>(moved.vframer.tCurrentProperties.TimeStamp), shifted(usual.vframer.tCurrentProperties.TimeStamp));
    EXPECT_EQ(static_cast<std::int64_t>(moved.audio.PairStats[0].nAudioTimeStamp), shifted(usual.audio.PairStats[0].nAudioTimeStamp));
    EXPECT_EQ(static_cast<std::int64_t>(moved.buffering.nPCR), shifted(usual.buffering.nPCR));
    EXPECT_NEAR(static_cast<double>(moved.buffering.nSTC), static_cast<double>(shifted(usual.buffering.nSTC)), 1800);
    EXPECT_EQ(+moved.vdecoder.tCounters.nNumDisplayedOutputFrames, +usual.vdecoder.tCounters.nNumDisplayedOutputFrames);
    EXPECT_EQ(+moved.audio.nOutputFrames, +usual.audio.nOutputFrames);
}

TEST_P(AnnouncedTimeBase, IsNoFaultInAPlayoutThatBeginsAgain)
{
    // The packet that announces it may be numbered anew as well.
    const Bytes once = read_stream(GetParam());
    auto arrivals = datagrams(repeat(once, 4));
    std::size_t at_all = 0;
    std::size_t pass = 0;
    const auto length = Passes(once).length();
    unsigned step = 0;
    for (Arrival& arrival : arrivals)
        for (std::size_t at = 0; at < arrival.bytes.size(); at += ts_size, at_all += ts_size)
        {
            std::uint8_t* const packet = &arrival.bytes[at];
            shift_clock(packet, -static_cast<std::int64_t>(at_all / once.size()) * length);
            if (at_all / once.size() != pass && pcr_of(packet))
            {
                pass = at_all / once.size();
                announce(packet);
                step += 5;
            }
            if (pid_of(packet) == video_pid) packet[3] = static_cast<std::uint8_t>((packet[3] & 0xf0U) | ((packet[3] + step) & 15U));
        }
    EXPECT_EQ(pass, 3U);
    const Seen seen = watch(arrivals);
    EXPECT_EQ(seen.findings, "");
    EXPECT_EQ(seen.faults, Faults{});
}

INSTANTIATE_TEST_SUITE_P(All, AnnouncedTimeBase, testing::Values("h264-aac.ts", "h265-ac3.ts", "h264i-mp2.ts"),
                         [](const auto& stream) { return test_name(stream.param); });

} // namespace

} // namespace softdec_tests
