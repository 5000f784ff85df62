#include "input/socket_source.h"

#include <algorithm>
#include <arpa/inet.h>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <net/if.h>
#include <netinet/in.h>
#include <numeric>
#include <poll.h>
#include <string_view>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

namespace softdec
{

namespace
{

constexpr int wait_milliseconds = 100;

/** Datagrams of a second at 100 Mbit/s, so that a moment without the processor loses nothing. */
constexpr int receive_buffer = 16 << 20;

/** An address and a port, of either family. */
union Address
{
    sockaddr any;
    sockaddr_in v4;
    sockaddr_in6 v6;
};

/** Where to receive. */
struct Target
{
    Address local = {}; // to bind to
    Address group = {}; // to join, AF_UNSPEC = none
    unsigned port = 0;
};

[[noreturn]] void fail(const std::string& text, const std::string& why)
{
    throw InputError("udp address " + text + ": " + why);
}

bool parse_address(std::string_view text, Address& address)
{
    if (text.starts_with('[') && text.ends_with(']')) text = text.substr(1, text.size() - 2);
    const std::string name(text);
    if (inet_pton(AF_INET, name.c_str(), &address.v4.sin_addr) == 1)
    {
        address.v4.sin_family = AF_INET;
        return true;
    }
    if (inet_pton(AF_INET6, name.c_str(), &address.v6.sin6_addr) != 1) return false;
    address.v6.sin6_family = AF_INET6;
    return true;
}

bool is_multicast(const Address& address)
{
    if (address.any.sa_family == AF_INET) return IN_MULTICAST(ntohl(address.v4.sin_addr.s_addr));
    return IN6_IS_ADDR_MULTICAST(&address.v6.sin6_addr);
}

Target parse_target(const std::string& text)
{
    constexpr const char* expected = "expected [GROUP@]ADDRESS:PORT with numeric addresses, IPv6 ones in brackets";
    Target target;
    const std::size_t colon = text.rfind(':');
    if (colon == std::string::npos) fail(text, expected);
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data() + colon + 1, end, target.port);
    if (error != std::errc() || rest != end || target.port == 0 || target.port > 65535) fail(text, "expected a port from 1 to 65535");

