// What a day of snapshots takes: the living sample live-srt-1080i, one snapshot a second, seed 1, into a capture file, beside other
// ways to keep the same. And what it costs to append one, and to show any moment of that day.
//
//     capture_bench [DIRECTORY [SNAPSHOTS]]    prints sizes and times, and fails if a bar is missed; 86400 snapshots are the bars'

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <spawn.h>
#include <stdexcept>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>
#include <zstd.h>

#include "bars.h"
#include "capture_reader.h"
#include "capture_writer.h"
#include "json.h"
#include "simulation.h"

extern char** environ; // NOLINT(readability-redundant-declaration): POSIX declares it nowhere

namespace
{

constexpr double size_bar = 400;              // of a snapshot, everything included [bytes]
constexpr double append_bar = 30;             // [us]
constexpr double show_bar = 30;               // [ms]
constexpr double memory_bar = 64;             // [MiB]
constexpr std::int64_t start = 1'800'000'000; // of the day [s]

/** The decoder, taken by a clock that is never quite on time. */
class Day
{
public:
    records::Snapshot next()
    {
        records::Snapshot snapshot;
        snapshot.decoder = "studio-1";
        snapshot.host = "session manager 1.0";
        snapshot.instance = records::Instance{.id = {1}, .started_at = start};
        snapshot.taken_at = simulation_.now().time_since_epoch().count() + static_cast<std::int64_t>(late_ % 200'000);
        std::memcpy(&snapshot.records, &simulation_.records(), sizeof snapshot.records);
        snapshot.present.set();
        simulation_.advance(std::chrono::seconds(1));
        late_ = (late_ * 6364136223846793005ULL + 1442695040888963407ULL) >> 1;
        return snapshot;
    }

private:
    samples::Simulation simulation_ = {"live-srt-1080i", 1, samples::Simulation::Moment(std::chrono::seconds(start))};
    std::uint64_t late_ = 1; // [ns], up to 200 us
};

void require(bool holds, const char* what)
{
    if (!holds) throw std::runtime_error(what);
}

/** Bytes of the records, each compressed by itself with the one before as prefix. */
class ZstdWithPrefix
{
public:
    ~ZstdWithPrefix() { ZSTD_freeCCtx(context_); }

    void add(const records::Snapshot& snapshot)
    {
        std::array<std::byte, sizeof(records::Records)> now;
        std::memcpy(now.data(), &snapshot.records, now.size());
        ZSTD_CCtx_refPrefix(context_, last_.data(), last_.size());
        const std::size_t size = ZSTD_compress2(context_, out_.data(), out_.size(), now.data(), now.size());
        require(ZSTD_isError(size) == 0, "zstd");
        bytes += size;
        last_ = now;
    }

    std::size_t bytes = 0;

private:
    ZSTD_CCtx* context_ = ZSTD_createCCtx();
    std::array<std::byte, sizeof(records::Records)> last_ = {};
    std::vector<std::byte> out_ = std::vector<std::byte>(ZSTD_compressBound(sizeof(records::Records)));
};

/** Lines of JSON with all that the records hold, compressed in one stream. */
class ZstdOfLines
{
public:
    ~ZstdOfLines() { ZSTD_freeCCtx(context_); }

    void add(const records::Snapshot& snapshot)
    {
        const std::string line = views::raw_json(snapshot) + "\n";
        plain += line.size();
        feed(line, ZSTD_e_continue);
    }
    void finish() { feed("", ZSTD_e_end); }

    std::size_t plain = 0;
    std::size_t bytes = 0;

private:
    void feed(const std::string& text, ZSTD_EndDirective how)
    {
        ZSTD_inBuffer in = {text.data(), text.size(), 0};
        std::size_t left = 1;
        while (in.pos < in.size || (how == ZSTD_e_end && left != 0))
        {
            ZSTD_outBuffer out = {out_.data(), out_.size(), 0};
            left = ZSTD_compressStream2(context_, &out, &in, how);
            require(ZSTD_isError(left) == 0, "zstd");
            bytes += out.pos;
        }
    }

