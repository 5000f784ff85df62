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
#include "frozen_clock.h"
#include "qrversioninfo.h"

static std::filesystem::path folder;

static void Write(const std::string& target, const std::string& name, std::string_view bytes)
{
    std::filesystem::create_directories(folder / target);
    std::ofstream file(folder / target / name, std::ios::binary);
    file << bytes;
    file.close();
    if (!file) throw std::runtime_error("cannot write " + (folder / target / name).string());
}

static void WriteRecords()
{
    for (size_t i = 0; i < samples_scenario_count; i++)
    {
        SAMPLES_RECORDS records;
        samples_scenarios[i].pFill(&records, frozen_now);
        const std::string scenario = samples_scenarios[i].szName;
        char component = 0; // the number of a component is its place in the table, here and in the tool
        for (const Report& report : all_reports)
        {
            const std::string record(static_cast<const char*>(RecordOf(records, report)), report.size);
            Write(report.component, scenario + ".default", '\0' + record);
            Write(report.component, scenario + ".debug", '\1' + record);

            const char piped = static_cast<char>(component + 0x80);
            Write("record-file", scenario + '.' + report.component, component + record);
            Write("record-file", scenario + '.' + report.component + ".pipe", piped + record);
            Write("record-file", scenario + '.' + report.component + ".short", component + record.substr(1));
            Write("record-file", scenario + '.' + report.component + ".long.pipe", piped + record + '\0');
            component++;
        }
    }
}

template <size_t width> static void Set(BYTE (&field)[width], std::string_view text)
{
    std::copy_n(text.begin(), std::min(text.size(), width), field);
}

static std::string VersionRecord(std::string_view revision, std::string_view notes)
{
    QRVERSIONINFOBLOB record = {};
    Set(record.abSignature, QRVERSIONINFO_SIGNATURE);
    record.dwSize = sizeof record;
    record.cMajor = 2;
    record.cMinor = 17;
    Set(record.szRevision, revision);
    Set(record.szDescription, "Statistics Printing Library");
    Set(record.szBuildDate, "Feb  3 2021");
    Set(record.szBuildTime, "04:05:06");
    Set(record.szNotes, notes);
    return {reinterpret_cast<const char*>(&record), sizeof record};
}

/** The two bytes that say where in the file the rest of an input lies. */
static std::string Place(unsigned block, unsigned distance)
{
    return {static_cast<char>((block + distance) % 256), static_cast<char>((block + distance) / 256)};
}

static void WriteVersionRecords()
{
    const std::string target = "version-records";
    const std::string atStart(2, '\0');
    const std::string record = VersionRecord("4711", "");
    Write(target, "one", atStart + record);
    Write(target, "two", atStart + record + VersionRecord("", std::string(79, 'n')));
    Write(target, "notes-without-end", atStart + VersionRecord("1", std::string(80, 'n')));
    Write(target, "cut-off", atStart + record.substr(0, record.size() - 1));
    Write(target, "within-another", atStart + record.substr(0, 34) + record + record);
    // So many bytes before 1 MiB, where the first read ends, and before 2 MiB, which the second one ends a record short of.
    for (const unsigned distance : {1U, 100U, 273U, 274U})
        Write(target, "across-first-" + std::to_string(distance), Place(0x8000, distance) + record);
    for (const unsigned distance : {274U, 400U, 546U, 547U})
        Write(target, "across-second-" + std::to_string(distance), Place(0xc000, distance) + record);
    Write(target, "not-one", atStart + "Q$R$V$B$L$O$B<>!");
}

static void WriteCommandLines()
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
        Write("command-line", std::to_string(number++), bytes);
    }
}

int main(int argc, char** argv)
{
    if (argc != 2) return 2;
    folder = argv[1];
    WriteRecords();
    WriteVersionRecords();
    WriteCommandLines();
    return 0;
}
