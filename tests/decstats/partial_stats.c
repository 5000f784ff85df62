/*
 * A report library with three of the eight reports. They show what they were called with; the third is longer than any
 * buffer of standard output.
 */
#include <stdio.h>

#include "stats.h"

static unsigned long sum_of(const void* pBytes, size_t nSize)
{
    unsigned long nSum = 0;
    for (size_t i = 0; i < nSize; ++i) nSum += ((const unsigned char*)pBytes)[i];
    return nSum;
}

BOOL STATS_PrintForDecoderUsage(const SMGR_DECODER_SDI_USAGE_STATS* pStats, STATS_LEVEL nLevel)
{
    fprintf(stdout, "usage level %d sum %lu\n", (int)nLevel, sum_of(pStats, sizeof(*pStats)));
    return TRUE;
}

BOOL STATS_PrintForVFramer(const SMGR_VFRAMER_STATS* pStats, STATS_LEVEL nLevel)
{
    fprintf(stdout, "vframer level %d sum %lu\n", (int)nLevel, sum_of(pStats, sizeof(*pStats)));
    return TRUE;
}

BOOL STATS_PrintForMetadataDec(const SMGR_METADATADEC_STATS* pStats, STATS_LEVEL nLevel)
{
    (void)pStats;
    if (nLevel == STATS_LEVEL_DEBUG)
    {
        for (int i = 0; i < 20000; ++i) fprintf(stdout, "line %05d\n", i);
    }
    return TRUE;
}
