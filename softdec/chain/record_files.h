/**
 * @file record_files.h
 * The records as files: each the bytes of a record as they stand in memory.
 */
#ifndef SOFTDEC_CHAIN_RECORD_FILES_H
#define SOFTDEC_CHAIN_RECORD_FILES_H

#include <stdexcept>
#include <string>

#include "component.h"

namespace softdec
{

/** An output that cannot be written. The text names it and says why. */
class OutputError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/**
 * Writes each record to its own file, COMPONENT.rec. The files take their names when all are complete.
 * @param directory existing directory
 * @throw OutputError if a file cannot be written
 */
void write_record_files(const records::Records& records, const std::string& directory);

} // namespace softdec

#endif
