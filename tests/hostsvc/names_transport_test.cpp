// The texts of the transport demux's enumerations, addresses and versions.
#include <cstring>
#include <initializer_list>

#include <sys/socket.h>

#include "hostsvc.h"
#include "service_text.h"

TEST(TDemuxState, EveryStateHasItsName)
{
    static const std::map<int, std::string> NAMES = {
        {SMGR_TDEMUX_STATS_STATE_FAILED,     "Failed"    },
        {SMGR_TDEMUX_STATS_STATE_INVALID,    "Invalid"   },
        {SMGR_TDEMUX_STATS_STATE_UNKNOWN,    "Unknown"   },
        {SMGR_TDEMUX_STATS_STATE_STOPPED,    "Stopped"   },
        {SMGR_TDEMUX_STATS_STATE_LISTENING,  "Listening" },
        {SMGR_TDEMUX_STATS_STATE_ACTIVE,     "Active"    },
        {SMGR_TDEMUX_STATS_STATE_RESOLVING,  "Resolving" },
        {SMGR_TDEMUX_STATS_STATE_CONNECTING, "Connecting"},
        {SMGR_TDEMUX_STATS_STATE_SCRAMBLED,  "Scrambled" },
        {SMGR_TDEMUX_STATS_STATE_SECURING,   "Securing"  },
    };
    ExpectNames(SessMgr_GetTDemuxStateString, -10, 20, NAMES);
}

TEST(TDemuxDataType, EveryTypeHasItsName)
{
    static const std::map<int, std::string> NAMES = {
        {SMGR_TDEMUX_DATA_TYPE_UNKNOWN, "Unknown"},
        {SMGR_TDEMUX_DATA_TYPE_VIDEO,   "Video"  },
        {SMGR_TDEMUX_DATA_TYPE_AUDIO,   "Audio"  },
        {SMGR_TDEMUX_DATA_TYPE_KLV,     "KLV"    },
    };
    ExpectNames(SessMgr_GetTDemuxDataTypeString, -10, 20, NAMES);
}

TEST(TDemuxCompressionType, EveryTypeHasItsName)
{
    static const std::map<int, std::string> NAMES = {
        {SMGR_TDEMUX_COMPRESSION_TYPE_UNKNOWN,      "Unknown"         },
        {SMGR_TDEMUX_COMPRESSION_TYPE_UNCOMPRESSED, "Uncompressed"    },
        {SMGR_TDEMUX_COMPRESSION_TYPE_H264,         "H.264/AVC"       },
        {SMGR_TDEMUX_COMPRESSION_TYPE_H265,         "H.265/HEVC"      },
        {SMGR_TDEMUX_COMPRESSION_TYPE_MPEG1,        "MPEG-1"          },
        {SMGR_TDEMUX_COMPRESSION_TYPE_MPEG2,        "MPEG-2"          },
        {SMGR_TDEMUX_COMPRESSION_TYPE_MPEG4,        "MPEG-4"          },
        {SMGR_TDEMUX_COMPRESSION_TYPE_AAC_ADTS,     "AAC-ADTS"        },
        {SMGR_TDEMUX_COMPRESSION_TYPE_AAC_LATM,     "AAC-LATM"        },
        {SMGR_TDEMUX_COMPRESSION_TYPE_AC3,          "AC-3"            },
        {SMGR_TDEMUX_COMPRESSION_TYPE_MP1,          "MPEG-1 Layer I"  },
        {SMGR_TDEMUX_COMPRESSION_TYPE_MP2,          "MPEG-1 Layer II" },
        {SMGR_TDEMUX_COMPRESSION_TYPE_MP3,          "MPEG-1 Layer III"},
    };
    ExpectNames(SessMgr_GetTDemuxCompressionTypeString, -10, 2100, NAMES);
}

