#include "command.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include <CLI/CLI.hpp>

#include "options.h"

namespace commands
{

Option& Option::value_name(const std::string& name)
{
    option_->type_name(name);
    return *this;
}

Option& Option::usually(const std::string& value)
{
    option_->default_str(value);
    return *this;
}

Option& Option::one_of(std::vector<std::string> allowed)
{
    return check(
        [allowed = std::move(allowed)](const std::string& value)
        {
            if (std::ranges::find(allowed, value) != allowed.end()) return std::string();
            return "'" + value + "' is not known; allowed are " + joined(allowed);
        });
}

Option& Option::check(const std::function<std::string(const std::string& value)>& problem)
{
    option_->check(problem, "");
    return *this;
}

Option& Option::positive()
{
    const auto problem = [](const std::string& value)
    {
        double number = 0;
        const auto read = std::from_chars(value.data(), value.data() + value.size(), number);
        const bool is_number = read.ec == std::errc() && read.ptr == value.data() + value.size();
        return is_number && number > 0 ? std::string() : "'" + value + "' is no number above 0";
    };
    return check(problem);
}

Option& Option::from_environment(const std::string& variable)
{
    option_->envname(variable);
    return *this;
}

Option& Option::required()
{
    option_->required();
    return *this;
}

Option& Option::needs(Option other)
{
    option_->needs(other.option_);
    return *this;
}

Option& Option::excludes(Option other)
{
    option_->excludes(other.option_);
    return *this;
}

bool Option::is_given() const
{
    return option_->count() != 0;
}

namespace
{

/** An argument's value needs no name beside its own. */
Option named(CLI::Option* option)
{
    if (option->get_positional()) option->type_name("");
    return Option(*option);
}

} // namespace

Command::Command(CLI::App& app) : app_(&app)
{
    app_->set_version_flag("--version", version_line, "Print the version of decstats and exit");
}

Option Command::flag(const std::string& name, bool& is_set, const std::string& description)
{
    return Option(*app_->add_flag(name, is_set, description));
}

Option Command::value(const std::string& name, std::string& value, const std::string& description)
{
    return named(app_->add_option(name, value, description));
}

Option Command::value(const std::string& name, std::optional<std::string>& value, const std::string& description)
{
    return named(app_->add_option(name, value, description));
}

Option Command::value(const std::string& name, std::uint64_t& value, const std::string& description)
{
    return named(app_->add_option(name, value, description));
}

Option Command::value(const std::string& name, std::optional<double>& value, const std::string& description)
{
    return named(app_->add_option(name, value, description));
}

Option Command::values(const std::string& name, std::vector<std::string>& values, const std::string& description)
{
    return named(app_->add_option(name, values, description));
}

Option Command::taken(const std::string& name, const std::function<void(const std::string& value)>& take, const std::string& description)
{
    return named(app_->add_option_function<std::string>(name, take, description));
}

Option Command::each_taken(const std::string& name, const std::function<void(const std::string& value)>& take,
                           const std::string& description)
{
    const auto take_all = [take](const std::vector<std::string>& values) { std::ranges::for_each(values, take); };
    return named(app_->add_option_function<std::vector<std::string>>(name, take_all, description)->allow_extra_args(false));
}

void Command::footer(const std::string& text)
{
    app_->footer(text);
}

void Command::run(const std::function<void()>& action)
{
    app_->callback(action);
}

void Command::run_with_words(const std::function<void(std::vector<std::string> words)>& action)
{
    app_->prefix_command();
    app_->fallthrough(false);
    app_->set_help_flag();
    app_->set_version_flag();
    app_->final_callback([app = app_, action] { action(app->remaining()); });
}

} // namespace commands
