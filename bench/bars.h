// What the programs beside stats_bench share: the time that something takes, and bars that are met or missed.
#ifndef BARS_H
#define BARS_H

#include <chrono>
#include <cstdio>
#include <limits>
#include <string>

/** The time that something takes once [us]. */
template <typename Run> double microseconds_of(const Run& run)
{
    const auto begin = std::chrono::steady_clock::now();
    run();
    return std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - begin).count();
}

/** Prints whether a bar is met. @return it */
inline bool bar(bool is_met, const std::string& text)
{
    std::printf("%s  %s\n", is_met ? "pass" : "FAIL", text.c_str());
    return is_met;
}

/** The same of a measure that is not to be above the bar, with so many decimals. */
inline bool at_most(const char* what, double measured, double most, const char* unit, int decimals = 1)
{
    char text[200];
    std::snprintf(text, sizeof text, "%s: %.*f%s (at most %g)", what, decimals, measured, unit, most);
    return bar(measured <= most, text);
}

#endif
