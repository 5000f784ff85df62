/**
 * @file capture_source.h
 * Capture files as sources: what was captured, as if it were now.
 */
#ifndef SOURCES_CAPTURE_SOURCE_H
#define SOURCES_CAPTURE_SOURCE_H

#include <cstdint>
#include <optional>
#include <string>

#include "capture_error.h"
#include "capture_reader.h"
#include "failure.h"
#include "moment.h"
#include "snapshot.h"

namespace sources
{

/** Whether a path is a capture file, as its first bytes say. */
bool is_capture(const std::string& path);

/** A failure of a capture file as one of the command. */
files::Failure failure_of(const capture::Error& error);

/** What is lost at a damaged place, as a line without the file's name. */
std::string loss_text(const capture::Loss& loss);

/**
 * Takes the last Snapshot of a capture file that is not later than a moment, or its last one. That the one of the moment is lost
 * is told on standard error.
 * @throw Failure if the file cannot be read or has none
 */
records::Snapshot take_captured(const std::string& path, const std::optional<At>& at);

/** The Snapshots of a range of a capture file, one after the other. */
class Captured
{
public:
    /** @throw Failure if the file cannot be read */
    explicit Captured(const std::string& path, const Range& range = {});

    /**
     * The next one. What is lost is told on standard error.
     * @return nothing at the end @throw Failure
     */
    std::optional<records::Snapshot> next();

    /** The next one, or what happened between two. The Snapshot stays until the next call. @return as next() */
    std::optional<capture::Event> next_event();

    /** Bytes at the end that make no frame, after the end. */
    std::uint64_t tail() const { return reader_.tail(); }

    /** Size of the file [bytes]. */
    std::uint64_t file_size() const { return reader_.file_size(); }

private:
    capture::Reader reader_;
    std::string path_;
};

} // namespace sources

#endif
