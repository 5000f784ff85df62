/**
 * @file simulate.cpp
 * decstats simulate: a host process that publishes a living sample.
 */
#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <memory>
#include <optional>
#include <vector>

#include "commands.h"
#include "failure.h"
#include "name.h"
#include "options.h"
#include "samples_publish.h"
#include "signals.h"
#include "simulation.h"
#include "standard_output.h"

namespace commands
{

namespace
{

using std::chrono::nanoseconds;

/** How often the records move on and are published. Every tenth time is a heartbeat. */
constexpr nanoseconds step = std::chrono::milliseconds(100);

/** No simulation catches up with more than this, as after a suspended process goes on. */
constexpr nanoseconds longest_step = std::chrono::hours(1);

struct Options
{
    std::string scenario;
    std::string name;
    std::string directory = std::string(published::default_directory);
    nanoseconds lasts = nanoseconds::max();
    std::string fault;
    nanoseconds after = {};
    bool list_faults = false;
};

class Publisher
{
public:
    Publisher(const std::string& name, const std::string& directory)
    {
        STATS_PUBLISH_ERROR error;
        publisher_ = STATS_PublishOpen(name.c_str(), directory.c_str(), version_line, 0, &error);
        if (publisher_ != nullptr) return;
        const bool is_wrong = error.enCode == STATS_PUBLISH_BAD_ARGUMENT;
        throw files::Failure(is_wrong ? files::ExitStatus::input_failed : files::ExitStatus::output_failed, error.szText);
    }
    ~Publisher() { STATS_PublishClose(publisher_); }
    Publisher(const Publisher&) = delete;
    Publisher& operator=(const Publisher&) = delete;

    void publish(const SAMPLES_RECORDS& records)
    {
        samples_publish(publisher_, &records);
        STATS_PublishHeartbeat(publisher_);
    }

private:
    STATS_PUBLISHER* publisher_ = nullptr;
};

std::vector<std::string> fault_names()
{
    std::vector<std::string> names;
    for (const samples::Fault& fault : samples::faults()) names.emplace_back(fault.name);
    return names;
}

void list_faults()
{
    std::size_t width = 0;
    for (const std::string& name : fault_names()) width = std::max(width, name.size());
    for (const samples::Fault& fault : samples::faults())
        std::printf("%-*s  %s (%s)\n", static_cast<int>(width), fault.name, fault.summary, fault.scenario);
}

/** Refuses a fault that is not to be seen in the scenario, rather than to show a decoder without it. */
void require_fault_of(const std::string& scenario, const std::string& name)
{
    const samples::Fault* const fault = samples::find_fault(name);
    if (fault != nullptr && fault->scenario != scenario)
        files::fail_input("--fault: " + name + " is a fault of the scenario " + fault->scenario + ", not of " + scenario);
}

void simulate(const Options& options)
{
    using std::chrono::steady_clock;
    using std::chrono::system_clock;

    const Signals signals({SIGINT, SIGTERM, SIGHUP});
    const samples::Simulation::Moment start = system_clock::now();
    // Two decoders of one scenario do not jitter alike.
    samples::Simulation simulation(options.scenario, static_cast<std::uint64_t>(start.time_since_epoch().count()), start);
    if (!options.fault.empty()) simulation.inject(options.fault, options.after);

    const std::string& name = options.name.empty() ? options.scenario : options.name;
    Publisher publisher(name, options.directory);
    publisher.publish(simulation.records());
    files::print(published::path_of(options.directory, name) + "\n");
    files::flush();

    const steady_clock::time_point begin = steady_clock::now();
    const auto elapsed = [&] { return steady_clock::now() - begin; };
    while (elapsed() < options.lasts)
    {
        if (signals.wait(std::min(step, options.lasts - elapsed()))) return;
        simulation.advance(std::clamp<nanoseconds>(start + elapsed() - simulation.now(), {}, longest_step));
        publisher.publish(simulation.records());
    }
}

} // namespace

void add_simulate(Command& command, Invocation& /*invocation*/)
{
    const auto options = std::make_shared<Options>();
    const Option scenario = add_scenario(command, options->scenario);
    command.value("--name", options->name, "Name of the decoder, that of the scenario without it").value_name("NAME");
    add_directory(command, options->directory);
    add_duration(command, "--for", options->lasts, {}, "How long; without it, until a signal ends it");
    const Option fault = command.value("--fault", options->fault, "Let this go wrong: a name that --list-faults shows")
                             .one_of(fault_names())
                             .value_name("NAME");
    add_duration(command, "--after", options->after, {}, "When the fault begins, counted from the start; at once without it").needs(fault);
    command.flag("--list-faults", options->list_faults, "List the faults, each with the scenario that it is seen in").excludes(scenario);
    command.run(
        [options]
        {
            if (options->list_faults) return list_faults();
            if (options->scenario.empty()) files::fail_input("SCENARIO is required; 'decstats demo --list' lists all");
            require_fault_of(options->scenario, options->fault);
            simulate(*options);
        });
}

} // namespace commands
