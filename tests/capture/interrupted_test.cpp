// Captures that are interrupted: by a signal that nobody can catch, by a limit, by a clock.

#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <random>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "capture_error.h"
#include "captured.h"
#include "expectations.h"

namespace
{

using capture::GapCause;
using capture::Writer;

TEST(Interrupted, KilledAtAnyMoment)
{
    const ScratchDirectory directory;
    const std::string path = directory / "a";
    const auto snapshots = Living("live-srt-1080i").snapshots(3000, second / 10);
    std::mt19937_64 random(1);
    std::size_t before = 0;
    for (int round = 0; round < 20; ++round)
    {
        const pid_t writer = fork();
        ASSERT_GE(writer, 0);
        if (writer == 0)
        {
            Writer capture(path);
            for (std::size_t i = 0;; ++i)
            {
                records::Snapshot snapshot = snapshots[i % snapshots.size()];
                snapshot.taken_at = noon + static_cast<std::int64_t>(before + i) * second;
                capture.append(snapshot);
            }
        }
        // Every second one is killed while it writes, however slow the machine is; the others at any moment.
        const auto size = [&] { return std::filesystem::exists(path) ? std::filesystem::file_size(path) : 0; };
        const std::uintmax_t size_before = size();
        while (round % 2 == 0 && size() <= size_before) usleep(100);
        usleep(static_cast<useconds_t>(random() % 12000));
        kill(writer, SIGKILL);
        ASSERT_EQ(waitpid(writer, nullptr, 0), writer);

        std::error_code missing;
        if (std::filesystem::file_size(path, missing) == 0 || missing) continue; // killed before the first
        const Held held = held_in(path);
        EXPECT_TRUE(held.losses.empty());
        EXPECT_GE(held.snapshots.size(), before);
        std::size_t next = 0; // since the last round began
        for (std::size_t i = 0; i < held.snapshots.size(); ++i)
        {
            ASSERT_EQ(held.snapshots[i].taken_at, noon + static_cast<std::int64_t>(i) * second);
            next = i < before ? 0 : next + 1;
        }
        if (!held.snapshots.empty() && next > 0)
        {
            records::Snapshot last = snapshots[(next - 1) % snapshots.size()];
            last.taken_at = held.snapshots.back().taken_at;
            EXPECT_EQ(differences(held.snapshots.back(), last), std::vector<std::string>());
        }
        before = held.snapshots.size();
    }
    EXPECT_GT(before, 0u);
    for (const capture::Gap& gap : held_in(path).gaps) EXPECT_EQ(gap.cause, GapCause::cut_off);
}

/** Runs something in a process of its own whose files may only grow to a size. @return its exit status */
template <typename Run> int with_limit(rlim_t size, const Run& run)
{
    const pid_t process = fork();
    if (process == 0)
    {
        signal(SIGXFSZ, SIG_IGN);
        const auto set = [](rlim_t limit)
        {
            const rlimit both = {limit, RLIM_INFINITY};
            setrlimit(RLIMIT_FSIZE, &both);
        };
        set(size);
        run(set);
        _exit(::testing::Test::HasFailure() ? 1 : 0);
    }
    int status = 0;
    waitpid(process, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 255;
}

TEST(Interrupted, ALimitIsReached)
{
    const auto snapshots = Living("live-srt-1080i").snapshots(20);
    const ScratchDirectory sizes;
    capture_all(sizes / "a", {snapshots[0], snapshots[1]});
    const rlim_t two = content_of(sizes / "a").size();
    for (rlim_t limit = two; limit < two + 1200; limit += 97)
    {
        SCOPED_TRACE(limit);
        const ScratchDirectory directory;
        const std::string path = directory / "a";
        const int status = with_limit(limit,
                                      [&](const auto& set_limit)
                                      {
                                          Writer writer(path);
                                          std::size_t written = 0;
                                          try
                                          {
                                              for (; written < 10; ++written) writer.append(snapshots[written]);
                                              ADD_FAILURE() << "the limit was not reached";
                                          }
                                          catch (const capture::Error& error)
                                          {
                                              EXPECT_EQ(error.problem(), capture::Problem::full);
                                              EXPECT_EQ(std::string(error.what()), path + ": File too large");
                                          }
                                          // The file is as it was: what was written is whole, and nothing of the failure is there.
                                          const Held held = held_in(path);
                                          expect_same(held.snapshots, {snapshots.begin(), snapshots.begin() + static_cast<long>(written)});
                                          expect_sound(held);
                                          EXPECT_THROW(writer.append(snapshots[10]), capture::Error);

                                          set_limit(RLIM_INFINITY);
                                          for (std::size_t i = 11; i < 20; ++i) writer.append(snapshots[i]);
                                          writer.finish();
                                          const Held after = held_in(path);
                                          EXPECT_EQ(after.snapshots.size(), written + 9);
                                          expect_sound(after);
                                          ASSERT_EQ(after.gaps.size(), 1u);
                                          EXPECT_EQ(after.gaps[0].cause, GapCause::no_space);
                                          EXPECT_EQ(after.gaps[0].from, snapshots[written - 1].taken_at);
                                          EXPECT_EQ(after.gaps[0].to, snapshots[11].taken_at);
                                      });
        EXPECT_EQ(status, 0);
    }
}

TEST(Interrupted, NothingIsLeftWhereNothingFits)
{
    const ScratchDirectory directory;
    const int status = with_limit(100,
                                  [&](const auto&)
                                  {
                                      Writer writer(directory / "a");
                                      EXPECT_THROW(writer.append(Living("idle").snapshot()), capture::Error);
                                  });
    EXPECT_EQ(status, 0);
}

TEST(Interrupted, TheClockIsSetBackAnHour)
{
    const ScratchDirectory directory;
    auto snapshots = Living("live-srt-1080i").snapshots(150);
    for (std::size_t i = 70; i < snapshots.size(); ++i) snapshots[i].taken_at -= 60 * minute;
    capture_all(directory / "a", snapshots);
    const Held held = held_in(directory / "a");
    expect_same(held.snapshots, snapshots);
    expect_sound(held);
    ASSERT_EQ(held.gaps.size(), 1u);
    EXPECT_EQ(held.gaps[0].cause, GapCause::clock_changed);
    EXPECT_EQ(held.gaps[0].from - held.gaps[0].to, 60 * minute - second);
}

} // namespace
