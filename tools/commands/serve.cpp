/**
 * @file serve.cpp
 * decstats serve: runs the program decstats-serve, which needs libraries that nothing else here does.
 */
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <unistd.h>
#include <vector>

#include "commands.h"
#include "failure.h"
#include "options.h"

namespace commands
{

namespace
{

constexpr const char* program = "decstats-serve";

/** The program is installed beside this one. */
[[noreturn]] void execute(std::vector<std::string> words)
{
    std::error_code ignored;
    const std::filesystem::path path = std::filesystem::read_symlink("/proc/self/exe", ignored).replace_filename(program);
    words.insert(words.begin(), program);
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (std::string& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    execv(path.c_str(), arguments.data());
    const int number = errno;
    files::fail_input(path.string() + ": " + std::strerror(number) +
                      (number == ENOENT ? "; it is in a package of its own, decstats-serve" : ""));
}

} // namespace

void add_serve(Command& command, Invocation& invocation)
{
    command.run_with_words(
        [&invocation](std::vector<std::string> words)
        {
            if (invocation.library) words.insert(words.begin(), "--library=" + *invocation.library);
            execute(std::move(words));
        });
}

} // namespace commands
