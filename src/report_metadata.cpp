// The metadata decoder report: its state and timecode, and its channels for KLV, timecode, closed captions and AFD.

#include "blocks.h"
#include "hostsvc.h"
#include "lines.h"

BOOL _PrintMetadataChannel(const SMGR_METADATADEC_CHANNEL_STATS* pStats, STATS_LEVEL nLevel)
{
    const bool printAll = nLevel == STATS_LEVEL_DEBUG;
    const SMGR_METADATADEC_CHANNEL_COUNTERS& c = pStats->tCounters;
    char szBuffer[1024];
    char szBuffer2[1024];
    char szBuffer3[1024];

    if (!printAll && c.nNumInputPackets == 0) return TRUE;

    fprintf(stdout, "  %.8s Channel\n", pStats->szName);
    if (printAll) fprintf(stdout, "    %-20s: %u\n", "Type", static_cast<unsigned int>(pStats->enType));
    _PrintCounterStatWithTimingIndent2("Received Packets", c.nNumInputPackets, c.tLastInputPacket);
    if (printAll || c.nNumSynchronousPackets) _PrintCounterStatWithTimingIndent2("Synchronous Packets", c.nNumSynchronousPackets, c.tLastSynchronousPacket);
    if (printAll || c.nNumAsynchronousPackets) _PrintCounterStatWithTimingIndent2("Aynchronous Packets", c.nNumAsynchronousPackets, c.tLastAsynchronousPacket);
    _PrintCounterStatWithTimingIndent2("Output Packets", c.nNumOutputPackets, c.tLastOutputPacket);
    if (printAll || c.nNumFreedPackets) _PrintCounterStatWithTimingIndent2("Freed Packets", c.nNumFreedPackets, c.tLastFreedPacket);
    if (printAll || c.nNumDroppedPackets) _PrintCounterStatWithTimingIndent2("Dropped Packets", c.nNumDroppedPackets, c.tLastDroppedPacket);
    if (printAll || c.nNumOutputFailedPackets) _PrintCounterStatWithTimingIndent2("Output Failed", c.nNumOutputFailedPackets, c.tLastOutputFailedPacket);
    if (printAll || c.nNumOutputFailedLatePackets) _PrintCounterStatWithTimingIndent2("Output Late", c.nNumOutputFailedLatePackets, c.tLastOutputFailedLatePacket);
    if (printAll || c.nNumOutputPayloadBytes)
        fprintf(stdout, "    %-20s: %s (max=%s bytes occurred %s)\n", "Payload Bytes", FormatULONG(c.nNumOutputPayloadBytes, szBuffer, sizeof szBuffer),
                FormatULONG(c.nMaxOutputPayloadBytes, szBuffer2, sizeof szBuffer2), _GetElapsedTimeString(c.tMaxOutputPayloadBytes, szBuffer3, sizeof szBuffer3));
    if (printAll || c.nNumNonIncreasingOutputTimestamps) _PrintCounterStatWithTimingIndent2("Nonincr. Timestamps", c.nNumNonIncreasingOutputTimestamps, c.tLastNonIncreasingOutputTimestamp);
    if (printAll || c.nNumPacketListResets) _PrintCounterStatWithTimingIndent2("Pkt List Resets", c.nNumPacketListResets, c.tLastPacketListReset);
    if (printAll || c.nNumErrors) fprintf(stdout, "    %-20s: %s\n", "Other Errors", FormatULONG(c.nNumErrors, szBuffer, sizeof szBuffer));
    fprintf(stdout, "    %-20s: %.1lfms\n", "Latency", static_cast<double>(pStats->nLatencyInUs) / 1000.0);
    if (printAll) fprintf(stdout, "    %-20s: %ldpkts\n", "Delay", static_cast<long>(c.nCurrentDelayInPackets));
    if (printAll) fprintf(stdout, "    %-20s: %ld\n", "Delay List Occ.", static_cast<long>(c.nNumInDelayList));
    if (printAll) fprintf(stdout, "    %-20s: %ld\n", "Input List Occ.", static_cast<long>(c.nNumInPacketList));
    if (printAll) _PrintCounterStatWithTimingIndent2("BDs Allocated", c.nNumBDAllocated, c.tLastBDAllocated);
    if (printAll || c.nNumBDAllocateFailed) _PrintCounterStatWithTimingIndent2("BDs Allocate Failed", c.nNumBDAllocateFailed, c.tLastBDAllocateFailed);
    if (printAll) _PrintCounterStatWithTimingIndent2("BDs Written", c.nNumBDWritten, c.tLastBDWritten);
    if (printAll) _PrintCounterStatWithTimingIndent2("BDs Freed", c.nNumBDFreed, c.tLastBDFreed);
    if (printAll) fprintf(stdout, "    %-20s: %ld\n", "BD Free List Occ.", static_cast<long>(c.nNumBDInFreeList));
    if (printAll) fprintf(stdout, "    %-20s: %d\n", "BD Free Head Index", c.nBDFreeListHeadIndex);
    if (printAll) fprintf(stdout, "    %-20s: %ld\n", "BD Used List Occ.", static_cast<long>(c.nNumBDInUsedList));
    if (printAll) fprintf(stdout, "    %-20s: %d\n", "BD Used Head Index", c.nBDUsedListHeadIndex);
    // The last two lines have the top-level layout, and the block's indent within their labels.
    if (printAll) _PrintCounterStatWithTiming("  Output Sent Late", c.nNumOutputLate, c.tLastOutputLate);
    if (printAll)
        fprintf(stdout, "  %-22s: %dms (Min=%dms occurred %s, Max=%dms occurred %s)\n", "  Output Lead Time", c.nOutputSTCLeadTime,
                c.nMinOutputSTCLeadTime, _GetElapsedTimeString(c.tMinOutputSTCLeadTime, szBuffer, sizeof szBuffer),
                c.nMaxOutputSTCLeadTime, _GetElapsedTimeString(c.tMaxOutputSTCLeadTime, szBuffer2, sizeof szBuffer2));
    return TRUE;
}

