#include <gtest/gtest.h>

#include <climits>

#include "blocks.h"
#include "capture.h"
#include "frozen_clock.h"
#include "recording_services.h"
#include "stats.h"

static std::string Report(const SMGR_DECODER_AUDIO_STATS& stats, STATS_LEVEL nLevel)
{
    BOOL bResult = FALSE;
    const std::string text = Capture([&] { bResult = STATS_PrintForAudioDecoder(&stats, nLevel); });
    EXPECT_EQ(bResult, TRUE);
    return text;
}

static std::string Block(const SMGR_AUDIO_PAIR_STATS& pair, STATS_LEVEL nLevel, UINT nPairID = 0)
{
    return Capture([&] { _PrintAudioChannel(&pair, nPairID, nLevel); });
}

/** A number of its own for every field: event 1xx was 5xx seconds ago. */
static SMGR_AUDIO_PAIR_STATS DistinctPair()
{
    SMGR_AUDIO_PAIR_STATS p = {};
    p.nSize = 101;
    p.enMode = 102;
    p.enAlgorithm = SMGR_TDEMUX_COMPRESSION_TYPE_AC3;
    p.nSampleRateIn = 104;
    p.nBitRateInKbps = 105;
    p.nInputChannels = 106;
    p.nOutputChannels = 107;
    p.nReceivedFrames = 108;
    p.tLastReceivedFrame = frozen_now - 508;
    p.nDecodedFrames = 109;
    p.tLastDecodedFrame = frozen_now - 509;
    p.nDecodedBytes = 110;
    p.nOutputFrames = 111;
    p.tLastOutputFrame = frozen_now - 511;
    p.nSampleRateOut = 112;
    p.nSkippedFrames = 113;
    p.tLastSkippedFrame = frozen_now - 513;
    p.nDecoderErrors = 114;
    p.tLastDecoderError = frozen_now - 514;
    p.nOutputErrors = 115;
    p.tLastOutputError = frozen_now - 515;
    p.nOutQueueLength = 116;
    p.nMaxOutQueueLen = 117;
    p.nCurFpgaWteId = 118;
    p.nCurFpgaReadId = 119;
    p.nTSDiscontinuity = 120;
    p.tLastIntervalTime = {frozen_now - 521, 121};
    p.nMinWteToFpgaIntervalInMs = 122;
    p.nMaxWteToFpgaIntervalInMs = 123;
    p.nLastWteToFpgaIntervalInMs = 124;
    p.iAudioVideoTSDiffInMs = 125;
    p.nAudioTimeStamp = 126;
    p.nVideoTimeStamp = 127;
    p.iLastError = 128;
    p.nInTSDiscontinuity = 129;
    p.nCurSTCLeadTimeMs = 130;
    p.nMinSTCLeadTimeMs = 131;
    p.tMinSTCLeadTime = frozen_now - 531;
    p.nMaxSTCLeadTimeMs = 182;
    p.tMaxSTCLeadTime = frozen_now - 532;
    p.tLastRxFrameTime = {frozen_now - 533, 133};
    p.nLastProcessTimeUs = 134;
    p.nMinProcessTimeUs = 135;
    p.tMinProcessTime = frozen_now - 535;
    p.nMaxProcessTimeUs = 236;
    p.tMaxProcessTime = frozen_now - 536;
    return p;
}

/** Pairs 1 and 6 have decoded frames; pair 3 has not, whatever else it holds. */
static SMGR_DECODER_AUDIO_STATS DistinctStats()
{
    SMGR_DECODER_AUDIO_STATS s = {};
    s.nSize = 1;
    s.enState = SMGR_AUDDEC_STATE_ACTIVE;
    s.nNumOfPairs = 4;
    s.nReceivedFrames = 1101;
    s.tLastReceivedFrame = frozen_now - 601;
    s.nDecodedFrames = 1102;
    s.tLastDecodedFrame = frozen_now - 602;
    s.nOutputFrames = 900;
    s.tLastOutputFrame = frozen_now - 603;
    s.nSkippedFrames = 75;
    s.tLastSkippedFrame = frozen_now - 604;
    s.nOutputErrors = 25;
    s.tLastOutputError = frozen_now - 605;
    s.nReleasedFrames = 1106;
    s.tLastReleasedFrame = frozen_now - 606;
    s.nErrors = 7;
    s.nPendingDecodeRequests = 8;
    s.nCurDecodedQueueLength = 9;
    s.nTSDiscontinuity = 10;
    s.nADelayInputMS = 11;
    s.nADelayOutputMS = 12345;
    s.nARxFramesJitterMS = 13;
    s.nALastMaxRxFramesJitterMS = 14;
    s.PairStats[0].nDecodedFrames = 1;
    s.PairStats[2] = DistinctPair();
    s.PairStats[2].nDecodedFrames = 0;
    s.PairStats[5] = DistinctPair();
    return s;
}

