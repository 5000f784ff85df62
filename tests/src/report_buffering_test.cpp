#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <string>
#include <vector>

#include "blocks.h"
#include "capture.h"
#include "frozen_clock.h"
#include "recording_services.h"
#include "stats.h"

static std::string Report(const SMGR_CBUFFERING_STATS& stats, int nLevel)
{
    BOOL bResult = -1;
    const std::string text = Capture([&] { bResult = STATS_PrintForCBuffering(&stats, static_cast<STATS_LEVEL>(nLevel)); });
    EXPECT_EQ(bResult, TRUE);
    return text;
}

// A line of the debug report.
static std::string Line(const SMGR_CBUFFERING_STATS& stats, const std::string& label)
{
    return LineOf(Report(stats, STATS_LEVEL_DEBUG), label);
}

static std::string MultiSync(const SMGR_CBUFFERING_MULTISYNC_STATS& stats, int nLevel)
{
    return Capture([&] { _PrintCBufferingMultisyncStatistics(&stats, static_cast<STATS_LEVEL>(nLevel)); });
}

static std::string Automatic(const SMGR_CBUFFERING_AUTOMATIC_STATS& stats)
{
    return Capture([&] { _PrintCBufferingAutomaticStatistics(&stats); });
}

static std::string ChannelTable(const SMGR_CBUFFERING_STATS& stats, int nLevel)
{
    return Capture([&] { _PrintCBufferingChannels(&stats, static_cast<STATS_LEVEL>(nLevel)); });
}

// No two printed fields hold the same number, so that each can be recognised in the text.
static SMGR_CBUFFERING_MULTISYNC_STATS DistinctMultiSync()
{
    SMGR_CBUFFERING_MULTISYNC_STATS stats = {};
    stats.bTimecodePresent = 1;
    stats.bTimecodeValid = 0;
    stats.nTimecodeInMs = 36000601;
    stats.nSystemTimeInMs = 36000702;
    stats.nTransmissionTimeMs = 603;
    stats.nMultiSyncDelaySetMs = 604;
    stats.nMultiSyncDelayActualMs = 605;
    stats.nMultiSyncDelayRangeMinMs = 590;
    stats.nMultiSyncDelayRangeMaxMs = 620;
    stats.tCounters.nNumTCPackets = 611;
    stats.tCounters.nNumTCPacketsInvalid = 612;
    stats.tCounters.tLastTCReceived = frozen_now - 613;
    stats.tCounters.tLastInvalidTCReceived = frozen_now - 614;
    return stats;
}

static SMGR_CBUFFERING_AUTOMATIC_STATS DistinctAutomatic()
{
    SMGR_CBUFFERING_AUTOMATIC_STATS stats = {};
    stats.nMaxInputJitterMs = 701;
    stats.tMaxInputJitterChanged = frozen_now - 702;
    stats.nNonVideoLateMs = -703;
    stats.nNonVideoLateMaxMs = 704;
    stats.tNonVideoLateMax = frozen_now - 705;
    stats.nVideoDecoderLatencyMs = 706;
    stats.nVideoDecoderLatencyMaxMs = 707;
    stats.tVideoDecoderLatencyMax = frozen_now - 708;
    stats.nVideoDecoderJitterMs = 709;
    stats.nVideoDecoderJitterMaxMs = 710;
    stats.tVideoDecoderJitterMax = frozen_now - 711;
    stats.nVideoSTCLeadTimeAvgActualMs = 712;
    stats.nVideoSTCLeadTimeMinActualMs = -713;
    stats.nVideoSTCLeadTimeMaxActualMs = 714;
    stats.nAudioSTCLeadTimeAvgActualMs = -715;
    stats.nAudioSTCLeadTimeMinActualMs = -716;
    stats.nAudioSTCLeadTimeMaxActualMs = 717;
    stats.nHardwareDelayMs = 718;
    stats.tLastVideoSkipReplayTime = frozen_now - 719;
    stats.tLastAudioSkipTime = frozen_now - 720;
    return stats;
}

static SMGR_CBUFFERING_STATS DistinctRecord()
{
    SMGR_CBUFFERING_STATS stats = {};
    stats.nDecoderID = 77;
    stats.enStatus = SMGR_CBUFFERING_STATUS_MULTISYNC_ERROR_TIMECODE_INVALID;
    stats.enBufferingMode = SMGR_DECSDI_BUFFERING_MULTISYNC;
    stats.nFixedDelayMs = 501;
    stats.nMultiSyncDelayMs = 502;
    stats.nMinDelayMs = 503;
    stats.nMaxDelayMs = 504;
    stats.nPCR = 8100000001;
    stats.nSTC = 8100000002;
    stats.tMultiSync = DistinctMultiSync();
    stats.tAutomatic = DistinctAutomatic();
    stats.bBufferingDelaySet = 1;
    stats.nSTCtoPCRLeadTimeMs = -505;
    stats.nSetDelayMs = 506;

    SMGR_CBUFFERING_CHANNEL_STATS& video = stats.tChannel[0];
    video.enType = SMGR_TDEMUX_DATA_TYPE_VIDEO;
    video.nBufferingDelayTimeMs = 801;
    video.nDelayTimeMsActual = 802;
    video.nSTCLeadTimeMsSet = 803;
    video.nTotalOutputLatencyMs = 804;
    video.nPCRtoPTSTimeMsActual = 805;
    video.nJitterTimeMsActual = 806;
    video.nJitterTimeMsSet = 807;
    video.nJitterTimeMsMaximum = 808;
    video.nQueueOccupancyFrames = 809;
    video.TimeStamp = 8100000810;
    video.tLastOutputTime = frozen_now - 811;
    video.tCounters.nNumReceivedPackets = 812;
    video.tCounters.nNumOutputPackets = 813;
    video.tCounters.nMaxQueueOccupancyFrames = 814;

    SMGR_CBUFFERING_CHANNEL_STATS& last = stats.tChannel[9];
    last.enType = SMGR_TDEMUX_DATA_TYPE_KLV;
    last.nBufferingDelayTimeMs = 91;
    last.nDelayTimeMsActual = 92;
    last.nSTCLeadTimeMsSet = -93;
    last.nTotalOutputLatencyMs = 94;
    last.nPCRtoPTSTimeMsActual = -95;
    last.nJitterTimeMsActual = 96;
    last.nJitterTimeMsSet = 97;
    last.nJitterTimeMsMaximum = 98;
    last.nQueueOccupancyFrames = 2;
    last.TimeStamp = 90;
    last.tLastOutputTime = frozen_now - 86;
    last.tCounters.nNumReceivedPackets = 87;
    last.tCounters.nNumOutputPackets = 88;
    last.tCounters.nMaxQueueOccupancyFrames = 3;

    SMGR_CBUFFERING_COUNTERS& counters = stats.tCounters;
    counters.nNumReceivedPackets = 3001;
    counters.tLastReceivedPacket = frozen_now - 201;
    counters.nNumOutputPackets = 3002;
    counters.tLastOutputPacket = frozen_now - 202;
    counters.nNumDroppedPackets = 3003;
    counters.tLastDroppedPacket = frozen_now - 203;
    counters.nNumUnknownPackets = 3004;
    counters.tLastUnknownPacket = frozen_now - 204;
    counters.nNumPCRPackets = 3005;
    counters.nNumPCRUpdates = 3006;
    counters.tLastPCRUpdate = frozen_now - 206;
    counters.nNumSTCUpdates = 3007;
    counters.tLastSTCUpdate = frozen_now - 207;
    counters.nNumBufferingAdjustments = 3008;
    counters.tLastBufferingAdjustmentTime = frozen_now - 208;
    counters.nNumSTCLeadTimeAdjustments = 3009;
    counters.tLastSTCLeadTimeAdjustmentTime = frozen_now - 209;
    counters.nNumLateOutputs = 3010;
    counters.nMaxLateOutputMs = 3011;
    counters.nMaxLateOutputBurstFrms = 3012;
    counters.tLastLateOutput = frozen_now - 213;
    counters.nNumResets = 3014;
    counters.tLastReset = frozen_now - 214;
    counters.nBufferingOccupancyBytes = 3015;
    counters.nMaxBufferingOccupancyBytes = 3016;
    counters.tMaxBufferingOccupancyBytes = frozen_now - 216;
    counters.nBufferingOverflows = 3017;
    counters.tLastBufferingOverflow = frozen_now - 217;
    counters.nSynthesizedAsyncTimestamps = 3018;
    counters.tLastSynthesizedAsyncTimestamp = frozen_now - 218;
    counters.nSynthesizedAsyncTimestampFails = 3019;
    counters.tLastSynthesizedAsyncTimestampFail = frozen_now - 219;
    return stats;
}

/* ---- Whole reports ---- */

