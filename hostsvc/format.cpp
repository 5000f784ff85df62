/**
 * @file format.cpp
 * Texts of numbers, rates and durations, and the two services that build a text step by step.
 */
#include <climits>
#include <cstdarg>
#include <cstdio>

#include "hostsvc.h"
#include "text.h"

using namespace hostsvc;

/* ---- Numbers ---- */

char* FormatULONG(unsigned long nValue, char* szBuffer, size_t nSize)
{
    return BuildText<NUMBER_LENGTH>(szBuffer, nSize, [=](char* pEnd) { return AppendNumber(pEnd, nValue); });
}

char* FormatLONGLONG(long long nValue, char* szBuffer, size_t nSize)
{
    return BuildText<NUMBER_LENGTH>(szBuffer, nSize, [=](char* pEnd) { return AppendNumber(pEnd, nValue); });
}

/* ---- Rates and durations ---- */

namespace
{

/** Appends the last nDigits digits of a number, with leading zeros. */
template <int nDigits> char* AppendPadded(char* pEnd, unsigned long long nValue)
{
    for (int nDigit = nDigits - 1; nDigit >= 0; --nDigit, nValue /= 10) pEnd[nDigit] = static_cast<char>('0' + nValue % 10);
    return pEnd + nDigits;
}

/** Rounds half up. Adding half the divisor before dividing would wrap for the largest values. */
unsigned long DivideRounded(unsigned long nValue, unsigned long nDivisor)
{
    return nValue / nDivisor + (nValue % nDivisor >= nDivisor / 2 ? 1 : 0);
}

char* AppendBitRate(char* pEnd, unsigned long nBitsPerSecond)
{
    if (nBitsPerSecond < 1000) return Append(AppendNumber(pEnd, nBitsPerSecond), " bps");

    // The unit follows from the rounded value, so that 999.995 kbps reads 1.00 Mbps and never 1000.00 kbps.
    constexpr unsigned long HUNDREDTHS_LIMIT = 100'000; // 1000.00
    std::string_view unit = " kbps";
    unsigned long nHundredths = DivideRounded(nBitsPerSecond, 10);
    if (nHundredths >= HUNDREDTHS_LIMIT)
    {
        unit = " Mbps";
        nHundredths = DivideRounded(nBitsPerSecond, 10'000);
    }
    if (nHundredths >= HUNDREDTHS_LIMIT)
    {
        unit = " Gbps";
        nHundredths = DivideRounded(nBitsPerSecond, 10'000'000);
    }
    pEnd = Append(AppendNumber(pEnd, nHundredths / 100), ".");
    return Append(AppendPadded<2>(pEnd, nHundredths), unit);
}

/** Appends a number of thousandths as units with three decimals: 12345 as 12.345. */
char* AppendThousandths(char* pEnd, unsigned long long nThousandths)
{
    return AppendPadded<3>(Append(AppendNumber(pEnd, nThousandths / 1000), "."), nThousandths);
}

char* AppendMicroSeconds(char* pEnd, unsigned long long nMicroSeconds)
{
    if (nMicroSeconds < 1000) return Append(AppendNumber(pEnd, nMicroSeconds), "us");
    if (nMicroSeconds < 1'000'000) return Append(AppendThousandths(pEnd, nMicroSeconds), "ms");
    return Append(AppendThousandths(pEnd, nMicroSeconds / 1000), "s");
}

// A time span's largest part that is not 0 leads; each smaller part follows with two digits. Most spans are minutes or
// seconds, so they do not wait for hours and days.

[[gnu::noinline]] char* AppendHours(char* pEnd, unsigned long long nHours)
{
    if (nHours < 24) return AppendNumber(pEnd, nHours);
    return AppendPadded<2>(Append(AppendNumber(pEnd, nHours / 24), "d "), nHours % 24);
}

char* AppendMinutes(char* pEnd, unsigned long long nMinutes)
{
    if (nMinutes < 60) return AppendNumber(pEnd, nMinutes);
    return AppendPadded<2>(Append(AppendHours(pEnd, nMinutes / 60), "h "), nMinutes % 60);
}

char* AppendUpTime(char* pEnd, unsigned long long nSeconds)
{
    if (nSeconds < 60) return Append(AppendNumber(pEnd, nSeconds), "s");
    return Append(AppendPadded<2>(Append(AppendMinutes(pEnd, nSeconds / 60), "m "), nSeconds % 60), "s");
}

char* AppendMilliSeconds(char* pEnd, unsigned long long nMilliSeconds)
{
    if (nMilliSeconds < 1000) return Append(AppendNumber(pEnd, nMilliSeconds), "ms");
    if (nMilliSeconds < 60'000) return Append(AppendThousandths(pEnd, nMilliSeconds), "s");
    return AppendUpTime(pEnd, nMilliSeconds / 1000);
}

/** Writes the sign of a duration and leaves its magnitude to appendMagnitude. */
template <char* (*appendMagnitude)(char*, unsigned long long)> char* FormatDuration(long long nValue, char* szBuffer, size_t nSize)
{
    constexpr size_t LENGTH = 1 + NUMBER_LENGTH + std::string_view("d 23h 59m 59s").size();
    return BuildText<LENGTH>(szBuffer, nSize,
        [=](char* pEnd)
        {
            // The smallest value has no positive counterpart; unsigned arithmetic negates it too.
            unsigned long long nMagnitude = static_cast<unsigned long long>(nValue);
            if (nValue < 0)
            {
                *pEnd++ = '-';
                nMagnitude = 0 - nMagnitude;
            }
            return appendMagnitude(pEnd, nMagnitude);
        });
}

} // namespace

char* FormatBitRate(unsigned long nBitsPerSecond, char* szBuffer, size_t nSize)
{
    constexpr size_t LENGTH = NUMBER_LENGTH + std::string_view(".00 kbps").size();
    return BuildText<LENGTH>(szBuffer, nSize, [=](char* pEnd) { return AppendBitRate(pEnd, nBitsPerSecond); });
}

char* FormatMicroSeconds(long long nMicroSeconds, char* szBuffer, size_t nSize)
{
    return FormatDuration<AppendMicroSeconds>(nMicroSeconds, szBuffer, nSize);
}

char* FormatMilliSeconds(long long nMilliSeconds, char* szBuffer, size_t nSize)
{
    return FormatDuration<AppendMilliSeconds>(nMilliSeconds, szBuffer, nSize);
}

char* FormatUpTime(long long nSeconds, char* szBuffer, size_t nSize)
{
    return FormatDuration<AppendUpTime>(nSeconds, szBuffer, nSize);
}

/* ---- Texts built step by step ---- */

int PrintToString(char* szBuffer, size_t nSize, const char* pFormat, ...)
{
    if (nSize == 0) return 0;

    // POSIX lets vsnprintf reject a size above INT_MAX, and the returned length has to fit into an int anyway.
    const size_t nUsableSize = std::min(nSize, static_cast<size_t>(INT_MAX));
    const char* pConversion = strchrnul(pFormat, '%');
    if (*pConversion == '\0') // a constant text, as "Never"
    {
        const auto nLength = static_cast<size_t>(pConversion - pFormat);
        CopyText({pFormat, nLength}, szBuffer, nUsableSize);
        return static_cast<int>(std::min(nLength, nUsableSize - 1));
    }

    va_list arguments;
    va_start(arguments, pFormat);
    const int nLength = vsnprintf(szBuffer, nUsableSize, pFormat, arguments);
    va_end(arguments);
    if (nLength < 0)
    {
        szBuffer[0] = '\0';
        return 0;
    }
    return std::min(nLength, static_cast<int>(nUsableSize - 1));
}

char* StringCat(char* szBuffer, const char* pText, size_t nSize)
{
    if (nSize == 0) return szBuffer;
    const size_t nUsed = strnlen(szBuffer, nSize);
    if (nUsed == nSize) return szBuffer; // no NUL
    // What is appended is short: a loop costs less than a search for its end and a call of memcpy.
    char* const pFree = szBuffer + nUsed;
    const size_t nFree = nSize - nUsed - 1;
    size_t n = 0;
    for (; n < nFree && pText[n] != '\0'; ++n) pFree[n] = pText[n];
    pFree[n] = '\0';
    return szBuffer;
}
