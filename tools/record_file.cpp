#include "record_file.h"

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <fcntl.h>
#include <optional>
#include <span>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

#include "failure.h"
#include "input_file.h"

namespace
{

[[noreturn]] void fail_to_write(const std::string& path, int error)
{
    throw Failure(ExitStatus::OutputFailed, path + ": " + std::strerror(error));
}

std::string count_of_bytes(std::uint64_t count)
{
    return std::to_string(count) + (count == 1 ? " byte" : " bytes");
}

mode_t file_creation_mask()
{
    const mode_t mask = umask(0);
    umask(mask);
    return mask;
}

/**
 * Holds back the signals that end the command, while there is something to clean up. They take effect when this ends, so it
 * stands before what it guards.
 */
class DeferredSignals
{
public:
    DeferredSignals()
    {
        sigemptyset(&deferred_);
        for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGTERM}) sigaddset(&deferred_, signal);
        sigprocmask(SIG_BLOCK, &deferred_, &before_);
    }
    ~DeferredSignals() { sigprocmask(SIG_SETMASK, &before_, nullptr); }
    DeferredSignals(const DeferredSignals&) = delete;
    DeferredSignals& operator=(const DeferredSignals&) = delete;

    /** Whether one has arrived. */
    bool arrived() const
    {
        sigset_t pending;
        sigpending(&pending);
        sigandset(&pending, &pending, &deferred_);
        return sigisemptyset(&pending) == 0;
    }

private:
    sigset_t deferred_;
    sigset_t before_;
};

/** A file that stands under a temporary name beside its own until it is published, and is removed if it never is. */
class PendingFile
{
public:
    PendingFile(const std::string& directory, const std::string& name)
        : path_(directory + "/" + name), temporaryPath_(directory + "/." + name + ".XXXXXX"),
          descriptor_(mkostemp(temporaryPath_.data(), O_CLOEXEC))
    {
        if (descriptor_ < 0) fail_to_write(directory, errno);
    }

    ~PendingFile()
    {
        if (descriptor_ >= 0) close(descriptor_);
        if (!published_) unlink(temporaryPath_.c_str());
    }

    PendingFile(const PendingFile&) = delete;
    PendingFile& operator=(const PendingFile&) = delete;

    void write(std::span<const std::byte> bytes)
    {
        while (!bytes.empty())
        {
            const ssize_t count = ::write(descriptor_, bytes.data(), bytes.size());
            if (count >= 0)
                bytes = bytes.subspan(static_cast<std::size_t>(count));
            else if (errno != EINTR)
                fail_to_write(path_, errno);
        }
    }

    /** Gives the file the mode of any new file and closes it, which may be what reports that a file server is full. */
    void finish()
    {
        if (fchmod(descriptor_, 0666 & ~file_creation_mask()) != 0) fail_to_write(path_, errno);
        if (close(std::exchange(descriptor_, -1)) != 0) fail_to_write(path_, errno);
    }

    void publish()
    {
        if (std::rename(temporaryPath_.c_str(), path_.c_str()) != 0) fail_to_write(path_, errno);
        published_ = true;
    }

private:
    std::string path_;
    std::string temporaryPath_;
    int descriptor_;
    bool published_ = false;
};

void require_directory(const std::string& path)
{
    struct stat status = {};
    if (stat(path.c_str(), &status) != 0) fail_to_write(path, errno);
    if (!S_ISDIR(status.st_mode)) fail_to_write(path, ENOTDIR);
}

} // namespace

std::vector<std::byte> read_record(const Component& component, const std::string& path)
{
    InputFile file(path);
    const std::optional<std::uint64_t> size = file.remaining();

    // One byte more than a record shows a file that is too long, without reading all of it.
    std::vector<std::byte> bytes(component.recordSize + 1);
    const std::size_t count = file.read(bytes);
    if (count == component.recordSize)
    {
        bytes.resize(count);
        return bytes;
    }

    std::string found = count_of_bytes(count);
    if (count > component.recordSize)
        found = size > component.recordSize ? count_of_bytes(*size) : "more than " + count_of_bytes(component.recordSize);
    const std::string article = component.name.starts_with('a') ? "an " : "a ";
    throw Failure(ExitStatus::InputFailed, file.name() + ": " + found + ", but " + article + std::string(component.name) + " record has " +
                                               std::to_string(component.recordSize));
}

void write_records(const SAMPLES_RECORDS& records, const std::string& directory)
{
    require_directory(directory);

    const DeferredSignals signals;
    std::deque<PendingFile> files;
    for (const Component& component : components())
    {
        if (signals.arrived()) return;
        PendingFile& file = files.emplace_back(directory, std::string(component.name) + ".rec");
        file.write(component.record(records));
        file.finish();
    }
    for (PendingFile& file : files) file.publish();
}
