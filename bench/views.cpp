// What JSON and metrics cost beside other ways to write the same: JSON against building and dumping it with nlohmann's
// ordered_json, metrics against the serializer of prometheus-cpp with its samples at hand. All are the shortest of many short runs
// that take turns, so that whatever else the machine does, it does to all. And what memory many expositions take in one process.
//
//     views_bench    prints times and ratios, and fails if a bar is missed

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <limits>
#include <malloc.h>
#include <nlohmann/json.hpp>
#include <prometheus/metric_family.h>
#include <prometheus/text_serializer.h>
#include <string>
#include <vector>

#include "bars.h"
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

/** A way to write, and its shortest time. */
struct Way
{
    const char* name;
    std::function<std::size_t()> write;                /**< @return how much was written */
    double least = std::numeric_limits<double>::max(); /**< [us] */
};

void take_turns(std::vector<Way>& ways)
{
    for (int i = 0; i < runs; ++i)
        for (Way& way : ways) way.least = std::min(way.least, microseconds_of([&way] { written = way.write(); }));
    for (const Way& way : ways) std::printf("%-34s %8.1f us\n", way.name, way.least);
}

/** @return whether the other way takes at least so many times as long */
bool at_least(const char* what, const Way& own, const Way& other, double times)
{
    char text[200];
    std::snprintf(text, sizeof text, "%s: %s takes %.1f times as long (at least %g)", what, other.name, other.least / own.least, times);
    return bar(other.least >= times * own.least, text);
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

    std::vector<Way> json = {{"JSON", [&] { return views::json(snapshot).size(); }},
                             {"ordered_json", [&] { return built(values).dump().size(); }}};
    take_turns(json);

    const auto write = [&decoder](std::string& to)
    {
        views::write_metrics(to, {&decoder, 1}, views::MetricsFormat::openmetrics);
        return to.size();
    };
    const auto write_anew = [&write]
    {
        std::string anew;
        return write(anew);
    };
    std::vector<Way> metrics = {{"OpenMetrics", [&] { return write(text); }},
                                {"OpenMetrics, a new text each time", write_anew},
                                {"prometheus-cpp", [&] { return serializer.Serialize(families).size(); }}};
    take_turns(metrics);

    // Snapshots that differ, as those of a decoder do, and the heap when the first ten and when all are written.
    std::size_t after_ten = 0;
    std::size_t after_all = 0;
    for (int i = 0; i < 1000; ++i)
    {
        const records::Snapshot one = sources::sample("live-srt-1080i", 1'800'000'000'000'000'000 + i * 1'000'000'000LL);
        const records::Snapshot* const it = &one;
        std::string exposition;
        views::write_metrics(exposition, {&it, 1}, views::MetricsFormat::openmetrics);
        (i < 10 ? after_ten : after_all) = mallinfo2().uordblks;
    }

    bool is_met = at_least("JSON", json[0], json[1], 5);
    is_met &= at_least("OpenMetrics", metrics[0], metrics[2], 10);
    is_met &= at_least("OpenMetrics, a new text each time", metrics[1], metrics[2], 10);
    is_met &= bar(after_all <= after_ten, "1,000 snapshots to OpenMetrics: " + std::to_string(after_ten) +
                                              " bytes of heap in use after 10, " + std::to_string(after_all) + " after all (no more)");
    return is_met ? 0 : 1;
}
