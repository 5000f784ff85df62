#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <string>

#include "capture.h"
#include "frozen_clock.h"
#include "recording_services.h"
#include "stats.h"

static std::string Report(const SMGR_DECODER_CLOCK_RECOVERY_STATS& stats, int nLevel)
{
    BOOL bResult = -1;
    const std::string text = Capture([&] { bResult = STATS_PrintForClockRecovery(&stats, static_cast<STATS_LEVEL>(nLevel)); });
    EXPECT_EQ(bResult, TRUE);
    return text;
}

// A line of the default and of the debug report.
static std::string DefaultLine(const SMGR_DECODER_CLOCK_RECOVERY_STATS& stats, const std::string& label)
{
    return LineOf(Report(stats, STATS_LEVEL_DEFAULT), label);
}

static std::string DebugLine(const SMGR_DECODER_CLOCK_RECOVERY_STATS& stats, const std::string& label)
{
    return LineOf(Report(stats, STATS_LEVEL_DEBUG), label);
}

// No two printed fields hold the same number, so that each can be recognised in the text. Ticks are multiples of 90.
static SMGR_DECODER_CLOCK_RECOVERY_STATS DistinctRecord()
{
    SMGR_DECODER_CLOCK_RECOVERY_STATS stats = {};
    stats.TrackingStarted = 11;
    stats.SampleCount = 12;
    stats.ReSyncCount = 13;
    stats.PcrUpdates = 14;
    stats.tLastPcrUpdate = frozen_now - 15;
    stats.OldSndClk = 16;
    stats.OldRcvClk = 17;
    stats.OldDeltaSnd = 18;
    stats.FilterDeltaSnd = 19;
    stats.OldDeltaClk = 20;
    stats.FilterDeltaClk = 21;
    stats.OldPll = 27000022;
    stats.StcClkNominal = 27000023;
    stats.trackingMode = SMGR_CLOCK_TRACKING_ENABLED_LOCK;
    stats.PllNotSettled = 24;
    stats.PllSettleTime = 25;
    stats.curPllAvg = 27000026;
    stats.curPllMin = 27000027;
    stats.curPllMax = 27000028;
    stats.curPLLDevHz = -29;
    stats.curPLLDevPpm = -3;
    stats.curPLLDevPpmNominal = -31;
    stats.curPLLDevPpmFract = 32;
    stats.avgDevHz = -33;
    stats.avgDevPpm = -34;
    stats.avgDevPpmFract = 35;
    stats.pcrLateCount = 36;
    stats.pcrLateMaxValue = 37;
    stats.pcrJitterErrCount = 38;
    stats.pcrJitterErr = 39;
    stats.pcrJitterMaxErrValue = 40;
    stats.curPcr = 0x1ABCDEF41;
    stats.curPcrFpga = 0x42;
    stats.curPcrFpgaDelta = 43 * 90;
    stats.mafDivFactor = 44;
    stats.pcrTsDelta = -45 * 90;
    stats.pcrTsDeltaAud0 = 46 * 90;
    stats.pcrTsDeltaAud1 = 47 * 90;
    stats.pcrTsDeltaAud2 = 48 * 90;
    stats.pcrTsDeltaAud3 = 49 * 90;
    stats.pcrTsDeltaAud4 = 50 * 90;
    stats.pcrTsDeltaAud5 = 51 * 90;
    stats.pcrTsDeltaAud6 = 52 * 90;
    stats.pcrTsDeltaAud7 = 53 * 90;
    stats.pcrTsDeltaKlv = 54 * 90;
    stats.pcrTsDeltaMinValue = 55 * 90;
    stats.pcrTsDeltaMaxValue = 56 * 90;
    stats.pcrTsDeltaMinMaxDlyMS = 57000;
    stats.pcrTsDeltaMinExtValue = 58 * 90;
    stats.pcrTsDeltaMaxExtValue = 59 * 90;
    stats.PcrJump = 60;
    stats.tLastPcrJump = frozen_now - 61;
    stats.PcrJumpMaxValue = 62;
    stats.tLastPcrJumpMaxValue = frozen_now - 63;
    return stats;
}

// Enabled, and its average one Hz off nominal: what the tests below then change decides the status.
static SMGR_DECODER_CLOCK_RECOVERY_STATS Tracking()
{
    SMGR_DECODER_CLOCK_RECOVERY_STATS stats = {};
    stats.trackingMode = SMGR_CLOCK_TRACKING_ENABLED;
    stats.StcClkNominal = 27000000;
    stats.curPllAvg = 27000001;
    stats.curPllMin = 26999999;
    stats.curPllMax = 27000002;
    stats.curPLLDevHz = 1;
    return stats;
}

/* ---- Whole reports ---- */

TEST(ClockRecovery, WholeReportAtTheDefaultLevel)
{
    EXPECT_EQ(Report(DistinctRecord(), STATS_LEVEL_DEFAULT), "Clock Recovery\n"
                                                             "  Tracking Mode         : ENABLE\n"
                                                             "  Lock Tracking Mode    : YES\n"
                                                             "  Status                : LOCKED (-3.32PPM)\n"
                                                             "  ReSync Count          : 13\n"
                                                             "  PCR Updates           : {ULONG 14 1024} (Last One: {UpTime 15 1024} ago)\n"
                                                             "  Current STC           : {ULONG 27000022 159}Hz (-31PPM from Nominal)\n"
                                                             "  STC Avg (last 2 min)  : {LONGLONG 27000026 159}Hz (Deviation -3.32PPM)\n");
}

