// The contract that all services share: the size of the buffer, texts for every value, threads and locales.
#include <atomic>
#include <clocale>
#include <set>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "calls.h"
#include "service_text.h"

TEST(Contract, EveryServiceIsCalled)
{
    std::set<std::string> services;
    VisitCalls([&](const char* szService, auto...) { services.insert(szService); });
    EXPECT_EQ(services.size(), 31U);
}

TEST(Contract, TextLongerThanTheBufferIsCutAndTerminated)
{
    constexpr char GUARD = 'Z';
    const std::string guard(16, GUARD);
    const auto expectCut = [&](const char* szService, const std::string& text, auto service, auto... values)
    {
        // From no buffer at all to one that is larger than the text with its NUL.
        for (size_t nSize = 0; nSize <= text.size() + 2; ++nSize)
        {
            SCOPED_TRACE(szService + (", text " + text) + ", size " + std::to_string(nSize));
            std::string memory(guard.size() + nSize + guard.size(), GUARD);
            char* const szBuffer = memory.data() + guard.size();
            EXPECT_EQ(static_cast<void*>(service(values..., szBuffer, nSize)), static_cast<void*>(szBuffer));

            if (nSize > 0)
            {
                const std::string expected = text.substr(0, nSize - 1);
                EXPECT_EQ(std::string(szBuffer, expected.size()), expected);
                EXPECT_EQ(szBuffer[expected.size()], '\0');
            }
            EXPECT_EQ(memory.substr(0, guard.size()), guard);
            EXPECT_EQ(memory.substr(guard.size() + nSize), guard);
        }
    };
    VisitCalls(expectCut);
}

TEST(Contract, SizeZeroAllowsNoBuffer)
{
    VisitCalls([](const char* szService, const char*, auto service, auto... values)
        { EXPECT_EQ(static_cast<void*>(service(values..., nullptr, 0)), nullptr) << szService; });
}

TEST(Contract, ValueOutsideItsEnumerationHasAText)
{
    EXPECT_EQ(Text(SessMgr_GetTDemuxCompressionTypeString, 3), "Unknown (3)");
    EXPECT_EQ(Text(SessMgr_GetVideoColorTypeString, 7), "Unknown (7)");
    EXPECT_EQ(Text(SessMgr_GetErrorString, 96), "Unknown (96)");
    EXPECT_EQ(Text(SessMgr_GetCBufferingModeString, 9), "Unknown (9)");
}

TEST(Contract, WarningHeldInAnIntIsTranslated)
{
    // SMGR_WARNING_STREAM_HAS_UNSTARTED_CONTENT_SOURCE
    const std::string text = Text(SessMgr_GetErrorString, -2147483646);
    EXPECT_NE(text, "");
    EXPECT_EQ(text.find("Unknown"), std::string::npos) << text;
}

TEST(Contract, ThreadsDoNotDisturbEachOther)
{
    constexpr int THREADS = 8;
    constexpr int ROUNDS = 200;
    std::atomic<int> nWaiting = THREADS;
    std::atomic<int> nCalls = 0;
    std::atomic<int> nWrong = 0;
    const auto call = [&](const char*, const char* szText, auto service, auto... values)
    {
        char szBuffer[1024];
        if (std::string_view(service(values..., szBuffer, sizeof(szBuffer))) != szText) ++nWrong;
        ++nCalls;
    };
    const auto run = [&]
    {
        // Starts together with the others, so that their calls overlap.
        for (--nWaiting; nWaiting > 0;) std::this_thread::yield();
        for (int nRound = 0; nRound < ROUNDS; ++nRound) VisitCalls(call);
    };
    std::vector<std::thread> threads;
    for (int nThread = 0; nThread < THREADS; ++nThread) threads.emplace_back(run);
    for (std::thread& thread : threads) thread.join();
    EXPECT_GE(nCalls, THREADS * ROUNDS * 31);
    EXPECT_EQ(nWrong, 0);
}

TEST(Contract, TextsDoNotDependOnTheLocale)
{
    // Locales with a decimal comma and with grouping; the build makes the first where it can.
    bool bTested = false;
    for (const char* szLocale : {"de_DE.UTF-8", "fr_FR.UTF-8", "pt_BR.UTF-8"})
    {
        if (std::setlocale(LC_ALL, szLocale) == nullptr) continue;
        bTested = true;
        const auto expectText = [&](const char* szService, const char* szText, auto service, auto... values)
        {
            char szBuffer[1024];
            service(values..., szBuffer, sizeof(szBuffer));
            // PrintToString prints as snprintf does, with the locale's decimal point: the proof that the locale is in force.
            const std::string_view expected = std::string_view(szService) == "PrintToString" ? "1920x1080p 29,97" : szText;
            EXPECT_EQ(szBuffer, expected) << szService << " in " << szLocale;
        };
        VisitCalls(expectText);
    }
    std::setlocale(LC_ALL, "C");
    if (!bTested) GTEST_SKIP() << "no locale with a decimal comma on this machine";
}
