// Writing the raw records of a scenario.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <span>
#include <string>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <vector>

#include "sample.h"
#include "scratch_directory.h"
#include "tool_run.h"

namespace
{

/** The names of the files that a sample consists of, sorted. */
const std::vector<std::string> all_files = {"audio.rec",  "buffering.rec", "clock-recovery.rec", "metadata.rec",
                                            "tdemux.rec", "usage.rec",     "vdecoder.rec",       "vframer.rec"};

void expect_not_written(const Start& start, const std::string& line)
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
    for (const auto& [scenario, summary] : sources::scenarios())
    {
        const ScratchDirectory directory;
        const Finish finish = run({"sample", scenario, directory.path()});
        EXPECT_EQ(finish.out, "");
        EXPECT_EQ(finish.err, "");
        EXPECT_EQ(finish.status, 0);
        EXPECT_EQ(directory.names(), all_files);
        for (const records::Component& component : records::components())
            EXPECT_EQ(std::filesystem::file_size(directory / (std::string(component.name) + ".rec")), component.record_size)
                << component.name;
    }
}

TEST(Sample, TheBytesAreThoseInMemory)
{
    const records::Snapshot snapshot = sources::sample("idle", 0); // its event times are all 0, whatever the moment
    const ScratchDirectory directory;
    ASSERT_EQ(run({"sample", "idle", directory.path()}).status, 0);
    for (const records::Component& component : records::components())
    {
        const std::span<const std::byte> record = snapshot.record(component);
        EXPECT_EQ(content_of(directory / (std::string(component.name) + ".rec")),
                  std::string(reinterpret_cast<const char*>(record.data()), record.size()));
    }
}

TEST(Sample, TheModeFollowsTheFileCreationMask)
{
    const ScratchDirectory directory;
    ASSERT_EQ(run({.arguments = {"sample", "idle", directory.path()}, .shell_setup = "umask 027"}).status, 0);
    for (const std::string& name : all_files) EXPECT_EQ(mode_of(directory / name), 0640U) << name;
    ASSERT_EQ(run({.arguments = {"sample", "idle", directory.path()}, .shell_setup = "umask 0"}).status, 0);
    for (const std::string& name : all_files) EXPECT_EQ(mode_of(directory / name), 0666U) << name;
}

TEST(Sample, ReplacesOldFiles)
{
    const ScratchDirectory directory;
    directory.write("usage.rec", std::string(5000, 'x'));
    ASSERT_EQ(run({"sample", "idle", directory.path()}).status, 0);
    EXPECT_EQ(std::filesystem::file_size(directory / "usage.rec"), sizeof(SMGR_DECODER_SDI_USAGE_STATS));
    EXPECT_EQ(directory.names(), all_files);
}

TEST(Sample, LeavesOtherFilesAlone)
{
    const ScratchDirectory directory;
    directory.write("notes.txt", "keep");
    ASSERT_EQ(run({"sample", "idle", directory.path()}).status, 0);
    EXPECT_EQ(content_of(directory / "notes.txt"), "keep");
    EXPECT_EQ(directory.names().size(), all_files.size() + 1);
}

TEST(Sample, NeedsNoStandardStreams)
{
    const ScratchDirectory directory;
    const Finish finish = run({.arguments = {"sample", "idle", directory.path()}, .closed_input = true, .output = Output::closed});
    EXPECT_EQ(finish.err, "");
    EXPECT_EQ(finish.status, 0);
    EXPECT_EQ(directory.names(), all_files);
}

TEST(Sample, IntoAMissingDirectory)
{
    const ScratchDirectory directory;
    const std::string missing = directory / "missing";
    expect_not_written({.arguments = {"sample", "idle", missing}}, "decstats: " + missing + ": No such file or directory");
    EXPECT_TRUE(directory.names().empty());
}

TEST(Sample, IntoAFile)
{
    const ScratchDirectory directory;
    const std::string file = directory.write("file", "keep");
    expect_not_written({.arguments = {"sample", "idle", file}}, "decstats: " + file + ": Not a directory");
    EXPECT_EQ(content_of(file), "keep");
    EXPECT_EQ(directory.names(), std::vector<std::string>{"file"});
}

TEST(Sample, IntoAnEmptyNameIsNotIntoTheCurrentDirectory)
{
    const ScratchDirectory directory;
    expect_not_written({.arguments = {"sample", "idle", ""}, .shell_setup = "cd '" + directory.path() + "'"},
                       "decstats: '': No such file or directory");
    EXPECT_TRUE(directory.names().empty());
}

