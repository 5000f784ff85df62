#include <gtest/gtest.h>
#include <netdb.h>

#include <climits>
#include <cstring>

#include "blocks.h"
#include "capture.h"
#include "frozen_clock.h"
#include "recording_services.h"

static std::string Print(const SMGR_TDEMUX_STATS& tStats, int nLevel)
{
    return Capture([&] { EXPECT_EQ(STATS_PrintForTDemux(&tStats, static_cast<STATS_LEVEL>(nLevel)), TRUE); });
}

static std::string PrintSource(const SMGR_TDEMUX_SOURCE_STATS& tSource, int nLevel)
{
    return Capture([&] { _PrintTDemuxSource(&tSource, static_cast<STATS_LEVEL>(nLevel)); });
}

static std::string PrintSRT(const SMGR_STREAM_SRT_STATS& tSRT, int nLevel)
{
    return Capture([&] { _PrintTDemuxSRTStats(&tSRT, static_cast<STATS_LEVEL>(nLevel)); });
}

static std::string PrintFEC(const SMGR_STREAM_PMFECRX_STATS& tFEC, int nLevel)
{
    return Capture([&] { _PrintTDemuxPMFECStats(&tFEC, static_cast<STATS_LEVEL>(nLevel)); });
}

static SMGR_TDEMUX_STATS Started()
{
    SMGR_TDEMUX_STATS tStats = {};
    tStats.enState = SMGR_TDEMUX_STATS_STATE_ACTIVE;
    tStats.bStreamHasBeenStarted = TRUE;
    return tStats;
}

// Every printed field has a number of its own.
static SMGR_TDEMUX_STATS FullRecord()
{
    SMGR_TDEMUX_STATS tStats = Started();
    tStats.nSmgrStreamID = 201;
    tStats.enEncapsulation = 7;
    tStats.tStreamAddress.enType = 2;
    tStats.tStreamAddress.acAddress[0] = 239;
    tStats.nStreamPort = 202;
    tStats.tSourceAddress.enType = 10;
    tStats.tSourceAddress.acAddress[0] = 192;
    tStats.nSourcePort = 203;
    tStats.nUpTimeInSecs = 204;
    tStats.nProgramNumber = 205;
    tStats.nPcrPid = 206;
    tStats.nPCR = 207;
    tStats.tLastPCR = frozen_now - 208;
    SMGR_TDEMUX_COUNTERS& c = tStats.tCounters;
    c.nNumReceivedPackets = 1;
    c.nNumReceivedBytes = 2;
    c.tLastReceivedPacket = frozen_now - 3;
    c.nRxPacketToPacketIntervalUs = 4;
    c.nMaxRxPacketToPacketIntervalUs = 5;
    c.tMaxRxPacketToPacketInterval = frozen_now - 6;
    c.nExternalRxPacketToPacketIntervalUs = 7;
    c.nMaxExternalRxPacketToPacketIntervalUs = 8;
    c.tMaxExternalRxPacketToPacketInterval = frozen_now - 9;
    c.nNumOutputPackets = 10;
    c.nNumOutputBytes = 11;
    c.tLastOutputPacket = frozen_now - 12;
    c.nNumDroppedPackets = 13;
    c.nNumDroppedBytes = 14;
    c.tLastDroppedPacket = frozen_now - 15;
    c.nNumErrors = 16;
    c.tLastError = frozen_now - 17;
    c.nNumTSCorruptedFrames = 18;
    c.tLastTSCorruptedFrame = frozen_now - 19;
    c.nNumPESSizeMismatches = 20;
    c.tLastPESSizeMismatch = frozen_now - 21;
    c.nNumLostSegmentsMPEG2TS = 22;
    c.tLastLostSegmentMPEG2TS = frozen_now - 23;
    c.nNumLostSegmentsRTP = 24;
    c.tLastLostSegmentRTP = frozen_now - 25;
    c.nNumReconnections = 26;
    c.tLastReconnection = frozen_now - 27;
    c.nNumFailovers = 28;
    c.tLastFailover = frozen_now - 29;
    c.nNumTimestampRollovers = 30;
    c.tLastTimestampRollover = frozen_now - 31;
    c.nNumFramesWithNoPCR = 32;
    c.tLastFrameWithNoPCR = frozen_now - 33;
    c.nNumFramesWithPTSLowerThanPCR = 34;
    c.tLastFrameWithPTSLowerThanPCR = frozen_now - 35;
    c.nNumNewStreamFlags = 36;
    c.tLastNewStreamFlag = frozen_now - 37;
    c.nNumResumedStreamFlags = 38;
    c.tLastResumedStreamFlag = frozen_now - 39;
    c.iLastPIDDropped = 40;
    c.iLastError = ECONNREFUSED; // 111
    c.iLastErrorTime = frozen_now - 42;
    c.iLastCorruptedFrameTime = frozen_now - 43;
    c.nBitsPerSecond = 44;
    c.TimeStamp = 45;
    c.iLastRxTime = frozen_now - 46;
    c.nNumStreams = 47;
    c.nVideoStreams = 48;
    c.nAudioStreams = 49;
    c.nKLVStreams = 50;
    c.nFilteredStreams = 51;
    c.nInputPacketListSize = 52;
    c.nMaxInputPacketListSize = 53;
    c.tMaxInputPacketListSize = frozen_now - 54;
    c.nInputPacketListOverflows = 55;
    c.tLastInputPacketListOverflow = frozen_now - 56;
    c.nReadPacketListSize = 57;
    c.nMaxReadPacketListSize = 58;
    c.tMaxReadPacketListSize = frozen_now - 59;
    c.nReadPacketListOverflows = 60;
    c.tLastReadPacketListOverflow = frozen_now - 61;
    return tStats;
}

