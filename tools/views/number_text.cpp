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

template <typename Number> void append_number(std::string& text, Number value)
{
    std::array<char, 32> digits;
    const auto end = std::to_chars(digits.begin(), digits.end(), value);
    text.append(digits.begin(), end.ptr);
}

/** The absolute value, which for the smallest number only the unsigned type holds. */
std::uint64_t magnitude(std::int64_t value)
{
    return value < 0 ? -static_cast<std::uint64_t>(value) : static_cast<std::uint64_t>(value);
}

/** Appends the decimals of a fraction in units of 10^-9, without zeros at the end. */
void append_decimals(std::string& text, std::uint64_t billionths)
{
    std::size_t digits = 9;
    for (; billionths % 10 == 0; billionths /= 10) --digits;
    const std::size_t point = text.size();
    text.append(digits + 1, '.');
    for (std::size_t i = digits; i > 0; --i, billionths /= 10) text[point + i] = static_cast<char>('0' + billionths % 10);
}

/** Appends a number with zeros in front, to nine digits. */
void append_nine_digits(std::string& text, std::uint64_t value)
{
    const std::size_t start = text.size();
    text.append(9, '0');
    for (std::size_t i = 9; i > 0; --i, value /= 10) text[start + i - 1] = static_cast<char>('0' + value % 10);
}

/** Appends a product that is too large for 64 bits, though not for 93. */
void append_product(std::string& text, std::uint64_t value, std::uint32_t factor)
{
    const std::uint64_t low = value % billion * factor;
    const std::uint64_t high = value / billion * factor + low / billion;
    append_number(text, high);
    append_nine_digits(text, low % billion);
}

} // namespace

void append_integer(std::string& text, std::int64_t value)
{
    append_number(text, value);
}

void append_integer(std::string& text, std::uint64_t value)
{
    append_number(text, value);
}

void append_float(std::string& text, float value)
{
    append_number(text, value);
    if (value == 0.0f && std::signbit(value)) text += ".0"; // many readers take -0 for the integer 0
}

void append_moment(std::string& text, const dictionary::Moment& moment)
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
    if (negative) text += '-';
    append_integer(text, seconds);
    text += '.';
    append_nine_digits(text, static_cast<std::uint64_t>(rest));
}

void append_scaled(std::string& text, std::uint64_t value, std::uint32_t multiply, std::uint32_t divide)
{
    std::uint64_t product = 0;
    const bool has_overflown = __builtin_mul_overflow(value, std::uint64_t{multiply}, &product);
    if (has_overflown && divide == 1) return append_product(text, value, multiply);
    if (has_overflown || billion % divide != 0) return append_number(text, static_cast<double>(value) * multiply / divide);

    append_integer(text, product / divide);
    const std::uint64_t rest = product % divide;
    if (rest != 0) append_decimals(text, rest * (billion / divide));
}

void append_scaled(std::string& text, std::int64_t value, std::uint32_t multiply, std::uint32_t divide)
{
    if (value < 0) text += '-';
    append_scaled(text, magnitude(value), multiply, divide);
}

void append_rfc3339(std::string& text, std::int64_t moment)
{
    using namespace std::chrono;
    const sys_time<nanoseconds> time{nanoseconds(moment)};
    const sys_days day = floor<days>(time);
    const year_month_day date(day);
    const hh_mm_ss clock(time - day);
    std::array<char, 48> buffer;
    const int length = std::snprintf(buffer.data(), buffer.size(), "%04d-%02u-%02uT%02d:%02d:%02d.%09dZ", static_cast<int>(date.year()),
                                     static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                                     static_cast<int>(clock.hours().count()), static_cast<int>(clock.minutes().count()),
                                     static_cast<int>(clock.seconds().count()), static_cast<int>(clock.subseconds().count()));
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

} // namespace views
