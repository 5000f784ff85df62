// Version records of the library and of other files.
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <string>
#include <string_view>
#include <unistd.h>

#include "qrversioninfo.h"
#include "scratch_directory.h"
#include "tool_run.h"

namespace
{

constexpr std::size_t record_size = 274;

struct Texts
{
    std::string description = "Statistics Printing Library";
    std::string revision = "4711";
    std::string copyright = "Copyright (c) 2021";
    std::string build = "build-7";
    std::string date = "Feb  3 2021";
    std::string time = "04:05:06";
    std::string notes = {};
};

/** The bytes of a record of version 2.17, laid out by offset. A text as long as its field has no NUL. */
std::string record_of(const Texts& texts)
{
    std::string record(record_size, '\0');
    const auto put = [&record](std::size_t offset, const std::string& text) { record.replace(offset, text.size(), text); };
    put(0, "Q$R$V$B$L$O$B<>.");
    put(16, std::string("\x12\x01\0\0", 4));
    put(20, "\x02\x11");
    put(22, texts.revision);
    put(34, texts.description);
    put(98, texts.copyright);
    put(130, texts.build);
    put(162, texts.date);
    put(178, texts.time);
    put(194, texts.notes);
    return record;
}

/** What decstats prints of record_of(Texts()). */
std::string printed(std::uint64_t offset)
{
    return "Description: Statistics Printing Library\n"
           "Version    : 2.17\n"
           "Revision   : 4711\n"
           "Build      : build-7\n"
           "Date       : Feb  3 2021\n"
           "Time       : 04:05:06\n"
           "Copyright  : Copyright (c) 2021\n"
           "Offset     : " +
           std::to_string(offset) + "\n";
}

void expect_output(const Start& start, const std::string& output)
{
    const Finish finish = run(start);
    EXPECT_EQ(finish.out, output);
    EXPECT_EQ(finish.err, "");
    EXPECT_EQ(finish.status, 0);
}

void expect_input_error(const Start& start, const std::string& line)
{
    const Finish finish = run(start);
    EXPECT_EQ(finish.err, line + "\n");
    EXPECT_EQ(finish.out, "");
    EXPECT_EQ(finish.status, 2);
}

/** What decstats has to print of the report library's file; the moment of the build is read from the file's own bytes. */
std::string printed_of_library()
{
    const std::string content = content_of(STATS_FILE);
    const std::size_t offset = content.find(QRVERSIONINFO_SIGNATURE);
    EXPECT_NE(offset, std::string::npos);
    EXPECT_EQ(content.find(QRVERSIONINFO_SIGNATURE, offset + 1), std::string::npos);
    return "Description: Statistics Printing Library\n"
           "Version    : 1.3\n"
           "Revision   : 22816\n"
           "Build      : tarvex4_dec_v1.3.2-10\n"
           "Date       : " +
           std::string(content.c_str() + offset + 162) +
           "\n"
           "Time       : " +
           std::string(content.c_str() + offset + 178) +
           "\n"
           "Copyright  : Copyright (c) 2022 Maintainers\n"
           "Offset     : " +
           std::to_string(offset) + "\n";
}

} // namespace

TEST(Version, OfTheLibrarysFile)
{
    expect_output({.arguments = {"version", STATS_FILE}}, printed_of_library());
}

TEST(Version, OfTheToolAndTheLibraryThatItLoads)
{
    expect_output({.arguments = {"version"}}, "decstats " DECSTATS_VERSION "\n\nLibrary    : " +
                                                  std::filesystem::canonical(STATS_FILE).string() + "\n" + printed_of_library());
}

TEST(Version, OfALibraryWithoutAVersionRecord)
{
    const Finish finish = run({"--library", EMPTY_STATS_FILE, "version"});
    const std::string path = std::filesystem::canonical(EMPTY_STATS_FILE).string();
    EXPECT_EQ(finish.out, "decstats " DECSTATS_VERSION "\n\nLibrary    : " + path + "\n");
    EXPECT_EQ(finish.err, "decstats: " + path + ": no version record found\n");
    EXPECT_EQ(finish.status, 2);
}

TEST(Version, OfACoreImage)
{
    std::string wrong_size = record_of({});
    wrong_size[16] = '\x13';
    const std::string endless[] = {
        record_of({.description = std::string(64, 'd')}), record_of({.revision = std::string(12, 'r')}),
        record_of({.copyright = std::string(32, 'c')}),   record_of({.build = std::string(32, 'b')}),
        record_of({.date = std::string(16, 'd')}),        record_of({.time = std::string(16, 't')}),
        record_of({.notes = std::string(80, 'n')}),
    };

    std::string core(5000, '\xa5');
    core += wrong_size;
    const std::size_t first = core.size();
    core += record_of({});
    for (const std::string& record : endless) core += record;
    core += std::string(777, 'Q');
    core += "Q$R$V$B$L$O$B<>."; // a signature whose record would reach into the next one
    const std::size_t second = core.size();
    core += record_of({});
    core += "Q$R$V$B$L$O$B<>!";
    core += record_of({}).substr(0, record_size - 1);

    const ScratchDirectory directory;
    expect_output({.arguments = {"version", directory.write("core", core)}}, printed(first) + "\n" + printed(second));
}

TEST(Version, OneAfterTheOther)
{
    const ScratchDirectory directory;
    const std::string file = directory.write("two", record_of({}) + record_of({}));
    expect_output({.arguments = {"version", file}}, printed(0) + "\n" + printed(record_size));
}

