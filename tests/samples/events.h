/**
 * @file events.h
 * Every event time of the records, by name and place, with the number that it belongs to where there is one.
 */
#ifndef EVENTS_H
#define EVENTS_H

#include <cstddef>
#include <ctime>
#include <string>
#include <vector>

#include "samples.h"

/** An event time. */
struct Event
{
    std::string name;   /**< where it stands */
    size_t place;       /**< offset within SAMPLES_RECORDS */
    size_t numberPlace; /**< offset of the number that is 0 as long as the event has not occurred */
    size_t numberSize;  /**< size of that number; 0 = there is none */
};

/* A time with its number, or alone, of the record that Record names. */
#define COUNTED(number, time)                                                           \
    Event                                                                               \
    {                                                                                   \
#time, offsetof(Record, time), offsetof(Record, number), sizeof(Record::number) \
    }
#define MOMENT(time)                        \
    Event                                   \
    {                                       \
#time, offsetof(Record, time), 0, 0 \
    }

/** Gathers the event times. */
class Events
{
public:
    std::vector<Event> all;

    Events()
    {
        AddTDemux(offsetof(SAMPLES_RECORDS, tTDemux));
        AddVFramerCounters(offsetof(SAMPLES_RECORDS, tVFramer) + offsetof(SMGR_VFRAMER_STATS, tCounters));
        AddVideoDecoderCounters(offsetof(SAMPLES_RECORDS, tVideoDecoder) + offsetof(SMGR_VCUDEC_STATS, tCounters));
        AddAudio(offsetof(SAMPLES_RECORDS, tAudio));
        AddMetadata(offsetof(SAMPLES_RECORDS, tMetadata));
        AddBuffering(offsetof(SAMPLES_RECORDS, tBuffering));
        AddClockRecovery(offsetof(SAMPLES_RECORDS, tClockRecovery));
        AddUsage(offsetof(SAMPLES_RECORDS, tUsage));
    }

private:
    void Add(const std::string& where, size_t base, const std::vector<Event>& events)
    {
        for (const Event& event : events)
        {
            all.push_back({where + "." + event.name, base + event.place, base + event.numberPlace, event.numberSize});
        }
    }

    void AddTDemux(size_t base)
    {
        using Record = SMGR_TDEMUX_STATS;
        Add("tTDemux", base,
            {
                COUNTED(nPCR, tLastPCR),
            });
        for (size_t i = 0; i < SMGR_TDEMUX_MAX_SOURCES; ++i)
        {
            const size_t source = base + offsetof(Record, tSources) + i * sizeof(SMGR_TDEMUX_SOURCE_STATS);
            AddSourceCounters("tTDemux.tSources[" + std::to_string(i) + "]", source + offsetof(SMGR_TDEMUX_SOURCE_STATS, tCounters));
        }
        AddTDemuxCounters(base + offsetof(Record, tCounters));
    }

    void AddSourceCounters(const std::string& where, size_t base)
    {
        using Record = SMGR_TDEMUX_SOURCE_COUNTERS;
        Add(where, base,
            {
                COUNTED(nNumReceivedBytes, tLastReceivedPacket),
                COUNTED(nNumOutputBytes, tLastOutputPacket),
                MOMENT(iLastTxTime),
                COUNTED(nNumNoPTSValueFrames, tLastNoPTSValueFrames),
                COUNTED(nNumNoDTSValueFrames, tLastNoDTSValueFrames),
            });
    }

