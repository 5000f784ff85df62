// A host process in C++, as one outside this project writes it. Prints the report of a clock that runs 1 ppm fast.
#include <cstdio>
#include <hostsvc.h>
#include <stats.h>

int main()
{
    SMGR_DECODER_CLOCK_RECOVERY_STATS clock = {};
    clock.trackingMode = SMGR_CLOCK_TRACKING_ENABLED;
    clock.StcClkNominal = 27000000;
    clock.OldPll = 27000028;
    clock.curPLLDevPpmNominal = 1;
    clock.curPllAvg = 27000027;
    clock.curPllMin = 27000021;
    clock.curPllMax = 27000032;
    clock.curPLLDevHz = 27;
    clock.curPLLDevPpm = 1;
    clock.ReSyncCount = 2;
    clock.PcrUpdates = 1200;
    STATS_PrintForClockRecovery(&clock, STATS_LEVEL_DEFAULT);

    char text[64];
    std::puts(FormatUpTime(93784, text, sizeof text));
    return std::fflush(stdout) == 0 ? 0 : 1;
}
