#include "input/file_source.h"

#include <cerrno>
#include <cstring>

namespace softdec
{

namespace
{

/** As many transport stream packets as a datagram usually holds, so that pacing is as fine as with a network input. */
constexpr std::size_t piece_size = 7UL * 188;

} // namespace

FileSource::FileSource(const std::string& path) : path_(path), file_(std::fopen(path.c_str(), "rbe")), buffer_(piece_size)
{
    if (!file_) throw InputError(path + ": " + std::strerror(errno));
}

Source::Result FileSource::next(Datagram& datagram)
{
    const std::size_t count = std::fread(buffer_.data(), 1, buffer_.size(), file_.get());
    if (count == 0 && std::ferror(file_.get()) != 0) throw InputError(path_ + ": " + std::strerror(errno));
    if (count == 0) return Result::end;
    datagram = {.channel = Channel::media, .arrival = std::nullopt, .bytes = std::span(buffer_).first(count)};
    return Result::datagram;
}

} // namespace softdec