TEST(Buffering, WholeReportAtTheDefaultLevel)
{
    EXPECT_EQ(Report(DistinctRecord(), STATS_LEVEL_DEFAULT),
              "Buffering\n"
              "  Buffering Mode        : {CBufferingMode 4 1024}\n"
              "  Buffering State       : {CBufferingStatus -3 1024}\n"
              "  Video Latency         : {ULONG 804 1024}ms\n"
              "  PCR Updates           : {ULONG 3006 1024} (Last One: {UpTime 206 1024} ago)\n"
              "  STC Updates           : {ULONG 3007 1024} (Last One: {UpTime 207 1024} ago)\n"
              "  Buffering Adjustments : {ULONG 3008 1024} (Last One: {UpTime 208 1024} ago)\n"
              "  STC Lead Time Adjusts : {ULONG 3009 1024} (Last One: {UpTime 209 1024} ago)\n"
              "  STC to PCR Lead Time  : -505ms (STC is behind PCR by 505ms)\n"
              "  Packets Sent Late     : {ULONG 3010 1024} (Last One: {UpTime 213 1024} ago, Max Late=3011ms, Max Burst=3012)\n"
              "  Buffering Overflows   : {ULONG 3017 1024} (Last One: {UpTime 217 1024} ago)\n"
              "  Synthesized Async PTS : {ULONG 3018 1024} (Last One: {UpTime 218 1024} ago)\n"
              "  Synthesized APTS Fails: {ULONG 3019 1024} (Last One: {UpTime 219 1024} ago)\n"
              "MultiSync Buffering\n"
              "  MultiSync Delay Set   : 604ms (In Range)\n"
              "  MultiSync Delay Actual: 605ms\n"
              "  MultiSync Delay Range : [Min 590ms, Max 620ms]\n"
              "  Max Input Jitter      : {ULONG 701 1024}ms (last changed {UpTime 702 1024} ago)\n"
              "  Non-Video Late        : {LONGLONG -703 1024}ms (max={LONGLONG 704 1024}ms occurred {UpTime 705 1024} ago)\n"
              "  Video Decoder Latency : {ULONG 706 1024}ms (max={ULONG 707 1024}ms occurred {UpTime 708 1024} ago)\n"
              "  Video Decoder Jitter  : {ULONG 709 1024}ms (max={ULONG 710 1024}ms occurred {UpTime 711 1024} ago)\n"
              "  Hardware Delay        : {ULONG 718 1024}ms\n"
              "  Video STC Lead Time   : 712ms (Min=-713ms, Max=714ms, Range=1427ms)\n"
              "  Last Video Skip/Replay: {UpTime 719 1024} ago\n"
              "  Audio STC Lead Time   : -715ms (Min=-716ms, Max=717ms, Range=1433ms)\n"
              "  Last Audio Skip       : {UpTime 720 1024} ago\n");
}

TEST(Buffering, WholeReportAtTheDebugLevel)
{
    EXPECT_EQ(Report(DistinctRecord(), STATS_LEVEL_DEBUG),
              "Buffering\n"
              "  Buffering Mode        : {CBufferingMode 4 1024}\n"
              "  Buffering State       : {CBufferingStatus -3 1024}\n"
              "  Video Latency         : {ULONG 804 1024}ms (Initial Set=Yes)\n"
              "  Maximum Delay         : {ULONG 504 1024}ms\n"
              "  Received Packets      : {ULONG 3001 1024} (Last One: {UpTime 201 1024} ago)\n"
              "  Output Packets        : {ULONG 3002 1024} (Last One: {UpTime 202 1024} ago)\n"
              "  Dropped Packets       : {ULONG 3003 1024} (Last One: {UpTime 203 1024} ago)\n"
              "  Unknown Packets       : {ULONG 3004 1024} (Last One: {UpTime 204 1024} ago)\n"
              "  PCR Packets           : {ULONG 3005 1024}\n"
              "  PCR                   : 8100000001\n"
              "  PCR Updates           : {ULONG 3006 1024} (Last One: {UpTime 206 1024} ago)\n"
              "  STC                   : 8100000002\n"
              "  STC Updates           : {ULONG 3007 1024} (Last One: {UpTime 207 1024} ago)\n"
              "  Buffering Adjustments : {ULONG 3008 1024} (Last One: {UpTime 208 1024} ago)\n"
              "  STC Lead Time Adjusts : {ULONG 3009 1024} (Last One: {UpTime 209 1024} ago)\n"
              "  Buffering Resets      : {ULONG 3014 1024} (Last One: {UpTime 214 1024} ago)\n"
              "  Decoder Set Delay     : {ULONG 506 1024}ms (min={ULONG 503 1024}ms)\n"
              "  STC to PCR Lead Time  : -505ms (STC is behind PCR by 505ms)\n"
              "  Packets Sent Late     : {ULONG 3010 1024} (Last One: {UpTime 213 1024} ago, Max Late=3011ms, Max Burst=3012)\n"
              "  Buffering Occupancy   : {ULONG 3015 1024} bytes (max={ULONG 3016 1024} bytes occurred {UpTime 216 1024} ago)\n"
              "  Buffering Overflows   : {ULONG 3017 1024} (Last One: {UpTime 217 1024} ago)\n"
              "  Synthesized Async PTS : {ULONG 3018 1024} (Last One: {UpTime 218 1024} ago)\n"
              "  Synthesized APTS Fails: {ULONG 3019 1024} (Last One: {UpTime 219 1024} ago)\n"
              "MultiSync Buffering\n"
              "  MultiSync Delay Set   : 604ms (In Range)\n"
              "  MultiSync Delay Actual: 605ms\n"
              "  MultiSync Delay Range : [Min 590ms, Max 620ms]\n"
              "  TC Present            : Yes (Valid=No, Last Received={UpTime 613 1024} ago)\n"
              "  TC Packets            : {ULONG 611 1024}\n"
              "  Invalid TC Packets    : {ULONG 612 1024} (Last Received={UpTime 614 1024} ago)\n"
              "  System Time           : {ULONG 36000702 1024}ms\n"
              "  Timecode              : {ULONG 36000601 1024}ms\n"
              "  System Time - TC      : {ULONG 101 1024}ms\n"
              "  Transmission Time     : 603ms\n"
              "  Max Input Jitter      : {ULONG 701 1024}ms (last changed {UpTime 702 1024} ago)\n"
              "  Non-Video Late        : {LONGLONG -703 1024}ms (max={LONGLONG 704 1024}ms occurred {UpTime 705 1024} ago)\n"
              "  Video Decoder Latency : {ULONG 706 1024}ms (max={ULONG 707 1024}ms occurred {UpTime 708 1024} ago)\n"
              "  Video Decoder Jitter  : {ULONG 709 1024}ms (max={ULONG 710 1024}ms occurred {UpTime 711 1024} ago)\n"
              "  Hardware Delay        : {ULONG 718 1024}ms\n"
              "  Video STC Lead Time   : 712ms (Min=-713ms, Max=714ms, Range=1427ms)\n"
              "  Last Video Skip/Replay: {UpTime 719 1024} ago\n"
              "  Audio STC Lead Time   : -715ms (Min=-716ms, Max=717ms, Range=1433ms)\n"
              "  Last Audio Skip       : {UpTime 720 1024} ago\n"
              "                         Jitter (ms)                                              Q-Level\n"
              "Type    Output Pkts    Now / Set / Max    PCR-to-PTS   CBUF Delay    STC Lead    Now / Max   Time Stamp   Last Output\n"
              "---------------------------------------------------------------------------------------------------------------------\n"
              "{TDemuxDataType 1 1024} {ULONG 813 1024}   806 / 807  / 808   805  ms      801  ms       803  ms     809 / 814    "
              "8100000810       {UpTime 811 1024} ago\n"
              "{TDemuxDataType 0 1024} {ULONG 0 1024}     0 / 0    / 0     0    ms      0    ms       0    ms       0 / 0      0           "
              "     Never\n"
              "{TDemuxDataType 0 1024} {ULONG 0 1024}     0 / 0    / 0     0    ms      0    ms       0    ms       0 / 0      0           "
              "     Never\n"
              "{TDemuxDataType 0 1024} {ULONG 0 1024}     0 / 0    / 0     0    ms      0    ms       0    ms       0 / 0      0           "
              "     Never\n"
              "{TDemuxDataType 0 1024} {ULONG 0 1024}     0 / 0    / 0     0    ms      0    ms       0    ms       0 / 0      0           "
              "     Never\n"
              "{TDemuxDataType 0 1024} {ULONG 0 1024}     0 / 0    / 0     0    ms      0    ms       0    ms       0 / 0      0           "
              "     Never\n"
              "{TDemuxDataType 0 1024} {ULONG 0 1024}     0 / 0    / 0     0    ms      0    ms       0    ms       0 / 0      0           "
              "     Never\n"
              "{TDemuxDataType 0 1024} {ULONG 0 1024}     0 / 0    / 0     0    ms      0    ms       0    ms       0 / 0      0           "
              "     Never\n"
              "{TDemuxDataType 0 1024} {ULONG 0 1024}     0 / 0    / 0     0    ms      0    ms       0    ms       0 / 0      0           "
              "     Never\n"
              "{TDemuxDataType 3 1024} {ULONG 88 1024}    96 / 97   / 98    -95  ms      91   ms       -93  ms       2 / 3      90         "
              "      {UpTime 86 1024} ago\n");
}

