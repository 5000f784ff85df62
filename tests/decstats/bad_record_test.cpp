// Raw records that cannot be read.
#include <gtest/gtest.h>

#include <string>
#include <sys/stat.h>
#include <unistd.h>

#include "component.h"
#include "scratch_directory.h"
#include "tool_run.h"

namespace
{

const std::string audio_size = std::to_string(sizeof(SMGR_DECODER_AUDIO_STATS));
const std::string usage_size = std::to_string(sizeof(SMGR_DECODER_SDI_USAGE_STATS));

void expect_input_error(const Start& start, const std::string& line)
{
    const Finish finish = run(start);
    EXPECT_EQ(finish.err, line + "\n");
    EXPECT_EQ(finish.out, "");
    EXPECT_EQ(finish.status, 2);
}

} // namespace

TEST(BadRecord, TooShort)
{
    const ScratchDirectory directory;
    const std::string file = directory.write("short.rec", std::string(10, '\0'));
    for (const records::Component& component : records::components())
    {
        const std::string name(component.name);
        const std::string article = name == "audio" ? "an" : "a";
        expect_input_error({.arguments = {"print", name, file}}, "decstats: " + file + ": 10 bytes, but " + article + " " + name +
                                                                     " record has " + std::to_string(component.record_size));
    }
}

TEST(BadRecord, ShortByOneByte)
{
    const ScratchDirectory directory;
    const std::size_t size = sizeof(SMGR_DECODER_SDI_USAGE_STATS) - 1;
    const std::string file = directory.write("usage.rec", std::string(size, '\0'));
    expect_input_error({.arguments = {"print", "usage", file}},
                       "decstats: " + file + ": " + std::to_string(size) + " bytes, but a usage record has " + usage_size);
}

TEST(BadRecord, OneByte)
{
    const ScratchDirectory directory;
    const std::string file = directory.write("one.rec", "x");
    expect_input_error({.arguments = {"print", "usage", file}}, "decstats: " + file + ": 1 byte, but a usage record has " + usage_size);
}

TEST(BadRecord, Empty)
{
    const ScratchDirectory directory;
    const std::string file = directory.write("empty.rec", "");
    expect_input_error({.arguments = {"print", "audio", file}}, "decstats: " + file + ": 0 bytes, but an audio record has " + audio_size);
    expect_input_error({.arguments = {"print", "audio", "-"}}, "decstats: standard input: 0 bytes, but an audio record has " + audio_size);
}

TEST(BadRecord, TooLong)
{
    const ScratchDirectory directory;
    const std::size_t size = sizeof(SMGR_DECODER_AUDIO_STATS) + 1;
    const std::string file = directory.write("long.rec", std::string(size, '\0'));
    expect_input_error({.arguments = {"print", "audio", file}},
                       "decstats: " + file + ": " + std::to_string(size) + " bytes, but an audio record has " + audio_size);
}

TEST(BadRecord, MuchTooLong)
{
    const ScratchDirectory directory;
    const std::string file = directory.write("long.rec", "");
    ASSERT_EQ(truncate(file.c_str(), 6'000'000'000), 0);
    const std::string line = ": 6000000000 bytes, but an audio record has " + audio_size;
    expect_input_error({.arguments = {"print", "audio", file}}, "decstats: " + file + line);
    expect_input_error({.arguments = {"print", "audio", "-"}, .input_file = file}, "decstats: standard input" + line);
}

TEST(BadRecord, TooLongThroughAPipe)
{
    expect_input_error({.arguments = {"print", "audio", "-"}, .input = {std::string(60000, '\0')}},
                       "decstats: standard input: more than " + audio_size + " bytes, but an audio record has " + audio_size);
}

TEST(BadRecord, Endless)
{
    expect_input_error({.arguments = {"print", "audio", "/dev/zero"}},
                       "decstats: /dev/zero: more than " + audio_size + " bytes, but an audio record has " + audio_size);
}

TEST(BadRecord, Missing)
{
    const ScratchDirectory directory;
    const std::string file = directory / "missing.rec";
    expect_input_error({.arguments = {"print", "audio", file}}, "decstats: " + file + ": No such file or directory");
}

TEST(BadRecord, AnEmptyNameIsSeen)
{
    expect_input_error({.arguments = {"print", "audio", ""}}, "decstats: '': No such file or directory");
}

TEST(BadRecord, ADirectory)
{
    const ScratchDirectory directory;
    expect_input_error({.arguments = {"print", "audio", directory.path()}}, "decstats: " + directory.path() + ": Is a directory");
}

TEST(BadRecord, NotReadable)
{
    if (geteuid() == 0) GTEST_SKIP() << "root reads every file";
    const ScratchDirectory directory;
    const std::string file = directory.write("secret.rec", "secret");
    ASSERT_EQ(chmod(file.c_str(), 0), 0);
    expect_input_error({.arguments = {"print", "audio", file}}, "decstats: " + file + ": Permission denied");
}

TEST(BadRecord, StandardInputIsClosed)
{
    expect_input_error({.arguments = {"print", "audio", "-"}, .closed_input = true}, "decstats: standard input: Bad file descriptor");
}
