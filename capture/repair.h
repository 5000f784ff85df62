/**
 * @file repair.h
 * A capture file without its damage.
 */
#ifndef CAPTURE_REPAIR_H
#define CAPTURE_REPAIR_H

#include <cstdint>
#include <string>

namespace capture
{

/** What a repair has kept and lost. */
struct Repair
{
    std::uint64_t snapshots = 0; /**< kept, each to the bit */
    std::uint64_t losses = 0;    /**< damaged places, each a gap now */
    std::uint64_t bytes = 0;     /**< of the file that are in none of the frames kept */
};

/**
 * Writes a new file with everything that can be read of another, which stays as it is.
 * @param new_path a path that does not exist; it appears when all is written
 * @throw Error if the one cannot be read or the other not be written
 */
Repair repair(const std::string& path, const std::string& new_path);

} // namespace capture

#endif