TEST(StreamEncapsulation, EveryEncapsulationHasItsName)
{
    static const std::map<int, std::string> NAMES = {
        {SMGR_STREAM_ENCAPSULATION_TS_RTP, "MPEG-TS over RTP"},
        {SMGR_STREAM_ENCAPSULATION_TS_SRT, "MPEG-TS over SRT"},
    };
    ExpectNames(SessMgr_GetStreamEncapsulationString, -10, 100, NAMES);
}

namespace
{

SMGR_IP_ADDRESS Address(int enType, std::initializer_list<BYTE> bytes, const char* szHostName = "")
{
    SMGR_IP_ADDRESS address = {};
    address.enType = enType;
    std::copy(bytes.begin(), bytes.end(), address.acAddress);
    std::strcpy(address.szHostName, szHostName);
    return address;
}

std::string AddressText(const SMGR_IP_ADDRESS& address)
{
    return Text(SessMgr_GetIPAddressString, &address);
}

} // namespace

TEST(IPAddress, IPv4IsDotted)
{
    EXPECT_EQ(AddressText(Address(AF_INET, {192, 0, 2, 10})), "192.0.2.10");
    EXPECT_EQ(AddressText(Address(AF_INET, {255, 255, 255, 255})), "255.255.255.255");
    EXPECT_EQ(AddressText(Address(AF_INET, {0, 0, 0, 1})), "0.0.0.1");
    // An IPv4 address has 4 bytes: what stands behind them does not count.
    EXPECT_EQ(AddressText(Address(AF_INET, {198, 51, 100, 7, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9})), "198.51.100.7");
}

TEST(IPAddress, IPv6IsAsRFC5952Says)
{
    // Section 4.1: no leading zeros; 4.3: lower case.
    EXPECT_EQ(AddressText(Address(AF_INET6, {0x20, 0x01, 0x0D, 0xB8, 0x0A, 0xBC, 0, 1, 0, 2, 0, 3, 0, 4, 0xFE, 0xED})),
        "2001:db8:abc:1:2:3:4:feed");
    // 4.2.1: as short as possible.
    EXPECT_EQ(AddressText(Address(AF_INET6, {0x20, 0x01, 0x0D, 0xB8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1})), "2001:db8::1");
    EXPECT_EQ(AddressText(Address(AF_INET6, {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1})), "::1");
    EXPECT_EQ(AddressText(Address(AF_INET6, {0x20, 0x01, 0x0D, 0xB8})), "2001:db8::");
    // 4.2.2: a single group of zeros is not shortened.
    EXPECT_EQ(AddressText(Address(AF_INET6, {0x20, 0x01, 0x0D, 0xB8, 0, 0, 0, 1, 0, 1, 0, 1, 0, 1, 0, 1})), "2001:db8:0:1:1:1:1:1");
    // 4.2.3: the longest run, and of two equal ones the first.
    EXPECT_EQ(AddressText(Address(AF_INET6, {0x20, 0x01, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 1})), "2001:0:0:1::1");
    EXPECT_EQ(AddressText(Address(AF_INET6, {0x20, 0x01, 0x0D, 0xB8, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 1})), "2001:db8::1:0:0:1");
    // 5: an IPv4-mapped address keeps its dots.
    EXPECT_EQ(AddressText(Address(AF_INET6, {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0xFF, 192, 0, 2, 10})), "::ffff:192.0.2.10");
}

TEST(IPAddress, NoAddressReadsAsZeros)
{
    EXPECT_EQ(AddressText(SMGR_IP_ADDRESS{}), "0.0.0.0");
    EXPECT_EQ(AddressText(Address(AF_INET, {})), "0.0.0.0");
    EXPECT_EQ(AddressText(Address(AF_INET6, {})), "0.0.0.0");
    // Without a family the bytes mean nothing.
    EXPECT_EQ(AddressText(Address(AF_UNSPEC, {192, 0, 2, 10})), "0.0.0.0");
}

