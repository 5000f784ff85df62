// Included before the report library's sources: what they print through fprintf and fwrite goes through {fmt}, with formats
// that are compiled.
#ifndef THROUGH_FMT_H
#define THROUGH_FMT_H

#include <fmt/compile.h>

#include <cstdio>
#include <utility>

#include "printf_format.h"

constexpr void add_number(auto& text, size_t number)
{
    if (number >= 10) add_number(text, number / 10);
    text.add(static_cast<char>('0' + number % 10));
}

/** The same format in the language of {fmt}. */
template <size_t capacity> constexpr auto translated(const Text<capacity>& text)
{
    const Format<capacity> format = parse(text);
    Text<2 * capacity> result;
    for (size_t i = 0; i <= format.conversion_count; i++)
    {
        for (const char c : format.literal(i))
        {
            result.add(c);
            if (c == '{' || c == '}') result.add(c);
        }
        if (i == format.conversion_count) break;
        const Conversion& c = format.conversions[i];
        result.add("{:");
        if (c.zeros)
            result.add('0');
        else if (c.width > 0)
            result.add(c.left ? '<' : '>');
        if (c.width > 0) add_number(result, c.width);
        if (c.type == 'f') result.add('.');
        if (c.type == 'f') add_number(result, c.precision);
        if (c.type == 'f' || c.type == 'x' || c.type == 'X') result.add(c.type);
        result.add('}');
    }
    return result;
}

template <Text text> inline constexpr auto fmt_format = translated(text);
template <Text text> inline constexpr auto printf_format = parse(text);

template <Text text, typename... Arguments> void print(Arguments... arguments)
{
    [&]<size_t... index>(std::index_sequence<index...>)
    {
        fmt::print(stdout, FMT_COMPILE(std::string_view(fmt_format<text>)),
                   as_converted<printf_format<text>.conversions[index]>(arguments)...);
    }
    (std::index_sequence_for<Arguments...>());
}

#define fprintf(stream, format, ...)      print<format>(__VA_ARGS__)
#define fwrite(text, size, count, stream) print<"%s">(std::string_view(text, count))

#endif