TEST(ClockRecovery, WholeReportAtTheDebugLevel)
{
    EXPECT_EQ(Report(DistinctRecord(), STATS_LEVEL_DEBUG),
              "Clock Recovery\n"
              "  Tracking Mode         : ENABLE\n"
              "  Lock Tracking Mode    : YES\n"
              "  Nominal STC           : {ULONG 27000023 159}Hz\n"
              "  Status                : LOCKED (-3.32PPM)\n"
              "  ReSync Count          : 13\n"
              "  PCR Updates           : {ULONG 14 1024} (Last One: {UpTime 15 1024} ago)\n"
              "  Current STC           : {ULONG 27000022 159}Hz (-31PPM from Nominal)\n"
              "  STC Avg (last 2 min)  : {ULONG 27000026 159}Hz min/max({ULONG 27000027 159}/{ULONG 27000028 159}Hz) deviation of -29Hz "
              "(-3.32PPM)\n"
              "  STC Adj (last 16 min) : {LONGLONG -33 159}Hz (-34.35PPM)\n"
              "  Sample Count          : {ULONG 12 159}\n"
              "  Current PCR           : 0x1abcdef41 (90K)\n"
              "  Current PCR (reg val) : 0x000000042 (90K)\n"
              "  PCR Delta (Enc vs Reg): 43 ms\n"
              "  PCR reg Vs TS Delta   : -45 ms  (Average value) \n"
              "  MinMax PCR Vs TS Delta: 55 ms/56 ms (In the last 57 sec)\tExtremas min/max=58ms/59ms)\n"
              "  MAF DeltaClk div fact : 44\n"
              "  Settling Time         : {UpTime 25 159} (first time, since resync, we select more restrictive filter)\n"
              "  PCR Late Count        : 36\n"
              "  No PCR received for   : {MilliSeconds 37 159} (maximum value)\n"
              "  PCR Encoder Jump      : 60 ms (Last One: {UpTime 61 159} ago)\n"
              "  PCR Encoder Jump Max  : 62 ms (Last One: {UpTime 63 159} ago)\n"
              "  PCR Jitter Err Count  : 38\n"
              "  Wrong PCR, deviation  : 40ms (maximum value between 2 PCR values)\n");
}

TEST(ClockRecovery, WholeReportWhenDisabled)
{
    SMGR_DECODER_CLOCK_RECOVERY_STATS stats = DistinctRecord();
    stats.trackingMode = SMGR_CLOCK_TRACKING_DISABLED;
    EXPECT_EQ(Report(stats, STATS_LEVEL_DEFAULT), "Clock Recovery\n"
                                                  "  Tracking Mode         : DISABLE \n");
    EXPECT_EQ(Report(stats, STATS_LEVEL_DEBUG), "Clock Recovery\n"
                                                "  Tracking Mode         : DISABLE \n"
                                                "  Current PCR           : 0x1abcdef41 (90K)\n"
                                                "  Current PCR (reg val) : 0x000000042 (90K)\n"
                                                "  PCR Delta (Enc vs Reg): 43ms\n"
                                                "  PCR reg Vs TS Delta   : -45 ms (Average value)\n"
                                                "  MinMax PCR Vs TS Delta: 55 ms/56 ms (In the last 57 sec)\tExtremas min/max=58ms/59ms)\n"
                                                "  MAF DeltaClk div fact : 44\n");
}

TEST(ClockRecovery, WholeReportWhenDisabledWithLockTracking)
{
    SMGR_DECODER_CLOCK_RECOVERY_STATS stats = DistinctRecord();
    stats.trackingMode = SMGR_CLOCK_TRACKING_DISABLED_LOCK;
    EXPECT_EQ(Report(stats, STATS_LEVEL_DEFAULT), "Clock Recovery\n"
                                                  "  Tracking Mode         : DISABLE \n"
                                                  "  Lock Tracking Mode    : YES\n");
    EXPECT_EQ(Report(stats, STATS_LEVEL_DEBUG), "Clock Recovery\n"
                                                "  Tracking Mode         : DISABLE \n"
                                                "  Lock Tracking Mode    : YES\n"
                                                "  Current PCR           : 0x1abcdef41 (90K)\n"
                                                "  Current PCR (reg val) : 0x000000042 (90K)\n"
                                                "  PCR Delta (Enc vs Reg): 43ms\n"
                                                "  PCR reg Vs TS Delta   : -45 ms (Average value)\n"
                                                "  MinMax PCR Vs TS Delta: 55 ms/56 ms (In the last 57 sec)\tExtremas min/max=58ms/59ms)\n"
                                                "  MAF DeltaClk div fact : 44\n");
}

TEST(ClockRecovery, EnabledWithoutLockTrackingAndWithoutAnyFigure)
{
    SMGR_DECODER_CLOCK_RECOVERY_STATS stats = {};
    stats.trackingMode = SMGR_CLOCK_TRACKING_ENABLED;
    EXPECT_EQ(Report(stats, STATS_LEVEL_DEFAULT), "Clock Recovery\n"
                                                  "  Tracking Mode         : ENABLE\n"
                                                  "  Status                : SEARCHING\n"
                                                  "  ReSync Count          : 0\n"
                                                  "  PCR Updates           : 0\n"
                                                  "  Current STC           : {ULONG 0 159}Hz (0PPM from Nominal)\n");
    EXPECT_EQ(Report(stats, STATS_LEVEL_DEBUG), "Clock Recovery\n"
                                                "  Tracking Mode         : ENABLE\n"
                                                "  Nominal STC           : {ULONG 0 159}Hz\n"
                                                "  Status                : SEARCHING\n"
                                                "  ReSync Count          : 0\n"
                                                "  PCR Updates           : 0\n"
                                                "  Current STC           : {ULONG 0 159}Hz (0PPM from Nominal)\n"
                                                "  Sample Count          : {ULONG 0 159}\n"
                                                "  Current PCR           : 0x000000000 (90K)\n"
                                                "  Current PCR (reg val) : 0x000000000 (90K)\n"
                                                "  PCR Delta (Enc vs Reg): 0 ms\n"
                                                "  PCR reg Vs TS Delta   : 0 ms  (Average value) \n"
                                                "  MinMax PCR Vs TS Delta: 0 ms/0 ms (In the last 0 sec)\tExtremas min/max=0ms/0ms)\n"
                                                "  MAF DeltaClk div fact : 0\n"
                                                "  PCR Encoder Jump      : 0 ms (Last One: Never)\n"
                                                "  PCR Encoder Jump Max  : 0 ms (Last One: Never)\n");
}

