/**
 * @file command_line.h
 * What people type.
 */
#ifndef COMMANDS_COMMAND_LINE_H
#define COMMANDS_COMMAND_LINE_H

namespace commands
{

/**
 * Runs the command that a command line asks for.
 * @param close_output writes out what standard output still holds, or throws a Failure
 * @return the exit status
 * @throw Failure if the command line is wrong or the command fails
 */
int run(int argc, char** argv, void (*close_output)());

} // namespace commands

#endif