    void AddTDemuxCounters(size_t base)
    {
        using Record = SMGR_TDEMUX_COUNTERS;
        Add("tTDemux", base,
            {
                COUNTED(nNumReceivedBytes, tLastReceivedPacket),
                COUNTED(nMaxRxPacketToPacketIntervalUs, tMaxRxPacketToPacketInterval),
                COUNTED(nMaxExternalRxPacketToPacketIntervalUs, tMaxExternalRxPacketToPacketInterval),
                COUNTED(nNumOutputBytes, tLastOutputPacket),
                COUNTED(nNumDroppedBytes, tLastDroppedPacket),
                COUNTED(nNumErrors, tLastError),
                COUNTED(nNumTSCorruptedFrames, tLastTSCorruptedFrame),
                COUNTED(nNumPESSizeMismatches, tLastPESSizeMismatch),
                COUNTED(nNumLostSegmentsMPEG2TS, tLastLostSegmentMPEG2TS),
                COUNTED(nNumLostSegmentsRTP, tLastLostSegmentRTP),
                COUNTED(nNumReconnections, tLastReconnection),
                COUNTED(nNumFailovers, tLastFailover),
                COUNTED(nNumTimestampRollovers, tLastTimestampRollover),
                COUNTED(nNumFramesWithNoPCR, tLastFrameWithNoPCR),
                COUNTED(nNumFramesWithPTSLowerThanPCR, tLastFrameWithPTSLowerThanPCR),
                COUNTED(nNumNewStreamFlags, tLastNewStreamFlag),
                COUNTED(nNumResumedStreamFlags, tLastResumedStreamFlag),
                COUNTED(iLastError, iLastErrorTime),
                MOMENT(iLastCorruptedFrameTime),
                MOMENT(iLastRxTime),
                COUNTED(nMaxInputPacketListSize, tMaxInputPacketListSize),
                COUNTED(nInputPacketListOverflows, tLastInputPacketListOverflow),
                COUNTED(nMaxReadPacketListSize, tMaxReadPacketListSize),
                COUNTED(nReadPacketListOverflows, tLastReadPacketListOverflow),
            });
    }

    void AddVFramerCounters(size_t base)
    {
        using Record = SMGR_VFRAMER_COUNTERS;
        Add("tVFramer", base,
            {
                MOMENT(tLastVideoFrameReceived),
                COUNTED(nNumStreamIDTransitions, tLastStreamIDTransition),
                COUNTED(nNumFormatTransitions, tLastFormatTransition),
                COUNTED(nNumUnsupported, tLastUnsupported),
                COUNTED(nNumH264Compression, tLastH264Compression),
                COUNTED(nNumH265Compression, tLastH265Compression),
                COUNTED(nNumUnknownCompression, tLastUnknownCompression),
                COUNTED(nNum420_8bitColortype, tLast420_8bitColortype),
                COUNTED(nNum420_10bitColortype, tLast420_10bitColortype),
                COUNTED(nNum422_8bitColortype, tLast422_8bitColortype),
                COUNTED(nNum422_10bitColortype, tLast422_10bitColortype),
                COUNTED(nNumUnknownColortype, tLastUnknownColortype),
                COUNTED(nNumInputPacketsDropped, tLastInputPacketDropped),
                COUNTED(nNumOutputFrames, tLastOutputFrame),
                COUNTED(nNumOutputFramesOnePiece, tLastOutputFrameOnePiece),
                COUNTED(nNumOutputFramesAssembled, tLastOutputFrameAssembled),
                COUNTED(nNumOutputFramesDropped, tLastOutputFrameDropped),
                COUNTED(nNumKeyFrames, tLastKeyFrame),
                COUNTED(nNumIPictures, tLastIPicture),
                COUNTED(nNumPPictures, tLastPPicture),
                COUNTED(nNumBPictures, tLastBPicture),
                COUNTED(nNumUnknownPictures, tLastUnknownPicture),
                COUNTED(nNumProgressivePicStruct, tLastProgressivePicStruct),
                COUNTED(nNumInterlacedPicStruct, tLastInterlacedPicStruct),
                COUNTED(nNumInterlacedTopFields, tLastInterlacedTopField),
                COUNTED(nNumInterlacedBottomFields, tLastInterlacedBottomField),
                COUNTED(nNumInterlacedBothFields, tLastInterlacedBothFields),
                COUNTED(nNumUnknownPicStruct, tLastUnknownPicStruct),
                COUNTED(nNumVPSNALs, tLastVPSNAL),
                COUNTED(nNumSPSNALs, tLastSPSNAL),
                COUNTED(nNumPPSNALs, tLastPPSNAL),
                COUNTED(nNumSEINALs, tLastSEINAL),
                COUNTED(nNumSHNALs, tLastSHNAL),
                COUNTED(nNumAUDNALs, tLastAUDNAL),
                COUNTED(nNumFillerNALs, tLastFillerNAL),
                COUNTED(nNumUnknownNALs, tLastUnknownNAL),
                COUNTED(nNumSPSErrors, tLastSPSError),
                COUNTED(nNumPPSErrors, tLastPPSError),
                COUNTED(nNumSEIErrors, tLastSEIError),
                COUNTED(nNumSHErrors, tLastSHError),
                COUNTED(nNumNoNALsInFrame, tLastNoNALsInFrame),
                COUNTED(nNumTCBytesOutput, tLastTCReceived),
                COUNTED(nNumCCBytesOutput, tLastCCReceived),
                COUNTED(nNumAFDBytesOutput, tLastAFDReceived),
                COUNTED(nMaxInputPacketListSize, tMaxInputPacketListSize),
                COUNTED(nInputPacketListOverflows, tLastInputPacketListOverflow),
                COUNTED(nMaxOutputPacketListSize, tMaxOutputPacketListSize),
                COUNTED(nOutputPacketListOverflows, tLastOutputPacketListOverflow),
            });
    }

