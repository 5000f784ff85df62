#include <gtest/gtest.h>

#include "field_sweep.h"

static const SweptReport& Report()
{
    static const SweptReport report = ReportOf(STATS_PrintForAudioDecoder, {.blocks = {{"AUDIO PAIR #"}}},
                                               {"Audio", "Audio Delay from FRAMER", "AUDIO PAIR #1", "AUDIO PAIR #8"});
    return report;
}

static const LineNames pair_operator_lines = {
    block_title,      "Compression",   "Bit Rate",       "A/V Sync",        "TS Discontinuities",
    "Decoder Errors", "Output Errors", "Sample Rate In", "Sample Rate Out",
};
static const LineNames pair_debug_lines = AllLines({
    pair_operator_lines,
    {"Audio Channels In", "Audio Channels Out", "Decoded Frames", "Played Output Frms", "Skipped Output Frms", "Output Queue",
     "Interval To Output", "STC Lead Time", "Process Time"},
});

// What an operator does not see before it happens, and the pairs that nobody sees.
static const LineNames event_lines = {"Played Output Frames", "Skipped Output Frames", "Output Errors", "TS Discontinuities", "Errors"};
static const LineNames pairs_operator_lines =
    AllLines({In("AUDIO PAIR #1", pair_operator_lines), In("AUDIO PAIR #8", pair_operator_lines)});
static const LineNames pairs_debug_lines = AllLines({In("AUDIO PAIR #1", pair_debug_lines), In("AUDIO PAIR #8", pair_debug_lines)});

// A pair that has decoded frames.
static FieldRows PairRows()
{
    using Record = SMGR_AUDIO_PAIR_STATS;
    return {
        {FIELD(nSize)},
        {FIELD(enMode)},
        {FIELD(enAlgorithm), .lines = {"Compression"}},
        {FIELD(nSampleRateIn), .lines = {"Sample Rate In"}},
        {FIELD(nBitRateInKbps), .lines = {"Bit Rate"}},
        {FIELD(nInputChannels), .debugLines = {"Audio Channels In"}},
        {FIELD(nOutputChannels), .debugLines = {"Audio Channels Out"}},
        {FIELD(nReceivedFrames)},
        {FIELD(tLastReceivedFrame)},
        {FIELD(nDecodedFrames), .debugLines = {"Decoded Frames"},
         .at = {{.value = 0, .operatorLines = pair_operator_lines, .debugLines = pair_debug_lines}}},
        {FIELD(tLastDecodedFrame), .debugLines = {"Decoded Frames"}},
        {FIELD(nDecodedBytes)},
        {FIELD(nOutputFrames), .debugLines = {"Played Output Frms"}},
        {FIELD(tLastOutputFrame), .debugLines = {"Played Output Frms"}, .ifCounted = true},
        {FIELD(nSampleRateOut), .lines = {"Sample Rate Out"}},
        {FIELD(nSkippedFrames), .debugLines = {"Skipped Output Frms"}},
        {FIELD(tLastSkippedFrame), .debugLines = {"Skipped Output Frms"}, .ifCounted = true},
        {FIELD(nDecoderErrors), .lines = {"Decoder Errors"}},
        {FIELD(tLastDecoderError), .lines = {"Decoder Errors"}, .ifCounted = true},
        {FIELD(nOutputErrors), .lines = {"Output Errors"}},
        {FIELD(tLastOutputError), .lines = {"Output Errors"}, .ifCounted = true},
        {FIELD(nOutQueueLength), .debugLines = {"Output Queue"}},
        {FIELD(nMaxOutQueueLen), .debugLines = {"Output Queue"}},
        {FIELD(nCurFpgaWteId)},
        {FIELD(nCurFpgaReadId)},
        {FIELD(nTSDiscontinuity), .lines = {"TS Discontinuities"}},
        {FIELD(tLastIntervalTime.tv_sec)},
        {FIELD(tLastIntervalTime.tv_nsec)},
        {FIELD(nMinWteToFpgaIntervalInMs), .debugLines = {"Interval To Output"}},
        {FIELD(nMaxWteToFpgaIntervalInMs), .debugLines = {"Interval To Output"}},
        {FIELD(nLastWteToFpgaIntervalInMs), .debugLines = {"Interval To Output"}},
        {FIELD(iAudioVideoTSDiffInMs), .lines = {"A/V Sync"}},
        {FIELD(nAudioTimeStamp), .lines = {"A/V Sync"}},
        {FIELD(nVideoTimeStamp), .lines = {"A/V Sync"}},
        {FIELD(iLastError)},
        {FIELD(nInTSDiscontinuity)},
        {FIELD(nCurSTCLeadTimeMs), .debugLines = {"STC Lead Time"}},
        {FIELD(nMinSTCLeadTimeMs), .debugLines = {"STC Lead Time"}},
        {FIELD(tMinSTCLeadTime), .debugLines = {"STC Lead Time"}},
        {FIELD(nMaxSTCLeadTimeMs), .debugLines = {"STC Lead Time"}},
        {FIELD(tMaxSTCLeadTime), .debugLines = {"STC Lead Time"}},
        {FIELD(tLastRxFrameTime.tv_sec)},
        {FIELD(tLastRxFrameTime.tv_nsec)},
        {FIELD(nLastProcessTimeUs), .debugLines = {"Process Time"}},
        {FIELD(nMinProcessTimeUs), .debugLines = {"Process Time"}},
        {FIELD(tMinProcessTime), .debugLines = {"Process Time"}},
        {FIELD(nMaxProcessTimeUs), .debugLines = {"Process Time"}},
        {FIELD(tMaxProcessTime), .debugLines = {"Process Time"}},
    };
}

