// The reports of samples and of raw records.
#include <gtest/gtest.h>

#include <chrono>
#include <regex>
#include <string>
#include <thread>
#include <vector>

#include "record_sizes.h"
#include "samples.h"
#include "scratch_directory.h"
#include "tool_run.h"

namespace
{

std::string output_of(const std::vector<std::string>& arguments)
{
    const Finish finish = run(arguments);
    EXPECT_EQ(finish.err, "");
    EXPECT_EQ(finish.status, 0);
    return finish.out;
}

/** The reports of the raw records of a scenario, one after another. */
std::string printed_records(const std::string& scenario, const std::string& level)
{
    const ScratchDirectory directory;
    output_of({"sample", scenario, directory.path()});
    std::string reports;
    for (const ComponentSize& component : componentSizes)
        reports += output_of({"print", component.name, directory / (std::string(component.name) + ".rec"), "--level", level});
    return reports;
}

/** A text without the time spans since its events, which grow while a test runs. */
std::string without_elapsed_times(const std::string& text)
{
    return std::regex_replace(text, std::regex("-?([0-9]+d )?([0-9]+h )?([0-9]+m )?[0-9]+s ago"), "(time) ago");
}

/** Whether text holds the lines, in this order. */
testing::AssertionResult has_lines_in_order(const std::string& text, const std::vector<std::string>& lines)
{
    std::size_t position = 0;
    const std::string whole = "\n" + text;
    for (const std::string& line : lines)
    {
        position = whole.find("\n" + line + "\n", position);
        if (position == std::string::npos) return testing::AssertionFailure() << "no line \"" << line << "\" in its place in\n" << text;
        ++position;
    }
    return testing::AssertionSuccess();
}

} // namespace

TEST(Demo, OfTheIdleDecoderIsTheReportsOfItsRecords)
{
    for (const char* const level : {"default", "debug"})
    {
        const std::string reports = output_of({"demo", "idle", "--level", level});
        EXPECT_EQ(reports, printed_records("idle", level));
        EXPECT_TRUE(reports.starts_with("Statistics:\n")) << reports;
    }
}

TEST(Demo, OfEveryScenarioIsTheReportsOfItsRecords)
{
    for (std::size_t i = 0; i < samples_scenario_count; ++i)
        for (const char* const level : {"default", "debug"})
        {
            const std::string scenario = samples_scenarios[i].szName;
            const std::string reports = output_of({"demo", scenario, "--level", level});
            EXPECT_EQ(without_elapsed_times(reports), without_elapsed_times(printed_records(scenario, level))) << scenario;
        }
}

TEST(Demo, PrintsInTheFixedOrder)
{
    EXPECT_TRUE(has_lines_in_order(output_of({"demo"}), {"Statistics:", "Video", "Audio", "Metadata", "Buffering", "Clock Recovery"}));
    EXPECT_TRUE(has_lines_in_order(output_of({"demo", "--level", "debug"}),
                                   {"Statistics:", "Video", "Audio", "Metadata", "Buffering", "Clock Recovery", "Usage"}));
}

TEST(Demo, TheVideoDecoderReportFollowsTheVideoFramerReport)
{
    const std::string framer = output_of({"demo", "idle", "--component", "vframer"});
    const std::string decoder = output_of({"demo", "idle", "--component", "vdecoder"});
    const std::string audio = output_of({"demo", "idle", "--component", "audio"});
    EXPECT_TRUE(framer.starts_with("Video\n"));
    EXPECT_TRUE(decoder.starts_with("  Still Image           : "));
    EXPECT_TRUE(audio.starts_with("Audio\n"));
    EXPECT_NE(output_of({"demo", "idle"}).find(framer + decoder + audio), std::string::npos);
}

TEST(Demo, DefaultsToTheTypicalScenarioAndTheDefaultLevel)
{
    const std::string named = output_of({"demo", "live-srt-1080i", "--level", "default"});
    EXPECT_EQ(without_elapsed_times(output_of({"demo"})), without_elapsed_times(named));
    EXPECT_EQ(named.find("\nUsage\n"), std::string::npos);
}

