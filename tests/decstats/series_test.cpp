// Capture files played back: which snapshot is seen when.
#include <gtest/gtest.h>

#include <chrono>
#include <vector>

#include "capture_writer.h"
#include "failure.h"
#include "sample.h"
#include "scratch_directory.h"
#include "series.h"

namespace
{

using std::chrono::nanoseconds;
using std::chrono::seconds;

constexpr std::int64_t start = 1'800'000'000;

/** A capture of snapshots at some moments [s after the start]. */
std::string capture_of(const ScratchDirectory& directory, const std::vector<std::int64_t>& moments)
{
    const std::string path = directory / "moments.dcap";
    capture::Writer writer(path);
    for (const std::int64_t moment : moments) writer.append(sources::sample("idle", (start + moment) * 1'000'000'000));
    writer.finish();
    return path;
}

/** The moments that looks see [s after the start]. */
std::vector<std::int64_t> seen(sources::Series& series, nanoseconds step)
{
    std::vector<std::int64_t> moments;
    for (auto sight = series.next({}); sight; sight = series.next(step))
        moments.push_back(sight->snapshot->taken_at / 1'000'000'000 - start);
    return moments;
}

std::vector<std::int64_t> played(const std::vector<std::int64_t>& moments, nanoseconds step)
{
    const ScratchDirectory directory;
    return seen(*sources::open_playback(capture_of(directory, moments)), step);
}

using Moments = std::vector<std::int64_t>;

} // namespace

TEST(Playback, LooksAtTheLastSnapshotOfTheMoment)
{
    EXPECT_EQ(played({0, 1, 2, 3}, seconds(1)), (Moments{0, 1, 2, 3}));
    EXPECT_EQ(played({0, 1, 2, 3, 4}, seconds(2)), (Moments{0, 2, 4}));
    EXPECT_EQ(played({0, 1, 2, 3, 4, 5}, seconds(2)), (Moments{0, 2, 4, 5}));
    EXPECT_EQ(played({0, 2, 4}, seconds(1)), (Moments{0, 0, 2, 2, 4}));
    EXPECT_EQ(played({7}, seconds(1)), (Moments{7}));
}

TEST(Playback, SkipsWhatWasNotCapturedForMoreThanAMinute)
{
    EXPECT_EQ(played({0, 10, 86'400, 86'410}, seconds(10)), (Moments{0, 10, 86'400, 86'410}));
    EXPECT_EQ(played({0, 60, 120}, seconds(60)), (Moments{0, 60, 120}));
}

TEST(Playback, GoesOnWhereTheClockWasSetBack)
{
    EXPECT_EQ(played({3600, 3601, 10, 11, 12}, seconds(1)), (Moments{3600, 3601, 10, 11, 12}));
}

TEST(Playback, OfAPart)
{
    const ScratchDirectory directory;
    const std::string path = capture_of(directory, {0, 1, 2, 3, 4, 5});
    EXPECT_EQ(seen(*sources::open_playback(path, {(start + 2) * 1'000'000'000, (start + 4) * 1'000'000'000}), seconds(1)),
              (Moments{2, 3, 4}));
    EXPECT_THROW(sources::open_playback(path, {(start + 6) * 1'000'000'000, {}}), files::Failure);
    EXPECT_THROW(sources::open_playback(directory / "none"), files::Failure);
}
