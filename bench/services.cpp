#include <cstdio>
#include <cstring>

#include "bench.h"
#include "hostsvc.h"

using Write = char* (*)(char* szBuffer, size_t nSize);

/** A service, and what a host would write with snprintf. */
struct Comparison
{
    const char* name;
    Write service;
    Write viaSnprintf;
};

// Read at run time, so that the compiler does not know the values.
static volatile unsigned long octets = 299'481'637'120;
static volatile unsigned long bits_per_second = 12'843'220;
static volatile long long up_time = 185'140;
static volatile int compression = SMGR_TDEMUX_COMPRESSION_TYPE_H264;
static volatile unsigned int primaries = 9;
static const char* volatile compression_name = "H.264/AVC";
static const char* volatile primaries_name = "BT.2020";

static const Comparison comparisons[] = {
    {"FormatULONG", [](char* szBuffer, size_t nSize) { return FormatULONG(octets, szBuffer, nSize); },
     [](char* szBuffer, size_t nSize)
     {
         snprintf(szBuffer, nSize, "%lu", octets);
         return szBuffer;
     }},
    {"FormatBitRate", [](char* szBuffer, size_t nSize) { return FormatBitRate(bits_per_second, szBuffer, nSize); },
     [](char* szBuffer, size_t nSize)
     {
         snprintf(szBuffer, nSize, "%.2f Mbps", static_cast<double>(bits_per_second) / 1e6);
         return szBuffer;
     }},
    {"FormatUpTime", [](char* szBuffer, size_t nSize) { return FormatUpTime(up_time, szBuffer, nSize); },
     [](char* szBuffer, size_t nSize)
     {
         const long long seconds = up_time;
         snprintf(szBuffer, nSize, "%lldd %02lldh %02lldm %02llds", seconds / 86400, seconds / 3600 % 24, seconds / 60 % 60, seconds % 60);
         return szBuffer;
     }},
    {"SessMgr_GetTDemuxCompressionTypeString",
     [](char* szBuffer, size_t nSize) { return SessMgr_GetTDemuxCompressionTypeString(compression, szBuffer, nSize); },
     [](char* szBuffer, size_t nSize)
     {
         snprintf(szBuffer, nSize, "%s", compression_name);
         return szBuffer;
     }},
    {"SessMgr_GetVideoColourPrimariesString",
     [](char* szBuffer, size_t nSize) { return SessMgr_GetVideoColourPrimariesString(primaries, szBuffer, nSize); },
     [](char* szBuffer, size_t nSize)
     {
         snprintf(szBuffer, nSize, "%s", primaries_name);
         return szBuffer;
     }},
};

static Variant MakeVariant(const char* name, const char* way, Write write)
{
    return {std::string("services/") + name + "/" + way, [write]
            {
                char szBuffer[1024];
                write(szBuffer, sizeof szBuffer);
            }};
}

std::vector<Variant> ServiceVariants()
{
    std::vector<Variant> variants;
    for (const Comparison& c : comparisons)
    {
        char szService[1024];
        char szSnprintf[1024];
        if (strcmp(c.service(szService, sizeof szService), c.viaSnprintf(szSnprintf, sizeof szSnprintf)) != 0)
            Fail(std::string(c.name) + " gives " + szService + ", snprintf " + szSnprintf);
        variants.push_back(MakeVariant(c.name, "library", c.service));
        variants.push_back(MakeVariant(c.name, "snprintf", c.viaSnprintf));
    }
    return variants;
}