TEST(Buffering, AnEmptyRecordAtTheDefaultLevelPrintsNoCounter)
{
    EXPECT_EQ(Report({}, STATS_LEVEL_DEFAULT), "Buffering\n"
                                               "  Buffering Mode        : {CBufferingMode 0 1024}\n"
                                               "  Buffering State       : {CBufferingStatus 0 1024}\n"
                                               "  Video Latency         : {ULONG 0 1024}ms\n"
                                               "  STC to PCR Lead Time  : 0ms (STC is equal to PCR)\n"
                                               "  Max Input Jitter      : {ULONG 0 1024}ms (last changed Never)\n"
                                               "  Non-Video Late        : {LONGLONG 0 1024}ms (max={LONGLONG 0 1024}ms occurred Never)\n"
                                               "  Video Decoder Latency : {ULONG 0 1024}ms (max={ULONG 0 1024}ms occurred Never)\n"
                                               "  Video Decoder Jitter  : {ULONG 0 1024}ms (max={ULONG 0 1024}ms occurred Never)\n"
                                               "  Hardware Delay        : {ULONG 0 1024}ms\n"
                                               "  Video STC Lead Time   : 0ms (Min=0ms, Max=0ms, Range=0ms)\n"
                                               "  Last Video Skip/Replay: Never\n"
                                               "  Audio STC Lead Time   : 0ms (Min=0ms, Max=0ms, Range=0ms)\n"
                                               "  Last Audio Skip       : Never\n");
}

TEST(Buffering, AnEmptyRecordAtTheDebugLevelPrintsEveryCounter)
{
    EXPECT_EQ(Report({}, STATS_LEVEL_DEBUG),
              "Buffering\n"
              "  Buffering Mode        : {CBufferingMode 0 1024}\n"
              "  Buffering State       : {CBufferingStatus 0 1024}\n"
              "  Video Latency         : {ULONG 0 1024}ms (Initial Set=No)\n"
              "  Maximum Delay         : {ULONG 0 1024}ms\n"
              "  Received Packets      : 0\n"
              "  Output Packets        : 0\n"
              "  Dropped Packets       : 0\n"
              "  Unknown Packets       : 0\n"
              "  PCR Packets           : {ULONG 0 1024}\n"
              "  PCR                   : 0\n"
              "  PCR Updates           : 0\n"
              "  STC                   : 0\n"
              "  STC Updates           : 0\n"
              "  Buffering Adjustments : 0\n"
              "  STC Lead Time Adjusts : 0\n"
              "  Buffering Resets      : 0\n"
              "  Decoder Set Delay     : {ULONG 0 1024}ms (min={ULONG 0 1024}ms)\n"
              "  STC to PCR Lead Time  : 0ms (STC is equal to PCR)\n"
              "  Packets Sent Late     : {ULONG 0 1024} (Last One: Never, Max Late=0ms, Max Burst=0)\n"
              "  Buffering Occupancy   : {ULONG 0 1024} bytes (max={ULONG 0 1024} bytes occurred Never)\n"
              "  Buffering Overflows   : 0\n"
              "  Synthesized Async PTS : 0\n"
              "  Synthesized APTS Fails: 0\n"
              "  Max Input Jitter      : {ULONG 0 1024}ms (last changed Never)\n"
              "  Non-Video Late        : {LONGLONG 0 1024}ms (max={LONGLONG 0 1024}ms occurred Never)\n"
              "  Video Decoder Latency : {ULONG 0 1024}ms (max={ULONG 0 1024}ms occurred Never)\n"
              "  Video Decoder Jitter  : {ULONG 0 1024}ms (max={ULONG 0 1024}ms occurred Never)\n"
              "  Hardware Delay        : {ULONG 0 1024}ms\n"
              "  Video STC Lead Time   : 0ms (Min=0ms, Max=0ms, Range=0ms)\n"
              "  Last Video Skip/Replay: Never\n"
              "  Audio STC Lead Time   : 0ms (Min=0ms, Max=0ms, Range=0ms)\n"
              "  Last Audio Skip       : Never\n"
              "                         Jitter (ms)                                              Q-Level\n"
              "Type    Output Pkts    Now / Set / Max    PCR-to-PTS   CBUF Delay    STC Lead    Now / Max   Time Stamp   Last Output\n"
              "---------------------------------------------------------------------------------------------------------------------\n"
              "{TDemuxDataType 0 1024} {ULONG 0 1024}     0 / 0    / 0     0    ms      0    ms       0    ms       0 / 0      0           "
              "     Never\n"
              "{TDemuxDataType 0 1024} {ULONG 0 1024}     0 / 0    / 0     0    ms      0    ms       0    ms       0 / 0      0           "
              "     Never\n"
              "{TDemuxDataType 0 1024} {ULONG 0 1024}     0 / 0    / 0     0    ms      0    ms       0    ms       0 / 0      0           "
              "     Never\n"
              "{TDemuxDataType 0 1024} {ULONG 0 1024}     0 / 0    / 0     0    ms      0    ms       0    ms       0 / 0      0           "
              "     Never\n"
              "{TDemuxDataType 0 1024} {ULONG 0 1024}     0 / 0    / 0     0    ms      0    ms       0    ms       0 / 0      0           "
              "     Never\n"
              "{TDemuxDataType 0 1024} {ULONG 0 1024}     0 / 0    / 0     0    ms      0    ms       0    ms       0 / 0      0           "
              "     Never\n"
              "{TDemuxDataType 0 1024} {ULONG 0 1024}     0 / 0    / 0     0    ms      0    ms       0    ms       0 / 0      0           "
              "     Never\n"
              "{TDemuxDataType 0 1024} {ULONG 0 1024}     0 / 0    / 0     0    ms      0    ms       0    ms       0 / 0      0           "
              "     Never\n"
              "{TDemuxDataType 0 1024} {ULONG 0 1024}     0 / 0    / 0     0    ms      0    ms       0    ms       0 / 0      0           "
              "     Never\n"
              "{TDemuxDataType 0 1024} {ULONG 0 1024}     0 / 0    / 0     0    ms      0    ms       0    ms       0 / 0      0           "
              "     Never\n");
}

TEST(Buffering, EveryLevelButDebugPrintsTheDefaultReport)
{
    const SMGR_CBUFFERING_STATS stats = DistinctRecord();
    const std::string text = Report(stats, STATS_LEVEL_DEFAULT);
    for (const int nLevel : {2, -1, INT_MAX, INT_MIN}) EXPECT_EQ(Report(stats, nLevel), text) << "level " << nLevel;
}

TEST(Buffering, FieldsThatAreNotPrintedChangeNothing)
{
    SMGR_CBUFFERING_STATS stats = DistinctRecord();
    const std::string text = Report(stats, STATS_LEVEL_DEBUG);
    stats.nDecoderID = 0;
    stats.nFixedDelayMs = 0; // shown in the fixed mode alone
    stats.nMultiSyncDelayMs = 0;
    stats.tChannel[0].nDelayTimeMsActual = 0;
    stats.tChannel[9].nTotalOutputLatencyMs = 0;
    EXPECT_EQ(Report(stats, STATS_LEVEL_DEBUG), text);
}

TEST(Buffering, EveryTextHas1024Characters)
{
    SMGR_CBUFFERING_STATS stats = DistinctRecord();
    ClearServiceCalls();
    Report(stats, STATS_LEVEL_DEBUG);
    Report({}, STATS_LEVEL_DEBUG);
    const auto& calls = ServiceCalls();
    EXPECT_FALSE(calls.empty());
    for (const ServiceCall& call : calls) EXPECT_EQ(call.size, 1024u) << call.service << " " << call.value;
}

TEST(Buffering, AsksNoServiceForALineThatDoesNotPrint)
{
    ClearServiceCalls();
    Report({}, STATS_LEVEL_DEFAULT);
    const auto& calls = ServiceCalls();
    // Mode, state, latency; then of the automatic block six unsigned and two signed numbers and six times.
    EXPECT_EQ(calls.size(), 17u);
    EXPECT_EQ(std::count(calls.begin(), calls.end(), (ServiceCall{"CBufferingMode", "0", 1024})), 1);
    EXPECT_EQ(std::count(calls.begin(), calls.end(), (ServiceCall{"CBufferingStatus", "0", 1024})), 1);
    EXPECT_EQ(std::count(calls.begin(), calls.end(), (ServiceCall{"ULONG", "0", 1024})), 7);
    EXPECT_EQ(std::count(calls.begin(), calls.end(), (ServiceCall{"LONGLONG", "0", 1024})), 2);
    EXPECT_EQ(std::count(calls.begin(), calls.end(), (ServiceCall{"PrintToString", "Never", 1024})), 6);
}

/* ---- Mode, state and latency ---- */

TEST(Buffering, AFixedDelayEqualToTheMinimumIsOk)
{
    SMGR_CBUFFERING_STATS stats = {};
    stats.enBufferingMode = SMGR_DECSDI_BUFFERING_FIXED;
    stats.nFixedDelayMs = 300;
    stats.nMinDelayMs = 300;
    for (const int nLevel : {STATS_LEVEL_DEFAULT, STATS_LEVEL_DEBUG})
        EXPECT_EQ(LineOf(Report(stats, nLevel), "Buffering Mode"),
                  "  Buffering Mode        : {CBufferingMode 2 1024} ({ULONG 300 1024}ms, OK - minimum is {ULONG 300 1024}ms)");
}

