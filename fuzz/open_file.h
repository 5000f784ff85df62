/**
 * @file open_file.h
 * Inputs of a fuzz target as files that the tool opens by their paths.
 */
#ifndef OPEN_FILE_H
#define OPEN_FILE_H

#include <fcntl.h>
#include <span>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

#include "require.h"

/** A file without a name in any directory. */
class OpenFile
{
public:
    /** A regular file that holds the bytes, after a number of zeros. */
    static OpenFile regular(std::span<const unsigned char> bytes, off_t zeros = 0)
    {
        const int descriptor = memfd_create("input", MFD_CLOEXEC);
        require(descriptor >= 0 && ftruncate(descriptor, zeros) == 0, "a file in memory");
        require(pwrite(descriptor, bytes.data(), bytes.size(), zeros) == static_cast<ssize_t>(bytes.size()), "a file in memory");
        return OpenFile(descriptor);
    }

    /** A pipe that holds the bytes, at most 64 KiB, and has no writer any more. */
    static OpenFile pipe(std::span<const unsigned char> bytes)
    {
        int ends[2];
        require(pipe2(ends, O_CLOEXEC) == 0, "a pipe");
        require(write(ends[1], bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size()), "the pipe holds the input");
        close(ends[1]);
        return OpenFile(ends[0]);
    }

    ~OpenFile() { close(descriptor_); }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    /** A path by which it can be opened. */
    std::string path() const { return "/proc/self/fd/" + std::to_string(descriptor_); }

private:
    explicit OpenFile(int descriptor) : descriptor_(descriptor) {}
    int descriptor_;
};

#endif
