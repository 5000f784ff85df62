#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <limits>

#include "bench.h"
#include "samples_publish.h"

namespace
{

constexpr int runs = 500;

/** A decoder that decstats finds by its name, for as long as this is there. */
class LiveDecoder
{
public:
    LiveDecoder()
    {
        if (mkdtemp(directory_) == nullptr) fail("no directory in /dev/shm");
        STATS_PUBLISH_ERROR error;
        publisher_ = STATS_PublishOpen("decoder-1", directory_, nullptr, 0, &error);
        if (publisher_ == nullptr) fail(error.szText);
        static SAMPLES_RECORDS records;
        samples_find("live-srt-1080i")->pFill(&records, time(nullptr));
        samples_publish(publisher_, &records);
    }
    ~LiveDecoder()
    {
        STATS_PublishClose(publisher_);
        rmdir(directory_);
    }
    LiveDecoder(const LiveDecoder&) = delete;
    LiveDecoder& operator=(const LiveDecoder&) = delete;

    const char* directory() const { return directory_; }
    void live() { STATS_PublishHeartbeat(publisher_); }

private:
    char directory_[32] = "/dev/shm/stats_bench.XXXXXX";
    STATS_PUBLISHER* publisher_;
};

/** A command, and the shortest time from its start to its exit. */
struct Command
{
    const char* name;
    std::vector<const char*> words;
    long long least = std::numeric_limits<long long>::max(); /**< [ns] */
};

long long run_time(const std::vector<const char*>& words)
{
    std::vector<const char*> arguments = words;
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t process = 0;
    int status = 0;
    const auto start = std::chrono::steady_clock::now();
    if (posix_spawn(&process, words[0], &actions, nullptr, const_cast<char**>(arguments.data()), environ) != 0 ||
        waitpid(process, &status, 0) != process || status != 0)
        fail(std::string(words[0]) + " did not succeed");
    const auto end = std::chrono::steady_clock::now();
    posix_spawn_file_actions_destroy(&actions);
    return std::chrono::nanoseconds(end - start).count();
}

} // namespace

void print_start_up_times()
{
    LiveDecoder decoder;
    Command commands[] = {{"puts", {PUTS}},
                          {"decstats", {DECSTATS, "--version"}},
                          {"version", {DECSTATS, "version"}},
                          {"show", {DECSTATS, "show", "decoder-1", "--directory", decoder.directory()}}};
    for (int i = 0; i < runs; i++)
        for (Command& command : commands)
        {
            decoder.live();
            command.least = std::min(command.least, run_time(command.words));
        }
    for (const Command& command : commands) printf("start-up/%s %lld\n", command.name, command.least);
}
