// Writing the raw records of a scenario.
#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include "record_sizes.h"
#include "samples.h"
#include "scratch_directory.h"
#include "tool_run.h"

namespace
{

/** The names of the files that a sample consists of, sorted. */
const std::vector<std::string> allFiles = {"audio.rec",  "buffering.rec", "clock-recovery.rec", "metadata.rec",
                                           "tdemux.rec", "usage.rec",     "vdecoder.rec",       "vframer.rec"};

void expect_output_error(const Start& start, const std::string& line)
{
    const Finish finish = run(start);
    EXPECT_EQ(finish.err, line + "\n");
    EXPECT_EQ(finish.out, "");
    EXPECT_EQ(finish.status, 1);
}

mode_t mode_of(const std::string& path)
{
    struct stat status = {};
    EXPECT_EQ(stat(path.c_str(), &status), 0) << path;
    return status.st_mode & 07777;
}

} // namespace

TEST(Sample, WritesARecordOfEveryComponentAndNothingElse)
{
    for (std::size_t i = 0; i < samples_scenario_count; ++i)
    {
        const ScratchDirectory directory;
        const Finish finish = run({"sample", samples_scenarios[i].szName, directory.path()});
        EXPECT_EQ(finish.out, "");
        EXPECT_EQ(finish.err, "");
        EXPECT_EQ(finish.status, 0);
        EXPECT_EQ(directory.names(), allFiles);
        for (const ComponentSize& component : componentSizes)
            EXPECT_EQ(std::filesystem::file_size(directory / (std::string(component.name) + ".rec")), component.size) << component.name;
    }
}

TEST(Sample, TheBytesAreThoseInMemory)
{
    const auto records = std::make_unique<SAMPLES_RECORDS>();
    samples_find("idle")->pFill(records.get(), 0); // its event times are all 0, whatever the moment
    const ScratchDirectory directory;
    ASSERT_EQ(run({"sample", "idle", directory.path()}).status, 0);

    const auto bytes = [](const auto& record) { return std::string(reinterpret_cast<const char*>(&record), sizeof(record)); };
    EXPECT_EQ(content_of(directory / "tdemux.rec"), bytes(records->tTDemux));
    EXPECT_EQ(content_of(directory / "vframer.rec"), bytes(records->tVFramer));
    EXPECT_EQ(content_of(directory / "vdecoder.rec"), bytes(records->tVideoDecoder));
    EXPECT_EQ(content_of(directory / "audio.rec"), bytes(records->tAudio));
    EXPECT_EQ(content_of(directory / "metadata.rec"), bytes(records->tMetadata));
    EXPECT_EQ(content_of(directory / "buffering.rec"), bytes(records->tBuffering));
    EXPECT_EQ(content_of(directory / "clock-recovery.rec"), bytes(records->tClockRecovery));
    EXPECT_EQ(content_of(directory / "usage.rec"), bytes(records->tUsage));
}

TEST(Sample, TheModeFollowsTheFileCreationMask)
{
    const ScratchDirectory directory;
    ASSERT_EQ(run({.arguments = {"sample", "idle", directory.path()}, .shellSetup = "umask 027"}).status, 0);
    for (const std::string& name : allFiles) EXPECT_EQ(mode_of(directory / name), 0640U) << name;
    ASSERT_EQ(run({.arguments = {"sample", "idle", directory.path()}, .shellSetup = "umask 0"}).status, 0);
    for (const std::string& name : allFiles) EXPECT_EQ(mode_of(directory / name), 0666U) << name;
}

TEST(Sample, ReplacesOldFiles)
{
    const ScratchDirectory directory;
    directory.write("usage.rec", std::string(5000, 'x'));
    ASSERT_EQ(run({"sample", "idle", directory.path()}).status, 0);
    EXPECT_EQ(std::filesystem::file_size(directory / "usage.rec"), sizeof(SMGR_DECODER_SDI_USAGE_STATS));
    EXPECT_EQ(directory.names(), allFiles);
}

