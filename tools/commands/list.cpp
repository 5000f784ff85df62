/**
 * @file list.cpp
 * decstats list: the live decoders.
 */
#include "list.h"

#include <memory>

#include "commands.h"
#include "decoder_list.h"
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
    std::string directory = std::string(published::default_directory);
    std::string format = "text";
};

void list(const Options& options)
{
    const published::Listing listing = published::list(options.directory);
    if (listing.problem) files::fail_input(listing.problem->text);
    const std::int64_t now = sources::present_moment();
    if (options.format == "json") return files::print(views::indented(views::decoders_json(listing, options.directory, now)) + "\n");
    if (listing.decoders.empty()) files::warn("no decoder is published in " + files::shown(options.directory));
    files::print(views::decoder_lines(listing, now));
}

} // namespace

void add_list(Command& command, Invocation& /*invocation*/)
{
    const auto options = std::make_shared<Options>();
    add_directory(command, options->directory);
    add_format(command, options->format, {"text", "json"});
    command.run([options] { list(*options); });
}

} // namespace commands
