/**
 * @file listening.h
 * The socket that the server listens on.
 */
#ifndef SERVER_LISTENING_H
#define SERVER_LISTENING_H

#include <string>

namespace server
{

/** A socket that listens, and where. */
class Listening
{
public:
    /**
     * Listens.
     * @param address as 127.0.0.1:9720, [::1]:9720 or localhost:9720; port 0 = any that is free
     * @throw Failure if that is none, or if nobody can listen there
     */
    explicit Listening(const std::string& address);

    /** Takes the socket that whoever started this process listens on (sd_listen_fds(3)). @throw Failure if it is not one, of TCP */
    static Listening inherited();

    /** Whether there is such a socket. */
    static bool is_inherited();

    Listening(Listening&& other) noexcept;
    Listening& operator=(Listening&& other) = delete;
    ~Listening();

    int descriptor() const { return descriptor_; }

    /** Gives the socket away. */
    int release();

    /** Host as it was named; that of an inherited socket is its address. */
    const std::string& host() const { return host_; }

    /** Where it listens, as 127.0.0.1:9720. */
    std::string where() const;

    /** Whether only this machine reaches it. */
    bool is_loopback() const;

private:
    Listening(int descriptor, std::string host) : descriptor_(descriptor), host_(std::move(host)) {}

    int descriptor_ = -1;
    std::string host_;
};

/** The address of a socket's own end, without its port. @return empty = it has none */
std::string local_address(int descriptor);

} // namespace server

#endif
