/**
 * @file decoder.h
 * A decoder that a host process publishes, as another process sees it. docs/publisher-format.md describes its file.
 *
 * A file may hold anything, may be written while it is read and may vanish at any moment: nothing here trusts it, and what
 * keeps a decoder from being shown is a state with a text, not an exception. Objects may be used by one thread at a time.
 */
#ifndef PUBLISHER_READER_DECODER_H
#define PUBLISHER_READER_DECODER_H

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "component.h"
#include "contents.h"
#include "mapping.h"
#include "snapshot.h"

namespace published
{

/** How a decoder stands. */
enum class State
{
    live,          /**< its host is alive and publishes */
    starting,      /**< its host is alive and has published nothing yet */
    hung,          /**< its host is alive, but no longer says so: its records do not change any more, or cannot be trusted to */
    stale,         /**< its host has ended without closing; the records are its last ones */
    closed,        /**< its host has ended publishing, or another has taken the name: what was open here is over */
    missing,       /**< there is no such file */
    no_permission, /**< this process may not read it */
    other_version, /**< its format is one that this program does not read */
    damaged,       /**< it is not a published decoder, or no longer a whole one */
};

/** The word of a state: "no permission". */
std::string_view state_name(State state);

/** Whether a decoder in that state has records to show. */
constexpr bool has_records(State state)
{
    return state <= State::closed;
}

/** A host is hung when its last heartbeat is as many of its intervals old: it may be late, and even miss some under load. */
inline constexpr int hung_after_intervals = 5;

/** What there is of one record. */
enum class RecordState
{
    whole,   /**< it can be read */
    never,   /**< it has not been published */
    busy,    /**< it was being written at every attempt to read it */
    cut_off, /**< its host ended while writing it, so nothing of it can be shown */
};

/** One record of a decoder. */
struct RecordStatus
{
    RecordState state = RecordState::never;
    std::int64_t published_at = 0; /**< where it is whole, never negative [ns since the epoch, UTC] */
};

/** What is known of a decoder at one moment. Only state and text are always set; the rest where has_records(). */
struct Status
{
    State state = State::missing;
    std::string text = {};               /**< one line: path and what is wrong; empty where live */
    std::string decoder = {};            /**< its name */
    std::string host = {};               /**< name and release of its host program; empty = not told. Any bytes. */
    records::Instance instance = {};     /**< which run of the host this is, and since when */
    std::int64_t heartbeat_interval = 0; /**< [ns] */
    std::int64_t heartbeat_age = 0;      /**< time since the last heartbeat; of no use where stale [ns] */
    std::array<RecordStatus, records::component_count> records = {}; /**< by Component::index */
};

/** Status, and the records that are whole. */
struct Look
{
    Status status;
    /**
     * Its moment is that of the look. The records of a host that has ended are as old as they were when the last of them was
     * published, and so is the moment.
     */
    records::Snapshot snapshot;
};

/** A published decoder, held open. */
class Decoder
{
public:
    /** Opens a file. Whatever comes of it is in status(). */
    explicit Decoder(const std::string& path);
    Decoder(Decoder&& other) noexcept;
    Decoder& operator=(Decoder&& other) noexcept;
    ~Decoder();

    /** Looks how the decoder stands now. */
    Status status();

    /** Reads the records as they are now. Without records where has_records() says so. */
    Look look();

private:
    Look examine(bool with_records);
    Look read(bool with_records) const;
    void read_records(Look& look, bool has_writer, bool with_records) const;
    void read_not_measured(records::Snapshot& snapshot) const;
    void find_state(Status& status, bool has_writer) const;

    std::string path_;
    int descriptor_ = -1;
    Mapping mapping_;
    Contents contents_;
    Status found_; /**< what opening has found; its state is live where the file can be read */
};

} // namespace published

#endif
