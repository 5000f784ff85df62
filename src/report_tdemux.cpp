// The transport demux report: the network input, its SRT link or Pro-MPEG FEC, and its elementary streams.

#include <netdb.h>

#include "blocks.h"
#include "hostsvc.h"
#include "lines.h"

void _PrintTDemuxSRTStats(const SMGR_STREAM_SRT_STATS* pStats, STATS_LEVEL nLevel)
{
    const bool printAll = nLevel == STATS_LEVEL_DEBUG;
    char szBuffer[1024];

    // The prefixed form is made and not shown, so a host sees three version calls a block, the first with a character less.
    szBuffer[0] = 'v';
    SessMgr_GetSRTVersionString(pStats->iVersion, szBuffer + 1, sizeof szBuffer - 1);

    _PrintText("SRT Stats\n");
    fprintf(stdout, "  %-22s: %s\n", "Local Version", SessMgr_GetSRTVersionString(pStats->iVersion, szBuffer, sizeof szBuffer));
    fprintf(stdout, "  %-22s: %s\n", "Peer Version", SessMgr_GetSRTVersionString(pStats->iPeerVersion, szBuffer, sizeof szBuffer));
    fprintf(stdout, "  %-22s: %s\n", "Connections", FormatULONG(static_cast<unsigned long>(pStats->iReconnects), szBuffer, sizeof szBuffer));
    fprintf(stdout, "  %-22s: %u\n", "Local Port", static_cast<unsigned int>(pStats->iLocalPort));
    fprintf(stdout, "  %-22s: %u\n", "Remote Port", static_cast<unsigned int>(pStats->iRemotePort));
    fprintf(stdout, "  %-22s: %s\n", "AES Encryption", pStats->iKeyState == SMGR_STREAM_SRT_KM_S_UNSECURED ? "Off" : "On");
    if (pStats->iKeyState != SMGR_STREAM_SRT_KM_S_UNSECURED)
    {
        if (pStats->iKeyLength >= 1)
            fprintf(stdout, "  %-22s: %u bits\n", "Key Length", static_cast<unsigned int>(pStats->iKeyLength) << 3);
        else
            fprintf(stdout, "  %-22s: %s\n", "Key Length", "Unknown");
    }
    switch (pStats->iKeyState)
    {
    case SMGR_STREAM_SRT_KM_S_SECURING: fprintf(stdout, "  %-22s: %s\n", "Decryption", "Initializing"); break;
    case SMGR_STREAM_SRT_KM_S_SECURED: fprintf(stdout, "  %-22s: %s\n", "Decryption", "Active"); break;
    case SMGR_STREAM_SRT_KM_S_NOSECRET: fprintf(stdout, "  %-22s: %s\n", "Decryption", "Inactive (No Passphrase)"); break;
    case SMGR_STREAM_SRT_KM_S_BADSECRET: fprintf(stdout, "  %-22s: %s\n", "Decryption", "Inactive (Invalid Passphrase)"); break;
    default: break;
    }
    if (printAll || pStats->nLostPkts) fprintf(stdout, "  %-22s: %s\n", "Lost Packets", FormatULONG(pStats->nLostPkts, szBuffer, sizeof szBuffer));
    if (printAll || pStats->nDroppedPkts) fprintf(stdout, "  %-22s: %s\n", "Dropped Packets", FormatULONG(pStats->nDroppedPkts, szBuffer, sizeof szBuffer));
    if (printAll || pStats->nDroppedBytes) fprintf(stdout, "  %-22s: %s\n", "Dropped Bytes", FormatULONG(pStats->nDroppedBytes, szBuffer, sizeof szBuffer));
    if (printAll || pStats->nXmitAckPkts) fprintf(stdout, "  %-22s: %s\n", "Sent ACKs", FormatULONG(pStats->nXmitAckPkts, szBuffer, sizeof szBuffer));
    if (printAll || pStats->nXmitNakPkts) fprintf(stdout, "  %-22s: %s\n", "Sent NAKs", FormatULONG(pStats->nXmitNakPkts, szBuffer, sizeof szBuffer));
    if (pStats->iAvailBw >= 1)
        fprintf(stdout, "  %-22s: %s kbps\n", "Link Bandwidth", FormatULONG(static_cast<unsigned long>(pStats->iAvailBw), szBuffer, sizeof szBuffer));
    else
        fprintf(stdout, "  %-22s: %s\n", "Link Bandwidth", "Unknown");
    fprintf(stdout, "  %-22s: %s\n", "RTT", FormatMicroSeconds(pStats->iRTT, szBuffer, sizeof szBuffer));
    fprintf(stdout, "  %-22s: %s\n", "Local Buffer Level", FormatMilliSeconds(pStats->iBufTimespan, szBuffer, sizeof szBuffer));
    fprintf(stdout, "  %-22s: %s\n", "Latency", FormatMilliSeconds(pStats->iLatency, szBuffer, sizeof szBuffer));
}

