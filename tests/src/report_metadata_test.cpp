#include <gtest/gtest.h>

#include <array>
#include <climits>
#include <cstdint>
#include <cstring>

#include "blocks.h"
#include "capture.h"
#include "frozen_clock.h"
#include "recording_services.h"
#include "stats.h"

static std::string Report(const SMGR_METADATADEC_STATS& stats, STATS_LEVEL nLevel)
{
    BOOL bResult = FALSE;
    const std::string text = Capture([&] { bResult = STATS_PrintForMetadataDec(&stats, nLevel); });
    EXPECT_EQ(bResult, TRUE);
    return text;
}

static std::string Block(const SMGR_METADATADEC_CHANNEL_STATS& channel, STATS_LEVEL nLevel)
{
    BOOL bResult = FALSE;
    const std::string text = Capture([&] { bResult = _PrintMetadataChannel(&channel, nLevel); });
    EXPECT_EQ(bResult, TRUE);
    return text;
}

/** A channel that counted nothing. */
static SMGR_METADATADEC_CHANNEL_STATS Channel(const char* pName, SMGR_METADATA_CHANNEL_TYPE enType)
{
    SMGR_METADATADEC_CHANNEL_STATS channel = {};
    strcpy(channel.szName, pName);
    channel.enType = enType;
    channel.enState = SMGR_METADATA_STATE_IDLE;
    return channel;
}

/** A number of its own for every counter: event 1xx was 5xx seconds ago. */
static SMGR_METADATADEC_CHANNEL_STATS DistinctChannel(const char* pName, SMGR_METADATA_CHANNEL_TYPE enType)
{
    SMGR_METADATADEC_CHANNEL_STATS channel = Channel(pName, enType);
    channel.nLatencyInUs = 33367;

    SMGR_METADATADEC_CHANNEL_COUNTERS& c = channel.tCounters;
    c.nNumInputPackets = 101;
    c.tLastInputPacket = frozen_now - 501;
    c.nNumSynchronousPackets = 102;
    c.tLastSynchronousPacket = frozen_now - 502;
    c.nNumAsynchronousPackets = 103;
    c.tLastAsynchronousPacket = frozen_now - 503;
    c.nNumOutputPackets = 104;
    c.tLastOutputPacket = frozen_now - 504;
    c.nNumFreedPackets = 105;
    c.tLastFreedPacket = frozen_now - 505;
    c.nNumDroppedPackets = 106;
    c.tLastDroppedPacket = frozen_now - 506;
    c.nNumOutputFailedPackets = 107;
    c.tLastOutputFailedPacket = frozen_now - 507;
    c.nNumOutputFailedLatePackets = 108;
    c.tLastOutputFailedLatePacket = frozen_now - 508;
    c.nNumOutputPayloadBytes = 109;
    c.nMaxOutputPayloadBytes = 209;
    c.tMaxOutputPayloadBytes = frozen_now - 509;
    c.nNumNonIncreasingOutputTimestamps = 110;
    c.tLastNonIncreasingOutputTimestamp = frozen_now - 510;
    c.nNumErrors = 111;
    c.tLastOutputTime = frozen_now - 512;
    c.nNumInPacketList = 113;
    c.nNumPacketListResets = 114;
    c.tLastPacketListReset = frozen_now - 514;
    c.nNumBDAllocated = 115;
    c.tLastBDAllocated = frozen_now - 515;
    c.nNumBDAllocateFailed = 116;
    c.tLastBDAllocateFailed = frozen_now - 516;
    c.nNumBDWritten = 117;
    c.tLastBDWritten = frozen_now - 517;
    c.nNumBDFreed = 118;
    c.tLastBDFreed = frozen_now - 518;
    c.nNumBDInFreeList = 119;
    c.nNumBDInUsedList = 219;
    c.nBDFreeListHeadIndex = 120;
    c.nBDUsedListHeadIndex = 220;
    c.nCurrentDelayInPackets = 121;
    c.nNumInDelayList = 122;
    c.nNumOutputLate = 123;
    c.tLastOutputLate = frozen_now - 523;
    c.nOutputSTCLeadTime = 124;
    c.nMinOutputSTCLeadTime = 125;
    c.tMinOutputSTCLeadTime = frozen_now - 525;
    c.nMaxOutputSTCLeadTime = 126;
    c.tMaxOutputSTCLeadTime = frozen_now - 526;
    return channel;
}

/** An active decoder: a busy channel, one without anything, one that counted all but input, one with input alone. */
static SMGR_METADATADEC_STATS DistinctStats()
{
    SMGR_METADATADEC_STATS s = {};
    s.enState = SMGR_METADATA_STATE_ACTIVE;
    s.nDecoderID = 31;
    s.nInputQOccupancy = 32;
    s.tChannel[0] = DistinctChannel("KLV", SMGR_METADATA_CHANNEL_TYPE_KLV);
    s.tChannel[0].enState = SMGR_METADATA_STATE_ACTIVE;
    s.tChannel[1] = Channel("TC", SMGR_METADATA_CHANNEL_TYPE_TC);
    s.tChannel[2] = DistinctChannel("CC", SMGR_METADATA_CHANNEL_TYPE_CC);
    s.tChannel[2].nLatencyInUs = 1500;
    s.tChannel[2].tCounters.nNumInputPackets = 0;
    s.tChannel[3] = Channel("AFD", SMGR_METADATA_CHANNEL_TYPE_AFD);
    s.tChannel[3].enState = SMGR_METADATA_STATE_ACTIVE;
    s.tChannel[3].tCounters.nNumInputPackets = 7;
    s.tCounters.nNumReceivedPackets = 33;
    s.tCounters.tTCValue = {TRUE, 21, 42, 53, 14};
    return s;
}

