#include "frames.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "capture_error.h"

namespace capture
{

namespace
{

constexpr std::size_t buffer_size = std::size_t{256} * 1024;
static_assert(longest_payload >= buffer_size);

/**
 * What each value of a byte adds to the CRC-32 of ISO/IEC 3309, whose polynomial is 0x04C11DB7, here with its bits reversed: of the
 * last byte, of the one before it, and so on.
 */
consteval std::array<std::array<std::uint32_t, 256>, 8> crc_tables()
{
    std::array<std::array<std::uint32_t, 256>, 8> tables = {};
    for (std::uint32_t i = 0; i < 256; ++i)
    {
        std::uint32_t crc = i;
        for (int bit = 0; bit < 8; ++bit) crc = crc >> 1 ^ ((crc & 1) != 0 ? 0xEDB88320U : 0);
        tables[0][i] = crc;
    }
    for (std::size_t before = 1; before < tables.size(); ++before)
        for (std::size_t i = 0; i < 256; ++i)
        {
            const std::uint32_t crc = tables[before - 1][i];
            tables[before][i] = crc >> 8 ^ tables[0][crc & 0xFF];
        }
    return tables;
}

std::uint32_t word_in(std::span<const std::byte> bytes, std::size_t offset)
{
    std::uint32_t word = 0;
    std::memcpy(&word, bytes.data() + offset, sizeof word);
    return word;
}

std::size_t length_in(std::uint32_t word)
{
    return word & 0xFFFFFF;
}

std::uint32_t frame_crc(std::uint32_t word, std::span<const std::byte> payload)
{
    return crc_of(payload, crc_of(std::as_bytes(std::span(&word, 1))));
}

} // namespace

std::uint32_t crc_of(std::span<const std::byte> bytes, std::uint32_t before)
{
    // Not a library's: the tool needs libc alone, on every processor that it is built for.
    static constexpr auto tables = crc_tables();
    std::uint32_t crc = ~before;
    // Eight bytes at a time take a fifth of the time: finding a moment of a day checks megabytes.
    for (; bytes.size() >= 8; bytes = bytes.subspan(8))
    {
        std::uint64_t word = 0;
        std::memcpy(&word, bytes.data(), sizeof word);
        word ^= crc;
        crc = tables[7][word & 0xFF] ^ tables[6][word >> 8 & 0xFF] ^ tables[5][word >> 16 & 0xFF] ^ tables[4][word >> 24 & 0xFF] ^
              tables[3][word >> 32 & 0xFF] ^ tables[2][word >> 40 & 0xFF] ^ tables[1][word >> 48 & 0xFF] ^ tables[0][word >> 56];
    }
    for (const std::byte byte : bytes) crc = crc >> 8 ^ tables[0][(crc ^ std::to_integer<std::uint32_t>(byte)) & 0xFF];
    return ~crc;
}

std::uint32_t put_frame(Output& out, FrameType type, std::span<const std::byte> payload)
{
    const std::uint32_t word = frame_word(type, payload.size());
    const std::uint32_t crc = frame_crc(word, payload);
    out.put(word);
    out.put(crc);
    out.put_bytes(payload);
    out.put(word);
    return crc;
}

FileHeader file_header()
{
    FileHeader header = {.magic = magic, .version = format_version, .byte_order = byte_order, .size = sizeof(FileHeader), .crc = 0};
    header.crc = crc_of(std::as_bytes(std::span(&header, 1)).first(offsetof(FileHeader, crc)));
    return header;
}

FrameReader::FrameReader(const std::string& path) : path_(path), descriptor_(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK))
{
    if (descriptor_ < 0) throw system_error(Problem::unreadable, path_, errno);
    struct stat status = {};
    if (fstat(descriptor_, &status) == 0 && S_ISREG(status.st_mode)) return;
    close(descriptor_);
    throw Error(Problem::unreadable, path_, "not a regular file");
}