    ZSTD_CCtx* context_ = ZSTD_createCCtx();
    std::vector<std::byte> out_ = std::vector<std::byte>(ZSTD_CStreamOutSize());
};

struct Shown
{
    double milliseconds;
    double mebibytes;
};

/** decstats show of a moment, from start to exit. */
Shown show(const std::string& path, std::int64_t moment)
{
    const std::string at = std::to_string(moment);
    const char* arguments[] = {DECSTATS, "show", path.c_str(), "--at", at.c_str(), nullptr};
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    rusage usage = {};
    const auto run = [&]
    {
        pid_t process = 0;
        require(posix_spawn(&process, DECSTATS, &actions, nullptr, const_cast<char**>(arguments), environ) == 0, "decstats");
        int status = 0;
        require(wait4(process, &status, 0, &usage) == process && status == 0, "decstats show");
    };
    const double milliseconds = microseconds_of(run) / 1000;
    posix_spawn_file_actions_destroy(&actions);
    return {milliseconds, static_cast<double>(usage.ru_maxrss) / 1024};
}

int run(const std::string& directory, std::size_t count)
{
    const std::string path = directory + "/capture_bench.dcap";
    unlink(path.c_str());
    Day day;
    ZstdWithPrefix prefix;
    ZstdOfLines lines;
    std::vector<double> times;
    {
        capture::Writer writer(path);
        for (std::size_t i = 0; i < count; ++i)
        {
            const records::Snapshot snapshot = day.next();
            times.push_back(microseconds_of([&] { writer.append(snapshot); }));
            prefix.add(snapshot);
            lines.add(snapshot);
        }
        writer.finish();
        lines.finish();
    }
    const auto per_snapshot = [count](std::uintmax_t bytes) { return static_cast<double>(bytes) / static_cast<double>(count); };
    const double size = per_snapshot(std::filesystem::file_size(path));
    std::printf("bytes a snapshot, %zu snapshots one second apart\n", count);
    std::printf("  capture file                             %10.1f\n", size);
    std::printf("  records, zstd -3, the one before prefix  %10.1f\n", per_snapshot(prefix.bytes));
    std::printf("  lines of raw JSON, zstd -3, one stream   %10.1f\n", per_snapshot(lines.bytes));
    std::printf("  records as they stand in memory          %10zu\n", sizeof(records::Records));
    std::printf("  lines of raw JSON                        %10.1f\n", per_snapshot(lines.plain));

    // Quick processors are busy with other work now and then: the median tells what appending takes, the mean what it took.
    std::ranges::sort(times);
    double sum = 0;
    for (const double time : times) sum += time;
    std::printf("appending one: median %.1f us, mean %.1f us, 99 %% below %.1f us\n", times[count / 2], sum / static_cast<double>(count),
                times[count * 99 / 100]);

    double slowest = 0;
    double memory = 0;
    for (std::size_t i = 0; i <= 10; ++i)
    {
        const std::int64_t moment = start + 1 + static_cast<std::int64_t>(count * i / 10); // the first snapshot is 1 ns late
        Shown best = show(path, moment);
        for (int j = 0; j < 4; ++j) best.milliseconds = std::min(best.milliseconds, show(path, moment).milliseconds);
        slowest = std::max(slowest, best.milliseconds);
        memory = std::max(memory, best.mebibytes);
    }
    std::printf("decstats show --at, start to exit, slowest of 11 moments, each the best of 5: %.1f ms\n", slowest);

    std::size_t read = 0;
    const auto read_all = [&]
    {
        capture::Reader reader(path);
        while (const auto event = reader.next()) read += std::holds_alternative<const records::Snapshot*>(*event);
    };
    std::printf("reading all of it: %.0f ms\n", microseconds_of(read_all) / 1000);
    require(read == count, "not all snapshots were read");
    unlink(path.c_str());

    bool met = at_most("size of a snapshot", size, size_bar, " bytes");
    met &= at_most("appending one", times[count / 2], append_bar, " us");
    met &= at_most("showing a moment", slowest, show_bar, " ms");
    met &= at_most("memory of showing it", memory, memory_bar, " MiB");
    return met ? 0 : 1;
}

} // namespace

int main(int argc, char** argv)
try
{
    return run(argc > 1 ? argv[1] : "/dev/shm", argc > 2 ? std::strtoul(argv[2], nullptr, 10) : 86'400);
}
catch (const std::exception& error)
{
    std::fprintf(stderr, "capture_bench: %s\n", error.what());
    return 2;
}
