/**
 * @file options.h
 * Options and arguments that several commands have.
 */
#ifndef COMMANDS_OPTIONS_H
#define COMMANDS_OPTIONS_H

#include <bitset>
#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "component.h"
#include "dictionary.h"
#include "source.h"

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

/** Adds an option whose value is a moment. */
void add_moment(CLI::App& command, const std::string& name, std::optional<sources::At>& at, const std::string& description);

/** Adds "--at TIME". */
void add_at(CLI::App& command, std::optional<sources::At>& at);

/** Adds "--field NAME...". */
void add_fields(CLI::App& command, std::vector<std::string>& names);

/** The fields that --field names. @throw Failure if there is no field of a name, with those that are near */
std::vector<dictionary::Found> named_fields(const std::vector<std::string>& names);

/** Adds the argument SOURCE, and the option that its live decoders are looked for with. */
CLI::Option* add_source(CLI::App& command, sources::Source& source);

/** Adds "--directory DIR", where live decoders are. */
void add_directory(CLI::App& command, std::string& directory);

/** Adds an option whose value is a duration. @param least what it is not below */
CLI::Option* add_duration(CLI::App& command, const std::string& name, std::chrono::nanoseconds& duration, std::chrono::nanoseconds least,
                          const std::string& description);

/** Adds the argument SCENARIO. */
CLI::Option* add_scenario(CLI::App& command, std::string& scenario);

/** The list of the components below a command's help. */
std::string component_help();

/** Why a name is not known, from the second word on, and what was perhaps meant. @param nearest such names, perhaps none */
std::string unknown_text(const std::string& name, const std::string& kinds, const std::vector<std::string>& nearest);

/** A list of names in a text. */
std::string joined(const std::vector<std::string>& names);

} // namespace commands

#endif
