/**
 * @file explanation.h
 * What a rule looks for and why, for people.
 */
#ifndef DIAGNOSIS_EXPLANATION_H
#define DIAGNOSIS_EXPLANATION_H

#include <string>
#include <string_view>

#include "rule.h"

namespace diagnosis
{

/** A rule in lines of text. */
std::string explanation(const Rule& rule);

/** The same as the section of decstats-findings(5), in the macros of mdoc(7). */
std::string manual_section(const Rule& rule);

/** Breaks a text into lines. @param first what is used of the first line @param indent blanks before each other line */
std::string wrapped(std::string_view text, std::size_t first, std::size_t indent);

} // namespace diagnosis

#endif
