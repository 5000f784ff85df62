/**
 * @file record_files.h
 * Raw records in files: the bytes of a record as they stand in memory.
 */
#ifndef SOURCES_RECORD_FILES_H
#define SOURCES_RECORD_FILES_H

#include <bitset>
#include <optional>
#include <string>

#include "moment.h"
#include "snapshot.h"

namespace sources
{

/**
 * Reads a file that holds one record and nothing else.
 * @param component its component; NULL = the one whose record has the file's size
 * @param path      path, or "-" for standard input
 * @param at        the moment that the record was taken at; nothing = now
 * @param as_written without a moment it is that of the file's last writing, if it is a regular file
 * @throw Failure if the file cannot be read or has another size
 */
records::Snapshot record_file(const records::Component* component, const std::string& path, const std::optional<At>& at,
                              bool as_written = false);

/**
 * Reads the files *.rec of a directory. One that has a component's name holds that component's record; of any other name, the
 * size tells.
 * @param at         the moment that the records were taken at; nothing = now, mtime = when the last of them was written
 * @param as_written nothing = when the last of them was written
 * @param components these only, if there are any: a file of another is not read, and neither is one whose size is that of no record
 * @return the records that are there
 * @throw Failure if one is not a regular file, cannot be read or has a wrong size, if two are of one component, and if there is none
 */
records::Snapshot record_directory(const std::string& path, const std::optional<At>& at, bool as_written = false,
                                   std::bitset<records::component_count> components = {});

/**
 * Writes each record to its own file, COMPONENT.rec: all of them, or none.
 * @param directory existing directory
 * @throw Failure if a file cannot be written
 */
void write_record_files(const records::Snapshot& snapshot, const std::string& directory);

} // namespace sources

#endif
