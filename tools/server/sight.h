/**
 * @file sight.h
 * What is known of a decoder at one moment.
 */
#ifndef SERVER_SIGHT_H
#define SERVER_SIGHT_H

#include <cstdint>
#include <memory>
#include <string_view>

#include "list.h"
#include "snapshot.h"

namespace server
{

/** The word of the state of a decoder whose records come from a capture file. Other states are published::State's. */
inline constexpr std::string_view captured_state = "captured";

/** What is known of a decoder at one moment. */
struct Sight
{
    published::Listed listed;   /**< name, path and status, as a list shows them */
    std::string_view state;     /**< the word of its state */
    bool is_listed = true;      /**< it is one of the decoders that are there; false = it has ended or vanished */
    std::int64_t looked_at = 0; /**< the moment that ages count to [ns since the epoch, UTC] */
    records::Snapshot snapshot; /**< its last records; its moment is when they were last updated */
};

using SightPointer = std::shared_ptr<const Sight>;

} // namespace server

#endif
