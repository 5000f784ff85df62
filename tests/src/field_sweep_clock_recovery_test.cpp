#include <gtest/gtest.h>

#include "field_sweep.h"

static const SweptReport& Report()
{
    static const SweptReport report = ReportOf(STATS_PrintForClockRecovery, {}, {"Clock Recovery"});
    return report;
}

static const LineNames pcr_lines = {
    "Current PCR",         "Current PCR (reg val)",  "PCR Delta (Enc vs Reg)",
    "PCR reg Vs TS Delta", "MinMax PCR Vs TS Delta", "MAF DeltaClk div fact",
};
// The lines of a loop that tracks, behind the tracking mode.
static const LineNames tracking_operator_lines = {"Status", "ReSync Count", "PCR Updates", "Current STC"};
static const LineNames tracking_debug_lines = AllLines({
    tracking_operator_lines,
    {"Nominal STC", "Sample Count", "PCR Encoder Jump", "PCR Encoder Jump Max"},
});
// These two read otherwise while the loop tracks.
static const LineNames pcr_lines_by_mode = {"PCR Delta (Enc vs Reg)", "PCR reg Vs TS Delta"};

// What even the debug level does not show before it happens.
static const LineNames event_lines = {
    "Settling Time", "PCR Late Count", "No PCR received for", "PCR Jitter Err Count", "Wrong PCR, deviation",
};

// A number that is shown divided, without the fraction: it changes from one whole unit on.
static std::vector<ValueLines> WholeUnits(int unit, const LineNames& debugLines)
{
    return {{.value = 1},
            {.value = unit - 1},
            {.value = 1 - unit},
            {.value = unit, .debugLines = debugLines},
            {.value = -unit, .debugLines = debugLines}};
}

// The tracking mode of a loop that tracks and may show more than the lines above.
static FieldRow ModeRow(const LineNames& otherOperatorLines, const LineNames& otherDebugLines)
{
    using Record = SMGR_DECODER_CLOCK_RECOVERY_STATS;
    const LineNames operatorLines = AllLines({tracking_operator_lines, otherOperatorLines});
    const LineNames debugLines = AllLines({tracking_debug_lines, otherDebugLines});
    return {FIELD(trackingMode), .lines = {"Tracking Mode"}, .operatorLines = operatorLines,
            .debugLines = AllLines({debugLines, pcr_lines}),
            .at = {{.value = 0,
                    .lines = {"Tracking Mode"},
                    .operatorLines = operatorLines,
                    .debugLines = AllLines({debugLines, pcr_lines_by_mode})},
                   {.value = 2,
                    .lines = {"Tracking Mode", "Lock Tracking Mode"},
                    .operatorLines = operatorLines,
                    .debugLines = AllLines({debugLines, pcr_lines_by_mode})},
                   {.value = 3, .lines = {"Lock Tracking Mode"}}}};
}

// The PCR block, shown whether the loop tracks or not. Ticks of 90 kHz show as whole milliseconds; the interval is in
// milliseconds and shows as whole seconds.
static FieldRows PcrRows()
{
    using Record = SMGR_DECODER_CLOCK_RECOVERY_STATS;
    return {
        {FIELD(curPcr), .debugLines = {"Current PCR"}},
        {FIELD(curPcrFpga), .debugLines = {"Current PCR (reg val)"}},
        {FIELD(curPcrFpgaDelta), .debugLines = {"PCR Delta (Enc vs Reg)"}, .at = WholeUnits(90, {"PCR Delta (Enc vs Reg)"})},
        {FIELD(mafDivFactor), .debugLines = {"MAF DeltaClk div fact"}},
        {FIELD(pcrTsDelta), .debugLines = {"PCR reg Vs TS Delta"}, .at = WholeUnits(90, {"PCR reg Vs TS Delta"})},
        {FIELD(pcrTsDeltaAud0)},
        {FIELD(pcrTsDeltaAud1)},
        {FIELD(pcrTsDeltaAud2)},
        {FIELD(pcrTsDeltaAud3)},
        {FIELD(pcrTsDeltaAud4)},
        {FIELD(pcrTsDeltaAud5)},
        {FIELD(pcrTsDeltaAud6)},
        {FIELD(pcrTsDeltaAud7)},
        {FIELD(pcrTsDeltaKlv)},
        {FIELD(pcrTsDeltaMinValue), .debugLines = {"MinMax PCR Vs TS Delta"}, .at = WholeUnits(90, {"MinMax PCR Vs TS Delta"})},
        {FIELD(pcrTsDeltaMaxValue), .debugLines = {"MinMax PCR Vs TS Delta"}, .at = WholeUnits(90, {"MinMax PCR Vs TS Delta"})},
        {FIELD(pcrTsDeltaMinMaxDlyMS), .debugLines = {"MinMax PCR Vs TS Delta"}, .at = WholeUnits(1000, {"MinMax PCR Vs TS Delta"})},
        {FIELD(pcrTsDeltaMinExtValue), .debugLines = {"MinMax PCR Vs TS Delta"}, .at = WholeUnits(90, {"MinMax PCR Vs TS Delta"})},
        {FIELD(pcrTsDeltaMaxExtValue), .debugLines = {"MinMax PCR Vs TS Delta"}, .at = WholeUnits(90, {"MinMax PCR Vs TS Delta"})},
    };
}

