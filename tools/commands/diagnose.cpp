/**
 * @file diagnose.cpp
 * decstats diagnose: what is wrong with a decoder, and where.
 */
#include <array>
#include <chrono>
#include <cstdio>
#include <memory>
#include <thread>
#include <utility>

#include "capture_source.h"
#include "commands.h"
#include "diagnosis.h"
#include "diagnosis_json.h"
#include "diagnosis_metrics.h"
#include "diagnosis_text.h"
#include "explanation.h"
#include "failure.h"
#include "json.h"
#include "live.h"
#include "options.h"
#include "series.h"
#include "source.h"
#include "standard_output.h"

namespace commands
{

namespace
{

using std::chrono::nanoseconds;

struct Options
{
    sources::Source source;
    nanoseconds window = std::chrono::seconds(10);
    std::string format = "text";
    std::string rule;
    std::optional<sources::At> at;
    sources::Range range;

    double window_seconds() const { return std::chrono::duration<double>(window).count(); }
    bool is_metrics() const { return format == "openmetrics" || format == "prometheus"; }
};

constexpr int critical = 2; // exit status

[[noreturn]] void fail(const std::string& message)
{
    throw files::Failure(files::ExitStatus::cannot_tell, message);
}

void explain(const std::string& id)
{
    const diagnosis::Rule* rule = diagnosis::find_rule(id);
    if (rule == nullptr) fail("'" + id + "' is no finding; decstats-findings(5) has them all");
    files::print(diagnosis::explanation(*rule));
}

std::string metrics(const Options& options, const diagnosis::Result& result, const records::Snapshot& snapshot)
{
    const bool is_openmetrics = options.format == "openmetrics";
    const views::MetricsFormat format = is_openmetrics ? views::MetricsFormat::openmetrics : views::MetricsFormat::prometheus;
    const diagnosis::Diagnosed decoder = {.decoder = snapshot.decoder, .result = &result};
    std::string text;
    diagnosis::write_metrics(text, {&decoder, 1}, format);
    return text.append(views::end_of_metrics(format));
}

int print(const Options& options, const diagnosis::Result& result, const records::Snapshot& snapshot)
{
    if (options.format == "json")
        files::print(views::indented(diagnosis::json(result, snapshot)) + "\n");
    else if (options.format == "text")
        files::print(diagnosis::text(result));
    else
        files::print(metrics(options, result, snapshot));
    return diagnosis::exit_status(result);
}

/** Looks at a live decoder: twice, and once more where something has just begun. */
int diagnose_live(const Options& options)
{
    const auto series = sources::open_series(options.source);
    diagnosis::Diagnosis diagnosis({.window = options.window_seconds()});
    records::Snapshot snapshot;
    std::string state;
    for (int looks = 0; looks < 2 || (looks < 3 && diagnosis.result().verdict.doubt == diagnosis::Doubt::onset); ++looks)
    {
        if (looks > 0) std::this_thread::sleep_for(options.window);
        std::optional<sources::Sight> sight = series->next(options.window);
        if (sight && std::exchange(state, sight->state) != sight->state && !sight->problem.empty()) files::warn(sight->problem);
        // Of a host that has ended there is nothing more to come, whatever its last records say.
        if (sight && sight->state == published::state_name(published::State::stale)) return critical;
        if (!sight || !sight->snapshot) fail("there are no records to look at");
        snapshot = std::move(*sight->snapshot);
        diagnosis.take(snapshot);
    }
    // That it hangs is said already. What its old records look like within a window too short to see that says nothing.
    const bool hangs = state == published::state_name(published::State::hung);
    if (hangs && diagnosis::exit_status(diagnosis.result()) != critical) return critical;
    return print(options, diagnosis.result(), snapshot);
}

/** Looks at the last two windows of a capture file before a moment. */
int diagnose_moment(const Options& options)
{
    const records::Snapshot last = sources::take_captured(options.source.text, options.at);
    const std::int64_t window = options.window.count();
    std::array<std::optional<records::Snapshot>, 2> earlier; // a window before, and two
    sources::Captured captured(options.source.text, {.from = last.taken_at - 4 * window, .to = last.taken_at});
    while (auto snapshot = captured.next())
        for (std::size_t i = 0; i < earlier.size(); ++i)
            if (snapshot->taken_at <= last.taken_at - static_cast<std::int64_t>(i + 1) * window) earlier[i] = snapshot;

    diagnosis::Diagnosis diagnosis({.window = options.window_seconds()});
    for (auto before = earlier.rbegin(); before != earlier.rend(); ++before)
        if (*before) diagnosis.take(**before);
    diagnosis.take(last);
    return print(options, diagnosis.result(), last);
}

/** Looks at a whole range of a capture file. */
int diagnose_range(const Options& options)
{
    sources::Captured captured(options.source.text, options.range);
    diagnosis::Diagnosis diagnosis({.window = options.window_seconds()});
    records::Snapshot last;
    bool is_judged = false;
    while (auto snapshot = captured.next())
    {
        last = std::move(*snapshot);
        if (diagnosis.take(last)) is_judged = is_judged || diagnosis.result().verdict.state != diagnosis::StageState::unknown;
    }
    if (!is_judged) fail(files::shown(options.source.text) + ": no window of that range can be judged");
    if (options.format == "json")
        files::print(views::indented(diagnosis::json(diagnosis.episodes(), last)) + "\n");
    else
        files::print(diagnosis::text(diagnosis.episodes()));
    return diagnosis::exit_status(diagnosis.episodes());
}

int diagnose(const Options& options)
{
    const bool is_captured = sources::is_captured(options.source);
    const bool is_range = options.range.is_given();
    if (is_range && !is_captured) fail("--from and --to are for capture files");
    if (is_range && options.is_metrics()) fail("metrics are of one moment: --from and --to are for --format text and json");
    if (is_range && options.at) fail("--at is one moment, --from and --to are a range: not both");
    if (is_captured) return is_range ? diagnose_range(options) : diagnose_moment(options);
    if (!options.at && sources::find_live(options.source)) return diagnose_live(options);
    const records::Snapshot snapshot = sources::take(options.source, options.at);
    return print(options, diagnosis::diagnose(snapshot), snapshot);
}

} // namespace

void add_diagnose(Command& command, Invocation& invocation)
{
    const auto options = std::make_shared<Options>();
    const Option source = add_source(command, options->source);
    add_duration(command, "--window", options->window, std::chrono::seconds(1),
                 "How far the moments lie apart that are compared, 10s without it");
    add_at(command, options->at);
    add_range(command, options->range);
    add_format(command, options->format, {"text", "json", "openmetrics", "prometheus"});
    command.value("--explain", options->rule, "Print what a finding is, why its limits are as they are and what to do")
        .value_name("ID")
        .excludes(source);
    command.footer("Exit status: 0 healthy or idle, 1 warning, 2 critical, 3 cannot tell, whatever the reason.\n"
                   "decstats-findings(5) has all findings.");
    command.run(
        [options, &invocation]
        {
            if (!options->rule.empty()) return explain(options->rule);
            invocation.status = diagnose(*options);
        });
}

} // namespace commands
