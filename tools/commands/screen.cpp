#include "screen.h"

#include <algorithm>
#include <utility>

#include "diagnosis_text.h"
#include "failure.h"
#include "number_text.h"
#include "reports.h"

namespace commands
{

namespace
{

using diagnosis::Result;
using views::WatchLine;

/** Rules want seconds in which something can be counted: a look is too short, unless looks are far apart. */
double window_of(std::chrono::nanoseconds step)
{
    return std::max(diagnosis::Options().window, std::chrono::duration<double>(step).count());
}

/** Whether a verdict says something else, not just that it has lasted longer. */
bool is_other(const Result& old, const Result& now)
{
    const auto first = [](const Result& result) { return result.findings.empty() ? nullptr : result.findings.front().rule; };
    return old.verdict.state != now.verdict.state || old.verdict.doubt != now.verdict.doubt || first(old) != first(now);
}

} // namespace

Screen::Screen(Watched watched, const LibraryFile& library)
    : watched_(std::move(watched)), library_(library), diagnosis_({.window = window_of(watched_.step)})
{
}

std::vector<WatchLine> Screen::next(sources::Sight sight)
{
    lines_.clear();
    append_heading(sight);
    if (!sight.problem.empty()) append("! " + files::printable(sight.problem), false);
    if (!sight.snapshot) return lines_;
    std::optional<views::Comparison> comparison;
    if (last_) comparison.emplace(*last_, *sight.snapshot);
    append_diagnosis(*sight.snapshot);
    append_body(*sight.snapshot, comparison ? &*comparison : nullptr);
    last_ = std::move(sight.snapshot);
    return lines_;
}

void Screen::append_heading(const sources::Sight& sight)
{
    if (!sight.snapshot) return append(sight.state, false);
    const records::Snapshot& now = *sight.snapshot;
    const bool is_restarted = last_ && last_->instance != now.instance;
    std::string text = now.decoder + (now.decoder.empty() ? "" : "  ") + sight.state + (sight.state.empty() ? "" : "  ");
    text += views::moment_text(now.taken_at);
    if (is_restarted) text += "  restarted: its counters have begun anew";
    append(std::move(text), is_restarted);
}

/** The verdict, and the chain where nothing is chosen. Both stay as they are until a window is full. */
void Screen::append_diagnosis(const records::Snapshot& now)
{
    const Result before = diagnosis_.result();
    const bool is_new = diagnosis_.take(now) && last_;
    const Result& result = diagnosis_.result();
    append(diagnosis::verdict_line(result), is_new && is_other(before, result));
    if (!watched_.fields.empty() || watched_.components.any()) return;
    for (std::size_t i = 0; i < result.stages.size(); ++i)
        append(diagnosis::stage_line(result, i), is_new && before.stages[i].state != result.stages[i].state);
    append("", false);
}

void Screen::append_body(const records::Snapshot& now, const views::Comparison* comparison)
{
    const auto append_all = [&](const std::vector<WatchLine>& more) { lines_.insert(lines_.end(), more.begin(), more.end()); };
    if (!watched_.fields.empty()) return append_all(views::field_watch_lines(now, comparison, watched_.fields));
    for (const records::Component& component : records::components())
    {
        if (!now.has(component) || (watched_.components.any() && !watched_.components[component.index])) continue;
        const std::string report = views::report_text(now, library_, 1U << component.index, watched_.level);
        std::vector<WatchLine>& before = reports_[component.index];
        before = views::report_watch_lines(component, report, before, comparison);
        append_all(before);
    }
}

} // namespace commands
