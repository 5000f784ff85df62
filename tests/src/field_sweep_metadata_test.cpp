#include <gtest/gtest.h>

#include <cstring>

#include "field_sweep.h"

static const SweptReport& Report()
{
    static const SweptReport report =
        ReportOf(STATS_PrintForMetadataDec, {.blocks = {{.title = " Channel", .numbered = "Channel"}}}, {"Metadata"});
    return report;
}

// What an operator sees of a channel that has received packets and counted nothing else.
static const LineNames received_lines = {block_title, "Received Packets", "Output Packets", "Latency"};

// What an operator does not see of it before it happens.
static const LineNames event_lines = {
    "Synchronous Packets", "Aynchronous Packets", "Freed Packets",   "Dropped Packets", "Output Failed",       "Output Late",
    "Payload Bytes",       "Nonincr. Timestamps", "Pkt List Resets", "Other Errors",    "BDs Allocate Failed",
};

// A channel with input, whose counters have counted.
static FieldRows ChannelRows()
{
    using Record = SMGR_METADATADEC_CHANNEL_STATS;
    return {
        {FIELD(szName), .lines = {block_title}},
        {FIELD(enType), .debugLines = {"Type"}},
        {FIELD(enState)},
        {FIELD(nLatencyInUs), .lines = {"Latency"}},
        {FIELD(tCounters.nNumInputPackets), .lines = {"Received Packets"}},
        {FIELD(tCounters.tLastInputPacket), .lines = {"Received Packets"}, .ifCounted = true},
        {FIELD(tCounters.nNumSynchronousPackets), .lines = {"Synchronous Packets"}},
        {FIELD(tCounters.tLastSynchronousPacket), .lines = {"Synchronous Packets"}, .ifCounted = true},
        {FIELD(tCounters.nNumAsynchronousPackets), .lines = {"Aynchronous Packets"}},
        {FIELD(tCounters.tLastAsynchronousPacket), .lines = {"Aynchronous Packets"}, .ifCounted = true},
        {FIELD(tCounters.nNumOutputPackets), .lines = {"Output Packets"}},
        {FIELD(tCounters.tLastOutputPacket), .lines = {"Output Packets"}, .ifCounted = true},
        {FIELD(tCounters.nNumFreedPackets), .lines = {"Freed Packets"}},
        {FIELD(tCounters.tLastFreedPacket), .lines = {"Freed Packets"}, .ifCounted = true},
        {FIELD(tCounters.nNumDroppedPackets), .lines = {"Dropped Packets"}},
        {FIELD(tCounters.tLastDroppedPacket), .lines = {"Dropped Packets"}, .ifCounted = true},
        {FIELD(tCounters.nNumOutputFailedPackets), .lines = {"Output Failed"}},
        {FIELD(tCounters.tLastOutputFailedPacket), .lines = {"Output Failed"}, .ifCounted = true},
        {FIELD(tCounters.nNumOutputFailedLatePackets), .lines = {"Output Late"}},
        {FIELD(tCounters.tLastOutputFailedLatePacket), .lines = {"Output Late"}, .ifCounted = true},
        {FIELD(tCounters.nNumOutputPayloadBytes), .lines = {"Payload Bytes"}},
        {FIELD(tCounters.nMaxOutputPayloadBytes), .lines = {"Payload Bytes"}},
        {FIELD(tCounters.tMaxOutputPayloadBytes), .lines = {"Payload Bytes"}},
        {FIELD(tCounters.nNumNonIncreasingOutputTimestamps), .lines = {"Nonincr. Timestamps"}},
        {FIELD(tCounters.tLastNonIncreasingOutputTimestamp), .lines = {"Nonincr. Timestamps"}, .ifCounted = true},
        {FIELD(tCounters.nNumErrors), .lines = {"Other Errors"}},
        {FIELD(tCounters.tLastOutputTime)},
        {FIELD(tCounters.nNumInPacketList), .debugLines = {"Input List Occ."}},
        {FIELD(tCounters.nNumPacketListResets), .lines = {"Pkt List Resets"}},
        {FIELD(tCounters.tLastPacketListReset), .lines = {"Pkt List Resets"}, .ifCounted = true},
        {FIELD(tCounters.nNumBDAllocated), .debugLines = {"BDs Allocated"}},
        {FIELD(tCounters.tLastBDAllocated), .debugLines = {"BDs Allocated"}, .ifCounted = true},
        {FIELD(tCounters.nNumBDAllocateFailed), .lines = {"BDs Allocate Failed"}},
        {FIELD(tCounters.tLastBDAllocateFailed), .lines = {"BDs Allocate Failed"}, .ifCounted = true},
        {FIELD(tCounters.nNumBDWritten), .debugLines = {"BDs Written"}},
        {FIELD(tCounters.tLastBDWritten), .debugLines = {"BDs Written"}, .ifCounted = true},
        {FIELD(tCounters.nNumBDFreed), .debugLines = {"BDs Freed"}},
        {FIELD(tCounters.tLastBDFreed), .debugLines = {"BDs Freed"}, .ifCounted = true},
        {FIELD(tCounters.nNumBDInFreeList), .debugLines = {"BD Free List Occ."}},
        {FIELD(tCounters.nNumBDInUsedList), .debugLines = {"BD Used List Occ."}},
        {FIELD(tCounters.nBDFreeListHeadIndex), .debugLines = {"BD Free Head Index"}},
        {FIELD(tCounters.nBDUsedListHeadIndex), .debugLines = {"BD Used Head Index"}},
        {FIELD(tCounters.nCurrentDelayInPackets), .debugLines = {"Delay"}},
        {FIELD(tCounters.nNumInDelayList), .debugLines = {"Delay List Occ."}},
        {FIELD(tCounters.nNumOutputLate), .debugLines = {"Output Sent Late"}},
        {FIELD(tCounters.tLastOutputLate), .debugLines = {"Output Sent Late"}, .ifCounted = true},
        {FIELD(tCounters.nOutputSTCLeadTime), .debugLines = {"Output Lead Time"}},
        {FIELD(tCounters.nMinOutputSTCLeadTime), .debugLines = {"Output Lead Time"}},
        {FIELD(tCounters.tMinOutputSTCLeadTime), .debugLines = {"Output Lead Time"}},
        {FIELD(tCounters.nMaxOutputSTCLeadTime), .debugLines = {"Output Lead Time"}},
        {FIELD(tCounters.tMaxOutputSTCLeadTime), .debugLines = {"Output Lead Time"}},
    };
}

