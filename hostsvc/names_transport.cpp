/**
 * @file names_transport.cpp
 * Names and addresses of the transport demux.
 */
#include <arpa/inet.h>
#include <sys/socket.h>

#include "hostsvc.h"
#include "names.h"

using namespace hostsvc;

char* SessMgr_GetTDemuxStateString(int enState, char* szBuffer, size_t nSize)
{
    static constexpr Name STATES[] = {
        {SMGR_TDEMUX_STATS_STATE_UNKNOWN,    "Unknown"   },
        {SMGR_TDEMUX_STATS_STATE_STOPPED,    "Stopped"   },
        {SMGR_TDEMUX_STATS_STATE_LISTENING,  "Listening" },
        {SMGR_TDEMUX_STATS_STATE_ACTIVE,     "Active"    },
        {SMGR_TDEMUX_STATS_STATE_RESOLVING,  "Resolving" },
        {SMGR_TDEMUX_STATS_STATE_CONNECTING, "Connecting"},
        {SMGR_TDEMUX_STATS_STATE_SCRAMBLED,  "Scrambled" },
        {SMGR_TDEMUX_STATS_STATE_SECURING,   "Securing"  },
        {SMGR_TDEMUX_STATS_STATE_INVALID,    "Invalid"   },
        {SMGR_TDEMUX_STATS_STATE_FAILED,     "Failed"    },
    };
    return NameText(STATES, enState, szBuffer, nSize);
}

char* SessMgr_GetTDemuxDataTypeString(int enType, char* szBuffer, size_t nSize)
{
    static constexpr Name TYPES[] = {
        {SMGR_TDEMUX_DATA_TYPE_UNKNOWN, "Unknown"},
        {SMGR_TDEMUX_DATA_TYPE_VIDEO,   "Video"  },
        {SMGR_TDEMUX_DATA_TYPE_AUDIO,   "Audio"  },
        {SMGR_TDEMUX_DATA_TYPE_KLV,     "KLV"    },
    };
    return NameText(TYPES, enType, szBuffer, nSize);
}

char* SessMgr_GetTDemuxCompressionTypeString(int enType, char* szBuffer, size_t nSize)
{
    static constexpr Name TYPES[] = {
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
    return NameText(TYPES, enType, szBuffer, nSize);
}

char* SessMgr_GetStreamEncapsulationString(int enEncapsulation, char* szBuffer, size_t nSize)
{
    static constexpr Name ENCAPSULATIONS[] = {
        {SMGR_STREAM_ENCAPSULATION_TS_RTP, "MPEG-TS over RTP"},
        {SMGR_STREAM_ENCAPSULATION_TS_SRT, "MPEG-TS over SRT"},
    };
    return NameText(ENCAPSULATIONS, enEncapsulation, szBuffer, nSize);
}

namespace
{

/** Writes the address without the host name. szBuffer has INET6_ADDRSTRLEN characters. @return the text */
std::string_view NumericAddress(const SMGR_IP_ADDRESS& address, char* szBuffer)
{
    static constexpr std::string_view NO_ADDRESS = "0.0.0.0";
    static constexpr BYTE UNSPECIFIED[sizeof(address.acAddress)] = {};

    switch (address.enType)
    {
    case AF_UNSPEC: return NO_ADDRESS;
    case AF_INET6:
        // The IPv6 address of zeros means the absence of an address (RFC 4291, 2.5.2), which has one text for both families.
        if (std::memcmp(address.acAddress, UNSPECIFIED, sizeof(UNSPECIFIED)) == 0) return NO_ADDRESS;
        return inet_ntop(address.enType, address.acAddress, szBuffer, INET6_ADDRSTRLEN);
    case AF_INET:
    {
        char* pEnd = AppendNumber<unsigned>(szBuffer, address.acAddress[0]);
        for (size_t i = 1; i < 4; ++i) pEnd = AppendNumber<unsigned>(Append(pEnd, "."), address.acAddress[i]);
        return {szBuffer, static_cast<size_t>(pEnd - szBuffer)};
    }
    default: return UnknownText(address.enType, szBuffer, INET6_ADDRSTRLEN);
    }
}

} // namespace

char* SessMgr_GetIPAddressString(const SMGR_IP_ADDRESS* pAddress, char* szBuffer, size_t nSize)
{
    char szAddress[INET6_ADDRSTRLEN];
    const std::string_view address = NumericAddress(*pAddress, szAddress);
    const std::string_view hostName(pAddress->szHostName, strnlen(pAddress->szHostName, sizeof(pAddress->szHostName)));
    if (hostName.empty()) return CopyText(address, szBuffer, nSize);

    constexpr size_t LENGTH = sizeof(pAddress->szHostName) + std::string_view(" ()").size() + sizeof(szAddress);
    return BuildText<LENGTH>(
        szBuffer, nSize, [=](char* pEnd) { return Append(Append(Append(Append(pEnd, hostName), " ("), address), ")"); });
}

char* SessMgr_GetSRTVersionString(int nVersion, char* szBuffer, size_t nSize)
{
    if (nVersion == 0) return CopyText("Unknown", szBuffer, nSize);
    if (nVersion < 0 || nVersion > 0xFFFFFF) return UnknownText(nVersion, szBuffer, nSize);

    constexpr size_t LENGTH = 2 * std::string_view("255.").size() + NUMBER_LENGTH;
    return BuildText<LENGTH>(szBuffer, nSize,
        [=](char* pEnd)
        {
            pEnd = Append(AppendNumber(pEnd, nVersion >> 16), ".");
            pEnd = Append(AppendNumber(pEnd, nVersion >> 8 & 0xFF), ".");
            return AppendNumber(pEnd, nVersion & 0xFF);
        });
}