static SMGR_METADATADEC_STATS IdleStats()
{
    SMGR_METADATADEC_STATS s = {};
    s.enState = SMGR_METADATA_STATE_IDLE;
    return s;
}

/** An active decoder with four channels of these names, active where the bit of the channel's index is set. */
static SMGR_METADATADEC_STATS Active(unsigned int nActive, std::array<const char*, 4> names = {"KLV", "TC", "CC", "AFD"})
{
    SMGR_METADATADEC_STATS s = {};
    s.enState = SMGR_METADATA_STATE_ACTIVE;
    for (unsigned int i = 0; i < names.size(); i++)
    {
        strcpy(s.tChannel[i].szName, names[i]);
        s.tChannel[i].enState = nActive >> i & 1 ? SMGR_METADATA_STATE_ACTIVE : SMGR_METADATA_STATE_IDLE;
    }
    return s;
}

/** The report's line about the active channels. */
static std::string ActiveMetadata(const SMGR_METADATADEC_STATS& stats)
{
    return LineOf(Report(stats, STATS_LEVEL_DEFAULT), "Active Metadata");
}

TEST(MetadataReport, IdleAtTheDefaultLevelHoldsTheStateAlone)
{
    EXPECT_EQ(Report(IdleStats(), STATS_LEVEL_DEFAULT), R"(Metadata
  Metadata State        : {MetadataState 1 1024}
)");
}

TEST(MetadataReport, DistinctValuesAtTheDefaultLevel)
{
    EXPECT_EQ(Report(DistinctStats(), STATS_LEVEL_DEFAULT), R"(Metadata
  Metadata State        : {MetadataState 2 1024}
  Active Metadata       : KLV, AFD
  Timecode              : 21:42:53:14
  KLV Channel
    Received Packets    : {ULONG 101 1024} (Last One: {UpTime 501 1024} ago)
    Synchronous Packets : {ULONG 102 1024} (Last One: {UpTime 502 1024} ago)
    Aynchronous Packets : {ULONG 103 1024} (Last One: {UpTime 503 1024} ago)
    Output Packets      : {ULONG 104 1024} (Last One: {UpTime 504 1024} ago)
    Freed Packets       : {ULONG 105 1024} (Last One: {UpTime 505 1024} ago)
    Dropped Packets     : {ULONG 106 1024} (Last One: {UpTime 506 1024} ago)
    Output Failed       : {ULONG 107 1024} (Last One: {UpTime 507 1024} ago)
    Output Late         : {ULONG 108 1024} (Last One: {UpTime 508 1024} ago)
    Payload Bytes       : {ULONG 109 1024} (max={ULONG 209 1024} bytes occurred {UpTime 509 1024} ago)
    Nonincr. Timestamps : {ULONG 110 1024} (Last One: {UpTime 510 1024} ago)
    Pkt List Resets     : {ULONG 114 1024} (Last One: {UpTime 514 1024} ago)
    Other Errors        : {ULONG 111 1024}
    Latency             : 33.4ms
    BDs Allocate Failed : {ULONG 116 1024} (Last One: {UpTime 516 1024} ago)
  AFD Channel
    Received Packets    : {ULONG 7 1024} (Last One: Never)
    Output Packets      : 0
    Latency             : 0.0ms
)");
}