static constexpr const char fullDefault[] = "Statistics:\n"
                                            "  State                 : {TDemuxState 3 1024}\n"
                                            "  Up Time               : {UpTime 204 1024}\n"
                                            "  Source Address        : {IPAddress 10.192 1024} port 203\n"
                                            "  Bit Rate              : {BitRate 44 1024}\n"
                                            "  Received Packets      : {ULONG 1 1024} (Last One: {UpTime 3 1024} ago)\n"
                                            "  Received Bytes        : {ULONG 2 1024}\n"
                                            "  Dropped Packets       : {ULONG 13 1024} (Last One: {UpTime 15 1024} ago)\n"
                                            "  Dropped Bytes         : {ULONG 14 1024}\n"
                                            "  Last PID Dropped      : 40\n"
                                            "  Errors                : {ULONG 16 1024} (Last One: {UpTime 17 1024} ago)\n"
                                            "  Last Error            : 111 (Connection refused)\n"
                                            "  Corrupted Frames      : {ULONG 18 1024} (Last One: {UpTime 19 1024} ago)\n"
                                            "  Timestamp Rollovers   : {ULONG 30 1024} (Last One: {UpTime 31 1024} ago)\n"
                                            "  PES Size Mismatches   : {ULONG 20 1024} (Last One: {UpTime 21 1024} ago)\n"
                                            "  Frames with No PCR    : {ULONG 32 1024} (Last One: {UpTime 33 1024} ago)\n"
                                            "  Frames with PTS<=PCR  : {ULONG 34 1024} (Last One: {UpTime 35 1024} ago)\n"
                                            "  Connections           : {ULONG 26 1024} (Last One: {UpTime 27 1024} ago)\n"
                                            "  Failovers             : {ULONG 28 1024} (Last One: {UpTime 29 1024} ago)\n"
                                            "  New Stream Flags      : {ULONG 36 1024} (Last One: {UpTime 37 1024} ago)\n"
                                            "  Resumed Stream Flags  : {ULONG 38 1024} (Last One: {UpTime 39 1024} ago)\n"
                                            "  Program Number        : 205\n"
                                            "  PCR PID               : 206\n"
                                            "  PCR                   : 207 (Last One: {UpTime 208 1024} ago)\n"
                                            "  Streams               : 47 (48 video, 49 audio, 50 KLV, 51 filtered)\n"
                                            "  Input Pkt List Ovflws : {ULONG 55 1024} (Last One: {UpTime 56 1024} ago)\n"
                                            "  Read Pkt List Ovflws  : {ULONG 60 1024} (Last One: {UpTime 61 1024} ago)\n";

static constexpr const char fullDebug[] =
    "Statistics:\n"
    "  State                 : {TDemuxState 3 1024}\n"
    "  Up Time               : {UpTime 204 1024}\n"
    "  Stream ID             : 201\n"
    "  Encapsulation         : {StreamEncapsulation 7 1024}\n"
    "  Stream Address        : {IPAddress 2.239 1024} port 202\n"
    "  Source Address        : {IPAddress 10.192 1024} port 203\n"
    "  Bit Rate              : {BitRate 44 1024}\n"
    "  Received Packets      : {ULONG 1 1024} (Last One: {UpTime 3 1024} ago)\n"
    "  Received Bytes        : {ULONG 2 1024}\n"
    "  Recv'd Pkt-Pkt Time   : {MicroSeconds 4 1024} (Max={MicroSeconds 5 1024}, Occurred: {UpTime 6 1024} ago)\n"
    "  Ext Rx Pkt-Pkt Time   : {MicroSeconds 7 1024} (Max={MicroSeconds 8 1024}, Occurred: {UpTime 9 1024} ago)\n"
    "  Output Packets        : {ULONG 10 1024} (Last One: {UpTime 12 1024} ago)\n"
    "  Output Bytes          : {ULONG 11 1024}\n"
    "  Dropped Packets       : {ULONG 13 1024} (Last One: {UpTime 15 1024} ago)\n"
    "  Dropped Bytes         : {ULONG 14 1024}\n"
    "  Last PID Dropped      : 40\n"
    "  Time Stamp            : 45\n"
    "  Errors                : {ULONG 16 1024} (Last One: {UpTime 17 1024} ago)\n"
    "  Last Error            : 111 (Connection refused)\n"
    "  Corrupted Frames      : {ULONG 18 1024} (Last One: {UpTime 19 1024} ago)\n"
    "  Timestamp Rollovers   : {ULONG 30 1024} (Last One: {UpTime 31 1024} ago)\n"
    "  PES Size Mismatches   : {ULONG 20 1024} (Last One: {UpTime 21 1024} ago)\n"
    "  Frames with No PCR    : {ULONG 32 1024} (Last One: {UpTime 33 1024} ago)\n"
    "  Frames with PTS<=PCR  : {ULONG 34 1024} (Last One: {UpTime 35 1024} ago)\n"
    "  Connections           : {ULONG 26 1024} (Last One: {UpTime 27 1024} ago)\n"
    "  Failovers             : {ULONG 28 1024} (Last One: {UpTime 29 1024} ago)\n"
    "  New Stream Flags      : {ULONG 36 1024} (Last One: {UpTime 37 1024} ago)\n"
    "  Resumed Stream Flags  : {ULONG 38 1024} (Last One: {UpTime 39 1024} ago)\n"
    "  Program Number        : 205\n"
    "  PCR PID               : 206\n"
    "  PCR                   : 207 (Last One: {UpTime 208 1024} ago)\n"
    "  Streams               : 47 (48 video, 49 audio, 50 KLV, 51 filtered)\n"
    "  Input Pkt List Size   : {ULONG 52 1024} bytes (max={ULONG 53 1024} bytes occurred {UpTime 54 1024} ago)\n"
    "  Input Pkt List Ovflws : {ULONG 55 1024} (Last One: {UpTime 56 1024} ago)\n"
    "  Read Pkt List Size    : {ULONG 57 1024} bytes (max={ULONG 58 1024} bytes occurred {UpTime 59 1024} ago)\n"
    "  Read Pkt List Ovflws  : {ULONG 60 1024} (Last One: {UpTime 61 1024} ago)\n";

TEST(TDemuxReport, EveryLineShowsItsOwnFieldsAtTheDefaultLevel)
{
    EXPECT_EQ(Print(FullRecord(), 0), fullDefault);
}

