// Loading the report library.
#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
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
    std::string record(sizeof(SMGR_VFRAMER_STATS), '!'); // printable where the record has a text
    record.front() = '\x05';
    record[record.size() / 2] = '\xff';
    record.back() = '\x09';
    const unsigned long sum = (sizeof(SMGR_VFRAMER_STATS) - 3) * '!' + 0x05 + 0xff + 0x09;
    const std::string sum_and_end = " sum " + std::to_string(sum) + "\n";

    const ScratchDirectory directory;
    const std::string file = directory.write("vframer.rec", record);
    EXPECT_EQ(run({"--library", PARTIAL_STATS_FILE, "print", "vframer", file}).out, "vframer level 0" + sum_and_end);
    EXPECT_EQ(run({"--library", PARTIAL_STATS_FILE, "print", "vframer", file, "--level", "default"}).out, "vframer level 0" + sum_and_end);
    EXPECT_EQ(run({"--library", PARTIAL_STATS_FILE, "print", "vframer", file, "--level", "debug"}).out, "vframer level 1" + sum_and_end);
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
                               .shell_setup = "cd '" + std::filesystem::path(PARTIAL_STATS_FILE).parent_path().string() + "'"});
    EXPECT_TRUE(finish.out.starts_with("vframer level 0 sum ")) << finish.out;
    EXPECT_EQ(finish.status, 0);
}

TEST(Library, OneThatIsNotThereIsLookedForInPlacesThatTheMessageNames)
{
    // A copy of the tool elsewhere has no library beside it. An emulated one would not find the libraries of its processor.
    if (*DECSTATS_EMULATOR != '\0') GTEST_SKIP() << "needs a tool that runs by itself";
    const ScratchDirectory directory;
    std::filesystem::create_directory(directory / "bin");
    std::filesystem::create_directory(directory / "lib");
    const std::string tool = directory / "bin/decstats";
    std::filesystem::copy_file(DECSTATS_FILE, tool);
    const Finish finish = run({.arguments = {"demo"}, .tool = tool});
    EXPECT_TRUE(finish.err.starts_with("decstats: libstats.so.1: cannot be loaded as the report library: cannot open shared object file: "
                                       "No such file or directory; looked in " +
                                       directory.path() + "/lib, "))
        << finish.err;
    EXPECT_TRUE(finish.err.ends_with(", and --library FILE names another\n")) << finish.err;
    EXPECT_EQ(std::ranges::count(finish.err, '\n'), 1);
    EXPECT_EQ(finish.out, "");
    EXPECT_EQ(finish.status, 2);
}

TEST(Library, OneThatWasCutShort)
{
    const ScratchDirectory directory;
    const std::string whole = content_of(STATS_FILE);
    const std::string file = directory / "libstats.so";
    int refused = 0;
    for (std::size_t size = 0; size < whole.size(); size += whole.size() / 61)
    {
        directory.write("libstats.so", whole.substr(0, size));
        const Finish finish = run({"--library", file, "version"});
        if (finish.status == 0) break; // nothing but names for the debugger is missing
        ++refused;
        EXPECT_EQ(finish.status, 2) << size << finish.err;
        EXPECT_TRUE(finish.err.starts_with("decstats: " + file + ": ")) << size << finish.err;
        EXPECT_EQ(std::ranges::count(finish.err, '\n'), 1) << size;
    }
    EXPECT_GT(refused, 10);

    directory.write("libstats.so", whole.substr(0, 8192));
    expect_input_error({"--library", file, "demo"}, "decstats: " + file + ": is cut short: a part to be loaded lies behind its 8192 bytes");
}

TEST(Library, AReportThatIsNotAFunction)
{
    const std::string file = std::filesystem::canonical(DATA_STATS_FILE).string();
    expect_input_error({"--library", DATA_STATS_FILE, "demo"}, "decstats: " + file + ": STATS_PrintForVFramer is not a function");
}

TEST(Library, ItsClockStandsAtTheMomentOfTheRecords)
{
    const ScratchDirectory directory;
    const std::string record = directory.write("vframer.rec", std::string(sizeof(SMGR_VFRAMER_STATS), '\0'));
    const auto output = [&record](std::vector<std::string> options)
    {
        std::vector<std::string> arguments = {"--library", CLOCK_STATS_FILE, "print", "vframer", record};
        arguments.insert(arguments.end(), options.begin(), options.end());
        return run(arguments).out;
    };
    EXPECT_EQ(output({"--at", "1000000000.9"}), "1000000000\n");
    const time_t before = time(nullptr);
    const time_t shown = std::stol(output({}));
    EXPECT_LE(before, shown);
    EXPECT_LE(shown, time(nullptr));
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
