// A host may have a function of its own by the name of one that the library exports. The host's calls reach the host's
// function; the library's calls stay within the library.

#include <gtest/gtest.h>

#include <cstdio>

#include "capture.h"
#include "stats.h"

extern "C" char* _GetAbbrevFPSString(float, char* szBuffer, size_t nSize)
{
    snprintf(szBuffer, nSize, "the host's");
    return szBuffer;
}

TEST(Interposition, TheHostsFunctionDoesNotTakeThePlaceOfTheLibrarys)
{
    char szBuffer[12];
    EXPECT_STREQ(_GetAbbrevFPSString(29.97f, szBuffer, sizeof szBuffer), "the host's");

    SMGR_VFRAMER_STATS stats = {};
    stats.enState = SMGR_VFRAMER_STATE_ACTIVE;
    stats.tCurrentProperties.nWidth = 1920;
    stats.tCurrentProperties.nHeight = 1080;
    stats.tCurrentProperties.fFrameRate = 29.97f;
    const std::string text = Capture([&] { STATS_PrintForVFramer(&stats, STATS_LEVEL_DEBUG); });
    EXPECT_NE(text.find(": 1920x1080p29.97\n"), std::string::npos) << text;
    EXPECT_EQ(text.find("the host's"), std::string::npos) << text;
}
