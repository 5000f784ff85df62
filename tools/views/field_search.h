/**
 * @file field_search.h
 * Finds fields by what people call them.
 */
#ifndef VIEWS_FIELD_SEARCH_H
#define VIEWS_FIELD_SEARCH_H

#include <string>
#include <string_view>
#include <vector>

#include "dictionary.h"

namespace views
{

/**
 * Finds fields by public name, C member, metric name, label of a report line or component. The front of a name may be left
 * out, capitals make no difference, and an array's number may be any.
 * @return all that are called so, in the order of the dictionary
 */
std::vector<const dictionary::Field*> find_fields(std::string_view what);

/** Whether a name is the label of a report's line. Capitals make no difference. */
bool is_label(std::string_view label, std::string_view name);

/** Names that were perhaps meant, the nearest first. @return at most three, none where nothing is near */
std::vector<std::string> nearest_names(std::string_view what);

/** The same among full public names. */
std::vector<std::string> nearest_field_names(std::string_view what);

} // namespace views

#endif
