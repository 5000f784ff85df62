#include "stage_states.h"

#include <algorithm>

#include "flow.h"
#include "sessmgr_types.h"

namespace diagnosis
{

namespace
{

constinit const Reading started{"tdemux.stream_started"};
constinit const Reading uptime{"tdemux.uptime"};
constinit const Reading demuxed{"tdemux.output_packets"};
constinit const Reading video_streams{"tdemux.video_streams"};
constinit const Reading audio_streams{"tdemux.audio_streams"};
constinit const Reading mode{"clock_recovery.tracking_mode"};
constinit const Reading unsettled{"clock_recovery.pll_unsettled"};

constexpr std::int64_t settling = 600; /**< until then the PLL may settle [s] */
constexpr std::int64_t recent = 3;     /**< what happened so long ago may be going on, as one moment tells [s] */

/** Whether the stream has nothing of what is counted here. @return nothing = this host does not measure what tells it */
std::optional<bool> has_none(Stage stage, const Window& window)
{
    const auto is_zero = [&window](const Reading& count) -> std::optional<bool>
    {
        if (!window.measured(count)) return {};
        return window.value(count) == 0;
    };
    switch (stage)
    {
    case Stage::framer:
    case Stage::vdecoder:
    case Stage::output: return is_zero(video_streams);
    case Stage::audio: return is_zero(audio_streams);
    case Stage::metadata:
    {
        const Reading& in = *flow(stage).in;
        for (std::size_t i = 0; i < in.field().count(); ++i)
            if (window.value(in, i) != 0) return false;
        return true;
    }
    default: return false;
    }
}

/** Whether the stream has nothing for a stage. @return nothing = this host does not measure what tells it */
std::optional<bool> is_unused(Stage stage, const Window& window)
{
    if (stage == Stage::clock)
    {
        if (!window.measured(mode)) return {};
        const auto now = window.value(mode);
        return now == SMGR_CLOCK_TRACKING_DISABLED || now == SMGR_CLOCK_TRACKING_DISABLED_LOCK;
    }
    const auto none = has_none(stage, window);
    if (!none || !*none) return none;
    if (!window.measured(demuxed)) return {};
    if (window.value(demuxed) == 0) return false; // it is not known yet what the stream has
    const auto age = window.age(*flow(stage).last);
    if (!age) return true;
    if (!window.measured(uptime)) return {};
    return *age >= window.value(uptime); // otherwise it had something for this stage
}

/** Whether something passes a stage now. What stood still for as long as the rules wait does not. */
bool passes(const StageResult& observed, const Window& window)
{
    if (!observed.last_good || window.now() - *observed.last_good >= recent) return false;
    return !window.whole() || observed.out.value_or(0) > 0;
}

/** What the findings say about a stage: the worst of its own, then that it suffers from others. One that ends a part of what it passes
 *  on, as the video of a stream whose sound goes on, has not stopped it. */
std::optional<StageState> by_findings(const StageResult& observed, const Result& result, const Window& window, const Found& found)
{
    const Stage stage = observed.stage;
    std::optional<StageState> state;
    for (const Finding& finding : result.findings)
    {
        if (finding.rule->stage != stage || finding.severity == Severity::note) continue;
        const bool stopped = finding.severity == Severity::critical && (finding.rule->causes & stops) != 0;
        if (stopped && !passes(observed, window)) return StageState::stopped;
        state = StageState::degraded;
    }
    if (!state && std::ranges::any_of(found.follow, [&](const Rule* rule) { return rule->stage == stage; })) state = StageState::degraded;
    return state;
}

bool own_finding(Stage stage, const Result& result)
{
    return std::ranges::any_of(result.findings,
                               [&](const Finding& finding) { return finding.rule->stage == stage && finding.severity != Severity::note; });
}

StageState judge(const StageResult& observed, const Result& result, const Window& window, const Found& found)
{
    const Stage stage = observed.stage;
    const Flow& counted = flow(stage);
    if (!measured(counted, window) || window.cleared(*counted.in) || window.cleared(*counted.out)) return StageState::unknown;

    const bool starved = std::ranges::any_of(result.stages,
                                             [&](const StageResult& other)
                                             {
                                                 return other.stage != stage && reaches(other.stage, stage) &&
                                                        (other.state == StageState::stopped || other.state == StageState::no_input);
                                             }) ||
                         std::ranges::any_of(result.findings,
                                             [&](const Finding& finding) {
                                                 return finding.severity == Severity::critical && (finding.rule->causes & stops) != 0 &&
                                                        reaches(finding.rule->stage, stage);
                                             });
    const std::optional<StageState> found_state = by_findings(observed, result, window, found);
    if (own_finding(stage, result)) return *found_state;

    const std::optional<bool> unused = is_unused(stage, window);
    if (window.whole())
    {
        const bool in = observed.in.value_or(0) > 0;
        const bool out = observed.out.value_or(0) > 0;
        if (!in && !out)
        {
            if (unused) return *unused ? StageState::idle : StageState::no_input;
            return starved ? StageState::no_input : StageState::unknown;
        }
        if (found_state) return *found_state;
        if (stage == Stage::clock && window.value(unsettled) != 0 && window.value(uptime) < settling) return StageState::unknown;
        if (out) return StageState::working;
        return window.now() - observed.last_good.value_or(0) <= recent ? StageState::working : StageState::unknown;
    }
    if (unused.value_or(false)) return StageState::idle;
    if (observed.last_good && window.now() - *observed.last_good <= recent) return StageState::working;
    if (starved || (unused && !observed.last_good)) return StageState::no_input;
    return StageState::unknown;
}

} // namespace

std::optional<bool> is_started(const Window& window)
{
    if (!window.measured(started)) return {};
    return window.value(started) != 0;
}

StageResult observe(Stage stage, const Window& window)
{
    StageResult observed{.stage = stage, .state = StageState::unknown, .in = {}, .out = {}, .lost = {}, .last_good = {}, .findings = {}};
    const Flow& counted = flow(stage);
    if (!measured(counted, window)) return observed;
    for (std::size_t i = 0; i < counted.last->field().count(); ++i)
    {
        const auto age = window.age(*counted.last, i);
        if (age) observed.last_good = std::max(observed.last_good.value_or(0), window.now() - *age);
    }
    if (!window.whole() || window.cleared(*counted.in) || window.cleared(*counted.out)) return observed;
    const Passed all = passed(counted, window);
    const auto rate = [&](std::int64_t passed, const Reading& reading)
    {
        const double seconds = window.seconds(reading);
        return seconds > 0 ? static_cast<double>(passed) / seconds : 0;
    };
    observed.in = rate(all.in, *counted.in);
    observed.out = rate(all.out, *counted.out);
    observed.lost = all.lost;
    return observed;
}

void judge_stages(Result& result, const Window& window, const Found& found)
{
    for (const StageInfo& stage : chain()) result.stages[static_cast<std::size_t>(stage.stage)] = observe(stage.stage, window);

    std::array<Stage, stage_count> order;
    for (std::size_t i = 0; i < stage_count; ++i) order[i] = chain()[i].stage;
    std::ranges::sort(order, {}, causal_place);
    const bool idle = !is_started(window).value_or(true);
    const bool hung = !result.findings.empty() && result.findings.front().rule->stage == Stage::host;
    for (const Stage stage : order)
    {
        StageResult& observed = result.stages[static_cast<std::size_t>(stage)];
        if (hung) continue;
        observed.state = idle ? StageState::idle : judge(observed, result, window, found);
    }
    for (std::size_t i = 0; i < result.findings.size(); ++i)
    {
        const Stage stage = result.findings[i].rule->stage;
        if (stage != Stage::host) result.stages[static_cast<std::size_t>(stage)].findings.push_back(i);
    }
}

} // namespace diagnosis