TEST(TDemuxReport, EveryLineShowsItsOwnFieldsInDebug)
{
    EXPECT_EQ(Print(FullRecord(), 1), fullDebug);
}

TEST(TDemuxReport, OtherLevelsPrintAsTheDefaultLevel)
{
    EXPECT_EQ(Print(FullRecord(), 2), fullDefault);
    EXPECT_EQ(Print(FullRecord(), -1), fullDefault);
}

TEST(TDemuxReport, ResolvingWithAResolverErrorShowsItSignedAndNothingElse)
{
    SMGR_TDEMUX_STATS tStats = FullRecord();
    tStats.enState = SMGR_TDEMUX_STATS_STATE_RESOLVING;
    tStats.enEncapsulation = SMGR_STREAM_ENCAPSULATION_TS_SRT;
    tStats.tSources[0].tCounters.nNumReceivedPackets = 1;
    tStats.tCounters.iLastError = -2;
    const std::string expected = "Statistics:\n"
                                 "  State                 : {TDemuxState 4 1024}\n"
                                 "  Up Time               : {UpTime 204 1024}\n"
                                 "  Last Error            : -2 (Name or service not known)\n"
                                 "  Occurred              : {UpTime 42 1024} ago \n";
    EXPECT_EQ(Print(tStats, 0), expected);
    EXPECT_EQ(Print(tStats, 1), expected);
}

TEST(TDemuxReport, ResolvingWithoutAnErrorStopsAfterTheUpTime)
{
    SMGR_TDEMUX_STATS tStats = FullRecord();
    tStats.enState = SMGR_TDEMUX_STATS_STATE_RESOLVING;
    tStats.tCounters.iLastError = 0;
    EXPECT_EQ(Print(tStats, 1), "Statistics:\n"
                                "  State                 : {TDemuxState 4 1024}\n"
                                "  Up Time               : {UpTime 204 1024}\n");
}

TEST(TDemuxReport, ResolvingShowsAnErrnoOfThatTime)
{
    SMGR_TDEMUX_STATS tStats = {};
    tStats.enState = SMGR_TDEMUX_STATS_STATE_RESOLVING;
    tStats.tCounters.iLastError = ETIMEDOUT; // 110
    const std::string text = Print(tStats, 0);
    EXPECT_EQ(LineOf(text, "Last Error"), "  Last Error            : 110 (Connection timed out)");
    EXPECT_EQ(LineOf(text, "Occurred"), "  Occurred              : Never ");
}

TEST(TDemuxReport, ActiveButNotStartedStopsAfterTheState)
{
    SMGR_TDEMUX_STATS tStats = FullRecord();
    tStats.bStreamHasBeenStarted = FALSE;
    EXPECT_EQ(Print(tStats, 1), "Statistics:\n"
                                "  State                 : {TDemuxState 3 1024}\n");
}

TEST(TDemuxReport, AnyTrueValueIsStarted)
{
    SMGR_TDEMUX_STATS tStats = FullRecord();
    tStats.bStreamHasBeenStarted = 2;
    EXPECT_EQ(Print(tStats, 0), fullDefault);
}

TEST(TDemuxReport, ZeroCountersLeaveTenLinesAtTheDefaultLevel)
{
    EXPECT_EQ(Print(Started(), 0), "Statistics:\n"
                                   "  State                 : {TDemuxState 3 1024}\n"
                                   "  Up Time               : {UpTime 0 1024}\n"
                                   "  Source Address        : Unavailable\n"
                                   "  Bit Rate              : {BitRate 0 1024}\n"
                                   "  Received Packets      : 0\n"
                                   "  Received Bytes        : {ULONG 0 1024}\n"
                                   "  Program Number        : Not Found\n"
                                   "  PCR PID               : Not Found\n"
                                   "  PCR                   : 0 (Last One: Never)\n"
                                   "  Streams               : 0 (0 video, 0 audio, 0 KLV, 0 filtered)\n");
}

TEST(TDemuxReport, DebugShowsEveryLineOfZeroCounters)
{
    EXPECT_EQ(Print(Started(), 1), "Statistics:\n"
                                   "  State                 : {TDemuxState 3 1024}\n"
                                   "  Up Time               : {UpTime 0 1024}\n"
                                   "  Stream ID             : 0\n"
                                   "  Encapsulation         : {StreamEncapsulation 0 1024}\n"
                                   "  Stream Address        : Unavailable\n"
                                   "  Source Address        : Unavailable\n"
                                   "  Bit Rate              : {BitRate 0 1024}\n"
                                   "  Received Packets      : 0\n"
                                   "  Received Bytes        : {ULONG 0 1024}\n"
                                   "  Recv'd Pkt-Pkt Time   : {MicroSeconds 0 1024} (Max={MicroSeconds 0 1024}, Occurred: Never)\n"
                                   "  Ext Rx Pkt-Pkt Time   : {MicroSeconds 0 1024} (Max={MicroSeconds 0 1024}, Occurred: Never)\n"
                                   "  Output Packets        : 0\n"
                                   "  Output Bytes          : {ULONG 0 1024}\n"
                                   "  Dropped Packets       : 0\n"
                                   "  Dropped Bytes         : {ULONG 0 1024}\n"
                                   "  Last PID Dropped      : Not Found\n"
                                   "  Time Stamp            : 0\n"
                                   "  Errors                : 0\n"
                                   "  Last Error            : 0 (Success)\n"
                                   "  Corrupted Frames      : 0\n"
                                   "  Timestamp Rollovers   : 0\n"
                                   "  PES Size Mismatches   : 0\n"
                                   "  Frames with No PCR    : 0\n"
                                   "  Frames with PTS<=PCR  : 0\n"
                                   "  Connections           : 0\n"
                                   "  Failovers             : 0\n"
                                   "  New Stream Flags      : 0\n"
                                   "  Resumed Stream Flags  : 0\n"
                                   "  Program Number        : Not Found\n"
                                   "  PCR PID               : Not Found\n"
                                   "  PCR                   : 0 (Last One: Never)\n"
                                   "  Streams               : 0 (0 video, 0 audio, 0 KLV, 0 filtered)\n"
                                   "  Input Pkt List Size   : {ULONG 0 1024} bytes (max={ULONG 0 1024} bytes occurred Never)\n"
                                   "  Input Pkt List Ovflws : 0\n"
                                   "  Read Pkt List Size    : {ULONG 0 1024} bytes (max={ULONG 0 1024} bytes occurred Never)\n"
                                   "  Read Pkt List Ovflws  : 0\n");
}

