/**
 * @file sample.h
 * Samples: made-up decoders, each in a situation that has a name.
 */
#ifndef SOURCES_SAMPLE_H
#define SOURCES_SAMPLE_H

#include <cstdint>
#include <string>
#include <vector>

#include "snapshot.h"

namespace sources
{

/** A situation. */
struct Scenario
{
    std::string name;    /**< as live-srt-1080i */
    std::string summary; /**< one line, without a final stop */
};

/** All of them, the typical one first. */
std::vector<Scenario> scenarios();

/**
 * Makes the records of a sample.
 * @param scenario name of its scenario
 * @param moment   the moment that it is taken at and that its events count back from [ns since the epoch, UTC]
 * @return all records
 * @throw Failure if there is no such scenario
 */
records::Snapshot sample(const std::string& scenario, std::int64_t moment);

} // namespace sources

#endif
