/**
 * @file json_values.h
 * The value of a field as a member of a JSON object.
 */
#ifndef VIEWS_JSON_VALUES_H
#define VIEWS_JSON_VALUES_H

#include <cstddef>
#include <span>
#include <string_view>

#include "dictionary.h"
#include "json_writer.h"
#include "snapshot.h"

namespace views
{

/** Writes what a field that applies means; null where it is absent or not measured. @param element 0 outside arrays */
void write_member(JsonWriter& writer, std::string_view name, const records::Snapshot& snapshot, const dictionary::Field& field,
                  std::size_t element);

/** Writes a field as it stands in its record. @param record the bytes of its component's record */
void write_raw_member(JsonWriter& writer, std::string_view name, const dictionary::Field& field, std::span<const std::byte> record,
                      std::size_t element);

} // namespace views

#endif