TEST(ClockRecovery, AnUnknownTrackingModeIsTheHeadingAlone)
{
    SMGR_DECODER_CLOCK_RECOVERY_STATS stats = DistinctRecord();
    ClearServiceCalls();
    for (const int trackingMode : {-1, 4, 5, INT_MIN, INT_MAX})
    {
        stats.trackingMode = trackingMode;
        EXPECT_EQ(Report(stats, STATS_LEVEL_DEFAULT), "Clock Recovery\n") << "mode " << trackingMode;
        EXPECT_EQ(Report(stats, STATS_LEVEL_DEBUG), "Clock Recovery\n") << "mode " << trackingMode;
    }
    EXPECT_TRUE(ServiceCalls().empty());
}

TEST(ClockRecovery, EveryLevelButDebugPrintsTheDefaultReport)
{
    SMGR_DECODER_CLOCK_RECOVERY_STATS stats = DistinctRecord();
    for (const int trackingMode : {0, 1, 2, 3})
    {
        stats.trackingMode = trackingMode;
        const std::string text = Report(stats, STATS_LEVEL_DEFAULT);
        for (const int nLevel : {2, -1, INT_MAX, INT_MIN}) EXPECT_EQ(Report(stats, nLevel), text) << "level " << nLevel;
    }
}

TEST(ClockRecovery, FieldsThatAreNotPrintedChangeNothing)
{
    SMGR_DECODER_CLOCK_RECOVERY_STATS stats = DistinctRecord();
    const std::string text = Report(stats, STATS_LEVEL_DEBUG);
    stats.TrackingStarted = 0;
    stats.OldSndClk = 0;
    stats.OldRcvClk = 0;
    stats.OldDeltaSnd = 0;
    stats.FilterDeltaSnd = 0;
    stats.OldDeltaClk = 0;
    stats.FilterDeltaClk = 0;
    stats.PllNotSettled = 0;
    stats.pcrJitterErr = 0;
    stats.pcrTsDeltaAud0 = 0;
    stats.pcrTsDeltaAud1 = 0;
    stats.pcrTsDeltaAud2 = 0;
    stats.pcrTsDeltaAud3 = 0;
    stats.pcrTsDeltaAud4 = 0;
    stats.pcrTsDeltaAud5 = 0;
    stats.pcrTsDeltaAud6 = 0;
    stats.pcrTsDeltaAud7 = 0;
    stats.pcrTsDeltaKlv = 0;
    EXPECT_EQ(Report(stats, STATS_LEVEL_DEBUG), text);
}

TEST(ClockRecovery, EveryTextButTheCounterLinesHas159Characters)
{
    SMGR_DECODER_CLOCK_RECOVERY_STATS stats = DistinctRecord();
    stats.PcrUpdates = 0;
    stats.tLastPcrJump = 0;
    ClearServiceCalls();
    Report(stats, STATS_LEVEL_DEBUG);
    const auto& calls = ServiceCalls();
    EXPECT_EQ(std::count(calls.begin(), calls.end(), (ServiceCall{"PrintToString", "Never", 159})), 1);
    EXPECT_EQ(std::count(calls.begin(), calls.end(), (ServiceCall{"StringCat", " ago", 159})), 1);
    for (const ServiceCall& call : calls) EXPECT_EQ(call.size, 159u) << call.service << " " << call.value;
}

/* ---- Status ---- */

TEST(ClockRecovery, WithoutAnAverageAndADeviationItIsSearching)
{
    SMGR_DECODER_CLOCK_RECOVERY_STATS stats = Tracking();
    stats.curPllAvg = 0;
    stats.curPLLDevHz = 0;
    for (const long nPpm : {0l, 4l, 50l, 500l, -500l})
    {
        stats.curPLLDevPpm = nPpm;
        EXPECT_EQ(DefaultLine(stats, "Status"), "  Status                : SEARCHING");
        EXPECT_EQ(DebugLine(stats, "Status"), "  Status                : SEARCHING");
    }
}

TEST(ClockRecovery, WithoutAnAverageButWithADeviationItIsNotSearching)
{
    SMGR_DECODER_CLOCK_RECOVERY_STATS stats = Tracking();
    stats.curPllAvg = 0;
    stats.avgDevHz = 7;
    EXPECT_EQ(DefaultLine(stats, "Status"), "  Status                : LOCKED (0.0PPM)");
    EXPECT_EQ(DefaultLine(stats, "STC A"), "");
    EXPECT_EQ(DebugLine(stats, "STC A"), ""); // neither average nor adjustment
}

TEST(ClockRecovery, WithoutADeviationButWithAnAverageItIsNotSearching)
{
    SMGR_DECODER_CLOCK_RECOVERY_STATS stats = Tracking();
    stats.curPLLDevHz = 0;
    EXPECT_EQ(DefaultLine(stats, "Status"), "  Status                : LOCKED (0.0PPM)");
}

