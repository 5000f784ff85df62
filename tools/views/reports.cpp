#include "reports.h"

#include <cstddef>
#include <cstdio>
#include <ctime>
#include <memory>
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

/** Where time() stands; nothing = it runs. */
std::optional<time_t> report_clock;

[[noreturn]] void fail(const std::string& message)
{
    throw files::Failure(files::ExitStatus::input_failed, message);
}

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

} // namespace

void print_reports(const records::Snapshot& snapshot, const std::optional<std::string>& library_file,
                   const std::bitset<records::component_count>& components, STATS_LEVEL level)
{
    const ReportLibrary library(library_file);
    std::vector<std::pair<const records::Component*, void*>> reports;
    for (const records::Component& component : records::components())
    {
        const bool is_named = components[component.index];
        if (is_named && !snapshot.has(component)) fail("no " + std::string(component.name) + " record is there to print");
        if (is_named || (components.none() && snapshot.has(component)))
        {
            void* const function = library.find(component.function);
            if (function != nullptr)
                reports.emplace_back(&component, function);
            else if (is_named)
                fail(library.path() + ": no function " + component.function + ", which prints the " + std::string(component.name) +
                     " report");
        }
    }
    if (reports.empty()) fail(library.path() + ": none of the report functions, STATS_PrintFor...");

    auto copy = std::make_unique<records::Snapshot>(snapshot);
    make_texts_printable(copy->records);
    const std::size_t before = __fpending(stdout);
    report_clock = snapshot.taken_at / 1'000'000'000;
    for (const auto& [component, function] : reports) component->print(function, copy->record(*component).data(), level);
    report_clock.reset();

    if (__fpending(stdout) == before && level == STATS_LEVEL_DEFAULT && isatty(STDERR_FILENO))
        std::fputs("decstats: all lines of this report belong to the debug level: --level debug\n", stderr);
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
