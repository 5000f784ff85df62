#include "listening.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <netdb.h>
#include <string_view>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

#include "failure.h"
#include "hosts.h"

namespace server
{

namespace
{

constexpr int first_inherited = 3; // SD_LISTEN_FDS_START
constexpr int backlog = 256;

/** The host and the port of an address. */
std::pair<std::string, std::string> parts_of(const std::string& address)
{
    const std::size_t colon = address.rfind(':');
    const std::string port = colon == std::string::npos ? "" : address.substr(colon + 1);
    std::string host = address.substr(0, std::min(colon, address.size()));
    if (host.starts_with('[') && host.ends_with(']'))
        host = host.substr(1, host.size() - 2);
    else if (host.find(':') != std::string::npos)
        host.clear(); // an IPv6 address without brackets ends nobody knows where
    unsigned number = 0;
    const auto [end, error] = std::from_chars(port.data(), port.data() + port.size(), number);
    if (host.empty() || port.empty() || error != std::errc() || end != port.data() + port.size() || number > 65535)
        files::fail_input("--listen " + files::shown(address) + ": an address and a port are expected, as 127.0.0.1:9720 or [::1]:9720");
    return {host, port};
}

/** Listens at an address. @return a descriptor, or -1 with errno set */
int listen_at(const addrinfo& address)
{
    const int descriptor = socket(address.ai_family, address.ai_socktype | SOCK_CLOEXEC | SOCK_NONBLOCK, address.ai_protocol);
    if (descriptor < 0) return -1;
    const int yes = 1;
    setsockopt(descriptor, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    if (bind(descriptor, address.ai_addr, address.ai_addrlen) == 0 && listen(descriptor, backlog) == 0) return descriptor;
    const int number = errno;
    close(descriptor);
    errno = number;
    return -1;
}

using AddressText = std::array<char, NI_MAXHOST>;
using PortText = std::array<char, NI_MAXSERV>;

bool read_address(int descriptor, AddressText& host, PortText& port)
{
    sockaddr_storage address = {};
    socklen_t size = sizeof address;
    if (getsockname(descriptor, reinterpret_cast<sockaddr*>(&address), &size) != 0) return false;
    return getnameinfo(reinterpret_cast<const sockaddr*>(&address), size, host.data(), NI_MAXHOST, port.data(), NI_MAXSERV,
                       NI_NUMERICHOST | NI_NUMERICSERV) == 0;
}

} // namespace

std::string local_address(int descriptor)
{
    AddressText host = {};
    PortText port = {};
    if (!read_address(descriptor, host, port)) return {};
    const std::string_view text = host.data();
    constexpr std::string_view mapped = "::ffff:"; // IPv4 that comes to a socket of both
    const bool is_mapped = text.starts_with(mapped) && text.find('.') != std::string_view::npos;
    return std::string(is_mapped ? text.substr(mapped.size()) : text);
}

Listening::Listening(const std::string& address)
{
    const auto [host, port] = parts_of(address);
    addrinfo hints = {};
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_flags = AI_PASSIVE | AI_NUMERICSERV;
    addrinfo* found = nullptr;
    const int error = getaddrinfo(host.c_str(), port.c_str(), &hints, &found);
    if (error != 0) files::fail_input("--listen " + files::shown(address) + ": " + gai_strerror(error));
    const std::unique_ptr<addrinfo, decltype(&freeaddrinfo)> addresses(found, &freeaddrinfo);
    descriptor_ = listen_at(*addresses);
    if (descriptor_ < 0) files::fail_input("cannot listen on " + files::shown(address) + ": " + std::strerror(errno));
    host_ = host;
}

bool Listening::is_inherited()
{
    const char* process = std::getenv("LISTEN_PID");
    return process != nullptr && std::to_string(getpid()) == process && std::getenv("LISTEN_FDS") != nullptr;
}

Listening Listening::inherited()
{
    const char* const count = std::getenv("LISTEN_FDS");
    if (count == nullptr || std::string_view(count) != "1")
        files::fail_input("more than one socket was handed over, and there is use for one");
    int accepts = 0;
    socklen_t size = sizeof accepts;
    AddressText host = {};
    PortText port = {};
    if (getsockopt(first_inherited, SOL_SOCKET, SO_ACCEPTCONN, &accepts, &size) != 0 || accepts == 0 ||
        !read_address(first_inherited, host, port))
        files::fail_input("what was handed over is no socket that listens");
    fcntl(first_inherited, F_SETFD, FD_CLOEXEC);
    fcntl(first_inherited, F_SETFL, fcntl(first_inherited, F_GETFL) | O_NONBLOCK);
    return {first_inherited, host.data()};
}

Listening::Listening(Listening&& other) noexcept : descriptor_(other.release()), host_(std::move(other.host_)) {}

Listening::~Listening()
{
    if (descriptor_ >= 0) close(descriptor_);
}

int Listening::release()
{
    return std::exchange(descriptor_, -1);
}

std::string Listening::where() const
{
    AddressText host = {};
    PortText port = {};
    if (!read_address(descriptor_, host, port)) return host_;
    const bool is_ipv6 = std::strchr(host.data(), ':') != nullptr;
    return (is_ipv6 ? "[" + std::string(host.data()) + "]" : std::string(host.data())) + ":" + port.data();
}

bool Listening::is_loopback() const
{
    return server::is_loopback(local_address(descriptor_));
}

} // namespace server
