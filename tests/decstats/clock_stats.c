/* A report library whose one report is the clock. */
#include <stdio.h>
#include <time.h>

#include "stats.h"

BOOL STATS_PrintForVFramer(const SMGR_VFRAMER_STATS* pStats, STATS_LEVEL nLevel)
{
    (void)pStats;
    (void)nLevel;
    fprintf(stdout, "%ld\n", (long)time(NULL));
    return TRUE;
}
