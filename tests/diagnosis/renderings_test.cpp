/** @file renderings_test.cpp Results as text, as JSON and as metrics. */
#include <gtest/gtest.h>
#include <rapidjson/document.h>

#include <array>
#include <string>

#include "diagnosis_json.h"
#include "diagnosis_metrics.h"
#include "diagnosis_text.h"
#include "living.h"

namespace
{

using namespace std::chrono_literals;
using diagnosis::Result;
using samples::Simulation;

struct Case
{
    records::Snapshot now;
    Result result;
};

Case case_of(const char* scenario, const char* fault = nullptr)
{
    Simulation simulation(scenario, 1, start);
    if (fault != nullptr) simulation.inject(fault);
    simulation.advance(20s);
    const records::Snapshot before = snapshot_of(simulation);
    simulation.advance(10s);
    const records::Snapshot now = snapshot_of(simulation);
    return {now, diagnosis::diagnose(before, now)};
}

rapidjson::Document parsed(const Case& of)
{
    rapidjson::Document document;
    const std::string line = diagnosis::json(of.result, of.now);
    document.Parse<rapidjson::kParseValidateEncodingFlag>(line.c_str());
    EXPECT_FALSE(document.HasParseError()) << line;
    EXPECT_EQ(line.find('\n'), std::string::npos);
    return document;
}

TEST(Json, TellsWhatAHealthyDecoderPasses)
{
    const auto document = parsed(case_of("live-srt-1080i"));
    EXPECT_STREQ(document["schema"].GetString(), "decstats-diagnosis/1");
    EXPECT_STREQ(document["decoder"].GetString(), "decoder-1");
    EXPECT_DOUBLE_EQ(document["window"].GetDouble(), 10);
    EXPECT_STREQ(document["verdict"]["state"].GetString(), "working");
    EXPECT_TRUE(document["verdict"]["stage"].IsNull());
    EXPECT_EQ(document["verdict"]["exit_status"].GetInt(), 0);
    ASSERT_EQ(document["stages"].Size(), 10U);
    const auto& output = document["stages"][6];
    EXPECT_STREQ(output["id"].GetString(), "output");
    EXPECT_NEAR(output["out"].GetDouble(), 29.97, 0.11); // a picture more or fewer within the window
    EXPECT_EQ(output["lost"].GetInt64(), 0);
    EXPECT_EQ(output["last_good_time"].GetInt64(), start.time_since_epoch() / 1s + 30);
    EXPECT_EQ(document["findings"].Size(), 0U);
}

TEST(Json, HasTheEvidence)
{
    const auto document = parsed(case_of("live-srt-1080i", "srt-wrong-key"));
    ASSERT_EQ(document["findings"].Size(), 1U);
    const auto& finding = document["findings"][0];
    EXPECT_STREQ(finding["id"].GetString(), "link.not-decrypting");
    EXPECT_STREQ(finding["severity"].GetString(), "critical");
    EXPECT_STREQ(finding["stage"].GetString(), "link");
    EXPECT_STREQ(finding["detail"].GetString(), "the passphrases differ");
    EXPECT_EQ(finding["since_time"].GetInt64(), start.time_since_epoch() / 1s); // from its first second on nothing was passed on
    const auto& key_state = finding["evidence"][0];
    EXPECT_STREQ(key_state["field"].GetString(), "tdemux.srt.key_state");
    EXPECT_EQ(key_state["value"].GetInt(), SMGR_STREAM_SRT_KM_S_BADSECRET);
    EXPECT_STREQ(key_state["name"].GetString(), "bad_secret");
    const auto& packets = finding["evidence"][1];
    EXPECT_STREQ(packets["field"].GetString(), "tdemux.srt.undecrypted_packets");
    EXPECT_STREQ(packets["unit"].GetString(), "packets");
    EXPECT_NEAR(packets["rate"].GetDouble(), 1220, 2);
    EXPECT_NEAR(double(packets["grown"].GetInt64()), 12200, 20);
    EXPECT_EQ(document["verdict"]["exit_status"].GetInt(), 2);
    EXPECT_STREQ(document["stages"][1]["findings"][0].GetString(), "link.not-decrypting");
}

TEST(Json, SaysWhatItCannotTell)
{
    Case of = case_of("live-srt-1080i");
    of.result = diagnosis::diagnose(of.now);
    const auto single = parsed(of);
    EXPECT_TRUE(single["window"].IsNull());
    EXPECT_STREQ(single["verdict"]["doubt"].GetString(), "single");
    EXPECT_TRUE(single["stages"][0]["in"].IsNull());

    of.now.present.reset(records::find_component("audio")->index);
    of.result = diagnosis::diagnose(of.now);
    const auto missing = parsed(of);
    EXPECT_STREQ(missing["verdict"]["doubt"].GetString(), "missing");
    ASSERT_GT(missing["unseen"].Size(), 0U);
    EXPECT_STREQ(missing["unseen"][0]["reason"].GetString(), "no_record");
}

TEST(Json, IsValidForEveryFaultAndSample)
{
    for (const samples::Fault& fault : samples::faults()) parsed(case_of(fault.scenario, fault.name));
    for (std::size_t i = 0; i < samples_scenario_count; ++i) parsed(case_of(samples_scenarios[i].szName));
}

TEST(Text, OfAHealthyDecoder)
{
    const std::string expected = "Healthy\n"
                                 "Every stage passes on what it gets.\n"
                                 "\n"
                                 "  Network           Working   in 1220, out 1220 packets/s\n";
    const std::string text = diagnosis::text(case_of("live-srt-1080i").result);
    EXPECT_TRUE(text.starts_with(expected)) << text;
}

TEST(Text, OfAFault)
{
    const std::string text = diagnosis::text(case_of("live-srt-1080i", "srt-wrong-key").result);
    // The chain held picture and sound for less than a second.
    EXPECT_TRUE(text.starts_with("No picture for 29s, no sound for 29s\n"
                                 "Link: The link cannot decrypt the stream: the passphrases differ, for 30s.\n"))
        << text;
    EXPECT_NE(text.find("\nCritical [1] The link cannot decrypt the stream: the passphrases differ\n"
                        "    link.not-decrypting, Link, for 30s\n"
                        "    tdemux.srt.key_state is bad_secret\n"),
              std::string::npos)
        << text;
    EXPECT_NE(text.find("\n    Do: Enter the passphrase again"), std::string::npos);
}

TEST(Text, HasNoLineAboveAHundredColumnsAndNothingButAscii)
{
    for (const samples::Fault& fault : samples::faults())
    {
        const std::string text = diagnosis::text(case_of(fault.scenario, fault.name).result);
        std::size_t column = 0;
        for (const char character : text)
        {
            EXPECT_TRUE(character == '\n' || (character >= ' ' && character <= '~')) << text;
            column = character == '\n' ? 0 : column + 1;
            EXPECT_LE(column, 110U) << text; // evidence is a line, whatever its length
        }
    }
}

TEST(Text, OfEpisodes)
{
    Simulation simulation("live-srt-1080i", 1, start);
    simulation.inject("network-silent", 100s, 60s);
    diagnosis::Diagnosis diagnosis;
    EXPECT_EQ(diagnosis::text(diagnosis.episodes()), "Nothing was found.\n");
    for (int i = 0; i < 150; ++i)
    {
        diagnosis.take(snapshot_of(simulation));
        simulation.advance(1s);
    }
    // The network fell silent 100 s after 2026-11-16T12:00:00Z; what was on the way then arrived in the second after.
    EXPECT_EQ(diagnosis::text(diagnosis.episodes()),
              "2026-11-16T12:01:41Z to the end               Critical  network.silent  No packet arrives\n");
}

std::string metrics(const Result& result, views::MetricsFormat format = views::MetricsFormat::openmetrics)
{
    const diagnosis::Diagnosed decoder = {.decoder = "a", .result = &result};
    std::string text = "what it held";
    diagnosis::write_metrics(text, {&decoder, 1}, format);
    return text;
}

bool has(const std::string& text, std::string_view part)
{
    return text.find(part) != std::string::npos;
}

std::size_t count(std::string_view text, std::string_view part)
{
    std::size_t times = 0;
    for (std::size_t at = text.find(part); at != std::string_view::npos; at = text.find(part, at + 1)) ++times;
    return times;
}

TEST(Metrics, OfAHealthyDecoder)
{
    const std::string text = metrics(case_of("live-srt-1080i").result);
    EXPECT_TRUE(
        text.starts_with("# HELP decoder_finding_active 1 = this is wrong with the decoder, 0 = it is not; none = it cannot be told\n"
                         "# TYPE decoder_finding_active gauge\n"
                         "decoder_finding_active{decoder=\"a\",id=\"host.hung\",severity=\"critical\",stage=\"host\"} 0\n"))
        << text;
    EXPECT_EQ(count(text, "\ndecoder_finding_active{"), diagnosis::rules().size());
    EXPECT_EQ(count(text, "\n# TYPE decoder_stage_state stateset\n"), 1U);
    EXPECT_EQ(count(text, "\ndecoder_stage_state{decoder=\"a\",stage=\"vdecoder\",decoder_stage_state=\""), 6U);
    EXPECT_TRUE(has(text, "\ndecoder_stage_state{decoder=\"a\",stage=\"vdecoder\",decoder_stage_state=\"working\"} 1\n"
                          "decoder_stage_state{decoder=\"a\",stage=\"vdecoder\",decoder_stage_state=\"degraded\"} 0\n"));
    EXPECT_EQ(count(text, "} 1\n"), diagnosis::stage_count);
}

TEST(Metrics, OfAFault)
{
    const std::string text = metrics(case_of("live-srt-1080i", "srt-wrong-key").result, views::MetricsFormat::prometheus);
    EXPECT_TRUE(has(text, "\n# TYPE decoder_stage_state gauge\n"));
    EXPECT_TRUE(has(text, "\ndecoder_finding_active{decoder=\"a\",id=\"link.not-decrypting\",severity=\"critical\",stage=\"link\"} 1\n"));
    EXPECT_TRUE(has(text, "\ndecoder_stage_state{decoder=\"a\",stage=\"link\",decoder_stage_state=\"stopped\"} 1\n"));
    EXPECT_EQ(count(text, "} 1\n"), diagnosis::stage_count + 1);
}

TEST(Metrics, WhatCouldNotBeLookedForHasNoSample)
{
    const Case of = case_of("live-srt-1080i");
    const std::string single = metrics(diagnosis::diagnose(of.now));
    for (const diagnosis::Rule* rule : diagnosis::rules())
        EXPECT_EQ(count(single, "id=\"" + std::string(rule->id) + "\""), rule->needs_window ? 0U : 1U) << rule->id;

    records::Snapshot unheard = of.now;
    unheard.present.reset(records::find_component("audio")->index);
    EXPECT_FALSE(has(metrics(diagnosis::diagnose(unheard)), "stage=\"audio\"} "));

    const std::string nothing = metrics(Result());
    EXPECT_FALSE(has(nothing, "decoder_finding_active"));
    EXPECT_EQ(count(nothing, "decoder_stage_state=\"unknown\"} 1\n"), diagnosis::stage_count);
}

TEST(Metrics, AFindingThatWeighsMoreStandsBesideItsUsualSeries)
{
    Result result = case_of("live-srt-1080i").result;
    diagnosis::Finding finding = {};
    finding.rule = diagnosis::find_rule("link.loss");
    finding.severity = diagnosis::Severity::critical;
    result.findings.push_back(finding);
    EXPECT_TRUE(has(metrics(result), "\ndecoder_finding_active{decoder=\"a\",id=\"link.loss\",severity=\"warning\",stage=\"link\"} 0\n"
                                     "decoder_finding_active{decoder=\"a\",id=\"link.loss\",severity=\"critical\",stage=\"link\"} 1\n"));
}

TEST(Metrics, FamiliesOfSeveralDecodersAreWhole)
{
    const Result result = case_of("live-srt-1080i").result;
    const std::array<diagnosis::Diagnosed, 2> decoders = {{{"a", &result}, {"b", &result}}};
    std::string text;
    diagnosis::write_metrics(text, decoders, views::MetricsFormat::openmetrics);
    const std::size_t stages = text.find("# HELP decoder_stage_state");
    EXPECT_EQ(count(text, "# HELP "), 2U);
    EXPECT_EQ(count(text.substr(0, stages), "\ndecoder_finding_active{decoder=\"b\""), diagnosis::rules().size());
    EXPECT_FALSE(has(text.substr(stages), "decoder_finding_active"));
    diagnosis::write_metrics(text, {}, views::MetricsFormat::openmetrics);
    EXPECT_EQ(text, "");
}

} // namespace
