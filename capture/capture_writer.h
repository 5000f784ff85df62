/**
 * @file capture_writer.h
 * Captures into a file: appends snapshots, each with one write, so that a process that ends at any moment leaves a file whose
 * whole frames are all there.
 */
#ifndef CAPTURE_CAPTURE_WRITER_H
#define CAPTURE_CAPTURE_WRITER_H

#include <cstdint>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "capture_format.h"
#include "snapshot.h"
#include "value_codec.h"

namespace capture
{

/** A file of its own that is open for writing, and that no other writer may have. */
class OwnedFile
{
public:
    /** Opens or creates a file. @throw Error if that fails, or another process captures into it */
    explicit OwnedFile(const std::string& path);
    ~OwnedFile();
    OwnedFile(const OwnedFile&) = delete;
    OwnedFile& operator=(const OwnedFile&) = delete;

    int descriptor() const { return descriptor_; }

private:
    bool open_and_lock(const std::string& path);

    int descriptor_ = -1;
};

/** Whether a process captures into a file at present. @return false also where nobody can tell */
bool is_being_written(const std::string& path);

/** A capture that goes on. */
class Writer
{
public:
    /**
     * Opens a capture file to append to it, or begins one. What stands behind the last whole frame is cut off.
     * @throw Error if the file cannot be written, is none of this version, or another process captures into it
     */
    explicit Writer(const std::string& path);
    ~Writer();
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;

    /**
     * Appends a snapshot. A restart of the host and a clock that was set back are seen, and marked.
     * @throw Error if it cannot be written: the file is then as it was. After Problem::full the next one may succeed, and marks
     *        the gap. Problem::other_decoder: the file holds another decoder's snapshots.
     */
    void append(const records::Snapshot& snapshot);

    /** Marks that snapshots are missing before the next one. The first of several marks stays. */
    void mark_gap(GapCause cause, std::string_view text);

    /** Ends the capture in order, and waits until the file is stored. Nothing can be appended afterwards. @throw Error */
    void finish();

    /** Size of the file [bytes]. */
    std::uint64_t size() const { return end_; }

    /** Moment of the last snapshot in the file, also of an earlier capture [ns since the epoch, UTC]; nothing = there is none. */
    std::optional<std::int64_t> last_moment() const;

private:
    struct PendingGap
    {
        GapCause cause;
        std::string text;
    };

    void resume();
    bool needs_whole(const records::Snapshot& snapshot) const;
    void put_events(const records::Snapshot& snapshot, Output& out);
    void put_layouts(const records::Snapshot& snapshot, Output& out);
    std::uint32_t put_whole(const records::Snapshot& snapshot, Output& out);
    std::uint32_t put_change(const records::Snapshot& snapshot, Output& out);
    void write(std::span<const std::byte> bytes);

    std::string path_;
    OwnedFile file_;
    std::uint64_t end_ = 0;                  /**< where the last whole frame ends [bytes] */
    std::set<std::uint32_t> known_layouts_;  /**< those in the file */
    std::optional<std::int64_t> layouts_at_; /**< moment at which they were written last */
    std::optional<PendingGap> gap_;
    std::optional<records::Snapshot> last_; /**< without its records */
    std::optional<std::uint32_t> base_crc_; /**< of its frame; nothing = only a whole one can follow */
    std::int64_t whole_at_ = 0;             /**< moment of the last whole one */
    std::int64_t interval_ = 0;             /**< between the last two */
    ValueCodec codec_;
    bool has_appended_ = false;
};

} // namespace capture

#endif
