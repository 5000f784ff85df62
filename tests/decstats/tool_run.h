/**
 * @file tool_run.h
 * Runs the command as a process of its own and keeps what it leaves behind.
 */
#ifndef TOOL_RUN_H
#define TOOL_RUN_H

#include <optional>
#include <string>
#include <vector>

/** Where standard output goes. */
enum class Output
{
    captured,
    full_device, /**< every write fails with ENOSPC */
    closed_pipe, /**< a pipe that nobody reads */
    closed,      /**< not open at all */
};

/** What a process is started with. */
struct Start
{
    std::vector<std::string> arguments;
    std::vector<std::string> input = {};        /**< pieces for a pipe on standard input, with a pause between them */
    std::optional<std::string> input_file = {}; /**< standard input instead of the pipe */
    bool closed_input = false;                  /**< no standard input at all */
    Output output = Output::captured;
    bool error_terminal = false;  /**< standard error is a terminal */
    std::string tool = {};        /**< file of decstats; empty = the one that was built */
    std::string shell_setup = {}; /**< shell commands that run in the process first, as "umask 027" */
};

/** What a process left behind. */
struct Finish
{
    int status = -1; /**< exit status; 128 and the signal's number if a signal ended the process */
    std::string out;
    std::string err;
    long peak_memory = 0; /**< [KiB] */
};

/** Runs decstats. */
Finish run(const Start& start);

/** Runs decstats with arguments alone. */
inline Finish run(std::vector<std::string> arguments)
{
    return run(Start{.arguments = std::move(arguments)});
}

#endif
