// Writes what the fuzz targets start from, a folder for each target: the records of the samples, version records, and command
// lines. The longest seed of a target is as long as its inputs need to be.
#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "all_reports.h"
#include "qrversioninfo.h"

static std::filesystem::path folder;

static void write(const std::string& target, const std::string& name, std::string_view bytes)
{
    std::filesystem::create_directories(folder / target);
    std::ofstream file(folder / target / name, std::ios::binary);
    file << bytes;
    file.close();
    if (!file) throw std::runtime_error("cannot write " + (folder / target / name).string());
}

static void write_records()
{
    for (const auto& [scenario, summary] : sources::scenarios())
    {
        const records::Snapshot snapshot = sources::sample(scenario, frozen_moment);
        for (const records::Component& component : records::components())
        {
            const std::string name(component.name);
            const std::string record(reinterpret_cast<const char*>(snapshot.record(component).data()), component.record_size);
            const char number = static_cast<char>(component.index);
            write(name, scenario + ".default", '\0' + record);
            write(name, scenario + ".debug", '\1' + record);

            const char piped = static_cast<char>(number + 0x80);
            write("record-file", scenario + '.' + name, number + record);
            write("record-file", scenario + '.' + name + ".pipe", piped + record);
            write("record-file", scenario + '.' + name + ".short", number + record.substr(1));
            write("record-file", scenario + '.' + name + ".long.pipe", piped + record + '\0');
        }
    }
}

template <size_t width> static void set(BYTE (&field)[width], std::string_view text)
{
    std::copy_n(text.begin(), std::min(text.size(), width), field);
}

static std::string version_record(std::string_view revision, std::string_view notes)
{
    QRVERSIONINFOBLOB record = {};
    set(record.abSignature, QRVERSIONINFO_SIGNATURE);
    record.dwSize = sizeof record;
    record.cMajor = 2;
    record.cMinor = 17;
    set(record.szRevision, revision);
    set(record.szDescription, "Statistics Printing Library");
    set(record.szBuildDate, "Feb  3 2021");
    set(record.szBuildTime, "04:05:06");
    set(record.szNotes, notes);
    return {reinterpret_cast<const char*>(&record), sizeof record};
}

/** The two bytes that say where in the file the rest of an input lies. */
static std::string place(unsigned block, unsigned distance)
{
    return {static_cast<char>((block + distance) % 256), static_cast<char>((block + distance) / 256)};
}

static void write_version_records()
{
    const std::string target = "version-records";
    const std::string at_start(2, '\0');
    const std::string record = version_record("4711", "");
    write(target, "one", at_start + record);
    write(target, "two", at_start + record + version_record("", std::string(79, 'n')));
    write(target, "notes-without-end", at_start + version_record("1", std::string(80, 'n')));
    write(target, "cut-off", at_start + record.substr(0, record.size() - 1));
    write(target, "within-another", at_start + record.substr(0, 34) + record + record);
    // So many bytes before 1 MiB, where the first read ends, and before 2 MiB, which the second one ends a record short of.
    for (const unsigned distance : {1U, 100U, 273U, 274U})
        write(target, "across-first-" + std::to_string(distance), place(0x8000, distance) + record);
    for (const unsigned distance : {274U, 400U, 546U, 547U})
        write(target, "across-second-" + std::to_string(distance), place(0xc000, distance) + record);
    write(target, "not-one", at_start + "Q$R$V$B$L$O$B<>!");
}

static void write_command_lines()
{
    const std::vector<std::vector<std::string_view>> lines = {
        {},
        {"--help"},
        {"--version"},
        {"demo"},
        {"demo", "--help"},
        {"demo", "--list"},
        {"demo", "trouble", "--level", "debug", "--component", "tdemux", "--component", "audio"},
        {"demo", "extreme", "--level=debug"},
        {"--library", "libstats.so", "demo", "idle", "--component=clock-recovery"},
        {"--library", "t", "demo", "resolving"},
        {"print", "tdemux", "t"},
        {"print", "tdemux", "t", "--level", "debug"},
        {"print", "tdemux", "t", "--at", "2022-06-06T18:06:55.5+02:00"},
        {"print", "tdemux", "t", "--at=1654531615.25"},
        {"print", "tdemux", "t", "--at", "mtime"},
        {"print", "vdecoder", "-"},
        {"print", "usage", "missing", "--library=libstats.so"},
        {"sample", "rtp-fec-2160p", "out"},
        {"sample", "live-srt-1080i", "missing"},
        {"version"},
        {"version", "libstats.so"},
        {"version", "t", "t"},
        {"demo", "--level", "\x1b[31m\n"},
        {"--", "print", "metadata", "--", "t"},
        {"demo", "--component", "vframer", "--component", "buffering", "--component", "usage", "--component", "metadata", "--component",
         "vdecoder", "--library", "libstats.so", "--level", "default", "live-srt-1080i", "--version"},
    };
    size_t number = 0;
    for (const std::vector<std::string_view>& line : lines)
    {
        std::string bytes;
        for (const std::string_view word : line) bytes += std::string(word) + '\0';
        write("command-line", std::to_string(number++), bytes);
    }
}

int main(int argc, char** argv)
{
    if (argc != 2) return 2;
    folder = argv[1];
    write_records();
    write_version_records();
    write_command_lines();
    return 0;
}
