/**
 * @file options.h
 * The command line of decstats-serve.
 */
#ifndef SERVER_OPTIONS_H
#define SERVER_OPTIONS_H

#include <optional>
#include <string>
#include <vector>

#include "decoders.h"

namespace server
{

/** What the command line says. */
struct Options
{
    Watched watched;
    std::string listen; /**< as 127.0.0.1:9720; empty = none was given */
    std::vector<std::string> hosts;
    std::string certificate; /**< path; empty = without TLS */
    std::string key;         /**< path */
    std::string token;       /**< path; empty = everybody may ask */
    std::optional<std::string> library;
};

/** Where the server listens unless it is told otherwise: this machine alone reaches it. */
inline constexpr const char* usual_address = "127.0.0.1:9720";

/** Reads the command line. @return nothing = it asked for help or the version, which is printed @throw Failure */
std::optional<Options> read_options(int argc, char** argv);

} // namespace server

#endif
