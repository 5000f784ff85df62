#include "diagnosis_text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <ctime>

#include "explanation.h"
#include "flow.h"
#include "hostsvc.h"

namespace diagnosis
{

namespace
{

constexpr std::int64_t second = 1'000'000'000; // [ns]

template <typename Service, typename Value> std::string served(Service service, Value value)
{
    char buffer[64];
    return service(value, buffer, sizeof buffer);
}

std::string span_of(std::int64_t seconds)
{
    return served(FormatUpTime, static_cast<long long>(seconds));
}

/** A rate with as many digits as tell something. */
std::string rate_text(double rate)
{
    std::array<char, 32> text;
    const int digits = rate >= 100 || rate == std::floor(rate) ? 0 : rate >= 10 ? 1 : 2;
    std::snprintf(text.data(), text.size(), "%.*f", digits, rate);
    return text.data();
}

std::string moment_text(std::int64_t moment)
{
    const std::time_t seconds = moment / second;
    std::tm parts;
    if (gmtime_r(&seconds, &parts) == nullptr) return std::to_string(seconds);
    std::array<char, 40> text;
    std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%SZ", &parts);
    return text.data();
}

std::string number_text(const dictionary::Field& field, std::int64_t number)
{
    if (field.kind == dictionary::Kind::state)
    {
        const std::string identifier = dictionary::identifier(field, number);
        return identifier.empty() ? std::to_string(number) : identifier;
    }
    if (field.kind == dictionary::Kind::flag) return number != 0 ? "true" : "false";
    if (field.type == dictionary::Type::u64 && number < 0) return std::to_string(static_cast<std::uint64_t>(number)); // no span, no count
    if (field.unit == "ms") return served(FormatMilliSeconds, static_cast<long long>(number));
    if (field.unit == "us") return served(FormatMicroSeconds, static_cast<long long>(number));
    if (field.unit == "s") return span_of(number);
    std::string text = std::to_string(number);
    if (!field.unit.empty() && field.unit != "count" && field.unit != "PID" && field.unit != "index") text += " " + std::string(field.unit);
    return text;
}

std::string value_text(const Proof& proof, std::int64_t now)
{
    const dictionary::Field& field = *proof.field;
    if (const auto* moment = std::get_if<dictionary::Moment>(&proof.value))
    {
        if (moment->seconds == 0) return "never";
        const std::int64_t age = now - moment->seconds;
        return age >= 0 ? span_of(age) + " ago" : "in the future";
    }
    if (const auto* natural = std::get_if<std::uint64_t>(&proof.value)) return number_text(field, static_cast<std::int64_t>(*natural));
    if (const auto* integer = std::get_if<std::int64_t>(&proof.value))
    {
        if (field.kind != dictionary::Kind::event_time) return number_text(field, *integer);
        if (*integer == 0) return "never";
        const std::int64_t age = now - *integer;
        return age >= 0 ? span_of(age) + " ago" : "in the future";
    }
    if (const auto* real = std::get_if<float>(&proof.value)) return rate_text(static_cast<double>(*real)) + " " + std::string(field.unit);
    return "";
}

std::string severity_title(Severity severity)
{
    std::string title(severity_id(severity));
    title.front() = static_cast<char>(title.front() - 'a' + 'A');
    return title;
}

void append_finding(std::string& all, const Finding& finding, std::size_t number, const Result& result)
{
    const std::int64_t now = result.taken_at / second;
    std::string head = severity_title(finding.severity) + " [" + std::to_string(number) + "] " + std::string(finding.rule->title);
    if (!finding.detail.empty()) head += ": " + finding.detail;
    all += "\n" + wrapped(head, 0, 4) + "\n";
    std::string where = std::string(finding.rule->id) + ", " + std::string(stage_title(finding.rule->stage));
    if (finding.since && *finding.since <= now) where += ", for " + span_of(now - *finding.since);
    all += "    " + where + "\n";
    for (const Proof& proof : finding.evidence) all += "    " + text(proof, result) + "\n";
    if (!finding.explains.empty())
    {
        std::string names;
        for (const Rule* rule : finding.explains) names += (names.empty() ? "" : ", ") + std::string(rule->id);
        all += "    " + wrapped("Explains " + names + ".", 4, 4) + "\n";
    }
    all += "    " + wrapped("Do: " + std::string(finding.rule->remedy), 4, 8) + "\n";
}

/** What could not be seen, by the field that is missing. */
void append_unseen(std::string& all, const Result& result)
{
    if (result.seconds == 0 && result.verdict.doubt == Doubt::single) all += "\nRates could not be seen: there is one moment only.\n";
    if (result.unseen.empty()) return;
    all += "\nCould not be seen:\n";
    for (const Unseen& unseen : result.unseen)
    {
        const std::string_view component = unseen.field.substr(0, unseen.field.find('.'));
        const std::string why =
            unseen.absent ? "there is no record of " + std::string(component) : "this host does not measure " + std::string(unseen.field);
        all += "  " + wrapped(std::string(unseen.rule->id) + ": " + why, 2, 6) + "\n";
    }
}

} // namespace

std::string text(const Proof& proof, const Result& result)
{
    std::string line = dictionary::element_name(*proof.field, proof.element) + " is " + value_text(proof, result.taken_at / second);
    if (proof.grown)
    {
        line += ", " + std::to_string(*proof.grown) + " more within the window";
        if (*proof.grown > 0 && result.seconds > 0) line += " (" + rate_text(static_cast<double>(*proof.grown) / result.seconds) + "/s)";
    }
    return line;
}

std::string verdict_line(const Result& result)
{
    const Verdict& verdict = result.verdict;
    return verdict.headline + (verdict.place.empty() ? "" : ". " + verdict.place);
}

std::string stage_line(const Result& result, std::size_t place)
{
    const StageResult& stage = result.stages[place];
    std::array<char, 64> head;
    std::snprintf(head.data(), head.size(), "  %-16s  %-8s", std::string(stage_title(stage.stage)).c_str(),
                  std::string(state_title(stage.state)).c_str());
    std::string line = head.data();
    const bool flowing = stage.state != StageState::idle && stage.in;
    if (flowing)
    {
        line += "  in " + rate_text(*stage.in) + ", out " + rate_text(*stage.out) + " " + std::string(flow(stage.stage).unit) + "/s";
        if (stage.lost.value_or(0) > 0) line += ", lost " + std::to_string(*stage.lost);
    }
    if (stage.state != StageState::idle && stage.last_good && (!flowing || *stage.out == 0))
        line += std::string(flowing ? ", " : "  ") + "last " + span_of(result.taken_at / second - *stage.last_good) + " ago";
    while (line.ends_with(' ')) line.pop_back();
    std::string numbers;
    for (const std::size_t finding : stage.findings) numbers += (numbers.empty() ? "" : ", ") + std::to_string(finding + 1);
    return numbers.empty() ? line : line + "  [" + numbers + "]";
}

std::string text(const Result& result)
{
    std::string all = result.verdict.headline + "\n";
    if (!result.verdict.place.empty()) all += wrapped(result.verdict.place, 0, 0) + "\n";
    all += "\n";
    for (std::size_t i = 0; i < result.stages.size(); ++i) all += stage_line(result, i) + "\n";
    for (std::size_t i = 0; i < result.findings.size(); ++i) append_finding(all, result.findings[i], i + 1, result);
    append_unseen(all, result);
    return all;
}

std::string text(const std::vector<Episode>& episodes)
{
    if (episodes.empty()) return "Nothing was found.\n";
    std::string all;
    for (const Episode& episode : episodes)
    {
        all += moment_text(episode.begin) + " to ";
        all += episode.over ? moment_text(episode.last) : "the end             ";
        all += "  " + severity_title(episode.finding.severity) + "  " + std::string(episode.finding.rule->id) + "  " +
               std::string(episode.finding.rule->title) + "\n";
    }
    return all;
}

} // namespace diagnosis
