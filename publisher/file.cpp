#include "file.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include "error.h"

namespace publisher
{

namespace
{

/** A leading full stop: no decoder's name begins with one, so readers pass over it. */
struct TemporaryName
{
    explicit TemporaryName(const File& file) { std::snprintf(text, sizeof text, ".%s", file.name); }
    char text[sizeof(File::name) + 1];
};

bool same_file(const struct stat& one, const struct stat& other)
{
    return one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

/** Whether the file still stands in its directory under a name. */
bool stands_as(const File& file, const char* name, struct stat& own)
{
    struct stat there = {};
    return fstat(file.descriptor, &own) == 0 && fstatat(file.directory, name, &there, AT_SYMLINK_NOFOLLOW) == 0 && same_file(own, there);
}

/** An open-file-description lock: it is the kernel that lets it go, whatever becomes of the process. */
bool lock(int descriptor)
{
    struct flock whole = {};
    whole.l_type = F_WRLCK;
    whole.l_whence = SEEK_SET;
    return fcntl(descriptor, F_OFD_SETLK, &whole) == 0;
}

/** Whether a living process publishes under a name. A reader's lock, which anyone may hold, does not count. */
bool is_alive(int directory, const char* name)
{
    const int descriptor = openat(directory, name, O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0) return false; // what cannot be opened is replaced, or the renaming says why not
    struct flock query = {};
    query.l_type = F_RDLCK;
    query.l_whence = SEEK_SET;
    const bool alive = fcntl(descriptor, F_OFD_GETLK, &query) == 0 && query.l_type != F_UNLCK;
    close(descriptor);
    return alive;
}

/**
 * Opens a new file under the temporary name and locks it. The name is the same for all openings of a decoder, so that the lock
 * makes sure that one at a time looks whether the decoder is published already.
 */
bool open_new(File& file, const char* directory, STATS_PUBLISH_ERROR* error)
{
    const TemporaryName name(file);
    for (int attempt = 0; attempt < 100; ++attempt)
    {
        file.descriptor = openat(file.directory, name.text, O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK, S_IRUSR | S_IWUSR);
        if (file.descriptor < 0)
        {
            set_system_error(error, errno, "cannot create %s/%s", directory, name.text);
            return false;
        }
        if (!lock(file.descriptor))
        {
            if (errno == EAGAIN || errno == EACCES)
                set_error(error, STATS_PUBLISH_ALREADY_PUBLISHED, "%s/%s: another process is just opening it", directory, file.name);
            else
                set_system_error(error, errno, "cannot lock %s/%s", directory, name.text);
            return false;
        }
        struct stat own = {};
        const bool stands = stands_as(file, name.text, own);
        if (stands && S_ISREG(own.st_mode) && own.st_size == 0 && own.st_nlink == 1) return true;
        // What a process left that died while it opened; or another process has just put it in place.
        if (stands) unlinkat(file.directory, name.text, 0);
        close(file.descriptor);
        file.descriptor = -1;
    }
    set_error(error, STATS_PUBLISH_ALREADY_PUBLISHED, "%s/%s: other processes keep opening it", directory, file.name);
    return false;
}

/** Takes the space that the file will need, so that a full file system is an error here and not a signal later. */
int reserve(int descriptor, std::size_t size)
{
    rlimit limit = {};
    if (getrlimit(RLIMIT_FSIZE, &limit) == 0 && limit.rlim_cur < size) return EFBIG; // beyond it the kernel sends a signal
    int result = 0;
    do result = posix_fallocate(descriptor, 0, static_cast<off_t>(size));
    while (result == EINTR);
    return result;
}

} // namespace

bool create_file(File& file, const char* directory, const char* decoder, std::size_t size, STATS_PUBLISH_ERROR* error)
{
    std::snprintf(file.name, sizeof file.name, "%s" STATS_PUBLISH_SUFFIX, decoder);
    file.directory = open(directory, O_PATH | O_DIRECTORY | O_CLOEXEC);
    if (file.directory < 0)
    {
        set_system_error(error, errno, "%s", directory);
        return false;
    }
    if (!open_new(file, directory, error))
    {
        release_file(file);
        return false;
    }

    int number = reserve(file.descriptor, size);
    if (number == 0 && fchmod(file.descriptor, S_IRUSR | S_IWUSR | S_IRGRP) != 0) number = errno;
    if (number == 0)
    {
        void* bytes = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_POPULATE, file.descriptor, 0);
        if (bytes != MAP_FAILED)
        {
            file.bytes = static_cast<unsigned char*>(bytes);
            file.size = size;
            return true;
        }
        number = errno;
    }
    set_system_error(error, number, "cannot create %s/%s with %zu bytes", directory, file.name, size);
    unlinkat(file.directory, TemporaryName(file).text, 0);
    release_file(file);
    return false;
}

bool put_in_place(File& file, const char* directory, STATS_PUBLISH_ERROR* error)
{
    const TemporaryName temporary(file);
    if (is_alive(file.directory, file.name))
        set_error(error, STATS_PUBLISH_ALREADY_PUBLISHED, "%s/%s: already published by a process that is alive", directory, file.name);
    else if (renameat(file.directory, temporary.text, file.directory, file.name) != 0)
        set_system_error(error, errno, "cannot create %s/%s", directory, file.name);
    else
        return true;
    unlinkat(file.directory, temporary.text, 0);
    release_file(file);
    return false;
}

void remove_file(const File& file)
{
    struct stat own = {};
    if (stands_as(file, file.name, own)) unlinkat(file.directory, file.name, 0);
}

void release_file(File& file)
{
    if (file.bytes != nullptr) munmap(file.bytes, file.size);
    if (file.descriptor >= 0) close(file.descriptor);
    if (file.directory >= 0) close(file.directory);
    file.bytes = nullptr;
    file.descriptor = file.directory = -1;
}

} // namespace publisher
