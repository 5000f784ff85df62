// Standard output that cannot be written.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "scratch_directory.h"
#include "tool_run.h"

namespace
{

void expect_output_error(const Start& start, const std::string& reason)
{
    const Finish finish = run(start);
    EXPECT_EQ(finish.err, "decstats: standard output: " + reason + "\n");
    EXPECT_EQ(finish.out, "");
    EXPECT_EQ(finish.status, 1);
}

/** Every command that writes to standard output. */
const std::vector<std::vector<std::string>> commands = {
    {"demo"},   {"demo", "--level", "debug"}, {"demo", "--list"}, {"version"}, {"version", STATS_FILE},
    {"--help"}, {"demo", "--help"},           {"--version"},
};

/** Writes more than the buffer of standard output holds. */
const std::vector<std::string> long_report = {"--library", PARTIAL_STATS_FILE, "demo",  "idle",    "--component",
                                              "metadata",  "--component",      "usage", "--level", "debug"};

} // namespace

TEST(Output, FullDevice)
{
    for (const auto& arguments : commands)
        expect_output_error({.arguments = arguments, .output = Output::full_device}, "No space left on device");
    expect_output_error({.arguments = long_report, .output = Output::full_device}, "No space left on device");
}

TEST(Output, FullDeviceWhileARecordIsPrinted)
{
    const ScratchDirectory directory;
    ASSERT_EQ(run({"sample", "idle", directory.path()}).status, 0);
    expect_output_error({.arguments = {"print", "tdemux", directory / "tdemux.rec"}, .output = Output::full_device},
                        "No space left on device");
}

TEST(Output, ClosedPipe)
{
    for (const auto& arguments : commands) expect_output_error({.arguments = arguments, .output = Output::closed_pipe}, "Broken pipe");
    expect_output_error({.arguments = long_report, .output = Output::closed_pipe}, "Broken pipe");
}

TEST(Output, ClosedAtTheStart)
{
    for (const auto& arguments : commands) expect_output_error({.arguments = arguments, .output = Output::closed}, "Bad file descriptor");
    expect_output_error({.arguments = long_report, .output = Output::closed}, "Bad file descriptor");
}

TEST(Output, ALongReportArrivesWhole)
{
    const Finish finish = run(long_report);
    EXPECT_TRUE(finish.out.starts_with("line 00000\nline 00001\n"));
    const std::size_t lines = 20000 * std::string("line 00000\n").size();
    ASSERT_GT(finish.out.size(), lines);
    EXPECT_TRUE(finish.out.substr(lines).starts_with("usage level 1 sum "));
    EXPECT_EQ(finish.err, "");
    EXPECT_EQ(finish.status, 0);
}
