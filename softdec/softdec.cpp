/*
 * The command softdec: receives a transport stream, decodes it, and keeps the records of a decoder.
 */
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <thread>

#include <CLI/CLI.hpp>

#include "capture_error.h"
#include "chain/capture.h"
#include "chain/chain.h"
#include "chain/publication.h"
#include "chain/record_files.h"
#include "chain/report.h"
#include "input/file_source.h"
#include "input/pcap_source.h"
#include "input/socket_source.h"
#include "release.h"

namespace
{

constexpr const char* version_line = "softdec " RELEASE_VERSION;

enum ExitStatus
{
    done = 0,
    output_failed = 1,
    input_failed = 2,
};

struct Request
{
    std::string input;
    std::string name;
    std::string directory;
    std::string records;
    std::string capture;
    bool report = false;
    std::string level = "default";
    bool no_decode = false;
    std::string speed = "max";
};

volatile std::sig_atomic_t stop_requested = 0;

softdec::Nanoseconds wall_clock()
{
    return std::chrono::nanoseconds(std::chrono::system_clock::now().time_since_epoch()).count();
}

/** An input, and whether it runs as fast as the clock by its nature. */
struct Input
{
    std::unique_ptr<softdec::Source> source;
    bool live = false;
};

Input open_input(const std::string& input)
{
    if (input.starts_with("udp://")) return {std::make_unique<softdec::SocketSource>(input.substr(6), false), true};
    if (input.starts_with("rtp://")) return {std::make_unique<softdec::SocketSource>(input.substr(6), true), true};
    for (const char* ending : {".pcap", ".pcapng", ".cap"})
        if (input.ends_with(ending)) return {std::make_unique<softdec::PcapSource>(input)};
    for (const char* ending : {".ts", ".m2ts", ".mts", ".trp"})
        if (input.ends_with(ending)) return {std::make_unique<softdec::FileSource>(input)};
    throw softdec::InputError(input + ": expected FILE.pcap, FILE.ts, udp://[GROUP@]ADDRESS:PORT or rtp://[GROUP@]ADDRESS:PORT");
}

/** Waits until as much time has passed as on the chain's clock. */
class Pace
{
public:
    void wait_for(softdec::Nanoseconds moment)
    {
        if (first_ == 0) first_ = moment;
        std::this_thread::sleep_until(began_ + std::chrono::nanoseconds(moment - first_));
    }

private:
    std::chrono::steady_clock::time_point began_ = std::chrono::steady_clock::now();
    softdec::Nanoseconds first_ = 0;
};

void run(const Request& request)
{
    const Input input = open_input(request.input);
    softdec::Source& source = *input.source;
    const bool paced = !input.live && request.speed == "live";
    const bool live = input.live || paced;
    softdec::Chain chain({.has_arrivals = source.has_arrivals(), .decode = !request.no_decode, .live = live, .start = wall_clock()});
    std::optional<softdec::Publication> publication;
    const softdec::Abilities abilities{.has_arrivals = source.has_arrivals(), .decode = !request.no_decode, .live = live};
    if (!request.name.empty()) publication.emplace(request.name, request.directory, abilities);
    std::optional<softdec::Capture> capture;
    if (!request.capture.empty()) capture.emplace(request.capture, request.name, abilities);
    Pace pace;
    softdec::Datagram datagram;
    while (stop_requested == 0)
    {
        const auto result = source.next(datagram);
        if (result == softdec::Source::Result::end) break;
        if (result == softdec::Source::Result::nothing)
        {
            if (capture) capture->reach(chain, wall_clock());
            chain.run_to(wall_clock());
        }
        else
        {
            if (paced) pace.wait_for(datagram.arrival.value_or(chain.clock().now()));
            if (capture && datagram.arrival) capture->reach(chain, *datagram.arrival);
            chain.take(datagram, source.status());
            if (capture) capture->reach(chain, chain.clock().now());
        }
        if (publication) publication->offer(chain);
    }
    chain.finish(
        [&]
        {
            if (capture) capture->reach(chain, chain.clock().now());
        });
    if (publication) publication->publish(chain);
    if (capture) capture->finish(chain);

    const records::Records& records = chain.records();
    if (!request.records.empty()) softdec::write_record_files(records, request.records);
    if (request.report) softdec::print_report(records, chain.clock(), request.level == "debug" ? STATS_LEVEL_DEBUG : STATS_LEVEL_DEFAULT);
}

int parse_and_run(int argc, char** argv)
{
    Request request;
    CLI::App app("Receives an MPEG transport stream, decodes it, and keeps the records of a decoder.", "softdec");
    app.set_version_flag("--version", version_line, "Print the version of softdec and exit");
    app.add_option("INPUT", request.input,
                   "FILE.pcap, FILE.ts, udp://[GROUP@]ADDRESS:PORT, or rtp://[GROUP@]ADDRESS:PORT with FEC on the ports + 2 and + 4")
        ->required()
        ->type_name("");
    CLI::Option* name = app.add_option("--name", request.name, "Publish the records as those of a decoder of this name")->type_name("NAME");
    app.add_option("--directory", request.directory, "Publish in this directory instead of " STATS_PUBLISH_DIRECTORY)
        ->type_name("DIR")
        ->needs(name);
    app.add_option("--records", request.records, "At the end, write the records into this existing directory, COMPONENT.rec each")
        ->type_name("DIR");
    app.add_option("--capture", request.capture, "Append the records to this capture file, each second of the stream's time")
        ->type_name("FILE");
    app.add_flag("--report", request.report, "At the end, print the reports");
    app.add_option("--level", request.level, "How much the reports show: default or debug")
        ->check(CLI::IsMember({"default", "debug"}))
        ->type_name("LEVEL")
        ->capture_default_str();
    app.add_flag("--no-decode", request.no_decode, "Do not decode: demultiplex and frame only");
    app.add_option("--speed", request.speed, "Read a file as fast as possible (max) or as it was received (live)")
        ->check(CLI::IsMember({"live", "max"}))
        ->type_name("SPEED")
        ->capture_default_str();
    try
    {
        app.parse(argc, argv);
    }
    catch (const CLI::CallForHelp&)
    {
        std::fputs(app.help().c_str(), stdout);
        return done;
    }
    catch (const CLI::CallForVersion&)
    {
        std::puts(version_line);
        return done;
    }
    catch (const CLI::ParseError& error)
    {
        std::fprintf(stderr, "softdec: %s; see 'softdec --help'\n", error.what());
        return input_failed;
    }
    run(request);
    return done;
}

} // namespace

int main(int argc, char** argv)
{
    std::signal(SIGPIPE, SIG_IGN);
    for (const int signal : {SIGINT, SIGTERM}) std::signal(signal, [](int) { stop_requested = 1; });
    int status = done;
    try
    {
        status = parse_and_run(argc, argv);
    }
    catch (const capture::Error& error)
    {
        std::fprintf(stderr, "softdec: %s\n", error.what());
        return output_failed;
    }
    catch (const softdec::OutputError& error)
    {
        std::fprintf(stderr, "softdec: %s\n", error.what());
        return output_failed;
    }
    catch (const std::exception& error)
    {
        std::fprintf(stderr, "softdec: %s\n", error.what());
        return input_failed;
    }
    if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return status;
    std::fprintf(stderr, "softdec: standard output: %s\n", std::strerror(errno));
    return output_failed;
}
