#include "hosts.h"

#include <algorithm>
#include <arpa/inet.h>
#include <array>
#include <cctype>
#include <climits>
#include <unistd.h>

namespace server
{

namespace
{

/** An address in its one canonical form; what is none stays as it is. */
std::string canonical(const std::string& name)
{
    std::array<unsigned char, sizeof(in6_addr)> address = {};
    std::array<char, INET6_ADDRSTRLEN> text = {};
    for (const int family : {AF_INET, AF_INET6})
        if (inet_pton(family, name.c_str(), address.data()) == 1) return inet_ntop(family, address.data(), text.data(), text.size());
    return name;
}

} // namespace

bool is_loopback(const std::string& address)
{
    in_addr address4 = {};
    in6_addr address6 = {};
    if (inet_pton(AF_INET, address.c_str(), &address4) == 1) return ntohl(address4.s_addr) >> 24 == 127;
    return inet_pton(AF_INET6, address.c_str(), &address6) == 1 && IN6_IS_ADDR_LOOPBACK(&address6);
}

Hosts::Hosts()
{
    add("localhost");
    std::array<char, HOST_NAME_MAX + 1> own = {};
    if (gethostname(own.data(), own.size() - 1) == 0) add(own.data());
}

void Hosts::add(std::string_view name)
{
    const std::string known =
        name_in(name.find(':') != name.rfind(':') && !name.starts_with('[') ? "[" + std::string(name) + "]" : std::string(name));
    if (!known.empty()) names_.insert(known);
}

std::string Hosts::name_in(std::string_view header)
{
    std::string_view port;
    std::string_view name = header;
    if (header.starts_with('['))
    {
        const std::size_t end = header.find(']');
        if (end == std::string_view::npos) return {};
        name = header.substr(1, end - 1);
        port = header.substr(end + 1);
        if (!port.empty() && port[0] != ':') return {};
    }
    else if (const std::size_t colon = header.find(':'); colon != std::string_view::npos)
    {
        name = header.substr(0, colon);
        port = header.substr(colon);
    }
    const auto is_digit = [](unsigned char character) { return std::isdigit(character) != 0; };
    if (!port.empty() && !std::ranges::all_of(port.substr(1), is_digit)) return {};
    std::string lower(name);
    std::ranges::transform(lower, lower.begin(), [](unsigned char character) { return static_cast<char>(std::tolower(character)); });
    if (lower.ends_with('.')) lower.pop_back();
    return canonical(lower);
}

bool Hosts::allows(std::string_view header, std::string_view local_address) const
{
    const std::string name = name_in(header);
    return !name.empty() && (is_loopback(name) || names_.contains(name) || name == local_address);
}

} // namespace server
