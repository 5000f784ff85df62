/**
 * @file presence.h
 * Whether a field has a value to show. Most fields always do, and are known to without a look at the record.
 */
#ifndef VIEWS_PRESENCE_H
#define VIEWS_PRESENCE_H

#include <cstddef>
#include <span>

#include "dictionary.h"
#include "snapshot.h"

namespace views
{

/** Whether a field means something. @param element in use; 0 outside arrays */
inline bool applies_in_use(const dictionary::Field& field, std::span<const std::byte> record, std::size_t element)
{
    const bool always = field.condition.count == 0 && !field.condition.never;
    return always || dictionary::applies(field, record, element);
}

/** Whether a field that applies has a value: the host measures it, and it is not absent. */
inline bool has_value(const records::Snapshot& snapshot, const dictionary::Field& field, std::span<const std::byte> record,
                      std::size_t element)
{
    if (snapshot.not_measured[field.index]) return false;
    const bool always = field.absent_rule == dictionary::AbsentRule::never && field.absent_with == dictionary::no_field;
    return always || !dictionary::is_absent(field, record, element);
}

} // namespace views

#endif
