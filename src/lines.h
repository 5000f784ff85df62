/*
 * What the reports share: the two layouts, the lines of more than one report, and the small texts within them.
 *
 * A report's lines stand in its source in the order in which they print, each with its format. Two layouts put the colon
 * into the same column: "  %-22s: " at the top level and "    %-20s: " inside a block. A line prints always, or only
 * "if (printAll)" (the debug level), or "if (printAll || count)", so that an operator sees a counter once it has counted.
 */
#ifndef LINES_H
#define LINES_H

#include <cstddef>
#include <cstdio>
#include <cstring>
#include <ctime>

/** Prints a constant text, such as the name of a block. */
inline void _PrintText(const char* pText)
{
    fwrite(pText, 1, strlen(pText), stdout);
}

/** Prints a counter with the time since it last counted; a counter of 0 prints the bare digit, whatever tLastOne. */
void _PrintCounterStatWithTiming(const char* pTitle, unsigned long nCounter, time_t tLastOne);

/** The same inside a block. */
void _PrintCounterStatWithTimingIndent2(const char* pTitle, unsigned long nCounter, time_t tLastOne);

/** Prints a size in bytes with its maximum and when that occurred. */
void _PrintSizeWithMaximum(const char* pTitle, unsigned long nBytes, unsigned long nMaxBytes, time_t tMax);

/**
 * Prints how many frames had one outcome, their share of all in percent, and when the last one had it.
 * @param nTotal frames of all outcomes, not 0
 */
void _PrintShare(const char* pTitle, unsigned long nFrames, time_t tLastOne, unsigned long nTotal);

/**
 * Writes how long ago an event was, or "Never". An event in the future gives a negative time.
 * @param theTime time of the event [epoch s]; 0 = never
 * @return szBuffer
 */
char* _GetElapsedTimeString(time_t theTime, char* szBuffer, size_t nSize);

/** "Yes" or "No". */
inline const char* _YesOrNo(bool bYes)
{
    return bYes ? "Yes" : "No";
}

#endif
