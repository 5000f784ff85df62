// What JSON and metrics cost beside other ways to write the same: JSON against building and dumping it with nlohmann's
// ordered_json, metrics against the serializer of prometheus-cpp with its samples at hand. All are the shortest of many short runs
// that take turns, so that whatever else the machine does, it does to all.
//
//     views_bench    prints times and ratios, and fails if one is below its bar

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <limits>
#include <map>
#include <nlohmann/json.hpp>
#include <prometheus/metric_family.h>
#include <prometheus/text_serializer.h>
#include <string>
#include <vector>

#include "json.h"
#include "metrics.h"
#include "sample.h"

namespace
{

using nlohmann::ordered_json;

constexpr int runs = 300;

[[noreturn]] void fail(const char* message)
{
    std::fprintf(stderr, "views_bench: %s\n", message);
    std::exit(2);
}

/** Builds a document anew, member by member, as a program does that has the values. */
ordered_json built(const ordered_json& values)
{
    if (values.is_object())
    {
        ordered_json object = ordered_json::object();
        for (const auto& [key, value] : values.items()) object[key] = built(value);
        return object;
    }
    if (values.is_array())
    {
        ordered_json array = ordered_json::array();
        for (const ordered_json& value : values) array.push_back(built(value));
        return array;
    }
    return values;
}

/** Reads an exposition of 0.0.4 without escapes in its labels. */
std::vector<prometheus::MetricFamily> families_of(const std::string& text)
{
    std::vector<prometheus::MetricFamily> families;
    for (std::size_t start = 0, end = 0; (end = text.find('\n', start)) != std::string::npos; start = end + 1)
    {
        const std::string line = text.substr(start, end - start);
        const std::size_t name_end = line.find(' ', 7);
        if (line.starts_with("# HELP "))
            families.push_back({line.substr(7, name_end - 7), line.substr(name_end + 1), prometheus::MetricType::Gauge, {}});
        else if (line.starts_with("# TYPE "))
            families.back().type = line.ends_with("counter") ? prometheus::MetricType::Counter : prometheus::MetricType::Gauge;
        else
        {
            prometheus::ClientMetric metric;
            std::size_t at = line.find('{') + 1;
            for (std::size_t quote = 0; line[at] != '}' && line[at] != ' '; at = quote + 2)
            {
                const std::size_t equals = line.find('=', at);
                quote = line.find('"', equals + 2);
                metric.label.push_back({line.substr(at, equals - at), line.substr(equals + 2, quote - equals - 2)});
            }
            const double value = std::strtod(line.c_str() + line.rfind(' '), nullptr);
            (families.back().type == prometheus::MetricType::Counter ? metric.counter.value : metric.gauge.value) = value;
            families.back().metric.push_back(std::move(metric));
        }
    }
    return families;
}

std::size_t samples_in(const std::string& text)
{
    std::size_t count = 0;
    for (std::size_t i = 0; i < text.size(); i = text.find('\n', i) + 1) count += text[i] == '#' ? 0 : 1;
    return count;
}

/** Keeps the compiler from leaving work out. */
volatile std::size_t written = 0;

double microseconds_of(const std::function<std::size_t()>& way)
{
    const auto begin = std::chrono::steady_clock::now();
    written = way();
    const std::chrono::duration<double, std::micro> time = std::chrono::steady_clock::now() - begin;
    return time.count();
}

/** @return whether the other way takes at least bar times as long */
bool compare(const char* what, const std::function<std::size_t()>& own, const char* other_name, const std::function<std::size_t()>& other,
             double bar)
{
    double own_time = std::numeric_limits<double>::max();
    double other_time = own_time;
    for (int i = 0; i < runs; ++i)
    {
        own_time = std::min(own_time, microseconds_of(own));
        other_time = std::min(other_time, microseconds_of(other));
    }
    const bool is_met = other_time >= bar * own_time;
    std::printf("%s  %s: %.1f us, %s: %.1f us, %.1f times (at least %.0f)\n", is_met ? "pass" : "FAIL", what, own_time, other_name,
                other_time, other_time / own_time, bar);
    return is_met;
}

} // namespace

int main()
{
    const records::Snapshot snapshot = sources::sample("live-srt-1080i", 1'800'000'000'000'000'000);
    const records::Snapshot* const decoder = &snapshot;

    const std::string line = views::json(snapshot);
    const ordered_json values = ordered_json::parse(line);
    if (ordered_json::parse(built(values).dump()) != ordered_json::parse(line)) fail("the two JSON texts say different things");

    std::string text;
    views::write_metrics(text, {&decoder, 1}, views::MetricsFormat::prometheus);
    const std::vector<prometheus::MetricFamily> families = families_of(text);
    const prometheus::TextSerializer serializer;
    if (samples_in(serializer.Serialize(families)) != samples_in(text)) fail("the two expositions have different samples");

    const bool json_is_met = compare(
        "JSON", [&] { return views::json(snapshot).size(); }, "ordered_json", [&] { return built(values).dump().size(); }, 5);
    const auto openmetrics = [&]
    {
        views::write_metrics(text, {&decoder, 1}, views::MetricsFormat::openmetrics);
        return text.size();
    };
    const bool metrics_are_met = compare(
        "OpenMetrics", openmetrics, "prometheus-cpp", [&] { return serializer.Serialize(families).size(); }, 10);
    return json_is_met && metrics_are_met ? 0 : 1;
}
