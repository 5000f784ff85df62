/**
 * @file load_meter.h
 * How busy a decoder keeps the processor. The figures are this machine's and this moment's, so that they are measured on live
 * input only: of a file that is read as fast as possible they would tell nothing, and differ each time.
 */
#ifndef SOFTDEC_DECODE_LOAD_METER_H
#define SOFTDEC_DECODE_LOAD_METER_H

#include <cmath>
#include <ctime>

#include "chain/rate_meter.h"

namespace softdec
{

class LoadMeter
{
public:
    explicit LoadMeter(bool enabled) : enabled_(enabled) {}

    bool enabled() const { return enabled_; }

    void begin()
    {
        if (enabled_) began_ = processor_time();
    }

    /** @return time that the processor has worked since begin [ns] */
    Nanoseconds end(Nanoseconds now)
    {
        if (!enabled_) return 0;
        const Nanoseconds busy = processor_time() - began_;
        rate_.add(now, static_cast<std::uint64_t>(busy));
        return busy;
    }

    /** Share of the time that the processor was busy [%]. */
    int percent(Nanoseconds now) { return static_cast<int>(std::lround(rate_.rate(now) / 1e7)); }

private:
    static Nanoseconds processor_time()
    {
        timespec time = {};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return time.tv_sec * second + time.tv_nsec;
    }

    bool enabled_;
    Nanoseconds began_ = 0;
    RateMeter rate_;
};

} // namespace softdec

#endif
