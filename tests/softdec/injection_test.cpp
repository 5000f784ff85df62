/*
 * Faults that are put into the test streams, and what the records count of them. Where counting is exact the counts are equal;
 * where a fault has consequences further on, they are named too, and nothing else may show.
 */
#include <gtest/gtest.h>

#include <algorithm>
#include <bitstream/mpeg/pes.h>
#include <bitstream/mpeg/ts.h>
#include <cmath>
#include <set>

#include "faults.h"
#include "injector.h"

namespace softdec_tests
{

namespace
{

using Names = std::set<std::string>;

/** Runs over UDP. */
Faults faults_over_udp(const Bytes& stream)
{
    return faults_of(run(datagrams(stream))->records());
}

long count(const Faults& faults, const std::string& name)
{
    const auto found = faults.find(name);
    return found == faults.end() ? 0 : found->second;
}

/** Expects the exact count of one fault, and no other but those named. */
void expect_fault(const Faults& faults, const std::string& name, long expected, const Names& consequences = {})
{
    EXPECT_EQ(count(faults, name), expected) << name;
    for (const auto& [other, value] : faults)
        if (other != name)
        {
            EXPECT_TRUE(consequences.contains(other)) << other << " = " << value << " is no consequence of it";
        }
}

/** What a piece missing of video or sound may come to behind the demux. */
const Names damage = {"vdecoder.concealed_pictures",
                      "vdecoder.dropped_pictures",
                      "vdecoder.replayed_frames",
                      "vframer.slice_header_errors",
                      "vframer.sps_errors",
                      "vframer.pps_errors",
                      "vframer.sei_errors",
                      "vframer.unknown_nal_units",
                      "vframer.frames_without_nal_units",
                      "vframer.unknown_type_pictures",
                      "vframer.unknown_structure_pictures",
                      "vframer.dropped_pictures",
                      "audio.decoder_errors",
                      "audio.timestamp_discontinuities",
                      "vdecoder.pictures_without_info",
                      "tdemux.sources[].frames_without_pts",
                      "vdecoder.pictures_without_pts",
                      "tdemux.sources[].frames_without_dts",
                      "vframer.format_changes"};

Names damage_and(std::initializer_list<const char*> more)
{
    Names names = damage;
    names.insert(more.begin(), more.end());
    return names;
}

class Injection : public testing::TestWithParam<const char*>
{
protected:
    Bytes stream_ = read_stream(GetParam());
};

TEST_P(Injection, PacketsOfVideoLost)
{
    const auto places = each(payloads_of(stream_, video_pid), 97);
    expect_fault(faults_over_udp(without(stream_, places)), "tdemux.lost_ts_segments", static_cast<long>(places.size()), damage);
}

TEST_P(Injection, PacketsOfAudioLost)
{
    const auto places = each(payloads_of(stream_, audio_pid), 41);
    expect_fault(faults_over_udp(without(stream_, places)), "tdemux.lost_ts_segments", static_cast<long>(places.size()), damage);
}

TEST_P(Injection, BurstsLost)
{
    const auto video = payloads_of(stream_, video_pid);
    for (const std::size_t length : {2U, 5U, 8U, 9U, 12U, 14U})
    {
        const std::vector<std::size_t> places(video.begin() + 300, video.begin() + 300 + static_cast<std::ptrdiff_t>(length));
        SCOPED_TRACE(length);
        expect_fault(faults_over_udp(without(stream_, places)), "tdemux.lost_ts_segments", static_cast<long>(length), damage);
    }
}

TEST_P(Injection, LossesAreCountedModuloSixteen)
{
    const auto video = payloads_of(stream_, video_pid);
    const std::vector<std::size_t> places(video.begin() + 300, video.begin() + 300 + 16 + 3);
    expect_fault(faults_over_udp(without(stream_, places)), "tdemux.lost_ts_segments", 3, damage);
}

TEST_P(Injection, PacketsTwice)
{
    const auto places = each(payloads_of(stream_, video_pid), 31);
    ASSERT_GT(places.size(), 10U);
    EXPECT_EQ(faults_over_udp(duplicate(stream_, places)), Faults{});
}

TEST_P(Injection, PacketsOvertaken)
{
    // One that is overtaken shows as lost where it should have come, and comes too late to be of use.
    const auto places = each(payloads_of(stream_, video_pid), 97);
    expect_fault(faults_over_udp(swap_with_next(stream_, places)), "tdemux.lost_ts_segments", static_cast<long>(places.size()), damage);
}

TEST_P(Injection, TransportErrors)
{
    const auto places = each(payloads_of(stream_, video_pid), 89);
    const auto faulty = change(stream_, places, [](std::uint8_t* packet) { ts_set_transporterror(packet); });
    const Faults faults = faults_over_udp(faulty);
    expect_fault(faults, "tdemux.corrupted_ts_frames", static_cast<long>(places.size()), damage_and({"tdemux.dropped_packets"}));
    EXPECT_EQ(count(faults, "tdemux.dropped_packets"), static_cast<long>(places.size()));
}

TEST_P(Injection, SyncBytesLost)
{
    const auto places = each(payloads_of(stream_, video_pid), 101);
    const auto faulty = change(stream_, places, [](std::uint8_t* packet) { packet[0] = 0x46; });
    const Faults faults = faults_over_udp(faulty);
    expect_fault(faults, "tdemux.corrupted_ts_frames", static_cast<long>(places.size()), damage_and({"tdemux.lost_ts_segments"}));
    EXPECT_EQ(count(faults, "tdemux.lost_ts_segments"), static_cast<long>(places.size()));
}

TEST_P(Injection, BytesPutBetweenPackets)
{
    // A file with a hundred bytes of something else in it: a recording that was joined, for example.
    Bytes faulty = stream_;
    faulty.insert(faulty.begin() + 600 * ts_size, 100, 0x11);
    const Faults faults = faults_of(run_file(faulty)->records());
    expect_fault(faults, "tdemux.corrupted_ts_frames", 1);
}

TEST_P(Injection, Scrambling)
{
    auto places = payloads_of(stream_, video_pid);
    places.erase(places.begin(), places.begin() + 400);
    const auto faulty = change(stream_, places, [](std::uint8_t* packet) { ts_set_scrambling(packet, 2); });
    // What the decoder holds back for its order comes out when the stream ends.
    // The sound goes on in the clear, and it is the last packet that decides on the state: so both are scrambled.
    auto audio = payloads_of(stream_, audio_pid);
    audio.erase(audio.begin(), audio.begin() + 100);
    const auto all = change(faulty, audio, [](std::uint8_t* packet) { ts_set_scrambling(packet, 2); });
    const Faults faults = faults_over_udp(all);
    expect_fault(faults, "tdemux.dropped_packets", static_cast<long>(places.size() + audio.size()),
                 damage_and({"tdemux.scrambled", "vdecoder.late_output_pictures", "vdecoder.skipped_frames", "audio.skipped_frames"}));
    EXPECT_EQ(count(faults, "tdemux.scrambled"), 1);
}

TEST_P(Injection, PesLengthsWrong)
{
    auto starts = starts_of(stream_, audio_pid);
    starts.pop_back(); // the stream may end in the last one, which then may be short
    const auto places = each(starts, 5);
    ASSERT_GT(places.size(), 1U);
    const auto faulty = change(stream_, places,
                               [](std::uint8_t* packet)
                               {
                                   std::uint8_t* const pes = packet + payload_at(packet);
                                   pes_set_length(pes, static_cast<std::uint16_t>(pes_get_length(pes) + 9));
                               });
    expect_fault(faults_over_udp(faulty), "tdemux.pes_size_mismatches", static_cast<long>(places.size()), damage);
}

TEST_P(Injection, ClockGone)
{
    // From the middle on there is no PCR.
    const std::size_t middle = stream_.size() / ts_size / 2;
    auto arrivals = datagrams(stream_);
    std::size_t packet = 0;
    for (Arrival& arrival : arrivals)
        for (std::size_t at = 0; at < arrival.bytes.size(); at += ts_size)
            if (packet++ >= middle) remove_pcr(&arrival.bytes[at]);
    const auto chain = run(arrivals);
    const Faults faults = faults_of(chain->records());
    EXPECT_GT(count(faults, "tdemux.frames_without_pcr"), 20);
    expect_fault(faults, "tdemux.frames_without_pcr", count(faults, "tdemux.frames_without_pcr"));
    EXPECT_GT(chain->records().clock_recovery.pcrLateMaxValue, 2000);
}

TEST_P(Injection, ClockStuck)
{
    auto arrivals = datagrams(repeat(stream_, 2));
    const std::size_t middle = arrivals.size() / 2;
    std::uint64_t last = 0;
    for (std::size_t i = 0; i < arrivals.size(); ++i)
    {
        for (std::size_t at = 0; at < arrivals[i].bytes.size(); at += ts_size)
        {
            const auto pcr = pcr_of(&arrivals[i].bytes[at]);
            if (!pcr) continue;
            if (i < middle)
                last = *pcr;
            else
                set_pcr(&arrivals[i].bytes[at], last);
        }
    }
    const Faults faults = faults_of(run(arrivals)->records());
    EXPECT_GT(count(faults, "clock_recovery.pcr_jitter_errors") + count(faults, "clock_recovery.resyncs"), 5);
}

TEST_P(Injection, ClockJumps)
{
    // Clock and time stamps go on five seconds later, as behind another source.
    const std::size_t middle = stream_.size() / ts_size / 2;
    auto arrivals = datagrams(stream_);
    std::size_t packet = 0;
    for (Arrival& arrival : arrivals)
        for (std::size_t at = 0; at < arrival.bytes.size(); at += ts_size)
            if (packet++ >= middle) shift_clock(&arrival.bytes[at], 5 * softdec::ticks_per_second);
    const auto chain = run(arrivals);
    const Faults faults = faults_of(chain->records());
    expect_fault(faults, "clock_recovery.resyncs", 1,
                 damage_and({"vdecoder.input_discontinuities", "vdecoder.skipped_frames", "audio.skipped_frames",
                             "clock_recovery.late_pcrs", "vdecoder.late_output_pictures", "tdemux.frames_with_late_pts",
                             "vdecoder.non_increasing_pts", "buffering.late_output_packets"}));
    EXPECT_NEAR(static_cast<double>(chain->records().clock_recovery.PcrJump), 5000, 25)
        << "a PCR arrives with the other packets of its datagram";
}

TEST_P(Injection, TimestampsWrap)
{
    // All clocks are moved so that the PCR wraps three seconds on.
    const auto clocks = find_packets(stream_, [](const std::uint8_t* packet) { return pcr_of(packet).has_value(); });
    const auto first = static_cast<std::int64_t>(*pcr_of(&stream_[clocks[0] * ts_size]) / 300);
    auto arrivals = datagrams(stream_);
    for (Arrival& arrival : arrivals)
        for (std::size_t at = 0; at < arrival.bytes.size(); at += ts_size)
            shift_clock(&arrival.bytes[at], softdec::timestamp_range - first - 3 * softdec::ticks_per_second);
    expect_fault(faults_of(run(arrivals)->records()), "tdemux.timestamp_rollovers", 1);
}

TEST_P(Injection, TimestampsBehindTheClock)
{
    // The video's time stamps are three seconds early from the middle on.
    auto starts = starts_of(stream_, video_pid);
    starts.erase(starts.begin(), starts.begin() + static_cast<std::ptrdiff_t>(starts.size() / 2));
    const auto faulty = change(stream_, starts, [](std::uint8_t* packet) { shift_timestamps(packet, -3 * softdec::ticks_per_second); });
    const Faults faults = faults_over_udp(faulty);
    EXPECT_EQ(count(faults, "tdemux.frames_with_late_pts"), static_cast<long>(starts.size()));
    EXPECT_EQ(count(faults, "vdecoder.input_discontinuities"), 1);
    EXPECT_GT(count(faults, "vdecoder.late_output_pictures"), 0);
}

TEST_P(Injection, TimestampsStepAhead)
{
    // The video's time stamps are 800 ms later from the middle on: shown as a pause.
    auto starts = starts_of(stream_, video_pid);
    starts.erase(starts.begin(), starts.begin() + static_cast<std::ptrdiff_t>(starts.size() / 2));
    const auto faulty = change(stream_, starts, [](std::uint8_t* packet) { shift_timestamps(packet, 72000); });
    const auto chain = run(datagrams(faulty));
    const Faults faults = faults_of(chain->records());
    // The one that goes with the step, whose time stamps are in another order than the pictures, and no more.
    EXPECT_EQ(count(faults, "vdecoder.input_discontinuities"), 1);
    const double rate = chain->records().vframer.tCurrentProperties.fFrameRate;
    EXPECT_NEAR(static_cast<double>(count(faults, "vdecoder.replayed_frames")), 0.8 * rate, 3);
}

TEST_P(Injection, AudioGone)
{
    auto places = payloads_of(stream_, audio_pid);
    places.erase(places.begin(), places.begin() + static_cast<std::ptrdiff_t>(places.size() / 2));
    const auto chain = run(datagrams(without(stream_, places)));
    const auto& source = chain->records().tdemux.tSources[1];
    EXPECT_EQ(+source.tCounters.nBitsPerSecond, 0U);
    EXPECT_LT(+source.tCounters.tLastReceivedPacket, chain->records().tdemux.tCounters.tLastReceivedPacket - 1);
    // The last frame shows its end by the one behind it, which does not come.
    expect_fault(faults_of(chain->records()), "", 0, {"audio.decoder_errors", "audio.skipped_frames"});
}

TEST_P(Injection, TablesGone)
{
    for (const unsigned pid : {pat_pid, pmt_pid})
    {
        auto places = payloads_of(stream_, pid);
        places.erase(places.begin(), places.begin() + static_cast<std::ptrdiff_t>(places.size() / 3));
        SCOPED_TRACE(pid);
        // What an operator sees: "Program Number: Not Found".
        expect_fault(faults_over_udp(without(stream_, places)), "tdemux.program_gone", 1);
    }
}

TEST_P(Injection, Outage)
{
    // Two seconds of datagrams do not come.
    auto arrivals = datagrams(stream_);
    const softdec::Nanoseconds begin = beginning + 3 * softdec::second;
    std::erase_if(arrivals,
                  [&](const Arrival& arrival) { return arrival.moment >= begin && arrival.moment < begin + 2 * softdec::second; });
    const auto chain = run(arrivals);
    const Faults faults = faults_of(chain->records());
    EXPECT_EQ(count(faults, "tdemux.resumed_stream_markers"), 1);
    EXPECT_NEAR(static_cast<double>(chain->records().tdemux.tCounters.nMaxRxPacketToPacketIntervalUs), 2e6, 0.1e6);
    EXPECT_GT(count(faults, "tdemux.lost_ts_segments"), 0);
    EXPECT_GT(count(faults, "vdecoder.replayed_frames"), 25);
    EXPECT_EQ(count(faults, "clock_recovery.resyncs"), 0) << "the clock goes on where it would have been";
}

TEST_P(Injection, Jitter)
{
    // Datagrams with a PCR that come a fifth of a second late, alone: nothing behind them waits. RTP keeps the order.
    auto arrivals = rtp(datagrams(repeat(stream_, 2)));
    long late = 0;
    for (std::size_t i = arrivals.size() / 2; i + 60 < arrivals.size(); ++i)
    {
        bool has_pcr = false;
        for (std::size_t at = 12; at < arrivals[i].bytes.size(); at += ts_size) has_pcr |= pcr_of(&arrivals[i].bytes[at]).has_value();
        if (!has_pcr || i % 60 > 2) continue;
        arrivals[i].moment += 150 * softdec::millisecond;
        ++late;
        i += 40;
    }
    std::ranges::stable_sort(arrivals, {}, &Arrival::moment);
    ASSERT_GT(late, 2);
    const Faults faults = faults_of(run(arrivals)->records());
    // The sound has a step where the stream is repeated, seen before and behind the decoder.
    expect_fault(faults, "clock_recovery.pcr_jitter_errors", late, {"audio.timestamp_discontinuities"});
}

TEST_P(Injection, SenderClockOff)
{
    for (const double ppm : {-100.0, -20.0, 5.0, 30.0, 100.0})
    {
        auto arrivals = datagrams(repeat(stream_, 10));
        // A clock that is fast has its PCRs come sooner.
        for (Arrival& arrival : arrivals)
            arrival.moment =
                beginning + static_cast<softdec::Nanoseconds>(static_cast<double>(arrival.moment - beginning) * (1 - ppm / 1e6));
        const auto chain = run(arrivals, false);
        const auto& clock = chain->records().clock_recovery;
        EXPECT_EQ(clock.PllNotSettled, 0);
        EXPECT_NEAR(static_cast<double>(clock.OldPll - 27'000'000) / 27, ppm, 0.5);
        EXPECT_EQ(faults_of(chain->records()).count("clock_recovery.pcr_jitter_errors"), 0U);
    }
}

TEST_P(Injection, PicturesLeftOut)
{
    // Whole pictures that are missing without a trace in the transport, but for the time that they were to be shown.
    const auto starts = starts_of(stream_, video_pid);
    const std::vector<std::size_t> chosen = {starts[62], starts[92], starts[123]};
    const Faults faults = faults_over_udp(renumber(without(stream_, whole_units(stream_, chosen))));
    // The PCRs in them are gone as well, and what referred to them is concealed.
    expect_fault(faults, "vdecoder.replayed_frames", 3,
                 {"vdecoder.concealed_pictures", "vdecoder.dropped_pictures", "clock_recovery.late_pcrs"});
}

TEST_P(Injection, GarbageAudio)
{
    // The payload is garbage from the middle on, headers of frames included.
    auto places = payloads_of(stream_, audio_pid);
    places.erase(places.begin(), places.begin() + static_cast<std::ptrdiff_t>(places.size() / 2));
    unsigned value = 12345;
    const auto faulty = change(stream_, places,
                               [&value](std::uint8_t* packet)
                               {
                                   const std::size_t begin = payload_at(packet) + (starts_unit(packet) ? 14 : 0);
                                   for (std::size_t i = begin; i < ts_size; ++i)
                                   {
                                       value = value * 1103515245U + 12345U;
                                       packet[i] = static_cast<std::uint8_t>(value >> 16);
                                   }
                               });
    const auto clean = run(datagrams(stream_));
    const auto chain = run(datagrams(faulty));
    const Faults faults = faults_of(chain->records());
    expect_fault(faults, "", 0, {"audio.decoder_errors", "audio.timestamp_discontinuities", "audio.skipped_frames"});
    EXPECT_LT(+chain->records().audio.nDecodedFrames, clean->records().audio.nDecodedFrames * 3 / 4);
}

TEST_P(Injection, GarbageVideo)
{
    auto places = each(payloads_of(stream_, video_pid), 50);
    const auto faulty = change(stream_, places,
                               [](std::uint8_t* packet)
                               {
                                   if (starts_unit(packet)) return;
                                   for (std::size_t i = payload_at(packet) + 20; i < ts_size - 20; ++i)
                                       packet[i] = static_cast<std::uint8_t>(i * 37);
                               });
    const Faults faults = faults_over_udp(faulty);
    EXPECT_GT(count(faults, "vdecoder.concealed_pictures") + count(faults, "vdecoder.dropped_pictures"), 0);
    expect_fault(faults, "", 0, damage);
}

/** As in a capture with a damaged time stamp. Each of its periods without a picture counts. */
TEST(ArrivalTimes, MayLeapByYears)
{
    auto arrivals = datagrams(read_stream("h264-aac.ts"));
    constexpr std::int64_t leap = 10LL * 365 * 86'400;
    for (std::size_t i = arrivals.size() / 2; i < arrivals.size(); ++i) arrivals[i].moment += leap * softdec::second;
    const auto chain = run(arrivals);
    EXPECT_NEAR(static_cast<double>(chain->records().vdecoder.tCounters.nNumReplayedOutputFrames), leap * 25.0, leap * 0.25);
    EXPECT_EQ(+chain->records().tdemux.tCounters.nNumReceivedPackets, arrivals.size());
}

INSTANTIATE_TEST_SUITE_P(All, Injection, testing::Values("h264-aac.ts", "h265-ac3.ts", "h264i-mp2.ts"),
                         [](const auto& stream) { return test_name(stream.param); });

} // namespace

} // namespace softdec_tests
