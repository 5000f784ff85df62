// The texts of numbers, rates and durations around every threshold, and the services that build a text step by step.
#include <cstdint>
#include <cwchar>

#include "hostsvc.h"
#include "service_text.h"

TEST(FormatULONG, ZeroHasAText)
{
    EXPECT_EQ(Text(FormatULONG, 0UL), "0");
}

TEST(FormatULONG, WritesAllDigitsWithoutGrouping)
{
    EXPECT_EQ(Text(FormatULONG, 9UL), "9");
    EXPECT_EQ(Text(FormatULONG, 10UL), "10");
    EXPECT_EQ(Text(FormatULONG, 999UL), "999");
    EXPECT_EQ(Text(FormatULONG, 1000UL), "1000");
    EXPECT_EQ(Text(FormatULONG, 1234567UL), "1234567");
    EXPECT_EQ(Text(FormatULONG, 4294967296UL), "4294967296");
}

TEST(FormatULONG, LargestValueHasAllTwentyDigits)
{
    EXPECT_EQ(Text(FormatULONG, ULONG_MAX), "18446744073709551615");
}

TEST(FormatLONGLONG, WritesAllDigits)
{
    EXPECT_EQ(Text(FormatLONGLONG, 0LL), "0");
    EXPECT_EQ(Text(FormatLONGLONG, 5LL), "5");
    EXPECT_EQ(Text(FormatLONGLONG, 1234567LL), "1234567");
    EXPECT_EQ(Text(FormatLONGLONG, LLONG_MAX), "9223372036854775807");
}

TEST(FormatLONGLONG, NegativeValueKeepsItsSign)
{
    EXPECT_EQ(Text(FormatLONGLONG, -1LL), "-1");
    EXPECT_EQ(Text(FormatLONGLONG, -5LL), "-5");
    EXPECT_EQ(Text(FormatLONGLONG, -2147483648LL), "-2147483648");
    EXPECT_EQ(Text(FormatLONGLONG, LLONG_MIN), "-9223372036854775808");
}

TEST(FormatBitRate, BelowOneKilobitCountsBits)
{
    EXPECT_EQ(Text(FormatBitRate, 0UL), "0 bps");
    EXPECT_EQ(Text(FormatBitRate, 1UL), "1 bps");
    EXPECT_EQ(Text(FormatBitRate, 950UL), "950 bps");
    EXPECT_EQ(Text(FormatBitRate, 999UL), "999 bps");
}

TEST(FormatBitRate, LargerRatesHaveTwoDecimals)
{
    EXPECT_EQ(Text(FormatBitRate, 1000UL), "1.00 kbps");
    EXPECT_EQ(Text(FormatBitRate, 64000UL), "64.00 kbps");
    EXPECT_EQ(Text(FormatBitRate, 1000000UL), "1.00 Mbps");
    EXPECT_EQ(Text(FormatBitRate, 12500000UL), "12.50 Mbps");
    EXPECT_EQ(Text(FormatBitRate, 1000000000UL), "1.00 Gbps");
    EXPECT_EQ(Text(FormatBitRate, 1200000000UL), "1.20 Gbps");
}

TEST(FormatBitRate, RoundsHalfUp)
{
    EXPECT_EQ(Text(FormatBitRate, 1004UL), "1.00 kbps");
    EXPECT_EQ(Text(FormatBitRate, 1005UL), "1.01 kbps");
    EXPECT_EQ(Text(FormatBitRate, 1014UL), "1.01 kbps");
    EXPECT_EQ(Text(FormatBitRate, 1004999UL), "1.00 Mbps");
    EXPECT_EQ(Text(FormatBitRate, 1005000UL), "1.01 Mbps");
    EXPECT_EQ(Text(FormatBitRate, 1004999999UL), "1.00 Gbps");
    EXPECT_EQ(Text(FormatBitRate, 1005000000UL), "1.01 Gbps");
}

