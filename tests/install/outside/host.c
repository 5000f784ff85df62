/* A host process in C, as one outside this project writes it. Prints a report, and two texts of the services. */
#include <hostsvc.h>
#include <stats.h>
#include <stdio.h>
#include <string.h>

int main(void)
{
    SMGR_DECODER_SDI_USAGE_STATS tUsage;
    memset(&tUsage, 0, sizeof tUsage);
    tUsage.nNumStarts = 3;
    tUsage.nNumStops = 2;
    tUsage.nNumGetStats = 1024;
    STATS_PrintForDecoderUsage(&tUsage, STATS_LEVEL_DEBUG);

    char szText[64];
    puts(FormatBitRate(12500000, szText, sizeof szText));
    puts(SessMgr_GetTDemuxStateString(SMGR_TDEMUX_STATS_STATE_ACTIVE, szText, sizeof szText));
    return fflush(stdout) == 0 ? 0 : 1;
}