TEST(TDemuxReport, ANegativeErrorPrintsUnsignedWithTheResolversText)
{
    SMGR_TDEMUX_STATS tStats = Started();
    tStats.tCounters.nNumErrors = 3;
    tStats.tCounters.iLastError = -3;
    EXPECT_EQ(LineOf(Print(tStats, 0), "Last Error"), "  Last Error            : 4294967293 (Temporary failure in name resolution)");
}

TEST(TDemuxReport, AnUnknownErrorNumberHasATextAllTheSame)
{
    SMGR_TDEMUX_STATS tStats = Started();
    tStats.tCounters.nNumErrors = 1;
    tStats.tCounters.iLastError = INT_MAX;
    EXPECT_EQ(LineOf(Print(tStats, 0), "Last Error"), "  Last Error            : 2147483647 (Unknown error 2147483647)");
    tStats.tCounters.iLastError = INT_MIN;
    EXPECT_EQ(LineOf(Print(tStats, 0), "Last Error"), "  Last Error            : 2147483648 (Unknown error)");
}

TEST(TDemuxReport, AnUnsetAddressWithAPortIsUnavailableAtThatPort)
{
    SMGR_TDEMUX_STATS tStats = Started();
    tStats.nSourcePort = 5000;
    EXPECT_EQ(LineOf(Print(tStats, 0), "Source Address"), "  Source Address        : Unavailable port 5000");
}

TEST(TDemuxReport, OnlyTheWholeUnsetTextIsReplaced)
{
    SMGR_TDEMUX_STATS tStats = Started();
    strcpy(tStats.tSourceAddress.szHostName, "0.0.0.00"); // the recording service returns it as the address text
    EXPECT_EQ(LineOf(Print(tStats, 0), "Source Address"), "  Source Address        : 0.0.0.00");
}

TEST(TDemuxReport, APortAbove2To31PrintsNegative)
{
    SMGR_TDEMUX_STATS tStats = Started();
    tStats.nSourcePort = UINT_MAX;
    EXPECT_EQ(LineOf(Print(tStats, 0), "Source Address"), "  Source Address        : Unavailable port -1");
}

TEST(TDemuxReport, ADroppedPidOfZeroOrLessIsNotFound)
{
    SMGR_TDEMUX_STATS tStats = Started();
    tStats.tCounters.nNumDroppedPackets = 1;
    tStats.tCounters.iLastPIDDropped = 0;
    EXPECT_EQ(LineOf(Print(tStats, 0), "Last PID"), "  Last PID Dropped      : Not Found");
    tStats.tCounters.iLastPIDDropped = -1;
    EXPECT_EQ(LineOf(Print(tStats, 0), "Last PID"), "  Last PID Dropped      : Not Found");
    tStats.tCounters.iLastPIDDropped = 256;
    EXPECT_EQ(LineOf(Print(tStats, 0), "Last PID"), "  Last PID Dropped      : 256");
    tStats.tCounters.iLastPIDDropped = 1;
    EXPECT_EQ(LineOf(Print(tStats, 0), "Last PID"), "  Last PID Dropped      : 1");
}

TEST(TDemuxReport, TheEncapsulationSelectsTheTransportBlock)
{
    SMGR_TDEMUX_STATS tStats = Started();
    const auto blocks = [&](int enEncapsulation, int enFECType)
    {
        tStats.enEncapsulation = enEncapsulation;
        tStats.enFECType = enFECType;
        const std::string text = Print(tStats, 0);
        return std::string(text.find("\nSRT Stats\n") != std::string::npos ? "SRT" : "") +
               (text.find("\nPMFEC Stats\n") != std::string::npos ? "FEC" : "");
    };
    EXPECT_EQ(blocks(3, SMGR_FEC_TYPE_NONE), "");
    EXPECT_EQ(blocks(3, SMGR_FEC_TYPE_VF), "");
    EXPECT_EQ(blocks(3, SMGR_FEC_TYPE_PRO_MPEG), "FEC");
    EXPECT_EQ(blocks(34, SMGR_FEC_TYPE_NONE), "SRT");
    EXPECT_EQ(blocks(34, SMGR_FEC_TYPE_VF), "SRT");
    EXPECT_EQ(blocks(34, SMGR_FEC_TYPE_PRO_MPEG), "SRT");
    EXPECT_EQ(blocks(2, SMGR_FEC_TYPE_PRO_MPEG), "");
    EXPECT_EQ(blocks(33, SMGR_FEC_TYPE_PRO_MPEG), "");
}

TEST(TDemuxReport, TheTransportBlockStandsBeforeTheSourcesAndTheseInOrder)
{
    SMGR_TDEMUX_STATS tStats = Started();
    tStats.enEncapsulation = SMGR_STREAM_ENCAPSULATION_TS_RTP;
    tStats.enFECType = SMGR_FEC_TYPE_PRO_MPEG;
    for (int i : {0, 4, 9})
    {
        tStats.tSources[i].tCounters.nNumReceivedPackets = 1;
        tStats.tSources[i].enType = SMGR_TDEMUX_DATA_TYPE_AUDIO;
        tStats.tSources[i].nAudioPairNum = i;
    }
    const std::string text = Print(tStats, 0);
    const size_t streams = text.find("  Streams ");
    const size_t fec = text.find("PMFEC Stats\n");
    const size_t first = text.find("STREAM 0\n");
    const size_t second = text.find("STREAM 4\n");
    const size_t third = text.find("STREAM 9\n");
    ASSERT_NE(third, std::string::npos);
    EXPECT_LT(streams, fec);
    EXPECT_LT(fec, first);
    EXPECT_LT(first, second);
    EXPECT_LT(second, third);
}