static SMGR_DECODER_AUDIO_STATS IdleStats()
{
    SMGR_DECODER_AUDIO_STATS s = {};
    s.enState = SMGR_AUDDEC_STATE_IDLE;
    return s;
}

/** The idle report at the default level, with other lines behind it. */
static std::string IdleReportWith(const std::string& after)
{
    return R"(Audio
  Audio Decoder State   : {AudioDecoderState 1 159}
  Number of Pairs       : 0
)" + after;
}

TEST(AudioReport, IdleAtTheDefaultLevelHoldsStateAndNumberOfPairsAlone)
{
    EXPECT_EQ(Report(IdleStats(), STATS_LEVEL_DEFAULT), IdleReportWith(""));
}

TEST(AudioReport, IdleInDebug)
{
    EXPECT_EQ(Report(IdleStats(), STATS_LEVEL_DEBUG), R"(Audio
  Audio Decoder State   : {AudioDecoderState 1 159}
  Number of Pairs       : 0
  Received Frames       : 0
  Received Frames Freed : 0
  Decoded Frames        : 0
  Played Output Frames  : 0 [0.0000%] (Last One: Never)
  Skipped Output Frames : 0 [0.0000%] (Last One: Never)
  Output Errors         : 0 [0.0000%] (Last One: Never)
  Pending Requests      : 0
  Current Queue Length  : 0
  Audio Delay from FRAMER
    Decoder IN          :    0 ms
    Decoder OUT         :    0 ms
  TS Discontinuities    : 0
  Errors                : 0
)");
}

TEST(AudioReport, DistinctValuesAtTheDefaultLevel)
{
    EXPECT_EQ(Report(DistinctStats(), STATS_LEVEL_DEFAULT), R"(Audio
  Audio Decoder State   : {AudioDecoderState 2 159}
  Number of Pairs       : 4
  Played Output Frames  : {ULONG 900 159} [90.0000%] (Last One: {UpTime 603 159} ago)
  Skipped Output Frames : {ULONG 75 159} [7.5000%] (Last One: {UpTime 604 159} ago)
  Output Errors         : {ULONG 25 159} [2.5000%] (Last One: {UpTime 605 159} ago)
  TS Discontinuities    : 10
  Errors                : 7
  AUDIO PAIR #1
    Compression         : {TDemuxCompressionType 0 1024}
    Bit Rate            : {BitRate 0 1024}
    A/V Sync            : 0ms (Video TS 0, Audio TS 0))"
                                                            " \n"
                                                            R"(    TS Discontinuities  : 0
    Decoder Errors      : 0
    Output Errors       : 0
    Sample Rate In      : 0 Hz
    Sample Rate Out     : 0 Hz
  AUDIO PAIR #6
    Compression         : {TDemuxCompressionType 2002 1024}
    Bit Rate            : {BitRate 105 1024}
    A/V Sync            : 125ms (Video TS 127, Audio TS 126))"
                                                            " \n"
                                                            R"(    TS Discontinuities  : 120
    Decoder Errors      : {ULONG 114 1024} (Last One: {UpTime 514 1024} ago)
    Output Errors       : {ULONG 115 1024} (Last One: {UpTime 515 1024} ago)
    Sample Rate In      : 104 Hz
    Sample Rate Out     : 112 Hz
)");
}

