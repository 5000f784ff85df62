/**
 * @file decstats.cpp
 * The process of the command decstats: its standard streams, its signals, and how it ends.
 */
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <exception>
#include <fcntl.h>
#include <string>
#include <unistd.h>

#include "command_line.h"
#include "failure.h"

namespace
{

/**
 * Occupies the standard streams that are closed, each opened the wrong way round, so that no file which is opened later
 * takes the place of one and every use of it still fails.
 */
void occupy_closed_streams()
{
    for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor)
        if (fcntl(descriptor, F_GETFD) < 0) open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY);
}

/** Writes out what standard output still holds. A file server may say only at the close that it is full. */
void close_output()
{
    errno = 0;
    const bool failed = std::ferror(stdout) != 0;
    if (std::fclose(stdout) == 0 && !failed) return;
    throw files::Failure(files::ExitStatus::output_failed, std::string("standard output: ") + std::strerror(errno != 0 ? errno : EIO));
}

int fail(files::ExitStatus status, const char* message)
{
    std::fprintf(stderr, "decstats: %s\n", message);
    return static_cast<int>(status);
}

} // namespace

int main(int argc, char** argv)
{
    static char buffer[64 * 1024];
    occupy_closed_streams();
    std::setvbuf(stdout, buffer, _IOFBF, sizeof(buffer));

    // A closed pipe and a file at its size limit are reported as any other failure to write.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);

    try
    {
        return commands::run(argc, argv, close_output);
    }
    catch (const files::Failure& failure)
    {
        return fail(failure.status(), failure.what());
    }
    catch (const std::exception& error)
    {
        return fail(files::ExitStatus::input_failed, error.what());
    }
}
