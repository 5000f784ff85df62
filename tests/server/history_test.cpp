#include "history.h"

#include <gtest/gtest.h>
#include <vector>

#include "captured.h"

using records::Snapshot;
using server::History;

namespace
{

constexpr std::int64_t start = noon;

/** What a living decoder is in each of its first seconds. */
const Snapshot& at(int i)
{
    static const std::vector<Snapshot> all = Living("live-srt-1080i").snapshots(300);
    return all.at(static_cast<std::size_t>(i));
}

std::vector<Snapshot> read(const History& history, std::int64_t from, std::int64_t to)
{
    std::vector<Snapshot> all;
    history.read(from, to, [&](const Snapshot& snapshot) { all.push_back(snapshot); });
    return all;
}

bool is_same(const Snapshot& one, const Snapshot& other)
{
    return differences(one, other).empty();
}

TEST(History, GivesBackEverySnapshotToTheBit)
{
    History history;
    for (int i = 0; i < 150; ++i) history.add(at(i));
    const std::vector<Snapshot> all = read(history, 0, start + 1000 * second);
    ASSERT_EQ(all.size(), 150U);
    for (int i = 0; i < 150; ++i) EXPECT_TRUE(is_same(all[static_cast<std::size_t>(i)], at(i))) << i;
    EXPECT_EQ(history.first_moment(), start);
}

TEST(History, GivesATimeWithBothItsEnds)
{
    History history;
    for (int i = 0; i < 150; ++i) history.add(at(i));
    const std::vector<Snapshot> some = read(history, start + 58 * second, start + 62 * second);
    ASSERT_EQ(some.size(), 5U);
    for (int i = 0; i < 5; ++i) EXPECT_TRUE(is_same(some[static_cast<std::size_t>(i)], at(58 + i))) << i;
    EXPECT_TRUE(read(history, start + 62 * second + 1, start + 63 * second - 1).empty());
    EXPECT_TRUE(read(history, start + 150 * second, start + 200 * second).empty());
}

TEST(History, KeepsWhatDiffersBetweenTheHosts)
{
    History history;
    Snapshot first = at(0);
    Snapshot second_run = at(1);
    second_run.instance->id = {2};
    second_run.not_measured.set(5);
    Snapshot with_less = at(2);
    with_less.instance = second_run.instance;
    with_less.present.reset(1);
    for (const Snapshot& snapshot : {first, second_run, with_less}) history.add(snapshot);
    const std::vector<Snapshot> all = read(history, 0, start + 10 * second);
    ASSERT_EQ(all.size(), 3U);
    EXPECT_TRUE(is_same(all[0], first));
    EXPECT_TRUE(is_same(all[1], second_run));
    EXPECT_TRUE(is_same(all[2], with_less));
}

TEST(History, BeginsAnewWhereTheClockWasSetBack)
{
    History history;
    for (const int i : {10, 11, 12, 5}) history.add(at(i));
    const std::vector<Snapshot> all = read(history, 0, start + 100 * second);
    ASSERT_EQ(all.size(), 1U);
    EXPECT_TRUE(is_same(all[0], at(5)));
}

TEST(History, DropsWhatIsTooOldOrTooMuchByTheMinute)
{
    History history;
    for (int i = 0; i < 300; ++i) history.add(at(i));
    const std::size_t whole = history.size();
    EXPECT_LT(whole, 300U * 400U);
    history.trim(start + 100 * second, whole);
    EXPECT_EQ(history.first_moment(), start + 60 * second);
    history.trim(start, whole / 2);
    EXPECT_LE(history.size(), whole / 2);
    const std::vector<Snapshot> rest = read(history, 0, start + 1000 * second);
    ASSERT_FALSE(rest.empty());
    EXPECT_TRUE(is_same(rest.back(), at(299)));
    EXPECT_TRUE(is_same(rest.front(), at(static_cast<int>(300 - rest.size()))));
    history.trim(start, 0);
    EXPECT_FALSE(read(history, 0, start + 1000 * second).empty()) << "the present minute stays";
}

TEST(History, OfNothingIsNothing)
{
    History history;
    history.trim(start, 0);
    EXPECT_EQ(history.size(), 0U);
    EXPECT_FALSE(history.first_moment());
    EXPECT_TRUE(read(history, 0, start).empty());
}

} // namespace
