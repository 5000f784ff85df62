/**
 * @file diagnosis_metrics.h
 * Results as metrics, described in decstats-json(5).
 */
#ifndef DIAGNOSIS_DIAGNOSIS_METRICS_H
#define DIAGNOSIS_DIAGNOSIS_METRICS_H

#include <span>
#include <string>
#include <string_view>

#include "diagnosis.h"
#include "metrics.h"

namespace diagnosis
{

/** A decoder and what is wrong with it. */
struct Diagnosed
{
    std::string_view decoder; /**< its name */
    const Result* result;     /**< not NULL */
};

inline constexpr views::DecoderFamily finding_family = {"decoder_finding_active", "gauge", "",
                                                        "1 = this is wrong with the decoder, 0 = it is not; none = it cannot be told"};
inline constexpr views::DecoderFamily stage_family = {"decoder_stage_state", "stateset", "",
                                                      "what a stage of the decoding chain does with what it gets"};

/** All of them. */
inline constexpr views::DecoderFamily metric_families[] = {finding_family, stage_family};

/**
 * Writes the families of results, for views::write_metrics() to put before its end. Every finding that could be looked for has a
 * sample, 0 where it was not found: then no series comes and goes with a fault, its share of time is an average, and what could
 * not be seen differs from what is well. A finding that weighs more or less than it usually does is a series of that severity
 * beside its usual one, which stays.
 * @param text     takes the families in place of what it holds; its memory is used again
 * @param decoders no two of a name; one whose records are nobody's any more has no result and is not among them
 */
void write_metrics(std::string& text, std::span<const Diagnosed> decoders, views::MetricsFormat format);

} // namespace diagnosis

#endif
