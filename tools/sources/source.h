/**
 * @file source.h
 * What a command line names as a SOURCE.
 */
#ifndef SOURCES_SOURCE_H
#define SOURCES_SOURCE_H

#include <bitset>
#include <optional>
#include <string>

#include "moment.h"
#include "name.h"
#include "snapshot.h"

namespace sources
{

/** A SOURCE as people name it. */
struct Source
{
    /**
     * The name or the path of a live decoder, "sample:SCENARIO", a capture file, a directory of record files, or one record file;
     * "-" is a record on standard input, and an empty text the only live decoder. A decoder's name comes before a file of the
     * same name, which "./" in front of it means.
     */
    std::string text;
    std::string directory = std::string(published::default_directory); /**< where live decoders are looked for by name */
};

/** What is wanted of a source, beside the moment. */
struct Wanted
{
    std::bitset<records::component_count> components = {}; /**< these; none = all. A file that has none of them is not read. */
    bool as_last_updated = false; /**< without a moment, it is when the records last changed, where that is known, and not now */
};

/**
 * Takes a Snapshot. What is wrong with it, as a host that has ended, is told on standard error.
 * @param at the moment that it stands for; nothing = now, for no file of records tells its own. Of a capture file, the moment at
 *           which the last one is taken; nothing = the last of all
 * @return at least what is wanted of what is there
 * @throw Failure if it cannot be taken
 */
records::Snapshot take(const Source& source, const std::optional<At>& at, const Wanted& wanted = {});

/**
 * Whether a SOURCE is a capture file, and no live decoder of that name.
 * @throw Failure if it is the only live decoder, and there is not exactly one
 */
bool is_captured(const Source& source);

} // namespace sources

#endif
