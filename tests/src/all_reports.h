/**
 * @file all_reports.h
 * The reports of the library that a test program is linked with, by their components.
 */
#ifndef ALL_REPORTS_H
#define ALL_REPORTS_H

#include <cstdint>
#include <dlfcn.h>
#include <stdexcept>
#include <string>

#include "component.h"
#include "frozen_clock.h"
#include "sample.h"

/** The moment at which the clock of the tests stands still [ns since the epoch, UTC]. */
inline constexpr std::int64_t frozen_moment = frozen_now * 1'000'000'000;

/** The address of a component's report function. */
inline void* report_function(const records::Component& component)
{
    void* const address = dlsym(RTLD_DEFAULT, component.function);
    if (address == nullptr) throw std::runtime_error(std::string("not linked: ") + component.function);
    return address;
}

/** Prints a component's report. @param record its record, aligned as its type asks */
inline BOOL print_report(const records::Component& component, const void* record, STATS_LEVEL level)
{
    return component.print(report_function(component), record, level);
}

#endif