TEST(AudioReport, DistinctValuesInDebug)
{
    EXPECT_EQ(Report(DistinctStats(), STATS_LEVEL_DEBUG), R"(Audio
  Audio Decoder State   : {AudioDecoderState 2 159}
  Number of Pairs       : 4
  Received Frames       : {ULONG 1101 1024} (Last One: {UpTime 601 1024} ago)
  Received Frames Freed : {ULONG 1106 1024} (Last One: {UpTime 606 1024} ago)
  Decoded Frames        : {ULONG 1102 1024} (Last One: {UpTime 602 1024} ago)
  Played Output Frames  : {ULONG 900 159} [90.0000%] (Last One: {UpTime 603 159} ago)
  Skipped Output Frames : {ULONG 75 159} [7.5000%] (Last One: {UpTime 604 159} ago)
  Output Errors         : {ULONG 25 159} [2.5000%] (Last One: {UpTime 605 159} ago)
  Pending Requests      : 8
  Current Queue Length  : 9
  Audio Delay from FRAMER
    Decoder IN          :   11 ms
    Decoder OUT         : 12345 ms
    Rx Frames Jitter    :   13 ms )"
                                                          "\t"
                                                          R"((Last 10 sec: Max Rx Frames Jitter:  14 ms )
  TS Discontinuities    : 10
  Errors                : 7
  AUDIO PAIR #1
    Compression         : {TDemuxCompressionType 0 1024}
    Bit Rate            : {BitRate 0 1024}
    A/V Sync            : 0ms (Video TS 0, Audio TS 0))"
                                                          " \n"
                                                          R"(    TS Discontinuities  : 0
    Decoder Errors      : 0
    Output Errors       : 0
    Sample Rate In      : 0 Hz
    Sample Rate Out     : 0 Hz
    Audio Channels In   : 0
    Audio Channels Out  : 0
    Decoded Frames      : {ULONG 1 1024} (Last One: Never)
    Played Output Frms  : 0
    Skipped Output Frms : 0
    Output Queue        : 0 frames (Max=0 frames)
    Interval To Output  : 0ms (Min=0ms, Max=0ms)
    STC Lead Time       : 0ms (Min=0ms occurred Never, Max=0ms occurred Never, Range=0ms)
    Process Time        : 0us (Min=0us occurred Never, Max=0us occurred Never, Range=0us)
  AUDIO PAIR #6
    Compression         : {TDemuxCompressionType 2002 1024}
    Bit Rate            : {BitRate 105 1024}
    A/V Sync            : 125ms (Video TS 127, Audio TS 126))"
                                                          " \n"
                                                          R"(    TS Discontinuities  : 120
    Decoder Errors      : {ULONG 114 1024} (Last One: {UpTime 514 1024} ago)
    Output Errors       : {ULONG 115 1024} (Last One: {UpTime 515 1024} ago)
    Sample Rate In      : 104 Hz
    Sample Rate Out     : 112 Hz
    Audio Channels In   : 106
    Audio Channels Out  : 107
    Decoded Frames      : {ULONG 109 1024} (Last One: {UpTime 509 1024} ago)
    Played Output Frms  : {ULONG 111 1024} (Last One: {UpTime 511 1024} ago)
    Skipped Output Frms : {ULONG 113 1024} (Last One: {UpTime 513 1024} ago)
    Output Queue        : 116 frames (Max=117 frames)
    Interval To Output  : 124ms (Min=122ms, Max=123ms)
    STC Lead Time       : 130ms (Min=131ms occurred {UpTime 531 1024} ago, Max=182ms occurred {UpTime 532 1024} ago, Range=51ms)
    Process Time        : 134us (Min=135us occurred {UpTime 535 1024} ago, Max=236us occurred {UpTime 536 1024} ago, Range=101us)
)");
}

TEST(AudioReport, EveryLevelButDebugPrintsAsTheDefault)
{
    const SMGR_DECODER_AUDIO_STATS s = DistinctStats();
    const std::string expected = Report(s, STATS_LEVEL_DEFAULT);
    for (const int nLevel : {2, -1, INT_MAX, INT_MIN}) EXPECT_EQ(Report(s, static_cast<STATS_LEVEL>(nLevel)), expected) << nLevel;
}

TEST(AudioReport, EngineeringFieldsChangeNothingAtTheDefaultLevel)
{
    SMGR_DECODER_AUDIO_STATS s = DistinctStats();
    s.enState = SMGR_AUDDEC_STATE_IDLE;
    s.nNumOfPairs = 0;
    // These print once they have counted. Their times, and all else, stay as they are.
    s.nOutputFrames = 0;
    s.nSkippedFrames = 0;
    s.nOutputErrors = 0;
    s.nTSDiscontinuity = 0;
    s.nErrors = 0;
    for (SMGR_AUDIO_PAIR_STATS& pair : s.PairStats) pair.nDecodedFrames = 0;
    EXPECT_EQ(Report(s, STATS_LEVEL_DEFAULT), IdleReportWith(""));
}

TEST(AudioReport, EachOutcomeAloneAtTheDefaultLevel)
{
    SMGR_DECODER_AUDIO_STATS s = IdleStats();
    s.nOutputFrames = 3;
    s.tLastOutputFrame = frozen_now - 30;
    EXPECT_EQ(Report(s, STATS_LEVEL_DEFAULT),
              IdleReportWith("  Played Output Frames  : {ULONG 3 159} [100.0000%] (Last One: {UpTime 30 159} ago)\n"));
    s = IdleStats();
    s.nSkippedFrames = 4;
    s.tLastSkippedFrame = frozen_now - 40;
    EXPECT_EQ(Report(s, STATS_LEVEL_DEFAULT),
              IdleReportWith("  Skipped Output Frames : {ULONG 4 159} [100.0000%] (Last One: {UpTime 40 159} ago)\n"));
    s = IdleStats();
    s.nOutputErrors = 5;
    EXPECT_EQ(Report(s, STATS_LEVEL_DEFAULT), IdleReportWith("  Output Errors         : {ULONG 5 159} [100.0000%] (Last One: Never)\n"));
}