static const char* _PMFECLevel(const SMGR_STREAM_PMFECRX_STATS* pStats)
{
    if (pStats->nColumns == 0 || pStats->nRows == 0) return "Unknown";
    return pStats->bRowFEC ? "B (Row and Column)" : "A (Column Only)";
}

// These counts are ints. A negative one hides at the default level, and prints as the unsigned number that it widens to.
static void _PrintPMFECCount(const char* pTitle, int nCount)
{
    char szBuffer[1024];
    fprintf(stdout, "  %-22s: %s\n", pTitle, FormatULONG(static_cast<unsigned long>(nCount), szBuffer, sizeof szBuffer));
}

void _PrintTDemuxPMFECStats(const SMGR_STREAM_PMFECRX_STATS* pStats, STATS_LEVEL nLevel)
{
    const bool printAll = nLevel == STATS_LEVEL_DEBUG;

    _PrintText("PMFEC Stats\n");
    fprintf(stdout, "  %-22s: %s\n", "Level", _PMFECLevel(pStats));
    fprintf(stdout, "  %-22s: %d\n", "Number of Columns", pStats->nColumns);
    fprintf(stdout, "  %-22s: %d\n", "Number of Rows", pStats->nRows);
    fprintf(stdout, "  %-22s: %s\n", "Block Aligned", _YesOrNo(pStats->bBlockAlign));
    if (printAll || pStats->nDroppedPkts >= 1) _PrintPMFECCount("Dropped Packets", pStats->nDroppedPkts);
    if (printAll || pStats->nRecoveredPkts >= 1) _PrintPMFECCount("Recovered Packets", pStats->nRecoveredPkts);
    if (printAll || pStats->nLostPkts >= 1) _PrintPMFECCount("Lost Packets", pStats->nLostPkts);
    if (printAll) _PrintPMFECCount("Received Col FEC", pStats->nColFecPkts);
    if (printAll) _PrintPMFECCount("Received Row FEC", pStats->nRowFecPkts);
    if (printAll) _PrintPMFECCount("Lost Col FEC", pStats->nDroppedColFECPkts);
    if (printAll) _PrintPMFECCount("Lost Row FEC", pStats->nDroppedRowFECPkts);
}

