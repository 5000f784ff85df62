/**
 * @file capture_format.h
 * Capture files as their bytes stand there: docs/capture-format.md explains them. All numbers are little-endian.
 */
#ifndef CAPTURE_CAPTURE_FORMAT_H
#define CAPTURE_CAPTURE_FORMAT_H

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>

namespace capture
{

/** No text begins so, and a transfer that takes the file for one damages it at once. */
inline constexpr std::array<std::uint8_t, 8> magic = {0x89, 'D', 'C', 'A', 'P', '\r', '\n', 0x1A};
inline constexpr std::uint32_t format_version = 1;
inline constexpr std::uint32_t byte_order = 0x01020304;

/** The start of the file. The frames follow it. */
struct FileHeader
{
    std::array<std::uint8_t, 8> magic; /**< capture::magic */
    std::uint32_t version;             /**< format_version */
    std::uint32_t byte_order;          /**< capture::byte_order */
    std::uint32_t size;                /**< where the first frame begins [bytes] */
    std::uint32_t crc;                 /**< CRC-32 of the bytes before it */
};
static_assert(offsetof(FileHeader, version) == 8 && offsetof(FileHeader, byte_order) == 12 && offsetof(FileHeader, size) == 16);
static_assert(offsetof(FileHeader, crc) == 20 && sizeof(FileHeader) == 24);

/** What a frame holds. Readers skip the types that they do not know. */
enum class FrameType : std::uint8_t
{
    layout = 1,  /**< where the fields of a component stand */
    whole = 2,   /**< a snapshot that needs no other */
    change = 3,  /**< a snapshot, as what has changed since the one before */
    restart = 4, /**< the host of the following snapshots is another run than that of those before */
    gap = 5,     /**< snapshots are missing between the one before and the following one */
    end = 6,     /**< the capture was ended in order here */
};
inline constexpr std::uint8_t last_frame_type = 6;

/** Why snapshots are missing. The numbers are written to files: they never change. */
enum class GapCause : std::uint8_t
{
    stopped = 1,       /**< nothing captured: the capture was ended in order */
    cut_off = 2,       /**< nothing captured: the capture had not been ended in order */
    no_source = 3,     /**< the decoder could not be read */
    no_space = 4,      /**< the file system was full, or a limit was reached */
    clock_changed = 5, /**< none need be missing: the clock was set, so that moments go back or jump */
    late = 6,          /**< the capturing process was kept from running */
    damaged = 7,       /**< they were there and are lost: the file was repaired */
};

/** A frame: a word with type and length, the CRC-32 of word and payload, the payload, and the word again. */
inline constexpr std::size_t frame_head = 8;
inline constexpr std::size_t frame_overhead = 12;

/** Longest payload [bytes]. A longer one is not believed. */
inline constexpr std::size_t longest_payload = 1 << 20;
inline constexpr std::size_t longest_frame = longest_payload + frame_overhead;

constexpr std::uint32_t frame_word(FrameType type, std::size_t length)
{
    return static_cast<std::uint32_t>(type) << 24 | static_cast<std::uint32_t>(length);
}

/** Longest time from a whole snapshot to the next [ns]: what damage costs at most. */
inline constexpr std::int64_t whole_every = std::chrono::nanoseconds(std::chrono::minutes(1)).count();

/** The layouts stand in the file again after this time, in case that the first ones are damaged [ns]. */
inline constexpr std::int64_t layouts_every = std::chrono::nanoseconds(std::chrono::hours(1)).count();

} // namespace capture

#endif