    void AddVideoDecoderCounters(size_t base)
    {
        using Record = SMGR_VCUDEC_COUNTERS;
        Add("tVideoDecoder", base,
            {
                COUNTED(nNumReceivedFrames, tLastReceivedFrame),
                COUNTED(nNumReceivedFramesFreed, tLastReceivedFrameFreed),
                COUNTED(nNumFramesSentToDecoder, tLastFrameSentToDecoder),
                COUNTED(nNumDroppedFrames, tLastDroppedFrame),
                COUNTED(nNumDroppedIFrames, tLastDroppedIFrame),
                COUNTED(nNumDroppedPFrames, tLastDroppedPFrame),
                COUNTED(nNumDroppedBFrames, tLastDroppedBFrame),
                COUNTED(nNumDecodedFrames, tLastDecodedFrame),
                COUNTED(nNumConcealedFrames, tLastConcealedFrame),
                COUNTED(nNumResyncForLostOfAVSync, tLastResyncForLostOfAVSync),
                COUNTED(nNumFramesSentToDisplay, tLastFrameSentToDisplay),
                COUNTED(nNumDisplayedOutputFrames, tLastDisplayedOutputFrame),
                COUNTED(nNumSkippedOutputFrames, tLastSkippedOutputFrame),
                COUNTED(nNumReplayedOutputFrames, tLastReplayedOutputFrame),
                COUNTED(nNumDisplayedFramesFreed, tLastDisplayedFrameFreed),
                COUNTED(nNumOutputErrors, tLastOutputError),
                COUNTED(nNumOutputLate, tLastOutputLate),
                COUNTED(nMinOutputSTCLeadTime, tMinOutputSTCLeadTime),
                COUNTED(nMaxOutputSTCLeadTime, tMaxOutputSTCLeadTime),
                COUNTED(nNumReorderFramesIn, tLastReorderFrameIn),
                COUNTED(nNumReorderFramesOut, tLastReorderFrameOut),
                COUNTED(nNumReorderFramesExtractCalls, tLastReorderFramesExtractCall),
                COUNTED(nNumReorderFramesFlushCalls, tLastReorderFramesFlushCall),
                COUNTED(nNumInputParsedCallbacks, tLastInputParsedCallback),
                COUNTED(nNumResolutionFoundCallbacks, tLastResolutionFoundCallback),
                COUNTED(nNumDecodedCallbacks, tLastDecodedCallback),
                COUNTED(nNumDisplayCallbacks, tLastDisplayCallback),
                COUNTED(nNumSEICallbacks, tLastSEICallback),
                COUNTED(nNumImageCaptures, tLastImageCapture),
                COUNTED(nNumImageCapturesFailed, tLastImageCaptureFailed),
                COUNTED(nLastErrorCode, iLastErrorTime),
                COUNTED(nNumEOSEvents, tLastEOSEvent),
                COUNTED(nNumExitErrors, tLastExitError),
                COUNTED(nNumNoInfoErrors, tLastNoInfoError),
                COUNTED(nNumDiscontinuty, tLastDiscontinuity),
                COUNTED(nNumOfFrmNotRelease, tLastNumOfFrmNotRelease),
                COUNTED(nOutputTimestampNotIncreasing, tLastOutputTimestampNotIncreasing),
                COUNTED(nOutputTimestampsMissing, tLastOutputTimestampMissing),
                MOMENT(tLastStillImageOn),
                MOMENT(tLastStillImageOff),
            });
    }

