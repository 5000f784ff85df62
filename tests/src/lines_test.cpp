#include "lines.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "capture.h"
#include "frozen_clock.h"
#include "recording_services.h"
#include "stats.h"

TEST(CounterLine, ZeroPrintsTheBareDigitWhateverItsTime)
{
    ClearServiceCalls();
    EXPECT_EQ(Capture([] { _PrintCounterStatWithTiming("Errors", 0, frozen_now - 9); }), "  Errors                : 0\n");
    EXPECT_EQ(Capture([] { _PrintCounterStatWithTimingIndent2("Errors", 0, frozen_now - 9); }), "    Errors              : 0\n");
    EXPECT_TRUE(ServiceCalls().empty()); // no service for a line that does not show its text
}

TEST(CounterLine, CountedWithoutATimeShowsNever)
{
    EXPECT_EQ(Capture([] { _PrintCounterStatWithTiming("Errors", 5, 0); }), "  Errors                : {ULONG 5 1024} (Last One: Never)\n");
}

TEST(CounterLine, ShowsTheTimeSinceTheLastOne)
{
    EXPECT_EQ(Capture([] { _PrintCounterStatWithTiming("Errors", 18446744073709551615ul, frozen_now - 90); }),
              "  Errors                : {ULONG 18446744073709551615 1024} (Last One: {UpTime 90 1024} ago)\n");
    EXPECT_EQ(Capture([] { _PrintCounterStatWithTimingIndent2("Errors", 7, frozen_now - 1); }),
              "    Errors              : {ULONG 7 1024} (Last One: {UpTime 1 1024} ago)\n");
}

TEST(CounterLine, ALabelOf22CharactersTouchesTheColon)
{
    EXPECT_EQ(Capture([] { _PrintCounterStatWithTiming("Output Pkt List Ovflws", 0, 0); }), "  Output Pkt List Ovflws: 0\n");
}

TEST(CounterLine, ALabelOf23CharactersMovesTheColon)
{
    EXPECT_EQ(Capture([] { _PrintCounterStatWithTiming("Output Pkt List Ovflws2", 0, 0); }), "  Output Pkt List Ovflws2: 0\n");
    EXPECT_EQ(Capture([] { _PrintCounterStatWithTimingIndent2("A label of 21 letters", 0, 0); }), "    A label of 21 letters: 0\n");
}

static std::string Elapsed(time_t theTime)
{
    char szBuffer[100];
    EXPECT_EQ(_GetElapsedTimeString(theTime, szBuffer, sizeof szBuffer), szBuffer);
    return szBuffer;
}

TEST(ElapsedTime, ZeroIsNever)
{
    EXPECT_EQ(Elapsed(0), "Never");
}

TEST(ElapsedTime, OneHourInThePast)
{
    EXPECT_EQ(Elapsed(frozen_now - 3600), "{UpTime 3600 100} ago");
}

TEST(ElapsedTime, TheFutureIsNegative)
{
    EXPECT_EQ(Elapsed(frozen_now + 5), "{UpTime -5 100} ago");
}

TEST(ElapsedTime, ExtremeTimesWrap)
{
    // frozen_now - (-2^63) is 2^63 + frozen_now, which wraps to -2^63 + frozen_now.
    EXPECT_EQ(Elapsed(std::numeric_limits<time_t>::min()), "{UpTime -9223372035200244193 100} ago");
    EXPECT_EQ(Elapsed(std::numeric_limits<time_t>::max()), "{UpTime -9223372035200244192 100} ago");
}

TEST(ElapsedTime, EveryServiceGetsTheCallersSize)
{
    ClearServiceCalls();
    Elapsed(0);
    Elapsed(frozen_now - 1);
    EXPECT_EQ(ServiceCalls(),
              (std::vector<ServiceCall>{{"PrintToString", "Never", 100}, {"UpTime", "1", 100}, {"StringCat", " ago", 100}}));
}

static std::string AbbrevFPS(float fFrameRate)
{
    char szBuffer[12];
    EXPECT_EQ(_GetAbbrevFPSString(fFrameRate, szBuffer, sizeof szBuffer), szBuffer);
    return szBuffer;
}

TEST(AbbreviatedFrameRate, DropsTrailingZerosAndThePoint)
{
    EXPECT_EQ(AbbrevFPS(0.0f), "0");
    EXPECT_EQ(AbbrevFPS(60.0f), "60");
    EXPECT_EQ(AbbrevFPS(23.976f), "23.98");
    EXPECT_EQ(AbbrevFPS(50.5f), "50.5");
    EXPECT_EQ(AbbrevFPS(100.0f), "100");
    EXPECT_EQ(AbbrevFPS(30.0f), "30");
    EXPECT_EQ(AbbrevFPS(25.0f), "25");
    EXPECT_EQ(AbbrevFPS(29.97f), "29.97");
    EXPECT_EQ(AbbrevFPS(59.9f), "59.9");
    EXPECT_EQ(AbbrevFPS(-1.5f), "-1.5");
    EXPECT_EQ(AbbrevFPS(-0.0f), "-0");
}

TEST(AbbreviatedFrameRate, ShortTextsStayAsTheyAre)
{
    EXPECT_EQ(AbbrevFPS(std::numeric_limits<float>::quiet_NaN()), "nan");
    EXPECT_EQ(AbbrevFPS(std::numeric_limits<float>::infinity()), "inf");
    EXPECT_EQ(AbbrevFPS(-std::numeric_limits<float>::infinity()), "-inf"); // four characters, neither zero nor point
}

TEST(AbbreviatedFrameRate, StopsAfterThreeZeros)
{
    // Cut to 11 characters, 20000000000.00 has lost its point: three zeros go, and nothing more.
    EXPECT_EQ(AbbrevFPS(2e10f), "20000000");
}

TEST(AbbreviatedFrameRate, AHostThatReturnsTheUncutLengthGetsNothingWrittenBehindTheBuffer)
{
    // The whole text has 42 characters and ends in ".00": zeros behind the buffer would be taken for its last ones.
    ReturnUncutLength(true);
    for (size_t nSize = 0; nSize <= 12; nSize++)
    {
        std::string memory(64, '0');
        EXPECT_EQ(_GetAbbrevFPSString(1e38f, memory.data(), nSize), memory.data());
        EXPECT_EQ(memory.substr(nSize), std::string(64 - nSize, '0')) << nSize;
    }
    // What is in the buffer is shortened as if the host had returned its length.
    char szBuffer[12];
    EXPECT_STREQ(_GetAbbrevFPSString(2e10f, szBuffer, sizeof szBuffer), "20000000");
    ReturnUncutLength(false);
}

TEST(AbbreviatedFrameRate, PrintsTwoDecimalsIntoTheCallersBuffer)
{
    ClearServiceCalls();
    AbbrevFPS(50.0f);
    EXPECT_EQ(ServiceCalls(), (std::vector<ServiceCall>{{"PrintToString", "%.2f", 12}}));
}

TEST(SizeWithMaximum, UsesABufferOfItsOwnForEachText)
{
    EXPECT_EQ(Capture([] { _PrintSizeWithMaximum("Input Pkt List Size", 1, 22, frozen_now - 3); }),
              "  Input Pkt List Size   : {ULONG 1 1024} bytes (max={ULONG 22 1024} bytes occurred {UpTime 3 1024} ago)\n");
}
