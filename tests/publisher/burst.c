/*
 * A host that publishes everything many times between two writes to standard error, and nothing else: burst_test.sh looks for
 * system calls between them.
 */
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include "samples_publish.h"

int main(int argc, char** argv)
{
    STATS_PUBLISH_ERROR tError;
    STATS_PUBLISHER* pPublisher = STATS_PublishOpen("burst", argc > 1 ? argv[1] : NULL, NULL, 0, &tError);
    if (!pPublisher)
    {
        const ssize_t nWritten = write(STDERR_FILENO, tError.szText, strlen(tError.szText));
        return nWritten < 0 ? 3 : 2;
    }
    static SAMPLES_RECORDS tRecords;
    samples_find("trouble")->pFill(&tRecords, 1800000000);

    if (write(STDERR_FILENO, "begin\n", 6) != 6) return 3;
    for (int i = 0; i < 10000; i++)
    {
        samples_publish(pPublisher, &tRecords);
        STATS_PublishHeartbeat(pPublisher);
    }
    if (write(STDERR_FILENO, "end\n", 4) != 4) return 3;
    STATS_PublishClose(pPublisher);
    return 0;
}
