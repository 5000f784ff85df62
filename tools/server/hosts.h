/**
 * @file hosts.h
 * The names under which this server may be addressed. A web page elsewhere whose name is made to lead here (DNS rebinding) asks
 * for its own name, and is refused.
 */
#ifndef SERVER_HOSTS_H
#define SERVER_HOSTS_H

#include <set>
#include <string>
#include <string_view>

namespace server
{

/** The names that a header Host may have. */
class Hosts
{
public:
    /** Those of this machine as it is seen by itself: its loopback addresses and names, and its own host name. */
    Hosts();

    /** Adds a name or an address. */
    void add(std::string_view name);

    /**
     * Whether a header Host names this server.
     * @param header        the header's value, with a port or without
     * @param local_address the address that the connection came to, without a port
     */
    bool allows(std::string_view header, std::string_view local_address) const;

    /** The name of a header Host in lower case, without its port and brackets. @return empty = it is none */
    static std::string name_in(std::string_view header);

private:
    std::set<std::string, std::less<>> names_;
};

/** Whether an address is one that only this machine reaches. */
bool is_loopback(const std::string& address);

} // namespace server

#endif
