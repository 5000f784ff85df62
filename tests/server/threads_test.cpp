/**
 * @file threads_test.cpp
 * The whole server with all its threads while decoders come and go: for ThreadSanitizer, which sees what two threads touch without an
 * order between them.
 */
#include <array>
#include <atomic>
#include <chrono>
#include <cstring>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <string>
#include <string_view>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>
#include <vector>

#include "bounds.h"
#include "http.h"
#include "samples_publish.h"
#include "scratch_directory.h"
#include "simulation.h"

using namespace std::chrono_literals;
using std::chrono::steady_clock;

namespace
{

constexpr auto lasts = 3s;

/** A host process, but for being one: publishes a living sample. */
class Host
{
public:
    Host(const char* name, const std::string& directory) : simulation_("live-srt-1080i", 1, std::chrono::system_clock::now())
    {
        STATS_PUBLISH_ERROR error = {};
        publisher_ = STATS_PublishOpen(name, directory.c_str(), "test", 0, &error);
        EXPECT_NE(publisher_, nullptr) << error.szText;
        publish();
    }
    ~Host() { STATS_PublishClose(publisher_); }
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;

    void publish()
    {
        simulation_.advance(std::chrono::system_clock::now() - simulation_.now());
        samples_publish(publisher_, &simulation_.records());
        STATS_PublishHeartbeat(publisher_);
    }

private:
    samples::Simulation simulation_;
    STATS_PUBLISHER* publisher_ = nullptr;
};

/** 127.0.0.last. */
sockaddr_in loopback(std::uint32_t last, std::uint16_t port)
{
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK - 1 + last);
    return address;
}

/** What comes back for one request on a connection of its own; empty = nothing did. */
std::string answer(std::uint16_t port, const std::string& path, const char* header)
{
    const int connection = socket(AF_INET, SOCK_STREAM, 0);
    const sockaddr_in address = loopback(1, port);
    std::string received;
    const std::string request = "GET " + path + " HTTP/1.1\r\nHost: localhost\r\nConnection: close\r\n" + header + "\r\n";
    if (connect(connection, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 &&
        send(connection, request.data(), request.size(), 0) == static_cast<ssize_t>(request.size()))
    {
        std::array<char, 65536> part;
        for (ssize_t size = 0; (size = recv(connection, part.data(), part.size(), 0)) > 0;)
            received.append(part.data(), static_cast<std::size_t>(size));
    }
    close(connection);
    return received;
}

/** Comes with more connections than one address may have, from an address of its own, again and again. */
void crowd(std::uint16_t port, const std::atomic<bool>& is_over)
{
    while (!is_over)
    {
        std::array<int, server::most_connections_of_an_address + 8> connections;
        for (int& connection : connections)
        {
            connection = socket(AF_INET, SOCK_STREAM, 0);
            const sockaddr_in own = loopback(2, 0);
            const sockaddr_in address = loopback(1, port);
            EXPECT_EQ(bind(connection, reinterpret_cast<const sockaddr*>(&own), sizeof own), 0);
            EXPECT_EQ(connect(connection, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
        }
        std::this_thread::sleep_for(20ms);
        for (const int connection : connections) close(connection);
    }
}

/** Asks for the same again and again. */
struct Client
{
    std::string path;
    const char* header = "";
    unsigned may_be = 200; /**< another status that it gets now and then, or always */
    int answers = 0;
    std::string other = {}; /**< the first answer that was neither; it ends the asking */

    void ask(std::uint16_t port, const std::atomic<bool>& is_over)
    {
        while (!is_over && other.empty())
        {
            const std::string received = answer(port, path, header);
            ++answers;
            if (!received.starts_with("HTTP/1.1 200 ") && !received.starts_with("HTTP/1.1 " + std::to_string(may_be)))
                other = received.empty() ? "nothing" : received;
        }
    }
};

TEST(Server, ThreadsOfClientsWhileDecodersComeAndGo)
{
    const ScratchDirectory directory;
    const Host always("always", directory.path());
    server::Decoders decoders({.directory = directory.path(), .sources = {}, .captures = {}});
    server::MetricsPage metrics(decoders);
    server::ReportPage reports(std::string(STATS_FILE));
    decoders.look();
    const server::Routes routes(decoders, metrics, reports);
    server::Listening listening("127.0.0.1:0");
    const std::string where = listening.where();
    const auto port = static_cast<std::uint16_t>(std::stoi(where.substr(where.find(':') + 1)));
    server::HttpServer server(std::move(listening), {.hosts = {}, .token = {}, .identity = {}}, routes);

    const std::string since =
        std::to_string(std::chrono::duration_cast<std::chrono::seconds>(std::chrono::system_clock::now().time_since_epoch()).count() - 60);
    std::vector<Client> clients = {
        {.path = "/metrics"},
        {.path = "/metrics", .header = "Accept-Encoding: gzip\r\n"},
        {.path = "/metrics", .header = "Accept: application/openmetrics-text; version=1.0.0\r\n"},
        {.path = "/"},
        {.path = "/page.js", .header = "Accept-Encoding: gzip\r\n"},
        {.path = "/api/v1/decoders"},
        {.path = "/api/v1/decoders/always"},
        {.path = "/api/v1/decoders/always/findings"},
        {.path = "/api/v1/decoders/always/report?level=debug"},
        {.path = "/api/v1/decoders/always/history?field=tdemux.received_packets&from=" + since},
        {.path = "/api/v1/decoders/guest-0?raw", .may_be = 404},
        {.path = "/api/v1/decoders/guest-1/findings", .may_be = 404},
        {.path = "/nothing", .may_be = 404},
        {.path = "/malformed", .header = "Content-Length: x\r\n", .may_be = 400},
    };
    std::atomic<bool> is_over = false;
    std::vector<std::thread> threads;
    for (Client& client : clients) threads.emplace_back([&client, &is_over, port] { client.ask(port, is_over); });
    threads.emplace_back([&is_over, port] { crowd(port, is_over); });
    threads.emplace_back(
        [&]
        {
            for (int guests = 0; !is_over; ++guests)
            {
                // Each second one is a new one, the others come again.
                const std::string name = "guest-" + std::to_string(guests % 2 == 0 ? 0 : guests);
                Host guest(name.c_str(), directory.path());
                for (int i = 0; i < 3 && !is_over; ++i)
                {
                    std::this_thread::sleep_for(20ms);
                    guest.publish();
                }
            }
        });
    for (const auto begin = steady_clock::now(); steady_clock::now() - begin < lasts; std::this_thread::sleep_for(20ms))
    {
        decoders.look();
        metrics.rest();
        server.end_overdue();
    }
    is_over = true;
    for (std::thread& thread : threads) thread.join();
    for (const Client& client : clients)
    {
        EXPECT_EQ(client.other, "") << client.path;
        EXPECT_GE(client.answers, 5) << client.path;
    }
}

} // namespace
