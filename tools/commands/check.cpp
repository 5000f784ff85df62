/**
 * @file check.cpp
 * decstats check: whether a capture file is whole.
 */
#include <memory>

#include "capture_source.h"
#include "capture_writer.h"
#include "commands.h"
#include "failure.h"
#include "options.h"
#include "standard_output.h"
#include "time_text.h"

namespace commands
{

namespace
{

std::string place_text(const capture::Loss& loss)
{
    std::string text = sources::loss_text(loss);
    if (loss.after) text += ", after " + views::to_the_second(*loss.after);
    if (loss.before) text += ", before " + views::to_the_second(*loss.before);
    return text;
}

void check(const std::string& path)
{
    sources::Captured captured(path);
    std::uint64_t snapshots = 0;
    std::uint64_t damaged = 0;
    while (const auto event = captured.next_event())
    {
        if (std::holds_alternative<const records::Snapshot*>(*event)) ++snapshots;
        if (const auto* loss = std::get_if<capture::Loss>(&*event))
        {
            ++damaged;
            files::print(place_text(*loss) + "\n");
        }
    }
    if (captured.tail() != 0)
    {
        const bool is_growing = capture::is_being_written(path);
        files::print(std::to_string(captured.tail()) + " bytes at the end are no whole frame" +
                     (is_growing ? ", and the file is being written\n" : ": the capture was cut off\n"));
        damaged += is_growing ? 0 : 1;
    }
    files::print(std::to_string(snapshots) + (snapshots == 1 ? " snapshot" : " snapshots") + " can be read\n");
    if (damaged == 0) return;
    files::fail_input(files::shown(path) + ": damaged in " + std::to_string(damaged) + (damaged == 1 ? " place" : " places") +
                      "; 'decstats repair' writes a file of what can be read");
}

} // namespace

void add_check(Command& command, Invocation& /*invocation*/)
{
    const auto file = std::make_shared<std::string>();
    command.value("FILE", *file, "Capture file").required();
    command.run([file] { check(*file); });
}

} // namespace commands
