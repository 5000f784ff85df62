// The reports of samples and of raw records.
#include <gtest/gtest.h>

#include <chrono>
#include <cstring>
#include <fcntl.h>
#include <regex>
#include <span>
#include <string>
#include <sys/stat.h>
#include <thread>
#include <vector>

#include "sample.h"
#include "scratch_directory.h"
#include "tool_run.h"

namespace
{

/** The moment of the golden reports [ns since the epoch, UTC]: 2022-06-06 16:06:55. */
constexpr std::int64_t golden_moment = 1'654'531'615'000'000'000;

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
    for (const std::string& component : records::component_names())
        reports += output_of({"print", component, directory / (component + ".rec"), "--level", level});
    return reports;
}

/** A text without the time spans since its events, which grow while a test runs. */
std::string without_elapsed_times(const std::string& text)
{
    return std::regex_replace(text, std::regex("-?([0-9]+d )?([0-9]+h )?([0-9]+m )?[0-9]+s ago"), "(time) ago");
}

/** A report as it was read, printed of a sample at its own moment. */
std::string golden_report(const std::string& component, const std::string& scenario, const std::string& level)
{
    return content_of(GOLDEN_DIRECTORY "/" + component + "/" + scenario + "." + level + ".txt");
}

/** The bytes of a record of a sample. */
std::string record_of(const records::Snapshot& snapshot, const std::string& component)
{
    const std::span<const std::byte> bytes = snapshot.record(*records::find_component(component));
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
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

TEST(Demo, OfEveryScenarioShowsTheAgesOfTheSample)
{
    for (const auto& [scenario, summary] : sources::scenarios())
        for (const char* const level : {"default", "debug"})
        {
            std::string expected;
            for (const std::string& component : records::component_names()) expected += golden_report(component, scenario, level);
            const std::string reports = output_of({"demo", scenario, "--level", level});
            if (scenario == "extreme") // its times lie at the ends of time, whatever the moment
                EXPECT_EQ(without_elapsed_times(reports), without_elapsed_times(expected));
            else
                EXPECT_EQ(reports, expected) << scenario;
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
    EXPECT_EQ(output_of({"demo"}), named);
    EXPECT_EQ(named.find("\nUsage\n"), std::string::npos);
}

TEST(Demo, TheUsageReportShowsAtTheDebugLevelOnly)
{
    EXPECT_EQ(output_of({"demo", "--component", "usage"}), "");
    EXPECT_TRUE(output_of({"demo", "--component", "usage", "--level", "debug"}).starts_with("Usage\n"));
}

TEST(Demo, AReportWithoutALineIsExplainedOnATerminal)
{
    const std::string hint = "decstats: all lines of this report belong to the debug level: --level debug\n";
    const auto run_on_terminal = [](std::vector<std::string> arguments)
    { return run(Start{.arguments = std::move(arguments), .error_terminal = true}); };
    EXPECT_EQ(run_on_terminal({"demo", "--component", "usage"}).err, hint);
    EXPECT_EQ(run_on_terminal({"demo", "--component", "usage", "--level", "debug"}).err, "");
    EXPECT_EQ(run_on_terminal({"demo", "--component", "usage", "--component", "audio"}).err, "");

    const ScratchDirectory directory;
    output_of({"sample", "idle", directory.path()});
    const Finish print = run_on_terminal({"print", "usage", directory / "usage.rec"});
    EXPECT_EQ(print.out, "");
    EXPECT_EQ(print.err, hint);
    EXPECT_EQ(print.status, 0);
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
    for (const auto& [name, summary] : sources::scenarios()) width = std::max(width, name.size());
    std::string expected;
    for (const auto& [name, summary] : sources::scenarios()) expected += name + std::string(width - name.size() + 2, ' ') + summary + "\n";
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

    const Finish redirected = run({.arguments = {"print", "buffering", "-"}, .input_file = file});
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

TEST(Print, AtAMomentShowsTheAgesOfThatMoment)
{
    const ScratchDirectory directory;
    for (const auto& [scenario, summary] : sources::scenarios())
    {
        const records::Snapshot snapshot = sources::sample(scenario, golden_moment);
        for (const std::string& component : records::component_names())
        {
            const std::string file = directory.write("record", record_of(snapshot, component));
            EXPECT_EQ(output_of({"print", component, file, "--level", "debug", "--at", "1654531615"}),
                      golden_report(component, scenario, "debug"))
                << scenario;
        }
    }
}

TEST(Print, TheMomentIsWrittenInManyWays)
{
    const ScratchDirectory directory;
    const std::string file = directory.write("record", record_of(sources::sample("live-srt-1080i", golden_moment), "tdemux"));
    const std::string expected = golden_report("tdemux", "live-srt-1080i", "debug");
    for (const char* const time :
         {"2022-06-06T16:06:55Z", "2022-06-06t16:06:55.999999999z", "2022-06-06 18:06:55+02:00", "2022-06-06T11:36:55.25-04:30",
          "2022-06-07T00:06:55+08:00", "2022-06-06T16:06:55.1234567890123-00:00", "1654531615", "1654531615.75"})
        EXPECT_EQ(output_of({"print", "tdemux", file, "--level", "debug", "--at", time}), expected) << time;

    // The second after that one, which a leap second would have been.
    const std::string later = output_of({"print", "tdemux", file, "--level", "debug", "--at", "1654531620"});
    EXPECT_NE(later, expected);
    EXPECT_EQ(output_of({"print", "tdemux", file, "--level", "debug", "--at", "2022-06-06T16:06:60Z"}),
              output_of({"print", "tdemux", file, "--level", "debug", "--at", "2022-06-06T16:07:00Z"}));
}

TEST(Print, TheMomentMayBeWhenTheFileWasWritten)
{
    const ScratchDirectory directory;
    const std::string file = directory.write("record", record_of(sources::sample("live-srt-1080i", golden_moment), "tdemux"));
    const timespec times[] = {{.tv_sec = 0, .tv_nsec = UTIME_OMIT}, {.tv_sec = golden_moment / 1'000'000'000, .tv_nsec = 999}};
    ASSERT_EQ(utimensat(AT_FDCWD, file.c_str(), times, 0), 0);
    const std::string expected = golden_report("tdemux", "live-srt-1080i", "debug");
    EXPECT_EQ(output_of({"print", "tdemux", file, "--level", "debug", "--at", "mtime"}), expected);

    const Finish redirected = run({.arguments = {"print", "tdemux", "-", "--level", "debug", "--at", "mtime"}, .input_file = file});
    EXPECT_EQ(redirected.out, expected);

    const Finish piped = run({.arguments = {"print", "tdemux", "-", "--at", "mtime"}, .input = {content_of(file)}});
    EXPECT_EQ(piped.out, "");
    EXPECT_EQ(piped.err, "decstats: standard input: is not a regular file, so it has no mtime for --at\n");
    EXPECT_EQ(piped.status, 2);
}

TEST(Print, WhatIsNoMoment)
{
    for (const char* const time : {"",
                                   "now",
                                   "-1",
                                   "+5",
                                   "1654531615s",
                                   "1654531615.",
                                   ".5",
                                   "0x10",
                                   "9223372036",
                                   "99999999999999999999",
                                   "2022-06-06",
                                   "2022-06-06T16:06Z",
                                   "2022-06-06T16:06:55",
                                   "2022-06-06T16:06:55.Z",
                                   "2022-06-06T16:06:55+0200",
                                   "2022-06-06T16:06:55Z ",
                                   "2022-02-29T00:00:00Z",
                                   "2022-13-01T00:00:00Z",
                                   "2022-06-06T24:00:00Z",
                                   "2022-06-06T16:60:00Z",
                                   "2022-06-06T16:06:61Z",
                                   "2022-06-06T16:06:55+24:00",
                                   "1969-12-31T23:59:59Z",
                                   "2300-01-01T00:00:00Z",
                                   "22-06-06T16:06:55Z",
                                   "2022-06-06T16:-6:55Z"})
    {
        const Finish finish = run({"print", "usage", "/dev/null", "--at", time});
        EXPECT_EQ(finish.err, "decstats: --at: '" + std::string(time) +
                                  "' is no moment; a moment is as 2022-06-06T16:06:55Z, seconds since the epoch, or mtime\n");
        EXPECT_EQ(finish.out, "");
        EXPECT_EQ(finish.status, 2);
    }
}

TEST(Print, TextsOfARecordCannotMarkOrForgeLines)
{
    records::Snapshot snapshot = sources::sample("live-srt-1080i", golden_moment);
    const std::string evil = "\x1b[31mred\nSRT Stats\r\x7f\xc3\xa9\x9b";
    const std::string shown = "?[31mred?SRT Stats?????";
    std::strcpy(snapshot.records.tdemux.tStreamAddress.szHostName, evil.c_str());
    std::strcpy(snapshot.records.tdemux.tSourceAddress.szHostName, evil.c_str());
    std::memset(snapshot.records.vframer.tCurrentProperties.szFraming, '\n', sizeof(snapshot.records.vframer.tCurrentProperties.szFraming));
    std::strcpy(snapshot.records.vframer.tPreviousProperties.szFraming, evil.c_str());
    for (SMGR_METADATADEC_CHANNEL_STATS& channel : snapshot.records.metadata.tChannel) std::strcpy(channel.szName, "\x1b[0m\n");

    const ScratchDirectory directory;
    std::string reports;
    for (const char* const component : {"tdemux", "vframer", "metadata"})
    {
        const std::string file = directory.write("record", record_of(snapshot, component));
        reports += output_of({"print", component, file, "--level", "debug", "--at", "1654531615"});
    }
    for (const char character : reports) EXPECT_TRUE((character >= ' ' && character <= '~') || character == '\n' || character == '\t');
    EXPECT_TRUE(has_lines_in_order(reports, {"  Source Address        : " + shown + " (198.51.100.7) port 51544", "SRT Stats",
                                             "    Framing             : " + std::string(64, '?'), "    Framing             : " + shown,
                                             "  ?[0m? Channel"}))
        << reports;
}
