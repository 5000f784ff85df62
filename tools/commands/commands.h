/**
 * @file commands.h
 * The commands, one a file: each adds its options and what it does to its place on the command line.
 */
#ifndef COMMANDS_COMMANDS_H
#define COMMANDS_COMMANDS_H

#include <optional>
#include <string>

#include "command.h"

namespace commands
{

/** The file that --library names; nothing = the library that belongs to this tool. */
using LibraryFile = std::optional<std::string>;

/** What the commands share of one run of the tool. */
struct Invocation
{
    LibraryFile library; /**< known when a command runs */
    int status = 0;      /**< the exit status, where nothing fails */
};

void add_capture(Command& command, Invocation& invocation);
void add_check(Command& command, Invocation& invocation);
void add_demo(Command& command, Invocation& invocation);
void add_describe(Command& command, Invocation& invocation);
void add_diagnose(Command& command, Invocation& invocation);
void add_diff(Command& command, Invocation& invocation);
void add_history(Command& command, Invocation& invocation);
void add_list(Command& command, Invocation& invocation);
void add_print(Command& command, Invocation& invocation);
void add_repair(Command& command, Invocation& invocation);
void add_sample(Command& command, Invocation& invocation);
void add_serve(Command& command, Invocation& invocation);
void add_show(Command& command, Invocation& invocation);
void add_simulate(Command& command, Invocation& invocation);
void add_version(Command& command, Invocation& invocation);
void add_watch(Command& command, Invocation& invocation);

} // namespace commands

#endif
