/** @file manual_test.cpp The manual page decstats-findings(5) has a section for every rule, and says what the rule says. */
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>

#include "explanation.h"

namespace
{

std::string page()
{
    std::ifstream file(FINDINGS_PAGE);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

/** What stands between two headings. */
std::string findings_of(const std::string& text)
{
    const std::string heading = ".Sh FINDINGS\n";
    const std::size_t begin = text.find(heading);
    const std::size_t end = text.find(".Sh JSON\n");
    if (begin == std::string::npos || end == std::string::npos) return "";
    return text.substr(begin + heading.size(), end - begin - heading.size());
}

TEST(Manual, HasTheRulesAndNothingElse)
{
    std::string expected;
    for (const diagnosis::Rule* rule : diagnosis::rules()) expected += diagnosis::manual_section(*rule);
    const std::string written = findings_of(page());
    if (written == expected) return;

    const std::string path = std::string(WORK_FOLDER) + "/findings.mdoc";
    std::ofstream(path) << expected;
    FAIL() << "the section FINDINGS of " << FINDINGS_PAGE << " is not what the rules say, which is in " << path;
}

TEST(Manual, SectionsAreOfTheRulesTexts)
{
    const diagnosis::Rule* rule = diagnosis::find_rule("audio.lip-sync");
    ASSERT_NE(rule, nullptr);
    const std::string section = diagnosis::manual_section(*rule);
    EXPECT_TRUE(section.starts_with(".Ss audio.lip-sync\nSound and picture are out of step.\n")) << section;
    EXPECT_NE(section.find("\n.It Severity\nWarning\n"), std::string::npos);
    EXPECT_NE(section.find("ITU-R BT.1359-1"), std::string::npos);
    EXPECT_NE(section.find("\n.Li audio.pairs[].av_offset\n.El\n"), std::string::npos);
}

TEST(Explanation, WrapsAtAHundredColumns)
{
    for (const diagnosis::Rule* rule : diagnosis::rules())
    {
        std::istringstream lines(diagnosis::explanation(*rule));
        for (std::string line; std::getline(lines, line);) EXPECT_LE(line.size(), 100U) << line;
    }
}

TEST(Explanation, ReadsAsPeopleExpect)
{
    const std::string text = diagnosis::explanation(*diagnosis::find_rule("vdecoder.no-memory"));
    EXPECT_TRUE(text.starts_with(
        "vdecoder.no-memory\nThe codec unit has no memory for the stream.\n\nSeverity:   Critical\nStage:      Video decoder\n"
        "Found when: The decoder says that it is idle for lack of memory.\n"))
        << text;
}

} // namespace
