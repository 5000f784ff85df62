/**
 * @file own_layouts.h
 * The layouts of this program's records, as they stand in capture files.
 */
#ifndef CAPTURE_OWN_LAYOUTS_H
#define CAPTURE_OWN_LAYOUTS_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "component.h"
#include "record_layout.h"

namespace capture
{

/** A layout. */
struct OwnLayout
{
    std::vector<std::byte> bytes; /**< payload of its frame */
    std::uint32_t id;             /**< its CRC-32 */
    dictionary::RecordLayout layout;
};

/** All of them, by Component::index. Made when first asked for. Thread-safe. */
const std::array<OwnLayout, records::component_count>& own_layouts();

} // namespace capture

#endif
