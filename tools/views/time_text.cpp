#include "time_text.h"

#include <algorithm>

#include "number_text.h"

namespace views
{

std::string age_text(std::int64_t age)
{
    constexpr std::int64_t second = 1'000'000'000;
    const std::int64_t tenths = std::max<std::int64_t>(age, 0) / (second / 10);
    const auto pair = [](std::int64_t whole, const char* unit, std::int64_t rest, const char* rest_unit)
    { return std::to_string(whole) + unit + (rest < 10 ? " 0" : " ") + std::to_string(rest) + rest_unit; };
    if (tenths < 600) return std::to_string(tenths / 10) + "." + std::to_string(tenths % 10) + "s";
    const std::int64_t minutes = tenths / 600;
    constexpr std::int64_t day = 1440; // [min]
    if (minutes < 60) return pair(minutes, "m", tenths / 10 % 60, "s");
    if (minutes < day) return pair(minutes / 60, "h", minutes % 60, "m");
    return pair(minutes / day, "d", minutes / 60 % 24, "h");
}

std::string to_the_second(std::int64_t moment)
{
    std::string text;
    append_rfc3339(text, moment);
    return text.substr(0, 19) + "Z";
}

} // namespace views