static void _PrintActiveChannels(const SMGR_METADATADEC_STATS* pStats)
{
    char szBuffer[1024];
    size_t nLength = 0;

    for (const SMGR_METADATADEC_CHANNEL_STATS& tChannel : pStats->tChannel)
    {
        if (tChannel.enState != SMGR_METADATA_STATE_ACTIVE) continue;
        // Four names of eight characters always fit.
        nLength += static_cast<size_t>(snprintf(szBuffer + nLength, sizeof szBuffer - nLength, "%s%.8s", nLength ? ", " : "", tChannel.szName));
    }
    fprintf(stdout, "  %-22s: %s\n", "Active Metadata", nLength ? szBuffer : "None");
}

BOOL STATS_PrintForMetadataDec(const SMGR_METADATADEC_STATS* pStats, STATS_LEVEL nLevel)
{
    const bool printAll = nLevel == STATS_LEVEL_DEBUG;
    const SMGR_METADATADEC_TC_VALUE& tTimecode = pStats->tCounters.tTCValue;
    char szBuffer[1024];

    _PrintText("Metadata\n");
    fprintf(stdout, "  %-22s: %s\n", "Metadata State", SessMgr_GetMetadataStateString(pStats->enState, szBuffer, sizeof szBuffer));
    if (pStats->enState == SMGR_METADATA_STATE_ACTIVE) _PrintActiveChannels(pStats);
    if (printAll) fprintf(stdout, "  %-22s: %s\n", "Received Packets", FormatULONG(pStats->tCounters.nNumReceivedPackets, szBuffer, sizeof szBuffer));
    if (printAll) fprintf(stdout, "  %-22s: %u\n", "Input Q Occupancy", pStats->nInputQOccupancy);
    if (printAll || tTimecode.bTCValid == TRUE) fprintf(stdout, "  %-22s: %2.2u:%2.2u:%2.2u:%2.2u\n", "Timecode", tTimecode.nTCHours, tTimecode.nTCMinutes, tTimecode.nTCSeconds, tTimecode.nTCFrames);
    for (const SMGR_METADATADEC_CHANNEL_STATS& tChannel : pStats->tChannel) _PrintMetadataChannel(&tChannel, nLevel);
    return TRUE;
}
