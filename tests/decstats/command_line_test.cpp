// Help, versions and command lines that are wrong.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "sample.h"
#include "tool_run.h"

namespace
{

const std::string command_list =
    "show, list, watch, diff, diagnose, capture, history, check, repair, describe, demo, print, sample, serve, simulate, version";
const std::string component_list = "tdemux, vframer, vdecoder, audio, metadata, buffering, clock-recovery, usage";

std::string scenario_list()
{
    std::string list;
    for (const auto& [name, summary] : sources::scenarios()) list += (list.empty() ? "" : ", ") + name;
    return list;
}

void expect_usage_error(const std::vector<std::string>& arguments, const std::string& line)
{
    const Finish finish = run(arguments);
    EXPECT_EQ(finish.err, line + "\n");
    EXPECT_EQ(finish.out, "");
    EXPECT_EQ(finish.status, 2);
}

} // namespace

TEST(CommandLine, HelpAtEveryLevel)
{
    const std::vector<std::vector<std::string>> levels = {{}, {"demo"}, {"print"}, {"sample"}, {"version"}};
    for (const std::vector<std::string>& level : levels)
        for (const char* const option : {"--help", "-h"})
        {
            std::vector<std::string> arguments = level;
            arguments.emplace_back(option);
            const Finish finish = run(arguments);

            const std::string name = level.empty() ? "decstats" : "decstats " + level[0];
            EXPECT_NE(finish.out.find("Usage: " + name + " ["), std::string::npos) << finish.out;
            EXPECT_NE(finish.out.find("--version"), std::string::npos) << finish.out;
            EXPECT_EQ(finish.err, "");
            EXPECT_EQ(finish.status, 0);
        }
}

TEST(CommandLine, HelpOfTheToolNamesEveryCommand)
{
    const std::string help = run({"--help"}).out;
    for (const char* const word : {"demo", "print", "sample", "version", "--library FILE"})
        EXPECT_NE(help.find(word), std::string::npos) << word;
}

TEST(CommandLine, VersionAtEveryLevel)
{
    const std::vector<std::vector<std::string>> levels = {
        {"--version"}, {"demo", "--version"}, {"print", "--version"}, {"sample", "--version"}, {"version", "--version"}};
    for (const std::vector<std::string>& arguments : levels)
    {
        const Finish finish = run(arguments);
        EXPECT_EQ(finish.out, "decstats " DECSTATS_VERSION "\n");
        EXPECT_EQ(finish.err, "");
        EXPECT_EQ(finish.status, 0);
    }
}

TEST(CommandLine, NoCommand)
{
    const std::string line = "decstats: which command? The commands are " + command_list + "; see 'decstats --help'";
    expect_usage_error({}, line);
    expect_usage_error({"--library", "libstats.so"}, line);
}

TEST(CommandLine, UnknownCommand)
{
    expect_usage_error({"dump"}, "decstats: 'dump' is not a command; the commands are " + command_list);
    expect_usage_error({""}, "decstats: '' is not a command; the commands are " + command_list);
}

TEST(CommandLine, UnknownOption)
{
    expect_usage_error({"--colour"}, "decstats: --colour is not an option of 'decstats', which has --help, --version, --library");
    const std::string options =
        " is not an option of 'decstats demo', which has --help, --version, --level, --component, --list, --library";
    expect_usage_error({"demo", "--colour"}, "decstats: --colour" + options);
    expect_usage_error({"demo", "-x"}, "decstats: -x" + options);
}

TEST(CommandLine, AValueOfAnUnknownOptionIsNotTakenForAScenario)
{
    const std::string options =
        " is not an option of 'decstats demo', which has --help, --version, --level, --component, --list, --library";
    expect_usage_error({"demo", "--lev", "debug"}, "decstats: --lev" + options);
    expect_usage_error({"demo", "--lev=debug"}, "decstats: --lev" + options);
    expect_usage_error({"demo", "idle", "--lev", "debug"}, "decstats: --lev" + options);
}

TEST(CommandLine, AnOptionOfACommandStandsBehindIt)
{
    expect_usage_error({"--level", "debug", "demo"}, "decstats: --level stands behind the command: decstats demo --level");
    expect_usage_error({"--level=debug", "demo"}, "decstats: --level stands behind the command: decstats demo --level");
    expect_usage_error({"--list", "demo"}, "decstats: --list stands behind the command: decstats demo --list");
}

TEST(CommandLine, UnknownScenario)
{
    const std::string line = "decstats: SCENARIO: 'storm' is not known; allowed are " + scenario_list();
    expect_usage_error({"demo", "storm"}, line);
    expect_usage_error({"sample", "storm", "."}, line);
}

TEST(CommandLine, UnknownComponent)
{
    expect_usage_error({"print", "video", "-"}, "decstats: COMPONENT: 'video' is not known; allowed are " + component_list);
    expect_usage_error({"demo", "--component", "video"}, "decstats: --component: 'video' is not known; allowed are " + component_list);
}

TEST(CommandLine, ComponentsAreNotSeparatedByCommas)
{
    expect_usage_error({"demo", "--component", "tdemux,audio"},
                       "decstats: --component: 'tdemux,audio' is not known; allowed are " + component_list);
}

TEST(CommandLine, UnknownLevel)
{
    const std::string line = "decstats: --level: 'all' is not known; allowed are default, debug";
    expect_usage_error({"demo", "--level", "all"}, line);
    expect_usage_error({"print", "tdemux", "-", "--level", "all"}, line);
}

TEST(CommandLine, MissingArguments)
{
    expect_usage_error({"print"}, "decstats: COMPONENT is required; see 'decstats print --help'");
    expect_usage_error({"print", "tdemux"}, "decstats: FILE is required; see 'decstats print --help'");
    expect_usage_error({"sample"}, "decstats: SCENARIO is required; see 'decstats sample --help'");
    expect_usage_error({"sample", "idle"}, "decstats: DIR is required; see 'decstats sample --help'");
}

TEST(CommandLine, ArgumentsTooMany)
{
    expect_usage_error({"version", "one", "two"}, "decstats: 'two' is not expected; see 'decstats version --help'");
    expect_usage_error({"demo", "--list", "idle"}, "decstats: SCENARIO excludes --list; see 'decstats demo --help'");
}

TEST(CommandLine, ControlCharactersOfAnArgumentStayOffTheTerminal)
{
    expect_usage_error({"demo", "--level", "a\n\x1b[31m"}, "decstats: --level: 'a\\x0a\\x1b[31m' is not known; allowed are default, debug");
}
