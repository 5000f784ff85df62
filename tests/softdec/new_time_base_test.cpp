/*
 * Time bases that a sender announces (ISO/IEC 13818-1, 2.4.3.5): a splice, or a playout that begins its file again. They are no fault, and
 * time goes on through them.
 */
#include <gtest/gtest.h>

#include "clean.h"
#include "multiplexer.h"
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
template <typename Change>
std::vector<Arrival> spliced(const Bytes& stream, softdec::Nanoseconds after, Change change)
{
    std::vector<Arrival> arrivals = datagrams(stream);
    std::optional<std::uint64_t> first_pcr;
    bool spliced = false;
    for (Arrival& arrival : arrivals)
        for (std::size_t at = 0; at < arrival.bytes.size(); at += ts_size)
        {
            std::uint8_t* const packet = &arrival.bytes[at];
            const auto pcr = pcr_of(packet);
            if (!first_pcr) first_pcr = pcr;
            const bool begins = !spliced && pcr && arrival.moment - beginning >= after;
            spliced = spliced || begins;
            if (spliced) change(packet, begins);
        }
    EXPECT_TRUE(spliced);
    return arrivals;
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
        EXPECT_EQ(seen.chain->records().clock_recovery.PcrJump, 0);
    }
}

INSTANTIATE_TEST_SUITE_P(All, AnnouncedTimeBase, testing::Values("h264-aac.ts", "h265-ac3.ts", "h264i-mp2.ts"),
                         [](const auto& parameter)
                         {
                             std::string name = parameter.param;
                             std::ranges::replace_if(
                                 name, [](char character) { return character == '-' || character == '.'; }, '_');
                             return name;
                         });

} // namespace

} // namespace softdec_tests
