#include "presenter/video_output.h"

#include <algorithm>

#include "presenter/buffering.h"

namespace softdec
{

namespace
{

/** Not each picture need have a time stamp; ISO/IEC 13818-1, 2.7.4 asks for one each 0.7 s. */
constexpr Ticks longest_unstamped = ticks_per_second * 7 / 10;

/** So long it may take until the next picture shows that the one before is not shown again in place of another. */
constexpr Ticks longest_without_next = ticks_per_second;

/** A stream whose rate has not varied for so long has a constant one. */
constexpr Ticks longest_steady = 10 * ticks_per_second;

/** Pictures that wait for the first time stamp. More have missed theirs. */
constexpr unsigned most_untimed = 60;

} // namespace

void VideoOutput::take(const DecodedPicture& picture, std::optional<Ticks> stc)
{
    auto& counters = record_.tCounters;
    ++counters.nNumFramesSentToDisplay;
    counters.tLastFrameSentToDisplay = clock_.seconds();
    // A picture that is shown may turn out to be so for longer than its predecessors.
    if (shown_ && next_ == *shown_ + period_) next_ = *shown_ + picture.period;
    period_ = picture.period;
    const auto pts = time_of(picture);
    if (!pts) return;
    if (!stc) return show({*pts, picture.time_base, picture.place});

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
    if (shown_ && picture.time_base == time_base_ && *pts <= *shown_)
    {
        ++counters.nOutputTimestampNotIncreasing;
        counters.tLastOutputTimestampNotIncreasing = clock_.seconds();
        return skip();
    }
    waiting_.insert({*pts, picture.time_base, picture.place});
}

/** The time of a picture by its stamp, or by those around it. @return nothing = it is known when the next one is */
std::optional<Ticks> VideoOutput::time_of(const DecodedPicture& picture)
{
    if (!picture.pts && !taken_ && untimed_ < most_untimed)
    {
        ++untimed_;
        return std::nullopt;
    }
    const Ticks time = picture.pts.value_or(taken_.value_or(0) + taken_for_);
    if (picture.pts)
    {
        for (; untimed_ > 0; --untimed_) waiting_.insert({time - static_cast<Ticks>(untimed_) * period_, picture.time_base, std::nullopt});
        stamped_ = time;
    }
    else if (!taken_ || time - stamped_ > longest_unstamped)
    {
        ++record_.tCounters.nOutputTimestampsMissing;
        record_.tCounters.tLastOutputTimestampMissing = clock_.seconds();
    }
    taken_ = time;
    taken_for_ = picture.shown_for;
    return time;
}

void VideoOutput::step(std::optional<Ticks> stc)
{
    if (!stc) return;
    while (!waiting_.empty() && waiting_.begin()->pts <= *stc)
    {
        const Waiting picture = *waiting_.begin();
        waiting_.erase(waiting_.begin());
        const bool follows = shown_ && picture.time_base == time_base_;
        // The time between the one shown and this one was filled with the one shown, a period at a time. The last pictures of a
        // stream that is cut off lack some between them, which is no fault of an output.
        if (!ended_ && lacks_some_before(picture)) replay_to(picture.pts);
        // One whose successor is due as well has missed its turn.
        const bool missed = !waiting_.empty() && waiting_.begin()->pts <= *stc && *stc - waiting_.begin()->pts > period_;
        if (missed && follows && *stc - picture.pts > 2 * period_)
            skip();
        else
            show(picture);
    }
    if (ended_) return;
    if (waiting_.empty() && *stc - next_ < longest_without_next) return;
    if (!shown_) return;
    const Ticks passed = *stc + 1;
    if (waiting_.empty())
        replay_to(passed);
    else if (lacks_some_before(*waiting_.begin()))
        replay_to(std::min(passed, waiting_.begin()->pts));
}

/** Whether pictures are absent between the one shown and the next one, which comes later than usual. */
bool VideoOutput::lacks_some_before(const Waiting& next) const
{
    if (!shown_ || next.time_base != time_base_ || next_ + patience() >= next.pts) return false;
    if (!shown_place_ || !next.place) return true;
    // Where a sequence ends is not told: there, the rate of a stream varies that has varied.
    if (next.place->sequence != shown_place_->sequence) return !varied_ || next.pts - *varied_ > longest_steady;
    const std::int64_t step = next.place->number - shown_place_->number;
    return step <= 0 || step > least_step_;
}

/** The places of pictures that follow on each other differ by as much as the encoder counts, which shows where none is absent. */
void VideoOutput::note_step(const Waiting& next)
{
    if (!shown_ || !shown_place_ || !next.place || next.time_base != time_base_) return;
    if (next.place->sequence != shown_place_->sequence) return;
    const std::int64_t step = next.place->number - shown_place_->number;
    if (step <= 0) return;
    if (step == least_step_ && next.pts - *shown_ > period_ + patience()) varied_ = next.pts;
    if (least_step_ == 0 || step < least_step_) least_step_ = step;
}

void VideoOutput::show_untimed()
{
    for (; untimed_ > 0; --untimed_) show({taken_.value_or(0), time_base_, std::nullopt});
}

void VideoOutput::end()
{
    show_untimed();
    ended_ = true;
}

void VideoOutput::show(const Waiting& picture)
{
    note_step(picture);
    auto& counters = record_.tCounters;
    ++counters.nNumDisplayedOutputFrames;
    counters.tLastDisplayedOutputFrame = clock_.seconds();
    ++counters.nNumDisplayedFramesFreed;
    counters.tLastDisplayedFrameFreed = clock_.seconds();
    // The times that passed before it was shown late have been filled already.
    next_ = picture.time_base == time_base_ ? std::max(picture.pts + period_, next_) : picture.pts + period_;
    shown_ = picture.pts;
    shown_place_ = picture.place;
    time_base_ = picture.time_base;
}

void VideoOutput::skip()
{
    ++record_.tCounters.nNumSkippedOutputFrames;
    record_.tCounters.tLastSkippedOutputFrame = last_irregular_ = clock_.seconds();
}

/** Counts in one go: the clock of a broken input may leap by years. */
void VideoOutput::replay_to(Ticks end)
{
    const Ticks lacking = end - next_ - patience();
    if (lacking <= 0) return;
    const Ticks count = (lacking + period_ - 1) / period_;
    record_.tCounters.nNumReplayedOutputFrames += static_cast<SMGR_COUNTER>(count);
    record_.tCounters.tLastReplayedOutputFrame = last_irregular_ = clock_.seconds();
    next_ += count * period_;
}

} // namespace softdec
