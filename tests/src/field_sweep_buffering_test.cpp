#include <gtest/gtest.h>

#include "blocks.h"
#include "field_sweep.h"

static const LineNames table_heading = {
    "Jitter (ms)                                              Q-Level",
    "Type    Output Pkts    Now / Set / Max    PCR-to-PTS   CBUF Delay    STC Lead    Now / Max   Time Stamp   Last Output",
    "rule",
};

static const SweptReport& Report()
{
    static const SweptReport report =
        ReportOf(STATS_PrintForCBuffering, {.tableRow = "Channel"}, AllLines({{"Buffering", "MultiSync Buffering"}, table_heading}));
    return report;
}

static const LineNames multisync_operator_lines = {
    "MultiSync Buffering",
    "MultiSync Delay Set",
    "MultiSync Delay Actual",
    "MultiSync Delay Range",
};
static const LineNames multisync_debug_lines = AllLines({
    multisync_operator_lines,
    {"TC Present", "TC Packets", "Invalid TC Packets", "System Time", "Timecode", "System Time - TC", "Transmission Time"},
});

// What an operator does not see before it happens.
static const LineNames event_lines = {
    "PCR Updates",       "STC Updates",         "Buffering Adjustments", "STC Lead Time Adjusts",
    "Packets Sent Late", "Buffering Overflows", "Synthesized Async PTS", "Synthesized APTS Fails",
};

// The mode in a mode other than the fixed one and MultiSync.
static FieldRow ModeRow()
{
    using Record = SMGR_CBUFFERING_STATS;
    return {FIELD(enBufferingMode), .lines = {"Buffering Mode"},
            .at = {{.value = SMGR_DECSDI_BUFFERING_FIXED, .lines = {"Buffering Mode"}},
                   {.value = SMGR_DECSDI_BUFFERING_MULTISYNC,
                    .lines = {"Buffering Mode"},
                    .operatorLines = multisync_operator_lines,
                    .debugLines = multisync_debug_lines}}};
}

// The delay set is the range, both ends included.
static FieldRows MultisyncRows()
{
    using Record = SMGR_CBUFFERING_MULTISYNC_STATS;
    return {
        // Exactly 1 is yes.
        {FIELD(bTimecodePresent), .at = {{.value = 1, .debugLines = {"TC Present"}}}},
        {FIELD(bTimecodeValid), .at = {{.value = 1, .debugLines = {"TC Present"}}}},
        {FIELD(nTimecodeInMs), .debugLines = {"Timecode", "System Time - TC"}},
        {FIELD(nSystemTimeInMs), .debugLines = {"System Time", "System Time - TC"}},
        {FIELD(nTransmissionTimeMs), .debugLines = {"Transmission Time"}},
        {FIELD(nMultiSyncDelaySetMs), .lines = {"MultiSync Delay Set"}},
        {FIELD(nMultiSyncDelayActualMs), .lines = {"MultiSync Delay Actual"}},
        {FIELD(nMultiSyncDelayRangeMinMs), .lines = {"MultiSync Delay Range"},
         .at = {{.value = largest, .lines = {"MultiSync Delay Range", "MultiSync Delay Set"}}}},
        {FIELD(nMultiSyncDelayRangeMaxMs), .lines = {"MultiSync Delay Range"},
         .at = {{.value = 1, .lines = {"MultiSync Delay Range", "MultiSync Delay Set"}}}},
        {FIELD(tCounters.nNumTCPackets), .debugLines = {"TC Packets"}},
        {FIELD(tCounters.nNumTCPacketsInvalid), .debugLines = {"Invalid TC Packets"}},
        {FIELD(tCounters.tLastTCReceived), .debugLines = {"TC Present"}},
        {FIELD(tCounters.tLastInvalidTCReceived), .debugLines = {"Invalid TC Packets"}},
    };
}

