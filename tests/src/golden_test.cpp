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

namespace fs = std::filesystem;

static const fs::path golden = GOLDEN_DIRECTORY;
static const char* const level_names[] = {"default", "debug"};

static fs::path GoldenFile(const records::Component& component, const std::string& scenario, int level)
{
    return golden / component.name / (scenario + "." + level_names[level] + ".txt");
}

static std::string Read(const fs::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

TEST(Golden, EveryReportOfEverySampleIsAsItWasRead)
{
    const bool update = std::getenv("UPDATE_GOLDEN") != nullptr;
    for (const auto& [scenario, summary] : sources::scenarios())
    {
        const records::Snapshot snapshot = sources::sample(scenario, frozen_moment);
        for (const records::Component& component : records::components())
            for (int level : {0, 1})
            {
                const fs::path path = GoldenFile(component, scenario, level);
                const std::string text =
                    Capture([&] { print_report(component, snapshot.record(component).data(), static_cast<STATS_LEVEL>(level)); });
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
    for (const auto& [scenario, summary] : sources::scenarios())
        for (const records::Component& component : records::components())
            for (int level : {0, 1}) expected.insert(GoldenFile(component, scenario, level));
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(golden))
        EXPECT_TRUE(entry.is_directory() || expected.contains(entry.path())) << entry.path() << " belongs to no sample";
}
