/**
 * @file command.h
 * A command of the command line, with its options and arguments. CLI11 reads them, and only the files behind this one include it:
 * its header takes longer to compile than all that a command does.
 */
#ifndef COMMANDS_COMMAND_H
#define COMMANDS_COMMAND_H

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace CLI
{
class App;
class Option;
} // namespace CLI

namespace commands
{

/** An option or an argument of a command. It belongs to the command line and lives as long. */
class Option
{
public:
    explicit Option(CLI::Option& option) : option_(&option) {}

    /** What help calls its value; an argument has its name for that. */
    Option& value_name(const std::string& name);

    /** What help says that the value is without it. */
    Option& usually(const std::string& value);

    /** Accepts these values only. */
    Option& one_of(std::vector<std::string> allowed);

    /** Accepts what is right only. @param problem what is wrong with a value, as a sentence; empty = nothing */
    Option& check(const std::function<std::string(const std::string& value)>& problem);

    /** Accepts numbers above 0 only. */
    Option& positive();

    /** Takes a value from the environment where the command line has none. */
    Option& from_environment(const std::string& variable);

    Option& required();
    Option& needs(Option other);
    Option& excludes(Option other);

    /** Whether the command line has it; known when the command runs. */
    bool is_given() const;

private:
    CLI::Option* option_;
};

/**
 * A command. The variables that its options and arguments set have to live until it has run; they keep what they are where the
 * command line says nothing. A name that begins with "--" makes an option, any other an argument.
 */
class Command
{
public:
    explicit Command(CLI::App& app);

    Option flag(const std::string& name, bool& is_set, const std::string& description);
    Option value(const std::string& name, std::string& value, const std::string& description);
    Option value(const std::string& name, std::optional<std::string>& value, const std::string& description);
    Option value(const std::string& name, std::uint64_t& value, const std::string& description);
    Option value(const std::string& name, std::optional<double>& value, const std::string& description);

    /** Several values, and the option again and again. */
    Option values(const std::string& name, std::vector<std::string>& values, const std::string& description);

    /** A value that @p take gets once the whole command line is right. */
    Option taken(const std::string& name, const std::function<void(const std::string& value)>& take, const std::string& description);

    /** The same for an option that may be repeated. */
    Option each_taken(const std::string& name, const std::function<void(const std::string& value)>& take, const std::string& description);

    /** Text below the help. */
    void footer(const std::string& text);

    /** What the command does. */
    void run(const std::function<void()>& action);

    /** What a command does that is a program of its own: it gets all the words behind its name, "--help" among them. */
    void run_with_words(const std::function<void(std::vector<std::string> words)>& action);

private:
    CLI::App* app_;
};

/** A list of names in a text. */
std::string joined(const std::vector<std::string>& names);

} // namespace commands

#endif