TEST(TDemuxReport, BlocksGetTheReportsLevel)
{
    SMGR_TDEMUX_STATS tStats = Started();
    tStats.enEncapsulation = SMGR_STREAM_ENCAPSULATION_TS_SRT;
    tStats.tSources[0].tCounters.nNumReceivedPackets = 1;
    EXPECT_NE(Print(tStats, 1).find("  Sent NAKs "), std::string::npos);
    EXPECT_NE(Print(tStats, 1).find("    Time Base "), std::string::npos);
    EXPECT_EQ(Print(tStats, 0).find("  Sent NAKs "), std::string::npos);
    EXPECT_EQ(Print(tStats, 0).find("    Time Base "), std::string::npos);
}

TEST(TDemuxReport, SixtyFourBitValuesKeepTheirSignConversions)
{
    SMGR_TDEMUX_STATS tStats = Started();
    tStats.nPCR = ULONG_MAX;
    tStats.nUpTimeInSecs = ULONG_MAX;
    tStats.tCounters.TimeStamp = 1ul << 63;
    tStats.tCounters.nRxPacketToPacketIntervalUs = ULONG_MAX;
    tStats.tCounters.nBitsPerSecond = UINT_MAX;
    const std::string text = Print(tStats, 1);
    EXPECT_EQ(LineOf(text, "  PCR  "), "  PCR                   : 18446744073709551615 (Last One: Never)");
    EXPECT_EQ(LineOf(text, "Up Time"), "  Up Time               : {UpTime -1 1024}");
    EXPECT_EQ(LineOf(text, "Time Stamp"), "  Time Stamp            : -9223372036854775808");
    EXPECT_EQ(LineOf(text, "Recv'd"), "  Recv'd Pkt-Pkt Time   : {MicroSeconds -1 1024} (Max={MicroSeconds 0 1024}, Occurred: Never)");
    EXPECT_EQ(LineOf(text, "Bit Rate"), "  Bit Rate              : {BitRate 4294967295 1024}");
}

TEST(TDemuxReport, NoServiceIsCalledForALineThatIsNotPrinted)
{
    ClearServiceCalls();
    Print(Started(), 0);
    EXPECT_EQ(ServiceCalls(), (std::vector<ServiceCall>{{"TDemuxState", "3", 1024},
                                                        {"UpTime", "0", 1024},
                                                        {"IPAddress", "0.0", 1024},
                                                        {"BitRate", "0", 1024},
                                                        {"ULONG", "0", 1024},
                                                        {"PrintToString", "Never", 1024}}));
}

// ---- Elementary source ----

static SMGR_TDEMUX_SOURCE_STATS FullSource()
{
    SMGR_TDEMUX_SOURCE_STATS tSource = {};
    tSource.enType = SMGR_TDEMUX_DATA_TYPE_VIDEO;
    tSource.enCompressionType = SMGR_TDEMUX_COMPRESSION_TYPE_H264;
    tSource.tsStreamId = 1;
    tSource.tsPid = 2;
    tSource.nTimebaseNum = 3;
    tSource.nTimebaseDen = 4;
    tSource.nPTS = 5;
    tSource.nDTS = 6;
    tSource.nAudioPairNum = 7;
    tSource.tCounters.nNumReceivedPackets = 8;
    tSource.tCounters.nNumReceivedBytes = 9;
    tSource.tCounters.tLastReceivedPacket = frozen_now - 10;
    tSource.tCounters.nNumOutputPackets = 11;
    tSource.tCounters.nNumOutputBytes = 12;
    tSource.tCounters.tLastOutputPacket = frozen_now - 13;
    tSource.tCounters.iLastTxTime = frozen_now - 14;
    tSource.tCounters.nBitsPerSecond = 15;
    tSource.tCounters.nNumNoPTSValueFrames = 16;
    tSource.tCounters.tLastNoPTSValueFrames = frozen_now - 17;
    tSource.tCounters.nNumNoDTSValueFrames = 18;
    tSource.tCounters.tLastNoDTSValueFrames = frozen_now - 19;
    return tSource;
}

TEST(TDemuxSource, HasSevenLinesAtTheDefaultLevel)
{
    EXPECT_EQ(PrintSource(FullSource(), 0), "  {TDemuxDataType 1 1024} STREAM\n"
                                            "    Compression         : {TDemuxCompressionType 1000 1024}\n"
                                            "    Bit Rate            : {BitRate 15 1024}\n"
                                            "    Program ID          : 2\n"
                                            "    Received Packets    : {ULONG 8 1024} (Last One: {UpTime 10 1024} ago)\n"
                                            "    Received Bytes      : {ULONG 9 1024}\n"
                                            "    PTS                 : 5\n"
                                            "    DTS                 : 6\n");
}

TEST(TDemuxSource, HasThirteenLinesInDebug)
{
    EXPECT_EQ(PrintSource(FullSource(), 1), "  {TDemuxDataType 1 1024} STREAM\n"
                                            "    Compression         : {TDemuxCompressionType 1000 1024}\n"
                                            "    Bit Rate            : {BitRate 15 1024}\n"
                                            "    Program ID          : 2\n"
                                            "    Stream ID           : 1\n"
                                            "    Received Packets    : {ULONG 8 1024} (Last One: {UpTime 10 1024} ago)\n"
                                            "    Received Bytes      : {ULONG 9 1024}\n"
                                            "    Output Packets      : {ULONG 11 1024} (Last One: {UpTime 13 1024} ago)\n"
                                            "    Output Bytes        : {ULONG 12 1024}\n"
                                            "    PTS                 : 5\n"
                                            "    DTS                 : 6\n"
                                            "    Time Base           : 3 / 4\n"
                                            "    No-PTS Packets      : {ULONG 16 1024} (Last One: {UpTime 17 1024} ago)\n"
                                            "    No-DTS Packets      : {ULONG 18 1024} (Last One: {UpTime 19 1024} ago)\n");
}

TEST(TDemuxSource, OtherLevelsPrintAsTheDefaultLevel)
{
    for (const int nLevel : {2, -1}) EXPECT_EQ(PrintSource(FullSource(), nLevel), PrintSource(FullSource(), 0)) << nLevel;
}

