/**
 * @file capture_error.h
 * Why a capture file could not be read or written.
 */
#ifndef CAPTURE_CAPTURE_ERROR_H
#define CAPTURE_CAPTURE_ERROR_H

#include <stdexcept>
#include <string>

namespace capture
{

/** What kind of failure it is. */
enum class Problem
{
    unreadable,    /**< the file cannot be opened or read, or is none that this program reads */
    in_use,        /**< another process captures into it */
    unwritable,    /**< it cannot be written */
    full,          /**< there is no space, or a limit is reached: it may be written again later */
    other_decoder, /**< it holds the snapshots of another decoder */
};

/** A failure. Its text is one line that names the file. */
class Error : public std::runtime_error
{
public:
    /** @param path the file @param text what is wrong */
    Error(Problem problem, const std::string& path, const std::string& text);

    Problem problem() const { return problem_; }

private:
    Problem problem_;
};

/** The same with the text of an error number of the system. */
Error system_error(Problem problem, const std::string& path, int number);

} // namespace capture

#endif
