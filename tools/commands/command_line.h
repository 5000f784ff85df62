/**
 * @file command_line.h
 * What people type.
 */
#ifndef COMMANDS_COMMAND_LINE_H
#define COMMANDS_COMMAND_LINE_H

namespace commands
{

/**
 * Runs the command that a command line asks for. Its output may still be in the buffer of standard output.
 * @throw Failure if the command line is wrong or the command fails
 */
void run(int argc, char** argv);

} // namespace commands

#endif
