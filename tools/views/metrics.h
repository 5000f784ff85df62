/**
 * @file metrics.h
 * Snapshots as metrics: OpenMetrics 1.0, and the text format 0.0.4 that Prometheus and its collectors read.
 */
#ifndef VIEWS_METRICS_H
#define VIEWS_METRICS_H

#include <span>
#include <string>
#include <string_view>

#include "snapshot.h"

namespace views
{

/** A text format of metrics. */
enum class MetricsFormat
{
    openmetrics, /**< https://prometheus.io/docs/specs/om/open_metrics_spec/ 1.0 */
    prometheus,  /**< 0.0.4: no units, infos and statesets as gauges */
};

inline constexpr std::string_view openmetrics_content_type = "application/openmetrics-text; version=1.0.0; charset=utf-8";
inline constexpr std::string_view prometheus_content_type = "text/plain; version=0.0.4; charset=utf-8";

/** The state in a stateset that is true for a value without an identifier, so that exactly one is. */
inline constexpr std::string_view other_state = "other";

/** A metric that belongs to no field, but to the decoder. */
struct DecoderFamily
{
    std::string_view name;
    std::string_view type; /**< as OpenMetrics names it */
    std::string_view unit; /**< empty = none */
    std::string_view help;
};

inline constexpr DecoderFamily up_family = {"decoder_up", "gauge", "",
                                            "1 = the decoder's records are being updated, 0 = they no longer are"};
inline constexpr DecoderFamily last_update_family = {"decoder_last_update_timestamp_seconds", "gauge", "seconds",
                                                     "when the decoder's records were last taken"};

/** Those that write_metrics() writes. */
inline constexpr DecoderFamily presence_families[] = {up_family, last_update_family};

/**
 * Writes the metrics of decoders, each with its name in the label `decoder`. What is absent, not measured or does not apply has no
 * sample, and neither has a counter that is negative.
 * Of one whose records are no longer updated, only that and when they last were is exposed; where it is not known whether they
 * are, nothing is said about it.
 * @param text     takes the exposition in place of what it holds; its memory is used again, which saves much of the time
 * @param decoders their last records, no two of a name
 * @param further  whole families that others have written in the same format, which stand before the exposition's end
 */
void write_metrics(std::string& text, std::span<const records::Snapshot* const> decoders, MetricsFormat format,
                   std::string_view further = {});

/** What the last line of an exposition is, newline included; may be empty. */
std::string_view end_of_metrics(MetricsFormat format);

} // namespace views

#endif