// A pair that has decoded none.
static FieldRows HiddenPairRows()
{
    using Record = SMGR_AUDIO_PAIR_STATS;
    return Override(Silent(PairRows()), {{FIELD(nDecodedFrames), .operatorLines = pair_operator_lines, .debugLines = pair_debug_lines}});
}

// No output yet: at the debug level the first frame changes the shares of all three outcomes.
static FieldRows Rows()
{
    using Record = SMGR_DECODER_AUDIO_STATS;
    return AllRows({
        {
            {FIELD(nSize)},
            {FIELD(enState), .lines = {"Audio Decoder State"}},
            {FIELD(nNumOfPairs), .lines = {"Number of Pairs"}},
            {FIELD(nReceivedFrames), .debugLines = {"Received Frames"}},
            {FIELD(tLastReceivedFrame), .debugLines = {"Received Frames"}, .ifCounted = true},
            {FIELD(nDecodedFrames), .debugLines = {"Decoded Frames"}},
            {FIELD(tLastDecodedFrame), .debugLines = {"Decoded Frames"}, .ifCounted = true},
            {FIELD(nOutputFrames), .lines = {"Played Output Frames"}, .debugLines = {"Skipped Output Frames", "Output Errors"}},
            {FIELD(tLastOutputFrame), .lines = {"Played Output Frames"}, .ifCounted = true},
            {FIELD(nSkippedFrames), .lines = {"Skipped Output Frames"}, .debugLines = {"Played Output Frames", "Output Errors"}},
            {FIELD(tLastSkippedFrame), .lines = {"Skipped Output Frames"}, .ifCounted = true},
            {FIELD(nOutputErrors), .lines = {"Output Errors"}, .debugLines = {"Played Output Frames", "Skipped Output Frames"}},
            {FIELD(tLastOutputError), .lines = {"Output Errors"}, .ifCounted = true},
            {FIELD(nReleasedFrames), .debugLines = {"Received Frames Freed"}},
            {FIELD(tLastReleasedFrame), .debugLines = {"Received Frames Freed"}, .ifCounted = true},
            {FIELD(nErrors), .lines = {"Errors"}},
            {FIELD(nPendingDecodeRequests), .debugLines = {"Pending Requests"}},
            {FIELD(nCurDecodedQueueLength), .debugLines = {"Current Queue Length"}},
            {FIELD(nTSDiscontinuity), .lines = {"TS Discontinuities"}},
            {FIELD(nADelayInputMS), .debugLines = {"Decoder IN"}},
            {FIELD(nADelayOutputMS), .debugLines = {"Decoder OUT"}},
            {FIELD(nARxFramesJitterMS), .debugLines = {"Rx Frames Jitter"}},
            {FIELD(nALastMaxRxFramesJitterMS)},
        },
        Mounted(HiddenPairRows(), MEMBER(PairStats[0]), "AUDIO PAIR #1"),
        {{UNSWEPT(PairStats[1], PairStats[6])}},
        Mounted(HiddenPairRows(), MEMBER(PairStats[7]), "AUDIO PAIR #8"),
    });
}

static SweepTable Zero()
{
    using Record = SMGR_DECODER_AUDIO_STATS;
    return {.name = "zero",
            .base = RecordWith<Record>([](Record&) {}),
            .hiddenOperatorLines = AllLines({event_lines, pairs_operator_lines}),
            .hiddenDebugLines = AllLines({{"Rx Frames Jitter"}, pairs_debug_lines}),
            .rows = Uncounted(Rows())};
}

