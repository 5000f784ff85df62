#include <gtest/gtest.h>

#include "field_sweep.h"

static const SweptReport& Report()
{
    static const SweptReport report =
        ReportOf(STATS_PrintForTDemux, {.blocks = {{"SRT Stats"}, {"PMFEC Stats"}, {.title = " STREAM", .numbered = "Stream"}}},
                 {"Statistics:", "SRT Stats", "PMFEC Stats"});
    return report;
}

// The report of a started stream behind its state, without transport and streams.
static const LineNames started_operator_lines = {
    "Up Time", "Source Address", "Bit Rate", "Received Packets", "Received Bytes", "Program Number", "PCR PID", "PCR", "Streams",
};
static const LineNames event_lines = {
    "Dropped Packets",    "Dropped Bytes",        "Last PID Dropped",      "Errors",
    "Last Error",         "Corrupted Frames",     "Timestamp Rollovers",   "PES Size Mismatches",
    "Frames with No PCR", "Frames with PTS<=PCR", "Connections",           "Failovers",
    "New Stream Flags",   "Resumed Stream Flags", "Input Pkt List Ovflws", "Read Pkt List Ovflws",
};
static const LineNames started_debug_lines = AllLines({
    started_operator_lines,
    event_lines,
    {"Stream ID", "Encapsulation", "Stream Address", "Recv'd Pkt-Pkt Time", "Ext Rx Pkt-Pkt Time", "Output Packets", "Output Bytes",
     "Time Stamp", "Input Pkt List Size", "Read Pkt List Size"},
});

static const LineNames srt_operator_lines = {
    block_title,      "Local Version",  "Peer Version", "Connections",        "Local Port", "Remote Port",
    "AES Encryption", "Link Bandwidth", "RTT",          "Local Buffer Level", "Latency",
};
static const LineNames srt_event_lines = {"Lost Packets", "Dropped Packets", "Dropped Bytes", "Sent ACKs", "Sent NAKs"};
static const LineNames srt_debug_lines = AllLines({srt_operator_lines, srt_event_lines});

static const LineNames fec_operator_lines = {block_title, "Level", "Number of Columns", "Number of Rows", "Block Aligned"};
static const LineNames fec_event_lines = {"Dropped Packets", "Recovered Packets", "Lost Packets"};
static const LineNames fec_debug_lines = AllLines({
    fec_operator_lines,
    fec_event_lines,
    {"Received Col FEC", "Received Row FEC", "Lost Col FEC", "Lost Row FEC"},
});

static const LineNames source_operator_lines = {
    block_title, "Compression", "Bit Rate", "Program ID", "Received Packets", "Received Bytes", "PTS", "DTS",
};
static const LineNames source_debug_lines = AllLines({
    source_operator_lines,
    {"Stream ID", "Output Packets", "Output Bytes", "Time Base", "No-PTS Packets", "No-DTS Packets"},
});

// What a started stream hides until it happens: events from an operator, and at both levels the blocks.
static const LineNames hidden_block_operator_lines = AllLines({In("SRT Stats", srt_operator_lines), In("Stream 1", source_operator_lines)});
static const LineNames hidden_block_debug_lines = AllLines({In("SRT Stats", srt_debug_lines), In("Stream 1", source_debug_lines)});
static const LineNames hidden_operator_lines = AllLines({event_lines, hidden_block_operator_lines});

// An address without one: a host name or any byte that is set makes one of it.
static FieldRows AddressRows(const std::string& label)
{
    using Record = SMGR_IP_ADDRESS;
    return {
        {FIELD(enType)},
        {FIELD(acAddress[0]), .lines = {label}},
        {UNSWEPT(acAddress[1], acAddress[14])},
        {FIELD(acAddress[15]), .lines = {label}},
        {FIELD(szHostName), .lines = {label}},
    };
}

