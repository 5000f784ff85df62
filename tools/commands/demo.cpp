/**
 * @file demo.cpp
 * decstats demo: the reports of a sample.
 */
#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <memory>

#include "commands.h"
#include "options.h"
#include "reports.h"
#include "sample.h"

namespace commands
{

namespace
{

struct Options
{
    std::string scenario = sources::scenarios().front().name;
    bool list = false;
    std::bitset<records::component_count> components;
    STATS_LEVEL level = STATS_LEVEL_DEFAULT;
};

void list_scenarios()
{
    const std::vector<sources::Scenario> all = sources::scenarios();
    std::size_t width = 0;
    for (const sources::Scenario& one : all) width = std::max(width, one.name.size());
    for (const sources::Scenario& one : all) std::printf("%-*s  %s\n", static_cast<int>(width), one.name.c_str(), one.summary.c_str());
}

} // namespace

void add_demo(Command& command, Invocation& invocation)
{
    const auto options = std::make_shared<Options>();
    const Option scenario = add_scenario(command, options->scenario).usually(options->scenario);
    add_level(command, options->level);
    add_components(command, options->components);
    command.flag("--list", options->list, "List the scenarios instead").excludes(scenario);
    command.run(
        [options, &invocation]
        {
            if (options->list) return list_scenarios();
            views::print_reports(sources::sample(options->scenario, sources::present_moment()), invocation.library, options->components,
                                 options->level);
        });
}

} // namespace commands