// A channel with input and nothing else.
static FieldRows ReceivedChannelRows()
{
    using Record = SMGR_METADATADEC_CHANNEL_STATS;
    return Override(Uncounted(ChannelRows()), {{FIELD(tCounters.tLastInputPacket), .lines = {"Received Packets"}},
                                               {FIELD(tCounters.nMaxOutputPayloadBytes), .debugLines = {"Payload Bytes"}},
                                               {FIELD(tCounters.tMaxOutputPayloadBytes), .debugLines = {"Payload Bytes"}},
                                               {FIELD(nLatencyInUs), .lines = {"Latency"}, .at = {{.value = 1}}}}); // 0.0 ms
}

// A channel without input, hidden from an operator.
static FieldRows HiddenChannelRows()
{
    using Record = SMGR_METADATADEC_CHANNEL_STATS;
    return Override(DebugOnly(Uncounted(ChannelRows())),
                    {{FIELD(tCounters.nNumInputPackets), .operatorLines = received_lines, .debugLines = {"Received Packets"}},
                     {FIELD(nLatencyInUs), .debugLines = {"Latency"}, .at = {{.value = 1}}}});
}

static FieldRows Rows()
{
    using Record = SMGR_METADATADEC_STATS;
    return AllRows({
        {
            {FIELD(enState), .lines = {"Metadata State"},
             .at = {{.value = SMGR_METADATA_STATE_ACTIVE, .lines = {"Metadata State", "Active Metadata"}}}},
            {FIELD(nDecoderID)},
            {FIELD(nInputQOccupancy), .debugLines = {"Input Q Occupancy"}},
        },
        // The only channel with input is an operator's first.
        Mounted(HiddenChannelRows(), MEMBER(tChannel[0]), "Channel 1"),
        Mounted(HiddenChannelRows(), MEMBER(tChannel[1]), "Channel 1", "Channel 2"),
        Mounted(HiddenChannelRows(), MEMBER(tChannel[2]), "Channel 1", "Channel 3"),
        Mounted(HiddenChannelRows(), MEMBER(tChannel[3]), "Channel 1", "Channel 4"),
        {
            {FIELD(tCounters.nNumReceivedPackets), .debugLines = {"Received Packets"}},
            // An operator sees a timecode that is valid, exactly 1.
            {FIELD(tCounters.tTCValue.bTCValid), .at = {{.value = 1, .operatorLines = {"Timecode"}}}},
            {FIELD(tCounters.tTCValue.nTCHours), .debugLines = {"Timecode"}},
            {FIELD(tCounters.tTCValue.nTCMinutes), .debugLines = {"Timecode"}},
            {FIELD(tCounters.tTCValue.nTCSeconds), .debugLines = {"Timecode"}},
            {FIELD(tCounters.tTCValue.nTCFrames), .debugLines = {"Timecode"}},
        },
    });
}

