/**
 * @file record_file.h
 * Raw records in files: the bytes of a record as they stand in memory.
 */
#ifndef RECORD_FILE_H
#define RECORD_FILE_H

#include <string>
#include <vector>

#include "components.h"
#include "samples.h"

/**
 * Reads a file that holds one record and nothing else.
 * @param path path, or "-" for standard input
 * @return the record's bytes, Component::recordSize of them
 * @throw Failure if the file cannot be read or has another size
 */
std::vector<std::byte> read_record(const Component& component, const std::string& path);

/**
 * Writes every component's record to its own file, COMPONENT.rec. The files take their names when all are complete.
 * @param directory existing directory
 * @throw Failure if a file cannot be written
 */
void write_records(const SAMPLES_RECORDS& records, const std::string& directory);

#endif
