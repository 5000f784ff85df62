/**
 * @file rate_meter.h
 * How much comes in a second, measured over the last two.
 */
#ifndef SOFTDEC_CHAIN_RATE_METER_H
#define SOFTDEC_CHAIN_RATE_METER_H

#include <array>
#include <cstdint>

#include "chain/virtual_clock.h"

namespace softdec
{

class RateMeter
{
public:
    void add(Nanoseconds now, std::uint64_t amount)
    {
        if (began_ == 0) began_ = now;
        advance(now);
        slots_[static_cast<std::size_t>(slot_ % slot_count)] += amount;
    }

    /** Amount a second; what has come in less than a fifth of a second tells nothing and counts as 0. */
    double rate(Nanoseconds now)
    {
        if (began_ == 0) return 0;
        advance(now);
        const Nanoseconds window_begin = (slot_ - slot_count + 1) * slot_length;
        const Nanoseconds length = now - std::max(began_, window_begin);
        if (length < second / 5) return 0;
        std::uint64_t sum = 0;
        for (const std::uint64_t amount : slots_) sum += amount;
        return static_cast<double>(sum) * 1e9 / static_cast<double>(length);
    }

private:
    static constexpr Nanoseconds slot_length = 100 * millisecond;
    static constexpr Nanoseconds slot_count = 20;

    void advance(Nanoseconds now)
    {
        const Nanoseconds slot = now / slot_length;
        if (slot - slot_ >= slot_count)
            slots_.fill(0);
        else
            for (Nanoseconds passed = slot_ + 1; passed <= slot; ++passed) slots_[static_cast<std::size_t>(passed % slot_count)] = 0;
        slot_ = std::max(slot_, slot);
    }

    std::array<std::uint64_t, slot_count> slots_{};
    Nanoseconds slot_ = 0; // that goes on
    Nanoseconds began_ = 0;
};

} // namespace softdec

#endif
