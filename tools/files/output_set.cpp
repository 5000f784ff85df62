#include "output_set.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

#include "failure.h"

namespace files
{

namespace
{

[[noreturn]] void fail(const std::string& path, int error)
{
    throw Failure(ExitStatus::output_failed, shown(path) + ": " + std::strerror(error));
}

/**
 * The path of a file that may be replaced: there is none, or it is a regular one. In the place of a device, a FIFO, a socket or a
 * symbolic link, a file would cut off whoever uses it.
 */
std::string replaceable(const std::string& path)
{
    struct stat status = {};
    if (lstat(path.c_str(), &status) != 0 || S_ISREG(status.st_mode)) return path;
    if (S_ISDIR(status.st_mode)) fail(path, EISDIR);
    throw Failure(ExitStatus::input_failed, shown(path) + ": is not a regular file, so it is not replaced");
}

mode_t file_creation_mask()
{
    const mode_t mask = umask(0);
    umask(mask);
    return mask;
}

/**
 * Holds back the signals that end the process, while there is something to clean up. They take effect when this ends, so it
 * stands before what it guards. A signal that the process ignores ends nothing and is left alone.
 */
class DeferredSignals
{
public:
    DeferredSignals()
    {
        sigemptyset(&deferred_);
        for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGTERM})
        {
            struct sigaction action = {};
            if (sigaction(signal, nullptr, &action) == 0 && action.sa_handler != SIG_IGN) sigaddset(&deferred_, signal);
        }
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

/** A file under a temporary name beside its own, until it is published and kept. What is not kept is undone. */
class PendingFile
{
public:
    PendingFile(const std::string& directory, const std::string& name)
        : path_(replaceable(directory + "/" + name)), temporary_(directory + "/." + name + ".XXXXXX"),
          descriptor_(mkostemp(temporary_.data(), O_CLOEXEC)), replaced_(temporary_ + ".old")
    {
        if (descriptor_ < 0) fail(directory, errno);
    }

    ~PendingFile()
    {
        if (descriptor_ >= 0) close(descriptor_);
        if (is_kept_) return;
        unlink((is_published_ ? path_ : temporary_).c_str());
        if (has_replaced_) std::rename(replaced_.c_str(), path_.c_str());
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
                fail(path_, errno);
        }
    }

    /** Gives the file the mode of any new file and closes it, which may be what reports that a file server is full. */
    void finish()
    {
        if (fchmod(descriptor_, 0666 & ~file_creation_mask()) != 0) fail(path_, errno);
        if (close(std::exchange(descriptor_, -1)) != 0) fail(path_, errno);
    }

    /** Gives the file its own name in place of the one that had it. */
    void publish()
    {
        if (std::rename(temporary_.c_str(), path_.c_str()) != 0) fail(path_, errno);
        is_published_ = true;
    }

    /** The same, and the one that had it keeps another name until this one is kept. */
    void publish_with_way_back()
    {
        struct stat status = {};
        if (lstat(path_.c_str(), &status) == 0)
        {
            if (S_ISDIR(status.st_mode)) fail(path_, EISDIR);
            if (std::rename(path_.c_str(), replaced_.c_str()) != 0) fail(path_, errno);
            has_replaced_ = true;
        }
        publish();
    }

    /** Makes it final. */
    void keep()
    {
        if (has_replaced_) unlink(replaced_.c_str());
        is_kept_ = true;
    }

private:
    std::string path_;
    std::string temporary_;
    int descriptor_;
    std::string replaced_;
    bool has_replaced_ = false;
    bool is_published_ = false;
    bool is_kept_ = false;
};

} // namespace

LockedDirectory::LockedDirectory(const std::string& path) : path_(path), descriptor_(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC))
{
    if (descriptor_ < 0) fail(path, errno);
    // Where a file system has no locks, two writers at the same time are the only ones to notice.
    while (flock(descriptor_, LOCK_EX) != 0 && errno == EINTR) continue;
}

LockedDirectory::~LockedDirectory()
{
    close(descriptor_);
}

void write_set(const LockedDirectory& directory, const std::vector<OutputFile>& files)
{
    const DeferredSignals signals;
    std::deque<PendingFile> pending;
    for (const OutputFile& file : files)
    {
        if (signals.arrived()) return;
        PendingFile& next = pending.emplace_back(directory.path(), file.name);
        next.write(file.content);
        next.finish();
    }
    if (signals.arrived()) return;
    if (pending.size() == 1)
        pending.front().publish(); // a reader sees the old file or the new one, and never none
    else
        for (PendingFile& file : pending) file.publish_with_way_back();
    for (PendingFile& file : pending) file.keep();
}

} // namespace files
