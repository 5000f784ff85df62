/**
 * @file signals.h
 * Signals for a command that runs until someone ends it.
 */
#ifndef COMMANDS_SIGNALS_H
#define COMMANDS_SIGNALS_H

#include <chrono>
#include <csignal>
#include <initializer_list>
#include <optional>

namespace commands
{

/** While it lives, signals do nothing but end a wait. In the main thread of a process without others. */
class Signals
{
public:
    /** Takes signals; those that the process was told to ignore stay ignored. */
    Signals(std::initializer_list<int> signals);

    /** Gives them back. Those that have arrived meanwhile then do what they always do. */
    ~Signals();
    Signals(const Signals&) = delete;
    Signals& operator=(const Signals&) = delete;

    /** Waits. @param duration not at all where it is not positive @return the signal that ended it early, or nothing */
    std::optional<int> wait(std::chrono::nanoseconds duration) const;

private:
    sigset_t taken_;
    sigset_t before_;
};

} // namespace commands

#endif
