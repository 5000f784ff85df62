/**
 * @file published_file.h
 * A published file taken apart and put together again, so that tests can write what other hosts would.
 */
#ifndef PUBLISHED_FILE_H
#define PUBLISHED_FILE_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "format.h"

/** A field of a layout section. */
struct FileField
{
    std::string name;
    std::string member;
    std::uint32_t offset;
    std::uint32_t size;
    std::uint32_t count;
    std::uint32_t stride;
    std::uint16_t type;
};

/** A component: its layout and its record. */
struct FileComponent
{
    std::string key;
    std::uint32_t first_field;
    std::vector<FileField> fields;
    std::uint64_t sequence;
    std::uint64_t moment;
    std::string record;

    FileField& field(const std::string& name);

    /** Takes a field that stands in no array out of the record, and what it held. */
    void remove(const std::string& name);

    /** Puts a field before the one that begins at an offset. */
    void insert(std::uint32_t offset, const FileField& field, const std::string& value);
};

/** A whole file. */
struct PublishedFile
{
    publisher::Header header = {};
    std::vector<FileComponent> components;
    std::vector<std::uint64_t> heartbeat;    /**< sequence, moment, words */
    std::vector<std::uint64_t> not_measured; /**< the same */

    /** Takes a file apart. */
    explicit PublishedFile(const std::string& bytes);

    FileComponent& component(const std::string& key);

    /** The bytes of the file as a host of another release may write it: wider rows and entries, and a section of no known type. */
    std::string bytes(std::uint32_t more_header = 0, std::uint32_t more_entry = 0, std::uint32_t more_row = 0) const;
};

/** Where a section's slot stands in a file. @param type of format.h */
std::size_t slot_offset(const std::string& bytes, publisher::SectionType type, std::uint32_t id = 0);

#endif
