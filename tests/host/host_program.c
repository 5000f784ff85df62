/*
 * A host process in C that loads the library with dlopen and supplies every service itself, without libhostsvc. Prints two
 * reports; the test compares them with host_program.txt.
 */
#include <dlfcn.h>
#include <stdarg.h>
#include <stdio.h>
#include <string.h>

#include "hostsvc.h"
#include "stats.h"

#define NUMBER_SERVICE(name, type, format)                   \
    char* name(type nValue, char* szBuffer, size_t nSize)    \
    {                                                        \
        snprintf(szBuffer, nSize, #name "=" format, nValue); \
        return szBuffer;                                     \
    }

NUMBER_SERVICE(FormatULONG, unsigned long, "%lu")
NUMBER_SERVICE(FormatLONGLONG, long long, "%lld")
NUMBER_SERVICE(FormatBitRate, unsigned long, "%lu")
NUMBER_SERVICE(FormatMicroSeconds, long long, "%lld")
NUMBER_SERVICE(FormatMilliSeconds, long long, "%lld")
NUMBER_SERVICE(FormatUpTime, long long, "%lld")
NUMBER_SERVICE(SessMgr_GetErrorString, int, "%d")
NUMBER_SERVICE(SessMgr_GetVCUDecoderErrorString, int, "%d")
NUMBER_SERVICE(SessMgr_GetTDemuxStateString, int, "%d")
NUMBER_SERVICE(SessMgr_GetTDemuxDataTypeString, int, "%d")
NUMBER_SERVICE(SessMgr_GetTDemuxCompressionTypeString, int, "%d")
NUMBER_SERVICE(SessMgr_GetStreamEncapsulationString, int, "%d")
NUMBER_SERVICE(SessMgr_GetSRTVersionString, int, "%d")
NUMBER_SERVICE(SessMgr_GetVFramerStateString, int, "%d")
NUMBER_SERVICE(SessMgr_GetVideoColorTypeString, int, "%d")
NUMBER_SERVICE(SessMgr_GetVideoHDRTypeString, int, "%d")
NUMBER_SERVICE(SessMgr_GetVideoColourPrimariesString, unsigned int, "%u")
NUMBER_SERVICE(SessMgr_GetVideoTransferCharacteristicsString, unsigned int, "%u")
NUMBER_SERVICE(SessMgr_GetVideoMatrixCoefficientsString, unsigned int, "%u")
NUMBER_SERVICE(SessMgr_GetVCUDecoderStateString, int, "%d")
NUMBER_SERVICE(SessMgr_GetVCUDecoderPicStructureString, int, "%d")
NUMBER_SERVICE(SessMgr_GetDecoderSdiStillImageString, int, "%d")
NUMBER_SERVICE(SessMgr_GetAudioDecoderStateString, int, "%d")
NUMBER_SERVICE(SessMgr_GetMetadataStateString, int, "%d")
NUMBER_SERVICE(SessMgr_GetCBufferingModeString, int, "%d")
NUMBER_SERVICE(SessMgr_GetCBufferingStatusString, int, "%d")

char* SessMgr_GetVideoProfileString(int nProfile, int enCompression, char* szBuffer, size_t nSize)
{
    snprintf(szBuffer, nSize, "%d of %d", nProfile, enCompression);
    return szBuffer;
}

char* SessMgr_GetVideoLevelString(int nLevel, int enCompression, char* szBuffer, size_t nSize)
{
    snprintf(szBuffer, nSize, "%d of %d", nLevel, enCompression);
    return szBuffer;
}

char* SessMgr_GetIPAddressString(const SMGR_IP_ADDRESS* pAddress, char* szBuffer, size_t nSize)
{
    const BYTE* b = pAddress->acAddress;
    snprintf(szBuffer, nSize, "%u.%u.%u.%u", b[0], b[1], b[2], b[3]);
    return szBuffer;
}

int PrintToString(char* szBuffer, size_t nSize, const char* pFormat, ...)
{
    va_list arguments;
    va_start(arguments, pFormat);
    vsnprintf(szBuffer, nSize, pFormat, arguments);
    va_end(arguments);
    return (int)strlen(szBuffer);
}

char* StringCat(char* szBuffer, const char* pText, size_t nSize)
{
    strncat(szBuffer, pText, nSize - strlen(szBuffer) - 1);
    return szBuffer;
}

typedef BOOL (*PrintTDemux)(const SMGR_TDEMUX_STATS*, STATS_LEVEL);
typedef BOOL (*PrintUsage)(const SMGR_DECODER_SDI_USAGE_STATS*, STATS_LEVEL);

int main(int argc, char** argv)
{
    void* library = argc == 2 ? dlopen(argv[1], RTLD_NOW) : NULL;
    if (!library)
    {
        fprintf(stderr, "usage: host_program LIBRARY (%s)\n", argc == 2 ? dlerror() : "none given");
        return 2;
    }
    PrintTDemux printTDemux;
    PrintUsage printUsage;
    *(void**)&printTDemux = dlsym(library, "STATS_PrintForTDemux"); /* POSIX's way from an object to a function pointer */
    *(void**)&printUsage = dlsym(library, "STATS_PrintForDecoderUsage");
    if (!printTDemux || !printUsage) return 2;

    SMGR_TDEMUX_STATS tDemux;
    memset(&tDemux, 0, sizeof tDemux);
    tDemux.enState = SMGR_TDEMUX_STATS_STATE_ACTIVE;
    tDemux.bStreamHasBeenStarted = TRUE;
    tDemux.tSourceAddress.acAddress[0] = 192;
    tDemux.tSourceAddress.acAddress[2] = 2;
    tDemux.tSourceAddress.acAddress[3] = 10;
    tDemux.nSourcePort = 5000;
    tDemux.tCounters.nNumReceivedPackets = 3;

    SMGR_DECODER_SDI_USAGE_STATS tUsage;
    memset(&tUsage, 0, sizeof tUsage);
    tUsage.nNumStarts = 1;

    return printTDemux(&tDemux, STATS_LEVEL_DEFAULT) == TRUE && printUsage(&tUsage, STATS_LEVEL_DEBUG) == TRUE ? 0 : 1;
}
