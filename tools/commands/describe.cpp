/**
 * @file describe.cpp
 * decstats describe: what the fields of the records mean.
 */
#include <algorithm>
#include <cctype>
#include <memory>

#include "commands.h"
#include "description.h"
#include "diagnosis_metrics.h"
#include "failure.h"
#include "field_search.h"
#include "json.h"
#include "options.h"
#include "standard_output.h"

namespace commands
{

namespace
{

using dictionary::Field;

struct Options
{
    std::vector<std::string> names;
    std::string format = "text";
    bool schema = false;
};

/** The fields that the names stand for, each once, or all of them without a name. */
std::vector<const Field*> described_fields(const std::vector<std::string>& names)
{
    std::vector<const Field*> all;
    if (names.empty())
        for (const Field& field : dictionary::fields()) all.push_back(&field);
    for (const std::string& name : names)
    {
        const std::vector<const Field*> found = views::find_fields(name);
        if (found.empty())
            files::fail_input(unknown_text(name, "field, C member, metric, report line or component", views::nearest_names(name)));
        for (const Field* field : found)
            if (std::ranges::find(all, field) == all.end()) all.push_back(field);
    }
    return all;
}

/** What decstats-reports(5) says about the lines that a name means, in the reports of the fields that it means. */
void print_entries(const std::string& name)
{
    const std::vector<const Field*> fields = views::find_fields(name);
    const std::vector<std::string_view> labels = views::find_labels(name, fields);
    for (const views::ManualEntry& entry : views::manual_entries())
    {
        const auto shows = [&](const Field* field)
        {
            return &dictionary::component_of(*field) == entry.component &&
                   std::ranges::find(field->lines, entry.label, &dictionary::ReportLine::label) != field->lines.end();
        };
        if (std::ranges::find(labels, entry.label) != labels.end() && std::ranges::any_of(fields, shows))
            files::print(views::description(entry) + "\n");
    }
}

/** What there is to tell of something that is no field: a metric of the decoder itself, or advice. @return empty = it is none of these */
std::string other_description(const std::string& name)
{
    const auto is_called = [&name](std::string_view other)
    {
        const auto is_same = [](unsigned char a, unsigned char b) { return std::tolower(a) == std::tolower(b); };
        return std::ranges::equal(name, other, is_same);
    };
    for (const views::DecoderFamily& family : views::presence_families)
        if (is_called(family.name)) return views::description(family);
    for (const views::DecoderFamily& family : diagnosis::metric_families)
        if (is_called(family.name)) return views::description(family);
    for (const views::ManualEntry& entry : views::manual_entries())
        if (entry.component == nullptr && is_called(entry.label)) return views::description(entry);
    return {};
}

void describe(const Options& options)
{
    if (options.schema) return files::print(views::indented(views::json_schema()) + "\n");
    std::vector<std::string> names;
    std::string others;
    for (const std::string& word : options.names)
    {
        const std::string name(views::named_in(word));
        const std::string other = other_description(name);
        const bool is_of_fields = other.empty() || !views::find_fields(name).empty();
        if (is_of_fields) names.push_back(name);
        if (!is_of_fields && options.format == "json") files::fail_input("'" + name + "' is no field, and --format json has fields only");
        if (!other.empty()) others += (others.empty() ? "" : "\n") + other;
    }
    std::vector<const Field*> fields;
    if (others.empty() || !names.empty()) fields = described_fields(names);
    if (options.format == "json") return files::print(views::indented(views::descriptions_json(fields)) + "\n");
    files::print(others + (others.empty() || fields.empty() ? "" : "\n"));
    for (const std::string& name : names) print_entries(name);
    for (const Field* field : fields) files::print((field == fields.front() ? "" : "\n") + views::description(*field));
}

} // namespace

void add_describe(Command& command, Invocation& /*invocation*/)
{
    const auto options = std::make_shared<Options>();
    const Option names = command.values("WHAT", options->names,
                                        "Public names, C members, metrics, labels of report lines or components; all fields without one");
    const Option format = add_format(command, options->format, {"text", "json"});
    command.flag("--schema", options->schema, "Print the JSON Schema of what 'decstats show' prints as JSON")
        .excludes(names)
        .excludes(format);
    command.run([options] { describe(*options); });
}

} // namespace commands
