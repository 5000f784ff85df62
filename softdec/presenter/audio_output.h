/**
 * @file audio_output.h
 * A virtual output for one audio stream: plays each frame at its time, and keeps what the pair's record says of it.
 */
#ifndef SOFTDEC_PRESENTER_AUDIO_OUTPUT_H
#define SOFTDEC_PRESENTER_AUDIO_OUTPUT_H

#include <deque>
#include <optional>

#include "clock/ticks.h"
#include "sessmgr_audio.h"

namespace softdec
{

/** A decoded frame. Its sound is not kept. */
struct DecodedSound
{
    Ticks pts;
    Ticks duration;
    bool in_step; /**< what came before it is known to be what precedes it */
    TimeBase time_base = {};
};

class AudioOutput
{
public:
    AudioOutput(const VirtualClock& clock, SMGR_AUDIO_PAIR_STATS& record) : clock_(clock), record_(record) {}

    /** Takes a frame. @param stc now; nothing = the clock is not known, so that it is played at once */
    void take(const DecodedSound& frame, std::optional<Ticks> stc);

    /** Plays what is due. @param video time stamp of the picture that is shown; nothing = none is @param period for how long it is */
    void step(std::optional<Ticks> stc, std::optional<Ticks> video, Ticks period);

    bool empty() const { return waiting_.empty(); }

private:
    void play(const DecodedSound& frame);
    void compare(const DecodedSound& frame, Ticks video, Ticks period);

    const VirtualClock& clock_;
    SMGR_AUDIO_PAIR_STATS& record_;
    std::optional<Ticks> played_to_; // end of the last frame played
    std::optional<Ticks> compared_;  // PTS of the picture that sound was last compared with
    std::deque<DecodedSound> waiting_;
};

} // namespace softdec

#endif
