/**
 * @file manual.h
 * What decstats-reports(5) says about a line of a report, and what it advises.
 */
#ifndef VIEWS_MANUAL_H
#define VIEWS_MANUAL_H

#include <string>
#include <string_view>
#include <vector>

#include "component.h"

namespace views
{

/** An entry of the page: a line of a report, or advice. */
struct ManualEntry
{
    const records::Component* component; /**< whose report has the line; NULL = advice */
    std::string section;                 /**< the part of that report: SRT link; empty = it has no parts there */
    std::string label;                   /**< the line's label, or the title of the advice */
    std::string appearance;              /**< when it appears and what it shows: Counted, packets, last one */
    std::string text;                    /**< the explanation: paragraphs, each one line, verbatim lines begin with two blanks */
};

/** All entries, in the order of the page. */
const std::vector<ManualEntry>& manual_entries();

} // namespace views

#endif
