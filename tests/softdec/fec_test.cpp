/* RTP with and without FEC of SMPTE ST 2022-1: every removed packet is recovered or lost exactly as what is left allows. */
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>

#include "faults.h"
#include "fec/rtp_receiver.h"
#include "fec_sender.h"

namespace softdec_tests
{

namespace
{

using softdec::Channel;

/** What a receiver makes of packets. */
struct Received
{
    softdec::RtpCounts counts;
    Bytes bytes; // passed on
};

Received receive(const std::vector<Arrival>& packets)
{
    Received received;
    softdec::RtpReceiver receiver([&](std::span<const std::uint8_t> payload, std::optional<softdec::Nanoseconds>)
                                  { received.bytes.insert(received.bytes.end(), payload.begin(), payload.end()); });
    for (const Arrival& packet : packets) receiver.receive({.channel = packet.channel, .arrival = packet.moment, .bytes = packet.bytes});
    receiver.finish();
    received.counts = receiver.counts();
    return received;
}

std::vector<std::uint16_t> media_of(const std::vector<Arrival>& packets)
{
    std::vector<std::uint16_t> sequences;
    for (const Arrival& packet : packets)
        if (packet.channel == Channel::media) sequences.push_back(sequence_of(packet));
    return sequences;
}

std::vector<Arrival> without_media(const std::vector<Arrival>& packets, const std::set<std::uint16_t>& removed)
{
    std::vector<Arrival> rest;
    std::ranges::copy_if(packets, std::back_inserter(rest),
                         [&](const Arrival& packet) { return packet.channel != Channel::media || !removed.contains(sequence_of(packet)); });
    return rest;
}

void expect_as_allowed(const std::vector<Arrival>& packets, const std::set<std::uint16_t>& removed)
{
    const auto rest = without_media(packets, removed);
    const Outcome expected = outcome_of(rest, removed);
    const Received received = receive(rest);
    EXPECT_EQ(received.counts.missing, removed.size());
    EXPECT_EQ(received.counts.recovered, static_cast<std::uint64_t>(expected.recovered));
    EXPECT_EQ(received.counts.lost, static_cast<std::uint64_t>(expected.lost));
    EXPECT_EQ(received.counts.missing_column, 0U);
    EXPECT_EQ(received.counts.missing_row, 0U);
    if (expected.lost != 0) return;
    EXPECT_EQ(received.bytes, receive(packets).bytes) << "what was rebuilt is not what was removed";
}

std::vector<Arrival> media_packets(std::uint16_t first_sequence)
{
    return rtp(datagrams(repeat(read_stream("h264-aac.ts"), 2)), first_sequence);
}

struct Case
{
    const char* name;
    Matrix matrix;
    std::uint16_t first_sequence;
};

const Case cases[] = {
    {"LevelA5x5", {.columns = 5, .rows = 5, .row_fec = false}, 1000},
    {"LevelA10x10", {.columns = 10, .rows = 10, .row_fec = false}, 65400}, // the sequence numbers wrap
    {"LevelA20x5", {.columns = 20, .rows = 5, .row_fec = false}, 1},
    {"LevelB5x5", {.columns = 5, .rows = 5, .row_fec = true}, 65300},
    {"LevelB10x10", {.columns = 10, .rows = 10, .row_fec = true}, 1000},
    {"LevelB4x6", {.columns = 4, .rows = 6, .row_fec = true}, 0},
};

class Fec : public testing::TestWithParam<Case>
{
protected:
    void SetUp() override
    {
        packets_ = with_fec(media_packets(GetParam().first_sequence), GetParam().matrix);
        sequences_ = media_of(packets_);
    }

