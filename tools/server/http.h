/**
 * @file http.h
 * The server as it is on the network: connections, the checks that every request passes, answers.
 */
#ifndef SERVER_HTTP_H
#define SERVER_HTTP_H

#include <atomic>
#include <memory>
#include <optional>
#include <string>

#include "connections.h"
#include "headers.h"
#include "hosts.h"
#include "listening.h"
#include "response.h"
#include "routes.h"
#include "token.h"

struct MHD_Connection;
struct MHD_Daemon;

namespace server
{

/** A certificate with its private key, in PEM. */
struct Identity
{
    std::string certificate;
    std::string key;
};

/** Who may ask, and how. */
struct Access
{
    Hosts hosts;
    std::optional<Token> token;       /**< nothing = everybody may */
    std::optional<Identity> identity; /**< nothing = without TLS */
};

/** What the library has said first, whichever of its threads it was. */
struct Complaint
{
    std::atomic_flag is_made;
    std::string text;
};

/** Answers on the network for as long as it lives. */
class HttpServer
{
public:
    /** @param routes outlives it @throw Failure if it cannot start */
    HttpServer(Listening listening, Access access, const Routes& routes);
    ~HttpServer();
    HttpServer(const HttpServer&) = delete;
    HttpServer& operator=(const HttpServer&) = delete;

    /** Ends connections that are at one request for too long. Once a second. */
    void end_overdue() { connections_.end_overdue(); }

    /** Answers a request, of whichever kind, without a look at its body. @param method as it was sent */
    Answer answer(MHD_Connection* connection, std::string_view path, std::string_view method, const Headers& headers) const;

    Connections& connections() { return connections_; }

private:
    Access access_;
    const Routes& routes_;
    Connections connections_;
    std::unique_ptr<Complaint> complaint_;
    std::unique_ptr<MHD_Daemon, void (*)(MHD_Daemon*)> daemon_;
};

} // namespace server

#endif
