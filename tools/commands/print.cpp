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

void add_print(CLI::App& app, const LibraryFile& library)
{
    const auto options = std::make_shared<Options>();
    CLI::App& print = add_command(app, "print", "Print the report of a raw record");
    print.add_option("COMPONENT", options->component, "Component of the record")
        ->check(one_of(records::component_names()))
        ->type_name("")
        ->required();
    print.add_option("FILE", options->file, "File of the record, - for standard input")->type_name("")->required();
    add_level(print, options->level);
    add_at(print, options->at);
    print.footer(component_help());
    print.callback(
        [options, &library]
        {
            const records::Component& component = *records::find_component(options->component);
            const records::Snapshot snapshot = sources::record_file(&component, options->file, options->at);
            views::print_reports(snapshot, library, 1U << component.index, options->level);
        });
}

} // namespace commands
