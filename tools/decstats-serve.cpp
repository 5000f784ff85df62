/**
 * @file decstats-serve.cpp
 * The program decstats-serve.
 */
#include "program.h"
#include "serve.h"

int main(int argc, char** argv)
{
    const auto run = [](int count, char** words)
    {
        if (const auto options = server::read_options(count, words)) server::serve(*options);
        files::close_output();
        return 0;
    };
    return files::run_program("decstats-serve", argc, argv, run);
}
