#include "diagnosis_metrics.h"

#include <algorithm>
#include <array>
#include <vector>

#include "metric_families.h"
#include "text_buffer.h"

namespace diagnosis
{

namespace
{

using views::TextBuffer;

constexpr std::size_t state_count = static_cast<std::size_t>(StageState::unknown) + 1;

/** What all samples of a family start with, up to the labels behind the decoder's. */
std::string start_of(const views::DecoderFamily& family, std::string_view decoder)
{
    std::string text(family.name);
    text += '{';
    views::append_label(text, "decoder", decoder);
    return text;
}

void append(TextBuffer& text, std::string_view start, std::string_view labels, bool value)
{
    char* to = text.room(start.size() + labels.size() + 2);
    to = TextBuffer::put(to, start);
    to = TextBuffer::put(to, labels);
    text.written_to(TextBuffer::put(to, value ? "1\n" : "0\n"));
}

/** The labels of a finding behind the decoder's, to the blank before the value. */
std::string finding_labels(const Rule& rule, Severity severity)
{
    std::string text = ",";
    views::append_label(text, "id", rule.id);
    text += ',';
    views::append_label(text, "severity", severity_id(severity));
    text += ',';
    views::append_label(text, "stage", stage_id(rule.stage));
    return text + "} ";
}

void append_findings(TextBuffer& text, const Diagnosed& decoder)
{
    static const std::vector<std::string> labels = []
    {
        std::vector<std::string> all;
        for (const Rule* rule : rules()) all.push_back(finding_labels(*rule, rule->severity));
        return all;
    }();
    const std::string start = start_of(finding_family, decoder.decoder);
    const Result& result = *decoder.result;
    for (std::size_t i = 0; i < result.asked.size(); ++i)
    {
        if (!result.asked[i]) continue;
        const Rule* rule = rules()[i];
        const auto finding = std::ranges::find(result.findings, rule, &Finding::rule);
        const bool is_found = finding != result.findings.end();
        const bool is_usual = is_found && finding->severity == rule->severity;
        append(text, start, labels[i], is_usual);
        if (is_found && !is_usual) append(text, start, finding_labels(*rule, finding->severity), true);
    }
}

/** The labels of a stage in a state behind the decoder's, to the blank before the value. */
std::string state_labels(Stage stage, StageState state)
{
    std::string text = ",";
    views::append_label(text, "stage", stage_id(stage));
    text += ',';
    views::append_label(text, stage_family.name, state_id(state));
    return text + "} ";
}

void append_stages(TextBuffer& text, const Diagnosed& decoder)
{
    static const auto labels = []
    {
        std::array<std::array<std::string, state_count>, stage_count> all;
        for (std::size_t stage = 0; stage < stage_count; ++stage)
            for (std::size_t state = 0; state < state_count; ++state)
                all[stage][state] = state_labels(chain()[stage].stage, static_cast<StageState>(state));
        return all;
    }();
    const std::string start = start_of(stage_family, decoder.decoder);
    for (std::size_t stage = 0; stage < stage_count; ++stage)
        for (std::size_t state = 0; state < state_count; ++state)
            append(text, start, labels[stage][state], decoder.result->stages[stage].state == static_cast<StageState>(state));
}

} // namespace

void write_metrics(std::string& text, std::span<const Diagnosed> decoders, views::MetricsFormat format)
{
    TextBuffer buffer(text);
    const auto family = [&](const views::DecoderFamily& described, const auto& append_samples)
    {
        const std::size_t before = buffer.size();
        buffer.append(views::family_metadata(format, described.name, described.type, described.unit, described.help));
        const std::size_t metadata_end = buffer.size();
        for (const Diagnosed& decoder : decoders) append_samples(buffer, decoder);
        if (buffer.size() == metadata_end) buffer.cut(before);
    };
    family(finding_family, append_findings);
    family(stage_family, append_stages);
}

} // namespace diagnosis
