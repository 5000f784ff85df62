/**
 * @file diff.cpp
 * decstats diff: what has changed between two moments.
 */
#include <memory>

#include "commands.h"
#include "difference.h"
#include "failure.h"
#include "json.h"
#include "options.h"
#include "standard_output.h"

namespace commands
{

namespace
{

struct Options
{
    std::string old_source;
    std::string new_source;
    std::string directory = std::string(published::default_directory);
    std::optional<sources::At> from;
    std::optional<sources::At> to;
    std::string format = "text";
};

void diff(const Options& options)
{
    if (options.new_source.empty() && !options.from && !options.to)
        files::fail_input("which NEW? A SOURCE, or --from and --to for two moments of OLD");
    const std::string& new_source = options.new_source.empty() ? options.old_source : options.new_source;
    const auto old = std::make_unique<records::Snapshot>(sources::take({options.old_source, options.directory}, options.from));
    const auto now = std::make_unique<records::Snapshot>(sources::take({new_source, options.directory}, options.to));
    const views::Comparison comparison(*old, *now);
    if (options.format == "text") return files::print(views::difference_lines(comparison));
    const std::string line = views::difference_json(comparison);
    files::print((options.format == "json" ? views::indented(line) : line) + "\n");
}

} // namespace

void add_diff(Command& command, Invocation& /*invocation*/)
{
    const auto options = std::make_shared<Options>();
    command.value("OLD", options->old_source, "A SOURCE, as of 'decstats show'").required();
    command.value("NEW", options->new_source, "The SOURCE that is later; OLD at another moment without it");
    add_moment(command, "--from", options->from, "Moment of OLD: RFC 3339, seconds since the epoch, or mtime of a record's file");
    add_moment(command, "--to", options->to, "Moment of NEW");
    add_directory(command, options->directory);
    add_format(command, options->format, {"text", "json", "ndjson"});
    command.run([options] { diff(*options); });
}

} // namespace commands