TEST(FormatBitRate, RoundingNeverReachesAThousandOfAUnit)
{
    EXPECT_EQ(Text(FormatBitRate, 999994UL), "999.99 kbps");
    EXPECT_EQ(Text(FormatBitRate, 999995UL), "1.00 Mbps");
    EXPECT_EQ(Text(FormatBitRate, 999999UL), "1.00 Mbps");
    EXPECT_EQ(Text(FormatBitRate, 999994999UL), "999.99 Mbps");
    EXPECT_EQ(Text(FormatBitRate, 999995000UL), "1.00 Gbps");
}

TEST(FormatBitRate, GigabitIsTheLargestUnit)
{
    EXPECT_EQ(Text(FormatBitRate, 4294967295UL), "4.29 Gbps");
    EXPECT_EQ(Text(FormatBitRate, 1000000000000UL), "1000.00 Gbps");
    EXPECT_EQ(Text(FormatBitRate, ULONG_MAX), "18446744073.71 Gbps");
}

TEST(FormatMicroSeconds, UnitFollowsTheMagnitude)
{
    EXPECT_EQ(Text(FormatMicroSeconds, 0LL), "0us");
    EXPECT_EQ(Text(FormatMicroSeconds, 850LL), "850us");
    EXPECT_EQ(Text(FormatMicroSeconds, 999LL), "999us");
    EXPECT_EQ(Text(FormatMicroSeconds, 1000LL), "1.000ms");
    EXPECT_EQ(Text(FormatMicroSeconds, 12345LL), "12.345ms");
    EXPECT_EQ(Text(FormatMicroSeconds, 999999LL), "999.999ms");
    EXPECT_EQ(Text(FormatMicroSeconds, 1000000LL), "1.000s");
    EXPECT_EQ(Text(FormatMicroSeconds, 60000000LL), "60.000s");
    EXPECT_EQ(Text(FormatMicroSeconds, LLONG_MAX), "9223372036854.775s");
}

TEST(FormatMicroSeconds, FurtherDigitsAreDropped)
{
    EXPECT_EQ(Text(FormatMicroSeconds, 1000999LL), "1.000s");
    EXPECT_EQ(Text(FormatMicroSeconds, 1234567LL), "1.234s");
    EXPECT_EQ(Text(FormatMicroSeconds, 1999999LL), "1.999s");
}

TEST(FormatMicroSeconds, NegativeValueKeepsItsSign)
{
    EXPECT_EQ(Text(FormatMicroSeconds, -1LL), "-1us");
    EXPECT_EQ(Text(FormatMicroSeconds, -999LL), "-999us");
    EXPECT_EQ(Text(FormatMicroSeconds, -12345LL), "-12.345ms");
    EXPECT_EQ(Text(FormatMicroSeconds, -1234567LL), "-1.234s");
    EXPECT_EQ(Text(FormatMicroSeconds, LLONG_MIN), "-9223372036854.775s");
}

TEST(FormatMilliSeconds, UnitFollowsTheMagnitude)
{
    EXPECT_EQ(Text(FormatMilliSeconds, 0LL), "0ms");
    EXPECT_EQ(Text(FormatMilliSeconds, 120LL), "120ms");
    EXPECT_EQ(Text(FormatMilliSeconds, 999LL), "999ms");
    EXPECT_EQ(Text(FormatMilliSeconds, 1000LL), "1.000s");
    EXPECT_EQ(Text(FormatMilliSeconds, 1500LL), "1.500s");
    EXPECT_EQ(Text(FormatMilliSeconds, 59999LL), "59.999s");
}

TEST(FormatMilliSeconds, FromOneMinuteOnItIsAnUpTime)
{
    EXPECT_EQ(Text(FormatMilliSeconds, 60000LL), "1m 00s");
    EXPECT_EQ(Text(FormatMilliSeconds, 60999LL), "1m 00s");
    EXPECT_EQ(Text(FormatMilliSeconds, 61000LL), "1m 01s");
    EXPECT_EQ(Text(FormatMilliSeconds, 7387000LL), "2h 03m 07s");
    EXPECT_EQ(Text(FormatMilliSeconds, LLONG_MAX), "106751991167d 07h 12m 55s");
}