FrameReader::~FrameReader()
{
    close(descriptor_);
}

std::uint64_t FrameReader::file_size() const
{
    struct stat status = {};
    if (fstat(descriptor_, &status) != 0) throw system_error(Problem::unreadable, path_, errno);
    return static_cast<std::uint64_t>(status.st_size);
}

/** Reads what there is of a range. */
std::size_t FrameReader::read(std::uint64_t offset, std::span<std::byte> bytes) const
{
    std::size_t done = 0;
    while (done < bytes.size())
    {
        const ssize_t count = pread(descriptor_, bytes.data() + done, bytes.size() - done, static_cast<off_t>(offset + done));
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) throw system_error(Problem::unreadable, path_, errno);
        if (count == 0) break;
        done += static_cast<std::size_t>(count);
    }
    return done;
}

/** The bytes of a range, or none if the file does not have all of them. They stay until the next call. */
std::span<const std::byte> FrameReader::load(std::uint64_t offset, std::size_t size)
{
    if (offset < buffer_offset_ || offset + size > buffer_offset_ + buffered_)
    {
        const std::uint64_t end = std::max(file_size(), offset);
        buffer_.resize(std::max<std::size_t>(size, std::min<std::uint64_t>(end - offset, buffer_size)));
        buffered_ = read(offset, buffer_);
        buffer_offset_ = offset;
        if (buffered_ < size) return {};
    }
    return std::span(buffer_).subspan(static_cast<std::size_t>(offset - buffer_offset_), size);
}

/** Size of the frame that two equal believable words enclose there, or 0. Its type must be known: what is searched for is sure to be one. */
std::size_t FrameReader::supposed_frame(std::uint64_t offset)
{
    const std::span<const std::byte> head = load(offset, frame_head);
    if (head.empty()) return 0;
    const std::uint32_t word = word_in(head, 0);
    const std::size_t length = length_in(word);
    if (word >> 24 == 0 || word >> 24 > last_frame_type || length > longest_payload) return 0;
    const std::uint64_t last = offset + frame_head + length;
    if (last + sizeof word > size_) return 0;
    std::uint32_t last_word = 0;
    if (last + sizeof word <= buffer_offset_ + buffered_)
        last_word = word_in(buffer_, static_cast<std::size_t>(last - buffer_offset_));
    else if (read(last, std::as_writable_bytes(std::span(&last_word, 1))) != sizeof last_word) // the buffer stays where the search is
        return 0;
    return word == last_word ? length + frame_overhead : 0;
}

/** The bytes of the frame that two equal words enclose, or none. */
std::span<const std::byte> FrameReader::frame_at(std::uint64_t offset)
{
    const std::span<const std::byte> head = load(offset, frame_head);
    if (head.empty()) return {};
    const std::uint32_t word = word_in(head, 0);
    const std::size_t length = length_in(word);
    if (length > longest_payload) return {};
    const std::span<const std::byte> frame = load(offset, frame_overhead + length);
    if (frame.empty() || word_in(frame, frame_head + length) != word) return {};
    return frame;
}

/** Whether a change begins there that is told from the snapshot whose frame has this CRC. The buffer stays where it is. */
bool FrameReader::is_change_from(std::uint64_t offset, std::uint32_t base) const
{
    std::array<std::byte, frame_head + sizeof base> bytes = {};
    if (offset + bytes.size() <= buffer_offset_ + buffered_)
        std::memcpy(bytes.data(), buffer_.data() + (offset - buffer_offset_), bytes.size());
    else if (read(offset, bytes) != bytes.size())
        return false;
    return static_cast<FrameType>(word_in(bytes, 0) >> 24) == FrameType::change && word_in(bytes, frame_head) == base;
}