static SweepTable Zero()
{
    using Record = SMGR_METADATADEC_STATS;
    return {.name = "zero",
            .base = RecordWith<Record>([](Record&) {}),
            .hiddenLines = {"Active Metadata"},
            .hiddenOperatorLines = AllLines({{"Timecode"}, In("Channel 1", received_lines)}),
            .rows = Rows()};
}

// Every counter of every channel has counted, and the timecode is valid.
static SweepTable Counted()
{
    using Record = SMGR_METADATADEC_STATS;
    const auto base = [](Record& r)
    {
        for (SMGR_METADATADEC_CHANNEL_STATS& channel : r.tChannel)
        {
            channel.nLatencyInUs = 7000;
            SMGR_METADATADEC_CHANNEL_COUNTERS& c = channel.tCounters;
            c.nNumInputPackets = c.nNumSynchronousPackets = c.nNumAsynchronousPackets = c.nNumOutputPackets = 7;
            c.nNumFreedPackets = c.nNumDroppedPackets = c.nNumOutputFailedPackets = c.nNumOutputFailedLatePackets = 7;
            c.nNumOutputPayloadBytes = c.nNumNonIncreasingOutputTimestamps = c.nNumErrors = c.nNumPacketListResets = 7;
            c.nNumBDAllocated = c.nNumBDAllocateFailed = c.nNumBDWritten = c.nNumBDFreed = c.nNumOutputLate = 7;
        }
        r.tCounters.tTCValue.bTCValid = 1;
    };
    return {.name = "counted",
            .base = RecordWith<Record>(base),
            .hiddenLines = {"Active Metadata"},
            .rows = Override(Rows(), AllRows({
                                         Mounted(ChannelRows(), MEMBER(tChannel[0]), "Channel 1"),
                                         Mounted(ChannelRows(), MEMBER(tChannel[1]), "Channel 2"),
                                         Mounted(ChannelRows(), MEMBER(tChannel[2]), "Channel 3"),
                                         Mounted(ChannelRows(), MEMBER(tChannel[3]), "Channel 4"),
                                         {
                                             {FIELD(tCounters.tTCValue.bTCValid), .operatorLines = {"Timecode"},
                                              .at = {{.value = 0, .operatorLines = {"Timecode"}}}},
                                             {FIELD(tCounters.tTCValue.nTCHours), .lines = {"Timecode"}},
                                             {FIELD(tCounters.tTCValue.nTCMinutes), .lines = {"Timecode"}},
                                             {FIELD(tCounters.tTCValue.nTCSeconds), .lines = {"Timecode"}},
                                             {FIELD(tCounters.tTCValue.nTCFrames), .lines = {"Timecode"}},
                                         },
                                     }))};
}

