/**
 * @file metric_value.h
 * The value of a sample among the metrics.
 */
#ifndef VIEWS_METRIC_VALUE_H
#define VIEWS_METRIC_VALUE_H

#include <cstddef>

#include "metric_families.h"

namespace views
{

/**
 * Writes the value of a field that is a number or a moment, in the base unit.
 * @param to    room for number_size characters
 * @param bytes where the value stands in its record, of any alignment
 * @return the end of what was written: nothing of a text or of bytes, which are labels
 */
char* write_metric_value(char* to, const FamilyMember& member, const std::byte* bytes);

} // namespace views

#endif
