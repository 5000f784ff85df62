#include "options.h"

#include <cstdio>

#include <CLI/CLI.hpp>

#include "failure.h"
#include "hosts.h"
#include "name.h"

namespace server
{

std::optional<Options> read_options(int argc, char** argv)
{
    constexpr const char* version = "decstats-serve " DECSTATS_VERSION;
    Options options;
    options.watched.directory = std::string(published::default_directory);
    CLI::App app("Shows live decoders and captures to browsers, to Prometheus and to other programs.", "decstats-serve");
    app.set_version_flag("--version", version, "Print the version of decstats-serve and exit");
    app.add_option("SOURCE", options.watched.sources,
                   "Decoders by name, and capture files; without one, all live decoders as they come and go")
        ->type_name("");
    app.add_option("--listen", options.listen, "Where to listen, 127.0.0.1:9720 without it; beyond this machine only if it is named here")
        ->type_name("ADDRESS:PORT");
    app.add_option("--directory", options.watched.directory, "Where live decoders are")
        ->type_name("DIR")
        ->envname("DECSTATS_DIRECTORY")
        ->capture_default_str();
    app.add_option("--captures", options.watched.captures, "Where 'decstats capture' writes NAME.dcap, for what is older than ten minutes")
        ->type_name("DIR");
    const auto check_host = [](const std::string& value)
    { return Hosts::name_in(value).empty() || value.empty() ? "'" + value + "' is no name of a host" : std::string(); };
    app.add_option("--host", options.hosts, "Answer under this name, too; may be repeated")
        ->check({check_host, ""})
        ->type_name("NAME")
        ->allow_extra_args(false);
    CLI::Option* const certificate =
        app.add_option("--tls-cert", options.certificate, "Serve with TLS, with this certificate in PEM")->type_name("FILE");
    CLI::Option* const key = app.add_option("--tls-key", options.key, "The private key of the certificate in PEM")->type_name("FILE");
    certificate->needs(key);
    key->needs(certificate);
    app.add_option("--token-file", options.token, "Answer only those who show the token that is this file's first line")->type_name("FILE");
    app.add_option("--library", options.library, "Load this report library instead of libstats.so")->type_name("FILE");
    try
    {
        app.parse(argc, argv);
        return options;
    }
    catch (const CLI::CallForHelp&)
    {
        std::fputs(app.help().c_str(), stdout);
    }
    catch (const CLI::CallForVersion&)
    {
        std::puts(version);
    }
    catch (const CLI::ParseError& error)
    {
        const bool says_enough = dynamic_cast<const CLI::ValidationError*>(&error) != nullptr;
        files::fail_input(error.what() + std::string(says_enough ? "" : "; see 'decstats serve --help'"));
    }
    return std::nullopt;
}

} // namespace server