TEST(Buffering, AFixedDelayBelowTheMinimumIsSetTooLow)
{
    SMGR_CBUFFERING_STATS stats = {};
    stats.enBufferingMode = SMGR_DECSDI_BUFFERING_FIXED;
    stats.nFixedDelayMs = 299;
    stats.nMinDelayMs = 300;
    for (const int nLevel : {STATS_LEVEL_DEFAULT, STATS_LEVEL_DEBUG})
        EXPECT_EQ(LineOf(Report(stats, nLevel), "Buffering Mode"),
                  "  Buffering Mode        : {CBufferingMode 2 1024} ({ULONG 299 1024}ms, SET TOO LOW - minimum is {ULONG 300 1024}ms)");
}

TEST(Buffering, AFixedDelayAboveTheMinimumIsOk)
{
    SMGR_CBUFFERING_STATS stats = {};
    stats.enBufferingMode = SMGR_DECSDI_BUFFERING_FIXED;
    stats.nFixedDelayMs = 301;
    stats.nMinDelayMs = 300;
    EXPECT_EQ(Line(stats, "Buffering Mode"),
              "  Buffering Mode        : {CBufferingMode 2 1024} ({ULONG 301 1024}ms, OK - minimum is {ULONG 300 1024}ms)");
}

TEST(Buffering, FixedDelaysCompareUnsigned)
{
    SMGR_CBUFFERING_STATS stats = {};
    stats.enBufferingMode = SMGR_DECSDI_BUFFERING_FIXED;
    stats.nFixedDelayMs = 4294967295;
    stats.nMinDelayMs = 1;
    EXPECT_EQ(Line(stats, "Buffering Mode"),
              "  Buffering Mode        : {CBufferingMode 2 1024} ({ULONG 4294967295 1024}ms, OK - minimum is {ULONG 1 1024}ms)");
    stats.nFixedDelayMs = 1;
    stats.nMinDelayMs = 2147483648;
    EXPECT_EQ(Line(stats, "Buffering Mode"),
              "  Buffering Mode        : {CBufferingMode 2 1024} ({ULONG 1 1024}ms, SET TOO LOW - minimum is {ULONG 2147483648 1024}ms)");
}

TEST(Buffering, EveryOtherModeIsABareName)
{
    SMGR_CBUFFERING_STATS stats = {};
    stats.nFixedDelayMs = 299;
    stats.nMinDelayMs = 300;
    for (const int enBufferingMode : {-1, 0, 1, 3, 4, 5, 6, 7, 8, 99, INT_MIN, INT_MAX})
    {
        stats.enBufferingMode = enBufferingMode;
        const std::string line = "  Buffering Mode        : {CBufferingMode " + std::to_string(enBufferingMode) + " 1024}";
        EXPECT_EQ(LineOf(Report(stats, STATS_LEVEL_DEFAULT), "Buffering Mode"), line);
        EXPECT_EQ(LineOf(Report(stats, STATS_LEVEL_DEBUG), "Buffering Mode"), line);
    }
}

TEST(Buffering, EveryStateGoesToTheNameService)
{
    SMGR_CBUFFERING_STATS stats = {};
    for (const int nStatus : {1, 0, -1, -2, -3, 77, INT_MIN})
    {
        stats.enStatus = static_cast<SMGR_CBUFFERING_STATUS>(nStatus);
        const std::string line = "  Buffering State       : {CBufferingStatus " + std::to_string(nStatus) + " 1024}";
        EXPECT_EQ(LineOf(Report(stats, STATS_LEVEL_DEFAULT), "Buffering State"), line);
    }
}

TEST(Buffering, VideoLatencyIsThatOfTheFirstChannelEvenIfItReceivedNothing)
{
    SMGR_CBUFFERING_STATS stats = {};
    stats.tChannel[0].nTotalOutputLatencyMs = 4294967295;
    stats.tChannel[1].nTotalOutputLatencyMs = 12;
    stats.tChannel[1].tCounters.nNumReceivedPackets = 13;
    EXPECT_EQ(LineOf(Report(stats, STATS_LEVEL_DEFAULT), "Video Latency"), "  Video Latency         : {ULONG 4294967295 1024}ms");
    EXPECT_EQ(LineOf(Report(stats, STATS_LEVEL_DEBUG), "Video Latency"),
              "  Video Latency         : {ULONG 4294967295 1024}ms (Initial Set=No)");
}

TEST(Buffering, AnyNonZeroFlagShowsTheInitialDelayAsSet)
{
    SMGR_CBUFFERING_STATS stats = {};
    for (const BOOL bSet : {1, 2, -1})
    {
        stats.bBufferingDelaySet = bSet;
        EXPECT_EQ(Line(stats, "Video Latency"), "  Video Latency         : {ULONG 0 1024}ms (Initial Set=Yes)");
    }
}

TEST(Buffering, DelaysAreUnsigned)
{
    SMGR_CBUFFERING_STATS stats = {};
    stats.nMaxDelayMs = 4294967295;
    stats.nSetDelayMs = 4294967294;
    stats.nMinDelayMs = 4294967293;
    EXPECT_EQ(Line(stats, "Maximum Delay"), "  Maximum Delay         : {ULONG 4294967295 1024}ms");
    EXPECT_EQ(Line(stats, "Decoder Set Delay"), "  Decoder Set Delay     : {ULONG 4294967294 1024}ms (min={ULONG 4294967293 1024}ms)");
}

/* ---- Clocks and counters ---- */

TEST(Buffering, PcrAndStcPrintAsSignedNumbers)
{
    SMGR_CBUFFERING_STATS stats = {};
    stats.nPCR = 18446744073709551615ul;
    stats.nSTC = 9223372036854775808ul;
    EXPECT_EQ(Line(stats, "  PCR  "), "  PCR                   : -1");
    EXPECT_EQ(Line(stats, "  STC  "), "  STC                   : -9223372036854775808");
    stats.nPCR = 9223372036854775807ul;
    EXPECT_EQ(Line(stats, "  PCR  "), "  PCR                   : 9223372036854775807");
}

// The default report of a record that holds these counters alone, less that line.
static std::string DefaultReportWithout(const SMGR_CBUFFERING_COUNTERS& counters, const std::string& line)
{
    SMGR_CBUFFERING_STATS stats = {};
    stats.tCounters = counters;
    std::string text = Report(stats, STATS_LEVEL_DEFAULT);
    const size_t at = text.find(line);
    if (at == std::string::npos) return "no line " + line;
    return text.erase(at, line.size());
}

TEST(Buffering, EachCounterAloneAddsItsOwnLineToTheDefaultReport)
{
    const std::string empty = Report({}, STATS_LEVEL_DEFAULT);
    SMGR_CBUFFERING_COUNTERS counters = {};
    counters.nNumPCRUpdates = 1;
    EXPECT_EQ(DefaultReportWithout(counters, "  PCR Updates           : {ULONG 1 1024} (Last One: Never)\n"), empty);
    counters = {};
    counters.nNumSTCUpdates = 2;
    EXPECT_EQ(DefaultReportWithout(counters, "  STC Updates           : {ULONG 2 1024} (Last One: Never)\n"), empty);
    counters = {};
    counters.nNumBufferingAdjustments = 3;
    EXPECT_EQ(DefaultReportWithout(counters, "  Buffering Adjustments : {ULONG 3 1024} (Last One: Never)\n"), empty);
    counters = {};
    counters.nNumSTCLeadTimeAdjustments = 4;
    EXPECT_EQ(DefaultReportWithout(counters, "  STC Lead Time Adjusts : {ULONG 4 1024} (Last One: Never)\n"), empty);
    counters = {};
    counters.nNumLateOutputs = 5;
    EXPECT_EQ(DefaultReportWithout(counters, "  Packets Sent Late     : {ULONG 5 1024} (Last One: Never, Max Late=0ms, Max Burst=0)\n"),
              empty);
    counters = {};
    counters.nBufferingOverflows = 6;
    EXPECT_EQ(DefaultReportWithout(counters, "  Buffering Overflows   : {ULONG 6 1024} (Last One: Never)\n"), empty);
    counters = {};
    counters.nSynthesizedAsyncTimestamps = 7;
    EXPECT_EQ(DefaultReportWithout(counters, "  Synthesized Async PTS : {ULONG 7 1024} (Last One: Never)\n"), empty);
    counters = {};
    counters.nSynthesizedAsyncTimestampFails = 8;
    EXPECT_EQ(DefaultReportWithout(counters, "  Synthesized APTS Fails: {ULONG 8 1024} (Last One: Never)\n"), empty);
}

