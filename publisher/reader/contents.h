/**
 * @file contents.h
 * What a published file says once and for all: whose it is, and where everything stands. It is copied and checked before
 * anything of it is used, so that it cannot change between the check and the use.
 */
#ifndef PUBLISHER_READER_CONTENTS_H
#define PUBLISHER_READER_CONTENTS_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

#include "record_layout.h"
#include "snapshot.h"

namespace published
{

/** A record and where it stands. */
struct Record
{
    dictionary::RecordLayout layout; /**< layout.component is NULL where the file has no such component */
    std::size_t slot = 0;            /**< offset in the file; 0 = it is never published */
};

/** What a file holds. Every slot lies within the file and is aligned. */
struct Contents
{
    std::string decoder;                                       /**< a valid name */
    std::string host;                                          /**< any bytes */
    records::Instance instance = {};                           /**< started_at is not negative */
    std::int64_t heartbeat_interval = 0;                       /**< above 0 [ns] */
    std::size_t size = 0;                                      /**< of the file [bytes] */
    std::array<Record, records::component_count> records = {}; /**< by records::Component::index */
    std::size_t heartbeat_slot = 0;
    std::size_t not_measured_slot = 0; /**< 0 = the host cannot say */
    std::size_t not_measured_words = 0;
};

/** How reading ended. */
enum class Verdict
{
    good,
    other_version,
    damaged
};

/**
 * Reads a file of any content.
 * @param contents where it is good
 * @param problem  where it is not: what is wrong
 */
Verdict read_contents(int descriptor, Contents& contents, std::string& problem);

} // namespace published

#endif
