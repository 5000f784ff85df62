/**
 * @file live.h
 * Live decoders: what the host processes of this machine publish.
 */
#ifndef SOURCES_LIVE_H
#define SOURCES_LIVE_H

#include <optional>
#include <string>

#include "decoder.h"
#include "source.h"

namespace sources
{

/**
 * Finds the published file that a SOURCE means: that of the only live decoder where its text is empty, of a decoder's name, or
 * a path that ends in ".decstats".
 * @return its path, or nothing if the SOURCE is of another kind
 * @throw Failure if there is not exactly one live decoder where the text is empty, and if a name is neither a decoder's nor a file's
 */
std::optional<std::string> find_live(const Source& source);

/** A live decoder that is looked at again and again. Where its host starts anew, the new run takes the place of the old one. */
class LiveDecoder
{
public:
    explicit LiveDecoder(std::string path) : path_(std::move(path)), decoder_(path_) {}

    /** Looks how it stands now. */
    published::Look look();

private:
    std::string path_;
    published::Decoder decoder_;
};

/** What keeps a look from being a whole one, as a line for people; empty = nothing. */
std::string problem_of(const published::Look& look);

/**
 * The moment that a look's records stand for where programs are told: of a host that hangs, when it last published; else the look's.
 * [ns since the epoch, UTC]
 */
std::int64_t updated_at(const published::Look& look);

/**
 * Takes a Snapshot of a live decoder, which tells whether it is up. What is wrong with it is told on standard error.
 * @param as_last_updated of a host that hangs, the moment is when it last published; false = now
 * @throw Failure if it has no record to show
 */
records::Snapshot take_live(const std::string& path, bool as_last_updated);

} // namespace sources

#endif
