/**
 * @file clocks.h
 * Whether the clock of the system was set while a command ran.
 */
#ifndef COMMANDS_CLOCKS_H
#define COMMANDS_CLOCKS_H

#include <chrono>
#include <utility>

namespace commands
{

/** The two clocks, and whether they still agree. */
class Clocks
{
public:
    /** How far the clock of the system has been set since the last call, and how long that is ago. */
    std::pair<std::chrono::nanoseconds, std::chrono::nanoseconds> step()
    {
        const auto steady = std::chrono::steady_clock::now();
        const auto system = std::chrono::system_clock::now();
        const std::chrono::nanoseconds passed = steady - std::exchange(steady_, steady);
        return {system - std::exchange(system_, system) - passed, passed};
    }

private:
    std::chrono::steady_clock::time_point steady_ = std::chrono::steady_clock::now();
    std::chrono::system_clock::time_point system_ = std::chrono::system_clock::now();
};

} // namespace commands

#endif