TEST(ClockRecovery, WithMinimumAndMaximumAtNominalItIsSearching)
{
    SMGR_DECODER_CLOCK_RECOVERY_STATS stats = Tracking();
    stats.curPllMin = 27000000;
    stats.curPllMax = 27000000;
    for (const long nPpm : {0l, 4l, 50l, 500l, -500l})
    {
        stats.curPLLDevPpm = nPpm;
        EXPECT_EQ(DefaultLine(stats, "Status"), "  Status                : SEARCHING");
    }
    stats.curPllAvg = 0; // with a deviation of 1 Hz still
    EXPECT_EQ(DefaultLine(stats, "Status"), "  Status                : SEARCHING");
}

TEST(ClockRecovery, SearchingStillShowsAnAverage)
{
    SMGR_DECODER_CLOCK_RECOVERY_STATS stats = Tracking();
    stats.curPllMin = 27000000;
    stats.curPllMax = 27000000;
    EXPECT_EQ(DefaultLine(stats, "STC Avg"), "  STC Avg (last 2 min)  : {LONGLONG 27000001 159}Hz (Deviation 0.0PPM)");
}

TEST(ClockRecovery, WithOneOfMinimumAndMaximumAtNominalItIsNotSearching)
{
    SMGR_DECODER_CLOCK_RECOVERY_STATS stats = Tracking();
    stats.curPllMin = 27000000;
    EXPECT_EQ(DefaultLine(stats, "Status"), "  Status                : LOCKED (0.0PPM)");
    stats.curPllMin = 26999999;
    stats.curPllMax = 27000000;
    EXPECT_EQ(DefaultLine(stats, "Status"), "  Status                : LOCKED (0.0PPM)");
    stats.curPllMax = 26999999; // equal to each other, not to nominal
    EXPECT_EQ(DefaultLine(stats, "Status"), "  Status                : LOCKED (0.0PPM)");
}

TEST(ClockRecovery, NominalComparesWithAll64Bits)
{
    SMGR_DECODER_CLOCK_RECOVERY_STATS stats = Tracking();
    stats.curPllMin = 27000000 + 4294967296;
    stats.curPllMax = 27000000 + 4294967296;
    EXPECT_EQ(DefaultLine(stats, "Status"), "  Status                : LOCKED (0.0PPM)");
    stats.curPllAvg = 4294967296;
    stats.curPLLDevHz = 4294967296;
    EXPECT_EQ(DefaultLine(stats, "Status"), "  Status                : LOCKED (0.0PPM)");
}

// The status line for a deviation.
static std::string StatusAt(long curPLLDevPpm)
{
    SMGR_DECODER_CLOCK_RECOVERY_STATS stats = Tracking();
    stats.curPLLDevPpm = curPLLDevPpm;
    stats.curPLLDevPpmFract = 75;
    const std::string line = DefaultLine(stats, "Status");
    EXPECT_EQ(DebugLine(stats, "Status"), line);
    return line;
}

TEST(ClockRecovery, WithinFourPpmIsLocked)
{
    EXPECT_EQ(StatusAt(4), "  Status                : LOCKED (4.75PPM)");
    EXPECT_EQ(StatusAt(-4), "  Status                : LOCKED (-4.75PPM)");
    EXPECT_EQ(StatusAt(0), "  Status                : LOCKED (0.75PPM)");
}

TEST(ClockRecovery, FivePpmIsUnlockedByMoreThanFive)
{
    EXPECT_EQ(StatusAt(5), "  Status                : UNLOCKED (more then +-5PPM)");
    EXPECT_EQ(StatusAt(-5), "  Status                : UNLOCKED (more then +-5PPM)");
}

TEST(ClockRecovery, NinetyNinePpmIsUnlockedByMoreThanFive)
{
    EXPECT_EQ(StatusAt(95), "  Status                : UNLOCKED (more then +-5PPM)");
    EXPECT_EQ(StatusAt(96), "  Status                : UNLOCKED (more then +-5PPM)");
    EXPECT_EQ(StatusAt(99), "  Status                : UNLOCKED (more then +-5PPM)");
}

TEST(ClockRecovery, OneHundredPpmIsUnlockedByOver95)
{
    EXPECT_EQ(StatusAt(100), "  Status                : UNLOCKED (over 95PPM from nominal)");
    EXPECT_EQ(StatusAt(4294967296), "  Status                : UNLOCKED (over 95PPM from nominal)"); // nothing in the lower 32 bits
    EXPECT_EQ(StatusAt(LONG_MAX), "  Status                : UNLOCKED (over 95PPM from nominal)");
}

TEST(ClockRecovery, NoNegativeDeviationIsOver95)
{
    EXPECT_EQ(StatusAt(-99), "  Status                : UNLOCKED (more then +-5PPM)");
    EXPECT_EQ(StatusAt(-100), "  Status                : UNLOCKED (more then +-5PPM)");
    EXPECT_EQ(StatusAt(-500), "  Status                : UNLOCKED (more then +-5PPM)");
    EXPECT_EQ(StatusAt(-4294967296), "  Status                : UNLOCKED (more then +-5PPM)");
    EXPECT_EQ(StatusAt(LONG_MIN), "  Status                : UNLOCKED (more then +-5PPM)");
}

