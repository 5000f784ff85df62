/**
 * @file connections.h
 * The connections that are open, and how long each has been at its present request. The library's own limit begins anew with each
 * byte, so a client that sends or reads slowly enough would keep its place forever.
 */
#ifndef SERVER_CONNECTIONS_H
#define SERVER_CONNECTIONS_H

#include <atomic>
#include <chrono>
#include <list>
#include <mutex>

namespace server
{

/** A connection. */
struct OpenConnection
{
    explicit OpenConnection(int opened) : descriptor(opened), since(std::chrono::steady_clock::now()) {}

    int descriptor;
    std::atomic<std::chrono::steady_clock::time_point> since; /**< it was opened, or its last request was answered */
};

/** All of them. Thread-safe. */
class Connections
{
public:
    /** Adds one. It stays where it is until it is closed. */
    OpenConnection* open(int descriptor);

    /** Takes one away. Its descriptor is still open. */
    void close(OpenConnection* connection);

    /** Ends those that are at a request for too long: nothing more is sent or received on them. */
    void end_overdue();

private:
    std::mutex mutex_;
    std::list<OpenConnection> open_;
};

} // namespace server

#endif
