#include "components.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <type_traits>

namespace
{

template <typename Type> struct MemberType;
template <typename Type> struct MemberType<Type SAMPLES_RECORDS::*>
{
    using type = Type;
};

/** The row of a component; the function's type comes from its declaration, not from an address that is linked. */
template <auto Member, typename Function> constexpr Component row(std::string_view name, std::string_view title, const char* function)
{
    using Record = typename MemberType<decltype(Member)>::type;
    static_assert(std::is_same_v<Function, BOOL(const Record*, STATS_LEVEL)>, "the function prints another record");
    static_assert(std::is_trivially_copyable_v<Record>);

    return {.name = name,
            .title = title,
            .recordSize = sizeof(Record),
            .function = function,
            .record = [](const SAMPLES_RECORDS& records) { return std::as_bytes(std::span(&(records.*Member), 1)); },
            .print =
                [](void* symbol, std::span<const std::byte> bytes, STATS_LEVEL level)
            {
                // A record of its own on the heap: aligned for its type, and a checker sees every read past its end.
                const auto record = std::make_unique<Record>();
                std::memcpy(record.get(), bytes.data(), sizeof(Record));
                reinterpret_cast<Function*>(symbol)(record.get(), level);
            }};
}

constexpr Component table[] = {
    row<&SAMPLES_RECORDS::tTDemux, decltype(STATS_PrintForTDemux)>("tdemux", "transport demux", "STATS_PrintForTDemux"),
    row<&SAMPLES_RECORDS::tVFramer, decltype(STATS_PrintForVFramer)>("vframer", "video framer", "STATS_PrintForVFramer"),
    row<&SAMPLES_RECORDS::tVideoDecoder, decltype(STATS_PrintForVideoDecoder)>("vdecoder", "video decoder", "STATS_PrintForVideoDecoder"),
    row<&SAMPLES_RECORDS::tAudio, decltype(STATS_PrintForAudioDecoder)>("audio", "audio decoder", "STATS_PrintForAudioDecoder"),
    row<&SAMPLES_RECORDS::tMetadata, decltype(STATS_PrintForMetadataDec)>("metadata", "metadata decoder", "STATS_PrintForMetadataDec"),
    row<&SAMPLES_RECORDS::tBuffering, decltype(STATS_PrintForCBuffering)>("buffering", "buffering controller", "STATS_PrintForCBuffering"),
    row<&SAMPLES_RECORDS::tClockRecovery, decltype(STATS_PrintForClockRecovery)>("clock-recovery", "clock recovery",
                                                                                 "STATS_PrintForClockRecovery"),
    row<&SAMPLES_RECORDS::tUsage, decltype(STATS_PrintForDecoderUsage)>("usage", "decoder usage", "STATS_PrintForDecoderUsage"),
};

} // namespace

std::span<const Component> components()
{
    return table;
}

const Component& component_of(std::string_view name)
{
    return *std::ranges::find(table, name, &Component::name);
}

std::vector<std::string> component_names()
{
    std::vector<std::string> names;
    for (const Component& component : table) names.emplace_back(component.name);
    return names;
}
