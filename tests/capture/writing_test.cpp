// How captures go on, and what they mark.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "capture_error.h"
#include "captured.h"
#include "expectations.h"

namespace
{

using capture::GapCause;
using capture::Problem;
using capture::Writer;

std::vector<records::Snapshot> part(const std::vector<records::Snapshot>& all, std::size_t first, std::size_t count)
{
    return {all.begin() + static_cast<std::ptrdiff_t>(first), all.begin() + static_cast<std::ptrdiff_t>(first + count)};
}

TEST(Writing, ACaptureThatEndedGoesOnBehindAGap)
{
    const ScratchDirectory directory;
    const auto snapshots = Living("live-srt-1080i").snapshots(100);
    capture_all(directory / "a", part(snapshots, 0, 40));
    capture_all(directory / "a", part(snapshots, 50, 50));
    const Held held = held_in(directory / "a");
    auto expected = part(snapshots, 0, 40);
    for (const auto& snapshot : part(snapshots, 50, 50)) expected.push_back(snapshot);
    expect_same(held.snapshots, expected);
    expect_sound(held);
    ASSERT_EQ(held.gaps.size(), 1u);
    EXPECT_EQ(held.gaps[0].cause, GapCause::stopped);
    EXPECT_EQ(held.gaps[0].from, noon + 39 * second);
    EXPECT_EQ(held.gaps[0].to, noon + 50 * second);
    EXPECT_EQ(held.ends, 2u);
}

TEST(Writing, ACaptureThatWasCutOffGoesOnBehindAGap)
{
    const ScratchDirectory directory;
    const auto snapshots = Living("live-srt-1080i").snapshots(10);
    {
        Writer writer(directory / "a");
        append_all(writer, part(snapshots, 0, 5));
    }
    capture_all(directory / "a", part(snapshots, 5, 5));
    const Held held = held_in(directory / "a");
    expect_same(held.snapshots, snapshots);
    ASSERT_EQ(held.gaps.size(), 1u);
    EXPECT_EQ(held.gaps[0].cause, GapCause::cut_off);
    EXPECT_EQ(held.ends, 1u);
}

TEST(Writing, ARestartIsMarked)
{
    const ScratchDirectory directory;
    auto snapshots = Living("live-srt-1080i").snapshots(4);
    const records::Instance first = *snapshots[0].instance;
    const records::Instance second_one = {.id = {9}, .started_at = noon + 2 * second};
    snapshots[2].instance = snapshots[3].instance = second_one;
    capture_all(directory / "a", snapshots);
    const Held held = held_in(directory / "a");
    expect_same(held.snapshots, snapshots);
    ASSERT_EQ(held.restarts.size(), 1u);
    EXPECT_EQ(held.restarts[0].moment, noon + 2 * second);
    EXPECT_EQ(held.restarts[0].before, first);
    EXPECT_EQ(held.restarts[0].after, second_one);
}

TEST(Writing, ARestartBetweenTwoCapturesIsMarked)
{
    const ScratchDirectory directory;
    auto snapshots = Living("live-srt-1080i").snapshots(2);
    snapshots[1].instance->id = {7};
    capture_all(directory / "a", part(snapshots, 0, 1));
    capture_all(directory / "a", part(snapshots, 1, 1));
    const Held held = held_in(directory / "a");
    ASSERT_EQ(held.restarts.size(), 1u);
    EXPECT_EQ(held.restarts[0].after->id, snapshots[1].instance->id);
    EXPECT_EQ(held.gaps.size(), 1u);
}

TEST(Writing, MarkedGapsStandBeforeTheNextSnapshot)
{
    const ScratchDirectory directory;
    const auto snapshots = Living("live-srt-1080i").snapshots(4);
    Writer writer(directory / "a");
    writer.append(snapshots[0]);
    writer.mark_gap(GapCause::no_source, "studio-1: stale");
    writer.mark_gap(GapCause::late, "");
    writer.append(snapshots[2]);
    writer.append(snapshots[3]);
    const Held held = held_in(directory / "a");
    ASSERT_EQ(held.gaps.size(), 1u);
    EXPECT_EQ(held.gaps[0].cause, GapCause::no_source);
    EXPECT_EQ(held.gaps[0].text, "studio-1: stale");
    EXPECT_EQ(held.gaps[0].from, noon);
    EXPECT_EQ(held.gaps[0].to, noon + 2 * second);
    EXPECT_EQ(held.snapshots.size(), 3u);
}

TEST(Writing, AnotherDecoderIsRefused)
{
    const ScratchDirectory directory;
    auto snapshots = Living("idle").snapshots(2);
    capture_all(directory / "a", part(snapshots, 0, 1));
    const std::string before = content_of(directory / "a");
    snapshots[1].decoder = "studio-2";
    {
        Writer writer(directory / "a");
        try
        {
            writer.append(snapshots[1]);
            ADD_FAILURE() << "was appended";
        }
        catch (const capture::Error& error)
        {
            EXPECT_EQ(error.problem(), Problem::other_decoder);
            EXPECT_EQ(std::string(error.what()),
                      directory / "a" + ": holds the snapshots of decoder 'studio-1', and these are of 'studio-2'");
        }
        writer.finish();
    }
    EXPECT_EQ(content_of(directory / "a"), before);
}

/** The failure of opening a file to capture into it. */
std::string refusal(const std::string& path, Problem problem)
{
    try
    {
        const Writer writer(path);
    }
    catch (const capture::Error& error)
    {
        EXPECT_EQ(error.problem(), problem) << error.what();
        return std::string(error.what()).substr(path.size());
    }
    return "";
}

TEST(Writing, WhatIsNoCaptureFileIsLeftAlone)
{
    const ScratchDirectory directory;
    for (const std::string content : {"x", "a text of some length, which is no capture file"})
    {
        const std::string path = directory.write("text", content);
        EXPECT_EQ(refusal(path, Problem::unreadable), ": not a capture file");
        EXPECT_EQ(content_of(path), content);
    }
    EXPECT_EQ(refusal(directory / "missing/a", Problem::unwritable), ": No such file or directory");
    EXPECT_EQ(refusal(directory.path(), Problem::unwritable), ": Is a directory");
    ASSERT_EQ(mkfifo((directory / "fifo").c_str(), 0600), 0);
    EXPECT_EQ(refusal(directory / "fifo", Problem::unwritable), ": not a regular file");
}

TEST(Writing, ASecondWriterIsRefused)
{
    const ScratchDirectory directory;
    const auto snapshots = Living("idle").snapshots(3);
    Writer writer(directory / "a");
    EXPECT_EQ(refusal(directory / "a", Problem::in_use), ": another process captures into it"); // also before the first snapshot
    writer.append(snapshots[0]);
    EXPECT_EQ(refusal(directory / "a", Problem::in_use), ": another process captures into it");
    writer.append(snapshots[1]);
    writer.finish();
    const Held held = held_in(directory / "a");
    EXPECT_EQ(held.snapshots.size(), 2u);
    expect_sound(held);
}

TEST(Writing, NothingIsLeftOfACaptureWithoutASnapshot)
{
    const ScratchDirectory directory;
    {
        Writer writer(directory / "a");
        writer.finish();
    }
    EXPECT_TRUE(directory.names().empty());
}

TEST(Writing, ASnapshotIsOneWholeSnapshotAMinute)
{
    const ScratchDirectory directory;
    capture_all(directory / "a", Living("live-srt-1080i").snapshots(600));
    capture::FrameReader frames(directory / "a");
    ASSERT_EQ(frames.start(), capture::Start::good);
    std::size_t whole = 0;
    std::size_t changes = 0;
    for (auto part_of_file = frames.next(); part_of_file.kind != capture::FrameReader::Part::Kind::end; part_of_file = frames.next())
    {
        whole += part_of_file.type == capture::FrameType::whole;
        changes += part_of_file.type == capture::FrameType::change;
    }
    EXPECT_EQ(whole, 10u);
    EXPECT_EQ(changes, 590u);
}

} // namespace
