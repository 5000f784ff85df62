// Reports on several threads at once, each with its own records: lines stay whole, and nothing is shared but stdout.

#include <gtest/gtest.h>

#include <algorithm>
#include <thread>

#include "all_reports.h"
#include "capture.h"
#include "frozen_clock.h"

static constexpr int thread_count = 8;

static void PrintAll(const SAMPLES_RECORDS& records)
{
    for (const Report& report : all_reports) report.print(RecordOf(records, report), STATS_LEVEL_DEBUG);
}

static void FillFor(SAMPLES_RECORDS& records, int thread)
{
    samples_scenarios[static_cast<size_t>(thread) % samples_scenario_count].pFill(&records, frozen_now);
}

static void OnThreads(void (*print)(const SAMPLES_RECORDS&))
{
    std::vector<std::thread> threads;
    for (int i = 0; i < thread_count; i++)
        threads.emplace_back(
            [i, print]
            {
                SAMPLES_RECORDS records;
                FillFor(records, i);
                print(records);
            });
    for (std::thread& thread : threads) thread.join();
}

TEST(Threads, LinesStayWhole)
{
    std::vector<std::string> expected;
    for (int i = 0; i < thread_count; i++)
    {
        SAMPLES_RECORDS records;
        FillFor(records, i);
        const std::vector<std::string> lines = CaptureLines([&] { PrintAll(records); });
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
                [](const SAMPLES_RECORDS& records)
                {
                    flockfile(stdout);
                    PrintAll(records);
                    funlockfile(stdout);
                });
        });
    size_t length = 0;
    for (int i = 0; i < thread_count; i++)
    {
        SAMPLES_RECORDS records;
        FillFor(records, i);
        const std::string whole = Capture([&] { PrintAll(records); });
        EXPECT_NE(text.find(whole), std::string::npos) << samples_scenarios[static_cast<size_t>(i) % samples_scenario_count].szName;
        length += whole.size();
    }
    EXPECT_EQ(text.size(), length);
}
