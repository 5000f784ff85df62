#include "series.h"

#include <utility>

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
        if (!std::exchange(has_looked_, true) && !published::has_records(state))
            throw files::Failure(files::ExitStatus::input_failed, look.status.text);
        Sight sight = {.snapshot = std::nullopt, .state = std::string(published::state_name(state)), .problem = problem_of(look)};
        if (look.snapshot.present.any()) sight.snapshot = std::move(look.snapshot);
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

} // namespace

std::unique_ptr<Series> open_series(const Source& source)
{
    if (const auto path = find_live(source)) return std::make_unique<LiveSeries>(*path);
    return std::make_unique<RepeatedSource>(source);
}

} // namespace sources
