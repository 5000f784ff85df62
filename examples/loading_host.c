/* A host process that loads the report library when it needs it. The services of libhostsvc are within the program. */
#include <dlfcn.h>
#include <stdio.h>
#include <string.h>
#include <time.h>

#include "stats.h"

typedef BOOL (*PrintUsage)(const SMGR_DECODER_SDI_USAGE_STATS*, STATS_LEVEL);

int main(void)
{
    void* library = dlopen("libstats.so.1", RTLD_NOW);
    void* symbol = library ? dlsym(library, "STATS_PrintForDecoderUsage") : NULL;
    if (!symbol)
    {
        fprintf(stderr, "no report library: %s\n", dlerror());
        return 1;
    }
    PrintUsage print_usage;
    *(void**)&print_usage = symbol; /* POSIX's way from an object to a function pointer */

    SMGR_DECODER_SDI_USAGE_STATS usage;
    memset(&usage, 0, sizeof usage);
    usage.nNumStarts = 3;
    usage.tLastStart = time(NULL);
    usage.nNumGetStats = 1024;

    print_usage(&usage, STATS_LEVEL_DEBUG);
    return fflush(stdout) == 0 ? 0 : 1;
}