TEST(MetadataReport, DistinctValuesInDebug)
{
    EXPECT_EQ(Report(DistinctStats(), STATS_LEVEL_DEBUG), R"(Metadata
  Metadata State        : {MetadataState 2 1024}
  Active Metadata       : KLV, AFD
  Received Packets      : {ULONG 33 1024}
  Input Q Occupancy     : 32
  Timecode              : 21:42:53:14
  KLV Channel
    Type                : 0
    Received Packets    : {ULONG 101 1024} (Last One: {UpTime 501 1024} ago)
    Synchronous Packets : {ULONG 102 1024} (Last One: {UpTime 502 1024} ago)
    Aynchronous Packets : {ULONG 103 1024} (Last One: {UpTime 503 1024} ago)
    Output Packets      : {ULONG 104 1024} (Last One: {UpTime 504 1024} ago)
    Freed Packets       : {ULONG 105 1024} (Last One: {UpTime 505 1024} ago)
    Dropped Packets     : {ULONG 106 1024} (Last One: {UpTime 506 1024} ago)
    Output Failed       : {ULONG 107 1024} (Last One: {UpTime 507 1024} ago)
    Output Late         : {ULONG 108 1024} (Last One: {UpTime 508 1024} ago)
    Payload Bytes       : {ULONG 109 1024} (max={ULONG 209 1024} bytes occurred {UpTime 509 1024} ago)
    Nonincr. Timestamps : {ULONG 110 1024} (Last One: {UpTime 510 1024} ago)
    Pkt List Resets     : {ULONG 114 1024} (Last One: {UpTime 514 1024} ago)
    Other Errors        : {ULONG 111 1024}
    Latency             : 33.4ms
    Delay               : 121pkts
    Delay List Occ.     : 122
    Input List Occ.     : 113
    BDs Allocated       : {ULONG 115 1024} (Last One: {UpTime 515 1024} ago)
    BDs Allocate Failed : {ULONG 116 1024} (Last One: {UpTime 516 1024} ago)
    BDs Written         : {ULONG 117 1024} (Last One: {UpTime 517 1024} ago)
    BDs Freed           : {ULONG 118 1024} (Last One: {UpTime 518 1024} ago)
    BD Free List Occ.   : 119
    BD Free Head Index  : 120
    BD Used List Occ.   : 219
    BD Used Head Index  : 220
    Output Sent Late    : {ULONG 123 1024} (Last One: {UpTime 523 1024} ago)
    Output Lead Time    : 124ms (Min=125ms occurred {UpTime 525 1024} ago, Max=126ms occurred {UpTime 526 1024} ago)
  TC Channel
    Type                : 1
    Received Packets    : 0
    Synchronous Packets : 0
    Aynchronous Packets : 0
    Output Packets      : 0
    Freed Packets       : 0
    Dropped Packets     : 0
    Output Failed       : 0
    Output Late         : 0
    Payload Bytes       : {ULONG 0 1024} (max={ULONG 0 1024} bytes occurred Never)
    Nonincr. Timestamps : 0
    Pkt List Resets     : 0
    Other Errors        : {ULONG 0 1024}
    Latency             : 0.0ms
    Delay               : 0pkts
    Delay List Occ.     : 0
    Input List Occ.     : 0
    BDs Allocated       : 0
    BDs Allocate Failed : 0
    BDs Written         : 0
    BDs Freed           : 0
    BD Free List Occ.   : 0
    BD Free Head Index  : 0
    BD Used List Occ.   : 0
    BD Used Head Index  : 0
    Output Sent Late    : 0
    Output Lead Time    : 0ms (Min=0ms occurred Never, Max=0ms occurred Never)
  CC Channel
    Type                : 2
    Received Packets    : 0
    Synchronous Packets : {ULONG 102 1024} (Last One: {UpTime 502 1024} ago)
    Aynchronous Packets : {ULONG 103 1024} (Last One: {UpTime 503 1024} ago)
    Output Packets      : {ULONG 104 1024} (Last One: {UpTime 504 1024} ago)
    Freed Packets       : {ULONG 105 1024} (Last One: {UpTime 505 1024} ago)
    Dropped Packets     : {ULONG 106 1024} (Last One: {UpTime 506 1024} ago)
    Output Failed       : {ULONG 107 1024} (Last One: {UpTime 507 1024} ago)
    Output Late         : {ULONG 108 1024} (Last One: {UpTime 508 1024} ago)
    Payload Bytes       : {ULONG 109 1024} (max={ULONG 209 1024} bytes occurred {UpTime 509 1024} ago)
    Nonincr. Timestamps : {ULONG 110 1024} (Last One: {UpTime 510 1024} ago)
    Pkt List Resets     : {ULONG 114 1024} (Last One: {UpTime 514 1024} ago)
    Other Errors        : {ULONG 111 1024}
    Latency             : 1.5ms
    Delay               : 121pkts
    Delay List Occ.     : 122
    Input List Occ.     : 113
    BDs Allocated       : {ULONG 115 1024} (Last One: {UpTime 515 1024} ago)
    BDs Allocate Failed : {ULONG 116 1024} (Last One: {UpTime 516 1024} ago)
    BDs Written         : {ULONG 117 1024} (Last One: {UpTime 517 1024} ago)
    BDs Freed           : {ULONG 118 1024} (Last One: {UpTime 518 1024} ago)
    BD Free List Occ.   : 119
    BD Free Head Index  : 120
    BD Used List Occ.   : 219
    BD Used Head Index  : 220
    Output Sent Late    : {ULONG 123 1024} (Last One: {UpTime 523 1024} ago)
    Output Lead Time    : 124ms (Min=125ms occurred {UpTime 525 1024} ago, Max=126ms occurred {UpTime 526 1024} ago)
  AFD Channel
    Type                : 3
    Received Packets    : {ULONG 7 1024} (Last One: Never)
    Synchronous Packets : 0
    Aynchronous Packets : 0
    Output Packets      : 0
    Freed Packets       : 0
    Dropped Packets     : 0
    Output Failed       : 0
    Output Late         : 0
    Payload Bytes       : {ULONG 0 1024} (max={ULONG 0 1024} bytes occurred Never)
    Nonincr. Timestamps : 0
    Pkt List Resets     : 0
    Other Errors        : {ULONG 0 1024}
    Latency             : 0.0ms
    Delay               : 0pkts
    Delay List Occ.     : 0
    Input List Occ.     : 0
    BDs Allocated       : 0
    BDs Allocate Failed : 0
    BDs Written         : 0
    BDs Freed           : 0
    BD Free List Occ.   : 0
    BD Free Head Index  : 0
    BD Used List Occ.   : 0
    BD Used Head Index  : 0
    Output Sent Late    : 0
    Output Lead Time    : 0ms (Min=0ms occurred Never, Max=0ms occurred Never)
)");
}

