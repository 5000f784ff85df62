// What one Snapshot of a host that measures everything does not show: hosts that do not, decoders that are gone, several decoders.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <malloc.h>
#include <string>
#include <string_view>

#include "comparison.h"
#include "field_lines.h"
#include "field_search.h"
#include "json.h"
#include "metrics.h"
#include "number_text.h"
#include "utf8.h"

namespace
{

using views::MetricsFormat;

/** A decoder that has received something. */
records::Snapshot snapshot_of(const std::string& decoder)
{
    records::Snapshot snapshot;
    snapshot.decoder = decoder;
    snapshot.taken_at = 1'655'208'899'000'000'000;
    snapshot.present.set();
    snapshot.records.tdemux.enState = SMGR_TDEMUX_STATS_STATE_ACTIVE;
    snapshot.records.tdemux.tCounters.nNumReceivedPackets = 5;
    snapshot.records.tdemux.tSources[2].tCounters.nNumReceivedPackets = 4;
    snapshot.records.tdemux.tSources[2].tsPid = 33;
    return snapshot;
}

std::string metrics(std::span<const records::Snapshot* const> decoders, MetricsFormat format)
{
    std::string text;
    views::write_metrics(text, decoders, format);
    return text;
}

std::size_t index_of(std::string_view name)
{
    return dictionary::find(name)->field->index;
}

bool has(const std::string& text, std::string_view part)
{
    return text.find(part) != std::string::npos;
}

TEST(Metrics, FurtherFamiliesStandBeforeTheEnd)
{
    const records::Snapshot snapshot = snapshot_of("a");
    const records::Snapshot* const decoder = &snapshot;
    for (const MetricsFormat format : {MetricsFormat::openmetrics, MetricsFormat::prometheus})
    {
        const std::string alone = metrics({&decoder, 1}, format);
        std::string text;
        views::write_metrics(text, {&decoder, 1}, format, "# TYPE other gauge\nother 1\n");
        const std::string end(views::end_of_metrics(format));
        EXPECT_EQ(text, alone.substr(0, alone.size() - end.size()) + "# TYPE other gauge\nother 1\n" + end);
        EXPECT_EQ(end, format == MetricsFormat::openmetrics ? "# EOF\n" : "");
    }
}

TEST(Json, WhatIsNotMeasuredIsNull)
{
    records::Snapshot snapshot = snapshot_of("a");
    EXPECT_TRUE(has(views::json(snapshot), R"("received_packets":5,)"));
    snapshot.not_measured.set(index_of("tdemux.received_packets"));
    snapshot.not_measured.set(index_of("tdemux.state"));
    EXPECT_TRUE(has(views::json(snapshot), R"("received_packets":null,)"));
    EXPECT_TRUE(has(views::json(snapshot), R"("tdemux":{"record_size":0,"state":null,)"));
}

TEST(Json, AnUnknownDecoderIsNull)
{
    records::Snapshot snapshot;
    EXPECT_EQ(views::json(snapshot), R"({"schema":"decstats/1","decoder":null,"instance":null,)"
                                     R"("taken_at":"1970-01-01T00:00:00.000000000Z","components":{}})");
}

TEST(Json, ASelectionHasItsFieldsOnly)
{
    records::Snapshot snapshot = snapshot_of("a");
    snapshot.present = 1;
    views::Selection selection;
    selection.add(*dictionary::find("tdemux.received_packets"));
    selection.add(*dictionary::find("tdemux.sources[2].pid"));
    EXPECT_TRUE(
        has(views::json(snapshot, &selection), R"("components":{"tdemux":{"sources":[{"index":2,"pid":33}],"received_packets":5}}})"));
    views::Selection other;
    other.add(*dictionary::find("tdemux.sources[1].pid"));
    EXPECT_TRUE(has(views::json(snapshot, &other), R"("components":{"tdemux":{}}})"));
}

TEST(Json, IndentingChangesNoNumber)
{
    EXPECT_EQ(views::indented(R"({"a":18446744073709551615,"b":[-0.0,1e-45],"c":"d"})"),
              "{\n  \"a\": 18446744073709551615,\n  \"b\": [\n    -0.0,\n    1e-45\n  ],\n  \"c\": \"d\"\n}");
}

TEST(Metrics, WhatIsNotMeasuredHasNoSample)
{
    records::Snapshot snapshot = snapshot_of("a");
    const records::Snapshot* const decoder = &snapshot;
    EXPECT_TRUE(has(metrics({&decoder, 1}, MetricsFormat::openmetrics), "decoder_tdemux_received_packets_total{"));
    snapshot.not_measured.set(index_of("tdemux.received_packets"));
    EXPECT_FALSE(has(metrics({&decoder, 1}, MetricsFormat::openmetrics), "decoder_tdemux_received_packets"));
}

TEST(Metrics, OfADecoderThatIsGoneOnlyThatRemains)
{
    records::Snapshot snapshot = snapshot_of("gone");
    snapshot.is_up = false;
    const records::Snapshot* const decoder = &snapshot;
    EXPECT_EQ(metrics({&decoder, 1}, MetricsFormat::openmetrics),
              "# HELP decoder_up 1 = the decoder's records are being updated, 0 = they no longer are\n"
              "# TYPE decoder_up gauge\n"
              "decoder_up{decoder=\"gone\"} 0\n"
              "# HELP decoder_last_update_timestamp_seconds when the decoder's records were last taken\n"
              "# TYPE decoder_last_update_timestamp_seconds gauge\n"
              "# UNIT decoder_last_update_timestamp_seconds seconds\n"
              "decoder_last_update_timestamp_seconds{decoder=\"gone\"} 1655208899.000000000\n"
              "# EOF\n");
}

TEST(Metrics, WhetherADecoderIsUpIsOnlySaidWhereItIsKnown)
{
    records::Snapshot saved = snapshot_of("saved");
    records::Snapshot live = snapshot_of("live");
    live.is_up = true;
    const records::Snapshot* const decoders[] = {&saved, &live};
    const std::string both = metrics(decoders, MetricsFormat::prometheus);
    EXPECT_TRUE(has(both, "decoder_up{decoder=\"live\"} 1\n"));
    EXPECT_FALSE(has(both, "decoder_up{decoder=\"saved\"}"));
    EXPECT_TRUE(has(both, "decoder_tdemux_received_packets_total{decoder=\"saved\"} 5\n"));
    const std::string alone = metrics(std::span(decoders).first(1), MetricsFormat::prometheus);
    EXPECT_FALSE(has(alone, "decoder_up"));
    EXPECT_TRUE(has(alone, "decoder_last_update_timestamp_seconds{decoder=\"saved\"} 1655208899.000000000\n"));
}

TEST(Metrics, AFamilyHasTheSamplesOfAllDecoders)
{
    const records::Snapshot one = snapshot_of("one");
    const records::Snapshot other = snapshot_of("other");
    const records::Snapshot* const decoders[] = {&one, &other};
    EXPECT_TRUE(has(metrics(decoders, MetricsFormat::prometheus),
                    "# TYPE decoder_tdemux_source_received_packets_total counter\n"
                    "decoder_tdemux_source_received_packets_total{decoder=\"one\",source=\"2\",type=\"unknown\",pid=\"33\"} 4\n"
                    "decoder_tdemux_source_received_packets_total{decoder=\"other\",source=\"2\",type=\"unknown\",pid=\"33\"} 4\n"
                    "# HELP "));
}

TEST(Metrics, TheTextTakesThePlaceOfAnother)
{
    const records::Snapshot up = snapshot_of("a");
    records::Snapshot gone = up;
    gone.is_up = false;
    std::string text = "something else";
    for (const records::Snapshot* const decoder : std::initializer_list<const records::Snapshot*>{&up, &gone, &up})
    {
        views::write_metrics(text, {&decoder, 1}, MetricsFormat::openmetrics);
        EXPECT_EQ(text, metrics({&decoder, 1}, MetricsFormat::openmetrics));
    }
}

TEST(Metrics, AComponentThatIsNotThereHasNone)
{
    records::Snapshot snapshot = snapshot_of("a");
    snapshot.present.reset(records::find_component("tdemux")->index);
    const records::Snapshot* const decoder = &snapshot;
    const std::string text = metrics({&decoder, 1}, MetricsFormat::openmetrics);
    EXPECT_FALSE(has(text, "tdemux"));
    EXPECT_TRUE(has(text, "decoder_vframer_state{"));
}

TEST(Metrics, ANegativeCounterHasNoSample)
{
    records::Snapshot snapshot = snapshot_of("a");
    snapshot.records.clock_recovery.pcrJitterErrCount = -1;
    const records::Snapshot* const decoder = &snapshot;
    EXPECT_FALSE(has(metrics({&decoder, 1}, MetricsFormat::openmetrics), "decoder_clock_recovery_pcr_jitter_errors"));
    EXPECT_TRUE(has(views::json(snapshot), R"("pcr_jitter_errors":-1,)"));
}

TEST(Metrics, NoStateIsCalledAsTheOneForAllOthers)
{
    for (const dictionary::Field& field : dictionary::fields())
    {
        if (field.metric.type != dictionary::MetricType::state_set) continue;
        EXPECT_EQ(std::ranges::count(field.states->values, views::other_state, &dictionary::State::identifier), 0) << field.full_name;
    }
}

// The sanitizers' allocators keep what was freed.
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
TEST(Metrics, MemoryDoesNotGrow)
{
    const records::Snapshot snapshot = snapshot_of("a");
    const records::Snapshot* const decoder = &snapshot;
    const auto render = [&](int times)
    {
        for (int i = 0; i < times; ++i)
            for (const MetricsFormat format : {MetricsFormat::openmetrics, MetricsFormat::prometheus})
                ASSERT_FALSE(metrics({&decoder, 1}, format).empty());
    };
    render(2);
    const std::size_t before = mallinfo2().uordblks + mallinfo2().hblkhd;
    render(1000);
    EXPECT_EQ(mallinfo2().uordblks + mallinfo2().hblkhd, before);
}
#endif

TEST(FieldLines, NameValueUnit)
{
    records::Snapshot snapshot = snapshot_of("a");
    std::memcpy(snapshot.records.tdemux.tSourceAddress.szHostName, "a b\n\xFF", 5);
    const dictionary::Found fields[] = {*dictionary::find("tdemux.sources[].received_packets"),
                                        *dictionary::find("tdemux.sources[1].received_packets"),
                                        *dictionary::find("tdemux.state"),
                                        *dictionary::find("tdemux.last_received_packet_time"),
                                        *dictionary::find("tdemux.srt.rtt"),
                                        *dictionary::find("tdemux.sender_address.host_name")};
    EXPECT_EQ(views::field_lines(snapshot, fields), "tdemux.sources[2].received_packets 4 packets\n"
                                                    "tdemux.sources[1].received_packets - packets\n"
                                                    "tdemux.state active\n"
                                                    "tdemux.last_received_packet_time - epoch s\n"
                                                    "tdemux.srt.rtt - us\n"
                                                    "tdemux.sender_address.host_name a b?\xEF\xBF\xBD\n");
}

TEST(FieldSearch, TheNearestNamesComeFirst)
{
    EXPECT_EQ(views::nearest_names("recieved_packets").front(), "received_packets");
    EXPECT_EQ(views::nearest_names("Recieved Packets").front(), "Received Packets");
    EXPECT_EQ(views::nearest_field_names("tdemux.srt.rt").front(), "tdemux.srt.rtt");
    EXPECT_EQ(views::nearest_field_names("tdemux.sources[7].pidd").front(), "tdemux.sources[].pid");
    EXPECT_TRUE(views::nearest_names("").empty());
    EXPECT_TRUE(views::nearest_names("qqqqqqqq").empty());
}

TEST(Json, StatesWithoutATextOfTheReportsHaveTheWordsOfTheirIdentifier)
{
    records::Snapshot snapshot = snapshot_of("a");
    snapshot.records.tdemux.enEncapsulation = SMGR_STREAM_ENCAPSULATION_TS_SRT;
    snapshot.records.tdemux.Xport.SRT.iKeyState = SMGR_STREAM_SRT_KM_S_BADSECRET;
    EXPECT_TRUE(has(views::json(snapshot), R"("key_state":{"value":4,"name":"bad_secret","text":"bad secret"})"));
    snapshot.records.tdemux.Xport.SRT.iKeyState = 99;
    EXPECT_TRUE(has(views::json(snapshot), R"("key_state":{"value":99,"name":null,"text":null})"));
}

TEST(Json, VersionsHaveTheirPartsBesideThem)
{
    records::Snapshot snapshot = snapshot_of("a");
    snapshot.records.tdemux.enEncapsulation = SMGR_STREAM_ENCAPSULATION_TS_SRT;
    snapshot.records.tdemux.Xport.SRT.iVersion = 0x010404;
    EXPECT_TRUE(has(views::json(snapshot), R"("version":66564,"version_text":"1.4.4","peer_version":null)"));
    const std::array fields = {*dictionary::find("tdemux.srt.version"), *dictionary::find("tdemux.srt.peer_version")};
    EXPECT_EQ(views::field_lines(snapshot, fields), "tdemux.srt.version 66564 1.4.4\ntdemux.srt.peer_version -\n");
}

TEST(Comparison, RatesAreByWhenTheRecordWasWritten)
{
    const records::Snapshot old = snapshot_of("a");
    records::Snapshot now = old;
    now.taken_at += 1'000'000'000;
    now.records.tdemux.tCounters.nNumReceivedPackets += 500;
    const views::FieldPlace place = {dictionary::find("tdemux.received_packets")->field, 0};
    const std::size_t component = place.field->component;
    EXPECT_EQ(views::Comparison(old, now).rate(place), 500); // nobody knows, so it is by when they were looked at

    // Its host writes every two seconds: what was seen a second apart was written two apart.
    records::Snapshot known = old;
    known.written_at[component] = old.taken_at - 1'900'000'000;
    now.written_at[component] = old.taken_at + 100'000'000;
    EXPECT_EQ(views::Comparison(old, now).rate(place), 500); // of the older one it is not known
    EXPECT_EQ(views::Comparison(known, now).rate(place), 250);

    // Without another writing there is none, and none where the clock of the writings was set back.
    EXPECT_EQ(views::Comparison(now, now).rate(place), std::nullopt);
    known.written_at[component] = now.written_at[component] + 1;
    EXPECT_EQ(views::Comparison(known, now).rate(place), std::nullopt);
}

TEST(NumberText, Products)
{
    const auto scaled = [](auto value, std::uint32_t multiply, std::uint32_t divide)
    {
        char text[views::number_size];
        return std::string(text, views::write_scaled(text, value, multiply, divide));
    };
    EXPECT_EQ(scaled(std::int64_t{-1'500}, 1, 1'000), "-1.5");
    EXPECT_EQ(scaled(std::int64_t{1}, 1, 1'000'000), "0.000001");
    EXPECT_EQ(scaled(std::int64_t{-7}, 1, 8), "-0.875");
    EXPECT_EQ(scaled(INT64_MIN, 1, 1), "-9223372036854775808");
    EXPECT_EQ(scaled(UINT64_MAX, 125, 1), "2305843009213693951875");
    EXPECT_EQ(scaled(std::uint64_t{90'000}, 1, 90'000), "1");
    EXPECT_EQ(scaled(std::uint64_t{1}, 1, 90'000), "1.1111111111111112e-05"); // the double nearest to 1/90000
}

TEST(NumberText, Moments)
{
    const auto written = [](std::int64_t seconds, std::int64_t nanoseconds)
    {
        std::string text;
        views::append_moment(text, {seconds, nanoseconds});
        return text;
    };
    EXPECT_EQ(written(1, 5), "1.000000005");
    EXPECT_EQ(written(-1, 500'000'000), "-0.500000000");
    EXPECT_EQ(written(0, -1), "-0.000000001");
    EXPECT_EQ(written(1, 2'000'000'001), "3.000000001");
    EXPECT_EQ(written(INT64_MAX, INT64_MAX), "9223372046078147843.854775807");
    EXPECT_EQ(written(INT64_MIN, INT64_MIN), "-9223372046078147844.854775808");

    const auto dated = [](std::int64_t moment)
    {
        std::string text;
        views::append_rfc3339(text, moment);
        return text;
    };
    EXPECT_EQ(dated(-1), "1969-12-31T23:59:59.999999999Z");
    EXPECT_EQ(dated(INT64_MAX), "2262-04-11T23:47:16.854775807Z");
    EXPECT_EQ(dated(INT64_MIN), "1677-09-21T00:12:43.145224192Z");
}

TEST(Utf8, EachPartThatIsNoneIsReplacedOnce)
{
    const std::string replaced = "\xEF\xBF\xBD";
    EXPECT_EQ(views::valid_utf8("gr\xC3\xB6\xC3\x9F"), "gr\xC3\xB6\xC3\x9F");
    EXPECT_EQ(views::valid_utf8("\xE2\x82"), replaced);                           // cut off
    EXPECT_EQ(views::valid_utf8("a\xE2\x82z"), "a" + replaced + "z");             // broken off
    EXPECT_EQ(views::valid_utf8("\xC0\xAF"), replaced + replaced);                // overlong
    EXPECT_EQ(views::valid_utf8("\xED\xA0\x80"), replaced + replaced + replaced); // a surrogate
    EXPECT_EQ(views::valid_utf8("\xF4\x8F\xBF\xBF"), "\xF4\x8F\xBF\xBF");         // the last character
    EXPECT_EQ(views::valid_utf8("\xF4\x90\x80\x80"), replaced + replaced + replaced + replaced);
}

} // namespace
