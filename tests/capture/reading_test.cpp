// What is captured is read again: all of it, one moment of it, or a time.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "capture_error.h"
#include "captured.h"
#include "expectations.h"

namespace
{

using capture::Reader;
using capture::Writer;

TEST(Reading, EveryFieldOfEveryScenarioComesBack)
{
    for (const char* scenario : {"live-srt-1080i", "rtp-fec-2160p", "trouble", "resolving", "idle", "extreme"})
    {
        const ScratchDirectory directory;
        const auto snapshots = Living(scenario).snapshots(150);
        capture_all(directory / "a", snapshots);
        const Held held = held_in(directory / "a");
        expect_same(held.snapshots, snapshots);
        expect_sound(held);
        EXPECT_EQ(held.ends, 1u);
        EXPECT_TRUE(held.gaps.empty() && held.restarts.empty());
    }
}

TEST(Reading, WhatASnapshotLacksComesBack)
{
    const ScratchDirectory directory;
    records::Snapshot snapshot = Living("trouble").snapshot();
    snapshot.not_measured.set(3);
    snapshot.not_measured.set(700);
    std::vector<records::Snapshot> snapshots = {snapshot};
    snapshot.taken_at += second;
    snapshot.not_measured.reset(700);
    snapshots.push_back(snapshot);
    snapshot.taken_at += second;
    snapshots.push_back(only("tdemux", snapshot));
    snapshots.back().not_measured = snapshot.not_measured;
    snapshot.taken_at += second;
    snapshots.push_back(only("usage", snapshot));
    snapshots.back().not_measured.reset(); // what is said of a record that is not here is not kept
    snapshots.back().instance.reset();
    snapshots.back().host.clear();
    capture_all(directory / "a", snapshots);
    const Held held = held_in(directory / "a");
    expect_same(held.snapshots, snapshots);
    expect_sound(held);
    EXPECT_TRUE(held.restarts.empty()); // an instance that is not known is not another
}

TEST(Reading, MomentsToTheNanosecondInAnyInterval)
{
    const ScratchDirectory directory;
    std::vector<records::Snapshot> snapshots;
    records::Snapshot snapshot = only("usage", Living("idle").snapshot());
    for (const std::int64_t step :
         {std::int64_t{1}, second, second + 7, second - 123'456, minute - 1, minute, minute + 1, 86400 * second, std::int64_t{0}})
    {
        snapshot.taken_at += step;
        snapshots.push_back(snapshot);
    }
    capture_all(directory / "a", snapshots);
    expect_same(held_in(directory / "a").snapshots, snapshots);
}

TEST(Reading, AnyMomentIsFound)
{
    const ScratchDirectory directory;
    const auto snapshots = Living("live-srt-1080i").snapshots(200);
    capture_all(directory / "a", snapshots);
    Reader reader(directory / "a");
    for (std::size_t i = 0; i < snapshots.size(); i += 7)
        for (const std::int64_t later : {std::int64_t{0}, std::int64_t{1}, second - 1})
        {
            const auto found = reader.at(snapshots[i].taken_at + later);
            ASSERT_TRUE(found);
            EXPECT_EQ(differences(found->snapshot, snapshots[i]), std::vector<std::string>());
            EXPECT_FALSE(found->loss);
        }
    EXPECT_FALSE(reader.at(noon - 1));
    EXPECT_EQ(reader.at(noon + 1000 * minute)->snapshot.taken_at, snapshots.back().taken_at);
    EXPECT_EQ(reader.last()->snapshot.taken_at, snapshots.back().taken_at);
    reader.rewind();
    expect_same(rest_of(reader).snapshots, snapshots);
}

TEST(Reading, ATimeIsSelected)
{
    const ScratchDirectory directory;
    const auto snapshots = Living("live-srt-1080i").snapshots(400);
    capture_all(directory / "a", snapshots);
    Reader reader(directory / "a");
    const auto select = [&](std::int64_t from, std::int64_t to)
    {
        reader.select(noon + from * second, noon + to * second);
        std::vector<std::int64_t> moments;
        for (const records::Snapshot& snapshot : rest_of(reader).snapshots) moments.push_back((snapshot.taken_at - noon) / second);
        return moments;
    };
    using Moments = std::vector<std::int64_t>;
    EXPECT_EQ(select(58, 62), (Moments{58, 59, 60, 61, 62}));
    EXPECT_EQ(select(60, 60), Moments{60});
    EXPECT_EQ(select(-10, 1), (Moments{0, 1}));
    EXPECT_EQ(select(398, 1000), (Moments{398, 399}));
    EXPECT_EQ(select(1000, 2000), Moments());
    EXPECT_EQ(select(-20, -10), Moments());
    EXPECT_EQ(select(10, 5), Moments());
    EXPECT_EQ(select(0, 399).size(), 400u);
}

TEST(Reading, ALaterWritingOfAMomentIsFoundWhereTheClockWasSetBack)
{
    const ScratchDirectory directory;
    auto before = Living("live-srt-1080i").snapshots(300);
    auto after = Living("live-srt-1080i", noon + 100 * second + second / 2).snapshots(90);
    for (auto& snapshot : after) snapshot.records.usage.nNumStarts = 4711; // to tell it from the first
    Writer writer(directory / "a");
    append_all(writer, before);
    append_all(writer, after);
    writer.finish();

    Reader reader(directory / "a");
    const auto starts = [&](std::int64_t at) { return reader.at(noon + at * second)->snapshot.records.usage.nNumStarts == 4711; };
    EXPECT_FALSE(starts(50));
    EXPECT_FALSE(starts(100));
    EXPECT_TRUE(starts(101));
    EXPECT_TRUE(starts(189));
    EXPECT_FALSE(starts(299));
    EXPECT_EQ(reader.last()->snapshot.taken_at, after.back().taken_at);

    reader.rewind();
    const Held held = rest_of(reader);
    before.insert(before.end(), after.begin(), after.end());
    expect_same(held.snapshots, before);
    expect_sound(held);
    ASSERT_EQ(held.gaps.size(), 1u);
    EXPECT_EQ(held.gaps[0].cause, capture::GapCause::clock_changed);
    EXPECT_EQ(held.gaps[0].from, noon + 299 * second);
    EXPECT_EQ(held.gaps[0].to, after.front().taken_at);
}

TEST(Reading, AFileThatGrowsIsFollowed)
{
    const ScratchDirectory directory;
    const auto snapshots = Living("live-srt-1080i").snapshots(130);
    capture_all(directory / "whole", snapshots);
    const std::string whole = content_of(directory / "whole");

    const int file = open((directory / "a").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    ASSERT_GE(file, 0);
    std::size_t written = sizeof(capture::FileHeader);
    ASSERT_EQ(write(file, whole.data(), written), static_cast<ssize_t>(written));
    Reader reader(directory / "a");
    std::vector<records::Snapshot> found;
    for (std::size_t step = 1; written < whole.size(); step = step * 7 % 1009)
    {
        const std::size_t size = std::min(step, whole.size() - written);
        ASSERT_EQ(write(file, whole.data() + written, size), static_cast<ssize_t>(size));
        written += size;
        const Held held = rest_of(reader);
        EXPECT_TRUE(held.losses.empty());
        found.insert(found.end(), held.snapshots.begin(), held.snapshots.end());
    }
    close(file);
    expect_same(found, snapshots);
    EXPECT_EQ(reader.tail(), 0u);
}

TEST(Reading, WhatIsNoCaptureFileIsSaid)
{
    const ScratchDirectory directory;
    const auto message = [&](const std::string& path) -> std::string
    {
        try
        {
            const Reader reader(path);
        }
        catch (const capture::Error& error)
        {
            EXPECT_EQ(error.problem(), capture::Problem::unreadable);
            return std::string(error.what()).substr(path.size());
        }
        return "";
    };
    EXPECT_EQ(message(directory / "missing"), ": No such file or directory");
    EXPECT_EQ(message(directory.path()), ": not a regular file");
    EXPECT_EQ(message("/dev/null"), ": not a regular file");
    EXPECT_EQ(message(directory.write("empty", "")), ": empty");
    EXPECT_EQ(message(directory.write("text", "some text that is longer than a header of a file")), ": not a capture file");

    capture_all(directory / "a", Living("idle").snapshots(1));
    std::string bytes = content_of(directory / "a");
    EXPECT_TRUE(Reader::is_capture(directory / "a"));
    EXPECT_FALSE(Reader::is_capture(directory / "text"));
    EXPECT_FALSE(Reader::is_capture(directory / "missing"));
    capture::FileHeader header = capture::file_header();
    header.version = 2;
    header.crc = capture::crc_of(std::as_bytes(std::span(&header, 1)).first(20));
    std::memcpy(bytes.data(), &header, sizeof header);
    EXPECT_EQ(message(directory.write("newer", bytes)), ": a capture file of a version that this program does not read");
}

} // namespace
