/**
 * @file snapshot.h
 * The records of one decoder at one moment: what every source gives and every view takes.
 */
#ifndef RECORDS_SNAPSHOT_H
#define RECORDS_SNAPSHOT_H

#include <array>
#include <bitset>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "component.h"

namespace records
{

/** One run of what publishes a decoder's records: a restart makes another. */
struct Instance
{
    std::array<std::uint8_t, 16> id = {}; /**< random */
    std::int64_t started_at = 0;          /**< when it began [ns since the epoch, UTC] */

    bool operator==(const Instance&) const = default;
};

/** The records of one decoder at one moment. A plain value: copying one copies the records. */
struct Snapshot
{
    std::string decoder;                  /**< name of the decoder; empty = none is known, as for record files */
    std::string host;                     /**< name and release of what publishes its records; empty = not known. Any bytes. */
    std::optional<Instance> instance;     /**< nothing = not known */
    std::int64_t taken_at = 0;            /**< the moment [ns since the epoch, UTC] */
    std::optional<bool> is_up;            /**< whether its host still updates the records; nothing = not known, as for what is saved */
    std::bitset<component_count> present; /**< the components whose record is here, by Component::index */
    std::bitset<1024> not_measured;       /**< the fields that this host does not fill, by their place in the dictionary */
    std::array<std::int64_t, component_count> written_at =
        {};               /**< when its host wrote each record; 0 = not known [ns since the epoch, UTC] */
    Records records = {}; /**< the records; those that are not present are all zero */

    bool has(const Component& component) const { return present[component.index]; }

    /** The bytes of a component's record, aligned as its type asks. */
    std::span<const std::byte> record(const Component& component) const
    {
        return std::as_bytes(std::span(&records, 1)).subspan(component.offset, component.record_size);
    }

    /** Takes a component's record. @param bytes Component::record_size of them, of any alignment */
    void put(const Component& component, std::span<const std::byte> bytes);
};

/**
 * How far the records of a component in two Snapshots lie apart: by when they were written, where both know it, and else by
 * when the Snapshots were taken [ns]. Not positive where the clock was set back, and where they are the same writing.
 */
std::int64_t time_between(const Snapshot& before, const Snapshot& now, const Component& component);

} // namespace records

#endif
