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

[[noreturn]] void fail(const std::string& message)
{
    throw files::Failure(files::ExitStatus::input_failed, message);
}

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

std::string command_names(const CLI::App& app)
{
    std::vector<std::string> names;
    for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; })) names.push_back(command->get_name());
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
        if (&command == &app) fail("'" + words.front() + "' is not a command; the commands are " + command_names(app));
        fail("'" + words.front() + "' is not expected; see '" + full_name(command) + " --help'");
    }

    const std::string name = option->substr(0, option->find('='));
    if (&command != &app && command.get_option_no_throw(name) != nullptr)
        fail(name + " stands behind the command: " + full_name(command) + " " + name);
    fail(name + " is not an option of '" + full_name(command) + "', which has " + option_names(command));
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
        std::fputs(app.help().c_str(), stdout);
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
        fail(error.what() + (says_enough ? "" : "; see '" + full_name(chosen(app)) + " --help'"));
    }
    if (app.get_subcommands().empty()) fail("which command? The commands are " + command_names(app) + "; see 'decstats --help'");
}

} // namespace

int run(int argc, char** argv, void (*close_output)())
{
    LibraryFile library;
    int status = static_cast<int>(files::ExitStatus::done);
    CLI::App app("Prints the statistics reports of a networked hardware video decoder.", "decstats");
    app.set_version_flag("--version", version_line, "Print the version of decstats and exit");
    app.require_subcommand(0, 1);
    app.fallthrough();
    app.add_option("--library", library, "Load this report library instead of libstats.so")->type_name("FILE");
    add_show(app, library);
    add_list(app);
    add_watch(app, library);
    add_diff(app);
    add_diagnose(app, status);
    add_capture(app);
    add_history(app);
    add_check(app);
    add_repair(app);
    add_describe(app);
    add_demo(app, library);
    add_print(app, library);
    add_sample(app);
    add_serve(app, library);
    add_simulate(app);
    add_version(app, library);

    try
    {
        parse(app, argc, argv);
        close_output();
        return status;
    }
    catch (const std::exception& error)
    {
        if (chosen(app).get_name() != diagnose_name) throw;
        throw files::Failure(files::ExitStatus::cannot_tell, error.what());
    }
}

} // namespace commands