// A loop that tracks and has nothing to show yet: it searches, as the average and its deviation are both 0.
static FieldRows TrackingRows()
{
    using Record = SMGR_DECODER_CLOCK_RECOVERY_STATS;
    const FieldRows rows = {
        {FIELD(TrackingStarted)},
        {FIELD(SampleCount), .debugLines = {"Sample Count"}},
        {FIELD(ReSyncCount), .lines = {"ReSync Count"}},
        {FIELD(PcrUpdates), .lines = {"PCR Updates"}},
        {FIELD(tLastPcrUpdate), .lines = {"PCR Updates"}, .ifCounted = true},
        {FIELD(OldSndClk)},
        {FIELD(OldRcvClk)},
        {FIELD(OldDeltaSnd)},
        {FIELD(FilterDeltaSnd)},
        {FIELD(OldDeltaClk)},
        {FIELD(FilterDeltaClk)},
        {FIELD(OldPll), .lines = {"Current STC"}},
        {FIELD(StcClkNominal), .debugLines = {"Nominal STC"}},
        ModeRow({}, {}),
        {FIELD(PllNotSettled)},
        {FIELD(PllSettleTime), .debugLines = {"Settling Time"}},
        {FIELD(curPllAvg), .lines = {"STC Avg (last 2 min)"}},
        {FIELD(curPllMin)},
        {FIELD(curPllMax)},
        {FIELD(curPLLDevHz)},
        {FIELD(curPLLDevPpm)},
        {FIELD(curPLLDevPpmNominal), .lines = {"Current STC"}},
        {FIELD(curPLLDevPpmFract)},
        {FIELD(avgDevHz)},
        {FIELD(avgDevPpm)},
        {FIELD(avgDevPpmFract)},
        {FIELD(pcrLateCount), .debugLines = {"PCR Late Count", "No PCR received for"}},
        {FIELD(pcrLateMaxValue)},
        {FIELD(pcrJitterErrCount), .debugLines = {"PCR Jitter Err Count", "Wrong PCR, deviation"}},
        {FIELD(pcrJitterErr)},
        {FIELD(pcrJitterMaxErrValue)},
        {FIELD(PcrJump), .debugLines = {"PCR Encoder Jump"}},
        {FIELD(tLastPcrJump), .debugLines = {"PCR Encoder Jump"}},
        {FIELD(PcrJumpMaxValue), .debugLines = {"PCR Encoder Jump Max"}},
        {FIELD(tLastPcrJumpMaxValue), .debugLines = {"PCR Encoder Jump Max"}},
    };
    return AllRows({rows, PcrRows()});
}

