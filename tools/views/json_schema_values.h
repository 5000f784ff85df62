/**
 * @file json_schema_values.h
 * What the JSON Schema says of a field's value: the counterpart of what json.cpp and raw_json.cpp write.
 */
#ifndef VIEWS_JSON_SCHEMA_VALUES_H
#define VIEWS_JSON_SCHEMA_VALUES_H

#include <string_view>

#include "dictionary.h"
#include "json_writer.h"

namespace views
{

/** Writes what holds for a field's value, into an object that has been started. */
void write_value_schema(JsonWriter& writer, const dictionary::Field& field);

/** The same of its value as it stands in the record. */
void write_raw_value_schema(JsonWriter& writer, const dictionary::Field& field);

/** Writes a member that is as a definition says. */
void write_reference(JsonWriter& writer, std::string_view name, std::string_view definition);

} // namespace views

#endif
