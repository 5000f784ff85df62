#include "program.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <exception>
#include <fcntl.h>
#include <string>
#include <unistd.h>

#include "failure.h"

namespace files
{

namespace
{

const char* running = "decstats";

/**
 * Occupies the standard streams that are closed, each opened the wrong way round, so that no file which is opened later
 * takes the place of one and every use of it still fails.
 */
void occupy_closed_streams()
{
    for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor)
        if (fcntl(descriptor, F_GETFD) < 0) open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY);
}

int fail(ExitStatus status, const char* message)
{
    std::fprintf(stderr, "%s: %s\n", running, message);
    return static_cast<int>(status);
}

} // namespace

const char* program_name()
{
    return running;
}

/** A file server may say only at the close that it is full. */
void close_output()
{
    errno = 0;
    const bool failed = std::ferror(stdout) != 0;
    if (std::fclose(stdout) == 0 && !failed) return;
    throw Failure(ExitStatus::output_failed, std::string("standard output: ") + std::strerror(errno != 0 ? errno : EIO));
}

int run_program(const char* name, int argc, char** argv, int (*run)(int argc, char** argv))
{
    static char buffer[64 * 1024];
    running = name;
    occupy_closed_streams();
    std::setvbuf(stdout, buffer, _IOFBF, sizeof(buffer));

    // A closed pipe and a file at its size limit are reported as any other failure to write.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);

    try
    {
        return run(argc, argv);
    }
    catch (const Failure& failure)
    {
        return fail(failure.status(), failure.what());
    }
    catch (const std::exception& error)
    {
        return fail(ExitStatus::input_failed, error.what());
    }
}

} // namespace files
