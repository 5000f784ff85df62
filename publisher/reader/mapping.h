/**
 * @file mapping.h
 * A file in memory, read-only. Whoever may write a file may also shorten it, and touching a page that it has lost is a signal
 * that ends the process: here it is a page of zeros and a flag.
 */
#ifndef PUBLISHER_READER_MAPPING_H
#define PUBLISHER_READER_MAPPING_H

#include <cstddef>
#include <span>

namespace published
{

/** A mapped file. */
class Mapping
{
public:
    Mapping() = default;

    /** Maps the first bytes of a file. An object without bytes where that fails, with errno set. */
    Mapping(int descriptor, std::size_t size);
    Mapping(Mapping&& other) noexcept;
    Mapping& operator=(Mapping&& other) noexcept;
    ~Mapping();

    std::span<const std::byte> bytes() const { return bytes_; }

    /** Whether a Reading has found the file shorter than it was. All bytes are 0 since then. */
    bool has_lost_pages() const { return has_lost_pages_; }

private:
    friend class Reading;
    std::span<std::byte> bytes_;
    bool has_lost_pages_ = false;
};

/**
 * While one lives, its thread may read the mapping, whatever happens to the file. One at a time in each thread. The process
 * gets a handler of SIGBUS with the first one; faults at other addresses go on to the action that was there before.
 */
class Reading
{
public:
    explicit Reading(Mapping& mapping);
    ~Reading();
    Reading(const Reading&) = delete;
    Reading& operator=(const Reading&) = delete;

private:
    Mapping& mapping_;
};

} // namespace published

#endif
