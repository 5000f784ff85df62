// Calls of every service, each with its whole text: what the tests of the contract that all services share run through.
#ifndef TESTS_HOSTSVC_CALLS_H
#define TESTS_HOSTSVC_CALLS_H

#include <climits>
#include <cstddef>

#include <sys/socket.h>

#include "hostsvc.h"

inline constexpr SMGR_IP_ADDRESS NAMED_ADDRESS = {
    .enType = AF_INET,
    .acAddress = {192, 0, 2, 10},
    .szHostName = "encoder.example"
};
inline constexpr SMGR_IP_ADDRESS IPV4_ADDRESS = {
    .enType = AF_INET,
    .acAddress = {192, 0, 2, 10},
    .szHostName = ""
};
inline constexpr SMGR_IP_ADDRESS OTHER_ADDRESS = {
    .enType = 7,
    .acAddress = {192, 0, 2, 10},
    .szHostName = ""
};
inline constexpr SMGR_IP_ADDRESS NO_ADDRESS = {};

// The two services of another shape, in the shape of the rest.
inline char* PrintFormat(int nWidth, int nHeight, double fRate, char* szBuffer, size_t nSize)
{
    PrintToString(szBuffer, nSize, "%dx%dp %.2f", nWidth, nHeight, fRate);
    return szBuffer;
}

inline char* AppendTwice(const char* pFirst, const char* pSecond, char* szBuffer, size_t nSize)
{
    if (nSize > 0) szBuffer[0] = '\0';
    StringCat(szBuffer, pFirst, nSize);
    return StringCat(szBuffer, pSecond, nSize);
}