TEST(FormatMilliSeconds, NegativeValueKeepsItsSign)
{
    EXPECT_EQ(Text(FormatMilliSeconds, -1LL), "-1ms");
    EXPECT_EQ(Text(FormatMilliSeconds, -1500LL), "-1.500s");
    EXPECT_EQ(Text(FormatMilliSeconds, -59999LL), "-59.999s");
    EXPECT_EQ(Text(FormatMilliSeconds, -60000LL), "-1m 00s");
    EXPECT_EQ(Text(FormatMilliSeconds, LLONG_MIN), "-106751991167d 07h 12m 55s");
}

TEST(FormatUpTime, TheLargestPartLeads)
{
    EXPECT_EQ(Text(FormatUpTime, 0LL), "0s");
    EXPECT_EQ(Text(FormatUpTime, 7LL), "7s");
    EXPECT_EQ(Text(FormatUpTime, 45LL), "45s");
    EXPECT_EQ(Text(FormatUpTime, 59LL), "59s");
    EXPECT_EQ(Text(FormatUpTime, 60LL), "1m 00s");
    EXPECT_EQ(Text(FormatUpTime, 187LL), "3m 07s");
    EXPECT_EQ(Text(FormatUpTime, 3599LL), "59m 59s");
    EXPECT_EQ(Text(FormatUpTime, 3600LL), "1h 00m 00s");
    EXPECT_EQ(Text(FormatUpTime, 7387LL), "2h 03m 07s");
    EXPECT_EQ(Text(FormatUpTime, 86399LL), "23h 59m 59s");
    EXPECT_EQ(Text(FormatUpTime, 86400LL), "1d 00h 00m 00s");
    EXPECT_EQ(Text(FormatUpTime, 439387LL), "5d 02h 03m 07s");
    EXPECT_EQ(Text(FormatUpTime, LLONG_MAX), "106751991167300d 15h 30m 07s");
}

TEST(FormatUpTime, NegativeValueKeepsItsSign)
{
    EXPECT_EQ(Text(FormatUpTime, -1LL), "-1s");
    EXPECT_EQ(Text(FormatUpTime, -187LL), "-3m 07s");
    EXPECT_EQ(Text(FormatUpTime, -439387LL), "-5d 02h 03m 07s");
    EXPECT_EQ(Text(FormatUpTime, LLONG_MIN), "-106751991167300d 15h 30m 08s");
}

TEST(PrintToString, TwoDecimalsOf29Point97HaveLength5)
{
    char szBuffer[1024];
    EXPECT_EQ(PrintToString(szBuffer, sizeof(szBuffer), "%.2f", 29.97), 5);
    EXPECT_STREQ(szBuffer, "29.97");
}

TEST(PrintToString, ConvertsAsPrintfDoes)
{
    char szBuffer[1024];
    EXPECT_EQ(PrintToString(szBuffer, sizeof(szBuffer), "%dx%u%c @ %-6s|%5.1f|%02lx|%%", -1920, 1080U, 'p', "50", 2.25, 10UL), 31);
    EXPECT_STREQ(szBuffer, "-1920x1080p @ 50    |  2.2|0a|%");
}

TEST(PrintToString, ReportsTheLengthThatFits)
{
    char szBuffer[] = "........";
    EXPECT_EQ(PrintToString(szBuffer, 5, "%s", "29.97"), 4);
    EXPECT_STREQ(szBuffer, "29.9");
    EXPECT_EQ(PrintToString(szBuffer, 6, "%s", "29.97"), 5);
    EXPECT_STREQ(szBuffer, "29.97");
    EXPECT_EQ(PrintToString(szBuffer, 1, "%s", "29.97"), 0);
    EXPECT_STREQ(szBuffer, "");
}