// A stream that has received packets.
static FieldRows SourceRows()
{
    using Record = SMGR_TDEMUX_SOURCE_STATS;
    return {
        {FIELD(enType), .lines = {block_title}, .at = {{.value = SMGR_TDEMUX_DATA_TYPE_AUDIO, .lines = {block_title}}}},
        {FIELD(enCompressionType), .lines = {"Compression"}},
        {FIELD(tsStreamId), .debugLines = {"Stream ID"}},
        {FIELD(tsPid), .lines = {"Program ID"}},
        {FIELD(nTimebaseNum), .debugLines = {"Time Base"}},
        {FIELD(nTimebaseDen), .debugLines = {"Time Base"}},
        {FIELD(nPTS), .lines = {"PTS"}},
        {FIELD(nDTS), .lines = {"DTS"}},
        {FIELD(tCounters.nNumReceivedPackets), .lines = {"Received Packets"}},
        {FIELD(tCounters.nNumReceivedBytes), .lines = {"Received Bytes"}},
        {FIELD(tCounters.tLastReceivedPacket), .lines = {"Received Packets"}},
        {FIELD(tCounters.nNumOutputPackets), .debugLines = {"Output Packets"}},
        {FIELD(tCounters.nNumOutputBytes), .debugLines = {"Output Bytes"}},
        {FIELD(tCounters.tLastOutputPacket), .debugLines = {"Output Packets"}},
        {FIELD(tCounters.iLastTxTime)},
        {FIELD(tCounters.nBitsPerSecond), .lines = {"Bit Rate"}},
        {FIELD(tCounters.nNumNoPTSValueFrames), .debugLines = {"No-PTS Packets"}},
        {FIELD(tCounters.tLastNoPTSValueFrames), .debugLines = {"No-PTS Packets"}},
        {FIELD(tCounters.nNumNoDTSValueFrames), .debugLines = {"No-DTS Packets"}},
        {FIELD(tCounters.tLastNoDTSValueFrames), .debugLines = {"No-DTS Packets"}},
        {FIELD(nAudioPairNum)},
    };
}

// An audio stream, the one kind that shows its pair.
static FieldRows AudioSourceRows()
{
    using Record = SMGR_TDEMUX_SOURCE_STATS;
    return Override(SourceRows(), {{FIELD(nAudioPairNum), .lines = {block_title}}});
}

// A stream that has received none.
static FieldRows HiddenSourceRows()
{
    using Record = SMGR_TDEMUX_SOURCE_STATS;
    return Override(Silent(SourceRows()),
                    {{FIELD(tCounters.nNumReceivedPackets), .operatorLines = source_operator_lines, .debugLines = source_debug_lines}});
}

// A link without encryption.
static FieldRows SrtRows()
{
    using Record = SMGR_STREAM_SRT_STATS;
    return {
        {FIELD(Dir.Tx.nSentKbps)},
        {FIELD(Dir.Tx.nSentPkts)},
        {FIELD(Dir.Tx.nSentBytes)},
        {FIELD(Dir.Tx.nResentPkts)},
        {FIELD(Dir.Tx.nResentBytes)},
        {FIELD(Dir.Rx.nRecvKbps)},
        {FIELD(Dir.Rx.nRecvPkts)},
        {FIELD(Dir.Rx.nRecvBytes)},
        {FIELD(Dir.Rx.nUndecryptedPkts)},
        {FIELD(Dir.Rx.nUndecryptedBytes)},
        {FIELD(nLostPkts), .lines = {"Lost Packets"}},
        {FIELD(nDroppedPkts), .lines = {"Dropped Packets"}},
        {FIELD(nDroppedBytes), .lines = {"Dropped Bytes"}},
        {FIELD(nXmitAckPkts), .lines = {"Sent ACKs"}},
        {FIELD(nXmitNakPkts), .lines = {"Sent NAKs"}},
        {FIELD(iReconnects), .lines = {"Connections"}},
        {FIELD(iMSS)},
        {FIELD(iLatency), .lines = {"Latency"}},
        {FIELD(iMaxBw)},
        {FIELD(iAvailBw), .lines = {"Link Bandwidth"}, .at = {{.value = smallest}}}, // unknown, as 0 is
        {FIELD(iKeyState), .lines = {"AES Encryption", "Key Length"},
         .at = {{.value = 1, .lines = {"AES Encryption", "Key Length", "Decryption"}},
                {.value = 2, .lines = {"AES Encryption", "Key Length", "Decryption"}},
                {.value = 3, .lines = {"AES Encryption", "Key Length", "Decryption"}},
                {.value = 4, .lines = {"AES Encryption", "Key Length", "Decryption"}},
                {.value = 5, .lines = {"AES Encryption", "Key Length"}},
                {.value = -1, .lines = {"AES Encryption", "Key Length"}}}},
        {FIELD(iKeyLength)},
        {FIELD(iRTT), .lines = {"RTT"}},
        {FIELD(iBufPkts)},
        {FIELD(iBufBytes)},
        {FIELD(iBufTimespan), .lines = {"Local Buffer Level"}},
        {FIELD(iRemotePort), .lines = {"Remote Port"}},
        {FIELD(iLocalPort), .lines = {"Local Port"}},
        {FIELD(iOutPortGettingFullCnt)},
        {FIELD(iMaxOutPortLevel)},
        {FIELD(iVersion), .lines = {"Local Version"}},
        {FIELD(iPeerVersion), .lines = {"Peer Version"}},
    };
}

