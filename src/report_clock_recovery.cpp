// The clock recovery report: the loop that locks the local system time clock (STC) to the stream's PCR.

#include "hostsvc.h"
#include "lines.h"
#include "stats.h"

// ISO/IEC 13818-1 counts the PCR base at 90 kHz. Division drops the fraction, toward zero.
static constexpr long _TicksToMs(long nTicks)
{
    return nTicks / 90;
}

static constexpr long _MsToSeconds(long nMs)
{
    return nMs / 1000;
}

static void _PrintStatus(const SMGR_DECODER_CLOCK_RECOVERY_STATS* pStats)
{
    const bool bNoAverageYet = pStats->curPllAvg == 0 && pStats->curPLLDevHz == 0;
    const bool bPllNeverMoved = pStats->curPllMin == pStats->StcClkNominal && pStats->curPllMax == pStats->StcClkNominal;

    if (bNoAverageYet || bPllNeverMoved)
        fprintf(stdout, "  %-22s: SEARCHING\n", "Status");
    else if (pStats->curPLLDevPpm >= -4 && pStats->curPLLDevPpm <= 4)
        fprintf(stdout, "  %-22s: LOCKED (%ld.%ldPPM)\n", "Status", pStats->curPLLDevPpm, pStats->curPLLDevPpmFract);
    else if (pStats->curPLLDevPpm > 99) // a negative deviation never gets here
        fprintf(stdout, "  %-22s: UNLOCKED (over 95PPM from nominal)\n", "Status");
    else
        fprintf(stdout, "  %-22s: UNLOCKED (more then +-5PPM)\n", "Status");
}

static void _PrintStcAverage(const SMGR_DECODER_CLOCK_RECOVERY_STATS* pStats, bool printAll)
{
    const bool bFarOff = pStats->curPLLDevPpm > 99;
    char szBuffer[159];
    char szBuffer2[159];
    char szBuffer3[159];

    if (printAll)
    {
        const char* pAverage = FormatULONG(static_cast<unsigned long>(pStats->curPllAvg), szBuffer, sizeof szBuffer);
        const char* pMinimum = FormatULONG(static_cast<unsigned long>(pStats->curPllMin), szBuffer2, sizeof szBuffer2);
        const char* pMaximum = FormatULONG(static_cast<unsigned long>(pStats->curPllMax), szBuffer3, sizeof szBuffer3);
        if (bFarOff)
            fprintf(stdout, "  %-22s: %sHz min/max(%s/%sHz) deviation of %ldHz \n", "STC Avg (last 2 min)", pAverage, pMinimum, pMaximum, pStats->curPLLDevHz);
        else
            fprintf(stdout, "  %-22s: %sHz min/max(%s/%sHz) deviation of %ldHz (%ld.%ldPPM)\n", "STC Avg (last 2 min)", pAverage, pMinimum, pMaximum, pStats->curPLLDevHz, pStats->curPLLDevPpm, pStats->curPLLDevPpmFract);
        return;
    }
    const char* pAverage = FormatLONGLONG(pStats->curPllAvg, szBuffer, sizeof szBuffer);
    if (bFarOff)
        fprintf(stdout, "  %-22s: %sHz \n", "STC Avg (last 2 min)", pAverage);
    else
        fprintf(stdout, "  %-22s: %sHz (Deviation %ld.%ldPPM)\n", "STC Avg (last 2 min)", pAverage, pStats->curPLLDevPpm, pStats->curPLLDevPpmFract);
}

static void _PrintStcAdjustment(const SMGR_DECODER_CLOCK_RECOVERY_STATS* pStats)
{
    char szBuffer[159];
    const char* pAdjustment = FormatLONGLONG(pStats->avgDevHz, szBuffer, sizeof szBuffer);

    if (pStats->curPLLDevPpm > 99)
        fprintf(stdout, "  %-22s: %sHz \n", "STC Adj (last 16 min)", pAdjustment);
    else if (pStats->avgDevHz >= 0 || pStats->avgDevPpm != 0)
        fprintf(stdout, "  %-22s: %sHz (%ld.%ldPPM)\n", "STC Adj (last 16 min)", pAdjustment, pStats->avgDevPpm, pStats->avgDevPpmFract);
    else // an integer part of 0 cannot carry the sign
        fprintf(stdout, "  %-22s: %sHz (-%ld.%ldPPM)\n", "STC Adj (last 16 min)", pAdjustment, pStats->avgDevPpm, pStats->avgDevPpmFract);
}

// Two of the formats differ in their blanks between the tracking states.
static void _PrintPcr(const SMGR_DECODER_CLOCK_RECOVERY_STATS* pStats, bool bTracking)
{
    fprintf(stdout, "  %-22s: 0x%09lx (90K)\n", "Current PCR", static_cast<unsigned long>(pStats->curPcr));
    fprintf(stdout, "  %-22s: 0x%09lx (90K)\n", "Current PCR (reg val)", static_cast<unsigned long>(pStats->curPcrFpga));
    if (bTracking)
    {
        fprintf(stdout, "  %-22s: %ld ms\n", "PCR Delta (Enc vs Reg)", _TicksToMs(pStats->curPcrFpgaDelta));
        fprintf(stdout, "  %-22s: %ld ms  (Average value) \n", "PCR reg Vs TS Delta", _TicksToMs(pStats->pcrTsDelta));
    }
    else
    {
        fprintf(stdout, "  %-22s: %ldms\n", "PCR Delta (Enc vs Reg)", _TicksToMs(pStats->curPcrFpgaDelta));
        fprintf(stdout, "  %-22s: %ld ms (Average value)\n", "PCR reg Vs TS Delta", _TicksToMs(pStats->pcrTsDelta));
    }
    fprintf(stdout, "  %-22s: %ld ms/%ld ms (In the last %ld sec)\tExtremas min/max=%ldms/%ldms)\n", "MinMax PCR Vs TS Delta",
            _TicksToMs(pStats->pcrTsDeltaMinValue), _TicksToMs(pStats->pcrTsDeltaMaxValue), _MsToSeconds(pStats->pcrTsDeltaMinMaxDlyMS),
            _TicksToMs(pStats->pcrTsDeltaMinExtValue), _TicksToMs(pStats->pcrTsDeltaMaxExtValue));
    fprintf(stdout, "  %-22s: %ld\n", "MAF DeltaClk div fact", pStats->mafDivFactor);
}