TEST(Buffering, CountersOfTheDebugLevelAloneDoNotChangeTheDefaultReport)
{
    SMGR_CBUFFERING_STATS stats = {};
    stats.nMinDelayMs = 1;
    stats.nMaxDelayMs = 1;
    stats.nPCR = 1;
    stats.nSTC = 1;
    stats.nSetDelayMs = 1;
    stats.bBufferingDelaySet = 1;
    stats.tCounters.nNumReceivedPackets = 1;
    stats.tCounters.nNumOutputPackets = 1;
    stats.tCounters.nNumDroppedPackets = 1;
    stats.tCounters.nNumUnknownPackets = 1;
    stats.tCounters.nNumPCRPackets = 1;
    stats.tCounters.nNumResets = 1;
    stats.tCounters.nBufferingOccupancyBytes = 1;
    stats.tCounters.nMaxBufferingOccupancyBytes = 1;
    stats.tCounters.nMaxLateOutputMs = 1; // shown with a count of late packets alone
    stats.tCounters.nMaxLateOutputBurstFrms = 1;
    stats.tCounters.tLastLateOutput = frozen_now - 1;
    stats.tChannel[0].tCounters.nNumReceivedPackets = 1;
    EXPECT_EQ(Report(stats, STATS_LEVEL_DEFAULT), Report({}, STATS_LEVEL_DEFAULT));
}

TEST(Buffering, ResetsAreSignExtended)
{
    SMGR_CBUFFERING_STATS stats = {};
    stats.tCounters.nNumResets = -1;
    stats.tCounters.tLastReset = frozen_now - 3;
    EXPECT_EQ(Line(stats, "Buffering Resets"),
              "  Buffering Resets      : {ULONG 18446744073709551615 1024} (Last One: {UpTime 3 1024} ago)");
    stats.tCounters.nNumResets = INT_MIN;
    EXPECT_EQ(Line(stats, "Buffering Resets"),
              "  Buffering Resets      : {ULONG 18446744071562067968 1024} (Last One: {UpTime 3 1024} ago)");
}

static std::string LeadTime(int nLeadTimeMs, int nLevel = STATS_LEVEL_DEFAULT)
{
    SMGR_CBUFFERING_STATS stats = {};
    stats.nSTCtoPCRLeadTimeMs = nLeadTimeMs;
    return LineOf(Report(stats, nLevel), "STC to PCR Lead Time");
}

TEST(Buffering, StcAheadOfPcr)
{
    EXPECT_EQ(LeadTime(7), "  STC to PCR Lead Time  : 7ms (STC is ahead of PCR by 7ms)");
    EXPECT_EQ(LeadTime(7, STATS_LEVEL_DEBUG), "  STC to PCR Lead Time  : 7ms (STC is ahead of PCR by 7ms)");
    EXPECT_EQ(LeadTime(1), "  STC to PCR Lead Time  : 1ms (STC is ahead of PCR by 1ms)");
    EXPECT_EQ(LeadTime(INT_MAX), "  STC to PCR Lead Time  : 2147483647ms (STC is ahead of PCR by 2147483647ms)");
}

TEST(Buffering, StcBehindPcr)
{
    EXPECT_EQ(LeadTime(-12), "  STC to PCR Lead Time  : -12ms (STC is behind PCR by 12ms)");
    EXPECT_EQ(LeadTime(-12, STATS_LEVEL_DEBUG), "  STC to PCR Lead Time  : -12ms (STC is behind PCR by 12ms)");
    EXPECT_EQ(LeadTime(-1), "  STC to PCR Lead Time  : -1ms (STC is behind PCR by 1ms)");
}

TEST(Buffering, StcEqualToPcr)
{
    EXPECT_EQ(LeadTime(0), "  STC to PCR Lead Time  : 0ms (STC is equal to PCR)");
    EXPECT_EQ(LeadTime(0, STATS_LEVEL_DEBUG), "  STC to PCR Lead Time  : 0ms (STC is equal to PCR)");
}

TEST(Buffering, TheMostNegativeLeadTimeHasNoAbsoluteValue)
{
    EXPECT_EQ(LeadTime(INT_MIN), "  STC to PCR Lead Time  : -2147483648ms (STC is behind PCR by -2147483648ms)");
}

TEST(Buffering, LatenessIsSigned)
{
    SMGR_CBUFFERING_STATS stats = {};
    stats.tCounters.nNumLateOutputs = 18446744073709551615ul;
    stats.tCounters.nMaxLateOutputMs = -4;
    stats.tCounters.nMaxLateOutputBurstFrms = INT_MIN;
    EXPECT_EQ(LineOf(Report(stats, STATS_LEVEL_DEFAULT), "Packets Sent Late"),
              "  Packets Sent Late     : {ULONG 18446744073709551615 1024} (Last One: Never, Max Late=-4ms, Max Burst=-2147483648)");
}

/* ---- Blocks ---- */

TEST(Buffering, TheMultiSyncBlockBelongsToItsMode)
{
    SMGR_CBUFFERING_STATS stats = {};
    for (const int enBufferingMode : {-1, 0, 1, 2, 3, 5, 6, 7, 8, 99})
    {
        stats.enBufferingMode = enBufferingMode;
        for (const int nLevel : {STATS_LEVEL_DEFAULT, STATS_LEVEL_DEBUG})
            EXPECT_EQ(Report(stats, nLevel).find("MultiSync"), std::string::npos) << "mode " << enBufferingMode;
    }
    stats.enBufferingMode = SMGR_DECSDI_BUFFERING_MULTISYNC;
    stats.tMultiSync = DistinctMultiSync();
    for (const int nLevel : {STATS_LEVEL_DEFAULT, STATS_LEVEL_DEBUG})
        EXPECT_NE(Report(stats, nLevel).find(MultiSync(stats.tMultiSync, nLevel) + Automatic(stats.tAutomatic)), std::string::npos);
}

TEST(Buffering, TheAutomaticBlockIsTheSameInEveryModeAndAtEveryLevel)
{
    SMGR_CBUFFERING_STATS stats = {};
    stats.tAutomatic = DistinctAutomatic();
    const std::string block = Automatic(stats.tAutomatic);
    for (const int enBufferingMode : {-1, 0, 1, 2, 3, 4, 5, 6, 7, 8, 99})
    {
        stats.enBufferingMode = enBufferingMode;
        for (const int nLevel : {STATS_LEVEL_DEFAULT, STATS_LEVEL_DEBUG})
            EXPECT_NE(Report(stats, nLevel).find(block), std::string::npos) << "mode " << enBufferingMode << ", level " << nLevel;
    }
}

TEST(Buffering, TheChannelTableIsTheLastOfTheDebugReportAlone)
{
    const SMGR_CBUFFERING_STATS stats = DistinctRecord();
    EXPECT_TRUE(Report(stats, STATS_LEVEL_DEBUG).ends_with(ChannelTable(stats, STATS_LEVEL_DEBUG)));
    EXPECT_EQ(Report(stats, STATS_LEVEL_DEFAULT).find("Jitter (ms)"), std::string::npos);
}

/* ---- Channel table ---- */

TEST(BufferingChannels, HeadersHaveTheirColumns)
{
    const std::vector<std::string> lines = CaptureLines(
        []
        {
            const SMGR_CBUFFERING_STATS stats = {};
            _PrintCBufferingChannels(&stats, STATS_LEVEL_DEBUG);
        });
    ASSERT_EQ(lines.size(), 13u);
    EXPECT_EQ(lines[0].size(), 89u);
    EXPECT_EQ(lines[0].find("Jitter (ms)"), 25u);
    EXPECT_EQ(lines[0].find("Q-Level"), 82u);
    EXPECT_EQ(lines[1].size(), 117u);
    EXPECT_EQ(lines[1],
              "Type    Output Pkts    Now / Set / Max    PCR-to-PTS   CBUF Delay    STC Lead    Now / Max   Time Stamp   Last Output");
    EXPECT_EQ(lines[2], std::string(117, '-'));
}

TEST(BufferingChannels, IdleChannelsPrintTenRowsOfZerosAtTheDebugLevel)
{
    EXPECT_EQ(ChannelTable({}, STATS_LEVEL_DEBUG),
              "                         Jitter (ms)                                              Q-Level\n"
              "Type    Output Pkts    Now / Set / Max    PCR-to-PTS   CBUF Delay    STC Lead    Now / Max   Time Stamp   Last Output\n"
              "---------------------------------------------------------------------------------------------------------------------\n"
              "{TDemuxDataType 0 1024} {ULONG 0 1024}     0 / 0    / 0     0    ms      0    ms       0    ms       0 / 0      0           "
              "     Never\n"
              "{TDemuxDataType 0 1024} {ULONG 0 1024}     0 / 0    / 0     0    ms      0    ms       0    ms       0 / 0      0           "
              "     Never\n"
              "{TDemuxDataType 0 1024} {ULONG 0 1024}     0 / 0    / 0     0    ms      0    ms       0    ms       0 / 0      0           "
              "     Never\n"
              "{TDemuxDataType 0 1024} {ULONG 0 1024}     0 / 0    / 0     0    ms      0    ms       0    ms       0 / 0      0           "
              "     Never\n"
              "{TDemuxDataType 0 1024} {ULONG 0 1024}     0 / 0    / 0     0    ms      0    ms       0    ms       0 / 0      0           "
              "     Never\n"
              "{TDemuxDataType 0 1024} {ULONG 0 1024}     0 / 0    / 0     0    ms      0    ms       0    ms       0 / 0      0           "
              "     Never\n"
              "{TDemuxDataType 0 1024} {ULONG 0 1024}     0 / 0    / 0     0    ms      0    ms       0    ms       0 / 0      0           "
              "     Never\n"
              "{TDemuxDataType 0 1024} {ULONG 0 1024}     0 / 0    / 0     0    ms      0    ms       0    ms       0 / 0      0           "
              "     Never\n"
              "{TDemuxDataType 0 1024} {ULONG 0 1024}     0 / 0    / 0     0    ms      0    ms       0    ms       0 / 0      0           "
              "     Never\n"
              "{TDemuxDataType 0 1024} {ULONG 0 1024}     0 / 0    / 0     0    ms      0    ms       0    ms       0 / 0      0           "
              "     Never\n");
}