TEST(MetadataReport, EveryLevelButDebugPrintsAsTheDefault)
{
    const SMGR_METADATADEC_STATS s = DistinctStats();
    const std::string expected = Report(s, STATS_LEVEL_DEFAULT);
    for (const int nLevel : {2, -1, INT_MAX, INT_MIN}) EXPECT_EQ(Report(s, static_cast<STATS_LEVEL>(nLevel)), expected) << nLevel;
}

TEST(MetadataReport, EngineeringFieldsChangeNothingAtTheDefaultLevel)
{
    SMGR_METADATADEC_STATS s = DistinctStats();
    s.enState = SMGR_METADATA_STATE_IDLE;
    s.tCounters.tTCValue.bTCValid = FALSE;
    for (SMGR_METADATADEC_CHANNEL_STATS& channel : s.tChannel) channel.tCounters.nNumInputPackets = 0;
    EXPECT_EQ(Report(s, STATS_LEVEL_DEFAULT), Report(IdleStats(), STATS_LEVEL_DEFAULT));
}

TEST(MetadataReport, ActiveChannelsAreListedInOrder)
{
    EXPECT_EQ(ActiveMetadata(Active(0b0101)), "  Active Metadata       : KLV, CC");
    EXPECT_EQ(ActiveMetadata(Active(0b1111)), "  Active Metadata       : KLV, TC, CC, AFD");
    EXPECT_EQ(ActiveMetadata(Active(0b0110)), "  Active Metadata       : TC, CC");
}

TEST(MetadataReport, TheOnlyActiveChannelHasNoSeparator)
{
    EXPECT_EQ(ActiveMetadata(Active(0b1000)), "  Active Metadata       : AFD");
    EXPECT_EQ(ActiveMetadata(Active(0b0001)), "  Active Metadata       : KLV");
}

TEST(MetadataReport, AnActiveDecoderWithoutActiveChannelsShowsNone)
{
    EXPECT_EQ(ActiveMetadata(Active(0)), "  Active Metadata       : None");
}

TEST(MetadataReport, ChannelStatesOtherThanActiveAreNotListed)
{
    SMGR_METADATADEC_STATS s = Active(0);
    s.tChannel[0].enState = SMGR_METADATA_STATE_UNKNOWN;
    s.tChannel[1].enState = SMGR_METADATA_STATE_IDLE;
    s.tChannel[2].enState = SMGR_METADATA_STATE_INVALID;
    s.tChannel[3].enState = static_cast<SMGR_METADATA_STATE>(3);
    EXPECT_EQ(ActiveMetadata(s), "  Active Metadata       : None");
}

TEST(MetadataReport, ADecoderThatIsNotActiveListsNoChannels)
{
    SMGR_METADATADEC_STATS s = Active(0b1111);
    for (const int nState : {0, 1, -1, 3, -2})
    {
        s.enState = static_cast<SMGR_METADATA_STATE>(nState);
        EXPECT_EQ(ActiveMetadata(s), "") << nState;
        EXPECT_EQ(LineOf(Report(s, STATS_LEVEL_DEBUG), "Active Metadata"), "") << nState;
    }
}

TEST(MetadataReport, AnIdleDecoderStillPrintsItsChannels)
{
    SMGR_METADATADEC_STATS s = Active(0b0001);
    s.enState = SMGR_METADATA_STATE_IDLE;
    s.tChannel[0].tCounters.nNumInputPackets = 5;
    EXPECT_EQ(Report(s, STATS_LEVEL_DEFAULT), R"(Metadata
  Metadata State        : {MetadataState 1 1024}
  KLV Channel
    Received Packets    : {ULONG 5 1024} (Last One: Never)
    Output Packets      : 0
    Latency             : 0.0ms
)");
}

TEST(MetadataReport, NamesAreListedAsTheyAre)
{
    EXPECT_EQ(ActiveMetadata(Active(0b1111, {"%s%n", "7 chars", "100%", "x"})), "  Active Metadata       : %s%n, 7 chars, 100%, x");
}

TEST(MetadataReport, AnEmptyNameTakesASeparatorOnlyBehindAnother)
{
    // The list is still empty behind a first name without characters, so that the next one has nothing before it.
    EXPECT_EQ(ActiveMetadata(Active(0b0001, {"", "TC", "CC", "AFD"})), "  Active Metadata       : None");
    EXPECT_EQ(ActiveMetadata(Active(0b0011, {"", "TC", "CC", "AFD"})), "  Active Metadata       : TC");
    EXPECT_EQ(ActiveMetadata(Active(0b0111, {"KLV", "", "CC", "AFD"})), "  Active Metadata       : KLV, , CC");
    EXPECT_EQ(ActiveMetadata(Active(0b0011, {"KLV", "", "CC", "AFD"})), "  Active Metadata       : KLV, ");
}

TEST(MetadataReport, NamesWithoutANulEndWithTheirField)
{
    SMGR_METADATADEC_STATS s = Active(0b1111);
    for (SMGR_METADATADEC_CHANNEL_STATS& channel : s.tChannel)
    {
        memset(channel.szName, 'N', sizeof channel.szName);
        channel.enType = static_cast<SMGR_METADATA_CHANNEL_TYPE>(0x59595959); // the field behind: YYYY
    }
    EXPECT_EQ(ActiveMetadata(s), "  Active Metadata       : NNNNNNNN, NNNNNNNN, NNNNNNNN, NNNNNNNN");
}

