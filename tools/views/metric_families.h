/**
 * @file metric_families.h
 * The metric families that the fields make up, with all text of theirs that no value changes.
 */
#ifndef VIEWS_METRIC_FAMILIES_H
#define VIEWS_METRIC_FAMILIES_H

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "dictionary.h"
#include "metrics.h"

namespace views
{

/** A field in a family. */
struct FamilyMember
{
    const dictionary::Field* field;
    std::string sample;               /**< of a counter or gauge: its labels behind those of all, and "} " */
    std::vector<std::string> samples; /**< of a stateset: the same for each state, other_state last */
};

/** A family: what one name stands for. All its fields are of one component, and of one array or none. */
struct MetricFamily
{
    std::string_view name;
    dictionary::MetricType type;
    std::string start;                    /**< of each sample: its name and the brace */
    std::array<std::string, 2> metadata;  /**< HELP, TYPE and UNIT, by MetricsFormat */
    std::vector<FamilyMember> members;    /**< not empty */
};

/** All families, in the order of their first fields. */
const std::vector<MetricFamily>& metric_families();

/** The lines in front of a family's samples. @param type as OpenMetrics names it @param help plain text */
std::string family_metadata(MetricsFormat format, std::string_view name, std::string_view type, std::string_view unit,
                            std::string_view help);

/** The name of a label: that of an array's number, of an element's own field or of a family. Appends NAME="value". */
void append_label(std::string& text, std::string_view name, std::string_view value);

} // namespace views

#endif
