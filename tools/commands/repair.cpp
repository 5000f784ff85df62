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

void add_repair(Command& command, Invocation& /*invocation*/)
{
    const auto options = std::make_shared<Options>();
    command.value("FILE", options->file, "Capture file, which stays as it is").required();
    command.value("NEW", options->new_file, "The new file, which must not exist").required();
    command.run([options] { repair(*options); });
}

} // namespace commands