void _PrintTDemuxSource(const SMGR_TDEMUX_SOURCE_STATS* pStats, STATS_LEVEL nLevel)
{
    const bool printAll = nLevel == STATS_LEVEL_DEBUG;
    const SMGR_TDEMUX_SOURCE_COUNTERS& c = pStats->tCounters;
    char szBuffer[1024];

    if (c.nNumReceivedPackets == 0) return;

    if (pStats->enType == SMGR_TDEMUX_DATA_TYPE_AUDIO)
        fprintf(stdout, "  %s STREAM %d\n", SessMgr_GetTDemuxDataTypeString(pStats->enType, szBuffer, sizeof szBuffer), pStats->nAudioPairNum);
    else
        fprintf(stdout, "  %s STREAM\n", SessMgr_GetTDemuxDataTypeString(pStats->enType, szBuffer, sizeof szBuffer));

    fprintf(stdout, "    %-20s: %s\n", "Compression", SessMgr_GetTDemuxCompressionTypeString(pStats->enCompressionType, szBuffer, sizeof szBuffer));
    fprintf(stdout, "    %-20s: %s\n", "Bit Rate", FormatBitRate(c.nBitsPerSecond, szBuffer, sizeof szBuffer));
    fprintf(stdout, "    %-20s: %u\n", "Program ID", pStats->tsPid);
    if (printAll) fprintf(stdout, "    %-20s: %u\n", "Stream ID", pStats->tsStreamId);
    _PrintCounterStatWithTimingIndent2("Received Packets", c.nNumReceivedPackets, c.tLastReceivedPacket);
    fprintf(stdout, "    %-20s: %s\n", "Received Bytes", FormatULONG(c.nNumReceivedBytes, szBuffer, sizeof szBuffer));
    if (printAll) _PrintCounterStatWithTimingIndent2("Output Packets", c.nNumOutputPackets, c.tLastOutputPacket);
    if (printAll) fprintf(stdout, "    %-20s: %s\n", "Output Bytes", FormatULONG(c.nNumOutputBytes, szBuffer, sizeof szBuffer));
    fprintf(stdout, "    %-20s: %ld\n", "PTS", static_cast<long>(pStats->nPTS));
    fprintf(stdout, "    %-20s: %ld\n", "DTS", static_cast<long>(pStats->nDTS));
    if (printAll) fprintf(stdout, "    %-20s: %u / %u\n", "Time Base", pStats->nTimebaseNum, pStats->nTimebaseDen);
    if (printAll) _PrintCounterStatWithTimingIndent2("No-PTS Packets", c.nNumNoPTSValueFrames, c.tLastNoPTSValueFrames);
    if (printAll) _PrintCounterStatWithTimingIndent2("No-DTS Packets", c.nNumNoDTSValueFrames, c.tLastNoDTSValueFrames);
}

// A negative code comes from resolving the address; any other is an errno value.
static const char* _GetLastErrorText(int iLastError)
{
    return iLastError < 0 ? gai_strerror(iLastError) : strerror(iLastError);
}

static void _PrintAddress(const char* pTitle, const SMGR_IP_ADDRESS* pAddress, unsigned int nPort)
{
    char szBuffer[1024];
    const char* pText = SessMgr_GetIPAddressString(pAddress, szBuffer, sizeof szBuffer);
    if (strncmp(pText, "0.0.0.0", sizeof szBuffer) == 0) pText = "Unavailable";
    if (nPort)
        fprintf(stdout, "  %-22s: %s port %d\n", pTitle, pText, static_cast<int>(nPort));
    else
        fprintf(stdout, "  %-22s: %s\n", pTitle, pText);
}

static void _PrintPacketInterval(const char* pTitle, unsigned long nIntervalUs, unsigned long nMaxIntervalUs, time_t tMaxInterval)
{
    char szBuffer[1024];
    char szBuffer2[1024];
    char szBuffer3[1024];
    fprintf(stdout, "  %-22s: %s (Max=%s, Occurred: %s)\n", pTitle,
            FormatMicroSeconds(static_cast<long long>(nIntervalUs), szBuffer, sizeof szBuffer),
            FormatMicroSeconds(static_cast<long long>(nMaxIntervalUs), szBuffer2, sizeof szBuffer2),
            _GetElapsedTimeString(tMaxInterval, szBuffer3, sizeof szBuffer3));
}

static void _PrintTDemuxResolving(const SMGR_TDEMUX_STATS* pStats)
{
    const SMGR_TDEMUX_COUNTERS& c = pStats->tCounters;
    char szBuffer[1024];

    fprintf(stdout, "  %-22s: %s\n", "Up Time", FormatUpTime(static_cast<long long>(pStats->nUpTimeInSecs), szBuffer, sizeof szBuffer));
    if (c.iLastError)
    {
        fprintf(stdout, "  %-22s: %d (%s)\n", "Last Error", c.iLastError,
                _GetLastErrorText(c.iLastError));
        fprintf(stdout, "  %-22s: %s \n", "Occurred", _GetElapsedTimeString(c.iLastErrorTime, szBuffer, sizeof szBuffer));
    }
}

