/**
 * @file repair.cpp
 * decstats repair: a capture file without its damage.
 */
#include "repair.h"

#include <memory>

#include "capture_source.h"
#include "commands.h"
#include "options.h"
#include "standard_output.h"

namespace commands
{

namespace
{

struct Options
{
    std::string file;
    std::string new_file;
};

void repair(const Options& options)
try
{
    const capture::Repair repair = capture::repair(options.file, options.new_file);
    files::print(std::to_string(repair.snapshots) + (repair.snapshots == 1 ? " snapshot" : " snapshots") + " kept, " +
                 std::to_string(repair.bytes) + (repair.bytes == 1 ? " byte" : " bytes") + " left out\n");
}
catch (const capture::Error& error)
{
    throw sources::failure_of(error);
}

} // namespace

void add_repair(CLI::App& app)
{
    const auto options = std::make_shared<Options>();
    CLI::App& command = add_command(app, "repair", "Write a new capture file of all that can be read of a damaged one");
    command.add_option("FILE", options->file, "Capture file, which stays as it is")->type_name("")->required();
    command.add_option("NEW", options->new_file, "The new file, which must not exist")->type_name("")->required();
    command.callback([options] { repair(*options); });
}

} // namespace commands
