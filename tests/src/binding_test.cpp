// A host that loads the library has four services, those of the usage report. When it learns of the missing ones is its own
// choice: with RTLD_LAZY at the call, so that the reports whose services it has print; with RTLD_NOW at once.

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "capture.h"
#include "frozen_clock.h"
#include "hostsvc.h"
#include "stats.h"

extern "C" char* FormatULONG(unsigned long nValue, char* szBuffer, size_t nSize)
{
    snprintf(szBuffer, nSize, "%lu", nValue);
    return szBuffer;
}

extern "C" char* FormatUpTime(long long nSeconds, char* szBuffer, size_t nSize)
{
    snprintf(szBuffer, nSize, "%llds", nSeconds);
    return szBuffer;
}

extern "C" int PrintToString(char* szBuffer, size_t nSize, const char* pFormat, ...)
{
    return snprintf(szBuffer, nSize, "%s", pFormat);
}

extern "C" char* StringCat(char* szBuffer, const char* pText, size_t nSize)
{
    const std::string text = szBuffer + std::string(pText);
    snprintf(szBuffer, nSize, "%s", text.c_str());
    return szBuffer;
}

TEST(Binding, LazilyLoadedTheUsageReportPrintsWithItsFourServices)
{
    void* library = dlopen(STATS_LIBRARY, RTLD_LAZY | RTLD_LOCAL);
    ASSERT_NE(library, nullptr) << dlerror();
    const auto print = reinterpret_cast<decltype(&STATS_PrintForDecoderUsage)>(dlsym(library, "STATS_PrintForDecoderUsage"));
    ASSERT_NE(print, nullptr);
    SMGR_DECODER_SDI_USAGE_STATS stats = {};
    stats.nNumStarts = 7;
    stats.nNumStops = 9;
    stats.tLastStop = frozen_now - 60;
    const std::string text = Capture([&] { EXPECT_TRUE(print(&stats, STATS_LEVEL_DEBUG)); });
    EXPECT_TRUE(text.starts_with("Usage\n"
                                 "  Start                 : 7 (Last One: Never)\n"
                                 "  Stop                  : 9 (Last One: 60s ago)\n"))
        << text;
    dlclose(library);
}

TEST(Binding, LoadedWithEverythingBoundTheFirstMissingServiceIsNamed)
{
    void* library = dlopen(STATS_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    ASSERT_EQ(library, nullptr);
    const std::string message = dlerror();
    const std::string before = "undefined symbol: ";
    const size_t at = message.find(before);
    ASSERT_NE(at, std::string::npos) << message;
    const std::string missing = message.substr(at + before.size());
    EXPECT_TRUE(missing.starts_with("SessMgr_Get") || missing.starts_with("Format")) << message;
    EXPECT_NE(missing, "FormatULONG");
    EXPECT_NE(missing, "FormatUpTime");
}
