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

/** The longest text is "Unknown (-2147483648)" or an IPv6 address. */
constexpr size_t ADDRESS_SIZE = INET6_ADDRSTRLEN;

/** Writes the address without the host name. szBuffer has ADDRESS_SIZE characters. @return the text */
const char* NumericAddress(const SMGR_IP_ADDRESS& address, char* szBuffer)
{
    static constexpr BYTE UNSPECIFIED[sizeof(address.acAddress)] = {};

    if (address.enType == AF_UNSPEC) return "0.0.0.0";
    if (address.enType != AF_INET && address.enType != AF_INET6) return UnknownText(address.enType, szBuffer, ADDRESS_SIZE);
    // The IPv6 address of zeros means the absence of an address (RFC 4291, 2.5.2), which has one text for both families.
    if (address.enType == AF_INET6 && std::memcmp(address.acAddress, UNSPECIFIED, sizeof(UNSPECIFIED)) == 0) return "0.0.0.0";
    return inet_ntop(address.enType, address.acAddress, szBuffer, ADDRESS_SIZE);
}

} // namespace

char* SessMgr_GetIPAddressString(const SMGR_IP_ADDRESS* pAddress, char* szBuffer, size_t nSize)
{
    char szAddress[ADDRESS_SIZE];
    const char* pText = NumericAddress(*pAddress, szAddress);
    const size_t nLength = strnlen(pAddress->szHostName, sizeof(pAddress->szHostName));
    if (nLength == 0) return CopyText(pText, szBuffer, nSize);

    // Whoever sends the stream may choose the host name, and an operator's terminal obeys what it is sent.
    char acHostName[sizeof(pAddress->szHostName)];
    std::transform(pAddress->szHostName, pAddress->szHostName + nLength, acHostName, [](char c) { return c >= ' ' && c <= '~' ? c : '?'; });
    snprintf(szBuffer, nSize, "%.*s (%s)", static_cast<int>(nLength), acHostName, pText);
    return szBuffer;
}

char* SessMgr_GetSRTVersionString(int nVersion, char* szBuffer, size_t nSize)
{
    if (nVersion == 0) return CopyText("Unknown", szBuffer, nSize);
    if (nVersion < 0 || nVersion > 0xFFFFFF) return UnknownText(nVersion, szBuffer, nSize);
    snprintf(szBuffer, nSize, "%d.%d.%d", nVersion >> 16, nVersion >> 8 & 0xFF, nVersion & 0xFF);
    return szBuffer;
}