static FieldRows AutomaticRows()
{
    using Record = SMGR_CBUFFERING_AUTOMATIC_STATS;
    return {
        {FIELD(nMaxInputJitterMs), .lines = {"Max Input Jitter"}},
        {FIELD(tMaxInputJitterChanged), .lines = {"Max Input Jitter"}},
        {FIELD(nNonVideoLateMs), .lines = {"Non-Video Late"}},
        {FIELD(nNonVideoLateMaxMs), .lines = {"Non-Video Late"}},
        {FIELD(tNonVideoLateMax), .lines = {"Non-Video Late"}},
        {FIELD(nVideoDecoderLatencyMs), .lines = {"Video Decoder Latency"}},
        {FIELD(nVideoDecoderLatencyMaxMs), .lines = {"Video Decoder Latency"}},
        {FIELD(tVideoDecoderLatencyMax), .lines = {"Video Decoder Latency"}},
        {FIELD(nVideoDecoderJitterMs), .lines = {"Video Decoder Jitter"}},
        {FIELD(nVideoDecoderJitterMaxMs), .lines = {"Video Decoder Jitter"}},
        {FIELD(tVideoDecoderJitterMax), .lines = {"Video Decoder Jitter"}},
        {FIELD(nVideoSTCLeadTimeAvgActualMs), .lines = {"Video STC Lead Time"}},
        {FIELD(nVideoSTCLeadTimeMinActualMs), .lines = {"Video STC Lead Time"}},
        {FIELD(nVideoSTCLeadTimeMaxActualMs), .lines = {"Video STC Lead Time"}},
        {FIELD(nAudioSTCLeadTimeAvgActualMs), .lines = {"Audio STC Lead Time"}},
        {FIELD(nAudioSTCLeadTimeMinActualMs), .lines = {"Audio STC Lead Time"}},
        {FIELD(nAudioSTCLeadTimeMaxActualMs), .lines = {"Audio STC Lead Time"}},
        {FIELD(nHardwareDelayMs), .lines = {"Hardware Delay"}},
        {FIELD(tLastVideoSkipReplayTime), .lines = {"Last Video Skip/Replay"}},
        {FIELD(tLastAudioSkipTime), .lines = {"Last Audio Skip"}},
    };
}

// A row of the table. At the debug level it stands there without a packet, too.
static FieldRows ChannelRows()
{
    using Record = SMGR_CBUFFERING_CHANNEL_STATS;
    return {
        {FIELD(enType), .debugLines = {block_title}},
        {FIELD(nBufferingDelayTimeMs), .debugLines = {block_title}},
        {FIELD(nDelayTimeMsActual)},
        {FIELD(nSTCLeadTimeMsSet), .debugLines = {block_title}},
        {FIELD(nTotalOutputLatencyMs)},
        {FIELD(nPCRtoPTSTimeMsActual), .debugLines = {block_title}},
        {FIELD(nJitterTimeMsActual), .debugLines = {block_title}},
        {FIELD(nJitterTimeMsSet), .debugLines = {block_title}},
        {FIELD(nJitterTimeMsMaximum), .debugLines = {block_title}},
        {FIELD(nQueueOccupancyFrames), .debugLines = {block_title}},
        {FIELD(TimeStamp), .debugLines = {block_title}},
        {FIELD(tLastOutputTime), .debugLines = {block_title}},
        {FIELD(tCounters.nNumReceivedPackets)},
        {FIELD(tCounters.nNumOutputPackets), .debugLines = {block_title}},
        {FIELD(tCounters.nMaxQueueOccupancyFrames), .debugLines = {block_title}},
    };
}

// The rows of all channels. One that an operator sees alone is the table's first.
static FieldRows ChannelsRows(const FieldRows& rows, bool alone = false)
{
    using Record = SMGR_CBUFFERING_STATS;
    FieldRows all;
    for (size_t i = 0; i < SMGR_CBUFFERING_MAX_CHANNELS; i++)
    {
        const std::string index = std::to_string(i);
        const size_t offset = offsetof(Record, tChannel) + i * sizeof(SMGR_CBUFFERING_CHANNEL_STATS);
        all =
            AllRows({all, Mounted(rows, "tChannel[" + index + "]", offset, alone ? "Channel 0" : "Channel " + index, "Channel " + index)});
    }
    return all;
}

