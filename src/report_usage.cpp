// The decoder usage report: the control requests that the decoder has served.

#include "lines.h"
#include "stats.h"

BOOL STATS_PrintForDecoderUsage(const SMGR_DECODER_SDI_USAGE_STATS* pStats, STATS_LEVEL nLevel)
{
    const bool printAll = nLevel == STATS_LEVEL_DEBUG;
    if (!printAll) return TRUE;

    _PrintText("Usage\n");
    _PrintCounterStatWithTiming("Start", pStats->nNumStarts, pStats->tLastStart);
    _PrintCounterStatWithTiming("Stop", pStats->nNumStops, pStats->tLastStop);
    _PrintCounterStatWithTiming("Get Stats", pStats->nNumGetStats, pStats->tLastGetStat);
    _PrintCounterStatWithTiming("Get Info", pStats->nNumGetInfos, pStats->tLastGetInfo);
    _PrintCounterStatWithTiming("Configure", pStats->nNumConfigures, pStats->tLastConfigure);
    _PrintCounterStatWithTiming("Capture", pStats->nNumCaptures, pStats->tLastCapture);
    _PrintCounterStatWithTiming("Clear", pStats->nNumClears, pStats->tLastClear);
    _PrintCounterStatWithTiming("Load Config", pStats->nNumLoadConfigs, pStats->tLastLoadConfig);
    _PrintCounterStatWithTiming("Save Config", pStats->nNumSaveConfigs, pStats->tLastSaveConfig);
    return TRUE;
}