/** The first whole frame that begins behind an offset and before another. @return its offset, or the end where there is none */
std::uint64_t FrameReader::find_frame(std::uint64_t offset, std::uint64_t end)
{
    if (const auto known = found_.find(offset); known != found_.end()) return std::min(known->second, end);
    bool is_easy = true;
    std::uint64_t next = offset + 1;
    for (; next < end && next + frame_overhead <= size_; ++next)
    {
        ++stepped_;
        const std::size_t size = supposed_frame(next);
        if (size == 0 || checked_ + size > longest_frame + checks_a_byte * next) continue;
        const std::span<const std::byte> frame = frame_at(next);
        if (!frame.empty() && frame_crc(word_in(frame, 0), frame.subspan(frame_head, size - frame_overhead)) == word_in(frame, 4)) break;
        checked_ += size;
        is_easy = false;
    }
    const bool is_found = next < end && next + frame_overhead <= size_;
    if (!is_found) next = end;
    if (!is_easy && (is_found || end < size_)) found_.emplace(offset, next); // the end of a file may become another
    return next;
}

/** What is lost between an offset and the next whole frame. Without one it may be a frame that is being written. */
FrameReader::Part FrameReader::search(std::uint64_t offset)
{
    size_ = file_size();
    const Part end = {.kind = Part::Kind::end, .offset = offset, .size = size_ - std::min(offset, size_)};
    if (offset == fruitless_ && size_ == fruitless_size_) return end;
    const std::uint64_t found = find_frame(offset, size_);
    if (found < size_)
    {
        offset_ = found;
        return {.kind = Part::Kind::lost, .offset = offset, .size = found - offset};
    }
    buffered_ = 0; // what stands there may change
    fruitless_ = offset;
    fruitless_size_ = size_;
    return end;
}

FrameReader::Part FrameReader::next(Check check)
{
    const std::uint64_t offset = offset_;
    const std::span<const std::byte> frame = frame_at(offset);
    // No frame has the type 0: zeros, as a crash of the machine leaves them, are not a row of empty frames.
    if (frame.empty() || word_in(frame, 0) >> 24 == 0) return search(offset);

    const std::uint32_t word = word_in(frame, 0);
    Part part = {.kind = Part::Kind::frame,
                 .offset = offset,
                 .size = frame.size(),
                 .type = static_cast<FrameType>(word >> 24),
                 .crc = word_in(frame, 4),
                 .payload = frame.subspan(frame_head, frame.size() - frame_overhead),
                 .bytes = frame};
    offset_ += frame.size();
    // That spares most of a day. What no change names may be many frames with equal words around them.
    if (check == Check::index && part.type == FrameType::change && is_change_from(offset_, part.crc)) return part;
    if (frame_crc(word, part.payload) == part.crc) return part;

    // Frames are alike: where bytes are missing, the second word may be that of another frame, and whole ones stand in between.
    size_ = file_size();
    const std::uint64_t inside = find_frame(offset, offset_);
    Part lost = {.kind = Part::Kind::lost, .offset = offset, .size = inside - offset};
    if (inside == offset_) lost.type = part.type;
    offset_ = inside;
    return lost;
}

Start FrameReader::start()
{
    FileHeader header = {};
    const std::span<std::byte> bytes = std::as_writable_bytes(std::span(&header, 1));
    const std::size_t count = read(0, bytes);
    const bool has_magic = count >= sizeof magic && header.magic == magic;
    const bool is_whole = count == sizeof header && has_magic && header.crc == crc_of(bytes.first(offsetof(FileHeader, crc)));
    offset_ = sizeof header;
    if (is_whole)
    {
        if (header.version != format_version || header.byte_order != byte_order) return Start::other_version;
        offset_ = std::max<std::uint64_t>(header.size, sizeof header);
        return Start::good;
    }
    // A file without its magic is none, unless a whole frame stands where the first one does.
    size_ = file_size();
    const bool has_frame = supposed_frame(offset_) != 0 && next().kind == Part::Kind::frame;
    offset_ = sizeof header;
    return has_magic || has_frame ? Start::damaged : Start::none;
}

} // namespace capture