static FieldRows CounterRows()
{
    using Record = SMGR_CBUFFERING_COUNTERS;
    return {
        {FIELD(nNumReceivedPackets), .debugLines = {"Received Packets"}},
        {FIELD(tLastReceivedPacket), .debugLines = {"Received Packets"}, .ifCounted = true},
        {FIELD(nNumOutputPackets), .debugLines = {"Output Packets"}},
        {FIELD(tLastOutputPacket), .debugLines = {"Output Packets"}, .ifCounted = true},
        {FIELD(nNumDroppedPackets), .debugLines = {"Dropped Packets"}},
        {FIELD(tLastDroppedPacket), .debugLines = {"Dropped Packets"}, .ifCounted = true},
        {FIELD(nNumUnknownPackets), .debugLines = {"Unknown Packets"}},
        {FIELD(tLastUnknownPacket), .debugLines = {"Unknown Packets"}, .ifCounted = true},
        {FIELD(nNumPCRPackets), .debugLines = {"PCR Packets"}},
        {FIELD(nNumPCRUpdates), .lines = {"PCR Updates"}},
        {FIELD(tLastPCRUpdate), .lines = {"PCR Updates"}, .ifCounted = true},
        {FIELD(nNumSTCUpdates), .lines = {"STC Updates"}},
        {FIELD(tLastSTCUpdate), .lines = {"STC Updates"}, .ifCounted = true},
        {FIELD(nNumBufferingAdjustments), .lines = {"Buffering Adjustments"}},
        {FIELD(tLastBufferingAdjustmentTime), .lines = {"Buffering Adjustments"}, .ifCounted = true},
        {FIELD(nNumSTCLeadTimeAdjustments), .lines = {"STC Lead Time Adjusts"}},
        {FIELD(tLastSTCLeadTimeAdjustmentTime), .lines = {"STC Lead Time Adjusts"}, .ifCounted = true},
        {FIELD(nNumLateOutputs), .lines = {"Packets Sent Late"}},
        {FIELD(nMaxLateOutputMs), .debugLines = {"Packets Sent Late"}},
        {FIELD(nMaxLateOutputBurstFrms), .debugLines = {"Packets Sent Late"}},
        {FIELD(tLastLateOutput), .debugLines = {"Packets Sent Late"}},
        {FIELD(nNumResets), .debugLines = {"Buffering Resets"}},
        {FIELD(tLastReset), .debugLines = {"Buffering Resets"}, .ifCounted = true},
        {FIELD(nBufferingOccupancyBytes), .debugLines = {"Buffering Occupancy"}},
        {FIELD(nMaxBufferingOccupancyBytes), .debugLines = {"Buffering Occupancy"}},
        {FIELD(tMaxBufferingOccupancyBytes), .debugLines = {"Buffering Occupancy"}},
        {FIELD(nBufferingOverflows), .lines = {"Buffering Overflows"}},
        {FIELD(tLastBufferingOverflow), .lines = {"Buffering Overflows"}, .ifCounted = true},
        {FIELD(nSynthesizedAsyncTimestamps), .lines = {"Synthesized Async PTS"}},
        {FIELD(tLastSynthesizedAsyncTimestamp), .lines = {"Synthesized Async PTS"}, .ifCounted = true},
        {FIELD(nSynthesizedAsyncTimestampFails), .lines = {"Synthesized APTS Fails"}},
        {FIELD(tLastSynthesizedAsyncTimestampFail), .lines = {"Synthesized APTS Fails"}, .ifCounted = true},
    };
}

