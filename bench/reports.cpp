#include "reports.h"

#include <dlfcn.h>
#include <ext/stdio_filebuf.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdio>

#include "bench.h"
#include "frozen_clock.h"
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

/** The reports of another build of the library's sources, which keeps its functions to itself. */
static const decltype(all_reports)& reports_of(const char* library)
{
    void* handle = dlopen(library, RTLD_NOW | RTLD_LOCAL);
    if (handle == nullptr) fail(dlerror());
    return reinterpret_cast<decltype(&reports)>(dlsym(handle, "reports"))();
}

/** The ways to print one text. */
struct Ways
{
    Print library;
    Print floor;
    Print fmt;
    Print iostreams;
};

static Ways ways_of(const SAMPLES_RECORDS& records, size_t report, STATS_LEVEL level, Print floor)
{
    static const auto& through_fmt = reports_of(THROUGH_FMT);
    static const auto& through_iostreams = reports_of(THROUGH_IOSTREAMS);
    const auto print = [&records, level](const Report& r) { return [&records, &r, level] { r.print(RecordOf(records, r), level); }; };
    return {print(all_reports[report]), std::move(floor), print(through_fmt[report]), print(through_iostreams[report])};
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
    static std::array<SAMPLES_RECORDS, measured_samples.size()> records;
    std::vector<Variant> variants;
    const auto* replay = replays;
    for (size_t i = 0; i < measured_samples.size(); ++i)
    {
        samples_find(measured_samples[i])->pFill(&records[i], frozen_now);
        for (const auto& [level_name, level] : measured_levels)
        {
            const std::string prefix = std::string(measured_samples[i]) + "/" + level_name + "/";
            std::vector<Ways> parts;
            for (size_t report = 0; report < all_reports.size(); ++report)
            {
                parts.push_back(ways_of(records[i], report, level, *replay++));
                add_variants(variants, prefix + all_reports[report].component, parts.back());
            }
            add_variants(variants, prefix + "all", all(parts));
        }
    }
    return variants;
}
