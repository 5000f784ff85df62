#include <stdio.h>
#include <string.h>
#include <time.h>

#include "stats.h"

int main(void)
{
    SMGR_DECODER_SDI_USAGE_STATS usage;
    memset(&usage, 0, sizeof usage);
    usage.nNumStarts = 3;
    usage.tLastStart = time(NULL);
    usage.nNumGetStats = 1024;

    STATS_PrintForDecoderUsage(&usage, STATS_LEVEL_DEBUG);
    return fflush(stdout) == 0 ? 0 : 1;
}
