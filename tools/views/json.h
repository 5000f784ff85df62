/**
 * @file json.h
 * Snapshots as JSON, described in decstats-json(5), and its schema.
 */
#ifndef VIEWS_JSON_H
#define VIEWS_JSON_H

#include <string>
#include <string_view>

#include "selection.h"
#include "snapshot.h"

namespace views
{

/** The versions of the formats: fields are added within one, never renamed or removed. */
inline constexpr std::string_view json_schema_id = "decstats/1";
inline constexpr std::string_view raw_json_schema_id = "decstats-raw/1";

/**
 * A Snapshot as one line of JSON: the components that are present, the fields that apply.
 * @param selection these fields only; NULL = all
 * @return without the newline at its end
 */
std::string json(const records::Snapshot& snapshot, const Selection* selection = nullptr);

/** All bytes of a Snapshot's records as one line of JSON, nested as the C records are. @return without the newline at its end */
std::string raw_json(const records::Snapshot& snapshot);

/** The JSON Schema (2020-12) of both, as one line. @return without the newline at its end */
std::string json_schema();

/** Lays JSON out for people, two blanks a level. @param json valid JSON @return without the newline at its end */
std::string indented(const std::string& json);

} // namespace views

#endif