TEST(TDemuxSource, WithoutReceivedPacketsPrintsNothingAtAnyLevel)
{
    SMGR_TDEMUX_SOURCE_STATS tSource = FullSource();
    tSource.tCounters.nNumReceivedPackets = 0;
    ClearServiceCalls();
    EXPECT_EQ(PrintSource(tSource, 0), "");
    EXPECT_EQ(PrintSource(tSource, 1), "");
    EXPECT_TRUE(ServiceCalls().empty());
}

TEST(TDemuxSource, OnlyAudioShowsItsPair)
{
    const auto heading = [](SMGR_TDEMUX_DATA_TYPE enType, int nAudioPairNum)
    {
        SMGR_TDEMUX_SOURCE_STATS tSource = FullSource();
        tSource.enType = enType;
        tSource.nAudioPairNum = nAudioPairNum;
        const std::string text = PrintSource(tSource, 0);
        return text.substr(0, text.find('\n'));
    };
    EXPECT_EQ(heading(SMGR_TDEMUX_DATA_TYPE_AUDIO, 2), "  {TDemuxDataType 2 1024} STREAM 2");
    EXPECT_EQ(heading(SMGR_TDEMUX_DATA_TYPE_AUDIO, -1), "  {TDemuxDataType 2 1024} STREAM -1");
    EXPECT_EQ(heading(SMGR_TDEMUX_DATA_TYPE_VIDEO, 2), "  {TDemuxDataType 1 1024} STREAM");
    EXPECT_EQ(heading(SMGR_TDEMUX_DATA_TYPE_KLV, 2), "  {TDemuxDataType 3 1024} STREAM");
    EXPECT_EQ(heading(static_cast<SMGR_TDEMUX_DATA_TYPE>(-2), 2), "  {TDemuxDataType -2 1024} STREAM");
}

TEST(TDemuxSource, TimeStampsFrom2To63PrintNegative)
{
    SMGR_TDEMUX_SOURCE_STATS tSource = FullSource();
    tSource.nPTS = (1ul << 63) + 1;
    tSource.nDTS = ULONG_MAX;
    const std::string text = PrintSource(tSource, 0);
    EXPECT_EQ(LineOf(text, "PTS "), "    PTS                 : -9223372036854775807");
    EXPECT_EQ(LineOf(text, "DTS "), "    DTS                 : -1");
}

// ---- SRT link ----

static SMGR_STREAM_SRT_STATS FullSRT()
{
    SMGR_STREAM_SRT_STATS tSRT = {};
    tSRT.Dir.Rx = {901, 902, 903, 904, 905};
    tSRT.nLostPkts = 1;
    tSRT.nDroppedPkts = 2;
    tSRT.nDroppedBytes = 3;
    tSRT.nXmitAckPkts = 4;
    tSRT.nXmitNakPkts = 5;
    tSRT.iReconnects = 6;
    tSRT.iMSS = 7;
    tSRT.iLatency = 8;
    tSRT.iMaxBw = 9;
    tSRT.iAvailBw = 20000;
    tSRT.iKeyState = SMGR_STREAM_SRT_KM_S_SECURED;
    tSRT.iKeyLength = 16;
    tSRT.iRTT = 10;
    tSRT.iBufPkts = 11;
    tSRT.iBufBytes = 12;
    tSRT.iBufTimespan = 13;
    tSRT.iRemotePort = 14;
    tSRT.iLocalPort = 15;
    tSRT.iOutPortGettingFullCnt = 16;
    tSRT.iMaxOutPortLevel = 17;
    tSRT.iVersion = 18;
    tSRT.iPeerVersion = 19;
    return tSRT;
}

TEST(TDemuxSRT, EveryLineShowsItsOwnField)
{
    const std::string expected = "SRT Stats\n"
                                 "  Local Version         : {SRTVersion 18 1024}\n"
                                 "  Peer Version          : {SRTVersion 19 1024}\n"
                                 "  Connections           : {ULONG 6 1024}\n"
                                 "  Local Port            : 15\n"
                                 "  Remote Port           : 14\n"
                                 "  AES Encryption        : On\n"
                                 "  Key Length            : 128 bits\n"
                                 "  Decryption            : Active\n"
                                 "  Lost Packets          : {ULONG 1 1024}\n"
                                 "  Dropped Packets       : {ULONG 2 1024}\n"
                                 "  Dropped Bytes         : {ULONG 3 1024}\n"
                                 "  Sent ACKs             : {ULONG 4 1024}\n"
                                 "  Sent NAKs             : {ULONG 5 1024}\n"
                                 "  Link Bandwidth        : {ULONG 20000 1024} kbps\n"
                                 "  RTT                   : {MicroSeconds 10 1024}\n"
                                 "  Local Buffer Level    : {MilliSeconds 13 1024}\n"
                                 "  Latency               : {MilliSeconds 8 1024}\n";
    EXPECT_EQ(PrintSRT(FullSRT(), 0), expected);
    EXPECT_EQ(PrintSRT(FullSRT(), 1), expected);
}

TEST(TDemuxSRT, TheVersionServiceIsCalledThreeTimesFirstBehindThePrefix)
{
    ClearServiceCalls();
    PrintSRT(FullSRT(), 0);
    std::vector<ServiceCall> versions;
    for (const ServiceCall& call : ServiceCalls())
        if (call.service == "SRTVersion") versions.push_back(call);
    EXPECT_EQ(versions, (std::vector<ServiceCall>{{"SRTVersion", "18", 1023}, {"SRTVersion", "18", 1024}, {"SRTVersion", "19", 1024}}));
}

static std::vector<std::string> SRTLinesOfState(int iKeyState, int iKeyLength)
{
    SMGR_STREAM_SRT_STATS tSRT = {};
    tSRT.iKeyState = iKeyState;
    tSRT.iKeyLength = iKeyLength;
    return CaptureLines([&] { _PrintTDemuxSRTStats(&tSRT, STATS_LEVEL_DEFAULT); });
}