TEST(ClockRecovery, TheFractionIsAPlainSignedNumber)
{
    SMGR_DECODER_CLOCK_RECOVERY_STATS stats = Tracking();
    stats.curPLLDevPpmFract = 5; // not padded to .05 or .50
    EXPECT_EQ(DefaultLine(stats, "Status"), "  Status                : LOCKED (0.5PPM)");
    stats.curPLLDevPpmFract = -5;
    EXPECT_EQ(DefaultLine(stats, "Status"), "  Status                : LOCKED (0.-5PPM)");
    stats.curPLLDevPpm = -1;
    stats.curPLLDevPpmFract = 1234567;
    EXPECT_EQ(DefaultLine(stats, "Status"), "  Status                : LOCKED (-1.1234567PPM)");
}

TEST(ClockRecovery, ANegativeDeviationBelowOnePpmShowsNoSign)
{
    SMGR_DECODER_CLOCK_RECOVERY_STATS stats = Tracking();
    stats.curPLLDevHz = -8;
    stats.curPLLDevPpm = 0;
    stats.curPLLDevPpmFract = 3;
    EXPECT_EQ(DefaultLine(stats, "Status"), "  Status                : LOCKED (0.3PPM)");
    EXPECT_EQ(DefaultLine(stats, "STC Avg"), "  STC Avg (last 2 min)  : {LONGLONG 27000001 159}Hz (Deviation 0.3PPM)");
    EXPECT_EQ(
        DebugLine(stats, "STC Avg"),
        "  STC Avg (last 2 min)  : {ULONG 27000001 159}Hz min/max({ULONG 26999999 159}/{ULONG 27000002 159}Hz) deviation of -8Hz (0.3PPM)");
}

/* ---- Counts and frequencies ---- */

TEST(ClockRecovery, ResyncCountIsSigned)
{
    SMGR_DECODER_CLOCK_RECOVERY_STATS stats = Tracking();
    stats.ReSyncCount = -2;
    EXPECT_EQ(DefaultLine(stats, "ReSync Count"), "  ReSync Count          : -2");
}

TEST(ClockRecovery, PcrUpdatesAreACounterLineAtBothLevels)
{
    SMGR_DECODER_CLOCK_RECOVERY_STATS stats = Tracking();
    stats.tLastPcrUpdate = frozen_now - 6;
    EXPECT_EQ(DefaultLine(stats, "PCR Updates"), "  PCR Updates           : 0");
    stats.PcrUpdates = 18446744073709551615ul;
    EXPECT_EQ(DefaultLine(stats, "PCR Updates"),
              "  PCR Updates           : {ULONG 18446744073709551615 1024} (Last One: {UpTime 6 1024} ago)");
    EXPECT_EQ(DebugLine(stats, "PCR Updates"),
              "  PCR Updates           : {ULONG 18446744073709551615 1024} (Last One: {UpTime 6 1024} ago)");
}

TEST(ClockRecovery, NominalAndCurrentFrequencyAreUnsigned)
{
    SMGR_DECODER_CLOCK_RECOVERY_STATS stats = Tracking();
    stats.StcClkNominal = -1;
    stats.OldPll = -2;
    stats.curPLLDevPpmNominal = LONG_MIN;
    EXPECT_EQ(DebugLine(stats, "Nominal STC"), "  Nominal STC           : {ULONG 18446744073709551615 159}Hz");
    EXPECT_EQ(DefaultLine(stats, "Current STC"),
              "  Current STC           : {ULONG 18446744073709551614 159}Hz (-9223372036854775808PPM from Nominal)");
}

TEST(ClockRecovery, SampleCountIsSignExtended)
{
    SMGR_DECODER_CLOCK_RECOVERY_STATS stats = Tracking();
    stats.SampleCount = -1;
    EXPECT_EQ(DebugLine(stats, "Sample Count"), "  Sample Count          : {ULONG 18446744073709551615 159}");
    EXPECT_EQ(DefaultLine(stats, "Sample Count"), "");
}

TEST(ClockRecovery, AverageUpTo99PpmShowsTheDeviation)
{
    SMGR_DECODER_CLOCK_RECOVERY_STATS stats = Tracking();
    stats.curPLLDevPpmFract = 6;
    stats.curPLLDevPpm = 99;
    EXPECT_EQ(DefaultLine(stats, "STC Avg"), "  STC Avg (last 2 min)  : {LONGLONG 27000001 159}Hz (Deviation 99.6PPM)");
    EXPECT_EQ(
        DebugLine(stats, "STC Avg"),
        "  STC Avg (last 2 min)  : {ULONG 27000001 159}Hz min/max({ULONG 26999999 159}/{ULONG 27000002 159}Hz) deviation of 1Hz (99.6PPM)");
    stats.curPLLDevPpm = -500;
    EXPECT_EQ(DefaultLine(stats, "STC Avg"), "  STC Avg (last 2 min)  : {LONGLONG 27000001 159}Hz (Deviation -500.6PPM)");
    EXPECT_EQ(DebugLine(stats, "STC Avg"), "  STC Avg (last 2 min)  : {ULONG 27000001 159}Hz min/max({ULONG 26999999 159}/{ULONG 27000002 "
                                           "159}Hz) deviation of 1Hz (-500.6PPM)");
}

TEST(ClockRecovery, AverageFrom100PpmOnShowsNoPpm)
{
    SMGR_DECODER_CLOCK_RECOVERY_STATS stats = Tracking();
    stats.curPLLDevPpm = 100;
    EXPECT_EQ(DefaultLine(stats, "STC Avg"), "  STC Avg (last 2 min)  : {LONGLONG 27000001 159}Hz ");
    EXPECT_EQ(DebugLine(stats, "STC Avg"),
              "  STC Avg (last 2 min)  : {ULONG 27000001 159}Hz min/max({ULONG 26999999 159}/{ULONG 27000002 159}Hz) deviation of 1Hz ");
}

