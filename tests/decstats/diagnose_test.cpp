/** @file diagnose_test.cpp decstats diagnose: its exit status is what monitoring plugins give, whatever goes wrong. */
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tool_run.h"

namespace
{

/** @return the exit status of "decstats diagnose ARGUMENTS" */
Finish diagnose(std::vector<std::string> arguments, Output output = Output::captured)
{
    arguments.insert(arguments.begin(), "diagnose");
    return run(Start{.arguments = std::move(arguments), .output = output});
}

TEST(Diagnose, HealthyAndIdleAreZero)
{
    for (const char* source : {"sample:live-srt-1080i", "sample:rtp-fec-2160p", "sample:idle"})
    {
        const Finish finish = diagnose({source});
        EXPECT_EQ(finish.status, 0) << source;
        EXPECT_EQ(finish.err, "");
    }
    EXPECT_TRUE(diagnose({"sample:live-srt-1080i"}).out.starts_with("Healthy\n"));
    EXPECT_TRUE(diagnose({"sample:idle"}).out.starts_with("Idle\n"));
}

TEST(Diagnose, ThatRatesCannotBeSeenIsSaid)
{
    EXPECT_NE(diagnose({"sample:live-srt-1080i"}).out.find("Rates could not be seen: there is one moment only."), std::string::npos);
}

TEST(Diagnose, CriticalIsTwo)
{
    const Finish trouble = diagnose({"sample:trouble"});
    EXPECT_EQ(trouble.status, 2);
    EXPECT_TRUE(trouble.out.starts_with("No picture for 1m 35s, no sound for 15s\n")) << trouble.out;
    EXPECT_EQ(diagnose({"sample:resolving"}).status, 2);
}

TEST(Diagnose, WhatCannotBeToldIsThree)
{
    const std::vector<std::vector<std::string>> wrong = {{},
                                                         {"--bogus", "sample:idle"},
                                                         {"sample:idle", "more"},
                                                         {"--format", "xml", "sample:idle"},
                                                         {"--explain", "link.nothing"},
                                                         {"--explain", "link.loss", "sample:idle"},
                                                         {"sample:nothing"},
                                                         {"/nonexistent"}};
    for (const auto& arguments : wrong)
    {
        const Finish finish = diagnose(arguments);
        EXPECT_EQ(finish.status, 3) << testing::PrintToString(arguments);
        EXPECT_EQ(finish.out, "");
        EXPECT_TRUE(finish.err.starts_with("decstats: ")) << finish.err;
        EXPECT_EQ(finish.err.find('\n'), finish.err.size() - 1) << finish.err;
    }
    EXPECT_EQ(run({"--bogus", "diagnose", "sample:idle"}).status, 3);
    EXPECT_EQ(diagnose({"sample:trouble"}, Output::full_device).status, 3);
    EXPECT_EQ(diagnose({"sample:live-srt-1080i"}, Output::closed).status, 3);
    EXPECT_EQ(diagnose({"--help"}, Output::full_device).status, 3);
}

TEST(Diagnose, HelpIsZero)
{
    const Finish finish = diagnose({"--help"});
    EXPECT_EQ(finish.status, 0);
    EXPECT_NE(finish.out.find("Exit status: 0 healthy or idle, 1 warning, 2 critical, 3 cannot tell"), std::string::npos);
}

TEST(Diagnose, ExplainsAFinding)
{
    const Finish finish = diagnose({"--explain", "link.loss"});
    EXPECT_EQ(finish.status, 0);
    EXPECT_TRUE(finish.out.starts_with("link.loss\nThe SRT link loses packets for good.\n\nSeverity:   Warning\n")) << finish.out;
}

TEST(Diagnose, JsonIsOneObject)
{
    const Finish finish = diagnose({"sample:trouble", "--format", "json", "--at", "2022-06-14T12:14:00Z"});
    EXPECT_EQ(finish.status, 2);
    EXPECT_TRUE(finish.out.starts_with("{\n  \"schema\": \"decstats-diagnosis/1\",\n")) << finish.out;
    EXPECT_TRUE(finish.out.ends_with("\n}\n"));
    EXPECT_NE(finish.out.find("\"taken_at\": \"2022-06-14T12:14:00.000000000Z\""), std::string::npos) << finish.out;
}

TEST(Diagnose, OtherCommandsKeepTheirStatuses)
{
    EXPECT_EQ(run({"show", "/nonexistent"}).status, 2);
    EXPECT_EQ(run(Start{.arguments = {"demo"}, .output = Output::full_device}).status, 1);
}

} // namespace