TEST(IPAddress, HostNameComesFirst)
{
    EXPECT_EQ(AddressText(Address(AF_INET, {192, 0, 2, 10}, "encoder.example")), "encoder.example (192.0.2.10)");
    EXPECT_EQ(AddressText(Address(AF_INET6, {0x20, 0x01, 0x0D, 0xB8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1}, "encoder.example")),
        "encoder.example (2001:db8::1)");
    EXPECT_EQ(AddressText(Address(AF_UNSPEC, {}, "encoder.example")), "encoder.example (0.0.0.0)");
}

TEST(IPAddress, BytesOfAHostNameThatAreNotPrintableASCIIAreReplaced)
{
    EXPECT_EQ(AddressText(Address(AF_INET, {192, 0, 2, 10}, "a\x1B[2Jb\nState: Active\r\t\x7F")), "a?[2Jb?State: Active??? (192.0.2.10)");
    EXPECT_EQ(AddressText(Address(AF_INET, {192, 0, 2, 10}, "m\xC3\xBCnchen\x80\xFF")), "m??nchen?? (192.0.2.10)");
    for (int nByte = 1; nByte < 256; ++nByte)
    {
        const char szName[] = {static_cast<char>(nByte), '\0'};
        const std::string expected(1, nByte >= 0x20 && nByte <= 0x7E ? szName[0] : '?');
        EXPECT_EQ(AddressText(Address(AF_INET, {192, 0, 2, 10}, szName)), expected + " (192.0.2.10)") << nByte;
    }
}

TEST(IPAddress, HostNameWithoutNulEndsWithItsArray)
{
    SMGR_IP_ADDRESS address = Address(AF_INET, {192, 0, 2, 10});
    std::memset(address.szHostName, 'a', sizeof(address.szHostName));
    EXPECT_EQ(AddressText(address), std::string(512, 'a') + " (192.0.2.10)");
}

TEST(IPAddress, LongestTextIsWhole)
{
    SMGR_IP_ADDRESS address = Address(AF_INET6, {});
    std::memset(address.acAddress, 0xFF, sizeof(address.acAddress));
    std::memset(address.szHostName, 'a', sizeof(address.szHostName));
    EXPECT_EQ(AddressText(address), std::string(512, 'a') + " (ffff:ffff:ffff:ffff:ffff:ffff:ffff:ffff)");
}

TEST(IPAddress, OtherFamilyIsUnknown)
{
    for (int enType : {-1, 1, 3, 9, 11, INT_MIN, INT_MAX})
    {
        EXPECT_EQ(AddressText(Address(enType, {192, 0, 2, 10})), Unknown(enType));
    }
    EXPECT_EQ(AddressText(Address(7, {192, 0, 2, 10}, "encoder.example")), "encoder.example (Unknown (7))");
}

TEST(SRTVersion, PartsAreDotted)
{
    EXPECT_EQ(Text(SessMgr_GetSRTVersionString, 0x010404), "1.4.4");
    EXPECT_EQ(Text(SessMgr_GetSRTVersionString, 0x010500), "1.5.0");
    EXPECT_EQ(Text(SessMgr_GetSRTVersionString, 0x000001), "0.0.1");
    EXPECT_EQ(Text(SessMgr_GetSRTVersionString, 0x0A0B0C), "10.11.12");
    EXPECT_EQ(Text(SessMgr_GetSRTVersionString, 0xFFFFFF), "255.255.255");
}

TEST(SRTVersion, OtherNumbersAreUnknown)
{
    EXPECT_EQ(Text(SessMgr_GetSRTVersionString, 0), "Unknown");
    EXPECT_EQ(Text(SessMgr_GetSRTVersionString, 0x1000000), "Unknown (16777216)");
    EXPECT_EQ(Text(SessMgr_GetSRTVersionString, -1), "Unknown (-1)");
    EXPECT_EQ(Text(SessMgr_GetSRTVersionString, INT_MIN), "Unknown (-2147483648)");
    EXPECT_EQ(Text(SessMgr_GetSRTVersionString, INT_MAX), "Unknown (2147483647)");
}
