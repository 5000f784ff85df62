#include "lines.h"

#include "hostsvc.h"
#include "stats.h"

void _PrintCounterStatWithTiming(const char* pTitle, unsigned long nCounter, time_t tLastOne)
{
    if (nCounter == 0)
    {
        fprintf(stdout, "  %-22s: 0\n", pTitle);
        return;
    }
    char szBuffer[1024];
    char szBuffer2[1024];
    fprintf(stdout, "  %-22s: %s (Last One: %s)\n", pTitle, FormatULONG(nCounter, szBuffer, sizeof szBuffer),
            _GetElapsedTimeString(tLastOne, szBuffer2, sizeof szBuffer2));
}

void _PrintCounterStatWithTimingIndent2(const char* pTitle, unsigned long nCounter, time_t tLastOne)
{
    if (nCounter == 0)
    {
        fprintf(stdout, "    %-20s: 0\n", pTitle);
        return;
    }
    char szBuffer[1024];
    char szBuffer2[1024];
    fprintf(stdout, "    %-20s: %s (Last One: %s)\n", pTitle, FormatULONG(nCounter, szBuffer, sizeof szBuffer),
            _GetElapsedTimeString(tLastOne, szBuffer2, sizeof szBuffer2));
}

void _PrintSizeWithMaximum(const char* pTitle, unsigned long nBytes, unsigned long nMaxBytes, time_t tMax)
{
    char szBuffer[1024];
    char szBuffer2[1024];
    char szBuffer3[1024];
    fprintf(stdout, "  %-22s: %s bytes (max=%s bytes occurred %s)\n", pTitle, FormatULONG(nBytes, szBuffer, sizeof szBuffer),
            FormatULONG(nMaxBytes, szBuffer2, sizeof szBuffer2), _GetElapsedTimeString(tMax, szBuffer3, sizeof szBuffer3));
}

void _PrintShare(const char* pTitle, unsigned long nFrames, time_t tLastOne, unsigned long nTotal)
{
    char szBuffer[159];
    char szBuffer2[159];
    fprintf(stdout, "  %-22s: %s [%.4lf%%] (Last One: %s)\n", pTitle, FormatULONG(nFrames, szBuffer, sizeof szBuffer),
            static_cast<double>(nFrames) * 100.0 / static_cast<double>(nTotal), _GetElapsedTimeString(tLastOne, szBuffer2, sizeof szBuffer2));
}

char* _GetElapsedTimeString(time_t theTime, char* szBuffer, size_t nSize)
{
    const time_t now = time(nullptr);
    if (theTime == 0)
    {
        PrintToString(szBuffer, nSize, "Never");
        return szBuffer;
    }
    // A record may hold any number as a time, so the difference is taken where wrapping is defined.
    FormatUpTime(static_cast<long long>(static_cast<unsigned long>(now) - static_cast<unsigned long>(theTime)), szBuffer, nSize);
    StringCat(szBuffer, " ago", nSize);
    return szBuffer;
}

char* _GetAbbrevFPSString(float fFrameRate, char* szBuffer, size_t nSize)
{
    int nLength = PrintToString(szBuffer, nSize, "%.2f", static_cast<double>(fFrameRate));
    // A host's service may return the length that the whole text would have, as snprintf does.
    if (nLength > 0 && static_cast<size_t>(nLength) >= nSize) nLength = static_cast<int>(nSize) - 1;
    if (nLength < 4) return szBuffer; // "nan" and "inf" have no decimals
    for (int i = 0; i < 3; i++)
    {
        char& cLast = szBuffer[nLength - 1];
        if (cLast == '0')
        {
            cLast = '\0';
            nLength--;
            continue;
        }
        if (cLast == '.') cLast = '\0';
        break;
    }
    return szBuffer;
}
