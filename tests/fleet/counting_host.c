/**
 * @file counting_host.c
 * A host process that receives 1000 packets a second from now on, and publishes that until it is killed.
 *
 *     counting_host NAME DIRECTORY PACKETS
 *
 * PACKETS is what it has received before: a host that runs for long has many, one that was just started has none.
 */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>

#include "stats_publish.h"

int main(int argc, char** argv)
{
    if (argc != 4) return 2;
    STATS_PUBLISH_ERROR error;
    STATS_PUBLISHER* publisher = STATS_PublishOpen(argv[1], argv[2], "counting host", 0, &error);
    if (publisher == NULL)
    {
        fprintf(stderr, "counting_host: %s\n", error.szText);
        return 1;
    }
    const struct timespec step = {.tv_nsec = 100000000};
    const unsigned long long before = strtoull(argv[3], NULL, 10);
    struct timespec start, now;
    clock_gettime(CLOCK_MONOTONIC, &start);
    SMGR_TDEMUX_STATS tdemux;
    memset(&tdemux, 0, sizeof tdemux);
    for (;;)
    {
        clock_gettime(CLOCK_MONOTONIC, &now);
        const long long passed = (now.tv_sec - start.tv_sec) * 1000LL + (now.tv_nsec - start.tv_nsec) / 1000000; // [ms]
        tdemux.tCounters.nNumReceivedPackets = (unsigned long)(before + (unsigned long long)passed);
        STATS_PublishForTDemux(publisher, &tdemux);
        STATS_PublishHeartbeat(publisher);
        nanosleep(&step, NULL);
    }
}
