// Included before the report library's sources: what they print through fprintf and fwrite is inserted into a stream.
#ifndef THROUGH_IOSTREAMS_H
#define THROUGH_IOSTREAMS_H

#include <cstdio>
#include <iomanip>
#include <ostream>
#include <utility>

#include "bench.h"
#include "printf_format.h"

/** Inserts as the conversion asks, and leaves the stream as it found it but for what the next number sets anew. */
template <Conversion c> void insert(std::ostream& stream, auto argument)
{
    if constexpr (c.type == 'f') stream << std::fixed << std::setprecision(c.precision);
    if constexpr (c.type == 'x') stream << std::hex;
    if constexpr (c.type == 'X') stream << std::hex << std::uppercase;
    if constexpr (c.zeros) stream << std::setfill('0');
    if constexpr (c.width > 0) stream << (c.left ? std::left : std::right) << std::setw(c.width);
    stream << argument;
    if constexpr (c.zeros) stream << std::setfill(' ');
    if constexpr (c.type == 'X') stream << std::nouppercase;
    if constexpr (c.type == 'x' || c.type == 'X') stream << std::dec;
}

template <Text text> inline constexpr auto printf_format = parse(text);

/** Once for each format, as a format string stands once. */
template <Text text, typename... Arguments> [[gnu::noinline]] void print(Arguments... arguments)
{
    std::ostream& stream = stdout_stream();
    constexpr auto& format = printf_format<text>;
    const auto insert_literal = [&]<size_t index>(std::integral_constant<size_t, index>)
    {
        if constexpr (!format.literal(index).empty()) stream << format.literal(index);
    };
    [&]<size_t... index>(std::index_sequence<index...>)
    {
        ((insert_literal(std::integral_constant<size_t, index>()),
          insert<format.conversions[index]>(stream, as_converted<format.conversions[index]>(arguments))),
         ...);
    }
    (std::index_sequence_for<Arguments...>());
    insert_literal(std::integral_constant<size_t, format.conversion_count>());
}

#define fprintf(stream, format, ...)      print<format>(__VA_ARGS__)
#define fwrite(text, size, count, stream) print<"%s">(std::string_view(text, count))

#endif