// A loop that has an average, an adjustment and every error, and is locked.
static FieldRows LockedRows()
{
    using Record = SMGR_DECODER_CLOCK_RECOVERY_STATS;
    return Override(
        TrackingRows(),
        {
            ModeRow({"STC Avg (last 2 min)"}, AllLines({{"STC Avg (last 2 min)", "STC Adj (last 16 min)"}, event_lines})),
            {FIELD(PllSettleTime), .debugLines = {"Settling Time"}, .at = {{.value = 0, .debugLines = {"Settling Time"}}}},
            {FIELD(curPllAvg), .lines = {"STC Avg (last 2 min)"},
             .at = {{.value = 0, .lines = {"STC Avg (last 2 min)"}, .debugLines = {"STC Adj (last 16 min)"}}}},
            {FIELD(curPllMin), .debugLines = {"STC Avg (last 2 min)"}, .at = {{.value = 27000000, .debugLines = {"STC Avg (last 2 min)"}}}},
            {FIELD(curPllMax), .debugLines = {"STC Avg (last 2 min)"}, .at = {{.value = 27000000, .debugLines = {"STC Avg (last 2 min)"}}}},
            {FIELD(curPLLDevHz), .debugLines = {"STC Avg (last 2 min)"}},
            // Within 4 ppm the status shows the deviation; beyond 99 ppm no line does.
            {FIELD(curPLLDevPpm), .lines = {"Status", "STC Avg (last 2 min)"},
             .at = {{.value = 100, .lines = {"Status", "STC Avg (last 2 min)"}, .debugLines = {"STC Adj (last 16 min)"}},
                    {.value = largest, .lines = {"Status", "STC Avg (last 2 min)"}, .debugLines = {"STC Adj (last 16 min)"}}}},
            {FIELD(curPLLDevPpmFract), .lines = {"Status", "STC Avg (last 2 min)"}},
            {FIELD(avgDevHz), .debugLines = {"STC Adj (last 16 min)"}, .at = {{.value = 0, .debugLines = {"STC Adj (last 16 min)"}}}},
            {FIELD(avgDevPpm), .debugLines = {"STC Adj (last 16 min)"}},
            {FIELD(avgDevPpmFract), .debugLines = {"STC Adj (last 16 min)"}},
            {FIELD(pcrLateCount), .debugLines = {"PCR Late Count"},
             .at = {{.value = 0, .debugLines = {"PCR Late Count", "No PCR received for"}}}},
            {FIELD(pcrLateMaxValue), .debugLines = {"No PCR received for"}},
            {FIELD(pcrJitterErrCount), .debugLines = {"PCR Jitter Err Count"},
             .at = {{.value = 0, .debugLines = {"PCR Jitter Err Count", "Wrong PCR, deviation"}}}},
            {FIELD(pcrJitterMaxErrValue), .debugLines = {"Wrong PCR, deviation"}},
        });
}

static void Lock(SMGR_DECODER_CLOCK_RECOVERY_STATS& r)
{
    r.trackingMode = SMGR_CLOCK_TRACKING_ENABLED;
    r.PcrUpdates = 7;
    r.StcClkNominal = 27000000;
    r.curPllAvg = 27000007;
    r.curPllMin = 27000001;
    r.curPllMax = 27000009;
    r.curPLLDevHz = r.avgDevHz = 7;
    r.curPLLDevPpm = 2;
    r.PllSettleTime = r.pcrLateCount = r.pcrJitterErrCount = 7;
}

// A loop that does not track shows its mode, and the PCR at the debug level.
static SweepTable Zero()
{
    using Record = SMGR_DECODER_CLOCK_RECOVERY_STATS;
    const FieldRow mode = {FIELD(trackingMode), .lines = {"Tracking Mode"}, .debugLines = pcr_lines,
                           .at = {{.value = 1,
                                   .lines = {"Tracking Mode"},
                                   .operatorLines = tracking_operator_lines,
                                   .debugLines = AllLines({tracking_debug_lines, pcr_lines_by_mode})},
                                  {.value = 2, .lines = {"Lock Tracking Mode"}},
                                  {.value = 3,
                                   .lines = {"Tracking Mode", "Lock Tracking Mode"},
                                   .operatorLines = tracking_operator_lines,
                                   .debugLines = AllLines({tracking_debug_lines, pcr_lines_by_mode})}}};
    return {.name = "zero",
            .base = RecordWith<Record>([](Record&) {}),
            .hiddenLines = {"Lock Tracking Mode"},
            .hiddenOperatorLines = tracking_operator_lines,
            .hiddenDebugLines = tracking_debug_lines,
            .rows = Override(Silent(TrackingRows()), AllRows({{mode}, PcrRows()}))};
}

