/**
 * @file number_text.h
 * Numbers and moments as text for programs: exact, the shortest that reads back the same, the same under every locale.
 */
#ifndef VIEWS_NUMBER_TEXT_H
#define VIEWS_NUMBER_TEXT_H

#include <cstdint>
#include <span>
#include <string>

#include "dictionary.h"

namespace views
{

/** The most characters that a number or a moment takes. */
inline constexpr std::size_t number_size = 64;

/**
 * Writes a number by multiply over divide. Divisors of 10^9 give the exact decimal number, others the nearest double.
 * @param to     room for number_size characters
 * @param divide not 0
 * @return the end of what was written
 */
char* write_scaled(char* to, std::int64_t value, std::uint32_t multiply, std::uint32_t divide);
char* write_scaled(char* to, std::uint64_t value, std::uint32_t multiply, std::uint32_t divide);

/** Writes seconds since the epoch with nine decimals, odd nanoseconds carried into the seconds: 1655208840.000000001. */
char* write_moment(char* to, const dictionary::Moment& moment);

/** Writes the shortest digits that read back as the same float: 29.97, 1e+20, -0.0. @param value finite */
char* write_float(char* to, float value);

/** Appends all digits of a number. */
void append_integer(std::string& text, std::int64_t value);
void append_integer(std::string& text, std::uint64_t value);

/** Append what the functions above write. */
void append_float(std::string& text, float value);
void append_scaled(std::string& text, std::int64_t value, std::uint32_t multiply, std::uint32_t divide);
void append_scaled(std::string& text, std::uint64_t value, std::uint32_t multiply, std::uint32_t divide);
void append_moment(std::string& text, const dictionary::Moment& moment);

/** Appends a moment as RFC 3339 writes it, in UTC with nanoseconds: 2022-06-14T12:14:00.000000000Z. @param moment [ns since the epoch] */
void append_rfc3339(std::string& text, std::int64_t moment);

/** Appends bytes as two lower-case hexadecimal digits each. */
void append_hex(std::string& text, std::span<const std::byte> bytes);

/** The same as append_rfc3339, as a text of its own. */
std::string moment_text(std::int64_t moment);

/** Nanoseconds as seconds, exactly: 0.25, -10. */
std::string seconds_text(std::int64_t nanoseconds);

} // namespace views

#endif
