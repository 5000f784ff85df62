#include <gtest/gtest.h>

#include "field_sweep.h"

static const SweptReport& Report()
{
    static const SweptReport report = ReportOf(STATS_PrintForDecoderUsage, {}, {"Usage"});
    return report;
}

static FieldRows Rows()
{
    using Record = SMGR_DECODER_SDI_USAGE_STATS;
    return {
        {FIELD(nNumStarts), .debugLines = {"Start"}},
        {FIELD(tLastStart), .debugLines = {"Start"}, .ifCounted = true},
        {FIELD(nNumStops), .debugLines = {"Stop"}},
        {FIELD(tLastStop), .debugLines = {"Stop"}, .ifCounted = true},
        {FIELD(nNumGetStats), .debugLines = {"Get Stats"}},
        {FIELD(tLastGetStat), .debugLines = {"Get Stats"}, .ifCounted = true},
        {FIELD(nNumGetInfos), .debugLines = {"Get Info"}},
        {FIELD(tLastGetInfo), .debugLines = {"Get Info"}, .ifCounted = true},
        {FIELD(nNumConfigures), .debugLines = {"Configure"}},
        {FIELD(tLastConfigure), .debugLines = {"Configure"}, .ifCounted = true},
        {FIELD(nNumCaptures), .debugLines = {"Capture"}},
        {FIELD(tLastCapture), .debugLines = {"Capture"}, .ifCounted = true},
        {FIELD(nNumClears), .debugLines = {"Clear"}},
        {FIELD(tLastClear), .debugLines = {"Clear"}, .ifCounted = true},
        {FIELD(nNumLoadConfigs), .debugLines = {"Load Config"}},
        {FIELD(tLastLoadConfig), .debugLines = {"Load Config"}, .ifCounted = true},
        {FIELD(nNumSaveConfigs), .debugLines = {"Save Config"}},
        {FIELD(tLastSaveConfig), .debugLines = {"Save Config"}, .ifCounted = true},
    };
}

static std::vector<SweepTable> Tables()
{
    using Record = SMGR_DECODER_SDI_USAGE_STATS;
    const auto counted = [](Record& r)
    {
        r.nNumStarts = r.nNumStops = r.nNumGetStats = r.nNumGetInfos = r.nNumConfigures = 7;
        r.nNumCaptures = r.nNumClears = r.nNumLoadConfigs = r.nNumSaveConfigs = 7;
    };
    return {
        {.name = "zero", .base = RecordWith<Record>([](Record&) {}), .rows = Uncounted(Rows())},
        {.name = "counted", .base = RecordWith<Record>(counted), .rows = Rows()},
    };
}

TEST(UsageFields, ChangeTheirLinesAndNoOther)
{
    for (const SweepTable& table : Tables()) SweepFields(Report(), table);
}

TEST(UsageFields, HaveARowEach)
{
    for (const SweepTable& table : Tables()) CheckEveryByteHasARow(Report(), table);
}

TEST(UsageFields, ReachEveryLine)
{
    CheckEveryLineIsNamed(Report(), Tables());
}