TEST(ClockRecovery, AverageIsSignedByDefaultAndUnsignedForDebugging)
{
    SMGR_DECODER_CLOCK_RECOVERY_STATS stats = Tracking();
    stats.curPllAvg = -1;
    stats.curPllMin = -3;
    stats.curPllMax = -2;
    stats.curPLLDevHz = LONG_MIN;
    EXPECT_EQ(DefaultLine(stats, "STC Avg"), "  STC Avg (last 2 min)  : {LONGLONG -1 159}Hz (Deviation 0.0PPM)");
    EXPECT_EQ(DebugLine(stats, "STC Avg"),
              "  STC Avg (last 2 min)  : {ULONG 18446744073709551615 159}Hz min/max({ULONG 18446744073709551613 159}/{ULONG "
              "18446744073709551614 159}Hz) deviation of -9223372036854775808Hz (0.0PPM)");
}

TEST(ClockRecovery, DeviationOfTheAverageAndItsFractionAreSigned)
{
    SMGR_DECODER_CLOCK_RECOVERY_STATS stats = Tracking();
    stats.curPLLDevHz = -8;
    stats.curPLLDevPpmFract = -6;
    EXPECT_EQ(DefaultLine(stats, "STC Avg"), "  STC Avg (last 2 min)  : {LONGLONG 27000001 159}Hz (Deviation 0.-6PPM)");
    EXPECT_EQ(DebugLine(stats, "STC Avg"), "  STC Avg (last 2 min)  : {ULONG 27000001 159}Hz min/max({ULONG 26999999 159}/{ULONG 27000002 "
                                           "159}Hz) deviation of -8Hz (0.-6PPM)");
    stats.curPLLDevPpm = 100;
    EXPECT_EQ(DebugLine(stats, "STC Avg"),
              "  STC Avg (last 2 min)  : {ULONG 27000001 159}Hz min/max({ULONG 26999999 159}/{ULONG 27000002 159}Hz) deviation of -8Hz ");
}

// The adjustment line of the debug report.
static std::string Adjustment(long avgDevHz, long avgDevPpm, long avgDevPpmFract, long curPLLDevPpm = 0)
{
    SMGR_DECODER_CLOCK_RECOVERY_STATS stats = Tracking();
    stats.avgDevHz = avgDevHz;
    stats.avgDevPpm = avgDevPpm;
    stats.avgDevPpmFract = avgDevPpmFract;
    stats.curPLLDevPpm = curPLLDevPpm;
    EXPECT_EQ(DefaultLine(stats, "STC Adj"), "");
    return DebugLine(stats, "STC Adj");
}

TEST(ClockRecovery, NoAdjustmentLineWithoutAnAdjustment)
{
    EXPECT_EQ(Adjustment(0, 2, 3), "");
    EXPECT_EQ(Adjustment(0, 2, 3, 100), "");
}

TEST(ClockRecovery, NoAdjustmentLineWithoutAnAverage)
{
    SMGR_DECODER_CLOCK_RECOVERY_STATS stats = Tracking();
    stats.curPllAvg = 0;
    stats.avgDevHz = 5;
    EXPECT_EQ(DebugLine(stats, "STC Adj"), "");
}

TEST(ClockRecovery, ANegativeAdjustmentBelowOnePpmGetsItsSignBack)
{
    EXPECT_EQ(Adjustment(-40, 0, 3), "  STC Adj (last 16 min) : {LONGLONG -40 159}Hz (-0.3PPM)");
    EXPECT_EQ(Adjustment(-1, 0, 0), "  STC Adj (last 16 min) : {LONGLONG -1 159}Hz (-0.0PPM)");
    EXPECT_EQ(Adjustment(-40, 0, 3, 99), "  STC Adj (last 16 min) : {LONGLONG -40 159}Hz (-0.3PPM)");
    EXPECT_EQ(Adjustment(-40, 0, -3), "  STC Adj (last 16 min) : {LONGLONG -40 159}Hz (-0.-3PPM)"); // the fraction keeps its own
}

TEST(ClockRecovery, OtherAdjustmentsCarryTheirOwnSign)
{
    EXPECT_EQ(Adjustment(-40, -1, 3), "  STC Adj (last 16 min) : {LONGLONG -40 159}Hz (-1.3PPM)");
    EXPECT_EQ(Adjustment(40, 0, 3), "  STC Adj (last 16 min) : {LONGLONG 40 159}Hz (0.3PPM)");
    EXPECT_EQ(Adjustment(1, 0, 0), "  STC Adj (last 16 min) : {LONGLONG 1 159}Hz (0.0PPM)");
    EXPECT_EQ(Adjustment(-40, 2, 3), "  STC Adj (last 16 min) : {LONGLONG -40 159}Hz (2.3PPM)");
    EXPECT_EQ(Adjustment(40, -2, 3), "  STC Adj (last 16 min) : {LONGLONG 40 159}Hz (-2.3PPM)");
    EXPECT_EQ(Adjustment(-40, -1, 3, -500), "  STC Adj (last 16 min) : {LONGLONG -40 159}Hz (-1.3PPM)");
}

TEST(ClockRecovery, AdjustmentFrom100PpmOnShowsNoPpm)
{
    EXPECT_EQ(Adjustment(40, 1, 3, 100), "  STC Adj (last 16 min) : {LONGLONG 40 159}Hz ");
    EXPECT_EQ(Adjustment(-40, -1, 3, 100), "  STC Adj (last 16 min) : {LONGLONG -40 159}Hz ");
    EXPECT_EQ(Adjustment(-40, 0, 3, 100), "  STC Adj (last 16 min) : {LONGLONG -40 159}Hz ");
    EXPECT_EQ(Adjustment(40, 1, 3, 99), "  STC Adj (last 16 min) : {LONGLONG 40 159}Hz (1.3PPM)");
}

