#include "options.h"

#include <algorithm>
#include <utility>

#include "duration.h"
#include "failure.h"
#include "field_search.h"
#include "sample.h"

namespace commands
{

namespace
{

/** The name of the component that a name or a key, as in JSON, means. What is neither stays as it is. */
std::string component_name(const std::string& name)
{
    const auto component = std::ranges::find(records::components(), name, &records::Component::key);
    return component == records::components().end() ? name : std::string(component->name);
}

} // namespace

CLI::App& add_command(CLI::App& app, const std::string& name, const std::string& description)
{
    CLI::App* const command = app.add_subcommand(name, description);
    command->set_version_flag("--version", version_line, "Print the version of decstats and exit");
    return *command;
}

CLI::Validator one_of(std::vector<std::string> allowed)
{
    const auto check = [allowed = std::move(allowed)](const std::string& value)
    {
        if (std::ranges::find(allowed, value) != allowed.end()) return std::string();
        return "'" + value + "' is not known; allowed are " + joined(allowed);
    };
    return {check, ""};
}

void add_level(CLI::App& command, STATS_LEVEL& level)
{
    const auto set = [&level](const std::string& name) { level = name == "debug" ? STATS_LEVEL_DEBUG : STATS_LEVEL_DEFAULT; };
    command.add_option_function<std::string>("--level", set, "How much the reports show: default or debug")
        ->check(one_of({"default", "debug"}))
        ->type_name("LEVEL")
        ->default_str("default");
}

void add_components(CLI::App& command, std::bitset<records::component_count>& components)
{
    const auto set = [&components](const std::vector<std::string>& names)
    {
        for (const std::string& name : names) components.set(records::find_component(name)->index);
    };
    const auto by_name = [](std::string& name)
    {
        name = component_name(name);
        return std::string();
    };
    command.add_option_function<std::vector<std::string>>("--component", set, "Print the report of this component only; may be repeated")
        ->transform({by_name, ""})
        ->check(one_of(records::component_names()))
        ->type_name("NAME")
        ->allow_extra_args(false);
    command.footer(component_help());
}

void add_moment(CLI::App& command, const std::string& name, std::optional<sources::At>& at, const std::string& description)
{
    const auto check = [](const std::string& value)
    {
        if (sources::parse_at(value)) return std::string();
        return "'" + value + "' is no moment; a moment is as 2022-06-06T16:06:55Z, seconds since the epoch, or mtime";
    };
    command
        .add_option_function<std::string>(
            name, [&at](const std::string& value) { at = sources::parse_at(value); }, description)
        ->check({check, ""})
        ->type_name("TIME");
}

void add_at(CLI::App& command, std::optional<sources::At>& at)
{
    add_moment(command, "--at", at, "Moment that the ages count to: RFC 3339, seconds since the epoch, or mtime of the file");
}

void add_fields(CLI::App& command, std::vector<std::string>& names)
{
    command.add_option("--field", names, "Show these fields only, by their public names")->type_name("NAME");
}

CLI::Option* add_source(CLI::App& command, sources::Source& source)
{
    add_directory(command, source.directory);
    return command
        .add_option("SOURCE", source.text,
                    "A live decoder by name or path, sample:SCENARIO, a capture file, a directory of record files, or a record file, - for "
                    "standard input; "
                    "the only live decoder without one")
        ->type_name("");
}

void add_directory(CLI::App& command, std::string& directory)
{
    command.add_option("--directory", directory, "Where live decoders are")
        ->type_name("DIR")
        ->envname("DECSTATS_DIRECTORY")
        ->capture_default_str();
}

CLI::Option* add_duration(CLI::App& command, const std::string& name, std::chrono::nanoseconds& duration, std::chrono::nanoseconds least,
                          const std::string& description)
{
    const auto check = [least](const std::string& value)
    {
        const auto read = sources::parse_duration(value);
        if (!read) return "'" + value + "' is no duration; a duration is as 500ms, 1.5s, 10m, 2h or 1d";
        return *read < least ? "'" + value + "' is too short" : std::string();
    };
    return command
        .add_option_function<std::string>(
            name, [&duration](const std::string& value) { duration = *sources::parse_duration(value); }, description)
        ->check({check, ""})
        ->type_name("TIME");
}

std::vector<dictionary::Found> named_fields(const std::vector<std::string>& names)
{
    std::vector<dictionary::Found> found;
    for (const std::string& name : names)
    {
        const auto field = dictionary::find(name);
        if (!field)
        {
            throw files::Failure(files::ExitStatus::input_failed, unknown_text(name, "field", views::nearest_field_names(name)));
        }
        found.push_back(*field);
    }
    return found;
}

std::string unknown_text(const std::string& name, const std::string& kinds, const std::vector<std::string>& nearest)
{
    if (const dictionary::Array* const array = views::array_without_element(name))
        return "'" + name + "': the elements of " + std::string(array->name) + " go from 0 to " + std::to_string(array->count - 1);
    const std::string text = "'" + name + "' is no " + kinds + "; ";
    if (nearest.empty()) return text + "'decstats describe' lists all";
    return text + (nearest.size() == 1 ? "near it is " : "near it are ") + joined(nearest);
}

CLI::Option* add_scenario(CLI::App& command, std::string& scenario)
{
    std::vector<std::string> names;
    for (const sources::Scenario& one : sources::scenarios()) names.push_back(one.name);
    return command.add_option("SCENARIO", scenario, "Scenario of the sample")->check(one_of(names))->type_name("");
}

std::string component_help()
{
    std::string help = "Components:";
    for (const records::Component& component : records::components())
        help += "\n  " + std::string(component.name) + std::string(16 - component.name.size(), ' ') + std::string(component.title);
    return help;
}

std::string joined(const std::vector<std::string>& names)
{
    std::string text;
    for (const std::string& name : names) text += (text.empty() ? "" : ", ") + name;
    return text;
}

} // namespace commands
