/**
 * @file sample.cpp
 * decstats sample: the raw records of a sample, as files.
 */
#include "sample.h"

#include <memory>

#include "commands.h"
#include "options.h"
#include "record_files.h"

namespace commands
{

namespace
{

struct Options
{
    std::string scenario;
    std::string directory;
};

} // namespace

void add_sample(Command& command, Invocation& /*invocation*/)
{
    const auto options = std::make_shared<Options>();
    add_scenario(command, options->scenario).required();
    command.value("DIR", options->directory, "Existing directory for the files, COMPONENT.rec each").required();
    command.run([options]
                { sources::write_record_files(sources::sample(options->scenario, sources::present_moment()), options->directory); });
}

} // namespace commands