    void AddAudio(size_t base)
    {
        using Record = SMGR_DECODER_AUDIO_STATS;
        Add("tAudio", base,
            {
                COUNTED(nReceivedFrames, tLastReceivedFrame),
                COUNTED(nDecodedFrames, tLastDecodedFrame),
                COUNTED(nOutputFrames, tLastOutputFrame),
                COUNTED(nSkippedFrames, tLastSkippedFrame),
                COUNTED(nOutputErrors, tLastOutputError),
                COUNTED(nReleasedFrames, tLastReleasedFrame),
            });
        for (size_t i = 0; i < SMGR_AUDIO_MAX_PAIRS; ++i)
        {
            const size_t pair = base + offsetof(Record, PairStats) + i * sizeof(SMGR_AUDIO_PAIR_STATS);
            AddAudioPair("tAudio.PairStats[" + std::to_string(i) + "]", pair);
        }
    }

    void AddAudioPair(const std::string& where, size_t base)
    {
        using Record = SMGR_AUDIO_PAIR_STATS;
        Add(where, base,
            {
                COUNTED(nReceivedFrames, tLastReceivedFrame),
                COUNTED(nDecodedFrames, tLastDecodedFrame),
                COUNTED(nOutputFrames, tLastOutputFrame),
                COUNTED(nSkippedFrames, tLastSkippedFrame),
                COUNTED(nDecoderErrors, tLastDecoderError),
                COUNTED(nOutputErrors, tLastOutputError),
                MOMENT(tLastIntervalTime),
                COUNTED(nMinSTCLeadTimeMs, tMinSTCLeadTime),
                COUNTED(nMaxSTCLeadTimeMs, tMaxSTCLeadTime),
                MOMENT(tLastRxFrameTime),
                COUNTED(nMinProcessTimeUs, tMinProcessTime),
                COUNTED(nMaxProcessTimeUs, tMaxProcessTime),
            });
    }

    void AddMetadata(size_t base)
    {
        for (size_t i = 0; i < SMGR_METADATADEC_MAX_CHANNELS; ++i)
        {
            const size_t channel = base + offsetof(SMGR_METADATADEC_STATS, tChannel) + i * sizeof(SMGR_METADATADEC_CHANNEL_STATS);
            AddMetadataChannelCounters("tMetadata.tChannel[" + std::to_string(i) + "]",
                                       channel + offsetof(SMGR_METADATADEC_CHANNEL_STATS, tCounters));
        }
    }

    void AddMetadataChannelCounters(const std::string& where, size_t base)
    {
        using Record = SMGR_METADATADEC_CHANNEL_COUNTERS;
        Add(where, base,
            {
                COUNTED(nNumInputPackets, tLastInputPacket),
                COUNTED(nNumSynchronousPackets, tLastSynchronousPacket),
                COUNTED(nNumAsynchronousPackets, tLastAsynchronousPacket),
                COUNTED(nNumOutputPackets, tLastOutputPacket),
                COUNTED(nNumFreedPackets, tLastFreedPacket),
                COUNTED(nNumDroppedPackets, tLastDroppedPacket),
                COUNTED(nNumOutputFailedPackets, tLastOutputFailedPacket),
                COUNTED(nNumOutputFailedLatePackets, tLastOutputFailedLatePacket),
                COUNTED(nMaxOutputPayloadBytes, tMaxOutputPayloadBytes),
                COUNTED(nNumNonIncreasingOutputTimestamps, tLastNonIncreasingOutputTimestamp),
                MOMENT(tLastOutputTime),
                COUNTED(nNumPacketListResets, tLastPacketListReset),
                COUNTED(nNumBDAllocated, tLastBDAllocated),
                COUNTED(nNumBDAllocateFailed, tLastBDAllocateFailed),
                COUNTED(nNumBDWritten, tLastBDWritten),
                COUNTED(nNumBDFreed, tLastBDFreed),
                COUNTED(nNumOutputLate, tLastOutputLate),
                COUNTED(nMinOutputSTCLeadTime, tMinOutputSTCLeadTime),
                COUNTED(nMaxOutputSTCLeadTime, tMaxOutputSTCLeadTime),
            });
    }