TEST(PrintToString, SizeZeroWritesNothing)
{
    char szBuffer[] = "kept";
    EXPECT_EQ(PrintToString(szBuffer, 0, "%s", "29.97"), 0);
    EXPECT_STREQ(szBuffer, "kept");
    EXPECT_EQ(PrintToString(nullptr, 0, "%s", "29.97"), 0);
}

TEST(PrintToString, SizeAboveIntIsNoError)
{
    char szBuffer[] = "........";
    EXPECT_EQ(PrintToString(szBuffer, static_cast<size_t>(INT_MAX) + 1, "%d", 42), 2);
    EXPECT_STREQ(szBuffer, "42");
    EXPECT_EQ(PrintToString(szBuffer, SIZE_MAX, "%d", 43), 2);
    EXPECT_STREQ(szBuffer, "43");
}

TEST(PrintToString, ErrorLeavesAnEmptyText)
{
    // No character has this code, so the conversion fails behind the text that has already been written.
    constexpr wint_t NO_CHARACTER = 0x7FFFFFFF;
    char szBuffer[] = "........";
    EXPECT_EQ(PrintToString(szBuffer, sizeof(szBuffer), "ab%lc", NO_CHARACTER), 0);
    EXPECT_STREQ(szBuffer, "");
}

TEST(StringCat, BuildsATextStepByStep)
{
    char szBuffer[1024];
    PrintToString(szBuffer, sizeof(szBuffer), "%dx%d", 1920, 1080);
    EXPECT_EQ(StringCat(szBuffer, "p", sizeof(szBuffer)), szBuffer);
    EXPECT_EQ(StringCat(szBuffer, "", sizeof(szBuffer)), szBuffer);
    EXPECT_EQ(StringCat(szBuffer, " @ 50", sizeof(szBuffer)), szBuffer);
    EXPECT_STREQ(szBuffer, "1920x1080p @ 50");
}

TEST(StringCat, CutsWhatDoesNotFit)
{
    char szBuffer[] = "abc....|";
    szBuffer[3] = '\0';
    EXPECT_EQ(StringCat(szBuffer, "defgh", 7), szBuffer);
    EXPECT_STREQ(szBuffer, "abcdef");
    EXPECT_EQ(szBuffer[7], '|');
}

TEST(StringCat, TextThatJustFitsIsWhole)
{
    char szBuffer[] = "abc....|";
    szBuffer[3] = '\0';
    EXPECT_EQ(StringCat(szBuffer, "def", 7), szBuffer);
    EXPECT_STREQ(szBuffer, "abcdef");
    EXPECT_EQ(szBuffer[7], '|');
}

TEST(StringCat, FullBufferStaysAsItIsAndTerminated)
{
    char szBuffer[] = "abcdef";
    EXPECT_EQ(StringCat(szBuffer, "g", sizeof(szBuffer)), szBuffer);
    EXPECT_STREQ(szBuffer, "abcdef");
}

TEST(StringCat, BufferWithoutNulStaysAsItIs)
{
    char szBuffer[] = "abcdef";
    EXPECT_EQ(StringCat(szBuffer, "xyz", 3), szBuffer);
    EXPECT_STREQ(szBuffer, "abcdef");
}

TEST(StringCat, SizesZeroAndOneWriteNothing)
{
    char szBuffer[] = "\0bcdef";
    EXPECT_EQ(StringCat(szBuffer, "xyz", 0), szBuffer);
    EXPECT_EQ(StringCat(szBuffer, "xyz", 1), szBuffer);
    EXPECT_EQ(szBuffer[0], '\0');
    EXPECT_STREQ(szBuffer + 1, "bcdef");
    EXPECT_EQ(StringCat(nullptr, "xyz", 0), nullptr);
}

TEST(StringCat, ReadsNoFurtherThanItCopies)
{
    const char acText[] = {'d', 'e', 'f', 'g'};
    char szBuffer[7] = "abc";
    EXPECT_EQ(StringCat(szBuffer, acText, sizeof(szBuffer)), szBuffer);
    EXPECT_STREQ(szBuffer, "abcdef");
}
