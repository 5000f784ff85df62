// Whole reports of every sample at both levels, with the real services, as they stand in tests/golden. A file is changed by
// scripts/update-golden alone, and the difference is read line by line before it is committed.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>

#include "all_reports.h"
#include "capture.h"
#include "frozen_clock.h"

namespace fs = std::filesystem;

static const fs::path golden = GOLDEN_DIRECTORY;
static const char* const level_names[] = {"default", "debug"};

static fs::path GoldenFile(const Report& report, const SAMPLES_SCENARIO& scenario, int level)
{
    return golden / report.component / (std::string(scenario.szName) + "." + level_names[level] + ".txt");
}

static std::string Read(const fs::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

TEST(Golden, EveryReportOfEverySampleIsAsItWasRead)
{
    const bool update = std::getenv("UPDATE_GOLDEN") != nullptr;
    for (size_t i = 0; i < samples_scenario_count; i++)
    {
        const SAMPLES_SCENARIO& scenario = samples_scenarios[i];
        SAMPLES_RECORDS records;
        scenario.pFill(&records, frozen_now);
        for (const Report& report : all_reports)
            for (int level : {0, 1})
            {
                const fs::path path = GoldenFile(report, scenario, level);
                const std::string text = Capture([&] { report.print(RecordOf(records, report), static_cast<STATS_LEVEL>(level)); });
                if (update)
                {
                    fs::create_directories(path.parent_path());
                    std::ofstream(path, std::ios::binary) << text;
                    continue;
                }
                EXPECT_TRUE(fs::exists(path)) << path;
                EXPECT_EQ(text, Read(path)) << path;
            }
    }
    if (update) GTEST_SKIP() << "golden files written, nothing compared";
}

TEST(Golden, NoFileIsLeftOver)
{
    std::set<fs::path> expected;
    for (size_t i = 0; i < samples_scenario_count; i++)
        for (const Report& report : all_reports)
            for (int level : {0, 1}) expected.insert(GoldenFile(report, samples_scenarios[i], level));
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(golden))
        EXPECT_TRUE(entry.is_directory() || expected.contains(entry.path())) << entry.path() << " belongs to no sample";
}