TEST(AudioReport, WithoutOutputDebugPrintsFixedTextsWhateverTheTimes)
{
    SMGR_DECODER_AUDIO_STATS s = IdleStats();
    // Neither part of the sum nor looked at.
    s.nReceivedFrames = 10;
    s.nDecodedFrames = 9;
    s.nReleasedFrames = 8;
    s.tLastOutputFrame = frozen_now - 1;
    s.tLastSkippedFrame = frozen_now - 2;
    s.tLastOutputError = frozen_now - 3;
    const std::string text = Report(s, STATS_LEVEL_DEBUG);
    EXPECT_EQ(LineOf(text, "Played Output Frames"), "  Played Output Frames  : 0 [0.0000%] (Last One: Never)");
    EXPECT_EQ(LineOf(text, "Skipped Output Frames"), "  Skipped Output Frames : 0 [0.0000%] (Last One: Never)");
    EXPECT_EQ(LineOf(text, "Output Errors"), "  Output Errors         : 0 [0.0000%] (Last One: Never)");
}

TEST(AudioReport, WithSomeOutputDebugComputesEveryShare)
{
    SMGR_DECODER_AUDIO_STATS s = IdleStats();
    s.nSkippedFrames = 4;
    s.tLastOutputFrame = frozen_now - 1;
    const std::string text = Report(s, STATS_LEVEL_DEBUG);
    EXPECT_EQ(LineOf(text, "Played Output Frames"), "  Played Output Frames  : {ULONG 0 159} [0.0000%] (Last One: {UpTime 1 159} ago)");
    EXPECT_EQ(LineOf(text, "Skipped Output Frames"), "  Skipped Output Frames : {ULONG 4 159} [100.0000%] (Last One: Never)");
    EXPECT_EQ(LineOf(text, "Output Errors"), "  Output Errors         : {ULONG 0 159} [0.0000%] (Last One: Never)");
}

TEST(AudioReport, SharesHaveFourDecimals)
{
    SMGR_DECODER_AUDIO_STATS s = IdleStats();
    s.nOutputFrames = 2;
    s.nSkippedFrames = 1;
    EXPECT_EQ(Report(s, STATS_LEVEL_DEFAULT), IdleReportWith("  Played Output Frames  : {ULONG 2 159} [66.6667%] (Last One: Never)\n"
                                                             "  Skipped Output Frames : {ULONG 1 159} [33.3333%] (Last One: Never)\n"));
    // 2300 / 640 is 3.59375, which is rounded to even; 23 / 640 is not exact, and times 100 falls just below 3.59375.
    s.nOutputFrames = 23;
    s.nSkippedFrames = 617;
    EXPECT_EQ(Report(s, STATS_LEVEL_DEFAULT), IdleReportWith("  Played Output Frames  : {ULONG 23 159} [3.5938%] (Last One: Never)\n"
                                                             "  Skipped Output Frames : {ULONG 617 159} [96.4062%] (Last One: Never)\n"));
}

TEST(AudioReport, SharesAreOfUnsigned64BitCounts)
{
    SMGR_DECODER_AUDIO_STATS s = IdleStats();
    s.nOutputFrames = ULONG_MAX;
    EXPECT_EQ(Report(s, STATS_LEVEL_DEFAULT),
              IdleReportWith("  Played Output Frames  : {ULONG 18446744073709551615 159} [100.0000%] (Last One: Never)\n"));
    s.nOutputFrames = 9223372036854775808ul;
    s.nOutputErrors = 3074457345618258602ul; // a third of it, rounded down
    EXPECT_EQ(Report(s, STATS_LEVEL_DEFAULT),
              IdleReportWith("  Played Output Frames  : {ULONG 9223372036854775808 159} [75.0000%] (Last One: Never)\n"
                             "  Output Errors         : {ULONG 3074457345618258602 159} [25.0000%] (Last One: Never)\n"));
}

TEST(AudioReport, ASumThatWrapsTo0CountsAsNoOutput)
{
    SMGR_DECODER_AUDIO_STATS s = IdleStats();
    s.nOutputFrames = 9223372036854775808ul;
    s.nSkippedFrames = 9223372036854775807ul;
    s.nOutputErrors = 1;
    s.tLastOutputFrame = frozen_now - 1;
    EXPECT_EQ(Report(s, STATS_LEVEL_DEFAULT), IdleReportWith(""));
    const std::string text = Report(s, STATS_LEVEL_DEBUG);
    EXPECT_EQ(LineOf(text, "Played Output Frames"), "  Played Output Frames  : 0 [0.0000%] (Last One: Never)");
    EXPECT_EQ(LineOf(text, "Skipped Output Frames"), "  Skipped Output Frames : 0 [0.0000%] (Last One: Never)");
    EXPECT_EQ(LineOf(text, "Output Errors"), "  Output Errors         : 0 [0.0000%] (Last One: Never)");
}

TEST(AudioReport, ASumThatWrapsElsewhereIsTakenAsItIs)
{
    SMGR_DECODER_AUDIO_STATS s = IdleStats();
    s.nOutputFrames = ULONG_MAX; // 2^64 in double precision
    s.nSkippedFrames = 2;        // the sum is 1
    EXPECT_EQ(Report(s, STATS_LEVEL_DEFAULT),
              IdleReportWith("  Played Output Frames  : {ULONG 18446744073709551615 159} [1844674407370955161600.0000%] (Last One: Never)\n"
                             "  Skipped Output Frames : {ULONG 2 159} [200.0000%] (Last One: Never)\n"));
}