static FieldRows Rows()
{
    using Record = SMGR_CBUFFERING_STATS;
    const FieldRows rows = AllRows({
        {
            {FIELD(nDecoderID)},
            {FIELD(enStatus), .lines = {"Buffering State"}},
            ModeRow(),
            {FIELD(nFixedDelayMs)},
            {FIELD(nMultiSyncDelayMs)},
            {FIELD(nMinDelayMs), .debugLines = {"Decoder Set Delay"}},
            {FIELD(nMaxDelayMs), .debugLines = {"Maximum Delay"}},
            {FIELD(nPCR), .debugLines = {"PCR"}},
            {FIELD(nSTC), .debugLines = {"STC"}},
        },
        Mounted(Silent(MultisyncRows()), MEMBER(tMultiSync), ""),
        Mounted(AutomaticRows(), MEMBER(tAutomatic), ""),
        {
            {FIELD(bBufferingDelaySet), .debugLines = {"Video Latency"}},
            {FIELD(nSTCtoPCRLeadTimeMs), .lines = {"STC to PCR Lead Time"}},
            {FIELD(nSetDelayMs), .debugLines = {"Decoder Set Delay"}},
        },
        ChannelsRows(ChannelRows()),
        Mounted(CounterRows(), MEMBER(tCounters), ""),
    });
    // The first channel is the video's.
    return Override(rows, {{FIELD(tChannel[0].nTotalOutputLatencyMs), .lines = {"Video Latency"}}});
}

static SweepTable Zero()
{
    using Record = SMGR_CBUFFERING_STATS;
    return {.name = "zero",
            .base = RecordWith<Record>([](Record&) {}),
            .hiddenOperatorLines = AllLines({event_lines, multisync_operator_lines}),
            .hiddenDebugLines = multisync_debug_lines,
            .rows = Uncounted(Rows())};
}

static SweepTable Counted()
{
    using Record = SMGR_CBUFFERING_STATS;
    const auto base = [](Record& r)
    {
        SMGR_CBUFFERING_COUNTERS& c = r.tCounters;
        c.nNumReceivedPackets = c.nNumOutputPackets = c.nNumDroppedPackets = c.nNumUnknownPackets = 7;
        c.nNumPCRUpdates = c.nNumSTCUpdates = c.nNumBufferingAdjustments = c.nNumSTCLeadTimeAdjustments = 7;
        c.nNumLateOutputs = c.nBufferingOverflows = c.nSynthesizedAsyncTimestamps = c.nSynthesizedAsyncTimestampFails = 7;
        c.nNumResets = 7;
        r.bBufferingDelaySet = 2;
        r.nSTCtoPCRLeadTimeMs = 7;
    };
    return {.name = "counted",
            .base = RecordWith<Record>(base),
            .hiddenOperatorLines = multisync_operator_lines,
            .hiddenDebugLines = multisync_debug_lines,
            .rows = Override(Rows(), {{FIELD(bBufferingDelaySet), .at = {{.value = 0, .debugLines = {"Video Latency"}}}},
                                      {FIELD(nSTCtoPCRLeadTimeMs), .lines = {"STC to PCR Lead Time"},
                                       .at = {{.value = 0, .lines = {"STC to PCR Lead Time"}}}},
                                      {FIELD(tCounters.nMaxLateOutputMs), .lines = {"Packets Sent Late"}},
                                      {FIELD(tCounters.nMaxLateOutputBurstFrms), .lines = {"Packets Sent Late"}},
                                      {FIELD(tCounters.tLastLateOutput), .lines = {"Packets Sent Late"}}})};
}

// The fixed mode, which shows its delay.
static SweepTable Fixed()
{
    using Record = SMGR_CBUFFERING_STATS;
    const auto base = [](Record& r)
    {
        r.enBufferingMode = SMGR_DECSDI_BUFFERING_FIXED;
        r.nFixedDelayMs = r.nMinDelayMs = 7;
    };
    return {.name = "fixed",
            .base = RecordWith<Record>(base),
            .hiddenOperatorLines = AllLines({event_lines, multisync_operator_lines}),
            .hiddenDebugLines = multisync_debug_lines,
            .rows = Override(Uncounted(Rows()), {{FIELD(nFixedDelayMs), .lines = {"Buffering Mode"}},
                                                 {FIELD(nMinDelayMs), .lines = {"Buffering Mode"}, .debugLines = {"Decoder Set Delay"}}})};
}