// An encrypted link with its keys.
static FieldRows SecuredSrtRows()
{
    using Record = SMGR_STREAM_SRT_STATS;
    return Override(SrtRows(), {{FIELD(iKeyState), .lines = {"Decryption"},
                                 .at = {{.value = 0, .lines = {"AES Encryption", "Key Length", "Decryption"}},
                                        {.value = 3, .lines = {"Decryption"}},
                                        {.value = 4, .lines = {"Decryption"}}}},
                                {FIELD(iKeyLength), .lines = {"Key Length"}, .at = {{.value = smallest}}}}); // unknown, as 0 is
}

// A receiver that does not know its matrix yet. An operator sees the counts that are above 0.
static FieldRows FecRows()
{
    using Record = SMGR_STREAM_PMFECRX_STATS;
    return {
        {FIELD(nColumns), .lines = {"Number of Columns"}},
        {FIELD(nRows), .lines = {"Number of Rows"}},
        {FIELD(bRowFEC)},
        {FIELD(bBlockAlign), .lines = {"Block Aligned"}},
        {FIELD(nMediaPkts)},
        {FIELD(nColFecPkts), .debugLines = {"Received Col FEC"}},
        {FIELD(nRowFecPkts), .debugLines = {"Received Row FEC"}},
        {FIELD(nDroppedPkts), .lines = {"Dropped Packets"}, .at = {{.value = smallest, .debugLines = {"Dropped Packets"}}}},
        {FIELD(nRecoveredPkts), .lines = {"Recovered Packets"}, .at = {{.value = smallest, .debugLines = {"Recovered Packets"}}}},
        {FIELD(nLostPkts), .lines = {"Lost Packets"}, .at = {{.value = smallest, .debugLines = {"Lost Packets"}}}},
        {FIELD(nDroppedRowFECPkts), .debugLines = {"Lost Row FEC"}},
        {FIELD(nDroppedColFECPkts), .debugLines = {"Lost Col FEC"}},
    };
}

// A receiver that knows its matrix and has lost packets.
static FieldRows KnownFecRows()
{
    using Record = SMGR_STREAM_PMFECRX_STATS;
    return Override(FecRows(),
                    {{FIELD(nColumns), .lines = {"Number of Columns"}, .at = {{.value = 0, .lines = {"Number of Columns", "Level"}}}},
                     {FIELD(nRows), .lines = {"Number of Rows"}, .at = {{.value = 0, .lines = {"Number of Rows", "Level"}}}},
                     {FIELD(bRowFEC), .lines = {"Level"}},
                     {FIELD(nDroppedPkts), .lines = {"Dropped Packets"}},
                     {FIELD(nRecoveredPkts), .lines = {"Recovered Packets"}},
                     {FIELD(nLostPkts), .lines = {"Lost Packets"}}});
}

