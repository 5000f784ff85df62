/**
 * @file source.h
 * What a command line names as a SOURCE.
 */
#ifndef SOURCES_SOURCE_H
#define SOURCES_SOURCE_H

#include <optional>
#include <string>

#include "moment.h"
#include "snapshot.h"

namespace sources
{

/**
 * Takes a Snapshot.
 * @param source "sample:SCENARIO", a directory of record files, or one record file; "-" is a record on standard input
 * @param at     the moment that it stands for; nothing = now, for no file of records tells its own
 * @throw Failure if it cannot be taken
 */
records::Snapshot take(const std::string& source, const std::optional<At>& at);

} // namespace sources

#endif
