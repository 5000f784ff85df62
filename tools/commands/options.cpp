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

/** The component that has a name, or a key as in JSON; NULL = none. */
const records::Component* find_component(const std::string& name)
{
    const auto by_key = std::ranges::find(records::components(), name, &records::Component::key);
    return by_key == records::components().end() ? records::find_component(name) : &*by_key;
}

} // namespace

Option add_format(Command& command, std::string& format, const std::vector<std::string>& formats)
{
    return command.value("--format", format, joined(formats)).one_of(formats).value_name("FORMAT").usually(format);
}

void add_level(Command& command, STATS_LEVEL& level)
{
    const auto set = [&level](const std::string& name) { level = name == "debug" ? STATS_LEVEL_DEBUG : STATS_LEVEL_DEFAULT; };
    command.taken("--level", set, "How much the reports show: default or debug")
        .one_of({"default", "debug"})
        .value_name("LEVEL")
        .usually("default");
}

void add_components(Command& command, std::bitset<records::component_count>& components)
{
    const auto set = [&components](const std::string& name) { components.set(find_component(name)->index); };
    const auto problem = [](const std::string& name)
    {
        if (find_component(name) != nullptr) return std::string();
        return "'" + name + "' is not known; allowed are " + joined(records::component_names());
    };
    command.each_taken("--component", set, "Print the report of this component only; may be repeated").check(problem).value_name("NAME");
    command.footer(component_help());
}

void add_moment(Command& command, const std::string& name, std::optional<sources::At>& at, const std::string& description)
{
    const auto problem = [](const std::string& value)
    {
        if (sources::parse_at(value)) return std::string();
        return "'" + value + "' is no moment; a moment is as 2022-06-06T16:06:55Z, seconds since the epoch, or mtime";
    };
    const auto take = [&at](const std::string& value) { at = sources::parse_at(value); };
    command.taken(name, take, description).check(problem).value_name("TIME");
}

void add_range(Command& command, sources::Range& range)
{
    const auto problem = [](const std::string& value)
    {
        const auto at = sources::parse_at(value);
        return at && at->moment ? std::string()
                                : "'" + value + "' is no moment; a moment is as 2022-06-06T16:06:55Z, or seconds since the epoch";
    };
    const auto add = [&](const char* name, std::optional<std::int64_t>& end, const char* description)
    {
        const auto take = [&end](const std::string& value) { end = sources::parse_at(value)->moment; };
        command.taken(name, take, description).check(problem).value_name("TIME");
    };
    add("--from", range.from, "Of a capture file, leave out what is before this moment");
    add("--to", range.to, "Of a capture file, leave out what is after this moment");
}

void add_at(Command& command, std::optional<sources::At>& at)
{
    add_moment(command, "--at", at, "Moment that the ages count to: RFC 3339, seconds since the epoch, or mtime of the file");
}

void add_fields(Command& command, std::vector<std::string>& names)
{
    command.values("--field", names, "Show these fields only, by their public names").value_name("NAME");
}

Option add_source(Command& command, sources::Source& source)
{
    add_directory(command, source.directory);
    return command.value("SOURCE", source.text,
                         "A live decoder by name or path, sample:SCENARIO, a capture file, a directory of record files, or a record file, "
                         "- for standard input; the only live decoder without one");
}

void add_directory(Command& command, std::string& directory)
{
    command.value("--directory", directory, "Where live decoders are")
        .value_name("DIR")
        .from_environment("DECSTATS_DIRECTORY")
        .usually(directory);
}

Option add_duration(Command& command, const std::string& name, std::chrono::nanoseconds& duration, std::chrono::nanoseconds least,
                    const std::string& description)
{
    const auto problem = [least](const std::string& value)
    {
        const auto read = sources::parse_duration(value);
        if (!read) return "'" + value + "' is no duration; a duration is as 500ms, 1.5s, 10m, 2h or 1d";
        return *read < least ? "'" + value + "' is too short" : std::string();
    };
    const auto take = [&duration](const std::string& value) { duration = *sources::parse_duration(value); };
    return command.taken(name, take, description).check(problem).value_name("TIME");
}

std::vector<dictionary::Found> named_fields(const std::vector<std::string>& names)
{
    std::vector<dictionary::Found> found;
    for (const std::string& name : names)
    {
        const auto field = dictionary::find(name);
        if (!field)
        {
            files::fail_input(unknown_text(name, "field", views::nearest_field_names(name)));
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

Option add_scenario(Command& command, std::string& scenario)
{
    std::vector<std::string> names;
    for (const sources::Scenario& one : sources::scenarios()) names.push_back(one.name);
    return command.value("SCENARIO", scenario, "Scenario of the sample").one_of(names);
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
