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

/** The largest part that is not 0 leads; each smaller part follows with two digits. */
char* AppendUpTime(char* pEnd, unsigned long long nSeconds)
{
    const unsigned long long nMinutes = nSeconds / 60;
    const unsigned long long nHours = nMinutes / 60;
    const unsigned long long nDays = nHours / 24;
    if (nDays > 0) pEnd = Append(AppendNumber(pEnd, nDays), "d ");
    if (nHours > 0) pEnd = Append(nDays > 0 ? AppendPadded<2>(pEnd, nHours % 24) : AppendNumber(pEnd, nHours), "h ");
    if (nMinutes > 0) pEnd = Append(nHours > 0 ? AppendPadded<2>(pEnd, nMinutes % 60) : AppendNumber(pEnd, nMinutes), "m ");
    return Append(nMinutes > 0 ? AppendPadded<2>(pEnd, nSeconds % 60) : AppendNumber(pEnd, nSeconds), "s");
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
    const size_t nFree = nSize - nUsed;
    if (nFree > 0) CopyText({pText, strnlen(pText, nFree - 1)}, szBuffer + nUsed, nFree);
    return szBuffer;
}
