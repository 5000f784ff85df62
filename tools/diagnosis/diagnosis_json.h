/**
 * @file diagnosis_json.h
 * Results as JSON, described in decstats-findings(5).
 */
#ifndef DIAGNOSIS_DIAGNOSIS_JSON_H
#define DIAGNOSIS_DIAGNOSIS_JSON_H

#include <string>
#include <string_view>
#include <vector>

#include "diagnosis.h"
#include "snapshot.h"

namespace diagnosis
{

/** The version of the format: members are added within one, never renamed or removed. */
inline constexpr std::string_view json_schema_id = "decstats-diagnosis/1";

/**
 * A result as one line of JSON.
 * @param snapshot the moment that it is of, for the decoder's name and instance
 * @return without the newline at its end
 */
std::string json(const Result& result, const records::Snapshot& snapshot);

/** The same with the findings over time in a member "episodes". */
std::string json(const Result& result, const std::vector<Episode>& episodes, const records::Snapshot& snapshot);

/**
 * Findings over time as one line of JSON.
 * @param snapshot the last moment
 * @return without the newline at its end
 */
std::string json(const std::vector<Episode>& episodes, const records::Snapshot& snapshot);

} // namespace diagnosis

#endif
