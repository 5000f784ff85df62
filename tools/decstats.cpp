/**
 * @file decstats.cpp
 * The program decstats.
 */
#include "command_line.h"
#include "program.h"

int main(int argc, char** argv)
{
    return files::run_program("decstats", argc, argv,
                              [](int count, char** words) { return commands::run(count, words, files::close_output); });
}
