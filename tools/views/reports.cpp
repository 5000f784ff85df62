#include "reports.h"

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <new>
#include <span>
#include <stdio_ext.h>
#include <unistd.h>
#include <utility>
#include <vector>

#include "failure.h"
#include "report_library.h"

namespace views
{

namespace
{

/** Where time() stands for this thread; nothing = it runs. */
constinit thread_local std::optional<time_t> report_clock;

/** A record may come from anyone: its texts must not reach a terminal as escape sequences, nor as lines of their own. */
void make_printable(std::span<char> text)
{
    for (char& character : text)
    {
        if (character == '\0') return;
        if (character < ' ' || character > '~') character = '?';
    }
}

/** All texts of all records. */
void make_texts_printable(records::Records& records)
{
    make_printable(records.tdemux.tStreamAddress.szHostName);
    make_printable(records.tdemux.tSourceAddress.szHostName);
    make_printable(records.vframer.tCurrentProperties.szFraming);
    make_printable(records.vframer.tPreviousProperties.szFraming);
    for (SMGR_METADATADEC_CHANNEL_STATS& channel : records.metadata.tChannel) make_printable(channel.szName);
}

using Report = std::pair<const records::Component*, void*>;

/** The reports to print, each with its function. */
std::vector<Report> find_reports(const ReportLibrary& library, const records::Snapshot& snapshot,
                                 const std::bitset<records::component_count>& components)
{
    std::vector<Report> reports;
    for (const records::Component& component : records::components())
    {
        const bool is_named = components[component.index];
        if (is_named && !snapshot.has(component)) files::fail_input("no " + std::string(component.name) + " record is there to print");
        if (is_named || (components.none() && snapshot.has(component)))
        {
            void* const function = library.find(component.function);
            if (function != nullptr)
                reports.emplace_back(&component, function);
            else if (is_named)
                files::fail_input(library.path() + ": no function " + component.function + ", which prints the " +
                                  std::string(component.name) + " report");
        }
    }
    if (reports.empty()) files::fail_input(library.path() + ": none of the report functions, STATS_PrintFor...");
    return reports;
}

/** Prints reports with the clock at the Snapshot's moment. */
void print(const records::Snapshot& snapshot, const std::vector<Report>& reports, STATS_LEVEL level)
{
    auto copy = std::make_unique<records::Snapshot>(snapshot);
    make_texts_printable(copy->records);
    report_clock = snapshot.taken_at / 1'000'000'000;
    for (const auto& [component, function] : reports) component->print(function, copy->record(*component).data(), level);
    report_clock.reset();
}

/** While it lives, standard output is a text. */
class OutputAsText
{
public:
    OutputAsText() : output_(std::exchange(stdout, open_memstream(&text_, &size_)))
    {
        if (stdout != nullptr) return;
        stdout = output_;
        throw std::bad_alloc();
    }
    ~OutputAsText()
    {
        std::fclose(std::exchange(stdout, output_));
        std::free(text_);
    }
    OutputAsText(const OutputAsText&) = delete;
    OutputAsText& operator=(const OutputAsText&) = delete;

    std::string text() const
    {
        std::fflush(stdout);
        return {text_, size_};
    }

private:
    char* text_ = nullptr;
    std::size_t size_ = 0;
    FILE* output_;
};

} // namespace

void print_reports(const records::Snapshot& snapshot, const std::optional<std::string>& library_file,
                   const std::bitset<records::component_count>& components, STATS_LEVEL level)
{
    const ReportLibrary library(library_file);
    const std::vector<Report> reports = find_reports(library, snapshot, components);
    const std::size_t before = __fpending(stdout);
    print(snapshot, reports, level);
    if (__fpending(stdout) == before && level == STATS_LEVEL_DEFAULT && isatty(STDERR_FILENO))
        std::fputs("decstats: all lines of this report belong to the debug level: --level debug\n", stderr);
}

std::string report_text(const records::Snapshot& snapshot, const std::optional<std::string>& library_file,
                        const std::bitset<records::component_count>& components, STATS_LEVEL level)
{
    const ReportLibrary library(library_file);
    const std::vector<Report> reports = find_reports(library, snapshot, components);
    const OutputAsText output;
    print(snapshot, reports, level);
    return output.text();
}

} // namespace views

/**
 * The clock of the process, its libraries included: the executable exports it, and the dynamic linker finds it before the C
 * library's. So a record is printed with the ages that its events had when it was taken.
 */
extern "C" [[gnu::visibility("default")]] time_t time(time_t* result) noexcept
{
    timespec now = {};
    clock_gettime(CLOCK_REALTIME_COARSE, &now); // what the C library's looks at
    if (views::report_clock) now.tv_sec = *views::report_clock;
    if (result != nullptr) *result = now.tv_sec;
    return now.tv_sec;
}
