/**
 * @file frames.h
 * The frames of a capture file, one after the other. Frames that are not whole are stepped over: reading goes on at the next
 * one that is.
 */
#ifndef CAPTURE_FRAMES_H
#define CAPTURE_FRAMES_H

#include <cstddef>
#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <vector>

#include "bytes.h"
#include "capture_format.h"

namespace capture
{

/** CRC-32 as of ISO/IEC 3309, the one of zip and PNG. @param before that of the bytes before these */
std::uint32_t crc_of(std::span<const std::byte> bytes, std::uint32_t before = 0);

/** Appends a frame. @return its CRC */
std::uint32_t put_frame(Output& out, FrameType type, std::span<const std::byte> payload);

/** The header of a file that begins. */
FileHeader file_header();

/** What the first bytes of a file say. */
enum class Start
{
    good,
    damaged,       /**< whole frames follow a header that is not whole */
    other_version, /**< a capture file that this program does not read */
    none,          /**< no capture file */
};

/** A file that is open for reading. The file may grow meanwhile, and may hold anything. */
class FrameReader
{
public:
    /** How thoroughly frames are checked. */
    enum class Check
    {
        all,
        index, /**< the CRC of a change frame is taken for right where the change behind names it as its base */
    };

    /** What the file holds next. */
    struct Part
    {
        enum class Kind
        {
            frame,
            lost, /**< bytes that make no frame */
            end,  /**< the end, or bytes before it that make no frame yet */
        };
        Kind kind = Kind::end;
        std::uint64_t offset = 0;                /**< in the file [bytes] */
        std::uint64_t size = 0;                  /**< of the frame, of what is lost, or of what stands before the end [bytes] */
        FrameType type = FrameType::end;         /**< of the frame */
        std::uint32_t crc = 0;                   /**< of the frame */
        std::span<const std::byte> payload = {}; /**< of the frame, until the next reading */
        std::span<const std::byte> bytes = {};   /**< the frame itself, until the next reading */
    };

    /** Opens a file. @throw Error if it cannot be read or is no regular file */
    explicit FrameReader(const std::string& path);
    ~FrameReader();
    FrameReader(const FrameReader&) = delete;
    FrameReader& operator=(const FrameReader&) = delete;

    const std::string& path() const { return path_; }

    /** Looks at the header, and goes to the first frame. @throw Error if the file cannot be read */
    Start start();

    /** Goes to an offset. */
    void seek(std::uint64_t offset) { offset_ = offset; }

    /** Where the next part begins. */
    std::uint64_t offset() const { return offset_; }

    /** Reads the next part. At the end it stays where it is: more may follow later. @throw Error if the file cannot be read */
    Part next(Check check = Check::all);

    /** Size of the file at present. @throw Error */
    std::uint64_t file_size() const;

    /**
     * What looking for frames has cost so far: bytes stepped over, and bytes of what looked like a frame and was none. A file is
     * believed to be damaged, not made to look like frames at every byte: of the latter there are at most longest_frame and
     * checks_a_byte for each byte of the file, and what looks like a frame beyond that is stepped over.
     */
    std::uint64_t search_cost() const { return stepped_ + checked_; }
    static constexpr std::uint64_t checks_a_byte = 16;

private:
    std::span<const std::byte> load(std::uint64_t offset, std::size_t size);
    std::size_t read(std::uint64_t offset, std::span<std::byte> bytes) const;
    std::span<const std::byte> frame_at(std::uint64_t offset);
    bool is_change_from(std::uint64_t offset, std::uint32_t base) const;
    std::size_t supposed_frame(std::uint64_t offset);
    std::uint64_t find_frame(std::uint64_t offset, std::uint64_t end);
    Part search(std::uint64_t offset);

    std::string path_;
    int descriptor_;
    std::uint64_t offset_ = 0;
    std::uint64_t size_ = 0;
    std::vector<std::byte> buffer_;
    std::uint64_t buffer_offset_ = 0;
    std::size_t buffered_ = 0;
    std::uint64_t stepped_ = 0;
    std::uint64_t checked_ = 0;
    std::map<std::uint64_t, std::uint64_t> found_; // where looking from there ended, where it was not easy
    std::uint64_t fruitless_ = 0;                  // from there to the end there was no frame,
    std::uint64_t fruitless_size_ = 0;             // when the file had this size
};

} // namespace capture

#endif
