#include "layout.h"

#include "table.h"

namespace dictionary
{

static_assert(layout_count == field_count);

namespace
{

constexpr LayoutField place(std::size_t index)
{
    const table::Entry& entry = table::entries[index];
    const row::Place& array = table::elements[entry.component].place;
    return {.name = table::full_names[index].data(),
            .offset = static_cast<std::uint32_t>(entry.row.member.offset),
            .size = static_cast<std::uint32_t>(entry.row.member.size),
            .stride = static_cast<std::uint32_t>(entry.row.in_array ? array.stride : 0),
            .count = static_cast<std::uint16_t>(entry.row.in_array ? array.count : 1),
            .component = static_cast<std::uint8_t>(entry.component),
            .type = entry.row.member.type};
}

} // namespace

constinit const std::array<LayoutField, layout_count> layout = []
{
    std::array<LayoutField, layout_count> all = {};
    for (std::size_t i = 0; i < layout_count; ++i) all[i] = place(i);
    return all;
}();

} // namespace dictionary
