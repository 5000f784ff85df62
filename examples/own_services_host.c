/*
 * A host process that loads the report library and supplies every service itself, without libhostsvc. Each text names its
 * service, so the two reports show which one is called for what.
 */
#include <dlfcn.h>
#include <stdarg.h>
#include <stdio.h>
#include <string.h>

#include "hostsvc.h"
#include "stats.h"

#define NUMBER_SERVICE(name, type, format)               \
    char* name(type value, char* buffer, size_t size)    \
    {                                                    \
        snprintf(buffer, size, #name "=" format, value); \
        return buffer;                                   \
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

char* SessMgr_GetVideoProfileString(int profile, int compression, char* buffer, size_t size)
{
    snprintf(buffer, size, "%d of %d", profile, compression);
    return buffer;
}

char* SessMgr_GetVideoLevelString(int level, int compression, char* buffer, size_t size)
{
    snprintf(buffer, size, "%d of %d", level, compression);
    return buffer;
}

char* SessMgr_GetIPAddressString(const SMGR_IP_ADDRESS* address, char* buffer, size_t size)
{
    const BYTE* b = address->acAddress;
    snprintf(buffer, size, "%u.%u.%u.%u", b[0], b[1], b[2], b[3]);
    return buffer;
}

int PrintToString(char* buffer, size_t size, const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    vsnprintf(buffer, size, format, arguments);
    va_end(arguments);
    return (int)strlen(buffer);
}

char* StringCat(char* buffer, const char* text, size_t size)
{
    strncat(buffer, text, size - strlen(buffer) - 1);
    return buffer;
}

typedef BOOL (*PrintTDemux)(const SMGR_TDEMUX_STATS*, STATS_LEVEL);
typedef BOOL (*PrintUsage)(const SMGR_DECODER_SDI_USAGE_STATS*, STATS_LEVEL);

int main(int argc, char** argv)
{
    void* library = dlopen(argc > 1 ? argv[1] : "libstats.so.1", RTLD_NOW);
    if (!library)
    {
        fprintf(stderr, "no report library: %s\n", dlerror());
        return 1;
    }
    PrintTDemux print_tdemux;
    PrintUsage print_usage;
    *(void**)&print_tdemux = dlsym(library, "STATS_PrintForTDemux"); /* POSIX's way from an object to a function pointer */
    *(void**)&print_usage = dlsym(library, "STATS_PrintForDecoderUsage");
    if (!print_tdemux || !print_usage) return 1;

    SMGR_TDEMUX_STATS demux;
    memset(&demux, 0, sizeof demux);
    demux.enState = SMGR_TDEMUX_STATS_STATE_ACTIVE;
    demux.bStreamHasBeenStarted = TRUE;
    demux.tSourceAddress.acAddress[0] = 192;
    demux.tSourceAddress.acAddress[2] = 2;
    demux.tSourceAddress.acAddress[3] = 10;
    demux.nSourcePort = 5000;
    demux.tCounters.nNumReceivedPackets = 3;

    SMGR_DECODER_SDI_USAGE_STATS usage;
    memset(&usage, 0, sizeof usage);
    usage.nNumStarts = 1;

    return print_tdemux(&demux, STATS_LEVEL_DEFAULT) == TRUE && print_usage(&usage, STATS_LEVEL_DEBUG) == TRUE ? 0 : 1;
}