TEST(Version, AcrossEveryPlaceWhereAReadMayEnd)
{
    // Records on both sides of, and across, the multiples of 64 KiB, at a distance that shifts by an odd number.
    std::string content(5 * 1024 * 1024, '\0');
    std::string expected;
    for (std::size_t block = 1; block * 65536 + record_size < content.size(); ++block)
    {
        const std::size_t offset = block * 65536 - (block * 37) % (record_size + 30);
        content.replace(offset, record_size, record_of({}));
        expected += (expected.empty() ? "" : "\n") + printed(offset);
    }
    const ScratchDirectory directory;
    expect_output({.arguments = {"version", directory.write("blocks", content)}}, expected);
}

TEST(Version, AcrossTheEndOfTheReadBufferAtEveryDistance)
{
    constexpr std::size_t buffer = 64 * 1024;
    const ScratchDirectory directory;
    for (const std::size_t before : {0UL, 1UL, 15UL, 16UL, 17UL, 20UL, 272UL, 273UL, 274UL, 275UL})
    {
        std::string content(buffer + 1000, '\0');
        content.replace(buffer - before, record_size, record_of({}));
        expect_output({.arguments = {"version", directory.write("edge", content)}}, printed(buffer - before));
    }
}

TEST(Version, AtTheEndOfALargeFileWithinLittleMemory)
{
    constexpr std::uint64_t size = 512ULL * 1024 * 1024;
    const ScratchDirectory directory;
    const std::string file = directory.write("core", "");
    ASSERT_EQ(truncate(file.c_str(), static_cast<off_t>(size)), 0);
    std::ofstream(file, std::ios::binary | std::ios::app) << record_of({});

    const Finish finish = run({"version", file});
    EXPECT_EQ(finish.out, printed(size));
    EXPECT_EQ(finish.status, 0);
    EXPECT_LT(finish.peak_memory, 128 * 1024);
}

TEST(Version, FromStandardInput)
{
    expect_output({.arguments = {"version", "-"}, .input = {"xyz" + record_of({}).substr(0, 9), record_of({}).substr(9)}}, printed(3));
}

TEST(Version, TextsThatFillTheirFields)
{
    const std::string description(63, 'd');
    const std::string notes(79, 'n');
    const ScratchDirectory directory;
    const std::string file = directory.write("full", record_of({.description = description, .revision = "12345678901", .notes = notes}));
    expect_output({.arguments = {"version", file}}, "Description: " + description +
                                                        "\n"
                                                        "Version    : 2.17\n"
                                                        "Revision   : 12345678901\n"
                                                        "Build      : build-7\n"
                                                        "Date       : Feb  3 2021\n"
                                                        "Time       : 04:05:06\n"
                                                        "Copyright  : Copyright (c) 2021\n"
                                                        "Notes      : " +
                                                        notes +
                                                        "\n"
                                                        "Offset     : 0\n");
}

TEST(Version, TextsThatAreEmpty)
{
    const ScratchDirectory directory;
    const std::string file = directory.write(
        "bare", record_of({.description = "", .revision = "", .copyright = "", .build = "", .date = "", .time = "", .notes = ""}));
    expect_output({.arguments = {"version", file}}, "Description: None\n"
                                                    "Version    : 2.17\n"
                                                    "Revision   : None\n"
                                                    "Build      : None\n"
                                                    "Date       : None\n"
                                                    "Time       : None\n"
                                                    "Copyright  : None\n"
                                                    "Offset     : 0\n");
}

TEST(Version, BytesThatAreNotPrintableAreEscaped)
{
    const ScratchDirectory directory;
    const std::string file = directory.write("control", record_of({.description = "a\x1b[2Jb\nc\x7f"
                                                                                  "d\x80\xff~ \t",
                                                                   .notes = "\x01"}));
    const Finish finish = run({"version", file});
    EXPECT_TRUE(finish.out.starts_with("Description: a\\x1b[2Jb\\x0ac\\x7fd\\x80\\xff~ \\x09\nVersion    : 2.17\n")) << finish.out;
    EXPECT_NE(finish.out.find("\nNotes      : \\x01\n"), std::string::npos);
    EXPECT_EQ(finish.status, 0);
}

TEST(Version, TheToolItselfHoldsNoSignature)
{
    EXPECT_EQ(content_of(DECSTATS_FILE).find(QRVERSIONINFO_SIGNATURE), std::string::npos);
    expect_input_error({.arguments = {"version", DECSTATS_FILE}}, "decstats: " DECSTATS_FILE ": no version record found");
}

TEST(Version, OfFilesWithoutARecord)
{
    const ScratchDirectory directory;
    const std::string empty = directory.write("empty", "");
    const std::string truncated = directory.write("truncated", record_of({}).substr(0, record_size - 1));
    const std::string missing = directory / "missing";
    expect_input_error({.arguments = {"version", empty}}, "decstats: " + empty + ": no version record found");
    expect_input_error({.arguments = {"version", truncated}}, "decstats: " + truncated + ": no version record found");
    expect_input_error({.arguments = {"version", missing}}, "decstats: " + missing + ": No such file or directory");
    expect_input_error({.arguments = {"version", directory.path()}}, "decstats: " + directory.path() + ": Is a directory");
    expect_input_error({.arguments = {"version", ""}}, "decstats: '': No such file or directory");
}