static SweepTable LockWithoutTracking()
{
    using Record = SMGR_DECODER_CLOCK_RECOVERY_STATS;
    const FieldRow mode = {FIELD(trackingMode), .lines = {"Tracking Mode", "Lock Tracking Mode"}, .debugLines = pcr_lines,
                           .at = {{.value = 0, .lines = {"Lock Tracking Mode"}},
                                  {.value = 1,
                                   .lines = {"Tracking Mode", "Lock Tracking Mode"},
                                   .operatorLines = tracking_operator_lines,
                                   .debugLines = AllLines({tracking_debug_lines, pcr_lines_by_mode})}}};
    return {.name = "lock without tracking",
            .base = RecordWith<Record>([](Record& r) { r.trackingMode = SMGR_CLOCK_TRACKING_DISABLED_LOCK; }),
            .hiddenOperatorLines = tracking_operator_lines,
            .hiddenDebugLines = tracking_debug_lines,
            .rows = Override(Silent(TrackingRows()), AllRows({{mode}, PcrRows()}))};
}

// A mode of no meaning leaves the heading alone.
static SweepTable UnknownMode()
{
    using Record = SMGR_DECODER_CLOCK_RECOVERY_STATS;
    const FieldRow mode = {FIELD(trackingMode), .at = {{.value = 0, .lines = {"Tracking Mode"}, .debugLines = pcr_lines},
                                                       {.value = 1,
                                                        .lines = {"Tracking Mode"},
                                                        .operatorLines = tracking_operator_lines,
                                                        .debugLines = AllLines({tracking_debug_lines, pcr_lines})},
                                                       {.value = 4}}};
    return {.name = "unknown mode",
            .base = RecordWith<Record>([](Record& r) { r.trackingMode = 5; }),
            .hiddenLines = {"Tracking Mode"},
            .hiddenOperatorLines = tracking_operator_lines,
            .hiddenDebugLines = AllLines({tracking_debug_lines, pcr_lines}),
            .rows = Override(Silent(TrackingRows()), {mode})};
}

static SweepTable Tracking()
{
    using Record = SMGR_DECODER_CLOCK_RECOVERY_STATS;
    return {.name = "tracking",
            .base = RecordWith<Record>([](Record& r) { r.trackingMode = SMGR_CLOCK_TRACKING_ENABLED; }),
            .hiddenLines = {"Lock Tracking Mode", "STC Avg (last 2 min)"},
            .hiddenDebugLines = event_lines,
            .rows = Uncounted(TrackingRows())};
}

static SweepTable TrackingWithLock()
{
    using Record = SMGR_DECODER_CLOCK_RECOVERY_STATS;
    const FieldRow mode = {FIELD(trackingMode), .lines = {"Tracking Mode", "Lock Tracking Mode"}, .operatorLines = tracking_operator_lines,
                           .debugLines = AllLines({tracking_debug_lines, pcr_lines}),
                           .at = {{.value = 1, .lines = {"Lock Tracking Mode"}}}};
    return {.name = "tracking with lock",
            .base = RecordWith<Record>([](Record& r) { r.trackingMode = SMGR_CLOCK_TRACKING_ENABLED_LOCK; }),
            .hiddenLines = {"STC Avg (last 2 min)"},
            .hiddenDebugLines = event_lines,
            .rows = Override(Uncounted(TrackingRows()), {mode})};
}

static SweepTable Locked()
{
    using Record = SMGR_DECODER_CLOCK_RECOVERY_STATS;
    return {.name = "locked", .base = RecordWith<Record>(Lock), .hiddenLines = {"Lock Tracking Mode"}, .rows = LockedRows()};
}

// Between 5 ppm and 99 ppm the status no longer shows the deviation.
static SweepTable Unlocked()
{
    using Record = SMGR_DECODER_CLOCK_RECOVERY_STATS;
    const auto base = [](Record& r)
    {
        Lock(r);
        r.curPLLDevPpm = 50;
    };
    const LineNames average = {"STC Avg (last 2 min)"};
    const LineNames averageAndStatus = {"STC Avg (last 2 min)", "Status"};
    return {.name = "unlocked",
            .base = RecordWith<Record>(base),
            .hiddenLines = {"Lock Tracking Mode"},
            .rows =
                Override(LockedRows(), {{FIELD(curPLLDevPpm), .lines = averageAndStatus,
                                         .at = {{.value = 4, .lines = averageAndStatus},
                                                {.value = -4, .lines = averageAndStatus},
                                                {.value = 5, .lines = average},
                                                {.value = -5, .lines = average},
                                                {.value = -500, .lines = average},
                                                {.value = smallest, .lines = average},
                                                {.value = 99, .lines = average},
                                                {.value = 100, .lines = averageAndStatus, .debugLines = {"STC Adj (last 16 min)"}},
                                                {.value = largest, .lines = averageAndStatus, .debugLines = {"STC Adj (last 16 min)"}}}},
                                        {FIELD(curPLLDevPpmFract), .lines = average}})};
}