TEST(MetadataReport, AValidTimecodePrintsAtTheDefaultLevel)
{
    SMGR_METADATADEC_STATS s = IdleStats();
    s.tCounters.tTCValue = {TRUE, 10, 5, 0, 7};
    EXPECT_EQ(LineOf(Report(s, STATS_LEVEL_DEFAULT), "Timecode"), "  Timecode              : 10:05:00:07");
    s.tCounters.tTCValue = {TRUE, 1, 2, 3, 4};
    EXPECT_EQ(LineOf(Report(s, STATS_LEVEL_DEFAULT), "Timecode"), "  Timecode              : 01:02:03:04");
}

TEST(MetadataReport, ATimecodeIsValidAtExactly1)
{
    SMGR_METADATADEC_STATS s = IdleStats();
    for (const BOOL bValid : {0, 2, -1, INT_MIN})
    {
        s.tCounters.tTCValue = {bValid, 10, 5, 0, 7};
        EXPECT_EQ(LineOf(Report(s, STATS_LEVEL_DEFAULT), "Timecode"), "") << bValid;
        EXPECT_EQ(LineOf(Report(s, STATS_LEVEL_DEBUG), "Timecode"), "  Timecode              : 10:05:00:07") << bValid;
    }
}

TEST(MetadataReport, WideTimecodeFieldsAreNotCut)
{
    SMGR_METADATADEC_STATS s = IdleStats();
    s.tCounters.tTCValue = {TRUE, 123, 4, 5, 6};
    EXPECT_EQ(LineOf(Report(s, STATS_LEVEL_DEFAULT), "Timecode"), "  Timecode              : 123:04:05:06");
    s.tCounters.tTCValue = {TRUE, UINT_MAX, 2147483648, 100, 99};
    EXPECT_EQ(LineOf(Report(s, STATS_LEVEL_DEFAULT), "Timecode"), "  Timecode              : 4294967295:2147483648:100:99");
}

TEST(MetadataReport, InputFiguresAreUnsigned)
{
    SMGR_METADATADEC_STATS s = IdleStats();
    s.nInputQOccupancy = UINT_MAX;
    s.tCounters.nNumReceivedPackets = ULONG_MAX;
    EXPECT_EQ(Report(s, STATS_LEVEL_DEBUG).find(R"(Metadata
  Metadata State        : {MetadataState 1 1024}
  Received Packets      : {ULONG 18446744073709551615 1024}
  Input Q Occupancy     : 4294967295
  Timecode              : 00:00:00:00
   Channel
    Type                : 0
)"),
              0u);
}

TEST(MetadataReport, UnknownStatesAreLeftToTheirService)
{
    SMGR_METADATADEC_STATS s = {};
    s.enState = static_cast<SMGR_METADATA_STATE>(INT_MIN);
    EXPECT_EQ(LineOf(Report(s, STATS_LEVEL_DEFAULT), "Metadata State"), "  Metadata State        : {MetadataState -2147483648 1024}");
}

TEST(MetadataReport, NoServiceIsCalledForALineThatDoesNotPrint)
{
    SMGR_METADATADEC_STATS s = DistinctStats();
    for (SMGR_METADATADEC_CHANNEL_STATS& channel : s.tChannel) channel.tCounters.nNumInputPackets = 0;
    ClearServiceCalls();
    Report(s, STATS_LEVEL_DEFAULT);
    EXPECT_EQ(ServiceCalls(), (std::vector<ServiceCall>{{"MetadataState", "2", 1024}}));
}

TEST(MetadataReport, ARecordMayStandOnA4ByteBoundary)
{
    alignas(8) struct
    {
        int nBefore;
        SMGR_METADATADEC_STATS stats;
    } shifted = {1, DistinctStats()};
    ASSERT_EQ(reinterpret_cast<uintptr_t>(&shifted.stats) % 8, 4u);
    EXPECT_EQ(Report(shifted.stats, STATS_LEVEL_DEBUG), Report(DistinctStats(), STATS_LEVEL_DEBUG));
}

TEST(MetadataChannelBlock, WithoutInputPrintsNothingAtTheDefaultLevel)
{
    SMGR_METADATADEC_CHANNEL_STATS channel = DistinctChannel("KLV", SMGR_METADATA_CHANNEL_TYPE_KLV);
    channel.tCounters.nNumInputPackets = 0;
    ClearServiceCalls();
    EXPECT_EQ(Block(channel, STATS_LEVEL_DEFAULT), "");
    EXPECT_TRUE(ServiceCalls().empty());
}

