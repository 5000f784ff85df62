/**
 * @file terminal.h
 * A terminal that is painted on.
 */
#ifndef COMMANDS_TERMINAL_H
#define COMMANDS_TERMINAL_H

#include <cstddef>
#include <span>
#include <termios.h>

#include "watch_lines.h"

namespace commands
{

/** Whether standard output is a terminal whose cursor can be moved. */
bool can_paint();

/** The terminal on standard output. It shows a screen of its own, and what was there before when this ends. */
class Terminal
{
public:
    Terminal();
    ~Terminal();
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    /**
     * Paints lines from the top, as many as there is room for, the last of them saying how many are missing. Those that have
     * changed stand behind a star and, unless NO_COLOR asks otherwise, in colour.
     * @throw Failure if they cannot be written
     */
    void paint(std::span<const views::WatchLine> lines) const;

    /** Gives the terminal back to the shell until the process is continued. */
    void suspend();

private:
    void enter();
    void leave() const;

    termios before_ = {};
    bool is_keyboard_ = false;
    bool is_coloured_ = false;
};

} // namespace commands

#endif