    void AddBuffering(size_t base)
    {
        AddMultiSyncCounters(base + offsetof(SMGR_CBUFFERING_STATS, tMultiSync) + offsetof(SMGR_CBUFFERING_MULTISYNC_STATS, tCounters));
        AddAutomatic(base + offsetof(SMGR_CBUFFERING_STATS, tAutomatic));
        for (size_t i = 0; i < SMGR_CBUFFERING_MAX_CHANNELS; ++i)
        {
            using Record = SMGR_CBUFFERING_CHANNEL_STATS;
            Add("tBuffering.tChannel[" + std::to_string(i) + "]", base + offsetof(SMGR_CBUFFERING_STATS, tChannel) + i * sizeof(Record),
                {
                    MOMENT(tLastOutputTime),
                });
        }
        AddBufferingCounters(base + offsetof(SMGR_CBUFFERING_STATS, tCounters));
    }

    void AddMultiSyncCounters(size_t base)
    {
        using Record = SMGR_CBUFFERING_MULTISYNC_COUNTERS;
        Add("tBuffering.tMultiSync", base,
            {
                COUNTED(nNumTCPackets, tLastTCReceived),
                COUNTED(nNumTCPacketsInvalid, tLastInvalidTCReceived),
            });
    }

    void AddAutomatic(size_t base)
    {
        using Record = SMGR_CBUFFERING_AUTOMATIC_STATS;
        Add("tBuffering.tAutomatic", base,
            {
                COUNTED(nMaxInputJitterMs, tMaxInputJitterChanged),
                COUNTED(nNonVideoLateMaxMs, tNonVideoLateMax),
                COUNTED(nVideoDecoderLatencyMaxMs, tVideoDecoderLatencyMax),
                COUNTED(nVideoDecoderJitterMaxMs, tVideoDecoderJitterMax),
                MOMENT(tLastVideoSkipReplayTime),
                MOMENT(tLastAudioSkipTime),
            });
    }

    void AddBufferingCounters(size_t base)
    {
        using Record = SMGR_CBUFFERING_COUNTERS;
        Add("tBuffering", base,
            {
                COUNTED(nNumReceivedPackets, tLastReceivedPacket),
                COUNTED(nNumOutputPackets, tLastOutputPacket),
                COUNTED(nNumDroppedPackets, tLastDroppedPacket),
                COUNTED(nNumUnknownPackets, tLastUnknownPacket),
                COUNTED(nNumPCRUpdates, tLastPCRUpdate),
                COUNTED(nNumSTCUpdates, tLastSTCUpdate),
                COUNTED(nNumBufferingAdjustments, tLastBufferingAdjustmentTime),
                COUNTED(nNumSTCLeadTimeAdjustments, tLastSTCLeadTimeAdjustmentTime),
                COUNTED(nNumLateOutputs, tLastLateOutput),
                COUNTED(nNumResets, tLastReset),
                COUNTED(nMaxBufferingOccupancyBytes, tMaxBufferingOccupancyBytes),
                COUNTED(nBufferingOverflows, tLastBufferingOverflow),
                COUNTED(nSynthesizedAsyncTimestamps, tLastSynthesizedAsyncTimestamp),
                COUNTED(nSynthesizedAsyncTimestampFails, tLastSynthesizedAsyncTimestampFail),
            });
    }

    void AddClockRecovery(size_t base)
    {
        using Record = SMGR_DECODER_CLOCK_RECOVERY_STATS;
        Add("tClockRecovery", base,
            {
                COUNTED(PcrUpdates, tLastPcrUpdate),
                COUNTED(PcrJump, tLastPcrJump),
                COUNTED(PcrJumpMaxValue, tLastPcrJumpMaxValue),
            });
    }

    void AddUsage(size_t base)
    {
        using Record = SMGR_DECODER_SDI_USAGE_STATS;
        Add("tUsage", base,
            {
                COUNTED(nNumStarts, tLastStart),
                COUNTED(nNumStops, tLastStop),
                COUNTED(nNumGetStats, tLastGetStat),
                COUNTED(nNumGetInfos, tLastGetInfo),
                COUNTED(nNumConfigures, tLastConfigure),
                COUNTED(nNumCaptures, tLastCapture),
                COUNTED(nNumClears, tLastClear),
                COUNTED(nNumLoadConfigs, tLastLoadConfig),
                COUNTED(nNumSaveConfigs, tLastSaveConfig),
            });
    }
};

#undef COUNTED
#undef MOMENT

#endif