TEST(MetadataChannelBlock, WithoutInputDebugPrintsAll27Lines)
{
    EXPECT_EQ(Block(Channel("TC", SMGR_METADATA_CHANNEL_TYPE_TC), STATS_LEVEL_DEBUG), R"(  TC Channel
    Type                : 1
    Received Packets    : 0
    Synchronous Packets : 0
    Aynchronous Packets : 0
    Output Packets      : 0
    Freed Packets       : 0
    Dropped Packets     : 0
    Output Failed       : 0
    Output Late         : 0
    Payload Bytes       : {ULONG 0 1024} (max={ULONG 0 1024} bytes occurred Never)
    Nonincr. Timestamps : 0
    Pkt List Resets     : 0
    Other Errors        : {ULONG 0 1024}
    Latency             : 0.0ms
    Delay               : 0pkts
    Delay List Occ.     : 0
    Input List Occ.     : 0
    BDs Allocated       : 0
    BDs Allocate Failed : 0
    BDs Written         : 0
    BDs Freed           : 0
    BD Free List Occ.   : 0
    BD Free Head Index  : 0
    BD Used List Occ.   : 0
    BD Used Head Index  : 0
    Output Sent Late    : 0
    Output Lead Time    : 0ms (Min=0ms occurred Never, Max=0ms occurred Never)
)");
}

TEST(MetadataChannelBlock, DistinctValuesInDebug)
{
    EXPECT_EQ(Block(DistinctChannel("KLV", SMGR_METADATA_CHANNEL_TYPE_KLV), STATS_LEVEL_DEBUG), R"(  KLV Channel
    Type                : 0
    Received Packets    : {ULONG 101 1024} (Last One: {UpTime 501 1024} ago)
    Synchronous Packets : {ULONG 102 1024} (Last One: {UpTime 502 1024} ago)
    Aynchronous Packets : {ULONG 103 1024} (Last One: {UpTime 503 1024} ago)
    Output Packets      : {ULONG 104 1024} (Last One: {UpTime 504 1024} ago)
    Freed Packets       : {ULONG 105 1024} (Last One: {UpTime 505 1024} ago)
    Dropped Packets     : {ULONG 106 1024} (Last One: {UpTime 506 1024} ago)
    Output Failed       : {ULONG 107 1024} (Last One: {UpTime 507 1024} ago)
    Output Late         : {ULONG 108 1024} (Last One: {UpTime 508 1024} ago)
    Payload Bytes       : {ULONG 109 1024} (max={ULONG 209 1024} bytes occurred {UpTime 509 1024} ago)
    Nonincr. Timestamps : {ULONG 110 1024} (Last One: {UpTime 510 1024} ago)
    Pkt List Resets     : {ULONG 114 1024} (Last One: {UpTime 514 1024} ago)
    Other Errors        : {ULONG 111 1024}
    Latency             : 33.4ms
    Delay               : 121pkts
    Delay List Occ.     : 122
    Input List Occ.     : 113
    BDs Allocated       : {ULONG 115 1024} (Last One: {UpTime 515 1024} ago)
    BDs Allocate Failed : {ULONG 116 1024} (Last One: {UpTime 516 1024} ago)
    BDs Written         : {ULONG 117 1024} (Last One: {UpTime 517 1024} ago)
    BDs Freed           : {ULONG 118 1024} (Last One: {UpTime 518 1024} ago)
    BD Free List Occ.   : 119
    BD Free Head Index  : 120
    BD Used List Occ.   : 219
    BD Used Head Index  : 220
    Output Sent Late    : {ULONG 123 1024} (Last One: {UpTime 523 1024} ago)
    Output Lead Time    : 124ms (Min=125ms occurred {UpTime 525 1024} ago, Max=126ms occurred {UpTime 526 1024} ago)
)");
}

TEST(MetadataChannelBlock, EveryLevelButDebugPrintsAsTheDefault)
{
    SMGR_METADATADEC_CHANNEL_STATS channel = DistinctChannel("KLV", SMGR_METADATA_CHANNEL_TYPE_KLV);
    const std::string expected = Block(channel, STATS_LEVEL_DEFAULT);
    for (const int nLevel : {2, -1}) EXPECT_EQ(Block(channel, static_cast<STATS_LEVEL>(nLevel)), expected) << nLevel;
    channel.tCounters.nNumInputPackets = 0;
    for (const int nLevel : {2, -1}) EXPECT_EQ(Block(channel, static_cast<STATS_LEVEL>(nLevel)), "") << nLevel;
}

/** The block of a channel with input alone at the default level, with other lines behind its three. */
static std::string InputBlockWith(const std::string& afterInput, const std::string& afterOutput, const std::string& afterLatency)
{
    return "  KLV Channel\n"
           "    Received Packets    : {ULONG 9 1024} (Last One: Never)\n" +
           afterInput + "    Output Packets      : 0\n" + afterOutput + "    Latency             : 0.0ms\n" + afterLatency;
}

static SMGR_METADATADEC_CHANNEL_STATS InputChannel()
{
    SMGR_METADATADEC_CHANNEL_STATS channel = Channel("KLV", SMGR_METADATA_CHANNEL_TYPE_KLV);
    channel.tCounters.nNumInputPackets = 9;
    return channel;
}

TEST(MetadataChannelBlock, WithInputAloneTheDefaultLevelHoldsThreeLines)
{
    EXPECT_EQ(Block(InputChannel(), STATS_LEVEL_DEFAULT), InputBlockWith("", "", ""));
}

TEST(MetadataChannelBlock, AMultipleOf2To32PacketsIsNotZero)
{
    SMGR_METADATADEC_CHANNEL_STATS channel = Channel("KLV", SMGR_METADATA_CHANNEL_TYPE_KLV);
    channel.tCounters.nNumInputPackets = 4294967296;
    channel.tCounters.nNumErrors = 4294967296;
    EXPECT_EQ(Block(channel, STATS_LEVEL_DEFAULT), R"(  KLV Channel
    Received Packets    : {ULONG 4294967296 1024} (Last One: Never)
    Output Packets      : 0
    Other Errors        : {ULONG 4294967296 1024}
    Latency             : 0.0ms
)");
}

