#include "component.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <type_traits>

namespace records
{

namespace
{

/** The row of a component. The function's type comes from its declaration: its address is the report library's to give. */
template <typename Record, typename Function>
constexpr Component row(std::size_t offset, std::string_view name, std::string_view key, std::string_view title, const char* function)
{
    static_assert(std::is_same_v<Function, BOOL(const Record*, STATS_LEVEL)>, "the function prints another record");
    static_assert(std::is_trivially_copyable_v<Record>);

    return {.index = 0, // numbered below
            .name = name,
            .key = key,
            .title = title,
            .record_size = sizeof(Record),
            .offset = offset,
            .function = function,
            .print = [](void* address, const void* record, STATS_LEVEL level)
            { return reinterpret_cast<Function*>(address)(static_cast<const Record*>(record), level); }};
}

#define ROW(member, name, title, function) \
    row<decltype(Records::member), decltype(function)>(offsetof(Records, member), name, #member, title, #function)

constexpr std::array<Component, component_count> numbered(std::array<Component, component_count> rows)
{
    for (std::size_t i = 0; i < rows.size(); ++i) rows[i].index = i;
    return rows;
}

constexpr std::array<Component, component_count> table = numbered({{
    ROW(tdemux, "tdemux", "transport demux", STATS_PrintForTDemux),
    ROW(vframer, "vframer", "video framer", STATS_PrintForVFramer),
    ROW(vdecoder, "vdecoder", "video decoder", STATS_PrintForVideoDecoder),
    ROW(audio, "audio", "audio decoder", STATS_PrintForAudioDecoder),
    ROW(metadata, "metadata", "metadata decoder", STATS_PrintForMetadataDec),
    ROW(buffering, "buffering", "buffering controller", STATS_PrintForCBuffering),
    ROW(clock_recovery, "clock-recovery", "clock recovery", STATS_PrintForClockRecovery),
    ROW(usage, "usage", "decoder usage", STATS_PrintForDecoderUsage),
}});

#undef ROW

/** A record file says by its size whose record it holds. */
constexpr bool sizes_differ()
{
    for (const Component& one : table)
        for (const Component& other : table)
            if (&one != &other && one.record_size == other.record_size) return false;
    return true;
}
static_assert(sizes_differ());

} // namespace

std::span<const Component, component_count> components()
{
    return table;
}

const Component* find_component(std::string_view name)
{
    const auto found = std::ranges::find_if(table, [name](const Component& row) { return row.name == name || row.key == name; });
    return found == table.end() ? nullptr : &*found;
}

const Component* find_component_of_size(std::size_t size)
{
    const auto found = std::ranges::find(table, size, &Component::record_size);
    return found == table.end() ? nullptr : &*found;
}

std::vector<std::string> component_names()
{
    std::vector<std::string> names;
    names.reserve(table.size());
    for (const Component& component : table) names.emplace_back(component.name);
    return names;
}

} // namespace records
