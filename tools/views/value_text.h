/**
 * @file value_text.h
 * Values as words: what the services call a state's value, and names and addresses as people write them.
 */
#ifndef VIEWS_VALUE_TEXT_H
#define VIEWS_VALUE_TEXT_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "dictionary.h"
#include "snapshot.h"

namespace views
{

/** What the reports call a state's value. @param code as dictionary::integer reads it @return nothing = no service names it */
std::optional<std::string> state_text(const dictionary::Field& field, std::int64_t code);

/** Whether a field is the number of an SRT version, which people know by its parts. */
bool is_version(const dictionary::Field& field);

/** A version in its parts: "1.4.4". @param field one that is_version() */
std::string version_text(const dictionary::Field& field, std::span<const std::byte> record);

/**
 * An identity of bytes. An address reads 192.0.2.10 or 2001:db8::1 (RFC 5952) by the family beside it, anything else as two
 * hexadecimal digits for each byte.
 * @param field  of type bytes
 * @param record the bytes of its component's record
 */
std::string bytes_text(const dictionary::Field& field, std::span<const std::byte> record);

/**
 * A value on one line for people and scripts, its unit left out: integers, moments and shares are not scaled, a state is its
 * identifier, a flag true or false; a state without an identifier and any other flag are numbers.
 * @param record the bytes of its component's record
 */
std::string value_text(const dictionary::Field& field, std::span<const std::byte> record, std::size_t element);

/** The id of an instance, 32 hexadecimal digits. */
std::string instance_text(const records::Instance& instance);

} // namespace views

#endif