TEST(MetadataChannelBlock, EachCounterPrintsAtTheDefaultLevelOnceItHasCounted)
{
    const auto blockWith = [](const auto& change)
    {
        SMGR_METADATADEC_CHANNEL_STATS channel = InputChannel();
        change(channel.tCounters);
        return Block(channel, STATS_LEVEL_DEFAULT);
    };
    using Counters = SMGR_METADATADEC_CHANNEL_COUNTERS;
    EXPECT_EQ(blockWith([](Counters& c) { c.nNumSynchronousPackets = 1; }),
              InputBlockWith("    Synchronous Packets : {ULONG 1 1024} (Last One: Never)\n", "", ""));
    EXPECT_EQ(blockWith([](Counters& c) { c.nNumAsynchronousPackets = 2; }),
              InputBlockWith("    Aynchronous Packets : {ULONG 2 1024} (Last One: Never)\n", "", ""));
    EXPECT_EQ(blockWith([](Counters& c) { c.nNumFreedPackets = 3; }),
              InputBlockWith("", "    Freed Packets       : {ULONG 3 1024} (Last One: Never)\n", ""));
    EXPECT_EQ(blockWith([](Counters& c) { c.nNumDroppedPackets = 4; }),
              InputBlockWith("", "    Dropped Packets     : {ULONG 4 1024} (Last One: Never)\n", ""));
    EXPECT_EQ(blockWith([](Counters& c) { c.nNumOutputFailedPackets = 5; }),
              InputBlockWith("", "    Output Failed       : {ULONG 5 1024} (Last One: Never)\n", ""));
    EXPECT_EQ(blockWith([](Counters& c) { c.nNumOutputFailedLatePackets = 6; }),
              InputBlockWith("", "    Output Late         : {ULONG 6 1024} (Last One: Never)\n", ""));
    EXPECT_EQ(blockWith([](Counters& c) { c.nNumOutputPayloadBytes = 7; }),
              InputBlockWith("", "    Payload Bytes       : {ULONG 7 1024} (max={ULONG 0 1024} bytes occurred Never)\n", ""));
    EXPECT_EQ(blockWith([](Counters& c) { c.nNumNonIncreasingOutputTimestamps = 8; }),
              InputBlockWith("", "    Nonincr. Timestamps : {ULONG 8 1024} (Last One: Never)\n", ""));
    EXPECT_EQ(blockWith([](Counters& c) { c.nNumPacketListResets = 10; }),
              InputBlockWith("", "    Pkt List Resets     : {ULONG 10 1024} (Last One: Never)\n", ""));
    EXPECT_EQ(blockWith([](Counters& c) { c.nNumErrors = 11; }), InputBlockWith("", "    Other Errors        : {ULONG 11 1024}\n", ""));
    EXPECT_EQ(blockWith([](Counters& c) { c.nNumBDAllocateFailed = 12; }),
              InputBlockWith("", "", "    BDs Allocate Failed : {ULONG 12 1024} (Last One: Never)\n"));
}

TEST(MetadataChannelBlock, EngineeringFieldsChangeNothingAtTheDefaultLevel)
{
    SMGR_METADATADEC_CHANNEL_STATS channel = DistinctChannel("KLV", SMGR_METADATA_CHANNEL_TYPE_AFD);
    channel.enState = SMGR_METADATA_STATE_ACTIVE;
    channel.nLatencyInUs = 0;
    SMGR_METADATADEC_CHANNEL_COUNTERS& c = channel.tCounters;
    c.nNumInputPackets = 9;
    c.tLastInputPacket = 0;
    c.nNumOutputPackets = 0;
    // These print once they have counted. Their times and maxima, and all else, stay as they are.
    c.nNumSynchronousPackets = 0;
    c.nNumAsynchronousPackets = 0;
    c.nNumFreedPackets = 0;
    c.nNumDroppedPackets = 0;
    c.nNumOutputFailedPackets = 0;
    c.nNumOutputFailedLatePackets = 0;
    c.nNumOutputPayloadBytes = 0;
    c.nNumNonIncreasingOutputTimestamps = 0;
    c.nNumPacketListResets = 0;
    c.nNumErrors = 0;
    c.nNumBDAllocateFailed = 0;
    EXPECT_EQ(Block(channel, STATS_LEVEL_DEFAULT), InputBlockWith("", "", ""));
}

TEST(MetadataChannelBlock, TypeIsAnUnsignedNumber)
{
    const auto type = [](SMGR_METADATA_CHANNEL_TYPE enType) { return LineOf(Block(Channel("X", enType), STATS_LEVEL_DEBUG), "Type"); };
    EXPECT_EQ(type(SMGR_METADATA_CHANNEL_TYPE_AFD), "    Type                : 3");
    EXPECT_EQ(type(SMGR_METADATA_CHANNEL_TYPE_UNKNOWN), "    Type                : 4294967295");
    EXPECT_EQ(type(static_cast<SMGR_METADATA_CHANNEL_TYPE>(INT_MIN)), "    Type                : 2147483648");
}

