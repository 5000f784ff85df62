#include "hosts.h"

#include <gtest/gtest.h>

using server::Hosts;

namespace
{

TEST(Hosts, ThisMachineAsItSeesItself)
{
    const Hosts hosts;
    for (const char* header : {"localhost", "localhost:9720", "LOCALHOST", "localhost.", "127.0.0.1", "127.0.0.1:80", "127.8.9.10", "[::1]",
                               "[::1]:9720", "[0:0:0:0:0:0:0:1]:1"})
        EXPECT_TRUE(hosts.allows(header, "")) << header;
}

TEST(Hosts, NobodyElse)
{
    const Hosts hosts;
    for (const char* header :
         {"", ":80", "evil.example", "localhost.evil.example", "127.0.0.1.evil.example", "localhost:80:90", "localhost:x", "[::1", "[::1]x",
          "::1", "192.0.2.1", "[2001:db8::1]", "0.0.0.0", "user@localhost", "localhost evil", "[]"})
        EXPECT_FALSE(hosts.allows(header, "")) << header;
}

TEST(Hosts, TheAddressThatTheConnectionCameTo)
{
    const Hosts hosts;
    EXPECT_TRUE(hosts.allows("192.0.2.1:9720", "192.0.2.1"));
    EXPECT_TRUE(hosts.allows("[2001:DB8:0::1]", "2001:db8::1"));
    EXPECT_FALSE(hosts.allows("192.0.2.2", "192.0.2.1"));
    EXPECT_FALSE(hosts.allows("", ""));
}

TEST(Hosts, NamesThatWereGiven)
{
    Hosts hosts;
    hosts.add("Unit.Example");
    hosts.add("2001:db8::5");
    EXPECT_TRUE(hosts.allows("unit.example:9720", ""));
    EXPECT_TRUE(hosts.allows("[2001:db8::5]:9720", ""));
    EXPECT_FALSE(hosts.allows("other.example", ""));
    EXPECT_FALSE(hosts.allows("unit.example.other", ""));
}

} // namespace