static SweepTable Multisync()
{
    using Record = SMGR_CBUFFERING_STATS;
    const auto base = [](Record& r)
    {
        r.enBufferingMode = SMGR_DECSDI_BUFFERING_MULTISYNC;
        SMGR_CBUFFERING_MULTISYNC_STATS& m = r.tMultiSync;
        m.nTimecodeInMs = m.nSystemTimeInMs = m.nTransmissionTimeMs = 7;
        m.nMultiSyncDelaySetMs = m.nMultiSyncDelayActualMs = m.nMultiSyncDelayRangeMinMs = m.nMultiSyncDelayRangeMaxMs = 7;
    };
    return {.name = "MultiSync",
            .base = RecordWith<Record>(base),
            .hiddenOperatorLines = event_lines,
            .rows = Override(Uncounted(Rows()), AllRows({{{FIELD(enBufferingMode), .lines = {"Buffering Mode"},
                                                           .operatorLines = multisync_operator_lines, .debugLines = multisync_debug_lines}},
                                                         Mounted(MultisyncRows(), MEMBER(tMultiSync), "")}))};
}

static std::vector<SweepTable> Tables()
{
    return {Zero(), Counted(), Fixed(), Multisync()};
}

// The table by itself, which at the default level holds the channels that have received packets.
static const SweptReport& ChannelTable()
{
    static const SweptReport table = ReportOf(_PrintCBufferingChannels, {.tableRow = "Channel"}, table_heading);
    return table;
}

static FieldRows HiddenChannelRows()
{
    using Record = SMGR_CBUFFERING_CHANNEL_STATS;
    return Override(ChannelRows(), {{FIELD(tCounters.nNumReceivedPackets), .operatorLines = {block_title}}});
}

static FieldRows VisibleChannelRows()
{
    FieldRows rows = ChannelRows();
    for (FieldRow& row : rows) row.operatorLines = row.debugLines;
    return rows;
}

static std::vector<SweepTable> ChannelTables()
{
    using Record = SMGR_CBUFFERING_STATS;
    const auto received = [](Record& r)
    {
        for (SMGR_CBUFFERING_CHANNEL_STATS& channel : r.tChannel) channel.tCounters.nNumReceivedPackets = 7;
    };
    return {
        {.name = "zero",
         .base = RecordWith<Record>([](Record&) {}),
         .hiddenOperatorLines = {"Channel 0"},
         .rows = Override(Silent(Rows()), ChannelsRows(HiddenChannelRows(), true))},
        {.name = "received",
         .base = RecordWith<Record>(received),
         .rows = Override(Override(Silent(Rows()), ChannelsRows(VisibleChannelRows())),
                          {{FIELD(tChannel[9].tCounters.nNumReceivedPackets), .at = {{.value = 0, .operatorLines = {"Channel 9"}}}}})},
    };
}

TEST(BufferingFields, ChangeTheirLinesAndNoOther)
{
    for (const SweepTable& table : Tables()) SweepFields(Report(), table);
}

TEST(BufferingFields, HaveARowEach)
{
    for (const SweepTable& table : Tables()) CheckEveryByteHasARow(Report(), table);
}

TEST(BufferingFields, ReachEveryLine)
{
    CheckEveryLineIsNamed(Report(), Tables());
}

TEST(BufferingChannelFields, ChangeTheirRowsAndNoOther)
{
    for (const SweepTable& table : ChannelTables()) SweepFields(ChannelTable(), table);
}

TEST(BufferingChannelFields, ReachEveryLine)
{
    CheckEveryLineIsNamed(ChannelTable(), ChannelTables());
}
