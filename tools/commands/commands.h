/**
 * @file commands.h
 * The commands, one a file: each adds itself to the command line, with its options and with what it does.
 */
#ifndef COMMANDS_COMMANDS_H
#define COMMANDS_COMMANDS_H

#include <optional>
#include <string>

namespace CLI
{
class App;
}

namespace commands
{

/** The file that --library names, known when a command runs; nothing = the library that belongs to this tool. */
using LibraryFile = std::optional<std::string>;

/** The command whose exit status tells how a decoder is, not only how the command ended. */
inline constexpr const char* diagnose_name = "diagnose";

void add_capture(CLI::App& app);
void add_check(CLI::App& app);
void add_demo(CLI::App& app, const LibraryFile& library);
void add_describe(CLI::App& app);
void add_diff(CLI::App& app);
void add_history(CLI::App& app);
void add_list(CLI::App& app);
void add_print(CLI::App& app, const LibraryFile& library);
void add_repair(CLI::App& app);
void add_sample(CLI::App& app);
void add_serve(CLI::App& app, const LibraryFile& library);
void add_show(CLI::App& app, const LibraryFile& library);
void add_simulate(CLI::App& app);
void add_version(CLI::App& app, const LibraryFile& library);
void add_watch(CLI::App& app, const LibraryFile& library);

/** @param status the exit status, set where the command does not fail */
void add_diagnose(CLI::App& app, int& status);

} // namespace commands

#endif
