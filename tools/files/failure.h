/**
 * @file failure.h
 * How a command ends: the exit status, and the failure that ends it early.
 */
#ifndef FILES_FAILURE_H
#define FILES_FAILURE_H

#include <stdexcept>
#include <string>
#include <string_view>

namespace files
{

/** The exit status of the command. */
enum class ExitStatus
{
    done = 0,          /**< everything asked for was written */
    output_failed = 1, /**< output could not be written */
    input_failed = 2,  /**< the command line was wrong or an input could not be read */
    cannot_tell = 3,   /**< the same for a command whose other statuses tell how a decoder is */
};

/** Ends the command with one line on standard error and a status. */
class Failure : public std::runtime_error
{
public:
    /**
     * @param status  exit status
     * @param message the line without the command's name; bytes that are not printable ASCII are escaped
     */
    Failure(ExitStatus status, std::string_view message);

    ExitStatus status() const { return status_; }

private:
    ExitStatus status_;
};

/** Ends a command whose command line was wrong, or that cannot read an input. @param message as for a Failure */
[[noreturn]] void fail_input(std::string_view message);

/**
 * Makes a text safe for a terminal.
 * @param text any bytes
 * @return text with every byte that is not printable ASCII written as \xNN
 */
std::string printable(std::string_view text);

/** Writes a line on standard error about what does not end the command, in the form of a Failure's. */
void warn(std::string_view message);

/** A path as messages show it: an empty one in quotes, so that it is seen. */
std::string shown(const std::string& path);

} // namespace files

#endif
