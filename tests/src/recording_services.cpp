#include "recording_services.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "hostsvc.h"

static std::vector<ServiceCall> calls;

const std::vector<ServiceCall>& ServiceCalls()
{
    return calls;
}

void ClearServiceCalls()
{
    calls.clear();
}

static bool returns_uncut_length = false;

void ReturnUncutLength(bool uncut)
{
    returns_uncut_length = uncut;
}

static std::string Marker(const std::string& service, const std::string& value, size_t size)
{
    return "{" + service + " " + value + " " + std::to_string(size) + "}";
}

std::string Ulong(unsigned long value, size_t size)
{
    return Marker("ULONG", std::to_string(value), size);
}

std::string Ago(long long seconds, size_t size)
{
    return Marker("UpTime", std::to_string(seconds), size) + " ago";
}

static char* Record(const std::string& service, const std::string& value, char* szBuffer, size_t nSize)
{
    calls.push_back({service, value, nSize});
    snprintf(szBuffer, nSize, "%s", Marker(service, value, nSize).c_str());
    return szBuffer;
}

#define RECORD_VALUE(function, name, type)                              \
    extern "C" char* function(type value, char* szBuffer, size_t nSize) \
    {                                                                   \
        return Record(name, std::to_string(value), szBuffer, nSize);    \
    }

RECORD_VALUE(FormatULONG, "ULONG", unsigned long)
RECORD_VALUE(FormatLONGLONG, "LONGLONG", long long)
RECORD_VALUE(FormatBitRate, "BitRate", unsigned long)
RECORD_VALUE(FormatMicroSeconds, "MicroSeconds", long long)
RECORD_VALUE(FormatMilliSeconds, "MilliSeconds", long long)
RECORD_VALUE(FormatUpTime, "UpTime", long long)
RECORD_VALUE(SessMgr_GetErrorString, "Error", int)
RECORD_VALUE(SessMgr_GetVCUDecoderErrorString, "VCUDecoderError", int)
RECORD_VALUE(SessMgr_GetTDemuxStateString, "TDemuxState", int)
RECORD_VALUE(SessMgr_GetTDemuxDataTypeString, "TDemuxDataType", int)
RECORD_VALUE(SessMgr_GetTDemuxCompressionTypeString, "TDemuxCompressionType", int)
RECORD_VALUE(SessMgr_GetStreamEncapsulationString, "StreamEncapsulation", int)
RECORD_VALUE(SessMgr_GetSRTVersionString, "SRTVersion", int)
RECORD_VALUE(SessMgr_GetVFramerStateString, "VFramerState", int)
RECORD_VALUE(SessMgr_GetVideoColorTypeString, "VideoColorType", int)
RECORD_VALUE(SessMgr_GetVideoHDRTypeString, "VideoHDRType", int)
RECORD_VALUE(SessMgr_GetVideoColourPrimariesString, "VideoColourPrimaries", unsigned int)
RECORD_VALUE(SessMgr_GetVideoTransferCharacteristicsString, "VideoTransferCharacteristics", unsigned int)
RECORD_VALUE(SessMgr_GetVideoMatrixCoefficientsString, "VideoMatrixCoefficients", unsigned int)
RECORD_VALUE(SessMgr_GetVCUDecoderStateString, "VCUDecoderState", int)
RECORD_VALUE(SessMgr_GetVCUDecoderPicStructureString, "VCUDecoderPicStructure", int)
RECORD_VALUE(SessMgr_GetDecoderSdiStillImageString, "DecoderSdiStillImage", int)
RECORD_VALUE(SessMgr_GetAudioDecoderStateString, "AudioDecoderState", int)
RECORD_VALUE(SessMgr_GetMetadataStateString, "MetadataState", int)
RECORD_VALUE(SessMgr_GetCBufferingModeString, "CBufferingMode", int)
RECORD_VALUE(SessMgr_GetCBufferingStatusString, "CBufferingStatus", int)

extern "C" char* SessMgr_GetVideoProfileString(int nProfile, int enCompression, char* szBuffer, size_t nSize)
{
    return Record("VideoProfile", std::to_string(nProfile) + " " + std::to_string(enCompression), szBuffer, nSize);
}

extern "C" char* SessMgr_GetVideoLevelString(int nLevel, int enCompression, char* szBuffer, size_t nSize)
{
    return Record("VideoLevel", std::to_string(nLevel) + " " + std::to_string(enCompression), szBuffer, nSize);
}

extern "C" char* SessMgr_GetIPAddressString(const SMGR_IP_ADDRESS* pAddress, char* szBuffer, size_t nSize)
{
    static constexpr BYTE unset[sizeof pAddress->acAddress] = {};
    const std::string value = std::to_string(pAddress->enType) + "." + std::to_string(pAddress->acAddress[0]);
    if (memcmp(pAddress->acAddress, unset, sizeof unset) != 0) return Record("IPAddress", value, szBuffer, nSize);
    calls.push_back({"IPAddress", value, nSize});
    // A host name stands for the whole text, so that a test can ask for any.
    snprintf(szBuffer, nSize, "%s", pAddress->szHostName[0] ? pAddress->szHostName : "0.0.0.0");
    return szBuffer;
}

extern "C" int PrintToString(char* szBuffer, size_t nSize, const char* pFormat, ...)
{
    calls.push_back({"PrintToString", pFormat, nSize});
    va_list arguments;
    va_start(arguments, pFormat);
    const int nUncut = vsnprintf(szBuffer, nSize, pFormat, arguments);
    va_end(arguments);
    return returns_uncut_length ? nUncut : static_cast<int>(strlen(szBuffer));
}

extern "C" char* StringCat(char* szBuffer, const char* pText, size_t nSize)
{
    calls.push_back({"StringCat", pText, nSize});
    const size_t nLength = strlen(szBuffer);
    snprintf(szBuffer + nLength, nSize - nLength, "%s", pText);
    return szBuffer;
}
