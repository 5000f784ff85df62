/**
 * @file report_clock.h
 * The clock of the reports: a saved record is printed with the ages that its events had.
 */
#ifndef VIEWS_REPORT_CLOCK_H
#define VIEWS_REPORT_CLOCK_H

#include <cstdint>
#include <ctime>
#include <optional>

namespace views
{

/**
 * While it exists, time() stands still for the whole process, its libraries included: the executable exports a time() of its
 * own, which the dynamic linker finds before the C library's. One at a time, on the thread that prints.
 */
class ReportClock
{
public:
    /** @param moment where it stands [ns since the epoch, UTC] */
    explicit ReportClock(std::int64_t moment);
    ~ReportClock();
    ReportClock(const ReportClock&) = delete;
    ReportClock& operator=(const ReportClock&) = delete;
};

} // namespace views

#endif
