#include "diagnosis.h"

#include <algorithm>
#include <functional>
#include <iterator>

#include "findings.h"
#include "stage_states.h"
#include "verdict.h"
#include "window.h"

namespace diagnosis
{

namespace
{

constinit const Reading uptime{"tdemux.uptime"};

constexpr std::int64_t starting = 15;              /**< within it a chain fills, and repeats pictures [s] */
constexpr std::int64_t aftermath = 15'000'000'000; /**< what a fault did may be under way for so long [ns] */
constexpr double nanosecond = 1e-9;

Doubt doubt_of(const Window& window)
{
    switch (window.broken())
    {
    case Break::instance:
    case Break::stream: return Doubt::restarted;
    case Break::gap: return Doubt::gap;
    case Break::clock_back: return Doubt::clock_set;
    case Break::none:
    case Break::single: break;
    }
    if (is_started(window).value_or(false) && window.measured(uptime) && window.value(uptime) >= 0 && window.value(uptime) < starting)
        return Doubt::starting;
    return Doubt::none;
}

} // namespace

Diagnosis::Diagnosis(Options options) : options_(options), seen_(rules().size(), 0) {}

bool Diagnosis::take(const records::Snapshot& snapshot)
{
    const double longest = std::max(options_.longest_gap, 3 * options_.window);
    const double passed = before_ ? static_cast<double>(snapshot.taken_at - before_->taken_at) * nanosecond : 0;
    const bool other = before_ && (snapshot.instance != before_->instance || snapshot.taken_at <= before_->taken_at);
    if (before_ && !other && passed < options_.window * 0.95) return false; // timers are not exact

    evaluate(Window(before_.get(), snapshot, longest));
    if (!before_)
        before_ = std::make_unique<records::Snapshot>(snapshot);
    else
        *before_ = snapshot;
    return true;
}

void Diagnosis::evaluate(const Window& window)
{
    result_ = Result();
    result_.taken_at = window.snapshot().taken_at;
    result_.seconds = window.seconds();
    if (const Doubt doubt = doubt_of(window); doubt != Doubt::none)
    {
        for (const StageInfo& stage : chain()) result_.stages[static_cast<std::size_t>(stage.stage)] = observe(stage.stage, window);
        result_.verdict = doubtful(doubt);
        std::ranges::fill(seen_, 0);
        held_.clear();
        for (Episode& episode : episodes_) episode.over = true;
        return;
    }

    std::vector<bool> recent(seen_.size());
    for (std::size_t i = 0; i < seen_.size(); ++i) recent[i] = seen_[i] != 0 && result_.taken_at - seen_[i] <= aftermath;
    Found found = find(window, recent);
    result_.findings = std::move(found.findings);
    result_.unseen = std::move(found.unseen);
    result_.asked = std::move(found.asked);
    const std::vector<Finding> held = hold_back(window);
    settle(held, found.follow, window);
    for (const Finding& finding : held) found.follow.push_back(finding.rule);
    date_findings();
    judge_stages(result_, window, found);
    result_.verdict = conclude(result_, window);
    if (!held.empty() && exit_status(result_) == 0) result_.verdict = doubtful(Doubt::onset);
    follow(window);
}

/** Takes those findings out of the result that have to wait for a second window. */
std::vector<Finding> Diagnosis::hold_back(const Window& window)
{
    std::vector<Finding> held;
    if (!options_.confirm || !window.whole()) return held;
    const auto waits = [&](const Finding& finding)
    {
        if ((finding.rule->follows & (loses | delays)) == 0) return false;
        const auto is_same = [&](const Episode& episode) { return episode.finding.rule == finding.rule && !episode.over; };
        return std::ranges::none_of(held_, is_same) && std::ranges::none_of(episodes_, is_same);
    };
    const auto end = result_.findings.end();
    const auto rest = std::stable_partition(result_.findings.begin(), end, std::not_fn(waits));
    held.assign(std::make_move_iterator(rest), std::make_move_iterator(end));
    result_.findings.erase(rest, end);
    return held;
}

/** What was held back is confirmed, or follows from what is seen now, or was over at once. */
void Diagnosis::settle(const std::vector<Finding>& held, const std::vector<const Rule*>& explained, const Window& window)
{
    for (Episode& episode : held_)
    {
        const Rule* rule = episode.finding.rule;
        const auto is_found = [&](const Finding& finding) { return finding.rule == rule; };
        const auto is_cause = [&](const Finding& finding) { return explains(*finding.rule, *rule); };
        if (std::ranges::any_of(result_.findings, is_found))
        {
            episodes_.push_back(episode); // it goes on
            continue;
        }
        if (std::ranges::find(explained, rule) != explained.end() || std::ranges::any_of(result_.findings, is_cause)) continue;
        episode.over = true;
        episodes_.push_back(episode);
    }
    held_.clear();
    for (const Finding& finding : held) held_.push_back(episode_of(finding, window));
}

/** What does not tell itself since when it is so, is so since the window in which it was first found. */
void Diagnosis::date_findings()
{
    constexpr std::int64_t second = 1'000'000'000; // [ns]
    for (Finding& finding : result_.findings)
    {
        const auto goes_on = [&](const Episode& episode) { return !episode.over && episode.finding.rule == finding.rule; };
        const auto open = std::ranges::find_if(episodes_, goes_on);
        if (!finding.since && open != episodes_.end()) finding.since = open->begin / second;
    }
}

Episode Diagnosis::episode_of(const Finding& finding, const Window& window) const
{
    const auto length = static_cast<std::int64_t>(window.seconds() * 1e9);
    return {
        .finding = finding, .begin = finding.since ? *finding.since * 1'000'000'000 : result_.taken_at - length, .last = result_.taken_at};
}

/** What is found goes on, what is not found for two windows is over. */
void Diagnosis::follow(const Window& window)
{
    for (const Finding& finding : result_.findings)
    {
        const auto place = static_cast<std::size_t>(std::ranges::find(rules(), finding.rule) - rules().begin());
        seen_[place] = result_.taken_at;
        const auto open =
            std::ranges::find_if(episodes_, [&](const Episode& episode) { return !episode.over && episode.finding.rule == finding.rule; });
        if (open != episodes_.end())
        {
            open->last = result_.taken_at;
            continue;
        }
        episodes_.push_back(episode_of(finding, window));
    }
    const auto hold = static_cast<std::int64_t>(2.5 * options_.window * 1e9);
    for (Episode& episode : episodes_)
        if (!episode.over && result_.taken_at - episode.last > hold) episode.over = true;
}

void Diagnosis::forget(std::int64_t before, std::size_t most)
{
    std::erase_if(episodes_, [before](const Episode& episode) { return episode.over && episode.last < before; });
    for (auto episode = episodes_.begin(); episodes_.size() > most && episode != episodes_.end();)
        episode = episode->over ? episodes_.erase(episode) : episode + 1;
}

Result diagnose(const records::Snapshot& now)
{
    Diagnosis diagnosis;
    diagnosis.take(now);
    return diagnosis.result();
}

Result diagnose(const records::Snapshot& before, const records::Snapshot& now)
{
    // However close or far apart they are, the two are the window that was asked for.
    const double apart = static_cast<double>(now.taken_at - before.taken_at) * nanosecond;
    Diagnosis diagnosis({.window = std::max(0.0, apart) * 0.9, .longest_gap = 600, .confirm = false});
    diagnosis.take(before);
    diagnosis.take(now);
    return diagnosis.result();
}

} // namespace diagnosis
