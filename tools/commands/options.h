/**
 * @file options.h
 * Options and arguments that several commands have.
 */
#ifndef COMMANDS_OPTIONS_H
#define COMMANDS_OPTIONS_H

#include <bitset>
#include <optional>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "component.h"
#include "moment.h"

namespace commands
{

/** What --version prints. */
inline constexpr const char* version_line = "decstats " DECSTATS_VERSION;

/** Adds a command. */
CLI::App& add_command(CLI::App& app, const std::string& name, const std::string& description);

/** Accepts the given values only. */
CLI::Validator one_of(std::vector<std::string> allowed);

/** Adds "--level LEVEL". */
void add_level(CLI::App& command, STATS_LEVEL& level);

/** Adds "--component NAME", which may be repeated. */
void add_components(CLI::App& command, std::bitset<records::component_count>& components);

/** Adds "--at TIME". */
void add_at(CLI::App& command, std::optional<sources::At>& at);

/** Adds the argument SCENARIO. */
CLI::Option* add_scenario(CLI::App& command, std::string& scenario);

/** The list of the components below a command's help. */
std::string component_help();

/** A list of names in a text. */
std::string joined(const std::vector<std::string>& names);

} // namespace commands

#endif
