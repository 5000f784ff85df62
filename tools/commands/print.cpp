/**
 * @file print.cpp
 * decstats print: the report of a raw record.
 */
#include <memory>

#include "commands.h"
#include "options.h"
#include "record_files.h"
#include "reports.h"

namespace commands
{

namespace
{

struct Options
{
    std::string component;
    std::string file;
    std::optional<sources::At> at;
    STATS_LEVEL level = STATS_LEVEL_DEFAULT;
};

} // namespace

void add_print(Command& command, Invocation& invocation)
{
    const auto options = std::make_shared<Options>();
    command.value("COMPONENT", options->component, "Component of the record").one_of(records::component_names()).required();
    command.value("FILE", options->file, "File of the record, - for standard input").required();
    add_level(command, options->level);
    add_at(command, options->at);
    command.footer(component_help());
    command.run(
        [options, &invocation]
        {
            const records::Component& component = *records::find_component(options->component);
            const records::Snapshot snapshot = sources::record_file(&component, options->file, options->at);
            views::print_reports(snapshot, invocation.library, 1U << component.index, options->level);
        });
}

} // namespace commands