TEST(AudioReport, NumberOfPairsIsSignedAndDoesNotChooseThePairs)
{
    SMGR_DECODER_AUDIO_STATS s = IdleStats();
    s.nNumOfPairs = 2;
    s.PairStats[5].nDecodedFrames = 1;
    const std::string text = Report(s, STATS_LEVEL_DEFAULT);
    EXPECT_EQ(LineOf(text, "Number of Pairs"), "  Number of Pairs       : 2");
    EXPECT_EQ(LineOf(text, "AUDIO PAIR"), "  AUDIO PAIR #6");
    s.nNumOfPairs = -1;
    EXPECT_EQ(LineOf(Report(s, STATS_LEVEL_DEFAULT), "Number of Pairs"), "  Number of Pairs       : -1");
    EXPECT_EQ(LineOf(Report(s, STATS_LEVEL_DEFAULT), "AUDIO PAIR"), "  AUDIO PAIR #6");
}

TEST(AudioReport, AllEightPairsPrintInOrder)
{
    SMGR_DECODER_AUDIO_STATS s = IdleStats();
    int nAlgorithm = 2000;
    for (SMGR_AUDIO_PAIR_STATS& pair : s.PairStats)
    {
        pair.nDecodedFrames = 1;
        pair.enAlgorithm = nAlgorithm++;
    }
    std::string headings;
    for (const std::string& line : CaptureLines([&] { STATS_PrintForAudioDecoder(&s, STATS_LEVEL_DEFAULT); }))
        if (line.find("AUDIO PAIR") != std::string::npos || line.find("Compression") != std::string::npos) headings += line + "\n";
    EXPECT_EQ(headings, R"(  AUDIO PAIR #1
    Compression         : {TDemuxCompressionType 2000 1024}
  AUDIO PAIR #2
    Compression         : {TDemuxCompressionType 2001 1024}
  AUDIO PAIR #3
    Compression         : {TDemuxCompressionType 2002 1024}
  AUDIO PAIR #4
    Compression         : {TDemuxCompressionType 2003 1024}
  AUDIO PAIR #5
    Compression         : {TDemuxCompressionType 2004 1024}
  AUDIO PAIR #6
    Compression         : {TDemuxCompressionType 2005 1024}
  AUDIO PAIR #7
    Compression         : {TDemuxCompressionType 2006 1024}
  AUDIO PAIR #8
    Compression         : {TDemuxCompressionType 2007 1024}
)");
}

TEST(AudioReport, JitterPrintsInDebugOnceMeasured)
{
    SMGR_DECODER_AUDIO_STATS s = IdleStats();
    s.nALastMaxRxFramesJitterMS = 14;
    EXPECT_EQ(LineOf(Report(s, STATS_LEVEL_DEBUG), "Jitter"), "");
    s.nARxFramesJitterMS = 1;
    EXPECT_EQ(LineOf(Report(s, STATS_LEVEL_DEBUG), "Rx Frames Jitter  "),
              "    Rx Frames Jitter    :    1 ms \t(Last 10 sec: Max Rx Frames Jitter:  14 ms )");
    s.nARxFramesJitterMS = UINT_MAX;
    s.nALastMaxRxFramesJitterMS = UINT_MAX;
    EXPECT_EQ(LineOf(Report(s, STATS_LEVEL_DEBUG), "Rx Frames Jitter  "),
              "    Rx Frames Jitter    : 4294967295 ms \t(Last 10 sec: Max Rx Frames Jitter:  4294967295 ms )");
    EXPECT_EQ(Report(s, STATS_LEVEL_DEFAULT), IdleReportWith(""));
}

TEST(AudioReport, TimeStampDiscontinuitiesPrintOnceTheyHappenedAndAreUnsigned)
{
    SMGR_DECODER_AUDIO_STATS s = IdleStats();
    s.nTSDiscontinuity = 1;
    EXPECT_EQ(Report(s, STATS_LEVEL_DEFAULT), IdleReportWith("  TS Discontinuities    : 1\n"));
    s.nTSDiscontinuity = UINT_MAX;
    EXPECT_EQ(Report(s, STATS_LEVEL_DEFAULT), IdleReportWith("  TS Discontinuities    : 4294967295\n"));
}

TEST(AudioReport, ErrorsPrintOnceTheyHappenedAndAreSigned)
{
    SMGR_DECODER_AUDIO_STATS s = IdleStats();
    s.nErrors = 2147483647;
    EXPECT_EQ(Report(s, STATS_LEVEL_DEFAULT), IdleReportWith("  Errors                : 2147483647\n"));
    s.nErrors = 2147483649;
    EXPECT_EQ(Report(s, STATS_LEVEL_DEFAULT), IdleReportWith("  Errors                : -2147483647\n"));
    s.nErrors = UINT_MAX;
    EXPECT_EQ(Report(s, STATS_LEVEL_DEFAULT), IdleReportWith("  Errors                : -1\n"));
}

