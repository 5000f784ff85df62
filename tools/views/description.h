/**
 * @file description.h
 * What is known of a field, for operators and programmers.
 */
#ifndef VIEWS_DESCRIPTION_H
#define VIEWS_DESCRIPTION_H

#include <span>
#include <string>

#include "dictionary.h"
#include "manual.h"
#include "metrics.h"

namespace views
{

/** A field in lines of text. */
std::string description(const dictionary::Field& field);

/** An entry of decstats-reports(5) in lines of text. */
std::string description(const ManualEntry& entry);

/** A metric that belongs to no field in lines of text. */
std::string description(const DecoderFamily& family);

/** Fields as one line of JSON, described in decstats-json(5). @return without the newline at its end */
std::string descriptions_json(std::span<const dictionary::Field* const> fields);

/** When a field means something: "if tdemux.encapsulation is ts_srt". @return empty = always */
std::string applicability(const dictionary::Field& field);

/** The name of a metric's samples. @return empty = the field has none */
std::string sample_name(const dictionary::Field& field);

/** The number that a field's value is multiplied by for its metric: 1/1000. */
std::string metric_factor(const dictionary::Field& field);

} // namespace views

#endif