static FieldRows CounterRows()
{
    using Record = SMGR_TDEMUX_COUNTERS;
    return {
        {FIELD(nNumReceivedPackets), .lines = {"Received Packets"}},
        {FIELD(nNumReceivedBytes), .lines = {"Received Bytes"}},
        {FIELD(tLastReceivedPacket), .lines = {"Received Packets"}, .ifCounted = true},
        {FIELD(nRxPacketToPacketIntervalUs), .debugLines = {"Recv'd Pkt-Pkt Time"}},
        {FIELD(nMaxRxPacketToPacketIntervalUs), .debugLines = {"Recv'd Pkt-Pkt Time"}},
        {FIELD(tMaxRxPacketToPacketInterval), .debugLines = {"Recv'd Pkt-Pkt Time"}},
        {FIELD(nExternalRxPacketToPacketIntervalUs), .debugLines = {"Ext Rx Pkt-Pkt Time"}},
        {FIELD(nMaxExternalRxPacketToPacketIntervalUs), .debugLines = {"Ext Rx Pkt-Pkt Time"}},
        {FIELD(tMaxExternalRxPacketToPacketInterval), .debugLines = {"Ext Rx Pkt-Pkt Time"}},
        {FIELD(nNumOutputPackets), .debugLines = {"Output Packets"}},
        {FIELD(nNumOutputBytes), .debugLines = {"Output Bytes"}},
        {FIELD(tLastOutputPacket), .debugLines = {"Output Packets"}, .ifCounted = true},
        {FIELD(nNumDroppedPackets), .lines = {"Dropped Packets"}, .operatorLines = {"Dropped Bytes", "Last PID Dropped"}},
        {FIELD(nNumDroppedBytes), .debugLines = {"Dropped Bytes"}},
        {FIELD(tLastDroppedPacket), .lines = {"Dropped Packets"}, .ifCounted = true},
        {FIELD(nNumErrors), .lines = {"Errors"}, .operatorLines = {"Last Error"}},
        {FIELD(tLastError), .lines = {"Errors"}, .ifCounted = true},
        {FIELD(nNumTSCorruptedFrames), .lines = {"Corrupted Frames"}},
        {FIELD(tLastTSCorruptedFrame), .lines = {"Corrupted Frames"}, .ifCounted = true},
        {FIELD(nNumPESSizeMismatches), .lines = {"PES Size Mismatches"}},
        {FIELD(tLastPESSizeMismatch), .lines = {"PES Size Mismatches"}, .ifCounted = true},
        {FIELD(nNumLostSegmentsMPEG2TS)},
        {FIELD(tLastLostSegmentMPEG2TS)},
        {FIELD(nNumLostSegmentsRTP)},
        {FIELD(tLastLostSegmentRTP)},
        {FIELD(nNumReconnections), .lines = {"Connections"}},
        {FIELD(tLastReconnection), .lines = {"Connections"}, .ifCounted = true},
        {FIELD(nNumFailovers), .lines = {"Failovers"}},
        {FIELD(tLastFailover), .lines = {"Failovers"}, .ifCounted = true},
        {FIELD(nNumTimestampRollovers), .lines = {"Timestamp Rollovers"}},
        {FIELD(tLastTimestampRollover), .lines = {"Timestamp Rollovers"}, .ifCounted = true},
        {FIELD(nNumFramesWithNoPCR), .lines = {"Frames with No PCR"}},
        {FIELD(tLastFrameWithNoPCR), .lines = {"Frames with No PCR"}, .ifCounted = true},
        {FIELD(nNumFramesWithPTSLowerThanPCR), .lines = {"Frames with PTS<=PCR"}},
        {FIELD(tLastFrameWithPTSLowerThanPCR), .lines = {"Frames with PTS<=PCR"}, .ifCounted = true},
        {FIELD(nNumNewStreamFlags), .lines = {"New Stream Flags"}},
        {FIELD(tLastNewStreamFlag), .lines = {"New Stream Flags"}, .ifCounted = true},
        {FIELD(nNumResumedStreamFlags), .lines = {"Resumed Stream Flags"}},
        {FIELD(tLastResumedStreamFlag), .lines = {"Resumed Stream Flags"}, .ifCounted = true},
        {FIELD(iLastPIDDropped), .debugLines = {"Last PID Dropped"}, .at = {{.value = smallest}, {.value = -1}}}, // not found, as 0 is
        {FIELD(iLastError), .debugLines = {"Last Error"}},
        {FIELD(iLastErrorTime)},
        {FIELD(iLastCorruptedFrameTime)},
        {FIELD(nBitsPerSecond), .lines = {"Bit Rate"}},
        {FIELD(TimeStamp), .debugLines = {"Time Stamp"}},
        {FIELD(iLastRxTime)},
        {FIELD(nNumStreams), .lines = {"Streams"}},
        {FIELD(nVideoStreams), .lines = {"Streams"}},
        {FIELD(nAudioStreams), .lines = {"Streams"}},
        {FIELD(nKLVStreams), .lines = {"Streams"}},
        {FIELD(nFilteredStreams), .lines = {"Streams"}},
        {FIELD(nInputPacketListSize), .debugLines = {"Input Pkt List Size"}},
        {FIELD(nMaxInputPacketListSize), .debugLines = {"Input Pkt List Size"}},
        {FIELD(tMaxInputPacketListSize), .debugLines = {"Input Pkt List Size"}},
        {FIELD(nInputPacketListOverflows), .lines = {"Input Pkt List Ovflws"}},
        {FIELD(tLastInputPacketListOverflow), .lines = {"Input Pkt List Ovflws"}, .ifCounted = true},
        {FIELD(nReadPacketListSize), .debugLines = {"Read Pkt List Size"}},
        {FIELD(nMaxReadPacketListSize), .debugLines = {"Read Pkt List Size"}},
        {FIELD(tMaxReadPacketListSize), .debugLines = {"Read Pkt List Size"}},
        {FIELD(nReadPacketListOverflows), .lines = {"Read Pkt List Ovflws"}},
        {FIELD(tLastReadPacketListOverflow), .lines = {"Read Pkt List Ovflws"}, .ifCounted = true},
    };
}

