#include "terminal.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <string>
#include <string_view>
#include <sys/ioctl.h>
#include <unistd.h>

#include "standard_output.h"

namespace commands
{

namespace
{

// ECMA-48, and the private modes that every terminal of today has. A line that is too long ends at the edge.
constexpr std::string_view own_screen = "\x1b[?1049h\x1b[?25l\x1b[?7l\x1b[H\x1b[2J";
constexpr std::string_view shell_screen = "\x1b[0m\x1b[?7h\x1b[?25h\x1b[?1049l";
constexpr std::string_view top = "\x1b[H";
constexpr std::string_view end_of_line = "\x1b[K";
constexpr std::string_view end_of_screen = "\x1b[J";
constexpr std::string_view emphasis = "\x1b[1;33m";
constexpr std::string_view no_emphasis = "\x1b[0m";

/** A variable of the environment; empty = it is not set. */
std::string_view variable(const char* name)
{
    const char* const value = std::getenv(name);
    return value == nullptr ? std::string_view() : value;
}

std::size_t rows()
{
    constexpr std::size_t usual = 24;
    winsize size = {};
    return ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_row > 0 ? size.ws_row : usual;
}

/** Writes what may be lost. */
void write_out(std::string_view text)
{
    while (!text.empty())
    {
        const ssize_t written = write(STDOUT_FILENO, text.data(), text.size());
        if (written <= 0) return;
        text.remove_prefix(static_cast<std::size_t>(written));
    }
}

} // namespace

bool can_paint()
{
    return isatty(STDOUT_FILENO) && !variable("TERM").empty() && variable("TERM") != "dumb";
}

Terminal::Terminal() : is_keyboard_(tcgetattr(STDIN_FILENO, &before_) == 0), is_coloured_(variable("NO_COLOR").empty())
{
    enter();
}

Terminal::~Terminal()
{
    leave();
}

void Terminal::enter()
{
    termios silent = before_;
    silent.c_lflag &= ~static_cast<tcflag_t>(ECHO | ICANON);
    if (is_keyboard_) tcsetattr(STDIN_FILENO, TCSADRAIN, &silent);
    write_out(own_screen);
}

void Terminal::leave() const
{
    write_out(shell_screen);
    if (is_keyboard_) tcsetattr(STDIN_FILENO, TCSAFLUSH, &before_); // what was typed meanwhile is not for the shell
}

void Terminal::suspend()
{
    leave();
    std::raise(SIGSTOP);
    enter();
}

void Terminal::paint(std::span<const views::WatchLine> lines) const
{
    const std::size_t room = rows();
    const std::size_t shown = lines.size() <= room ? lines.size() : room - 1;
    std::string frame(top);
    for (std::size_t i = 0; i < shown; ++i)
    {
        const auto& [text, has_changed] = lines[i];
        frame.append(i == 0 ? "" : "\r\n").append(has_changed ? "* " : "  ");
        if (has_changed && is_coloured_)
            frame.append(emphasis).append(text).append(no_emphasis);
        else
            frame += text;
        frame += end_of_line;
    }
    if (shown < lines.size())
        frame.append(shown == 0 ? "" : "\r\n")
            .append("  ... and " + std::to_string(lines.size() - shown) + " lines more")
            .append(end_of_line);
    frame += end_of_screen;
    files::print(frame);
    files::flush();
}

} // namespace commands