// Ten channels, each with numbers of its own: those of channel 0 plus ten times the index.
static SMGR_CBUFFERING_STATS TenChannels()
{
    SMGR_CBUFFERING_STATS stats = {};
    for (unsigned i = 0; i < SMGR_CBUFFERING_MAX_CHANNELS; i++)
    {
        SMGR_CBUFFERING_CHANNEL_STATS& channel = stats.tChannel[i];
        channel.enType = static_cast<SMGR_TDEMUX_DATA_TYPE>(i);
        channel.nBufferingDelayTimeMs = 101 + 10 * i;
        channel.nSTCLeadTimeMsSet = static_cast<int>(202 + 10 * i);
        channel.nPCRtoPTSTimeMsActual = static_cast<int>(303 + 10 * i);
        channel.nJitterTimeMsActual = 404 + 10 * i;
        channel.nJitterTimeMsSet = 505 + 10 * i;
        channel.nJitterTimeMsMaximum = 606 + 10 * i;
        channel.nQueueOccupancyFrames = 7 + 10 * i;
        channel.TimeStamp = 8000000008 + 10 * i;
        channel.tLastOutputTime = frozen_now - 909 - 10 * i;
        channel.tCounters.nNumReceivedPackets = 1;
        channel.tCounters.nNumOutputPackets = 9000 + 10 * i;
        channel.tCounters.nMaxQueueOccupancyFrames = 8 + 10 * i;
    }
    return stats;
}

TEST(BufferingChannels, EveryChannelHasItsRow)
{
    EXPECT_EQ(ChannelTable(TenChannels(), STATS_LEVEL_DEBUG),
              "                         Jitter (ms)                                              Q-Level\n"
              "Type    Output Pkts    Now / Set / Max    PCR-to-PTS   CBUF Delay    STC Lead    Now / Max   Time Stamp   Last Output\n"
              "---------------------------------------------------------------------------------------------------------------------\n"
              "{TDemuxDataType 0 1024} {ULONG 9000 1024}   404 / 505  / 606   303  ms      101  ms       202  ms       7 / 8      "
              "8000000008       {UpTime 909 1024} ago\n"
              "{TDemuxDataType 1 1024} {ULONG 9010 1024}   414 / 515  / 616   313  ms      111  ms       212  ms      17 / 18     "
              "8000000018       {UpTime 919 1024} ago\n"
              "{TDemuxDataType 2 1024} {ULONG 9020 1024}   424 / 525  / 626   323  ms      121  ms       222  ms      27 / 28     "
              "8000000028       {UpTime 929 1024} ago\n"
              "{TDemuxDataType 3 1024} {ULONG 9030 1024}   434 / 535  / 636   333  ms      131  ms       232  ms      37 / 38     "
              "8000000038       {UpTime 939 1024} ago\n"
              "{TDemuxDataType 4 1024} {ULONG 9040 1024}   444 / 545  / 646   343  ms      141  ms       242  ms      47 / 48     "
              "8000000048       {UpTime 949 1024} ago\n"
              "{TDemuxDataType 5 1024} {ULONG 9050 1024}   454 / 555  / 656   353  ms      151  ms       252  ms      57 / 58     "
              "8000000058       {UpTime 959 1024} ago\n"
              "{TDemuxDataType 6 1024} {ULONG 9060 1024}   464 / 565  / 666   363  ms      161  ms       262  ms      67 / 68     "
              "8000000068       {UpTime 969 1024} ago\n"
              "{TDemuxDataType 7 1024} {ULONG 9070 1024}   474 / 575  / 676   373  ms      171  ms       272  ms      77 / 78     "
              "8000000078       {UpTime 979 1024} ago\n"
              "{TDemuxDataType 8 1024} {ULONG 9080 1024}   484 / 585  / 686   383  ms      181  ms       282  ms      87 / 88     "
              "8000000088       {UpTime 989 1024} ago\n"
              "{TDemuxDataType 9 1024} {ULONG 9090 1024}   494 / 595  / 696   393  ms      191  ms       292  ms      97 / 98     "
              "8000000098       {UpTime 999 1024} ago\n");
}

TEST(BufferingChannels, BelowTheDebugLevelOnlyChannelsThatReceivedPackets)
{
    SMGR_CBUFFERING_STATS stats = TenChannels();
    for (const int i : {0, 1, 2, 3, 5, 6, 7, 8}) stats.tChannel[i].tCounters.nNumReceivedPackets = 0; // released packets do not count
    for (const int nLevel : {0, 2, -1})
    {
        EXPECT_EQ(ChannelTable(stats, nLevel),
                  "                         Jitter (ms)                                              Q-Level\n"
                  "Type    Output Pkts    Now / Set / Max    PCR-to-PTS   CBUF Delay    STC Lead    Now / Max   Time Stamp   Last Output\n"
                  "---------------------------------------------------------------------------------------------------------------------\n"
                  "{TDemuxDataType 4 1024} {ULONG 9040 1024}   444 / 545  / 646   343  ms      141  ms       242  ms      47 / 48     "
                  "8000000048       {UpTime 949 1024} ago\n"
                  "{TDemuxDataType 9 1024} {ULONG 9090 1024}   494 / 595  / 696   393  ms      191  ms       292  ms      97 / 98     "
                  "8000000098       {UpTime 999 1024} ago\n");
    }
}

TEST(BufferingChannels, BelowTheDebugLevelIdleChannelsLeaveTheHeaders)
{
    ClearServiceCalls();
    EXPECT_EQ(ChannelTable({}, STATS_LEVEL_DEFAULT),
              "                         Jitter (ms)                                              Q-Level\n"
              "Type    Output Pkts    Now / Set / Max    PCR-to-PTS   CBUF Delay    STC Lead    Now / Max   Time Stamp   Last Output\n"
              "---------------------------------------------------------------------------------------------------------------------\n");
    EXPECT_TRUE(ServiceCalls().empty());
}

// The row of channel 3, which alone received packets.
static std::string Row(const SMGR_CBUFFERING_CHANNEL_STATS& channel)
{
    SMGR_CBUFFERING_STATS stats = {};
    stats.tChannel[3] = channel;
    stats.tChannel[3].tCounters.nNumReceivedPackets = 1;
    return LineOf(ChannelTable(stats, STATS_LEVEL_DEFAULT), "TDemuxDataType");
}

TEST(BufferingChannels, NegativeTimesKeepTheirColumn)
{
    SMGR_CBUFFERING_CHANNEL_STATS channel = {};
    channel.nPCRtoPTSTimeMsActual = -12;
    channel.nSTCLeadTimeMsSet = -345;
    EXPECT_EQ(Row(channel), "{TDemuxDataType 0 1024} {ULONG 0 1024}     0 / 0    / 0     -12  ms      0    ms       -345 ms       0 / 0    "
                            "  0                Never");
}

TEST(BufferingChannels, AWideValueWidensTheRow)
{
    SMGR_CBUFFERING_CHANNEL_STATS channel = {};
    channel.enType = static_cast<SMGR_TDEMUX_DATA_TYPE>(-7);
    channel.nBufferingDelayTimeMs = 4294967291;
    channel.nSTCLeadTimeMsSet = INT_MIN;
    channel.nPCRtoPTSTimeMsActual = INT_MAX;
    channel.nJitterTimeMsActual = 4294967295;
    channel.nJitterTimeMsSet = 4294967294;
    channel.nJitterTimeMsMaximum = 4294967293;
    channel.nQueueOccupancyFrames = 4294967290;
    channel.tCounters.nMaxQueueOccupancyFrames = 4294967289;
    channel.tCounters.nNumOutputPackets = 18446744073709551615ul;
    channel.TimeStamp = 9223372036854775807ul;
    EXPECT_EQ(Row(channel), "{TDemuxDataType -7 1024} {ULONG 18446744073709551615 1024}  4294967295 / 4294967294 / 4294967293  2147483647 "
                            "ms      4294967291 ms       -2147483648 ms     4294967290 / 4294967289    9223372036854775807    Never");
}

