#include <ext/stdio_filebuf.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdio>

#include "bench.h"
#include "replays.h"

using Print = std::function<void()>;

/** The file stream beside stdout: on the same descriptor and with a buffer of the same size. */
static std::ostream& Stream()
{
    static __gnu_cxx::stdio_filebuf<char> buffer(STDOUT_FILENO, std::ios::out, 65536);
    static std::ostream stream(&buffer);
    return stream;
}

void FlushAll()
{
    fflush(stdout);
    Stream().flush();
}

static std::string Capture(const Print& print)
{
    FlushAll();
    const int saved = dup(STDOUT_FILENO);
    const int memory = memfd_create("stdout", 0);
    if (saved < 0 || memory < 0 || dup2(memory, STDOUT_FILENO) < 0) Fail("cannot redirect stdout");
    print();
    FlushAll();
    dup2(saved, STDOUT_FILENO);
    close(saved);

    std::string text(static_cast<size_t>(lseek(memory, 0, SEEK_END)), '\0');
    if (pread(memory, text.data(), text.size(), 0) != static_cast<ssize_t>(text.size())) Fail("cannot read what was printed");
    close(memory);
    return text;
}

/** The ways to print one text. */
struct Ways
{
    Print library;
    Print floor;
    Print fmt;
    Print iostreams;
};

static Ways WaysOf(const records::Snapshot& snapshot, const records::Component& component, STATS_LEVEL level, const Replay& replay)
{
    const auto print = [&component, function = report_function(component), record = snapshot.record(component).data(), level]
    { component.print(function, record, level); };
    return {print, replay.floor, replay.fmt, [&replay] { replay.iostreams(Stream()); }};
}

/** One after the other. */
static Ways All(const std::vector<Ways>& parts)
{
    const auto inTurn = [&parts](Print Ways::*way)
    {
        return [parts, way]
        {
            for (const Ways& part : parts) (part.*way)();
        };
    };
    return {inTurn(&Ways::library), inTurn(&Ways::floor), inTurn(&Ways::fmt), inTurn(&Ways::iostreams)};
}

static void AddVariants(std::vector<Variant>& variants, const std::string& name, const Ways& ways)
{
    const std::string bytes = Capture(ways.library);
    if (bytes.empty()) return; // as decoder usage at the default level
    const auto add = [&](const char* way, const Print& print)
    {
        if (Capture(print) != bytes) Fail(name + "/" + way + " differs from what the library prints");
        variants.push_back({name + "/" + way, print});
    };
    add("library", ways.library);
    add("floor", ways.floor);
    add("fmt", ways.fmt);
    add("iostreams", ways.iostreams);
    add("fwrite", [bytes] { fwrite(bytes.data(), 1, bytes.size(), stdout); });
}

std::vector<Variant> ReportVariants()
{
    static std::array<records::Snapshot, measured_samples.size()> snapshots;
    std::vector<Variant> variants;
    const Replay* replay = replays;
    for (size_t i = 0; i < measured_samples.size(); ++i)
    {
        snapshots[i] = sources::sample(measured_samples[i], frozen_moment);
        for (const auto& [levelName, level] : measured_levels)
        {
            const std::string prefix = std::string(measured_samples[i]) + "/" + levelName + "/";
            std::vector<Ways> parts;
            for (const records::Component& component : records::components())
            {
                parts.push_back(WaysOf(snapshots[i], component, level, *replay++));
                AddVariants(variants, prefix + std::string(component.name), parts.back());
            }
            AddVariants(variants, prefix + "all", All(parts));
        }
    }
    return variants;
}
