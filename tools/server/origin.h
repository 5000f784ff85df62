/**
 * @file origin.h
 * Where the records of a decoder come from: a host process, or a capture file. Used by one thread at a time.
 */
#ifndef SERVER_ORIGIN_H
#define SERVER_ORIGIN_H

#include <functional>
#include <memory>
#include <string>

#include "sight.h"

namespace server
{

/** Where the records of a decoder come from. */
class Origin
{
public:
    virtual ~Origin() = default;

    /** Looks how the decoder stands now. Does not throw for what is wrong with it: that is its state. */
    virtual Sight look() = 0;

    /**
     * Hands out the snapshots that have come since the last call. Once a second.
     * @param sight what look() has found just now
     */
    virtual void follow(const Sight& sight, const std::function<void(const records::Snapshot&)>& take) = 0;

    /** The capture file that holds what is older than the memory; empty = none. */
    virtual std::string capture_file() const = 0;
};

/**
 * A published decoder, which may come and go.
 * @param name         its name
 * @param path         its file
 * @param capture_file where a capture of it is written; empty = nowhere
 */
std::unique_ptr<Origin> live_origin(const std::string& name, const std::string& path, const std::string& capture_file);

/**
 * A capture file, which may grow. The name of its decoder is that of its snapshots.
 * @throw Failure if it cannot be read or holds no snapshot
 */
std::unique_ptr<Origin> captured_origin(const std::string& path);

} // namespace server

#endif
