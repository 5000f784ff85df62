/**
 * @file video_output.h
 * A virtual output: it shows each picture when the STC reaches its PTS, and counts what was late, skipped or shown again.
 */
#ifndef SOFTDEC_PRESENTER_VIDEO_OUTPUT_H
#define SOFTDEC_PRESENTER_VIDEO_OUTPUT_H

#include <optional>
#include <set>

#include "clock/ticks.h"
#include "decode/decoded_picture.h"
#include "sessmgr_types.h"

namespace softdec
{

class VideoOutput
{
public:
    VideoOutput(const VirtualClock& clock, SMGR_VCUDEC_STATS& record) : clock_(clock), record_(record) {}

    /**
     * Takes a decoded picture.
     * @param picture without a time it follows on the one before
     * @param stc     now; nothing = the clock is not known, so that the picture is shown at once
     */
    void take(const DecodedPicture& picture, std::optional<Ticks> stc);

    /** Shows what is due. */
    void step(std::optional<Ticks> stc);

    /** The stream has ended: what has been shown is not shown again in place of what does not come. */
    void end();

    bool empty() const { return waiting_.empty(); }

    /** PTS of the picture that is shown; nothing = none is, or the stream has ended. */
    std::optional<Ticks> shown() const { return ended_ ? std::nullopt : shown_; }

    /** How long a picture is shown [90 kHz ticks]. */
    Ticks period() const { return period_; }

    /** When a picture was last skipped or shown again [epoch s]; 0 = never. */
    std::time_t last_irregular() const { return last_irregular_; }

private:
    /** A picture that waits to be shown. */
    struct Waiting
    {
        Ticks pts;
        unsigned time_base;
        std::optional<DisplayPlace> place;
        auto operator<=>(const Waiting&) const = default;
    };

    /** As much later the next picture may come without the one shown being shown again: films are shown for two and three fields in turn. */
    Ticks patience() const { return period_ * 3 / 4; }

    std::optional<Ticks> time_of(const DecodedPicture& picture);
    void show_untimed();
    void show(const Waiting& picture);
    bool lacks_some_before(const Waiting& next) const;
    void note_step(const Waiting& next);
    void skip();
    void replay_to(Ticks end);

    const VirtualClock& clock_;
    SMGR_VCUDEC_STATS& record_;
    std::multiset<Waiting> waiting_;
    std::optional<Ticks> shown_;
    unsigned time_base_ = 0; // of the one shown
    std::optional<DisplayPlace> shown_place_;
    std::int64_t least_step_ = 0; // between places; 0 = none is known
    std::optional<Ticks> varied_; // when a picture was last shown for longer than usual with none absent behind it
    Ticks next_ = 0;              // when the picture after the one shown is due
    std::optional<Ticks> taken_;  // time of the last picture taken
    Ticks taken_for_ = 0;         // how long that one is shown
    Ticks stamped_ = 0;           // and of the last one that had a time of its own
    unsigned untimed_ = 0;        // pictures that came before the first time
    Ticks period_ = ticks_per_second / 25;
    bool ended_ = false;
    std::time_t last_irregular_ = 0;
};

} // namespace softdec

#endif
