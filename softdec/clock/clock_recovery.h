/**
 * @file clock_recovery.h
 * Recovers the sender's clock from when its PCRs arrive (ISO/IEC 13818-1, 2.4.2.2 and annex D).
 */
#ifndef SOFTDEC_CLOCK_CLOCK_RECOVERY_H
#define SOFTDEC_CLOCK_CLOCK_RECOVERY_H

#include <cstdint>
#include <deque>
#include <optional>
#include <vector>

#include "clock/line_fit.h"
#include "clock/ticks.h"
#include "sessmgr_types.h"

namespace softdec
{

/** A program clock reference [27 MHz ticks]: 33 bits of base times 300, plus the extension. */
using Pcr = std::uint64_t;

class ClockRecovery
{
public:
    /**
     * @param clock        the chain's clock
     * @param record       to be filled
     * @param has_arrivals whether the input has arrival times; without them there is neither jitter nor a frequency to measure
     */
    ClockRecovery(const VirtualClock& clock, SMGR_DECODER_CLOCK_RECOVERY_STATS& record, bool has_arrivals);

    /**
     * Takes a PCR.
     * @param arrival when its packet arrived; nothing = not known, as for a rebuilt packet, which tells nothing of the clock
     * @param announced the stream announces a new time base here
     */
    void take(Pcr pcr, std::optional<Nanoseconds> arrival, bool announced);

    /** The sender's clock at a moment, as far as it is known. @return nothing before the first PCR */
    std::optional<Ticks> at(Nanoseconds moment) const;

    /** The moment of the last PCR. */
    Ticks last() const { return last_; }

    /** When the last PCR came; 0 = never. */
    Nanoseconds last_taken() const { return last_taken_; }

    /** What time stamps count from now. */
    const TimeBase& time_base() const { return time_base_; }

    /** Wrap-arounds of the PCR so far. */
    unsigned rollovers() const { return rollovers_; }

    /** Takes the time that a time stamp lies ahead of the sender's clock, for the averages of it. */
    void take_distance(SMGR_TDEMUX_DATA_TYPE type, int audio_pair, Ticks distance);

    /** Brings what depends on the time up to date. */
    void update();

private:
    /** Seconds that the line is fitted to. Where a PCR waits for the other packets of its datagram, as in a slow stream, it takes minutes
        to tell a clock that is off by a millionth from one that is not. */
    static constexpr std::size_t longest_history = 600;

    /** Seconds that the averages of the frequency are over. */
    static constexpr std::size_t average_history = 120;

    void begin_time_base(Nanoseconds arrival);
    bool goes_on(std::int64_t step, std::optional<Nanoseconds> arrival) const;
    void jumped(double milliseconds, Nanoseconds arrival);
    void check_interval(Pcr pcr, Nanoseconds arrival);
    double deviation_of(Nanoseconds arrival) const;
    bool accept(double deviation, Nanoseconds arrival);
    void add_sample(Nanoseconds arrival);
    void close_block();
    void report_frequency();
    double x_of(Nanoseconds moment) const { return static_cast<double>(moment - origin_) / 1e9; }

    const VirtualClock& clock_;
    SMGR_DECODER_CLOCK_RECOVERY_STATS& record_;
    const bool has_arrivals_;

    std::optional<Pcr> pcr_;
    Ticks last_ = 0;           // moment of the last PCR
    Nanoseconds position_ = 0; // the last PCR as time since the time base began [ns]
    Nanoseconds last_arrival_ = 0;
    Nanoseconds last_taken_ = 0;
    Nanoseconds started_ = 0; // when the first PCR came
    TimeBase time_base_;
    unsigned rollovers_ = 0;
    double usual_interval_ = 0; // of the PCRs [ms]

    // The model: how much later a PCR arrives than its value says [s], as a line over arrival time [s].
    Nanoseconds origin_ = 0;
    Line model_;
    bool settled_ = false;
    double spread_ = 0;         // mean distance from the model [s]
    std::vector<double> block_; // of the second that goes on
    Nanoseconds block_began_ = 0;
    std::deque<Point> blocks_;
    std::vector<double> outliers_; // in a row
    std::deque<double> frequencies_;
    std::deque<std::pair<Nanoseconds, Ticks>> distances_;
};

} // namespace softdec

#endif
