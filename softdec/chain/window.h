/**
 * @file window.h
 * The least, greatest and average of what was measured in the last seconds.
 */
#ifndef SOFTDEC_CHAIN_WINDOW_H
#define SOFTDEC_CHAIN_WINDOW_H

#include <algorithm>
#include <cstdint>
#include <deque>

#include "chain/virtual_clock.h"

namespace softdec
{

class Window
{
public:
    explicit Window(Nanoseconds length) : length_(length) {}

    void add(Nanoseconds now, std::int64_t value)
    {
        values_.push_back({now, value});
        sum_ += value;
        while (values_.front().moment < now - length_)
        {
            sum_ -= values_.front().value;
            values_.pop_front();
        }
    }

    /** These need at least one value. */
    std::int64_t least() const { return std::ranges::min_element(values_, {}, &Entry::value)->value; }
    std::int64_t greatest() const { return std::ranges::max_element(values_, {}, &Entry::value)->value; }
    std::int64_t average() const { return sum_ / static_cast<std::int64_t>(values_.size()); }

private:
    struct Entry
    {
        Nanoseconds moment;
        std::int64_t value;
    };
    Nanoseconds length_;
    std::deque<Entry> values_;
    std::int64_t sum_ = 0;
};

} // namespace softdec

#endif
