/**
 * @file render_snapshots.cpp
 * Renders many Snapshots in one process, for the tests that look at the outputs from outside.
 *
 *     render_snapshots json|raw|openmetrics|prometheus
 *
 * Standard input is Snapshots one after the other, each the bytes of its eight records in the order of the components.
 * Standard output has for each the size of its rendering, eight bytes little-endian, and the rendering.
 */
#include <array>
#include <clocale>
#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "json.h"
#include "metrics.h"
#include "snapshot.h"

namespace
{

std::string rendering(std::string_view view, const records::Snapshot& snapshot)
{
    if (view == "json") return views::json(snapshot);
    if (view == "raw") return views::raw_json(snapshot);
    const records::Snapshot* const decoder = &snapshot;
    static std::string text;
    const bool is_openmetrics = view == "openmetrics";
    if (is_openmetrics || view == "prometheus")
    {
        views::write_metrics(text, {&decoder, 1}, is_openmetrics ? views::MetricsFormat::openmetrics : views::MetricsFormat::prometheus);
        return text;
    }
    std::fprintf(stderr, "render_snapshots: json, raw, openmetrics or prometheus?\n");
    std::exit(2);
}

/** Reads the next Snapshot. @return whether there was one */
bool read(records::Snapshot& snapshot)
{
    for (const records::Component& component : records::components())
    {
        std::vector<std::byte> bytes(component.record_size);
        if (std::fread(bytes.data(), bytes.size(), 1, stdin) != 1) return false;
        snapshot.put(component, bytes);
    }
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    std::setlocale(LC_NUMERIC, ""); // system error texts follow LC_MESSAGES, which the tool leaves at "C"
    records::Snapshot snapshot;
    snapshot.decoder = "tested \"decoder\" \\ \xFF";
    snapshot.instance = {.id = {0xAB, 0xCD}, .started_at = 1'655'208'840'000'000'001};
    snapshot.is_up = true;
    snapshot.taken_at = 1'655'208'899'123'456'789;
    while (read(snapshot))
    {
        const std::string text = rendering(argc > 1 ? argv[1] : "", snapshot);
        std::array<unsigned char, 8> size;
        for (std::size_t i = 0; i < size.size(); ++i) size[i] = static_cast<unsigned char>(text.size() >> (8 * i));
        std::fwrite(size.data(), size.size(), 1, stdout);
        std::fwrite(text.data(), text.size(), 1, stdout);
    }
    return std::fflush(stdout) == 0 ? 0 : 1;
}
