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

/** The start of a layout section. The rows of the fields follow it, then their texts. */
struct Layout
{
    char component[32];        /**< as in public names, filled up with NULs: clock_recovery */
    std::uint32_t record_size; /**< [bytes] */
    std::uint32_t field_count; /**< rows */
    std::uint32_t row_size;    /**< size of a row [bytes] */
    std::uint32_t first_field; /**< bit of the first row's field in the not_measured section; the others' follow in order */
};
static_assert(offsetof(Layout, record_size) == 32 && offsetof(Layout, field_count) == 36 && offsetof(Layout, row_size) == 40);
static_assert(offsetof(Layout, first_field) == 44 && sizeof(Layout) == 48);

/** A field. Its texts have no NULs at their ends. */
struct FieldRow
{
    std::uint32_t offset;        /**< in the record, in an array that of element 0 [bytes] */
    std::uint32_t size;          /**< of one of it [bytes] */
    std::uint32_t count;         /**< elements of its array; 1 where it stands in none */
    std::uint32_t stride;        /**< size of an element of the array [bytes]; 0 where it stands in none */
    std::uint32_t name_offset;   /**< of the public name without the component, from the section's start [bytes] */
    std::uint32_t member_offset; /**< of the C member's name, from the section's start [bytes] */
    std::uint16_t name_length;   /**< [bytes] */
    std::uint16_t member_length; /**< [bytes] */
    std::uint16_t type;          /**< dictionary::Type */
    std::uint16_t reserved;      /**< 0 */
};
static_assert(offsetof(FieldRow, size) == 4 && offsetof(FieldRow, count) == 8 && offsetof(FieldRow, stride) == 12);
static_assert(offsetof(FieldRow, name_offset) == 16 && offsetof(FieldRow, member_offset) == 20);
static_assert(offsetof(FieldRow, name_length) == 24 && offsetof(FieldRow, member_length) == 26);
static_assert(offsetof(FieldRow, type) == 28 && offsetof(FieldRow, reserved) == 30 && sizeof(FieldRow) == 32);

/** What is written and read at the same time consists of these. */
using Word = std::atomic<std::uint64_t>;
static_assert(sizeof(Word) == 8 && alignof(Word) == 8 && Word::is_always_lock_free, "other processes see a word as it is");

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
