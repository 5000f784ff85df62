#include "input_file.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "failure.h"

namespace files
{

namespace
{

[[noreturn]] void fail(const std::string& name)
{
    throw Failure(ExitStatus::input_failed, name + ": " + std::strerror(errno));
}

std::optional<struct stat> status_of_regular_file(int descriptor)
{
    struct stat status = {};
    if (fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
    return status;
}

} // namespace

InputFile::InputFile(const std::string& path)
    : name_(path == "-" ? "standard input" : shown(path)), descriptor_(STDIN_FILENO), owned_(path != "-")
{
    if (!owned_) return;
    do
    {
        descriptor_ = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    } while (descriptor_ < 0 && errno == EINTR); // opening a FIFO waits for its writer
    if (descriptor_ < 0) fail(name_);
}

InputFile::~InputFile()
{
    if (owned_) close(descriptor_);
}

std::optional<std::uint64_t> InputFile::remaining() const
{
    const auto status = status_of_regular_file(descriptor_);
    const off_t position = lseek(descriptor_, 0, SEEK_CUR);
    if (!status || position < 0 || position > status->st_size) return std::nullopt;
    return static_cast<std::uint64_t>(status->st_size - position);
}

std::optional<std::int64_t> InputFile::modified_at() const
{
    const auto status = status_of_regular_file(descriptor_);
    if (!status) return std::nullopt;
    return status->st_mtim.tv_sec * 1'000'000'000 + status->st_mtim.tv_nsec;
}

std::size_t InputFile::read(std::span<std::byte> buffer)
{
    std::size_t filled = 0;
    while (filled < buffer.size())
    {
        const ssize_t count = ::read(descriptor_, buffer.data() + filled, buffer.size() - filled);
        if (count == 0) break;
        if (count > 0)
            filled += static_cast<std::size_t>(count);
        else if (errno != EINTR)
            fail(name_);
    }
    return filled;
}

} // namespace files
