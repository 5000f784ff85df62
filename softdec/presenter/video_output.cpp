#include "presenter/video_output.h"

#include <algorithm>

namespace softdec
{

namespace
{

/** A picture whose time is further away has a time stamp of another clock and cannot be shown. */
constexpr Ticks furthest = 11 * ticks_per_second;

} // namespace

void VideoOutput::take(std::optional<Ticks> pts, Ticks period, std::optional<Ticks> stc)
{
    auto& counters = record_.tCounters;
    ++counters.nNumFramesSentToDisplay;
    counters.tLastFrameSentToDisplay = clock_.seconds();
    period_ = period;
    if (!pts)
    {
        ++counters.nOutputTimestampsMissing;
        counters.tLastOutputTimestampMissing = clock_.seconds();
        pts = shown_ ? next_ : stc.value_or(0);
    }
    if (!stc) return show(*pts);

    const Ticks lead = *pts - *stc;
    const bool first = counters.tMinOutputSTCLeadTime == 0;
    counters.nOutputSTCLeadTime = milliseconds(lead);
    if (first || counters.nOutputSTCLeadTime < counters.nMinOutputSTCLeadTime)
    {
        counters.nMinOutputSTCLeadTime = counters.nOutputSTCLeadTime;
        counters.tMinOutputSTCLeadTime = clock_.seconds();
    }
    if (first || counters.nOutputSTCLeadTime > counters.nMaxOutputSTCLeadTime)
    {
        counters.nMaxOutputSTCLeadTime = counters.nOutputSTCLeadTime;
        counters.tMaxOutputSTCLeadTime = clock_.seconds();
    }
    if (lead < 0)
    {
        ++counters.nNumOutputLate;
        counters.tLastOutputLate = clock_.seconds();
    }
    if (lead > furthest)
    {
        ++counters.nNumOutputErrors;
        counters.tLastOutputError = clock_.seconds();
        return skip();
    }
    // A picture whose successor is on already cannot be shown any more.
    if (shown_ && *pts <= *shown_)
    {
        ++counters.nOutputTimestampNotIncreasing;
        counters.tLastOutputTimestampNotIncreasing = clock_.seconds();
        return skip();
    }
    waiting_.insert(*pts);
}

void VideoOutput::step(std::optional<Ticks> stc)
{
    if (!stc) return;
    while (!waiting_.empty() && *waiting_.begin() <= *stc)
    {
        const Ticks pts = *waiting_.begin();
        waiting_.erase(waiting_.begin());
        // The time between the one shown and this one was filled with the one shown, a period at a time. The last pictures of a
        // stream that is cut off lack some between them, which is no fault of an output.
        while (!ended_ && shown_ && next_ + period_ / 2 < pts) replay();
        // One whose successor is due as well has missed its turn.
        const bool missed = !waiting_.empty() && *waiting_.begin() <= *stc && *stc - *waiting_.begin() > period_;
        if (missed && shown_ && *stc - pts > 2 * period_)
            skip();
        else
            show(pts);
    }
    if (ended_) return;
    while (shown_ && next_ + period_ / 2 <= *stc && (waiting_.empty() || next_ + period_ / 2 < *waiting_.begin())) replay();
}

void VideoOutput::restart()
{
    while (!waiting_.empty())
    {
        show(*waiting_.begin());
        waiting_.erase(waiting_.begin());
    }
    shown_.reset();
    next_ = 0;
}

void VideoOutput::show(Ticks pts)
{
    auto& counters = record_.tCounters;
    ++counters.nNumDisplayedOutputFrames;
    counters.tLastDisplayedOutputFrame = clock_.seconds();
    ++counters.nNumDisplayedFramesFreed;
    counters.tLastDisplayedFrameFreed = clock_.seconds();
    shown_ = pts;
    // The times that passed before it was shown late have been filled already.
    next_ = std::max(pts + period_, next_);
}

void VideoOutput::skip()
{
    ++record_.tCounters.nNumSkippedOutputFrames;
    record_.tCounters.tLastSkippedOutputFrame = last_irregular_ = clock_.seconds();
}

void VideoOutput::replay()
{
    ++record_.tCounters.nNumReplayedOutputFrames;
    record_.tCounters.tLastReplayedOutputFrame = last_irregular_ = clock_.seconds();
    next_ += period_;
}

} // namespace softdec
