/**
 * @file metric_families.h
 * The metric families that the fields make up, with all text of theirs that no value changes. What a rendering reads lies in the
 * order in which it reads it: there are many families, and looking each up in memory would take longer than writing it.
 */
#ifndef VIEWS_METRIC_FAMILIES_H
#define VIEWS_METRIC_FAMILIES_H

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "dictionary.h"
#include "metrics.h"

namespace views
{

/** A field in a family, and what is needed of it for most samples. */
struct FamilyMember
{
    const dictionary::Field* field;
    std::string_view labels; /**< the labels that it has beside those of all the family's samples, from the comma to "} " */
    std::uint32_t offset;    /**< in its record, in an array that of element 0 [bytes] */
    std::uint32_t stride;    /**< of its array [bytes]; 0 outside arrays */
    std::uint32_t multiply;  /**< as dictionary::Metric has it */
    std::uint32_t divide;    /**< as dictionary::Metric has it */
    std::uint16_t index;     /**< place in the dictionary */
    dictionary::Type type;
    bool is_plain; /**< it always applies where its element is in use, and is never absent */
};

/** A family: what one name stands for. All its fields are of one component, and of one array or none. */
struct MetricFamily
{
    std::string_view metadata; /**< HELP, TYPE and UNIT */
    std::string_view start;    /**< of each sample: its name and the brace */
    dictionary::MetricType type;
    std::span<const FamilyMember> members; /**< not empty */
    std::span<const std::string> states;   /**< of a stateset: the label of each state from the comma to "} ", other_state last */
};

/** All families, in the order of their first fields. */
const std::vector<MetricFamily>& metric_families(MetricsFormat format);

/** The lines in front of a family's samples. @param type as OpenMetrics names it @param help plain text */
std::string family_metadata(MetricsFormat format, std::string_view name, std::string_view type, std::string_view unit,
                            std::string_view help);

/** Appends NAME="value". @param value any bytes */
void append_label(std::string& text, std::string_view name, std::string_view value);

} // namespace views

#endif