// Every counter has counted and a jitter was measured.
static SweepTable Counted()
{
    using Record = SMGR_DECODER_AUDIO_STATS;
    const auto base = [](Record& r)
    {
        r.nReceivedFrames = r.nDecodedFrames = r.nOutputFrames = r.nSkippedFrames = r.nOutputErrors = r.nReleasedFrames = 7;
        r.nErrors = r.nTSDiscontinuity = r.nARxFramesJitterMS = 7;
    };
    const LineNames outcomes = {"Played Output Frames", "Skipped Output Frames", "Output Errors"};
    return {.name = "counted",
            .base = RecordWith<Record>(base),
            .hiddenOperatorLines = pairs_operator_lines,
            .hiddenDebugLines = pairs_debug_lines,
            .rows = Override(Rows(), {{FIELD(nOutputFrames), .lines = outcomes},
                                      {FIELD(nSkippedFrames), .lines = outcomes},
                                      {FIELD(nOutputErrors), .lines = outcomes},
                                      {FIELD(nARxFramesJitterMS), .debugLines = {"Rx Frames Jitter"},
                                       .at = {{.value = 0, .debugLines = {"Rx Frames Jitter"}}}},
                                      {FIELD(nALastMaxRxFramesJitterMS), .debugLines = {"Rx Frames Jitter"}}})};
}

// Only played frames: an operator sees neither the other outcomes nor their times.
static SweepTable Played()
{
    using Record = SMGR_DECODER_AUDIO_STATS;
    return {.name = "played",
            .base = RecordWith<Record>([](Record& r) { r.nOutputFrames = 7; }),
            .hiddenOperatorLines = AllLines({Without(event_lines, {"Played Output Frames"}), pairs_operator_lines}),
            .hiddenDebugLines = AllLines({{"Rx Frames Jitter"}, pairs_debug_lines}),
            .rows = Override(
                Uncounted(Rows()),
                {{FIELD(nOutputFrames), // all of the output, 7 as well as 1
                  .lines = {"Played Output Frames"},
                  .at = {{.value = 0, .lines = {"Played Output Frames"}, .debugLines = {"Skipped Output Frames", "Output Errors"}}}},
                 {FIELD(nSkippedFrames), .lines = {"Played Output Frames", "Skipped Output Frames"}},
                 {FIELD(nOutputErrors), .lines = {"Played Output Frames", "Output Errors"}},
                 {FIELD(tLastOutputFrame), .lines = {"Played Output Frames"}},
                 {FIELD(tLastSkippedFrame), .debugLines = {"Skipped Output Frames"}},
                 {FIELD(tLastOutputError), .debugLines = {"Output Errors"}}})};
}

// Only skipped frames.
static SweepTable Skipped()
{
    using Record = SMGR_DECODER_AUDIO_STATS;
    return {.name = "skipped",
            .base = RecordWith<Record>([](Record& r) { r.nSkippedFrames = 7; }),
            .hiddenOperatorLines = AllLines({Without(event_lines, {"Skipped Output Frames"}), pairs_operator_lines}),
            .hiddenDebugLines = AllLines({{"Rx Frames Jitter"}, pairs_debug_lines}),
            .rows = Override(
                Uncounted(Rows()),
                {{FIELD(nOutputFrames), .lines = {"Played Output Frames", "Skipped Output Frames"}},
                 {FIELD(nSkippedFrames), .lines = {"Skipped Output Frames"},
                  .at = {{.value = 0, .lines = {"Skipped Output Frames"}, .debugLines = {"Played Output Frames", "Output Errors"}}}},
                 {FIELD(nOutputErrors), .lines = {"Skipped Output Frames", "Output Errors"}},
                 {FIELD(tLastOutputFrame), .debugLines = {"Played Output Frames"}},
                 {FIELD(tLastSkippedFrame), .lines = {"Skipped Output Frames"}},
                 {FIELD(tLastOutputError), .debugLines = {"Output Errors"}}})};
}

// The first and the last pair decode, which needs none to be configured.
static SweepTable Pairs()
{
    using Record = SMGR_DECODER_AUDIO_STATS;
    const auto base = [](Record& r)
    {
        for (SMGR_AUDIO_PAIR_STATS* pair : {&r.PairStats[0], &r.PairStats[7]})
        {
            pair->nDecodedFrames = pair->nOutputFrames = pair->nSkippedFrames = 7;
            pair->nDecoderErrors = pair->nOutputErrors = 7;
        }
    };
    return {.name = "pairs",
            .base = RecordWith<Record>(base),
            .hiddenOperatorLines = event_lines,
            .hiddenDebugLines = {"Rx Frames Jitter"},
            .rows = Override(Uncounted(Rows()), AllRows({Mounted(PairRows(), MEMBER(PairStats[0]), "AUDIO PAIR #1"),
                                                         Mounted(PairRows(), MEMBER(PairStats[7]), "AUDIO PAIR #8")}))};
}

static std::vector<SweepTable> Tables()
{
    return {Zero(), Counted(), Played(), Skipped(), Pairs()};
}

TEST(AudioFields, ChangeTheirLinesAndNoOther)
{
    for (const SweepTable& table : Tables()) SweepFields(Report(), table);
}

TEST(AudioFields, HaveARowEach)
{
    for (const SweepTable& table : Tables()) CheckEveryByteHasARow(Report(), table);
}

TEST(AudioFields, ReachEveryLine)
{
    CheckEveryLineIsNamed(Report(), Tables());
}
