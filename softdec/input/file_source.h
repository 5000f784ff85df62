/**
 * @file file_source.h
 * A transport stream in a file: bytes without arrival times.
 */
#ifndef SOFTDEC_INPUT_FILE_SOURCE_H
#define SOFTDEC_INPUT_FILE_SOURCE_H

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "input/source.h"

namespace softdec
{

class FileSource : public Source
{
public:
    /** @param path the file @throw InputError if it cannot be opened or holds no transport stream */
    explicit FileSource(const std::string& path);

    Result next(Datagram& datagram) override;
    bool has_arrivals() const override { return false; }

private:
    struct Close
    {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };
    bool find_packets();
    std::size_t read(std::span<std::uint8_t> bytes);

    std::string path_;
    std::unique_ptr<std::FILE, Close> file_;
    std::vector<std::uint8_t> buffer_;
    std::size_t begin_ = 0;    // of what of it is still to be given
    std::size_t distance_ = 0; // from the begin of one packet to that of the next
};

} // namespace softdec

#endif
