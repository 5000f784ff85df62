/**
 * @file reports.h
 * The reports of a Snapshot, as the report library prints them.
 */
#ifndef VIEWS_REPORTS_H
#define VIEWS_REPORTS_H

#include <bitset>
#include <optional>
#include <string>

#include "snapshot.h"

namespace views
{

/**
 * Prints reports on standard output, in the order of the components, with the clock at the Snapshot's moment. Bytes of the
 * records' texts that are not printable ASCII show as "?".
 * @param library_file file of the report library; nothing = the one that belongs to this tool
 * @param components   the components to print, by records::Component::index; none = all that are here and that the library knows
 * @param level        how much the reports show
 * @throw Failure if the library cannot be loaded, and if it does not have a report that is asked for, or any
 */
void print_reports(const records::Snapshot& snapshot, const std::optional<std::string>& library_file,
                   const std::bitset<records::component_count>& components, STATS_LEVEL level);

/** The same as a text. Standard output is another stream meanwhile, so nothing else of the process may use it. @throw Failure */
std::string report_text(const records::Snapshot& snapshot, const std::optional<std::string>& library_file,
                        const std::bitset<records::component_count>& components, STATS_LEVEL level);

} // namespace views

#endif
