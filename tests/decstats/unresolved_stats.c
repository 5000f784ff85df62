/* A report library of another appliance: it needs a service that this one's host processes do not have. */
#include "stats.h"

void ServiceOfAnotherAppliance(void);

BOOL STATS_PrintForTDemux(const SMGR_TDEMUX_STATS* pStats, STATS_LEVEL nLevel)
{
    (void)pStats;
    (void)nLevel;
    ServiceOfAnotherAppliance();
    return TRUE;
}
