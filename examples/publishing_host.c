#include <stdio.h>
#include <unistd.h>

#include "stats_publish.h"

int main(int argc, char** argv)
{
    STATS_PUBLISH_ERROR tError;
    STATS_PUBLISHER* pPublisher = STATS_PublishOpen("decoder-1", argc > 1 ? argv[1] : NULL, "host 1.0", 0, &tError);
    if (!pPublisher) fprintf(stderr, "host: %s\n", tError.szText);

    SMGR_DECODER_SDI_USAGE_STATS tUsage = {0};
    for (tUsage.nNumStarts = 1; tUsage.nNumStarts <= 3; tUsage.nNumStarts++)
    {
        STATS_PublishForDecoderUsage(pPublisher, &tUsage);
        STATS_PublishHeartbeat(pPublisher);
        sleep(1);
    }
    STATS_PublishClose(pPublisher);
    return pPublisher ? 0 : 1;
}
