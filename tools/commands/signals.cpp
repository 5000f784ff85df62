#include "signals.h"

#include <algorithm>
#include <cerrno>

namespace commands
{

Signals::Signals(std::initializer_list<int> signals)
{
    sigemptyset(&taken_);
    for (const int signal : signals)
    {
        struct sigaction action = {};
        if (sigaction(signal, nullptr, &action) == 0 && action.sa_handler != SIG_IGN) sigaddset(&taken_, signal);
    }
    sigprocmask(SIG_BLOCK, &taken_, &before_);
}

Signals::~Signals()
{
    sigprocmask(SIG_SETMASK, &before_, nullptr);
}

std::optional<int> Signals::wait(std::chrono::nanoseconds duration) const
{
    using std::chrono::steady_clock;
    const steady_clock::time_point begin = steady_clock::now();
    while (true)
    {
        const std::chrono::nanoseconds left = std::max<std::chrono::nanoseconds>(duration - (steady_clock::now() - begin), {});
        const auto seconds = std::chrono::floor<std::chrono::seconds>(left);
        const timespec timeout = {.tv_sec = seconds.count(), .tv_nsec = (left - seconds).count()};
        const int signal = sigtimedwait(&taken_, nullptr, &timeout);
        if (signal > 0) return signal;
        if (errno != EINTR) return std::nullopt;
    }
}

} // namespace commands
