#include "duration.h"

#include <charconv>
#include <cmath>
#include <utility>

namespace sources
{

std::optional<std::chrono::nanoseconds> parse_duration(std::string_view text)
{
    constexpr std::pair<std::string_view, double> units[] = {{"ms", 1e6}, {"s", 1e9}, {"m", 60e9}, {"h", 3600e9}, {"d", 86400e9}};
    constexpr double longest = 36525 * 86400e9;

    double number = 0;
    if (text.empty() || text.front() < '0' || text.front() > '9') return std::nullopt; // neither signs nor "inf"
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, std::chars_format::fixed);
    if (error != std::errc()) return std::nullopt;
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    for (const auto& [unit, nanoseconds] : units)
        if (text == unit && number * nanoseconds <= longest) return std::chrono::nanoseconds(std::llround(number * nanoseconds));
    return std::nullopt;
}

} // namespace sources
