// Reports on several threads at once, each with its own records: lines stay whole, and nothing is shared but stdout.

#include <gtest/gtest.h>

#include <algorithm>
#include <thread>

#include "all_reports.h"
#include "capture.h"

static constexpr int thread_count = 8;

static void PrintAll(const records::Snapshot& snapshot)
{
    for (const records::Component& component : records::components())
        print_report(component, snapshot.record(component).data(), STATS_LEVEL_DEBUG);
}

static std::string ScenarioFor(int thread)
{
    const std::vector<sources::Scenario> scenarios = sources::scenarios();
    return scenarios[static_cast<size_t>(thread) % scenarios.size()].name;
}

static void OnThreads(void (*print)(const records::Snapshot&))
{
    std::vector<std::thread> threads;
    for (int i = 0; i < thread_count; i++) threads.emplace_back([i, print] { print(sources::sample(ScenarioFor(i), frozen_moment)); });
    for (std::thread& thread : threads) thread.join();
}

TEST(Threads, LinesStayWhole)
{
    std::vector<std::string> expected;
    for (int i = 0; i < thread_count; i++)
    {
        const records::Snapshot snapshot = sources::sample(ScenarioFor(i), frozen_moment);
        const std::vector<std::string> lines = CaptureLines([&] { PrintAll(snapshot); });
        expected.insert(expected.end(), lines.begin(), lines.end());
    }
    std::vector<std::string> lines = CaptureLines([] { OnThreads(PrintAll); });
    // No sample has a display format that is no raster, the one line that takes two calls and that others may divide.
    std::sort(expected.begin(), expected.end());
    std::sort(lines.begin(), lines.end());
    EXPECT_EQ(lines, expected);
}

TEST(Threads, ACallerThatHoldsTheStreamKeepsItsReportsTogether)
{
    const std::string text = Capture(
        []
        {
            OnThreads(
                [](const records::Snapshot& snapshot)
                {
                    flockfile(stdout);
                    PrintAll(snapshot);
                    funlockfile(stdout);
                });
        });
    size_t length = 0;
    for (int i = 0; i < thread_count; i++)
    {
        const records::Snapshot snapshot = sources::sample(ScenarioFor(i), frozen_moment);
        const std::string whole = Capture([&] { PrintAll(snapshot); });
        EXPECT_NE(text.find(whole), std::string::npos) << ScenarioFor(i);
        length += whole.size();
    }
    EXPECT_EQ(text.size(), length);
}