static SweepTable Received()
{
    using Record = SMGR_METADATADEC_STATS;
    const auto base = [](Record& r)
    {
        for (SMGR_METADATADEC_CHANNEL_STATS& channel : r.tChannel) channel.tCounters.nNumInputPackets = 7;
    };
    const FieldRows rows = Override(Rows(), AllRows({Mounted(ReceivedChannelRows(), MEMBER(tChannel[0]), "Channel 1"),
                                                     Mounted(ReceivedChannelRows(), MEMBER(tChannel[1]), "Channel 2"),
                                                     Mounted(ReceivedChannelRows(), MEMBER(tChannel[2]), "Channel 3"),
                                                     Mounted(ReceivedChannelRows(), MEMBER(tChannel[3]), "Channel 4")}));
    return {.name = "received",
            .base = RecordWith<Record>(base),
            .hiddenLines = {"Active Metadata"},
            .hiddenOperatorLines = AllLines({{"Timecode"},
                                             In("Channel 1", event_lines),
                                             In("Channel 2", event_lines),
                                             In("Channel 3", event_lines),
                                             In("Channel 4", event_lines)}),
            .rows = Override(
                rows,
                {{FIELD(tChannel[3].tCounters.nNumInputPackets), .lines = {"Channel 4/Received Packets"},
                  .at = {{.value = 0, .operatorLines = In("Channel 4", received_lines), .debugLines = {"Channel 4/Received Packets"}}}}})};
}

// An active decoder lists the channels that are active too: here none, whose list reads "None".
static SweepTable Active()
{
    using Record = SMGR_METADATADEC_STATS;
    const auto base = [](Record& r)
    {
        r.enState = SMGR_METADATA_STATE_ACTIVE;
        for (SMGR_METADATADEC_CHANNEL_STATS& channel : r.tChannel) std::strcpy(channel.szName, "KLV");
    };
    return {.name = "active",
            .base = RecordWith<Record>(base),
            .hiddenOperatorLines = AllLines({{"Timecode"}, In("Channel 1", received_lines)}),
            .rows = Override(Rows(),
                             {{FIELD(enState), .lines = {"Metadata State", "Active Metadata"}},
                              {FIELD(tChannel[0].enState), .at = {{.value = SMGR_METADATA_STATE_ACTIVE, .lines = {"Active Metadata"}}}},
                              {FIELD(tChannel[1].enState), .at = {{.value = SMGR_METADATA_STATE_ACTIVE, .lines = {"Active Metadata"}}}},
                              {FIELD(tChannel[2].enState), .at = {{.value = SMGR_METADATA_STATE_ACTIVE, .lines = {"Active Metadata"}}}},
                              {FIELD(tChannel[3].enState), .at = {{.value = SMGR_METADATA_STATE_ACTIVE, .lines = {"Active Metadata"}}}}})};
}

// With the first and the last channel active.
static SweepTable ActiveChannels()
{
    using Record = SMGR_METADATADEC_STATS;
    const auto base = [](Record& r)
    {
        r.enState = SMGR_METADATA_STATE_ACTIVE;
        for (SMGR_METADATADEC_CHANNEL_STATS* channel : {&r.tChannel[0], &r.tChannel[3]})
        {
            channel->enState = SMGR_METADATA_STATE_ACTIVE;
            std::strcpy(channel->szName, "KLV");
        }
    };
    return {.name = "active channels",
            .base = RecordWith<Record>(base),
            .hiddenOperatorLines = AllLines({{"Timecode"}, In("Channel 1", received_lines)}),
            .rows = Override(Rows(), {{FIELD(enState), .lines = {"Metadata State", "Active Metadata"}},
                                      {FIELD(tChannel[0].szName), .lines = {"Active Metadata"}, .debugLines = {"Channel 1"}},
                                      {FIELD(tChannel[0].enState), .lines = {"Active Metadata"}},
                                      {FIELD(tChannel[3].szName), .lines = {"Active Metadata"}, .debugLines = {"Channel 4"}},
                                      {FIELD(tChannel[3].enState), .lines = {"Active Metadata"}}})};
}

static std::vector<SweepTable> Tables()
{
    return {Zero(), Counted(), Received(), Active(), ActiveChannels()};
}

TEST(MetadataFields, ChangeTheirLinesAndNoOther)
{
    for (const SweepTable& table : Tables()) SweepFields(Report(), table);
}

TEST(MetadataFields, HaveARowEach)
{
    for (const SweepTable& table : Tables()) CheckEveryByteHasARow(Report(), table);
}

TEST(MetadataFields, ReachEveryLine)
{
    CheckEveryLineIsNamed(Report(), Tables());
}