TEST(MetadataChannelBlock, LatencyIsInMillisecondsWithOneDecimal)
{
    const auto latency = [](unsigned int nLatencyInUs)
    {
        SMGR_METADATADEC_CHANNEL_STATS channel = InputChannel();
        channel.nLatencyInUs = nLatencyInUs;
        return LineOf(Block(channel, STATS_LEVEL_DEFAULT), "Latency");
    };
    EXPECT_EQ(latency(0), "    Latency             : 0.0ms");
    EXPECT_EQ(latency(1500), "    Latency             : 1.5ms");
    EXPECT_EQ(latency(33367), "    Latency             : 33.4ms");
    EXPECT_EQ(latency(49), "    Latency             : 0.0ms");
    EXPECT_EQ(latency(51), "    Latency             : 0.1ms");
    // Unsigned, and beyond what single precision can tell apart.
    EXPECT_EQ(latency(UINT_MAX), "    Latency             : 4294967.3ms");
    EXPECT_EQ(latency(2147483648), "    Latency             : 2147483.6ms");
}

TEST(MetadataChannelBlock, DelayAndListFiguresAreSigned64Bit)
{
    SMGR_METADATADEC_CHANNEL_STATS channel = {};
    channel.tCounters.nCurrentDelayInPackets = ULONG_MAX;
    channel.tCounters.nNumInDelayList = 9223372036854775808ul;
    channel.tCounters.nNumInPacketList = 9223372036854775809ul;
    channel.tCounters.nNumBDInFreeList = ULONG_MAX - 1;
    channel.tCounters.nNumBDInUsedList = 9223372036854775810ul;
    const std::string text = Block(channel, STATS_LEVEL_DEBUG);
    EXPECT_EQ(LineOf(text, "Delay  "), "    Delay               : -1pkts");
    EXPECT_EQ(LineOf(text, "Delay List Occ."), "    Delay List Occ.     : -9223372036854775808");
    EXPECT_EQ(LineOf(text, "Input List Occ."), "    Input List Occ.     : -9223372036854775807");
    EXPECT_EQ(LineOf(text, "BD Free List Occ."), "    BD Free List Occ.   : -2");
    EXPECT_EQ(LineOf(text, "BD Used List Occ."), "    BD Used List Occ.   : -9223372036854775806");
}

TEST(MetadataChannelBlock, HeadIndicesAndLeadTimesAreSigned)
{
    SMGR_METADATADEC_CHANNEL_STATS channel = {};
    channel.tCounters.nBDFreeListHeadIndex = -1;
    channel.tCounters.nBDUsedListHeadIndex = INT_MIN;
    channel.tCounters.nOutputSTCLeadTime = -3;
    channel.tCounters.nMinOutputSTCLeadTime = -40;
    channel.tCounters.tMinOutputSTCLeadTime = frozen_now - 8;
    channel.tCounters.nMaxOutputSTCLeadTime = INT_MIN;
    const std::string text = Block(channel, STATS_LEVEL_DEBUG);
    EXPECT_EQ(LineOf(text, "BD Free Head Index"), "    BD Free Head Index  : -1");
    EXPECT_EQ(LineOf(text, "BD Used Head Index"), "    BD Used Head Index  : -2147483648");
    EXPECT_EQ(LineOf(text, "Output Lead Time"),
              "    Output Lead Time    : -3ms (Min=-40ms occurred {UpTime 8 1024} ago, Max=-2147483648ms occurred Never)");
}

TEST(MetadataChannelBlock, CountersAreUnsignedTo64Bits)
{
    SMGR_METADATADEC_CHANNEL_STATS channel = InputChannel();
    channel.tCounters.nNumOutputPayloadBytes = ULONG_MAX;
    channel.tCounters.nMaxOutputPayloadBytes = 9223372036854775808ul;
    channel.tCounters.nNumErrors = 9223372036854775809ul;
    const std::string text = Block(channel, STATS_LEVEL_DEFAULT);
    EXPECT_EQ(LineOf(text, "Payload Bytes"),
              "    Payload Bytes       : {ULONG 18446744073709551615 1024} (max={ULONG 9223372036854775808 1024} bytes occurred Never)");
    EXPECT_EQ(LineOf(text, "Other Errors"), "    Other Errors        : {ULONG 9223372036854775809 1024}");
}

TEST(MetadataChannelBlock, NameIsPrintedAsItIs)
{
    EXPECT_EQ(Block(Channel("%s%n", SMGR_METADATA_CHANNEL_TYPE_KLV), STATS_LEVEL_DEBUG).find("  %s%n Channel\n"), 0u);
    EXPECT_EQ(Block(Channel("", SMGR_METADATA_CHANNEL_TYPE_KLV), STATS_LEVEL_DEBUG).find("   Channel\n"), 0u);
}

TEST(MetadataChannelBlock, ANameWithoutANulEndsWithItsField)
{
    SMGR_METADATADEC_CHANNEL_STATS channel = InputChannel();
    memset(channel.szName, 'N', sizeof channel.szName);
    channel.enType = static_cast<SMGR_METADATA_CHANNEL_TYPE>(0x59595959); // the field behind: YYYY
    EXPECT_EQ(Block(channel, STATS_LEVEL_DEFAULT).find("  NNNNNNNN Channel\n"), 0u);
}
