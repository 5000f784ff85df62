/**
 * @file capture_files.h
 * The file that a capture writes, and those that it has filled.
 */
#ifndef COMMANDS_CAPTURE_FILES_H
#define COMMANDS_CAPTURE_FILES_H

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "capture_writer.h"
#include "snapshot.h"

namespace commands
{

/** When a new file begins. */
struct Rotation
{
    bool each_day = false;                   /**< with the first snapshot of a day, UTC */
    std::uint64_t above = ~std::uint64_t{0}; /**< with the first snapshot after the file has this size [bytes] */
};

/** Reads a rotation. @param text "day", or a size in bytes or with K, M or G, which are of 1024 @return or nothing */
std::optional<Rotation> parse_rotation(std::string_view text);

/**
 * The file of a capture. When a new one begins, the one before takes the moment of its first snapshot into its name:
 * studio.dcap becomes studio-20220606T160655Z.dcap. All of it throws capture::Error.
 */
class CaptureFiles
{
public:
    CaptureFiles(const std::string& path, const Rotation& rotation);

    void append(const records::Snapshot& snapshot);
    void mark_gap(capture::GapCause cause, std::string_view text);
    void finish();

    /** Size of all that this capture has written into [bytes]. */
    std::uint64_t size() const { return filled_ + (writer_ ? writer_->size() : 0); }

private:
    bool is_filled(std::int64_t moment) const;
    void put_away();
    void begin();

    std::string path_;
    Rotation rotation_;
    std::unique_ptr<capture::Writer> writer_; /**< NULL = the last file is put away, and there was no space for another yet */
    bool was_full_ = false;
    std::uint64_t filled_ = 0;
};

} // namespace commands

#endif
