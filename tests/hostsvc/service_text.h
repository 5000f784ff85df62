// What the tests of the services share: a service's text, and a table of all the texts of a name service.
#ifndef TESTS_HOSTSVC_SERVICE_TEXT_H
#define TESTS_HOSTSVC_SERVICE_TEXT_H

#include <climits>
#include <cstddef>
#include <map>
#include <string>

#include <gtest/gtest.h>

// The text that a service writes into a buffer of the size that most reports use.
template <typename Service, typename... Values> std::string Text(Service service, Values... values)
{
    char szBuffer[1024] = "not written";
    EXPECT_EQ(static_cast<void*>(service(values..., szBuffer, sizeof(szBuffer))), static_cast<void*>(szBuffer));
    return szBuffer;
}

inline std::string Unknown(long long nValue)
{
    return "Unknown (" + std::to_string(nValue) + ")";
}

// Expects the names, and the text of unknown values for every other value from nFirst to nLast and at the ends of int.
// What a service takes besides the value stands in values.
template <typename Service, typename... Values>
void ExpectNames(Service service, int nFirst, int nLast, const std::map<int, std::string>& names, Values... values)
{
    ASSERT_FALSE(names.empty());
    ASSERT_LT(nFirst, names.begin()->first);
    ASSERT_GT(nLast, names.rbegin()->first);
    for (int nValue = nFirst; nValue <= nLast; ++nValue)
    {
        const auto name = names.find(nValue);
        EXPECT_EQ(Text(service, nValue, values...), name == names.end() ? Unknown(nValue) : name->second) << "value " << nValue;
    }
    EXPECT_EQ(Text(service, INT_MIN, values...), "Unknown (-2147483648)");
    EXPECT_EQ(Text(service, INT_MAX, values...), "Unknown (2147483647)");
}

#endif