TEST(AudioReport, QueueAndDelayFiguresAreSigned)
{
    SMGR_DECODER_AUDIO_STATS s = IdleStats();
    s.nPendingDecodeRequests = UINT_MAX;
    s.nCurDecodedQueueLength = 2147483648;
    s.nADelayInputMS = UINT_MAX - 1;
    s.nADelayOutputMS = 2147483649;
    const std::string text = Report(s, STATS_LEVEL_DEBUG);
    EXPECT_EQ(LineOf(text, "Pending Requests"), "  Pending Requests      : -1");
    EXPECT_EQ(LineOf(text, "Current Queue Length"), "  Current Queue Length  : -2147483648");
    EXPECT_EQ(LineOf(text, "Decoder IN"), "    Decoder IN          :   -2 ms");
    EXPECT_EQ(LineOf(text, "Decoder OUT"), "    Decoder OUT         : -2147483647 ms");
}

TEST(AudioReport, UnknownStatesAreLeftToTheirService)
{
    SMGR_DECODER_AUDIO_STATS s = {};
    s.enState = INT_MIN;
    EXPECT_EQ(LineOf(Report(s, STATS_LEVEL_DEFAULT), "Audio Decoder State"),
              "  Audio Decoder State   : {AudioDecoderState -2147483648 159}");
}

TEST(AudioReport, NoServiceIsCalledForALineThatDoesNotPrint)
{
    ClearServiceCalls();
    Report(IdleStats(), STATS_LEVEL_DEFAULT);
    EXPECT_EQ(ServiceCalls(), (std::vector<ServiceCall>{{"AudioDecoderState", "1", 159}}));
    ClearServiceCalls();
    Report(IdleStats(), STATS_LEVEL_DEBUG);
    EXPECT_EQ(ServiceCalls(), (std::vector<ServiceCall>{{"AudioDecoderState", "1", 159}}));
}

TEST(AudioPairBlock, WithoutDecodedFramesPrintsNothing)
{
    SMGR_AUDIO_PAIR_STATS p = DistinctPair();
    p.nDecodedFrames = 0;
    ClearServiceCalls();
    EXPECT_EQ(Block(p, STATS_LEVEL_DEFAULT), "");
    EXPECT_EQ(Block(p, STATS_LEVEL_DEBUG), "");
    EXPECT_TRUE(ServiceCalls().empty());
}

TEST(AudioPairBlock, AMultipleOf2To32DecodedFramesIsNotZero)
{
    SMGR_AUDIO_PAIR_STATS p = {};
    p.nDecodedFrames = 4294967296;
    EXPECT_EQ(LineOf(Block(p, STATS_LEVEL_DEBUG), "Decoded Frames"), "    Decoded Frames      : {ULONG 4294967296 1024} (Last One: Never)");
}

TEST(AudioPairBlock, DistinctValuesAtTheDefaultLevelEndAfterTheSampleRates)
{
    EXPECT_EQ(Block(DistinctPair(), STATS_LEVEL_DEFAULT, 2), R"(  AUDIO PAIR #3
    Compression         : {TDemuxCompressionType 2002 1024}
    Bit Rate            : {BitRate 105 1024}
    A/V Sync            : 125ms (Video TS 127, Audio TS 126))"
                                                             " \n"
                                                             R"(    TS Discontinuities  : 120
    Decoder Errors      : {ULONG 114 1024} (Last One: {UpTime 514 1024} ago)
    Output Errors       : {ULONG 115 1024} (Last One: {UpTime 515 1024} ago)
    Sample Rate In      : 104 Hz
    Sample Rate Out     : 112 Hz
)");
}

TEST(AudioPairBlock, DistinctValuesInDebug)
{
    EXPECT_EQ(Block(DistinctPair(), STATS_LEVEL_DEBUG, 2), R"(  AUDIO PAIR #3
    Compression         : {TDemuxCompressionType 2002 1024}
    Bit Rate            : {BitRate 105 1024}
    A/V Sync            : 125ms (Video TS 127, Audio TS 126))"
                                                           " \n"
                                                           R"(    TS Discontinuities  : 120
    Decoder Errors      : {ULONG 114 1024} (Last One: {UpTime 514 1024} ago)
    Output Errors       : {ULONG 115 1024} (Last One: {UpTime 515 1024} ago)
    Sample Rate In      : 104 Hz
    Sample Rate Out     : 112 Hz
    Audio Channels In   : 106
    Audio Channels Out  : 107
    Decoded Frames      : {ULONG 109 1024} (Last One: {UpTime 509 1024} ago)
    Played Output Frms  : {ULONG 111 1024} (Last One: {UpTime 511 1024} ago)
    Skipped Output Frms : {ULONG 113 1024} (Last One: {UpTime 513 1024} ago)
    Output Queue        : 116 frames (Max=117 frames)
    Interval To Output  : 124ms (Min=122ms, Max=123ms)
    STC Lead Time       : 130ms (Min=131ms occurred {UpTime 531 1024} ago, Max=182ms occurred {UpTime 532 1024} ago, Range=51ms)
    Process Time        : 134us (Min=135us occurred {UpTime 535 1024} ago, Max=236us occurred {UpTime 536 1024} ago, Range=101us)
)");
}

