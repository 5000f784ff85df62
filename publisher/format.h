/**
 * @file format.h
 * The file of a published decoder as its bytes stand there: docs/publisher-format.md explains it. Fixed-width little-endian
 * integers and no padding that has no name.
 */
#ifndef PUBLISHER_FORMAT_H
#define PUBLISHER_FORMAT_H

#include <atomic>
#include <cstddef>
#include <cstdint>

#include "layout_section.h"

namespace publisher
{

inline constexpr char magic[8] = {'D', 'E', 'C', 'S', 'T', 'A', 'T', 'S'};
inline constexpr std::uint32_t format_version = 1;

/** The start of the file. The table of sections follows it. */
struct Header
{
    char magic[8];                    /**< publisher::magic */
    std::uint32_t version;            /**< format_version */
    std::uint32_t header_size;        /**< where the table of sections begins [bytes] */
    std::uint64_t file_size;          /**< [bytes] */
    std::uint8_t instance[16];        /**< random, another for each opening */
    std::uint8_t boot_id[16];         /**< of the kernel that ran then; all 0 = not known */
    std::int64_t started_at;          /**< when it was opened [ns since the epoch, UTC] */
    std::uint32_t heartbeat_interval; /**< [ms] */
    std::uint32_t section_count;      /**< entries of the table */
    std::uint32_t section_size;       /**< size of an entry [bytes] */
    std::uint32_t reserved;           /**< 0 */
    char decoder[64];                 /**< name of the decoder, filled up with NULs */
    char host[64];                    /**< name and release of the host program, filled up with NULs */
};
static_assert(offsetof(Header, version) == 8 && offsetof(Header, header_size) == 12 && offsetof(Header, file_size) == 16);
static_assert(offsetof(Header, instance) == 24 && offsetof(Header, boot_id) == 40 && offsetof(Header, started_at) == 56);
static_assert(offsetof(Header, heartbeat_interval) == 64 && offsetof(Header, section_count) == 68);
static_assert(offsetof(Header, section_size) == 72 && offsetof(Header, reserved) == 76 && offsetof(Header, decoder) == 80);
static_assert(offsetof(Header, host) == 144 && sizeof(Header) == 208);

/** What a section holds. Readers skip the types that they do not know. */
enum class SectionType : std::uint32_t
{
    layout = 1,       /**< Layout: the fields of a component */
    record = 2,       /**< Slot: the record of the component whose layout has the same id */
    heartbeat = 3,    /**< Slot of one word: the moment of the last heartbeat, CLOCK_MONOTONIC [ns] */
    not_measured = 4, /**< Slot: a bit for each field, set where the host does not measure it */
};

/** An entry of the table of sections. */
struct Section
{
    std::uint32_t type;   /**< SectionType */
    std::uint32_t id;     /**< number of the component in this file; 0 where the section belongs to none */
    std::uint64_t offset; /**< in the file, a multiple of 8 [bytes] */
    std::uint64_t size;   /**< [bytes] */
};
static_assert(offsetof(Section, id) == 4 && offsetof(Section, offset) == 8 && offsetof(Section, size) == 16 && sizeof(Section) == 24);

/** A layout section. Its first_field is the bit of the first row's field in the not_measured section; the others' follow in order. */
using Layout = dictionary::LayoutSection;
using FieldRow = dictionary::LayoutRow;

/** What is written and read at the same time consists of these. */
using Word = std::atomic<std::uint64_t>;
static_assert(sizeof(Word) == 8 && Word::is_always_lock_free, "other processes see a word as it is");
static_assert(alignof(Word) == 8);

/** The start of a section that changes. Its words follow it. */
struct Slot
{
    Word sequence; /**< 0 before the first writing, odd during one, otherwise twice the number of them */
    Word moment;   /**< when it was written [ns since the epoch, UTC] */
};
static_assert(offsetof(Slot, moment) == 8 && sizeof(Slot) == 16);

/** Slots begin on multiples of this, so that no two share a cache line, or a pair of them that a processor fetches at once. */
inline constexpr std::size_t slot_alignment = 128;

/** Number of words that hold so many bytes. */
constexpr std::size_t words_of(std::size_t bytes)
{
    return (bytes + 7) / 8;
}

} // namespace publisher

#endif
