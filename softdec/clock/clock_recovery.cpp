#include "clock/clock_recovery.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <numeric>
#include <span>

namespace softdec
{

namespace
{

constexpr double nominal_frequency = 27e6;
constexpr Pcr pcr_range = static_cast<Pcr>(timestamp_range) * 300;

/** A longer step of the PCR against arrival is another time base, not jitter [s]. */
constexpr double jump_limit = 1.0;

/** Jitter is an error when it exceeds this [s], and what is usual of this input by the factor. Below it may be that a PCR waited for the
    other packets of its datagram. */
constexpr double jitter_floor = 0.100;
constexpr double jitter_factor = 5;

/** As many outliers in a row that agree are a step of the clock. */
constexpr std::size_t outliers_of_a_step = 8;

/** The clock has settled when its frequency is known this well: a fifteenth of what ISO/IEC 13818-1 allows a sender. */
constexpr double settled_error = 2e-6;
constexpr std::size_t fewest_blocks = 8;

/** A PCR is late when the time since the one before exceeds the standard's limit, and twice what is usual here [ms]. */
constexpr double longest_interval = 100;

Nanoseconds pcr_span(std::int64_t pcr_ticks)
{
    return pcr_ticks * 1000 / 27;
}

} // namespace

ClockRecovery::ClockRecovery(const VirtualClock& clock, SMGR_DECODER_CLOCK_RECOVERY_STATS& record, bool has_arrivals)
    : clock_(clock), record_(record), has_arrivals_(has_arrivals)
{
    record_.StcClkNominal = static_cast<long>(nominal_frequency);
    record_.trackingMode = has_arrivals ? SMGR_CLOCK_TRACKING_ENABLED : SMGR_CLOCK_TRACKING_DISABLED;
    record_.PllNotSettled = has_arrivals ? 1 : 0;
    record_.OldPll = has_arrivals ? record_.StcClkNominal : 0;
}

/** The last PCR is the first of another time base, in which time goes on from where it is. */
void ClockRecovery::begin_time_base(Nanoseconds arrival)
{
    const Ticks step = at(arrival).value_or(last_) - last_;
    time_base_ = {.number = time_base_.number + 1, .offset = time_base_.offset + step};
    last_ += step;
    position_ = 0;
    origin_ = block_began_ = arrival;
    // The frequency is the sender's still; where its clock stands is not known any more.
    model_.offset = 0;
    block_.clear();
    blocks_.clear();
    outliers_.clear();
    distances_.clear();
    last_arrival_ = arrival;
}

void ClockRecovery::jumped(double milliseconds, Nanoseconds arrival)
{
    record_.PcrJump = std::lround(milliseconds);
    record_.tLastPcrJump = clock_.seconds();
    if (std::labs(record_.PcrJump) > std::labs(record_.PcrJumpMaxValue))
    {
        record_.PcrJumpMaxValue = record_.PcrJump;
        record_.tLastPcrJumpMaxValue = clock_.seconds();
    }
    ++record_.ReSyncCount;
    begin_time_base(arrival);
}

/** Whether a time base that is announced goes on where the one before ended, as some senders announce it at each programme's begin. */
bool ClockRecovery::goes_on(std::int64_t step, std::optional<Nanoseconds> arrival) const
{
    const double deviation = arrival ? deviation_of(*arrival) : static_cast<double>(step) / nominal_frequency - usual_interval_ / 1000;
    return std::abs(deviation) <= jitter_floor;
}

void ClockRecovery::take(Pcr pcr, std::optional<Nanoseconds> arrival, bool announced)
{
    const Pcr before = pcr_.value_or(pcr);
    const bool first = !pcr_;
    auto step = static_cast<std::int64_t>((pcr + pcr_range - before) % pcr_range);
    if (step >= static_cast<std::int64_t>(pcr_range / 2)) step -= static_cast<std::int64_t>(pcr_range);
    pcr_ = pcr;
    last_ = first ? static_cast<Ticks>(pcr / 300) : time_base_.moment_of(pcr / 300, last_);
    last_taken_ = clock_.now();
    position_ += pcr_span(step);
    ++record_.PcrUpdates;
    record_.tLastPcrUpdate = clock_.seconds();
    record_.curPcr = static_cast<long>(pcr / 300);
    record_.TrackingStarted = 1;
    // Only an unannounced one is a jump, which would be an error.
    const bool another = announced && !first && !goes_on(step, arrival);
    if (step > 0 && pcr < before && !another) ++rollovers_;
    if (first && arrival) started_ = *arrival;
    if ((first && arrival) || another)
    {
        begin_time_base(arrival.value_or(last_arrival_ + static_cast<Nanoseconds>(usual_interval_ * 1e6)));
        if (arrival) add_sample(*arrival);
        return;
    }
    if (!arrival) return;
    check_interval(static_cast<Pcr>(std::max<std::int64_t>(step, 0)), *arrival);
    const double deviation = deviation_of(*arrival);
    if (std::abs(deviation) > jump_limit)
        jumped(-deviation * 1000, *arrival);
    else if (!accept(deviation, *arrival))
        return;
    add_sample(*arrival);
}

/** How much later than the model says a PCR has arrived [s]. */
double ClockRecovery::deviation_of(Nanoseconds arrival) const
{
    return static_cast<double>(arrival - origin_ - position_) / 1e9 - model_.at(x_of(arrival));
}

void ClockRecovery::check_interval(Pcr pcr_step, Nanoseconds arrival)
{
    const double interval = static_cast<double>(pcr_step) / nominal_frequency * 1000;
    const double waited = has_arrivals_ ? static_cast<double>(arrival - last_arrival_) / 1e6 : interval;
    record_.pcrLateMaxValue = std::max(record_.pcrLateMaxValue, static_cast<int>(std::min(waited, 1e9)));
    if (usual_interval_ == 0) usual_interval_ = std::min(interval, longest_interval * 10);
    if (interval > longest_interval && interval > 2 * usual_interval_ && interval < jump_limit * 60'000) ++record_.pcrLateCount;
    usual_interval_ += (std::min(interval, longest_interval * 10) - usual_interval_) / 8;
    record_.OldDeltaSnd = static_cast<long>(pcr_step / 300);
    last_arrival_ = arrival;
}

/** Judges a sample by its distance from the model. @return whether it tells of the clock, and not of the network alone */
bool ClockRecovery::accept(double deviation, Nanoseconds arrival)
{
    const double distance = std::abs(deviation);
    const double limit = std::max(jitter_floor, jitter_factor * spread_);
    // What is usual is learnt first.
    const bool learning = arrival - started_ < 2 * second;
    spread_ += (std::min(distance, limit) - spread_) / (learning ? 8 : 64);
    if (distance <= limit || learning)
    {
        if (has_arrivals_ && distance * 1000 > record_.pcrJitterMaxErrValue)
            record_.pcrJitterMaxErrValue = static_cast<int>(distance * 1000);
        outliers_.clear();
        return true;
    }
    if (has_arrivals_)
    {
        ++record_.pcrJitterErrCount;
        record_.pcrJitterErr = static_cast<int>(deviation * 1000);
        record_.pcrJitterMaxErrValue = std::max(record_.pcrJitterMaxErrValue, static_cast<int>(distance * 1000));
    }
    outliers_.push_back(deviation);
    if (outliers_.size() < outliers_of_a_step) return false;
    const auto [least, greatest] = std::ranges::minmax(outliers_);
    if (greatest - least > limit)
    {
        outliers_.erase(outliers_.begin());
        return false;
    }
    jumped(-median(outliers_) * 1000, arrival);
    return true;
}

void ClockRecovery::add_sample(Nanoseconds arrival)
{
    ++record_.SampleCount;
    record_.OldSndClk = record_.curPcr;
    if (has_arrivals_) record_.OldRcvClk = static_cast<long>(as_timestamp(ticks(arrival)));
    block_.push_back(static_cast<double>(arrival - origin_ - position_) / 1e9);
    // Until a second is over, the median of it is what is known.
    if (blocks_.empty())
    {
        std::vector<double> values = block_;
        for (double& value : values) value -= model_.slope * x_of(arrival);
        model_.offset = median(values);
    }
    if (arrival - block_began_ >= second) close_block();
}

void ClockRecovery::close_block()
{
    const Nanoseconds end = last_arrival_;
    blocks_.push_back({.x = (x_of(block_began_) + x_of(end)) / 2, .y = median(block_)});
    if (blocks_.size() > longest_history) blocks_.pop_front();
    block_.clear();
    block_began_ = end;

    const std::vector<Point> points(blocks_.begin(), blocks_.end());
    const Line line = fit_line(points);
    if (has_arrivals_ && blocks_.size() >= fewest_blocks && line.slope_error < settled_error)
    {
        if (!settled_) record_.PllSettleTime = static_cast<int>((end - started_ + second - 1) / second);
        settled_ = true;
        model_ = line;
        report_frequency();
        return;
    }
    // Too little is known of the frequency: the clock follows where the recent seconds stand.
    std::vector<double> recent;
    for (const Point& point : std::span(points).last(std::min<std::size_t>(points.size(), 16)))
        recent.push_back(point.y - model_.slope * point.x);
    model_.offset = median(recent);
}

void ClockRecovery::report_frequency()
{
    record_.PllNotSettled = 0;
    // A sender whose clock is fast has its PCRs arrive earlier and earlier.
    const double deviation = -model_.slope;
    const double frequency = nominal_frequency * (1 + deviation);
    frequencies_.push_back(frequency);
    if (frequencies_.size() > average_history) frequencies_.pop_front();
    const auto [least, greatest] = std::ranges::minmax(frequencies_);
    const double average = std::accumulate(frequencies_.begin(), frequencies_.end(), 0.0) / static_cast<double>(frequencies_.size());
    record_.OldPll = std::lround(frequency);
    record_.curPLLDevPpmNominal = std::lround(deviation * 1e6);
    record_.curPllAvg = std::lround(average);
    record_.curPllMin = std::lround(least);
    record_.curPllMax = std::lround(greatest);
    record_.curPLLDevHz = record_.curPllAvg - record_.StcClkNominal;
    // 27 Hz are 1 ppm.
    record_.curPLLDevPpm = record_.curPLLDevHz / 27;
    record_.curPLLDevPpmFract = std::labs(record_.curPLLDevHz % 27) * 100 / 27;
}

std::optional<Ticks> ClockRecovery::at(Nanoseconds moment) const
{
    if (!pcr_ || time_base_.number == 0) return std::nullopt;
    const auto late = static_cast<Nanoseconds>(model_.at(x_of(moment)) * 1e9);
    return last_ + ticks(moment - origin_ - late - position_);
}

void ClockRecovery::update()
{
    if (!has_arrivals_ || last_taken_ == 0) return;
    const auto waited = static_cast<int>(std::min<Nanoseconds>((clock_.now() - last_taken_) / millisecond, 1'000'000'000));
    record_.pcrLateMaxValue = std::max(record_.pcrLateMaxValue, waited);
}

} // namespace softdec