    std::vector<Arrival> packets_;
    std::vector<std::uint16_t> sequences_;
};

TEST_P(Fec, LearnsTheMatrix)
{
    const auto counts = receive(packets_).counts;
    EXPECT_EQ(counts.columns, GetParam().matrix.columns);
    EXPECT_EQ(counts.rows, GetParam().matrix.rows);
    EXPECT_EQ(counts.row_fec != 0, GetParam().matrix.row_fec);
    EXPECT_TRUE(counts.block_aligned);
    EXPECT_EQ(counts.media, sequences_.size());
    EXPECT_EQ(counts.missing, 0U);
}

TEST_P(Fec, RecoversSingleLosses)
{
    // One in each other matrix, at each place of it in turn.
    const auto size = static_cast<std::size_t>(GetParam().matrix.columns * GetParam().matrix.rows);
    std::set<std::uint16_t> removed;
    for (std::size_t i = 0; (2 * i + 1) * size < sequences_.size() - 3 * size; ++i)
        removed.insert(sequences_[2 * i * size + (i * 7 + 1) % size]);
    const auto rest = without_media(packets_, removed);
    const auto counts = receive(rest).counts;
    EXPECT_EQ(counts.recovered, removed.size());
    EXPECT_EQ(counts.lost, 0U);
    expect_as_allowed(packets_, removed);
}

TEST_P(Fec, RecoversABurstOfAsManyAsColumns)
{
    const auto columns = static_cast<std::size_t>(GetParam().matrix.columns);
    const std::set<std::uint16_t> removed(sequences_.begin() + 103, sequences_.begin() + 103 + static_cast<std::ptrdiff_t>(columns));
    const auto counts = receive(without_media(packets_, removed)).counts;
    EXPECT_EQ(counts.recovered, columns);
    EXPECT_EQ(counts.lost, 0U);
    expect_as_allowed(packets_, removed);
}

TEST_P(Fec, LosesWhatALongerBurstTakes)
{
    for (const std::size_t length : {6U, 12U, 25U, 60U, 130U})
    {
        const std::set<std::uint16_t> removed(sequences_.begin() + 111, sequences_.begin() + 111 + static_cast<std::ptrdiff_t>(length));
        expect_as_allowed(packets_, removed);
    }
}

TEST_P(Fec, RecoversOfRandomLossesWhatCanBe)
{
    for (unsigned seed = 0; seed < 30; ++seed)
    {
        std::mt19937 random(seed);
        const unsigned percent = 1 + seed % 20;
        std::set<std::uint16_t> removed;
        for (std::size_t i = 1; i + 1 < sequences_.size(); ++i)
            if (random() % 100 < percent) removed.insert(sequences_[i]);
        SCOPED_TRACE(seed);
        expect_as_allowed(packets_, removed);
    }
}

TEST_P(Fec, TakesReorderedPacketsForWhatTheyAre)
{
    // Neighbours change places, and every 50th packet comes ten later: nothing of that is a loss.
    auto packets = packets_;
    for (std::size_t i = 40; i + 60 < packets.size(); i += 50)
    {
        std::swap(packets[i], packets[i + 1]);
        std::rotate(packets.begin() + static_cast<std::ptrdiff_t>(i + 10), packets.begin() + static_cast<std::ptrdiff_t>(i + 11),
                    packets.begin() + static_cast<std::ptrdiff_t>(i + 21));
    }
    const Received received = receive(packets);
    EXPECT_EQ(received.counts.missing, 0U);
    EXPECT_EQ(received.counts.recovered, 0U);
    EXPECT_EQ(received.counts.missing_column + received.counts.missing_row, 0U);
    EXPECT_EQ(received.bytes, receive(packets_).bytes);
}

TEST_P(Fec, TakesPacketsThatComeTwiceOnce)
{
    std::vector<Arrival> packets;
    for (const Arrival& packet : packets_)
    {
        packets.push_back(packet);
        if (packet.channel == Channel::media) packets.push_back(packet);
    }
    const Received received = receive(packets);
    EXPECT_EQ(received.counts.media, sequences_.size());
    EXPECT_EQ(received.bytes, receive(packets_).bytes);
}

TEST_P(Fec, CountsMissingFecPackets)
{
    std::vector<Arrival> packets;
    std::uint64_t seen[2] = {0, 0};
    std::uint64_t removed[2] = {0, 0};
    for (std::size_t i = 0; i < packets_.size(); ++i)
    {
        const Arrival& packet = packets_[i];
        if (packet.channel != Channel::media)
        {
            const int row = packet.channel == Channel::row_fec ? 1 : 0;
            // Not the last ones: that something is missing at the end does not show.
            if (++seen[row] % 4 == 2 && i + 100 < packets_.size())
            {
                ++removed[row];
                continue;
            }
        }
        packets.push_back(packet);
    }
    const auto counts = receive(packets).counts;
    EXPECT_EQ(counts.missing_column, removed[0]);
    EXPECT_EQ(counts.missing_row, removed[1]);
    EXPECT_EQ(counts.missing, 0U);
    ASSERT_GT(removed[0], 0U);
}

INSTANTIATE_TEST_SUITE_P(All, Fec, testing::ValuesIn(cases), [](const auto& parameter) { return std::string(parameter.param.name); });

TEST(FecOfACapture, RecoversWhatCanBe)
{
    const auto packets = read_capture("rtp-fec.pcap");
    const auto sequences = media_of(packets);
    for (unsigned seed = 0; seed < 60; ++seed)
    {
        std::mt19937 random(seed);
        std::set<std::uint16_t> removed;
        const std::size_t burst = 1 + random() % 8;
        for (int k = 0; k < 4; ++k)
        {
            const std::size_t begin = 1 + random() % (sequences.size() - 10);
            for (std::size_t i = begin; i < std::min(begin + burst, sequences.size() - 1); ++i) removed.insert(sequences[i]);
        }
        SCOPED_TRACE(seed);
        expect_as_allowed(packets, removed);
    }
}

TEST(FecOfACapture, RepairedStreamHasNoOtherFault)
{
    auto packets = read_capture("rtp-fec.pcap");
    const auto sequences = media_of(packets);
    // A burst of five, as many as the columns, and a single packet in another matrix.
    std::set<std::uint16_t> removed(sequences.begin() + 60, sequences.begin() + 65);
    removed.insert(sequences[120]);
    const auto chain = run(without_media(packets, removed));
    const Faults expected = {{"tdemux.lost_rtp_segments", 6}, {"tdemux.fec.missing_packets", 6}, {"tdemux.fec.recovered_packets", 6}};
    EXPECT_EQ(faults_of(chain->records()), expected);
}

TEST(Rtp, CountsWhatIsLostWithoutFec)
{
    const auto packets = media_packets(65000);
    const auto sequences = media_of(packets);
    std::set<std::uint16_t> removed = {sequences[30], sequences[31], sequences[200]};
    removed.insert(sequences.begin() + 300, sequences.begin() + 340);
    const auto counts = receive(without_media(packets, removed)).counts;
    EXPECT_EQ(counts.missing, 43U);
    EXPECT_EQ(counts.lost, 43U);
    EXPECT_EQ(counts.recovered, 0U);
}

/** The ports that FEC would have are those of other streams as well. */
TEST(Rtp, LeavesOtherStreamsAlone)
{
    const auto own = media_packets(1000);
    const auto others = rtp(datagrams(repeat(read_stream("h264i-mp2.ts"), 2)), 65'000);
    std::vector<Arrival> packets;
    for (std::size_t i = 0; i < own.size(); ++i)
    {
        packets.push_back(own[i]);
        for (const Channel channel : {Channel::column_fec, Channel::row_fec})
            packets.push_back({.channel = channel, .moment = own[i].moment, .bytes = others[i % others.size()].bytes});
    }
    const auto counts = receive(packets).counts;
    EXPECT_EQ(counts.media, own.size());
    EXPECT_EQ(counts.column_fec + counts.row_fec + counts.invalid + counts.missing, 0U);
    EXPECT_EQ(faults_of(run(packets)->records()), faults_of(run(own)->records()));
}

TEST(Rtp, IsNotDisturbedByRtcp)
{
    auto packets = media_packets(60'000);
    const std::size_t media = packets.size();
    // A sender report, and a source description behind it (RFC 3550, 6.4.1 and 6.5).
    const Bytes report = {0x80, 200, 0, 6, 1, 2, 3, 4,    0xe8, 0,   0, 0, 0, 0, 0, 0, 0, 0, 0,   0,
                          0,    0,   0, 1, 0, 0, 5, 0x24, 0x81, 202, 0, 2, 1, 2, 3, 4, 1, 1, 's', 0};
    for (std::size_t at = 30; at < packets.size(); at += 30)
        packets.insert(packets.begin() + static_cast<std::ptrdiff_t>(at),
                       {.channel = Channel::media, .moment = packets[at].moment, .bytes = report});
    const auto counts = receive(packets).counts;
    EXPECT_EQ(counts.media, media);
    EXPECT_EQ(counts.missing + counts.invalid, 0U);
}

TEST(Rtp, FollowsASenderThatBeginsAnew)
{
    auto packets = media_packets(1000);
    packets.resize(100);
    auto again = media_packets(30000);
    again.resize(100);
    packets.insert(packets.end(), again.begin(), again.end());
    const auto counts = receive(packets).counts;
    // The first packet from elsewhere might be a stray and is passed over.
    EXPECT_EQ(counts.media, 199U);
    EXPECT_EQ(counts.missing, 0U);
}

} // namespace

} // namespace softdec_tests
