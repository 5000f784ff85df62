#include <dlfcn.h>
#include <ext/stdio_filebuf.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdio>

#include "all_reports.h"
#include "bench.h"
#include "replays.h"

using Print = std::function<void()>;

std::ostream& stdout_stream()
{
    static __gnu_cxx::stdio_filebuf<char> buffer(STDOUT_FILENO, std::ios::out, 65536);
    static std::ostream stream(&buffer);
    return stream;
}

void flush_all()
{
    fflush(stdout);
    stdout_stream().flush();
}

static std::string capture(const Print& print)
{
    flush_all();
    const int saved = dup(STDOUT_FILENO);
    const int memory = memfd_create("stdout", 0);
    if (saved < 0 || memory < 0 || dup2(memory, STDOUT_FILENO) < 0) fail("cannot redirect stdout");
    print();
    flush_all();
    dup2(saved, STDOUT_FILENO);
    close(saved);

    std::string text(static_cast<size_t>(lseek(memory, 0, SEEK_END)), '\0');
    if (pread(memory, text.data(), text.size(), 0) != static_cast<ssize_t>(text.size())) fail("cannot read what was printed");
    close(memory);
    return text;
}

/** Another build of the library's sources, which keeps its functions to itself. */
static void* open_library(const char* path)
{
    void* const handle = dlopen(path, RTLD_NOW | RTLD_LOCAL);
    if (handle == nullptr) fail(dlerror());
    return handle;
}

/** The ways to print one text. */
struct Ways
{
    Print library;
    Print floor;
    Print fmt;
    Print iostreams;
};

static Ways ways_of(const records::Snapshot& snapshot, const records::Component& component, STATS_LEVEL level, Print floor)
{
    static void* const through_fmt = open_library(THROUGH_FMT);
    static void* const through_iostreams = open_library(THROUGH_IOSTREAMS);
    const auto print = [&component, record = snapshot.record(component).data(), level](void* function)
    { return [&component, record, level, function] { component.print(function, record, level); }; };
    return {print(report_function(component)), std::move(floor), print(dlsym(through_fmt, component.function)),
            print(dlsym(through_iostreams, component.function))};
}

/** One after the other. */
static Ways all(const std::vector<Ways>& parts)
{
    const auto in_turn = [&parts](Print Ways::*way)
    {
        return [parts, way]
        {
            for (const Ways& part : parts) (part.*way)();
        };
    };
    return {in_turn(&Ways::library), in_turn(&Ways::floor), in_turn(&Ways::fmt), in_turn(&Ways::iostreams)};
}

static void add_variants(std::vector<Variant>& variants, const std::string& name, const Ways& ways)
{
    const std::string bytes = capture(ways.library);
    if (bytes.empty()) return; // as decoder usage at the default level
    const auto add = [&](const char* way, const Print& print)
    {
        if (capture(print) != bytes) fail(name + "/" + way + " differs from what the library prints");
        variants.push_back({name + "/" + way, print});
    };
    add("library", ways.library);
    add("floor", ways.floor);
    add("fmt", ways.fmt);
    add("iostreams", ways.iostreams);
    add("fwrite", [bytes] { fwrite(bytes.data(), 1, bytes.size(), stdout); });
}

std::vector<Variant> report_variants()
{
    static std::array<records::Snapshot, measured_samples.size()> snapshots;
    std::vector<Variant> variants;
    const auto* replay = replays;
    for (size_t i = 0; i < measured_samples.size(); ++i)
    {
        snapshots[i] = sources::sample(measured_samples[i], frozen_moment);
        for (const auto& [level_name, level] : measured_levels)
        {
            const std::string prefix = std::string(measured_samples[i]) + "/" + level_name + "/";
            std::vector<Ways> parts;
            for (const records::Component& component : records::components())
            {
                parts.push_back(ways_of(snapshots[i], component, level, *replay++));
                add_variants(variants, prefix + std::string(component.name), parts.back());
            }
            add_variants(variants, prefix + "all", all(parts));
        }
    }
    return variants;
}
