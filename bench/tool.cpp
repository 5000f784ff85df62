#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "bench.h"

static void RunTool(benchmark::State& state)
{
    const char* arguments[] = {"decstats", "demo", "--level", "debug", nullptr};
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    for (auto _ : state)
    {
        pid_t process = 0;
        int status = 0;
        if (posix_spawn(&process, DECSTATS, &actions, nullptr, const_cast<char**>(arguments), environ) != 0 ||
            waitpid(process, &status, 0) != process || status != 0)
            Fail("decstats did not succeed");
    }
    posix_spawn_file_actions_destroy(&actions);
}

void RegisterTool()
{
    benchmark::RegisterBenchmark("tool/decstats", RunTool)->UseRealTime();
}
