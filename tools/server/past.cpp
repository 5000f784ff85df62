#include "past.h"

#include <algorithm>
#include <chrono>

#include "bounds.h"
#include "capture_source.h"
#include "moment.h"
#include "parameters.h"
#include "past_series.h"
#include "refusal.h"

namespace server
{

namespace
{

constexpr std::int64_t longest_step = 3 * look_interval.count(); // between two snapshots of the memory without a gap [ns]

/** The time that a request asks for. */
struct Span
{
    std::int64_t from;
    std::int64_t to;
};

Span span_of(const Request& request, std::int64_t now)
{
    const auto from = moment(request, "from");
    if (!from) throw Refusal(400, "from: a moment in seconds since 1970 is expected, and is missing");
    // Answers have moments to the millisecond, so what was in its millisecond is asked for by it.
    const std::int64_t to = moment(request, "to").value_or(now) + 999'999;
    if (to < *from) throw Refusal(400, "to: is before from");
    if (to - *from > std::chrono::nanoseconds(longest_history_request).count())
        throw Refusal(400, "from: " + std::to_string(longest_history_request.count()) + " seconds before to at most");
    return {*from, to};
}

/** What a capture file has of a time before the memory's. One that cannot be read, or is not there yet, has nothing. */
void read_file(PastSeries& series, const std::string& path, Span span)
{
    try
    {
        sources::Captured captured(path, {.from = span.from, .to = span.to});
        while (const auto event = captured.next_event())
        {
            if (const auto* snapshot = std::get_if<const records::Snapshot*>(&*event)) series.take(**snapshot);
            if (const auto* gap = std::get_if<capture::Gap>(&*event); gap != nullptr && gap->to > gap->from)
                series.take_gap(std::max(gap->from, span.from), std::min(gap->to, span.to));
            if (const auto* loss = std::get_if<capture::Loss>(&*event); loss != nullptr && loss->after && loss->before)
                series.take_gap(std::max(*loss->after, span.from), std::min(*loss->before, span.to));
        }
    }
    catch (const files::Failure&)
    {
        return;
    }
}

} // namespace

std::string past_json(WatchedDecoder& decoder, const Request& request)
{
    require_known(request, {"field", "from", "to"});
    PastSeries series(fields(request));
    const SightPointer sight = decoder.sight();
    const bool is_captured = sight->state == captured_state;
    const Span span = span_of(request, is_captured ? sight->looked_at : sources::present_moment());

    // A capture file knows its own gaps, so all of it is read there.
    const std::int64_t remembered = is_captured ? span.to + 1 : decoder.first_moment().value_or(span.to + 1);
    const std::string file = decoder.capture_file();
    if (span.from < remembered && !file.empty()) read_file(series, file, {span.from, std::min(span.to, remembered - 1)});
    const auto take = [&](const records::Snapshot& snapshot)
    {
        const auto last = series.last_moment();
        if (last && snapshot.taken_at - *last > longest_step) series.take_gap(*last, snapshot.taken_at);
        series.take(snapshot);
    };
    decoder.read_history(std::max(span.from, remembered), span.to, take);
    if (const auto last = series.last_moment(); last && !is_captured && span.to - *last > longest_step) series.take_gap(*last, span.to);
    return series.json(sight->listed.name);
}

} // namespace server