TEST(ClockRecovery, AdjustmentHasAll64Bits)
{
    EXPECT_EQ(Adjustment(4294967296, 0, 3), "  STC Adj (last 16 min) : {LONGLONG 4294967296 159}Hz (0.3PPM)");
    EXPECT_EQ(Adjustment(LONG_MIN, 4294967296, LONG_MIN),
              "  STC Adj (last 16 min) : {LONGLONG -9223372036854775808 159}Hz (4294967296.-9223372036854775808PPM)");
}

/* ---- PCR ---- */

TEST(ClockRecovery, PcrHasAtLeastNineHexadecimalDigits)
{
    SMGR_DECODER_CLOCK_RECOVERY_STATS stats = Tracking();
    for (const int trackingMode : {0, 1, 2, 3})
    {
        stats.trackingMode = trackingMode;
        stats.curPcr = 0xABC;
        stats.curPcrFpga = 0x123456789;
        EXPECT_EQ(DebugLine(stats, "Current PCR  "), "  Current PCR           : 0x000000abc (90K)");
        EXPECT_EQ(DebugLine(stats, "Current PCR (reg val)"), "  Current PCR (reg val) : 0x123456789 (90K)");
        stats.curPcr = 0x123456789A;
        stats.curPcrFpga = -2;
        EXPECT_EQ(DebugLine(stats, "Current PCR  "), "  Current PCR           : 0x123456789a (90K)");
        EXPECT_EQ(DebugLine(stats, "Current PCR (reg val)"), "  Current PCR (reg val) : 0xfffffffffffffffe (90K)");
    }
}

// The three lines with ticks, when enabled and when disabled, for ticks that give that many milliseconds.
static void ExpectTicks(long nTicks, const std::string& ms)
{
    SMGR_DECODER_CLOCK_RECOVERY_STATS stats = Tracking();
    stats.curPcrFpgaDelta = nTicks;
    stats.pcrTsDelta = nTicks;
    stats.pcrTsDeltaMinValue = nTicks;
    stats.pcrTsDeltaMaxValue = nTicks;
    stats.pcrTsDeltaMinExtValue = nTicks;
    stats.pcrTsDeltaMaxExtValue = nTicks;
    const std::string minMax =
        "  MinMax PCR Vs TS Delta: " + ms + " ms/" + ms + " ms (In the last 0 sec)\tExtremas min/max=" + ms + "ms/" + ms + "ms)";
    const std::string enabled = Report(stats, STATS_LEVEL_DEBUG);
    EXPECT_EQ(LineOf(enabled, "PCR Delta (Enc vs Reg)"), "  PCR Delta (Enc vs Reg): " + ms + " ms");
    EXPECT_EQ(LineOf(enabled, "PCR reg Vs TS Delta"), "  PCR reg Vs TS Delta   : " + ms + " ms  (Average value) ");
    EXPECT_EQ(LineOf(enabled, "MinMax PCR Vs TS Delta"), minMax);
    stats.trackingMode = SMGR_CLOCK_TRACKING_DISABLED;
    const std::string disabled = Report(stats, STATS_LEVEL_DEBUG);
    EXPECT_EQ(LineOf(disabled, "PCR Delta (Enc vs Reg)"), "  PCR Delta (Enc vs Reg): " + ms + "ms");
    EXPECT_EQ(LineOf(disabled, "PCR reg Vs TS Delta"), "  PCR reg Vs TS Delta   : " + ms + " ms (Average value)");
    EXPECT_EQ(LineOf(disabled, "MinMax PCR Vs TS Delta"), minMax);
}

TEST(ClockRecovery, TicksAreTruncatedTowardZero)
{
    ExpectTicks(-179, "-1");
    ExpectTicks(179, "1");
    ExpectTicks(-90, "-1");
    ExpectTicks(90, "1");
    ExpectTicks(-89, "0");
    ExpectTicks(89, "0");
    ExpectTicks(-180, "-2");
    ExpectTicks(180, "2");
}

TEST(ClockRecovery, TicksHaveAll64Bits)
{
    ExpectTicks(386547056640, "4294967296"); // 2^32 * 90
    ExpectTicks(LONG_MAX, "102481911520608620");
    ExpectTicks(LONG_MIN, "-102481911520608620");
}

TEST(ClockRecovery, TheIntervalIsTruncatedTowardZero)
{
    SMGR_DECODER_CLOCK_RECOVERY_STATS stats = Tracking();
    stats.pcrTsDeltaMinMaxDlyMS = 1999;
    EXPECT_EQ(DebugLine(stats, "MinMax PCR"), "  MinMax PCR Vs TS Delta: 0 ms/0 ms (In the last 1 sec)\tExtremas min/max=0ms/0ms)");
    stats.pcrTsDeltaMinMaxDlyMS = -1999;
    EXPECT_EQ(DebugLine(stats, "MinMax PCR"), "  MinMax PCR Vs TS Delta: 0 ms/0 ms (In the last -1 sec)\tExtremas min/max=0ms/0ms)");
    stats.pcrTsDeltaMinMaxDlyMS = -999;
    EXPECT_EQ(DebugLine(stats, "MinMax PCR"), "  MinMax PCR Vs TS Delta: 0 ms/0 ms (In the last 0 sec)\tExtremas min/max=0ms/0ms)");
    stats.pcrTsDeltaMinMaxDlyMS = 4294967296000;
    EXPECT_EQ(DebugLine(stats, "MinMax PCR"),
              "  MinMax PCR Vs TS Delta: 0 ms/0 ms (In the last 4294967296 sec)\tExtremas min/max=0ms/0ms)");
}

