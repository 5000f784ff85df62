/**
 * @file version_record.h
 * Version records in files: libraries, executables and core images, found by their signature without loading the file.
 */
#ifndef COMMANDS_VERSION_RECORD_H
#define COMMANDS_VERSION_RECORD_H

#include <cstdint>
#include <functional>

#include "input_file.h"
#include "qrversioninfo.h"

namespace commands
{

/** Receives a version record and its offset in the file [bytes]. */
using VersionRecordReceiver = std::function<void(const QRVERSIONINFOBLOB& record, std::uint64_t offset)>;

/**
 * Finds every version record of a file, in the file's order. The file is read through a small buffer, so its size does not
 * matter. A signature counts only if a whole record follows: its size is right and every text ends within its width.
 * @return number of records found
 * @throw Failure if the file cannot be read
 */
std::uint64_t find_version_records(files::InputFile& file, const VersionRecordReceiver& found);

/** Prints a version record on standard output. */
void print_version_record(const QRVERSIONINFOBLOB& record, std::uint64_t offset);

} // namespace commands

#endif
