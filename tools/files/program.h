/**
 * @file program.h
 * The process of a command: its standard streams, its signals, and how it ends.
 */
#ifndef FILES_PROGRAM_H
#define FILES_PROGRAM_H

namespace files
{

/** Writes out what standard output still holds, and closes it. @throw Failure if it cannot be written */
void close_output();

/**
 * Runs a program.
 * @param name what its lines on standard error begin with
 * @param run  what it does; what it throws ends it with one line
 * @return the exit status
 */
int run_program(const char* name, int argc, char** argv, int (*run)(int argc, char** argv));

/** The name of the program that runs. */
const char* program_name();

} // namespace files

#endif