TEST(BufferingChannels, TimeStampsPrintAsSignedNumbers)
{
    SMGR_CBUFFERING_CHANNEL_STATS channel = {};
    channel.TimeStamp = 18446744073709551615ul;
    EXPECT_EQ(Row(channel), "{TDemuxDataType 0 1024} {ULONG 0 1024}     0 / 0    / 0     0    ms      0    ms       0    ms       0 / 0    "
                            "  -1               Never");
    channel.TimeStamp = 9223372036854775808ul;
    EXPECT_EQ(Row(channel), "{TDemuxDataType 0 1024} {ULONG 0 1024}     0 / 0    / 0     0    ms      0    ms       0    ms       0 / 0    "
                            "  -9223372036854775808    Never");
}

/* ---- MultiSync block ---- */

TEST(MultiSyncBlock, WholeBlockAtTheDefaultLevel)
{
    for (const int nLevel : {0, 2, -1})
    {
        EXPECT_EQ(MultiSync(DistinctMultiSync(), nLevel), "MultiSync Buffering\n"
                                                          "  MultiSync Delay Set   : 604ms (In Range)\n"
                                                          "  MultiSync Delay Actual: 605ms\n"
                                                          "  MultiSync Delay Range : [Min 590ms, Max 620ms]\n");
    }
}

TEST(MultiSyncBlock, WholeBlockAtTheDebugLevel)
{
    SMGR_CBUFFERING_MULTISYNC_STATS stats = DistinctMultiSync();
    stats.bTimecodePresent = 0;
    stats.bTimecodeValid = 1;
    EXPECT_EQ(MultiSync(stats, STATS_LEVEL_DEBUG), "MultiSync Buffering\n"
                                                   "  MultiSync Delay Set   : 604ms (In Range)\n"
                                                   "  MultiSync Delay Actual: 605ms\n"
                                                   "  MultiSync Delay Range : [Min 590ms, Max 620ms]\n"
                                                   "  TC Present            : No (Valid=Yes, Last Received={UpTime 613 1024} ago)\n"
                                                   "  TC Packets            : {ULONG 611 1024}\n"
                                                   "  Invalid TC Packets    : {ULONG 612 1024} (Last Received={UpTime 614 1024} ago)\n"
                                                   "  System Time           : {ULONG 36000702 1024}ms\n"
                                                   "  Timecode              : {ULONG 36000601 1024}ms\n"
                                                   "  System Time - TC      : {ULONG 101 1024}ms\n"
                                                   "  Transmission Time     : 603ms\n");
}

TEST(MultiSyncBlock, AnEmptyRecord)
{
    EXPECT_EQ(MultiSync({}, STATS_LEVEL_DEBUG), "MultiSync Buffering\n"
                                                "  MultiSync Delay Set   : 0ms (In Range)\n"
                                                "  MultiSync Delay Actual: 0ms\n"
                                                "  MultiSync Delay Range : [Min 0ms, Max 0ms]\n"
                                                "  TC Present            : No (Valid=No, Last Received=Never)\n"
                                                "  TC Packets            : {ULONG 0 1024}\n"
                                                "  Invalid TC Packets    : {ULONG 0 1024} (Last Received=Never)\n"
                                                "  System Time           : {ULONG 0 1024}ms\n"
                                                "  Timecode              : {ULONG 0 1024}ms\n"
                                                "  System Time - TC      : {ULONG 0 1024}ms\n"
                                                "  Transmission Time     : 0ms\n");
}

static std::string DelaySet(UINT nSet, UINT nMin, UINT nMax)
{
    SMGR_CBUFFERING_MULTISYNC_STATS stats = {};
    stats.nMultiSyncDelaySetMs = nSet;
    stats.nMultiSyncDelayRangeMinMs = nMin;
    stats.nMultiSyncDelayRangeMaxMs = nMax;
    return LineOf(MultiSync(stats, STATS_LEVEL_DEFAULT), "MultiSync Delay Set");
}

TEST(MultiSyncBlock, BothBoundsBelongToTheRange)
{
    EXPECT_EQ(DelaySet(500, 200, 500), "  MultiSync Delay Set   : 500ms (In Range)");
    EXPECT_EQ(DelaySet(501, 200, 500), "  MultiSync Delay Set   : 501ms (Too High)");
    EXPECT_EQ(DelaySet(200, 200, 500), "  MultiSync Delay Set   : 200ms (In Range)");
    EXPECT_EQ(DelaySet(199, 200, 500), "  MultiSync Delay Set   : 199ms (Too Low)");
}

TEST(MultiSyncBlock, ARangeOfZeroHoldsZeroAlone)
{
    EXPECT_EQ(DelaySet(0, 0, 0), "  MultiSync Delay Set   : 0ms (In Range)");
    EXPECT_EQ(DelaySet(1, 0, 0), "  MultiSync Delay Set   : 1ms (Too High)");
    EXPECT_EQ(DelaySet(4294967295, 0, 0), "  MultiSync Delay Set   : 4294967295ms (Too High)");
}

TEST(MultiSyncBlock, AnInvertedRangeHoldsNothing)
{
    EXPECT_EQ(DelaySet(199, 500, 200), "  MultiSync Delay Set   : 199ms (Too Low)");
    EXPECT_EQ(DelaySet(200, 500, 200), "  MultiSync Delay Set   : 200ms (Too Low)");
    EXPECT_EQ(DelaySet(201, 500, 200), "  MultiSync Delay Set   : 201ms (Too High)");
    EXPECT_EQ(DelaySet(500, 500, 200), "  MultiSync Delay Set   : 500ms (Too High)");
    EXPECT_EQ(DelaySet(501, 500, 200), "  MultiSync Delay Set   : 501ms (Too High)");
}

TEST(MultiSyncBlock, DelaysCompareUnsigned)
{
    EXPECT_EQ(DelaySet(2147483648, 0, 100), "  MultiSync Delay Set   : 2147483648ms (Too High)");
    EXPECT_EQ(DelaySet(2147483648, 100, 4294967295), "  MultiSync Delay Set   : 2147483648ms (In Range)");
    EXPECT_EQ(DelaySet(100, 2147483648, 4294967295), "  MultiSync Delay Set   : 100ms (Too Low)");
}

TEST(MultiSyncBlock, DelaysAbove31BitsAreNegativeExceptTheOneSet)
{
    SMGR_CBUFFERING_MULTISYNC_STATS stats = {};
    stats.nMultiSyncDelaySetMs = 4294967295;
    stats.nMultiSyncDelayActualMs = 4294967294;
    stats.nMultiSyncDelayRangeMinMs = 2147483648;
    stats.nMultiSyncDelayRangeMaxMs = 4294967295;
    EXPECT_EQ(MultiSync(stats, STATS_LEVEL_DEFAULT), "MultiSync Buffering\n"
                                                     "  MultiSync Delay Set   : 4294967295ms (In Range)\n"
                                                     "  MultiSync Delay Actual: -2ms\n"
                                                     "  MultiSync Delay Range : [Min -2147483648ms, Max -1ms]\n");
}

TEST(MultiSyncBlock, OnlyExactlyOneIsYes)
{
    SMGR_CBUFFERING_MULTISYNC_STATS stats = {};
    for (const BOOL bFlag : {2, -1, 256})
    {
        stats.bTimecodePresent = bFlag;
        stats.bTimecodeValid = bFlag;
        EXPECT_EQ(LineOf(MultiSync(stats, STATS_LEVEL_DEBUG), "TC Present"), "  TC Present            : No (Valid=No, Last Received=Never)")
            << bFlag;
    }
    stats.bTimecodePresent = 1;
    stats.bTimecodeValid = 1;
    EXPECT_EQ(LineOf(MultiSync(stats, STATS_LEVEL_DEBUG), "TC Present"), "  TC Present            : Yes (Valid=Yes, Last Received=Never)");
}

static std::string SystemTimeLines(int nSystemTimeInMs, int nTimecodeInMs)
{
    SMGR_CBUFFERING_MULTISYNC_STATS stats = {};
    stats.nSystemTimeInMs = nSystemTimeInMs;
    stats.nTimecodeInMs = nTimecodeInMs;
    const std::string text = MultiSync(stats, STATS_LEVEL_DEBUG);
    const size_t start = text.find("  System Time  ");
    return start == std::string::npos ? text : text.substr(start, text.find("  Transmission Time") - start);
}

TEST(MultiSyncBlock, SystemTimeBehindTheTimecodeHasAMinusSign)
{
    EXPECT_EQ(SystemTimeLines(1000, 1500), "  System Time           : {ULONG 1000 1024}ms\n"
                                           "  Timecode              : {ULONG 1500 1024}ms\n"
                                           "  System Time - TC      : -{ULONG 500 1024}ms\n");
}

TEST(MultiSyncBlock, SystemTimeAheadOfTheTimecodeHasNoSign)
{
    EXPECT_EQ(SystemTimeLines(1500, 1000), "  System Time           : {ULONG 1500 1024}ms\n"
                                           "  Timecode              : {ULONG 1000 1024}ms\n"
                                           "  System Time - TC      : {ULONG 500 1024}ms\n");
}

TEST(MultiSyncBlock, EqualTimesHaveNoSign)
{
    EXPECT_EQ(SystemTimeLines(1500, 1500), "  System Time           : {ULONG 1500 1024}ms\n"
                                           "  Timecode              : {ULONG 1500 1024}ms\n"
                                           "  System Time - TC      : {ULONG 0 1024}ms\n");
}