    const std::string_view addresses(text.data(), colon);
    const std::size_t at = addresses.find('@');
    const std::string_view group = at == std::string_view::npos ? std::string_view() : addresses.substr(0, at);
    const std::string_view local = at == std::string_view::npos ? addresses : addresses.substr(at + 1);
    if (!parse_address(local, target.local)) fail(text, expected);
    if (!group.empty() && (!parse_address(group, target.group) || !is_multicast(target.group))) fail(text, "GROUP is no multicast address");
    if (group.empty() && is_multicast(target.local)) target.group = target.local;
    if (target.group.any.sa_family != AF_UNSPEC && target.group.any.sa_family != target.local.any.sa_family)
        fail(text, "GROUP and ADDRESS are of two families");
    return target;
}

void join(int descriptor, const Target& target, const std::string& text)
{
    int result = 0;
    if (target.group.any.sa_family == AF_INET)
    {
        ip_mreq request = {.imr_multiaddr = target.group.v4.sin_addr, .imr_interface = {}};
        // The group's own address names no interface: then the system chooses.
        if (!is_multicast(target.local)) request.imr_interface = target.local.v4.sin_addr;
        result = setsockopt(descriptor, IPPROTO_IP, IP_ADD_MEMBERSHIP, &request, sizeof request);
    }
    else if (target.group.any.sa_family == AF_INET6)
    {
        const ipv6_mreq request = {.ipv6mr_multiaddr = target.group.v6.sin6_addr, .ipv6mr_interface = 0};
        result = setsockopt(descriptor, IPPROTO_IPV6, IPV6_ADD_MEMBERSHIP, &request, sizeof request);
    }
    if (result != 0) fail(text, std::string("the group cannot be joined: ") + std::strerror(errno));
}

int open_socket(const Target& target, unsigned port, const std::string& text)
{
    const int descriptor = socket(target.local.any.sa_family, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (descriptor < 0) fail(text, std::strerror(errno));
    const int on = 1;
    // A group is bound to, so that other groups on the port stay out; several programs may receive it.
    Address address = target.group.any.sa_family != AF_UNSPEC ? target.group : target.local;
    (address.any.sa_family == AF_INET ? address.v4.sin_port : address.v6.sin6_port) = htons(static_cast<std::uint16_t>(port));
    if (target.group.any.sa_family != AF_UNSPEC) setsockopt(descriptor, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    setsockopt(descriptor, SOL_SOCKET, SO_RCVBUF, &receive_buffer, sizeof receive_buffer);
    setsockopt(descriptor, SOL_SOCKET, SO_TIMESTAMPNS, &on, sizeof on);
    setsockopt(descriptor, SOL_SOCKET, SO_RXQ_OVFL, &on, sizeof on);
    const socklen_t size = address.any.sa_family == AF_INET ? sizeof address.v4 : sizeof address.v6;
    if (bind(descriptor, &address.any, size) == 0) return descriptor;
    const int error = errno;
    close(descriptor);
    fail(text, "port " + std::to_string(port) + " cannot be received on: " + std::strerror(error));
}

SMGR_IP_ADDRESS record_address(const Address& address)
{
    SMGR_IP_ADDRESS record = {};
    record.enType = address.any.sa_family;
    if (address.any.sa_family == AF_INET)
        std::memcpy(record.acAddress, &address.v4.sin_addr, sizeof address.v4.sin_addr);
    else
        std::memcpy(record.acAddress, &address.v6.sin6_addr, sizeof address.v6.sin6_addr);
    return record;
}

Nanoseconds now()
{
    timespec time = {};
    clock_gettime(CLOCK_REALTIME, &time);
    return time.tv_sec * second + time.tv_nsec;
}

} // namespace

SocketSource::SocketSource(const std::string& address, bool with_fec)
{
    const Target target = parse_target(address);
    constexpr Channel channels[] = {Channel::media, Channel::column_fec, Channel::row_fec};
    try
    {
        for (unsigned i = 0; i < (with_fec ? 3U : 1U); ++i)
        {
            if (target.port + 2 * i > 65535) break;
            sockets_.push_back({.descriptor = open_socket(target, target.port + 2 * i, address), .channel = channels[i]});
            join(sockets_.back().descriptor, target, address);
        }
    }
    catch (...)
    {
        for (const Socket& socket : sockets_) close(socket.descriptor);
        throw;
    }
    network.local = record_address(target.group.any.sa_family != AF_UNSPEC ? target.group : target.local);
    network.local_port = target.port;
    buffers_.resize(sockets_.size() * batch * largest_datagram);
}

SocketSource::~SocketSource()
{
    for (const Socket& socket : sockets_) close(socket.descriptor);
}

/** Reads what has come to a socket, as far as its buffers reach. */
void SocketSource::receive(Socket& socket)
{
    std::array<mmsghdr, batch> messages = {};
    std::array<iovec, batch> pieces = {};
    std::array<Address, batch> senders = {};
    alignas(cmsghdr) std::array<std::array<char, 128>, batch> control;
    const auto place = static_cast<std::size_t>(&socket - sockets_.data()) * batch;
    for (std::size_t i = 0; i < batch; ++i)
    {
        pieces[i] = {.iov_base = &buffers_[(place + i) * largest_datagram], .iov_len = largest_datagram};
        messages[i].msg_hdr = {.msg_name = &senders[i],
                               .msg_namelen = sizeof senders[i],
                               .msg_iov = &pieces[i],
                               .msg_iovlen = 1,
                               .msg_control = control[i].data(),
                               .msg_controllen = control[i].size(),
                               .msg_flags = 0};
    }
    const int count = recvmmsg(socket.descriptor, messages.data(), batch, MSG_DONTWAIT, nullptr);
    if (count < 0 && errno != EAGAIN && errno != EINTR) ++network.errors;
    for (int k = 0; k < count; ++k)
    {
        const auto i = static_cast<std::size_t>(k);
        msghdr& header = messages[i].msg_hdr;
        Nanoseconds arrival = 0;
        for (cmsghdr* item = CMSG_FIRSTHDR(&header); item != nullptr; item = CMSG_NXTHDR(&header, item))
        {
            if (item->cmsg_level != SOL_SOCKET) continue;
            if (item->cmsg_type == SCM_TIMESTAMPNS)
            {
                timespec time = {};
                std::memcpy(&time, CMSG_DATA(item), sizeof time);
                arrival = time.tv_sec * second + time.tv_nsec;
            }
            else if (item->cmsg_type == SO_RXQ_OVFL)
            {
                std::uint32_t overflows = 0;
                std::memcpy(&overflows, CMSG_DATA(item), sizeof overflows);
                network.overflows += overflows - socket.overflows; // counts from the opening, modulo 2^32
                socket.overflows = overflows;
            }
        }
        if (socket.channel == Channel::media)
        {
            network.sender = record_address(senders[i]);
            network.sender_port = ntohs(senders[i].any.sa_family == AF_INET ? senders[i].v4.sin_port : senders[i].v6.sin6_port);
        }
        waiting_.push_back({.channel = socket.channel,
                            .arrival = arrival != 0 ? arrival : now(),
                            .bytes = {&buffers_[(place + i) * largest_datagram], messages[i].msg_len}});
    }
}

Source::Result SocketSource::next(Datagram& datagram)
{
    if (taken_ == waiting_.size())
    {
        waiting_.clear();
        taken_ = 0;
        std::array<pollfd, 3> descriptors = {};
        for (std::size_t i = 0; i < sockets_.size(); ++i) descriptors[i] = {.fd = sockets_[i].descriptor, .events = POLLIN, .revents = 0};
        if (poll(descriptors.data(), sockets_.size(), wait_milliseconds) <= 0) return Result::nothing;
        for (std::size_t i = 0; i < sockets_.size(); ++i)
            if (descriptors[i].revents != 0) receive(sockets_[i]);
        if (waiting_.empty()) return Result::nothing;
        // What came to several sockets is taken in the order in which it arrived.
        std::ranges::stable_sort(waiting_, {}, [](const Datagram& waiting) { return *waiting.arrival; });
    }
    datagram = waiting_[taken_++];
    return Result::datagram;
}

} // namespace softdec
