#include "input/file_source.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <optional>
#include <span>

namespace softdec
{

namespace
{

/** As many transport stream packets as a datagram usually holds, so that pacing is as fine as with a network input. */
constexpr std::size_t packets_each = 7;

/** Bytes that are searched for the first packets: in front of them may be the rest of one, or what a download or a recorder put there. */
constexpr std::size_t searched = 64UL * 1024;

/** Sync bytes at the same distance that make a stream. */
constexpr std::size_t enough_packets = 5;

/** Plain packets; with the arrival time in front of each, as on discs and in recorders; with the check bytes of a broadcast behind each. */
constexpr std::size_t distances[] = {188, 192, 204};

bool has_packets(std::span<const std::uint8_t> bytes, std::size_t begin, std::size_t distance)
{
    const std::size_t needed = std::clamp<std::size_t>(bytes.size() / distance, 1, enough_packets);
    for (std::size_t i = 0; i < needed; ++i)
        if (begin + i * distance >= bytes.size() || bytes[begin + i * distance] != 0x47) return false;
    return true;
}

} // namespace

FileSource::FileSource(const std::string& path) : path_(path), file_(std::fopen(path.c_str(), "rbe")), buffer_(searched)
{
    if (!file_) throw InputError(path + ": " + std::strerror(errno));
    buffer_.resize(read(buffer_));
    if (!find_packets()) throw InputError(path + ": no MPEG transport stream found: packets of 188, 192 or 204 bytes expected");
}

bool FileSource::find_packets()
{
    for (; begin_ < buffer_.size(); ++begin_)
        for (const std::size_t distance : distances)
        {
            if (!has_packets(buffer_, begin_, distance)) continue;
            distance_ = distance;
            // The upper two bytes of the arrival times may have the sync byte's value for a while.
            for (const std::size_t more : {3U, 4U})
                if (distance == 192 && has_packets(buffer_, begin_ + more, distance))
                {
                    begin_ += more;
                    break;
                }
            return true;
        }
    return false;
}

std::size_t FileSource::read(std::span<std::uint8_t> bytes)
{
    const std::size_t count = std::fread(bytes.data(), 1, bytes.size(), file_.get());
    if (count == 0 && std::ferror(file_.get()) != 0) throw InputError(path_ + ": " + std::strerror(errno));
    return count;
}

Source::Result FileSource::next(Datagram& datagram)
{
    const std::size_t piece = packets_each * distance_;
    if (begin_ == buffer_.size())
    {
        buffer_.resize(piece);
        buffer_.resize(read(buffer_));
        begin_ = 0;
    }
    const std::size_t count = std::min(piece, buffer_.size() - begin_);
    if (count == 0) return Result::end;
    datagram = {.channel = Channel::media,
                .arrival = std::nullopt,
                .bytes = std::span(buffer_).subspan(begin_, count),
                .packet_distance = distance_};
    begin_ += count;
    return Result::datagram;
}

} // namespace softdec