TEST(TDemuxSRT, UnsecuredIsOffWithoutKeyOrDecryption)
{
    const std::vector<std::string> lines = SRTLinesOfState(0, 16);
    EXPECT_EQ(lines, (std::vector<std::string>{
                         "SRT Stats", "  Local Version         : {SRTVersion 0 1024}", "  Peer Version          : {SRTVersion 0 1024}",
                         "  Connections           : {ULONG 0 1024}", "  Local Port            : 0", "  Remote Port           : 0",
                         "  AES Encryption        : Off", "  Link Bandwidth        : Unknown",
                         "  RTT                   : {MicroSeconds 0 1024}", "  Local Buffer Level    : {MilliSeconds 0 1024}",
                         "  Latency               : {MilliSeconds 0 1024}"})); // a heading and ten lines
}

TEST(TDemuxSRT, TheKeyStateDecidesTheDecryptionLine)
{
    const auto decryption = [](int iKeyState)
    {
        const std::vector<std::string> lines = SRTLinesOfState(iKeyState, 16);
        EXPECT_EQ(lines.size(), iKeyState >= 1 && iKeyState <= 4 ? 13u : 12u); // heading, ten, key length, and decryption
        EXPECT_EQ(lines[6], "  AES Encryption        : On");
        EXPECT_EQ(lines[7], "  Key Length            : 128 bits");
        return lines[8];
    };
    EXPECT_EQ(decryption(1), "  Decryption            : Initializing");
    EXPECT_EQ(decryption(2), "  Decryption            : Active");
    EXPECT_EQ(decryption(3), "  Decryption            : Inactive (No Passphrase)");
    EXPECT_EQ(decryption(4), "  Decryption            : Inactive (Invalid Passphrase)");
    EXPECT_EQ(decryption(5), "  Link Bandwidth        : Unknown");
    EXPECT_EQ(decryption(-1), "  Link Bandwidth        : Unknown");
}

TEST(TDemuxSRT, NoSecretWithoutAKeyLength)
{
    const std::vector<std::string> lines = SRTLinesOfState(3, 0);
    EXPECT_EQ(lines[6], "  AES Encryption        : On");
    EXPECT_EQ(lines[7], "  Key Length            : Unknown");
    EXPECT_EQ(lines[8], "  Decryption            : Inactive (No Passphrase)");
}

TEST(TDemuxSRT, KeyLengthsAreShownInBits)
{
    EXPECT_EQ(SRTLinesOfState(2, 24)[7], "  Key Length            : 192 bits");
    EXPECT_EQ(SRTLinesOfState(2, 32)[7], "  Key Length            : 256 bits");
    EXPECT_EQ(SRTLinesOfState(2, 1)[7], "  Key Length            : 8 bits");
    EXPECT_EQ(SRTLinesOfState(2, -1)[7], "  Key Length            : Unknown");
    EXPECT_EQ(SRTLinesOfState(2, INT_MAX)[7], "  Key Length            : 4294967288 bits"); // 2^31 - 1 shifted by 3 in 32 bits
}

TEST(TDemuxSRT, BandwidthOfZeroOrLessIsUnknownWithoutAUnit)
{
    SMGR_STREAM_SRT_STATS tSRT = {};
    for (int iAvailBw : {0, -1, INT_MIN})
    {
        tSRT.iAvailBw = iAvailBw;
        EXPECT_EQ(LineOf(PrintSRT(tSRT, 0), "Link Bandwidth"), "  Link Bandwidth        : Unknown");
    }
    tSRT.iAvailBw = 1;
    EXPECT_EQ(LineOf(PrintSRT(tSRT, 0), "Link Bandwidth"), "  Link Bandwidth        : {ULONG 1 1024} kbps");
}

TEST(TDemuxSRT, NegativeNumbersAreWidenedWithTheirSign)
{
    SMGR_STREAM_SRT_STATS tSRT = {};
    tSRT.iReconnects = -1;
    tSRT.iLocalPort = -2;
    tSRT.iRemotePort = -3;
    tSRT.iRTT = -4;
    tSRT.iBufTimespan = -5;
    tSRT.iLatency = -6;
    const std::string text = PrintSRT(tSRT, 0);
    EXPECT_EQ(LineOf(text, "Connections"), "  Connections           : {ULONG 18446744073709551615 1024}");
    EXPECT_EQ(LineOf(text, "Local Port"), "  Local Port            : 4294967294");
    EXPECT_EQ(LineOf(text, "Remote Port"), "  Remote Port           : 4294967293");
    EXPECT_EQ(LineOf(text, "RTT"), "  RTT                   : {MicroSeconds -4 1024}");
    EXPECT_EQ(LineOf(text, "Buffer Level"), "  Local Buffer Level    : {MilliSeconds -5 1024}");
    EXPECT_EQ(LineOf(text, "Latency"), "  Latency               : {MilliSeconds -6 1024}");
}

TEST(TDemuxSRT, DebugShowsCountersOfZero)
{
    const std::string text = PrintSRT({}, 1);
    EXPECT_EQ(LineOf(text, "Lost Packets"), "  Lost Packets          : {ULONG 0 1024}");
    EXPECT_EQ(LineOf(text, "Dropped Packets"), "  Dropped Packets       : {ULONG 0 1024}");
    EXPECT_EQ(LineOf(text, "Dropped Bytes"), "  Dropped Bytes         : {ULONG 0 1024}");
    EXPECT_EQ(LineOf(text, "Sent ACKs"), "  Sent ACKs             : {ULONG 0 1024}");
    EXPECT_EQ(LineOf(text, "Sent NAKs"), "  Sent NAKs             : {ULONG 0 1024}");
}