// What hangs on other counts, where these are not 0.
static FieldRows CountedRows()
{
    using Record = SMGR_TDEMUX_COUNTERS;
    return {
        {FIELD(nNumDroppedPackets), .lines = {"Dropped Packets"}},
        {FIELD(nNumDroppedBytes), .lines = {"Dropped Bytes"}},
        {FIELD(nNumErrors), .lines = {"Errors"}},
        {FIELD(iLastPIDDropped), .lines = {"Last PID Dropped"}},
        {FIELD(iLastError), .lines = {"Last Error"}},
    };
}

// The state of a started stream. Resolving leaves the up time alone, whose text stays.
static FieldRow StateRow(const LineNames& otherOperatorLines, const LineNames& otherDebugLines)
{
    using Record = SMGR_TDEMUX_STATS;
    return {FIELD(enState), .lines = {"State"},
            .at = {{.value = SMGR_TDEMUX_STATS_STATE_RESOLVING,
                    .lines = {"State"},
                    .operatorLines = AllLines({Without(started_operator_lines, {"Up Time"}), otherOperatorLines}),
                    .debugLines = AllLines({Without(started_debug_lines, {"Up Time"}), otherDebugLines})}}};
}

// A started stream that has neither received anything nor a transport of its own.
static FieldRows StartedRows()
{
    using Record = SMGR_TDEMUX_STATS;
    return AllRows({
        {
            {FIELD(nSize)},
            StateRow({}, {}),
            {FIELD(bStreamHasBeenStarted),
             .at = {{.value = 0, .operatorLines = started_operator_lines, .debugLines = started_debug_lines}}},
            {FIELD(nSmgrStreamID), .debugLines = {"Stream ID"}},
            {FIELD(enEncapsulation), .debugLines = {"Encapsulation"},
             .at = {{.value = 3, .debugLines = {"Encapsulation"}},
                    {.value = 34,
                     .operatorLines = In("SRT Stats", srt_operator_lines),
                     .debugLines = AllLines({{"Encapsulation"}, In("SRT Stats", srt_debug_lines)})}}},
            {FIELD(enFECType), .at = {{.value = SMGR_FEC_TYPE_PRO_MPEG}}},
        },
        DebugOnly(Mounted(AddressRows("Stream Address"), MEMBER(tStreamAddress), "")),
        {{FIELD(nStreamPort), .debugLines = {"Stream Address"}}},
        Mounted(AddressRows("Source Address"), MEMBER(tSourceAddress), ""),
        {
            {FIELD(nSourcePort), .lines = {"Source Address"}},
            {FIELD(nUpTimeInSecs), .lines = {"Up Time"}},
            {FIELD(nProgramNumber), .lines = {"Program Number"}},
            {FIELD(nPcrPid), .lines = {"PCR PID"}},
            {FIELD(nPCR), .lines = {"PCR"}},
            {FIELD(tLastPCR), .lines = {"PCR"}},
        },
        Mounted(HiddenSourceRows(), MEMBER(tSources[0]), "Stream 1"),
        {{UNSWEPT(tSources[1], tSources[8])}},
        Mounted(HiddenSourceRows(), MEMBER(tSources[9]), "Stream 1"),
        Mounted(Uncounted(CounterRows()), MEMBER(tCounters), ""),
        Mounted(Silent(SrtRows()), MEMBER(Xport.SRT), "SRT Stats"),
        Mounted(Silent(FecRows()), MEMBER(Xport.PMFEC), "PMFEC Stats"),
    });
}

static void Start(SMGR_TDEMUX_STATS& r)
{
    r.bStreamHasBeenStarted = 2;
}

static SweepTable Zero()
{
    using Record = SMGR_TDEMUX_STATS;
    return {.name = "zero",
            .base = RecordWith<Record>([](Record&) {}),
            .hiddenOperatorLines = started_operator_lines,
            .hiddenDebugLines = started_debug_lines,
            .rows = Override(Silent(StartedRows()),
                             {{FIELD(enState), .lines = {"State"},
                               .at = {{.value = SMGR_TDEMUX_STATS_STATE_ACTIVE, .lines = {"State"}},
                                      {.value = SMGR_TDEMUX_STATS_STATE_RESOLVING, .lines = {"State", "Up Time"}}}},
                              {FIELD(bStreamHasBeenStarted), .operatorLines = started_operator_lines, .debugLines = started_debug_lines}})};
}

