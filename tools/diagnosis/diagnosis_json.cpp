#include "diagnosis_json.h"

#include <array>
#include <charconv>
#include <cmath>
#include <variant>

#include "flow.h"
#include "json_writer.h"

namespace diagnosis
{

namespace
{

using views::JsonWriter;

/** A rate, to the millionth: what is beyond is the sampling's. */
void rate_member(JsonWriter& writer, std::string_view name, const std::optional<double>& rate)
{
    writer.key(name);
    if (!rate) return writer.null();
    std::array<char, 40> digits;
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), std::round(*rate * 1e6) / 1e6).ptr;
    writer.number(std::string(digits.data(), end));
}

void integer_member(JsonWriter& writer, std::string_view name, const std::optional<std::int64_t>& value)
{
    if (value) return writer.integer_member(name, *value);
    writer.key(name);
    writer.null();
}

void text_member(JsonWriter& writer, std::string_view name, std::string_view text)
{
    writer.key(name);
    if (text.empty()) return writer.null();
    writer.text(text);
}

std::string_view doubt_id(Doubt doubt)
{
    constexpr std::string_view ids[] = {"",      "single",  "starting", "restarted", "gap",     "clock_set",
                                        "onset", "cleared", "missing",  "undecided", "not_live"};
    return ids[static_cast<std::size_t>(doubt)];
}

void write_verdict(JsonWriter& writer, const Result& result)
{
    const Verdict& verdict = result.verdict;
    writer.member("state", state_id(verdict.state));
    text_member(writer, "stage", verdict.stage ? stage_id(*verdict.stage) : "");
    text_member(writer, "doubt", doubt_id(verdict.doubt));
    writer.member("headline", verdict.headline);
    text_member(writer, "place", verdict.place);
    text_member(writer, "action", verdict.action);
    writer.member("exit_status", static_cast<std::uint64_t>(exit_status(result)));
}

void write_stage(JsonWriter& writer, const StageResult& stage, const Result& result)
{
    writer.member("id", stage_id(stage.stage));
    writer.member("title", stage_title(stage.stage));
    writer.member("state", state_id(stage.state));
    writer.member("unit", flow(stage.stage).unit);
    rate_member(writer, "in", stage.in);
    rate_member(writer, "out", stage.out);
    integer_member(writer, "lost", stage.lost);
    integer_member(writer, "last_good_time", stage.last_good);
    writer.key("findings");
    writer.start_array();
    for (const std::size_t finding : stage.findings) writer.text(result.findings[finding].rule->id);
    writer.end_array();
}

/** The value of a field, as decstats show writes it, but for what evidence is never: texts and bytes. */
void write_value(JsonWriter& writer, const Proof& proof)
{
    const dictionary::Field& field = *proof.field;
    if (const auto* natural = std::get_if<std::uint64_t>(&proof.value)) return writer.integer_member("value", *natural);
    if (const auto* real = std::get_if<float>(&proof.value)) return rate_member(writer, "value", static_cast<double>(*real));
    if (const auto* moment = std::get_if<dictionary::Moment>(&proof.value)) return writer.integer_member("value", moment->seconds);
    const auto* number = std::get_if<std::int64_t>(&proof.value);
    const std::int64_t value = number != nullptr ? *number : 0;
    if (field.kind == dictionary::Kind::event_time && value == 0)
    {
        writer.key("value");
        return writer.null();
    }
    writer.integer_member("value", value);
    if (field.kind == dictionary::Kind::state) text_member(writer, "name", dictionary::identifier(field, value));
}

void write_proof(JsonWriter& writer, const Proof& proof, const Result& result)
{
    writer.member("field", dictionary::element_name(*proof.field, proof.element));
    write_value(writer, proof);
    text_member(writer, "unit", proof.field->unit);
    if (!proof.grown) return;
    writer.integer_member("grown", *proof.grown);
    rate_member(writer, "rate", result.seconds > 0 ? std::optional(static_cast<double>(*proof.grown) / result.seconds) : std::nullopt);
}

void write_head(JsonWriter& writer, const Finding& finding)
{
    writer.member("id", finding.rule->id);
    writer.member("severity", severity_id(finding.severity));
    writer.member("stage", stage_id(finding.rule->stage));
    writer.member("title", finding.rule->title);
    text_member(writer, "detail", finding.detail);
}

void write_finding(JsonWriter& writer, const Finding& finding, const Result& result)
{
    write_head(writer, finding);
    integer_member(writer, "since_time", finding.since);
    writer.member("action", finding.rule->remedy);
    writer.key("evidence");
    writer.start_array();
    for (const Proof& proof : finding.evidence)
    {
        writer.start_object();
        write_proof(writer, proof, result);
        writer.end_object();
    }
    writer.end_array();
    writer.key("explains");
    writer.start_array();
    for (const Rule* rule : finding.explains) writer.text(rule->id);
    writer.end_array();
}

/** An array member with an object for each element. */
template <typename Elements, typename Write>
void objects_member(JsonWriter& writer, std::string_view name, const Elements& elements, const Write& write)
{
    writer.key(name);
    writer.start_array();
    for (const auto& element : elements)
    {
        writer.start_object();
        write(element);
        writer.end_object();
    }
    writer.end_array();
}

void write_result(JsonWriter& writer, const Result& result)
{
    rate_member(writer, "window", result.seconds > 0 ? std::optional(result.seconds) : std::nullopt);
    writer.object_member("verdict", [&] { write_verdict(writer, result); });
    objects_member(writer, "stages", result.stages, [&](const StageResult& stage) { write_stage(writer, stage, result); });
    objects_member(writer, "findings", result.findings, [&](const Finding& finding) { write_finding(writer, finding, result); });
    objects_member(writer, "unseen", result.unseen,
                   [&](const Unseen& unseen)
                   {
                       writer.member("id", unseen.rule->id);
                       writer.member("field", unseen.field);
                       writer.member("reason", unseen.absent ? "no_record" : "not_measured");
                   });
}

void write_episodes(JsonWriter& writer, const std::vector<Episode>& episodes)
{
    constexpr std::int64_t second = 1'000'000'000; // [ns]
    objects_member(writer, "episodes", episodes,
                   [&](const Episode& episode)
                   {
                       write_head(writer, episode.finding);
                       writer.integer_member("begin_time", episode.begin / second);
                       integer_member(writer, "end_time", episode.over ? std::optional(episode.last / second) : std::nullopt);
                       writer.member("action", episode.finding.rule->remedy);
                   });
}

/** An object with the envelope and what is written into it. */
template <typename Write> std::string object(const records::Snapshot& snapshot, const Write& write)
{
    JsonWriter writer;
    writer.start_object();
    writer.envelope(json_schema_id, snapshot);
    write(writer);
    writer.end_object();
    return writer.str();
}

} // namespace

std::string json(const Result& result, const records::Snapshot& snapshot)
{
    return object(snapshot, [&](JsonWriter& writer) { write_result(writer, result); });
}

std::string json(const Result& result, const std::vector<Episode>& episodes, const records::Snapshot& snapshot)
{
    const auto write = [&](JsonWriter& writer)
    {
        write_result(writer, result);
        write_episodes(writer, episodes);
    };
    return object(snapshot, write);
}

std::string json(const std::vector<Episode>& episodes, const records::Snapshot& snapshot)
{
    return object(snapshot, [&](JsonWriter& writer) { write_episodes(writer, episodes); });
}

} // namespace diagnosis
