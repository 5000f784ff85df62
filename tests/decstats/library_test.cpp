// Loading the report library.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "scratch_directory.h"
#include "sessmgr_audio.h"
#include "sessmgr_types.h"
#include "tool_run.h"

namespace
{

void expect_input_error(const std::vector<std::string>& arguments, const std::string& line)
{
    const Finish finish = run(arguments);
    EXPECT_EQ(finish.err, line + "\n");
    EXPECT_EQ(finish.out, "");
    EXPECT_EQ(finish.status, 2);
}

} // namespace

TEST(Library, ReportsThatItDoesNotHaveAreLeftOutOfADemo)
{
    const Finish finish = run({"--library", PARTIAL_STATS_FILE, "demo", "idle"});
    EXPECT_TRUE(finish.out.starts_with("vframer level 0 sum ")) << finish.out;
    EXPECT_NE(finish.out.find("\nusage level 0 sum "), std::string::npos) << finish.out;
    EXPECT_EQ(std::count(finish.out.begin(), finish.out.end(), '\n'), 2);
    EXPECT_EQ(finish.err, "");
    EXPECT_EQ(finish.status, 0);
}

TEST(Library, AReportThatItDoesNotHaveIsAnErrorIfAskedForByName)
{
    const ScratchDirectory directory;
    const std::string record = directory.write("audio.rec", std::string(sizeof(SMGR_DECODER_AUDIO_STATS), '\0'));
    const std::string line = "decstats: " + std::filesystem::canonical(PARTIAL_STATS_FILE).string() +
                             ": no function STATS_PrintForAudioDecoder, which prints the audio report";
    expect_input_error({"--library", PARTIAL_STATS_FILE, "demo", "--component", "vframer", "--component", "audio"}, line);
    expect_input_error({"--library", PARTIAL_STATS_FILE, "print", "audio", record}, line);
}

TEST(Library, TheOptionMayFollowTheCommand)
{
    const Finish finish = run({"demo", "idle", "--library", PARTIAL_STATS_FILE, "--component", "usage"});
    EXPECT_TRUE(finish.out.starts_with("usage level 0 sum ")) << finish.out;
    EXPECT_EQ(finish.status, 0);
}

TEST(Library, ItReceivesTheBytesOfTheFileAndTheLevel)
{
    std::string record(sizeof(SMGR_VFRAMER_STATS), '\x01');
    record.front() = '\x05';
    record[record.size() / 2] = '\xff';
    record.back() = '\x09';
    const unsigned long sum = sizeof(SMGR_VFRAMER_STATS) - 3 + 0x05 + 0xff + 0x09;
    const std::string sumAndEnd = " sum " + std::to_string(sum) + "\n";

    const ScratchDirectory directory;
    const std::string file = directory.write("vframer.rec", record);
    EXPECT_EQ(run({"--library", PARTIAL_STATS_FILE, "print", "vframer", file}).out, "vframer level 0" + sumAndEnd);
    EXPECT_EQ(run({"--library", PARTIAL_STATS_FILE, "print", "vframer", file, "--level", "default"}).out, "vframer level 0" + sumAndEnd);
    EXPECT_EQ(run({"--library", PARTIAL_STATS_FILE, "print", "vframer", file, "--level", "debug"}).out, "vframer level 1" + sumAndEnd);
}

TEST(Library, OneWithoutAnyReport)
{
    expect_input_error({"--library", EMPTY_STATS_FILE, "demo"}, "decstats: " + std::filesystem::canonical(EMPTY_STATS_FILE).string() +
                                                                    ": none of the report functions, STATS_PrintFor...");
}

TEST(Library, OneThatIsMissing)
{
    const ScratchDirectory directory;
    const std::string file = directory / "libstats.so";
    expect_input_error({"--library", file, "demo"}, "decstats: " + file +
                                                        ": cannot be loaded as the report library: cannot open shared object file: "
                                                        "No such file or directory");
}

TEST(Library, AFileNameWithoutASlashIsInTheCurrentDirectory)
{
    // The loader would find libc.so.6 in the system's folders.
    expect_input_error({"--library", "libc.so.6", "demo"}, "decstats: libc.so.6: cannot be loaded as the report library: "
                                                           "cannot open shared object file: No such file or directory");

    const Finish finish = run({.arguments = {"--library", "partial_stats.so", "demo", "idle", "--component", "vframer"},
                               .shellSetup = "cd '" + std::filesystem::path(PARTIAL_STATS_FILE).parent_path().string() + "'"});
    EXPECT_TRUE(finish.out.starts_with("vframer level 0 sum ")) << finish.out;
    EXPECT_EQ(finish.status, 0);
}

TEST(Library, OneThatIsNotALibrary)
{
    const ScratchDirectory directory;
    const std::string file = directory.write("text.so", "This file is a text and therefore much unlike any shared library.\n");
    expect_input_error({"--library", file, "demo"}, "decstats: " + file + ": cannot be loaded as the report library: invalid ELF header");
}

TEST(Library, OneThatNeedsAServiceThatThisHostDoesNotHave)
{
    expect_input_error({"--library", UNRESOLVED_STATS_FILE, "demo"},
                       "decstats: " UNRESOLVED_STATS_FILE
                       ": cannot be loaded as the report library: undefined symbol: ServiceOfAnotherAppliance");
}
