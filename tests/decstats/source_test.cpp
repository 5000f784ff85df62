// What a SOURCE may be.
#include <gtest/gtest.h>

#include <cstring>
#include <ctime>
#include <span>
#include <string>

#include "failure.h"
#include "record_files.h"
#include "sample.h"
#include "scratch_directory.h"
#include "source.h"

namespace
{

constexpr std::int64_t moment = 1'654'531'615'250'000'000;

/** The one line with which taking a Snapshot fails. */
std::string failure_of(const std::string& source, const std::optional<sources::At>& at = {})
{
    try
    {
        sources::take({source}, at);
    }
    catch (const files::Failure& failure)
    {
        EXPECT_EQ(failure.status(), files::ExitStatus::input_failed);
        return failure.what();
    }
    return "no failure";
}

void expect_same_records(const records::Snapshot& one, const records::Snapshot& other)
{
    EXPECT_EQ(one.present, other.present);
    EXPECT_EQ(std::memcmp(&one.records, &other.records, sizeof(one.records)), 0);
}

} // namespace

TEST(Source, ASampleAtAMoment)
{
    const records::Snapshot snapshot = sources::take({"sample:trouble"}, sources::At{moment});
    EXPECT_EQ(snapshot.taken_at, moment);
    EXPECT_TRUE(snapshot.present.all());
    EXPECT_EQ(snapshot.decoder, "");
    expect_same_records(snapshot, sources::sample("trouble", moment));
}

TEST(Source, ASampleWithoutAMomentIsOfNow)
{
    const std::int64_t before = sources::present_moment();
    const std::int64_t taken = sources::take({"sample:idle"}, {}).taken_at;
    EXPECT_LE(before, taken);
    EXPECT_LE(taken, sources::present_moment());
    EXPECT_NEAR(static_cast<double>(taken) / 1e9, static_cast<double>(std::time(nullptr)), 2);
}

TEST(Source, ASampleThatIsNotKnown)
{
    EXPECT_EQ(failure_of("sample:storm"), "sample 'storm' is not known");
    EXPECT_EQ(failure_of("sample:idle", sources::At{}), "sample:idle: is no file, so it has no mtime for --at");
}

TEST(Source, ADirectoryIsItsRecords)
{
    const ScratchDirectory directory;
    const records::Snapshot sample = sources::sample("trouble", moment);
    sources::write_record_files(sample, directory.path());
    directory.write("notes.txt", "no record");
    directory.write(".usage.rec.Xyz123", "left behind");
    const records::Snapshot snapshot = sources::take({directory.path()}, sources::At{moment});
    EXPECT_EQ(snapshot.taken_at, moment);
    expect_same_records(snapshot, sample);
}

TEST(Source, ADirectoryOfSomeRecordsUnderOtherNames)
{
    const ScratchDirectory directory;
    const records::Snapshot sample = sources::sample("trouble", moment);
    sources::write_record_files(sample, directory.path());
    for (const std::string& name : directory.names())
        if (name != "audio.rec" && name != "tdemux.rec") std::filesystem::remove(directory / name);
    std::filesystem::rename(directory / "audio.rec", directory / "from-unit-7.rec");

    const records::Snapshot snapshot = sources::take({directory.path()}, sources::At{moment});
    EXPECT_EQ(snapshot.present.count(), 2U);
    for (const char* const name : {"audio", "tdemux"})
    {
        const records::Component& component = *records::find_component(name);
        ASSERT_TRUE(snapshot.has(component));
        EXPECT_TRUE(std::ranges::equal(snapshot.record(component), sample.record(component)));
    }
}

TEST(Source, ADirectoryStandsForWhenItsLastRecordWasWritten)
{
    const ScratchDirectory directory;
    sources::write_record_files(sources::sample("idle", moment), directory.path());
    const auto last = std::filesystem::last_write_time(directory / "audio.rec") + std::chrono::hours(1);
    std::filesystem::last_write_time(directory / "buffering.rec", last);
    const auto since_epoch = std::chrono::file_clock::to_sys(last).time_since_epoch();
    EXPECT_EQ(sources::take({directory.path()}, sources::At{}).taken_at,
              std::chrono::duration_cast<std::chrono::nanoseconds>(since_epoch).count());
}

TEST(Source, ADirectoryThatIsWrong)
{
    const ScratchDirectory directory;
    EXPECT_EQ(failure_of(directory.path()), directory.path() + ": no record file, *.rec");

    sources::write_record_files(sources::sample("idle", moment), directory.path());
    std::filesystem::copy_file(directory / "usage.rec", directory / "z.rec");
    EXPECT_EQ(failure_of(directory.path()), (directory / "z.rec") + ": a usage record, of which the directory has another");

    directory.write("z.rec", "xyz");
    EXPECT_EQ(failure_of(directory.path()), (directory / "z.rec") + ": 3 bytes, which is the size of no record");

    std::filesystem::rename(directory / "usage.rec", directory / "audio.rec");
    EXPECT_EQ(failure_of(directory.path()), (directory / "audio.rec") + ": " + std::to_string(sizeof(SMGR_DECODER_SDI_USAGE_STATS)) +
                                                " bytes, but an audio record has " + std::to_string(sizeof(SMGR_DECODER_AUDIO_STATS)));
}

TEST(Source, ARecordFileTellsItsComponentByItsSize)
{
    const ScratchDirectory directory;
    const records::Snapshot sample = sources::sample("trouble", moment);
    for (const records::Component& component : records::components())
    {
        const std::span<const std::byte> record = sample.record(component);
        const std::string file = directory.write("record", std::string(reinterpret_cast<const char*>(record.data()), record.size()));
        const records::Snapshot snapshot = sources::take({file}, sources::At{moment});
        EXPECT_EQ(snapshot.present, std::bitset<records::component_count>(1U << component.index)) << component.name;
        EXPECT_TRUE(std::ranges::equal(snapshot.record(component), record)) << component.name;
    }
    const std::string wrong = directory.write("wrong", std::string(100'000, '\0'));
    EXPECT_EQ(failure_of(wrong), wrong + ": 100000 bytes, which is the size of no record");
    EXPECT_EQ(failure_of(directory / "missing"), (directory / "missing") + ": No such file or directory");
}
