#include "serve.h"

#include <chrono>
#include <csignal>
#include <sys/resource.h>

#include "bounds.h"
#include "failure.h"
#include "http.h"
#include "standard_output.h"
#include "text_file.h"

namespace server
{

namespace
{

using std::chrono::steady_clock;

/** The signals that end the server. All its threads leave them to wait_for_end(). */
sigset_t ending_signals()
{
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGTERM);
    sigaddset(&signals, SIGINT);
    return signals;
}

/** Waits until a moment. @return whether a signal has come that ends the server */
bool wait_for_end(steady_clock::time_point moment)
{
    const sigset_t signals = ending_signals();
    const auto rest = std::max<std::chrono::nanoseconds>(moment - steady_clock::now(), {});
    const auto seconds = std::chrono::floor<std::chrono::seconds>(rest);
    const timespec time = {.tv_sec = seconds.count(), .tv_nsec = (rest - seconds).count()};
    return sigtimedwait(&signals, nullptr, &time) > 0;
}

/** Each decoder has a file open, and so has each connection. */
void allow_many_files()
{
    rlimit limit = {};
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0) return;
    limit.rlim_cur = limit.rlim_max;
    setrlimit(RLIMIT_NOFILE, &limit);
}

Listening listen(const Options& options)
{
    if (!Listening::is_inherited()) return Listening(options.listen.empty() ? usual_address : options.listen);
    if (!options.listen.empty()) files::fail_input("--listen has no place where the socket is handed over by who starts this");
    return Listening::inherited();
}

Access access(const Options& options, const Listening& listening)
{
    Access access;
    access.hosts.add(listening.host());
    for (const std::string& host : options.hosts) access.hosts.add(host);
    if (!options.token.empty()) access.token.emplace(options.token);
    if (!options.certificate.empty()) access.identity = Identity{read_text_file(options.certificate), read_text_file(options.key)};
    return access;
}

void warn_beyond_loopback(const Listening& listening, const Access& access)
{
    if (listening.is_loopback()) return;
    const std::string what = listening.where() + " is reached from other machines";
    if (!access.token) files::warn(what + ", and everybody there may read all: --token-file FILE asks for a token");
    if (!access.identity) files::warn(what + ", and everybody on the way may read along: --tls-cert FILE --tls-key FILE serves with TLS");
}

} // namespace

void serve(const Options& options)
{
    const sigset_t signals = ending_signals();
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    allow_many_files();
    ReportPage reports(options.library);
    Decoders decoders(options.watched);
    MetricsPage metrics(decoders);
    decoders.look();
    const Routes routes(decoders, metrics, reports);

    Listening listening = listen(options);
    Access rules = access(options, listening);
    warn_beyond_loopback(listening, rules);
    const std::string url = (rules.identity ? "https://" : "http://") + listening.where() + "/";
    HttpServer server(std::move(listening), std::move(rules), routes);
    files::print(url + "\n");
    files::flush();

    steady_clock::time_point next = steady_clock::now() + look_interval;
    while (!wait_for_end(next))
    {
        next = std::max(next + look_interval, steady_clock::now());
        decoders.look();
        metrics.rest();
        server.end_overdue();
    }
}

} // namespace server
