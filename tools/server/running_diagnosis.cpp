#include "running_diagnosis.h"

#include "bounds.h"
#include "diagnosis_json.h"
#include "verdict.h"

namespace server
{

namespace
{

/** How bad a result is: healthy, cannot tell, warning, critical. */
int badness(const diagnosis::Result& result)
{
    constexpr int cannot_tell = 3;
    const int status = diagnosis::exit_status(result);
    return status == cannot_tell ? 1 : status == 0 ? 0 : status + 1;
}

} // namespace

RunningDiagnosis::RunningDiagnosis() : short_(short_window), long_(long_window) {}

void RunningDiagnosis::Windows::take(const records::Snapshot& snapshot)
{
    if (!diagnosis.take(snapshot)) return;
    if (!judged) judged.emplace();
    judged->decoder = snapshot.decoder;
    judged->instance = snapshot.instance;
    judged->taken_at = snapshot.taken_at;
    diagnosis.forget(snapshot.taken_at - episode_memory.count(), most_episodes);
}

void RunningDiagnosis::take(const records::Snapshot& snapshot)
{
    short_.take(snapshot);
    long_.take(snapshot);
}

bool RunningDiagnosis::is_long_told() const
{
    constexpr int warning = 2;
    const int badness_of_long = badness(long_.diagnosis.result());
    return long_.diagnosis.result().seconds > 0 && badness_of_long >= warning && badness_of_long >= badness(short_.diagnosis.result());
}

std::optional<diagnosis::Result> RunningDiagnosis::result() const
{
    if (!short_.judged) return std::nullopt;
    const diagnosis::Result& now = short_.diagnosis.result();
    if (!is_long_told()) return now;
    diagnosis::Result result = long_.diagnosis.result();
    for (std::size_t i = 0; i < result.stages.size(); ++i)
    {
        result.stages[i].in = now.stages[i].in;
        result.stages[i].out = now.stages[i].out;
        result.stages[i].last_good = now.stages[i].last_good;
    }
    return result;
}

std::string RunningDiagnosis::json(bool is_live) const
{
    auto told = result();
    if (told && !is_live) told->verdict = diagnosis::outdated(std::move(told->verdict));
    return told ? diagnosis::json(*told, long_.diagnosis.episodes(), is_long_told() ? *long_.judged : *short_.judged) : std::string();
}

} // namespace server
