#include "tool_run.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <iterator>
#include <poll.h>
#include <pty.h>
#include <spawn.h>
#include <sstream>
#include <stdexcept>
#include <sys/resource.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace
{

void require(bool condition, const char* what)
{
    if (!condition) throw std::runtime_error(std::string(what) + ": " + std::strerror(errno));
}

class Pipe
{
public:
    Pipe() { require(pipe2(ends_.data(), O_CLOEXEC) == 0, "pipe2"); }

    /** A terminal that passes on what is written, read from its other side. */
    static Pipe terminal()
    {
        std::array<int, 2> ends = {-1, -1};
        termios settings = {};
        cfmakeraw(&settings);
        require(openpty(&ends[0], &ends[1], nullptr, &settings, nullptr) == 0, "openpty");
        for (const int end : ends) fcntl(end, F_SETFD, FD_CLOEXEC);
        return Pipe(ends);
    }

    ~Pipe()
    {
        close_reader();
        close_writer();
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;

    int reader() const { return ends_[0]; }
    int writer() const { return ends_[1]; }
    void close_reader() { close_end(ends_[0]); }
    void close_writer() { close_end(ends_[1]); }

private:
    explicit Pipe(std::array<int, 2> ends) : ends_(ends) {}
    static void close_end(int& end)
    {
        if (end >= 0) close(end);
        end = -1;
    }
    std::array<int, 2> ends_ = {-1, -1};
};

/** Writes the pieces; a process that stops reading is no error here. */
void feed(Pipe& pipe, const std::vector<std::string>& pieces)
{
    for (const std::string& piece : pieces)
    {
        if (&piece != &pieces.front()) std::this_thread::sleep_for(std::chrono::milliseconds(50));
        std::size_t written = 0;
        while (written < piece.size())
        {
            const ssize_t count = write(pipe.writer(), piece.data() + written, piece.size() - written);
            if (count < 0) break;
            written += static_cast<std::size_t>(count);
        }
    }
    pipe.close_writer();
}

/** Reads both pipes to their ends, in whatever order they fill. */
void drain(const Pipe& out, const Pipe& err, Finish& finish)
{
    std::array<pollfd, 2> polled = {pollfd{out.reader(), POLLIN, 0}, pollfd{err.reader(), POLLIN, 0}};
    const std::array<std::string*, 2> texts = {&finish.out, &finish.err};
    while (polled[0].fd >= 0 || polled[1].fd >= 0)
    {
        require(poll(polled.data(), polled.size(), -1) >= 0 || errno == EINTR, "poll");
        for (std::size_t i = 0; i < polled.size(); ++i)
        {
            if (polled[i].fd < 0 || polled[i].revents == 0) continue;
            std::array<char, 4096> buffer;
            const ssize_t count = read(polled[i].fd, buffer.data(), buffer.size());
            if (count > 0)
                texts[i]->append(buffer.data(), static_cast<std::size_t>(count));
            else
                polled[i].fd = -1; // poll skips it; a terminal ends with EIO
        }
    }
}

class FileActions
{
public:
    FileActions() { posix_spawn_file_actions_init(&actions_); }
    ~FileActions() { posix_spawn_file_actions_destroy(&actions_); }
    FileActions(const FileActions&) = delete;
    FileActions& operator=(const FileActions&) = delete;

    void use(int descriptor, int target) { posix_spawn_file_actions_adddup2(&actions_, descriptor, target); }
    void open(int target, const char* path, int flags) { posix_spawn_file_actions_addopen(&actions_, target, path, flags, 0); }
    void close(int target) { posix_spawn_file_actions_addclose(&actions_, target); }
    const posix_spawn_file_actions_t* get() const { return &actions_; }

private:
    posix_spawn_file_actions_t actions_;
};

} // namespace

Finish run(const Start& start)
{
    // This process survives a pipe that the command closes early; the command itself starts with the default action.
    std::signal(SIGPIPE, SIG_IGN);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t defaults;
    sigemptyset(&defaults);
    sigaddset(&defaults, SIGPIPE);
    posix_spawnattr_setsigdefault(&attributes, &defaults);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);

    Pipe in;
    Pipe out;
    Pipe err = start.error_terminal ? Pipe::terminal() : Pipe();
    FileActions actions;
    if (start.closed_input)
        actions.close(STDIN_FILENO);
    else if (start.input_file)
        actions.open(STDIN_FILENO, start.input_file->c_str(), O_RDONLY);
    else
        actions.use(in.reader(), STDIN_FILENO);
    switch (start.output)
    {
    case Output::captured: actions.use(out.writer(), STDOUT_FILENO); break;
    case Output::full_device: actions.open(STDOUT_FILENO, "/dev/full", O_WRONLY); break;
    case Output::closed_pipe:
        out.close_reader();
        actions.use(out.writer(), STDOUT_FILENO);
        break;
    case Output::closed: actions.close(STDOUT_FILENO); break;
    }
    actions.use(err.writer(), STDERR_FILENO);

    std::vector<std::string> words;
    if (!start.shell_setup.empty()) words = {"/bin/sh", "-c", start.shell_setup + "; exec \"$0\" \"$@\""};
    std::istringstream emulator(DECSTATS_EMULATOR); // a build for another processor runs through it
    words.insert(words.end(), std::istream_iterator<std::string>(emulator), {});
    words.emplace_back(start.tool.empty() ? DECSTATS_FILE : start.tool);
    words.insert(words.end(), start.arguments.begin(), start.arguments.end());
    std::vector<char*> argv;
    for (std::string& word : words) argv.push_back(word.data());
    argv.push_back(nullptr);

    pid_t process = 0;
    errno = posix_spawn(&process, argv[0], actions.get(), &attributes, argv.data(), environ);
    posix_spawnattr_destroy(&attributes);
    require(errno == 0, "posix_spawn");

    in.close_reader();
    out.close_writer();
    err.close_writer();
    std::thread feeder([&in, &start] { feed(in, start.input); });
    Finish finish;
    drain(out, err, finish);
    feeder.join();

    int status = 0;
    rusage usage = {};
    require(wait4(process, &status, 0, &usage) == process, "wait4");
    finish.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    finish.peak_memory = usage.ru_maxrss;
    return finish;
}