static void _PrintPcrTrouble(const SMGR_DECODER_CLOCK_RECOVERY_STATS* pStats)
{
    char szBuffer[159];

    if (pStats->PllSettleTime) fprintf(stdout, "  %-22s: %s (first time, since resync, we select more restrictive filter)\n", "Settling Time", FormatUpTime(pStats->PllSettleTime, szBuffer, sizeof szBuffer));
    if (pStats->pcrLateCount) fprintf(stdout, "  %-22s: %d\n", "PCR Late Count", pStats->pcrLateCount);
    if (pStats->pcrLateCount) fprintf(stdout, "  %-22s: %s (maximum value)\n", "No PCR received for", FormatMilliSeconds(pStats->pcrLateMaxValue, szBuffer, sizeof szBuffer));
    fprintf(stdout, "  %-22s: %ld ms (Last One: %s)\n", "PCR Encoder Jump", pStats->PcrJump, _GetElapsedTimeString(pStats->tLastPcrJump, szBuffer, sizeof szBuffer));
    fprintf(stdout, "  %-22s: %ld ms (Last One: %s)\n", "PCR Encoder Jump Max", pStats->PcrJumpMaxValue, _GetElapsedTimeString(pStats->tLastPcrJumpMaxValue, szBuffer, sizeof szBuffer));
    if (pStats->pcrJitterErrCount == 0) return;

    fprintf(stdout, "  %-22s: %d\n", "PCR Jitter Err Count", pStats->pcrJitterErrCount);
    if (pStats->pcrJitterMaxErrValue >= -10000 && pStats->pcrJitterMaxErrValue <= 10000)
        fprintf(stdout, "  %-22s: %dms (maximum value between 2 PCR values)\n", "Wrong PCR, deviation", pStats->pcrJitterMaxErrValue);
    else // more than 10 s is a wrap of the counter rather than an error
        fprintf(stdout, "  %-22s: %dms (counter probably wrapped-around ...)\n", "Wrong PCR, deviation", pStats->pcrJitterMaxErrValue);
}

static void _PrintTrackingDisabled(const SMGR_DECODER_CLOCK_RECOVERY_STATS* pStats, bool printAll)
{
    fprintf(stdout, "  %-22s: DISABLE \n", "Tracking Mode");
    if (pStats->trackingMode == SMGR_CLOCK_TRACKING_DISABLED_LOCK) fprintf(stdout, "  %-22s: YES\n", "Lock Tracking Mode");
    if (printAll) _PrintPcr(pStats, false);
}

static void _PrintTrackingEnabled(const SMGR_DECODER_CLOCK_RECOVERY_STATS* pStats, bool printAll)
{
    char szBuffer[159];

    fprintf(stdout, "  %-22s: ENABLE\n", "Tracking Mode");
    if (pStats->trackingMode == SMGR_CLOCK_TRACKING_ENABLED_LOCK) fprintf(stdout, "  %-22s: YES\n", "Lock Tracking Mode");
    if (printAll) fprintf(stdout, "  %-22s: %sHz\n", "Nominal STC", FormatULONG(static_cast<unsigned long>(pStats->StcClkNominal), szBuffer, sizeof szBuffer));
    _PrintStatus(pStats);
    fprintf(stdout, "  %-22s: %d\n", "ReSync Count", pStats->ReSyncCount);
    _PrintCounterStatWithTiming("PCR Updates", pStats->PcrUpdates, pStats->tLastPcrUpdate);
    fprintf(stdout, "  %-22s: %sHz (%ldPPM from Nominal)\n", "Current STC", FormatULONG(static_cast<unsigned long>(pStats->OldPll), szBuffer, sizeof szBuffer), pStats->curPLLDevPpmNominal);
    if (pStats->curPllAvg) _PrintStcAverage(pStats, printAll);
    if (printAll && pStats->curPllAvg && pStats->avgDevHz) _PrintStcAdjustment(pStats);
    if (printAll) fprintf(stdout, "  %-22s: %s\n", "Sample Count", FormatULONG(static_cast<unsigned long>(pStats->SampleCount), szBuffer, sizeof szBuffer));
    if (printAll) _PrintPcr(pStats, true);
    if (printAll) _PrintPcrTrouble(pStats);
}

BOOL STATS_PrintForClockRecovery(const SMGR_DECODER_CLOCK_RECOVERY_STATS* pStats, STATS_LEVEL nLevel)
{
    const bool printAll = nLevel == STATS_LEVEL_DEBUG;

    _PrintText("Clock Recovery\n");
    switch (pStats->trackingMode)
    {
    case SMGR_CLOCK_TRACKING_DISABLED:
    case SMGR_CLOCK_TRACKING_DISABLED_LOCK: _PrintTrackingDisabled(pStats, printAll); break;
    case SMGR_CLOCK_TRACKING_ENABLED:
    case SMGR_CLOCK_TRACKING_ENABLED_LOCK: _PrintTrackingEnabled(pStats, printAll); break;
    default: break;
    }
    return TRUE;
}