TEST(Sample, IntoAReadOnlyDirectory)
{
    if (geteuid() == 0) GTEST_SKIP() << "root writes into every directory";
    const ScratchDirectory directory;
    ASSERT_EQ(chmod(directory.path().c_str(), 0500), 0);
    expect_not_written({.arguments = {"sample", "idle", directory.path()}}, "decstats: " + directory.path() + ": Permission denied");
    ASSERT_EQ(chmod(directory.path().c_str(), 0700), 0);
    EXPECT_TRUE(directory.names().empty());
}

TEST(Sample, AFailedWriteLeavesNothingBehindAndOldFilesAsTheyWere)
{
    const ScratchDirectory directory;
    directory.write("tdemux.rec", "old");
    directory.write("usage.rec", "old");
    // A sanitizer's runtime would fail first, on a temporary file of its own; without a folder for it, it does without.
    expect_not_written({.arguments = {"sample", "idle", directory.path()}, .shell_setup = "export TMPDIR=/dev/null; ulimit -f 0"},
                       "decstats: " + (directory / "tdemux.rec") + ": File too large");
    EXPECT_EQ(directory.names(), (std::vector<std::string>{"tdemux.rec", "usage.rec"}));
    EXPECT_EQ(content_of(directory / "tdemux.rec"), "old");
    EXPECT_EQ(content_of(directory / "usage.rec"), "old");
}

TEST(Sample, ANameThatIsTakenByADirectory)
{
    const ScratchDirectory directory;
    std::filesystem::create_directory(directory / "tdemux.rec");
    expect_not_written({.arguments = {"sample", "idle", directory.path()}}, "decstats: " + (directory / "tdemux.rec") + ": Is a directory");
    EXPECT_EQ(directory.names(), std::vector<std::string>{"tdemux.rec"});
}

TEST(Sample, WhatIsNotARegularFileIsNeverReplaced)
{
    const ScratchDirectory directory;
    const std::string target = directory.write("target", "keep");
    directory.write("audio.rec", "old");
    const std::string taken = directory / "usage.rec"; // the last of the set
    const auto expect_refused = [&](std::filesystem::file_type type)
    {
        const Finish finish = run({"sample", "idle", directory.path()});
        EXPECT_EQ(finish.err, "decstats: " + taken + ": is not a regular file, so it is not replaced\n");
        EXPECT_EQ(finish.status, 2);
        EXPECT_EQ(std::filesystem::symlink_status(taken).type(), type);
        EXPECT_EQ(directory.names(), (std::vector<std::string>{"audio.rec", "target", "usage.rec"}));
        EXPECT_EQ(content_of(directory / "audio.rec"), "old");
        std::filesystem::remove(taken);
    };
    ASSERT_EQ(mkfifo(taken.c_str(), 0600), 0);
    expect_refused(std::filesystem::file_type::fifo);
    for (const std::string& linked : {target, directory / "missing"})
    {
        std::filesystem::create_symlink(linked, taken);
        expect_refused(std::filesystem::file_type::symlink);
    }
    EXPECT_EQ(content_of(target), "keep");
}

TEST(Sample, TheLastNameIsTakenByADirectory)
{
    const ScratchDirectory directory;
    std::filesystem::create_directory(directory / "usage.rec");
    directory.write("tdemux.rec", "old");
    directory.write("notes.txt", "keep");
    expect_not_written({.arguments = {"sample", "idle", directory.path()}}, "decstats: " + (directory / "usage.rec") + ": Is a directory");
    EXPECT_EQ(directory.names(), (std::vector<std::string>{"notes.txt", "tdemux.rec", "usage.rec"}));
    EXPECT_EQ(content_of(directory / "tdemux.rec"), "old");
}

TEST(Sample, RunsIntoOneDirectoryDoNotMix)
{
    const ScratchDirectory idle;
    const ScratchDirectory extreme;
    ASSERT_EQ(run({"sample", "idle", idle.path()}).status, 0);
    ASSERT_EQ(run({"sample", "extreme", extreme.path()}).status, 0);
    const auto same = [](const ScratchDirectory& one, const ScratchDirectory& other)
    { return std::ranges::all_of(all_files, [&](const std::string& name) { return content_of(one / name) == content_of(other / name); }); };
    ASSERT_FALSE(same(idle, extreme));

    const ScratchDirectory both;
    for (int round = 0; round < 60; ++round)
    {
        // The samples whose records do not depend on the moment.
        std::thread other([&] { EXPECT_EQ(run({"sample", "extreme", both.path()}).status, 0); });
        EXPECT_EQ(run({"sample", "idle", both.path()}).status, 0);
        other.join();
        ASSERT_TRUE(same(both, idle) || same(both, extreme)) << "round " << round;
        ASSERT_EQ(both.names(), all_files);
    }
}
