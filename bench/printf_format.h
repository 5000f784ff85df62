// printf formats taken apart while compiling, so that other ways to print can be given the reports' own formats.
#ifndef PRINTF_FORMAT_H
#define PRINTF_FORMAT_H

#include <array>
#include <cstddef>
#include <cstring>
#include <string_view>
#include <type_traits>

/** A text whose characters the compiler knows. */
template <size_t capacity> struct Text
{
    char characters[capacity] = {};
    size_t length = 0;

    constexpr Text() = default;
    // NOLINTNEXTLINE(google-explicit-constructor): a literal stands where a template expects a format
    constexpr Text(const char (&literal)[capacity]) { add({literal, capacity - 1}); }
    constexpr void add(char c) { characters[length++] = c; }
    constexpr void add(std::string_view text)
    {
        for (const char c : text) add(c);
    }
    constexpr operator std::string_view() const { return {characters, length}; }
};

/** A conversion: flag, width, precision and type. The size of the argument is its type's. */
struct Conversion
{
    bool left = false;
    bool zeros = false;
    size_t width = 0;
    size_t precision = 0;
    bool has_precision = false;
    char type = '\0';
};

/** A format: literals, with "%%" resolved, and the conversion behind each but the last. */
template <size_t capacity> struct Format
{
    Text<capacity> literals; /**< one after the other */
    std::array<size_t, capacity / 2 + 1> ends = {};
    std::array<Conversion, capacity / 2> conversions;
    size_t conversion_count = 0;

    constexpr std::string_view literal(size_t i) const
    {
        const size_t begin = i == 0 ? 0 : ends[i - 1];
        return std::string_view(literals).substr(begin, ends[i] - begin);
    }
};

constexpr size_t parse_number(std::string_view& rest)
{
    size_t number = 0;
    for (; rest[0] >= '0' && rest[0] <= '9'; rest.remove_prefix(1)) number = number * 10 + static_cast<size_t>(rest[0] - '0');
    return number;
}

constexpr Conversion parse_conversion(std::string_view& rest)
{
    Conversion c;
    c.left = rest[0] == '-';
    c.zeros = rest[0] == '0';
    if (c.left || c.zeros) rest.remove_prefix(1);
    c.width = parse_number(rest);
    c.has_precision = rest[0] == '.';
    if (c.has_precision) rest.remove_prefix(1);
    if (c.has_precision) c.precision = parse_number(rest);
    while (rest[0] == 'l') rest.remove_prefix(1);
    c.type = rest[0];
    rest.remove_prefix(1);
    if (std::string_view("cdfsuxX").find(c.type) == std::string_view::npos) throw "unknown conversion";
    if (!c.has_precision || c.type == 's' || c.type == 'f') return c;
    // The digits that the precision of an integer asks for are zeros in a field of that width.
    if (c.width > c.precision) throw "width greater than precision";
    c.zeros = true;
    c.width = c.precision;
    c.has_precision = false;
    return c;
}

template <size_t capacity> constexpr Format<capacity> parse(const Text<capacity>& text)
{
    Format<capacity> format;
    std::string_view rest = text;
    while (!rest.empty())
    {
        const char c = rest[0];
        rest.remove_prefix(1);
        if (c != '%' || rest[0] == '%')
        {
            format.literals.add(c);
            if (c == '%') rest.remove_prefix(1);
            continue;
        }
        format.ends[format.conversion_count] = format.literals.length;
        format.conversions[format.conversion_count++] = parse_conversion(rest);
    }
    format.ends[format.conversion_count] = format.literals.length;
    return format;
}

/** The argument as the conversion reads it. */
template <Conversion c, typename Argument> constexpr auto as_converted(Argument argument)
{
    if constexpr (c.type == 'd')
        return static_cast<std::make_signed_t<decltype(+argument)>>(argument);
    else if constexpr (c.type == 'u' || c.type == 'x' || c.type == 'X')
        return static_cast<std::make_unsigned_t<decltype(+argument)>>(argument);
    else if constexpr (c.type == 's' && c.has_precision)
        return std::string_view(reinterpret_cast<const char*>(argument), strnlen(reinterpret_cast<const char*>(argument), c.precision));
    else
        return argument;
}

#endif
