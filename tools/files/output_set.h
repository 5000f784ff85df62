/**
 * @file output_set.h
 * Files of one directory that are written all together or not at all.
 */
#ifndef FILES_OUTPUT_SET_H
#define FILES_OUTPUT_SET_H

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace files
{

/** A directory that one process at a time writes sets of files into. */
class LockedDirectory
{
public:
    /**
     * Opens the directory, and waits until no other process holds it.
     * @param path existing directory
     * @throw Failure if it cannot be opened
     */
    explicit LockedDirectory(const std::string& path);
    ~LockedDirectory();
    LockedDirectory(const LockedDirectory&) = delete;
    LockedDirectory& operator=(const LockedDirectory&) = delete;

    const std::string& path() const { return path_; }

private:
    std::string path_;
    int descriptor_;
};

/** A file of a set: its name, and all that it is to hold. */
struct OutputFile
{
    std::string name;
    std::span<const std::byte> content;
};

/**
 * Writes a set of files. Each stands under a temporary name until all are complete; files of the same names are replaced, and
 * come back if one of the set cannot take its name. What is not a regular file is never replaced. Signals that would end the
 * process wait until the set is whole or gone.
 * @throw Failure if a file cannot be written: the directory is then as it was
 */
void write_set(const LockedDirectory& directory, const std::vector<OutputFile>& files);

} // namespace files

#endif