static void _PrintTDemuxInput(const SMGR_TDEMUX_STATS* pStats, bool printAll)
{
    const SMGR_TDEMUX_COUNTERS& c = pStats->tCounters;
    char szBuffer[1024];

    fprintf(stdout, "  %-22s: %s\n", "Up Time", FormatUpTime(static_cast<long long>(pStats->nUpTimeInSecs), szBuffer, sizeof szBuffer));
    if (printAll) fprintf(stdout, "  %-22s: %u\n", "Stream ID", pStats->nSmgrStreamID);
    if (printAll) fprintf(stdout, "  %-22s: %s\n", "Encapsulation", SessMgr_GetStreamEncapsulationString(pStats->enEncapsulation, szBuffer, sizeof szBuffer));
    if (printAll) _PrintAddress("Stream Address", &pStats->tStreamAddress, pStats->nStreamPort);
    _PrintAddress("Source Address", &pStats->tSourceAddress, pStats->nSourcePort);
    fprintf(stdout, "  %-22s: %s\n", "Bit Rate", FormatBitRate(c.nBitsPerSecond, szBuffer, sizeof szBuffer));
    _PrintCounterStatWithTiming("Received Packets", c.nNumReceivedPackets, c.tLastReceivedPacket);
    fprintf(stdout, "  %-22s: %s\n", "Received Bytes", FormatULONG(c.nNumReceivedBytes, szBuffer, sizeof szBuffer));
    if (printAll) _PrintPacketInterval("Recv'd Pkt-Pkt Time", c.nRxPacketToPacketIntervalUs, c.nMaxRxPacketToPacketIntervalUs, c.tMaxRxPacketToPacketInterval);
    if (printAll) _PrintPacketInterval("Ext Rx Pkt-Pkt Time", c.nExternalRxPacketToPacketIntervalUs, c.nMaxExternalRxPacketToPacketIntervalUs, c.tMaxExternalRxPacketToPacketInterval);
    if (printAll) _PrintCounterStatWithTiming("Output Packets", c.nNumOutputPackets, c.tLastOutputPacket);
    if (printAll) fprintf(stdout, "  %-22s: %s\n", "Output Bytes", FormatULONG(c.nNumOutputBytes, szBuffer, sizeof szBuffer));
    if (printAll || c.nNumDroppedPackets)
    {
        _PrintCounterStatWithTiming("Dropped Packets", c.nNumDroppedPackets, c.tLastDroppedPacket);
        fprintf(stdout, "  %-22s: %s\n", "Dropped Bytes", FormatULONG(c.nNumDroppedBytes, szBuffer, sizeof szBuffer));
        if (c.iLastPIDDropped >= 1)
            fprintf(stdout, "  %-22s: %u\n", "Last PID Dropped", static_cast<unsigned int>(c.iLastPIDDropped));
        else
            fprintf(stdout, "  %-22s: %s\n", "Last PID Dropped", "Not Found");
    }
    if (printAll) fprintf(stdout, "  %-22s: %ld\n", "Time Stamp", static_cast<long>(c.TimeStamp));
    if (printAll || c.nNumErrors)
    {
        // Unsigned here, signed while resolving.
        _PrintCounterStatWithTiming("Errors", c.nNumErrors, c.tLastError);
        fprintf(stdout, "  %-22s: %u (%s)\n", "Last Error", static_cast<unsigned int>(c.iLastError),
                _GetLastErrorText(c.iLastError));
    }
    if (printAll || c.nNumTSCorruptedFrames) _PrintCounterStatWithTiming("Corrupted Frames", c.nNumTSCorruptedFrames, c.tLastTSCorruptedFrame);
    if (printAll || c.nNumTimestampRollovers) _PrintCounterStatWithTiming("Timestamp Rollovers", c.nNumTimestampRollovers, c.tLastTimestampRollover);
    if (printAll || c.nNumPESSizeMismatches) _PrintCounterStatWithTiming("PES Size Mismatches", c.nNumPESSizeMismatches, c.tLastPESSizeMismatch);
    if (printAll || c.nNumFramesWithNoPCR) _PrintCounterStatWithTiming("Frames with No PCR", c.nNumFramesWithNoPCR, c.tLastFrameWithNoPCR);
    if (printAll || c.nNumFramesWithPTSLowerThanPCR) _PrintCounterStatWithTiming("Frames with PTS<=PCR", c.nNumFramesWithPTSLowerThanPCR, c.tLastFrameWithPTSLowerThanPCR);
    if (printAll || c.nNumReconnections) _PrintCounterStatWithTiming("Connections", c.nNumReconnections, c.tLastReconnection);
    if (printAll || c.nNumFailovers) _PrintCounterStatWithTiming("Failovers", c.nNumFailovers, c.tLastFailover);
    if (printAll || c.nNumNewStreamFlags) _PrintCounterStatWithTiming("New Stream Flags", c.nNumNewStreamFlags, c.tLastNewStreamFlag);
    if (printAll || c.nNumResumedStreamFlags) _PrintCounterStatWithTiming("Resumed Stream Flags", c.nNumResumedStreamFlags, c.tLastResumedStreamFlag);
    if (pStats->nProgramNumber)
        fprintf(stdout, "  %-22s: %u\n", "Program Number", pStats->nProgramNumber);
    else
        fprintf(stdout, "  %-22s: %s\n", "Program Number", "Not Found");
    if (pStats->nPcrPid)
        fprintf(stdout, "  %-22s: %u\n", "PCR PID", pStats->nPcrPid);
    else
        fprintf(stdout, "  %-22s: %s\n", "PCR PID", "Not Found");
    fprintf(stdout, "  %-22s: %lu (Last One: %s)\n", "PCR", pStats->nPCR, _GetElapsedTimeString(pStats->tLastPCR, szBuffer, sizeof szBuffer));
    fprintf(stdout, "  %-22s: %u (%u video, %u audio, %u KLV, %u filtered)\n", "Streams", c.nNumStreams, c.nVideoStreams,
            c.nAudioStreams, c.nKLVStreams, c.nFilteredStreams);
    if (printAll) _PrintSizeWithMaximum("Input Pkt List Size", c.nInputPacketListSize, c.nMaxInputPacketListSize, c.tMaxInputPacketListSize);
    if (printAll || c.nInputPacketListOverflows) _PrintCounterStatWithTiming("Input Pkt List Ovflws", c.nInputPacketListOverflows, c.tLastInputPacketListOverflow);
    if (printAll) _PrintSizeWithMaximum("Read Pkt List Size", c.nReadPacketListSize, c.nMaxReadPacketListSize, c.tMaxReadPacketListSize);
    if (printAll || c.nReadPacketListOverflows) _PrintCounterStatWithTiming("Read Pkt List Ovflws", c.nReadPacketListOverflows, c.tLastReadPacketListOverflow);
}

