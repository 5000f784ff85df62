/**
 * @file show.cpp
 * decstats show: the records of a decoder, in every form.
 */
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <memory>

#include "capture_source.h"
#include "commands.h"
#include "failure.h"
#include "field_lines.h"
#include "json.h"
#include "metrics.h"
#include "options.h"
#include "output_set.h"
#include "reports.h"
#include "source.h"
#include "standard_output.h"

namespace commands
{

namespace
{

struct Options
{
    sources::Source source;
    std::bitset<records::component_count> components;
    STATS_LEVEL level = STATS_LEVEL_DEFAULT;
    std::string format; // empty = none was given
    bool raw = false;
    std::optional<sources::At> at;
    sources::Range range;
    std::vector<std::string> fields;
    std::string decoder;
    std::string output;
};

/** The format without --format. */
std::string usual_format(const Options& options)
{
    return options.raw ? "json" : "text";
}

/** Refuses options that have no meaning together. */
void check(const Options& options)
{
    const bool is_json = options.format == "json" || options.format == "ndjson";
    if (options.raw && !is_json) files::fail_input("--raw is for JSON: --format json or ndjson");
    if (options.raw && !options.fields.empty()) files::fail_input("--raw shows whole records, so there is no --field with it");
    if (!options.fields.empty() && !is_json && options.format != "text")
        files::fail_input("--field is for text and JSON: --format text, json or ndjson");
    if (!options.output.empty() && options.format == "text" && options.fields.empty())
        files::fail_input("--output is for what programs read: --format json, ndjson, openmetrics or prometheus");
    if (options.range.is_given())
    {
        if (options.at) files::fail_input("--at is one moment, --from and --to are a range: not both");
        if (options.format != "ndjson") files::fail_input("a range is many snapshots: --from and --to are for --format ndjson");
        if (!options.output.empty())
            files::fail_input("--output replaces a file whole, so there is no range in it: not with --from and --to");
    }
    if (!options.decoder.empty() && options.format == "text")
        files::fail_input("--decoder is for what has the name in it: --format json, ndjson, openmetrics or prometheus");
}

/** The components that the options ask for; none = all. */
std::bitset<records::component_count> wanted_components(const Options& options, const std::vector<dictionary::Found>& fields)
{
    std::bitset<records::component_count> wanted;
    for (const dictionary::Found& found : fields)
    {
        if (options.components.any() && !options.components[found.field->component])
            files::fail_input("--field " + std::string(found.field->full_name) + " is of no component that --component names");
        wanted.set(found.field->component);
    }
    return fields.empty() ? options.components : wanted;
}

/** Leaves the wanted components in a Snapshot. Tells which records a directory does not have, unless they are not wanted. */
void restrict(records::Snapshot& snapshot, const Options& options, std::bitset<records::component_count> wanted)
{
    std::string missing;
    for (const records::Component& component : records::components())
    {
        if (snapshot.has(component)) continue;
        if (wanted[component.index])
            files::fail_input(files::shown(options.source.text) + ": no " + std::string(component.name) + " record");
        missing += (missing.empty() ? "" : ", ") + std::string(component.name);
    }
    if (wanted.any())
        snapshot.present &= wanted;
    else if (!missing.empty() && std::filesystem::is_directory(options.source.text))
        std::fprintf(stderr, "decstats: %s: no record of %s\n", files::printable(options.source.text).c_str(), missing.c_str());
}

std::string json(const records::Snapshot& snapshot, const Options& options, const std::vector<dictionary::Found>& fields)
{
    views::Selection selection;
    for (const dictionary::Found& found : fields) selection.add(found);
    const std::string line = options.raw ? views::raw_json(snapshot) : views::json(snapshot, fields.empty() ? nullptr : &selection);
    return (options.format == "json" ? views::indented(line) : line) + "\n";
}

std::string rendering(const records::Snapshot& snapshot, const Options& options, const std::vector<dictionary::Found>& fields)
{
    if (options.format == "json" || options.format == "ndjson") return json(snapshot, options, fields);
    if (options.format == "text") return views::field_lines(snapshot, fields);
    const records::Snapshot* const decoder = &snapshot;
    const bool is_openmetrics = options.format == "openmetrics";
    std::string text;
    views::write_metrics(text, {&decoder, 1}, is_openmetrics ? views::MetricsFormat::openmetrics : views::MetricsFormat::prometheus);
    return text;
}

/** Gives a Snapshot the name that the options have for its decoder. */
void name(records::Snapshot& snapshot, const Options& options)
{
    if (options.decoder.empty()) return;
    if (!snapshot.decoder.empty())
        files::fail_input(files::shown(options.source.text) + ": its decoder has the name " + snapshot.decoder +
                          "; --decoder is for what has none");
    snapshot.decoder = options.decoder;
}

/** Writes a file that its readers see whole: the old one, then the new one. */
void write_file(const std::string& path, const std::string& content)
{
    const std::filesystem::path file(path);
    const files::LockedDirectory directory(file.has_parent_path() ? file.parent_path().string() : ".");
    if (!file.has_filename()) files::fail_input(files::shown(path) + ": a directory, but --output names a file");
    files::write_set(directory, {{file.filename().string(), std::as_bytes(std::span(content))}});
}

/** A line of JSON for each Snapshot. What a Snapshot lacks its line lacks, as that of a decoder that has just begun. */
void show_range(const Options& options, const std::vector<dictionary::Found>& fields, std::bitset<records::component_count> wanted)
{
    if (!sources::is_captured(options.source)) files::fail_input("--from and --to are for a SOURCE that is a capture file");
    sources::Captured captured(options.source.text, options.range);
    bool is_empty = true;
    while (std::optional<records::Snapshot> snapshot = captured.next())
    {
        is_empty = false;
        if (wanted.any()) snapshot->present &= wanted;
        name(*snapshot, options);
        files::print(json(*snapshot, options, fields));
    }
    if (is_empty) files::fail_input(files::shown(options.source.text) + ": holds no snapshot of that range");
}

void show(Options& options, const LibraryFile& library)
{
    if (options.format.empty()) options.format = usual_format(options);
    check(options);
    const std::vector<dictionary::Found> fields = named_fields(options.fields);
    const std::bitset<records::component_count> wanted = wanted_components(options, fields);
    if (options.range.is_given()) return show_range(options, fields, wanted);
    // Reports tell how long ago something happened, which people count from now; programs are told when the records were as they are.
    records::Snapshot snapshot =
        sources::take(options.source, options.at, {.components = wanted, .as_last_updated = options.format != "text"});
    restrict(snapshot, options, wanted);
    name(snapshot, options);
    if (options.format == "text" && fields.empty()) return views::print_reports(snapshot, library, options.components, options.level);
    const std::string text = rendering(snapshot, options, fields);
    if (options.output.empty())
        files::print(text);
    else
        write_file(options.output, text);
}

} // namespace

void add_show(Command& command, Invocation& invocation)
{
    const auto options = std::make_shared<Options>();
    add_source(command, options->source);
    add_components(command, options->components);
    add_level(command, options->level);
    add_format(command, options->format, {"text", "json", "ndjson", "openmetrics", "prometheus"}).usually(usual_format(*options));
    command.flag("--raw", options->raw, "JSON of all bytes as they stand in the records, nothing interpreted");
    add_at(command, options->at);
    add_range(command, options->range);
    add_fields(command, options->fields);
    const auto check_decoder = [](const std::string& value)
    { return published::is_name(value) ? std::string() : "'" + value + "' is no name of a decoder"; };
    command.value("--decoder", options->decoder, "Name of the decoder, where the source has none, for JSON and metrics")
        .check(check_decoder)
        .value_name("NAME");
    const auto check_output = [](const std::string& value) { return value.empty() ? std::string("'' is no file") : std::string(); };
    command.value("--output", options->output, "Write this file, whole at once, instead of standard output")
        .check(check_output)
        .value_name("FILE");
    command.run([options, &invocation] { show(*options, invocation.library); });
}

} // namespace commands
