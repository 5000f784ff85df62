/*
 * The command decstats: prints the reports of a decoder's records with the report library, as a host process of it.
 */
#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <memory>
#include <optional>
#include <string>
#include <unistd.h>
#include <utility>
#include <vector>

#include <CLI/CLI.hpp>

#include "components.h"
#include "failure.h"
#include "input_file.h"
#include "record_file.h"
#include "release.h"
#include "report_library.h"
#include "samples.h"
#include "version_record.h"

namespace
{

constexpr const char* versionLine = "decstats " RELEASE_VERSION;

/** What the command line asks for. */
struct Request
{
    std::optional<std::string> library; // nothing = libstats.so
    std::string scenario = samples_scenarios[0].szName;
    std::string level = "default";
    std::vector<std::string> components;
    std::string component;
    std::string file;
    std::optional<std::string> searched; // nothing = the report library
    std::string directory;
    bool list = false;
};

STATS_LEVEL level_of(const Request& request)
{
    return request.level == "debug" ? STATS_LEVEL_DEBUG : STATS_LEVEL_DEFAULT;
}

std::unique_ptr<SAMPLES_RECORDS> sample_of(const Request& request)
{
    auto records = std::make_unique<SAMPLES_RECORDS>();
    samples_find(request.scenario.c_str())->pFill(records.get(), std::time(nullptr));
    return records;
}

[[noreturn]] void fail_without_report(const ReportLibrary& library, const Component& component)
{
    throw Failure(ExitStatus::InputFailed,
                  library.path() + ": no function " + component.function + ", which prints the " + std::string(component.name) + " report");
}

/* ---- The commands ---- */

void list_scenarios()
{
    int width = 0;
    for (std::size_t i = 0; i < samples_scenario_count; ++i)
        width = std::max(width, static_cast<int>(std::strlen(samples_scenarios[i].szName)));
    for (std::size_t i = 0; i < samples_scenario_count; ++i)
        std::printf("%-*s  %s\n", width, samples_scenarios[i].szName, samples_scenarios[i].szSummary);
}

void run_demo(const Request& request)
{
    if (request.list) return list_scenarios();

    const ReportLibrary library(request.library);
    std::vector<std::pair<const Component*, void*>> reports;
    for (const Component& component : components())
    {
        const bool named = std::ranges::find(request.components, component.name) != request.components.end();
        if (!named && !request.components.empty()) continue;

        void* const function = library.find(component.function);
        if (function != nullptr)
            reports.emplace_back(&component, function);
        else if (named)
            fail_without_report(library, component);
    }
    if (reports.empty()) throw Failure(ExitStatus::InputFailed, library.path() + ": none of the report functions, STATS_PrintFor...");

    const auto records = sample_of(request);
    for (const auto& [component, function] : reports) component->print(function, component->record(*records), level_of(request));
}

void run_print(const Request& request)
{
    const Component& component = component_of(request.component);
    const std::vector<std::byte> record = read_record(component, request.file);
    const ReportLibrary library(request.library);
    void* const function = library.find(component.function);
    if (function == nullptr) fail_without_report(library, component);
    component.print(function, record, level_of(request));
}

void run_sample(const Request& request)
{
    write_records(*sample_of(request), request.directory);
}

/** Prints every version record of a file, with an empty line between them. */
void print_version_records(const std::string& path)
{
    InputFile file(path);
    bool first = true;
    const std::uint64_t count = find_version_records(file,
                                                     [&first](const QRVERSIONINFOBLOB& record, std::uint64_t offset)
                                                     {
                                                         if (!std::exchange(first, false)) std::puts("");
                                                         print_version_record(record, offset);
                                                     });
    if (count == 0) throw Failure(ExitStatus::InputFailed, file.name() + ": no version record found");
}

void run_version(const Request& request)
{
    if (request.searched) return print_version_records(*request.searched);

    const std::string library = ReportLibrary(request.library).path();
    std::printf("%s\n\n%-11s: %s\n", versionLine, "Library", printable(library).c_str());
    print_version_records(library);
}

/* ---- The command line ---- */

std::string joined(const std::vector<std::string>& names)
{
    return CLI::detail::join(names, ", ");
}

/** Accepts the given values only. */
CLI::Validator one_of(const std::vector<std::string>& allowed)
{
    const auto check = [allowed](const std::string& value)
    {
        if (std::ranges::find(allowed, value) != allowed.end()) return std::string();
        return "'" + value + "' is not known; allowed are " + joined(allowed);
    };
    return {check, ""};
}

std::vector<std::string> scenario_names()
{
    std::vector<std::string> names;
    for (std::size_t i = 0; i < samples_scenario_count; ++i) names.emplace_back(samples_scenarios[i].szName);
    return names;
}

std::string component_help()
{
    std::string help = "Components:\n";
    for (const Component& component : components())
        help += "  " + std::string(component.name) + std::string(16 - component.name.size(), ' ') + std::string(component.title) + "\n";
    help.pop_back();
    return help;
}

CLI::App* add_command(CLI::App& app, const std::string& name, const std::string& description)
{
    CLI::App* command = app.add_subcommand(name, description);
    command->set_version_flag("--version", versionLine, "Print the version of decstats and exit");
    return command;
}

void add_level(CLI::App& command, Request& request)
{
    command.add_option("--level", request.level, "How much the reports show: default or debug")
        ->check(one_of({"default", "debug"}))
        ->type_name("LEVEL")
        ->capture_default_str();
}

/** Parses the command line and runs its command. */
void run(int argc, char** argv)
{
    Request request;
    CLI::App app("Prints the statistics reports of a networked hardware video decoder.", "decstats");
    app.set_version_flag("--version", versionLine, "Print the version of decstats and exit");
    app.require_subcommand(0, 1);
    app.fallthrough();
    app.add_option("--library", request.library, "Load this report library instead of libstats.so")->type_name("FILE");

    CLI::App* demo = add_command(app, "demo", "Print the reports of a sample");
    CLI::Option* scenario = demo->add_option("SCENARIO", request.scenario, "Scenario of the sample")
                                ->check(one_of(scenario_names()))
                                ->type_name("")
                                ->capture_default_str();
    add_level(*demo, request);
    demo->add_option("--component", request.components, "Print the report of this component only; may be repeated")
        ->check(one_of(component_names()))
        ->type_name("NAME")
        ->allow_extra_args(false);
    demo->add_flag("--list", request.list, "List the scenarios instead")->excludes(scenario);
    demo->footer(component_help());

    CLI::App* print = add_command(app, "print", "Print the report of a raw record");
    print->add_option("COMPONENT", request.component, "Component of the record")
        ->check(one_of(component_names()))
        ->type_name("")
        ->required();
    print->add_option("FILE", request.file, "File of the record, - for standard input")->type_name("")->required();
    add_level(*print, request);
    print->footer(component_help());

    CLI::App* sample = add_command(app, "sample", "Write the raw records of a sample");
    sample->add_option("SCENARIO", request.scenario, "Scenario of the sample")->check(one_of(scenario_names()))->type_name("")->required();
    sample->add_option("DIR", request.directory, "Existing directory for the files, COMPONENT.rec each")->type_name("")->required();

    CLI::App* version = add_command(app, "version", "Print the versions of decstats and the report library, or those in a file");
    version->add_option("FILE", request.searched, "Library, executable or core image to search, - for standard input")->type_name("");

    try
    {
        app.parse(argc, argv);
    }
    catch (const CLI::CallForHelp&)
    {
        std::fputs(app.help().c_str(), stdout);
        return;
    }
    catch (const CLI::CallForVersion&)
    {
        std::puts(versionLine);
        return;
    }
    catch (const CLI::ValidationError& error)
    {
        throw Failure(ExitStatus::InputFailed, error.what());
    }
    catch (const CLI::ParseError& error)
    {
        throw Failure(ExitStatus::InputFailed, std::string(error.what()) + "; see 'decstats --help'");
    }

    if (*demo) return run_demo(request);
    if (*print) return run_print(request);
    if (*sample) return run_sample(request);
    if (*version) return run_version(request);
    throw Failure(ExitStatus::InputFailed, "usage: decstats [--library FILE] demo|print|sample|version ...; see 'decstats --help'");
}

/* ---- The process ---- */

/**
 * Occupies the standard streams that are closed, each opened the wrong way round, so that no file which is opened later
 * takes the place of one and every use of it still fails.
 */
void occupy_closed_streams()
{
    for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor)
        if (fcntl(descriptor, F_GETFD) < 0) open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY);
}

/** Writes out what standard output still holds. */
void finish_output()
{
    errno = 0;
    if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return;
    throw Failure(ExitStatus::OutputFailed, std::string("standard output: ") + std::strerror(errno != 0 ? errno : EIO));
}

} // namespace

int main(int argc, char** argv)
{
    static char buffer[64 * 1024];
    occupy_closed_streams();
    std::setvbuf(stdout, buffer, _IOFBF, sizeof(buffer));

    // A closed pipe and a file at its size limit are reported as any other failure to write.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);

    try
    {
        run(argc, argv);
        finish_output();
        return static_cast<int>(ExitStatus::Done);
    }
    catch (const Failure& failure)
    {
        std::fprintf(stderr, "decstats: %s\n", failure.what());
        return static_cast<int>(failure.status());
    }
    catch (const std::exception& error)
    {
        std::fprintf(stderr, "decstats: %s\n", error.what());
        return static_cast<int>(ExitStatus::InputFailed);
    }
}
