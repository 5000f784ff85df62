// What stats_bench measures. A name is a path whose last part tells what is compared: live-srt-1080i/debug/tdemux/floor.
#ifndef BENCH_H
#define BENCH_H

#include <functional>
#include <string>
#include <vector>

struct Variant
{
    std::string name;
    std::function<void()> run;
};

/** Prints a message and exits. */
[[noreturn]] void Fail(const std::string& message);

/** Each report, and all eight, as the library prints them and in the other ways. Fails unless all ways give the same bytes. */
std::vector<Variant> ReportVariants();

/** Empties every buffer on the way to file descriptor 1. */
void FlushAll();

/** Some services and snprintf in their place. Fails unless both give the same texts. */
std::vector<Variant> ServiceVariants();

/** Registers all reports printed by several threads. */
void RegisterThreads();

/** Registers the command decstats, from start to exit. */
void RegisterTool();

#endif