// Calls visit(name of the service, text, service, values...). A service whose text is made in several ways is visited for
// each of them.
template <typename Visit> void VisitCalls(Visit visit)
{
    visit("FormatULONG", "18446744073709551615", FormatULONG, ULONG_MAX);
    visit("FormatULONG", "0", FormatULONG, 0UL);
    visit("FormatLONGLONG", "-9223372036854775808", FormatLONGLONG, LLONG_MIN);
    visit("FormatBitRate", "950 bps", FormatBitRate, 950UL);
    visit("FormatBitRate", "18446744073.71 Gbps", FormatBitRate, ULONG_MAX);
    visit("FormatMicroSeconds", "-850us", FormatMicroSeconds, -850LL);
    visit("FormatMicroSeconds", "12.345ms", FormatMicroSeconds, 12345LL);
    visit("FormatMicroSeconds", "-9223372036854.775s", FormatMicroSeconds, LLONG_MIN);
    visit("FormatMilliSeconds", "59.999s", FormatMilliSeconds, 59999LL);
    visit("FormatMilliSeconds", "-106751991167d 07h 12m 55s", FormatMilliSeconds, LLONG_MIN);
    visit("FormatUpTime", "3m 07s", FormatUpTime, 187LL);
    visit("FormatUpTime", "-106751991167300d 15h 30m 08s", FormatUpTime, LLONG_MIN);
    visit("PrintToString", "1920x1080p 29.97", PrintFormat, 1920, 1080, 29.97);
    visit("StringCat", "encoder.example", AppendTwice, "encoder", ".example");
    visit("SessMgr_GetErrorString", "The request succeeded.", SessMgr_GetErrorString, 0);
    visit("SessMgr_GetErrorString", "Unknown (96)", SessMgr_GetErrorString, 96);
    visit("SessMgr_GetErrorString", "Unknown (-2147483647, 0x80000001)", SessMgr_GetErrorString, -2147483647);
    visit("SessMgr_GetVCUDecoderErrorString", "No error", SessMgr_GetVCUDecoderErrorString, 0);
    visit("SessMgr_GetVCUDecoderErrorString", "Unknown (-2147483648)", SessMgr_GetVCUDecoderErrorString, INT_MIN);
    visit("SessMgr_GetTDemuxStateString", "Connecting", SessMgr_GetTDemuxStateString, 5);
    visit("SessMgr_GetTDemuxStateString", "Unknown (-2147483648)", SessMgr_GetTDemuxStateString, INT_MIN);
    visit("SessMgr_GetTDemuxDataTypeString", "Video", SessMgr_GetTDemuxDataTypeString, 1);
    visit("SessMgr_GetTDemuxCompressionTypeString", "MPEG-1 Layer III", SessMgr_GetTDemuxCompressionTypeString, 2005);
    visit("SessMgr_GetTDemuxCompressionTypeString", "Unknown (3)", SessMgr_GetTDemuxCompressionTypeString, 3);
    visit("SessMgr_GetStreamEncapsulationString", "MPEG-TS over SRT", SessMgr_GetStreamEncapsulationString, 34);
    visit("SessMgr_GetIPAddressString", "encoder.example (192.0.2.10)", SessMgr_GetIPAddressString, &NAMED_ADDRESS);
    visit("SessMgr_GetIPAddressString", "192.0.2.10", SessMgr_GetIPAddressString, &IPV4_ADDRESS);
    visit("SessMgr_GetIPAddressString", "0.0.0.0", SessMgr_GetIPAddressString, &NO_ADDRESS);
    visit("SessMgr_GetIPAddressString", "Unknown (7)", SessMgr_GetIPAddressString, &OTHER_ADDRESS);
    visit("SessMgr_GetSRTVersionString", "1.4.4", SessMgr_GetSRTVersionString, 0x010404);
    visit("SessMgr_GetSRTVersionString", "Unknown", SessMgr_GetSRTVersionString, 0);
    visit("SessMgr_GetSRTVersionString", "Unknown (-1)", SessMgr_GetSRTVersionString, -1);
    visit("SessMgr_GetVFramerStateString", "Unsupported", SessMgr_GetVFramerStateString, -2);
    visit("SessMgr_GetVideoColorTypeString", "4:2:2 10-bit", SessMgr_GetVideoColorTypeString, 4);
    visit("SessMgr_GetVideoColorTypeString", "Unknown (7)", SessMgr_GetVideoColorTypeString, 7);
    visit("SessMgr_GetVideoProfileString", "High 4:2:2", SessMgr_GetVideoProfileString, 122, 1000);
    visit("SessMgr_GetVideoProfileString", "Unknown (122)", SessMgr_GetVideoProfileString, 122, 1002);
    visit("SessMgr_GetVideoLevelString", "5.1", SessMgr_GetVideoLevelString, 153, 1001);
    visit("SessMgr_GetVideoLevelString", "Unknown (153)", SessMgr_GetVideoLevelString, 153, 1002);
    visit("SessMgr_GetVideoHDRTypeString", "Unspecified", SessMgr_GetVideoHDRTypeString, 0);
    visit("SessMgr_GetVideoColourPrimariesString", "BT.2020", SessMgr_GetVideoColourPrimariesString, 9U);
    visit("SessMgr_GetVideoColourPrimariesString", "Reserved", SessMgr_GetVideoColourPrimariesString, 0U);
    visit("SessMgr_GetVideoColourPrimariesString", "Unknown (256)", SessMgr_GetVideoColourPrimariesString, 256U);
    visit("SessMgr_GetVideoTransferCharacteristicsString", "SMPTE ST 2084 (PQ)", SessMgr_GetVideoTransferCharacteristicsString, 16U);
    visit("SessMgr_GetVideoMatrixCoefficientsString", "Identity (GBR)", SessMgr_GetVideoMatrixCoefficientsString, 0U);
    visit("SessMgr_GetVCUDecoderStateString", "Idle (VCU lacks memory)", SessMgr_GetVCUDecoderStateString, 3);
    visit("SessMgr_GetVCUDecoderPicStructureString", "Top field", SessMgr_GetVCUDecoderPicStructureString, 1);
    visit("SessMgr_GetDecoderSdiStillImageString", "None", SessMgr_GetDecoderSdiStillImageString, 0);
    visit("SessMgr_GetAudioDecoderStateString", "Active", SessMgr_GetAudioDecoderStateString, 2);
    visit("SessMgr_GetMetadataStateString", "Invalid", SessMgr_GetMetadataStateString, -1);
    visit("SessMgr_GetCBufferingModeString", "Standard HRD", SessMgr_GetCBufferingModeString, 6);
    visit("SessMgr_GetCBufferingModeString", "Unknown (9)", SessMgr_GetCBufferingModeString, 9);
    visit("SessMgr_GetCBufferingStatusString", "MultiSync error: no NTP client", SessMgr_GetCBufferingStatusString, -1);
}

#endif