static SweepTable Started()
{
    using Record = SMGR_TDEMUX_STATS;
    return {.name = "started",
            .base = RecordWith<Record>(Start),
            .hiddenOperatorLines = hidden_operator_lines,
            .hiddenDebugLines = hidden_block_debug_lines,
            .rows = StartedRows()};
}

// Every counter has counted and the addresses are set.
static SweepTable Counted()
{
    using Record = SMGR_TDEMUX_STATS;
    const auto base = [](Record& r)
    {
        Start(r);
        r.tStreamAddress.acAddress[0] = r.tSourceAddress.acAddress[0] = 7;
        r.nStreamPort = r.nSourcePort = 7;
        SMGR_TDEMUX_COUNTERS& c = r.tCounters;
        c.nNumReceivedPackets = c.nNumOutputPackets = c.nNumDroppedPackets = c.nNumErrors = 7;
        c.nNumTSCorruptedFrames = c.nNumPESSizeMismatches = c.nNumReconnections = c.nNumFailovers = 7;
        c.nNumTimestampRollovers = c.nNumFramesWithNoPCR = c.nNumFramesWithPTSLowerThanPCR = 7;
        c.nNumNewStreamFlags = c.nNumResumedStreamFlags = c.nInputPacketListOverflows = c.nReadPacketListOverflows = 7;
        c.iLastPIDDropped = 7;
        c.iLastError = -2; // 4294967294 in the full form, -2 while resolving
    };
    return {
        .name = "counted",
        .base = RecordWith<Record>(base),
        .hiddenLines = {"Occurred"},
        .hiddenOperatorLines = hidden_block_operator_lines,
        .hiddenDebugLines = hidden_block_debug_lines,
        .rows = Override(StartedRows(),
                         AllRows({
                             {
                                 StateRow(AllLines({event_lines, {"Occurred"}}), {"Occurred"}),
                                 {FIELD(bStreamHasBeenStarted), .at = {{.value = 0,
                                                                        .operatorLines = AllLines({started_operator_lines, event_lines}),
                                                                        .debugLines = started_debug_lines}}},
                                 {FIELD(tStreamAddress.enType), .debugLines = {"Stream Address"}},
                                 {FIELD(tStreamAddress.acAddress[15])}, // the service shows the first byte
                                 {FIELD(tStreamAddress.szHostName)},
                                 {FIELD(tSourceAddress.enType), .lines = {"Source Address"}},
                                 {FIELD(tSourceAddress.acAddress[15])},
                                 {FIELD(tSourceAddress.szHostName)},
                             },
                             Mounted(Override(CounterRows(), CountedRows()), MEMBER(tCounters), ""),
                         })),
    };
}

// Two streams, in the first and the last place.
static SweepTable Streams()
{
    using Record = SMGR_TDEMUX_STATS;
    const auto base = [](Record& r)
    {
        Start(r);
        for (SMGR_TDEMUX_SOURCE_STATS* source : {&r.tSources[0], &r.tSources[9]})
        {
            SMGR_TDEMUX_SOURCE_COUNTERS& c = source->tCounters;
            c.nNumReceivedPackets = c.nNumOutputPackets = c.nNumNoPTSValueFrames = c.nNumNoDTSValueFrames = 7;
        }
        r.tSources[0].enType = SMGR_TDEMUX_DATA_TYPE_AUDIO;
    };
    const LineNames operatorLines = AllLines({In("Stream 1", source_operator_lines), In("Stream 2", source_operator_lines)});
    const LineNames debugLines = AllLines({In("Stream 1", source_debug_lines), In("Stream 2", source_debug_lines)});
    return {
        .name = "streams",
        .base = RecordWith<Record>(base),
        .hiddenOperatorLines = AllLines({event_lines, In("SRT Stats", srt_operator_lines)}),
        .hiddenDebugLines = In("SRT Stats", srt_debug_lines),
        .rows = Override(Override(StartedRows(), AllRows({Mounted(AudioSourceRows(), MEMBER(tSources[0]), "Stream 1"),
                                                          Mounted(SourceRows(), MEMBER(tSources[9]), "Stream 2")})),
                         {
                             StateRow(operatorLines, debugLines),
                             {FIELD(bStreamHasBeenStarted), .at = {{.value = 0,
                                                                    .operatorLines = AllLines({started_operator_lines, operatorLines}),
                                                                    .debugLines = AllLines({started_debug_lines, debugLines})}}},
                             {FIELD(tSources[9].tCounters.nNumReceivedPackets), .lines = {"Stream 2/Received Packets"},
                              .at = {{.value = 0,
                                      .operatorLines = In("Stream 2", source_operator_lines),
                                      .debugLines = In("Stream 2", source_debug_lines)}}},
                         }),
    };
}

