#include <gtest/gtest.h>

#include "capture.h"
#include "frozen_clock.h"
#include "recording_services.h"
#include "stats.h"

static SMGR_DECODER_SDI_USAGE_STATS FullRecord()
{
    return {11, frozen_now - 1, 12, frozen_now - 2, 13, frozen_now - 3, 14, frozen_now - 4, 15, frozen_now - 5,
            16, frozen_now - 6, 17, frozen_now - 7, 18, frozen_now - 8, 19, frozen_now - 9};
}

static std::string Print(const SMGR_DECODER_SDI_USAGE_STATS& tStats, int nLevel)
{
    return Capture([&] { EXPECT_EQ(STATS_PrintForDecoderUsage(&tStats, static_cast<STATS_LEVEL>(nLevel)), TRUE); });
}

TEST(UsageReport, PrintsNothingBelowDebug)
{
    const SMGR_DECODER_SDI_USAGE_STATS tStats = FullRecord();
    EXPECT_EQ(Print(tStats, 0), "");
    EXPECT_EQ(Print(tStats, 2), "");
    EXPECT_EQ(Print(tStats, -1), "");
}

TEST(UsageReport, DoesNotReadTheRecordBelowDebug)
{
    EXPECT_EQ(Capture([] { EXPECT_EQ(STATS_PrintForDecoderUsage(nullptr, STATS_LEVEL_DEFAULT), TRUE); }), "");
}

TEST(UsageReport, ARecordOfZerosPrintsNineBareLines)
{
    EXPECT_EQ(Print({}, 1), "Usage\n"
                            "  Start                 : 0\n"
                            "  Stop                  : 0\n"
                            "  Get Stats             : 0\n"
                            "  Get Info              : 0\n"
                            "  Configure             : 0\n"
                            "  Capture               : 0\n"
                            "  Clear                 : 0\n"
                            "  Load Config           : 0\n"
                            "  Save Config           : 0\n");
}

TEST(UsageReport, EveryLineShowsItsOwnCountAndTime)
{
    EXPECT_EQ(Print(FullRecord(), 1), "Usage\n"
                                      "  Start                 : {ULONG 11 1024} (Last One: {UpTime 1 1024} ago)\n"
                                      "  Stop                  : {ULONG 12 1024} (Last One: {UpTime 2 1024} ago)\n"
                                      "  Get Stats             : {ULONG 13 1024} (Last One: {UpTime 3 1024} ago)\n"
                                      "  Get Info              : {ULONG 14 1024} (Last One: {UpTime 4 1024} ago)\n"
                                      "  Configure             : {ULONG 15 1024} (Last One: {UpTime 5 1024} ago)\n"
                                      "  Capture               : {ULONG 16 1024} (Last One: {UpTime 6 1024} ago)\n"
                                      "  Clear                 : {ULONG 17 1024} (Last One: {UpTime 7 1024} ago)\n"
                                      "  Load Config           : {ULONG 18 1024} (Last One: {UpTime 8 1024} ago)\n"
                                      "  Save Config           : {ULONG 19 1024} (Last One: {UpTime 9 1024} ago)\n");
}

TEST(UsageReport, CountedWithoutATimeShowsNever)
{
    SMGR_DECODER_SDI_USAGE_STATS tStats = {};
    tStats.nNumCaptures = 2;
    EXPECT_EQ(LineOf(Print(tStats, 1), "Capture"), "  Capture               : {ULONG 2 1024} (Last One: Never)");
}
