#include "chain/record_files.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace softdec
{

namespace
{

/** A path where there is nothing or a regular file: in the place of a device, a FIFO or a link, a file would cut off whoever uses it. */
std::string replaceable(const std::string& path)
{
    struct stat status = {};
    if (lstat(path.c_str(), &status) != 0 || S_ISREG(status.st_mode)) return path;
    throw OutputError(path + ": is not a regular file, so it is not replaced");
}

/** A file under a temporary name, which goes away unless it is published. */
class PendingFile
{
public:
    PendingFile(const std::string& directory, const std::string& name, std::span<const std::byte> bytes)
        : path_(replaceable(directory + "/" + name)), temporary_(directory + "/." + name + "." + std::to_string(getpid()))
    {
        std::FILE* const file = std::fopen(temporary_.c_str(), "wbxe");
        if (file == nullptr) fail();
        const bool written = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
        const int error = errno;
        if (std::fclose(file) == 0 && written) return;
        if (!written) errno = error;
        unlink(temporary_.c_str());
        fail();
    }
    ~PendingFile()
    {
        if (!temporary_.empty()) unlink(temporary_.c_str());
    }
    PendingFile(PendingFile&& other) noexcept : path_(std::move(other.path_)), temporary_(std::move(other.temporary_))
    {
        other.temporary_.clear();
    }
    PendingFile(const PendingFile&) = delete;
    PendingFile& operator=(const PendingFile&) = delete;

    void publish()
    {
        if (std::rename(temporary_.c_str(), path_.c_str()) != 0) fail();
        temporary_.clear();
    }

private:
    [[noreturn]] void fail() const { throw OutputError(path_ + ": " + std::strerror(errno)); }

    std::string path_;
    std::string temporary_;
};

} // namespace

void write_record_files(const records::Records& records, const std::string& directory)
{
    std::vector<PendingFile> files;
    for (const records::Component& component : records::components())
        files.emplace_back(directory, std::string(component.name) + ".rec",
                           std::as_bytes(std::span(&records, 1)).subspan(component.offset, component.record_size));
    for (PendingFile& file : files) file.publish();
}

} // namespace softdec