// A started stream with a transport block: the fields that open and close it. Its tables leave out the union's other
// member, whose fields are the same bytes.
static FieldRows TransportRows(const LineNames& operatorLines, const LineNames& debugLines)
{
    using Record = SMGR_TDEMUX_STATS;
    return {
        StateRow(operatorLines, debugLines),
        {FIELD(bStreamHasBeenStarted), .at = {{.value = 0,
                                               .operatorLines = AllLines({started_operator_lines, operatorLines}),
                                               .debugLines = AllLines({started_debug_lines, debugLines})}}},
        {FIELD(enEncapsulation), .operatorLines = operatorLines, .debugLines = AllLines({{"Encapsulation"}, debugLines})},
    };
}

static SweepTable Srt()
{
    using Record = SMGR_TDEMUX_STATS;
    const auto base = [](Record& r)
    {
        Start(r);
        r.enEncapsulation = SMGR_STREAM_ENCAPSULATION_TS_SRT;
    };
    const FieldRows rows =
        Override(StartedRows(), AllRows({TransportRows(In("SRT Stats", srt_operator_lines), In("SRT Stats", srt_debug_lines)),
                                         Mounted(SrtRows(), MEMBER(Xport.SRT), "SRT Stats")}));
    return {.name = "SRT",
            .base = RecordWith<Record>(base),
            .hiddenLines = In("SRT Stats", {"Key Length", "Decryption"}),
            .hiddenOperatorLines = AllLines({event_lines, In("SRT Stats", srt_event_lines), In("Stream 1", source_operator_lines)}),
            .hiddenDebugLines = In("Stream 1", source_debug_lines),
            .rows = Unswept(rows, "Xport.PMFEC.")};
}

static SweepTable SecuredSrt()
{
    using Record = SMGR_TDEMUX_STATS;
    const auto base = [](Record& r)
    {
        Start(r);
        r.enEncapsulation = SMGR_STREAM_ENCAPSULATION_TS_SRT;
        r.Xport.SRT.iKeyState = SMGR_STREAM_SRT_KM_S_SECURED;
    };
    const LineNames encryptionLines = {"Key Length", "Decryption"};
    const FieldRows rows = Override(StartedRows(), AllRows({TransportRows(In("SRT Stats", AllLines({srt_operator_lines, encryptionLines})),
                                                                          In("SRT Stats", AllLines({srt_debug_lines, encryptionLines}))),
                                                            Mounted(SecuredSrtRows(), MEMBER(Xport.SRT), "SRT Stats")}));
    return {.name = "secured SRT",
            .base = RecordWith<Record>(base),
            .hiddenOperatorLines = AllLines({event_lines, In("SRT Stats", srt_event_lines), In("Stream 1", source_operator_lines)}),
            .hiddenDebugLines = In("Stream 1", source_debug_lines),
            .rows = Unswept(rows, "Xport.PMFEC.")};
}

// RTP, which may carry Pro-MPEG FEC and does not.
static SweepTable Rtp()
{
    using Record = SMGR_TDEMUX_STATS;
    const auto base = [](Record& r)
    {
        Start(r);
        r.enEncapsulation = SMGR_STREAM_ENCAPSULATION_TS_RTP;
    };
    return {.name = "RTP",
            .base = RecordWith<Record>(base),
            .hiddenOperatorLines = AllLines({hidden_operator_lines, In("PMFEC Stats", fec_operator_lines)}),
            .hiddenDebugLines = AllLines({hidden_block_debug_lines, In("PMFEC Stats", fec_debug_lines)}),
            .rows = Override(StartedRows(), {{FIELD(enFECType), .at = {{.value = SMGR_FEC_TYPE_PRO_MPEG,
                                                                        .operatorLines = In("PMFEC Stats", fec_operator_lines),
                                                                        .debugLines = In("PMFEC Stats", fec_debug_lines)}}}})};
}

static void UseFec(SMGR_TDEMUX_STATS& r)
{
    Start(r);
    r.enEncapsulation = SMGR_STREAM_ENCAPSULATION_TS_RTP;
    r.enFECType = SMGR_FEC_TYPE_PRO_MPEG;
}