TEST(Demo, TheUsageReportShowsAtTheDebugLevelOnly)
{
    EXPECT_EQ(output_of({"demo", "--component", "usage"}), "");
    EXPECT_TRUE(output_of({"demo", "--component", "usage", "--level", "debug"}).starts_with("Usage\n"));
}

TEST(Demo, NamedComponentsKeepTheOrder)
{
    const std::string tdemux = output_of({"demo", "idle", "--level", "debug", "--component", "tdemux"});
    const std::string usage = output_of({"demo", "idle", "--level", "debug", "--component", "usage"});
    EXPECT_TRUE(tdemux.starts_with("Statistics:\n"));
    EXPECT_TRUE(usage.starts_with("Usage\n"));
    EXPECT_EQ(output_of({"demo", "--component", "usage", "--component", "tdemux", "--component", "usage", "--level", "debug", "idle"}),
              tdemux + usage);
}

TEST(Demo, AComponentDoesNotSwallowTheScenario)
{
    EXPECT_EQ(output_of({"demo", "--component", "buffering", "idle"}), output_of({"demo", "idle", "--component", "buffering"}));
}

TEST(Demo, ListsTheScenarios)
{
    std::size_t width = 0;
    for (std::size_t i = 0; i < samples_scenario_count; ++i) width = std::max(width, std::string(samples_scenarios[i].szName).size());
    std::string expected;
    for (std::size_t i = 0; i < samples_scenario_count; ++i)
    {
        const std::string name = samples_scenarios[i].szName;
        expected += name + std::string(width - name.size() + 2, ' ') + samples_scenarios[i].szSummary + "\n";
    }
    const std::string list = output_of({"demo", "--list"});
    EXPECT_EQ(list, expected);
    EXPECT_TRUE(list.starts_with("live-srt-1080i ")) << list;
}

TEST(Print, ReadsStandardInput)
{
    const ScratchDirectory directory;
    output_of({"sample", "idle", directory.path()});
    const std::string file = directory / "buffering.rec";
    const std::string expected = output_of({"print", "buffering", file});
    EXPECT_TRUE(expected.starts_with("Buffering\n"));

    const Finish redirected = run({.arguments = {"print", "buffering", "-"}, .inputFile = file});
    EXPECT_EQ(redirected.out, expected);
    EXPECT_EQ(redirected.status, 0);

    const std::string record = content_of(file);
    const Finish piped = run({.arguments = {"print", "buffering", "-"}, .input = {record}});
    EXPECT_EQ(piped.out, expected);
    EXPECT_EQ(piped.status, 0);
}

TEST(Print, WaitsForTheRestOfARecord)
{
    const ScratchDirectory directory;
    output_of({"sample", "idle", directory.path()});
    const std::string record = content_of(directory / "audio.rec");
    const Finish finish =
        run({.arguments = {"print", "audio", "-"}, .input = {record.substr(0, 1), record.substr(1, 700), record.substr(701)}});
    EXPECT_EQ(finish.out, output_of({"print", "audio", directory / "audio.rec"}));
    EXPECT_EQ(finish.err, "");
    EXPECT_EQ(finish.status, 0);
}

TEST(Print, ShowsHowLongAgoAnEventWas)
{
    const ScratchDirectory directory;
    output_of({"sample", "live-srt-1080i", directory.path()});
    const std::string file = directory / "tdemux.rec";
    const std::string before = output_of({"print", "tdemux", file, "--level", "debug"});
    std::this_thread::sleep_for(std::chrono::milliseconds(1100));
    const std::string after = output_of({"print", "tdemux", file, "--level", "debug"});
    EXPECT_NE(before, after);
    EXPECT_EQ(without_elapsed_times(before), without_elapsed_times(after));
}