TEST(ClockRecovery, DivisionFactorIsSigned)
{
    SMGR_DECODER_CLOCK_RECOVERY_STATS stats = Tracking();
    stats.mafDivFactor = LONG_MIN;
    EXPECT_EQ(DebugLine(stats, "MAF DeltaClk div fact"), "  MAF DeltaClk div fact : -9223372036854775808");
}

TEST(ClockRecovery, SettlingTimeOnlyIfThereIsOne)
{
    SMGR_DECODER_CLOCK_RECOVERY_STATS stats = Tracking();
    EXPECT_EQ(DebugLine(stats, "Settling Time"), "");
    stats.PllSettleTime = 1;
    EXPECT_EQ(DebugLine(stats, "Settling Time"),
              "  Settling Time         : {UpTime 1 159} (first time, since resync, we select more restrictive filter)");
    EXPECT_EQ(DefaultLine(stats, "Settling Time"), "");
    stats.PllSettleTime = -1;
    EXPECT_EQ(DebugLine(stats, "Settling Time"),
              "  Settling Time         : {UpTime -1 159} (first time, since resync, we select more restrictive filter)");
}

TEST(ClockRecovery, LatePcrsOnlyIfThereAreAny)
{
    SMGR_DECODER_CLOCK_RECOVERY_STATS stats = Tracking();
    stats.pcrLateMaxValue = -5;
    EXPECT_EQ(DebugLine(stats, "PCR Late Count"), "");
    EXPECT_EQ(DebugLine(stats, "No PCR received for"), "");
    stats.pcrLateCount = -1;
    EXPECT_EQ(DebugLine(stats, "PCR Late Count"), "  PCR Late Count        : -1");
    EXPECT_EQ(DebugLine(stats, "No PCR received for"), "  No PCR received for   : {MilliSeconds -5 159} (maximum value)");
    EXPECT_EQ(DefaultLine(stats, "PCR Late Count"), "");
    EXPECT_EQ(DefaultLine(stats, "No PCR received for"), "");
}

TEST(ClockRecovery, JumpsAreSigned)
{
    SMGR_DECODER_CLOCK_RECOVERY_STATS stats = Tracking();
    stats.PcrJump = -7;
    stats.PcrJumpMaxValue = LONG_MIN;
    stats.tLastPcrJumpMaxValue = frozen_now + 1;
    EXPECT_EQ(DebugLine(stats, "PCR Encoder Jump  "), "  PCR Encoder Jump      : -7 ms (Last One: Never)");
    EXPECT_EQ(DebugLine(stats, "PCR Encoder Jump Max"),
              "  PCR Encoder Jump Max  : -9223372036854775808 ms (Last One: {UpTime -1 159} ago)");
}

// The lines of the jitter errors.
static std::string JitterErrors(int pcrJitterErrCount, int pcrJitterMaxErrValue)
{
    SMGR_DECODER_CLOCK_RECOVERY_STATS stats = Tracking();
    stats.pcrJitterErrCount = pcrJitterErrCount;
    stats.pcrJitterMaxErrValue = pcrJitterMaxErrValue;
    EXPECT_EQ(DefaultLine(stats, "PCR Jitter Err Count"), "");
    const std::string text = Report(stats, STATS_LEVEL_DEBUG);
    const size_t start = text.find("  PCR Jitter Err Count");
    return start == std::string::npos ? std::string() : text.substr(start);
}

TEST(ClockRecovery, NoJitterErrors)
{
    EXPECT_EQ(JitterErrors(0, 40), "");
    SMGR_DECODER_CLOCK_RECOVERY_STATS stats = Tracking();
    stats.pcrJitterMaxErrValue = 40;
    EXPECT_EQ(DebugLine(stats, "Wrong PCR"), "");
}

TEST(ClockRecovery, JitterErrorsUpToTenSeconds)
{
    EXPECT_EQ(JitterErrors(2, 10000), "  PCR Jitter Err Count  : 2\n"
                                      "  Wrong PCR, deviation  : 10000ms (maximum value between 2 PCR values)\n");
    EXPECT_EQ(JitterErrors(3, -10000), "  PCR Jitter Err Count  : 3\n"
                                       "  Wrong PCR, deviation  : -10000ms (maximum value between 2 PCR values)\n");
    EXPECT_EQ(JitterErrors(-1, 0), "  PCR Jitter Err Count  : -1\n"
                                   "  Wrong PCR, deviation  : 0ms (maximum value between 2 PCR values)\n");
}

TEST(ClockRecovery, JitterErrorsBeyondTenSecondsAreAWrapOfTheCounter)
{
    EXPECT_EQ(JitterErrors(2, 10001), "  PCR Jitter Err Count  : 2\n"
                                      "  Wrong PCR, deviation  : 10001ms (counter probably wrapped-around ...)\n");
    EXPECT_EQ(JitterErrors(3, -10001), "  PCR Jitter Err Count  : 3\n"
                                       "  Wrong PCR, deviation  : -10001ms (counter probably wrapped-around ...)\n");
    EXPECT_EQ(JitterErrors(INT_MIN, INT_MIN), "  PCR Jitter Err Count  : -2147483648\n"
                                              "  Wrong PCR, deviation  : -2147483648ms (counter probably wrapped-around ...)\n");
    EXPECT_EQ(JitterErrors(INT_MAX, INT_MAX), "  PCR Jitter Err Count  : 2147483647\n"
                                              "  Wrong PCR, deviation  : 2147483647ms (counter probably wrapped-around ...)\n");
}