// Where there is FEC: the FEC type and the encapsulation open the block together.
static FieldRows FecTransportRows(const LineNames& operatorLines, const LineNames& debugLines)
{
    using Record = SMGR_TDEMUX_STATS;
    return Override(
        AllRows({TransportRows(operatorLines, debugLines), {{FIELD(enFECType), .operatorLines = operatorLines, .debugLines = debugLines}}}),
        {{FIELD(enEncapsulation), .operatorLines = operatorLines, .debugLines = AllLines({{"Encapsulation"}, debugLines}),
          .at = {{.value = 34,
                  .operatorLines = AllLines({operatorLines, In("SRT Stats", srt_operator_lines)}),
                  .debugLines = AllLines({{"Encapsulation"}, debugLines, In("SRT Stats", srt_debug_lines)})}}}});
}

static SweepTable Fec()
{
    using Record = SMGR_TDEMUX_STATS;
    const FieldRows rows =
        Override(StartedRows(), AllRows({FecTransportRows(In("PMFEC Stats", fec_operator_lines), In("PMFEC Stats", fec_debug_lines)),
                                         Mounted(FecRows(), MEMBER(Xport.PMFEC), "PMFEC Stats")}));
    return {.name = "FEC",
            .base = RecordWith<Record>(UseFec),
            .hiddenOperatorLines = AllLines({hidden_operator_lines, In("PMFEC Stats", fec_event_lines)}),
            .hiddenDebugLines = hidden_block_debug_lines,
            .rows = Unswept(rows, "Xport.SRT.")};
}

static SweepTable KnownFec()
{
    using Record = SMGR_TDEMUX_STATS;
    const auto base = [](Record& r)
    {
        UseFec(r);
        SMGR_STREAM_PMFECRX_STATS& fec = r.Xport.PMFEC;
        fec.nColumns = fec.nRows = fec.nDroppedPkts = fec.nRecoveredPkts = fec.nLostPkts = 7;
    };
    const FieldRows rows = Override(
        StartedRows(),
        AllRows({FecTransportRows(In("PMFEC Stats", AllLines({fec_operator_lines, fec_event_lines})), In("PMFEC Stats", fec_debug_lines)),
                 Mounted(KnownFecRows(), MEMBER(Xport.PMFEC), "PMFEC Stats")}));
    return {.name = "known FEC",
            .base = RecordWith<Record>(base),
            .hiddenOperatorLines = hidden_operator_lines,
            .hiddenDebugLines = hidden_block_debug_lines,
            .rows = Unswept(rows, "Xport.SRT.")};
}

// Resolving the host name, before and after an error. Whether the stream was started does not matter.
static SweepTable Resolving()
{
    using Record = SMGR_TDEMUX_STATS;
    return {.name = "resolving",
            .base = RecordWith<Record>([](Record& r) { r.enState = SMGR_TDEMUX_STATS_STATE_RESOLVING; }),
            .hiddenLines = {"Last Error", "Occurred"},
            .rows = Override(Silent(StartedRows()), {{FIELD(enState), .lines = {"State", "Up Time"}},
                                                     {FIELD(nUpTimeInSecs), .lines = {"Up Time"}},
                                                     {FIELD(tCounters.iLastError), .lines = {"Last Error", "Occurred"}}})};
}

static SweepTable ResolvingFailed()
{
    using Record = SMGR_TDEMUX_STATS;
    const auto base = [](Record& r)
    {
        r.enState = SMGR_TDEMUX_STATS_STATE_RESOLVING;
        r.tCounters.iLastError = -2;
    };
    return {.name = "resolving failed",
            .base = RecordWith<Record>(base),
            .rows = Override(Silent(StartedRows()), {{FIELD(enState), .lines = {"State", "Up Time", "Last Error", "Occurred"}},
                                                     {FIELD(nUpTimeInSecs), .lines = {"Up Time"}},
                                                     {FIELD(tCounters.iLastError), .lines = {"Last Error"},
                                                      .at = {{.value = 0, .lines = {"Last Error", "Occurred"}}}},
                                                     {FIELD(tCounters.iLastErrorTime), .lines = {"Occurred"}}})};
}

static std::vector<SweepTable> Tables()
{
    return {Zero(), Started(), Counted(), Streams(), Srt(), SecuredSrt(), Rtp(), Fec(), KnownFec(), Resolving(), ResolvingFailed()};
}

TEST(TDemuxFields, ChangeTheirLinesAndNoOther)
{
    for (const SweepTable& table : Tables()) SweepFields(Report(), table);
}

TEST(TDemuxFields, HaveARowEach)
{
    for (const SweepTable& table : Tables()) CheckEveryByteHasARow(Report(), table);
}

TEST(TDemuxFields, ReachEveryLine)
{
    CheckEveryLineIsNamed(Report(), Tables());
}
