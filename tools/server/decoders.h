/**
 * @file decoders.h
 * The decoders that the server shows: those of a directory as they come and go, or those that were named.
 */
#ifndef SERVER_DECODERS_H
#define SERVER_DECODERS_H

#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "watched_decoder.h"

namespace server
{

/** What is to be shown. */
struct Watched
{
    std::string directory;            /**< where live decoders are */
    std::vector<std::string> sources; /**< names, paths of published files, capture files; empty = all of the directory */
    std::string captures;             /**< where captures of live decoders are written, as NAME.dcap; empty = nowhere */
};

/** Decoders by their names. Thread-safe. */
class Decoders
{
public:
    /** @throw Failure if a source is none that can be shown, or two have one name */
    explicit Decoders(Watched watched);

    /** Looks for decoders that have come, looks at all, and forgets those that ended long ago. Once a second. */
    void look();

    /** A decoder by its name, also one that has ended lately. @return NULL = there is none */
    std::shared_ptr<WatchedDecoder> find(std::string_view name) const;

    /** All that are there, by name. */
    std::vector<std::shared_ptr<WatchedDecoder>> all() const;

    const std::string& directory() const { return watched_.directory; }

    /** What keeps the directory from being listed; empty = nothing. */
    std::string problem() const;

private:
    void add_source(const std::string& source);
    void add(const std::string& name, std::unique_ptr<Origin> origin);
    void add_live(const std::string& name, const std::string& path);
    void find_new();

    Watched watched_;
    mutable std::mutex mutex_;
    std::map<std::string, std::shared_ptr<WatchedDecoder>, std::less<>> decoders_;
    std::string problem_;
};

} // namespace server

#endif
