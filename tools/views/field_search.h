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

/** What a text names that may be a line copied from a report: the label in front of the colon, or the text, without blanks around. */
std::string_view named_in(std::string_view text);

/**
 * Finds fields by public name, C member, metric name, label of a report line or component. The front of a name may be left
 * out, capitals make no difference, and an array's number may be any. If nothing is called so, the fields whose public name or
 * label has these words in it.
 * @return in the order of the dictionary
 */
std::vector<const dictionary::Field*> find_fields(std::string_view what);

/** The labels that someone means among those of some fields: the one that is called so, or else those with these words in it. */
std::vector<std::string_view> find_labels(std::string_view what, const std::vector<const dictionary::Field*>& fields);

/** Names that were perhaps meant, the nearest first. @return at most three, none where nothing is near */
std::vector<std::string> nearest_names(std::string_view what);

/** The same among full public names. */
std::vector<std::string> nearest_field_names(std::string_view what);

/** The array of which a name has an element that is not there, as in sources[99].pid. @return NULL if it is not that */
const dictionary::Array* array_without_element(std::string_view what);

} // namespace views

#endif
