#include "command_line.h"

#include <algorithm>
#include <cstdio>

#include <CLI/CLI.hpp>

#include "commands.h"
#include "failure.h"
#include "options.h"

namespace commands
{

namespace
{

/** The command whose exit status tells how a decoder is, not only how the command ended. */
constexpr const char* diagnose_name = "diagnose";

/** A command, as help lists it. */
struct Entry
{
    const char* name;
    const char* description;
    void (*add)(Command& command, Invocation& invocation);
};

constexpr Entry entries[] = {
    {"show", "Show the records of a decoder as reports, JSON or metrics", add_show},
    {"list", "List the live decoders and how they stand", add_list},
    {"watch", "Show a decoder again and again, on a terminal in place, else as lines of JSON", add_watch},
    {"diff", "Print what has changed between two sources, or two moments of one", add_diff},
    {"diagnose", "Say what is wrong with a decoder, and where", add_diagnose},
    {"capture", "Append the records of a decoder to a capture file, again and again", add_capture},
    {"history", "Tell what a capture file spans: restarts, gaps, damage, sizes", add_history},
    {"check", "Check a capture file for damage", add_check},
    {"repair", "Write a new capture file of all that can be read of a damaged one", add_repair},
    {"describe", "Print what fields mean", add_describe},
    {"demo", "Print the reports of a sample", add_demo},
    {"print", "Print the report of a raw record", add_print},
    {"sample", "Write the raw records of a sample", add_sample},
    {"serve", "Show live decoders and captures to browsers, to Prometheus and to other programs", add_serve},
    {"simulate", "Publish a living sample, as a host process publishes its decoder", add_simulate},
    {"version", "Print the versions of decstats and the report library, or those in a file", add_version},
};

/** The command that the command line names, or the app itself. */
const CLI::App& chosen(const CLI::App& app)
{
    const std::vector<CLI::App*> commands = app.get_subcommands();
    return commands.empty() ? app : *commands.front();
}

std::string full_name(const CLI::App& app)
{
    return app.get_parent() == nullptr ? app.get_name() : app.get_parent()->get_name() + " " + app.get_name();
}

std::string command_names()
{
    std::vector<std::string> names;
    for (const Entry& entry : entries) names.push_back(entry.name);
    return joined(names);
}

std::string option_names(const CLI::App& app)
{
    std::vector<std::string> names;
    for (const CLI::App* one = &app; one != nullptr; one = one->get_parent())
        for (const CLI::Option* option : one->get_options())
            for (const std::string& name : option->get_lnames())
                if (std::ranges::find(names, "--" + name) == names.end()) names.push_back("--" + name);
    return joined(names);
}

bool is_option(const std::string& word)
{
    return word.size() > 1 && word.front() == '-';
}

/** Fails with the first word of the command line that has no place, options before others, if there is one. */
void refuse_unexpected(const CLI::App& app)
{
    const CLI::App& command = chosen(app);
    std::vector<std::string> words = app.remaining(true);
    std::erase(words, "--");
    if (words.empty()) return;
    const auto option = std::ranges::find_if(words, is_option);
    if (option == words.end())
    {
        if (&command == &app) files::fail_input("'" + words.front() + "' is not a command; the commands are " + command_names());
        files::fail_input("'" + words.front() + "' is not expected; see '" + full_name(command) + " --help'");
    }

    const std::string name = option->substr(0, option->find('='));
    if (&command != &app && command.get_option_no_throw(name) != nullptr)
        files::fail_input(name + " stands behind the command: " + full_name(command) + " " + name);
    files::fail_input(name + " is not an option of '" + full_name(command) + "', which has " + option_names(command));
}

/** Adds the commands that the command line has a word for: setting all of them up takes longer than most of them run. */
void add_named(CLI::App& app, const std::vector<std::string>& words, Invocation& invocation)
{
    for (const Entry& entry : entries)
    {
        if (std::ranges::count(words, entry.name) == 0) continue;
        Command command(*app.add_subcommand(entry.name, entry.description));
        entry.add(command, invocation);
    }
}

/** Help of the command that is named, or of all of them. */
std::string help(CLI::App& app)
{
    if (!app.get_subcommands().empty()) return app.help();
    for (CLI::App* command : app.get_subcommands({})) app.remove_subcommand(command);
    for (const Entry& entry : entries) app.add_subcommand(entry.name, entry.description);
    return app.help();
}

/** Reads the command line, and runs the command. */
void parse(CLI::App& app, int argc, char** argv)
{
    try
    {
        app.parse(argc, argv);
    }
    catch (const CLI::CallForHelp&)
    {
        std::fputs(help(app).c_str(), stdout);
        return;
    }
    catch (const CLI::CallForVersion&)
    {
        std::puts(version_line);
        return;
    }
    catch (const CLI::ParseError& error)
    {
        // A word without a place often makes the next one look wrong, so it comes first.
        refuse_unexpected(app);
        const bool says_enough = dynamic_cast<const CLI::ValidationError*>(&error) != nullptr;
        files::fail_input(error.what() + (says_enough ? "" : "; see '" + full_name(chosen(app)) + " --help'"));
    }
    if (app.get_subcommands().empty()) files::fail_input("which command? The commands are " + command_names() + "; see 'decstats --help'");
}

} // namespace

int run(int argc, char** argv, void (*close_output)())
{
    Invocation invocation;
    CLI::App app("Prints the statistics reports of a networked hardware video decoder.", "decstats");
    app.set_version_flag("--version", version_line, "Print the version of decstats and exit");
    app.require_subcommand(0, 1);
    app.fallthrough();
    app.add_option("--library", invocation.library, "Load this report library instead of libstats.so")->type_name("FILE");
    add_named(app, {argv + 1, argv + argc}, invocation);
    try
    {
        parse(app, argc, argv);
        close_output();
        return invocation.status;
    }
    catch (const std::exception& error)
    {
        if (chosen(app).get_name() != diagnose_name) throw;
        throw files::Failure(files::ExitStatus::cannot_tell, error.what());
    }
}

} // namespace commands
