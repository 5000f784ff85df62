/**
 * @file field_lines.h
 * Single fields as lines for scripts.
 */
#ifndef VIEWS_FIELD_LINES_H
#define VIEWS_FIELD_LINES_H

#include <span>
#include <string>

#include "dictionary.h"
#include "snapshot.h"

namespace views
{

/**
 * Fields in lines of "NAME VALUE UNIT". Integers, moments and shares have their field's unit and are not scaled; a state is its
 * identifier, or its number if it has none; a flag is true, false, or its number. A field of an array that was named without a
 * number has a line for each element in use. A value that is absent, not measured or does not apply is "-".
 * @param fields of components that are present
 */
std::string field_lines(const records::Snapshot& snapshot, std::span<const dictionary::Found> fields);

} // namespace views

#endif