TEST(Sample, LeavesOtherFilesAlone)
{
    const ScratchDirectory directory;
    directory.write("notes.txt", "keep");
    ASSERT_EQ(run({"sample", "idle", directory.path()}).status, 0);
    EXPECT_EQ(content_of(directory / "notes.txt"), "keep");
    EXPECT_EQ(directory.names().size(), allFiles.size() + 1);
}

TEST(Sample, NeedsNoStandardStreams)
{
    const ScratchDirectory directory;
    const Finish finish = run({.arguments = {"sample", "idle", directory.path()}, .closedInput = true, .output = Output::Closed});
    EXPECT_EQ(finish.err, "");
    EXPECT_EQ(finish.status, 0);
    EXPECT_EQ(directory.names(), allFiles);
}

TEST(Sample, IntoAMissingDirectory)
{
    const ScratchDirectory directory;
    const std::string missing = directory / "missing";
    expect_output_error({.arguments = {"sample", "idle", missing}}, "decstats: " + missing + ": No such file or directory");
    EXPECT_TRUE(directory.names().empty());
}

TEST(Sample, IntoAFile)
{
    const ScratchDirectory directory;
    const std::string file = directory.write("file", "keep");
    expect_output_error({.arguments = {"sample", "idle", file}}, "decstats: " + file + ": Not a directory");
    EXPECT_EQ(content_of(file), "keep");
    EXPECT_EQ(directory.names(), std::vector<std::string>{"file"});
}

TEST(Sample, IntoAnEmptyNameIsNotIntoTheCurrentDirectory)
{
    const ScratchDirectory directory;
    expect_output_error({.arguments = {"sample", "idle", ""}, .shellSetup = "cd '" + directory.path() + "'"},
                        "decstats: : No such file or directory");
    EXPECT_TRUE(directory.names().empty());
}

TEST(Sample, IntoAReadOnlyDirectory)
{
    if (geteuid() == 0) GTEST_SKIP() << "root writes into every directory";
    const ScratchDirectory directory;
    ASSERT_EQ(chmod(directory.path().c_str(), 0500), 0);
    expect_output_error({.arguments = {"sample", "idle", directory.path()}}, "decstats: " + directory.path() + ": Permission denied");
    ASSERT_EQ(chmod(directory.path().c_str(), 0700), 0);
    EXPECT_TRUE(directory.names().empty());
}

TEST(Sample, AFailedWriteLeavesNothingBehindAndOldFilesAsTheyWere)
{
    const ScratchDirectory directory;
    directory.write("tdemux.rec", "old");
    directory.write("usage.rec", "old");
    // A sanitizer's runtime would fail first, on a temporary file of its own; without a folder for it, it does without.
    expect_output_error({.arguments = {"sample", "idle", directory.path()}, .shellSetup = "export TMPDIR=/dev/null; ulimit -f 0"},
                        "decstats: " + (directory / "tdemux.rec") + ": File too large");
    EXPECT_EQ(directory.names(), (std::vector<std::string>{"tdemux.rec", "usage.rec"}));
    EXPECT_EQ(content_of(directory / "tdemux.rec"), "old");
    EXPECT_EQ(content_of(directory / "usage.rec"), "old");
}

TEST(Sample, ANameThatIsTakenByADirectory)
{
    const ScratchDirectory directory;
    std::filesystem::create_directory(directory / "tdemux.rec");
    expect_output_error({.arguments = {"sample", "idle", directory.path()}},
                        "decstats: " + (directory / "tdemux.rec") + ": Is a directory");
    EXPECT_EQ(directory.names(), std::vector<std::string>{"tdemux.rec"});
}

TEST(Sample, TheLastNameIsTakenByADirectory)
{
    const ScratchDirectory directory;
    std::filesystem::create_directory(directory / "usage.rec");
    expect_output_error({.arguments = {"sample", "idle", directory.path()}}, "decstats: " + (directory / "usage.rec") + ": Is a directory");
    EXPECT_EQ(directory.names(), allFiles); // the others are complete, and no temporary file is left
    for (std::size_t i = 0; i + 1 < componentSizes.size(); ++i)
    {
        const std::string name = componentSizes[i].name;
        EXPECT_EQ(std::filesystem::file_size(directory / (name + ".rec")), componentSizes[i].size) << name;
    }
}