TEST(MultiSyncBlock, NegativeTimesAreSignExtended)
{
    EXPECT_EQ(SystemTimeLines(-1, -3), "  System Time           : {ULONG 18446744073709551615 1024}ms\n"
                                       "  Timecode              : {ULONG 18446744073709551613 1024}ms\n"
                                       "  System Time - TC      : {ULONG 2 1024}ms\n");
    EXPECT_EQ(SystemTimeLines(-3, -1), "  System Time           : {ULONG 18446744073709551613 1024}ms\n"
                                       "  Timecode              : {ULONG 18446744073709551615 1024}ms\n"
                                       "  System Time - TC      : -{ULONG 2 1024}ms\n");
    EXPECT_EQ(SystemTimeLines(-1, 1), "  System Time           : {ULONG 18446744073709551615 1024}ms\n"
                                      "  Timecode              : {ULONG 1 1024}ms\n"
                                      "  System Time - TC      : -{ULONG 2 1024}ms\n");
}

TEST(MultiSyncBlock, ADifferenceThatOverflows32BitsWraps)
{
    // 2^31 - 1 - (-1) is 2^31, which wraps to -2^31 and is then extended to 64 bits.
    EXPECT_EQ(SystemTimeLines(INT_MAX, -1), "  System Time           : {ULONG 2147483647 1024}ms\n"
                                            "  Timecode              : {ULONG 18446744073709551615 1024}ms\n"
                                            "  System Time - TC      : {ULONG 18446744071562067968 1024}ms\n");
    // 2^31 - 1 - (-2^31) is 2^32 - 1, which wraps to -1.
    EXPECT_EQ(SystemTimeLines(INT_MIN, INT_MAX), "  System Time           : {ULONG 18446744071562067968 1024}ms\n"
                                                 "  Timecode              : {ULONG 2147483647 1024}ms\n"
                                                 "  System Time - TC      : -{ULONG 18446744073709551615 1024}ms\n");
}

TEST(MultiSyncBlock, TransmissionTimeIsSigned)
{
    SMGR_CBUFFERING_MULTISYNC_STATS stats = {};
    stats.nTransmissionTimeMs = -3;
    EXPECT_EQ(LineOf(MultiSync(stats, STATS_LEVEL_DEBUG), "Transmission Time"), "  Transmission Time     : -3ms");
}

/* ---- Automatic block ---- */

TEST(AutomaticBlock, WholeBlock)
{
    EXPECT_EQ(Automatic(DistinctAutomatic()),
              "  Max Input Jitter      : {ULONG 701 1024}ms (last changed {UpTime 702 1024} ago)\n"
              "  Non-Video Late        : {LONGLONG -703 1024}ms (max={LONGLONG 704 1024}ms occurred {UpTime 705 1024} ago)\n"
              "  Video Decoder Latency : {ULONG 706 1024}ms (max={ULONG 707 1024}ms occurred {UpTime 708 1024} ago)\n"
              "  Video Decoder Jitter  : {ULONG 709 1024}ms (max={ULONG 710 1024}ms occurred {UpTime 711 1024} ago)\n"
              "  Hardware Delay        : {ULONG 718 1024}ms\n"
              "  Video STC Lead Time   : 712ms (Min=-713ms, Max=714ms, Range=1427ms)\n"
              "  Last Video Skip/Replay: {UpTime 719 1024} ago\n"
              "  Audio STC Lead Time   : -715ms (Min=-716ms, Max=717ms, Range=1433ms)\n"
              "  Last Audio Skip       : {UpTime 720 1024} ago\n");
}

TEST(AutomaticBlock, AnEmptyRecordPrintsNineLines)
{
    EXPECT_EQ(Automatic({}), "  Max Input Jitter      : {ULONG 0 1024}ms (last changed Never)\n"
                             "  Non-Video Late        : {LONGLONG 0 1024}ms (max={LONGLONG 0 1024}ms occurred Never)\n"
                             "  Video Decoder Latency : {ULONG 0 1024}ms (max={ULONG 0 1024}ms occurred Never)\n"
                             "  Video Decoder Jitter  : {ULONG 0 1024}ms (max={ULONG 0 1024}ms occurred Never)\n"
                             "  Hardware Delay        : {ULONG 0 1024}ms\n"
                             "  Video STC Lead Time   : 0ms (Min=0ms, Max=0ms, Range=0ms)\n"
                             "  Last Video Skip/Replay: Never\n"
                             "  Audio STC Lead Time   : 0ms (Min=0ms, Max=0ms, Range=0ms)\n"
                             "  Last Audio Skip       : Never\n");
}

TEST(AutomaticBlock, LatenessKeepsItsSign)
{
    SMGR_CBUFFERING_AUTOMATIC_STATS stats = {};
    stats.nNonVideoLateMs = -5;
    stats.nNonVideoLateMaxMs = INT_MIN;
    EXPECT_EQ(LineOf(Automatic(stats), "Non-Video Late"),
              "  Non-Video Late        : {LONGLONG -5 1024}ms (max={LONGLONG -2147483648 1024}ms occurred Never)");
}

TEST(AutomaticBlock, DelaysAndJittersAreUnsigned)
{
    SMGR_CBUFFERING_AUTOMATIC_STATS stats = {};
    stats.nMaxInputJitterMs = 4294967295;
    stats.nVideoDecoderLatencyMs = 4294967294;
    stats.nVideoDecoderLatencyMaxMs = 4294967293;
    stats.nVideoDecoderJitterMs = 4294967292;
    stats.nVideoDecoderJitterMaxMs = 4294967291;
    stats.nHardwareDelayMs = 4294967290;
    const std::string text = Automatic(stats);
    EXPECT_EQ(LineOf(text, "Max Input Jitter"), "  Max Input Jitter      : {ULONG 4294967295 1024}ms (last changed Never)");
    EXPECT_EQ(LineOf(text, "Video Decoder Latency"),
              "  Video Decoder Latency : {ULONG 4294967294 1024}ms (max={ULONG 4294967293 1024}ms occurred Never)");
    EXPECT_EQ(LineOf(text, "Video Decoder Jitter"),
              "  Video Decoder Jitter  : {ULONG 4294967292 1024}ms (max={ULONG 4294967291 1024}ms occurred Never)");
    EXPECT_EQ(LineOf(text, "Hardware Delay"), "  Hardware Delay        : {ULONG 4294967290 1024}ms");
}

// The two lead times with the same figures.
static std::string LeadTimes(int nAvg, int nMin, int nMax)
{
    SMGR_CBUFFERING_AUTOMATIC_STATS stats = {};
    stats.nVideoSTCLeadTimeAvgActualMs = nAvg;
    stats.nVideoSTCLeadTimeMinActualMs = nMin;
    stats.nVideoSTCLeadTimeMaxActualMs = nMax;
    stats.nAudioSTCLeadTimeAvgActualMs = nAvg;
    stats.nAudioSTCLeadTimeMinActualMs = nMin;
    stats.nAudioSTCLeadTimeMaxActualMs = nMax;
    const std::string text = Automatic(stats);
    return LineOf(text, "Video STC Lead Time") + "\n" + LineOf(text, "Audio STC Lead Time") + "\n";
}

TEST(AutomaticBlock, TheRangeIsTheMaximumLessTheMinimum)
{
    EXPECT_EQ(LeadTimes(5, -20, 30), "  Video STC Lead Time   : 5ms (Min=-20ms, Max=30ms, Range=50ms)\n"
                                     "  Audio STC Lead Time   : 5ms (Min=-20ms, Max=30ms, Range=50ms)\n");
}

TEST(AutomaticBlock, AMaximumBelowTheMinimumGivesANegativeRange)
{
    EXPECT_EQ(LeadTimes(-5, 30, -20), "  Video STC Lead Time   : -5ms (Min=30ms, Max=-20ms, Range=-50ms)\n"
                                      "  Audio STC Lead Time   : -5ms (Min=30ms, Max=-20ms, Range=-50ms)\n");
}

TEST(AutomaticBlock, TheRangeWrapsAt32Bits)
{
    EXPECT_EQ(LeadTimes(0, INT_MIN, INT_MAX), "  Video STC Lead Time   : 0ms (Min=-2147483648ms, Max=2147483647ms, Range=-1ms)\n"
                                              "  Audio STC Lead Time   : 0ms (Min=-2147483648ms, Max=2147483647ms, Range=-1ms)\n");
    EXPECT_EQ(LeadTimes(0, -1, INT_MAX), "  Video STC Lead Time   : 0ms (Min=-1ms, Max=2147483647ms, Range=-2147483648ms)\n"
                                         "  Audio STC Lead Time   : 0ms (Min=-1ms, Max=2147483647ms, Range=-2147483648ms)\n");
    EXPECT_EQ(LeadTimes(0, 1, INT_MIN), "  Video STC Lead Time   : 0ms (Min=1ms, Max=-2147483648ms, Range=2147483647ms)\n"
                                        "  Audio STC Lead Time   : 0ms (Min=1ms, Max=-2147483648ms, Range=2147483647ms)\n");
}
