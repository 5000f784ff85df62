#include "moment.h"

#include <charconv>
#include <chrono>
#include <cstddef>
#include <limits>

namespace sources
{

namespace
{

constexpr std::int64_t second = 1'000'000'000; // [ns]
constexpr std::string_view digits = "0123456789";

/** Takes a number of exactly so many digits off the text. */
std::optional<int> take_number(std::string_view& text, std::size_t count)
{
    if (text.substr(0, count).find_first_not_of(digits) != std::string_view::npos) return std::nullopt;
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + std::min(count, text.size()), number);
    if (error != std::errc() || end != text.data() + count) return std::nullopt;
    text.remove_prefix(count);
    return number;
}

/** Takes one of the characters off the text. */
bool take(std::string_view& text, std::string_view characters)
{
    if (text.empty() || characters.find(text.front()) == std::string_view::npos) return false;
    text.remove_prefix(1);
    return true;
}

/** Takes a fraction of a second off the text, "." and digits; those below a nanosecond do not count. @return [ns] */
std::optional<std::int64_t> take_fraction(std::string_view& text)
{
    if (!take(text, ".")) return 0;
    std::int64_t fraction = 0;
    std::int64_t unit = second;
    for (; !text.empty() && digits.find(text.front()) != std::string_view::npos; text.remove_prefix(1))
        fraction += (unit /= 10) * (text.front() - '0');
    return unit == second ? std::nullopt : std::optional(fraction);
}

/** Takes hours and minutes off the text, "hh:mm". @return [s] */
std::optional<std::int64_t> take_hours_and_minutes(std::string_view& text)
{
    const auto hours = take_number(text, 2);
    if (!hours || *hours > 23 || !take(text, ":")) return std::nullopt;
    const auto minutes = take_number(text, 2);
    if (!minutes || *minutes > 59) return std::nullopt;
    return *hours * 3600 + *minutes * 60;
}

/** Takes an offset from UTC off the text, "Z" or "+hh:mm". @return [s] */
std::optional<std::int64_t> take_offset(std::string_view& text)
{
    if (take(text, "Zz")) return 0;
    const bool is_west = text.starts_with('-');
    if (!take(text, "+-")) return std::nullopt;
    const auto offset = take_hours_and_minutes(text);
    return offset && is_west ? -*offset : offset;
}

std::optional<std::int64_t> moment_of(std::int64_t seconds, std::int64_t fraction)
{
    if (seconds < 0 || seconds >= std::numeric_limits<std::int64_t>::max() / second) return std::nullopt;
    return seconds * second + fraction;
}

/** RFC 3339, 5.6 */
std::optional<std::int64_t> parse_date_and_time(std::string_view text)
{
    const auto year = take_number(text, 4);
    if (!year || !take(text, "-")) return std::nullopt;
    const auto month = take_number(text, 2);
    if (!month || !take(text, "-")) return std::nullopt;
    const auto day = take_number(text, 2);
    if (!day || !take(text, "Tt ")) return std::nullopt;
    const std::chrono::year_month_day date(std::chrono::year(*year), std::chrono::month(static_cast<unsigned>(*month)),
                                           std::chrono::day(static_cast<unsigned>(*day)));

    const auto time = take_hours_and_minutes(text);
    if (!date.ok() || !time || !take(text, ":")) return std::nullopt;
    const auto seconds = take_number(text, 2);
    if (!seconds || *seconds > 60) return std::nullopt; // 60 is a leap second, which is the next minute's first
    const auto fraction = take_fraction(text);
    const auto offset = take_offset(text);
    if (!fraction || !offset || !text.empty()) return std::nullopt;

    const std::chrono::sys_seconds midnight = std::chrono::sys_days(date);
    return moment_of(midnight.time_since_epoch().count() + *time + *seconds - *offset, *fraction);
}

std::optional<std::int64_t> parse_seconds(std::string_view text)
{
    std::int64_t seconds = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), seconds);
    if (error != std::errc()) return std::nullopt;
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    const auto fraction = take_fraction(text);
    if (!fraction || !text.empty()) return std::nullopt;
    return moment_of(seconds, *fraction);
}

} // namespace

std::int64_t present_moment()
{
    return std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::system_clock::now().time_since_epoch()).count();
}

std::optional<At> parse_at(std::string_view text)
{
    if (text == "mtime") return At{};
    const auto moment = text.find(':') == std::string_view::npos ? parse_seconds(text) : parse_date_and_time(text);
    return moment ? std::optional(At{moment}) : std::nullopt;
}

} // namespace sources
