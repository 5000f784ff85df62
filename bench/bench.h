// What stats_bench measures. A name is a path whose last part tells what is compared: live-srt-1080i/debug/tdemux/floor.
#ifndef BENCH_H
#define BENCH_H

#include <functional>
#include <iosfwd>
#include <string>
#include <vector>

struct Variant
{
    std::string name;
    std::function<void()> run;
};

/** Prints a message and exits. */
[[noreturn]] void fail(const std::string& message);

/** Each report, and all eight, as the library prints them and in the other ways. Fails unless all ways give the same bytes. */
std::vector<Variant> report_variants();

/** The file stream beside stdout: on the same descriptor and with a buffer of the same size. */
std::ostream& stdout_stream();

/** Empties every buffer on the way to file descriptor 1. */
void flush_all();

/** Registers all reports printed by several threads. */
void register_threads();

/** Prints how long commands of the tool and a program that calls puts take from start to exit: the minima of 500 runs of each, in turn. */
void print_start_up_times();

#endif