TEST(AudioPairBlock, EveryLevelButDebugPrintsAsTheDefault)
{
    const std::string expected = Block(DistinctPair(), STATS_LEVEL_DEFAULT);
    for (const int nLevel : {2, -1}) EXPECT_EQ(Block(DistinctPair(), static_cast<STATS_LEVEL>(nLevel)), expected) << nLevel;
}

TEST(AudioPairBlock, PairsAreNumberedFrom1)
{
    SMGR_AUDIO_PAIR_STATS p = {};
    p.nDecodedFrames = 1;
    EXPECT_EQ(LineOf(Block(p, STATS_LEVEL_DEFAULT, 0), "AUDIO PAIR"), "  AUDIO PAIR #1");
    EXPECT_EQ(LineOf(Block(p, STATS_LEVEL_DEFAULT, 7), "AUDIO PAIR"), "  AUDIO PAIR #8");
    EXPECT_EQ(LineOf(Block(p, STATS_LEVEL_DEFAULT, UINT_MAX - 1), "AUDIO PAIR"), "  AUDIO PAIR #4294967295");
}

TEST(AudioPairBlock, AudioBehindVideoIsNegative)
{
    SMGR_AUDIO_PAIR_STATS p = DistinctPair();
    p.iAudioVideoTSDiffInMs = -40;
    EXPECT_EQ(LineOf(Block(p, STATS_LEVEL_DEFAULT), "A/V Sync"), "    A/V Sync            : -40ms (Video TS 127, Audio TS 126) ");
    p.iAudioVideoTSDiffInMs = INT_MIN;
    p.nVideoTimeStamp = UINT_MAX;
    p.nAudioTimeStamp = 2147483648;
    EXPECT_EQ(LineOf(Block(p, STATS_LEVEL_DEFAULT), "A/V Sync"),
              "    A/V Sync            : -2147483648ms (Video TS 4294967295, Audio TS 2147483648) ");
}

TEST(AudioPairBlock, BitRateIsHandedOnInKilobits)
{
    SMGR_AUDIO_PAIR_STATS p = DistinctPair();
    p.nBitRateInKbps = 256;
    EXPECT_EQ(LineOf(Block(p, STATS_LEVEL_DEFAULT), "Bit Rate"), "    Bit Rate            : {BitRate 256 1024}");
    p.nBitRateInKbps = -1; // through unsigned int
    EXPECT_EQ(LineOf(Block(p, STATS_LEVEL_DEFAULT), "Bit Rate"), "    Bit Rate            : {BitRate 4294967295 1024}");
}

TEST(AudioPairBlock, RangesAreMaximumLessMinimum)
{
    // The lines of the two ranges, both with these extremes and without times.
    const auto ranges = [](int nMin, int nMax)
    {
        SMGR_AUDIO_PAIR_STATS p = {};
        p.nDecodedFrames = 1;
        p.nMinSTCLeadTimeMs = nMin;
        p.nMaxSTCLeadTimeMs = nMax;
        p.nMinProcessTimeUs = nMin;
        p.nMaxProcessTimeUs = nMax;
        const std::string text = Block(p, STATS_LEVEL_DEBUG);
        return LineOf(text, "STC Lead Time") + "\n" + LineOf(text, "Process Time");
    };
    EXPECT_EQ(ranges(-5, 20), "    STC Lead Time       : 0ms (Min=-5ms occurred Never, Max=20ms occurred Never, Range=25ms)\n"
                              "    Process Time        : 0us (Min=-5us occurred Never, Max=20us occurred Never, Range=25us)");
    EXPECT_EQ(ranges(20, 5), "    STC Lead Time       : 0ms (Min=20ms occurred Never, Max=5ms occurred Never, Range=-15ms)\n"
                             "    Process Time        : 0us (Min=20us occurred Never, Max=5us occurred Never, Range=-15us)");
    // 2^31 - 1 - -2^31 is 2^32 - 1, and the other way round 1 - 2^32.
    EXPECT_EQ(ranges(INT_MIN, INT_MAX),
              "    STC Lead Time       : 0ms (Min=-2147483648ms occurred Never, Max=2147483647ms occurred Never, Range=-1ms)\n"
              "    Process Time        : 0us (Min=-2147483648us occurred Never, Max=2147483647us occurred Never, Range=-1us)");
    EXPECT_EQ(ranges(INT_MAX, INT_MIN),
              "    STC Lead Time       : 0ms (Min=2147483647ms occurred Never, Max=-2147483648ms occurred Never, Range=1ms)\n"
              "    Process Time        : 0us (Min=2147483647us occurred Never, Max=-2147483648us occurred Never, Range=1us)");
    EXPECT_EQ(ranges(INT_MIN, 0),
              "    STC Lead Time       : 0ms (Min=-2147483648ms occurred Never, Max=0ms occurred Never, Range=-2147483648ms)\n"
              "    Process Time        : 0us (Min=-2147483648us occurred Never, Max=0us occurred Never, Range=-2147483648us)");
}

