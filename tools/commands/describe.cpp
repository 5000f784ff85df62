/**
 * @file describe.cpp
 * decstats describe: what the fields of the records mean.
 */
#include <algorithm>
#include <memory>

#include "commands.h"
#include "description.h"
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
        {
            const std::vector<std::string> nearest = views::nearest_names(name);
            throw files::Failure(files::ExitStatus::input_failed,
                                 "'" + name + "' is no field, C member, metric, report line or component" +
                                     (nearest.empty() ? "; 'decstats describe' lists all" : "; near it are " + joined(nearest)));
        }
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

void describe(const Options& options)
{
    if (options.schema) return files::print(views::indented(views::json_schema()) + "\n");
    const std::vector<const Field*> fields = described_fields(options.names);
    if (options.format == "json") return files::print(views::indented(views::descriptions_json(fields)) + "\n");
    for (const std::string& name : options.names) print_entries(name);
    for (const Field* field : fields) files::print((field == fields.front() ? "" : "\n") + views::description(*field));
}

} // namespace

void add_describe(CLI::App& app)
{
    const auto options = std::make_shared<Options>();
    CLI::App& command = add_command(app, "describe", "Print what fields mean");
    CLI::Option* const names =
        command
            .add_option("WHAT", options->names,
                        "Public names, C members, metrics, labels of report lines or components; all fields without one")
            ->type_name("");
    CLI::Option* const format = command.add_option("--format", options->format, "text or json")
                                    ->check(one_of({"text", "json"}))
                                    ->type_name("FORMAT")
                                    ->capture_default_str();
    command.add_flag("--schema", options->schema, "Print the JSON Schema of what 'decstats show' prints as JSON")
        ->excludes(names)
        ->excludes(format);
    command.callback([options] { describe(*options); });
}

} // namespace commands
