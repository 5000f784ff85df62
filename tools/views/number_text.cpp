#include "number_text.h"

#include <array>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdio>

namespace views
{

namespace
{

constexpr std::uint64_t billion = 1'000'000'000;

template <typename Number> char* write_number(char* to, Number value)
{
    return std::to_chars(to, to + number_size, value).ptr;
}

/** The absolute value, which for the smallest number only the unsigned type holds. */
std::uint64_t magnitude(std::int64_t value)
{
    return value < 0 ? -static_cast<std::uint64_t>(value) : static_cast<std::uint64_t>(value);
}

/** Writes a number below 10^9 with zeros in front, to nine digits. */
char* write_nine_digits(char* to, std::uint64_t value)
{
    for (std::size_t i = 9; i > 0; --i, value /= 10) to[i - 1] = static_cast<char>('0' + value % 10);
    return to + 9;
}

/** Writes a fraction in units of 10^-9, without zeros at the end. @param billionths not 0 */
char* write_fraction(char* to, std::uint64_t billionths)
{
    *to = '.';
    char* end = write_nine_digits(to + 1, billionths);
    while (end[-1] == '0') --end;
    return end;
}

/** Writes a product that is too large for 64 bits, though not for 93. */
char* write_product(char* to, std::uint64_t value, std::uint32_t factor)
{
    const std::uint64_t low = value % billion * factor;
    const std::uint64_t high = value / billion * factor + low / billion;
    return write_nine_digits(write_number(to, high), low % billion);
}

/** Appends what a function writes. */
template <typename Write> void append_written(std::string& text, const Write& write)
{
    std::array<char, number_size> digits;
    text.append(digits.data(), write(digits.data()));
}

} // namespace

char* write_scaled(char* to, std::uint64_t value, std::uint32_t multiply, std::uint32_t divide)
{
    if (multiply == 1 && divide == 1) return write_number(to, value);
    std::uint64_t product = 0;
    const bool has_overflown = __builtin_mul_overflow(value, std::uint64_t{multiply}, &product);
    if (has_overflown && divide == 1) return write_product(to, value, multiply);
    if (has_overflown || billion % divide != 0) return write_number(to, static_cast<double>(value) * multiply / divide);

    to = write_number(to, product / divide);
    const std::uint64_t rest = product % divide;
    return rest == 0 ? to : write_fraction(to, rest * (billion / divide));
}

char* write_scaled(char* to, std::int64_t value, std::uint32_t multiply, std::uint32_t divide)
{
    if (value < 0) *to++ = '-';
    return write_scaled(to, magnitude(value), multiply, divide);
}

char* write_float(char* to, float value)
{
    to = write_number(to, value);
    if (value != 0.0f || !std::signbit(value)) return to;
    *to++ = '.'; // many readers take -0 for the integer 0
    *to++ = '0';
    return to;
}

char* write_moment(char* to, const dictionary::Moment& moment)
{
    constexpr auto per_second = static_cast<std::int64_t>(billion);
    std::int64_t carry = moment.nanoseconds / per_second;
    std::int64_t rest = moment.nanoseconds % per_second;
    if (rest < 0)
    {
        --carry;
        rest += per_second;
    }

    // Magnitudes hold what a sum of two numbers of 64 bits may be.
    std::uint64_t seconds = 0;
    bool negative = false;
    if ((moment.seconds < 0) == (carry < 0))
    {
        negative = carry < 0;
        seconds = magnitude(moment.seconds) + magnitude(carry);
    }
    else
    {
        negative = moment.seconds + carry < 0;
        seconds = magnitude(moment.seconds + carry);
    }
    if (negative && rest > 0)
    {
        --seconds;
        rest = per_second - rest;
    }
    if (negative) *to++ = '-';
    to = write_number(to, seconds);
    *to++ = '.';
    return write_nine_digits(to, static_cast<std::uint64_t>(rest));
}

void append_integer(std::string& text, std::int64_t value)
{
    append_written(text, [value](char* to) { return write_number(to, value); });
}

void append_integer(std::string& text, std::uint64_t value)
{
    append_written(text, [value](char* to) { return write_number(to, value); });
}

void append_scaled(std::string& text, std::int64_t value, std::uint32_t multiply, std::uint32_t divide)
{
    append_written(text, [=](char* to) { return write_scaled(to, value, multiply, divide); });
}

void append_scaled(std::string& text, std::uint64_t value, std::uint32_t multiply, std::uint32_t divide)
{
    append_written(text, [=](char* to) { return write_scaled(to, value, multiply, divide); });
}

void append_float(std::string& text, float value)
{
    append_written(text, [value](char* to) { return write_float(to, value); });
}

void append_moment(std::string& text, const dictionary::Moment& moment)
{
    append_written(text, [&moment](char* to) { return write_moment(to, moment); });
}

void append_rfc3339(std::string& text, std::int64_t moment)
{
    using namespace std::chrono;
    // In seconds first: the day of the earliest moments begins before what nanoseconds reach.
    const bool is_within = moment % 1'000'000'000 < 0;
    const sys_seconds second{seconds(moment / 1'000'000'000 - (is_within ? 1 : 0))};
    const nanoseconds rest(moment % 1'000'000'000 + (is_within ? 1'000'000'000 : 0));
    const sys_days day = floor<days>(second);
    const year_month_day date(day);
    const hh_mm_ss clock(second - day);
    std::array<char, 48> buffer;
    const int length =
        std::snprintf(buffer.data(), buffer.size(), "%04d-%02u-%02uT%02d:%02d:%02d.%09dZ", static_cast<int>(date.year()),
                      static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()), static_cast<int>(clock.hours().count()),
                      static_cast<int>(clock.minutes().count()), static_cast<int>(clock.seconds().count()), static_cast<int>(rest.count()));
    text.append(buffer.data(), static_cast<std::size_t>(length));
}

void append_hex(std::string& text, std::span<const std::byte> bytes)
{
    constexpr char digits[] = "0123456789abcdef";
    for (const std::byte byte : bytes)
    {
        text += digits[std::to_integer<unsigned>(byte) >> 4];
        text += digits[std::to_integer<unsigned>(byte) & 15u];
    }
}

std::string moment_text(std::int64_t moment)
{
    std::string text;
    append_rfc3339(text, moment);
    return text;
}

std::string seconds_text(std::int64_t nanoseconds)
{
    std::array<char, number_size> buffer;
    return {buffer.data(), write_scaled(buffer.data(), nanoseconds, 1, 1'000'000'000)};
}

} // namespace views
