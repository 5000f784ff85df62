/* Files of transport stream packets as recorders, disc writers and receivers of broadcasts leave them. */
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <unistd.h>

#include "faults.h"
#include "input/file_source.h"
#include "packets.h"

namespace softdec_tests
{

namespace
{

/** A file that is gone when the test is over. */
class Written
{
public:
    explicit Written(const Bytes& bytes)
    {
        std::ofstream(path_, std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    }
    ~Written() { std::filesystem::remove(path_); }
    Written(const Written&) = delete;
    Written& operator=(const Written&) = delete;

    const std::string& path() const { return path_; }

private:
    const std::string path_ =
        testing::TempDir() + testing::UnitTest::GetInstance()->current_test_info()->name() + std::to_string(getpid()) + ".ts";
};

std::unique_ptr<softdec::Chain> run_written(const Bytes& bytes)
{
    const Written file(bytes);
    softdec::FileSource source(file.path());
    auto chain = std::make_unique<softdec::Chain>(
        softdec::Chain::Settings{.has_arrivals = false, .decode = true, .live = false, .start = beginning});
    softdec::Datagram datagram;
    while (source.next(datagram) == softdec::Source::Result::datagram) chain->take(datagram, {});
    chain->finish();
    return chain;
}

/** Expects a clean stream of so many packets fewer than another one. */
void expect_clean(softdec::Chain& chain, softdec::Chain& plain, std::uint64_t fewer = 0)
{
    EXPECT_EQ(faults_of(chain.records()), Faults{});
    EXPECT_EQ(chain.records().tdemux.tCounters.nNumReceivedPackets + fewer, plain.records().tdemux.tCounters.nNumReceivedPackets);
    if (fewer != 0) return;
    EXPECT_EQ(+chain.records().vdecoder.tCounters.nNumDisplayedOutputFrames, +plain.records().vdecoder.tCounters.nNumDisplayedOutputFrames);
    EXPECT_EQ(+chain.records().audio.nOutputFrames, +plain.records().audio.nOutputFrames);
}

/** Puts bytes in front of each packet and behind it. */
template <typename Before> Bytes between(const Bytes& stream, Before before, std::size_t behind)
{
    Bytes bytes;
    for (std::size_t at = 0; at < stream.size(); at += ts_size)
    {
        const Bytes front = before(at / ts_size);
        bytes.insert(bytes.end(), front.begin(), front.end());
        bytes.insert(bytes.end(), stream.begin() + static_cast<std::ptrdiff_t>(at),
                     stream.begin() + static_cast<std::ptrdiff_t>(at + ts_size));
        for (std::size_t i = 0; i < behind; ++i) bytes.push_back(static_cast<std::uint8_t>(at * 31 + i * 7));
    }
    return bytes;
}

class FileInput : public testing::Test
{
protected:
    Bytes stream_ = read_stream("h264-aac.ts");
    std::unique_ptr<softdec::Chain> plain_ = run_file(stream_);
};

TEST_F(FileInput, IsReadInPlainPackets)
{
    expect_clean(*run_written(stream_), *plain_);
}

TEST_F(FileInput, IsReadWithArrivalTimesInFrontOfPackets)
{
    // The upper bytes of the times look like sync bytes, each for some packets.
    for (const std::uint32_t first : {0U, 0x47000000U, 0x00470000U, 0x47470000U})
    {
        SCOPED_TRACE(first);
        const auto chain = run_written(between(
            stream_,
            [first](std::size_t number)
            {
                const auto time = static_cast<std::uint32_t>(first + number * 8100);
                return Bytes{static_cast<std::uint8_t>(time >> 24), static_cast<std::uint8_t>(time >> 16),
                             static_cast<std::uint8_t>(time >> 8), static_cast<std::uint8_t>(time)};
            },
            0));
        expect_clean(*chain, *plain_);
    }
}

TEST_F(FileInput, IsReadWithCheckBytesBehindPackets)
{
    expect_clean(*run_written(between(
                     stream_, [](std::size_t) { return Bytes{}; }, 16)),
                 *plain_);
}

TEST_F(FileInput, MayBeginAndEndWithinAPacket)
{
    const Bytes piece(stream_.begin() + 100, stream_.end());
    expect_clean(*run_written(piece), *plain_, 1);
    Bytes both(stream_.begin() + 100, stream_.end() - 70);
    expect_clean(*run_written(both), *plain_, 2);
}

TEST_F(FileInput, MayHaveSomethingElseInFront)
{
    Bytes bytes(5000);
    for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<std::uint8_t>(i % 50 == 0 ? 0x47 : i * 13);
    bytes.insert(bytes.end(), stream_.begin(), stream_.end());
    expect_clean(*run_written(bytes), *plain_);
}

TEST_F(FileInput, LosesWhatIsDamagedInIt)
{
    // A hundred bytes too many between packets with check bytes: one place that holds no packet.
    Bytes bytes = between(
        stream_, [](std::size_t) { return Bytes{}; }, 16);
    bytes.insert(bytes.begin() + 600 * 204, 100, 0x11);
    const auto chain = run_written(bytes);
    EXPECT_EQ(faults_of(chain->records()), (Faults{{"tdemux.corrupted_ts_frames", 1}}));
}

TEST_F(FileInput, IsRefusedWithoutPackets)
{
    for (const Bytes& bytes : {Bytes{}, Bytes(100'000, 0x11), Bytes(stream_.begin() + 1, stream_.begin() + 188)})
    {
        const Written file(bytes);
        try
        {
            softdec::FileSource source(file.path());
            ADD_FAILURE() << "a transport stream in " << bytes.size() << " bytes";
        }
        catch (const softdec::InputError& error)
        {
            EXPECT_EQ(error.what(), file.path() + ": no MPEG transport stream found: packets of 188, 192 or 204 bytes expected");
        }
    }
}

TEST(NetworkInput, IsReadWithCheckBytesBehindPackets)
{
    auto arrivals = datagrams(read_stream("h264-aac.ts"));
    for (Arrival& arrival : arrivals)
        arrival.bytes = between(
            arrival.bytes, [](std::size_t) { return Bytes{}; }, 16);
    const auto plain = run(datagrams(read_stream("h264-aac.ts")));
    expect_clean(*run(arrivals), *plain);
    expect_clean(*run(rtp(arrivals)), *plain);
}

} // namespace

} // namespace softdec_tests