TEST(AudioPairBlock, CurrentLeadAndProcessTimeAreSigned)
{
    SMGR_AUDIO_PAIR_STATS p = {};
    p.nDecodedFrames = 1;
    p.nCurSTCLeadTimeMs = -3;
    p.nLastProcessTimeUs = INT_MIN;
    const std::string text = Block(p, STATS_LEVEL_DEBUG);
    EXPECT_EQ(LineOf(text, "STC Lead Time"), "    STC Lead Time       : -3ms (Min=0ms occurred Never, Max=0ms occurred Never, Range=0ms)");
    EXPECT_EQ(LineOf(text, "Process Time"),
              "    Process Time        : -2147483648us (Min=0us occurred Never, Max=0us occurred Never, Range=0us)");
}

TEST(AudioPairBlock, RatesChannelsAndCountsAreUnsigned)
{
    SMGR_AUDIO_PAIR_STATS p = {};
    p.nDecodedFrames = ULONG_MAX;
    p.nSampleRateIn = -1;
    p.nSampleRateOut = INT_MIN;
    p.nInputChannels = -2;
    p.nOutputChannels = -3;
    p.nTSDiscontinuity = UINT_MAX;
    p.nDecoderErrors = UINT_MAX;
    p.nOutputErrors = 2147483648;
    p.nOutQueueLength = UINT_MAX;
    p.nMaxOutQueueLen = 2147483648;
    p.nLastWteToFpgaIntervalInMs = UINT_MAX;
    p.nMinWteToFpgaIntervalInMs = 2147483648;
    p.nMaxWteToFpgaIntervalInMs = 2147483649;
    EXPECT_EQ(Block(p, STATS_LEVEL_DEBUG), R"(  AUDIO PAIR #1
    Compression         : {TDemuxCompressionType 0 1024}
    Bit Rate            : {BitRate 0 1024}
    A/V Sync            : 0ms (Video TS 0, Audio TS 0))"
                                           " \n"
                                           R"(    TS Discontinuities  : 4294967295
    Decoder Errors      : {ULONG 4294967295 1024} (Last One: Never)
    Output Errors       : {ULONG 2147483648 1024} (Last One: Never)
    Sample Rate In      : 4294967295 Hz
    Sample Rate Out     : 2147483648 Hz
    Audio Channels In   : 4294967294
    Audio Channels Out  : 4294967293
    Decoded Frames      : {ULONG 18446744073709551615 1024} (Last One: Never)
    Played Output Frms  : 0
    Skipped Output Frms : 0
    Output Queue        : 4294967295 frames (Max=2147483648 frames)
    Interval To Output  : 4294967295ms (Min=2147483648ms, Max=2147483649ms)
    STC Lead Time       : 0ms (Min=0ms occurred Never, Max=0ms occurred Never, Range=0ms)
    Process Time        : 0us (Min=0us occurred Never, Max=0us occurred Never, Range=0us)
)");
}

TEST(AudioPairBlock, TheTwoTimesOfALineHaveBuffersOfTheirOwn)
{
    SMGR_AUDIO_PAIR_STATS p = {};
    p.nDecodedFrames = 1;
    p.tMinSTCLeadTime = frozen_now - 1;
    p.tMaxProcessTime = frozen_now - 2;
    const std::string text = Block(p, STATS_LEVEL_DEBUG);
    EXPECT_EQ(LineOf(text, "STC Lead Time"),
              "    STC Lead Time       : 0ms (Min=0ms occurred {UpTime 1 1024} ago, Max=0ms occurred Never, Range=0ms)");
    EXPECT_EQ(LineOf(text, "Process Time"),
              "    Process Time        : 0us (Min=0us occurred Never, Max=0us occurred {UpTime 2 1024} ago, Range=0us)");
}

TEST(AudioPairBlock, UnknownCodingsAreLeftToTheirService)
{
    SMGR_AUDIO_PAIR_STATS p = {};
    p.nDecodedFrames = 1;
    p.enAlgorithm = INT_MIN;
    EXPECT_EQ(LineOf(Block(p, STATS_LEVEL_DEFAULT), "Compression  "), "    Compression         : {TDemuxCompressionType -2147483648 1024}");
}