TEST(TDemuxSRT, OtherLevelsHideCountersOfZeroAsTheDefaultLevelDoes)
{
    for (const int nLevel : {0, 2, -1})
        EXPECT_EQ(PrintSRT({}, nLevel), "SRT Stats\n"
                                        "  Local Version         : {SRTVersion 0 1024}\n"
                                        "  Peer Version          : {SRTVersion 0 1024}\n"
                                        "  Connections           : {ULONG 0 1024}\n"
                                        "  Local Port            : 0\n"
                                        "  Remote Port           : 0\n"
                                        "  AES Encryption        : Off\n"
                                        "  Link Bandwidth        : Unknown\n"
                                        "  RTT                   : {MicroSeconds 0 1024}\n"
                                        "  Local Buffer Level    : {MilliSeconds 0 1024}\n"
                                        "  Latency               : {MilliSeconds 0 1024}\n")
            << nLevel;
}

// ---- Pro-MPEG FEC ----

static SMGR_STREAM_PMFECRX_STATS FullFEC()
{
    SMGR_STREAM_PMFECRX_STATS tFEC = {};
    tFEC.nColumns = 10;
    tFEC.nRows = 5;
    tFEC.bRowFEC = TRUE;
    tFEC.bBlockAlign = TRUE;
    tFEC.nMediaPkts = 1;
    tFEC.nColFecPkts = 2;
    tFEC.nRowFecPkts = 3;
    tFEC.nDroppedPkts = 4;
    tFEC.nRecoveredPkts = 6;
    tFEC.nLostPkts = 7;
    tFEC.nDroppedRowFECPkts = 8;
    tFEC.nDroppedColFECPkts = 9;
    return tFEC;
}

TEST(TDemuxFEC, EveryLineShowsItsOwnFieldInDebug)
{
    EXPECT_EQ(PrintFEC(FullFEC(), 1), "PMFEC Stats\n"
                                      "  Level                 : B (Row and Column)\n"
                                      "  Number of Columns     : 10\n"
                                      "  Number of Rows        : 5\n"
                                      "  Block Aligned         : Yes\n"
                                      "  Dropped Packets       : {ULONG 4 1024}\n"
                                      "  Recovered Packets     : {ULONG 6 1024}\n"
                                      "  Lost Packets          : {ULONG 7 1024}\n"
                                      "  Received Col FEC      : {ULONG 2 1024}\n"
                                      "  Received Row FEC      : {ULONG 3 1024}\n"
                                      "  Lost Col FEC          : {ULONG 9 1024}\n"
                                      "  Lost Row FEC          : {ULONG 8 1024}\n");
}

TEST(TDemuxFEC, TheDefaultLevelShowsThePacketCountsThatCounted)
{
    EXPECT_EQ(PrintFEC(FullFEC(), 0), "PMFEC Stats\n"
                                      "  Level                 : B (Row and Column)\n"
                                      "  Number of Columns     : 10\n"
                                      "  Number of Rows        : 5\n"
                                      "  Block Aligned         : Yes\n"
                                      "  Dropped Packets       : {ULONG 4 1024}\n"
                                      "  Recovered Packets     : {ULONG 6 1024}\n"
                                      "  Lost Packets          : {ULONG 7 1024}\n");
}

TEST(TDemuxFEC, ZeroCountsLeaveFourLinesAtTheDefaultLevel)
{
    EXPECT_EQ(PrintFEC({}, 0), "PMFEC Stats\n"
                               "  Level                 : Unknown\n"
                               "  Number of Columns     : 0\n"
                               "  Number of Rows        : 0\n"
                               "  Block Aligned         : No\n");
}

TEST(TDemuxFEC, OtherLevelsPrintAsTheDefaultLevel)
{
    for (const int nLevel : {2, -1})
    {
        EXPECT_EQ(PrintFEC(FullFEC(), nLevel), PrintFEC(FullFEC(), 0)) << nLevel;
        EXPECT_EQ(PrintFEC({}, nLevel), PrintFEC({}, 0)) << nLevel;
    }
}

TEST(TDemuxFEC, DebugShowsElevenLinesWhateverTheCounts)
{
    EXPECT_EQ(CaptureLines(
                  []
                  {
                      const SMGR_STREAM_PMFECRX_STATS tFEC = {};
                      _PrintTDemuxPMFECStats(&tFEC, STATS_LEVEL_DEBUG);
                  })
                  .size(),
              12u);
}

TEST(TDemuxFEC, TheLevelFollowsTheRowFlagOnceTheMatrixIsKnown)
{
    const auto level = [](int nColumns, int nRows, BOOL bRowFEC)
    {
        SMGR_STREAM_PMFECRX_STATS tFEC = {};
        tFEC.nColumns = nColumns;
        tFEC.nRows = nRows;
        tFEC.bRowFEC = bRowFEC;
        return LineOf(PrintFEC(tFEC, 0), "  Level");
    };
    EXPECT_EQ(level(10, 10, FALSE), "  Level                 : A (Column Only)");
    EXPECT_EQ(level(10, 10, TRUE), "  Level                 : B (Row and Column)");
    EXPECT_EQ(level(10, 10, 2), "  Level                 : B (Row and Column)");
    EXPECT_EQ(level(0, 5, TRUE), "  Level                 : Unknown");
    EXPECT_EQ(level(5, 0, TRUE), "  Level                 : Unknown");
    EXPECT_EQ(level(-1, -1, FALSE), "  Level                 : A (Column Only)");
}

TEST(TDemuxFEC, AnUnknownMatrixStillShowsBothNumbers)
{
    SMGR_STREAM_PMFECRX_STATS tFEC = {};
    tFEC.nRows = 5;
    const std::string text = PrintFEC(tFEC, 0);
    EXPECT_EQ(LineOf(text, "Columns"), "  Number of Columns     : 0");
    EXPECT_EQ(LineOf(text, "Rows"), "  Number of Rows        : 5");
}

TEST(TDemuxFEC, ANegativeCountHidesAtTheDefaultLevel)
{
    SMGR_STREAM_PMFECRX_STATS tFEC = {};
    tFEC.nDroppedPkts = tFEC.nRecoveredPkts = tFEC.nLostPkts = -1;
    EXPECT_EQ(PrintFEC(tFEC, 0).find("Packets"), std::string::npos);
    EXPECT_EQ(LineOf(PrintFEC(tFEC, 1), "Lost Packets"), "  Lost Packets          : {ULONG 18446744073709551615 1024}");
}
