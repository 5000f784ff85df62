/**
 * @file format.cpp
 * Texts of numbers, rates and durations, and the two services that build a text step by step.
 */
#include <charconv>
#include <climits>
#include <cstdarg>
#include <limits>

#include "hostsvc.h"
#include "text.h"

using namespace hostsvc;

namespace
{

/** Most characters of a number: 20 digits, or a sign and 19 digits. */
constexpr size_t NUMBER_LENGTH = std::numeric_limits<unsigned long long>::digits10 + 1;

template <typename Integer> char* NumberText(Integer nValue, char* szBuffer, size_t nSize)
{
    char acText[NUMBER_LENGTH];
    const char* pEnd = std::to_chars(acText, acText + sizeof acText, nValue).ptr;
    return CopyText({acText, static_cast<size_t>(pEnd - acText)}, szBuffer, nSize);
}

/** Rounds half up. Adding half the divisor before dividing would wrap for the largest values. */
unsigned long DivideRounded(unsigned long nValue, unsigned long nDivisor)
{
    return nValue / nDivisor + (nValue % nDivisor >= nDivisor / 2 ? 1 : 0);
}

/** The absolute value. Unsigned arithmetic negates the smallest value too, which has no positive counterpart. */
unsigned long long Magnitude(long long nValue)
{
    const auto nUnsigned = static_cast<unsigned long long>(nValue);
    return nValue < 0 ? 0 - nUnsigned : nUnsigned;
}

const char* Sign(long long nValue)
{
    return nValue < 0 ? "-" : "";
}

} // namespace

/* ---- Numbers, rates and durations ---- */

char* FormatULONG(unsigned long nValue, char* szBuffer, size_t nSize)
{
    return NumberText(nValue, szBuffer, nSize);
}

char* FormatLONGLONG(long long nValue, char* szBuffer, size_t nSize)
{
    return NumberText(nValue, szBuffer, nSize);
}

char* FormatBitRate(unsigned long nBitsPerSecond, char* szBuffer, size_t nSize)
{
    if (nBitsPerSecond < 1000)
    {
        snprintf(szBuffer, nSize, "%lu bps", nBitsPerSecond);
        return szBuffer;
    }
    // The unit follows from the rounded value, so that 999.995 kbps reads 1.00 Mbps and never 1000.00 kbps.
    constexpr unsigned long HUNDREDTHS_LIMIT = 100'000; // 1000.00
    const char* pUnit = "kbps";
    unsigned long nHundredths = DivideRounded(nBitsPerSecond, 10);
    if (nHundredths >= HUNDREDTHS_LIMIT)
    {
        pUnit = "Mbps";
        nHundredths = DivideRounded(nBitsPerSecond, 10'000);
    }
    if (nHundredths >= HUNDREDTHS_LIMIT)
    {
        pUnit = "Gbps";
        nHundredths = DivideRounded(nBitsPerSecond, 10'000'000);
    }
    snprintf(szBuffer, nSize, "%lu.%02lu %s", nHundredths / 100, nHundredths % 100, pUnit);
    return szBuffer;
}

char* FormatMicroSeconds(long long nMicroSeconds, char* szBuffer, size_t nSize)
{
    const unsigned long long n = Magnitude(nMicroSeconds);
    if (n < 1000)
        snprintf(szBuffer, nSize, "%s%lluus", Sign(nMicroSeconds), n);
    else if (n < 1'000'000)
        snprintf(szBuffer, nSize, "%s%llu.%03llums", Sign(nMicroSeconds), n / 1000, n % 1000);
    else
        snprintf(szBuffer, nSize, "%s%llu.%03llus", Sign(nMicroSeconds), n / 1'000'000, n / 1000 % 1000);
    return szBuffer;
}

char* FormatMilliSeconds(long long nMilliSeconds, char* szBuffer, size_t nSize)
{
    const unsigned long long n = Magnitude(nMilliSeconds);
    if (n >= 60'000) return FormatUpTime(nMilliSeconds / 1000, szBuffer, nSize);
    if (n < 1000)
        snprintf(szBuffer, nSize, "%s%llums", Sign(nMilliSeconds), n);
    else
        snprintf(szBuffer, nSize, "%s%llu.%03llus", Sign(nMilliSeconds), n / 1000, n % 1000);
    return szBuffer;
}

char* FormatUpTime(long long nSeconds, char* szBuffer, size_t nSize)
{
    static constexpr struct
    {
        unsigned nSeconds;
        char cUnit;
    } PARTS[] = {
        {86400, 'd'},
        {3600,  'h'},
        {60,    'm'},
        {1,     's'},
    };
    char acText[1 + NUMBER_LENGTH + std::string_view("d 23h 59m 59s").size()];
    char* pEnd = acText;
    unsigned long long nLeft = Magnitude(nSeconds);
    bool bLeading = true;

    // The largest part that is not 0 leads; each smaller one follows with two digits.
    if (nSeconds < 0) *pEnd++ = '-';
    for (const auto& part : PARTS)
    {
        const unsigned long long nPart = nLeft / part.nSeconds;
        nLeft %= part.nSeconds;
        if (bLeading && nPart == 0 && part.nSeconds > 1) continue;
        if (!bLeading) *pEnd++ = ' ';
        if (!bLeading && nPart < 10) *pEnd++ = '0';
        pEnd = std::to_chars(pEnd, acText + sizeof acText, nPart).ptr;
        *pEnd++ = part.cUnit;
        bLeading = false;
    }
    return CopyText({acText, static_cast<size_t>(pEnd - acText)}, szBuffer, nSize);
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
    if (nUsed < nSize) strncat(szBuffer + nUsed, pText, nSize - nUsed - 1);
    return szBuffer;
}
