#include "series.h"

#include <utility>

#include "capture_source.h"
#include "failure.h"
#include "live.h"

namespace sources
{

namespace
{

class LiveSeries : public Series
{
public:
    explicit LiveSeries(const std::string& path) : decoder_(path) {}

    std::optional<Sight> next(std::chrono::nanoseconds /*step*/) override
    {
        published::Look look = decoder_.look();
        const published::State state = look.status.state;
        // What cannot be read at first is not waited for: it is another file, or somebody else's.
        if (!std::exchange(has_looked_, true) && !published::has_records(state)) files::fail_input(look.status.text);
        Sight sight = {.snapshot = std::nullopt, .state = std::string(published::state_name(state)), .problem = problem_of(look)};
        if (!look.snapshot.present.any()) return sight;
        look.snapshot.is_up = state == published::State::live;
        sight.snapshot = std::move(look.snapshot);
        return sight;
    }

private:
    LiveDecoder decoder_;
    bool has_looked_ = false;
};

/** Files of records, which somebody may write anew, and samples. */
class RepeatedSource : public Series
{
public:
    explicit RepeatedSource(Source source) : source_(std::move(source)) {}

    std::optional<Sight> next(std::chrono::nanoseconds /*step*/) override
    {
        return Sight{.snapshot = take(source_, {}), .state = {}, .problem = {}};
    }

private:
    Source source_;
};

class Playback : public Series
{
public:
    Playback(const std::string& path, const Range& range) : captured_(path, range), path_(path)
    {
        if (!read_ahead()) files::fail_input(files::shown(path) + ": no snapshot to play back");
        clock_ = ahead_.taken_at;
    }

    std::optional<Sight> next(std::chrono::nanoseconds step) override
    {
        constexpr std::int64_t longest_wait = 60'000'000'000;
        if (!has_ahead_) return std::nullopt;
        clock_ += step.count();
        if (ahead_.taken_at - clock_ > longest_wait) clock_ = ahead_.taken_at;
        while (has_ahead_ && ahead_.taken_at <= clock_)
        {
            current_ = ahead_;
            if (!read_ahead() || ahead_.taken_at >= current_.taken_at) continue;
            clock_ = ahead_.taken_at - step.count(); // the clock was set back: its new time begins with the next look
            break;
        }
        return Sight{.snapshot = current_, .state = {}, .problem = std::exchange(problem_, {})};
    }

private:
    bool read_ahead()
    {
        while (const auto event = captured_.next_event())
        {
            if (const auto* loss = std::get_if<capture::Loss>(&*event)) problem_ = files::shown(path_) + ": " + loss_text(*loss);
            if (const auto* snapshot = std::get_if<const records::Snapshot*>(&*event))
            {
                ahead_ = **snapshot;
                return has_ahead_ = true;
            }
        }
        return has_ahead_ = false;
    }

    Captured captured_;
    std::string path_;
    records::Snapshot current_;
    records::Snapshot ahead_;
    bool has_ahead_ = false;
    std::int64_t clock_ = 0; // of what is played back [ns since the epoch, UTC]
    std::string problem_;
};

} // namespace

std::unique_ptr<Series> open_playback(const std::string& path, const Range& range)
{
    return std::make_unique<Playback>(path, range);
}

std::unique_ptr<Series> open_series(const Source& source)
{
    if (const auto path = find_live(source)) return std::make_unique<LiveSeries>(*path);
    return std::make_unique<RepeatedSource>(source);
}

} // namespace sources
