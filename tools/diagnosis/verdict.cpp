#include "verdict.h"

#include <algorithm>

#include "flow.h"
#include "hostsvc.h"

namespace diagnosis
{

namespace
{

std::string span_of(std::int64_t seconds)
{
    char text[64];
    return FormatUpTime(seconds, text, sizeof text);
}

const StageResult& at(const Result& result, Stage stage)
{
    return result.stages[static_cast<std::size_t>(stage)];
}

bool gone(const StageResult& stage)
{
    return stage.state == StageState::stopped || stage.state == StageState::no_input;
}

/** "No picture for 1m 35s" */
std::string outage(const char* what, const StageResult& stage, const Window& window)
{
    std::string text = what;
    if (!stage.last_good) return text;
    const std::int64_t age = window.now() - *stage.last_good;
    return age > 0 ? text + " for " + span_of(age) : text;
}

/** What is wrong, and how much of it. */
std::string title(const Finding& finding)
{
    return std::string(finding.rule->title) + (finding.detail.empty() ? "" : ": ") + finding.detail;
}

std::string headline(const Result& result, const Finding& first, const Window& window)
{
    if (first.rule->stage == Stage::host) return "Nothing is known any more: the records are old";
    if (first.severity != Severity::critical) return title(first);
    const bool picture = gone(at(result, Stage::output));
    const bool sound = gone(at(result, Stage::audio));
    if (picture && sound)
        return outage("No picture", at(result, Stage::output), window) + outage(", no sound", at(result, Stage::audio), window);
    if (picture) return outage("No picture", at(result, Stage::output), window);
    if (sound) return outage("No sound", at(result, Stage::audio), window);
    return title(first);
}

/** Whether something is gone, and not only bad. */
bool has_stopped(const Result& result, const Finding& first)
{
    if (first.severity != Severity::critical) return false;
    const auto is_stopped = [](const StageResult& stage) { return stage.state == StageState::stopped; };
    return first.rule->stage == Stage::host || gone(at(result, Stage::output)) || gone(at(result, Stage::audio)) ||
           std::ranges::any_of(result.stages, is_stopped);
}

Verdict bad(const Result& result, const Window& window)
{
    const Finding& first = result.findings.front();
    Verdict verdict;
    verdict.state = has_stopped(result, first) ? StageState::stopped : StageState::degraded;
    verdict.stage = first.rule->stage;
    verdict.headline = headline(result, first, window);
    verdict.place = std::string(stage_title(first.rule->stage));
    if (verdict.headline != title(first)) verdict.place += ": " + title(first);
    if (first.since && window.now() > *first.since) verdict.place += ", for " + span_of(window.now() - *first.since);
    verdict.place += ".";
    verdict.action = first.rule->remedy;
    return verdict;
}

} // namespace

Verdict doubtful(Doubt doubt)
{
    Verdict verdict;
    verdict.state = StageState::unknown;
    verdict.doubt = doubt;
    verdict.headline = doubt == Doubt::missing ? "Cannot tell" : "Cannot tell yet";
    switch (doubt)
    {
    case Doubt::starting: verdict.place = "The stream has just been started."; break;
    case Doubt::restarted: verdict.place = "The decoder was started again within the window."; break;
    case Doubt::gap: verdict.place = "Nothing is known of a part of the window."; break;
    case Doubt::clock_set: verdict.place = "The system's clock was set within the window."; break;
    case Doubt::onset: verdict.place = "Something has just begun. The next window tells where."; break;
    case Doubt::cleared: verdict.place = "Counters were cleared within the window."; break;
    case Doubt::missing: verdict.place = "Records are missing, or fields that this host does not measure."; break;
    case Doubt::undecided: verdict.place = "A stage passes on nothing. A longer window tells why."; break;
    case Doubt::single:
    case Doubt::not_live:
    case Doubt::none: break;
    }
    return verdict;
}

Verdict outdated(Verdict verdict)
{
    verdict.doubt = Doubt::not_live;
    verdict.place += std::string(verdict.place.empty() ? "" : " ") + "That was the last verdict: the decoder is not live.";
    verdict.action = {};
    return verdict;
}

Verdict conclude(const Result& result, const Window& window)
{
    if (!result.findings.empty() && result.findings.front().severity != Severity::note) return bad(result, window);

    const auto all = [&](auto... states)
    { return std::ranges::all_of(result.stages, [&](const StageResult& stage) { return ((stage.state == states) || ...); }); };
    Verdict verdict;
    if (all(StageState::idle))
    {
        verdict.state = StageState::idle;
        verdict.headline = "Idle";
        verdict.place = "No stream was started on this decoder. That is not a fault.";
        return verdict;
    }
    if (window.broken() == Break::none)
    {
        for (std::size_t i = 0; i < records::component_count; ++i)
            if (window.cleared(i)) return doubtful(Doubt::cleared);
    }
    const StageResult& network = at(result, Stage::network);
    // What has come before and does not come now may be a host that hangs, or a network that has just fallen silent.
    if (network.state == StageState::no_input && network.last_good) return doubtful(Doubt::undecided);
    if (network.state == StageState::no_input)
    {
        verdict.state = StageState::no_input;
        verdict.stage = Stage::network;
        verdict.headline = "Waiting for a sender";
        verdict.place = "Nothing has arrived yet. That is not a fault of this decoder.";
        return verdict;
    }
    // The clock may be undecided for minutes without anything being wrong.
    const auto is_open = [](const StageResult& stage) { return stage.state == StageState::unknown && stage.stage != Stage::clock; };
    const bool known = std::ranges::none_of(result.stages, is_open);
    const auto is_measured = [&](const StageInfo& stage) { return measured(flow(stage.stage), window); };
    const bool is_all_seen = std::ranges::all_of(chain(), is_measured) && result.unseen.empty();
    if (!known) return doubtful(is_all_seen ? Doubt::undecided : Doubt::missing);
    verdict.state = StageState::working;
    verdict.headline = "Healthy";
    verdict.place = window.whole() ? "Every stage passes on what it gets." : "As far as one moment tells: rates cannot be seen.";
    verdict.doubt = window.whole() ? Doubt::none : Doubt::single;
    return verdict;
}

int exit_status(const std::vector<Episode>& episodes)
{
    int status = 0;
    for (const Episode& episode : episodes)
    {
        if (episode.finding.severity == Severity::critical) return 2;
        if (episode.finding.severity == Severity::warning) status = 1;
    }
    return status;
}

int exit_status(const Result& result)
{
    if (result.verdict.doubt == Doubt::not_live) return 3;
    switch (result.verdict.state)
    {
    case StageState::stopped: return 2;
    case StageState::degraded: return result.findings.front().severity == Severity::critical ? 2 : 1;
    case StageState::unknown: return 3;
    default: return 0;
    }
}

} // namespace diagnosis
