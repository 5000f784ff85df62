/**
 * @file diagnose.cpp
 * decstats diagnose: what is wrong with a decoder, and where.
 */
#include <memory>

#include "commands.h"
#include "diagnosis.h"
#include "diagnosis_json.h"
#include "diagnosis_text.h"
#include "explanation.h"
#include "failure.h"
#include "json.h"
#include "options.h"
#include "source.h"
#include "standard_output.h"

namespace commands
{

namespace
{

struct Options
{
    sources::Source source;
    std::string format = "text";
    std::string rule;
    std::optional<sources::At> at;
};

[[noreturn]] void fail(const std::string& message)
{
    throw files::Failure(files::ExitStatus::cannot_tell, message);
}

void explain(const std::string& id)
{
    if (const diagnosis::Rule* rule = diagnosis::find_rule(id); rule != nullptr) return files::print(diagnosis::explanation(*rule));
    fail("'" + id + "' is no finding; decstats-findings(5) has them all");
}

int diagnose(const Options& options)
{
    const records::Snapshot snapshot = sources::take(options.source, options.at);
    const diagnosis::Result result = diagnosis::diagnose(snapshot);
    if (options.format == "json")
        files::print(views::indented(diagnosis::json(result, snapshot)) + "\n");
    else
        files::print(diagnosis::text(result));
    return diagnosis::exit_status(result);
}

} // namespace

void add_diagnose(CLI::App& app, int& status)
{
    const auto options = std::make_shared<Options>();
    CLI::App& command = add_command(app, diagnose_name, "Say what is wrong with a decoder, and where");
    CLI::Option* const source = add_source(command, options->source);
    command.add_option("--format", options->format, "text or json")
        ->check(one_of({"text", "json"}))
        ->type_name("FORMAT")
        ->capture_default_str();
    add_at(command, options->at);
    command.add_option("--explain", options->rule, "Print what a finding is, why its limits are as they are and what to do")
        ->type_name("ID")
        ->excludes(source);
    command.footer("Exit status: 0 healthy or idle, 1 warning, 2 critical, 3 cannot tell, whatever the reason.\n"
                   "decstats-findings(5) has all findings.");
    command.callback(
        [options, &status]
        {
            if (!options->rule.empty()) return explain(options->rule);
            status = diagnose(*options);
        });
}

} // namespace commands
