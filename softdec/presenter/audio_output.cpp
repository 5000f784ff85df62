#include "presenter/audio_output.h"

#include <algorithm>
#include <cstdlib>

#include "presenter/buffering.h"

namespace softdec
{

void AudioOutput::take(const DecodedSound& frame, std::optional<Ticks> stc)
{
    if (!stc) return play(frame);
    const Ticks lead = frame.pts - *stc;
    const bool first = record_.tMinSTCLeadTime == 0;
    record_.nCurSTCLeadTimeMs = milliseconds(lead);
    if (first || record_.nCurSTCLeadTimeMs < record_.nMinSTCLeadTimeMs)
    {
        record_.nMinSTCLeadTimeMs = record_.nCurSTCLeadTimeMs;
        record_.tMinSTCLeadTime = clock_.seconds();
    }
    if (first || record_.nCurSTCLeadTimeMs > record_.nMaxSTCLeadTimeMs)
    {
        record_.nMaxSTCLeadTimeMs = record_.nCurSTCLeadTimeMs;
        record_.tMaxSTCLeadTime = clock_.seconds();
    }
    // What should have been heard already, or never will be, is left out.
    if (lead + frame.duration <= 0 || lead > furthest)
    {
        ++record_.nSkippedFrames;
        record_.tLastSkippedFrame = clock_.seconds();
        return;
    }
    waiting_.push_back(frame);
    record_.nOutQueueLength = static_cast<unsigned>(waiting_.size());
    record_.nMaxOutQueueLen = std::max(record_.nMaxOutQueueLen, record_.nOutQueueLength);
}

void AudioOutput::step(std::optional<Ticks> stc, std::optional<Ticks> video, Ticks period)
{
    while (stc && !waiting_.empty() && waiting_.front().pts <= *stc)
    {
        const DecodedSound frame = waiting_.front();
        waiting_.pop_front();
        play(frame);
        if (video) compare(frame, *video, period);
    }
    record_.nOutQueueLength = static_cast<unsigned>(waiting_.size());
}

void AudioOutput::play(const DecodedSound& frame)
{
    if (frame.in_step && played_to_ && std::abs(frame.pts - *played_to_) > std::max<Ticks>(frame.duration * 3 / 4, ticks_per_millisecond))
        ++record_.nTSDiscontinuity;
    played_to_ = frame.pts + frame.duration;
    ++record_.nOutputFrames;
    record_.tLastOutputFrame = clock_.seconds();
}

/** Compared when a picture is new, as it is shown for a while; and when another one should have come long ago. */
void AudioOutput::compare(const DecodedSound& frame, Ticks video, Ticks period)
{
    const Ticks offset = frame.pts - video;
    if (compared_ == video && offset <= 2 * period) return;
    compared_ = video;
    record_.nVideoTimeStamp = static_cast<unsigned>(frame.time_base.timestamp_of(video));
    record_.iAudioVideoTSDiffInMs = milliseconds(offset);
}

} // namespace softdec
