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

#include "command.h"
#include "component.h"
#include "dictionary.h"
#include "source.h"

namespace commands
{

/** What --version prints. */
inline constexpr const char* version_line = "decstats " DECSTATS_VERSION;

/** Adds "--format FORMAT". @param format the one without it */
Option add_format(Command& command, std::string& format, const std::vector<std::string>& formats);

/** Adds "--level LEVEL". */
void add_level(Command& command, STATS_LEVEL& level);

/** Adds "--component NAME", which may be repeated. */
void add_components(Command& command, std::bitset<records::component_count>& components);

/** Adds an option whose value is a moment. */
void add_moment(Command& command, const std::string& name, std::optional<sources::At>& at, const std::string& description);

/** Adds "--from TIME" and "--to TIME", which choose a part of a capture file. */
void add_range(Command& command, sources::Range& range);

/** Adds "--at TIME". */
void add_at(Command& command, std::optional<sources::At>& at);

/** Adds "--field NAME...". */
void add_fields(Command& command, std::vector<std::string>& names);

/** The fields that --field names. @throw Failure if there is no field of a name, with those that are near */
std::vector<dictionary::Found> named_fields(const std::vector<std::string>& names);

/** Adds the argument SOURCE, and the option that its live decoders are looked for with. */
Option add_source(Command& command, sources::Source& source);

/** Adds "--directory DIR", where live decoders are. */
void add_directory(Command& command, std::string& directory);

/** Adds an option whose value is a duration. @param least what it is not below */
Option add_duration(Command& command, const std::string& name, std::chrono::nanoseconds& duration, std::chrono::nanoseconds least,
                    const std::string& description);

/** Adds the argument SCENARIO. */
Option add_scenario(Command& command, std::string& scenario);

/** The list of the components below a command's help. */
std::string component_help();

/** Why a name is not known, from the second word on, and what was perhaps meant. @param nearest such names, perhaps none */
std::string unknown_text(const std::string& name, const std::string& kinds, const std::vector<std::string>& nearest);

} // namespace commands

#endif
