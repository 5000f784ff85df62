/**
 * @file capture_reader.h
 * What a capture file holds: snapshots, and what happened between them. The file may hold anything and may be written
 * meanwhile. What is damaged is stepped over and told; no snapshot is shown that is not the one that was written.
 */
#ifndef CAPTURE_CAPTURE_READER_H
#define CAPTURE_CAPTURE_READER_H

#include <cstddef>
#include <cstdint>
#include <limits>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "capture_format.h"
#include "frames.h"
#include "snapshot.h"
#include "snapshot_decoder.h"

namespace capture
{

/** Snapshots are missing. */
struct Gap
{
    GapCause cause;    /**< a file may hold others, too */
    std::int64_t from; /**< moment of the snapshot before, 0 = there is none [ns since the epoch, UTC] */
    std::int64_t to;   /**< moment of the snapshot behind [ns since the epoch, UTC] */
    std::string text;  /**< what is known beside the cause; any bytes */
};

/** The word of a cause: "no space". */
std::string_view cause_name(GapCause cause);

/** The host was restarted. */
struct Restart
{
    std::int64_t moment; /**< of the first snapshot of the new instance [ns since the epoch, UTC] */
    std::optional<records::Instance> before;
    std::optional<records::Instance> after;
};

/** Something of the file is damaged. */
struct Loss
{
    std::uint64_t offset = 0;           /**< where it begins in the file [bytes] */
    std::uint64_t bytes = 0;            /**< that cannot be read; 0 = frames are missing */
    std::uint64_t snapshots = 0;        /**< that are known to be lost; of bytes that make no frame, nobody knows */
    std::optional<std::int64_t> after;  /**< moment of the last snapshot before [ns since the epoch, UTC] */
    std::optional<std::int64_t> before; /**< moment of the first snapshot behind [ns since the epoch, UTC] */
};

/** The capture was ended in order. */
struct End
{
    std::int64_t moment; /**< [ns since the epoch, UTC] */
};

/** What comes next in a file. The snapshot is the reader's, until the next call. */
using Event = std::variant<const records::Snapshot*, Gap, Restart, Loss, End>;

/** A capture file that is read. */
class Reader
{
public:
    /** Opens a file. @throw Error if it cannot be read, or is no capture file of a version that this program reads */
    explicit Reader(const std::string& path);

    /** Whether a file's first bytes are those of a capture file. @return false also if it cannot be read */
    static bool is_capture(const std::string& path);

    /** What comes next. @return nothing at the end; more may follow there later @throw Error */
    std::optional<Event> next();

    /** Bytes at the end that make no frame: one that is being written, or that its writer did not finish. After next() has ended. */
    std::uint64_t tail() const { return tail_; }

    /** Size of the file at present [bytes]. @throw Error */
    std::uint64_t file_size() const { return frames_.file_size(); }

    /** Begins anew. */
    void rewind();

    /**
     * Begins anew with the snapshots of a time alone.
     * @param from,to both included [ns since the epoch, UTC]
     * @throw Error
     */
    void select(std::int64_t from, std::int64_t to);

    /** A snapshot that was looked for. */
    struct Found
    {
        records::Snapshot snapshot;
        std::optional<Loss> loss; /**< damage between it and the moment asked for */
    };

    /**
     * The last snapshot that is not later than a moment. Where the clock was set back, moments occur twice: it is that of the
     * later writing. Where reading stands afterwards is not defined: rewind() or select().
     * @return nothing if there is none @throw Error
     */
    std::optional<Found> at(std::int64_t moment);

    /** The last snapshot, in the order of writing. @return as at() */
    std::optional<Found> last();

    /**
     * The frame of the last event but a Loss, as it stands in the file, until anything else is read. @throw Error
     */
    std::span<const std::byte> frame();

    /** CRC-32 of the layouts of the last snapshot. */
    std::vector<std::uint32_t> layouts() const { return decoder_.layouts(); }

    /** A layout frame's payload. @return nothing if neither the file nor this program has it @throw Error */
    std::optional<std::vector<std::byte>> find_layout(std::uint32_t id);

    /** What whoever goes on writing has to know. */
    struct Remainder
    {
        std::optional<records::Snapshot> snapshot; /**< the last one that can be read, of the last minute */
        bool is_ended = false;                     /**< the capture was ended in order */
        std::uint64_t end = 0;                     /**< where the last whole frame ends [bytes] */
        std::uint64_t tail = 0;                    /**< bytes behind it */
        std::vector<std::uint32_t> layouts;        /**< CRC-32 of those that the file has */
    };

    /** Reads the end of the file. Where reading stands afterwards is as after at(). @throw Error */
    Remainder remainder();

private:
    /** A whole snapshot in the file. */
    struct Whole
    {
        std::uint64_t offset; /**< [bytes] */
        std::int64_t moment;  /**< [ns since the epoch, UTC] */
    };

    void update_index();
    void seek(std::uint64_t offset);
    std::optional<std::vector<std::byte>> layout_at(std::uint64_t offset, std::uint32_t id);
    void note_loss(std::uint64_t offset, std::uint64_t bytes, std::uint64_t snapshots);
    std::optional<Event> take(const FrameReader::Part& part);
    std::optional<Event> take_snapshot(const FrameReader::Part& part);
    Event give_snapshot();
    std::size_t whole_for(std::int64_t moment) const;
    std::optional<Found> last_before(std::size_t whole, std::int64_t moment);

    FrameReader frames_;
    std::uint64_t first_frame_ = 0;
    SnapshotDecoder decoder_;
    std::vector<Whole> index_;
    std::uint64_t indexed_ = 0;                      /**< the index reaches up to here [bytes] */
    std::map<std::uint32_t, std::uint64_t> layouts_; /**< offsets of the layouts that have been seen */
    std::optional<Loss> loss_;                       /**< found, and not told yet */
    bool holds_snapshot_ = false;                    /**< the decoder has one that has not been given yet */
    std::uint64_t frame_ = 0;                        /**< offset of the frame of the last event */
    std::optional<std::int64_t> last_moment_;
    std::uint64_t tail_ = 0;
    std::int64_t from_ = std::numeric_limits<std::int64_t>::min();
    std::int64_t to_ = std::numeric_limits<std::int64_t>::max();
    std::uint64_t stop_ = std::numeric_limits<std::uint64_t>::max();
};

} // namespace capture

#endif