// Beyond 99 ppm no line shows a deviation in ppm.
static SweepTable FarOff()
{
    using Record = SMGR_DECODER_CLOCK_RECOVERY_STATS;
    const auto base = [](Record& r)
    {
        Lock(r);
        r.curPLLDevPpm = 500;
    };
    const LineNames lines = {"Status", "STC Avg (last 2 min)"};
    return {.name = "far off",
            .base = RecordWith<Record>(base),
            .hiddenLines = {"Lock Tracking Mode"},
            .rows = Override(
                LockedRows(),
                {{FIELD(curPLLDevPpm), .lines = lines, .debugLines = {"STC Adj (last 16 min)"},
                  .at = {{.value = 99, .lines = lines, .debugLines = {"STC Adj (last 16 min)"}}, {.value = 100}, {.value = largest}}},
                 {FIELD(curPLLDevPpmFract)},
                 {FIELD(avgDevPpm)},
                 {FIELD(avgDevPpmFract)}})};
}

// The PLL has an average and has not moved off nominal: it searches.
static SweepTable AtNominal()
{
    using Record = SMGR_DECODER_CLOCK_RECOVERY_STATS;
    const auto base = [](Record& r)
    {
        r.trackingMode = SMGR_CLOCK_TRACKING_ENABLED;
        r.StcClkNominal = r.curPllAvg = r.curPllMin = r.curPllMax = 27000000;
    };
    return {.name = "at nominal",
            .base = RecordWith<Record>(base),
            .hiddenLines = {"Lock Tracking Mode"},
            .hiddenDebugLines = AllLines({{"STC Adj (last 16 min)"}, event_lines}),
            .rows = Override(Uncounted(TrackingRows()), {ModeRow({"STC Avg (last 2 min)"}, {"STC Avg (last 2 min)"}),
                                                         {FIELD(StcClkNominal), .lines = {"Status"}, .debugLines = {"Nominal STC"}},
                                                         {FIELD(curPllMin), .lines = {"Status"}, .debugLines = {"STC Avg (last 2 min)"}},
                                                         {FIELD(curPllMax), .lines = {"Status"}, .debugLines = {"STC Avg (last 2 min)"}},
                                                         {FIELD(curPLLDevHz), .debugLines = {"STC Avg (last 2 min)"}},
                                                         {FIELD(curPLLDevPpm), .lines = {"STC Avg (last 2 min)"}},
                                                         {FIELD(curPLLDevPpmFract), .lines = {"STC Avg (last 2 min)"}},
                                                         {FIELD(avgDevHz), .debugLines = {"STC Adj (last 16 min)"}}})};
}

// Neither an average nor a deviation: it searches until there is one of them.
static SweepTable WithoutAverage()
{
    using Record = SMGR_DECODER_CLOCK_RECOVERY_STATS;
    const auto base = [](Record& r)
    {
        r.trackingMode = SMGR_CLOCK_TRACKING_ENABLED;
        r.StcClkNominal = 27000000;
    };
    return {.name = "without average",
            .base = RecordWith<Record>(base),
            .hiddenLines = {"Lock Tracking Mode", "STC Avg (last 2 min)"},
            .hiddenDebugLines = event_lines,
            .rows = Override(Uncounted(TrackingRows()),
                             {{FIELD(curPllAvg), .lines = {"Status", "STC Avg (last 2 min)"}}, {FIELD(curPLLDevHz), .lines = {"Status"}}})};
}

static std::vector<SweepTable> Tables()
{
    return {Zero(),   LockWithoutTracking(), UnknownMode(),   Tracking(), TrackingWithLock(), Locked(), Unlocked(),
            FarOff(), AtNominal(),           WithoutAverage()};
}

TEST(ClockRecoveryFields, ChangeTheirLinesAndNoOther)
{
    for (const SweepTable& table : Tables()) SweepFields(Report(), table);
}

TEST(ClockRecoveryFields, HaveARowEach)
{
    for (const SweepTable& table : Tables()) CheckEveryByteHasARow(Report(), table);
}

TEST(ClockRecoveryFields, ReachEveryLine)
{
    CheckEveryLineIsNamed(Report(), Tables());
}
