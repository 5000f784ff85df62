/**
 * @file input_file.h
 * A file that is read from its start to its end, standard input included.
 */
#ifndef FILES_INPUT_FILE_H
#define FILES_INPUT_FILE_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace files
{

/** A file open for reading. */
class InputFile
{
public:
    /**
     * Opens a file.
     * @param path path, or "-" for standard input
     * @throw Failure if the file cannot be opened
     */
    explicit InputFile(const std::string& path);
    ~InputFile();
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;

    /** The file's name in messages. */
    const std::string& name() const { return name_; }

    /** Number of bytes from the present position to the end; nothing if the file is not a regular one. */
    std::optional<std::uint64_t> remaining() const;

    /** When the file was last written [ns since the epoch]; nothing if the file is not a regular one. */
    std::optional<std::int64_t> modified_at() const;

    /**
     * Reads until the buffer is full or the file ends.
     * @return number of bytes read; less than the buffer's size only at the end of the file
     * @throw Failure if the file cannot be read
     */
    std::size_t read(std::span<std::byte> buffer);

private:
    std::string name_;
    int descriptor_;
    bool owned_;
};

} // namespace files

#endif
