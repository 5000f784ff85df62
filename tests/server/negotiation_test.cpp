#include "negotiation.h"

#include <gtest/gtest.h>

using server::accepts_gzip;
using server::preferred_format;
using views::MetricsFormat;

namespace
{

TEST(Negotiation, WhoSaysNothingGetsTheOlderFormat)
{
    for (const char* accept : {"", "*/*", "text/plain", "text/html", "application/json", "text/plain;version=0.0.4;q=0.5,*/*;q=0.1", ",,;"})
        EXPECT_EQ(preferred_format(accept), MetricsFormat::prometheus) << accept;
}

TEST(Negotiation, OpenMetricsIsForThoseWhoLikeItAtLeastAsWell)
{
    for (const char* accept : {"application/openmetrics-text", "application/openmetrics-text; version=1.0.0; charset=utf-8",
                               "Application/OpenMetrics-Text;version=\"1.0.0\"",
                               "application/openmetrics-text;version=1.0.0,application/openmetrics-text;version=0.0.1;q=0.75,"
                               "text/plain;version=0.0.4;q=0.5,*/*;q=0.1",
                               "text/plain;q=0.3, application/openmetrics-text;q=0.301", "*/*;q=0.2,application/openmetrics-text;q=0.2"})
        EXPECT_EQ(preferred_format(accept), MetricsFormat::openmetrics) << accept;
}

TEST(Negotiation, AWeightOfZeroIsARefusal)
{
    for (const char* accept :
         {"application/openmetrics-text;q=0", "application/openmetrics-text;q=0.0,text/plain;q=0.1",
          "application/openmetrics-text;q=0.4,text/plain;q=0.5", "application/openmetrics-text;version=2.0.0",
          "application/openmetrics-text;q=yes", "application/openmetrics-text;q=0.12345", "application/openmetrics-text;q=-1"})
        EXPECT_EQ(preferred_format(accept), MetricsFormat::prometheus) << accept;
}

TEST(Negotiation, CompressedForThoseWhoAcceptIt)
{
    for (const char* accept : {"gzip", "deflate, gzip;q=1.0, *;q=0.5", "GZIP;q=0.001", "x-gzip", "*", "br , gzip"})
        EXPECT_TRUE(accepts_gzip(accept)) << accept;
    for (const char* accept : {"", "identity", "gzip;q=0", "*;q=0", "gzip;q=0,*", "gzipped", "br", "gzip;q=", "q=1"})
        EXPECT_FALSE(accepts_gzip(accept)) << accept;
}

} // namespace