BOOL STATS_PrintForTDemux(const SMGR_TDEMUX_STATS* pStats, STATS_LEVEL nLevel)
{
    const bool printAll = nLevel == STATS_LEVEL_DEBUG;
    char szBuffer[1024];

    _PrintText("Statistics:\n");
    fprintf(stdout, "  %-22s: %s\n", "State", SessMgr_GetTDemuxStateString(pStats->enState, szBuffer, sizeof szBuffer));
    if (pStats->enState == SMGR_TDEMUX_STATS_STATE_RESOLVING)
    {
        _PrintTDemuxResolving(pStats);
        return TRUE;
    }
    if (!pStats->bStreamHasBeenStarted) return TRUE;

    _PrintTDemuxInput(pStats, printAll);
    if (pStats->enEncapsulation == SMGR_STREAM_ENCAPSULATION_TS_SRT) _PrintTDemuxSRTStats(&pStats->Xport.SRT, nLevel);
    if (pStats->enEncapsulation == SMGR_STREAM_ENCAPSULATION_TS_RTP && pStats->enFECType == SMGR_FEC_TYPE_PRO_MPEG)
        _PrintTDemuxPMFECStats(&pStats->Xport.PMFEC, nLevel);
    for (const SMGR_TDEMUX_SOURCE_STATS& tSource : pStats->tSources) _PrintTDemuxSource(&tSource, nLevel);
    return TRUE;
}
