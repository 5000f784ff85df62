#include "chain.h"

#include <array>

namespace diagnosis
{

namespace
{

template <typename... Stages> constexpr std::uint16_t bits(Stages... stages)
{
    return static_cast<std::uint16_t>(((1U << static_cast<unsigned>(stages)) | ... | 0U));
}

constexpr auto input = bits(Stage::network, Stage::link, Stage::ts);
constexpr auto timed = static_cast<std::uint16_t>(input | bits(Stage::clock, Stage::buffering)); /**< what the decoders are given */

constexpr std::array<StageInfo, stage_count> stages = {{
    {Stage::network, "network", "Network", 0},
    {Stage::link, "link", "Link", bits(Stage::network)},
    {Stage::ts, "ts", "Transport stream", bits(Stage::network, Stage::link)},
    {Stage::clock, "clock", "Clock", input},
    {Stage::framer, "framer", "Framer", timed},
    {Stage::vdecoder, "vdecoder", "Video decoder", static_cast<std::uint16_t>(timed | bits(Stage::framer))},
    {Stage::output, "output", "Output", static_cast<std::uint16_t>(timed | bits(Stage::framer, Stage::vdecoder))},
    {Stage::audio, "audio", "Audio", timed},
    {Stage::metadata, "metadata", "Metadata", static_cast<std::uint16_t>(timed | bits(Stage::framer, Stage::vdecoder))},
    {Stage::buffering, "buffering", "Buffering", static_cast<std::uint16_t>(input | bits(Stage::clock))},
}};

} // namespace

std::span<const StageInfo, stage_count> chain()
{
    return stages;
}

std::string_view stage_id(Stage stage)
{
    return stage == Stage::host ? "host" : stages[static_cast<std::size_t>(stage)].id;
}

std::string_view stage_title(Stage stage)
{
    return stage == Stage::host ? "Host" : stages[static_cast<std::size_t>(stage)].title;
}

std::string_view state_id(StageState state)
{
    constexpr std::string_view ids[] = {"working", "degraded", "stopped", "no_input", "idle", "unknown"};
    return ids[static_cast<std::size_t>(state)];
}

std::string_view state_title(StageState state)
{
    constexpr std::string_view titles[] = {"Working", "Degraded", "Stopped", "No input", "Idle", "Unknown"};
    return titles[static_cast<std::size_t>(state)];
}

bool reaches(Stage upstream, Stage stage)
{
    if (upstream == Stage::host) return true;
    return stage != Stage::host && (stages[static_cast<std::size_t>(stage)].upstream & bits(upstream)) != 0;
}

int causal_place(Stage stage)
{
    switch (stage)
    {
    case Stage::host: return 0;
    case Stage::network: return 1;
    case Stage::link: return 2;
    case Stage::ts: return 3;
    case Stage::clock: return 4;
    case Stage::buffering: return 5;
    case Stage::framer: return 6;
    case Stage::vdecoder: return 7;
    case Stage::output: return 8;
    case Stage::audio: return 9;
    case Stage::metadata: return 10;
    }
    return 11;
}

} // namespace diagnosis
