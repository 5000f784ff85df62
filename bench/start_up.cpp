#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>

#include "bench.h"

static long long run_time(const char* program, const char* argument)
{
    const char* arguments[] = {program, argument, nullptr};
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t process = 0;
    int status = 0;
    const auto start = std::chrono::steady_clock::now();
    if (posix_spawn(&process, program, &actions, nullptr, const_cast<char**>(arguments), environ) != 0 ||
        waitpid(process, &status, 0) != process || status != 0)
        fail(std::string(program) + " did not succeed");
    const auto end = std::chrono::steady_clock::now();
    posix_spawn_file_actions_destroy(&actions);
    return std::chrono::nanoseconds(end - start).count();
}

void print_start_up_times()
{
    long long tool = run_time(DECSTATS, "--version");
    long long puts_program = run_time(PUTS, nullptr);
    for (int i = 0; i < 500; i++)
    {
        tool = std::min(tool, run_time(DECSTATS, "--version"));
        puts_program = std::min(puts_program, run_time(PUTS, nullptr));
    }
    printf("start-up/decstats %lld\nstart-up/puts %lld\n", tool, puts_program);
}
