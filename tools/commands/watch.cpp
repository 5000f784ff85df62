/**
 * @file watch.cpp
 * decstats watch: a decoder as it lives.
 */
#include <algorithm>
#include <csignal>
#include <limits>
#include <memory>
#include <utility>

#include "commands.h"
#include "failure.h"
#include "json.h"
#include "options.h"
#include "screen.h"
#include "series.h"
#include "signals.h"
#include "standard_output.h"
#include "terminal.h"

namespace commands
{

namespace
{

using std::chrono::nanoseconds;
using std::chrono::steady_clock;

struct Options
{
    sources::Source source;
    nanoseconds every = std::chrono::seconds(1);
    std::uint64_t count = std::numeric_limits<std::uint64_t>::max();
    std::vector<std::string> fields;
    std::bitset<records::component_count> components;
    STATS_LEVEL level = STATS_LEVEL_DEFAULT;
    std::optional<double> speed;
    sources::Range range;

    /** How much later each look is in a capture file. */
    nanoseconds step() const
    {
        constexpr double longest = 1e18;
        return nanoseconds(static_cast<std::int64_t>(std::min(static_cast<double>(every.count()) * speed.value_or(1), longest)));
    }
};

std::unique_ptr<sources::Series> open_series(const Options& options)
{
    if (sources::is_captured(options.source)) return sources::open_playback(options.source.text, options.range);
    if (options.speed || options.range.is_given()) files::fail_input("--speed, --from and --to are for a SOURCE that is a capture file");
    return sources::open_series(options.source);
}

/** When the next look is due. Those that have been missed are not made up for. */
class Pace
{
public:
    explicit Pace(nanoseconds every) : every_(every), due_(steady_clock::now() + every) {}

    nanoseconds left() const { return due_ - steady_clock::now(); }

    void take_next()
    {
        due_ += every_;
        if (left() < nanoseconds::zero()) due_ = steady_clock::now() + every_;
    }

private:
    nanoseconds every_;
    steady_clock::time_point due_;
};

void paint(const Options& options, const LibraryFile& library)
{
    const auto series = open_series(options);
    const Watched watched = {
        .fields = named_fields(options.fields), .components = options.components, .level = options.level, .step = options.step()};
    Screen screen(watched, library);
    std::vector<views::WatchLine> painted;
    std::optional<sources::Sight> sight = series->next({});
    if (sight) painted = screen.next(std::move(*sight)); // what fails at once is told on the shell's screen

    const Signals signals({SIGINT, SIGTERM, SIGHUP, SIGWINCH, SIGTSTP});
    Terminal terminal;
    Pace pace(options.every);
    for (std::uint64_t looks = 1; sight; ++looks)
    {
        terminal.paint(painted);
        if (looks >= options.count) return;
        while (const auto signal = signals.wait(pace.left()))
        {
            if (*signal != SIGWINCH && *signal != SIGTSTP) return;
            if (*signal == SIGTSTP) terminal.suspend();
            terminal.paint(painted);
        }
        pace.take_next();
        sight = series->next(options.step());
        if (sight) painted = screen.next(std::move(*sight));
    }
}

/** One line of JSON for each look at records that are not those of the last one. */
void write_lines(const Options& options)
{
    const auto series = open_series(options);
    const std::vector<dictionary::Found> fields = named_fields(options.fields);
    views::Selection selection;
    std::bitset<records::component_count> components = options.components;
    for (const dictionary::Found& field : fields) selection.add(field), components.set(field.field->component);

    const Signals signals({});
    Pace pace(options.every);
    std::string last_state = "live";
    std::optional<std::pair<std::optional<records::Instance>, std::int64_t>> last;
    nanoseconds step = {};
    for (std::uint64_t written = 0; written < options.count;)
    {
        auto sight = series->next(std::exchange(step, options.step()));
        if (!sight) return;
        const std::string& state = sight->state.empty() ? sight->problem : sight->state;
        if (std::exchange(last_state, state) != state && !sight->problem.empty()) files::warn(sight->problem);
        if (sight->snapshot)
        {
            records::Snapshot& now = *sight->snapshot;
            if (std::exchange(last, std::pair(now.instance, now.taken_at)) != std::pair(now.instance, now.taken_at))
            {
                if (components.any()) now.present &= components;
                files::print(views::json(now, fields.empty() ? nullptr : &selection) + "\n");
                files::flush();
                if (++written == options.count) return;
            }
        }
        signals.wait(pace.left());
        pace.take_next();
    }
}

} // namespace

void add_watch(Command& command, Invocation& invocation)
{
    const auto options = std::make_shared<Options>();
    add_source(command, options->source);
    add_duration(command, "--every", options->every, std::chrono::milliseconds(10), "How often: 1s without it");
    command.value("--count", options->count, "How many times; without it, until a signal ends it").positive().value_name("N");
    add_fields(command, options->fields);
    add_components(command, options->components);
    add_level(command, options->level);
    command.value("--speed", options->speed, "Play a capture file back so many times as fast as it was").positive().value_name("N");
    add_range(command, options->range);
    command.run(
        [options, &invocation]
        {
            if (can_paint())
                paint(*options, invocation.library);
            else
                write_lines(*options);
        });
}

} // namespace commands
